// BLOCKPIC: the fold into blocks, the four tables, their strips and the findings behind them.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "analysis_fixture.h"
#include "golden.h"
#include "model/work_array.h"
#include "model/blocks.h"
#include "pictures/blockpic.h"
#include "run/run_state.h"

using analysis_test::INF;
using analysis_test::ModelBuilder;
using analysis_test::pad;
using analysis_test::RunFixture;

namespace {

// Lays out the BLOCKPIC phase and runs BLOCKPIC as the request loop does after the titles.
// Gives the number of variable and equation blocks, as the block tables hold them.
void runBlockPicOnRegions(int32_t& nC, int32_t& nR) {
  bool fits = false;
  const BlockPicRegions r = phaseRegions<Phase::BlockPic>(workArraySizes(runState), fits);
  ASSERT_TRUE(fits);
  runBlockPicture(r, runState);
  nC = r.colBlockOf.n > 0 ? *std::max_element(r.colBlockOf.begin(), r.colBlockOf.end()) : 0;
  nR = r.rowBlockOf.n > 0 ? *std::max_element(r.rowBlockOf.begin(), r.rowBlockOf.end()) : 0;
}

// The model of the aggregate picture: variable blocks x, yvariable12 (free), z (binary),
// equation blocks e1 (=G=, rhs 5) and equation22 (=L=, rhs 3 and -2).
HostInstance exampleModel() {
  ModelBuilder b;
  const int32_t e1 = b.row("e1", {}, kRowG, 5);
  const int32_t e2a = b.row("equation22", {"a"}, kRowL, 3);
  const int32_t e2b = b.row("equation22", {"b"}, kRowL, -2);
  const int32_t x = b.col("x", {}, 0, INF);
  const int32_t ya = b.col("yvariable12", {"a"}, -INF, INF);
  const int32_t yb = b.col("yvariable12", {"b"}, -INF, INF);
  const int32_t z = b.col("z", {}, 0, 1, kVarBinary);
  b.add(e1, x, 1);
  b.add(e1, ya, -1);
  b.add(e2a, ya, 2);
  b.add(e2b, yb, -3);
  b.add(e2a, z, 4);
  return b.build();
}

std::vector<std::string> slice(const std::vector<std::string>& lines, size_t from, size_t n) {
  if (from >= lines.size()) return {};
  return {lines.begin() + static_cast<std::ptrdiff_t>(from),
          lines.begin() + static_cast<std::ptrdiff_t>(std::min(lines.size(), from + n))};
}

size_t indexOf(const std::vector<std::string>& lines, const std::string& line, size_t from = 0) {
  for (size_t i = from; i < lines.size(); ++i) {
    if (lines[i] == line) return i;
  }
  return lines.size();
}

std::string rtrim(std::string s) {
  while (!s.empty() && s.back() == ' ') s.pop_back();
  return s;
}

// True when a finding's item line for `name` follows the message line at `at` before the
// next message.
bool itemFollows(const std::vector<std::string>& lines, size_t at, const std::string& name) {
  for (size_t i = at + 1; i < lines.size(); ++i) {
    const std::string t = rtrim(lines[i]);
    if (t == " ##  " + name || t == "     " + name) return true;
    if (t.find("****") != std::string::npos || t.find("----###") != std::string::npos) break;
  }
  return false;
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

// The blocks of the example with the sizes of its count tables: 1000, 2 and 3 variables,
// 1 and 5 equations, 12345 positive coefficients of yvariable12 in equation22.
Tables countsExample() {
  Tables t(3, 2);
  t.colName().set(1, "x");
  t.colName().set(2, "yvariable12");
  t.colName().set(3, "z");
  t.colName().set(4, "RHS");
  t.rowName().set(1, "e1");
  t.rowName().set(2, "equation22");
  t.colCount = {1000, 2, 3};
  t.rowCount = {1, 5};
  t.bound()(1, 5) = 1;
  t.bound()(2, 5) = 3;
  t.bound()(3, 5) = 4;
  t.rowType = {kRowG, kRowL};
  t.p()(1, 1) = 2;
  t.q()(1, 2) = 3;
  t.p()(1, 4) = 1;
  t.p()(2, 2) = 12345;
  t.q()(2, 2) = 2;
  t.p()(2, 3) = 1;
  t.p()(2, 4) = 1;
  t.q()(2, 4) = 1;
  return t;
}

struct StatusCapture {
  std::vector<std::string> status, log;
  StatusCapture(int32_t pageWidth) {
    runState.statusChannel = Channel{nullptr, &status};
    runState.logChannel = Channel{nullptr, &log};
    runState.pageWidth = pageWidth;
  }
  ~StatusCapture() {
    runState.statusChannel = Channel{};
    runState.logChannel = Channel{};
  }
};

}  // namespace

// ---- the report of a whole model ------------------------------------------------------------

TEST(BlockPicReport, ExampleModelGivesAllFourTables) {
  RunFixture fx;
  fx.start(exampleModel(), 80);
  int32_t nC = 0, nR = 0;
  runBlockPicOnRegions(nC, nR);
  EXPECT_EQ(nC, 3);
  EXPECT_EQ(nR, 2);

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
  StatusCapture out(80);
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
  StatusCapture out(80);
  Tables t(1, 1);
  t.colName().set(1, "v");
  t.colName().set(2, "RHS");
  t.colName().set(3, "Cfs PerEqu");
  t.colName().set(4, "# of  Eqns");
  t.rowName().set(1, "r");
  t.rowName().set(2, "Cfs PerVar");
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
  StatusCapture out(80);
  Tables t(3, 2);
  for (const auto& [c, name] : {std::pair{1, "x"}, {2, "yvariable12"}, {3, "z"},
                                {4, "RHS MaxMin"}, {5, "Equ MaxMin"}}) {
    t.colName().set(c, name);
  }
  t.rowName().set(1, "e1");
  t.rowName().set(2, "equation22");
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

// The first and last column of strip k of a table of nC columns at width 50.
std::pair<int32_t, int32_t> strip50(char table, int32_t nC, int32_t k) {
  int32_t first = 0, last = 0;
  blockStripColumns(table, nC, 50, k, first, last);
  return {first, last};
}

TEST(BlockStrips, ColumnsPerStripAtWidth50) {
  EXPECT_EQ(strip50('A', 100, 1), std::make_pair(1, 10));
  EXPECT_EQ(strip50('B', 100, 1), std::make_pair(1, 5));
  EXPECT_EQ(strip50('C', 100, 1), std::make_pair(1, 4));
  EXPECT_EQ(strip50('D', 100, 1), std::make_pair(1, 3));
}

TEST(BlockStrips, OneLessRuleKeepsTheTitleColumnsWithABlock) {
  // Table A at width 50 holds 10 columns a strip. With nC = 9 the RHS column would end the
  // first strip exactly: it moves on, alone.
  EXPECT_EQ(blockStripCount('A', 9, 50), 2);
  EXPECT_EQ(strip50('A', 9, 1), std::make_pair(1, 9));
  EXPECT_EQ(strip50('A', 9, 2), std::make_pair(10, 10));
  // With nC = 8 all nine columns fit one strip.
  EXPECT_EQ(blockStripCount('A', 8, 50), 1);
  EXPECT_EQ(strip50('A', 8, 1), std::make_pair(1, 9));
  // nC = 19: columns 1..10, 11..19, then the RHS alone (20 is an exact multiple).
  EXPECT_EQ(blockStripCount('A', 19, 50), 3);
  EXPECT_EQ(strip50('A', 19, 2), std::make_pair(11, 19));
  EXPECT_EQ(strip50('A', 19, 3), std::make_pair(20, 20));

  // Table B at width 50 holds 5 a strip; nC = 3: "Coeff Cnts" (column 5) may not end a
  // strip, so the last strip has it with "# of  Eqns".
  EXPECT_EQ(blockStripCount('B', 3, 50), 2);
  EXPECT_EQ(strip50('B', 3, 1), std::make_pair(1, 4));
  EXPECT_EQ(strip50('B', 3, 2), std::make_pair(5, 6));
  // nC = 2: the five columns fill one strip.
  EXPECT_EQ(blockStripCount('B', 2, 50), 1);
  EXPECT_EQ(strip50('B', 2, 1), std::make_pair(1, 5));

  // Table D: one strip as long as all columns fit.
  EXPECT_EQ(blockStripCount('D', 1, 50), 1);
  EXPECT_EQ(blockStripCount('D', 2, 50), 2);
  EXPECT_EQ(strip50('D', 2, 2), std::make_pair(4, 4));
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

// 40 scalar variables, each its own block, in three equation blocks of one row each.
HostInstance manyBlocksModel() {
  ModelBuilder b;
  const int32_t r[3] = {b.row("r1", {}, kRowL, 1), b.row("r2", {}, kRowG, 0),
                        b.row("r3", {}, kRowE, -1)};
  for (int32_t k = 1; k <= 40; ++k) {
    const std::string name = (k < 10 ? "v0" : "v") + std::to_string(k);
    const int32_t j = b.col(name, {}, 0, k % 2 == 0 ? 10.0 : INF,
                            k % 5 == 0 ? kVarInteger : kVarContinuous);
    b.add(r[k % 3], j, k % 4 == 0 ? -1.0 * k : 0.5 * k);
  }
  return b.build();
}

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
    size_t stripsA, stripsB, stripsC, stripsD;
  };
  // Strips of 41 columns in A, 43 in B and C, 42 in D by the per-strip counts of each width:
  // A (W-19)/3, B (W-19)/6, C (W-17)/8, D (W-17)/10.
  const Case cases[] = {{50, 50, 5, 9, 11, 14},  {80, 80, 3, 5, 7, 7},
                        {130, 130, 2, 3, 4, 4},  {254, 254, 1, 2, 2, 2},
                        {0, 50, 5, 9, 11, 14},   {20, 50, 5, 9, 11, 14},
                        {999, 254, 1, 2, 2, 2}};
  for (const Case& k : cases) {
    SCOPED_TRACE(k.pageWidth);
    RunFixture fx;
    fx.start(manyBlocksModel(), k.pageWidth);
    int32_t nC = 0, nR = 0;
    runBlockPicOnRegions(nC, nR);
    ASSERT_EQ(nC, 40);
    ASSERT_EQ(nR, 3);
    const std::vector<std::string>& s = fx.status;
    const size_t findings =
        indexOf(s, "   ----### Analysis of Variables ( nonlinear terms at current point)");
    ASSERT_LT(findings, s.size());
    EXPECT_EQ(countStartingWith(s, "### A.", findings) +
                  countStartingWith(s, "   A. Aggregate", findings),
              k.stripsA);
    EXPECT_EQ(countStartingWith(s, "### B.", findings) +
                  countStartingWith(s, "   B. Number", findings),
              k.stripsB);
    EXPECT_EQ(countStartingWith(s, " ### C.", findings) +
                  countStartingWith(s, "    C. Average", findings),
              k.stripsC);
    EXPECT_EQ(countStartingWith(s, "### D.", findings) +
                  countStartingWith(s, "   D. Scaling", findings),
              k.stripsD);
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
      const std::string blank = "              |" + std::string(9, ' ');
      const std::vector<std::string> strip = {
          blank, blank, blank, blank, blank, blank, blank,
          "              |        R",
          "              |        H",
          "              |        S",
          " " + std::string(22, '-'),
          " r1           |     L  +   ",
          " r2           |     G  0   ",
          " r3           |     E  -   ",
          " " + std::string(22, '-'),
          " Variable Typ | ",
      };
      EXPECT_EQ(slice(s, last + 3, strip.size()), strip);
    }
  }
}

