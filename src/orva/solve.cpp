#include "orva/solve.h"

#include <glpk.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <cmath>
#include <vector>

#include "host/glpk_call.h"

namespace {

bool isIntegerType(int32_t type) { return type == kVarBinary || type == kVarInteger; }

int msLimit(double seconds) {
  if (seconds <= 0.0) return INT_MAX;
  double ms = seconds * 1000.0;
  return ms >= static_cast<double>(INT_MAX) ? INT_MAX : std::max(1, static_cast<int>(ms));
}

int boundType(double lo, double up) {
  bool hasLo = std::isfinite(lo), hasUp = std::isfinite(up);
  if (hasLo && hasUp) return lo == up ? GLP_FX : GLP_DB;
  if (hasLo) return GLP_LO;
  if (hasUp) return GLP_UP;
  return GLP_FR;
}

// The problem object of an instance: its rows and columns as they stand, the objective the
// objective variable alone.
glp_prob* buildProblem(const HostInstance& inst, bool& isMip, std::vector<int>& ia,
                       std::vector<int>& ja, std::vector<double>& ar) {
  glp_prob* lp = glp_create_prob();
  const int m = inst.rowCount, n = inst.colCount;
  if (m > 0) glp_add_rows(lp, m);
  if (n > 0) glp_add_cols(lp, n);
  glp_set_obj_dir(lp, inst.minimizing ? GLP_MIN : GLP_MAX);
  for (int i = 0; i < m; ++i) {
    double r = inst.rowRhs[i];
    switch (inst.rowType[i]) {
      case kRowE: glp_set_row_bnds(lp, i + 1, GLP_FX, r, r); break;
      case kRowG: glp_set_row_bnds(lp, i + 1, GLP_LO, r, 0.0); break;
      case kRowL: glp_set_row_bnds(lp, i + 1, GLP_UP, 0.0, r); break;
      default: glp_set_row_bnds(lp, i + 1, GLP_FR, 0.0, 0.0); break;
    }
  }
  isMip = false;
  for (int j = 0; j < n; ++j) {
    double lo = inst.colLower[j], up = inst.colUpper[j];
    glp_set_col_bnds(lp, j + 1, boundType(lo, up), std::isfinite(lo) ? lo : 0.0,
                     std::isfinite(up) ? up : 0.0);
    if (isIntegerType(inst.colType[j])) {
      glp_set_col_kind(lp, j + 1, GLP_IV);
      isMip = true;
    }
  }
  if (inst.objVar > 0) glp_set_obj_coef(lp, inst.objVar, 1.0);

  int ne = 0;
  for (int j = 0; j < n; ++j) {
    for (int k = inst.colStart[j]; k < inst.colStart[j + 1]; ++k) {
      if (inst.entryValue[k] == 0.0) continue;
      ++ne;
      ia[ne] = inst.entryRow[k] + 1;
      ja[ne] = j + 1;
      ar[ne] = inst.entryValue[k];
    }
  }
  glp_load_matrix(lp, ne, ia.data(), ja.data(), ar.data());
  return lp;
}

void sizeSolution(const HostInstance& inst, HostSolution& sol) {
  const size_t m = static_cast<size_t>(inst.rowCount), n = static_cast<size_t>(inst.colCount);
  sol.rowLevel.assign(m, 0.0);
  sol.rowMarginal.assign(m, 0.0);
  sol.rowStat.assign(m, 2);
  sol.rowCStat.assign(m, 0);
  sol.colLevel.assign(n, 0.0);
  sol.colMarginal.assign(n, 0.0);
  sol.colStat.assign(n, 2);
  sol.colCStat.assign(n, 0);
}

// Row activities of the column levels.
void computeRowLevels(const HostInstance& inst, HostSolution& sol) {
  std::fill(sol.rowLevel.begin(), sol.rowLevel.end(), 0.0);
  for (int j = 0; j < inst.colCount; ++j) {
    for (int k = inst.colStart[j]; k < inst.colStart[j + 1]; ++k) {
      sol.rowLevel[inst.entryRow[k]] += inst.entryValue[k] * sol.colLevel[j];
    }
  }
}

// Basis status of a column from its level: 0 at lower, 1 at upper, else `inside`.
int32_t statFromLevel(double level, double lo, double up, int32_t inside) {
  if (level == lo) return 0;
  if (level == up) return 1;
  return inside;
}

// Levels, marginals and basis statuses of the problem object's basic solution.
void takeBasicSolution(glp_prob* lp, const HostInstance& inst, HostSolution& sol) {
  for (int i = 0; i < inst.rowCount; ++i) {
    sol.rowLevel[i] = glp_get_row_prim(lp, i + 1);
    sol.rowMarginal[i] = glp_get_row_dual(lp, i + 1);
    int st = glp_get_row_stat(lp, i + 1);
    if (st == GLP_BS) {
      sol.rowStat[i] = 2;
    } else {
      switch (inst.rowType[i]) {
        case kRowE:
        case kRowG: sol.rowStat[i] = 0; break;
        case kRowL: sol.rowStat[i] = 1; break;
        default: sol.rowStat[i] = 3; break;
      }
    }
  }
  for (int j = 0; j < inst.colCount; ++j) {
    double x = glp_get_col_prim(lp, j + 1);
    sol.colLevel[j] = x;
    sol.colMarginal[j] = glp_get_col_dual(lp, j + 1);
    int st = glp_get_col_stat(lp, j + 1);
    // Nonbasic columns are placed by their level against the model's own bounds, since a
    // MIP's integer columns were fixed for the final LP.
    sol.colStat[j] = st == GLP_BS ? 2 : statFromLevel(x, inst.colLower[j], inst.colUpper[j], 3);
  }
}

// A point for a model whose bounds cross: each column at a finite bound, or 0.
void takeBoundPoint(const HostInstance& inst, HostSolution& sol) {
  for (int j = 0; j < inst.colCount; ++j) {
    double lo = inst.colLower[j], up = inst.colUpper[j];
    sol.colLevel[j] = std::isfinite(lo) ? lo : std::isfinite(up) ? up : 0.0;
    sol.colStat[j] = statFromLevel(sol.colLevel[j], lo, up, 2);
  }
  computeRowLevels(inst, sol);
}

// Condition status 3 for the unbounded ray: the nonbasic variable (column or row) along which
// GLPK found no limit, and the basic columns that its tableau column drives; the objective
// variable when GLPK names none.
void markUnbounded(glp_prob* lp, const HostInstance& inst, HostSolution& sol) {
  const int m = inst.rowCount, n = inst.colCount;
  const int k = glp_get_unbnd_ray(lp);
  if (k < 1 || k > m + n) {
    if (inst.objVar > 0) sol.colCStat[inst.objVar - 1] = 3;
    return;
  }
  auto mark = [&](int var) {
    if (var <= m) {
      sol.rowCStat[var - 1] = 3;
    } else {
      sol.colCStat[var - m - 1] = 3;
    }
  };
  mark(k);
  const int stat = k <= m ? glp_get_row_stat(lp, k) : glp_get_col_stat(lp, k - m);
  if (stat == GLP_BS || (!glp_bf_exists(lp) && glp_factorize(lp) != 0)) return;
  std::vector<int> ind(static_cast<size_t>(m) + 1);
  std::vector<double> val(static_cast<size_t>(m) + 1);
  const int len = glp_eval_tab_col(lp, k, ind.data(), val.data());
  for (int t = 1; t <= len; ++t) {
    if (ind[t] > m && std::fabs(val[t]) > kOrvaZeroThreshold) mark(ind[t]);
  }
}

// A solver's rounding noise: levels and marginals within kOrvaZeroThreshold of 0 become 0.
void cleanNoise(HostSolution& sol) {
  for (std::vector<double>* v : {&sol.rowLevel, &sol.rowMarginal, &sol.colLevel,
                                 &sol.colMarginal}) {
    for (double& x : *v) {
      if (std::fabs(x) <= kOrvaZeroThreshold) x = 0.0;
    }
  }
}

}  // namespace

