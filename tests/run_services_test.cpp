// The services of the request loop: keyword lookup, page-width lines, upper-casing, the echo
// of comments and the title lines.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/host.h"
#include "request/request_line.h"
#include "run/request_loop.h"
#include "run/run_state.h"

namespace {

struct RunServices : ::testing::Test {
  std::vector<std::string> status, log;
  void SetUp() override {
    runState.statusChannel = Channel{nullptr, &status};
    runState.logChannel = Channel{nullptr, &log};
    runState.commentCount = 0;
    for (auto& c : runState.commentLines) c.clear();
    runState.pageWidthRequest = 0;
  }
  void TearDown() override {
    runState.statusChannel = Channel{};
    runState.logChannel = Channel{};
    runState.commentCount = 0;
    runState.pageWidthRequest = 0;
  }
  static int32_t look(const std::string& text, int32_t mode = 1) {
    int32_t index = -99;
    lookupKeyword(runState, text, index, mode);
    return index;
  }
  static int32_t width(const std::string& text) {
    setPageWidth(runState, text);
    return runState.pageWidthRequest;
  }
};

TEST_F(RunServices, LookupFindsEachKeywordPlainAndInItsDollarForm) {
  const char* names[] = {"DISPLAYCR", "POSTOPT", "PICTURE", "BLOCKPIC", "ANALYSIS",
                         "BLOCKLIST", "MATCHIT", "NONOPT",  "ADVISORY"};
  for (int32_t k = 1; k <= 9; ++k) {
    EXPECT_EQ(look(names[k - 1]), k) << names[k - 1];
    EXPECT_EQ(look(std::string("$") + names[k - 1]), k) << names[k - 1];
    EXPECT_EQ(look(names[k - 1], 2), k) << names[k - 1];
    EXPECT_EQ(procedureRow(static_cast<Proc>(k)).keyword, names[k - 1]);
  }
}

// What stands behind a keyword is ignored, and only the first 31 characters count; what does
// not begin with a keyword gives 0 (lines are upper-cased before the lookup, not by it);
// THEEND gives -1 in both modes.
TEST_F(RunServices, LookupOfLinesAroundTheKeywords) {
  const struct {
    std::string text;
    int32_t mode, index;
  } cases[] = {
      {"BLOCKPICTURE", 1, 4}, {"BLOCKLISTS", 1, 6},       {"$POSTOPTIMAL", 1, 2},
      {"ANALYSIS(X)", 1, 5},  {"NONOPT" + std::string(40, 'Z'), 1, 8},
      {"BLOCK", 1, 0},        {"XBLOCKPIC", 1, 0},        {"blockpic", 1, 0},
      {"", 1, 0},             {"$$ANALYSIS", 1, 0},       {"PW", 1, 0},
      {"THEEN", 1, 0},        {std::string(31, ' ') + "ANALYSIS", 1, 0},
      {"THEEND", 1, -1},      {"THEENDOFIT", 1, -1},      {"THEEND", 2, -1},
  };
  for (const auto& c : cases) EXPECT_EQ(look(c.text, c.mode), c.index) << c.text << " " << c.mode;
}

TEST_F(RunServices, PageWidthLinesSetTheWidthInBothModes) {
  EXPECT_EQ(look("PW=120"), 99);
  EXPECT_EQ(runState.pageWidthRequest, 120);
  EXPECT_EQ(look("$PW=130"), 99);
  EXPECT_EQ(runState.pageWidthRequest, 130);
  // A section reader goes on with its lines: 0, with the width set all the same.
  EXPECT_EQ(look("PW=90", 2), 0);
  EXPECT_EQ(runState.pageWidthRequest, 90);
  EXPECT_EQ(look("$PW=75", 2), 0);
  EXPECT_EQ(runState.pageWidthRequest, 75);
  // A keyword comes first: PW= behind it is no width line.
  EXPECT_EQ(look("BLOCKPICPW=80"), 4);
  EXPECT_EQ(runState.pageWidthRequest, 75);
}

// Three characters from the right: the fourth digit is not read; no lower limit here; blanks
// right of the last digit do not count, a blank left of a digit is a 0, other characters are
// skipped.
TEST_F(RunServices, PageWidthTakesThreeCharactersFromTheRight) {
  const std::pair<std::string, int32_t> cases[] = {
      {"PW=120", 120}, {"$PW=120", 120}, {"PW=1000", 100}, {"PW=20", 20},   {"PW=999", 999},
      {"PW=7  ", 7},   {"PW=  7", 7},    {"PW= 8", 8},     {"PW=8 5", 805}, {"PW=1X2", 12},
      {"PW=-50", 50},  {"PW=12" + std::string(20, '9'), 129},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(width(text), expected) << text;
}

TEST_F(RunServices, PageWidthWithoutDigitsIsZero) {
  for (const char* text : {"PW=", "PW=ABC", "PW=   ", "PW"}) {
    runState.pageWidthRequest = 77;
    EXPECT_EQ(width(text), 0) << text;
  }
}

TEST_F(RunServices, UpperCaseTouchesLettersWithinTheLengthOnly) {
  std::string t = "ab(c)_z9é?x";
  upperCase(t, 10);
  EXPECT_EQ(t, "AB(C)_Z9é?x");
  std::string u = "abc";
  upperCase(u, 0);
  EXPECT_EQ(u, "abc");
  upperCase(u, 99);
  EXPECT_EQ(u, "ABC");
}

TEST_F(RunServices, EchoWritesHeadingAndLinesAndClears) {
  runState.commentCount = 2;
  runState.commentLines[0] = "first comment";
  runState.commentLines[1] = std::string(80, 'x');
  echoComments();
  const std::string first = "    first comment" + std::string(67, ' ');
  const std::string second = "    " + std::string(80, 'x');
  EXPECT_EQ(status, (std::vector<std::string>{" ", "  User comments ", " ", first, second}));
  EXPECT_EQ(log, (std::vector<std::string>{first, second}));
  EXPECT_EQ(runState.commentCount, 0);

  status.clear();
  log.clear();
  echoComments();
  EXPECT_TRUE(status.empty());
  EXPECT_TRUE(log.empty());
}

TEST_F(RunServices, EchoBeyondFiftyWritesTheFiftyKept) {
  for (int32_t k = 0; k < COMMENT_CAPACITY; ++k) {
    runState.commentLines[static_cast<size_t>(k)] = "c" + std::to_string(k + 1);
  }
  runState.commentCount = 57;
  echoComments();
  ASSERT_EQ(status.size(), 3u + 50u);
  ASSERT_EQ(log.size(), 50u);
  EXPECT_EQ(log.front(), "    c1" + std::string(78, ' '));
  EXPECT_EQ(log.back(), "    c50" + std::string(77, ' '));
  EXPECT_EQ(runState.commentCount, 0);
}

TEST_F(RunServices, TitlesCarryTheirTrailingBlanks) {
  writeProcedureTitles(procedureRow(Proc::Picture));
  writeProcedureTitles(procedureRow(Proc::BlockPic));
  writeProcedureTitles(procedureRow(Proc::PostOpt));
  EXPECT_EQ(log, (std::vector<std::string>{" #### Executing PICTURE  ", " #### Executing BLOCKPIC ",
                                           " #### Executing POSTOPT"}));
  EXPECT_EQ(status, (std::vector<std::string>{
                        " ----#### Executing PICTURE  ", "=L#### MODRAKE PICTURE  ",
                        " ----#### Executing BLOCKPIC ", "=L#### MODRAKE BLOCKPIC ",
                        " ----#### Executing POSTOPT", "=L#### MODRAKE POSTOPT"}));
}

}  // namespace

#include "host/instance.h"

namespace {

// The switch asks the host whether the model has scale factors at all.
TEST(RunScaling, ScaleFactorsApplyOnlyWhenAskedForAndPresent) {
  for (const bool scaled : {false, true}) {
    HostInstance inst;
    inst.inputName = "scaling";
    inst.hasScale = scaled;
    inst.rowType = {kRowE};
    inst.colType = {kVarContinuous};
    ovmHandle model = ovmCreateFromInstance(inst);
    ASSERT_NE(model, nullptr);
    runState.model = model;
    setScaling(1);
    EXPECT_EQ(runState.useScale, scaled ? 1 : 0);
    setScaling(0);
    EXPECT_EQ(runState.useScale, 0);
    setScaling(-3);
    EXPECT_EQ(runState.useScale, scaled ? 1 : 0);
    runState.model = nullptr;
    ovmFree(model);
  }
}

}  // namespace
