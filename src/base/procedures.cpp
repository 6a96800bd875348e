#include "base/procedures.h"

const ProcedureRow* procedureOfLine(std::string_view line) {
  if (line.starts_with('$')) line.remove_prefix(1);
  for (const ProcedureRow& row : kProcedures) {
    if (line.starts_with(row.keyword)) return &row;
  }
  return nullptr;
}
