// When a value that is drawn says what a file's row says.
#pragma once

#include <string_view>

#include "schema/element.h"

namespace vessora {

// Whether the field's text is a name or a word, which compares to the letter, and no number.
bool isName(schema::Field field);
// The same but for a billionth.
bool sameReal(double a, double b);
// Blanks around a text that was typed do not count.
std::u16string_view trimmed(std::u16string_view text);
// Whether a drawn text says what importing the row stores: numbers by their value, words of
// statuses and types in any case.
bool sameText(schema::Field field, std::u16string_view drawn, std::u16string_view kept);

}  // namespace vessora
