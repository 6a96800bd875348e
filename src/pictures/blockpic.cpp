#include "pictures/blockpic.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/analysis.h"
#include "base/text.h"
#include "model/blocks.h"
#include "model/columns.h"
#include "pictures/cells.h"
#include "base/notation.h"

namespace {

// Variable type letters by typeCode 1..9 of blockColBoundTable.
constexpr std::string_view kVarTypeLetters = "+-ubissss";

char varTypeLetter(int32_t typeCode) {
  return typeCode >= 1 && typeCode <= 9 ? kVarTypeLetters[static_cast<size_t>(typeCode - 1)]
                                        : ' ';
}

// The 3-character class of a variable block by its typeCode.
const char* varTypeCode(int32_t typeCode) {
  return typeCode >= 1 && typeCode <= 10 ? kVarTypeCodes[static_cast<size_t>(typeCode - 1)]
                                         : "   ";
}

// The middle letter of the row type's code: E, G, L, N.
char rowTypeLetter(int32_t rowType) {
  return isRowType(rowType) ? kEquTypeCodes[static_cast<size_t>(rowType)][1] : ' ';
}

// Writes a table line: the template's leading values, then cells 1..lastCell of one plane,
// each as a value of one character.
void writeCells(Channel& status, std::string_view tmpl, std::initializer_list<FmtValue> lead,
                const CellLine& line, int32_t plane, int32_t lastCell) {
  std::vector<FmtValue> values(lead);
  lastCell = std::clamp(lastCell, 0, line.width);
  const auto& cells = plane == 2 ? line.plane2 : line.plane1;
  values.reserve(values.size() + static_cast<size_t>(lastCell));
  for (int32_t c = 1; c <= lastCell; ++c) {
    values.emplace_back(std::string_view(&cells[static_cast<size_t>(c - 1)], 1));
  }
  writeLine(status, tmpl, values);
}

void writeRule(Channel& status, const std::string& dashes, int32_t count) {
  count = std::clamp(count, 0, static_cast<int32_t>(dashes.size()));
  writeLine(status, "(1X,254A)",
            {std::string_view(dashes).substr(0, static_cast<size_t>(count))});
}

// The 10 heading lines of a strip: the letter of line r of each column in its cell.
// `cellOf(c, k)` gives the letter's cell; `bar(c, k)` the cell of a '|' or 0.
template <class CellOf, class Bar>
void writeHeading(Channel& status, std::string_view tmpl, TextTable alt, int32_t first, int32_t last,
                  int32_t W, int32_t lastCell, CellOf cellOf, Bar bar) {
  CellLine line;
  for (int32_t r = 1; r <= 10; ++r) {
    cellLineClear(line, W);
    for (int32_t c = first; c <= last; ++c) {
      const int32_t k = c - first;
      cellPut(line, 1, cellOf(c, k), alt.at(c)[r - 1]);
      const int32_t b = bar(c, k);
      if (b > 0) cellPut(line, 1, b, '|');
    }
    writeCells(status, tmpl, {}, line, 1, lastCell);
  }
}


}  // namespace

int32_t blockTableWidth(int32_t pageWidth) { return heldPageWidth(pageWidth); }

int32_t blockStripCount(char table, int32_t nC, int32_t W) {
  switch (table) {
    case 'A': return (nC + 1) / ((W - 19) / 3) + 1;
    case 'B': return (nC + 2) / ((W - 19) / 6) + 1;
    case 'C': return (nC + 2) / ((W - 17) / 8) + 1;
    default: {
      const int32_t perStrip = (W - 17) / 10;
      return perStrip >= nC + 2 ? 1 : (nC + 1) / perStrip + 1;
    }
  }
}

void blockStripColumns(char table, int32_t nC, int32_t W, int32_t strip, int32_t& first,
                       int32_t& last) {
  const int32_t strips = blockStripCount(table, nC, W);
  int32_t perStrip = 0;
  int32_t columns = 0;   // columns of the table
  int32_t keepWith = 0;  // a strip may not end on this column (the one-less rule)
  switch (table) {
    case 'A': perStrip = (W - 19) / 3; columns = nC + 1; keepWith = nC + 1; break;
    case 'B': perStrip = (W - 19) / 6; columns = nC + 3; keepWith = nC + 2; break;
    case 'C': perStrip = (W - 17) / 8; columns = nC + 3; keepWith = nC + 2; break;
    default: perStrip = (W - 17) / 10; columns = nC + 2; keepWith = 0; break;
  }
  const int32_t start = (strip - 1) * perStrip;
  if (strip < strips) {
    first = start + 1;
    last = start + perStrip;
    if (last == keepWith) --last;
  } else {
    first = keepWith > 0 ? std::min(start + 1, keepWith) : start + 1;
    last = columns;
  }
}

