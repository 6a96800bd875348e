#include "listings/matchit.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <vector>

#include "analysis/analysis.h"
#include "model/blocks.h"
#include "model/columns.h"
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

// The requests of a side that an item meets, each tested alone.
void requestsMet(const Side& side, const ItemName& item, const RequestLists& lists,
                 int32_t procIndex, SymbolMemo& memo, std::vector<int32_t>& met) {
  met.clear();
  for (int32_t k = 1; k <= side.count; ++k) {
    const ItemMatch m = side.variables
                            ? matchVarRequests(item, lists, SCOPE_ONE, k, procIndex, &memo)
                            : matchEquRequests(item, lists, SCOPE_ONE, k, procIndex, &memo);
    if (m.selected) met.push_back(k);
  }
}

// An item's counts into the tallies of the requests it meets; an item without entries counts
// in none.
void tallyItem(const Side& side, const std::vector<int32_t>& met, const ItemCounts& c) {
  if (c.total == 0) return;
  for (int32_t k : met) {
    side.tally(k, TALLY_ITEMS) += 1;
    side.tally(k, TALLY_NONLINEAR_ITEMS) += c.isNonlinear;
    side.tally(k, TALLY_ENTRIES) += c.total;
    side.tally(k, TALLY_POSITIVE) += c.positive;
    side.tally(k, TALLY_NEGATIVE) += c.negative;
    side.tally(k, TALLY_NONLINEAR) += c.nonlinear;
  }
}

// The counters of a variable, for one entry; an entry in the objective row stays out of min and
// max, and one of 0 out of min.
void countEntry(ItemCounts& c, double a, bool nonlinear, bool inObjective) {
  c.total += 1;
  if (a > 0.0) c.positive += 1;
  if (a < 0.0) c.negative += 1;
  if (nonlinear) {
    c.nonlinear += 1;
    c.isNonlinear = 1;
  }
  if (inObjective) return;
  const double size = std::fabs(a);
  if (size < c.minimum && a != 0.0) c.minimum = size;
  if (size > c.maximum) c.maximum = size;
}

// The sums of the entries of a row, or of a group of rows, gathered by the column pass: the
// row pass needs no more of a row, so the row form is never built.
struct RowSum {
  int32_t entries = 0, positive = 0, nonlinear = 0;
  double minimum = 0.0, maximum = -1.0;  // of the sizes outside the objective column

  void add(double a, bool isNonlinear, bool objectiveColumn) {
    entries += 1;
    if (a > 0.0) positive += 1;
    if (isNonlinear) nonlinear += 1;
    if (objectiveColumn) return;
    const double size = std::fabs(a);
    if (size < minimum) minimum = size;
    if (size > maximum) maximum = size;
  }

  // The counters of the row as a listed equation counts them: an entry not above 0 is negative.
  ItemCounts counts() const {
    ItemCounts c;
    c.total = entries;
    c.positive = positive;
    c.negative = entries - positive;
    c.nonlinear = nonlinear;
    c.isNonlinear = nonlinear > 0 ? 1 : 0;
    c.minimum = minimum;
    c.maximum = maximum;
    return c;
  }
};

// A row's code: its group above kCodeShift, and whether it has entries and nonlinear ones.
constexpr int32_t kHasEntry = 1;
constexpr int32_t kHasNonlinear = 2;
constexpr int32_t kCodeShift = 2;

// The groups of selected rows: the requests each group's rows meet, in one pool, and the sums
// of its entries. Group 0 stands for no group.
struct RowGroups {
  std::vector<int32_t> code;           // per row, 0 for a row not selected
  std::vector<RowSum> sums{RowSum{}};  // per group
  std::vector<char> listed{0};
  std::vector<int32_t> metPool;
  std::vector<int32_t> metBegin{0, 0};  // group g meets metPool[metBegin[g] .. metBegin[g + 1])
  std::map<std::vector<int32_t>, int32_t> shared;  // the group of unlisted rows by requests met
  int32_t lastShared = 0;

