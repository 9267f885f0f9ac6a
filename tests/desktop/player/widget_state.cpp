#include "tests/desktop/player/widget_state.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QRadioButton>
#include <QTableView>
#include <QTimeEdit>

#include "apps/desktop/dialogs/picture.h"
#include "apps/desktop/dialogs/radio_projection.h"
#include "apps/desktop/text.h"
#include "cad/ui/names.h"

namespace desktop {

namespace ui = cad::ui;

namespace {

QString plain(const std::u16string& text) { return qt(ui::plainName(text)); }
QString plain(const QString& text) { return plain(wide(text)); }

// Reads the widget of each kind by what it paints, not by what made it so.
class Reader final : public ui::Visitor {
 public:
  explicit Reader(const DialogWindow& window) : window_(window) {}
  QStringList found;

  void visit(ui::Text& c) override { field(c); }
  void visit(ui::Real& c) override { field(c); }
  void visit(ui::Integer& c) override { field(c); }
  void visit(ui::Choice& c) override {
    const auto* const box = as<QComboBox>(c);
    same(c, "text", box->currentText(), qt(c.shown()));
    same(c, "selected", box->currentIndex(), c.selected());
    items(c, *box->model());
    label(c);
  }
  void visit(ui::ListBox& c) override {
    const auto* const view = as<QListView>(c);
    items(c, *view->model());
    selected(c, *view, c.selected());
  }
  void visit(ui::ReportList& c) override {
    const auto* const view = as<QTableView>(c);
    const QAbstractItemModel& model = *view->model();
    same(c, "rows", model.rowCount(), c.count());
    same(c, "columns", model.columnCount(), static_cast<int>(c.columns().size()));
    for (int k = 0; k < model.columnCount(); ++k) {
      same(c, "title", titleOf(model, k), plain(c.columns()[static_cast<std::size_t>(k)].title));
      for (int r = 0; r < model.rowCount(); ++r)
        same(c, "cell", model.index(r, k).data().toString(), qt(c.cell(r, k)));
    }
    selected(c, *view, c.selected());
    if (model.rowCount() == 0) return;
    const QVariant colour = model.index(0, 0).data(Qt::BackgroundRole);
    const auto meant = c.background();
    same(c, "background", colour.isValid() ? colour.value<QColor>().name() : QString(),
         meant ? QColor(meant->red, meant->green, meant->blue).name() : QString());
  }
  void visit(ui::RadioGroup& c) override {
    auto& radio = static_cast<RadioProjection&>(*window_.projectionOf(c));
    for (int i = 0; i < c.count(); ++i) {
      const QRadioButton* const button = radio.buttons()[static_cast<std::size_t>(i)];
      // The end of a text may stand behind a field in the midst of it.
      QString text = button->text();
      same(c, "a gap", text.contains(QStringLiteral("   ")), false);
      if (const QLabel* const tail = radio.tail(i)) text += u' ' + tail->text();
      same(c, "item", plain(text), plain(c.item(i)));
      same(c, "on", button->isChecked(), c.selected() == i);
      same(c, "picture", button->icon().isNull(), c.picture(i).empty());
      state(c, *button);
    }
  }
  void visit(ui::Check& c) override {
    same(c, "ticked", as<QCheckBox>(c)->isChecked(), c.checked());
    same(c, "text", plain(as<QCheckBox>(c)->text()), plain(c.label()));
  }
  void visit(ui::TimePicker& c) override {
    same(c, "time", as<QTimeEdit>(c)->text(), qt(c.shown()));
    label(c);
  }
  void visit(ui::Button& c) override {
    same(c, "text", plain(as<QPushButton>(c)->text()), plain(c.label()));
  }
  void visit(ui::Label& c) override { same(c, "text", as<QLabel>(c)->text(), qt(c.shown())); }
  void visit(ui::Grid& c) override {
    const auto* const view = as<QTableView>(c);
    const QAbstractItemModel& model = *view->model();
    same(c, "rows", model.rowCount() + 1, c.rowCount());
    same(c, "columns", model.columnCount(), c.columnCount());
    for (int k = 0; k < model.columnCount(); ++k) {
      same(c, "title", titleOf(model, k), plain(c.cell(0, k)));
      for (int r = 0; r < model.rowCount(); ++r) {
        const QModelIndex at = model.index(r, k);
        same(c, "cell", at.data().toString(), qt(c.cell(r + 1, k)));
        same(c, "editable", bool(at.flags() & Qt::ItemIsEditable), c.editable(r + 1, k));
      }
    }
    if (!c.hasSelection()) return;
    const QItemSelection chosen = view->selectionModel()->selection();
    const ui::Grid::Cell from = c.selectionFrom(), to = c.selectionTo();
    const QItemSelection meant(model.index(from.row - 1, from.column),
                               model.index(to.row - 1, to.column));
    same(c, "selection", chosen == meant, true);
  }
  void visit(ui::Picture& c) override {
    same(c, "picture", static_cast<PictureView*>(as<QWidget>(c))->picture(), qt(c.picture()));
  }

