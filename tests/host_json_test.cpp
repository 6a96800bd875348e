// The native instance: what it holds, and every refusal with its file and line.
#include <gtest/gtest.h>

#include "host/host.h"
#include "host/readers.h"
#include "golden.h"
#include "host_test_files.h"

namespace {

std::string refusal(const HostScratch& scratch, const std::string& text) {
  const std::string path = scratch.write("m.json", text);
  HostInstance inst;
  std::string error;
  EXPECT_FALSE(readModel(ModelSource{path, ModelFormat::Json, "", {}}, inst, error)) << text;
  return error.substr(std::min(error.size(), path.size()));
}

// Among them, instances that would show two items under one name, as ones that name an item
// twice: a symbol given by itself may hold brackets, a label a comma.
TEST(HostJson, MalformedInstancesAreRefusedWithTheirLine) {
  HostScratch scratch;
  for (const FileCase& c : readCases("host/json-refusals.cases")) {
    EXPECT_EQ(refusal(scratch, c.text), c.expected) << c.text;
  }
}

// The line of a refusal is found by walking the text; a value nested 300000 deep on the way
// to it is walked over without exhausting the stack.
TEST(HostJson, RefusalBehindDeeplyNestedValueFindsItsLine) {
  HostScratch scratch;
  const std::size_t depth = 300000;
  const std::string text = "{\"comment\": [\"]\", {\"b\": \"[{\"},\n" + std::string(depth, '[') +
                           std::string(depth, ']') + "],\n \"colour\": 1}";
  EXPECT_EQ(refusal(scratch, text), ":3: unknown field \"colour\"");
}

TEST(HostJson, WhatAnInstanceHolds) {
  HostScratch scratch;
  const std::string path = scratch.write("t.json", R"J({
    "sense": "max", "scaled": true, "objVar": 3, "objRow": "profit",
    "rows": [
      {"name": "profit", "type": "=E=", "scale": 4},
      {"symbol": "cap", "labels": [{"text": "New York", "quote": "'"}, "x"], "type": "N",
       "level": 2.5, "marginal": -1, "stat": 1, "cstat": 2}
    ],
    "cols": [
      {"name": "b", "type": "binary", "entries": [[1, 2.0], ["cap('New York',x)", 1, "nonlinear"]]},
      {"name": "s", "type": "semiint", "lower": "-inf", "upper": 7, "scale": 0.5},
      {"name": "obj", "lower": "-inf", "entries": [["profit", -1]]}
    ],
    "modelStat": 8, "solveStat": 1
  })J");
  HostInstance in;
  ASSERT_TRUE(hostRead({path, ModelFormat::Json, "", {}}, in));
  EXPECT_TRUE(matchesGolden(splitLines(hostDescribe(in)), "host/t.instance"));
  EXPECT_EQ(hostItemNames(in, false), (std::vector<std::string>{"b", "s", "obj"}));
  EXPECT_EQ(in.inputName, "t");
  EXPECT_TRUE(in.hasScale);
  EXPECT_EQ(in.rowScale, (std::vector<double>{4, 1}));
  EXPECT_EQ(in.colScale, (std::vector<double>{1, 0.5, 1}));
  EXPECT_EQ(in.entryNonlinear, (std::vector<int32_t>{0, 1, 0}));
  EXPECT_EQ(hostNonlinearCount(in), 1);
  EXPECT_TRUE(in.hasSolution);
  EXPECT_EQ(in.modelStat, 8);
  EXPECT_EQ(in.rowLevel[1], 2.5);
  EXPECT_EQ(in.rowMarginal[1], -1);
  EXPECT_EQ(in.rowStat[1], 1);
  EXPECT_EQ(in.rowCStat[1], 2);
  // Statuses not given follow from the levels: b at 0 is at its lower bound, profit at its rhs.
  EXPECT_EQ(in.colStat[0], 0);
  EXPECT_EQ(in.rowStat[0], 0);
  std::string check;
  EXPECT_TRUE(hostCheckInstance(in, check)) << check;
}

TEST(HostJson, NoSolutionUnlessOneIsGiven) {
  HostScratch scratch;
  const std::string path = scratch.write("n.json", R"J({"cols": [{"name": "x"}]})J");
  HostInstance in;
  ASSERT_TRUE(hostRead({path, ModelFormat::Json, "", {}}, in));
  EXPECT_FALSE(in.hasSolution);
  EXPECT_EQ(in.modelStat, kStatNoSolutionReturned);
  EXPECT_EQ(in.rowCount, 0);
  EXPECT_EQ(in.colUpper[0], kHostInf);
  EXPECT_EQ(in.objVar, 0);
}

}  // namespace
