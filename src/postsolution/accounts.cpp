// The accounts of POSTOPT and of NONOPT with VERBOSE. A variable's budget rebuilds its reduced
// cost from the marginals of the rows it enters; an equation's row sum rebuilds its level from
// the coefficients and the levels of its variables. Only the entries that were shown count.
#include <algorithm>
#include <cmath>

#include "postsolution/engine.h"
#include "postsolution/engine_internal.h"

namespace {

Channel& out(const Engine& e) { return e.run.statusChannel; }

// Closing lines of a budget: the text, labelWidth - 1 blanks, the number.
void budgetLine(const Engine& e, const char* tmpl, double value) {
  writeLine(out(e), tmpl, {e.blanks(e.labelWidth - 1), value});
}

}  // namespace

void budgetLeadLines(Engine& e, int32_t col) {
  const SolutionRegions& s = e.r.solution;
  double x = s.colLevel[col];
  if (std::fabs(x) <= ZERO_LEVEL_TOLERANCE) {
    x = 0.0;
    s.colLevel[col] = 0.0;
  }
  writeLine(out(e), "('   SOLUTION VALUE',28X,F15.6)", {x});
  if (s.colLower[col] != e.run.minusInf && s.colLower[col] != 0.0) {
    writeLine(out(e), "('   LOWER BOUND ',30X,F15.6)", {s.colLower[col]});
  }
  if (s.colUpper[col] != e.run.plusInf) {
    writeLine(out(e), "('   UPPER BOUND ',30X,F15.6)", {s.colUpper[col]});
  }
  const int32_t w = std::min(e.run.pageWidth, 168);
  writeLine(out(e), "(3X,/,3X,'EQN',A,' Aij',9X,'Ui',7X,'Aij*Ui')", {e.blanks(w - 38)});
}

void budgetEntry(Engine& e, int32_t row, double coefficient, const char* mark) {
  const double price = e.r.solution.rowMarginal[row];
  const double term = price * coefficient;
  e.budgetSum += term;
  e.budgetAbs += std::fabs(term);
  entryLine(e, mark, {coefficient, price, term});
}

void closeBudget(Engine& e, int32_t col) {
  const SolutionRegions& s = e.r.solution;
  const double m = s.colMarginal[col];
  if (e.flags.intersect != 0) {
    budgetLine(e, "(' SUM OF THESE TERMS        ',2X,A,F12.5)", e.budgetSum);
    budgetLine(e, "(' TRUE REDUCED COST         ',2X,A,F12.5,/)", m);
    return;
  }
  const double error = e.budgetSum + m;
  if (!(std::fabs(error) <= BUDGET_TOLERANCE * e.budgetAbs)) {
    writeLine(out(e), "(1X,' ',/,' REDUCED COST EXCLUDING BOUNDS ',A,F12.5)",
              {e.blanks(e.labelWidth - 3), e.budgetSum});
    if (col != e.run.objVar) {
      budgetLine(e,
                 e.solutionClass == SOLUTION_NEITHER
                     ? "(' Accounting Error -NLP/MIP?',2X,A,F12.5)"
                     : "(' Accounting Error -phase 1?',2X,A,F12.5)",
                 -error);
    }
  }
  const double level = s.colLevel[col], lower = s.colLower[col], upper = s.colUpper[col];
  if (level == lower && lower != 0.0) {
    budgetLine(e, "(' EFFECT OF LOWER BOUND     ',2X,A,F12.5)", m);
    budgetLine(e, "(' TRUE REDUCED COST         ',2X,A,F12.5,/)", 0.0);
  } else if (level == upper && !(lower == upper && lower != 0.0)) {
    budgetLine(e, "(' EFFECT OF UPPER BOUND     ',2X,A,F12.5)", m);
    budgetLine(e, "(' TRUE REDUCED COST         ',2X,A,F12.5,/)", 0.0);
  } else {
    budgetLine(e, "(' TRUE REDUCED COST         ',2X,A,F12.5,/)", -m);
  }
}

