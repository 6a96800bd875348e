#include "orva/run.h"

#include <signal.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "host/instance_file.h"
#include "host/names.h"
#include "host/readers.h"
#include "host/solution_file.h"
#include "orva/block_tables.h"
#include "orva/listing.h"
#include "orva/options.h"
#include "orva/progress.h"
#include "orva/requests.h"
#include "orva/solve.h"

extern char** environ;

namespace fs = std::filesystem;

namespace {

// Host options hold at most 255 characters, and modrake's joined paths at most 375.
constexpr size_t kHostOptionLength = 255;
constexpr size_t kJoinedPathLength = 375;
constexpr size_t kArgumentLength = 256;

int fail(const std::string& message) {
  std::fprintf(stderr, "orva: %s\n", message.c_str());
  return kOrvaExitInputError;
}

bool isRegularFile(const std::string& path) {
  std::error_code ec;
  return fs::is_regular_file(path, ec);
}

bool exists(const std::string& path) {
  std::error_code ec;
  return fs::exists(fs::symlink_status(path, ec));
}

// Why a path given on the command line cannot be handed on: every path of a run goes into the
// host's control file, one per line, and is read back with its blanks dropped.
std::string pathFault(const std::string& path) {
  for (const char c : path) {
    if (static_cast<unsigned char>(c) < 32 || c == 127)
      return "a path with a line break or another control character cannot be used";
  }
  if (!path.empty() && (path.front() == ' ' || path.back() == ' '))
    return "a path that begins or ends with a blank cannot be used";
  return {};
}

// The listing's folder must exist before the run, so that a run is not lost for want of it.
std::string listingFault(const std::string& path) {
  std::error_code ec;
  if (fs::is_directory(path, ec)) return "the listing path is a folder";
  fs::path parent = fs::path(path).parent_path();
  if (parent.empty()) parent = ".";
  const std::string folder = "the listing's folder " + parent.string();
  if (!fs::is_directory(parent, ec)) return folder + " does not exist";
  if (access(parent.c_str(), W_OK) != 0) return folder + " cannot be written";
  return {};
}

std::string absolutePath(const std::string& path) {
  std::error_code ec;
  fs::path p = fs::absolute(path, ec);
  return ec ? path : p.lexically_normal().string();
}

std::string withSeparator(std::string dir) {
  if (dir.empty() || dir.back() != '/') dir.push_back('/');
  return dir;
}

bool readWholeFile(const std::string& path, std::string& text) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  std::ostringstream s;
  s << in.rdbuf();
  text = s.str();
  return true;
}

// The folder of the running program, from /proc/self/exe.
std::string programFolder() {
  std::error_code ec;
  fs::path exe = fs::read_symlink("/proc/self/exe", ec);
  return ec ? std::string() : exe.parent_path().string();
}

// The scratch folder: DIR of --keep-scratch, created when missing, or a fresh one.
bool makeScratch(const OrvaCommand& cmd, std::string& dir, std::string& error) {
  if (!cmd.keepScratchDir.empty()) {
    std::error_code ec;
    fs::create_directories(cmd.keepScratchDir, ec);
    if (ec || !fs::is_directory(cmd.keepScratchDir, ec)) {
      error = cmd.keepScratchDir + ": cannot make the scratch folder: " + ec.message();
      return false;
    }
    dir = withSeparator(absolutePath(cmd.keepScratchDir));
    return true;
  }
  const char* tmp = std::getenv("TMPDIR");
  std::string pattern = std::string(tmp != nullptr && *tmp != '\0' ? tmp : "/tmp");
  pattern = withSeparator(pattern) + "orva-XXXXXX";
  std::vector<char> buf(pattern.begin(), pattern.end());
  buf.push_back('\0');
  if (mkdtemp(buf.data()) == nullptr) {
    error = pattern + ": cannot make a scratch folder: " + std::strerror(errno);
    return false;
  }
  dir = withSeparator(buf.data());
  return true;
}

bool copyFile(const std::string& from, const std::string& to, std::string& error) {
  std::error_code ec;
  fs::copy_file(from, to, fs::copy_options::overwrite_existing, ec);
  if (ec) {
    error = from + ": cannot copy to " + to + ": " + ec.message();
    return false;
  }
  return true;
}

