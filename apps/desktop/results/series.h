// The course of a quantity in time, of the chosen elements.
#pragma once

#include <QComboBox>
#include <QWidget>
#include <vector>

#include "apps/desktop/results/result_set.h"

namespace desktop {

struct SeriesLine {
  QString name;
  std::vector<float> values;  // by period; missing ones leave a gap
};

// A plot of lines over periods: axes with round numbers, names, a cursor at the present period, the
// values under the mouse.
class SeriesPlot : public QWidget {
  Q_OBJECT

 public:
  explicit SeriesPlot(QWidget* parent = nullptr);

  void setPeriods(const std::vector<epanet::Period>& periods);
  // `left` counts those that there was no room for.
  void setLines(const QString& title, std::vector<SeriesLine> lines, std::size_t left);
  void setPresent(std::size_t period);
  const std::vector<SeriesLine>& lines() const { return lines_; }
  QSize sizeHint() const override { return {420, 240}; }

 Q_SIGNALS:
  void periodPicked(std::size_t period);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;

 private:
  QColor colourOf(std::size_t line) const;
  QPointF at(std::size_t period, double value) const;
  std::size_t periodAt(double x) const;
  void measure();
  void paintAxes(QPainter& painter);
  void paintTimes(QPainter& painter);
  void paintLines(QPainter& painter);
  void paintNames(QPainter& painter);
  void paintHover(QPainter& painter);

  std::vector<epanet::Period> periods_;
  std::vector<double> hours_;
  QString title_;
  std::vector<SeriesLine> lines_;
  std::size_t left_ = 0, present_ = 0;
  int hovered_ = -1;  // a period
  QRectF room_;       // of the lines
  double low_ = 0, high_ = 1, step_ = 1;
};

// The plot with the choice of its quantity.
class Series : public QWidget {
  Q_OBJECT

 public:
  explicit Series(QWidget* parent = nullptr);

  // Results that stay there until others or null come.
  void setResults(const ResultSet* set);
  // The numbers of the chosen nodes and links among those of the results. A quantity of the other
  // kind gives way to `node` or `link`.
  void setElements(std::vector<std::size_t> nodes, std::vector<std::size_t> links, Quantity node,
                   Quantity link);
  // One that the results do not have changes nothing.
  void setQuantity(Quantity q);
  void setPresent(std::size_t period) { plot_->setPresent(period); }
  SeriesPlot& plot() { return *plot_; }
  Quantity quantity() const;

 private:
  void show();

  const ResultSet* set_ = nullptr;
  std::vector<std::size_t> nodes_, links_;
  QComboBox* choice_;
  SeriesPlot* plot_;
};

}  // namespace desktop
