// The words of the user's language, for everything that speaks to him outside the module: programs,
// kit, host and the errors of the layers below. (The module asks the family's translator, which
// reads the same catalogue.)
//
// Texts are Italian in the source. The English ones stand in assets/lingue/en.po, which is part of
// every program and library that uses words(); another language needs its catalogue
// lingue/<language>.po under the product root.
#pragma once

#include <string>
#include <string_view>

namespace platform {

// The language of texts: what VESSORA_LANG says ("it", "en", "en_GB"; without encoding and
// modifier), and without it "it" or "en" by the locale of the environment: of LC_ALL, LC_MESSAGES
// and LANG the first that is set. Without a locale, and in "C" and "POSIX", texts are untranslated,
// as everywhere, which is Italian here; under any locale that is not Italian they are English.
// Asked anew at each call, so that a program that sets VESSORA_LANG changes all its libraries'
// words. What VESSORA_LANG says and no name of a language can be counts as "it".
std::string language();
bool isItalian();
// Has the process, with all its libraries, speak a language from here on, as VESSORA_LANG would.
void chooseLanguage(const std::string& name);

// The text in the user's language; the text itself in Italian and where the catalogue lacks it.
// Conversions (%s...) are those of the original, in the same order.
std::string words(std::string_view italian);
std::u16string words(std::u16string_view italian);
// By number: the first text for one, else the second.
std::u16string words(std::u16string_view one, std::u16string_view many, long long count);

// Why the system refused, by its error number: in our words what happens to files, and otherwise in
// the system's own, untranslated whatever the locale.
std::string reasonOf(int error);

// The English catalogue's bytes.
std::string_view englishCatalogue();

}  // namespace platform
