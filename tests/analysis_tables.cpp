// The ANALYSIS tables: bound classes, sign counts, activity bounds and the objective turn.
#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "analysis/analysis.h"
#include "analysis_fixture.h"

using analysis_test::analysisTables;
using analysis_test::modelFile;
using analysis_test::modelText;
using analysis_test::RunFixture;

namespace {

// One colBoundTable row in plain storage, with its start values.
struct BoundRow {
  std::array<int32_t, 5> slot{0, NO_LOWER, NO_UPPER, 0, 0};
  Table2<int32_t> table() { return Table2<int32_t>{slot.data(), 1, 5}; }
  void classify(double upper, double lower, int32_t type = 0) {
    classifyBounds(upper, lower, PLUS_INF, MINUS_INF, 1, table(), type);
  }
};

using Slots = std::array<int32_t, 5>;

TEST(ClassifyBounds, OneColumn) {
  struct Case {
    double lower, upper;
    int32_t type;
    Slots expected;  // signClass, lowerState, upperState, boundClass, typeCode
  };
  const Case cases[] = {
      {0.0, PLUS_INF, 0, {1, 0, NO_UPPER, 1, 1}},              // positive variable
      {MINUS_INF, 0.0, 0, {-1, NO_LOWER, 0, 2, 2}},            // negative variable
      {MINUS_INF, PLUS_INF, 0, {2, NO_LOWER, NO_UPPER, 3, 3}}, // free
      {-5.0, 10.0, 0, {2, -1, 1, 3, 3}},                       // finite both sides: free
      {-5.0, -1.0, 0, {-1, -1, -1, 2, 2}},
      {0.0, 0.0, 0, {1, 0, 0, 1, 1}},                          // fixed at zero
      {5.0, 5.0, 0, {1, 1, 1, 1, 1}},                          // fixed at 5
      {0.0, 1.0, 1, {1, 0, 1, 1, 4}},                          // binary
      {2.0, 9.0, 2, {1, 1, 1, 1, 5}},                          // integer
      {0.0, 3.0, 3, {1, 0, 1, 1, 6}},                          // SOS
      // Near the infinities: 0.9 x minusInf and 0.99 x plusInf in single precision.
      {LOWER_INF_FRACTION * MINUS_INF, 2.0, 0, {2, NO_LOWER, 1, 3, 3}},
      {3.0e300, UPPER_INF_FRACTION * PLUS_INF, 0, {1, 1, NO_UPPER, 1, 1}},
      {0.0, 2.9e300, 0, {1, 0, 1, 1, 1}},
  };
  for (const Case& c : cases) {
    BoundRow r;
    r.classify(c.upper, c.lower, c.type);
    EXPECT_EQ(r.slot, c.expected) << "lower " << c.lower << " upper " << c.upper;
  }
}

TEST(ClassifyBounds, BlockMembersMoveTheLowerSideButNotAFixedUpperSide) {
  BoundRow r;
  r.classify(5.0, 0.0);  // upper side fixed at 1 by the first finite member
  EXPECT_EQ(r.slot, (Slots{1, 0, 1, 1, 1}));
  r.classify(0.0, -3.0);  // lower moves to -1, upper stays
  EXPECT_EQ(r.slot, (Slots{2, -1, 1, 3, 3}));
  r.classify(-1.0, 2.0);  // a positive lower raises the state to 1
  EXPECT_EQ(r.slot, (Slots{1, 1, 1, 1, 1}));
  r.classify(1.0, 0.0);   // 0 does not lower a state of 1
  EXPECT_EQ(r.slot[1], 1);
  r.classify(1.0, MINUS_INF);  // an infinite member clears the lower side
  EXPECT_EQ(r.slot, (Slots{2, NO_LOWER, 1, 3, 3}));
  r.classify(1.0, 0.0);
  EXPECT_EQ(r.slot[1], 0);

  BoundRow u;
  u.classify(PLUS_INF, 0.0);  // an infinite upper leaves NO_UPPER ...
  u.classify(0.0, 0.0);       // ... so the next member fixes it
  u.classify(7.0, 0.0);
  EXPECT_EQ(u.slot[2], 0);
}

TEST(AnalysisTables, SignsActivityAndObjective) {
  RunFixture fx;
  fx.start(modelFile("analysis/signs.json"));
  const int32_t obj = 1, cap = 2, dem = 3, bal = 4, sticky = 6;  // rows
  const int32_t x = 1, y = 2, z = 3, w = 4;                       // columns
  const AnalysisRegions r = analysisTables();
  EXPECT_EQ(r.anaRowType[cap], kRowL);
  EXPECT_EQ(r.rowRhs[cap], 10.0);
  // Sign counts {row or column, middle slot, sign slot, count}.
  const int32_t rowSigns[][4] = {
      // CAP: 2x (class 1, +), -y (class 2, -), w (class 1, +, nonlinear).
      {cap, 1, 1, 2}, {cap, 2, 2, 1}, {cap, 1, 3, 1},
      // DEM: -z in a free column. BAL: the zero derivative of x still counts as nonlinear, its
      // zero coefficient nowhere else. The objective row: signs counted.
      {dem, 3, 2, 1}, {bal, 1, 3, 1}, {bal, 1, 1, 0}, {bal, 1, 2, 1},
      {obj, 1, 1, 1}, {obj, 2, 2, 1}, {obj, 3, 2, 1}};
  for (const auto& e : rowSigns) {
    EXPECT_EQ(r.rowSignTable(e[0], e[1], e[2]), e[3]) << e[0] << " " << e[1] << " " << e[2];
  }
  const int32_t colSigns[][4] = {
      // X in =L= (+), =G= (+), =E= (0: nothing), objective +3 under max with the objective
      // variable at -1: raising x improves the objective.
      {x, 3, 1, 1}, {x, 2, 1, 1}, {x, 1, 1, 0}, {x, 1, 2, 0}, {x, 1, 3, 1}, {x, 4, 1, 1},
      {x, 4, 2, 0},
      // Y: -2 in the objective: raising y worsens it.
      {y, 4, 2, 1}, {y, 4, 1, 0}, {y, 1, 3, 1},
      // W: +1 in =L=, -1 in =E=, 5 in the =N= row counted in slot 4, which the objective turn
      // moves along with the objective flags.
      {w, 3, 1, 1}, {w, 1, 2, 1}, {w, 4, 1, 0}, {w, 4, 2, 1}};
  for (const auto& e : colSigns) {
    EXPECT_EQ(r.colSignTable(e[0], e[1], e[2]), e[3]) << e[0] << " " << e[1] << " " << e[2];
  }
  const struct {
    int32_t row, slot;
    double value;
  } activity[] = {
      // CAP: min = 2*0 + (-1)*0 + 1*2 = 2, a nonzero bound was used; max has infinite terms.
      {cap, 1, 2.0}, {cap, 2, 1.0}, {cap, 4, 0.0},
      // DEM: the lower bound of z is -inf, used by the max side.
      {dem, 2, -1.0}, {dem, 4, 0.0},
      // BAL: only -w, w >= 2: min = -inf side, max = -2.
      {bal, 2, -1.0}, {bal, 3, -2.0}, {bal, 4, 1.0},
      // STICKY: a free column first (its infinite lower bound), then a bounded one: minState
      // stays -1.
      {sticky, 2, -1.0}, {sticky, 4, 0.0},
      // The objective row: no activity.
      {obj, 2, 0.0}, {obj, 3, 0.0}, {obj, 4, 1.0}};
  for (const auto& e : activity) {
    EXPECT_EQ(r.rowActivity(e.row, e.slot), e.value) << e.row << " " << e.slot;
  }
  // Bound classes.
  EXPECT_EQ(r.colBoundTable(x, 4), 1);
  EXPECT_EQ(r.colBoundTable(y, 4), 2);
  EXPECT_EQ(r.colBoundTable(z, 4), 3);
  EXPECT_EQ(r.colBoundTable(w, 2), 1);
}

// The same objective written the other way about, +1 for the objective variable: the
// objective turn keeps goodObjective meaning "raising improves".
TEST(AnalysisTables, ObjectiveTurnAndMinimisation) {
  for (const bool minimizing : {false, true}) {
    for (const double objCoef : {-1.0, 1.0}) {
      // objCoef * obj + 3 x = 0: obj = 3x / -objCoef.
      HostInstance model = modelText(R"({"objVar": "OBJ", "objRow": "COST",
          "rows": [{"name": "COST", "type": "=E="}],
          "cols": [{"name": "X", "entries": [[1, 3]]},
                   {"name": "OBJ", "lower": "-inf", "entries": [[1, -1]]}]})");
      model.entryValue = {3.0 * -objCoef, objCoef};
      model.minimizing = minimizing;
      RunFixture fx;
      fx.start(model);
      const AnalysisRegions r = analysisTables();
      const int32_t x = 1;
      // obj = 3x: raising x raises the objective, good when maximising.
      EXPECT_EQ(r.colSignTable(x, 4, 1), minimizing ? 0 : 1) << minimizing << objCoef;
      EXPECT_EQ(r.colSignTable(x, 4, 2), minimizing ? 1 : 0) << minimizing << objCoef;
    }
  }
}

TEST(AnalysisTables, ScaleFactorsApplyToRhsBoundsAndCoefficients) {
  RunFixture fx;
  fx.start(modelFile("analysis/scaled.json"));
  const int32_t row = 1, x = 1;
  runState.useScale = 1;
  const AnalysisRegions r = analysisTables();
  EXPECT_DOUBLE_EQ(r.rowScale[row], 2.0);
  EXPECT_DOUBLE_EQ(r.colScale[x], 0.5);
  EXPECT_DOUBLE_EQ(r.rowRhs[row], 6.0);
  // x: a = 6 / 0.5 * 2 = 24, bounds 0.5 and 2; y: a = -8 / 4 * 2 = -4, bounds 0 and inf
  // (not scaled). min = 24 * 0.5 + (-4) * inf-value; max = 24 * 2 + (-4) * 0 = 48.
  EXPECT_EQ(r.rowActivity(row, 2), -1.0);
  EXPECT_DOUBLE_EQ(r.rowActivity(row, 3), 48.0);
  EXPECT_EQ(r.rowActivity(row, 4), 1.0);
}

}  // namespace
