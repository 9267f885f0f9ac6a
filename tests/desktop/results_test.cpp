// Results shown in time: what is read of a file, what is coloured, labelled and told, and that the
// drawing stays as it is.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QDragEnterEvent>
#include <QFile>
#include <QMimeData>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include "apps/desktop/canvas/canvas.h"
#include "apps/desktop/docks/command_line.h"
#include "apps/desktop/results/results_view.h"
#include "apps/desktop/text.h"
#include "apps/desktop/window.h"
#include "apps/program/host.h"
#include "cad/api/entities.h"
#include "cad/editor/session.h"
#include "module/jobs.h"
#include "platform/text.h"
#include "tests/desktop/drive.h"

namespace desktop {
namespace {

// The rows of one table of the example's report, by id: read as words between blanks.
std::map<std::string, std::vector<double>> tableOf(const std::string& title) {
  std::ifstream in(VESSORA_EXAMPLES "borgo.rpt");
  std::map<std::string, std::vector<double>> rows;
  std::string line;
  while (std::getline(in, line) && line.find(title) == line.npos) {
  }
  for (int head = 0; head < 4; ++head) std::getline(in, line);
  while (std::getline(in, line)) {
    std::istringstream words(line);
    std::string id;
    if (!(words >> id)) break;
    for (double value = 0; words >> value;) rows[id].push_back(value);
  }
  return rows;
}

class ResultsTest : public testing::Test {
 protected:
  void SetUp() override {
    qputenv("VESSORA_RECOVERY", folder_.filePath(QStringLiteral("kept")).toUtf8());
    const auto started = program::startHost(ui_, program::InpMode::full);
    ASSERT_TRUE(started) << started.error();
    cad::Session::instance().newDrawing();
    window_ = std::make_unique<Window>(ui_);
    window_->resize(1400, 900);
    window_->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window_.get()));
    drop(QStringLiteral(VESSORA_EXAMPLES "borgo.inp"));
    QTest::qWait(20);
  }
  void TearDown() override {
    window_.reset();
    program::stopHost();
  }

  void drop(const QString& path) {
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path)});
    QDragEnterEvent enter(QPoint(100, 100), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window_.get(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent event(QPointF(100, 100), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window_.get(), &event);
    take();
  }
  void take() {
    drive(
        {}, [this] { return !window_->runner().busy(); }, [this] { window_->runner().abandon(); });
  }
  void openBorgo() {
    drop(QStringLiteral(VESSORA_EXAMPLES "borgo.rpt"));
    ASSERT_TRUE(view().isOpen()) << utf8(window_->commandLine().history());
  }
  static std::size_t periodAt(const ResultSet& set, const std::string& name) {
    for (std::size_t k = 0; k < set.periods().size(); ++k) {
      if (set.periods()[k].name == name) return k;
    }
    ADD_FAILURE() << "no period " << name;
    return 0;
  }
  static const ResultElement& named(const std::vector<ResultElement>& all, std::u16string_view id) {
    return *std::ranges::find_if(all, [&](const ResultElement& e) { return e.name == id; });
  }
  int drawnColour(std::uint32_t record) {
    Acad::ErrorStatus status{};
    AcDbObject* const object = drawing().open(record, AcDb::kForRead, false, status);
    const int colour = static_cast<AcDbEntity*>(object)->colorIndex();
    drawing().close(*object);
    return colour;
  }
  std::map<std::uint32_t, QRgb> shownColours() {
    return {canvas().colours().begin(), canvas().colours().end()};
  }
  static cad::Drawing& drawing() { return cad::Session::instance().database()->drawing(); }
  static vessora::Jobs& jobs() { return *vessora::Jobs::find(); }
  ResultsView& view() { return window_->results(); }
  Canvas& canvas() { return window_->canvas(); }
  // All that has been written of the picture: the overlay is made while it is painted.
  void paint() { window_->grab(); }

  QTemporaryDir folder_;
  QtFrontend ui_;
  std::unique_ptr<Window> window_;
};

