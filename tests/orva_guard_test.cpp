// orva refuses up front what would break a run later (paths the control file cannot hold, files
// that are folders or devices, a listing with nowhere to go, scratch files that are folders),
// and says so when modrake stopped before the end of its run.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "orva_run.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kModel = R"({"objVar": "z", "rows": [{"name": "cost", "type": "E"},
  {"name": "need", "type": "G", "rhs": 2}], "cols": [
  {"name": "x", "entries": [["cost", 3], ["need", 1]]},
  {"name": "z", "lower": "-inf", "entries": [["cost", -1]]}]})";

}  // namespace

TEST(OrvaGuard, RefusedBeforeModrakeStarts) {
  const fs::path dir = freshDir("guard_refused");
  std::ofstream(dir / "m.json") << kModel;
  std::ofstream(dir / "sc.json") << R"({"rows": [{"name": "r", "type": "G", "rhs": 1}],
    "cols": [{"name": "x", "entries": [["r", 1e300]]}, {"name": "y", "entries": [["r", 1e-300]]}]})";
  fs::create_directories(dir / "folder.mod");
  fs::create_directories(dir / "stale" / "ovmstat.scr");
  fs::create_directories(dir / "w" / "w.mrk");
  std::ofstream(dir / "w" / "w.json") << kModel;
  const auto expectRefused = [&dir](const std::vector<std::string>& args, const std::string& message) {
    SCOPED_TRACE(args[0] + " " + (args.size() > 2 ? args[2] : ""));
    const RunResult r = runOrva(dir, args);
    EXPECT_EQ(r.status, 2);
    EXPECT_EQ(r.err, "orva: " + message + "\n");
    EXPECT_FALSE(fs::exists(dir / "m.lst"));
  };
  for (const FileCase& c : readCases("orva/guard-refusals.cases"))
    expectRefused(splitLines(c.text), substitute(c.expected, {{"DIR", dir.string() + "/"}}));
  // A path with a line break, which cannot stand on a line of the case file.
  expectRefused({"m.json\n=C forged"}, "\"m.json\\n=C forged\": a path with a line break or another "
                                        "control character cannot be used");
  fs::remove_all(dir);
}

// A model with a symbol of eleven labels passes orva and stops modrake at its symbol check,
// which ends with exit code 0 and no closing record. A run that ends normally: below.
TEST(OrvaGuard, EarlyStopOfModrakeIsNoDiagnosis) {
  const fs::path dir = freshDir("guard_stop");
  std::ofstream(dir / "wide.json") << R"J({"rows": [{"name": "r(a,b,c,d,e,f,g,h,i,j,k)",
    "type": "E"}], "cols": [{"name": "x", "entries": [[1, 1]]}]})J";
  const RunResult stopped = runOrva(dir, {"wide.json", "--listing", "-"});
  EXPECT_EQ(stopped.status, 3);
  EXPECT_NE(stopped.err.find("\norva: modrake stopped before the end of its run: *** MODRAKE "
                             "cannot process symbols with more than 10 dimensions\n"),
            std::string::npos)
      << stopped.err;
  fs::remove_all(dir);
}

// A model, data file and solution of a path far longer than the host's options (255
// characters) reach modrake by links in the scratch folder, and the run ends normally.
TEST(OrvaGuard, LongPathsReachModrake) {
  const fs::path top = freshDir("guard_long");
  fs::path dir = top;
  while (dir.string().size() < 4000) dir /= std::string(250, 'd');
  fs::create_directories(dir);
  std::ofstream(dir / "m.mod") << "param p;\nvar x >= p;\nminimize cost: x;\nend;\n";
  std::ofstream(dir / "m.dat") << "data;\nparam p := 2;\nend;\n";
  const RunResult r = runOrva(top, {(dir / "m.mod").string(), "--data", (dir / "m.dat").string(),
                                 "--solve", "--listing", "m.lst"});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.err, "orva: GLPK: model status 1 optimal, objective 2\norva: listing written to m.lst\n");
  fs::remove_all(top);
}
