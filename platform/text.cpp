#include "platform/text.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace platform {

namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// Windows-1252, 0x80..0x9F. The five bytes that the page leaves undefined stand for themselves, as
// on Windows, so that two different bytes never become the same text.
constexpr char16_t kWindows1252[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

bool isBlank(char32_t c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool isDigit(char32_t c) { return c >= '0' && c <= '9'; }

// Number of ASCII bytes at the start of the text, eight at a time.
std::size_t asciiPrefix(std::string_view bytes) {
  const char* const begin = bytes.data();
  const char* p = begin;
  const char* const end = begin + bytes.size();
  for (; end - p >= 8; p += 8) {
    std::uint64_t word;
    std::memcpy(&word, p, 8);
    word &= 0x8080808080808080u;
    if (word != 0) break;
  }
  while (p < end && static_cast<unsigned char>(*p) < 0x80) ++p;
  return static_cast<std::size_t>(p - begin);
}

// Decodes the sequence at the start of the text. Returns its length, or 0 when it is not valid:
// overlong forms, surrogates and values beyond U+10FFFF are refused.
std::size_t decodeOne(std::string_view bytes, char32_t& c) {
  auto at = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  auto trails = [&](std::size_t n) {
    if (bytes.size() < n) return false;
    for (std::size_t i = 1; i < n; ++i) {
      if ((at(i) & 0xC0) != 0x80) return false;
      c = (c << 6) | (at(i) & 0x3Fu);
    }
    return true;
  };
  const unsigned lead = at(0);
  c = lead;
  if (lead < 0x80) return 1;
  if (lead < 0xC2) return 0;
  if (lead < 0xE0) {
    c = lead & 0x1F;
    return trails(2) ? 2 : 0;
  }
  if (lead < 0xF0) {
    c = lead & 0x0F;
    return trails(3) && c >= 0x800 && (c & 0xFFFFF800) != 0xD800 ? 3 : 0;
  }
  c = lead & 0x07;
  return lead < 0xF5 && trails(4) && c >= 0x10000 && c <= 0x10FFFF ? 4 : 0;
}

void appendUnits(std::u16string& out, char32_t c) {
  if (c < 0x10000) {
    out.push_back(static_cast<char16_t>(c));
    return;
  }
  c -= 0x10000;
  out.push_back(static_cast<char16_t>(0xD800 + (c >> 10)));
  out.push_back(static_cast<char16_t>(0xDC00 + (c & 0x3FF)));
}

char* putUtf8(char* p, char32_t c) {
  if (c < 0x80) {
    *p++ = static_cast<char>(c);
  } else if (c < 0x800) {
    *p++ = static_cast<char>(0xC0 | (c >> 6));
    *p++ = static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    *p++ = static_cast<char>(0xE0 | (c >> 12));
    *p++ = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    *p++ = static_cast<char>(0x80 | (c & 0x3F));
  } else {
    *p++ = static_cast<char>(0xF0 | (c >> 18));
    *p++ = static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    *p++ = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    *p++ = static_cast<char>(0x80 | (c & 0x3F));
  }
  return p;
}

char32_t from1252(unsigned char c) { return c >= 0x80 && c < 0xA0 ? kWindows1252[c - 0x80] : c; }

}  // namespace

// --- conversions -------------------------------------------------------------------------------

std::u16string widen(std::string_view utf8) {
  std::u16string out;
  out.reserve(utf8.size());
  while (!utf8.empty()) {
    const std::size_t ascii = asciiPrefix(utf8);
    out.append(utf8.begin(), utf8.begin() + static_cast<std::ptrdiff_t>(ascii));
    utf8.remove_prefix(ascii);
    if (utf8.empty()) break;
    char32_t c = 0;
    const std::size_t n = decodeOne(utf8, c);
    appendUnits(out, n > 0 ? c : kReplacement);
    utf8.remove_prefix(n > 0 ? n : 1);
  }
  return out;
}

std::string narrow(std::u16string_view text) {
  std::string out;
  out.reserve(text.size());
  appendNarrow(out, text);
  return out;
}

void appendNarrow(std::string& out, std::u16string_view text) {
  constexpr std::size_t kChunk = 256;
  char chunk[kChunk * 3 + 4];
  char* p = chunk;
  std::size_t i = 0;
  while (i < text.size()) {
    if (p - chunk > static_cast<std::ptrdiff_t>(kChunk * 2)) {
      out.append(chunk, static_cast<std::size_t>(p - chunk));
      p = chunk;
    }
    // Whole groups of ASCII: the check and the copy have a fixed length, so they become vector
    // code.
    for (; text.size() - i >= 8 && p - chunk <= static_cast<std::ptrdiff_t>(kChunk * 2); i += 8) {
      unsigned all = 0;
      for (std::size_t k = 0; k < 8; ++k) all |= text[i + k];
      if (all >= 0x80) break;
      for (std::size_t k = 0; k < 8; ++k) p[k] = static_cast<char>(text[i + k]);
      p += 8;
    }
    for (std::size_t k = 0; k < 8 && i < text.size(); ++k) {
      char32_t c = text[i++];
      if ((c & 0xF800) == 0xD800) {
        if (c < 0xDC00 && i < text.size() && (text[i] & 0xFC00) == 0xDC00) {
          c = 0x10000 + ((c - 0xD800) << 10) + (text[i++] - 0xDC00u);
        } else {
          c = kReplacement;
        }
      }
      p = putUtf8(p, c);
    }
  }
  out.append(chunk, static_cast<std::size_t>(p - chunk));
}

bool isValidUtf8(std::string_view bytes) {
  while (true) {
    bytes.remove_prefix(asciiPrefix(bytes));
    if (bytes.empty()) return true;
    char32_t c = 0;
    const std::size_t n = decodeOne(bytes, c);
    if (n == 0) return false;
    bytes.remove_prefix(n);
  }
}

std::u16string decodeBytes(std::string_view bytes) {
  if (bytes.substr(0, 3) == kByteOrderMark) bytes.remove_prefix(3);
  if (isValidUtf8(bytes)) return widen(bytes);
  std::u16string out(bytes.size(), u'\0');
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    out[i] = static_cast<char16_t>(from1252(static_cast<unsigned char>(bytes[i])));
  }
  return out;
}

