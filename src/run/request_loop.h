// The request loop and its services: the scaling switch, upper-casing, the echo of comments
// and the title lines of a procedure. Keyword lookup and the page width of a PW= line are
// services of the request layer (request/request_line.h), which the section readers share.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/procedures.h"

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
