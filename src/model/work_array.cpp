#include "model/work_array.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>


WorkArray workArray;

int32_t dimValue(Dim d, const PartitionSizes& s) {
  int32_t v = d.times;
  switch (d.size) {
    case Size::One: break;
    case Size::Rows: v *= s.rowCount; break;
    case Size::Cols: v *= s.colCount; break;
    case Size::Entries: v *= s.nzCount; break;
    case Size::ColSel: v *= s.colSelCapacity; break;
    case Size::RowSel: v *= s.rowSelCapacity; break;
    case Size::ColBlocks: v *= s.icblock; break;
    case Size::RowBlocks: v *= s.irblock; break;
    case Size::ColBlocksAndRhs: v *= s.icblock + 1; break;
    case Size::PictureWidth: v *= s.pictureWidth; break;
  }
  return v < 0 ? 0 : v;
}

PartitionSizes workArraySizes(const RunContext& run) {
  return {run.rowCount,       run.colCount, run.nzCount, run.colSelCapacity,
          run.rowSelCapacity, run.icblock,  run.irblock, PICTURE_WIDTH};
}

namespace {

// The test of the layout with a product of two capacities: the product must fit, and the sum
// of its sizes in 32-bit integers must equal the same sum in double precision.
bool blockPicFits(int32_t start, const PartitionSizes& s) {
  if (static_cast<double>(s.icblock) * static_cast<double>(s.irblock) > 2147483647.0) return false;
  int32_t intSum = start;
  double realSum = start;
  int32_t wordsAdded = 0;
  BlockPicRegions record;
  for (const RegionRow<BlockPicRegions>& row : regionTable<BlockPicRegions>()) {
    std::visit(
        [&](auto field) {
          const int32_t elemSize = sizeof(typename std::remove_reference_t<
                                          decltype(record.*field)>::value_type);
          const int64_t count = int64_t{dimValue(row.dims[0], s)} * dimValue(row.dims[1], s) *
                                dimValue(row.dims[2], s);
          const auto count32 = static_cast<int32_t>(static_cast<uint32_t>(count));
          int32_t words = count32;
          double realWords = static_cast<double>(count);
          if (elemSize != 8) {
            const int32_t perWord = 8 / elemSize;
            words = count32 / perWord;
            realWords = std::floor(static_cast<double>(count) / perWord);
            ++wordsAdded;
          }
          // Wrapping addition, as 32-bit arithmetic would do it.
          intSum = static_cast<int32_t>(static_cast<uint32_t>(intSum) +
                                        static_cast<uint32_t>(words));
          realSum += realWords;
        },
        row.field);
  }
  intSum = static_cast<int32_t>(static_cast<uint32_t>(intSum) + static_cast<uint32_t>(wordsAdded));
  realSum += wordsAdded;
  return static_cast<double>(intSum) == realSum;
}

template <Phase P>
bool layOut(const PartitionSizes& sizes, int32_t start, int64_t& total,
            std::vector<RegionSpan>* spans) {
  typename PhaseRecord<P>::type record{};
  RegionCursor c{sizes, start, nullptr, spans};
  layPhase(c, record);
  total = c.position;
  return !c.overflow;
}

}  // namespace

bool partitionWorkArray(Phase phase, const PartitionSizes& sizes, int32_t start, int64_t& total,
                        std::vector<RegionSpan>* spans) {
  switch (phase) {
    case Phase::Largest: {
      int64_t largest = start;
      for (int32_t p = 1; p <= PHASE_COUNT; ++p) {
        int64_t t = start;
        const bool fits = partitionWorkArray(static_cast<Phase>(p), sizes, start, t, nullptr);
        if (t > largest) largest = t;
        if (!fits) {
          total = largest;
          return false;
        }
      }
      total = largest;
      return true;
    }
    case Phase::Solution: return layOut<Phase::Solution>(sizes, start, total, spans);
    case Phase::Display: return layOut<Phase::Display>(sizes, start, total, spans);
    case Phase::Picture: return layOut<Phase::Picture>(sizes, start, total, spans);
    case Phase::BlockPic:
      if (!blockPicFits(start, sizes)) {
        total = start;
        return false;
      }
      return layOut<Phase::BlockPic>(sizes, start, total, spans);
    case Phase::Analysis: return layOut<Phase::Analysis>(sizes, start, total, spans);
    case Phase::BlockList: return layOut<Phase::BlockList>(sizes, start, total, spans);
    case Phase::MatchIt: return layOut<Phase::MatchIt>(sizes, start, total, spans);
  }
  return false;
}

bool allocateWorkArray(int64_t total) {
  if (total < 1) total = 1;
  void* p = std::calloc(static_cast<size_t>(total), 8);
  if (p == nullptr) return false;
  std::free(workArray.words);  // a run allocates once; a test may allocate again
  workArray.words = p;
  workArray.total = total;
  return true;
}
