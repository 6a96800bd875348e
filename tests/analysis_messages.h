// Expected report text of ANALYSIS, line by line: the explanations of the finding kinds, the
// headings, the pass and summary lines, and the item lines.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "analysis_fixture.h"
#include "golden.h"

namespace analysis_test {

using Lines = std::vector<std::string>;

inline Lines operator+(Lines a, const Lines& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// Explanations of the finding kinds, one golden file per kind, named by its number.
inline std::map<int32_t, Lines> readExplanations() {
  std::map<int32_t, Lines> explanations;
  const auto dir = std::filesystem::path(SOURCE_DIR) / "tests/golden/analysis/explanations";
  for (const auto& file : std::filesystem::directory_iterator(dir)) {
    explanations[std::stoi(file.path().filename().string())] = readLines(file.path());
  }
  return explanations;
}
inline const std::map<int32_t, Lines> kMessage = readExplanations();

inline const Lines kEquationHeading = {
    " ", " ----### Analysis of Equations ( nonlinear terms at current point)", " ", " "};
inline const Lines kVariableHeading = {
    " ", "   ----### Analysis of Variables ( nonlinear terms at current point)", " "};
inline const Lines kEquationsPass = {" ", "       ### The equations pass all analysis tests", " "};
inline const Lines kVariablesPass = {" ", "       ### The variables pass all analysis tests", " "};
inline const Lines kEquationCaution = {"", " **** There are nonlinear terms here, so message ",
                                "      may only refer to a local phenomena"};
inline const Lines kVariableCaution = {"", "**** There are nonlinear terms here, so message ",
                                "     may only refer to a local phenomena"};
inline const std::string kForceZero = "       ### Some equations force zero variables";
inline const std::string kInfeasible = "       ### Some equations are infeasible";
inline const std::string kRedundant = "       ### Some equations are redundant ";
inline const std::string kUnbounded = "       ### Cases found where variables will be unbounded";
inline const std::string kRelaxes = "       ### Cases found where variables relax constraints";
inline const std::string kZero = "       ### Cases found where variables will be zero";

// The first item under an explanation, and the items after it, at page width 80.
inline Lines firstItem(const std::string& label) { return {"", " ##  " + pad(label, 80)}; }
inline Lines nextItem(const std::string& label) { return {"     " + pad(label, 80)}; }

}  // namespace analysis_test
