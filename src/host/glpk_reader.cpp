// MathProg, MPS and CPLEX LP models through GLPK, converted into one HostInstance: the objective
// becomes a variable `objvar` in an =E= row, ranged rows become a =G= and an =L= row.
#include <glpk.h>

#include <algorithm>
#include <csetjmp>
#include <unordered_set>

#include "host/names.h"
#include "host/readers_internal.h"

namespace {

// GLPK's output is kept here instead of reaching the terminal; a fatal GLPK error jumps back to
// the caller instead of ending the process.
struct GlpkSession {
  std::jmp_buf jump;
  std::string output;
};

int keepOutput(void* info, const char* text) {
  static_cast<GlpkSession*>(info)->output += text;
  return 1;
}

[[noreturn]] void jumpBack(void* info) { std::longjmp(static_cast<GlpkSession*>(info)->jump, 1); }

void beginSession(GlpkSession& s) {
  glp_term_hook(keepOutput, &s);
  glp_error_hook(jumpBack, &s);
}

void endSession() {
  glp_error_hook(nullptr, nullptr);
  glp_term_hook(nullptr, nullptr);
}

// Reads the model into `prob`. 0: read; 1: GLPK refused the file; 2: GLPK failed, and its
// environment, `prob` with it, is gone. Nothing here has a destructor, so the jump skips none.
int loadProblem(const ModelSource* source, glp_prob* prob, GlpkSession* session) {
  glp_tran* volatile tran = nullptr;
  if (setjmp(session->jump) != 0) return 2;
  int failed = 0;
  const char* path = source->path.c_str();
  switch (source->format) {
    case ModelFormat::MathProg: {
      tran = glp_mpl_alloc_wksp();
      const bool hasData = !source->dataPath.empty();
      failed = glp_mpl_read_model(tran, path, hasData ? 1 : 0);
      if (!failed && hasData) failed = glp_mpl_read_data(tran, source->dataPath.c_str());
      if (!failed) failed = glp_mpl_generate(tran, nullptr);
      if (!failed) glp_mpl_build_prob(tran, prob);
      glp_mpl_free_wksp(tran);
      break;
    }
    case ModelFormat::Mps:
      failed = glp_read_mps(prob, GLP_MPS_FILE, nullptr, path);
      break;
    case ModelFormat::FixedMps:
      failed = glp_read_mps(prob, GLP_MPS_DECK, nullptr, path);
      break;
    case ModelFormat::Lp:
      failed = glp_read_lp(prob, nullptr, path);
      break;
    default:
      failed = 1;
  }
  return failed ? 1 : 0;
}

// The first "FILE:LINE: what" line of GLPK's output, else its last line.
std::string glpkMessage(const std::string& path, const std::string& output) {
  std::string last;
  std::size_t start = 0;
  while (start < output.size()) {
    std::size_t end = output.find('\n', start);
    if (end == std::string::npos) end = output.size();
    const std::string line = output.substr(start, end - start);
    start = end + 1;
    if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
    last = line;
    // FILE:LINE: with a number between the first colon after the file and the next one.
    const std::size_t colon = line.rfind(':', line.find(": "));
    if (colon != std::string::npos && colon > 0) {
      const std::size_t prev = line.rfind(':', colon - 1);
      if (prev != std::string::npos && prev + 1 < colon &&
          line.find_first_not_of("0123456789", prev + 1) == colon)
        return line;
    }
  }
  if (last.empty()) return path + ": the model could not be read";
  return path + ": " + last;
}

std::string baseName(const std::string& path) {
  std::string base = path.substr(path.find_last_of('/') + 1);
  const auto dot = base.find_last_of('.');
  if (dot != std::string::npos && dot > 0) base.resize(dot);
  return base;
}

std::string rowNameOf(glp_prob* p, int i) {
  const char* name = glp_get_row_name(p, i);
  return name && *name ? name : "R" + std::to_string(i);
}

std::string colNameOf(glp_prob* p, int j) {
  const char* name = glp_get_col_name(p, j);
  return name && *name ? name : "C" + std::to_string(j);
}

// One GLPK problem into the instance by the conversion rules.
void convertProblem(glp_prob* p, const ModelSource& source, HostInstance& inst) {
  inst = HostInstance{};
  inst.sourcePath = source.path;
  inst.inputName = baseName(source.path);
  inst.minimizing = glp_get_obj_dir(p) != GLP_MAX;
  const int m0 = glp_get_num_rows(p);
  const int n0 = glp_get_num_cols(p);

  const char* objNameRaw = glp_get_obj_name(p);
  std::string objName = objNameRaw && *objNameRaw ? objNameRaw : "";
  bool hasObjective = !objName.empty() || glp_get_obj_coef(p, 0) != 0.0;
  for (int j = 1; j <= n0 && !hasObjective; ++j) hasObjective = glp_get_obj_coef(p, j) != 0.0;
  if (hasObjective && objName.empty()) objName = "obj";

  // MathProg keeps the objective as a free row as well: that row becomes the objective row.
  int objRepeat = 0;
  if (hasObjective && source.format == ModelFormat::MathProg)
    for (int i = 1; i <= m0 && objRepeat == 0; ++i)
      if (glp_get_row_type(p, i) == GLP_FR && rowNameOf(p, i) == objName) objRepeat = i;

  // Names without brackets: MathProg's are scalar symbols; an LP file's follow the rule.
  const SymbolRule asked =
      source.format == ModelFormat::MathProg ? SymbolRule{SymbolRuleKind::Scalar, 0} : source.symbols;
  const SymbolRule rowRule = hostResolveSymbolRule(asked, [&](const auto& f) {
    for (int i = 1; i <= m0; ++i) f(rowNameOf(p, i));
  });
  const SymbolRule colRule = hostResolveSymbolRule(asked, [&](const auto& f) {
    for (int j = 1; j <= n0; ++j) f(colNameOf(p, j));
  });
  std::vector<HostName> rowNames, colNames;
  std::vector<int32_t> firstRow(static_cast<std::size_t>(m0) + 1, -1);
  std::vector<char> split(static_cast<std::size_t>(m0) + 1, 0);
  auto addRow = [&](HostName name, int32_t type, double rhs) {
    rowNames.push_back(std::move(name));
    inst.rowType.push_back(type);
    inst.rowRhs.push_back(rhs + 0.0);  // no negative zero
    return static_cast<int32_t>(inst.rowType.size() - 1);
  };
  const double c0 = glp_get_obj_coef(p, 0);
  if (hasObjective && objRepeat == 0) inst.objRow = addRow(hostParseName(objName, rowRule), kRowE, -c0) + 1;
  for (int i = 1; i <= m0; ++i) {
    if (i == objRepeat) {
      inst.objRow = addRow(hostParseName(objName, rowRule), kRowE, -c0) + 1;
      continue;
    }
    HostName name = hostParseName(rowNameOf(p, i), rowRule);
    const double lb = glp_get_row_lb(p, i), ub = glp_get_row_ub(p, i);
    switch (glp_get_row_type(p, i)) {
      case GLP_FR: firstRow[i] = addRow(std::move(name), kRowN, 0.0); break;
      case GLP_LO: firstRow[i] = addRow(std::move(name), kRowG, lb); break;
      case GLP_UP: firstRow[i] = addRow(std::move(name), kRowL, ub); break;
      case GLP_FX: firstRow[i] = addRow(std::move(name), kRowE, lb); break;
      default:  // GLP_DB
        if (lb >= ub) {
          firstRow[i] = addRow(std::move(name), kRowE, lb);
        } else {
          split[i] = 1;
          firstRow[i] = addRow(hostMakeName(name.symbol + "_lo", name.labels), kRowG, lb);
          addRow(hostMakeName(name.symbol + "_up", name.labels), kRowL, ub);
        }
    }
  }

  std::unordered_set<std::string> colNameSet;
  std::vector<int> ind(static_cast<std::size_t>(m0) + 1);
  std::vector<double> val(static_cast<std::size_t>(m0) + 1);
  std::vector<std::pair<int32_t, double>> column;
  inst.colStart.push_back(0);
  for (int j = 1; j <= n0; ++j) {
    const std::string name = colNameOf(p, j);
    colNameSet.insert(name);
    colNames.push_back(hostParseName(name, colRule));
    const double lb = glp_get_col_lb(p, j), ub = glp_get_col_ub(p, j);
    double lower = -kHostInf, upper = kHostInf;
    switch (glp_get_col_type(p, j)) {
      case GLP_LO: lower = lb; break;
      case GLP_UP: upper = ub; break;
      case GLP_DB: lower = lb; upper = ub; break;
      case GLP_FX: lower = upper = lb; break;
      default: break;
    }
    int32_t type = kVarContinuous;
    const int kind = glp_get_col_kind(p, j);
    if (kind == GLP_BV || (kind == GLP_IV && lower == 0.0 && upper == 1.0))
      type = kVarBinary;
    else if (kind == GLP_IV)
      type = kVarInteger;
    inst.colType.push_back(type);
    inst.colLower.push_back(lower + 0.0);
    inst.colUpper.push_back(upper + 0.0);

    column.clear();
    const int len = glp_get_mat_col(p, j, ind.data(), val.data());
    for (int k = 1; k <= len; ++k) {
      const int i = ind[k];
      if (i == objRepeat) continue;
      column.emplace_back(firstRow[i], val[k]);
      if (split[i]) column.emplace_back(firstRow[i] + 1, val[k]);
    }
    const double cj = glp_get_obj_coef(p, j);
    if (hasObjective && cj != 0.0) column.emplace_back(inst.objRow - 1, cj);
    std::sort(column.begin(), column.end());
    for (const auto& [row, value] : column) {
      inst.entryRow.push_back(row);
      inst.entryValue.push_back(value);
    }
    inst.colStart.push_back(static_cast<int32_t>(inst.entryRow.size()));
  }
  if (hasObjective) {
    std::string objVar = "objvar";
    while (colNameSet.count(objVar) != 0) objVar += '_';
    colNames.push_back(hostParseName(objVar, colRule));
    inst.colType.push_back(kVarContinuous);
    inst.colLower.push_back(-kHostInf);
    inst.colUpper.push_back(kHostInf);
    inst.entryRow.push_back(inst.objRow - 1);
    inst.entryValue.push_back(-1.0);
    inst.colStart.push_back(static_cast<int32_t>(inst.entryRow.size()));
    inst.objVar = static_cast<int32_t>(inst.colType.size());
  }
  inst.entryNonlinear.assign(inst.entryRow.size(), 0);
  hostBuildDictionary(inst, rowNames, colNames);
  hostCompleteInstance(inst);
}

// GLPK's automatic scale factors of the instance's matrix. 0: done; 2: GLPK failed.
// `ind` and `val` have room for a column; the caller owns them, so that the jump skips no
// destructor.
int scaleFactors(const HostInstance* inst, std::vector<double>* rowFactor,
                 std::vector<double>* colFactor, std::vector<int>* indRoom,
                 std::vector<double>* valRoom, GlpkSession* session) {
  if (setjmp(session->jump) != 0) return 2;
  int* ind = indRoom->data();
  double* val = valRoom->data();
  glp_prob* p = glp_create_prob();
  glp_add_rows(p, inst->rowCount);
  glp_add_cols(p, inst->colCount);
  for (int32_t j = 0; j < inst->colCount; ++j) {
    if (inst->colStart[j + 1] - inst->colStart[j] > inst->rowCount) {  // a row given twice
      glp_delete_prob(p);
      return 1;
    }
    int len = 0;
    for (int32_t k = inst->colStart[j]; k < inst->colStart[j + 1]; ++k) {
      if (inst->entryValue[k] == 0.0) continue;
      ++len;
      ind[len] = inst->entryRow[k] + 1;
      val[len] = inst->entryValue[k];
    }
    glp_set_mat_col(p, j + 1, len, ind, val);
  }
  glp_scale_prob(p, GLP_SF_AUTO);
  for (int32_t i = 0; i < inst->rowCount; ++i) (*rowFactor)[i] = glp_get_rii(p, i + 1);
  for (int32_t j = 0; j < inst->colCount; ++j) (*colFactor)[j] = 1.0 / glp_get_sjj(p, j + 1);
  glp_delete_prob(p);
  return 0;
}

}  // namespace

