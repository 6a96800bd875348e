#include "analysis/analysis.h"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "host/instance.h"
#include "model/blocks.h"
#include "model/work_array.h"

namespace {

// Explanation of each finding kind, by kind number; empty for numbers that are no kind.
const std::array<std::string_view, PROBLEM_KINDS> kKindMessage = [] {
  std::array<std::string_view, PROBLEM_KINDS> m{};
  m[3] =
      "(' **** Warning  This =L= constraint causes all'"
      ",/,'               variables in it to have a zero solution value'"
      ",/,'               since the nonnegative variables present'"
      ",/,'                         have only 0 or + coefficients'"
      ",/,'                     the nonpositive variables present'"
      ",/,'                         have only 0 or - coefficients'"
      ",/,'                     the unrestricted variables '"
      ",/,'                         have only zero coefficients'"
      ",/,'                     and the rhs is zero.')";
  m[4] =
      "(/,' **** Warning  These =L= constraints are redundant'"
      ",/,'               since the nonnegative variables present'"
      ",/,'                        have only 0 or - coefficients'"
      ",/,'                     the nonpositive variables present'"
      ",/,'                         have only 0 or + coefficients'"
      ",/,'                         have only positive coefficients'"
      ",/,'                     the unrestricted variables '"
      ",/,'                         have only zero coefficients'"
      ",/,'                     and the RHS is positive')";
  m[5] =
      "(/,' **** ERROR This =L= constr. causes an infeasible',1X,'model'"
      ",/,'               since the nonnegative variables present'"
      ",/,'                         have only 0 or + coefficients'"
      ",/,'                     the nonpositive variables present'"
      ",/,'                         have only 0 or - coefficents'"
      ",/,'                     the unrestricted variables '"
      ",/,'                         have only zero coefficients'"
      ",/,'                     and the RHS is negative')";
  m[6] =
      "(/,' **** Warning  This =G= constraint causes all'"
      ",/,'               variables in it to have a zero solution value'"
      ",/,'               since the nonnegative variables present'"
      ",/,'                         have only 0 or - coefficients'"
      ",/,'                     the nonpositive variables present'"
      ",/,'                         have only 0 or + coefficients'"
      ",/,'                     the unrestricted variables '"
      ",/,'                         have only zero coefficients'"
      ",/,'                     and the RHS is zero.')";
  m[7] =
      "(/,' **** Warning  This =G= constraint is redundant'"
      ",/,'               since the nonnegative variables present'"
      ",/,'                        have only 0 or + coefficients'"
      ",/,'                     the nonpositive variables present'"
      ",/,'                         have only 0 or - coefficients'"
      ",/,'                         have only positive coefficents'"
      ",/,'                     the unrestricted variables '"
      ",/,'                         have only zero coefficients'"
      ",/,'                     and the RHS is negative')";
  m[8] =
      "(/,' **** ERROR This =G= constr. causes an infeasible model'"
      ",/,'               since the nonnegative variables present'"
      ",/,'                         have only 0 or - coefficients'"
      ",/,'                     the nonpositive variables present'"
      ",/,'                         have only 0 or + coefficients'"
      ",/,'                     the unrestricted variables '"
      ",/,'                         have only zero coefficients'"
      ",/,'                     and the RHS is positive')";
  m[9] =
      "(/,' **** ERROR This =E= constraint causes infeasiblity'"
      ",/,'               since the nonnegative variables present'"
      ",/,'                        have only 0 or - coefficients'"
      ",/,'                     the nonpositive variables present'"
      ",/,'                         have only 0 or + coefficients'"
      ",/,'                         have only positive coefficients'"
      ",/,'                     the unrestricted variables '"
      ",/,'                         have only zero coefficients'"
      ",/,'                     and the RHS is positive')";
  m[10] =
      "(/,' **** ERROR    This =E= constraint causes infeasiblity'"
      ",/,'               since the nonnegative variables present'"
      ",/,'                        have only 0 or + coefficients'"
      ",/,'                     the nonpositive variables present'"
      ",/,'                         have only 0 or - coefficients'"
      ",/,'                         have only positive coefficents'"
      ",/,'                     the unrestricted variables '"
      ",/,'                         have only zero coefficients'"
      ",/,'                     and the rhs is negative')";
  m[11] =
      "(/,' **** Warning  This =E= constraint causes all'"
      ",/,'               variables in it to have a zero solution value'"
      ",/,'               since the nonnegative variables present'"
      ",/,'                         have only 0 or - coefficients'"
      ",/,'                     the nonpositive variables present'"
      ",/,'                         have only 0 or + coefficients'"
      ",/,'                     the unrestricted variables '"
      ",/,'                         have only zero coefficients'"
      ",/,'                     and the RHS is zero.')";
  m[12] =
      "(/,' **** Warning  This =E= constraint causes all'"
      ",/,'               variables in it to have a zero solution value'"
      ",/,'               since there is only one unrestricted'"
      ",/,'               variable present and the RHS is zero.')";
  m[13] =
      "(/,' **** Warning  This =E= constraint causes all'"
      ",/,'               variables in it to have a zero solution value'"
      ",/,'               since the nonnegative variables present'"
      ",/,'                         have only 0 or + coefficients'"
      ",/,'                     the nonpositive variables present'"
      ",/,'                         have only 0 or - coefficients'"
      ",/,'                     the unrestricted variables '"
      ",/,'                         have only zero coefficients'"
      ",/,'                     and the RHS is zero.')";
  m[14] =
      "(' **** ERROR    This =E= constraint is infeasible '"
      ",/,'               the variables it contains have bounds that  '"
      ",/,'               insure it cannot be satisfied because of'"
      ",/,'                lower bounds on variables with pos coef and'"
      ",/,'                upper bounds on variables with neg coefs')";
  m[15] =
      "(' **** ERROR    This =E= constraint is infeasible '"
      ",/,'               the variables it contains have bounds that  '"
      ",/,'               insure it cannot be satisfied because of'"
      ",/,'                lower bounds on variables with neg coef and'"
      ",/,'                upper bounds on variables with pos coefs')";
  m[16] =
      "(' **** ERROR    This =L= constraint is infeasible '"
      ",/,'               the variables it contains have bounds that  '"
      ",/,'               insure it cannot be satisfied because of'"
      ",/,'                lower bounds on variables with pos coef and'"
      ",/,'                upper bounds on variables with neg coefs')";
  m[17] =
      "(' **** Warning  This =L= constraint is redundant '"
      ",/,'               the variables it contains have bounds that  '"
      ",/,'               insure it cannot be binding because of'"
      ",/,'                lower bounds on variables with neg coef and'"
      ",/,'                upper bounds on variables with pos coefs')";
  m[18] =
      "(' **** Warning  This =G= constraint is redundant '"
      ",/,'               the variables it contains have bounds that  '"
      ",/,'               insure it cannot be binding because of'"
      ",/,'                lower bounds on variables with pos coef and'"
      ",/,'                upper bounds on variables with neg coefs')";
  m[19] =
      "(' **** ERROR    This =G= constraint is infeasible '"
      ",/,'               the variables it contains have bounds that  '"
      ",/,'               insure it cannot be satisfied because of'"
      ",/,'                lower bounds on variables with neg coef and'"
      ",/,'                upper bounds on variables with pos coefs')";
  m[1] =
      "(/,' **** Warning These variables will equal their',1X,'lower bound'"
      ",/,'              they have neg (in max) object function coeff'"
      ",/,'              all 0 or - coefficients in the =G= rows '"
      ",/,'              all 0 or + coefficients in the =L= rows'"
      ",/,'              and no coefficients in the =E= rows')";
  m[2] =
      "(/,' **** Warning These variables will equal their',1X,'upper bound'"
      ",/,'              they have pos (in max) object function coeff'"
      ",/,'              all 0 or + coefficients in the =G= rows '"
      ",/,'              all 0 or - coefficients in the =L= rows'"
      ",/,'              and no coefficients in the =E= rows')";
  m[20] =
      "(/,'**** ERROR These variables are unbounded -- they'"
      ",/,'           have a desirable objective function coeffic'"
      ",/,'           all 0 or + coefficients in the =G= rows '"
      ",/,'           all 0 or - coefficients in the =L= rows'"
      ",/,'           and no coefficients in the =E= rows')";
  m[21] =
      "(/,'**** WARNING These variables relax constraints they'"
      ",/,'           fall in as they have no objective function coeff'"
      ",/,'           all 0 or + coefficients in the =G= rows '"
      ",/,'           all 0 or - coefficients in the =L= rows'"
      ",/,'           and no coefficients in the =E= rows')";
  m[23] =
      "(/,' **** Warning  These variables will equal zero '"
      ",/,'               because they have a zero lower bound '"
      ",/,'               an undesirable object function coefficient'"
      ",/,'               all 0 or - coefficients in the =G= rows '"
      ",/,'               all 0 or + coefficients in the =L= rows'"
      ",/,'               and no coefficients in the =E= rows')";
  m[24] =
      "(/,' **** Warning  These variables will equal zero'"
      ",/,'               because they have a zero upper bound'"
      ",/,'               an undesirable object function coefficent'"
      ",/,'               all 0 or - coefficients in the =g= rows '"
      ",/,'               all 0 or + coefficients in the =l= rows'"
      ",/,'               and no coefficients in the =e= rows')";
  m[25] =
      "(1X,' **** ERROR    These variables are unbounded'"
      ",/,'               because they have no lower bound '"
      ",/,'               a desirable objective function coeffic'"
      ",/,'               all 0 or - coefficients in the =G= rows '"
      ",/,'               all 0 or + coefficients in the =L= rows'"
      ",/,'               and no coefficients in the =E= rows')";
  m[26] =
      "(1X,' **** WARNING  These variables relax all constraint'"
      ",/,'               they fall in as they have no lower '"
      ",/,'               bound or objective function coefficient'"
      ",/,'               all 0 or - coefficients in the =G= rows '"
      ",/,'               all 0 or + coefficients in the =L= rows'"
      ",/,'               and no coefficients in the =E= rows')";
  return m;
}();

constexpr const char* kEquationCaution =
    "(/,' **** There are nonlinear terms here, so message ',/,"
    "'      may only refer to a local phenomena')";
constexpr const char* kVariableCaution =
    "(/,'**** There are nonlinear terms here, so message ',/,"
    "'     may only refer to a local phenomena')";

// Summary groups of the findings.
enum Group { kForcesZero = 0, kInfeasible = 1, kRedundant = 2, kUnbounded = 3, kRelaxes = 4 };

// One finding: explanation at a change of kind, then the item. `caution` is the nonlinear
// note of the report; `style` is the first-item style that a new kind opens with.
struct FindingRun {
  int32_t itemClass;
  const char* caution;
  int32_t openStyle;
  int32_t lastKind = 0;
  int32_t style = 5;
};

void reportFinding(RunContext& rs, FindingRun& run, int32_t kind, int32_t nonlinear,
                   std::string_view label, int32_t mode) {
  Channel& status = rs.statusChannel;
  if (kind != run.lastKind) {
    writeLine(status, kKindMessage[static_cast<size_t>(kind)]);
    if (nonlinear > 0) writeLine(status, run.caution);
    run.style = run.openStyle;
  }
  recordProblem(rs, run.itemClass, label, kind, mode);
  printFoldedItem(label, rs.pageWidth, run.style, status);
  run.style = 5;
  run.lastKind = kind;
}

}  // namespace

