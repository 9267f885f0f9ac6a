#include "apps/desktop/command_runner.h"

#include <QTimer>

#include "apps/desktop/text.h"
#include "cad/editor/session.h"

namespace desktop {

CommandRunner::CommandRunner(PromptBroker& prompts) : prompts_(prompts) {}

void CommandRunner::start(std::u16string_view name) {
  later([this, name = std::u16string(name)] { runCommand(name); });
}

void CommandRunner::startWork(std::function<void()> work) { later(std::move(work)); }

void CommandRunner::abandon() {
  if (running_) prompts_.abandon();
}

void CommandRunner::repeat() {
  if (!last_.empty()) start(last_);
}

// Not within the event that asks for it: a command waits in loops of its own, and a button must
// not.
void CommandRunner::later(std::function<void()> work) {
  next_ = std::move(work);
  if (running_) {
    abandon();
  } else {
    QTimer::singleShot(0, this, &CommandRunner::runNext);
  }
}

void CommandRunner::runNext() {
  if (running_ || !next_) return;
  const std::function<void()> work = std::exchange(next_, nullptr);
  running_ = true;
  work();
  running_ = false;
  command_.clear();
  prompts_.resume();
  Q_EMIT finished();
  if (next_) QTimer::singleShot(0, this, &CommandRunner::runNext);
}

void CommandRunner::runCommand(const std::u16string& name) {
  command_ = qt(name);
  Q_EMIT started(command_);
  if (cad::Session::instance().run(name) == cad::RunResult::unknown) {
    Q_EMIT unknown(command_);
  } else {
    last_ = name;
  }
}

}  // namespace desktop
