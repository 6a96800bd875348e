// ModelStore: the Jacobian kept for the run, and transposeMatrix.

#include "model/matrix_store.h"

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "host/host.h"
#include "host/instance.h"
#include "model/columns.h"

namespace {

// An instance of `rows` =L= rows and as many continuous columns as `colStart` says, the
// entries given column by column with 0-based rows.
HostInstance makeInstance(int32_t rows, std::vector<int32_t> colStart,
                          std::vector<int32_t> entryRow, std::vector<double> entryValue,
                          std::vector<int32_t> entryNonlinear = {}) {
  HostInstance inst;
  inst.inputName = "store";
  inst.rowType.assign(static_cast<size_t>(rows), kRowL);
  inst.rowRhs.assign(static_cast<size_t>(rows), 1.0);
  inst.colType.assign(colStart.size() - 1, kVarContinuous);
  inst.colStart = std::move(colStart);
  inst.entryRow = std::move(entryRow);
  inst.entryValue = std::move(entryValue);
  if (entryNonlinear.empty()) entryNonlinear.assign(inst.entryRow.size(), 0);
  inst.entryNonlinear = std::move(entryNonlinear);
  return inst;
}

// A model object over an instance, freed at the end of the test.
struct Model {
  ovmHandle handle = nullptr;
  explicit Model(HostInstance inst) : handle(ovmCreateFromInstance(std::move(inst))) {}
  ~Model() { ovmFree(handle); }
};

std::vector<int32_t> ints(Vec1<int32_t> v) { return {v.begin(), v.end()}; }
std::vector<double> reals(Vec1<double> v) { return {v.begin(), v.end()}; }

template <class T>
Vec1<T> view(std::vector<T>& v) {
  return {v.data(), static_cast<int32_t>(v.size())};
}

TEST(ModelStoreFill, NoEntriesKeepsRoomForOneAndEveryColumnEmpty) {
  Model model(makeInstance(2, {0, 0, 0, 0}, {}, {}));
  ASSERT_NE(model.handle, nullptr);
  ModelStore store;
  ASSERT_EQ(openJacobian(store, nullptr, model.handle, 2, 3, 0), 0);
  EXPECT_EQ(store.jacCapacity, 1);
  EXPECT_EQ(store.jacRow.size(), 1);
  EXPECT_EQ(store.jacNonlinear.size(), 1);
  EXPECT_EQ(store.jacValue.size(), 1);
  EXPECT_TRUE(store.jacOpen);
  EXPECT_FALSE(fillJacobian(store, nullptr, model.handle));
  EXPECT_TRUE(store.jacFilled);
  EXPECT_EQ(ints(store.jacColStart), (std::vector<int32_t>{1, 1, 1, 1}));
}

TEST(ModelStoreFill, EmptyColumnInTheMiddleAndHostOrderKept) {
  // Column 1: rows 3 and 1; column 2 empty; column 3: row 2.
  Model model(makeInstance(3, {0, 2, 2, 3}, {2, 0, 1}, {1.5, -2.0, 7.0}));
  ASSERT_NE(model.handle, nullptr);
  ModelStore store;
  ASSERT_EQ(openJacobian(store, nullptr, model.handle, 3, 3, 3), 0);
  ASSERT_FALSE(fillJacobian(store, nullptr, model.handle));
  EXPECT_EQ(ints(store.jacColStart), (std::vector<int32_t>{1, 3, 3, 4}));
  EXPECT_EQ(ints(store.jacRow), (std::vector<int32_t>{3, 1, 2}));
  EXPECT_EQ(reals(store.jacValue), (std::vector<double>{1.5, -2.0, 7.0}));
  EXPECT_EQ(ints(store.jacNonlinear), (std::vector<int32_t>{0, 0, 0}));
  // A second call finds the store filled and changes nothing.
  EXPECT_FALSE(fillJacobian(store, nullptr, model.handle));
}

TEST(ModelStoreFill, CountOtherThanAnnouncedFails) {
  Model model(makeInstance(2, {0, 1, 3}, {0, 0, 1}, {1.0, 2.0, 3.0}));
  ASSERT_NE(model.handle, nullptr);
  {
    ModelStore store;  // one entry more announced than the host gives
    ASSERT_EQ(openJacobian(store, nullptr, model.handle, 2, 2, 4), 0);
    EXPECT_TRUE(fillJacobian(store, nullptr, model.handle));
    EXPECT_FALSE(store.jacFilled);
  }
  {
    ModelStore store;  // one fewer: nothing is written past the arrays
    ASSERT_EQ(openJacobian(store, nullptr, model.handle, 2, 2, 2), 0);
    EXPECT_TRUE(fillJacobian(store, nullptr, model.handle));
    EXPECT_FALSE(store.jacFilled);
  }
  {
    ModelStore store;  // the host's rows must lie within the announced rows
    ASSERT_EQ(openJacobian(store, nullptr, model.handle, 1, 2, 3), 0);
    EXPECT_TRUE(fillJacobian(store, nullptr, model.handle));
  }
}

TEST(ModelStoreFill, NotOpenFails) {
  Model model(makeInstance(1, {0, 1}, {0}, {1.0}));
  ModelStore store;
  EXPECT_TRUE(fillJacobian(store, nullptr, model.handle));
  EXPECT_EQ(openJacobian(store, nullptr, model.handle, 1, -1, 1), 5);
  EXPECT_FALSE(store.jacOpen);
}

TEST(ModelStoreEvaluate, LinearModelNeverTouchesTheEvaluator) {
  Model model(makeInstance(2, {0, 2, 3}, {0, 1, 1}, {1.0, 2.0, 3.0}));
  ASSERT_NE(model.handle, nullptr);
  ASSERT_EQ(ovmNLN(model.handle), 0);
  ModelStore store;
  ASSERT_EQ(openJacobian(store, nullptr, model.handle, 2, 2, 3), 0);
  EXPECT_EQ(store.jacEvaluator, nullptr);
  ASSERT_FALSE(fillJacobian(store, nullptr, model.handle));
  store.jacValue[2] = 42.0;
  // Even a point with no values at all: a linear model is not re-evaluated.
  EXPECT_EQ(evaluateJacobianAt(store, nullptr, model.handle, Vec1<double>{}), 0);
  EXPECT_EQ(store.jacEvaluator, nullptr);
  EXPECT_EQ(reals(store.jacValue), (std::vector<double>{1.0, 42.0, 3.0}));
}

TEST(ModelStoreEvaluate, NotFilledGivesOne) {
  Model model(makeInstance(1, {0, 1}, {0}, {1.0}));
  ModelStore store;
  std::vector<double> point = {0.0};
  EXPECT_EQ(evaluateJacobianAt(store, nullptr, model.handle, view(point)), 1);
  ASSERT_EQ(openJacobian(store, nullptr, model.handle, 1, 1, 1), 0);
  EXPECT_EQ(evaluateJacobianAt(store, nullptr, model.handle, view(point)), 1);
}

TEST(ModelStoreEvaluate, NonlinearRowsAreWrittenInPlaceOthersKeepTheirValues) {
  // Row 1 holds a nonlinear entry (column 2); row 2 is linear.
  // Column 1: rows 1, 2; column 2: row 1 (nonlinear); column 3: row 2.
  Model model(makeInstance(2, {0, 2, 3, 4}, {0, 1, 0, 1}, {1.0, 2.0, 3.0, 4.0}, {0, 0, 1, 0}));
  ASSERT_NE(model.handle, nullptr);
  ModelStore store;
  ASSERT_EQ(openJacobian(store, nullptr, model.handle, 2, 3, 4), 0);
  EXPECT_NE(store.jacEvaluator, nullptr);
  ASSERT_FALSE(fillJacobian(store, nullptr, model.handle));
  EXPECT_EQ(ints(store.jacNonlinear), (std::vector<int32_t>{0, 0, 1, 0}));
  store.jacValue.fill(-9.0);
  std::vector<double> point = {1.0, 2.0, 3.0};
  EXPECT_EQ(evaluateJacobianAt(store, nullptr, model.handle, view(point)), 0);
  // The host's evaluator gives row 1's derivatives (entries 1 and 3); row 2 keeps its values.
  EXPECT_EQ(reals(store.jacValue), (std::vector<double>{1.0, -9.0, 3.0, -9.0}));
  // A point shorter than the columns is refused before the host reads it.
  std::vector<double> shortPoint = {1.0};
  EXPECT_EQ(evaluateJacobianAt(store, nullptr, model.handle, view(shortPoint)), 1);
}

// The column form of the example: 3 rows, 4 columns, column 2 empty, an entry of row 1 in
// column 3 nonlinear, and rows given in descending order inside column 1.
struct ColumnForm {
  std::vector<int32_t> colStart = {1, 3, 3, 5};
  std::vector<int32_t> colRowIndex = {2, 1, 3, -1, 2, 3};
  std::vector<double> colCoef = {1.5, 2.0, -1.0, 4.0, 5.0, 6.0};
  std::vector<int32_t> rowFill = {2, 2, 2};
  std::vector<int32_t> rowStart = std::vector<int32_t>(3, 0);
  std::vector<int32_t> rowColIndex = std::vector<int32_t>(6, 0);
  std::vector<double> rowCoef = std::vector<double>(6, 0.0);

