#include "request/request_line.h"

#include <algorithm>

#include "base/procedures.h"
#include "base/run_context.h"

LineRead readRequestFileLine(std::FILE* file, std::string& line, int32_t length) {
  const size_t width = length > 0 ? static_cast<size_t>(length) : 0;
  line.clear();
  bool any = false;
  bool pendingCr = false;  // a CR is kept only when something other than LF follows it
  for (;;) {
    const int c = std::getc(file);
    if (c == EOF) {
      if (std::ferror(file)) return LineRead::Error;
      if (!any) return LineRead::End;
      break;
    }
    any = true;
    if (c == '\n') break;
    if (pendingCr && line.size() < width) line.push_back('\r');
    pendingCr = c == '\r';
    if (!pendingCr && line.size() < width) line.push_back(static_cast<char>(c));
  }
  line.resize(width, ' ');
  return LineRead::Ok;
}

namespace {

bool isBlank(char c) { return c == ' '; }

// Letters a to z become capitals; everything else stays.
char toCapital(char c) { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c; }

// A character below code 21 counts as a blank.
char unControl(char c) { return static_cast<unsigned char>(c) < 21 ? ' ' : c; }

}  // namespace

void normalizeRequestLine(std::string& line, int32_t& isComment, int32_t length,
                          RunContext* commentsTo) {
  const size_t width = length > 0 ? static_cast<size_t>(length) : 0;
  line.resize(width, ' ');
  const std::string raw = line;

  size_t n = raw.size();
  while (n > 0 && isBlank(raw[n - 1])) --n;
  if (n == 0) {
    isComment = 1;
    return;
  }

  size_t p = 0;
  while (p < n && (raw[p] == ' ' || raw[p] == '\'')) ++p;

  std::string buffer;
  buffer.reserve(width);
  bool inParens = false;
  for (; p < n; ++p) {
    const char c = toCapital(unControl(raw[p]));
    if (c == '(') inParens = true;
    if (c == ' ' && !inParens) continue;
    buffer.push_back(c);
  }
  buffer.resize(width, ' ');
  line = buffer;

  if (!line.empty() && line[0] == '#') {
    isComment = 1;
    if (commentsTo == nullptr) return;
    RunContext& run = *commentsTo;
    run.commentCount += 1;
    if (run.commentCount <= COMMENT_CAPACITY) {
      // The comment as typed, from its first character after the "#" marks and blanks.
      size_t from = 1;
      while (from < n && (raw[from] == ' ' || raw[from] == '#')) ++from;
      std::string text = from < n ? raw.substr(from, std::min<size_t>(72, n - from)) : "";
      text.resize(COMMENT_LEN, ' ');
      run.commentLines[static_cast<size_t>(run.commentCount - 1)] = text;
    }
    return;
  }
  isComment = (line.empty() || line[0] == '?' || line[0] == ' ') ? 1 : 0;
}

std::string keywordText(std::string_view text) {
  std::string k(text.substr(0, static_cast<size_t>(NAME_LEN)));
  k.resize(NAME_LEN, ' ');
  return k;
}

void lookupKeyword(RunContext& run, std::string_view text, int32_t& index, int32_t mode) {
  const std::string k = keywordText(text);
  if (const ProcedureRow* row = procedureOfLine(k)) {
    index = static_cast<int32_t>(row->proc);
    return;
  }
  if (k.starts_with("PW=") || k.starts_with("$PW=")) {
    setPageWidth(run, k);
    index = mode == 2 ? 0 : PROC_PAGE_WIDTH;
    return;
  }
  index = k.starts_with("THEEND") ? PROC_END : PROC_NONE;
}

void setPageWidth(RunContext& run, std::string_view text) {
  run.pageWidthRequest = 0;
  const size_t eq = text.find('=');
  if (eq == std::string_view::npos) return;
  std::string digits(text.substr(eq + 1, 3));
  digits.resize(3, ' ');
  int32_t value = 0;
  int32_t power = 1;
  bool digitSeen = false;
  for (size_t p = 3; p-- > 0;) {
    const char c = digits[p];
    if (c >= '0' && c <= '9') {
      value += (c - '0') * power;
      power *= 10;
      digitSeen = true;
    } else if (c == ' ' && digitSeen) {
      power *= 10;
    }
  }
  run.pageWidthRequest = value;
}
