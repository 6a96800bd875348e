// The one work array of the run and its layouts. partitionWorkArray carves it for a phase;
// the region builders below hand a procedure its regions as typed 1-based views.
#pragma once

#include <cstdint>

#include "model/views.h"

// Start (1-based word index) of every region of every layout. A region that the current
// phase does not lay out starts at the head of the array and nobody touches it.
struct WorkRegions {
  // Solution and matrix regions (phases 1, 2, 3, 7).
  int32_t rowRhs = 1, rowMarginal = 1, colMarginal = 1, colLevel = 1, rowStat = 1, colStat = 1,
          rowCStat = 1, colCStat = 1, rowLevel = 1, colLower = 1, colUpper = 1, rowStart = 1,
          rowType = 1, colStart = 1, colRowIndex = 1, rowColIndex = 1, rowFill = 1,
          colCoef = 1, rowCoef = 1, rowSelected = 1;
  // Selection tables.
  int32_t colSelRaw = 1, rowSelRaw = 1, colSelSymbol = 1, rowSelSymbol = 1, colSelLabels = 1,
          rowSelLabels = 1, colSelDim = 1, rowSelDim = 1, colSelSpec = 1, rowSelSpec = 1;
  int32_t rowScale = 1, colScale = 1;
  // PICTURE.
  int32_t rowRhsMark = 1, rowTypeMark = 1, picText = 1, picColBlock = 1, picRowEntries = 1,
          picRowPositive = 1, picRowNegative = 1, picRowBlock = 1, picRowBlockName = 1,
          picColBlockName = 1, picColBlockNameB = 1, picRowBlockNameB = 1,
          picRowBlockWorkA = 1, picRowBlockSize = 1, picRowBlockPair = 1,
          picColBlockSize = 1, picColBlockPair = 1;
  // Blocks (phases 4, 6).
  int32_t colBlockOf = 1, rowBlockOf = 1, colBlockName = 1, rowBlockName = 1,
          colBlockNameAlt = 1, colBlockCount = 1, rowBlockCount = 1, blockPairMax = 1,
          blockPairMin = 1, blockPairCount = 1, blockPairCountB = 1, blockRowRhs = 1,
          blockRowType = 1, blockColBoundTable = 1;
  // ANALYSIS tables, per column and row (phase 5) or per block (phases 4, 6).
  int32_t colSignTable = 1, rowSignTable = 1, colBoundTable = 1, anaRowType = 1,
          rowActivity = 1;
  // BLOCKLIST.
  int32_t blkColWorkA = 1, blkColWorkB = 1, blkColWorkC = 1, blkColWorkD = 1, blkRowWorkA = 1,
          blkRowWorkB = 1, blkRowWorkC = 1, blkRowWorkD = 1, blkRowPair = 1, blkColMax = 1,
          blkColMin = 1, blkRowMax = 1, blkRowMin = 1;
  // MATCHIT.
  int32_t matchColTable = 1, matchRowTable = 1, matchRowFlag = 1, matchColFlag = 1;
};

// The sizes that the layouts depend on.
struct PartitionSizes {
  int32_t rowCount = 0;
  int32_t colCount = 0;
  int32_t nzCount = 0;
  int32_t colSelCapacity = 0;
  int32_t rowSelCapacity = 0;
  int32_t icblock = 0;
  int32_t irblock = 0;
};

// The array itself: `total` words of 8 bytes, allocated once.
struct WorkArray {
  void* words = nullptr;
  int64_t total = 0;
};

extern WorkArray workArray;
extern WorkRegions workRegions;

// Words taken by n elements of each kind (division truncates).
inline int64_t wordsOfDouble(int64_t n) { return n; }
inline int64_t wordsOfInt32(int64_t n) { return n / 2 + 1; }
inline int64_t wordsOfChar(int64_t n) { return n / 8 + 1; }

// Computes the region starts of `phase` (0 to 7) into `regions` from `sizes`. `total` gets one
// past the last word, in phase 0 the largest of all layouts. `status` is 0, or -1 on overflow.
void partitionWorkArray(int32_t start, int64_t& total, int32_t phase, int32_t pictureWidth,
                        int32_t& status, const PartitionSizes& sizes, WorkRegions& regions);

