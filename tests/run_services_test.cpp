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

TEST_F(RunServices, LookupIgnoresWhatStandsBehindAKeyword) {
  EXPECT_EQ(look("BLOCKPICTURE"), 4);
  EXPECT_EQ(look("BLOCKLISTS"), 6);
  EXPECT_EQ(look("$POSTOPTIMAL"), 2);
  EXPECT_EQ(look("ANALYSIS(X)"), 5);
  // Only the first 31 characters count: a keyword there still matches.
  EXPECT_EQ(look("NONOPT" + std::string(40, 'Z')), 8);
}

TEST_F(RunServices, LookupRefusesWhatDoesNotBeginWithAKeyword) {
  EXPECT_EQ(look("BLOCK"), 0);
  EXPECT_EQ(look("XBLOCKPIC"), 0);
  EXPECT_EQ(look("blockpic"), 0);  // lines are upper-cased before the lookup, not by it
  EXPECT_EQ(look(""), 0);
  EXPECT_EQ(look("$$ANALYSIS"), 0);
  EXPECT_EQ(look("PW"), 0);
  EXPECT_EQ(look("THEEN"), 0);
  EXPECT_EQ(look(std::string(31, ' ') + "ANALYSIS"), 0);
}

TEST_F(RunServices, LookupOfThEEndGivesMinusOne) {
  EXPECT_EQ(look("THEEND"), -1);
  EXPECT_EQ(look("THEENDOFIT"), -1);
  EXPECT_EQ(look("THEEND", 2), -1);
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

TEST_F(RunServices, PageWidthTakesThreeCharactersFromTheRight) {
  EXPECT_EQ(width("PW=120"), 120);
  EXPECT_EQ(width("$PW=120"), 120);
  EXPECT_EQ(width("PW=1000"), 100);  // the fourth digit is not read
  EXPECT_EQ(width("PW=20"), 20);     // no lower limit here
  EXPECT_EQ(width("PW=999"), 999);
  EXPECT_EQ(width("PW=7  "), 7);     // blanks right of the last digit do not count
  EXPECT_EQ(width("PW=  7"), 7);
  EXPECT_EQ(width("PW= 8"), 8);
  EXPECT_EQ(width("PW=8 5"), 805);   // a blank left of a digit is a 0
  EXPECT_EQ(width("PW=1X2"), 12);    // other characters are skipped
  EXPECT_EQ(width("PW=-50"), 50);
  EXPECT_EQ(width("PW=12" + std::string(20, '9')), 129);
}

TEST_F(RunServices, PageWidthWithoutDigitsIsZero) {
  runState.pageWidthRequest = 77;
  EXPECT_EQ(width("PW="), 0);
  runState.pageWidthRequest = 77;
  EXPECT_EQ(width("PW=ABC"), 0);
  runState.pageWidthRequest = 77;
  EXPECT_EQ(width("PW=   "), 0);
  runState.pageWidthRequest = 77;
  EXPECT_EQ(width("PW"), 0);
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
