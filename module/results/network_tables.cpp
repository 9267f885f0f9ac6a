#include "module/results/network_tables.h"

#include <utility>

#include "module/dialogs/elenco_reti.h"
#include "module/dialogs/tables.h"
#include "module/host/messages.h"
#include "module/host/tell.h"
#include "module/network/element_data.h"
#include "module/network/schema.h"
#include "module/results/drawing_jobs.h"

namespace vessora {

using schema::Field;

namespace {

constexpr double kTextHeight = 0.6;  // of the row height
constexpr int kDataTitle = 1, kResultTitle = 3;

// One run of the job.
class TableDrawer {
 public:
  TableDrawer(std::u16string_view network, const TableRequest& request)
      : asked_(request),
        layers_(network),
        pipeLayer_(schema::layerName(layer::kPipeTables, network)),
        linkLayer_(schema::layerName(layer::kLinkTables, network)),
        nodeLayer_(schema::layerName(layer::kNodeTables, network)) {}

  Notices draw() {
    makeLayer(pipeLayer_, 0);
    makeLayer(linkLayer_, 1);
    makeLayer(nodeLayer_, 1);
    if (asked_.pipes) drawPipes();
    if (asked_.links) drawLinks();
    if (asked_.nodes) drawNodes();
    return std::move(notices_);
  }

 private:
  static void makeLayer(std::u16string_view name, int color) {
    HNGeometry::createNewLayer(name, nullptr, nullptr, 256);
    HNGeometry::setColorLtypeLayer(name, color, u"ByLayer");
  }

  double rowHeight() const { return asked_.rowHeight; }
  double columnWidth() const { return asked_.columnWidth; }
  TablePlace at(const AcGePoint3d& position, std::u16string_view layer) const {
    return {position, rowHeight(), columnWidth(), layer};
  }
  void makeStyle(int titleColor) const {
    makeTableStyle(kTableStyle, kTextHeight * rowHeight(), titleColor);
  }
  static double value(bool wanted, double v) { return wanted ? v : kNoValue; }
  static std::u16string_view value(bool wanted, std::u16string_view v) {
    return wanted ? v : std::u16string_view(kNoText);
  }

  // The middle of a link; false for a polyline without vertices. `straight` tells of two vertices.
  static bool middle(AcDb3dPolyline* polyline, AcGePoint3d& point, bool& straight) {
    straight = CountVertices(polyline) == 2;
    if (!straight) return PolylineCentroid(polyline, point);
    AcGePoint3dArray ends;
    ReadVertices(polyline, ends);
    point = ends[0] + (ends[1] - ends[0]) * 0.5;
    return true;
  }

  void drawPipes() {
    const SelectionSet pipes(u"_X", acutBuildList(RTDXF0, u"POLYLINE", 8, layers_.pipe, RTNONE));
    for (const AcDbObjectId id : pipes) {
      const Opened<AcDbEntity> entity(id);
      auto* polyline = entity.as<AcDb3dPolyline>();
      AcGePoint3d point;
      bool straight;
      if (!polyline || !middle(polyline, point, straight)) continue;
      const Chain data(polyline->xData(app::kImport));
      if (!data) continue;
      const auto real = [&data](Field field) { return realAt(data, schema::kPipe.data, field); };
      const auto text = [&data](Field field) { return textAt(data, schema::kPipe.data, field); };
      makeStyle(kDataTitle);
      DrawPipeDataTable(kTableStyle, text(Field::id), value(asked_.length, real(Field::length)),
                        value(asked_.diameter, real(Field::diameter)),
                        value(asked_.roughness, real(Field::roughness)),
                        value(asked_.minorLoss, real(Field::minorLoss)),
                        value(asked_.pipeStatus, text(Field::status)), at(point, pipeLayer_),
                        notices_);
    }
  }

