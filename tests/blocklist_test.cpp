// BLOCKLIST: the two lists of block characteristics and the findings behind them.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "analysis_fixture.h"
#include "golden.h"
#include "listings/blocklist.h"
#include "model/work_array.h"
#include "run/run_state.h"

using analysis_test::indexOf;
using analysis_test::itemFollows;
using analysis_test::modelFile;
using analysis_test::RunFixture;

namespace {

// Lays out the BLOCKLIST phase and runs BLOCKLIST as the request loop does after the titles.
void runBlockListOnRegions() {
  bool fits = false;
  const BlockListRegions r = phaseRegions<Phase::BlockList>(workArraySizes(runState), fits);
  ASSERT_TRUE(fits);
  runBlockList(r, runState);
}

}  // namespace

TEST(BlockListReport, ListsOfAModelWithObjective) {
  RunFixture fx;
  fx.start(modelFile("blocklist/cost.json"), 80);
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
  RunFixture fx;
  fx.start(modelFile("blocklist/nonlinear-long-names.json"), 80);
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
      HostInstance model = modelFile("blocklist/objective-turn.json");
      if (objCoef > 0) {  // -4 s + obj = 0
        model.entryValue[0] = -4;
        model.entryValue[2] = 1;
      }
      model.minimizing = minimizing;
      RunFixture fx;
      fx.start(model, 80);
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