  void state(const ui::Control& c, const QWidget& widget) {
    same(c, "enabled", widget.isEnabled(), c.enabled());
    same(c, "visible", widget.isVisibleTo(&window_), c.visible());
  }
  template <class T>
  void same(const ui::Control& c, const char* what, const T& shown, const T& meant) {
    if (shown == meant) return;
    found.append(qt(c.dialog().nameOf(c)) + QStringLiteral(": %1 shows \"%2\", not \"%3\"")
                                                .arg(QLatin1String(what), say(shown), say(meant)));
  }

 private:
  static QString say(const QString& text) { return text; }
  static QString say(int number) { return QString::number(number); }

  template <class W>
  W* as(const ui::Control& c) const {
    return static_cast<W*>(window_.projectionOf(c)->widget());
  }
  static QString titleOf(const QAbstractItemModel& model, int column) {
    return model.headerData(column, Qt::Horizontal).toString();
  }
  void field(ui::Field& c) {
    same(c, "text", as<QLineEdit>(c)->text(), qt(c.shown()));
    label(c);
  }
  // A control's own label stands beside it, unless the place says as much.
  void label(const ui::Control& c) {
    const QLabel* const label = window_.projectionOf(c)->label();
    if (c.label().empty()) return;
    same(c, "label", label ? plain(label->text()) : QString(), plain(c.label()));
    if (label) state(c, *label);
  }
  void items(const ui::ListControl& c, const QAbstractItemModel& model) {
    same(c, "items", model.rowCount(), c.count());
    for (int i = 0; i < model.rowCount(); ++i)
      same(c, "item", model.index(i, 0).data().toString(), qt(c.item(i)));
  }
  void selected(const ui::Control& c, const QAbstractItemView& view, int row) {
    const QModelIndexList rows = view.selectionModel()->selectedRows();
    same(c, "selected", rows.isEmpty() ? -1 : rows.front().row(), row);
    same(c, "selected rows", static_cast<int>(rows.size()), row < 0 ? 0 : 1);
  }

  const DialogWindow& window_;
};

}  // namespace

QStringList differences(const DialogWindow& window) {
  Reader reader(window);
  const ui::Dialog& dialog = window.dialog();
  for (ui::Control* control : dialog.controls()) {
    control->accept(reader);
    reader.state(*control, *window.projectionOf(*control)->widget());
  }
  if (window.windowTitle() != plain(dialog.title()))
    reader.found.append(QStringLiteral("the title is \"%1\"").arg(window.windowTitle()));
  for (const GroupBox& box : window.boxes())
    if (box.titled && plain(box.box->title()) != plain(box.group->title()))
      reader.found.append(QStringLiteral("a box says \"%1\"").arg(box.box->title()));
  return reader.found;
}

}  // namespace desktop
