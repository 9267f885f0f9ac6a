#include "module/inp/full_import.h"

#include "module/host/module.h"
#include "module/inp/full_form.h"
#include "module/inp/full_settings.h"
#include "module/inp/symbol_scale.h"
#include "module/inp/symbols.h"
#include "module/network/element_data.h"
#include "module/network/pattern_curve_store.h"
#include "module/network/schema.h"
#include "module/network/settings_store.h"
#include "platform/beside.h"
#include "platform/format.h"
#include "platform/text.h"

namespace vessora {
namespace {

using epanet::kNone;
using epanet::LinkKind;
using epanet::NodeKind;

// A symbol whose place nobody has given has this colour until it is moved.
constexpr int kPlacedByUs = 30;
constexpr std::size_t kNamed = 5;

class Drawing {
 public:
  explicit Drawing(const FullFile& file) : form_(file.network), network_(file.network) {}

  double fittingScale() const {
    std::vector<double> lengths;
    lengths.reserve(network_.links.size());
    AcGePoint3dArray points;
    for (std::uint32_t i = 0; i < network_.links.size(); ++i) {
      form_.course(i, points);
      lengths.push_back(planLength(points));
    }
    return vessora::fittingScale(std::move(lengths));
  }

  void drawElements(ImportResult& result) {
    drawNodes<EpaJunc>(NodeKind::junction, result.kinds[0]);
    drawNodes<EpaResv>(NodeKind::reservoir, result.kinds[1]);
    drawNodes<EpaTank>(NodeKind::tank, result.kinds[2]);
    drawLinks<EpaPipe>(LinkKind::pipe, result.kinds[3]);
    drawLinks<EpaPump>(LinkKind::pump, result.kinds[4]);
    drawLinks<EpaValv>(LinkKind::valve, result.kinds[5]);
    if (placed_ > 0) {
      const std::u16string more = placed_ > static_cast<int>(kNamed) ? u", ..." : u"";
      result.reading.push_back(
          {NoticeCode::nodesPlaced, placedNames_ + more, platform::format(u"%d", placed_)});
    }
  }

  void storeTables() {
    for (std::uint32_t i = 0; i < network_.patterns.size(); ++i) {
      AddPattern(form_.pattern(i), currentNetwork);
    }
    for (std::uint32_t i = 0; i < network_.curves.size(); ++i) {
      AddCurve(form_.curve(i), currentNetwork);
    }
  }

  const FullForm& form() const { return form_; }

 private:
  template <class Record>
  void drawNodes(NodeKind kind, DrawnKind& drawn) {
    const std::u16string layer = layerOf<Record>();
    struct Node {
      std::uint32_t index;
      Record record;
      AcGePoint3d place;
    };
    const auto fill = [this](Node& node) {
      form_.fill(node.index, node.record);
      node.place = form_.placeOf(node.index);
    };
    drawAll<Node>(network_.nodes, kind, fill, [&](const Node& node) {
      AcDbObjectId made;
      drawn.drawn += insert(node.place, layer, node.record, drawn.notices, made);
      if (form_.isPlacedByUs(node.index)) markPlaced(node.index, made);
    });
  }

  // Draws the elements of a kind. What they look like is worked out beside, without the drawing.
  template <class Item, class Element, class Kind, class Fill, class Draw>
  void drawAll(const std::vector<Element>& elements, Kind kind, Fill fill, Draw draw) {
    const auto make = [&, next = std::uint32_t{0}](Item& item) mutable {
      while (next < elements.size() && elements[next].kind != kind) ++next;
      if (next == elements.size()) return false;
      item.index = next++;
      fill(item);
      return true;
    };
    platform::Stages<Item>::makeBeside(make, draw);
  }

  static int insert(const AcGePoint3d& place, std::u16string_view layer, const EpaJunc& junction,
                    Notices& notices, AcDbObjectId& made) {
    return InsertJunc(place, layer, junction, platform::wtof(junction.emitter), notices, &made,
                      junction.id);
  }
  static int insert(const AcGePoint3d& place, std::u16string_view layer, const EpaResv& reservoir,
                    Notices& notices, AcDbObjectId& made) {
    return InsertResv(place, layer, reservoir, notices, &made, reservoir.id);
  }
  static int insert(const AcGePoint3d& place, std::u16string_view layer, const EpaTank& tank,
                    Notices& notices, AcDbObjectId& made) {
    return InsertTank(place, layer, tank, notices, &made, tank.id);
  }

