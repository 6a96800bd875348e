// Symbol blocks: all rows, or all columns, of one symbol. buildBlockTables fills the tables
// of a block procedure; the label routines name single items.
#pragma once

#include <cstdint>

#include "host/host.h"
#include "model/views.h"

// Fills the block tables from the dictionary: blocks numbered in order of first occurrence,
// colBlockName[colBlockUsed + 1] = "RHS". More blocks than icblock or irblock stop the run
// (exit code 77) with the capacity message.
void buildBlockTables(int32_t rowCount, int32_t colCount, int32_t& colBlockUsed,
                      int32_t& rowBlockUsed, int32_t icblock, int32_t irblock,
                      TextTable colBlockName, TextTable rowBlockName,
                      Vec1<int32_t> colBlockCount, Vec1<int32_t> rowBlockCount,
                      ovdHandle dictionary, Vec1<int32_t> colBlockOf, Vec1<int32_t> rowBlockOf);
