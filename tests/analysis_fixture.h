// Small model instances built in memory for the block, label and ANALYSIS tests, and a run
// state around them whose status and log lines are kept in vectors.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "host/host.h"
#include "host/instance.h"
#include "host/names.h"
#include "host/readers.h"
#include "model/matrix_store.h"
#include "model/work_array.h"
#include "run/dispatch.h"
#include "run/run_state.h"

namespace analysis_test {

inline constexpr double INF = kHostInf;

// Builds a HostInstance row by row and column by column, its dictionary by the host's own
// builder. For labels in quotes, write the model as a native file (modelFile).
struct ModelBuilder {
  HostInstance inst;
  std::vector<HostName> rowNames, colNames;
  struct Entry {
    int32_t row, col;
    double value;
    bool nonlinear;
  };
  std::vector<Entry> entries;

  static HostName name(const std::string& sym, std::initializer_list<std::string> labels) {
    std::vector<HostLabel> parts;
    for (const std::string& l : labels) parts.push_back(HostLabel{l, ' '});
    return hostMakeName(sym, std::move(parts));
  }

  // A row; returns its 1-based index.
  int32_t row(const std::string& sym, std::initializer_list<std::string> labels, int32_t type,
              double rhs, double scale = 1.0) {
    rowNames.push_back(name(sym, labels));
    inst.rowType.push_back(type);
    inst.rowRhs.push_back(rhs);
    inst.rowScale.push_back(scale);
    inst.rowLevel.push_back(0.0);
    inst.rowMarginal.push_back(0.0);
    inst.rowStat.push_back(2);
    inst.rowCStat.push_back(0);
    return ++inst.rowCount;
  }
  // A column; returns its 1-based index.
  int32_t col(const std::string& sym, std::initializer_list<std::string> labels, double lower,
              double upper, int32_t type = kVarContinuous, double scale = 1.0) {
    colNames.push_back(name(sym, labels));
    inst.colType.push_back(type);
    inst.colLower.push_back(lower);
    inst.colUpper.push_back(upper);
    inst.colScale.push_back(scale);
    inst.colLevel.push_back(0.0);
    inst.colMarginal.push_back(0.0);
    inst.colStat.push_back(0);
    inst.colCStat.push_back(0);
    return ++inst.colCount;
  }
  void add(int32_t row1, int32_t col1, double value, bool nonlinear = false) {
    entries.push_back({row1, col1, value, nonlinear});
  }
  // Makes column `col1` the objective variable of row `row1` (coefficient -1 unless given).
  void objective(int32_t row1, int32_t col1, bool minimizing) {
    inst.objRow = row1;
    inst.objVar = col1;
    inst.minimizing = minimizing;
  }

  HostInstance build() {
    HostInstance out = inst;
    out.hasScale = false;
    for (double s : out.rowScale) out.hasScale = out.hasScale || s != 1.0;
    for (double s : out.colScale) out.hasScale = out.hasScale || s != 1.0;
    const int32_t n = out.colCount;
    std::vector<std::vector<Entry>> byCol(static_cast<size_t>(n));
    for (const Entry& e : entries) byCol[static_cast<size_t>(e.col - 1)].push_back(e);
    out.colStart.assign(1, 0);
    for (const auto& list : byCol) {
      for (const Entry& e : list) {
        out.entryRow.push_back(e.row - 1);
        out.entryValue.push_back(e.value);
        out.entryNonlinear.push_back(e.nonlinear ? 1 : 0);
      }
      out.colStart.push_back(static_cast<int32_t>(out.entryRow.size()));
    }
    hostBuildDictionary(out, rowNames, colNames);
    return out;
  }
};

// A native model of tests/data/, as the host reads it (a name ending in digits, x17, is x(17):
// give such a scalar as a symbol without labels).
inline HostInstance modelFile(const std::string& name) {
  HostInstance inst;
  std::string error;
  const ModelSource source{std::string(SOURCE_DIR) + "/tests/data/" + name, ModelFormat::Json, "", {}};
  const bool read = readModel(source, inst, error);
  EXPECT_TRUE(read) << error;
  return inst;
}

// The run state of one test: the instance's sizes, the host handles, a page width, status
// and log lines in memory, a work array of the right size and a scratch file.
struct RunFixture {
  std::vector<std::string> status, log;

