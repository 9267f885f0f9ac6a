#include "platform/format.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

#include "platform/text.h"

namespace platform::detail {

namespace {

// Templates come from translation files too: a width or precision typed wrongly there must not fill
// the memory.
constexpr int kLargestField = 4096;
constexpr int kLargestPrecision = 400;

struct Conversion {
  bool left = false, plus = false, zero = false, blank = false, alternate = false;
  int width = 0;
  int precision = -1;
  char16_t type = 0;  // 0: no conversion
};

bool isHighSurrogate(char16_t c) { return (c & 0xFC00) == 0xD800; }

// UTF-16 units of the text, cut to `limit` between whole characters.
std::u16string_view cut(std::u16string_view text, int limit) {
  if (limit < 0 || text.size() <= static_cast<std::size_t>(limit)) return text;
  text = text.substr(0, static_cast<std::size_t>(limit));
  if (!text.empty() && isHighSurrogate(text.back())) text.remove_suffix(1);
  return text;
}

// Where the formatted text goes: pieces of ASCII, of UTF-16 and of UTF-8 from one side, the form of
// the output string on the other.
class WideSink {
 public:
  explicit WideSink(std::u16string& out) : out_(out) {}
  void ascii(const char* p, std::size_t n) { out_.append(p, p + n); }
  void fill(char c, std::size_t n) { out_.append(n, static_cast<char16_t>(c)); }
  void units(std::u16string_view text) { out_.append(text); }
  void utf8(std::string_view text) { out_.append(widen(text)); }

 private:
  std::u16string& out_;
};

// Collects in a buffer of its own: the many small pieces of a row cost one append of the string.
class NarrowSink {
 public:
  explicit NarrowSink(std::string& out) : out_(out) {}
  ~NarrowSink() { flush(); }
  NarrowSink(const NarrowSink&) = delete;
  NarrowSink& operator=(const NarrowSink&) = delete;

  void ascii(const char* p, std::size_t n) {
    if (n > sizeof buffer_ - used_) {
      flush();
      if (n > sizeof buffer_) {
        out_.append(p, n);
        return;
      }
    }
    std::memcpy(buffer_ + used_, p, n);
    used_ += n;
  }
  void fill(char c, std::size_t n) {
    if (n > sizeof buffer_ - used_) {
      flush();
      if (n > sizeof buffer_) {
        out_.append(n, c);
        return;
      }
    }
    std::memset(buffer_ + used_, c, n);
    used_ += n;
  }
  void units(std::u16string_view text) {
    if (text.size() > sizeof buffer_ - used_) flush();
    std::size_t i = 0;
    if (text.size() <= sizeof buffer_) {
      char* to = buffer_ + used_;
      while (i < text.size() && text[i] < 0x80) {
        to[i] = static_cast<char>(text[i]);
        ++i;
      }
      used_ += i;
    }
    if (i == text.size()) return;
    flush();
    appendNarrow(out_, text.substr(i));
  }
  void utf8(std::string_view text) {
    if (isValidUtf8(text)) {
      ascii(text.data(), text.size());
    } else {
      units(widen(text));
    }
  }

