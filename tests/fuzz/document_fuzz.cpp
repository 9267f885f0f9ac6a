// Any bytes as an input file: its rows make up the text, a network of it is read without harm, and
// edits change what they name and nothing else.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "tests/epanet/editor_laws.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const unsigned seed = size > 0 ? data[size / 2] : 0;
  const std::string law = epanet::brokenLaw(text, seed, false);
  if (law.empty()) return 0;
  std::fprintf(stderr, "broken: %s\n", law.c_str());
  std::abort();
}
