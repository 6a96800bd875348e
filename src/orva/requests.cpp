#include "orva/requests.h"

#include <sstream>
#include <string_view>

namespace {

// The line as modrake compares it with its keywords: leading blanks and apostrophes gone,
// letters in capitals, control characters and blanks dropped up to the first parenthesis.
std::string normalizedLine(const std::string& raw) {
  size_t i = 0;
  while (i < raw.size() && (raw[i] == ' ' || raw[i] == '\'')) ++i;
  std::string out;
  bool inParens = false;
  for (; i < raw.size(); ++i) {
    char c = raw[i];
    if (static_cast<unsigned char>(c) < 21) c = ' ';
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    if (c == '(') inParens = true;
    if (c == ' ' && !inParens) continue;
    out.push_back(c);
  }
  return out;
}

bool startsWith(std::string_view s, std::string_view prefix) {
  return s.substr(0, prefix.size()) == prefix;
}

}  // namespace

bool orvaRequestsNeedSolution(const std::string& text) {
  static constexpr std::string_view kProcedures[] = {
      "DISPLAYCR", "POSTOPT", "PICTURE", "BLOCKPIC", "ANALYSIS",
      "BLOCKLIST", "MATCHIT", "NONOPT",  "ADVISORY"};
  // These read the lines of their own section, up to the next procedure keyword: a THEEND
  // there is one of their requests and ends nothing.
  static constexpr std::string_view kSectionReaders[] = {"DISPLAYCR", "PICTURE", "MATCHIT",
                                                         "ADVISORY"};
  std::istringstream in(text);
  std::string raw;
  bool procedureSeen = false;
  bool inSection = false;
  while (std::getline(in, raw)) {
    std::string line = normalizedLine(raw);
    if (line.empty() || line[0] == '#' || line[0] == '?' || line[0] == ' ') continue;
    std::string_view word = line;
    if (word[0] == '$') word.remove_prefix(1);
    if (startsWith(word, "POSTOPT") || startsWith(word, "NONOPT")) return true;
    bool isProcedure = false;
    for (std::string_view p : kProcedures) isProcedure = isProcedure || startsWith(word, p);
    if (isProcedure) {
      procedureSeen = true;
      inSection = false;
      for (std::string_view p : kSectionReaders) inSection = inSection || startsWith(word, p);
    } else if (startsWith(line, "THEEND") && procedureSeen && !inSection) {
      return false;
    }
  }
  return false;
}
