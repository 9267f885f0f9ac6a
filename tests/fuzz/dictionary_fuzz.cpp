// Any bytes as a dictionary: reading must end, and an error must name its line.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/dictionary.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const auto dictionary = platform::Dictionary::parse(bytes, "po");
  if (!dictionary) {
    if (dictionary.error().rfind("po:", 0) != 0) std::abort();
    return 0;
  }
  dictionary->find(u"Annulla");
  dictionary->find(u"Annulla", u"vessora.arx");
  return 0;
}
