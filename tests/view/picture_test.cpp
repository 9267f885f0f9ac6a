// Small drawings and the primitives that must come out of them.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "cad/api/database.h"
#include "cad/view/painter.h"
#include "cad/view/picture.h"
#include "cad/view/placed.h"

namespace cad::view {
namespace {

// A drawing of an old release: tables, blocks and entities as tags "code value" separated by '|'.
class Sample {
 public:
  Sample(const std::string& tables, const std::string& blocks, const std::string& entities)
      : database_(false) {
    std::string text;
    const auto section = [&](const char* name, const std::string& tags) {
      text += "  0\nSECTION\n  2\n" + std::string(name) + "\n";
      std::size_t at = 0;
      while (at < tags.size()) {
        const std::size_t end = std::min(tags.find('|', at), tags.size());
        const std::string tag = tags.substr(at, end - at);
        text += tag.substr(0, tag.find(' ')) + "\n" + tag.substr(tag.find(' ') + 1) + "\n";
        at = end + 1;
      }
      text += "  0\nENDSEC\n";
    };
    section("TABLES", tables);
    section("BLOCKS", blocks);
    section("ENTITIES", entities);
    text += "  0\nEOF\n";
    Block bytes(text.size());
    std::memcpy(bytes.data(), text.data(), text.size());
    std::vector<std::string> warnings;
    const auto loaded =
        database_.drawing().loadBytes(std::move(bytes), text.size(), "sample", warnings);
    EXPECT_TRUE(loaded) << loaded.error();
    picture = takePicture(database_.drawing());
  }
  AcGePoint3d point(std::size_t item, std::uint32_t i) const {
    return picture.points[picture.items[item].first + i];
  }
  AcGePoint3d last(std::size_t item) const { return point(item, picture.items[item].count - 1); }
  Picture picture;

