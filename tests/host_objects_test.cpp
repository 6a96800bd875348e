// The host's model, environment, dictionary and audit objects; control and solution files.
#include <gtest/gtest.h>

#include "host/control_file.h"
#include "host/host.h"
#include "host/readers.h"
#include "host/solution_file.h"
#include "golden.h"
#include "host_test_files.h"

namespace {

HostInstance threeByFour() {
  HostInstance in;
  EXPECT_TRUE(hostReadTestModel("three-by-four.json", in));
  return in;
}

TEST(HostModel, SizesSenseAndInfinities) {
  ovmHandle m = ovmCreateFromInstance(threeByFour());
  ASSERT_NE(m, nullptr);
  EXPECT_EQ(ovmM(m), 3);
  EXPECT_EQ(ovmN(m), 4);
  EXPECT_EQ(ovmNZ(m), 5);
  EXPECT_EQ(ovmNLN(m), 1);
  EXPECT_EQ(ovmObjVar(m), 4);
  EXPECT_EQ(ovmObjRow(m), 3);
  EXPECT_GT(ovmSense(m), 0);
  EXPECT_EQ(ovmScaleOpt(m), 0);
  EXPECT_EQ(ovmGetVarScaleOne(m, 1), 1.0);
  ovmPinfSet(m, 3e+300);
  ovmMinfSet(m, 4e+300);
  EXPECT_EQ(ovmGetVarUpperOne(m, 1), 3e+300);
  EXPECT_EQ(ovmGetVarLowerOne(m, 3), 4e+300);
  EXPECT_EQ(ovmGetVarUpperOne(m, 3), 5);
  EXPECT_EQ(ovmGetVarLowerOne(m, 4), 2);
  EXPECT_EQ(ovmGetVarTypeOne(m, 2), kVarBinary);
  EXPECT_EQ(ovmGetEquTypeOne(m, 2), kRowG);
  EXPECT_EQ(ovmGetRhsOne(m, 3), 4);
  // Index base 0 shifts every index by one.
  ovmIndexBaseSet(m, 0);
  EXPECT_EQ(ovmObjVar(m), 3);
  EXPECT_EQ(ovmGetEquTypeOne(m, 1), kRowG);
  EXPECT_EQ(ovmGetVarUpperOne(m, 2), 5);
  ovmFree(m);
  EXPECT_EQ(m, nullptr);

  HostInstance minimizing = threeByFour();
  minimizing.minimizing = true;
  minimizing.objVar = 0;
  m = ovmCreateFromInstance(minimizing);
  EXPECT_EQ(ovmSense(m), 0);
  EXPECT_EQ(ovmObjVar(m), ovmValNAInt(m));
  ovmFree(m);
}

TEST(HostModel, ColumnCursorWalk) {
  ovmHandle m = ovmCreateFromInstance(threeByFour());
  int32_t cursor = 0, row = 0, nonlinear = 0;
  double value = 0;
  ovmGetColJacInfoOne(m, 1, cursor, value, row, nonlinear);
  EXPECT_EQ(row, 1);
  EXPECT_EQ(value, 1.5);
  EXPECT_EQ(cursor, 1);
  ovmGetColJacInfoOne(m, 1, cursor, value, row, nonlinear);
  EXPECT_EQ(row, 2);
  EXPECT_EQ(value, -2);
  EXPECT_EQ(cursor, 0);  // back to 0 with the last entry
  // An empty column gives a row under 1 at once.
  cursor = 0;
  ovmGetColJacInfoOne(m, 2, cursor, value, row, nonlinear);
  EXPECT_LT(row, 1);
  EXPECT_EQ(cursor, 0);
  cursor = 0;
  ovmGetColJacInfoOne(m, 3, cursor, value, row, nonlinear);
  EXPECT_EQ(nonlinear, 0);
  ovmGetColJacInfoOne(m, 3, cursor, value, row, nonlinear);
  EXPECT_EQ(row, 3);
  EXPECT_EQ(value, 4);
  EXPECT_GT(nonlinear, 0);
  EXPECT_EQ(cursor, 0);
  ovmFree(m);
}

TEST(HostModel, JacobianAtAPointGivesTheStoredDerivatives) {
  HostInstance in = threeByFour();
  in.entryNonlinear = {0, 1, 0, 1, 0};  // rows 2 and 3 are nonlinear
  ovmHandle m = ovmCreateFromInstance(in);
  oveEvaluator ev = nullptr;
  ASSERT_EQ(oveInitJacLegacy(nullptr, ev, m), 0);
  const double point[4] = {1, 0, 2, 10};
  ASSERT_EQ(oveEvalNewPointLegacy(nullptr, ev, point), 0);
  EXPECT_EQ(oveNextNLLegacy(nullptr, ev, 4), 2);
  std::vector<double> values(5, 0.0);
  double value = 0;
  int32_t errors = -1, extra = -1;
  ASSERT_EQ(oveEvalJacLegacy(nullptr, ev, 2, point, value, values.data(), errors, extra), 0);
  EXPECT_EQ(errors, 0);
  EXPECT_EQ(values, (std::vector<double>{0, -2, 3, 0, 0}));
  EXPECT_EQ(value, -2 * 1 + 3 * 2);
  EXPECT_EQ(oveNextNLLegacy(nullptr, ev, 2), 3);
  ASSERT_EQ(oveEvalJacLegacy(nullptr, ev, 3, point, value, values.data(), errors, extra), 0);
  EXPECT_EQ(values, (std::vector<double>{0, -2, 3, 4, -1}));
  EXPECT_EQ(oveNextNLLegacy(nullptr, ev, 3), -1);
  EXPECT_NE(oveEvalJacLegacy(nullptr, ev, 9, point, value, values.data(), errors, extra), 0);
  EXPECT_GT(errors, 0);
  // A second initialisation gives the same evaluator back, ready.
  oveEvaluator again = nullptr;
  ASSERT_EQ(oveInitJacLegacy(nullptr, again, m), 0);
  EXPECT_EQ(again, ev);
  EXPECT_EQ(oveNextNLLegacy(nullptr, again, 4), 2);
  ovmFree(m);
}

TEST(HostModel, AuditLine) {
  ovpHandle audit = nullptr;
  std::string message;
  ASSERT_TRUE(ovpXCreate(audit, message));
  ovpSetSystemName(audit, "MODRAKE-B 1.3");
  const std::string line = ovpGetAuditLine(audit);
  EXPECT_EQ(line.rfind("MODRAKE-B 1.3 on ORVA stand-in host 1.0 (GLPK ", 0), 0u) << line;
  EXPECT_LE(line.size(), 75u);
  ovpFree(audit);
}

TEST(HostControlFile, EntriesAndRefusals) {
  HostScratch scratch;
  HostOptions options;
  std::string error;
  // A comment, a blank line, a key in lower case with blanks around the value, an empty value.
  ASSERT_TRUE(readHostControlFile(hostTestData("good.ctl"), options, error)) << error;
  ASSERT_EQ(options.size(), 5u);
  EXPECT_EQ(options[0], (std::pair<std::string, std::string>{"NameStaFile", "/tmp/x.sta"}));
  EXPECT_EQ(options[1], (std::pair<std::string, std::string>{"PageWidth", "130"}));
  EXPECT_EQ(options[2].second, "");

  for (const FileCase& c : readCases("host/control-refusals.cases")) {
    const std::string path = scratch.write("bad.ctl", c.text);
    EXPECT_FALSE(readHostControlFile(path, options, error));
    EXPECT_EQ(error, path + c.expected);
  }
  EXPECT_FALSE(readHostControlFile(scratch.path("none.ctl"), options, error));
  EXPECT_EQ(error, scratch.path("none.ctl") + ": cannot open the control file");

  // The environment keeps the reason and says it on standard error.
  const std::string bad = scratch.write("env.ctl", "PageWidth = 80\nNoSuchEntry = 1\n");
  oveHandle env = nullptr;
  std::string message;
  ASSERT_TRUE(oveXCreate(env, message));
  testing::internal::CaptureStderr();
  EXPECT_NE(oveInitEnvironmentLegacy(env, bad), 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), bad + ":2: unknown entry \"NoSuchEntry\"\n");
  EXPECT_EQ(oveLastError(env), bad + ":2: unknown entry \"NoSuchEntry\"");
  oveFree(env);
}

