#include "cad/view/snap.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace cad::view {
namespace {

double distance(const Pixel& a, const Pixel& b) { return std::hypot(a.x - b.x, a.y - b.y); }

// The share of a segment that is nearest to a point.
double shareNear(const Pixel& a, const Pixel& b, const Pixel& at) {
  const double x = b.x - a.x, y = b.y - a.y, length = x * x + y * y;
  if (length <= 0) return 0;
  return std::clamp(((at.x - a.x) * x + (at.y - a.y) * y) / length, 0.0, 1.0);
}
Pixel between(const Pixel& a, const Pixel& b, double share) {
  return {a.x + (b.x - a.x) * share, a.y + (b.y - a.y) * share};
}
AcGePoint3d between(const AcGePoint3d& a, const AcGePoint3d& b, double share) {
  return a + (b - a) * share;
}

// What a square of pixels may show, at any height of the scene.
Window under(const Scene& scene, const Camera& camera, const Pixel& a, const Pixel& b) {
  const double low = std::min(scene.low(), scene.high()),
               high = std::max(scene.low(), scene.high());
  Window all{1e300, 1e300, -1e300, -1e300};
  if (std::cos(camera.tilt()) < 1e-3) return {-1e300, -1e300, 1e300, 1e300};
  for (const double z : {low, high}) {
    for (const Pixel corner : {a, b, Pixel{a.x, b.y}, Pixel{b.x, a.y}}) {
      const AcGePoint3d p = camera.worldOf(corner, z);
      all = {std::min(all.x1, p.x), std::min(all.y1, p.y), std::max(all.x2, p.x),
             std::max(all.y2, p.y)};
    }
  }
  return all;
}

// Calls `segment(a, b)` with the pixels of each segment that a thing draws, until it returns false.
template <class Segment>
bool eachSegment(const Scene& scene, const Camera& camera, const SceneThing& thing,
                 Segment&& segment) {
  const auto range = [&](const ItemRange& items, const AcGeMatrix3d* m) {
    for (std::uint32_t i = items.begin; i < items.end; ++i) {
      const SceneItem& item = scene.items()[i];
      if (item.kind == Kind::text || item.count == 0) continue;
      const AcGePoint3d* p = scene.points().data() + item.first;
      const auto pixel = [&](std::uint32_t k) { return camera.pixelOf(m ? *m * p[k] : p[k]); };
      const Pixel first = pixel(0);
      Pixel before = first;
      for (std::uint32_t k = 1; k < item.count; ++k) {
        const Pixel next = pixel(k);
        if (!segment(before, next)) return false;
        before = next;
      }
      const bool round = item.closed || item.kind == Kind::fill || item.count == 1;
      if (round && !segment(before, first)) return false;
    }
    return true;
  };
  if (!range(thing.items, nullptr)) return false;
  if (thing.symbol == SceneThing::kNone) return true;
  return range(scene.symbols()[thing.symbol].items, &scene.matrices()[thing.matrix]);
}

class Snapper {
 public:
  Snapper(const Scene& scene, const Camera& camera, const Pixel& at, const SnapRules& rules)
      : scene_(scene), camera_(camera), at_(at), rules_(rules) {}

  void thing(std::uint32_t id) {
    const SceneThing& thing = scene_.things()[id];
    if (thing.record == rules_.without) return;
    thing_ = id;
    if (thing.symbol != SceneThing::kNone) {
      offer(SnapKind::node, scene_.matrices()[thing.matrix] * AcGePoint3d());
    }
    for (std::uint32_t i = thing.items.begin; i < thing.items.end; ++i) {
      const SceneItem& item = scene_.items()[i];
      if (item.kind == Kind::dot) offer(SnapKind::node, scene_.points()[item.first]);
      if (item.kind == Kind::line) line(item);
    }
  }
  const std::optional<SnapHit>& best() const { return best_; }

 private:
  void line(const SceneItem& item) {
    const AcGePoint3d* p = scene_.points().data() + item.first;
    const std::uint32_t count = item.count;
    for (std::uint32_t k = 0; k < count; ++k) {
      const bool end = !item.closed && (k == 0 || k + 1 == count);
      offer(end ? SnapKind::end : SnapKind::vertex, p[k]);
    }
    const std::uint32_t segments = item.closed ? count : count - 1;
    for (std::uint32_t k = 0; k < segments; ++k) {
      const AcGePoint3d &a = p[k], &b = p[(k + 1) % count];
      offer(SnapKind::middle, between(a, b, 0.5));
      const double share = shareNear(camera_.pixelOf(a), camera_.pixelOf(b), at_);
      offer(SnapKind::nearest, between(a, b, share));
    }
  }

