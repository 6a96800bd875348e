// BLOCKPIC: the fold into blocks, the four tables, their strips and the findings behind them.
#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "analysis_fixture.h"
#include "golden.h"
#include "model/work_array.h"
#include "model/blocks.h"
#include "pictures/blockpic.h"
#include "run/run_state.h"

using analysis_test::indexOf;
using analysis_test::itemFollows;
using analysis_test::modelFile;
using analysis_test::modelText;
using analysis_test::pad;
using analysis_test::rtrim;
using analysis_test::RunFixture;

namespace {

// Lays out the BLOCKPIC phase and runs BLOCKPIC as the request loop does after the titles.
// Gives the number of variable and equation blocks, as the block tables hold them.
std::pair<int32_t, int32_t> runBlockPicOnRegions() {
  bool fits = false;
  const BlockPicRegions r = phaseRegions<Phase::BlockPic>(workArraySizes(runState), fits);
  if (!fits) {
    ADD_FAILURE() << "the BLOCKPIC phase does not fit";
    return {0, 0};
  }
  runBlockPicture(r, runState);
  const auto last = [](Vec1<int32_t> v) {
    return v.n > 0 ? *std::max_element(v.begin(), v.end()) : 0;
  };
  return {last(r.colBlockOf), last(r.rowBlockOf)};
}

std::vector<std::string> slice(const std::vector<std::string>& lines, size_t from, size_t n) {
  if (from >= lines.size()) return {};
  return {lines.begin() + static_cast<std::ptrdiff_t>(from),
          lines.begin() + static_cast<std::ptrdiff_t>(std::min(lines.size(), from + n))};
}

// Views over tables of the test's own, for calling the table printers directly.
struct Tables {
  int32_t nC, nR;
  std::vector<char> colNames, rowNames, alt;
  std::vector<int32_t> P, Q, colCount, rowCount, bounds, rowType;
  std::vector<double> X, N;
  Tables(int32_t c, int32_t r)
      : nC(c), nR(r),
        colNames(static_cast<size_t>(31 * (c + 3)), ' '),
        rowNames(static_cast<size_t>(31 * (r + 1)), ' '),
        alt(static_cast<size_t>(31 * (c + 3)), ' '),
        P(static_cast<size_t>((r + 1) * (c + 3)), 0),
        Q(P.size(), 0),
        colCount(static_cast<size_t>(c), 0),
        rowCount(static_cast<size_t>(r), 0),
        bounds(static_cast<size_t>(5 * c), 0),
        rowType(static_cast<size_t>(r), 0),
        X(P.size(), 0.0),
        N(P.size(), BLOCK_MIN_START) {}
  TextTable colName() { return {colNames.data(), 31, nC + 3}; }
  TextTable rowName() { return {rowNames.data(), 31, nR + 1}; }
  TextTable vertical() { return {alt.data(), 31, nC + 3}; }
  Table2<int32_t> p() { return {P.data(), nR + 1, nC + 3}; }
  Table2<int32_t> q() { return {Q.data(), nR + 1, nC + 3}; }
  Table2<double> x() { return {X.data(), nR + 1, nC + 3}; }
  Table2<double> n() { return {N.data(), nR + 1, nC + 3}; }
  Vec1<int32_t> cols() { return {colCount.data(), nC}; }
  Vec1<int32_t> rows() { return {rowCount.data(), nR}; }
  Table2<int32_t> bound() { return {bounds.data(), nC, 5}; }
  Vec1<int32_t> types() { return {rowType.data(), nR}; }
};

// Sets names 1, 2, ... of a name table.
void setNames(TextTable table, std::initializer_list<const char*> names) {
  int32_t k = 0;
  for (const char* name : names) table.set(++k, name);
}

// The blocks of the example with the sizes of its count tables: 1000, 2 and 3 variables,
// 1 and 5 equations, 12345 positive coefficients of yvariable12 in equation22.
Tables countsExample() {
  Tables t(3, 2);
  setNames(t.colName(), {"x", "yvariable12", "z", "RHS"});
  setNames(t.rowName(), {"e1", "equation22"});
  t.colCount = {1000, 2, 3};
  t.rowCount = {1, 5};
  t.bound()(1, 5) = 1;
  t.bound()(2, 5) = 3;
  t.bound()(3, 5) = 4;
  t.rowType = {kRowG, kRowL};
  // {equation block, column, positive count, negative count}
  const int32_t counts[][4] = {{1, 1, 2, 0},     {1, 2, 0, 3}, {1, 4, 1, 0},
                               {2, 2, 12345, 2}, {2, 3, 1, 0}, {2, 4, 1, 1}};
  for (const auto& [e, c, positive, negative] : counts) {
    t.p()(e, c) = positive;
    t.q()(e, c) = negative;
  }
  return t;
}

}  // namespace

