// The orva command as a user runs it: bad input ends with exit status 2 and a message that
// names the file and line before modrake starts; good input gives a listing.
#include <glpk.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "golden.h"
#include "host/instance_file.h"
#include "orva_run.h"

namespace fs = std::filesystem;

namespace {

const std::string kSource = SOURCE_DIR;
const std::string kData = kSource + "/tests/data/orva/";
const std::string kTransport = kSource + "/examples/transport/transport.mod";

// The cases of tests/data/orva/bad-input.cases: the arguments, one a line, and the first line
// of standard error.
TEST(OrvaCommandBadInput, EachStopsWithFileLineAndReason) {
  const std::map<std::string, std::string> vars = {{"DATA", kData}, {"SOURCE", kSource}};
  const fs::path dir = freshDir("bad");
  for (const FileCase& c : readCases("orva/bad-input.cases")) {
    const std::string message = substitute(c.expected, vars);
    SCOPED_TRACE(message);
    RunResult r = runOrva(dir, splitLines(substitute(c.text, vars)));
    EXPECT_EQ(r.status, 2);
    EXPECT_EQ(r.err.rfind(message, 0), 0u) << r.err;
    // Nothing reached modrake: no listing, no log.
    EXPECT_FALSE(fs::exists(dir / "transport.lst"));
    EXPECT_EQ(r.out, "");
  }
  fs::remove_all(dir);
}

TEST(OrvaCommandBadInput, UnsolvableModelSaysWhatToDo) {
  const fs::path dir = freshDir("unsolvable");
  RunResult r = runOrva(dir, {kData + "sos.json", "--solve"});
  EXPECT_EQ(r.status, 2);
  EXPECT_NE(r.err.find("sos.json: cannot solve: variable 1 is of a kind (SOS or semi-continuous)"),
            std::string::npos)
      << r.err;
  EXPECT_NE(r.err.find("--no-solve"), std::string::npos);
  fs::remove_all(dir);
}

// --help and --version need no model and answer on standard output.
TEST(OrvaCommand, HelpAndVersionGoToStandardOutput) {
  const fs::path dir = freshDir("help");
  RunResult r = runOrva(dir, {"--help"});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out.rfind("usage: orva MODEL [--data FILE]", 0), 0u) << r.out;
  EXPECT_EQ(r.err, "");
  r = runOrva(dir, {kTransport, "--version"});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out.rfind("orva (MODRAKE) ", 0), 0u) << r.out;
  EXPECT_NE(r.out.find(std::string("\nGLPK ") + glp_version() + " ("), std::string::npos);
  EXPECT_EQ(r.err, "");
  fs::remove_all(dir);
}

// The transport model: the request file beside the model, no solve, the listing in the
// current folder, which orva names, the scratch folder kept.
TEST(OrvaCommandRun, TransportDemoListing) {
  const fs::path dir = freshDir("demo");
  const fs::path scratch = dir / "scratch";
  RunResult r = runOrva(dir, {kTransport, "--keep-scratch", scratch.string()});
  ASSERT_EQ(r.status, 0) << r.err;

  // The files of the run.
  const std::string scr = fs::absolute(scratch).lexically_normal().string() + "/";
  EXPECT_TRUE(matchesGolden(readLines(scratch / "orva.ctl"), "orva/transport.ctl",
                            {{"SCR", scr}, {"SOURCE", kSource}}));
  const std::vector<std::string> records = readLines(scratch / "modrake.scr");
  ASSERT_EQ(records.size(), 8u);
  EXPECT_EQ(records[0].substr(30), "F");
  EXPECT_EQ(records[1].substr(30), " 1000");
  EXPECT_EQ(records[3].substr(30), "    0");

  // The listing: host records acted on, titles underlined, statuses at the end.
  const std::vector<std::string> listing = readLines(dir / "transport.lst");
  ASSERT_GE(listing.size(), 3u);
  for (const std::string& line : listing) {
    EXPECT_NE(line.rfind("=", 0), 0u) << line;
  }
  for (const std::string title : {"ANALYSIS", "BLOCKPIC", "BLOCKLIST"}) {
    EXPECT_EQ(std::count(listing.begin(), listing.end(), " #### MODRAKE " + title), 1) << title;
    EXPECT_TRUE(containsGolden(listing, "orva/title-" + title + ".part"));
  }
  EXPECT_EQ(listing[listing.size() - 2], " Solve status     1  normal completion");
  EXPECT_EQ(listing[listing.size() - 1], " Model status    14  no solution returned");
  // The echoed comment of the request file and the log on standard output.
  EXPECT_NE(readFile(dir / "transport.lst").find("Transportation model: its structure"),
            std::string::npos);
  EXPECT_NE(r.out.find("MODRAKE All Done"), std::string::npos);
  EXPECT_EQ(r.err, "orva: listing written to transport.lst\n");
  fs::remove_all(dir);
}

