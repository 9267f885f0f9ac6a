// Any bytes as the table of materials: what is written again reads as the same rows.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "module/network/materials.h"

namespace {

using namespace vessora;

void check(bool holds) {
  if (!holds) std::abort();
}

// Line ends within a text, which no row can keep, are blanks in the file.
std::u16string kept(std::u16string_view text) {
  std::u16string line(text);
  std::replace_if(
      line.begin(), line.end(), [](char16_t c) { return c == u'\n' || c == u'\r' || c == 0x1A; },
      u' ');
  return line;
}

bool sameNumber(double a, double b) {
  return a == b || std::fabs(a - b) <= 1e-10 + 1e-12 * std::fabs(a);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const std::vector<EpaMaterial> rows = parseMaterials(bytes);
  const std::vector<EpaMaterial> again = parseMaterials(formatMaterials(rows, bytes));
  check(again.size() == rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    check(again[i].name == kept(rows[i].name));
    check(again[i].thirdLine == kept(rows[i].thirdLine));
    check(sameNumber(rows[i].roughness, again[i].roughness));
  }
  return 0;
}
