// The window as a user works in it: real events on its widgets, commands of host and module.
#include "tests/desktop/window_testing.h"

namespace desktop {
namespace {

using WindowTest = WindowTesting;

TEST_F(WindowTest, AnInpFileIsDroppedANodeIsDraggedAndAllIsTakenBack) {
  importBorgo();
  ASSERT_EQ(jobs().networks().size(), 1U);
  EXPECT_EQ(jobs().network(u"borgo").counts.junctions, 34);
  EXPECT_TRUE(window_->isWindowModified());

  const std::uint32_t node = symbolOf(u"MERCATO");
  ASSERT_NE(node, 0U);
  const AcGePoint3d before = placeOf(node);
  const QPoint from = pixelOf(before), to = from + QPoint(31, -22);
  QTest::mouseMove(&canvas(), from);
  QTest::mouseClick(&canvas(), Qt::LeftButton, {}, from);
  ASSERT_EQ(canvas().selection(), std::vector<std::uint32_t>{node});
  const AcGePoint3d aim = canvas().camera().worldOf({double(to.x()), double(to.y())});
  QTest::mousePress(&canvas(), Qt::LeftButton, {}, from);
  QTest::mouseMove(&canvas(), from + QPoint(15, -10));
  QTest::mouseMove(&canvas(), to);
  QTest::mouseRelease(&canvas(), Qt::LeftButton, {}, to);
  take();
  EXPECT_NEAR(placeOf(node).x, aim.x, 1e-6);
  EXPECT_NEAR(placeOf(node).y, aim.y, 1e-6);

  window_->actionFor(QStringLiteral("UNDO"))->trigger();
  take();
  EXPECT_NEAR(placeOf(node).x, before.x, 1e-9);
  window_->actionFor(QStringLiteral("UNDO"))->trigger();
  take();
  EXPECT_TRUE(jobs().networks().empty());
}

TEST_F(WindowTest, KeysAndClicksAnswerTheQuestionsOfACommand) {
  importBorgo();
  const AcGePoint3d a = placeOf(symbolOf(u"MERCATO")), b = placeOf(symbolOf(u"STAZIONE"));
  // Typed on the canvas: the keys go to the command line.
  QTest::keyClicks(&canvas(), QStringLiteral("misura"));
  QTest::keyClick(&canvas(), Qt::Key_Space);
  take({asked(u"rimo punto",
              [&] {
                // A little beside: it snaps to the node.
                QTest::mouseMove(&canvas(), pixelOf(a) + QPoint(4, 3));
                QTest::mouseClick(&canvas(), Qt::LeftButton, {}, pixelOf(a) + QPoint(4, 3));
              }),
        asked(u"econdo punto", [&] {
          QTest::mouseMove(&canvas(), pixelOf(b));
          QTest::mouseClick(&canvas(), Qt::LeftButton, {}, pixelOf(b));
        })});
  const double length =
      std::sqrt((b - a).x * (b - a).x + (b - a).y * (b - a).y + (b - a).z * (b - a).z);
  const QString text = qt(platform::format(u"%.3f", length));
  EXPECT_TRUE(window_->commandLine().history().contains(text))
      << utf8(window_->commandLine().history()) << "\n"
      << utf8(text);
}

TEST_F(WindowTest, ChosenObjectsAnswerACommandAndEscLeavesIt) {
  importBorgo();
  const std::uint32_t node = symbolOf(u"ARTIGIANI_3");
  const std::size_t before = drawing().index().allInSpace().size();
  canvas().select({node});
  window_->actionFor(QStringLiteral("ERASE"))->trigger();
  take();
  EXPECT_EQ(drawing().index().allInSpace().size(), before - 1);
  EXPECT_TRUE(canvas().selection().empty());
  window_->actionFor(QStringLiteral("MOVE"))->trigger();
  take({asked(u"elezionare oggetti", [&] { QTest::keyClick(&canvas(), Qt::Key_Escape); })});
  EXPECT_FALSE(window_->runner().running());
}

TEST_F(WindowTest, WhatWasChosenLeavesNothingInTheNextView) {
  importBorgo();
  canvas().zoomExtents();
  canvas().zoomBy(2);
  const QImage before = canvas().grab().toImage();
  canvas().zoomExtents();
  canvas().selectAll();
  canvas().grab();
  canvas().select({});
  canvas().zoomBy(2);
  EXPECT_EQ(canvas().grab().toImage(), before);
}

TEST_F(WindowTest, ADrawingIsSavedOpenedAgainAndShowsTheSame) {
  importBorgo();
  const QString path = folder_.filePath(QStringLiteral("borgo.dxf"));
  ui_.setNextFile(wide(path));
  window_->actionFor(QStringLiteral("SAVEAS"))->trigger();
  take();
  ASSERT_TRUE(QFile::exists(path));
  EXPECT_FALSE(window_->isWindowModified());
  EXPECT_TRUE(window_->windowTitle().contains(QStringLiteral("borgo.dxf")));
  const std::size_t things = canvas().scene().index().size();
  cad::Session::instance().newDrawing();
  window_->openFile(path);
  take();
  EXPECT_EQ(canvas().scene().index().size(), things);
  EXPECT_EQ(jobs().networks().size(), 1U);
}

TEST_F(WindowTest, ANetworkIsSolvedAndAPeriodWrittenIntoTheDrawing) {
  const QString engine = QStringLiteral(VESSORA_TESTS_DIR "/solver/node_modules/epanet-js-2.3");
  if (!QFile::exists(engine)) GTEST_SKIP() << "no solver at hand";
  qputenv("VESSORA_EPANET_JS", engine.toUtf8());
  importBorgo();
  EXPECT_FALSE(window_->actionFor(QStringLiteral("writeResults"))->isEnabled());
  window_->actionFor(QStringLiteral("solve"))->trigger();
  take();
  ASSERT_TRUE(window_->actionFor(QStringLiteral("writeResults"))->isEnabled())
      << utf8(window_->commandLine().history());
  EXPECT_FALSE(jobs().network(u"borgo").hasResults) << "nothing is drawn yet";
  window_->actionFor(QStringLiteral("writeResults"))->trigger();
  take({asked(u"Periodo", [&] {
    QTest::keyClicks(&canvas(), QStringLiteral("7:00"));
    QTest::keyClick(&canvas(), Qt::Key_Return);
  })});
  EXPECT_EQ(jobs().network(u"borgo").period, u"7:00:00");
  window_->actionFor(QStringLiteral("UNDO"))->trigger();
  take();
  EXPECT_FALSE(jobs().network(u"borgo").hasResults);
}

TEST_F(WindowTest, APipeIsAddedByPickingItsNodes) {
  importBorgo();
  const std::uint32_t from = symbolOf(u"CAMPO_SPORTIVO"), to = symbolOf(u"VIA_DANTE_2");
  const int before = jobs().network(u"borgo").counts.pipes;
  window_->actionFor(QStringLiteral("HNADDEPA"))->trigger();
  take({asked(u"", [&] { QTest::keyClick(&canvas(), Qt::Key_Return); }),
        {"the kind",
         [this] { return ui_.prompts().prompt() && !ui_.prompts().prompt()->keywords.empty(); },
         [&] {
           QTest::keyClicks(&canvas(), QStringLiteral("R"));
           QTest::keyClick(&canvas(), Qt::Key_Return);
         }},
        asked(u"nodo iniziale", [&] { click(pixelOf(placeOf(from)) + QPoint(2, 1)); }),
        asked(u"nodo finale", [&] { click(pixelOf(placeOf(to))); }),
        asked(u"vertici", [&] { click(pixelOf(placeOf(to)) + QPoint(40, 40), Qt::RightButton); }),
        inDialog(u"Ramo", {u"Nome del ramo = NUOVO", u"Diametro [mm] = 150", u"OK"})});
  EXPECT_EQ(jobs().network(u"borgo").counts.pipes, before + 1)
      << utf8(window_->commandLine().history());
}

TEST_F(WindowTest, PressuresOfAWindowAreColouredByTheQueryAndTakenBack) {
  importBorgo();
  const vessora::Report report = jobs().openReport(u"" VESSORA_EXAMPLES "borgo.rpt");
  drawing().beginCommand(u"PROVA");
  jobs().writeResults(jobs().rowsOf(report, u"7:00:00", jobs().periodsOf(report).lowerCaseHrs),
                      u"borgo");
  drawing().endCommand();
  canvas().refresh();
  const std::size_t entities = drawing().index().allInSpace().size();
  window_->actionFor(QStringLiteral("NETVIS"))->trigger();
  take({asked(u"elezionare",
              [&] {
                // From right to left: what the window touches.
                QTest::mousePress(&canvas(), Qt::LeftButton, {}, {1100, 500});
                QTest::mouseMove(&canvas(), {600, 300});
                QTest::mouseMove(&canvas(), {60, 30});
                QTest::mouseRelease(&canvas(), Qt::LeftButton, {}, {60, 30});
              }),
        asked(u"elezionare",
              [&] {
                click({600, 20}, Qt::RightButton);
              }),
        inDialog(u"Interroga Rete", {u"Nodi/Colore = Pressione", u"OK"}),
        asked(u"elezionare un punto", [&] {
          click({1000, 480});
        })});
  EXPECT_EQ(jobs().drawnLegends().size(), 1U) << utf8(window_->commandLine().history());
  EXPECT_GT(drawing().index().allInSpace().size(), entities);
  window_->actionFor(QStringLiteral("UNDO"))->trigger();
  take();
  EXPECT_TRUE(jobs().drawnLegends().empty());
  EXPECT_EQ(drawing().index().allInSpace().size(), entities);
}

TEST_F(WindowTest, ClosingLeavesTheRunningCommandFirst) {
  QTest::keyClicks(&canvas(), QStringLiteral("misura"));
  QTest::keyClick(&canvas(), Qt::Key_Return);
  take({asked(u"rimo punto", [&] { window_->close(); })});
  take();
  EXPECT_FALSE(window_->isVisible());
}

}  // namespace
}  // namespace desktop
