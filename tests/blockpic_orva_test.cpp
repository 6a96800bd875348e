// BLOCKPIC and BLOCKLIST through orva on a MathProg model: the conversion of the objective,
// the blocks of indexed symbols and the listing, end to end.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "golden.h"
#include "orva_run.h"

namespace fs = std::filesystem;

namespace {

const std::string kPlant = std::string(SOURCE_DIR) + "/examples/blocks/plant.mod";
const std::string kPlantRequests = std::string(SOURCE_DIR) + "/examples/blocks/plant.mrk";

// Runs orva in `dir` at page width 80 and returns its exit status; the listing is list.lst.
int runOrva(const fs::path& dir, const std::string& model, const std::string& extra) {
  const std::string cmd = "cd " + quote(dir.string()) + " && " + quote(ORVA_BIN) + " " +
                          quote(model) + " --no-solve --page-width 80 --listing list.lst " +
                          extra + " >run.out 2>run.err";
  const int raw = std::system(cmd.c_str());
  return WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
}

// The first line at or after `from` equal to `line`, or lines.size().
size_t find(const std::vector<std::string>& lines, const std::string& line, size_t from = 0) {
  for (size_t i = from; i < lines.size(); ++i) {
    if (lines[i] == line) return i;
  }
  return lines.size();
}

// True when `expected` stands in `lines` as consecutive lines.
bool containsBlock(const std::vector<std::string>& lines,
                   const std::vector<std::string>& expected) {
  for (size_t at = find(lines, expected.front()); at < lines.size();
       at = find(lines, expected.front(), at + 1)) {
    size_t k = 0;
    while (k < expected.size() && at + k < lines.size() && lines[at + k] == expected[k]) ++k;
    if (k == expected.size()) return true;
  }
  return false;
}

size_t count(const std::vector<std::string>& lines, const std::string& line) {
  size_t n = 0;
  for (const std::string& l : lines) n += l == line ? 1 : 0;
  return n;
}

// Table A of plant.mod: blocks make, sell and the objective variable objvar; the objective
// row total (=E=, right-hand side 0), cap (=L=), promo and none (=G=).
const std::vector<std::string> kPlantPicture = {
    " -------------------------------",
    " total        |  +  +  -  |  E  0   ",
    " cap          |  +        |  L  +   ",
    " promo        |     +     |  G  +   ",
    " none         |  -        |  G  0   ",
    " -------------------------------",
};

}  // namespace

TEST(BlockPicThroughOrva, PlantPictureListsAndFindings) {
  const fs::path dir = freshDir("plant");
  ASSERT_EQ(runOrva(dir, kPlant, "--requests " + quote(kPlantRequests)), 0);
  const std::vector<std::string> lst = readLines(dir / "list.lst");
  EXPECT_TRUE(containsBlock(lst, kPlantPicture));
  EXPECT_EQ(count(lst, "### B. Number of Coefficients by Block -- Strip   1"), 1u);
  EXPECT_EQ(count(lst, " ### C. Average Number of Coefficients by Column Block -- Strip   1"),
            1u);
  EXPECT_EQ(count(lst, "### D. Scaling - Maximum & Minimum Coefficients by Block -- Strip   1"),
            1u);
  // Counts over all entries; extremes without the objective row, and without the objective
  // variable's column.
  EXPECT_TRUE(containsBlock(lst, {
      "   Block          Res   Vars Nonl Coef Coef Coef  Absolute   Absolute",
      " make             >=0     2    0    6    2    0       4.0000     1.0000",
      " sell             >=0     1    0    2    0    0       1.0000     1.0000",
      " objvar           <0>     1    0    0    1    0       0.0000     0.0000",
  }));
  EXPECT_TRUE(containsBlock(lst, {
      "   Block          Res   Eqns Nonl Coef Coef Coef RHS  RHS  Absolute   Absolute",
      " total            =E=     1    0    3    1    0    0    0     50.0000     2.0000",
      " cap              =L=     2    0    4    0    0    2    0      4.0000     2.0000",
      " promo            =G=     1    0    1    0    0    1    0      1.0000     1.0000",
      " none             =G=     2    0    0    2    0    0    0      1.0000     1.0000",
  }));
  // Both procedures find sell unbounded and none forcing make to zero; the objective
  // variable's block is left out.
  EXPECT_EQ(count(lst, "**** ERROR These variables are unbounded -- they"), 2u);
  EXPECT_EQ(count(lst, " **** Warning  This =G= constraint causes all"), 2u);
  EXPECT_EQ(count(lst, " **** ERROR    These variables are unbounded"), 0u);
  fs::remove_all(dir);
}

TEST(BlockPicThroughOrva, NoRequestFileOrCommentsOnlyRunBlockPicOnce) {
  // Without a request file beside the model.
  const fs::path dir = freshDir("assumed");
  fs::copy_file(kPlant, dir / "plant.mod");
  ASSERT_EQ(runOrva(dir, (dir / "plant.mod").string(), ""), 0);
  std::vector<std::string> lst = readLines(dir / "list.lst");
  EXPECT_EQ(count(lst, " Assuming BLOCKPIC is requested"), 1u);
  EXPECT_EQ(count(lst, "### A. Aggregate Block Picture -- Strip   1"), 1u);
  EXPECT_TRUE(containsBlock(lst, kPlantPicture));
  EXPECT_EQ(count(lst, "### D. Scaling - Maximum & Minimum Coefficients by Block -- Strip   1"),
            1u);
  EXPECT_EQ(count(lst, " **** Warning  This =G= constraint causes all"), 1u);

  // A request file of comments only: BLOCKPIC once, the comment echoed at its title.
  {
    std::ofstream out(dir / "plant.mrk");
    out << "# only looking\n";
  }
  ASSERT_EQ(runOrva(dir, (dir / "plant.mod").string(), ""), 0);
  lst = readLines(dir / "list.lst");
  EXPECT_EQ(count(lst, "### A. Aggregate Block Picture -- Strip   1"), 1u);
  EXPECT_TRUE(containsBlock(lst, kPlantPicture));
  bool echoed = false;
  for (const std::string& l : lst) echoed = echoed || l.rfind("    only looking", 0) == 0;
  EXPECT_TRUE(echoed);
  fs::remove_all(dir);
}
