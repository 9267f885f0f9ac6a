// What stands in a dock that has nothing to show: what to do.
#pragma once

#include <QLabel>

namespace desktop {

inline QLabel* hintOf(const QString& text, QWidget* parent) {
  auto* const hint = new QLabel(text, parent);
  hint->setWordWrap(true);
  hint->setAlignment(Qt::AlignTop | Qt::AlignLeft);
  hint->setMargin(12);
  hint->setForegroundRole(QPalette::PlaceholderText);
  hint->setMinimumWidth(1);
  return hint;
}

}  // namespace desktop
