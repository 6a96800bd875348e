// Free and fixed MPS files into one HostInstance, in one pass over the file: lines are read in
// blocks, names are found through hash tables over one text arena per kind, numbers are read
// with std::from_chars, and entries go straight into the instance's arrays.
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>

#include "host/name_table.h"
#include "host/names.h"
#include "host/readers_internal.h"

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t'; }

enum class Section { None, Name, ObjSense, Rows, Columns, Rhs, Ranges, Bounds, End };

constexpr int32_t kNoRow = -1;
// No line of an MPS file comes near this; a file without line ends is refused early.
constexpr std::size_t kLongestLine = std::size_t{1} << 16;
constexpr std::string_view kMarker = "'MARKER'";
// How far ahead of the line in hand the names of COLUMNS and BOUNDS lines are asked for.
constexpr int32_t kLinesAhead = 8;
// Entries reserved at most before reading: a column index is a 32-bit number.
constexpr std::size_t kMaxReserve = std::size_t{1} << 30;

struct MpsReader {
  const std::string& path;
  bool fixed;
  std::string error;
  int64_t line = 0;

  Section section = Section::None;
  bool maximize = false;

  HostNameTable rows;
  std::vector<char> rowKind;      // 'N', 'L', 'G', 'E'
  std::vector<double> rowRhs;
  std::vector<double> rowRange;
  std::vector<char> rowRanged;
  int32_t objRow = kNoRow;        // the first N row
  double objRhs = 0.0;
  std::string rhsSet, rangeSet, boundSet;

  // The columns are told apart once, at the end of COLUMNS (or at a fault within it, which a
  // column given twice before it comes ahead of): one table of the right size, filled with
  // its slots asked for ahead, instead of one that grows and is probed a million times.
  HostNameTable cols;
  std::vector<int64_t> colLine;  // the line where each column begins
  bool colsIndexed = false;
  bool inInteger = false;
  // A row given twice in one column: the rows of a short column are kept in a short list
  // and searched there; a longer column marks its rows with its number in rowLastCol, which is
  // so touched only by long columns.
  static constexpr std::size_t kListedRows = 16;
  std::vector<int32_t> colRows;     // the rows of the column in hand, while it is short
  std::vector<int32_t> rowLastCol;  // the long column that last gave an entry in the row
  bool repeated(int32_t row, int32_t c) {
    if (colRows.size() < kListedRows) {
      if (std::find(colRows.begin(), colRows.end(), row) != colRows.end()) return true;
      colRows.push_back(row);
      if (colRows.size() == kListedRows) {
        for (int32_t r : colRows) rowLastCol[static_cast<std::size_t>(r)] = c;
      }
      return false;
    }
    if (rowLastCol[static_cast<std::size_t>(row)] == c) return true;
    rowLastCol[static_cast<std::size_t>(row)] = c;
    return false;
  }
  std::vector<char> colMarked;      // integer by a marker
  std::vector<char> colBoundKind;   // 'B' binary, 'I' integer by a bound, 0 otherwise
  std::vector<char> lowerSet, upperSet;

  HostInstance& inst;

  MpsReader(const std::string& p, bool f, HostInstance& i) : path(p), fixed(f), inst(i) {}

  bool fail(const std::string& what) {
    error = path + ":" + std::to_string(line) + ": " + what;
    return false;
  }
  // The fault to tell, the first in the file: a column given twice within COLUMNS before the
  // fault at hand comes ahead of it.
  std::string failure() {
    if (section == Section::Columns) indexColumns(line);
    return error;
  }
  static std::string quoted(std::string_view s) { return "'" + hostShownName(s) + "'"; }

  bool number(std::string_view text, double& value) {
    std::string_view t = text;
    if (!t.empty() && t.front() == '+') t.remove_prefix(1);
    const char* end = t.data() + t.size();
    auto [ptr, ec] = std::from_chars(t.data(), end, value);
    if (t.empty() || ec != std::errc() || ptr != end || !std::isfinite(value))
      return fail("cannot read " + quoted(text) + " as a number");
    return true;
  }

