// Models read through GLPK and from the native form: one model in every form gives one instance.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "host/host.h"
#include "host/readers.h"
#include "golden.h"
#include "host_test_files.h"

namespace {

HostInstance readOrFail(const std::string& path, ModelFormat format) {
  HostInstance inst;
  EXPECT_TRUE(hostRead({path, format, "", {}}, inst));
  return inst;
}

std::string readError(const std::string& path, ModelFormat format) {
  HostInstance inst;
  std::string error;
  EXPECT_FALSE(readModel(ModelSource{path, format, "", {}}, inst, error));
  return error;
}

// The model as written in small.mod, the same in every form; and MathProg's objective sense
// and constant, labels with blanks, an own objvar beside the objective variable, a further
// objective (=N=), and ranged rows split into a =G= and a =L= row, each half a symbol of its
// own, scalars for a scalar constraint.
TEST(HostFormats, OneModelInEveryFormGivesOneInstance) {
  const HostInstance json = readOrFail(hostTestData("small.json"), ModelFormat::Json);
  const std::string small = hostDescribe(json);
  EXPECT_TRUE(matchesGolden(splitLines(small), "host/small.instance"));
  EXPECT_EQ(hostItemNames(json, false), (std::vector<std::string>{"x(n,e)", "x(n,w)", "x(s,e)", "x(s,w)",
                                                                  "y", "z", "w", "objvar"}));
  EXPECT_EQ(hostDescribe(readOrFail(hostTestData("small.mod"), ModelFormat::MathProg)), small);
  EXPECT_EQ(hostDescribe(readOrFail(hostTestData("small.mps"), ModelFormat::Mps)), small);
  EXPECT_EQ(hostDescribe(readOrFail(hostTestData("small_fixed.mps"), ModelFormat::FixedMps)), small);
  EXPECT_EQ(hostDescribe(readOrFail(hostTestData("small.lp"), ModelFormat::Lp)), small);
  // plan's objective variable is its last column; range has none.
  const std::pair<std::string, int32_t> models[] = {{"plan", 4}, {"range", 0}};
  for (const auto& [name, objVar] : models) {
    const HostInstance in = readOrFail(hostTestData("formats/" + name + ".mod"), ModelFormat::MathProg);
    EXPECT_TRUE(matchesGolden(splitLines(hostDescribe(in)), "host/" + name + ".instance"));
    EXPECT_EQ(in.objVar, objVar);
  }
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
  EXPECT_EQ(hostDescribe(readOrFail(hostTestData("afiro.mps"), ModelFormat::Mps)), hostDescribe(in));
}

TEST(HostFormats, DataFileAndNoObjective) {
  HostInstance in;
  ASSERT_TRUE(hostRead({hostTestData("formats/feas.mod"), ModelFormat::MathProg,
                        hostTestData("formats/feas.dat"), {}}, in));
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

TEST(HostFormats, ObjectiveConstantFromMps) {
  // The objective row's right-hand side is the negative of the objective's constant term, and
  // stays the objective row's right-hand side.
  const std::string mps = hostTestData("formats/c.mps");
  const HostInstance in = readOrFail(mps, ModelFormat::Mps);
  ASSERT_EQ(in.rowCount, 2);
  EXPECT_EQ(in.rowRhs[0], -10);
  EXPECT_EQ(in.rowRhs[1], 2);
}

// A generation error (gen.mod) is told at the line where the value is used.
TEST(HostFormats, GlpkErrorsNameFileAndLine) {
  const struct {
    const char* file;
    ModelFormat format;
    const char* line;  // "" for a file that does not exist
  } cases[] = {{"bad.mod", ModelFormat::MathProg, ":3: "}, {"gen.mod", ModelFormat::MathProg, ":3: "},
               {"bad.mps", ModelFormat::Mps, ":4: "},      {"bad.lp", ModelFormat::Lp, ":4: "},
               {"none.mod", ModelFormat::MathProg, ""}};
  for (const auto& c : cases) {
    const std::string path = hostTestData("formats/") + c.file;
    const std::string error = readError(path, c.format);
    EXPECT_EQ(error.rfind(path + c.line, 0), 0u) << error;
  }
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
