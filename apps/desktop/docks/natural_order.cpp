#include "apps/desktop/docks/natural_order.h"

#include <QChar>

namespace desktop {

namespace {

bool isDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

std::size_t endOfNumber(std::u16string_view text, std::size_t at) {
  while (at < text.size() && isDigit(text[at])) ++at;
  return at;
}

}  // namespace

bool isBefore(std::u16string_view a, std::u16string_view b) {
  std::size_t i = 0, k = 0;
  while (i < a.size() && k < b.size()) {
    if (isDigit(a[i]) && isDigit(b[k])) {
      while (i + 1 < a.size() && a[i] == u'0' && isDigit(a[i + 1])) ++i;
      while (k + 1 < b.size() && b[k] == u'0' && isDigit(b[k + 1])) ++k;
      const std::size_t endA = endOfNumber(a, i), endB = endOfNumber(b, k);
      if (endA - i != endB - k) return endA - i < endB - k;
      const int order = a.substr(i, endA - i).compare(b.substr(k, endB - k));
      if (order != 0) return order < 0;
      i = endA;
      k = endB;
      continue;
    }
    const char16_t x = QChar(a[i]).toCaseFolded().unicode(),
                   y = QChar(b[k]).toCaseFolded().unicode();
    if (x != y) return x < y;
    ++i;
    ++k;
  }
  if (a.size() - i != b.size() - k) return a.size() - i < b.size() - k;
  return a < b;
}

}  // namespace desktop
