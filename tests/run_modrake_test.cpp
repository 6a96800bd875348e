// Whole runs of `modrake` on small instances: the status file and the log, line for line.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "host/host.h"

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

namespace {

std::string pad(std::string s, size_t n) {
  s.resize(n, ' ');
  return s;
}

Lines readLines(const fs::path& path) {
  Lines lines;
  std::ifstream in(path, std::ios::binary);
  std::string line;
  while (std::getline(in, line)) lines.push_back(line);
  return lines;
}

Lines operator+(Lines a, const Lines& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// The audit line as the host gives it for this system, 75 characters.
std::string auditLine() {
  ovpHandle audit = nullptr;
  std::string message;
  if (!ovpXCreate(audit, message)) return "(no audit object: " + message + ")";
  ovpSetSystemName(audit, "MODRAKE-B 1.3");
  std::string line = ovpGetAuditLine(audit);
  ovpFree(audit);
  return pad(line.substr(0, 75), 75);
}

// Opening lines of either channel.
Lines opening() {
  return {" ", "", " " + auditLine(), "", " ", " ", " #### Executing MODRAKE 1.3 Body", " ", " "};
}

// "=1", the banner, the blank line behind it.
const Lines kBanner = {
    "=1",
    "    ##################################",
    "    #                                #",
    "    #           MODRAKE              #",
    "    #           Version 1.3          #",
    "    #  Diagnosis of optimization     #",
    "    #  models: infeasible rows,      #",
    "    #  doomed or unbounded columns,  #",
    "    #  the shape of the matrix.      #",
    "    #  Written for modellers.        #",
    "    #  Licence GPL-3.0-or-later      #",
    "    #                                #",
    "    ##################################",
    " ",
};

// Everything the status file gets before the first request: opening lines, banner, the "=1"
// of the partition.
Lines statusHead() { return opening() + kBanner + Lines{"=1"}; }

const Lines kLogEnd = {" ", " MODRAKE All Done", " "};

std::string unavailable(const std::string& kw) {
  return " **** " + kw + " is not available in this build";
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
                          "PageSize = 60\nModelFile = " + SOURCE_DIR + "/tests/data/run/" +
                          f.model + "\n");
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
    std::ifstream errors(dir / "errors.txt");
    std::stringstream text;
    text << errors.rdbuf();
    // Every way out of a run is exit code 0; a sanitizer report would change it.
    EXPECT_EQ(exitCode, 0) << text.str();
    status = readLines(dir / "status.txt");
    log = readLines(dir / "log.txt");
  }
  void run() { run("'" + hostControl.string() + "'"); }
};

// ---- the request loop ------------------------------------------------------------------

TEST_F(ModrakeRun, ProceduresCommentsAndAWordThatIsNoKeyword) {
  prepare();
  write("tiny.mrk", "# check the blocks\nblockpic\n? silent\nnonsense\n  Analysis\n");
  run();
  const std::string comment = pad("    check the blocks", 84);
  EXPECT_EQ(status, (statusHead() + Lines{
                        " ", "  User comments ", " ", comment,
                        " ", " ----#### Executing BLOCKPIC ", "=L#### MODRAKE BLOCKPIC ",
                        unavailable("BLOCKPIC"),
                        " ", " ----#### Executing ANALYSIS ", "=L#### MODRAKE ANALYSIS ", " ",
                        unavailable("ANALYSIS"),
                        "=2"}));
  EXPECT_EQ(log, (opening() + Lines{
                     comment,
                     " ", " #### Executing BLOCKPIC ", unavailable("BLOCKPIC"),
                     " CANT MATCH KEYWORD NONSENSE" + std::string(23, ' '),
                     " ", " #### Executing ANALYSIS ", unavailable("ANALYSIS")} + kLogEnd));
}

TEST_F(ModrakeRun, MissingRequestFileAssumesBlockPicture) {
  prepare();
  run();
  const Lines six = {" Looked but couldnt find input file " + d() + "tiny.mrk",
                     "  If you are using the IDE then make sure",
                     "     your project is in the same directory as ",
                     "     the source file or that the mrk file",
                     "     is in the same directory as the source file",
                     "     using the save as commands"};
  EXPECT_EQ(status, (statusHead() + six + Lines{
                        " ", " Assuming BLOCKPIC is requested",
                        " ", " ----#### Executing BLOCKPIC ", "=L#### MODRAKE BLOCKPIC ",
                        unavailable("BLOCKPIC"), "=2"}));
  EXPECT_EQ(log, (opening() + six + Lines{
                     " ", " Assuming BLOCKPIC is requested",
                     " ", " #### Executing BLOCKPIC ", unavailable("BLOCKPIC")} + kLogEnd));
}

