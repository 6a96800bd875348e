#include "pictures/cells.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

void cellLineClear(CellLine& line, int32_t width) {
  line.width = std::clamp(width, 0, CELL_LINE_CAPACITY);
  line.plane1.fill(' ');
  line.plane2.fill(' ');
}

void cellPut(CellLine& line, int32_t plane, int32_t cell, char ch) {
  if (cell < 1 || cell > line.width) return;
  (plane == 2 ? line.plane2 : line.plane1)[cell - 1] = ch;
}

char cellAt(const CellLine& line, int32_t plane, int32_t cell) {
  if (cell < 1 || cell > line.width) return ' ';
  return (plane == 2 ? line.plane2 : line.plane1)[cell - 1];
}

void putCount(CellLine& line, int32_t plane, int32_t pos, int32_t width, int64_t value,
              int32_t sign) {
  if (value < 1 || width < 2) return;
  // Largest number the width shows: 10^(width-2) - 1, so 9999 in 6 cells.
  int64_t limit = 1;
  for (int32_t d = 0; d < width - 2 && limit <= INT64_MAX / 10; ++d) limit *= 10;
  if (value >= limit) value = limit - 1;
  for (int32_t cell = pos + width - 2; cell >= pos + 1; --cell) {
    if (value > 0) {
      cellPut(line, plane, cell, static_cast<char>('0' + value % 10));
      value /= 10;
    } else {
      cellPut(line, plane, cell, ' ');
    }
  }
  cellPut(line, plane, pos + width - 1, sign >= 1 ? '+' : (sign < 0 ? '-' : ' '));
}

namespace {

// v x 10^k: the power in single precision while it is a normal float, else in double,
// split in two so that neither factor overflows.
double timesPowerOfTen(double v, int32_t k) {
  if (k >= -37 && k <= 38) {
    const float power = std::pow(10.0f, static_cast<float>(k));
    return v * static_cast<double>(power);
  }
  const int32_t half = k / 2;
  return v * std::pow(10.0, half) * std::pow(10.0, k - half);
}

}  // namespace

std::string realCellText(double value, int32_t sign, int32_t digits, double upperCap,
                         double lowerCap, int32_t showSign) {
  if (value == 0.0) return {};
  double v = value;
  char mark = ' ';
  if (upperCap != 0.0 && value > upperCap) {
    v = upperCap;
    mark = '>';
  }
  if (lowerCap != 0.0 && value < lowerCap) {
    v = lowerCap;
    mark = '<';
  }
  digits = std::clamp(digits, 1, 15);

  std::string text;
  if (std::isnan(v)) {
    text = "NaN";
  } else if (std::isinf(v)) {
    text = "Inf";
  } else {
    const double magnitude = std::fabs(v);
    int32_t e = static_cast<int32_t>(std::lround(std::log10(magnitude))) - digits + 1;
    long long m = std::llround(timesPowerOfTen(magnitude, -e));
    if (m < 1) m = 1;
    while (m % 10 == 0) {
      m /= 10;
      ++e;
    }
    const std::string ds = std::to_string(m);
    const int32_t nd = static_cast<int32_t>(ds.size());
    const int32_t p = e + nd - 1;
    if (p >= digits || (p < 0 && nd - p > digits + 1)) {
      const int32_t shown = std::min(std::abs(p), 99);
      text = ds.substr(0, 1) + "." + ds.substr(1) + "E" + (p < 0 ? "-" : "+");
      text += static_cast<char>('0' + shown / 10);
      text += static_cast<char>('0' + shown % 10);
    } else if (p >= 0) {
      if (nd <= p + 1) {
        text = ds + std::string(static_cast<size_t>(p + 1 - nd), '0');
      } else {
        text = ds.substr(0, static_cast<size_t>(p + 1)) + "." +
               ds.substr(static_cast<size_t>(p + 1));
      }
    } else {
      text = "." + std::string(static_cast<size_t>(-p - 1), '0') + ds;
      if (static_cast<int32_t>(text.size()) < digits + 1) text = "0" + text;
    }
    if (v < 0.0) text = "-" + text;  // callers pass magnitudes; kept readable all the same
  }
  if (mark != ' ') text = std::string(1, mark) + text;
  if (showSign > 0) text += sign >= 1 ? '+' : '-';
  return text;
}

void putReal(CellLine& line, int32_t plane, int32_t pos, int32_t width, double value,
             int32_t sign, int32_t digits, double upperCap, double lowerCap, int32_t showSign) {
  if (value == 0.0) return;
  const std::string text = realCellText(value, sign, digits, upperCap, lowerCap, showSign);
  int32_t t = static_cast<int32_t>(text.size()) - 1;
  for (int32_t cell = pos + width - 1; cell >= pos + 1; --cell, --t) {
    cellPut(line, plane, cell, t >= 0 ? text[static_cast<size_t>(t)] : ' ');
  }
}
