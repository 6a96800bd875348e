// Cells of the block tables: a print line of two planes, and the two routines that fit a
// count or a real number into a few of its cells.
#pragma once

#include <array>
#include <cstdint>
#include <string>

// Widest table line, in cells (the templates print at most 254 of them).
inline constexpr int32_t CELL_LINE_CAPACITY = 254;

// A print line under construction: `width` cells, each of two characters, plane 1 and
// plane 2. Cells are numbered from 1; a write outside 1..width is dropped.
struct CellLine {
  int32_t width = 0;
  std::array<char, CELL_LINE_CAPACITY> plane1{};
  std::array<char, CELL_LINE_CAPACITY> plane2{};
};

// Blanks both planes and sets the width, held to 0..CELL_LINE_CAPACITY.
void cellLineClear(CellLine& line, int32_t width);

// Puts one character into cell `cell` of plane 1 or 2.
void cellPut(CellLine& line, int32_t plane, int32_t cell, char ch);

// The character of a cell; a blank outside the line.
char cellAt(const CellLine& line, int32_t plane, int32_t cell);

// Writes a whole number into cells pos+1 .. pos+width-1 of a plane: the digits right-aligned
// with the units in cell pos+width-2, capped at 10^(width-2)-1, and in cell pos+width-1 the
// sign mark: '+' for sign 1 or more, '-' below 0, blank for 0. A value below 1 writes nothing.
void putCount(CellLine& line, int32_t plane, int32_t pos, int32_t width, int64_t value,
              int32_t sign);

// The text that putReal writes for a non-negative value: `digits` significant digits at most,
// plain or in exponent form, the cap mark '>' or '<' ahead of it when a nonzero cap bites,
// and with showSign above 0 the sign mark behind it. Empty for a value of exactly 0.
std::string realCellText(double value, int32_t sign, int32_t digits, double upperCap,
                         double lowerCap, int32_t showSign);

// Writes realCellText right-aligned into cells pos+1 .. pos+width-1 of a plane, its last
// character in cell pos+width-1, blanks filling up; a longer text loses its left end. A value
// of exactly 0 writes nothing.
void putReal(CellLine& line, int32_t plane, int32_t pos, int32_t width, double value,
             int32_t sign, int32_t digits, double upperCap, double lowerCap, int32_t showSign);
