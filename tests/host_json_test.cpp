// The native instance: what it holds, and every refusal with its file and line.
#include <gtest/gtest.h>

#include "host/host.h"
#include "host/readers.h"
#include "host_test_files.h"

namespace {

struct JsonCase {
  const char* text;
  int line;
  const char* message;
};

std::string refusal(const HostScratch& scratch, const std::string& text) {
  const std::string path = scratch.write("m.json", text);
  HostInstance inst;
  std::string error;
  EXPECT_FALSE(readModel(ModelSource{path, ModelFormat::Json, "", {}}, inst, error)) << text;
  return error.substr(std::min(error.size(), path.size()));
}

TEST(HostJson, MalformedInstancesAreRefusedWithTheirLine) {
  HostScratch scratch;
  const JsonCase cases[] = {
      {"{\n  \"rows\": [\n    {\"name\": \"a\", \"type\": \"=E=\"},\n"
       "    {\"name\": \"b\", \"type\": \"=Q=\"}\n  ]\n}",
       4, "unknown row type \"=Q=\" (=E=, =G=, =L= or =N=)"},
      {"{\n \"rows\": [{\"name\": \"a\", \"type\": \"E\"}],\n \"cols\": [\n  {\"name\": \"x\",\n"
       "   \"entries\": [\n     [\"a\", 1],\n     [\"b\", 2]\n   ]}\n ]\n}",
       7, "entry row \"b\" does not exist"},
      {"{\"rows\": [{\"name\": \"a\", \"type\": \"E\"}],\n \"cols\": [{\"name\": \"x\",\n"
       " \"entries\": [[2, 1]]}]}",
       3, "entry row 2 does not exist (rows 1 to 1)"},
      {"{\"rowCount\": -1,\n \"rows\": []}", 1, "\"rowCount\" is negative"},
      {"{\"rows\": [],\n \"colCount\": 2,\n \"cols\": [{\"name\": \"x\"}]}", 2,
       "\"colCount\" is 2 but \"cols\" has 1"},
      {"{\"cols\": [\n {\"name\": \"x\", \"type\": \"real\"}]}", 2,
       "unknown column type \"real\" (continuous, binary, integer, sos1, sos2, semicont or "
       "semiint)"},
      {"{\"cols\": [\n {\"name\": \"x(a)\"},\n {\"symbol\": \"x\", \"labels\": [\"a\"]}]}", 3,
       "column \"x(a)\" is named twice (also column 1)"},
      {"{\"rows\": [{\"name\": \"r\", \"type\": \"L\"},\n {\"name\": \"r\", \"type\": \"G\"}]}", 2,
       "row \"r\" is named twice (also row 1)"},
      {"{\"cols\": [{\"name\": \"x\"}],\n\n \"objVar\": \"y\"}", 3,
       "\"objVar\" \"y\" names no column"},
      {"{\"cols\": [{\"name\": \"x\"}],\n \"objVar\": 2}", 2, "\"objVar\" 2 is not from 1 to 1"},
      {"{\"rows\": [{\"name\": \"r\", \"type\": \"L\"}],\n \"objRow\": true}", 2,
       "\"objRow\" must be a name or a number"},
      {"{\"cols\": [{\"name\": \"x\",\n  \"lower\": \"low\"}]}", 2,
       "\"lower\" must be a number, \"inf\" or \"-inf\""},
      {"{\"rows\": [{\"name\": \"r\", \"type\": \"L\",\n \"rhs\": \"5\"}]}", 2,
       "\"rhs\" must be a number"},
      {"{\"rows\": \"none\"}", 1, "\"rows\" must be an array"},
      {"[1, 2]", 1, "the model must be a JSON object"},
      {"{\"sense\": \"up\"}", 1, "\"sense\" must be \"min\" or \"max\""},
      {"{\n\"modelStat\": 15}", 2, "\"modelStat\" must be a whole number from 1 to 14"},
      {"{\"colour\": 1}", 1, "unknown field \"colour\""},
      {"{\"cols\": [{\"name\": \"x\", \"entries\": [[\"r\"]]}]}", 1,
       "an entry must be [row, value] or [row, value, \"nonlinear\"]"},
      {"{\"rows\": [{\"name\": \"r\", \"type\": \"L\"}],\n\"cols\": [{\"name\": \"x\",\n"
       "\"entries\": [[\"r\", 1, \"linear\"]]}]}",
       3, "an entry's third element can only be \"nonlinear\""},
      {"{\"rows\": [{\"name\": \"r\", \"type\": \"L\"}],\n\"cols\": [{\"name\": \"x\",\n"
       "\"entries\": [[\"r\", 1],\n [1, 2]]}]}",
       4, "row \"r\" appears twice in column \"x\""},
      {"{\"cols\": [{\"name\": \"x\",\n \"scale\": 2}]}", 2,
       "\"scale\" given but the model is not \"scaled\""},
      {"{\"scaled\": true, \"cols\": [{\"name\": \"x\",\n \"scale\": 0}]}", 2,
       "\"scale\" must be above 0"},
      {"{\"cols\": [{\"type\": \"binary\"}]}", 1, "cols[1] has neither \"name\" nor \"symbol\""},
      {"{\"cols\": [{\"symbol\": \"x\",\n \"labels\": [\"a\", 3]}]}", 2,
       "a label must be a string or {\"text\": ..., \"quote\": ...}"},
      {"{\"rows\": [{\"name\": \"r\", \"type\": \"L\",\n \"stat\": 4}]}", 2,
       "\"stat\" must be a whole number from 0 to 3"},
      {"{\"rows\": [\n  {\"name\": \"r\" \"type\": \"L\"}]}", 2,
       "not valid JSON: syntax error while parsing object - unexpected string literal; "
       "expected '}'"},
      {"{\"rows\": [{\"name\": \"r\", \"type\": \"L\"}],\n\"cols\": [{\"name\": \"x\",\n"
       "\"entries\": [[1, 1e400]]}]}",
       3, "not valid JSON: number overflow parsing '1e400'"},
      {"{\"rows\": [{\"name\": \"r\", \"type\": \"L\",\n \"rhs\": -2e999}]}", 2,
       "not valid JSON: number overflow parsing '-2e999'"},
  };
  for (const JsonCase& c : cases)
    EXPECT_EQ(refusal(scratch, c.text),
              ":" + std::to_string(c.line) + ": " + c.message) << c.text;
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
  std::string error;
  ASSERT_TRUE(readModel(ModelSource{path, ModelFormat::Json, "", {}}, in, error)) << error;
  EXPECT_EQ(in.inputName, "t");
  EXPECT_FALSE(in.minimizing);
  EXPECT_TRUE(in.hasScale);
  EXPECT_EQ(in.objVar, 3);
  EXPECT_EQ(in.objRow, 1);
  EXPECT_EQ(in.rowScale, (std::vector<double>{4, 1}));
  EXPECT_EQ(in.colScale, (std::vector<double>{1, 0.5, 1}));
  EXPECT_EQ(in.rowType[1], kRowN);
  EXPECT_EQ(hostRowName(in, 1), "cap('New York',x)");
  EXPECT_EQ(in.colType, (std::vector<int32_t>{kVarBinary, kVarSemiInt, kVarContinuous}));
  EXPECT_EQ(in.colUpper[0], 1);
  EXPECT_EQ(in.colLower[1], -kHostInf);
  EXPECT_EQ(in.colStart, (std::vector<int32_t>{0, 2, 2, 3}));
  EXPECT_EQ(in.entryRow, (std::vector<int32_t>{0, 1, 0}));
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
  std::string error;
  ASSERT_TRUE(readModel(ModelSource{path, ModelFormat::Json, "", {}}, in, error)) << error;
  EXPECT_FALSE(in.hasSolution);
  EXPECT_EQ(in.modelStat, kStatNoSolutionReturned);
  EXPECT_EQ(in.rowCount, 0);
  EXPECT_EQ(in.colUpper[0], kHostInf);
  EXPECT_EQ(in.objVar, 0);
}

}  // namespace
