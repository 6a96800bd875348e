#include "orva/progress.h"

#include <unistd.h>

#include <cstdio>
#include <fstream>

namespace {

constexpr auto kQuiet = std::chrono::seconds(1);  // a phase shorter than this shows nothing
constexpr auto kTick = std::chrono::milliseconds(200);

// The phase modrake is in: the name of a last "begin PHASE" line of its phase file.
std::string currentPhase(const std::string& path) {
  std::ifstream in(path);
  std::string line, phase;
  while (std::getline(in, line)) {
    if (line.rfind("begin ", 0) == 0) phase = line.substr(6);
    else if (line.rfind("end ", 0) == 0) phase.clear();
  }
  return phase;
}

void paint(OrvaProgress& p) {
  std::string text = p.label;
  if (!p.phaseFile.empty()) {
    const std::string phase = currentPhase(p.phaseFile);
    text = phase.empty() ? p.label : "running " + phase;
  }
  const int64_t total = p.total.load();
  if (total > 0) {
    text += ": " + std::to_string(p.done.load() >> 20) + " of " + std::to_string(total >> 20) +
            " MB";
  }
  std::fprintf(stderr, "\r\033[Korva: %s", text.c_str());
  std::fflush(stderr);
  p.shown = true;
}

}  // namespace

OrvaProgress::OrvaProgress(std::string what, std::string phases, int logFd)
    : label(std::move(what)), phaseFile(std::move(phases)) {
  if (isatty(STDERR_FILENO) == 0 || (logFd >= 0 && isatty(logFd) != 0)) return;
  painter = std::thread([this] {
    const auto start = std::chrono::steady_clock::now();
    while (!stop.load()) {
      std::this_thread::sleep_for(kTick);
      if (!stop.load() && std::chrono::steady_clock::now() - start > kQuiet) paint(*this);
    }
  });
}

OrvaProgress::~OrvaProgress() {
  stop = true;
  if (painter.joinable()) painter.join();
  if (shown) {
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
  }
}

HostProgress OrvaProgress::reading() {
  return [this](int64_t bytes, int64_t size) {
    done = bytes;
    total = size;
  };
}

OrvaClock::OrvaClock(bool enabled) : on(enabled), last(std::chrono::steady_clock::now()) {}

void OrvaClock::lap(const std::string& phase) {
  const auto now = std::chrono::steady_clock::now();
  if (on) {
    std::fprintf(stderr, "orva: time %s %.3f\n", phase.c_str(),
                 std::chrono::duration<double>(now - last).count());
  }
  last = now;
}

void OrvaClock::modrakePhases(const std::string& phaseFile) {
  if (!on) return;
  std::ifstream in(phaseFile);
  std::string line;
  while (std::getline(in, line))
    if (line.rfind("end ", 0) == 0) std::fprintf(stderr, "orva: time %s\n", line.substr(4).c_str());
}
