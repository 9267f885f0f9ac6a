#include "apps/desktop/results/clock.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QSignalBlocker>
#include <QSlider>
#include <QToolButton>
#include <algorithm>

#include "apps/desktop/text.h"

namespace desktop {

QString nameOf(Quantity q) {
  switch (q) {
    case Quantity::demand:
      return words(u"Domanda");
    case Quantity::head:
      return words(u"Carico");
    case Quantity::pressure:
      return words(u"Pressione");
    case Quantity::nodeQuality:
    case Quantity::linkQuality:
      return words(u"Qualità");
    case Quantity::flow:
      return words(u"Portata");
    case Quantity::velocity:
      return words(u"Velocità");
    case Quantity::headloss:
      return words(u"Perdita di carico");
    case Quantity::none:
      break;
  }
  return words(u"niente");
}

QString titleOf(Quantity q, const ResultSet& set) {
  const QString unit = q == Quantity::none ? QString() : qt(set.unit(q));
  return unit.isEmpty() ? nameOf(q) : QStringLiteral("%1 [%2]").arg(nameOf(q), unit);
}

QString timeOf(const epanet::Period& period) {
  return period.name.empty() ? words(u"periodo unico") : qt(period.name);
}

namespace {

// The signs of the bar in the colour of its text, which those of the style are not on a dark one:
// ">" and "<" are triangles, "|" an upright bar, "x" a cross.
QIcon signIcon(const char* sign, const QColor& ink) {
  constexpr int kSide = 32, kHalf = 8;
  QPixmap image(kSide, kSide);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing, true);
  double width = 0;
  for (const char* c = sign; *c; ++c) width += *c == '|' ? 6 : 12;
  double x = (kSide - width) / 2;
  const double middle = kSide / 2.0;
  painter.setPen(QPen(ink, 3));
  for (const char* c = sign; *c; ++c) {
    if (*c == 'x') {
      painter.drawLine(QPointF(10, 10), QPointF(22, 22));
      painter.drawLine(QPointF(10, 22), QPointF(22, 10));
    } else if (*c == '|') {
      painter.fillRect(QRectF(x + 1, middle - kHalf, 4, 2 * kHalf), ink);
      x += 6;
    } else {
      const double foot = *c == '>' ? x : x + 12, tip = *c == '>' ? x + 12 : x;
      QPainterPath path;
      path.addPolygon(QPolygonF(
          {QPointF(foot, middle - kHalf), QPointF(tip, middle), QPointF(foot, middle + kHalf)}));
      painter.fillPath(path, ink);
      x += 12;
    }
  }
  return QIcon(image);
}

}  // namespace

Clock::Clock(QWidget* parent) : QWidget(parent) {
  const auto icon = [this](const char* sign, const QString& tip) {
    auto* const made = new QToolButton(this);
    signs_.emplace_back(made, sign);
    made->setToolTip(tip);
    made->setAutoRaise(true);
    made->setFocusPolicy(Qt::NoFocus);
    return made;
  };
  first_ = icon("|<", words(u"Primo periodo"));
  back_ = icon("<", words(u"Periodo precedente"));
  play_ = icon(">>", words(u"Avvia o ferma il tempo"));
  forward_ = icon(">", words(u"Periodo seguente"));
  last_ = icon(">|", words(u"Ultimo periodo"));
  auto* const close = icon("x", words(u"Chiude i risultati"));
  play_->setCheckable(true);
  slider_ = new QSlider(Qt::Horizontal, this);
  slider_->setFocusPolicy(Qt::NoFocus);
  slider_->setMinimumWidth(120);
  time_ = new QLabel(this);
  speed_ = choice(words(u"Periodi al secondo"));
  for (const int speed : {1, 2, 5, 10}) speed_->addItem(QStringLiteral("%1/s").arg(speed), speed);
  speed_->setCurrentIndex(1);
  node_ = choice(words(u"Colora i nodi per"));
  link_ = choice(words(u"Colora i rami per"));
  classes_ = choice(words(u"Numero di classi"));
  for (const int count : {5, 10}) classes_->addItem(words(u"%1 classi").arg(count), count);
  const auto check = [this](const QString& text, const QString& tip) {
    auto* const made = new QCheckBox(text, this);
    made->setToolTip(tip);
    made->setFocusPolicy(Qt::NoFocus);
    connect(made, &QCheckBox::toggled, this, &Clock::readWishes);
    return made;
  };
  fixed_ = check(words(u"fisse"), words(u"Le stesse classi in tutti i periodi"));
  values_ = check(words(u"valori"), words(u"Scrive i valori accanto agli elementi"));
  arrows_ = check(words(u"frecce"), words(u"Il verso del flusso sui rami"));
  arrows_->setChecked(wishes_.arrows);

  auto* const row = new QHBoxLayout(this);
  row->setContentsMargins(6, 3, 6, 3);
  row->setSpacing(4);
  for (QWidget* const part : {first_, back_, play_, forward_, last_}) row->addWidget(part);
  row->addWidget(time_);
  row->addWidget(slider_, 1);
  row->addWidget(speed_);
  row->addSpacing(10);
  row->addWidget(new QLabel(words(u"Nodi:"), this));
  row->addWidget(node_);
  row->addWidget(new QLabel(words(u"Rami:"), this));
  row->addWidget(link_);
  row->addWidget(classes_);
  for (QWidget* const part : {fixed_, values_, arrows_}) row->addWidget(part);
  row->addSpacing(6);
  row->addWidget(close);

  showSigns();

  connect(first_, &QToolButton::clicked, this, [this] { setPeriod(0); });
  connect(back_, &QToolButton::clicked, this, [this] { setPeriod(period() ? period() - 1 : 0); });
  connect(forward_, &QToolButton::clicked, this, [this] { setPeriod(period() + 1); });
  connect(last_, &QToolButton::clicked, this, [this] { setPeriod(periods_.size()); });
  connect(play_, &QToolButton::clicked, this, &Clock::play);
  connect(close, &QToolButton::clicked, this, &Clock::closed);
  connect(slider_, &QSlider::valueChanged, this, [this] {
    showPeriod();
    Q_EMIT periodChanged();
  });
  connect(speed_, &QComboBox::currentIndexChanged, this, [this] {
    if (isPlaying()) play(true);
  });
  connect(&timer_, &QTimer::timeout, this, [this] {
    if (period() + 1 >= periods_.size()) return play(false);
    setPeriod(period() + 1);
  });
}