void buildVerticalHeading(TextTable colBlockName, TextTable colBlockNameAlt,
                          int32_t columns) {
  for (int32_t c = 1; c <= columns; ++c) {
    const std::string_view name = trimRight(colBlockName.view(c));
    const int32_t shown = std::min(static_cast<int32_t>(name.size()), 10);
    char* lines = colBlockNameAlt.at(c);
    for (int32_t r = 1; r <= 10; ++r) {
      const int32_t at = shown - 10 + r;
      lines[r - 1] = at >= 1 ? name[static_cast<size_t>(at - 1)] : ' ';
    }
  }
}

void printAggregatePicture(RunContext& run, int32_t nC, int32_t nR, TextTable colBlockName,
                           TextTable rowBlockName, TextTable colBlockNameAlt,
                           Table2<int32_t> blockPairCount, Table2<int32_t> blockPairCountB,
                           Table2<int32_t> blockColBoundTable, Vec1<int32_t> blockRowType) {
  Channel& status = run.statusChannel;
  const int32_t W = blockTableWidth(run.pageWidth);
  writeLine(status, "(1X,/,1X,/,1X,/,1X)");
  buildVerticalHeading(colBlockName, colBlockNameAlt, nC + 1);
  const std::string dashes(static_cast<size_t>(std::min(W, 254)), '-');
  const int32_t rhs = nC + 1;
  auto cellOf = [&](int32_t c, int32_t k) { return c > nC ? 3 * k + 9 : 3 * k + 3; };

  const int32_t strips = blockStripCount('A', nC, W);
  CellLine line;
  for (int32_t s = 1; s <= strips; ++s) {
    int32_t first = 0, last = 0;
    blockStripColumns('A', nC, W, s, first, last);
    const int32_t lastCell = cellOf(last, last - first);
    writeLine(status,
              s == 1 ? "(1X,/,1X,/,'### A. Aggregate Block Picture -- Strip',I4,/,1X,/,1X)"
                     : "(1X,/,1X,/,'   A. Aggregate Block Picture-- Strip',I4,/,1X,/,1X)",
              {s});
    writeHeading(status, "(14X,'|',254A1)", colBlockNameAlt, first, last, W, lastCell, cellOf,
                 [&](int32_t c, int32_t k) { return c == rhs && c != first ? 3 * k + 3 : 0; });
    writeRule(status, dashes, 3 * (last - first) + 22);
    for (int32_t e = 1; e <= nR; ++e) {
      cellLineClear(line, W);
      for (int32_t c = first; c <= last; ++c) {
        const int32_t k = c - first;
        const bool pos = blockPairCount(e, c) >= 1;
        const bool neg = blockPairCountB(e, c) >= 1;
        char code = pos ? (neg ? 'm' : '+') : (neg ? '-' : ' ');
        if (c == rhs) {
          if (code == ' ') code = '0';
          if (c != first) cellPut(line, 1, 3 * k + 3, '|');
          cellPut(line, 1, 3 * k + 6, rowTypeLetter(blockRowType[e]));
        }
        cellPut(line, 1, cellOf(c, k), code);
      }
      writeCells(status, "(1X,A10,3X,'|',254A1)", {rowBlockName.view(e)}, line, 1, lastCell + 3);
    }
    writeRule(status, dashes, 3 * (last - first) + 22);
    std::vector<std::string> letters;
    for (int32_t c = first; c <= std::min(last, nC); ++c) {
      letters.emplace_back(1, varTypeLetter(blockColBoundTable(c, BOUND_TYPE_CODE)));
    }
    std::vector<FmtValue> values(letters.begin(), letters.end());
    writeLine(status, "(' Variable Typ |',127(1X,A2))", values);
  }
}

