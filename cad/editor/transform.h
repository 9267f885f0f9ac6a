// Entities moved, turned about an axis that stands upright, and scaled alike in all directions: in
// their place, or as copies.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "cad/api/ge.h"
#include "cad/drawing/drawing.h"

namespace cad {

struct Similarity {
  AcGeMatrix3d matrix;
  double scale = 1;  // positive
  double turn = 0;   // degrees, counterclockwise as seen from above

  static Similarity move(const AcGeVector3d& way);
  static Similarity scaleAbout(const AcGePoint3d& base, double factor);
  static Similarity turnAbout(const AcGePoint3d& base, double degrees);
  bool onlyMoves() const { return scale == 1 && turn == 0; }
};

// Both take an entity whole, with its vertices or attributes, or leave it as it is: false for what
// they do not know to change so (dimensions, solids, what has parts of unknown kinds; tables but
// for moving). Nothing of the entity may be open.
CAD_API bool transformEntity(Drawing& drawing, std::uint32_t entity, const Similarity& how);
// The copy goes to the end of the same space; what it is tied to by handles stays the original's.
CAD_API bool copyEntity(Drawing& drawing, std::uint32_t entity, const Similarity& how);

}  // namespace cad
