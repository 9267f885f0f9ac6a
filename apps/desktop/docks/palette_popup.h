// The 255 colours of drawings to choose from, by mouse or arrow keys.
#pragma once

#include <QWidget>
#include <functional>

namespace desktop {

// A colour of drawings as it is shown beside its number.
QColor shownColour(int index, bool darkGround);

class PalettePopup : public QWidget {
  Q_OBJECT

 public:
  // Deletes itself when it closes; `chosen` is called with an index from 1 to 255, or never.
  PalettePopup(int current, bool darkGround, QWidget* parent, std::function<void(int)> chosen);

  QSize sizeHint() const override;
  // The cell of a colour.
  QRect cellOf(int index) const;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  int indexAt(const QPoint& at) const;
  void step(int columns, int rows);
  void choose(int index);

  int current_;
  bool darkGround_;
  std::function<void(int)> chosen_;
};

}  // namespace desktop
