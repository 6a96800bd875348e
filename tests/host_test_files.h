// For the host tests: scratch files in a folder of this process, removed at the end of the test;
// models read, and instances as text.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "host/instance.h"
#include "host/readers.h"

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

// Reads a model; a refusal fails the assertion with its message.
inline ::testing::AssertionResult hostRead(const ModelSource& source, HostInstance& inst) {
  std::string error;
  if (readModel(source, inst, error)) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << error;
}

// The symbols of an instance, in order: name, "equ" or "var", and dimension.
inline std::vector<std::string> hostSymbolLines(const HostInstance& in) {
  std::vector<std::string> lines;
  for (const HostSymbol& s : in.symbols)
    lines.push_back(s.name + (s.isEquation ? " equ " : " var ") + std::to_string(s.dim));
  return lines;
}

// Reads the model tests/data/host/NAME in the format its name tells.
inline ::testing::AssertionResult hostReadTestModel(const std::string& name, HostInstance& inst) {
  ModelFormat format = ModelFormat::Json;
  if (!formatFromExtension(name, format)) return ::testing::AssertionFailure() << name;
  return hostRead({hostTestData(name), format, "", {}}, inst);
}

// The instance as text, every number exact, columns in name order: what every form of a model
// must agree on.
inline std::string hostDescribe(const HostInstance& in) {
  const auto number = [](double v) {
    std::ostringstream s;
    s.precision(17);
    if (v == kHostInf || v == -kHostInf) s << (v > 0 ? "inf" : "-inf");
    else s << v;
    return s.str();
  };
  std::ostringstream out;
  out << "rows " << in.rowCount << " cols " << in.colCount << " nz " << hostNzCount(in)
      << (in.minimizing ? " min" : " max") << " objRow " << in.objRow << " objVar "
      << (in.objVar ? hostColName(in, in.objVar - 1) : "none") << "\n";
  for (int32_t i = 0; i < in.rowCount; ++i)
    out << "row " << hostRowName(in, i) << " " << in.rowType[i] << " " << number(in.rowRhs[i])
        << "\n";
  std::map<std::string, std::string> cols;
  for (int32_t j = 0; j < in.colCount; ++j) {
    std::string c = std::to_string(in.colType[j]) + " [" + number(in.colLower[j]) + "," +
                    number(in.colUpper[j]) + "]";
    for (int32_t k = in.colStart[j]; k < in.colStart[j + 1]; ++k)
      c += " " + hostRowName(in, in.entryRow[k]) + "=" + number(in.entryValue[k]);
    cols[hostColName(in, j)] = c;
  }
  for (const auto& [name, text] : cols) out << "col " << name << " " << text << "\n";
  for (const std::string& symbol : hostSymbolLines(in)) out << "symbol " << symbol << "\n";
  return out.str();
}
