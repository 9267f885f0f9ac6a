// The bar of results in time: the period that is shown, how time goes, and what is shown of it.
// Nothing in it takes the keyboard: keys stay the command line's.
#pragma once

#include <QTimer>
#include <QWidget>

#include "apps/desktop/results/colours.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QSlider;
class QToolButton;

namespace desktop {

QString nameOf(Quantity q);
// "Pressione [m]"
QString titleOf(Quantity q, const ResultSet& set);
QString timeOf(const epanet::Period& period);

class Clock : public QWidget {
  Q_OBJECT

 public:
  explicit Clock(QWidget* parent = nullptr);

  // Of results that stay there while the bar is shown: their periods and quantities, from the
  // first period.
  void setResults(const ResultSet& set);
  std::size_t period() const;
  void setPeriod(std::size_t period);  // as far as there are any
  const ResultWishes& wishes() const { return wishes_; }
  void setWishes(const ResultWishes& wishes);
  bool isPlaying() const { return timer_.isActive(); }
  // Forward from the present period, from the first one when it is the last; stops at the end.
  void play(bool on);

 Q_SIGNALS:
  void periodChanged();
  void wishesChanged();
  void closed();

 protected:
  void changeEvent(QEvent* event) override;

 private:
  QComboBox* choice(const QString& tip);
  void fill(QComboBox* box, bool ofNodes, const ResultSet& set);
  void readWishes();
  void showPeriod();
  void showSigns();

  std::vector<epanet::Period> periods_;
  ResultWishes wishes_;
  QTimer timer_;
  std::vector<std::pair<QToolButton*, const char*>> signs_;
  QToolButton *first_, *back_, *play_ = nullptr, *forward_, *last_;
  QSlider* slider_;
  QLabel* time_;
  QComboBox *speed_ = nullptr, *node_ = nullptr, *link_ = nullptr, *classes_ = nullptr;
  QCheckBox *fixed_ = nullptr, *values_ = nullptr, *arrows_ = nullptr;
};

}  // namespace desktop
