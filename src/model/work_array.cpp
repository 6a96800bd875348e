#include "model/work_array.h"

#include <cassert>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <vector>

#include "run/run_state.h"

WorkArray workArray;
WorkRegions workRegions;

namespace {

enum class Elem { Double, Int32, Char };

// One region of a layout: where its start goes, its element kind and its element count.
struct RegionSpec {
  int32_t WorkRegions::*field;
  Elem elem;
  int64_t count;
};

// A negative count (a request capacity of the control file below 0) sizes as an empty list, so
// that regions never run backwards over the ones before them.
int64_t wordsOf(const RegionSpec& r) {
  const int64_t n = r.count < 0 ? 0 : r.count;
  switch (r.elem) {
    case Elem::Double: return wordsOfDouble(n);
    case Elem::Int32: return wordsOfInt32(n);
    case Elem::Char: return wordsOfChar(n);
  }
  return 0;
}

using W = WorkRegions;
using Layout = std::vector<RegionSpec>;

// The selection tables, in the order phases 2, 3 and 7 share.
void addSelection(Layout& l, const PartitionSizes& s) {
  const int64_t cs = s.colSelCapacity, rs = s.rowSelCapacity;
  l.push_back({&W::colSelRaw, Elem::Char, 375 * cs});
  l.push_back({&W::rowSelRaw, Elem::Char, 375 * rs});
  l.push_back({&W::colSelSymbol, Elem::Char, 31 * cs});
  l.push_back({&W::rowSelSymbol, Elem::Char, 31 * rs});
}

Layout phase2(const PartitionSizes& s) {
  const int64_t m = s.rowCount, n = s.colCount, nz = s.nzCount;
  const int64_t cs = s.colSelCapacity, rs = s.rowSelCapacity;
  Layout l = {
      {&W::rowRhs, Elem::Double, m},        {&W::rowMarginal, Elem::Double, m},
      {&W::colMarginal, Elem::Double, n},   {&W::colLevel, Elem::Double, n},
      {&W::rowStat, Elem::Int32, m},        {&W::colStat, Elem::Int32, n},
      {&W::rowCStat, Elem::Int32, m},       {&W::colCStat, Elem::Int32, n},
      {&W::rowLevel, Elem::Double, m},      {&W::colLower, Elem::Double, n},
      {&W::colUpper, Elem::Double, n},      {&W::rowStart, Elem::Int32, m},
      {&W::rowType, Elem::Int32, m},        {&W::colStart, Elem::Int32, n},
      {&W::colRowIndex, Elem::Int32, nz},   {&W::rowColIndex, Elem::Int32, nz},
      {&W::rowFill, Elem::Int32, m},        {&W::colCoef, Elem::Double, nz},
      {&W::rowCoef, Elem::Double, nz},      {&W::rowSelected, Elem::Int32, m},
  };
  addSelection(l, s);
  l.push_back({&W::colSelLabels, Elem::Char, 310 * cs});
  l.push_back({&W::rowSelLabels, Elem::Char, 310 * rs});
  l.push_back({&W::colSelDim, Elem::Int32, cs});
  l.push_back({&W::rowSelDim, Elem::Int32, rs});
  l.push_back({&W::colSelSpec, Elem::Int32, 5 * cs});
  l.push_back({&W::rowSelSpec, Elem::Int32, 5 * rs});
  l.push_back({&W::rowScale, Elem::Double, m});
  l.push_back({&W::colScale, Elem::Double, n});
  return l;
}

// Phase 1 is the first eleven regions of phase 2, at the same starts.
Layout phase1(const PartitionSizes& s) {
  Layout l = phase2(s);
  l.resize(11);
  return l;
}

Layout phase3(const PartitionSizes& s, int32_t pictureWidth) {
  const int64_t m = s.rowCount, n = s.colCount, nz = s.nzCount;
  const int64_t cs = s.colSelCapacity, rs = s.rowSelCapacity;
  const int64_t ic = s.icblock, ir = s.irblock;
  Layout l = {
      {&W::rowRhsMark, Elem::Char, m},
      {&W::rowTypeMark, Elem::Char, m},
      {&W::picText, Elem::Char, int64_t{pictureWidth} * m},
      {&W::picColBlock, Elem::Int32, n},
      {&W::picRowEntries, Elem::Int32, m},
      {&W::picRowPositive, Elem::Int32, m},
      {&W::picRowNegative, Elem::Int32, m},
      {&W::picRowBlock, Elem::Int32, m},
      {&W::rowSelected, Elem::Int32, m},
  };
  addSelection(l, s);
  l.insert(l.end(), {
      {&W::picRowBlockName, Elem::Char, 31 * ir},
      {&W::picColBlockName, Elem::Char, 31 * ic},
      {&W::picColBlockNameB, Elem::Char, 31 * ic},
      {&W::picRowBlockNameB, Elem::Char, 31 * ir},
      {&W::colSelLabels, Elem::Char, 310 * cs},
      {&W::rowSelLabels, Elem::Char, 310 * rs},
      {&W::picRowBlockWorkA, Elem::Int32, ir},
      {&W::picRowBlockSize, Elem::Int32, ir},
      {&W::picRowBlockPair, Elem::Int32, 2 * ir},
      {&W::colSelDim, Elem::Int32, cs},
      {&W::rowSelDim, Elem::Int32, rs},
      {&W::picColBlockSize, Elem::Int32, ic},
      {&W::picColBlockPair, Elem::Int32, 2 * ic},
      {&W::colSelSpec, Elem::Int32, 5 * cs},
      {&W::rowSelSpec, Elem::Int32, 5 * rs},
      {&W::colStart, Elem::Int32, n},
      {&W::colRowIndex, Elem::Int32, nz},
      {&W::colCoef, Elem::Double, nz},
      {&W::colStat, Elem::Int32, n},
      {&W::colLower, Elem::Double, n},
      {&W::colUpper, Elem::Double, n},
      {&W::rowScale, Elem::Double, m},
      {&W::colScale, Elem::Double, n},
  });
  return l;
}

// colBlockName holds one name more than icblock: the RHS head behind the last block.
Layout phase4(const PartitionSizes& s) {
  const int64_t m = s.rowCount, n = s.colCount;
  const int64_t ic = s.icblock, ir = s.irblock;
  return {
      {&W::colBlockOf, Elem::Int32, n},
      {&W::rowBlockOf, Elem::Int32, m},
      {&W::colBlockName, Elem::Char, 31 * (ic + 1)},
      {&W::rowBlockName, Elem::Char, 31 * ir},
      {&W::colBlockNameAlt, Elem::Char, 31 * (ic + 1)},
      {&W::colBlockCount, Elem::Int32, ic},
      {&W::rowBlockCount, Elem::Int32, ir},
      {&W::blockPairMax, Elem::Double, ir * ic},
      {&W::blockPairMin, Elem::Double, ir * ic},
      {&W::blockPairCount, Elem::Int32, ir * ic},
      {&W::blockPairCountB, Elem::Int32, ir * ic},
      {&W::colSignTable, Elem::Int32, 12 * ic},
      {&W::rowSignTable, Elem::Int32, 9 * ir},
      {&W::blockRowRhs, Elem::Double, ir},
      {&W::blockRowType, Elem::Int32, ir},
      {&W::blockColBoundTable, Elem::Int32, 5 * ic},
      {&W::rowActivity, Elem::Double, 4 * ir},
      {&W::rowScale, Elem::Double, m},
      {&W::colScale, Elem::Double, n},
  };
}

Layout phase5(const PartitionSizes& s) {
  const int64_t m = s.rowCount, n = s.colCount;
  return {
      {&W::rowRhs, Elem::Double, m},
      {&W::colSignTable, Elem::Int32, 12 * n},
      {&W::colBoundTable, Elem::Int32, 5 * n},
      {&W::anaRowType, Elem::Int32, m},
      {&W::rowSignTable, Elem::Int32, 9 * m},
      {&W::rowActivity, Elem::Double, 4 * m},
      {&W::rowScale, Elem::Double, m},
      {&W::colScale, Elem::Double, n},
  };
}

Layout phase6(const PartitionSizes& s) {
  const int64_t m = s.rowCount, n = s.colCount;
  const int64_t ic = s.icblock, ir = s.irblock;
  return {
      {&W::colBlockOf, Elem::Int32, n},
      {&W::rowBlockOf, Elem::Int32, m},
      {&W::colBlockName, Elem::Char, 31 * (ic + 1)},
      {&W::rowBlockName, Elem::Char, 31 * ir},
      {&W::colBlockCount, Elem::Int32, ic},
      {&W::rowBlockCount, Elem::Int32, ir},
      {&W::colSignTable, Elem::Int32, 12 * ic},
      {&W::rowSignTable, Elem::Int32, 9 * ir},
      {&W::blockRowRhs, Elem::Double, ir},
      {&W::blockRowType, Elem::Int32, ir},
      {&W::blockColBoundTable, Elem::Int32, 5 * ic},
      {&W::blkColWorkA, Elem::Int32, ic},
      {&W::blkColWorkB, Elem::Int32, ic},
      {&W::blkColWorkC, Elem::Int32, ic},
      {&W::blkColWorkD, Elem::Int32, ic},
      {&W::blkRowWorkA, Elem::Int32, ir},
      {&W::blkRowWorkB, Elem::Int32, ir},
      {&W::blkRowWorkC, Elem::Int32, ir},
      {&W::blkRowWorkD, Elem::Int32, ir},
      {&W::blkRowPair, Elem::Int32, 2 * ir},
      {&W::blkColMax, Elem::Double, ic},
      {&W::blkColMin, Elem::Double, ic},
      {&W::blkRowMax, Elem::Double, ir},
      {&W::blkRowMin, Elem::Double, ir},
      {&W::rowActivity, Elem::Double, 4 * ir},
      {&W::rowScale, Elem::Double, m},
      {&W::colScale, Elem::Double, n},
  };
}

Layout phase7(const PartitionSizes& s) {
  const int64_t m = s.rowCount, n = s.colCount, nz = s.nzCount;
  const int64_t cs = s.colSelCapacity, rs = s.rowSelCapacity;
  Layout l = {
      {&W::rowStart, Elem::Int32, m},      {&W::rowType, Elem::Int32, m},
      {&W::colStart, Elem::Int32, n},      {&W::colRowIndex, Elem::Int32, nz},
      {&W::rowColIndex, Elem::Int32, nz},  {&W::rowFill, Elem::Int32, m},
      {&W::colCoef, Elem::Double, nz},     {&W::rowCoef, Elem::Double, nz},
      {&W::rowSelected, Elem::Int32, m},
  };
  addSelection(l, s);
  l.insert(l.end(), {
      {&W::colSelLabels, Elem::Char, 310 * cs},
      {&W::rowSelLabels, Elem::Char, 310 * rs},
      {&W::colSelDim, Elem::Int32, cs},
      {&W::rowSelDim, Elem::Int32, rs},
      {&W::colSelSpec, Elem::Int32, 5 * cs},
      {&W::rowSelSpec, Elem::Int32, 5 * rs},
      {&W::matchColTable, Elem::Int32, 6 * cs},
      {&W::matchRowTable, Elem::Int32, 6 * rs},
      {&W::matchRowFlag, Elem::Int32, rs},
      {&W::matchColFlag, Elem::Int32, cs},
      {&W::rowScale, Elem::Double, m},
      {&W::colScale, Elem::Double, n},
  });
  return l;
}

Layout layoutOf(int32_t phase, const PartitionSizes& s, int32_t pictureWidth) {
  switch (phase) {
    case 1: return phase1(s);
    case 2: return phase2(s);
    case 3: return phase3(s, pictureWidth);
    case 4: return phase4(s);
    case 5: return phase5(s);
    case 6: return phase6(s);
    case 7: return phase7(s);
  }
  return {};
}

// The test of the layout with a product of two capacities: the product must fit, and the sum
// of its sizes in 32-bit integers must equal the same sum in double precision.
bool phase4Fits(int32_t start, const PartitionSizes& s) {
  if (static_cast<double>(s.icblock) * static_cast<double>(s.irblock) > 2147483647.0) return false;
  int32_t intSum = start;
  double realSum = start;
  int32_t wordsAdded = 0;
  for (const RegionSpec& r : phase4(s)) {
    const auto count32 = static_cast<int32_t>(static_cast<uint32_t>(r.count));
    int32_t words = count32;
    double realWords = static_cast<double>(r.count);
    if (r.elem == Elem::Int32) {
      words = count32 / 2;
      realWords = std::floor(static_cast<double>(r.count) / 2.0);
      ++wordsAdded;
    } else if (r.elem == Elem::Char) {
      words = count32 / 8;
      realWords = std::floor(static_cast<double>(r.count) / 8.0);
      ++wordsAdded;
    }
    // Wrapping addition, as 32-bit arithmetic would do it.
    intSum = static_cast<int32_t>(static_cast<uint32_t>(intSum) + static_cast<uint32_t>(words));
    realSum += realWords;
  }
  intSum = static_cast<int32_t>(static_cast<uint32_t>(intSum) + static_cast<uint32_t>(wordsAdded));
  realSum += wordsAdded;
  return static_cast<double>(intSum) == realSum;
}

}  // namespace

