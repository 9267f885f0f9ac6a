// Symbols and the names beside them: which side these take, what they keep clear of, what is seen
// of the smallest.
#include "cad/view/labels.h"

#include <gtest/gtest.h>

#include <cmath>

#include "cad/view/small_symbols.h"

namespace cad::view {
namespace {

constexpr PageBox kSymbol{195, 195, 205, 205};

// A name and the value under it, as they are drawn: up and right of the symbol.
std::vector<Label> nameAndValue(std::uint32_t symbol = 1) {
  std::vector<Label> labels(2);
  labels[0].box = {210, 170, 250, 180};
  labels[1].box = {210, 183, 230, 193};
  for (Label& label : labels) {
    label.height = 10;
    label.symbol = symbol;
    label.beside = kSymbol;
  }
  return labels;
}

PageBox placeOf(const Label& label) {
  return {label.box.x1 + label.moveX, label.box.y1 + label.moveY, label.box.x2 + label.moveX,
          label.box.y2 + label.moveY};
}

TEST(Labels, StayWhereTheyAreDrawnWhenNothingIsThere) {
  PageRoom room(400, 400);
  room.take(kSymbol, 1);
  room.cross({200, 200, 200, 400}, 9);
  room.cross({200, 200, 300, 170}, 1);  // the symbol's own
  const auto shown = placeLabels(nameAndValue(), room);
  ASSERT_EQ(shown.size(), 2U);
  for (const Label& label : shown) EXPECT_EQ(std::hypot(label.moveX, label.moveY), 0);
}

TEST(Labels, TakeAnotherSideOfTheirSymbolTogether) {
  // What is in the way, and the corner of the symbol that they must then be at.
  struct Case {
    const char* what;
    std::vector<PageBox> taken;
    std::vector<PageLine> lines;
    double width;  // of the page
    int across, down;
  };
  for (const Case& c : {Case{"another text", {{240, 160, 260, 175}}, {}, 400, 1, 1},
                        Case{"a line", {}, {{200, 200, 300, 160}}, 400, 1, 1},
                        Case{"the page's edge", {}, {}, 240, -1, -1},
                        Case{"all of the right", {{206, 0, 400, 400}}, {}, 400, -1, -1},
                        Case{"a line, and a text below",
                             {{206, 206, 250, 240}},
                             {{200, 200, 300, 160}},
                             400,
                             -1,
                             -1}}) {
    PageRoom room(c.width, 400);
    room.take(kSymbol, 1);
    for (const PageBox& box : c.taken) room.take(box);
    for (const PageLine& line : c.lines) room.cross(line, 9);
    const auto shown = placeLabels(nameAndValue(), room);
    ASSERT_EQ(shown.size(), 2U) << c.what;
    for (const Label& label : shown) {
      const PageBox at = placeOf(label);
      EXPECT_NEAR(c.across > 0 ? at.x1 : at.x2, 200 + c.across * 10, 1e-9) << c.what;
      EXPECT_TRUE(c.down > 0 ? at.y1 > 205 : at.y2 < 195) << c.what;
    }
    EXPECT_GT(placeOf(shown[1]).y1, placeOf(shown[0]).y2) << c.what << ": the name above";
  }
}

TEST(Labels, TextsBesideEachOtherKeepTheirOrder) {
  auto labels = nameAndValue();
  labels.push_back(labels[1]);  // after the value, in its row
  labels[2].box.x1 += 24, labels[2].box.x2 += 14;
  PageRoom room(400, 400);
  room.take({206, 0, 400, 400});
  const auto shown = placeLabels(labels, room);
  ASSERT_EQ(shown.size(), 3U);
  const double gap = labels[2].box.x1 - labels[1].box.x2;
  EXPECT_NEAR(placeOf(shown[2]).x1 - placeOf(shown[1]).x2, gap, 1e-9);
  EXPECT_NEAR(placeOf(shown[2]).x2, 190, 1e-9);
}

TEST(Labels, NamesOfNeighboursAreAllShownBeforeTheirValues) {
  // Two symbols so near that two of their four texts would lie on the others.
  auto labels = nameAndValue(1);
  const auto next = nameAndValue(2);
  labels.insert(labels.end(), next.begin(), next.end());
  for (std::size_t i : {2, 3}) {
    labels[i].box.x1 += 20, labels[i].box.x2 += 20;
    labels[i].beside.x1 += 20, labels[i].beside.x2 += 20;
  }
  PageRoom room(400, 400);
  room.take(labels[0].beside, 1);
  room.take(labels[2].beside, 2);
  EXPECT_EQ(placeLabels(labels, room).size(), 4U);
  // With room in one corner alone the names come first.
  PageRoom corner(400, 400);
  corner.take({0, 181, 400, 400});
  corner.take({0, 0, 209, 400});
  const auto shown = placeLabels(nameAndValue(), corner);
  ASSERT_EQ(shown.size(), 1U);
  EXPECT_EQ(shown[0].box.y1, 170);
}

TEST(Labels, ALabelAlongALongLineIsFoundInEveryCellThatItPasses) {
  for (const PageLine& line :
       {PageLine{0, 0, 1000, 700}, PageLine{1000, 0, 0, 700}, PageLine{500, -9000, 500, 9000},
        PageLine{-1e6, 350, 1e6, 350}, PageLine{480, 700, 520, 0}}) {
    PageRoom room(1000, 700);
    room.cross(line);
    for (double t = 0.02; t < 1; t += 0.02) {
      const double x = line.x1 + t * (line.x2 - line.x1), y = line.y1 + t * (line.y2 - line.y1);
      if (!room.holds(x, y)) continue;
      EXPECT_TRUE(room.isCrossed({x - 2, y - 2, x + 2, y + 2})) << line.x1 << " at " << t;
      EXPECT_FALSE(room.isCrossed({x + 40, y + 40, x + 44, y + 42}) &&
                   std::fabs(line.x2 - line.x1) < 100);
    }
  }
  PageRoom room(100, 100);
  room.cross({0, 0, NAN, 50});
  room.cross({0, 0, INFINITY, 50});
  EXPECT_FALSE(room.isCrossed({0, 0, 100, 100}));
}

// A symbol of two lines, ever so large, in a colour of its own.
void addSymbol(Picture& p, const AcGePoint3d& at, double half, int color) {
  for (const double side : {-1.0, 1.0}) {
    Item item;
    item.symbol = true;
    item.entity = static_cast<std::uint32_t>(p.items.size() / 2 + 1);
    item.pen.index = color;
    item.first = static_cast<std::uint32_t>(p.points.size());
    item.count = 2;
    p.points.push_back(at + AcGeVector3d(-half, side * half, 0));
    p.points.push_back(at + AcGeVector3d(half, -side * half, 0));
    p.items.push_back(item);
  }
}

TEST(SmallSymbols, AreDotsInTheirColourAsLargeAsTheirNumberLetsThemBe) {
  Placement page;
  page.top = 100;
  page.width = page.height = 400;
  page.scale = 4;
  const Projection at(page);
  Picture p;
  addSymbol(p, {20, 30, 0}, 0.2, 3);   // 1.6 dots across
  addSymbol(p, {50, 50, 0}, 5, 2);     // 40
  addSymbol(p, {500, 50, 0}, 0.2, 1);  // beyond the page
  const SmallSymbols few(p, at);
  ASSERT_EQ(few.dots().size(), 1U);
  EXPECT_EQ(few.size(), 5);
  EXPECT_NEAR(few.dots()[0].at.x, 80, 1e-9);
  EXPECT_NEAR(few.dots()[0].at.y, 280, 1e-9);
  EXPECT_EQ(p.items[few.dots()[0].item].pen.index, 3);
  EXPECT_TRUE(few.hold(0) && few.hold(1)) << "both its lines";
  EXPECT_FALSE(few.hold(2) || few.hold(4));
  for (int i = 0; i < 3000; ++i) addSymbol(p, {i % 60 + 20.0, i / 60 + 20.0, 0}, 0.2, 4);
  const SmallSymbols many(p, at);
  EXPECT_EQ(many.dots().size(), 3001U);
  EXPECT_LT(many.size() * many.size() * 3000, 0.06 * 400 * 400);
  EXPECT_GT(many.size(), 1.6);
  for (int i = 0; i < 3000; ++i) addSymbol(p, {i % 60 + 20.0, i / 60 + 20.0, 0}, 0.2, 4);
  EXPECT_TRUE(SmallSymbols(p, at).dots().empty()) << "no larger than they are";
}

}  // namespace
}  // namespace cad::view
