// The host's objects over a HostInstance.
#include "host/host.h"

#include <glpk.h>

#include <algorithm>
#include <chrono>
#include <cctype>
#include <charconv>
#include <cstdio>
#include <memory>
#include <unordered_map>

#include "host/control_file.h"
#include "host/instance.h"
#include "host/instance_file.h"
#include "host/nl_evaluator.h"
#include "host/readers.h"
#include "host/solution_file.h"

struct OvpObject {
  std::string systemName;
};

struct OveObject {
  std::unordered_map<std::string, std::string> options;  // keyed by lower-case name
  std::string controlFile;
  std::string lastError;
  bool skipIO = false;
  std::string phase;  // the phase begun and not yet ended
  std::chrono::steady_clock::time_point phaseStart;
};

struct OveEvaluator {
  const HostInstance* inst = nullptr;
  std::vector<int32_t> nonlinearRows;  // 0-based, ascending
  std::vector<int32_t> rowStart;       // entries of each row, by position in column order
  std::vector<int32_t> rowEntries;
  std::vector<int32_t> entryCol;
  std::vector<double> point;
  int32_t base = 1;
  NlEvaluatorPtr nl;              // the .nl model's functions, when the instance names one
  std::vector<double> gradient;   // one .nl row's derivatives, by .nl variable
};

struct OvmObject {
  std::shared_ptr<HostInstance> inst = std::make_shared<HostInstance>();
  OveObject* environment = nullptr;
  int32_t base = 0;
  int32_t objStyle = 0;
  double pinf = kHostInf;
  double minf = -kHostInf;
  std::string dictName;
  std::string solutionFile;
  std::string lastError;
  std::unique_ptr<OveEvaluator> evaluator;
};

struct OvdObject {
  std::shared_ptr<const HostInstance> inst;
};