void partitionWorkArray(int32_t start, int64_t& total, int32_t phase, int32_t pictureWidth,
                        int32_t& status, const PartitionSizes& sizes, WorkRegions& regions) {
  status = 0;
  if (phase == 0) {
    int64_t largest = start;
    for (int32_t p = 1; p <= 7; ++p) {
      int64_t t = start;
      partitionWorkArray(start, t, p, pictureWidth, status, sizes, regions);
      if (t > largest) largest = t;
      if (status != 0) {
        total = largest;
        return;
      }
    }
    total = largest;
    return;
  }
  // Every region starts at `start` until the layout places it.
  regions = WorkRegions{};
  if (phase == 4 && !phase4Fits(start, sizes)) {
    status = -1;
    total = start;
    return;
  }
  int64_t position = start;
  for (const RegionSpec& r : layoutOf(phase, sizes, pictureWidth)) {
    if (position > std::numeric_limits<int32_t>::max()) {
      status = -1;
      break;
    }
    regions.*(r.field) = static_cast<int32_t>(position);
    position += wordsOf(r);
  }
  if (position > std::numeric_limits<int32_t>::max()) status = -1;
  total = position;
}

void partitionWorkArray(int32_t start, int64_t& total, int32_t phase, int32_t pictureWidth,
                        int32_t& status) {
  const PartitionSizes sizes{runState.rowCount,       runState.colCount,
                             runState.nzCount,        runState.colSelCapacity,
                             runState.rowSelCapacity, runState.icblock,
                             runState.irblock};
  partitionWorkArray(start, total, phase, pictureWidth, status, sizes, workRegions);
}

