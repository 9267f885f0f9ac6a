#include "epanet/lexis.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace epanet {
namespace {

char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

// A number without its sign, read to its end; the rest of the text goes to `rest`.
double magnitudeOf(std::string_view text, std::string_view& rest) {
  const char* const from = text.data();
  const char* const to = from + text.size();
  double value = 0;
  std::from_chars_result read{};
  if (text.size() > 2 && text[0] == '0' && upper(text[1]) == 'X') {
    read = std::from_chars(from + 2, to, value, std::chars_format::hex);
  } else {
    read = std::from_chars(from, to, value);
  }
  if (read.ec == std::errc::invalid_argument) {
    rest = text;
    return 0;
  }
  if (read.ec == std::errc::result_out_of_range) {
    // Too small or too large: an exponent below zero tells.
    const std::string_view digits(from, static_cast<std::size_t>(read.ptr - from));
    const bool small = digits.find("e-") != digits.npos || digits.find("E-") != digits.npos ||
                       digits.starts_with("0.") || digits.starts_with(".");
    value = small ? 0 : std::numeric_limits<double>::infinity();
  }
  rest = text.substr(static_cast<std::size_t>(read.ptr - from));
  return value;
}

// The number that begins the text, and what follows it.
double readNumber(std::string_view text, std::string_view& rest) {
  const bool negative = text.starts_with('-');
  std::string_view digits = text;
  if (negative || text.starts_with('+')) digits.remove_prefix(1);
  if (digits.empty() || digits[0] == '-' || digits[0] == '+') {
    rest = text;
    return 0;
  }
  const double value = magnitudeOf(digits, rest);
  if (rest.size() == digits.size()) rest = text;
  return negative ? -value : value;
}

}  // namespace

bool isWord(std::string_view token, std::string_view keyword) {
  return !keyword.empty() && token.size() >= keyword.size() &&
         equalNoCase(token.substr(0, keyword.size()), keyword);
}

bool equalNoCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (upper(a[i]) != upper(b[i])) return false;
  }
  return true;
}

std::optional<double> numberOf(std::string_view token) {
  if (token.empty()) return 0.0;
  std::string_view rest;
  const double value = readNumber(token, rest);
  if (rest.empty()) return value;
  const bool ends = static_cast<unsigned char>(rest[0]) >= 0x80;
  return ends ? std::optional(value) : std::nullopt;
}

double leadingNumber(std::string_view token) {
  std::string_view rest;
  return readNumber(token, rest);
}

namespace {

std::optional<double> clockOf(std::string_view token) {
  double seconds = 0, unit = 3600;
  for (int part = 0; !token.empty(); ++part, unit /= 60) {
    if (part == 3) return std::nullopt;
    const std::size_t colon = token.find(':');
    const std::string_view digits = token.substr(0, colon);
    const auto value = numberOf(digits);
    if (!value) return std::nullopt;
    seconds += *value * unit;
    token = colon == token.npos ? std::string_view() : token.substr(colon + 1);
  }
  return seconds;
}

}  // namespace

std::optional<double> timeOf(std::string_view token, std::string_view unit) {
  const auto value = numberOf(token);
  double seconds = 0;
  if (value) {
    if (unit.empty()) return *value * 3600;
    if (isWord(unit, "SEC")) return *value;
    if (isWord(unit, "MIN")) return *value * 60;
    if (isWord(unit, "HOU")) return *value * 3600;
    if (isWord(unit, "DAY")) return *value * 86400;
    seconds = *value * 3600;
  } else {
    const auto clock = clockOf(token);
    if (!clock) return std::nullopt;
    seconds = *clock;
    if (unit.empty()) return seconds;
  }
  const bool morning = isWord(unit, "AM");
  if ((!morning && !isWord(unit, "PM")) || seconds >= 13 * 3600) return std::nullopt;
  const bool noon = seconds >= 12 * 3600;
  if (morning) return noon ? seconds - 12 * 3600 : seconds;
  return noon ? seconds : seconds + 12 * 3600;
}

std::string textOf(double number) {
  if (number == 0) return "0";
  char digits[512];
  const auto fixed =
      std::to_chars(digits, digits + sizeof digits, number, std::chars_format::fixed);
  const auto size = static_cast<std::size_t>(fixed.ptr - digits);
  if (fixed.ec == std::errc() && size <= 17) return {digits, size};
  const auto shortest = std::to_chars(digits, digits + sizeof digits, number);
  return {digits, static_cast<std::size_t>(shortest.ptr - digits)};
}

namespace {

// Powers of ten that a double holds exactly.
constexpr double kPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                              1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                              1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// Rounds by arithmetic where that gives the very number that reading nine digits gives: the digits
// are a whole number below 2^53 and the power is exact, so that one division rounds as reading
// does. False near a half, where the product's own rounding could decide.
bool roundQuickly(double number, double& rounded) {
  const double size = std::fabs(number);
  if (size < 1e-13 || size >= 1e8) return false;
  std::size_t power = 0;
  while (size * kPowers[power] < 1e8) ++power;
  const double digits = size * kPowers[power];
  const double whole = std::floor(digits), rest = digits - whole;
  if (digits >= 999999999 || std::fabs(rest - 0.5) < 1e-5) return false;
  rounded = std::copysign((rest > 0.5 ? whole + 1 : whole) / kPowers[power], number);
  return true;
}

}  // namespace

double roundedTo9(double number) {
  if (!std::isfinite(number) || number == 0) return number;
  if (double quick = 0; roundQuickly(number, quick)) return quick;
  char digits[40];
  const auto end =
      std::to_chars(digits, digits + sizeof digits, number, std::chars_format::scientific, 8);
  double rounded = number;
  std::from_chars(digits, end.ptr, rounded);
  return rounded;
}

}  // namespace epanet
