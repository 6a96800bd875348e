#include "orva/requests.h"

#include <algorithm>
#include <array>
#include <sstream>

#include "base/procedures.h"
#include "base/run_context.h"
#include "request/request_line.h"

namespace {

// What a stray line may be a slip of: the procedure keywords and THEEND, which ends the
// requests.
constexpr auto kSuggestedKeywords = [] {
  std::array<std::string_view, kProcedures.size() + 1> words{};
  for (size_t k = 0; k < kProcedures.size(); ++k) words[k] = kProcedures[k].keyword;
  words.back() = "THEEND";
  return words;
}();

// Most edits that a keyword may be away from a stray line and still be offered for it.
constexpr int kMostEdits = 2;

// The keyword that a stray line beginning with `word` is nearest to; a `$` in front of the line
// stays in front of a procedure keyword.
std::string suggestedKeyword(std::string_view word) {
  const bool dollar = word.starts_with('$');
  if (dollar) word.remove_prefix(1);
  const std::string_view nearest = orvaNearestKeyword(word, kSuggestedKeywords);
  return (dollar && !nearest.empty() && nearest != kSuggestedKeywords.back() ? "$" : "") +
         std::string(nearest);
}

// A stray line as the warning quotes it: control characters as blanks, no blanks around it,
// at most kQuotedLength characters.
constexpr size_t kQuotedLength = 60;
std::string quotedText(std::string_view raw) {
  const auto blank = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
  while (!raw.empty() && blank(raw.front())) raw.remove_prefix(1);
  while (!raw.empty() && blank(raw.back())) raw.remove_suffix(1);
  std::string text(raw.substr(0, kQuotedLength));
  for (char& c : text) c = blank(c) ? ' ' : c;
  if (raw.size() > kQuotedLength) text += "...";
  return text;
}

}  // namespace

OrvaRequestScan orvaScanRequests(const std::string& text) {
  OrvaRequestScan scan;
  std::istringstream in(text);
  std::string raw;
  bool procedureRan = false;
  bool inSection = false;
  std::string line;
  for (int lineNumber = 1; std::getline(in, raw); ++lineNumber) {
    // The line as modrake compares it with its keywords.
    line = raw;
    int32_t isComment = 0;
    normalizeRequestLine(line, isComment, MAX_LINE, nullptr);
    if (isComment > 0) continue;
    if (const ProcedureRow* procedure = procedureOfLine(line)) {
      procedureRan = true;
      inSection = procedure->readsSection;
      scan.needsSolution = scan.needsSolution || procedure->loadsSolution;
      scan.blockPicture = scan.blockPicture || procedure->keyword == "BLOCKPIC";
      continue;
    }
    // Everything else in a section is the procedure's: requests, its words, THEEND.
    if (inSection || line.starts_with("PW=") || line.starts_with("$PW=")) continue;
    if (line.starts_with("THEEND")) {
      if (procedureRan) break;
      procedureRan = true;  // BLOCKPIC is assumed, and the lines behind are read
      scan.blockPicture = true;
      continue;
    }
    std::string_view word =
        std::string_view(line).substr(0, std::min(line.find('('), static_cast<size_t>(NAME_LEN)));
    word = word.substr(0, word.find_last_not_of(' ') + 1);  // the blanks that pad the line
    scan.strayLines.push_back({lineNumber, quotedText(raw), suggestedKeyword(word)});
  }
  if (!procedureRan) scan.blockPicture = true;  // modrake runs BLOCKPIC when nothing is asked
  return scan;
}

std::string_view orvaNearestKeyword(std::string_view word,
                                    std::span<const std::string_view> keywords) {
  constexpr size_t kLongest = 32;
  word = word.substr(0, kLongest - 1);
  std::string_view best;
  int bestEdits = kMostEdits + 1;
  // d[i][j]: edits between the first i letters of the word and the first j of the keyword.
  std::array<std::array<int, kLongest>, kLongest> d{};
  for (std::string_view keyword : keywords) {
    const size_t m = std::min(keyword.size(), kLongest - 1);
    const size_t n = word.size();
    for (size_t i = 0; i <= n; ++i) d[i][0] = static_cast<int>(i);
    for (size_t j = 0; j <= m; ++j) d[0][j] = static_cast<int>(j);
    for (size_t i = 1; i <= n; ++i) {
      for (size_t j = 1; j <= m; ++j) {
        const int change = word[i - 1] == keyword[j - 1] ? 0 : 1;
        int e = std::min({d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + change});
        if (i > 1 && j > 1 && word[i - 1] == keyword[j - 2] && word[i - 2] == keyword[j - 1]) {
          e = std::min(e, d[i - 2][j - 2] + 1);
        }
        d[i][j] = e;
      }
    }
    // The whole keyword against the best beginning of the word.
    int edits = d[0][m];
    for (size_t i = 1; i <= n; ++i) edits = std::min(edits, d[i][m]);
    if (edits < bestEdits) {
      bestEdits = edits;
      best = keyword;
    }
  }
  return best;
}

std::string orvaStrayLineWarning(const std::string& fileName, const OrvaStrayLine& stray) {
  std::string message = fileName + ":" + std::to_string(stray.lineNumber) + ": warning: \"" +
                        stray.text + "\" is no keyword";
  if (!stray.nearest.empty()) return message + "; did you mean " + stray.nearest + "?";
  return message + ", comment or PW= line; modrake passes over it (a comment begins with # or ?)";
}
