// Other programs, started without a shell. They get none of our open files, nothing to read, and
// none of the keys of the terminal.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace platform {

// Starts a program with its arguments and does not wait for it; its end leaves no zombie. False
// when it could not be started.
bool startProcess(const std::string& program, const std::vector<std::string>& arguments);

// The absolute path of a program: of a name on the PATH, or of a path when a program is there.
// Empty when there is none. Folders that the PATH names by where we happen to stand are left out.
std::string findProgram(const std::string& name);

struct ProcessOptions {
  std::string folder;                                            // to run in; empty: ours
  std::vector<std::pair<std::string, std::string>> environment;  // added to ours, or in its place
  std::size_t outputLimit = std::size_t{1} << 20;                // bytes kept of either stream
  std::optional<std::chrono::milliseconds> timeout;              // after which it is killed
  std::function<bool()> cancelled;  // asked about twenty times a second: true kills it
};

struct ProcessResult {
  enum class End {
    exited,         // `code` is its exit status
    signalled,      // it was ended by the signal `code`, which was not ours
    cancelled,      // killed because it was asked for
    timedOut,       // killed because it took too long
    notFound,       // there is no such program
    notExecutable,  // there is, and it cannot be run
    notStarted,     // anything else of the system's: errno in `code`
  };
  End end = End::notStarted;
  int code = 0;
  std::string output, errors;  // what it wrote to its streams, from the beginning
  bool cut = false;            // it wrote more than was kept
  bool succeeded() const { return end == End::exited && code == 0; }
};

// Runs a program and waits for its end. It and all that it starts are one group of processes, of
// which nothing is left when this returns: what outlives the program is killed. The group also ends
// when a signal ends us (see endTemporaryFilesOnSignals), and the program itself when we are killed
// outright. A program of a group that it has made for itself is its own business.
ProcessResult runProcess(const std::string& program, const std::vector<std::string>& arguments,
                         const ProcessOptions& options = {});

}  // namespace platform
