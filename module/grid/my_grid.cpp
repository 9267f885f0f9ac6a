#include "module/grid/my_grid.h"

#include "module/host/translate.h"
#include "platform/format.h"

namespace vessora {

namespace {

enum Entry { kCopy, kPaste, kInsertRow, kDeleteRow };
constexpr const char16_t* kEntries[] = {u"Copia", u"Incolla", u"Inserisci Riga", u"Elimina Riga"};
constexpr char16_t kNewThirdLine[] = u"0,0,0";

}  // namespace

std::vector<std::u16string> RowGrid::menu() const {
  std::vector<std::u16string> entries;
  for (const char16_t* entry : kEntries) entries.emplace_back(TraduciTesto(entry));
  TranslateMenu(entries.data(), static_cast<int>(entries.size()));
  return entries;
}

void RowGrid::number(int row) {
  if (fixedColumns() == 0) return;
  for (; row < rowCount(); ++row) setCell(row, 0, platform::format(u"%d", row));
}

void RowGrid::onMenu(int entry, Cell at) {
  // On the header nothing is selected; what has been copied before stays.
  if (entry == kCopy && hasSelection()) dialog().frontend().setClipboard(copied());
  if (entry == kPaste) paste(dialog().frontend().clipboard());
  if (entry == kInsertRow && at.row >= 1 && insertRow(at.row)) {
    number(at.row);
    rowInserted(at.row);
  }
  if (entry == kDeleteRow && deleteRow(at.row)) {
    number(at.row);
    rowDeleted(at.row);
  }
}

void MyGrid::rowInserted(int row) {
  thirdLines_.insert(thirdLines_.begin() + (row - 1), kNewThirdLine);
}

void MyGrid::rowDeleted(int row) { thirdLines_.erase(thirdLines_.begin() + (row - 1)); }

void MyGridPAT::setCurve(bool isCurve) {
  isCurve_ = isCurve;
  setColumns({{.title = column(0).title, .width = isCurve ? 79 : 50},
              {.title = column(1).title, .width = isCurve ? 79 : 108}});
  setFixedColumns(isCurve ? 0 : 1);
}

}  // namespace vessora
