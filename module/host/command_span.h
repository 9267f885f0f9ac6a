// The span of one command or job, and what is remembered for its length.
#pragma once

#include <cstdint>

namespace vessora {

// Alive while a command or a job of this module runs. What is remembered about the drawing for one
// span is stale in the next: a user may have undone or erased anything since.
class CommandSpan {
 public:
  CommandSpan() { ++number_; }
  CommandSpan(const CommandSpan&) = delete;
  CommandSpan& operator=(const CommandSpan&) = delete;
  ~CommandSpan();

  // Rises with every span.
  static std::uint32_t number() { return number_; }
  // Has `forget` called once, when the running span ends: the place to release such memories.
  static void atEnd(void (*forget)());

 private:
  static std::uint32_t number_;
};

}  // namespace vessora