  void drawLinks() {
    const SelectionSet links(
        u"_X", acutBuildList(-4, u"<and", 1001, app::kLinkResult, -4, u"<or", 8, layers_.pipe, 8,
                             layers_.valv, 8, layers_.pump, -4, u"or>", -4, u"and>", RTNONE));
    for (const AcDbObjectId id : links) {
      const Opened<AcDbEntity> entity(id);
      AcGePoint3d point;
      std::u16string name;
      if (!linkPlace(entity, point, name)) continue;
      const Chain results(entity->xData(app::kLinkResult));
      const auto real = [&results](Field f) { return realAt(results, schema::kLinkResult, f); };
      const std::u16string_view status = textAt(results, schema::kLinkResult, Field::status);
      makeStyle(kResultTitle);
      DrawLinkResultTable(kTableStyle, name, value(asked_.flow, real(Field::flow)),
                          value(asked_.velocity, real(Field::velocity)),
                          value(asked_.headloss, real(Field::headloss)),
                          value(asked_.linkStatus, status), at(point, linkLayer_), notices_);
    }
  }

  // Where the result table of a link stands, and the link's name.
  bool linkPlace(const Opened<AcDbEntity>& entity, AcGePoint3d& point, std::u16string& name) const {
    if (auto* polyline = entity.as<AcDb3dPolyline>()) {
      bool straight;
      if (!middle(polyline, point, straight)) return false;
      // Clear of the table of the pipe's data, which a straight pipe has at the same point.
      if (straight) point = point + AcGeVector3d(-2 * columnWidth(), 5 * rowHeight(), 0);
      name = Chain(polyline->xData(app::kImport)).text(1);
      return true;
    }
    auto* block = entity.as<AcDbBlockReference>();
    if (!block) return false;
    point = block->position();
    ReadAttribute(block, schema::kIdTag, name);
    return true;
  }

  void drawNodes() {
    const SelectionSet nodes(
        u"_X", acutBuildList(-4, u"<and", 1001, app::kNodeResult, -4, u"<or", 8, layers_.junc, 8,
                             layers_.resv, 8, layers_.tank, -4, u"or>", -4, u"and>", RTNONE));
    for (const AcDbObjectId id : nodes) {
      const Opened<AcDbEntity> entity(id);
      auto* block = entity.as<AcDbBlockReference>();
      if (!block) continue;
      const AcGePoint3d point = block->position();
      std::u16string name;
      ReadAttribute(block, schema::kIdTag, name);
      const Chain results(block->xData(app::kNodeResult));
      const auto real = [&results](Field f) { return realAt(results, schema::kNodeResult, f); };
      const std::u16string_view quality = textAt(results, schema::kNodeResult, Field::quality);
      makeStyle(kResultTitle);
      DrawNodeResultTable(kTableStyle, name, value(asked_.demand, real(Field::demand)),
                          value(asked_.head, real(Field::head)),
                          value(asked_.pressure, real(Field::pressure)),
                          value(asked_.quality, quality), at(point, nodeLayer_), notices_);
    }
  }

  const TableRequest& asked_;
  Notices notices_;
  const NetworkLayers layers_;
  const std::u16string pipeLayer_, linkLayer_, nodeLayer_;
};

// Shows the dialog until its sizes can be used; false for "Annulla".
bool askTables(TableRequest& request) {
  DlgTables d;
  while (d.doModal()) {
    if (const char16_t* fault = d.fault()) {
      showMessage(TraduciTesto(fault));
      continue;
    }
    request = {d.rowHeight.value(), d.columnWidth.value(), d.pipes.value(),    d.nodes.value(),
               d.links.value(),     d.length.value(),      d.diameter.value(), d.roughness.value(),
               d.minorLoss.value(), d.pipeStatus.value(),  d.demand.value(),   d.head.value(),
               d.pressure.value(),  d.quality.value(),     d.flow.value(),     d.velocity.value(),
               d.headloss.value(),  d.linkStatus.value()};
    return true;
  }
  return false;
}

}  // namespace

Notices drawTables(std::u16string_view network, const TableRequest& request) {
  return TableDrawer(network, request).draw();
}

int EpaCommands::epatables() {
  if (!readInstallPath(installPath)) return kAbandoned;
  std::u16string version;
  if (readTextVariable(u"ACADVER", version) && version.substr(0, 4) == u"16.0") {
    showMessage(TraduciTesto(u"Oggetto tabella assente nella versione corrente di Autocad"));
    return kAbandoned;
  }
  if (!chooseNetwork(AqueductNetworks::refused)) return kAbandoned;
  TableRequest request;
  const bool wanted = askTables(request);
  if (wanted) tell(drawTables(currentNetwork, request));
  networkNames.clear();
  return wanted ? kRan : kAbandoned;
}

}  // namespace vessora
