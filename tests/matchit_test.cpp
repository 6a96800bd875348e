// MATCHIT: lists and request tables of a small model, worked out by hand: overlapping requests,
// an entry of exactly 0 on each side, an item with objective entries only, a request that meets
// nothing, at the narrowest width; and a model without entries.
#include "listings/matchit.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "request_harness.h"

namespace {

using Lines = std::vector<std::string>;

TEST(MatchIt, ListsAndTablesOfOverlappingRequests) {
  // E(a) holds an entry of exactly 0, X(b) is the objective variable with an objective entry
  // only, Z a nonlinear entry.
  const HostInstance model = analysis_test::modelText(R"json({"objVar": "X(b)", "objRow": "OBJ",
      "rows": [{"name": "OBJ", "type": "=N="}, {"name": "E(a)", "type": "=E=", "rhs": 1},
               {"name": "E(b)", "type": "=E=", "rhs": 1}],
      "cols": [{"name": "X(a)", "entries": [[1, 2], [2, 0], [3, -3]]},
               {"name": "X(b)", "entries": [[1, 5]]},
               {"name": "Z", "entries": [[2, 1.5, "nonlinear"], [3, 0.25]]}]})json");
  request_test::SectionRun run;
  run.start(
      model, 7, 72,
      {"VARIABLE", "X(a)", "LISTVARIABLE", "X", "ZZ", "EQUATION", "*", "LISTEQUATION", "E(b)"});
  runMatchIt(run.regions<Phase::MatchIt>(), runState);

  EXPECT_TRUE(matchesGolden(run.fx.status, "requests/matchit-overlap.status"));
  EXPECT_EQ(run.fx.log, (Lines{" ", "     ## Did not find Requested Variable ZZ"}));
}

// Without entries there is no row pass: the empty section's two star requests count nothing.
TEST(MatchIt, ModelWithoutEntries) {
  request_test::SectionRun run;
  run.start(analysis_test::modelText(
                R"({"rows": [{"name": "E", "type": "=E=", "rhs": 1}], "cols": [{"name": "X"}]})"),
            7, 254, {});
  runMatchIt(run.regions<Phase::MatchIt>(), runState);
  EXPECT_TRUE(matchesGolden(run.fx.status, "requests/matchit-no-entries.status"));
  EXPECT_EQ(runState.currentKeyword, "THEEND" + std::string(NAME_LEN - 6, ' '));
}

}  // namespace
