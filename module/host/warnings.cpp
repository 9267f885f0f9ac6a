#include "module/host/warnings.h"

#include <utility>

namespace vessora {
namespace {

// A host that never asks does not fill memory.
constexpr std::size_t kMost = 1000;

Notices& pending() {
  static Notices list;
  return list;
}

}  // namespace

void warn(Notices notices) {
  for (Notice& notice : notices) {
    if (pending().size() < kMost) pending().push_back(std::move(notice));
  }
}

Notices takeWarnings() { return std::exchange(pending(), {}); }

}  // namespace vessora