bool readGlpkModel(const ModelSource& source, HostInstance& inst, std::string& error) {
  GlpkSession session;
  beginSession(session);
  glp_prob* prob = glp_create_prob();
  int result = loadProblem(&source, prob, &session);
  if (result == 1 && source.format == ModelFormat::Mps) {
    // A file named .mps may be in the fixed form; the free form's complaint is the one told.
    GlpkSession fixedSession;
    beginSession(fixedSession);
    glp_erase_prob(prob);
    ModelSource fixed = source;
    fixed.format = ModelFormat::FixedMps;
    const int fixedResult = loadProblem(&fixed, prob, &fixedSession);
    if (fixedResult == 0) result = 0;
    if (fixedResult == 2) result = 2;
    beginSession(session);
  }
  if (result == 0) {
    convertProblem(prob, source, inst);
    glp_delete_prob(prob);
    endSession();
    return true;
  }
  if (result == 2) glp_free_env();
  else glp_delete_prob(prob);
  endSession();
  error = glpkMessage(source.path, session.output);
  return false;
}

bool hostAutoScale(HostInstance& instance, std::string& error) {
  std::vector<double> rowFactor(static_cast<std::size_t>(instance.rowCount), 1.0);
  std::vector<double> colFactor(static_cast<std::size_t>(instance.colCount), 1.0);
  if (instance.rowCount > 0 && instance.colCount > 0) {
    GlpkSession session;
    beginSession(session);
    std::vector<int> ind(static_cast<std::size_t>(instance.rowCount) + 1);
    std::vector<double> val(static_cast<std::size_t>(instance.rowCount) + 1);
    const int result = scaleFactors(&instance, &rowFactor, &colFactor, &ind, &val, &session);
    if (result != 0) glp_free_env();
    endSession();
    if (result != 0) {
      error = instance.sourcePath + ": GLPK could not scale the model: " +
              glpkMessage(instance.sourcePath, session.output);
      return false;
    }
  }
  instance.rowScale = std::move(rowFactor);
  instance.colScale = std::move(colFactor);
  instance.hasScale = true;
  return true;
}
