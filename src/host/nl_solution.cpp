// AMPL solution files (.sol, text form) for a model read from a .nl file:
//
//   the solver's message, one or more lines, then an empty line
//   Options                      with a count k, k values, and one more line when the
//   3  1  1  0                   second value is 3
//   3  3  3  3                   constraints, dual values given, variables, primal values given
//   dual values, one a line, then primal values
//   objno 0 0                    the objective and the solve result code
//
// The levels are the primal values; the rows' levels, the objective variable and the reduced
// costs come from the functions and derivatives at that point, evaluated by the AMPL solver
// library in a child process.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "host/nl_evaluator.h"
#include "host/solution_file.h"

namespace {

// The solve result code of a .sol file into the host's statuses.
struct SolveResult {
  int32_t from, to;          // a range of codes
  int32_t modelLinear;       // model status of a linear model
  int32_t modelNonlinear;    // of a model with nonlinear entries
  int32_t solveStat;
};
constexpr SolveResult kSolveResults[] = {
    {0, 99, kStatOptimal, kStatLocallyOptimal, 1},                          // solved
    {100, 199, kStatIntermediateNonoptimal, kStatIntermediateNonoptimal, 1},  // solved?
    {200, 299, kStatInfeasible, kStatLocallyInfeasible, 1},                 // infeasible
    {300, 399, kStatUnbounded, kStatUnbounded, 1},                          // unbounded
    {400, 499, kStatIntermediateNonoptimal, kStatIntermediateNonoptimal, 3},  // a limit
    {500, 599, kStatErrorNoSolution, kStatErrorNoSolution, 4},              // failure
};

std::string trim(const std::string& s) {
  const auto a = s.find_first_not_of(" \t\r");
  if (a == std::string::npos) return "";
  return s.substr(a, s.find_last_not_of(" \t\r") - a + 1);
}

bool realOf(const std::string& s, double& v) {
  if (s.empty()) return false;
  char* end = nullptr;
  v = std::strtod(s.c_str(), &end);
  return end == s.c_str() + s.size() && std::isfinite(v);
}

bool wholeOf(const std::string& s, long& v) {
  double d = 0.0;
  if (!realOf(s, d) || d != std::floor(d) || std::fabs(d) > 2e9) return false;
  v = static_cast<long>(d);
  return true;
}

}  // namespace

int32_t nlModelStatus(int32_t solveResult, bool nonlinear, int32_t& solveStat) {
  for (const SolveResult& r : kSolveResults)
    if (solveResult >= r.from && solveResult <= r.to) {
      solveStat = r.solveStat;
      return nonlinear ? r.modelNonlinear : r.modelLinear;
    }
  solveStat = 4;
  return kStatErrorUnknown;
}

