#include "host/memory.h"

#include <sys/mman.h>

#include <cstdint>

void hostPreferHugePages(void* p, std::size_t bytes) {
  constexpr uintptr_t kHuge = uintptr_t{2} << 20;
  const uintptr_t start = (reinterpret_cast<uintptr_t>(p) + kHuge - 1) & ~(kHuge - 1);
  const uintptr_t end = (reinterpret_cast<uintptr_t>(p) + bytes) & ~(kHuge - 1);
  if (end > start) madvise(reinterpret_cast<void*>(start), end - start, MADV_HUGEPAGE);
}