QComboBox* Clock::choice(const QString& tip) {
  auto* const box = new QComboBox(this);
  box->setToolTip(tip);
  box->setFocusPolicy(Qt::NoFocus);
  box->setSizeAdjustPolicy(QComboBox::AdjustToContents);
  connect(box, &QComboBox::currentIndexChanged, this, &Clock::readWishes);
  return box;
}

void Clock::fill(QComboBox* box, bool ofNodes, const ResultSet& set) {
  const QSignalBlocker quiet(box);
  box->clear();
  box->addItem(nameOf(Quantity::none), static_cast<int>(Quantity::none));
  for (std::size_t i = 0; i < kQuantities; ++i) {
    const auto q = static_cast<Quantity>(i);
    if (isOfNodes(q) == ofNodes && set.has(q)) {
      box->addItem(titleOf(q, set), static_cast<int>(q));
    }
  }
}

void Clock::setResults(const ResultSet& set) {
  play(false);
  periods_ = set.periods();
  {
    const QSignalBlocker quiet(this), still(slider_);
    fill(node_, true, set);
    fill(link_, false, set);
    slider_->setRange(0, static_cast<int>(periods_.size()) - 1);
    slider_->setValue(0);
    ResultWishes wishes = wishes_;
    wishes.node = set.has(Quantity::pressure) ? Quantity::pressure : Quantity::none;
    wishes.link = set.has(Quantity::flow) ? Quantity::flow : Quantity::none;
    setWishes(wishes);
  }
  const bool several = periods_.size() > 1;
  for (QWidget* const part : {first_, back_, play_, forward_, last_}) part->setEnabled(several);
  slider_->setEnabled(several);
  speed_->setEnabled(several);
  // As wide as the longest time, so that nothing jumps while time goes.
  int widest = 0;
  for (const epanet::Period& period : periods_) {
    widest = std::max(widest, time_->fontMetrics().horizontalAdvance(timeOf(period)));
  }
  time_->setMinimumWidth(widest + 10);
  showPeriod();
}

std::size_t Clock::period() const { return static_cast<std::size_t>(slider_->value()); }

void Clock::setPeriod(std::size_t period) {
  slider_->setValue(static_cast<int>(std::min(period, periods_.size())));
}

void Clock::showPeriod() {
  if (period() < periods_.size()) time_->setText(timeOf(periods_[period()]));
}

void Clock::play(bool on) {
  if (on && period() + 1 >= periods_.size()) setPeriod(0);
  if (on) {
    timer_.start(1000 / speed_->currentData().toInt());
  } else {
    timer_.stop();
  }
  play_->setChecked(on);
  showSigns();
}

void Clock::setWishes(const ResultWishes& wishes) {
  {
    const QSignalBlocker quiet(this);
    const auto choose = [](QComboBox* box, int wanted) {
      box->setCurrentIndex(std::max(0, box->findData(wanted)));
    };
    fixed_->setChecked(wishes.fixed);
    values_->setChecked(wishes.values);
    arrows_->setChecked(wishes.arrows);
    choose(classes_, wishes.classCount);
    choose(node_, static_cast<int>(wishes.node));
    choose(link_, static_cast<int>(wishes.link));
  }
  readWishes();
}

void Clock::showSigns() {
  const QColor ink = palette().color(QPalette::WindowText);
  for (const auto& [button, sign] : signs_) {
    button->setIcon(signIcon(button == play_ && isPlaying() ? "||" : sign, ink));
  }
}

void Clock::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) showSigns();
  QWidget::changeEvent(event);
}

void Clock::readWishes() {
  if (!arrows_ || node_->count() == 0 || link_->count() == 0) return;  // being made or filled
  wishes_ = {static_cast<Quantity>(node_->currentData().toInt()),
             static_cast<Quantity>(link_->currentData().toInt()),
             classes_->currentData().toInt(),
             fixed_->isChecked(),
             values_->isChecked(),
             arrows_->isChecked()};
  Q_EMIT wishesChanged();
}

}  // namespace desktop
