#include "cad/dxf/format.h"

#include <array>

namespace cad {
namespace {

constexpr bool within(int code, int low, int high) { return code >= low && code <= high; }

constexpr ValueKind classify(int c) {
  if (within(c, 10, 59) || within(c, 110, 149) || within(c, 210, 239) || within(c, 460, 469) ||
      within(c, 1010, 1059)) {
    return ValueKind::real;
  }
  if (c == 5 || c == 105 || within(c, 320, 369) || within(c, 390, 399) || within(c, 480, 481) ||
      c == 1005) {
    return ValueKind::handle;
  }
  if (within(c, 60, 79) || within(c, 170, 179) || within(c, 270, 289) || within(c, 370, 389) ||
      within(c, 400, 409) || within(c, 1060, 1070)) {
    return ValueKind::int16;
  }
  if (within(c, 90, 99) || within(c, 420, 429) || within(c, 440, 459) || c == 1071) {
    return ValueKind::int32;
  }
  if (within(c, 160, 169)) return ValueKind::int64;
  if (within(c, 290, 299)) return ValueKind::boolean;
  if (within(c, 310, 319) || c == 1004) return ValueKind::bytes;
  return ValueKind::text;
}

constexpr auto kKinds = [] {
  std::array<ValueKind, 1072> kinds{};
  for (int c = 0; c < 1072; ++c) kinds[static_cast<std::size_t>(c)] = classify(c);
  return kinds;
}();

int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

// The four hex digits at `at`, or -1.
int hexFour(std::string_view s, std::size_t at) {
  if (at + 4 > s.size()) return -1;
  int v = 0;
  for (std::size_t i = at; i < at + 4; ++i) {
    const int d = hexValue(s[i]);
    if (d < 0) return -1;
    v = v * 16 + d;
  }
  return v;
}

int hexFour(std::u16string_view s, std::size_t at) {
  char digits[4];
  for (std::size_t i = 0; i < 4; ++i) {
    if (at + i >= s.size() || s[at + i] > 127) return -1;
    digits[i] = static_cast<char>(s[at + i]);
  }
  return hexFour(std::string_view(digits, 4), 0);
}

// Escapes are looked for in decoded text, because a trail byte of an Asian page can be a backslash.
std::u16string unescape(const std::u16string& s) {
  std::u16string out;
  out.reserve(s.size());
  for (std::size_t i = 0; i < s.size(); ++i) {
    if (s[i] == u'\\' && i + 2 < s.size() && s[i + 2] == u'+') {
      if (s[i + 1] == u'U' || s[i + 1] == u'u') {
        if (const int c = hexFour(s, i + 3); c > 0) {
          out += static_cast<char16_t>(c);
          i += 6;
          continue;
        }
      } else if ((s[i + 1] == u'M' || s[i + 1] == u'm') && i + 3 < s.size() && s[i + 3] >= u'1' &&
                 s[i + 3] <= u'5') {
        if (const int c = hexFour(s, i + 4); c > 0) {
          const char bytes[2] = {static_cast<char>(c >> 8), static_cast<char>(c & 255)};
          out += platform::CodePage::multibyteEscape(s[i + 3] - u'0')
                     .decode(std::string_view(bytes, 2));
          i += 7;
          continue;
        }
      }
    }
    if (s[i] == u'^' && i + 1 < s.size()) {
      const char16_t c = s[i + 1];
      if (c == u' ') {
        out += u'^';
        ++i;
        continue;
      }
      if (c >= u'@' && c <= u'_') {
        out += static_cast<char16_t>(c - u'@');
        ++i;
        continue;
      }
    }
    out += s[i];
  }
  return out;
}

std::string unicodeEscape(char16_t c) {
  static const char* digits = "0123456789ABCDEF";
  std::string s = "\\U+";
  for (int shift = 12; shift >= 0; shift -= 4) s += digits[(c >> shift) & 15];
  return s;
}

}  // namespace

ValueKind kindOf(int code) {
  return code >= 0 && code < 1072 ? kKinds[static_cast<std::size_t>(code)] : ValueKind::text;
}

bool Format::sameEncoding(const Format& other) const {
  if (this == &other) return true;
  return binary == other.binary && page.isUtf8() && other.page.isUtf8() &&
         (!binary || wideCodes == other.wideCodes);
}

std::u16string Format::decode(std::string_view bytes) const {
  bool plain = true, escapes = false;
  for (const char c : bytes) {
    if (c & 0x80) plain = false;
    if (c == '\\' || c == '^') escapes = true;
  }
  if (plain && !escapes) return std::u16string(bytes.begin(), bytes.end());
  std::u16string text = plain ? std::u16string(bytes.begin(), bytes.end()) : page.decode(bytes);
  return escapes ? unescape(text) : text;
}

void Format::encode(std::string& out, std::u16string_view text) const {
  bool plain = true;
  for (const char16_t c : text) plain &= c >= 32 && c < 127 && c != u'^';
  if (plain) {
    const std::size_t old = out.size();
    out.resize(old + text.size());
    for (std::size_t i = 0; i < text.size(); ++i) out[old + i] = static_cast<char>(text[i]);
    return;
  }
  std::u16string safe;
  safe.reserve(text.size() + 4);
  for (const char16_t c : text) {
    if (c < 32) {
      safe += u'^';
      safe += static_cast<char16_t>(c + u'@');
    } else if (c == u'^') {
      safe += u"^ ";
    } else {
      safe += c;
    }
  }
  page.encode(out, safe, unicodeEscape);
}

const char* releaseName(int version) {
  switch (version) {
    case 1009:
      return "R12";
    case 1012:
      return "R13";
    case 1014:
      return "R14";
    case 1015:
      return "R2000";
    case 1018:
      return "R2004";
    case 1021:
      return "R2007";
    case 1024:
      return "R2010";
    case 1027:
      return "R2013";
    case 1032:
      return "R2018";
    default:
      return version < 1009 ? "older than R12" : "newer than R2018";
  }
}

}  // namespace cad
