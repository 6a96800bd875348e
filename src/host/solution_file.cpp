// The solution file:
//
//   * comment lines begin with '*' or '#'; blank lines are skipped
//   modelStat 1
//   solveStat 1                      optional, default 1
//   rows 3
//   cols 4
//   row 1 350 0.5 0 0 supply(seattle)      index level marginal stat cstat [name]
//   col 1 50 0 2 0 x(seattle,'new york')
//
// `rows` and `cols` come before the first row and column line and must equal the model's
// sizes; every row and column is given exactly once; a name, when present, must be the item's.
#include "host/solution_file.h"

#include <charconv>
#include <cstdlib>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>

namespace {

bool parseInt(const std::string& s, int64_t& v) {
  auto [ptr, ec] = std::from_chars(s.data(), s.data() + s.size(), v);
  return !s.empty() && ec == std::errc() && ptr == s.data() + s.size();
}

bool parseReal(const std::string& s, double& v) {
  if (s.empty()) return false;
  char* end = nullptr;
  v = std::strtod(s.c_str(), &end);
  return end == s.c_str() + s.size() && std::isfinite(v);
}

std::string number(double v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.17g", v);
  return buf;
}

}  // namespace

bool writeSolutionFile(const std::string& path, const HostInstance& instance,
                       const HostSolution& solution, std::string& error) {
  const auto m = static_cast<std::size_t>(instance.rowCount);
  const auto n = static_cast<std::size_t>(instance.colCount);
  if (solution.rowLevel.size() != m || solution.rowMarginal.size() != m ||
      solution.rowStat.size() != m || solution.rowCStat.size() != m ||
      solution.colLevel.size() != n || solution.colMarginal.size() != n ||
      solution.colStat.size() != n || solution.colCStat.size() != n) {
    error = path + ": the solution does not fit the model";
    return false;
  }
  std::ofstream out(path, std::ios::trunc);
  if (!out) {
    error = path + ": cannot write the solution file";
    return false;
  }
  out << "* solution of " << instance.inputName << "\n";
  out << "* row|col index level marginal stat cstat name\n";
  out << "modelStat " << solution.modelStat << "\n";
  out << "solveStat " << solution.solveStat << "\n";
  out << "rows " << m << "\ncols " << n << "\n";
  for (std::size_t i = 0; i < m; ++i)
    out << "row " << i + 1 << ' ' << number(solution.rowLevel[i]) << ' '
        << number(solution.rowMarginal[i]) << ' ' << solution.rowStat[i] << ' '
        << solution.rowCStat[i] << ' ' << hostRowName(instance, static_cast<int32_t>(i)) << "\n";
  for (std::size_t j = 0; j < n; ++j)
    out << "col " << j + 1 << ' ' << number(solution.colLevel[j]) << ' '
        << number(solution.colMarginal[j]) << ' ' << solution.colStat[j] << ' '
        << solution.colCStat[j] << ' ' << hostColName(instance, static_cast<int32_t>(j)) << "\n";
  out.close();
  if (!out) {
    error = path + ": write error";
    return false;
  }
  return true;
}

