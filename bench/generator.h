// Generated MPS models for the benchmark and for the tests of the MPS reader: indexed names in
// 8 variable and 6 equation symbols, about 6 entries per column and a cost, bounds of every
// kind, rows of every type, ranges of both signs, integer marker blocks.
#pragma once

#include <cstdint>
#include <cstdio>

struct MpsGeneratorSettings {
  int64_t columns = 1000;  // rows are a quarter of them
  uint64_t seed = 1;
  bool fixed = false;      // fixed form: short names with a blank inside ("M 12 3")
  // Leave out what GLPK's reader takes otherwise than ours: a right-hand side on the objective
  // row, further N rows, and a negative upper bound over the default lower bound. (No model has
  // an OBJSENSE section, which GLPK does not read.)
  bool glpkComparable = false;
};

// Writes the model to `out`; false when writing fails.
bool generateMps(const MpsGeneratorSettings& settings, std::FILE* out);
