// BLOCKLIST: one line for each variable block and one for each equation block, with member
// counts, coefficient counts by sign, nonlinear counts, right-hand sides by sign and the
// largest and smallest absolute coefficient; then the variable and equation findings on the
// block tables.
#pragma once

#include <cstdint>

#include "host/host.h"
#include "model/views.h"

// Start of the block minima: no coefficient seen yet.
inline constexpr double BLOCK_MIN_START_LIST = 1e+30;
// Added to blockRowType while an equation block is marked nonlinear; a type at or above the
// test limit carries the mark.
inline constexpr int32_t BLOCK_NONLINEAR_MARK = 9000;
inline constexpr int32_t BLOCK_NONLINEAR_TEST = 8000;

// The whole BLOCKLIST report, after the request loop has written the titles and carved the
// work array in phase 6. Reads the model through runState.model.
void runBlockList(int32_t icblock, int32_t irblock, int32_t rowCount, int32_t colCount,
                  int32_t& colBlockUsed, int32_t& rowBlockUsed, TextTable colBlockName,
                  TextTable rowBlockName, Vec1<int32_t> colBlockCount,
                  Vec1<int32_t> rowBlockCount, ovdHandle dictionary, Vec1<int32_t> colBlockOf,
                  Vec1<int32_t> rowBlockOf, Table3<int32_t> colSignTable,
                  Table3<int32_t> rowSignTable, Vec1<double> blockRowRhs,
                  Vec1<int32_t> blockRowType, Table2<int32_t> blockColBoundTable,
                  Vec1<int32_t> blkColWorkA, Vec1<int32_t> blkColWorkB,
                  Vec1<int32_t> blkColWorkC, Vec1<int32_t> blkColWorkD,
                  Vec1<int32_t> blkRowWorkA, Vec1<int32_t> blkRowWorkB,
                  Vec1<int32_t> blkRowWorkC, Vec1<int32_t> blkRowWorkD,
                  Table2<int32_t> blkRowPair, Vec1<double> blkColMax, Vec1<double> blkColMin,
                  Vec1<double> blkRowMax, Vec1<double> blkRowMin, Table2<double> rowActivity,
                  Vec1<double> rowScale, Vec1<double> colScale);
