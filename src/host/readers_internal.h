// The readers behind readModel, one per kind of source.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/names.h"
#include "host/readers.h"

bool readJsonModel(const std::string& path, HostInstance& inst, std::string& error);
// Free or fixed MPS by the project's own reader; names without brackets follow `rule`.
bool readMpsModel(const std::string& path, bool fixed, const SymbolRule& rule,
                  HostInstance& inst, std::string& error, const HostProgress& progress);
// MathProg (with an optional data file), free or fixed MPS, or CPLEX LP, through GLPK.
// AMPL .nl in its text form, with names from .row and .col files beside it when present.
bool readNlModel(const std::string& path, HostInstance& inst, std::string& error);
bool readGlpkModel(const ModelSource& source, HostInstance& inst, std::string& error);

// The message of a model that GLPK refused, from GLPK's output: its first "FILE:LINE: what"
// line that is not a warning, else its last line after "FILE: ". `names` pairs GLPK's name of
// a file with the file's path, put back in the message.
std::string glpkMessage(const std::string& path, const std::string& output,
                        const std::vector<std::pair<std::string, std::string>>& names);
