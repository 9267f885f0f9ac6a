#include "cad/editor/layers.h"

#include "cad/api/owners.h"
#include "cad/api/tables.h"
#include "platform/text.h"

namespace cad {

std::vector<LayerInfo> layersOf(const Drawing& drawing) {
  std::vector<LayerInfo> layers;
  const TableInfo* const table = drawing.structure().table(Type::layer);
  if (!table) return layers;
  const std::u16string& current = drawing.header().currentLayer();
  for (std::uint32_t e = drawing.structure().firstTableEntry(table->table); e;
       e = drawing.structure().nextTableEntry(table->table, e)) {
    const Opened<AcDbLayerTableRecord> layer(drawing.idOf(e));
    if (!layer) continue;
    LayerInfo& info = layers.emplace_back();
    info.name = layer->getName();
    info.colour = layer->colorIndex();
    info.off = layer->isOff();
    info.frozen = layer->isFrozen();
    info.locked = layer->isLocked();
    info.current = platform::equalNoCase(info.name, current);
  }
  return layers;
}

Acad::ErrorStatus changeLayer(Drawing& drawing, std::u16string_view name,
                              const LayerChange& change) {
  const Opened<AcDbLayerTableRecord> layer(
      drawing.idOf(drawing.structure().layerNamed(name, false)), AcDb::kForWrite);
  if (!layer) return Acad::eKeyNotFound;
  if (change.colour && (*change.colour < 1 || *change.colour > 255)) return Acad::eInvalidInput;
  if (change.colour) layer->setColorIndex(*change.colour);
  if (change.off) layer->setIsOff(*change.off);
  if (change.frozen) layer->setIsFrozen(*change.frozen);
  if (change.locked) layer->setIsLocked(*change.locked);
  return Acad::eOk;
}

}  // namespace cad
