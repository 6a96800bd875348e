// The word on BLOCKPIC's block tables before modrake starts.
#include <gtest/gtest.h>

#include "orva/block_tables.h"

namespace {

HostInstance withSymbols(int equations, int variables) {
  HostInstance in;
  for (int k = 0; k < equations; ++k) in.symbols.push_back(HostSymbol{"e" + std::to_string(k), true, 0});
  for (int k = 0; k < variables; ++k) in.symbols.push_back(HostSymbol{"v" + std::to_string(k), false, 0});
  return in;
}

TEST(OrvaBlockTables, LargeTablesAreToldWithWhatHelps) {
  const HostInstance many = withSymbols(3400, 3400);
  OrvaOptions options;
  // 3403 x 3403 pairs of 24 bytes: 277,929,816 bytes, 265 MB.
  EXPECT_EQ(orvaBlockTableBytes(many, options), int64_t{277929816});
  EXPECT_EQ(orvaBlockTableWarning(many, options),
            "BLOCKPIC's block tables will take about 265 MB for 3403 variable and 3403 equation "
            "blocks. Fewer symbols help: --symbols before-digit or first:3 for names without "
            "brackets; or VARBLOCK and EQUBLOCK in the option file stop the run at that many "
            "blocks");
  // The capacities of the option file rule; small tables are not worth a word.
  options.varBlock = 100;
  EXPECT_EQ(orvaBlockTableBytes(many, options), int64_t{100} * 3403 * 24);
  EXPECT_EQ(orvaBlockTableWarning(many, options), "");
  EXPECT_EQ(orvaBlockTableWarning(withSymbols(3300, 3300), OrvaOptions{}), "");
}

}  // namespace
