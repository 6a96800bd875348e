#include "host/control_file.h"

#include <cctype>
#include <charconv>
#include <fstream>
#include <unordered_map>

#include "host/readers.h"

namespace {

std::string trim(const std::string& s) {
  const auto b = s.find_first_not_of(" \t\r");
  if (b == std::string::npos) return "";
  const auto e = s.find_last_not_of(" \t\r");
  return s.substr(b, e - b + 1);
}

std::string lower(std::string s) {
  for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return s;
}

enum class EntryKind { Text, Integer, Format, Scale };

struct Entry {
  const char* name;
  EntryKind kind;
};

constexpr Entry kEntries[] = {
    {kOptNameStaFile, EntryKind::Text},  {kOptNameWrkDir, EntryKind::Text},
    {kOptNameScrDir, EntryKind::Text},   {kOptNameScrExt, EntryKind::Text},
    {kOptPageWidth, EntryKind::Integer}, {kOptPageSize, EntryKind::Integer},
    {kOptModelFile, EntryKind::Text},    {kOptModelFormat, EntryKind::Format},
    {kOptDataFile, EntryKind::Text},     {kOptSolutionFile, EntryKind::Text},
    {kOptInputName, EntryKind::Text},    {kOptScaleSource, EntryKind::Scale},
    {kOptInstanceFile, EntryKind::Text}, {kOptPhaseFile, EntryKind::Text},
};

const Entry* findEntry(const std::string& name) {
  const std::string key = lower(name);
  for (const Entry& e : kEntries)
    if (lower(e.name) == key) return &e;
  return nullptr;
}

bool isInteger(const std::string& v) {
  int32_t value = 0;
  auto [ptr, ec] = std::from_chars(v.data(), v.data() + v.size(), value);
  return !v.empty() && ec == std::errc() && ptr == v.data() + v.size();
}

bool isFormatWord(const std::string& v) {
  static const char* const words[] = {"json", "mathprog", "mps", "fixed-mps", "lp", "nl"};
  for (const char* w : words)
    if (lower(v) == w) return true;
  return false;
}

}  // namespace

bool readHostControlFile(const std::string& path, HostOptions& options, std::string& error) {
  options.clear();
  std::ifstream in(path);
  if (!in) {
    error = path + ": cannot open the control file";
    return false;
  }
  if (!hostRegularFile(path, "control file", error)) return false;
  std::unordered_map<std::string, int> lineOf;  // entry (lower case) -> line where given
  std::string line;
  int lineNo = 0;
  auto fail = [&](const std::string& what) {
    error = path + ":" + std::to_string(lineNo) + ": " + what;
    return false;
  };
  while (std::getline(in, line)) {
    ++lineNo;
    const std::string text = trim(line);
    if (text.empty() || text[0] == '*' || text[0] == '#') continue;
    const auto eq = text.find('=');
    if (eq == std::string::npos) return fail("no \"=\" in \"" + text + "\"");
    const std::string name = trim(text.substr(0, eq));
    const std::string value = trim(text.substr(eq + 1));
    if (name.empty()) return fail("no entry name before \"=\"");
    const Entry* entry = findEntry(name);
    if (entry == nullptr) return fail("unknown entry \"" + name + "\"");
    auto [it, added] = lineOf.try_emplace(lower(name), lineNo);
    if (!added)
      return fail("entry " + std::string(entry->name) + " given twice (also on line " +
                  std::to_string(it->second) + ")");
    switch (entry->kind) {
      case EntryKind::Integer:
        if (!isInteger(value))
          return fail(std::string(entry->name) + " must be a whole number, not \"" + value +
                      "\"");
        break;
      case EntryKind::Format:
        if (!value.empty() && !isFormatWord(value))
          return fail("unknown model format \"" + value +
                      "\" (json, mathprog, mps, fixed-mps, lp or nl)");
        break;
      case EntryKind::Scale:
        if (!value.empty() && lower(value) != "none" && lower(value) != "auto")
          return fail("ScaleSource must be none or auto, not \"" + value + "\"");
        break;
      case EntryKind::Text:
        break;
    }
    options.emplace_back(entry->name, value);
  }
  if (in.bad()) return fail("read error");
  return true;
}

bool writeHostControlFile(const std::string& path, const HostOptions& options,
                          std::string& error) {
  for (const auto& [name, value] : options) {
    if (findEntry(name) == nullptr) {
      error = path + ": unknown entry \"" + name + "\"";
      return false;
    }
    if (value.find_first_of("\r\n") != std::string::npos) {
      error = path + ": the value of " + name + " holds a line break";
      return false;
    }
  }
  std::ofstream out(path, std::ios::trunc);
  if (!out) {
    error = path + ": cannot write the control file";
    return false;
  }
  for (const auto& [name, value] : options) out << name << " = " << value << '\n';
  out.close();
  if (!out) {
    error = path + ": write error";
    return false;
  }
  return true;
}
