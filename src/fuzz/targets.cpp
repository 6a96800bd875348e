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
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <unordered_set>

#include "base/run_context.h"
#include "host/control_file.h"
#include "host/instance_file.h"
#include "host/names.h"
#include "host/nl_evaluator.h"
#include "host/readers.h"
#include "host/solution_file.h"
#include "orva/options.h"
#include "orva/requests.h"
#include "orva/solve.h"
#include "request/request_line.h"
#include "request/section_reader.h"
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

// An item as the dictionary tells it apart: its symbol's text and its labels' texts.
std::string itemKey(const HostInstance& inst, int32_t symbol, const std::vector<int32_t>& uels,
                    int32_t from, int32_t to) {
  std::vector<HostLabel> labels;
  for (int32_t k = from; k < to; ++k) labels.push_back(inst.labels[uels[k] - 1]);
  return hostItemKey(hostMakeName(inst.symbols[symbol - 1].name, std::move(labels)));
}

// What every reader promises of an instance it takes.
void checkInstance(const HostInstance& inst) {
  std::string error;
  require(hostCheckInstance(inst, error));
  for (const HostSymbol& s : inst.symbols) require(hostNameFault(s.name).empty());
  for (const HostLabel& l : inst.labels) require(hostNameFault(l.text).empty());
  // Neither two items alike in the dictionary nor two names alike in a report (the names kept
  // with a leading line break, which no key holds).
  std::unordered_set<std::string> rows, cols;
  for (int32_t i = 0; i < inst.rowCount; ++i) {
    require(rows.insert(itemKey(inst, inst.rowSymbol[i], inst.rowUels, inst.rowUelStart[i],
                                inst.rowUelStart[i + 1])).second);
    require(rows.insert("\n" + hostRowName(inst, i)).second);
  }
  for (int32_t j = 0; j < inst.colCount; ++j) {
    require(cols.insert(itemKey(inst, inst.colSymbol[j], inst.colUels, inst.colUelStart[j],
                                inst.colUelStart[j + 1])).second);
    require(cols.insert("\n" + hostColName(inst, j)).second);
  }
  for (int32_t j = 0; j < inst.colCount; ++j)
    require(inst.colLower[j] > -kHostInfiniteBound || inst.colLower[j] == -kHostInf);
}

// A refusal is one line.
void checkRefusal(const std::string& error) {
  require(!error.empty() && error.find('\n') == std::string::npos);
}