 private:
  void flush() {
    out_.append(buffer_, used_);
    used_ = 0;
  }
  std::string& out_;
  std::size_t used_ = 0;
  char buffer_[512];
};

// Reads what follows a '%'. `at` moves behind the conversion, or to the character that makes none.
Conversion readConversion(std::u16string_view pattern, std::size_t& at) {
  Conversion c;
  auto here = [&] { return at < pattern.size() ? pattern[at] : u'\0'; };
  auto number = [&] {
    int value = 0;
    for (; here() >= '0' && here() <= '9'; ++at) {
      value = std::min(value * 10 + (here() - '0'), kLargestField);
    }
    return value;
  };
  for (;; ++at) {
    if (here() == '-') {
      c.left = true;
    } else if (here() == '+') {
      c.plus = true;
    } else if (here() == '0') {
      c.zero = true;
    } else if (here() == ' ') {
      c.blank = true;
    } else if (here() == '#') {
      c.alternate = true;
    } else {
      break;
    }
  }
  c.width = number();
  if (here() == '.') {
    ++at;
    c.precision = std::min(number(), kLargestPrecision);
  }
  while (here() == 'l' || here() == 'h') ++at;
  const char16_t type = here();
  if (type != 0 && type < 0x80 && std::strchr("scdiufegxFEGX%", static_cast<char>(type))) {
    c.type = type;
    ++at;
  }
  return c;
}

std::size_t padding(const Conversion& c, std::size_t units) {
  const auto width = static_cast<std::size_t>(c.width);
  return width > units ? width - units : 0;
}

template <class Sink>
void putText(Sink& sink, const Conversion& c, std::u16string_view text) {
  const std::size_t pad = padding(c, text.size());
  if (!c.left && pad > 0) sink.fill(' ', pad);
  sink.units(text);
  if (c.left && pad > 0) sink.fill(' ', pad);
}

template <class Sink>
void putBytes(Sink& sink, const Conversion& c, std::string_view text, int limit) {
  const bool ascii = std::all_of(text.begin(), text.end(), [](char x) { return (x & 0x80) == 0; });
  if (!ascii) {
    putText(sink, c, cut(widen(text), limit));
    return;
  }
  if (limit >= 0) text = text.substr(0, static_cast<std::size_t>(limit));
  const std::size_t pad = padding(c, text.size());
  if (!c.left && pad > 0) sink.fill(' ', pad);
  sink.ascii(text.data(), text.size());
  if (c.left && pad > 0) sink.fill(' ', pad);
}

// A number whose sign stands in `sign` (may be empty) and whose digits, already in their final
// form, in `digits`; zeros go between the two.
template <class Sink>
void putNumber(Sink& sink, const Conversion& c, std::string_view sign, std::string_view digits,
               bool zeros) {
  const std::size_t pad = padding(c, sign.size() + digits.size());
  const bool byZeros = zeros && c.zero && !c.left;
  if (!c.left && !byZeros && pad > 0) sink.fill(' ', pad);
  sink.ascii(sign.data(), sign.size());
  if (byZeros && pad > 0) sink.fill('0', pad);
  sink.ascii(digits.data(), digits.size());
  if (c.left && pad > 0) sink.fill(' ', pad);
}

std::string_view signOf(const Conversion& c, bool negative) {
  return negative ? "-" : c.plus ? "+" : c.blank ? " " : "";
}

template <class Sink>
void putInteger(Sink& sink, const Conversion& c, std::int64_t value) {
  const bool hex = c.type == 'x' || c.type == 'X';
  const bool isSigned = !hex && c.type != 'u';
  const bool negative = isSigned && value < 0;
  std::uint64_t magnitude = static_cast<std::uint64_t>(value);
  if (negative) magnitude = 0 - magnitude;
  // A negative number without a sign is seen as the 32 bits it has in the templates' own terms.
  if (!isSigned && value < 0 && value >= std::numeric_limits<std::int32_t>::min()) {
    magnitude &= 0xFFFFFFFFu;
  }
  char digits[kLargestPrecision + 24];
  char* end = std::to_chars(digits, digits + 24, magnitude, hex ? 16 : 10).ptr;
  const auto n = static_cast<int>(end - digits);
  if (c.precision > n) {
    const auto missing = static_cast<std::size_t>(c.precision - n);
    std::memmove(digits + missing, digits, static_cast<std::size_t>(n));
    std::memset(digits, '0', missing);
    end += missing;
  } else if (c.precision == 0 && value == 0) {
    end = digits;
  }
  std::string_view sign = isSigned ? signOf(c, negative) : "";
  if (hex && c.alternate && value != 0) sign = c.type == 'X' ? "0X" : "0x";
  if (c.type == 'X') {
    std::transform(digits, end, digits,
                   [](char x) { return x >= 'a' ? static_cast<char>(x - 32) : x; });
  }
  putNumber(sink, c, sign, {digits, static_cast<std::size_t>(end - digits)}, c.precision < 0);
}

// Puts the point that '#' asks for into the digits at [p, end); returns the new end.
char* forcePoint(char* p, char* end) {
  char* mantissaEnd = std::find(p, end, 'e');
  if (std::find(p, mantissaEnd, '.') != mantissaEnd) return end;
  std::memmove(mantissaEnd + 1, mantissaEnd, static_cast<std::size_t>(end - mantissaEnd));
  *mantissaEnd = '.';
  return end + 1;
}

template <class Sink>
void putReal(Sink& sink, const Conversion& c, double value) {
  char digits[kLargestPrecision + 320];
  char* const last = digits + sizeof digits - 1;
  const double magnitude = std::fabs(value);
  const int precision = c.precision < 0 ? 6 : c.precision;
  const char16_t type = static_cast<char16_t>(c.type | 0x20);
  char* end = nullptr;
  if (type == 'f') {
    end = precision == 3
              ? writeFixed3(digits, magnitude)
              : std::to_chars(digits, last, magnitude, std::chars_format::fixed, precision).ptr;
  } else if (type == 'e') {
    end = std::to_chars(digits, last, magnitude, std::chars_format::scientific, precision).ptr;
  } else if (type == 'g') {
    end = std::to_chars(digits, last, magnitude, std::chars_format::general, precision).ptr;
  } else {
    end = std::to_chars(digits, last, magnitude).ptr;
  }
  const bool finite = std::isfinite(value);
  if (c.alternate && finite) end = forcePoint(digits, end);
  if (c.type < 'a' && c.type != 0) {
    std::transform(digits, end, digits,
                   [](char x) { return x >= 'a' ? static_cast<char>(x - 32) : x; });
  }
  putNumber(sink, c, signOf(c, std::signbit(value)),
            {digits, static_cast<std::size_t>(end - digits)}, finite);
}

bool isRealType(char16_t type) {
  return type == 'f' || type == 'e' || type == 'g' || type == 'F' || type == 'E' || type == 'G';
}
bool isIntegerType(char16_t type) {
  return type == 'd' || type == 'i' || type == 'u' || type == 'x' || type == 'X';
}

template <class Sink>
void putArgument(Sink& sink, Conversion c, const FormatArg& arg) {
  const bool textType = c.type == 's';
  switch (arg.kind) {
    case FormatArg::Kind::text:
      putText(sink, c, textType ? cut(arg.text, c.precision) : arg.text);
      return;
    case FormatArg::Kind::bytes:
      putBytes(sink, c, arg.bytes, textType ? c.precision : -1);
      return;
    case FormatArg::Kind::integer:
      if (c.type == 'c') {
        const char16_t unit = static_cast<char16_t>(arg.integer);
        putText(sink, c, {&unit, 1});
        return;
      }
      if (!isIntegerType(c.type)) {
        c.type = 'd';
        c.precision = -1;
      }
      putInteger(sink, c, arg.integer);
      return;
    case FormatArg::Kind::real:
      if (!isRealType(c.type)) {
        c.type = 0;
        c.precision = -1;
      }
      putReal(sink, c, arg.real);
      return;
  }
}

template <class Sink>
void run(Sink& sink, std::u16string_view pattern, const FormatArg* args, std::size_t n) {
  std::size_t at = 0, used = 0;
  while (at < pattern.size()) {
    const std::size_t from = at;
    while (at < pattern.size() && pattern[at] != '%') ++at;
    if (at > from) sink.units(pattern.substr(from, at - from));
    if (at == pattern.size()) return;
    ++at;
    const Conversion c = readConversion(pattern, at);
    if (c.type == '%') {
      sink.fill('%', 1);
    } else if (c.type != 0 && used < n) {
      putArgument(sink, c, args[used++]);
    }
  }
}

}  // namespace

void formatTo(std::u16string& out, std::u16string_view pattern, const FormatArg* args,
              std::size_t n) {
  WideSink sink(out);
  run(sink, pattern, args, n);
}

void formatTo(std::string& out, std::u16string_view pattern, const FormatArg* args, std::size_t n) {
  NarrowSink sink(out);
  run(sink, pattern, args, n);
}

}  // namespace platform::detail
