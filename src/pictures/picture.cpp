#include "pictures/picture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "analysis/analysis.h"
#include "model/blocks.h"
#include "model/columns.h"
#include "request/item_selection.h"
#include "request/section_reader.h"

namespace {

// Characters of a row label and a column head.
constexpr int32_t kLabel = 12;
constexpr int32_t kMaxPlaces = PICTURE_WIDTH;
// Places of the summary's heads, behind the strip's columns.
constexpr int32_t kSummaryHeads = 12;

struct CodeRow {
  double lower, upper;
  char code;
};

// The classes of coefficientCode, tried in order; equal limits hold that value alone.
constexpr double kTinyNegative = -9.9999998245167e-14;   // -1e-13 in single precision
constexpr double kTinyPositive = 9.999999960041972e-13;  // 1e-12 in single precision
constexpr std::array<CodeRow, 17> kCodeTable = {{
    {-1e+50, -1e+20, '-'},
    {-1e+50, -1000, '7'},
    {-1000, -100, '6'},
    {-100, -10, '5'},
    {-10, -1, '4'},
    {-1, -1, '3'},
    {-1, -0.5, '2'},
    {-0.5, kTinyNegative, '1'},
    {0, 0, '0'},
    {kTinyPositive, 0.5, 'A'},
    {0.5, 1, 'B'},
    {1, 1, 'C'},
    {1, 10, 'D'},
    {10, 100, 'E'},
    {100, 1000, 'F'},
    {1000, 1e+20, 'G'},
    {1e+20, 1e+50, '+'},
}};

// The spelled-out letters of a block: the name's characters one by one up to its first blank
// (at most 10), then "-", and again from the start.
struct Speller {
  int32_t cursor = 1;
  char next(std::string_view name) {
    if (cursor <= 10 && cursor <= static_cast<int32_t>(name.size()) &&
        name[static_cast<size_t>(cursor - 1)] != ' ') {
      return name[static_cast<size_t>(cursor++ - 1)];
    }
    cursor = 1;
    return '-';
  }
};

// Per block: members named so far and the speller of its letters.
struct BlockNaming {
  std::vector<int32_t> ordinal;
  std::vector<Speller> speller;
  explicit BlockNaming(int32_t blocks)
      : ordinal(static_cast<size_t>(std::max(blocks, 0)) + 1, 0),
        speller(static_cast<size_t>(std::max(blocks, 0)) + 1) {}
};

// A whole number of at most `width` digits, right-justified in `width` characters.
void putNumber(char* at, int32_t width, int32_t n) {
  for (int32_t p = width - 1; p >= 0; --p) {
    at[p] = static_cast<char>('0' + n % 10);
    n /= 10;
    if (n == 0) break;
  }
}

// A row label or column head (12 characters) of the next member of block b.
void itemLabel(char* out, std::string_view name, int32_t size, BlockNaming& naming, int32_t b,
               bool head) {
  std::memset(out, ' ', kLabel);
  const int32_t n = ++naming.ordinal[static_cast<size_t>(b)];
  if (size < 10) {
    size_t len = 0;
    while (len < 10 && len < name.size() && name[len] != ' ') ++len;
    std::memcpy(out + 10 - len, name.data(), len);
    putNumber(out + 10, 2, n);
    return;
  }
  out[head ? 6 : 5] = naming.speller[static_cast<size_t>(b)].next(name);
  putNumber(out + 7, 5, n % 100000);
}

// Three characters of a count in the row summary: units always, tens from 10, hundreds from
// 100; a count of 1000 or more does not fit and shows "***".
void putCount3(char* at, int32_t count) {
  if (count >= 1000) {
    std::memset(at, '*', 3);
    return;
  }
  at[2] = static_cast<char>('0' + count % 10);
  if (count >= 10) at[1] = static_cast<char>('0' + count / 10 % 10);
  if (count >= 100) at[0] = static_cast<char>('0' + count / 100);
}

// The state of one picture: its regions, the run, and the buffers of the current strip.
struct Picture {
  const PictureRegions& r;
  RunContext& run;
  int32_t entryCount = 0;
  int32_t nextColumn = 1;
  std::vector<int32_t> selectedRows;  // in order
  std::array<char, kMaxPlaces * kLabel> colHeadText{};
  std::array<char, kMaxPlaces> lowerMarks{}, upperMarks{};
  std::array<int32_t, kMaxPlaces> colNegativeCount{}, colPositiveCount{}, colEntryCount{};
  std::vector<FmtValue> values;

