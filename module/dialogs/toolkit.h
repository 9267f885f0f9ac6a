// The seam to the dialog kit: beside the grids, the one header of the module that includes it, and
// the base of the module's dialogs.
#pragma once

#include <string>
#include <string_view>

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
};

}  // namespace vessora
