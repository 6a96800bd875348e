#include "golden.h"

#include <algorithm>
#include <fstream>
#include <sstream>

#include "host/host.h"

std::string auditLine() {
  ovpHandle audit = nullptr;
  std::string message;
  if (!ovpXCreate(audit, message)) return "(no audit object: " + message + ")";
  ovpSetSystemName(audit, "MODRAKE-B 1.3");
  std::string line = ovpGetAuditLine(audit);
  ovpFree(audit);
  line.resize(75, ' ');
  return line;
}

std::vector<std::string> readLines(const std::filesystem::path& path) {
  std::vector<std::string> lines;
  std::ifstream in(path, std::ios::binary);
  std::string line;
  while (std::getline(in, line)) lines.push_back(line);
  return lines;
}

std::vector<std::string> splitLines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

std::string readFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

std::vector<FileCase> readCases(const std::string& name) {
  std::vector<FileCase> cases;
  for (const std::string& line : readLines(std::filesystem::path(SOURCE_DIR) / "tests/data" / name)) {
    if (line.starts_with("### ")) {
      cases.push_back({line.substr(4), ""});
    } else if (!cases.empty()) {
      cases.back().text += line + "\n";
    }
  }
  if (cases.empty()) ADD_FAILURE() << "no cases in tests/data/" << name;
  return cases;
}

std::string substitute(std::string text, const std::map<std::string, std::string>& vars) {
  for (const auto& [key, value] : vars) {
    const std::string mark = "@" + key + "@";
    for (size_t at = text.find(mark); at != std::string::npos; at = text.find(mark, at)) {
      text.replace(at, mark.size(), value);
      at += value.size();
    }
  }
  return text;
}

::testing::AssertionResult matchesGolden(const std::vector<std::string>& lines,
                                         const std::string& name,
                                         const std::map<std::string, std::string>& vars,
                                         bool prefix) {
  const std::filesystem::path path = std::filesystem::path(SOURCE_DIR) / "tests/golden" / name;
  if (!std::filesystem::exists(path)) {
    return ::testing::AssertionFailure() << "no golden file " << path.string();
  }
  std::vector<std::string> golden = readLines(path);
  for (std::string& line : golden) line = substitute(line, vars);
  const size_t common = std::min(lines.size(), golden.size());
  for (size_t k = 0; k < common; ++k) {
    if (lines[k] != golden[k]) {
      return ::testing::AssertionFailure()
             << name << ", line " << k + 1 << ":\n  expected [" << golden[k] << "]\n  actual   ["
             << lines[k] << "]";
    }
  }
  if (lines.size() < golden.size()) {
    return ::testing::AssertionFailure() << name << ", line " << lines.size() + 1
                                         << ": missing [" << golden[lines.size()] << "]";
  }
  if (!prefix && lines.size() > golden.size()) {
    return ::testing::AssertionFailure() << name << ", line " << golden.size() + 1
                                         << ": more than expected [" << lines[golden.size()]
                                         << "]";
  }
  return ::testing::AssertionSuccess();
}

::testing::AssertionResult containsGolden(const std::vector<std::string>& lines,
                                          const std::string& name) {
  const std::vector<std::string> golden =
      readLines(std::filesystem::path(SOURCE_DIR) / "tests/golden" / name);
  if (golden.empty()) return ::testing::AssertionFailure() << "no golden lines in " << name;
  const auto at = std::search(lines.begin(), lines.end(), golden.begin(), golden.end());
  if (at == lines.end()) return ::testing::AssertionFailure() << name << " not found in the lines";
  return ::testing::AssertionSuccess();
}
