#include "postsolution/engine.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/analysis.h"
#include "host/host.h"
#include "host/memory.h"
#include "model/blocks.h"
#include "model/columns.h"
#include "postsolution/engine_internal.h"
#include "request/item_selection.h"
#include "request/section_reader.h"

namespace {

// The table of modes: one row per procedure and verbosity.
constexpr std::array<EngineMode, 6> kEngineModes = {{
    {PROC_DISPLAYCR, VERBOSITY_NONE, Marks::Requests, true, false, 25, EntryForm::Coefficient,
     "(' ----###  DISPLAYING VARIABLES             ')",
     "(' ----###  DISPLAYING VARIABLES             ')",
     "(' ----###    DISPLAYING EQUATIONS   ')", "(' ----###    DISPLAYING EQUATIONS   ')", 0},
    {PROC_POSTOPT, VERBOSITY_NONE, Marks::Requests, true, true, 40, EntryForm::Accounts,
     "(' ----###  BUDGETING VARIABLES              ')",
     "(' ----###  BUDGETING VARIABLES              ')",
     "('  ----###   ROW SUMMING EQUATIONS   ')", "('  ----###   ROW SUMMING EQUATIONS   ')", 0},
    {PROC_NONOPT, VERBOSITY_LIST, Marks::HostStatus, true, false, 40, EntryForm::List,
     "(' ----###  LISTING NONOPTIMAL VARIABLES     ',/)",
     "(' ----###  LISTING INFEASIBLE VARIABLES     ',/)",
     "('  ----###   LISTING UNBOUNDED EQUATIONS ',/)",
     "('  ----###   LISTING INFEASIBLE EQUATIONS ',/)", 0},
    {PROC_NONOPT, VERBOSITY_VERBOSE, Marks::HostStatus, true, false, 40, EntryForm::Accounts,
     "(' ----###  DISPLAYING NONOPTIMAL VARIABLES  ')",
     "(' ----###  DISPLAYING INFEASIBLE VARIABLES  ')",
     "('  ----###   ROW SUMMING NONOPTIMAL EQUATIONS ')",
     "('  ----###   ROW SUMMING INFEASIBLE EQUATIONS ')", 0},
    {PROC_NONOPT, VERBOSITY_IDENTIFY, Marks::HostStatus, false, false, 40, EntryForm::None,
     nullptr, nullptr, nullptr, nullptr, 7},
    {PROC_ADVISORY, VERBOSITY_IDENTIFY, Marks::Nothing, false, false, 40, EntryForm::None,
     nullptr, nullptr, nullptr, nullptr, 3},
}};

const EngineMode& modeOf(int32_t procIndex, int32_t verbosity) {
  for (const EngineMode& m : kEngineModes) {
    if (m.procIndex == procIndex && (m.procIndex < PROC_NONOPT || m.verbosity == verbosity)) {
      return m;
    }
  }
  return kEngineModes[0];
}

// ---- set-up and loads -----------------------------------------------------------------------

void readSection(Engine& e) {
  RunContext& rs = e.run;
  const DisplayRegions& r = e.r;
  SectionContext context = sectionContextOf(rs, DEFAULT_SHOW);
  context.procIndex = e.procIndex;
  e.lists = requestListsOf(r, rs.colSelCapacity, rs.rowSelCapacity);
  e.flags = RequestFlags{0, VERBOSITY_NONE, 0, 0};
  readRequestSection(context, e.lists, e.flags, rs.currentKeyword);
}

// The mode and its label width, the marks of the equations that the host's status gives, and
// the messages about requests that meet nothing.
void setUp(Engine& e, int32_t modelStatus) {
  RunContext& rs = e.run;
  const DisplayRegions& r = e.r;
  e.solutionClass = solutionClassOf(modelStatus);
  int32_t verbosity = e.flags.verbosity;
  if (e.procIndex == PROC_ADVISORY) verbosity = VERBOSITY_IDENTIFY;
  if (e.procIndex == PROC_NONOPT) verbosity = nonoptVerbosity(verbosity, e.solutionClass);
  e.mode = &modeOf(e.procIndex, verbosity);
  e.verbosity = verbosity;
  if (!e.mode->heedsFilters) {
    e.flags.varFilter = FILTER_NONE;
    e.flags.equFilter = FILTER_NONE;
  }
  e.labelWidth = std::min(rs.pageWidth - e.mode->labelMargin, 130);
  e.rebuildPoint = e.procIndex == PROC_POSTOPT || e.procIndex == PROC_NONOPT;
  e.objDirection = rs.minimizing ? -1 : 1;
  rs.objectiveScale = 1.0;

  r.rowFill.fill(0);
  if (e.procIndex == PROC_NONOPT) {
    const SolutionRegions& s = r.solution;
    for (int32_t i = 1; i <= rs.rowCount; ++i) {
      const int32_t c = s.rowCStat[i];
      r.rowSelected[i] = (e.solutionClass == SOLUTION_UNBOUNDED && c >= 3) ||
                                 (e.solutionClass == SOLUTION_INFEASIBLE && c == 2)
                             ? 1
                             : 0;
    }
  } else {
    r.rowSelected.fill(0);
  }
  if (e.procIndex < PROC_NONOPT) {
    SelectionContext context = selectionContextOf(rs);
    context.procIndex = e.procIndex;
    resolveRequests(context, e.lists, r.rowSelected, &e.found);
  }
}

void loadRows(Engine& e) {
  RunContext& rs = e.run;
  const DisplayRegions& r = e.r;
  const SolutionRegions& s = r.solution;
  const ovmHandle model = rs.model;
  for (int32_t i = 1; i <= rs.rowCount; ++i) {
    if (e.procIndex < PROC_NONOPT) r.rowSelected[i] = 0;
    r.rowScale[i] = rs.useScale != 0 ? ovmGetEquScaleOne(model, i) : 1.0;
    if (!rs.solutionExpected) {
      s.rowLevel[i] = ovmGetEquLOne(model, i);
      s.rowMarginal[i] = ovmGetEquMOne(model, i);
    }
    r.rowType[i] = ovmGetEquTypeOne(model, i);
    const double rhs = ovmGetRhsOne(model, i);
    if (!e.rebuildPoint) {
      s.rowRhs[i] = rhs;
      continue;
    }
    double lower = -ROW_RANGE_INFINITY, upper = ROW_RANGE_INFINITY;
    if (r.rowType[i] == kRowE || r.rowType[i] == kRowG) lower = rhs;
    if (r.rowType[i] == kRowE || r.rowType[i] == kRowL) upper = rhs;
    if (s.rowStat[i] == 0) s.rowLevel[i] = lower;
    if (s.rowStat[i] == 1) s.rowLevel[i] = upper;
    s.rowRhs[i] = rhs * r.rowScale[i];
  }
  if (!e.rebuildPoint) return;
  if (rs.useScale != 0 && rs.objRow >= 1 && rs.objRow <= rs.rowCount) {
    const double m = s.rowMarginal[rs.objRow];
    rs.objectiveScale = std::fabs(m) <= OBJECTIVE_MARGINAL_FLOOR ? 1.0 : r.rowScale[rs.objRow] / m;
  }
  for (int32_t i = 1; i <= rs.rowCount; ++i) {
    s.rowLevel[i] = s.rowLevel[i] * r.rowScale[i];
    s.rowMarginal[i] = rs.objectiveScale * s.rowMarginal[i] / r.rowScale[i];
  }
}

void loadColumns(Engine& e) {
  RunContext& rs = e.run;
  const DisplayRegions& r = e.r;
  const SolutionRegions& s = r.solution;
  const ovmHandle model = rs.model;
  // The request codes of rows and columns, as resolveRequests found them.
  const bool byRequests = e.mode->marks == Marks::Requests;
  const ItemMatches& found = e.found;
  const ModelStore& store = modelStore;
  // Unscaled, a coefficient is the store's value as it stands (value / 1 x 1), and a linear
  // model marks no row nonlinear: the copy would be the store over again, so it is not made.
  const bool copy = rs.useScale != 0 || ovmNLN(model) > 0;
  e.colStart = copy ? r.colStart : store.jacColStart;
  e.colRowIndex = copy ? r.colRowIndex : store.jacRow;
  e.colCoef = copy ? r.colCoef : store.jacValue;
  // What an entry reads of its row's match, a byte a row, so that the rows stay in the cache.
  enum : uint8_t { ROW_DIRECT = 1, ROW_CROSS = 2 };
  std::vector<uint8_t> rowCodes;
  if (byRequests) {
    rowCodes.resize(static_cast<size_t>(rs.rowCount) + 1, 0);
    for (int32_t i = 1; i <= rs.rowCount; ++i) {
      const ItemMatch& row = found.row[static_cast<size_t>(i)];
      rowCodes[static_cast<size_t>(i)] = static_cast<uint8_t>(
          (row.directCode > 0 ? ROW_DIRECT : 0) | (row.crossCode > 0 ? ROW_CROSS : 0));
    }
  }
  int32_t next = 1;
  for (int32_t j = 1; j <= rs.colCount; ++j) {
    const double scale = rs.useScale > 0 ? ovmGetVarScaleOne(model, j) : 1.0;
    r.colScale[j] = scale;
    s.colLower[j] = rs.minusInf;
    s.colUpper[j] = rs.plusInf;
    const double lower = ovmGetVarLowerOne(model, j), upper = ovmGetVarUpperOne(model, j);
    if (lower != rs.minusInf) s.colLower[j] = lower * scale;
    if (upper != rs.plusInf) s.colUpper[j] = upper * scale;
    bool fromBound = false;
    if (e.rebuildPoint && s.colStat[j] == 0) {
      s.colLevel[j] = s.colLevel[j] + s.colLower[j];
      fromBound = true;
    } else if (e.rebuildPoint && s.colStat[j] == 1) {
      s.colLevel[j] = s.colUpper[j] - s.colLevel[j];
      fromBound = true;
    }
    s.colStat[j] = 0;
    if (e.procIndex == PROC_NONOPT) {
      const int32_t c = s.colCStat[j];
      s.colStat[j] = (e.solutionClass == SOLUTION_UNBOUNDED && (c == 1 || c == 3)) ||
                             (e.solutionClass == SOLUTION_INFEASIBLE && c == 2)
                         ? 1
                         : 0;
    }
    if (copy) r.colStart[j] = next;
    if (!rs.solutionExpected) {
      s.colLevel[j] = ovmGetVarLOne(model, j);
      s.colMarginal[j] = ovmGetVarMOne(model, j);
    }
    if (e.rebuildPoint) {
      if (!fromBound) s.colLevel[j] = s.colLevel[j] * scale;
      s.colMarginal[j] = rs.objectiveScale * s.colMarginal[j] / scale;
    }
    int32_t crossCode = 0;
    if (byRequests) {
      const ItemMatch& m = found.col[static_cast<size_t>(j)];
      if (m.directCode > 0) s.colStat[j] = 1;
      crossCode = m.crossCode;
    }
    for (int32_t k = store.jacColStart[j]; k < store.jacColStart[j + 1]; ++k) {
      // Rows far apart in memory: ask for a later entry's count now.
      if (const int32_t later = storeRowAhead(store, k); later > 0) hostPrefetch(&r.rowFill[later]);
      const int32_t i = store.jacRow[k];
      r.rowFill[i] += 1;
      if (copy) {
        r.colRowIndex[next] = store.jacNonlinear[k] > 0 ? -i : i;
        r.colCoef[next] = store.jacValue[k] / scale * r.rowScale[i];
      }
      ++next;
      if (!byRequests) continue;
      const uint8_t row = rowCodes[static_cast<size_t>(i)];
      if ((row & ROW_DIRECT) != 0 || crossCode > 0) r.rowSelected[i] = 1;
      if ((row & ROW_CROSS) != 0) s.colStat[j] = 1;
    }
  }
  e.entryCount = next - 1;
}

// ---- heads ----------------------------------------------------------------------------------

void modeLines(const Engine& e) {
  Channel& out = e.run.statusChannel;
  if (e.flags.intersect > 0) writeLine(out, "('            INTERSECTION MODE              ')");
  if (e.flags.varFilter == FILTER_ON) {
    writeLine(out, "('            PRINTING VARS IN SOLUTION      ')");
  } else if (e.flags.varFilter == FILTER_OFF) {
    writeLine(out, "('            PRINTING VARS NOT IN SOLUTION  ')");
  }
  if (e.flags.equFilter == FILTER_ON) {
    writeLine(out, "('            PRINTING BINDING EQNS          ')");
  } else if (e.flags.equFilter == FILTER_OFF) {
    writeLine(out, "('            PRINTING NON BINDING EQNS      ')");
  }
}

void passHead(Engine& e, bool variable) {
  Channel& out = e.run.statusChannel;
  const bool infeasible = e.solutionClass == SOLUTION_INFEASIBLE;
  writeLine(out, "(/)");
  if (variable) {
    writeLine(out, infeasible ? e.mode->colHeadInfeasible : e.mode->colHead);
    modeLines(e);
    if (e.verbosity == VERBOSITY_VERBOSE) writeLine(out, "(/)");
  } else {
    writeLine(out, infeasible ? e.mode->rowHeadInfeasible : e.mode->rowHead);
    modeLines(e);
    writeLine(out, "(/)");
  }
  e.firstOfPass = 1;
}

// The head of a shown variable (col) or equation (row): the pass head, a symbol head, the
// label and, for the accounts, the lead lines.
void showItemHead(Engine& e, bool variable, int32_t col, int32_t row) {
  RunContext& rs = e.run;
  if (!e.mode->listsItems) return;
  if (e.firstOfPass == 0) passHead(e, variable);
  Channel& out = rs.statusChannel;
  if (!variable) {
    if (row == e.lastRowShown) {
      e.itemShown = 1;
      return;
    }
    e.lastRowShown = row;
    int32_t length = 0, dim = 0;
    equItemLabel(rs.dictionary, row, e.label, length, LABEL_FULL, TextTable{}, dim, MAX_LINE);
    e.currentSymbol.assign(std::string_view(e.label).substr(0, e.label.find('(')));
  } else {
    e.itemShown = 1;
    int32_t length = 0, dim = 0, isNew = 0;
    symbolNameOf(rs.dictionary, varItemSymbol(rs, rs.dictionary, col, isNew), e.currentSymbol);
    varItemLabel(rs, rs.dictionary, col, e.label, length, dim, isNew, MAX_LINE);
  }
  const bool list = e.mode->entries == EntryForm::List;
  e.currentSymbol.resize(NAME_LEN, ' ');
  if (e.currentSymbol != e.lastSymbol && !list) {
    e.lastSymbol = e.currentSymbol;
    writeLine(out, variable ? "(1X,/,/,' ----## VAR ',A,/)" : "(1X,/,/,' ----## EQU ',A,/)",
              {e.lastSymbol});
  }
  printFoldedItem(e.label, rs.pageWidth - 7, list ? 3 : 1, out);
  const SolutionRegions& s = e.r.solution;
  if (list && variable) {
    writeLine(out,
              "('       Level    ',F15.8,' Marginal',F15.8,/,1X,'      Low Bound',F15.8,"
              "' Up Bound',F15.8,/)",
              {s.colLevel[col], s.colMarginal[col], s.colLower[col], s.colUpper[col]});
  } else if (list) {
    writeLine(out, "('       Slack',F15.8,' Dual',F15.8,/,1X,'      RHS  ',F15.8,/)",
              {s.rowRhs[row] - s.rowLevel[row], s.rowMarginal[row], s.rowRhs[row]});
  } else if (e.mode->entries == EntryForm::Accounts) {
    if (variable) {
      budgetLeadLines(e, col);
    } else {
      rowSumLeadLines(e);
    }
  }
  e.itemShown = 1;
}

// ---- the passes -----------------------------------------------------------------------------

bool postopt(const Engine& e) { return e.procIndex == PROC_POSTOPT; }

bool columnFilter(const Engine& e, int32_t col, int32_t strict) {
  const SolutionRegions& s = e.r.solution;
  return varInFilter(s.colLevel[col], s.colMarginal[col], e.procIndex, e.flags.varFilter, strict);
}

bool rowFilter(const Engine& e, int32_t row) {
  const SolutionRegions& s = e.r.solution;
  return equInFilter(s.rowMarginal[row], s.rowLevel[row], s.rowRhs[row], e.procIndex,
                     e.flags.equFilter);
}

void closeVariableBounds(Engine& e, int32_t j) {
  const RunContext& rs = e.run;
  const SolutionRegions& s = e.r.solution;
  const std::string_view gap = e.blanks(e.labelWidth - 15);
  if (s.colLower[j] != rs.minusInf && s.colLower[j] != 0.0) {
    writeLine(e.run.statusChannel, "('   LOWER BOUND ',A,F17.5)", {gap, s.colLower[j]});
  }
  if (s.colUpper[j] != rs.plusInf) {
    writeLine(e.run.statusChannel, "('   UPPER BOUND ',A,F17.5)", {gap, s.colUpper[j]});
  }
}

void columnPass(Engine& e) {
  RunContext& rs = e.run;
  const DisplayRegions& r = e.r;
  const SolutionRegions& s = r.solution;
  const bool lists = e.mode->adviceLists > 0;
  for (int32_t j = 1; j <= rs.colCount; ++j) {
    bool hidden = s.colStat[j] < 1;
    e.columnInScope = true;
    if (postopt(e)) {
      e.columnInScope = columnFilter(e, j, 1);
      hidden = hidden || !e.columnInScope;
    }
    e.itemShown = 0;
    e.budgetSum = 0.0;
    e.budgetAbs = 0.0;
    int32_t objCoefSign = 0;
    // A hidden column's entries matter only for the objective's direction and the lists.
    if (hidden && !lists && j != rs.objVar) continue;
    const int32_t end = j < rs.colCount ? e.colStart[j + 1] : e.entryCount + 1;
    for (int32_t k = e.colStart[j]; k < end; ++k) {
      const int32_t i = std::abs(e.colRowIndex[k]);
      const double a = e.colCoef[k];
      if (postopt(e) && !rowFilter(e, i)) continue;
      if (i == rs.objRow) {
        objCoefSign = a > 0.0 ? 1 : -1;
        if (j == rs.objVar) e.objDirection *= objCoefSign;
      }
      if (e.flags.intersect > 0 && r.rowSelected[i] < 1) continue;
      if (hidden) continue;
      if (e.itemShown < 1) showItemHead(e, true, j, 0);
      if (e.mode->entries == EntryForm::List || e.mode->entries == EntryForm::None) continue;
      const char* mark = e.colRowIndex[k] < 0 ? "***" : "   ";
      int32_t labelLength = 0, labelDim = 0;
      equItemLabel(rs.dictionary, i, e.label, labelLength, LABEL_FULL, TextTable{}, labelDim,
                   MAX_LINE);
      if (e.mode->entries == EntryForm::Coefficient) {
        entryLine(e, mark, {a});
      } else {
        budgetEntry(e, i, a, mark);
      }
    }
    if (e.columnInScope && e.itemShown > 0) {
      if (e.mode->entries == EntryForm::Coefficient) closeVariableBounds(e, j);
      if (e.mode->entries == EntryForm::Accounts) closeBudget(e, j);
    }
    if (lists) adviseColumn(e, j, objCoefSign);
  }
}

void closeEquationRelation(Engine& e, int32_t row) {
  // A type outside 0 to 3 is shown as =N=, as the accounts treat it.
  const int32_t type = e.r.rowType[row] >= kRowE && e.r.rowType[row] <= kRowN ? e.r.rowType[row] : kRowN;
  const std::string_view text = kEquTypeCodes[static_cast<size_t>(type)];
  writeLine(e.run.statusChannel, "(/,9X,A3,A,F12.5)",
            {text, e.blanks(e.labelWidth - 8), e.r.solution.rowRhs[row]});
}

void rowPass(Engine& e) {
  RunContext& rs = e.run;
  const DisplayRegions& r = e.r;
  if (e.entryCount == 0) return;
  e.columnInScope = true;
  // Only a selected row shows anything of its entries: the row form holds those rows alone.
  const int32_t rowEntries =
      transposeRows(rs.rowCount, rs.colCount, e.entryCount, r.rowFill, e.colStart, r.rowColIndex,
                    r.rowStart, e.colRowIndex, r.rowCoef, e.colCoef, r.rowSelected);
  int32_t row = 1;
  e.itemShown = 0;
  e.firstOfPass = 0;
  e.lastRowShown = 0;
  clearRowSums(e);
  for (int32_t k = 1; k <= rowEntries; ++k) {
    while (row < rs.rowCount && r.rowStart[row + 1] <= k) {
      ++row;
      e.itemShown = 0;
      clearRowSums(e);
    }
    const int32_t col = std::abs(r.rowColIndex[k]);
    bool passOver = r.rowSelected[row] < 1;
    if (postopt(e)) passOver = passOver || !rowFilter(e, row) || !columnFilter(e, col, 0);
    if (e.flags.intersect > 0 && r.solution.colStat[col] < 1) passOver = true;
    if (!passOver) {
      if (e.itemShown < 1) showItemHead(e, false, 0, row);
      if (e.mode->entries == EntryForm::Coefficient || e.mode->entries == EntryForm::Accounts) {
        int32_t length = 0, dim = 0, isNew = 0;
        varItemLabel(rs, rs.dictionary, col, e.label, length, dim, isNew, MAX_LINE);
        const char* mark = r.rowColIndex[k] < 0 ? "***" : "   ";
        if (e.mode->entries == EntryForm::Coefficient) {
          entryLine(e, mark, {r.rowCoef[k]});
        } else {
          rowSumEntry(e, col, r.rowCoef[k], r.rowColIndex[k] < 0, mark);
        }
      }
    }
    const bool lastOfRow = row == rs.rowCount ? k == rowEntries : k + 1 >= r.rowStart[row + 1];
    if (e.itemShown > 0 && lastOfRow) {
      if (e.mode->entries == EntryForm::Coefficient) closeEquationRelation(e, row);
      if (e.mode->entries == EntryForm::Accounts) closeRowSum(e, row);
    }
  }
}

}  // namespace

