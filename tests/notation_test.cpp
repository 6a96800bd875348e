// The report notation: every expected line below is worked out by hand from the rules of the
// notation, column for column.

#include "base/notation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

namespace {

using Lines = std::vector<std::string>;

// Clears the strict switch for the duration of a test that feeds faulty templates.
struct LenientNotation {
  LenientNotation() { notationStrict = false; }
  ~LenientNotation() { notationStrict = true; }
};

TEST(NotationLiterals, OuterParenthesesWriteNothing) {
  EXPECT_EQ(formatTemplate("(1X,'abc')"), Lines{" abc"});
  EXPECT_EQ(formatTemplate("1X,'abc'"), Lines{" abc"});
  EXPECT_EQ(formatTemplate("( 1X , 'abc' )"), Lines{" abc"});
}

TEST(NotationLiterals, DoubledApostropheIsOne) {
  EXPECT_EQ(formatTemplate("('It''s',1X,'''q''')"), Lines{"It's 'q'"});
  // Parentheses and commas inside a literal are text.
  EXPECT_EQ(formatTemplate("('(a,b)')"), Lines{"(a,b)"});
}

TEST(NotationLiterals, ColumnOneIsPrintedAsIs) {
  EXPECT_EQ(formatTemplate("(A2)", {"=1"}), Lines{"=1"});
  EXPECT_EQ(formatTemplate("('1abc')"), Lines{"1abc"});
  EXPECT_EQ(formatTemplate("(A)", {"=L#### MODRAKE PICTURE  "}), Lines{"=L#### MODRAKE PICTURE  "});
}

TEST(NotationLiterals, BlanksAndSlashes) {
  EXPECT_EQ(formatTemplate("(I2,3X,I2)", {1, 2}), Lines{" 1    2"});
  EXPECT_EQ(formatTemplate("(4X,A)", {"note"}), Lines{"    note"});
  EXPECT_EQ(formatTemplate("('a',/,'b')"), (Lines{"a", "b"}));
  EXPECT_EQ(formatTemplate("('a'/'b')"), (Lines{"a", "b"}));
  // A slash at the head gives an empty line before the text, one at the tail one after it.
  EXPECT_EQ(formatTemplate("(/,1X,A,/)", {"audit line"}), (Lines{"", " audit line", ""}));
  EXPECT_EQ(formatTemplate("(/,1X,'a')"), (Lines{"", " a"}));
  EXPECT_EQ(formatTemplate("(1X,'a',/)"), (Lines{" a", ""}));
  EXPECT_EQ(formatTemplate("(1X,'a',2/,'b')"), (Lines{" a", "", "b"}));
}

TEST(NotationIntegers, RightJustified) {
  EXPECT_EQ(formatTemplate("(I5)", {42}), Lines{"   42"});
  EXPECT_EQ(formatTemplate("(I5)", {-42}), Lines{"  -42"});
  EXPECT_EQ(formatTemplate("(I1)", {0}), Lines{"0"});
  EXPECT_EQ(formatTemplate("(I12)", {2147483647}), Lines{"  2147483647"});
  EXPECT_EQ(formatTemplate("(I5)", {99999}), Lines{"99999"});
  // A real through I is rounded to the nearest whole number.
  EXPECT_EQ(formatTemplate("(I5)", {2.5}), Lines{"    3"});
}

TEST(NotationIntegers, TooWideFillsTheFieldWithAsterisks) {
  // The next field starts in its usual column.
  EXPECT_EQ(formatTemplate("(I5,I3)", {123456, 7}), Lines{"*****  7"});
  EXPECT_EQ(formatTemplate("(1X,I4,'|')", {-1234}), Lines{" ****|"});
  EXPECT_EQ(formatTemplate("(I3,I3)", {1000, -99}), Lines{"***-99"});
}

TEST(NotationRepeat, CountsAndValuesInOrder) {
  EXPECT_EQ(formatTemplate("(3I4)", {1, 2, 3}), Lines{"   1   2   3"});
  EXPECT_EQ(formatTemplate("(2A3,2F5.1)", {"a", "b", 1.0, 2.0}), Lines{"  a  b  1.0  2.0"});
}

TEST(NotationRepeat, CountAboveTheValuesPrintsOnlyTheValues) {
  EXPECT_EQ(formatTemplate("(1X,10I3)", {1, 2}), Lines{"   1  2"});
  EXPECT_EQ(formatTemplate("(1X,10I3)"), Lines{" "});
}

TEST(NotationRepeat, OneCharacterTextsThroughA) {
  std::vector<FmtValue> values;
  std::string expected = " ";
  for (int k = 0; k < 60; ++k) {
    const char* text = (k % 2 == 0) ? "+" : "-";
    values.emplace_back(text);
    expected += text;
  }
  const Lines lines = formatTemplate("(1X,254A)", values);
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].size(), 61u);
  EXPECT_EQ(lines[0], expected);
}