namespace {

constexpr int32_t kNAInt = 2100000000;
constexpr std::size_t kAuditLen = 75;
constexpr const char* kHostVersion = "ORVA stand-in host 1.0";

// Every object of the process, so that handles stay valid and reachable until freed.
template <typename T>
struct ObjectTable {
  std::unordered_map<T*, std::unique_ptr<T>> objects;
  T* add(std::unique_ptr<T> object) {
    T* raw = object.get();
    objects.emplace(raw, std::move(object));
    return raw;
  }
  void remove(T*& raw) {
    objects.erase(raw);
    raw = nullptr;
  }
};

ObjectTable<OvpObject>& audits() { static ObjectTable<OvpObject> t; return t; }
ObjectTable<OveObject>& environments() { static ObjectTable<OveObject> t; return t; }
ObjectTable<OvmObject>& models() { static ObjectTable<OvmObject> t; return t; }
ObjectTable<OvdObject>& dictionaries() { static ObjectTable<OvdObject> t; return t; }

// Instances whose dictionary can be loaded by name: the name that ovmNameDict gives.
std::unordered_map<std::string, std::shared_ptr<const HostInstance>>& dictionaryTable() {
  static std::unordered_map<std::string, std::shared_ptr<const HostInstance>> t;
  return t;
}

std::string lowerCase(std::string_view s) {
  std::string out(s);
  for (char& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return out;
}

const std::string* findOption(const OveObject* env, std::string_view name) {
  if (env == nullptr) return nullptr;
  auto it = env->options.find(lowerCase(name));
  return it == env->options.end() ? nullptr : &it->second;
}

// 0-based index of a row or column given in the model's base, or -1 when out of range.
int32_t index0(const OvmObject* m, int32_t index, int32_t count) {
  if (m == nullptr) return -1;
  const int64_t k = static_cast<int64_t>(index) - m->base;
  return k >= 0 && k < count ? static_cast<int32_t>(k) : -1;
}
int32_t row0(const OvmObject* m, int32_t row) { return index0(m, row, m ? m->inst->rowCount : 0); }
int32_t col0(const OvmObject* m, int32_t col) { return index0(m, col, m ? m->inst->colCount : 0); }

double hostBound(const OvmObject* m, double v) {
  if (v == kHostInf) return m->pinf;
  if (v == -kHostInf) return m->minf;
  return v;
}

// The statuses handed back to the host go to NameScrDir + "ovmstat." + NameScrExt, where the
// host's listing step finds them.
void writeStatusFile(const OvmObject* m) {
  const std::string* dir = findOption(m->environment, kOptNameScrDir);
  if (dir == nullptr || dir->empty()) return;
  const std::string* ext = findOption(m->environment, kOptNameScrExt);
  const std::string path = *dir + "ovmstat." + (ext ? *ext : std::string());
  std::FILE* f = std::fopen(path.c_str(), "w");
  if (f == nullptr) {
    std::fprintf(stderr, "%s: cannot write the solve and model status\n", path.c_str());
    return;
  }
  std::fprintf(f, "solveStat %d\nmodelStat %d\n", m->inst->solveStat, m->inst->modelStat);
  std::fclose(f);
}

std::string newInstanceKey() {
  static int serial = 0;
  return "instance:" + std::to_string(++serial);
}

void adoptInstance(OvmObject* m, std::shared_ptr<HostInstance> inst) {
  m->inst = std::move(inst);
  m->dictName = m->inst->sourcePath.empty() ? newInstanceKey() : m->inst->sourcePath;
  dictionaryTable()[m->dictName] = m->inst;
  m->evaluator.reset();
}

}  // namespace

// ---- audit object ---------------------------------------------------------------------------

bool ovpXCreate(ovpHandle& audit, std::string& message) {
  audit = audits().add(std::make_unique<OvpObject>());
  message.clear();
  return true;
}

void ovpSetSystemName(ovpHandle audit, std::string_view name) {
  if (audit != nullptr) audit->systemName = std::string(name);
}

std::string ovpGetAuditLine(ovpHandle audit) {
  std::string line;
  if (audit != nullptr && !audit->systemName.empty()) line = audit->systemName + " on ";
  line += kHostVersion;
  line += " (GLPK ";
  line += glp_version();
  line += ")";
  if (line.size() > kAuditLen) line.resize(kAuditLen);
  return line;
}

void ovpFree(ovpHandle& audit) { audits().remove(audit); }

// ---- environment object ---------------------------------------------------------------------

bool oveXCreate(oveHandle& environment, std::string& message) {
  environment = environments().add(std::make_unique<OveObject>());
  message.clear();
  return true;
}

void oveSkipIOLegacySet(oveHandle environment, bool skip) {
  if (environment != nullptr) environment->skipIO = skip;
}

int oveInitEnvironmentLegacy(oveHandle environment, std::string_view controlFile) {
  if (environment == nullptr) return 1;
  environment->controlFile = std::string(controlFile);
  HostOptions options;
  std::string error;
  if (!readHostControlFile(environment->controlFile, options, error)) {
    environment->lastError = error;
    std::fprintf(stderr, "%s\n", error.c_str());
    return 1;
  }
  environment->options.clear();
  for (auto& [name, value] : options) environment->options[lowerCase(name)] = value;
  environment->lastError.clear();
  return 0;
}

const std::string& oveLastError(oveHandle environment) {
  static const std::string none;
  return environment != nullptr ? environment->lastError : none;
}

void oveTerminateInstall(oveHandle) {}

void hostPhaseBegin(oveHandle environment, std::string_view phase) {
  const std::string* path = findOption(environment, kOptPhaseFile);
  if (path == nullptr || path->empty()) return;
  environment->phase = std::string(phase);
  environment->phaseStart = std::chrono::steady_clock::now();
  if (std::FILE* f = std::fopen(path->c_str(), "a")) {
    std::fprintf(f, "begin %s\n", environment->phase.c_str());
    std::fclose(f);
  }
}

void hostPhaseEnd(oveHandle environment) {
  const std::string* path = findOption(environment, kOptPhaseFile);
  if (path == nullptr || path->empty() || environment->phase.empty()) return;
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() -
                                                       environment->phaseStart).count();
  if (std::FILE* f = std::fopen(path->c_str(), "a")) {
    std::fprintf(f, "end %s %.3f\n", environment->phase.c_str(), seconds);
    std::fclose(f);
  }
  environment->phase.clear();
}

