// BLOCKPIC: the model at the level of its symbols. Rows and columns fold into equation and
// variable blocks; four tables follow (A the aggregate picture, B the coefficient counts,
// C the average counts, D the scaling), then the variable and equation findings on the
// block tables.
#pragma once

#include <cstdint>

#include "base/run_context.h"
#include "host/host.h"
#include "model/regions.h"
#include "model/views.h"

// Start of every blockPairMin cell: no coefficient seen yet.
inline constexpr double BLOCK_MIN_START = 1.9e+22;
// A minimum at or above this after the sums is shown as empty.
inline constexpr double SENTINEL_MIN = 1.899999e+22;


// The width the block tables work with: pageWidth held to 50..254.
int32_t blockTableWidth(int32_t pageWidth);

// Strips of table 'A', 'B', 'C' or 'D' at width W (already held by blockTableWidth): how many,
// and the first and last block column of strip s (1-based).
int32_t blockStripCount(char table, int32_t nC, int32_t W);
void blockStripColumns(char table, int32_t nC, int32_t W, int32_t strip, int32_t& first,
                       int32_t& last);

// Line r (1..10) of the vertical heading of columns 1..columns into the first 10 characters
// of each entry of colBlockNameAlt: names end on line 10, only their first 10 characters show.
void buildVerticalHeading(TextTable colBlockName, TextTable colBlockNameAlt, int32_t columns);

// Table A: the sign code of every pair of blocks, the RHS column with the row type letters,
// and the variable type letters.
void printAggregatePicture(RunContext& run, int32_t nC, int32_t nR, TextTable colBlockName,
                           TextTable rowBlockName, TextTable colBlockNameAlt,
                           Table2<int32_t> blockPairCount, Table2<int32_t> blockPairCountB,
                           Table2<int32_t> blockColBoundTable, Vec1<int32_t> blockRowType);

// Table B: counts of positive and negative coefficients per pair. Adds the row and column
// sums into the pair tables in place (columns nC+2, nC+3 and row nR+1), which table C reads.
void printBlockCounts(RunContext& run, Table2<int32_t> blockPairCount, Table2<int32_t> blockPairCountB,
                      TextTable colBlockName, TextTable rowBlockName, int32_t nC, int32_t nR,
                      Vec1<int32_t> colBlockCount, Vec1<int32_t> rowBlockCount,
                      Table2<int32_t> blockColBoundTable, Vec1<int32_t> blockRowType,
                      TextTable colBlockNameAlt);

// Table C: the counts of table B over the block sizes, after printBlockCounts.
void printAverageCounts(RunContext& run, Table2<int32_t> blockPairCount, Table2<int32_t> blockPairCountB,
                        TextTable colBlockName, TextTable rowBlockName, int32_t nC, int32_t nR,
                        Vec1<int32_t> colBlockCount, Vec1<int32_t> rowBlockCount,
                        Table2<int32_t> blockColBoundTable, TextTable colBlockNameAlt,
                        Vec1<int32_t> blockRowType);

// Table D: largest and smallest absolute coefficient per pair, with the extremes of each
// equation block (column nC+2) and of each variable block (row nR+1) made in place.
void printBlockScaling(RunContext& run, Table2<double> blockPairMax, Table2<double> blockPairMin,
                       TextTable colBlockName, TextTable rowBlockName, int32_t nC, int32_t nR,
                       TextTable colBlockNameAlt);

// The whole BLOCKPIC report, after the request loop has written the titles and laid out its
// phase. Sets run.objRow when the model has an objective variable but no objective row. The
// tables need three further column places and one further row place beyond the blocks: a model
// with more than icblock - 3 variable blocks or irblock - 1 equation blocks stops the run with
// the block capacity message (exit code 77).
void runBlockPicture(const BlockPicRegions& regions, RunContext& run);
