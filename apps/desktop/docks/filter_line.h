// A line that filters a list as it is typed into, once the keys rest.
#pragma once

#include <QLineEdit>
#include <QTimer>

namespace desktop {

class FilterLine : public QLineEdit {
  Q_OBJECT

 public:
  FilterLine(const QString& placeholder, QWidget* parent) : QLineEdit(parent) {
    setPlaceholderText(placeholder);
    setAccessibleName(placeholder);
    setClearButtonEnabled(true);
    rest_.setSingleShot(true);
    rest_.setInterval(150);
    connect(this, &QLineEdit::textChanged, &rest_, qOverload<>(&QTimer::start));
    connect(&rest_, &QTimer::timeout, this, [this] { Q_EMIT rested(text().trimmed()); });
  }

 Q_SIGNALS:
  void rested(const QString& text);

 private:
  QTimer rest_;
};

}  // namespace desktop
