// Copies of changed drawings for the day on which the program does not come to its end.
//
// A copy lies beside its drawing (NAME.dxf.autosave), that of a drawing without a name in the
// user's folder of this program. What it is a copy of stands in an index file there, which is
// written after the copy and taken away before it: where there is an index the copy is whole.
#pragma once

#include <QDateTime>
#include <QString>
#include <optional>
#include <vector>

#include "cad/drawing/drawing.h"
#include "platform/result.h"

namespace desktop {

// A copy and whose it is.
struct Recovery {
  QString index;                // file
  QString copy;                 // file
  QString drawing;              // file; empty for one without a name
  QDateTime saved;              // when the copy was made
  bool drawingIsNewer = false;  // somebody has written the drawing since
};

// The folder of the indexes; `VESSORA_RECOVERY` in the environment names another one.
QString recoveryFolder();

// Writes the copy of a drawing that this process has open, in place of an older one of this
// process.
platform::Result<void> keepCopy(cad::Drawing& drawing, const QString& path);
// Takes the copies of this process away: what they hold is saved, or nobody wants it.
void dropCopies();

// What processes have left that live no more; the latest first.
std::vector<Recovery> recoveries();

// Puts the copy in the drawing's place and answers with its path; the drawing that stood there is
// kept as NAME.dxf.before-recovery (-2, -3, ...). One without a name gets one in the user's
// documents.
platform::Result<QString> recover(const Recovery& recovery);
void discard(const Recovery& recovery);

}  // namespace desktop
