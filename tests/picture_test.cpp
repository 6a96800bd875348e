// PICTURE: the codes of coefficients, the width of strips, and a whole picture with a large
// block, a strip of its own and the summary alone, written out by hand.
#include "pictures/picture.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "request_harness.h"

namespace {


TEST(Picture, CoefficientCodesAtTheirLimits) {
  const std::vector<std::pair<double, char>> cases = {
      {0.0, '0'},     {1.0, 'C'},    {-1.0, '3'},   {1.0000001, 'D'}, {0.9999999, 'B'},
      {0.5, 'B'},     {-0.5, '1'},   {1e-12, 'A'},  {9.9e-13, '$'},   {1e-13, '$'},
      {-1e-13, '1'},  {-5e-14, '$'}, {1000.0, 'G'}, {999.0, 'F'},     {-1000.0, '6'},
      {-1000.5, '7'}, {1e+20, '+'},  {-1e+20, '7'}, {-2e+20, '-'},    {-1e+50, '-'},
      {1e+50, '$'},   {-2e+50, '$'}, {10.0, 'E'},   {-10.0, '4'},     {-100.0, '5'},
  };
  for (const auto& [value, code] : cases) {
    SCOPED_TRACE(value);
    EXPECT_EQ(coefficientCode(value), code);
  }
  EXPECT_EQ(stripCapacity(50), 18);
  EXPECT_EQ(stripCapacity(130), 58);
  EXPECT_EQ(stripCapacity(254), 108);
}

// Ten members of X take the large form with spelled letters; Y the small one. At width 50 a
// strip holds 18 columns: the 11 columns and the 13 of the summary do not fit together, so the
// summary stands alone.
TEST(Picture, WholePictureAtTheNarrowestWidth) {
  request_test::SectionRun run;
  run.start(analysis_test::modelFile("requests/picture-narrow.json"), 3, 50, {"VARIABLE", "X", "Y"});
  runPicture(run.regions<Phase::Picture>(), runState);

  EXPECT_TRUE(matchesGolden(run.fx.status, "requests/picture-narrow.status"));
}

}  // namespace
