// scripts/install-deps.sh with stand-ins for dpkg-query, id, sudo and apt-get on a PATH of
// their own: what it runs, and what it says when it can run nothing.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace fs = std::filesystem;

namespace {

std::string readFile(const fs::path& path) {
  std::ifstream in(path);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

void writeTool(const fs::path& path, const std::string& body) {
  std::ofstream(path) << "#!/bin/sh\n" << body << "\n";
  fs::permissions(path, fs::perms::owner_all);
}

TEST(InstallDeps, RootSudoOrAdvice) {
  struct Case {
    const char* what;
    const char* uid;
    bool sudo;
    const char* missing;  // packages that the dpkg-query stand-in calls not installed
    int status;
    std::string calls;    // the sudo and apt-get stand-ins' log of their arguments
    std::string err;
  };
  const std::string install =
      "DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "
      "libglpk-dev libgtest-dev\n";
  const Case cases[] = {
      {"root", "0", false, "libglpk-dev libgtest-dev", 0,
       "apt-get update -qq\napt-get install -y -qq --no-install-recommends libglpk-dev "
       "libgtest-dev\n",
       ""},
      {"user with sudo", "1000", true, "libglpk-dev libgtest-dev", 0,
       "sudo DEBIAN_FRONTEND=noninteractive apt-get update -qq\nsudo " + install, ""},
      {"user without sudo", "1000", false, "libglpk-dev libgtest-dev", 1, "",
       "install-deps: these Debian packages are missing: libglpk-dev libgtest-dev\n"
       "install-deps: this user is not root and there is no sudo; as root, run\n"
       "    apt-get update && apt-get install --no-install-recommends libglpk-dev "
       "libgtest-dev\n"},
      {"nothing missing", "1000", false, "", 0, "", ""},
  };
  const fs::path dir =
      fs::path(testing::TempDir()) / ("install_deps_" + std::to_string(getpid()));
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    fs::remove_all(dir);
    fs::create_directories(dir / "bin");
    const fs::path calls = dir / "calls";
    writeTool(dir / "bin" / "dpkg-query",
              std::string("case \" ") + c.missing + " \" in *\" $3 \"*) exit 1;; esac\n"
              "printf 'install ok installed'");
    writeTool(dir / "bin" / "id", std::string("echo ") + c.uid);
    writeTool(dir / "bin" / "apt-get", "echo \"apt-get $*\" >>" + calls.string());
    if (c.sudo) writeTool(dir / "bin" / "sudo", "echo \"sudo $*\" >>" + calls.string());
    const std::string command = "/usr/bin/env -i PATH=" + (dir / "bin").string() +
                                " /bin/bash " + SOURCE_DIR + "/scripts/install-deps.sh >" +
                                (dir / "out").string() + " 2>" + (dir / "err").string();
    const int raw = std::system(command.c_str());
    ASSERT_TRUE(WIFEXITED(raw));
    EXPECT_EQ(WEXITSTATUS(raw), c.status);
    EXPECT_EQ(readFile(calls), c.calls);
    EXPECT_EQ(readFile(dir / "err"), c.err);
  }
  fs::remove_all(dir);
}

}  // namespace