  Picture(const PictureRegions& regions, RunContext& state) : r(regions), run(state) {}

  char* head(int32_t place) { return colHeadText.data() + (place - 1) * kLabel; }

  // A line of one-character values of `chars`, through `tmpl`.
  void charLine(std::string_view tmpl, const char* chars, int32_t count) {
    values.clear();
    for (int32_t k = 0; k < count; ++k) values.emplace_back(std::string_view(chars + k, 1));
    writeLine(run.statusChannel, tmpl, values);
  }

  void rule(int32_t places) {
    values.assign(static_cast<size_t>(places), FmtValue(std::string_view("--")));
    writeLine(run.statusChannel, "(13X,250A)", values);
  }

  // Counts of the odd places (first field I2) or the even places of one line.
  void countLine(std::string_view tmpl, const std::array<int32_t, kMaxPlaces>& counts,
                 int32_t places, int32_t first) {
    values.clear();
    for (int32_t n = first; n <= places; n += 2)
      values.emplace_back(counts[static_cast<size_t>(n - 1)]);
    writeLine(run.statusChannel, tmpl, values);
  }

  void printStrip(int32_t k, bool summary);
};

void Picture::printStrip(int32_t k, bool summary) {
  const int32_t places = summary ? k + kSummaryHeads : k;
  for (int32_t n = 0; n < k; ++n) {
    colNegativeCount[static_cast<size_t>(n)] = colPositiveCount[static_cast<size_t>(n)] = 0;
    colEntryCount[static_cast<size_t>(n)] = 0;
  }
  const int32_t cellEnd = std::min(PICTURE_WIDTH, k + 26);
  for (int32_t i : selectedRows) {
    char* text = r.picText.at(i);
    std::memset(text + kLabel, ' ', static_cast<size_t>(cellEnd - kLabel));
  }
  std::array<char, kMaxPlaces> column{};
  for (int32_t c = 1; c <= kLabel; ++c) {
    for (int32_t n = 1; n <= places; ++n) column[static_cast<size_t>(n - 1)] = head(n)[c - 1];
    charLine("(12X,'|',120A2)", column.data(), places);
  }
  rule(k);

  int32_t n = 0;
  int32_t j = nextColumn;
  for (; j <= run.colCount && n < k; ++j) {
    if (r.picColBlock[j] <= 0) continue;
    ++n;
    const size_t place = static_cast<size_t>(n - 1);
    lowerMarks[place] = r.colLower[j] == run.minusInf ? '-' : coefficientCode(r.colLower[j]);
    upperMarks[place] = r.colUpper[j] == run.plusInf ? '+' : coefficientCode(r.colUpper[j]);
    const int32_t last = j < run.colCount ? r.colStart[j + 1] - 1 : entryCount;
    for (int32_t q = r.colStart[j]; q <= last; ++q) {
      const int32_t i = std::abs(r.colRowIndex[q]);
      if (r.rowSelected[i] == 0) continue;
      const double a = r.colCoef[q];
      r.picText.at(i)[kLabel + n - 1] = coefficientCode(a);
      if (a > 0.0) {
        r.picRowPositive[i] += 1;
        colPositiveCount[place] += 1;
      } else if (a < 0.0) {
        r.picRowNegative[i] += 1;
        colNegativeCount[place] += 1;
      }
      r.picRowEntries[i] = r.picRowPositive[i] + r.picRowNegative[i];
      colEntryCount[place] = colPositiveCount[place] + colNegativeCount[place];
    }
  }
  nextColumn = j;

  const int32_t lineEnd = summary ? k + 26 : k + kLabel;
  for (int32_t i : selectedRows) {
    char* text = r.picText.at(i);
    if (summary) {
      text[k + 13] = r.rowTypeMark[i];
      text[k + 14] = r.rowRhsMark[i];
      putCount3(text + k + 16, r.picRowPositive[i]);
      putCount3(text + k + 19, r.picRowNegative[i]);
      putCount3(text + k + 22, r.picRowEntries[i]);
    }
    charLine("(12A,'|',120A2)", text, lineEnd);
  }
  rule(k);
  if (k == 0) return;
  charLine("(' LOWER BND  |',120A2)", lowerMarks.data(), k);
  charLine("(' UPPER BND  |',120A2)", upperMarks.data(), k);
  rule(k);
  const std::array<
      std::pair<const std::array<int32_t, kMaxPlaces>*, std::array<std::string_view, 2>>, 3>
      lines = {{
          {&colPositiveCount, {"(' POSITIVE   |',I2,120I4)", "(' COLUMN CTS |',120I4)"}},
          {&colNegativeCount, {"(' NEGATIVE   |',I2,120I4)", "(' COLUMN CTS |',120I4)"}},
          {&colEntryCount, {"(' COLUMN     |',I2,120I4)", "(' COUNTS     |',120I4)"}},
      }};
  for (const auto& [counts, tmpl] : lines) {
    countLine(tmpl[0], *counts, k, 1);
    if (k > 1) countLine(tmpl[1], *counts, k, 2);
  }
  rule(k);
  writeLine(run.statusChannel, "(1X,/)");
}

void writeCodeTable(Channel& status) {
  writeFree(status);
  writeLine(status,
            "(' ### PICTURE -  COEFFICIENT CODES',/,/,'   LOWER BOUND   CODE    UPPER BOUND',/,"
            "'    (INCLUSIVE)',11X,'(LESS THAN)',/,E15.5,5X,A1,'     +INFINITY')",
            {1000.0, "G"});
  struct Triple {
    double lower;
    const char* code;
    double upper;
  };
  constexpr std::array<Triple, 13> kTriples = {{
      {100, "F", 1000},
      {10, "E", 100},
      {1, "D", 10},
      {1, "C", 1},
      {0.5, "B", 1},
      {0, "A", 0.5},
      {0, "0", 0},
      {-0.5, "1", 0},
      {-1, "2", -0.5},
      {-1, "3", -1},
      {-10, "4", -1},
      {-100, "5", -10},
      {-1000, "6", -100},
  }};
  for (const Triple& t : kTriples) {
    writeLine(status, "(E15.5,5X,A1,E16.5)", {t.lower, t.code, t.upper});
  }
  writeLine(status, "(4X,'-INFINITY',A8,E16.5)", {"7", -1000.0});
  writeLine(status, "(/,/,/)");
}

// One dictionary: the selected items in order, each with its block's short name and ordinal
// and its full label folded to the width.
template <class Label>
void writeDictionary(Picture& p, const std::vector<int32_t>& items, Vec1<int32_t> blockOf,
                     Vec1<int32_t> blockSize, TextTable blockName, int32_t width, Label label) {
  BlockNaming naming(blockName.n);
  std::vector<std::string> lines;
  std::string text;
  for (int32_t item : items) {
    const int32_t b = blockOf[item];
    const size_t bi = static_cast<size_t>(b);
    const int32_t n = ++naming.ordinal[bi];
    label(item, text);
    foldItemLabel(text, width, lines, MAX_LINE);
    for (std::string& l : lines) {
      while (!l.empty() && l.back() == ' ') l.pop_back();
    }
    const std::string first = lines.empty() ? std::string() : lines.front();
    if (blockSize[b] < 10) {
      writeLine(p.run.statusChannel, "(A12,I4,': ',A)", {blockName.view(b), n, first});
    } else {
      const char letter = naming.speller[bi].next(blockName.view(b));
      writeLine(p.run.statusChannel, "(A12,I4,': ',A)", {std::string_view(&letter, 1), n, first});
    }
    for (size_t l = 1; l < lines.size(); ++l) {
      writeLine(p.run.statusChannel, "(16X,': ',A)", {lines[l]});
    }
  }
}

}  // namespace

