// Resizing symbols, to a scale, and tables, by a factor: the job and the command.
#include "module/dialogs/scale.h"
#include "module/dialogs/elenco_reti.h"
#include "module/network/schema.h"
#include "module/results/drawing_jobs.h"

namespace vessora {

namespace {

resbuf* scalableFilter(std::u16string_view network) {
  const NetworkLayers layers(network);
  const auto own = [network](std::u16string_view prefix) {
    return schema::layerName(prefix, network);
  };
  // The classic way leaves flow arrows as they are; otherwise they go with the symbols.
  const std::u16string in = inpIsFull() ? own(layer::kFlowIn) : layers.junc;
  const std::u16string out = inpIsFull() ? own(layer::kFlowOut) : layers.junc;
  return acutBuildList(-4, u"<or", 8, layers.junc, 8, layers.resv, 8, layers.tank, 8, layers.pump,
                       8, layers.valv, 8, layers.pipe, 8, own(layer::kNodeTables), 8,
                       own(layer::kLinkTables), 8, own(layer::kPipeTables), 8, in, 8, out, -4,
                       u"or>", RTNONE);
}

void scaleTable(AcDbTable& table, double factor) {
  const double width = table.width(), height = table.height(), text = table.textHeight(0, 0);
  table.setWidth(factor * width);
  table.setHeight(factor * height);
  table.setTextHeight(factor * text, AcDb::kAllRows);
}

void scale(const SelectionSet& picked, const ScaleRequest& request) {
  for (const AcDbObjectId id : picked) {
    const Opened<AcDbEntity> entity(id, AcDb::kForWrite);
    if (!entity) continue;
    // A table may be a block reference of sorts to a host; here it is a table.
    if (auto* table = entity.as<AcDbTable>()) {
      if (request.tables) scaleTable(*table, request.tableFactor);
    } else if (auto* block = entity.as<AcDbBlockReference>(); block && request.symbols) {
      block->setScaleFactors({request.symbolScale, request.symbolScale, request.symbolScale});
    }
  }
}

}  // namespace

void scaleNetwork(std::u16string_view network, const ScaleRequest& request) {
  scale(SelectionSet(u"_X", scalableFilter(network)), request);
}

int EpaCommands::epascale() {
  if (!readInstallPath(installPath)) return kAbandoned;
  if (!chooseNetwork(AqueductNetworks::refusedOnce)) return kAbandoned;
  networkNames.clear();
  acedPrompt(TraduciTesto(u"\nSelezionare simboli e/o tabelle..."));
  const SelectionSet picked(nullptr, scalableFilter(currentNetwork));
  if (!picked.ok()) return kAbandoned;
  DlgScale dialog;
  if (!dialog.doModal()) return kAbandoned;
  scale(picked, {dialog.symbols.value(), dialog.tables.value(), dialog.symbolFactor.value(),
                 dialog.tableFactor.value()});
  return kRan;
}

}  // namespace vessora
