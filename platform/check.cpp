#include "platform/check.h"

#include <cstdio>
#include <cstdlib>

namespace platform {

void brokenPromise(const char* what, const char* file, int line) noexcept {
  std::fprintf(stderr, "vessora: internal fault at %s:%d: %s; nothing was written\n", file, line,
               what);
  std::abort();
}

}  // namespace platform
