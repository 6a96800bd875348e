#include "orva/command.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>

namespace {

bool parseInt(const std::string& text, long& value) {
  if (text.empty()) return false;
  errno = 0;
  char* end = nullptr;
  value = std::strtol(text.c_str(), &end, 10);
  return errno == 0 && *end == '\0';
}

bool parseSeconds(const std::string& text, double& value) {
  if (text.empty()) return false;
  errno = 0;
  char* end = nullptr;
  value = std::strtod(text.c_str(), &end);
  return errno == 0 && *end == '\0' && std::isfinite(value);
}

}  // namespace

const char* orvaUsage() {
  return "usage: orva MODEL [--data FILE] [--format json|mathprog|mps|fixed-mps|lp|nl]\n"
         "            [--requests FILE] [--options FILE] [--page-width N]\n"
         "            [--solve | --no-solve] [--solution FILE] [--time-limit SECONDS]\n"
         "            [--scale auto] [--listing FILE|-] [--keep-scratch DIR]\n"
         "            [--symbols auto|scalar|trailing-digits|before-digit|first:N] [--timings]\n"
         "       orva --help | --version\n"
         "\n"
         "Reads MODEL, solves it with GLPK when asked (by default when the request file\n"
         "names POSTOPT or NONOPT), runs modrake on it with the request file MODEL.mrk\n"
         "beside the model, and writes the listing to MODEL.lst in the current folder.\n";
}

bool orvaParseCommandLine(const std::vector<std::string>& args, OrvaCommand& command,
                          std::string& error) {
  static const char* const kWithValue[] = {"--data",     "--format",     "--requests",
                                           "--options",  "--page-width", "--solution",
                                           "--time-limit", "--scale",    "--listing",
                                           "--keep-scratch", "--symbols"};
  bool solveSeen = false, noSolveSeen = false;
  for (size_t k = 0; k < args.size(); ++k) {
    std::string arg = args[k];
    if (arg == "--help" || arg == "-h") {
      command.help = true;
      continue;
    }
    if (arg == "--version") {
      command.version = true;
      continue;
    }
    if (arg == "--solve") {
      solveSeen = true;
      command.solveMode = 1;
      continue;
    }
    if (arg == "--timings") {
      command.timings = true;
      continue;
    }
    if (arg == "--no-solve") {
      noSolveSeen = true;
      command.solveMode = -1;
      continue;
    }
    if (arg.size() < 2 || arg.compare(0, 2, "--") != 0 || arg == "-") {
      if (!arg.empty() && arg[0] == '-' && arg != "-") {
        error = "unknown option " + arg;
        return false;
      }
      if (!command.modelPath.empty()) {
        error = "more than one model: " + command.modelPath + " and " + arg;
        return false;
      }
      command.modelPath = arg;
      continue;
    }
    std::string name = arg, value;
    bool hasValue = false;
    size_t eq = arg.find('=');
    if (eq != std::string::npos) {
      name = arg.substr(0, eq);
      value = arg.substr(eq + 1);
      hasValue = true;
    }
    bool known = false;
    for (const char* n : kWithValue) known = known || name == n;
    if (!known) {
      error = "unknown option " + name;
      return false;
    }
    if (!hasValue) {
      if (k + 1 >= args.size()) {
        error = name + " needs a value";
        return false;
      }
      value = args[++k];
    }
    if (name == "--data") {
      command.dataPath = value;
    } else if (name == "--format") {
      command.formatWord = value;
    } else if (name == "--requests") {
      command.requestsPath = value;
    } else if (name == "--options") {
      command.optionsPath = value;
    } else if (name == "--page-width") {
      long w = 0;
      if (!parseInt(value, w) || w < kOrvaPageWidthMin || w > kOrvaPageWidthMax) {
        error = "--page-width " + value + ": the page width is a whole number from 50 to 254";
        return false;
      }
      command.pageWidth = static_cast<int>(w);
    } else if (name == "--solution") {
      command.solutionPath = value;
    } else if (name == "--time-limit") {
      double s = 0;
      if (!parseSeconds(value, s) || s <= 0) {
        error = "--time-limit " + value + ": the time limit is a number of seconds above 0";
        return false;
      }
      command.timeLimitSeconds = s;
    } else if (name == "--scale") {
      if (value != "auto") {
        error = "--scale " + value + ": the only scale source is auto";
        return false;
      }
      command.scaleAuto = true;
    } else if (name == "--symbols") {
      if (!parseSymbolRule(value, command.symbols)) {
        error = "--symbols " + value +
                ": the rules are auto, scalar, trailing-digits, before-digit and first:N "
                "(N from 1 to 63)";
        return false;
      }
    } else if (name == "--listing") {
      command.listingPath = value;
    } else {
      command.keepScratchDir = value;
    }
    if (value.empty()) {
      error = name + " needs a value";
      return false;
    }
  }
  if (command.help || command.version) return true;
  if (solveSeen && noSolveSeen) {
    error = "--solve and --no-solve exclude each other";
    return false;
  }
  if (solveSeen && !command.solutionPath.empty()) {
    error = "--solve and --solution exclude each other: a solution is either computed or given";
    return false;
  }
  if (command.modelPath.empty()) {
    error = "no model given";
    return false;
  }
  return true;
}
