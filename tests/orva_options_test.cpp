// The option file MODRAKE.OPT and the control records written from it.
#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "golden.h"
#include "orva_run.h"
#include "orva/options.h"

namespace {

// Parses `text` and returns the error, "" on success.
std::string parseError(const std::string& text, OrvaOptions& options) {
  std::string error;
  return orvaParseOptionText(text, "run.opt", options, error) ? std::string() : error;
}

// Every value, in the order of the control records.
std::string values(const OrvaOptions& o) {
  std::ostringstream s;
  s << (o.solutionExpected ? "T" : "F") << " requests " << o.varRequests << " " << o.equRequests
    << " blocks " << o.varBlock << " " << o.equBlock << " scale " << o.scale << " large "
    << o.largeLevel << " " << o.largeMarginal;
  return s.str();
}

TEST(OrvaOptionFile, DefaultsWithoutAnyLine) {
  OrvaOptions o;
  ASSERT_EQ(parseError("", o), "");
  EXPECT_EQ(values(o), "F requests 1000 1000 blocks 0 0 scale 0 large 6 6");
}

TEST(OrvaOptionFile, KeywordsWithoutRegardToCaseCommentsAndBlankLines) {
  OrvaOptions o;
  const std::string text =
      "* block limits\n"
      "varblock 12\n"
      "\n"
      "   EquBlock\t  -1\r\n"
      "  * an indented comment\n"
      "VARREQUESTS 50\n"
      "equrequests 99999\n"
      "Scale -9999\n"
      "LARGELEVEL +4\n"
      "largemarginal 0\n";
  ASSERT_EQ(parseError(text, o), "");
  EXPECT_EQ(values(o), "F requests 50 99999 blocks 12 -1 scale -9999 large 4 0");
}

TEST(OrvaOptionFile, RefusalsNameFileLineAndReason) {
  for (const FileCase& c : readCases("orva/option-refusals.cases")) {
    OrvaOptions o;
    EXPECT_EQ(parseError(c.text, o), c.expected) << c.text;
  }
}

TEST(OrvaOptionFile, MissingFileIsNamed) {
  OrvaOptions o;
  std::string error;
  EXPECT_FALSE(orvaReadOptionFile("/nonexistent/modrake.opt", o, error));
  EXPECT_EQ(error.rfind("/nonexistent/modrake.opt: cannot read the option file", 0), 0u) << error;
}

// Columns are counted from 1: column 31 is index 30.
TEST(OrvaControlRecords, ValuesStandInTheirColumns) {
  OrvaOptions o;
  o.solutionExpected = true;
  o.varRequests = 7;
  o.equRequests = 99999;
  o.varBlock = -9999;
  o.equBlock = 0;
  o.scale = -1;
  o.largeLevel = 12;
  o.largeMarginal = 345;
  const std::vector<std::string> r = orvaControlRecords(o);
  EXPECT_TRUE(matchesGolden(r, "orva/control-records"));
  for (size_t k = 1; k < r.size(); ++k) EXPECT_EQ(r[k].size(), 35u) << k;
  o.solutionExpected = false;
  EXPECT_EQ(orvaControlRecords(o)[0].substr(30), "F");
}

TEST(OrvaControlRecords, FileFromOptionTextCarriesEveryValue) {
  OrvaOptions o;
  ASSERT_EQ(parseError("VARBLOCK 4\nEQUBLOCK 5\nLARGEMARGINAL 8\n", o), "");
  const std::string path = tempPath("orva_records.scr");
  std::string error;
  ASSERT_TRUE(orvaWriteControlRecords(path, o, error)) << error;
  const std::vector<std::string> lines = readLines(path);
  std::remove(path.c_str());
  ASSERT_EQ(lines.size(), 8u);
  // Record 4 is the variable limit, record 5 the equation limit.
  EXPECT_EQ(lines[3].substr(30), "    4");
  EXPECT_EQ(lines[4].substr(30), "    5");
  EXPECT_EQ(lines[7].substr(30), "    8");
  EXPECT_EQ(lines[1].substr(30), " 1000");
}

}  // namespace