void classifyBounds(double upper, double lower, double plusInf, double minusInf, int32_t index,
                    Table2<int32_t> table, int32_t hostType) {
  int32_t& signClass = table(index, 1);
  int32_t& lowerState = table(index, 2);
  int32_t& upperState = table(index, 3);
  int32_t& boundClass = table(index, 4);
  int32_t& typeCode = table(index, 5);

  typeCode = hostType + 3;

  const double lowerLimit = LOWER_INF_FRACTION * minusInf;
  if (lower >= lowerLimit) {
    lowerState = NO_LOWER;
  } else if (lower == 0.0) {
    if (lowerState == NO_LOWER) lowerState = 0;
  } else if (lower < 0.0) {
    if (lowerState == NO_LOWER || lowerState == 0) lowerState = -1;
  } else if (lower > 0.0) {
    if (lowerState < 1) lowerState = 1;
  }

  const double upperLimit = UPPER_INF_FRACTION * plusInf;
  if (upperState == NO_UPPER) {
    if (upper == 0.0) {
      upperState = 0;
    } else if (upper < 0.0) {
      upperState = -1;
    } else if (upper > 0.0 && upper < upperLimit) {
      upperState = 1;
    }
  }

  signClass = 1;
  boundClass = 1;
  if (lowerState < 0) {
    if (upperState < 1) {
      signClass = -1;
      boundClass = 2;
    } else {
      signClass = 2;
      boundClass = 3;
    }
  }
  if (typeCode == 3) typeCode = boundClass;
}

