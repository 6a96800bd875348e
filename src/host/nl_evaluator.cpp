// The AMPL solver library behind the evaluator of .nl models; see nl_evaluator.h.
#include "host/nl_evaluator.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

extern "C" {
#include "asl.h"
}
// asl.h names its fields through macros that would clash with ours.
#undef n_var
#undef n_con
#undef n_obj

struct NlEvaluator {
  ASL* asl = nullptr;
  int32_t vars = 0, cons = 0, objs = 0;
};

void NlEvaluatorFree::operator()(NlEvaluator* evaluator) const {
  if (evaluator == nullptr) return;
  if (evaluator->asl != nullptr) ASL_free(&evaluator->asl);
  delete evaluator;
}

NlEvaluatorPtr nlOpen(const std::string& path, std::string& error) {
  NlEvaluatorPtr ev(new NlEvaluator);
  ev->asl = ASL_alloc(ASL_read_fg);
  ASL* asl = ev->asl;
  asl->i.return_nofile_ = 1;
  FILE* nl = jac0dim_ASL(asl, path.c_str(), static_cast<ftnlen>(path.size()));
  if (nl == nullptr) {
    error = path + ": the AMPL solver library cannot open it";
    return nullptr;
  }
  ev->vars = asl->i.n_var_;
  ev->cons = asl->i.n_con_;
  ev->objs = asl->i.n_obj_;
  if (fg_read_ASL(asl, nl, ASL_return_read_err) != 0) {
    error = path + ": the AMPL solver library cannot read it";
    return nullptr;
  }
  return ev;
}

int32_t nlVarCount(const NlEvaluator& evaluator) { return evaluator.vars; }

bool nlGradient(NlEvaluator& evaluator, int32_t item, const double* x, double& value,
                std::vector<double>& gradient) {
  ASL* asl = evaluator.asl;
  gradient.assign(static_cast<std::size_t>(evaluator.vars), 0.0);
  if (item >= evaluator.cons || -1 - item >= evaluator.objs) return false;
  real* point = const_cast<real*>(x);
  // With the error count at 0 the library jumps back on a domain error instead of printing.
  fint errors = 0;
  if (item >= 0) {
    value = asl->p.Conival(asl, item, point, &errors);
    if (errors == 0) asl->p.Congrd(asl, item, point, gradient.data(), &errors);
  } else {
    value = asl->p.Objval(asl, -1 - item, point, &errors);
    if (errors == 0) asl->p.Objgrd(asl, -1 - item, point, gradient.data(), &errors);
  }
  return errors == 0;
}

namespace {

bool writeAll(int fd, const void* data, std::size_t size) {
  const char* p = static_cast<const char*>(data);
  while (size > 0) {
    const ssize_t n = ::write(fd, p, size);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    p += n;
    size -= static_cast<std::size_t>(n);
  }
  return true;
}

// The child: the library's output goes nowhere, and the answers go down `fd`.
[[noreturn]] void childEvaluate(int fd, const std::string& path, const std::vector<double>& x,
                                const std::vector<NlRequest>& requests) {
  const int nothing = ::open("/dev/null", O_WRONLY);
  if (nothing >= 0) {
    ::dup2(nothing, 1);
    ::dup2(nothing, 2);
  }
  std::string error;
  NlEvaluatorPtr ev = nlOpen(path, error);
  const char opened = ev ? 1 : 0;
  if (!writeAll(fd, &opened, 1) || !ev) _exit(0);
  if (static_cast<std::size_t>(nlVarCount(*ev)) > x.size()) _exit(3);
  std::vector<double> gradient;
  for (const NlRequest& r : requests) {
    double value = 0.0;
    const char ok = nlGradient(*ev, r.item, x.data(), value, gradient) ? 1 : 0;
    bool written = writeAll(fd, &ok, 1) && writeAll(fd, &value, sizeof value);
    for (int32_t v : r.vars) {
      const double d = ok && v >= 0 && v < nlVarCount(*ev) ? gradient[static_cast<std::size_t>(v)]
                                                          : 0.0;
      written = written && writeAll(fd, &d, sizeof d);
    }
    if (!written) _exit(4);
  }
  _exit(0);
}

bool childAllowed = true;

}  // namespace

void nlAllowChild(bool allowed) { childAllowed = allowed; }

bool nlEvaluateInChild(const std::string& path, const std::vector<double>& x,
                       const std::vector<NlRequest>& requests, std::vector<NlAnswer>& answers,
                       std::string& error) {
  if (!childAllowed) {
    answers.assign(requests.size(), NlAnswer{});
    return true;
  }
  int fds[2];
  if (::pipe(fds) != 0) {
    error = path + ": cannot start the AMPL solver library: " + std::strerror(errno);
    return false;
  }
  std::fflush(stdout);
  std::fflush(stderr);
  const pid_t child = ::fork();
  if (child < 0) {
    ::close(fds[0]);
    ::close(fds[1]);
    error = path + ": cannot start the AMPL solver library: " + std::strerror(errno);
    return false;
  }
  if (child == 0) {
    ::close(fds[0]);
    childEvaluate(fds[1], path, x, requests);
  }
  ::close(fds[1]);
  std::string bytes;
  char buffer[65536];
  for (;;) {
    const ssize_t n = ::read(fds[0], buffer, sizeof buffer);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) break;
    bytes.append(buffer, static_cast<std::size_t>(n));
  }
  ::close(fds[0]);
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  const bool clean = WIFEXITED(status) && WEXITSTATUS(status) == 0;
  if (!clean || bytes.empty()) {
    error = path + ": the AMPL solver library could not read the model" +
            (WIFSIGNALED(status) ? " (it died of signal " + std::to_string(WTERMSIG(status)) + ")"
                                 : " (it stopped with status " +
                                       std::to_string(WEXITSTATUS(status)) + ")");
    return false;
  }
  if (bytes[0] != 1) {
    error = path + ": the AMPL solver library cannot read it";
    return false;
  }
  answers.assign(requests.size(), NlAnswer{});
  std::size_t at = 1;
  auto take = [&](void* out, std::size_t size) {
    if (at + size > bytes.size()) return false;
    std::memcpy(out, bytes.data() + at, size);
    at += size;
    return true;
  };
  for (std::size_t r = 0; r < requests.size(); ++r) {
    char ok = 0;
    NlAnswer& a = answers[r];
    a.derivatives.assign(requests[r].vars.size(), 0.0);
    bool read = take(&ok, 1) && take(&a.value, sizeof a.value);
    for (double& d : a.derivatives) read = read && take(&d, sizeof d);
    if (!read) {
      error = path + ": the AMPL solver library gave no answer for every row";
      return false;
    }
    a.ok = ok != 0;
  }
  return true;
}
