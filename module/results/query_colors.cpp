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
#include "module/inp/symbol_scale.h"
#include "module/inp/symbols.h"
#include "module/network/element_data.h"
#include "module/results/drawing_jobs.h"
#include "module/results/query_rows.h"
#include "platform/decimals.h"
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

Names namesOf(const std::vector<QueryRow>& rows) {
  Names names;
  names.reserve(rows.size());
  for (const QueryRow& row : rows) names.insert(row.id);
  return names;
}

class Marker {
 public:
  Marker(std::u16string_view network, const QueryRows& rows, bool reset)
      : layers_(network), reset_(reset), nodes_(namesOf(rows.nodes)), links_(namesOf(rows.links)) {}

  Notices markAll() {
    for (const AcDbObjectId id : SelectionSet(u"_X", everyElement())) {
      const Opened<AcDbEntity> entity(id);
      if (auto* polyline = entity.as<AcDb3dPolyline>()) mark(*polyline);
      if (auto* block = entity.as<AcDbBlockReference>()) mark(*block);
    }
    return std::move(notices_);
  }

 private:
  void mark(AcDb3dPolyline& polyline) const {
    EpaLinkResult record;
    ReadPolylineLinkResult(record, &polyline);
    if (links_.count(record.id)) paint(polyline, reset_ ? kByLayer : kOrange);
  }

  void mark(AcDbBlockReference& block) {
    const std::u16string layer = block.layer();
    if (layer == layers_.junc || layer == layers_.resv || layer == layers_.tank) {
      EpaNodeResult record;
      ReadNodeResult(record, &block, notices_);
      if (nodes_.count(record.id)) paint(block, reset_ ? nodeColor(block) : kOrange);
    } else if (layer == layers_.valv || layer == layers_.pump) {
      EpaLinkResult record;
      ReadBlockLinkResult(record, &block, notices_);
      if (links_.count(record.id)) paint(block, reset_ ? kByLayer : kOrange);
    }
  }

  // A junction with an emitter is red; a reservoir has a 0 in that place and a tank no number.
  static int nodeColor(const AcDbBlockReference& block) {
    const Chain data(block.xData(app::kImport));
    return realAt(data, schema::kJunc.data, schema::Field::emitter) == 0 ? kByLayer : kRed;
  }

  const NetworkLayers layers_;
  const bool reset_;
  const Names nodes_, links_;
  Notices notices_;
};

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

// What elements can be coloured by: the field of a node's or of a link's results.
struct Colored {
  Quantity quantity;
  wide50 EpaNodeResult::*ofNode;
  wide50 EpaLinkResult::*ofLink;
  const char16_t* title;  // of the legend
  int legend() const { return ofNode ? kNodeLegend : kLinkLegend; }
};
constexpr Colored kColored[] = {
    {Quantity::pressure, &EpaNodeResult::pressure, nullptr, u"Pressione dei nodi [m]"},
    {Quantity::demand, &EpaNodeResult::demand, nullptr, u"Portata ai nodi [l/s]"},
    {Quantity::flow, nullptr, &EpaLinkResult::flow, u"Portata dei rami [l/s]"},
    {Quantity::velocity, nullptr, &EpaLinkResult::velocity, u"Velocità nei rami [m/s]"},
};
const Colored* coloredBy(Quantity quantity) {
  for (const Colored& row : kColored) {
    if (row.quantity == quantity) return &row;
  }
  return nullptr;
}

ColorClasses classesOf(const QueryRows& rows, Quantity quantity, int count) {
  std::vector<double> values;
  for (const QueryRow& row : isOfNodes(quantity) ? rows.nodes : rows.links) {
    values.push_back(platform::wtof(row.values[placeOf(quantity)]));
  }
  return ColorClasses::of(values, count);
}

// Paints an element by its value; the class, or -1.
int paintByClass(AcDbEntity& entity, const ColorClasses& classes, const wide50& value) {
  const int index = classes.find(platform::wtof(value));
  if (index >= 0) paint(entity, classes.color(index));
  return index;
}

