// What moves with the cursor and what is chosen, over the picture of the scene.
#include <QPaintEvent>
#include <QPainter>
#include <cmath>

#include "apps/desktop/canvas/canvas.h"
#include "apps/desktop/text.h"

namespace desktop {

using cad::ui::Prompt;
using cad::view::SceneThing;
using cad::view::SnapKind;

namespace {

const QColor kChosen(255, 140, 0), kHovered(255, 140, 0, 150), kSnap(255, 196, 0);

QString wordOf(SnapKind kind) {
  switch (kind) {
    case SnapKind::node:
      return words(u"nodo");
    case SnapKind::end:
      return words(u"estremo");
    case SnapKind::vertex:
      return words(u"vertice");
    case SnapKind::middle:
      return words(u"punto medio");
    case SnapKind::nearest:
      break;
  }
  return words(u"vicino");
}

}  // namespace

void Canvas::paintEvent(QPaintEvent*) {
  const QSize size = (QSizeF(this->size()) * devicePixelRatioF()).toSize();
  if (picture_.size() != size) {
    picture_ = QImage(size, QImage::Format_RGB32);
    stale_ = true;
  }
  look_.dots = devicePixelRatioF();
  if (stale_) {
    painter_.paint(picture_, scene_, drawing_, camera_, look_,
                   colours_.empty() ? nullptr : &colours_);
    stale_ = false;
  }
  QPainter painter(this);
  picture_.setDevicePixelRatio(1);
  painter.save();
  painter.scale(1 / devicePixelRatioF(), 1 / devicePixelRatioF());
  painter.drawImage(0, 0, picture_);
  paintChosen(painter);
  painter.restore();
  if (overlay_) {
    painter.save();
    overlay_(painter);
    painter.restore();
  }
  paintOverlay(painter);
}

// In device pixels.
void Canvas::paintChosen(QPainter& painter) {
  std::vector<std::uint32_t> things;
  const auto add = [&](std::uint32_t record) {
    const std::uint32_t thing = scene_.thingOf(record);
    if (thing != SceneThing::kNone) things.push_back(thing);
  };
  for (const std::uint32_t record : selection_) add(record);
  if (drawing_) {
    for (const auto& [record, on] : drawing_->highlighted()) {
      if (on) add(record);
    }
  }
  QPen pen(kChosen, 2.5 * look_.dots);
  if (!things.empty()) painter_.paintThings(painter, scene_, camera_, things, pen);
  if (hovered_ != SceneThing::kNone) {
    pen.setColor(kHovered);
    painter_.paintThings(painter, scene_, camera_, {hovered_}, pen);
  }
}

// An empty window says what to do.
void Canvas::paintHint(QPainter& painter) {
  painter.setPen(look_.dark ? QColor(150, 156, 166) : QColor(110, 116, 126));
  QFont large = font();
  large.setPointSizeF(large.pointSizeF() * 1.3);
  painter.setFont(large);
  painter.drawText(rect(), Qt::AlignCenter,
                   words(u"Trascinare qui un disegno DXF o una rete INP,\noppure disegnare una "
                         u"rete: Rete > Aggiungi"));
  painter.setFont(font());
}

void Canvas::paintOverlay(QPainter& painter) {
  painter.setRenderHint(QPainter::Antialiasing, true);
  if (!scene_.bounds() && !prompts_.prompt()) paintHint(painter);
  if (drag_ == Drag::window) paintWindow(painter);
  if (cursorIn_) {
    if (wantsPlace() || drag_ == Drag::grip) paintRubberBand(painter);
    if (snap_) paintSnapMark(painter);
    if (drag_ != Drag::pan && drag_ != Drag::orbit) paintCross(painter);
    if (tips_ && drag_ == Drag::none && hovered_ != SceneThing::kNone) {
      const QString text = tips_(scene_.things()[hovered_].record);
      if (!text.isEmpty()) tip(painter, cursor_ + QPointF(16, 16), text);
    }
  }
}

void Canvas::paintWindow(QPainter& painter) {
  const bool crossing = cursor_.x() < pressed_.x();
  const QColor colour = crossing ? QColor(60, 180, 90) : QColor(60, 130, 230);
  QPen pen(colour, 1);
  if (crossing) pen.setStyle(Qt::DashLine);
  painter.setPen(pen);
  QColor inside = colour;
  inside.setAlpha(40);
  painter.setBrush(inside);
  painter.drawRect(QRectF(pressed_, cursor_).normalized());
  painter.setBrush(Qt::NoBrush);
}

void Canvas::paintRubberBand(QPainter& painter) {
  const AcGePoint3d to = pointedAt();
  std::optional<AcGePoint3d> from;
  if (drag_ == Drag::grip) {
    const std::uint32_t thing = scene_.thingOf(grip_);
    if (thing != SceneThing::kNone) {
      from = scene_.matrices()[scene_.things()[thing].matrix] * AcGePoint3d();
    }
  } else if (prompts_.prompt()->base) {
    const cad::ui::Place3d& base = *prompts_.prompt()->base;
    from = AcGePoint3d(base.x, base.y, base.z);
  }
  if (!from) return;
  const QPointF a = logicalOf(camera_.pixelOf(*from)), b = logicalOf(camera_.pixelOf(to));
  QPen pen(kSnap, 1, Qt::DashLine);
  painter.setPen(pen);
  painter.drawLine(a, b);
  const double x = to.x - from->x, y = to.y - from->y;
  double degrees = std::atan2(y, x) * 180 / M_PI;
  if (degrees < 0) degrees += 360;
  tip(painter, b + QPointF(14, 34),
      QStringLiteral("%1 m  %2°").arg(std::hypot(x, y), 0, 'f', 2).arg(degrees, 0, 'f', 1));
}

void Canvas::paintSnapMark(QPainter& painter) {
  const QPointF at = logicalOf(camera_.pixelOf(snap_->point));
  constexpr double r = 6;
  painter.setPen(QPen(kSnap, 2));
  painter.setBrush(Qt::NoBrush);
  switch (snap_->kind) {
    case SnapKind::node:
      painter.drawEllipse(at, r, r);
      break;
    case SnapKind::end:
      painter.drawRect(QRectF(at - QPointF(r, r), QSizeF(2 * r, 2 * r)));
      break;
    case SnapKind::vertex:
      painter.drawPolygon(QPolygonF(
          {at + QPointF(0, -r), at + QPointF(r, 0), at + QPointF(0, r), at + QPointF(-r, 0)}));
      break;
    case SnapKind::middle:
      painter.drawPolygon(
          QPolygonF({at + QPointF(0, -r), at + QPointF(r, r), at + QPointF(-r, r)}));
      break;
    case SnapKind::nearest:
      painter.drawLine(at + QPointF(-r, -r), at + QPointF(r, r));
      painter.drawLine(at + QPointF(-r, r), at + QPointF(r, -r));
      break;
  }
  tip(painter, at + QPointF(14, 14), wordOf(snap_->kind));
}

void Canvas::paintCross(QPainter& painter) {
  painter.setRenderHint(QPainter::Antialiasing, false);
  painter.setPen(look_.dark ? QColor(230, 230, 230) : QColor(40, 40, 40));
  const QPointF c = snap_ ? logicalOf(camera_.pixelOf(snap_->point)) : cursor_;
  constexpr double arm = 24, box = 5;
  const bool picks = !wantsPlace();
  const double gap = picks ? box : 0;
  painter.drawLine(QPointF(c.x() - arm, c.y()), QPointF(c.x() - gap, c.y()));
  painter.drawLine(QPointF(c.x() + gap, c.y()), QPointF(c.x() + arm, c.y()));
  painter.drawLine(QPointF(c.x(), c.y() - arm), QPointF(c.x(), c.y() - gap));
  painter.drawLine(QPointF(c.x(), c.y() + gap), QPointF(c.x(), c.y() + arm));
  if (picks) painter.drawRect(QRectF(c.x() - box, c.y() - box, 2 * box, 2 * box));
}

void Canvas::tip(QPainter& painter, const QPointF& at, const QString& text) {
  const QFontMetricsF metrics(font());
  const QSizeF size = metrics.boundingRect(QRectF(0, 0, 1e4, 1e4), Qt::AlignLeft, text).size();
  QRectF box(at, size + QSizeF(12, 6));
  // Within the window, whatever the cursor does.
  if (box.right() > width()) box.moveRight(at.x() - 24);
  if (box.bottom() > height()) box.moveBottom(at.y() - 24);
  painter.setRenderHint(QPainter::Antialiasing, true);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(20, 22, 26, 220));
  painter.drawRoundedRect(box, 3, 3);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QColor(240, 240, 240));
  painter.drawText(box.adjusted(6, 3, -4, -3), Qt::AlignLeft | Qt::AlignVCenter, text);
}

}  // namespace desktop
