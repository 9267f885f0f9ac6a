// Adding a junction, a reservoir or a tank at a picked point.
#include "module/dialogs/element_dialogs.h"
#include "module/editing/add_element.h"
#include "module/editing/element_names.h"
#include "module/host/messages.h"
#include "module/network/element_data.h"
#include "module/network/pattern_curve_store.h"

namespace vessora {

namespace {

// False when the user gives up: there is no point then to put a node at.
bool askForPlace(AcGePoint3d& place) {
  AcGePoint3d picked;
  if (acedGetPoint(nullptr, TraduciTesto(u"\nSelezionare un punto..."), picked) != RTNORM) {
    return false;
  }
  place = toWorld(picked);
  return true;
}

// Runs the dialog until a free name stands in it; `taken` is what the user is told of one that is
// not. False when he gives up.
bool askForNode(ElementDialog& dialog, const std::vector<std::u16string>& names,
                const char16_t* taken) {
  dialog.newElement = true;
  dialog.name = proposed(nextNodeNumber);
  while (dialog.doModal()) {
    if (LinkNameExists(dialog.name.value(), names)) {
      showMessage(TraduciTesto(taken));
      dialog.name = u"";
    } else if (dialog.name.value().empty()) {
      showMessage(TraduciTesto(u"Nome assente. Inserire un nome!"));
    } else {
      return true;
    }
  }
  return false;
}

void finish(const AddedElement& added) {
  tellAdded(added);
  ++nextNodeNumber;
}

}  // namespace

void addJunctionAtPoint(ElementNames& names) {
  AcGePoint3d place;
  if (!askForPlace(place)) return;
  std::vector<EpaPattern> patterns;
  LoadPatterns(patterns, currentNetwork);
  Dlgjunc dialog(patterns);
  dialog.elevation = place.z;
  if (!askForNode(dialog, names.nodes, u"Nodo già esistente. Inserire un'altro nome!")) return;
  EpaJunc junction;
  junction.id = dialog.name.value();
  storeExactly(junction.elev, dialog.elevation.value());
  storeExactly(junction.demand, dialog.demand.value());
  storeExactly(junction.emitter, dialog.emitter.value());
  junction.pattern = dialog.pattern.value();
  finish(addJunction(currentNetwork, place, junction, names));
}

void addReservoirAtPoint(ElementNames& names) {
  AcGePoint3d place;
  if (!askForPlace(place)) return;
  std::vector<EpaPattern> patterns;
  LoadPatterns(patterns, currentNetwork);
  Dlgresv dialog(patterns);
  dialog.head = place.z;
  if (!askForNode(dialog, names.nodes, u"Serbatoio già esistente. Inserire un'altro nome!")) return;
  EpaResv reservoir;
  reservoir.id = dialog.name.value();
  storeExactly(reservoir.head, dialog.head.value());
  reservoir.pattern = dialog.pattern.value();
  finish(addReservoir(currentNetwork, place, reservoir, names));
}

void addTankAtPoint(ElementNames& names) {
  AcGePoint3d place;
  if (!askForPlace(place)) return;
  std::vector<EpaCurve> curves;
  LoadCurves(curves, currentNetwork);
  Dlgtank dialog(curves);
  dialog.elevation = place.z;
  if (!askForNode(dialog, names.nodes, u"Tank già esistente. Inserire un'altro nome!")) return;
  EpaTank tank;
  tank.id = dialog.name.value();
  storeExactly(tank.elev, dialog.elevation.value());
  storeExactly(tank.initLevel, dialog.initLevel.value());
  storeExactly(tank.minLevel, dialog.minLevel.value());
  storeExactly(tank.maxLevel, dialog.maxLevel.value());
  storeExactly(tank.diameter, dialog.diameter.value());
  storeExactly(tank.minVol, dialog.minVolume.value());
  tank.volCurve = dialog.curve.value();
  finish(addTank(currentNetwork, place, tank, names));
}

}  // namespace vessora