bool readNlSolutionFile(const std::string& path, const HostInstance& inst, HostSolution& sol,
                        std::string& error) {
  std::ifstream f(path, std::ios::binary);
  if (!f) {
    error = path + ": cannot read the solution file";
    return false;
  }
  std::vector<std::string> lines;
  for (std::string line; std::getline(f, line);) lines.push_back(trim(line));
  std::size_t at = 0;
  auto where = [&](std::size_t line) { return path + ":" + std::to_string(line + 1) + ": "; };
  // The message ends at the first empty line.
  while (at < lines.size() && !lines[at].empty()) ++at;
  ++at;
  long v = 0;
  auto whole = [&](const char* what, long& out) {
    if (at >= lines.size()) {
      error = path + ": the file ends before " + what;
      return false;
    }
    if (!wholeOf(lines[at], out)) {
      error = where(at) + "expected " + what + ", not \"" + lines[at] + "\"";
      return false;
    }
    ++at;
    return true;
  };
  if (at < lines.size() && lines[at] == "Options") {
    ++at;
    long count = 0, second = 0;
    if (!whole("the count of options", count)) return false;
    if (count < 0 || count > 9) {
      error = where(at - 1) + "the count of options must be from 0 to 9";
      return false;
    }
    for (long k = 1; k <= count; ++k) {
      if (!whole("an option value", v)) return false;
      if (k == 2) second = v;
    }
    if (count >= 2 && second == 3 && !whole("the tolerance line of option 3", v)) return false;
  }
  // The sizes of the .nl model: variables without the objective variable, constraints as the
  // rows' .nl items name them.
  const long vars = inst.colCount - (inst.objVar > 0 ? 1 : 0);
  long cons = 0;
  for (int32_t item : inst.rowNlItem) cons = std::max<long>(cons, item + 1L);
  long m = 0, mGiven = 0, n = 0, nGiven = 0;
  if (!whole("the count of constraints", m)) return false;
  if (m != cons) {
    error = where(at - 1) + "the solution has " + std::to_string(m) + " constraints, the model " +
            std::to_string(cons);
    return false;
  }
  if (!whole("the count of dual values", mGiven)) return false;
  if (mGiven != 0 && mGiven != m) {
    error = where(at - 1) + "the count of dual values must be 0 or " + std::to_string(m);
    return false;
  }
  if (!whole("the count of variables", n)) return false;
  if (n != vars) {
    error = where(at - 1) + "the solution has " + std::to_string(n) + " variables, the model " +
            std::to_string(vars);
    return false;
  }
  if (!whole("the count of primal values", nGiven)) return false;
  if (nGiven != 0 && nGiven != n) {
    error = where(at - 1) + "the count of primal values must be 0 or " + std::to_string(n);
    return false;
  }
  std::vector<double> dual(static_cast<std::size_t>(m), 0.0), x(static_cast<std::size_t>(vars), 0.0);
  auto values = [&](std::vector<double>& into, long count, const char* what) {
    for (long k = 0; k < count; ++k) {
      if (at >= lines.size()) {
        error = path + ": the file ends before the last " + what;
        return false;
      }
      if (!realOf(lines[at], into[static_cast<std::size_t>(k)])) {
        error = where(at) + "expected a " + what + ", not \"" + lines[at] + "\"";
        return false;
      }
      ++at;
    }
    return true;
  };
  if (!values(dual, mGiven, "dual value") || !values(x, nGiven, "primal value")) return false;
  std::istringstream objno(at < lines.size() ? lines[at] : "");
  std::string word;
  long objective = 0, result = 0;
  std::string o, r, extra;
  if (!(objno >> word >> o >> r) || word != "objno" || (objno >> extra) || !wholeOf(o, objective) ||
      !wholeOf(r, result)) {
    error = at < lines.size() ? where(at) + "expected \"objno\", the objective and the solve result code"
                              : path + ": the file ends before the line \"objno\" with the solve result code";
    return false;
  }
  sol.modelStat = nlModelStatus(static_cast<int32_t>(result), hostNonlinearCount(inst) > 0, sol.solveStat);
  if (nGiven == 0) sol.modelStat = kStatErrorNoSolution;

  // The functions and derivatives at the point, for every item with a nonlinear entry.
  const auto rows = static_cast<std::size_t>(inst.rowCount), cols = static_cast<std::size_t>(inst.colCount);
  const long objs = inst.rowNlItem.empty() ? 0 : -*std::min_element(inst.rowNlItem.begin(), inst.rowNlItem.end());
  const auto slots = static_cast<std::size_t>(std::max(0L, objs) + cons);
  auto slotOf = [&](std::size_t row) { return static_cast<std::size_t>(inst.rowNlItem[row] + std::max(0L, objs)); };
  std::vector<char> nonlinearSlot(slots, 0);
  for (std::size_t k = 0; k < inst.entryRow.size(); ++k)
    if (hostEntryNonlinear(inst, k)) nonlinearSlot[slotOf(static_cast<std::size_t>(inst.entryRow[k]))] = 1;
  std::vector<NlRequest> requests;
  std::vector<int32_t> requestOf(slots, -1), lastCol(slots, -1);
  for (std::size_t s = 0; s < slots; ++s)
    if (nonlinearSlot[s]) {
      requestOf[s] = static_cast<int32_t>(requests.size());
      requests.push_back({static_cast<int32_t>(s) - static_cast<int32_t>(std::max(0L, objs)), {}});
    }
  for (int32_t j = 0; j < static_cast<int32_t>(vars); ++j)
    for (int32_t k = inst.colStart[j]; k < inst.colStart[j + 1]; ++k) {
      const std::size_t s = slotOf(static_cast<std::size_t>(inst.entryRow[k]));
      if (requestOf[s] < 0 || lastCol[s] == j) continue;
      lastCol[s] = j;
      requests[static_cast<std::size_t>(requestOf[s])].vars.push_back(j);
    }
  std::vector<NlAnswer> answers;
  if (!requests.empty() && !nlEvaluateInChild(inst.nlFile, x, requests, answers, error)) return false;
  for (std::size_t q = 0; q < answers.size(); ++q)
    if (!answers[q].ok) {
      error = path + ": the model's functions cannot be evaluated at this solution (" +
              (requests[q].item >= 0 ? "constraint " + std::to_string(requests[q].item)
                                     : "objective " + std::to_string(-1 - requests[q].item)) +
              ")";
      return false;
    }

  // Entry values at the point: derivatives where the row is nonlinear.
  std::vector<double> value(inst.entryValue);
  std::vector<int32_t> cursor(slots, 0);
  std::fill(lastCol.begin(), lastCol.end(), -1);
  for (int32_t j = 0; j < static_cast<int32_t>(vars); ++j)
    for (int32_t k = inst.colStart[j]; k < inst.colStart[j + 1]; ++k) {
      const std::size_t s = slotOf(static_cast<std::size_t>(inst.entryRow[k]));
      if (requestOf[s] < 0) continue;
      if (lastCol[s] != j) {
        lastCol[s] = j;
        ++cursor[s];
      }
      value[k] = answers[static_cast<std::size_t>(requestOf[s])].derivatives[static_cast<std::size_t>(cursor[s] - 1)];
    }

  sol.colLevel.assign(cols, 0.0);
  std::copy(x.begin(), x.end(), sol.colLevel.begin());
  if (inst.objVar > 0) {
    const std::size_t first = slotOf(static_cast<std::size_t>(inst.objRow - 1));
    double fx = 0.0;
    if (requestOf[first] >= 0) {
      fx = answers[static_cast<std::size_t>(requestOf[first])].value;
    } else {
      for (int32_t j = 0; j < static_cast<int32_t>(vars); ++j)
        for (int32_t k = inst.colStart[j]; k < inst.colStart[j + 1]; ++k)
          if (inst.entryRow[k] == inst.objRow - 1) fx += inst.entryValue[k] * x[static_cast<std::size_t>(j)];
      fx -= inst.rowRhs[static_cast<std::size_t>(inst.objRow - 1)];
    }
    sol.colLevel[static_cast<std::size_t>(inst.objVar - 1)] = fx;
  }
  // Row levels: the function's value for a nonlinear row, else the sum of the terms.
  sol.rowLevel.assign(rows, 0.0);
  for (std::size_t j = 0; j < cols; ++j)
    for (int32_t k = inst.colStart[j]; k < inst.colStart[j + 1]; ++k) {
      const auto i = static_cast<std::size_t>(inst.entryRow[k]);
      if (requestOf[slotOf(i)] < 0 || static_cast<long>(j) >= vars) sol.rowLevel[i] += value[k] * sol.colLevel[j];
    }
  for (std::size_t i = 0; i < rows; ++i)
    if (requestOf[slotOf(i)] >= 0) sol.rowLevel[i] += answers[static_cast<std::size_t>(requestOf[slotOf(i)])].value;
  // Row marginals: a constraint's dual value; of a range's two rows, the one nearer its bound
  // takes it. The first objective's row has -1, the others 0.
  sol.rowMarginal.assign(rows, 0.0);
  for (std::size_t i = 0; i < rows; ++i) {
    const int32_t item = inst.rowNlItem[i];
    if (item < 0) {
      sol.rowMarginal[i] = static_cast<int32_t>(i) == inst.objRow - 1 ? -1.0 : 0.0;
      continue;
    }
    const bool pairNext = i + 1 < rows && inst.rowNlItem[i + 1] == item;
    if (pairNext) {
      const double lo = std::fabs(sol.rowLevel[i] - inst.rowRhs[i]);
      const double up = std::fabs(sol.rowLevel[i + 1] - inst.rowRhs[i + 1]);
      sol.rowMarginal[lo <= up ? i : i + 1] = dual[static_cast<std::size_t>(item)];
      ++i;
    } else {
      sol.rowMarginal[i] = dual[static_cast<std::size_t>(item)];
    }
  }
  // Reduced costs: cost_j - sum_i a_ij * rowMarginal_i, cost 1 for the objective variable.
  sol.colMarginal.assign(cols, 0.0);
  for (std::size_t j = 0; j < cols; ++j) {
    double d = static_cast<int32_t>(j) == inst.objVar - 1 ? 1.0 : 0.0;
    for (int32_t k = inst.colStart[j]; k < inst.colStart[j + 1]; ++k)
      d -= value[k] * sol.rowMarginal[static_cast<std::size_t>(inst.entryRow[k])];
    sol.colMarginal[j] = d + 0.0;
  }
  // Basis statuses from the levels; condition statuses are the caller's to compute.
  sol.colStat.assign(cols, 2);
  sol.rowStat.assign(rows, 2);
  sol.colCStat.assign(cols, 0);
  sol.rowCStat.assign(rows, 0);
  for (std::size_t j = 0; j < cols; ++j)
    sol.colStat[j] = sol.colLevel[j] == inst.colLower[j] ? 0 : sol.colLevel[j] == inst.colUpper[j] ? 1 : 2;
  for (std::size_t i = 0; i < rows; ++i) {
    if (inst.rowType[i] == kRowN) sol.rowStat[i] = 3;
    else if (sol.rowLevel[i] == inst.rowRhs[i]) sol.rowStat[i] = inst.rowType[i] == kRowL ? 1 : 0;
  }
  return true;
}
