// Every type of entity and every way it can stand, with the primitives that come of it. Curves tell
// their ends and how many points they have.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "tests/shape/shape_testing.h"

namespace cad::shape {
namespace {

std::string number(double v) {
  char text[32];
  std::snprintf(text, sizeof text, "%.4g", std::fabs(v) < 1e-9 ? 0.0 : v);
  return text;
}

std::string point(const AcGePoint3d& p) {
  return number(p.x) + "," + number(p.y) + (std::fabs(p.z) < 1e-9 ? "" : "," + number(p.z));
}

std::string textOf(const Primitive& p) {
  std::string out = "\"";
  for (const char16_t c : p.text.text) out += c < 128 ? static_cast<char>(c) : '?';
  const AcGeVector3d x = p.points[1] - p.points[0], y = p.points[2] - p.points[0];
  return out + "\" at " + point(p.points[0]) + " x " + point({x.x, x.y, x.z}) + " y " +
         point({y.x, y.y, y.z}) + " " + "lcr"[p.text.horizontal] + "Bbmt"[p.text.vertical] +
         (p.text.oblique != 0 ? " slant " + number(p.text.oblique) : "");
}

std::string describe(const Primitive& p) {
  if (p.kind == Kind::text) return textOf(p);
  std::string out = p.kind == Kind::fill ? "fill" : p.kind == Kind::dot ? "dot" : "line";
  if (p.closed) out += " closed";
  if (p.endless) out += " endless";
  if (p.points.size() > 8) {
    return out + " " + point(p.points.front()) + " .. " + point(p.points[p.points.size() / 2]) +
           " .. " + point(p.points.back()) + " of " + std::to_string(p.points.size());
  }
  std::size_t at = 0;
  for (const std::uint32_t n : p.kind == Kind::fill ? p.loops : std::vector<std::uint32_t>{}) {
    out += " [";
    for (std::uint32_t i = 0; i < n; ++i) out += (i ? " " : "") + point(p.points[at++]);
    out += "]";
  }
  for (; at < p.points.size(); ++at) out += " " + point(p.points[at]);
  return out;
}

std::string shownBy(const std::string& blocks, const std::string& entities) {
  Sample s(blocks, entities);
  std::string all;
  expand(s.drawing(), s.first(), Arrays::whole,
         [&](Primitive&& p) { all += (all.empty() ? "" : "; ") + describe(p); });
  return all;
}

struct Row {
  const char *entity, *shown;
};

void expectShown(std::initializer_list<Row> rows) {
  for (const Row& row : rows) EXPECT_EQ(shownBy("", row.entity), row.shown) << row.entity;
}

TEST(Primitives, LinesPointsAndCurves) {
  expectShown({
      {"0 LINE|8 0|10 1|20 2|30 3|11 4|21 5|31 6", "line 1,2,3 4,5,6"},
      {"0 POINT|8 0|10 1|20 2|30 3", "dot 1,2,3"},
      {"0 RAY|8 0|10 1|20 2|11 1|21 0", "line endless 1,2 1e+04,2"},
      {"0 XLINE|8 0|10 1|20 2|11 0|21 1", "line endless 1,-9998 1,1e+04"},
      {"0 CIRCLE|8 0|10 1|20 2|40 3", "line closed 4,2 .. -2,2 .. 4,2 of 49"},
      {"0 ARC|8 0|10 0|20 0|40 2|50 90|51 180", "line 0,2 .. -1.414,1.414 .. -2,0 of 13"},
      {"0 ARC|8 0|10 0|20 0|40 2|50 270|51 90", "line 0,-2 .. 2,0 .. 0,2 of 25"},
      {"0 ARC|8 0|10 5|20 0|40 2|50 0|51 90|210 0|220 0|230 -1",
       "line -7,0 .. -6.414,1.414 .. -5,2 of 13"},
      {"0 ELLIPSE|8 0|10 0|20 0|11 4|21 0|40 0.5|41 0|42 1.5707963267948966",
       "line 4,0 .. 2.828,1.414 .. 0,2 of 13"},
      {"0 ELLIPSE|8 0|10 0|20 0|11 4|21 0|210 0|220 0|230 -1|40 0.5|41 0|42 1.5707963267948966",
       "line 4,0 .. 2.828,-1.414 .. 0,-2 of 13"},
      {"0 ELLIPSE|8 0|10 0|20 0|11 4|21 0|40 0.5|41 0|42 0", "line 4,0 .. -4,0 .. 4,0 of 49"},
      {"0 SPLINE|8 0|71 1|40 0|40 0|40 1|40 1|10 0|20 0|10 6|20 6", "line 0,0 .. 3,3 .. 6,6 of 13"},
      {"0 SPLINE|8 0|71 3|11 1|21 1|11 2|21 3", "line 1,1 2,3"},
      {"0 LEADER|8 0|10 0|20 0|10 1|20 1|10 5|20 1", "line 0,0 1,1 5,1"},
  });
}

TEST(Primitives, FilledAndFacedShapes) {
  expectShown({
      {"0 SOLID|8 0|10 0|20 0|11 2|21 0|12 0|22 1|13 2|23 1", "fill [0,0 2,0 2,1 0,1]"},
      {"0 TRACE|8 0|10 0|20 0|11 2|21 0|12 1|22 1", "fill [0,0 2,0 1,1 1,1]"},
      {"0 SOLID|8 0|10 1|20 0|11 2|21 0|12 1|22 1|13 2|23 1|210 0|220 0|230 -1",
       "fill [-1,0 -2,0 -2,1 -1,1]"},
      {"0 3DFACE|8 0|10 0|20 0|30 1|11 2|21 0|31 1|12 2|22 2|32 3|13 0|23 2|33 3",
       "line closed 0,0,1 2,0,1 2,2,3 0,2,3"},
      {"0 HATCH|8 0|10 0|20 0|30 0|70 1|91 1|92 2|72 0|73 1|93 3|10 0|20 0|10 4|20 0|10 0|20 4",
       "fill [0,0 4,0 0,4 0,0]"},
      // Edges: a line, then half a circle back, counterclockwise or clockwise; each joins the next.
      {"0 HATCH|8 0|10 0|20 0|30 0|70 1|91 1|92 1|93 2|72 1|10 -1|20 0|11 1|21 0|72 2|10 0|20 0|40 "
       "1|50 0|51 180|73 1",
       "fill -1,0 .. 0.1305,0.9914 .. -1,0 of 27"},
      {"0 HATCH|8 0|10 0|20 0|30 0|70 1|91 1|92 1|93 2|72 1|10 -1|20 0|11 1|21 0|72 2|10 0|20 0|40 "
       "1|50 0|51 180|73 0",
       "fill -1,0 .. 0.1305,-0.9914 .. -1,0 of 27"},
      // A quarter of a disc that begins with its arc, clockwise, and goes on where that ends.
      {"0 HATCH|8 0|10 0|20 0|30 0|70 1|91 1|92 1|93 3|72 2|10 0|20 0|40 1|50 270|51 360|73 0|"
       "72 1|10 1|20 0|11 0|21 0|72 1|10 0|20 0|11 0|21 1",
       "fill 0,1 .. 0.866,0.5 .. 0,1 of 17"},
      {"0 HATCH|8 0|10 0|20 0|30 0|70 1|91 1|92 1|93 2|72 1|10 -2|20 0|11 2|21 0|72 3|10 0|20 0|11 "
       "2|21 0|40 0.5|50 0|51 90|73 1",
       "fill -2,0 .. 1.587,0.6088 .. 0,1 of 15"},
      // A pattern without lines shows its outline.
      {"0 HATCH|8 0|10 0|20 0|30 0|70 0|91 1|92 2|72 0|73 1|93 3|10 0|20 0|10 4|20 0|10 0|20 4",
       "line closed 0,0 4,0 0,4 0,0"},
  });
}

TEST(Primitives, PolylinesOfAllKinds) {
  const auto vertices = [](const char* head, std::initializer_list<const char*> points) {
    std::string all = std::string("0 POLYLINE|8 0|66 1|") + head;
    for (const char* p : points) all += std::string("|0 VERTEX|8 0|") + p;
    return all + "|0 SEQEND|8 0";
  };
  EXPECT_EQ(shownBy("", vertices("70 8", {"10 0|20 0|30 1|70 32", "10 2|20 0|30 5|70 32"})),
            "line 0,0,1 2,0,5");
  EXPECT_EQ(
      shownBy("", vertices("70 9", {"10 0|20 0|70 32", "10 2|20 0|70 32", "10 2|20 2|70 32"})),
      "line closed 0,0 2,0 2,2");
  // A plane one has one height and its own plane; a bulge of 1 is half a circle.
  EXPECT_EQ(shownBy("", vertices("10 0|20 0|30 7|70 0", {"10 1|20 0", "10 2|20 0"})),
            "line 1,0,7 2,0,7");
  EXPECT_EQ(shownBy("", vertices("70 0|210 0|220 0|230 -1", {"10 1|20 0", "10 2|20 0"})),
            "line -1,0 -2,0");
  EXPECT_EQ(shownBy("", vertices("70 1", {"10 0|20 0", "10 2|20 0|42 1"})),
            "line closed 0,0 .. 1,1 .. 0,0 of 26");
  // Control points of a smoothed curve are not drawn.
  EXPECT_EQ(shownBy("", vertices("70 4", {"10 9|20 9|70 16", "10 0|20 0|70 8", "10 1|20 1|70 8"})),
            "line 0,0 1,1");
  const std::initializer_list<const char*> grid = {"10 0|20 0|70 64", "10 0|20 1|70 64",
                                                   "10 0|20 2|70 64", "10 5|20 0|70 64",
                                                   "10 5|20 1|70 64", "10 5|20 2|70 64"};
  EXPECT_EQ(shownBy("", vertices("70 16|71 2|72 3", grid)),
            "line 0,0 0,1 0,2; line 5,0 5,1 5,2; line 0,0 5,0; line 0,1 5,1; line 0,2 5,2");
  EXPECT_EQ(shownBy("", vertices("70 17|71 2|72 3", grid)),
            "line 0,0 0,1 0,2; line 5,0 5,1 5,2; line closed 0,0 5,0; line closed 0,1 5,1; line "
            "closed 0,2 5,2");
  EXPECT_EQ(shownBy("", vertices("70 48|71 2|72 3", grid)),
            "line closed 0,0 0,1 0,2; line closed 5,0 5,1 5,2; line 0,0 5,0; line 0,1 5,1; line "
            "0,2 5,2");
  EXPECT_EQ(shownBy("", vertices("70 16|71 3|72 3", grid)), "");  // fewer points than it says
  EXPECT_EQ(shownBy("", vertices("70 64|71 3|72 1",
                                 {"10 0|20 0|70 192", "10 1|20 0|70 192", "10 1|20 1|70 192",
                                  "10 0|20 0|70 128|71 1|72 -2|73 3|74 9"})),
            "line closed 0,0 1,0 1,1");
  expectShown({
      {"0 LWPOLYLINE|8 0|100 AcDbEntity|100 AcDbPolyline|90 2|70 0|38 4|10 0|20 0|10 3|20 0",
       "line 0,0,4 3,0,4"},
      {"0 LWPOLYLINE|8 0|100 AcDbEntity|100 AcDbPolyline|90 2|70 1|43 2|10 0|20 0|10 3|20 0",
       "fill [0,1 3,1 3,-1 0,-1]; fill [3,-1 0,-1 0,1 3,1]"},
      {"0 LWPOLYLINE|8 0|100 AcDbEntity|100 AcDbPolyline|90 2|70 0|10 0|20 0|42 -1|10 2|20 0",
       "line 0,0 .. 1,1 .. 2,0 of 25"},
  });
}

TEST(Primitives, TextsStandWhereTheirAnchorsSay) {
  expectShown({
      {"0 TEXT|8 0|10 1|20 2|40 3|1 x", "\"x\" at 1,2 x 3,0 y 0,3 lB"},
      {"0 TEXT|8 0|10 1|20 2|40 3|41 0.5|50 90|1 x", "\"x\" at 1,2 x 0,1.5 y -3,0 lB"},
      {"0 TEXT|8 0|10 1|20 2|40 3|51 30|1 x", "\"x\" at 1,2 x 3,0 y 0,3 lB slant 0.5236"},
      {"0 TEXT|8 0|10 1|20 2|40 3|72 1|11 9|21 8|1 x", "\"x\" at 9,8 x 3,0 y 0,3 cB"},
      {"0 TEXT|8 0|10 1|20 2|40 3|72 2|73 1|11 9|21 8|1 x", "\"x\" at 9,8 x 3,0 y 0,3 rb"},
      {"0 TEXT|8 0|10 1|20 2|40 3|72 0|73 3|11 9|21 8|1 x", "\"x\" at 9,8 x 3,0 y 0,3 lt"},
      {"0 TEXT|8 0|10 1|20 2|40 3|72 4|11 9|21 8|1 x", "\"x\" at 9,8 x 3,0 y 0,3 cm"},
      // Between two points: along the way from the first to the second.
      {"0 TEXT|8 0|10 1|20 2|40 3|72 3|11 1|21 9|1 x", "\"x\" at 1,2 x 0,3 y -3,0 lB"},
      {"0 TEXT|8 0|10 1|20 2|40 3|72 5|11 9|21 2|1 x", "\"x\" at 1,2 x 3,0 y 0,3 lB"},
      // Backwards, upside down, seen from below.
      {"0 TEXT|8 0|10 1|20 2|40 3|71 2|1 x", "\"x\" at 1,2 x -3,0 y 0,3 lB"},
      {"0 TEXT|8 0|10 1|20 2|40 3|71 4|1 x", "\"x\" at 1,2 x 3,0 y 0,-3 lB"},
      {"0 TEXT|8 0|10 1|20 2|40 3|210 0|220 0|230 -1|1 x", "\"x\" at -1,2 x -3,0 y 0,3 lB"},
      {"0 TEXT|8 0|10 1|20 2|40 3|1 ", ""},
      {"0 MTEXT|8 0|100 AcDbEntity|100 AcDbMText|10 0|20 0|40 3|71 1|1 a\\Pb",
       "\"a\" at 0,-3 x 3,0 y 0,3 lB; \"b\" at 0,-8 x 3,0 y 0,3 lB"},
      {"0 MTEXT|8 0|100 AcDbEntity|100 AcDbMText|10 0|20 0|40 3|71 5|1 a\\Pb",
       "\"a\" at 0,1 x 3,0 y 0,3 cB; \"b\" at 0,-4 x 3,0 y 0,3 cB"},
      {"0 MTEXT|8 0|100 AcDbEntity|100 AcDbMText|10 0|20 0|40 3|71 9|3 al|1 to",
       "\"alto\" at 0,0 x 3,0 y 0,3 rB"},
      {"0 MTEXT|8 0|100 AcDbEntity|100 AcDbMText|10 0|20 0|40 3|71 7|11 0|21 2|1 a",
       "\"a\" at 0,0 x 0,3 y -3,0 lB"},
      {"0 MTEXT|8 0|100 AcDbEntity|100 AcDbMText|10 0|20 0|40 3|71 7|50 90|1 a",
       "\"a\" at 0,0 x 0,3 y -3,0 lB"},
  });
}

TEST(Primitives, ReferencesTablesAndDimensionsPlaceTheirBlocks) {
  const char block[] = "0 BLOCK|8 0|2 B|70 0|10 1|20 2|30 0|3 B|0 POINT|8 0|10 2|20 2|0 ENDBLK|8 0";
  EXPECT_EQ(shownBy(block, "0 INSERT|8 0|2 B|10 10|20 0|50 90|41 3"), "dot 10,3");
  EXPECT_EQ(shownBy(block, "0 INSERT|8 0|2 B|10 0|20 0|70 2|71 2|44 5|45 7|50 90"),
            "dot 0,1; dot 0,6; dot -7,1; dot -7,6");
  EXPECT_EQ(shownBy(block, "0 INSERT|8 0|2 B|10 10|20 0|30 4|43 2|210 0|220 0|230 -1"),
            "dot -11,0,-4");
  EXPECT_EQ(shownBy(block, "0 DIMENSION|8 0|2 B|10 10|20 10"), "dot 1,0");
  EXPECT_EQ(shownBy(block, "0 ACAD_TABLE|8 0|2 B|10 10|20 10"), "dot 11,10");
  EXPECT_EQ(shownBy(block,
                    "0 INSERT|8 0|66 1|2 B|10 0|20 0|0 ATTRIB|8 0|10 3|20 4|40 1|1 v|2 T|70 "
                    "0|0 ATTRIB|8 0|10 3|20 4|40 1|1 n|2 U|70 1|0 SEQEND|8 0"),
            "dot 1,0; \"v\" at 3,4 x 1,0 y 0,1 lB");
}

}  // namespace
}  // namespace cad::shape
