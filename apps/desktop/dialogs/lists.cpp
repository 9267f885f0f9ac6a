// The controls with items: drop-down lists, list boxes, radio buttons.
#include <QButtonGroup>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QRadioButton>
#include <QStringListModel>
#include <algorithm>

#include "apps/desktop/dialogs/picture.h"
#include "apps/desktop/dialogs/radio_projection.h"
#include "apps/desktop/text.h"

namespace desktop {

namespace ui = cad::ui;

namespace {

QStringList itemsOf(const ui::ListControl& list) {
  QStringList items;
  for (int i = 0; i < list.count(); ++i) items.append(qt(list.item(i)));
  return items;
}

class ChoiceProjection : public Projection {
 public:
  ChoiceProjection(ui::Choice& choice, QWidget* parent, Done report)
      : Projection(choice, Shape::field, std::move(report)),
        choice_(choice),
        box_(new QComboBox(parent)) {
    add(box_);
    addLabel(parent);
    ignoreStrayWheel(box_);
    box_->setModel(&items_);
    box_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    static_cast<QListView*>(box_->view())->setUniformItemSizes(true);
    if (choice.freeText()) {
      box_->setEditable(true);
      box_->setInsertPolicy(QComboBox::NoInsert);
      box_->setCompleter(nullptr);  // what is typed is what is meant
      QObject::connect(box_->lineEdit(), &QLineEdit::textEdited, box_,
                       [this](const QString& text) { done(choice_.enter(wide(text))); });
    }
    QObject::connect(box_, &QComboBox::activated, box_,
                     [this](int item) { done(choice_.choose(item)); });
  }
  void takeFocus() override {
    box_->setFocus();
    if (box_->lineEdit()) box_->lineEdit()->selectAll();
  }

 protected:
  void refresh() override {
    if (const QStringList items = itemsOf(choice_); items != items_.stringList()) {
      items_.setStringList(items);
      constexpr qsizetype least = 10, most = 36;
      qsizetype longest = least;
      for (const QString& item : items) longest = std::max(longest, item.size());
      box_->setMinimumContentsLength(static_cast<int>(std::min(longest, most)));
    }
    if (box_->currentIndex() != choice_.selected()) box_->setCurrentIndex(choice_.selected());
    const QString text = qt(choice_.shown());
    if (box_->lineEdit() && box_->currentText() != text) box_->setEditText(text);
  }

 private:
  ui::Choice& choice_;
  QComboBox* box_;
  QStringListModel items_;
};

class ListBoxProjection : public Projection {
 public:
  ListBoxProjection(ui::ListBox& list, QWidget* parent, Done report)
      : Projection(list, Shape::list, std::move(report)),
        list_(list),
        view_(new QListView(parent)) {
    add(view_);
    addLabel(parent);
    view_->setModel(&items_);
    view_->setUniformItemSizes(true);
    view_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view_->setMinimumHeight(view_->fontMetrics().lineSpacing() * 6);
    view_->setMinimumWidth(view_->fontMetrics().averageCharWidth() * 36);
    QObject::connect(view_->selectionModel(), &QItemSelectionModel::selectionChanged, view_,
                     [this] { chosen(); });
    QObject::connect(view_, &QListView::doubleClicked, view_,
                     [this](const QModelIndex& at) { done(list_.doubleClick(at.row())); });
  }

 protected:
  void refresh() override {
    if (const QStringList items = itemsOf(list_); items != items_.stringList())
      items_.setStringList(items);
    const QModelIndex at = items_.index(list_.selected());
    if (!at.isValid()) {
      view_->clearSelection();
    } else if (!view_->selectionModel()->isSelected(at)) {
      view_->setCurrentIndex(at);
    }
  }

 private:
  void chosen() {
    if (refreshing()) return;
    const QModelIndexList rows = view_->selectionModel()->selectedRows();
    done(rows.isEmpty() ? ui::Gesture() : list_.choose(rows.front().row()));
  }

  ui::ListBox& list_;
  QListView* view_;
  QStringListModel items_;
};

}  // namespace

// --- radio buttons -------------------------------------------------------------------------------

RadioProjection::RadioProjection(ui::RadioGroup& radio, QWidget* parent, Done report)
    : Projection(radio, Shape::radio, std::move(report)),
      radio_(radio),
      group_(new QButtonGroup(parent)) {
  for (int i = 0; i < radio.count(); ++i) {
    auto* const button = new QRadioButton(parent);
    add(button);
    buttons_.push_back(button);
    tails_.push_back(nullptr);
    group_->addButton(button, i);
    if (const QString picture = qt(radio.picture(i)); !picture.isEmpty()) {
      button->setIcon(pictureIcon(picture));
      button->setIconSize({64, 64});
      button->setAccessibleName(picture);
    }
  }
  if (!labelOf(radio.label()).isEmpty()) addLabel(parent);
  QObject::connect(group_, &QButtonGroup::idClicked, group_,
                   [this](int item) { done(radio_.choose(item)); });
}

bool RadioProjection::hasPictures() const { return !radio_.picture(0).empty(); }

// Blanks in the middle of a text leave room for the field that stands there.
std::pair<QString, QString> RadioProjection::aroundGap(const QString& text) {
  const qsizetype from = text.indexOf(QStringLiteral("   "));
  if (from < 0) return {text, QString()};
  return {text.left(from), text.mid(from).trimmed()};
}

QLabel* RadioProjection::makeTail(int item, QWidget* parent) {
  QLabel*& tail = tails_[static_cast<std::size_t>(item)];
  if (!tail && !aroundGap(qt(radio_.item(item))).second.isEmpty()) {
    tail = new QLabel(parent);
    tail->setTextFormat(Qt::PlainText);
  }
  return tail;
}

void RadioProjection::takeFocus() {
  buttons_[static_cast<std::size_t>(std::max(radio_.selected(), 0))]->setFocus();
}

void RadioProjection::refresh() {
  for (int i = 0; i < radio_.count(); ++i) {
    const auto at = static_cast<std::size_t>(i);
    const QString text = qt(radio_.item(i));
    const auto [head, behind] = aroundGap(text);
    buttons_[at]->setText(tails_[at] ? head : text);
    if (tails_[at]) {
      tails_[at]->setText(behind);
      tails_[at]->setEnabled(radio_.enabled());
      tails_[at]->setVisible(radio_.visible());
    }
  }
  // None is on: no click of a user leads there, and the group must let go for it.
  group_->setExclusive(radio_.selected() >= 0);
  for (QRadioButton* button : buttons_) button->setChecked(group_->id(button) == radio_.selected());
  group_->setExclusive(true);
}

std::unique_ptr<Projection> projectChoice(ui::Choice& c, QWidget* parent, Projection::Done done) {
  return std::make_unique<ChoiceProjection>(c, parent, std::move(done));
}
std::unique_ptr<Projection> projectListBox(ui::ListBox& c, QWidget* parent, Projection::Done done) {
  return std::make_unique<ListBoxProjection>(c, parent, std::move(done));
}
std::unique_ptr<Projection> projectRadio(ui::RadioGroup& c, QWidget* parent,
                                         Projection::Done done) {
  return std::make_unique<RadioProjection>(c, parent, std::move(done));
}

}  // namespace desktop
