// Files on their way to a name, folders for a while, programs at work: what they are called, and
// who takes them away when their process cannot.
//
// A temporary file lies beside its target, hidden: ".NAME.HOST-PID-COUNT". HOST tells machines (and
// containers) apart, so that the number of a process means something: a file whose process is gone
// is litter that the next save of the same target removes.
#pragma once

#include <sys/types.h>

#include <string>
#include <utility>

#include "platform/result.h"

namespace platform {

// A name beside `path` that nobody else uses.
std::string nameBeside(const std::string& path);

// Removes what dead processes of this machine left beside `path` while they saved it.
void removeLitterOf(const std::string& path);

// Removes a file, or a folder with all that is in it; links are not followed. Safe in a handler of
// signals.
void removeTree(const char* path);

// Kills all processes of a group and waits, for a second at most, until none of them runs any more.
// Safe in a handler of signals.
void endGroup(pid_t group);

// While it lives, the file or folder of this name is removed, or the processes of this group are
// killed, when a signal ends the process (see endTemporaryFilesOnSignals). It does nothing of this
// by itself.
class SignalGuard {
 public:
  SignalGuard() = default;
  explicit SignalGuard(const std::string& path);
  explicit SignalGuard(pid_t group);
  SignalGuard(SignalGuard&& other) noexcept;
  SignalGuard& operator=(SignalGuard&& other) noexcept;
  ~SignalGuard();

 private:
  int slot_ = -1;
};

// A folder of this process alone, among the system's temporary ones (TMPDIR), that goes with all
// its content: with this object, with the process when a signal ends it, and at the next such
// folder when the process was killed outright.
class TemporaryFolder {
 public:
  static Result<TemporaryFolder> make();
  TemporaryFolder(TemporaryFolder&& other) noexcept;
  TemporaryFolder& operator=(TemporaryFolder&& other) noexcept;
  ~TemporaryFolder();
  // Absolute, without a separator at its end.
  const std::string& path() const { return path_; }

 private:
  explicit TemporaryFolder(std::string path) : path_(std::move(path)), guard_(path_) {}
  std::string path_;
  SignalGuard guard_;
};

}  // namespace platform
