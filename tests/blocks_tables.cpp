// Symbol blocks: numbering by first occurrence, the RHS head, and the capacity stops.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "analysis_fixture.h"
#include "golden.h"
#include "model/blocks.h"

using analysis_test::INF;
using analysis_test::ModelBuilder;
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

// Rows SUPPLY, DEMAND, SUPPLY, DEMANDS, COST; columns X, SHIP, X, SHIPPING.
ModelBuilder scattered() {
  ModelBuilder b;
  b.row("SUPPLY", {"a"}, kRowL, 1.0);
  b.row("DEMAND", {"a"}, kRowG, 1.0);
  b.row("SUPPLY", {"b"}, kRowL, 1.0);
  b.row("DEMANDS", {"a"}, kRowG, 1.0);
  b.row("COST", {}, kRowN, 0.0);
  b.col("X", {"a"}, 0.0, INF);
  b.col("SHIP", {"a", "b"}, 0.0, INF);
  b.col("X", {"b"}, 0.0, INF);
  b.col("SHIPPING", {}, 0.0, INF);
  for (int32_t j = 1; j <= 4; ++j) b.add(1, j, 1.0);
  return b;
}

TEST(BlockTables, BlocksInOrderOfFirstOccurrenceWithRhsBehindTheVariables) {
  RunFixture fx;
  fx.start(scattered().build());
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
  ModelBuilder b;
  b.row("R", {"1"}, kRowL, 1.0);
  b.col("ONLY", {"1"}, 0.0, INF);
  b.col("ONLY", {"2"}, 0.0, INF);
  b.add(1, 1, 1.0);
  b.add(1, 2, 1.0);
  RunFixture fx;
  fx.start(b.build());
  Blocks t(1, 1, 1, 2);
  t.build(1, 1);
  EXPECT_EQ(t.colUsed, 1);
  EXPECT_EQ(t.col(1), name31("ONLY"));
  EXPECT_EQ(t.col(2), name31("RHS"));
  EXPECT_EQ(t.colCount, (std::vector<int32_t>{2}));
  EXPECT_EQ(t.rowUsed, 1);
}

// Runs buildBlockTables with the given capacities in a child process whose status and log
// channels are files; the child must stop with exit code 77.
void expectCapacityStop(int32_t icblock, int32_t irblock, const std::string& tag) {
  const std::string statusPath = ::testing::TempDir() + "blocks_status_" + tag;
  const std::string logPath = ::testing::TempDir() + "blocks_log_" + tag;
  std::remove(statusPath.c_str());
  std::remove(logPath.c_str());
  RunFixture fx;
  fx.start(scattered().build());
  auto child = [&] {
    runState.statusChannel = Channel{std::fopen(statusPath.c_str(), "w"), nullptr};
    runState.logChannel = Channel{std::fopen(logPath.c_str(), "w"), nullptr};
    Blocks t(icblock, irblock, 5, 4);
    t.build(icblock, irblock);
    std::exit(0);
  };
  EXPECT_EXIT(child(), ::testing::ExitedWithCode(77), "");
}

TEST(BlockTables, TooManyVariableBlocksStopTheRun) {
  expectCapacityStop(2, 6, "var");
  const std::string dir = ::testing::TempDir();
  EXPECT_EQ(readLines(dir + "blocks_status_var"),
            (std::vector<std::string>{"  Exceeded maximum variable blocks which is   2",
                                      " Expand or drop VARBLOCK option in MODRAKE.OPT", " ",
                                      "=2"}));
  EXPECT_EQ(readLines(dir + "blocks_log_var"),
            (std::vector<std::string>{"  Exceeded maximum variable blocks which is   2",
                                      " Expand or drop VARBLOCK option in MODRAKE.OPT"}));
}

TEST(BlockTables, TooManyEquationBlocksStopTheRun) {
  expectCapacityStop(6, 3, "equ");
  const std::string dir = ::testing::TempDir();
  EXPECT_EQ(readLines(dir + "blocks_status_equ"),
            (std::vector<std::string>{"  Exceeded maximum equation blocks which is   3",
                                      " Expand or drop EQUBLOCK option in MODRAKE.OPT", "=2"}));
  EXPECT_EQ(readLines(dir + "blocks_log_equ"),
            (std::vector<std::string>{"  Exceeded maximum equation blocks which is   3",
                                      " Expand or drop EQUBLOCK option in MODRAKE.OPT"}));
}

}  // namespace
