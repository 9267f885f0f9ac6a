#include "module/dialogs/set_mat.h"

#include "module/host/messages.h"
#include "platform/format.h"
#include "platform/text.h"

namespace vessora {

namespace {

constexpr double kLeastRoughness = 0.0000000001;

std::u16string inMillimetres(const EpaMaterial& row) {
  return platform::format(u"%.5lf", row.roughness * 1000);
}

}  // namespace

void DlgSetMat::onInit() {
  ModuleDialog::onInit();
  std::vector<std::u16string> names;
  for (const EpaMaterial& row : table_) names.push_back(row.name.str());
  wantedMaterial.setItems(names);
  newMaterial.setItems(names);
  wantedMaterial.select(0);
  newMaterial.select(0);
  newRoughness = inMillimetres(table_.front());
}

void DlgSetMat::onCriterion() {
  wantedRoughness.setEnabled(criterion.selected() == 0);
  wantedMaterial.setEnabled(criterion.selected() == 1);
}

// A material of no roughness leaves the box with that of the one before.
void DlgSetMat::onNewMaterial() {
  const EpaMaterial& row = table_[static_cast<std::size_t>(newMaterial.selected())];
  if (row.roughness > kLeastRoughness) newRoughness = inMillimetres(row);
}

// False after telling the user that there is nothing to search for.
bool DlgSetMat::findByRoughness() {
  const double value = platform::wtof(wantedRoughness.shown());
  if (value > 0) {
    found_ = search_.byRoughness(value);
    return true;
  }
  showMessage(TraduciTesto(u"Inserire un valore numerico positivo!"));
  if (!wantedRoughness.shown().empty()) onStale();
  wantedRoughness = u"";
  return false;
}

// A search without result leaves the button as it is: right after one with a result it can be
// pressed, and assigns nothing.
void DlgSetMat::onSearch() {
  result = u"";
  found_.clear();
  if (criterion.selected() == 0) {
    if (!findByRoughness()) return;
  } else {
    found_ = search_.byMaterial(wantedMaterial.shown());
  }
  if (found_.empty()) return;
  std::u16string text = platform::format(TraduciTesto(u"Trovati %d"), found_.size());
  text += TraduciTesto(u" rami.");
  result = text;
  assign.setEnabled(true);
}

void DlgSetMat::onOk() {
  material_ = newMaterial.shown();
  roughness_ = newRoughness.shown();
  ModuleDialog::onOk();
}

}  // namespace vessora
