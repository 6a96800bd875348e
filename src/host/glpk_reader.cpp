// MathProg, MPS and CPLEX LP models through GLPK, converted into one HostInstance: the objective
// becomes a variable `objvar` in an =E= row, ranged rows become a =G= and an =L= row.
#include <fcntl.h>
#include <glpk.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <unordered_set>

#include "host/glpk_call.h"
#include "host/names.h"
#include "host/readers_internal.h"

namespace {

// What one read hands to its GLPK body and gets back. GLPK opens the files under their
// descriptors' names, so that it never handles the user's paths.
struct ReadJob {
  const ModelSource* source;
  ModelFormat format;
  std::string modelName, dataName;
  HostInstance* inst;
  bool refused = false;
  std::string badName, badNameFault;  // the first name that hostNameFault refuses
};

void convertProblem(glp_prob* p, ReadJob& job);

// Reads the model; 1 when GLPK refused the file. Only GLPK calls and plain values here.
int loadProblem(const ReadJob* job, glp_prob* prob) {
  const char* path = job->modelName.c_str();
  switch (job->format) {
    case ModelFormat::MathProg: {
      glp_tran* tran = glp_mpl_alloc_wksp();
      const bool hasData = !job->dataName.empty();
      int failed = glp_mpl_read_model(tran, path, hasData ? 1 : 0);
      if (!failed && hasData) failed = glp_mpl_read_data(tran, job->dataName.c_str());
      if (!failed) failed = glp_mpl_generate(tran, nullptr);
      if (!failed) glp_mpl_build_prob(tran, prob);
      glp_mpl_free_wksp(tran);
      return failed ? 1 : 0;
    }
    case ModelFormat::Mps: return glp_read_mps(prob, GLP_MPS_FILE, nullptr, path) ? 1 : 0;
    case ModelFormat::FixedMps: return glp_read_mps(prob, GLP_MPS_DECK, nullptr, path) ? 1 : 0;
    case ModelFormat::Lp: return glp_read_lp(prob, nullptr, path) ? 1 : 0;
    default: return 1;
  }
}

// The conversion only reads the problem that GLPK built, with indices in range: calls that do
// not fail, so that no fatal error can skip the conversion's own objects.
void readBody(void* data) {
  auto* job = static_cast<ReadJob*>(data);
  glp_prob* prob = glp_create_prob();
  job->refused = loadProblem(job, prob) != 0;
  if (!job->refused) convertProblem(prob, *job);
  glp_delete_prob(prob);
}

// The line with every descriptor name of GLPK's put back to the file's own path.
std::string withPaths(std::string line,
                      const std::vector<std::pair<std::string, std::string>>& names) {
  for (const auto& [alias, path] : names) {
    if (alias.empty()) continue;
    for (std::size_t at = line.find(alias); at != std::string::npos;
         at = line.find(alias, at + path.size()))
      line.replace(at, alias.size(), path);
  }
  return line;
}

// True for "FILE:LINE: what", a number between the colon after the file and the next one.
bool hasFileLine(const std::string& line) {
  const std::size_t colon = line.rfind(':', line.find(": "));
  if (colon == std::string::npos || colon == 0) return false;
  const std::size_t prev = line.rfind(':', colon - 1);
  return prev != std::string::npos && prev + 1 < colon &&
         line.find_first_not_of("0123456789", prev + 1) == colon;
}

bool isWarning(const std::string& line) {
  const std::size_t text = line.find(": ");
  return text != std::string::npos && line.compare(text + 2, 7, "warning") == 0;
}

}  // namespace

std::string glpkMessage(const std::string& path, const std::string& output,
                        const std::vector<std::pair<std::string, std::string>>& names) {
  std::string last;
  std::size_t start = 0;
  while (start < output.size()) {
    std::size_t end = output.find('\n', start);
    if (end == std::string::npos) end = output.size();
    std::string line = output.substr(start, end - start);
    start = end + 1;
    if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
    line = withPaths(std::move(line), names);
    if (hasFileLine(line) && !isWarning(line)) return line;
    last = std::move(line);
  }
  if (last.empty()) return path + ": the model could not be read";
  return path + ": " + last;
}