std::string orvaUnsolvableReason(const HostInstance& inst) {
  const int m = inst.rowCount;
  const size_t mz = static_cast<size_t>(std::max(m, 0));
  const size_t nz = static_cast<size_t>(std::max(inst.colCount, 0));
  if (inst.rowType.size() != mz || inst.rowRhs.size() != mz || inst.colType.size() != nz ||
      inst.colLower.size() != nz || inst.colUpper.size() != nz ||
      inst.colStart.size() != nz + 1 ||
      inst.entryRow.size() != static_cast<size_t>(hostNzCount(inst)) ||
      inst.entryValue.size() != inst.entryRow.size()) {
    return "the instance's arrays do not agree with its counts";
  }
  std::vector<int> lastColOfRow(static_cast<size_t>(std::max(m, 0)), -1);
  if (!inst.colStart.empty() && inst.colStart[0] != 0) {
    return "the first column does not start at entry 0";
  }
  for (int j = 0; j < inst.colCount; ++j) {
    if (inst.colStart[j] > inst.colStart[j + 1]) {
      return "the entries of variable " + std::to_string(j + 1) + " end before they start";
    }
  }
  for (int j = 0; j < inst.colCount; ++j) {
    int32_t t = inst.colType[j];
    if (t != kVarContinuous && !isIntegerType(t)) {
      return "variable " + std::to_string(j + 1) +
             " is of a kind (SOS or semi-continuous) that GLPK cannot solve";
    }
    if (std::isnan(inst.colLower[j]) || std::isnan(inst.colUpper[j])) {
      return "a bound of variable " + std::to_string(j + 1) + " is not a number";
    }
    for (int k = inst.colStart[j]; k < inst.colStart[j + 1]; ++k) {
      if (hostEntryNonlinear(inst, static_cast<size_t>(k))) {
        return "the model is nonlinear (variable " + std::to_string(j + 1) +
               " has a nonlinear entry)";
      }
      if (!std::isfinite(inst.entryValue[k])) {
        return "a coefficient of variable " + std::to_string(j + 1) + " is not a finite number";
      }
      int r = inst.entryRow[k];
      if (r < 0 || r >= m) {
        return "variable " + std::to_string(j + 1) + " has an entry in row " +
               std::to_string(r + 1) + ", which does not exist";
      }
      if (lastColOfRow[r] == j) {
        return "row " + std::to_string(r + 1) + " appears twice in variable " +
               std::to_string(j + 1);
      }
      lastColOfRow[r] = j;
    }
  }
  for (int i = 0; i < m; ++i) {
    if (inst.rowType[i] != kRowN && !std::isfinite(inst.rowRhs[i])) {
      return "the right-hand side of row " + std::to_string(i + 1) + " is not a finite number";
    }
  }
  return {};
}

