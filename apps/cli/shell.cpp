// The interactive command line: line editing, history and completion by readline.
#include <readline/history.h>
#include <readline/readline.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "apps/cli/host.h"
#include "apps/cli/jobs.h"
#include "cad/ui/terminal_frontend.h"
#include "platform/text.h"

namespace cli {
namespace {

std::vector<std::string> g_completions;

char* nextCompletion(const char* text, int state) {
  static std::size_t at;
  if (state == 0) at = 0;
  const std::size_t n = std::strlen(text);
  while (at < g_completions.size()) {
    const std::string& word = g_completions[at++];
    if (word.size() >= n && strncasecmp(word.c_str(), text, n) == 0) return strdup(word.c_str());
  }
  return nullptr;
}

char** complete(const char* text, int, int) {
  if (g_completions.empty()) return nullptr;  // file names, as readline does by itself
  rl_attempted_completion_over = 1;
  return rl_completion_matches(text, nextCompletion);
}

std::string historyFile() {
  const char* home = std::getenv("HOME");
  return home ? std::string(home) + "/.vessora_history" : "";
}

std::optional<std::string> readLine(const std::string& prompt,
                                    const std::vector<std::string>& words) {
  g_completions = words;
  if (!isatty(0)) {
    // Piped input: no editing, no echo of our own.
    std::fputs(prompt.c_str(), stdout);
    std::fflush(stdout);
    std::string line;
    int c;
    while ((c = std::getchar()) != EOF && c != '\n') line += static_cast<char>(c);
    if (c == EOF && line.empty()) return std::nullopt;
    return line;
  }
  char* line = readline(prompt.c_str());
  if (!line) return std::nullopt;
  std::string text = line;
  std::free(line);
  if (!text.empty()) add_history(text.c_str());
  return text;
}

}  // namespace

int shell(const std::string& drawing) {
  rl_readline_name = "vessora";
  rl_attempted_completion_function = complete;
  const std::string history = historyFile();
  if (!history.empty()) read_history(history.c_str());
  cad::ui::TerminalFrontend ui(readLine, [](std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
  });
  if (auto started = startHost(ui); !started) return fail(started.error());
  if (auto opened = openDrawing(drawing); !opened) {
    stopHost();
    return fail(opened.error());
  }
  std::puts(words("vessora: digitare GUIDA per i comandi, ESCI per uscire, TAB per completare.",
                  "vessora: type GUIDA for the commands, ESCI to leave, TAB to complete.")
                .c_str());
  cad::Session::instance().commandLoop();
  stopHost();
  if (!history.empty()) write_history(history.c_str());
  std::puts("");
  return 0;
}

}  // namespace cli