void printBlockCounts(RunContext& run, Table2<int32_t> blockPairCount, Table2<int32_t> blockPairCountB,
                      TextTable colBlockName, TextTable rowBlockName, int32_t nC, int32_t nR,
                      Vec1<int32_t> colBlockCount, Vec1<int32_t> rowBlockCount,
                      Table2<int32_t> blockColBoundTable, Vec1<int32_t> blockRowType,
                      TextTable colBlockNameAlt) {
  Table2<int32_t>& P = blockPairCount;
  Table2<int32_t>& Q = blockPairCountB;
  Channel& status = run.statusChannel;
  const int32_t W = blockTableWidth(run.pageWidth);
  const int32_t rhs = nC + 1;
  const int32_t total = nR + 1;

  buildVerticalHeading(colBlockName, colBlockNameAlt, nC + 3);
  for (int32_t c = 1; c <= nC; ++c) {
    for (int32_t e = 1; e <= nR; ++e) {
      P(e, nC + 2) += P(e, c);
      Q(e, nC + 2) += Q(e, c);
      P(total, c) += P(e, c);
      Q(total, c) += Q(e, c);
    }
  }
  for (int32_t c = nC + 1; c <= nC + 2; ++c) {
    for (int32_t e = 1; e <= nR; ++e) {
      P(total, c) += P(e, c);
      Q(total, c) += Q(e, c);
    }
  }
  for (int32_t e = 1; e <= nR; ++e) P(e, nC + 3) = rowBlockCount[e];

  writeLine(status, "(1X,/,1X,/,1X,/,1X)");
  const std::string dashes(static_cast<size_t>(std::min(W, 254)), '-');
  auto posOf = [&](int32_t c, int32_t k) { return c > nC ? 6 * k + 5 : 6 * k + 1; };
  const int32_t strips = blockStripCount('B', nC, W);
  CellLine line;
  for (int32_t s = 1; s <= strips; ++s) {
    int32_t first = 0, last = 0;
    blockStripColumns('B', nC, W, s, first, last);
    const int32_t lastPos = posOf(last, last - first);
    auto bar = [&](int32_t c, int32_t k) { return c == rhs && c != first ? 6 * k + 2 : 0; };
    writeLine(status,
              s == 1 ? "(1X,/,1X,/,'### B. Number of Coefficients by Block --',1X,'Strip',I4,"
                       "/,1X,/,1X)"
                     : "(1X,/,1X,/,'   B. Number of Coefficients by Block --',1X,'Strip',I4,"
                       "/,1X,/,1X)",
              {s});
    writeHeading(status, "(14X,'|',254A1)", colBlockNameAlt, first, last, W,
                 std::min(lastPos + 4, W - 19),
                 [&](int32_t c, int32_t k) { return posOf(c, k) + 4; }, bar);
    const int32_t ruleLength = 6 * (last - first) + 25;
    writeRule(status, dashes, ruleLength);

    // One pair of lines of row e (nR + 1 for the totals).
    auto pairLines = [&](int32_t e, FmtValue title) {
      cellLineClear(line, W);
      for (int32_t c = first; c <= last; ++c) {
        const int32_t k = c - first;
        const int32_t pos = posOf(c, k);
        if (c == rhs) {
          if (c != first) {
            cellPut(line, 1, 6 * k + 2, '|');
            cellPut(line, 2, 6 * k + 2, '|');
          }
          if (e <= nR) cellPut(line, 1, 6 * k + 4, rowTypeLetter(blockRowType[e]));
        }
        const bool plain = c == nC + 3 && e <= nR;
        putCount(line, 1, pos, 6, P(e, c), plain ? 0 : 1);
        putCount(line, 2, pos, 6, Q(e, c), plain ? 0 : -1);
      }
      writeCells(status, "(1X,A10,3X,'|',254A1)", {title}, line, 1, lastPos + 6);
      writeCells(status, "(1X,A10,3X,'|',254A1)", {""}, line, 2, lastPos + 6);
    };
    for (int32_t e = 1; e <= nR; ++e) pairLines(e, rowBlockName.view(e));
    writeRule(status, dashes, ruleLength);
    pairLines(total, rowBlockName.view(total));

    cellLineClear(line, W);
    for (int32_t c = first; c <= last; ++c) {
      const int32_t k = c - first;
      if (c <= nC) putCount(line, 1, posOf(c, k), 6, colBlockCount[c], 0);
      const int32_t b = bar(c, k);
      if (b > 0) cellPut(line, 1, b, '|');
    }
    writeCells(status, "(1X,A10,3X,'|',254A1)", {"# of  Vars"}, line, 1, lastPos + 6);

    std::vector<FmtValue> codes;
    for (int32_t c = first; c <= std::min(last, nC); ++c) {
      codes.emplace_back(varTypeCode(blockColBoundTable(c, BOUND_TYPE_CODE)));
    }
    writeLine(status, "(' Variable Typ |',41(3X,A3))", codes);
  }
}

