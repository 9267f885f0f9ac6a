#include "module/dialogs/inp_files.h"

namespace vessora {

std::u16string DlgExpInp::proposedFolder() { return installPath + u"vessora\\temp\\"; }

void DlgExpInp::onInit() {
  ModuleDialog::onInit();
  const std::u16string stem = proposedFolder() + currentNetwork.c_str();
  path = stem + u".inp";
  csvPath_ = stem + u".csv";
}

void DlgExpInp::onBrowse() {
  const auto chosen = frontend().askFile({.mode = ui::FileQuestion::Mode::save,
                                          .title = {},
                                          .name = currentNetwork.str(),
                                          .filter = u"INP Files (*.inp)|*.inp|"});
  if (!chosen) return;
  path = *chosen;
  // The listing's name comes from the last three characters, whatever they are.
  csvPath_ = chosen->substr(0, chosen->size() < 3 ? 0 : chosen->size() - 3) + u"csv";
}

void DlgExpInp::onOk() {
  if (!updateData()) return;
  resistanceFormulaIndex = formula.selected();
  end(ui::Outcome::ok);
}

void CDlgimpinp::onBrowse() {
  const auto chosen = frontend().askFile({.mode = ui::FileQuestion::Mode::open,
                                          .title = {},
                                          .name = u"*.inp",
                                          .filter = u"Epanet Files (*.inp)|*.inp|"});
  if (chosen) path = *chosen;
}

}  // namespace vessora
