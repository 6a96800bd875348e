// Lines of the request file: reading one line, and putting it into the form in which keywords,
// section words and requests are compared.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

struct RunContext;

enum class LineRead { Ok, End, Error };

// Reads the next line of `file` into `line`, blank-padded to `length` characters (MAX_LINE for
// the request file); what stands behind that column is lost. A line end of CR LF counts as LF,
// and a last line without its LF is still a line. End: nothing was left to read. Error: the
// read failed.
LineRead readRequestFileLine(std::FILE* file, std::string& line, int32_t length);

// Normalizes a line in place, to `length` characters: leading blanks and apostrophes go,
// control characters count as blanks, letters become capitals, and blanks are dropped up to the
// first "(". `isComment` is 1 for a line that carries no request: a blank line, a silent "?"
// comment, or an echoed "#" comment, which is kept in commentsTo->commentLines when a run is
// given (the first COMMENT_CAPACITY of them; commentCount counts them all).
void normalizeRequestLine(std::string& line, int32_t& isComment, int32_t length,
                          RunContext* commentsTo);

// procIndex values of lookupKeyword besides the nine procedures (1 DISPLAYCR ... 9 ADVISORY).
inline constexpr int32_t PROC_PAGE_WIDTH = 99;
inline constexpr int32_t PROC_END = -1;
inline constexpr int32_t PROC_NONE = 0;

// The first NAME_LEN characters of a text, blank-padded: the keyword of a line.
std::string keywordText(std::string_view text);

// Looks `text` (its first NAME_LEN characters) up in the keyword table: 1..9 for a procedure,
// plain or in its $ form, with anything behind the keyword; 99 for a PW= or $PW= line, whose
// width is then set (mode 2 gives 0 for it, so that a section reader goes on); -1 for THEEND;
// 0 for anything else.
void lookupKeyword(RunContext& run, std::string_view text, int32_t& index, int32_t mode);

// Sets run.pageWidthRequest from the three characters behind the "=" of a PW= line.
void setPageWidth(RunContext& run, std::string_view text);
