#include "tests/desktop/player/widget_hand.h"

#include <QApplication>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <algorithm>

#include "apps/desktop/dialogs/radio_projection.h"
#include "apps/desktop/text.h"
#include "platform/text.h"

namespace desktop {

namespace ui = cad::ui;
using ui::Gesture;
using Cell = ui::Grid::Cell;

void settle(DialogWindow& window) {
  QCoreApplication::sendPostedEvents();
  QCoreApplication::processEvents();
  window.redraw();
}

// Any sign has a key here.
static void type(QWidget* field, const QString& text) {
  for (const QChar sign : text) {
    QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, QString(sign));
    QApplication::sendEvent(field, &press);
    QKeyEvent release(QEvent::KeyRelease, Qt::Key_unknown, Qt::NoModifier, QString(sign));
    QApplication::sendEvent(field, &release);
  }
}

void typeOver(QWidget* field, const QString& text) {
  QTest::mouseClick(field, Qt::LeftButton);
  QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
  if (text.isEmpty()) {
    QTest::keyClick(field, Qt::Key_Delete);
  } else {
    type(field, text);
  }
}

bool WidgetHand::usable(const ui::Control& c) const { return c.enabled() && c.visible(); }

QWidget* WidgetHand::widgetOf(const ui::Control& c) const {
  return window_.projectionOf(c)->widget();
}

// --- the dialog ----------------------------------------------------------------------------------

// Enter presses a button that has the focus; here it is meant for the dialog.
Gesture WidgetHand::accept(ui::Dialog& dialog) {
  if (qobject_cast<QPushButton*>(window_.focusWidget())) window_.setFocus();
  const ui::Control* pressed = nullptr;
  for (const ui::Control* control : dialog.controls()) {
    const auto* const button = dynamic_cast<const ui::Button*>(control);
    if (button && (button->isDefault() || (!pressed && button->role() == ui::Role::ok)))
      pressed = button;
  }
  if (pressed && !usable(*pressed)) return dialog.accept();
  QWidget* const focus = window_.focusWidget();
  QTest::keyClick(focus ? focus : &window_, Qt::Key_Return);
  return {};
}

void WidgetHand::dismiss(ui::Dialog&) { QTest::keyClick(&window_, Qt::Key_Escape); }

// --- values --------------------------------------------------------------------------------------

// The row of a view that shows a text, below `viewRows`.
static int rowOf(const QAbstractItemModel& model, const QString& text) {
  for (int r = 0; r < model.rowCount(); ++r)
    if (model.index(r, 0).data().toString() == text) return r;
  return -1;
}

// An item that reads so, else one that does in other letters.
static int itemOf(const ui::ListControl& list, std::u16string_view text) {
  const int same = list.findSame(text);
  return same >= 0 ? same : list.findExact(text);
}

bool WidgetHand::setTime(ui::TimePicker& c, std::u16string_view text) {
  const std::size_t colon = text.find(u':');
  const auto hour = platform::parseInteger(text.substr(0, colon));
  const auto minute = colon == text.npos ? std::optional<std::int64_t>(0)
                                         : platform::parseInteger(text.substr(colon + 1));
  if (!hour || !minute || *hour < 0 || *hour > 23 || *minute < 0 || *minute > 59) return false;
  QWidget* const edit = widgetOf(c);
  // A click selects the hour.
  auto* const line = edit->findChild<QLineEdit*>();
  QTest::mouseClick(line, Qt::LeftButton, {}, QPoint(6, line->height() / 2));
  QCoreApplication::processEvents();
  const QString digits =
      QStringLiteral("%1%2").arg(*hour, 2, 10, QChar(u'0')).arg(*minute, 2, 10, QChar(u'0'));
  for (const QChar digit : digits)
    QTest::keyClick(edit, static_cast<Qt::Key>(Qt::Key_0 + digit.digitValue()));
  return true;
}

Gesture WidgetHand::enter(ui::Control& c, std::u16string_view text) {
  if (!usable(c)) return c.enter(text);
  if (auto* const field = dynamic_cast<ui::Field*>(&c)) {
    typeOver(widgetOf(*field), qt(text));
    return {};
  }
  if (auto* const list = dynamic_cast<ui::ListControl*>(&c)) {
    const auto* const choice = dynamic_cast<ui::Choice*>(list);
    if (choice && choice->freeText()) {
      typeOver(static_cast<QComboBox*>(widgetOf(c))->lineEdit(), qt(text));
      return {};
    }
    const int item = itemOf(*list, text);
    return item < 0 ? c.enter(text) : choose(c, item);
  }
  if (const auto* const check = dynamic_cast<ui::Check*>(&c)) {
    const bool yes = platform::equalNoCase(text, u"sì") || platform::equalNoCase(text, u"si") ||
                     platform::equalNoCase(text, u"yes");
    if (!yes && !platform::equalNoCase(text, u"no")) return c.enter(text);
    return yes == check->checked() ? Gesture() : press(c);
  }
  if (auto* const picker = dynamic_cast<ui::TimePicker*>(&c))
    return setTime(*picker, text) ? Gesture() : c.enter(text);
  if (const auto* const radio = dynamic_cast<ui::RadioGroup*>(&c)) {
    for (int i = 0; i < radio->count(); ++i)
      if (platform::equalNoCase(radio->item(i), text)) return choose(c, i);
    return c.enter(text);
  }
  if (dynamic_cast<ui::ReportList*>(&c)) {
    const int row = rowOf(*static_cast<QTableView*>(widgetOf(c))->model(), qt(text));
    return row < 0 ? c.enter(text) : choose(c, row);
  }
  return c.enter(text);
}

