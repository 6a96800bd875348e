// scripts/install-deps.sh run by a user who is not root, with stand-ins for dpkg-query (two
// packages missing), id, apt-get and sudo on a PATH of their own.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

namespace {

TEST(InstallDeps, ThroughSudoOrNamesWhatIsMissing) {
  const fs::path dir = fs::path(testing::TempDir()) / ("deps_" + std::to_string(getpid()));
  const auto tool = [&dir](const char* name, const std::string& body) {
    std::ofstream(dir / name) << "#!/bin/sh\n" << body << "\n";
    fs::permissions(dir / name, fs::perms::owner_all);
  };
  const auto run = [&dir](std::string& log, std::string& err) {
    const std::string command = "/usr/bin/env -i PATH=" + dir.string() + " /bin/bash " +
                                SOURCE_DIR + "/scripts/install-deps.sh >/dev/null 2>" +
                                (dir / "err").string();
    const int raw = std::system(command.c_str());
    std::ostringstream l, e;
    l << std::ifstream(dir / "log").rdbuf();
    e << std::ifstream(dir / "err").rdbuf();
    log = l.str(), err = e.str();
    return WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
  };
  fs::remove_all(dir);
  fs::create_directories(dir);
  tool("dpkg-query", "case $3 in libglpk-dev|libgtest-dev) exit 1;; esac\n"
                     "printf 'install ok installed'");
  tool("id", "echo 1000");
  tool("apt-get", "echo \"apt-get $*\" >>" + (dir / "log").string());
  std::string log, err;
  EXPECT_EQ(run(log, err), 1);
  EXPECT_EQ(log, "");
  EXPECT_EQ(err,
            "install-deps: these Debian packages are missing: libglpk-dev libgtest-dev\n"
            "install-deps: this user is not root and there is no sudo; as root, run\n"
            "    apt-get update && apt-get install --no-install-recommends libglpk-dev "
            "libgtest-dev\n");
  tool("sudo", "echo \"sudo $*\" >>" + (dir / "log").string());
  EXPECT_EQ(run(log, err), 0) << err;
  EXPECT_EQ(log,
            "sudo DEBIAN_FRONTEND=noninteractive apt-get update -qq\n"
            "sudo DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "
            "libglpk-dev libgtest-dev\n");
  fs::remove_all(dir);
}

}  // namespace
