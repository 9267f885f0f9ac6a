#include "cad/ui/control.h"

#include "cad/ui/dialog.h"

namespace cad::ui {

Visitor::~Visitor() = default;

Group::Group(Dialog* dialog, std::u16string_view title)
    : dialog_(dialog), title_(title), declaredTitle_(title) {
  dialog_->add(*this);
}

Group::Group(Group* outer, std::u16string_view title)
    : dialog_(outer->dialog_), outer_(outer), title_(title), declaredTitle_(title) {
  dialog_->add(*this);
}

Group::~Group() { dialog_->remove(*this); }

Control::Control(Place place, std::u16string_view label, Face face)
    : dialog_(place.dialog),
      group_(place.group),
      face_(std::move(face)),
      label_(label),
      declaredLabel_(label),
      enabled_(face_.enabled),
      visible_(face_.visible) {
  dialog_->add(*this);
}

Control::~Control() { dialog_->remove(*this); }

void Control::setLabel(std::u16string_view label) {
  label_ = label;
  refresh();
}

void Control::setEnabled(bool enabled) {
  enabled_ = enabled;
  refresh();
}

void Control::setVisible(bool visible) {
  visible_ = visible;
  refresh();
}

Gesture Control::ready() const {
  if (!visible_) return platform::Error{"Il controllo è nascosto."};
  if (!enabled_) return platform::Error{"Il controllo è disattivato."};
  return {};
}

Gesture Control::enter(std::u16string_view text) {
  if (auto able = ready(); !able) return able;
  return onEnter(text);
}

Gesture Control::choose(int item) {
  if (auto able = ready(); !able) return able;
  return onChoose(item);
}

Gesture Control::press() {
  if (auto able = ready(); !able) return able;
  return onPress();
}

Gesture Control::doubleClick(int row) {
  if (auto able = ready(); !able) return able;
  return onDoubleClick(row);
}

Gesture Control::onEnter(std::u16string_view) {
  return platform::Error{"Il controllo non accetta un testo."};
}

Gesture Control::onChoose(int) { return platform::Error{"Il controllo non ha voci da scegliere."}; }

Gesture Control::onPress() { return platform::Error{"Il controllo non si può premere."}; }

Gesture Control::onDoubleClick(int) {
  return platform::Error{"Il controllo non ha righe da aprire."};
}

void Control::done(std::u16string_view rest, const Handler& handler) {
  gesture_ = true;
  dialog_->journal(*this, rest);
  refresh();
  if (handler) handler(*dialog_);
}

void Control::refresh() { dialog_->changed(*this); }

void Control::resetFace() {
  gesture_ = false;
  label_ = declaredLabel_;
  enabled_ = face_.enabled;
  visible_ = face_.visible;
}

void Control::visitTexts(const TextVisitor& visit) { visit(label_); }

}  // namespace cad::ui
