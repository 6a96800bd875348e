// Asking for memory ahead of its use. A large model is mostly lookups and sums scattered over
// millions of names and rows; a loop that knows which cell it will reach a few steps on asks
// for its cache line now, so that the read finds it in the cache.
#pragma once

// Asks for the cache line at `p` ahead of its use. Written so that the compiler keeps it even
// where nothing else of the code around it stays.
inline void hostPrefetch(const void* p) {
#if defined(__x86_64__) || defined(__i386__)
  asm volatile("prefetcht0 %0" : : "m"(*static_cast<const char*>(p)));
#else
  __builtin_prefetch(p);
#endif
}