std::string oveGetStrOpt(oveHandle environment, std::string_view name) {
  const std::string* v = findOption(environment, name);
  return v ? *v : std::string();
}

int32_t oveGetIntOpt(oveHandle environment, std::string_view name) {
  const std::string* v = findOption(environment, name);
  if (v == nullptr) return 0;
  int32_t value = 0;
  auto [ptr, ec] = std::from_chars(v->data(), v->data() + v->size(), value);
  return ec == std::errc() && ptr == v->data() + v->size() ? value : 0;
}

void oveFree(oveHandle& environment) { environments().remove(environment); }

// ---- model object ---------------------------------------------------------------------------

bool ovmXCreate(ovmHandle& model, std::string& message) {
  model = models().add(std::make_unique<OvmObject>());
  message.clear();
  return true;
}

int ovmRegisterEnvironment(ovmHandle model, oveHandle environment, std::string& message) {
  if (model == nullptr || environment == nullptr) {
    message = "no model or environment object";
    return 1;
  }
  model->environment = environment;
  message.clear();
  return 0;
}

int ovmLoadDataLegacy(ovmHandle model, std::string& message) {
  auto fail = [&](std::string why) {
    message = std::move(why);
    if (model != nullptr) model->lastError = message;
    return 1;
  };
  if (model == nullptr) return fail("no model object");
  const OveObject* env = model->environment;
  if (env == nullptr) return fail("the model object has no environment");
  auto inst = std::make_shared<HostInstance>();
  std::string error;
  hostPhaseBegin(model->environment, "loading");
  struct PhaseEnd {
    oveHandle env;
    ~PhaseEnd() { hostPhaseEnd(env); }
  } phaseEnd{model->environment};
  // The control file's input name and solution file go with the instance, whatever read it.
  auto adopt = [&] {
    if (const std::string* name = findOption(env, kOptInputName); name && !name->empty())
      inst->inputName = *name;
    const std::string* solution = findOption(env, kOptSolutionFile);
    model->solutionFile = solution ? *solution : std::string();
    adoptInstance(model, std::move(inst));
    message.clear();
    return 0;
  };
  // An instance handed over in binary form: the model's own file is not opened.
  if (const std::string* handed = findOption(env, kOptInstanceFile); handed && !handed->empty()) {
    if (!loadInstanceFile(*handed, *inst, error)) return fail(error);
    return adopt();
  }
  ModelSource source;
  const std::string* file = findOption(env, kOptModelFile);
  if (file == nullptr || file->empty())
    return fail(env->controlFile + ": no " + kOptModelFile + " or " + kOptInstanceFile + " entry");
  source.path = *file;
  const std::string* format = findOption(env, kOptModelFormat);
  if (format != nullptr && !format->empty()) {
    if (!parseModelFormat(*format, source.format))
      return fail(env->controlFile + ": unknown model format \"" + *format + "\"");
  } else if (!formatFromExtension(source.path, source.format)) {
    return fail(source.path + ": the model format cannot be told from the file name");
  }
  if (const std::string* data = findOption(env, kOptDataFile)) source.dataPath = *data;

  if (!readModel(source, *inst, error)) return fail(error);
  const std::string* scale = findOption(env, kOptScaleSource);
  if (scale != nullptr && lowerCase(*scale) == "auto" && !hostAutoScale(*inst, error))
    return fail(error);
  return adopt();
}

void ovmIndexBaseSet(ovmHandle model, int32_t base) {
  if (model != nullptr && (base == 0 || base == 1)) model->base = base;
}
void ovmObjStyleSet(ovmHandle model, int32_t style) {
  if (model != nullptr) model->objStyle = style;
}

