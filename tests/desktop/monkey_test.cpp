// Random events on the window: whatever a hand can do, it neither falls nor hangs, and what it did
// can be taken back. VESSORA_MONKEY_SECONDS and VESSORA_MONKEY_SEED choose how long and which.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QWheelEvent>
#include <functional>
#include <random>

#include "apps/desktop/canvas/canvas.h"
#include "apps/desktop/docks/command_line.h"
#include "apps/desktop/text.h"
#include "apps/desktop/window.h"
#include "apps/program/host.h"
#include "cad/editor/session.h"

namespace desktop {
namespace {

int numberOf(const char* name, int otherwise) {
  bool known = false;
  const int number = qEnvironmentVariableIntValue(name, &known);
  return known ? number : otherwise;
}

class Monkey {
 public:
  Monkey(Window& window, unsigned seed) : window_(window), random_(seed) {}

  void step() {
    QWidget* const modal = QApplication::activeModalWidget();
    if (QWidget* const popup = QApplication::activePopupWidget()) return onPopup(popup);
    if (modal) return onDialog(modal);
    switch (below(10)) {
      case 0:
        return command();
      case 1:
        return action();
      case 2:
        return type(window_.commandLine().input());
      default:
        return onCanvas();
    }
  }

 private:
  int below(int count) { return std::uniform_int_distribution<int>(0, count - 1)(random_); }

  QPoint anywhere(const QWidget* widget) {
    return {below(std::max(1, widget->width())), below(std::max(1, widget->height()))};
  }

  // Without those that ask for files: what they write is not this test's to choose.
  void command() {
    static const char16_t* const kNames[] = {
        u"HNADDEPA", u"HNMODEPA", u"HNSETMAT", u"HNSETPAT", u"EPACALC", u"NETVIS", u"EPATABLES",
        u"EPAPROF",  u"EPAPIEZO", u"EPASCALE", u"MOVE",     u"COPY",    u"ROTATE", u"SCALE",
        u"ERASE",    u"UNDO",     u"REDO",     u"LIST",     u"DIST",    u"ZOOM",   u"LAYER"};
    window_.runCommand(kNames[below(static_cast<int>(std::size(kNames)))]);
  }
  void action() {
    static const char* const kNames[] = {"extents", "window", "previous", "plan",  "orbit",
                                         "dark",    "labels", "snap",     "ortho", "selectAll"};
    window_.actionFor(QString::fromLatin1(kNames[below(static_cast<int>(std::size(kNames)))]))
        ->trigger();
  }

  void type(QWidget* widget) {
    static const char* const kTexts[] = {"12.5",  "-1",     "0",     "684300,4852060",
                                         "@10,5", "@20<30", "Tutto", "=N:14",
                                         "1e300", "N",      "  "};
    switch (below(5)) {
      case 0:
        return QTest::keyClick(widget, Qt::Key_Escape);
      case 1:
        return QTest::keyClick(widget, Qt::Key_Return);
      case 2:
        return QTest::keyClick(widget, Qt::Key_Tab);
      default:
        return QTest::keyClicks(
            widget, QString::fromUtf8(kTexts[below(static_cast<int>(std::size(kTexts)))]));
    }
  }

  void onCanvas() {
    Canvas& canvas = window_.canvas();
    const QPoint at = anywhere(&canvas);
    const auto button = below(4) == 0 ? Qt::MiddleButton : Qt::LeftButton;
    const Qt::KeyboardModifiers keys = below(5) == 0 ? Qt::ShiftModifier : Qt::NoModifier;
    switch (below(6)) {
      case 0: {
        QWheelEvent wheel(at, canvas.mapToGlobal(at), {}, {0, below(2) ? 120 : -120}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&canvas, &wheel);
        return;
      }
      case 1:
        return type(&canvas);
      case 2: {
        QTest::mousePress(&canvas, button, keys, at);
        for (int i = 0; i < 3; ++i) QTest::mouseMove(&canvas, anywhere(&canvas));
        return QTest::mouseRelease(&canvas, button, keys, anywhere(&canvas));
      }
      case 3:
        QTest::mouseDClick(&canvas, Qt::LeftButton, keys, at);
        return;
      default:
        QTest::mouseMove(&canvas, at);
        return QTest::mouseClick(&canvas, button, keys, at);
    }
  }

