#include "analysis/analysis.h"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "host/instance.h"
#include "host/memory.h"
#include "model/blocks.h"
#include "model/columns.h"
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


// One finding: explanation at a change of kind, then the item. `caution` is the nonlinear
// note of the report; `style` is the first-item style that a new kind opens with.
struct FindingRun {
  ItemClass itemClass;
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

FindingGroup findingGroup(int32_t kind) {
  switch (kind) {
    case KIND_VAR_AT_LOWER: case KIND_VAR_AT_UPPER: case KIND_VAR_ZERO_AT_LOWER:
    case KIND_VAR_ZERO_AT_UPPER:
    case KIND_LE_FORCES_ZERO: case KIND_GE_FORCES_ZERO: case KIND_EQ_FORCES_ZERO_NEGATIVE:
    case KIND_EQ_FORCES_ZERO_FREE: case KIND_EQ_FORCES_ZERO_POSITIVE:
      return FindingGroup::ForcesZero;
    case KIND_LE_REDUNDANT: case KIND_GE_REDUNDANT: case KIND_LE_ABOVE_MAX_ACTIVITY:
    case KIND_GE_BELOW_MIN_ACTIVITY:
      return FindingGroup::Redundant;
    case KIND_LE_INFEASIBLE: case KIND_GE_INFEASIBLE: case KIND_EQ_INFEASIBLE_ABOVE:
    case KIND_EQ_INFEASIBLE_BELOW: case KIND_EQ_BELOW_MIN_ACTIVITY:
    case KIND_EQ_ABOVE_MAX_ACTIVITY: case KIND_LE_BELOW_MIN_ACTIVITY:
    case KIND_GE_ABOVE_MAX_ACTIVITY:
      return FindingGroup::Infeasible;
    case KIND_VAR_UNBOUNDED_ABOVE: case KIND_VAR_UNBOUNDED_BELOW:
      return FindingGroup::Unbounded;
    case KIND_VAR_RELAXES_ABOVE: case KIND_VAR_RELAXES_BELOW:
      return FindingGroup::Relaxes;
    default:
      return FindingGroup::None;
  }
}

void resetBoundTable(Table2<int32_t> table) {
  for (int32_t c = 1; c <= table.rows; ++c) {
    table(c, BOUND_SIGN_CLASS) = 0;
    table(c, BOUND_LOWER_STATE) = NO_LOWER;
    table(c, BOUND_UPPER_STATE) = NO_UPPER;
    table(c, BOUND_CLASS) = 0;
    table(c, BOUND_TYPE_CODE) = 0;
  }
}

void classifyBounds(double upper, double lower, double plusInf, double minusInf, int32_t index,
                    Table2<int32_t> table, int32_t hostType) {
  int32_t& signClass = table(index, BOUND_SIGN_CLASS);
  int32_t& lowerState = table(index, BOUND_LOWER_STATE);
  int32_t& upperState = table(index, BOUND_UPPER_STATE);
  int32_t& boundClass = table(index, BOUND_CLASS);
  int32_t& typeCode = table(index, BOUND_TYPE_CODE);

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
  boundClass = CLASS_NONNEGATIVE;
  if (lowerState < 0) {
    if (upperState < 1) {
      signClass = -1;
      boundClass = CLASS_NONPOSITIVE;
    } else {
      signClass = 2;
      boundClass = CLASS_FREE;
    }
  }
  if (typeCode == 3) typeCode = boundClass;
}

namespace {

// A row's sums while the columns are walked, in one cache line: an entry reaches one line
// instead of six tables far apart. They go to rowSignTable and rowActivity when the walk ends.
struct alignas(64) RowSums {
  double minActivity = 0.0;
  double maxActivity = 0.0;
  int32_t signs[3][2] = {};  // by the column's boundClass, and coefficient above or below 0
  int32_t nonlinear = 0;
  int32_t typeSlot = 0;      // of the row in colSignTable
  int32_t state = 0;         // the bounds that the terms used, as the State bits say
};
static_assert(sizeof(RowSums) == 64);

// minState is -1.0 once a term used an infinite bound, else 1.0 once one used a nonzero bound,
// else 0.0; maxState is 0.0 once a term used an infinite bound, else 1.0. Neither depends on
// the order of the terms, so the walk keeps which kinds of bound it met.
enum State : int32_t { MIN_NONZERO = 1, MIN_INFINITE = 2, MAX_INFINITE = 4 };

}  // namespace

void buildAnalysisTables(const AnalysisRegions& r, RunContext& rs) {
  ovmHandle model = rs.model;
  const int32_t m = rs.rowCount, n = rs.colCount;
  std::vector<RowSums> sums(static_cast<size_t>(m) + 1);

  for (int32_t i = 1; i <= m; ++i) {
    r.rowScale[i] = rs.useScale != 0 ? ovmGetEquScaleOne(model, i) : 1.0;
    r.rowRhs[i] = ovmGetRhsOne(model, i) * r.rowScale[i];
    r.anaRowType[i] = ovmGetEquTypeOne(model, i);
    sums[static_cast<size_t>(i)].typeSlot = rowTypeSlot(r.anaRowType[i]);
  }
  resetBoundTable(r.colBoundTable);

  const double objFactor = rs.minimizing ? -1.0 : 1.0;
  int32_t objSign = 0;
  const int32_t objRow = rs.objRow, objVar = rs.objVar;
  const double minusInf = rs.minusInf, plusInf = rs.plusInf;
  const ColumnWalk walk = columnWalk(rs, r.colScale, r.rowScale);
  for (int32_t j = 1; j <= n; ++j) {
    double lower = 0.0;
    double upper = 0.0;
    const int32_t t = readColumnBounds(rs, j, r.colScale, j, r.colBoundTable, lower, upper);
    // What a term adds to the states, by the sign of its coefficient.
    const int32_t risingState = (lower != 0.0 ? MIN_NONZERO : 0) |
                                (lower == minusInf ? MIN_INFINITE : 0) |
                                (upper == plusInf ? MAX_INFINITE : 0);
    const int32_t fallingState = (upper != 0.0 ? MIN_NONZERO : 0) |
                                 (upper == plusInf ? MIN_INFINITE : 0) |
                                 (lower == minusInf ? MAX_INFINITE : 0);
    // The column's own counts, written to colSignTable once it is walked.
    int32_t counts[4][2] = {{0, 0}, {0, 0}, {0, 0}, {0, 0}};
    int32_t colNonlinear = 0;
    auto visit = [&](int32_t i, double a, int32_t nonlinear) {
      RowSums& row = sums[static_cast<size_t>(i)];
      if (nonlinear > 0) {
        row.nonlinear += 1;
        colNonlinear += 1;
      }
      if (a > 0.0) row.signs[t - 1][0] += 1;
      if (a < 0.0) row.signs[t - 1][1] += 1;
      if (i == objRow) {
        if (j == objVar) {
          if (a > 0.0) objSign = 1;
          if (a < 0.0) objSign = -1;
        }
        if (a != 0.0) {
          if (a * objFactor > 0.0) {
            counts[SLOT_OBJECTIVE - 1][OBJECTIVE_BAD - 1] = 1;
          } else {
            counts[SLOT_OBJECTIVE - 1][OBJECTIVE_GOOD - 1] = 1;
          }
        }
        return;
      }
      if (a > 0.0) {
        row.minActivity += a * lower;
        row.maxActivity += a * upper;
        row.state |= risingState;
        counts[row.typeSlot - 1][SIGN_POSITIVE - 1] += 1;
      } else if (a < 0.0) {
        row.minActivity += a * upper;
        row.maxActivity += a * lower;
        row.state |= fallingState;
        counts[row.typeSlot - 1][SIGN_NEGATIVE - 1] += 1;
      }
    };
    // Rows lie far apart in memory: each entry asks for the line of a later one.
    walkColumnAhead(walk, j, visit,
                    [&](int32_t i) { hostPrefetch(&sums[static_cast<size_t>(i)]); });
    for (int32_t k = 1; k <= 4; ++k) {
      r.colSignTable(j, k, SIGN_POSITIVE) = counts[k - 1][0];
      r.colSignTable(j, k, SIGN_NEGATIVE) = counts[k - 1][1];
      r.colSignTable(j, k, SIGN_NONLINEAR) = k == NONLINEAR_SLOT ? colNonlinear : 0;
    }
  }

  for (int32_t i = 1; i <= m; ++i) {
    const RowSums& row = sums[static_cast<size_t>(i)];
    r.rowActivity(i, 1) = row.minActivity;
    r.rowActivity(i, 2) = (row.state & MIN_INFINITE) != 0  ? -1.0
                          : (row.state & MIN_NONZERO) != 0 ? 1.0
                                                           : 0.0;
    r.rowActivity(i, 3) = row.maxActivity;
    r.rowActivity(i, 4) = (row.state & MAX_INFINITE) != 0 ? 0.0 : 1.0;
    for (int32_t c = CLASS_NONNEGATIVE; c <= CLASS_FREE; ++c) {
      r.rowSignTable(i, c, SIGN_POSITIVE) = row.signs[c - 1][0];
      r.rowSignTable(i, c, SIGN_NEGATIVE) = row.signs[c - 1][1];
      r.rowSignTable(i, c, SIGN_NONLINEAR) = c == NONLINEAR_SLOT ? row.nonlinear : 0;
    }
  }

  // Objective turn: keep goodObjective meaning "raising the variable improves the objective"
  // whichever side of the objective row the objective variable stands on.
  if (objSign < 0) {
    for (int32_t j = 1; j <= n; ++j) {
      std::swap(r.colSignTable(j, SLOT_OBJECTIVE, OBJECTIVE_GOOD),
                r.colSignTable(j, SLOT_OBJECTIVE, OBJECTIVE_BAD));
    }
  }
}

void recordProblem(RunContext& rs, ItemClass itemClass, std::string_view label, int32_t kind,
                   int32_t mode) {
  if (mode == MODE_BLOCKS) return;
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
    writeFree(channel, {itemClass == ItemClass::Variable ? "variable" : "equation"});
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
  FindingRun run{ItemClass::Variable, kVariableCaution, 5};
  rs.lastColSymbol = 0;
  bool forcesZero = false, unbounded = false, relaxes = false;
  std::string label;
  label.reserve(MAX_LINE);

  for (int32_t j = 1; j <= colTotal; ++j) {
    const int32_t nonlinear = signTable(j, NONLINEAR_SLOT, SIGN_NONLINEAR);
    if (mode == MODE_ITEMS) {
      int32_t isNew = 0;
      varItemSymbol(rs, dictionary, j, isNew);
      if (isNew != 0) rs.analysisProblemTally.fill(0);
    }
    if (j == skipIndex) continue;

    const int32_t lowerState = boundTable(j, BOUND_LOWER_STATE);
    const int32_t upperState = boundTable(j, BOUND_UPPER_STATE);
    const int32_t good = signTable(j, SLOT_OBJECTIVE, OBJECTIVE_GOOD);
    const int32_t bad = signTable(j, SLOT_OBJECTIVE, OBJECTIVE_BAD);
    const int32_t eqCount =
        signTable(j, SLOT_EQ, SIGN_POSITIVE) + signTable(j, SLOT_EQ, SIGN_NEGATIVE);
    const int32_t riseLimits =
        signTable(j, SLOT_GE, SIGN_NEGATIVE) + signTable(j, SLOT_LE, SIGN_POSITIVE) + eqCount;
    const int32_t fallLimits =
        signTable(j, SLOT_GE, SIGN_POSITIVE) + signTable(j, SLOT_LE, SIGN_NEGATIVE) + eqCount;

    int32_t kind = 0;
    if (upperState > 1 && good > 0 && riseLimits + bad == 0) {
      kind = KIND_VAR_UNBOUNDED_ABOVE;
    } else if (upperState > 1 && good == 0 && riseLimits + bad == 0) {
      kind = KIND_VAR_RELAXES_ABOVE;
    } else if (lowerState == 0 && fallLimits + good == 0) {
      kind = KIND_VAR_ZERO_AT_LOWER;
    } else if ((lowerState == 1 || lowerState == -1) && bad > 0 && fallLimits + good == 0) {
      kind = KIND_VAR_AT_LOWER;
    } else if ((upperState == 1 || upperState == -1) && good > 0 && riseLimits + bad == 0) {
      kind = KIND_VAR_AT_UPPER;
    } else if (upperState == 0 && bad > 0 && riseLimits + good == 0) {
      kind = KIND_VAR_ZERO_AT_UPPER;
    } else if (lowerState < -1 && bad > 0 && fallLimits + good == 0) {
      kind = KIND_VAR_UNBOUNDED_BELOW;
    } else if (lowerState < -1 && bad == 0 && fallLimits + good == 0) {
      kind = KIND_VAR_RELAXES_BELOW;
    }
    if (kind == 0) continue;

    if (mode == MODE_ITEMS) {
      int32_t length = 0, dim = 0, isNew = 0;
      varItemLabel(rs, dictionary, j, label, length, dim, isNew, MAX_LINE);
    } else {
      label.assign(blockNames.view(j));
    }
    reportFinding(rs, run, kind, nonlinear, label, mode);
    const FindingGroup g = findingGroup(kind);
    forcesZero = forcesZero || g == FindingGroup::ForcesZero;
    unbounded = unbounded || g == FindingGroup::Unbounded;
    relaxes = relaxes || g == FindingGroup::Relaxes;
  }

  if (!unbounded && !relaxes && !forcesZero) {
    writeFree(rs.statusChannel);
    writeLine(rs.statusChannel, "(7X,'### The variables pass all analysis tests')");
    writeLine(rs.logChannel, "(7X,'### The variables pass all analysis tests')");
    writeFree(rs.statusChannel);
  }
  if (unbounded) {
    writeLine(rs.logChannel, "(7X,'### Cases found where variables will be unbounded')");
  }
  if (relaxes) {
    writeLine(rs.logChannel, "(7X,'### Cases found where variables relax constraints')");
  }
  if (forcesZero) {
    writeLine(rs.logChannel, "(7X,'### Cases found where variables will be zero')");
  }
}

void reportEquationFindings(RunContext& rs, int32_t rowTotal, TextTable blockNames,
                            Table3<int32_t> signTable, Vec1<int32_t> rowTypes, Vec1<double> rhs,
                            int32_t mode, ovdHandle dictionary, Table2<double> activity) {
  writeLine(rs.statusChannel,
            "(1X,/,1X,'----### Analysis of Equations ( nonlinear terms',1X,"
            "'at current point)',/,1X,/,1X)");
  FindingRun run{ItemClass::Equation, kEquationCaution, 1};
  run.style = 1;
  bool forcesZero = false, infeasible = false, redundant = false;
  std::string label;
  label.reserve(MAX_LINE);
  const double md = static_cast<double>(mode);

  for (int32_t i = 1; i <= rowTotal; ++i) {
    const int32_t nonlinear = signTable(i, NONLINEAR_SLOT, SIGN_NONLINEAR);
    const int32_t posTerms = signTable(i, CLASS_NONNEGATIVE, SIGN_POSITIVE) +
                             signTable(i, CLASS_NONPOSITIVE, SIGN_NEGATIVE);
    const int32_t negTerms = signTable(i, CLASS_NONNEGATIVE, SIGN_NEGATIVE) +
                             signTable(i, CLASS_NONPOSITIVE, SIGN_POSITIVE);
    const int32_t freeTerms =
        signTable(i, CLASS_FREE, SIGN_POSITIVE) + signTable(i, CLASS_FREE, SIGN_NEGATIVE);
    const bool onlyPos = posTerms > 0 && negTerms + freeTerms == 0;
    const bool onlyNeg = negTerms > 0 && posTerms + freeTerms == 0;
    const int32_t type = rowTypes[i];
    const double b = rhs[i];
    // In block mode b is a blockRowRhs status: the sign rules leave out a block of mixed
    // signs, and one whose status was never set.
    const bool notHigh = b * md != RHS_NONE_YET;
    const bool notLow = b * md != RHS_MIXED;

    // Up to two findings: an =E= row may lie both below and above its activity bounds.
    int32_t kinds[2] = {0, 0};
    int32_t found = 0;
    const bool single = mode == MODE_ITEMS;
    double minActivity = 0.0, minState = 0.0, maxActivity = 0.0, maxState = 0.0;
    if (single) {
      minActivity = activity(i, 1);
      minState = activity(i, 2);
      maxActivity = activity(i, 3);
      maxState = activity(i, 4);
    }
    const bool belowMin = single && minState > 0.0 && b < minActivity;
    const bool aboveMax = single && maxState > 0.0 && b > maxActivity;

    if (type == ROW_L) {
      if (b >= 0.0 && notHigh && onlyNeg) {
        kinds[found++] = KIND_LE_REDUNDANT;
      } else if (b < 0.0 && notLow && onlyPos) {
        kinds[found++] = KIND_LE_INFEASIBLE;
      } else if (belowMin) {
        kinds[found++] = KIND_LE_BELOW_MIN_ACTIVITY;
      } else if (aboveMax) {
        kinds[found++] = KIND_LE_ABOVE_MAX_ACTIVITY;
      } else if (b == 0.0 && onlyPos) {
        kinds[found++] = KIND_LE_FORCES_ZERO;
      }
    } else if (type == ROW_G) {
      if (b == 0.0 && onlyNeg) {
        kinds[found++] = KIND_GE_FORCES_ZERO;
      } else if (b <= 0.0 && notLow && onlyPos) {
        kinds[found++] = KIND_GE_REDUNDANT;
      } else if (b > 0.0 && notHigh && onlyNeg) {
        kinds[found++] = KIND_GE_INFEASIBLE;
      } else if (belowMin) {
        kinds[found++] = KIND_GE_BELOW_MIN_ACTIVITY;
      } else if (aboveMax) {
        kinds[found++] = KIND_GE_ABOVE_MAX_ACTIVITY;
      }
    } else if (type == ROW_E) {
      if (b > 0.0 && notHigh && onlyNeg) {
        kinds[found++] = KIND_EQ_INFEASIBLE_ABOVE;
      } else if (b < 0.0 && notLow && onlyPos) {
        kinds[found++] = KIND_EQ_INFEASIBLE_BELOW;
      } else if (b == 0.0 && onlyNeg) {
        kinds[found++] = KIND_EQ_FORCES_ZERO_NEGATIVE;
      } else if (single && b == 0.0 && freeTerms == 1 && posTerms + negTerms == 0) {
        kinds[found++] = KIND_EQ_FORCES_ZERO_FREE;
      } else if (b == 0.0 && onlyPos) {
        kinds[found++] = KIND_EQ_FORCES_ZERO_POSITIVE;
      } else {
        if (belowMin) kinds[found++] = KIND_EQ_BELOW_MIN_ACTIVITY;
        if (aboveMax) kinds[found++] = KIND_EQ_ABOVE_MAX_ACTIVITY;
      }
    }
    if (found == 0) continue;

    if (mode == MODE_ITEMS) {
      int32_t length = 0, dim = 0;
      equItemLabel(dictionary, i, label, length, LABEL_FULL, TextTable{}, dim, MAX_LINE);
    } else {
      label.assign(blockNames.view(i));
    }
    for (int32_t k = 0; k < found; ++k) {
      const int32_t kind = kinds[k];
      reportFinding(rs, run, kind, nonlinear, label, mode);
      const FindingGroup g = findingGroup(kind);
      forcesZero = forcesZero || g == FindingGroup::ForcesZero;
      redundant = redundant || g == FindingGroup::Redundant;
      infeasible = infeasible || g == FindingGroup::Infeasible;
    }
  }

  if (!forcesZero && !infeasible && !redundant) {
    writeFree(rs.statusChannel);
    writeLine(rs.statusChannel, "(7X,'### The equations pass all analysis tests')");
    writeLine(rs.logChannel, "(7X,'### The equations pass all analysis tests')");
    writeFree(rs.statusChannel);
  }
  if (forcesZero) writeLine(rs.logChannel, "(7X,'### Some equations force zero variables')");
  if (infeasible) writeLine(rs.logChannel, "(7X,'### Some equations are infeasible')");
  if (redundant) writeLine(rs.logChannel, "(7X,'### Some equations are redundant ')");
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
  return boundTable(index, BOUND_CLASS);
}

void reportBlockFindings(RunContext& rs, int32_t nC, int32_t nR, TextTable colBlockName, TextTable rowBlockName,
                         Table3<int32_t> colSignTable, Table3<int32_t> rowSignTable,
                         Table2<int32_t> blockColBoundTable, Vec1<int32_t> blockRowType,
                         Vec1<double> blockRowRhs, Table2<double> rowActivity,
                         int32_t skipBlock, ovdHandle dictionary) {
  reportVariableFindings(rs, nC, colBlockName, colSignTable, blockColBoundTable, skipBlock,
                         MODE_BLOCKS,
                         dictionary);
  for (int32_t e = 1; e <= rowActivity.rows; ++e) {
    rowActivity(e, 1) = 0.0;
    rowActivity(e, 2) = -1.0;
    rowActivity(e, 3) = 0.0;
    rowActivity(e, 4) = -1.0;
  }
  reportEquationFindings(rs, nR, rowBlockName, rowSignTable, blockRowType, blockRowRhs,
                         MODE_BLOCKS,
                         dictionary, rowActivity);
}

void runAnalysis(const AnalysisRegions& r, RunContext& rs) {
  buildAnalysisTables(r, rs);
  reportVariableFindings(rs, rs.colCount, TextTable{}, r.colSignTable, r.colBoundTable, rs.objVar,
                         MODE_ITEMS, rs.dictionary);
  reportEquationFindings(rs, rs.rowCount, TextTable{}, r.rowSignTable, r.anaRowType, r.rowRhs,
                         MODE_ITEMS, rs.dictionary, r.rowActivity);
}
