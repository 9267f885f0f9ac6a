// The manager of a network's time patterns and curves.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "module/dialogs/toolkit.h"
#include "module/network/records.h"

namespace vessora {

// What each press of the manager does to the drawing at once, and the list that it works on: that
// of the network as the manager opens. What is deleted stays in it, and its name taken, until the
// manager closes.
template <class Record>
struct RecordStore {
  std::vector<Record> records;
  std::function<void(const Record&)> add;
  std::function<void(const Record&, std::u16string_view oldName)> replace;
  std::function<void(std::u16string_view name)> remove;
};

// The stores must outlive the dialog.
class DlgGest_PTN : public ModuleDialog {
 public:
  DlgGest_PTN(RecordStore<EpaPattern>& patterns, RecordStore<EpaCurve>& curves)
      : ModuleDialog(u"Gestione Pattern/Curve", u"_Comando_Gestione_Pattern_hnsetpat_.htm"),
        patterns_(patterns),
        curves_(curves) {}

  ui::Group patternBox{this, u"Pattern"};
  ui::Choice patternNames{
      &patternBox, u"Pattern esistenti", {.order = ui::Order::sorted, .translate = false}};
  ui::Button newPattern{&patternBox, u"Nuovo...", &DlgGest_PTN::onNewPattern};
  ui::Button editPattern{&patternBox, u"Modifica...", &DlgGest_PTN::onEditPattern};
  ui::Button deletePattern{&patternBox, u"Elimina...", &DlgGest_PTN::onDeletePattern};

  ui::Group curveBox{this, u"Curve"};
  ui::Choice curveNames{
      &curveBox, u"Curve esistenti", {.order = ui::Order::sorted, .translate = false}};
  ui::Button newCurve{&curveBox, u"Nuovo...", &DlgGest_PTN::onNewCurve};
  ui::Button editCurve{&curveBox, u"Modifica...", &DlgGest_PTN::onEditCurve};
  ui::Button deleteCurve{&curveBox, u"Elimina...", &DlgGest_PTN::onDeleteCurve};

  ui::Button ok{this, u"OK", {.role = ui::Role::ok, .isDefault = true}};
  ui::Button help{this, u"?", {.role = ui::Role::help}};

  void onInit() override;

 private:
  void onNewPattern();
  void onEditPattern();
  void onDeletePattern();
  void onNewCurve();
  void onEditCurve();
  void onDeleteCurve();

  RecordStore<EpaPattern>& patterns_;
  RecordStore<EpaCurve>& curves_;
};

}  // namespace vessora
