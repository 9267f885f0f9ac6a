// Wide text of fixed capacity: the value types in which the records of a network keep every field.
//
// A Wide<N> is an array of N UTF-16 units that always ends in a zero unit, so that it holds at most
// N - 1 units. It is trivially copyable: records made of such fields are copied as bytes, and lists
// of them move without calling anything.
#pragma once

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

namespace platform {

template <std::size_t N>
class Wide {
 public:
  static constexpr std::size_t capacity = N;  // units, the ending zero included

  Wide() { text_[0] = 0; }
  Wide(std::u16string_view text) { assign(text); }  // NOLINT: a text is a Wide
  Wide(const char16_t* text) { assign(text); }      // NOLINT
  Wide& operator=(std::u16string_view text) { return assign(text); }
  Wide& operator=(const char16_t* text) { return assign(text); }

  // Copies the text up to its first zero unit and truncates it at the capacity, between whole code
  // points: a surrogate pair that does not fit is left out altogether. `text` may not lie inside
  // this object.
  Wide& assign(std::u16string_view text) {
    std::size_t n = text.size() < N ? text.size() : N - 1;
    if (n < text.size() && n > 0 && (text[n - 1] & 0xFC00) == 0xD800) --n;
    if (n > 0) std::memcpy(text_, text.data(), n * sizeof(char16_t));  // an empty view may be null
    text_[n] = 0;
    return *this;
  }

  void clear() { text_[0] = 0; }
  bool empty() const { return text_[0] == 0; }
  std::size_t size() const { return std::char_traits<char16_t>::length(text_); }
  const char16_t* c_str() const { return text_; }
  std::u16string_view view() const { return {text_, size()}; }
  operator std::u16string_view() const { return view(); }  // NOLINT: a Wide is a text
  std::u16string str() const { return std::u16string(view()); }

  friend bool operator==(const Wide& a, const Wide& b) { return a.view() == b.view(); }
  friend bool operator==(const Wide& a, std::u16string_view b) { return a.view() == b; }
  friend bool operator==(const Wide& a, const char16_t* b) {
    return a.view() == std::u16string_view(b);
  }

 private:
  char16_t text_[N];
};

using wide256 = Wide<256>;  // identifiers: element ids, node ids, network names
using wide50 = Wide<50>;    // every other field of a record

}  // namespace platform