void buildAnalysisTables(const AnalysisRegions& r, RunContext& rs) {
  ovmHandle model = rs.model;
  const int32_t m = rs.rowCount, n = rs.colCount;

  for (int32_t i = 1; i <= m; ++i) {
    r.rowScale[i] = rs.useScale != 0 ? ovmGetEquScaleOne(model, i) : 1.0;
    r.rowRhs[i] = ovmGetRhsOne(model, i) * r.rowScale[i];
    r.anaRowType[i] = ovmGetEquTypeOne(model, i);
    r.rowActivity(i, 1) = 0.0;
    r.rowActivity(i, 2) = 0.0;
    r.rowActivity(i, 3) = 0.0;
    r.rowActivity(i, 4) = 1.0;
  }
  r.rowSignTable.fill(0);
  r.colSignTable.fill(0);
  for (int32_t j = 1; j <= n; ++j) {
    r.colBoundTable(j, 1) = 0;
    r.colBoundTable(j, 2) = NO_LOWER;
    r.colBoundTable(j, 3) = NO_UPPER;
    r.colBoundTable(j, 4) = 0;
    r.colBoundTable(j, 5) = 0;
  }

  const double objFactor = rs.minimizing ? -1.0 : 1.0;
  int32_t objSign = 0;
  for (int32_t j = 1; j <= n; ++j) {
    double lower = 0.0;
    double upper = 0.0;
    const int32_t t = readColumnBounds(rs, j, r.colScale, j, r.colBoundTable, lower, upper);
    walkColumn(model, j, m, r.colScale, r.rowScale, [&](int32_t i, double a, int32_t nonlinear) {
      if (nonlinear > 0) {
        r.rowSignTable(i, 1, 3) += 1;
        r.colSignTable(j, 1, 3) += 1;
      }
      if (i == rs.objRow) {
        if (a > 0.0) r.rowSignTable(i, t, 1) += 1;
        if (a < 0.0) r.rowSignTable(i, t, 2) += 1;
        if (j == rs.objVar) {
          if (a > 0.0) objSign = 1;
          if (a < 0.0) objSign = -1;
        }
        if (a != 0.0) {
          if (a * objFactor > 0.0) {
            r.colSignTable(j, 4, 2) = 1;
          } else {
            r.colSignTable(j, 4, 1) = 1;
          }
        }
        return;
      }
      const int32_t typeSlot = rowTypeSlot(r.anaRowType[i]);
      double& minActivity = r.rowActivity(i, 1);
      double& minState = r.rowActivity(i, 2);
      double& maxActivity = r.rowActivity(i, 3);
      double& maxState = r.rowActivity(i, 4);
      if (a > 0.0) {
        minActivity += a * lower;
        if (lower != 0.0 && minState >= 0.0) minState = 1.0;
        if (lower == rs.minusInf) minState = -1.0;
        maxActivity += a * upper;
        if (upper == rs.plusInf) maxState = 0.0;
        r.rowSignTable(i, t, 1) += 1;
        r.colSignTable(j, typeSlot, 1) += 1;
      } else if (a < 0.0) {
        minActivity += a * upper;
        if (upper != 0.0 && minState >= 0.0) minState = 1.0;
        if (upper == rs.plusInf) minState = -1.0;
        maxActivity += a * lower;
        if (lower == rs.minusInf) maxState = 0.0;
        r.rowSignTable(i, t, 2) += 1;
        r.colSignTable(j, typeSlot, 2) += 1;
      }
    });
  }

  // Objective turn: keep goodObjective meaning "raising the variable improves the objective"
  // whichever side of the objective row the objective variable stands on.
  if (objSign < 0) {
    for (int32_t j = 1; j <= n; ++j) std::swap(r.colSignTable(j, 4, 1), r.colSignTable(j, 4, 2));
  }
}

