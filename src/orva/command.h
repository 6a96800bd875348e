// The orva command line.
#pragma once

#include <string>
#include <vector>

#include "host/names.h"

struct OrvaCommand {
  std::string modelPath;
  std::string dataPath;
  std::string formatWord;      // --format, empty: from the extension
  std::string requestsPath;    // --requests, empty: beside the model
  std::string optionsPath;     // --options, empty: modrake.opt beside the model if present
  int pageWidth = 130;
  int solveMode = 0;           // 1 --solve, -1 --no-solve, 0 decided by the request file
  std::string solutionPath;    // --solution
  double timeLimitSeconds = 0; // --time-limit, 0: none
  bool scaleAuto = false;      // --scale auto
  std::string listingPath;     // --listing, empty: <input>.lst here, "-": standard output
  std::string keepScratchDir;  // --keep-scratch
  SymbolRule symbols;          // --symbols, for names without brackets in MPS and LP files
  bool timings = false;        // --timings: the time of each phase on standard error
  bool help = false;
  bool version = false;         // --version
};

inline constexpr int kOrvaPageWidthMin = 50;
inline constexpr int kOrvaPageWidthMax = 254;

// The usage text, for --help and after a usage error.
const char* orvaUsage();

// Parses the arguments after the program name. False with `error` on a usage error.
bool orvaParseCommandLine(const std::vector<std::string>& args, OrvaCommand& command,
                          std::string& error);
