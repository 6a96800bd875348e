// The advisory lists of ADVISORY (lists 1 to 3) and of NONOPT's IDENTIFY mode (all seven):
// items that may make a model infeasible or unbounded, from its bounds, signs and right-hand
// sides, and, after a solve, from the size of its levels and marginals. A list's head is
// written with its first item; a list without items writes nothing.
#include <algorithm>
#include <array>
#include <cmath>

#include "analysis/analysis.h"
#include "host/host.h"
#include "model/blocks.h"
#include "postsolution/engine.h"
#include "postsolution/engine_internal.h"

namespace {

constexpr std::array<const char*, 8> kListHeads = {
    nullptr,
    "(/,' ----### THESE VARIABLES ARE POTENTIALLY INFEASIBLE',/,'             To find the cause "
    "of infeasibility',/,'             convert bounds on these into equations',/,'            "
    " containing artificial variables with an  ',/,'             entry in the eqn and a "
    "penalty in the ',/,'             objective function. Then solve the model  ',/,'        "
    "     and manually or through MODRAKE find ',/,'             large marginals for "
    "equations or bounds')",
    "(/,' ----### THESE VARIABLES ARE POTENTIALLY UNBOUNDED',/,'             To find the cause "
    "of unboundedness',/,'             bound them or the objective function',/,'            "
    " variable at a large value. Then solve and ',/,'             manually or through "
    "MODRAKE find ',/,'             large levels for variables in solution')",
    "(/,' ----### THESE EQUATIONS ARE POTENTIALLY INFEASIBLE',/,'             To find the cause "
    "of infeasibility',/,'             enter artificial variables with an  ',/,'            "
    " entry in these eqns and a penalty in the ',/,'             objective function. Then "
    "solve the model  ',/,'             and manually or through MODRAKE find ',/,'           "
    "  large marginals for equations or bounds')",
    "(/,' ----### THESE VARIABLES MAY BE UNBOUNDED',/,'         Since their levels are so "
    "large',/)",
    "(/,' ----### THESE VARIABLE BOUNDS MAY PARTIALLY',1X,'CAUSE INFEASIBLE MODEL',/,'       "
    "  Since their marginals are so large',/)",
    "(/,' ----### THESE EQUATIONS MAY BE UNBOUNDED',/,'         Since their levels are so "
    "large',/)",
    "(/,' ----### THESE EQUATIONS MAY PARTIALLY',1X,'CAUSE INFEASIBLE MODEL',/,'         "
    "Since their marginals are so large',/)",
};

Channel& out(const Engine& e) { return e.run.statusChannel; }

void head(Engine& e, size_t list) {
  if (e.listHeadWritten[list]) return;
  e.listHeadWritten[list] = true;
  writeLine(out(e), kListHeads[list]);
}

void columnLabel(Engine& e, int32_t col) {
  int32_t length = 0, dim = 0, isNew = 0;
  varItemLabel(e.run, e.run.dictionary, col, e.label, length, dim, isNew, MAX_LINE);
}

void rowLabel(Engine& e, int32_t row) {
  int32_t length = 0, dim = 0;
  equItemLabel(e.run.dictionary, row, e.label, length, LABEL_FULL, TextTable{}, dim, MAX_LINE);
}

// An item of lists 1 to 3: its label alone.
void labelItem(Engine& e, size_t list) {
  head(e, list);
  printFoldedItem(e.label, e.run.pageWidth - 7, 4, out(e));
}

// An item of lists 4 to 7: the label beside the word and the value.
void sizeItem(Engine& e, size_t list, const char* word, double value) {
  head(e, list);
  foldLabel(e, e.label, static_cast<size_t>(std::max(e.labelWidth, 1)));
  writeLine(out(e), "(3X,A,1X,A5,1X,F15.7)", {e.lines[0], word, value});
  for (size_t p = 1; p < e.lineCount; ++p) writeLine(out(e), "(1X,A)", {e.lines[p]});
}

}  // namespace

void adviseColumn(Engine& e, int32_t col, int32_t objCoefSign) {
  const SolutionRegions& s = e.r.solution;
  if ((s.colLower[col] > 0.0 && s.colLower[col] != e.run.minusInf) || s.colUpper[col] < 0.0) {
    columnLabel(e, col);
    labelItem(e, 1);
  }
  s.colCStat[col] = objCoefSign;
}

void adviseBetweenPasses(Engine& e) {
  const RunContext& rs = e.run;
  const SolutionRegions& s = e.r.solution;
  for (int32_t j = 1; j <= rs.colCount; ++j) {
    if (e.objDirection * s.colCStat[j] < 0 && j != rs.objVar) {
      columnLabel(e, j);
      labelItem(e, 2);
    }
  }
  for (int32_t i = 1; i <= rs.rowCount; ++i) {
    const double rhs = s.rowRhs[i];
    const int32_t type = e.r.rowType[i];
    if ((type == kRowE && rhs != 0.0) || (type == kRowG && rhs > 0.0) ||
        (type == kRowL && rhs < 0.0)) {
      rowLabel(e, i);
      labelItem(e, 3);
    }
  }
  if (e.mode->adviceLists < 7) return;
  e.labelWidth = std::min(rs.pageWidth - 25, 130);
  // Lists 4 to 7: the size lists, each a kind of value against its limit; the objective
  // variable and row are left out.
  const double levelLimit = largeValueLimit(rs.largeLevelExp);
  const double marginalLimit = largeValueLimit(rs.largeMarginalExp);
  const struct {
    Vec1<double> values;
    double limit;
    bool columns;
    const char* word;
  } sizeLists[] = {{s.colLevel, levelLimit, true, "level"},
                   {s.colMarginal, marginalLimit, true, "marg "},
                   {s.rowLevel, levelLimit, false, "level"},
                   {s.rowMarginal, marginalLimit, false, "marg "}};
  size_t list = 4;
  for (const auto& l : sizeLists) {
    const int32_t skip = l.columns ? rs.objVar : rs.objRow;
    for (int32_t k = 1; k <= l.values.size(); ++k) {
      if (!(std::fabs(l.values[k]) > l.limit) || k == skip) continue;
      if (l.columns) {
        columnLabel(e, k);
      } else {
        rowLabel(e, k);
      }
      sizeItem(e, list, l.word, l.values[k]);
    }
    ++list;
  }
}

double largeValueLimit(int32_t exponent) {
  return static_cast<double>(std::pow(10.0f, static_cast<float>(exponent)));
}
