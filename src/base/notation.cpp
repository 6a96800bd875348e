// The report notation interpreter.
//
// A template is compiled once into a flat list of nodes (kept in a small cache keyed by the
// template's text, so a report that writes thousands of lines parses its template once) and
// then run over the values. Every line is built in a std::string, so no template and no value
// can make the interpreter read or write outside its buffers. A malformed template trips an
// assertion in debug builds; otherwise the part up to the fault is written.
//
// Echo pattern. A message for both sinks is written twice with the same words, one write for
// each channel, in the order its report gives, e.g.
//   writeLine(runState.logChannel, "(1X,'Failure attempting to allocate ',I12,' words.')", {n});
//   writeLine(runState.statusChannel, "(1X,'Failure attempting to allocate ',I12,' words.')", {n});
// Never format a line once and copy it to the other channel.

#include "base/notation.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cassert>
#include <charconv>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>

bool notationStrict = true;

namespace {

// ---- compiled templates ---------------------------------------------------------------------

enum class Op : uint8_t { Lit, Blank, Slash, Int, Fix, Exp, TextW, TextFull, Open, Close };

struct Node {
  Op op;
  int32_t a = 0;       // Lit: offset in pool; Blank, Slash: count; data: width; Open: count;
                       // Close: index of its Open
  int32_t b = 0;       // Lit: length; Fix, Exp: decimals; Open: index of its Close
  int32_t repeat = 1;  // data items: repeat count
};

struct Program {
  std::vector<Node> nodes;
  std::string pool;        // literal texts, '' already reduced to '
  int32_t restart = 0;     // where the template starts again when values are left
  bool restartHasData = false;
  bool malformed = false;
};

// Numbers in a template are capped so that no field or count can exhaust memory.
constexpr int32_t kMaxNumber = 9999;

bool isData(Op op) {
  return op == Op::Int || op == Op::Fix || op == Op::Exp || op == Op::TextW ||
         op == Op::TextFull;
}

struct Parser {
  std::string_view s;
  size_t p = 0;
  Program prog;
  std::vector<int32_t> open;  // indices of the Open nodes not yet closed

  void skipBlanks() {
    while (p < s.size() && s[p] == ' ') ++p;
  }
  bool atDigit() const { return p < s.size() && s[p] >= '0' && s[p] <= '9'; }
  char upper() const {
    const char c = s[p];
    return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
  }
  // A run of digits; -1 when there is none.
  int32_t number() {
    skipBlanks();
    if (!atDigit()) return -1;
    int64_t v = 0;
    while (atDigit()) {
      v = v * 10 + (s[p] - '0');
      if (v > kMaxNumber) {
        prog.malformed = true;
        v = kMaxNumber;
      }
      ++p;
    }
    return static_cast<int32_t>(v);
  }

  bool literal() {
    // s[p] is the opening apostrophe.
    ++p;
    std::string text;
    while (p < s.size()) {
      if (s[p] == '\'') {
        if (p + 1 < s.size() && s[p + 1] == '\'') {
          text.push_back('\'');
          p += 2;
          continue;
        }
        ++p;
        Node n{Op::Lit};
        n.a = static_cast<int32_t>(prog.pool.size());
        n.b = static_cast<int32_t>(text.size());
        prog.pool += text;
        prog.nodes.push_back(n);
        return true;
      }
      text.push_back(s[p++]);
    }
    return false;  // no closing apostrophe
  }

  // A data item I, F, E or A with its repeat count; s[p] is the letter.
  bool dataItem(int32_t repeat) {
    const char letter = upper();
    ++p;
    Node n{Op::Int};
    n.repeat = repeat;
    if (letter == 'A') {
      const int32_t w = number();
      if (w == 0) return false;
      n.op = w < 0 ? Op::TextFull : Op::TextW;
      n.a = w < 0 ? 0 : w;
    } else {
      const int32_t w = number();
      if (w <= 0) return false;
      n.a = w;
      if (letter == 'I') {
        n.op = Op::Int;
      } else {
        n.op = letter == 'F' ? Op::Fix : Op::Exp;
        skipBlanks();
        if (p >= s.size() || s[p] != '.') return false;
        ++p;
        const int32_t d = number();
        if (d < 0 || (n.op == Op::Exp && d == 0)) return false;
        n.b = d;
      }
    }
    prog.nodes.push_back(n);
    return true;
  }

