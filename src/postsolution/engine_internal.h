// What the engine shares with its accounts (POSTOPT, NONOPT VERBOSE) and its advisory lists
// (ADVISORY, NONOPT IDENTIFY): the mode table's row, the regions, the state of a call.
#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "host/instance.h"
#include "model/regions.h"
#include "request/item_selection.h"
#include "request/selection_tables.h"
#include "base/run_context.h"

// What marks an item to be shown.
enum class Marks { Requests, HostStatus, Nothing };
// What an entry line carries, and so what closes an item: the coefficient (closed by bound
// lines and the relation), the accounts (closed by the budget and the row sum), the list of
// flagged items (no entry lines, nothing closes), or nothing at all.
enum class EntryForm { Coefficient, Accounts, List, None };

// One row of the table of modes.
struct EngineMode {
  int32_t procIndex;
  int32_t verbosity;
  Marks marks;
  bool listsItems;    // false: items are marked but never shown
  bool heedsFilters;  // varFilter and equFilter
  int32_t labelMargin;  // labelWidth is pageWidth less this
  EntryForm entries;
  const char* colHead;  // pass heads; the second of each pair for an infeasible solution
  const char* colHeadInfeasible;
  const char* rowHead;
  const char* rowHeadInfeasible;
  int32_t adviceLists;  // 0, the first 3 or all 7 advisory lists
};

inline constexpr std::string_view kBlankLine =
    "                                                                                          "
    "                                                                                          ";

// The state of one call.
struct Engine {
  Engine(const DisplayRegions& regions, RunContext& runRecord) : r(regions), run(runRecord) {}
  const DisplayRegions& r;
  RunContext& run;
  const EngineMode* mode = nullptr;
  int32_t procIndex = 0;
  int32_t verbosity = -1;
  int32_t solutionClass = 0;
  RequestLists lists;
  RequestFlags flags;
  bool rebuildPoint = false;
  bool columnInScope = true;
  int32_t labelWidth = 0;
  int32_t entryCount = 0;
  // The matrix by columns as the passes read it: the copy in the work array, or the store
  // itself where the copy would equal it entry for entry.
  Vec1<int32_t> colStart, colRowIndex;
  Vec1<double> colCoef;
  int32_t objDirection = 1;
  int32_t itemShown = 0;
  int32_t firstOfPass = 0;
  int32_t lastRowShown = 0;
  std::string currentSymbol, lastSymbol;
  // Request codes per row and column, as resolveRequests found them (DISPLAYCR, POSTOPT).
  ItemMatches found;
  // Budget of the column in hand, sums of the row in hand.
  double budgetSum = 0.0, budgetAbs = 0.0;
  double rowSum = 0.0, rowAbs = 0.0;
  bool rowHasNonlinear = false;
  // Which advisory list heads are written.
  std::array<bool, 8> listHeadWritten{};
  // Buffers reused for every label, so that no entry allocates.
  std::string label;
  std::vector<std::string> lines, folded;
  size_t lineCount = 0;

  // n blanks (none for n below 1).
  std::string_view blanks(int32_t n) const;
};

// Folds `text` to lines of `width` characters, blank-padded, into e.lines[0 .. lineCount-1].
void foldLabel(Engine& e, std::string_view text, size_t width);
// An entry line: e.label folded to labelWidth, the mark and the numbers; further label lines.
void entryLine(Engine& e, const char* mark, std::initializer_list<double> numbers);

// Accounts.
void budgetLeadLines(Engine& e, int32_t col);
void budgetEntry(Engine& e, int32_t row, double coefficient, const char* mark);
void closeBudget(Engine& e, int32_t col);
void rowSumLeadLines(Engine& e);
void clearRowSums(Engine& e);
void rowSumEntry(Engine& e, int32_t col, double coefficient, bool nonlinear, const char* mark);
void closeRowSum(Engine& e, int32_t row);

// Advisory lists: list 1 for a column during the column pass (which also keeps its objective
// sign in colCStat), the others between the passes.
void adviseColumn(Engine& e, int32_t col, int32_t objCoefSign);
void adviseBetweenPasses(Engine& e);
