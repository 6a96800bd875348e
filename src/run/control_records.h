// The run's file names and the eight records of the scratch control file.
#pragma once

#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <string>
#include <string_view>

struct RunContext;

// Joins the pieces, each without its leading and trailing blanks, into at most MAX_LINE
// characters; what does not fit is lost.
std::string joinPath(std::initializer_list<std::string_view> pieces);

// Record 1: columns 1 to 30 are skipped; column 31 holds T or F (either case), blank reads
// false. False with `what` telling the fault.
bool parseControlLogical(std::string_view record, bool& value, std::string& what);

// Records 2 to 8: columns 31 to 35 hold a whole number. Blanks are ignored, a leading sign is
// read, a blank field reads 0; columns behind 35 are not looked at. False with `what`
// telling the fault.
bool parseControlInteger(std::string_view record, int32_t& value, std::string& what);

// Reads records 1 to 8 into solutionExpected, colSelCapacity, rowSelCapacity, icblock,
// irblock, scaleRequest, largeLevelExp, largeMarginalExp. False with `error` naming the file,
// the line and the fault.
bool readControlRecords(std::FILE* file, const std::string& path, RunContext& state,
                        std::string& error);

// The block rule of records 4 and 5, once the dictionary is loaded: a capacity under 1 becomes
// the number of symbols + 3.
void applyBlockDefaults(RunContext& state, int32_t symbolCount);
