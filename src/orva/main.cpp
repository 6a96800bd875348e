// orva: the modelling system's stand-in. Reads a model, solves it when asked, runs modrake on
// it and writes the listing.
#include <string>
#include <vector>

#include "orva/run.h"

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + 1, argv + argc);
  return orvaMain(args);
}
