#include "host/names.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <unordered_map>

#include "host/name_table.h"

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

std::string_view trimView(std::string_view s) {
  while (!s.empty() && isBlank(s.front())) s.remove_prefix(1);
  while (!s.empty() && isBlank(s.back())) s.remove_suffix(1);
  return s;
}

// Labels between the brackets of `inner` into `labels`, whose strings are reused; false when
// they do not read as a label list.
bool splitLabels(std::string_view inner, std::vector<HostLabel>& labels) {
  std::size_t i = 0, count = 0;
  const std::size_t n = inner.size();
  while (true) {
    while (i < n && isBlank(inner[i])) ++i;
    if (i == n) return false;  // empty label
    if (count == labels.size()) labels.emplace_back();
    HostLabel& label = labels[count++];
    label.text.clear();
    label.quote = ' ';
    if (inner[i] == '\'' || inner[i] == '"') {
      const char q = inner[i++];
      bool closed = false;
      while (i < n) {
        if (inner[i] == q) {
          if (i + 1 < n && inner[i + 1] == q) {  // a doubled quote stands for one
            label.text += q;
            i += 2;
            continue;
          }
          ++i;
          closed = true;
          break;
        }
        label.text += inner[i++];
      }
      if (!closed) return false;
      label.quote = q;
      while (i < n && isBlank(inner[i])) ++i;
    } else {
      const std::size_t start = i;
      while (i < n && inner[i] != ',') {
        if (inner[i] == '\'' || inner[i] == '"' || inner[i] == '(' || inner[i] == ')' ||
            inner[i] == '[' || inner[i] == ']')
          return false;
        ++i;
      }
      label.text.assign(trimView(inner.substr(start, i - start)));
      if (label.text.empty()) return false;
    }
    if (i == n) {
      labels.resize(count);
      return true;
    }
    if (inner[i] != ',') return false;
    ++i;
  }
}

bool isControl(char c) {
  const auto u = static_cast<unsigned char>(c);
  return u < 32 || u == 127;
}

}  // namespace

std::string hostNameFault(std::string_view name) {
  for (const char c : name) {
    if (!isControl(c)) continue;
    char code[8];
    std::snprintf(code, sizeof code, "%d", static_cast<unsigned char>(c));
    return "the name \"" + hostShownName(name) + "\" holds a control character (code " + code +
           ")";
  }
  return {};
}

std::string hostShownName(std::string_view name) {
  std::string out;
  out.reserve(name.size());
  for (const char c : name) {
    if (!isControl(c)) {
      out += c;
    } else if (c == '\n') {
      out += "\\n";
    } else if (c == '\t') {
      out += "\\t";
    } else if (c == '\r') {
      out += "\\r";
    } else {
      char hex[8];
      std::snprintf(hex, sizeof hex, "\\x%02X", static_cast<unsigned char>(c));
      out += hex;
    }
  }
  return out;
}

namespace {

// The name split at `at`: symbol before, one label after; a scalar when either part is empty,
// except that a name beginning with the split gets the digit symbol.
void splitAt(std::string_view name, std::size_t at, bool digitSymbol, HostName& out) {
  out.full.assign(name);
  if (at >= name.size() || (at == 0 && !digitSymbol)) {
    out.symbol = out.full;
    out.labels.clear();
    return;
  }
  out.symbol.assign(at == 0 ? kDigitSymbol : name.substr(0, at));
  out.labels.resize(1);
  out.labels[0].text.assign(name.substr(at));
  out.labels[0].quote = ' ';
}

// A name with brackets: true with `out` filled when they read as a label list, else false
// with `out` a scalar symbol of the full name.
bool parseBrackets(std::string_view name, HostName& out) {
  out.full.assign(name);
  const std::size_t open = name.find_first_of("[(");
  const char close = name[open] == '[' ? ']' : ')';
  if (open > 0 && name.back() == close && name.size() >= open + 2 &&
      splitLabels(name.substr(open + 1, name.size() - open - 2), out.labels)) {
    out.symbol.assign(trimView(name.substr(0, open)));
    if (!out.symbol.empty()) return true;
  }
  out.labels.clear();
  out.symbol = out.full;
  return false;
}

}  // namespace

