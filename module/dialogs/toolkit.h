// The seam to the dialog kit: beside the grids, the one header of the module that includes it, and
// the base of the module's dialogs.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "cad/ui/dialog.h"
#include "module/host/host_drawing.h"
#include "module/host/module.h"
#include "module/host/translate.h"

namespace vessora {

// The kit's controls under their own names, for the declarations of dialogs.
namespace ui = cad::ui;

// Passes its texts through the translator as it opens, and its help through the help launcher. A
// dialog with an onInit of its own calls this one first, so that what it fills in then (names,
// numbers) stays as it is.
class ModuleDialog : public ui::Dialog {
 public:
  explicit ModuleDialog(std::u16string_view title, std::u16string_view helpTopic = {})
      : Dialog(title, helpTopic) {}

  // Opens the dialog in this session; true for OK.
  bool doModal() { return run(acedFrontend()) == ui::Outcome::ok; }

  void onInit() override { TranslateDialog(*this); }
  void onHelp() override { showHelp(helpTopic()); }
  std::u16string translate(std::u16string_view text) override {
    return TraduciTesto(std::u16string(text).c_str());
  }

  // Whether something else stands in a control than when noteOpened() was called; before that
  // nothing does. Of lists, which may open on another line than the stored one, whether the user
  // has chosen any.
  bool isTouched(const ui::Control& control) const {
    const auto at = std::find(controls().begin(), controls().end(), &control);
    const auto index = static_cast<std::size_t>(at - controls().begin());
    if (index >= opened_.size()) return false;
    const bool chosen = control.hasGesture() && dynamic_cast<const ui::ListControl*>(&control);
    return chosen || opened_[index] != control.shown();
  }

 protected:
  // For the end of onInit: what stands in the controls now is what the dialog opened with.
  void noteOpened() {
    opened_.clear();
    for (const ui::Control* control : controls()) opened_.push_back(control->shown());
  }

 private:
  std::vector<std::u16string> opened_;  // what the controls showed
};

}  // namespace vessora
