#include "run/dispatch.h"

#include <string>

#include "analysis/analysis.h"
#include "listings/blocklist.h"
#include "listings/matchit.h"
#include "model/work_array.h"
#include "pictures/blockpic.h"
#include "pictures/picture.h"
#include "postsolution/solution_step.h"
#include "request/request_line.h"
#include "run/request_loop.h"

namespace {

// The regions record of phase P, laid out on the run's sizes.
template <Phase P>
typename PhaseRecord<P>::type laidOut(RunContext& run) {
  bool fits = false;
  auto regions = phaseRegions<P>(workArraySizes(run), fits);
  if (!fits) partitionOverflowStop(run);
  return regions;
}

// A procedure that runs on the regions of the phase its table row names.
template <Proc P, auto Procedure>
void runOnRegions(RunContext& run) {
  Procedure(laidOut<procedureRow(P).phase>(run), run);
}

// The routine that runs each procedure, in table order; none for a procedure this build lacks.
struct ProcedureRunner {
  Proc proc;
  void (*run)(RunContext&);
};
constexpr std::array<ProcedureRunner, PROCEDURE_COUNT> kRunners = {{
    {Proc::DisplayCR, nullptr},
    {Proc::PostOpt, nullptr},
    {Proc::Picture, &runOnRegions<Proc::Picture, runPicture>},
    {Proc::BlockPic, &runOnRegions<Proc::BlockPic, runBlockPicture>},
    {Proc::Analysis, &runOnRegions<Proc::Analysis, runAnalysis>},
    {Proc::BlockList, &runOnRegions<Proc::BlockList, runBlockList>},
    {Proc::MatchIt, &runOnRegions<Proc::MatchIt, runMatchIt>},
    {Proc::NonOpt, nullptr},
    {Proc::Advisory, nullptr},
}};
constexpr bool runnersInTableOrder() {
  for (size_t k = 0; k < kRunners.size(); ++k) {
    if (kRunners[k].proc != kProcedures[k].proc) return false;
  }
  return true;
}
static_assert(runnersInTableOrder());

// Passes over the lines of a procedure's section as its reader would: up to the next line
// that is a procedure keyword, which is left in currentKeyword, or to the end of the input,
// which leaves THEEND. Comments are kept for their echo; PW= lines set the width.
void passOverSection(RunContext& run) {
  std::string line;
  std::string keyword(NAME_LEN, ' ');
  while (run.requestChannel != nullptr) {
    const LineRead r = readRequestFileLine(run.requestChannel, line, MAX_LINE);
    if (r == LineRead::Error) {
      writeFree(run.statusChannel, {"Error encountered reading MRK file"});
      writeFree(run.logChannel, {"Error encountered reading MRK file"});
    }
    if (r != LineRead::Ok) break;
    int32_t isComment = 0;
    normalizeRequestLine(line, isComment, MAX_LINE, &run);
    if (isComment > 0) continue;
    keyword.assign(line, 0, NAME_LEN);
    int32_t word = 0;
    lookupKeyword(run, keyword, word, 2);
    if (word > 0) {
      run.currentKeyword = keyword;
      return;
    }
  }
  run.currentKeyword = "THEEND";
  run.currentKeyword.resize(NAME_LEN, ' ');
}

// In place of a procedure that this build lacks: one line on the status file and the log; its
// section is passed over.
void unavailable(const ProcedureRow& row, RunContext& run) {
  const std::string text = "**** " + std::string(row.keyword) + " is not available in this build";
  writeFree(run.statusChannel, {text});
  writeFree(run.logChannel, {text});
  passOverSection(run);
}

}  // namespace

void partitionOverflowStop(RunContext& run) {
  for (Channel* ch : {&run.logChannel, &run.statusChannel}) {
    writeLine(*ch, "1X,'Overflow of signed integers when partitioning memory.'");
    writeLine(*ch, "1X,'Hint: do you have many equation or variable symbols?'");
    writeLine(*ch, "1X,'  irblock =',I8,'  icblock =',I8", {run.irblock, run.icblock});
  }
  stopRun(run, 0);
}

bool runProcedure(const ProcedureRow& row, RunContext& run) {
  const bool wanted =
      row.scaling == ScaleRule::AboveZero ? run.scaleRequest > 0 : run.scaleRequest >= 0;
  setScaling(wanted ? 1 : 0);
  if (row.solutionStep) {
    const SolutionRegions solution = laidOut<Phase::Solution>(run);
    writeLine(run.statusChannel, "A2", {"=1"});
    run.modelStatus = loadSolution(row.proc, solution, run);
  }
  writeFree(run.statusChannel);
  writeProcedureTitles(row);
  if (row.titles == TitleLayout::BlankAfterTitles) writeFree(run.statusChannel);
  if (run.commentCount > 0) echoComments();
  if (row.titles == TitleLayout::BlankAfterComments) writeFree(run.statusChannel);
  const ProcedureRunner& runner = kRunners[static_cast<size_t>(row.proc) - 1];
  if (runner.run != nullptr) {
    runner.run(run);
  } else {
    unavailable(row, run);
  }
  if (row.solutionStep) writeFree(run.statusChannel);
  return row.readsSection;
}
