// The run's file names and the eight records of the scratch control file.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "run/control_records.h"
#include "run/run_state.h"

namespace {

// A record: a label in columns 1 to 30, then the value text from column 31.
std::string rec(const std::string& label, const std::string& value) {
  std::string r = label;
  r.resize(30, ' ');
  return r + value;
}

int32_t integerOf(const std::string& record) {
  int32_t v = -777;
  std::string what;
  EXPECT_TRUE(parseControlInteger(record, v, what)) << what;
  return v;
}

std::string integerFault(const std::string& record) {
  int32_t v = -777;
  std::string what;
  EXPECT_FALSE(parseControlInteger(record, v, what));
  EXPECT_EQ(v, -777);
  return what;
}

// T or t in column 31 is true; anything else there a fault; a blank or a short record false.
TEST(ControlRecords, LogicalStandsInColumn31) {
  const struct {
    std::string record;
    const char* read;  // "T", "F" or the fault
  } cases[] = {
      {rec("solution expected", "T"), "T"}, {rec("", "t and more"), "T"},
      {rec(std::string(30, 'T'), "F"), "F"}, {rec("", " T"), "F"}, {"short", "F"},
      {rec("", "Y"), "column 31 holds \"Y\" where T or F belongs"},
      {rec("", "\t"), "column 31 holds character code 0x09 where T or F belongs"},
  };
  for (const auto& c : cases) {
    bool v = c.read[0] != 'T';  // the opposite of what a read should give
    std::string what;
    const bool ok = parseControlLogical(c.record, v, what);
    EXPECT_EQ(ok ? (v ? "T" : "F") : what, c.read) << c.record;
  }
}

// The number stands in columns 31 to 35: blanks inside are ignored and a blank field is 0; a
// digit written one column too early, in column 30, is lost, and columns behind 35 are not read.
TEST(ControlRecords, IntegerStandsInColumns31To35) {
  const std::pair<std::string, int32_t> cases[] = {
      {rec("var requests", " 1000"), 1000}, {rec("", "1000 "), 1000}, {rec("", "99999"), 99999},
      {rec("", "-9999"), -9999},  {rec("", "   -1"), -1},   {rec("", "+  12"), 12},
      {rec("", "1 0 0"), 100},    {rec("", "- 1 2"), -12}, {rec("", "     "), 0},
      {rec("a label", ""), 0},    {"", 0},                 {std::string(29, ' ') + "12345", 2345},
      {rec("", "    1") + "99999 anything", 1},            {rec("", "12") + "   x", 12},
  };
  for (const auto& [record, value] : cases) EXPECT_EQ(integerOf(record), value) << record;
}

TEST(ControlRecords, IntegerFaultsNameTheColumn) {
  const std::string tail = " in the number of columns 31 to 35";
  EXPECT_EQ(integerFault(rec("", "  1a ")), "column 34 holds \"a\"" + tail);
  EXPECT_EQ(integerFault(rec("", "1-")), "column 32 holds \"-\"" + tail);
  EXPECT_EQ(integerFault(rec("", "1.5")), "column 32 holds \".\"" + tail);
  EXPECT_EQ(integerFault(rec("", "   - ")), "columns 31 to 35 hold a sign without digits");
}

TEST(ControlRecords, PathsJoinTrimmedPiecesIntoAtMost375Characters) {
  EXPECT_EQ(joinPath({"  /work/dir/ ", "transport ", ".mrk"}), "/work/dir/transport.mrk");
  EXPECT_EQ(joinPath({"/scr/", "modrake.", " dat"}), "/scr/modrake.dat");
  EXPECT_EQ(joinPath({"", "modrake.", ""}), "modrake.");
  const std::string dir = "/" + std::string(370, 'd') + "/";
  EXPECT_EQ(joinPath({dir, "mrkanal.", "scr"}), (dir + "mrkanal.scr").substr(0, 375));
}

struct ControlFile : ::testing::Test {
  // One file per process and test: ctest runs tests side by side.
  std::filesystem::path path =
      std::filesystem::temp_directory_path() /
      ("modrake_control_" + std::to_string(::getpid()) + "_" +
       ::testing::UnitTest::GetInstance()->current_test_info()->name() + ".dat");
  RunContext state;
  std::string error;
  void TearDown() override { std::filesystem::remove(path); }
  bool readText(const std::string& text) {
    std::FILE* f = std::fopen(path.c_str(), "w");
    std::fputs(text.c_str(), f);
    std::fclose(f);
    f = std::fopen(path.c_str(), "r");
    const bool ok = readControlRecords(f, path.string(), state, error);
    std::fclose(f);
    return ok;
  }
};

TEST_F(ControlFile, EightRecordsInTheirOrder) {
  ASSERT_TRUE(readText(rec("solution expected", "T") + "\n" + rec("VARREQUESTS", " 1000") +
                       "\n" + rec("EQUREQUESTS", "  900") + "\n" + rec("VARBLOCK", "    7") +
                       "\n" + rec("EQUBLOCK", "   -1") + "\n" + rec("", "   -2") + "\n" +
                       rec("LARGELEVEL", "    6") + "\r\n" + rec("LARGEMARGINAL", "   5") +
                       "\n"))
      << error;
  EXPECT_TRUE(state.solutionExpected);
  EXPECT_EQ(state.colSelCapacity, 1000);
  EXPECT_EQ(state.rowSelCapacity, 900);
  EXPECT_EQ(state.icblock, 7);
  EXPECT_EQ(state.irblock, -1);
  EXPECT_EQ(state.scaleRequest, -2);
  EXPECT_EQ(state.largeLevelExp, 6);
  EXPECT_EQ(state.largeMarginalExp, 5);
}

TEST_F(ControlFile, MissingRecordNamesFileAndLine) {
  EXPECT_FALSE(readText(rec("", "F") + "\n" + rec("", "10") + "\n"));
  EXPECT_EQ(error, path.string() + ", line 3: the file ends; it must hold eight records");
}

TEST_F(ControlFile, FaultyRecordNamesFileAndLine) {
  EXPECT_FALSE(readText("\n" + rec("", "10") + "\n" + rec("", "2x") + "\n"));
  EXPECT_EQ(error, path.string() +
                       ", line 3: column 32 holds \"x\" in the number of columns 31 to 35");
}

}  // namespace

namespace {

TEST(ControlRecords, BlockCapacitiesUnderOneFollowTheSymbolCount) {
  RunContext state;
  state.icblock = 0;
  state.irblock = 0;
  applyBlockDefaults(state, 12);
  EXPECT_EQ(state.icblock, 15);
  EXPECT_EQ(state.irblock, 15);
  state.icblock = -1;
  state.irblock = 1;
  applyBlockDefaults(state, 5);
  EXPECT_EQ(state.icblock, 8);
  EXPECT_EQ(state.irblock, 1);
}

}  // namespace