// ---- shared with the accounts and the advisory lists ----------------------------------------

std::string_view Engine::blanks(int32_t n) const {
  if (n < 1) return {};
  return std::string_view(kBlankLine).substr(0, std::min<size_t>(static_cast<size_t>(n),
                                                                 kBlankLine.size()));
}

void entryLine(Engine& e, const char* mark, std::initializer_list<double> numbers) {
  const size_t width = static_cast<size_t>(std::max(e.labelWidth, 1));
  foldLabel(e, e.label, width);
  std::array<FmtValue, 5> values = {FmtValue(e.lines[0]), FmtValue(mark), FmtValue(0.0),
                                    FmtValue(0.0), FmtValue(0.0)};
  size_t n = 2;
  for (double v : numbers) values[n++] = FmtValue(v);
  Channel& out = e.run.statusChannel;
  writeLine(out, "(1X,A,A3,3F12.5)", std::span<const FmtValue>(values.data(), n));
  for (size_t p = 1; p < e.lineCount; ++p) writeLine(out, "(1X,A)", {e.lines[p]});
}

void foldLabel(Engine& e, std::string_view text, size_t width) {
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  if (e.lines.empty()) e.lines.resize(1);
  if (text.size() <= width) {
    e.lines[0].assign(text);
    e.lines[0].resize(width, ' ');
    e.lineCount = 1;
    return;
  }
  foldItemLabel(text, static_cast<int32_t>(width), e.folded, static_cast<int32_t>(width));
  if (e.lines.size() < e.folded.size()) e.lines.resize(e.folded.size());
  for (size_t p = 0; p < e.folded.size(); ++p) {
    e.lines[p].assign(e.folded[p]);
    e.lines[p].resize(width, ' ');
  }
  e.lineCount = e.folded.size();
}

