// Lines typed by a person at a terminal: editing, history, completion.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace cli {

// Columns of the terminal's window now.
int windowWidth();

class LineEditor {
 public:
  // Reads the history from a file and writes it back at the end; an empty path keeps none. While it
  // lives Ctrl-C ends no program: at a prompt it cancels, and pressed meanwhile it cancels the next
  // prompt.
  explicit LineEditor(std::string historyFile);
  LineEditor(const LineEditor&) = delete;
  LineEditor& operator=(const LineEditor&) = delete;
  ~LineEditor();

  // The line without its end; the Esc character alone for Esc or Ctrl-C; nothing for Ctrl-D on an
  // empty line. Tab completes the whole line from `words`, or as a path where
  // `files` is set and behind " = ".
  std::optional<std::string> read(const std::string& prompt, const std::vector<std::string>& words,
                                  bool files);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace cli
