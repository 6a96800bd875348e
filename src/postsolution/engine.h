// The engine of DISPLAYCR, POSTOPT, NONOPT and ADVISORY (and of ANALYSIS's display of its
// problems). It reads the procedure's section, loads rows and columns into the phase-2 regions,
// marks the items to show, then makes a column pass and a row pass over the model. The four
// procedures differ only by the row of kEngineModes that they run in: which items are marked,
// what an entry line carries, what closes an item, which advisory lists are written.
#pragma once

#include <cstdint>

#include "base/run_context.h"
#include "model/regions.h"
#include "request/selection_tables.h"

// Tolerances, each the single-precision value of its decimal, used as a double.
inline constexpr double FILTER_TOLERANCE = static_cast<double>(1e-6f);
inline constexpr double BUDGET_TOLERANCE = static_cast<double>(1e-4f);
inline constexpr double ROWSUM_TOLERANCE = static_cast<double>(1e-5f);
inline constexpr double SLACK_TOLERANCE = static_cast<double>(1e-6f);
inline constexpr double ZERO_LEVEL_TOLERANCE = static_cast<double>(1e-10f);
// Floor of the objective row's marginal for objectiveScale: the double, not a single.
inline constexpr double OBJECTIVE_MARGINAL_FLOOR = 1e-10;
// The far side of a one-sided row.
inline constexpr double ROW_RANGE_INFINITY = 1e+30;

// What the host's model status says of the solution.
inline constexpr int32_t SOLUTION_NEITHER = 0;
inline constexpr int32_t SOLUTION_UNBOUNDED = 1;
inline constexpr int32_t SOLUTION_INFEASIBLE = 2;
int32_t solutionClassOf(int32_t modelStatus);

// verbosity of the section: none set, the NONOPT list, VERBOSE, IDENTIFY (and ADVISORY).
inline constexpr int32_t VERBOSITY_NONE = -1;
inline constexpr int32_t VERBOSITY_LIST = 0;

// NONOPT's verbosity from what its section said and the solution class.
int32_t nonoptVerbosity(int32_t sectionVerbosity, int32_t solutionClass);

// The column pass marks for filters: both true outside POSTOPT and for filter values below 1
// or of 3. `strict` is 1 in the column pass and 0 in the row pass.
bool varInFilter(double level, double marginal, int32_t procIndex, int32_t varFilter,
                 int32_t strict);
bool equInFilter(double marginal, double level, double rhs, int32_t procIndex, int32_t equFilter);

// The limit of the size lists for a power of ten (control records 7 and 8), worked out in
// single precision: above 38 it is infinite, and nothing is large.
double largeValueLimit(int32_t exponent);

// Runs procedure run.procIndex (DISPLAYCR, POSTOPT, NONOPT or ADVISORY) on the regions of the
// Display phase, after the solution step left its model status in run.modelStatus. Reads the
// section from the request file, or from the analysis scratch file while
// analysisProblemsPending is 1, and leaves the keyword that ended it in currentKeyword.
void runPostSolutionEngine(const DisplayRegions& r, RunContext& run);
