// How long results in time take in the window: opening a run, and another period of it on the
// canvas, for networks of growing size.
//
//   build/release/bench/bench_results
#include <QApplication>
#include <QMainWindow>
#include <QVBoxLayout>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

#include "apps/desktop/canvas/canvas.h"
#include "apps/desktop/qt_frontend.h"
#include "apps/desktop/results/results_view.h"
#include "apps/desktop/text.h"
#include "apps/program/host.h"
#include "bench/make_grid.h"
#include "bench/make_report.h"
#include "platform/text.h"

namespace {

using Clock = std::chrono::steady_clock;

void time(const char* what, int goes, const std::function<void(int)>& work) {
  std::vector<double> all;
  for (int i = 0; i < goes; ++i) {
    const auto begin = Clock::now();
    work(i);
    all.push_back(std::chrono::duration<double, std::milli>(Clock::now() - begin).count());
  }
  std::sort(all.begin(), all.end());
  std::printf("  %-44s %9.2f ms, at most %9.2f\n", what, all[all.size() / 2], all.back());
}

constexpr int kPeriods = 25;

bool measure(std::size_t nodes) {
  const std::string inp = "/dev/shm/vessora-results.inp", out = "/dev/shm/vessora-results.out";
  if (!bench::makeGrid(nodes, inp) || !bench::makeOutput(inp, kPeriods, out)) return false;
  desktop::QtFrontend ui;
  if (const auto started = program::startHost(ui, program::InpMode::full); !started) {
    std::fprintf(stderr, "bench_results: %s\n", started.error().c_str());
    return false;
  }
  cad::Session::instance().newDrawing();
  vessora::Jobs& jobs = *vessora::Jobs::find();
  std::u16string network;
  {
    const vessora::InpFile file = jobs.openInp(platform::widen(inp));
    network = jobs.examineInp(file).name;
    jobs.importInp(file, network, std::nullopt);
  }
  {
    QMainWindow window;
    auto* const middle = new QWidget(&window);
    auto* const column = new QVBoxLayout(middle);
    auto* const canvas = new desktop::Canvas(ui.prompts(), middle);
    column->addWidget(canvas, 1);
    window.setCentralWidget(middle);
    window.resize(1600, 1000);
    desktop::ResultsView view(*canvas, *column, window);
    window.show();
    canvas->setDrawing(&cad::Session::instance().database()->drawing());
    QString fault;
    time("a run opened", 1, [&](int) { fault = view.open(desktop::qt(out), network); });
    if (!fault.isEmpty()) {
      std::fprintf(stderr, "bench_results: %s\n", desktop::utf8(fault).c_str());
      return false;
    }
    std::printf("nodes %zu, links %zu, periods %d\n", view.results().nodes().size(),
                view.results().links().size(), kPeriods);
    QImage image(canvas->size(), QImage::Format_RGB32);
    canvas->render(&image);
    desktop::Colours colours(jobs);
    time("classes and colours of a period", 9, [&](int i) {
      colours.colours(view.results(), view.clock().wishes(), static_cast<std::size_t>(i), true);
    });
    const auto step = [&](int i) {
      view.clock().setPeriod(static_cast<std::size_t>(i + 1) % kPeriods);
      canvas->render(&image);
    };
    time("another period, the whole network", 15, step);
    canvas->zoomBy(20);
    desktop::ResultWishes wishes = view.clock().wishes();
    wishes.values = true;
    view.clock().setWishes(wishes);
    time("another period, near, with values and arrows", 15, step);
  }
  cad::Session::instance().closeDrawing();
  program::stopHost();
  std::remove(inp.c_str());
  std::remove(out.c_str());
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  setenv("QT_QPA_PLATFORM", "offscreen", 1);
  const QApplication application(argc, argv);
  for (const std::size_t nodes : {5000, 50000}) {
    if (!measure(nodes)) return 1;
  }
  return 0;
}
