// What a user means by an answer to "pick an entity": a point near it, its handle, or its name.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "cad/api/database.h"

namespace cad {

// A point "x,y" or "x,y,z"; numbers with a point as decimal mark. Relative to `base` when it begins
// with '@', also as "@d<a": a distance in a direction, in degrees. Empty when the text is no point.
std::optional<AcGePoint3d> parsePoint(std::u16string_view text, const AcGePoint3d* base = nullptr);

// What a user sees and may point at, in drawing order: the entities of the current space whose
// layer is neither frozen nor switched off and that are not hidden themselves.
std::vector<std::uint32_t> seenEntities(Drawing& drawing);
// The entity lies on a locked layer: it can be picked, and the host's commands leave it as it is.
bool onLockedLayer(const Drawing& drawing, std::uint32_t entity);

// The entity of a space or layout that has the handle; 0 for none.
std::uint32_t entityOfHandle(const Drawing& drawing, std::uint64_t handle);

struct Pick {
  std::uint32_t record = 0;  // 0: nothing was hit
  AcGePoint3d point;
  std::u16string problem;  // why nothing was hit, for the user
};

// "#1A2B" the entity of a handle, "=P12" the entity whose extended data or attribute ID name it so
// (block references before polylines), "x,y" the entity nearest to a point within the aperture.
// A point hits only what is seen; a handle or name finds what is not seen too.
Pick pickEntity(Drawing& drawing, std::u16string_view text, double aperture);

}  // namespace cad
