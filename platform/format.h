// One printf-style formatter for wide templates.
//
// Templates are data here: messages pass through a translator before they are formatted, so the
// compiler cannot check them. The arguments carry their types instead, and a conversion that does
// not fit its argument prints the argument in its own natural form rather than reading it wrongly;
// a conversion without an argument prints nothing. The decimal mark is always a point.
//
// Conversions: %s (text), %c, %d %i %u (whole numbers), %f %lf %e %g (reals), %x, %%; flags - + 0
// blank
// #, width and precision as in C, "l", "h", "ll" accepted and ignored. A '%' followed by anything
// that makes no conversion is dropped together with its flags and width, and the text goes on with
// the offending character: "% ;" prints ";".
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace platform {

class FormatArg {
 public:
  enum class Kind { text, bytes, integer, real };
  FormatArg(std::u16string_view v) : kind(Kind::text), text(v) {}       // NOLINT
  FormatArg(const std::u16string& v) : kind(Kind::text), text(v) {}     // NOLINT
  FormatArg(const char16_t* v) : kind(Kind::text), text(v) {}           // NOLINT
  FormatArg(std::string_view utf8) : kind(Kind::bytes), bytes(utf8) {}  // NOLINT
  template <class T, std::enable_if_t<std::is_integral_v<T>, int> = 0>
  FormatArg(T v) : kind(Kind::integer), integer(static_cast<std::int64_t>(v)) {}  // NOLINT
  FormatArg(double v) : kind(Kind::real), real(v) {}                              // NOLINT

  Kind kind;
  std::u16string_view text;
  std::string_view bytes;
  std::int64_t integer = 0;
  double real = 0;
};

// The host's library offers these: templates of its interface call them in modules.
#define VESSORA_FORMAT_API __attribute__((visibility("default")))
namespace detail {
VESSORA_FORMAT_API void formatTo(std::u16string& out, std::u16string_view pattern,
                                 const FormatArg* args, std::size_t n);
VESSORA_FORMAT_API void formatTo(std::string& out, std::u16string_view pattern,
                                 const FormatArg* args, std::size_t n);
}  // namespace detail

// The formatted text.
template <class... Args>
std::u16string format(std::u16string_view pattern, const Args&... args) {
  std::u16string out;
  const FormatArg list[] = {FormatArg(args)..., FormatArg(0)};
  detail::formatTo(out, pattern, list, sizeof...(args));
  return out;
}

// Appends the formatted text to `out`, as UTF-16 or as UTF-8. Widths and precisions count UTF-16
// units in both. The UTF-8 form is what the file writers use: no temporary, no allocation but the
// growth of `out`.
template <class Out, class... Args>
void appendFormat(Out& out, std::u16string_view pattern, const Args&... args) {
  const FormatArg list[] = {FormatArg(args)..., FormatArg(0)};
  detail::formatTo(out, pattern, list, sizeof...(args));
}

}  // namespace platform
