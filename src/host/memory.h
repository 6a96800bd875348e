// Large arrays on huge pages. A model of millions of entries fills arrays of hundreds of
// megabytes, each touched first where it is filled; asked for huge pages before that, the kernel
// turns hundreds of thousands of page faults, each zeroing 4 KB, into a few hundred, and random
// reads of a large table miss the address cache far less often. Where the kernel has none to
// give, nothing changes.
#pragma once

#include <cstddef>

// Asks for huge pages over the 2 MB-aligned middle of [p, p + bytes).
void hostPreferHugePages(void* p, std::size_t bytes);

// Room for `n` elements in vector `v`, on huge pages, before it is filled.
template <class Vector>
void hostReserveHuge(Vector& v, std::size_t n) {
  v.reserve(n);
  hostPreferHugePages(v.data(), v.capacity() * sizeof(typename Vector::value_type));
}

// Asks for the cache line at `p` ahead of its use. Written so that the compiler keeps it even
// where nothing else of the code around it stays.
inline void hostPrefetch(const void* p) {
#if defined(__x86_64__) || defined(__i386__)
  asm volatile("prefetcht0 %0" : : "m"(*static_cast<const char*>(p)));
#else
  __builtin_prefetch(p);
#endif
}
