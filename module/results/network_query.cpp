// The query command: rows of picked elements, their dialog, the zoom to one of them, and the
// colours that the user asks for in the end.
#include <string>
#include <string_view>

#include "module/dialogs/elenco_reti.h"
#include "module/dialogs/list_res.h"
#include "module/host/module.h"
#include "module/host/translate.h"
#include "module/inp/full_diff.h"
#include "module/results/query_colors.h"
#include "module/results/query_rows.h"

namespace vessora {

namespace {

// --- zoom ----------------------------------------------------------------------------------------

// How far the window reaches beyond an element, in widths and heights of it.
constexpr double kBlockMargin = 1, kLinkBlockMargin = 1.5, kPolylineMargin = 0.1;

void frame(const AcDbExtents& box, double margin) {
  const AcGePoint3d low = box.minPoint(), high = box.maxPoint();
  const double w = (high.x - low.x) * margin, h = (high.y - low.y) * margin;
  KsrAcadMgr::ksr_acedCommand(RTSTR, u"_zoom", RTSTR, u"_w", RTPOINT,
                              AcGePoint3d(low.x - w, high.y + h, 0), RTPOINT,
                              AcGePoint3d(high.x + w, low.y - h, 0), RTNONE);
}

// Frames the first entity of the selection for which margin(entity) is not negative, and marks it.
template <class Margin>
void zoomTo(resbuf* filter, Margin margin) {
  for (const AcDbObjectId id : SelectionSet(u"_X", filter)) {
    AcDbExtents box;
    double found = -1;
    {
      const Opened<AcDbEntity> entity(id);
      if (entity) found = margin(entity);
      if (found < 0) continue;
      if (entity->getGeomExtents(box) != Acad::eOk) return;
    }
    frame(box, found);
    if (const Opened<AcDbEntity> entity(id); entity) entity->highlight(kNullSubent);
    return;
  }
}

bool isNamed(AcDbBlockReference* block, std::u16string_view tag, std::u16string_view name) {
  std::u16string text;
  ReadAttribute(block, tag, text);
  return text == name;
}

void zoomToNode(const NetworkLayers& layers, std::u16string_view name) {
  resbuf* const filter =
      acutBuildList(-4, u"<or", 8, layers.junc, 8, layers.resv, 8, layers.tank, -4, u"or>", RTNONE);
  zoomTo(filter, [&](const Opened<AcDbEntity>& entity) {
    auto* block = entity.as<AcDbBlockReference>();
    return block && isNamed(block, schema::kIdTag, name) ? kBlockMargin : -1;
  });
}

void zoomToLink(const NetworkLayers& layers, std::u16string_view name) {
  resbuf* const filter = acutBuildList(-4, u"<or", 8, layers.pipe, -4, u"<and", RTDXF0, u"INSERT",
                                       8, layers.valv, -4, u"and>", -4, u"<and", RTDXF0, u"INSERT",
                                       8, layers.pump, -4, u"and>", -4, u"or>", RTNONE);
  zoomTo(filter, [&](const Opened<AcDbEntity>& entity) {
    if (auto* polyline = entity.as<AcDb3dPolyline>()) {
      return Chain(polyline->xData(app::kImport)).text(1) == name ? kPolylineMargin : -1;
    }
    auto* block = entity.as<AcDbBlockReference>();
    return block && isNamed(block, schema::kIdTag, name) ? kLinkBlockMargin : -1;
  });
}

void zoomToAqueductNode(std::u16string_view network, std::u16string_view name) {
  zoomTo(acutBuildList(RTDXF0, u"INSERT", 8, network, RTNONE),
         [&](const Opened<AcDbEntity>& entity) {
           auto* block = entity.as<AcDbBlockReference>();
           return block && isNamed(block, schema::schematic::kNodeName, name) ? kBlockMargin : -1;
         });
}

void zoomToAqueductPipe(std::u16string_view network, std::u16string_view name) {
  zoomTo(acutBuildList(RTDXF0, u"POLYLINE", 8, network, RTNONE),
         [&](const Opened<AcDbEntity>& entity) {
           auto* polyline = entity.as<AcDb3dPolyline>();
           return polyline && aqueductPipeName(polyline) == name ? kPolylineMargin : -1;
         });
}

// --- the dialog's loop ---------------------------------------------------------------------------

int waitForEnter() {
  std::u16string answer;
  return KsrAcadMgr::ksr_acedGetKword(
      TraduciTesto(u"\nPremere INVIO per rivisualizzare il dialogo..."), answer);
}

// Runs the dialog until the user has done with it; toNode(id) and toLink(id) frame what he wants to
// see.
template <class ToNode, class ToLink>
void runDialog(NetworkQuery& query, ToNode toNode, ToLink toLink) {
  DlgListRes dialog(query);
  while (dialog.doModal() && query.action != QueryAction::finish) {
    if (query.action == QueryAction::zoomNode) toNode(query.nodeId);
    if (query.action == QueryAction::zoomLink) toLink(query.linkId);
    const bool looksAround = query.action == QueryAction::showDrawing;
    // In a network of the aqueduct module only Enter or Esc brings the dialog back.
    while (waitForEnter() == RTNORM && looksAround && query.legacyNetwork) {
    }
  }
}

bool runQuery(std::u16string_view network, NetworkQuery& query) {
  const NetworkLayers layers(network);
  if (!CollectQueryRows(layers, query)) return false;
  query.stale = inpIsFull() && resultsAreStale(network);
  runDialog(
      query, [&](const auto& id) { zoomToNode(layers, id); },
      [&](const auto& id) { zoomToLink(layers, id); });
  applyQueryColors(network, query);
  return true;
}

bool runAqueductQuery(std::u16string_view network, NetworkQuery& query) {
  query.legacyNetwork = true;
  if (!collectAqueductRows(network, query)) return false;
  runDialog(
      query, [&](const auto& id) { zoomToAqueductNode(network, id); },
      [&](const auto& id) { zoomToAqueductPipe(network, id); });
  return true;
}

}  // namespace

int EpaCommands::netvis() {
  if (!readInstallPath(installPath)) return kAbandoned;
  acdbRegApp(app::kColor);
  if (!chooseNetwork(AqueductNetworks::accepted)) return kAbandoned;

  NetworkQuery query;
  const bool queried = schema::isAqueductName(currentNetwork)
                           ? runAqueductQuery(currentNetwork, query)
                           : runQuery(currentNetwork, query);
  networkNames.clear();
  if (!queried) return kAbandoned;
  KsrAcadMgr::ksr_acedCommand(RTSTR, u"_regenall", RTNONE);
  return kRan;
}

}  // namespace vessora
