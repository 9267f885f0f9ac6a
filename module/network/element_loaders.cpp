#include "module/network/element_loaders.h"

#include "platform/text.h"

namespace vessora {

using schema::Field;

// --- readers -------------------------------------------------------------------------------------

namespace {

Reals readReals() { return inpIsFull() ? Reals::whole : Reals::threeDecimals; }

template <class Record>
void readBlock(Record& record, AcDbBlockReference* block) {
  record.objectId = block->objectId();
  takeAttributes(block, record);
  if (const Chain data(block->xData(app::kImport)); data) {
    takeData(data, record, false, readReals());
  }
}

}  // namespace

void ReadJunc(EpaJunc& junc, AcDbBlockReference* block) { readBlock(junc, block); }
void ReadResv(EpaResv& resv, AcDbBlockReference* block) { readBlock(resv, block); }
void ReadTank(EpaTank& tank, AcDbBlockReference* block) { readBlock(tank, block); }
void ReadPump(EpaPump& pump, AcDbBlockReference* block) { readBlock(pump, block); }

void ReadValv(EpaValv& valv, AcDbBlockReference* block) {
  valv.objectId = block->objectId();
  takeAttributes(block, valv);
  const Chain data(block->xData(app::kImport));
  for (const Field field : {Field::status, Field::node1, Field::node2}) {
    takeField(data, valv, field);
  }
}

void ReadPipe(EpaPipe& pipe, std::u16string& material, AcDb3dPolyline* polyline) {
  pipe.objectId = polyline->objectId();
  if (const Chain data(polyline->xData(app::kImport)); data) {
    takeData(data, pipe, true, readReals());
  }
  const Chain data(polyline->xData(app::kMaterial));
  if (data.item(1)) material = textAt(data, schema::kMaterial, Field::type);
}

// --- nodes ---------------------------------------------------------------------------------------

namespace {

template <class Node>
double storedHeight(AcDbBlockReference* block, Field height) {
  std::u16string text;
  ReadAttribute(block, schema::tagOf(kindOf<Node>(), height), text);
  return platform::wtof(text);
}

// What all nodes have in common. The height is that of the attribute before anything changes.
template <class Node>
FollowedLinks updateNode(Opened<AcDbBlockReference> block, const Node& node, Field height,
                         FieldSet changed, bool onlyTextItems,
                         std::initializer_list<Given> given = {}) {
  NodeChange change;
  change.oldHeight = storedHeight<Node>(block.get(), height);
  change.onlyTextItems = onlyTextItems;
  if (inpIsFull()) change.oldName = Chain(block->xData(app::kImport)).text(1);
  writeAttributes(block.get(), node, changed);
  writeData(block.get(), node, changed, given);
  if (changed.has(height)) change.newHeight = platform::wtof(textOf(node, height));
  if (changed.has(Field::id)) change.id = node.id;
  if (!change.newHeight && !change.id) return {};
  return dragLinks(std::move(block), change);
}

}  // namespace

FollowedLinks UpdateJunc(Opened<AcDbBlockReference> block, const EpaJunc& junc, double emitter,
                         FieldSet changed) {
  if (!block) return {};
  if (changed.has(Field::emitter)) block->setColorIndex(emitter > 0 ? 1 : 256);
  return updateNode(std::move(block), junc, Field::elevation, changed, true,
                    {{Field::emitter, {}, emitter}});
}

FollowedLinks UpdateResv(Opened<AcDbBlockReference> block, const EpaResv& resv, FieldSet changed) {
  if (!block) return {};
  return updateNode(std::move(block), resv, Field::head, changed, false);
}

FollowedLinks UpdateTank(Opened<AcDbBlockReference> block, const EpaTank& tank, FieldSet changed) {
  if (!block) return {};
  return updateNode(std::move(block), tank, Field::elevation, changed, false);
}

// --- links ---------------------------------------------------------------------------------------

namespace {

// Gives the new id to the companion polylines that have it already or still have the old one.
void renameCompanions(std::u16string_view layer, std::u16string_view oldId,
                      std::u16string_view newId) {
  const Chain bare = companionData(newId);
  const SelectionSet set(u"_X", elementPolylineFilter(layer));
  for (const AcDbObjectId id : set) {
    const Opened<AcDb3dPolyline> polyline(id);
    if (!polyline) continue;
    const Chain data(polyline->xData(app::kImport));
    const std::u16string own(data.text(1));
    if (!data.item(1) || (own != newId && own != oldId)) continue;
    polyline->upgradeOpen();
    polyline->setXData(bare.get());
  }
}

template <class Link>
void updateLink(Opened<AcDbBlockReference> block, const Link& link, FieldSet changed,
                std::u16string_view layer, std::initializer_list<Given> given = {}) {
  std::u16string oldId;
  ReadAttribute(block.get(), schema::kIdTag, oldId);
  writeAttributes(block.get(), link, changed);
  writeData(block.get(), link, changed, given);
  block.close();
  if (changed.has(Field::id)) renameCompanions(layer, oldId, link.id);
}

}  // namespace

void UpdateValv(Opened<AcDbBlockReference> block, const EpaValv& valv, std::u16string_view layer,
                FieldSet changed) {
  if (!block) return;
  const Chain old(block->xData(app::kImport));
  const schema::List& list = schema::kValv.data;
  const Given node1{Field::node1, textAt(old, list, Field::node1)};
  const Given node2{Field::node2, textAt(old, list, Field::node2)};
  if (!changed.isAll()) {
    return updateLink(std::move(block), valv, changed, layer, {node1, node2});
  }
  // Drawings have 0 at the places of diameter and minor loss once a valve has been written anew;
  // who reads those there relies on it.
  updateLink(std::move(block), valv, changed, layer,
             {node1, node2, {Field::diameter, {}, 0}, {Field::minorLoss, {}, 0}});
}

void UpdatePump(Opened<AcDbBlockReference> block, const EpaPump& pump, std::u16string_view layer,
                FieldSet changed) {
  if (block) updateLink(std::move(block), pump, changed, layer);
}

void UpdatePipe(AcDb3dPolyline* polyline, const EpaPipe& pipe, std::u16string_view material,
                FieldSet changed) {
  // The names of the nodes are never the pipe's own to change, so even all fields are not all.
  const FieldSet own{Field::id,        Field::length,    Field::diameter,
                     Field::roughness, Field::minorLoss, Field::status};
  writeData(polyline, pipe, changed & own);
  if (!changed.has(Field::type)) return;
  const Chain stored(acutBuildList(1001, app::kMaterial, 1000, material, RTNONE));
  polyline->setXData(stored.get());
}

}  // namespace vessora
