#include "schema/names.h"

#include "platform/files.h"
#include "schema/element.h"

namespace schema {

std::u16string layerName(std::u16string_view prefix, std::u16string_view network) {
  std::u16string name;
  name.reserve(prefix.size() + network.size());
  name += prefix;
  name += network;
  return name;
}

bool isAqueductName(std::u16string_view network) {
  return network.starts_with(schematic::kNamePrefix);
}

char16_t unusableCharacter(std::u16string_view network) {
  constexpr std::u16string_view kUnusable = u"<>/\\\":;?*|,=`";
  for (const char16_t c : network) {
    if (c < 0x20 || c == 0x7F || kUnusable.find(c) != kUnusable.npos) return c;
  }
  return 0;
}

// The arrows of flows have the longest prefix.
std::size_t longestLayerName(std::u16string_view network) {
  return std::u16string_view(layer::kFlowOut).size() + network.size();
}

std::u16string_view networkOfFile(std::u16string_view path) {
  const std::u16string_view file = platform::fileNameOf(path);
  return file.substr(0, file.size() < 4 ? 0 : file.size() - 4);
}

}  // namespace schema
