// Sheets of paper: true scale, pages that cover everything, texts that can be read.
#include "cad/view/sheet.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <string>

namespace cad::view {
namespace {

void addLine(Picture& p, std::vector<AcGePoint3d> points) {
  Item item;
  item.pen.index = 1;
  item.first = static_cast<std::uint32_t>(p.points.size());
  item.count = static_cast<std::uint32_t>(points.size());
  p.points.insert(p.points.end(), points.begin(), points.end());
  p.items.push_back(item);
}

void addText(Picture& p, const AcGePoint3d& at, double height, std::u16string text) {
  Item item;
  item.kind = Kind::text;
  item.first = static_cast<std::uint32_t>(p.points.size());
  item.count = 3;
  item.text = static_cast<std::uint32_t>(p.texts.size());
  p.texts.push_back({std::move(text), 0, 0, 0});
  p.points.insert(p.points.end(),
                  {at, at + AcGeVector3d(height, 0, 0), at + AcGeVector3d(0, height, 0)});
  p.items.push_back(item);
}

Sheet lying(const char* paper, std::optional<double> scale = {}) {
  Sheet sheet;
  sheet.paper = *paperNamed(paper, true);
  sheet.scale = scale;
  sheet.words = {u"Titolo", u"Scala", u"Foglio", u"Quadro d'unione"};
  return sheet;
}

// How long the one red line of a picture in SVG is, in mm.
double redLine(const std::string& svg) {
  const std::size_t at = svg.find("stroke:rgb(100%,0%,0%)");
  if (at == svg.npos) return -1;
  const std::size_t d = svg.find("d=\"M ", at), m = svg.find("matrix(", at);
  double from[2], to[2];
  if (std::sscanf(svg.c_str() + d, "d=\"M %lf %lf L %lf %lf", &from[0], &from[1], &to[0], &to[1]) !=
      4) {
    return -1;
  }
  const double points = std::hypot(to[0] - from[0], to[1] - from[1]);
  return points * std::strtod(svg.c_str() + m + 7, nullptr) * 25.4 / 72;
}

TEST(Sheet, AMetreIsAsLongAsTheScaleSays) {
  for (const double metres : {1.0, 0.001, 0.3048}) {  // to a unit of the drawing
    Picture p;
    addLine(p, {{684000 / metres, 4852000 / metres, 0}, {684060 / metres, 4852080 / metres, 0}});
    for (const double scale : {1000.0, 2500.0}) {
      Sheet sheet = lying("A3", scale);
      sheet.metres = metres;
      sheet.format = Format::svg;
      const auto files = paintSheet(sheet, layOutSheet(p, sheet));
      ASSERT_TRUE(files) << files.error();
      ASSERT_EQ(files->bytes.size(), 1U);
      EXPECT_NEAR(redLine(files->bytes.front()), 100 * 1000 / scale, 0.01) << scale;
      sheet.scale.reset();
      EXPECT_EQ(layOutSheet(p, sheet).pages.scale, 500) << metres;
    }
  }
}

TEST(Sheet, TheScaleThatFitsIsTheLargestUsualOne) {
  struct Row {
    double width, height, scale;
  };
  for (const Row& row : {Row{300, 100, 2000}, Row{300, 300, 2000}, Row{3, 1, 20},
                         Row{40000, 25000, 250000}, Row{0.05, 0.05, 0.5}, Row{0, 0, 100}}) {
    Picture p;
    addLine(p, {{10, 20, 0}, {10 + row.width, 20 + row.height, 0}});
    const SheetLayout layout = layOutSheet(p, lying("A4"));
    EXPECT_EQ(layout.fault, SheetFault::none);
    EXPECT_EQ(layout.pages.scale, row.scale) << row.width << " x " << row.height;
    EXPECT_EQ(layout.pages.pages.size(), 1U);
    // One step larger is too large, indeed.
    if (row.width == 0) continue;
    const SheetLayout larger = layOutSheet(p, lying("A4", row.scale * 0.5));
    EXPECT_GT(larger.pages.columns * larger.pages.rows, 1) << row.width;
  }
}

TEST(Sheet, PagesCoverEverythingAndNoneIsEmpty) {
  Picture p;  // two sides of a square: the tiles of its other corner show nothing
  addLine(p, {{0, 0, 0}, {0, 900, 0}, {900, 900, 0}});
  const SheetLayout layout = layOutSheet(p, lying("A4", 1000));
  const SheetPages& pages = layout.pages;
  EXPECT_LT(pages.pages.size(), static_cast<std::size_t>(pages.columns * pages.rows));
  const auto shown = [&](double x, double y) {
    return std::any_of(pages.pages.begin(), pages.pages.end(), [&](const SheetPages::Page& page) {
      const double left = pages.left + page.column * pages.tileWidth,
                   top = pages.top - page.row * pages.tileHeight;
      return x >= left - 1e-6 && x <= left + pages.tileWidth + 1e-6 && y <= top + 1e-6 &&
             y >= top - pages.tileHeight - 1e-6;
    });
  };
  for (double at = 0; at <= 900; at += 5) {
    EXPECT_TRUE(shown(0, at)) << at;
    EXPECT_TRUE(shown(at, 900)) << at;
  }
  EXPECT_FALSE(shown(899, 1));
  // A diagonal does not take the tiles beside it.
  Picture diagonal;
  addLine(diagonal, {{0, 0, 0}, {900, 900, 0}});
  const SheetLayout few = layOutSheet(diagonal, lying("A4", 1000));
  EXPECT_LE(few.pages.pages.size(),
            static_cast<std::size_t>(few.pages.columns + few.pages.rows - 1));
}

TEST(Sheet, WhatLiesBeyondTheWindowIsOnNoPageNorOnTheKeyPlan) {
  const auto pages = [](bool beyond) {
    Picture p;
    addLine(p, {{0, 0, 0}, {500, 300, 0}});
    if (beyond) addLine(p, {{-3000, 600, 0}, {3000, 590, 0}});
    if (beyond) addLine(p, {{-200, -3000, 0}, {-200, 3000, 0}});
    Sheet sheet = lying("A4", 1000);
    sheet.window = Window{0, 0, 500, 300};
    sheet.format = Format::png;
    sheet.dpi = 50;
    const auto files = paintSheet(sheet, layOutSheet(p, sheet));
    return files ? files->bytes : std::vector<std::string>{};
  };
  EXPECT_GT(pages(false).size(), 3U);
  EXPECT_EQ(pages(true), pages(false));
}

TEST(Sheet, WhatNoSheetHoldsIsRefused) {
  Picture p;
  addLine(p, {{0, 0, 0}, {50000, 50000, 0}});
  EXPECT_EQ(layOutSheet(p, lying("A4", 100)).fault, SheetFault::tooManyPages);
  EXPECT_EQ(layOutSheet(p, lying("A4", 1e-6)).fault, SheetFault::tooManyPages);
  Sheet sheet = lying("A0");
  sheet.format = Format::png;
  sheet.dpi = 600;
  EXPECT_EQ(layOutSheet(p, sheet).fault, SheetFault::tooManyPixels);
  sheet = lying("A4");
  sheet.legends.resize(6);
  for (SheetLegend& legend : sheet.legends) legend.classes.resize(10);
  EXPECT_EQ(layOutSheet(p, sheet).fault, SheetFault::noRoom);
  EXPECT_FALSE(paperNamed("A5", false));
}

TEST(Sheet, LowTextsBecomeReadableOrAreLeftOutAndNothingIsCut) {
  Picture p;
  addLine(p, {{0, 0, 0}, {1000, 500, 0}});
  addText(p, {0, 0, 0}, 0.5, u"primo");       // finds room
  addText(p, {1, 0.5, 0}, 0.5, u"secondo");   // would lie on it
  addText(p, {500, 100, 0}, 30, u"grande");   // high enough as it is
  addText(p, {505, 105, 0}, 0.5, u"dentro");  // would lie on that
  addText(p, {1000, 500, 0}, 0.5, u"in fondo alla linea");
  addText(p, {900, 20, 0}, 0.5, u"200.5");  // has room, and belongs to "dentro"
  p.items.back().entity = 77;
  std::swap(p.items[5], p.items[6]);
  p.items[4].entity = 77;
  const SheetLayout layout = layOutSheet(p, lying("A4"));
  EXPECT_EQ(layout.leftOut, 3);
  std::vector<std::u16string> shown;
  for (const Item& item : layout.picture.items) {
    if (item.kind != Kind::text) continue;
    shown.push_back(layout.picture.texts[item.text].text);
    const double height =
        layout.picture.points[item.first + 2].y - layout.picture.points[item.first].y;
    EXPECT_GE(height * 1000 / layout.pages.scale, 1.4 - 1e-9);
  }
  EXPECT_EQ(shown, (std::vector<std::u16string>{u"primo", u"grande", u"in fondo alla linea"}));
  // The long name at the end reaches beyond the line, and the page beyond the name.
  const double right = layout.pages.left + layout.pages.tileWidth;
  EXPECT_GT(right, 1000 + 19 * 0.85 * 1.4 * layout.pages.scale / 1000);
}

TEST(Sheet, LabelsThatNoPageHasRoomForAreCounted) {
  Picture p;
  addLine(p, {{0, 0, 0}, {700, 300, 0}});
  for (const double x : {20.0, 25.0, 600.0}) {  // the second would lie on the first
    addText(p, {x, 100, 0}, 10, u"nodo");
    p.items.back().label = true;
    p.items.back().entity = static_cast<std::uint32_t>(x);
  }
  const auto leftOut = [&](double scale) {
    const Sheet sheet = lying("A4", scale);
    const auto files = paintSheet(sheet, layOutSheet(p, sheet));
    return files ? files->leftOut : -1;
  };
  EXPECT_EQ(leftOut(5000), 1);
  EXPECT_EQ(leftOut(1000), 1) << "on any of its pages";
}

// A ring with its name up and right of it.
void addSymbol(Picture& p, const AcGePoint3d& at, double height, std::u16string name) {
  const auto entity = static_cast<std::uint32_t>(p.items.size() + 100);
  addLine(p, {at + AcGeVector3d(-1, -1, 0), at + AcGeVector3d(1, 1, 0)});
  p.items.back().symbol = true;
  p.items.back().entity = entity;
  addText(p, at + AcGeVector3d(1.2, 0.5, 0), height, std::move(name));
  p.items.back().label = true;
  p.items.back().entity = entity;
}

TEST(Sheet, NamesAcrossASeamMoveToTheSideWhereTheyFit) {
  Picture p;
  addLine(p, {{0, 0, 0}, {300, 0, 0}});
  const Sheet sheet = lying("A4", 1000);
  const SheetPages pages = layOutSheet(p, sheet).pages;
  ASSERT_EQ(pages.columns, 2);
  // The page shows 6 m beyond the seam: too little for the name as it is drawn.
  addSymbol(p, {pages.left + pages.tileWidth - 8, 0, 0}, 4, u"VIA_DELLE_FONTANE");
  const SheetLayout layout = layOutSheet(p, sheet);
  const auto files = paintSheet(sheet, layout);
  ASSERT_TRUE(files);
  EXPECT_EQ(files->leftOut, 0);
}

TEST(Sheet, LowNamesGrowAboutTheirSymbolsAndAskForNoPage) {
  Picture p;
  addLine(p, {{0, 0, 0}, {1000, 500, 0}});
  const Sheet sheet = lying("A4");
  const double scale = layOutSheet(p, sheet).pages.scale, times = 1.4 * scale / 1000;
  addSymbol(p, {0, 0, 0}, 1, u"primo");
  addSymbol(p, {4, 0, 0}, 1, u"secondo");
  addSymbol(p, {1000, 500, 0}, 1, u"in fondo alla linea");
  const SheetLayout layout = layOutSheet(p, sheet);
  EXPECT_EQ(layout.pages.scale, scale);
  EXPECT_EQ(layout.pages.pages.size(), 1U);
  // So many times as high, and as many times as far from the middle of its ring.
  const Item& name = layout.picture.items[2];
  const AcGePoint3d at = layout.picture.points[name.first];
  EXPECT_NEAR(layout.picture.points[name.first + 2].y - at.y, times, 1e-9);
  EXPECT_NEAR(at.x, 1.2 * times, 1e-9);
  EXPECT_NEAR(at.y, 0.5 * times, 1e-9);
  const auto files = paintSheet(sheet, layout);
  ASSERT_TRUE(files);
  EXPECT_EQ(files->leftOut, 0);
}

TEST(Sheet, HeightsOfAProfileAreLargerAndTextsAreNot) {
  Picture p;
  addLine(p, {{50, 98, 0}, {50, 104, 0}});    // beside the elevations
  addLine(p, {{110, 95, 0}, {110, 104, 0}});  // from the band up
  addText(p, {120, 101, 0}, 2, u"pozzetto");
  addText(p, {120, 99, 0}, 2, u"banda");
  // 20 units high from level 197.2, texts of 2: the frame has marks at 200, 205, 210 and 215.
  exaggerate(p, {100, 100, 110, 300, 120, 197.2, 2}, 5);
  const auto point = [&](std::size_t item, std::uint32_t i) {
    return p.points[p.items[item].first + i];
  };
  EXPECT_EQ(point(0, 1).y, 104);
  EXPECT_EQ(point(1, 0).y, 95);
  EXPECT_EQ(point(1, 1).y, 120);
  EXPECT_EQ(point(2, 0).y, 105);
  EXPECT_EQ(point(2, 2).y, 107);
  EXPECT_EQ(point(3, 0).y, 99);
  // Every metre has room now; 198 would stand on the number of the foot but for the larger heights.
  std::map<std::u16string, double> numbers;
  for (const Item& item : p.items) {
    if (item.kind == Kind::text) numbers[p.texts[item.text].text] = p.points[item.first].y;
  }
  EXPECT_NEAR(numbers.at(u"198.000"), 104, 1e-9);
  EXPECT_NEAR(numbers.at(u"217.000"), 199, 1e-9);
  EXPECT_EQ(numbers.count(u"205.000"), 0U) << "the frame's own";
  EXPECT_EQ(numbers.count(u"200.000"), 0U);
  EXPECT_EQ(numbers.size(), 2U + 16U);
}

TEST(Sheet, TheSameSheetIsTheSameFile) {
  Picture p;
  addLine(p, {{0, 0, 0}, {400, 300, 0}});
  addText(p, {10, 10, 0}, 5, std::u16string(u"met") + char16_t(0xD800));  // half a character
  for (const Format format : {Format::pdf, Format::svg, Format::png}) {
    Sheet sheet = lying("A4", 1000);
    sheet.format = format;
    sheet.title = std::u16string(300, u'W');  // far too long for its field
    sheet.legends = {{u"Pressione", {{5, u"0 ÷ 10"}, {1, u"10 ÷ 20"}}}};
    const SheetLayout layout = layOutSheet(p, sheet);
    const auto first = paintSheet(sheet, layout), second = paintSheet(sheet, layout);
    ASSERT_TRUE(first && second);
    EXPECT_EQ(first->bytes, second->bytes);
    EXPECT_EQ(first->bytes.size(), format == Format::pdf ? 1U : layout.pages.pages.size());
    EXPECT_EQ(first->bytes.front().find("CreationDate"), std::string::npos);
  }
}

}  // namespace
}  // namespace cad::view
