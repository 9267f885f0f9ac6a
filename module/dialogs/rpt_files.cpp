#include "module/dialogs/rpt_files.h"

#include <utility>

#include "platform/format.h"

namespace vessora {

void Dlgimprpt::onBrowse() {
  const auto chosen = frontend().askFile({.mode = ui::FileQuestion::Mode::open,
                                          .title = {},
                                          .name = u"*.rpt",
                                          .filter = u"RPT Files (*.rpt)|*.rpt|"});
  if (chosen) path = *chosen;
}

void DlgRptMult::onInit() {
  ModuleDialog::onInit();
  std::vector<ui::ReportList::Row> rows;
  rows.reserve(steps_.size());
  for (const std::u16string& time : steps_) {
    rows.push_back({platform::format(u"%d", rows.size() + 1), time});
  }
  periods.setRows(std::move(rows));
}

void DlgRptMult::onOk() {
  period_ = periods.cell(periods.selected(), 1);
  ModuleDialog::onOk();
}

}  // namespace vessora
