// The docks beside the drawing: what they show follows the drawing, and what is done in them is
// done to it, as one undo step.
#include "apps/desktop/docks/docks.h"

#include <QAbstractItemModelTester>
#include <QComboBox>
#include <QDockWidget>
#include <QLineEdit>

#include "apps/desktop/docks/element_fields.h"
#include "apps/desktop/docks/filter_line.h"
#include "apps/desktop/docks/natural_order.h"
#include "apps/desktop/docks/palette_popup.h"
#include "tests/desktop/window_testing.h"

namespace desktop {
namespace {

using schema::Field;
using vessora::EpaPipe;
using Reporting = QAbstractItemModelTester::FailureReportingMode;

class DocksTest : public WindowTesting {
 protected:
  Docks& docks() { return window_->docks(); }
  LayerModel& layers() { return docks().layers().model(); }
  BrowserModel& tree() { return docks().browser().model(); }
  PropertyModel& sheet() { return docks().properties().model(); }

  void undo() {
    window_->actionFor(QStringLiteral("UNDO"))->trigger();
    take();
  }
  static void click(QAbstractItemView& view, const QModelIndex& index, const QPoint& at) {
    view.scrollTo(index);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, view.visualRect(index).topLeft() + at);
  }
  static void click(QAbstractItemView& view, const QModelIndex& index) {
    click(view, index, QPoint(view.visualRect(index).width() / 2, 6));
  }
  // The first row below the networks' groups, or among the groups, that says this.
  QModelIndex rowOf(const QString& text, const QModelIndex& parent = {}) {
    for (int row = 0; row < tree().rowCount(parent); ++row) {
      const QModelIndex index = tree().index(row, 0, parent);
      if (index.data().toString().startsWith(text)) return index;
      const QModelIndex below = rowOf(text, index);
      if (below.isValid()) return below;
    }
    return {};
  }
  void search(const QString& text) {
    FilterLine& line = docks().browser().filter();
    line.clear();
    QTest::keyClicks(&line, text);
    QTest::qWait(250);
  }
  QModelIndex layer(const char16_t* name, int column) {
    for (int row = 0; row < layers().rowCount(); ++row) {
      if (layers().at(row).name == name) return layers().index(row, column);
    }
    return {};
  }
  // The entities of elements.
  std::vector<std::uint32_t> recordsOf(std::initializer_list<std::u16string_view> names) {
    std::vector<std::uint32_t> records;
    for (const auto& element : jobs().elementsOf(u"borgo")) {
      if (std::find(names.begin(), names.end(), element.name) != names.end())
        records.push_back(element.id.index());
    }
    return records;
  }
  EpaPipe pipe(std::u16string_view name) {
    const auto records = recordsOf({name});
    return std::get<EpaPipe>(jobs().readElement(u"borgo", drawing().idOf(records.at(0)))->record);
  }
  double diameterOf(std::u16string_view name) { return platform::wtof(pipe(name).diameter); }
  QString valueOf(Field field) {
    const int row = sheet().rowOf(field);
    return row < 0 ? QString() : sheet().index(row, PropertyModel::value).data().toString();
  }
  // Types into the field as a user does.
  void type(Field field, const QString& text) {
    QTableView& view = docks().properties().view();
    click(view, sheet().index(sheet().rowOf(field), PropertyModel::value));
    const auto lines = view.findChildren<QLineEdit*>();
    ASSERT_FALSE(lines.isEmpty());
    QLineEdit* const line = lines.last();
    QTest::keyClick(line, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(line, Qt::Key_Delete);
    QTest::keyClicks(line, text);
    QTest::keyClick(line, Qt::Key_Return);
    take();
  }
};

// --- layers --------------------------------------------------------------------------------------

TEST_F(DocksTest, AFrozenLayerLosesItsThingsOnTheCanvasUntilItIsTakenBack) {
  QAbstractItemModelTester tester(&layers(), Reporting::Fatal);
  importBorgo();
  const std::uint32_t node = symbolOf(u"MERCATO");
  const std::size_t things = canvas().scene().index().size();
  docks().layers().window()->findChild<QDockWidget*>(QStringLiteral("layers"))->raise();
  QTest::qWait(20);
  const QModelIndex cell = layer(u"JUNC-borgo", LayerModel::frozen);
  ASSERT_TRUE(cell.isValid());
  EXPECT_EQ(cell.data(Qt::CheckStateRole).toInt(), Qt::Unchecked);
  click(docks().layers().view(), cell, QPoint(10, 10));
  take();
  EXPECT_EQ(cell.data(Qt::CheckStateRole).toInt(), Qt::Checked);
  EXPECT_LT(canvas().scene().index().size(), things);
  EXPECT_TRUE(window_->isWindowModified());
  undo();
  EXPECT_EQ(cell.data(Qt::CheckStateRole).toInt(), Qt::Unchecked);
  EXPECT_EQ(canvas().scene().index().size(), things);
  EXPECT_EQ(symbolOf(u"MERCATO"), node);
}

TEST_F(DocksTest, ChosenLayersGetAColourAndALockAsOneStep) {
  importBorgo();
  docks().layers().window()->findChild<QDockWidget*>(QStringLiteral("layers"))->raise();
  QTest::qWait(20);
  QTableView& view = docks().layers().view();
  const auto choose = [&](const char16_t* name, QItemSelectionModel::SelectionFlags how) {
    view.selectionModel()->select(layer(name, 0), how | QItemSelectionModel::Rows);
  };
  choose(u"PIPE-borgo", QItemSelectionModel::ClearAndSelect);
  choose(u"PUMP-borgo", QItemSelectionModel::Select);
  click(view, layer(u"PIPE-borgo", LayerModel::colour));
  auto* const palette = docks().layers().findChild<PalettePopup*>();
  ASSERT_NE(palette, nullptr);
  QTest::mouseClick(palette, Qt::LeftButton, {}, palette->cellOf(34).center());
  take();
  click(view, layer(u"PUMP-borgo", LayerModel::locked), QPoint(10, 10));
  take();
  for (const char16_t* name : {u"PIPE-borgo", u"PUMP-borgo"}) {
    EXPECT_EQ(layers().at(layer(name, 0).row()).colour, 34);
    EXPECT_TRUE(layers().at(layer(name, 0).row()).locked);
  }
  EXPECT_FALSE(layers().at(layer(u"VALV-borgo", 0).row()).locked);
  undo();
  undo();
  EXPECT_EQ(layers().at(layer(u"PIPE-borgo", 0).row()).colour, 140);
  EXPECT_EQ(layers().at(layer(u"PUMP-borgo", 0).row()).colour, 6);
  EXPECT_FALSE(layers().at(layer(u"PUMP-borgo", 0).row()).locked);
}

TEST(NaturalOrder, NumbersCountByValueAndLettersWithoutCase) {
  const std::u16string_view sorted[] = {u"", u"007", u"8", u"a", u"P2", u"p10", u"P10a", u"q"};
  for (std::size_t i = 0; i < std::size(sorted); ++i) {
    for (std::size_t k = 0; k < std::size(sorted); ++k)
      EXPECT_EQ(isBefore(sorted[i], sorted[k]), i < k) << i << " " << k;
  }
  EXPECT_NE(isBefore(u"p7", u"P7"), isBefore(u"P7", u"p7"));
  EXPECT_NE(isBefore(u"p7", u"p07"), isBefore(u"p07", u"p7"));
}

// --- networks ------------------------------------------------------------------------------------

TEST_F(DocksTest, AnElementIsSearchedClickedChosenAndInView) {
  QAbstractItemModelTester tester(&tree(), Reporting::Fatal);
  importBorgo();
  EXPECT_TRUE(rowOf(QStringLiteral("Nodi (34)")).isValid());
  EXPECT_TRUE(rowOf(QStringLiteral("Condotte (37)")).isValid());
  canvas().zoomTo({1e6, 1e6, 1e6 + 10, 1e6 + 10});
  search(QStringLiteral("merc"));
  EXPECT_TRUE(rowOf(QStringLiteral("Nodi (1 di 34)")).isValid());
  EXPECT_FALSE(rowOf(QStringLiteral("Condotte")).isValid());
  const QModelIndex row = rowOf(QStringLiteral("MERCATO"));
  ASSERT_TRUE(row.isValid());
  click(docks().browser().view(), row);
  const std::uint32_t node = symbolOf(u"MERCATO");
  EXPECT_EQ(canvas().selection(), std::vector<std::uint32_t>{node});
  EXPECT_TRUE(canvas().rect().contains(pixelOf(placeOf(node))));
  EXPECT_EQ(valueOf(Field::id), QStringLiteral("MERCATO"));
}

TEST_F(DocksTest, WhatIsChosenOnTheCanvasIsChosenInTheTree) {
  importBorgo();
  const std::uint32_t node = symbolOf(u"STAZIONE");
  const QPoint at = pixelOf(placeOf(node));
  QTest::mouseMove(&canvas(), at);
  QTest::mouseClick(&canvas(), Qt::LeftButton, {}, at);
  const QModelIndexList rows = docks().browser().view().selectionModel()->selectedRows();
  ASSERT_EQ(rows.size(), 1);
  EXPECT_EQ(rows[0].data().toString(), QStringLiteral("STAZIONE"));
  // A pump is its symbol and its course: either of them is the pump.
  for (const auto& element : jobs().elementsOf(u"borgo")) {
    if (element.name != u"POMPA1") continue;
    ASSERT_FALSE(element.course.isNull());
    canvas().select({element.course.index()});
  }
  EXPECT_EQ(docks().browser().view().selectionModel()->selectedRows().value(0).data().toString(),
            QStringLiteral("POMPA1"));
  EXPECT_EQ(valueOf(Field::id), QStringLiteral("POMPA1"));
}

TEST_F(DocksTest, ProblemsAndChangesAreFoundWhenTheDrawingRests) {
  QAbstractItemModelTester tester(&tree(), Reporting::Fatal);
  importBorgo();
  const auto text = [](const char16_t* t) { return QString::fromUtf16(t); };
  auto element = *jobs().readElement(u"borgo", drawing().idOf(recordsOf({u"C5"}).at(0)));
  std::get<EpaPipe>(element.record).id = u"C4";
  std::get<EpaPipe>(element.record).diameter = u"175";
  drawing().beginCommand(u"PROVA");
  ASSERT_TRUE(jobs()
                  .modifyElement(u"borgo", drawing().idOf(recordsOf({u"C5"}).at(0)), element,
                                 {Field::id, Field::diameter})
                  .done());
  drawing().endCommand();
  docks().follow();
  drive(
      {{"a longer look", [&] { return rowOf(text(u"Problemi (1)")).isValid(); }, [] {}}},
      [] { return true; }, [] {}, 5000);
  const QModelIndex twice = rowOf(text(u"C4: nome di 2 elementi"));
  ASSERT_TRUE(twice.isValid());
  EXPECT_TRUE(rowOf(text(u"Modifiche rispetto al file")).isValid());
  QTreeView& view = docks().browser().view();
  view.expandAll();
  click(view, twice);
  EXPECT_EQ(canvas().selection(), recordsOf({u"C4"}));
  EXPECT_EQ(view.selectionModel()->selectedRows().value(0), twice);
  undo();
  EXPECT_FALSE(rowOf(text(u"Problemi")).isValid());
}

TEST_F(DocksTest, SeveralNetworksAndAnEmptyDrawing) {
  importBorgo();
  dropFile(QStringLiteral(VESSORA_EXAMPLES "collina.inp"));
  take();
  ASSERT_EQ(tree().rowCount(), 2);
  const auto chosen = [&] {
    canvas().selectAll();
    return valueOf(Field::id);
  };
  EXPECT_EQ(chosen(), QString());  // names are of one
  window_->actionFor(QStringLiteral("UNDO"))->trigger();
  take();
  EXPECT_EQ(tree().rowCount(), 1);
  cad::Session::instance().newDrawing();
  docks().follow();
  EXPECT_EQ(tree().rowCount(), 0);
  EXPECT_EQ(sheet().rowCount(), 0);
}

// --- properties ----------------------------------------------------------------------------------

TEST_F(DocksTest, APipeGetsAnotherDiameterAndItIsTakenBack) {
  QAbstractItemModelTester tester(&sheet(), Reporting::Fatal);
  importBorgo();
  canvas().select(recordsOf({u"C5"}));
  EXPECT_EQ(valueOf(Field::diameter), QStringLiteral("150"));
  EXPECT_EQ(sheet().index(sheet().rowOf(Field::diameter), 0).data().toString(),
            QStringLiteral("Diametro [mm]"));
  type(Field::diameter, QStringLiteral("162,5"));
  EXPECT_EQ(diameterOf(u"C5"), 162.5);
  EXPECT_EQ(valueOf(Field::diameter), QStringLiteral("162.5"));
  EXPECT_EQ(pipe(u"C5").length, u"75.3");
  undo();
  EXPECT_EQ(diameterOf(u"C5"), 150);
  EXPECT_EQ(valueOf(Field::diameter), QStringLiteral("150"));
}

TEST_F(DocksTest, TwoPipesAtOnceAreOneStep) {
  importBorgo();
  canvas().select(recordsOf({u"C5", u"C7"}));
  EXPECT_EQ(valueOf(Field::diameter), QStringLiteral("(diversi)"));
  EXPECT_EQ(valueOf(Field::roughness), QStringLiteral("130"));
  EXPECT_EQ(sheet().rowOf(Field::id), -1);
  type(Field::diameter, QStringLiteral("90"));
  EXPECT_EQ(diameterOf(u"C5"), 90);
  EXPECT_EQ(diameterOf(u"C7"), 90);
  EXPECT_EQ(diameterOf(u"C8"), 100);
  undo();
  EXPECT_EQ(diameterOf(u"C5"), 150);
  EXPECT_EQ(diameterOf(u"C7"), 125);
}

TEST_F(DocksTest, KeysInTheListsReachTheDrawingAsFarAsTheyAreMeantForIt) {
  importBorgo();
  const std::size_t before = drawing().index().allInSpace().size();
  canvas().select(recordsOf({u"C5"}));
  QTableView& view = docks().properties().view();
  view.setCurrentIndex(sheet().index(sheet().rowOf(Field::node1), PropertyModel::value));
  view.setFocus();
  QTest::keyClick(&view, Qt::Key_Delete);
  take();
  EXPECT_EQ(drawing().index().allInSpace().size(), before);
  QTest::keyClick(&view, Qt::Key_Escape);
  EXPECT_TRUE(canvas().selection().empty());
  EXPECT_TRUE(canvas().hasFocus());
}

TEST_F(DocksTest, RefusedValuesSayWhyAndChangeNothing) {
  importBorgo();
  canvas().select(recordsOf({u"C5"}));
  const std::uint64_t before = drawing().revision();
  const auto refused = [&](Field field, const char16_t* typed, const char16_t* why) {
    type(field, QString::fromUtf16(typed));
    EXPECT_TRUE(docks().properties().fault().contains(QString::fromUtf16(why)))
        << utf8(docks().properties().fault());
    EXPECT_EQ(drawing().revision(), before);
  };
  refused(Field::diameter, u"largo", u"Non è un numero: largo");
  refused(Field::diameter, u"1.200,5", u"Non è un numero");
  refused(Field::diameter, u"0", u"maggiore di 0");
  refused(Field::minorLoss, u"-1", u"maggiore o uguale a 0");
  refused(Field::id, u"C7", u"c'è già");
  refused(Field::id, u"C 7", u"spazi");
  refused(Field::id, u"", u"mancare");
  EXPECT_EQ(diameterOf(u"C5"), 150);
  // A node may have the name of a link.
  type(Field::id, QStringLiteral("PIAZZA"));
  EXPECT_EQ(docks().properties().fault(), QString());
  EXPECT_EQ(recordsOf({u"C5"}).size(), 0U);
  undo();
  EXPECT_EQ(recordsOf({u"C5"}).size(), 1U);
}

TEST_F(DocksTest, ChoicesComeFromTheNetworkAndAHeadCurveTakesThePlaceOfAPower) {
  importBorgo();
  canvas().select(recordsOf({u"RILANCIO1"}));
  const auto property = [&](Field field) { return sheet().at(sheet().rowOf(field)); };
  EXPECT_EQ(property(Field::speedPattern).choices,
            (QStringList{QString(), QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3"),
                         QStringLiteral("4"), QStringLiteral("5")}));
  EXPECT_EQ(valueOf(Field::power), QStringLiteral("0.65"));
  QTableView& view = docks().properties().view();
  click(view, sheet().index(sheet().rowOf(Field::headCurve), PropertyModel::value));
  auto* const list = view.findChild<QComboBox*>();
  ASSERT_NE(list, nullptr);
  QTest::qWait(20);
  QTest::keyClick(list->view(), Qt::Key_Down);
  QTest::keyClick(list->view(), Qt::Key_Return);
  take();
  EXPECT_EQ(valueOf(Field::headCurve), QStringLiteral("1"));
  EXPECT_EQ(valueOf(Field::power), QString());
  undo();
  EXPECT_EQ(valueOf(Field::headCurve), QString());
  EXPECT_EQ(valueOf(Field::power), QStringLiteral("0.65"));
  // What a network has not, or another kind has, is no choice.
  canvas().select(recordsOf({u"GPV_MERCATO"}));
  EXPECT_EQ(property(Field::setting).kind, Property::Kind::choice);
  canvas().select(recordsOf({u"PRV_MULINO"}));
  EXPECT_EQ(property(Field::setting).kind, Property::Kind::text);
  EXPECT_EQ(property(Field::setting).label, QStringLiteral("Regolazione [m]"));
}

TEST_F(DocksTest, AllKindsOfElementAreReadAndWrittenFieldByField) {
  importBorgo();
  for (const auto& listed : jobs().elementsOf(u"borgo")) {
    const auto element = *jobs().readElement(u"borgo", listed.id);
    for (const FieldRule& rule : rulesOf(element)) {
      auto changed = element;
      ASSERT_TRUE(setText(changed, rule.field, u"7.25"));
      EXPECT_EQ(textOf(changed, rule.field), u"7.25");
      for (const FieldRule& other : rulesOf(element)) {
        if (other.field == rule.field) continue;
        EXPECT_EQ(textOf(changed, other.field), textOf(element, other.field));
      }
    }
    auto changed = element;
    EXPECT_FALSE(setText(changed, rulesOf(element)[1].field, std::u16string(300, u'x')));
    EXPECT_EQ(textOf(element, Field::id), listed.name);
  }
}

TEST_F(DocksTest, ResultsStandBelowAndGoWithAnEdit) {
  importBorgo();
  const auto report = jobs().openReport(u"" VESSORA_EXAMPLES "borgo.rpt");
  const auto periods = jobs().periodsOf(report);
  drawing().beginCommand(u"PROVA");
  jobs().writeResults(
      jobs().rowsOf(report, periods.times.empty() ? u"" : periods.times[0], periods.lowerCaseHrs),
      u"borgo");
  drawing().endCommand();
  docks().follow();
  canvas().select(recordsOf({u"C5"}));
  const auto labelled = [&](const char16_t* label) {
    for (int row = 0; row < sheet().rowCount(); ++row) {
      if (sheet().at(row).label.startsWith(QString::fromUtf16(label))) return sheet().at(row).value;
    }
    return QString();
  };
  EXPECT_FALSE(labelled(u"Portata [l/s]").isEmpty());
  EXPECT_EQ(labelled(u"Layer"), QStringLiteral("PIPE-borgo"));
  EXPECT_EQ(labelled(u"Colore"), QStringLiteral("dal layer"));
  canvas().select(recordsOf({u"C5", u"C7"}));
  EXPECT_TRUE(labelled(u"Portata [l/s]").contains(QChar(u'÷')));
  canvas().select(recordsOf({u"C5"}));
  type(Field::length, QStringLiteral("80"));
  EXPECT_TRUE(labelled(u"Portata [l/s]").isEmpty());
  drive(
      {{"stale results", [&] { return rowOf(QStringLiteral("I risultati sono")).isValid(); },
        [] {}}},
      [] { return true; }, [] {}, 5000);
}

TEST_F(DocksTest, ANodeMovesToATypedPlaceWithItsLinks) {
  importBorgo();
  const std::uint32_t node = symbolOf(u"MERCATO");
  const AcGePoint3d before = placeOf(node);
  canvas().select({node});
  QTableView& view = docks().properties().view();
  int row = 0;
  while (sheet().at(row).target != Property::Target::x) ++row;
  click(view, sheet().index(row, PropertyModel::value));
  auto* const line = view.findChild<QLineEdit*>();
  ASSERT_NE(line, nullptr);
  QTest::keyClicks(line, QString::number(before.x + 12.5, 'f', 3));
  QTest::keyClick(line, Qt::Key_Return);
  take();
  EXPECT_NEAR(placeOf(node).x, before.x + 12.5, 0.001);
  EXPECT_NEAR(placeOf(node).y, before.y, 1e-9);
  // The links' lengths have followed, as the command line tells.
  EXPECT_TRUE(window_->commandLine().history().contains(QStringLiteral("C20")));
  undo();
  EXPECT_NEAR(placeOf(node).x, before.x, 1e-9);
}

}  // namespace
}  // namespace desktop