std::string toUtf8(std::string bytes) {
  if (std::string_view(bytes).substr(0, 3) == kByteOrderMark) bytes.erase(0, 3);
  if (isValidUtf8(bytes)) return bytes;
  std::string out;
  out.reserve(bytes.size() + bytes.size() / 8);
  for (std::string_view rest = bytes; !rest.empty(); rest.remove_prefix(1)) {
    const std::size_t ascii = asciiPrefix(rest);
    out.append(rest.substr(0, ascii));
    rest.remove_prefix(ascii);
    if (rest.empty()) break;
    char c[4];
    const char* end = putUtf8(c, from1252(static_cast<unsigned char>(rest[0])));
    out.append(c, static_cast<std::size_t>(end - c));
  }
  return out;
}

char16_t upper(char16_t c) {
  auto to = [](int code) { return static_cast<char16_t>(code); };
  const bool odd = (c & 1) != 0;
  if (c < 0x80) return c >= 'a' && c <= 'z' ? to(c - 0x20) : c;
  if (c < 0x100) {
    if (c == 0xFF) return 0x178;
    return c >= 0xE0 && c != 0xF7 ? to(c - 0x20) : c;
  }
  if (c <
      0x180) {  // pairs of capital and small, with a shift of parity and lone letters between them
    if (c == 0x131 || c == 0x138 || c == 0x149 || c == 0x178 || c == 0x17F) return c;
    const bool shifted = (c > 0x138 && c < 0x149) || c > 0x178;
    return odd != shifted ? to(c - 1) : c;
  }
  if (c >= 0x3AC && c <= 0x3CE) {
    if (c == 0x3AC) return 0x386;
    if (c <= 0x3AF) return to(c - 37);
    if (c == 0x3B0) return c;
    if (c == 0x3C2) return 0x3A3;  // final sigma
    if (c <= 0x3CB) return to(c - 0x20);
    return c == 0x3CC ? to(0x38C) : to(c - 63);
  }
  if (c >= 0x430 && c <= 0x52F) {
    if (c <= 0x44F) return to(c - 0x20);
    if (c <= 0x45F) return to(c - 0x50);
    if (c >= 0x482 && c <= 0x489) return c;  // signs between the letters
    if (c >= 0x4C0 && c <= 0x4CF) {
      if (c == 0x4CF) return 0x4C0;
      return c > 0x4C0 && !odd ? to(c - 1) : c;
    }
    return odd ? to(c - 1) : c;
  }
  return c;
}

