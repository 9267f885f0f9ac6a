#include "module/results/query_rows.h"

#include <utility>

#include "module/host/module.h"
#include "module/host/tell.h"
#include "module/host/translate.h"
#include "module/network/element_data.h"
#include "module/results/drawing_jobs.h"

namespace vessora {

// --- one element ---------------------------------------------------------------------------------

namespace {

// The results of an element and their period; false without results.
template <class Result>
bool readResults(AcDbEntity* entity, const schema::List& list, Result& result) {
  const Chain data(entity->xData(list.application));
  if (!data) return false;
  takeResult(data, result);
  const Chain label(entity->xData(app::kPeriod));
  if (label.item(1)) result.period = textAt(label, schema::kPeriod, schema::Field::period);
  return true;
}

}  // namespace

bool ReadNodeResult(EpaNodeResult& record, AcDbBlockReference* block, Notices& notices) {
  std::u16string name;
  ReadNameAttribute(block, schema::kIdTag, name, notices);
  record.id = name;
  return readResults(block, schema::kNodeResult, record);
}

bool ReadBlockLinkResult(EpaLinkResult& record, AcDbBlockReference* block, Notices& notices) {
  std::u16string name;
  ReadNameAttribute(block, schema::kIdTag, name, notices);
  record.id = name;
  return readResults(block, schema::kLinkResult, record);
}

bool ReadPolylineLinkResult(EpaLinkResult& record, AcDb3dPolyline* polyline) {
  record.id = Chain(polyline->xData(app::kImport)).text(1);
  return readResults(polyline, schema::kLinkResult, record);
}

// --- listed elements -----------------------------------------------------------------------------

namespace {

QueryRow rowOf(const EpaNodeResult& r) {
  return {r.id.str(), {r.demand.str(), r.head.str(), r.pressure.str(), r.quality.str()}};
}
QueryRow rowOf(const EpaLinkResult& r) {
  return {r.id.str(), {r.flow.str(), r.velocity.str(), r.headloss.str(), r.status.str()}};
}
QueryRow emptyRow(std::u16string_view id) { return {std::u16string(id), {u"-", u"-", u"-", u"-"}}; }

void addPolyline(AcDb3dPolyline* polyline, QueryRows& rows) {
  if (!Chain(polyline->xData(app::kImport))) return;
  EpaLinkResult record;
  rows.links.push_back(ReadPolylineLinkResult(record, polyline) ? rowOf(record)
                                                                : emptyRow(record.id));
  if (const Chain material(polyline->xData(app::kMaterial)); material) {
    rows.pipeMaterials.push_back(
        {record.id, textAt(material, schema::kMaterial, schema::Field::type)});
  }
}

void addBlock(AcDbBlockReference* block, const NetworkLayers& layers, QueryRows& rows,
              Notices& notices) {
  const std::u16string layer = block->layer();
  if (layer == layers.valv || layer == layers.pump) {
    EpaLinkResult record;
    rows.links.push_back(ReadBlockLinkResult(record, block, notices) ? rowOf(record)
                                                                     : emptyRow(record.id));
    return;
  }
  EpaNodeResult record;
  if (ReadNodeResult(record, block, notices)) {
    rows.nodes.push_back(rowOf(record));
  } else if (layer == layers.junc || layer == layers.resv || layer == layers.tank) {
    rows.nodes.push_back(emptyRow(record.id));
  }
}

resbuf* listedFilter(const NetworkLayers& layers) {
  return acutBuildList(-4, u"<or", 8, layers.pipe, 8, layers.junc, 8, layers.resv, 8, layers.tank,
                       -4, u"<and", RTDXF0, u"INSERT", 8, layers.valv, -4, u"and>", -4, u"<and",
                       RTDXF0, u"INSERT", 8, layers.pump, -4, u"and>", -4, u"or>", RTNONE);
}

void addRows(const SelectionSet& elements, const NetworkLayers& layers, QueryRows& rows,
             Notices& notices) {
  for (const AcDbObjectId id : elements) {
    const Opened<AcDbEntity> entity(id);
    if (auto* polyline = entity.as<AcDb3dPolyline>()) addPolyline(polyline, rows);
    if (auto* block = entity.as<AcDbBlockReference>()) addBlock(block, layers, rows, notices);
  }
}

void addAqueductRows(const SelectionSet& elements, QueryRows& rows) {
  for (const AcDbObjectId id : elements) {
    const Opened<AcDbEntity> entity(id);
    if (auto* polyline = entity.as<AcDb3dPolyline>()) {
      if (Chain(polyline->xData(app::kSchema))) {
        rows.links.push_back(emptyRow(aqueductPipeName(polyline)));
      }
    } else if (auto* block = entity.as<AcDbBlockReference>()) {
      std::u16string name;
      if (ReadAttribute(block, schema::schematic::kNodeName, name)) {
        rows.nodes.push_back(emptyRow(name));
      }
    }
  }
}

SelectionSet askForElements(resbuf* filter) {
  acedPrompt(TraduciTesto(u"\nSelezionare gli oggetti desiderati: "));
  return SelectionSet(nullptr, filter);
}

}  // namespace

std::u16string aqueductPipeName(AcDb3dPolyline* polyline) {
  return std::u16string(Chain(polyline->xData(app::kSchema)).text(schema::schematic::kPipeName));
}

bool CollectQueryRows(const NetworkLayers& layers, QueryRows& rows) {
  const SelectionSet picked = askForElements(listedFilter(layers));
  if (!picked.ok()) return false;
  Notices notices;
  addRows(picked, layers, rows, notices);
  tell(notices);
  return true;
}

bool collectAqueductRows(std::u16string_view network, QueryRows& rows) {
  const SelectionSet picked = askForElements(acutBuildList(8, network, RTNONE));
  if (picked.ok()) addAqueductRows(picked, rows);
  return picked.ok();
}

QueryRows rowsOfNetwork(const NetworkLayers& layers, Notices& notices) {
  QueryRows rows;
  addRows(SelectionSet(u"_X", listedFilter(layers)), layers, rows, notices);
  return rows;
}

QueryResult queryNetwork(std::u16string_view network, const QueryRequest& request) {
  QueryResult result;
  if (schema::isAqueductName(network)) {
    addAqueductRows(SelectionSet(u"_X", acutBuildList(8, network, RTNONE)), result.rows);
  } else {
    result.rows = rowsOfNetwork(NetworkLayers(network), result.notices);
  }
  if (request.quantity == Quantity::none) return result;
  auto& rows = isOfNodes(request.quantity) ? result.rows.nodes : result.rows.links;
  rows = rowsAt(rows, rowsBetween(rows, request.quantity, request.above, request.below));
  return result;
}

}  // namespace vessora