void recordProblem(RunContext& rs, int32_t itemClass, std::string_view label, int32_t kind,
                   int32_t mode) {
  if (mode > 0) return;
  if (kind < 0 || kind >= PROBLEM_KINDS) return;
  rs.analysisProblemTally[static_cast<size_t>(kind)] += 1;
  rs.analysisProblemCount += 1;
  if (rs.analysisProblemTally[static_cast<size_t>(kind)] > MAX_PROBLEMS_PER_KIND) return;
  std::FILE* file = rs.analysisChannel;
  if (rs.analysisProblemCount == 1) {
    if (file != nullptr) {
      std::rewind(file);
      std::fflush(file);
      // Writing from the start ends the file there: what stood behind goes.
      if (ftruncate(fileno(file), 0) != 0) std::clearerr(file);
    }
    rs.analysisProblemsPending = 1;
  }
  if (file == nullptr) return;
  Channel channel{file, nullptr};
  if (itemClass != rs.lastItemClass) {
    rs.lastItemClass = itemClass;
    writeFree(channel, {itemClass == 1 ? "variable" : "equation"});
  }
  size_t n = label.size();
  while (n > 0 && label[n - 1] == ' ') --n;
  writeLine(channel, "(3X,A)", {label.substr(0, n)});
  std::fflush(file);
}

