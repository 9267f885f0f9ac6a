// Dialogs in their windows, with steps of a user taken in them.
#pragma once

#include <QApplication>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include "apps/desktop/dialogs/dialog_window.h"
#include "apps/desktop/qt_frontend.h"
#include "apps/desktop/text.h"
#include "tests/desktop/drive.h"
#include "tests/desktop/player/widget_hand.h"
#include "tests/desktop/player/widget_state.h"

namespace desktop {

class DialogTest : public testing::Test {
 protected:
  // The window of a title that is on top.
  static DialogWindow* windowOf(const QString& title) {
    auto* const window = dynamic_cast<DialogWindow*>(QApplication::activeModalWidget());
    return window && window->windowTitle() == title && window->isVisible() ? window : nullptr;
  }
  // A step in that window, whose widgets show what the controls show. It may open others: steps in
  // those come while it waits, the next one here when it is through.
  Step in(const QString& title, std::function<void(DialogWindow&)> act) {
    return {utf8(title), [this, title] { return windowOf(title) && waiting_ != title; },
            [this, title, act = std::move(act)] {
              const QString before = std::exchange(waiting_, title);
              QTimer::singleShot(0, [this, title, before, act] {
                DialogWindow* const window = windowOf(title);
                settle(*window);
                EXPECT_EQ(differences(*window).join(u'\n').toStdString(), "");
                act(*window);
                waiting_ = before;
              });
            }};
  }
  static Step answering(const QString& text, Qt::Key key) {
    return {utf8(text),
            [text] {
              auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
              return box && box->text() == text;
            },
            [key] { QTest::keyClick(QApplication::activeModalWidget(), key); }};
  }
  // Opens the dialog and takes the steps while it waits for its end.
  cad::ui::Outcome play(cad::ui::Dialog& dialog, std::vector<Step> steps) {
    bool running = true;
    cad::ui::Outcome outcome = cad::ui::Outcome::cancel;
    QTimer::singleShot(0, [&] {
      outcome = dialog.run(ui);
      running = false;
    });
    drive(
        std::move(steps), [&] { return !running; },
        [&] {
          dialog.end(cad::ui::Outcome::cancel);
          if (QWidget* const top = QApplication::activeModalWidget()) top->close();
        },
        5000);
    return outcome;
  }

  QtFrontend ui;

 private:
  QString waiting_;  // the title of the window in which a step is being taken
};

inline void key(QWidget* widget, Qt::Key code, Qt::KeyboardModifiers modifiers = {}) {
  QTest::keyClick(widget, code, modifiers);
}

}  // namespace desktop