  void onDialog(QWidget* dialog) {
    QList<QWidget*> shown;
    for (QWidget* const child : dialog->findChildren<QWidget*>()) {
      if (child->isVisible() && child->isEnabled() && child->focusPolicy() != Qt::NoFocus) {
        shown.push_back(child);
      }
    }
    if (shown.isEmpty() || below(12) == 0) return QTest::keyClick(dialog, Qt::Key_Escape);
    QWidget* const child = shown[below(static_cast<int>(shown.size()))];
    if (qobject_cast<QAbstractButton*>(child) || below(2)) {
      return QTest::mouseClick(child, Qt::LeftButton, {}, anywhere(child));
    }
    type(child);
  }

  void onPopup(QWidget* popup) {
    switch (below(3)) {
      case 0:
        return QTest::keyClick(popup, Qt::Key_Escape);
      case 1:
        return QTest::keyClick(popup, Qt::Key_Down);
      default:
        return QTest::keyClick(popup, Qt::Key_Return);
    }
  }

  Window& window_;
  std::mt19937 random_;
};

TEST(Monkey, NothingThatAHandDoesHurts) {
  QTemporaryDir folder;
  qputenv("VESSORA_RECOVERY", folder.filePath(QStringLiteral("kept")).toUtf8());
  qputenv("XDG_DATA_HOME", folder.path().toUtf8());
  QtFrontend ui;
  ASSERT_TRUE(program::startHost(ui, program::InpMode::full));
  cad::Session::instance().newDrawing();
  const auto seed = static_cast<unsigned>(numberOf("VESSORA_MONKEY_SEED", 20261122));
  const int seconds = numberOf("VESSORA_MONKEY_SECONDS", 30);
  std::printf("seed %u, %d s\n", seed, seconds);
  int steps = 0;
  {
    Window window(ui);
    window.resize(1200, 800);
    window.show();
    window.openFile(QStringLiteral(VESSORA_EXAMPLES "borgo.inp"));
    Monkey monkey(window, seed);
    QElapsedTimer clock;
    clock.start();
    QEventLoop loop;
    bool leaving = false;
    // Each step asks for the next one before it acts: what it opens may wait in a loop of its own.
    std::function<void()> tick = [&] {
      QTimer::singleShot(1, &window, tick);
      if (clock.elapsed() < seconds * 1000) {
        ++steps;
        return monkey.step();
      }
      leaving = true;
      if (QWidget* const popup = QApplication::activePopupWidget()) {
        popup->close();
      } else if (QWidget* const modal = QApplication::activeModalWidget()) {
        QTest::keyClick(modal, Qt::Key_Escape);
      } else if (window.runner().busy()) {
        window.runner().abandon();
      } else {
        loop.quit();
      }
      if (clock.elapsed() > seconds * 1000 + 30000) {
        ADD_FAILURE() << "something does not end";
        std::fflush(stdout);
        std::_Exit(1);
      }
    };
    tick();
    loop.exec();
    EXPECT_TRUE(leaving);
    EXPECT_GT(steps, seconds * 5);
    std::printf("steps %d\n", steps);
    // What it has drawn can be saved and read again.
    if (cad::Session::instance().database()) {
      const QString path = folder.filePath(QStringLiteral("dopo.dxf"));
      ASSERT_TRUE(cad::Session::instance().saveDrawing(path.toStdString()));
      std::vector<std::string> warnings;
      EXPECT_TRUE(cad::Session::instance().openDrawing(path.toStdString(), warnings));
      EXPECT_TRUE(warnings.empty()) << warnings.front();
    }
  }
  program::stopHost();
}

}  // namespace
}  // namespace desktop
