// Long work while the window lives on.
#pragma once

#include <QElapsedTimer>
#include <QString>
#include <atomic>
#include <functional>

class QLabel;
class QWidget;

namespace desktop {

// Runs work that asks nothing of the drawing beside the window's thread, with a window over
// `parent` that can cancel it; comes back when it has ended. The work looks at `cancelled` at every
// step. False when it was cancelled.
bool runBeside(QWidget* parent, const QString& what,
               const std::function<void(const std::atomic<bool>& cancelled)>& work);

// Work on the drawing itself, which only the window's thread may do: tells how far it is, and keeps
// the window painted. While it lives the user's events wait.
class DrawingProgress {
 public:
  // `shown` says what is done; it is left as it was.
  DrawingProgress(QLabel* shown, const QString& what);
  DrawingProgress(const DrawingProgress&) = delete;
  DrawingProgress& operator=(const DrawingProgress&) = delete;
  ~DrawingProgress();

 private:
  void tell(std::uint32_t objects);

  QLabel* shown_;
  QString what_, before_;
  QElapsedTimer since_;
};

}  // namespace desktop
