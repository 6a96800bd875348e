#include "run/run_main.h"

int main(int argc, char** argv) { runMain(argc, argv); }
