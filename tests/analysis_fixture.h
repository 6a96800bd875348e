// Small native models for the block, label and ANALYSIS tests, from tests/data/ or from their
// text, and a run state around them whose status and log lines are kept in vectors.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "golden.h"
#include "analysis/analysis.h"
#include "host/host.h"
#include "host/instance.h"
#include "host/readers.h"
#include "model/matrix_store.h"
#include "model/work_array.h"
#include "run/dispatch.h"
#include "run/run_state.h"

namespace analysis_test {

// A native model of tests/data/, as the host reads it (a name ending in digits, x17, is x(17):
// give such a scalar as a symbol without labels).
inline HostInstance modelFile(const std::string& name,
                              const std::string& dir = SOURCE_DIR "/tests/data/") {
  HostInstance inst;
  std::string error;
  const ModelSource source{dir + name, ModelFormat::Json, "", {}};
  const bool read = readModel(source, inst, error);
  EXPECT_TRUE(read) << error;
  return inst;
}

// A native model given as its text.
inline HostInstance modelText(const std::string& text) {
  const std::string name = "model_text_" + std::to_string(getpid()) + ".json";
  std::ofstream(testing::TempDir() + name) << text;
  return modelFile(name, testing::TempDir());
}

// The run state of one test: the instance's sizes, the host handles, a page width, status
// and log lines in memory, a work array of the right size and a scratch file.
struct RunFixture {
  std::vector<std::string> status, log;

  void start(const HostInstance& inst, int32_t pageWidth = 80) {
    RunContext& rs = runState;
    release();
    if (rs.analysisChannel != nullptr) std::fclose(rs.analysisChannel);
    rs = RunContext{};  // every field at its start value
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
    status.clear();
    log.clear();
    rs.statusChannel = Channel{nullptr, &status};
    rs.logChannel = Channel{nullptr, &log};
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

  // The lines of the analysis scratch file, read through a second opening of it.
  std::vector<std::string> scratch() const {
    std::fflush(runState.analysisChannel);
    return readLines("/proc/self/fd/" + std::to_string(fileno(runState.analysisChannel)));
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

// Builds the ANALYSIS tables of the fixture's model and returns their regions.
inline AnalysisRegions analysisTables() {
  bool fits = false;
  AnalysisRegions r = phaseRegions<Phase::Analysis>(workArraySizes(runState), fits);
  buildAnalysisTables(r, runState);
  return r;
}

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