void printFoldedItem(std::string_view label, int32_t lineWidth, int32_t style,
                     Channel& channel) {
  int32_t width = lineWidth >= 131 ? 130 : lineWidth;
  if (width < 1) width = 1;
  std::vector<std::string> lines;
  foldItemLabel(label, width, lines, MAX_LINE);
  for (std::string& line : lines) {
    if (line.size() < static_cast<size_t>(width)) line.resize(static_cast<size_t>(width), ' ');
  }
  const char* first = "(5X,A)";
  switch (style) {
    case 1: first = "(/,' ##  ',A)"; break;
    case 2: first = "(/,5X,A)"; break;
    case 4: first = "('     ',A)"; break;
    default: break;
  }
  for (size_t k = 0; k < lines.size(); ++k) {
    writeLine(channel, k == 0 ? first : "(5X,A)", {lines[k]});
  }
}

void reportVariableFindings(RunContext& rs, int32_t colTotal, TextTable blockNames,
                            Table3<int32_t> signTable, Table2<int32_t> boundTable,
                            int32_t skipIndex, int32_t mode, ovdHandle dictionary) {
  writeLine(rs.statusChannel, "(' ')");
  writeLine(rs.statusChannel,
            "(3X,'----### Analysis of Variables ( nonlinear',1X,'terms at current point)',/,1X)");
  FindingRun run{1, kVariableCaution, 5};
  rs.lastColSymbol = 0;
  bool group[5] = {false, false, false, false, false};
  std::string label;
  label.reserve(MAX_LINE);

  for (int32_t j = 1; j <= colTotal; ++j) {
    const int32_t nonlinear = signTable(j, 1, 3);
    if (mode == 0) {
      int32_t isNew = 0;
      varItemSymbol(rs, dictionary, j, isNew);
      if (isNew != 0) rs.analysisProblemTally.fill(0);
    }
    if (j == skipIndex) continue;

    const int32_t lowerState = boundTable(j, 2);
    const int32_t upperState = boundTable(j, 3);
    const int32_t good = signTable(j, 4, 1);
    const int32_t bad = signTable(j, 4, 2);
    const int32_t eqCount = signTable(j, 1, 1) + signTable(j, 1, 2);
    const int32_t riseLimits = signTable(j, 2, 2) + signTable(j, 3, 1) + eqCount;
    const int32_t fallLimits = signTable(j, 2, 1) + signTable(j, 3, 2) + eqCount;

    int32_t kind = 0;
    Group g = kForcesZero;
    if (upperState > 1 && good > 0 && riseLimits + bad == 0) {
      kind = 20, g = kUnbounded;
    } else if (upperState > 1 && good == 0 && riseLimits + bad == 0) {
      kind = 21, g = kRelaxes;
    } else if (lowerState == 0 && fallLimits + good == 0) {
      kind = 23, g = kForcesZero;
    } else if ((lowerState == 1 || lowerState == -1) && bad > 0 && fallLimits + good == 0) {
      kind = 1, g = kForcesZero;
    } else if ((upperState == 1 || upperState == -1) && good > 0 && riseLimits + bad == 0) {
      kind = 2, g = kForcesZero;
    } else if (upperState == 0 && bad > 0 && riseLimits + good == 0) {
      kind = 24, g = kForcesZero;
    } else if (lowerState < -1 && bad > 0 && fallLimits + good == 0) {
      kind = 25, g = kUnbounded;
    } else if (lowerState < -1 && bad == 0 && fallLimits + good == 0) {
      kind = 26, g = kRelaxes;
    }
    if (kind == 0) continue;

    if (mode == 0) {
      int32_t length = 0, dim = 0, isNew = 0;
      varItemLabel(rs, dictionary, j, label, length, dim, isNew, MAX_LINE);
    } else {
      label.assign(blockNames.view(j));
    }
    reportFinding(rs, run, kind, nonlinear, label, mode);
    group[g] = true;
  }

  if (!group[kUnbounded] && !group[kRelaxes] && !group[kForcesZero]) {
    writeFree(rs.statusChannel);
    writeLine(rs.statusChannel, "(7X,'### The variables pass all analysis tests')");
    writeLine(rs.logChannel, "(7X,'### The variables pass all analysis tests')");
    writeFree(rs.statusChannel);
  }
  if (group[kUnbounded]) {
    writeLine(rs.logChannel, "(7X,'### Cases found where variables will be unbounded')");
  }
  if (group[kRelaxes]) {
    writeLine(rs.logChannel, "(7X,'### Cases found where variables relax constraints')");
  }
  if (group[kForcesZero]) {
    writeLine(rs.logChannel, "(7X,'### Cases found where variables will be zero')");
  }
}

