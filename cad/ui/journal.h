// A record of what a user was asked and answered, in the syntax of scripts: playing it again
// repeats the work.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "cad/ui/export.h"

namespace cad::ui {

class Control;

// A prompt's answer as a script line: quoted when the line would read as something else.
CAD_UI_API std::u16string asAnswer(std::u16string_view text);

// Lines reach the sink one by one, in order, the last one with the next event or with flush(): the
// keys typed into one field become one line, and an answer that was refused none.
class CAD_UI_API Journal {
 public:
  using Sink = std::function<void(std::u16string_view line)>;
  explicit Journal(Sink sink) : sink_(std::move(sink)) {}
  Journal(const Journal&) = delete;
  Journal& operator=(const Journal&) = delete;
  ~Journal() { flush(); }

  // A gesture on a control: its name and what follows it (" = 12", "[3] **", nothing for a press).
  void gesture(const Control* control, std::u16string_view name, std::u16string_view rest);
  // Any other line; an answer can be retracted as long as nothing follows it.
  void line(std::u16string_view text, bool retractable = false);
  void retract();
  void flush();

 private:
  Sink sink_;
  std::u16string pending_;
  const Control* typing_ = nullptr;
  bool retractable_ = false;
};

}  // namespace cad::ui
