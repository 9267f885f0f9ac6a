// The command that resizes symbols, to a scale, and tables, by a factor.
#include "module/dialogs/scale.h"
#include "module/dialogs/elenco_reti.h"
#include "module/network/schema.h"

namespace vessora {

namespace {

resbuf* scalableFilter() {
  const NetworkLayers layers(currentNetwork);
  const auto tables = [](std::u16string_view prefix) {
    return schema::layerName(prefix, currentNetwork);
  };
  return acutBuildList(-4, u"<or", 8, layers.junc, 8, layers.resv, 8, layers.tank, 8, layers.pump,
                       8, layers.valv, 8, layers.pipe, 8, tables(layer::kNodeTables), 8,
                       tables(layer::kLinkTables), 8, tables(layer::kPipeTables), -4, u"or>",
                       RTNONE);
}

void scaleTable(AcDbTable& table, double factor) {
  const double width = table.width(), height = table.height(), text = table.textHeight(0, 0);
  table.setWidth(factor * width);
  table.setHeight(factor * height);
  table.setTextHeight(factor * text, AcDb::kAllRows);
}

void scale(AcDbObjectId id, const DlgScale& asked) {
  const Opened<AcDbEntity> entity(id, AcDb::kForWrite);
  if (!entity) return;
  // A table may be a block reference of sorts to a host; here it is a table.
  if (auto* table = entity.as<AcDbTable>()) {
    if (asked.tables.value()) scaleTable(*table, asked.tableFactor.value());
  } else if (auto* block = entity.as<AcDbBlockReference>(); block && asked.symbols.value()) {
    const double factor = asked.symbolFactor.value();
    block->setScaleFactors({factor, factor, factor});
  }
}

}  // namespace

int EpaCommands::epascale() {
  if (!readInstallPath(installPath)) return kAbandoned;
  if (!chooseNetwork(AqueductNetworks::refusedOnce)) return kAbandoned;
  networkNames.clear();
  acedPrompt(TraduciTesto(u"\nSelezionare simboli e/o tabelle..."));
  const SelectionSet picked(nullptr, scalableFilter());
  if (!picked.ok()) return kAbandoned;
  DlgScale dialog;
  if (!dialog.doModal()) return kAbandoned;
  for (const AcDbObjectId id : picked) scale(id, dialog);
  return kRan;
}

}  // namespace vessora
