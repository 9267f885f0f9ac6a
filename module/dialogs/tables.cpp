#include "module/dialogs/tables.h"

namespace vessora {

void DlgTables::flip(std::initializer_list<ui::Check*> boxes) {
  for (ui::Check* box : boxes) box->setChecked(!box->checked());
}

const char16_t* DlgTables::fault() const {
  if (rowHeight.value() == 0) return u"Inserire altezza righe";
  if (columnWidth.value() == 0) return u"Inserire larghezza colonne";
  if (rowHeight.value() < 0) return u"Inserire un numero positivo per l'altezza delle righe";
  if (columnWidth.value() < 0) {
    return u"Inserire un numero positivo per la larghezza delle colonne";
  }
  return nullptr;
}

}  // namespace vessora
