// Names of controls and the notation of texts in scripts, journals and messages.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cad/ui/export.h"

namespace cad::ui {

// A label as one says it: without key marks ('&'; "&&" is one '&'), blanks at the ends dropped and
// runs of blanks inside made one, without an ending colon.
CAD_UI_API std::u16string plainName(std::u16string_view label);
// Equal as names: plain, without case.
CAD_UI_API bool sameName(std::u16string_view a, std::u16string_view b);

// A text as a script writes it: as it stands, or between quotation marks with \" \\ \n \r \t when
// it would read differently otherwise (empty, blanks at an end, a leading " or #, a line end).
CAD_UI_API std::u16string quoted(std::u16string_view text);
// The reverse; blanks around are dropped. Nothing when a quoted text does not end as it should.
CAD_UI_API std::optional<std::u16string> unquoted(std::u16string_view text);
// One-line form of a text with line ends: \n for a line feed, \\ for a backslash before an n.
CAD_UI_API std::u16string oneLine(std::u16string_view text);

// "a", "b" and "c" for messages; at most some twenty, then "...".
CAD_UI_API std::u16string enumerated(const std::vector<std::u16string>& texts);
CAD_UI_API std::u16string_view trimmed(std::u16string_view text);

// The sign of scripts and of the terminal for Enter, in Italian or in English.
CAD_UI_API bool isEnterSign(std::u16string_view line);

}  // namespace cad::ui
