// Scratch files for the host tests: a folder of this process, removed at the end of the test.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "host/instance.h"

struct HostScratch {
  std::filesystem::path dir;
  HostScratch() {
    static int serial = 0;
    dir = std::filesystem::temp_directory_path() /
          ("modrake-host-" + std::to_string(getpid()) + "-" + std::to_string(++serial));
    std::filesystem::create_directories(dir);
  }
  ~HostScratch() {
    std::error_code ec;
    std::filesystem::remove_all(dir, ec);
  }
  // Writes `text` to a file of that name in the folder; gives its path.
  std::string write(const std::string& name, const std::string& text) const {
    const std::string path = (dir / name).string();
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }
  std::string path(const std::string& name) const { return (dir / name).string(); }
};

inline std::string hostTestData(const std::string& name) {
  return std::string(SOURCE_DIR) + "/tests/data/host/" + name;
}

// The names of the rows, or of the columns, of an instance, in order.
inline std::vector<std::string> hostItemNames(const HostInstance& inst, bool rows) {
  std::vector<std::string> names;
  for (int32_t k = 0; k < (rows ? inst.rowCount : inst.colCount); ++k)
    names.push_back(rows ? hostRowName(inst, k) : hostColName(inst, k));
  return names;
}
