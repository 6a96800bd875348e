// The work array's layouts: the worked example of ANALYSIS, regions that tile the array without
// overlap, the solution regions kept from the solution step to the DISPLAYCR engine, the sizing
// phase, and the overflow test.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "model/work_array.h"

namespace {

// Distinct sizes, so that a region sized by the wrong count shows.
PartitionSizes oddSizes() {
  PartitionSizes s;
  s.rowCount = 7;
  s.colCount = 11;
  s.nzCount = 13;
  s.colSelCapacity = 5;
  s.rowSelCapacity = 3;
  s.icblock = 6;
  s.irblock = 9;
  return s;
}

struct Layout {
  bool fits = false;
  int64_t total = 0;
  std::vector<RegionSpan> spans;
};

Layout layout(Phase phase, const PartitionSizes& s) {
  Layout l;
  l.fits = partitionWorkArray(phase, s, 1, l.total, &l.spans);
  return l;
}

constexpr Phase kPhases[] = {Phase::Solution, Phase::Display,   Phase::Picture, Phase::BlockPic,
                             Phase::Analysis, Phase::BlockList, Phase::MatchIt};

}  // namespace

TEST(WorkArrayPartition, ElementSizes) {
  EXPECT_EQ(wordsOfDouble(5), 5);
  EXPECT_EQ(wordsOfInt32(4), 3);
  EXPECT_EQ(wordsOfInt32(5), 3);
  EXPECT_EQ(wordsOfInt32(0), 1);
  EXPECT_EQ(wordsOfChar(31 * 5), 20);
  EXPECT_EQ(wordsOfChar(8), 2);
  EXPECT_EQ(wordsOfChar(7), 1);
}

// Three rows and four columns: regions of 3, 25, 11, 2, 14, 12, 3 and 4 words, 75 in all.
TEST(WorkArrayPartition, AnalysisExampleOfThreeRowsAndFourColumns) {
  PartitionSizes s;
  s.rowCount = 3;
  s.colCount = 4;
  const Layout l = layout(Phase::Analysis, s);
  ASSERT_TRUE(l.fits);
  std::vector<int64_t> starts;
  for (const RegionSpan& r : l.spans) starts.push_back(r.start);
  EXPECT_EQ(starts, (std::vector<int64_t>{1, 4, 29, 40, 42, 56, 68, 71}));
  EXPECT_EQ(l.total, 75);

  // The record's views stand at those words, with the shapes of their tables.
  ASSERT_TRUE(allocateWorkArray(l.total));
  bool fits = false;
  const AnalysisRegions r = phaseRegions<Phase::Analysis>(s, fits);
  ASSERT_TRUE(fits);
  const auto word = [](int64_t k) { return static_cast<char*>(workArray.words) + (k - 1) * 8; };
  EXPECT_EQ(reinterpret_cast<char*>(r.colSignTable.base), word(4));
  EXPECT_EQ(reinterpret_cast<char*>(r.colScale.base), word(71));
  EXPECT_EQ(r.colSignTable.n1 * r.colSignTable.n2 * r.colSignTable.n3, 4 * 4 * 3);
  EXPECT_EQ(r.rowActivity.rows * r.rowActivity.cols, 3 * 4);
  EXPECT_EQ(r.colScale.n, 4);
}

TEST(WorkArrayPartition, RegionsTileEveryLayoutWithoutOverlap) {
  PartitionSizes big = oddSizes();
  big.rowCount = 1001;
  big.colCount = 2003;
  big.nzCount = 9999;
  big.colSelCapacity = 1000;
  for (const PartitionSizes& s : {oddSizes(), big}) {
    for (Phase phase : kPhases) {
      const Layout l = layout(phase, s);
      SCOPED_TRACE("phase " + std::to_string(static_cast<int>(phase)));
      ASSERT_TRUE(l.fits);
      int64_t next = 1;
      for (const RegionSpan& r : l.spans) {
        EXPECT_EQ(r.start, next);
        EXPECT_GE(r.words, 1);
        next = r.start + r.words;
      }
      EXPECT_EQ(l.total, next);
    }
  }
}