bool allocateWorkArray(int64_t total) {
  if (total < 1) total = 1;
  void* p = std::calloc(static_cast<size_t>(total), 8);
  if (p == nullptr) return false;
  std::free(workArray.words);  // a run allocates once; a test may allocate again
  workArray.words = p;
  workArray.total = total;
  return true;
}

namespace {
template <class T>
T* wordPtr(int32_t start) {
  assert(start >= 1 && start <= workArray.total);
  return reinterpret_cast<T*>(static_cast<char*>(workArray.words) + (int64_t{start} - 1) * 8);
}
}  // namespace

Vec1<double> doubleRegion(int32_t start, int32_t n) { return {wordPtr<double>(start), n}; }
Vec1<int32_t> intRegion(int32_t start, int32_t n) { return {wordPtr<int32_t>(start), n}; }
TextTable textRegion(int32_t start, int32_t width, int32_t n) {
  return {wordPtr<char>(start), width, n};
}
Table2<double> doubleTable(int32_t start, int32_t rows, int32_t cols) {
  return {wordPtr<double>(start), rows, cols};
}
Table2<int32_t> intTable(int32_t start, int32_t rows, int32_t cols) {
  return {wordPtr<int32_t>(start), rows, cols};
}
Table3<double> doubleTable3(int32_t start, int32_t n1, int32_t n2, int32_t n3) {
  return {wordPtr<double>(start), n1, n2, n3};
}
Table3<int32_t> intTable3(int32_t start, int32_t n1, int32_t n2, int32_t n3) {
  return {wordPtr<int32_t>(start), n1, n2, n3};
}

