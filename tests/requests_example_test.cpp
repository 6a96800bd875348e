// The bundled request example through orva: PICTURE and MATCHIT with wild cards, a quoted
// label, a cross request, a list request and a request that meets nothing. The whole listing
// is compared with tests/golden/requests/markets.listing, worked out by hand.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "golden.h"
#include "orva_run.h"

namespace fs = std::filesystem;

namespace {

TEST(RequestsExample, WholeListing) {
  const fs::path dir = freshDir("requests_example");
  const std::string model = std::string(SOURCE_DIR) + "/examples/requests/markets.mod";
  ASSERT_EQ(runOrva(dir, {model, "--listing", "markets.lst"}).status, 0);

  EXPECT_TRUE(matchesGolden(readLines(dir / "markets.lst"), "requests/markets.listing",
                            {{"AUDIT", auditLine()}}));
  fs::remove_all(dir);
}

}  // namespace
