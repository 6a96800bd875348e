// The functions and derivatives of a model read from an AMPL .nl file, through the AMPL solver
// library. The library may print and end the process when it meets what it cannot read, so
// the host reads a file with it first in a child process (nlEvaluateInChild), where its exits
// and messages stay; a file that passed there is opened in the process itself (nlOpen), whose
// evaluations return domain errors (log of a negative number) as failures and print nothing.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct NlEvaluator;
struct NlEvaluatorFree {
  void operator()(NlEvaluator* evaluator) const;
};
using NlEvaluatorPtr = std::unique_ptr<NlEvaluator, NlEvaluatorFree>;

// Opens `path` in this process; nullptr with a reason when the library refuses it.
NlEvaluatorPtr nlOpen(const std::string& path, std::string& error);
int32_t nlVarCount(const NlEvaluator& evaluator);

// The value and the gradient (dense, one element per .nl variable) of a .nl item at `x`, the
// .nl variables' values: constraint c for item c >= 0, objective o for item -1 - o. False
// when the function or its derivatives cannot be evaluated there.
bool nlGradient(NlEvaluator& evaluator, int32_t item, const double* x, double& value,
                std::vector<double>& gradient);

// One item to evaluate in the child: which, and the variables whose derivatives are wanted.
struct NlRequest {
  int32_t item = 0;
  std::vector<int32_t> vars;
};
// What the child gives back for one request: false in `ok` on a domain error.
struct NlAnswer {
  bool ok = false;
  double value = 0.0;
  std::vector<double> derivatives;  // one per variable of the request
};

// Reads `path` with the library in a child process and evaluates the requests at `x`. False
// with a reason naming the file when the library refuses the file or the child dies.
bool nlEvaluateInChild(const std::string& path, const std::vector<double>& x,
                       const std::vector<NlRequest>& requests, std::vector<NlAnswer>& answers,
                       std::string& error);

// Whether nlEvaluateInChild starts its child, as it does unless told otherwise. A process that
// must start none (the fuzz target, which reads .nl files in-process) turns it off: every
// request then comes back unevaluated (`ok` false), so the reader's nonlinear entries read 0
// and a .sol solution of a nonlinear model is refused as one where the functions cannot be
// evaluated.
void nlAllowChild(bool allowed);