TEST_F(ResultsTest, ValuesOfAllElementsAreThoseOfTheReport) {
  openBorgo();
  const ResultSet& set = view().results();
  EXPECT_EQ(set.periods().size(), 25U);
  for (const char* time : {"0:00:00", "7:00:00", "24:00:00"}) {
    const std::size_t k = periodAt(set, time);
    const auto nodes = tableOf("Node Results at " + std::string(time));
    const auto links = tableOf("Link Results at " + std::string(time));
    ASSERT_EQ(nodes.size(), set.nodes().size());
    ASSERT_EQ(links.size(), set.links().size());
    for (std::size_t i = 0; i < set.nodes().size(); ++i) {
      const auto& row = nodes.at(platform::narrow(set.nodes()[i].name));
      EXPECT_FLOAT_EQ(set.value(Quantity::demand, k, i), static_cast<float>(row[0]));
      EXPECT_FLOAT_EQ(set.value(Quantity::head, k, i), static_cast<float>(row[1]));
      EXPECT_FLOAT_EQ(set.value(Quantity::pressure, k, i), static_cast<float>(row[2]));
    }
    for (std::size_t i = 0; i < set.links().size(); ++i) {
      const auto& row = links.at(platform::narrow(set.links()[i].name));
      EXPECT_FLOAT_EQ(set.value(Quantity::flow, k, i), static_cast<float>(row[0]));
      EXPECT_FLOAT_EQ(set.value(Quantity::velocity, k, i), static_cast<float>(row[1]));
      EXPECT_FLOAT_EQ(set.value(Quantity::headloss, k, i), static_cast<float>(row[2]));
    }
  }
  EXPECT_FALSE(set.has(Quantity::nodeQuality));
  EXPECT_EQ(set.unit(Quantity::headloss), "m/km");
}

TEST_F(ResultsTest, UnitsOfTheReportBecomeThoseOfTheDrawing) {
  // The same run told in gallons, feet and psi, for elements in another order; two have no row.
  std::ofstream out(utf8(folder_.filePath(QStringLiteral("us.rpt"))));
  out << "  Node Results at 0:00:00 hrs:\n"
         "  ----------------------------------------------\n"
         "                     Demand      Head  Pressure\n"
         "  Node                  gpm        ft       psi\n"
         "  ----------------------------------------------\n"
         "  CHIESA              10.00    100.00     50.00\n"
         "  PIAZZA              20.00    200.00     40.00\n\n"
         "  Link Results at 0:00:00 hrs:\n"
         "  ----------------------------------------------\n"
         "                       Flow  Velocity  Headloss\n"
         "  Link                  gpm       fps   /1000ft\n"
         "  ----------------------------------------------\n"
         "  C2                 -15.00      3.00      2.50\n\n";
  out.close();
  drop(folder_.filePath(QStringLiteral("us.rpt")));
  ASSERT_TRUE(view().isOpen()) << utf8(window_->commandLine().history());
  const ResultSet& set = view().results();
  const auto value = [&](Quantity q, std::u16string_view id) {
    const auto& all = set.elements(q);
    return set.value(q, 0, static_cast<std::size_t>(&named(all, id) - all.data()));
  };
  EXPECT_NEAR(value(Quantity::demand, u"PIAZZA"), 20 * 0.0630902, 1e-4);
  EXPECT_NEAR(value(Quantity::head, u"PIAZZA"), 60.96, 1e-3);
  EXPECT_NEAR(value(Quantity::pressure, u"CHIESA"), 50 * 0.70325, 0.01);
  EXPECT_NEAR(value(Quantity::flow, u"C2"), -15 * 0.0630902, 1e-4);
  EXPECT_NEAR(value(Quantity::velocity, u"C2"), 0.9144, 1e-4);
  EXPECT_NEAR(value(Quantity::headloss, u"C2"), 2.5, 1e-6);
  EXPECT_TRUE(std::isnan(value(Quantity::flow, u"C1")));
  // What the run says nothing of is grey, and bears neither arrow nor tip.
  EXPECT_EQ(shownColours().at(named(set.links(), u"C1").course), Colours::rest(true));
  EXPECT_EQ(view().tipOf(named(set.links(), u"C1").course), QStringLiteral("C1"));
}

