#include "generator.h"

#include <algorithm>
#include <string>

namespace {

constexpr const char* kVarSymbols[8] = {"make", "ship", "store", "buy",
                                        "sell", "open", "hire", "flow"};
constexpr const char* kEquSymbols[6] = {"cap", "dem", "bal", "lim", "mix", "note"};
// Row type of each equation symbol; `note` rows are free rows, or =E= rows when compared with
// GLPK. lim and mix rows are ranged every third row, bal and note rows every fifth.
constexpr char kEquTypes[6] = {'L', 'G', 'E', 'L', 'G', 'N'};

struct Random {
  uint64_t state;
  uint64_t next() {  // splitmix64
    uint64_t z = (state += 0x9e3779b97f4a7c15ull);
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ull;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebull;
    return z ^ (z >> 31);
  }
  int64_t below(int64_t n) { return static_cast<int64_t>(next() % static_cast<uint64_t>(n)); }
  // A value k/8 with k in -8*range..8*range, exact in binary and in decimal.
  double value(int64_t range) { return static_cast<double>(below(16 * range + 1) - 8 * range) / 8; }
};

struct Writer {
  const MpsGeneratorSettings& s;
  std::FILE* out;
  std::string name;

  // Member k of a symbol: sym(i,j) in the free form, "SY k" in the fixed form.
  const std::string& member(const char* symbol, int64_t k) {
    if (s.fixed) {
      name = {static_cast<char>(symbol[0] - 'a' + 'A'), static_cast<char>(symbol[1] - 'a' + 'A'), ' '};
      name += std::to_string(k + 1);
    } else {
      name = symbol;
      name += '(' + std::to_string(k / 50 + 1) + ',' + std::to_string(k % 50 + 1) + ')';
    }
    return name;
  }
  void line(const char* code, const std::string& a, const std::string& b, double v,
            bool withValue = true) {
    if (!withValue)
      std::fprintf(out, s.fixed ? " %-2s %-8s  %s\n" : " %s %s %s\n", code, a.c_str(), b.c_str());
    else if (s.fixed)
      std::fprintf(out, " %-2s %-8s  %-8s  %12.6g\n", code, a.c_str(), b.c_str(), v);
    else
      std::fprintf(out, " %s %s %s %.10g\n", code, a.c_str(), b.c_str(), v);
  }
  void entry(const std::string& col, const std::string& row, double v) {
    if (s.fixed)
      std::fprintf(out, "    %-8s  %-8s  %12.6g\n", col.c_str(), row.c_str(), v);
    else
      std::fprintf(out, " %s %s %.10g\n", col.c_str(), row.c_str(), v);
  }
};

}  // namespace

bool generateMps(const MpsGeneratorSettings& s, std::FILE* out) {
  const int64_t n = std::max<int64_t>(s.columns, 48);
  const int64_t perEqu = n / 4 / 6;
  const int64_t perVar = n / 8;
  Random rnd{s.seed};
  Writer w{s, out, {}};
  auto equType = [&](int e) { return kEquTypes[e] == 'N' && s.glpkComparable ? 'E' : kEquTypes[e]; };

  std::fprintf(out, "NAME          GEN%llu\nROWS\n N  cost\n",
               static_cast<unsigned long long>(s.seed));
  for (int e = 0; e < 6; ++e)
    for (int64_t k = 0; k < perEqu; ++k)
      std::fprintf(out, " %c  %s\n", equType(e), w.member(kEquSymbols[e], k).c_str());

  std::fprintf(out, "COLUMNS\n");
  std::string col, row;
  for (int v = 0; v < 8; ++v) {
    const bool integer = v == 6;
    if (integer) std::fprintf(out, "    MARKER    'MARKER'                 'INTORG'\n");
    for (int64_t k = 0; k < perVar; ++k) {
      col = w.member(kVarSymbols[v], k);
      w.entry(col, "cost", w.s.seed % 2 == 0 && k % 7 == 0 ? 0.0 : rnd.value(20));
      // Two rows of each of three equation symbols, in no particular order.
      for (int e : {(v + 3) % 6, v % 6, (v + 1) % 6}) {
        const int64_t first = rnd.below(perEqu);
        const int64_t second = (first + 1 + rnd.below(perEqu - 1)) % perEqu;
        for (int64_t member : {second, first}) {
          row = w.member(kEquSymbols[e], member);
          w.entry(col, row, rnd.value(50));
        }
      }
    }
    if (integer) std::fprintf(out, "    MARKER    'MARKER'                 'INTEND'\n");
  }

  std::fprintf(out, "RHS\n");
  // An objective constant of 12.5. The row keeps -12.5 as its right-hand side: a positive one
  // would be a finding of ANALYSIS on a row that cannot be infeasible (the objective row's
  // activity is not summed), shown with its million entries.
  if (!s.glpkComparable) w.line("", "RHS", "cost", -12.5);
  for (int e = 0; e < 6; ++e)
    for (int64_t k = 0; k < perEqu; ++k)
      if (k % 4 != 3) w.line("", "RHS", w.member(kEquSymbols[e], k), rnd.value(100));

  std::fprintf(out, "RANGES\n");
  for (int e = 0; e < 6; ++e) {
    const int every = kEquTypes[e] == 'E' || kEquTypes[e] == 'N' ? 5 : 3;
    if (kEquTypes[e] != 'N' || s.glpkComparable)
      for (int64_t k = 0; k < perEqu; k += every)
        w.line("", "RNG", w.member(kEquSymbols[e], k), rnd.value(10));
  }

  // Bounds: make none, ship UP, store LO and UP, buy FX, sell FR or MI, open BV, hire LI and UI
  // over its marker, flow PL, MI with UP, and a negative UP.
  std::fprintf(out, "BOUNDS\n");
  for (int v = 1; v < 8; ++v)
    for (int64_t k = 0; k < perVar; ++k) {
      col = w.member(kVarSymbols[v], k);
      const double up = static_cast<double>(rnd.below(100) + 1);
      switch (v) {
        case 1: w.line("UP", "BND", col, up); break;
        case 2:
          if (k % 2 == 0) w.line("LO", "BND", col, -up);
          w.line("UP", "BND", col, k % 4 == 0 ? -up / 2 : up);
          if (k % 2 == 1) w.line("LO", "BND", col, -2 * up);
          break;
        case 3: w.line("FX", "BND", col, rnd.value(10)); break;
        case 4: w.line(k % 2 == 0 ? "FR" : "MI", "BND", col, 0, false); break;
        case 5: w.line("BV", "BND", col, 0, false); break;
        case 6:
          if (k % 3 == 0) w.line("LI", "BND", col, -up);
          if (k % 3 == 1) w.line("UI", "BND", col, up);
          break;
        default:
          if (k % 3 == 0) w.line("PL", "BND", col, 0, false);
          if (k % 3 == 1) {
            w.line("MI", "BND", col, 0, false);
            w.line("UP", "BND", col, up);
          }
          if (k % 3 == 2 && !s.glpkComparable) w.line("UP", "BND", col, -up);
      }
    }
  std::fprintf(out, "ENDATA\n");
  return std::ferror(out) == 0;
}
