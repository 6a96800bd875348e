#include "listings/matchit.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "analysis/analysis.h"
#include "model/blocks.h"
#include "model/matrix_store.h"
#include "request/item_selection.h"
#include "request/section_reader.h"

namespace {

constexpr int32_t kFoldCapacity = 130;

// The counters of one listed item.
struct ItemCounts {
  int32_t isNonlinear = 0, total = 0, positive = 0, negative = 0, nonlinear = 0;
  double minimum = 0.0, maximum = -1.0;
};

// The two sides differ in words, in how an entry of 0 counts, and in the objective they leave
// out of minimum and maximum.
struct Side {
  bool variables;
  const SelectionSide* requests;
  int32_t count;
  Table2<int32_t> tally;
  std::string_view listHead, symbolHead, tableHead, allItems;
};

constexpr std::string_view kVarListHead =
    "(/,/,/,' Note Max and Min do not include Obj row coef',/,/,1X,'                        ',A,"
    "'   Is  Tot Pos Neg Nln  Minimum    Maximum  ',/,1X,'----### Requested Variables',A,"
    "'Non Cof Cof Cof Cof  Absolute   Absolute ',/)";
constexpr std::string_view kEquListHead =
    "(/,/,/,' Note Max and Min do not include Rhs and Obj var coef',/,/,1X,"
    "'                        ',A,'   Is  Tot Pos Neg Nln  Minimum    Maximum  ',/,1X,"
    "'----### Requested Equations',A,'Non Cof Cof Cof Cof  Absolute   Absolute ',/)";
constexpr std::string_view kVarTableHead =
    "(/,/,/,2X,'                    ',1X,A,'     Numb  Numb Total  Pos   Neg  Nonln',/,1X,"
    "'----### Variable Request ',A,' Varia Nonln  Coef  Coef  Coef  Coef',/)";
constexpr std::string_view kEquTableHead =
    "(/,/,/,2X,'                    ',1X,A,'     Numb  Numb Total  Pos   Neg  Nonln',/,2X,"
    "'----### Equation Request',1X,A,'Equat Nonln  Coef  Coef  Coef  Coef',/)";

// The first `width` characters of a line, blank-padded.
std::string_view cut(std::string& line, int32_t width) {
  line.resize(static_cast<size_t>(std::max(width, 0)), ' ');
  return line;
}

// One walk over the items of a side: the requests that the current item meets, tested once per
// item, and the counters of the item's entries.
struct Walk {
  const Side& side;
  std::vector<int32_t> met;  // requests met by the current item
  bool anyEntry = false, anyNonlinear = false;

  void startItem() {
    met.clear();
    anyEntry = anyNonlinear = false;
  }
  // One entry of the current item into the tallies of the requests it meets.
  void tally(double a, bool nonlinear) {
    const bool firstEntry = !anyEntry;
    const bool firstNonlinear = nonlinear && !anyNonlinear;
    anyEntry = true;
    anyNonlinear = anyNonlinear || nonlinear;
    const bool negative = side.variables ? a < 0.0 : !(a > 0.0);
    for (int32_t k : met) {
      if (firstEntry) side.tally(k, TALLY_ITEMS) += 1;
      if (firstNonlinear) side.tally(k, TALLY_NONLINEAR_ITEMS) += 1;
      side.tally(k, TALLY_ENTRIES) += 1;
      if (a > 0.0) side.tally(k, TALLY_POSITIVE) += 1;
      if (negative) side.tally(k, TALLY_NEGATIVE) += 1;
      if (nonlinear) side.tally(k, TALLY_NONLINEAR) += 1;
    }
  }
};

// The counters of a listed item, for one entry; `inObjective` keeps it out of min and max.
void countEntry(ItemCounts& c, double a, bool nonlinear, bool variables, bool inObjective) {
  c.total += 1;
  if (a > 0.0) {
    c.positive += 1;
  } else if (a < 0.0 || !variables) {
    c.negative += 1;
  }
  if (nonlinear) {
    c.nonlinear += 1;
    c.isNonlinear = 1;
  }
  if (inObjective) return;
  const double size = std::fabs(a);
  if (size < c.minimum && (a != 0.0 || !variables)) c.minimum = size;
  if (size > c.maximum) c.maximum = size;
}

struct Report {
  RunContext& run;
  int32_t labelWidth;
  int32_t listBlanks;
  std::string lastSymbol;
  std::vector<std::string> folded;
  std::string label;