TEST(HostControlFile, WrittenFileReadsBack) {
  HostScratch scratch;
  const HostOptions options = {{kOptNameStaFile, scratch.path("t.sta")},
                               {kOptPageWidth, "132"},
                               {kOptModelFile, "a b.mod"}};
  std::string error;
  const std::string path = scratch.path("t.ctl");
  ASSERT_TRUE(writeHostControlFile(path, options, error)) << error;
  HostOptions back;
  ASSERT_TRUE(readHostControlFile(path, back, error)) << error;
  EXPECT_EQ(back, options);
  EXPECT_FALSE(writeHostControlFile(path, {{"Colour", "red"}}, error));
  EXPECT_FALSE(writeHostControlFile(path, {{kOptInputName, "a\nb"}}, error));
}

// The environment, model and dictionary objects of a run, freed at the end of the test.
struct HostLoad : ::testing::Test {
  HostScratch scratch;
  oveHandle env = nullptr;
  ovmHandle m = nullptr;
  ovdHandle d = nullptr;
  std::string message;
  void SetUp() override {
    ASSERT_TRUE(oveXCreate(env, message));
    ASSERT_TRUE(ovmXCreate(m, message));
    ASSERT_TRUE(ovdXCreate(d, message));
  }
  void TearDown() override {
    ovdFree(d);
    ovmFree(m);
    oveFree(env);
  }
};

