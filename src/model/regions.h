// The regions of every phase of the work array, written once as data. Each phase has a typed
// record of views and one table of rows (field, dimensions); the element type of a region is
// the type of its field. The same table lays the phase out in the array and fills the record,
// so a region's shape stands in exactly one place.
#pragma once

#include <array>
#include <cstdint>
#include <variant>

#include "base/run_context.h"
#include "model/views.h"

// The sizes that the dimensions of regions are written in.
enum class Size : uint8_t {
  One,
  Rows,             // rowCount
  Cols,             // colCount
  Entries,          // nzCount
  ColSel,           // colSelCapacity
  RowSel,           // rowSelCapacity
  ColBlocks,        // icblock
  RowBlocks,        // irblock
  ColBlocksAndRhs,  // icblock + 1: the RHS head behind the last variable block
  PictureWidth,
};

// One dimension: `times` x a size, or a plain number.
struct Dim {
  Size size = Size::One;
  int32_t times = 1;
  constexpr Dim() = default;
  constexpr Dim(Size s) : size(s) {}
  constexpr Dim(int32_t k) : times(k) {}
};

// The values of the sizes for one run.
struct PartitionSizes {
  int32_t rowCount = 0;
  int32_t colCount = 0;
  int32_t nzCount = 0;
  int32_t colSelCapacity = 0;
  int32_t rowSelCapacity = 0;
  int32_t icblock = 0;
  int32_t irblock = 0;
  int32_t pictureWidth = PICTURE_WIDTH;
};

// One region of a phase: the field of record R that views it, and its dimensions in the order
// of the view (Vec1: n; Table2: rows, cols; Table3: n1, n2, n3; TextTable: width, n).
template <class R>
struct RegionRow {
  using Field =
      std::variant<Vec1<double> R::*, Vec1<int32_t> R::*, Vec1<char> R::*, Table2<double> R::*,
                   Table2<int32_t> R::*, Table3<int32_t> R::*, TextTable R::*>;
  Field field;
  std::array<Dim, 3> dims;
  constexpr RegionRow() = default;
  constexpr RegionRow(Field f, Dim d1, Dim d2 = 1, Dim d3 = 1) : field(f), dims{d1, d2, d3} {}
};

template <class R, size_t A, size_t B>
constexpr std::array<RegionRow<R>, A + B> joined(const std::array<RegionRow<R>, A>& a,
                                                 const std::array<RegionRow<R>, B>& b) {
  std::array<RegionRow<R>, A + B> out{};
  for (size_t k = 0; k < A; ++k) out[k] = a[k];
  for (size_t k = 0; k < B; ++k) out[A + k] = b[k];
  return out;
}

// ---- phase Solution (1) and Display (2): the solution step and the DISPLAYCR engine ---------

// The solution as the solution step loads it.
struct SolutionRegions {
  Vec1<double> rowRhs, rowMarginal, colMarginal, colLevel;
  Vec1<int32_t> rowStat, colStat, rowCStat, colCStat;
  Vec1<double> rowLevel, colLower, colUpper;
};

// Display lays the solution out first, at the same starts, then the matrix and selections.
struct DisplayRegions {
  SolutionRegions solution;
  Vec1<int32_t> rowStart, rowType, colStart, colRowIndex, rowColIndex, rowFill;
  Vec1<double> colCoef, rowCoef;
  Vec1<int32_t> rowSelected;
  TextTable colSelRaw, rowSelRaw, colSelSymbol, rowSelSymbol, colSelLabels, rowSelLabels;
  Vec1<int32_t> colSelDim, rowSelDim;
  Table2<int32_t> colSelSpec, rowSelSpec;  // capacity x 5
  Vec1<double> rowScale, colScale;
};

// ---- phase Picture (3) ---------------------------------------------------------------------

