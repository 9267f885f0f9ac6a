#include "platform/process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>

#include "platform/files.h"
#include "platform/temporary_files.h"

namespace platform {

namespace {

using Clock = std::chrono::steady_clock;

class Descriptor {
 public:
  explicit Descriptor(int number = -1) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~Descriptor() { reset(); }
  void reset() {
    if (number_ >= 0) close(std::exchange(number_, -1));
  }
  int get() const { return number_; }
  // Away from the three that every program has, in case one of ours is closed.
  void moveUp() {
    if (number_ < 0 || number_ > 2) return;
    Descriptor moved(fcntl(number_, F_DUPFD_CLOEXEC, 3));
    std::swap(number_, moved.number_);
  }

 private:
  int number_;
};

struct Pipe {
  Descriptor from, to;
  bool open() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return false;
    from = Descriptor(ends[0]);
    to = Descriptor(ends[1]);
    from.moveUp();
    to.moveUp();
    return from.get() >= 0 && to.get() >= 0;
  }
};

// While it lives this thread takes no signal: one that came between the birth of a process and its
// entry among those that end with us would leave it behind, and one that the new process took
// would run our handlers there.
class SignalPause {
 public:
  SignalPause() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  ~SignalPause() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  SignalPause(const SignalPause&) = delete;
  SignalPause& operator=(const SignalPause&) = delete;

 private:
  sigset_t before_;
};

// What the new process needs, all of it made before there is one: behind the fork of a program with
// threads nothing may take memory.
struct Launch {
  Launch(const std::string& file, const std::vector<std::string>& arguments) : path(file) {
    texts.push_back(file);
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    for (std::string& text : texts) list.push_back(text.data());
    list.push_back(nullptr);
  }
  void setEnvironment(const std::vector<std::pair<std::string, std::string>>& added) {
    for (char** at = environ; *at; ++at) {
      const std::string_view entry = *at, name = entry.substr(0, entry.find('='));
      const bool replaced = std::any_of(added.begin(), added.end(),
                                        [&](const auto& pair) { return pair.first == name; });
      if (!replaced) environment.push_back(*at);
    }
    for (const auto& [name, value] : added) kept.push_back(name + "=" + value);
    for (std::string& entry : kept) environment.push_back(entry.data());
    environment.push_back(nullptr);
  }

  std::string path;
  std::vector<std::string> texts, kept;
  std::vector<char*> list, environment;  // environment empty: ours, and the path is looked up
  const char* folder = nullptr;
  int output = -1, errors = -1;  // where its streams go; -1: where ours go
  int report = -1;               // gets errno when it does not come to run, negative for the folder
};

// Runs in the new process: only calls that are safe between fork and exec of a program with
// threads.
[[noreturn]] void becomeProgram(const Launch& launch) {
  for (int number = 1; number < NSIG; ++number) {
    struct sigaction action;
    if (sigaction(number, nullptr, &action) != 0) continue;
    const bool ours = number == SIGPIPE || number == SIGXFSZ;  // ignored by us alone
    if (ours || action.sa_handler != SIG_IGN) signal(number, SIG_DFL);
  }
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  // It must not take the keys that are meant for a prompt of ours.
  const int null = open("/dev/null", O_RDONLY);
  if (null >= 0) dup2(null, STDIN_FILENO);
  if (launch.output >= 0) dup2(launch.output, STDOUT_FILENO);
  if (launch.errors >= 0) dup2(launch.errors, STDERR_FILENO);
  // Files of libraries may not be marked to be closed.
  close_range(3, ~0U, CLOSE_RANGE_CLOEXEC);
  const bool arrived = !launch.folder || chdir(launch.folder) == 0;
  if (arrived && launch.environment.empty()) {
    execvp(launch.path.c_str(), launch.list.data());
  } else if (arrived) {
    execve(launch.path.c_str(), launch.list.data(), launch.environment.data());
  }
  const int error = arrived ? errno : -errno;
  if (write(launch.report, &error, sizeof error) < 0) _exit(126);
  _exit(127);
}

// The error of a process that did not come to run its program, or 0 when it runs.
int reportedError(const Descriptor& report) {
  int error = 0;
  ssize_t n = 0;
  while ((n = read(report.get(), &error, sizeof error)) < 0 && errno == EINTR) {
  }
  return n > 0 ? error : 0;
}

}  // namespace