namespace {

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
void convertProblem(glp_prob* p, ReadJob& job) {
  const ModelSource& source = *job.source;
  HostInstance& inst = *job.inst;
  auto check = [&job](const std::string& name) {
    if (!job.badName.empty()) return;
    job.badNameFault = hostNameFault(name);
    if (!job.badNameFault.empty()) job.badName = name;
  };
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
  const bool objUnnamed = objName.empty();
  if (hasObjective && objUnnamed) objName = "obj";
  check(objName);

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
  std::vector<char> rowMade, colMade;  // 1: a name the host made
  std::vector<int32_t> firstRow(static_cast<std::size_t>(m0) + 1, -1);
  std::vector<char> split(static_cast<std::size_t>(m0) + 1, 0);
  auto addRow = [&](HostName name, int32_t type, double rhs, bool made = false) {
    rowNames.push_back(std::move(name));
    rowMade.push_back(made ? 1 : 0);
    inst.rowType.push_back(type);
    inst.rowRhs.push_back(rhs + 0.0);  // no negative zero
    return static_cast<int32_t>(inst.rowType.size() - 1);
  };
  const double c0 = glp_get_obj_coef(p, 0);
  if (hasObjective && objRepeat == 0)
    inst.objRow = addRow(hostParseName(objName, rowRule), kRowE, -c0, objUnnamed) + 1;
  for (int i = 1; i <= m0; ++i) {
    if (i == objRepeat) {
      inst.objRow = addRow(hostParseName(objName, rowRule), kRowE, -c0, objUnnamed) + 1;
      continue;
    }
    const char* given = glp_get_row_name(p, i);
    if (given) check(given);
    HostName name = hostParseName(rowNameOf(p, i), rowRule);
    const bool unnamed = !given || !*given;
    const double lb = glp_get_row_lb(p, i), ub = glp_get_row_ub(p, i);
    switch (glp_get_row_type(p, i)) {
      case GLP_FR: firstRow[i] = addRow(std::move(name), kRowN, 0.0, unnamed); break;
      case GLP_LO: firstRow[i] = addRow(std::move(name), kRowG, lb, unnamed); break;
      case GLP_UP: firstRow[i] = addRow(std::move(name), kRowL, ub, unnamed); break;
      case GLP_FX: firstRow[i] = addRow(std::move(name), kRowE, lb, unnamed); break;
      default:  // GLP_DB
        if (lb >= ub) {
          firstRow[i] = addRow(std::move(name), kRowE, lb, unnamed);
        } else {
          split[i] = 1;
          firstRow[i] = addRow(hostMakeName(name.symbol + "_lo", name.labels), kRowG, lb, true);
          addRow(hostMakeName(name.symbol + "_up", name.labels), kRowL, ub, true);
        }
    }
  }

  std::vector<int> ind(static_cast<std::size_t>(m0) + 1);
  std::vector<double> val(static_cast<std::size_t>(m0) + 1);
  std::vector<std::pair<int32_t, double>> column;
  inst.colStart.push_back(0);
  for (int j = 1; j <= n0; ++j) {
    const char* given = glp_get_col_name(p, j);
    if (given) check(given);
    colNames.push_back(hostParseName(colNameOf(p, j), colRule));
    colMade.push_back(!given || !*given ? 1 : 0);
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
    colNames.push_back(hostParseName("objvar", colRule));
    colMade.push_back(1);
    inst.colType.push_back(kVarContinuous);
    inst.colLower.push_back(-kHostInf);
    inst.colUpper.push_back(kHostInf);
    inst.entryRow.push_back(inst.objRow - 1);
    inst.entryValue.push_back(-1.0);
    inst.colStart.push_back(static_cast<int32_t>(inst.entryRow.size()));
    inst.objVar = static_cast<int32_t>(inst.colType.size());
  }
  hostDistinctNames(rowNames, rowMade);
  hostDistinctNames(colNames, colMade);
  hostBuildDictionary(inst, rowNames, colNames);
  hostCompleteInstance(inst);
}

// GLPK's automatic scale factors of the instance's matrix, computed in a GLPK body.
struct ScaleJob {
  const HostInstance* inst;
  std::vector<double> rowFactor, colFactor;
  std::vector<int> ind;
  std::vector<double> val;
};

void scaleBody(void* data) {
  auto* job = static_cast<ScaleJob*>(data);
  const HostInstance& inst = *job->inst;
  int* ind = job->ind.data();
  double* val = job->val.data();
  glp_prob* p = glp_create_prob();
  glp_add_rows(p, inst.rowCount);
  glp_add_cols(p, inst.colCount);
  for (int32_t j = 0; j < inst.colCount; ++j) {
    int len = 0;
    for (int32_t k = inst.colStart[j]; k < inst.colStart[j + 1]; ++k) {
      if (inst.entryValue[k] == 0.0) continue;
      ++len;
      ind[len] = inst.entryRow[k] + 1;
      val[len] = inst.entryValue[k];
    }
    glp_set_mat_col(p, j + 1, len, ind, val);
  }
  glp_scale_prob(p, GLP_SF_AUTO);
  for (int32_t i = 0; i < inst.rowCount; ++i) job->rowFactor[i] = glp_get_rii(p, i + 1);
  for (int32_t j = 0; j < inst.colCount; ++j) job->colFactor[j] = 1.0 / glp_get_sjj(p, j + 1);
  glp_delete_prob(p);
}

// "FILE:LINE: " of the first line of the model or data file that holds `name`, else "FILE: ".
std::string placeOfName(const ModelSource& source, const std::string& name) {
  for (const std::string* path : {&source.path, &source.dataPath}) {
    if (path->empty()) continue;
    std::ifstream in(*path, std::ios::binary);
    std::string line;
    for (int lineNo = 1; std::getline(in, line); ++lineNo)
      if (line.find(name) != std::string::npos) return *path + ":" + std::to_string(lineNo) + ": ";
  }
  return source.path + ": ";
}

bool isNameChar(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

// The line of the data file where the data of parameter `name` begins: the `param` statement
// that names it before its ":=". 0 when the data file does not give it.
int dataLineOf(const std::string& dataPath, const std::string& name) {
  std::ifstream in(dataPath, std::ios::binary);
  std::string line;
  int statementLine = 0;  // line of the `param` of the statement being read, before its ":="
  for (int lineNo = 1; std::getline(in, line); ++lineNo) {
    line = line.substr(0, line.find('#'));
    std::size_t k = 0;
    while (k < line.size()) {
      if (!isNameChar(line[k])) {
        if (line.compare(k, 2, ":=") == 0) statementLine = 0;
        if (line[k] == ';') statementLine = 0;
        ++k;
        continue;
      }
      std::size_t end = k;
      while (end < line.size() && isNameChar(line[end])) ++end;
      const std::string word = line.substr(k, end - k);
      if (word == "param") statementLine = lineNo;
      else if (statementLine != 0 && word == name) return statementLine;
      k = end;
    }
  }
  return 0;
}

// A MathProg model checks its data when it is generated, and GLPK then names the model's line.
// When the parameter at fault has its data in the data file, the message is told there.
std::string atDataLine(const ModelSource& source, const std::string& message) {
  if (source.format != ModelFormat::MathProg || source.dataPath.empty() ||
      message.compare(0, source.path.size() + 1, source.path + ":") != 0)
    return message;
  const std::size_t text = message.find(": ", source.path.size() + 1);
  if (text == std::string::npos) return message;
  std::size_t end = text + 2;
  while (end < message.size() && isNameChar(message[end])) ++end;
  if (end == text + 2 || end == message.size() || (message[end] != '[' && message[end] != ' '))
    return message;
  const int line = dataLineOf(source.dataPath, message.substr(text + 2, end - text - 2));
  if (line == 0) return message;
  return source.dataPath + ":" + std::to_string(line) + ": " + message.substr(text + 2) +
         " (the data of " + message.substr(text + 2, end - text - 2) + " given from this line; " +
         message.substr(0, text) + " checks it)";
}

}  // namespace

bool readGlpkModel(const ModelSource& source, HostInstance& inst, std::string& error) {
  const int modelFd = ::open(source.path.c_str(), O_RDONLY | O_CLOEXEC);
  const int dataFd =
      source.dataPath.empty() ? -1 : ::open(source.dataPath.c_str(), O_RDONLY | O_CLOEXEC);
  if (modelFd < 0 || (!source.dataPath.empty() && dataFd < 0)) {
    const std::string& which = modelFd < 0 ? source.path : source.dataPath;
    error = which + ": cannot read: " + std::strerror(errno);
    if (modelFd >= 0) ::close(modelFd);
    return false;
  }
  ReadJob job{&source, source.format, glpkFdName(modelFd),
              dataFd < 0 ? std::string() : glpkFdName(dataFd), &inst, false, {}, {}};
  std::string output;
  GlpkOutcome outcome = glpkCall(readBody, &job, output);
  if (outcome == kGlpkDone && job.refused && source.format == ModelFormat::Mps) {
    // A file named .mps may be in the fixed form; the free form's complaint is the one told.
    std::string fixedOutput;
    job.format = ModelFormat::FixedMps;
    outcome = glpkCall(readBody, &job, fixedOutput);
    if (outcome == kGlpkFailed) output = std::move(fixedOutput);
  }
  ::close(modelFd);
  if (dataFd >= 0) ::close(dataFd);
  if (outcome == kGlpkDone && !job.refused && job.badName.empty()) return true;
  if (outcome == kGlpkDone && !job.refused) {
    error = placeOfName(source, job.badName) + job.badNameFault;
    return false;
  }
  const std::vector<std::pair<std::string, std::string>> names = {
      {job.modelName, source.path}, {job.dataName, source.dataPath}};
  error = atDataLine(source, glpkMessage(source.path, output, names));
  if (outcome == kGlpkFailed && !hasFileLine(error))
    error = source.path + ": GLPK stopped inside its reader: " + glpkLastWords(output);
  return false;
}

bool hostAutoScale(HostInstance& instance, std::string& error) {
  ScaleJob job{&instance,
               std::vector<double>(static_cast<std::size_t>(instance.rowCount), 1.0),
               std::vector<double>(static_cast<std::size_t>(instance.colCount), 1.0),
               std::vector<int>(static_cast<std::size_t>(instance.rowCount) + 1),
               std::vector<double>(static_cast<std::size_t>(instance.rowCount) + 1)};
  for (int32_t j = 0; j < instance.colCount; ++j) {
    if (instance.colStart[j + 1] - instance.colStart[j] > instance.rowCount) {
      error = instance.sourcePath +
              ": GLPK could not scale the model: a row appears twice in column " +
              std::to_string(j + 1);
      return false;
    }
  }
  if (instance.rowCount > 0 && instance.colCount > 0) {
    std::string output;
    if (glpkCall(scaleBody, &job, output) != kGlpkDone) {
      error = instance.sourcePath + ": GLPK could not scale the model: " + glpkLastWords(output);
      return false;
    }
  }
  instance.rowScale = std::move(job.rowFactor);
  instance.colScale = std::move(job.colFactor);
  instance.hasScale = true;
  return true;
}
