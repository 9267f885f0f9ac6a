// Boxes, picks and windows on small drawings: what an entity draws decides, not what its tags hold.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "tests/shape/shape_testing.h"

namespace cad::shape {
namespace {

void expectBox(const AcDbExtents& box, double x1, double y1, double x2, double y2) {
  ASSERT_FALSE(box.isEmpty());
  EXPECT_NEAR(box.minPoint().x, x1, 1e-9);
  EXPECT_NEAR(box.minPoint().y, y1, 1e-9);
  EXPECT_NEAR(box.maxPoint().x, x2, 1e-9);
  EXPECT_NEAR(box.maxPoint().y, y2, 1e-9);
}

PlanWindow window(double x1, double y1, double x2, double y2) { return {{x1, y1, 0}, {x2, y2, 0}}; }

const char kArrow[] =
    "0 BLOCK|8 0|2 A|70 0|10 1|20 1|30 0|3 A|0 LINE|8 0|10 1|20 1|30 0|11 3|21 2|31 0|0 ENDBLK|8 0";

TEST(Extents, WhatIsDrawnCountsInTheWorldWithArcsPlanesAndTexts) {
  expectBox(Sample("", "0 CIRCLE|8 0|10 5|20 3|40 2").box(), 3, 1, 7, 5);
  // A quarter of a circle is not the whole one, and a negative extrusion mirrors X.
  expectBox(Sample("", "0 ARC|8 0|10 0|20 0|40 2|50 0|51 90").box(), 0, 0, 2, 2);
  expectBox(Sample("", "0 CIRCLE|8 0|10 5|20 3|40 2|210 0|220 0|230 -1").box(), -7, 1, -3, 5);
  expectBox(Sample("", "0 TEXT|8 0|10 0|20 0|40 2|1 abcde|72 1|11 10|21 20").box(), 6, 20, 14, 22);
  EXPECT_TRUE(Sample("", "0 RAY|8 0|10 0|20 0|11 1|21 0").box().isEmpty());
  EXPECT_TRUE(Sample("", "0 MISTERO|8 0|10 0|20 0").box().isEmpty());
}

TEST(Extents, ReferencesCarryTheirBlockTurnedScaledAndInRows) {
  // The line goes from the base point by (2,1).
  expectBox(Sample(kArrow, "0 INSERT|8 0|2 A|10 10|20 20|41 2|42 3|50 90").box(), 7, 20, 10, 24);
  expectBox(Sample(kArrow, "0 INSERT|8 0|2 A|10 0|20 0|41 -1").box(), -2, 0, 0, 1);
  expectBox(Sample(kArrow, "0 INSERT|8 0|2 A|10 0|20 0|70 3|71 2|44 10|45 100").box(), 0, 0, 22,
            101);
  // Its block is missing, or draws nothing: its point is all there is.
  expectBox(Sample("", "0 INSERT|8 0|2 B|10 4|20 5").box(), 4, 5, 4, 5);
}

TEST(Extents, BlocksInsideThemselvesMultiplyingOrNestedDeepEnd) {
  const std::string itself =
      "0 BLOCK|8 0|2 A|70 0|10 0|20 0|3 A|0 INSERT|8 0|2 A|10 1|20 1|0 LINE|8 0|10 0|20 0|11 1|21 "
      "0|0 ENDBLK|8 0";
  expectBox(Sample(itself, "0 INSERT|8 0|2 A|10 0|20 0").box(), 0, 0, 1, 0);
  std::string many, deep;
  for (int i = 0; i < 5000; ++i) {
    const std::string name = "B" + std::to_string(i), next = "B" + std::to_string(i + 1);
    const std::string head = "0 BLOCK|8 0|2 " + name + "|70 0|10 0|20 0|3 " + name;
    const std::string reference = "|0 INSERT|8 0|2 " + next + "|10 1|20 0";
    deep += (i ? "|" : "") + head + reference + "|0 ENDBLK|8 0";
    if (i >= 20) continue;
    many += (i ? "|" : "") + head;
    for (int k = 0; k < 10; ++k) many += reference;
    many += "|0 ENDBLK|8 0";
  }
  Sample bomb(many + "|0 BLOCK|8 0|2 B20|70 0|10 0|20 0|3 B20|0 POINT|8 0|10 0|20 0|0 ENDBLK|8 0",
              "0 INSERT|8 0|2 B0|10 0|20 0");
  EXPECT_FALSE(
      expand(bomb.drawing(), bomb.first(), Arrays::whole, [](Primitive&&) {}));  // and says so
  expectBox(Sample(deep, "0 INSERT|8 0|2 B0|10 7|20 8").box(), 7, 8, 7, 8);
}

TEST(Hit, DistanceIsToWhatIsSeen) {
  Sample line("", "0 LINE|8 0|10 0|20 0|30 0|11 10|21 10|31 5");
  EXPECT_NEAR(line.distance(0, 2), std::sqrt(2), 1e-9);
  EXPECT_NEAR(line.distance(13, 14), 5, 1e-9);
  Sample circle("", "0 CIRCLE|8 0|10 0|20 0|40 5");
  EXPECT_NEAR(circle.distance(0, 0), 5, 0.02);  // its outline, not its inside
  // Closed: the stretch back to the first vertex counts.
  Sample ring("",
              "0 POLYLINE|8 0|66 1|70 1|0 VERTEX|8 0|10 0|20 0|0 VERTEX|8 0|10 4|20 0|0 VERTEX|8 "
              "0|10 4|20 4|0 SEQEND|8 0");
  EXPECT_NEAR(ring.distance(2, 2), 0, 1e-9);
  EXPECT_NEAR(Sample("", "0 TEXT|8 0|10 0|20 0|40 2|1 abcde").distance(4, 1), 0, 1e-9);
  EXPECT_NEAR(Sample("", "0 SOLID|8 0|10 0|20 0|11 4|21 0|12 0|22 4|13 4|23 4").distance(2, 2), 0,
              1e-9);
  // A symbol is hit anywhere in its box, but more so at its own point.
  Sample symbol(kArrow, "0 INSERT|8 0|2 A|10 10|20 20");
  EXPECT_EQ(symbol.distance(10, 20), 0);
  EXPECT_GT(symbol.distance(12, 20), 0);
  EXPECT_LT(symbol.distance(12, 20), 1e-3);
  EXPECT_TRUE(std::isinf(Sample("", "0 MISTERO|8 0").distance(0, 0)));
}

TEST(Hit, WindowsTakeWhatLiesInThemAndCrossingOnesWhatTheyMeet) {
  Sample diagonal("", "0 LINE|8 0|10 0|20 0|11 10|21 10");
  EXPECT_TRUE(diagonal.inside(window(0, 0, 10, 10)));
  EXPECT_TRUE(diagonal.inside(window(10, 10, 0, 0)));  // corners in any order
  EXPECT_FALSE(diagonal.inside(window(0, 0, 10, 9.999)));
  EXPECT_TRUE(diagonal.touched(window(4, 3, 6, 5)));
  EXPECT_TRUE(diagonal.touched(window(10, 10, 12, 12)));
  // Within the box of the line and not on it.
  EXPECT_FALSE(diagonal.touched(window(6, 1, 9, 4)));
  EXPECT_FALSE(diagonal.touched(window(11, 11, 12, 12)));
  Sample vertical("", "0 LINE|8 0|10 5|20 0|30 0|11 5|21 0|31 9");
  EXPECT_TRUE(vertical.touched(window(4, -1, 6, 1)));
  EXPECT_FALSE(vertical.touched(window(6, -1, 7, 1)));
  Sample ring("", "0 CIRCLE|8 0|10 0|20 0|40 5");
  EXPECT_FALSE(ring.touched(window(-1, -1, 1, 1)));  // in the middle of the ring there is nothing
  Sample filled("", "0 SOLID|8 0|10 -5|20 -5|11 5|21 -5|12 -5|22 5|13 5|23 5");
  EXPECT_TRUE(filled.touched(window(-1, -1, 1, 1)));
  Sample missing("", "0 INSERT|8 0|2 B|10 4|20 5");
  EXPECT_TRUE(missing.touched(window(4, 5, 6, 6)));
  EXPECT_FALSE(missing.touched(window(5, 5, 6, 6)));
}

}  // namespace
}  // namespace cad::shape
