// The request loop and its services: keyword lookup, page width, the scaling switch,
// upper-casing, the echo of comments and the title lines of a procedure.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/procedures.h"

// procIndex values besides the nine procedures (1 DISPLAYCR ... 9 ADVISORY).
inline constexpr int32_t PROC_PAGE_WIDTH = 99;
inline constexpr int32_t PROC_END = -1;
inline constexpr int32_t PROC_NONE = 0;

// Looks `text` (its first NAME_LEN characters) up in the keyword table: 1..9 for a procedure,
// plain or in its $ form, with anything behind the keyword; 99 for a PW= or $PW= line, whose
// width is then set (mode 2 gives 0 for it, so that a section reader goes on); -1 for THEEND;
// 0 for anything else.
void lookupKeyword(std::string_view text, int32_t& index, int32_t mode);

// Sets runState.pageWidthRequest from the three characters behind the "=" of a PW= line.
void setPageWidth(std::string_view text);

// useScale := 1 when `flag` is nonzero and the model has scale factors, else 0.
void setScaling(int32_t flag);

// Letters a to z of the first `length` characters become capitals.
void upperCase(std::string& text, int32_t length);

// Writes the waiting comments (status: heading and lines; log: lines) and clears them.
void echoComments();

// The three title lines of a procedure: log "#### Executing KW", status "----#### Executing KW"
// and "=L#### MODRAKE KW", each with the keyword's trailing blanks.
void writeProcedureTitles(const ProcedureRow& row);

// From the end of start-up to the end of the run: reads the request file, runs a procedure
// for each keyword, and ends the run ("MODRAKE All Done", "=2", exit 0). Does not return.
[[noreturn]] void runRequestLoop();
