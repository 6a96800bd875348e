// The readers behind readModel, one per kind of source.
#pragma once

#include <string>

#include "host/readers.h"

bool readJsonModel(const std::string& path, HostInstance& inst, std::string& error);
// MathProg (with an optional data file), free or fixed MPS, or CPLEX LP, through GLPK.
bool readGlpkModel(const ModelSource& source, HostInstance& inst, std::string& error);
