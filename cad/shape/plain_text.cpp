#include "cad/shape/plain_text.h"

namespace cad::shape {

std::u16string plainText(std::u16string_view text) {
  std::u16string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != u'%' || i + 2 >= text.size() || text[i + 1] != u'%') {
      out += text[i];
      continue;
    }
    switch (text[i + 2]) {
      case u'c':
      case u'C':
        out += u'\u2300';
        break;
      case u'd':
      case u'D':
        out += u'\u00B0';
        break;
      case u'p':
      case u'P':
        out += u'\u00B1';
        break;
      case u'%':
        out += u'%';
        break;
      case u'u':
      case u'U':
      case u'o':
      case u'O':
        break;  // underline and overline
      default:
        out += text[i + 2];
        break;
    }
    i += 2;
  }
  return out;
}

std::vector<std::u16string> plainLines(std::u16string_view s) {
  std::vector<std::u16string> lines(1);
  for (std::size_t i = 0; i < s.size(); ++i) {
    const char16_t c = s[i];
    if (c == u'{' || c == u'}') continue;
    if (c == u'\n') {
      lines.emplace_back();
      continue;
    }
    if (c != u'\\' || i + 1 >= s.size()) {
      if (c >= 32) lines.back() += c;
      continue;
    }
    const char16_t code = s[++i];
    switch (code) {
      case u'P':
      case u'X':
        lines.emplace_back();
        break;
      case u'~':
        lines.back() += u' ';
        break;
      case u'\\':
      case u'{':
      case u'}':
        lines.back() += code;
        break;
      case u'L':
      case u'l':
      case u'O':
      case u'o':
      case u'K':
      case u'k':
      case u'N':
        break;
      case u'S': {  // a fraction: its parts with a stroke between
        std::size_t end = s.find(u';', i);
        if (end == s.npos) end = s.size();
        for (++i; i < end; ++i) lines.back() += s[i] == u'^' || s[i] == u'#' ? u'/' : s[i];
        break;
      }
      default: {  // font, height, colour, width and the like, up to the semicolon
        const std::size_t end = s.find(u';', i);
        if (end != s.npos) i = end;
        break;
      }
    }
  }
  for (std::u16string& line : lines) line = plainText(line);
  return lines;
}

}  // namespace cad::shape
