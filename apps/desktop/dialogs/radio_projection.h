// Radio buttons, which a layout may set apart to put each beside the field that belongs to it.
#pragma once

#include <utility>

#include "apps/desktop/dialogs/projection.h"

class QButtonGroup;
class QRadioButton;

namespace desktop {

class RadioProjection : public Projection {
 public:
  RadioProjection(cad::ui::RadioGroup& radio, QWidget* parent, Done report);

  const std::vector<QRadioButton*>& buttons() const { return buttons_; }
  bool hasPictures() const;
  // The end of an item's text, to stand behind the field whose place is in the middle of the text;
  // null where the text has no such place. Once it is made, the button shows the rest alone.
  QLabel* makeTail(int item, QWidget* parent);
  const QLabel* tail(int item) const { return tails_[static_cast<std::size_t>(item)]; }
  // A text before and behind such a place.
  static std::pair<QString, QString> aroundGap(const QString& text);

  void takeFocus() override;

 protected:
  void refresh() override;

 private:
  cad::ui::RadioGroup& radio_;
  QButtonGroup* group_;
  std::vector<QRadioButton*> buttons_;
  std::vector<QLabel*> tails_;
};

}  // namespace desktop
