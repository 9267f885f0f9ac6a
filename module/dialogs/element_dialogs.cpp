#include "module/dialogs/element_dialogs.h"

#include <algorithm>

namespace vessora {

namespace {

// The names of patterns behind a blank line, sorted. On an edit the line at the stored position of
// the element's pattern is selected, which counts neither the blank line nor the sorting: users
// know that they have to look at this list before OK.
void openSorted(ui::Choice& list, const std::vector<EpaPattern>& patterns, bool newElement) {
  std::vector<std::u16string> names = {u""};
  for (const EpaPattern& pattern : patterns) names.push_back(pattern.id.str());
  list.setItems(names);
  int position = 0;
  if (!newElement) {
    for (std::size_t i = 0; i < patterns.size(); ++i) {
      if (patterns[i].id == list.value()) position = static_cast<int>(i);
    }
  }
  list.select(position);
}

// The first line behind the blank one that begins with the list's value, or else the blank one.
void selectByPrefix(ui::Choice& list) {
  const int found = list.find(list.value(), 0);
  list.select(found >= 1 ? found : 0);
}

std::vector<std::u16string> curvesOfKind(const std::vector<EpaCurve>& curves,
                                         std::u16string_view kind) {
  std::vector<std::u16string> names = {u""};
  for (const EpaCurve& curve : curves) {
    if (curve.kind == kind) names.push_back(curve.id.str());
  }
  return names;
}

}  // namespace

// --- what they are called ------------------------------------------------------------------------

ElementDialog::ElementDialog(std::u16string_view title, std::u16string_view pictureName,
                             std::u16string_view nameLabel)
    : ModuleDialog(title), picture(this, pictureName), name(this, nameLabel) {}

Dlgjunc::Dlgjunc(const std::vector<EpaPattern>& patterns)
    : ElementDialog(u"Nodo", u"nodo", u"Nome del nodo"), patterns_(patterns) {}

Dlgresv::Dlgresv(const std::vector<EpaPattern>& patterns)
    : ElementDialog(u"Serbatoio", u"serbatoio", u"Nome del serbatoio"), patterns_(patterns) {}

Dlgtank::Dlgtank(const std::vector<EpaCurve>& curves)
    : ElementDialog(u"Tank", u"vasca", u"Nome del tank"), curves_(curves) {}

Dlgpipe::Dlgpipe(std::u16string& chosenMaterial, const std::vector<EpaMaterial>& table)
    : ElementDialog(u"Ramo", u"condotta", u"Nome del ramo"),
      headloss(u"H-W"),
      chosenMaterial_(chosenMaterial),
      table_(table) {}

Dlgvalv::Dlgvalv() : ElementDialog(u"Valvola", u"valvola", u"Nome della valvola") {}

Dlgpump::Dlgpump(const std::vector<EpaCurve>& curves, const std::vector<EpaPattern>& patterns)
    : ElementDialog(u"Pompa", u"pompa", u"Nome"), curves_(curves), patterns_(patterns) {}

void ElementDialog::onInit() {
  ModuleDialog::onInit();
  if (!newElement && oldName.empty()) oldName = name.value();
}

void ElementDialog::opened() {
  if (!newElement && inpIsFull()) {
    for (ui::Control* control : controls()) {
      if (auto* const real = dynamic_cast<ui::Real*>(control)) real->admitValue();
    }
  }
  noteOpened();
}

// --- nodes ---------------------------------------------------------------------------------------

void Dlgjunc::onInit() {
  ElementDialog::onInit();
  openSorted(pattern, patterns_, newElement);
  opened();
}

void Dlgresv::onInit() {
  ElementDialog::onInit();
  openSorted(pattern, patterns_, newElement);
  opened();
}

// A curve goes to its place among all curves, and stays out where the list is not that long yet:
// behind a curve of another kind no volume curve is shown.
void Dlgtank::onInit() {
  ElementDialog::onInit();
  curve.setItems({u""});
  for (std::size_t i = 0; i < curves_.size(); ++i) {
    if (curves_[i].kind != u"VOLUME") continue;
    curve.insert(static_cast<int>(i) + 1, curves_[i].id.view());
  }
  selectByPrefix(curve);
  opened();
}

// --- links ---------------------------------------------------------------------------------------

// The status needs nothing: as it opens it shows the line that begins with the stored text, and the
// first one where none does ("Closed", "CV").
void Dlgpipe::onInit() {
  ElementDialog::onInit();
  lengthEnabled = false;
  std::vector<std::u16string> names = {TraduciTesto(u"Nessun Materiale")};
  for (const EpaMaterial& row : table_) names.push_back(row.name.str());
  material.setItems(names);
  material.select(newElement ? 0 : std::max(material.find(chosenMaterial_), 0));
  opened();
}

// The table's row of the line that is selected, when it can give its roughness to this network.
const EpaMaterial* Dlgpipe::chosenRow() const {
  if (material.selected() < 1 || headloss != u"D-W") return nullptr;
  const auto at = static_cast<std::size_t>(material.selected()) - 1;
  if (at >= table_.size()) return nullptr;
  const EpaMaterial& row = table_[at];
  return row.name == material.shown() && row.roughness > 0.000000001 ? &row : nullptr;
}

// A field that cannot be taken over is complained about, and holds up nothing: a material that
// cannot be used must not stay in the list.
void Dlgpipe::onMaterial() {
  updateData();
  if (const EpaMaterial* const row = chosenRow()) {
    roughness = row->roughness * 1000;
    roughness.setEnabled(false);
    return;
  }
  material.select(0);
  roughness = 0.02;
  roughness.setEnabled(true);
}

void Dlgpipe::onOk() {
  ModuleDialog::onOk();
  if (outcome() == ui::Outcome::ok) chosenMaterial_ = material.value();
}

void Dlgvalv::onInit() {
  ElementDialog::onInit();
  if (newElement) {
    type.select(0);
    status.select(0);
  } else {
    type.select(type.findSame(type.value()));
    status.select(status.findSame(status.value()));
  }
  opened();
}

void Dlgpump::onInit() {
  ElementDialog::onInit();
  std::vector<std::u16string> names = {u""};
  for (const EpaPattern& pattern : patterns_) names.push_back(pattern.id.str());
  headCurve.setItems(curvesOfKind(curves_, u"PUMP"));
  efficiencyCurve.setItems(curvesOfKind(curves_, u"EFFICIENCY"));
  pricePattern.setItems(names);
  speedPattern.setItems(names);
  if (newElement) {
    status.select(0);
  } else {
    status.select(status.findSame(status.value()));
  }
  for (ui::Choice* list : {&headCurve, &efficiencyCurve, &pricePattern, &speedPattern}) {
    if (newElement) {
      list->select(0);
    } else {
      selectByPrefix(*list);
    }
  }
  opened();
}

}  // namespace vessora
