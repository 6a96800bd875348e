// ANALYSIS: sign and bound tables of every row and column, and the two ladders of findings,
// which BLOCKPIC and BLOCKLIST run on their block tables too (mode 1).
#pragma once

#include <cstdint>
#include <string_view>

#include "host/host.h"
#include "model/views.h"
#include "model/work_array.h"
#include "base/notation.h"

inline constexpr int32_t NO_LOWER = -100000;
inline constexpr int32_t NO_UPPER = 100000;
inline constexpr double LOWER_INF_FRACTION = 0.8999999761581421;
inline constexpr double UPPER_INF_FRACTION = 0.9900000095367432;

// Items of one finding kind that enter the analysis scratch file.
inline constexpr int32_t MAX_PROBLEMS_PER_KIND = 5;

// Columns of colBoundTable and blockColBoundTable (one row per column or variable block).
inline constexpr int32_t BOUND_SIGN_CLASS = 1;   // 1 non-negative, -1 non-positive, 2 free
inline constexpr int32_t BOUND_LOWER_STATE = 2;  // NO_LOWER, 0, -1 below zero, 1 above zero
inline constexpr int32_t BOUND_UPPER_STATE = 3;  // NO_UPPER, 0, -1 below zero, 1 above zero
inline constexpr int32_t BOUND_CLASS = 4;        // the middle slot of rowSignTable
inline constexpr int32_t BOUND_TYPE_CODE = 5;    // 1 to 3 the bound class, else host type + 3

// The last index of colSignTable and rowSignTable: positive and negative coefficients, and
// nonlinear entries, which are counted in the first middle slot (NONLINEAR_SLOT).
inline constexpr int32_t SIGN_POSITIVE = 1;
inline constexpr int32_t SIGN_NEGATIVE = 2;
inline constexpr int32_t SIGN_NONLINEAR = 3;
inline constexpr int32_t NONLINEAR_SLOT = 1;

// The middle index of colSignTable: the row types of rowTypeSlot, and the objective, whose
// SIGN_POSITIVE cell counts a good objective coefficient (raising the variable improves the
// objective) and SIGN_NEGATIVE a bad one.
inline constexpr int32_t SLOT_EQ = 1;
inline constexpr int32_t SLOT_GE = 2;
inline constexpr int32_t SLOT_LE = 3;
inline constexpr int32_t SLOT_OBJECTIVE = 4;
inline constexpr int32_t OBJECTIVE_GOOD = SIGN_POSITIVE;
inline constexpr int32_t OBJECTIVE_BAD = SIGN_NEGATIVE;

// The middle index of rowSignTable: the bound class of the column (BOUND_CLASS).
inline constexpr int32_t CLASS_NONNEGATIVE = 1;
inline constexpr int32_t CLASS_NONPOSITIVE = 2;
inline constexpr int32_t CLASS_FREE = 3;

// Modes of the two ladders: single columns and rows, or the blocks of BLOCKPIC and BLOCKLIST.
inline constexpr int32_t MODE_ITEMS = 0;
inline constexpr int32_t MODE_BLOCKS = 1;

// Finding kinds, numbered as the problem tally and the scratch file count them.
enum FindingKind : int32_t {
  KIND_VAR_AT_LOWER = 1,
  KIND_VAR_AT_UPPER = 2,
  KIND_LE_FORCES_ZERO = 3,
  KIND_LE_REDUNDANT = 4,
  KIND_LE_INFEASIBLE = 5,
  KIND_GE_FORCES_ZERO = 6,
  KIND_GE_REDUNDANT = 7,
  KIND_GE_INFEASIBLE = 8,
  KIND_EQ_INFEASIBLE_ABOVE = 9,
  KIND_EQ_INFEASIBLE_BELOW = 10,
  KIND_EQ_FORCES_ZERO_NEGATIVE = 11,
  KIND_EQ_FORCES_ZERO_FREE = 12,
  KIND_EQ_FORCES_ZERO_POSITIVE = 13,
  KIND_EQ_BELOW_MIN_ACTIVITY = 14,
  KIND_EQ_ABOVE_MAX_ACTIVITY = 15,
  KIND_LE_BELOW_MIN_ACTIVITY = 16,
  KIND_LE_ABOVE_MAX_ACTIVITY = 17,
  KIND_GE_BELOW_MIN_ACTIVITY = 18,
  KIND_GE_ABOVE_MAX_ACTIVITY = 19,
  KIND_VAR_UNBOUNDED_ABOVE = 20,
  KIND_VAR_RELAXES_ABOVE = 21,
  KIND_VAR_ZERO_AT_LOWER = 23,
  KIND_VAR_ZERO_AT_UPPER = 24,
  KIND_VAR_UNBOUNDED_BELOW = 25,
  KIND_VAR_RELAXES_BELOW = 26,
};