  void offer(SnapKind kind, const AcGePoint3d& point) {
    if (!(rules_.kinds >> static_cast<unsigned>(kind) & 1U)) return;
    const double far = distance(camera_.pixelOf(point), at_);
    if (!(far <= rules_.radius)) return;
    if (best_ && (best_->kind < kind || (best_->kind == kind && far_ <= far))) return;
    best_ = SnapHit{kind, point, thing_};
    far_ = far;
  }

  const Scene& scene_;
  const Camera& camera_;
  const Pixel at_;
  const SnapRules& rules_;
  std::uint32_t thing_ = 0;
  std::optional<SnapHit> best_;
  double far_ = 0;
};

bool inside(const Pixel& p, const Window& w) {
  return p.x >= w.x1 && p.x <= w.x2 && p.y >= w.y1 && p.y <= w.y2;
}

// A segment has a point in a window.
bool crosses(const Pixel& a, const Pixel& b, const Window& w) {
  double from = 0, to = 1;
  const double way[2] = {b.x - a.x, b.y - a.y}, start[2] = {a.x, a.y};
  const double low[2] = {w.x1, w.y1}, high[2] = {w.x2, w.y2};
  for (int axis = 0; axis < 2; ++axis) {
    if (way[axis] == 0) {
      if (start[axis] < low[axis] || start[axis] > high[axis]) return false;
      continue;
    }
    double enter = (low[axis] - start[axis]) / way[axis];
    double leave = (high[axis] - start[axis]) / way[axis];
    if (enter > leave) std::swap(enter, leave);
    from = std::max(from, enter);
    to = std::min(to, leave);
    if (from > to) return false;
  }
  return true;
}

}  // namespace

std::optional<SnapHit> snapAt(const Scene& scene, const Camera& camera, const Pixel& at,
                              const SnapRules& rules) {
  Snapper snapper(scene, camera, at, rules);
  const double r = rules.radius;
  const Window window = under(scene, camera, {at.x - r, at.y - r}, {at.x + r, at.y + r});
  scene.index().query(window, [&](std::uint32_t thing, const Window&) {
    snapper.thing(thing);
    return true;
  });
  return snapper.best();
}

std::vector<std::uint32_t> thingsAt(const Scene& scene, const Camera& camera, const Pixel& at,
                                    double radius) {
  struct Hit {
    bool line;
    double far, size;
    std::uint32_t thing;
  };
  std::vector<Hit> hits;
  const Window window =
      under(scene, camera, {at.x - radius, at.y - radius}, {at.x + radius, at.y + radius});
  scene.index().query(window, [&](std::uint32_t id, const Window& box) {
    const SceneThing& thing = scene.things()[id];
    double nearest = std::numeric_limits<double>::infinity();
    eachSegment(scene, camera, thing, [&](const Pixel& a, const Pixel& b) {
      nearest = std::min(nearest, distance(between(a, b, shareNear(a, b, at)), at));
      return true;
    });
    const bool symbol = thing.symbol != SceneThing::kNone;
    // Within a symbol is on it.
    if (symbol && SceneIndex::meets(box, window)) nearest = std::min(nearest, radius);
    if (nearest > radius) return true;
    hits.push_back({!symbol, nearest, box.x2 - box.x1 + box.y2 - box.y1, id});
    return true;
  });
  std::sort(hits.begin(), hits.end(), [](const Hit& a, const Hit& b) {
    if (a.line != b.line) return !a.line;
    return a.far != b.far ? a.far < b.far : a.size < b.size;
  });
  std::vector<std::uint32_t> things;
  for (const Hit& hit : hits) things.push_back(hit.thing);
  return things;
}

std::vector<std::uint32_t> thingsIn(const Scene& scene, const Camera& camera, const Pixel& a,
                                    const Pixel& b, bool crossing) {
  const Window pixels{std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x),
                      std::max(a.y, b.y)};
  std::vector<std::uint32_t> found;
  scene.index().query(under(scene, camera, a, b), [&](std::uint32_t id, const Window&) {
    bool any = false, all = true;
    eachSegment(scene, camera, scene.things()[id], [&](const Pixel& from, const Pixel& to) {
      any = any || crosses(from, to, pixels);
      all = all && inside(from, pixels) && inside(to, pixels);
      return crossing ? !any : all;
    });
    if (crossing ? any : all) found.push_back(id);
    return true;
  });
  std::sort(found.begin(), found.end());
  return found;
}

}  // namespace cad::view