// In the middle of what can be seen of a cell.
static QPoint middleOf(const QAbstractItemView* view, const QModelIndex& at) {
  return (view->visualRect(at) & view->viewport()->rect()).center();
}

static void click(QAbstractItemView* view, const QModelIndex& at,
                  Qt::KeyboardModifiers modifiers = {}, Qt::MouseButton button = Qt::LeftButton) {
  view->scrollTo(at);
  QTest::mouseClick(view->viewport(), button, modifiers, middleOf(view, at));
}

Gesture WidgetHand::choose(ui::Control& c, int item) {
  if (!usable(c)) return c.choose(item);
  if (const auto* const radio = dynamic_cast<RadioProjection*>(window_.projectionOf(c))) {
    if (item < 0 || static_cast<std::size_t>(item) >= radio->buttons().size())
      return c.choose(item);
    QTest::mouseClick(radio->widgets()[static_cast<std::size_t>(item)], Qt::LeftButton, {},
                      QPoint(8, radio->widgets()[static_cast<std::size_t>(item)]->height() / 2));
    return {};
  }
  QAbstractItemView* view = qobject_cast<QAbstractItemView*>(widgetOf(c));
  if (auto* const box = qobject_cast<QComboBox*>(widgetOf(c))) {
    if (item < 0 || item >= box->count()) return c.choose(item);
    box->showPopup();
    view = box->view();
  }
  const QModelIndex at = view ? view->model()->index(item, 0) : QModelIndex();
  if (!at.isValid()) return c.choose(item);
  click(view, at);
  return {};
}

Gesture WidgetHand::press(ui::Control& c) {
  const bool pressable = dynamic_cast<ui::Button*>(&c) || dynamic_cast<ui::Check*>(&c);
  if (!usable(c) || !pressable) return c.press();
  // A box is hit on its sign, wherever its text ends.
  QWidget* const widget = widgetOf(c);
  QTest::mouseClick(widget, Qt::LeftButton, {}, QPoint(8, widget->height() / 2));
  return {};
}

Gesture WidgetHand::doubleClick(ui::Control& c, int row) {
  auto* const view = qobject_cast<QAbstractItemView*>(widgetOf(c));
  const QModelIndex at = view ? view->model()->index(row, 0) : QModelIndex();
  if (!usable(c) || !at.isValid()) return c.doubleClick(row);
  click(view, at);
  QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, middleOf(view, at));
  QTest::mouseRelease(view->viewport(), Qt::LeftButton);
  return {};
}

// --- grids ---------------------------------------------------------------------------------------

static QModelIndex indexOf(const QTableView* view, Cell at) {
  return view->model()->index(at.row - 1, at.column);
}

Gesture WidgetHand::enterCell(ui::Grid& g, Cell at, std::u16string_view text) {
  auto* const view = static_cast<QTableView*>(widgetOf(g));
  const QModelIndex index = indexOf(view, at);
  const bool typed = text.find_first_of(u"\t\n\r") == text.npos;
  if (!usable(g) || !index.isValid() || !(index.flags() & Qt::ItemIsEditable) || !typed)
    return g.enterCell(at.row, at.column, text);
  click(view, index);
  QTest::keyClick(view, Qt::Key_F2);
  auto* const editor = view->viewport()->findChild<QLineEdit*>();
  if (!editor) return platform::Error{"the cell does not open"};
  typeOver(editor, qt(text));
  QTest::keyClick(editor, Qt::Key_Return);
  settle(window_);
  return {};
}

Gesture WidgetHand::selectCells(ui::Grid& g, Cell from, Cell to) {
  auto* const view = static_cast<QTableView*>(widgetOf(g));
  const QModelIndex first = indexOf(view, from), last = indexOf(view, to);
  if (!usable(g) || !first.isValid() || !last.isValid()) return g.selectCells(from, to);
  click(view, first);
  if (first != last) click(view, last, Qt::ShiftModifier);
  return {};
}

Gesture WidgetHand::chooseMenu(ui::Grid& g, Cell at, int entry) {
  auto* const view = static_cast<QTableView*>(widgetOf(g));
  const bool there = g.contains(at.row, at.column) && entry >= 0 &&
                     static_cast<std::size_t>(entry) < g.menu().size();
  if (!usable(g) || !there) return g.chooseMenu(at, entry);
  QString wrong;
  QTimer::singleShot(0, view, [&] {
    auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    if (!menu) return;
    QStringList shown, meant;
    for (const QAction* action : menu->actions()) shown.append(action->text());
    for (const std::u16string& text : g.menu()) meant.append(qt(text));
    if (shown != meant) wrong = QStringLiteral("the menu has other entries");
    QTest::mouseClick(menu, Qt::LeftButton, {},
                      menu->actionGeometry(menu->actions().at(entry)).center());
  });
  QWidget* target = view->viewport();
  QPoint where;
  if (at.row == 0) {
    const QHeaderView* const header = view->horizontalHeader();
    target = header->viewport();
    where = {header->sectionViewportPosition(at.column) + 4, header->height() / 2};
  } else {
    click(view, indexOf(view, at), {}, Qt::RightButton);
    where = middleOf(view, indexOf(view, at));
  }
  QContextMenuEvent event(QContextMenuEvent::Mouse, where, target->mapToGlobal(where));
  QApplication::sendEvent(target, &event);
  return wrong.isEmpty() ? Gesture() : Gesture(platform::Error{utf8(wrong)});
}

}  // namespace desktop