TEST(NotationRepeat, LabelAndFiveNumbers) {
  EXPECT_EQ(formatTemplate("(1X,A10,' |',I7,34I8)", {"SUPPLY", 1, 22, 333, 4444, 55555}),
            Lines{"     SUPPLY |      1      22     333    4444   55555"});
}

TEST(NotationStop, TextAheadOfTheMissingValueIsWrittenTextBehindNot) {
  EXPECT_EQ(formatTemplate("(1X,'x=',I3,' y=',I3,' end')", {5}), Lines{" x=  5 y="});
  EXPECT_EQ(formatTemplate("(I3,' a',2X,I3,' b')", {1}), Lines{"  1 a  "});
  // A slash ahead of the missing value ends its line, and the next one is ended empty.
  EXPECT_EQ(formatTemplate("(A,/,A)", {"one"}), (Lines{"one", ""}));
  // No value at all: the line holds the text up to the first item that needs one.
  EXPECT_EQ(formatTemplate("(1X,'Count:',I5)"), Lines{" Count:"});
}

TEST(NotationRestart, FromTheHeadWithoutGroups) {
  EXPECT_EQ(formatTemplate("(1X,I2,I2)", {1, 2, 3, 4, 5}), (Lines{"  1 2", "  3 4", "  5"}));
  // Exactly as many values as items: no extra line.
  EXPECT_EQ(formatTemplate("(1X,5I2)", {1, 2, 3, 4, 5}), Lines{"  1 2 3 4 5"});
}

TEST(NotationRestart, FromTheLastOutermostGroup) {
  EXPECT_EQ(formatTemplate("(1X,'head',2(I3))", {1, 2, 3, 4, 5}),
            (Lines{" head  1  2", "  3  4", "  5"}));
  EXPECT_EQ(formatTemplate("(1X,2(I2),'|',3(I2))", {1, 2, 3, 4, 5, 6, 7}),
            (Lines{"  1 2| 3 4 5", " 6 7"}));
  // The items behind the group belong to each pass after the restart.
  EXPECT_EQ(formatTemplate("(A,2(I2,1X),I3)", {"t", 1, 2, 3, 4, 5, 6}),
            (Lines{"t 1  2   3", " 4  5   6"}));
  // An inner group is not where the template starts again: the outer one is.
  EXPECT_EQ(formatTemplate("(1X,2(I2,2(I1)))", {1, 2, 3, 4, 5, 6, 7, 8}),
            (Lines{"  123 456", " 78"}));
  EXPECT_EQ(formatTemplate("(1X,'a',2(I2,'b'),'c')", {1, 2, 3, 4, 5, 6}),
            (Lines{" a 1b 2bc", " 3b 4bc", " 5b 6bc"}));
}

TEST(NotationText, WidthCutsOrRightJustifies) {
  EXPECT_EQ(formatTemplate("(A3)", {"x"}), Lines{"  x"});
  EXPECT_EQ(formatTemplate("(A3)", {"abcdef"}), Lines{"abc"});
  EXPECT_EQ(formatTemplate("(A3)", {"abc"}), Lines{"abc"});
  EXPECT_EQ(formatTemplate("(A3,'|')", {""}), Lines{"   |"});
  const std::string name31 = "SUPPLY_AT_THE_PLANTS_OF_SEATTLE";
  ASSERT_EQ(name31.size(), 31u);
  EXPECT_EQ(formatTemplate("(1X,A16,1X,A3)", {name31, "=L="}), Lines{" SUPPLY_AT_THE_PL =L="});
  // A keeps the full stored length, trailing blanks included.
  EXPECT_EQ(formatTemplate("(A,'|')", {"ab  "}), Lines{"ab  |"});
}