  void markPlaced(std::uint32_t node, AcDbObjectId id) {
    if (const Opened<AcDbBlockReference> symbol(id, AcDb::kForWrite); symbol) {
      symbol->setColorIndex(kPlacedByUs);
    }
    if (placed_++ < static_cast<int>(kNamed)) {
      if (!placedNames_.empty()) placedNames_ += u", ";
      placedNames_ += form_.nodeName(node);
    }
  }

  template <class Record>
  void drawLinks(LinkKind kind, DrawnKind& drawn) {
    const std::u16string layer = layerOf<Record>();
    struct Link {
      std::uint32_t index;
      Record record;
      AcGePoint3dArray points;
    };
    const auto fill = [this](Link& link) {
      form_.fill(link.index, link.record);
      form_.course(link.index, link.points);
    };
    drawAll<Link>(network_.links, kind, fill, [&](const Link& link) {
      drawn.drawn += drawLink(layer, link.record, link.points, drawn.notices);
    });
  }

  static bool drawLink(std::u16string_view layer, const EpaPipe& pipe,
                       const AcGePoint3dArray& points, Notices&) {
    const Chain data = withTie(dataOf(pipe), pipe.id);
    return HNGeometry::Create3Dpoly(points, schema::kPipe.color, layer, 0, data.get()).isValid();
  }
  template <class Link>
  static bool drawLink(std::u16string_view layer, const Link& link, const AcGePoint3dArray& points,
                       Notices& notices) {
    const Chain course = withTie(companionData(link.id), link.id);
    const bool drawn =
        HNGeometry::Create3Dpoly(points, kindOf<Link>().color, layer, 0, course.get()).isValid();
    AcGePoint3d place;
    if (!linkBlockPlace(points, place)) return drawn;
    const Chain data = withTie(dataOf(link), link.id);
    if constexpr (std::is_same_v<Link, EpaPump>) {
      InsertPump(place, layer, link, data, notices);
    } else {
      InsertValv(place, layer, link, data, notices);
    }
    return drawn;
  }

  template <class Record>
  static std::u16string layerOf() {
    const std::u16string name = schema::layerName(kindOf<Record>().layer, currentNetwork);
    HNGeometry::createNewLayer(name);
    HNGeometry::setColorLtypeLayer(name, kindOf<Record>().color, u"ByLayer");
    return name;
  }

  FullForm form_;
  const epanet::Network& network_;
  int placed_ = 0;
  std::u16string placedNames_;
};

}  // namespace

void examineFullFile(const FullFile& file, InpFindings& found) {
  const epanet::Network& n = file.network;
  found.full = true;
  found.utf8 = file.document.isUtf8();
  found.problems = n.problems;
  for (const epanet::Node& node : n.nodes) {
    ++(node.kind == NodeKind::junction    ? found.counts.junctions
       : node.kind == NodeKind::reservoir ? found.counts.reservoirs
                                          : found.counts.tanks);
    if (node.x.at) ++found.coordinates;
  }
  for (const epanet::Link& link : n.links) {
    ++(link.kind == LinkKind::pipe   ? found.counts.pipes
       : link.kind == LinkKind::pump ? found.counts.pumps
                                     : found.counts.valves);
  }
  found.drawn = static_cast<std::int64_t>(n.nodes.size() + n.links.size() + n.vertices.size());
}

ImportResult drawFullFile(const FullFile& file, std::u16string_view name,
                          std::optional<double> scale) {
  ImportResult result;
  for (const char16_t* application :
       {app::kImport, app::kSettings, app::kPattern, app::kCurve, app::kKept}) {
    acdbRegApp(application);
  }
  std::vector<std::u16string> names;
  wide256 defaultName;
  ListNetworks(names, defaultName);
  currentNetwork = name;
  Drawing drawing(file);
  EpaSettings settings;
  fillSettings(drawing.form(), settings);
  settings.name = currentNetwork;
  // The first network of a drawing is its default one.
  if (names.empty()) settings.isDefault = 1;
  SaveSettings(settings, true);
  result.scale = scale ? *scale : drawing.fittingScale();
  useSymbolScale(currentNetwork, result.scale);
  drawing.drawElements(result);
  drawing.storeTables();
  if (!saveKeptText(currentNetwork, file.packed.get())) {
    result.reading.push_back({NoticeCode::textNotKept, currentNetwork.str()});
  }
  return result;
}

}  // namespace vessora
