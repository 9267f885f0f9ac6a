// The table of pipe materials: the job that writes it, and the command.
#include <map>
#include <unordered_set>

#include "module/dialogs/materiali.h"
#include "module/editing/some_names.h"
#include "module/editing/table_jobs.h"
#include "module/host/messages.h"
#include "module/host/warnings.h"
#include "module/network/element_data.h"

namespace vessora {

namespace {

// Pipes of whatever network, by the material that they store and the table does not have.
Notices materialsMissedByPipes(const std::vector<EpaMaterial>& rows) {
  std::unordered_set<std::u16string_view> known;
  for (const EpaMaterial& row : rows) known.insert(row.name);
  std::map<std::u16string, SomeNames> missed;
  for (const AcDbObjectId id : SelectionSet(u"_X", acutBuildList(1001, app::kMaterial, RTNONE))) {
    const Opened<AcDb3dPolyline> pipe(id);
    if (!pipe) continue;
    const Chain data(pipe->xData(app::kMaterial));
    const std::u16string_view material = textAt(data, schema::kMaterial, schema::Field::type);
    if (material.empty() || known.contains(material)) continue;
    const Chain element(pipe->xData(app::kImport));
    missed[std::u16string(material)].add(textAt(element, schema::kPipe.data, schema::Field::id));
  }
  Notices warnings;
  for (const auto& [material, pipes] : missed) {
    warnings.push_back({NoticeCode::materialNotInTable, material, pipes.text()});
  }
  return warnings;
}

}  // namespace

MaterialTable readMaterialTable() {
  MaterialTable table;
  if (!loadMaterials(table.rows)) {
    table.notices.push_back({NoticeCode::materialsUnreadable, materialsPath()});
  }
  return table;
}

TableResult writeMaterialTable(const std::vector<EpaMaterial>& rows) {
  if (!saveMaterials(rows)) return {{{NoticeCode::materialsUnwritable, materialsPath()}}, {}};
  return {{}, materialsMissedByPipes(rows)};
}

namespace {

// The rows as the user has left them in `materials`; false when he gives up or the file is not
// there. After a value that cannot be, the dialog opens on what the file says.
bool editMaterials() {
  DlgMateriali dialog(materials);
  do {
    if (!ReadMaterials(materials) || !dialog.doModal()) return false;
  } while (dialog.retry());
  return true;
}

bool writeMaterials() {
  const TableResult result = writeMaterialTable(materials);
  if (!result.notices.empty()) showMessage(TraduciTesto(u"Impossibile scrivere sul file!"));
  warn(result.warnings);
  return result.notices.empty();
}

}  // namespace

int EpaCommands::hnmatepa() {
  if (!readInstallPath(installPath)) return kAbandoned;
  const bool written = editMaterials() && writeMaterials();
  materials.clear();
  return written ? kRan : kAbandoned;
}

}  // namespace vessora