bool parseSymbolRule(std::string_view word, SymbolRule& rule) {
  static constexpr std::pair<const char*, SymbolRuleKind> kWords[] = {
      {"auto", SymbolRuleKind::Auto},
      {"scalar", SymbolRuleKind::Scalar},
      {"trailing-digits", SymbolRuleKind::TrailingDigits},
      {"before-digit", SymbolRuleKind::BeforeDigit},
  };
  for (const auto& [text, kind] : kWords)
    if (word == text) {
      rule = SymbolRule{kind, 0};
      return true;
    }
  constexpr std::string_view kFirst = "first:";
  if (word.substr(0, kFirst.size()) != kFirst) return false;
  const std::string_view digits = word.substr(kFirst.size());
  if (digits.empty() || digits.size() > 2) return false;
  int32_t n = 0;
  for (char c : digits) {
    if (!isDigit(c)) return false;
    n = n * 10 + (c - '0');
  }
  if (n < 1 || n >= static_cast<int32_t>(kHostLabelLen)) return false;
  rule = SymbolRule{SymbolRuleKind::First, n};
  return true;
}

std::string symbolRuleName(const SymbolRule& rule) {
  switch (rule.kind) {
    case SymbolRuleKind::Auto: return "auto";
    case SymbolRuleKind::Scalar: return "scalar";
    case SymbolRuleKind::TrailingDigits: return "trailing-digits";
    case SymbolRuleKind::BeforeDigit: return "before-digit";
    case SymbolRuleKind::First: return "first:" + std::to_string(rule.first);
  }
  return "auto";
}

void hostParseName(std::string_view raw, const SymbolRule& rule, HostName& out) {
  const std::string_view name = trimView(raw);
  if (name.find_first_of("[(") != std::string_view::npos) {
    parseBrackets(name, out);
    return;
  }
  switch (rule.kind) {
    case SymbolRuleKind::TrailingDigits: {
      std::size_t stem = name.size();
      while (stem > 0 && isDigit(name[stem - 1])) --stem;
      return splitAt(name, stem == name.size() ? name.size() : stem, false, out);
    }
    case SymbolRuleKind::BeforeDigit: {
      std::size_t at = 0;
      while (at < name.size() && !isDigit(name[at])) ++at;
      return splitAt(name, at, true, out);
    }
    case SymbolRuleKind::First:
      return splitAt(name, static_cast<std::size_t>(rule.first), false, out);
    default:
      return splitAt(name, name.size(), false, out);
  }
}

HostName hostParseName(std::string_view raw, const SymbolRule& rule) {
  HostName out;
  hostParseName(raw, rule, out);
  return out;
}

HostName hostParseName(std::string_view raw) {
  return hostParseName(raw, SymbolRule{SymbolRuleKind::TrailingDigits, 0});
}

SymbolRule hostResolveSymbolRule(
    const SymbolRule& asked,
    const std::function<void(const std::function<void(std::string_view)>&)>& forEach) {
  if (asked.kind != SymbolRuleKind::Auto) return asked;
  bool brackets = false;
  forEach([&](std::string_view name) {
    if (brackets || name.find_first_of("[(") == std::string_view::npos) return;
    HostName parsed;
    brackets = parseBrackets(trimView(name), parsed);
  });
  if (brackets) return SymbolRule{SymbolRuleKind::Scalar, 0};
  // Symbols a rule makes, counted up to one past the limit.
  auto fits = [&](const SymbolRule& rule) {
    std::unordered_map<std::string, char> seen;
    forEach([&](std::string_view name) {
      if (static_cast<int32_t>(seen.size()) > kAutoSymbolLimit) return;
      seen.emplace(hostParseName(name, rule).symbol, 0);
    });
    return static_cast<int32_t>(seen.size()) <= kAutoSymbolLimit;
  };
  const SymbolRule beforeDigit{SymbolRuleKind::BeforeDigit, 0};
  if (fits(beforeDigit)) return beforeDigit;
  for (int32_t n = 8; n > 1; --n)
    if (fits(SymbolRule{SymbolRuleKind::First, n})) return SymbolRule{SymbolRuleKind::First, n};
  return SymbolRule{SymbolRuleKind::First, 1};
}