// --timings: each phase of orva and of modrake, in the order they ran, and the peak memory of
// both processes; nothing of it, nor of a progress line, in the listing.
TEST(OrvaCommandRun, TimingsNameEveryPhase) {
  const fs::path dir = freshDir("timings");
  std::ofstream(dir / "two.mrk") << "ANALYSIS\nBLOCKLIST\n";
  RunResult r = runOrva(dir, {kData + "small.json", "--timings", "--solve", "--requests",
                              "two.mrk", "--listing", "two.lst"});
  ASSERT_EQ(r.status, 0) << r.err;
  std::vector<std::string> phases;
  std::istringstream err(r.err);
  for (std::string line; std::getline(err, line);) {
    if (line.rfind("orva: time ", 0) != 0) continue;
    const std::string rest = line.substr(11);
    phases.push_back(rest.substr(0, rest.rfind(' ')));
  }
  EXPECT_EQ(phases, (std::vector<std::string>{"reading the model", "solving", "handing over",
                                              "modrake", "loading", "ANALYSIS", "BLOCKLIST"}));
  EXPECT_NE(r.err.find("orva: peak memory orva "), std::string::npos);
  EXPECT_EQ(r.err.find('\r'), std::string::npos);
  const std::string listing = readFile(dir / "two.lst");
  EXPECT_EQ(listing.find("time"), std::string::npos);
  fs::remove_all(dir);
}

// POSTOPT in the request file: solved by default, the solution handed over, the statuses of
// the solve at the end of the listing, the listing on standard output, scale factors asked.
TEST(OrvaCommandRun, PostoptRequestSolvesFirst) {
  const fs::path dir = freshDir("postopt");
  const fs::path scratch = dir / "kept";
  RunResult r = runOrva(dir, {kData + "small.json", "--listing", "-", "--keep-scratch",
                              scratch.string(), "--page-width", "100", "--scale", "auto",
                              "--time-limit=30"});
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_NE(r.err.find("orva: GLPK: model status 1 optimal, objective 2.5"), std::string::npos)
      << r.err;
  EXPECT_EQ(readLines(scratch / "modrake.scr")[0].substr(30), "T");
  const std::vector<std::string> control = readLines(scratch / "orva.ctl");
  const std::string scr = fs::absolute(scratch).lexically_normal().string() + "/";
  EXPECT_NE(std::find(control.begin(), control.end(), "PageWidth = 100"), control.end());
  // The solution and the scale factors travel inside the instance handed over.
  HostInstance handed;
  std::string error;
  ASSERT_TRUE(loadInstanceFile(scr + "orvainst.scr", handed, error)) << error;
  EXPECT_TRUE(handed.hasSolution);
  EXPECT_EQ(handed.modelStat, kStatOptimal);
  EXPECT_TRUE(handed.hasScale);
  EXPECT_NE(r.out.find(" #### MODRAKE POSTOPT\n ====================\n"), std::string::npos);
  EXPECT_NE(r.out.find("\n Solve status     1  normal completion\n Model status     1  optimal\n"),
            std::string::npos);
  EXPECT_FALSE(fs::exists(dir / "small.lst"));
  // The log goes to standard error, so that standard output is the listing alone.
  EXPECT_EQ(r.out.find("MODRAKE All Done"), std::string::npos);
  EXPECT_NE(r.err.find("\n MODRAKE All Done\n"), std::string::npos) << r.err;
  EXPECT_EQ(r.err.find("listing written"), std::string::npos);
  fs::remove_all(dir);
}

// --no-solve keeps the solve away even when POSTOPT asks; --requests takes a request file
// from elsewhere, whose stray lines orva warns about; without --keep-scratch nothing of the
// run stays behind.
TEST(OrvaCommandRun, NoSolveAndRequestsFromElsewhere) {
  const fs::path dir = freshDir("nosolve");
  std::ofstream(dir / "mine.mrk") << "# from elsewhere\nblokpic\nPOSTOPT\nVARIABLES\nx\n";
  const fs::path tmp = dir / "tmp";
  fs::create_directories(tmp);
  const RunResult r =
      runOrva(dir, {kData + "small.json", "--no-solve", "--requests", "mine.mrk"}, "TMPDIR=" + tmp.string());
  EXPECT_EQ(r.status, 0) << r.err;
  // No solve; a line that modrake cannot match is told first, and the run goes on.
  EXPECT_EQ(r.err,
            "orva: mine.mrk:2: warning: \"blokpic\" is no keyword; did you mean BLOCKPIC?\n"
            "orva: listing written to small.lst\n");
  const std::string listing = readFile(dir / "small.lst");
  EXPECT_NE(listing.find("from elsewhere"), std::string::npos);
  EXPECT_NE(listing.find(" #### MODRAKE POSTOPT"), std::string::npos);
  EXPECT_TRUE(fs::is_empty(tmp));
  fs::remove_all(dir);
}

