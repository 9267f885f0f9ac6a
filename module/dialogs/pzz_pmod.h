// Which symbol manholes of a profile get in the plan, and how large.
#pragma once

#include "module/dialogs/toolkit.h"
#include "schema/element.h"

namespace vessora {

class Dlgpzzpmod : public ModuleDialog {
 public:
  Dlgpzzpmod()
      : ModuleDialog(u"Pozzetti Profilo->Modello",
                     u"_Comando_Pozzetti_Profilo_gt_Modello_hnpzzpmod_.htm") {}

  ui::Group manholes{this, u"Pozzetti"};
  ui::RadioGroup symbol{
      &manholes,
      u"",
      {.name = u"Simbolo",
       .items = std::vector<std::u16string>(std::size(schema::kManholeBlocks)),
       .pictures = {std::begin(schema::kManholeBlocks), std::end(schema::kManholeBlocks)}}};
  ui::Real scale{this, u"Scala XYZ", {.initial = 1.0, .min = 0.0000001}};
  ui::Button ok{this, u"OK", {.role = ui::Role::ok, .isDefault = true}};
  ui::Button cancel{this, u"Annulla", {.role = ui::Role::cancel}};
  ui::Button help{this, u"?", {.role = ui::Role::help}};
};

}  // namespace vessora
