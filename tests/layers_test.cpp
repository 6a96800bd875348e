// The layers point down: every project include of a file under src/ names a folder that the
// file's own folder may use. The CMake libraries link the same way.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>

namespace {

// The folders each folder may include, itself besides.
const std::map<std::string, std::set<std::string>> kMayInclude = {
    {"host", {}},
    {"base", {}},
    {"model", {"base", "host"}},
    // Item selection reads the labels of items and the views of the selection tables.
    {"request", {"model", "base", "host"}},
    // ANALYSIS's ladders of findings close BLOCKPIC and BLOCKLIST too.
    {"analysis", {"model", "request", "base", "host"}},
    {"pictures", {"analysis", "model", "request", "base", "host"}},
    {"listings", {"analysis", "model", "request", "base", "host"}},
    {"postsolution", {"analysis", "model", "request", "base", "host"}},
    {"run", {"analysis", "pictures", "listings", "postsolution", "model", "request", "base",
             "host"}},
    {"orva", {"request", "base", "host"}},
    // The fuzz targets hand input to the readers of every layer.
    {"fuzz", {"orva", "run", "request", "base", "host"}},
};

}  // namespace

TEST(Layers, EveryIncludePointsDown) {
  const std::filesystem::path src = std::filesystem::path(SOURCE_DIR) / "src";
  int files = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(src)) {
    const std::string ext = entry.path().extension().string();
    if (ext != ".h" && ext != ".cpp") continue;
    const std::string folder = entry.path().parent_path().filename().string();
    const auto allowed = kMayInclude.find(folder);
    ASSERT_NE(allowed, kMayInclude.end()) << "a folder with no layer: " << folder;
    ++files;
    std::ifstream in(entry.path());
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
      if (!line.starts_with("#include \"")) continue;
      const std::string target = line.substr(10, line.find('/', 10) - 10);
      if (target == folder || !kMayInclude.contains(target)) continue;
      EXPECT_TRUE(allowed->second.contains(target))
          << entry.path().lexically_relative(src).string() << ":" << number << " includes "
          << target << "/";
    }
  }
  EXPECT_GT(files, 50);
}
