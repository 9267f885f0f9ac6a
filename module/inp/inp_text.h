// The lines and tokens of an input file as the reader takes them, on UTF-8 bytes and without
// allocation.
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

#include "platform/text.h"
#include "platform/wide.h"

namespace vessora {

// The line at hand. Lines come as platform::TextLines gives them: at most 999 characters, the line
// feed included. A zero character ends a line's text, as it ends every text in a record.
class InpLines {
 public:
  explicit InpLines(std::string_view utf8) : lines_(utf8), zeros_(utf8.find('\0') != utf8.npos) {}

  // Goes to the next line; false at end of file, where the line at hand stays what it was.
  bool next() {
    const auto line = lines_.next();
    if (!line) return false;
    line_ = zeros_ ? line->substr(0, line->find('\0')) : *line;
    return true;
  }
  // Valid until the next line is read.
  std::string_view line() const { return line_; }
  bool isBlank() const { return line_.starts_with('\n'); }

 private:
  platform::TextLines lines_;
  std::string_view line_;
  bool zeros_;
};

// A set of ASCII delimiters.
class Delimiters {
 public:
  constexpr explicit Delimiters(std::string_view characters) {
    for (char c : characters) in_[static_cast<unsigned char>(c)] = true;
  }
  constexpr bool has(char c) const { return in_[static_cast<unsigned char>(c)]; }

 private:
  std::array<bool, 256> in_{};
};

// Rows of elements, points and curves. The line feed is no delimiter: a row that ends without ";"
// keeps it in its last token, and behind a closing ";" it is a token by itself.
inline constexpr Delimiters kRowDelimiters(" \t;");
// Lines of a keyword and its value.
inline constexpr Delimiters kKeywordDelimiters(" \t\n;");
// Rows of multipliers, in which a lone ";" counts as a multiplier.
inline constexpr Delimiters kPatternDelimiters(" \t\n");

// The tokens of a line, as wcstok splits it.
class InpTokens {
 public:
  InpTokens(std::string_view line, const Delimiters& delimiters)
      : at_(line.data()), end_(line.data() + line.size()), delimiters_(delimiters) {}

  // The next token, or an empty text when there is none.
  std::string_view next() {
    while (at_ != end_ && delimiters_.has(*at_)) ++at_;
    const char* const from = at_;
    while (at_ != end_ && !delimiters_.has(*at_)) ++at_;
    return {from, static_cast<std::size_t>(at_ - from)};
  }

 private:
  const char* at_;
  const char* end_;
  const Delimiters& delimiters_;
};

// Puts a token into a field, truncated at the field's capacity.
template <std::size_t N>
void store(platform::Wide<N>& field, std::string_view token) {
  char16_t units[N];
  const std::size_t n = std::min(token.size(), N - 1);
  unsigned seen = 0;
  for (std::size_t i = 0; i < n; ++i) {
    const auto byte = static_cast<unsigned char>(token[i]);
    units[i] = byte;
    seen |= byte;
  }
  if (seen < 0x80) {
    field.assign({units, n});
  } else {
    field.assign(platform::widen(token));
  }
}

// Puts the next tokens into the fields, in order; fields without a token stay as they are.
template <class... Fields>
void storeTokens(InpTokens& tokens, Fields&... fields) {
  const auto storeNext = [&tokens](auto& field) {
    const std::string_view token = tokens.next();
    if (token.empty()) return false;
    store(field, token);
    return true;
  };
  (storeNext(fields) && ...);
}

}  // namespace vessora
