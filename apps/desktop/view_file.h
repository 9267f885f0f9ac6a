// What the canvas shows, as a file or on paper.
#pragma once

#include <QString>

#include "cad/drawing/drawing.h"
#include "cad/view/camera.h"

class QWidget;

namespace desktop {

// PNG, SVG or PDF by the extension. What went wrong, in words; else empty.
QString writeView(const cad::Drawing& drawing, const cad::view::Camera& camera, bool dark,
                  const QString& path);

// Asks for a printer; the view fills the page.
void printView(const cad::Drawing& drawing, const cad::view::Camera& camera, QWidget* parent);

}  // namespace desktop
