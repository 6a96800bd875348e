// AMPL .nl models: the structure and nonlinear marks read from the file, the derivatives at the
// file's own point and at a .sol solution worked out by hand, the evaluator against finite
// differences on every bundled .nl model, and the faults of .nl, .row/.col and .sol files.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <sstream>

#include "host/host.h"
#include "host/instance_file.h"
#include "host/nl_evaluator.h"
#include "host/readers.h"
#include "host/solution_file.h"
#include "golden.h"
#include "host_test_files.h"
#include "orva_run.h"

namespace fs = std::filesystem;

namespace {

const std::string kBlend = std::string(SOURCE_DIR) + "/examples/nonlinear/blend";

HostInstance readNl(const std::string& path) {
  HostInstance inst;
  EXPECT_TRUE(hostRead({path, ModelFormat::Nl, "", {}}, inst));
  return inst;
}

// Every entry as "column row value" with " nl" for a nonlinear mark, column by column, through
// ovmGetColJacInfoOne.
std::vector<std::string> entryWalk(const HostInstance& inst, const std::vector<double>* values) {
  ovmHandle model = ovmCreateFromInstance(inst);
  std::vector<std::string> out;
  for (int32_t j = 1; j <= ovmN(model); ++j) {
    int32_t cursor = 0, row = 0, nonlinear = 0;
    double value = 0.0;
    do {
      ovmGetColJacInfoOne(model, j, cursor, value, row, nonlinear);
      if (row < 1) break;
      const auto k = static_cast<std::size_t>(out.size());
      std::ostringstream line;
      line.precision(17);
      line << hostColName(inst, j - 1) << " " << hostRowName(inst, row - 1) << " "
           << (values ? (*values)[k] : value) << (nonlinear > 0 ? " nl" : "");
      out.push_back(line.str());
    } while (cursor != 0);
  }
  ovmFree(model);
  return out;
}

// The matrix re-evaluated at `point` through the four evaluator operations, as MODRAKE walks
// them: the stored values, then every nonlinear row's derivatives written at their places.
bool evaluateAt(ovmHandle model, const std::vector<double>& point, std::vector<double>& values) {
  const HostInstance& inst = ovmInstance(model);
  values = inst.entryValue;
  oveEvaluator ev = nullptr;
  if (oveInitJacLegacy(nullptr, ev, model) != 0) return false;
  if (oveEvalNewPointLegacy(nullptr, ev, point.data()) != 0) return false;
  for (int32_t row = oveNextNLLegacy(nullptr, ev, ovmM(model) + 1); row != -1;
       row = oveNextNLLegacy(nullptr, ev, row)) {
    double value = 0.0;
    int32_t errors = 0, extra = 0;
    if (oveEvalJacLegacy(nullptr, ev, row, point.data(), value, values.data(), errors, extra) != 0 ||
        errors > 0)
      return false;
  }
  return true;
}

}  // namespace

// blendb.nl is blend.nl in the binary form: the same model, read the same way. The file's point
// is x[1] = 1, x[2] = 3 and y = 0 (not given). cost = x1^2 + x2^2 + 3y, band = x1 x2 + y in
// [4, 8], curve = log(x1) + x2 >= 1, cap = x1 + x2 + y <= 10.
TEST(NlModel, RowsColumnsAndDerivativesAtTheFilesPointWorkedOutByHand) {
  for (const std::string form : {"", "b"}) {
    SCOPED_TRACE(form);
    const HostInstance inst = readNl(kBlend + form + ".nl");
    EXPECT_TRUE(matchesGolden(entryWalk(inst, nullptr), "host/blend-file-point.entries"));
    EXPECT_TRUE(matchesGolden(splitLines(hostDescribe(inst)), "host/blend.instance"));
    EXPECT_EQ(hostNonlinearCount(inst), 7);
    EXPECT_EQ(inst.rowNlItem, (std::vector<int32_t>{-1, 0, 0, 1, 2}));
  }
}