int32_t ovmM(ovmHandle model) { return model ? model->inst->rowCount : 0; }
int32_t ovmN(ovmHandle model) { return model ? model->inst->colCount : 0; }
int32_t ovmNZ(ovmHandle model) { return model ? hostNzCount(*model->inst) : 0; }
int32_t ovmNLN(ovmHandle model) { return model ? hostNonlinearCount(*model->inst) : 0; }
int32_t ovmObjVar(ovmHandle model) {
  if (model == nullptr || model->inst->objVar == 0) return kNAInt;
  return model->inst->objVar - 1 + model->base;
}
int32_t ovmObjRow(ovmHandle model) {
  if (model == nullptr || model->inst->objRow == 0) return kNAInt;
  return model->inst->objRow - 1 + model->base;
}
int32_t ovmValNAInt(ovmHandle) { return kNAInt; }
int32_t ovmSense(ovmHandle model) { return model && !model->inst->minimizing ? 1 : 0; }
int32_t ovmScaleOpt(ovmHandle model) { return model && model->inst->hasScale ? 1 : 0; }
void ovmPinfSet(ovmHandle model, double value) {
  if (model != nullptr) model->pinf = value;
}
void ovmMinfSet(ovmHandle model, double value) {
  if (model != nullptr) model->minf = value;
}
std::string ovmNameInput(ovmHandle model) { return model ? model->inst->inputName : ""; }
std::string ovmNameDict(ovmHandle model) { return model ? model->dictName : ""; }

int32_t ovmGetEquTypeOne(ovmHandle model, int32_t row) {
  const int32_t i = row0(model, row);
  return i < 0 ? kRowN : model->inst->rowType[i];
}
double ovmGetRhsOne(ovmHandle model, int32_t row) {
  const int32_t i = row0(model, row);
  return i < 0 ? 0.0 : hostBound(model, model->inst->rowRhs[i]);
}
double ovmGetEquScaleOne(ovmHandle model, int32_t row) {
  const int32_t i = row0(model, row);
  return i < 0 || model->inst->rowScale.empty() ? 1.0 : model->inst->rowScale[i];
}
double ovmGetEquLOne(ovmHandle model, int32_t row) {
  const int32_t i = row0(model, row);
  return i < 0 ? 0.0 : model->inst->rowLevel[i];
}
double ovmGetEquMOne(ovmHandle model, int32_t row) {
  const int32_t i = row0(model, row);
  return i < 0 ? 0.0 : model->inst->rowMarginal[i];
}
int32_t ovmGetEquStatOne(ovmHandle model, int32_t row) {
  const int32_t i = row0(model, row);
  return i < 0 ? 0 : model->inst->rowStat[i];
}
int32_t ovmGetEquCStatOne(ovmHandle model, int32_t row) {
  const int32_t i = row0(model, row);
  return i < 0 ? 0 : model->inst->rowCStat[i];
}

double ovmGetVarLowerOne(ovmHandle model, int32_t col) {
  const int32_t j = col0(model, col);
  return j < 0 ? 0.0 : hostBound(model, model->inst->colLower[j]);
}
double ovmGetVarUpperOne(ovmHandle model, int32_t col) {
  const int32_t j = col0(model, col);
  return j < 0 ? 0.0 : hostBound(model, model->inst->colUpper[j]);
}
int32_t ovmGetVarTypeOne(ovmHandle model, int32_t col) {
  const int32_t j = col0(model, col);
  return j < 0 ? kVarContinuous : model->inst->colType[j];
}
double ovmGetVarScaleOne(ovmHandle model, int32_t col) {
  const int32_t j = col0(model, col);
  return j < 0 || model->inst->colScale.empty() ? 1.0 : model->inst->colScale[j];
}
double ovmGetVarLOne(ovmHandle model, int32_t col) {
  const int32_t j = col0(model, col);
  return j < 0 ? 0.0 : model->inst->colLevel[j];
}
double ovmGetVarMOne(ovmHandle model, int32_t col) {
  const int32_t j = col0(model, col);
  return j < 0 ? 0.0 : model->inst->colMarginal[j];
}
int32_t ovmGetVarStatOne(ovmHandle model, int32_t col) {
  const int32_t j = col0(model, col);
  return j < 0 ? 0 : model->inst->colStat[j];
}
int32_t ovmGetVarCStatOne(ovmHandle model, int32_t col) {
  const int32_t j = col0(model, col);
  return j < 0 ? 0 : model->inst->colCStat[j];
}

