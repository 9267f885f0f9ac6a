// Report lists and grids: sorting, copying, editing, and lists of a hundred thousand rows.
#include <QAbstractItemModelTester>
#include <QClipboard>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QSignalSpy>
#include <QTableView>

#include "apps/desktop/dialogs/grid_model.h"
#include "apps/desktop/dialogs/report_model.h"
#include "tests/desktop/dialog_driver.h"
#include "tests/ui/sample_dialogs.h"

namespace desktop {
namespace {

namespace ui = cad::ui;
using Cell = ui::Grid::Cell;
using Tester = QAbstractItemModelTester;

class ListDialog : public ui::Dialog {
 public:
  ListDialog() : Dialog(u"Lista") {}
  ui::ReportList list{this,
                      u"",
                      {.name = u"Lista", .columns = {{u"Nodo"}, {u"Portata"}, {u"Nota"}}},
                      {},
                      &ListDialog::opened};
  std::vector<ui::ReportList::Row> rows{
      {u"N1", u"10.5", u"b"}, {u"N2", u"9", u""}, {u"N3", u"-", u"a"}, {u"N4", u"100", u"c\td"}};
  std::u16string openedRow;
  void onInit() override { list.setRows(rows); }

 private:
  void opened() { openedRow = list.shown(); }
};

QStringList column(const QAbstractItemModel& model, int column) {
  QStringList texts;
  for (int r = 0; r < model.rowCount(); ++r) texts.append(model.index(r, column).data().toString());
  return texts;
}

QTableView* viewOf(DialogWindow& window, const ui::Control& control) {
  return static_cast<QTableView*>(window.projectionOf(control)->widget());
}
void clickCell(QTableView* view, int row, int column, Qt::KeyboardModifiers modifiers = {}) {
  QTest::mouseClick(view->viewport(), Qt::LeftButton, modifiers,
                    view->visualRect(view->model()->index(row, column)).center());
}
void clickTitle(QTableView* view, int column) {
  const QHeaderView* const header = view->horizontalHeader();
  QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                    QPoint(header->sectionViewportPosition(column) + 20, header->height() / 2));
}

TEST(ReportModelTest, SortsNumbersAsNumbersAndKeepsTheListsOrder) {
  ListDialog dialog;
  dialog.onInit();
  ReportModel model(dialog.list);
  const Tester tester(&model, Tester::FailureReportingMode::Fatal);
  const QPersistentModelIndex n4 = model.index(3, 0);
  model.sortBy(1, Qt::AscendingOrder);
  EXPECT_EQ(column(model, 0).join(u' '), u"N2 N1 N4 N3"_qs) << "what is no number comes last";
  EXPECT_EQ(n4.row(), 2);
  EXPECT_EQ(model.listRow(2), 3);
  EXPECT_EQ(model.viewRow(3), 2);
  model.sortBy(2, Qt::DescendingOrder);
  EXPECT_EQ(column(model, 0).join(u' '), u"N4 N1 N3 N2"_qs);
  dialog.list.addRow({u"N5", u"1", u"z"});
  EXPECT_TRUE(model.outdated());
  EXPECT_EQ(model.rowCount(), 4) << "views have not been told yet";
  model.reload();
  EXPECT_EQ(column(model, 0).join(u' '), u"N5 N4 N1 N3 N2"_qs);
  dialog.list.setRows({{u"N1"}});  // rows may be shorter than the titles
  model.reload();
  EXPECT_EQ(model.index(0, 2).data().toString(), QString());
  model.sortBy(std::nullopt, Qt::AscendingOrder);
  dialog.list.clear();
  model.reload();
  EXPECT_EQ(model.rowCount(), 0);
  EXPECT_EQ(model.listRow(0), -1);
}

TEST(GridModelTest, ChangesShapeWithTheGridAndRefusesFixedCells) {
  sample::PatternDialog dialog;
  dialog.onInit();
  std::vector<std::u16string> entered;
  GridModel model(dialog.grid, [&](Cell at, const QString& text) {
    entered.push_back(wide(text));
    return static_cast<bool>(dialog.grid.enterCell(at.row, at.column, wide(text)));
  });
  const Tester tester(&model, Tester::FailureReportingMode::Fatal);
  EXPECT_EQ(model.rowCount(), 4);
  EXPECT_TRUE(model.setData(model.index(1, 1), u"2.5"_qs, Qt::EditRole));
  EXPECT_EQ(dialog.grid.cell(2, 1), u"2.5");
  EXPECT_TRUE(model.setData(model.index(1, 1), u"2.5"_qs, Qt::EditRole));
  EXPECT_EQ(entered.size(), 1u) << "a cell that was only looked at is no edit";
  EXPECT_FALSE(model.setData(model.index(1, 0), u"7"_qs, Qt::EditRole));
  dialog.grid.insertRow(1);
  model.reload();
  EXPECT_EQ(model.index(2, 1).data().toString(), u"2.5"_qs);
  dialog.grid.setColumns({{u"Solo"}});
  dialog.grid.setFixedColumns(0);
  model.reload();
  EXPECT_EQ(model.columnCount(), 1);
  EXPECT_TRUE(model.flags(model.index(0, 0)) & Qt::ItemIsEditable);
}

TEST_F(DialogTest, SortedRowsAreStillThoseOfTheList) {
  ListDialog dialog;
  play(dialog, {in(u"Lista"_qs, [&](DialogWindow& window) {
         QTableView* const view = viewOf(window, dialog.list);
         const QSignalSpy painted(view->model(), &QAbstractItemModel::dataChanged);
         dialog.list.setBackground(ui::Colour{255, 255, 0});
         window.redraw();
         EXPECT_EQ(painted.count(), 1) << "or the old colour stays on the screen";
         clickTitle(view, 1);
         EXPECT_EQ(column(*view->model(), 0).join(u' '), u"N2 N1 N4 N3"_qs);
         clickCell(view, 2, 1);
         EXPECT_EQ(dialog.list.shown(), u"N4");
         clickTitle(view, 1);  // down
         EXPECT_EQ(column(*view->model(), 0).join(u' '), u"N3 N4 N1 N2"_qs);
         EXPECT_EQ(dialog.list.selected(), 3) << "sorting chooses nothing";
         clickCell(view, 1, 0);
         clickCell(view, 3, 0, Qt::ShiftModifier);
         key(view, Qt::Key_C, Qt::ControlModifier);
         EXPECT_EQ(QApplication::clipboard()->text(), u"N4\t100\tc d\nN1\t10.5\tb\nN2\t9\t\n"_qs);
         clickCell(view, 3, 0);
         QTest::mouseDClick(view->viewport(), Qt::LeftButton, {},
                            view->visualRect(view->model()->index(3, 0)).center());
         EXPECT_EQ(dialog.openedRow, u"N2");
         clickTitle(view, 1);  // and as the rows came
         EXPECT_EQ(column(*view->model(), 0).join(u' '), u"N1 N2 N3 N4"_qs);
         EXPECT_EQ(view->currentIndex().row(), 1);
         key(&window, Qt::Key_Escape);
       })});
}

TEST_F(DialogTest, AHundredThousandRowsOpenSortAndSelectAtOnce) {
  ListDialog dialog;
  dialog.rows.clear();
  for (int i = 0; i < 100'000; ++i)
    dialog.rows.push_back(
        {platform::format(u"N%d", i), platform::format(u"%d.5", i * 7919 % 100'003), u""});
  QElapsedTimer clock;
  clock.start();
  play(dialog, {in(u"Lista"_qs, [&](DialogWindow& window) {
         QTableView* const view = viewOf(window, dialog.list);
         const qint64 opened = clock.restart();
         clickTitle(view, 1);
         const qint64 sorted = clock.restart();
         EXPECT_EQ(view->model()->index(99'999, 1).data().toString(), u"100002.5"_qs);
         QSignalSpy resets(view->model(), &QAbstractItemModel::modelReset);
         for (int r = 0; r < 50; ++r) {
           EXPECT_TRUE(dialog.list.choose(r * 1000));
           window.redraw();
         }
         EXPECT_EQ(resets.count(), 0) << "a selection is no new list";
         const qint64 selected = clock.elapsed();
         // Far above what a slow machine takes, far below rows that are looked at one by one.
         EXPECT_LT(opened, 2500);
         EXPECT_LT(sorted, 2500);
         EXPECT_LT(selected, 2500);
         key(&window, Qt::Key_Escape);
       })});
}

TEST_F(DialogTest, GridsAreEditedCopiedAndPastedLikeASpreadsheet) {
  sample::PatternDialog dialog;
  ui::Grid& grid = dialog.grid;
  QClipboard* const clipboard = QApplication::clipboard();
  play(dialog, {in(u"Patterns/Curve"_qs, [&](DialogWindow& window) {
         QTableView* const view = viewOf(window, grid);
         clickCell(view, 0, 1);
         QTest::keyClicks(view, u"1"_qs);  // opens the cell and goes into it
         QTest::keyClicks(QApplication::focusWidget(), u".5"_qs);
         key(QApplication::focusWidget(), Qt::Key_Return);
         settle(window);
         EXPECT_EQ(grid.cell(1, 1), u"1.5");
         EXPECT_EQ(view->currentIndex().row(), 1) << "Enter goes down";
         EXPECT_TRUE(dialog.open()) << "and not out of the dialog";

         clipboard->setText(u"7\t8\r\n9\t10\r\n"_qs);
         clickCell(view, 1, 1);
         key(view, Qt::Key_V, Qt::ControlModifier);
         EXPECT_EQ(grid.cell(2, 1) + u'|' + grid.cell(2, 2) + u'|' + grid.cell(3, 1), u"7|8|9");
         EXPECT_EQ(grid.cell(4, 1), u"") << "the end of the last line is no row";
         clipboard->setText(u"x\ty\tz\tto the right\nno\tp\n"_qs);
         clickCell(view, 3, 0);
         key(view, Qt::Key_V, Qt::ControlModifier);
         EXPECT_EQ(grid.cell(4, 0) + u'|' + grid.cell(4, 1) + u'|' + grid.cell(4, 2), u"4|y|z")
             << "what is fixed stays, and there are no more rows";

         clickCell(view, 1, 1);
         clickCell(view, 2, 2, Qt::ShiftModifier);
         key(view, Qt::Key_X, Qt::ControlModifier);
         EXPECT_EQ(clipboard->text(), u"7\t8\n9\t10\n"_qs);
         EXPECT_EQ(grid.cell(2, 1) + grid.cell(2, 2) + grid.cell(3, 1) + grid.cell(3, 2), u"");
         clickCell(view, 3, 1);
         key(view, Qt::Key_Delete);
         EXPECT_EQ(grid.cell(4, 1), u"");
         settle(window);
         EXPECT_EQ(differences(window).join(u'\n').toStdString(), "");
         key(&window, Qt::Key_Escape);
       })});
}

TEST_F(DialogTest, AGridsMenuOpensOnCellsAndTitlesAndKnowsWhere) {
  sample::PatternDialog dialog;
  ui::Grid& grid = dialog.grid;
  play(dialog, {in(u"Patterns/Curve"_qs, [&](DialogWindow& window) {
         WidgetHand hand(window);
         EXPECT_TRUE(hand.enterCell(grid, {2, 1}, u"due"));
         EXPECT_TRUE(hand.chooseMenu(grid, {2, 1}, 2));  // a row before it
         settle(window);
         EXPECT_EQ(grid.rowCount(), 6);
         EXPECT_EQ(grid.cell(3, 1), u"due");
         EXPECT_TRUE(hand.selectCells(grid, {3, 1}, {4, 2}));
         EXPECT_TRUE(hand.chooseMenu(grid, {4, 2}, 0));  // within the selection, which stays
         EXPECT_EQ(QApplication::clipboard()->text(), u"due\t\n\t\n"_qs);
         EXPECT_TRUE(hand.chooseMenu(grid, {0, 1}, 3));  // the title's row cannot go
         settle(window);
         EXPECT_EQ(grid.rowCount(), 6);
         EXPECT_FALSE(grid.hasSelection());
         EXPECT_EQ(grid.current().column, 1);
         key(&window, Qt::Key_Escape);
       })});
}

}  // namespace
}  // namespace desktop
