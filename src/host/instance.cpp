#include "host/instance.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "host/names.h"

int32_t hostNonlinearCount(const HostInstance& inst) {
  int32_t count = 0;
  for (int32_t mark : inst.entryNonlinear)
    if (mark > 0) ++count;
  return count;
}

namespace {

bool nearValue(double level, double bound) {
  if (!std::isfinite(bound)) return false;
  return std::fabs(level - bound) <= 1e-9 * std::max(1.0, std::fabs(bound));
}

template <typename T>
void fillTo(std::vector<T>& v, std::size_t n, T value) {
  if (v.size() < n) v.resize(n, value);
}

std::string composeName(const HostInstance& inst, int32_t symbol, const int32_t* uels,
                        int32_t dim) {
  std::vector<HostLabel> labels;
  for (int32_t k = 0; k < dim; ++k) labels.push_back(inst.labels[uels[k] - 1]);
  return hostMakeName(inst.symbols[symbol - 1].name, std::move(labels)).full;
}

// The basis status of a row or column at `level`, as hostDefaultStatuses gives it.
int32_t rowStatAt(const HostInstance& inst, std::size_t i, double level) {
  if (inst.rowType[i] != kRowN && nearValue(level, inst.rowRhs[i]))
    return inst.rowType[i] == kRowL ? 1 : 0;
  return 2;
}

int32_t colStatAt(const HostInstance& inst, std::size_t j, double level) {
  if (nearValue(level, inst.colLower[j])) return 0;
  if (nearValue(level, inst.colUpper[j])) return 1;
  return 2;
}

}  // namespace

void hostDefaultStatuses(HostInstance& inst, const std::vector<bool>& rowGiven,
                         const std::vector<bool>& colGiven) {
  for (int32_t i = 0; i < inst.rowCount; ++i) {
    if (!rowGiven.empty() && rowGiven[i]) continue;
    inst.rowStat[i] = rowStatAt(inst, static_cast<std::size_t>(i), inst.rowLevel[i]);
  }
  for (int32_t j = 0; j < inst.colCount; ++j) {
    if (!colGiven.empty() && colGiven[j]) continue;
    inst.colStat[j] = colStatAt(inst, static_cast<std::size_t>(j), inst.colLevel[j]);
  }
}

bool hostSolutionIsDefault(const HostInstance& inst) {
  if (inst.hasSolution) return false;
  const auto m = static_cast<std::size_t>(inst.rowCount);
  const auto n = static_cast<std::size_t>(inst.colCount);
  if (inst.rowType.size() != m || inst.rowRhs.size() != m || inst.rowLevel.size() != m ||
      inst.rowMarginal.size() != m || inst.rowStat.size() != m || inst.rowCStat.size() != m ||
      inst.colLower.size() != n || inst.colUpper.size() != n || inst.colLevel.size() != n ||
      inst.colMarginal.size() != n || inst.colStat.size() != n || inst.colCStat.size() != n)
    return false;
  for (std::size_t i = 0; i < m; ++i) {
    if (inst.rowLevel[i] != 0.0 || inst.rowMarginal[i] != 0.0 || inst.rowCStat[i] != 0 ||
        inst.rowStat[i] != rowStatAt(inst, i, 0.0))
      return false;
  }
  for (std::size_t j = 0; j < n; ++j) {
    if (inst.colLevel[j] != 0.0 || inst.colMarginal[j] != 0.0 || inst.colCStat[j] != 0 ||
        inst.colStat[j] != colStatAt(inst, j, 0.0))
      return false;
  }
  return true;
}

