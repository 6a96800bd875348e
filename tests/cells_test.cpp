// Cells of the block tables: putCount and putReal.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "pictures/cells.h"

namespace {

// Cells first..last of a plane as text.
std::string cells(const CellLine& line, int32_t plane, int32_t first, int32_t last) {
  std::string s;
  for (int32_t c = first; c <= last; ++c) s += cellAt(line, plane, c);
  return s;
}

std::string plain4(double v) { return realCellText(v, 0, 4, 0.0, 0.0, 0); }

constexpr double kUpper = 1000.0;
constexpr double kLower = 0.0010000000474974513;

std::string averageText(double v, int32_t sign) {
  return realCellText(v, sign, 4, kUpper, kLower, 1);
}

}  // namespace

TEST(PutReal, FourDigitForms) {
  const std::pair<double, const char*> plain[] = {
      {12.345, "12.35"}, {1200, "1200"}, {7.5, "7.5"}, {3, "3"}, {1234, "1234"},
      {33.33333, "33.3"},  // log10 rounds up: one digit less
      {2000, "2000"}, {10, "10"}, {1.5, "1.5"},
      // Below 1: leading zero only while the text is shorter than digits + 1.
      {0.25, "0.25"}, {0.001, "0.001"}, {0.0012, ".0012"}, {0.1234, ".1234"}, {0.0001, ".0001"},
      // Exponent forms.
      {9999, "1.E+04"}, {12345, "1.235E+04"}, {1e6, "1.E+06"}, {1e5, "1.E+05"},
      {0.00012, "1.2E-04"},
      // An exponent beyond two digits shows 99.
      {1e150, "1.E+99"}, {1e-150, "1.E-99"}, {2.5e300, "2.5E+99"},
      {5e-324, "4.94E-99"},  // the smallest double, far outside single precision
  };
  for (const auto& [value, text] : plain) EXPECT_EQ(plain4(value), text) << value;
}

TEST(PutReal, CapsMarksAndSigns) {
  const struct {
    double value;
    int32_t sign;
    const char* text;
  } cases[] = {
      {999.9, 1, "1000+"},    // rounds to the cap without a mark
      {1000.5, 1, ">1000+"},  // the cap with its mark
      {2500, -1, ">1000-"},
      {0.0004, 1, "<0.001+"},  // below the lower cap
      {0.002, 1, "0.002+"},  {1.0 / 3.0, 1, "0.333+"}, {0.00123, 1, "1.23E-03+"}, {0.0, 1, ""},
  };
  for (const auto& c : cases) EXPECT_EQ(averageText(c.value, c.sign), c.text) << c.value;
}

TEST(PutReal, RightAlignedIntoCells) {
  CellLine line;
  cellLineClear(line, 40);
  for (int32_t c = 1; c <= 12; ++c) cellPut(line, 1, c, '#');
  putReal(line, 1, 1, 10, 2.5, 0, 4, 0.0, 0.0, 0);
  // Cells pos+1..pos+9 are the field; pos itself is not touched.
  EXPECT_EQ(cells(line, 1, 1, 12), "#      2.5##");

  // Zero writes nothing at all.
  putReal(line, 1, 1, 10, 0.0, 0, 4, 0.0, 0.0, 0);
  EXPECT_EQ(cells(line, 1, 1, 12), "#      2.5##");

  // A text longer than width - 1 loses its left end: 1.23E-03+ in a field of 8.
  cellLineClear(line, 40);
  putReal(line, 2, 1, 8, 0.00123, 1, 4, kUpper, kLower, 1);
  EXPECT_EQ(cells(line, 2, 1, 8), " 23E-03+");
  EXPECT_EQ(cells(line, 1, 1, 8), "        ");  // the other plane stays blank
}

TEST(PutCount, DigitsSignAndCap) {
  CellLine line;
  cellLineClear(line, 60);
  putCount(line, 1, 1, 6, 12, 1);
  EXPECT_EQ(cells(line, 1, 1, 6), "   12+");
  putCount(line, 1, 7, 6, 12345, 1);  // capped at 10^4 - 1
  EXPECT_EQ(cells(line, 1, 7, 12), " 9999+");
  putCount(line, 1, 13, 6, 10000, -1);
  EXPECT_EQ(cells(line, 1, 13, 18), " 9999-");
  putCount(line, 1, 19, 6, 9999, 0);
  EXPECT_EQ(cells(line, 1, 19, 24), " 9999 ");
  putCount(line, 1, 25, 8, 1234567, 0);  // width 8 shows up to 999999
  EXPECT_EQ(cells(line, 1, 25, 32), " 999999 ");
  putCount(line, 2, 25, 8, 3, -1);
  EXPECT_EQ(cells(line, 2, 25, 32), "      3-");
}

TEST(PutCount, BelowOneWritesNothing) {
  CellLine line;
  cellLineClear(line, 20);
  for (int32_t c = 1; c <= 8; ++c) cellPut(line, 1, c, '#');
  putCount(line, 1, 1, 6, 0, 1);
  putCount(line, 1, 1, 6, -4, -1);
  EXPECT_EQ(cells(line, 1, 1, 8), "########");
  // A smaller number blanks the digits of a larger one it replaces.
  putCount(line, 1, 1, 6, 7, 1);
  EXPECT_EQ(cells(line, 1, 1, 8), "#   7+##");
}

TEST(CellLineTest, WritesOutsideTheLineAreDropped) {
  CellLine line;
  cellLineClear(line, 5);
  cellPut(line, 1, 0, 'x');
  cellPut(line, 1, 6, 'x');
  cellPut(line, 2, 5, 'y');
  putCount(line, 1, 3, 6, 123, 1);  // cells 4..8, of which 4 and 5 exist
  EXPECT_EQ(cells(line, 1, 1, 5), "    1");
  EXPECT_EQ(cellAt(line, 2, 5), 'y');
  EXPECT_EQ(cellAt(line, 1, 6), ' ');
  cellLineClear(line, 999);
  EXPECT_EQ(line.width, CELL_LINE_CAPACITY);
}