HostName hostMakeName(std::string symbol, std::vector<HostLabel> labels) {
  HostName out;
  out.full = symbol;
  if (!labels.empty()) {
    out.full += '(';
    for (std::size_t k = 0; k < labels.size(); ++k) {
      if (k > 0) out.full += ',';
      if (labels[k].quote != ' ') out.full += labels[k].quote;
      out.full += labels[k].text;
      if (labels[k].quote != ' ') out.full += labels[k].quote;
    }
    out.full += ')';
  }
  out.symbol = std::move(symbol);
  out.labels = std::move(labels);
  return out;
}

std::string hostItemKey(const HostName& n) {
  std::string key = n.symbol;
  for (const HostLabel& l : n.labels) {
    key += '\x1f';
    key.append(l.text, 0, kHostLabelLen);  // as the dictionary keeps it
  }
  return key;
}

std::vector<std::pair<int32_t, HostName>> hostNameChanges(
    int32_t count, const HostNameAt& nameAt, const std::vector<char>& made) {
  HostKeyTable taken;
  taken.reserve(static_cast<std::size_t>(count));
  // True when `key` was not taken yet; it is taken now.
  const auto take = [&taken](const std::string& key) {
    const int32_t before = taken.size();
    return taken.insert(key) == before;
  };
  std::vector<int32_t> later;  // names from the file that are taken already, then made names
  // The keys of the file's names, each made kAhead names before it is taken and its slot asked
  // for from memory then: a table of a million keys is otherwise a wait on memory per name.
  constexpr int32_t kAhead = 8;
  std::array<std::string, kAhead> ahead;
  std::array<uint64_t, kAhead> aheadHash{};
  HostName name;  // reused for every name
  const auto prepare = [&](int32_t k) {
    if (k >= count || made[k]) return;
    nameAt(k, name);
    ahead[k % kAhead] = hostItemKey(name);
    aheadHash[k % kAhead] = taken.prefetch(ahead[k % kAhead]);
  };
  for (int32_t k = 0; k < std::min(kAhead, count); ++k) prepare(k);
  for (int32_t k = 0; k < count; ++k) {
    if (!made[k]) {
      const std::string& key = ahead[k % kAhead];
      const int32_t before = taken.size();
      if (taken.insert(key, aheadHash[k % kAhead]) != before) later.push_back(k);
    }
    prepare(k + kAhead);
  }
  for (int32_t k = 0; k < count; ++k)
    if (made[k]) later.push_back(k);
  std::vector<std::pair<int32_t, HostName>> changes;
  // The underscores tried last for a key: many names of one key go on from there, so that
  // the search stays linear in the names.
  std::unordered_map<std::string, std::size_t> tried;
  for (int32_t k : later) {
    nameAt(k, name);
    std::string key = hostItemKey(name);
    if (made[k] && take(key)) continue;
    std::size_t& underscores = tried[key];
    const std::string symbol = name.symbol;
    do {
      name = hostMakeName(symbol + std::string(++underscores, '_'), std::move(name.labels));
    } while (!take(hostItemKey(name)));
    changes.emplace_back(k, std::move(name));
  }
  std::sort(changes.begin(), changes.end(),
            [](const auto& a, const auto& b) { return a.first < b.first; });
  return changes;
}

