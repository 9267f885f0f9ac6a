#include "apps/cli/line_editor.h"

#include <histedit.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>

#include "platform/files.h"
#include "platform/text.h"

namespace cli {
namespace {

constexpr wchar_t kCancelKey = 7;        // Ctrl-G, which nobody needs otherwise
constexpr int kSequencePause = 100;      // ms between the characters that one key sends
constexpr std::size_t kMostShown = 200;  // completions

volatile sig_atomic_t g_interrupted = 0;
void noteInterrupt(int) { g_interrupted = 1; }

// Ctrl-C waits, except here: whatever runs between two prompts is not torn.
bool waitForInput() {
  sigset_t open;
  sigprocmask(SIG_SETMASK, nullptr, &open);
  sigdelset(&open, SIGINT);
  for (;;) {
    pollfd input{STDIN_FILENO, POLLIN, 0};
    const int ready = ppoll(&input, 1, nullptr, &open);
    if (g_interrupted) return false;
    if (ready > 0) return true;
  }
}

bool moreFollows() {
  pollfd input{STDIN_FILENO, POLLIN, 0};
  return poll(&input, 1, kSequencePause) > 0;
}

bool readByte(unsigned char& byte) {
  ssize_t n;
  while ((n = ::read(STDIN_FILENO, &byte, 1)) < 0 && errno == EINTR) {
  }
  return n == 1;
}

// One typed character, whatever the locale: UTF-8. 0 at the end of input.
int readCharacter(EditLine*, wchar_t* to) {
  unsigned char byte = 0;
  if (!waitForInput()) {
    g_interrupted = 0;
    *to = kCancelKey;
    return 1;
  }
  if (!readByte(byte)) return 0;
  *to = byte;
  if (byte == 0x1B && !moreFollows()) *to = kCancelKey;  // Esc itself and no arrow key
  const int more = byte >= 0xF0 ? 3 : byte >= 0xE0 ? 2 : byte >= 0xC0 ? 1 : 0;
  if (more == 0) return 1;
  wchar_t code = byte & (0x3F >> more);
  for (int i = 0; i < more; ++i) {
    if (!readByte(byte)) return 0;
    code = (code << 6) | (byte & 0x3F);
  }
  *to = code;
  return 1;
}

std::size_t charactersIn(const std::string& utf8) {
  return static_cast<std::size_t>(std::count_if(utf8.begin(), utf8.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
}

bool beginsWith(const std::string& word, const std::string& typed, bool exactly) {
  if (exactly) return word.compare(0, typed.size(), typed) == 0;
  const std::u16string a = platform::widen(word), b = platform::widen(typed);
  return platform::equalNoCase(std::u16string_view(a).substr(0, b.size()), b);
}

// The start that all of the words have, in whole characters.
std::string commonStart(const std::vector<std::string>& words) {
  std::u16string start = platform::widen(words.front());
  for (const std::string& word : words) {
    const std::u16string other = platform::widen(word);
    std::size_t n = 0;
    while (n < start.size() && n < other.size() &&
           platform::upper(start[n]) == platform::upper(other[n])) {
      ++n;
    }
    start.resize(n);
  }
  if (!start.empty() && (start.back() & 0xFC00) == 0xD800) start.pop_back();
  return platform::narrow(start);
}

}  // namespace

int windowWidth() {
  winsize size = {};
  return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

struct LineEditor::State {
  EditLine* line = nullptr;
  History* history = nullptr;
  std::string historyFile, prompt;
  const std::vector<std::string>* words = nullptr;
  bool files = false, cancelled = false;

  static State& of(EditLine* line) {
    State* state = nullptr;
    el_get(line, EL_CLIENTDATA, &state);
    return *state;
  }
  static char* promptOf(EditLine* line) { return of(line).prompt.data(); }
  static unsigned char cancel(EditLine* line, int) {
    of(line).cancelled = true;
    return CC_EOF;
  }
  static unsigned char complete(EditLine* line, int) { return of(line).completeLine(); }
  std::vector<std::string> candidates(const std::string& typed) const;
  std::vector<std::string> paths(const std::string& typed) const;
  unsigned char completeLine();
};

std::vector<std::string> LineEditor::State::candidates(const std::string& typed) const {
  std::vector<std::string> all;
  if (!files) {
    for (const std::string& word : *words) {
      if (beginsWith(word, typed, false)) all.push_back(word);
    }
    // A dialog's field may take a file: what stands behind the sign of equality.
    const std::size_t sign = typed.find(" = ");
    if (sign == typed.npos) return all;
    for (const std::string& path : paths(typed.substr(sign + 3))) {
      all.push_back(typed.substr(0, sign + 3) + path);
    }
    return all;
  }
  return paths(typed);
}

std::vector<std::string> LineEditor::State::paths(const std::string& typed) const {
  std::vector<std::string> all;
  const std::size_t slash = typed.rfind('/');
  const std::string folder = slash == typed.npos ? "" : typed.substr(0, slash + 1);
  for (const std::string& name : platform::namesIn(folder.empty() ? "." : folder)) {
    const bool hidden = name[0] == '.' && folder.size() == typed.size();
    if (!hidden && beginsWith(folder + name, typed, true)) all.push_back(folder + name);
  }
  return all;
}

// One candidate stands at once; of several the common start, and where that is typed, all are
// shown.
unsigned char LineEditor::State::completeLine() {
  const LineInfo* info = el_line(line);
  const std::string typed(info->buffer, info->cursor);
  const std::vector<std::string> all = candidates(typed);
  if (all.empty()) return CC_REFRESH_BEEP;
  const std::string start = commonStart(all);
  if (start.size() > typed.size() || (all.size() == 1 && start != typed)) {
    el_deletestr(line, static_cast<int>(charactersIn(typed)));
    el_insertstr(line, start.c_str());
    return CC_REFRESH;
  }
  if (all.size() == 1) return CC_REFRESH_BEEP;
  std::putchar('\n');
  for (std::size_t i = 0; i < all.size() && i < kMostShown; ++i) {
    std::printf("%s\n", platform::printable(all[i]).c_str());
  }
  std::fflush(stdout);
  return CC_REDISPLAY;
}

LineEditor::LineEditor(std::string historyFile) : state_(std::make_unique<State>()) {
  // The editor asks the locale how wide letters are; numbers of ours never do.
  if (!std::setlocale(LC_CTYPE, "") || MB_CUR_MAX == 1) std::setlocale(LC_CTYPE, "C.UTF-8");
  struct sigaction action = {};
  action.sa_handler = noteInterrupt;
  sigaction(SIGINT, &action, nullptr);
  sigset_t interrupt;
  sigemptyset(&interrupt);
  sigaddset(&interrupt, SIGINT);
  sigprocmask(SIG_BLOCK, &interrupt, nullptr);

  State& s = *state_;
  s.historyFile = std::move(historyFile);
  s.line = el_init("vessora", stdin, stdout, stderr);
  s.history = history_init();
  HistEvent event;
  history(s.history, &event, H_SETSIZE, 1000);
  history(s.history, &event, H_SETUNIQUE, 1);
  if (!s.historyFile.empty()) history(s.history, &event, H_LOAD, s.historyFile.c_str());
  el_set(s.line, EL_CLIENTDATA, &s);
  el_set(s.line, EL_EDITOR, "emacs");
  el_set(s.line, EL_SIGNAL, 0);
  el_set(s.line, EL_PROMPT, State::promptOf);
  el_set(s.line, EL_GETCFN, readCharacter);
  el_set(s.line, EL_HIST, history, s.history);
  el_set(s.line, EL_ADDFN, "vessora-complete", "completes the line", State::complete);
  el_set(s.line, EL_ADDFN, "vessora-cancel", "cancels the question", State::cancel);
  el_set(s.line, EL_BIND, "^I", "vessora-complete", nullptr);
  el_set(s.line, EL_BIND, "^G", "vessora-cancel", nullptr);
}

LineEditor::~LineEditor() {
  HistEvent event;
  if (!state_->historyFile.empty()) {
    history(state_->history, &event, H_SAVE, state_->historyFile.c_str());
  }
  history_end(state_->history);
  el_end(state_->line);
}

std::optional<std::string> LineEditor::read(const std::string& prompt,
                                            const std::vector<std::string>& words, bool files) {
  State& s = *state_;
  s.prompt = prompt;
  s.words = &words;
  s.files = files;
  s.cancelled = false;
  el_resize(s.line);
  // Before the prompt stands there: a Ctrl-D that comes at once would be lost to the terminal.
  el_set(s.line, EL_PREP_TERM, 1);
  int n = 0;
  const char* typed = el_gets(s.line, &n);
  if (s.cancelled || !typed || n <= 0) {
    el_reset(s.line);
    std::putchar('\n');
    std::fflush(stdout);
    return s.cancelled ? std::optional<std::string>("\x1B") : std::nullopt;
  }
  std::string text(typed, static_cast<std::size_t>(n));
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
  if (!text.empty()) {
    HistEvent event;
    history(s.history, &event, H_ENTER, text.c_str());
  }
  return text;
}

}  // namespace cli
