#include "base/run_context.h"

#include <cstdio>
#include <cstdlib>

void stopRun(RunContext& run, int exitCode) {
  std::fflush(stdout);
  if (run.statusChannel.file != nullptr) {
    std::fclose(run.statusChannel.file);
    run.statusChannel.file = nullptr;
  }
  std::exit(exitCode);
}