// ---- the report of a whole model ------------------------------------------------------------

TEST(BlockPicReport, ExampleModelGivesAllFourTables) {
  RunFixture fx;
  fx.start(modelFile("blockpic/example.json"), 80);
  EXPECT_EQ(runBlockPicOnRegions(), std::make_pair(3, 2));

  // Tables A to D open the report; the findings follow them.
  ASSERT_TRUE(matchesGolden(fx.status, "blockpic/example-tables", {}, true));
  const size_t at =
      readLines(std::filesystem::path(SOURCE_DIR) / "tests/golden/blockpic/example-tables").size();
  const std::vector<std::string> findings = slice(fx.status, at, fx.status.size());
  ASSERT_FALSE(findings.empty());
  EXPECT_EQ(findings[0], " ");
  EXPECT_EQ(findings[1], "   ----### Analysis of Variables ( nonlinear terms at current point)");
  const size_t relax = indexOf(findings, "**** WARNING These variables relax constraints they");
  ASSERT_LT(relax, findings.size());
  EXPECT_TRUE(itemFollows(findings, relax, "x"));
  const size_t zero = indexOf(findings, " **** Warning  These variables will equal zero ");
  ASSERT_LT(zero, findings.size());
  EXPECT_TRUE(itemFollows(findings, zero, "z"));
  EXPECT_GT(zero, relax);
  EXPECT_LT(indexOf(findings, "       ### The equations pass all analysis tests"),
            findings.size());
  EXPECT_EQ(indexOf(findings, "       ### The variables pass all analysis tests"),
            findings.size());
}

// ---- the tables of the worked examples, from hand-filled pair tables --------------------------

TEST(BlockPicTables, CountsAndAveragesOfTheWorkedExample) {
  RunFixture out;
  out.start(modelText("{}"), 80);
  Tables t = countsExample();
  t.colName().set(5, "Coeff Cnts");
  t.colName().set(6, "# of  Eqns");
  t.rowName().set(3, "Coeff Cnts");
  printBlockCounts(runState, t.p(), t.q(), t.colName(), t.rowName(), 3, 2, t.cols(), t.rows(), t.bound(),
                   t.types(), t.vertical());
  EXPECT_TRUE(matchesGolden(out.status, "blockpic/counts-table-b"));

  // The sums made in place: grand totals in column nC + 2 of row nR + 1, the equation
  // counts in column nC + 3.
  EXPECT_EQ(t.p()(3, 5), 12348);
  EXPECT_EQ(t.q()(3, 5), 5);
  EXPECT_EQ(t.p()(1, 6), 1);
  EXPECT_EQ(t.p()(2, 6), 5);
  EXPECT_EQ(t.p()(3, 6), 0);

  out.status.clear();
  t.colName().set(5, "Cfs PerEqu");
  t.rowName().set(3, "Cfs PerVar");
  printAverageCounts(runState, t.p(), t.q(), t.colName(), t.rowName(), 3, 2, t.cols(), t.rows(),
                     t.bound(), t.vertical(), t.types());
  EXPECT_TRUE(matchesGolden(out.status, "blockpic/counts-table-c"));
}

TEST(BlockPicTables, AveragesTruncateOnlyPerEquation) {
  // 7 coefficients of one variable block of 3 members in an equation block of 3 rows: the
  // block column shows 7/3 to four digits, "Cfs PerEqu" the whole-number 2; the RHS column,
  // with no right-hand side away from 0, stays blank.
  RunFixture out;
  out.start(modelText("{}"), 80);
  Tables t(1, 1);
  setNames(t.colName(), {"v", "RHS", "Cfs PerEqu", "# of  Eqns"});
  setNames(t.rowName(), {"r", "Cfs PerVar"});
  t.colCount = {3};
  t.rowCount = {3};
  t.bound()(1, 5) = 1;
  t.rowType = {kRowE};
  t.p()(1, 1) = 7;
  t.p()(1, 3) = 7;  // as printBlockCounts leaves it
  t.p()(1, 4) = 3;
  t.p()(2, 1) = 7;
  printAverageCounts(runState, t.p(), t.q(), t.colName(), t.rowName(), 1, 1, t.cols(), t.rows(),
                     t.bound(), t.vertical(), t.types());
  // pos: v 1, RHS 13, Cfs PerEqu 21, # 29; the rows write cells 1 to 37.
  EXPECT_EQ(out.status[16],
            pad(" r          |  2.333+ | E" + std::string(14, ' ') + "2+      3", 50));
  EXPECT_EQ(out.status[17], pad("            |         |", 50));
}

