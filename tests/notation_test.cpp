// The report notation: the cases of tests/data/notation/templates.cases, worked out by hand
// column for column, and what the interpreter does with any template.

#include "base/notation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iomanip>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "golden.h"

namespace {

using Lines = std::vector<std::string>;

// Clears the strict switch for the duration of a test that feeds faulty templates.
struct LenientNotation {
  LenientNotation() { notationStrict = false; }
  ~LenientNotation() { notationStrict = true; }
};

// A case of tests/data/notation/templates.cases: its line, its mode (blank, "lenient",
// "well-formed" or "malformed"), the template, its values as written and the lines it gives.
struct Case {
  size_t line = 0;
  std::string mode, tmpl;
  std::vector<std::string> tokens;  // a text keeps its opening quote
  Lines expected;

  std::vector<FmtValue> values() const {
    std::vector<FmtValue> v;
    for (const std::string& t : tokens) {
      if (t.starts_with('"')) {
        v.emplace_back(std::string_view(t).substr(1));
      } else if (t.find_first_of(".ein") != std::string::npos) {
        v.emplace_back(std::strtod(t.c_str(), nullptr));
      } else {
        v.emplace_back(std::stoll(t));
      }
    }
    return v;
  }
};

std::vector<Case> readTemplateCases() {
  std::vector<Case> cases;
  const Lines lines =
      readLines(std::filesystem::path(SOURCE_DIR) / "tests/data/notation/templates.cases");
  for (size_t n = 0; n < lines.size(); ++n) {
    const std::string& l = lines[n];
    if (l.empty() || l[0] == '#') continue;
    Case c;
    c.line = n + 1;
    const size_t open = l.find('['), close = l.find(']', open);
    if (close == std::string::npos) {
      ADD_FAILURE() << "templates.cases:" << c.line << ": no [template]";
      continue;
    }
    c.mode = l.substr(0, open == 0 ? 0 : open - 1);
    c.tmpl = l.substr(open + 1, close - open - 1);
    const size_t arrow = l.find(" => ", close);
    std::istringstream in(l.substr(close + 1, arrow - close - 1));
    while (!(in >> std::ws).eof()) {
      const bool text = in.peek() == '"';
      std::string t;
      in >> std::quoted(t);
      c.tokens.push_back(text ? '"' + t : t);
    }
    for (size_t at = arrow + 4, end; arrow != std::string::npos && l[at] == '['; at = end + 1) {
      if ((end = l.find(']', at)) == std::string::npos) break;
      c.expected.push_back(l.substr(at + 1, end - at - 1));
    }
    cases.push_back(c);
  }
  return cases;
}

// Every case of the file: the lines of each template, and whether it is well formed.
TEST(NotationTemplates, CasesOfTheCaseFile) {
  const std::vector<Case> cases = readTemplateCases();
  EXPECT_GT(cases.size(), 100u);
  for (const Case& c : cases) {
    SCOPED_TRACE("templates.cases:" + std::to_string(c.line) + " " + c.tmpl);
    if (c.mode == "well-formed" || c.mode == "malformed") {
      EXPECT_EQ(templateIsWellFormed(c.tmpl), c.mode == "well-formed");
    } else if (c.mode.empty() || c.mode == "lenient") {
      notationStrict = c.mode.empty();
      EXPECT_EQ(formatTemplate(c.tmpl, c.values()), c.expected);
    } else {
      ADD_FAILURE() << "no such mode: " << c.mode;
    }
  }
  notationStrict = true;
}

TEST(NotationRepeat, OneCharacterTextsThroughA) {
  std::vector<FmtValue> values;
  std::string expected = " ";
  for (int k = 0; k < 60; ++k) {
    const char* text = (k % 2 == 0) ? "+" : "-";
    values.emplace_back(text);
    expected += text;
  }
  const Lines lines = formatTemplate("(1X,254A)", values);
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].size(), 61u);
  EXPECT_EQ(lines[0], expected);
}

TEST(NotationFree, OneBlankThenTheItems) {
  EXPECT_EQ(formatFree({}), " ");
  EXPECT_EQ(formatFree({"#### Executing MODRAKE 1.3 Body"}), " #### Executing MODRAKE 1.3 Body");
  EXPECT_EQ(formatFree({"ab  ", "cd"}), " ab  cd");
  EXPECT_EQ(formatFree({"     Maximum is ", 1000, "Fatal error"}),
            "      Maximum is 1000Fatal error");
  EXPECT_EQ(formatFree({-7, 2.5}), " -72.5");
}

TEST(NotationChannels, LinesAndFiles) {
  std::vector<std::string> lines;
  Channel memory;
  memory.lines = &lines;
  writeLine(memory, "(1X,I3,/,1X,A)", {5, "x"});
  writeFree(memory, {"free"});
  writeRaw(memory, "=2");
  EXPECT_EQ(lines, (Lines{"   5", " x", " free", "=2"}));

  std::FILE* f = std::tmpfile();
  ASSERT_NE(f, nullptr);
  Channel file;
  file.file = f;
  writeLine(file, "(/,1X,A,/)", {"audit"});
  writeFree(file);
  std::rewind(f);
  char buf[64] = {};
  const size_t n = std::fread(buf, 1, sizeof buf - 1, f);
  std::fclose(f);
  EXPECT_EQ(std::string(buf, n), "\n audit\n\n \n");
}

TEST(NotationTemplates, MalformedTemplateAssertsInDebugBuilds) {
  EXPECT_DEBUG_DEATH(formatTemplate("(1X,Q5)"), "malformed report template");
  EXPECT_DEBUG_DEATH(formatTemplate("(I5)", {"text"}), "kinds differ");
}

// Random templates from the notation's own characters, and random values: whatever comes in,
// the interpreter stays inside its buffers (the sanitizer build checks that) and never loops.
TEST(NotationTemplates, NestedRepeatsWithoutValuesAreCut) {
  LenientNotation lenient;
  const Lines lines = formatTemplate("(9999(9999(9999X)))");
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_LT(lines[0].size(), 2000000u);
}

TEST(NotationTemplates, RandomTemplatesStayInBounds) {
  LenientNotation lenient;
  std::mt19937 rng(12345);
  const std::string alphabet = "IFEAX/(),.'0123456789 ia";
  std::uniform_int_distribution<size_t> pick(0, alphabet.size() - 1);
  std::uniform_int_distribution<int> length(0, 24);
  std::uniform_int_distribution<int> kind(0, 2);
  const double reals[] = {0.0, -0.0, 2.5, -1e-300, 3e300, 1e-320, std::nan(""), HUGE_VAL, 0.125};
  const char* texts[] = {"", "x", "a much longer text than any field"};
  for (int trial = 0; trial < 20000; ++trial) {
    std::string t;
    const int len = length(rng);
    for (int k = 0; k < len; ++k) t += alphabet[pick(rng)];
    std::vector<FmtValue> values;
    const int count = length(rng) % 8;
    for (int k = 0; k < count; ++k) {
      switch (kind(rng)) {
        case 0: values.emplace_back(static_cast<long long>(rng()) - 2147483648LL); break;
        case 1: values.emplace_back(reals[rng() % 9]); break;
        default: values.emplace_back(texts[rng() % 3]); break;
      }
    }
    const Lines lines = formatTemplate(t, values);
    ASSERT_FALSE(lines.empty()) << t;
    size_t total = 0;
    for (const std::string& l : lines) total += l.size();
    ASSERT_LT(total, 20000000u) << t;
  }
}

}  // namespace