// Starts modrake with the control file, its standard output (the log) on ours, or on our
// standard error when `logToStderr`, and waits for it. Returns its exit status, or -1 with
// `error`; `peakKb` gets its peak resident memory.
int runModrake(const std::string& modrake, const std::string& controlFile, bool logToStderr,
               std::string& error, long& peakKb) {
  std::fflush(stdout);
  std::fflush(stderr);
  std::vector<char> prog(modrake.begin(), modrake.end());
  prog.push_back('\0');
  std::vector<char> arg(controlFile.begin(), controlFile.end());
  arg.push_back('\0');
  char* argv[] = {prog.data(), arg.data(), nullptr};
  // An interrupt stops modrake; orva itself lives on to write the listing and clean up.
  posix_spawnattr_t attr;
  posix_spawnattr_init(&attr);
  sigset_t defaults;
  sigemptyset(&defaults);
  sigaddset(&defaults, SIGINT);
  sigaddset(&defaults, SIGTERM);
  posix_spawnattr_setsigdefault(&attr, &defaults);
  posix_spawnattr_setflags(&attr, POSIX_SPAWN_SETSIGDEF);
  struct sigaction ignore {}, oldInt {}, oldTerm {};
  ignore.sa_handler = SIG_IGN;
  sigemptyset(&ignore.sa_mask);
  sigaction(SIGINT, &ignore, &oldInt);
  sigaction(SIGTERM, &ignore, &oldTerm);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  if (logToStderr) posix_spawn_file_actions_adddup2(&actions, STDERR_FILENO, STDOUT_FILENO);
  pid_t pid = 0;
  int rc = posix_spawn(&pid, modrake.c_str(), &actions, &attr, argv, environ);
  posix_spawn_file_actions_destroy(&actions);
  posix_spawnattr_destroy(&attr);
  int status = 0;
  bool waited = rc == 0;
  struct rusage usage {};
  while (waited && wait4(pid, &status, 0, &usage) < 0) {
    if (errno != EINTR) {
      error = modrake + ": lost while waiting: " + std::strerror(errno);
      waited = false;
      rc = -1;
    }
  }
  sigaction(SIGINT, &oldInt, nullptr);
  sigaction(SIGTERM, &oldTerm, nullptr);
  if (rc > 0) error = modrake + ": cannot start: " + std::strerror(rc);
  if (!waited) return -1;
  peakKb = usage.ru_maxrss;
  if (WIFEXITED(status)) return WEXITSTATUS(status);
  if (WIFSIGNALED(status)) {
    std::fprintf(stderr, "orva: modrake ended by signal %d\n", WTERMSIG(status));
    return 128 + WTERMSIG(status);
  }
  error = modrake + ": ended in an unknown way";
  return -1;
}

struct Scratch {
  std::string dir;
  bool keep = true;
  ~Scratch() {
    if (!keep && !dir.empty()) {
      std::error_code ec;
      fs::remove_all(dir, ec);
    }
  }
};

}  // namespace

HostOptions orvaHostOptions(const OrvaRunFiles& f) {
  HostOptions o;
  auto add = [&o](const char* name, const std::string& value) {
    if (!value.empty()) o.emplace_back(name, value);
  };
  add(kOptNameStaFile, f.statusFile);
  add(kOptNameWrkDir, f.workDir);
  add(kOptNameScrDir, f.scratchDir);
  add(kOptNameScrExt, kOrvaScratchExt);
  add(kOptPageWidth, std::to_string(f.pageWidth));
  add(kOptPageSize, std::to_string(f.pageSize));
  add(kOptInstanceFile, f.instanceFile);
  add(kOptPhaseFile, f.phaseFile);
  add(kOptInputName, f.inputName);
  return o;
}

