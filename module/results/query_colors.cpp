#include "module/results/query_colors.h"

#include <array>
#include <map>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "module/host/tell.h"
#include "module/host/translate.h"
#include "module/inp/symbols.h"
#include "module/network/element_data.h"
#include "module/results/query_rows.h"
#include "platform/format.h"
#include "platform/text.h"

namespace vessora {

namespace {

constexpr int kByLayer = 256, kOrange = 40, kRed = 1;

resbuf* everyElement() { return acutBuildList(1001, app::kImport, RTNONE); }

void paint(AcDbEntity& entity, int color) {
  if (entity.upgradeOpen() == Acad::eOk) entity.setColorIndex(color);
}

// --- filtered elements and reset -----------------------------------------------------------------

using Names = std::unordered_set<std::u16string_view>;

Names namesOf(const std::vector<QueryRow>& rows, const QueryFilter& filter, bool all) {
  Names names;
  names.reserve(all ? rows.size() : filter.size());
  if (all) {
    for (const QueryRow& row : rows) names.insert(row.id);
  } else {
    for (const std::uint32_t i : filter) names.insert(rows[i].id);
  }
  return names;
}

class Marker {
 public:
  Marker(const NetworkLayers& layers, const NetworkQuery& query)
      : layers_(layers),
        reset_(query.resetColors),
        nodes_(namesOf(query.nodes, query.filteredNodes, reset_)),
        links_(namesOf(query.links, query.filteredLinks, reset_)) {}

  void mark(AcDb3dPolyline& polyline) const {
    EpaLinkResult record;
    ReadPolylineLinkResult(record, &polyline);
    if (links_.count(record.id)) paint(polyline, reset_ ? kByLayer : kOrange);
  }

  void mark(AcDbBlockReference& block) const {
    const std::u16string layer = block.layer();
    if (layer == layers_.junc || layer == layers_.resv || layer == layers_.tank) {
      EpaNodeResult record;
      ReadNodeResult(record, &block);
      if (nodes_.count(record.id)) paint(block, reset_ ? nodeColor(block) : kOrange);
    } else if (layer == layers_.valv || layer == layers_.pump) {
      EpaLinkResult record;
      ReadBlockLinkResult(record, &block);
      if (links_.count(record.id)) paint(block, reset_ ? kByLayer : kOrange);
    }
  }

 private:
  // A junction with an emitter is red; a reservoir has a 0 in that place and a tank no number.
  static int nodeColor(const AcDbBlockReference& block) {
    const Chain data(block.xData(app::kImport));
    return realAt(data, schema::kJunc.data, schema::Field::emitter) == 0 ? kByLayer : kRed;
  }

  const NetworkLayers& layers_;
  bool reset_;
  Names nodes_, links_;
};

void markElements(const NetworkLayers& layers, const NetworkQuery& query) {
  const Marker marker(layers, query);
  for (const AcDbObjectId id : SelectionSet(u"_X", everyElement())) {
    const Opened<AcDbEntity> entity(id);
    if (auto* polyline = entity.as<AcDb3dPolyline>()) marker.mark(*polyline);
    if (auto* block = entity.as<AcDbBlockReference>()) marker.mark(*block);
  }
}

// --- classes -------------------------------------------------------------------------------------

// The polylines that go with the blocks of valves and pumps, by layer and name.
class Companions {
 public:
  // The first polyline of the name on the layer, or else the last one of the layer, which is where
  // a search for it ends; null on a layer without polylines.
  AcDbObjectId find(const std::u16string& layer, const std::u16string& name) {
    auto at = layers_.find(layer);
    if (at == layers_.end()) at = layers_.emplace(layer, read(layer)).first;
    const auto found = at->second.byName.find(name);
    return found == at->second.byName.end() ? at->second.last : found->second;
  }

