// The native instance: one JSON object with rows, columns and their entries (docs/host.md).
#include <cmath>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <unordered_map>

#include "host/names.h"
#include "host/readers_internal.h"

using nlohmann::json;

namespace {

// A step of the way to a value: a member name, or an element number when `key` is empty.
struct PathStep {
  std::string key;
  std::size_t index = 0;
};
using Path = std::vector<PathStep>;

Path operator+(Path p, PathStep s) {
  p.push_back(std::move(s));
  return p;
}
PathStep member(std::string key) { return PathStep{std::move(key), 0}; }
PathStep element(std::size_t index) { return PathStep{std::string(), index}; }

// Walks the text of a valid JSON document to the value at a path and gives its line. The parser
// keeps no positions, so a message about a value finds its line here, once, when it is written.
struct LineScanner {
  const std::string& text;
  std::size_t pos = 0;
  int line = 1;

  void blanks() {
    while (pos < text.size() && (text[pos] == ' ' || text[pos] == '\t' || text[pos] == '\n' ||
                                 text[pos] == '\r')) {
      if (text[pos] == '\n') ++line;
      ++pos;
    }
  }
  std::string string() {  // at the opening quote; escapes are kept as written
    std::string out;
    ++pos;
    while (pos < text.size() && text[pos] != '"') {
      if (text[pos] == '\\' && pos + 1 < text.size()) out += text[pos++];
      out += text[pos++];
    }
    ++pos;
    return out;
  }
  // Arrays and objects are passed over by counting their brackets, without recursion, so that
  // no depth of nesting can exhaust the stack.
  void skipValue() {
    blanks();
    if (pos >= text.size()) return;
    const char c = text[pos];
    if (c == '"') {
      string();
    } else if (c == '{' || c == '[') {
      std::size_t depth = 0;
      while (pos < text.size()) {
        const char d = text[pos];
        if (d == '"') {
          string();
          continue;
        }
        if (d == '\n') ++line;
        ++pos;
        if (d == '{' || d == '[') {
          ++depth;
        } else if ((d == '}' || d == ']') && --depth == 0) {
          return;
        }
      }
    } else {
      while (pos < text.size() && text[pos] != ',' && text[pos] != '}' && text[pos] != ']' &&
             text[pos] != ' ' && text[pos] != '\n' && text[pos] != '\r' && text[pos] != '\t')
        ++pos;
    }
  }
  // Moves to the value at the path, as far as it exists; gives the line where it starts.
  int find(const Path& path) {
    blanks();
    for (const PathStep& step : path) {
      if (pos >= text.size()) break;
      const int here = line;
      const std::size_t start = pos;
      bool found = false;
      if (text[pos] == '{' && !step.key.empty()) {
        ++pos;
        blanks();
        while (pos < text.size() && text[pos] == '"') {
          const std::string key = string();
          blanks();
          ++pos;  // ':'
          blanks();
          if (key == step.key) {
            found = true;
            break;
          }
          skipValue();
          blanks();
          if (pos < text.size() && text[pos] == ',') ++pos;
          blanks();
        }
      } else if (text[pos] == '[' && step.key.empty()) {
        ++pos;
        blanks();
        for (std::size_t k = 0; pos < text.size() && text[pos] != ']'; ++k) {
          if (k == step.index) {
            found = true;
            break;
          }
          skipValue();
          blanks();
          if (pos < text.size() && text[pos] == ',') ++pos;
          blanks();
        }
      }
      if (!found) {
        pos = start;
        return here;
      }
    }
    return line;
  }
};

struct JsonReader {
  const std::string& path;
  const std::string& text;
  std::string& error;

