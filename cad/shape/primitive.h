// What entities draw, in the few forms that everything is broken into: lines, filled areas, lines
// of text, dots.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "cad/api/ge.h"

namespace cad::shape {

using Points = std::vector<AcGePoint3d>;
using Loops = std::vector<Points>;

enum class Kind : std::uint8_t { line, fill, text, dot };

// One line of text, without formatting codes. How it stands at its anchor, and its slant in
// radians.
struct Text {
  std::u16string text;
  int horizontal = 0;  // 0 left, 1 centre, 2 right
  int vertical = 0;    // 0 baseline, 1 bottom, 2 middle, 3 top
  double oblique = 0;
};

struct Primitive {
  Kind kind = Kind::line;
  bool closed = false;
  bool endless = false;  // a ray or construction line: counts for no size
  // A line's vertices; a fill's loops, one after another; a text's anchor, then the anchor moved
  // along the baseline by the unit of width (height times width factor) and upright by the height.
  Points points;
  std::vector<std::uint32_t> loops;  // of a fill: points in each loop
  Text text;
};

// The four corners of a text, by an estimate of its width: no fonts are asked.
Points textCorners(const Primitive& text);

}  // namespace cad::shape