void hostDistinctNames(std::vector<HostName>& names, const std::vector<char>& made) {
  auto changes = hostNameChanges(
      static_cast<int32_t>(names.size()),
      [&](int32_t k, HostName& out) { out = names[static_cast<std::size_t>(k)]; }, made);
  for (auto& [k, name] : changes) names[k] = std::move(name);
}

HostDictionaryBuilder::HostDictionaryBuilder(HostInstance& target) : inst(target) {
  inst.symbols.clear();
  inst.labels.clear();
  inst.rowSymbol.clear();
  inst.rowUels.clear();
  inst.rowUelStart.assign(1, 0);
  inst.colSymbol.clear();
  inst.colUels.clear();
  inst.colUelStart.assign(1, 0);
}

namespace {

int32_t newSymbol(HostInstance& inst, const std::string& name, bool isEquation, int32_t dim) {
  inst.symbols.push_back(HostSymbol{name, isEquation, dim});
  return static_cast<int32_t>(inst.symbols.size());
}

void placeName(HostDictionaryBuilder& b, const HostName& name, bool isEquation,
               std::vector<int32_t>& symbolVec, std::vector<int32_t>& starts,
               std::vector<int32_t>& uels) {
  HostInstance& inst = b.inst;
  auto& symbols = b.symbolOf[isEquation ? 1 : 0];
  const auto dim = static_cast<int32_t>(name.labels.size());
  auto [it, added] = symbols.try_emplace(name.symbol, 0);
  if (added) it->second = newSymbol(inst, name.symbol, isEquation, dim);
  int32_t symbol = it->second;
  bool withLabels = true;
  if (inst.symbols[symbol - 1].dim != dim) {
    withLabels = false;
    auto [fit, fadded] = symbols.try_emplace(name.full, 0);
    if (fadded) fit->second = newSymbol(inst, name.full, isEquation, 0);
    symbol = fit->second;
    if (inst.symbols[symbol - 1].dim != 0) {
      auto [sit, sadded] = b.scalarOf[isEquation ? 1 : 0].try_emplace(name.full, 0);
      if (sadded) sit->second = newSymbol(inst, name.full, isEquation, 0);
      symbol = sit->second;
    }
  }
  symbolVec.push_back(symbol);
  if (withLabels)
    for (const HostLabel& label : name.labels) {
      auto [lit, ladded] = b.uelOf.try_emplace(label.text, 0);
      if (ladded) {
        HostLabel kept = label;
        if (kept.text.size() > kHostLabelLen) kept.text.resize(kHostLabelLen);
        inst.labels.push_back(std::move(kept));
        lit->second = static_cast<int32_t>(inst.labels.size());
      }
      uels.push_back(lit->second);
    }
  starts.push_back(static_cast<int32_t>(uels.size()));
}

}  // namespace

void HostDictionaryBuilder::addRow(const HostName& name) {
  placeName(*this, name, true, inst.rowSymbol, inst.rowUelStart, inst.rowUels);
}

void HostDictionaryBuilder::addCol(const HostName& name) {
  placeName(*this, name, false, inst.colSymbol, inst.colUelStart, inst.colUels);
}

void HostDictionaryBuilder::addDistinct(bool rows, int32_t count,
                                        const HostNameAt& nameAt,
                                        const std::vector<char>& made) {
  const auto changes = hostNameChanges(count, nameAt, made);
  auto change = changes.begin();
  HostName name;  // reused for every name
  for (int32_t k = 0; k < count; ++k) {
    const bool changed = change != changes.end() && change->first == k;
    if (!changed) nameAt(k, name);
    const HostName& placed = changed ? (change++)->second : name;
    if (rows) addRow(placed);
    else addCol(placed);
  }
}

void hostBuildDictionary(HostInstance& inst, const std::vector<HostName>& rowNames,
                         const std::vector<HostName>& colNames) {
  HostDictionaryBuilder builder(inst);
  for (const HostName& name : rowNames) builder.addRow(name);
  for (const HostName& name : colNames) builder.addCol(name);
}
