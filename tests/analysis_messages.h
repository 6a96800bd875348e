// Expected report text of ANALYSIS, line by line: the explanations of the finding kinds, the
// headings, the pass and summary lines, and the item lines.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "analysis_fixture.h"

namespace analysis_test {

using Lines = std::vector<std::string>;

inline Lines operator+(Lines a, const Lines& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// Explanations of the finding kinds, line by line.
inline const std::map<int32_t, Lines> kMessage = {
    {1,
     {
      "",
      " **** Warning These variables will equal their lower bound",
      "              they have neg (in max) object function coeff",
      "              all 0 or - coefficients in the =G= rows ",
      "              all 0 or + coefficients in the =L= rows",
      "              and no coefficients in the =E= rows",
     }},
    {2,
     {
      "",
      " **** Warning These variables will equal their upper bound",
      "              they have pos (in max) object function coeff",
      "              all 0 or + coefficients in the =G= rows ",
      "              all 0 or - coefficients in the =L= rows",
      "              and no coefficients in the =E= rows",
     }},
    {3,
     {
      " **** Warning  This =L= constraint causes all",
      "               variables in it to have a zero solution value",
      "               since the nonnegative variables present",
      "                         have only 0 or + coefficients",
      "                     the nonpositive variables present",
      "                         have only 0 or - coefficients",
      "                     the unrestricted variables ",
      "                         have only zero coefficients",
      "                     and the rhs is zero.",
     }},
    {4,
     {
      "",
      " **** Warning  These =L= constraints are redundant",
      "               since the nonnegative variables present",
      "                        have only 0 or - coefficients",
      "                     the nonpositive variables present",
      "                         have only 0 or + coefficients",
      "                         have only positive coefficients",
      "                     the unrestricted variables ",
      "                         have only zero coefficients",
      "                     and the RHS is positive",
     }},
    {5,
     {
      "",
      " **** ERROR This =L= constr. causes an infeasible model",
      "               since the nonnegative variables present",
      "                         have only 0 or + coefficients",
      "                     the nonpositive variables present",
      "                         have only 0 or - coefficents",
      "                     the unrestricted variables ",
      "                         have only zero coefficients",
      "                     and the RHS is negative",
     }},
    {6,
     {
      "",
      " **** Warning  This =G= constraint causes all",
      "               variables in it to have a zero solution value",
      "               since the nonnegative variables present",
      "                         have only 0 or - coefficients",
      "                     the nonpositive variables present",
      "                         have only 0 or + coefficients",
      "                     the unrestricted variables ",
      "                         have only zero coefficients",
      "                     and the RHS is zero.",
     }},
    {7,
     {
      "",
      " **** Warning  This =G= constraint is redundant",
      "               since the nonnegative variables present",
      "                        have only 0 or + coefficients",
      "                     the nonpositive variables present",
      "                         have only 0 or - coefficients",
      "                         have only positive coefficents",
      "                     the unrestricted variables ",
      "                         have only zero coefficients",
      "                     and the RHS is negative",
     }},
    {8,
     {
      "",
      " **** ERROR This =G= constr. causes an infeasible model",
      "               since the nonnegative variables present",
      "                         have only 0 or - coefficients",
      "                     the nonpositive variables present",
      "                         have only 0 or + coefficients",
      "                     the unrestricted variables ",
      "                         have only zero coefficients",
      "                     and the RHS is positive",
     }},
    {9,
     {
      "",
      " **** ERROR This =E= constraint causes infeasiblity",
      "               since the nonnegative variables present",
      "                        have only 0 or - coefficients",
      "                     the nonpositive variables present",
      "                         have only 0 or + coefficients",
      "                         have only positive coefficients",
      "                     the unrestricted variables ",
      "                         have only zero coefficients",
      "                     and the RHS is positive",
     }},
    {10,
     {
      "",
      " **** ERROR    This =E= constraint causes infeasiblity",
      "               since the nonnegative variables present",
      "                        have only 0 or + coefficients",
      "                     the nonpositive variables present",
      "                         have only 0 or - coefficients",
      "                         have only positive coefficents",
      "                     the unrestricted variables ",
      "                         have only zero coefficients",
      "                     and the rhs is negative",
     }},
    {11,
     {
      "",
      " **** Warning  This =E= constraint causes all",
      "               variables in it to have a zero solution value",
      "               since the nonnegative variables present",
      "                         have only 0 or - coefficients",
      "                     the nonpositive variables present",
      "                         have only 0 or + coefficients",
      "                     the unrestricted variables ",
      "                         have only zero coefficients",
      "                     and the RHS is zero.",
     }},
    {12,
     {
      "",
      " **** Warning  This =E= constraint causes all",
      "               variables in it to have a zero solution value",
      "               since there is only one unrestricted",
      "               variable present and the RHS is zero.",
     }},
    {13,
     {
      "",
      " **** Warning  This =E= constraint causes all",
      "               variables in it to have a zero solution value",
      "               since the nonnegative variables present",
      "                         have only 0 or + coefficients",
      "                     the nonpositive variables present",
      "                         have only 0 or - coefficients",
      "                     the unrestricted variables ",
      "                         have only zero coefficients",
      "                     and the RHS is zero.",
     }},
    {14,
     {
      " **** ERROR    This =E= constraint is infeasible ",
      "               the variables it contains have bounds that  ",
      "               insure it cannot be satisfied because of",
      "                lower bounds on variables with pos coef and",
      "                upper bounds on variables with neg coefs",
     }},
    {15,
     {
      " **** ERROR    This =E= constraint is infeasible ",
      "               the variables it contains have bounds that  ",
      "               insure it cannot be satisfied because of",
      "                lower bounds on variables with neg coef and",
      "                upper bounds on variables with pos coefs",
     }},
    {16,
     {
      " **** ERROR    This =L= constraint is infeasible ",
      "               the variables it contains have bounds that  ",
      "               insure it cannot be satisfied because of",
      "                lower bounds on variables with pos coef and",
      "                upper bounds on variables with neg coefs",
     }},
    {17,
     {
      " **** Warning  This =L= constraint is redundant ",
      "               the variables it contains have bounds that  ",
      "               insure it cannot be binding because of",
      "                lower bounds on variables with neg coef and",
      "                upper bounds on variables with pos coefs",
     }},
    {18,
     {
      " **** Warning  This =G= constraint is redundant ",
      "               the variables it contains have bounds that  ",
      "               insure it cannot be binding because of",
      "                lower bounds on variables with pos coef and",
      "                upper bounds on variables with neg coefs",
     }},
    {19,
     {
      " **** ERROR    This =G= constraint is infeasible ",
      "               the variables it contains have bounds that  ",
      "               insure it cannot be satisfied because of",
      "                lower bounds on variables with neg coef and",
      "                upper bounds on variables with pos coefs",
     }},
    {20,
     {
      "",
      "**** ERROR These variables are unbounded -- they",
      "           have a desirable objective function coeffic",
      "           all 0 or + coefficients in the =G= rows ",
      "           all 0 or - coefficients in the =L= rows",
      "           and no coefficients in the =E= rows",
     }},
    {21,
     {
      "",
      "**** WARNING These variables relax constraints they",
      "           fall in as they have no objective function coeff",
      "           all 0 or + coefficients in the =G= rows ",
      "           all 0 or - coefficients in the =L= rows",
      "           and no coefficients in the =E= rows",
     }},
    {23,
     {
      "",
      " **** Warning  These variables will equal zero ",
      "               because they have a zero lower bound ",
      "               an undesirable object function coefficient",
      "               all 0 or - coefficients in the =G= rows ",
      "               all 0 or + coefficients in the =L= rows",
      "               and no coefficients in the =E= rows",
     }},
    {24,
     {
      "",
      " **** Warning  These variables will equal zero",
      "               because they have a zero upper bound",
      "               an undesirable object function coefficent",
      "               all 0 or - coefficients in the =g= rows ",
      "               all 0 or + coefficients in the =l= rows",
      "               and no coefficients in the =e= rows",
     }},
    {25,
     {
      "  **** ERROR    These variables are unbounded",
      "               because they have no lower bound ",
      "               a desirable objective function coeffic",
      "               all 0 or - coefficients in the =G= rows ",
      "               all 0 or + coefficients in the =L= rows",
      "               and no coefficients in the =E= rows",
     }},
    {26,
     {
      "  **** WARNING  These variables relax all constraint",
      "               they fall in as they have no lower ",
      "               bound or objective function coefficient",
      "               all 0 or - coefficients in the =G= rows ",
      "               all 0 or + coefficients in the =L= rows",
      "               and no coefficients in the =E= rows",
     }},
};

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
