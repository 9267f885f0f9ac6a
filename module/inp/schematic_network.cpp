#include "module/inp/schematic_network.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "module/network/element_data.h"
#include "module/network/point_grid.h"
#include "module/network/schema.h"

namespace vessora {

namespace {

EpaCoord coordOf(std::u16string_view id, const AcGePoint3d& point) {
  EpaCoord coord;
  coord.id = id;
  storeReal(coord.x, point.x);
  storeReal(coord.y, point.y);
  return coord;
}

// One entity of the layer, read once. Attributes count as present when their text is not empty.
struct Block {
  AcGePoint3d position;
  std::u16string name, demand, elev;  // of a node
  std::u16string head, tankName;      // of a reservoir
};
struct Polyline {
  AcGePoint3dArray points;
  Chain data;
};
struct Item {
  std::optional<Block> block;
  std::optional<Polyline> polyline;
};

Block readBlock(AcDbBlockReference& reference) {
  constexpr std::u16string_view kTags[] = {
      schema::schematic::kNodeName, schema::schematic::kNodeDemand,
      schema::schematic::kNodeElevation, schema::schematic::kTankHead,
      schema::schematic::kTankName};
  std::u16string texts[5];
  readAttributes(&reference, kTags, texts, 5);
  return {reference.position(), std::move(texts[0]), std::move(texts[1]),
          std::move(texts[2]),  std::move(texts[3]), std::move(texts[4])};
}

std::vector<Item> readLayer(std::u16string_view name) {
  std::vector<Item> items;
  const SelectionSet set(u"_X", acutBuildList(8, name, RTNONE));
  for (int i = 0; i < set.size(); ++i) {
    const Opened<AcDbEntity> entity(set[i]);
    if (auto* reference = entity.as<AcDbBlockReference>()) {
      items.push_back({readBlock(*reference), {}});
    } else if (auto* polyline = entity.as<AcDb3dPolyline>()) {
      Chain data(polyline->xData(app::kSchema));
      if (!data) continue;
      AcGePoint3dArray points;
      ReadVertices(polyline, points);
      if (!points.empty()) items.push_back({{}, Polyline{std::move(points), std::move(data)}});
    }
  }
  return items;
}

// A node where a reservoir stands would give one pipe end two names. Heights do not matter here.
bool hasCoincidentNodes(const std::vector<Item>& items) {
  const auto inPlan = [](const AcGePoint3d& p) { return AcGePoint3d(p.x, p.y, 0); };
  PointGrid<bool> nodes(kPlaceTolerance);
  for (const Item& item : items) {
    if (item.block && !item.block->name.empty()) nodes.add(inPlan(item.block->position), true);
  }
  bool found = false;
  for (const Item& item : items) {
    if (!item.block || item.block->head.empty()) continue;
    nodes.visit(inPlan(item.block->position), [&](bool) {
      found = true;
      return false;
    });
    if (found) break;
  }
  return found;
}

// Names by place, for the ends of pipes; of several at one place the last in drawing order wins.
class NamedPlaces {
 public:
  explicit NamedPlaces(const std::vector<Item>& items) {
    for (const Item& item : items) {
      if (!item.block) continue;
      add(item.block->position, item.block->name);
      add(item.block->position, item.block->tankName);
    }
  }
  bool empty() const { return names_.empty(); }
  // Puts the name at the point into `name`, or leaves it when there is none.
  void take(const AcGePoint3d& point, wide256& name) {
    std::size_t last = 0;
    grid_.visit(point, [&](std::size_t number) {
      last = std::max(last, number);
      return false;
    });
    if (last > 0) name = names_[last - 1];
  }

 private:
  // A later name at exactly the same point hides the earlier one for good, so that a heap of blocks
  // at one point costs no more than one.
  void add(const AcGePoint3d& point, std::u16string_view name) {
    if (name.empty()) return;
    grid_.visit(point, [&](std::size_t number) {
      const AcGePoint3d& p = points_[number - 1];
      return p.x == point.x && p.y == point.y && p.z == point.z;
    });
    names_.push_back(name);
    points_.push_back(point);
    grid_.add(point, names_.size());
  }

  PointGrid<std::size_t> grid_{kPlaceTolerance};  // numbers of names, from 1
  std::vector<std::u16string_view> names_;
  std::vector<AcGePoint3d> points_;
};

// Turns the items into records. The working records are not emptied between items: what an item
// lacks it takes from the one before, which is what programs that read these files have always got.
class Collector {
 public:
  Collector(SchematicNetwork& network, NamedPlaces& places, int formula)
      : network_(network), places_(places), formula_(formula) {
    pipe_.status = u"Open";
  }

  std::optional<NoticeCode> take(const Block& block) {
    if (!block.name.empty()) {
      junc_.id = block.name;
      if (!block.elev.empty()) junc_.elev = block.elev;
      if (!block.demand.empty()) junc_.demand = block.demand;
    }
    if (!block.head.empty()) {
      if (block.tankName.empty()) {
        return NoticeCode::reservoirWithoutName;
      }
      resv_.head = block.head;
      resv_.id = block.tankName;
      network_.coords.push_back(coordOf(block.tankName, block.position));
      network_.resvs.push_back(resv_);
    } else if (!block.name.empty()) {
      network_.coords.push_back(coordOf(block.name, block.position));
      network_.juncs.push_back(junc_);
    }
    return std::nullopt;
  }

  std::optional<NoticeCode> take(const Polyline& polyline) {
    const resbuf* const size = polyline.data.item(schema::schematic::kSize);
    const resbuf* const loss = polyline.data.item(schema::schematic::kLoss);
    const resbuf* const id = polyline.data.item(schema::schematic::kPipeName);
    if (!id || acutKindOf(id->restype) != RbKind::text) {
      return NoticeCode::pipeWithoutName;
    }
    pipe_.id = id->resval.rstring ? id->resval.rstring : u"";
    storeReal(pipe_.length, axis(size, 0));
    storeReal(pipe_.diameter, axis(size, 1) * 1000);  // m to mm
    // For Darcy-Weisbach the roughness is a height in m here and in mm in the file.
    const double roughness = axis(loss, 0);
    storeReal(pipe_.roughness, formula_ == 0 ? roughness * 1000 : roughness);
    storeReal(pipe_.minorLoss, axis(loss, 1));
    for (const AcGePoint3d& point : polyline.points) {
      network_.vertices.push_back(coordOf(pipe_.id, point));
    }
    places_.take(polyline.points.front(), pipe_.node1);
    places_.take(polyline.points.back(), pipe_.node2);
    if (!places_.empty()) network_.pipes.push_back(pipe_);
    return std::nullopt;
  }

 private:
  static double axis(const resbuf* node, int which) {
    return acutKindOf(node->restype) == RbKind::point ? node->resval.rpoint[which] : 0;
  }

  SchematicNetwork& network_;
  NamedPlaces& places_;
  const int formula_;
  EpaJunc junc_;
  EpaResv resv_;
  EpaPipe pipe_;
};

}  // namespace

std::optional<NoticeCode> collectSchematicNetwork(std::u16string_view name, int formula,
                                                  SchematicNetwork& network) {
  const std::vector<Item> items = readLayer(name);
  if (hasCoincidentNodes(items)) return NoticeCode::coincidentNodes;
  NamedPlaces places(items);
  Collector collector(network, places, formula);
  for (const Item& item : items) {
    const auto fault = item.block ? collector.take(*item.block) : collector.take(*item.polyline);
    if (fault) return fault;
  }
  return std::nullopt;
}

}  // namespace vessora
