#include "apps/cli/host.h"

#include <unistd.h>

#include <cstdio>

#include "cad/ui/dialog.h"
#include "platform/text.h"

namespace cli {

platform::Result<void> openDrawing(const std::string& path) {
  cad::Session& session = cad::Session::instance();
  if (path.empty() || path == "-") {
    session.newDrawing();
    return {};
  }
  std::vector<std::string> warnings;
  auto opened = session.openDrawing(path, warnings);
  for (const std::string& warning : warnings) warn(warning);
  return opened;
}

platform::Result<void> saveDrawing(const std::string& path) {
  return cad::Session::instance().saveDrawing(path);
}

// --- jobs ----------------------------------------------------------------------------------------

// Answers nothing. What the module says in a box while it is loaded explains why it cannot be.
class JobSpan::Silent : public cad::ui::Frontend {
 public:
  std::u16string said;
  void print(std::u16string_view) override {}

 protected:
  void showDialog(cad::ui::Dialog& dialog) override { dialog.dismiss(); }
  cad::ui::Pressed showMessage(const cad::ui::Message& message) override {
    said = message.text;
    return cad::ui::escapeAnswer(message.buttons);
  }
  std::optional<std::u16string> showFileQuestion(const cad::ui::FileQuestion&) override {
    return {};
  }
  cad::ui::Answer showPrompt(const cad::ui::Prompt&) override {
    return {cad::ui::Answer::Status::cancel, u""};
  }
  void showInvalid(std::u16string_view) override {}
};

JobSpan::JobSpan(InpMode mode) : ui_(std::make_unique<Silent>()), started_(startHost(*ui_, mode)) {
  if (started_) {
    jobs_ = vessora::Jobs::find();
  } else if (!ui_->said.empty()) {
    started_ = platform::Error{started_.error() + ": " + platform::narrow(ui_->said)};
  }
}

JobSpan::~JobSpan() { stopHost(); }

platform::Result<void> JobSpan::open(const std::string& drawing) {
  return started_ ? openDrawing(drawing) : started_;
}

Progress::Progress(const std::string& what) : visible_(isatty(2) == 1), what_(what) { show(""); }

Progress::~Progress() {
  if (visible_) std::fputs("\r\x1b[K", stderr);
}

void Progress::show(const std::string& text) {
  if (visible_) std::fprintf(stderr, "\r\x1b[K%s %s", what_.c_str(), text.c_str());
}

}  // namespace cli
