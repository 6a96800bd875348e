#include "orva/listing.h"

#include <cerrno>
#include <cstring>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace {

std::string_view trimRight(std::string_view s) {
  size_t n = s.size();
  while (n > 0 && (s[n - 1] == ' ' || s[n - 1] == '\r' || s[n - 1] == '\t')) --n;
  return s.substr(0, n);
}

// One status line into the lines of the listing, given to `emit` one by one.
template <class Emit>
void listingLine(std::string_view line, std::vector<std::string>& terminalLines, Emit emit) {
  if (line.size() >= 2 && line[0] == '=') {
    const char code = line[1];
    if (code == '1' || code == '2') return;
    if (code == 'C' || code == 'L') {
      const std::string_view text = trimRight(line.substr(2));
      std::string shown(1, ' ');
      emit(shown.append(text));
      if (code == 'C') terminalLines.emplace_back(text);
      if (code == 'L') emit(shown.replace(1, std::string::npos, text.size(), '='));
      return;
    }
  }
  emit(line);
}

// Calls `f` with every line of a file, without its line end; false when it cannot be opened.
// The status file of a large model runs to hundreds of megabytes: it is read in large blocks
// and never held whole.
template <class F>
bool eachLine(const std::string& path, F f) {
  std::FILE* in = std::fopen(path.c_str(), "rb");
  if (in == nullptr) return false;
  std::setvbuf(in, nullptr, _IOFBF, std::size_t{1} << 20);
  char* buffer = nullptr;
  std::size_t capacity = 0;
  ssize_t got = 0;
  while ((got = getline(&buffer, &capacity, in)) > 0) {
    std::string_view line(buffer, static_cast<std::size_t>(got));
    if (line.back() == '\n') line.remove_suffix(1);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    f(line);
  }
  std::free(buffer);
  std::fclose(in);
  return true;
}

}  // namespace

std::vector<std::string> orvaListingLines(const std::vector<std::string>& statusLines,
                                          std::vector<std::string>& terminalLines) {
  std::vector<std::string> out;
  out.reserve(statusLines.size());
  for (const std::string& line : statusLines) {
    listingLine(line, terminalLines, [&](std::string_view l) { out.emplace_back(l); });
  }
  return out;
}

const char* orvaSolveStatName(int code) {
  switch (code) {
    case 1: return "normal completion";
    case 2: return "iteration interrupt";
    case 3: return "resource interrupt";
    case 4: return "terminated by solver";
    case 6: return "capability problem";
    default: return "";
  }
}

const char* orvaModelStatName(int code) {
  static const char* const kNames[] = {
      "",
      "optimal",
      "locally optimal",
      "unbounded",
      "infeasible",
      "locally infeasible",
      "intermediate infeasible",
      "intermediate nonoptimal",
      "integer solution",
      "intermediate non-integer",
      "integer infeasible",
      "licensing problem",
      "error unknown",
      "error no solution",
      "no solution returned",
  };
  return code >= 1 && code <= 14 ? kNames[code] : "";
}

bool orvaReadRunStatus(const std::string& path, int& solveStat, int& modelStat) {
  std::ifstream in(path);
  if (!in) return false;
  bool haveSolve = false, haveModel = false;
  std::string line;
  while (std::getline(in, line)) {
    std::istringstream words(line);
    std::string name;
    long value = 0;
    if (!(words >> name >> value) || value < -99999 || value > 99999) continue;
    if (name == "solveStat") {
      solveStat = static_cast<int>(value);
      haveSolve = true;
    } else if (name == "modelStat") {
      modelStat = static_cast<int>(value);
      haveModel = true;
    }
  }
  return haveSolve && haveModel;
}

std::vector<std::string> orvaRunStatusLines(int solveStat, int modelStat) {
  char buf[96];
  std::vector<std::string> lines{""};
  std::snprintf(buf, sizeof buf, " Solve status %5d  %s", solveStat, orvaSolveStatName(solveStat));
  lines.emplace_back(trimRight(buf));
  std::snprintf(buf, sizeof buf, " Model status %5d  %s", modelStat, orvaModelStatName(modelStat));
  lines.emplace_back(trimRight(buf));
  return lines;
}

namespace {

// What a status file tells of how modrake's run ended, gathered line by line.
struct StopScan {
  std::string lastText, lastComment;
  bool closed = false;

  void line(std::string_view line) {
    if (line.starts_with("=2")) closed = true;
    if (closed) return;
    if (line.starts_with("=C") && line.find_first_not_of(' ', 2) != std::string_view::npos)
      lastComment = line.substr(2);
    else if (line.find_first_not_of(' ') != std::string_view::npos && line[0] != '=')
      lastText = line;
  }
  std::string message() const {
    if (closed) return {};
    if (!lastComment.empty()) return lastComment;
    if (!lastText.empty()) return lastText;
    return "it left no message in the status file; its log above tells why";
  }
};

}  // namespace

bool orvaWriteListing(const std::string& statusPath, const std::string& runStatusPath,
                      int handedSolveStat, int handedModelStat, std::FILE* out,
                      std::FILE* terminal, std::string& error, std::string* stopMessage) {
  std::vector<std::string> terminalLines;
  StopScan scan;
  const bool read = eachLine(statusPath, [&](std::string_view line) {
    if (stopMessage != nullptr) scan.line(line);
    listingLine(line, terminalLines, [&](std::string_view l) {
      std::fwrite(l.data(), 1, l.size(), out);
      std::fputc('\n', out);
    });
  });
  if (!read) {
    error = statusPath + ": cannot read the status file: " + std::strerror(errno);
    return false;
  }
  int solveStat = 0, modelStat = 0;
  if (!orvaReadRunStatus(runStatusPath, solveStat, modelStat)) {
    solveStat = handedSolveStat;
    modelStat = handedModelStat;
  }
  if (solveStat > 0 && modelStat > 0) {
    for (const std::string& l : orvaRunStatusLines(solveStat, modelStat)) {
      std::fputs(l.c_str(), out);
      std::fputc('\n', out);
    }
  }
  for (const std::string& t : terminalLines) std::fprintf(terminal, "%s\n", t.c_str());
  std::fflush(out);
  if (stopMessage != nullptr) *stopMessage = scan.message();
  return true;
}
