#include "module/network/node_update.h"

#include <algorithm>

#include "module/network/element_data.h"
#include "module/network/links_at.h"
#include "module/network/point_grid.h"

namespace vessora {
namespace {

constexpr int kChangedLink = 3;  // colour of links that a node has moved

// The blocks on one layer by their place in plan before anything moved.
class BlockPlaces {
 public:
  explicit BlockPlaces(std::u16string_view layer) {
    for (const AcDbObjectId id : SelectionSet(u"_X", blocksOnLayerFilter(layer))) {
      if (const Opened<AcDbBlockReference> block(id); block) {
        places_.add(inPlan(block->position()), id);
      }
    }
  }
  std::vector<AcDbObjectId> at(const AcGePoint3d& place) {
    std::vector<AcDbObjectId> found;
    places_.visit(inPlan(place), [&](AcDbObjectId id) {
      found.push_back(id);
      return false;
    });
    return found;
  }

 private:
  static AcGePoint3d inPlan(const AcGePoint3d& p) { return {p.x, p.y, 0}; }
  PointGrid<AcDbObjectId> places_{kPlaceTolerance};
};

double lengthOf(const AcGePoint3dArray& points) {
  double sum = 0;
  for (std::size_t i = 1; i < points.size(); ++i) sum += points[i].distanceTo(points[i - 1]);
  return sum;
}

bool hasName(AcDbObjectId block, std::u16string_view name) {
  const Opened<AcDbBlockReference> opened(block);
  return opened && Chain(opened->xData(app::kImport)).text(1) == name;
}

class LinkMover {
 public:
  LinkMover(const AcGePoint3d& node, const NodeChange& change)
      : node_(node), change_(change), layers_(currentNetwork) {}

  std::vector<FollowedLink> run() {
    for (const LinkAt& link : linksAt(layers_, node_)) follow(link);
    return std::move(followed_);
  }

 private:
  void follow(LinkAt link) {
    const Opened<AcDb3dPolyline> polyline(link.id);
    points_.clear();
    ReadVertices(polyline.get(), points_);
    const std::u16string layer = polyline->layer();
    const bool pipe = layer == layers_.pipe, valv = layer == layers_.valv;
    if (!pipe && !valv && layer != layers_.pump) return;
    Chain data(polyline->xData(app::kImport));
    if (pipe) {
      link.start = link.start && rename(data.item(nodePlace(schema::kPipe, false)));
      link.end = link.end && rename(data.item(nodePlace(schema::kPipe, true)));
      if (!link.start && !link.end) return;
    } else if (points_.size() < 2) {
      return;  // no course, so no place for the block either
    }
    const AcGePoint3dArray before = points_;
    if (link.start) place(points_.front());
    if (link.end) place(points_.back());
    if (movesAnything()) interpolateInterior(points_);
    if (!pipe) fixBlocks(valv, before, link, data.text(1));
    polyline->upgradeOpen();
    RewritePolyline(points_, polyline.get(), kChangedLink, layer,
                    pipe && change_.id ? data.release() : nullptr);
    ClearXData(polyline.get(), app::kLinkResult);
    followed_.push_back({link.id, lengthOf(before), lengthOf(points_)});
  }

  bool movesAnything() const { return change_.newHeight || change_.place; }
  void place(AcGePoint3d& end) const {
    if (change_.newHeight) end.z = *change_.newHeight;
    if (change_.place) end = {change_.place->x, change_.place->y, end.z};
  }

  // Where a link has the name of its node at an end.
  static int nodePlace(const schema::Kind& kind, bool atEnd) {
    return schema::placeOf(kind.data, atEnd ? schema::Field::node2 : schema::Field::node1);
  }

  // Puts the node's name into an item, if it has a new one; false when there is no item, or it is
  // of another node.
  bool rename(resbuf* item) {
    if (!item || isOfAnother(item)) return false;
    if (change_.id && (item->restype == 1000 || !change_.onlyTextItems)) {
      setTextItem(item, *change_.id);
    }
    return true;
  }

