// Symbol blocks: numbering by first occurrence, the RHS head, and the capacity stops.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "analysis_fixture.h"
#include "golden.h"
#include "model/blocks.h"

using analysis_test::modelFile;
using analysis_test::RunFixture;

namespace {

// Block tables in plain vectors, sized by the capacities.
struct Blocks {
  std::vector<char> colNameStore, rowNameStore;
  std::vector<int32_t> colCount, rowCount, colOf, rowOf;
  TextTable colName, rowName;
  int32_t colUsed = -1, rowUsed = -1;

  Blocks(int32_t icblock, int32_t irblock, int32_t m, int32_t n)
      : colNameStore(static_cast<size_t>(31 * (icblock + 1)), '?'),
        rowNameStore(static_cast<size_t>(31 * irblock), '?'),
        colCount(static_cast<size_t>(icblock), -1),
        rowCount(static_cast<size_t>(irblock), -1),
        colOf(static_cast<size_t>(n), 0),
        rowOf(static_cast<size_t>(m), 0),
        colName{colNameStore.data(), 31, icblock + 1},
        rowName{rowNameStore.data(), 31, irblock} {}

  void build(int32_t icblock, int32_t irblock) {
    buildBlockTables(runState, runState.rowCount, runState.colCount, colUsed, rowUsed, icblock, irblock,
                     colName, rowName, Vec1<int32_t>{colCount.data(), icblock},
                     Vec1<int32_t>{rowCount.data(), irblock}, runState.dictionary,
                     Vec1<int32_t>{colOf.data(), static_cast<int32_t>(colOf.size())},
                     Vec1<int32_t>{rowOf.data(), static_cast<int32_t>(rowOf.size())});
  }
  std::string col(int32_t b) const { return std::string(colName.view(b)); }
  std::string row(int32_t b) const { return std::string(rowName.view(b)); }
};

std::string name31(const std::string& s) { return s + std::string(31 - s.size(), ' '); }

TEST(BlockTables, BlocksInOrderOfFirstOccurrenceWithRhsBehindTheVariables) {
  RunFixture fx;
  fx.start(modelFile("blocks/scattered.json"));
  Blocks t(6, 6, 5, 4);
  t.build(6, 6);
  EXPECT_EQ(t.colUsed, 3);
  EXPECT_EQ(t.col(1), name31("X"));
  EXPECT_EQ(t.col(2), name31("SHIP"));
  EXPECT_EQ(t.col(3), name31("SHIPPING"));  // same first letters, another block
  EXPECT_EQ(t.col(4), name31("RHS"));
  EXPECT_EQ(t.colOf, (std::vector<int32_t>{1, 2, 1, 3}));
  EXPECT_EQ(t.colCount, (std::vector<int32_t>{2, 1, 1, 0, 0, 0}));

  EXPECT_EQ(t.rowUsed, 4);
  EXPECT_EQ(t.row(1), name31("SUPPLY"));
  EXPECT_EQ(t.row(2), name31("DEMAND"));
  EXPECT_EQ(t.row(3), name31("DEMANDS"));
  EXPECT_EQ(t.row(4), name31("COST"));
  EXPECT_EQ(t.rowOf, (std::vector<int32_t>{1, 2, 1, 3, 4}));
  EXPECT_EQ(t.rowCount, (std::vector<int32_t>{2, 1, 1, 1, 0, 0}));
  EXPECT_EQ(t.row(5), std::string(31, '?'));  // no RHS entry on the equation side
}

TEST(BlockTables, ExactlyAtCapacityStillHasRoomForRhs) {
  RunFixture fx;
  fx.start(modelFile("blocks/one-symbol.json"));
  Blocks t(1, 1, 1, 2);
  t.build(1, 1);
  EXPECT_EQ(t.colUsed, 1);
  EXPECT_EQ(t.col(1), name31("ONLY"));
  EXPECT_EQ(t.col(2), name31("RHS"));
  EXPECT_EQ(t.colCount, (std::vector<int32_t>{2}));
  EXPECT_EQ(t.rowUsed, 1);
}

// buildBlockTables with capacities too small, in a child process whose status and log channels
// are files: the child stops with exit code 77, and the files hold the message.
TEST(BlockTables, TooManyBlocksStopTheRun) {
  const struct {
    int32_t icblock, irblock;
    std::string golden;
  } cases[] = {{2, 6, "var-stop"}, {6, 3, "equ-stop"}};
  for (const auto& c : cases) {
    const std::string status = ::testing::TempDir() + "blocks_status_" + c.golden;
    const std::string log = ::testing::TempDir() + "blocks_log_" + c.golden;
    std::remove(status.c_str());
    std::remove(log.c_str());
    RunFixture fx;
    fx.start(modelFile("blocks/scattered.json"));
    auto child = [&] {
      runState.statusChannel = Channel{std::fopen(status.c_str(), "w"), nullptr};
      runState.logChannel = Channel{std::fopen(log.c_str(), "w"), nullptr};
      Blocks t(c.icblock, c.irblock, 5, 4);
      t.build(c.icblock, c.irblock);
      std::exit(0);
    };
    EXPECT_EXIT(child(), ::testing::ExitedWithCode(77), "");
    EXPECT_TRUE(matchesGolden(readLines(status), "blocks/" + c.golden + ".status"));
    EXPECT_TRUE(matchesGolden(readLines(log), "blocks/" + c.golden + ".log"));
  }
}

}  // namespace