  // One item; false at a fault.
  bool item() {
    skipBlanks();
    if (p >= s.size()) return false;
    const char c = s[p];
    if (c == '\'') return literal();
    if (c == '/') {
      ++p;
      prog.nodes.push_back({Op::Slash, 1});
      return true;
    }
    if (c == ')') {
      if (open.empty()) return false;
      ++p;
      const int32_t o = open.back();
      open.pop_back();
      prog.nodes[o].b = static_cast<int32_t>(prog.nodes.size());
      prog.nodes.push_back({Op::Close, o});
      if (open.empty() && prog.nodes[o].a > 0) prog.restart = o;
      return true;
    }
    int32_t count = -1;
    if (atDigit()) {
      count = number();
      skipBlanks();
      if (p >= s.size() || count == 0) return false;
    }
    const char u = upper();
    if (u == '(') {
      ++p;
      open.push_back(static_cast<int32_t>(prog.nodes.size()));
      prog.nodes.push_back({Op::Open, count < 0 ? 1 : count});
      return true;
    }
    if (u == 'X') {
      ++p;
      prog.nodes.push_back({Op::Blank, count < 0 ? 1 : count});
      return true;
    }
    if (u == '/' && count > 0) {
      ++p;
      prog.nodes.push_back({Op::Slash, count});
      return true;
    }
    if (u == 'I' || u == 'F' || u == 'E' || u == 'A') return dataItem(count < 0 ? 1 : count);
    return false;
  }

  void run(std::string_view tmpl) {
    s = tmpl;
    // Trim blanks and an outer pair of parentheses around the whole template.
    while (!s.empty() && s.front() == ' ') s.remove_prefix(1);
    while (!s.empty() && s.back() == ' ') s.remove_suffix(1);
    if (s.size() >= 2 && s.front() == '(' && s.back() == ')' && outerPairEncloses()) {
      s = s.substr(1, s.size() - 2);
    }
    bool expectItem = true;  // at the head, after '(' and after ','
    bool afterComma = false;
    while (true) {
      skipBlanks();
      if (p >= s.size()) break;
      const char c = s[p];
      if (c == ',') {
        if (expectItem) prog.malformed = true;  // ",,", "(," or a leading comma
        ++p;
        expectItem = true;
        afterComma = true;
        continue;
      }
      // A slash needs no comma on either side; everything else is separated by commas.
      if (c == ')' && expectItem) prog.malformed = true;  // "()" or ",)"
      if (!expectItem && c != '/' && c != ')' && !prevIsSlash()) prog.malformed = true;
      if (!item()) {
        prog.malformed = true;
        break;
      }
      expectItem = prog.nodes.back().op == Op::Open;
      afterComma = false;
    }
    if (afterComma) prog.malformed = true;  // a trailing comma
    // Close what is left open so that the program is well formed.
    if (!open.empty()) prog.malformed = true;
    while (!open.empty()) {
      const int32_t o = open.back();
      open.pop_back();
      prog.nodes[o].b = static_cast<int32_t>(prog.nodes.size());
      prog.nodes.push_back({Op::Close, o});
      if (open.empty()) prog.restart = o;
    }
    for (size_t k = static_cast<size_t>(prog.restart); k < prog.nodes.size(); ++k) {
      if (isData(prog.nodes[k].op)) prog.restartHasData = true;
    }
  }

  bool prevIsSlash() const { return !prog.nodes.empty() && prog.nodes.back().op == Op::Slash; }

