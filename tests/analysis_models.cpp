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

// Every variable kind, one column each, in column order.
TEST(AnalysisModels, FactoryColumnsOfEveryVariableKind) {
  const OrvaRun run = runModel("factory");
  ASSERT_EQ(run.exitCode, 0);
  const Lines expected = kVariableHeading + kMessage.at(21) + nextItem("hire") + kMessage.at(2) +
                         nextItem("scrap") + kMessage.at(20) + nextItem("resell") +
                         kMessage.at(1) + nextItem("rent") + kMessage.at(23) + nextItem("idle") +
                         kMessage.at(25) + nextItem("stock") + kMessage.at(26) +
                         nextItem("adjust") + kMessage.at(24) + nextItem("loss") +
                         kEquationHeading + kEquationsPass;
  EXPECT_EQ(analysisReport(run.status), expected);
  EXPECT_EQ(analysisLog(run.log), golden("analysis/factory.log"));
  EXPECT_EQ(run.scratch, golden("analysis/factory.scratch"));
}

// Sign rules and activity rules on rows of a blend.
TEST(AnalysisModels, BlendingRowsOfTenEquationKinds) {
  const OrvaRun run = runModel("blending");
  ASSERT_EQ(run.exitCode, 0);
  const Lines expected =
      kVariableHeading + kMessage.at(23) + nextItem("waste") + nextItem("spill") +
      kEquationHeading + kMessage.at(5) + firstItem("spend") + kMessage.at(3) +
      firstItem("noWaste") + kMessage.at(7) + firstItem("positiveBuy") + kMessage.at(4) +
      firstItem("minTotal") + kMessage.at(6) + firstItem("noSpill") + kMessage.at(8) +
      firstItem("needFiller") + kMessage.at(16) + firstItem("fillerMax") + kMessage.at(17) +
      firstItem("fillerCap") + kMessage.at(18) + firstItem("fillerMin") + kMessage.at(19) +
      firstItem("fillerNeed");
  EXPECT_EQ(analysisReport(run.status), expected);
  EXPECT_EQ(analysisLog(run.log), golden("analysis/blending.log"));
  EXPECT_EQ(run.scratch, golden("analysis/blending.scratch"));
}

// Node balances with wrong demands or arcs; the flows themselves pass.
TEST(AnalysisModels, NetworkBalancesThatCannotHold) {
  const OrvaRun run = runModel("network");
  ASSERT_EQ(run.exitCode, 0);
  const Lines expected =
      kVariableHeading + kVariablesPass + kEquationHeading + kMessage.at(15) +
      firstItem("balance(kiosk)") + kMessage.at(14) + firstItem("balance(market)") +
      kMessage.at(13) + firstItem("balance(outlet)") + kMessage.at(11) +
      firstItem("balance(spare)") + kMessage.at(9) + firstItem("balance(yard)") +
      kMessage.at(10) + firstItem("balance(dump)") + kMessage.at(12) + firstItem("noImbalance");
  EXPECT_EQ(analysisReport(run.status), expected);
  EXPECT_EQ(analysisLog(run.log), golden("analysis/network.log"));
  EXPECT_EQ(run.scratch, golden("analysis/network.scratch"));
}

// The demo's model: demand rows written as =L= leave nothing that makes a shipment rise, so
// every shipment is doomed to zero; only the first 5 of one kind and symbol go to DISPLAYCR.
TEST(AnalysisModels, ShippingDemandRowsTurnedAround) {
  const OrvaRun run = runModel("shipping");
  ASSERT_EQ(run.exitCode, 0);
  Lines expected = kVariableHeading + kMessage.at(23), scratch = {" variable"};
  for (const char* plant : {"seattle", "san-diego"}) {
    for (const char* market : {"new-york", "chicago", "topeka"}) {
      const std::string item = std::string("ship(") + plant + "," + market + ")";
      expected = expected + nextItem(item);
      scratch.push_back("   " + item);
    }
  }
  scratch.pop_back();
  EXPECT_EQ(analysisReport(run.status), expected + kEquationHeading + kEquationsPass);
  EXPECT_EQ(analysisLog(run.log), (Lines{" #### Executing ANALYSIS ", kZero,
                                         "       ### The equations pass all analysis tests", " "}));
  EXPECT_EQ(run.scratch, scratch);
}

}  // namespace