// ---- the objective and the findings ----------------------------------------------------------

namespace {

// Maximize profit = 3 a(1) + 3 a(2) + 5 sell, written as the row profit with the free
// objective variable obj at -1. cap holds a; demand asks sell >= 1; need says -a(1) >= 0.
HostInstance objectiveModel(bool withObjRow) {
  ModelBuilder b;
  const int32_t profit = b.row("profit", {}, kRowE, 0);
  const int32_t cap = b.row("cap", {}, kRowL, 10);
  const int32_t demand = b.row("demand", {}, kRowG, 1);
  const int32_t need = b.row("need", {}, kRowG, 0);
  const int32_t a1 = b.col("a", {"1"}, 0, INF);
  const int32_t a2 = b.col("a", {"2"}, 0, INF);
  const int32_t sell = b.col("sell", {}, 0, INF);
  const int32_t obj = b.col("obj", {}, -INF, INF);
  b.add(profit, a1, 3);
  b.add(profit, a2, 3);
  b.add(profit, sell, 5);
  b.add(profit, obj, -1);
  b.add(cap, a1, 1);
  b.add(cap, a2, 1);
  b.add(demand, sell, 1);
  b.add(need, a1, -1);
  b.objective(withObjRow ? profit : 0, obj, false);
  return b.build();
}

}  // namespace

TEST(BlockPicFindings, ObjectiveBlockSkippedAndFolded) {
  for (bool withObjRow : {true, false}) {
    SCOPED_TRACE(withObjRow);
    RunFixture fx;
    fx.start(objectiveModel(withObjRow), 80);
    int32_t nC = 0, nR = 0;
    runBlockPicOnRegions(nC, nR);
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
  fx.start(objectiveModel(true), 80);
  runState.icblock = 5;  // room for the 3 variable blocks, not for the 3 title columns
  auto run = [] {
    runState.logChannel = Channel{stderr, nullptr};
    int32_t nC = 0;
    int32_t nR = 0;
    runBlockPicOnRegions(nC, nR);
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(77),
      "  Exceeded maximum variable blocks which is   2\n"
      " Expand or drop VARBLOCK option in MODRAKE.OPT");
}