 private:
  AcDbDatabase database_;
};

const char kLayers[] =
    "0 TABLE|2 LAYER|70 3|0 LAYER|2 0|70 0|62 7|6 CONTINUOUS|0 LAYER|2 ROSSO|70 0|62 1|6 "
    "CONTINUOUS|"
    "0 LAYER|2 FERMO|70 1|62 3|6 CONTINUOUS|0 LAYER|2 SPENTO|70 0|62 -4|6 CONTINUOUS|0 ENDTAB";

void expectAt(const AcGePoint3d& p, double x, double y, double z = 0) {
  EXPECT_NEAR(p.x, x, 1e-9);
  EXPECT_NEAR(p.y, y, 1e-9);
  EXPECT_NEAR(p.z, z, 1e-9);
}

TEST(Picture, FrozenAndSwitchedOffLayersAndInvisibleEntitiesStayOut) {
  const Sample s(kLayers, "",
                 "0 LINE|8 FERMO|10 0|20 0|11 1|21 1|0 LINE|8 SPENTO|10 0|20 0|11 1|21 1|"
                 "0 LINE|8 ROSSO|60 1|10 0|20 0|11 1|21 1|0 LINE|8 ROSSO|10 5|20 6|11 7|21 8");
  ASSERT_EQ(s.picture.items.size(), 1U);
  expectAt(s.point(0, 0), 5, 6);
  EXPECT_EQ(s.picture.items[0].pen.index, 1);
}

TEST(Picture, BulgesTurnTheRightWayAndEndExactly) {
  const Sample s(
      kLayers, "",
      "0 POLYLINE|8 0|66 1|70 0|0 VERTEX|8 0|10 0|20 0|42 1|0 VERTEX|8 0|10 2|20 0|42 -1|"
      "0 VERTEX|8 0|10 4|20 0|0 SEQEND|8 0");
  ASSERT_EQ(s.picture.items.size(), 1U);
  double low = 0, high = 0;
  for (std::uint32_t i = 0; i < s.picture.items[0].count; ++i) {
    const AcGePoint3d p = s.point(0, i);
    // A bulge of 1 is a half circle to the right of the way, of -1 to the left.
    if (p.x < 2 - 1e-9) low = std::min(low, p.y);
    if (p.x > 2 + 1e-9) high = std::max(high, p.y);
    EXPECT_NEAR(std::hypot(p.x - (p.x <= 2 ? 1 : 3), p.y), 1, 1e-9);
  }
  EXPECT_NEAR(low, -1, 1e-9);
  EXPECT_NEAR(high, 1, 1e-9);
  expectAt(s.last(0), 4, 0);
}

TEST(Picture, NestedMirroredScaledReferencesAndTheirColours) {
  const char blocks[] =
      "0 BLOCK|8 0|2 DENTRO|70 0|10 1|20 0|3 DENTRO|0 LINE|8 0|62 0|10 1|20 0|11 3|21 1|0 ENDBLK|8 "
      "0|"
      "0 BLOCK|8 0|2 FUORI|70 0|10 0|20 0|3 FUORI|0 INSERT|8 0|62 0|2 DENTRO|10 10|20 0|41 -1|0 "
      "ENDBLK|8 0|"
      "0 BLOCK|8 0|2 GIRO|70 0|10 0|20 0|3 GIRO|0 INSERT|8 0|2 GIRO|10 1|20 1|0 LINE|8 0|10 0|20 "
      "0|11 1|21 0|0 ENDBLK|8 0";
  const Sample s(kLayers, blocks,
                 "0 INSERT|8 ROSSO|62 5|2 FUORI|10 100|20 0|41 2|42 2|50 90|0 INSERT|8 ROSSO|2 "
                 "FUORI|10 0|20 0|"
                 "0 INSERT|8 0|2 GIRO|10 0|20 0");
  ASSERT_GE(s.picture.items.size(), 3U);  // a block inside itself ends somewhere
  // (3,1) less the base (1,0) is (2,1); mirrored (-2,1); at (10,0) it is (8,1); twice as large,
  // turned, moved.
  expectAt(s.point(0, 0), 100, 20);
  expectAt(s.point(0, 1), 100 - 2, 16);
  EXPECT_EQ(s.picture.items[0].pen.index, 5);  // by block, from the outermost reference
  EXPECT_EQ(s.picture.items[1].pen.index, 1);  // and from there by layer
}

// What an entity leaves open its layer decides, and within a block the reference and its layer.
TEST(Picture, PensComeFromTheEntityItsLayerOrTheReference) {
  const char tables[] =
      "0 TABLE|2 LTYPE|70 1|0 LTYPE|2 TRATTI|70 0|3 x|72 65|73 2|40 3|49 2|49 -1|0 LTYPE|2 "
      "PUNTI|70 0|3 x|72 65|73 2|40 2|49 0|49 -2|0 ENDTAB|"
      "0 TABLE|2 LAYER|70 3|0 LAYER|2 0|70 0|62 7|6 CONTINUOUS|0 LAYER|2 VERO|70 0|62 1|6 "
      "TRATTI|370 "
      "50|420 255|0 LAYER|2 ROSSO|70 0|62 1|6 CONTINUOUS|0 ENDTAB";
  const char blocks[] =
      "0 BLOCK|8 0|2 B|70 0|10 0|20 0|3 B|0 POINT|8 0|62 0|370 -2|6 BYBLOCK|10 0|20 0|0 POINT|8 "
      "0|10 0|20 0|0 POINT|8 ROSSO|10 0|20 0|0 POINT|8 ROSSO|62 0|370 -2|10 0|20 0|0 ENDBLK|8 0";
  const Sample s(tables, blocks,
                 "0 POINT|8 VERO|10 0|20 0|0 POINT|8 VERO|62 3|370 30|6 PUNTI|48 2|10 0|20 0|0 "
                 "POINT|8 0|62 0|370 -2|10 0|20 0|0 INSERT|8 VERO|2 B|10 0|20 0|62 4|370 20|6 "
                 "PUNTI|0 INSERT|8 VERO|2 B|10 0|20 0");
  struct Expected {
    int index;
    double weight;
    int dashes;  // of the line type; 0 continuous
    bool exact;
  };
  const Expected wanted[] = {
      {-1, 0.5, 2, true},  // all by layer, which has a true colour
      {3, 0.3, 2, false},  // all its own
      {7, 0, 0, false},    // by block, and in none
      {4, 0.2, 2, false},  // in the first reference: by block
      {-1, 0.5, 2, true},  // by layer, on 0: the reference's layer
      {1, 0, 0, false},    // by its own layer
      {4, 0.2, 0, false},  // by block, on a layer of its own
      {-1, 0.5, 2, true},  // in the second: by block, and that by layer
      {-1, 0.5, 2, true}, {1, 0, 0, false}, {-1, 0, 0, true},
  };
  ASSERT_EQ(s.picture.items.size(), std::size(wanted));
  for (std::size_t i = 0; i < std::size(wanted); ++i) {
    const Pen& pen = s.picture.items[i].pen;
    EXPECT_EQ(pen.index, wanted[i].index) << i;
    EXPECT_NEAR(pen.weight, wanted[i].weight, 1e-9) << i;
    EXPECT_EQ(
        pen.linetype < 0
            ? 0
            : static_cast<int>(s.picture.linetypes[static_cast<std::size_t>(pen.linetype)].size()),
        wanted[i].dashes)
        << i;
    if (wanted[i].exact) {
      EXPECT_EQ(pen.exact, (Color{0, 0, 255})) << i;
    }
  }
  EXPECT_EQ(s.picture.items[1].pen.linetypeScale, 2);
}

TEST(Picture, TextsHaveTheirAnchorAndInvisibleAttributesAreHidden) {
  const Sample s(
      kLayers,
      "0 BLOCK|8 0|2 B|70 2|10 0|20 0|3 B|0 ATTDEF|8 0|10 0|20 0|40 1|1 x|3 p|2 A|70 0|0 ENDBLK|8 "
      "0",
      "0 TEXT|8 0|10 0|20 0|40 2|1 %%c80 10%%d|72 1|11 50|21 60|"
      "0 INSERT|8 ROSSO|66 1|2 B|10 0|20 0|0 ATTRIB|8 ROSSO|10 1|20 2|40 1|1 visto|2 A|70 0|"
      "0 ATTRIB|8 ROSSO|10 1|20 2|40 1|1 nascosto|2 B|70 1|0 SEQEND|8 0");
  ASSERT_EQ(s.picture.items.size(), 2U);
  expectAt(s.point(0, 0), 50, 60);
  expectAt(s.point(0, 2), 50, 62);
  EXPECT_EQ(s.picture.texts[0].text, u"\u230080 10\u00B0");
  EXPECT_EQ(s.picture.texts[0].horizontal, 1);
  EXPECT_EQ(s.picture.texts[1].text, u"visto");
}

TEST(Picture, TiltedPlanesAndUnknownKinds) {
  // Extrusion -Z mirrors X.
  const Sample s(kLayers, "",
                 "0 CIRCLE|8 0|10 5|20 0|40 1|210 0|220 0|230 -1|0 MISTERO|8 0|0 MISTERO|8 0|0 "
                 "POINT|8 0|10 1|20 2|30 3");
  ASSERT_EQ(s.picture.items.size(), 2U);
  expectAt(s.point(0, 0), -6, 0);
  EXPECT_EQ(s.picture.items[1].kind, Kind::dot);
  EXPECT_EQ(s.picture.unknown.at(u"MISTERO"), 2);
}

TEST(Painter, EachFormatBeginsAsItShouldAndAnEmptyPictureIsAPage) {
  const Sample s(kLayers, "",
                 "0 LINE|8 ROSSO|10 0|20 0|11 10|21 5|0 TEXT|8 0|10 0|20 0|40 1|1 perché");
  PaintOptions o;
  o.width = 300;
  EXPECT_EQ(paint(s.picture, o)->substr(1, 3), "PNG");
  o.format = Format::svg;
  const std::string svg = *paint(s.picture, o);
  EXPECT_NE(svg.find("<svg"), svg.npos);
  EXPECT_NE(svg.find("rgb(100%"), svg.npos);  // the red line
  o.format = Format::pdf;
  EXPECT_EQ(paint(s.picture, o)->substr(0, 5), "%PDF-");
  EXPECT_TRUE(isEmpty(Picture()));
  EXPECT_TRUE(paint(Picture(), o));
}

// One odd text must not cost the whole picture: halves of characters, and heights beyond numbers.
TEST(Painter, TextsThatNoFontCanShowAreLeftOut) {
  const Sample d("", "",
                 "0 TEXT|8 0|10 0|20 0|40 1|1 a\\U+D800b\\U+DC00|0 TEXT|8 0|10 0|20 0|40 1e200|1 x|"
                 "0 TEXT|8 0|10 0|20 0|40 1|41 1e300|1 x|0 LINE|8 0|10 0|20 0|11 9|21 9");
  for (const Format format : {Format::png, Format::svg, Format::pdf}) {
    PaintOptions options;
    options.format = format;
    const auto bytes = paint(d.picture, options);
    EXPECT_TRUE(bytes) << bytes.error();
  }
}

// How many letters of labels an SVG shows: each is the use of a glyph that is drawn once.
std::size_t lettersShown(const Picture& picture, PaintOptions options) {
  options.format = Format::svg;
  const std::string svg = *paint(picture, options);
  std::size_t count = 0;
  for (std::size_t at = 0; (at = svg.find("<use", at)) != svg.npos; ++at) ++count;
  return count;
}

std::string symbolAt(int x, int y, const std::string& name, const std::string& other) {
  const auto text = [&](const std::string& what, int up) {
    return "0 ATTRIB|8 0|10 " + std::to_string(x) + "|20 " + std::to_string(y + up) + "|40 1|1 " +
           what + "|2 A|70 0|";
  };
  return "0 INSERT|8 0|66 1|2 B|10 " + std::to_string(x) + "|20 " + std::to_string(y) + "|" +
         text(name, 2) + text(other, 0) + "0 SEQEND|8 0|";
}

TEST(Labels, OneThatWouldStandOnAnotherOrBeCutIsLeftOut) {
  const char block[] = "0 BLOCK|8 0|2 B|70 2|10 0|20 0|3 B|0 ENDBLK|8 0";
  const auto shown = [&](const std::string& entities, PaintOptions options = {}) {
    const Sample s(kLayers, block, "0 LINE|8 0|10 -9|20 -9|11 40|21 30|" + entities);
    return lettersShown(s.picture, options);
  };
  const std::string first = symbolAt(0, 0, "abc", "de");
  EXPECT_EQ(shown(first), 5U);
  EXPECT_EQ(shown(first + symbolAt(9, 9, "fg", "h")), 8U);
  EXPECT_EQ(shown(first + symbolAt(1, -2, "fgh", "i")), 7U) << "names before the rest";
  EXPECT_EQ(shown(first + symbolAt(1, 0, "fgh", "i")), 5U) << "nothing without its name";
  EXPECT_EQ(shown("0 TEXT|8 0|10 0|20 2|40 1|1 zz|" + first), 2U);
  PaintOptions window;
  window.window = Window{-5, -5, 1, 30};
  EXPECT_EQ(shown(symbolAt(0, 0, "abcdefghijklmn", "d"), window), 0U);
}

TEST(Painter, TextsThatCannotBeReadAreCounted) {
  const Sample s(kLayers, "0 BLOCK|8 0|2 B|70 2|10 0|20 0|3 B|0 ENDBLK|8 0",
                 "0 LINE|8 0|10 0|20 0|11 1000|21 500|0 TEXT|8 0|10 100|20 100|40 20|1 large|"
                 "0 TEXT|8 0|10 300|20 100|40 2|1 low|" +
                     symbolAt(500, 100, "low", "too"));
  const auto unread = [&](int width, std::optional<Window> window = {}) {
    PaintOptions options;
    options.width = width;
    options.window = window;
    std::size_t count = 99;
    EXPECT_TRUE(paint(s.picture, options, &count));
    return count;
  };
  EXPECT_EQ(unread(1000), 3U);
  EXPECT_EQ(unread(6000), 0U);
  EXPECT_EQ(unread(1000, Window{50, 50, 350, 150}), 0U);
  EXPECT_EQ(unread(100), 4U);
}

// In a picture they move to where they are read: the symbol's rings are round 0,0 and as given.
TEST(Labels, MoveBesideTheSymbolsOfAPicture) {
  const char block[] =
      "0 BLOCK|8 0|2 B|70 2|10 0|20 0|3 B|0 CIRCLE|8 0|10 0|20 0|40 0.5|0 ENDBLK|8 0";
  const auto shown = [&](const std::string& entities, PaintOptions options = {}) {
    const Sample s(kLayers, block, "0 LINE|8 0|10 -9|20 -9|11 40|21 30|" + entities);
    return lettersShown(s.picture, options);
  };
  const std::string first = symbolAt(0, 0, "abc", "de");
  EXPECT_EQ(shown(first + symbolAt(1, -2, "fgh", "i")), 9U);
  EXPECT_EQ(shown("0 TEXT|8 0|10 0|20 2|40 1|1 zz|" + first), 7U);
  EXPECT_EQ(shown(first + first), 10U) << "where two symbols are one";
  PaintOptions window;
  window.window = Window{-20, -15, 1, 30};
  EXPECT_EQ(shown(symbolAt(0, 0, "abcdefghijklm", "d"), window), 14U) << "at the edge";
  window.window = Window{10, -15, 60, 30};
  EXPECT_EQ(shown(symbolAt(0, 0, "abcdefghijklm", "d"), window), 0U) << "of a symbol that is cut";
  // Far from the symbol somebody has put it there, and a frame is no symbol.
  const std::string far =
      "0 INSERT|8 0|66 1|2 B|10 0|20 0|0 ATTRIB|8 0|10 20|20 9|40 1|1 far|2 A|"
      "70 0|0 SEQEND|8 0|";
  EXPECT_EQ(shown(far), 3U);
  EXPECT_EQ(shown("0 TEXT|8 0|10 20|20 9|40 1|1 zz|" + far), 2U);
}

TEST(Painter, LinesOfNoLengthAreNoPartOfThePage) {
  // The page is as high as what it shows asks for.
  const auto page = [](const std::string& entities) {
    PaintOptions options;
    options.format = Format::svg;
    const std::string svg = *paint(Sample(kLayers, "", entities).picture, options);
    return svg.substr(svg.find("height="), 14);
  };
  const std::string line = "0 LINE|8 0|10 1000|20 1000|11 1010|21 1006|";
  EXPECT_EQ(page("0 LINE|8 0|10 0|20 0|11 0|21 0|" + line), page(line));
  EXPECT_NE(page("0 LINE|8 0|10 0|20 0|11 1|21 0|" + line), page(line));
}

// Contrast by the formula for screens: letters are read from about 3 on.
TEST(Palette, EveryColourCanBeReadOnItsGround) {
  const auto light = [](double r, double g, double b) {
    const auto part = [](double v) {
      return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(r) + 0.7152 * part(g) + 0.0722 * part(b);
  };
  const double night = light(0.13, 0.14, 0.16);
  for (int index = 1; index < 256; ++index) {
    const Shade day = shownOn(indexedColor(index, false), false);
    EXPECT_GT(1.05 / (light(day.red, day.green, day.blue) + 0.05), 3.4) << index;
    const Shade dark = shownOn(indexedColor(index, true), true);
    EXPECT_GT((light(dark.red, dark.green, dark.blue) + 0.05) / (night + 0.05), 3) << index;
  }
  EXPECT_NEAR(shownOn({255, 0, 0}, false).red, 1, 1e-9) << "what can be read stays";
}

TEST(Palette, NamedColoursHuesAndTheOppositeOfTheGround) {
  EXPECT_EQ(indexedColor(1, false), (Color{255, 0, 0}));
  EXPECT_EQ(indexedColor(140, false), (Color{0, 191, 255}));
  EXPECT_EQ(indexedColor(11, false), (Color{255, 128, 128}));
  EXPECT_EQ(indexedColor(7, true), (Color{255, 255, 255}));
  EXPECT_EQ(indexedColor(7, false), (Color{0, 0, 0}));
}

}  // namespace
}  // namespace cad::view