void readAs(ModelFormat format, std::string_view text) {
  HostInstance inst;
  std::string error;
  ModelSource source{asFile(input, text), format, {}, {}};
  if (readModel(source, inst, error)) checkInstance(inst);
  else checkRefusal(error);
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

// An AMPL .nl model with the files beside it, in one input: the .nl file, then, each after a
// line "%%row", "%%col" or "%%sol", the .row, .col and .sol files (each optional). The line
// break before a mark belongs to the mark, so that a binary .nl file ends where its bytes do.
// The files are written into a folder of this process. No child process evaluates the model here
// (nlAllowChild), so nonlinear entries read 0 and a solution of a nonlinear model is refused.
struct NlFolder {
  std::filesystem::path path = std::filesystem::temp_directory_path() /
                               ("modrake-fuzz-" + std::to_string(getpid()));
  NlFolder() {
    nlAllowChild(false);
    std::filesystem::create_directories(path);
  }
  ~NlFolder() {
    std::error_code ec;
    std::filesystem::remove_all(path, ec);
  }
};

void fuzzNl(std::string_view t) {
  static const NlFolder folder;
  const std::filesystem::path& dir = folder.path;
  std::string_view parts[4] = {t, {}, {}, {}};  // .nl, .row, .col, .sol
  const char* marks[3] = {"\n%%row\n", "\n%%col\n", "\n%%sol\n"};
  for (int k = 2; k >= 0; --k) {
    const std::size_t at = parts[0].find(marks[k]);
    if (at == std::string_view::npos) continue;
    parts[k + 1] = parts[0].substr(at + 7);
    parts[0] = parts[0].substr(0, at);
  }
  const char* extensions[4] = {".nl", ".row", ".col", ".sol"};
  for (int k = 0; k < 4; ++k) {
    const std::filesystem::path path = dir / (std::string("m") + extensions[k]);
    std::filesystem::remove(path);
    if (k == 0 || parts[k].data() != nullptr)
      std::ofstream(path, std::ios::binary)
          .write(parts[k].data(), static_cast<std::streamsize>(parts[k].size()));
  }
  HostInstance inst;
  std::string error;
  if (!readModel(ModelSource{(dir / "m.nl").string(), ModelFormat::Nl, {}, {}}, inst, error)) {
    checkRefusal(error);
    return;
  }
  checkInstance(inst);
  if (parts[3].data() == nullptr) return;
  HostSolution solution;
  if (!readNlSolutionFile((dir / "m.sol").string(), inst, solution, error)) {
    checkRefusal(error);
    return;
  }
  applySolution(inst, solution);
  require(hostCheckInstance(inst, error));
}

// The instance file by which orva hands a model to modrake: taken as it is, and once more with
// its checksum let pass, so that the fields behind it are tried too.
void fuzzInstanceFile(std::string_view t) {
  for (auto load : {loadInstanceFile, loadInstanceFileWithoutChecksum}) {
    HostInstance inst;
    std::string error;
    if (!load(asFile(input, t), inst, error)) {
      checkRefusal(error);
      continue;
    }
    require(hostCheckInstance(inst, error));
    for (int32_t i = 0; i < inst.rowCount; ++i)
      require(hostNameFault(hostRowName(inst, i)).empty());
    for (int32_t j = 0; j < inst.colCount; ++j)
      require(hostNameFault(hostColName(inst, j)).empty());
  }
}

// The lines of a procedure's section: the first byte chooses the procedure, whether the lines
// stand for the analysis scratch file, and the capacity of the lists (1 to 4 requests a side,
// so that lists overfill).
void fuzzSection(std::string_view t) {
  if (t.empty()) return;
  const auto choice = static_cast<unsigned char>(t[0]);
  const int32_t capacity = 1 + (choice >> 5 & 3);
  std::vector<char> text[2];
  std::vector<int32_t> ints[2];
  auto side = [&](int k) {
    const auto n = static_cast<std::size_t>(capacity);
    text[k].assign(n * (MAX_LINE + NAME_LEN + LABELS_LEN), 'x');
    ints[k].assign(n * (1 + SPEC_SLOTS), 7);
    char* c = text[k].data();
    int32_t* i = ints[k].data();
    return SelectionSide{capacity,
                         {c, MAX_LINE, capacity},
                         {c + n * MAX_LINE, NAME_LEN, capacity},
                         {c + n * (MAX_LINE + NAME_LEN), LABELS_LEN, capacity},
                         {i, capacity},
                         {i + n, capacity, SPEC_SLOTS}};
  };
  RequestLists lists{side(0), side(1)};
  RunContext run;
  std::vector<std::string> status, log;
  Channel statusChannel{nullptr, &status}, logChannel{nullptr, &log};
  std::FILE* file = std::fopen(asFile(input, t.substr(1)).c_str(), "r");
  SectionContext context;
  context.run = &run;
  context.procIndex = 1 + choice % PROCEDURE_COUNT;
  context.defaultMode = context.procIndex == static_cast<int32_t>(Proc::MatchIt) ? DEFAULT_COUNT
                                                                                 : DEFAULT_SHOW;
  context.analysisProblemsPending = choice >> 4 & 1;
  (context.analysisProblemsPending == 1 ? context.analysisChannel : context.requestChannel) = file;
  context.statusChannel = &statusChannel;
  context.logChannel = &logChannel;
  RequestFlags flags;
  std::string keyword;
  readRequestSection(context, lists, flags, keyword);
  std::fclose(file);
  require(lists.varCount >= 0 && lists.varCount <= capacity);
  require(lists.equCount >= 0 && lists.equCount <= capacity);
  for (const SelectionSide* s : {&lists.col, &lists.row})
    for (int32_t k = 1; k <= capacity; ++k) require(s->dim[k] >= 0 && s->dim[k] <= MAX_SYMBOL_DIM);
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
    {"nl", fuzzNl},
    {"instance_file", fuzzInstanceFile},
    {"section", fuzzSection},
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
