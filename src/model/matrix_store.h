// The Jacobian kept for the run (ModelStore), filled once at start-up from the host's columns
// and re-evaluated at a solution point for a nonlinear model; and transposeMatrix, which turns
// the column form of a work-array copy of the matrix into its row form.
//
// Reading conventions of every procedure that reads the model:
//   row scale r(i)    1.0 at useScale 0, else ovmGetEquScaleOne(i)
//   column scale c(j) 1.0 at useScale 0, else ovmGetVarScaleOne(j)
//   coefficient       ovmGetColJacInfoOne value / c(j) * r(i), in this order
//   lower bound       minusInf when ovmGetVarLowerOne(j) equals it, else the bound * c(j)
//   upper bound       plusInf when ovmGetVarUpperOne(j) equals it, else the bound * c(j)
// A work-array copy marks a nonlinear entry by a negative row in colRowIndex and a negative
// column in rowColIndex.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include "host/host.h"
#include "model/views.h"

// One record for the run, outside the work array. The views index the vectors behind them
// from 1; the record is not copied (the views would point into the original).
struct ModelStore {
  int32_t jacRowCount = 0;
  int32_t jacColCount = 0;
  int32_t jacNzCount = 0;
  int32_t jacCapacity = 0;        // jacNzCount, or 1 when that is 0
  Vec1<int32_t> jacColStart;      // jacColCount + 1: place of each column's first entry
  Vec1<int32_t> jacRow;           // jacCapacity: row of each entry
  Vec1<int32_t> jacNonlinear;     // jacCapacity: above 0 for a nonlinear entry, else 0
  Vec1<double> jacValue;          // jacCapacity: coefficient or derivative of each entry
  oveEvaluator jacEvaluator = nullptr;
  bool jacOpen = false;           // the arrays exist and the evaluator is ready
  bool jacFilled = false;         // the arrays are filled

  // Filled by fillJacobian before anything reads them.
  std::unique_ptr<int32_t[], void (*)(void*)> colStartData{nullptr, std::free};
  std::unique_ptr<int32_t[], void (*)(void*)> rowData{nullptr, std::free};
  std::unique_ptr<double[], void (*)(void*)> valueData{nullptr, std::free};
  // The marks are asked of the system as zeroed memory and only a nonlinear entry's mark is
  // written: a linear model's marks never take a page.
  std::unique_ptr<int32_t[], void (*)(void*)> nonlinearData{nullptr, std::free};

  ModelStore() = default;
  ModelStore(const ModelStore&) = delete;
  ModelStore& operator=(const ModelStore&) = delete;
};

extern ModelStore modelStore;

// Keeps the sizes, allocates the arrays and, for a nonlinear model, initialises the
// evaluator. 0 on success; 1 to 4 when the allocation of jacColStart, jacRow, jacNonlinear or
// jacValue fails (5 for sizes below 0); else the nonzero value of oveInitJacLegacy.
int openJacobian(oveHandle environment, ovmHandle model, int32_t rows, int32_t cols, int32_t nz);
int openJacobian(ModelStore& store, oveHandle environment, ovmHandle model, int32_t rows,
                 int32_t cols, int32_t nz);

// Reads the host's columns into the store. false on success; true when the store is not open,
// or the host gives a number of entries other than jacNzCount or a row outside 1..jacRowCount.
bool fillJacobian(oveHandle environment, ovmHandle model);
bool fillJacobian(ModelStore& store, oveHandle environment, ovmHandle model);

// Re-evaluates the nonlinear rows at `point` (colCount values) into jacValue, in place. 0 on
// success, and at once for a linear model; 1 when the store is not filled or the point is
// short; else the host's nonzero status, or its error count, at the first row that fails
// (the rows behind it keep their values).
int evaluateJacobianAt(oveHandle environment, ovmHandle model, Vec1<double> point);
int evaluateJacobianAt(ModelStore& store, oveHandle environment, ovmHandle model,
                       Vec1<double> point);

// Builds the row form (rowStart, rowColIndex, rowCoef) from the column form (colStart,
// colRowIndex, colCoef) of nzUsed entries; rowFill holds the length of each row on entry and
// again on return. Entries of a row stand in ascending column order; a negative row in
// colRowIndex gives a negative column in rowColIndex.
void transposeMatrix(int32_t rowCount, int32_t colCount, int32_t nzUsed, Vec1<int32_t> rowFill,
                     Vec1<int32_t> colStart, Vec1<int32_t> rowColIndex, Vec1<int32_t> rowStart,
                     Vec1<int32_t> colRowIndex, Vec1<double> rowCoef, Vec1<double> colCoef);

// The same for the rows that rowKept marks 1 or above only: the others get no entries (their
// rowFill ends at 0), so that the row form takes no more room than the rows that are read from
// it. Gives the number of entries placed.
int32_t transposeRows(int32_t rowCount, int32_t colCount, int32_t nzUsed, Vec1<int32_t> rowFill,
                      Vec1<int32_t> colStart, Vec1<int32_t> rowColIndex, Vec1<int32_t> rowStart,
                      Vec1<int32_t> colRowIndex, Vec1<double> rowCoef, Vec1<double> colCoef,
                      Vec1<int32_t> rowKept);