int ovmGetColJacInfoOne(ovmHandle model, int32_t col, int32_t& cursor, double& value,
                        int32_t& row, int32_t& nonlinear) {
  value = 0.0;
  nonlinear = 0;
  row = model ? model->base - 1 : -1;
  const int32_t j = col0(model, col);
  if (j < 0) {
    cursor = 0;
    return 1;
  }
  const HostInstance& in = *model->inst;
  const int32_t begin = in.colStart[j];
  const int32_t length = in.colStart[j + 1] - begin;
  if (cursor < 0 || cursor >= length) {  // an empty column, or a cursor that has run out
    cursor = 0;
    return 0;
  }
  const int32_t k = begin + cursor;
  value = in.entryValue[k];
  row = in.entryRow[k] + model->base;
  nonlinear = hostEntryNonlinear(in, static_cast<std::size_t>(k)) ? 1 : 0;
  cursor = cursor + 1 < length ? cursor + 1 : 0;
  return 0;
}

int ovmLoadSolutionLegacy(ovmHandle model) {
  if (model == nullptr) return 1;
  if (model->solutionFile.empty()) {
    if (model->inst->hasSolution) return 0;
    model->lastError = "no solution was handed over";
    return 1;
  }
  HostSolution solution;
  std::string error;
  if (!readSolutionFile(model->solutionFile, *model->inst, solution, error)) {
    model->lastError = error;
    std::fprintf(stderr, "%s\n", error.c_str());
    return 1;
  }
  applySolution(*model->inst, solution);
  return 0;
}

int32_t ovmModelStat(ovmHandle model) { return model ? model->inst->modelStat : kStatErrorUnknown; }
int32_t ovmSolveStat(ovmHandle model) { return model ? model->inst->solveStat : 0; }
void ovmSolveStatSet(ovmHandle model, int32_t status) {
  if (model == nullptr) return;
  model->inst->solveStat = status;
  writeStatusFile(model);
}
void ovmModelStatSet(ovmHandle model, int32_t status) {
  if (model == nullptr) return;
  model->inst->modelStat = status;
  writeStatusFile(model);
}
void ovmUnloadSolutionLegacy(ovmHandle model) {
  if (model != nullptr) writeStatusFile(model);
}

const HostInstance& ovmInstance(ovmHandle model) { return *model->inst; }

const std::string& ovmLastError(ovmHandle model) {
  static const std::string none;
  return model != nullptr ? model->lastError : none;
}

void ovmFree(ovmHandle& model) { models().remove(model); }

ovmHandle ovmCreateFromInstance(HostInstance instance) {
  hostCompleteInstance(instance);
  std::string error;
  if (!hostCheckInstance(instance, error)) {
    std::fprintf(stderr, "%s\n", error.c_str());
    return nullptr;
  }
  OvmObject* model = models().add(std::make_unique<OvmObject>());
  model->base = 1;
  adoptInstance(model, std::make_shared<HostInstance>(std::move(instance)));
  return model;
}

// ---- Jacobian at a point --------------------------------------------------------------------

