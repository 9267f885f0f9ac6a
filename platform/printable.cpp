#include "platform/text.h"

namespace platform {

namespace {

// Marks that change how the characters behind them are ordered or broken into lines, so that a name
// could show as another one.
bool turnsWriting(char16_t c) {
  return c == 0x061C || c == 0x200E || c == 0x200F || (c >= 0x2028 && c <= 0x202E) ||
         (c >= 0x2066 && c <= 0x2069);
}

void appendCode(std::u16string& out, char16_t c) {
  out += u"<U+";
  for (int shift = 12; shift >= 0; shift -= 4) out += u"0123456789ABCDEF"[(c >> shift) & 15];
  out += u'>';
}

}  // namespace

std::u16string printable(std::u16string_view text) {
  std::u16string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t c = text[i];
    if (c == u'\n' || c == u'\t') {
      out += c;
    } else if (c == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n') {
      continue;
    } else if (c < 0x20) {
      out += static_cast<char16_t>(0x2400 + c);  // the pictures of the control characters
    } else if (c == 0x7F) {
      out += u'\x2421';
    } else if ((c >= 0x80 && c < 0xA0) || turnsWriting(c)) {
      appendCode(out, c);
    } else {
      out += c;
    }
  }
  return out;
}

std::string printable(std::string_view utf8) { return narrow(printable(widen(utf8))); }

}  // namespace platform