std::u16string upper(std::u16string_view text) {
  std::u16string out(text);
  for (char16_t& c : out) c = upper(c);
  return out;
}

bool equalNoCase(std::u16string_view a, std::u16string_view b) {
  return a.size() == b.size() &&
         std::equal(a.begin(), a.end(), b.begin(),
                    [](char16_t x, char16_t y) { return x == y || upper(x) == upper(y); });
}

// --- numbers -----------------------------------------------------------------------------------

namespace {

// A decimal number at the start of a text, taken apart.
struct Decimal {
  bool negative = false;
  std::uint64_t digits = 0;  // the first 19 significant digits
  int significant = 0;       // how many there are
  int scale = 0;             // value = digits * 10^scale when significant <= 19
  bool fits = true;          // no non-zero digit was left out of `digits`
  std::size_t from = 0;      // where the sign or first digit stands
  std::size_t to = 0;        // behind the last character used; 0 = no number
};

constexpr int kExponentLimit = 100000;  // far beyond double, far from overflow of int

template <class Char>
void readExponent(std::basic_string_view<Char> text, Decimal& d) {
  std::size_t i = d.to;
  if (i >= text.size() || (text[i] != 'e' && text[i] != 'E')) return;
  ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) negative = text[i++] == '-';
  if (i >= text.size() || !isDigit(text[i])) return;
  int exponent = 0;
  for (; i < text.size() && isDigit(text[i]); ++i) {
    if (exponent < kExponentLimit) exponent = exponent * 10 + static_cast<int>(text[i] - '0');
  }
  d.scale += negative ? -exponent : exponent;
  d.to = i;
}

// `marks` are the characters that serve as decimal mark.
template <class Char>
Decimal readDecimal(std::basic_string_view<Char> text, std::string_view marks) {
  Decimal d;
  std::size_t i = 0;
  while (i < text.size() && isBlank(text[i])) ++i;
  d.from = i;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) d.negative = text[i++] == '-';
  bool any = false, point = false;
  for (; i < text.size(); ++i) {
    const Char c = text[i];
    if (!isDigit(c)) {
      if (point || c >= 0x80 || marks.find(static_cast<char>(c)) == marks.npos) break;
      point = true;
      continue;
    }
    any = true;
    const auto digit = static_cast<unsigned>(c - '0');
    if (d.significant < 19) {
      d.digits = d.digits * 10 + digit;
      if (d.digits != 0) ++d.significant;
      if (point && d.scale > -kExponentLimit) --d.scale;
    } else {
      if (digit != 0) d.fits = false;
      if (!point && d.scale < kExponentLimit) ++d.scale;
    }
  }
  if (!any) return d;
  d.to = i;
  readExponent(text, d);
  return d;
}

constexpr double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                   1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                   1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// The correctly rounded value. `overflow` tells that it is beyond double; the value is then the
// largest double.
template <class Char>
double valueOf(const Decimal& d, std::basic_string_view<Char> text, bool& overflow) {
  overflow = false;
  double value = 0;
  if (d.digits == 0) {
    value = 0;
  } else if (d.fits && d.digits <= (std::uint64_t{1} << 53) && d.scale >= -22 && d.scale <= 22) {
    // Both factors are exact doubles, so the one operation rounds once, as it should.
    value = static_cast<double>(d.digits);
    value = d.scale < 0 ? value / kPowersOfTen[-d.scale] : value * kPowersOfTen[d.scale];
  } else {
    const std::size_t begin = d.from + (text[d.from] == '+' || text[d.from] == '-' ? 1 : 0);
    std::string digits;
    digits.reserve(d.to - begin);
    for (std::size_t i = begin; i < d.to; ++i) {
      digits.push_back(text[i] == ',' ? '.' : static_cast<char>(text[i]));
    }
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (read.ec == std::errc::result_out_of_range) {
      overflow = d.significant + d.scale > 0;
      value = overflow ? std::numeric_limits<double>::max() : 0;
    }
  }
  return d.negative ? -value : value;
}

