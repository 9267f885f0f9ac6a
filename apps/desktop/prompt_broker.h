// The one question of a command that stands at a time, and the only loop in which a command waits.
//
// A command asks through the front end and waits here while the window lives on: it paints, zooms
// and scrolls. Whoever has an answer gives it (command line, canvas, a key); the first one wins.
#pragma once

#include <QObject>
#include <optional>

#include "cad/ui/frontend.h"

class QEventLoop;

namespace desktop {

class PromptBroker : public QObject {
  Q_OBJECT

 public:
  using QObject::QObject;

  // Waits for an answer. While one question stands no other can be put: it is refused (cancel).
  cad::ui::Answer wait(const cad::ui::Prompt& prompt);

  // The question that stands, or null.
  const cad::ui::Prompt* prompt() const { return prompt_ ? &*prompt_ : nullptr; }

  // Answers the question that stands; without one nothing happens.
  void answer(cad::ui::Answer answer);
  void answerText(std::u16string_view text);
  void enter();   // Enter alone: no answer, or the proposed one
  void escape();  // Esc

  // Every question from now on, the one that stands included, is refused until the command that
  // asks has been left.
  void abandon();
  void resume() { abandoned_ = false; }
  bool abandoned() const { return abandoned_; }

 Q_SIGNALS:
  // A question has been put; it is prompt() until `answered`.
  void asked();
  void answered();

 private:
  std::optional<cad::ui::Prompt> prompt_;
  cad::ui::Answer answer_;
  QEventLoop* loop_ = nullptr;
  bool abandoned_ = false;
};

}  // namespace desktop