AnalysisRegions analysisRegions() {
  const WorkRegions& w = workRegions;
  const int32_t m = runState.rowCount, n = runState.colCount;
  return {doubleRegion(w.rowRhs, m),          intTable3(w.colSignTable, n, 4, 3),
          intTable(w.colBoundTable, n, 5),    intRegion(w.anaRowType, m),
          intTable3(w.rowSignTable, m, 3, 3), doubleTable(w.rowActivity, m, 4),
          doubleRegion(w.rowScale, m),        doubleRegion(w.colScale, n)};
}

BlockPicRegions blockPicRegions() {
  const WorkRegions& w = workRegions;
  const int32_t m = runState.rowCount, n = runState.colCount;
  const int32_t ic = runState.icblock, ir = runState.irblock;
  BlockPicRegions r;
  r.colBlockOf = intRegion(w.colBlockOf, n);
  r.rowBlockOf = intRegion(w.rowBlockOf, m);
  r.colBlockName = textRegion(w.colBlockName, NAME_LEN, ic + 1);
  r.rowBlockName = textRegion(w.rowBlockName, NAME_LEN, ir);
  r.colBlockNameAlt = textRegion(w.colBlockNameAlt, NAME_LEN, ic + 1);
  r.colBlockCount = intRegion(w.colBlockCount, ic);
  r.rowBlockCount = intRegion(w.rowBlockCount, ir);
  r.blockPairMax = doubleTable(w.blockPairMax, ir, ic);
  r.blockPairMin = doubleTable(w.blockPairMin, ir, ic);
  r.blockPairCount = intTable(w.blockPairCount, ir, ic);
  r.blockPairCountB = intTable(w.blockPairCountB, ir, ic);
  r.colSignTable = intTable3(w.colSignTable, ic, 4, 3);
  r.rowSignTable = intTable3(w.rowSignTable, ir, 3, 3);
  r.blockRowRhs = doubleRegion(w.blockRowRhs, ir);
  r.blockRowType = intRegion(w.blockRowType, ir);
  r.blockColBoundTable = intTable(w.blockColBoundTable, ic, 5);
  r.rowActivity = doubleTable(w.rowActivity, ir, 4);
  r.rowScale = doubleRegion(w.rowScale, m);
  r.colScale = doubleRegion(w.colScale, n);
  return r;
}