// The summary group of each kind, as the log reports it.
enum class FindingGroup { None, ForcesZero, Infeasible, Redundant, Unbounded, Relaxes };
FindingGroup findingGroup(int32_t kind);

// Clears rows of a bound table to "no bounds seen yet", as classifyBounds starts from.
void resetBoundTable(Table2<int32_t> table);

// ANALYSIS, after the request loop has written the titles and laid out its phase: the tables,
// then the variable and equation findings on every column and row.
void runAnalysis(const AnalysisRegions& regions, RunContext& run);

// One pass over rows and columns through the host: rowRhs, anaRowType, the scale factors,
// colBoundTable, rowSignTable, colSignTable (with the objective turn) and rowActivity.
void buildAnalysisTables(const AnalysisRegions& regions, RunContext& run);

// Updates row `index` of a colBoundTable or blockColBoundTable (n x 5) from one pair of bounds.
void classifyBounds(double upper, double lower, double plusInf, double minusInf, int32_t index,
                    Table2<int32_t> table, int32_t hostType);

// The slot of a row type in the middle dimension of colSignTable: 1 =E=, 2 =G=, 3 =L=, 4 =N=.
// Host row types beyond these count as =E= rows: they may hold a variable either way, and
// keep it out of every finding.
inline int32_t rowTypeSlot(int32_t rowType) {
  return isRowType(rowType) ? rowType + 1 : 1;
}

// Reads column j as every procedure does: its scale factor into colScale[j], and its bounds,
// multiplied by that factor unless infinite, into lower and upper, classified into row `index`
// of boundTable (the column itself, or its block). Gives the boundClass that row holds now.
int32_t readColumnBounds(const RunContext& run, int32_t j, Vec1<double> colScale, int32_t index,
                         Table2<int32_t> boundTable, double& lower, double& upper);

// The variable ladder over colTotal columns (mode 0) or blocks (mode 1); skipIndex is left out.
void reportVariableFindings(RunContext& run, int32_t colTotal, TextTable blockNames,
                            Table3<int32_t> signTable, Table2<int32_t> boundTable,
                            int32_t skipIndex, int32_t mode, ovdHandle dictionary);

// The equation ladder over rowTotal rows (mode 0) or blocks (mode 1). In mode 1 `rhs` holds
// the sign codes of blockRowRhs and `activity` is not read.
void reportEquationFindings(RunContext& run, int32_t rowTotal, TextTable blockNames,
                            Table3<int32_t> signTable, Vec1<int32_t> rowTypes, Vec1<double> rhs,
                            int32_t mode, ovdHandle dictionary, Table2<double> activity);

// The two ladders on block tables (mode 1), as BLOCKPIC and BLOCKLIST end: the variable blocks
// but `skipBlock` (the objective variable's), then the equation blocks with the activity rules
// switched off through rowActivity.
void reportBlockFindings(RunContext& run, int32_t nC, int32_t nR, TextTable colBlockName, TextTable rowBlockName,
                         Table3<int32_t> colSignTable, Table3<int32_t> rowSignTable,
                         Table2<int32_t> blockColBoundTable, Vec1<int32_t> blockRowType,
                         Vec1<double> blockRowRhs, Table2<double> rowActivity,
                         int32_t skipBlock, ovdHandle dictionary);

// Counts a finding of `kind` and, for the first MAX_PROBLEMS_PER_KIND of a kind, writes the
// item to the analysis scratch file in the request language, with a section word ("variable"
// or "equation") where the item class changes. The first problem of the run starts the file
// afresh and sets analysisProblemsPending. Mode 1 (block findings) records nothing.
void recordProblem(RunContext& run, ItemClass itemClass, std::string_view label, int32_t kind, int32_t mode);

// Prints a label folded to the line width (130 at most). First line by style:
// 1 "(/,' ##  ',A)", 2 "(/,5X,A)", 3 and 5 "(5X,A)", 4 "('     ',A)"; further lines "(5X,A)".
void printFoldedItem(std::string_view label, int32_t lineWidth, int32_t style, Channel& channel);
