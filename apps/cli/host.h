// What every subcommand begins with: the session, the module, the words of the user's language.
#pragma once

#include <string>
#include <vector>

#include "cad/editor/session.h"

namespace cli {

// Points hn-cpath at the product root, makes `ui` answer, and loads the module.
platform::Result<void> startHost(cad::ui::Frontend& ui);
void stopHost();

// Opens a drawing, "-" or an empty path being a new one; what was repaired goes to standard error.
platform::Result<void> openDrawing(const std::string& path);
// Saves and complains about what commands left open.
platform::Result<void> saveDrawing(const std::string& path);

// Italian or English, by the locale of the environment.
bool italian();
inline std::string words(const char* it, const char* en) { return italian() ? it : en; }

// Prints "vessora: message" on standard error and returns the exit status of a failed job.
int fail(const std::string& message);

// A line on standard error that is written over again and again while a job runs; silent when
// standard error is no terminal.
class Progress {
 public:
  explicit Progress(const std::string& what);
  ~Progress();
  void show(const std::string& text);

 private:
  bool visible_;
  std::string what_;
};

}  // namespace cli