TEST_F(ResultsTest, ColoursAreThoseOfTheQueryForTheSamePeriod) {
  openBorgo();
  const struct {
    vessora::Quantity asked;
    Quantity shown;
    int count;
  } rows[] = {{vessora::Quantity::pressure, Quantity::pressure, 5},
              {vessora::Quantity::demand, Quantity::demand, 10},
              {vessora::Quantity::flow, Quantity::flow, 10},
              {vessora::Quantity::velocity, Quantity::velocity, 5}};
  const vessora::Report report = jobs().openReport(u"" VESSORA_EXAMPLES "borgo.rpt");
  for (const char16_t* time : {u"3:00:00", u"7:00:00"}) {
    const std::size_t period = periodAt(view().results(), platform::narrow(time));
    drawing().beginCommand(u"TEST");
    jobs().writeResults(jobs().rowsOf(report, time, true), u"borgo");
    for (const auto& row : rows) {
      ResultWishes wishes;
      (isOfNodes(row.shown) ? wishes.node : wishes.link) = row.shown;
      wishes.classCount = row.count;
      view().clock().setWishes(wishes);
      view().clock().setPeriod(period);
      // What the query leaves alone has no class.
      jobs().resetColors(u"borgo", jobs().queryNetwork(u"borgo", {}).rows);
      const int painted = jobs().colorNetwork(u"borgo", {row.asked, row.count, {}}).painted;
      const auto shown = shownColours();
      int classed = 0;
      for (const ResultElement& e : view().results().elements(row.shown)) {
        const QRgb colour = shown.at(e.shown());
        if (e.symbol && e.course) {
          EXPECT_EQ(shown.at(e.symbol), colour);
        }
        if (colour == Colours::rest(canvas().isDark())) continue;
        ++classed;
        EXPECT_EQ(colour, Colours::shown(drawnColour(e.shown()), canvas().isDark()))
            << platform::narrow(e.name);
      }
      EXPECT_EQ(classed, painted);
      EXPECT_GT(classed, 30);
    }
    drawing().abandonCommand();
  }
}

TEST_F(ResultsTest, TimeIsSteppedPlayedAndStopsAtTheEnd) {
  openBorgo();
  Clock& clock = view().clock();
  EXPECT_EQ(clock.period(), 0U);
  ResultWishes wishes = clock.wishes();
  wishes.node = Quantity::pressure;
  clock.setWishes(wishes);
  const auto first = shownColours();
  clock.setPeriod(7);
  EXPECT_NE(shownColours(), first);
  // With fixed classes one colour means one range whatever the period.
  wishes.fixed = true;
  clock.setWishes(wishes);
  std::map<QRgb, std::pair<float, float>> ranges;
  const ResultSet& set = view().results();
  for (std::size_t k = 0; k < set.periods().size(); ++k) {
    clock.setPeriod(k);
    const auto colours = shownColours();
    for (std::size_t i = 0; i < set.nodes().size(); ++i) {
      const float value = set.value(Quantity::pressure, k, i);
      auto& range =
          ranges.try_emplace(colours.at(set.nodes()[i].symbol), value, value).first->second;
      range = {std::min(range.first, value), std::max(range.second, value)};
    }
  }
  ranges.erase(Colours::rest(canvas().isDark()));
  for (const auto& [colour, a] : ranges) {
    for (const auto& [other, b] : ranges) {
      EXPECT_TRUE(colour == other || a.second < b.first || b.second < a.first);
    }
  }
  clock.setPeriod(set.periods().size() - 2);
  clock.play(true);
  EXPECT_TRUE(clock.isPlaying());
  EXPECT_TRUE(QTest::qWaitFor([&] { return !clock.isPlaying(); }, 5000));
  EXPECT_EQ(clock.period(), set.periods().size() - 1);
  clock.play(true);
  EXPECT_EQ(clock.period(), 0U) << "from the beginning again";
  // Whatever is pressed of the bar, Space stays a key of the command line.
  canvas().setFocus();
  for (QAbstractButton* const button : clock.findChildren<QAbstractButton*>()) {
    if (button->toolTip() == words(u"Chiude i risultati")) continue;
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_EQ(window_->focusWidget(), &canvas()) << utf8(button->toolTip());
  }
  clock.play(false);
  auto* const slider = clock.findChild<QSlider*>();
  QTest::mouseClick(slider, Qt::LeftButton);
  EXPECT_EQ(window_->focusWidget(), &canvas());
}

