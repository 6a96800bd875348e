// The post-solution reports as a user sees them: orva solves the bundled examples and the
// whole listing is compared, line for line, with golden text worked out by hand. And the one
// check that cannot lie: POSTOPT over every item of every bundled LP and of the netlib models
// closes every budget and every row sum.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "postsolution/engine.h"
#include "request/selection_tables.h"
#include "golden.h"
#include "orva_run.h"

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

namespace {

const std::string kSource = SOURCE_DIR;

// Runs orva on a model with extra arguments; the listing's lines, empty when orva failed.
Lines orvaListing(const fs::path& dir, const std::string& model, std::vector<std::string> args) {
  args.insert(args.begin(), model);
  args.insert(args.end(), {"--listing", "listing.lst"});
  return runOrva(dir, args).status == 0 ? readLines(dir / "listing.lst") : Lines{};
}

// Each bundled example of the post-solution reports, solved by orva as its request file asks,
// and two native instances whose solutions a user wrote: one optimal with a wrong marginal and
// a wrong row level, one infeasible with a nonlinear row, which NONOPT lists and accounts for.
TEST(PostSolutionListings, BundledExamplesMatchTheirGoldenListings) {
  const fs::path dir = freshDir("examples");
  const std::pair<const char*, std::string> cases[] = {
      {"farm", "/examples/postsolution/farm.mod"},
      {"shortage", "/examples/postsolution/shortage.mod"},
      {"trader", "/examples/postsolution/trader.mod"},
      {"feed", "/examples/postsolution/feed.mod"},
      {"wrong", "/tests/data/postsolution/wrong.json"},
      {"flagged", "/tests/data/postsolution/flagged.json"},
  };
  for (const auto& [name, model] : cases) {
    SCOPED_TRACE(name);
    const Lines listing = orvaListing(dir, kSource + model, {});
    EXPECT_TRUE(matchesGolden(listing, std::string("postsolution/") + name + ".listing",
                              {{"AUDIT", auditLine()}}));
  }
  fs::remove_all(dir);
}

// The nonlinear examples at their .sol solutions. blend, and blendb its binary form: POSTOPT after ANALYSIS, BLOCKLIST and
// MATCHIT of blend.mrk, from its title to the end, with the derivatives at the solution and the
// nonlinear marks. yield: x sits at its lower bound 1, so the Jacobian is evaluated with 0 in
// its place, where log(x) is not defined; modrake stops there, and orva says so with status 3.
TEST(PostSolutionListings, NonlinearExamplesAtTheirSolutions) {
  const fs::path dir = freshDir("nonlinear");
  const std::string base = kSource + "/examples/nonlinear/";
  for (const char* model : {"blend.nl", "blendb.nl"}) {  // the text form and the binary form
    SCOPED_TRACE(model);
    const Lines blend = orvaListing(dir, base + model, {"--solution", base + "blend.sol",
                                                        "--requests", base + "blend.mrk"});
    const auto title = std::find(blend.rbegin(), blend.rend(), " ----#### Executing POSTOPT");
    ASSERT_NE(title, blend.rend());
    EXPECT_TRUE(matchesGolden(Lines(title.base() - 1, blend.end()), "postsolution/blend-nl.listing"));
  }

  const RunResult yield = runOrva(dir, {base + "yield.nl", "--solution", base + "yield.sol",
                                        "--listing", "listing.lst"});
  EXPECT_EQ(yield.status, 3);
  EXPECT_TRUE(matchesGolden(readLines(dir / "listing.lst"), "postsolution/yield-stop.listing",
                            {{"AUDIT", auditLine()}}));
  const Lines log = readLines(dir / "run.out");
  ASSERT_FALSE(log.empty());
  EXPECT_EQ(log.back(), " Error computing the Jacobian.");
  EXPECT_NE(yield.err.find("orva: modrake stopped before the end of its run:  "
                                           "Error computing the Jacobian."),
            std::string::npos);
  fs::remove_all(dir);
}

// POSTOPT over all items after orva's solve: no budget that fails to close, no row sum that
// overshoots its level, whatever the model status.
TEST(PostSolutionListings, EverySolvedModelAccountsForItsNumbers) {
  const fs::path dir = freshDir("accounts");
  std::ofstream(dir / "all.mrk") << "POSTOPT\n";
  std::vector<std::string> models;
  for (const char* name : {"afiro", "adlittle", "blend", "sc105", "share1b", "stocfor1"}) {
    models.push_back(kSource + "/tests/data/netlib/" + name + ".mps");
  }
  for (const auto& entry : fs::recursive_directory_iterator(kSource + "/examples")) {
    if (entry.path().extension() == ".mod") models.push_back(entry.path().string());
  }
  for (const std::string& model : models) {
    SCOPED_TRACE(model);
    const Lines listing = orvaListing(dir, model, {"--solve", "--requests", "all.mrk"});
    ASSERT_FALSE(listing.empty());
    int budgets = 0;
    for (const std::string& line : listing) {
      EXPECT_EQ(line.find("Accounting Error"), std::string::npos) << line;
      EXPECT_EQ(line.find("Error in rowsum"), std::string::npos) << line;
      budgets += line.starts_with(" TRUE REDUCED COST");
    }
    EXPECT_GT(budgets, 1);
  }
  fs::remove_all(dir);
}

// The filters and what the host's model status makes of a solution, at their edges: the
// single-precision tolerance for 1e-6 is 9.999999974752427e-07, so `above` lies above it
// while it is still below the decimal.
TEST(PostSolutionRules, FiltersStatusClassesAndVerbosity) {
  const double below = 9.99999e-7, above = 9.99999999e-7;
  const struct {
    double level, marginal;
    int32_t filter, strict;
    bool in;
  } vars[] = {
      {0.0, 5.0, 1, 1, false},  {0.0, below, 1, 1, true},  {0.0, below, 1, 0, false},
      {1e-12, 5.0, 1, 0, true}, {below, 5.0, 2, 1, true},  {above, 0.0, 2, 0, false},
      {0.0, 5.0, 3, 1, true},   {0.0, 5.0, 0, 1, true},
  };
  for (const auto& v : vars) {
    EXPECT_EQ(varInFilter(v.level, v.marginal, PROC_POSTOPT, v.filter, v.strict), v.in)
        << v.level << " " << v.marginal << " " << v.filter << " " << v.strict;
    EXPECT_TRUE(varInFilter(v.level, v.marginal, 1, v.filter, v.strict));
  }
  const struct {
    double marginal, level, rhs;
    int32_t filter;
    bool in;
  } equs[] = {
      {above, 0.0, 5.0, 1, true},  {below, 0.0, 5.0, 1, false}, {0.0, 5.0 - below, 5.0, 1, true},
      {0.0, 4.0, 5.0, 2, true},    {above, 5.0, 5.0, 2, false}, {-below, 5.0, 5.0, 2, true},
      {above, 0.0, 5.0, 3, true},
  };
  for (const auto& q : equs) {
    EXPECT_EQ(equInFilter(q.marginal, q.level, q.rhs, PROC_POSTOPT, q.filter), q.in)
        << q.marginal << " " << q.level << " " << q.rhs << " " << q.filter;
  }
  const std::pair<int32_t, int32_t> classes[] = {{0, 0}, {1, 0}, {2, 0}, {3, 1}, {4, 2},
                                                 {5, 2}, {6, 2}, {7, 0}, {8, 0}, {9, 2},
                                                 {10, 2}, {11, 0}, {13, 0}, {14, 0}};
  for (const auto& [status, solutionClass] : classes) {
    EXPECT_EQ(solutionClassOf(status), solutionClass) << status;
  }
  // The size limits are singles: 10 to the -1 is not the double 0.1, 10 to the 39 is infinite.
  EXPECT_EQ(largeValueLimit(6), 1e6);
  EXPECT_EQ(largeValueLimit(-1), static_cast<double>(0.1f));
  EXPECT_NE(largeValueLimit(-1), 0.1);
  EXPECT_EQ(largeValueLimit(38), static_cast<double>(1e38f));
  EXPECT_TRUE(std::isinf(largeValueLimit(39)));
  // NONOPT: after an optimal solve always IDENTIFY; else the section's word, the list without.
  EXPECT_EQ(nonoptVerbosity(VERBOSITY_NONE, SOLUTION_NEITHER), VERBOSITY_IDENTIFY);
  EXPECT_EQ(nonoptVerbosity(VERBOSITY_VERBOSE, SOLUTION_NEITHER), VERBOSITY_IDENTIFY);
  EXPECT_EQ(nonoptVerbosity(VERBOSITY_NONE, SOLUTION_UNBOUNDED), VERBOSITY_LIST);
  EXPECT_EQ(nonoptVerbosity(VERBOSITY_VERBOSE, SOLUTION_INFEASIBLE), VERBOSITY_VERBOSE);
  EXPECT_EQ(nonoptVerbosity(VERBOSITY_IDENTIFY, SOLUTION_UNBOUNDED), VERBOSITY_IDENTIFY);
}

}  // namespace
