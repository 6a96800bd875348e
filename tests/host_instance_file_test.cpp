// The instance in binary form: what goes in comes back, and a short, foreign, newer or
// damaged file is refused without reading past its end.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include "host/instance_file.h"
#include "host/readers.h"
#include "host/solution_file.h"
#include "generator.h"
#include "golden.h"
#include "host_test_files.h"

namespace {

// A model with a dictionary, quotes, scale factors and a solution whose values are none of them
// the defaults: every kind of field.
HostInstance sample() {
  HostInstance in;
  EXPECT_TRUE(hostReadTestModel("small.json", in));
  std::string error;
  EXPECT_TRUE(hostAutoScale(in, error)) << error;
  HostSolution solution;
  EXPECT_TRUE(readSolutionFile(hostTestData("small-integer.sol"), in, solution, error)) << error;
  applySolution(in, solution);
  return in;
}

TEST(InstanceFile, WhatGoesInComesBack) {
  HostScratch scratch;
  const HostInstance in = sample();
  std::string error;
  const std::string first = scratch.path("a.ins"), second = scratch.path("b.ins");
  ASSERT_TRUE(writeInstanceFile(first, in, error)) << error;
  HostInstance back;
  ASSERT_TRUE(loadInstanceFile(first, back, error)) << error;
  // Written again, the file is the same to the byte: no field was lost or changed.
  ASSERT_TRUE(writeInstanceFile(second, back, error)) << error;
  EXPECT_EQ(readFile(first), readFile(second));
  ASSERT_EQ(back.rowCount, in.rowCount);
  for (int32_t i = 0; i < in.rowCount; ++i) EXPECT_EQ(hostRowName(back, i), hostRowName(in, i));
  EXPECT_EQ(back.rowScale, in.rowScale);
  EXPECT_EQ(back.colLevel, in.colLevel);
  EXPECT_EQ(back.colCStat, in.colCStat);
  EXPECT_EQ(back.labels.size(), in.labels.size());
  EXPECT_EQ(back.labels[in.labels.size() - 1].quote, in.labels.back().quote);
  EXPECT_TRUE(back.hasSolution && back.hasScale);
  EXPECT_EQ(back.solveStat, 3);
}

// The generator's model of `columns` columns, read from its file in `scratch`.
HostInstance generated(HostScratch& scratch, int64_t columns, uint64_t seed) {
  const std::string model = scratch.path("gen.mps");
  HostInstance in;
  std::FILE* f = std::fopen(model.c_str(), "w");
  EXPECT_NE(f, nullptr);
  if (f == nullptr) return in;
  EXPECT_TRUE(generateMps(MpsGeneratorSettings{columns, seed, false, false}, f));
  std::fclose(f);
  EXPECT_TRUE(hostRead({model, ModelFormat::Mps, "", {}}, in));
  return in;
}

// Arrays longer than the pieces the reader reads them in come back whole.
TEST(InstanceFile, LongArraysComeBackWhole) {
  HostScratch scratch;
  const HostInstance in = generated(scratch, 3000, 7);
  HostInstance back;
  ASSERT_GT(in.entryValue.size(), 3 * 4096u);
  std::string error;
  const std::string first = scratch.path("a.ins"), second = scratch.path("b.ins");
  ASSERT_TRUE(writeInstanceFile(first, in, error)) << error;
  ASSERT_TRUE(loadInstanceFile(first, back, error)) << error;
  ASSERT_TRUE(writeInstanceFile(second, back, error)) << error;
  EXPECT_EQ(readFile(first), readFile(second));
  EXPECT_EQ(back.entryValue, in.entryValue);
  EXPECT_EQ(back.entryRow, in.entryRow);
}

// A model without a solution hands over no solution vectors when they hold what the loader
// makes again (levels 0, statuses from level 0); one status of its own keeps them all.
TEST(InstanceFile, SolutionVectorsOfNoSolutionAreMadeAgainOnLoading) {
  HostScratch scratch;
  const HostInstance in = generated(scratch, 400, 3);
  ASSERT_GT(in.colCount, 0);
  ASSERT_FALSE(in.hasSolution);
  // The generator's bounds put columns at level 0 both at their lower bound and between bounds.
  for (int32_t stat : {0, 2}) {
    EXPECT_NE(std::count(in.colStat.begin(), in.colStat.end(), stat), 0) << stat;
  }
  std::string error;
  const std::string bare = scratch.path("bare.ins"), kept = scratch.path("kept.ins");
  ASSERT_TRUE(writeInstanceFile(bare, in, error)) << error;
  HostInstance back;
  ASSERT_TRUE(loadInstanceFile(bare, back, error)) << error;
  EXPECT_EQ(back.rowLevel, in.rowLevel);
  EXPECT_EQ(back.rowMarginal, in.rowMarginal);
  EXPECT_EQ(back.rowStat, in.rowStat);
  EXPECT_EQ(back.rowCStat, in.rowCStat);
  EXPECT_EQ(back.colLevel, in.colLevel);
  EXPECT_EQ(back.colMarginal, in.colMarginal);
  EXPECT_EQ(back.colStat, in.colStat);
  EXPECT_EQ(back.colCStat, in.colCStat);

  HostInstance own = in;
  own.colStat[5] = 3;
  ASSERT_TRUE(writeInstanceFile(kept, own, error)) << error;
  HostInstance ownBack;
  ASSERT_TRUE(loadInstanceFile(kept, ownBack, error)) << error;
  EXPECT_EQ(ownBack.colStat, own.colStat);
  // Left out: the level, marginal and two statuses of each row and column, 24 bytes each.
  const auto items = static_cast<std::size_t>(in.rowCount + in.colCount);
  EXPECT_EQ(readFile(kept).size() - readFile(bare).size(), 24 * items);
}

TEST(InstanceFile, ShortForeignNewerOrDamagedFilesAreRefused) {
  HostScratch scratch;
  std::string error;
  const std::string good = scratch.path("good.ins");
  ASSERT_TRUE(writeInstanceFile(good, sample(), error)) << error;
  const std::string bytes = readFile(good);
  struct Case {
    std::string text;
    std::string reason;
  };
  std::vector<Case> cases = {
      {"", "not an instance file of this host"},
      {"NAME x\nROWS\n", "not an instance file of this host"},
      {bytes.substr(0, 8) + std::string("\x03\0\0\0", 4) + bytes.substr(12),
       "instance file version 3, this host reads 2"},
      {bytes + "x", "the instance file is damaged (its checksum does not match)"},
  };
  // Cut anywhere after the header, the file is short.
  for (std::size_t cut : {std::size_t{12}, std::size_t{20}, bytes.size() / 3, bytes.size() / 2,
                          bytes.size() - 9, bytes.size() - 1})
    cases.push_back({bytes.substr(0, cut), "the instance file is cut short or damaged"});
  // A byte changed in a value is caught by the checksum; in the length of the first vector
  // (after the two names and the nine numbers), by the lengths no longer fitting the file.
  std::string changedValue = bytes;
  changedValue[bytes.size() - 28] ^= 0x10;  // in the last column's labels
  cases.push_back({changedValue, "the instance file is damaged (its checksum does not match)"});
  std::string hugeLength = bytes;
  const std::size_t firstVector = 12 + 8 + sample().inputName.size() + 8 +
                                  sample().sourcePath.size() + 4 * 4 + 3 + 2 * 4;
  hugeLength[firstVector + 6] = '\x7f';
  cases.push_back({hugeLength, "the instance file is cut short or damaged"});
  for (const Case& c : cases) {
    const std::string path = scratch.path("bad.ins");
    std::ofstream(path, std::ios::binary | std::ios::trunc) << c.text;
    HostInstance in;
    EXPECT_FALSE(loadInstanceFile(path, in, error)) << c.reason;
    EXPECT_EQ(error, path + ": " + c.reason);
    EXPECT_EQ(in.rowCount, 0);
  }
}

}  // namespace