TEST_F(ModrakeRun, CommentsOnlyAreEchoedAtTheAssumedBlockPicture) {
  prepare();
  write("tiny.mrk", "# first note\n? silent\n\n   #second NOTE, as typed\n");
  run();
  const std::string first = pad("    first note", 84);
  const std::string second = pad("    second NOTE, as typed", 84);
  EXPECT_EQ(status, (statusHead() + Lines{
                        " Assuming BLOCKPIC is requested",
                        " ", " ----#### Executing BLOCKPIC ", "=L#### MODRAKE BLOCKPIC ",
                        " ", "  User comments ", " ", first, second,
                        unavailable("BLOCKPIC"), "=2"}));
  EXPECT_EQ(log, (opening() + Lines{
                     " Assuming BLOCKPIC is requested",
                     " ", " #### Executing BLOCKPIC ", first, second,
                     unavailable("BLOCKPIC")} + kLogEnd));
}

TEST_F(ModrakeRun, TheEndBeforeAnyProcedureStillReadsWhatFollows) {
  prepare();
  write("tiny.mrk", "theend\nBLOCKLIST\n");
  run();
  EXPECT_EQ(status, (statusHead() + Lines{
                        " Assuming BLOCKPIC is requested",
                        " ", " ----#### Executing BLOCKPIC ", "=L#### MODRAKE BLOCKPIC ",
                        unavailable("BLOCKPIC"),
                        " ", " ----#### Executing BLOCKLIST ", "=L#### MODRAKE BLOCKLIST ", " ",
                        unavailable("BLOCKLIST"), "=2"}));
  EXPECT_EQ(log, (opening() + Lines{
                     " Assuming BLOCKPIC is requested",
                     " ", " #### Executing BLOCKPIC ", unavailable("BLOCKPIC"),
                     " ", " #### Executing BLOCKLIST ", unavailable("BLOCKLIST")} + kLogEnd));
}

TEST_F(ModrakeRun, TheEndAfterAProcedureEndsTheRun) {
  prepare();
  write("tiny.mrk", "BLOCKLIST\r\nTHEEND\r\n# never echoed\r\nANALYSIS\r\n");
  run();
  EXPECT_EQ(status, (statusHead() + Lines{
                        " ", " ----#### Executing BLOCKLIST ", "=L#### MODRAKE BLOCKLIST ", " ",
                        unavailable("BLOCKLIST"), "=2"}));
  EXPECT_EQ(log, (opening() + Lines{" ", " #### Executing BLOCKLIST ", unavailable("BLOCKLIST")} +
                     kLogEnd));
}

TEST_F(ModrakeRun, PageWidthLinesAreNoProcedures) {
  prepare();
  write("tiny.mrk", "pw = 20\n");
  run();
  EXPECT_EQ(status, (statusHead() + Lines{
                        " Assuming BLOCKPIC is requested",
                        " ", " ----#### Executing BLOCKPIC ", "=L#### MODRAKE BLOCKPIC ",
                        unavailable("BLOCKPIC"), "=2"}));
  EXPECT_EQ(log, (opening() + Lines{" Assuming BLOCKPIC is requested", " ",
                                   " #### Executing BLOCKPIC ", unavailable("BLOCKPIC")} +
                     kLogEnd));
}

TEST_F(ModrakeRun, TheEndDirectlyBehindAPageWidthLine) {
  prepare();
  write("tiny.mrk", "ANALYSIS\n$PW=999\n# kept\nTHEEND\nBLOCKPIC\n");
  run();
  // The comment in front of THEEND is echoed when THEEND is read as a keyword line.
  const std::string kept = pad("    kept", 84);
  EXPECT_EQ(status, (statusHead() + Lines{
                        " ", " ----#### Executing ANALYSIS ", "=L#### MODRAKE ANALYSIS ", " ",
                        unavailable("ANALYSIS"),
                        " ", "  User comments ", " ", kept, "=2"}));
  EXPECT_EQ(log, (opening() + Lines{" ", " #### Executing ANALYSIS ", unavailable("ANALYSIS"),
                                   kept} + kLogEnd));
}

TEST_F(ModrakeRun, SectionsAreReadByTheirProcedures) {
  prepare();
  write("tiny.mrk",
        "picture\nvariable\nx\nPW=90\ntheend\n# between\nMATCHIT\nlistvariable\n$postopt\n"
        "equation\ndemand\n");
  run();
  const std::string between = pad("    between", 84);
  EXPECT_EQ(status, (statusHead() + Lines{
                        " ", " ----#### Executing PICTURE  ", "=L#### MODRAKE PICTURE  ",
                        unavailable("PICTURE"),
                        " ", " ----#### Executing MATCHIT ", "=L#### MODRAKE MATCHIT ",
                        " ", "  User comments ", " ", between, unavailable("MATCHIT"),
                        "=1", " ", " ----#### Executing POSTOPT", "=L#### MODRAKE POSTOPT",
                        unavailable("POSTOPT"), " ", "=2"}));
  EXPECT_EQ(log, (opening() + Lines{
                     " ", " #### Executing PICTURE  ", unavailable("PICTURE"),
                     " ", " #### Executing MATCHIT ", between, unavailable("MATCHIT"),
                     " ", " #### Executing POSTOPT", unavailable("POSTOPT")} + kLogEnd));
}

