// The interactive command line.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <optional>

#include "apps/cli/host.h"
#include "apps/cli/jobs.h"
#include "apps/cli/line_editor.h"
#include "cad/ui/terminal_frontend.h"
#include "platform/text.h"

namespace cli {
namespace {

std::string historyFile() {
  const char* home = std::getenv("HOME");
  return home && *home ? std::string(home) + "/.vessora_history" : "";
}

// Piped input: no editing, no echo of our own.
std::optional<std::string> readPiped(const std::string& prompt) {
  std::fputs(prompt.c_str(), stdout);
  std::fflush(stdout);
  std::string line;
  int c;
  while ((c = std::getchar()) != EOF && c != '\n') line += static_cast<char>(c);
  if (c == EOF && line.empty()) return std::nullopt;
  return line;
}

void printOut(std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fflush(stdout);
}

// What the last command left open or never gave back: its fault, and no reason to stop.
bool tellLeaks() {
  const std::string left = cad::Session::instance().takeLeaks();
  if (!left.empty()) std::fprintf(stderr, "vessora: %s", platform::printable(left).c_str());
  return true;
}

}  // namespace

int shell(const std::string& drawing, InpMode mode) {
  std::optional<LineEditor> editor;
  if (isatty(STDIN_FILENO) && isatty(STDOUT_FILENO)) editor.emplace(historyFile());
  cad::ui::TerminalFrontend* asking = nullptr;
  cad::ui::TerminalFrontend ui(
      [&](const std::string& prompt, const std::vector<std::string>& completions) {
        return editor ? editor->read(prompt, completions, asking->asksFile()) : readPiped(prompt);
      },
      printOut);
  asking = &ui;
  ui.setPerson(editor.has_value());
  if (editor) ui.setWindowWidth(windowWidth);
  if (auto started = startHost(ui, mode); !started) return fail(started.error());
  if (auto opened = openDrawing(drawing); !opened) {
    stopHost();
    return fail(opened.error());
  }
  std::puts(
      words("vessora: digitare GUIDA per i comandi, ESCI per uscire, TAB per completare.").c_str());
  const bool nothingLost = cad::Session::instance().commandLoop(tellLeaks);
  stopHost();
  std::puts("");
  if (nothingLost) return 0;
  return fail(words("fine dell'ingresso: le modifiche al disegno non sono state salvate"));
}

}  // namespace cli
