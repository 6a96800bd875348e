// The readers behind readModel, one per kind of source.
#pragma once

#include <string>

#include "host/names.h"
#include "host/readers.h"

bool readJsonModel(const std::string& path, HostInstance& inst, std::string& error);
// Free or fixed MPS by the project's own reader; names without brackets follow `rule`.
bool readMpsModel(const std::string& path, bool fixed, const SymbolRule& rule,
                  HostInstance& inst, std::string& error, const HostProgress& progress);
// MathProg (with an optional data file), free or fixed MPS, or CPLEX LP, through GLPK.
bool readGlpkModel(const ModelSource& source, HostInstance& inst, std::string& error);
