// The listing of a run: the status file with the host's records acted on, and the solve and
// model status that modrake left for the host.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

// The listing lines of the status lines. "=1" and "=2" are dropped; "=C" text is kept with
// one leading blank and also added to `terminalLines`; "=L" text becomes a title, the text
// with one leading blank and under it a line of "=" as long as the text; other lines stay.
std::vector<std::string> orvaListingLines(const std::vector<std::string>& statusLines,
                                          std::vector<std::string>& terminalLines);

// Names of the status codes, "" for a code without one.
const char* orvaSolveStatName(int code);
const char* orvaModelStatName(int code);

// Reads "solveStat N" and "modelStat M" from the status that modrake left; false when the
// file is missing or lacks either line.
bool orvaReadRunStatus(const std::string& path, int& solveStat, int& modelStat);

// The closing lines of a listing: a blank line, the solve status and the model status.
std::vector<std::string> orvaRunStatusLines(int solveStat, int modelStat);

// Writes the listing of `statusPath` to `out`, "=C" texts also to `terminal`, and the closing
// lines with the statuses of `runStatusPath`, or, when modrake set none, with
// `handedSolveStat` and `handedModelStat` if these are above 0 (those of the solution handed
// over). False with `error` when the status file cannot be read. With `stopMessage`, also
// whether modrake's run ended normally, from the same reading: "" when the status file holds
// its closing "=2" record; else the last message that the run left, the text of its last "=C"
// record or its last line that is not blank, or, when the status file holds nothing, a
// pointer to the log.
bool orvaWriteListing(const std::string& statusPath, const std::string& runStatusPath,
                      int handedSolveStat, int handedModelStat, std::FILE* out,
                      std::FILE* terminal, std::string& error,
                      std::string* stopMessage = nullptr);
