#include "module/inp/full_values.h"

#include <algorithm>
#include <cmath>

#include "platform/text.h"

namespace vessora {

using schema::Field;

namespace {

constexpr double kSameReal = 1e-9;  // relative

}  // namespace

bool isName(Field field) {
  switch (field) {
    case Field::id:
    case Field::node1:
    case Field::node2:
    case Field::pattern:
    case Field::volumeCurve:
    case Field::headCurve:
    case Field::speedPattern:
    case Field::efficiencyCurve:
    case Field::pricePattern:
    case Field::status:
    case Field::type:
      return true;
    default:
      return false;
  }
}

bool sameReal(double a, double b) {
  return a == b || std::fabs(a - b) <= kSameReal * std::max(std::fabs(a), std::fabs(b));
}

std::u16string_view trimmed(std::u16string_view text) {
  while (!text.empty() && (text.front() == u' ' || text.front() == u'\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == u' ' || text.back() == u'\t')) text.remove_suffix(1);
  return text;
}

namespace {

// "Close" is how dialogs call what the solver calls "Closed".
std::u16string_view statusWord(std::u16string_view text) {
  return platform::equalNoCase(text, u"Close") ? std::u16string_view(u"Closed") : text;
}

}  // namespace

bool sameText(Field field, std::u16string_view a, std::u16string_view b) {
  a = trimmed(a);
  b = trimmed(b);
  if (a == b) return true;
  if (field == Field::speed) {
    // A drawn 0 is no speed, which is 1; only where the file itself has 0 it says the same.
    const double drawn = platform::parseReal(a).value_or(0);
    const double kept = b.empty() ? 1 : platform::parseReal(b).value_or(0);
    return sameReal(drawn == 0 && kept != 0 ? 1 : drawn, kept);
  }
  if (field == Field::status || field == Field::type) {
    return platform::equalNoCase(statusWord(a), statusWord(b));
  }
  if (isName(field)) return false;
  const auto x = platform::parseReal(a), y = platform::parseReal(b);
  if (a.empty() || b.empty()) return x.value_or(0) == 0 && y.value_or(0) == 0;
  return x && y && sameReal(*x, *y);
}

}  // namespace vessora