// A run as modrake starts it: environment from a control file, model and dictionary loaded,
// and the solution of small-integer.sol, whose names are checked against the model's.
TEST_F(HostLoad, ModelDictionaryStatusAndSolutionThroughTheControlFile) {
  const std::string dir = scratch.dir.string() + "/";
  const std::string control = scratch.write(
      "run.ctl", "NameStaFile = " + dir + "small.sta\nNameScrDir = " + dir +
                     "\nNameScrExt = scr\nPageWidth = 90\nModelFile = " +
                     hostTestData("small.json") + "\nInputName = plan\nSolutionFile = " +
                     hostTestData("small-integer.sol") + "\n");
  ASSERT_EQ(oveInitEnvironmentLegacy(env, control), 0) << oveLastError(env);
  EXPECT_EQ(oveGetIntOpt(env, "PageWidth"), 90);
  EXPECT_EQ(oveGetIntOpt(env, "PageSize"), 0);
  EXPECT_EQ(oveGetStrOpt(env, "NameScrExt"), "scr");
  EXPECT_EQ(oveGetStrOpt(env, "NameWrkDir"), "");
  ASSERT_EQ(ovmRegisterEnvironment(m, env, message), 0);
  ASSERT_EQ(ovmLoadDataLegacy(m, message), 0) << message;
  ovmIndexBaseSet(m, 1);
  EXPECT_EQ(ovmM(m), 9);
  EXPECT_EQ(ovmNameInput(m), "plan");

  ASSERT_EQ(ovdLoadEx(d, ovmNameDict(m), message), 0) << message;
  EXPECT_EQ(ovdNLSyms(d), 12);
  int32_t symbol = 0, dim = 0, uels[10];
  ASSERT_EQ(ovdColUels(d, 3, symbol, uels, dim), 0);
  EXPECT_EQ(ovdSymName(d, symbol), "x");
  EXPECT_EQ(dim, 2);

  // Before the load the reads give the instance's own values, afterwards the solution's.
  EXPECT_EQ(ovmGetVarLOne(m, 8), 0.0);
  ASSERT_EQ(ovmLoadSolutionLegacy(m), 0);
  EXPECT_EQ(ovmModelStat(m), kStatIntegerSolution);
  EXPECT_EQ(ovmSolveStat(m), 3);
  EXPECT_EQ(ovmGetVarLOne(m, 8), 1.0 / 3.0);
  EXPECT_EQ(ovmGetVarStatOne(m, 8), 3);
  EXPECT_EQ(ovmGetVarCStatOne(m, 1), 1);
  EXPECT_EQ(ovmGetEquLOne(m, 9), 1.25);
  EXPECT_EQ(ovmGetEquMOne(m, 1), -0.5);

  // Statuses handed back land in the scratch folder.
  ovmSolveStatSet(m, 1);
  ovmModelStatSet(m, 14);
  EXPECT_EQ(readFile(dir + "ovmstat.scr"), "solveStat 1\nmodelStat 14\n");
  EXPECT_EQ(ovmModelStat(m), 14);
}

