#include "module/network/node_update.h"

#include <optional>

#include "module/network/point_grid.h"

namespace vessora {
namespace {

constexpr int kChangedLink = 3;  // colour of links that a node has moved

// The blocks on one layer by their place in plan.
class BlockPlaces {
 public:
  explicit BlockPlaces(std::u16string_view layer) {
    for (const AcDbObjectId id : SelectionSet(u"_X", blocksOnLayerFilter(layer))) {
      if (const Opened<AcDbBlockReference> block(id); block) {
        places_.add(inPlan(block->position()), id);
      }
    }
  }
  // Calls visit(id) for each block at the place.
  template <class Visit>
  void at(const AcGePoint3d& place, Visit visit) {
    places_.visit(inPlan(place), [&](AcDbObjectId id) {
      visit(id);
      return false;
    });
  }

 private:
  static AcGePoint3d inPlan(const AcGePoint3d& p) { return {p.x, p.y, 0}; }
  PointGrid<AcDbObjectId> places_{kPlaceTolerance};
};

enum class End { start, end };

class LinkMover {
 public:
  LinkMover(const AcGePoint3d& node, const NodeChange& change)
      : node_(node), change_(change), layers_(currentNetwork) {}

  void run() {
    const SelectionSet set(u"_X", linkPolylineFilter(layers_));
    // The two ends are independent: a link from a node to itself is changed twice.
    for (const AcDbObjectId id : set) {
      moveEnd(id, End::start);
      moveEnd(id, End::end);
    }
  }

 private:
  void moveEnd(AcDbObjectId id, End which) {
    const Opened<AcDb3dPolyline> polyline(id);
    if (!polyline) return;
    points_.clear();
    ReadVertices(polyline.get(), points_);
    if (points_.empty()) return;
    AcGePoint3d& end = which == End::start ? points_.front() : points_.back();
    if (!samePlanPoint(end, node_, kPlaceTolerance)) return;
    const std::u16string layer = polyline->layer();
    const bool pipe = layer == layers_.pipe, valv = layer == layers_.valv;
    if (!pipe && !valv && layer != layers_.pump) return;
    Chain data;
    if (pipe) {
      data = Chain(polyline->xData(app::kImport));
      if (!rename(data.item(nodePlace(schema::kPipe, which)))) return;
    } else if (points_.size() < 2) {
      return;  // no course, so no place for the block either
    }
    end.z = change_.newHeight;
    interpolateInterior(points_);
    if (!pipe) fixBlocks(valv, which);
    polyline->upgradeOpen();
    RewritePolyline(points_, polyline.get(), kChangedLink, layer, data.release());
    ClearXData(polyline.get(), app::kLinkResult);
  }

  // Where a link has the name of its node at an end.
  static int nodePlace(const schema::Kind& kind, End which) {
    return schema::placeOf(kind.data,
                           which == End::start ? schema::Field::node1 : schema::Field::node2);
  }

  // Puts the node's name into an item; false when there is none.
  bool rename(resbuf* item) const {
    if (!item) return false;
    if (item->restype == 1000 || !change_.onlyTextItems) setTextItem(item, change_.id);
    return true;
  }

  void fixBlocks(bool valv, End which) {
    AcGePoint3d place;
    if (!linkBlockPlace(points_, place)) return;
    std::optional<BlockPlaces>& blocks = valv ? valves_ : pumps_;
    if (!blocks) blocks.emplace(valv ? layers_.valv : layers_.pump);
    const int position = nodePlace(valv ? schema::kValv : schema::kPump, which);
    blocks->at(place, [&](AcDbObjectId id) {
      const Opened<AcDbBlockReference> block(id, AcDb::kForWrite);
      if (!block) return;
      const AcGePoint3d at = block->position();
      block->setPosition({at.x, at.y, place.z});
      const Chain data(block->xData(app::kImport));
      resbuf* item = data.item(position);
      if (!item) return;
      setTextItem(item, change_.id);
      block->setXData(data.get());
    });
  }

  const AcGePoint3d node_;
  const NodeChange& change_;
  const NetworkLayers layers_;
  AcGePoint3dArray points_;
  std::optional<BlockPlaces> valves_, pumps_;  // made when the first link of the kind is met
};

}  // namespace

void moveNode(Opened<AcDbBlockReference> block, const NodeChange& change) {
  const AcDbObjectId id = block->objectId();
  const AcGePoint3d at = block->position();
  block.close();
  if (std::fabs(at.z - change.oldHeight) < kPlaceTolerance) LinkMover(at, change).run();
  if (const Opened<AcDbBlockReference> again(id, AcDb::kForWrite); again) {
    again->setPosition({at.x, at.y, change.newHeight});
  }
}

}  // namespace vessora