TEST(BlockPicTables, ScalingOfTheWorkedExample) {
  RunFixture out;
  out.start(modelText("{}"), 80);
  Tables t(3, 2);
  setNames(t.colName(), {"x", "yvariable12", "z", "RHS MaxMin", "Equ MaxMin"});
  setNames(t.rowName(), {"e1", "equation22"});
  auto pair = [&](int32_t e, int32_t c, double mx, double mn) {
    t.x()(e, c) = mx;
    t.n()(e, c) = mn;
  };
  pair(1, 1, 1.5, 0.5);
  pair(1, 2, 2000, 0.25);
  pair(1, 4, 10, 10);
  pair(2, 2, 1e5, 0.001);
  pair(2, 3, 7, 7);
  pair(2, 4, 4, 2);
  printBlockScaling(runState, t.x(), t.n(), t.colName(), t.rowName(), 3, 2, t.vertical());
  EXPECT_TRUE(matchesGolden(out.status, "blockpic/scaling-table-d"));
  // Empty pairs end with a minimum of 0, which shows blank.
  EXPECT_EQ(t.n()(1, 3), 0.0);
  EXPECT_EQ(t.n()(3, 5), 0.0);
}

// ---- strips ---------------------------------------------------------------------------------

// The strips of a table of nC columns at width 50, where a strip holds 10 columns of A, 5 of
// B, 4 of C and 3 of D. The title columns never stand alone behind a strip that ends exactly:
// with nC = 9 the RHS column of A moves on to a strip of its own, and "Coeff Cnts" (column 5
// of B with nC = 3) goes with "# of  Eqns".
TEST(BlockStrips, ColumnsAndCountAtWidth50) {
  const struct {
    char table;
    int32_t nC, strips, k, first, last;
  } cases[] = {
      {'A', 100, 0, 1, 1, 10}, {'B', 100, 0, 1, 1, 5}, {'C', 100, 0, 1, 1, 4},
      {'D', 100, 0, 1, 1, 3},  {'A', 9, 2, 1, 1, 9},   {'A', 9, 2, 2, 10, 10},
      {'A', 8, 1, 1, 1, 9},    {'A', 19, 3, 2, 11, 19}, {'A', 19, 3, 3, 20, 20},
      {'B', 3, 2, 1, 1, 4},    {'B', 3, 2, 2, 5, 6},   {'B', 2, 1, 1, 1, 5},
      {'D', 2, 2, 2, 4, 4},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(1, c.table) + " " + std::to_string(c.nC) + " " + std::to_string(c.k));
    if (c.strips > 0) {
      EXPECT_EQ(blockStripCount(c.table, c.nC, 50), c.strips);
    }
    int32_t first = 0, last = 0;
    blockStripColumns(c.table, c.nC, 50, c.k, first, last);
    EXPECT_EQ(std::make_pair(first, last), std::make_pair(c.first, c.last));
  }
  EXPECT_EQ(blockStripCount('D', 1, 50), 1);
}

TEST(BlockStrips, WidthHeldToTheHostRange) {
  EXPECT_EQ(blockTableWidth(0), 50);
  EXPECT_EQ(blockTableWidth(20), 50);
  EXPECT_EQ(blockTableWidth(80), 80);
  EXPECT_EQ(blockTableWidth(999), 254);
}

TEST(BlockRhsStatus, Transitions) {
  const double before[] = {99, 2, 1, 0, -1, -2, -99};
  const double positive[] = {2, 2, 1, 1, -99, -99, -99};
  const double negative[] = {-2, -99, -99, -1, -1, -2, -99};
  const double zero[] = {0, 1, 1, 0, -1, -1, -99};
  for (int k = 0; k < 7; ++k) {
    EXPECT_EQ(nextBlockRhsStatus(before[k], 3.5), positive[k]) << before[k];
    EXPECT_EQ(nextBlockRhsStatus(before[k], -0.5), negative[k]) << before[k];
    EXPECT_EQ(nextBlockRhsStatus(before[k], 0.0), zero[k]) << before[k];
  }
}

// ---- many blocks at the page widths a run can have ---------------------------------------------

namespace {

size_t countStartingWith(const std::vector<std::string>& lines, const std::string& head,
                         size_t end) {
  size_t n = 0;
  for (size_t i = 0; i < end; ++i) n += lines[i].rfind(head, 0) == 0 ? 1 : 0;
  return n;
}

}  // namespace