  bool fail(const Path& where, const std::string& what) {
    LineScanner scanner{text};
    error = path + ":" + std::to_string(scanner.find(where)) + ": " + hostShownName(what);
    return false;
  }
};

std::string describe(const Path& p) {
  std::string out;
  for (const PathStep& s : p) {
    if (!s.key.empty())
      out += (out.empty() ? "" : ".") + s.key;
    else
      out += "[" + std::to_string(s.index + 1) + "]";
  }
  return out;
}

bool boundValue(const json& v, double& out) {
  if (v.is_number()) {
    out = v.get<double>();
    return std::isfinite(out);
  }
  if (!v.is_string()) return false;
  std::string s = v.get<std::string>();
  for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  if (s == "inf" || s == "+inf") {
    out = kHostInf;
    return true;
  }
  if (s == "-inf") {
    out = -kHostInf;
    return true;
  }
  return false;
}

bool rowTypeWord(std::string s, int32_t& type) {
  for (char& c : s) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  static const char* const words[] = {"E", "G", "L", "N"};
  for (int32_t t = 0; t < 4; ++t)
    if (s == words[t] || s == std::string("=") + words[t] + "=") {
      type = t;
      return true;
    }
  return false;
}

bool colTypeWord(std::string s, int32_t& type) {
  for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  static const char* const words[] = {"continuous", "binary", "integer", "sos1",
                                      "sos2",       "semicont", "semiint"};
  for (int32_t t = 0; t < 7; ++t)
    if (s == words[t]) {
      type = t;
      return true;
    }
  return false;
}

std::string baseName(const std::string& path) {
  std::string base = path.substr(path.find_last_of('/') + 1);
  const auto dot = base.find_last_of('.');
  if (dot != std::string::npos && dot > 0) base.resize(dot);
  return base;
}

// The document builder of the parser, keeping where and why parsing failed instead of throwing.
// A syntax error and a number too large for a double (1e400) come here alike, with the byte.
struct ParseErrorKeeper : nlohmann::detail::json_sax_dom_parser<json> {
  std::size_t byte = 0;
  std::string what;
  explicit ParseErrorKeeper(json& document) : json_sax_dom_parser(document, false) {}
  template <class Exception>
  bool parse_error(std::size_t position, const std::string& token, const Exception& ex) {
    byte = position;
    what = ex.what();
    return json_sax_dom_parser::parse_error(position, token, ex);
  }
};

}  // namespace