TEST(NotationFixed, RoundsHalvesAwayFromZero) {
  EXPECT_EQ(formatTemplate("(F4.0)", {2.5}), Lines{"  3."});
  EXPECT_EQ(formatTemplate("(F4.0)", {3.5}), Lines{"  4."});
  EXPECT_EQ(formatTemplate("(F5.2)", {0.125}), Lines{" 0.13"});
  EXPECT_EQ(formatTemplate("(F5.2)", {-0.125}), Lines{"-0.13"});
  EXPECT_EQ(formatTemplate("(F4.1)", {0.25}), Lines{" 0.3"});
  EXPECT_EQ(formatTemplate("(F5.0)", {-2.5}), Lines{"  -3."});
}

TEST(NotationFixed, RoundsTheValueHeldNotItsDecimalSpelling) {
  // 1.005 is held as 1.00499999999999989..., 0.35 as 0.34999999999999997...,
  // 0.05 as 0.05000000000000000277...
  EXPECT_EQ(formatTemplate("(F5.2)", {1.005}), Lines{" 1.00"});
  EXPECT_EQ(formatTemplate("(F4.1)", {0.35}), Lines{" 0.3"});
  EXPECT_EQ(formatTemplate("(F4.1)", {0.05}), Lines{" 0.1"});
  EXPECT_EQ(formatTemplate("(F10.4)", {1234.56789}), Lines{" 1234.5679"});
}

TEST(NotationFixed, CarryIntoANewDigit) {
  EXPECT_EQ(formatTemplate("(F6.1)", {9.96}), Lines{"  10.0"});
  EXPECT_EQ(formatTemplate("(F4.1)", {99.95}), Lines{"****"});  // 100.0 needs five columns
  EXPECT_EQ(formatTemplate("(F5.1)", {-9.96}), Lines{"-10.0"});
  EXPECT_EQ(formatTemplate("(F5.1)", {-9.95}), Lines{" -9.9"});  // -9.95 is -9.949999...
}

TEST(NotationFixed, LeadingZeroOnlyWhenThereIsRoom) {
  EXPECT_EQ(formatTemplate("(F4.2)", {0.5}), Lines{"0.50"});
  EXPECT_EQ(formatTemplate("(F3.2)", {0.5}), Lines{".50"});
  EXPECT_EQ(formatTemplate("(F5.2)", {-0.5}), Lines{"-0.50"});
  EXPECT_EQ(formatTemplate("(F4.2)", {-0.5}), Lines{"-.50"});
  EXPECT_EQ(formatTemplate("(F3.2)", {-0.5}), Lines{"***"});
  EXPECT_EQ(formatTemplate("(F4.0)", {0.4}), Lines{"  0."});
}

TEST(NotationFixed, NegativeValues) {
  EXPECT_EQ(formatTemplate("(F8.3)", {-12.3456}), Lines{" -12.346"});
  EXPECT_EQ(formatTemplate("(F7.3)", {-12.3456}), Lines{"-12.346"});
  EXPECT_EQ(formatTemplate("(F6.3)", {-12.3456}), Lines{"******"});
}

TEST(NotationFixed, NegativeRoundingToZeroKeepsItsSign) {
  EXPECT_EQ(formatTemplate("(F5.2)", {-0.001}), Lines{"-0.00"});
  EXPECT_EQ(formatTemplate("(F4.2)", {-0.001}), Lines{"-.00"});
  EXPECT_EQ(formatTemplate("(F5.0)", {-0.4}), Lines{"  -0."});
  // A zero has no sign, whatever its bits.
  EXPECT_EQ(formatTemplate("(F5.2)", {-0.0}), Lines{" 0.00"});
  EXPECT_EQ(formatTemplate("(F5.2)", {0.0}), Lines{" 0.00"});
}

TEST(NotationFixed, WholeNumbersTooLargeAndNotNumbers) {
  EXPECT_EQ(formatTemplate("(F6.2)", {3}), Lines{"  3.00"});
  EXPECT_EQ(formatTemplate("(F6.2)", {1234.567}), Lines{"******"});
  EXPECT_EQ(formatTemplate("(F8.2)", {1234.567}), Lines{" 1234.57"});
  EXPECT_EQ(formatTemplate("(F10.2,'|')", {3e300}), Lines{"**********|"});
  EXPECT_EQ(formatTemplate("(F5.1)", {std::nan("")}), Lines{"*****"});
  EXPECT_EQ(formatTemplate("(F5.1)", {-HUGE_VAL}), Lines{"*****"});
}

TEST(NotationExponent, InfinityValuesHaveNoLetterE) {
  EXPECT_EQ(formatTemplate("(E16.5)", {3e+300}), Lines{"     0.30000+301"});
  EXPECT_EQ(formatTemplate("(E16.5)", {4e+300}), Lines{"     0.40000+301"});
  EXPECT_EQ(formatTemplate("(E16.5)", {-3e+300}), Lines{"    -0.30000+301"});
}

