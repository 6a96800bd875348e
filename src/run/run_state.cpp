#include "run/run_state.h"

RunContext runState;
