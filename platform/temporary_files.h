// Files on their way to a name: what they are called, and who takes them away when their process
// cannot.
//
// A temporary file lies beside its target, hidden: ".NAME.HOST-PID-COUNT". HOST tells machines (and
// containers) apart, so that the number of a process means something: a file whose process is gone
// is litter that the next save of the same target removes.
#pragma once

#include <sys/types.h>

#include <string>

namespace platform {

// A name beside `path` that nobody else uses.
std::string nameBeside(const std::string& path);

// Removes what dead processes of this machine left beside `path` while they saved it.
void removeLitterOf(const std::string& path);

// While it lives, the file of this name is removed when a signal ends the process (see
// endTemporaryFilesOnSignals). It never removes the file by itself.
class SignalGuard {
 public:
  SignalGuard() = default;
  explicit SignalGuard(const std::string& path);
  SignalGuard(SignalGuard&& other) noexcept;
  SignalGuard& operator=(SignalGuard&& other) noexcept;
  ~SignalGuard();

 private:
  int slot_ = -1;
};

}  // namespace platform
