// The window: canvas in the middle, docks around it, menus and tool bar from the table of actions.
#pragma once

#include <QAction>
#include <QHash>
#include <QMainWindow>
#include <memory>

#include "apps/desktop/command_runner.h"
#include "apps/desktop/qt_frontend.h"
#include "apps/desktop/safety/guard.h"
#include "apps/desktop/work/solve.h"

class QLabel;

namespace desktop {

class Canvas;
class CommandLine;
class Docks;
class ResultsView;
struct ActionRow;

class Window : public QMainWindow {
  Q_OBJECT

 public:
  // `ui` answers for the session, whose host has been started.
  explicit Window(QtFrontend& ui);
  ~Window() override;

  // Opens a drawing, or makes one of an INP file, by the extension; asks about changes before.
  void openFile(const QString& path);
  // Offers the copies that a crash has left, one after another.
  void offerRecovery();
  // Runs a command, with the chosen objects as the answer to its first question for objects.
  void runCommand(std::u16string_view name);

  Canvas& canvas() { return *canvas_; }
  CommandLine& commandLine() { return *commandLine_; }
  Docks& docks() { return *docks_; }
  CommandRunner& runner() { return runner_; }
  ResultsView& results() { return *results_; }
  QAction* actionFor(const QString& name) const { return actions_.value(name); }

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void makeDocks();
  void makeActions();
  void makeStatusBar();
  void makeGuard();
  void say(const QString& text);
  QAction* addAction(const ActionRow& row, QMenu* menu);
  void doOwn(const QString& what, QAction* action);
  void commandStarted(const QString& name);
  void commandFinished();
  void asked();
  // The session may have another drawing, the drawing may have changed.
  void follow();
  void showTitle();
  void rememberFile(const QString& path);
  void showRecent();
  void moveNode(std::uint32_t record, double x, double y);
  void solve();
  // The network to work on; empty when there is none or nobody chose one of several.
  std::u16string askNetwork();
  void writeResults();
  void openResults();
  // Shows a results file of a network that is asked for where there are several.
  void openResultsNow(const QString& path);
  void zoomByWindow();
  void savePicture();
  void print();
  void about();
  void keepLayout();
  void restoreLayout();
  void openNow(const QString& path);
  void importNow(const QString& path);

  QtFrontend& ui_;
  CommandRunner runner_;
  Guard guard_;
  Canvas* canvas_;
  CommandLine* commandLine_ = nullptr;
  Docks* docks_ = nullptr;
  std::unique_ptr<ResultsView> results_;
  QLabel* place_ = nullptr;
  QLabel* state_ = nullptr;
  QMenu* recent_ = nullptr;
  Solved solved_;  // the latest run, whose results may be written yet
  std::u16string solvedNetwork_;
  QHash<QString, QAction*> actions_;
  std::uint32_t shown_ = 0;  // number of the drawing that is shown
  bool closing_ = false, answerWithSelection_ = false;
};

}  // namespace desktop