  bool isOfAnother(const resbuf* item) {
    if (!change_.oldName || acutKindOf(item->restype) != RbKind::text) return false;
    const std::u16string_view name(item->resval.rstring);
    if (name == *change_.oldName || (change_.id && name == change_.id->view())) return false;
    if (!neighbours_) {
      neighbours_.emplace();
      for (const AcDbObjectId id : SelectionSet(u"_X", nodeBlockFilter(layers_))) {
        const Opened<AcDbBlockReference> block(id);
        if (!block || !samePlanPoint(block->position(), node_, kPlaceTolerance)) continue;
        neighbours_->emplace_back(Chain(block->xData(app::kImport)).text(1));
      }
    }
    return std::find(neighbours_->begin(), neighbours_->end(), name) != neighbours_->end();
  }

  // Blocks belong to a course by their place. Where several stand there, as on parallel pumps, only
  // those of the course's own name leave it, and in full only those are touched at all.
  void fixBlocks(bool valv, const AcGePoint3dArray& before, const LinkAt& link,
                 std::u16string_view name) {
    AcGePoint3d from, to;
    if (!linkBlockPlace(before, from) || !linkBlockPlace(points_, to)) return;
    std::optional<BlockPlaces>& blocks = valv ? valves_ : pumps_;
    if (!blocks) blocks.emplace(valv ? layers_.valv : layers_.pump);
    std::vector<AcDbObjectId> there = blocks->at(from);
    if ((change_.place || change_.oldName) && there.size() > 1) {
      std::vector<AcDbObjectId> own;
      for (const AcDbObjectId id : there) {
        if (hasName(id, name)) own.push_back(id);
      }
      if (!own.empty()) there = own;
    }
    for (const AcDbObjectId id : there)
      fixBlock(id, valv ? schema::kValv : schema::kPump, to, link);
  }

  void fixBlock(AcDbObjectId id, const schema::Kind& kind, const AcGePoint3d& to,
                const LinkAt& link) {
    const Opened<AcDbBlockReference> block(id, AcDb::kForWrite);
    if (!block) return;
    if (change_.place) {
      block->setPosition(to);
      ClearXData(block.get(), app::kLinkResult);
    } else if (change_.newHeight) {
      const AcGePoint3d at = block->position();
      block->setPosition({at.x, at.y, to.z});
    }
    if (!change_.id) return;
    const Chain data(block->xData(app::kImport));
    bool named = false;
    for (const bool atEnd : {false, true}) {
      resbuf* const item = data.item(nodePlace(kind, atEnd));
      if (!item || !(atEnd ? link.end : link.start) || isOfAnother(item)) continue;
      setTextItem(item, *change_.id);
      named = true;
    }
    if (named) block->setXData(data.get());
  }

  const AcGePoint3d node_;
  const NodeChange& change_;
  const NetworkLayers layers_;
  AcGePoint3dArray points_;
  std::optional<std::vector<std::u16string>> neighbours_;  // other nodes at the place, by name
  std::optional<BlockPlaces> valves_, pumps_;  // made when the first link of the kind is met
  std::vector<FollowedLink> followed_;
};

}  // namespace

FollowedLinks dragLinks(Opened<AcDbBlockReference> block, const NodeChange& change) {
  FollowedLinks followed;
  const AcDbObjectId id = block->objectId();
  AcGePoint3d at = block->position();
  block.close();
  if (std::fabs(at.z - change.oldHeight) < kPlaceTolerance) {
    followed.links = LinkMover(at, change).run();
  } else {
    followed.leftBehind = !linksAt(NetworkLayers(currentNetwork), at).empty();
  }
  if (!change.newHeight && !change.place) return followed;
  if (change.newHeight) at.z = *change.newHeight;
  if (change.place) at = {change.place->x, change.place->y, at.z};
  if (const Opened<AcDbBlockReference> again(id, AcDb::kForWrite); again) again->setPosition(at);
  return followed;
}

}  // namespace vessora
