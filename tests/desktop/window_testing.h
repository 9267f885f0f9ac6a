// A window with host and module for each test, and what tests do in it.
#pragma once

#include <gtest/gtest.h>

#include <QDir>
#include <QDragEnterEvent>
#include <QFile>
#include <QMimeData>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

#include "apps/desktop/canvas/canvas.h"
#include "apps/desktop/dialogs/dialog_window.h"
#include "apps/desktop/docks/command_line.h"
#include "apps/desktop/text.h"
#include "apps/desktop/window.h"
#include "apps/program/host.h"
#include "cad/editor/session.h"
#include "module/jobs.h"
#include "platform/text.h"
#include "tests/desktop/drive.h"
#include "tests/desktop/player/widget_hand.h"

namespace desktop {

class WindowTesting : public testing::Test {
 protected:
  void SetUp() override {
    qputenv("VESSORA_RECOVERY", folder_.filePath(QStringLiteral("kept")).toUtf8());
    const auto started = program::startHost(ui_, program::InpMode::full);
    ASSERT_TRUE(started) << started.error();
    cad::Session::instance().newDrawing();
    window_ = std::make_unique<Window>(ui_);
    window_->resize(1200, 800);
    window_->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window_.get()));
  }
  void TearDown() override {
    window_.reset();
    program::stopHost();
  }

  static cad::Drawing& drawing() { return cad::Session::instance().database()->drawing(); }
  static vessora::Jobs& jobs() { return *vessora::Jobs::find(); }
  // Waits for nothing to run, taking steps meanwhile.
  void take(std::vector<Step> steps = {}) {
    drive(
        std::move(steps), [this] { return !window_->runner().busy(); },
        [this] { window_->runner().abandon(); });
  }
  void dropFile(const QString& path) {
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path)});
    QDragEnterEvent enter(QPoint(100, 100), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window_.get(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent event(QPointF(100, 100), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window_.get(), &event);
  }
  void importBorgo() {
    dropFile(QStringLiteral(VESSORA_EXAMPLES "borgo.inp"));
    take();
    QTest::qWait(20);
  }
  // A question whose text has these words.
  Step asked(std::u16string_view text, std::function<void()> act) {
    return {platform::narrow(text),
            [this, text] {
              const cad::ui::Prompt* const prompt = ui_.prompts().prompt();
              return prompt && prompt->text.find(text) != prompt->text.npos;
            },
            std::move(act)};
  }
  // A dialog of a title, filled by mouse and keys on its widgets.
  Step inDialog(std::u16string_view title, std::vector<std::u16string> lines) {
    const auto windowOf = [title] {
      auto* const window = dynamic_cast<DialogWindow*>(QApplication::activeModalWidget());
      return window && window->isVisible() && wide(window->windowTitle()) == title ? window
                                                                                   : nullptr;
    };
    return {platform::narrow(title), [windowOf] { return windowOf() != nullptr; },
            [windowOf, lines] {
              // What a button opens waits in a loop of its own: the steps go on meanwhile.
              QTimer::singleShot(0, [windowOf, lines] {
                DialogWindow* const window = windowOf();
                WidgetHand hand(*window);
                auto& dialog = const_cast<cad::ui::Dialog&>(window->dialog());
                for (const std::u16string& line : lines) {
                  settle(*window);
                  const auto done = cad::ui::performLine(dialog, line, hand);
                  EXPECT_TRUE(done) << platform::narrow(line) << ": " << done.error();
                  if (dialog.ended()) return;
                }
              });
            }};
  }
  void click(const QPoint& at, Qt::MouseButton button = Qt::LeftButton) {
    QTest::mouseMove(&canvas(), at);
    QTest::mouseClick(&canvas(), button, {}, at);
  }

  // The entity that bears a name, and the place of its symbol.
  std::uint32_t symbolOf(std::u16string_view name) {
    for (const auto& network : jobs().networks()) {
      for (const std::uint32_t e : drawing().index().allInSpace()) {
        const auto element = jobs().readElement(network.name, drawing().idOf(e));
        if (!element || drawing().record(e).type != cad::Type::insert) continue;
        const bool is =
            std::visit([&](const auto& r) { return r.id.str() == name; }, element->record);
        if (is) return e;
      }
    }
    return 0;
  }
  AcGePoint3d placeOf(std::uint32_t record) {
    cad::view::Scene& scene = canvas().scene();
    return scene.matrices()[scene.things()[scene.thingOf(record)].matrix] * AcGePoint3d();
  }
  QPoint pixelOf(const AcGePoint3d& p) {
    const cad::view::Pixel at = canvas().camera().pixelOf(p);
    return {static_cast<int>(std::lround(at.x)), static_cast<int>(std::lround(at.y))};
  }
  Canvas& canvas() { return window_->canvas(); }

  QTemporaryDir folder_;
  QtFrontend ui_;
  std::unique_ptr<Window> window_;
};

}  // namespace desktop