template <class Char>
double realAtStart(std::basic_string_view<Char> text) {
  const Decimal d = readDecimal(text, ".");
  bool overflow = false;
  return d.to == 0 ? 0 : valueOf(d, text, overflow);
}

bool onlyBlanks(std::u16string_view text) {
  return std::all_of(text.begin(), text.end(), [](char16_t c) { return isBlank(c); });
}

}  // namespace

double wtof(std::u16string_view text) { return realAtStart(text); }
double wtof(std::string_view text) { return realAtStart(text); }

std::int32_t wtoi(std::u16string_view text) {
  constexpr std::int64_t kMax = std::numeric_limits<std::int32_t>::max();
  constexpr std::int64_t kMin = std::numeric_limits<std::int32_t>::min();
  std::size_t i = 0;
  while (i < text.size() && isBlank(text[i])) ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) negative = text[i++] == '-';
  std::int64_t value = 0;
  for (; i < text.size() && isDigit(text[i]); ++i) {
    if (value <= kMax) value = value * 10 + (text[i] - '0');
  }
  return static_cast<std::int32_t>(std::clamp(negative ? -value : value, kMin, kMax));
}

std::optional<double> parseReal(std::u16string_view text) {
  const Decimal d = readDecimal(text, ".,");
  if (d.to == 0 || !onlyBlanks(text.substr(d.to))) return std::nullopt;
  bool overflow = false;
  const double value = valueOf(d, text, overflow);
  if (overflow) return std::nullopt;
  return value;
}

std::optional<std::int64_t> parseInteger(std::u16string_view text) {
  std::size_t i = 0;
  while (i < text.size() && isBlank(text[i])) ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) negative = text[i++] == '-';
  const std::size_t first = i;
  std::int64_t value = 0;  // counted downwards: the lowest number has no positive counterpart
  for (; i < text.size() && isDigit(text[i]); ++i) {
    if (__builtin_mul_overflow(value, 10, &value) ||
        __builtin_sub_overflow(value, static_cast<std::int64_t>(text[i] - '0'), &value)) {
      return std::nullopt;
    }
  }
  if (i == first || !onlyBlanks(text.substr(i))) return std::nullopt;
  if (negative) return value;
  if (value == std::numeric_limits<std::int64_t>::min()) return std::nullopt;
  return -value;
}

namespace {

// A number of thousandths, without zeros at its end; not a whole number.
char* writeThousandths(char* to, std::int64_t thousandths) {
  if (thousandths < 0) {
    *to++ = '-';
    thousandths = -thousandths;
  }
  to = std::to_chars(to, to + 24, thousandths / 1000).ptr;
  const int rest = static_cast<int>(thousandths % 1000);
  *to++ = '.';
  *to++ = static_cast<char>('0' + rest / 100);
  if (rest % 100 == 0) return to;
  *to++ = static_cast<char>('0' + rest / 10 % 10);
  if (rest % 10 == 0) return to;
  *to++ = static_cast<char>('0' + rest % 10);
  return to;
}

}  // namespace

char* writeReal(char* to, double value) {
  if (!std::isfinite(value)) {
    // No drawing reader knows "inf" or "nan": one such number would make the whole file unreadable.
    value = std::isnan(value) ? 0 : std::copysign(std::numeric_limits<double>::max(), value);
  }
  if (std::fabs(value) < 1e15) {
    const auto whole = static_cast<std::int64_t>(value);
    if (static_cast<double>(whole) == value) {
      if (whole == 0 && std::signbit(value)) *to++ = '-';
      to = std::to_chars(to, to + 24, whole).ptr;
      *to++ = '.';
      *to++ = '0';
      return to;
    }
  }
  // Coordinates and most other numbers of a drawing have three decimals at most. Where a number of
  // that form reads back as this double it is the shortest one, because two decimals of so few
  // digits are never the same double.
  if (std::fabs(value) < 1e11) {
    const double scaled = std::round(value * 1000);
    if (scaled / 1000 == value) return writeThousandths(to, static_cast<std::int64_t>(scaled));
  }
  char* end = std::to_chars(to, to + 28, value).ptr;
  if (std::none_of(to, end, [](char c) { return c == '.' || c == 'e'; })) {
    *end++ = '.';
    *end++ = '0';
  }
  return end;
}

