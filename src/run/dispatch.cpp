#include "run/dispatch.h"


#include "analysis/analysis.h"
#include "listings/blocklist.h"
#include "listings/matchit.h"
#include "model/work_array.h"
#include "pictures/blockpic.h"
#include "pictures/picture.h"
#include "postsolution/engine.h"
#include "postsolution/solution_step.h"
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

// The routine that runs each procedure, in table order.
struct ProcedureRunner {
  Proc proc;
  void (*run)(RunContext&);
};
// ANALYSIS, then, at the first problems of the run, their display through DISPLAYCR: its
// section is read from the analysis scratch file, and no solution is read.
void runAnalysisAndShowProblems(RunContext& run) {
  runOnRegions<Proc::Analysis, runAnalysis>(run);
  if (run.analysisProblemsPending != 1) return;
  const DisplayRegions regions = laidOut<Phase::Display>(run);
  run.procIndex = static_cast<int32_t>(Proc::DisplayCR);
  run.modelStatus = 0;
  writeFree(run.statusChannel);
  writeFree(run.logChannel);
  writeLine(run.logChannel,
            "(/,' #### Using DISPLAYCR to show ANALYSIS Problems',/,'       Note only the first 5 "
            "problems found  under each',/,'         Error or warning type will be displayed up "
            "to ',/,'         maximum of 200 variables or equations')");
  writeLine(run.statusChannel,
            "(' ----#### Using DISPLAYCR to show ANALYSIS Problems',/,'          Note only the "
            "first 5 problems found  under each',/,'           Error or warning type will be "
            "displayed up to ',/,'           maximum of 200 variables or equations')");
  runPostSolutionEngine(regions, run);
  writeFree(run.statusChannel);
  run.analysisProblemsPending = 0;
}

constexpr std::array<ProcedureRunner, PROCEDURE_COUNT> kRunners = {{
    {Proc::DisplayCR, &runOnRegions<Proc::DisplayCR, runPostSolutionEngine>},
    {Proc::PostOpt, &runOnRegions<Proc::PostOpt, runPostSolutionEngine>},
    {Proc::Picture, &runOnRegions<Proc::Picture, runPicture>},
    {Proc::BlockPic, &runOnRegions<Proc::BlockPic, runBlockPicture>},
    {Proc::Analysis, &runAnalysisAndShowProblems},
    {Proc::BlockList, &runOnRegions<Proc::BlockList, runBlockList>},
    {Proc::MatchIt, &runOnRegions<Proc::MatchIt, runMatchIt>},
    {Proc::NonOpt, &runOnRegions<Proc::NonOpt, runPostSolutionEngine>},
    {Proc::Advisory, &runOnRegions<Proc::Advisory, runPostSolutionEngine>},
}};
constexpr bool runnersInTableOrder() {
  for (size_t k = 0; k < kRunners.size(); ++k) {
    if (kRunners[k].proc != kProcedures[k].proc) return false;
  }
  return true;
}
static_assert(runnersInTableOrder());

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
  kRunners[static_cast<size_t>(row.proc) - 1].run(run);
  if (row.solutionStep) writeFree(run.statusChannel);
  return row.readsSection;
}