BlockListRegions blockListRegions() {
  const WorkRegions& w = workRegions;
  const int32_t m = runState.rowCount, n = runState.colCount;
  const int32_t ic = runState.icblock, ir = runState.irblock;
  BlockListRegions r;
  r.colBlockOf = intRegion(w.colBlockOf, n);
  r.rowBlockOf = intRegion(w.rowBlockOf, m);
  r.colBlockName = textRegion(w.colBlockName, NAME_LEN, ic + 1);
  r.rowBlockName = textRegion(w.rowBlockName, NAME_LEN, ir);
  r.colBlockCount = intRegion(w.colBlockCount, ic);
  r.rowBlockCount = intRegion(w.rowBlockCount, ir);
  r.colSignTable = intTable3(w.colSignTable, ic, 4, 3);
  r.rowSignTable = intTable3(w.rowSignTable, ir, 3, 3);
  r.blockRowRhs = doubleRegion(w.blockRowRhs, ir);
  r.blockRowType = intRegion(w.blockRowType, ir);
  r.blockColBoundTable = intTable(w.blockColBoundTable, ic, 5);
  r.blkColWorkA = intRegion(w.blkColWorkA, ic);
  r.blkColWorkB = intRegion(w.blkColWorkB, ic);
  r.blkColWorkC = intRegion(w.blkColWorkC, ic);
  r.blkColWorkD = intRegion(w.blkColWorkD, ic);
  r.blkRowWorkA = intRegion(w.blkRowWorkA, ir);
  r.blkRowWorkB = intRegion(w.blkRowWorkB, ir);
  r.blkRowWorkC = intRegion(w.blkRowWorkC, ir);
  r.blkRowWorkD = intRegion(w.blkRowWorkD, ir);
  r.blkRowPair = intTable(w.blkRowPair, ir, 2);
  r.blkColMax = doubleRegion(w.blkColMax, ic);
  r.blkColMin = doubleRegion(w.blkColMin, ic);
  r.blkRowMax = doubleRegion(w.blkRowMax, ir);
  r.blkRowMin = doubleRegion(w.blkRowMin, ir);
  r.rowActivity = doubleTable(w.rowActivity, ir, 4);
  r.rowScale = doubleRegion(w.rowScale, m);
  r.colScale = doubleRegion(w.colScale, n);
  return r;
}