TEST_F(ResultsTest, ArrowsFollowTheFlowAndLabelsKeepApart) {
  openBorgo();
  ResultWishes wishes = view().clock().wishes();
  wishes.values = wishes.arrows = true;
  view().clock().setWishes(wishes);
  view().clock().setPeriod(7);
  for (const double zoom : {1.0, 2.0, 2.0}) {
    canvas().zoomBy(zoom);
    paint();
    const auto& labels = view().overlay().labels();
    EXPECT_GT(labels.size(), 5U) << zoom;
    for (std::size_t i = 0; i < labels.size(); ++i) {
      EXPECT_TRUE(QRectF(canvas().rect()).contains(labels[i].box));
      for (std::size_t j = 0; j < i; ++j) {
        EXPECT_FALSE(labels[i].box.intersects(labels[j].box)) << i << " " << j;
      }
    }
  }
  canvas().zoomExtents();
  canvas().zoomBy(2);
  paint();
  const ResultSet& set = view().results();
  std::size_t against = 0;
  for (std::size_t i = 0; i < set.links().size(); ++i) {
    against += set.value(Quantity::flow, 7, i) < 0;
  }
  EXPECT_GT(against, 0U) << "the example has no flow against its links";
  EXPECT_GT(view().overlay().arrows().size(), 3U);
  // At every arrow a link passes, and its tip points the way in which the water goes.
  for (const ResultOverlay::Arrow& arrow : view().overlay().arrows()) {
    const QPointF tip = arrow.shape[0], tail = arrow.shape[2], at = (tip + tail * 2) / 3;
    bool found = false;
    for (std::size_t i = 0; i < set.links().size() && !found; ++i) {
      const auto& t = canvas().scene().things()[canvas().scene().thingOf(set.links()[i].course)];
      const auto& item = canvas().scene().items()[t.items.begin];
      for (std::uint32_t p = 1; p < item.count && !found; ++p) {
        const QPointF a = canvas().shownAt(canvas().scene().points()[item.first + p - 1]);
        const QPointF b = canvas().shownAt(canvas().scene().points()[item.first + p]);
        const double length = QLineF(a, b).length();
        const QPointF way = (b - a) / length;
        const double along = QPointF::dotProduct(at - a, way);
        const QPointF aside = at - a - way * along;
        if (along < 0 || along > length || std::hypot(aside.x(), aside.y()) > 0.5) continue;
        const double turned = QPointF::dotProduct(tip - tail, way);
        if (std::fabs(turned) < std::hypot((tip - tail).x(), (tip - tail).y()) * 0.99) continue;
        found = (turned > 0) == (set.value(Quantity::flow, 7, i) > 0);
      }
    }
    EXPECT_TRUE(found) << at.x() << " " << at.y();
  }
}

