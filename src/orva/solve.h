// Solving an instance with GLPK and judging a solution item by item.
//
// Sign conventions, the same for every source of a solution:
//   row level      the activity sum_j a_ij x_j, without the right-hand side;
//   row marginal   d(objective variable)/d(right-hand side);
//   var marginal   the reduced cost: cost_j - sum_i a_ij * rowMarginal_i, where cost_j is 1
//                  for the objective variable and 0 for every other variable, whatever the
//                  sense of the objective.
#pragma once

#include <cstdint>
#include <string>

#include "host/instance.h"
#include "host/solution_file.h"

// Solve status codes that orva sets.
inline constexpr int32_t kSolveNormal = 1;
inline constexpr int32_t kSolveResourceInterrupt = 3;  // time limit reached
inline constexpr int32_t kSolveTerminated = 4;         // the solver gave up

struct OrvaSolveSettings {
  double timeLimitSeconds = 0.0;  // 0: no limit
};

// Tolerances of the condition status.
inline constexpr double kOrvaFeasTol = 1e-6;  // relative to max(1, |bound|)
inline constexpr double kOrvaDualTol = 1e-6;  // relative to max(1, largest |marginal|)

// Levels and marginals that GLPK computes within this distance of 0 are handed over as 0:
// they are rounding noise, far below GLPK's own tolerances (1e-7).
inline constexpr double kOrvaZeroThreshold = 1e-9;

// Why an instance cannot be solved here: nonlinear entries, SOS or semi-continuous variables,
// a coefficient or bound that is not a number, an entry that repeats a row in its column.
// Empty when the instance can be solved.
std::string orvaUnsolvableReason(const HostInstance& instance);

// Solves the instance: simplex for an LP; for a MIP branch-and-cut, then the integer
// variables fixed at their values and the LP solved again for marginals and basis. Fills
// levels, marginals, basis and condition statuses, model and solve status; levels and
// marginals within kOrvaZeroThreshold of 0 become 0. Call only when orvaUnsolvableReason is
// empty. GLPK prints nothing. Should GLPK itself stop (not a model it cannot solve: an error
// inside the library), the solution is empty with model status 13 and solve status 4, and the
// reason is returned; else "".
std::string orvaSolveInstance(const HostInstance& instance, const OrvaSolveSettings& settings,
                              HostSolution& solution);

// Condition statuses from levels, marginals and the sense of the objective: 2 infeasible,
// 1 a marginal of the wrong sign for where the item stands, else 0. Unbounded marks (3) that
// are already set are kept.
void orvaConditionStatuses(const HostInstance& instance, HostSolution& solution);
