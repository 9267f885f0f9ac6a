// A user who gives prepared answers and remembers what he was told.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "cad/ui/dialog.h"
#include "cad/ui/frontend.h"

class Answering : public cad::ui::Frontend {
 public:
  // One for each prompt: a text, "<invio>" or "<esc>"; none left is the end of input.
  std::deque<std::u16string> answers;
  std::deque<cad::ui::Answer> pointed;   // as a front end with a screen answers; these come first
  std::deque<cad::ui::Pressed> presses;  // one for each message box; none left is Esc
  std::u16string path;                   // for every question for a file; empty refuses
  std::u16string printed;
  std::vector<cad::ui::Prompt> prompts;
  std::vector<std::u16string> messages, complaints;

  void print(std::u16string_view text) override { printed += text; }
  bool ended() const override { return refused_ && answers.empty() && presses.empty(); }

 protected:
  void showDialog(cad::ui::Dialog& dialog) override { dialog.dismiss(); }
  cad::ui::Pressed showMessage(const cad::ui::Message& m) override {
    messages.push_back(m.text);
    if (presses.empty()) return cad::ui::escapeAnswer(m.buttons);
    refused_ = false;
    const cad::ui::Pressed pressed = presses.front();
    presses.pop_front();
    return pressed;
  }
  std::optional<std::u16string> showFileQuestion(const cad::ui::FileQuestion&) override {
    if (path.empty()) return std::nullopt;
    return path;
  }
  cad::ui::Answer showPrompt(const cad::ui::Prompt& prompt) override {
    using Status = cad::ui::Answer::Status;
    prompts.push_back(prompt);
    if (!pointed.empty()) {
      const cad::ui::Answer answer = pointed.front();
      pointed.pop_front();
      return answer;
    }
    refused_ = answers.empty();
    if (refused_) return {Status::end, u""};
    const std::u16string text = answers.front();
    answers.pop_front();
    if (text == u"<esc>") return {Status::cancel, u""};
    if (text == u"<invio>") return {Status::none, u""};
    if (text == u"<fine>") return {Status::end, u""};
    return {Status::ok, text};
  }
  void showInvalid(std::u16string_view reason) override { complaints.emplace_back(reason); }

 private:
  bool refused_ = false;  // the latest question was a prompt without an answer
};
