#include "apps/desktop/view_file.h"

#include <QFileInfo>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>

#include "apps/desktop/canvas/scene_painter.h"
#include "apps/desktop/text.h"
#include "cad/view/painter.h"
#include "cad/view/picture.h"
#include "platform/files.h"

namespace desktop {

QString writeView(const cad::Drawing& drawing, const cad::view::Camera& camera, bool dark,
                  const QString& path) {
  const QString extension = QFileInfo(path).suffix().toLower();
  cad::view::PaintOptions options;
  options.dark = dark;
  options.width = static_cast<int>(camera.width());
  if (camera.isPlan()) {
    options.window = camera.shown();
  } else {
    options.view = cad::view::View::isometric;
  }
  if (extension == QLatin1String("svg")) {
    options.format = cad::view::Format::svg;
  } else if (extension == QLatin1String("pdf")) {
    options.format = cad::view::Format::pdf;
  } else if (extension != QLatin1String("png")) {
    return words(u"L'estensione dice il formato: .png, .svg o .pdf.");
  }
  const auto bytes = cad::view::paint(cad::view::takePicture(drawing), options);
  if (!bytes) return qt(bytes.error());
  const auto written = platform::writeFile(utf8(path), *bytes);
  return written ? QString() : qt(written.error());
}

void printView(const cad::Drawing& drawing, const cad::view::Camera& camera, QWidget* parent) {
  QPrinter printer(QPrinter::HighResolution);
  QPrintDialog dialog(&printer, parent);
  if (dialog.exec() != QDialog::Accepted) return;
  QPainter painter(&printer);
  const QRectF page = painter.viewport();
  cad::view::Camera there = camera;
  const double scale = std::min(page.width() / camera.width(), page.height() / camera.height());
  there.resize(camera.width() * scale, camera.height() * scale);
  there.look(camera.target(), camera.unit() / scale);
  QImage image(static_cast<int>(there.width()), static_cast<int>(there.height()),
               QImage::Format_RGB32);
  cad::view::Scene scene;
  scene.update(drawing);
  ScenePainter().paint(image, scene, &drawing, there, {false, scale, true});
  painter.drawImage(0, 0, image);
}

}  // namespace desktop
