// One time pattern or one curve, with its values in a grid.
#pragma once

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "module/dialogs/toolkit.h"
#include "module/grid/my_grid.h"
#include "module/network/records.h"

namespace vessora {

// What a user is told whose name is taken, here and by the manager.
inline constexpr char16_t kPatternTaken[] = u"Pattern già esistente! Inserire un altro nome.";
inline constexpr char16_t kCurveTaken[] = u"Curva già esistente! Inserire un altro nome.";

// Opens on `record`, which gets what was typed on OK; a record that is not new must have a name
// that is free among `others`, it itself aside, and `accepted` says whether it has. All must
// outlive the dialog. Opened again, it shows what was typed.
class DlgPattern : public ModuleDialog {
 public:
  DlgPattern(EpaPattern& record, const std::vector<EpaPattern>& others, bool isNew, bool& accepted);
  DlgPattern(EpaCurve& record, const std::vector<EpaCurve>& others, bool isNew, bool& accepted);

  ui::Text name{this, u"Nome pattern"};
  ui::Choice kind{
      this,
      u"Tipo Curva",
      {.items = {u"VOLUME", u"PUMP", u"EFFICIENCY", u"HEADLOSS"}, .initial = 0, .translate = false},
      &DlgPattern::showTitles};
  MyGridPAT grid{
      this,
      u"",
      {.name = u"Valori",
       .columns = {{.title = u"Periodo", .width = 50}, {.title = u"Moltiplicatore", .width = 108}},
       .fixedColumns = 1,
       .rowHeight = 20}};
  ui::Button ok{this, u"OK", {.role = ui::Role::ok, .isDefault = true}};
  ui::Button cancel{this, u"Annulla", {.role = ui::Role::cancel}};

  void onInit() override;
  void onOk() override;
  void onCancel() override;

 private:
  bool isCurve() const { return curve_ != nullptr; }
  void addRow(double x, double y);
  void setTitles(std::u16string_view curveKind);
  void showTitles() { setTitles(kind.shown()); }
  void keepRows();
  bool nameAccepted();
  bool takeMultipliers();
  bool hasOpenedWith(const std::u16string& cell) const;
  void takePoints();
  void refuse(const char16_t* text);

  using Row = std::array<std::u16string, 2>;
  // Of the two kinds of record only one is there.
  EpaPattern* pattern_ = nullptr;
  const std::vector<EpaPattern>* patterns_ = nullptr;
  EpaCurve* curve_ = nullptr;
  const std::vector<EpaCurve>* curves_ = nullptr;
  const bool isNew_;
  bool& accepted_;
  const std::u16string oldName_;
  std::u16string titledKind_;  // by which the columns are called as the dialog opens
  std::vector<Row> rows_;      // as the dialog opens
};

}  // namespace vessora
