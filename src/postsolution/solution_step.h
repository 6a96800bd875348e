// The solution step of DISPLAYCR, POSTOPT, NONOPT and ADVISORY: what the solution regions hold
// when the engine starts, and the point at which a nonlinear Jacobian is evaluated.
//
// DISPLAYCR and ADVISORY read nothing from the host here. POSTOPT and NONOPT without an
// expected solution run on zeros (basis status 3); with one they load it, and a failed load, or
// a model status of 11 or 13, writes "NO SOLUTION FILE" and leaves levels and marginals 0. After
// a good load a nonlinear model's Jacobian is evaluated at colLevel, which holds 0 for a column
// at a bound; a failed evaluation stops the run.
#pragma once

#include <cstdint>

#include "base/procedures.h"
#include "base/run_context.h"
#include "model/regions.h"

// Model statuses that count as a failed load.
inline constexpr int32_t kModelStatusLicensing = 11;
inline constexpr int32_t kModelStatusNoSolution = 13;

// Fills the solution regions, laid out in the Solution phase, for procedure `proc` (DISPLAYCR,
// POSTOPT, NONOPT or ADVISORY). Returns the model status handed to the engine: 0 when no
// solution was read, else the host's.
int32_t loadSolution(Proc proc, const SolutionRegions& r, RunContext& run);
