// ANALYSIS and the block tables on a large model: counts, scratch lines and block sizes hold.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "analysis/analysis.h"
#include "analysis_fixture.h"
#include "model/blocks.h"

using analysis_test::RunFixture;

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr int32_t kColumns = 100000;  // sanitizers slow everything down tenfold
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr int32_t kColumns = 100000;
#else
constexpr int32_t kColumns = 1000000;
#endif
#else
constexpr int32_t kColumns = 1000000;
#endif
constexpr int32_t kRows = 1000;

// Columns SHIP(a,b) and STORE(a,b) over 1000 x 1000 labels, alternating in runs of 1000, one
// positive coefficient each in the =G= row DEMAND(b). Every tenth column has no upper bound and
// relaxes its row (kind 21); the others are bounded and pass. Every row is redundant (kind 7,
// rhs 0 and positive terms only).
HostInstance bigModel() {
  HostInstance inst;
  inst.rowCount = kRows;
  inst.colCount = kColumns;
  inst.symbols = {{"DEMAND", true, 1}, {"SHIP", false, 2}, {"STORE", false, 2}};
  for (int32_t k = 0; k < 1000; ++k) inst.labels.push_back({"l" + std::to_string(k), ' '});
  inst.rowType.assign(kRows, kRowG);
  inst.rowRhs.assign(kRows, 0.0);
  inst.rowUelStart.push_back(0);
  for (int32_t i = 0; i < kRows; ++i) {
    inst.rowSymbol.push_back(1);
    inst.rowUels.push_back(i + 1);
    inst.rowUelStart.push_back(i + 1);
  }
  inst.colType.assign(kColumns, kVarContinuous);
  inst.colLower.assign(kColumns, 0.0);
  inst.colUpper.assign(kColumns, 5.0);
  for (int32_t j = 0; j < kColumns; j += 10) inst.colUpper[static_cast<size_t>(j)] = kHostInf;
  inst.colStart.push_back(0);
  inst.colUelStart.push_back(0);
  for (int32_t j = 0; j < kColumns; ++j) {
    inst.entryRow.push_back(j % kRows);
    inst.entryValue.push_back(1.0);
    inst.entryNonlinear.push_back(0);
    inst.colStart.push_back(j + 1);
    inst.colSymbol.push_back((j / 1000) % 2 == 0 ? 2 : 3);
    inst.colUels.push_back((j / 1000) % 1000 + 1);
    inst.colUels.push_back(j % 1000 + 1);
    inst.colUelStart.push_back(2 * (j + 1));
  }
  hostCompleteInstance(inst);
  return inst;
}

// A large model: counts, scratch lines and block sizes stay right (speed is measured by make bench).
TEST(AnalysisScale, LargeModel) {
  RunFixture fx;
  fx.start(bigModel());
  runProcedure(procedureRow(Proc::Analysis), runState);
  // Every tenth column and every row is listed once under its one explanation.
  EXPECT_EQ(runState.analysisProblemCount, kColumns / 10 + kRows);
  // The report ends with the last row, and the display of the problems through DISPLAYCR
  // follows behind a blank line.
  const auto display = std::find(fx.status.begin(), fx.status.end(),
                                 " ----#### Using DISPLAYCR to show ANALYSIS Problems");
  ASSERT_GE(display - fx.status.begin(), 2);
  EXPECT_EQ(*(display - 2), "     " + analysis_test::pad("DEMAND(l999)", 80));
  // Five per kind and variable symbol: the symbol changes every 1000 columns.
  const std::vector<std::string> scratch = fx.scratch();
  EXPECT_EQ(scratch.size(), static_cast<size_t>(1 + 5 * (kColumns / 1000) + 1 + 5));
  EXPECT_EQ(scratch[1], "   SHIP(l0,l0)");
  EXPECT_EQ(scratch[2], "   SHIP(l0,l10)");
  EXPECT_EQ(scratch[6], "   STORE(l1,l0)");

  std::vector<char> colNames(31 * 4), rowNames(31 * 3);
  std::vector<int32_t> colCount(3), rowCount(3), colOf(kColumns), rowOf(kRows);
  int32_t colUsed = 0, rowUsed = 0;
  buildBlockTables(runState, kRows, kColumns, colUsed, rowUsed, 3, 3, TextTable{colNames.data(), 31, 4},
                   TextTable{rowNames.data(), 31, 3}, Vec1<int32_t>{colCount.data(), 3},
                   Vec1<int32_t>{rowCount.data(), 3}, runState.dictionary,
                   Vec1<int32_t>{colOf.data(), kColumns}, Vec1<int32_t>{rowOf.data(), kRows});
  EXPECT_EQ(colUsed, 2);
  EXPECT_EQ(rowUsed, 1);
  EXPECT_EQ(colCount[0] + colCount[1], kColumns);
  EXPECT_EQ(rowCount[0], kRows);
}

}  // namespace
