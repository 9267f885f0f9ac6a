#include "module/results/query_rows.h"

#include <utility>

#include "module/host/module.h"
#include "module/host/translate.h"
#include "module/network/element_data.h"

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

bool ReadNodeResult(EpaNodeResult& record, AcDbBlockReference* block) {
  std::u16string name;
  ReadNameAttribute(block, schema::kIdTag, name);
  record.id = name;
  return readResults(block, schema::kNodeResult, record);
}

bool ReadBlockLinkResult(EpaLinkResult& record, AcDbBlockReference* block) {
  std::u16string name;
  ReadNameAttribute(block, schema::kIdTag, name);
  record.id = name;
  return readResults(block, schema::kLinkResult, record);
}

bool ReadPolylineLinkResult(EpaLinkResult& record, AcDb3dPolyline* polyline) {
  record.id = Chain(polyline->xData(app::kImport)).text(1);
  return readResults(polyline, schema::kLinkResult, record);
}

// --- picked elements -----------------------------------------------------------------------------

namespace {

QueryRow rowOf(const EpaNodeResult& r) {
  return {r.id.str(), {r.demand.str(), r.head.str(), r.pressure.str(), r.quality.str()}};
}
QueryRow rowOf(const EpaLinkResult& r) {
  return {r.id.str(), {r.flow.str(), r.velocity.str(), r.headloss.str(), r.status.str()}};
}
QueryRow emptyRow(std::u16string_view id) { return {std::u16string(id), {u"-", u"-", u"-", u"-"}}; }

void addPolyline(AcDb3dPolyline* polyline, NetworkQuery& query) {
  if (!Chain(polyline->xData(app::kImport))) return;
  EpaLinkResult record;
  query.links.push_back(ReadPolylineLinkResult(record, polyline) ? rowOf(record)
                                                                 : emptyRow(record.id));
  if (const Chain material(polyline->xData(app::kMaterial)); material) {
    query.pipeMaterials.push_back(
        {record.id, textAt(material, schema::kMaterial, schema::Field::type)});
  }
}

void addBlock(AcDbBlockReference* block, const NetworkLayers& layers, NetworkQuery& query) {
  const std::u16string layer = block->layer();
  if (layer == layers.valv || layer == layers.pump) {
    EpaLinkResult record;
    query.links.push_back(ReadBlockLinkResult(record, block) ? rowOf(record) : emptyRow(record.id));
    return;
  }
  EpaNodeResult record;
  if (ReadNodeResult(record, block)) {
    query.nodes.push_back(rowOf(record));
  } else if (layer == layers.junc || layer == layers.resv || layer == layers.tank) {
    query.nodes.push_back(emptyRow(record.id));
  }
}

void askToPick() { acedPrompt(TraduciTesto(u"\nSelezionare gli oggetti desiderati: ")); }

}  // namespace

bool CollectQueryRows(const NetworkLayers& layers, NetworkQuery& query) {
  askToPick();
  const SelectionSet picked(
      nullptr,
      acutBuildList(-4, u"<or", 8, layers.pipe, 8, layers.junc, 8, layers.resv, 8, layers.tank, -4,
                    u"<and", RTDXF0, u"INSERT", 8, layers.valv, -4, u"and>", -4, u"<and", RTDXF0,
                    u"INSERT", 8, layers.pump, -4, u"and>", -4, u"or>", RTNONE));
  if (!picked.ok()) return false;
  for (const AcDbObjectId id : picked) {
    const Opened<AcDbEntity> entity(id);
    if (auto* polyline = entity.as<AcDb3dPolyline>()) addPolyline(polyline, query);
    if (auto* block = entity.as<AcDbBlockReference>()) addBlock(block, layers, query);
  }
  return true;
}

std::u16string aqueductPipeName(AcDb3dPolyline* polyline) {
  return std::u16string(Chain(polyline->xData(app::kSchema)).text(schema::schematic::kPipeName));
}

bool collectAqueductRows(std::u16string_view network, NetworkQuery& query) {
  askToPick();
  const SelectionSet picked(nullptr, acutBuildList(8, network, RTNONE));
  if (!picked.ok()) return false;
  for (const AcDbObjectId id : picked) {
    const Opened<AcDbEntity> entity(id);
    if (auto* polyline = entity.as<AcDb3dPolyline>()) {
      if (Chain(polyline->xData(app::kSchema))) {
        query.links.push_back(emptyRow(aqueductPipeName(polyline)));
      }
    } else if (auto* block = entity.as<AcDbBlockReference>()) {
      std::u16string name;
      if (ReadAttribute(block, schema::schematic::kNodeName, name))
        query.nodes.push_back(emptyRow(name));
    }
  }
  return true;
}

}  // namespace vessora
