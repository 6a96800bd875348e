// Walking a column's entries as every procedure reads them: the host's value / colScale[j] x
// rowScale[row]. A linear model's columns are read from the run's store, which holds the
// host's values as they stand, so that a walk over millions of entries reads arrays instead of
// calling the host once per entry; a nonlinear model's are read through the host, whose
// derivatives are those of its current point.
#pragma once

#include <cstdint>

#include "base/run_context.h"
#include "host/host.h"
#include "model/matrix_store.h"
#include "model/views.h"

// Entries a walk looks ahead (see walkColumnAhead).
inline constexpr int32_t COLUMN_LOOK_AHEAD = 12;

struct ColumnWalk {
  ovmHandle model = nullptr;
  const ModelStore* store = nullptr;  // set when the store holds the model's columns
  int32_t rowCount = 0;
  Vec1<double> colScale, rowScale;
  bool scaled = false;  // unless scaled both factors are 1: no row's factor is read
};

// The row of the store's entry COLUMN_LOOK_AHEAD places after entry k, or 0 past the last.
inline int32_t storeRowAhead(const ModelStore& s, int32_t k) {
  return k <= s.jacNzCount - COLUMN_LOOK_AHEAD ? s.jacRow[k + COLUMN_LOOK_AHEAD] : 0;
}

// The walk of a procedure's pass: the run's scaling switch, and the scale factors as the
// procedure has read them (colScale[j] before column j is walked).
inline ColumnWalk columnWalk(const RunContext& run, Vec1<double> colScale, Vec1<double> rowScale,
                             const ModelStore& store = modelStore) {
  const bool fromStore = store.jacFilled && store.jacColCount == run.colCount &&
                         store.jacRowCount == run.rowCount && ovmNLN(run.model) == 0;
  return {run.model, fromStore ? &store : nullptr, run.rowCount, colScale, rowScale,
          run.useScale != 0};
}

// Hands each entry of column j, in the host's order, to visit(row, coefficient, nonlinear);
// an empty column gives nothing. Read from the store, it first hands ahead(row) the row of the
// entry COLUMN_LOOK_AHEAD places further on (in this column or a later one), so that a pass
// can ask for that row's data before it needs it; through the host it never calls ahead.
template <class Visit, class Ahead>
void walkColumnAhead(const ColumnWalk& w, int32_t j, Visit&& visit, Ahead&& ahead) {
  if (w.store != nullptr) {
    const ModelStore& s = *w.store;
    const int32_t end = s.jacColStart[j + 1];
    for (int32_t k = s.jacColStart[j]; k < end; ++k) {
      if (const int32_t later = storeRowAhead(s, k); later > 0) ahead(later);
      const int32_t row = s.jacRow[k];
      const double value = s.jacValue[k];
      visit(row, w.scaled ? value / w.colScale[j] * w.rowScale[row] : value, 0);
    }
    return;
  }
  int32_t cursor = 0;
  do {
    double value = 0.0;
    int32_t row = 0;
    int32_t nonlinear = 0;
    ovmGetColJacInfoOne(w.model, j, cursor, value, row, nonlinear);
    if (row < 1 || row > w.rowCount) return;
    visit(row, w.scaled ? value / w.colScale[j] * w.rowScale[row] : value, nonlinear);
  } while (cursor != 0);
}

template <class Visit>
void walkColumn(const ColumnWalk& w, int32_t j, Visit&& visit) {
  walkColumnAhead(w, j, visit, [](int32_t) {});
}
