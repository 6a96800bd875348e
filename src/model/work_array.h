// The one work array of the run and its layouts. A phase's regions are laid out, one behind the
// other, from the table of its regions record (model/regions.h); the same walk fills the record
// with typed 1-based views into the array.
#pragma once

#include <cstdint>
#include <type_traits>
#include <vector>

#include "base/procedures.h"
#include "model/regions.h"
#include "model/views.h"

// The array itself: `total` words of 8 bytes, allocated once.
struct WorkArray {
  void* words = nullptr;
  int64_t total = 0;
};

extern WorkArray workArray;

// Words taken by n elements of each kind (division truncates).
inline int64_t wordsOfDouble(int64_t n) { return n; }
inline int64_t wordsOfInt32(int64_t n) { return n / 2 + 1; }
inline int64_t wordsOfChar(int64_t n) { return n / 8 + 1; }

// The value of one dimension for these sizes. A negative capacity of the control file sizes as
// an empty list, so that regions never run backwards over the ones before them.
int32_t dimValue(Dim d, const PartitionSizes& sizes);

// The sizes of the run's layouts.
PartitionSizes workArraySizes(const RunContext& run);

// Where one region of a layout stands: first word (1-based) and words taken.
struct RegionSpan {
  int64_t start = 0;
  int64_t words = 0;
};

// The walk that lays regions out: the next free word, the array the views point into (none
// when only the sizes are wanted), and the spans, kept when `spans` is given.
struct RegionCursor {
  const PartitionSizes& sizes;
  int64_t position = 1;
  char* words = nullptr;
  std::vector<RegionSpan>* spans = nullptr;
  bool overflow = false;  // a start beyond 32-bit word indices
};

// Lays the rows of `table` out at the cursor and, when it has an array, points the fields of
// `record` into it.
template <class R, size_t K>
void layRegions(RegionCursor& c, const std::array<RegionRow<R>, K>& table, R& record) {
  for (const RegionRow<R>& row : table) {
    std::visit(
        [&](auto field) {
          using View = std::remove_reference_t<decltype(record.*field)>;
          using T = typename View::value_type;
          const int32_t d1 = dimValue(row.dims[0], c.sizes);
          const int32_t d2 = dimValue(row.dims[1], c.sizes);
          const int32_t d3 = dimValue(row.dims[2], c.sizes);
          if (c.position > INT32_MAX) c.overflow = true;
          if (c.overflow) return;
          const int64_t count = int64_t{d1} * d2 * d3;
          int64_t words = wordsOfDouble(count);
          if constexpr (sizeof(T) == 4) words = wordsOfInt32(count);
          if constexpr (sizeof(T) == 1) words = wordsOfChar(count);
          if (c.spans != nullptr) c.spans->push_back({c.position, words});
          if (c.words != nullptr) {
            T* base = reinterpret_cast<T*>(c.words + (c.position - 1) * 8);
            if constexpr (std::is_same_v<View, Vec1<T>>) record.*field = View{base, d1};
            if constexpr (std::is_same_v<View, Table2<T>>) record.*field = View{base, d1, d2};
            if constexpr (std::is_same_v<View, Table3<T>>) record.*field = View{base, d1, d2, d3};
            if constexpr (std::is_same_v<View, TextTable>) record.*field = View{base, d1, d2};
          }
          c.position += words;
        },
        row.field);
  }
  if (c.position > INT32_MAX) c.overflow = true;
}

// One phase's layout into its record.
inline void layPhase(RegionCursor& c, SolutionRegions& r) {
  layRegions(c, regionTable<SolutionRegions>(), r);
}
inline void layPhase(RegionCursor& c, DisplayRegions& r) {
  layPhase(c, r.solution);
  layRegions(c, regionTable<DisplayRegions>(), r);
}
template <class R>
void layPhase(RegionCursor& c, R& r) {
  layRegions(c, regionTable<R>(), r);
}

// The record of each phase.
template <Phase P> struct PhaseRecord;
template <> struct PhaseRecord<Phase::Solution> { using type = SolutionRegions; };
template <> struct PhaseRecord<Phase::Display> { using type = DisplayRegions; };
template <> struct PhaseRecord<Phase::Picture> { using type = PictureRegions; };
template <> struct PhaseRecord<Phase::BlockPic> { using type = BlockPicRegions; };
template <> struct PhaseRecord<Phase::Analysis> { using type = AnalysisRegions; };
template <> struct PhaseRecord<Phase::BlockList> { using type = BlockListRegions; };
template <> struct PhaseRecord<Phase::MatchIt> { using type = MatchItRegions; };

// Lays `phase` out from word `start` without touching the array: gives one past the last word
// (for Largest, the largest of all layouts), and false on overflow. `spans`, when given, gets
// the span of every region in layout order.
bool partitionWorkArray(Phase phase, const PartitionSizes& sizes, int32_t start, int64_t& total,
                        std::vector<RegionSpan>* spans = nullptr);

// The regions record of phase P on workArray, from word 1; `fits` is false on overflow (the
// record then holds empty views).
template <Phase P>
typename PhaseRecord<P>::type phaseRegions(const PartitionSizes& sizes, bool& fits) {
  typename PhaseRecord<P>::type record{};
  int64_t total = 0;
  fits = partitionWorkArray(P, sizes, 1, total) && total - 1 <= workArray.total;
  if (!fits) return record;
  RegionCursor c{sizes, 1, static_cast<char*>(workArray.words)};
  layPhase(c, record);
  return record;
}

// Allocates workArray with `total` words; false when that fails.
bool allocateWorkArray(int64_t total);