void reportEquationFindings(RunContext& rs, int32_t rowTotal, TextTable blockNames,
                            Table3<int32_t> signTable, Vec1<int32_t> rowTypes, Vec1<double> rhs,
                            int32_t mode, ovdHandle dictionary, Table2<double> activity) {
  writeLine(rs.statusChannel,
            "(1X,/,1X,'----### Analysis of Equations ( nonlinear terms',1X,"
            "'at current point)',/,1X,/,1X)");
  FindingRun run{2, kEquationCaution, 1};
  run.style = 1;
  bool group[3] = {false, false, false};
  std::string label;
  label.reserve(MAX_LINE);
  const double md = static_cast<double>(mode);

  for (int32_t i = 1; i <= rowTotal; ++i) {
    const int32_t nonlinear = signTable(i, 1, 3);
    const int32_t posTerms = signTable(i, 1, 1) + signTable(i, 2, 2);
    const int32_t negTerms = signTable(i, 1, 2) + signTable(i, 2, 1);
    const int32_t freeTerms = signTable(i, 3, 1) + signTable(i, 3, 2);
    const bool onlyPos = posTerms > 0 && negTerms + freeTerms == 0;
    const bool onlyNeg = negTerms > 0 && posTerms + freeTerms == 0;
    const int32_t type = rowTypes[i];
    const double b = rhs[i];
    const bool notHigh = b * md != 99.0;   // in mode 1, not a block of mixed signs above
    const bool notLow = b * md != -99.0;   // nor below

    // Up to two findings: kind 15 may follow kind 14 on one row.
    int32_t kinds[2] = {0, 0};
    int32_t found = 0;
    const bool single = mode == 0;
    double minActivity = 0.0, minState = 0.0, maxActivity = 0.0, maxState = 0.0;
    if (single) {
      minActivity = activity(i, 1);
      minState = activity(i, 2);
      maxActivity = activity(i, 3);
      maxState = activity(i, 4);
    }
    const bool belowMin = single && minState > 0.0 && b < minActivity;
    const bool aboveMax = single && maxState > 0.0 && b > maxActivity;

    if (type == kRowL) {
      if (b >= 0.0 && notHigh && onlyNeg) {
        kinds[found++] = 4;
      } else if (b < 0.0 && notLow && onlyPos) {
        kinds[found++] = 5;
      } else if (belowMin) {
        kinds[found++] = 16;
      } else if (aboveMax) {
        kinds[found++] = 17;
      } else if (b == 0.0 && onlyPos) {
        kinds[found++] = 3;
      }
    } else if (type == kRowG) {
      if (b == 0.0 && onlyNeg) {
        kinds[found++] = 6;
      } else if (b <= 0.0 && notLow && onlyPos) {
        kinds[found++] = 7;
      } else if (b > 0.0 && notHigh && onlyNeg) {
        kinds[found++] = 8;
      } else if (belowMin) {
        kinds[found++] = 18;
      } else if (aboveMax) {
        kinds[found++] = 19;
      }
    } else if (type == kRowE) {
      if (b > 0.0 && notHigh && onlyNeg) {
        kinds[found++] = 9;
      } else if (b < 0.0 && notLow && onlyPos) {
        kinds[found++] = 10;
      } else if (b == 0.0 && onlyNeg) {
        kinds[found++] = 11;
      } else if (single && b == 0.0 && freeTerms == 1 && posTerms + negTerms == 0) {
        kinds[found++] = 12;
      } else if (b == 0.0 && onlyPos) {
        kinds[found++] = 13;
      } else {
        if (belowMin) kinds[found++] = 14;
        if (aboveMax) kinds[found++] = 15;
      }
    }
    if (found == 0) continue;

    if (mode == 0) {
      int32_t length = 0, dim = 0;
      equItemLabel(dictionary, i, label, length, LABEL_FULL, TextTable{}, dim, MAX_LINE);
    } else {
      label.assign(blockNames.view(i));
    }
    for (int32_t k = 0; k < found; ++k) {
      const int32_t kind = kinds[k];
      reportFinding(rs, run, kind, nonlinear, label, mode);
      switch (kind) {
        case 3: case 6: case 11: case 12: case 13: group[kForcesZero] = true; break;
        case 4: case 7: case 17: case 18: group[kRedundant] = true; break;
        default: group[kInfeasible] = true; break;
      }
    }
  }

  if (!group[kForcesZero] && !group[kInfeasible] && !group[kRedundant]) {
    writeFree(rs.statusChannel);
    writeLine(rs.statusChannel, "(7X,'### The equations pass all analysis tests')");
    writeLine(rs.logChannel, "(7X,'### The equations pass all analysis tests')");
    writeFree(rs.statusChannel);
  }
  if (group[kForcesZero]) {
    writeLine(rs.logChannel, "(7X,'### Some equations force zero variables')");
  }
  if (group[kInfeasible]) writeLine(rs.logChannel, "(7X,'### Some equations are infeasible')");
  if (group[kRedundant]) writeLine(rs.logChannel, "(7X,'### Some equations are redundant ')");
}

