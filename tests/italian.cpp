// Linked to test programs whose expectations are in Italian, whatever the locale of who runs them.
#include <cstdlib>

namespace {
[[maybe_unused]] const int chosen = setenv("VESSORA_LANG", "it", 1);
}  // namespace