  bool readLine(std::string_view text);
  bool sense(std::string_view word);
  bool header(std::string_view text);
  bool rowsLine(const std::vector<std::string_view>& f);
  bool columnsLine(const std::vector<std::string_view>& f);
  bool valuesLine(const std::vector<std::string_view>& f, bool ranges);
  bool boundsLine(const std::vector<std::string_view>& f);
  // Asks for the slots of the names that a later line of COLUMNS (its rows) or BOUNDS (its
  // column) looks up, so that the lookups of that line find them in the cache: a lookup is
  // otherwise a wait on memory, millions of times in a large model. Free form only; a line it
  // cannot read is left to readLine.
  void prefetchNames(std::string_view text) const {
    const bool columns = section == Section::Columns;
    if (fixed || (!columns && section != Section::Bounds) || text.empty() || !isBlank(text[0]))
      return;
    std::string_view field[5];
    std::size_t i = 0, count = 0;
    for (; count < 5 && i < text.size(); ++count) {
      while (i < text.size() && isBlank(text[i])) ++i;
      const std::size_t b = i;
      while (i < text.size() && !isBlank(text[i])) ++i;
      field[count] = text.substr(b, i - b);
    }
    if (columns) {
      for (std::size_t k = 1; k < count; k += 2) rows.prefetch(field[k]);
    } else if (count >= 2) {  // type, [set,] column[, value], as boundsLine reads them
      const std::string_view type = field[0];
      const bool valued = type != "FR" && type != "MI" && type != "PL" && type != "BV";
      cols.prefetch(field[count == (valued ? 4u : 3u) ? 2 : 1]);
    }
  }
  void openColumns();
  bool closeColumns();
  // Tells the columns apart; false, with the fault at the line where a column given before
  // begins again, when one does so before line `before`.
  bool indexColumns(int64_t before);
  void finish(const SymbolRule& rule);

  std::vector<std::string_view> fields;
  std::string squeezed[6];  // fixed-form fields with blanks inside, without them
};

std::string_view trim(std::string_view s) {
  while (!s.empty() && isBlank(s.front())) s.remove_prefix(1);
  while (!s.empty() && isBlank(s.back())) s.remove_suffix(1);
  return s;
}

// Fields of a data line. Free form: words between blanks. Fixed form: columns 2-3, 5-12,
// 15-22, 25-36, 40-47 and 50-61, with their blanks dropped (`X ONE` is the name XONE, as GLPK
// reads it); the field of the code comes first even when empty.
bool splitFields(MpsReader& r, std::string_view text, std::vector<std::string_view>& out) {
  out.clear();
  if (!r.fixed) {
    std::size_t i = 0;
    while (i < text.size()) {
      while (i < text.size() && isBlank(text[i])) ++i;
      const std::size_t b = i;
      while (i < text.size() && !isBlank(text[i])) ++i;
      if (i > b) out.push_back(text.substr(b, i - b));
    }
    return true;
  }
  if (text.size() > 61 && !trim(text.substr(61, 11)).empty())
    return r.fail("in fixed MPS positions 62 to 72 must be blank");
  static constexpr std::size_t kFrom[] = {1, 4, 14, 24, 39, 49};
  static constexpr std::size_t kLen[] = {2, 8, 8, 12, 8, 12};
  for (int k = 0; k < 6; ++k) {
    if (kFrom[k] >= text.size()) break;
    std::string_view field = trim(text.substr(kFrom[k], kLen[k]));
    if (field.find_first_of(" \t") != std::string_view::npos) {
      std::string& kept = r.squeezed[k];  // reused: no allocation once grown
      kept.clear();
      for (char c : field)
        if (!isBlank(c)) kept += c;
      field = kept;
    }
    out.push_back(field);
  }
  while (out.size() > 1 && out.back().empty()) out.pop_back();
  return true;
}

bool MpsReader::sense(std::string_view word) {
  if (word == "MAX" || word == "MAXIMIZE") maximize = true;
  else if (word == "MIN" || word == "MINIMIZE") maximize = false;
  else return fail("unknown objective sense " + quoted(word) + " (MIN or MAX)");
  return true;
}