struct PictureRegions {
  Vec1<char> rowRhsMark, rowTypeMark;
  TextTable picText;  // one line of pictureWidth characters per row
  Vec1<int32_t> picColBlock, picRowEntries, picRowPositive, picRowNegative, picRowBlock;
  Vec1<int32_t> rowSelected;
  TextTable colSelRaw, rowSelRaw, colSelSymbol, rowSelSymbol;
  TextTable picRowBlockName, picColBlockName, picColBlockNameB, picRowBlockNameB;
  TextTable colSelLabels, rowSelLabels;
  Vec1<int32_t> picRowBlockWorkA, picRowBlockSize;
  Table2<int32_t> picRowBlockPair;  // irblock x 2
  Vec1<int32_t> colSelDim, rowSelDim, picColBlockSize;
  Table2<int32_t> picColBlockPair;  // icblock x 2
  Table2<int32_t> colSelSpec, rowSelSpec;
  Vec1<int32_t> colStart, colRowIndex;
  Vec1<double> colCoef;
  Vec1<int32_t> colStat;
  Vec1<double> colLower, colUpper, rowScale, colScale;
};

// ---- phase BlockPic (4) --------------------------------------------------------------------

// Block tables are sized by the capacities; colBlockName has one entry more than icblock, for
// the RHS column head.
struct BlockPicRegions {
  Vec1<int32_t> colBlockOf, rowBlockOf;
  TextTable colBlockName, rowBlockName, colBlockNameAlt;
  Vec1<int32_t> colBlockCount, rowBlockCount;
  Table2<double> blockPairMax, blockPairMin;       // irblock x icblock
  Table2<int32_t> blockPairCount, blockPairCountB;
  Table3<int32_t> colSignTable;                    // icblock x 4 x 3
  Table3<int32_t> rowSignTable;                    // irblock x 3 x 3
  Vec1<double> blockRowRhs;
  Vec1<int32_t> blockRowType;
  Table2<int32_t> blockColBoundTable;              // icblock x 5
  Table2<double> rowActivity;                      // irblock x 4
  Vec1<double> rowScale, colScale;
};

// ---- phase Analysis (5) --------------------------------------------------------------------

struct AnalysisRegions {
  Vec1<double> rowRhs;
  Table3<int32_t> colSignTable;   // colCount x 4 x 3
  Table2<int32_t> colBoundTable;  // colCount x 5
  Vec1<int32_t> anaRowType;
  Table3<int32_t> rowSignTable;   // rowCount x 3 x 3
  Table2<double> rowActivity;     // rowCount x 4
  Vec1<double> rowScale, colScale;
};

// ---- phase BlockList (6) -------------------------------------------------------------------

struct BlockListRegions {
  Vec1<int32_t> colBlockOf, rowBlockOf;
  TextTable colBlockName, rowBlockName;
  Vec1<int32_t> colBlockCount, rowBlockCount;
  Table3<int32_t> colSignTable, rowSignTable;
  Vec1<double> blockRowRhs;
  Vec1<int32_t> blockRowType;
  Table2<int32_t> blockColBoundTable;
  Vec1<int32_t> blkColWorkA, blkColWorkB, blkColWorkC, blkColWorkD;
  Vec1<int32_t> blkRowWorkA, blkRowWorkB, blkRowWorkC, blkRowWorkD;
  Table2<int32_t> blkRowPair;  // irblock x 2
  Vec1<double> blkColMax, blkColMin, blkRowMax, blkRowMin;
  Table2<double> rowActivity;
  Vec1<double> rowScale, colScale;
};

// ---- phase MatchIt (7) ---------------------------------------------------------------------

struct MatchItRegions {
  Vec1<int32_t> rowStart, rowType, colStart, colRowIndex, rowColIndex, rowFill;
  Vec1<double> colCoef, rowCoef;
  Vec1<int32_t> rowSelected;
  TextTable colSelRaw, rowSelRaw, colSelSymbol, rowSelSymbol, colSelLabels, rowSelLabels;
  Vec1<int32_t> colSelDim, rowSelDim;
  Table2<int32_t> colSelSpec, rowSelSpec;
  Table2<int32_t> matchColTable, matchRowTable;  // capacity x 6
  Vec1<int32_t> matchRowFlag, matchColFlag;
  Vec1<double> rowScale, colScale;
};

