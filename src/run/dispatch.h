// The nine procedures as the request loop runs them: the scaling switch, the partition, the
// title lines, the comments and the status lines around each procedure.
#pragma once

#include <cstdint>

// Runs procedure `procIndex` (1 to 9). Returns true when the procedure read its own section
// of the request file, so that currentKeyword holds the keyword that ended it (or THEEND);
// false when the loop reads the next keyword itself.
bool runProcedure(int32_t procIndex);
