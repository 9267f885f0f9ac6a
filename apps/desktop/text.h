// Texts between the product (UTF-16 wide, or UTF-8) and Qt, and the words of the window.
#pragma once

#include <QString>
#include <string>
#include <string_view>

#include "platform/words.h"

namespace desktop {

inline QString qt(std::u16string_view text) {
  return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}
inline QString qt(std::string_view utf8) {
  return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}
inline std::u16string wide(const QString& text) { return text.toStdU16String(); }
inline std::string utf8(const QString& text) { return text.toStdString(); }

// A text of the window in the user's language; written in Italian, found in the one catalogue.
inline QString words(std::u16string_view italian) { return qt(platform::words(italian)); }
inline QString words(std::string_view italian) { return qt(platform::words(italian)); }

}  // namespace desktop
