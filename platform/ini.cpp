#include "platform/ini.h"

#include <algorithm>
#include <optional>

#include "platform/files.h"
#include "platform/text.h"

namespace platform {

namespace {

std::u16string_view trimmed(std::u16string_view text) {
  constexpr std::u16string_view kBlanks = u" \t\r\v\f";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// Text of the file: UTF-16 with a byte order mark, as editors on Windows save "Unicode" files, or
// bytes.
std::u16string textOf(const std::string& bytes) {
  if (bytes.compare(0, 2, "\xFF\xFE") != 0) return decodeBytes(bytes);
  std::u16string text;
  for (std::size_t i = 2; i + 1 < bytes.size(); i += 2) {
    text.push_back(static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                         static_cast<unsigned char>(bytes[i + 1]) << 8));
  }
  return text;
}

std::optional<std::u16string_view> lookUp(std::u16string_view text, std::u16string_view section,
                                          std::u16string_view key) {
  bool inside = false;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of(u"\r\n"), text.size());
    const std::u16string_view line = trimmed(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.empty() || line[0] == u';') continue;
    if (line[0] == u'[') {
      if (inside) return std::nullopt;  // a later section of the same name does not count
      inside = equalNoCase(trimmed(line.substr(1, line.find(u']') - 1)), section);
      continue;
    }
    const std::size_t equals = line.find(u'=');
    if (!inside || equals == line.npos || !equalNoCase(trimmed(line.substr(0, equals)), key))
      continue;
    std::u16string_view value = trimmed(line.substr(equals + 1));
    if (value.size() >= 2 && (value[0] == u'"' || value[0] == u'\'') && value.back() == value[0]) {
      value = value.substr(1, value.size() - 2);
    }
    return value;
  }
  return std::nullopt;
}

}  // namespace

std::u16string iniValue(const std::string& path, std::u16string_view section,
                        std::u16string_view key, std::u16string_view fallback, std::size_t limit) {
  std::u16string text;
  if (const Result<std::string> bytes = readFile(path)) text = textOf(*bytes);
  std::u16string_view value = lookUp(text, trimmed(section), trimmed(key)).value_or(fallback);
  if (value.size() > limit) {
    value = value.substr(0, limit);
    if (!value.empty() && (value.back() & 0xFC00) == 0xD800) value.remove_suffix(1);
  }
  return std::u16string(value);
}

}  // namespace platform
