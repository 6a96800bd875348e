// BLOCKLIST: one line for each variable block and one for each equation block, with member
// counts, coefficient counts by sign, nonlinear counts, right-hand sides by sign and the
// largest and smallest absolute coefficient; then the variable and equation findings on the
// block tables.
#pragma once

#include <cstdint>

#include "base/run_context.h"
#include "model/regions.h"

// Start of the block minima: no coefficient seen yet.
inline constexpr double BLOCK_MIN_START_LIST = 1e+30;
// Added to blockRowType while an equation block is marked nonlinear; a type at or above the
// test limit carries the mark.
inline constexpr int32_t BLOCK_NONLINEAR_MARK = 9000;
inline constexpr int32_t BLOCK_NONLINEAR_TEST = 8000;

// The whole BLOCKLIST report, after the request loop has written the titles and laid out its
// phase.
void runBlockList(const BlockListRegions& regions, RunContext& run);