void hostRestoreSolutionDefaults(HostInstance& inst) {
  const auto m = static_cast<std::size_t>(inst.rowCount);
  const auto n = static_cast<std::size_t>(inst.colCount);
  const bool empty = inst.rowLevel.empty() && inst.rowMarginal.empty() && inst.rowStat.empty() &&
                     inst.rowCStat.empty() && inst.colLevel.empty() && inst.colMarginal.empty() &&
                     inst.colStat.empty() && inst.colCStat.empty();
  if (inst.hasSolution || !empty || inst.rowCount < 0 || inst.colCount < 0 ||
      inst.rowType.size() != m || inst.rowRhs.size() != m || inst.colLower.size() != n ||
      inst.colUpper.size() != n)
    return;
  inst.rowLevel.assign(m, 0.0);
  inst.rowMarginal.assign(m, 0.0);
  inst.rowCStat.assign(m, 0);
  inst.rowStat.resize(m);
  for (std::size_t i = 0; i < m; ++i) inst.rowStat[i] = rowStatAt(inst, i, 0.0);
  inst.colLevel.assign(n, 0.0);
  inst.colMarginal.assign(n, 0.0);
  inst.colCStat.assign(n, 0);
  inst.colStat.resize(n);
  for (std::size_t j = 0; j < n; ++j) inst.colStat[j] = colStatAt(inst, j, 0.0);
}

void hostCompleteInstance(HostInstance& inst) {
  inst.rowCount = static_cast<int32_t>(inst.rowType.size());
  inst.colCount = static_cast<int32_t>(inst.colType.size());
  const auto m = static_cast<std::size_t>(inst.rowCount);
  const auto n = static_cast<std::size_t>(inst.colCount);
  fillTo(inst.rowRhs, m, 0.0);
  if (!inst.rowScale.empty()) fillTo(inst.rowScale, m, 1.0);
  fillTo(inst.rowLevel, m, 0.0);
  fillTo(inst.rowMarginal, m, 0.0);
  fillTo(inst.rowCStat, m, 0);
  fillTo(inst.colLower, n, 0.0);
  fillTo(inst.colUpper, n, kHostInf);
  if (!inst.colScale.empty()) fillTo(inst.colScale, n, 1.0);
  fillTo(inst.colLevel, n, 0.0);
  fillTo(inst.colMarginal, n, 0.0);
  fillTo(inst.colCStat, n, 0);
  if (inst.colStart.size() < n + 1) inst.colStart.resize(n + 1, hostNzCount(inst));
  if (!inst.entryNonlinear.empty()) fillTo(inst.entryNonlinear, inst.entryRow.size(), 0);
  std::vector<bool> rowGiven(m, true), colGiven(n, true);
  for (std::size_t i = inst.rowStat.size(); i < m; ++i) rowGiven[i] = false;
  for (std::size_t j = inst.colStat.size(); j < n; ++j) colGiven[j] = false;
  fillTo(inst.rowStat, m, 0);
  fillTo(inst.colStat, n, 0);
  hostDefaultStatuses(inst, rowGiven, colGiven);
  if (inst.rowSymbol.size() != m || inst.colSymbol.size() != n) {
    std::vector<HostName> rows, cols;
    rows.reserve(m);
    cols.reserve(n);
    for (std::size_t i = 0; i < m; ++i) rows.push_back(hostParseName("R" + std::to_string(i + 1)));
    for (std::size_t j = 0; j < n; ++j) cols.push_back(hostParseName("C" + std::to_string(j + 1)));
    hostBuildDictionary(inst, rows, cols);
  }
}

