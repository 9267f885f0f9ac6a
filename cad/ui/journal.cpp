#include "cad/ui/journal.h"

#include "cad/ui/fields.h"
#include "cad/ui/names.h"

namespace cad::ui {

std::u16string asAnswer(std::u16string_view text) {
  std::u16string out = quoted(text);
  if (out.front() == u'"') return out;
  if (std::u16string_view(u"#[!@:<").find(out.front()) == std::u16string_view::npos) return out;
  // quoted() leaves such a text alone; a leading blank forces the marks and is taken out again.
  out = quoted(u" " + out);
  return out.erase(1, 1);
}

void Journal::gesture(const Control* control, std::u16string_view name, std::u16string_view rest) {
  // Only typed texts run together: taking items one after the other is as many gestures.
  bool typed = dynamic_cast<const Field*>(control) != nullptr;
  if (!typed || typing_ != control) flush();
  pending_ = std::u16string(name) + std::u16string(rest);
  typing_ = typed ? control : nullptr;
}

void Journal::line(std::u16string_view text, bool retractable) {
  flush();
  pending_ = text;
  retractable_ = retractable;
}

void Journal::retract() {
  if (retractable_) pending_.clear();
  retractable_ = false;
}

void Journal::flush() {
  if (!pending_.empty()) sink_(pending_);
  pending_.clear();
  typing_ = nullptr;
  retractable_ = false;
}

}  // namespace cad::ui