bool MpsReader::header(std::string_view text) {
  std::size_t e = 0;
  while (e < text.size() && !isBlank(text[e])) ++e;
  const std::string_view word = text.substr(0, e);
  const std::string_view rest = trim(text.substr(e));
  // Each section may follow the sections from `after` to `before`.
  struct Step {
    const char* word;
    Section section, after, before;
  };
  static constexpr Step kSteps[] = {
      {"NAME", Section::Name, Section::None, Section::None},
      {"OBJSENSE", Section::ObjSense, Section::Name, Section::Name},
      {"ROWS", Section::Rows, Section::Name, Section::ObjSense},
      {"COLUMNS", Section::Columns, Section::Rows, Section::Rows},
      {"RHS", Section::Rhs, Section::Columns, Section::Columns},
      {"RANGES", Section::Ranges, Section::Columns, Section::Rhs},
      {"BOUNDS", Section::Bounds, Section::Columns, Section::Ranges},
      {"ENDATA", Section::End, Section::Columns, Section::Bounds},
  };
  for (const Step& s : kSteps) {
    if (word != s.word) continue;
    if (section < s.after || section > s.before)
      return fail(section == Section::None ? std::string("the file does not begin with NAME")
                                           : std::string("section ") + s.word + " out of place");
    if (section == Section::Columns && !closeColumns()) return false;
    section = s.section;
    if (section == Section::Columns) openColumns();
    // OBJSENSE MAX on one line, as some writers put it.
    if (s.section == Section::ObjSense && !rest.empty()) return sense(rest);
    return true;
  }
  if (section == Section::None) return fail("the file does not begin with NAME");
  return fail("unknown section " + quoted(word));
}

bool MpsReader::rowsLine(const std::vector<std::string_view>& f) {
  if (f.size() < 2 || f[0].size() != 1 || std::strchr("NLGE", f[0][0]) == nullptr)
    return fail("a row needs its type (N, L, G or E) and its name");
  if (f.size() > 2) return fail("text after the row name " + quoted(f[1]));
  if (const std::string fault = hostNameFault(f[1]); !fault.empty()) return fail(fault);
  const int32_t before = rows.size();
  const int32_t k = rows.insert(f[1]);
  if (k < before) return fail("row " + quoted(f[1]) + " given twice");
  rowKind.push_back(f[0][0]);
  if (f[0][0] == 'N' && objRow == kNoRow) objRow = k;
  return true;
}

bool MpsReader::columnsLine(const std::vector<std::string_view>& f) {
  // A marker line: name, then 'MARKER', then 'INTORG' or 'INTEND' last.
  const std::size_t first = fixed ? 1 : 0;  // the fixed form's empty code field
  if (f.size() >= first + 3 &&
      std::find(f.begin() + static_cast<std::ptrdiff_t>(first) + 1, f.end(), kMarker) != f.end()) {
    if (f.back() == "'INTORG'") inInteger = true;
    else if (f.back() == "'INTEND'") inInteger = false;
    else return fail("unknown marker " + quoted(f.back()));
    return true;
  }
  if (fixed && !f.empty() && !f[0].empty()) return fail("a column line has no code field");
  if (f.size() != first + 3 && f.size() != first + 5)
    return fail("a column line needs the column, then one or two rows with their values");
  const std::string_view col = f[first];
  if (col.empty()) return fail("a column line without its column name");
  int32_t c = cols.size() - 1;
  if (c < 0 || cols.name(c) != col) {
    if (const std::string fault = hostNameFault(col); !fault.empty()) return fail(fault);
    c = cols.append(col);  // a column given in two places is told at the end of the section
    colLine.push_back(line);
    colMarked.push_back(inInteger ? 1 : 0);
    inst.colStart.push_back(static_cast<int32_t>(inst.entryRow.size()));
    colRows.clear();
  }
  uint64_t hashes[2] = {};
  for (std::size_t k = first + 1, q = 0; k + 1 < f.size(); k += 2, ++q)
    hashes[q] = rows.prefetch(f[k]);
  for (std::size_t k = first + 1, q = 0; k + 1 < f.size(); k += 2, ++q) {
    const int32_t row = rows.find(f[k], hashes[q]);
    if (row < 0) return fail("row " + quoted(f[k]) + " is not in the ROWS section");
    double value = 0;
    if (!number(f[k + 1], value)) return false;
    if (repeated(row, c))
      return fail("column " + quoted(col) + " has row " + quoted(f[k]) + " twice");
    if (value == 0.0) continue;
    inst.entryRow.push_back(row);
    inst.entryValue.push_back(value);
  }
  return true;
}