  // True when the '(' at the head of s is closed by the ')' at its tail.
  bool outerPairEncloses() const {
    int depth = 0;
    bool inText = false;
    for (size_t k = 0; k < s.size(); ++k) {
      const char c = s[k];
      if (inText) {
        if (c == '\'') inText = false;  // a doubled '' leaves and re-enters: same effect
        continue;
      }
      if (c == '\'') {
        inText = true;
      } else if (c == '(') {
        ++depth;
      } else if (c == ')') {
        if (--depth == 0) return k == s.size() - 1;
      }
    }
    return false;
  }
};

Program compile(std::string_view tmpl) {
  Parser parser;
  parser.run(tmpl);
  return std::move(parser.prog);
}

// Compiled templates by their text; a slot holds the last template that hashed to it.
struct CacheSlot {
  std::string key;
  Program prog;
  bool used = false;
};

const Program& compiled(std::string_view tmpl) {
  static std::array<CacheSlot, 256> cache;
  CacheSlot& slot = cache[std::hash<std::string_view>{}(tmpl) % cache.size()];
  if (!slot.used || slot.key != tmpl) {
    slot.key.assign(tmpl);
    slot.prog = compile(tmpl);
    slot.used = true;
  }
  return slot.prog;
}

// ---- fields ---------------------------------------------------------------------------------

void putStars(std::string& out, int32_t w) { out.append(static_cast<size_t>(w), '*'); }

void putRight(std::string& out, int32_t w, std::string_view text) {
  if (text.size() > static_cast<size_t>(w)) {
    putStars(out, w);
    return;
  }
  out.append(static_cast<size_t>(w) - text.size(), ' ');
  out.append(text);
}

void putInt(std::string& out, int32_t w, int64_t v) {
  char buf[24];
  const auto r = std::to_chars(buf, buf + sizeof buf, v);
  putRight(out, w, std::string_view(buf, static_cast<size_t>(r.ptr - buf)));
}

// Adds one unit in the last digit of the digits in [first, last), skipping a '.'. True when
// the carry runs out of the first digit (all were 9s, and are now 0s).
bool incrementDigits(char* first, char* last) {
  for (char* q = last; q != first;) {
    --q;
    if (*q == '.') continue;
    if (*q != '9') {
      ++*q;
      return false;
    }
    *q = '0';
  }
  return true;
}

// A positive finite a is m x 2^k with m odd.
void oddMantissa(double a, uint64_t& m, int& k) {
  const auto bits = std::bit_cast<uint64_t>(a);
  const auto biased = static_cast<int>(bits >> 52);
  uint64_t mi = bits & ((uint64_t{1} << 52) - 1);
  k = biased == 0 ? -1074 : biased - 1075;  // a subnormal has no hidden bit
  if (biased != 0) mi |= uint64_t{1} << 52;
  const int tz = std::countr_zero(mi);
  m = mi >> tz;
  k += tz;
}

constexpr size_t kNumBuf = 2 * kMaxNumber + 400;

// Fw.d, rounded to nearest with halves away from zero. A negative value keeps its minus sign
// even when it rounds to zero ("-0.00"); a zero, negative zero included, has none.
void putFixed(std::string& out, int32_t w, int32_t d, double x) {
  if (!std::isfinite(x)) {
    putStars(out, w);
    return;
  }
  const bool negative = x < 0.0;
  const double a = std::fabs(x);
  // Fast refusal of numbers whose integer digits alone fill the field.
  static const std::array<double, 309> powers = [] {
    std::array<double, 309> t{};
    for (int k = 0; k < 309; ++k) t[static_cast<size_t>(k)] = std::pow(10.0, k);
    return t;
  }();
  if (w <= 308 && a >= powers[static_cast<size_t>(w)]) {
    putStars(out, w);
    return;
  }
  // An exact half at the last decimal: the exact value has d+1 decimals, the last a 5.
  bool tie = false;
  if (a != 0.0) {
    uint64_t m = 0;
    int k = 0;
    oddMantissa(a, m, k);
    tie = k < 0 && -k == d + 1;
  }
  static char buf[kNumBuf];
  char* first = buf + 1;  // room for a carry digit in front
  const auto r = std::to_chars(first, buf + kNumBuf - 2, a, std::chars_format::fixed,
                               tie ? d + 1 : d);
  char* last = r.ptr;
  if (tie) {
    --last;  // drop the 5 and round the rest up
    if (d == 0) --last;  // and the '.' before it
    if (incrementDigits(first, last)) *--first = '1';
  }
  if (d == 0) *last++ = '.';
  std::string_view body(first, static_cast<size_t>(last - first));
  const bool zeroInt = body.size() >= 2 && body[0] == '0' && body[1] == '.';
  size_t len = body.size() + (negative ? 1 : 0);
  if (len > static_cast<size_t>(w) && zeroInt && d > 0) {
    body.remove_prefix(1);
    --len;
  }
  if (len > static_cast<size_t>(w)) {
    putStars(out, w);
    return;
  }
  out.append(static_cast<size_t>(w) - len, ' ');
  if (negative) out.push_back('-');
  out.append(body);
}

// Ew.d: 0.ddddE+xx, the first decimal digit not zero; three-digit exponents drop the letter.
void putExp(std::string& out, int32_t w, int32_t d, double x) {
  if (!std::isfinite(x) || d < 1) {
    putStars(out, w);
    return;
  }
  const bool negative = x < 0.0;
  const double a = std::fabs(x);
  static char digits[kNumBuf];
  int exponent = 0;  // of the 0.ddd form
  if (a == 0.0) {
    std::memset(digits, '0', static_cast<size_t>(d));
  } else {
    static char buf[kNumBuf];
    // One digit more than asked, to see whether the value lies exactly half-way.
    auto r = std::to_chars(buf, buf + kNumBuf, a, std::chars_format::scientific, d);
    std::string_view t(buf, static_cast<size_t>(r.ptr - buf));
    size_t ePos = t.find('e');
    int e10 = 0;
    std::from_chars(t.data() + ePos + 1 + (t[ePos + 1] == '+' ? 1 : 0), t.data() + t.size(), e10);
    bool tie = false;
    if (t[ePos - 1] == '5') {
      uint64_t m = 0;
      int k = 0;
      oddMantissa(a, m, k);
      int trailingZeros = 0;  // decimal zeros at the end of an integer m x 2^k
      if (k >= 0) {
        int v5 = 0;
        for (uint64_t q = m; q % 5 == 0; q /= 5) ++v5;
        trailingZeros = std::min(k, v5);
      }
      const int significant = k < 0 ? e10 + 1 - k : e10 + 1 - trailingZeros;
      tie = significant == d + 1;
    }
    size_t n = 0;
    if (tie) {
      for (size_t q = 0; q < ePos && n < static_cast<size_t>(d); ++q) {
        if (t[q] != '.') digits[n++] = t[q];
      }
      if (incrementDigits(digits, digits + d)) {
        digits[0] = '1';
        ++e10;
      }
    } else {
      r = std::to_chars(buf, buf + kNumBuf, a, std::chars_format::scientific, d - 1);
      t = std::string_view(buf, static_cast<size_t>(r.ptr - buf));
      ePos = t.find('e');
      for (size_t q = 0; q < ePos; ++q) {
        if (t[q] != '.') digits[n++] = t[q];
      }
      std::from_chars(t.data() + ePos + 1 + (t[ePos + 1] == '+' ? 1 : 0),
                      t.data() + t.size(), e10);
    }
    exponent = e10 + 1;
  }
  // Doubles keep their exponents within three digits (0.49407-323 to 0.17977+309).
  char expText[4];
  const int absExp = std::min(exponent < 0 ? -exponent : exponent, 999);
  const char sign = exponent < 0 ? '-' : '+';
  if (absExp <= 99) {
    expText[0] = 'E';
    expText[1] = sign;
  } else {
    expText[0] = sign;
    expText[1] = static_cast<char>('0' + absExp / 100);
  }
  expText[2] = static_cast<char>('0' + absExp / 10 % 10);
  expText[3] = static_cast<char>('0' + absExp % 10);
  size_t len = (negative ? 1u : 0u) + 2 + static_cast<size_t>(d) + 4;
  bool leadingZero = true;
  if (len > static_cast<size_t>(w)) {
    leadingZero = false;
    --len;
  }
  if (len > static_cast<size_t>(w)) {
    putStars(out, w);
    return;
  }
  out.append(static_cast<size_t>(w) - len, ' ');
  if (negative) out.push_back('-');
  if (leadingZero) out.push_back('0');
  out.push_back('.');
  out.append(digits, static_cast<size_t>(d));
  out.append(expText, 4);
}

// A number in free form: an integer's digits, a real's shortest form.
void putFreeNumber(std::string& out, const FmtValue& v) {
  char buf[64];
  std::to_chars_result r{};
  if (v.kind == FmtValue::Kind::Int) {
    r = std::to_chars(buf, buf + sizeof buf, v.i);
  } else {
    r = std::to_chars(buf, buf + sizeof buf, v.r);
  }
  out.append(buf, static_cast<size_t>(r.ptr - buf));
}

void mismatch() { assert(!notationStrict && "template item and value kinds differ"); }

void putValue(std::string& out, const Node& n, const FmtValue& v) {
  using K = FmtValue::Kind;
  switch (n.op) {
    case Op::Int:
      if (v.kind == K::Int) {
        putInt(out, n.a, v.i);
      } else if (v.kind == K::Real && std::isfinite(v.r) && std::fabs(v.r) < 9.2e18) {
        putInt(out, n.a, std::llround(v.r));
      } else {
        if (v.kind == K::Text) mismatch();
        putStars(out, n.a);
      }
      return;
    case Op::Fix:
    case Op::Exp: {
      if (v.kind == K::Text) {
        mismatch();
        putStars(out, n.a);
        return;
      }
      const double x = v.kind == K::Int ? static_cast<double>(v.i) : v.r;
      if (n.op == Op::Fix) {
        putFixed(out, n.a, n.b, x);
      } else {
        putExp(out, n.a, n.b, x);
      }
      return;
    }
    case Op::TextW:
    case Op::TextFull: {
      std::string number;
      std::string_view text = v.s;
      if (v.kind != K::Text) {
        putFreeNumber(number, v);
        text = number;
      }
      if (n.op == Op::TextFull) {
        out.append(text);
      } else if (text.size() >= static_cast<size_t>(n.a)) {
        out.append(text.substr(0, static_cast<size_t>(n.a)));
      } else {
        out.append(static_cast<size_t>(n.a) - text.size(), ' ');
        out.append(text);
      }
      return;
    }
    default:
      return;
  }
}

// ---- running a template ---------------------------------------------------------------------

template <class Sink>
void runTemplate(std::string_view tmpl, std::span<const FmtValue> values, Sink&& emit) {
  const Program& prog = compiled(tmpl);
  assert((!notationStrict || !prog.malformed) && "malformed report template");
  const std::vector<Node>& nodes = prog.nodes;
  // Remaining passes of each group, by the index of its Open node.
  static std::vector<int32_t> passes;
  if (passes.size() < nodes.size()) passes.resize(nodes.size());

  // One line buffer for every call: runTemplate is never re-entered (a sink only writes).
  static std::string line;
  line.clear();
  size_t next = 0;            // next value
  bool tookValue = false;     // a value was taken since the last (re)start
  size_t pc = 0;
  // Work allowed between two values: a report template spends a few hundred steps and
  // characters there; nested repeat counts of text alone could spend billions.
  constexpr int64_t kBudget = int64_t{1} << 20;
  int64_t budget = kBudget;
  while (true) {
    if (--budget < 0) {
      assert(!notationStrict && "report template runs away without taking values");
      emit(std::string_view(line));
      return;
    }
    if (pc == nodes.size()) {
      // The template ends the line; with values left it starts again.
      emit(std::string_view(line));
      if (next == values.size() || !tookValue || !prog.restartHasData) return;
      line.clear();
      pc = static_cast<size_t>(prog.restart);
      tookValue = false;
      continue;
    }
    const Node& n = nodes[pc];
    switch (n.op) {
      case Op::Lit:
        line.append(prog.pool, static_cast<size_t>(n.a), static_cast<size_t>(n.b));
        budget -= n.b;
        break;
      case Op::Blank:
        line.append(static_cast<size_t>(n.a), ' ');
        budget -= n.a;
        break;
      case Op::Slash:
        budget -= n.a;
        for (int32_t k = 0; k < n.a; ++k) {
          emit(std::string_view(line));
          line.clear();
        }
        break;
      case Op::Open:
        passes[pc] = n.a;
        break;
      case Op::Close:
        if (--passes[static_cast<size_t>(n.a)] > 0) {
          pc = static_cast<size_t>(n.a) + 1;
          continue;
        }
        break;
      default:  // a data item
        for (int32_t k = 0; k < n.repeat; ++k) {
          if (next == values.size()) {
            emit(std::string_view(line));
            return;
          }
          putValue(line, n, values[next++]);
          tookValue = true;
          budget = kBudget;
        }
        break;
    }
    ++pc;
  }
}

void emitTo(Channel& channel, std::string_view line) {
  if (channel.file != nullptr) {
    std::fwrite(line.data(), 1, line.size(), channel.file);
    std::fputc('\n', channel.file);
  }
  if (channel.lines != nullptr) channel.lines->emplace_back(line);
}

}  // namespace

