#include "run/control_records.h"

#include <array>

#include "request/request_line.h"
#include "run/run_state.h"

namespace {

constexpr size_t kValueColumn = 30;  // column 31, 0-based
constexpr size_t kIntegerWidth = 5;

std::string shown(char c) {
  if (static_cast<unsigned char>(c) < 32 || c == 127) {
    static const char* hex = "0123456789ABCDEF";
    const auto u = static_cast<unsigned char>(c);
    return std::string("character code 0x") + hex[u >> 4] + hex[u & 15];
  }
  return std::string("\"") + c + "\"";
}

}  // namespace

std::string joinPath(std::initializer_list<std::string_view> pieces) {
  std::string path;
  for (std::string_view piece : pieces) {
    size_t b = 0, e = piece.size();
    while (b < e && piece[b] == ' ') ++b;
    while (e > b && piece[e - 1] == ' ') --e;
    path.append(piece.substr(b, e - b));
  }
  if (path.size() > static_cast<size_t>(MAX_LINE)) path.resize(MAX_LINE);
  return path;
}

bool parseControlLogical(std::string_view record, bool& value, std::string& what) {
  const char c = record.size() > kValueColumn ? record[kValueColumn] : ' ';
  switch (c) {
    case 'T':
    case 't':
      value = true;
      return true;
    case 'F':
    case 'f':
    case ' ':
      value = false;
      return true;
    default:
      what = "column 31 holds " + shown(c) + " where T or F belongs";
      return false;
  }
}

bool parseControlInteger(std::string_view record, int32_t& value, std::string& what) {
  std::string_view field;
  if (record.size() > kValueColumn) field = record.substr(kValueColumn, kIntegerWidth);
  int32_t sign = 1;
  int32_t number = 0;
  bool signSeen = false;
  bool digitSeen = false;
  for (size_t p = 0; p < field.size(); ++p) {
    const char c = field[p];
    if (c == ' ') continue;
    if ((c == '-' || c == '+') && !signSeen && !digitSeen) {
      signSeen = true;
      if (c == '-') sign = -1;
      continue;
    }
    if (c >= '0' && c <= '9') {
      digitSeen = true;
      number = number * 10 + (c - '0');
      continue;
    }
    what = "column " + std::to_string(kValueColumn + p + 1) + " holds " + shown(c) +
           " in the number of columns 31 to 35";
    return false;
  }
  if (signSeen && !digitSeen) {
    what = "columns 31 to 35 hold a sign without digits";
    return false;
  }
  value = sign * number;
  return true;
}

bool readControlRecords(std::FILE* file, const std::string& path, RunContext& state,
                        std::string& error) {
  std::array<int32_t*, 7> integers = {&state.colSelCapacity, &state.rowSelCapacity,
                                      &state.icblock,        &state.irblock,
                                      &state.scaleRequest,   &state.largeLevelExp,
                                      &state.largeMarginalExp};
  std::string record;
  for (int32_t k = 1; k <= 8; ++k) {
    const std::string where = path + ", line " + std::to_string(k) + ": ";
    const LineRead r = readRequestFileLine(file, record, MAX_LINE);
    if (r == LineRead::End) {
      error = where + "the file ends; it must hold eight records";
      return false;
    }
    if (r == LineRead::Error) {
      error = where + "the record cannot be read";
      return false;
    }
    std::string what;
    const bool ok = k == 1 ? parseControlLogical(record, state.solutionExpected, what)
                           : parseControlInteger(record, *integers[static_cast<size_t>(k - 2)],
                                                 what);
    if (!ok) {
      error = where + what;
      return false;
    }
  }
  return true;
}

void applyBlockDefaults(RunContext& state, int32_t symbolCount) {
  if (state.irblock < 1) state.irblock = symbolCount + 3;
  if (state.icblock < 1) state.icblock = symbolCount + 3;
}
