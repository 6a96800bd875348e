#include "run/run_state.h"

#include <cstdio>
#include <cstdlib>

RunState runState;

void stopRun(int exitCode) {
  std::fflush(stdout);
  if (runState.statusChannel.file != nullptr) {
    std::fclose(runState.statusChannel.file);
    runState.statusChannel.file = nullptr;
  }
  std::exit(exitCode);
}
