// The section reader: words and modifiers per procedure, the header messages, splitting and
// storing requests, the lists it completes, and lines of any content.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "request/section_reader.h"
#include "request_harness.h"

namespace {

using request_test::Section;
using analysis_test::pad;
using request_test::trim;
using Lines = std::vector<std::string>;

struct SectionReader : ::testing::Test {
  void SetUp() override {
    runState.commentCount = 0;
    runState.pageWidthRequest = 0;
  }
  void TearDown() override { runState.commentCount = 0; }
};

TEST_F(SectionReader, PostoptExampleLineByLine) {
  Section s;
  s.read(PROC_POSTOPT, {"? all demand rows", "# look at the market", "BINDING", "equation",
                        "DEMAND", "supply (seattle, *)", "invariable", "X", "PICTURE", "Y"});
  EXPECT_EQ(runState.commentCount, 1);
  EXPECT_EQ(trim(runState.commentLines[0]), "look at the market");
  EXPECT_EQ(s.flags.equFilter, 1);
  EXPECT_EQ(s.flags.varFilter, 3);
  EXPECT_EQ(s.equs(), (Lines{"DEMAND|1|*|1|0", "SUPPLY|3|SEATTLE|_|*|1|0"}));
  EXPECT_EQ(trim(s.tables.lists.row.raw.view(2)), "SUPPLY(SEATTLE, *)");
  EXPECT_EQ(s.vars(), (Lines{"X|1|*|0|3"}));
  EXPECT_EQ(s.keyword, pad("PICTURE", NAME_LEN));
  EXPECT_TRUE(s.status.empty());
}

// Lists that the reader completes, by procedure and lines.
struct Completion {
  int32_t procIndex;
  std::vector<std::string> lines;
  Lines vars, equs;
};

TEST_F(SectionReader, CompletesTheListsTheUserLeftOut) {
  const std::vector<Completion> cases = {
      {PROC_DISPLAYCR, {}, {"*|0|1|0"}, {"*|0|1|0"}},
      {PROC_NONOPT, {"VERBOSE"}, {"*|0|1|0"}, {"*|0|1|0"}},
      {PROC_DISPLAYCR, {"EQUATION"}, {}, {"*|0|1|0"}},
      {PROC_DISPLAYCR, {"EQUATION X"}, {}, {"*|0|1|0"}},
      {PROC_DISPLAYCR, {"variables", "EQUATIONS"}, {"*|0|1|0"}, {"*|0|1|0"}},
      {PROC_DISPLAYCR, {"EQUATION", "S"}, {}, {"S|1|*|3|0"}},
      {PROC_DISPLAYCR, {"INEQUATION"}, {"*|0|1|1"}, {"*|0|3|1"}},
      {PROC_MATCHIT, {}, {"*|0|3|0"}, {"*|0|3|0"}},
      {PROC_MATCHIT, {"LISTVARIABLE"}, {"*|0|1|0"}, {"*|0|3|0"}},
      {PROC_MATCHIT, {"LISTEQUATIONS", "S", "VARIABLE", "X"}, {"X|1|*|3|0"}, {"S|1|*|1|0"}},
      // Under PICTURE a cross request selects its own items, and the side it reaches alone
      // gets the request that meets nothing.
      {PROC_PICTURE, {"INVARIABLE", "X"}, {"X|1|*|3|3"}, {"noway&|0|3|0"}},
      {PROC_PICTURE, {"INEQUATION", "S"}, {"noway&|0|3|0"}, {"S|1|*|3|3"}},
      {PROC_PICTURE, {"VARIABLE", "X"}, {"X|1|*|3|0"}, {}},
      {PROC_DISPLAYCR, {"INVARIABLE", "X"}, {"X|1|*|0|3"}, {}},
      {PROC_POSTOPT, {"INTERSECT", "INVARIABLE", "X"}, {"X|1|*|3|3"}, {}},
  };
  for (const Completion& c : cases) {
    SCOPED_TRACE(c.lines.empty() ? "(empty)" : c.lines.front());
    Section s;
    s.read(c.procIndex, c.lines);
    EXPECT_EQ(s.vars(), c.vars);
    EXPECT_EQ(s.equs(), c.equs);
    EXPECT_EQ(s.keyword, pad("THEEND", NAME_LEN));
  }
}

// The header refuses what its procedure does not accept, with the long message the first time
// and the short one after; a known word always gets "Input not valid".
TEST_F(SectionReader, HeaderRefusesWordsItsProcedureLacks) {
  Section s;
  s.read(PROC_DISPLAYCR, {"LISTVARIABLE", "THEEND", "BINDING", "NOWAY&", "$pw=130"});
  EXPECT_TRUE(matchesGolden(s.status, "requests/header-refusals.status"));
  EXPECT_EQ(s.log, s.status);
  EXPECT_EQ(runState.pageWidthRequest, 130);  // set, then refused
  EXPECT_EQ(s.vars(), (Lines{"*|0|1|0"}));

  // A known word first: the long message is still to come, and then it is spent.
  Section m;
  m.read(PROC_MATCHIT, {"LISTVARIBLE", "VERBOSE", "INVARIABLE"});
  ASSERT_EQ(m.status.size(), 3u);
  EXPECT_EQ(m.status[0], pad(" Input not valid for this procedure -- LISTVARIBLE", 89));
  EXPECT_EQ(m.status[1], pad(" Input not valid for this procedure -- VERBOSE", 89));
  EXPECT_EQ(m.status[2], pad(" Input ignored -- INVARIABLE", 68));

  // NONOPT and ADVISORY accept no section word; only NONOPT its two modifiers.
  Section n;
  n.read(PROC_NONOPT, {"IDENTIFY", "VARIABLE"});
  EXPECT_EQ(n.flags.verbosity, 2);
  EXPECT_EQ(n.status.front(), " Type of item to be selected not identified ");
  Section a;
  a.read(PROC_ADVISORY, {"VERBOSE"});
  EXPECT_EQ(a.flags.verbosity, 0);
  EXPECT_EQ(a.status.front(), pad(" Input not valid for this procedure -- VERBOSE", 89));
}

// Behind a section word, words the procedure lacks, THEEND and $PW= in the equation section are
// requests; PW= lines set the width; keywords end the section whatever their case and blanks;
// comments go on being counted.
TEST_F(SectionReader, SectionsTakeUnknownWordsAsRequests) {
  std::vector<std::string> lines(52, "# note");  // comments beyond 50 are dropped silently
  lines.insert(lines.end(), {"VARIABLE", "LISTVARIBLE", "THEEND", "pw=90", "$PW=80", "EQUATION",
                             "PW=70", "$PW=60", "'new york'", "\"la\"", "post opt", "X"});
  Section s;
  s.read(PROC_MATCHIT, lines);
  EXPECT_EQ(runState.commentCount, 52);
  EXPECT_EQ(s.vars(), (Lines{"LISTVARIBLE|1|*|3|0", "THEEND|1|*|3|0"}));
  EXPECT_EQ(s.equs(), (Lines{"$PW=60|1|*|3|0", "NEWYORK'|1|*|3|0", "\"LA\"|1|*|3|0"}));
  EXPECT_EQ(runState.pageWidthRequest, 60);
  EXPECT_EQ(s.keyword, pad("POSTOPT", NAME_LEN));
  EXPECT_TRUE(s.status.empty());
}

// A list takes its capacity less one request; the capacity-th brings the message, the reader
// returns with the request line as keyword and completes nothing.
TEST_F(SectionReader, FullListsStopTheReader) {
  Section v(2, 2);
  v.read(PROC_MATCHIT, {"VARIABLE", "A", "B", "C"});
  EXPECT_EQ(v.tables.lists.varCount, 2);
  EXPECT_EQ(v.tables.lists.equCount, 0);
  EXPECT_EQ(v.keyword, pad("B", NAME_LEN));
  const Lines varMessage = {"Number of variable requests too large", "     Maximum is    2",
                            " **** Fatal error in MODRAKE"};
  EXPECT_EQ(v.status, varMessage);
  EXPECT_EQ(v.log, varMessage);

  Section e(3, 3);
  e.read(PROC_DISPLAYCR, {"EQUATION", "A", "B", "C", "D"});
  EXPECT_EQ(e.equs(), (Lines{"A|1|*|3|0", "B|1|*|3|0"}));
  EXPECT_EQ(e.keyword, pad("C", NAME_LEN));
  EXPECT_EQ(e.status,
            (Lines{" ****Number of equation requests too large     Maximum is 3Fatal error"}));

  // Without room for a single request, the first one brings the message.
  Section z(0, 0);
  z.read(PROC_DISPLAYCR, {"VARIABLE", "X"});
  EXPECT_EQ(z.tables.lists.varCount, 0);
  EXPECT_EQ(z.status.front(), "Number of variable requests too large");
}

// Splitting: positions, quotes, blanks, what stands behind the tenth position or a ")", and
// lines of any content.
TEST_F(SectionReader, SplitsRequestsIntoPatterns) {
  const std::string longName(40, 'N');
  // clang-format off
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"X", "X|1|*"},                 {"x(a, b)", "X|3|A|_|B"},     {"X(A,B) C", "X|2|A|B"},
      {"X('new york',b)", "X|2|'NEW YORK'|B"},                      {"X(\"A,B\")", "X|1|\"A,B\""},
      {"X('open", "X|1|'OPEN"},       {"X()", "X|1|_"},             {"X(", "X|0"},
      {"X(,,)", "X|3|_|_|_"},         {"(((", "|1|(("},             {",,,,", ",,,,|1|*"},
      {"X(1,2,3,4,5,6,7,8,9,10,11,12)", "X|10|1|2|3|4|5|6|7|8|9|10"},
      {longName + "(" + longName + ")", std::string(31, 'N') + "|1|" + std::string(31, 'N')},
      // Lines of any content and length stay within their buffers.
      {std::string("X(A\0B)", 6), "X|2|A|B"}, {"caf\xc3\xa9(\xff,\x80)", "CAF\xc3\xa9|2|\xff|\x80"},
      {"Y(" + std::string(500, 'a') + "," + std::string(500, ','), "Y|1|" + std::string(31, 'A')},
      {"Z(" + std::string(400, ','), "Z|10|_|_|_|_|_|_|_|_|_|_"},
      {std::string(380, '('), "|1|" + std::string(31, '(')},
  };
  // clang-format on
  for (const auto& [line, expected] : cases) {
    SCOPED_TRACE(line);
    Section s;
    s.read(PROC_DISPLAYCR, {"VARIABLE", line});
    ASSERT_EQ(s.vars().size(), 1u);
    EXPECT_EQ(s.vars()[0], expected + "|3|0");
  }
}

// After ANALYSIS the reader takes its lines from the scratch file, from its start; the end of
// that file leaves a blank keyword, so the request loop reads on in the request file.
TEST_F(SectionReader, ReadsTheAnalysisFileFromItsStart) {
  Section s;
  s.read(PROC_DISPLAYCR, {"EQUATION", "S(A)", "VARIABLE", "X(B)"}, 1);
  EXPECT_EQ(s.equs(), (Lines{"S|1|A|3|0"}));
  EXPECT_EQ(s.vars(), (Lines{"X|1|B|3|0"}));
  EXPECT_EQ(s.keyword, std::string(NAME_LEN, ' '));
}

}  // namespace
