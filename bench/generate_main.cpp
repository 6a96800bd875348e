// mpsgen COLUMNS [SEED] [--fixed]: writes a generated MPS model to standard output.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "generator.h"

int main(int argc, char** argv) {
  MpsGeneratorSettings settings;
  int positional = 0;
  for (int k = 1; k < argc; ++k) {
    char* end = nullptr;
    if (std::strcmp(argv[k], "--fixed") == 0) {
      settings.fixed = true;
      continue;
    }
    const long long value = std::strtoll(argv[k], &end, 10);
    if (*argv[k] == '\0' || *end != '\0' || value < 1 || positional > 1) {
      std::fprintf(stderr, "usage: mpsgen COLUMNS [SEED] [--fixed]\n");
      return 2;
    }
    if (positional++ == 0) settings.columns = value;
    else settings.seed = static_cast<unsigned long long>(value);
  }
  if (positional == 0) {
    std::fprintf(stderr, "usage: mpsgen COLUMNS [SEED] [--fixed]\n");
    return 2;
  }
  static char buffer[1 << 20];
  std::setvbuf(stdout, buffer, _IOFBF, sizeof buffer);
  if (!generateMps(settings, stdout) || std::fflush(stdout) != 0) {
    std::fprintf(stderr, "mpsgen: cannot write the model\n");
    return 1;
  }
  return 0;
}