// The program is a grandchild whose parent ends at once, so the system's first process takes it
// over and clears up after it. A pipe that closes by itself on a successful exec tells whether it
// started.
bool startProcess(const std::string& program, const std::vector<std::string>& arguments) {
  Launch launch(program, arguments);
  Pipe report;
  if (!report.open()) return false;
  launch.report = report.to.get();
  pid_t child = -1;
  {
    const SignalPause pause;
    child = fork();
    if (child == 0) {
      setsid();
      const pid_t grandchild = fork();
      if (grandchild == 0) becomeProgram(launch);
      _exit(grandchild < 0 ? 1 : 0);
    }
  }
  report.to.reset();
  if (child < 0) return false;
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0 && reportedError(report.from) == 0;
}

// --- finding -------------------------------------------------------------------------------------

std::string findProgram(const std::string& name) {
  const auto isProgram = [](const std::string& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) &&
           access(path.c_str(), X_OK) == 0;
  };
  if (name.find('/') != name.npos) return isProgram(name) ? absolutePath(name) : std::string();
  const char* const places = std::getenv("PATH");
  std::string_view rest = places ? places : "/usr/local/bin:/usr/bin:/bin";
  while (!name.empty() && !rest.empty()) {
    const std::string_view place = rest.substr(0, rest.find(':'));
    rest.remove_prefix(std::min(rest.size(), place.size() + 1));
    if (!place.starts_with('/')) continue;
    const std::string path = std::string(place) + "/" + name;
    if (isProgram(path)) return path;
  }
  return {};
}

// --- running -------------------------------------------------------------------------------------

namespace {

// While it lives we inherit the orphans among the processes that we start, so that we can see their
// end: not every system's first process clears up after them.
class Inheritance {
 public:
  Inheritance() {
    prctl(PR_GET_CHILD_SUBREAPER, &before_);
    prctl(PR_SET_CHILD_SUBREAPER, 1);
  }
  ~Inheritance() { prctl(PR_SET_CHILD_SUBREAPER, before_); }
  Inheritance(const Inheritance&) = delete;
  Inheritance& operator=(const Inheritance&) = delete;

 private:
  int before_ = 0;
};

// A stream of the program, kept up to a limit and read on beyond it, so that the program never
// waits for somebody to read.
struct Stream {
  Pipe pipe;
  std::string* text = nullptr;

  // Reads what is there. False when nothing more will come.
  bool drain(std::size_t limit, bool& cut) {
    std::array<char, 16384> part;
    for (int reads = 0; reads < 64; ++reads) {  // a program that writes without end lets us look up
      const ssize_t n = read(pipe.from.get(), part.data(), part.size());
      if (n < 0 && errno == EINTR) continue;
      if (n < 0) return errno == EAGAIN;
      if (n == 0) return false;
      const std::size_t room = limit - std::min(limit, text->size());
      text->append(part.data(), std::min(room, static_cast<std::size_t>(n)));
      cut = cut || static_cast<std::size_t>(n) > room;
    }
    return true;
  }
};

// The child while it runs.
class Running {
 public:
  Running(const ProcessOptions& options, ProcessResult& result)
      : options_(options), result_(result), begin_(Clock::now()) {
    output_.text = &result.output;
    errors_.text = &result.errors;
  }

  // False, with the reason in the result, when it does not come to run.
  bool start(Launch& launch) {
    Pipe report;
    if (!report.open() || !output_.pipe.open() || !errors_.pipe.open()) return failed(errno);
    launch.report = report.to.get();
    launch.output = output_.pipe.to.get();
    launch.errors = errors_.pipe.to.get();
    {
      const SignalPause pause;
      const pid_t parent = getpid();
      child_ = fork();
      if (child_ == 0) {
        setsid();
        // Where nobody is left to end it, it ends with us.
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != parent) _exit(127);
        becomeProgram(launch);
      }
      if (child_ < 0) return failed(errno);
      guard_ = SignalGuard(child_);
    }
    report.to.reset();
    for (Stream* stream : {&output_, &errors_}) {
      stream->pipe.to.reset();
      fcntl(stream->pipe.from.get(), F_SETFL, O_NONBLOCK);
    }
    if (const int error = reportedError(report.from); error != 0) {
      finish();
      return failed(error);
    }
    handle_ = Descriptor(static_cast<int>(syscall(SYS_pidfd_open, child_, 0)));
    return true;
  }