TEST(NotationExponent, OrdinaryValues) {
  EXPECT_EQ(formatTemplate("(E12.5)", {1234.5}), Lines{" 0.12345E+04"});
  EXPECT_EQ(formatTemplate("(E10.3)", {1.0}), Lines{" 0.100E+01"});
  EXPECT_EQ(formatTemplate("(E12.5)", {0.1}), Lines{" 0.10000E+00"});
  EXPECT_EQ(formatTemplate("(E12.5)", {0.000123456}), Lines{" 0.12346E-03"});
  EXPECT_EQ(formatTemplate("(E12.5)", {125}), Lines{" 0.12500E+03"});
}

TEST(NotationExponent, ZeroAndNegatives) {
  EXPECT_EQ(formatTemplate("(E12.5)", {0.0}), Lines{" 0.00000E+00"});
  EXPECT_EQ(formatTemplate("(E12.5)", {-0.0}), Lines{" 0.00000E+00"});
  EXPECT_EQ(formatTemplate("(E12.5)", {-2.0}), Lines{"-0.20000E+01"});
  EXPECT_EQ(formatTemplate("(E13.5)", {-0.00731}), Lines{" -0.73100E-02"});
}

TEST(NotationExponent, RoundsHalvesAwayFromZeroAndCarries) {
  EXPECT_EQ(formatTemplate("(E12.4)", {-1234.5}), Lines{" -0.1235E+04"});
  EXPECT_EQ(formatTemplate("(E10.2)", {125}), Lines{"  0.13E+03"});
  EXPECT_EQ(formatTemplate("(E10.2)", {-125}), Lines{" -0.13E+03"});
  EXPECT_EQ(formatTemplate("(E10.2)", {0.125}), Lines{"  0.13E+00"});
  EXPECT_EQ(formatTemplate("(E10.2)", {0.995}), Lines{"  0.99E+00"});  // 0.99499999...
  EXPECT_EQ(formatTemplate("(E10.3)", {9999.6}), Lines{" 0.100E+05"});
}

TEST(NotationExponent, ExponentsAroundMinusOneHundred) {
  EXPECT_EQ(formatTemplate("(E12.5)", {1e-100}), Lines{" 0.10000E-99"});
  EXPECT_EQ(formatTemplate("(E12.5)", {1e-101}), Lines{" 0.10000-100"});
  EXPECT_EQ(formatTemplate("(E12.5)", {-2.5e-101}), Lines{"-0.25000-100"});
  // Rounding up carries 0.99999|96E-99 into the next exponent.
  EXPECT_EQ(formatTemplate("(E12.5)", {9.999996e-100}), Lines{" 0.10000E-98"});
  EXPECT_EQ(formatTemplate("(E12.5)", {1e+99}), Lines{" 0.10000+100"});
  EXPECT_EQ(formatTemplate("(E12.5)", {4.9406564584124654e-324}), Lines{" 0.49407-323"});
}

TEST(NotationExponent, NarrowFields) {
  EXPECT_EQ(formatTemplate("(E11.5)", {-1.0}), Lines{"-.10000E+01"});
  EXPECT_EQ(formatTemplate("(E10.5,'|')", {-1.0}), Lines{"**********|"});
  EXPECT_EQ(formatTemplate("(E8.2)", {std::nan("")}), Lines{"********"});
}

TEST(NotationFree, OneBlankThenTheItems) {
  EXPECT_EQ(formatFree({}), " ");
  EXPECT_EQ(formatFree({"#### Executing MODRAKE 1.3 Body"}), " #### Executing MODRAKE 1.3 Body");
  EXPECT_EQ(formatFree({"ab  ", "cd"}), " ab  cd");
  EXPECT_EQ(formatFree({"     Maximum is ", 1000, "Fatal error"}),
            "      Maximum is 1000Fatal error");
  EXPECT_EQ(formatFree({-7, 2.5}), " -72.5");
}