// ---- the tables ----------------------------------------------------------------------------

namespace regions_detail {
inline constexpr Size M = Size::Rows, N = Size::Cols, NZ = Size::Entries, CS = Size::ColSel,
                      RS = Size::RowSel, IC = Size::ColBlocks, IR = Size::RowBlocks,
                      IC1 = Size::ColBlocksAndRhs, PW = Size::PictureWidth;
}  // namespace regions_detail

template <class R>
constexpr auto regionTable();

template <>
constexpr auto regionTable<SolutionRegions>() {
  using namespace regions_detail;
  using R = SolutionRegions;
  return std::to_array<RegionRow<R>>({
      {&R::rowRhs, M},   {&R::rowMarginal, M}, {&R::colMarginal, N}, {&R::colLevel, N},
      {&R::rowStat, M},  {&R::colStat, N},     {&R::rowCStat, M},    {&R::colCStat, N},
      {&R::rowLevel, M}, {&R::colLower, N},    {&R::colUpper, N},
  });
}

// The matrix by columns and by rows, and the selection tables, as the DISPLAYCR engine and
// MATCHIT lay them out.
template <class R>
constexpr auto matrixAndSelectionRows() {
  using namespace regions_detail;
  return std::to_array<RegionRow<R>>({
      {&R::rowStart, M},          {&R::rowType, M},           {&R::colStart, N},
      {&R::colRowIndex, NZ},      {&R::rowColIndex, NZ},      {&R::rowFill, M},
      {&R::colCoef, NZ},          {&R::rowCoef, NZ},          {&R::rowSelected, M},
      {&R::colSelRaw, MAX_LINE, CS},  {&R::rowSelRaw, MAX_LINE, RS},
      {&R::colSelSymbol, NAME_LEN, CS}, {&R::rowSelSymbol, NAME_LEN, RS},
      {&R::colSelLabels, LABELS_LEN, CS}, {&R::rowSelLabels, LABELS_LEN, RS},
      {&R::colSelDim, CS},        {&R::rowSelDim, RS},
      {&R::colSelSpec, CS, 5},    {&R::rowSelSpec, RS, 5},
  });
}

// Behind the solution regions, which DisplayRegions::solution lays out first.
template <>
constexpr auto regionTable<DisplayRegions>() {
  using namespace regions_detail;
  using R = DisplayRegions;
  return joined(matrixAndSelectionRows<R>(),
                std::to_array<RegionRow<R>>({{&R::rowScale, M}, {&R::colScale, N}}));
}

template <>
constexpr auto regionTable<PictureRegions>() {
  using namespace regions_detail;
  using R = PictureRegions;
  return std::to_array<RegionRow<R>>({
      {&R::rowRhsMark, M},      {&R::rowTypeMark, M},     {&R::picText, PW, M},
      {&R::picColBlock, N},     {&R::picRowEntries, M},   {&R::picRowPositive, M},
      {&R::picRowNegative, M},  {&R::picRowBlock, M},     {&R::rowSelected, M},
      {&R::colSelRaw, MAX_LINE, CS},        {&R::rowSelRaw, MAX_LINE, RS},
      {&R::colSelSymbol, NAME_LEN, CS},     {&R::rowSelSymbol, NAME_LEN, RS},
      {&R::picRowBlockName, NAME_LEN, IR},  {&R::picColBlockName, NAME_LEN, IC},
      {&R::picColBlockNameB, NAME_LEN, IC}, {&R::picRowBlockNameB, NAME_LEN, IR},
      {&R::colSelLabels, LABELS_LEN, CS},   {&R::rowSelLabels, LABELS_LEN, RS},
      {&R::picRowBlockWorkA, IR}, {&R::picRowBlockSize, IR}, {&R::picRowBlockPair, IR, 2},
      {&R::colSelDim, CS},        {&R::rowSelDim, RS},       {&R::picColBlockSize, IC},
      {&R::picColBlockPair, IC, 2}, {&R::colSelSpec, CS, 5}, {&R::rowSelSpec, RS, 5},
      {&R::colStart, N},  {&R::colRowIndex, NZ}, {&R::colCoef, NZ}, {&R::colStat, N},
      {&R::colLower, N},  {&R::colUpper, N},     {&R::rowScale, M}, {&R::colScale, N},
  });
}