namespace {

// The solve, in a GLPK body: every array it fills lives in the job.
struct SolveJob {
  const HostInstance& inst;
  const OrvaSolveSettings& settings;
  HostSolution& sol;
  std::chrono::steady_clock::time_point start;
  std::vector<int> ia, ja;
  std::vector<double> ar, mipLevel;
  bool scaled = true;
};

void solveBody(void* data) {
  SolveJob& job = *static_cast<SolveJob*>(data);
  const HostInstance& inst = job.inst;
  const OrvaSolveSettings& settings = job.settings;
  HostSolution& sol = job.sol;
  bool isMip = false;
  glp_prob* lp = buildProblem(inst, isMip, job.ia, job.ja, job.ar);
  if (job.scaled) glp_scale_prob(lp, GLP_SF_AUTO);

  glp_smcp smcp;
  glp_init_smcp(&smcp);
  smcp.msg_lev = GLP_MSG_OFF;
  smcp.presolve = GLP_OFF;
  smcp.tm_lim = msLimit(settings.timeLimitSeconds);
  int rc = glp_simplex(lp, &smcp);

  bool timedOut = rc == GLP_ETMLIM || rc == GLP_EITLIM;
  if (rc != 0 && !timedOut) {
    sol.solveStat = kSolveTerminated;
    sol.modelStat = kStatErrorNoSolution;
    glp_delete_prob(lp);
    return;
  }
  takeBasicSolution(lp, inst, sol);
  const bool primalFeasible = glp_get_prim_stat(lp) == GLP_FEAS;

  if (timedOut) {
    sol.solveStat = kSolveResourceInterrupt;
    sol.modelStat = !primalFeasible ? kStatIntermediateInfeasible
                    : isMip         ? kStatIntermediateNonInteger
                                    : kStatIntermediateNonoptimal;
  } else {
    switch (glp_get_status(lp)) {
      case GLP_OPT: sol.modelStat = kStatOptimal; break;
      case GLP_UNBND: sol.modelStat = kStatUnbounded; break;
      case GLP_NOFEAS: sol.modelStat = isMip ? kStatIntegerInfeasible : kStatInfeasible; break;
      default: sol.modelStat = kStatIntermediateNonoptimal; break;
    }
    if (sol.modelStat == kStatUnbounded) markUnbounded(lp, inst, sol);
  }

  if (isMip && sol.modelStat == kStatOptimal) {
    double spent =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - job.start).count();
    glp_iocp iocp;
    glp_init_iocp(&iocp);
    iocp.msg_lev = GLP_MSG_OFF;
    iocp.presolve = GLP_OFF;
    if (settings.timeLimitSeconds > 0.0) {
      iocp.tm_lim = msLimit(std::max(settings.timeLimitSeconds - spent, 0.001));
    }
    int mrc = glp_intopt(lp, &iocp);
    int mst = glp_mip_status(lp);
    if (mst == GLP_OPT || mst == GLP_FEAS) {
      sol.modelStat = mst == GLP_OPT ? kStatOptimal : kStatIntegerSolution;
      if (mrc == GLP_ETMLIM) sol.solveStat = kSolveResourceInterrupt;
      // Integer columns fixed at their values; the LP solved again gives marginals and basis.
      std::vector<double>& mipLevel = job.mipLevel;
      for (int j = 0; j < inst.colCount; ++j) {
        mipLevel[j] = glp_mip_col_val(lp, j + 1);
        if (isIntegerType(inst.colType[j])) {
          mipLevel[j] = std::round(mipLevel[j]);
          glp_set_col_bnds(lp, j + 1, GLP_FX, mipLevel[j], mipLevel[j]);
        }
      }
      int frc = glp_simplex(lp, &smcp);
      if (frc == 0 && glp_get_status(lp) == GLP_OPT) {
        takeBasicSolution(lp, inst, sol);
      } else {
        // The fixed LP failed: the integer point without marginals.
        for (int j = 0; j < inst.colCount; ++j) {
          sol.colLevel[j] = mipLevel[j];
          sol.colMarginal[j] = 0.0;
          sol.colStat[j] = statFromLevel(mipLevel[j], inst.colLower[j], inst.colUpper[j], 2);
        }
        std::fill(sol.rowMarginal.begin(), sol.rowMarginal.end(), 0.0);
        computeRowLevels(inst, sol);
      }
    } else if (mst == GLP_NOFEAS) {
      sol.modelStat = kStatIntegerInfeasible;
    } else {
      // No integer point within the limit: the relaxation stands.
      sol.solveStat = kSolveResourceInterrupt;
      sol.modelStat = kStatIntermediateNonInteger;
    }
  }
  glp_delete_prob(lp);
}

}  // namespace