// RHS and RANGES lines: [set] row value [row value]. Only the first set is read.
bool MpsReader::valuesLine(const std::vector<std::string_view>& f, bool ranges) {
  std::size_t at = 1;  // fixed form: the code field
  std::string_view set;
  if (fixed) {
    if (!f[0].empty()) return fail("a line of this section has no code field");
    if (f.size() > 1) set = f[1];
    at = 2;
  } else {
    at = f.size() % 2 == 1 ? 1 : 0;  // an odd count has the set's name first
    if (at == 1) set = f[0];
  }
  if (f.size() != at + 2 && f.size() != at + 4)
    return fail("a line of this section needs one or two rows with their values");
  std::string& first = ranges ? rangeSet : rhsSet;
  if (first.empty() && !set.empty()) first = set;
  if (!set.empty() && set != first) return true;  // a further set is not read
  for (std::size_t k = at; k + 1 < f.size(); k += 2) {
    const int32_t row = rows.find(f[k]);
    if (row < 0) return fail("row " + quoted(f[k]) + " is not in the ROWS section");
    double value = 0;
    if (!number(f[k + 1], value)) return false;
    if (ranges) {
      if (rowRanged[row]) return fail("row " + quoted(f[k]) + " has two ranges");
      if (rowKind[row] == 'N') continue;
      rowRanged[row] = 1;
      rowRange[row] = value;
    } else if (row == objRow) {
      objRhs = value;
    } else {
      rowRhs[row] = value;
    }
  }
  return true;
}

bool MpsReader::boundsLine(const std::vector<std::string_view>& f) {
  static constexpr const char* kTypes[] = {"UP", "LO", "FX", "FR", "MI", "PL", "BV", "LI", "UI"};
  if (f.empty() || std::find_if(std::begin(kTypes), std::end(kTypes), [&](const char* t) {
                     return f[0] == t;
                   }) == std::end(kTypes))
    return fail("unknown bound type " + quoted(f.empty() ? "" : f[0]));
  const std::string_view type = f[0];
  const bool needsValue = type != "FR" && type != "MI" && type != "PL" && type != "BV";
  std::string_view set, col, text;
  if (fixed) {
    set = f.size() > 1 ? f[1] : std::string_view();
    col = f.size() > 2 ? f[2] : std::string_view();
    text = f.size() > 3 ? f[3] : std::string_view();
    if (f.size() > 4) return fail("text after the bound's value");
  } else {
    const std::size_t withValue = needsValue ? 1 : 0;
    if (f.size() == 3 + withValue || (!needsValue && f.size() == 4)) {
      set = f[1];
      col = f[2];
      if (f.size() == 4) text = f[3];
    } else if (f.size() == 2 + withValue) {
      col = f[1];
      if (needsValue) text = f[2];
    } else {
      return fail("a bound needs its type, the column and, for " + std::string(type) +
                  ", a value");
    }
  }
  if (needsValue && text.empty()) return fail("bound " + std::string(type) + " without a value");
  if (boundSet.empty() && !set.empty()) boundSet = set;
  if (!set.empty() && set != boundSet) return true;
  const int32_t c = cols.find(col);
  if (c < 0) return fail("column " + quoted(col) + " is not in the COLUMNS section");
  double value = 0;
  if (needsValue && !number(text, value)) return false;
  const bool setsLower = type != "UP" && type != "PL" && type != "UI";
  const bool setsUpper = type != "LO" && type != "MI" && type != "LI";
  if (setsLower && lowerSet[c]) return fail("column " + quoted(col) + " has two lower bounds");
  if (setsUpper && upperSet[c]) return fail("column " + quoted(col) + " has two upper bounds");
  double& lower = inst.colLower[c];
  double& upper = inst.colUpper[c];
  if (type == "UP" || type == "UI") {
    upper = value;
    if (value < 0 && lower == 0.0 && !lowerSet[c]) lower = -kHostInf;
  } else if (type == "LO" || type == "LI") {
    lower = value;
  } else if (type == "FX") {
    lower = upper = value;
  } else if (type == "FR") {
    lower = -kHostInf;
    upper = kHostInf;
  } else if (type == "MI") {
    lower = -kHostInf;
  } else if (type == "PL") {
    upper = kHostInf;
  } else {  // BV
    lower = 0.0;
    upper = 1.0;
  }
  if (type == "BV") colBoundKind[c] = 'B';
  else if ((type == "LI" || type == "UI") && colBoundKind[c] == 0) colBoundKind[c] = 'I';
  lowerSet[c] = lowerSet[c] || setsLower;
  upperSet[c] = upperSet[c] || setsUpper;
  return true;
}

