// The table of pipe materials as a grid.
#pragma once

#include <string>
#include <vector>

#include "module/dialogs/toolkit.h"
#include "module/grid/my_grid.h"
#include "module/network/materials.h"

namespace vessora {

// Opens on the rows of `table`, which outlives the dialog, and puts the grid's rows there on OK. A
// row without a positive roughness ends the dialog all the same, with retry() set and the rows
// before it in the table.
class DlgMateriali : public ModuleDialog {
 public:
  explicit DlgMateriali(std::vector<EpaMaterial>& table)
      : ModuleDialog(u"Materiali Tubazioni", u"_Comando_Gestione_materiali_hnmatepa_.htm"),
        table_(table) {}

 private:
  std::vector<EpaMaterial>& table_;
  std::vector<std::u16string> thirdLines_;  // one for each data row
  bool retry_ = false;

 public:
  MyGrid grid{this,
              u"",
              {.name = u"Materiali",
               .columns = {{.title = u"N.", .width = 25, .readOnly = true},
                           {.title = u"Materiale", .width = 164},
                           {.title = u"Scabrezza [mm]", .width = 150}},
               .fixedColumns = 1,
               .rowHeight = 25},
              thirdLines_};
  ui::Button ok{this, u"OK", {.role = ui::Role::ok, .isDefault = true}};
  ui::Button cancel{this, u"Annulla", {.role = ui::Role::cancel}};
  ui::Button help{this, u"?", {.role = ui::Role::help}};

  bool retry() const { return retry_; }

  void onInit() override;
  void onOk() override;
  void onCancel() override;

 private:
  bool takeRow(int row);
};

}  // namespace vessora