std::string orvaSolveInstance(const HostInstance& inst, const OrvaSolveSettings& settings,
                              HostSolution& sol) {
  sizeSolution(inst, sol);
  sol.solveStat = kSolveNormal;
  for (int j = 0; j < inst.colCount; ++j) {
    if (inst.colLower[j] > inst.colUpper[j]) {
      // Crossed bounds: no solve can help; the point shows the variable out of its bounds.
      takeBoundPoint(inst, sol);
      sol.modelStat = kStatInfeasible;
      orvaConditionStatuses(inst, sol);
      return {};
    }
  }
  const auto nz = static_cast<size_t>(hostNzCount(inst)) + 1;
  SolveJob job{inst, settings, sol, std::chrono::steady_clock::now(),
               std::vector<int>(nz), std::vector<int>(nz), std::vector<double>(nz),
               std::vector<double>(static_cast<size_t>(inst.colCount)), true};
  std::string output;
  GlpkOutcome outcome = glpkCall(solveBody, &job, output);
  if (outcome != kGlpkDone) {
    // GLPK's scaling refuses factors of extreme size (0 or infinite): solve unscaled.
    sizeSolution(inst, sol);
    sol.solveStat = kSolveNormal;
    job.scaled = false;
    outcome = glpkCall(solveBody, &job, output);
  }
  if (outcome != kGlpkDone) {
    sizeSolution(inst, sol);
    sol.solveStat = kSolveTerminated;
    sol.modelStat = kStatErrorNoSolution;
    return "GLPK stopped: " + glpkLastWords(output);
  }
  if (sol.modelStat != kStatErrorNoSolution) {
    cleanNoise(sol);
    orvaConditionStatuses(inst, sol);
  }
  return {};
}

