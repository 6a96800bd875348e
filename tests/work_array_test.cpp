// partitionWorkArray: the layouts of the eight phases, word for word, and the overflow test.

#include "model/work_array.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "run/run_state.h"

namespace {

enum Kind { Dbl, Int, Chr };

// One region of a layout as the tables give it: name, start field, element kind, count.
struct Expected {
  const char* name;
  int32_t WorkRegions::*field;
  Kind kind;
  int64_t count;
};

int64_t words(Kind k, int64_t n) {
  switch (k) {
    case Dbl: return n;
    case Int: return n / 2 + 1;
    case Chr: return n / 8 + 1;
  }
  return 0;
}

using W = WorkRegions;
using Table = std::vector<Expected>;

// Distinct sizes, so that a region sized by the wrong count, or two regions swapped, shows.
PartitionSizes oddSizes() {
  PartitionSizes s;
  s.rowCount = 7;
  s.colCount = 11;
  s.nzCount = 13;
  s.colSelCapacity = 5;
  s.rowSelCapacity = 3;
  s.icblock = 6;
  s.irblock = 9;
  return s;
}

Table phase2Table(const PartitionSizes& s) {
  const int64_t m = s.rowCount, n = s.colCount, nz = s.nzCount;
  const int64_t cs = s.colSelCapacity, rs = s.rowSelCapacity;
  return {
      {"rowRhs", &W::rowRhs, Dbl, m},
      {"rowMarginal", &W::rowMarginal, Dbl, m},
      {"colMarginal", &W::colMarginal, Dbl, n},
      {"colLevel", &W::colLevel, Dbl, n},
      {"rowStat", &W::rowStat, Int, m},
      {"colStat", &W::colStat, Int, n},
      {"rowCStat", &W::rowCStat, Int, m},
      {"colCStat", &W::colCStat, Int, n},
      {"rowLevel", &W::rowLevel, Dbl, m},
      {"colLower", &W::colLower, Dbl, n},
      {"colUpper", &W::colUpper, Dbl, n},
      {"rowStart", &W::rowStart, Int, m},
      {"rowType", &W::rowType, Int, m},
      {"colStart", &W::colStart, Int, n},
      {"colRowIndex", &W::colRowIndex, Int, nz},
      {"rowColIndex", &W::rowColIndex, Int, nz},
      {"rowFill", &W::rowFill, Int, m},
      {"colCoef", &W::colCoef, Dbl, nz},
      {"rowCoef", &W::rowCoef, Dbl, nz},
      {"rowSelected", &W::rowSelected, Int, m},
      {"colSelRaw", &W::colSelRaw, Chr, 375 * cs},
      {"rowSelRaw", &W::rowSelRaw, Chr, 375 * rs},
      {"colSelSymbol", &W::colSelSymbol, Chr, 31 * cs},
      {"rowSelSymbol", &W::rowSelSymbol, Chr, 31 * rs},
      {"colSelLabels", &W::colSelLabels, Chr, 310 * cs},
      {"rowSelLabels", &W::rowSelLabels, Chr, 310 * rs},
      {"colSelDim", &W::colSelDim, Int, cs},
      {"rowSelDim", &W::rowSelDim, Int, rs},
      {"colSelSpec", &W::colSelSpec, Int, 5 * cs},
      {"rowSelSpec", &W::rowSelSpec, Int, 5 * rs},
      {"rowScale", &W::rowScale, Dbl, m},
      {"colScale", &W::colScale, Dbl, n},
  };
}

Table phase1Table(const PartitionSizes& s) {
  Table t = phase2Table(s);
  t.resize(11);
  return t;
}

Table phase3Table(const PartitionSizes& s) {
  const int64_t m = s.rowCount, n = s.colCount, nz = s.nzCount;
  const int64_t cs = s.colSelCapacity, rs = s.rowSelCapacity;
  const int64_t ic = s.icblock, ir = s.irblock;
  return {
      {"rowRhsMark", &W::rowRhsMark, Chr, m},
      {"rowTypeMark", &W::rowTypeMark, Chr, m},
      {"picText", &W::picText, Chr, 120 * m},
      {"picColBlock", &W::picColBlock, Int, n},
      {"picRowEntries", &W::picRowEntries, Int, m},
      {"picRowPositive", &W::picRowPositive, Int, m},
      {"picRowNegative", &W::picRowNegative, Int, m},
      {"picRowBlock", &W::picRowBlock, Int, m},
      {"rowSelected", &W::rowSelected, Int, m},
      {"colSelRaw", &W::colSelRaw, Chr, 375 * cs},
      {"rowSelRaw", &W::rowSelRaw, Chr, 375 * rs},
      {"colSelSymbol", &W::colSelSymbol, Chr, 31 * cs},
      {"rowSelSymbol", &W::rowSelSymbol, Chr, 31 * rs},
      {"picRowBlockName", &W::picRowBlockName, Chr, 31 * ir},
      {"picColBlockName", &W::picColBlockName, Chr, 31 * ic},
      {"picColBlockNameB", &W::picColBlockNameB, Chr, 31 * ic},
      {"picRowBlockNameB", &W::picRowBlockNameB, Chr, 31 * ir},
      {"colSelLabels", &W::colSelLabels, Chr, 310 * cs},
      {"rowSelLabels", &W::rowSelLabels, Chr, 310 * rs},
      {"picRowBlockWorkA", &W::picRowBlockWorkA, Int, ir},
      {"picRowBlockSize", &W::picRowBlockSize, Int, ir},
      {"picRowBlockPair", &W::picRowBlockPair, Int, 2 * ir},
      {"colSelDim", &W::colSelDim, Int, cs},
      {"rowSelDim", &W::rowSelDim, Int, rs},
      {"picColBlockSize", &W::picColBlockSize, Int, ic},
      {"picColBlockPair", &W::picColBlockPair, Int, 2 * ic},
      {"colSelSpec", &W::colSelSpec, Int, 5 * cs},
      {"rowSelSpec", &W::rowSelSpec, Int, 5 * rs},
      {"colStart", &W::colStart, Int, n},
      {"colRowIndex", &W::colRowIndex, Int, nz},
      {"colCoef", &W::colCoef, Dbl, nz},
      {"colStat", &W::colStat, Int, n},
      {"colLower", &W::colLower, Dbl, n},
      {"colUpper", &W::colUpper, Dbl, n},
      {"rowScale", &W::rowScale, Dbl, m},
      {"colScale", &W::colScale, Dbl, n},
  };
}

// colBlockName and colBlockNameAlt hold icblock + 1 names: the RHS head stands behind the
// last block.
Table phase4Table(const PartitionSizes& s) {
  const int64_t m = s.rowCount, n = s.colCount;
  const int64_t ic = s.icblock, ir = s.irblock;
  return {
      {"colBlockOf", &W::colBlockOf, Int, n},
      {"rowBlockOf", &W::rowBlockOf, Int, m},
      {"colBlockName", &W::colBlockName, Chr, 31 * (ic + 1)},
      {"rowBlockName", &W::rowBlockName, Chr, 31 * ir},
      {"colBlockNameAlt", &W::colBlockNameAlt, Chr, 31 * (ic + 1)},
      {"colBlockCount", &W::colBlockCount, Int, ic},
      {"rowBlockCount", &W::rowBlockCount, Int, ir},
      {"blockPairMax", &W::blockPairMax, Dbl, ir * ic},
      {"blockPairMin", &W::blockPairMin, Dbl, ir * ic},
      {"blockPairCount", &W::blockPairCount, Int, ir * ic},
      {"blockPairCountB", &W::blockPairCountB, Int, ir * ic},
      {"colSignTable", &W::colSignTable, Int, 12 * ic},
      {"rowSignTable", &W::rowSignTable, Int, 9 * ir},
      {"blockRowRhs", &W::blockRowRhs, Dbl, ir},
      {"blockRowType", &W::blockRowType, Int, ir},
      {"blockColBoundTable", &W::blockColBoundTable, Int, 5 * ic},
      {"rowActivity", &W::rowActivity, Dbl, 4 * ir},
      {"rowScale", &W::rowScale, Dbl, m},
      {"colScale", &W::colScale, Dbl, n},
  };
}

Table phase5Table(const PartitionSizes& s) {
  const int64_t m = s.rowCount, n = s.colCount;
  return {
      {"rowRhs", &W::rowRhs, Dbl, m},
      {"colSignTable", &W::colSignTable, Int, 12 * n},
      {"colBoundTable", &W::colBoundTable, Int, 5 * n},
      {"anaRowType", &W::anaRowType, Int, m},
      {"rowSignTable", &W::rowSignTable, Int, 9 * m},
      {"rowActivity", &W::rowActivity, Dbl, 4 * m},
      {"rowScale", &W::rowScale, Dbl, m},
      {"colScale", &W::colScale, Dbl, n},
  };
}

Table phase6Table(const PartitionSizes& s) {
  const int64_t m = s.rowCount, n = s.colCount;
  const int64_t ic = s.icblock, ir = s.irblock;
  return {
      {"colBlockOf", &W::colBlockOf, Int, n},
      {"rowBlockOf", &W::rowBlockOf, Int, m},
      {"colBlockName", &W::colBlockName, Chr, 31 * (ic + 1)},
      {"rowBlockName", &W::rowBlockName, Chr, 31 * ir},
      {"colBlockCount", &W::colBlockCount, Int, ic},
      {"rowBlockCount", &W::rowBlockCount, Int, ir},
      {"colSignTable", &W::colSignTable, Int, 12 * ic},
      {"rowSignTable", &W::rowSignTable, Int, 9 * ir},
      {"blockRowRhs", &W::blockRowRhs, Dbl, ir},
      {"blockRowType", &W::blockRowType, Int, ir},
      {"blockColBoundTable", &W::blockColBoundTable, Int, 5 * ic},
      {"blkColWorkA", &W::blkColWorkA, Int, ic},
      {"blkColWorkB", &W::blkColWorkB, Int, ic},
      {"blkColWorkC", &W::blkColWorkC, Int, ic},
      {"blkColWorkD", &W::blkColWorkD, Int, ic},
      {"blkRowWorkA", &W::blkRowWorkA, Int, ir},
      {"blkRowWorkB", &W::blkRowWorkB, Int, ir},
      {"blkRowWorkC", &W::blkRowWorkC, Int, ir},
      {"blkRowWorkD", &W::blkRowWorkD, Int, ir},
      {"blkRowPair", &W::blkRowPair, Int, 2 * ir},
      {"blkColMax", &W::blkColMax, Dbl, ic},
      {"blkColMin", &W::blkColMin, Dbl, ic},
      {"blkRowMax", &W::blkRowMax, Dbl, ir},
      {"blkRowMin", &W::blkRowMin, Dbl, ir},
      {"rowActivity", &W::rowActivity, Dbl, 4 * ir},
      {"rowScale", &W::rowScale, Dbl, m},
      {"colScale", &W::colScale, Dbl, n},
  };
}

Table phase7Table(const PartitionSizes& s) {
  const int64_t m = s.rowCount, n = s.colCount, nz = s.nzCount;
  const int64_t cs = s.colSelCapacity, rs = s.rowSelCapacity;
  return {
      {"rowStart", &W::rowStart, Int, m},
      {"rowType", &W::rowType, Int, m},
      {"colStart", &W::colStart, Int, n},
      {"colRowIndex", &W::colRowIndex, Int, nz},
      {"rowColIndex", &W::rowColIndex, Int, nz},
      {"rowFill", &W::rowFill, Int, m},
      {"colCoef", &W::colCoef, Dbl, nz},
      {"rowCoef", &W::rowCoef, Dbl, nz},
      {"rowSelected", &W::rowSelected, Int, m},
      {"colSelRaw", &W::colSelRaw, Chr, 375 * cs},
      {"rowSelRaw", &W::rowSelRaw, Chr, 375 * rs},
      {"colSelSymbol", &W::colSelSymbol, Chr, 31 * cs},
      {"rowSelSymbol", &W::rowSelSymbol, Chr, 31 * rs},
      {"colSelLabels", &W::colSelLabels, Chr, 310 * cs},
      {"rowSelLabels", &W::rowSelLabels, Chr, 310 * rs},
      {"colSelDim", &W::colSelDim, Int, cs},
      {"rowSelDim", &W::rowSelDim, Int, rs},
      {"colSelSpec", &W::colSelSpec, Int, 5 * cs},
      {"rowSelSpec", &W::rowSelSpec, Int, 5 * rs},
      {"matchColTable", &W::matchColTable, Int, 6 * cs},
      {"matchRowTable", &W::matchRowTable, Int, 6 * rs},
      {"matchRowFlag", &W::matchRowFlag, Int, rs},
      {"matchColFlag", &W::matchColFlag, Int, cs},
      {"rowScale", &W::rowScale, Dbl, m},
      {"colScale", &W::colScale, Dbl, n},
  };
}

Table tableOf(int32_t phase, const PartitionSizes& s) {
  switch (phase) {
    case 1: return phase1Table(s);
    case 2: return phase2Table(s);
    case 3: return phase3Table(s);
    case 4: return phase4Table(s);
    case 5: return phase5Table(s);
    case 6: return phase6Table(s);
    case 7: return phase7Table(s);
  }
  return {};
}

// The end of a table laid out from word 1.
int64_t tableTotal(const Table& t) {
  int64_t position = 1;
  for (const Expected& e : t) position += words(e.kind, e.count);
  return position;
}

struct Partition {
  WorkRegions regions;
  int64_t total = 0;
  int32_t status = 99;
};

Partition partition(int32_t phase, const PartitionSizes& s) {
  Partition p;
  partitionWorkArray(1, p.total, phase, PICTURE_WIDTH, p.status, s, p.regions);
  return p;
}

// Every region of the table starts where the one before it ends, and the total follows the
// last; every start that the table does not name stays at the head of the array.
void expectLayout(int32_t phase, const PartitionSizes& s) {
  SCOPED_TRACE("phase " + std::to_string(phase));
  const Table t = tableOf(phase, s);
  const Partition p = partition(phase, s);
  EXPECT_EQ(p.status, 0);
  int64_t position = 1;
  for (const Expected& e : t) {
    EXPECT_EQ(p.regions.*(e.field), position) << e.name;
    position += words(e.kind, e.count);
  }
  EXPECT_EQ(p.total, position);
  WorkRegions untouched;
  for (const Expected& e : t) untouched.*(e.field) = p.regions.*(e.field);
  const auto* a = reinterpret_cast<const unsigned char*>(&untouched);
  const auto* b = reinterpret_cast<const unsigned char*>(&p.regions);
  EXPECT_TRUE(std::equal(a, a + sizeof(WorkRegions), b)) << "a region outside the layout moved";
}

TEST(WorkArrayPartition, ElementSizes) {
  EXPECT_EQ(wordsOfDouble(5), 5);
  EXPECT_EQ(wordsOfInt32(4), 3);
  EXPECT_EQ(wordsOfInt32(5), 3);
  EXPECT_EQ(wordsOfInt32(0), 1);
  EXPECT_EQ(wordsOfChar(31 * 5), 20);
  EXPECT_EQ(wordsOfChar(8), 2);
  EXPECT_EQ(wordsOfChar(7), 1);
}

TEST(WorkArrayPartition, AnalysisExampleOfThreeRowsAndFourColumns) {
  PartitionSizes s;
  s.rowCount = 3;
  s.colCount = 4;
  const Partition p = partition(5, s);
  ASSERT_EQ(p.status, 0);
  const WorkRegions& r = p.regions;
  // Regions of 3, 25, 11, 2, 14, 12, 3 and 4 words.
  EXPECT_EQ(r.rowRhs, 1);
  EXPECT_EQ(r.colSignTable, 4);
  EXPECT_EQ(r.colBoundTable, 29);
  EXPECT_EQ(r.anaRowType, 40);
  EXPECT_EQ(r.rowSignTable, 42);
  EXPECT_EQ(r.rowActivity, 56);
  EXPECT_EQ(r.rowScale, 68);
  EXPECT_EQ(r.colScale, 71);
  EXPECT_EQ(p.total, 75);
}

TEST(WorkArrayPartition, EveryLayoutFollowsItsTable) {
  for (int32_t phase = 1; phase <= 7; ++phase) expectLayout(phase, oddSizes());
  PartitionSizes big;
  big.rowCount = 1001;
  big.colCount = 2003;
  big.nzCount = 9999;
  big.colSelCapacity = 1000;
  big.rowSelCapacity = 999;
  big.icblock = 37;
  big.irblock = 41;
  for (int32_t phase = 1; phase <= 7; ++phase) expectLayout(phase, big);
}

TEST(WorkArrayPartition, SolutionRegionsKeepTheirStartsFromPhaseOneToTwo) {
  const Partition one = partition(1, oddSizes());
  const Partition two = partition(2, oddSizes());
  const Table t = phase1Table(oddSizes());
  ASSERT_EQ(t.size(), 11u);
  for (const Expected& e : t) EXPECT_EQ(one.regions.*(e.field), two.regions.*(e.field)) << e.name;
  EXPECT_EQ(one.regions.rowLevel, two.regions.rowLevel);
  EXPECT_EQ(one.total, two.regions.rowStart);
}

TEST(WorkArrayPartition, EmptySelectionListsStillTakeAWord) {
  PartitionSizes s = oddSizes();
  s.colSelCapacity = 0;
  s.rowSelCapacity = 0;
  const Partition p = partition(2, s);
  const WorkRegions& r = p.regions;
  EXPECT_EQ(r.rowSelRaw - r.colSelRaw, 1);
  EXPECT_EQ(r.colSelSymbol - r.rowSelRaw, 1);
  EXPECT_EQ(r.rowSelSymbol - r.colSelSymbol, 1);
  EXPECT_EQ(r.colSelLabels - r.rowSelSymbol, 1);
  EXPECT_EQ(r.rowSelLabels - r.colSelLabels, 1);
  EXPECT_EQ(r.colSelDim - r.rowSelLabels, 1);
  EXPECT_EQ(r.rowSelDim - r.colSelDim, 1);
  EXPECT_EQ(r.colSelSpec - r.rowSelDim, 1);
  EXPECT_EQ(r.rowSelSpec - r.colSelSpec, 1);
  EXPECT_EQ(r.rowScale - r.rowSelSpec, 1);
  const Partition q = partition(7, s);
  EXPECT_EQ(q.regions.matchColFlag - q.regions.matchRowFlag, 1);
  EXPECT_EQ(q.regions.rowScale - q.regions.matchColFlag, 1);
}

// The control file may give request capacities down to -9999: such a list is sized as an empty
// one, and no region starts before the head of the array or before the region ahead of it.
TEST(WorkArrayPartition, NegativeRequestCapacitiesSizeAsEmptyLists) {
  PartitionSizes negative = oddSizes();
  negative.colSelCapacity = -9999;
  negative.rowSelCapacity = -5;
  PartitionSizes empty = oddSizes();
  empty.colSelCapacity = 0;
  empty.rowSelCapacity = 0;
  for (int32_t phase : {2, 3, 7}) {
    const Partition p = partition(phase, negative);
    const Partition q = partition(phase, empty);
    EXPECT_EQ(p.status, 0) << "phase " << phase;
    EXPECT_EQ(p.total, q.total) << "phase " << phase;
    for (const Expected& e : tableOf(phase, empty)) {
      EXPECT_EQ(p.regions.*(e.field), q.regions.*(e.field)) << "phase " << phase << " " << e.name;
    }
  }
  EXPECT_EQ(partition(0, negative).total, partition(0, empty).total);
}

TEST(WorkArrayPartition, SizingPhaseTakesTheLargestLayout) {
  PartitionSizes picture = oddSizes();  // picText dominates
  picture.rowCount = 5000;
  PartitionSizes blocks = oddSizes();   // the block pair tables dominate
  blocks.icblock = 300;
  blocks.irblock = 400;
  PartitionSizes requests = oddSizes(); // the selection lists dominate phases 2 and 7
  requests.colSelCapacity = 4000;
  for (const PartitionSizes& s : {oddSizes(), picture, blocks, requests}) {
    int64_t largest = 0;
    for (int32_t phase = 1; phase <= 7; ++phase) {
      largest = std::max(largest, tableTotal(tableOf(phase, s)));
    }
    const Partition p = partition(0, s);
    EXPECT_EQ(p.status, 0);
    EXPECT_EQ(p.total, largest);
  }
  // Each case is led by a different phase.
  EXPECT_EQ(partition(0, picture).total, tableTotal(phase3Table(picture)));
  EXPECT_EQ(partition(0, blocks).total, tableTotal(phase4Table(blocks)));
  EXPECT_EQ(partition(0, requests).total, tableTotal(phase7Table(requests)));
}

TEST(WorkArrayPartition, OverflowOfTheBlockPairTables) {
  PartitionSizes s = oddSizes();
  // 50000 x 50000 exceeds 2147483647 already as a product.
  s.icblock = 50000;
  s.irblock = 50000;
  EXPECT_EQ(partition(4, s).status, -1);
  EXPECT_EQ(partition(0, s).status, -1);
  s.icblock = 46341;  // 46341 x 46341 = 2147488281, just above
  s.irblock = 46341;
  EXPECT_EQ(partition(4, s).status, -1);
  // 46340 x 46340 = 2147395600 fits, but two double tables of that many words do not: the
  // 32-bit sum wraps and differs from the sum in double precision.
  s.icblock = 46340;
  s.irblock = 46340;
  EXPECT_EQ(partition(4, s).status, -1);
  EXPECT_EQ(partition(0, s).status, -1);
  // Well inside the range the test passes.
  s.icblock = 1000;
  s.irblock = 1000;
  EXPECT_EQ(partition(4, s).status, 0);
  EXPECT_EQ(partition(0, s).status, 0);
}

// ---- the region views of the block procedures and ANALYSIS ------------------------------------

// Sets the run's sizes for one test and puts them back afterwards.
struct RunSizes {
  RunState saved = runState;
  explicit RunSizes(const PartitionSizes& s) {
    runState.rowCount = s.rowCount;
    runState.colCount = s.colCount;
    runState.nzCount = s.nzCount;
    runState.colSelCapacity = s.colSelCapacity;
    runState.rowSelCapacity = s.rowSelCapacity;
    runState.icblock = s.icblock;
    runState.irblock = s.irblock;
  }
  ~RunSizes() {
    runState.rowCount = saved.rowCount;
    runState.colCount = saved.colCount;
    runState.nzCount = saved.nzCount;
    runState.colSelCapacity = saved.colSelCapacity;
    runState.rowSelCapacity = saved.rowSelCapacity;
    runState.icblock = saved.icblock;
    runState.irblock = saved.irblock;
  }
};

// A view begins at its region's first word and ends within the region.
void expectInside(const Table& t, const char* name, const void* base, int64_t bytes) {
  SCOPED_TRACE(name);
  const auto it = std::find_if(t.begin(), t.end(),
                               [&](const Expected& e) { return std::string(e.name) == name; });
  ASSERT_NE(it, t.end());
  const int64_t start = workRegions.*(it->field);
  const auto* head = static_cast<const char*>(workArray.words);
  EXPECT_EQ(static_cast<const char*>(base) - head, (start - 1) * 8);
  EXPECT_LE(bytes, words(it->kind, it->count) * 8);
}

template <class T>
void inside(const Table& t, const char* name, const Vec1<T>& v) {
  expectInside(t, name, v.base, int64_t{v.n} * static_cast<int64_t>(sizeof(T)));
}
template <class T>
void inside(const Table& t, const char* name, const Table2<T>& v) {
  expectInside(t, name, v.base, int64_t{v.rows} * v.cols * static_cast<int64_t>(sizeof(T)));
}
template <class T>
void inside(const Table& t, const char* name, const Table3<T>& v) {
  expectInside(t, name, v.base, int64_t{v.n1} * v.n2 * v.n3 * static_cast<int64_t>(sizeof(T)));
}
void inside(const Table& t, const char* name, const TextTable& v) {
  expectInside(t, name, v.base, int64_t{v.width} * v.n);
}

TEST(WorkArrayViews, EachViewLiesInsideItsRegion) {
  const PartitionSizes s = oddSizes();
  RunSizes sizes(s);
  int64_t total = 0;
  int32_t status = 0;
  partitionWorkArray(1, total, 0, PICTURE_WIDTH, status);
  ASSERT_EQ(status, 0);
  ASSERT_TRUE(allocateWorkArray(total));

  partitionWorkArray(1, total, 5, PICTURE_WIDTH, status);
  const Table t5 = phase5Table(s);
  const AnalysisRegions a = analysisRegions();
  inside(t5, "rowRhs", a.rowRhs);
  inside(t5, "colSignTable", a.colSignTable);
  inside(t5, "colBoundTable", a.colBoundTable);
  inside(t5, "anaRowType", a.anaRowType);
  inside(t5, "rowSignTable", a.rowSignTable);
  inside(t5, "rowActivity", a.rowActivity);
  inside(t5, "rowScale", a.rowScale);
  inside(t5, "colScale", a.colScale);

  partitionWorkArray(1, total, 4, PICTURE_WIDTH, status);
  const Table t4 = phase4Table(s);
  const BlockPicRegions b = blockPicRegions();
  EXPECT_EQ(b.colBlockName.n, s.icblock + 1);
  EXPECT_EQ(b.colBlockNameAlt.n, s.icblock + 1);
  inside(t4, "colBlockOf", b.colBlockOf);
  inside(t4, "rowBlockOf", b.rowBlockOf);
  inside(t4, "colBlockName", b.colBlockName);
  inside(t4, "rowBlockName", b.rowBlockName);
  inside(t4, "colBlockNameAlt", b.colBlockNameAlt);
  inside(t4, "colBlockCount", b.colBlockCount);
  inside(t4, "rowBlockCount", b.rowBlockCount);
  inside(t4, "blockPairMax", b.blockPairMax);
  inside(t4, "blockPairMin", b.blockPairMin);
  inside(t4, "blockPairCount", b.blockPairCount);
  inside(t4, "blockPairCountB", b.blockPairCountB);
  inside(t4, "colSignTable", b.colSignTable);
  inside(t4, "rowSignTable", b.rowSignTable);
  inside(t4, "blockRowRhs", b.blockRowRhs);
  inside(t4, "blockRowType", b.blockRowType);
  inside(t4, "blockColBoundTable", b.blockColBoundTable);
  inside(t4, "rowActivity", b.rowActivity);
  inside(t4, "rowScale", b.rowScale);
  inside(t4, "colScale", b.colScale);
  // The RHS head behind the last block can be written without touching rowBlockName.
  b.rowBlockName.set(1, "ROWS");
  b.colBlockName.set(s.icblock + 1, "RHS");
  EXPECT_EQ(b.rowBlockName.view(1).substr(0, 4), "ROWS");

  partitionWorkArray(1, total, 6, PICTURE_WIDTH, status);
  const Table t6 = phase6Table(s);
  const BlockListRegions l = blockListRegions();
  EXPECT_EQ(l.colBlockName.n, s.icblock + 1);
  inside(t6, "colBlockOf", l.colBlockOf);
  inside(t6, "rowBlockOf", l.rowBlockOf);
  inside(t6, "colBlockName", l.colBlockName);
  inside(t6, "rowBlockName", l.rowBlockName);
  inside(t6, "colBlockCount", l.colBlockCount);
  inside(t6, "rowBlockCount", l.rowBlockCount);
  inside(t6, "colSignTable", l.colSignTable);
  inside(t6, "rowSignTable", l.rowSignTable);
  inside(t6, "blockRowRhs", l.blockRowRhs);
  inside(t6, "blockRowType", l.blockRowType);
  inside(t6, "blockColBoundTable", l.blockColBoundTable);
  inside(t6, "blkColWorkA", l.blkColWorkA);
  inside(t6, "blkColWorkB", l.blkColWorkB);
  inside(t6, "blkColWorkC", l.blkColWorkC);
  inside(t6, "blkColWorkD", l.blkColWorkD);
  inside(t6, "blkRowWorkA", l.blkRowWorkA);
  inside(t6, "blkRowWorkB", l.blkRowWorkB);
  inside(t6, "blkRowWorkC", l.blkRowWorkC);
  inside(t6, "blkRowWorkD", l.blkRowWorkD);
  inside(t6, "blkRowPair", l.blkRowPair);
  inside(t6, "blkColMax", l.blkColMax);
  inside(t6, "blkColMin", l.blkColMin);
  inside(t6, "blkRowMax", l.blkRowMax);
  inside(t6, "blkRowMin", l.blkRowMin);
  inside(t6, "rowActivity", l.rowActivity);
  inside(t6, "rowScale", l.rowScale);
  inside(t6, "colScale", l.colScale);
}

}  // namespace
