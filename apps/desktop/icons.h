// The window's own icons, drawn in lines, in a shade that is seen on the window's ground.
#pragma once

#include <QIcon>
#include <QString>

namespace desktop {

// By the name of its file; a null icon for no name.
QIcon iconNamed(const QString& name);

}  // namespace desktop