TEST(WorkArrayPartition, SolutionRegionsKeepTheirStartsFromPhaseOneToTwo) {
  const Layout one = layout(Phase::Solution, oddSizes());
  const Layout two = layout(Phase::Display, oddSizes());
  ASSERT_EQ(one.spans.size(), 11u);
  ASSERT_GT(two.spans.size(), 11u);
  for (size_t k = 0; k < 11; ++k) EXPECT_EQ(one.spans[k].start, two.spans[k].start) << k;
  EXPECT_EQ(one.total, two.spans[11].start);
}

// An empty list still takes a word. One request more on each side adds, in phase 2, the words
// of 375 + 31 + 310 characters and of 1 + 5 integers: 46 + 3 + 38 + 0 + 2 = 89 a side.
TEST(WorkArrayPartition, SelectionListsAreSizedByTheirCapacities) {
  PartitionSizes empty = oddSizes();
  empty.colSelCapacity = 0;
  empty.rowSelCapacity = 0;
  PartitionSizes one = empty;
  one.colSelCapacity = 1;
  one.rowSelCapacity = 1;
  EXPECT_EQ(layout(Phase::Display, one).total - layout(Phase::Display, empty).total, 2 * 89);
  // MATCHIT's tallies add 6 integers and a flag a side: 3 + 0 more words each.
  EXPECT_EQ(layout(Phase::MatchIt, one).total - layout(Phase::MatchIt, empty).total,
            2 * (89 + 3));
}

// The control file may give request capacities down to -9999: such a list is sized as an empty
// one, and no region runs backwards over the ones before it.
TEST(WorkArrayPartition, NegativeRequestCapacitiesSizeAsEmptyLists) {
  PartitionSizes negative = oddSizes();
  negative.colSelCapacity = -9999;
  negative.rowSelCapacity = -5;
  PartitionSizes empty = oddSizes();
  empty.colSelCapacity = 0;
  empty.rowSelCapacity = 0;
  for (Phase phase : {Phase::Display, Phase::Picture, Phase::MatchIt, Phase::Largest}) {
    const Layout p = layout(phase, negative);
    const Layout q = layout(phase, empty);
    EXPECT_TRUE(p.fits);
    EXPECT_EQ(p.total, q.total) << static_cast<int>(phase);
    for (size_t k = 0; k < p.spans.size(); ++k) EXPECT_EQ(p.spans[k].start, q.spans[k].start);
  }
}

TEST(WorkArrayPartition, SizingPhaseTakesTheLargestLayout) {
  PartitionSizes picture = oddSizes();  // picText dominates
  picture.rowCount = 5000;
  PartitionSizes blocks = oddSizes();   // the block pair tables dominate
  blocks.icblock = 300;
  blocks.irblock = 400;
  PartitionSizes requests = oddSizes(); // the selection lists dominate phases 2 and 7
  requests.colSelCapacity = 4000;
  const std::pair<PartitionSizes, Phase> cases[] = {
      {picture, Phase::Picture}, {blocks, Phase::BlockPic}, {requests, Phase::MatchIt}};
  for (const auto& [s, leader] : cases) {
    int64_t largest = 0;
    for (Phase phase : kPhases) largest = std::max(largest, layout(phase, s).total);
    const Layout all = layout(Phase::Largest, s);
    EXPECT_TRUE(all.fits);
    EXPECT_EQ(all.total, largest);
    EXPECT_EQ(all.total, layout(leader, s).total);
  }
}

// The block pair tables: 50000 x 50000 exceeds 2147483647 already as a product; 46341 x 46341
// = 2147488281 just above; 46340 x 46340 = 2147395600 fits, but two double tables of that many
// words do not: the 32-bit sum wraps and differs from the sum in double precision. Well inside
// the range the test passes.
TEST(WorkArrayPartition, OverflowOfTheBlockPairTables) {
  const struct {
    int32_t blocks;
    bool fits;
  } cases[] = {{50000, false}, {46341, false}, {46340, false}, {1000, true}};
  for (const auto& c : cases) {
    PartitionSizes s = oddSizes();
    s.icblock = s.irblock = c.blocks;
    EXPECT_EQ(layout(Phase::BlockPic, s).fits, c.fits) << c.blocks;
    EXPECT_EQ(layout(Phase::Largest, s).fits, c.fits) << c.blocks;
  }
}
