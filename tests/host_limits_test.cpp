// Input at the edges of what the readers take: GLPK never ends the process, a refusal names the
// error at its own file and line, names never forge a record nor name two items, and bounds at
// the host's infinity are read by one rule.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "host/readers.h"
#include "host_test_files.h"
#include "orva/solve.h"

namespace {

struct ModelFile {
  ModelFile(std::string n, std::string t, std::string dn = {}, std::string d = {})
      : name(std::move(n)), text(std::move(t)), dataName(std::move(dn)), data(std::move(d)) {}
  std::string name, text, dataName, data;
};

bool read(const HostScratch& s, const ModelFile& m, ModelFormat format, HostInstance& inst,
          std::string& error) {
  ModelSource source{s.write(m.name, m.text), format,
                     m.dataName.empty() ? std::string() : s.write(m.dataName, m.data), {}};
  return readModel(source, inst, error);
}

// A model of tests/data/host/limits/, with its data file when one is named.
bool readLimitsModel(ModelFormat format, const std::string& name, const std::string& dataName,
                     HostInstance& inst, std::string& error) {
  const ModelSource source{hostTestData("limits/" + name), format,
                           dataName.empty() ? std::string() : hostTestData("limits/" + dataName), {}};
  return readModel(source, inst, error);
}

std::vector<std::string> rowNames(const HostInstance& inst) {
  std::vector<std::string> names;
  for (int32_t i = 0; i < inst.rowCount; ++i) names.push_back(hostRowName(inst, i));
  return names;
}

}  // namespace

TEST(HostLimits, RefusalsNameTheErrorAtItsOwnPlace) {
  struct Case {
    ModelFormat format;
    std::string name, dataName;  // files of tests/data/host/limits/
    std::string error;           // "@" stands for that folder
  };
  const std::vector<Case> cases = {
      // A warning (a bound given twice, a last line without its end) is not the error.
      {ModelFormat::Lp, "w.lp", "", "@/w.lp:9: missing '<', '<=', or '=<' after lower bound"},
      {ModelFormat::Mps, "w.mps", "", "@/w.mps:8: row 'c9' is not in the ROWS section"},
      // Data checked by the model is told at the data file's line that gives it.
      {ModelFormat::MathProg, "p.mod", "p.dat",
       "@/p.dat:2: p[2] = -1 not >= 0; see (1) (the data of p given from this line; @/p.mod:3 checks "
       "it)"},
      {ModelFormat::MathProg, "q.mod", "q.dat",
       "@/q.dat:4: p[b] = -4 not >= 0; see (1) (the data of p given from this line; @/q.mod:5 checks "
       "it)"},
      // A bound record given twice (GLPK's MPS reader failed an assertion on it).
      {ModelFormat::Mps, "bv.mps", "", "@/bv.mps:9: column 'x' has two lower bounds"},
      // Names that would split the status file's lines.
      {ModelFormat::Json, "n.json", "",
       "@/n.json:3: the name \"s(x\\x01)\" holds a control character (code 1)"},
      {ModelFormat::Json, "i.json", "",
       "@/i.json:2: the name \"a\\n=C forged\" holds a control character (code 10)"},
      // Counts and bounds at the edges.
      {ModelFormat::Json, "c.json", "",
       "@/c.json:1: \"rowCount\" is 18446744073709551615 but \"rows\" has 1"},
      {ModelFormat::Json, "b.json", "",
       "@/b.json: column x(a) has a lower bound of 3e+300, which no value can meet (bounds of "
       "1e+300 and beyond are infinite)"},
      {ModelFormat::Mps, "b.mps", "",
       "@/b.mps: column x has an upper bound of -1e+300, which no value can meet (bounds of "
       "1e+300 and beyond are infinite)"},
  };
  const std::string dir = hostTestData("limits");
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    HostInstance inst;
    std::string error;
    EXPECT_FALSE(readLimitsModel(c.format, c.name, c.dataName, inst, error));
    std::string expected = c.error;
    for (std::size_t at = expected.find('@'); at != std::string::npos; at = expected.find('@', at))
      expected.replace(at, 1, dir);
    EXPECT_EQ(error, expected);
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
    std::string error;
    ASSERT_TRUE(read(s, {"deep.mod", "var x;\nminimize o: " + expr + ";\nend;\n"},
                     ModelFormat::MathProg, inst, error))
        << error;
    EXPECT_EQ(rowNames(inst), std::vector<std::string>{"o"});
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
    EXPECT_EQ(rowNames(inst), c.rows);
  }
}

TEST(HostLimits, BoundsAtTheHostsInfinityAreInfinite) {
  HostScratch s;
  HostInstance inst;
  std::string error;
  ASSERT_TRUE(read(s, {"b.json", R"({"cols": [{"name": "x", "lower": -4e300, "upper": 3e300},
    {"name": "y", "lower": -1e299, "upper": 1e299}]})"}, ModelFormat::Json, inst, error))
      << error;
  EXPECT_EQ(inst.colLower, (std::vector<double>{-kHostInf, -1e299}));
  EXPECT_EQ(inst.colUpper, (std::vector<double>{kHostInf, 1e299}));
}

// Coefficients whose scale factors GLPK refuses: the solve goes on without scaling.
TEST(HostLimits, SolveGoesOnWhereGlpkRefusesScaleFactors) {
  HostScratch s;
  HostInstance inst;
  std::string error;
  ASSERT_TRUE(read(s, {"sc.json", R"({"objVar": "z", "objRow": "obj", "rows": [
    {"name": "r", "type": "G", "rhs": 1}, {"name": "obj", "type": "E"}], "cols": [
    {"name": "x", "entries": [["r", 1e300]]}, {"name": "y", "entries": [["r", 1e-300], ["obj", 1]]},
    {"name": "z", "lower": "-inf", "entries": [["obj", -1]]}]})"}, ModelFormat::Json, inst, error))
      << error;
  HostSolution solution;
  EXPECT_EQ(orvaSolveInstance(inst, OrvaSolveSettings{}, solution), "");
  EXPECT_EQ(solution.modelStat, kStatOptimal);
  EXPECT_EQ(solution.colLevel[2], 0.0);
}
