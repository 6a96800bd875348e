// The option file MODRAKE.OPT and the scratch control file that carries its values to modrake.
//
// Option file: one `KEYWORD value` per line, keywords without regard to case, a line whose
// first non-blank character is `*` is a comment, blank lines are allowed.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// The values of the eight control records.
struct OrvaOptions {
  bool solutionExpected = false;  // record 1: a solution is handed over
  int32_t varRequests = 1000;     // record 2: VARREQUESTS
  int32_t equRequests = 1000;     // record 3: EQUREQUESTS
  int32_t varBlock = 0;           // record 4: VARBLOCK
  int32_t equBlock = 0;           // record 5: EQUBLOCK
  int32_t scale = 0;              // record 6: SCALE
  int32_t largeLevel = 6;         // record 7: LARGELEVEL
  int32_t largeMarginal = 6;      // record 8: LARGEMARGINAL
};

// A control record holds at most five characters, so every value lies in this range.
inline constexpr int32_t kOrvaOptionMin = -9999;
inline constexpr int32_t kOrvaOptionMax = 99999;

// Reads option lines. `fileName` names the file in messages. On the first fault returns false
// with `error` as "FILE:LINE: what is wrong"; `options` keeps the values read before it.
bool orvaParseOptionText(const std::string& text, const std::string& fileName,
                         OrvaOptions& options, std::string& error);
// The same for a file; a file that cannot be read is an error naming it.
bool orvaReadOptionFile(const std::string& path, OrvaOptions& options, std::string& error);

// The eight records of the scratch control file: labels in columns 1..30, record 1's T or F in
// column 31, the other values right-justified in columns 31..35.
std::vector<std::string> orvaControlRecords(const OrvaOptions& options);
bool orvaWriteControlRecords(const std::string& path, const OrvaOptions& options,
                             std::string& error);
