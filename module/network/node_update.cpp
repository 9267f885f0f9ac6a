#include "module/network/node_update.h"

#include <algorithm>
#include <optional>

namespace vessora {
namespace {

constexpr int kChangedLink = 3;  // colour of links that a node has moved

// The blocks on one layer by their place in plan.
class BlockPlaces {
 public:
  explicit BlockPlaces(std::u16string_view layer) {
    const SelectionSet set(u"_X", blocksOnLayerFilter(layer));
    for (const AcDbObjectId id : set) {
      if (const Opened<AcDbBlockReference> block(id); block) {
        const AcGePoint3d at = block->position();
        entries_.push_back({cellOf(at.x), cellOf(at.y), at, id});
      }
    }
    std::stable_sort(entries_.begin(), entries_.end(), before);
  }

  // Calls visit(id) for each block at the place.
  template <class Visit>
  void at(const AcGePoint3d& place, Visit visit) const {
    const double t = kPlaceTolerance;
    for (double cx = cellOf(place.x - t); cx <= cellOf(place.x + t); ++cx) {
      for (double cy = cellOf(place.y - t); cy <= cellOf(place.y + t); ++cy) {
        const auto [from, to] =
            std::equal_range(entries_.begin(), entries_.end(), Entry{cx, cy, {}, {}}, before);
        for (auto e = from; e != to; ++e) {
          if (samePlanPoint(e->position, place, t)) visit(e->id);
        }
      }
    }
  }

 private:
  struct Entry {
    double cellX, cellY;
    AcGePoint3d position;
    AcDbObjectId id;
  };
  static double cellOf(double coordinate) { return std::floor(coordinate * 10); }
  static bool before(const Entry& a, const Entry& b) {
    return a.cellX != b.cellX ? a.cellX < b.cellX : a.cellY < b.cellY;
  }
  std::vector<Entry> entries_;
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
      if (!rename(data.item(which == End::start ? 7 : 8))) return;
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
    const int position = (valv ? 7 : 2) + (which == End::start ? 0 : 1);
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
