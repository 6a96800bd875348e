// Whole runs of `modrake` on small instances: the status file and the log, line for line,
// against golden listings written by hand (tests/golden/run/, whose README works them out).
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "golden.h"
#include "host/host.h"

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

namespace {

std::string pad(std::string s, size_t n) {
  s.resize(n, ' ');
  return s;
}

// One control record: label in columns 1 to 30, value from column 31.
std::string rec(const std::string& label, const std::string& value) {
  return pad(label, 30) + value + "\n";
}

struct RunFiles {
  std::string varBlock = "    0";
  std::string equBlock = "    0";
  std::string recordThree = "  500";
  bool solution = false;
  std::string model = "tiny.json";
  std::string modelDir = std::string(SOURCE_DIR) + "/tests/data/run/";
};

struct ModrakeRun : ::testing::Test {
  fs::path dir;
  fs::path hostControl;
  int exitCode = -1;
  Lines status, log;

  void SetUp() override {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    dir = fs::temp_directory_path() /
          ("modrake_run_" + std::string(info->name()) + "_" + std::to_string(::getpid()));
    fs::remove_all(dir);
    fs::create_directories(dir);
    hostControl = dir / "orva.ctl";
  }
  void TearDown() override {
    if (!HasFailure()) fs::remove_all(dir);
  }

  std::string d() const { return dir.string() + "/"; }

  void write(const std::string& name, const std::string& text) {
    std::ofstream(dir / name, std::ios::binary) << text;
  }

  void prepare(const RunFiles& f = RunFiles{}, const std::string& statusFile = "status.txt") {
    write("orva.ctl", "NameStaFile = " + d() + statusFile + "\nNameWrkDir = " + d() +
                          "\nNameScrDir = " + d() + "\nNameScrExt = scr\nPageWidth = 130\n" +
                          "PageSize = 60\nModelFile = " + f.modelDir + f.model + "\n");
    write("modrake.scr", rec("solution expected", f.solution ? "T" : "F") +
                             rec("variable requests", " 1000") +
                             rec("equation requests", f.recordThree) +
                             rec("VARBLOCK", f.varBlock) + rec("EQUBLOCK", f.equBlock) +
                             rec("SCALE", "    0") + rec("LARGELEVEL", "    6") +
                             rec("LARGEMARGINAL", "    6"));
  }

  void run(const std::string& argument) {
    const std::string command = "cd '" + dir.string() + "' && '" + MODRAKE_BIN + "' " +
                                argument + " > log.txt 2> errors.txt";
    const int raw = std::system(command.c_str());
    exitCode = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    // Every way out of a run is exit code 0; a sanitizer report would change it.
    EXPECT_EQ(exitCode, 0) << readFile(dir / "errors.txt");
    status = readLines(dir / "status.txt");
    log = readLines(dir / "log.txt");
  }
  void run() { run("'" + hostControl.string() + "'"); }