  int32_t groupOf(const std::vector<int32_t>& met, bool isListed, double plusInf) {
    if (!isListed) {
      const auto g = static_cast<size_t>(lastShared);
      if (lastShared > 0 && std::equal(met.begin(), met.end(), metPool.begin() + metBegin[g],
                                       metPool.begin() + metBegin[g + 1])) {
        return lastShared;
      }
      if (auto it = shared.find(met); it != shared.end()) return lastShared = it->second;
    }
    const auto g = static_cast<int32_t>(sums.size());
    sums.push_back(RowSum{0, 0, 0, plusInf, -1.0});
    listed.push_back(isListed ? 1 : 0);
    metPool.insert(metPool.end(), met.begin(), met.end());
    metBegin.push_back(static_cast<int32_t>(metPool.size()));
    if (!isListed) shared.emplace(met, lastShared = g);
    return g;
  }
};

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
  }

  const int32_t width = std::clamp(run.pageWidth, 72, 174);
  Report report{run, width - 44, width - 69, "$nothing$", {}, {}};
  ItemNameBuffer names;
  SymbolMemo memo, tallyMemo;
  std::vector<int32_t> met;
  met.reserve(static_cast<size_t>(std::max(vars.count, equs.count)));
  bool headWritten = false;

  // The rows, before the columns: which requests each meets. Rows that meet the same requests
  // and are not listed share one group, whose sums the column pass gathers; a listed row has a
  // group of its own. An entry so reaches a small code of its row and a group's sums, which
  // stay in the cache, and no sums of every row are held.
  RowGroups groups;
  if (equs.count > 0) {  // without equation requests no row is selected
    groups.code.assign(static_cast<size_t>(m) + 1, 0);
    ItemNamer rowNames(lists.row, equs.count);
    SymbolMemo rowMemo, rowTallyMemo;
    for (int32_t i = 1; i <= m; ++i) {
      const ItemName& item = rowNames.row(run.dictionary, i);
      const ItemMatch match = matchEquRequests(item, lists, SCOPE_ALL, 0, run.procIndex, &rowMemo);
      if (match.selected <= 0) continue;
      requestsMet(equs, item, lists, run.procIndex, rowTallyMemo, met);
      groups.code[static_cast<size_t>(i)] =
          groups.groupOf(met, match.directCode == FILTER_ON, run.plusInf) << kCodeShift;
    }
  }

  // Column pass: the variable tallies and list, and the sums of the row groups.
  ItemNamer colNames(lists.col, vars.count);
  const ColumnWalk walk = columnWalk(run, r.colScale, r.rowScale);
  int64_t entryCount = 0;
  for (int32_t j = 1; j <= n; ++j) {
    ItemCounts c;
    c.minimum = run.plusInf;
    const ItemName& item = colNames.column(run, run.dictionary, j);
    r.colScale[j] = run.useScale > 0 ? ovmGetVarScaleOne(run.model, j) : 1.0;
    const ItemMatch match = matchVarRequests(item, lists, SCOPE_ALL, 0, run.procIndex, &memo);
    const bool selected = match.selected == 1;
    const bool listed = selected && match.directCode == FILTER_ON;
    if (listed) report.listHead(vars, headWritten);
    const bool objectiveColumn = j == run.objVar;
    walkColumn(walk, j, [&](int32_t i, double a, int32_t nl) {
      countEntry(c, a, nl > 0, i == run.objRow);
      if (groups.code.empty()) return;
      int32_t& code = groups.code[static_cast<size_t>(i)];
      if (code == 0) return;
      code |= kHasEntry | (nl > 0 ? kHasNonlinear : 0);
      groups.sums[static_cast<size_t>(code >> kCodeShift)].add(a, nl > 0, objectiveColumn);
    });
    entryCount += c.total;
    if (selected) {
      requestsMet(vars, item, lists, run.procIndex, tallyMemo, met);
      tallyItem(vars, met, c);
    }
    if (listed) {
      int32_t length = 0, dim = 0, isNew = 0;
      varItemLabel(run, run.dictionary, j, report.label, length, dim, isNew, MAX_LINE);
      report.itemLine(vars, columnName(run, run.dictionary, j, names).symbol, c);
    }
  }
  if (vars.count > 0) report.requestTable(vars);

  // Row pass: the listed rows with their group's sums, and the rows with entries counted into
  // their group's tallies. Every count of a tally is a sum over entries or rows, and the
  // smallest and largest size of a row do not depend on the order of its entries.
  report.lastSymbol = "$nothing$";
  headWritten = false;
  if (entryCount > 0 && !groups.code.empty()) {
    std::vector<int32_t> items(groups.sums.size(), 0), nonlinearItems(groups.sums.size(), 0);
    for (int32_t i = 1; i <= m; ++i) {
      const int32_t code = groups.code[static_cast<size_t>(i)];
      if (code == 0) continue;
      const auto g = static_cast<size_t>(code >> kCodeShift);
      if ((code & kHasEntry) != 0) items[g] += 1;
      if ((code & kHasNonlinear) != 0) nonlinearItems[g] += 1;
      if (!groups.listed[g]) continue;
      report.listHead(equs, headWritten);
      const ItemName& item = rowName(run.dictionary, i, names);
      int32_t length = 0, dim = 0;
      equItemLabel(run.dictionary, i, report.label, length, LABEL_FULL, TextTable{}, dim, MAX_LINE);
      report.itemLine(equs, item.symbol, groups.sums[g].counts());
    }
    for (size_t g = 1; g < groups.sums.size(); ++g) {
      if (items[g] == 0) continue;
      const RowSum& sum = groups.sums[g];
      for (int32_t k = groups.metBegin[g]; k < groups.metBegin[g + 1]; ++k) {
        const int32_t request = groups.metPool[static_cast<size_t>(k)];
        equs.tally(request, TALLY_ITEMS) += items[g];
        equs.tally(request, TALLY_NONLINEAR_ITEMS) += nonlinearItems[g];
        equs.tally(request, TALLY_ENTRIES) += sum.entries;
        equs.tally(request, TALLY_POSITIVE) += sum.positive;
        equs.tally(request, TALLY_NEGATIVE) += sum.entries - sum.positive;
        equs.tally(request, TALLY_NONLINEAR) += sum.nonlinear;
      }
    }
  }
  if (equs.count > 0) report.requestTable(equs);
}
