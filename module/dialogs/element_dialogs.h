// The dialogs of the six kinds of element, shared by the commands that add and that modify one.
//
// A dialog holds working values. It never touches the drawing, and it neither looks whether a name
// is taken nor refuses an empty one: commands do that after OK, and open the dialog again. It then
// shows the values last entered, and its lists are filled and selected anew.
//
// In full no range holds up a field that was left alone.
//
// The caller sets `newElement` and the fields, and reads them back after OK. Lists that are handed
// over stay the caller's, must outlive the dialog and are only read. Texts that records keep in 50
// characters cannot be typed longer.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "module/dialogs/toolkit.h"
#include "module/network/materials.h"
#include "module/network/records.h"

namespace vessora {

class ElementDialog : public ModuleDialog {
 public:
  bool newElement = false;
  // On an element that is there already: the name that it came with, whatever was typed since.
  std::u16string oldName;

  ui::Picture picture;
  ui::Text name;

  void onInit() override;

 protected:
  static constexpr std::size_t kShort = wide50::capacity - 1;

  ElementDialog(std::u16string_view title, std::u16string_view pictureName,
                std::u16string_view nameLabel);
  // The last step of opening, when the lists are filled.
  void opened();
};

class Dlgjunc : public ElementDialog {
 public:
  explicit Dlgjunc(const std::vector<EpaPattern>& patterns);

  ui::Real elevation{this, u"Quota del nodo [m]"};
  ui::Real demand{this, u"Portata al nodo[l/s]"};
  ui::Real emitter{this, u"Coef. di Emitter", {.min = 0}};
  ui::Choice pattern{this, u"Pattern di domanda", {.order = ui::Order::sorted, .translate = false}};
  ui::Button ok{this, u"OK", {.role = ui::Role::ok, .isDefault = true}};
  ui::Button cancel{this, u"Annulla", {.role = ui::Role::cancel}};

  void onInit() override;

 private:
  const std::vector<EpaPattern>& patterns_;
};

class Dlgresv : public ElementDialog {
 public:
  explicit Dlgresv(const std::vector<EpaPattern>& patterns);

  ui::Real head{this, u"Carico totale [m]"};
  ui::Choice pattern{this, u"Pattern di Carico", {.order = ui::Order::sorted, .translate = false}};
  ui::Button ok{this, u"OK", {.role = ui::Role::ok, .isDefault = true}};
  ui::Button cancel{this, u"Annulla", {.role = ui::Role::cancel}};

  void onInit() override;

 private:
  const std::vector<EpaPattern>& patterns_;
};

// Levels are not compared with each other.
class Dlgtank : public ElementDialog {
 public:
  explicit Dlgtank(const std::vector<EpaCurve>& curves);

  ui::Real elevation{this, u"Quota del fondo [m]"};
  ui::Real diameter{this, u"Diametro [m]", {.initial = 1.0, .min = 0.0001}};
  ui::Real initLevel{this, u"Livello iniziale [m]"};
  ui::Real minLevel{this, u"Livello minimo [m]"};
  ui::Real maxLevel{this, u"Livello massimo [m]"};
  ui::Real minVolume{this, u"Volume minimo [mc]"};
  ui::Choice curve{this, u"Curva Volume", {.translate = false}};
  ui::Button ok{this, u"OK", {.role = ui::Role::ok, .isDefault = true}};
  ui::Button cancel{this, u"Annulla", {.role = ui::Role::cancel}};

  void onInit() override;

 private:
  const std::vector<EpaCurve>& curves_;
};

// A material brings its roughness under the formula "D-W" alone; under the others none can be
// chosen.
class Dlgpipe : public ElementDialog {
 public:
  // `chosenMaterial` is the command's: on a pipe that is there already the list opens on the
  // material that it names, and OK puts the list's text there.
  Dlgpipe(std::u16string& chosenMaterial, const std::vector<EpaMaterial>& table);

  std::u16string headloss;  // formula of the network, "H-W" unless the caller says otherwise

  ui::Real length{this, u"Lunghezza [m]", {.min = 0.0001, .enabled = false}};
  ui::Check lengthEnabled{this, u"Abilita", {}, &Dlgpipe::onEnableLength};
  ui::Real diameter{this, u"Diametro [mm]", {.initial = 200.0, .min = 0.0001}};
  ui::Real minorLoss{this, u"Perdita concentrata", {.min = 0}};
  ui::Real roughness{this, u"Scabrezza", {.initial = 0.002, .min = 0.000000001}};
  ui::Choice status{
      this, u"Stato", {.items = {u"Open", u"Close"}, .initial = 0, .translate = false}};
  ui::Choice material{this, u"Materiale", {.translate = false}, &Dlgpipe::onMaterial};
  ui::Button ok{this, u"OK", {.role = ui::Role::ok, .isDefault = true}};
  ui::Button cancel{this, u"Annulla", {.role = ui::Role::cancel}};

  void onInit() override;
  void onOk() override;

 private:
  void onEnableLength() { length.setEnabled(lengthEnabled.checked()); }
  void onMaterial();
  const EpaMaterial* chosenRow() const;

  std::u16string& chosenMaterial_;
  const std::vector<EpaMaterial>& table_;
};

class Dlgvalv : public ElementDialog {
 public:
  Dlgvalv();

  ui::Real diameter{this, u"Diametro [mm]", {.initial = 200.0, .min = 0.0001}};
  ui::Text setting{this, u"Setting", {.capacity = kShort}};
  ui::Real minorLoss{this, u"Perdita concentrata"};
  ui::Choice type{this,
                  u"Tipo",
                  {.items = {u"PRV", u"PSV", u"GPV", u"TCV", u"FCV", u"PBV"},
                   .initial = 0,
                   .translate = false}};
  ui::Choice status{
      this, u"Stato", {.items = {u"None", u"Open", u"Closed"}, .initial = 0, .translate = false}};
  ui::Button ok{this, u"OK", {.role = ui::Role::ok, .isDefault = true}};
  ui::Button cancel{this, u"Annulla", {.role = ui::Role::cancel}};

  void onInit() override;
};

// Numbers are texts here, and nothing is checked. Head curve and power exclude each other nowhere.
class Dlgpump : public ElementDialog {
 public:
  Dlgpump(const std::vector<EpaCurve>& curves, const std::vector<EpaPattern>& patterns);

  ui::Choice status{
      this, u"Stato", {.items = {u"Open", u"Closed"}, .initial = 0, .translate = false}};
  ui::Choice headCurve{this, u"Curva", {.translate = false}};
  ui::Choice efficiencyCurve{this, u"Curva efficienza", {.translate = false}};
  ui::Text speed{this, u"Velocità [m/s]", {.capacity = kShort}};
  ui::Choice speedPattern{this, u"Pattern velocità", {.translate = false}};
  ui::Text price{this, u"Prezzo Energia", {.capacity = kShort}};
  ui::Choice pricePattern{this, u"Pattern prezzo", {.translate = false}};
  ui::Text power{this, u"Potenza [KWatt]", {.capacity = kShort}};
  ui::Button ok{this, u"OK", {.role = ui::Role::ok, .isDefault = true}};
  ui::Button cancel{this, u"Annulla", {.role = ui::Role::cancel}};

  void onInit() override;

 private:
  const std::vector<EpaCurve>& curves_;
  const std::vector<EpaPattern>& patterns_;
};

}  // namespace vessora
