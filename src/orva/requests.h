// What orva needs to know of a request file before the run: whether it asks for a solution or
// runs BLOCKPIC, and which lines between procedures modrake will pass over as matching no keyword.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

// A line outside any section that is no keyword, comment or PW= line: modrake writes
// "CANT MATCH KEYWORD" on its log for it and reads on.
struct OrvaStrayLine {
  int lineNumber = 0;       // from 1
  std::string text;         // as typed, without blanks around it, cut to 60 characters
  std::string nearest;      // the keyword it is a likely slip of, or empty
};

struct OrvaRequestScan {
  bool needsSolution = false;  // a keyword line names POSTOPT or NONOPT (also `$` forms)
  bool blockPicture = false;   // BLOCKPIC is named, or assumed since no procedure comes first
  std::vector<OrvaStrayLine> strayLines;
};

// Reads the request text as modrake's request loop does. A line is normalized first: leading
// blanks and apostrophes skipped, letters in capitals, blanks dropped up to the first
// parenthesis; "#", "?" and blank lines are comments. A keyword matches any line that begins
// with it. PICTURE, MATCHIT, DISPLAYCR, POSTOPT, NONOPT and ADVISORY own the lines up to the
// next procedure keyword; THEEND outside a section ends the reading once a procedure has run
// (before that, BLOCKPIC is assumed and the reading goes on).
OrvaRequestScan orvaScanRequests(const std::string& text);

// The keyword of `keywords` nearest to `word` by edits (a letter added, dropped, changed, or
// two neighbours swapped), where what stands behind a keyword costs nothing, since a keyword
// matches any text that begins with it. Empty when even the nearest needs more than two edits.
// Ties go to the keyword listed first.
std::string_view orvaNearestKeyword(std::string_view word,
                                    std::span<const std::string_view> keywords);

// The warning for a stray line, without the "orva: " prefix: "FILE:LINE: warning: ...".
std::string orvaStrayLineWarning(const std::string& fileName, const OrvaStrayLine& stray);
