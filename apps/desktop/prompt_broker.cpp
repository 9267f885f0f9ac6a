#include "apps/desktop/prompt_broker.h"

#include <QEventLoop>

namespace desktop {

using cad::ui::Answer;

Answer PromptBroker::wait(const cad::ui::Prompt& prompt) {
  if (abandoned_) return {Answer::Status::end, {}};
  if (prompt_) return {Answer::Status::cancel, {}};
  prompt_ = prompt;
  answer_ = {Answer::Status::cancel, {}};
  QEventLoop loop;
  loop_ = &loop;
  Q_EMIT asked();
  // Answered already by whoever heard of it.
  if (loop_) loop.exec();
  loop_ = nullptr;
  prompt_.reset();
  Q_EMIT answered();
  return answer_;
}

void PromptBroker::answer(Answer answer) {
  if (!loop_) return;
  answer_ = std::move(answer);
  loop_->quit();
  loop_ = nullptr;
}

void PromptBroker::answerText(std::u16string_view text) {
  answer({Answer::Status::ok, std::u16string(text)});
}

void PromptBroker::enter() { answer({Answer::Status::none, {}}); }

void PromptBroker::escape() { answer({Answer::Status::cancel, {}}); }

void PromptBroker::abandon() {
  abandoned_ = true;
  answer({Answer::Status::end, {}});
}

}  // namespace desktop