void colorNodes(const ColorClasses& classes, wide50 EpaNodeResult::*field, ColorResult& result) {
  for (const AcDbObjectId id : SelectionSet(u"_X", everyElement())) {
    const Opened<AcDbBlockReference> block(id);
    EpaNodeResult record;
    if (!block || !ReadNodeResult(record, block.get(), result.notices)) continue;
    if (paintByClass(*block, classes, record.*field) >= 0) ++result.painted;
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

void colorLinks(const ColorClasses& classes, wide50 EpaLinkResult::*field, ColorResult& result) {
  Companions companions;
  for (const AcDbObjectId id : SelectionSet(u"_X", everyElement())) {
    EpaLinkResult record;
    if (const Opened<AcDb3dPolyline> polyline(id); polyline) {
      if (!ReadPolylineLinkResult(record, polyline.get())) continue;
      if (paintByClass(*polyline, classes, record.*field) >= 0) ++result.painted;
    } else if (Opened<AcDbBlockReference> block(id); block) {
      if (!ReadBlockLinkResult(record, block.get(), result.notices)) continue;
      const int index = paintByClass(*block, classes, record.*field);
      if (index < 0) continue;
      ++result.painted;
      colorCompanion(std::move(block), classes.color(index), companions);
    }
  }
}

ColorResult colorElements(const ColorClasses& classes, const Colored& by) {
  ColorResult result;
  if (by.ofNode) {
    colorNodes(classes, by.ofNode, result);
  } else {
    colorLinks(classes, by.ofLink, result);
  }
  return result;
}

// --- the user's wish -----------------------------------------------------------------------------

// The scale of a new legend. The classic way draws it as it is.
double legendScale(std::u16string_view network) {
  return inpIsFull() ? fittingLegendScale(network) : 1;
}

// Where the legend of this kind and title goes, in place of an older one and then as large, where
// somebody may have chosen both; false when the user refuses to say.
bool placeOfLegend(std::u16string_view title, AcGePoint3d& point, int kind, double& scale) {
  double older = scale;
  if (TakeColorLegend(title, point, kind, &older)) {
    if (inpIsFull()) scale = older;
    return true;
  }
  AcGePoint3d picked;
  if (acedGetPoint(nullptr, TraduciTesto(u"\nSelezionare un punto..."), picked) != RTNORM) {
    return false;
  }
  return acdbUcs2Wcs(picked, point, false);
}

void colorPicked(std::u16string_view network, const NetworkQuery& query, Quantity quantity) {
  const Colored* const by = coloredBy(quantity);
  if (!by) return;
  const ColorClasses classes = classesOf(query, quantity, query.classCount);
  tell(colorElements(classes, *by).notices);
  const std::u16string title = TraduciTesto(by->title);
  AcGePoint3d point;
  double scale = legendScale(network);
  if (!placeOfLegend(title, point, by->legend(), scale)) return;
  Notices notices;
  InsertClassLegend(classes, title, point, by->legend(), scale, notices);
  tell(notices);
}

}  // namespace

bool TakeColorLegend(std::u16string_view title, AcGePoint3d& point, int kind, double* scale) {
  bool found = false;
  for (const AcDbObjectId id : SelectionSet(u"_X", acutBuildList(1001, app::kColor, RTNONE))) {
    const Opened<AcDbBlockReference> legend(id);
    if (!legend) continue;
    const Chain data(legend->xData(app::kColor));
    if (realAt(data, schema::kLegend, schema::Field::kind) != kind) continue;
    if (textAt(data, schema::kLegend, schema::Field::title) == title) {
      point = legend->position();
      if (scale) *scale = legend->scaleFactors().sx;
      found = true;
    }
    if (legend->upgradeOpen() == Acad::eOk) legend->erase(true);
  }
  return found;
}

void InsertClassLegend(const ColorClasses& classes, std::u16string_view title,
                       const AcGePoint3d& point, int kind, double scale, Notices& notices) {
  if (classes.count != 5 && classes.count != 10) return;
  std::array<std::u16string, 10> labels;
  std::size_t i = 0;
  classes.forEach([&](double lower, double upper) {
    labels[i++] = platform::threeDecimals(lower) + u" ÷ " + platform::threeDecimals(upper);
  });
  InsertLegend(point, title, labels, kind, scale, notices);
}

Notices highlightElements(std::u16string_view network, const QueryRows& rows) {
  return Marker(network, rows, false).markAll();
}

Notices resetColors(std::u16string_view network, const QueryRows& rows) {
  return Marker(network, rows, true).markAll();
}

ValueClasses classesOf(const std::vector<double>& values, int count) {
  ValueClasses result;
  if (values.empty() || (count != 5 && count != 10)) return result;
  const ColorClasses classes = ColorClasses::of(values, count);
  classes.forEach([&](double lower, double upper) {
    const int color = classes.color(static_cast<int>(result.classes.size()));
    result.classes.push_back({lower, upper, color});
  });
  return result;
}

ColorResult colorNetwork(std::u16string_view network, const ColorRequest& request) {
  const Colored* const by = coloredBy(request.quantity);
  if (!by || (request.classCount != 5 && request.classCount != 10)) return {};
  acdbRegApp(app::kColor);
  Notices again;  // what is found here is found once more when elements are painted
  const QueryRows rows = rowsOfNetwork(NetworkLayers(network), again);
  const ColorClasses classes = classesOf(rows, request.quantity, request.classCount);
  ColorResult result = colorElements(classes, *by);
  const std::u16string title = TraduciTesto(by->title);
  AcGePoint3d older;
  TakeColorLegend(title, older, by->legend());
  InsertClassLegend(classes, title, request.legend, by->legend(), legendScale(network),
                    result.notices);
  return result;
}

void applyQueryColors(std::u16string_view network, const NetworkQuery& query) {
  if (query.resetColors) return tell(resetColors(network, query));
  if (query.colorFiltered) {
    tell(highlightElements(
        network,
        {rowsAt(query.nodes, query.filteredNodes), rowsAt(query.links, query.filteredLinks), {}}));
  }
  const auto chosen = [](int choice, Quantity first, Quantity second) {
    return choice == 1 ? first : choice == 2 ? second : Quantity::none;
  };
  colorPicked(network, query, chosen(query.nodeColorBy, Quantity::pressure, Quantity::demand));
  colorPicked(network, query, chosen(query.linkColorBy, Quantity::flow, Quantity::velocity));
}

}  // namespace vessora