void rowSumLeadLines(Engine& e) {
  const int32_t w = std::min(e.run.pageWidth, 168);
  writeLine(out(e), "(3X,/,3X,'VAR',A,' Aij',9X,'Xj',7X,'Aij*Xj')", {e.blanks(w - 37)});
}

void clearRowSums(Engine& e) {
  e.rowSum = 0.0;
  e.rowAbs = 0.0;
  e.rowHasNonlinear = false;
}

void rowSumEntry(Engine& e, int32_t col, double coefficient, bool nonlinear, const char* mark) {
  const double x = e.r.solution.colLevel[col];
  const double term = coefficient * x;
  if (nonlinear) e.rowHasNonlinear = true;
  entryLine(e, mark, {coefficient, x, term});
  e.rowSum += term;
  e.rowAbs += std::fabs(term);
}

void closeRowSum(Engine& e, int32_t row) {
  const SolutionRegions& s = e.r.solution;
  const double level = s.rowLevel[row], rhs = s.rowRhs[row];
  double rowError = 0.0, rowOther = 0.0, rowSlack = 0.0, rowSurplus = 0.0;
  // Only an overshoot counts: a sum short of the level by any amount makes neither.
  if (std::fabs(e.rowSum) - std::fabs(level) > ROWSUM_TOLERANCE * e.rowAbs) {
    if (e.rowHasNonlinear) {
      rowOther = level - e.rowSum;
      e.rowSum += rowOther;
    } else {
      rowError = e.rowSum - level;
    }
  }
  const double slackFloor = SLACK_TOLERANCE * e.rowAbs;
  const char* relation = " =N= ";
  switch (e.r.rowType[row]) {
    case kRowE: relation = " =E= "; break;
    case kRowG:
      relation = " =G= ";
      rowSurplus = e.rowSum - rhs;
      if (std::fabs(rowSurplus) < slackFloor) rowSurplus = 0.0;
      break;
    case kRowL:
      relation = " =L= ";
      rowSlack = rhs - e.rowSum;
      if (std::fabs(rowSlack) < slackFloor) rowSlack = 0.0;
      break;
    default:
      rowError = 0.0;
      rowSlack = std::fabs(rhs);
      break;
  }
  const std::string_view gap = e.blanks(e.labelWidth - 1);
  if (e.flags.intersect == 0) {
    if (rowError != 0.0) writeLine(out(e), "(1X,'Error in rowsum ',12X,A,F12.5)", {gap, rowError});
    if (rowOther != 0.0) writeLine(out(e), "(1X,'Other Nonlinear ',12X,A,F12.5)", {gap, rowOther});
  }
  writeLine(out(e), "(3X,A5,24X,A,A5)", {relation, gap, relation});
  writeLine(out(e), "(1X,'RHS COEFF       ',12X,A,F12.5,/)", {gap, rhs});
  const int32_t type = e.r.rowType[row];
  const bool free = type != kRowE && type != kRowG && type != kRowL;
  if (e.flags.intersect != 0) {
    writeLine(out(e), "(1X,'SUM EQUALS      ',12X,A,F12.5)", {gap, e.rowSum});
    if (free) writeLine(out(e), "(1X,'SLACK EQUALS    ',12X,A,F12.5)", {gap, rowSlack});
  } else if (type == kRowG) {
    writeLine(out(e), "(1X,'SURPLUS EQUALS  ',12X,A,F12.5)", {gap, rowSurplus});
  } else if (type == kRowL || free) {
    writeLine(out(e), "(1X,'SLACK EQUALS    ',12X,A,F12.5)", {gap, rowSlack});
  }
  writeLine(out(e), "(1X,'SHADOW PRICE    ',12X,A,F12.5,1X,' ')", {gap, s.rowMarginal[row]});
}
