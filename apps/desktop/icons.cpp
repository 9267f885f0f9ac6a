#include "apps/desktop/icons.h"

#include <QApplication>
#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QSvgRenderer>

namespace desktop {
namespace {

// Drawn anew at every size, so that it is crisp at any scale of the screen.
class LineIcon : public QIconEngine {
 public:
  explicit LineIcon(QByteArray svg) : svg_(std::move(svg)) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
    QByteArray svg = svg_;
    const QPalette palette = QApplication::palette();
    const bool dark = palette.window().color().lightness() < 128;
    if (dark) svg.replace("#4a5260", "#c9d1dc").replace("#1f7ae0", "#6fb1ff");
    QSvgRenderer renderer(svg);
    painter->save();
    if (mode == QIcon::Disabled) painter->setOpacity(0.35);
    renderer.render(painter, QRectF(rect));
    painter->restore();
  }
  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap map(size);
    map.fill(Qt::transparent);
    QPainter painter(&map);
    paint(&painter, QRect(QPoint(), size), mode, state);
    return map;
  }
  QIconEngine* clone() const override { return new LineIcon(svg_); }

 private:
  QByteArray svg_;
};

}  // namespace

QIcon iconNamed(const QString& name) {
  if (name.isEmpty()) return {};
  QFile file(QStringLiteral(":/icons/%1.svg").arg(name));
  if (!file.open(QIODevice::ReadOnly)) return {};
  return QIcon(new LineIcon(file.readAll()));
}

}  // namespace desktop