bool hostCheckInstance(const HostInstance& inst, std::string& error) {
  const auto m = static_cast<std::size_t>(inst.rowCount);
  const auto n = static_cast<std::size_t>(inst.colCount);
  auto bad = [&](const char* what) {
    error = std::string("instance: ") + what;
    return false;
  };
  if (inst.rowCount < 0 || inst.colCount < 0) return bad("negative size");
  auto sized = [](const std::vector<double>& v, std::size_t k) { return v.empty() || v.size() == k; };
  if (inst.rowType.size() != m || inst.rowRhs.size() != m || !sized(inst.rowScale, m) ||
      inst.rowLevel.size() != m || inst.rowMarginal.size() != m || inst.rowStat.size() != m ||
      inst.rowCStat.size() != m || inst.rowSymbol.size() != m || inst.rowUelStart.size() != m + 1)
    return bad("row vectors do not match the row count");
  if (inst.colType.size() != n || inst.colLower.size() != n || inst.colUpper.size() != n ||
      !sized(inst.colScale, n) || inst.colLevel.size() != n || inst.colMarginal.size() != n ||
      inst.colStat.size() != n || inst.colCStat.size() != n || inst.colSymbol.size() != n ||
      inst.colUelStart.size() != n + 1 || inst.colStart.size() != n + 1)
    return bad("column vectors do not match the column count");
  if (!inst.rowNlItem.empty() && inst.rowNlItem.size() != m)
    return bad("the rows' .nl items do not match the row count");
  if (inst.colStart[0] != 0) return bad("first column does not start at entry 0");
  for (std::size_t j = 0; j < n; ++j)
    if (inst.colStart[j + 1] < inst.colStart[j]) return bad("column starts decrease");
  const auto nz = static_cast<std::size_t>(inst.colStart[n]);
  if (inst.entryRow.size() != nz || inst.entryValue.size() != nz ||
      (!inst.entryNonlinear.empty() && inst.entryNonlinear.size() != nz))
    return bad("entry vectors do not match the column starts");
  for (int32_t r : inst.entryRow)
    if (r < 0 || r >= inst.rowCount) return bad("an entry names a row that does not exist");
  if (inst.objVar < 0 || inst.objVar > inst.colCount) return bad("objective variable out of range");
  if (inst.objRow < 0 || inst.objRow > inst.rowCount) return bad("objective row out of range");
  const auto symbols = static_cast<int32_t>(inst.symbols.size());
  const auto labels = static_cast<int32_t>(inst.labels.size());
  auto checkUels = [&](const std::vector<int32_t>& symbol, const std::vector<int32_t>& start,
                       const std::vector<int32_t>& uels) {
    if (start.empty() || start[0] != 0 || start.back() != static_cast<int32_t>(uels.size()))
      return false;
    for (std::size_t k = 0; k < symbol.size(); ++k) {
      if (symbol[k] < 1 || symbol[k] > symbols) return false;
      if (start[k + 1] - start[k] != inst.symbols[symbol[k] - 1].dim) return false;
    }
    for (int32_t u : uels)
      if (u < 1 || u > labels) return false;
    return true;
  };
  if (!checkUels(inst.rowSymbol, inst.rowUelStart, inst.rowUels) ||
      !checkUels(inst.colSymbol, inst.colUelStart, inst.colUels))
    return bad("dictionary does not fit the rows and columns");
  return true;
}

std::string hostRowName(const HostInstance& inst, int32_t row0) {
  const int32_t start = inst.rowUelStart[row0];
  return composeName(inst, inst.rowSymbol[row0], inst.rowUels.data() + start,
                     inst.rowUelStart[row0 + 1] - start);
}

std::string hostColName(const HostInstance& inst, int32_t col0) {
  const int32_t start = inst.colUelStart[col0];
  return composeName(inst, inst.colSymbol[col0], inst.colUels.data() + start,
                     inst.colUelStart[col0 + 1] - start);
}

bool hostInfiniteBounds(HostInstance& inst, std::string& error) {
  for (int32_t j = 0; j < inst.colCount; ++j) {
    double& lower = inst.colLower[j];
    double& upper = inst.colUpper[j];
    if (lower <= -kHostInfiniteBound) lower = -kHostInf;
    if (upper >= kHostInfiniteBound) upper = kHostInf;
    const bool lowerBad = lower >= kHostInfiniteBound, upperBad = upper <= -kHostInfiniteBound;
    if (lowerBad || upperBad) {
      char value[32];
      std::snprintf(value, sizeof value, "%g", lowerBad ? lower : upper);
      error = "column " + hostColName(inst, j) + " has " + (lowerBad ? "a lower" : "an upper") +
              " bound of " + value + ", which no value can meet (bounds of 1e+300 and beyond "
              "are infinite)";
      return false;
    }
  }
  return true;
}
