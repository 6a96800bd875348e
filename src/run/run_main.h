// The entry of `modrake`: start-up, the request loop, the end of the run.
#pragma once

// Runs MODRAKE on the host's control file named by the one argument, or writes the audit line
// when the argument is AUDIT. Every way out ends the process; the exit code is 0, or 77 at a
// block capacity stop.
[[noreturn]] void runMain(int argc, char** argv);
