// The solution file that `orva --solve` writes and `orva --solution FILE` hands over; the
// model object loads it with ovmLoadSolutionLegacy.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/instance.h"

struct HostSolution {
  int32_t modelStat = kStatNoSolutionReturned;
  int32_t solveStat = 1;
  std::vector<double> rowLevel, rowMarginal;
  std::vector<int32_t> rowStat, rowCStat;
  std::vector<double> colLevel, colMarginal;
  std::vector<int32_t> colStat, colCStat;
};

bool writeSolutionFile(const std::string& path, const HostInstance& instance,
                       const HostSolution& solution, std::string& error);
// Reads a solution for `instance`; false with a message naming the file, the line and the
// fault when it is malformed or does not fit the instance.
bool readSolutionFile(const std::string& path, const HostInstance& instance,
                      HostSolution& solution, std::string& error);
// Puts a solution into the instance: levels, marginals, statuses, model and solve status.
void applySolution(HostInstance& instance, const HostSolution& solution);

// An AMPL solution file (.sol) for a model read from a .nl file: the primal and dual values, the
// solve result code turned into model and solve status (nlModelStatus), and what follows from
// the point: the objective variable, row levels, reduced costs, basis statuses (condition
// statuses stay 0). False with file, line and reason when it is malformed, when its counts are
// not the model's, or when the model's functions cannot be evaluated at its point.
bool readNlSolutionFile(const std::string& path, const HostInstance& instance,
                        HostSolution& solution, std::string& error);
// Model status of a solve result code; `solveStat` gets the solve status.
int32_t nlModelStatus(int32_t solveResult, bool nonlinear, int32_t& solveStat);
