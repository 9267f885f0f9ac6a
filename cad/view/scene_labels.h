// Which texts beside symbols a window shows, and where: those that can be read and find room.
#pragma once

#include <vector>

#include "cad/view/camera.h"
#include "cad/view/scene.h"

namespace cad::view {

// A text of a symbol, by its number in the scene's items, and how far it moves from where it is
// drawn, in pixels, to a side of its symbol that is free.
struct SceneLabel {
  std::uint32_t item = 0;
  double moveX = 0, moveY = 0;
};

// Of the things that a window shows; larger ones win over smaller ones, names over what stands with
// them. Nothing when there are too many to be read.
CAD_API std::vector<SceneLabel> labelsToShow(Scene& scene, const Drawing& drawing,
                                             const Camera& camera,
                                             const std::vector<std::uint32_t>& things);

// A pen's colour on a ground, where the lightest or darkest could not be told from it.
CAD_API Color shownColor(const Pen& pen, bool dark);

}  // namespace cad::view
