// The command line: what commands print, the question that stands, and the line that answers it.
//
// Enter answers or starts a command; so does Space, but where blanks are part of the answer. On an
// empty line they repeat the last command. Esc clears what is typed first, and then cancels.
#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QStringList>
#include <QWidget>

#include "apps/desktop/command_runner.h"
#include "apps/desktop/qt_frontend.h"

class QCompleter;
class QHBoxLayout;
class QStringListModel;

namespace desktop {

class CommandLine : public QWidget {
  Q_OBJECT

 public:
  CommandLine(QtFrontend& ui, CommandRunner& runner, QWidget* parent = nullptr);

  // A key that was pressed elsewhere in the window, as if it had been pressed here.
  void takeKey(QKeyEvent* event);
  // The names that complete a command.
  void setCommands(const QStringList& names);
  void print(const QString& text);
  QString history() const { return output_->toPlainText(); }
  QLineEdit* input() const { return input_; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void asked();
  void answered();
  void showKeywords(const cad::ui::Prompt* prompt);
  void enter();
  void escape();
  void recall(int step);
  void echo(const QString& text);
  bool takesBlanks() const;

  QtFrontend& ui_;
  CommandRunner& runner_;
  QPlainTextEdit* output_;
  QLabel* question_;
  QHBoxLayout* keywords_;
  QLineEdit* input_;
  QStringListModel* completions_;
  QStringList commands_, typed_;
  qsizetype recalled_ = 0;
};

}  // namespace desktop
