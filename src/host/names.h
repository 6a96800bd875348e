// Names of rows and columns into the dictionary's symbols and labels.
//
// `sym[l1,l2]` and `sym(l1,l2)` are symbol `sym` with labels `l1`, `l2`; a label in quotes keeps
// its quote character. A name without brackets that ends in digits is its stem with the digits
// as one label (`x17` is `x(17)`). Anything else is a scalar symbol. Equation and variable
// symbols are separate. A name whose label count differs from that of its symbol's first member
// becomes a scalar symbol of its own full name.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/instance.h"

inline constexpr std::size_t kHostLabelLen = 64;

struct HostName {
  std::string symbol;
  std::vector<HostLabel> labels;
  std::string full;   // the name as written; the scalar symbol when the labels do not fit
};

// Splits a name by the rules above.
HostName hostParseName(std::string_view name);

// A name from a symbol and its labels, as a native instance may give them.
HostName hostMakeName(std::string symbol, std::vector<HostLabel> labels);

// Fills the dictionary of `inst` (symbols, labels, rowSymbol/rowUels, colSymbol/colUels) from
// one name per row and per column. Labels longer than 64 characters are cut to 64; labels that
// differ only beyond that stay separate labels.
void hostBuildDictionary(HostInstance& inst, const std::vector<HostName>& rowNames,
                         const std::vector<HostName>& colNames);
