// The bodies of the host's commands, by what they are about; the table in commands.cpp names them.
#pragma once

#include <string>
#include <string_view>

#include "cad/api/editor.h"
#include "cad/drawing/drawing.h"
#include "cad/editor/session.h"
#include "platform/words.h"

namespace cad::host {

inline Session& session() { return Session::instance(); }
inline Drawing& drawing() { return session().database()->drawing(); }
inline void say(std::u16string_view text) { acedPrintText(text); }
// Asks for one of the keywords, Italian and separated by blanks; the user sees and may give those
// of his language, the command gets these. As acedGetKword otherwise.
int askKeyword(int bits, std::u16string_view keywords, std::u16string_view text,
               std::u16string& chosen);
// A command's name in the user's language: the local one in Italian, the global one otherwise.
inline const std::u16string& shownNameOf(const Command& command) {
  return platform::isItalian() ? command.localName : command.globalName;
}
// Tells the user when there is no drawing.
bool haveDrawing();
void reportError(const std::string& error);

// --- files: drawings and modules (file_commands.cpp)
void commandNew();
void commandOpen();
void commandSave();
void commandSaveAs();
void commandQuit();
void commandLoadModule();
void commandUnloadModule();

// --- changes (edit_commands.cpp)
void commandUndo();
void commandRedo();
void commandErase();

// --- places (move_commands.cpp)
void commandMove();
void commandCopy();
void commandScale();
void commandRotate();
void commandDistance();

// --- layers (layer_commands.cpp)
void commandLayer();

// --- the view (view_commands.cpp)
void commandZoom();
void commandRegenAll();
// The arguments that a module gives the zoom command: an option and two corners.
int zoomWindow(const resbuf* arguments);

// --- variables (variable_commands.cpp)
void commandSetVar();

// --- a record of the work (journal_commands.cpp)
void commandJournal();

// --- what there is (inquiry_commands.cpp)
void commandList();
void commandListData();
void commandHelp();

}  // namespace cad::host