// The binary form cut short or spoiled: segment, byte offset and reason. blendb.nl has the
// 481 bytes of the text header, then C0 at 481 (v1's number at 497), x at 582, r at 611 (its
// first bound code at 612), J0 at 696 (its first pair at 705, the third at 729), and after G0 a
// suffix segment at 864, S, kind 0, count 2, the name's length 7 at 873, the name at 877.
TEST(NlModel, FaultsOfTheBinaryFormAreToldWithByteAndReason) {
  const std::string bytes = readFile(kBlend + "b.nl");
  ASSERT_EQ(bytes.size(), 900u);
  const struct {
    std::size_t at;
    std::string patch;  // written at `at`; empty: the file cut there
    std::string message;  // after "DIR/m.nl: byte "
  } cases[] = {
      {497, std::string("\x09\0\0\0", 4), "496: variable v9 is neither a variable nor defined before"},
      {582, "Z", "582: \"Z\" begins no segment of a .nl file"},
      {582, "\n", "582: \"\\n\" begins no segment of a .nl file"},  // shown, never written raw
      {612, "7", "612: expected a bound code from 0 to 4 and its values"},
      {697, "", "696: expected J, a constraint number and a count (the file ends there)"},
      {735, "", "729: expected an index below 3 and a number (the file ends there)"},
      {729, "", "729: the file ends before the end of the segment that begins at byte 696"},
      {880, "", "864: expected S, a suffix kind, a count and a name (the file ends there)"},
      {873, std::string("\xff\0\0\0", 4),
       "864: expected S, a suffix kind, a count and a name (the file ends there)"},
  };
  // Cut anywhere, the file is refused, but for the cut before the suffix segment, which leaves
  // blend.nl whole; and never read past its end (the sanitizer build), not even when the cut
  // takes the break of the header's last line.
  HostScratch cuts;
  for (std::size_t cut = 1; cut < bytes.size(); ++cut) {
    HostInstance inst;
    std::string error;
    const std::string path = cuts.write("m.nl", bytes.substr(0, cut));
    EXPECT_EQ(readModel({path, ModelFormat::Nl, "", {}}, inst, error), cut == 864) << cut;
  }
  for (const auto& c : cases) {
    SCOPED_TRACE(c.message);
    HostScratch scratch;
    std::string text = bytes;
    if (c.patch.empty()) text.resize(c.at);
    else text.replace(c.at, c.patch.size(), c.patch);
    const std::string path = scratch.write("m.nl", text);
    HostInstance inst;
    std::string error;
    EXPECT_FALSE(readModel({path, ModelFormat::Nl, "", {}}, inst, error));
    EXPECT_EQ(error, path + ": byte " + c.message);
  }
}

TEST(NlModel, WithoutRowAndColFilesNamesFollowTheFilesGroups) {
  HostScratch scratch;
  const HostInstance inst = readNl(scratch.write("blend.nl", readFile(kBlend + ".nl")));
  // Nonlinear constraints nc, linear c, objectives o; nonlinear variables nv, linear v.
  EXPECT_EQ(hostItemNames(inst, true),
            (std::vector<std::string>{"o(1)", "nc_lo(1)", "nc_up(1)", "nc(2)", "c(3)"}));
  EXPECT_EQ(hostItemNames(inst, false), (std::vector<std::string>{"nv(1)", "nv(2)", "v(3)", "objvar"}));
}