bool MpsReader::readLine(std::string_view text) {
  while (!text.empty() && (text.back() == '\r' || text.back() == '\n')) text.remove_suffix(1);
  if (text.empty() || text[0] == '*') return true;
  if (!isBlank(text[0])) return header(text);
  if (trim(text).empty()) return true;
  if (!splitFields(*this, text, fields)) return false;
  if (fields.empty() || (fixed && fields.size() == 1 && fields[0].empty())) return true;
  switch (section) {
    case Section::ObjSense:
      return sense(trim(text));
    case Section::Rows:
      return rowsLine(fields);
    case Section::Columns:
      return columnsLine(fields);
    case Section::Rhs:
      return valuesLine(fields, false);
    case Section::Ranges:
      return valuesLine(fields, true);
    case Section::Bounds:
      return boundsLine(fields);
    default:
      return fail("a data line outside the ROWS, COLUMNS, RHS, RANGES and BOUNDS sections");
  }
}

}  // namespace

namespace {

void MpsReader::openColumns() {
  const auto m = static_cast<std::size_t>(rows.size());
  rowLastCol.assign(m, -1);
  rowRhs.assign(m, 0.0);
  rowRange.assign(m, 0.0);
  rowRanged.assign(m, 0);
  inst.colStart.clear();
}

bool MpsReader::indexColumns(int64_t before) {
  if (colsIndexed) return true;
  colsIndexed = true;
  const int32_t again = cols.index();
  if (again < 0 || colLine[static_cast<std::size_t>(again)] >= before) return true;
  line = colLine[static_cast<std::size_t>(again)];
  return fail("column " + quoted(cols.name(again)) + " given in two places");
}

bool MpsReader::closeColumns() {
  if (!indexColumns(line)) return false;
  std::vector<int64_t>().swap(colLine);
  const auto n = static_cast<std::size_t>(cols.size());
  inst.colStart.push_back(static_cast<int32_t>(inst.entryRow.size()));
  inst.colLower.assign(n, 0.0);
  inst.colUpper.assign(n, kHostInf);
  colBoundKind.assign(n, 0);
  lowerSet.assign(n, 0);
  upperSet.assign(n, 0);
  std::vector<int32_t>().swap(rowLastCol);
  return true;
}

std::string baseName(const std::string& path) {
  std::string base = path.substr(path.find_last_of('/') + 1);
  const auto dot = base.find_last_of('.');
  if (dot != std::string::npos && dot > 0) base.resize(dot);
  return base;
}

// Rows and columns into the instance by the conversion rules: the objective row first, then the
// rows of the file in order, a ranged row as its =G= and =L= halves; the entries of each column
// in row order; the objective variable last.
void MpsReader::finish(const SymbolRule& rule) {
  const int32_t m = rows.size();
  const int32_t n = cols.size();
  const bool hasObjective = objRow != kNoRow;
  std::vector<int32_t> rowAt(static_cast<std::size_t>(m));
  std::vector<char> split(static_cast<std::size_t>(m), 0);
  inst.rowType.clear();
  inst.rowRhs.clear();
  if (hasObjective) {
    inst.rowType.push_back(kRowE);
    inst.rowRhs.push_back(objRhs + 0.0);
    inst.objRow = 1;
    rowAt[objRow] = 0;
  }
  for (int32_t r = 0; r < m; ++r) {
    if (r == objRow) continue;
    rowAt[r] = static_cast<int32_t>(inst.rowType.size());
    const double b = rowRhs[r], range = std::fabs(rowRange[r]);
    double lo = b, up = b;
    int32_t type = kRowE;
    switch (rowKind[r]) {
      case 'N': type = kRowN; lo = up = 0.0; break;
      case 'L': type = kRowL; lo = b - range; break;
      case 'G': type = kRowG; up = b + range; break;
      default:
        if (rowRange[r] > 0) up = b + range;
        else lo = b - range;
    }
    if (rowKind[r] != 'N' && rowRanged[r]) {
      if (lo < up) {
        split[r] = 1;
        inst.rowType.push_back(kRowG);
        inst.rowRhs.push_back(lo + 0.0);
        type = kRowL;
      } else {
        type = kRowE;
      }
    }
    inst.rowType.push_back(type);
    inst.rowRhs.push_back((type == kRowG ? lo : up) + 0.0);
  }

  // Entries: rows renumbered, a split row's entry twice, from the back so that no entry moves
  // over one not yet moved.
  std::size_t extra = 0;
  for (int32_t r : inst.entryRow) extra += static_cast<std::size_t>(split[r]);
  const std::size_t oldTotal = inst.entryRow.size();
  inst.entryRow.resize(oldTotal + extra);
  inst.entryValue.resize(oldTotal + extra);
  std::size_t w = oldTotal + extra;
  for (int32_t j = n - 1; j >= 0; --j) {
    const auto begin = static_cast<std::size_t>(inst.colStart[j]);
    const auto end = static_cast<std::size_t>(inst.colStart[j + 1]);
    inst.colStart[j + 1] = static_cast<int32_t>(w);
    for (std::size_t k = end; k-- > begin;) {
      const int32_t r = inst.entryRow[k];
      const double v = inst.entryValue[k];
      if (split[r]) {
        --w;
        inst.entryRow[w] = rowAt[r] + 1;
        inst.entryValue[w] = v;
      }
      --w;
      inst.entryRow[w] = rowAt[r];
      inst.entryValue[w] = v;
    }
  }
  std::vector<std::pair<int32_t, double>> column;
  for (int32_t j = 0; j < n; ++j) {
    const auto begin = static_cast<std::size_t>(inst.colStart[j]);
    const auto end = static_cast<std::size_t>(inst.colStart[j + 1]);
    if (std::is_sorted(inst.entryRow.begin() + begin, inst.entryRow.begin() + end)) continue;
    column.clear();
    for (std::size_t k = begin; k < end; ++k)
      column.emplace_back(inst.entryRow[k], inst.entryValue[k]);
    std::sort(column.begin(), column.end());
    for (std::size_t k = begin; k < end; ++k) {
      inst.entryRow[k] = column[k - begin].first;
      inst.entryValue[k] = column[k - begin].second;
    }
  }

  inst.colType.assign(static_cast<std::size_t>(n), kVarContinuous);
  for (int32_t j = 0; j < n; ++j) {
    // An integer column of a marker block without bounds is binary.
    if (colMarked[j] && !lowerSet[j] && !upperSet[j]) inst.colUpper[j] = 1.0;
    const bool integer = colMarked[j] || colBoundKind[j] != 0;
    const bool zeroOne = inst.colLower[j] == 0.0 && inst.colUpper[j] == 1.0;
    if (colBoundKind[j] == 'B' || (integer && zeroOne)) inst.colType[j] = kVarBinary;
    else if (integer) inst.colType[j] = kVarInteger;
    inst.colLower[j] += 0.0;
    inst.colUpper[j] += 0.0;
  }
  if (hasObjective) {
    inst.colType.push_back(kVarContinuous);
    inst.colLower.push_back(-kHostInf);
    inst.colUpper.push_back(kHostInf);
    inst.entryRow.push_back(0);
    inst.entryValue.push_back(-1.0);
    inst.colStart.push_back(static_cast<int32_t>(inst.entryRow.size()));
    inst.objVar = n + 1;
  }
  inst.minimizing = !maximize;
  inst.sourcePath = path;
  inst.inputName = baseName(path);

  // Names: one parsed name at a time, by the rule each kind's names call for.
  auto eachRow = [&](const std::function<void(std::string_view)>& f) {
    for (int32_t r = 0; r < m; ++r) f(rows.name(r));
  };
  auto eachCol = [&](const std::function<void(std::string_view)>& f) {
    for (int32_t j = 0; j < n; ++j) f(cols.name(j));
  };
  const SymbolRule rowRule = hostResolveSymbolRule(rule, eachRow);
  const SymbolRule colRule = hostResolveSymbolRule(rule, eachCol);
  // In the instance's order: the objective row, then the file's rows, a ranged row as the
  // halves `_lo` and `_up` that the host makes (rowMade 1 and 2); the columns, then objvar.
  std::vector<int32_t> rowFrom;
  std::vector<char> rowMade;
  rowFrom.reserve(inst.rowType.size());
  rowMade.reserve(inst.rowType.size());
  if (hasObjective) {
    rowFrom.push_back(objRow);
    rowMade.push_back(0);
  }
  for (int32_t r = 0; r < m; ++r) {
    if (r == objRow) continue;
    for (char half = split[r] ? 1 : 0; half <= (split[r] ? 2 : 0); ++half) {
      rowFrom.push_back(r);
      rowMade.push_back(half);
    }
  }
  std::vector<char> colMade(static_cast<std::size_t>(n), 0);
  if (hasObjective) colMade.push_back(1);
  HostDictionaryBuilder dictionary(inst);
  const auto rowName = [&](int32_t k, HostName& name) {
    hostParseName(rows.name(rowFrom[k]), rowRule, name);
    if (rowMade[k] == 0) return;
    name = hostMakeName(name.symbol + (rowMade[k] == 1 ? "_lo" : "_up"), std::move(name.labels));
  };
  const auto colName = [&](int32_t j, HostName& name) {
    hostParseName(j < n ? cols.name(j) : std::string_view("objvar"), colRule, name);
  };
  dictionary.addDistinct(true, static_cast<int32_t>(rowFrom.size()), rowName, rowMade);
  dictionary.addDistinct(false, static_cast<int32_t>(colMade.size()), colName, colMade);
  hostCompleteInstance(inst);
}

}  // namespace

