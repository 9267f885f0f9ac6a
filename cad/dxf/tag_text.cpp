// Tags as the text of a file has them, read and written.
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "cad/dxf/bytes.h"
#include "cad/dxf/tags.h"

namespace cad {
namespace {

std::string_view trim(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r'))
    s.remove_suffix(1);
  return s;
}

// Powers of ten that a double holds exactly.
constexpr double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                   1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                   1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// Nearly all numbers of a drawing are plain decimals of few digits: whole number and power of ten
// are exact then, so that one division rounds as reading does. False for any other text.
bool readPlainDecimal(std::string_view text, double& value) {
  const char* p = text.data();
  const char* const end = p + text.size();
  const bool negative = p != end && *p == '-';
  if (negative) ++p;
  if (end - p > 18 || p == end) return false;
  std::uint64_t whole = 0;
  std::size_t places = 0;
  const char* const first = p;
  const auto digits = [&] {
    for (; p != end && static_cast<unsigned char>(*p - '0') < 10; ++p) {
      whole = whole * 10 + static_cast<unsigned>(*p - '0');
    }
  };
  digits();
  if (p == first) return false;
  if (p != end && *p == '.') {
    const char* const point = ++p;
    digits();
    places = static_cast<std::size_t>(p - point);
  }
  if (p != end || whole > std::uint64_t{1} << 53) return false;
  value = static_cast<double>(whole) / kPowersOfTen[places];
  if (negative) value = -value;
  return true;
}

}  // namespace

double parseTagReal(std::string_view text) {
  if (double value = 0; readPlainDecimal(text, value)) return value;
  text = trim(text);
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  double v = 0;
  const auto r = std::from_chars(text.data(), text.data() + text.size(), v);
  return r.ec == std::errc() && std::isfinite(v) ? v : 0;
}

std::int64_t parseTagInteger(std::string_view text) {
  text = trim(text);
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  std::int64_t v = 0;
  std::from_chars(text.data(), text.data() + text.size(), v);
  return v;
}

std::uint64_t parseTagHandle(std::string_view text) {
  text = trim(text);
  std::uint64_t v = 0;
  const auto r = std::from_chars(text.data(), text.data() + text.size(), v, 16);
  return r.ec == std::errc() && r.ptr == text.data() + text.size() ? v : 0;
}

namespace {

// Where the line that begins at `value` ends: at its line feed, or at `end`.
const char* lineEndOf(const char* value, const char* end) {
#if defined(__SSE2__)
  // Most values are a few bytes long.
  if (end - value >= 16) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(value));
    const int feeds = _mm_movemask_epi8(_mm_cmpeq_epi8(v, _mm_set1_epi8('\n')));
    if (feeds != 0) return value + __builtin_ctz(static_cast<unsigned>(feeds));
    value += 16;
  }
#endif
  const void* const found = std::memchr(value, '\n', static_cast<std::size_t>(end - value));
  return found ? static_cast<const char*>(found) : end;
}

// The group code of a line of three places, as programs write them ("  0", " 62", "100"), or -1.
int paddedCode(const char* p) {
  const auto digit = [](char c) { return static_cast<unsigned>(c - '0'); };
  const unsigned a = digit(p[0]), b = digit(p[1]), c = digit(p[2]);
  if (p[3] != '\n' || c > 9) return -1;
  if (a <= 9 && b <= 9) return static_cast<int>(100 * a + 10 * b + c);
  if (p[0] != ' ') return -1;
  if (b <= 9) return static_cast<int>(10 * b + c);
  return p[1] == ' ' ? static_cast<int>(c) : -1;
}

// Any line of a group code: blanks, a number and nothing else. False for other lines.
bool readCodeLine(const char* p, const char* end, int& code, const char*& value) {
  while (p < end && (*p == ' ' || *p == '\t')) ++p;
  const bool negative = p < end && *p == '-';
  if (negative) ++p;
  int number = 0;
  const char* const digits = p;
  while (p < end && static_cast<unsigned char>(*p - '0') < 10 && number < 100000) {
    number = number * 10 + (*p++ - '0');
  }
  if (p == digits) return false;
  while (p < end && (*p == ' ' || *p == '\t' || *p == '\r')) ++p;
  if (p == end || *p != '\n' || number > 32767) return false;
  code = negative ? -number : number;
  value = p + 1;
  return true;
}

}  // namespace

bool readAsciiTag(std::string_view text, std::size_t& at, Tag& tag) {
  const char* begin = text.data() + at;
  const char* end = text.data() + text.size();
  const char* value = nullptr;
  int code = end - begin >= 4 ? paddedCode(begin) : -1;
  if (code >= 0) {
    value = begin + 4;
  } else if (!readCodeLine(begin, end, code, value)) {
    return false;
  }
  const char* valueEnd = lineEndOf(value, end);
  const char* next = valueEnd < end ? valueEnd + 1 : end;
  if (valueEnd > value && valueEnd[-1] == '\r') --valueEnd;
  tag.start = begin;
  tag.value = value;
  tag.size = static_cast<std::uint32_t>(valueEnd - value);
  tag.total = static_cast<std::uint32_t>(next - begin);
  tag.code = static_cast<std::int16_t>(code);
  at = static_cast<std::size_t>(next - text.data());
  return true;
}