// The same on the run's sizes (RunState) and into workRegions.
void partitionWorkArray(int32_t start, int64_t& total, int32_t phase, int32_t pictureWidth,
                        int32_t& status);

// Allocates workArray with `total` words; false when that fails.
bool allocateWorkArray(int64_t total);

// Views of one region of workArray, starting at word `start`.
Vec1<double> doubleRegion(int32_t start, int32_t n);
Vec1<int32_t> intRegion(int32_t start, int32_t n);
TextTable textRegion(int32_t start, int32_t width, int32_t n);
Table2<double> doubleTable(int32_t start, int32_t rows, int32_t cols);
Table2<int32_t> intTable(int32_t start, int32_t rows, int32_t cols);
Table3<double> doubleTable3(int32_t start, int32_t n1, int32_t n2, int32_t n3);
Table3<int32_t> intTable3(int32_t start, int32_t n1, int32_t n2, int32_t n3);

// ---- the regions of each procedure, as views ------------------------------------------------

// Phase 5: ANALYSIS.
struct AnalysisRegions {
  Vec1<double> rowRhs;
  Table3<int32_t> colSignTable;    // colCount x 4 x 3
  Table2<int32_t> colBoundTable;   // colCount x 5
  Vec1<int32_t> anaRowType;
  Table3<int32_t> rowSignTable;    // rowCount x 3 x 3
  Table2<double> rowActivity;      // rowCount x 4
  Vec1<double> rowScale;
  Vec1<double> colScale;
};
AnalysisRegions analysisRegions();

// Phase 4: BLOCKPIC. Block tables are sized by the capacities; colBlockName has one entry
// more than icblock, for the RHS column head.
struct BlockPicRegions {
  Vec1<int32_t> colBlockOf;
  Vec1<int32_t> rowBlockOf;
  TextTable colBlockName;          // icblock + 1 names
  TextTable rowBlockName;          // irblock names
  TextTable colBlockNameAlt;
  Vec1<int32_t> colBlockCount;
  Vec1<int32_t> rowBlockCount;
  Table2<double> blockPairMax;     // irblock x icblock
  Table2<double> blockPairMin;
  Table2<int32_t> blockPairCount;
  Table2<int32_t> blockPairCountB;
  Table3<int32_t> colSignTable;    // icblock x 4 x 3
  Table3<int32_t> rowSignTable;    // irblock x 3 x 3
  Vec1<double> blockRowRhs;
  Vec1<int32_t> blockRowType;
  Table2<int32_t> blockColBoundTable;  // icblock x 5
  Table2<double> rowActivity;      // irblock x 4
  Vec1<double> rowScale;
  Vec1<double> colScale;
};
BlockPicRegions blockPicRegions();

// Phase 6: BLOCKLIST.
struct BlockListRegions {
  Vec1<int32_t> colBlockOf;
  Vec1<int32_t> rowBlockOf;
  TextTable colBlockName;          // icblock + 1 names
  TextTable rowBlockName;
  Vec1<int32_t> colBlockCount;
  Vec1<int32_t> rowBlockCount;
  Table3<int32_t> colSignTable;    // icblock x 4 x 3
  Table3<int32_t> rowSignTable;    // irblock x 3 x 3
  Vec1<double> blockRowRhs;
  Vec1<int32_t> blockRowType;
  Table2<int32_t> blockColBoundTable;
  Vec1<int32_t> blkColWorkA, blkColWorkB, blkColWorkC, blkColWorkD;
  Vec1<int32_t> blkRowWorkA, blkRowWorkB, blkRowWorkC, blkRowWorkD;
  Table2<int32_t> blkRowPair;      // irblock x 2
  Vec1<double> blkColMax, blkColMin, blkRowMax, blkRowMin;
  Table2<double> rowActivity;      // irblock x 4
  Vec1<double> rowScale;
  Vec1<double> colScale;
};
BlockListRegions blockListRegions();
