// One orva run: read the model, solve it when asked, write the files of the run into a scratch
// folder, start modrake, and write the listing.
#pragma once

#include <string>

#include "host/control_file.h"
#include "orva/command.h"

// Exit status of a usage or input error of orva itself.
inline constexpr int kOrvaExitInputError = 2;
// Exit status when modrake stopped before the end of its run (no closing "=2" record) while
// its own exit status was 0.
inline constexpr int kOrvaExitStopped = 3;

// Scratch extension of the run's files.
inline constexpr const char* kOrvaScratchExt = "scr";

// The entries of the host control file of a run, in the order written. `scratchDir` and
// `workDir` end in their separator; empty paths are left out.
struct OrvaRunFiles {
  std::string statusFile;
  std::string workDir;
  std::string scratchDir;
  int pageWidth = 130;
  int pageSize = 60;
  std::string instanceFile;  // the model in the host's binary form
  std::string phaseFile;     // where modrake marks its phases
  std::string inputName;
};
HostOptions orvaHostOptions(const OrvaRunFiles& files);

// Runs orva on the arguments after the program name; returns the exit status: modrake's own,
// 0 after --help, 2 for a usage or input error, whose message goes to standard error, or 3
// when modrake stopped early.
int orvaMain(const std::vector<std::string>& args);
