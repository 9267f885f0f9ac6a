// Translation of messages: the binding to the family's translator library.
//
// Every text that reaches a user is Italian in the source and passes through TraduciTesto at the
// point of use. The library is found by name at run time; without it the module refuses to load.
#pragma once

#include <string>
#include <string_view>

namespace cad::ui {
class Dialog;
}

namespace vessora {

// Finds or loads the library and binds its functions. 1 when bound; 0 after telling the user what
// is missing. Called once, with the module's file name.
int BindTranslator(std::u16string_view moduleFileName);
// Narrows the dictionary to a library of the family, if bound.
void FilterDictionary(std::u16string_view libraryName);
// Lets the library go when this module loaded it.
void ReleaseTranslator();

// The text in the user's language. The result is one shared buffer, valid until the next call: who
// needs two at once copies the first. Texts have at most 999 characters; longer ones are cut.
const char16_t* TraduciTesto(const char16_t* text);
// Translates the texts of a dialog as it opens.
void TranslateDialog(cad::ui::Dialog& dialog);
// Translates the entries of a popup menu.
void TranslateMenu(std::u16string* entries, int count);

}  // namespace vessora
