// What orva needs to know of a request file before the run: whether it asks for a solution.
#pragma once

#include <string>

// True when a keyword line of the request text names POSTOPT or NONOPT (also in their `$`
// forms). Keyword lines are read as modrake reads them: leading blanks and apostrophes
// skipped, letters in capitals, blanks dropped; lines beginning with "#" or "?" are comments.
// Lines after a THEEND that follows a procedure are never read by modrake and do not count.
bool orvaRequestsNeedSolution(const std::string& text);