TEST(BlockPicStrips, ManyBlocksAtEveryWidth) {
  struct Case {
    int32_t pageWidth, held;
    size_t strips[4];  // of tables A to D
  };
  // Strips of 41 columns in A, 43 in B and C, 42 in D by the per-strip counts of each width:
  // A (W-19)/3, B (W-19)/6, C (W-17)/8, D (W-17)/10.
  const Case cases[] = {{50, 50, {5, 9, 11, 14}},  {80, 80, {3, 5, 7, 7}},
                        {130, 130, {2, 3, 4, 4}},  {254, 254, {1, 2, 2, 2}},
                        {0, 50, {5, 9, 11, 14}},   {20, 50, {5, 9, 11, 14}},
                        {999, 254, {1, 2, 2, 2}}};
  for (const Case& k : cases) {
    SCOPED_TRACE(k.pageWidth);
    RunFixture fx;
    fx.start(modelFile("blockpic/many-blocks.json"), k.pageWidth);
    ASSERT_EQ(runBlockPicOnRegions(), std::make_pair(40, 3));
    const std::vector<std::string>& s = fx.status;
    const size_t findings =
        indexOf(s, "   ----### Analysis of Variables ( nonlinear terms at current point)");
    ASSERT_LT(findings, s.size());
    const char* heads[][2] = {{"### A.", "   A. Aggregate"}, {"### B.", "   B. Number"},
                              {" ### C.", "    C. Average"}, {"### D.", "   D. Scaling"}};
    for (size_t t = 0; t < 4; ++t) {
      EXPECT_EQ(countStartingWith(s, heads[t][0], findings) +
                    countStartingWith(s, heads[t][1], findings),
                k.strips[t]);
    }
    // The RHS column of tables A and B takes its cells behind the last block column, so
    // their rows may run two cells past the width; no line passes that.
    for (size_t i = 0; i < findings; ++i) {
      if (s[i].find("-- Strip") != std::string::npos) continue;  // fixed strip titles
      EXPECT_LE(s[i].size(), static_cast<size_t>(k.held + 2)) << s[i];
    }
    // Every variable block stands in exactly one strip of table A: 40 type letters.
    const size_t tableB = indexOf(s, "### B. Number of Coefficients by Block -- Strip   1");
    size_t letters = 0;
    for (size_t i = 0; i < tableB && i < s.size(); ++i) {
      if (s[i].rfind(" Variable Typ |", 0) != 0) continue;
      letters += static_cast<size_t>(
          std::count_if(s[i].begin() + 15, s[i].end(), [](char ch) { return ch != ' '; }));
    }
    EXPECT_EQ(letters, 40u);

    if (k.held == 50) {
      // The RHS column alone in the last strip of table A: no '|' ahead of it.
      const size_t last = indexOf(s, "   A. Aggregate Block Picture-- Strip   5");
      ASSERT_LT(last + 20, s.size());
      EXPECT_TRUE(matchesGolden(slice(s, last + 3, 16), "blockpic/many-blocks-50-rhs-strip"));
    }
  }
}

// ---- the objective and the findings ----------------------------------------------------------

TEST(BlockPicFindings, ObjectiveBlockSkippedAndFolded) {
  for (bool withObjRow : {true, false}) {
    SCOPED_TRACE(withObjRow);
    HostInstance model = modelFile("blockpic/objective.json");
    if (!withObjRow) model.objRow = 0;
    RunFixture fx;
    fx.start(model, 80);
    runBlockPicOnRegions();
    // Without an objective row the first row of the objective variable becomes it.
    EXPECT_EQ(runState.objRow, 1);
    const std::vector<std::string>& s = fx.status;
    // sell has a good objective coefficient and nothing that holds it from rising.
    const size_t unbounded = indexOf(s, "**** ERROR These variables are unbounded -- they");
    ASSERT_LT(unbounded, s.size());
    EXPECT_TRUE(itemFollows(s, unbounded, "sell"));
    // obj, free and with a bad objective cell, would be unbounded downwards: it is skipped.
    EXPECT_EQ(indexOf(s, " **** ERROR    These variables are unbounded"), s.size());
    for (const std::string& line : s) {
      EXPECT_NE(rtrim(line), " ##  obj");
      EXPECT_NE(rtrim(line), "     obj");
    }
    // need: =G= with right-hand side 0 and only a negative term forces a to zero.
    const size_t forces = indexOf(s, " **** Warning  This =G= constraint causes all");
    ASSERT_LT(forces, s.size());
    EXPECT_TRUE(itemFollows(s, forces, "need"));
    EXPECT_EQ(indexOf(s, "       ### The equations pass all analysis tests"), s.size());
    // Table A: the right-hand sides of profit and need are all zero.
    ASSERT_GT(s.size(), 23u);
    EXPECT_EQ(s[20], " profit       |  +  +  -  |  E  0   ");
    EXPECT_EQ(s[23], " need         |  -        |  G  0   ");
  }
}

TEST(BlockPicCapacity, TitleColumnsNeedThreePlacesBeyondTheBlocks) {
  RunFixture fx;
  fx.start(modelFile("blockpic/objective.json"), 80);
  runState.icblock = 5;  // room for the 3 variable blocks, not for the 3 title columns
  auto run = [] {
    runState.logChannel = Channel{stderr, nullptr};
    runBlockPicOnRegions();
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(77),
      "  Exceeded maximum variable blocks which is   2\n"
      " Expand or drop VARBLOCK option in MODRAKE.OPT");
}
