// libFuzzer targets, one per reader, in one program; MODRAKE_FUZZ_TARGET names the target of a
// run, and tests/fuzz/corpus/<target>/ holds its seeds. A target hands the input to its reader
// and, when the reader takes it, checks what the reader promises: a sound instance whose names
// hold no control character and never name two items alike. A broken promise traps, and the
// input becomes a crash for libFuzzer like any sanitizer report.
//
// A new reader comes with one line in kTargets and a folder of seeds.
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <unordered_set>

#include "base/run_context.h"
#include "host/control_file.h"
#include "host/names.h"
#include "host/readers.h"
#include "host/solution_file.h"
#include "orva/options.h"
#include "orva/requests.h"
#include "orva/solve.h"
#include "request/request_line.h"
#include "run/control_records.h"

namespace {

// The input as a file: one in-memory file per process, rewritten for every input.
struct InputFile {
  int fd = -1;
  std::string path;
};

std::string asFile(InputFile& file, std::string_view text) {
  if (file.fd < 0) {
    file.fd = memfd_create("modrake-fuzz", 0);
    if (file.fd < 0) std::abort();
    file.path = "/proc/self/fd/" + std::to_string(file.fd);
  }
  if (ftruncate(file.fd, 0) != 0 ||
      pwrite(file.fd, text.data(), text.size(), 0) != static_cast<ssize_t>(text.size()))
    std::abort();
  return file.path;
}

InputFile input, second;

void require(bool promise) {
  if (!promise) __builtin_trap();
}

// What every reader promises of an instance it takes.
void checkInstance(const HostInstance& inst) {
  std::string error;
  require(hostCheckInstance(inst, error));
  for (const HostSymbol& s : inst.symbols) require(hostNameFault(s.name).empty());
  for (const HostLabel& l : inst.labels) require(hostNameFault(l.text).empty());
  std::unordered_set<std::string> rows, cols;
  for (int32_t i = 0; i < inst.rowCount; ++i) require(rows.insert(hostRowName(inst, i)).second);
  for (int32_t j = 0; j < inst.colCount; ++j) require(cols.insert(hostColName(inst, j)).second);
  for (int32_t j = 0; j < inst.colCount; ++j)
    require(inst.colLower[j] > -kHostInfiniteBound || inst.colLower[j] == -kHostInf);
}

void readAs(ModelFormat format, std::string_view text) {
  HostInstance inst;
  std::string error;
  ModelSource source{asFile(input, text), format, {}, {}};
  if (readModel(source, inst, error)) checkInstance(inst);
  else require(!error.empty() && error.find('\n') == std::string::npos);
}

void fuzzMps(std::string_view t) { readAs(ModelFormat::Mps, t); }
void fuzzFixedMps(std::string_view t) { readAs(ModelFormat::FixedMps, t); }
void fuzzLp(std::string_view t) { readAs(ModelFormat::Lp, t); }
void fuzzMathProg(std::string_view t) { readAs(ModelFormat::MathProg, t); }
void fuzzJson(std::string_view t) { readAs(ModelFormat::Json, t); }

// A data file for a model that declares a set, an indexed parameter and a variable over both.
void fuzzMathProgData(std::string_view t) {
  static const std::string model = asFile(second,
      "set I; param p{I} >= 0, default 1; param q symbolic, default 'a';\n"
      "var x{I} >= 0; minimize cost: sum{i in I} p[i] * x[i];\n"
      "s.t. need{i in I}: x[i] >= p[i];\nend;\n");
  HostInstance inst;
  std::string error;
  ModelSource source{model, ModelFormat::MathProg, asFile(input, t), {}};
  if (readModel(source, inst, error)) checkInstance(inst);
}

// An LP model read, solved and scaled as orva does it.
void fuzzSolve(std::string_view t) {
  HostInstance inst;
  std::string error;
  ModelSource source{asFile(input, t), ModelFormat::Lp, {}, {}};
  if (!readModel(source, inst, error) || !orvaUnsolvableReason(inst).empty()) return;
  HostSolution solution;
  orvaSolveInstance(inst, OrvaSolveSettings{0.5}, solution);
  hostAutoScale(inst, error);
}

void fuzzOptions(std::string_view t) {
  OrvaOptions options;
  std::string error;
  orvaParseOptionText(std::string(t), "fuzz.opt", options, error);
}

void fuzzRequests(std::string_view t) {
  for (const OrvaStrayLine& stray : orvaScanRequests(std::string(t)).strayLines)
    orvaStrayLineWarning("fuzz.mrk", stray);
  std::FILE* file = std::fopen(asFile(input, t).c_str(), "r");
  std::string line;
  int32_t isComment = 0;
  RunContext context;  // one per input: its comment count grows
  while (readRequestFileLine(file, line, MAX_LINE) == LineRead::Ok)
    normalizeRequestLine(line, isComment, MAX_LINE, &context);
  std::fclose(file);
}

void fuzzControlFile(std::string_view t) {
  HostOptions options;
  std::string error;
  readHostControlFile(asFile(input, t), options, error);
}

void fuzzScratchControl(std::string_view t) {
  RunContext state;
  std::FILE* file = std::fopen(asFile(input, t).c_str(), "r");
  std::string error;
  readControlRecords(file, "fuzz.scr", state, error);
  std::fclose(file);
}

// A solution file for a model of two rows and two columns.
void fuzzSolution(std::string_view t) {
  static HostInstance inst = [] {
    HostInstance made;
    std::string error;
    ModelSource source{asFile(second,
                              "{\"rows\": [{\"name\": \"r(a)\", \"type\": \"G\", \"rhs\": 1},"
                              " {\"name\": \"s\", \"type\": \"L\", \"rhs\": 4}],"
                              " \"cols\": [{\"name\": \"x(a)\", \"entries\": [[1, 1], [2, 1]]},"
                              " {\"name\": \"y\", \"lower\": \"-inf\", \"entries\": [[2, 2]]}]}"),
                       ModelFormat::Json, {}, {}};
    if (!readModel(source, made, error)) std::abort();
    return made;
  }();
  HostSolution solution;
  std::string error;
  readSolutionFile(asFile(input, t), inst, solution, error);
}

struct FuzzTarget {
  const char* name;
  void (*run)(std::string_view);
};

constexpr FuzzTarget kTargets[] = {
    {"mps", fuzzMps},
    {"fixed_mps", fuzzFixedMps},
    {"lp", fuzzLp},
    {"mathprog", fuzzMathProg},
    {"mathprog_data", fuzzMathProgData},
    {"json", fuzzJson},
    {"solve", fuzzSolve},
    {"options", fuzzOptions},
    {"requests", fuzzRequests},
    {"control_file", fuzzControlFile},
    {"scratch_control", fuzzScratchControl},
    {"solution", fuzzSolution},
};

const FuzzTarget* chosen = nullptr;

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  const char* name = std::getenv("MODRAKE_FUZZ_TARGET");
  for (const FuzzTarget& t : kTargets)
    if (name != nullptr && std::strcmp(name, t.name) == 0) chosen = &t;
  if (chosen == nullptr) {
    std::fprintf(stderr, "MODRAKE_FUZZ_TARGET must name one of:");
    for (const FuzzTarget& t : kTargets) std::fprintf(stderr, " %s", t.name);
    std::fprintf(stderr, "\n");
    std::exit(2);
  }
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  chosen->run(std::string_view(reinterpret_cast<const char*>(data), size));
  return 0;
}
