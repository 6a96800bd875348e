#include "orva/listing.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>

namespace {

std::string trimRight(const std::string& s) {
  size_t n = s.size();
  while (n > 0 && (s[n - 1] == ' ' || s[n - 1] == '\r' || s[n - 1] == '\t')) --n;
  return s.substr(0, n);
}

}  // namespace

std::vector<std::string> orvaListingLines(const std::vector<std::string>& statusLines,
                                          std::vector<std::string>& terminalLines) {
  std::vector<std::string> out;
  out.reserve(statusLines.size());
  for (const std::string& line : statusLines) {
    if (line.size() >= 2 && line[0] == '=') {
      char code = line[1];
      if (code == '1' || code == '2') continue;
      if (code == 'C') {
        std::string text = trimRight(line.substr(2));
        out.push_back(" " + text);
        terminalLines.push_back(text);
        continue;
      }
      if (code == 'L') {
        std::string text = trimRight(line.substr(2));
        out.push_back(" " + text);
        out.push_back(" " + std::string(text.size(), '='));
        continue;
      }
    }
    out.push_back(line);
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
  lines.push_back(trimRight(buf));
  std::snprintf(buf, sizeof buf, " Model status %5d  %s", modelStat, orvaModelStatName(modelStat));
  lines.push_back(trimRight(buf));
  return lines;
}

bool orvaWriteListing(const std::string& statusPath, const std::string& runStatusPath,
                      int handedSolveStat, int handedModelStat, std::FILE* out,
                      std::FILE* terminal, std::string& error) {
  std::ifstream in(statusPath, std::ios::binary);
  if (!in) {
    error = statusPath + ": cannot read the status file: " + std::strerror(errno);
    return false;
  }
  std::vector<std::string> statusLines;
  std::string line;
  while (std::getline(in, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    statusLines.push_back(line);
  }
  std::vector<std::string> terminalLines;
  std::vector<std::string> lines = orvaListingLines(statusLines, terminalLines);
  int solveStat = 0, modelStat = 0;
  if (!orvaReadRunStatus(runStatusPath, solveStat, modelStat)) {
    solveStat = handedSolveStat;
    modelStat = handedModelStat;
  }
  if (solveStat > 0 && modelStat > 0) {
    for (std::string& l : orvaRunStatusLines(solveStat, modelStat)) lines.push_back(std::move(l));
  }
  for (const std::string& t : terminalLines) std::fprintf(terminal, "%s\n", t.c_str());
  for (const std::string& l : lines) {
    std::fputs(l.c_str(), out);
    std::fputc('\n', out);
  }
  std::fflush(out);
  return true;
}

std::string orvaRunStopMessage(const std::string& statusPath) {
  std::ifstream in(statusPath, std::ios::binary);
  std::string line, lastText, lastComment;
  while (std::getline(in, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.rfind("=2", 0) == 0) return {};
    if (line.rfind("=C", 0) == 0 && line.find_first_not_of(' ', 2) != std::string::npos)
      lastComment = line.substr(2);
    else if (line.find_first_not_of(' ') != std::string::npos && line[0] != '=')
      lastText = line;
  }
  if (!lastComment.empty()) return lastComment;
  if (!lastText.empty()) return lastText;
  return "it left no message in the status file; its log above tells why";
}
