#include "postsolution/solution_step.h"

#include "base/notation.h"
#include "host/host.h"
#include "model/matrix_store.h"

namespace {

void clearPoint(const SolutionRegions& r) {
  r.rowRhs.fill(0.0);
  r.rowMarginal.fill(0.0);
  r.rowLevel.fill(0.0);
  r.colMarginal.fill(0.0);
  r.colLevel.fill(0.0);
}

// Statuses first, by row and by column, then levels and marginals, in the host's order.
void readSolution(const SolutionRegions& r, RunContext& run) {
  const ovmHandle model = run.model;
  for (int32_t i = 1; i <= run.rowCount; ++i) {
    r.rowCStat[i] = ovmGetEquCStatOne(model, i);
    r.rowStat[i] = ovmGetEquStatOne(model, i);
  }
  for (int32_t j = 1; j <= run.colCount; ++j) {
    r.colCStat[j] = ovmGetVarCStatOne(model, j);
    r.colStat[j] = ovmGetVarStatOne(model, j);
  }
  for (int32_t i = 1; i <= run.rowCount; ++i) {
    r.rowLevel[i] = ovmGetEquLOne(model, i);
    r.rowMarginal[i] = ovmGetEquMOne(model, i);
  }
  // A column at a bound keeps 0 here; the engine takes its level from the bound.
  for (int32_t j = 1; j <= run.colCount; ++j) {
    r.colLevel[j] = r.colStat[j] >= 2 ? ovmGetVarLOne(model, j) : 0.0;
    r.colMarginal[j] = ovmGetVarMOne(model, j);
  }
}

}  // namespace

int32_t loadSolution(Proc proc, const SolutionRegions& r, RunContext& run) {
  if (!procedureRow(proc).loadsSolution) return 0;
  if (!run.solutionExpected) {
    clearPoint(r);
    r.rowCStat.fill(0);
    r.colCStat.fill(0);
    r.rowStat.fill(3);
    r.colStat.fill(3);
    return 0;
  }
  r.rowRhs.fill(0.0);
  r.colLower.fill(0.0);
  r.colUpper.fill(0.0);
  const int loaded = ovmLoadSolutionLegacy(run.model);
  const int32_t modelStatus = ovmModelStat(run.model);
  readSolution(r, run);
  if (loaded == 0 && modelStatus != kModelStatusLicensing &&
      modelStatus != kModelStatusNoSolution) {
    if (evaluateJacobianAt(run.environment, run.model, r.colLevel) != 0) {
      writeLine(run.logChannel, "1X,'Error computing the Jacobian.'");
      writeLine(run.statusChannel, "1X,'Error computing the Jacobian.'");
      stopRun(run, 0);
    }
    return modelStatus;
  }
  writeFree(run.logChannel, {"NO SOLUTION FILE"});
  writeFree(run.statusChannel, {"NO SOLUTION FILE"});
  clearPoint(r);
  return modelStatus;
}