std::vector<std::string> formatTemplate(std::string_view tmpl, std::span<const FmtValue> values) {
  std::vector<std::string> lines;
  runTemplate(tmpl, values, [&](std::string_view line) { lines.emplace_back(line); });
  return lines;
}

std::vector<std::string> formatTemplate(std::string_view tmpl,
                                        std::initializer_list<FmtValue> values) {
  return formatTemplate(tmpl, std::span<const FmtValue>(values.begin(), values.size()));
}

void writeLine(Channel& channel, std::string_view tmpl, std::span<const FmtValue> values) {
  runTemplate(tmpl, values, [&](std::string_view line) { emitTo(channel, line); });
}

void writeLine(Channel& channel, std::string_view tmpl, std::initializer_list<FmtValue> values) {
  writeLine(channel, tmpl, std::span<const FmtValue>(values.begin(), values.size()));
}

std::string formatFree(std::initializer_list<FmtValue> items) {
  std::string line(1, ' ');
  for (const FmtValue& v : items) {
    if (v.kind == FmtValue::Kind::Text) {
      line.append(v.s);
    } else {
      putFreeNumber(line, v);
    }
  }
  return line;
}

void writeFree(Channel& channel, std::initializer_list<FmtValue> items) {
  emitTo(channel, formatFree(items));
}

void writeRaw(Channel& channel, std::string_view line) { emitTo(channel, line); }

bool templateIsWellFormed(std::string_view tmpl) { return !compiled(tmpl).malformed; }