int32_t solutionClassOf(int32_t modelStatus) {
  switch (modelStatus) {
    case kStatUnbounded: return SOLUTION_UNBOUNDED;
    case kStatInfeasible:
    case kStatLocallyInfeasible:
    case kStatIntermediateInfeasible:
    case kStatIntermediateNonInteger:
    case kStatIntegerInfeasible: return SOLUTION_INFEASIBLE;
    default: return SOLUTION_NEITHER;
  }
}

int32_t nonoptVerbosity(int32_t sectionVerbosity, int32_t solutionClass) {
  if (solutionClass == SOLUTION_NEITHER) return VERBOSITY_IDENTIFY;
  return sectionVerbosity < VERBOSITY_LIST ? VERBOSITY_LIST : sectionVerbosity;
}

bool varInFilter(double level, double marginal, int32_t procIndex, int32_t varFilter,
                 int32_t strict) {
  if (procIndex != PROC_POSTOPT || varFilter < FILTER_ON || varFilter == FILTER_NONE) return true;
  if (varFilter == FILTER_ON) {
    return level != 0.0 || (strict == 1 && std::fabs(marginal) < FILTER_TOLERANCE);
  }
  return std::fabs(level) < FILTER_TOLERANCE;
}

bool equInFilter(double marginal, double level, double rhs, int32_t procIndex,
                 int32_t equFilter) {
  if (procIndex != PROC_POSTOPT || equFilter < FILTER_ON || equFilter == FILTER_NONE) return true;
  const bool priced = std::fabs(marginal) > FILTER_TOLERANCE;
  const bool tight = std::fabs(rhs - level) <= FILTER_TOLERANCE;
  return equFilter == FILTER_ON ? priced || tight : !priced || !tight;
}

void runPostSolutionEngine(const DisplayRegions& r, RunContext& run) {
  Engine e{r, run};
  e.procIndex = run.procIndex;
  e.lastSymbol.assign(static_cast<size_t>(NAME_LEN), ' ');
  readSection(e);
  setUp(e, run.modelStatus);
  loadRows(e);
  loadColumns(e);
  e.firstOfPass = 0;
  columnPass(e);
  if (e.mode->adviceLists > 0) adviseBetweenPasses(e);
  e.firstOfPass = 0;
  rowPass(e);
}
