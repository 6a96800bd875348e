#include "orva/options.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string_view>

#include "host/readers.h"

namespace {

struct OptionKeyword {
  const char* name;
  int32_t OrvaOptions::*field;
};

constexpr OptionKeyword kKeywords[] = {
    {"VARBLOCK", &OrvaOptions::varBlock},       {"EQUBLOCK", &OrvaOptions::equBlock},
    {"VARREQUESTS", &OrvaOptions::varRequests}, {"EQUREQUESTS", &OrvaOptions::equRequests},
    {"SCALE", &OrvaOptions::scale},             {"LARGELEVEL", &OrvaOptions::largeLevel},
    {"LARGEMARGINAL", &OrvaOptions::largeMarginal},
};
constexpr int kKeywordCount = static_cast<int>(sizeof kKeywords / sizeof kKeywords[0]);

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v'; }

std::string upper(std::string_view s) {
  std::string out(s);
  for (char& c : out) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return out;
}

// Splits a line into blank-separated words.
std::vector<std::string_view> words(std::string_view line) {
  std::vector<std::string_view> out;
  size_t i = 0;
  while (i < line.size()) {
    while (i < line.size() && isBlank(line[i])) ++i;
    size_t start = i;
    while (i < line.size() && !isBlank(line[i])) ++i;
    if (i > start) out.push_back(line.substr(start, i - start));
  }
  return out;
}

// A whole number with an optional sign; false for anything else. Values far out of range are
// held at a bound so that the range check reports them.
bool parseWhole(std::string_view text, int64_t& value) {
  size_t i = 0;
  bool negative = false;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
    negative = text[i] == '-';
    ++i;
  }
  if (i == text.size()) return false;
  int64_t v = 0;
  for (; i < text.size(); ++i) {
    if (text[i] < '0' || text[i] > '9') return false;
    if (v < 1000000000) v = v * 10 + (text[i] - '0');
  }
  value = negative ? -v : v;
  return true;
}

std::string at(const std::string& fileName, int line) {
  return fileName + ":" + std::to_string(line) + ": ";
}

}  // namespace

bool orvaParseOptionText(const std::string& text, const std::string& fileName,
                         OrvaOptions& options, std::string& error) {
  int firstLine[kKeywordCount] = {};
  std::istringstream in(text);
  std::string line;
  int lineNo = 0;
  while (std::getline(in, line)) {
    ++lineNo;
    std::vector<std::string_view> w = words(line);
    if (w.empty() || w[0][0] == '*') continue;
    std::string key = upper(w[0]);
    int k = 0;
    while (k < kKeywordCount && key != kKeywords[k].name) ++k;
    if (k == kKeywordCount) {
      error = at(fileName, lineNo) + "unknown option keyword \"" + std::string(w[0]) +
              "\"; known are VARBLOCK, EQUBLOCK, VARREQUESTS, EQUREQUESTS, SCALE, "
              "LARGELEVEL, LARGEMARGINAL";
      return false;
    }
    if (w.size() < 2) {
      error = at(fileName, lineNo) + key + " needs a whole number as its value";
      return false;
    }
    if (w.size() > 2) {
      error = at(fileName, lineNo) + "unexpected text \"" + std::string(w[2]) +
              "\" after the value of " + key;
      return false;
    }
    if (firstLine[k] != 0) {
      error = at(fileName, lineNo) + key + " is given twice, first on line " +
              std::to_string(firstLine[k]);
      return false;
    }
    int64_t value = 0;
    if (!parseWhole(w[1], value)) {
      error = at(fileName, lineNo) + "the value \"" + std::string(w[1]) + "\" of " + key +
              " is not a whole number";
      return false;
    }
    if (value < kOrvaOptionMin || value > kOrvaOptionMax) {
      error = at(fileName, lineNo) + "the value " + std::string(w[1]) + " of " + key +
              " lies outside -9999 to 99999";
      return false;
    }
    firstLine[k] = lineNo;
    options.*(kKeywords[k].field) = static_cast<int32_t>(value);
  }
  return true;
}

bool orvaReadOptionFile(const std::string& path, OrvaOptions& options, std::string& error) {
  if (!hostRegularFile(path, "option file", error)) return false;
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    error = path + ": cannot read the option file: " + std::strerror(errno);
    return false;
  }
  std::ostringstream text;
  text << in.rdbuf();
  return orvaParseOptionText(text.str(), path, options, error);
}

std::vector<std::string> orvaControlRecords(const OrvaOptions& options) {
  struct Record {
    const char* label;
    int32_t value;
  };
  const Record records[] = {
      {"Variable requests", options.varRequests}, {"Equation requests", options.equRequests},
      {"Variable blocks", options.varBlock},      {"Equation blocks", options.equBlock},
      {"Scale factors", options.scale},           {"Large level exponent", options.largeLevel},
      {"Large marginal exponent", options.largeMarginal},
  };
  std::vector<std::string> lines;
  char buf[64];
  std::snprintf(buf, sizeof buf, "%-30s%c", "Solution expected",
                options.solutionExpected ? 'T' : 'F');
  lines.emplace_back(buf);
  for (const Record& r : records) {
    std::snprintf(buf, sizeof buf, "%-30s%5d", r.label, static_cast<int>(r.value));
    lines.emplace_back(buf);
  }
  return lines;
}

bool orvaWriteControlRecords(const std::string& path, const OrvaOptions& options,
                             std::string& error) {
  std::FILE* f = std::fopen(path.c_str(), "w");
  if (f == nullptr) {
    error = path + ": cannot write the control file: " + std::strerror(errno);
    return false;
  }
  for (const std::string& line : orvaControlRecords(options)) {
    std::fputs(line.c_str(), f);
    std::fputc('\n', f);
  }
  if (std::fclose(f) != 0) {
    error = path + ": cannot write the control file: " + std::strerror(errno);
    return false;
  }
  return true;
}