char coefficientCode(double value) {
  for (const CodeRow& row : kCodeTable) {
    if (row.lower == row.upper ? value == row.lower : value >= row.lower && value < row.upper) {
      return row.code;
    }
  }
  return '$';
}

int32_t stripCapacity(int32_t pageWidth) {
  return std::min((pageWidth - 13) / 2, PICTURE_WIDTH - kLabel);
}

void runPicture(const PictureRegions& r, RunContext& run) {
  writeCodeTable(run.statusChannel);
  r.rowSelected.fill(0);
  r.picColBlockSize.fill(0);
  r.picRowBlockSize.fill(0);
  r.colStat.fill(0);
  r.picColBlock.fill(0);

  RequestLists lists = requestListsOf(r, run.colSelCapacity, run.rowSelCapacity);
  RequestFlags flags;
  readRequestSection(sectionContextOf(run, DEFAULT_SHOW), lists, flags, run.currentKeyword);
  const int32_t dictionaryWidth = std::min(run.pageWidth, 150);
  resolveRequests(selectionContextOf(run), lists, r.rowSelected);

  // Rows: scale, marks, the row's own match (decided once per row) and its block, a run of rows
  // of one symbol.
  const int32_t m = run.rowCount, n = run.colCount;
  std::vector<ItemMatch> rowMatch(static_cast<size_t>(m) + 1);
  ItemNameBuffer names;
  SymbolMemo memo;
  std::string lastSymbol;
  int32_t rowBlocks = 0;
  for (int32_t i = 1; i <= m; ++i) {
    r.rowSelected[i] = 0;
    r.rowScale[i] = run.useScale != 0 ? ovmGetEquScaleOne(run.model, i) : 1.0;
    r.rowRhsMark[i] = coefficientCode(ovmGetRhsOne(run.model, i) * r.rowScale[i]);
    static constexpr std::array<char, 4> kRelations = {'=', '>', '<', ' '};
    const int32_t type = ovmGetEquTypeOne(run.model, i);
    r.rowTypeMark[i] = isRowType(type) ? kRelations[static_cast<size_t>(type)] : ' ';
    const ItemName& item = rowName(run.dictionary, i, names);
    rowMatch[static_cast<size_t>(i)] =
        matchEquRequests(item, lists, SCOPE_ALL, 0, run.procIndex, &memo);
    if (i == 1 || item.symbol != lastSymbol) {
      lastSymbol = item.symbol;
      if (rowBlocks < r.picRowBlockNameB.n) ++rowBlocks;
      if (rowBlocks > 0) r.picRowBlockNameB.set(rowBlocks, lastSymbol);
    }
    r.picRowBlock[i] = rowBlocks;
  }

  // Columns: scale, bounds, entries, and the marks that entries give rows and columns.
  SymbolMemo colMemo;
  const ColumnWalk walk = columnWalk(run, r.colScale, r.rowScale);
  int32_t p = 1;
  for (int32_t j = 1; j <= n; ++j) {
    r.colStat[j] = 0;
    const ItemName& item = columnName(run, run.dictionary, j, names);
    r.colScale[j] = run.useScale > 0 ? ovmGetVarScaleOne(run.model, j) : 1.0;
    const double lower = ovmGetVarLowerOne(run.model, j);
    const double upper = ovmGetVarUpperOne(run.model, j);
    r.colLower[j] = lower == run.minusInf ? run.minusInf : lower * r.colScale[j];
    r.colUpper[j] = upper == run.plusInf ? run.plusInf : upper * r.colScale[j];
    r.colStart[j] = p;
    const ItemMatch col = matchVarRequests(item, lists, SCOPE_ALL, 0, run.procIndex, &colMemo);
    if (col.directCode > 0) r.colStat[j] = 1;
    walkColumn(walk, j, [&](int32_t i, double a, int32_t nl) {
      if (p > r.colRowIndex.size()) return;
      r.colRowIndex[p] = nl > 0 ? -i : i;
      r.colCoef[p] = a;
      ++p;
      const ItemMatch& row = rowMatch[static_cast<size_t>(i)];
      if (row.directCode > 0 || col.crossCode > 0) r.rowSelected[i] = 1;
      if (row.crossCode > 0) r.colStat[j] = 1;
    });
  }
  Picture pic{r, run};
  pic.entryCount = p - 1;

  // Variable blocks: runs of selected columns of one symbol.
  std::vector<int32_t> selectedCols;
  int32_t colBlocks = 0;
  if (r.picColBlockNameB.n > 0) r.picColBlockNameB.set(1, "");
  lastSymbol.clear();
  for (int32_t j = 1; j <= n; ++j) {
    if (r.colStat[j] <= 0) continue;
    const ItemName& item = columnName(run, run.dictionary, j, names);
    if (colBlocks == 0 || item.symbol != lastSymbol) {
      lastSymbol = item.symbol;
      if (colBlocks < r.picColBlockNameB.n) ++colBlocks;
      if (colBlocks > 0) r.picColBlockNameB.set(colBlocks, lastSymbol);
    }
    if (colBlocks == 0) continue;  // no room for a single block
    r.picColBlockSize[colBlocks] += 1;
    r.picColBlock[j] = colBlocks;
    selectedCols.push_back(j);
  }
  for (int32_t i = 1; i <= m; ++i) {
    if (r.rowSelected[i] == 0 || r.picRowBlock[i] == 0) continue;
    r.picRowBlockSize[r.picRowBlock[i]] += 1;
    pic.selectedRows.push_back(i);
  }

  // Row labels, and the counts that grow over the strips.
  BlockNaming rowNaming(r.picRowBlockNameB.n);
  for (int32_t i = 1; i <= m; ++i) {
    std::memset(r.picText.at(i), ' ', PICTURE_WIDTH);
    r.picRowEntries[i] = r.picRowPositive[i] = r.picRowNegative[i] = 0;
  }
  for (int32_t i : pic.selectedRows) {
    const int32_t b = r.picRowBlock[i];
    itemLabel(r.picText.at(i), r.picRowBlockNameB.view(b), r.picRowBlockSize[b], rowNaming, b,
              false);
  }
  pic.colHeadText.fill(' ');

  // The strips, and the summary with the columns left over or alone.
  const int32_t capacity = stripCapacity(run.pageWidth);
  BlockNaming colNaming(r.picColBlockNameB.n);
  int32_t stripColumns = 0;
  for (int32_t j : selectedCols) {
    if (stripColumns == capacity) {
      pic.printStrip(stripColumns, false);
      stripColumns = 0;
    }
    const int32_t b = r.picColBlock[j];
    itemLabel(pic.head(++stripColumns), r.picColBlockNameB.view(b), r.picColBlockSize[b], colNaming,
              b, true);
  }
  if (stripColumns + 13 >= capacity) {
    pic.printStrip(stripColumns, false);
    stripColumns = 0;
  }
  const int32_t k = stripColumns;
  std::memset(pic.head(k + 1), ' ', kSummaryHeads * kLabel);
  constexpr std::array<std::pair<int32_t, std::string_view>, 6> kSummaryText = {{
      {3, "RHS COEFFS  "},
      {6, "  POSITIVE  "},
      {7, "     AIJ,S  "},
      {9, "  NEGAT VE  "},
      {10, "     AIJ,S  "},
      {12, "   ROWCNTS  "},
  }};
  for (const auto& [place, text] : kSummaryText)
    std::memcpy(pic.head(k + place), text.data(), kLabel);
  pic.printStrip(k, true);

  // The dictionaries.
  for (int32_t b = 1; b <= colBlocks; ++b) r.picColBlockName.set(b, r.picColBlockNameB.view(b));
  Channel& status = run.statusChannel;
  writeFree(status);
  writeFree(status);
  writeFree(status, {" ----### Dictionary of Variables"});
  writeFree(status);
  writeDictionary(pic, selectedCols, r.picColBlock, r.picColBlockSize, r.picColBlockName,
                  dictionaryWidth - 20, [&](int32_t j, std::string& text) {
                    int32_t length = 0, dim = 0, isNew = 0;
                    varItemLabel(run, run.dictionary, j, text, length, dim, isNew, MAX_LINE);
                  });
  writeLine(status, "(1X,/)");
  writeFree(status, {" ----### Dictionary of Equations"});
  writeFree(status);
  writeDictionary(pic, pic.selectedRows, r.picRowBlock, r.picRowBlockSize, r.picRowBlockNameB,
                  dictionaryWidth - 20, [&](int32_t i, std::string& text) {
                    int32_t length = 0, dim = 0;
                    equItemLabel(run.dictionary, i, text, length, LABEL_FULL, TextTable{}, dim,
                                 MAX_LINE);
                  });
  writeLine(status, "(1X,/)");
}
