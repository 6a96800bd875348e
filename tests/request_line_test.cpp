// Lines of the request file: reading them, and the normal form in which they are compared.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "request/request_line.h"
#include "run/run_state.h"

namespace {

struct RequestLine : ::testing::Test {
  void SetUp() override {
    runState.commentCount = 0;
    for (auto& c : runState.commentLines) c.clear();
  }
  void TearDown() override { SetUp(); }

  // The normal form, trailing blanks removed, and whether it is a comment.
  static std::string norm(const std::string& raw, int32_t* isComment = nullptr) {
    std::string line = raw;
    int32_t c = -1;
    normalizeRequestLine(line, c, MAX_LINE, &runState);
    EXPECT_EQ(line.size(), static_cast<size_t>(MAX_LINE));
    if (isComment != nullptr) *isComment = c;
    while (!line.empty() && line.back() == ' ') line.pop_back();
    return line;
  }
  static std::string comment(int32_t k) {
    std::string c = runState.commentLines[static_cast<size_t>(k - 1)];
    EXPECT_EQ(c.size(), static_cast<size_t>(COMMENT_LEN));
    while (!c.empty() && c.back() == ' ') c.pop_back();
    return c;
  }
};

// The normal form of a line and whether it is a comment: leading blanks and apostrophes go,
// case rises, blanks go up to the first parenthesis only, control characters count as blanks.
TEST_F(RequestLine, NormalForms) {
  const struct {
    std::string raw, normal;
    int32_t comment;
  } cases[] = {
      {"blockpic", "BLOCKPIC", 0},
      {"   ' 'analysis", "ANALYSIS", 0},
      {"\"quoted\" x", "\"QUOTED\"X", 0},  // a double quote stays
      {"$pw = 130", "$PW=130", 0},
      {"block pic", "BLOCKPIC", 0},
      {"supply (seattle, *)", "SUPPLY(SEATTLE, *)", 0},
      {"x ( 'new york' , b )  c", "X( 'NEW YORK' , B )  C", 0},
      {"a b)c ( d", "AB)C( D", 0},
      {"block\tpic", "BLOCKPIC", 0},
      {"\x01\x02" "analysis\x14", "ANALYSIS", 0},
      {"x(a\tb)", "X(A B)", 0},
      // Code 21 and above are characters like any other; bytes above 127 stay as they are.
      {"a\x15" "b", "A\x15" "B", 0},
      {"x(caf\xc3\xa9)", "X(CAF\xc3\xa9)", 0},
      // Blank and silent lines are comments, and are not counted.
      {"", "", 1},
      {"      ", "", 1},
      {"'''", "", 1},
      {"\t\t", "", 1},
      {"  ? all demand rows", "?ALLDEMANDROWS", 1},
  };
  for (const auto& c : cases) {
    int32_t comment = -1;
    EXPECT_EQ(norm(c.raw, &comment), c.normal) << c.raw;
    EXPECT_EQ(comment, c.comment) << c.raw;
  }
  EXPECT_EQ(runState.commentCount, 0);
}

TEST_F(RequestLine, EchoedCommentIsKeptAsTyped) {
  int32_t c = -1;
  EXPECT_EQ(norm("# Look at the Market", &c), "#LOOKATTHEMARKET");
  EXPECT_EQ(c, 1);
  EXPECT_EQ(runState.commentCount, 1);
  EXPECT_EQ(comment(1), "Look at the Market");

  norm("   ## #  second (one)");
  EXPECT_EQ(comment(2), "second (one)");
  norm("#");
  EXPECT_EQ(comment(3), "");
  norm("'#x");
  EXPECT_EQ(comment(4), "x");
  EXPECT_EQ(runState.commentCount, 4);
}

TEST_F(RequestLine, CommentIsCutTo72Characters) {
  const std::string text = std::string(70, 'a') + "bcdefgh";
  norm("#" + text);
  EXPECT_EQ(comment(1), text.substr(0, 72));
}

TEST_F(RequestLine, CommentsBeyondFiftyAreCountedNotKept) {
  for (int32_t k = 1; k <= 53; ++k) norm("# note " + std::to_string(k));
  EXPECT_EQ(runState.commentCount, 53);
  EXPECT_EQ(comment(1), "note 1");
  EXPECT_EQ(comment(50), "note 50");
}

TEST_F(RequestLine, LongLineIsCutToItsLength) {
  std::string line = std::string(400, 'q');
  int32_t c = -1;
  normalizeRequestLine(line, c, MAX_LINE, &runState);
  EXPECT_EQ(line, std::string(MAX_LINE, 'Q'));
}

struct RequestFile : ::testing::Test {
  std::filesystem::path path;
  void SetUp() override {
    // One file per process and test: ctest runs tests side by side.
    path = std::filesystem::temp_directory_path() /
           ("modrake_request_line_" + std::to_string(::getpid()) + "_" +
            ::testing::UnitTest::GetInstance()->current_test_info()->name() + ".txt");
  }
  void TearDown() override { std::filesystem::remove(path); }
  std::FILE* withText(const std::string& text) {
    std::FILE* f = std::fopen(path.c_str(), "wb");
    std::fwrite(text.data(), 1, text.size(), f);
    std::fclose(f);
    return std::fopen(path.c_str(), "rb");
  }
};

TEST_F(RequestFile, LinesArePaddedCutAndFreedOfTheirLineEnds) {
  std::FILE* f = withText("abc\r\nx\ry\n" + std::string(380, 'z') + "\nlast");
  std::string line;
  ASSERT_EQ(readRequestFileLine(f, line, 10), LineRead::Ok);
  EXPECT_EQ(line, "abc       ");
  ASSERT_EQ(readRequestFileLine(f, line, 10), LineRead::Ok);
  EXPECT_EQ(line, "x\ry       ");
  ASSERT_EQ(readRequestFileLine(f, line, MAX_LINE), LineRead::Ok);
  EXPECT_EQ(line, std::string(MAX_LINE, 'z'));
  ASSERT_EQ(readRequestFileLine(f, line, 6), LineRead::Ok);
  EXPECT_EQ(line, "last  ");
  EXPECT_EQ(readRequestFileLine(f, line, 6), LineRead::End);
  std::fclose(f);
}

TEST_F(RequestFile, EmptyLinesAndEmptyFile) {
  std::FILE* f = withText("\n\n");
  std::string line;
  EXPECT_EQ(readRequestFileLine(f, line, 3), LineRead::Ok);
  EXPECT_EQ(line, "   ");
  EXPECT_EQ(readRequestFileLine(f, line, 3), LineRead::Ok);
  EXPECT_EQ(readRequestFileLine(f, line, 3), LineRead::End);
  std::fclose(f);
}

TEST_F(RequestFile, ReadingADirectoryIsAnError) {
  std::FILE* f = std::fopen(std::filesystem::temp_directory_path().c_str(), "r");
  if (f == nullptr) GTEST_SKIP() << "directories do not open as files here";
  std::string line;
  EXPECT_EQ(readRequestFileLine(f, line, 10), LineRead::Error);
  std::fclose(f);
}

}  // namespace
