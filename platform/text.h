// Text without the process locale: conversions between UTF-16, UTF-8 and bytes of unknown encoding,
// numbers in text, tokens and lines as the wide stream functions of the C library give them.
//
// Nothing here looks at setlocale: a comma-decimal locale changes no result.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

// --- conversions -------------------------------------------------------------------------------

// UTF-8 to UTF-16. Each byte that is no part of valid UTF-8 becomes U+FFFD.
std::u16string widen(std::string_view utf8);
// UTF-16 to UTF-8. A lone surrogate becomes U+FFFD.
std::string narrow(std::u16string_view text);
// Appends narrow(text) to `out` without a temporary; the fast path is ASCII.
void appendNarrow(std::string& out, std::u16string_view text);
bool isValidUtf8(std::string_view bytes);
// Bytes of a text file: UTF-8 when they are valid UTF-8 as a whole, Windows-1252 otherwise. A UTF-8
// byte order mark is dropped.
std::u16string decodeBytes(std::string_view bytes);
// The same decision for a whole file, delivered as UTF-8: returns `bytes` itself when it is valid
// UTF-8 (mark dropped), else a converted copy.
std::string toUtf8(std::string bytes);

// The text as a terminal may safely show it: control characters, which could move the cursor or ask
// the terminal for something, and marks that turn the direction of writing become visible signs.
// Line feeds and tabs stay; a carriage return before a line feed is left out.
std::u16string printable(std::u16string_view text);
std::string printable(std::string_view utf8);

// Upper case by simple one-to-one mapping: ASCII, Latin-1, Latin Extended-A, Greek, Cyrillic; other
// characters stay. Used wherever names compare without case.
char16_t upper(char16_t c);
std::u16string upper(std::u16string_view text);
bool equalNoCase(std::u16string_view a, std::u16string_view b);

// --- numbers -----------------------------------------------------------------------------------

// The number that begins the text, as _wtof reads it: leading blanks, a sign, digits with at most
// one point, an exponent; what follows is ignored and no number gives 0. Only decimal numbers count
// ("inf", "nan" and hexadecimal text give 0), and a number beyond the range of double gives the
// largest double of its sign, so that a result is always finite.
double wtof(std::u16string_view text);
double wtof(std::string_view text);
// The whole number that begins the text, as _wtoi reads it; saturates at the limits of 32 bits.
std::int32_t wtoi(std::u16string_view text);

// A whole text that is a number, blanks around it allowed, with nothing else: what a field of a
// dialog accepts. Both a point and a comma serve as decimal mark. Empty when it is no number.
std::optional<double> parseReal(std::u16string_view text);
std::optional<std::int64_t> parseInteger(std::u16string_view text);

// Shortest text that reads back as the same double, with ".0" behind a whole number: the form in
// which drawings keep reals. No drawing reader knows "nan" or "inf": they become 0.0 and the
// largest double of their sign. Writes at most 32 characters at `to` and returns the end.
char* writeReal(char* to, double value);
// "%.3f" of value, correctly rounded to even as the C library does, with a point always. Writes at
// most 330 characters at `to` and returns the end. Fast for magnitudes below 1e15.
char* writeFixed3(char* to, double value);

// --- tokens ------------------------------------------------------------------------------------

// Walks the tokens of a text as wcstok does: runs of delimiters count as one, delimiters at the
// start are skipped, and what is not in `delimiters` is text.
//   Tokens t(line, u" \t;");  while (auto token = t.next()) ...
template <class Char>
class BasicTokens {
 public:
  BasicTokens(std::basic_string_view<Char> text, std::basic_string_view<Char> delimiters)
      : text_(text), delimiters_(delimiters) {}
  std::optional<std::basic_string_view<Char>> next() {
    std::size_t from = text_.find_first_not_of(delimiters_, at_);
    if (from == text_.npos) {
      at_ = text_.size();
      return std::nullopt;
    }
    std::size_t to = text_.find_first_of(delimiters_, from);
    if (to == text_.npos) to = text_.size();
    at_ = to;
    return text_.substr(from, to - from);
  }

 private:
  std::basic_string_view<Char> text_, delimiters_;
  std::size_t at_ = 0;
};
using Tokens = BasicTokens<char16_t>;

// --- lines -------------------------------------------------------------------------------------

// The lines of a text file as fgetws delivers them in text mode: CR LF arrives as LF, the line feed
// is part of the line, Ctrl-Z (0x1A) ends the file, and a line longer than `limit` characters
// arrives in pieces of at most `limit` UTF-16 units. Works on the file's bytes as UTF-8 (see
// toUtf8) and yields UTF-8 views that stay valid as long as the bytes do, except that a line which
// ends in CR LF is delivered from an internal buffer, valid until the next call.
class TextLines {
 public:
  explicit TextLines(std::string_view utf8, std::size_t limit = 999);
  // The next line or piece, or nothing at end of file.
  std::optional<std::string_view> next();
  // True when the last read failed: what feof answers after the loop has tried to read beyond the
  // end.
  bool atEnd() const { return ended_; }

 private:
  std::string_view text_;
  std::size_t limit_;
  std::size_t at_ = 0;
  bool ended_ = false;
  std::string buffer_;
};

}  // namespace platform
