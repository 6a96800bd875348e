// Running orva as a user does, from the tests: in a folder of the test's own, its exit status
// and what it wrote.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "golden.h"

struct RunResult {
  int status = -1;
  std::string out, err;
};

inline std::string quote(const std::string& s) {
  std::string q = "'";
  for (char c : s) q += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return q + "'";
}

// A fresh folder per test, the current folder of the runs.
inline std::filesystem::path freshDir(const std::string& name) {
  std::filesystem::path dir = std::filesystem::path(testing::TempDir()) /
                 ("orva_cmd_" + name + "_" + std::to_string(getpid()));
  std::filesystem::remove_all(dir);
  std::filesystem::create_directories(dir);
  return dir;
}

// A file name of this test process in the temporary folder.
inline std::string tempPath(const std::string& name) {
  return testing::TempDir() + std::to_string(getpid()) + "_" + name;
}

// `env`, when given, is a variable of orva's environment: "NAME=value".
inline RunResult runOrva(const std::filesystem::path& dir, const std::vector<std::string>& args,
                         const std::string& env = "") {
  const std::size_t equals = env.find('=');
  std::string cmd = "cd " + quote(dir.string()) + " && " +
                    (env.empty() ? "" : env.substr(0, equals + 1) + quote(env.substr(equals + 1)) + " ") +
                    quote(ORVA_BIN);
  for (const std::string& a : args) cmd += " " + quote(a);
  cmd += " >" + quote((dir / "run.out").string()) + " 2>" + quote((dir / "run.err").string());
  RunResult r;
  int raw = std::system(cmd.c_str());
  r.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
  r.out = readFile(dir / "run.out");
  r.err = readFile(dir / "run.err");
  return r;
}
