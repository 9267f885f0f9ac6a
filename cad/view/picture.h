// A drawing as primitives: what is to be seen of it, resolved and flat, ready for any painter.
//
// Layers, colours, line types and weights are resolved, blocks are expanded, curves are broken into
// short lines, what is frozen, switched off or invisible is left out. Coordinates stay those of the
// world, in three dimensions; painters project them.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "cad/api/ge.h"
#include "cad/drawing/drawing.h"
#include "cad/shape/primitive.h"

namespace cad::view {

struct Color {
  std::uint8_t red = 0, green = 0, blue = 0;
  friend bool operator==(const Color&, const Color&) = default;
};

// The colour of a host colour index, 1 to 255. Index 7 is the opposite of the ground.
CAD_API Color indexedColor(int index, bool darkGround);

struct Pen {
  int index = 7;  // host colour index; -1 when `exact` holds
  Color exact;
  double weight = 0;  // mm, 0 the thinnest
  int linetype = -1;  // number in Picture::linetypes, -1 continuous
  double linetypeScale = 1;
};

using shape::Kind;
using shape::Text;

struct Item {
  Kind kind = Kind::line;
  bool closed = false;
  bool endless = false;  // a ray or construction line: does not count for the size of the picture
  Pen pen;
  std::uint32_t first = 0, count = 0;  // points, see shape::Primitive
  std::uint32_t loops = 0;   // fills: number of loops, whose lengths stand in Picture::loopSizes
  std::uint32_t text = 0;    // texts: number in Picture::texts
  std::uint32_t entity = 0;  // record of the entity of the space that shows it
  bool label = false;        // an attribute of that entity, whose texts follow each other
  bool symbol = false;       // part of a symbol: of a reference that has attributes, but for those
  bool follows = false;      // goes where its symbol is seen: asks for no page, counts for no size
  // Part of a table: its number, from 1. Tables lie over everything else, one over another, each on
  // a ground of its own, which is the fill that is its ground.
  std::uint32_t table = 0;
  bool ground = false;
};

struct Picture {
  std::vector<Item> items;
  std::vector<AcGePoint3d> points;
  std::vector<std::uint32_t> loopSizes;
  std::vector<Text> texts;
  std::vector<std::vector<double>>
      linetypes;                          // dashes of each: positive drawn, negative gap, 0 dot
  std::map<std::u16string, int> unknown;  // entity types that are not shown, and how many
  // The drawing shows more shapes than fit here, once its blocks are repeated: the rest is missing.
  bool tooMany = false;
  int tooDeep = 0;  // references left out because they are nested too deep
};

struct Selection {
  std::vector<std::u16string> layers;  // only these, when any is named
  std::vector<std::u16string> hidden;  // and none of these
  std::set<std::uint32_t> without;     // entities that are left out, by their records
  std::set<std::uint32_t> only;        // these alone, when there are any
};

// The drawing knows the layer: it is in the table, or in use all the same, as small programs write
// it.
CAD_API bool hasLayer(const Drawing& drawing, std::u16string_view name);

// Everything that model space shows.
CAD_API Picture takePicture(const Drawing& drawing, const Selection& selection = {});

}  // namespace cad::view
