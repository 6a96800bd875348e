// Runs one procedure of the table in base/procedures.h as the request loop does: the scaling
// switch, the work-array phase, the title lines, the comments and the status lines around it,
// then the routine bound to its row.
#pragma once

#include "base/procedures.h"
#include "base/run_context.h"

// Runs the procedure of `row`. Returns row.readsSection: true when the procedure read its own
// section of the request file, so that currentKeyword holds the keyword that ended it (or
// THEEND); false when the loop reads the next keyword itself.
bool runProcedure(const ProcedureRow& row, RunContext& run);

// The overflow of the work array's word indices: the message on both channels, then the stop.
[[noreturn]] void partitionOverflowStop(RunContext& run);