bool readSolutionFile(const std::string& path, const HostInstance& instance,
                      HostSolution& solution, std::string& error) {
  std::ifstream in(path);
  if (!in) {
    error = path + ": cannot open the solution file";
    return false;
  }
  const auto m = static_cast<std::size_t>(instance.rowCount);
  const auto n = static_cast<std::size_t>(instance.colCount);
  solution = HostSolution{};
  solution.rowLevel.assign(m, 0.0);
  solution.rowMarginal.assign(m, 0.0);
  solution.rowStat.assign(m, 0);
  solution.rowCStat.assign(m, 0);
  solution.colLevel.assign(n, 0.0);
  solution.colMarginal.assign(n, 0.0);
  solution.colStat.assign(n, 0);
  solution.colCStat.assign(n, 0);
  std::vector<int> rowLine(m, 0), colLine(n, 0);
  bool haveModelStat = false, haveRows = false, haveCols = false;
  int lineNo = 0;
  auto fail = [&](const std::string& what) {
    error = path + ":" + std::to_string(lineNo) + ": " + what;
    return false;
  };
  std::string line;
  while (std::getline(in, line)) {
    ++lineNo;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    std::istringstream words(line);
    std::string word;
    if (!(words >> word) || word[0] == '*' || word[0] == '#') continue;
    if (word == "modelStat" || word == "solveStat" || word == "rows" || word == "cols") {
      std::string v, extra;
      int64_t value = 0;
      if (!(words >> v) || !parseInt(v, value)) return fail(word + " needs a whole number");
      if (words >> extra) return fail("unexpected \"" + extra + "\" after " + word);
      if (word == "modelStat") {
        if (value < 1 || value > 14) return fail("model status " + v + " is not 1 to 14");
        solution.modelStat = static_cast<int32_t>(value);
        haveModelStat = true;
      } else if (word == "solveStat") {
        if (value < 1 || value > 13) return fail("solve status " + v + " is not 1 to 13");
        solution.solveStat = static_cast<int32_t>(value);
      } else if (word == "rows") {
        if (value != instance.rowCount)
          return fail("the solution has " + v + " rows, the model " +
                      std::to_string(instance.rowCount));
        haveRows = true;
      } else {
        if (value != instance.colCount)
          return fail("the solution has " + v + " columns, the model " +
                      std::to_string(instance.colCount));
        haveCols = true;
      }
      continue;
    }
    if (word != "row" && word != "col") return fail("unknown line kind \"" + word + "\"");
    const bool isRow = word == "row";
    if (isRow ? !haveRows : !haveCols)
      return fail(std::string(isRow ? "\"rows\"" : "\"cols\"") + " must come before the first " +
                  word + " line");
    std::string f[5];
    for (auto& x : f)
      if (!(words >> x)) return fail(word + " line needs index, level, marginal, stat, cstat");
    int64_t index = 0, stat = 0, cstat = 0;
    double level = 0, marginal = 0;
    const int64_t count = isRow ? instance.rowCount : instance.colCount;
    if (!parseInt(f[0], index) || index < 1 || index > count)
      return fail(word + " index \"" + f[0] + "\" is not 1 to " + std::to_string(count));
    if (!parseReal(f[1], level)) return fail("level \"" + f[1] + "\" is not a finite number");
    if (!parseReal(f[2], marginal))
      return fail("marginal \"" + f[2] + "\" is not a finite number");
    if (!parseInt(f[3], stat) || stat < 0 || stat > 3)
      return fail("basis status \"" + f[3] + "\" is not 0 to 3");
    if (!parseInt(f[4], cstat) || cstat < 0 || cstat > 3)
      return fail("condition status \"" + f[4] + "\" is not 0 to 3");
    const auto k = static_cast<std::size_t>(index - 1);
    std::string name;
    std::getline(words >> std::ws, name);
    while (!name.empty() && (name.back() == ' ' || name.back() == '\t')) name.pop_back();
    std::vector<int>& seen = isRow ? rowLine : colLine;
    if (seen[k] != 0)
      return fail(word + " " + f[0] + " given twice (also on line " + std::to_string(seen[k]) +
                  ")");
    seen[k] = lineNo;
    if (!name.empty()) {
      const std::string own = isRow ? hostRowName(instance, static_cast<int32_t>(k))
                                    : hostColName(instance, static_cast<int32_t>(k));
      if (name != own)
        return fail(word + " " + f[0] + " is \"" + own + "\" in the model, not \"" + name + "\"");
    }
    if (isRow) {
      solution.rowLevel[k] = level;
      solution.rowMarginal[k] = marginal;
      solution.rowStat[k] = static_cast<int32_t>(stat);
      solution.rowCStat[k] = static_cast<int32_t>(cstat);
    } else {
      solution.colLevel[k] = level;
      solution.colMarginal[k] = marginal;
      solution.colStat[k] = static_cast<int32_t>(stat);
      solution.colCStat[k] = static_cast<int32_t>(cstat);
    }
  }
  if (in.bad()) return fail("read error");
  if (!haveModelStat) return fail("no modelStat line");
  if (!haveRows || !haveCols) return fail("no \"rows\" and \"cols\" lines");
  for (std::size_t i = 0; i < m; ++i)
    if (rowLine[i] == 0) return fail("row " + std::to_string(i + 1) + " is missing");
  for (std::size_t j = 0; j < n; ++j)
    if (colLine[j] == 0) return fail("col " + std::to_string(j + 1) + " is missing");
  return true;
}

void applySolution(HostInstance& instance, const HostSolution& solution) {
  instance.rowLevel = solution.rowLevel;
  instance.rowMarginal = solution.rowMarginal;
  instance.rowStat = solution.rowStat;
  instance.rowCStat = solution.rowCStat;
  instance.colLevel = solution.colLevel;
  instance.colMarginal = solution.colMarginal;
  instance.colStat = solution.colStat;
  instance.colCStat = solution.colCStat;
  instance.modelStat = solution.modelStat;
  instance.solveStat = solution.solveStat;
  instance.hasSolution = true;
}
