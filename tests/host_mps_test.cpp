// The project's MPS reader: the same instance as GLPK's reader on every bundled and generated
// model, the rules where it reads otherwise, and refusals with file, line and reason.
#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>

#include "generator.h"
#include "golden.h"
#include "host/readers_internal.h"
#include "host_test_files.h"

namespace {

// Both readers give one instance: every field of the text rendering, and the columns' order.
void expectEqualToGlpk(const std::string& path, ModelFormat format, const SymbolRule& rule) {
  SCOPED_TRACE(path + " under " + symbolRuleName(rule));
  HostInstance ours, glpk;
  std::string error;
  ModelSource source{path, format, "", rule};
  ASSERT_TRUE(hostRead(source, ours));
  ASSERT_TRUE(readGlpkModel(source, glpk, error)) << error;
  EXPECT_EQ(hostDescribe(ours), hostDescribe(glpk));
  EXPECT_EQ(hostItemNames(ours, false), hostItemNames(glpk, false));
}

TEST(MpsReader, EqualsGlpkOnEveryBundledModel) {
  const std::string netlib = std::string(SOURCE_DIR) + "/tests/data/netlib/";
  for (const char* name : {"afiro", "adlittle", "blend", "sc105", "share1b", "stocfor1"})
    for (const char* rule : {"auto", "trailing-digits", "first:3"}) {
      SymbolRule r;
      ASSERT_TRUE(parseSymbolRule(rule, r));
      expectEqualToGlpk(netlib + name + ".mps", ModelFormat::FixedMps, r);
    }
  expectEqualToGlpk(hostTestData("small.mps"), ModelFormat::Mps, {});
  expectEqualToGlpk(hostTestData("small_fixed.mps"), ModelFormat::FixedMps, {});
  expectEqualToGlpk(hostTestData("afiro.mps"), ModelFormat::Mps, {});
}

// The default rule on real models' code names: afiro's R09 and X05, blend's bare numbers,
// sc105's ROW00001 and COL00001 fall into a few symbols, where trailing digits make blend's
// numbers 74 symbols of their own.
TEST(MpsReader, DefaultRuleGroupsRealCodeNames) {
  const std::string netlib = std::string(SOURCE_DIR) + "/tests/data/netlib/";
  struct Case {
    const char* model;
    const char* rule;
    std::vector<std::string> symbols;  // equations, then variables
  };
  const Case cases[] = {
      {"afiro", "auto", {"COST", "R", "X", "X", "objvar"}},
      {"blend", "auto", {"C", "#", "#", "objvar"}},
      {"sc105", "auto", {"MAXIM", "ROW", "COL", "objvar"}},
  };
  for (const Case& c : cases) {
    HostInstance in;
    SymbolRule rule;
    ASSERT_TRUE(parseSymbolRule(c.rule, rule));
    ASSERT_TRUE(hostRead({netlib + c.model + ".mps", ModelFormat::FixedMps, "", rule}, in));
    std::vector<std::string> names;
    for (const HostSymbol& sym : in.symbols) names.push_back(sym.name);
    EXPECT_EQ(names, c.symbols) << c.model;
  }
  HostInstance blend;
  SymbolRule trailing;
  ASSERT_TRUE(parseSymbolRule("trailing-digits", trailing));
  ASSERT_TRUE(hostRead({netlib + "blend.mps", ModelFormat::FixedMps, "", trailing}, blend));
  EXPECT_EQ(blend.symbols.size(), 1u + 74 + 83 + 1);
}

TEST(MpsReader, EqualsGlpkOnGeneratedModels) {
  HostScratch scratch;
  struct Case {
    int64_t columns;
    uint64_t seed;
    bool fixed;
  };
  for (const Case& c : {Case{48, 1, false}, Case{400, 2, false}, Case{2000, 3, false},
                        Case{48, 4, true}, Case{960, 5, true}}) {
    const std::string path = scratch.path("gen" + std::to_string(c.seed) + ".mps");
    std::FILE* f = std::fopen(path.c_str(), "w");
    ASSERT_NE(f, nullptr);
    ASSERT_TRUE(generateMps(MpsGeneratorSettings{c.columns, c.seed, c.fixed, true}, f));
    std::fclose(f);
    expectEqualToGlpk(path, c.fixed ? ModelFormat::FixedMps : ModelFormat::Mps, {});
  }
}

HostInstance readMps(const HostScratch& scratch, const std::string& text) {
  HostInstance in;
  EXPECT_TRUE(hostRead({scratch.write("m.mps", text), ModelFormat::Mps, "", {}}, in));
  return in;
}

// Where the reader and GLPK part: further N rows stay as =N= rows with their entries, the
// objective row's right-hand side is the negated constant, OBJSENSE is read, and a negative
// upper bound over the default lower bound makes the column unbounded below.
TEST(MpsReader, WhereItReadsOtherwiseThanGlpk) {
  HostScratch scratch;
  const HostInstance in = readMps(scratch,
                                  "NAME d\nOBJSENSE\n    MAX\nROWS\n N obj\n L c1\n N watch\n"
                                  "COLUMNS\n x obj 2 c1 1\n x watch 3\n y c1 1\n"
                                  "RHS\n RHS obj 7 c1 4\n RHS watch 9\n"
                                  "RANGES\n RNG watch 2\nBOUNDS\n UP BND x -3\n UP BND y -1\n"
                                  " LO BND y -5\nENDATA\n");
  ASSERT_EQ(in.rowCount, 3);
  EXPECT_FALSE(in.minimizing);
  EXPECT_EQ(in.rowRhs[0], 7);  // the row 2x - objvar = 7: the objective is 2x - 7
  EXPECT_EQ(hostRowName(in, 2), "watch");
  EXPECT_EQ(in.rowType[2], kRowN);
  EXPECT_EQ(in.rowRhs[2], 0);
  ASSERT_EQ(in.colStart[1], 3);  // x: obj, c1 and watch
  EXPECT_EQ(in.entryRow[2], 2);
  EXPECT_EQ(in.entryValue[2], 3);
  EXPECT_EQ(in.colLower[0], -kHostInf);
  EXPECT_EQ(in.colUpper[0], -3);
  EXPECT_EQ(in.colLower[1], -5);  // a lower bound given keeps its value
  EXPECT_EQ(in.colUpper[1], -1);
  EXPECT_FALSE(readMps(scratch, "NAME\nOBJSENSE MAX\nROWS\n N o\nCOLUMNS\nENDATA\n").minimizing);
}

// Names that would name two items (tests/data/host/mps-names.cases): a file name keeps its
// name, a name the reader makes (the halves of a ranged row, objvar) gives way, and of two names
// that are one item under the symbol rule and the label cut the later gives way; "_" goes after
// the symbol until it is free.
TEST(MpsReader, CollidingNamesAreMadeDistinct) {
  HostScratch scratch;
  for (const FileCase& c : readCases("host/mps-names.cases")) {
    SCOPED_TRACE(c.expected);
    std::istringstream words(c.expected);
    std::string word;
    words >> word;
    SymbolRule rule;
    ASSERT_TRUE(parseSymbolRule(word, rule));
    std::vector<std::string> names[2];
    for (int side = 0; words >> word;) {
      if (word == "/") ++side;
      else names[side].push_back(word);
    }
    HostInstance in;
    ASSERT_TRUE(hostRead({scratch.write("names.mps", c.text), ModelFormat::Mps, "", rule}, in));
    EXPECT_EQ(hostItemNames(in, true), names[0]);
    EXPECT_EQ(hostItemNames(in, false), names[1]);
  }
}

TEST(MpsReader, FaultyFilesAreRefusedWithLineAndReason) {
  HostScratch scratch;
  for (const FileCase& c : readCases("host/mps-refusals.cases")) {
    const std::string path = scratch.write("bad.mps", c.text);
    HostInstance in;
    std::string error;
    EXPECT_FALSE(readMpsModel(path, false, {}, in, error, nullptr)) << c.text;
    EXPECT_EQ(error, path + c.expected) << c.text;
  }
  const std::string longLine = scratch.write("bad.mps", "NAME\nROWS\n N " + std::string(70000, 'x'));
  HostInstance in;
  std::string error;
  EXPECT_FALSE(readMpsModel(longLine, false, {}, in, error, nullptr));
  EXPECT_EQ(error, longLine + ":3: a line longer than 65536 characters");
  // The fixed form keeps columns 62 to 72 blank.
  const std::string fixed = scratch.write(
      "bad_fixed.mps", "NAME\nROWS\n N  obj\nCOLUMNS\n    x         obj                1.0" +
                           std::string(30, ' ') + "zz\nENDATA\n");
  EXPECT_FALSE(readModel(ModelSource{fixed, ModelFormat::FixedMps, "", {}}, in, error));
  EXPECT_EQ(error, fixed + ":5: in fixed MPS positions 62 to 72 must be blank");
}

}  // namespace