  void wait() {
    while (!hasEnded() && !isUnwanted()) {
      pollfd places[] = {{output_.pipe.from.get(), POLLIN, 0},
                         {errors_.pipe.from.get(), POLLIN, 0},
                         {handle_.get(), POLLIN, 0}};
      poll(places, 3, handle_.get() >= 0 ? kTick : kTick / 5);
      readStreams();
    }
    finish();
    readStreams();  // what it wrote last; a pipe holds less than one turn takes
  }

 private:
  static constexpr int kTick = 50;  // ms

  bool failed(int error) {
    result_.end = ProcessResult::End::notStarted;
    result_.code = error;
    return false;
  }

  void readStreams() {
    for (Stream* stream : {&output_, &errors_}) {
      if (stream->pipe.from.get() < 0) continue;
      if (!stream->drain(options_.outputLimit, result_.cut)) stream->pipe.from.reset();
    }
  }

  // Looks without taking its end away: its number stays its own until all of its group are gone.
  bool hasEnded() {
    siginfo_t info = {};
    if (waitid(P_PID, static_cast<id_t>(child_), &info, WEXITED | WNOHANG | WNOWAIT) != 0) {
      return errno != EINTR && !failed(errno);
    }
    if (info.si_pid == 0) return false;
    const bool exited = info.si_code == CLD_EXITED;
    result_.end = exited ? ProcessResult::End::exited : ProcessResult::End::signalled;
    result_.code = info.si_status;
    return true;
  }

  bool isUnwanted() {
    const Clock::time_point now = Clock::now();
    if (options_.timeout && now - begin_ >= *options_.timeout) {
      result_.end = ProcessResult::End::timedOut;
      return true;
    }
    if (!options_.cancelled || now - asked_ < std::chrono::milliseconds(kTick)) return false;
    asked_ = now;
    if (!options_.cancelled()) return false;
    result_.end = ProcessResult::End::cancelled;
    return true;
  }

  void finish() {
    endGroup(child_);
    guard_ = SignalGuard();
  }

  const ProcessOptions& options_;
  ProcessResult& result_;
  const Clock::time_point begin_;
  Clock::time_point asked_{};
  Stream output_, errors_;
  Descriptor handle_;
  SignalGuard guard_;
  pid_t child_ = -1;
};

// What an error of the system says of a program whose file is there or is not.
void explain(ProcessResult& result, const std::string& path) {
  const bool there = fileExists(path) || folderExists(path);
  const int e = result.code;
  result.code = std::abs(e);
  if ((e == ENOENT || e == ENOTDIR) && !there) {
    result.end = ProcessResult::End::notFound;
  } else if (e == ENOENT || e == EACCES || e == ENOEXEC || e == EISDIR || e == ELIBBAD) {
    result.end = ProcessResult::End::notExecutable;
  }
}

}  // namespace

ProcessResult runProcess(const std::string& program, const std::vector<std::string>& arguments,
                         const ProcessOptions& options) {
  ProcessResult result;
  const bool isPath = program.find('/') != program.npos;
  const std::string path = isPath ? absolutePath(program) : findProgram(program);
  if (path.empty()) {
    result.end = ProcessResult::End::notFound;
    return result;
  }
  if (!options.folder.empty() && !folderExists(options.folder)) {
    result.code = ENOTDIR;
    return result;
  }
  Launch launch(path, arguments);
  launch.setEnvironment(options.environment);
  if (!options.folder.empty()) launch.folder = options.folder.c_str();
  const Inheritance orphans;
  Running running(options, result);
  if (running.start(launch)) {
    running.wait();
  } else {
    explain(result, path);
  }
  return result;
}

}  // namespace platform
