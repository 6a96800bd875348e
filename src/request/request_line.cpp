#include "request/request_line.h"

#include <algorithm>

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