TEST(NlModel, SolutionFromSolFileAndDerivativesThereWorkedOutByHand) {
  // orva hands the model and the solution over; the evaluator reads the copy of the .nl file
  // in the scratch folder.
  HostScratch scratch;
  const RunResult r = runOrva(scratch.dir, {kBlend + ".nl", "--solution", kBlend + ".sol", "--no-solve",
                                            "--keep-scratch", scratch.path("run")});
  ASSERT_EQ(r.status, 0) << r.err;
  HostInstance inst;
  std::string error;
  ASSERT_TRUE(loadInstanceFile(scratch.path("run/orvainst.scr"), inst, error)) << error;
  EXPECT_EQ(inst.nlFile, scratch.path("run/") + "orvamodel.nl");
  // At x = (2, 2, 0): cost 8; band 4 binds below with dual 2; y's reduced cost 3 - 2 = 1.
  EXPECT_EQ(inst.modelStat, kStatLocallyOptimal);
  EXPECT_EQ(inst.solveStat, 1);
  EXPECT_EQ(inst.colLevel, (std::vector<double>{2, 2, 0, 8}));
  EXPECT_EQ(inst.colMarginal, (std::vector<double>{0, 0, 1, 0}));
  EXPECT_EQ(inst.colStat, (std::vector<int32_t>{2, 2, 0, 2}));
  EXPECT_EQ(inst.rowMarginal, (std::vector<double>{-1, 2, 0, 0, 0}));
  EXPECT_EQ(inst.rowLevel, (std::vector<double>{0, 4, 4, std::log(2.0) + 2, 4}));
  EXPECT_EQ(inst.rowStat, (std::vector<int32_t>{0, 0, 2, 2, 2}));
  EXPECT_EQ(inst.rowCStat, (std::vector<int32_t>{0, 0, 0, 0, 0}));

  ovmHandle model = ovmCreateFromInstance(inst);
  std::vector<double> values;
  ASSERT_TRUE(evaluateAt(model, inst.colLevel, values));
  EXPECT_TRUE(matchesGolden(entryWalk(inst, &values), "host/blend-solution.entries"));

  // log(x[1]) at x[1] = -1: the row fails, and the library prints nothing.
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  oveEvaluator ev = nullptr;
  ASSERT_EQ(oveInitJacLegacy(nullptr, ev, model), 0);
  const std::vector<double> outside = {-1, 2, 0, 0};
  double value = 0.0;
  int32_t errors = 0, extra = 0;
  const int curve = 4;
  EXPECT_NE(oveEvalJacLegacy(nullptr, ev, curve, outside.data(), value, values.data(), errors, extra), 0);
  EXPECT_GT(errors, 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  ovmFree(model);
}

TEST(NlModel, BlocklistOfTheBundledModelCountsNonlinearEntriesAtTheFilesPoint) {
  HostScratch scratch;
  const RunResult r = runOrva(scratch.dir, {kBlend + ".nl", "--solution", kBlend + ".sol"});
  ASSERT_EQ(r.status, 0) << r.err;
  // The derivatives at x = (1, 3, 0): cost (2, 6, 3, -1), band (3, 1, 1), curve (1, 1).
  const std::vector<std::string> lines = readLines(scratch.path("blend.lst"));
  EXPECT_TRUE(containsGolden(lines, "orva/blend-variable-blocks.part"));
  EXPECT_TRUE(containsGolden(lines, "orva/blend-equation-blocks.part"));
}

TEST(NlModel, EvaluatorAgreesWithFiniteDifferencesOnEveryBundledModel) {
  int models = 0, derivatives = 0;
  for (const auto& file : fs::recursive_directory_iterator(std::string(SOURCE_DIR) + "/examples")) {
    if (file.path().extension() != ".nl") continue;
    SCOPED_TRACE(file.path().string());
    ++models;
    const HostInstance inst = readNl(file.path().string());
    ovmHandle model = ovmCreateFromInstance(inst);
    oveEvaluator ev = nullptr;
    ASSERT_EQ(oveInitJacLegacy(nullptr, ev, model), 0);
    const int32_t vars = inst.colCount - (inst.objVar > 0 ? 1 : 0);
    // Two points inside the domain of every bundled model (all values above 0).
    std::vector<double> start(static_cast<std::size_t>(inst.colCount)), values;
    for (int32_t j = 0; j < inst.colCount; ++j) start[j] = 1.0 + 0.5 * j;
    std::vector<double> scratch(inst.entryValue);
    for (double shift : {0.0, 0.75}) {
      std::vector<double> point(start);
      for (double& p : point) p += shift;
      ASSERT_TRUE(evaluateAt(model, point, values));
      for (int32_t row = oveNextNLLegacy(nullptr, ev, inst.rowCount + 1); row != -1;
           row = oveNextNLLegacy(nullptr, ev, row)) {
        for (int32_t j = 0; j < vars; ++j)
          for (int32_t k = inst.colStart[j]; k < inst.colStart[j + 1]; ++k) {
            if (inst.entryRow[k] != row - 1) continue;
            const double h = 1e-6 * std::max(1.0, std::fabs(point[j]));
            double up = 0.0, down = 0.0;
            int32_t errors = 0, extra = 0;
            std::vector<double> p(point);
            p[j] = point[j] + h;
            oveEvalJacLegacy(nullptr, ev, row, p.data(), up, scratch.data(), errors, extra);
            p[j] = point[j] - h;
            oveEvalJacLegacy(nullptr, ev, row, p.data(), down, scratch.data(), errors, extra);
            ++derivatives;
            EXPECT_NEAR((up - down) / (2 * h), values[k], 1e-6 * std::max(1.0, std::fabs(values[k])))
                << "row " << hostRowName(inst, row - 1) << ", column " << hostColName(inst, j);
          }
      }
    }
    ovmFree(model);
  }
  EXPECT_GT(models, 0);
  EXPECT_GT(derivatives, 4 * models);
}

// The cases of tests/data/host/nl-refusals.cases, and a name with a control character.
TEST(NlModel, FaultsOfNlRowColAndSolFilesAreToldWithFileLineAndReason) {
  std::vector<FileCase> cases = readCases("host/nl-refusals.cases");
  cases.push_back({"col:2: the name \"x\\x01\" holds a control character (code 1)", "x[1]\nx\x01\ny\n"});
  const std::vector<std::string> nl = readLines(kBlend + ".nl");
  for (const FileCase& c : cases) {
    SCOPED_TRACE(c.expected);
    HostScratch scratch;
    const std::string file = c.expected.substr(0, c.expected.find(':'));
    std::string text;
    if (file == "nl") {
      // "LINE TEXT": line LINE replaced by TEXT, or the file cut after it when TEXT is "cut".
      const std::size_t blank = c.text.find(' ');
      const std::size_t line = std::stoul(c.text.substr(0, blank));
      const std::string replacement = c.text.substr(blank + 1, c.text.size() - blank - 2);
      for (std::size_t n = 1; n <= nl.size(); ++n) {
        text += (n == line && replacement != "cut" ? replacement : nl[n - 1]) + "\n";
        if (n == line && replacement == "cut") break;
      }
    } else {
      text = readFile(kBlend + ".nl");
      scratch.write("m." + file, c.text);
      if (file == "sol") scratch.write("m.col", readFile(kBlend + ".col"));
    }
    const std::string path = scratch.write("m.nl", text);
    HostInstance inst;
    std::string error;
    const bool read = readModel({path, ModelFormat::Nl, "", {}}, inst, error);
    if (file == "sol") {
      ASSERT_TRUE(read) << error;
      HostSolution solution;
      EXPECT_FALSE(readNlSolutionFile(scratch.path("m.sol"), inst, solution, error));
    } else {
      EXPECT_FALSE(read);
    }
    EXPECT_EQ(error, scratch.path("m.") + c.expected);
  }
}

TEST(NlModel, TheLibrarysOwnExitAndMessagesStayInTheChild) {
  // A file that the library cannot read: it would print and end the process.
  HostScratch scratch;
  const std::string path = scratch.write("junk.nl", "g3 1 1 0\n 1 1\n");
  std::vector<NlAnswer> answers;
  std::string error;
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  EXPECT_FALSE(nlEvaluateInChild(path, {0.0}, {{0, {0}}}, answers, error));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(error.rfind(path + ": the AMPL solver library could not read the model", 0), 0u) << error;
}

TEST(NlModel, SolveResultCodesBecomeModelAndSolveStatus) {
  struct Case {
    int32_t code;
    bool nonlinear;
    int32_t model, solve;
  };
  const Case cases[] = {
      {0, true, kStatLocallyOptimal, 1},      {0, false, kStatOptimal, 1},
      {99, true, kStatLocallyOptimal, 1},     {150, true, kStatIntermediateNonoptimal, 1},
      {200, true, kStatLocallyInfeasible, 1}, {250, false, kStatInfeasible, 1},
      {300, true, kStatUnbounded, 1},         {410, true, kStatIntermediateNonoptimal, 3},
      {520, true, kStatErrorNoSolution, 4},   {600, true, kStatErrorUnknown, 4},
      {-1, false, kStatErrorUnknown, 4},
  };
  for (const Case& c : cases) {
    int32_t solve = 0;
    EXPECT_EQ(nlModelStatus(c.code, c.nonlinear, solve), c.model) << c.code;
    EXPECT_EQ(solve, c.solve) << c.code;
  }
}