char* writeFixed3(char* to, double value) {
  const auto bits = std::bit_cast<std::uint64_t>(value);
  const int exponent = static_cast<int>((bits >> 52) & 0x7FF);
  const int shift = 1075 - exponent;  // value = mantissa / 2^shift
  if (shift < 0) return std::to_chars(to, to + 330, value, std::chars_format::fixed, 3).ptr;
  if (bits >> 63 != 0) *to++ = '-';
  std::uint64_t thousandths = 0;
  if (exponent != 0 && shift < 64) {
    // A mantissa of 53 bits times 1000 fits 64 bits, so the bits shifted out are the exact rest and
    // decide the rounding, ties to even.
    const std::uint64_t mantissa = (bits & 0xFFFFFFFFFFFFFu) | (std::uint64_t{1} << 52);
    const std::uint64_t product = mantissa * 1000;
    thousandths = product >> shift;
    if (shift > 0) {
      const std::uint64_t rest = product & ((std::uint64_t{1} << shift) - 1);
      const std::uint64_t half = std::uint64_t{1} << (shift - 1);
      if (rest > half || (rest == half && (thousandths & 1) != 0)) ++thousandths;
    }
  }
  to = std::to_chars(to, to + 24, thousandths / 1000).ptr;
  const auto rest = static_cast<unsigned>(thousandths % 1000);
  *to++ = '.';
  *to++ = static_cast<char>('0' + rest / 100);
  *to++ = static_cast<char>('0' + rest / 10 % 10);
  *to++ = static_cast<char>('0' + rest % 10);
  return to;
}

// --- lines -------------------------------------------------------------------------------------

TextLines::TextLines(std::string_view utf8, std::size_t limit)
    : text_(utf8.substr(0, utf8.find('\x1A'))), limit_(std::max<std::size_t>(limit, 1)) {}

namespace {

// Length in bytes of the longest start of `text` that has at most `limit` UTF-16 units; whole
// characters only.
std::size_t bytesOfUnits(std::string_view text, std::size_t limit) {
  std::size_t units = 0, i = 0;
  while (i < text.size()) {
    const auto lead = static_cast<unsigned char>(text[i]);
    units += lead >= 0xF0 ? 2 : 1;
    if (units > limit) break;
    i += lead < 0xC0 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  }
  return std::min(i, text.size());
}

}  // namespace

std::optional<std::string_view> TextLines::next() {
  if (at_ >= text_.size()) {
    ended_ = true;
    return std::nullopt;
  }
  // No piece has more bytes than this, so a line of any length is looked at once.
  const std::string_view window = text_.substr(at_, 3 * limit_ + 2);
  const std::size_t feed = window.find('\n');
  const bool found = feed != window.npos;
  const bool carriage = found && feed > 0 && window[feed - 1] == '\r';
  const std::size_t content = found ? feed - (carriage ? 1 : 0) : window.size();
  const bool fits =
      content < limit_ || (found && bytesOfUnits(window.substr(0, content), limit_ - 1) == content);
  if (!fits) {
    // A character of two units is delivered whole even where the limit is one.
    std::size_t piece = bytesOfUnits(window.substr(0, content), limit_);
    if (piece == 0) piece = bytesOfUnits(window.substr(0, content), 2);
    at_ += piece;
    return window.substr(0, piece);
  }
  if (!found) {
    at_ += content;
    return window;
  }
  at_ += feed + 1;
  if (!carriage) return window.substr(0, feed + 1);
  buffer_.assign(window.data(), content);
  buffer_.push_back('\n');
  return buffer_;
}

}  // namespace platform
