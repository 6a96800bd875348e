// The two ladders of ANALYSIS: every finding kind with its explanation, the run rule, the pass
// and summary lines, the analysis scratch file, and the block forms (mode 1).
#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "analysis/analysis.h"
#include "analysis_fixture.h"
#include "analysis_messages.h"

using namespace analysis_test;

namespace {

void equationReport() {
  const AnalysisRegions r = analysisTables();
  reportEquationFindings(runState, runState.rowCount, TextTable{}, r.rowSignTable, r.anaRowType, r.rowRhs, 0,
                         runState.dictionary, r.rowActivity);
}
void variableReport() {
  const AnalysisRegions r = analysisTables();
  reportVariableFindings(runState, runState.colCount, TextTable{}, r.colSignTable, r.colBoundTable,
                         runState.objVar, 0, runState.dictionary);
}

// Each finding kind of one row over one column, and of one variable in a maximisation, with
// its explanation, summary line and scratch lines: the cases of tests/data/analysis/.
TEST(Findings, EveryKindWithItsExplanation) {
  const std::map<std::string, std::string> summaries = {
      {"redundant", kRedundant}, {"infeasible", kInfeasible}, {"force-zero", kForceZero},
      {"unbounded", kUnbounded}, {"relaxes", kRelaxes},       {"zero", kZero}};
  for (const bool equations : {true, false}) {
    for (const FileCase& c : readCases(equations ? "analysis/equation-kinds.cases"
                                                 : "analysis/variable-kinds.cases")) {
      SCOPED_TRACE(c.expected);
      std::istringstream head(c.expected);
      int32_t kind = 0;
      std::string summary, item;
      head >> kind >> summary >> item;
      RunFixture fx;
      fx.start(modelText(c.text));
      equations ? equationReport() : variableReport();
      EXPECT_EQ(fx.status, equations ? kEquationHeading + kMessage.at(kind) + firstItem(item)
                                     : kVariableHeading + kMessage.at(kind) + nextItem(item));
      EXPECT_EQ(fx.log, Lines{summaries.at(summary)});
      EXPECT_EQ(fx.scratch(), (Lines{equations ? " equation" : " variable", "   " + item}));
      EXPECT_EQ(runState.analysisProblemsPending, 1);
    }
  }
}

TEST(EquationFindings, InfeasibleBothWaysIsListedTwice) {
  RunFixture fx;
  fx.start(modelFile("analysis/crossed.json"));
  equationReport();
  EXPECT_EQ(fx.status, kEquationHeading + kMessage.at(14) + firstItem("BAL") + kMessage.at(15) +
                           firstItem("BAL"));
  EXPECT_EQ(fx.log, Lines{kInfeasible});
  EXPECT_EQ(fx.scratch(), (Lines{" equation", "   BAL", "   BAL"}));
}

TEST(EquationFindings, RowsThatMeetNoRule) {
  RunFixture fx;
  fx.start(modelFile("analysis/no-rule.json"));
  equationReport();
  EXPECT_EQ(fx.status, kEquationHeading + kEquationsPass);
  EXPECT_EQ(fx.log, Lines{"       ### The equations pass all analysis tests"});
  EXPECT_EQ(fx.scratch(), Lines{});
  EXPECT_EQ(runState.analysisProblemsPending, 0);
}

TEST(EquationFindings, EmptyRowsMeetTheActivityRules) {
  RunFixture fx;
  fx.start(modelFile("analysis/empty-rows.json"));
  equationReport();
  EXPECT_EQ(fx.status, kEquationHeading + kMessage.at(15) + firstItem("E") + kMessage.at(19) +
                           firstItem("G") + kMessage.at(17) + firstItem("L"));
  EXPECT_EQ(fx.log, (Lines{kInfeasible, kRedundant}));

  // An empty model passes.
  RunFixture empty;
  empty.start(modelText("{}"));
  equationReport();
  EXPECT_EQ(empty.status, kEquationHeading + kEquationsPass);
}

TEST(EquationFindings, OneExplanationPerRunAndCautionFromTheFirstRowOfARun) {
  RunFixture fx;
  fx.start(modelFile("analysis/runs.json"));
  equationReport();
  EXPECT_EQ(fx.status, kEquationHeading + kMessage.at(4) + firstItem("CAP(a)") +
                           nextItem("CAP(b)") + kMessage.at(8) + kEquationCaution +
                           firstItem("NEED(a)") + nextItem("NEED(b)") + kMessage.at(4) +
                           firstItem("CAP(c)"));
  EXPECT_EQ(fx.log, (Lines{kInfeasible, kRedundant}));
}

TEST(EquationFindings, OnlyFiveOfAKindEnterTheScratchFile) {
  RunFixture fx;
  fx.start(modelFile("analysis/five-of-a-kind.json"));
  equationReport();
  EXPECT_EQ(fx.scratch(), (Lines{" equation", "   CAP(1)", "   CAP(2)", "   CAP(3)", "   CAP(4)",
                                 "   CAP(5)", "   NEED"}));
  EXPECT_EQ(runState.analysisProblemCount, 8);
  // The sixth and seventh are still in the report.
  EXPECT_EQ(fx.status[fx.status.size() - kMessage.at(8).size() - 3], "     " + pad("CAP(7)", 80));
}

TEST(VariableFindings, LimitsObjectiveVariableAndPassLines) {
  RunFixture fx;
  fx.start(modelFile("analysis/objective-pass.json"));
  variableReport();
  EXPECT_EQ(fx.status, kVariableHeading + kVariablesPass);
  EXPECT_EQ(fx.log, Lines{"       ### The variables pass all analysis tests"});
}

TEST(VariableFindings, CautionAndTheCapCountedPerSymbol) {
  RunFixture fx;
  fx.start(modelFile("analysis/relaxing.json"));
  variableReport();
  Lines expected = kVariableHeading + kMessage.at(21) + kVariableCaution;
  for (int k = 1; k <= 7; ++k) expected = expected + nextItem("X(" + std::to_string(k) + ")");
  expected = expected + nextItem("Y(1)") + nextItem("Y(2)");
  EXPECT_EQ(fx.status, expected);
  EXPECT_EQ(fx.log, Lines{kRelaxes});
  EXPECT_EQ(fx.scratch(), (Lines{" variable", "   X(1)", "   X(2)", "   X(3)", "   X(4)", "   X(5)",
                                 "   Y(1)", "   Y(2)"}));
  EXPECT_EQ(runState.analysisProblemCount, 9);
}

TEST(AnalysisScratchFile, SectionWordsFollowTheItemClassAndTheFirstProblemStartsAfresh) {
  RunFixture fx;
  fx.start(modelText("{}"));
  std::fputs("   OLD(1)\n   OLD(2)\n   OLD(3)\n   OLD(4)\n", runState.analysisChannel);
  recordProblem(runState, ItemClass::Variable, "X(a)   ", 21, 0);
  recordProblem(runState, ItemClass::Equation, "E(b)", 4, 0);
  recordProblem(runState, ItemClass::Equation, "E(c)", 5, 0);
  recordProblem(runState, ItemClass::Variable, "Z", 20, 0);
  recordProblem(runState, ItemClass::Variable, "BLOCK", 20, 1);  // block findings are not recorded
  EXPECT_EQ(fx.scratch(), (Lines{" variable", "   X(a)", " equation", "   E(b)", "   E(c)",
                                 " variable", "   Z"}));
  EXPECT_EQ(runState.analysisProblemCount, 4);
  EXPECT_EQ(runState.analysisProblemsPending, 1);

  // A later ANALYSIS of the same run adds to the file without starting it afresh.
  runState.analysisProblemsPending = 0;
  runState.analysisProblemTally.fill(0);
  recordProblem(runState, ItemClass::Variable, "W", 26, 0);
  EXPECT_EQ(fx.scratch().back(), "   W");
  EXPECT_EQ(fx.scratch().size(), 8u);
  EXPECT_EQ(runState.analysisProblemsPending, 0);
}

TEST(PrintFoldedItem, Styles) {
  std::vector<std::string> out;
  Channel ch{nullptr, &out};
  const std::string label = "SUPPLY(SEATTLE,NEWYORK,CHICAGO)";
  printFoldedItem(label, 20, 1, ch);
  printFoldedItem(label, 20, 2, ch);
  printFoldedItem("X", 20, 3, ch);
  printFoldedItem("X", 20, 4, ch);
  printFoldedItem("X", 20, 5, ch);
  EXPECT_EQ(out, (Lines{"", " ##  SUPPLY(SEATTLE,     ", "            NEWYORK,     ",
                        "            CHICAGO)     ", "", "     SUPPLY(SEATTLE,     ",
                        "            NEWYORK,     ", "            CHICAGO)     ",
                        "     X                   ", "     X                   ",
                        "     X                   "}));
  // Wider than 130 folds at 130.
  out.clear();
  const std::string wide = "W(" + std::string(100, 'a') + "," + std::string(40, 'b') + ")";
  printFoldedItem(wide, 200, 5, ch);
  EXPECT_EQ(out, (Lines{"     " + pad("W(" + std::string(100, 'a') + ",", 130),
                        "     " + pad("  " + std::string(40, 'b') + ")", 130)}));
}

// Block tables made by hand: the reports in mode 1.
TEST(BlockFindings, EquationRulesOnSignCodes) {
  // Blocks: 1 =L= all rhs positive, negative terms only: kind 4. 2 the same with mixed signs
  // (-99): nothing. 3 =G= all rhs negative, positive terms only: kind 7. 4 =E= rhs zero with
  // one free term: kind 12 is for single rows only. 5 =E= all rhs positive with only positive
  // terms from bounded columns: the activity rules are off. 6 =L= some negative and the rest
  // zero, positive terms: kind 5.
  std::vector<char> text(31 * 6, ' ');
  std::vector<int32_t> signs(6 * 3 * 3, 0), typeCodes(6, 0);
  std::vector<double> rhsSigns(6, 0.0);
  TextTable names{text.data(), 31, 6};
  Table3<int32_t> sign{signs.data(), 6, 3, 3};
  Vec1<int32_t> types{typeCodes.data(), 6};
  Vec1<double> rhs{rhsSigns.data(), 6};
  const char* blockNames[] = {"CAP", "MIXED", "DEM", "BAL", "FLOW", "LIM"};
  for (int32_t k = 1; k <= 6; ++k) names.set(k, blockNames[k - 1]);
  types[1] = kRowL, rhs[1] = 2, sign(1, 1, 2) = 3;
  types[2] = kRowL, rhs[2] = -99, sign(2, 1, 2) = 3;
  types[3] = kRowG, rhs[3] = -2, sign(3, 1, 1) = 2, sign(3, 1, 3) = 1;
  types[4] = kRowE, rhs[4] = 0, sign(4, 3, 1) = 1;
  types[5] = kRowE, rhs[5] = 2, sign(5, 1, 1) = 4;
  types[6] = kRowL, rhs[6] = -1, sign(6, 2, 2) = 1;
  RunFixture fx;
  fx.start(modelText("{}"));
  reportEquationFindings(runState, 6, names, sign, types, rhs, 1, nullptr, Table2<double>{});
  EXPECT_EQ(fx.status, kEquationHeading + kMessage.at(4) + firstItem(std::string(names.view(1))) +
                           kMessage.at(7) + kEquationCaution +
                           firstItem(std::string(names.view(3))) + kMessage.at(5) +
                           firstItem(std::string(names.view(6))));
  EXPECT_EQ(fx.log, (Lines{kInfeasible, kRedundant}));
  EXPECT_EQ(fx.scratch(), Lines{});
  EXPECT_EQ(runState.analysisProblemCount, 0);
}

TEST(BlockFindings, VariableRulesSkipTheObjectiveBlock) {
  std::vector<char> text(31 * 3, ' ');
  std::vector<int32_t> signs(3 * 4 * 3, 0), bounds(3 * 5, 0);
  TextTable names{text.data(), 31, 3};
  Table3<int32_t> sign{signs.data(), 3, 4, 3};
  Table2<int32_t> bound{bounds.data(), 3, 5};
  const char* blockNames[] = {"OBJVAR", "SHIP", "STOCK"};
  for (int32_t k = 1; k <= 3; ++k) {
    names.set(k, blockNames[k - 1]);
    bound(k, 1) = 1, bound(k, 2) = 0, bound(k, 3) = NO_UPPER, bound(k, 4) = 1, bound(k, 5) = 1;
  }
  sign(2, 4, 1) = 1;  // SHIP: desirable, only + in =G= rows: unbounded
  sign(2, 2, 1) = 4;
  sign(3, 1, 1) = 1;  // STOCK: in an =E= row: held both ways
  RunFixture fx;
  fx.start(modelText("{}"));
  reportVariableFindings(runState, 3, names, sign, bound, 1, 1, nullptr);
  EXPECT_EQ(fx.status, kVariableHeading + kMessage.at(20) + nextItem(std::string(names.view(2))));
  EXPECT_EQ(fx.log, Lines{kUnbounded});
  EXPECT_EQ(fx.scratch(), Lines{});
}

TEST(RunAnalysis, HeadingBothReportsAndScratchFile) {
  RunFixture fx;
  fx.start(modelFile("analysis/run.json"));
  runProcedure(procedureRow(Proc::Analysis), runState);
  EXPECT_TRUE(matchesGolden(fx.status, "analysis/run.status"));
  EXPECT_TRUE(matchesGolden(fx.log, "analysis/run.log"));
  EXPECT_EQ(fx.scratch(), (Lines{" variable", "   X", " equation", "   LIM"}));
  EXPECT_EQ(runState.analysisProblemsPending, 0);
}

}  // namespace
