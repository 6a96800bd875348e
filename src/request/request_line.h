// Lines of the request file: reading one line, and putting it into the form in which keywords,
// section words and requests are compared.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

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