void printAverageCounts(RunContext& run, Table2<int32_t> blockPairCount, Table2<int32_t> blockPairCountB,
                        TextTable colBlockName, TextTable rowBlockName, int32_t nC, int32_t nR,
                        Vec1<int32_t> colBlockCount, Vec1<int32_t> rowBlockCount,
                        Table2<int32_t> blockColBoundTable, TextTable colBlockNameAlt,
                        Vec1<int32_t> blockRowType) {
  constexpr double kUpperCap = 1000.0;
  constexpr double kLowerCap = 0.0010000000474974513;
  Table2<int32_t>& P = blockPairCount;
  Table2<int32_t>& Q = blockPairCountB;
  Channel& status = run.statusChannel;
  const int32_t W = blockTableWidth(run.pageWidth);
  const int32_t rhs = nC + 1;
  const int32_t total = nR + 1;

  buildVerticalHeading(colBlockName, colBlockNameAlt, nC + 3);
  const std::string dashes(254, '-');
  auto posOf = [&](int32_t c, int32_t k) { return c > nC ? 8 * k + 5 : 8 * k + 1; };
  auto putAverages = [&](CellLine& line, int32_t pos, double positive, double negative) {
    putReal(line, 1, pos, 8, positive, 1, 4, kUpperCap, kLowerCap, 1);
    putReal(line, 2, pos, 8, negative, -1, 4, kUpperCap, kLowerCap, 1);
  };
  const int32_t strips = blockStripCount('C', nC, W);
  CellLine line;
  for (int32_t s = 1; s <= strips; ++s) {
    int32_t first = 0, last = 0;
    blockStripColumns('C', nC, W, s, first, last);
    const int32_t lastPos = posOf(last, last - first);
    writeLine(status,
              s == 1 ? "(1X,/,1X,/,' ### C. Average Number of',1X,"
                       "'Coefficients by Column Block -- Strip',I4,/,1X,/)"
                     : "(1X,/,1X,/,'    C. Average Number of',1X,"
                       "'Coefficients by Column Block -- Strip',I4,/,1X,/)",
              {s});
    writeHeading(status, "(12X,'|',254A)", colBlockNameAlt, first, last, W,
                 std::min(lastPos + 6, W - 17),
                 [&](int32_t c, int32_t k) { return posOf(c, k) + 6; },
                 [](int32_t, int32_t) { return 0; });
    const int32_t ruleLength = 8 * (last - first) + 21 + (last > nC ? 4 : 0);
    writeRule(status, dashes, ruleLength);

    const int32_t lastCell = std::min(lastPos + 8, W - 13);
    for (int32_t e = 1; e <= nR; ++e) {
      cellLineClear(line, W);
      for (int32_t c = first; c <= last; ++c) {
        const int32_t k = c - first;
        const int32_t pos = posOf(c, k);
        if (c <= nC) {
          if (colBlockCount[c] != 0) {
            putAverages(line, pos, static_cast<double>(P(e, c)) / colBlockCount[c],
                        static_cast<double>(Q(e, c)) / colBlockCount[c]);
          }
        } else if (c == rhs) {
          if (c != first) {
            cellPut(line, 1, pos - 3, '|');
            cellPut(line, 2, pos - 3, '|');
          }
          cellPut(line, 1, pos - 1, rowTypeLetter(blockRowType[e]));
          putAverages(line, pos, P(e, c), Q(e, c));
        } else if (c == nC + 2) {
          if (rowBlockCount[e] != 0) {
            putAverages(line, pos, P(e, c) / rowBlockCount[e], Q(e, c) / rowBlockCount[e]);
          }
        } else {
          putCount(line, 1, pos, 8, P(e, c), 0);
        }
      }
      writeCells(status, "(1X,A10,' |',254A)", {rowBlockName.view(e)}, line, 1, lastCell);
      writeCells(status, "(11X,' |',254A)", {}, line, 2, lastCell);
    }
    writeRule(status, dashes, ruleLength);

    // Averages of the whole variable blocks.
    auto bottomPos = [&](int32_t c, int32_t k) { return c == rhs ? 8 * k + 4 : 8 * k + 1; };
    cellLineClear(line, W);
    for (int32_t c = first; c <= last; ++c) {
      const int32_t k = c - first;
      const int32_t pos = bottomPos(c, k);
      if (c <= nC && colBlockCount[c] != 0) {
        putAverages(line, pos, static_cast<double>(P(total, c)) / colBlockCount[c],
                    static_cast<double>(Q(total, c)) / colBlockCount[c]);
      }
      if (c == rhs && c != first) {
        cellPut(line, 1, pos - 2, '|');
        cellPut(line, 2, pos - 2, '|');
      }
    }
    const int32_t bottomCell = std::min(bottomPos(last, last - first) + 8, W - 13);
    writeCells(status, "(1X,A10,' |',254A)", {rowBlockName.view(total)}, line, 1, bottomCell);
    writeCells(status, "(11X,' |',254A)", {}, line, 2, bottomCell);

    std::vector<FmtValue> sizes;
    std::vector<FmtValue> codes;
    for (int32_t c = first; c <= std::min(last, nC); ++c) {
      sizes.emplace_back(colBlockCount[c]);
      codes.emplace_back(varTypeCode(blockColBoundTable(c, BOUND_TYPE_CODE)));
    }
    if (first <= nC) {
      sizes.insert(sizes.begin(), FmtValue("# of  Vars"));
      writeLine(status, "(1X,A10,' |',I7,34I8)", sizes);
    }
    writeLine(status, "('  Var Type  |',4X,A3,34(5X,A3))", codes);
    writeRule(status, dashes, ruleLength);
  }
}

