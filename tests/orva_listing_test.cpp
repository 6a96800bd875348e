// The listing made from the status file, and what orva reads of a request file.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "golden.h"
#include "orva_run.h"
#include "orva/listing.h"
#include "orva/requests.h"

namespace {

TEST(OrvaListing, HostRecordsAreActedOn) {
  const std::vector<std::string> status =
      readLines(std::string(SOURCE_DIR) + "/tests/data/orva/host-records.sta");
  ASSERT_EQ(status.size(), 11u);
  std::vector<std::string> terminal;
  EXPECT_TRUE(matchesGolden(orvaListingLines(status, terminal), "orva/host-records.listing"));
  const std::vector<std::string> expectedTerminal = {"Bad return code from ovdLoadEx:",
                                                     "no dictionary"};
  EXPECT_EQ(terminal, expectedTerminal);
}

TEST(OrvaListing, OnlyRecordsInColumnOneCount) {
  const std::vector<std::string> status = {" =1", "=", "=X text", "==2"};
  std::vector<std::string> terminal;
  EXPECT_EQ(orvaListingLines(status, terminal), status);
  EXPECT_TRUE(terminal.empty());
}

TEST(OrvaListing, RunStatusClosesTheListing) {
  const std::string path = tempPath("orva_ovmstat.scr");
  std::ofstream(path) << "solveStat 1\nmodelStat 14\n";
  int solveStat = 0, modelStat = 0;
  ASSERT_TRUE(orvaReadRunStatus(path, solveStat, modelStat));
  EXPECT_EQ(solveStat, 1);
  EXPECT_EQ(modelStat, 14);
  const std::vector<std::string> expected = {"", " Solve status     1  normal completion",
                                             " Model status    14  no solution returned"};
  EXPECT_EQ(orvaRunStatusLines(solveStat, modelStat), expected);

  std::ofstream(path) << "solveStat 1\n";
  EXPECT_FALSE(orvaReadRunStatus(path, solveStat, modelStat));
  std::remove(path.c_str());
  EXPECT_FALSE(orvaReadRunStatus(path, solveStat, modelStat));
}

TEST(OrvaListing, WrittenWholeFromTheFiles) {
  const std::string statusPath = tempPath("orva_listing.sta");
  const std::string runStatusPath = tempPath("orva_listing_ovmstat.scr");
  const std::string listingPath = tempPath("orva_listing.lst");
  std::ofstream(statusPath) << "=1\n first\n=L#### MODRAKE PICTURE  \n=2\n";
  std::ofstream(runStatusPath) << "modelStat 1\nsolveStat 1\n";
  std::string error;
  // The listing written with the statuses of the solution handed over.
  const auto listing = [&](int solveStat, int modelStat) {
    std::FILE* out = std::fopen(listingPath.c_str(), "w");
    std::FILE* terminal = std::fopen("/dev/null", "w");
    EXPECT_TRUE(orvaWriteListing(statusPath, runStatusPath, solveStat, modelStat, out, terminal,
                                 error)) << error;
    std::fclose(out);
    std::fclose(terminal);
    return readLines(listingPath);
  };
  EXPECT_TRUE(matchesGolden(listing(1, 4), "orva/status-from-modrake.listing"));
  // Without statuses from modrake, those of the solution handed over close the listing.
  std::remove(runStatusPath.c_str());
  EXPECT_TRUE(matchesGolden(listing(3, 8), "orva/status-handed-over.listing"));
  EXPECT_FALSE(orvaWriteListing(tempPath("no_such.sta"), runStatusPath, 0, 0, stdout,
                                stderr, error));
  EXPECT_NE(error.find("no_such.sta: cannot read the status file"), std::string::npos) << error;
  std::remove(statusPath.c_str());
  std::remove(listingPath.c_str());
}

// POSTOPT or NONOPT want a solution where they run: blanks are dropped before reading; a THEEND
// first runs BLOCKPIC, then reading goes on; in the section of a procedure that reads one,
// THEEND is a request and the next keyword runs. Comments and sections hold no keyword. The
// request files are those of tests/data/orva/solution-wanted.cases.
TEST(OrvaRequests, SolutionWantedByPostoptOrNonopt) {
  for (const FileCase& c : readCases("orva/solution-wanted.cases"))
    EXPECT_EQ(orvaScanRequests(c.text).needsSolution, c.expected == "solve") << c.text;
}

// Only lines between procedures that modrake cannot match are stray: not comments, keywords
// with text behind them, width lines, the lines of a section, nor THEEND; a THEEND after a
// procedure ends the reading, one before it does not. The keyword offered is at most two
// edits (a letter added, dropped, changed; neighbours swapped) from the line's beginning.
TEST(OrvaRequests, StrayLinesAreThoseModrakeCannotMatch) {
  const std::vector<OrvaStrayLine> strays =
      orvaScanRequests(
          "# comment\n\n  blokpic  \nTHEEND\nAnalysis of rows\npw=100\n$pw=80\n? silent\n"
          "$blocklst\nship everything\nDISPLAYCR\nVARIABLES\nblokpic\nTHEEND\nBLOCKPIC\n"
          "blcokpc\nblokpic please\nnopt\nblock\ntheen\nTHEEND\nanalysys\n")
          .strayLines;
  // Each as its line number, its text and the keyword offered.
  std::vector<std::string> shown;
  for (const OrvaStrayLine& stray : strays)
    shown.push_back(std::to_string(stray.lineNumber) + " [" + stray.text + "] " + stray.nearest);
  EXPECT_EQ(shown, (std::vector<std::string>{
                       "3 [blokpic] BLOCKPIC", "9 [$blocklst] $BLOCKLIST", "10 [ship everything] ",
                       "16 [blcokpc] BLOCKPIC", "17 [blokpic please] BLOCKPIC", "18 [nopt] NONOPT",
                       "19 [block] ", "20 [theen] THEEND"}));
  EXPECT_EQ(orvaStrayLineWarning("m.mrk", strays.at(2)),
            "m.mrk:10: warning: \"ship everything\" is no keyword, comment or PW= line; modrake "
            "passes over it (a comment begins with # or ?)");
}

}  // namespace
