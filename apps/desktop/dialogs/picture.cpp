#include "apps/desktop/dialogs/picture.h"

#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <memory>

#include "apps/desktop/text.h"
#include "cad/editor/session.h"

namespace desktop {

namespace {

// The drawings stand on white, in a dark window too.
void paintCard(QSvgRenderer& drawing, QPainter& painter, QRectF card) {
  const qreal side = std::min(card.width(), card.height());
  card = QRectF(card.center() - QPointF(side, side) / 2, QSizeF(side, side));
  painter.setRenderHint(QPainter::Antialiasing);
  QPainterPath rounded;
  rounded.addRoundedRect(card, 4, 4);
  painter.setClipPath(rounded);
  painter.fillRect(card, Qt::white);
  drawing.render(&painter, card);
}

class PictureEngine : public QIconEngine {
 public:
  explicit PictureEngine(const QString& name)
      : name_(name), drawing_(std::make_shared<QSvgRenderer>(pictureFile(name))) {}
  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
    painter->save();
    if (mode == QIcon::Disabled) painter->setOpacity(0.4);
    paintCard(*drawing_, *painter, rect);
    painter->restore();
  }
  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paint(&painter, QRect(QPoint(), size), mode, state);
    return pixmap;
  }
  QIconEngine* clone() const override { return new PictureEngine(*this); }

 private:
  QString name_;
  std::shared_ptr<QSvgRenderer> drawing_;
};

}  // namespace

QString pictureFile(const QString& name) {
  return qt(cad::findInstallation().root) + QStringLiteral("immagini/") + name +
         QStringLiteral(".svg");
}

QIcon pictureIcon(const QString& name) { return QIcon(new PictureEngine(name)); }

PictureView::PictureView(QWidget* parent) : QWidget(parent) {
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void PictureView::setPicture(const QString& name) {
  if (name == name_) return;
  name_ = name;
  drawing_.load(pictureFile(name));
  QWidget::update();
}

void PictureView::paintEvent(QPaintEvent*) {
  if (!drawing_.isValid()) return;
  QPainter painter(this);
  if (!isEnabled()) painter.setOpacity(0.4);
  paintCard(drawing_, painter, rect());
}

}  // namespace desktop
