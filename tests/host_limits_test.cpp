// Input at the edges of what the readers take: GLPK never ends the process, a refusal names the
// error at its own file and line, names never forge a record nor name two items, and bounds at
// the host's infinity are read by one rule.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "golden.h"
#include "host/readers.h"
#include "host_test_files.h"
#include "orva/solve.h"

namespace {

// A model of tests/data/host/limits/, with its data file when one is named.
bool readLimitsModel(ModelFormat format, const std::string& name, const std::string& dataName,
                     HostInstance& inst, std::string& error) {
  const ModelSource source{hostTestData("limits/" + name), format,
                           dataName.empty() ? std::string() : hostTestData("limits/" + dataName), {}};
  return readModel(source, inst, error);
}

}  // namespace

// The cases of tests/data/host/limits-refusals.cases.
TEST(HostLimits, RefusalsNameTheErrorAtItsOwnPlace) {
  const std::string dir = hostTestData("limits");
  for (const FileCase& c : readCases("host/limits-refusals.cases")) {
    const std::vector<std::string> files = splitLines(c.text);
    SCOPED_TRACE(files[0]);
    ModelFormat format = ModelFormat::Json;
    ASSERT_TRUE(formatFromExtension(files[0], format));
    HostInstance inst;
    std::string error;
    EXPECT_FALSE(readLimitsModel(format, files[0], files.size() > 1 ? files[1] : "", inst, error));
    EXPECT_EQ(error, substitute(c.expected, {{"LIMITS", dir}}));
  }
}

// What GLPK alone could not survive: nesting deeper than its stack, a path longer than its
// message buffer.
TEST(HostLimits, DeepNestingAndLongPathsAreRead) {
  HostScratch s;
  std::string parentheses(20000, '('), conditions;
  parentheses += "x" + std::string(20000, ')');
  for (int k = 0; k < 5000; ++k) conditions += "if 1 then ";
  conditions += "x";
  for (int k = 0; k < 5000; ++k) conditions += " else 0";
  for (const std::string& expr : {parentheses, conditions}) {
    HostInstance inst;
    ASSERT_TRUE(hostRead({s.write("deep.mod", "var x;\nminimize o: " + expr + ";\nend;\n"),
                          ModelFormat::MathProg, "", {}}, inst));
    EXPECT_EQ(hostItemNames(inst, true), std::vector<std::string>{"o"});
  }

  std::filesystem::path dir = s.dir;
  while (dir.string().size() < 4000) dir /= std::string(250, 'd');
  std::filesystem::create_directories(dir);
  const std::string path = (dir / "m.lp").string();
  std::ofstream(path) << "minimize\n obj: x\nsubject to\n c1: x >= 1 +\nend\n";
  HostInstance inst;
  std::string error;
  EXPECT_FALSE(readModel({path, ModelFormat::Lp, {}, {}}, inst, error));
  EXPECT_EQ(error, path + ":4: invalid symbol(s) beyond right-hand side");
}

// The converted instance never holds two rows of one name: names from the file keep theirs,
// names the host makes give way, and of two equal names in the file the later one gives way.
TEST(HostLimits, CollidingNamesAreMadeDistinct) {
  struct Case {
    ModelFormat format;
    std::string name;  // a file of tests/data/host/limits/
    std::vector<std::string> rows;
  };
  const std::vector<Case> cases = {
      {ModelFormat::MathProg, "c.mod", {"band_lo", "band_lo_", "band_up", "r17", "r(17)"}},
      {ModelFormat::Lp, "c.lp", {"obj", "obj_", "r"}},
      // Labels that the dictionary cuts to one text (found by the fuzzer).
      {ModelFormat::MathProg, "cut.mod",
       {"c(" + std::string(64, 'a') + ")", "c_(" + std::string(64, 'a') + ")"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    HostInstance inst;
    std::string error;
    ASSERT_TRUE(readLimitsModel(c.format, c.name, "", inst, error)) << error;
    EXPECT_EQ(hostItemNames(inst, true), c.rows);
  }
}

TEST(HostLimits, BoundsAtTheHostsInfinityAreInfinite) {
  HostScratch s;
  HostInstance inst;
  ASSERT_TRUE(hostRead({s.write("b.json", R"({"cols": [{"name": "x", "lower": -4e300, "upper": 3e300},
    {"name": "y", "lower": -1e299, "upper": 1e299}]})"), ModelFormat::Json, "", {}}, inst));
  EXPECT_EQ(inst.colLower, (std::vector<double>{-kHostInf, -1e299}));
  EXPECT_EQ(inst.colUpper, (std::vector<double>{kHostInf, 1e299}));
}

// Coefficients whose scale factors GLPK refuses: the solve goes on without scaling.
TEST(HostLimits, SolveGoesOnWhereGlpkRefusesScaleFactors) {
  HostScratch s;
  HostInstance inst;
  ASSERT_TRUE(hostRead({s.write("sc.json", R"({"objVar": "z", "objRow": "obj", "rows": [
    {"name": "r", "type": "G", "rhs": 1}, {"name": "obj", "type": "E"}], "cols": [
    {"name": "x", "entries": [["r", 1e300]]}, {"name": "y", "entries": [["r", 1e-300], ["obj", 1]]},
    {"name": "z", "lower": "-inf", "entries": [["obj", -1]]}]})"), ModelFormat::Json, "", {}}, inst));
  HostSolution solution;
  EXPECT_EQ(orvaSolveInstance(inst, OrvaSolveSettings{}, solution), "");
  EXPECT_EQ(solution.modelStat, kStatOptimal);
  EXPECT_EQ(solution.colLevel[2], 0.0);
}