int32_t readColumnBounds(const RunContext& rs, int32_t j, Vec1<double> colScale, int32_t index,
                         Table2<int32_t> boundTable, double& lower, double& upper) {
  ovmHandle model = rs.model;
  colScale[j] = rs.useScale > 0 ? ovmGetVarScaleOne(model, j) : 1.0;
  lower = ovmGetVarLowerOne(model, j);
  if (lower != rs.minusInf) lower *= colScale[j];
  upper = ovmGetVarUpperOne(model, j);
  if (upper != rs.plusInf) upper *= colScale[j];
  classifyBounds(upper, lower, rs.plusInf, rs.minusInf, index, boundTable,
                 ovmGetVarTypeOne(model, j));
  return boundTable(index, 4);
}

void reportBlockFindings(RunContext& rs, int32_t nC, int32_t nR, TextTable colBlockName, TextTable rowBlockName,
                         Table3<int32_t> colSignTable, Table3<int32_t> rowSignTable,
                         Table2<int32_t> blockColBoundTable, Vec1<int32_t> blockRowType,
                         Vec1<double> blockRowRhs, Table2<double> rowActivity,
                         int32_t skipBlock, ovdHandle dictionary) {
  reportVariableFindings(rs, nC, colBlockName, colSignTable, blockColBoundTable, skipBlock, 1,
                         dictionary);
  for (int32_t e = 1; e <= rowActivity.rows; ++e) {
    rowActivity(e, 1) = 0.0;
    rowActivity(e, 2) = -1.0;
    rowActivity(e, 3) = 0.0;
    rowActivity(e, 4) = -1.0;
  }
  reportEquationFindings(rs, nR, rowBlockName, rowSignTable, blockRowType, blockRowRhs, 1,
                         dictionary, rowActivity);
}

void runAnalysis(const AnalysisRegions& r, RunContext& rs) {
  buildAnalysisTables(r, rs);
  reportVariableFindings(rs, rs.colCount, TextTable{}, r.colSignTable, r.colBoundTable, rs.objVar,
                         0, rs.dictionary);
  reportEquationFindings(rs, rs.rowCount, TextTable{}, r.rowSignTable, r.anaRowType, r.rowRhs, 0,
                         rs.dictionary, r.rowActivity);
}
