// The host's variables: those of the session, which are declared in one table, and those of the
// drawing's header. Modules read and set them by acedGetVar and acedSetVar, users by SETVAR.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "cad/api/resbuf.h"

namespace cad {

// A variable of the session.
struct Variable {
  std::u16string_view name;     // upper case
  std::u16string_view initial;  // until somebody sets it
  RbKind kind;
  bool readOnly = false;
  double low = 0, high = 0;          // of numbers
  std::u16string_view values = u"";  // the texts that it knows, separated by blanks; empty: any
  std::u16string_view help = u"";    // one line for users
};
CAD_API std::span<const Variable> declaredVariables();
// The declared one of a name in any letter case, or null.
CAD_API const Variable* declaredVariable(std::u16string_view name);

// The value as text, also of a variable of the drawing's header; nothing for an unknown name.
CAD_API std::optional<std::u16string> variableText(std::u16string_view name);
// Users may set it: not what the host alone knows, nor what of a header is none of theirs.
CAD_API bool isSettable(std::u16string_view name);
// Sets a variable as a user does. Empty when it has the value now, or why not, in words.
CAD_API std::u16string setVariable(std::u16string_view name, std::u16string_view text);

}  // namespace cad
