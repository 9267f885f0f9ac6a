// Linked to test programs whose expectations are in English, whatever the locale of who runs them.
#include <cstdlib>

namespace {
[[maybe_unused]] const int chosen = setenv("VESSORA_LANG", "en", 1);
}  // namespace
