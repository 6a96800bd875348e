// One generated model instance, as the host holds it: flat vectors over rows, columns and
// entries, 0-based inside. Every model source (native JSON, MathProg, MPS, LP) becomes one of
// these; the host operations of host.h read it.
#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

inline constexpr double kHostInf = std::numeric_limits<double>::infinity();

// Row types as ovmGetEquTypeOne gives them.
enum HostRowType : int32_t { kRowE = 0, kRowG = 1, kRowL = 2, kRowN = 3 };

// Variable types as ovmGetVarTypeOne gives them.
enum HostVarType : int32_t {
  kVarContinuous = 0, kVarBinary = 1, kVarInteger = 2, kVarSos1 = 3, kVarSos2 = 4,
  kVarSemiCont = 5, kVarSemiInt = 6
};

// Model status codes as ovmModelStat gives them.
enum HostModelStat : int32_t {
  kStatOptimal = 1, kStatLocallyOptimal = 2, kStatUnbounded = 3, kStatInfeasible = 4,
  kStatLocallyInfeasible = 5, kStatIntermediateInfeasible = 6, kStatIntermediateNonoptimal = 7,
  kStatIntegerSolution = 8, kStatIntermediateNonInteger = 9, kStatIntegerInfeasible = 10,
  kStatLicensingProblem = 11, kStatErrorUnknown = 12, kStatErrorNoSolution = 13,
  kStatNoSolutionReturned = 14
};

// A label of the dictionary: its text (up to 64 characters) and its quote character,
// ' ' when the label needs none.
struct HostLabel {
  std::string text;
  char quote = ' ';
};

// A symbol of the dictionary. Equation and variable symbols are separate entries even when
// they share a name.
struct HostSymbol {
  std::string name;
  bool isEquation = false;
  int32_t dim = 0;
};

struct HostInstance {
  std::string inputName;   // base name of the model, e.g. "transport"
  std::string sourcePath;  // file the instance came from

  int32_t rowCount = 0;
  int32_t colCount = 0;
  int32_t objVar = 0;      // 1-based, 0 for none
  int32_t objRow = 0;      // 1-based, 0 for none
  bool minimizing = true;
  bool hasScale = false;   // scale factors exist (ovmScaleOpt)

  // Rows, 0-based. Levels, marginals and statuses are those of the solution, or the
  // instance's own values when none was loaded. rowScale and colScale may be empty: every
  // factor is 1, as an instance without scale factors leaves them.
  std::vector<int32_t> rowType;
  std::vector<double> rowRhs;
  std::vector<double> rowScale;
  std::vector<double> rowLevel;
  std::vector<double> rowMarginal;
  std::vector<int32_t> rowStat;
  std::vector<int32_t> rowCStat;

  // Columns, 0-based. Infinite bounds are +-kHostInf here.
  std::vector<int32_t> colType;
  std::vector<double> colLower;
  std::vector<double> colUpper;
  std::vector<double> colScale;
  std::vector<double> colLevel;
  std::vector<double> colMarginal;
  std::vector<int32_t> colStat;
  std::vector<int32_t> colCStat;

  // The matrix by columns: entries of column j (0-based) are colStart[j] .. colStart[j+1]-1;
  // entryRow is 0-based, entryNonlinear is 1 for a nonlinear entry. A linear model may leave
  // entryNonlinear empty, and the file readers of linear formats do: a mark per entry that is
  // always 0 would take as much memory as the rows of the entries.
  std::vector<int32_t> colStart;
  std::vector<int32_t> entryRow;
  std::vector<double> entryValue;
  std::vector<int32_t> entryNonlinear;

  // The dictionary. Symbol numbers are 1-based indices into symbols; label numbers (UELs)
  // are 1-based indices into labels. The labels of row i are
  // rowUels[rowUelStart[i] .. rowUelStart[i+1]-1], likewise for columns.
  std::vector<HostSymbol> symbols;
  std::vector<HostLabel> labels;
  std::vector<int32_t> rowSymbol;
  std::vector<int32_t> rowUelStart;
  std::vector<int32_t> rowUels;
  std::vector<int32_t> colSymbol;
  std::vector<int32_t> colUelStart;
  std::vector<int32_t> colUels;

  // A model read from an AMPL .nl file: the file whose expressions give the derivatives at a
  // point, and for each row the .nl item behind it: constraint c as c (0-based), objective o
  // as -1 - o. Empty for a model that holds its derivatives itself.
  std::string nlFile;
  std::vector<int32_t> rowNlItem;

  // Solution state.
  bool hasSolution = false;
  int32_t modelStat = kStatNoSolutionReturned;
  int32_t solveStat = 1;
};

// Bounds of this size or more are infinite: the host's own infinity values (3e+300, 4e+300)
// must never stand for a finite bound.
inline constexpr double kHostInfiniteBound = 1e300;

// Applies the rule of kHostInfiniteBound to the bounds of every column: a lower bound at or
// below -1e300 becomes minus infinity, an upper bound at or above 1e300 plus infinity. A lower
// bound at or above 1e300, or an upper bound at or below -1e300, can be met by no value: false,
// with the column's name and the bound in `error`.
bool hostInfiniteBounds(HostInstance& inst, std::string& error);

// Number of nonzeros of an instance.
inline int32_t hostNzCount(const HostInstance& inst) {
  return inst.colStart.empty() ? 0 : inst.colStart.back();
}

// Whether entry k (0-based) is nonlinear.
inline bool hostEntryNonlinear(const HostInstance& inst, std::size_t k) {
  return !inst.entryNonlinear.empty() && inst.entryNonlinear[k] > 0;
}

// Number of entries flagged nonlinear.
int32_t hostNonlinearCount(const HostInstance& inst);

// Fills what an instance built in code leaves empty: scale factors 1 (where some are given;
// none given stays empty, all 1), levels and marginals 0,
// condition statuses 0, basis statuses from the levels (hostDefaultStatuses), no nonlinear
// marks, and, when it has no dictionary, the names R1..Rm and C1..Cn (symbols R and
// C, one label each). Sizes given by the vectors that are filled: rowType and colType.
void hostCompleteInstance(HostInstance& inst);

// Basis statuses that a level implies: a column at its lower bound 0, at its upper bound 1,
// else 2 (basic); a row whose level equals its right-hand side 0 (=E=, =G=) or 1 (=L=), else 2.
// Fills only the entries where `given` is false (all when it is empty).
void hostDefaultStatuses(HostInstance& inst, const std::vector<bool>& rowGiven,
                         const std::vector<bool>& colGiven);

// True when an instance without a solution holds in its solution vectors only what
// hostCompleteInstance gives them: levels, marginals and condition statuses 0, basis statuses
// from level 0. Such vectors are not handed over: hostRestoreSolutionDefaults makes them again.
bool hostSolutionIsDefault(const HostInstance& inst);
// Gives an instance without a solution whose solution vectors are all empty those values. An
// instance with a solution, with some of those vectors given, or whose rowType, rowRhs,
// colLower and colUpper do not fit its counts is left as it is.
void hostRestoreSolutionDefaults(HostInstance& inst);

// Checks that the vectors of an instance fit its counts and that every entry names a row.
// False with a message otherwise.
bool hostCheckInstance(const HostInstance& inst, std::string& error);

// The full name of a row or column as a modeller writes it: symbol, then the labels in
// parentheses separated by commas, each between its quote characters.
std::string hostRowName(const HostInstance& inst, int32_t row0);
std::string hostColName(const HostInstance& inst, int32_t col0);
