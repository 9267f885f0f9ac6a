#include "module/editing/followers.h"

#include <optional>
#include <set>

#include "module/host/translate.h"
#include "module/network/point_grid.h"
#include "module/network/schema.h"
#include "module/network/settings_store.h"
#include "platform/format.h"
#include "schema/names.h"

namespace vessora {
namespace {

AcGePoint3d inPlan(const AcGePoint3d& p) { return {p.x, p.y, 0}; }

// Where things were. The host moves alike in all directions about upright axes, so that in plan the
// way back is a turn and a scale.
class WayBack {
 public:
  explicit WayBack(const AcGeMatrix3d& m) : m_(m) {
    const double square = m.entry[0][0] * m.entry[0][0] + m.entry[1][0] * m.entry[1][0];
    cosine_ = m.entry[0][0] / square;
    sine_ = m.entry[1][0] / square;
    keepsHeights_ = m.entry[2][2] == 1 && m.entry[2][3] == 0;
  }
  AcGePoint3d operator()(const AcGePoint3d& p) const {
    const double x = p.x - m_.entry[0][3], y = p.y - m_.entry[1][3];
    return {cosine_ * x + sine_ * y, cosine_ * y - sine_ * x, height(p.z)};
  }
  double height(double z) const { return (z - m_.entry[2][3]) / m_.entry[2][2]; }
  bool keepsHeights() const { return keepsHeights_; }

 private:
  const AcGeMatrix3d& m_;
  double cosine_ = 1, sine_ = 0;
  bool keepsHeights_ = true;
};

// One network after a change by the host.
class Follower {
 public:
  Follower(std::u16string_view network, const std::set<AcDbObjectId>& moved, const WayBack& back)
      : network_(network), layers_(network), moved_(moved), back_(back) {}

  FollowCounts run() {
    bool any = false;
    each(wholeNetworkFilter(layers_), [&](AcDbObjectId id) { any = any || moved_.count(id); });
    if (!any) return {};
    if (!back_.keepsHeights()) restoreHeights();
    readNodes();
    moveArrows();
    readLinkBlocks();
    each(linkPolylineFilter(layers_), [&](AcDbObjectId id) { followLink(id); });
    return counts_;
  }

 private:
  template <class Visit>
  static void each(resbuf* filter, Visit&& visit) {
    for (const AcDbObjectId id : SelectionSet(u"_X", filter)) visit(id);
  }

  // Of a point of the drawing, where it stood before.
  AcGePoint3d before(AcDbObjectId id, const AcGePoint3d& now) const {
    if (!moved_.count(id)) return now;
    const AcGePoint3d was = back_(now);
    return {was.x, was.y, now.z};  // heights are back already
  }

  void restoreHeights() {
    each(wholeNetworkFilter(layers_), [&](AcDbObjectId id) {
      if (!moved_.count(id)) return;
      const Opened<AcDbEntity> entity(id, AcDb::kForWrite);
      if (auto* block = entity.as<AcDbBlockReference>()) {
        const AcGePoint3d p = block->position();
        block->setPosition({p.x, p.y, back_.height(p.z)});
      } else if (auto* polyline = entity.as<AcDb3dPolyline>()) {
        AcGePoint3dArray points;
        ReadVertices(polyline, points);
        for (AcGePoint3d& p : points) p.z = back_.height(p.z);
        RewritePolyline(points, polyline, 256, u"", nullptr);
      }
    });
  }

  void readNodes() {
    each(nodeBlockFilter(layers_), [&](AcDbObjectId id) {
      const Opened<AcDbBlockReference> block(id);
      if (!block) return;
      const AcGePoint3d now = block->position();
      const bool moved = moved_.count(id) > 0;
      (moved ? movedNodes_ : standing_).add(inPlan(before(id, now)), now);
    });
  }

  static std::optional<AcGePoint3d> find(PointGrid<AcGePoint3d>& nodes, const AcGePoint3d& was) {
    std::optional<AcGePoint3d> found;
    nodes.visit(inPlan(was), [&](const AcGePoint3d& now) {
      if (!found) found = now;
      return false;
    });
    return found;
  }

