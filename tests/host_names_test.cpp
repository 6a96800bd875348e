// Names of rows and columns into symbols and labels.
#include <gtest/gtest.h>

#include "host/host.h"
#include "host/instance_file.h"
#include "host/names.h"
#include "host/readers.h"
#include "host_test_files.h"

namespace {

std::string labelsOf(const HostName& n) {
  std::string out;
  for (const HostLabel& l : n.labels) {
    if (!out.empty()) out += '|';
    if (l.quote != ' ') out += l.quote;
    out += l.text;
  }
  return out;
}

// Brackets and parentheses, quotes of either kind (a doubled one is one, a comma inside is
// text), digits at the end; what is none of these is a scalar of the whole name. The labels
// are written with their quote character in front and | between them.
TEST(HostNames, BracketsParenthesesQuotesAndDigits) {
  const struct {
    const char *name, *symbol, *labels;
  } cases[] = {
      {"supply[seattle]", "supply", "seattle"},
      {"x(seattle,'new york')", "x", "seattle|'new york"},
      {"flow[\"a b\", c ,'O''Hare']", "flow", "\"a b|c|'O'Hare"},
      {"r('a,b',c)", "r", "'a,b|c"},
      {"x17", "x", "17"}, {"e_3", "e_", "3"}, {"R0009", "R", "0009"},
      {"cost", "cost", ""}, {"17", "17", ""}, {"a(b)c", "a(b)c", ""}, {"x()", "x()", ""},
      {"x(a,)", "x(a,)", ""}, {"(a)", "(a)", ""}, {"y['open)", "y['open)", ""}, {"z(a", "z(a", ""},
  };
  for (const auto& c : cases) {
    const HostName n = hostParseName(c.name);
    EXPECT_EQ(n.symbol, c.symbol) << c.name;
    EXPECT_EQ(labelsOf(n), c.labels) << c.name;
  }
}

TEST(HostNames, DictionaryKeepsKindsApartAndBreaksOddCounts) {
  HostInstance inst;
  std::vector<HostName> rows = {hostParseName("x(a)"), hostParseName("x(b)"),
                                hostParseName("x(a,b)"), hostParseName("bal")};
  std::vector<HostName> cols = {hostParseName("x(a,b)"), hostParseName("x(c,d)"),
                                hostParseName("x7"), hostParseName("bal")};
  hostBuildDictionary(inst, rows, cols);
  inst.rowCount = 4;
  inst.colCount = 4;
  // Equations x (dim 1), x(a,b) (scalar), bal; variables x (dim 2), x7 (scalar), bal.
  EXPECT_EQ(hostSymbolLines(inst), (std::vector<std::string>{"x equ 1", "x(a,b) equ 0", "bal equ 0",
                                                             "x var 2", "x7 var 0", "bal var 0"}));
  EXPECT_EQ(inst.rowSymbol, (std::vector<int32_t>{1, 1, 2, 3}));
  EXPECT_EQ(inst.colSymbol, (std::vector<int32_t>{4, 4, 5, 6}));
  // Labels are shared between rows and columns: a, b, c, d.
  EXPECT_EQ(inst.labels.size(), 4u);
  EXPECT_EQ(inst.rowUelStart, (std::vector<int32_t>{0, 1, 2, 2, 2}));
  EXPECT_EQ(inst.colUels, (std::vector<int32_t>{1, 2, 3, 4}));
  EXPECT_EQ(hostRowName(inst, 2), "x(a,b)");
  EXPECT_EQ(hostColName(inst, 1), "x(c,d)");
}

TEST(HostNames, ABrokenNameThatIsAlreadyASymbolWithLabels) {
  // "x17" breaks the scalar "x"; its own full name is already a symbol with one label, so it
  // becomes a further scalar symbol "x17", and later names like it join that one.
  HostInstance inst;
  hostBuildDictionary(inst, {}, {hostParseName("x"), hostParseName("x17(a)"),
                                 hostParseName("x17"), hostParseName("x17(b)"),
                                 hostParseName("x17")});
  EXPECT_EQ(hostSymbolLines(inst), (std::vector<std::string>{"x var 0", "x17 var 1", "x17 var 0"}));
  EXPECT_EQ(inst.colSymbol, (std::vector<int32_t>{1, 2, 3, 2, 3}));
}

TEST(HostNames, LongLabelsAreCutButStayApart) {
  const std::string stem(64, 'a');
  HostInstance inst;
  hostBuildDictionary(inst, {},
                      {hostMakeName("p", {HostLabel{stem + "1", ' '}}),
                       hostMakeName("p", {HostLabel{stem + "2", ' '}})});
  ASSERT_EQ(inst.labels.size(), 2u);
  EXPECT_EQ(inst.labels[0].text, stem);
  EXPECT_EQ(inst.labels[1].text, stem);
  EXPECT_NE(inst.colUels[0], inst.colUels[1]);
}

// Row (or column) k through the dictionary as the symbol, then its labels after "|", each
// quoted label with its quote character in front; "fails" when a call fails.
std::string throughDictionary(ovdHandle d, bool row, int32_t k) {
  int32_t symbol = 0, dim = 0, uels[10] = {};
  if ((row ? ovdRowUels(d, k, symbol, uels, dim) : ovdColUels(d, k, symbol, uels, dim)) != 0)
    return "fails";
  std::string out = ovdSymName(d, symbol);
  for (int32_t u = 0; u < dim; ++u) {
    char quote = 'x';
    std::string text;
    if (ovdUelLabel(d, uels[u], quote, text) != 0) return "fails";
    out += "|" + (quote == ' ' ? "" : std::string(1, quote)) + text;
  }
  return out;
}

TEST(HostNames, DictionaryOperationsCountFromZero) {
  HostInstance inst;
  inst.rowType = {kRowE, kRowL};
  inst.colType = {kVarContinuous};
  hostBuildDictionary(inst, {hostParseName("bal(seattle,'new york')"), hostParseName("cap")},
                      {hostParseName("ship[\"a b\"]")});
  ovdHandle d = ovdCreateFromInstance(inst);
  EXPECT_EQ(ovdNLSyms(d), 3);
  EXPECT_EQ(ovdLrgDim(d), 2);
  EXPECT_EQ(throughDictionary(d, true, 0), "bal|seattle|'new york");
  EXPECT_EQ(throughDictionary(d, true, 1), "cap");
  EXPECT_EQ(throughDictionary(d, false, 0), "ship|\"a b");
  EXPECT_EQ(throughDictionary(d, true, 2), "fails");
  EXPECT_EQ(throughDictionary(d, false, -1), "fails");
  char quote = 'x';
  std::string text;
  EXPECT_NE(ovdUelLabel(d, 99, quote, text), 0);
  ovdFree(d);
  EXPECT_EQ(d, nullptr);
}

// Each rule on the names that tell them apart: symbol, then labels after "|".
TEST(HostNames, SymbolRules) {
  struct Case {
    const char* rule;
    const char* name;
    const char* symbol;
    const char* labels;
  };
  const Case cases[] = {
      {"trailing-digits", "BC1AGI.C", "BC1AGI.C", ""},
      {"trailing-digits", "BOUND301", "BOUND", "301"},
      {"trailing-digits", "65", "65", ""},
      {"before-digit", "BC1AGI.C", "BC", "1AGI.C"},
      {"before-digit", "BOUND301", "BOUND", "301"},
      {"before-digit", "65", "#", "65"},
      {"before-digit", "AUAEL...", "AUAEL...", ""},
      {"before-digit", "ship(a,b)", "ship", "a|b"},
      {"first:3", "AUAEL...", "AUA", "EL..."},
      {"first:3", "BC1AGI.C", "BC1", "AGI.C"},
      {"first:3", "ABC", "ABC", ""},
      {"first:3", "x[1]", "x", "1"},
      {"scalar", "e1", "e1", ""},
      {"scalar", "e[1]", "e", "1"},
  };
  for (const Case& c : cases) {
    SymbolRule rule;
    ASSERT_TRUE(parseSymbolRule(c.rule, rule)) << c.rule;
    EXPECT_EQ(symbolRuleName(rule), c.rule);
    const HostName n = hostParseName(c.name, rule);
    EXPECT_EQ(n.symbol, c.symbol) << c.rule << " " << c.name;
    EXPECT_EQ(labelsOf(n), c.labels) << c.rule << " " << c.name;
  }
  SymbolRule rule;
  for (const char* bad : {"first:0", "first:64", "first:", "first:x", "digits", "Auto"})
    EXPECT_FALSE(parseSymbolRule(bad, rule)) << bad;
}

// The automatic rule: names with brackets make the others scalars; code names are cut before
// their first digit, unless that leaves more than a thousand symbols.
TEST(HostNames, AutomaticRule) {
  auto resolve = [](const std::vector<std::string>& names) {
    return symbolRuleName(hostResolveSymbolRule(SymbolRule{}, [&](const auto& f) {
      for (const std::string& n : names) f(n);
    }));
  };
  EXPECT_EQ(resolve({"x(1,2)", "e1", "cost"}), "scalar");
  EXPECT_EQ(resolve({"R09", "X05", "COST", "a(b)c"}), "before-digit");
  // 1200 names of six letters without digits: first:8 and first:7 keep them all apart,
  // first:6 too; first:5 leaves the 1200 / 26 stems of five letters.
  std::vector<std::string> letters;
  for (int k = 0; k < 1200; ++k) {
    std::string n = "AAAAA";
    n[4] = static_cast<char>('A' + k / 26 % 26);
    n[3] = static_cast<char>('A' + k / 676);
    n += static_cast<char>('A' + k % 26);
    letters.push_back(n);
  }
  EXPECT_EQ(resolve(letters), "first:5");
  SymbolRule asked;
  ASSERT_TRUE(parseSymbolRule("trailing-digits", asked));
  EXPECT_EQ(hostResolveSymbolRule(asked, [&](const auto& f) { f("x(1)"); }).kind,
            SymbolRuleKind::TrailingDigits);
}

// A linear .nl model: objective x + y; the constraints x + y = 4, 0 <= x <= 4 (a range) and
// y >= 1; x and y free.
constexpr const char* kLinearNl =
    "g3 1 1 0\n 2 3 1 1 1\n 0 0\n 0 0\n 0 0 0\n 0 0 0 1\n 0 0 0 0 0\n 4 2\n 0 0\n"
    " 0 0 0 0 0\nC0\nn0\nC1\nn0\nC2\nn0\nO0 0\nn0\nr\n4 4\n0 0 4\n2 1\nb\n3\n3\n"
    "k1\n2\nJ0 2\n0 1\n1 1\nJ1 1\n0 1\nJ2 1\n1 1\nG0 2\n0 1\n1 1\n";

// The .nl reader's names from .row and .col files (or none) that would name two items: a name
// from a file keeps its name, a name the reader makes (the objective's o1 beside a .row file
// of the constraints only, the halves of a range, objvar) gives way, and of two equal names
// from a file the later one; "_" goes after the symbol until it is free.
TEST(HostNames, NlNamesThatCollideAreMadeDistinct) {
  const std::string a64(64, 'a');
  struct Case {
    std::string row, col;  // the .row and .col files, "" for none
    std::vector<std::string> rowNames, colNames;
  };
  const Case cases[] = {
      {"band_lo\nband\no[1]\n", "",
       {"o_(1)", "band_lo", "band_lo_", "band_up", "o(1)"}, {"v(1)", "v(2)", "objvar"}},
      {"obj\nr[1]\nr_lo['1']\nobj\n", "x[" + a64 + "b]\nx[" + a64 + "c]\n",
       {"obj", "obj_", "r_lo_(1)", "r_up(1)", "r_lo(1)"},
       {"x(" + a64 + ")", "x_(" + a64 + ")", "objvar"}},
      {"", "objvar\nobjvar\n", {"o(1)", "c(1)", "c_lo(2)", "c_up(2)", "c(3)"},
       {"objvar", "objvar_", "objvar__"}},
  };
  HostScratch scratch;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.row + "|" + c.col);
    const std::string path = scratch.write("m.nl", kLinearNl);
    std::filesystem::remove(scratch.path("m.row"));
    std::filesystem::remove(scratch.path("m.col"));
    if (!c.row.empty()) scratch.write("m.row", c.row);
    if (!c.col.empty()) scratch.write("m.col", c.col);
    HostInstance inst;
    ASSERT_TRUE(hostRead({path, ModelFormat::Nl, "", {}}, inst));
    EXPECT_EQ(hostItemNames(inst, true), c.rowNames);
    EXPECT_EQ(hostItemNames(inst, false), c.colNames);
  }
}