  // The values of the marks in the golden files: the host's audit line and the run's folder.
  std::map<std::string, std::string> marks() const {
    return {{"AUDIT", auditLine()}, {"DIR", dir.string()}};
  }
  void expectGolden(const std::string& stem, bool prefix = false) {
    EXPECT_TRUE(matchesGolden(status, "run/" + stem + ".status", marks(), prefix));
    EXPECT_TRUE(matchesGolden(log, "run/" + stem + ".log", marks(), prefix));
  }
};

// ---- the request loop and the reports -------------------------------------------------

// One run: the model, the request file (none when null), the golden files of the status file
// and the log (and of the analysis scratch file, where there is one), and the VARBLOCK and
// EQUBLOCK values and the third record of the control file.
struct GoldenRun {
  const char* model;
  const char* requests;
  const char* golden;
  const char* blocks = "    0";
  const char* recordThree = "  500";
};

const GoldenRun kRuns[] = {
    {"tiny", "# check the blocks\nblockpic\n? silent\nnonsense\n  Analysis\n",
     "tiny-comments-nonsense"},
    {"tiny", nullptr, "tiny-no-requests"},
    {"tiny", "# first note\n? silent\n\n   #second NOTE, as typed\n", "tiny-comments-only"},
    {"tiny", "theend\nBLOCKLIST\n", "tiny-theend-first"},
    {"tiny", "BLOCKLIST\r\nTHEEND\r\n# never echoed\r\nANALYSIS\r\n",
     "tiny-theend-after-blocklist"},
    // A width of 20 reaches BLOCKPIC; its tables hold it to 50.
    {"tiny", "pw = 20\n", "tiny-pw20"},
    // The comment in front of THEEND is echoed when THEEND is read as a keyword line.
    {"tiny", "ANALYSIS\n$PW=999\n# kept\nTHEEND\nBLOCKPIC\n", "tiny-pw999-theend"},
    {"tiny",
     "displaycr\nvariable\nx\nPW=90\ntheend\n# between\nNONOPT\nlistvariable\n$postopt\n"
     "equation\ndemand\n",
     "tiny-sections"},
    {"tiny", "displaycr\nNONOPT\nADVISORYX\n", "tiny-post-solution"},
    {"deep10", "BLOCKPIC\n", "deep10-blockpic"},
    {"flaws", "BLOCKPIC\nBLOCKLIST\n", "flaws-blockpic-blocklist"},
    // A width of 999 is held to 254 by the tables, where each still takes one strip, and items
    // are padded to 130 at most: the report at 130 again.
    {"flaws", "PW=999\nBLOCKPIC\n", "flaws-blockpic-pw999"},
    // The two reports of ANALYSIS, its scratch file, and the display of the problems.
    {"flaws", "ANALYSIS\n", "flaws-analysis"},
    // Stops: a symbol of eleven labels, block capacities that overflow the partition, a faulty
    // control record, whose line and column are named.
    {"deep11", "BLOCKPIC\n", "deep11-stop"},
    {"tiny", "BLOCKPIC\n", "tiny-block-overflow", "50000"},
    {"tiny", nullptr, "tiny-faulty-control", "    0", " 12x "},
};

TEST_F(ModrakeRun, RequestFilesGiveTheirGoldenListings) {
  for (const GoldenRun& r : kRuns) {
    SCOPED_TRACE(r.golden);
    fs::remove(dir / "status.txt");
    RunFiles f;
    f.model = std::string(r.model) + ".json";
    f.varBlock = f.equBlock = r.blocks;
    f.recordThree = r.recordThree;
    prepare(f);
    fs::remove(dir / (std::string(r.model) + ".mrk"));
    if (r.requests != nullptr) write(std::string(r.model) + ".mrk", r.requests);
    run();
    expectGolden(r.golden);
    const std::string scratch = std::string("run/") + r.golden + ".scratch";
    if (fs::exists(fs::path(SOURCE_DIR) / "tests/golden" / scratch)) {
      EXPECT_TRUE(matchesGolden(readLines(dir / "mrkanal.scr"), scratch));
    }
  }
}

// The solution step between "=1" and the titles: POSTOPT and NONOPT load the solution when
// one is expected and say so when there is none, or when the host's status is 11 or 13;
// DISPLAYCR and ADVISORY read none.
TEST_F(ModrakeRun, SolutionStepSaysWhenThereIsNoSolution) {
  const std::string tiny = readFile(std::string(SOURCE_DIR) + "/tests/data/run/tiny.json");
  const struct {
    const char* keyword;
    bool expected;
    const char* carried;  // inserted at the head of the instance
    bool noSolutionLine;
  } cases[] = {
      {"POSTOPT", true, "", true},
      {"NONOPT", true, "\"modelStat\": 13,", true},
      {"POSTOPT", true, "\"modelStat\": 11,", true},
      {"POSTOPT", true, "\"modelStat\": 1,", false},
      {"NONOPT", false, "", false},
      {"DISPLAYCR", true, "", false},
      {"ADVISORY", true, "\"modelStat\": 13,", false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.keyword) + " " + c.carried);
    write("tiny.json", "{" + std::string(c.carried) + tiny.substr(1));
    write("tiny.mrk", std::string(c.keyword) + "\n");
    RunFiles f;
    f.solution = c.expected;
    f.modelDir = d();
    prepare(f);
    fs::remove(dir / "status.txt");
    run();
    const auto titles =
        std::find(status.begin(), status.end(), " ----#### Executing " + std::string(c.keyword));
    const auto start = std::find(std::make_reverse_iterator(titles), status.rend(), "=1").base() - 1;
    const Lines expected = c.noSolutionLine ? Lines{"=1", " NO SOLUTION FILE", " "} : Lines{"=1", " "};
    EXPECT_EQ(Lines(start, titles), expected);
    EXPECT_EQ(std::count(log.begin(), log.end(), " NO SOLUTION FILE"), c.noSolutionLine ? 1 : 0);
  }
}

