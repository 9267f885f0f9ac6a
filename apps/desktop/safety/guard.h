// Watches over the open drawing: keeps copies while it is changed, tells when its file changes
// under it, and when another program has it open.
#pragma once

#include <QFileSystemWatcher>
#include <QLockFile>
#include <QObject>
#include <QTimer>
#include <functional>
#include <memory>

namespace desktop {

class Guard : public QObject {
  Q_OBJECT

 public:
  // `idle` says whether the drawing may be read now: no command runs.
  explicit Guard(std::function<bool()> idle);
  ~Guard() override;

  // To be called when a command has ended: the drawing may be another one, changed or saved.
  void follow();
  // Seconds between copies, and before the first one.
  void setInterval(int milliseconds) { timer_.setInterval(milliseconds); }
  // The drawing is left as it should be: its copies go.
  void release();

 Q_SIGNALS:
  // Another program has the drawing open: who, and where.
  void sharedWith(const QString& program, const QString& host, qint64 process);
  void changedOutside(const QString& path);
  // A copy could not be written; it is tried again.
  void failed(const QString& why);

 private:
  void keep();
  void watch(const QString& path);
  void look();

  std::function<bool()> idle_;
  QTimer timer_, settle_;
  QFileSystemWatcher watcher_;
  std::unique_ptr<QLockFile> lock_;
  QString path_;
  std::uint32_t drawing_ = 0;  // number of the one that is watched
  std::uint64_t kept_ = 0;     // its revision in the copy
  bool told_ = false;          // of the change outside
};

}  // namespace desktop
