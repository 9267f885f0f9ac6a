// The jobs that make networks and nodes; those that make links are in link_course.cpp.
#include "module/editing/add_jobs.h"

#include "module/editing/element_names.h"
#include "module/editing/solver_faults.h"
#include "module/host/host_drawing.h"
#include "module/host/module.h"
#include "module/inp/collection.h"
#include "module/inp/symbols.h"
#include "module/network/element_data.h"
#include "module/network/network_list.h"
#include "module/network/settings_store.h"
#include "platform/text.h"

namespace vessora {

// --- networks ------------------------------------------------------------------------------------

Notices createNetwork(std::u16string_view name) {
  Notices warnings;
  if (std::u16string taken = networkLike(name); !taken.empty()) {
    warnings.push_back({NoticeCode::networkNameTwice, std::u16string(name), std::move(taken)});
  }
  if (const char16_t character = schema::unusableCharacter(name)) {
    warnings.push_back({NoticeCode::networkNameUnusable, std::u16string(name), {character}});
  }
  EpaSettings settings;
  settings.isDefault = 1;
  settings.name = name;
  SaveSettings(settings, true);
  return warnings;
}

void confirmDefaultNetwork(std::u16string_view name) {
  std::vector<std::u16string> names;
  wide256 flagged;
  ListNetworks(names, flagged);
  for (const std::u16string& listed : names) {
    EpaSettings settings;
    LoadSettings(settings, listed);
    settings.isDefault = listed == name ? 1 : 0;
    SaveSettings(settings, false);
  }
}

// --- nodes ---------------------------------------------------------------------------------------

ElementNames namesOfNetwork(std::u16string_view network) {
  ElementNames names;
  CollectNetworkNames(network, names.nodes, names.links, names.notices);
  return names;
}

namespace {

constexpr int kNodeLayerColor = 4;

AcDbObjectId makeNodeLayer(const schema::Kind& kind, std::u16string_view network) {
  return HNGeometry::createNewLayer(schema::layerName(kind.layer, network), nullptr, nullptr,
                                    kNodeLayerColor);
}

// Every kind of node makes the junctions' layer, and then its own. insert(place, layer, added) puts
// the symbol there.
template <class Record, class Insert>
AddedElement addNode(std::u16string_view network, const Record& record, const wide50& height,
                     AcGePoint3d place, ElementNames& names, Insert insert) {
  AddedElement added;
  const schema::Kind& kind = kindOf<Record>();
  acdbRegApp(app::kImport);
  makeNodeLayer(schema::kJunc, network);
  if (makeNodeLayer(kind, network).isNull()) {
    added.warnings.push_back({NoticeCode::elementNotDrawn, record.id.str()});
    return added;
  }
  takeName(record.id, kind, network, names.nodes, added.warnings);
  // The arrows of its flow go to the layers of the current network.
  if (currentNetwork != network) currentNetwork = network;
  place.z = platform::wtof(height);
  insert(place, schema::layerName(kind.layer, network), added);
  warnOfSolver(record, FieldSet::all(), added.warnings);
  return added;
}

// Numbers as attributes show them.
void showRounded(std::initializer_list<wide50*> fields) {
  for (wide50* field : fields) storeShown(*field, platform::wtof(*field));
}

}  // namespace

AddedElement addJunction(std::u16string_view network, const AcGePoint3d& place,
                         const EpaJunc& junction, ElementNames& names) {
  EpaJunc drawn = junction;
  showRounded({&drawn.elev, &drawn.demand});
  return addNode(network, junction, junction.elev, place, names,
                 [&](const AcGePoint3d& at, std::u16string_view layer, AddedElement& added) {
                   InsertJunc(at, layer, drawn, platform::wtof(junction.emitter), added.notices,
                              &added.id);
                 });
}

AddedElement addReservoir(std::u16string_view network, const AcGePoint3d& place,
                          const EpaResv& reservoir, ElementNames& names) {
  EpaResv drawn = reservoir;
  showRounded({&drawn.head});
  return addNode(network, reservoir, reservoir.head, place, names,
                 [&](const AcGePoint3d& at, std::u16string_view layer, AddedElement& added) {
                   InsertResv(at, layer, drawn, added.notices, &added.id);
                 });
}

AddedElement addTank(std::u16string_view network, const AcGePoint3d& place, const EpaTank& tank,
                     ElementNames& names) {
  EpaTank drawn = tank;
  showRounded({&drawn.elev, &drawn.initLevel, &drawn.minLevel, &drawn.maxLevel, &drawn.diameter,
               &drawn.minVol});
  return addNode(network, tank, tank.elev, place, names,
                 [&](const AcGePoint3d& at, std::u16string_view layer, AddedElement& added) {
                   InsertTank(at, layer, drawn, added.notices, &added.id);
                 });
}

}  // namespace vessora
