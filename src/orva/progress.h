// What orva shows while it works: a progress line on a terminal, and the time of each phase
// with --timings.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>
#include <thread>

#include "host/readers.h"

// A phase that may take long. When standard error is a terminal and the phase has run for
// over a second, one line there says what orva is doing ("reading m.mps: 120 of 285 MB",
// "solving", "running ANALYSIS") and is rewritten as the phase goes on; it is wiped when the
// phase ends, so nothing of it stays on the terminal, in a redirected stream or the listing.
// While modrake runs, the line is shown only when modrake's log does not go to that terminal
// (`logFd` not a terminal), since the log's lines would run into it; on the terminal the log
// itself says which procedure runs.
struct OrvaProgress {
  explicit OrvaProgress(std::string label, std::string phaseFile = "", int logFd = -1);
  ~OrvaProgress();
  OrvaProgress(const OrvaProgress&) = delete;
  OrvaProgress& operator=(const OrvaProgress&) = delete;

  // The hook for a reader: bytes read and the file's size.
  HostProgress reading();

  std::string label;
  std::string phaseFile;  // while modrake runs: the phases it marks, the last one is shown
  std::atomic<int64_t> done{0}, total{0};
  std::atomic<bool> stop{false};
  bool shown = false;
  std::thread painter;
};

// The time of each phase, written to standard error as "orva: time PHASE SECONDS" when on.
struct OrvaClock {
  explicit OrvaClock(bool on);
  void lap(const std::string& phase);
  // The phases that modrake marked in `phaseFile` ("end PHASE SECONDS" lines).
  void modrakePhases(const std::string& phaseFile);

  bool on;
  std::chrono::steady_clock::time_point last;
};