// An instance file with a good checksum but a name that no reader takes is refused, so that
// such a name never reaches a record (found by the fuzzer: a label's quote character).
TEST(HostNames, InstanceFilesWithNamesNoReaderTakesAreRefused) {
  struct Case {
    void (*forge)(HostInstance&);
    const char* reason;
  };
  const Case cases[] = {
      {[](HostInstance& in) { in.symbols[0].name = "bal\x01"; },
       "the name \"bal\\x01\" holds a control character (code 1)"},
      {[](HostInstance& in) { in.labels[0].text = "a\nb"; },
       "the name \"a\\nb\" holds a control character (code 10)"},
      {[](HostInstance& in) { in.labels[0].quote = '\n'; },
       "the label \"a\" has the quote character \"\\n\", not ' or \""},
      {[](HostInstance& in) { in.labels[0].quote = 'q'; },
       "the label \"a\" has the quote character \"q\", not ' or \""},
  };
  HostScratch scratch;
  const std::string path = scratch.path("forged.ins");
  for (const Case& c : cases) {
    HostInstance in;
    in.rowType = {kRowE};
    in.colType = {kVarContinuous};
    hostBuildDictionary(in, {hostParseName("bal(a)")}, {hostParseName("x")});
    hostCompleteInstance(in);
    c.forge(in);
    std::string error;
    ASSERT_TRUE(writeInstanceFile(path, in, error)) << error;
    HostInstance back;
    EXPECT_FALSE(loadInstanceFile(path, back, error));
    EXPECT_EQ(error, path + ": " + c.reason);
  }
}

}  // namespace
