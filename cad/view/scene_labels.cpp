#include "cad/view/scene_labels.h"

#include <algorithm>
#include <cmath>

#include "cad/view/labels.h"
#include "cad/view/placed.h"

namespace cad::view {
namespace {

constexpr std::size_t kMost = 5000;  // symbols in view
constexpr double kSmallest = 5;      // pixels of height

}  // namespace

std::vector<std::uint32_t> labelsToShow(Scene& scene, const Drawing& drawing, const Camera& camera,
                                        const std::vector<std::uint32_t>& things) {
  std::vector<std::uint32_t> with;
  for (const std::uint32_t thing : things) {
    if (scene.things()[thing].labels) with.push_back(thing);
    if (with.size() > kMost) return {};
  }
  PageRoom room(camera.width(), camera.height());
  std::vector<Label> wanted;
  for (const std::uint32_t thing : with) {
    const ItemRange range = scene.labelsOf(thing, drawing);
    for (std::uint32_t i = range.begin; i < range.end; ++i) {
      const SceneItem& item = scene.items()[i];
      if (item.kind != Kind::text) continue;
      shape::Primitive text;
      text.kind = Kind::text;
      text.text = scene.texts()[item.text];
      const auto first = scene.points().begin() + item.first;
      text.points.assign(first, first + item.count);
      const Pixel foot = camera.pixelOf(text.points[0]), head = camera.pixelOf(text.points[2]);
      const double height = std::hypot(head.x - foot.x, head.y - foot.y);
      if (height < kSmallest) continue;
      PageBox box{1e300, 1e300, -1e300, -1e300};
      for (const AcGePoint3d& corner : shape::textCorners(text)) {
        const Pixel p = camera.pixelOf(corner);
        box = {std::min(box.x1, p.x), std::min(box.y1, p.y), std::max(box.x2, p.x),
               std::max(box.y2, p.y)};
      }
      wanted.push_back({box, height, thing, i});
    }
  }
  std::vector<std::uint32_t> shown;
  for (const Label& label : placeLabels(std::move(wanted), room)) shown.push_back(label.item);
  return shown;
}

Color shownColor(const Pen& pen, bool dark) {
  const Shade s = shownOn(pen.index < 0 ? pen.exact : indexedColor(pen.index, dark), dark);
  const auto byte = [](double part) {
    return static_cast<std::uint8_t>(std::lround(std::clamp(part, 0.0, 1.0) * 255));
  };
  return {byte(s.red), byte(s.green), byte(s.blue)};
}

}  // namespace cad::view