int orvaMain(const std::vector<std::string>& args) {
  OrvaCommand cmd;
  std::string error;
  if (!orvaParseCommandLine(args, cmd, error)) {
    std::fprintf(stderr, "orva: %s\n%s", error.c_str(), orvaUsage());
    return kOrvaExitInputError;
  }
  if (cmd.help) {
    std::fputs(orvaUsage(), stdout);
    return 0;
  }
  if (cmd.version) {
    std::printf("orva (MODRAKE) %s\n%s", MODRAKE_VERSION, modelReaderVersions().c_str());
    return 0;
  }

  for (const std::string* path : {&cmd.modelPath, &cmd.dataPath, &cmd.requestsPath,
                                 &cmd.optionsPath, &cmd.solutionPath, &cmd.listingPath,
                                 &cmd.keepScratchDir}) {
    if (const std::string fault = pathFault(*path); !fault.empty())
      return fail("\"" + hostShownName(*path) + "\": " + fault);
  }
  if (!cmd.listingPath.empty() && cmd.listingPath != "-") {
    if (const std::string fault = listingFault(cmd.listingPath); !fault.empty())
      return fail(cmd.listingPath + ": " + fault);
  }

  // The model, read before anything else: a model that cannot be read never reaches modrake.
  ModelSource source;
  source.path = cmd.modelPath;
  source.dataPath = cmd.dataPath;
  if (!cmd.formatWord.empty()) {
    if (!parseModelFormat(cmd.formatWord, source.format)) {
      return fail("--format " + cmd.formatWord +
                  ": unknown format; known are json, mathprog, mps, fixed-mps, lp, nl");
    }
  } else if (!formatFromExtension(cmd.modelPath, source.format)) {
    return fail(cmd.modelPath +
                ": cannot tell the format from the extension (.json, .mod, .mps, .lp, .nl); "
                "name it with --format");
  }
  if (!exists(cmd.modelPath)) return fail(cmd.modelPath + ": no such model file");
  if (!cmd.dataPath.empty() && !exists(cmd.dataPath)) {
    return fail(cmd.dataPath + ": no such data file");
  }
  source.symbols = cmd.symbols;
  OrvaClock clock(cmd.timings);
  HostInstance instance;
  {
    OrvaProgress progress("reading " + cmd.modelPath);
    if (!readModel(source, instance, error, progress.reading())) return fail(error);
  }
  clock.lap("reading the model");
  // modrake computes the scale factors again; a model they cannot be had for never reaches it.
  if (cmd.scaleAuto && !hostAutoScale(instance, error)) return fail(error);
  const fs::path modelPath = absolutePath(cmd.modelPath);
  const std::string modelDir = withSeparator(modelPath.parent_path().string());
  // The input name is the model file's base name: it names the request file and the listing.
  const std::string inputName = modelPath.stem().string();

  // The option file.
  OrvaOptions options;
  std::string optionsPath = cmd.optionsPath;
  if (optionsPath.empty() && exists(modelDir + "modrake.opt")) {
    optionsPath = modelDir + "modrake.opt";
  }
  if (!optionsPath.empty() && !orvaReadOptionFile(optionsPath, options, error)) return fail(error);

  // The request file.
  std::string requestsPath = cmd.requestsPath.empty() ? modelDir + inputName + ".mrk"
                                                      : cmd.requestsPath;
  std::string requestText;
  const bool requestsExist = exists(requestsPath);
  if (!cmd.requestsPath.empty() && !requestsExist) {
    return fail(cmd.requestsPath + ": no such request file");
  }
  if (requestsExist && !hostRegularFile(requestsPath, "request file", error)) return fail(error);
  if (requestsExist && !readWholeFile(requestsPath, requestText)) {
    return fail(requestsPath + ": cannot read the request file");
  }

  // The solution: a user's, checked first, or GLPK's.
  HostSolution solution;
  const bool userSolution = !cmd.solutionPath.empty();
  if (userSolution) {
    if (!exists(cmd.solutionPath)) return fail(cmd.solutionPath + ": no such solution file");
    if (!hostRegularFile(cmd.solutionPath, "solution file", error)) return fail(error);
    if (!instance.nlFile.empty()) {
      // A .nl model's solution is an AMPL .sol file, which carries no statuses.
      if (!readNlSolutionFile(cmd.solutionPath, instance, solution, error)) return fail(error);
      orvaConditionStatuses(instance, solution);
    } else if (!readSolutionFile(cmd.solutionPath, instance, solution, error)) {
      return fail(error);
    }
    applySolution(instance, solution);
  }
  // Lines that modrake will pass over as no keyword: told now, and the run goes on.
  const OrvaRequestScan requestScan = orvaScanRequests(requestText);
  const std::string requestsName =
      cmd.requestsPath.empty()
          ? (fs::path(cmd.modelPath).parent_path() / (inputName + ".mrk")).string()
          : cmd.requestsPath;
  for (const OrvaStrayLine& stray : requestScan.strayLines) {
    std::fprintf(stderr, "orva: %s\n", orvaStrayLineWarning(requestsName, stray).c_str());
  }
  // A native instance may carry a solution of its own (levels, marginals, a model status);
  // it is handed over as it stands unless --solve or --solution replaces it.
  const bool ownSolution = !userSolution && instance.hasSolution;
  if (ownSolution) {
    solution.modelStat = instance.modelStat;
    solution.solveStat = instance.solveStat;
  }
  const bool askedByRequests = cmd.solveMode == 0 && !ownSolution && requestScan.needsSolution;
  const bool solve = !userSolution && (cmd.solveMode == 1 || askedByRequests);
  if (solve) {
    std::string reason = orvaUnsolvableReason(instance);
    if (!reason.empty()) {
      return fail(cmd.modelPath + ": cannot solve: " + reason +
                  " (run with --no-solve, or hand a solution over with --solution FILE)");
    }
    OrvaSolveSettings settings;
    settings.timeLimitSeconds = cmd.timeLimitSeconds;
    std::string stopped;
    {
      OrvaProgress progress("solving");
      stopped = orvaSolveInstance(instance, settings, solution);
    }
    if (!stopped.empty())
      std::fprintf(stderr, "orva: %s: %s\n", cmd.modelPath.c_str(), stopped.c_str());
    applySolution(instance, solution);
    clock.lap("solving");
    if (instance.objVar > 0 && solution.modelStat != kStatErrorNoSolution) {
      std::fprintf(stderr, "orva: GLPK: model status %d %s, objective %.10g\n",
                   static_cast<int>(solution.modelStat), orvaModelStatName(solution.modelStat),
                   solution.colLevel[instance.objVar - 1]);
    } else {
      std::fprintf(stderr, "orva: GLPK: model status %d %s\n",
                   static_cast<int>(solution.modelStat), orvaModelStatName(solution.modelStat));
    }
  }
  options.solutionExpected = userSolution || solve || instance.hasSolution;

  // BLOCKPIC, asked for or run because nothing else is, may need large tables.
  if (requestScan.blockPicture) {
    const std::string warning = orvaBlockTableWarning(instance, options);
    if (!warning.empty()) std::fprintf(stderr, "orva: %s\n", warning.c_str());
  }

  // modrake, next to this program.
  const std::string modrake = withSeparator(programFolder()) + "modrake";
  if (access(modrake.c_str(), X_OK) != 0) {
    return fail(modrake + ": modrake is not next to orva");
  }

  // The scratch folder and the files of the run.
  Scratch scratch;
  if (!makeScratch(cmd, scratch.dir, error)) return fail(error);
  scratch.keep = !cmd.keepScratchDir.empty();
  const std::string ext = kOrvaScratchExt;
  // modrake takes the control file's path as an argument of at most 256 characters, and
  // every path of the control file is a host option of at most 255.
  const std::string controlFile = scratch.dir + "orva.ctl";
  if (scratch.dir.size() + std::strlen("modrake.") + ext.size() > kJoinedPathLength - 1 ||
      (scratch.dir + inputName + ".sta").size() > kHostOptionLength ||
      (scratch.dir + "orvainst." + ext).size() > kHostOptionLength ||
      controlFile.size() > kArgumentLength) {
    return fail(scratch.dir + ": the scratch folder's path is too long for the files of the run "
                "(at most " + std::to_string(kHostOptionLength) + " characters each)");
  }
  for (const std::string& name : {inputName + ".sta", inputName + ".mrk", std::string("orva.ctl"),
                                   "modrake." + ext, "ovmstat." + ext, "mrkanal." + ext,
                                   "orvainst." + ext, "timings." + ext,
                                   "model" + modelPath.extension().string()}) {
    const std::string path = scratch.dir + name;
    if (exists(path) && !isRegularFile(path)) {
      scratch.keep = true;
      return fail(path + ": stands in the scratch folder but is not a plain file; remove it");
    }
  }

  OrvaRunFiles files;
  files.statusFile = scratch.dir + inputName + ".sta";
  files.scratchDir = scratch.dir;
  files.pageWidth = cmd.pageWidth;
  files.inputName = inputName;
  // The request file is read where it stands when modrake can name it there; one given with
  // --requests, or one whose folder is too long a path, is copied into the scratch folder.
  const bool readInPlace = cmd.requestsPath.empty() && modelDir.size() <= kHostOptionLength &&
                           modelDir.size() + inputName.size() + 4 <= kJoinedPathLength;
  if (readInPlace) {
    files.workDir = modelDir;
  } else {
    files.workDir = scratch.dir;
    if (requestsExist && !copyFile(requestsPath, scratch.dir + inputName + ".mrk", error)) {
      return fail(error);
    }
  }
  std::error_code ec;
  for (const char* stale : {"ovmstat.", "mrkanal.", "timings."})
    fs::remove(scratch.dir + stale + ext, ec);
  {
    std::FILE* f = std::fopen(files.statusFile.c_str(), "w");  // modrake appends to it
    if (f == nullptr) return fail(files.statusFile + ": cannot create: " + std::strerror(errno));
    std::fclose(f);
  }
  // The model, with its scale factors and the solution handed over, goes to modrake in the
  // host's binary form: modrake reads no model file.
  // The host keeps 255 characters of the model's path, which names the dictionary: a longer
  // path is handed over as a link in the scratch folder.
  if (instance.sourcePath.size() > kHostOptionLength) {
    const std::string link = scratch.dir + "model" + modelPath.extension().string();
    fs::remove(link, ec);
    fs::create_symlink(modelPath, link, ec);
    if (ec) return fail(link + ": cannot make the link: " + ec.message());
    instance.sourcePath = link;
  }
  files.instanceFile = scratch.dir + "orvainst." + ext;
  files.phaseFile = scratch.dir + "timings." + ext;
  // A .nl model's functions come from its file: modrake reads the copy in the scratch folder.
  if (!instance.nlFile.empty()) {
    const std::string copy = scratch.dir + "orvamodel.nl";
    if (!copyFile(instance.nlFile, copy, error)) return fail(error);
    instance.nlFile = copy;
  }
  if (!writeInstanceFile(files.instanceFile, instance, error)) return fail(error);
  clock.lap("handing over");
  if (!writeHostControlFile(controlFile, orvaHostOptions(files), error)) return fail(error);
  if (!orvaWriteControlRecords(scratch.dir + "modrake." + ext, options, error)) return fail(error);

  // orva keeps no copy of the model while modrake holds its own. With the listing on standard
  // output, the log goes to standard error.
  instance = HostInstance{};
  const bool listingToStdout = cmd.listingPath == "-";
  int status = 0;
  long modrakePeakKb = 0;
  {
    OrvaProgress progress("starting modrake", files.phaseFile,
                          listingToStdout ? STDERR_FILENO : STDOUT_FILENO);
    status = runModrake(modrake, controlFile, listingToStdout, error, modrakePeakKb);
  }
  if (status < 0) return fail(error);
  clock.lap("modrake");
  clock.modrakePhases(files.phaseFile);
  if (cmd.timings) {
    struct rusage self {};
    getrusage(RUSAGE_SELF, &self);
    std::fprintf(stderr, "orva: peak memory orva %ld MB, modrake %ld MB\n", self.ru_maxrss >> 10,
                 modrakePeakKb >> 10);
  }

  // The listing.
  std::FILE* out = stdout;
  std::string listingPath = cmd.listingPath.empty() ? inputName + ".lst" : cmd.listingPath;
  if (!listingToStdout) {
    out = std::fopen(listingPath.c_str(), "w");
    if (out == nullptr) {
      scratch.keep = true;
      return fail(listingPath + ": cannot write the listing: " + std::strerror(errno) +
                  "; the status file stays in " + scratch.dir);
    }
    std::setvbuf(out, nullptr, _IOFBF, std::size_t{1} << 18);
  }
  const int handedSolve = options.solutionExpected ? solution.solveStat : 0;
  const int handedModel = options.solutionExpected ? solution.modelStat : 0;
  std::string stopMessage;
  bool ok = orvaWriteListing(files.statusFile, scratch.dir + "ovmstat." + ext, handedSolve,
                             handedModel, out, stderr, error, &stopMessage);
  bool writeFailed = std::ferror(out) != 0;
  if (out != stdout && std::fclose(out) != 0) writeFailed = true;
  if (!ok) return fail(error);
  if (writeFailed) {
    scratch.keep = true;
    return fail(listingPath + ": the listing could not be written whole; the status file " +
                "stays in " + scratch.dir);
  }
  if (!listingToStdout) std::fprintf(stderr, "orva: listing written to %s\n", listingPath.c_str());
  if (!stopMessage.empty()) {
    std::fprintf(stderr, "orva: modrake stopped before the end of its run: %s\n",
                 stopMessage.c_str());
    if (status == 0) return kOrvaExitStopped;
  }
  return status;
}
