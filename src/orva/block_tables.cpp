#include "orva/block_tables.h"

namespace {

struct Capacities {
  int64_t variables = 0, equations = 0;
};

Capacities capacities(const HostInstance& instance, const OrvaOptions& options) {
  Capacities c;
  for (const HostSymbol& s : instance.symbols) ++(s.isEquation ? c.equations : c.variables);
  c.variables = options.varBlock >= 1 ? options.varBlock : c.variables + 3;
  c.equations = options.equBlock >= 1 ? options.equBlock : c.equations + 3;
  return c;
}

}  // namespace

int64_t orvaBlockTableBytes(const HostInstance& instance, const OrvaOptions& options) {
  const Capacities c = capacities(instance, options);
  return c.variables * c.equations * kBlockPairBytes;
}

std::string orvaBlockTableWarning(const HostInstance& instance, const OrvaOptions& options) {
  const int64_t bytes = orvaBlockTableBytes(instance, options);
  if (bytes <= kBlockTableWarnBytes) return "";
  const Capacities c = capacities(instance, options);
  return "BLOCKPIC's block tables will take about " + std::to_string(bytes >> 20) + " MB for " +
         std::to_string(c.variables) + " variable and " + std::to_string(c.equations) +
         " equation blocks. Fewer symbols help: --symbols before-digit or first:3 for names "
         "without brackets; or VARBLOCK and EQUBLOCK in the option file stop the run at that "
         "many blocks";
}
