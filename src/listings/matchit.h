// MATCHIT: what the requests of a section really meet. For each request the items met, their
// nonlinear members and their entries by sign; for LISTVARIABLE and LISTEQUATION requests a line
// per item with its counts and the smallest and largest coefficient outside the objective.
#pragma once

#include "model/work_array.h"
#include "base/run_context.h"

// Slots of matchColTable and matchRowTable, per request.
inline constexpr int32_t TALLY_ITEMS = 1;
inline constexpr int32_t TALLY_NONLINEAR_ITEMS = 2;
inline constexpr int32_t TALLY_ENTRIES = 3;
inline constexpr int32_t TALLY_POSITIVE = 4;
inline constexpr int32_t TALLY_NEGATIVE = 5;  // not above 0, for equations
inline constexpr int32_t TALLY_NONLINEAR = 6;
inline constexpr int32_t TALLY_SLOTS = 6;

// Reads the section, then writes the list of requested variables, the table of variable
// requests, the list of requested equations and the table of equation requests, from one walk
// over the host's columns; currentKeyword holds the line that ended the section.
void runMatchIt(const MatchItRegions& regions, RunContext& run);
