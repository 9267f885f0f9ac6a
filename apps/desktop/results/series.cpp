#include "apps/desktop/results/series.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "apps/desktop/results/clock.h"
#include "apps/desktop/results/overlay.h"
#include "apps/desktop/text.h"

namespace desktop {

namespace {

constexpr std::size_t kMost = 10;  // lines that can be told apart
// Told apart on dark and on light grounds alike.
constexpr QRgb kLines[kMost] = {0xff2f8fe0, 0xffe8802a, 0xff35a853, 0xffd9483b, 0xff9b6bd6,
                                0xffa9745b, 0xffdf6fb4, 0xff8b8f94, 0xffb3b02c, 0xff28b5c4};

// 1, 2 or 5 times a power of ten, so that about `count` of them make `span`.
double roundStep(double span, double count) {
  const double raw = span / std::max(1.0, count), power = std::pow(10, std::floor(std::log10(raw)));
  const double part = raw / power;
  return power * (part <= 1 ? 1 : part <= 2 ? 2 : part <= 5 ? 5 : 10);
}

}  // namespace

// --- the plot ------------------------------------------------------------------------------------

SeriesPlot::SeriesPlot(QWidget* parent) : QWidget(parent) {
  setMouseTracking(true);
  setMinimumSize(220, 120);
}

void SeriesPlot::setPeriods(const std::vector<epanet::Period>& periods) {
  periods_ = periods;
  hours_.clear();
  // Statistics have no time: they stand side by side.
  const bool timed =
      std::ranges::all_of(periods, [](const epanet::Period& p) { return p.seconds >= 0; });
  for (std::size_t k = 0; k < periods.size(); ++k) {
    hours_.push_back(timed ? static_cast<double>(periods[k].seconds) / 3600
                           : static_cast<double>(k));
  }
  present_ = 0;
  hovered_ = -1;
  update();
}

void SeriesPlot::setLines(const QString& title, std::vector<SeriesLine> lines, std::size_t left) {
  title_ = title;
  lines_ = std::move(lines);
  left_ = left;
  update();
}

void SeriesPlot::setPresent(std::size_t period) {
  present_ = period;
  update();
}

QColor SeriesPlot::colourOf(std::size_t line) const {
  return QColor::fromRgb(kLines[line % kMost]);
}

QPointF SeriesPlot::at(std::size_t period, double value) const {
  const double span = hours_.back() - hours_.front();
  const double x = span > 0 ? (hours_[period] - hours_.front()) / span : 0.5;
  return {room_.left() + x * room_.width(),
          room_.bottom() - (value - low_) / (high_ - low_) * room_.height()};
}

std::size_t SeriesPlot::periodAt(double x) const {
  std::size_t nearest = 0;
  for (std::size_t k = 1; k < hours_.size(); ++k) {
    if (std::fabs(at(k, low_).x() - x) < std::fabs(at(nearest, low_).x() - x)) nearest = k;
  }
  return nearest;
}

// Round bounds around all values, and the room that numbers and names leave.
void SeriesPlot::measure() {
  double low = INFINITY, high = -INFINITY;
  for (const SeriesLine& line : lines_) {
    for (const float value : line.values) {
      if (std::isnan(value)) continue;
      low = std::min(low, static_cast<double>(value));
      high = std::max(high, static_cast<double>(value));
    }
  }
  if (low > high) low = 0, high = 1;
  if (high - low < 1e-6) low -= 0.5, high += 0.5;
  const QFontMetricsF metrics(font());
  const double line = metrics.height();
  step_ = roundStep(high - low, height() / (line * 2.5));
  low_ = std::floor(low / step_) * step_;
  high_ = std::ceil(high / step_) * step_;
  const auto numberWidth = [&](double v) {
    return metrics.horizontalAdvance(QString::number(v, 'g', 6));
  };
  const double numbers =
      std::max({numberWidth(low_), numberWidth(high_), numberWidth(low_ + step_)});
  double names = 0;
  for (const SeriesLine& l : lines_) {
    names = std::max(names, metrics.horizontalAdvance(l.name));
  }
  names = std::min(names + 30, width() * 0.35);
  room_ = QRectF(QPointF(numbers + 14, line + 10),
                 QPointF(width() - names - 6, height() - 2 * line - 10));
}

void SeriesPlot::paintAxes(QPainter& painter) {
  const QColor ink = palette().color(QPalette::Text);
  QColor grid = ink;
  grid.setAlpha(45);
  painter.setPen(ink);
  painter.drawText(QPointF(6, QFontMetricsF(font()).ascent() + 2), title_);
  for (int i = 0; i <= std::lround((high_ - low_) / step_); ++i) {
    double value = low_ + i * step_;
    if (std::fabs(value) < step_ / 1000) value = 0;
    const double y = at(0, value).y();
    painter.setPen(grid);
    painter.drawLine(QPointF(room_.left(), y), QPointF(room_.right(), y));
    painter.setPen(ink);
    painter.drawText(QRectF(0, y - 10, room_.left() - 6, 20), Qt::AlignRight | Qt::AlignVCenter,
                     QString::number(value, 'g', 6));
  }
  QColor frame = ink;
  frame.setAlpha(120);
  painter.setPen(frame);
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(room_);
  painter.setPen(ink);
  paintTimes(painter);
}

void SeriesPlot::paintTimes(QPainter& painter) {
  const QFontMetricsF metrics(font());
  const double line = metrics.height();
  const bool timed = periods_.front().seconds >= 0;
  const double foot = room_.bottom() + 4;
  painter.drawText(QRectF(room_.left(), foot + line, room_.width(), line), Qt::AlignCenter,
                   timed ? words(u"Tempo [ore]") : words(u"Statistica"));
  double free = -1e9;
  const auto mark = [&](double x, const QString& text) {
    const double half = metrics.horizontalAdvance(text) / 2;
    painter.drawLine(QPointF(x, room_.bottom()), QPointF(x, room_.bottom() + 3));
    if (x - half < free) return;
    painter.drawText(QRectF(x - half - 2, foot, 2 * half + 4, line), Qt::AlignCenter, text);
    free = x + half + 10;
  };
  const double span = hours_.back() - hours_.front();
  if (!timed || span <= 0) {
    for (std::size_t k = 0; k < periods_.size(); ++k) mark(at(k, low_).x(), timeOf(periods_[k]));
    return;
  }
  // Hours part days into 2, 3, 6, 12: tens would be odd.
  double step = 0;
  for (const double hours : {0.25, 0.5, 1.0, 2.0, 3.0, 6.0, 12.0, 24.0, 48.0, 168.0}) {
    step = hours;
    if (span / hours * 45 <= room_.width()) break;
  }
  for (double h = std::ceil(hours_.front() / step) * step; h <= hours_.back() + 1e-9; h += step) {
    mark(room_.left() + (h - hours_.front()) / span * room_.width(), QString::number(h, 'g', 6));
  }
}

void SeriesPlot::paintLines(QPainter& painter) {
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    QPainterPath path;
    bool begun = false;
    const auto& values = lines_[i].values;
    for (std::size_t k = 0; k < values.size(); ++k) {
      if (std::isnan(values[k])) {
        begun = false;
        continue;
      }
      const QPointF p = at(k, static_cast<double>(values[k]));
      begun ? path.lineTo(p) : path.moveTo(p);
      begun = true;
      if (values.size() <= 60) path.addEllipse(p, 1.5, 1.5), path.moveTo(p);
    }
    painter.setPen(QPen(colourOf(i), 1.8));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(path);
  }
  QPen pen(palette().color(QPalette::Text), 1, Qt::DashLine);
  painter.setPen(pen);
  const double x = at(std::min(present_, periods_.size() - 1), low_).x();
  painter.drawLine(QPointF(x, room_.top()), QPointF(x, room_.bottom()));
}