  void listHead(const Side& side, bool& written) {
    if (written) return;
    const std::string blanks(static_cast<size_t>(std::max(listBlanks, 0)), ' ');
    writeLine(run.statusChannel, side.listHead, {blanks, blanks});
    written = true;
  }

  void itemLine(const Side& side, std::string_view symbol, const ItemCounts& c) {
    foldItemLabel(label, labelWidth, folded, kFoldCapacity);
    std::string name(symbol.substr(0, NAME_LEN));
    name.resize(NAME_LEN, ' ');
    if (name != lastSymbol) {
      writeLine(run.statusChannel, side.symbolHead, {name});
      lastSymbol = name;
    }
    const bool none = c.maximum == -1.0;
    writeLine(run.statusChannel, "(1X,A,1X,5(I4),1X,F10.4,1X,F10.4)",
              {cut(folded[0], labelWidth), c.isNonlinear, c.total, c.positive, c.negative,
               c.nonlinear, none ? 0.0 : c.minimum, none ? 0.0 : c.maximum});
    moreLines();
  }

  void moreLines() {
    for (size_t l = 1; l < folded.size(); ++l) {
      writeLine(run.statusChannel, "(1X,A)", {cut(folded[l], labelWidth)});
    }
  }

  void requestTable(const Side& side) {
    const std::string blanks(static_cast<size_t>(std::max(labelWidth - 24, 0)), ' ');
    writeLine(run.statusChannel, side.tableHead, {blanks, blanks});
    for (int32_t k = 1; k <= side.count; ++k) {
      std::string text(side.requests->raw.view(k));
      while (!text.empty() && text.back() == ' ') text.pop_back();
      if (text.empty() || (k == 1 && text == "*")) text = side.allItems;
      foldItemLabel(text, labelWidth, folded, kFoldCapacity);
      writeLine(run.statusChannel, "(1X,A,1X,6(I5,1X))",
                {cut(folded[0], labelWidth), side.tally(k, 1), side.tally(k, 2), side.tally(k, 3),
                 side.tally(k, 4), side.tally(k, 5), side.tally(k, 6)});
      moreLines();
    }
  }
};

}  // namespace

