#include "apps/desktop/safety/guard.h"

#include <QFileInfo>

#include "apps/desktop/safety/recovery.h"
#include "apps/desktop/text.h"
#include "cad/editor/session.h"

namespace desktop {
namespace {

constexpr int kInterval = 60000, kSoon = 5000;  // ms between copies, and after what went wrong
constexpr int kSettle = 400;                    // others write a file in steps

cad::Session& session() { return cad::Session::instance(); }

}  // namespace

Guard::Guard(std::function<bool()> idle) : idle_(std::move(idle)) {
  timer_.setInterval(kInterval);
  connect(&timer_, &QTimer::timeout, this, &Guard::keep);
  settle_.setSingleShot(true);
  settle_.setInterval(kSettle);
  connect(&settle_, &QTimer::timeout, this, &Guard::look);
  connect(&watcher_, &QFileSystemWatcher::fileChanged, &settle_, qOverload<>(&QTimer::start));
}

Guard::~Guard() = default;

void Guard::follow() {
  AcDbDatabase* const database = session().database();
  const std::uint32_t number = database ? database->drawing().number() : 0;
  const QString path = qt(session().drawingPath());
  if (number != drawing_ || path != path_) {
    dropCopies();
    drawing_ = number;
    kept_ = 0;
    watch(path);
  }
  if (database && session().isModified()) {
    if (!timer_.isActive()) timer_.start();
  } else {
    timer_.stop();
    if (kept_ != 0) dropCopies();
    kept_ = 0;
    told_ = false;
    if (!path_.isEmpty() && !watcher_.files().contains(path_)) watcher_.addPath(path_);
  }
}

void Guard::watch(const QString& path) {
  if (!watcher_.files().isEmpty()) watcher_.removePaths(watcher_.files());
  lock_.reset();
  path_ = path;
  told_ = false;
  if (path.isEmpty()) return;
  watcher_.addPath(path);
  lock_ = std::make_unique<QLockFile>(path + QStringLiteral(".lock"));
  lock_->setStaleLockTime(0);  // a dead process on this machine loses its lock all the same
  if (lock_->tryLock(0)) return;
  qint64 process = 0;
  QString host, program;
  if (lock_->error() == QLockFile::LockFailedError &&
      lock_->getLockInfo(&process, &host, &program)) {
    Q_EMIT sharedWith(program, host, process);
  }
  lock_.reset();  // a folder that cannot be written takes no lock, and none is missed
}

void Guard::look() {
  if (path_.isEmpty() || !session().database()) return;
  // A file that is replaced is another one to the watcher.
  if (QFileInfo::exists(path_) && !watcher_.files().contains(path_)) watcher_.addPath(path_);
  if (told_ || !session().changedOnDisk("")) return;
  told_ = true;
  Q_EMIT changedOutside(path_);
}

void Guard::keep() {
  AcDbDatabase* const database = session().database();
  if (!database || !session().isModified()) return;
  cad::Drawing& drawing = database->drawing();
  if (drawing.revision() == kept_) return;
  if (!idle_() || drawing.openCount() > 0) {
    QTimer::singleShot(kSoon, this, &Guard::keep);
    return;
  }
  if (const auto written = keepCopy(drawing, path_); !written) {
    Q_EMIT failed(qt(written.error()));
    QTimer::singleShot(kSoon, this, &Guard::keep);
    return;
  }
  kept_ = drawing.revision();
}

void Guard::release() {
  timer_.stop();
  dropCopies();
  lock_.reset();
  path_.clear();
  drawing_ = 0;
}

}  // namespace desktop
