// What a cursor means on a scene: the place that it snaps to, and the things under it.
#pragma once

#include <optional>
#include <vector>

#include "cad/view/camera.h"
#include "cad/view/scene.h"

namespace cad::view {

// In the order of their rank: within the cursor's reach a node wins over an end however near that
// is.
enum class SnapKind : std::uint8_t { node, end, vertex, middle, nearest };

struct SnapHit {
  SnapKind kind = SnapKind::nearest;
  AcGePoint3d point;  // at full precision, with its height
  std::uint32_t thing = 0;
};

struct SnapRules {
  double radius = 10;         // device pixels
  unsigned kinds = 0b11111;   // one bit for each kind, by rank
  std::uint32_t without = 0;  // record of an entity that attracts nothing, such as what is moved
};

// The best place near a pixel.
CAD_API std::optional<SnapHit> snapAt(const Scene& scene, const Camera& camera, const Pixel& at,
                                      const SnapRules& rules = {});

// The things that a pixel touches within a reach, the one that is meant first: symbols before
// lines, and of equals the nearest.
CAD_API std::vector<std::uint32_t> thingsAt(const Scene& scene, const Camera& camera,
                                            const Pixel& at, double radius);

// The things of a window between two pixels: those that lie in it as a whole, or that it touches.
CAD_API std::vector<std::uint32_t> thingsIn(const Scene& scene, const Camera& camera,
                                            const Pixel& a, const Pixel& b, bool crossing);

}  // namespace cad::view
