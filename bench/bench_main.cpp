// modrake-bench: generated models of growing size, each read by `glpsol --check` and diagnosed
// by `orva --no-solve`, the two run one after the other, REPEAT times in turn; prints, for the
// run of the median wall time of each, wall time, peak memory (the largest process), their
// ratios, orva's phases and the growth from size to size, and checks the targets on the
// largest size.
//
//   modrake-bench DIR ORVA REPEAT [COLUMNS...]     (default sizes 250000 500000 1000000)
#include <sys/resource.h>
#include <sys/wait.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "generator.h"

namespace {

// The procedures of the benchmark's request file, one line each; MATCHIT with an empty section
// counts the whole model.
const char* const kRequests[] = {"ANALYSIS", "BLOCKPIC", "BLOCKLIST", "MATCHIT"};

// Targets on the largest size, as ratios to glpsol.
constexpr double kTimeTarget = 0.25;
constexpr double kMemoryTarget = 0.75;
constexpr double kProcedureTarget = 0.02;
constexpr double kGrowthTarget = 2.1;

struct Run {
  double seconds = 0;
  double cpuSeconds = 0;  // user and system time of the run and its children
  double peakMb = 0;  // the largest process of the run: orva's wait covers modrake
  int status = -1;
  std::string err;
};

// Runs `argv` with its output in `out` and its errors in `err`; its wall time and the peak
// resident memory of it and its children.
Run run(const std::vector<std::string>& argv, const std::string& out, const std::string& err) {
  Run r;
  const auto start = std::chrono::steady_clock::now();
  const pid_t pid = fork();
  if (pid == 0) {
    const int o = open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    const int e = open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    dup2(o, 1);
    dup2(e, 2);
    std::vector<char*> args;
    for (const std::string& a : argv) args.push_back(const_cast<char*>(a.c_str()));
    args.push_back(nullptr);
    execvp(args[0], args.data());
    _exit(127);
  }
  int status = 0;
  struct rusage usage {};
  wait4(pid, &status, 0, &usage);
  r.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  r.peakMb = static_cast<double>(usage.ru_maxrss) / 1024.0;
  auto seconds = [](const timeval& t) {
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) * 1e-6;
  };
  r.cpuSeconds = seconds(usage.ru_utime) + seconds(usage.ru_stime);
  r.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  std::ifstream in(err);
  std::stringstream text;
  text << in.rdbuf();
  r.err = text.str();
  return r;
}

// The run of the median wall time (of an even number, the faster of the middle two).
Run median(std::vector<Run> runs) {
  std::sort(runs.begin(), runs.end(),
            [](const Run& a, const Run& b) { return a.seconds < b.seconds; });
  return runs[(runs.size() - 1) / 2];
}

// The wall times of the runs, in the order they ran.
std::string wallTimes(const std::vector<Run>& runs, const char* format) {
  std::string out;
  char buffer[32];
  for (const Run& r : runs) {
    std::snprintf(buffer, sizeof buffer, format, r.seconds);
    out += buffer;
  }
  return out;
}

// orva's phases from its --timings lines "orva: time PHASE SECONDS", in order.
std::vector<std::pair<std::string, double>> phases(const std::string& err) {
  std::vector<std::pair<std::string, double>> out;
  std::istringstream in(err);
  std::string line;
  const std::string head = "orva: time ";
  while (std::getline(in, line)) {
    if (line.rfind(head, 0) != 0) continue;
    const std::size_t blank = line.rfind(' ');
    out.emplace_back(line.substr(head.size(), blank - head.size()),
                     std::atof(line.c_str() + blank + 1));
  }
  return out;
}

