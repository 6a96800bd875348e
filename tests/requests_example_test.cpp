// The bundled request example through orva: PICTURE and MATCHIT with wild cards, a quoted
// label, a cross request, a list request and a request that meets nothing. The whole listing
// is compared with tests/golden/requests/markets.listing, worked out by hand.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "golden.h"

namespace fs = std::filesystem;

namespace {

// The host's audit line, as `modrake AUDIT` writes it.
std::string auditLine() {
  std::string out;
  if (std::FILE* p = popen((std::string(MODRAKE_BIN) + " AUDIT").c_str(), "r")) {
    for (int c; (c = std::fgetc(p)) != EOF;) out.push_back(static_cast<char>(c));
    pclose(p);
  }
  while (!out.empty() && (out.back() == '\n' || out.back() == '\r')) out.pop_back();
  return out;
}

TEST(RequestsExample, WholeListing) {
  const fs::path dir =
      fs::path(testing::TempDir()) / ("requests_example_" + std::to_string(getpid()));
  fs::remove_all(dir);
  fs::create_directories(dir);
  const std::string model = std::string(SOURCE_DIR) + "/examples/requests/markets.mod";
  const std::string cmd = "cd '" + dir.string() + "' && '" + ORVA_BIN + "' '" + model +
                          "' --listing markets.lst >run.out 2>run.err";
  const int raw = std::system(cmd.c_str());
  ASSERT_TRUE(WIFEXITED(raw) && WEXITSTATUS(raw) == 0);

  EXPECT_TRUE(matchesGolden(readLines(dir / "markets.lst"), "requests/markets.listing",
                            {{"AUDIT", auditLine()}}));
  fs::remove_all(dir);
}

}  // namespace
