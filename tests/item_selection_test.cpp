// Item selection: patterns against names, an item against a list at each scope, and the run of
// a whole model through both lists with its messages.
#include "request/item_selection.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "request_harness.h"

namespace {

using request_test::Section;
using Lines = std::vector<std::string>;

TEST(MatchPattern, EveryRuleOfThePatterns) {
  struct Case {
    std::string pattern, text;
    bool met;
  };
  const std::string a31(31, 'A');
  // clang-format off
  const std::vector<Case> cases = {
      {"*", "anything", true},   {"*ABC", "XYZ", true},      {"AB*CD", "ABXY", true},
      {"AB*", "A", false},       {"A?", "A", true},          {"A?", "ab", true},
      {"A?", "ABC", false},      {"?", "", true},            {"AB", "ab", true},
      {"AB", "AB", true},        {"AB", "ABC", false},       {"ABC", "AB", false},
      {"\"A*\"", "a*", true},    {"\"A*\"", "AB", false},    {"'NEW YORK'", "new york", true},
      {"'NEW*'", "NEWARK", false}, {"\"AB", "ab", true},      {"\"AB'", "\"ab\"", true},
      {"", "X", true},           {"   ", "X", true},         {"  AB", "ab", true},
      {"AB", "  'ab", true},     {"A B", "A\tB", true},      {a31, a31 + "BCD", true},
      {a31 + "X", a31, true},    {"\xc3\xa9", "\xc3\xa9", true}, {"BC", "abc", false},
      {"X*", "  'x1", true},
  };
  // clang-format on
  for (const Case& c : cases) {
    SCOPED_TRACE(c.pattern + " against " + c.text);
    EXPECT_EQ(matchPattern(c.pattern, c.text), c.met);
  }
}

// An item as the tests name it: symbol and labels.
struct Item {
  std::string symbol;
  std::vector<std::string> labels;
  mutable char text[LABELS_LEN] = {};
  ItemName name() const {
    const TextTable t{text, NAME_LEN, MAX_SYMBOL_DIM};
    for (int32_t p = 1; p <= MAX_SYMBOL_DIM; ++p) {
      t.set(p, p <= dim() ? labels[static_cast<size_t>(p - 1)] : "");
    }
    return {symbol, t, dim()};
  }
  int32_t dim() const { return static_cast<int32_t>(labels.size()); }
};

TEST(MatchRequests, ElementPositionsAndSymbols) {
  Section s;
  s.read(PROC_DISPLAYCR, {"VARIABLE", "X(A)", "X(*,B)", "*(C)", "X(A, B)"});
  const RequestLists& l = s.tables.lists;
  struct Case {
    Item item;
    std::vector<int32_t> found;  // requests met
  };
  const std::vector<Case> cases = {
      {Item{"x", {"a", "b"}}, {1, 2, 4}},   {Item{"X", {"D"}}, {2}},
      {Item{"X", {}}, {1, 2, 3, 4}},        {Item{"Y", {"C", "Q"}}, {3}},
      {Item{"X", {"A", "Z", "B"}}, {1, 4}}, {Item{"X", {"A", "Z", "C"}}, {1}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.item.symbol + " of dimension " + std::to_string(c.item.dim()));
    l.col.selSpec.fill(0);
    const ItemMatch m = matchVarRequests(c.item.name(), l, SCOPE_ALL, 0, PROC_DISPLAYCR, nullptr);
    std::vector<int32_t> found;
    for (int32_t k = 1; k <= l.varCount; ++k) {
      if (l.col.selSpec(k, SPEC_FOUND) == 1) found.push_back(k);
    }
    EXPECT_EQ(found, c.found);
    EXPECT_EQ(m.selected, 1);
  }
}

// The scope says which requests are tested; the codes come from the last request met that has
// one. A memo gives the same answers.
TEST(MatchRequests, ScopesAndCodes) {
  Section s;
  s.read(PROC_POSTOPT, {"EQUATION", "S", "BINDING", "INEQUATION", "S(A)", "T"});
  const RequestLists& l = s.tables.lists;
  const Item item{"S", {"A"}};
  SymbolMemo memo;
  for (SymbolMemo* m : {static_cast<SymbolMemo*>(nullptr), &memo}) {
    l.row.selSpec.fill(0);
    l.row.selSpec(1, SPEC_DIRECT) = 3;
    l.row.selSpec(2, SPEC_CROSS) = 1;
    const ItemMatch all = matchEquRequests(item.name(), l, SCOPE_ALL, 0, PROC_POSTOPT, m);
    EXPECT_EQ((std::vector<int32_t>{all.selected, all.directCode, all.crossCode}),
              (std::vector<int32_t>{1, 3, 1}));
    EXPECT_EQ(l.row.selSpec(2, SPEC_FOUND), 1);
    l.row.selSpec(2, SPEC_FOUND) = 0;
    const ItemMatch first = matchEquRequests(item.name(), l, SCOPE_FIRST, 0, PROC_POSTOPT, m);
    EXPECT_EQ(first.crossCode, 0);
    EXPECT_EQ(l.row.selSpec(2, SPEC_FOUND), 0);
    const ItemMatch one = matchEquRequests(item.name(), l, SCOPE_ONE, 3, PROC_POSTOPT, m);
    EXPECT_EQ(one.selected, 0);
    const ItemMatch other =
        matchEquRequests(Item{"T", {}}.name(), l, SCOPE_ONE, 3, PROC_POSTOPT, m);
    EXPECT_EQ(other.selected, 1);
  }
}

TEST(MatchRequests, EmptyListsByProcedure) {
  struct Case {
    int32_t procIndex, equCount;
    std::vector<int32_t> var, equ;  // selected, directCode of each side
  };
  const std::vector<Case> cases = {
      {PROC_DISPLAYCR, 0, {1, 3}, {0, 0}}, {PROC_POSTOPT, 2, {0, 0}, {}},
      {PROC_PICTURE, 2, {1, 3}, {}},       {PROC_MATCHIT, 0, {1, 3}, {0, 1}},
      {PROC_NONOPT, 0, {1, 3}, {0, 1}},
  };
  const Item item{"X", {"A"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.procIndex);
    request_test::Tables t;
    t.lists.equCount = c.equCount;
    const ItemMatch v = matchVarRequests(item.name(), t.lists, SCOPE_ALL, 0, c.procIndex, nullptr);
    EXPECT_EQ((std::vector<int32_t>{v.selected, v.directCode}), c.var);
    if (c.equCount > 0) continue;
    const ItemMatch e = matchEquRequests(item.name(), t.lists, SCOPE_ALL, 0, c.procIndex, nullptr);
    EXPECT_EQ((std::vector<int32_t>{e.selected, e.directCode}), c.equ);
  }
}

struct ResolveRequests : ::testing::Test {
  analysis_test::RunFixture fx;
  void SetUp() override {
    fx.start(analysis_test::modelFile("requests/unmet-requests.json"));
  }
  std::vector<int32_t> resolve(Section& s, int32_t procIndex) {
    std::vector<int32_t> rows(3, 0);
    SelectionContext c{&runState, procIndex, 3, 2, runState.dictionary, &s.statusChannel,
                       &s.logChannel};
    resolveRequests(c, s.tables.lists, Vec1<int32_t>{rows.data(), 3});
    return rows;
  }
};

TEST_F(ResolveRequests, MarksRowsAndTellsWhatMetNothing) {
  Section s;
  s.read(PROC_PICTURE,
         {"VARIABLE", "X(SEATTLE,*)", "Y", "BINDING", "EQUATION", "supply('san diego')", "Z(A)"});
  EXPECT_EQ(resolve(s, PROC_PICTURE), (std::vector<int32_t>{0, 3, 0}));
  EXPECT_TRUE(matchesGolden(s.log, "requests/unmet-requests.log"));
  EXPECT_TRUE(matchesGolden(s.status, "requests/unmet-requests.status"));
  EXPECT_EQ(s.tables.lists.col.selSpec(1, SPEC_FOUND), 1);
}

// Without equation requests every row counts beyond POSTOPT; the supplied request that meets
// nothing stays silent.
TEST_F(ResolveRequests, AllRowsAndSilentNoway) {
  Section picture;
  picture.read(PROC_PICTURE, {"VARIABLE", "X"});
  EXPECT_EQ(resolve(picture, PROC_PICTURE), (std::vector<int32_t>{-1, -1, -1}));
  Section display;
  display.read(PROC_DISPLAYCR, {"VARIABLE", "X"});
  EXPECT_EQ(resolve(display, PROC_DISPLAYCR), (std::vector<int32_t>{0, 0, 0}));
  Section cross;
  cross.read(PROC_PICTURE, {"INEQUATION", "DEMAND"});
  EXPECT_EQ(resolve(cross, PROC_PICTURE), (std::vector<int32_t>{0, 0, 3}));
  EXPECT_TRUE(picture.log.empty() && display.log.empty() && cross.log.empty());
}

}  // namespace