int oveInitJacLegacy(oveHandle, oveEvaluator& evaluator, ovmHandle model) {
  if (model == nullptr) return 1;
  const HostInstance& in = *model->inst;
  if (!model->evaluator) model->evaluator = std::make_unique<OveEvaluator>();
  OveEvaluator& ev = *model->evaluator;
  evaluator = &ev;
  ev.base = model->base;
  if (ev.inst == &in) return 0;  // built already for this instance
  if (!in.nlFile.empty()) {
    std::string error;
    ev.nl = nlOpen(in.nlFile, error);
    if (!ev.nl) {
      model->lastError = error;
      std::fprintf(stderr, "%s\n", error.c_str());
      return 1;
    }
  }
  ev.inst = &in;
  const int32_t nz = hostNzCount(in);
  ev.rowStart.assign(static_cast<std::size_t>(in.rowCount) + 1, 0);
  ev.entryCol.assign(static_cast<std::size_t>(nz), 0);
  std::vector<char> nonlinearRow(static_cast<std::size_t>(in.rowCount), 0);
  for (int32_t j = 0; j < in.colCount; ++j)
    for (int32_t k = in.colStart[j]; k < in.colStart[j + 1]; ++k) {
      ev.entryCol[k] = j;
      ++ev.rowStart[in.entryRow[k] + 1];
      if (hostEntryNonlinear(in, static_cast<std::size_t>(k))) nonlinearRow[in.entryRow[k]] = 1;
    }
  for (int32_t i = 0; i < in.rowCount; ++i) ev.rowStart[i + 1] += ev.rowStart[i];
  ev.rowEntries.assign(static_cast<std::size_t>(nz), 0);
  std::vector<int32_t> fill(ev.rowStart.begin(), ev.rowStart.end() - 1);
  for (int32_t k = 0; k < nz; ++k) ev.rowEntries[fill[in.entryRow[k]]++] = k;
  ev.nonlinearRows.clear();
  for (int32_t i = 0; i < in.rowCount; ++i)
    if (nonlinearRow[i]) ev.nonlinearRows.push_back(i);
  ev.point.assign(static_cast<std::size_t>(in.colCount), 0.0);
  return 0;
}

int oveEvalNewPointLegacy(oveHandle, oveEvaluator evaluator, const double* point) {
  if (evaluator == nullptr || evaluator->inst == nullptr || point == nullptr) return 1;
  std::copy(point, point + evaluator->inst->colCount, evaluator->point.begin());
  return 0;
}

int32_t oveNextNLLegacy(oveHandle, oveEvaluator evaluator, int32_t row) {
  if (evaluator == nullptr || evaluator->inst == nullptr) return -1;
  const std::vector<int32_t>& rows = evaluator->nonlinearRows;
  const int32_t base = evaluator->base;
  // `row` past the last row begins the walk; otherwise the next row after it.
  const int32_t last0 = row - base >= evaluator->inst->rowCount ? -1 : row - base;
  auto it = std::upper_bound(rows.begin(), rows.end(), last0);
  return it == rows.end() ? -1 : *it + base;
}

int oveEvalJacLegacy(oveHandle, oveEvaluator evaluator, int32_t row, const double* point,
                     double& value, double* values, int32_t& errors, int32_t& extra) {
  extra = 0;
  value = 0.0;
  if (evaluator == nullptr || evaluator->inst == nullptr || values == nullptr ||
      row - evaluator->base < 0 || row - evaluator->base >= evaluator->inst->rowCount) {
    errors = 1;
    return 1;
  }
  errors = 0;
  const HostInstance& in = *evaluator->inst;
  const double* x = point != nullptr ? point : evaluator->point.data();
  const int32_t i = row - evaluator->base;
  if (evaluator->nl) {
    // The .nl item's derivatives; the objective variable keeps its -1.
    std::vector<double>& g = evaluator->gradient;
    if (!nlGradient(*evaluator->nl, in.rowNlItem[i], x, value, g)) {
      errors = 1;
      return 1;
    }
    const auto vars = static_cast<int32_t>(g.size());
    for (int32_t p = evaluator->rowStart[i]; p < evaluator->rowStart[i + 1]; ++p) {
      const int32_t k = evaluator->rowEntries[p];
      const int32_t j = evaluator->entryCol[k];
      if (j < vars) values[k] = g[j];
      else value += in.entryValue[k] * x[j];
    }
    return 0;
  }
  for (int32_t p = evaluator->rowStart[i]; p < evaluator->rowStart[i + 1]; ++p) {
    const int32_t k = evaluator->rowEntries[p];
    values[k] = in.entryValue[k];
    value += in.entryValue[k] * x[evaluator->entryCol[k]];
  }
  return 0;
}

// ---- dictionary -----------------------------------------------------------------------------