bool readMpsModel(const std::string& path, bool fixed, const SymbolRule& rule,
                  HostInstance& inst, std::string& error, const HostProgress& progress) {
  inst = HostInstance{};
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                      &std::fclose);
  if (!file) {
    error = path + ": cannot open the model: " + std::strerror(errno);
    return false;
  }
  std::fseek(file.get(), 0, SEEK_END);
  const long fileSize = std::ftell(file.get());
  std::fseek(file.get(), 0, SEEK_SET);
  MpsReader reader(path, fixed, inst);
  // Room for the entries that a file of this size can hold at about ten bytes an entry, so that
  // the two largest arrays are not copied as they grow; pages never written cost nothing.
  if (fileSize > 0) {
    const auto entries =
        std::min<std::size_t>(static_cast<std::size_t>(fileSize) / 10, kMaxReserve);
    inst.entryRow.reserve(entries);
    inst.entryValue.reserve(entries);
  }
  // Lines are cut from blocks of the file; a line that runs over a block's end is carried.
  constexpr std::size_t kBlock = std::size_t{1} << 20;
  std::vector<char> buffer(kBlock);
  std::string carry;
  int64_t done = 0;
  while (true) {
    const std::size_t got = std::fread(buffer.data(), 1, kBlock, file.get());
    if (got == 0) break;
    done += static_cast<int64_t>(got);
    if (progress) progress(done, fileSize);
    std::string_view block(buffer.data(), got);
    std::string_view ahead = block;  // the lines from kLinesAhead lines past the current one
    int32_t linesAhead = 0;
    while (!block.empty()) {
      for (; linesAhead < kLinesAhead && !ahead.empty(); ++linesAhead) {
        const std::size_t end = ahead.find('\n');
        if (end == std::string_view::npos) {
          ahead = {};
          break;
        }
        reader.prefetchNames(ahead.substr(0, end));
        ahead.remove_prefix(end + 1);
      }
      if (linesAhead > 0) --linesAhead;
      const std::size_t eol = block.find('\n');
      if (eol == std::string_view::npos) {
        carry.append(block);
        if (carry.size() > kLongestLine) {
          reader.line += 1;
          reader.fail("a line longer than " + std::to_string(kLongestLine) + " characters");
          error = reader.failure();
          return false;
        }
        break;
      }
      ++reader.line;
      bool ok;
      if (!carry.empty()) {
        carry.append(block.substr(0, eol));
        ok = reader.readLine(carry);
        carry.clear();
      } else {
        ok = reader.readLine(block.substr(0, eol));
      }
      if (!ok) {
        error = reader.failure();
        return false;
      }
      if (reader.section == Section::End) break;
      block.remove_prefix(eol + 1);
    }
    if (reader.section == Section::End) break;
  }
  if (std::ferror(file.get())) {
    error = path + ": cannot read the model: " + std::strerror(errno);
    return false;
  }
  if (reader.section != Section::End && !carry.empty()) {
    ++reader.line;
    if (!reader.readLine(carry)) {
      error = reader.failure();
      return false;
    }
  }
  if (reader.section != Section::End) {
    ++reader.line;
    reader.fail(reader.section == Section::None ? "the file is empty"
                                                : "the file ends without ENDATA");
    error = reader.failure();
    return false;
  }
  reader.finish(rule);
  return true;
}
