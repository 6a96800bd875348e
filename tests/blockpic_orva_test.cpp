// BLOCKPIC and BLOCKLIST through orva on a MathProg model: the conversion of the objective,
// the blocks of indexed symbols and the listing, end to end.
#include <gtest/gtest.h>

#include <algorithm>
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
int runPlant(const fs::path& dir, const std::string& model, std::vector<std::string> args = {}) {
  args.insert(args.begin(), {model, "--no-solve", "--page-width", "80", "--listing", "list.lst"});
  return runOrva(dir, args).status;
}

size_t count(const std::vector<std::string>& lines, const std::string& line) {
  return static_cast<size_t>(std::count(lines.begin(), lines.end(), line));
}

}  // namespace

TEST(BlockPicThroughOrva, PlantPictureListsAndFindings) {
  const fs::path dir = freshDir("plant");
  ASSERT_EQ(runPlant(dir, kPlant, {"--requests", kPlantRequests}), 0);
  const std::vector<std::string> lst = readLines(dir / "list.lst");
  EXPECT_TRUE(containsGolden(lst, "orva/plant-table-a.part"));
  EXPECT_EQ(count(lst, "### B. Number of Coefficients by Block -- Strip   1"), 1u);
  EXPECT_EQ(count(lst, " ### C. Average Number of Coefficients by Column Block -- Strip   1"),
            1u);
  EXPECT_EQ(count(lst, "### D. Scaling - Maximum & Minimum Coefficients by Block -- Strip   1"),
            1u);
  // Counts over all entries; extremes without the objective row, and without the objective
  // variable's column.
  EXPECT_TRUE(containsGolden(lst, "orva/plant-variable-blocks.part"));
  EXPECT_TRUE(containsGolden(lst, "orva/plant-equation-blocks.part"));
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
  ASSERT_EQ(runPlant(dir, (dir / "plant.mod").string()), 0);
  std::vector<std::string> lst = readLines(dir / "list.lst");
  EXPECT_EQ(count(lst, " Assuming BLOCKPIC is requested"), 1u);
  EXPECT_EQ(count(lst, "### A. Aggregate Block Picture -- Strip   1"), 1u);
  EXPECT_TRUE(containsGolden(lst, "orva/plant-table-a.part"));
  EXPECT_EQ(count(lst, "### D. Scaling - Maximum & Minimum Coefficients by Block -- Strip   1"),
            1u);
  EXPECT_EQ(count(lst, " **** Warning  This =G= constraint causes all"), 1u);

  // A request file of comments only: BLOCKPIC once, the comment echoed at its title.
  {
    std::ofstream out(dir / "plant.mrk");
    out << "# only looking\n";
  }
  ASSERT_EQ(runPlant(dir, (dir / "plant.mod").string()), 0);
  lst = readLines(dir / "list.lst");
  EXPECT_EQ(count(lst, "### A. Aggregate Block Picture -- Strip   1"), 1u);
  EXPECT_TRUE(containsGolden(lst, "orva/plant-table-a.part"));
  bool echoed = false;
  for (const std::string& l : lst) echoed = echoed || l.rfind("    only looking", 0) == 0;
  EXPECT_TRUE(echoed);
  fs::remove_all(dir);
}