  void moveArrows() {
    for (const char16_t* prefix : {schema::layer::kFlowIn, schema::layer::kFlowOut}) {
      each(blocksOnLayerFilter(schema::layerName(prefix, network_)), [&](AcDbObjectId id) {
        if (moved_.count(id)) return;
        Opened<AcDbBlockReference> arrow(id);
        if (!arrow) return;
        const AcGePoint3d at = arrow->position();
        const auto node = find(movedNodes_, at);
        if (!node || find(standing_, at) || arrow->upgradeOpen() != Acad::eOk) return;
        arrow->setPosition({node->x, node->y, at.z});
        ++counts_.symbols;
      });
    }
  }

  void readLinkBlocks() {
    each(linkBlockFilter(layers_), [&](AcDbObjectId id) {
      const Opened<AcDbBlockReference> block(id);
      if (block && !moved_.count(id)) linkBlocks_.add(inPlan(block->position()), id);
    });
  }

  // Puts an end back on its node. True when it had to.
  bool settle(AcGePoint3d& end, const AcGePoint3d& was, bool linkMoved) {
    auto node = find(movedNodes_, was);
    // Where nodes lay upon each other, an end stays with one that it would not have to leave.
    if (!node || !linkMoved) {
      if (const auto still = find(standing_, was)) node = inPlan(was);
    }
    if (!node) return false;
    const AcGePoint3d there{node->x, node->y, end.z};
    if (samePlanPoint(there, end, kPlaceTolerance)) return false;
    end = there;
    return true;
  }

  void followLink(AcDbObjectId id) {
    Opened<AcDb3dPolyline> polyline(id);
    if (!polyline) return;
    AcGePoint3dArray now, were;
    ReadVertices(polyline.get(), now);
    if (now.size() < 2) return;
    for (const AcGePoint3d& p : now) were.push_back(before(id, p));
    const bool linkMoved = moved_.count(id) > 0;
    const bool start = settle(now.front(), were.front(), linkMoved);
    const bool end = settle(now.back(), were.back(), linkMoved);
    if (start || end) {
      if (polyline->upgradeOpen() != Acad::eOk) return;
      RewritePolyline(now, polyline.get(), 256, u"", nullptr);
      ++(linkMoved ? counts_.held : counts_.links);
    }
    polyline.close();
    if (start || end || linkMoved) followBlocks(now, were);
  }

  void followBlocks(const AcGePoint3dArray& now, const AcGePoint3dArray& were) {
    AcGePoint3d from, to;
    if (!linkBlockPlace(were, from) || !linkBlockPlace(now, to)) return;
    if (samePlanPoint(from, to, kPlaceTolerance)) return;
    linkBlocks_.visit(inPlan(from), [&](AcDbObjectId id) {
      const Opened<AcDbBlockReference> block(id, AcDb::kForWrite);
      if (!block) return false;
      block->setPosition({to.x, to.y, block->position().z});
      ++counts_.symbols;
      return true;
    });
  }

  const std::u16string network_;
  const NetworkLayers layers_;
  const std::set<AcDbObjectId>& moved_;
  const WayBack& back_;
  // By where they stood: where they stand now.
  PointGrid<AcGePoint3d> movedNodes_{kPlaceTolerance}, standing_{kPlaceTolerance};
  PointGrid<AcDbObjectId> linkBlocks_{kPlaceTolerance};  // that were not moved
  FollowCounts counts_;
};

}  // namespace

FollowCounts followMoved(const std::vector<AcDbObjectId>& entities, const AcGeMatrix3d& matrix) {
  const std::set<AcDbObjectId> moved(entities.begin(), entities.end());
  const WayBack back(matrix);
  FollowCounts all;
  std::vector<std::u16string> names;
  wide256 defaultName;
  ListNetworks(names, defaultName);
  for (const std::u16string& name : std::set(names.begin(), names.end())) {
    const FollowCounts counts = Follower(name, moved, back).run();
    all.links += counts.links;
    all.held += counts.held;
    all.symbols += counts.symbols;
  }
  return all;
}

std::u16string describe(const FollowCounts& counts) {
  std::u16string text;
  const auto add = [&](const char16_t* line, int count) {
    if (count > 0) {
      text += (text.empty() ? u"" : u"\n") + platform::format(TraduciTesto(line), count);
    }
  };
  add(u"Rami che seguono i loro nodi, con le lunghezze e i risultati di prima: %d.", counts.links);
  add(u"Rami spostati che restano attaccati a nodi fermi: %d.", counts.held);
  add(u"Simboli che seguono nodi e rami: %d.", counts.symbols);
  return text;
}

}  // namespace vessora
