// How long the window's canvas takes: frames, picks and colours of drawings of growing size, on
// images in memory.
//
//   build/release/bench/bench_canvas [--large] [DRAWING.dxf]
#include <QGuiApplication>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

#include "apps/desktop/canvas/scene_painter.h"
#include "bench/make_drawing.h"
#include "cad/editor/session.h"
#include "cad/view/snap.h"

namespace {

using Clock = std::chrono::steady_clock;

// Milliseconds: the median of several goes, and the longest.
struct Times {
  double median = 0, longest = 0;
};
Times time(int goes, const std::function<void(int)>& work) {
  std::vector<double> all;
  for (int i = 0; i < goes; ++i) {
    const auto begin = Clock::now();
    work(i);
    all.push_back(std::chrono::duration<double, std::milli>(Clock::now() - begin).count());
  }
  std::sort(all.begin(), all.end());
  return {all[all.size() / 2], all.back()};
}

void show(const char* what, const Times& times) {
  std::printf("  %-34s %9.2f ms, at most %9.2f\n", what, times.median, times.longest);
}

int measure(const std::string& path) {
  cad::Session& session = cad::Session::instance();
  std::vector<std::string> warnings;
  if (const auto opened = session.openDrawing(path, warnings); !opened) {
    std::fprintf(stderr, "bench_canvas: %s\n", opened.error().c_str());
    return 1;
  }
  cad::Drawing& drawing = session.database()->drawing();
  cad::view::Scene scene;
  desktop::ScenePainter painter;
  cad::view::Camera camera;
  camera.resize(1600, 1000);
  QImage image(1600, 1000, QImage::Format_RGB32);
  const desktop::CanvasLook look;
  const auto frame = [&](const desktop::ThingColours* colours = nullptr) {
    painter.paint(image, scene, &drawing, camera, look, colours);
  };
  const auto whole = [&] {
    const cad::view::Window all = scene.bounds().value_or(cad::view::Window{0, 0, 1, 1});
    camera.fit({all.x1, all.y1, 0}, {all.x2, all.y2, 0});
  };
  const Times first = time(1, [&](int) {
    scene.update(drawing);
    whole();
    frame();
  });
  std::size_t vertices = 0;
  for (const cad::view::SceneItem& item : scene.items()) vertices += item.count;
  std::printf("%s: things %zu, vertices %zu\n", path.c_str(), scene.things().size(), vertices);
  show("first paint after reading", first);
  show("nothing has changed", time(9, [&](int) { scene.update(drawing); }));
  show("the drawing may have changed", time(9, [&](int) {
         drawing.history().touch();
         scene.update(drawing);
       }));
  show("frame of the whole, panned", time(15, [&](int i) {
         camera.pan(i % 2 ? 7 : -7, 3);
         frame();
       }));
  show("frame while zooming in", time(25, [&](int) {
         camera.zoom({700, 400}, 1.3);
         frame();
       }));
  whole();
  camera.orbit(-0.6, 0.95);
  show("frame in 3D", time(9, [&](int i) {
         camera.orbit(camera.turn() + 0.01 * i, camera.tilt());
         frame();
       }));
  camera.plan();
  whole();
  desktop::ThingColours colours(scene.things().size());
  show("colours of a period", time(9, [&](int go) {
         constexpr QRgb kClasses[] = {0xff0000ff, 0xff00ffff, 0xff00ff00, 0xffffff00, 0xffff0000};
         for (std::size_t i = 0; i < colours.size(); ++i) {
           colours[i] = kClasses[(i + static_cast<std::size_t>(go)) % 5];
         }
         frame(&colours);
       }));
  camera.zoom({800, 500}, 20);
  show("pick and snap", time(99, [&](int i) {
         const cad::view::Pixel at{16.0 * i, 10.0 * i};
         cad::view::snapAt(scene, camera, at);
         cad::view::thingsAt(scene, camera, at, 6);
       }));
  session.closeDrawing();
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  setenv("QT_QPA_PLATFORM", "offscreen", 1);
  const QGuiApplication application(argc, argv);
  std::vector<std::size_t> sizes{10000, 100000};
  for (int i = 1; i < argc; ++i) {
    if (std::string(argv[i]) != "--large") return measure(argv[i]);
    sizes.push_back(333334);  // three vertices each
  }
  for (const std::size_t size : sizes) {
    const std::string path = "/dev/shm/vessora-canvas.dxf";
    if (const auto made = bench::makeDrawing(size, path); !made) {
      std::fprintf(stderr, "bench_canvas: %s\n", made.error().c_str());
      return 1;
    }
    const int status = measure(path);
    std::remove(path.c_str());
    if (status != 0) return status;
  }
  return 0;
}