void runMatchIt(const MatchItRegions& r, RunContext& run) {
  RequestLists lists = requestListsOf(r, run.colSelCapacity, run.rowSelCapacity);
  RequestFlags flags;
  readRequestSection(sectionContextOf(run, DEFAULT_COUNT), lists, flags, run.currentKeyword);
  r.rowSelected.fill(0);
  resolveRequests(selectionContextOf(run), lists, r.rowSelected);

  const Side vars{true,           &lists.col,
                  lists.varCount, r.matchColTable,
                  kVarListHead,   "(1X,/,' ----## VAR ',A,/)",
                  kVarTableHead,  "All Variables"};
  const Side equs{false,           &lists.row,     lists.equCount,
                  r.matchRowTable, kEquListHead,   "(1X,/,' ----## EQU ',A,/)",
                  kEquTableHead,   "All Equations"};
  for (const Side* s : {&vars, &equs}) {
    for (int32_t k = 1; k <= s->count; ++k) {
      for (int32_t t = 1; t <= TALLY_SLOTS; ++t) s->tally(k, t) = 0;
    }
  }
  const int32_t m = run.rowCount, n = run.colCount;
  for (int32_t i = 1; i <= m; ++i) {
    r.rowScale[i] = run.useScale != 0 ? ovmGetEquScaleOne(run.model, i) : 1.0;
    r.rowFill[i] = 0;
  }

  const int32_t width = std::clamp(run.pageWidth, 72, 174);
  Report report{run, width - 44, width - 69, "$nothing$", {}, {}};
  ItemNameBuffer names;
  SymbolMemo memo, tallyMemo;
  Walk walk{vars, {}};
  walk.met.reserve(static_cast<size_t>(std::max(vars.count, equs.count)));
  bool headWritten = false;

  // Column pass: the matrix by columns, the variable tallies and list.
  int32_t p = 1;
  for (int32_t j = 1; j <= n; ++j) {
    r.colStart[j] = p;
    ItemCounts c;
    c.minimum = run.plusInf;
    const ItemName& item = columnName(run, run.dictionary, j, names);
    r.colScale[j] = run.useScale > 0 ? ovmGetVarScaleOne(run.model, j) : 1.0;
    const ItemMatch match = matchVarRequests(item, lists, SCOPE_ALL, 0, run.procIndex, &memo);
    const bool selected = match.selected == 1;
    const bool listed = selected && match.directCode == FILTER_ON;
    if (listed) report.listHead(vars, headWritten);
    walk.startItem();
    if (selected) {
      for (int32_t k = 1; k <= vars.count; ++k) {
        if (matchVarRequests(item, lists, SCOPE_ONE, k, run.procIndex, &tallyMemo).selected) {
          walk.met.push_back(k);
        }
      }
    }
    walkColumn(run.model, j, m, r.colScale, r.rowScale, run.useScale != 0, [&](int32_t i, double a, int32_t nl) {
      if (selected) walk.tally(a, nl > 0);
      if (listed) countEntry(c, a, nl > 0, true, i == run.objRow);
      r.rowFill[i] += 1;
      if (p <= r.colRowIndex.size()) {
        r.colRowIndex[p] = nl > 0 ? -i : i;
        r.colCoef[p] = a;
      }
      ++p;
    });
    if (listed) {
      int32_t length = 0, dim = 0, isNew = 0;
      varItemLabel(run, run.dictionary, j, report.label, length, dim, isNew, MAX_LINE);
      report.itemLine(vars, item.symbol, c);
    }
  }
  if (vars.count > 0) report.requestTable(vars);

  // Row pass, over the row form of the same entries.
  const int32_t nz = std::min(p - 1, r.colRowIndex.size());
  report.lastSymbol = "$nothing$";
  headWritten = false;
  Walk rowWalk{equs, {}};
  rowWalk.met.reserve(static_cast<size_t>(equs.count));
  if (nz > 0) {
    transposeMatrix(m, n, nz, r.rowFill, r.colStart, r.rowColIndex, r.rowStart, r.colRowIndex,
                    r.rowCoef, r.colCoef);
    SymbolMemo rowMemo, rowTallyMemo;
    for (int32_t i = 1; i <= m; ++i) {
      ItemCounts c;
      c.minimum = run.plusInf;
      const ItemName& item = rowName(run.dictionary, i, names);
      const ItemMatch match = matchEquRequests(item, lists, SCOPE_ALL, 0, run.procIndex, &rowMemo);
      if (match.selected <= 0) continue;
      const bool listed = match.directCode == FILTER_ON;
      if (listed) report.listHead(equs, headWritten);
      rowWalk.startItem();
      for (int32_t k = 1; k <= equs.count; ++k) {
        if (matchEquRequests(item, lists, SCOPE_ONE, k, run.procIndex, &rowTallyMemo).selected) {
          rowWalk.met.push_back(k);
        }
      }
      const int32_t last = i < m ? r.rowStart[i + 1] - 1 : nz;
      for (int32_t q = r.rowStart[i]; q <= last; ++q) {
        const int32_t col = std::abs(r.rowColIndex[q]);
        const bool nl = r.rowColIndex[q] < 0;
        rowWalk.tally(r.rowCoef[q], nl);
        if (listed) countEntry(c, r.rowCoef[q], nl, false, col == run.objVar);
      }
      if (listed) {
        int32_t length = 0, dim = 0;
        equItemLabel(run.dictionary, i, report.label, length, LABEL_FULL, TextTable{}, dim,
                     MAX_LINE);
        report.itemLine(equs, item.symbol, c);
      }
    }
  }
  if (equs.count > 0) report.requestTable(equs);
}