TEST_F(ResultsTest, HoverTellsAndSeriesFollowTheChosenElements) {
  openBorgo();
  view().clock().setPeriod(7);
  const ResultSet& set = view().results();
  const ResultElement& node = named(set.nodes(), u"MERCATO");
  const auto row = tableOf("Node Results at 7:00:00").at("MERCATO");
  const QString tip = view().tipOf(node.symbol);
  EXPECT_TRUE(tip.startsWith(QStringLiteral("MERCATO\n")));
  for (const double value : row) {
    EXPECT_TRUE(tip.contains(QString::number(value, 'f', 2))) << value << utf8(tip);
  }
  canvas().select({node.symbol});
  ASSERT_EQ(view().series().plot().lines().size(), 1U);
  const SeriesLine& line = view().series().plot().lines()[0];
  EXPECT_EQ(line.name, QStringLiteral("MERCATO"));
  EXPECT_EQ(view().series().quantity(), Quantity::pressure);
  EXPECT_FLOAT_EQ(line.values[7], static_cast<float>(row[2]));
  // A link brings a quantity of links; a click on the plot takes time there.
  canvas().select({named(set.links(), u"C2").course, named(set.links(), u"C1").course});
  EXPECT_EQ(view().series().quantity(), Quantity::flow);
  EXPECT_EQ(view().series().plot().lines().size(), 2U);
  paint();
  SeriesPlot& plot = view().series().plot();
  QTest::mouseClick(&plot, Qt::LeftButton, {}, QPoint(plot.width() * 3 / 4, plot.height() / 2));
  EXPECT_GT(view().clock().period(), 7U);
}

TEST_F(ResultsTest, TheDrawingIsNotTouchedAndIsShownAsItWasAfterwards) {
  const std::string before = drawing().toBytes();
  const QImage shown = canvas().grab().toImage();
  openBorgo();
  paint();
  EXPECT_EQ(drawing().toBytes(), before);
  // An element that goes takes nothing else along.
  const std::uint32_t gone = named(view().results().nodes(), u"ARTIGIANI_3").symbol;
  canvas().select({gone});
  window_->actionFor(QStringLiteral("ERASE"))->trigger();
  take();
  EXPECT_TRUE(view().isOpen());
  view().clock().setPeriod(5);
  paint();
  window_->actionFor(QStringLiteral("UNDO"))->trigger();
  take();
  view().close();
  EXPECT_TRUE(canvas().colours().empty());
  QTest::qWait(20);
  canvas().zoomExtents();
  EXPECT_EQ(canvas().grab().toImage(), shown);
  // Another drawing ends what is shown of this one.
  openBorgo();
  cad::Session::instance().newDrawing();
  window_->runCommand(u"REDRAW");
  take();
  EXPECT_FALSE(view().isOpen());
  EXPECT_FALSE(view().clock().isVisible());
}

TEST_F(ResultsTest, WhatIsNoResultOfThisNetworkIsRefusedWithTheReason) {
  const auto refused = [&](const QString& path) {
    const QString no = view().open(path, u"borgo");
    EXPECT_FALSE(no.isEmpty()) << utf8(path);
    return utf8(no);
  };
  EXPECT_NE(refused(QStringLiteral(VESSORA_EXAMPLES "pieve.rpt")).find("borgo"), std::string::npos);
  refused(folder_.filePath(QStringLiteral("missing.out")));
  QFile cut(folder_.filePath(QStringLiteral("cut.out")));
  ASSERT_TRUE(cut.open(QIODevice::WriteOnly));
  cut.write(QByteArray::fromHex("5cb0c41e64000000"));
  cut.close();
  refused(cut.fileName());
  EXPECT_FALSE(view().isOpen());
  // What is shown stays when something else is refused.
  ASSERT_EQ(utf8(view().open(QStringLiteral(VESSORA_EXAMPLES "borgo.rpt"), u"borgo")), "");
  refused(QStringLiteral(VESSORA_EXAMPLES "pieve.rpt"));
  EXPECT_TRUE(view().isOpen());
  EXPECT_EQ(view().results().periods().size(), 25U);
}

}  // namespace
}  // namespace desktop