void orvaConditionStatuses(const HostInstance& inst, HostSolution& sol) {
  const double s = inst.minimizing ? 1.0 : -1.0;
  double largest = 1.0;
  for (double v : sol.rowMarginal) largest = std::max(largest, std::fabs(v));
  for (double v : sol.colMarginal) largest = std::max(largest, std::fabs(v));
  const double dtol = kOrvaDualTol * largest;
  bool integerSolution = false;
  for (int j = 0; j < inst.colCount; ++j) {
    integerSolution = integerSolution || isIntegerType(inst.colType[j]);
  }

  auto near = [](double x, double bound) {
    return std::isfinite(bound) &&
           std::fabs(x - bound) <= kOrvaFeasTol * std::max(1.0, std::fabs(bound));
  };
  auto below = [](double x, double bound) {
    return std::isfinite(bound) && x < bound - kOrvaFeasTol * std::max(1.0, std::fabs(bound));
  };
  auto above = [](double x, double bound) {
    return std::isfinite(bound) && x > bound + kOrvaFeasTol * std::max(1.0, std::fabs(bound));
  };

  for (int j = 0; j < inst.colCount; ++j) {
    if (sol.colCStat[j] == 3) continue;
    double lo = inst.colLower[j], up = inst.colUpper[j], x = sol.colLevel[j];
    double d = s * sol.colMarginal[j];
    int32_t c = 0;
    if (below(x, lo) || above(x, up)) {
      c = 2;
    } else if (!(integerSolution && isIntegerType(inst.colType[j]))) {
      bool atLo = near(x, lo), atUp = near(x, up);
      if (atLo && atUp) c = 0;
      else if (atLo) c = d < -dtol ? 1 : 0;
      else if (atUp) c = d > dtol ? 1 : 0;
      else c = std::fabs(d) > dtol ? 1 : 0;
    }
    sol.colCStat[j] = c;
  }
  for (int i = 0; i < inst.rowCount; ++i) {
    if (sol.rowCStat[i] == 3) continue;
    double r = inst.rowRhs[i], x = sol.rowLevel[i], p = s * sol.rowMarginal[i];
    int32_t c = 0;
    switch (inst.rowType[i]) {
      case kRowE: c = (below(x, r) || above(x, r)) ? 2 : 0; break;
      case kRowG:
        c = below(x, r) ? 2 : near(x, r) ? (p < -dtol ? 1 : 0) : (std::fabs(p) > dtol ? 1 : 0);
        break;
      case kRowL:
        c = above(x, r) ? 2 : near(x, r) ? (p > dtol ? 1 : 0) : (std::fabs(p) > dtol ? 1 : 0);
        break;
      default: c = std::fabs(p) > dtol ? 1 : 0; break;
    }
    sol.rowCStat[i] = c;
  }
}
