#include "host/glpk_call.h"

#include <glpk.h>
#include <pthread.h>

#include <csetjmp>

namespace {

// GLPK's recursive descent costs about 1 KB of stack a level of nesting (several times that
// under the sanitizers); the readers hold nesting far below what this stack takes.
constexpr std::size_t kGlpkStackBytes = std::size_t{256} << 20;

struct GlpkRun {
  GlpkBody body;
  void* data;
  std::string* output;
  std::jmp_buf jump;
  bool failed = false;
};

int keepOutput(void* info, const char* text) {
  *static_cast<GlpkRun*>(info)->output += text;
  return 1;  // nothing reaches the terminal
}

[[noreturn]] void jumpBack(void* info) { std::longjmp(static_cast<GlpkRun*>(info)->jump, 1); }

void runBody(GlpkRun* run) {
  glp_term_hook(keepOutput, run);
  glp_error_hook(jumpBack, run);
  if (setjmp(run->jump) == 0) run->body(run->data);
  else run->failed = true;
  // The environment belongs to this thread; freeing it frees every GLPK object made in it.
  glp_free_env();
}

void* threadMain(void* arg) {
  runBody(static_cast<GlpkRun*>(arg));
  return nullptr;
}

}  // namespace

GlpkOutcome glpkCall(GlpkBody body, void* data, std::string& output) {
  GlpkRun run{body, data, &output, {}, false};
  pthread_attr_t attr;
  pthread_t thread;
  bool started = false;
  if (pthread_attr_init(&attr) == 0) {
    started = pthread_attr_setstacksize(&attr, kGlpkStackBytes) == 0 &&
              pthread_create(&thread, &attr, threadMain, &run) == 0;
    pthread_attr_destroy(&attr);
  }
  if (started) pthread_join(thread, nullptr);
  else runBody(&run);  // no thread to be had: the ordinary stack, still under the hook
  return run.failed ? kGlpkFailed : kGlpkDone;
}

std::string glpkFdName(int fd) { return "/dev/fd/" + std::to_string(fd); }

std::string glpkLastWords(const std::string& output) {
  std::string last = "no reason given";
  std::size_t start = 0;
  while (start < output.size()) {
    std::size_t end = output.find('\n', start);
    if (end == std::string::npos) end = output.size();
    const std::string line = output.substr(start, end - start);
    start = end + 1;
    // GLPK closes a fatal error with the place in its own source; the reason stands before.
    if (line.find_first_not_of(" \t\r") != std::string::npos &&
        line.rfind("Error detected in file", 0) != 0)
      last = line;
  }
  return last;
}
