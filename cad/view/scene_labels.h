// Which texts beside symbols a window shows: those that can be read and find room.
#pragma once

#include <vector>

#include "cad/view/camera.h"
#include "cad/view/scene.h"

namespace cad::view {

// Numbers of the scene's items, of the labels of some things; larger ones win over smaller ones,
// names over what stands with them. Nothing when there are too many to be read.
CAD_API std::vector<std::uint32_t> labelsToShow(Scene& scene, const Drawing& drawing,
                                                const Camera& camera,
                                                const std::vector<std::uint32_t>& things);

// A pen's colour on a ground, where the lightest or darkest could not be told from it.
CAD_API Color shownColor(const Pen& pen, bool dark);

}  // namespace cad::view