// Runs orva with `args`, its scratch folder kept: the run ends well, nothing is solved, record 1
// is `record1`, and the control file names no solution or model file, both travelling inside
// the instance handed over. Gives the scratch folder.
fs::path runHandedOver(const fs::path& dir, std::vector<std::string> args, const std::string& record1) {
  const fs::path scratch = dir / "kept";
  fs::remove_all(scratch);
  args.insert(args.end(), {"--keep-scratch", scratch.string()});
  const RunResult r = runOrva(dir, args);
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.err.find("GLPK"), std::string::npos);
  EXPECT_EQ(readLines(scratch / "modrake.scr").at(0).substr(30), record1);
  for (const std::string& line : readLines(scratch / "orva.ctl")) {
    EXPECT_FALSE(line.starts_with("SolutionFile")) << line;
    EXPECT_FALSE(line.starts_with("ModelFile")) << line;
  }
  return scratch;
}

// A solution the user has is checked, handed over as it is, and its statuses close the listing.
TEST(OrvaCommandRun, UserSolutionHandedOver) {
  const fs::path dir = freshDir("usersol");
  const fs::path scratch =
      runHandedOver(dir, {kData + "small.json", "--solution", kData + "small-feasible.sol"}, "T");
  HostInstance handed;
  std::string error;
  ASSERT_TRUE(loadInstanceFile(scratch.string() + "/orvainst.scr", handed, error)) << error;
  EXPECT_EQ(handed.modelStat, 7);
  EXPECT_EQ(handed.colLevel, (std::vector<double>{1, 1, 3}));
  const std::vector<std::string> listing = readLines(dir / "small.lst");
  ASSERT_GE(listing.size(), 2u);
  EXPECT_EQ(listing[listing.size() - 2], " Solve status     3  resource interrupt");
  EXPECT_EQ(listing[listing.size() - 1], " Model status     7  intermediate nonoptimal");
  fs::remove_all(dir);
}

// A native instance that carries its own solution is handed over as it is, even when POSTOPT
// asks: record 1 is true, nothing is solved, and its statuses close the listing. Model status
// 14 alone carries nothing.
TEST(OrvaCommandRun, NativeInstanceCarriesItsSolution) {
  const fs::path dir = freshDir("native");
  std::string text = readFile(kData + "small.json");
  std::ofstream(dir / "own.json") << std::string(text).insert(
      text.find("\"rows\""), "\"modelStat\": 7, \"solveStat\": 3,\n  ");
  std::ofstream(dir / "own.mrk") << "POSTOPT\n";
  std::ofstream(dir / "none.json") << std::string(text).insert(text.find("\"rows\""),
                                                               "\"modelStat\": 14,\n  ");
  std::ofstream(dir / "none.mrk") << "DISPLAYCR\n";
  const struct {
    const char* model;
    const char* record1;
    const char* modelStatus;
  } cases[] = {{"own.json", "T", " Model status     7  intermediate nonoptimal"},
               {"none.json", "F", " Model status    14  no solution returned"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.model);
    runHandedOver(dir, {c.model}, c.record1);
    const std::vector<std::string> listing =
        readLines(dir / (fs::path(c.model).stem().string() + ".lst"));
    ASSERT_GE(listing.size(), 1u);
    EXPECT_EQ(listing.back(), c.modelStatus);
  }
  fs::remove_all(dir);
}

// modrake's own exit status comes back: VARBLOCK 1 is too small for the transport model's
// two variable symbols (ship and the objective variable), so BLOCKPIC stops the run with 77.
// The listing is written all the same.
TEST(OrvaCommandRun, BlockCapacityStopPassesThrough) {
  const fs::path dir = freshDir("capacity");
  std::ofstream(dir / "modrake.opt") << "VARBLOCK 1\n";
  std::ofstream(dir / "pic.mrk") << "BLOCKPIC\n";
  RunResult r = runOrva(dir, {kTransport, "--options", "modrake.opt", "--requests", "pic.mrk"});
  EXPECT_EQ(r.status, 77) << r.err;
  const std::vector<std::string> listing = readLines(dir / "transport.lst");
  EXPECT_NE(std::find(listing.begin(), listing.end(),
                      "  Exceeded maximum variable blocks which is   1"),
            listing.end());
  EXPECT_NE(std::find(listing.begin(), listing.end(),
                      " Expand or drop VARBLOCK option in MODRAKE.OPT"),
            listing.end());
  fs::remove_all(dir);
}

}  // namespace