  void transpose(int32_t nzUsed) {
    transposeMatrix(3, 4, nzUsed, view(rowFill), view(colStart), view(rowColIndex),
                    view(rowStart), view(colRowIndex), view(rowCoef), view(colCoef));
  }
};

TEST(TransposeMatrix, RowsInAscendingColumnOrderWithNonlinearMarks) {
  ColumnForm f;
  f.transpose(6);
  EXPECT_EQ(f.rowStart, (std::vector<int32_t>{1, 3, 5}));
  EXPECT_EQ(f.rowColIndex, (std::vector<int32_t>{1, -3, 1, 4, 3, 4}));
  EXPECT_EQ(f.rowCoef, (std::vector<double>{2.0, 4.0, 1.5, 5.0, -1.0, 6.0}));
  EXPECT_EQ(f.rowFill, (std::vector<int32_t>{2, 2, 2}));
}

TEST(TransposeMatrix, RowsLeftOutTakeNoRoom) {
  ColumnForm f;
  std::vector<int32_t> kept = {1, 0, 2};
  EXPECT_EQ(transposeRows(3, 4, 6, view(f.rowFill), view(f.colStart), view(f.rowColIndex),
                          view(f.rowStart), view(f.colRowIndex), view(f.rowCoef), view(f.colCoef),
                          view(kept)),
            4);
  EXPECT_EQ(f.rowStart, (std::vector<int32_t>{1, 3, 3}));
  EXPECT_EQ(f.rowColIndex, (std::vector<int32_t>{1, -3, 3, 4, 0, 0}));
  EXPECT_EQ(f.rowCoef, (std::vector<double>{2.0, 4.0, -1.0, 6.0, 0.0, 0.0}));
  EXPECT_EQ(f.rowFill, (std::vector<int32_t>{2, 0, 2}));
}

TEST(TransposeMatrix, LastColumnEndsAtTheEntriesUsed) {
  // Regions are larger than the entries in use: the last column stops at nzUsed.
  ColumnForm f;
  f.colRowIndex.push_back(1);
  f.colCoef.push_back(99.0);
  f.rowColIndex.push_back(0);
  f.rowCoef.push_back(0.0);
  f.transpose(6);
  EXPECT_EQ(f.rowColIndex, (std::vector<int32_t>{1, -3, 1, 4, 3, 4, 0}));
  EXPECT_EQ(f.rowFill, (std::vector<int32_t>{2, 2, 2}));
}

TEST(TransposeMatrix, RowFormOfTheStoreMatchesTheHostsRows) {
  // Column 1: rows 2, 1; column 2: rows 3 (nonlinear), 2; column 3: row 1.
  Model model(makeInstance(3, {0, 2, 4, 5}, {1, 0, 2, 1, 0}, {1.0, 2.0, 3.0, 4.0, 5.0},
                           {0, 0, 1, 0, 0}));
  ASSERT_NE(model.handle, nullptr);
  ModelStore store;
  ASSERT_EQ(openJacobian(store, nullptr, model.handle, 3, 3, 5), 0);
  ASSERT_FALSE(fillJacobian(store, nullptr, model.handle));
  std::vector<int32_t> colStart(3), colRowIndex(5), rowFill(3, 0), rowStart(3), rowColIndex(5);
  std::vector<double> colCoef(5), rowCoef(5);
  for (int32_t j = 1; j <= 3; ++j) colStart[j - 1] = store.jacColStart[j];
  for (int32_t k = 1; k <= 5; ++k) {
    const int32_t i = store.jacRow[k];
    colRowIndex[k - 1] = store.jacNonlinear[k] > 0 ? -i : i;
    colCoef[k - 1] = store.jacValue[k];
    ++rowFill[i - 1];
  }
  transposeMatrix(3, 3, 5, view(rowFill), view(colStart), view(rowColIndex), view(rowStart),
                  view(colRowIndex), view(rowCoef), view(colCoef));
  EXPECT_EQ(rowStart, (std::vector<int32_t>{1, 3, 5}));
  EXPECT_EQ(rowColIndex, (std::vector<int32_t>{1, 3, 1, 2, -2}));
  EXPECT_EQ(rowCoef, (std::vector<double>{2.0, 5.0, 1.0, 4.0, 3.0}));
  EXPECT_EQ(rowFill, (std::vector<int32_t>{2, 2, 1}));
}

// Walking the columns: a linear model is read from the store, a nonlinear one through the
// host, and both give what the host gives, scaled as every procedure reads it.
struct Entry {
  int32_t col, row;
  double value;
  int32_t nonlinear;
  bool operator==(const Entry& o) const {
    return std::tie(col, row, value, nonlinear) == std::tie(o.col, o.row, o.value, o.nonlinear);
  }
};

// 4 rows and 5 columns, the second empty: 15 entries, rows going round in column order.
HostInstance walkedInstance(std::vector<int32_t> nonlinear = {}) {
  std::vector<int32_t> rows;
  std::vector<double> values;
  for (int32_t k = 0; k < 15; ++k) {
    rows.push_back((3 * k + 1) % 4);
    values.push_back(k % 2 == 0 ? 1.0 + k : -0.5 * k);
  }
  return makeInstance(4, {0, 3, 3, 7, 11, 15}, rows, values, nonlinear);
}

struct Walked {
  std::vector<Entry> entries;
  std::vector<int32_t> ahead;  // rows handed to `ahead`, in order
  bool fromStore = false;
};

Walked walkAll(ovmHandle model, const ModelStore& store, bool scaled, std::vector<double>& colScale,
               std::vector<double>& rowScale) {
  RunContext run;
  run.model = model;
  run.rowCount = 4;
  run.colCount = 5;
  run.useScale = scaled ? 1 : 0;
  const ColumnWalk walk = columnWalk(run, view(colScale), view(rowScale), store);
  Walked w;
  w.fromStore = walk.store != nullptr;
  for (int32_t j = 1; j <= 5; ++j) {
    walkColumnAhead(
        walk, j, [&](int32_t i, double a, int32_t nl) { w.entries.push_back({j, i, a, nl}); },
        [&](int32_t i) { w.ahead.push_back(i); });
  }
  return w;
}

TEST(ColumnWalk, LinearModelFromTheStoreAsTheHostGivesIt) {
  Model model(walkedInstance());
  ASSERT_NE(model.handle, nullptr);
  ModelStore store;
  ASSERT_EQ(openJacobian(store, nullptr, model.handle, 4, 5, 15), 0);
  std::vector<double> colScale(5, 1.0), rowScale(4, 1.0);
  // Not filled yet: through the host, which never looks ahead.
  const Walked host = walkAll(model.handle, store, false, colScale, rowScale);
  EXPECT_FALSE(host.fromStore);
  EXPECT_TRUE(host.ahead.empty());
  ASSERT_FALSE(fillJacobian(store, nullptr, model.handle));
  const Walked stored = walkAll(model.handle, store, false, colScale, rowScale);
  EXPECT_TRUE(stored.fromStore);
  ASSERT_EQ(host.entries.size(), 15u);
  EXPECT_EQ(stored.entries, host.entries);
  EXPECT_EQ(host.entries[3], (Entry{3, 3, -1.5, 0}));  // the empty column gives nothing
  // Each of the first three entries looks twelve places on, across the columns.
  EXPECT_EQ(stored.ahead, (std::vector<int32_t>{host.entries[12].row, host.entries[13].row,
                                                host.entries[14].row}));
}

TEST(ColumnWalk, ScaledCoefficientIsTheValueOverTheColumnFactorTimesTheRowFactor) {
  Model model(walkedInstance());
  ModelStore store;
  ASSERT_EQ(openJacobian(store, nullptr, model.handle, 4, 5, 15), 0);
  std::vector<double> colScale{2.0, 1.0, 4.0, 0.5, 8.0}, rowScale{1.0, 3.0, 0.25, 10.0};
  const Walked host = walkAll(model.handle, store, true, colScale, rowScale);
  ASSERT_FALSE(fillJacobian(store, nullptr, model.handle));
  const Walked stored = walkAll(model.handle, store, true, colScale, rowScale);
  EXPECT_EQ(stored.entries, host.entries);
  const Entry first = stored.entries[0];  // column 1, row 2, value 1.0
  EXPECT_EQ(first.row, 2);
  EXPECT_EQ(first.value, 1.0 / 2.0 * 3.0);
}

TEST(ColumnWalk, NonlinearModelThroughTheHostWithItsMarks) {
  std::vector<int32_t> marks(15, 0);
  marks[4] = 1;
  Model model(walkedInstance(marks));
  ModelStore store;
  ASSERT_EQ(openJacobian(store, nullptr, model.handle, 4, 5, 15), 0);
  ASSERT_FALSE(fillJacobian(store, nullptr, model.handle));
  std::vector<double> colScale(5, 1.0), rowScale(4, 1.0);
  const Walked w = walkAll(model.handle, store, false, colScale, rowScale);
  EXPECT_FALSE(w.fromStore);
  ASSERT_EQ(w.entries.size(), 15u);
  EXPECT_EQ(w.entries[4].nonlinear, 1);
  EXPECT_EQ(w.entries[5].nonlinear, 0);
}

}  // namespace
