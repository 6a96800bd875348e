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