 private:
  struct Layer {
    std::unordered_map<std::u16string, AcDbObjectId> byName;
    AcDbObjectId last;
  };
  static Layer read(const std::u16string& name) {
    Layer layer;
    for (const AcDbObjectId id : SelectionSet(u"_X", elementPolylineFilter(name))) {
      const Opened<AcDb3dPolyline> polyline(id);
      if (!polyline) continue;
      layer.byName.try_emplace(std::u16string(Chain(polyline->xData(app::kImport)).text(1)), id);
      layer.last = id;
    }
    return layer;
  }
  std::map<std::u16string, Layer> layers_;
};

ColorClasses classesOf(const std::vector<QueryRow>& rows, std::size_t value, int count) {
  std::vector<double> values;
  values.reserve(rows.size());
  for (const QueryRow& row : rows) values.push_back(platform::wtof(row.values[value]));
  return ColorClasses::of(values, count);
}

void colorNodes(const ColorClasses& classes, const wide50 EpaNodeResult::*field) {
  for (const AcDbObjectId id : SelectionSet(u"_X", everyElement())) {
    const Opened<AcDbBlockReference> block(id);
    EpaNodeResult record;
    if (!block || !ReadNodeResult(record, block.get())) continue;
    const int index = classes.find(platform::wtof(record.*field));
    if (index >= 0) paint(*block, classes.color(index));
  }
}

// A block has been painted: its course gets the same colour.
void colorCompanion(Opened<AcDbBlockReference> block, int color, Companions& companions) {
  std::u16string name;
  ReadAttribute(block.get(), schema::kIdTag, name);
  const std::u16string layer = block->layer();
  block.close();
  if (const Opened<AcDb3dPolyline> polyline(companions.find(layer, name)); polyline) {
    paint(*polyline, color);
  }
}

void colorLinks(const ColorClasses& classes, const wide50 EpaLinkResult::*field) {
  Companions companions;
  for (const AcDbObjectId id : SelectionSet(u"_X", everyElement())) {
    EpaLinkResult record;
    if (const Opened<AcDb3dPolyline> polyline(id); polyline) {
      if (!ReadPolylineLinkResult(record, polyline.get())) continue;
      const int index = classes.find(platform::wtof(record.*field));
      if (index >= 0) paint(*polyline, classes.color(index));
    } else if (Opened<AcDbBlockReference> block(id); block) {
      if (!ReadBlockLinkResult(record, block.get())) continue;
      const int index = classes.find(platform::wtof(record.*field));
      if (index < 0) continue;
      paint(*block, classes.color(index));
      colorCompanion(std::move(block), classes.color(index), companions);
    }
  }
}

// --- legends -------------------------------------------------------------------------------------

// Where the legend of this kind and title goes; false when the user refuses to say.
bool placeOfLegend(std::u16string_view title, AcGePoint3d& point, int kind) {
  if (TakeColorLegend(title, point, kind)) return true;
  AcGePoint3d picked;
  if (acedGetPoint(nullptr, TraduciTesto(u"\nSelezionare un punto..."), picked) != RTNORM) {
    return false;
  }
  return acdbUcs2Wcs(picked, point, false);
}

void placeLegend(const ColorClasses& classes, const char16_t* words, int kind) {
  const std::u16string title = TraduciTesto(words);
  AcGePoint3d point;
  if (placeOfLegend(title, point, kind)) InsertClassLegend(classes, title, point, kind);
}

}  // namespace

bool TakeColorLegend(std::u16string_view title, AcGePoint3d& point, int kind) {
  bool found = false;
  for (const AcDbObjectId id : SelectionSet(u"_X", acutBuildList(1001, app::kColor, RTNONE))) {
    const Opened<AcDbBlockReference> legend(id);
    if (!legend) continue;
    const Chain data(legend->xData(app::kColor));
    if (realAt(data, schema::kLegend, schema::Field::kind) != kind) continue;
    if (textAt(data, schema::kLegend, schema::Field::title) == title) {
      point = legend->position();
      found = true;
    }
    if (legend->upgradeOpen() == Acad::eOk) legend->erase(true);
  }
  return found;
}

void InsertClassLegend(const ColorClasses& classes, std::u16string_view title,
                       const AcGePoint3d& point, int kind) {
  if (classes.count != 5 && classes.count != 10) return;
  std::array<std::u16string, 10> labels;
  std::size_t i = 0;
  classes.forEach([&](double lower, double upper) {
    labels[i++] = platform::format(u"%.3lf ÷ %.3lf", lower, upper);
  });
  Notices notices;
  InsertLegend(point, title, labels, kind, notices);
  tell(notices);
}

void applyQueryColors(const NetworkLayers& layers, const NetworkQuery& query) {
  if (query.colorFiltered || query.resetColors) markElements(layers, query);
  if (query.resetColors) return;
  if (query.nodeColorBy == 1 || query.nodeColorBy == 2) {
    const bool pressure = query.nodeColorBy == 1;
    const ColorClasses classes = classesOf(query.nodes, pressure ? 2 : 0, query.classCount);
    colorNodes(classes, pressure ? &EpaNodeResult::pressure : &EpaNodeResult::demand);
    placeLegend(classes, pressure ? u"Pressione dei nodi [m]" : u"Portata ai nodi [l/s]",
                kNodeLegend);
  }
  if (query.linkColorBy == 1 || query.linkColorBy == 2) {
    const bool flow = query.linkColorBy == 1;
    const ColorClasses classes = classesOf(query.links, flow ? 0 : 1, query.classCount);
    colorLinks(classes, flow ? &EpaLinkResult::flow : &EpaLinkResult::velocity);
    placeLegend(classes, flow ? u"Portata dei rami [l/s]" : u"Velocità nei rami [m/s]",
                kLinkLegend);
  }
}

}  // namespace vessora
