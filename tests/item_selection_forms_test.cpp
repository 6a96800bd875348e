// An item's label against an element pattern: a plain pattern is compared with the label's
// normal form, made once per item, and must meet exactly the labels that matchPattern meets.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "request/item_selection.h"
#include "request_harness.h"

namespace {

TEST(MatchRequests, ElementPatternsMeetWhatMatchPatternMeets) {
  const std::string a31(31, 'A');
  const std::vector<std::string> patterns = {"AB", "A", "A?", "AB*", "'AB'", "X1", a31};
  const std::vector<std::string> labels = {"ab",     "AB",   "AB X", "ab\tc", "  'ab", "abc",
                                           "a",      "A B",  "x1",   "\x01" "ab", "",
                                           a31 + "B", a31};
  request_test::Tables t(static_cast<int32_t>(patterns.size()), 1);
  SelectionSide& side = t.lists.col;
  t.lists.varCount = static_cast<int32_t>(patterns.size());
  for (int32_t k = 1; k <= t.lists.varCount; ++k) {
    side.symbol.set(k, "X");
    side.labels.set(k, "");
    TextTable{side.labelAt(k, 1), NAME_LEN, 1}.set(1, patterns[static_cast<size_t>(k - 1)]);
    side.dim[k] = 1;
  }
  SymbolMemo memo;
  for (const std::string& label : labels) {
    char text[LABELS_LEN];
    const TextTable names{text, NAME_LEN, MAX_SYMBOL_DIM};
    names.set(1, label);
    side.selSpec.fill(0);
    matchVarRequests(ItemName{"X", names, 1}, t.lists, SCOPE_ALL, 0, PROC_DISPLAYCR, &memo);
    for (int32_t k = 1; k <= t.lists.varCount; ++k) {
      const std::string& pattern = patterns[static_cast<size_t>(k - 1)];
      SCOPED_TRACE(pattern + " against " + label);
      EXPECT_EQ(side.selSpec(k, SPEC_FOUND) == 1, matchPattern(pattern, names.view(1)));
    }
  }
}

}  // namespace
