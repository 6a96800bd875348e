#include "listings/blocklist.h"

#include <algorithm>
#include <cmath>

#include "analysis/analysis.h"
#include "base/notation.h"
#include "model/blocks.h"
#include "model/columns.h"

namespace {

const char* varClassCode(int32_t typeCode) {
  return typeCode >= 1 && typeCode <= 10 ? kVarTypeCodes[static_cast<size_t>(typeCode - 1)]
                                         : "   ";
}

const char* equTypeCode(int32_t rowType) {
  return isRowType(rowType) ? kEquTypeCodes[static_cast<size_t>(rowType)] : "   ";
}

int32_t plainRowType(int32_t rowType) {
  return rowType >= BLOCK_NONLINEAR_TEST ? rowType - BLOCK_NONLINEAR_MARK : rowType;
}

}  // namespace

void runBlockList(const BlockListRegions& w, RunContext& rs) {
  const int32_t rowCount = rs.rowCount, colCount = rs.colCount;
  const int32_t icblock = rs.icblock, irblock = rs.irblock;
  ovdHandle dictionary = rs.dictionary;
  int32_t colBlockUsed = 0;
  int32_t rowBlockUsed = 0;
  ovmHandle model = rs.model;
  Channel& status = rs.statusChannel;
  buildBlockTables(rs, rowCount, colCount, colBlockUsed, rowBlockUsed, icblock, irblock,
                   w.colBlockName, w.rowBlockName, w.colBlockCount, w.rowBlockCount, dictionary,
                   w.colBlockOf, w.rowBlockOf);
  const int32_t nC = colBlockUsed;
  const int32_t nR = rowBlockUsed;

  for (const Vec1<int32_t>& v : {w.blkColWorkA, w.blkColWorkB, w.blkColWorkC, w.blkColWorkD,
                                 w.blkRowWorkA, w.blkRowWorkB, w.blkRowWorkC, w.blkRowWorkD}) {
    v.fill(0);
  }
  w.blkRowPair.fill(0);
  w.blkColMax.fill(-1.0);
  w.blkRowMax.fill(-1.0);
  w.blkColMin.fill(BLOCK_MIN_START_LIST);
  w.blkRowMin.fill(BLOCK_MIN_START_LIST);
  w.blockRowType.fill(0);
  w.blockRowRhs.fill(RHS_NONE_YET);
  w.colSignTable.fill(0);
  w.rowSignTable.fill(0);
  resetBoundTable(w.blockColBoundTable);

  for (int32_t i = 1; i <= rowCount; ++i) {
    const int32_t e = w.rowBlockOf[i];
    w.rowScale[i] = rs.useScale != 0 ? ovmGetEquScaleOne(model, i) : 1.0;
    w.blockRowType[e] = ovmGetEquTypeOne(model, i);
    const double r = ovmGetRhsOne(model, i) * w.rowScale[i];
    w.blockRowRhs[e] = nextBlockRhsStatus(w.blockRowRhs[e], r);
    if (r > 0.0) ++w.blkRowPair(e, 1);
    if (r < 0.0) ++w.blkRowPair(e, 2);
  }

  int32_t objTurn = rs.minimizing ? -1 : 1;
  const ColumnWalk walk = columnWalk(rs, w.colScale, w.rowScale);
  for (int32_t j = 1; j <= colCount; ++j) {
    const int32_t c = w.colBlockOf[j];
    double lower = 0.0;
    double upper = 0.0;
    const int32_t t = readColumnBounds(rs, j, w.colScale, c, w.blockColBoundTable, lower, upper);
    bool columnNonlinear = false;
    walkColumn(walk, j, [&](int32_t i, double a, int32_t nl) {
      const int32_t e = w.rowBlockOf[i];

      // Extremes leave out the objective row (variable list) and the objective variable
      // (equation list).
      if (j == rs.objVar && i == rs.objRow) {
        if (a > 0.0) objTurn = -objTurn;
      } else if (a != 0.0) {
        const double size = std::fabs(a);
        if (i != rs.objRow) {
          w.blkColMax[c] = std::max(w.blkColMax[c], size);
          w.blkColMin[c] = std::min(w.blkColMin[c], size);
        }
        if (j != rs.objVar) {
          w.blkRowMax[e] = std::max(w.blkRowMax[e], size);
          w.blkRowMin[e] = std::min(w.blkRowMin[e], size);
        }
      }

      if (nl > 0) {
        ++w.blkColWorkD[c];
        ++w.blkRowWorkD[e];
        if (!columnNonlinear) {
          columnNonlinear = true;
          ++w.blkColWorkC[c];
          ++w.colSignTable(c, NONLINEAR_SLOT, SIGN_NONLINEAR);
          ++w.rowSignTable(e, NONLINEAR_SLOT, SIGN_NONLINEAR);
        }
        if (w.blockRowType[e] < BLOCK_NONLINEAR_TEST) {
          w.blockRowType[e] += BLOCK_NONLINEAR_MARK;
          ++w.blkRowWorkC[e];
        }
      }

      const int32_t k = i == rs.objRow ? 4 : rowTypeSlot(plainRowType(w.blockRowType[e]));
      if (a > 0.0) {
        ++w.blkRowWorkA[e];
        ++w.blkColWorkA[c];
        ++w.rowSignTable(e, t, SIGN_POSITIVE);
        ++w.colSignTable(c, k, SIGN_POSITIVE);
      } else {
        ++w.blkRowWorkB[e];
        ++w.blkColWorkB[c];
        ++w.rowSignTable(e, t, SIGN_NEGATIVE);
        ++w.colSignTable(c, k, SIGN_NEGATIVE);
      }
    });
  }

  if (objTurn < 0) {
    for (int32_t c = 1; c <= nC; ++c) {
      std::swap(w.colSignTable(c, SLOT_OBJECTIVE, OBJECTIVE_GOOD),
                w.colSignTable(c, SLOT_OBJECTIVE, OBJECTIVE_BAD));
    }
  }

  writeLine(status,
            "(' ----### List of Variable Block Characteristics',/,/,"
            "' Note Max and Min do not include Objective Row',/,/,"
            "' Variable         ','Sign  Numb Numb Pos  Neg  Nonl  Maximum    Minimum',/,"
            "'   Block          ','Res   Vars Nonl Coef Coef Coef  Absolute   Absolute')");
  for (int32_t c = 1; c <= nC; ++c) {
    const bool seen = w.blkColMax[c] != -1.0;
    writeLine(status, "(1X,A16,1X,A3,1X,5I5,3X,F10.4,1X,F10.4)",
              {w.colBlockName.view(c), varClassCode(w.blockColBoundTable(c, BOUND_TYPE_CODE)), w.colBlockCount[c],
               w.blkColWorkC[c], w.blkColWorkA[c], w.blkColWorkB[c], w.blkColWorkD[c],
               seen ? w.blkColMax[c] : 0.0, seen ? w.blkColMin[c] : 0.0});
  }

  writeLine(status,
            "(/,/,' ----### List of Equation Block Characteristics',/,/,"
            "' Note Max and Min do not include RHS and Objective variable',/,/,"
            "' Equation         ','Type  Numb Numb Pos  Neg  Nonl Pos  Neg  Maximum    Minimum',"
            "/,'   Block          ','Res   Eqns Nonl Coef Coef Coef RHS  RHS  Absolute   "
            "Absolute')");
  for (int32_t e = 1; e <= nR; ++e) {
    if (w.blockRowType[e] >= BLOCK_NONLINEAR_TEST) w.blockRowType[e] -= BLOCK_NONLINEAR_MARK;
    const bool seen = w.blkRowMax[e] != -1.0;
    writeLine(status, "(1X,A16,1X,A3,1X,7I5,2X,F10.4,1X,F10.4)",
              {w.rowBlockName.view(e), equTypeCode(w.blockRowType[e]), w.rowBlockCount[e],
               w.blkRowWorkC[e], w.blkRowWorkA[e], w.blkRowWorkB[e], w.blkRowWorkD[e],
               w.blkRowPair(e, 1), w.blkRowPair(e, 2), seen ? w.blkRowMax[e] : 0.0,
               seen ? w.blkRowMin[e] : 0.0});
  }

  const int32_t skip =
      rs.objVar > 0 && rs.objVar <= colCount ? w.colBlockOf[rs.objVar] : 0;
  reportBlockFindings(rs, nC, nR, w.colBlockName, w.rowBlockName, w.colSignTable, w.rowSignTable,
                      w.blockColBoundTable, w.blockRowType, w.blockRowRhs, w.rowActivity, skip,
                      dictionary);
}
