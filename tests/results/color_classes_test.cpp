#include "module/results/color_classes.h"

#include <gtest/gtest.h>

#include <cmath>

namespace vessora {
namespace {

TEST(ColorClasses, BoundsAreWholeNumbersAroundTheValues) {
  const ColorClasses c = ColorClasses::of({12.4, 31.2, 57.9}, 5);
  EXPECT_EQ(c.low, 12);
  EXPECT_EQ(c.width, 9.2);
  EXPECT_EQ(c.find(12), 0);
  EXPECT_EQ(c.find(21.2), 1);  // a bound belongs to the class above it
  EXPECT_EQ(c.find(57.9), 4);
  EXPECT_EQ(c.find(58), -1);
  EXPECT_EQ(c.find(11.999), -1);
  EXPECT_EQ(ColorClasses::of({-3.5, 2.5}, 10).low, -4);
  EXPECT_EQ(ColorClasses::of({-3.5, 2.5}, 10).width, 0.7);
}

// 12 + 0.2 + 0.2 falls just short of 12.4.
TEST(ColorClasses, EqualValuesFallIntoOneClassByTheSumOfWidths) {
  const ColorClasses c = ColorClasses::of({12.4, 12.4}, 5);
  EXPECT_EQ(c.low, 12);
  EXPECT_EQ(c.width, 0.2);
  EXPECT_EQ(c.find(12.4), 2);
}

TEST(ColorClasses, BelowOneTheTopIsAHundredth) {
  const ColorClasses c = ColorClasses::of({0.0, 0.034}, 5);
  EXPECT_EQ(c.low, 0);
  EXPECT_EQ(c.width, 0.008);
  EXPECT_EQ(c.find(0.034), 4);
  EXPECT_EQ(ColorClasses::of({0.0, 1.0}, 5).width, 0.2);
  EXPECT_EQ(ColorClasses::of({0.0, 0.999}, 5).width, 0.2);
  EXPECT_EQ(ColorClasses::of({0.0, 0.07}, 10).width, 0.007);  // 7.000000000000001 is 7
}

TEST(ColorClasses, WithoutASpanNoClassHoldsAnything) {
  // Zeros do not raise the top from where it starts.
  const ColorClasses zeros = ColorClasses::of({0, 0}, 10);
  EXPECT_EQ(zeros.low, 0);
  EXPECT_EQ(zeros.width, 0);
  EXPECT_EQ(zeros.find(0), -1);
  // Nor do negative values: the classes reach up to 0.
  const ColorClasses negative = ColorClasses::of({-7.5, -2}, 5);
  EXPECT_EQ(negative.low, -8);
  EXPECT_EQ(negative.width, 1.6);
  EXPECT_EQ(negative.find(-2), 3);
  // Without values the bounds are beyond everything.
  const ColorClasses none = ColorClasses::of({}, 5);
  EXPECT_TRUE(std::isinf(none.low));
  EXPECT_EQ(none.find(1e300), -1);
}

// Whole numbers of single precision: 16777217 is none.
TEST(ColorClasses, BoundsHaveSinglePrecision) {
  const ColorClasses c = ColorClasses::of({16777217.0, 16777219.0}, 5);
  EXPECT_EQ(c.low, 16777216);
  EXPECT_EQ(c.width, 0.8);
}

}  // namespace
}  // namespace vessora
