// Runs the session's commands from the window's events, one at a time.
//
// A command started while another one runs ends that one first: whatever it asks is refused, what
// it has done is taken back, and only when its calls have returned does the new one begin.
#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <string>

#include "apps/desktop/prompt_broker.h"

namespace desktop {

class CommandRunner : public QObject {
  Q_OBJECT

 public:
  explicit CommandRunner(PromptBroker& prompts);

  // Runs a command by its name, now or as soon as the running one has been left.
  void start(std::u16string_view name);
  // The same with work that is no command of the session, such as opening a file; it is not run
  // over one.
  void startWork(std::function<void()> work);
  // Leaves the running command, if there is one.
  void abandon();
  // Runs the last command again.
  void repeat();

  bool running() const { return running_; }
  // One runs, or is about to.
  bool busy() const { return running_ || next_; }
  // The command that runs, else empty.
  const QString& command() const { return command_; }

 Q_SIGNALS:
  void started(const QString& name);
  // It has returned, its effects stand, and nothing runs.
  void finished();
  void unknown(const QString& name);

 private:
  void later(std::function<void()> work);
  void runNext();
  void runCommand(const std::u16string& name);

  PromptBroker& prompts_;
  std::function<void()> next_;
  std::u16string last_;
  QString command_;
  bool running_ = false;
};

}  // namespace desktop
