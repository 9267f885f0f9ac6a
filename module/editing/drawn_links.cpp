#include "module/editing/drawn_links.h"

#include <optional>

#include "module/network/settings_store.h"

namespace vessora {

std::u16string nameOf(AcDbEntity& entity) {
  const Chain data(entity.xData(app::kImport));
  std::u16string name(data.text(1));
  if (name.empty() && entity.isKindOf(AcDbBlockReference::desc())) {
    ReadAttribute(static_cast<AcDbBlockReference*>(&entity), schema::kIdTag, name);
  }
  return name;
}

std::u16string joined(const std::vector<std::u16string>& names) {
  std::u16string all;
  for (const std::u16string& name : names) all += (all.empty() ? u"" : u", ") + name;
  return all;
}

void warnOfTracing(std::u16string_view network, std::u16string_view node, Notices& warnings) {
  EpaSettings settings;
  if (LoadSettings(settings, network) && settings.traceNode == node) {
    warnings.push_back({NoticeCode::traceNodeGone, std::u16string(node)});
  }
}

// --- by place ------------------------------------------------------------------------------------

namespace {

std::vector<AcDbObjectId> blocksAt(resbuf* filter, const AcGePoint3d& place) {
  std::vector<AcDbObjectId> found;
  for (const AcDbObjectId id : SelectionSet(u"_X", filter)) {
    const Opened<AcDbBlockReference> block(id);
    if (block && samePlanPoint(block->position(), place, kPlaceTolerance)) found.push_back(id);
  }
  return found;
}

}  // namespace

std::vector<AcDbObjectId> nodesAt(const NetworkLayers& layers, const AcGePoint3d& place) {
  return blocksAt(nodeBlockFilter(layers), place);
}

std::vector<AcDbObjectId> arrowsAt(std::u16string_view network, const AcGePoint3d& place) {
  std::vector<AcDbObjectId> found;
  for (const char16_t* prefix : {layer::kFlowIn, layer::kFlowOut}) {
    for (const AcDbObjectId id :
         blocksAt(blocksOnLayerFilter(schema::layerName(prefix, network)), place)) {
      found.push_back(id);
    }
  }
  return found;
}

// --- halves of valves and pumps ------------------------------------------------------------------

namespace {

struct Half {
  std::u16string layer, name;
  std::optional<AcGePoint3d> place;  // where the block stands, or should stand
  bool course = false;
};

std::optional<Half> halfOf(AcDbObjectId id) {
  const Opened<AcDbEntity> entity(id);
  Half half;
  if (auto* polyline = entity.as<AcDb3dPolyline>()) {
    half.course = true;
    AcGePoint3dArray points;
    ReadVertices(polyline, points);
    AcGePoint3d place;
    if (linkBlockPlace(points, place)) half.place = place;
  } else if (auto* block = entity.as<AcDbBlockReference>()) {
    half.place = block->position();
  } else {
    return {};
  }
  half.layer = entity->layer();
  half.name = nameOf(*entity.get());
  return half;
}

// The one that fits best, null when two fit equally well.
AcDbObjectId bestFor(const Half& half) {
  resbuf* const others = half.course ? blocksOnLayerFilter(half.layer)
                                     : acutBuildList(RTDXF0, u"POLYLINE", 8, half.layer, RTNONE);
  AcDbObjectId best;
  int bestFit = 0;
  for (const AcDbObjectId id : SelectionSet(u"_X", others)) {
    const std::optional<Half> other = halfOf(id);
    if (!other || other->course == half.course || other->layer != half.layer) continue;
    const bool named = other->name == half.name;
    const bool placed =
        half.place && other->place && samePlanPoint(*half.place, *other->place, kPlaceTolerance);
    const int fit = named && placed ? 3 : named ? 2 : placed ? 1 : 0;
    if (fit > bestFit) {
      bestFit = fit;
      best = id;
    } else if (fit == bestFit && fit < 3) {
      best.setNull();
    }
  }
  return best;
}

}  // namespace

AcDbObjectId companionOf(AcDbObjectId id) {
  const std::optional<Half> half = halfOf(id);
  if (!half) return {};
  const AcDbObjectId other = bestFor(*half);
  if (other.isNull()) return {};
  // What fits another half better belongs to that one.
  const std::optional<Half> back = halfOf(other);
  const AcDbObjectId its = bestFor(*back);
  return its == id ? other : AcDbObjectId();
}

}  // namespace vessora
