#include "model/matrix_store.h"

#include <algorithm>
#include <cassert>
#include <cstdlib>

ModelStore modelStore;

namespace {

// Points `view` at room for n elements in `data`, left as the system gives it: the fill writes
// every element, so that each page of a large array is written once. false when memory runs out.
template <class T>
bool allocate(std::unique_ptr<T[], void (*)(void*)>& data, Vec1<T>& view, int32_t n) {
  view = {};
  const size_t bytes = static_cast<size_t>(std::max(n, 1)) * sizeof(T);
  data.reset(static_cast<T*>(std::malloc(bytes)));
  if (data == nullptr) return false;
  view = {data.get(), n};
  return true;
}

}  // namespace

int openJacobian(ModelStore& store, oveHandle environment, ovmHandle model, int32_t rows,
                 int32_t cols, int32_t nz) {
  store.jacOpen = false;
  store.jacFilled = false;
  store.jacRowCount = rows;
  store.jacColCount = cols;
  store.jacNzCount = nz;
  store.jacEvaluator = nullptr;
  store.jacCapacity = nz == 0 ? 1 : nz;
  if (rows < 0 || cols < 0 || nz < 0) return 5;
  if (!allocate(store.colStartData, store.jacColStart, cols + 1)) return 1;
  if (!allocate(store.rowData, store.jacRow, store.jacCapacity)) return 2;
  store.jacNonlinear = {};
  store.nonlinearData.reset(
      static_cast<int32_t*>(std::calloc(static_cast<size_t>(store.jacCapacity), sizeof(int32_t))));
  if (store.nonlinearData == nullptr) return 3;
  store.jacNonlinear = {store.nonlinearData.get(), store.jacCapacity};
  if (!allocate(store.valueData, store.jacValue, store.jacCapacity)) return 4;
  if (ovmNLN(model) > 0) {
    const int status = oveInitJacLegacy(environment, store.jacEvaluator, model);
    if (status != 0) return status;
  }
  store.jacOpen = true;
  return 0;
}

int openJacobian(oveHandle environment, ovmHandle model, int32_t rows, int32_t cols, int32_t nz) {
  return openJacobian(modelStore, environment, model, rows, cols, nz);
}

bool fillJacobian(ModelStore& store, oveHandle, ovmHandle model) {
  if (store.jacFilled) return false;
  if (!store.jacOpen) return true;
  // A host that gives more entries than it announced, or a row outside the model, is caught
  // here: nothing is stored beyond the arrays, and the store is not marked filled.
  bool faulty = false;
  int64_t count = 0;
  for (int32_t j = 1; j <= store.jacColCount && !faulty; ++j) {
    store.jacColStart[j] = static_cast<int32_t>(count + 1);
    int32_t cursor = 0;
    do {
      double value = 0.0;
      int32_t row = 0;
      int32_t nonlinear = 0;
      ovmGetColJacInfoOne(model, j, cursor, value, row, nonlinear);
      if (row < 1) break;  // the column is done (an empty one at once)
      if (row > store.jacRowCount || count >= store.jacNzCount) {
        faulty = true;
        break;
      }
      ++count;
      const auto k = static_cast<int32_t>(count);
      store.jacValue[k] = value;
      store.jacRow[k] = row;
      if (nonlinear > 0) store.jacNonlinear[k] = nonlinear;
    } while (cursor != 0);
  }
  if (faulty) return true;
  store.jacColStart[store.jacColCount + 1] = static_cast<int32_t>(count + 1);
  if (count != store.jacNzCount) return true;
  store.jacFilled = true;
  return false;
}

bool fillJacobian(oveHandle environment, ovmHandle model) {
  return fillJacobian(modelStore, environment, model);
}

int evaluateJacobianAt(ModelStore& store, oveHandle environment, ovmHandle model,
                       Vec1<double> point) {
  if (!store.jacOpen || !store.jacFilled) return 1;
  if (ovmNLN(model) == 0) return 0;
  if (point.base == nullptr || point.n < store.jacColCount) return 1;
  int status = oveInitJacLegacy(environment, store.jacEvaluator, model);
  if (status != 0) return status;
  status = oveEvalNewPointLegacy(environment, store.jacEvaluator, point.base);
  if (status != 0) return status;
  int32_t row = oveNextNLLegacy(environment, store.jacEvaluator, store.jacRowCount + 1);
  while (row != -1) {
    double value = 0.0;
    int32_t errors = 0;
    int32_t extra = 0;
    status = oveEvalJacLegacy(environment, store.jacEvaluator, row, point.base, value,
                              store.jacValue.base, errors, extra);
    if (status != 0) return status;
    if (errors > 0) return errors;
    row = oveNextNLLegacy(environment, store.jacEvaluator, row);
  }
  return 0;
}

int evaluateJacobianAt(oveHandle environment, ovmHandle model, Vec1<double> point) {
  return evaluateJacobianAt(modelStore, environment, model, point);
}

void transposeMatrix(int32_t rowCount, int32_t colCount, int32_t nzUsed, Vec1<int32_t> rowFill,
                     Vec1<int32_t> colStart, Vec1<int32_t> rowColIndex, Vec1<int32_t> rowStart,
                     Vec1<int32_t> colRowIndex, Vec1<double> rowCoef, Vec1<double> colCoef) {
  transposeRows(rowCount, colCount, nzUsed, rowFill, colStart, rowColIndex, rowStart, colRowIndex,
                rowCoef, colCoef, Vec1<int32_t>{});
}

int32_t transposeRows(int32_t rowCount, int32_t colCount, int32_t nzUsed, Vec1<int32_t> rowFill,
                      Vec1<int32_t> colStart, Vec1<int32_t> rowColIndex, Vec1<int32_t> rowStart,
                      Vec1<int32_t> colRowIndex, Vec1<double> rowCoef, Vec1<double> colCoef,
                      Vec1<int32_t> rowKept) {
  if (rowCount < 1) return 0;
  const bool all = rowKept.base == nullptr;
  auto kept = [&](int32_t i) { return all || rowKept[i] >= 1; };
  for (int32_t i = 1; i <= rowCount; ++i) {
    if (!kept(i)) rowFill[i] = 0;
  }
  rowStart[1] = 1;
  for (int32_t i = 2; i <= rowCount; ++i) rowStart[i] = rowStart[i - 1] + rowFill[i - 1];
  const int32_t placed = rowStart[rowCount] + rowFill[rowCount] - 1;
  rowFill.fill(0);
  for (int32_t j = 1; j <= colCount; ++j) {
    const int32_t first = std::max(colStart[j], 1);
    const int32_t last = std::min(j < colCount ? colStart[j + 1] - 1 : nzUsed, nzUsed);
    for (int32_t k = first; k <= last; ++k) {
      const int32_t r = colRowIndex[k];
      const int32_t i = r < 0 ? -r : r;
      // A row outside the model, or more entries in a row than rowFill announced, is a fault
      // of the caller's column form; such an entry is left out rather than written elsewhere.
      const bool rowOk = i >= 1 && i <= rowCount;
      if (rowOk && !kept(i)) continue;
      const int32_t place = rowOk ? rowStart[i] + rowFill[i] : 0;
      const int32_t rowEnd = rowOk ? (i < rowCount ? rowStart[i + 1] : placed + 1) : 0;
      assert(rowOk && place < rowEnd && "column form does not match rowFill");
      if (!rowOk || place < 1 || place >= rowEnd || place > nzUsed) continue;
      ++rowFill[i];
      rowColIndex[place] = r > 0 ? j : -j;
      rowCoef[place] = colCoef[k];
    }
  }
  return placed;
}
