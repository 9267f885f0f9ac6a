// Splines, hatches and formatted texts.
#include <gtest/gtest.h>

#include <cmath>

#include "cad/shape/curves.h"
#include "cad/shape/hatch.h"
#include "cad/shape/plain_text.h"

namespace cad::shape {
namespace {

TEST(Spline, EndsAtItsFirstAndLastControlPointAndTakesWeights) {
  const Points controls = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}};
  Points points;
  // A quarter of a circle as a rational quadratic.
  addSpline(points, 2, {0, 0, 0, 1, 1, 1}, controls, {1, std::sqrt(0.5), 1});
  ASSERT_GT(points.size(), 5U);
  for (const AcGePoint3d& p : points) EXPECT_NEAR(std::hypot(p.x, p.y - 1), 1, 1e-9);
  EXPECT_NEAR(points.back().y, 1, 1e-12);
  points.clear();
  addSpline(points, 3, {0, 0, 1}, controls, {});  // too few knots
  EXPECT_TRUE(points.empty());
}

TEST(Hatch, IslandsAndPatternLinesByTheEvenOddRule) {
  TagList t;
  const Format format;
  t.create(format, "HATCH");
  t.addAscii(100, "AcDbHatch");
  t.addPoint(10, {});
  t.addInteger(70, 0);
  t.addInteger(91, 2);
  for (const double r : {10.0, 4.0}) {
    t.addInteger(92, 3);
    t.addInteger(72, 0);
    t.addInteger(73, 1);
    t.addInteger(93, 4);
    for (const auto& [x, y] : {std::pair{-r, -r}, {r, -r}, {r, r}, {-r, r}}) {
      t.addReal(10, x);
      t.addReal(20, y);
    }
    t.addInteger(97, 0);
  }
  t.addInteger(78, 1);
  t.addReal(53, 0);
  t.addReal(43, 0);
  t.addReal(44, 0.5);
  t.addReal(45, 0);
  t.addReal(46, 5);
  t.addInteger(79, 0);
  Loops loops, lines;
  readHatch(t, loops, lines);
  ASSERT_EQ(loops.size(), 2U);
  // Lines at heights -9.5, -4.5, 0.5, 5.5: only the third meets the island and falls into two.
  ASSERT_EQ(lines.size(), 5U);
  EXPECT_NEAR(lines[2][0].x, -10, 1e-9);
  EXPECT_NEAR(lines[2][1].x, -4, 1e-9);
  EXPECT_NEAR(lines[3][0].x, 4, 1e-9);
}

TEST(Texts, FormattingCodesGoAndLinesStay) {
  EXPECT_EQ(plainLines(u"{\\fArial|b0;Quota}\\P\\H2.5x;12\\S1^2; m\\~x \\\\"),
            (std::vector<std::u16string>{u"Quota", u"121/2 m x \\"}));
  EXPECT_EQ(plainText(u"%%uposa%%u %%p5 100%%%"), u"posa \u00B15 100%");
}

}  // namespace
}  // namespace cad::shape
