#include "module/dialogs/filtra_mat.h"

#include "platform/format.h"

namespace vessora {

void DlgFiltraMat::onInit() {
  ModuleDialog::onInit();
  std::vector<std::u16string> names;
  for (const EpaMaterial& row : table_) names.push_back(row.name.str());
  material.setItems(names);
  material.select(0);
  showRoughness();
}

void DlgFiltraMat::onOk() {
  chosen_ = material.shown();
  ModuleDialog::onOk();
}

// The template is no number format, and users know the field as it is: it shows the template.
void DlgFiltraMat::showRoughness() {
  const int at = material.selected();
  if (at < 0) return;
  roughness.setShown(
      platform::format(u"&.5lf", table_[static_cast<std::size_t>(at)].roughness * 1000));
}

}  // namespace vessora
