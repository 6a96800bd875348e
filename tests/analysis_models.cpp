// ANALYSIS on the bundled MathProg models with known flaws, run through orva: the whole
// report on the status file, the log lines, and the analysis scratch file.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "analysis_messages.h"
#include "orva_run.h"

using namespace analysis_test;

namespace {

struct OrvaRun {
  int exitCode = -1;
  Lines log;      // orva's standard output: modrake's log
  Lines status;   // the status file as modrake wrote it
  Lines scratch;  // the analysis scratch file
};

// Runs orva on examples/analysis/<model>.mod and its request file ANALYSIS, at page width 80.
OrvaRun runModel(const std::string& model) {
  namespace fs = std::filesystem;
  const fs::path dir = freshDir("analysis_" + model);
  const std::string base = std::string(SOURCE_DIR) + "/examples/analysis/" + model;
  OrvaRun run;
  run.exitCode = runOrva(dir, {base + ".mod", "--requests", base + ".mrk", "--page-width", "80",
                               "--listing", "run.lst", "--keep-scratch", "kept"})
                     .status;
  run.log = readLines(dir / "run.out");
  if (!fs::is_directory(dir / "kept")) return run;
  for (const auto& entry : fs::directory_iterator(dir / "kept")) {
    const std::string name = entry.path().filename().string();
    if (entry.path().extension() == ".sta") run.status = readLines(entry.path());
    if (name.starts_with("mrkanal.")) run.scratch = readLines(entry.path());
  }
  return run;
}

// The first line of the display of ANALYSIS's problems through DISPLAYCR, on the status file
// and on the log.
const std::string kDisplayStepStatus = " ----#### Using DISPLAYCR to show ANALYSIS Problems";
const std::string kDisplayStepLog = " #### Using DISPLAYCR to show ANALYSIS Problems";

// The lines from the variable report's heading to the line before the closing "=2", or to the
// blank line before the display of the problems.
Lines analysisReport(const Lines& status) {
  const std::string heading = kVariableHeading[1];
  for (size_t k = 1; k < status.size(); ++k) {
    if (status[k] != heading) continue;
    size_t end = status.size();
    if (end > 0 && status[end - 1] == "=2") --end;
    for (size_t d = k; d + 1 < end; ++d) {
      if (status[d + 1] == kDisplayStepStatus) end = d;
    }
    return Lines(status.begin() + static_cast<std::ptrdiff_t>(k - 1),
                 status.begin() + static_cast<std::ptrdiff_t>(end));
  }
  return {};
}

// The log from the procedure title up to the end of the run.
Lines analysisLog(const Lines& log) {
  for (size_t k = 0; k < log.size(); ++k) {
    if (log[k] != " #### Executing ANALYSIS ") continue;
    size_t end = k;
    while (end < log.size() && log[end] != " MODRAKE All Done" &&
           !(end + 1 < log.size() && log[end + 1] == kDisplayStepLog)) {
      ++end;
    }
    return Lines(log.begin() + static_cast<std::ptrdiff_t>(k),
                 log.begin() + static_cast<std::ptrdiff_t>(end));
  }
  return {};
}

// factory: every variable kind, one column each, in column order. blending: sign rules and
// activity rules on rows of a blend. network: node balances with wrong demands or arcs, while
// the flows themselves pass. shipping, the demo's model: demand rows written as =L= leave
// nothing that makes a shipment rise, so every shipment is doomed to zero; only the first 5
// of one kind and symbol go to DISPLAYCR.
TEST(AnalysisModels, ReportLogAndScratchFileOfEachModel) {
  for (const std::string model : {"factory", "blending", "network", "shipping"}) {
    SCOPED_TRACE(model);
    const OrvaRun run = runModel(model);
    ASSERT_EQ(run.exitCode, 0);
    EXPECT_TRUE(matchesGolden(analysisReport(run.status), "analysis/" + model + ".report"));
    EXPECT_TRUE(matchesGolden(analysisLog(run.log), "analysis/" + model + ".log"));
    EXPECT_TRUE(matchesGolden(run.scratch, "analysis/" + model + ".scratch"));
  }
}

}  // namespace
