// The command line as a person meets it: the real program at a terminal of its own. Nothing waits
// for a time: each key is pressed when what should stand before it has been shown.
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <string>

#include "tests/platform/scratch_folder.h"

namespace {

class Shell : public platform::ScratchFolder {
 protected:
  void start(const char* drawing = nullptr) {
    pid_ = forkpty(&terminal_, nullptr, nullptr, nullptr);
    if (pid_ == 0) {
      if (chdir(folder_.c_str()) != 0) _exit(9);
      setenv("TERM", "xterm", 1);
      setenv("HOME", folder_.c_str(), 1);
      setenv("LC_ALL", "C", 1);
      setenv("VESSORA_LANG", "it", 1);
      execl(VESSORA, "vessora", "shell", drawing, nullptr);
      _exit(9);
    }
  }
  void TearDown() override {
    if (pid_ > 0) {
      kill(pid_, SIGKILL);
      waitpid(pid_, nullptr, 0);
    }
    if (terminal_ >= 0) close(terminal_);
    ScratchFolder::TearDown();
  }
  // Reads until a text stands there; what was shown before it is forgotten.
  void wait(const std::string& text) {
    if (HasFatalFailure()) return;
    for (;;) {
      const std::size_t at = shown_.find(text);
      if (at != shown_.npos) {
        shown_.erase(0, at + text.size());
        return;
      }
      ASSERT_TRUE(more()) << "never shown: " << text << "\nshown: " << shown_;
    }
  }
  bool more() {
    constexpr int kHang = 20000;  // ms: a program that says nothing for so long hangs
    pollfd input{terminal_, POLLIN, 0};
    char bytes[4096];
    if (poll(&input, 1, kHang) <= 0) return false;
    const ssize_t n = read(terminal_, bytes, sizeof bytes);
    if (n > 0) shown_.append(bytes, static_cast<std::size_t>(n));
    return n > 0;
  }
  void type(const std::string& keys) {
    if (HasFatalFailure()) return;
    ASSERT_EQ(write(terminal_, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
  }
  // Answers what is asked: types the keys when the question stands there.
  void answer(const std::string& question, const std::string& keys) {
    wait(question);
    type(keys);
  }
  // The exit status of the program, which must have been told to end.
  int finish() {
    if (HasFatalFailure()) return -1;
    while (more()) {
    }
    kill(pid_, SIGKILL);  // of use only when it hangs
    int status = 0;
    waitpid(pid_, &status, 0);
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }
  int terminal_ = -1;
  pid_t pid_ = -1;
  std::string shown_;
};

const std::string kEsc = "\x1B", kInterrupt = "\x03", kEnd = "\x04", kTab = "\t";
const std::string kCommand = "Comando: ", kOption = "Elenco]: ";

TEST_F(Shell, EscAndInterruptCancelTheQuestionAndTheCommand) {
  start();
  answer(kCommand, "LAYER\r");
  answer(kOption, kEsc);
  answer(kCommand, "LAYER\r");
  answer(kOption, "Nuovo\r");
  answer("Nome del layer: ", "mai" + kInterrupt);
  answer(kCommand, kInterrupt);
  answer(kCommand, "dimenticato" + kEsc);
  // An arrow key begins like Esc and is none.
  answer(kCommand, "\x1B[A\x1B[A\r");
  answer(kOption, "Elenco\r");
  wait("colore 7");
  wait(kCommand);
  EXPECT_EQ(shown_.find("mai"), shown_.npos);
  type("ESCI\r");
  EXPECT_EQ(finish(), 0);
}

TEST_F(Shell, TheEndOfInputAsksAboutChanges) {
  start();
  answer(kCommand, "LAYER\r");
  answer(kOption, "Nuovo\r");
  answer("Nome del layer: ", "citt\xC3\xA0\x7Fà\r");  // one letter is one, whatever its bytes
  answer(kCommand, kEnd);
  answer("[Sì/No/Annulla] ", "a\r");
  answer(kCommand, kEnd);
  answer("[Sì/No/Annulla] ", kEsc);
  answer(kCommand, kEnd);
  answer("[Sì/No/Annulla] ", "s\r");
  answer("Salva disegno con nome (*.dxf): ", "prova.dxf\r");
  EXPECT_EQ(finish(), 0);
  EXPECT_NE(content("prova.dxf").find("\ncittà\n"), std::string::npos);
}

TEST_F(Shell, AnInputThatIsAtItsEndForGoodLosesNothingInSilence) {
  start();
  answer(kCommand, "LAYER\r");
  answer(kOption, "Nuovo\r");
  answer("Nome del layer: ", "x\r");
  answer(kCommand, kEnd);
  answer("[Sì/No/Annulla] ", kEnd);
  answer(kCommand, kEnd);
  answer("[Sì/No/Annulla] ", kEnd);
  wait("fine dell'ingresso: le modifiche al disegno non sono state salvate");
  EXPECT_EQ(finish(), 1);
}

TEST_F(Shell, TabCompletesWordsAndPaths) {
  ASSERT_TRUE(platform::writeFile(at("città.dxf"), "no drawing"));
  ASSERT_TRUE(platform::writeFile(at("citofono.dxf"), "no drawing"));
  ASSERT_EQ(mkdir(at("cartella").c_str(), 0700), 0);
  ASSERT_TRUE(platform::writeFile(at("cartella/dentro.dxf"), "no drawing"));
  start();
  answer(kCommand, "apr" + kTab + "\r");
  answer("Apri disegno (*.dxf): ", "cart" + kTab + "d" + kTab + "\r");
  answer("(X) cartella/dentro.dxf:1: ", "\r");
  answer(kCommand, "APRI\r");
  answer("Apri disegno (*.dxf): ", "c" + kTab + "it" + kTab);
  wait("citofono.dxf");
  wait("città.dxf");
  type("t" + kTab + "\r");
  answer("(X) città.dxf:1: ", "\r");
  // A question for a text completes nothing.
  answer(kCommand, "LAYER\r");
  answer(kOption, "Con" + kTab + "\r");
  answer("Nome del layer: ", "ci" + kTab + "\r");
  wait("Il layer \"ci\" non esiste.");
  answer(kCommand, "ESCI\r");
  EXPECT_EQ(finish(), 0);
  // What was typed is there the next time.
  EXPECT_NE(content(".vessora_history").find("LAYER"), std::string::npos);
}

}  // namespace