bool isProcedure(const std::string& phase) {
  for (const char* p : kRequests)
    if (phase == p) return true;
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  const int repeat = argc >= 4 ? std::atoi(argv[3]) : 0;
  if (argc < 4 || repeat < 1) {
    std::fprintf(stderr, "usage: modrake-bench DIR ORVA REPEAT [COLUMNS...]\n");
    return 2;
  }
  const std::string dir = argv[1];
  const std::string orva = argv[2];
  std::vector<long long> sizes;
  for (int k = 4; k < argc; ++k) sizes.push_back(std::atoll(argv[k]));
  if (sizes.empty()) sizes = {250000, 500000, 1000000};
  {
    std::ofstream requests(dir + "/bench.mrk");
    for (const char* p : kRequests) requests << p << "\n";
  }

  struct Result {
    long long columns;
    Run glpsol, orva;
    std::vector<std::pair<std::string, double>> phases;
  };
  std::vector<Result> results;
  bool ok = true;
  for (long long columns : sizes) {
    const std::string model = dir + "/bench" + std::to_string(columns) + ".mps";
    std::FILE* f = std::fopen(model.c_str(), "w");
    if (f == nullptr || !generateMps(MpsGeneratorSettings{columns, 1, false, false}, f)) {
      std::fprintf(stderr, "modrake-bench: cannot write %s\n", model.c_str());
      return 1;
    }
    std::fclose(f);
    Result r{columns, {}, {}, {}};
    std::vector<Run> glpsolRuns, orvaRuns;
    for (int k = 0; k < repeat; ++k) {
      glpsolRuns.push_back(run({"glpsol", "--freemps", model, "--check"}, dir + "/glpsol.out",
                               dir + "/glpsol.err"));
      orvaRuns.push_back(run({orva, model, "--no-solve", "--timings", "--requests",
                              dir + "/bench.mrk", "--listing", dir + "/bench.lst"},
                             dir + "/orva.out", dir + "/orva.err"));
      if (glpsolRuns.back().status != 0 || orvaRuns.back().status != 0) {
        std::fprintf(stderr, "modrake-bench: a run failed (glpsol %d, orva %d):\n%s",
                     glpsolRuns.back().status, orvaRuns.back().status,
                     orvaRuns.back().err.c_str());
        return 1;
      }
    }
    r.glpsol = median(glpsolRuns);
    r.orva = median(orvaRuns);
    r.phases = phases(r.orva.err);
    std::error_code ec;
    std::ifstream sizeOf(model, std::ios::ate | std::ios::binary);
    const double mb = static_cast<double>(sizeOf.tellg()) / (1 << 20);
    std::remove(model.c_str());

    std::printf("\n%lld columns, %lld rows, file %.0f MB\n", columns, columns / 4, mb);
    std::printf("  %-28s %10s %10s %10s\n", "", "wall s", "cpu s", "peak MB");
    std::printf("  %-28s %10.2f %10.2f %10.0f\n", "glpsol --freemps --check", r.glpsol.seconds,
                r.glpsol.cpuSeconds, r.glpsol.peakMb);
    std::printf("  %-28s %10.2f %10.2f %10.0f\n", "orva --no-solve", r.orva.seconds,
                r.orva.cpuSeconds, r.orva.peakMb);
    std::printf("  %-28s %10.3f %10.3f %10.3f\n", "orva / glpsol",
                r.orva.seconds / r.glpsol.seconds, r.orva.cpuSeconds / r.glpsol.cpuSeconds,
                r.orva.peakMb / r.glpsol.peakMb);
    if (repeat > 1) {
      std::printf("  wall s of the %d runs, the median shown: glpsol%s, orva%s\n", repeat,
                  wallTimes(glpsolRuns, " %.2f").c_str(), wallTimes(orvaRuns, " %.2f").c_str());
    }
    std::printf("  phases of orva (s, and as a part of glpsol's time):\n");
    for (const auto& [phase, seconds] : r.phases)
      std::printf("    %-26s %10.3f %10.4f\n", phase.c_str(), seconds, seconds / r.glpsol.seconds);
    if (!results.empty()) {
      const Result& before = results.back();
      const double growth = static_cast<double>(columns) / static_cast<double>(before.columns);
      std::printf("  growth for %.1f times the model: glpsol %.2f, orva %.2f times the wall "
                  "time (cpu time: %.2f, %.2f)\n",
                  growth, r.glpsol.seconds / before.glpsol.seconds,
                  r.orva.seconds / before.orva.seconds,
                  r.glpsol.cpuSeconds / before.glpsol.cpuSeconds,
                  r.orva.cpuSeconds / before.orva.cpuSeconds);
    }
    results.push_back(r);
  }

  // The targets, on the largest size.
  const Result& last = results.back();
  auto check = [&](const std::string& what, double value, double target) {
    const bool met = value <= target;
    ok = ok && met;
    std::printf("  %-44s %8.3f  target %5.3f  %s\n", what.c_str(), value, target,
                met ? "met" : "NOT MET");
  };
  std::printf("\ntargets on %lld columns:\n", last.columns);
  check("orva time / glpsol time", last.orva.seconds / last.glpsol.seconds, kTimeTarget);
  check("orva peak memory / glpsol peak memory", last.orva.peakMb / last.glpsol.peakMb,
        kMemoryTarget);
  for (const auto& [phase, seconds] : last.phases)
    if (isProcedure(phase)) check(phase + " time / glpsol time", seconds / last.glpsol.seconds,
                                  kProcedureTarget);
  for (std::size_t k = 1; k < results.size(); ++k)
    if (results[k].columns == 2 * results[k - 1].columns)
      check("orva time growth, " + std::to_string(results[k].columns) + " over " +
                std::to_string(results[k - 1].columns),
            results[k].orva.seconds / results[k - 1].orva.seconds, kGrowthTarget);
  std::printf("%s\n", ok ? "all targets met" : "some targets not met");
  return 0;
}
