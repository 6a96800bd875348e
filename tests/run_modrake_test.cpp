// Whole runs of `modrake` on small instances: the status file and the log, line for line.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "analysis_messages.h"
#include "host/host.h"

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

namespace {

std::string pad(std::string s, size_t n) {
  s.resize(n, ' ');
  return s;
}

Lines readLines(const fs::path& path) {
  Lines lines;
  std::ifstream in(path, std::ios::binary);
  std::string line;
  while (std::getline(in, line)) lines.push_back(line);
  return lines;
}

Lines operator+(Lines a, const Lines& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// The audit line as the host gives it for this system, 75 characters.
std::string auditLine() {
  ovpHandle audit = nullptr;
  std::string message;
  if (!ovpXCreate(audit, message)) return "(no audit object: " + message + ")";
  ovpSetSystemName(audit, "MODRAKE-B 1.3");
  std::string line = ovpGetAuditLine(audit);
  ovpFree(audit);
  return pad(line.substr(0, 75), 75);
}

// Opening lines of either channel.
Lines opening() {
  return {" ", "", " " + auditLine(), "", " ", " ", " #### Executing MODRAKE 1.3 Body", " ", " "};
}

// "=1", the banner, the blank line behind it.
const Lines kBanner = {
    "=1",
    "    ##################################",
    "    #                                #",
    "    #           MODRAKE              #",
    "    #           Version 1.3          #",
    "    #  Diagnosis of optimization     #",
    "    #  models: infeasible rows,      #",
    "    #  doomed or unbounded columns,  #",
    "    #  the shape of the matrix.      #",
    "    #  Written for modellers.        #",
    "    #  Licence GPL-3.0-or-later      #",
    "    #                                #",
    "    ##################################",
    " ",
};

// Everything the status file gets before the first request: opening lines, banner, the "=1"
// of the partition.
Lines statusHead() { return opening() + kBanner + Lines{"=1"}; }

const Lines kLogEnd = {" ", " MODRAKE All Done", " "};

// The line that stands in the place of a procedure that this build lacks.
std::string unavailable(const std::string& kw) {
  return " **** " + kw + " is not available in this build";
}

// ---- the reports of BLOCKPIC, ANALYSIS and BLOCKLIST, worked out by hand ----------------
//
// tiny.json: rows cost (=E=, rhs 0, the objective row), supply(a) (=L=, 10), supply(b) (=L=,
// 12), demand(m) (=G=, 15); columns x(a,m) (2 in cost, 1 in supply(a), 1 in demand), x(b,m)
// (3 in cost, 1 in supply(b), 1 in demand), both in [0, inf), and the objective variable z,
// free, -1 in cost; minimized.
// Blocks: variables x (2 members), z (1); equations cost (1), supply (2), demand (1).
// Right-hand side status: cost all zero, supply and demand all positive.

// A line of n cells, blank but for the texts placed at the cells given (cell 1 first).
std::string cells(size_t n, std::initializer_list<std::pair<size_t, std::string>> texts = {}) {
  std::string s(n, ' ');
  for (const auto& [cell, text] : texts) {
    if (cell < 1 || cell - 1 + text.size() > n) throw std::logic_error("cell out of line");
    s.replace(cell - 1, text.size(), text);
  }
  return s;
}

std::string dashes(size_t n) { return " " + std::string(n, '-'); }

// The left parts of the table lines: a block name in 10 columns, and the blank of line 2.
std::string nameA(const std::string& name) { return " " + pad(name, 10) + "   |"; }  // A, B
std::string nameC(const std::string& name) { return " " + pad(name, 10) + " |"; }
std::string nameD(const std::string& name) { return " " + pad(name, 10) + " Max|"; }
const std::string kBlankA = std::string(14, ' ') + "|";
const std::string kBlankC = std::string(12, ' ') + "|";
const std::string kBlankD = std::string(12, ' ') + "Min|";
const std::string kHeadD = std::string(15, ' ') + "|";

// The two reports of findings when nothing is found.
const Lines kVariablesPass = {
    " ", "   ----### Analysis of Variables ( nonlinear terms at current point)", " ",
    " ", "       ### The variables pass all analysis tests", " "};
const Lines kEquationsPass = {
    " ", " ----### Analysis of Equations ( nonlinear terms at current point)", " ", " ",
    " ", "       ### The equations pass all analysis tests", " "};
const Lines kBothPassLog = {"       ### The variables pass all analysis tests",
                            "       ### The equations pass all analysis tests"};

// The explanations of the findings met below and the two cautions for nonlinear entries, from
// the table of every explanation that the ANALYSIS tests keep.
const Lines& explanation(int32_t kind) { return analysis_test::kMessage.at(kind); }
using analysis_test::kEquationCaution;
using analysis_test::kVariableCaution;
const Lines kVariablesHead = {
    " ", "   ----### Analysis of Variables ( nonlinear terms at current point)", " "};
const Lines kEquationsHead = {
    " ", " ----### Analysis of Equations ( nonlinear terms at current point)", " ", " "};

// An item under its explanation: variables without a mark, the first equation of a run with
// " ##  " behind an empty line; the label padded to the page width.
std::string variableItem(const std::string& label) { return "     " + pad(label, 130); }
Lines firstEquationItem(const std::string& label) { return {"", " ##  " + pad(label, 130)}; }

// Table A of tiny: columns x, z, RHS. perStrip (W - 19) / 3 is 37 at 130 and 10 at 50, so one
// strip either way. Cells: x 3, z 6; the RHS column (third, k 2) puts `|` at 9, the type letter
// at 12 and its mark at 15. Rows are written to cell 18, headings to 15; rule 3 x 2 + 22.
// cost: x 2 and 3 (+), z -1 (-), all rhs zero (0 in the RHS column of the last strip);
// supply, demand: x only, rhs +.
// Type letters: x continuous non-negative (+), z free (u).
Lines tinyTableA() {
  Lines t = {" ", " ", " ", " ", " ", " ", "### A. Aggregate Block Picture -- Strip   1", " ", " "};
  for (int r = 1; r <= 7; ++r) t.push_back(kBlankA + cells(15, {{9, "|"}}));
  t.push_back(kBlankA + cells(15, {{9, "|"}, {15, "R"}}));
  t.push_back(kBlankA + cells(15, {{9, "|"}, {15, "H"}}));
  t.push_back(kBlankA + cells(15, {{3, "x"}, {6, "z"}, {9, "|"}, {15, "S"}}));
  return t + Lines{dashes(28),
                   nameA("cost") + cells(18, {{3, "+"}, {6, "-"}, {9, "|"}, {12, "E"}, {15, "0"}}),
                   nameA("supply") + cells(18, {{3, "+"}, {9, "|"}, {12, "L"}, {15, "+"}}),
                   nameA("demand") + cells(18, {{3, "+"}, {9, "|"}, {12, "G"}, {15, "+"}}),
                   dashes(28),
                   // 127(1X,A2): the blank of the third letter is written before it stops.
                   " Variable Typ |  +  u "};
}

// Table B of tiny: columns x, z, RHS, Coeff Cnts, # of  Eqns; perStrip (W - 19) / 6 is 18 at
// 130 and 5 at 50: one strip. pos 1, 7, then 6k + 5 = 17, 23, 29; a count ends at pos + 4 and
// its mark at pos + 5; the RHS `|` at 6k + 2 = 14, the type letter at 16. Rows to cell 35.
// The heading letters stand at pos + 4 (5, 11, 21, 27, 33), written to the smaller of 33 and
// W - 19: at 50 that is 31, and the letters of "# of  Eqns" fall off.
// cost: x 2+ (2 and 3), z 1- (-1), no rhs, row total 2+ 1-, 1 equation.
// supply: x 2+, rhs 2+ (10, 12), total 2+, 2 equations. demand: x 2+, rhs 1+, total 2+, 1.
// Column totals: x 6+, z 1-, rhs 3+, grand total 6+ 1-. Members: x 2, z 1.
Lines tinyTableB(int width) {
  const std::string coeff = "Coeff Cnts";
  const std::string eqns = "# of  Eqns";
  Lines t = {" ", " ", " ", " ", " ", " ",
             "### B. Number of Coefficients by Block -- Strip   1", " ", " "};
  for (int r = 1; r <= 10; ++r) {
    std::string line =
        cells(33, {{14, "|"}, {27, coeff.substr(r - 1, 1)}, {33, eqns.substr(r - 1, 1)}});
    if (r >= 8) line.replace(20, 1, std::string(1, "RHS"[r - 8]));
    if (r == 10) {
      line.replace(4, 1, "x");
      line.replace(10, 1, "z");
    }
    line.resize(std::min(33, width - 19));
    t.push_back(kBlankA + line);
  }
  return t + Lines{
      dashes(49),
      nameA("cost") + cells(35, {{5, "2+"}, {14, "|"}, {16, "E"}, {27, "2+"}, {33, "1"}}),
      kBlankA + cells(35, {{11, "1-"}, {14, "|"}, {27, "1-"}}),
      nameA("supply") +
          cells(35, {{5, "2+"}, {14, "|"}, {16, "L"}, {21, "2+"}, {27, "2+"}, {33, "2"}}),
      kBlankA + cells(35, {{14, "|"}}),
      nameA("demand") +
          cells(35, {{5, "2+"}, {14, "|"}, {16, "G"}, {21, "1+"}, {27, "2+"}, {33, "1"}}),
      kBlankA + cells(35, {{14, "|"}}),
      dashes(49),
      nameA("Coeff Cnts") + cells(35, {{5, "6+"}, {14, "|"}, {21, "3+"}, {27, "6+"}}),
      kBlankA + cells(35, {{11, "1-"}, {14, "|"}, {27, "1-"}}),
      nameA("# of  Vars") + cells(35, {{5, "2"}, {11, "1"}, {14, "|"}}),
      " Variable Typ |   >=0   <0>   "};
}

// Table C of tiny. Averages: a pair's count over the block's members (x has 2 members, so its
// 2 coefficients in each row average 1; z 1 over 1); the RHS column holds the plain counts;
// Cfs PerEqu the row total over the equations, whole-number division (cost 2/1 and 1/1,
// supply 2/2, demand 2/1); # of  Eqns the equations. Bottom: x 6/2 = 3, z 1/1 = 1.
// perStrip (W - 17) / 8 is 14 at 130 (one strip) and 4 at 50: nC + 2 = 4 is a multiple, so
// strip 1 takes x, z, RHS (one less than 4) and strip 2 the two title columns.
// pos 8k + 1, title columns 8k + 5; a number ends at pos + 7; the RHS `|` at pos - 3 and the
// type letter at pos - 1; an equation count ends at pos + 6. Rows to pos + 8 of the last
// column, headings (letter at pos + 6) to that cell; the bottom line puts the RHS column at
// 8k + 4 (`|` at pos - 2) and ends at 8k + 9 of its last column.
Lines tinyTableC(int width) {
  const std::string perEqu = "Cfs PerEqu";
  const std::string eqns = "# of  Eqns";
  auto head = [](int strip) {
    return Lines{" ", " ",
                 (strip == 1 ? std::string(" ### C.") : std::string("    C.")) +
                     " Average Number of Coefficients by Column Block -- Strip   " +
                     std::to_string(strip),
                 " ", ""};
  };
  if (width >= 130) {
    Lines t = head(1);
    for (int r = 1; r <= 10; ++r) {
      std::string line = cells(43, {{35, perEqu.substr(r - 1, 1)}, {43, eqns.substr(r - 1, 1)}});
      if (r == 8) line.replace(26, 1, "R");
      if (r == 9) line.replace(26, 1, "H");
      if (r == 10) {
        line.replace(6, 1, "x");
        line.replace(14, 1, "z");
        line.replace(26, 1, "S");
      }
      t.push_back(kBlankC + line);
    }
    return t + Lines{
        dashes(57),
        nameC("cost") + cells(45, {{7, "1+"}, {18, "|"}, {20, "E"}, {35, "2+"}, {43, "1"}}),
        kBlankC + cells(45, {{15, "1-"}, {18, "|"}, {35, "1-"}}),
        nameC("supply") +
            cells(45, {{7, "1+"}, {18, "|"}, {20, "L"}, {27, "2+"}, {35, "1+"}, {43, "2"}}),
        kBlankC + cells(45, {{18, "|"}}),
        nameC("demand") +
            cells(45, {{7, "1+"}, {18, "|"}, {20, "G"}, {27, "1+"}, {35, "2+"}, {43, "1"}}),
        kBlankC + cells(45, {{18, "|"}}),
        dashes(57),
        nameC("Cfs PerVar") + cells(41, {{7, "3+"}, {18, "|"}}),
        kBlankC + cells(41, {{15, "1-"}, {18, "|"}}),
        " # of  Vars |      2       1",
        // 34(5X,A3): the blanks ahead of the third code are written before it stops.
        "  Var Type  |    >=0     <0>     ",
        dashes(57)};
  }
  // Width 50. Strip 1: x, z, RHS; headings to cell 27, rows to 29, rule 8 x 2 + 21 + 4.
  Lines t = head(1);
  for (int r = 1; r <= 7; ++r) t.push_back(kBlankC + cells(27));
  t.push_back(kBlankC + cells(27, {{27, "R"}}));
  t.push_back(kBlankC + cells(27, {{27, "H"}}));
  t.push_back(kBlankC + cells(27, {{7, "x"}, {15, "z"}, {27, "S"}}));
  t = t + Lines{dashes(41),
                nameC("cost") + cells(29, {{7, "1+"}, {18, "|"}, {20, "E"}}),
                kBlankC + cells(29, {{15, "1-"}, {18, "|"}}),
                nameC("supply") + cells(29, {{7, "1+"}, {18, "|"}, {20, "L"}, {27, "2+"}}),
                kBlankC + cells(29, {{18, "|"}}),
                nameC("demand") + cells(29, {{7, "1+"}, {18, "|"}, {20, "G"}, {27, "1+"}}),
                kBlankC + cells(29, {{18, "|"}}),
                dashes(41),
                nameC("Cfs PerVar") + cells(28, {{7, "3+"}, {18, "|"}}),
                kBlankC + cells(28, {{15, "1-"}, {18, "|"}}),
                " # of  Vars |      2       1",
                "  Var Type  |    >=0     <0>     ",
                dashes(41)};
  // Strip 2: Cfs PerEqu (pos 5), # of  Eqns (pos 13); no RHS column, so no `|` and no type
  // letter; no variable block, so no "# of  Vars" and a type line without codes.
  t = t + head(2);
  for (int r = 1; r <= 10; ++r)
    t.push_back(kBlankC + cells(19, {{11, perEqu.substr(r - 1, 1)}, {19, eqns.substr(r - 1, 1)}}));
  return t + Lines{dashes(33),
                   nameC("cost") + cells(21, {{11, "2+"}, {19, "1"}}),
                   kBlankC + cells(21, {{11, "1-"}}),
                   nameC("supply") + cells(21, {{11, "1+"}, {19, "2"}}),
                   kBlankC + cells(21),
                   nameC("demand") + cells(21, {{11, "2+"}, {19, "1"}}),
                   kBlankC + cells(21),
                   dashes(33),
                   nameC("Cfs PerVar") + cells(17),
                   kBlankC + cells(17),
                   "  Var Type  |    ",
                   dashes(33)};
}

// Table D of tiny: largest and smallest absolute coefficient per pair. cost: x 3 and 2, z 1 and
// 1, row 3 and 1; supply: x 1, rhs 12 and 10, row 1; demand: x 1, rhs 15, row 1. Total Var:
// x 3 and 1, z 1, rhs 15 and 10. A pair without entries (and the RHS of cost, all zero) is
// blank. Columns x, z, RHS MaxMin, Equ MaxMin at pos 10k + 1, a number ending at pos + 9.
// perStrip (W - 17) / 10 is 11 at 130 (one strip) and 3 at 50: strips (nC + 1) / 3 + 1 = 2,
// the second with Equ MaxMin alone. Headings (letter at pos + 8) and rows (to pos + 10).
Lines tinyTableD(int width) {
  const std::string rhs = "RHS MaxMin";
  const std::string equ = "Equ MaxMin";
  auto head = [](int strip) {
    return Lines{" ", " ",
                 (strip == 1 ? std::string("###") : std::string("  ")) +
                     " D. Scaling - Maximum & Minimum Coefficients by Block -- Strip   " +
                     std::to_string(strip),
                 " ", " "};
  };
  if (width >= 130) {
    Lines t = head(1);
    for (int r = 1; r <= 10; ++r) {
      std::string line = cells(39, {{29, rhs.substr(r - 1, 1)}, {39, equ.substr(r - 1, 1)}});
      if (r == 10) {
        line.replace(8, 1, "x");
        line.replace(18, 1, "z");
      }
      t.push_back(kHeadD + line);
    }
    return t + Lines{dashes(58),
                     nameD("cost") + cells(41, {{10, "3"}, {20, "1"}, {40, "3"}}),
                     kBlankD + cells(41, {{10, "2"}, {20, "1"}, {40, "1"}}),
                     nameD("supply") + cells(41, {{10, "1"}, {29, "12"}, {40, "1"}}),
                     kBlankD + cells(41, {{10, "1"}, {29, "10"}, {40, "1"}}),
                     nameD("demand") + cells(41, {{10, "1"}, {29, "15"}, {40, "1"}}),
                     kBlankD + cells(41, {{10, "1"}, {29, "15"}, {40, "1"}}),
                     dashes(58),
                     "  Total Var Max|" + cells(41, {{10, "3"}, {20, "1"}, {29, "15"}}),
                     kBlankD + cells(41, {{10, "1"}, {20, "1"}, {29, "10"}}),
                     std::string(16, ' ')};
  }
  Lines t = head(1);
  for (int r = 1; r <= 10; ++r) {
    std::string line = cells(29, {{29, rhs.substr(r - 1, 1)}});
    if (r == 10) {
      line.replace(8, 1, "x");
      line.replace(18, 1, "z");
    }
    t.push_back(kHeadD + line);
  }
  t = t + Lines{dashes(48),
                nameD("cost") + cells(31, {{10, "3"}, {20, "1"}}),
                kBlankD + cells(31, {{10, "2"}, {20, "1"}}),
                nameD("supply") + cells(31, {{10, "1"}, {29, "12"}}),
                kBlankD + cells(31, {{10, "1"}, {29, "10"}}),
                nameD("demand") + cells(31, {{10, "1"}, {29, "15"}}),
                kBlankD + cells(31, {{10, "1"}, {29, "15"}}),
                dashes(48),
                "  Total Var Max|" + cells(31, {{10, "3"}, {20, "1"}, {29, "15"}}),
                kBlankD + cells(31, {{10, "1"}, {20, "1"}, {29, "10"}})};
  t = t + head(2);
  for (int r = 1; r <= 10; ++r) t.push_back(kHeadD + cells(9, {{9, equ.substr(r - 1, 1)}}));
  return t + Lines{dashes(28),
                   nameD("cost") + cells(11, {{10, "3"}}),
                   kBlankD + cells(11, {{10, "1"}}),
                   nameD("supply") + cells(11, {{10, "1"}}),
                   kBlankD + cells(11, {{10, "1"}}),
                   nameD("demand") + cells(11, {{10, "1"}}),
                   kBlankD + cells(11, {{10, "1"}}),
                   dashes(28),
                   "  Total Var Max|" + cells(11),
                   kBlankD + cells(11),
                   std::string(16, ' ')};
}

// BLOCKPIC of tiny on the status file, behind its titles and comments, at a page width (the
// tables hold a width under 50 to 50).
// Findings on the blocks: x is non-negative without upper bound, has a bad objective sign
// (2 and 3 against z at -1, minimized), is + in the =G= and the =L= rows: supply holds it from
// rising and demand from falling, so no rule holds; z, the objective block, is skipped.
// cost (=E=, rhs 0) has a free term; supply (=L=) and demand (=G=) have positive rhs and
// positive terms only: no rule for them either.
Lines tinyBlockPicStatus(int width) {
  const int w = width < 50 ? 50 : width;
  return tinyTableA() + tinyTableB(w) + tinyTableC(w) + tinyTableD(w) + kVariablesPass +
         kEquationsPass;
}
const Lines& tinyBlockPicLog() { return kBothPassLog; }

// ANALYSIS of tiny. x(a,m), x(b,m): lower 0, no upper bound, bad objective (minimized, z on
// the negative side of cost), + in supply (=L=) and demand (=G=): rise and fall limited, no
// finding. z is the objective variable. cost: free term z, rhs 0 = maxActivity 0 (strict),
// no finding; supply and demand: only + terms, their lower bounds all 0 (minState 0) and
// upper bounds infinite (maxState 0): no activity rule runs, no sign rule holds.
Lines tinyAnalysisStatus() { return kVariablesPass + kEquationsPass; }
const Lines& tinyAnalysisLog() { return kBothPassLog; }

// BLOCKLIST of tiny. Counts run over all entries; Max and Min leave out the objective row
// (variables) and the objective variable (equations). x: 6 positive coefficients, max and min
// outside cost 1; z: one coefficient, -1, in cost only: 0 and 0. cost: +2, +3, -1; without z
// 3 and 2. supply: 2 positive, rhs 10 and 12; demand: 2 positive, rhs 15.
Lines tinyBlockListStatus() {
  return Lines{" ----### List of Variable Block Characteristics",
               "",
               " Note Max and Min do not include Objective Row",
               "",
               " Variable         Sign  Numb Numb Pos  Neg  Nonl  Maximum    Minimum",
               "   Block          Res   Vars Nonl Coef Coef Coef  Absolute   Absolute",
               " x                >=0     2    0    6    0    0       1.0000     1.0000",
               " z                <0>     1    0    0    1    0       0.0000     0.0000",
               "",
               "",
               " ----### List of Equation Block Characteristics",
               "",
               " Note Max and Min do not include RHS and Objective variable",
               "",
               " Equation         Type  Numb Numb Pos  Neg  Nonl Pos  Neg  Maximum    Minimum",
               "   Block          Res   Eqns Nonl Coef Coef Coef RHS  RHS  Absolute   Absolute",
               " cost             =E=     1    0    2    1    0    0    0      3.0000     2.0000",
               " supply           =L=     2    0    2    0    0    2    0      1.0000     1.0000",
               " demand           =G=     1    0    2    0    0    1    0      1.0000     1.0000"} +
         kVariablesPass + kEquationsPass;
}
const Lines& tinyBlockListLog() { return kBothPassLog; }

// BLOCKPIC of deep10.json at 130: one row e (=L=, rhs 1), one column w(l1,...,l10) in
// [0, inf) with 1 in e; no objective. Table A: w at cell 3, RHS (k 1): `|` 6, L 9, + 12.
// Table B: pos 1, 11, 17, 23 (`|` 8, L 10), all counts 1. Table C: pos 1, 13, 21, 29 (`|` 10,
// L 12), bottom RHS at 12 (`|` 10). Table D: every entry 1, the equation row's own column too.
// Findings: w has lower bound 0, nothing holds it from falling (only + in an =L= row) and no
// good objective: it will be zero (kind 23). e has a positive rhs and + only: no rule.
Lines deep10BlockPicStatus() {
  Lines t = {" ", " ", " ", " ", " ", " ", "### A. Aggregate Block Picture -- Strip   1", " ", " "};
  for (int r = 1; r <= 7; ++r) t.push_back(kBlankA + cells(12, {{6, "|"}}));
  t.push_back(kBlankA + cells(12, {{6, "|"}, {12, "R"}}));
  t.push_back(kBlankA + cells(12, {{6, "|"}, {12, "H"}}));
  t.push_back(kBlankA + cells(12, {{3, "w"}, {6, "|"}, {12, "S"}}));
  t = t + Lines{dashes(25), nameA("e") + cells(15, {{3, "+"}, {6, "|"}, {9, "L"}, {12, "+"}}),
                dashes(25), " Variable Typ |  + "};

  const std::string coeff = "Coeff Cnts";
  const std::string eqns = "# of  Eqns";
  const std::string perEqu = "Cfs PerEqu";
  const std::string rhs = "RHS MaxMin";
  const std::string equ = "Equ MaxMin";
  t = t + Lines{" ", " ", " ", " ", " ", " ",
                "### B. Number of Coefficients by Block -- Strip   1", " ", " "};
  for (int r = 1; r <= 10; ++r) {
    std::string line =
        cells(27, {{8, "|"}, {21, coeff.substr(r - 1, 1)}, {27, eqns.substr(r - 1, 1)}});
    if (r >= 8) line.replace(14, 1, std::string(1, "RHS"[r - 8]));
    if (r == 10) line.replace(4, 1, "w");
    t.push_back(kBlankA + line);
  }
  t = t + Lines{dashes(43),
                nameA("e") + cells(29, {{5, "1+"}, {8, "|"}, {10, "L"}, {15, "1+"}, {21, "1+"},
                                        {27, "1"}}),
                kBlankA + cells(29, {{8, "|"}}),
                dashes(43),
                nameA("Coeff Cnts") + cells(29, {{5, "1+"}, {8, "|"}, {15, "1+"}, {21, "1+"}}),
                kBlankA + cells(29, {{8, "|"}}),
                nameA("# of  Vars") + cells(29, {{5, "1"}, {8, "|"}}),
                " Variable Typ |   >=0   "};

  t = t + Lines{" ", " ", " ### C. Average Number of Coefficients by Column Block -- Strip   1",
                " ", ""};
  for (int r = 1; r <= 10; ++r) {
    std::string line = cells(35, {{27, perEqu.substr(r - 1, 1)}, {35, eqns.substr(r - 1, 1)}});
    if (r >= 8) line.replace(18, 1, std::string(1, "RHS"[r - 8]));
    if (r == 10) line.replace(6, 1, "w");
    t.push_back(kBlankC + line);
  }
  t = t + Lines{dashes(49),
                nameC("e") + cells(37, {{7, "1+"}, {10, "|"}, {12, "L"}, {19, "1+"}, {27, "1+"},
                                        {35, "1"}}),
                kBlankC + cells(37, {{10, "|"}}),
                dashes(49),
                nameC("Cfs PerVar") + cells(33, {{7, "1+"}, {10, "|"}}),
                kBlankC + cells(33, {{10, "|"}}),
                " # of  Vars |      1",
                "  Var Type  |    >=0     ",
                dashes(49)};

  t = t + Lines{" ", " ",
                "### D. Scaling - Maximum & Minimum Coefficients by Block -- Strip   1", " ", " "};
  for (int r = 1; r <= 10; ++r) {
    std::string line = cells(29, {{19, rhs.substr(r - 1, 1)}, {29, equ.substr(r - 1, 1)}});
    if (r == 10) line.replace(8, 1, "w");
    t.push_back(kHeadD + line);
  }
  t = t + Lines{dashes(48),
                nameD("e") + cells(31, {{10, "1"}, {20, "1"}, {30, "1"}}),
                kBlankD + cells(31, {{10, "1"}, {20, "1"}, {30, "1"}}),
                dashes(48),
                "  Total Var Max|" + cells(31, {{10, "1"}, {20, "1"}}),
                kBlankD + cells(31, {{10, "1"}, {20, "1"}}),
                std::string(16, ' ')};

  return t + kVariablesHead + explanation(23) + Lines{variableItem("w")} + kEquationsPass;
}
const Lines kDeep10BlockPicLog = {"       ### Cases found where variables will be zero",
                                  "       ### The equations pass all analysis tests"};

// flaws.json: rows cost (=E=, 0, objective row), cap(r1) (=L=, 5), cap(r2) (=L=, -1),
// need(r1) (=G=, 0), bal (=E=, 4); columns y(r1) binary (1 in cost, 1 in cap(r1), -1 in
// need(r1), nonlinear), y(r2) binary (1 in cost, 1 in cap(r2), -2 in bal), s in [0, inf)
// (-0.5 in cap(r1)), the objective variable z, free, -1 in cost; minimized.
// Blocks: y (2), s (1), z (1); cost (1), cap (2), need (1), bal (1). Right-hand sides: cost
// and need all zero, cap mixed (5, -1), bal positive.

// The findings on the blocks of flaws, the same for BLOCKPIC and BLOCKLIST. y: upper bound 1,
// lower 0, bad objective, - in need, + in cap, - in bal (=E=): no rule. s: no upper bound, no
// objective coefficient, only - in an =L= row: nothing holds it from rising, it relaxes cap
// (kind 21). z is the objective block. cost has a free term; cap has mixed right-hand sides
// and meets no rule; need (=G=, all zero) holds only - terms: it forces zero (kind 6), with the
// caution of its nonlinear entry; bal (=E=, positive) holds only - terms: infeasible (kind 9).
const Lines kFlawsFindings = kVariablesHead + explanation(21) + Lines{variableItem("s")} +
                             kEquationsHead + explanation(6) + kEquationCaution +
                             firstEquationItem("need") + explanation(9) +
                             firstEquationItem("bal");
const Lines kFlawsFindingsLog = {"       ### Cases found where variables relax constraints",
                                 "       ### Some equations force zero variables",
                                 "       ### Some equations are infeasible"};

// BLOCKPIC of flaws at 130, one strip in every table.
Lines flawsBlockPicStatus() {
  // A: y 3, s 6, z 9; RHS (k 3): `|` 12, type letter 15, mark 18. cost: y +, z -, rhs all 0;
  // cap: y +, s -, rhs m; need: y -, rhs 0; bal: y -, rhs +. Types: binary b, s +, z u.
  Lines t = {" ", " ", " ", " ", " ", " ", "### A. Aggregate Block Picture -- Strip   1", " ", " "};
  for (int r = 1; r <= 7; ++r) t.push_back(kBlankA + cells(18, {{12, "|"}}));
  t.push_back(kBlankA + cells(18, {{12, "|"}, {18, "R"}}));
  t.push_back(kBlankA + cells(18, {{12, "|"}, {18, "H"}}));
  t.push_back(kBlankA + cells(18, {{3, "y"}, {6, "s"}, {9, "z"}, {12, "|"}, {18, "S"}}));
  t = t + Lines{dashes(31),
                nameA("cost") + cells(21, {{3, "+"}, {9, "-"}, {12, "|"}, {15, "E"}, {18, "0"}}),
                nameA("cap") + cells(21, {{3, "+"}, {6, "-"}, {12, "|"}, {15, "L"}, {18, "m"}}),
                nameA("need") + cells(21, {{3, "-"}, {12, "|"}, {15, "G"}, {18, "0"}}),
                nameA("bal") + cells(21, {{3, "-"}, {12, "|"}, {15, "E"}, {18, "+"}}),
                dashes(31),
                " Variable Typ |  b  +  u "};

  // B: pos 1, 7, 13, then 23, 29, 35 (`|` 20, type letter 22); rows to cell 41, rule 55.
  // Row totals: cost 2+ 1-, cap 2+ 1-, need 1-, bal 1-. Column totals: y 4+ 2-, s 1-, z 1-,
  // rhs 2+ 1- (5 and 4; -1), grand 4+ 4-.
  const std::string coeff = "Coeff Cnts";
  const std::string eqns = "# of  Eqns";
  const std::string perEqu = "Cfs PerEqu";
  const std::string rhs = "RHS MaxMin";
  const std::string equ = "Equ MaxMin";
  t = t + Lines{" ", " ", " ", " ", " ", " ",
                "### B. Number of Coefficients by Block -- Strip   1", " ", " "};
  for (int r = 1; r <= 10; ++r) {
    std::string line =
        cells(39, {{20, "|"}, {33, coeff.substr(r - 1, 1)}, {39, eqns.substr(r - 1, 1)}});
    if (r >= 8) line.replace(26, 1, std::string(1, "RHS"[r - 8]));
    if (r == 10) {
      line.replace(4, 1, "y");
      line.replace(10, 1, "s");
      line.replace(16, 1, "z");
    }
    t.push_back(kBlankA + line);
  }
  t = t + Lines{
      dashes(55),
      nameA("cost") + cells(41, {{5, "2+"}, {20, "|"}, {22, "E"}, {33, "2+"}, {39, "1"}}),
      kBlankA + cells(41, {{17, "1-"}, {20, "|"}, {33, "1-"}}),
      nameA("cap") +
          cells(41, {{5, "2+"}, {20, "|"}, {22, "L"}, {27, "1+"}, {33, "2+"}, {39, "2"}}),
      kBlankA + cells(41, {{11, "1-"}, {20, "|"}, {27, "1-"}, {33, "1-"}}),
      nameA("need") + cells(41, {{20, "|"}, {22, "G"}, {39, "1"}}),
      kBlankA + cells(41, {{5, "1-"}, {20, "|"}, {33, "1-"}}),
      nameA("bal") + cells(41, {{20, "|"}, {22, "E"}, {27, "1+"}, {39, "1"}}),
      kBlankA + cells(41, {{5, "1-"}, {20, "|"}, {33, "1-"}}),
      dashes(55),
      nameA("Coeff Cnts") + cells(41, {{5, "4+"}, {20, "|"}, {27, "2+"}, {33, "4+"}}),
      kBlankA + cells(41, {{5, "2-"}, {11, "1-"}, {17, "1-"}, {20, "|"}, {27, "1-"}, {33, "4-"}}),
      nameA("# of  Vars") + cells(41, {{5, "2"}, {11, "1"}, {17, "1"}, {20, "|"}}),
      " Variable Typ |   BIN   >=0   <0>   "};

  // C: pos 1, 9, 17, then 29 (`|` 26, letter 28), 37, 45; rows to 53, rule 8 x 5 + 25.
  // y has 2 members: 2/2 = 1 in cost and cap, 1/2 = 0.5 in need and bal (shown 0.5). Cfs
  // PerEqu truncates: cap 2/2 = 1 and 1/2 = 0 (blank). Bottom: y 4/2 = 2 and 2/2 = 1, s 1, z 1;
  // its RHS column at 8 x 3 + 4, `|` at 26, and cells to 8 x 5 + 9.
  t = t + Lines{" ", " ", " ### C. Average Number of Coefficients by Column Block -- Strip   1",
                " ", ""};
  for (int r = 1; r <= 10; ++r) {
    std::string line = cells(51, {{43, perEqu.substr(r - 1, 1)}, {51, eqns.substr(r - 1, 1)}});
    if (r >= 8) line.replace(34, 1, std::string(1, "RHS"[r - 8]));
    if (r == 10) {
      line.replace(6, 1, "y");
      line.replace(14, 1, "s");
      line.replace(22, 1, "z");
    }
    t.push_back(kBlankC + line);
  }
  t = t + Lines{
      dashes(65),
      nameC("cost") + cells(53, {{7, "1+"}, {26, "|"}, {28, "E"}, {43, "2+"}, {51, "1"}}),
      kBlankC + cells(53, {{23, "1-"}, {26, "|"}, {43, "1-"}}),
      nameC("cap") +
          cells(53, {{7, "1+"}, {26, "|"}, {28, "L"}, {35, "1+"}, {43, "1+"}, {51, "2"}}),
      kBlankC + cells(53, {{15, "1-"}, {26, "|"}, {35, "1-"}}),
      nameC("need") + cells(53, {{26, "|"}, {28, "G"}, {51, "1"}}),
      kBlankC + cells(53, {{5, "0.5-"}, {26, "|"}, {43, "1-"}}),
      nameC("bal") + cells(53, {{26, "|"}, {28, "E"}, {35, "1+"}, {51, "1"}}),
      kBlankC + cells(53, {{5, "0.5-"}, {26, "|"}, {43, "1-"}}),
      dashes(65),
      nameC("Cfs PerVar") + cells(49, {{7, "2+"}, {26, "|"}}),
      kBlankC + cells(49, {{7, "1-"}, {15, "1-"}, {23, "1-"}, {26, "|"}}),
      " # of  Vars |      2       1       1",
      "  Var Type  |    BIN     >=0     <0>     ",
      dashes(65)};

  // D: pos 1, 11, 21, 31, 41, rows to 51, rule 68. cap: y 1, s 0.5, rhs 5 and 1, row 1 and
  // 0.5; bal: y 2, rhs 4. Total Var: y 2 and 1, s 0.5, z 1, rhs 5 and 1.
  t = t + Lines{" ", " ",
                "### D. Scaling - Maximum & Minimum Coefficients by Block -- Strip   1", " ", " "};
  for (int r = 1; r <= 10; ++r) {
    std::string line = cells(49, {{39, rhs.substr(r - 1, 1)}, {49, equ.substr(r - 1, 1)}});
    if (r == 10) {
      line.replace(8, 1, "y");
      line.replace(18, 1, "s");
      line.replace(28, 1, "z");
    }
    t.push_back(kHeadD + line);
  }
  return t + Lines{dashes(68),
                   nameD("cost") + cells(51, {{10, "1"}, {30, "1"}, {50, "1"}}),
                   kBlankD + cells(51, {{10, "1"}, {30, "1"}, {50, "1"}}),
                   nameD("cap") + cells(51, {{10, "1"}, {18, "0.5"}, {40, "5"}, {50, "1"}}),
                   kBlankD + cells(51, {{10, "1"}, {18, "0.5"}, {40, "1"}, {48, "0.5"}}),
                   nameD("need") + cells(51, {{10, "1"}, {50, "1"}}),
                   kBlankD + cells(51, {{10, "1"}, {50, "1"}}),
                   nameD("bal") + cells(51, {{10, "2"}, {40, "4"}, {50, "2"}}),
                   kBlankD + cells(51, {{10, "2"}, {40, "4"}, {50, "2"}}),
                   dashes(68),
                   "  Total Var Max|" + cells(51, {{10, "2"}, {18, "0.5"}, {30, "1"}, {40, "5"}}),
                   kBlankD + cells(51, {{10, "1"}, {18, "0.5"}, {30, "1"}, {40, "1"}}),
                   std::string(16, ' ')} +
         kFlawsFindings;
}

// BLOCKLIST of flaws. y: 4 positive and 2 negative entries, 1 nonlinear column with 1
// nonlinear entry, max 2 (bal) and min 1 outside cost. s: -0.5. z: only in cost: 0 and 0.
// Equations: cost +1, +1, -1 (max and min without z: 1); cap +1, +1, -0.5, one rhs of each
// sign; need is marked nonlinear and printed with its plain type; bal -2, rhs 4.
Lines flawsBlockListStatus() {
  return Lines{" ----### List of Variable Block Characteristics",
               "",
               " Note Max and Min do not include Objective Row",
               "",
               " Variable         Sign  Numb Numb Pos  Neg  Nonl  Maximum    Minimum",
               "   Block          Res   Vars Nonl Coef Coef Coef  Absolute   Absolute",
               " y                BIN     2    1    4    2    1       2.0000     1.0000",
               " s                >=0     1    0    0    1    0       0.5000     0.5000",
               " z                <0>     1    0    0    1    0       0.0000     0.0000",
               "",
               "",
               " ----### List of Equation Block Characteristics",
               "",
               " Note Max and Min do not include RHS and Objective variable",
               "",
               " Equation         Type  Numb Numb Pos  Neg  Nonl Pos  Neg  Maximum    Minimum",
               "   Block          Res   Eqns Nonl Coef Coef Coef RHS  RHS  Absolute   Absolute",
               " cost             =E=     1    0    2    1    0    0    0      1.0000     1.0000",
               " cap              =L=     2    0    2    1    0    1    1      1.0000     0.5000",
               " need             =G=     1    1    0    1    1    0    0      1.0000     1.0000",
               " bal              =E=     1    0    0    1    0    1    0      2.0000     2.0000"} +
         kFlawsFindings;
}

// ANALYSIS of flaws, item by item. y(r1): lower 0, bad objective, - in need (=G=) and + in
// cap(r1) (=L=): nothing holds it from falling, it will be zero (kind 23), with the caution of
// its nonlinear entry. y(r2) is held by bal (=E=). s relaxes cap(r1) (kind 21). cap(r1): its
// largest left side is 1 (y(r1) at 1, s at 0) under the rhs 5: redundant (kind 17). cap(r2)
// (rhs -1) holds only + terms: infeasible (kind 5). need(r1) forces zero (kind 6, nonlinear),
// bal (rhs 4, only -) is infeasible (kind 9). Every problem goes to the scratch file.
Lines flawsAnalysisStatus() {
  return kVariablesHead + explanation(23) + kVariableCaution + Lines{variableItem("y(r1)")} +
         explanation(21) + Lines{variableItem("s")} + kEquationsHead + explanation(17) +
         firstEquationItem("cap(r1)") + explanation(5) + firstEquationItem("cap(r2)") +
         explanation(6) + kEquationCaution + firstEquationItem("need(r1)") + explanation(9) +
         firstEquationItem("bal");
}
const Lines kFlawsAnalysisLog = {"       ### Cases found where variables relax constraints",
                                 "       ### Cases found where variables will be zero",
                                 "       ### Some equations force zero variables",
                                 "       ### Some equations are infeasible",
                                 "       ### Some equations are redundant "};
const Lines kFlawsAnalysisProblems = {" variable", "   y(r1)",     "   s",        " equation",
                                      "   cap(r1)", "   cap(r2)", "   need(r1)", "   bal"};

// One control record: label in columns 1 to 30, value from column 31.
std::string rec(const std::string& label, const std::string& value) {
  return pad(label, 30) + value + "\n";
}

struct RunFiles {
  std::string varBlock = "    0";
  std::string equBlock = "    0";
  std::string recordThree = "  500";
  bool solution = false;
  std::string model = "tiny.json";
};

struct ModrakeRun : ::testing::Test {
  fs::path dir;
  fs::path hostControl;
  int exitCode = -1;
  Lines status, log;

  void SetUp() override {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    dir = fs::temp_directory_path() /
          ("modrake_run_" + std::string(info->name()) + "_" + std::to_string(::getpid()));
    fs::remove_all(dir);
    fs::create_directories(dir);
    hostControl = dir / "orva.ctl";
  }
  void TearDown() override {
    if (!HasFailure()) fs::remove_all(dir);
  }

  std::string d() const { return dir.string() + "/"; }

  void write(const std::string& name, const std::string& text) {
    std::ofstream(dir / name, std::ios::binary) << text;
  }

  void prepare(const RunFiles& f = RunFiles{}, const std::string& statusFile = "status.txt") {
    write("orva.ctl", "NameStaFile = " + d() + statusFile + "\nNameWrkDir = " + d() +
                          "\nNameScrDir = " + d() + "\nNameScrExt = scr\nPageWidth = 130\n" +
                          "PageSize = 60\nModelFile = " + SOURCE_DIR + "/tests/data/run/" +
                          f.model + "\n");
    write("modrake.scr", rec("solution expected", f.solution ? "T" : "F") +
                             rec("variable requests", " 1000") +
                             rec("equation requests", f.recordThree) +
                             rec("VARBLOCK", f.varBlock) + rec("EQUBLOCK", f.equBlock) +
                             rec("SCALE", "    0") + rec("LARGELEVEL", "    6") +
                             rec("LARGEMARGINAL", "    6"));
  }

  void run(const std::string& argument) {
    const std::string command = "cd '" + dir.string() + "' && '" + MODRAKE_BIN + "' " +
                                argument + " > log.txt 2> errors.txt";
    const int raw = std::system(command.c_str());
    exitCode = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    std::ifstream errors(dir / "errors.txt");
    std::stringstream text;
    text << errors.rdbuf();
    // Every way out of a run is exit code 0; a sanitizer report would change it.
    EXPECT_EQ(exitCode, 0) << text.str();
    status = readLines(dir / "status.txt");
    log = readLines(dir / "log.txt");
  }
  void run() { run("'" + hostControl.string() + "'"); }
};

// ---- the request loop ------------------------------------------------------------------

TEST_F(ModrakeRun, ProceduresCommentsAndAWordThatIsNoKeyword) {
  prepare();
  write("tiny.mrk", "# check the blocks\nblockpic\n? silent\nnonsense\n  Analysis\n");
  run();
  const std::string comment = pad("    check the blocks", 84);
  EXPECT_EQ(status, (statusHead() + Lines{
                        " ", "  User comments ", " ", comment,
                        " ", " ----#### Executing BLOCKPIC ", "=L#### MODRAKE BLOCKPIC "} +
                        tinyBlockPicStatus(130) +
                        Lines{" ", " ----#### Executing ANALYSIS ", "=L#### MODRAKE ANALYSIS ",
                              " "} +
                        tinyAnalysisStatus() + Lines{"=2"}));
  EXPECT_EQ(log, (opening() + Lines{comment, " ", " #### Executing BLOCKPIC "} + tinyBlockPicLog() +
                  Lines{" CANT MATCH KEYWORD NONSENSE" + std::string(23, ' '), " ",
                        " #### Executing ANALYSIS "} +
                  tinyAnalysisLog() + kLogEnd));
}

TEST_F(ModrakeRun, MissingRequestFileAssumesBlockPicture) {
  prepare();
  run();
  const Lines six = {" Looked but couldnt find input file " + d() + "tiny.mrk",
                     "  If you are using the IDE then make sure",
                     "     your project is in the same directory as ",
                     "     the source file or that the mrk file",
                     "     is in the same directory as the source file",
                     "     using the save as commands"};
  EXPECT_EQ(status, (statusHead() + six + Lines{
                        " ", " Assuming BLOCKPIC is requested",
                        " ", " ----#### Executing BLOCKPIC ", "=L#### MODRAKE BLOCKPIC "} +
                        tinyBlockPicStatus(130) + Lines{"=2"}));
  EXPECT_EQ(log, (opening() + six + Lines{
                     " ", " Assuming BLOCKPIC is requested",
                     " ", " #### Executing BLOCKPIC "} + tinyBlockPicLog() + kLogEnd));
}

TEST_F(ModrakeRun, CommentsOnlyAreEchoedAtTheAssumedBlockPicture) {
  prepare();
  write("tiny.mrk", "# first note\n? silent\n\n   #second NOTE, as typed\n");
  run();
  const std::string first = pad("    first note", 84);
  const std::string second = pad("    second NOTE, as typed", 84);
  EXPECT_EQ(status, (statusHead() + Lines{
                        " Assuming BLOCKPIC is requested",
                        " ", " ----#### Executing BLOCKPIC ", "=L#### MODRAKE BLOCKPIC ",
                        " ", "  User comments ", " ", first, second} +
                        tinyBlockPicStatus(130) + Lines{"=2"}));
  EXPECT_EQ(log, (opening() + Lines{
                     " Assuming BLOCKPIC is requested",
                     " ", " #### Executing BLOCKPIC ", first, second} +
                     tinyBlockPicLog() + kLogEnd));
}

TEST_F(ModrakeRun, TheEndBeforeAnyProcedureStillReadsWhatFollows) {
  prepare();
  write("tiny.mrk", "theend\nBLOCKLIST\n");
  run();
  EXPECT_EQ(status, (statusHead() + Lines{
                        " Assuming BLOCKPIC is requested",
                        " ", " ----#### Executing BLOCKPIC ", "=L#### MODRAKE BLOCKPIC "} +
                        tinyBlockPicStatus(130) +
                        Lines{" ", " ----#### Executing BLOCKLIST ", "=L#### MODRAKE BLOCKLIST ",
                              " "} +
                        tinyBlockListStatus() + Lines{"=2"}));
  EXPECT_EQ(log, (opening() + Lines{
                     " Assuming BLOCKPIC is requested",
                     " ", " #### Executing BLOCKPIC "} + tinyBlockPicLog() +
                     Lines{" ", " #### Executing BLOCKLIST "} + tinyBlockListLog() + kLogEnd));
}

TEST_F(ModrakeRun, TheEndAfterAProcedureEndsTheRun) {
  prepare();
  write("tiny.mrk", "BLOCKLIST\r\nTHEEND\r\n# never echoed\r\nANALYSIS\r\n");
  run();
  EXPECT_EQ(status, (statusHead() + Lines{
                        " ", " ----#### Executing BLOCKLIST ", "=L#### MODRAKE BLOCKLIST ", " "} +
                        tinyBlockListStatus() + Lines{"=2"}));
  EXPECT_EQ(log, (opening() + Lines{" ", " #### Executing BLOCKLIST "} + tinyBlockListLog() +
                     kLogEnd));
}

TEST_F(ModrakeRun, PageWidthLinesAreNoProcedures) {
  prepare();
  write("tiny.mrk", "pw = 20\n");
  run();
  // The width of 20 reaches BLOCKPIC; its tables hold it to 50, where tables C and D take two
  // strips and the heading of table B ends at cell 31.
  EXPECT_EQ(status, (statusHead() + Lines{
                        " Assuming BLOCKPIC is requested",
                        " ", " ----#### Executing BLOCKPIC ", "=L#### MODRAKE BLOCKPIC "} +
                        tinyBlockPicStatus(20) + Lines{"=2"}));
  EXPECT_EQ(log, (opening() + Lines{" Assuming BLOCKPIC is requested", " ",
                                   " #### Executing BLOCKPIC "} +
                     tinyBlockPicLog() + kLogEnd));
}

TEST_F(ModrakeRun, TheEndDirectlyBehindAPageWidthLine) {
  prepare();
  write("tiny.mrk", "ANALYSIS\n$PW=999\n# kept\nTHEEND\nBLOCKPIC\n");
  run();
  // The comment in front of THEEND is echoed when THEEND is read as a keyword line.
  const std::string kept = pad("    kept", 84);
  EXPECT_EQ(status, (statusHead() + Lines{
                        " ", " ----#### Executing ANALYSIS ", "=L#### MODRAKE ANALYSIS ", " "} +
                        tinyAnalysisStatus() + Lines{" ", "  User comments ", " ", kept, "=2"}));
  EXPECT_EQ(log, (opening() + Lines{" ", " #### Executing ANALYSIS "} + tinyAnalysisLog() +
                  Lines{kept} + kLogEnd));
}

TEST_F(ModrakeRun, SectionsAreReadByTheirProcedures) {
  prepare();
  write("tiny.mrk",
        "picture\nvariable\nx\nPW=90\ntheend\n# between\nMATCHIT\nlistvariable\n$postopt\n"
        "equation\ndemand\n");
  run();
  const std::string between = pad("    between", 84);
  EXPECT_EQ(status, (statusHead() + Lines{
                        " ", " ----#### Executing PICTURE  ", "=L#### MODRAKE PICTURE  ",
                        unavailable("PICTURE"),
                        " ", " ----#### Executing MATCHIT ", "=L#### MODRAKE MATCHIT ",
                        " ", "  User comments ", " ", between, unavailable("MATCHIT"),
                        "=1", " ", " ----#### Executing POSTOPT", "=L#### MODRAKE POSTOPT",
                        unavailable("POSTOPT"), " ", "=2"}));
  EXPECT_EQ(log, (opening() + Lines{
                     " ", " #### Executing PICTURE  ", unavailable("PICTURE"),
                     " ", " #### Executing MATCHIT ", between, unavailable("MATCHIT"),
                     " ", " #### Executing POSTOPT", unavailable("POSTOPT")} + kLogEnd));
}

TEST_F(ModrakeRun, PostSolutionProceduresOneAfterTheOther) {
  prepare();
  write("tiny.mrk", "displaycr\nNONOPT\nADVISORYX\n");
  run();
  Lines expectStatus = statusHead();
  Lines expectLog = opening();
  for (const std::string kw : {"DISPLAYCR", "NONOPT", "ADVISORY"}) {
    expectStatus = expectStatus + Lines{"=1", " ", " ----#### Executing " + kw,
                                        "=L#### MODRAKE " + kw, unavailable(kw), " "};
    expectLog = expectLog + Lines{" ", " #### Executing " + kw, unavailable(kw)};
  }
  EXPECT_EQ(status, (expectStatus + Lines{"=2"}));
  EXPECT_EQ(log, expectLog + kLogEnd);
}

TEST_F(ModrakeRun, UnreadableRequestFileAssumesBlockPicture) {
  prepare();
  fs::create_directory(dir / "tiny.mrk");
  run();
  EXPECT_EQ(status, (statusHead() + Lines{
                        " Error encountered reading MRK file", " Assuming BLOCKPIC is requested",
                        " ", " ----#### Executing BLOCKPIC ", "=L#### MODRAKE BLOCKPIC "} +
                        tinyBlockPicStatus(130) + Lines{"=2"}));
  EXPECT_EQ(log, (opening() + Lines{" Error encountered reading MRK file",
                                   " Assuming BLOCKPIC is requested", " ",
                                   " #### Executing BLOCKPIC "} +
                     tinyBlockPicLog() + kLogEnd));
}

TEST_F(ModrakeRun, StatusFileIsAppendedTo) {
  prepare();
  write("status.txt", "an earlier run\n");
  write("tiny.mrk", "BLOCKPIC\n");
  run();
  ASSERT_GT(status.size(), 2u);
  EXPECT_EQ(status.front(), "an earlier run");
  EXPECT_EQ(Lines(status.begin() + 1, status.end()),
            (statusHead() +
             Lines{" ", " ----#### Executing BLOCKPIC ", "=L#### MODRAKE BLOCKPIC "} +
             tinyBlockPicStatus(130) + Lines{"=2"}));
}

TEST_F(ModrakeRun, SymbolOfTenLabelsPasses) {
  RunFiles f;
  f.model = "deep10.json";
  prepare(f);
  write("deep10.mrk", "BLOCKPIC\n");
  run();
  EXPECT_EQ(status, (statusHead() +
                     Lines{" ", " ----#### Executing BLOCKPIC ", "=L#### MODRAKE BLOCKPIC "} +
                     deep10BlockPicStatus() + Lines{"=2"}));
  EXPECT_EQ(log, (opening() + Lines{" ", " #### Executing BLOCKPIC "} + kDeep10BlockPicLog +
                  kLogEnd));
}

TEST_F(ModrakeRun, BlockReportsOfAFlawedModel) {
  RunFiles f;
  f.model = "flaws.json";
  prepare(f);
  write("flaws.mrk", "BLOCKPIC\nBLOCKLIST\n");
  run();
  EXPECT_EQ(status, (statusHead() +
                     Lines{" ", " ----#### Executing BLOCKPIC ", "=L#### MODRAKE BLOCKPIC "} +
                     flawsBlockPicStatus() +
                     Lines{" ", " ----#### Executing BLOCKLIST ", "=L#### MODRAKE BLOCKLIST ",
                           " "} +
                     flawsBlockListStatus() + Lines{"=2"}));
  EXPECT_EQ(log, (opening() + Lines{" ", " #### Executing BLOCKPIC "} + kFlawsFindingsLog +
                  Lines{" ", " #### Executing BLOCKLIST "} + kFlawsFindingsLog + kLogEnd));
}

// A width of 999 is held to 254 by the tables, where each of them still takes one strip and
// no line reaches the width, and items are padded to 130 at most: the report at 130 again.
TEST_F(ModrakeRun, BlockPictureAtAWidthAboveTheLimit) {
  RunFiles f;
  f.model = "flaws.json";
  prepare(f);
  write("flaws.mrk", "PW=999\nBLOCKPIC\n");
  run();
  EXPECT_EQ(status, (statusHead() +
                     Lines{" ", " ----#### Executing BLOCKPIC ", "=L#### MODRAKE BLOCKPIC "} +
                     flawsBlockPicStatus() + Lines{"=2"}));
  EXPECT_EQ(log, (opening() + Lines{" ", " #### Executing BLOCKPIC "} + kFlawsFindingsLog +
                  kLogEnd));
}

// The two reports of ANALYSIS and its scratch file. The DISPLAYCR step that shows the problems
// follows them; its lines are not compared here.
TEST_F(ModrakeRun, AnalysisOfAFlawedModel) {
  RunFiles f;
  f.model = "flaws.json";
  prepare(f);
  write("flaws.mrk", "ANALYSIS\n");
  run();
  const Lines expectStatus =
      statusHead() +
      Lines{" ", " ----#### Executing ANALYSIS ", "=L#### MODRAKE ANALYSIS ", " "} +
      flawsAnalysisStatus();
  ASSERT_GE(status.size(), expectStatus.size());
  EXPECT_EQ(Lines(status.begin(), status.begin() + expectStatus.size()), expectStatus);
  const Lines expectLog = opening() + Lines{" ", " #### Executing ANALYSIS "} + kFlawsAnalysisLog;
  ASSERT_GE(log.size(), expectLog.size());
  EXPECT_EQ(Lines(log.begin(), log.begin() + expectLog.size()), expectLog);
  EXPECT_EQ(readLines(dir / "mrkanal.scr"), kFlawsAnalysisProblems);
}

// ---- stops ---------------------------------------------------------------------------

TEST_F(ModrakeRun, AuditInAnyCaseWritesTheAuditLineOnly) {
  for (const char* word : {"AUDIT", "audit", "Audit"}) {
    run(word);
    EXPECT_EQ(log, (Lines{auditLine()}));
    EXPECT_TRUE(auditLine().starts_with("MODRAKE-B 1.3"));
    EXPECT_FALSE(fs::exists(dir / "status.txt"));
  }
}

TEST_F(ModrakeRun, SymbolOfElevenLabelsStops) {
  RunFiles f;
  f.model = "deep11.json";
  prepare(f);
  write("deep11.mrk", "BLOCKPIC\n");
  run();
  EXPECT_EQ(status, (opening() + kBanner + Lines{
                        "=C*** Maximum symbol dimension of 10 exceeded",
                        "=C*** MODRAKE cannot process symbols with more than 10 dimensions"}));
  EXPECT_EQ(log, (opening() + Lines{
                     " *** Maximum symbol dimension of 10 exceeded",
                     " *** MODRAKE cannot process symbols with more than 10 dimensions"}));
}

TEST_F(ModrakeRun, BlockCapacitiesThatOverflowThePartitionStop) {
  RunFiles f;
  f.varBlock = "50000";
  f.equBlock = "50000";
  prepare(f);
  write("tiny.mrk", "BLOCKPIC\n");
  run();
  const Lines three = {" Overflow of signed integers when partitioning memory.",
                       " Hint: do you have many equation or variable symbols?",
                       "   irblock =   50000  icblock =   50000"};
  EXPECT_EQ(status, statusHead() + three);
  EXPECT_EQ(log, opening() + three);
}

TEST_F(ModrakeRun, MissingControlFileStopsBeforeTheOpeningLines) {
  prepare();
  fs::remove(dir / "modrake.scr");
  run();
  const Lines words = {" *** Could not open control file " + d() + "modrake.scr"};
  EXPECT_EQ(status, words);
  EXPECT_EQ(log, words);
}

TEST_F(ModrakeRun, FaultyControlRecordNamesLineAndColumn) {
  RunFiles f;
  f.recordThree = " 12x ";
  prepare(f);
  run();
  const Lines words = {" *** Could not read control file " + d() + "modrake.scr, line 3: " +
                       "column 34 holds \"x\" in the number of columns 31 to 35"};
  EXPECT_EQ(status, words);
  EXPECT_EQ(log, words);
}

TEST_F(ModrakeRun, StatusFileThatCannotBeCreated) {
  prepare(RunFiles{}, "no/such/folder/status.txt");
  run();
  EXPECT_EQ(log, (Lines{" *** Could not create status file."}));
}

TEST_F(ModrakeRun, HostControlFileThatDoesNotReadStops) {
  write("orva.ctl", "NameStaFile = x\nNoSuchEntry = 1\n");
  run();
  EXPECT_EQ(log, (Lines{" *** Could not initialize environment: " + hostControl.string()}));
  EXPECT_FALSE(fs::exists(dir / "status.txt"));
}

TEST_F(ModrakeRun, ModelThatDoesNotLoadStops) {
  RunFiles f;
  f.model = "no_such_model.json";
  prepare(f);
  run();
  ASSERT_EQ(log.size(), 1u);
  EXPECT_TRUE(log[0].starts_with(" *** Could not load ORVA model data.")) << log[0];
  EXPECT_NE(log[0].find("no_such_model.json"), std::string::npos) << log[0];
  EXPECT_TRUE(fs::exists(dir / "status.txt"));
  EXPECT_TRUE(status.empty());
}

}  // namespace
