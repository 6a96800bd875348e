// Models read through GLPK and from the native form: one model in every form gives one instance.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <sstream>

#include "host/host.h"
#include "host/readers.h"
#include "host_test_files.h"

namespace {

HostInstance readOrFail(const std::string& path, ModelFormat format,
                        const std::string& data = "") {
  HostInstance inst;
  std::string error;
  ModelSource source{path, format, data, {}};
  EXPECT_TRUE(readModel(source, inst, error)) << error;
  return inst;
}

std::string readError(const std::string& path, ModelFormat format) {
  HostInstance inst;
  std::string error;
  EXPECT_FALSE(readModel(ModelSource{path, format, "", {}}, inst, error));
  return error;
}

std::string bound(double v) {
  if (v == kHostInf) return "inf";
  if (v == -kHostInf) return "-inf";
  std::ostringstream s;
  s << v;
  return s.str();
}

// The instance as text, columns in name order: what every form must agree on.
std::string describe(const HostInstance& in) {
  std::ostringstream out;
  out << "rows " << in.rowCount << " cols " << in.colCount << " nz " << hostNzCount(in)
      << (in.minimizing ? " min" : " max") << " objRow " << in.objRow << " objVar "
      << (in.objVar ? hostColName(in, in.objVar - 1) : "none") << "\n";
  for (int32_t i = 0; i < in.rowCount; ++i)
    out << "row " << hostRowName(in, i) << " " << in.rowType[i] << " " << in.rowRhs[i] << "\n";
  std::map<std::string, std::string> cols;
  for (int32_t j = 0; j < in.colCount; ++j) {
    std::ostringstream c;
    c << in.colType[j] << " [" << bound(in.colLower[j]) << "," << bound(in.colUpper[j]) << "]";
    for (int32_t k = in.colStart[j]; k < in.colStart[j + 1]; ++k)
      c << " " << hostRowName(in, in.entryRow[k]) << "=" << in.entryValue[k];
    cols[hostColName(in, j)] = c.str();
  }
  for (const auto& [name, text] : cols) out << "col " << name << " " << text << "\n";
  for (const HostSymbol& s : in.symbols)
    out << "symbol " << s.name << (s.isEquation ? " equ " : " var ") << s.dim << "\n";
  return out.str();
}

TEST(HostFormats, OneModelInEveryFormGivesOneInstance) {
  const HostInstance json = readOrFail(hostTestData("small.json"), ModelFormat::Json);
  const std::string expected = describe(json);
  EXPECT_EQ(describe(readOrFail(hostTestData("small.mod"), ModelFormat::MathProg)), expected);
  EXPECT_EQ(describe(readOrFail(hostTestData("small.mps"), ModelFormat::Mps)), expected);
  EXPECT_EQ(describe(readOrFail(hostTestData("small_fixed.mps"), ModelFormat::FixedMps)),
            expected);
  EXPECT_EQ(describe(readOrFail(hostTestData("small.lp"), ModelFormat::Lp)), expected);

  // And that instance is the model as written in small.mod.
  const HostInstance& in = json;
  ASSERT_EQ(in.rowCount, 9);
  ASSERT_EQ(in.colCount, 8);
  EXPECT_EQ(hostNzCount(in), 25);
  EXPECT_EQ(in.objRow, 1);
  EXPECT_EQ(hostRowName(in, 0), "cost");
  EXPECT_EQ(in.rowType[0], kRowE);
  EXPECT_EQ(hostColName(in, in.objVar - 1), "objvar");
  EXPECT_EQ(in.colLower[in.objVar - 1], -kHostInf);
  EXPECT_EQ(hostRowName(in, 6), "band_lo");
  EXPECT_EQ(in.rowType[6], kRowG);
  EXPECT_EQ(in.rowRhs[6], 10);
  EXPECT_EQ(hostRowName(in, 7), "band_up");
  EXPECT_EQ(in.rowType[7], kRowL);
  EXPECT_EQ(in.rowRhs[7], 500);
  EXPECT_EQ(in.rowType[8], kRowE);
  EXPECT_EQ(in.colType[4], kVarBinary);
  EXPECT_EQ(in.colUpper[4], 1);
  EXPECT_EQ(in.colType[5], kVarInteger);
  EXPECT_EQ(in.colUpper[5], 10);
  EXPECT_EQ(in.colLower[6], -kHostInf);
}

TEST(HostFormats, RealModelSizes) {
  // afiro: 27 constraints and the objective row COST, 32 columns and objvar.
  const HostInstance in = readOrFail(hostTestData("afiro.mps"), ModelFormat::FixedMps);
  EXPECT_EQ(in.rowCount, 28);
  EXPECT_EQ(in.colCount, 33);
  EXPECT_EQ(hostNzCount(in), 88 + 1);
  EXPECT_EQ(in.objRow, 1);
  EXPECT_EQ(hostRowName(in, 0), "COST");
  EXPECT_EQ(in.objVar, 33);
  EXPECT_EQ(hostRowName(in, 1), "R(09)");
  EXPECT_EQ(in.inputName, "afiro");
  // The free reader takes the same file.
  EXPECT_EQ(describe(readOrFail(hostTestData("afiro.mps"), ModelFormat::Mps)), describe(in));
}

TEST(HostFormats, MathProgObjectiveSenseConstantAndLabels) {
  const std::string model = hostTestData("formats/plan.mod");
  const HostInstance in = readOrFail(model, ModelFormat::MathProg);
  // profit (the objective, kept once), lim x2, spare (a further objective: =N=).
  ASSERT_EQ(in.rowCount, 4);
  EXPECT_FALSE(in.minimizing);
  EXPECT_EQ(in.objRow, 1);
  EXPECT_EQ(hostRowName(in, 0), "profit");
  EXPECT_EQ(in.rowType[0], kRowE);
  EXPECT_EQ(in.rowRhs[0], 7);
  EXPECT_EQ(hostRowName(in, 1), "lim('new york')");
  EXPECT_EQ(in.rowType[3], kRowN);
  // The model's own objvar keeps its name; the objective variable is renamed.
  ASSERT_EQ(in.colCount, 4);
  EXPECT_EQ(in.objVar, 4);
  EXPECT_EQ(hostColName(in, 3), "objvar_");
  int32_t own = -1;
  for (int32_t j = 0; j < 3; ++j)
    if (hostColName(in, j) == "objvar") own = j;
  ASSERT_GE(own, 0);
  EXPECT_EQ(in.colLower[own], 1);
  // Its entries: 1 in profit, 1 in both lim rows, 1 in spare.
  EXPECT_EQ(in.colStart[own + 1] - in.colStart[own], 4);
  const std::string objvar = hostColName(in, in.objVar - 1);
  EXPECT_EQ(in.entryValue[in.colStart[in.objVar - 1]], -1);
}

TEST(HostFormats, DataFileAndNoObjective) {
  const std::string model = hostTestData("formats/feas.mod");
  const std::string data = hostTestData("formats/feas.dat");
  const HostInstance in = readOrFail(model, ModelFormat::MathProg, data);
  EXPECT_EQ(in.rowCount, 2);
  EXPECT_EQ(in.colCount, 2);
  EXPECT_EQ(in.objRow, 0);
  EXPECT_EQ(in.objVar, 0);
  EXPECT_EQ(in.colType[0], kVarBinary);
  ovmHandle m = ovmCreateFromInstance(in);
  EXPECT_EQ(ovmObjVar(m), ovmValNAInt(m));
  EXPECT_EQ(ovmObjRow(m), ovmValNAInt(m));
  ovmFree(m);
}

TEST(HostFormats, RangedRowsSplitIntoTwoBlocks) {
  const std::string model = hostTestData("formats/range.mod");
  const HostInstance in = readOrFail(model, ModelFormat::MathProg);
  // cap['a'] has equal bounds: one =E= row. cap['b'] and c7 are ranged: a =G= and an =L= row.
  ASSERT_EQ(in.rowCount, 5);
  EXPECT_EQ(hostRowName(in, 0), "cap(a)");
  EXPECT_EQ(in.rowType[0], kRowE);
  EXPECT_EQ(hostRowName(in, 1), "cap_lo(b)");
  EXPECT_EQ(in.rowType[1], kRowG);
  EXPECT_EQ(in.rowRhs[1], 1);
  EXPECT_EQ(hostRowName(in, 2), "cap_up(b)");
  EXPECT_EQ(in.rowType[2], kRowL);
  EXPECT_EQ(in.rowRhs[2], 3);
  // c7 is a scalar constraint of MathProg: its halves are scalars too.
  EXPECT_EQ(hostRowName(in, 3), "c7_lo");
  EXPECT_EQ(in.rowRhs[3], -5);
  EXPECT_EQ(hostRowName(in, 4), "c7_up");
  EXPECT_NE(in.rowSymbol[1], in.rowSymbol[2]);
  EXPECT_NE(in.rowSymbol[0], in.rowSymbol[1]);
  // Both halves hold the same entries.
  for (int32_t j = 0; j < in.colCount; ++j) {
    int lower = 0, upper = 0;
    for (int32_t k = in.colStart[j]; k < in.colStart[j + 1]; ++k) {
      if (in.entryRow[k] == 3) lower += static_cast<int>(in.entryValue[k]);
      if (in.entryRow[k] == 4) upper += static_cast<int>(in.entryValue[k]);
    }
    EXPECT_EQ(lower, upper);
    EXPECT_NE(lower, 0);
  }
}

TEST(HostFormats, ObjectiveConstantFromMps) {
  // The objective row's right-hand side is the negative of the objective's constant term, and
  // stays the objective row's right-hand side.
  const std::string mps = hostTestData("formats/c.mps");
  const HostInstance in = readOrFail(mps, ModelFormat::Mps);
  ASSERT_EQ(in.rowCount, 2);
  EXPECT_EQ(in.rowRhs[0], -10);
  EXPECT_EQ(in.rowRhs[1], 2);
}

TEST(HostFormats, GlpkErrorsNameFileAndLine) {
  const std::string mod = hostTestData("formats/bad.mod");
  EXPECT_EQ(readError(mod, ModelFormat::MathProg).rfind(mod + ":3: ", 0), 0u)
      << readError(mod, ModelFormat::MathProg);
  const std::string gen = hostTestData("formats/gen.mod");
  // A generation error is told at the line where the value is used.
  EXPECT_EQ(readError(gen, ModelFormat::MathProg).rfind(gen + ":3: ", 0), 0u)
      << readError(gen, ModelFormat::MathProg);
  const std::string mps = hostTestData("formats/bad.mps");
  EXPECT_EQ(readError(mps, ModelFormat::Mps).rfind(mps + ":4: ", 0), 0u)
      << readError(mps, ModelFormat::Mps);
  const std::string lp = hostTestData("formats/bad.lp");
  EXPECT_EQ(readError(lp, ModelFormat::Lp).rfind(lp + ":4: ", 0), 0u)
      << readError(lp, ModelFormat::Lp);
  const std::string missing = hostTestData("formats/none.mod");
  const std::string e = readError(missing, ModelFormat::MathProg);
  EXPECT_NE(e.find(missing), std::string::npos) << e;
  // GLPK stays usable after a refused file.
  EXPECT_EQ(readOrFail(hostTestData("small.lp"), ModelFormat::Lp).rowCount, 9);
}

TEST(HostFormats, GlpkPrintsNothingByItself) {
  const std::string mod = hostTestData("formats/talk.mod");
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  readOrFail(mod, ModelFormat::MathProg);
  readError(hostTestData("formats/b.mod"), ModelFormat::MathProg);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(HostFormats, AutomaticScaleFactorsScaleTheMatrix) {
  const std::string mod = hostTestData("formats/wide.mod");
  HostInstance in = readOrFail(mod, ModelFormat::MathProg);
  std::string error;
  ASSERT_TRUE(hostAutoScale(in, error)) << error;
  EXPECT_TRUE(in.hasScale);
  // The reading rule a / c(j) x r(i) gives GLPK's scaled matrix, whose entries lie near 1:
  // the wide range 0.001 to 2000 shrinks to at most a factor 4.
  double smallest = 1e300, largest = 0;
  for (int32_t j = 0; j < in.colCount; ++j)
    for (int32_t k = in.colStart[j]; k < in.colStart[j + 1]; ++k) {
      const double scaled = std::fabs(in.entryValue[k] / in.colScale[j] * in.rowScale[in.entryRow[k]]);
      smallest = std::min(smallest, scaled);
      largest = std::max(largest, scaled);
    }
  EXPECT_LE(largest, 1.0 + 1e-12);
  EXPECT_GE(smallest, 0.25 - 1e-12);
  // A bound times c(j) is the bound of the scaled variable.
  EXPECT_GT(in.colScale[0], 0);
}

TEST(HostFormats, AFailureInsideGlpkIsRefusedAndGlpkGoesOn) {
  // A column that names one row twice makes GLPK itself fail while scaling.
  HostInstance in;
  in.rowType = {kRowE, kRowE, kRowE};
  in.colType = {kVarContinuous};
  in.colStart = {0, 2};
  in.entryRow = {1, 1};
  in.entryValue = {1, 2};
  in.sourcePath = "dup.json";
  hostCompleteInstance(in);
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  std::string error;
  EXPECT_FALSE(hostAutoScale(in, error));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(error.rfind("dup.json: GLPK could not scale the model: ", 0), 0u) << error;
  EXPECT_FALSE(in.hasScale);
  EXPECT_EQ(readOrFail(hostTestData("small.lp"), ModelFormat::Lp).rowCount, 9);
}

TEST(HostFormats, FormatWords) {
  ModelFormat f = ModelFormat::Json;
  EXPECT_TRUE(formatFromExtension("dir.x/model.MOD", f));
  EXPECT_EQ(f, ModelFormat::MathProg);
  EXPECT_TRUE(formatFromExtension("a.lp", f));
  EXPECT_EQ(f, ModelFormat::Lp);
  EXPECT_FALSE(formatFromExtension("dir.x/model", f));
  EXPECT_FALSE(formatFromExtension("model.txt", f));
  EXPECT_TRUE(parseModelFormat("fixed-mps", f));
  EXPECT_EQ(f, ModelFormat::FixedMps);
  EXPECT_STREQ(modelFormatName(f), "fixed-mps");
  EXPECT_FALSE(parseModelFormat("gms", f));
  EXPECT_TRUE(formatFromExtension("dir/blend.nl", f));
  EXPECT_EQ(f, ModelFormat::Nl);
}

}  // namespace