TEST(NotationChannels, LinesAndFiles) {
  std::vector<std::string> lines;
  Channel memory;
  memory.lines = &lines;
  writeLine(memory, "(1X,I3,/,1X,A)", {5, "x"});
  writeFree(memory, {"free"});
  writeRaw(memory, "=2");
  EXPECT_EQ(lines, (Lines{"   5", " x", " free", "=2"}));

  std::FILE* f = std::tmpfile();
  ASSERT_NE(f, nullptr);
  Channel file;
  file.file = f;
  writeLine(file, "(/,1X,A,/)", {"audit"});
  writeFree(file);
  std::rewind(f);
  char buf[64] = {};
  const size_t n = std::fread(buf, 1, sizeof buf - 1, f);
  std::fclose(f);
  EXPECT_EQ(std::string(buf, n), "\n audit\n\n \n");
}

TEST(NotationTemplates, ReportTemplatesAreWellFormed) {
  for (const char* t :
       {"(1X,A16,1X,A3,1X,5I5,3X,F10.4,1X,F10.4)", "/,1X,A,/", "(4X,A)", "1X,254A",
        "1X,A10,' |',I7,34I8", "('Number of variable requests too large',/,1X,'    Maximum is ',I4,/,1X,'**** Fatal error in MODRAKE')",
        "(1X,'  irblock =',I8,'  icblock =',I8)", "(1X,2(I2),'|',3(I2))", "(A,/,A)", "(E16.5)",
        "(2/)", "()", "", "(1X,'it''s')"}) {
    EXPECT_TRUE(templateIsWellFormed(t)) << t;
  }
}

TEST(NotationTemplates, MalformedTemplatesAreRecognised) {
  for (const char* t : {"(I)", "(F5)", "(F5.)", "(E8.0)", "(A0)", "(Q5)", "(1X,'abc", "(2(I3)",
                        "(I3))", "(I3,,I3)", "(,I3)", "(I3,)", "(0I3)", "(I3 I3)", "(3'ab')",
                        "(I3,())", "(5)"}) {
    EXPECT_FALSE(templateIsWellFormed(t)) << t;
  }
}

TEST(NotationTemplates, MalformedTemplateAssertsInDebugBuilds) {
  EXPECT_DEBUG_DEATH(formatTemplate("(1X,Q5)"), "malformed report template");
  EXPECT_DEBUG_DEATH(formatTemplate("(I5)", {"text"}), "kinds differ");
}

TEST(NotationTemplates, MalformedTemplateWritesUpToItsFault) {
  LenientNotation lenient;
  EXPECT_EQ(formatTemplate("(1X,'ab',Q5,I3)", {1}), Lines{" ab"});
  EXPECT_EQ(formatTemplate("(1X,'abc"), Lines{" "});
  EXPECT_EQ(formatTemplate("(1X,2(I2,'x')", {1, 2}), Lines{"  1x 2x"});
  EXPECT_EQ(formatTemplate("(I5)", {"text"}), Lines{"*****"});
}

// Random templates from the notation's own characters, and random values: whatever comes in,
// the interpreter stays inside its buffers (the sanitizer build checks that) and never loops.
TEST(NotationTemplates, NestedRepeatsWithoutValuesAreCut) {
  LenientNotation lenient;
  const Lines lines = formatTemplate("(9999(9999(9999X)))");
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_LT(lines[0].size(), 2000000u);
}

TEST(NotationTemplates, RandomTemplatesStayInBounds) {
  LenientNotation lenient;
  std::mt19937 rng(12345);
  const std::string alphabet = "IFEAX/(),.'0123456789 ia";
  std::uniform_int_distribution<size_t> pick(0, alphabet.size() - 1);
  std::uniform_int_distribution<int> length(0, 24);
  std::uniform_int_distribution<int> kind(0, 2);
  const double reals[] = {0.0, -0.0, 2.5, -1e-300, 3e300, 1e-320, std::nan(""), HUGE_VAL, 0.125};
  const char* texts[] = {"", "x", "a much longer text than any field"};
  for (int trial = 0; trial < 20000; ++trial) {
    std::string t;
    const int len = length(rng);
    for (int k = 0; k < len; ++k) t += alphabet[pick(rng)];
    std::vector<FmtValue> values;
    const int count = length(rng) % 8;
    for (int k = 0; k < count; ++k) {
      switch (kind(rng)) {
        case 0: values.emplace_back(static_cast<long long>(rng()) - 2147483648LL); break;
        case 1: values.emplace_back(reals[rng() % 9]); break;
        default: values.emplace_back(texts[rng() % 3]); break;
      }
    }
    const Lines lines = formatTemplate(t, values);
    ASSERT_FALSE(lines.empty()) << t;
    size_t total = 0;
    for (const std::string& l : lines) total += l.size();
    ASSERT_LT(total, 20000000u) << t;
  }
}

}  // namespace
