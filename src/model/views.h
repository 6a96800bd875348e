// Typed, 1-based views of regions of the work array (and of any other 1-based table).
#pragma once

#include <cassert>
#include <cstdint>
#include <cstring>
#include <string_view>

// A vector of n elements, indexed 1..n.
template <class T>
struct Vec1 {
  using value_type = T;
  T* base = nullptr;
  int32_t n = 0;

  T& operator[](int32_t i) const {
    assert(i >= 1 && i <= n);
    return base[i - 1];
  }
  int32_t size() const { return n; }
  T* begin() const { return base; }
  T* end() const { return base + n; }
  void fill(const T& v) const {
    for (int32_t i = 0; i < n; ++i) base[i] = v;
  }
};

// A table of rows x cols elements, first index fastest: (i, k) stands at i + (k-1) x rows.
template <class T>
struct Table2 {
  using value_type = T;
  T* base = nullptr;
  int32_t rows = 0;
  int32_t cols = 0;

  T& operator()(int32_t i, int32_t k) const {
    assert(i >= 1 && i <= rows && k >= 1 && k <= cols);
    return base[(i - 1) + static_cast<int64_t>(k - 1) * rows];
  }
  void fill(const T& v) const {
    const int64_t total = static_cast<int64_t>(rows) * cols;
    for (int64_t p = 0; p < total; ++p) base[p] = v;
  }
};

// A table of n1 x n2 x n3 elements, first index fastest.
template <class T>
struct Table3 {
  using value_type = T;
  T* base = nullptr;
  int32_t n1 = 0;
  int32_t n2 = 0;
  int32_t n3 = 0;

  T& operator()(int32_t i, int32_t t, int32_t s) const {
    assert(i >= 1 && i <= n1 && t >= 1 && t <= n2 && s >= 1 && s <= n3);
    return base[(i - 1) + static_cast<int64_t>(n1) * ((t - 1) + static_cast<int64_t>(n2) * (s - 1))];
  }
  void fill(const T& v) const {
    const int64_t total = static_cast<int64_t>(n1) * n2 * n3;
    for (int64_t p = 0; p < total; ++p) base[p] = v;
  }
};

// A table of n fixed-width, blank-padded texts, indexed 1..n.
struct TextTable {
  using value_type = char;
  char* base = nullptr;
  int32_t width = 0;
  int32_t n = 0;

  char* at(int32_t k) const {
    assert(k >= 1 && k <= n);
    return base + static_cast<int64_t>(k - 1) * width;
  }
  std::string_view view(int32_t k) const { return {at(k), static_cast<size_t>(width)}; }
  // Stores `text`, cut to the width or padded with blanks.
  void set(int32_t k, std::string_view text) const {
    char* p = at(k);
    const size_t w = static_cast<size_t>(width);
    const size_t m = text.size() < w ? text.size() : w;
    std::memcpy(p, text.data(), m);
    std::memset(p + m, ' ', w - m);
  }
};
