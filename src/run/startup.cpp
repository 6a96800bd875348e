#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <string>

#include "base/text.h"
#include "host/control_file.h"
#include "host/host.h"
#include "model/matrix_store.h"
#include "model/work_array.h"
#include "run/control_records.h"
#include "run/dispatch.h"
#include "run/request_loop.h"
#include "run/run_main.h"
#include "run/run_state.h"

namespace {

constexpr const char* kSystemName = "MODRAKE-B 1.3";
constexpr size_t kAuditLen = 75;
constexpr size_t kArgumentLen = 256;
constexpr size_t kHostTextLen = 255;
constexpr size_t kStatusBuffer = size_t{1} << 18;

// The banner, each line 37 characters with "#" in the fourth and the last column.
constexpr std::array<const char*, 12> kBanner = {
    "   ##################################",
    "   #                                #",
    "   #           MODRAKE              #",
    "   #           Version 1.3          #",
    "   #  Diagnosis of optimization     #",
    "   #  models: infeasible rows,      #",
    "   #  doomed or unbounded columns,  #",
    "   #  the shape of the matrix.      #",
    "   #  Written for modellers.        #",
    "   #  Licence GPL-3.0-or-later      #",
    "   #                                #",
    "   ##################################",
};

constexpr bool bannerInShape() {
  for (const char* line : kBanner) {
    size_t n = 0;
    while (line[n] != '\0') ++n;
    if (n != 37 || line[3] != '#' || line[36] != '#') return false;
  }
  return true;
}
static_assert(bannerInShape(), "banner lines are 37 characters, # in columns 4 and 37");

std::string trimmed(std::string_view s) { return std::string(trimBlanks(s)); }

void takeAuditLine() {
  runState.auditLine = ovpGetAuditLine(runState.auditObject).substr(0, kAuditLen);
  runState.auditLine.resize(kAuditLen, ' ');
}

// A stop before the channels are fixed: the words go to standard output.
[[noreturn]] void stopEarly(std::string_view words, std::string_view detail) {
  Channel out{stdout, nullptr};
  writeFree(out, {words, detail});
  stopRun(runState, 0);
}

// The same words on the log and, with the template applied again, on the status channel.
void writeBoth(std::string_view tmpl, std::initializer_list<FmtValue> values = {}) {
  writeLine(runState.logChannel, tmpl, values);
  writeLine(runState.statusChannel, tmpl, values);
}

void writeBothFree(std::string_view text) {
  writeFree(runState.logChannel, {text});
  writeFree(runState.statusChannel, {text});
}

// Opens a file for reading and writing, created when missing, its content kept.
std::FILE* openReadWrite(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDWR | O_CREAT, 0644);
  if (fd < 0) return nullptr;
  std::FILE* file = ::fdopen(fd, "r+");
  if (file == nullptr) ::close(fd);
  return file;
}

void openingLines(Channel& channel) {
  writeFree(channel);
  writeLine(channel, "/,1X,A,/", {runState.auditLine});
  writeFree(channel);
  writeFree(channel);
  writeFree(channel, {"#### Executing MODRAKE 1.3 Body"});
  writeFree(channel);
  writeFree(channel);
}

// A failing dictionary call: two lines on the log, and on the status file for the host.
[[noreturn]] void dictionaryFailure(std::string_view words) {
  writeFree(runState.logChannel, {words});
  writeFree(runState.logChannel, {runState.hostMessage});
  writeLine(runState.statusChannel, "A", {"=C" + std::string(words)});
  writeLine(runState.statusChannel, "A,A", {"=C", runState.hostMessage});
  stopRun(runState, 0);
}

// Step 8: file names, the control records, the analysis scratch file.
void readRunParameters() {
  runState.analysisProblemsPending = 0;
  runState.analysisProblemCount = 0;
  const oveHandle env = runState.environment;
  runState.requestPath = joinPath({oveGetStrOpt(env, kOptNameWrkDir),
                                   ovmNameInput(runState.model), ".mrk"});
  runState.controlPath = joinPath({oveGetStrOpt(env, kOptNameScrDir), "modrake.",
                                   oveGetStrOpt(env, kOptNameScrExt)});
  runState.analysisPath = joinPath({oveGetStrOpt(env, kOptNameScrDir), "mrkanal.",
                                    oveGetStrOpt(env, kOptNameScrExt)});

  runState.controlChannel = std::fopen(runState.controlPath.c_str(), "r");
  if (runState.controlChannel == nullptr) {
    writeBothFree("*** Could not open control file " + runState.controlPath);
    stopRun(runState, 0);
  }
  std::string error;
  if (!readControlRecords(runState.controlChannel, runState.controlPath, runState, error)) {
    writeBothFree("*** Could not read control file " + error);
    stopRun(runState, 0);
  }
  runState.analysisChannel = openReadWrite(runState.analysisPath);
  if (runState.analysisChannel == nullptr) {
    writeBothFree("*** Could not open analysis file " + runState.analysisPath);
    stopRun(runState, 0);
  }
}

}  // namespace