template <>
constexpr auto regionTable<BlockPicRegions>() {
  using namespace regions_detail;
  using R = BlockPicRegions;
  return std::to_array<RegionRow<R>>({
      {&R::colBlockOf, N},        {&R::rowBlockOf, M},
      {&R::colBlockName, NAME_LEN, IC1}, {&R::rowBlockName, NAME_LEN, IR},
      {&R::colBlockNameAlt, NAME_LEN, IC1},
      {&R::colBlockCount, IC},    {&R::rowBlockCount, IR},
      {&R::blockPairMax, IR, IC}, {&R::blockPairMin, IR, IC},
      {&R::blockPairCount, IR, IC}, {&R::blockPairCountB, IR, IC},
      {&R::colSignTable, IC, 4, 3}, {&R::rowSignTable, IR, 3, 3},
      {&R::blockRowRhs, IR},      {&R::blockRowType, IR},  {&R::blockColBoundTable, IC, 5},
      {&R::rowActivity, IR, 4},   {&R::rowScale, M},       {&R::colScale, N},
  });
}

template <>
constexpr auto regionTable<AnalysisRegions>() {
  using namespace regions_detail;
  using R = AnalysisRegions;
  return std::to_array<RegionRow<R>>({
      {&R::rowRhs, M},          {&R::colSignTable, N, 4, 3}, {&R::colBoundTable, N, 5},
      {&R::anaRowType, M},      {&R::rowSignTable, M, 3, 3}, {&R::rowActivity, M, 4},
      {&R::rowScale, M},        {&R::colScale, N},
  });
}

template <>
constexpr auto regionTable<BlockListRegions>() {
  using namespace regions_detail;
  using R = BlockListRegions;
  return std::to_array<RegionRow<R>>({
      {&R::colBlockOf, N},      {&R::rowBlockOf, M},
      {&R::colBlockName, NAME_LEN, IC1}, {&R::rowBlockName, NAME_LEN, IR},
      {&R::colBlockCount, IC},  {&R::rowBlockCount, IR},
      {&R::colSignTable, IC, 4, 3}, {&R::rowSignTable, IR, 3, 3},
      {&R::blockRowRhs, IR},    {&R::blockRowType, IR},   {&R::blockColBoundTable, IC, 5},
      {&R::blkColWorkA, IC},    {&R::blkColWorkB, IC},    {&R::blkColWorkC, IC},
      {&R::blkColWorkD, IC},    {&R::blkRowWorkA, IR},    {&R::blkRowWorkB, IR},
      {&R::blkRowWorkC, IR},    {&R::blkRowWorkD, IR},    {&R::blkRowPair, IR, 2},
      {&R::blkColMax, IC},      {&R::blkColMin, IC},      {&R::blkRowMax, IR},
      {&R::blkRowMin, IR},      {&R::rowActivity, IR, 4}, {&R::rowScale, M},
      {&R::colScale, N},
  });
}

template <>
constexpr auto regionTable<MatchItRegions>() {
  using namespace regions_detail;
  using R = MatchItRegions;
  return joined(matrixAndSelectionRows<R>(), std::to_array<RegionRow<R>>({
                                                 {&R::matchColTable, CS, 6},
                                                 {&R::matchRowTable, RS, 6},
                                                 {&R::matchRowFlag, RS},
                                                 {&R::matchColFlag, CS},
                                                 {&R::rowScale, M},
                                                 {&R::colScale, N},
                                             }));
}