void SeriesPlot::paintNames(QPainter& painter) {
  const QFontMetricsF metrics(font());
  const double line = metrics.height() + 2;
  double y = room_.top();
  const double left = room_.right() + 8, wide = width() - left - 4;
  for (std::size_t i = 0; i < lines_.size() && y + line <= height(); ++i, y += line) {
    painter.setPen(QPen(colourOf(i), 3));
    painter.drawLine(QPointF(left, y + line / 2), QPointF(left + 14, y + line / 2));
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(QRectF(left + 18, y, wide - 18, line), Qt::AlignLeft | Qt::AlignVCenter,
                     metrics.elidedText(lines_[i].name, Qt::ElideRight, wide - 18));
  }
  if (left_ && y + line <= height()) {
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(QRectF(left, y, wide, line), Qt::AlignLeft | Qt::AlignVCenter,
                     words(u"e altri %1").arg(left_));
  }
}

void SeriesPlot::paintHover(QPainter& painter) {
  if (hovered_ < 0 || static_cast<std::size_t>(hovered_) >= periods_.size()) return;
  const auto k = static_cast<std::size_t>(hovered_);
  QString text = timeOf(periods_[k]);
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    const float value = lines_[i].values[k];
    if (std::isnan(value)) continue;
    text += QStringLiteral("\n%1  %2").arg(lines_[i].name, shownValue(value));
    painter.setPen(Qt::NoPen);
    painter.setBrush(colourOf(i));
    painter.drawEllipse(at(k, static_cast<double>(value)), 3.5, 3.5);
  }
  const QSizeF size =
      QFontMetricsF(font()).boundingRect(QRectF(0, 0, 1e4, 1e4), Qt::AlignLeft, text).size() +
      QSizeF(12, 8);
  QRectF box(QPointF(at(k, low_).x() + 10, room_.top() + 6), size);
  if (box.right() > room_.right()) box.moveRight(at(k, low_).x() - 10);
  painter.setPen(palette().color(QPalette::Mid));
  QColor ground = palette().color(QPalette::ToolTipBase);
  painter.setBrush(ground);
  painter.drawRoundedRect(box, 3, 3);
  painter.setPen(palette().color(QPalette::ToolTipText));
  painter.drawText(box.adjusted(6, 4, -6, -4), Qt::AlignLeft, text);
}

