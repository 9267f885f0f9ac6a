#include "module/network/element_loaders.h"

#include "module/network/node_update.h"
#include "platform/text.h"

namespace vessora {

using schema::Field;

// --- readers -------------------------------------------------------------------------------------

namespace {

template <class Record>
void readBlock(Record& record, AcDbBlockReference* block) {
  record.objectId = block->objectId();
  takeAttributes(block, record);
  if (const Chain data(block->xData(app::kImport)); data) takeData(data, record, false);
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
  if (const Chain data(polyline->xData(app::kImport)); data) takeData(data, pipe);
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
void updateNode(Opened<AcDbBlockReference> block, const Node& node, Field height, const Chain& data,
                bool onlyTextItems) {
  const double oldHeight = storedHeight<Node>(block.get(), height);
  writeAttributes(block.get(), node);
  block->setXData(data.get());
  moveNode(std::move(block),
           {oldHeight, platform::wtof(textOf(node, height)), node.id, onlyTextItems});
}

}  // namespace

void UpdateJunc(Opened<AcDbBlockReference> block, const EpaJunc& junc, double emitter) {
  if (!block) return;
  block->setColorIndex(emitter > 0 ? 1 : 256);
  updateNode(std::move(block), junc, Field::elevation,
             dataOf(junc, {{Field::emitter, {}, emitter}}), true);
}

void UpdateResv(Opened<AcDbBlockReference> block, const EpaResv& resv) {
  if (block) updateNode(std::move(block), resv, Field::head, dataOf(resv), false);
}

void UpdateTank(Opened<AcDbBlockReference> block, const EpaTank& tank) {
  if (block) updateNode(std::move(block), tank, Field::elevation, dataOf(tank), false);
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
void updateLink(Opened<AcDbBlockReference> block, const Link& link, const Chain& data,
                std::u16string_view layer) {
  std::u16string oldId;
  ReadAttribute(block.get(), schema::kIdTag, oldId);
  writeAttributes(block.get(), link);
  block->setXData(data.get());
  block.close();
  renameCompanions(layer, oldId, link.id);
}

}  // namespace

void UpdateValv(Opened<AcDbBlockReference> block, const EpaValv& valv, std::u16string_view layer) {
  if (!block) return;
  const Chain old(block->xData(app::kImport));
  const schema::List& list = schema::kValv.data;
  // Drawings have 0 at the places of diameter and minor loss once a valve has been changed; who
  // reads those there relies on it.
  updateLink(std::move(block), valv,
             dataOf(valv, {{Field::node1, textAt(old, list, Field::node1)},
                           {Field::node2, textAt(old, list, Field::node2)},
                           {Field::diameter, {}, 0},
                           {Field::minorLoss, {}, 0}}),
             layer);
}

void UpdatePump(Opened<AcDbBlockReference> block, const EpaPump& pump, std::u16string_view layer) {
  if (block) updateLink(std::move(block), pump, dataOf(pump), layer);
}

}  // namespace vessora
