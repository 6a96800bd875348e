// Names kept once in an arena and found by an open-addressing hash table. A slot holds the upper
// bits of the name's hash, its index and length, and its first kInline bytes, so that finding a
// name of up to kInline bytes, as most model names are, reads one slot and nothing else; the
// rest of a longer name is compared in the arena. Readers use it for the names of a file, and
// the rule of distinct names for the keys of a model's items.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "host/memory.h"

template <std::size_t kInline>
struct NameTableOf {
  struct alignas(kInline > 0 ? 32 : 16) Slot {
    uint32_t tag = 0;
    int32_t index = -1;  // -1: an empty slot
    uint32_t length = 0;
    std::array<char, kInline> text{};
  };
  std::string arena;                  // the names' texts, one after the other
  std::vector<std::size_t> start{0};  // arena offset of each name, and one past the last
  std::vector<Slot> slots;

  int32_t size() const { return static_cast<int32_t>(start.size() - 1); }
  std::string_view name(int32_t k) const {
    const auto at = static_cast<std::size_t>(k);
    return std::string_view(arena).substr(start[at], start[at + 1] - start[at]);
  }
  // Eight bytes at a time: names run from a few bytes to a few dozen.
  static uint64_t hash(std::string_view s) {
    uint64_t h = s.size() * 0x9e3779b97f4a7c15ull;
    std::size_t i = 0;
    for (; i + 8 <= s.size(); i += 8) {
      uint64_t w;
      std::memcpy(&w, s.data() + i, 8);
      h = (h ^ w) * 0xbf58476d1ce4e5b9ull;
      h ^= h >> 31;
    }
    if (i < s.size()) {  // the last bytes: the last eight of a long name, else one by one
      uint64_t w = 0;
      if (s.size() >= 8) {
        std::memcpy(&w, s.data() + s.size() - 8, 8);
      } else {
        for (; i < s.size(); ++i) w = (w << 8) | static_cast<unsigned char>(s[i]);
      }
      h = (h ^ w) * 0x94d049bb133111ebull;
    }
    // The products carry a byte's change only upwards: mix the high bits into the low ones
    // that pick the slot.
    h ^= h >> 32;
    h *= 0xd6e8feb86659fd93ull;
    return h ^ (h >> 32);
  }
  bool holds(const Slot& slot, uint32_t tag, std::string_view s) const {
    if (slot.tag != tag || slot.length != s.size()) return false;
    if (kInline > 0 && std::memcmp(slot.text.data(), s.data(), std::min(s.size(), kInline)) != 0)
      return false;
    return s.size() <= kInline || name(slot.index) == s;
  }
  // The slot where `s`, of hash `h`, is or would go.
  std::size_t slotOf(std::string_view s, uint64_t h) const {
    const std::size_t mask = slots.size() - 1;
    const auto tag = static_cast<uint32_t>(h >> 32);
    std::size_t at = static_cast<std::size_t>(h) & mask;
    while (slots[at].index >= 0 && !holds(slots[at], tag, s)) at = (at + 1) & mask;
    return at;
  }
  // The index of `s`, or -1.
  int32_t find(std::string_view s) const { return find(s, hash(s)); }
  // The same for `s` of hash `h`, which `prefetch` has begun to fetch.
  int32_t find(std::string_view s, uint64_t h) const {
    if (slots.empty()) return -1;
    return slots[slotOf(s, h)].index;
  }
  // The hash of `s`, with its slot asked for from memory: a reader that looks up several
  // names at once waits for their slots together instead of one after the other.
  uint64_t prefetch(std::string_view s) const {
    const uint64_t h = hash(s);
    if (!slots.empty()) hostPrefetch(&slots[static_cast<std::size_t>(h) & (slots.size() - 1)]);
    return h;
  }
  // Adds `s` without looking it up, for a reader that tells its names apart at once later,
  // with `index`, and until then neither finds nor inserts. Gives its index.
  int32_t append(std::string_view s) {
    arena.append(s);
    start.push_back(arena.size());
    return size() - 1;
  }
  // Makes the table over the names held, sized for them once, each name's slot asked for from
  // memory a few names before it is filled. Gives the first name that an earlier one holds
  // already, or -1; such a name has no slot of its own.
  int32_t index() {
    std::vector<Slot>().swap(slots);
    const std::size_t slotCount = slotsFor(static_cast<std::size_t>(size()));
    slots.assign(slotCount, Slot{});
    constexpr int32_t kAhead = 8;
    std::array<uint64_t, kAhead> ahead{};
    for (int32_t k = 0; k < std::min(kAhead, size()); ++k) ahead[k] = prefetch(name(k));
    int32_t repeated = -1;
    for (int32_t k = 0; k < size(); ++k) {
      const uint64_t h = ahead[k % kAhead];
      if (k + kAhead < size()) ahead[k % kAhead] = prefetch(name(k + kAhead));
      const std::string_view t = name(k);
      Slot& slot = slots[slotOf(t, h)];
      if (slot.index >= 0) {
        if (repeated < 0) repeated = k;
        continue;
      }
      fill(slot, h, t, k);
    }
    return repeated;
  }
  // Room for `n` names without growing the table, which is then up to 70 percent full.
  void reserve(std::size_t n) {
    if (slotsFor(n) > slots.size()) rehash(slotsFor(n));
  }
  // The index of `s`, added when it is not there yet (then the index is size() - 1), found with
  // one probe of the table.
  int32_t insert(std::string_view s) { return insert(s, hash(s)); }
  // The same for `s` of hash `h`.
  int32_t insert(std::string_view s, uint64_t h) {
    if (static_cast<std::size_t>(size() + 1) * 10 > slots.size() * 7) {
      rehash(std::max<std::size_t>(64, slots.size() * 2));
    }
    Slot& slot = slots[slotOf(s, h)];
    if (slot.index >= 0) return slot.index;
    const int32_t k = size();
    arena.append(s);
    start.push_back(arena.size());
    fill(slot, h, s, k);
    return k;
  }

 private:
  static std::size_t slotsFor(std::size_t n) {
    std::size_t want = 64;
    while (want * 7 < n * 10) want *= 2;
    return want;
  }
  void rehash(std::size_t slotCount) {
    std::vector<Slot>().swap(slots);
    slots.assign(slotCount, Slot{});
    for (int32_t k = 0; k < size(); ++k) {
      const std::string_view t = name(k);
      const uint64_t h = hash(t);
      fill(slots[slotOf(t, h)], h, t, k);
    }
  }
  static void fill(Slot& slot, uint64_t h, std::string_view s, int32_t k) {
    slot.tag = static_cast<uint32_t>(h >> 32);
    slot.index = k;
    slot.length = static_cast<uint32_t>(s.size());
    if constexpr (kInline > 0) std::memcpy(slot.text.data(), s.data(), std::min(s.size(), kInline));
  }
};

// Model names: most are found by one slot.
using HostNameTable = NameTableOf<20>;
// Keys that are mostly added, rarely found: slots of 16 bytes, the text in the arena only.
using HostKeyTable = NameTableOf<0>;