bool readJsonModel(const std::string& path, HostInstance& inst, std::string& error) {
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    error = path + ": cannot open the model file";
    return false;
  }
  std::ostringstream buffer;
  buffer << in.rdbuf();
  const std::string text = buffer.str();
  json doc;
  ParseErrorKeeper parser(doc);
  json::sax_parse(text, &parser);
  if (parser.is_errored()) {
    const std::size_t byte = std::min<std::size_t>(parser.byte, text.size());
    int line = 1;
    for (std::size_t k = 0; k + 1 < byte; ++k)
      if (text[k] == '\n') ++line;
    std::string what = parser.what;
    if (auto c = what.find("column "); c != std::string::npos) {
      if (auto colon = what.find(": ", c); colon != std::string::npos) what.erase(0, colon + 2);
    } else if (auto head = what.find("] "); what.starts_with("[") && head != std::string::npos) {
      what.erase(0, head + 2);
    }
    error = path + ":" + std::to_string(line) + ": not valid JSON: " + what;
    return false;
  }
  JsonReader r{path, text, error};
  if (!doc.is_object()) return r.fail({}, "the model must be a JSON object");

  static const char* const topKeys[] = {"name", "sense", "scaled", "objVar", "objRow",
                                        "rowCount", "colCount", "rows", "cols", "modelStat",
                                        "solveStat", "comment"};
  for (auto it = doc.begin(); it != doc.end(); ++it) {
    bool known = false;
    for (const char* k : topKeys) known = known || it.key() == k;
    if (!known) return r.fail({member(it.key())}, "unknown field \"" + it.key() + "\"");
  }

  inst = HostInstance{};
  inst.sourcePath = path;
  inst.inputName = baseName(path);
  if (doc.contains("name")) {
    if (!doc["name"].is_string() || doc["name"].get<std::string>().empty())
      return r.fail({member("name")}, "\"name\" must be a non-empty string");
    inst.inputName = doc["name"].get<std::string>();
    if (const std::string fault = hostNameFault(inst.inputName); !fault.empty())
      return r.fail({member("name")}, fault);
  }
  if (doc.contains("sense")) {
    const json& s = doc["sense"];
    if (!s.is_string() || (s != "min" && s != "max"))
      return r.fail({member("sense")}, "\"sense\" must be \"min\" or \"max\"");
    inst.minimizing = s == "min";
  }
  if (doc.contains("scaled")) {
    if (!doc["scaled"].is_boolean()) return r.fail({member("scaled")}, "\"scaled\" must be true or false");
    inst.hasScale = doc["scaled"].get<bool>();
  }
  auto wholeNumber = [&](const char* key, int64_t low, int64_t high, int32_t& out) {
    const json& v = doc[key];
    if (!v.is_number_integer() || v.get<int64_t>() < low || v.get<int64_t>() > high)
      return r.fail({member(key)}, std::string("\"") + key + "\" must be a whole number from " +
                                       std::to_string(low) + " to " + std::to_string(high));
    out = static_cast<int32_t>(v.get<int64_t>());
    return true;
  };
  bool solutionGiven = false;
  if (doc.contains("modelStat")) {
    if (!wholeNumber("modelStat", 1, 14, inst.modelStat)) return false;
    solutionGiven = inst.modelStat != kStatNoSolutionReturned;
  }
  if (doc.contains("solveStat") && !wholeNumber("solveStat", 1, 13, inst.solveStat))
    return false;

  static const json emptyArray = json::array();
  const json& rows = doc.contains("rows") ? doc["rows"] : emptyArray;
  const json& cols = doc.contains("cols") ? doc["cols"] : emptyArray;
  if (!rows.is_array()) return r.fail({member("rows")}, "\"rows\" must be an array");
  if (!cols.is_array()) return r.fail({member("cols")}, "\"cols\" must be an array");
  for (const char* key : {"rowCount", "colCount"}) {
    if (!doc.contains(key)) continue;
    const json& v = doc[key];
    if (!v.is_number_integer())
      return r.fail({member(key)}, std::string("\"") + key + "\" must be a whole number");
    if (!v.is_number_unsigned() && v.get<int64_t>() < 0)
      return r.fail({member(key)}, std::string("\"") + key + "\" is negative");
    const std::size_t have = key[0] == 'r' ? rows.size() : cols.size();
    if (v.get<uint64_t>() != have)
      return r.fail({member(key)}, std::string("\"") + key + "\" is " + v.dump() + " but " +
                                       (key[0] == 'r' ? "\"rows\"" : "\"cols\"") + " has " +
                                       std::to_string(have));
  }
  if (rows.size() > 2000000000u || cols.size() > 2000000000u)
    return r.fail({}, "too many rows or columns");
  inst.rowCount = static_cast<int32_t>(rows.size());
  inst.colCount = static_cast<int32_t>(cols.size());
  const auto m = rows.size();
  const auto n = cols.size();

  // Name, or symbol and labels, of a row or column.
  auto readNameParts = [&](const json& item, const Path& at, HostName& name) {
    const bool hasName = item.contains("name"), hasSymbol = item.contains("symbol");
    if (hasName && hasSymbol) return r.fail(at, "give \"name\" or \"symbol\", not both");
    if (hasName) {
      if (!item["name"].is_string() || item["name"].get<std::string>().empty())
        return r.fail(at + member("name"), "\"name\" must be a non-empty string");
      name = hostParseName(item["name"].get<std::string>());
      if (name.symbol.empty()) return r.fail(at + member("name"), "\"name\" is blank");
      if (item.contains("labels")) return r.fail(at + member("labels"), "\"labels\" go with \"symbol\", not with \"name\"");
      return true;
    }
    if (!hasSymbol) return r.fail(at, describe(at) + " has neither \"name\" nor \"symbol\"");
    if (!item["symbol"].is_string() || item["symbol"].get<std::string>().empty())
      return r.fail(at + member("symbol"), "\"symbol\" must be a non-empty string");
    std::vector<HostLabel> labels;
    if (item.contains("labels")) {
      const json& ls = item["labels"];
      if (!ls.is_array()) return r.fail(at + member("labels"), "\"labels\" must be an array");
      for (std::size_t k = 0; k < ls.size(); ++k) {
        const Path lp = at + member("labels") + element(k);
        HostLabel label;
        if (ls[k].is_string()) {
          label.text = ls[k].get<std::string>();
        } else if (ls[k].is_object() && ls[k].contains("text") && ls[k]["text"].is_string()) {
          label.text = ls[k]["text"].get<std::string>();
          for (auto it = ls[k].begin(); it != ls[k].end(); ++it)
            if (it.key() != "text" && it.key() != "quote")
              return r.fail(lp, "unknown field \"" + it.key() + "\" in a label");
          if (ls[k].contains("quote")) {
            const json& q = ls[k]["quote"];
            if (!q.is_string() || (q != "'" && q != "\"" && q != " " && q != ""))
              return r.fail(lp, "a label's \"quote\" must be \"'\" or \"\\\"\"");
            const std::string qs = q.get<std::string>();
            label.quote = qs.empty() ? ' ' : qs[0];
          }
        } else {
          return r.fail(lp, "a label must be a string or {\"text\": ..., \"quote\": ...}");
        }
        if (label.text.empty()) return r.fail(lp, "a label is empty");
        labels.push_back(std::move(label));
      }
    }
    name = hostMakeName(item["symbol"].get<std::string>(), std::move(labels));
    return true;
  };
  auto readName = [&](const json& item, const Path& at, HostName& name) {
    if (!readNameParts(item, at, name)) return false;
    const std::string fault = hostNameFault(name.full);
    return fault.empty() || r.fail(at, fault);
  };
  auto realField = [&](const json& item, const Path& at, const char* key, double& out) {
    if (!item.contains(key)) return true;
    const json& v = item[key];
    if (!v.is_number() || !std::isfinite(v.get<double>()))
      return r.fail(at + member(key), std::string("\"") + key + "\" must be a number");
    out = v.get<double>();
    return true;
  };
  auto statField = [&](const json& item, const Path& at, const char* key, int32_t& out) {
    if (!item.contains(key)) return true;
    const json& v = item[key];
    if (!v.is_number_integer() || v.get<int64_t>() < 0 || v.get<int64_t>() > 3)
      return r.fail(at + member(key), std::string("\"") + key + "\" must be a whole number from 0 to 3");
    out = static_cast<int32_t>(v.get<int64_t>());
    return true;
  };
  auto scaleField = [&](const json& item, const Path& at, double& out) {
    if (!item.contains("scale")) return true;
    if (!inst.hasScale)
      return r.fail(at + member("scale"), "\"scale\" given but the model is not \"scaled\"");
    if (!realField(item, at, "scale", out)) return false;
    if (!(out > 0)) return r.fail(at + member("scale"), "\"scale\" must be above 0");
    return true;
  };
  static const char* const rowKeys[] = {"name", "symbol", "labels", "type", "rhs", "scale",
                                        "level", "marginal", "stat", "cstat", "comment"};
  static const char* const colKeys[] = {"name",  "symbol", "labels", "type", "lower", "upper",
                                        "scale", "level",  "marginal", "stat", "cstat",
                                        "entries", "comment"};
  auto knownKeys = [&](const json& item, const Path& at, const auto& keys) {
    for (auto it = item.begin(); it != item.end(); ++it) {
      bool known = false;
      for (const char* k : keys) known = known || it.key() == k;
      if (!known) return r.fail(at + member(it.key()), "unknown field \"" + it.key() + "\"");
    }
    return true;
  };

  std::vector<HostName> rowNames(m), colNames(n);
  std::unordered_map<std::string, int32_t> rowOf, colOf;  // item key -> 0-based index
  std::vector<bool> rowStatGiven(m, false), colStatGiven(n, false);
  inst.rowType.assign(m, kRowE);
  inst.rowRhs.assign(m, 0.0);
  inst.rowScale.assign(m, 1.0);
  inst.rowLevel.assign(m, 0.0);
  inst.rowMarginal.assign(m, 0.0);
  inst.rowStat.assign(m, 0);
  inst.rowCStat.assign(m, 0);
  for (std::size_t i = 0; i < m; ++i) {
    const json& row = rows[i];
    const Path at{member("rows"), element(i)};
    if (!row.is_object()) return r.fail(at, "row " + std::to_string(i + 1) + " must be an object");
    if (!knownKeys(row, at, rowKeys) || !readName(row, at, rowNames[i])) return false;
    auto [it, added] = rowOf.try_emplace(hostItemKey(rowNames[i]), static_cast<int32_t>(i));
    if (!added)
      return r.fail(at, "row \"" + rowNames[i].full + "\" is named twice (also row " +
                            std::to_string(it->second + 1) + ")");
    if (!row.contains("type")) return r.fail(at, "row \"" + rowNames[i].full + "\" has no \"type\"");
    if (!row["type"].is_string() || !rowTypeWord(row["type"].get<std::string>(), inst.rowType[i]))
      return r.fail(at + member("type"), "unknown row type " + row["type"].dump() +
                                              " (=E=, =G=, =L= or =N=)");
    if (!realField(row, at, "rhs", inst.rowRhs[i]) || !scaleField(row, at, inst.rowScale[i]) ||
        !realField(row, at, "level", inst.rowLevel[i]) ||
        !realField(row, at, "marginal", inst.rowMarginal[i]))
      return false;
    solutionGiven = solutionGiven || row.contains("level") || row.contains("marginal");
    if (!statField(row, at, "stat", inst.rowStat[i]) ||
        !statField(row, at, "cstat", inst.rowCStat[i]))
      return false;
    rowStatGiven[i] = row.contains("stat");
  }

  inst.colType.assign(n, kVarContinuous);
  inst.colLower.assign(n, 0.0);
  inst.colUpper.assign(n, kHostInf);
  inst.colScale.assign(n, 1.0);
  inst.colLevel.assign(n, 0.0);
  inst.colMarginal.assign(n, 0.0);
  inst.colStat.assign(n, 0);
  inst.colCStat.assign(n, 0);
  inst.colStart.assign(n + 1, 0);
  std::vector<int32_t> lastColOfRow(m, -1);
  for (std::size_t j = 0; j < n; ++j) {
    const json& col = cols[j];
    const Path at{member("cols"), element(j)};
    if (!col.is_object())
      return r.fail(at, "column " + std::to_string(j + 1) + " must be an object");
    if (!knownKeys(col, at, colKeys) || !readName(col, at, colNames[j])) return false;
    auto [it, added] = colOf.try_emplace(hostItemKey(colNames[j]), static_cast<int32_t>(j));
    if (!added)
      return r.fail(at, "column \"" + colNames[j].full + "\" is named twice (also column " +
                            std::to_string(it->second + 1) + ")");
    if (col.contains("type") && (!col["type"].is_string() ||
                                 !colTypeWord(col["type"].get<std::string>(), inst.colType[j])))
      return r.fail(at + member("type"),
                    "unknown column type " + col["type"].dump() +
                        " (continuous, binary, integer, sos1, sos2, semicont or semiint)");
    if (inst.colType[j] == kVarBinary) inst.colUpper[j] = 1.0;
    for (const char* key : {"lower", "upper"}) {
      if (!col.contains(key)) continue;
      double& bound = key[0] == 'l' ? inst.colLower[j] : inst.colUpper[j];
      if (!boundValue(col[key], bound))
        return r.fail(at + member(key), std::string("\"") + key +
                                            "\" must be a number, \"inf\" or \"-inf\"");
    }
    if (!scaleField(col, at, inst.colScale[j]) || !realField(col, at, "level", inst.colLevel[j]) ||
        !realField(col, at, "marginal", inst.colMarginal[j]))
      return false;
    solutionGiven = solutionGiven || col.contains("level") || col.contains("marginal");
    if (!statField(col, at, "stat", inst.colStat[j]) ||
        !statField(col, at, "cstat", inst.colCStat[j]))
      return false;
    colStatGiven[j] = col.contains("stat");

    if (col.contains("entries")) {
      const json& entries = col["entries"];
      const Path ep = at + member("entries");
      if (!entries.is_array()) return r.fail(ep, "\"entries\" must be an array");
      for (std::size_t k = 0; k < entries.size(); ++k) {
        const json& e = entries[k];
        const Path kp = ep + element(k);
        if (!e.is_array() || e.size() < 2 || e.size() > 3)
          return r.fail(kp, "an entry must be [row, value] or [row, value, \"nonlinear\"]");
        int32_t row = -1;
        if (e[0].is_number_integer()) {
          const int64_t v = e[0].get<int64_t>();
          if (v < 1 || v > static_cast<int64_t>(m))
            return r.fail(kp, "entry row " + e[0].dump() + " does not exist (rows 1 to " +
                                  std::to_string(m) + ")");
          row = static_cast<int32_t>(v - 1);
        } else if (e[0].is_string()) {
          auto found = rowOf.find(hostItemKey(hostParseName(e[0].get<std::string>())));
          if (found == rowOf.end())
            return r.fail(kp, "entry row " + e[0].dump() + " does not exist");
          row = found->second;
        } else {
          return r.fail(kp, "an entry's row must be a name or a number from 1");
        }
        if (!e[1].is_number() || !std::isfinite(e[1].get<double>()))
          return r.fail(kp, "an entry's value must be a number");
        int32_t nonlinear = 0;
        if (e.size() == 3) {
          if (!e[2].is_string() || e[2] != "nonlinear")
            return r.fail(kp, "an entry's third element can only be \"nonlinear\"");
          nonlinear = 1;
        }
        if (lastColOfRow[row] == static_cast<int32_t>(j))
          return r.fail(kp, "row \"" + rowNames[row].full + "\" appears twice in column \"" +
                                colNames[j].full + "\"");
        lastColOfRow[row] = static_cast<int32_t>(j);
        inst.entryRow.push_back(row);
        inst.entryValue.push_back(e[1].get<double>());
        inst.entryNonlinear.push_back(nonlinear);
      }
    }
    if (inst.entryRow.size() > 2000000000u) return r.fail(at, "too many entries");
    inst.colStart[j + 1] = static_cast<int32_t>(inst.entryRow.size());
  }

  // Objective variable and row: a name or a number from 1.
  auto objective = [&](const char* key, const std::unordered_map<std::string, int32_t>& table,
                       std::size_t count, int32_t& out) {
    if (!doc.contains(key)) return true;
    const json& v = doc[key];
    if (v.is_number_integer()) {
      const int64_t k = v.get<int64_t>();
      if (k < 1 || k > static_cast<int64_t>(count))
        return r.fail({member(key)}, std::string("\"") + key + "\" " + v.dump() +
                                         " is not from 1 to " + std::to_string(count));
      out = static_cast<int32_t>(k);
      return true;
    }
    if (v.is_string()) {
      auto it = table.find(hostItemKey(hostParseName(v.get<std::string>())));
      if (it == table.end())
        return r.fail({member(key)}, std::string("\"") + key + "\" " + v.dump() + " names no " +
                                         (key == std::string("objVar") ? "column" : "row"));
      out = it->second + 1;
      return true;
    }
    return r.fail({member(key)}, std::string("\"") + key + "\" must be a name or a number");
  };
  if (!objective("objVar", colOf, n, inst.objVar) || !objective("objRow", rowOf, m, inst.objRow))
    return false;

  hostBuildDictionary(inst, rowNames, colNames);
  // Names as a report shows them: a symbol given with "symbol" (`x(a,b)`, or labels that hold
  // a comma) may show as another item's name.
  for (const bool isRow : {true, false}) {
    const char* kind = isRow ? "row" : "column";
    std::unordered_map<std::string, std::size_t> shown;
    for (std::size_t k = 0; k < (isRow ? m : n); ++k) {
      const auto item = static_cast<int32_t>(k);
      auto [it, added] =
          shown.try_emplace(isRow ? hostRowName(inst, item) : hostColName(inst, item), k);
      if (!added)
        return r.fail({member(isRow ? "rows" : "cols"), element(k)},
                      std::string(kind) + " \"" + it->first + "\" is named twice (also " + kind +
                          " " + std::to_string(it->second + 1) + ")");
    }
  }
  hostDefaultStatuses(inst, rowStatGiven, colStatGiven);
  inst.hasSolution = solutionGiven;
  return true;
}
