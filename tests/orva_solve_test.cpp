// Solving with GLPK: statuses, levels and marginals of small models worked out by hand, the
// netlib models against their published optima, and the reduced-cost identity on every solved
// LP: marginal_j = cost_j - sum_i a_ij * rowMarginal_i, cost 1 for the objective variable.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "host/readers.h"
#include "orva/solve.h"

namespace {

// A model of tests/data/solve/.
HostInstance model(const std::string& name) {
  HostInstance inst;
  std::string error;
  const ModelSource source{std::string(SOURCE_DIR) + "/tests/data/solve/" + name, ModelFormat::Json,
                           "", {}};
  EXPECT_TRUE(readModel(source, inst, error)) << error;
  return inst;
}

HostSolution solve(const HostInstance& inst) {
  HostSolution s;
  orvaSolveInstance(inst, {}, s);
  return s;
}

// Checks the reduced-cost identity for every column and that each row level is the activity.
void expectAccountsClose(const HostInstance& inst, const HostSolution& sol) {
  for (int j = 0; j < inst.colCount; ++j) {
    double cost = (j + 1 == inst.objVar) ? 1.0 : 0.0;
    double sum = 0.0, size = 0.0;
    for (int k = inst.colStart[j]; k < inst.colStart[j + 1]; ++k) {
      double t = inst.entryValue[k] * sol.rowMarginal[inst.entryRow[k]];
      sum += t;
      size += std::fabs(t);
    }
    EXPECT_NEAR(sol.colMarginal[j], cost - sum, 1e-7 * (1.0 + size)) << "column " << j + 1;
  }
  std::vector<double> activity(inst.rowCount, 0.0);
  std::vector<double> size(inst.rowCount, 0.0);
  for (int j = 0; j < inst.colCount; ++j) {
    for (int k = inst.colStart[j]; k < inst.colStart[j + 1]; ++k) {
      activity[inst.entryRow[k]] += inst.entryValue[k] * sol.colLevel[j];
      size[inst.entryRow[k]] += std::fabs(inst.entryValue[k] * sol.colLevel[j]);
    }
  }
  for (int i = 0; i < inst.rowCount; ++i) {
    EXPECT_NEAR(sol.rowLevel[i], activity[i], 1e-9 * (1.0 + size[i])) << "row " << i + 1;
  }
}

// The accounts as a report of the solution checks them, with its single-precision relative
// tolerances and a nonbasic level taken from its bound: every budget of coefficient times row
// marginal plus the column's marginal closes (the objective variable's need not), and no row
// sum overshoots its level. No value is rounding noise within kOrvaZeroThreshold of 0.
void expectReportAccountsClose(const HostInstance& inst, const HostSolution& sol) {
  const double budgetTolerance = static_cast<double>(1e-4f);
  const double rowSumTolerance = static_cast<double>(1e-5f);
  std::vector<double> rowSum(inst.rowCount, 0.0), rowAbs(inst.rowCount, 0.0);
  for (int j = 0; j < inst.colCount; ++j) {
    double x = sol.colStat[j] == 0 ? inst.colLower[j]
               : sol.colStat[j] == 1 ? inst.colUpper[j]
                                     : sol.colLevel[j];
    double sum = 0.0, size = 0.0;
    for (int k = inst.colStart[j]; k < inst.colStart[j + 1]; ++k) {
      const int i = inst.entryRow[k];
      const double t = sol.rowMarginal[i] * inst.entryValue[k];
      sum += t;
      size += std::fabs(t);
      rowSum[i] += inst.entryValue[k] * x;
      rowAbs[i] += std::fabs(inst.entryValue[k] * x);
    }
    if (j + 1 != inst.objVar) {
      EXPECT_LE(std::fabs(sum + sol.colMarginal[j]), budgetTolerance * size) << "column " << j + 1;
    }
  }
  for (int i = 0; i < inst.rowCount; ++i) {
    const double level = sol.rowStat[i] < 2 ? inst.rowRhs[i] : sol.rowLevel[i];
    EXPECT_LE(std::fabs(rowSum[i]) - std::fabs(level), rowSumTolerance * rowAbs[i]) << "row " << i + 1;
  }
  for (const std::vector<double>* v : {&sol.rowLevel, &sol.rowMarginal, &sol.colLevel,
                                       &sol.colMarginal}) {
    for (double x : *v) EXPECT_FALSE(x != 0.0 && std::fabs(x) <= kOrvaZeroThreshold) << x;
  }
}

int count(const std::vector<int32_t>& v, int32_t value) {
  int n = 0;
  for (int32_t x : v) n += x == value;
  return n;
}

TEST(OrvaSolveLp, MinimizationWorkedByHand) {
  const HostInstance inst = model("min.json");
  const int obj = 1, cover = 2, cap = 3;
  ASSERT_EQ(orvaUnsolvableReason(inst), "");
  const HostSolution s = solve(inst);
  EXPECT_EQ(s.modelStat, kStatOptimal);
  EXPECT_EQ(s.solveStat, kSolveNormal);
  EXPECT_NEAR(s.colLevel[0], 1.5, 1e-9);
  EXPECT_NEAR(s.colLevel[1], 0.5, 1e-9);
  EXPECT_NEAR(s.colLevel[2], 2.5, 1e-9);
  // One more unit to cover costs a y at 2; one more unit of x's cap saves 2 - 1.
  EXPECT_NEAR(s.rowMarginal[cover - 1], 2.0, 1e-9);
  EXPECT_NEAR(s.rowMarginal[cap - 1], -1.0, 1e-9);
  EXPECT_NEAR(s.rowMarginal[obj - 1], -1.0, 1e-9);
  EXPECT_EQ(s.rowStat, (std::vector<int32_t>{0, 0, 1}));
  EXPECT_EQ(s.colStat, (std::vector<int32_t>{2, 2, 2}));
  EXPECT_EQ(count(s.rowCStat, 0) + count(s.colCStat, 0), 6);
  expectAccountsClose(inst, s);
}

TEST(OrvaSolveLp, MaximizationWithVariableAtUpperBound) {
  const HostInstance inst = model("max.json");
  const int r1 = 2, r2 = 3;
  const HostSolution s = solve(inst);
  EXPECT_EQ(s.modelStat, kStatOptimal);
  EXPECT_NEAR(s.colLevel[0], 3.0, 1e-9);
  EXPECT_NEAR(s.colLevel[1], 1.0, 1e-9);
  EXPECT_NEAR(s.colLevel[2], 11.0, 1e-9);
  EXPECT_NEAR(s.rowMarginal[r1 - 1], 2.0, 1e-9);
  EXPECT_NEAR(s.rowMarginal[r2 - 1], 0.0, 1e-9);
  EXPECT_NEAR(s.colMarginal[0], 1.0, 1e-9);  // raising x's bound gains 3 - 2
  EXPECT_EQ(s.colStat, (std::vector<int32_t>{1, 2, 2}));
  EXPECT_EQ(s.rowStat[r1 - 1], 1);
  EXPECT_EQ(s.rowStat[r2 - 1], 2);
  EXPECT_EQ(count(s.rowCStat, 0) + count(s.colCStat, 0), 6);
  expectAccountsClose(inst, s);
}

TEST(OrvaSolveLp, InfeasibleModelShowsItsInfeasibleItems) {
  const HostSolution s = solve(model("infeasible.json"));
  EXPECT_EQ(s.modelStat, kStatInfeasible);
  EXPECT_GE(count(s.rowCStat, 2) + count(s.colCStat, 2), 1);
}

TEST(OrvaSolveLp, UnboundedModelMarksTheRayAndWhatItDrives) {
  // x and y grow together without end, and z with them; w stops at its bound.
  const HostSolution s = solve(model("unbounded.json"));
  EXPECT_EQ(s.modelStat, kStatUnbounded);
  EXPECT_EQ(s.colCStat[0], 3);
  EXPECT_EQ(s.colCStat[1], 3);
  EXPECT_NE(s.colCStat[2], 3);
  EXPECT_EQ(s.colCStat[3], 3);
  EXPECT_EQ(count(s.rowCStat, 3), 0);
}

TEST(OrvaSolveLp, CrossedBoundsAreInfeasibleWithoutASolve) {
  const HostSolution s = solve(model("crossed.json"));
  EXPECT_EQ(s.modelStat, kStatInfeasible);
  EXPECT_EQ(s.colLevel[0], 2.0);
  EXPECT_EQ(s.colCStat[0], 2);
}

TEST(OrvaSolveMip, IntegerOptimumFixedForMarginals) {
  const HostInstance inst = model("mip.json");
  const HostSolution s = solve(inst);
  EXPECT_EQ(s.modelStat, kStatOptimal);
  EXPECT_EQ(s.colLevel[0], 4.0);
  EXPECT_EQ(s.colLevel[1], 0.0);
  EXPECT_NEAR(s.colLevel[2], 20.0, 1e-9);
  // x stands between its bounds, so it is not marked at one (basic or superbasic), y is at
  // its lower bound.
  EXPECT_GE(s.colStat[0], 2);
  EXPECT_EQ(s.colStat[1], 0);
  EXPECT_EQ(count(s.rowCStat, 0) + count(s.colCStat, 0), 6);
  expectAccountsClose(inst, s);
}

TEST(OrvaSolveMip, IntegerInfeasible) {
  const HostSolution s = solve(model("mip-infeasible.json"));
  EXPECT_EQ(s.modelStat, kStatIntegerInfeasible);
}

// unsolvable.json spoiled; its entry 3 (0-based) is the entry of w, variable 3, in row r.
TEST(OrvaSolve, UnsolvableInstancesAreNamed) {
  const struct {
    void (*spoil)(HostInstance&);
    const char* reason;
    bool whole;  // the reason is the whole message, else a part of it
  } cases[] = {
      {[](HostInstance& in) { in.colType[0] = kVarSos1; }, "SOS or semi-continuous", false},
      {[](HostInstance& in) { in.entryNonlinear[0] = 1; }, "nonlinear", false},
      {[](HostInstance& in) { in.entryRow[3] = 0; }, "row 1 appears twice in variable 3", true},
      {[](HostInstance& in) { in.entryRow[3] = 6; },
       "variable 3 has an entry in row 7, which does not exist", true},
      {[](HostInstance& in) { in.entryValue[0] = std::nan(""); }, "not a finite number", false},
      {[](HostInstance& in) { in.colLower.pop_back(); },
       "the instance's arrays do not agree with its counts", true},
  };
  for (const auto& c : cases) {
    HostInstance inst = model("unsolvable.json");
    c.spoil(inst);
    const std::string reason = orvaUnsolvableReason(inst);
    EXPECT_TRUE(c.whole ? reason == c.reason : reason.find(c.reason) != std::string::npos) << reason;
  }
}

TEST(OrvaConditionStatus, JudgedByLevelMarginalAndSense) {
  HostInstance inst = model("condition.json");
  HostSolution s;
  s.rowLevel = {0.0, 1.0};
  s.rowMarginal = {-1.0, 1.0};
  s.rowStat = {0, 0};
  s.rowCStat = {0, 0};
  s.colLevel = {0.0, 1.0, 1.0};
  s.colMarginal = {-0.5, 0.0, 0.0};  // x at its lower bound with a negative reduced cost
  s.colStat = {0, 2, 2};
  s.colCStat = {0, 0, 3};
  orvaConditionStatuses(inst, s);
  EXPECT_EQ(s.colCStat, (std::vector<int32_t>{1, 0, 3}));
  EXPECT_EQ(s.rowCStat, (std::vector<int32_t>{0, 0}));

  // The same numbers when maximizing: now x may have a negative marginal at its lower bound,
  // and the binding >= row's positive marginal is of the wrong sign.
  inst.minimizing = false;
  s.colCStat = {0, 0, 0};
  orvaConditionStatuses(inst, s);
  EXPECT_EQ(s.colCStat, (std::vector<int32_t>{0, 0, 0}));
  EXPECT_EQ(s.rowCStat, (std::vector<int32_t>{0, 1}));

  // Outside the bounds beyond 1e-6 relative to the bound: infeasible; within it: not.
  s.colLevel = {-1e-7, 4.0 + 4.1e-6, 1.0};
  s.colMarginal = {0.0, 0.0, 0.0};
  s.rowLevel = {0.0, 1.0 - 2e-6};
  s.rowMarginal = {-1.0, 0.0};
  orvaConditionStatuses(inst, s);
  EXPECT_EQ(s.colCStat, (std::vector<int32_t>{0, 2, 0}));
  EXPECT_EQ(s.rowCStat, (std::vector<int32_t>{0, 2}));
}

// ---- models read from files ----------------------------------------------------------------

struct NetlibCase {
  const char* name;
  int rows, cols;
  double optimum;
};

// Published optima of the netlib collection.
const NetlibCase kNetlib[] = {
    {"afiro", 28, 32, -464.7531428571},     {"adlittle", 57, 97, 225494.96316},
    {"blend", 75, 83, -30.812149846},       {"sc105", 106, 103, -52.202061212},
    {"share1b", 118, 225, -76589.318579},   {"stocfor1", 118, 111, -41131.976219},
};

TEST(OrvaSolveNetlib, PublishedOptimaAndClosedAccounts) {
  for (const NetlibCase& c : kNetlib) {
    SCOPED_TRACE(c.name);
    ModelSource src;
    src.path = std::string(SOURCE_DIR) + "/tests/data/netlib/" + c.name + ".mps";
    src.format = ModelFormat::FixedMps;
    HostInstance inst;
    std::string error;
    ASSERT_TRUE(readModel(src, inst, error)) << error;
    ASSERT_GT(inst.objVar, 0);
    ASSERT_EQ(orvaUnsolvableReason(inst), "");
    const HostSolution s = solve(inst);
    ASSERT_EQ(s.modelStat, kStatOptimal);
    EXPECT_NEAR(s.colLevel[inst.objVar - 1], c.optimum, 1e-9 * std::fabs(c.optimum) + 1e-6);
    expectAccountsClose(inst, s);
    expectReportAccountsClose(inst, s);
    EXPECT_EQ(count(s.rowCStat, 0), inst.rowCount);
    EXPECT_EQ(count(s.colCStat, 0), inst.colCount);
  }
}

// The row (or column) of an instance by its symbol and labels, 0-based; -1 when there is none.
int findItem(const HostInstance& inst, bool row, const std::string& symbol,
             const std::vector<std::string>& labels) {
  const auto& symbolOf = row ? inst.rowSymbol : inst.colSymbol;
  const auto& uelStart = row ? inst.rowUelStart : inst.colUelStart;
  const auto& uels = row ? inst.rowUels : inst.colUels;
  for (int i = 0; i < (row ? inst.rowCount : inst.colCount); ++i) {
    if (inst.symbols[symbolOf[i] - 1].name != symbol) continue;
    std::vector<std::string> have;
    for (int k = uelStart[i]; k < uelStart[i + 1]; ++k) {
      have.push_back(inst.labels[uels[k] - 1].text);
    }
    if (have == labels) return i;
  }
  return -1;
}

TEST(OrvaSolveMathProg, TransportDualsAsWorkedByHand) {
  ModelSource src;
  src.path = std::string(SOURCE_DIR) + "/examples/transport/transport.mod";
  src.format = ModelFormat::MathProg;
  HostInstance inst;
  std::string error;
  ASSERT_TRUE(readModel(src, inst, error)) << error;
  const HostSolution s = solve(inst);
  ASSERT_EQ(s.modelStat, kStatOptimal);
  EXPECT_NEAR(s.colLevel[inst.objVar - 1], 153.675, 1e-9);
  expectAccountsClose(inst, s);
  // Cost per case is 90 * distance / 1000. The shipments seattle: new-york 50, chicago 300;
  // san-diego: new-york 275, topeka 275 leave san-diego's capacity slack, so the demand
  // marginals are the costs of the cells that serve them.
  const int ny = findItem(inst, true, "meetDemand", {"new-york"});
  const int ch = findItem(inst, true, "meetDemand", {"chicago"});
  const int tp = findItem(inst, true, "meetDemand", {"topeka"});
  const int sea = findItem(inst, true, "capacity", {"seattle"});
  const int sd = findItem(inst, true, "capacity", {"san-diego"});
  ASSERT_TRUE(ny >= 0 && ch >= 0 && tp >= 0 && sea >= 0 && sd >= 0);
  EXPECT_NEAR(s.rowMarginal[ny], 0.225, 1e-9);
  EXPECT_NEAR(s.rowMarginal[ch], 0.153, 1e-9);
  EXPECT_NEAR(s.rowMarginal[tp], 0.126, 1e-9);
  EXPECT_NEAR(s.rowMarginal[sea], 0.0, 1e-9);
  EXPECT_NEAR(s.rowMarginal[sd], 0.0, 1e-9);
  EXPECT_NEAR(s.rowLevel[sd], 550.0, 1e-9);
  EXPECT_EQ(s.rowStat[sd], 2);
  const int seaTp = findItem(inst, false, "ship", {"seattle", "topeka"});
  const int sdCh = findItem(inst, false, "ship", {"san-diego", "chicago"});
  ASSERT_TRUE(seaTp >= 0 && sdCh >= 0);
  EXPECT_NEAR(s.colMarginal[seaTp], 0.162 - 0.126, 1e-9);
  EXPECT_NEAR(s.colMarginal[sdCh], 0.162 - 0.153, 1e-9);
  EXPECT_EQ(s.colStat[seaTp], 0);
  EXPECT_EQ(s.colLevel[seaTp], 0.0);
}

}  // namespace
