// What a terminal says of dialogs when it is asked: what each control takes and how it is written.
#pragma once

#include "cad/ui/terminal_card.h"

namespace cad::ui {

// One control, by its number on the card: its kind, what it may hold, a line that fills it.
std::u16string helpOf(const TerminalCard& card, Control& control);
// All controls of the dialog that a user can do something with, a line each, and the ways of
// writing.
std::u16string helpOf(const TerminalCard& card, const Dialog& dialog);
// For the first dialog that somebody meets: the least that he must know.
std::u16string firstHelp();

}  // namespace cad::ui
