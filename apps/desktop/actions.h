// The commands of the window as one table: menus, tool bar and shortcuts come from it.
#pragma once

#include <QKeySequence>
#include <QString>
#include <string_view>
#include <vector>

namespace desktop {

// Where a command stands, as an engineer thinks.
enum class Menu { file, edit, view, network, data, calculation, results, drawing, help };

struct ActionRow {
  Menu menu;
  const char* text;  // Italian, "&" marks its key; empty: a line between groups
  const char* tip = "";
  const char* icon = "";              // a file of the icons without its extension
  std::u16string_view command = u"";  // of the session; empty: the window does it by itself
  const char* own = "";               // what the window does
  int shortcut = 0;                   // keys as Qt joins them
  bool toolBar = false;
};

const std::vector<ActionRow>& actionRows();
QString titleOf(Menu menu);

}  // namespace desktop
