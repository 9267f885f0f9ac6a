#include "module/dialogs/materiali.h"

#include "module/host/messages.h"
#include "platform/format.h"
#include "platform/text.h"

namespace vessora {

namespace {

constexpr int kName = 1, kRoughness = 2;
constexpr double kMillimetres = 1000;

}  // namespace

void DlgMateriali::onInit() {
  ModuleDialog::onInit();
  retry_ = false;
  thirdLines_.clear();
  grid.setRowCount(1 + static_cast<int>(table_.size()));
  grid.number(1);
  int row = 1;
  for (const EpaMaterial& material : table_) {
    grid.setCell(row, kName, material.name);
    grid.setCell(row, kRoughness, platform::format(u"%.5lf", material.roughness * kMillimetres));
    thirdLines_.push_back(material.thirdLine.str());
    ++row;
  }
}

bool DlgMateriali::takeRow(int row) {
  const double roughness = platform::wtof(grid.cell(row, kRoughness));
  if (roughness <= 0) return false;
  EpaMaterial& material = table_.emplace_back();
  material.name = grid.cell(row, kName);
  material.roughness = roughness * 0.001;
  material.thirdLine = thirdLines_[static_cast<std::size_t>(row - 1)];
  return true;
}

void DlgMateriali::onOk() {
  table_.clear();
  for (int row = 1; row < grid.rowCount() && !retry_; ++row) {
    if (takeRow(row)) continue;
    showMessage(TraduciTesto(u"Inserire un valore numerico positivo!"));
    retry_ = true;
  }
  thirdLines_.clear();
  end(ui::Outcome::ok);
}

void DlgMateriali::onCancel() {
  thirdLines_.clear();
  end(ui::Outcome::cancel);
}

}  // namespace vessora
