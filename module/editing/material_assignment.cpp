// The material of pipes: searching, the job that assigns, and the command.
#include <cmath>
#include <unordered_set>

#include "module/dialogs/sel_rete_mod.h"
#include "module/dialogs/set_mat.h"
#include "module/editing/table_jobs.h"
#include "module/host/messages.h"
#include "module/host/warnings.h"
#include "module/network/element_data.h"
#include "module/network/schema.h"
#include "module/network/settings_store.h"
#include "platform/text.h"

namespace vessora {

using schema::Field;

namespace {

constexpr double kRoughnessTolerance = 0.00001;
constexpr int kAssignedColor = 1;

// Calls visit(polyline, data) for each pipe of the network.
template <class Visit>
void forEachPipe(std::u16string_view network, Visit visit) {
  const SelectionSet pipes(u"_X", elementPolylineFilter(schema::layerName(layer::kPipe, network)));
  for (const AcDbObjectId id : pipes) {
    const Opened<AcDb3dPolyline> pipe(id);
    if (!pipe) continue;
    if (const Chain data(pipe->xData(app::kImport)); data) visit(*pipe, data);
  }
}

std::u16string_view nameOf(const Chain& data) {
  return textAt(data, schema::kPipe.data, Field::id);
}

// A list that has a text there, which nothing of ours writes, keeps it.
void setRoughness(const Chain& data, double roughness) {
  resbuf* item = data.item(schema::placeOf(schema::kPipe.data, Field::roughness));
  if (!item || acutKindOf(item->restype) == RbKind::text) return;
  item->restype = 1040;
  item->resval.rreal = roughness;
}

void assign(AcDb3dPolyline& pipe, const Chain& data, const Chain& material) {
  pipe.setXData(material.get());
  pipe.setXData(data.get());
  pipe.setColorIndex(kAssignedColor);
  ClearXData(&pipe, app::kLinkResult);
}

bool readsMillimetres(std::u16string_view network) {
  EpaSettings settings;
  return !LoadSettings(settings, network) || settings.headloss == u"D-W";
}

}  // namespace

void FindPipesByRoughness(std::u16string_view network, double value, PipeNames& found) {
  forEachPipe(network, [&](const AcDb3dPolyline&, const Chain& data) {
    const double stored = realAt(data, schema::kPipe.data, Field::roughness);
    if (std::fabs(stored - value) < kRoughnessTolerance) found.emplace_back(nameOf(data));
  });
}

void FindPipesByMaterial(std::u16string_view network, std::u16string_view material,
                         PipeNames& found) {
  forEachPipe(network, [&](const AcDb3dPolyline& pipe, const Chain& data) {
    const Chain stored(pipe.xData(app::kMaterial));
    if (textAt(stored, schema::kMaterial, Field::type) == material) {
      found.emplace_back(nameOf(data));
    }
  });
}

AssignResult AssignMaterial(std::u16string_view network, double roughness,
                            std::u16string_view material, const PipeNames& found) {
  AssignResult result;
  if (!found.empty()) acdbRegApp(app::kMaterial);
  // That a name stands there twice changes nothing: what would be done again is the same.
  const std::unordered_set<std::u16string_view> names(found.begin(), found.end());
  const Chain list(acutBuildList(1001, app::kMaterial, 1000, material, RTNONE));
  forEachPipe(network, [&](AcDb3dPolyline& pipe, const Chain& data) {
    if (!names.contains(nameOf(data)) || pipe.upgradeOpen() != Acad::eOk) return;
    setRoughness(data, roughness);
    assign(pipe, data, list);
    ++result.pipes;
  });
  if (result.pipes > 0 && !readsMillimetres(network)) {
    result.warnings.push_back({NoticeCode::roughnessInMillimetres, std::u16string(network)});
  }
  return result;
}

namespace {

PipeSearch searchOf(std::u16string_view network) {
  return {[network](double roughness) {
            PipeNames found;
            FindPipesByRoughness(network, roughness, found);
            return found;
          },
          [network](std::u16string_view material) {
            PipeNames found;
            FindPipesByMaterial(network, material, found);
            return found;
          }};
}

// The rows of the table; false when there are none, which the user is told.
bool readMaterialsToAssign() {
  if (!ReadMaterials(materials)) return false;
  if (!materials.empty()) return true;
  showMessage(TraduciTesto(u"La tabella dei materiali è vuota: nessun materiale da assegnare!"));
  return false;
}

bool assignMaterials() {
  if (!readMaterialsToAssign()) return false;
  DlgSetMat dialog(materials, searchOf(currentNetwork));
  if (!dialog.doModal()) return false;
  warn(AssignMaterial(currentNetwork, platform::wtof(dialog.roughness()), dialog.material(),
                      dialog.found())
           .warnings);
  return true;
}

}  // namespace

int EpaCommands::hnsetmat() {
  if (!readInstallPath(installPath)) return kAbandoned;
  if (!inpIsFull()) {
    acdbRegApp(app::kImport);
    acdbRegApp(app::kMaterial);
  }
  if (!chooseNetworkToModify()) return kAbandoned;
  const bool assigned = assignMaterials();
  materials.clear();
  networkNames.clear();
  return assigned ? kRan : kAbandoned;
}

}  // namespace vessora
