// BLOCKLIST: the two lists of block characteristics and the findings behind them.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "analysis_fixture.h"
#include "golden.h"
#include "listings/blocklist.h"
#include "model/work_array.h"
#include "run/run_state.h"

using analysis_test::INF;
using analysis_test::ModelBuilder;
using analysis_test::RunFixture;

namespace {

// Lays out the BLOCKLIST phase and runs BLOCKLIST as the request loop does after the titles.
void runBlockListOnRegions() {
  bool fits = false;
  const BlockListRegions r = phaseRegions<Phase::BlockList>(workArraySizes(runState), fits);
  ASSERT_TRUE(fits);
  runBlockList(r, runState);
}

std::string rtrim(std::string s) {
  while (!s.empty() && s.back() == ' ') s.pop_back();
  return s;
}

size_t indexOf(const std::vector<std::string>& lines, const std::string& line) {
  for (size_t i = 0; i < lines.size(); ++i) {
    if (lines[i] == line) return i;
  }
  return lines.size();
}

bool itemFollows(const std::vector<std::string>& lines, size_t at, const std::string& name) {
  for (size_t i = at + 1; i < lines.size(); ++i) {
    const std::string t = rtrim(lines[i]);
    if (t == " ##  " + name || t == "     " + name) return true;
    if (t.find("****") != std::string::npos || t.find("----###") != std::string::npos) break;
  }
  return false;
}

// Minimize cost = 2 a(1) + 3 a(2), with the objective variable obj at -1 in the row cost.
// a(1) is nonlinear in cap(1); b has an entry that evaluates to exactly 0 in cap(1).
HostInstance costModel() {
  ModelBuilder b;
  const int32_t cost = b.row("cost", {}, kRowE, 0);
  const int32_t cap1 = b.row("cap", {"1"}, kRowL, 10);
  const int32_t cap2 = b.row("cap", {"2"}, kRowL, 20);
  const int32_t dem = b.row("dem", {}, kRowG, -5);
  const int32_t a1 = b.col("a", {"1"}, 0, INF);
  const int32_t a2 = b.col("a", {"2"}, 0, INF);
  const int32_t bb = b.col("b", {}, -INF, 0);
  const int32_t obj = b.col("obj", {}, -INF, INF);
  b.add(cost, a1, 2);
  b.add(cap1, a1, 1.5, true);
  b.add(dem, a1, 1);
  b.add(cost, a2, 3);
  b.add(cap2, a2, 1);
  b.add(dem, a2, 1);
  b.add(cap1, bb, 0.0);
  b.add(cap2, bb, -4);
  b.add(cost, obj, -1);
  b.objective(cost, obj, true);
  return b.build();
}

}  // namespace

TEST(BlockListReport, ListsOfAModelWithObjective) {
  RunFixture fx;
  fx.start(costModel(), 80);
  runBlockListOnRegions();
  // Counts run over all entries; the extremes leave out the objective row (variables) and
  // the objective variable (equations), and an entry of exactly 0 counts as not positive.
  EXPECT_TRUE(matchesGolden(fx.status, "blocklist/cost-model", {}, true));

  // Findings: the variables pass (obj's block is skipped); dem, a =G= row with a negative
  // right-hand side and only positive terms, is redundant.
  const std::vector<std::string>& s = fx.status;
  EXPECT_LT(indexOf(s, "       ### The variables pass all analysis tests"), s.size());
  const size_t redundant = indexOf(s, " **** Warning  This =G= constraint is redundant");
  ASSERT_LT(redundant, s.size());
  EXPECT_TRUE(itemFollows(s, redundant, "dem"));
  EXPECT_LT(indexOf(fx.log, "       ### Some equations are redundant "), fx.log.size());
}

TEST(BlockListReport, NonlinearMarksZerosLongNamesAndMixedTypes) {
  // Five rows r(1..5), =L= but the last =G=; five columns of a long-named block, each
  // nonlinear in its own row (the fifth with derivative exactly 0); w linear in r(1).
  ModelBuilder b;
  int32_t rows[6] = {};
  for (int32_t k = 1; k <= 5; ++k) {
    rows[k] = b.row("r", {std::to_string(k)}, k == 5 ? kRowG : kRowL, k == 5 ? 0.0 : 1.0);
  }
  for (int32_t k = 1; k <= 5; ++k) {
    const int32_t j = b.col("averyverylongvariablename", {std::to_string(k)}, 0, INF);
    b.add(rows[k], j, k == 5 ? 0.0 : 2.0, true);
  }
  const int32_t w = b.col("w", {}, 0, INF);
  b.add(rows[1], w, 1);

  RunFixture fx;
  fx.start(b.build(), 80);
  runBlockListOnRegions();
  EXPECT_TRUE(matchesGolden(fx.status, "blocklist/nonlinear-long-names", {}, true));
  // w is in one =G= row (the block's type is that of its last row) with a positive
  // coefficient and has no upper bound: it relaxes that row.
  const std::vector<std::string>& s = fx.status;
  const size_t relax = indexOf(s, "**** WARNING These variables relax constraints they");
  ASSERT_LT(relax, s.size());
  EXPECT_TRUE(itemFollows(s, relax, "w"));
  EXPECT_LT(indexOf(s, "       ### The equations pass all analysis tests"), s.size());
}

TEST(BlockListReport, ObjectiveTurnKeepsTheMeaningOfTheObjectiveCells) {
  // s has cost 4 and one =G= row: maximizing makes it unbounded, minimizing does not,
  // whether the objective row reads 4 s - obj = 0 or -4 s + obj = 0.
  for (double objCoef : {-1.0, 1.0}) {
    for (bool minimizing : {true, false}) {
      SCOPED_TRACE(std::to_string(objCoef) + (minimizing ? " min" : " max"));
      ModelBuilder b;
      const int32_t cost = b.row("cost", {}, kRowE, 0);
      const int32_t dem = b.row("dem", {}, kRowG, 1);
      const int32_t s = b.col("s", {}, 0, INF);
      const int32_t obj = b.col("obj", {}, -INF, INF);
      b.add(cost, s, -4 * objCoef);
      b.add(dem, s, 1);
      b.add(cost, obj, objCoef);
      b.objective(cost, obj, minimizing);
      RunFixture fx;
      fx.start(b.build(), 80);
      runBlockListOnRegions();
      const size_t unbounded =
          indexOf(fx.status, "**** ERROR These variables are unbounded -- they");
      if (minimizing) {
        EXPECT_EQ(unbounded, fx.status.size());
        EXPECT_LT(indexOf(fx.status, "       ### The variables pass all analysis tests"),
                  fx.status.size());
      } else {
        ASSERT_LT(unbounded, fx.status.size());
        EXPECT_TRUE(itemFollows(fx.status, unbounded, "s"));
      }
    }
  }
}
