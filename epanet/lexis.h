// Words and numbers as the solver reads them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace epanet {

// Whether the token is the keyword: the keyword, in any case, begins it ("CONTINUOUS" is CONT).
bool isWord(std::string_view token, std::string_view keyword);
// The place of the first keyword that the token is, or -1.
template <class Words>
int wordAt(std::string_view token, const Words& keywords) {
  int at = 0;
  for (const std::string_view keyword : keywords) {
    if (isWord(token, keyword)) return at;
    ++at;
  }
  return -1;
}
bool equalNoCase(std::string_view a, std::string_view b);

// A whole token that the solver takes as a number: decimal, hexadecimal, "inf", "nan", nothing at
// all (0). A byte beyond ASCII ends the number silently.
std::optional<double> numberOf(std::string_view token);
// The number that begins a token, 0 for none, as ranges of ids compare them.
double leadingNumber(std::string_view token);

// A time in seconds from one or two tokens (the second may be empty): hours as a decimal number,
// h:mm or h:mm:ss, or a number and its unit (SEC, MIN, HOU, DAY, AM, PM). Fractions of a second
// stay. Empty when it is no time; negative values pass.
std::optional<double> timeOf(std::string_view token, std::string_view unit);

// The shortest text that reads back as the number, without exponent where that is no longer than
// 17 characters: "304.8", "0.00012", "1e-07".
std::string textOf(double number);
// Rounded to nine significant digits, as converted numbers are written.
double roundedTo9(double number);

}  // namespace epanet
