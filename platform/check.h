// Promises that the code makes to itself, checked in every build. A broken one is a fault of this
// program: going on could write a damaged drawing, so the process says what and where and ends
// before anything is written. Not for bad input, which gets a message and goes on.
#pragma once

namespace platform {

[[noreturn]] void brokenPromise(const char* what, const char* file, int line) noexcept;

}  // namespace platform

#define VESSORA_CHECK(condition, what) \
  ((condition) ? static_cast<void>(0) : platform::brokenPromise((what), __FILE__, __LINE__))