void SeriesPlot::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing, true);
  painter.fillRect(rect(), palette().color(QPalette::Base));
  if (periods_.empty() || lines_.empty()) {
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(rect().adjusted(10, 10, -10, -10), Qt::AlignCenter | Qt::TextWordWrap,
                     words(u"Scegliere nodi o rami sul disegno per vederne l'andamento."));
    return;
  }
  measure();
  paintAxes(painter);
  paintLines(painter);
  paintNames(painter);
  paintHover(painter);
}

void SeriesPlot::mouseMoveEvent(QMouseEvent* event) {
  const bool over = !lines_.empty() && !hours_.empty() && room_.contains(event->position());
  hovered_ = over ? static_cast<int>(periodAt(event->position().x())) : -1;
  update();
}

void SeriesPlot::mousePressEvent(QMouseEvent* event) {
  if (lines_.empty() || hours_.empty() || !room_.contains(event->position())) return;
  Q_EMIT periodPicked(periodAt(event->position().x()));
}

void SeriesPlot::leaveEvent(QEvent* event) {
  hovered_ = -1;
  update();
  QWidget::leaveEvent(event);
}

// --- the plot and its quantity -------------------------------------------------------------------

Series::Series(QWidget* parent)
    : QWidget(parent), choice_(new QComboBox(this)), plot_(new SeriesPlot(this)) {
  choice_->setFocusPolicy(Qt::NoFocus);
  choice_->setToolTip(words(u"La grandezza mostrata nel tempo"));
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(4, 4, 4, 4);
  column->addWidget(choice_);
  column->addWidget(plot_, 1);
  connect(choice_, &QComboBox::currentIndexChanged, this, &Series::show);
}

Quantity Series::quantity() const {
  return choice_->currentIndex() < 0 ? Quantity::none
                                     : static_cast<Quantity>(choice_->currentData().toInt());
}

void Series::setQuantity(Quantity q) {
  const int at = choice_->findData(static_cast<int>(q));
  if (at >= 0) choice_->setCurrentIndex(at);
}

void Series::setResults(const ResultSet* set) {
  set_ = set;
  nodes_.clear();
  links_.clear();
  {
    const QSignalBlocker quiet(choice_);
    choice_->clear();
    for (std::size_t i = 0; set && i < kQuantities; ++i) {
      const auto q = static_cast<Quantity>(i);
      if (!set->has(q)) continue;
      const QString kind = isOfNodes(q) ? words(u"Nodi") : words(u"Rami");
      choice_->addItem(QStringLiteral("%1: %2").arg(kind, titleOf(q, *set)), static_cast<int>(q));
    }
    choice_->setEnabled(set != nullptr);
  }
  plot_->setPeriods(set ? set->periods() : std::vector<epanet::Period>());
  show();
}

void Series::setElements(std::vector<std::size_t> nodes, std::vector<std::size_t> links,
                         Quantity node, Quantity link) {
  nodes_ = std::move(nodes);
  links_ = std::move(links);
  const bool lacks = isOfNodes(quantity()) ? nodes_.empty() : links_.empty();
  if (lacks && set_ && (!nodes_.empty() || !links_.empty())) {
    const bool ofNodes = !nodes_.empty();
    Quantity wanted = ofNodes ? node : link;
    if (!set_->has(wanted)) wanted = ofNodes ? Quantity::pressure : Quantity::flow;
    const QSignalBlocker quiet(choice_);
    const int at = choice_->findData(static_cast<int>(wanted));
    if (at >= 0) choice_->setCurrentIndex(at);
  }
  show();
}

void Series::show() {
  const Quantity q = quantity();
  std::vector<SeriesLine> lines;
  const std::vector<std::size_t>& chosen = isOfNodes(q) ? nodes_ : links_;
  if (set_ && set_->has(q)) {
    for (std::size_t i = 0; i < chosen.size() && i < kMost; ++i) {
      SeriesLine line{qt(set_->elements(q)[chosen[i]].name), {}};
      for (std::size_t k = 0; k < set_->periods().size(); ++k) {
        line.values.push_back(set_->value(q, k, chosen[i]));
      }
      lines.push_back(std::move(line));
    }
  }
  const std::size_t left = chosen.size() - std::min(chosen.size(), kMost);
  plot_->setLines(set_ ? titleOf(q, *set_) : QString(), std::move(lines), left);
}

}  // namespace desktop
