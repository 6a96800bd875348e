// PICTURE: a map of the selected rows and columns, one character per coefficient telling its
// size and sign, cut into strips that fit the page; a summary of each row's relation,
// right-hand side and counts; and two dictionaries that spell out the short names.
#pragma once

#include <cstdint>

#include "model/work_array.h"
#include "base/run_context.h"

// The character of a coefficient, bound or right-hand side: 0 for zero, A to G for growing
// positive sizes (C exactly 1), 1 to 7 for growing negative ones (3 exactly -1), + and - beyond
// 1e+20, and $ for what no class holds (beyond 1e+50, or tiny but not zero).
char coefficientCode(double value);

// Columns of a full strip at this page width: (pageWidth - 13) / 2, at most 108.
int32_t stripCapacity(int32_t pageWidth);

// Reads the section and draws the picture of what it selects.
void runPicture(const PictureRegions& regions, RunContext& run);
