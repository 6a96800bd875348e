// ANALYSIS: sign and bound tables of every row and column, and the two ladders of findings,
// which BLOCKPIC and BLOCKLIST run on their block tables too (mode 1).
#pragma once

#include <cstdint>
#include <string_view>

#include "host/host.h"
#include "model/views.h"
#include "run/notation.h"

inline constexpr int32_t NO_LOWER = -100000;
inline constexpr int32_t NO_UPPER = 100000;
inline constexpr double LOWER_INF_FRACTION = 0.8999999761581421;
inline constexpr double UPPER_INF_FRACTION = 0.9900000095367432;

// The ANALYSIS branch of the request loop.
void runAnalysis();

// Updates row `index` of a colBoundTable or blockColBoundTable (n x 5) from one pair of bounds.
void classifyBounds(double upper, double lower, double plusInf, double minusInf, int32_t index,
                    Table2<int32_t> table, int32_t hostType);

// The variable ladder over colTotal columns (mode 0) or blocks (mode 1); skipIndex is left out.
void reportVariableFindings(int32_t colTotal, TextTable blockNames, Table3<int32_t> signTable,
                            Table2<int32_t> boundTable, int32_t skipIndex, int32_t mode,
                            ovdHandle dictionary);

// The equation ladder over rowTotal rows (mode 0) or blocks (mode 1). In mode 1 `rhs` holds
// the sign codes of blockRowRhs and `activity` is not read.
void reportEquationFindings(int32_t rowTotal, TextTable blockNames, Table3<int32_t> signTable,
                            Vec1<int32_t> rowTypes, Vec1<double> rhs, int32_t mode,
                            ovdHandle dictionary, Table2<double> activity);
