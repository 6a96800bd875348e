#include "listings/blocklist.h"

#include <algorithm>
#include <cmath>

#include "analysis/analysis.h"
#include "model/blocks.h"
#include "pictures/blockpic.h"
#include "run/notation.h"
#include "run/run_state.h"

namespace {

const char* varClassCode(int32_t typeCode) {
  return typeCode >= 1 && typeCode <= 10 ? kVarTypeCodes[static_cast<size_t>(typeCode - 1)]
                                         : "   ";
}

const char* equTypeCode(int32_t rowType) {
  return rowType >= 0 && rowType <= 3 ? kEquTypeCodes[static_cast<size_t>(rowType)] : "   ";
}

int32_t plainRowType(int32_t rowType) {
  return rowType >= BLOCK_NONLINEAR_TEST ? rowType - BLOCK_NONLINEAR_MARK : rowType;
}

}  // namespace

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
                  Vec1<double> rowScale, Vec1<double> colScale) {
  RunState& rs = runState;
  ovmHandle model = rs.model;
  Channel& status = rs.statusChannel;
  buildBlockTables(rowCount, colCount, colBlockUsed, rowBlockUsed, icblock, irblock,
                   colBlockName, rowBlockName, colBlockCount, rowBlockCount, dictionary,
                   colBlockOf, rowBlockOf);
  const int32_t nC = colBlockUsed;
  const int32_t nR = rowBlockUsed;

  for (const Vec1<int32_t>& v : {blkColWorkA, blkColWorkB, blkColWorkC, blkColWorkD,
                                 blkRowWorkA, blkRowWorkB, blkRowWorkC, blkRowWorkD}) {
    v.fill(0);
  }
  blkRowPair.fill(0);
  blkColMax.fill(-1.0);
  blkRowMax.fill(-1.0);
  blkColMin.fill(BLOCK_MIN_START_LIST);
  blkRowMin.fill(BLOCK_MIN_START_LIST);
  blockRowType.fill(0);
  blockRowRhs.fill(RHS_NONE_YET);
  colSignTable.fill(0);
  rowSignTable.fill(0);
  for (int32_t c = 1; c <= blockColBoundTable.rows; ++c) {
    blockColBoundTable(c, 1) = 0;
    blockColBoundTable(c, 2) = NO_LOWER;
    blockColBoundTable(c, 3) = NO_UPPER;
    blockColBoundTable(c, 4) = 0;
    blockColBoundTable(c, 5) = 0;
  }

  for (int32_t i = 1; i <= rowCount; ++i) {
    const int32_t e = rowBlockOf[i];
    rowScale[i] = rs.useScale != 0 ? ovmGetEquScaleOne(model, i) : 1.0;
    blockRowType[e] = ovmGetEquTypeOne(model, i);
    const double r = ovmGetRhsOne(model, i) * rowScale[i];
    blockRowRhs[e] = nextBlockRhsStatus(blockRowRhs[e], r);
    if (r > 0.0) ++blkRowPair(e, 1);
    if (r < 0.0) ++blkRowPair(e, 2);
  }

  int32_t objTurn = rs.minimizing ? -1 : 1;
  for (int32_t j = 1; j <= colCount; ++j) {
    const int32_t c = colBlockOf[j];
    double lower = 0.0;
    double upper = 0.0;
    const int32_t t = readColumnBounds(model, j, colScale, c, blockColBoundTable, lower, upper);
    bool columnNonlinear = false;
    walkColumn(model, j, rowCount, colScale, rowScale, [&](int32_t i, double a, int32_t nl) {
      const int32_t e = rowBlockOf[i];

      // Extremes leave out the objective row (variable list) and the objective variable
      // (equation list).
      if (j == rs.objVar && i == rs.objRow) {
        if (a > 0.0) objTurn = -objTurn;
      } else if (a != 0.0) {
        const double size = std::fabs(a);
        if (i != rs.objRow) {
          blkColMax[c] = std::max(blkColMax[c], size);
          blkColMin[c] = std::min(blkColMin[c], size);
        }
        if (j != rs.objVar) {
          blkRowMax[e] = std::max(blkRowMax[e], size);
          blkRowMin[e] = std::min(blkRowMin[e], size);
        }
      }

      if (nl > 0) {
        ++blkColWorkD[c];
        ++blkRowWorkD[e];
        if (!columnNonlinear) {
          columnNonlinear = true;
          ++blkColWorkC[c];
          ++colSignTable(c, 1, 3);
          ++rowSignTable(e, 1, 3);
        }
        if (blockRowType[e] < BLOCK_NONLINEAR_TEST) {
          blockRowType[e] += BLOCK_NONLINEAR_MARK;
          ++blkRowWorkC[e];
        }
      }

      const int32_t k = i == rs.objRow ? 4 : rowTypeSlot(plainRowType(blockRowType[e]));
      if (a > 0.0) {
        ++blkRowWorkA[e];
        ++blkColWorkA[c];
        ++rowSignTable(e, t, 1);
        ++colSignTable(c, k, 1);
      } else {
        ++blkRowWorkB[e];
        ++blkColWorkB[c];
        ++rowSignTable(e, t, 2);
        ++colSignTable(c, k, 2);
      }
    });
  }

  if (objTurn < 0) {
    for (int32_t c = 1; c <= nC; ++c) std::swap(colSignTable(c, 4, 1), colSignTable(c, 4, 2));
  }

  writeLine(status,
            "(' ----### List of Variable Block Characteristics',/,/,"
            "' Note Max and Min do not include Objective Row',/,/,"
            "' Variable         ','Sign  Numb Numb Pos  Neg  Nonl  Maximum    Minimum',/,"
            "'   Block          ','Res   Vars Nonl Coef Coef Coef  Absolute   Absolute')");
  for (int32_t c = 1; c <= nC; ++c) {
    const bool seen = blkColMax[c] != -1.0;
    writeLine(status, "(1X,A16,1X,A3,1X,5I5,3X,F10.4,1X,F10.4)",
              {colBlockName.view(c), varClassCode(blockColBoundTable(c, 5)), colBlockCount[c],
               blkColWorkC[c], blkColWorkA[c], blkColWorkB[c], blkColWorkD[c],
               seen ? blkColMax[c] : 0.0, seen ? blkColMin[c] : 0.0});
  }

  writeLine(status,
            "(/,/,' ----### List of Equation Block Characteristics',/,/,"
            "' Note Max and Min do not include RHS and Objective variable',/,/,"
            "' Equation         ','Type  Numb Numb Pos  Neg  Nonl Pos  Neg  Maximum    Minimum',"
            "/,'   Block          ','Res   Eqns Nonl Coef Coef Coef RHS  RHS  Absolute   "
            "Absolute')");
  for (int32_t e = 1; e <= nR; ++e) {
    if (blockRowType[e] > 1000) blockRowType[e] -= BLOCK_NONLINEAR_MARK;
    const bool seen = blkRowMax[e] != -1.0;
    writeLine(status, "(1X,A16,1X,A3,1X,7I5,2X,F10.4,1X,F10.4)",
              {rowBlockName.view(e), equTypeCode(blockRowType[e]), rowBlockCount[e],
               blkRowWorkC[e], blkRowWorkA[e], blkRowWorkB[e], blkRowWorkD[e],
               blkRowPair(e, 1), blkRowPair(e, 2), seen ? blkRowMax[e] : 0.0,
               seen ? blkRowMin[e] : 0.0});
  }

  const int32_t skip =
      rs.objVar > 0 && rs.objVar <= colCount ? colBlockOf[rs.objVar] : 0;
  reportBlockFindings(nC, nR, colBlockName, rowBlockName, colSignTable, rowSignTable,
                      blockColBoundTable, blockRowType, blockRowRhs, rowActivity, skip,
                      dictionary);
}
