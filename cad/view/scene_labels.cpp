#include "cad/view/scene_labels.h"

#include <algorithm>
#include <cmath>

#include "cad/view/page_labels.h"

namespace cad::view {
namespace {

constexpr std::size_t kMost = 5000;     // symbols in view
constexpr double kSmallest = 3.5;       // pixels of height
constexpr double kLargestSymbol = 200;  // pixels: a frame is no symbol that hides texts

class SceneLabels {
 public:
  SceneLabels(Scene& scene, const Camera& camera)
      : scene_(scene), camera_(camera), room_(camera.width(), camera.height()) {}

  // The texts of one thing.
  void want(std::uint32_t thing, const Drawing& drawing) {
    const ItemRange range = scene_.labelsOf(thing, drawing);
    const PageBox symbol = symbolOf(scene_.things()[thing]);
    const std::size_t first = labels_.size();
    for (std::uint32_t i = range.begin; i < range.end; ++i) {
      const SceneItem& item = scene_.items()[i];
      if (item.kind != Kind::text) continue;
      Label label;
      if (!measure(item, label)) continue;
      label.symbol = thing + 1;
      label.item = i;
      const bool besides = first < labels_.size() ? !labels_[first].beside.isEmpty()
                                                  : standsAt(label.box, symbol, label.height);
      if (besides) label.beside = symbol;
      labels_.push_back(label);
    }
  }

  // What stands in the way of texts.
  void takeRoom(std::uint32_t id) {
    const SceneThing& thing = scene_.things()[id];
    const PageBox symbol = symbolOf(thing);
    if (!symbol.isEmpty() && symbol.size() <= kLargestSymbol) room_.take(symbol, id + 1);
    for (std::uint32_t i = thing.items.begin; i < thing.items.end; ++i) {
      const SceneItem& item = scene_.items()[i];
      if (item.kind == Kind::text) {
        Label text;
        if (measure(item, text)) room_.take(text.box);
      }
      if (item.kind != Kind::line) continue;
      for (std::uint32_t k = 1; k < item.count; ++k) {
        const Pixel a = camera_.pixelOf(scene_.points()[item.first + k - 1]),
                    b = camera_.pixelOf(scene_.points()[item.first + k]);
        room_.cross({a.x, a.y, b.x, b.y}, id + 1);
      }
    }
  }

  std::vector<SceneLabel> place() {
    std::vector<SceneLabel> shown;
    for (const Label& label : placeLabels(std::move(labels_), room_)) {
      shown.push_back({label.item, label.moveX, label.moveY});
    }
    return shown;
  }
  bool empty() const { return labels_.empty(); }

 private:
  bool measure(const SceneItem& item, Label& label) const {
    shape::Primitive text;
    text.kind = Kind::text;
    text.text = scene_.texts()[item.text];
    const auto first = scene_.points().begin() + item.first;
    text.points.assign(first, first + item.count);
    const Pixel foot = camera_.pixelOf(text.points[0]), head = camera_.pixelOf(text.points[2]);
    label.height = std::hypot(head.x - foot.x, head.y - foot.y);
    if (!(label.height >= kSmallest)) return false;
    label.box = PageBox::empty();
    for (const AcGePoint3d& corner : shape::textCorners(text)) {
      const Pixel p = camera_.pixelOf(corner);
      label.box.grow(p.x, p.y);
    }
    return std::isfinite(label.box.x1 + label.box.y1 + label.box.x2 + label.box.y2);
  }

  PageBox symbolOf(const SceneThing& thing) const {
    PageBox box = PageBox::empty();
    if (thing.symbol == SceneThing::kNone) return box;
    const SceneSymbol& symbol = scene_.symbols()[thing.symbol];
    if (symbol.box.x1 > symbol.box.x2) return box;
    for (const double x : {symbol.box.x1, symbol.box.x2}) {
      for (const double y : {symbol.box.y1, symbol.box.y2}) {
        const Pixel p = camera_.pixelOf(scene_.matrices()[thing.matrix] * AcGePoint3d(x, y, 0));
        box.grow(p.x, p.y);
      }
    }
    return box;
  }

  Scene& scene_;
  const Camera& camera_;
  PageRoom room_;
  std::vector<Label> labels_;
};

}  // namespace

std::vector<SceneLabel> labelsToShow(Scene& scene, const Drawing& drawing, const Camera& camera,
                                     const std::vector<std::uint32_t>& things) {
  const auto has = [&](std::uint32_t thing) { return scene.things()[thing].labels; };
  if (static_cast<std::size_t>(std::ranges::count_if(things, has)) > kMost) return {};
  SceneLabels labels(scene, camera);
  for (const std::uint32_t thing : things) {
    if (has(thing)) labels.want(thing, drawing);
  }
  if (labels.empty()) return {};
  for (const std::uint32_t thing : things) labels.takeRoom(thing);
  return labels.place();
}

Color shownColor(const Pen& pen, bool dark) {
  const Shade s = shownOn(pen.index < 0 ? pen.exact : indexedColor(pen.index, dark), dark);
  const auto byte = [](double part) {
    return static_cast<std::uint8_t>(std::lround(std::clamp(part, 0.0, 1.0) * 255));
  };
  return {byte(s.red), byte(s.green), byte(s.blue)};
}

}  // namespace cad::view