bool ovdXCreate(ovdHandle& dictionary, std::string& message) {
  dictionary = dictionaries().add(std::make_unique<OvdObject>());
  message.clear();
  return true;
}

int ovdLoadEx(ovdHandle dictionary, std::string_view fileName, std::string& message) {
  if (dictionary == nullptr) {
    message = "no dictionary object";
    return 1;
  }
  const std::string name(fileName);
  auto& table = dictionaryTable();
  if (auto it = table.find(name); it != table.end()) {
    dictionary->inst = it->second;
    message.clear();
    return 0;
  }
  ModelSource source;
  source.path = name;
  if (!formatFromExtension(name, source.format)) {
    message = name + ": no dictionary of that name";
    return 1;
  }
  auto inst = std::make_shared<HostInstance>();
  if (!readModel(source, *inst, message)) return 1;
  dictionary->inst = inst;
  message.clear();
  return 0;
}

int32_t ovdNLSyms(ovdHandle dictionary) {
  return dictionary && dictionary->inst ? static_cast<int32_t>(dictionary->inst->symbols.size())
                                        : 0;
}

int32_t ovdLrgDim(ovdHandle dictionary) {
  int32_t largest = 0;
  if (dictionary && dictionary->inst)
    for (const HostSymbol& s : dictionary->inst->symbols) largest = std::max(largest, s.dim);
  return largest;
}

namespace {
int itemUels(int32_t index, int32_t count, const std::vector<int32_t>& symbolOf,
             const std::vector<int32_t>& start, const std::vector<int32_t>& uelList,
             int32_t& symbol, int32_t* uels, int32_t& dim) {
  symbol = 0;
  dim = 0;
  if (index < 0 || index >= count) return 1;
  symbol = symbolOf[index];
  dim = start[index + 1] - start[index];
  std::copy(uelList.begin() + start[index], uelList.begin() + start[index + 1], uels);
  return 0;
}
}  // namespace

int ovdRowUels(ovdHandle dictionary, int32_t row0, int32_t& symbol, int32_t* uels,
               int32_t& dim) {
  if (!dictionary || !dictionary->inst) {
    symbol = dim = 0;
    return 1;
  }
  const HostInstance& in = *dictionary->inst;
  return itemUels(row0, in.rowCount, in.rowSymbol, in.rowUelStart, in.rowUels, symbol, uels,
                  dim);
}

int ovdColUels(ovdHandle dictionary, int32_t col0, int32_t& symbol, int32_t* uels,
               int32_t& dim) {
  if (!dictionary || !dictionary->inst) {
    symbol = dim = 0;
    return 1;
  }
  const HostInstance& in = *dictionary->inst;
  return itemUels(col0, in.colCount, in.colSymbol, in.colUelStart, in.colUels, symbol, uels,
                  dim);
}

std::string ovdSymName(ovdHandle dictionary, int32_t symbol) {
  if (!dictionary || !dictionary->inst || symbol < 1 ||
      symbol > static_cast<int32_t>(dictionary->inst->symbols.size()))
    return "";
  return dictionary->inst->symbols[symbol - 1].name;
}

int ovdUelLabel(ovdHandle dictionary, int32_t uel, char& quote, std::string& text) {
  quote = ' ';
  text.clear();
  if (!dictionary || !dictionary->inst || uel < 1 ||
      uel > static_cast<int32_t>(dictionary->inst->labels.size()))
    return 1;
  const HostLabel& label = dictionary->inst->labels[uel - 1];
  quote = label.quote;
  text = label.text;
  return 0;
}

ovdHandle ovdCreateFromInstance(const HostInstance& instance) {
  auto copy = std::make_shared<HostInstance>(instance);
  hostCompleteInstance(*copy);
  std::string error;
  if (!hostCheckInstance(*copy, error)) {
    std::fprintf(stderr, "%s\n", error.c_str());
    return nullptr;
  }
  OvdObject* dictionary = dictionaries().add(std::make_unique<OvdObject>());
  dictionary->inst = std::move(copy);
  return dictionary;
}

void ovdFree(ovdHandle& dictionary) { dictionaries().remove(dictionary); }