void printBlockScaling(RunContext& run, Table2<double> blockPairMax, Table2<double> blockPairMin,
                       TextTable colBlockName, TextTable rowBlockName, int32_t nC, int32_t nR,
                       TextTable colBlockNameAlt) {
  Table2<double>& X = blockPairMax;
  Table2<double>& N = blockPairMin;
  Channel& status = run.statusChannel;
  const int32_t W = blockTableWidth(run.pageWidth);
  const int32_t total = nR + 1;
  const int32_t extremes = nC + 2;

  buildVerticalHeading(colBlockName, colBlockNameAlt, nC + 2);
  const std::string dashes(254, '-');
  if (nR > 0) {
    for (int32_t c = 1; c <= nC + 1; ++c) {
      for (int32_t e = 1; e <= nR; ++e) {
        const double x = X(e, c);
        const double n = N(e, c);
        if (c <= nC) {
          if (x > X(e, extremes) && x > 0.0) X(e, extremes) = x;
          if (n < N(e, extremes) && n > 0.0) N(e, extremes) = n;
        }
        if (x > X(total, c) && x > 0.0) X(total, c) = x;
        if (n < N(total, c) && n > 0.0) N(total, c) = n;
      }
    }
  }
  for (int32_t c = 1; c <= nC + 2; ++c) {
    for (int32_t e = 1; e <= total; ++e) {
      if (N(e, c) >= SENTINEL_MIN) N(e, c) = 0.0;
    }
  }

  const int32_t strips = blockStripCount('D', nC, W);
  CellLine line;
  for (int32_t s = 1; s <= strips; ++s) {
    int32_t first = 0, last = 0;
    blockStripColumns('D', nC, W, s, first, last);
    const int32_t lastPos = 10 * (last - first) + 1;
    writeLine(status,
              s == 1 ? "(1X,/,1X,/,'### D. Scaling - Maximum &',1X,"
                       "'Minimum Coefficients by Block -- Strip',I4,/,1X,/,1X)"
                     : "(1X,/,1X,/,'   D. Scaling - Maximum &',1X,"
                       "'Minimum Coefficients by Block -- Strip',I4,/,1X,/,1X)",
              {s});
    writeHeading(status, "(11X,'    |',254A)", colBlockNameAlt, first, last, W,
                 std::min(lastPos + 8, W - 16),
                 [](int32_t, int32_t k) { return 10 * k + 9; },
                 [](int32_t, int32_t) { return 0; });
    const int32_t ruleLength = 10 * (last - first + 1) + 18;
    writeRule(status, dashes, ruleLength);
    const int32_t lastCell = std::min(lastPos + 10, W - 16);
    auto pairLines = [&](int32_t e, FmtValue title) {
      cellLineClear(line, W);
      for (int32_t c = first; c <= last; ++c) {
        const int32_t pos = 10 * (c - first) + 1;
        putReal(line, 1, pos, 10, X(e, c), 0, 4, 0.0, 0.0, 0);
        putReal(line, 2, pos, 10, N(e, c), 0, 4, 0.0, 0.0, 0);
      }
      writeCells(status, "(1X,A10,' Max|',254A)", {title}, line, 1, lastCell);
      writeCells(status, "(1X,10X,' Min|',254A)", {}, line, 2, lastCell);
    };
    for (int32_t e = 1; e <= nR; ++e) pairLines(e, rowBlockName.view(e));
    writeRule(status, dashes, ruleLength);
    pairLines(total, "Total Var");
  }
  writeLine(status, "(15X,' ')");
}