void runMain(int argc, char** argv) {
  const std::string argument = argc > 1 ? std::string(argv[1]) : std::string();

  // 1. The audit object.
  if (!ovpXCreate(runState.auditObject, runState.hostMessage)) {
    stopEarly("*** Could not create OVP object: ", runState.hostMessage);
  }
  ovpSetSystemName(runState.auditObject, kSystemName);
  takeAuditLine();

  // 2. AUDIT, in any case, writes the audit line and nothing else.
  std::string word = argument.substr(0, kHostTextLen);
  upperCase(word, static_cast<int32_t>(word.size()));
  while (!word.empty() && word.back() == ' ') word.pop_back();
  if (word == "AUDIT") {
    Channel out{stdout, nullptr};
    writeLine(out, "A", {runState.auditLine});
    stopRun(runState, 0);
  }

  // 3.
  runState.objectiveScale = 1.0;
  runState.pageWidth = 0;
  runState.pageWidthRequest = 0;

  // 4. The environment, from the host's control file.
  if (!oveXCreate(runState.environment, runState.hostMessage)) {
    stopEarly("*** Could not create environment object: ", runState.hostMessage);
  }
  const std::string controlFile = argument.substr(0, kArgumentLen);
  oveSkipIOLegacySet(runState.environment, true);
  if (oveInitEnvironmentLegacy(runState.environment, controlFile) != 0) {
    stopEarly("*** Could not initialize environment: ", controlFile);
  }

  // 5. The model object.
  if (!ovmXCreate(runState.model, runState.hostMessage)) {
    stopEarly("*** Could not create model object: ", runState.hostMessage);
  }
  if (ovmRegisterEnvironment(runState.model, runState.environment, runState.hostMessage) != 0) {
    stopEarly("*** Could not register environment: ", runState.hostMessage);
  }

  // 6. The channels.
  runState.logChannel.file = stdout;
  const std::string statusPath = trimmed(oveGetStrOpt(runState.environment, kOptNameStaFile));
  runState.statusChannel.file = statusPath.empty() ? nullptr : std::fopen(statusPath.c_str(), "a");
  if (runState.statusChannel.file == nullptr) {
    writeFree(runState.logChannel, {"*** Could not create status file."});
    stopRun(runState, 0);
  }
  // The status file of a large model runs to hundreds of megabytes: written in large blocks.
  std::setvbuf(runState.statusChannel.file, nullptr, _IOFBF, kStatusBuffer);

  // 7. The model.
  if (ovmLoadDataLegacy(runState.model, runState.hostMessage) != 0) {
    writeFree(runState.logChannel, {"*** Could not load ORVA model data.", runState.hostMessage});
    stopRun(runState, 0);
  }
  oveTerminateInstall(runState.environment);
  ovmIndexBaseSet(runState.model, 1);
  ovmObjStyleSet(runState.model, 0);

  // 8. to 10.
  readRunParameters();
  ovpSetSystemName(runState.auditObject, kSystemName);
  takeAuditLine();
  openingLines(runState.logChannel);
  openingLines(runState.statusChannel);

  // 11. Sizes, objective, infinities.
  ovmHandle model = runState.model;
  runState.rowCount = ovmM(model);
  runState.colCount = ovmN(model);
  runState.nzCount = ovmNZ(model);
  const int32_t na = ovmValNAInt(model);
  runState.objVar = ovmObjVar(model) == na ? 0 : ovmObjVar(model);
  runState.minimizing = !(ovmSense(model) > 0);
  runState.plusInf = PLUS_INF;
  runState.minusInf = MINUS_INF;
  ovmPinfSet(model, runState.plusInf);
  ovmMinfSet(model, runState.minusInf);
  runState.objRow = ovmObjRow(model) == na ? 0 : ovmObjRow(model);

  // 12. The banner.
  writeLine(runState.statusChannel, "A2", {"=1"});
  for (const char* line : kBanner) writeFree(runState.statusChannel, {line});
  writeFree(runState.statusChannel);

  // 13. to 15. The dictionary.
  if (!ovdXCreate(runState.dictionary, runState.hostMessage)) {
    dictionaryFailure("Bad return code from ovdCreate: ");
  }
  const std::string dictName = ovmNameDict(model).substr(0, kHostTextLen);
  if (ovdLoadEx(runState.dictionary, dictName, runState.hostMessage) != 0) {
    dictionaryFailure("Bad return code from ovdLoadEx: ");
  }
  applyBlockDefaults(runState, ovdNLSyms(runState.dictionary));
  if (ovdLrgDim(runState.dictionary) > MAX_SYMBOL_DIM) {
    writeFree(runState.logChannel, {"*** Maximum symbol dimension of 10 exceeded"});
    writeFree(runState.logChannel,
              {"*** MODRAKE cannot process symbols with more than 10 dimensions"});
    writeLine(runState.statusChannel, "A", {"=C*** Maximum symbol dimension of 10 exceeded"});
    writeLine(runState.statusChannel, "A",
              {"=C*** MODRAKE cannot process symbols with more than 10 dimensions"});
    ovmSolveStatSet(model, 6);
    ovmModelStatSet(model, 14);
    ovmUnloadSolutionLegacy(model);
    stopRun(runState, 0);
  }

  // 16. The work array.
  int64_t total = 0;
  const bool fits = partitionWorkArray(Phase::Largest, workArraySizes(runState), 1, total);
  writeLine(runState.statusChannel, "A2", {"=1"});
  if (!fits) partitionOverflowStop(runState);
  if (!allocateWorkArray(total)) {
    writeBoth("1X,'Failure attempting to allocate ',I12,' words.'",
              {static_cast<long long>(total)});
    stopRun(runState, 0);
  }

  // 17. The Jacobian store.
  if (openJacobian(runState.environment, model, runState.rowCount, runState.colCount,
                   runState.nzCount) != 0) {
    writeBoth("1X,'Failure attempting to allocate Jacobian storage.'");
    stopRun(runState, 0);
  }
  if (fillJacobian(runState.environment, model)) {
    writeBoth("1X,'Failure attempting to fill Jacobian storage.'");
    stopRun(runState, 0);
  }

  // 18.
  runState.commentCount = 0;
  runRequestLoop();
}
