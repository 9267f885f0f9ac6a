// The front end of the window: dialogs and messages are windows of their own, questions go to the
// broker, what commands print to the command line.
#pragma once

#include <QObject>
#include <QString>

#include "apps/desktop/prompt_broker.h"

class QWidget;

namespace desktop {

class QtFrontend : public QObject, public cad::ui::Frontend {
  Q_OBJECT

 public:
  // Dialogs open over `window`, which must outlive it; null while there is none.
  explicit QtFrontend(QWidget* window = nullptr) : window_(window) {}

  PromptBroker& prompts() { return prompts_; }
  void setWindow(QWidget* window) { window_ = window; }

  // Answers the next question for a file, if one comes before the command has ended.
  void setNextFile(std::u16string_view path) { nextFile_ = path; }

  void print(std::u16string_view text) override;
  bool ended() const override { return prompts_.abandoned(); }
  void setClipboard(std::u16string_view text) override;
  std::u16string clipboard() override;

 Q_SIGNALS:
  void printed(const QString& text);
  // The last answer could not be used; the question comes again.
  void refused(const QString& reason);

 protected:
  void showDialog(cad::ui::Dialog& dialog) override;
  cad::ui::Pressed showMessage(const cad::ui::Message& message) override;
  std::optional<std::u16string> showFileQuestion(const cad::ui::FileQuestion& question) override;
  cad::ui::Answer showPrompt(const cad::ui::Prompt& prompt) override;
  void showInvalid(std::u16string_view reason) override;

 private:
  QWidget* owner() const;

  QWidget* window_;
  PromptBroker prompts_;
  std::u16string nextFile_;
};

}  // namespace desktop
