// Item labels: folding to a report width, and the names the dictionary gives rows and columns.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "analysis_fixture.h"
#include "model/blocks.h"

using analysis_test::modelFile;
using analysis_test::RunFixture;

namespace {

std::vector<std::string> fold(const std::string& text, int32_t width, int32_t capacity = 375) {
  std::vector<std::string> lines;
  foldItemLabel(text, width, lines, capacity);
  return lines;
}

using Lines = std::vector<std::string>;

TEST(FoldItemLabel, BreaksBehindCommasAndIndentsByTheSymbol) {
  EXPECT_EQ(fold("SUPPLY(SEATTLE,NEWYORK,CHICAGO)", 20),
            (Lines{"SUPPLY(SEATTLE,", "       NEWYORK,", "       CHICAGO)"}));
  // Several labels share a line while they fit.
  EXPECT_EQ(fold("A(B,C,D,E)", 6), (Lines{"A(B,C,", "  D,E)"}));
}

TEST(FoldItemLabel, TextsThatStayOneLine) {
  // Exactly the width.
  EXPECT_EQ(fold("SUPPLY(SEATTLE,NEWYORK)", 23), (Lines{"SUPPLY(SEATTLE,NEWYORK)"}));
  // No parenthesis: whole, however long.
  EXPECT_EQ(fold("TOTALCOSTOFTRANSPORT", 5), (Lines{"TOTALCOSTOFTRANSPORT"}));
  // "(" as the last character.
  EXPECT_EQ(fold("ABCDEFGHIJ(", 4), (Lines{"ABCDEFGHIJ("}));
  // Trailing blanks of a padded block name do not count.
  EXPECT_EQ(fold("DEMAND                         ", 10), (Lines{"DEMAND"}));
}

TEST(FoldItemLabel, AnElementWiderThanTheLineIsNotCutButTheCapacityCuts) {
  EXPECT_EQ(fold("X(AVERYLONGLABELNAME,B)", 10), (Lines{"X(AVERYLONGLABELNAME,", "  B)"}));
  EXPECT_EQ(fold("X(AVERYLONGLABELNAME,B)", 10, 8), (Lines{"X(AVERYL", "  B)"}));
}

// The rows and columns of tests/data/labels/labels.json.
struct ItemLabels : ::testing::Test {
  const int32_t total = 1, cap = 2;                 // COST, CAP('new york',seattle)
  const int32_t ship = 1, longLabel = 3, wide = 4;  // X(seattle,'new york'), Y(64 long), WIDE
  RunFixture fx;
  std::string text;
  int32_t length = 0, dim = -1, isNew = 0;
  void SetUp() override { fx.start(modelFile("labels/labels.json")); }
  // The text, its length and the dimension, as the last call left them.
  std::string label() const {
    return text + "|" + std::to_string(length) + "|" + std::to_string(dim);
  }
};

TEST_F(ItemLabels, FullTextsAndParts) {
  ovdHandle d = runState.dictionary;
  equItemLabel(d, total, text, length, LABEL_FULL, TextTable{}, dim, 375);
  EXPECT_EQ(label(), "COST|4|0");  // a scalar has no parentheses
  equItemLabel(d, cap, text, length, LABEL_FULL, TextTable{}, dim, 375);
  EXPECT_EQ(label(), "CAP('new york',seattle)|23|2");

  std::vector<char> store(10 * 31, '#');
  TextTable parts{store.data(), 31, 10};
  equItemLabel(d, cap, text, length, LABEL_PARTS, parts, dim, 375);
  EXPECT_EQ(label(), "CAP|3|2");
  EXPECT_EQ(parts.view(1), "new york" + std::string(23, ' '));  // no quotes in the parts
  EXPECT_EQ(parts.view(2), "seattle" + std::string(24, ' '));
  EXPECT_EQ(parts.view(3), std::string(31, '#'));  // beyond dim: untouched

  varItemLabel(runState, d, ship, text, length, dim, isNew, 375);
  EXPECT_EQ(text, "X(seattle,'new york')");

  varItemLabel(runState, d, longLabel, text, length, dim, isNew, 375);
  EXPECT_EQ(label(), "Y(" + std::string(60, 'a') + "wx~)|66|1");

  varItemLabelParts(runState, d, longLabel, text, length, parts, dim, isNew);
  EXPECT_EQ(parts.view(1), std::string(31, 'a'));
}

TEST_F(ItemLabels, TenLongQuotedLabelsAreCutToTheCapacity) {
  varItemLabel(runState, runState.dictionary, wide, text, length, dim, isNew, 375);
  ASSERT_EQ(text.size(), 375u);
  EXPECT_EQ(length, 375);
  EXPECT_EQ(dim, 10);
  // WIDE( then five whole labels of 65 characters with their quotes and commas.
  const std::string head = "WIDE('" + std::string(63, 'p') + "','" + std::string(63, 'q') + "',";
  EXPECT_EQ(text.substr(0, head.size()), head);
  EXPECT_EQ(text.back(), '~');
  EXPECT_EQ(text.substr(370, 4), "uuuu");

  // A small capacity bounds the text as well.
  varItemLabel(runState, runState.dictionary, ship, text, length, dim, isNew, 6);
  EXPECT_EQ(text, "X(sea~");
}

TEST_F(ItemLabels, NewSymbolFollowsTheLastColumnNamed) {
  ovdHandle d = runState.dictionary;
  std::vector<char> store(10 * 31, ' ');
  TextTable parts{store.data(), 31, 10};
  varItemLabelParts(runState, d, ship, text, length, parts, dim, isNew);
  EXPECT_EQ(isNew, -1);
  varItemLabelParts(runState, d, ship, text, length, parts, dim, isNew);
  EXPECT_EQ(isNew, 0);
  varItemLabel(runState, d, ship + 1, text, length, dim, isNew, 375);  // same symbol X
  EXPECT_EQ(isNew, 0);
  varItemLabel(runState, d, longLabel, text, length, dim, isNew, 375);
  EXPECT_EQ(isNew, -1);
  EXPECT_EQ(varItemSymbol(runState, d, longLabel, isNew), runState.lastColSymbol);
  EXPECT_EQ(isNew, 0);
}

}  // namespace