TEST_F(HostLoad, FailuresGiveAMessage) {
  EXPECT_NE(ovmLoadDataLegacy(m, message), 0);
  EXPECT_EQ(message, "the model object has no environment");
  ASSERT_EQ(ovmRegisterEnvironment(m, env, message), 0);
  const std::string bad = scratch.write("bad.json", "{\"rows\": [\n {\"name\": 5}]}");
  ASSERT_EQ(oveInitEnvironmentLegacy(env, scratch.write("a.ctl", "ModelFile = " + bad + "\n")), 0);
  EXPECT_NE(ovmLoadDataLegacy(m, message), 0);
  EXPECT_EQ(message, bad + ":2: \"name\" must be a non-empty string");
  ASSERT_EQ(oveInitEnvironmentLegacy(env, scratch.write("b.ctl", "ModelFile = model\n")), 0);
  EXPECT_NE(ovmLoadDataLegacy(m, message), 0);
  EXPECT_EQ(message, "model: the model format cannot be told from the file name");
  // Without a solution file or a solution in the instance there is nothing to load.
  ASSERT_EQ(oveInitEnvironmentLegacy(
                env, scratch.write("c.ctl", "ModelFile = " + hostTestData("small.lp") + "\n")),
            0);
  ASSERT_EQ(ovmLoadDataLegacy(m, message), 0) << message;
  EXPECT_NE(ovmLoadSolutionLegacy(m), 0);
  // A dictionary name nobody loaded is read from the file it names.
  ASSERT_EQ(ovdLoadEx(d, hostTestData("small.mps"), message), 0) << message;
  EXPECT_EQ(ovdNLSyms(d), 12);
  EXPECT_NE(ovdLoadEx(d, scratch.path("nothing"), message), 0);
  EXPECT_EQ(message, scratch.path("nothing") + ": no dictionary of that name");
}

TEST(HostSolutionFile, RefusalsNameFileAndLine) {
  HostScratch scratch;
  HostInstance in;
  ASSERT_TRUE(hostReadTestModel("small.json", in));
  std::string error;
  HostSolution solution;
  std::string ok = "* hand made\nmodelStat 1\nrows 9\ncols 8\n";
  for (int i = 1; i <= 9; ++i) ok += "row " + std::to_string(i) + " 0 0 2 0\n";
  for (int j = 1; j <= 8; ++j) ok += "col " + std::to_string(j) + " 0 0 2 0\n";
  ASSERT_TRUE(readSolutionFile(scratch.write("ok.sol", ok), in, solution, error)) << error;
  EXPECT_EQ(solution.modelStat, 1);
  EXPECT_EQ(solution.solveStat, 1);

  for (const FileCase& c : readCases("host/solution-refusals.cases")) {
    const std::string path = scratch.write("bad.sol", c.text);
    EXPECT_FALSE(readSolutionFile(path, in, solution, error)) << c.text;
    EXPECT_EQ(error, path + c.expected);
  }
}

TEST(HostSolutionFile, WrittenSolutionReadsBackExactly) {
  HostScratch scratch;
  HostInstance in;
  ASSERT_TRUE(hostReadTestModel("small.mod", in));
  std::string error;
  HostSolution out;
  out.modelStat = kStatOptimal;
  out.solveStat = 1;
  for (int32_t i = 0; i < in.rowCount; ++i) {
    out.rowLevel.push_back(0.1 * i + 1e-17);
    out.rowMarginal.push_back(-1.0 / (i + 3));
    out.rowStat.push_back(i % 4);
    out.rowCStat.push_back(0);
  }
  for (int32_t j = 0; j < in.colCount; ++j) {
    out.colLevel.push_back(1e10 / (j + 7));
    out.colMarginal.push_back(j);
    out.colStat.push_back(2);
    out.colCStat.push_back(j % 4);
  }
  const std::string path = scratch.path("s.sol");
  ASSERT_TRUE(writeSolutionFile(path, in, out, error)) << error;
  HostSolution back;
  ASSERT_TRUE(readSolutionFile(path, in, back, error)) << error;
  EXPECT_EQ(back.rowLevel, out.rowLevel);
  EXPECT_EQ(back.rowMarginal, out.rowMarginal);
  EXPECT_EQ(back.rowStat, out.rowStat);
  EXPECT_EQ(back.colLevel, out.colLevel);
  EXPECT_EQ(back.colMarginal, out.colMarginal);
  EXPECT_EQ(back.colCStat, out.colCStat);
  applySolution(in, back);
  EXPECT_TRUE(in.hasSolution);
  EXPECT_EQ(in.modelStat, kStatOptimal);
  EXPECT_EQ(in.colLevel, out.colLevel);
}

}  // namespace