TEST_F(ModrakeRun, PostSolutionProceduresOneAfterTheOther) {
  prepare();
  write("tiny.mrk", "displaycr\nNONOPT\nADVISORYX\n");
  run();
  Lines expectStatus = statusHead();
  Lines expectLog = opening();
  for (const std::string kw : {"DISPLAYCR", "NONOPT", "ADVISORY"}) {
    expectStatus = expectStatus + Lines{"=1", " ", " ----#### Executing " + kw,
                                        "=L#### MODRAKE " + kw, unavailable(kw), " "};
    expectLog = expectLog + Lines{" ", " #### Executing " + kw, unavailable(kw)};
  }
  EXPECT_EQ(status, (expectStatus + Lines{"=2"}));
  EXPECT_EQ(log, expectLog + kLogEnd);
}

TEST_F(ModrakeRun, UnreadableRequestFileAssumesBlockPicture) {
  prepare();
  fs::create_directory(dir / "tiny.mrk");
  run();
  EXPECT_EQ(status, (statusHead() + Lines{
                        " Error encountered reading MRK file", " Assuming BLOCKPIC is requested",
                        " ", " ----#### Executing BLOCKPIC ", "=L#### MODRAKE BLOCKPIC ",
                        unavailable("BLOCKPIC"), "=2"}));
  EXPECT_EQ(log, (opening() + Lines{" Error encountered reading MRK file",
                                   " Assuming BLOCKPIC is requested", " ",
                                   " #### Executing BLOCKPIC ", unavailable("BLOCKPIC")} +
                     kLogEnd));
}

TEST_F(ModrakeRun, StatusFileIsAppendedTo) {
  prepare();
  write("status.txt", "an earlier run\n");
  write("tiny.mrk", "BLOCKPIC\n");
  run();
  ASSERT_GT(status.size(), 2u);
  EXPECT_EQ(status.front(), "an earlier run");
  EXPECT_EQ(Lines(status.begin() + 1, status.end()),
            (statusHead() + Lines{" ", " ----#### Executing BLOCKPIC ", "=L#### MODRAKE BLOCKPIC ",
                                 unavailable("BLOCKPIC"), "=2"}));
}

TEST_F(ModrakeRun, SymbolOfTenLabelsPasses) {
  RunFiles f;
  f.model = "deep10.json";
  prepare(f);
  write("deep10.mrk", "BLOCKPIC\n");
  run();
  EXPECT_EQ(status, (statusHead() + Lines{" ", " ----#### Executing BLOCKPIC ",
                                         "=L#### MODRAKE BLOCKPIC ", unavailable("BLOCKPIC"),
                                         "=2"}));
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

TEST_F(ModrakeRun, SymbolOfElevenLabelsStops) {
  RunFiles f;
  f.model = "deep11.json";
  prepare(f);
  write("deep11.mrk", "BLOCKPIC\n");
  run();
  EXPECT_EQ(status, (opening() + kBanner + Lines{
                        "=C*** Maximum symbol dimension of 10 exceeded",
                        "=C*** MODRAKE cannot process symbols with more than 10 dimensions"}));
  EXPECT_EQ(log, (opening() + Lines{
                     " *** Maximum symbol dimension of 10 exceeded",
                     " *** MODRAKE cannot process symbols with more than 10 dimensions"}));
}

TEST_F(ModrakeRun, BlockCapacitiesThatOverflowThePartitionStop) {
  RunFiles f;
  f.varBlock = "50000";
  f.equBlock = "50000";
  prepare(f);
  write("tiny.mrk", "BLOCKPIC\n");
  run();
  const Lines three = {" Overflow of signed integers when partitioning memory.",
                       " Hint: do you have many equation or variable symbols?",
                       "   irblock =   50000  icblock =   50000"};
  EXPECT_EQ(status, statusHead() + three);
  EXPECT_EQ(log, opening() + three);
}

TEST_F(ModrakeRun, MissingControlFileStopsBeforeTheOpeningLines) {
  prepare();
  fs::remove(dir / "modrake.scr");
  run();
  const Lines words = {" *** Could not open control file " + d() + "modrake.scr"};
  EXPECT_EQ(status, words);
  EXPECT_EQ(log, words);
}

TEST_F(ModrakeRun, FaultyControlRecordNamesLineAndColumn) {
  RunFiles f;
  f.recordThree = " 12x ";
  prepare(f);
  run();
  const Lines words = {" *** Could not read control file " + d() + "modrake.scr, line 3: " +
                       "column 34 holds \"x\" in the number of columns 31 to 35"};
  EXPECT_EQ(status, words);
  EXPECT_EQ(log, words);
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
