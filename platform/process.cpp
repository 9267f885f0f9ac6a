#include "platform/process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

namespace platform {

namespace {

// Runs in the new process: only calls that are safe between fork and exec of a program with
// threads.
[[noreturn]] void becomeProgram(char* const* arguments, int report) {
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  for (const int ignored : {SIGPIPE, SIGXFSZ}) signal(ignored, SIG_DFL);
  // It must not take the keys that are meant for a prompt of ours.
  const int null = open("/dev/null", O_RDONLY);
  if (null >= 0) dup2(null, STDIN_FILENO);
  execvp(arguments[0], arguments);
  const int error = errno;
  if (write(report, &error, sizeof error) < 0) _exit(126);
  _exit(127);
}

}  // namespace

// The program is a grandchild whose parent ends at once, so the system's first process takes it
// over and clears up after it. A pipe that closes by itself on a successful exec tells whether it
// started.
bool startProcess(const std::string& program, const std::vector<std::string>& arguments) {
  std::vector<std::string> texts{program};
  texts.insert(texts.end(), arguments.begin(), arguments.end());
  std::vector<char*> list;
  for (std::string& text : texts) list.push_back(text.data());
  list.push_back(nullptr);

  int report[2];
  if (pipe2(report, O_CLOEXEC) != 0) return false;
  const pid_t child = fork();
  if (child == 0) {
    setsid();
    const pid_t grandchild = fork();
    if (grandchild == 0) becomeProgram(list.data(), report[1]);
    _exit(grandchild < 0 ? 1 : 0);
  }
  close(report[1]);
  bool started = child > 0;
  if (child > 0) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    started = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    int error = 0;
    ssize_t n = 0;
    while ((n = read(report[0], &error, sizeof error)) < 0 && errno == EINTR) {
    }
    if (n > 0) started = false;
  }
  close(report[0]);
  return started;
}

}  // namespace platform
