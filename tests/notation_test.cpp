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

// A template, its values and the lines they give.
struct Case {
  const char* tmpl;
  std::vector<FmtValue> values;
  Lines expected;
};

void expectCases(const std::vector<Case>& cases) {
  for (const Case& c : cases) EXPECT_EQ(formatTemplate(c.tmpl, c.values), c.expected) << c.tmpl;
}

TEST(NotationLiterals, Cases) {
  expectCases({
      // Outer parentheses write nothing.
      {"(1X,'abc')", {}, {" abc"}},
      {"1X,'abc'", {}, {" abc"}},
      {"( 1X , 'abc' )", {}, {" abc"}},
      // Doubled apostrophe is one.
      {"('It''s',1X,'''q''')", {}, {"It's 'q'"}},
      // Parentheses and commas inside a literal are text.
      {"('(a,b)')", {}, {"(a,b)"}},
      // Column one is printed as is.
      {"(A2)", {"=1"}, {"=1"}},
      {"('1abc')", {}, {"1abc"}},
      {"(A)", {"=L#### MODRAKE PICTURE  "}, {"=L#### MODRAKE PICTURE  "}},
      // Blanks and slashes.
      {"(I2,3X,I2)", {1, 2}, {" 1    2"}},
      {"(4X,A)", {"note"}, {"    note"}},
      {"('a',/,'b')", {}, {"a", "b"}},
      {"('a'/'b')", {}, {"a", "b"}},
      // A slash at the head gives an empty line before the text, one at the tail one after it.
      {"(/,1X,A,/)", {"audit line"}, {"", " audit line", ""}},
      {"(/,1X,'a')", {}, {"", " a"}},
      {"(1X,'a',/)", {}, {" a", ""}},
      {"(1X,'a',2/,'b')", {}, {" a", "", "b"}},
  });
}

TEST(NotationIntegers, Cases) {
  expectCases({
      // Right justified.
      {"(I5)", {42}, {"   42"}},
      {"(I5)", {-42}, {"  -42"}},
      {"(I1)", {0}, {"0"}},
      {"(I12)", {2147483647}, {"  2147483647"}},
      {"(I5)", {99999}, {"99999"}},
      // A real through I is rounded to the nearest whole number.
      {"(I5)", {2.5}, {"    3"}},
      // Too wide fills the field with asterisks; the next field starts in its usual column.
      {"(I5,I3)", {123456, 7}, {"*****  7"}},
      {"(1X,I4,'|')", {-1234}, {" ****|"}},
      {"(I3,I3)", {1000, -99}, {"***-99"}},
  });
}

