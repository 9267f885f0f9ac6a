#include "apps/desktop/work/progress.h"

#include <QApplication>
#include <QEventLoop>
#include <QLabel>
#include <QProgressDialog>
#include <QTimer>
#include <thread>

#include "apps/desktop/text.h"
#include "cad/drawing/drawing.h"
#include "cad/editor/session.h"

namespace desktop {
namespace {

constexpr int kShownAfter = 300, kPainted = 100;  // ms

cad::Drawing* drawing() {
  AcDbDatabase* const database = cad::Session::instance().database();
  return database ? &database->drawing() : nullptr;
}

}  // namespace

bool runBeside(QWidget* parent, const QString& what,
               const std::function<void(const std::atomic<bool>& cancelled)>& work) {
  std::atomic<bool> cancelled = false, done = false;
  QProgressDialog dialog(what, words(u"Annulla"), 0, 0, parent);
  dialog.setWindowTitle(what);
  dialog.setWindowModality(Qt::WindowModal);
  dialog.setMinimumDuration(kShownAfter);
  dialog.setAutoClose(false);
  dialog.setAutoReset(false);
  QObject::connect(&dialog, &QProgressDialog::canceled, [&] { cancelled = true; });
  std::thread thread([&] {
    work(cancelled);
    done = true;
  });
  QEventLoop loop;
  QTimer timer;
  QObject::connect(&timer, &QTimer::timeout, [&] {
    if (done) loop.quit();
    dialog.setValue(0);  // shows itself when its time has come
  });
  timer.start(20);
  loop.exec();
  thread.join();
  return !cancelled;
}

DrawingProgress::DrawingProgress(QLabel* shown, const QString& what)
    : shown_(shown), what_(what), before_(shown->text()) {
  QApplication::setOverrideCursor(Qt::WaitCursor);
  shown_->setText(what_);
  QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
  since_.start();
  if (drawing()) drawing()->writer().setObserver([this](std::uint32_t n) { tell(n); });
}

DrawingProgress::~DrawingProgress() {
  if (drawing()) drawing()->writer().setObserver({});
  shown_->setText(before_);
  QApplication::restoreOverrideCursor();
}

void DrawingProgress::tell(std::uint32_t objects) {
  if (since_.elapsed() < kPainted) return;
  since_.restart();
  shown_->setText(QStringLiteral("%1 %L2").arg(what_).arg(objects));
  QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

}  // namespace desktop