  void start(const HostInstance& inst, int32_t pageWidth = 80) {
    RunContext& rs = runState;
    release();
    rs.model = ovmCreateFromInstance(inst);
    rs.dictionary = ovdCreateFromInstance(inst);
    ovmIndexBaseSet(rs.model, 1);
    ovmPinfSet(rs.model, rs.plusInf);
    ovmMinfSet(rs.model, rs.minusInf);
    rs.rowCount = ovmM(rs.model);
    rs.colCount = ovmN(rs.model);
    rs.nzCount = ovmNZ(rs.model);
    const int32_t na = ovmValNAInt(rs.model);
    rs.objVar = ovmObjVar(rs.model) == na ? 0 : ovmObjVar(rs.model);
    rs.objRow = ovmObjRow(rs.model) == na ? 0 : ovmObjRow(rs.model);
    rs.minimizing = ovmSense(rs.model) <= 0;
    rs.pageWidth = pageWidth;
    rs.colSelCapacity = 10;
    rs.rowSelCapacity = 10;
    rs.icblock = static_cast<int32_t>(inst.symbols.size()) + 3;
    rs.irblock = rs.icblock;
    rs.scaleRequest = 0;
    rs.useScale = 0;
    rs.commentCount = 0;
    rs.analysisProblemsPending = 0;
    rs.analysisProblemCount = 0;
    rs.analysisProblemTally.fill(0);
    rs.lastColSymbol = 0;
    rs.lastItemClass = ItemClass::None;
    status.clear();
    log.clear();
    rs.statusChannel = Channel{nullptr, &status};
    rs.logChannel = Channel{nullptr, &log};
    if (rs.analysisChannel != nullptr) std::fclose(rs.analysisChannel);
    rs.analysisChannel = std::tmpfile();
    // The Jacobian store, as start-up fills it: ANALYSIS shows its problems through DISPLAYCR.
    openJacobian(nullptr, rs.model, rs.rowCount, rs.colCount, rs.nzCount);
    fillJacobian(nullptr, rs.model);
    int64_t total = 0;
    partitionWorkArray(Phase::Largest, workArraySizes(runState), 1, total);
    std::free(workArray.words);
    workArray.words = nullptr;
    allocateWorkArray(total);
  }

  // The lines of the analysis scratch file.
  std::vector<std::string> scratch() const {
    std::vector<std::string> lines;
    std::FILE* f = runState.analysisChannel;
    std::fflush(f);
    std::rewind(f);
    std::string line;
    int c;
    while ((c = std::fgetc(f)) != EOF) {
      if (c == '\n') {
        lines.push_back(line);
        line.clear();
      } else {
        line.push_back(static_cast<char>(c));
      }
    }
    if (!line.empty()) lines.push_back(line);
    return lines;
  }

  void release() {
    RunContext& rs = runState;
    if (rs.model != nullptr) ovmFree(rs.model);
    if (rs.dictionary != nullptr) ovdFree(rs.dictionary);
  }

  ~RunFixture() {
    release();
    RunContext& rs = runState;
    if (rs.analysisChannel != nullptr) std::fclose(rs.analysisChannel);
    rs.analysisChannel = nullptr;
    rs.statusChannel = Channel{};
    rs.logChannel = Channel{};
  }
};

// A line padded with blanks to `width` characters, as printFoldedItem pads its lines.
inline std::string pad(std::string line, size_t width) {
  if (line.size() < width) line.resize(width, ' ');
  return line;
}

// The first line at or after `from` that equals `line`; lines.size() when there is none.
inline size_t indexOf(const std::vector<std::string>& lines, const std::string& line,
                      size_t from = 0) {
  for (size_t i = from; i < lines.size(); ++i) {
    if (lines[i] == line) return i;
  }
  return lines.size();
}

inline std::string rtrim(std::string s) {
  while (!s.empty() && s.back() == ' ') s.pop_back();
  return s;
}

// True when a finding's item line for `name` follows the message line at `at` before the
// next message.
inline bool itemFollows(const std::vector<std::string>& lines, size_t at, const std::string& name) {
  for (size_t i = at + 1; i < lines.size(); ++i) {
    const std::string t = rtrim(lines[i]);
    if (t == " ##  " + name || t == "     " + name) return true;
    if (t.find("****") != std::string::npos || t.find("----###") != std::string::npos) break;
  }
  return false;
}

}  // namespace analysis_test
