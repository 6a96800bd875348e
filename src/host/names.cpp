#include "host/names.h"

#include <unordered_map>

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

std::string_view trimView(std::string_view s) {
  while (!s.empty() && isBlank(s.front())) s.remove_prefix(1);
  while (!s.empty() && isBlank(s.back())) s.remove_suffix(1);
  return s;
}

// Labels between the brackets of `inner`; false when they do not read as a label list.
bool splitLabels(std::string_view inner, std::vector<HostLabel>& labels) {
  std::size_t i = 0;
  const std::size_t n = inner.size();
  while (true) {
    while (i < n && isBlank(inner[i])) ++i;
    if (i == n) return false;  // empty label
    HostLabel label;
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
      label.text = std::string(trimView(inner.substr(start, i - start)));
      if (label.text.empty()) return false;
    }
    labels.push_back(std::move(label));
    if (i == n) return true;
    if (inner[i] != ',') return false;
    ++i;
  }
}

}  // namespace

HostName hostParseName(std::string_view raw) {
  const std::string_view name = trimView(raw);
  HostName out;
  out.full = std::string(name);
  const std::size_t open = name.find_first_of("[(");
  if (open != std::string_view::npos) {
    const char close = name[open] == '[' ? ']' : ')';
    std::vector<HostLabel> labels;
    if (open > 0 && name.back() == close && name.size() >= open + 2 &&
        splitLabels(name.substr(open + 1, name.size() - open - 2), labels)) {
      out.symbol = std::string(trimView(name.substr(0, open)));
      out.labels = std::move(labels);
      if (!out.symbol.empty()) return out;
      out.labels.clear();
    }
    out.symbol = out.full;
    return out;
  }
  std::size_t stem = name.size();
  while (stem > 0 && isDigit(name[stem - 1])) --stem;
  if (stem > 0 && stem < name.size()) {
    out.symbol = std::string(name.substr(0, stem));
    out.labels.push_back(HostLabel{std::string(name.substr(stem)), ' '});
    return out;
  }
  out.symbol = out.full;
  return out;
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

void hostBuildDictionary(HostInstance& inst, const std::vector<HostName>& rowNames,
                         const std::vector<HostName>& colNames) {
  inst.symbols.clear();
  inst.labels.clear();
  std::unordered_map<std::string, int32_t> uelOf;
  // Symbols by name, one table per kind; a second table holds the scalar symbols made for names
  // that break their symbol's label count when that full name is already a symbol with labels.
  std::unordered_map<std::string, int32_t> symbolOf[2];
  std::unordered_map<std::string, int32_t> scalarOf[2];

  auto newSymbol = [&](const std::string& name, bool isEquation, int32_t dim) {
    inst.symbols.push_back(HostSymbol{name, isEquation, dim});
    return static_cast<int32_t>(inst.symbols.size());
  };
  auto uel = [&](const HostLabel& label) {
    auto [it, added] = uelOf.try_emplace(label.text, 0);
    if (added) {
      HostLabel kept = label;
      if (kept.text.size() > kHostLabelLen) kept.text.resize(kHostLabelLen);
      inst.labels.push_back(std::move(kept));
      it->second = static_cast<int32_t>(inst.labels.size());
    }
    return it->second;
  };
  auto place = [&](const HostName& name, bool isEquation, std::vector<int32_t>& symbolVec,
                   std::vector<int32_t>& starts, std::vector<int32_t>& uels) {
    auto& symbols = symbolOf[isEquation ? 1 : 0];
    const auto dim = static_cast<int32_t>(name.labels.size());
    auto [it, added] = symbols.try_emplace(name.symbol, 0);
    if (added) it->second = newSymbol(name.symbol, isEquation, dim);
    int32_t symbol = it->second;
    bool withLabels = true;
    if (inst.symbols[symbol - 1].dim != dim) {
      withLabels = false;
      auto [fit, fadded] = symbols.try_emplace(name.full, 0);
      if (fadded) fit->second = newSymbol(name.full, isEquation, 0);
      symbol = fit->second;
      if (inst.symbols[symbol - 1].dim != 0) {
        auto [sit, sadded] = scalarOf[isEquation ? 1 : 0].try_emplace(name.full, 0);
        if (sadded) sit->second = newSymbol(name.full, isEquation, 0);
        symbol = sit->second;
      }
    }
    symbolVec.push_back(symbol);
    if (withLabels)
      for (const HostLabel& label : name.labels) uels.push_back(uel(label));
    starts.push_back(static_cast<int32_t>(uels.size()));
  };

  inst.rowSymbol.clear();
  inst.rowUels.clear();
  inst.rowUelStart.assign(1, 0);
  for (const HostName& name : rowNames)
    place(name, true, inst.rowSymbol, inst.rowUelStart, inst.rowUels);
  inst.colSymbol.clear();
  inst.colUels.clear();
  inst.colUelStart.assign(1, 0);
  for (const HostName& name : colNames)
    place(name, false, inst.colSymbol, inst.colUelStart, inst.colUels);
}