void runBlockPicture(const BlockPicRegions& w, RunContext& rs) {
  const int32_t rowCount = rs.rowCount, colCount = rs.colCount;
  const int32_t icblock = rs.icblock, irblock = rs.irblock;
  ovdHandle dictionary = rs.dictionary;
  int32_t colBlockUsed = 0;
  int32_t rowBlockUsed = 0;
  ovmHandle model = rs.model;
  buildBlockTables(rs, rowCount, colCount, colBlockUsed, rowBlockUsed, icblock, irblock,
                   w.colBlockName, w.rowBlockName, w.colBlockCount, w.rowBlockCount, dictionary,
                   w.colBlockOf, w.rowBlockOf);
  const int32_t nC = colBlockUsed;
  const int32_t nR = rowBlockUsed;
  // The tables keep three title columns behind the variable blocks and a total row behind
  // the equation blocks.
  if (nC + 3 > icblock || nC + 3 > w.blockPairCount.cols) {
    blockCapacityStop(rs, true, std::max(std::min(icblock, w.blockPairCount.cols) - 3, 0));
  }
  if (nR + 1 > irblock || nR + 1 > w.blockPairCount.rows) {
    blockCapacityStop(rs, false, std::max(std::min(irblock, w.blockPairCount.rows) - 1, 0));
  }

  w.rowSignTable.fill(0);
  w.colSignTable.fill(0);
  resetBoundTable(w.blockColBoundTable);
  w.blockPairMax.fill(0.0);
  w.blockPairMin.fill(BLOCK_MIN_START);
  w.blockPairCount.fill(0);
  w.blockPairCountB.fill(0);
  w.blockRowType.fill(-1);
  w.blockRowRhs.fill(RHS_NONE_YET);

  const int32_t rhs = nC + 1;
  for (int32_t i = 1; i <= rowCount; ++i) {
    const int32_t e = w.rowBlockOf[i];
    w.rowScale[i] = rs.useScale != 0 ? ovmGetEquScaleOne(model, i) : 1.0;
    w.blockRowType[e] = ovmGetEquTypeOne(model, i);
    const double r = ovmGetRhsOne(model, i) * w.rowScale[i];
    w.blockRowRhs[e] = nextBlockRhsStatus(w.blockRowRhs[e], r);
    const double size = std::fabs(r);
    if (size > w.blockPairMax(e, rhs)) w.blockPairMax(e, rhs) = size;
    if (size < w.blockPairMin(e, rhs) && size > 0.0) w.blockPairMin(e, rhs) = size;
    if (r > 0.0) ++w.blockPairCount(e, rhs);
    if (r < 0.0) ++w.blockPairCountB(e, rhs);
  }

  const ColumnWalk walk = columnWalk(rs, w.colScale, w.rowScale);
  for (int32_t j = 1; j <= colCount; ++j) {
    const int32_t c = w.colBlockOf[j];
    double lower = 0.0;
    double upper = 0.0;
    const int32_t t = readColumnBounds(rs, j, w.colScale, c, w.blockColBoundTable, lower, upper);
    walkColumn(walk, j, [&](int32_t i, double a, int32_t nl) {
      const int32_t e = w.rowBlockOf[i];
      if (j == rs.objVar && rs.objRow == 0) rs.objRow = i;
      const double size = std::fabs(a);
      if (size > w.blockPairMax(e, c)) w.blockPairMax(e, c) = size;
      if (size < w.blockPairMin(e, c)) w.blockPairMin(e, c) = size;
      if (nl > 0) {
        ++w.rowSignTable(e, NONLINEAR_SLOT, SIGN_NONLINEAR);
        ++w.colSignTable(c, NONLINEAR_SLOT, SIGN_NONLINEAR);
      }
      if (a > 0.0) {
        ++w.rowSignTable(e, t, SIGN_POSITIVE);
        ++w.blockPairCount(e, c);
        ++w.colSignTable(c, rowTypeSlot(w.blockRowType[e]), SIGN_POSITIVE);
      } else if (a < 0.0) {
        ++w.rowSignTable(e, t, SIGN_NEGATIVE);
        ++w.blockPairCountB(e, c);
        ++w.colSignTable(c, rowTypeSlot(w.blockRowType[e]), SIGN_NEGATIVE);
      }
    });
  }

  // The objective row's block turns into the objective cells of every variable block.
  if (rs.objRow > 0 && rs.objRow <= rowCount) {
    const int32_t eo = w.rowBlockOf[rs.objRow];
    int32_t f = rs.minimizing ? -1 : 1;
    if (rs.objVar > 0 && rs.objVar <= colCount &&
        w.blockPairCount(eo, w.colBlockOf[rs.objVar]) > 0) {
      f = -f;
    }
    for (int32_t c = 1; c <= nC; ++c) {
      const int32_t p = w.blockPairCount(eo, c);
      const int32_t q = w.blockPairCountB(eo, c);
      w.colSignTable(c, SLOT_EQ, SIGN_POSITIVE) -= p;
      w.colSignTable(c, SLOT_EQ, SIGN_NEGATIVE) -= q;
      w.colSignTable(c, SLOT_OBJECTIVE, OBJECTIVE_GOOD) = f >= 1 ? p : q;
      w.colSignTable(c, SLOT_OBJECTIVE, OBJECTIVE_BAD) = f >= 1 ? q : p;
    }
  }

  w.colBlockName.set(nC + 2, "Coeff Cnts");
  w.colBlockName.set(nC + 3, "# of  Eqns");
  w.rowBlockName.set(nR + 1, "Coeff Cnts");
  printAggregatePicture(rs, nC, nR, w.colBlockName, w.rowBlockName, w.colBlockNameAlt, w.blockPairCount,
                        w.blockPairCountB, w.blockColBoundTable, w.blockRowType);
  printBlockCounts(rs, w.blockPairCount, w.blockPairCountB, w.colBlockName, w.rowBlockName, nC, nR,
                   w.colBlockCount, w.rowBlockCount, w.blockColBoundTable, w.blockRowType,
                   w.colBlockNameAlt);
  w.colBlockName.set(nC + 2, "Cfs PerEqu");
  w.rowBlockName.set(nR + 1, "Cfs PerVar");
  printAverageCounts(rs, w.blockPairCount, w.blockPairCountB, w.colBlockName, w.rowBlockName, nC, nR,
                     w.colBlockCount, w.rowBlockCount, w.blockColBoundTable, w.colBlockNameAlt,
                     w.blockRowType);
  w.colBlockName.set(nC + 1, "RHS MaxMin");
  w.colBlockName.set(nC + 2, "Equ MaxMin");
  printBlockScaling(rs, w.blockPairMax, w.blockPairMin, w.colBlockName, w.rowBlockName, nC, nR,
                    w.colBlockNameAlt);

  const int32_t skip =
      rs.objVar > 0 && rs.objVar <= colCount ? w.colBlockOf[rs.objVar] : 0;
  reportBlockFindings(rs, nC, nR, w.colBlockName, w.rowBlockName, w.colSignTable, w.rowSignTable,
                      w.blockColBoundTable, w.blockRowType, w.blockRowRhs, w.rowActivity, skip,
                      dictionary);
}
