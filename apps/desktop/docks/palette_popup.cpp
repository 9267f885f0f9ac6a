#include "apps/desktop/docks/palette_popup.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include "apps/desktop/text.h"
#include "cad/view/picture.h"

namespace desktop {

namespace {

constexpr int kCell = 16, kAir = 8, kGap = 6, kCaption = 20;
constexpr int kColumns = 24, kRows = 12;

// The named colours and greys in the first row, then a column for each hue.
struct Place {
  int column, row;
};
Place placeOf(int index) {
  if (index < 10) return {index - 1, 0};
  if (index >= 250) return {index - 250 + 10, 0};
  return {index / 10 - 1, index % 10 + 1};
}

}  // namespace

QColor shownColour(int index, bool darkGround) {
  const cad::view::Color c = cad::view::indexedColor(index, darkGround);
  return QColor(c.red, c.green, c.blue);
}

PalettePopup::PalettePopup(int current, bool darkGround, QWidget* parent,
                           std::function<void(int)> chosen)
    : QWidget(parent, Qt::Popup),
      current_(current),
      darkGround_(darkGround),
      chosen_(std::move(chosen)) {
  setAttribute(Qt::WA_DeleteOnClose);
  setMouseTracking(true);
  setObjectName(QStringLiteral("palette"));
  setAccessibleName(words(u"Colore"));
  resize(sizeHint());
}

QSize PalettePopup::sizeHint() const {
  return {2 * kAir + kColumns * kCell, 2 * kAir + kGap + (kRows - 1) * kCell + kCaption};
}

QRect PalettePopup::cellOf(int index) const {
  const Place at = placeOf(index);
  return {kAir + at.column * kCell, kAir + at.row * kCell + (at.row > 0 ? kGap : 0), kCell, kCell};
}

int PalettePopup::indexAt(const QPoint& at) const {
  for (int index = 1; index <= 255; ++index) {
    if (cellOf(index).contains(at)) return index;
  }
  return 0;
}

void PalettePopup::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), palette().window());
  painter.setPen(palette().color(QPalette::Mid));
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
  for (int index = 1; index <= 255; ++index) {
    painter.fillRect(cellOf(index).adjusted(1, 1, -1, -1), shownColour(index, darkGround_));
  }
  painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
  painter.drawRect(cellOf(current_));
  painter.setPen(palette().color(QPalette::WindowText));
  painter.drawText(rect().adjusted(kAir, 0, -kAir, -4), Qt::AlignBottom | Qt::AlignLeft,
                   words(u"Colore %1").arg(current_));
}

void PalettePopup::mouseMoveEvent(QMouseEvent* event) {
  if (const int index = indexAt(event->pos())) {
    current_ = index;
    update();
  }
}

void PalettePopup::mouseReleaseEvent(QMouseEvent* event) {
  if (const int index = indexAt(event->pos())) choose(index);
}

void PalettePopup::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Left:
      return step(-1, 0);
    case Qt::Key_Right:
      return step(1, 0);
    case Qt::Key_Up:
      return step(0, -1);
    case Qt::Key_Down:
      return step(0, 1);
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
      return choose(current_);
    default:
      QWidget::keyPressEvent(event);
  }
}

// To the next colour in a direction, over the gaps between the groups.
void PalettePopup::step(int columns, int rows) {
  QPoint at = cellOf(current_).center();
  for (int tries = 0; tries < kColumns; ++tries) {
    at += QPoint(columns * kCell, rows * kCell);
    const int index = indexAt(at);
    if (index == 0 || index == current_) continue;
    current_ = index;
    return update();
  }
}

void PalettePopup::choose(int index) {
  const auto chosen = std::move(chosen_);
  close();
  if (chosen) chosen(index);
}

}  // namespace desktop
