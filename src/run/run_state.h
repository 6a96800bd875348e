// The one run context of the process, filled by start-up and handed by the request loop to
// every procedure. Only the run layer names it.
#pragma once

#include "base/run_context.h"

extern RunContext runState;
