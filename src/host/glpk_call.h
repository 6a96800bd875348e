// Every call of the project into GLPK goes through glpkCall, so that nothing GLPK does can end
// the process: its terminal output is kept instead of printed, a fatal error inside GLPK (a
// failed assertion, an argument it refuses) ends the call with kGlpkFailed, and its recursive
// MathProg translator runs on a stack large enough for any nesting that the reader lets in.
#pragma once

#include <string>

enum GlpkOutcome : int { kGlpkDone = 0, kGlpkFailed = 1 };

// A body of GLPK calls. It makes and deletes its own GLPK objects: the call's GLPK environment
// is freed when the body ends, and every object made in it goes with it. A fatal error leaves
// the body at once, so the body keeps its C++ objects (anything with a destructor) in `data`,
// owned by the caller, not on its own stack across a GLPK call.
using GlpkBody = void (*)(void* data);

// Runs `body(data)` on a thread of its own with a large stack, GLPK's output appended to
// `output`. kGlpkDone when the body ended normally, kGlpkFailed when GLPK stopped it.
GlpkOutcome glpkCall(GlpkBody body, void* data, std::string& output);

// "/dev/fd/N" for an open file descriptor: the name under which GLPK opens a file that the
// host opened, so that GLPK never handles the user's path (of any length) itself.
std::string glpkFdName(int fd);

// The reason of a failed call: the last line of GLPK's output that is not blank, leaving out
// the line that names the place in GLPK's own source.
std::string glpkLastWords(const std::string& output);
