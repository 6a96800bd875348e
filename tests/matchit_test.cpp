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
using analysis_test::INF;

TEST(MatchIt, ListsAndTablesOfOverlappingRequests) {
  analysis_test::ModelBuilder b;
  const int32_t obj = b.row("OBJ", {}, 3, 0.0);
  const int32_t ea = b.row("E", {"a"}, 0, 1.0);
  const int32_t eb = b.row("E", {"b"}, 0, 1.0);
  const int32_t xa = b.col("X", {"a"}, 0, INF);
  const int32_t xb = b.col("X", {"b"}, 0, INF);
  const int32_t z = b.col("Z", {}, 0, INF);
  b.add(obj, xa, 2.0);
  b.add(ea, xa, 0.0);
  b.add(eb, xa, -3.0);
  b.add(obj, xb, 5.0);
  b.add(ea, z, 1.5, true);
  b.add(eb, z, 0.25);
  b.objective(obj, xb, true);
  request_test::SectionRun run;
  run.start(
      b.build(), 7, 72,
      {"VARIABLE", "X(a)", "LISTVARIABLE", "X", "ZZ", "EQUATION", "*", "LISTEQUATION", "E(b)"});
  runMatchIt(run.regions<Phase::MatchIt>(), runState);

  EXPECT_TRUE(matchesGolden(run.fx.status, "requests/matchit-overlap.status"));
  EXPECT_EQ(run.fx.log, (Lines{" ", "     ## Did not find Requested Variable ZZ"}));
}

// Without entries there is no row pass: the empty section's two star requests count nothing.
TEST(MatchIt, ModelWithoutEntries) {
  analysis_test::ModelBuilder b;
  b.row("E", {}, 0, 1.0);
  b.col("X", {}, 0, INF);
  request_test::SectionRun run;
  run.start(b.build(), 7, 254, {});
  runMatchIt(run.regions<Phase::MatchIt>(), runState);
  EXPECT_TRUE(matchesGolden(run.fx.status, "requests/matchit-no-entries.status"));
  EXPECT_EQ(runState.currentKeyword, "THEEND" + std::string(NAME_LEN - 6, ' '));
}

}  // namespace