TEST(NotationRepeat, Cases) {
  expectCases({
      // Counts and values in order.
      {"(3I4)", {1, 2, 3}, {"   1   2   3"}},
      {"(2A3,2F5.1)", {"a", "b", 1.0, 2.0}, {"  a  b  1.0  2.0"}},
      // Count above the values prints only the values.
      {"(1X,10I3)", {1, 2}, {"   1  2"}},
      {"(1X,10I3)", {}, {" "}},
      // Label and five numbers.
      {"(1X,A10,' |',I7,34I8)", {"SUPPLY", 1, 22, 333, 4444, 55555},
       {"     SUPPLY |      1      22     333    4444   55555"}},
  });
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

TEST(NotationStop, Cases) {
  expectCases({
      // Text ahead of the missing value is written text behind not.
      {"(1X,'x=',I3,' y=',I3,' end')", {5}, {" x=  5 y="}},
      {"(I3,' a',2X,I3,' b')", {1}, {"  1 a  "}},
      // A slash ahead of the missing value ends its line, and the next one is ended empty.
      {"(A,/,A)", {"one"}, {"one", ""}},
      // No value at all: the line holds the text up to the first item that needs one.
      {"(1X,'Count:',I5)", {}, {" Count:"}},
  });
}

TEST(NotationRestart, Cases) {
  expectCases({
      // From the head without groups.
      {"(1X,I2,I2)", {1, 2, 3, 4, 5}, {"  1 2", "  3 4", "  5"}},
      // Exactly as many values as items: no extra line.
      {"(1X,5I2)", {1, 2, 3, 4, 5}, {"  1 2 3 4 5"}},
      // From the last outermost group.
      {"(1X,'head',2(I3))", {1, 2, 3, 4, 5}, {" head  1  2", "  3  4", "  5"}},
      {"(1X,2(I2),'|',3(I2))", {1, 2, 3, 4, 5, 6, 7}, {"  1 2| 3 4 5", " 6 7"}},
      // The items behind the group belong to each pass after the restart.
      {"(A,2(I2,1X),I3)", {"t", 1, 2, 3, 4, 5, 6}, {"t 1  2   3", " 4  5   6"}},
      // An inner group is not where the template starts again: the outer one is.
      {"(1X,2(I2,2(I1)))", {1, 2, 3, 4, 5, 6, 7, 8}, {"  123 456", " 78"}},
      {"(1X,'a',2(I2,'b'),'c')", {1, 2, 3, 4, 5, 6}, {" a 1b 2bc", " 3b 4bc", " 5b 6bc"}},
  });
}

TEST(NotationText, Cases) {
  static_assert(sizeof "SUPPLY_AT_THE_PLANTS_OF_SEATTLE" == 32, "a name of 31 characters");
  expectCases({
      // Width cuts or right-justifies.
      {"(A3)", {"x"}, {"  x"}},
      {"(A3)", {"abcdef"}, {"abc"}},
      {"(A3)", {"abc"}, {"abc"}},
      {"(A3,'|')", {""}, {"   |"}},
      {"(1X,A16,1X,A3)", {"SUPPLY_AT_THE_PLANTS_OF_SEATTLE", "=L="}, {" SUPPLY_AT_THE_PL =L="}},
      // A keeps the full stored length, trailing blanks included.
      {"(A,'|')", {"ab  "}, {"ab  |"}},
  });
}

TEST(NotationFixed, Cases) {
  expectCases({
      // Rounds halves away from zero.
      {"(F4.0)", {2.5}, {"  3."}},
      {"(F4.0)", {3.5}, {"  4."}},
      {"(F5.2)", {0.125}, {" 0.13"}},
      {"(F5.2)", {-0.125}, {"-0.13"}},
      {"(F4.1)", {0.25}, {" 0.3"}},
      {"(F5.0)", {-2.5}, {"  -3."}},
      // Rounds the value held not its decimal spelling.
      // 1.005 is held as 1.00499999999999989..., 0.35 as 0.34999999999999997...,
      // 0.05 as 0.05000000000000000277...
      {"(F5.2)", {1.005}, {" 1.00"}},
      {"(F4.1)", {0.35}, {" 0.3"}},
      {"(F4.1)", {0.05}, {" 0.1"}},
      {"(F10.4)", {1234.56789}, {" 1234.5679"}},
      // Carry into a new digit.
      {"(F6.1)", {9.96}, {"  10.0"}},
      {"(F4.1)", {99.95}, {"****"}},  // 100.0 needs five columns
      {"(F5.1)", {-9.96}, {"-10.0"}},
      {"(F5.1)", {-9.95}, {" -9.9"}},  // -9.95 is -9.949999...
      // Leading zero only when there is room.
      {"(F4.2)", {0.5}, {"0.50"}},
      {"(F3.2)", {0.5}, {".50"}},
      {"(F5.2)", {-0.5}, {"-0.50"}},
      {"(F4.2)", {-0.5}, {"-.50"}},
      {"(F3.2)", {-0.5}, {"***"}},
      {"(F4.0)", {0.4}, {"  0."}},
      // Negative values.
      {"(F8.3)", {-12.3456}, {" -12.346"}},
      {"(F7.3)", {-12.3456}, {"-12.346"}},
      {"(F6.3)", {-12.3456}, {"******"}},
      // Negative rounding to zero keeps its sign.
      {"(F5.2)", {-0.001}, {"-0.00"}},
      {"(F4.2)", {-0.001}, {"-.00"}},
      {"(F5.0)", {-0.4}, {"  -0."}},
      // A zero has no sign, whatever its bits.
      {"(F5.2)", {-0.0}, {" 0.00"}},
      {"(F5.2)", {0.0}, {" 0.00"}},
      // Whole numbers too large and not numbers.
      {"(F6.2)", {3}, {"  3.00"}},
      {"(F6.2)", {1234.567}, {"******"}},
      {"(F8.2)", {1234.567}, {" 1234.57"}},
      {"(F10.2,'|')", {3e300}, {"**********|"}},
      {"(F5.1)", {std::nan("")}, {"*****"}},
      {"(F5.1)", {-HUGE_VAL}, {"*****"}},
  });
}

TEST(NotationExponent, Cases) {
  expectCases({
      // Infinity values have no letter E.
      {"(E16.5)", {3e+300}, {"     0.30000+301"}},
      {"(E16.5)", {4e+300}, {"     0.40000+301"}},
      {"(E16.5)", {-3e+300}, {"    -0.30000+301"}},
      // Ordinary values.
      {"(E12.5)", {1234.5}, {" 0.12345E+04"}},
      {"(E10.3)", {1.0}, {" 0.100E+01"}},
      {"(E12.5)", {0.1}, {" 0.10000E+00"}},
      {"(E12.5)", {0.000123456}, {" 0.12346E-03"}},
      {"(E12.5)", {125}, {" 0.12500E+03"}},
      // Zero and negatives.
      {"(E12.5)", {0.0}, {" 0.00000E+00"}},
      {"(E12.5)", {-0.0}, {" 0.00000E+00"}},
      {"(E12.5)", {-2.0}, {"-0.20000E+01"}},
      {"(E13.5)", {-0.00731}, {" -0.73100E-02"}},
      // Rounds halves away from zero and carries.
      {"(E12.4)", {-1234.5}, {" -0.1235E+04"}},
      {"(E10.2)", {125}, {"  0.13E+03"}},
      {"(E10.2)", {-125}, {" -0.13E+03"}},
      {"(E10.2)", {0.125}, {"  0.13E+00"}},
      {"(E10.2)", {0.995}, {"  0.99E+00"}},  // 0.99499999...
      {"(E10.3)", {9999.6}, {" 0.100E+05"}},
      // Exponents around minus one hundred.
      {"(E12.5)", {1e-100}, {" 0.10000E-99"}},
      {"(E12.5)", {1e-101}, {" 0.10000-100"}},
      {"(E12.5)", {-2.5e-101}, {"-0.25000-100"}},
      // Rounding up carries 0.99999|96E-99 into the next exponent.
      {"(E12.5)", {9.999996e-100}, {" 0.10000E-98"}},
      {"(E12.5)", {1e+99}, {" 0.10000+100"}},
      {"(E12.5)", {4.9406564584124654e-324}, {" 0.49407-323"}},
      // Narrow fields.
      {"(E11.5)", {-1.0}, {"-.10000E+01"}},
      {"(E10.5,'|')", {-1.0}, {"**********|"}},
      {"(E8.2)", {std::nan("")}, {"********"}},
  });
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
  expectCases({
      {"(1X,'ab',Q5,I3)", {1}, {" ab"}},
      {"(1X,'abc", {}, {" "}},
      {"(1X,2(I2,'x')", {1, 2}, {"  1x 2x"}},
      {"(I5)", {"text"}, {"*****"}},
  });
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