TEST_F(ModrakeRun, UnreadableRequestFileAssumesBlockPicture) {
  prepare();
  fs::create_directory(dir / "tiny.mrk");
  run();
  expectGolden("tiny-unreadable-requests");
}

TEST_F(ModrakeRun, StatusFileIsAppendedTo) {
  prepare();
  write("status.txt", "an earlier run\n");
  write("tiny.mrk", "BLOCKPIC\n");
  run();
  ASSERT_GT(status.size(), 2u);
  EXPECT_EQ(status.front(), "an earlier run");
  EXPECT_TRUE(matchesGolden(Lines(status.begin() + 1, status.end()), "run/tiny-appended.status",
                            marks()));
}

// A second ANALYSIS in a run prints its reports but no second display of the problems.
TEST_F(ModrakeRun, SecondAnalysisAddsNoDisplay) {
  RunFiles f;
  f.model = "flaws.json";
  prepare(f);
  write("flaws.mrk", "ANALYSIS\nANALYSIS\n");
  run();
  EXPECT_EQ(std::count(status.begin(), status.end(), " ----#### Executing ANALYSIS "), 2);
  EXPECT_EQ(std::count(status.begin(), status.end(),
                       " ----#### Using DISPLAYCR to show ANALYSIS Problems"),
            1);
}

// ---- stops ---------------------------------------------------------------------------

TEST_F(ModrakeRun, AuditInAnyCaseWritesTheAuditLineOnly) {
  for (const char* word : {"AUDIT", "audit", "Audit"}) {
    run(word);
    EXPECT_EQ(log, (Lines{auditLine()}));
    EXPECT_TRUE(auditLine().starts_with("MODRAKE-B 1.3"));
    EXPECT_FALSE(fs::exists(dir / "status.txt"));
  }
}

TEST_F(ModrakeRun, MissingControlFileStopsBeforeTheOpeningLines) {
  prepare();
  fs::remove(dir / "modrake.scr");
  run();
  expectGolden("tiny-no-control");
}

TEST_F(ModrakeRun, StatusFileThatCannotBeCreated) {
  prepare(RunFiles{}, "no/such/folder/status.txt");
  run();
  EXPECT_EQ(log, (Lines{" *** Could not create status file."}));
}

TEST_F(ModrakeRun, HostControlFileThatDoesNotReadStops) {
  write("orva.ctl", "NameStaFile = x\nNoSuchEntry = 1\n");
  run();
  EXPECT_EQ(log, (Lines{" *** Could not initialize environment: " + hostControl.string()}));
  EXPECT_FALSE(fs::exists(dir / "status.txt"));
}

TEST_F(ModrakeRun, ModelThatDoesNotLoadStops) {
  RunFiles f;
  f.model = "no_such_model.json";
  prepare(f);
  run();
  ASSERT_EQ(log.size(), 1u);
  EXPECT_TRUE(log[0].starts_with(" *** Could not load ORVA model data.")) << log[0];
  EXPECT_NE(log[0].find("no_such_model.json"), std::string::npos) << log[0];
  EXPECT_TRUE(fs::exists(dir / "status.txt"));
  EXPECT_TRUE(status.empty());
}

}  // namespace
