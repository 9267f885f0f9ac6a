// INI files: sections in brackets, key=value lines, as GetPrivateProfileStringW reads them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace platform {

// The value of a key in a section. Section and key compare without case, the first of several wins,
// blanks around key and value are dropped, one pair of equal quotation marks around the value is
// dropped, a line that begins with ';' is a comment. `fallback` stands for a missing file, section
// or key. At most `limit` UTF-16 units are returned. The file is read anew on each call.
std::u16string iniValue(const std::string& path, std::u16string_view section,
                        std::u16string_view key, std::u16string_view fallback,
                        std::size_t limit = 255);

}  // namespace platform