bool readBinaryTag(std::string_view text, std::size_t& at, bool wideCodes, Tag& tag) {
  const char* begin = text.data() + at;
  const std::size_t left = text.size() - at;
  std::size_t used = wideCodes ? 2 : 1;
  if (left < used) return false;
  int code = wideCodes ? littleEndian<std::int16_t>(begin) : static_cast<unsigned char>(begin[0]);
  if (!wideCodes && code == 255) {
    if (left < 3) return false;
    code = littleEndian<std::int16_t>(begin + 1);
    used = 3;
  }
  const ValueKind kind = kindOf(code);
  int fixed = sizeOfBinary(kind);
  const char* value = begin + used;
  if (fixed >= 0) {
    if (left < used + static_cast<std::size_t>(fixed)) return false;
    tag.size = static_cast<std::uint32_t>(fixed);
    tag.total = static_cast<std::uint32_t>(used) + tag.size;
  } else if (kind == ValueKind::bytes) {
    if (left < used + 1) return false;
    const auto n = static_cast<unsigned char>(*value++);
    if (left < used + 1 + n) return false;
    tag.size = n;
    tag.total = static_cast<std::uint32_t>(used) + 1 + n;
  } else {
    const char* nul = static_cast<const char*>(std::memchr(value, 0, left - used));
    if (!nul) return false;
    tag.size = static_cast<std::uint32_t>(nul - value);
    tag.total = static_cast<std::uint32_t>(used) + tag.size + 1;
  }
  tag.start = begin;
  tag.value = value;
  tag.code = static_cast<std::int16_t>(code);
  at += tag.total;
  return true;
}

std::size_t TagList::writtenSize() const {
  std::size_t n = 0;
  for (const Tag& t : tags_) n += t.start ? t.total : t.size + 12U;
  return n;
}

namespace {

// Group codes as files have them, right-aligned in three places, and a line end.
constexpr auto kPaddedCodes = [] {
  std::array<std::array<char, 4>, 1000> codes{};
  for (int c = 0; c < 1000; ++c) {
    codes[static_cast<std::size_t>(c)] = {c >= 100 ? static_cast<char>('0' + c / 100) : ' ',
                                          c >= 10 ? static_cast<char>('0' + c / 10 % 10) : ' ',
                                          static_cast<char>('0' + c % 10), '\n'};
  }
  return codes;
}();

}  // namespace

char* TagList::write(char* out) const {
  const bool plain = !format_->binary && !format_->crlf;
  for (const Tag& t : tags_) {
    if (t.start) {
      std::memcpy(out, t.start, t.total);
      out += t.total;
      // The last line of a file may have no end; what was added behind it begins a line of its own.
      if (!format_->binary && out[-1] != '\n' && &t != &tags_.back()) *out++ = '\n';
    } else if (plain && t.code >= 0 && t.code < 1000) {
      // Most tags of most drawings: the code's three places and the line end in one step.
      std::memcpy(out, kPaddedCodes[static_cast<std::size_t>(t.code)].data(), 4);
      out = copyShort(out + 4, t.bytes());
      *out++ = '\n';
    } else {
      out = format_->binary ? writeBinary(t, out) : writeAscii(t, out);
    }
  }
  return out;
}

char* TagList::writeBinary(const Tag& t, char* out) const {
  if (format_->wideCodes) {
    putLittleEndian(out, t.code);
    out += 2;
  } else if (t.code < 255) {
    *out++ = static_cast<char>(t.code);
  } else {
    *out++ = static_cast<char>(255);
    putLittleEndian(out, t.code);
    out += 2;
  }
  if (kindOf(t.code) == ValueKind::bytes) *out++ = static_cast<char>(t.size);
  out = copyShort(out, t.bytes());
  if (kindOf(t.code) == ValueKind::text || kindOf(t.code) == ValueKind::handle) *out++ = 0;
  return out;
}

char* TagList::writeAscii(const Tag& t, char* out) const {
  if (t.code >= 0 && t.code < 1000) {
    std::memcpy(out, kPaddedCodes[static_cast<std::size_t>(t.code)].data(), 3);
    out += 3;
  } else {
    out = std::to_chars(out, out + 8, t.code).ptr;
  }
  if (format_->crlf) *out++ = '\r';
  *out++ = '\n';
  out = copyShort(out, t.bytes());
  if (format_->crlf) *out++ = '\r';
  *out++ = '\n';
  return out;
}

}  // namespace cad
