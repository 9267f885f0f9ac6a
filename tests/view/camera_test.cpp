// Pixels and world: one function each way, whatever the view and however dense the pixels.
#include "cad/view/camera.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <set>

#include "cad/view/scene_index.h"

namespace cad::view {
namespace {

void expectNear(const AcGePoint3d& a, const AcGePoint3d& b, double within) {
  EXPECT_NEAR(a.x, b.x, within);
  EXPECT_NEAR(a.y, b.y, within);
  EXPECT_NEAR(a.z, b.z, within);
}

TEST(Camera, PixelsAndWorldAreInverseInEveryView) {
  std::mt19937 random(7);
  std::uniform_real_distribution<double> share(0, 1);
  for (const double dots : {1.0, 1.25, 1.5, 2.0}) {
    for (const double tilt : {0.0, 0.6, 1.2}) {
      Camera camera;
      camera.resize(1280 * dots, 800 * dots);
      camera.fit({1684000, 4850000, 120}, {1686000, 4851000, 300});
      camera.orbit(tilt * 2, tilt);
      for (int i = 0; i < 20; ++i) {
        const AcGePoint3d p(1684000 + 2000 * share(random), 4850000 + 1000 * share(random), 200);
        expectNear(camera.worldOf(camera.pixelOf(p), 200), p, 1e-6);
      }
    }
  }
}

TEST(Camera, FitsTheWholeAndKeepsWhatIsUnderTheCursor) {
  for (const double tilt : {0.0, 0.9}) {
    Camera camera;
    camera.resize(1000, 500);
    camera.orbit(tilt, tilt);
    camera.fit({0, 0, 0}, {4000, 1000, 100});
    for (const AcGePoint3d& p : {AcGePoint3d(0, 0, 0), AcGePoint3d(4000, 1000, 100)}) {
      const Pixel at = camera.pixelOf(p);
      EXPECT_TRUE(at.x >= 0 && at.x <= 1000 && at.y >= 0 && at.y <= 500) << at.x << " " << at.y;
    }
    const AcGePoint3d under = camera.worldOf({730, 120});
    camera.zoom({730, 120}, 3);
    expectNear(camera.worldOf({730, 120}), under, 1e-6);
    camera.pan(40, -25);
    expectNear(camera.worldOf({770, 95}), under, 1e-6);
  }
}

TEST(Camera, StaysWhereNumbersCanTellPixelsApart) {
  Camera camera;
  camera.resize(800, 600);
  camera.look({1e9, 1e9, 0}, 1);
  for (int i = 0; i < 400; ++i) camera.zoom({10, 10}, 2);
  EXPECT_GT(camera.worldOf({11, 10}).x, camera.worldOf({10, 10}).x);
  for (int i = 0; i < 800; ++i) camera.zoom({10, 10}, 0.5);
  EXPECT_TRUE(std::isfinite(camera.worldOf({0, 0}).x));
  camera.fit({5, 5, 0}, {5, 5, 0});  // a single point
  EXPECT_TRUE(camera.unit() > 0 && std::isfinite(camera.unit()));
}

TEST(SceneIndex, FindsWhatEveryBoxMeetsWhileBoxesComeAndGo) {
  std::mt19937 random(11);
  std::uniform_real_distribution<double> place(-50, 1050), size(0, 1);
  SceneIndex index({0, 0, 1000, 1000});
  std::vector<Window> boxes;
  std::vector<bool> there;
  const auto box = [&] {
    const double x = place(random), y = place(random), w = std::pow(size(random), 8) * 900;
    return Window{x, y, x + w, y + w * size(random)};
  };
  for (std::uint32_t i = 0; i < 5000; ++i) {
    boxes.push_back(i % 7 == 0 ? Window{500, 500, 500, 500} : box());  // many in one place
    there.push_back(true);
    index.put(i, boxes.back());
    if (i % 3 == 0) {
      const std::uint32_t gone = i / 2;
      if (there[gone]) index.take(gone, boxes[gone]);
      there[gone] = false;
    }
  }
  for (int i = 0; i < 200; ++i) {
    const Window window = i % 10 == 0 ? Window{500, 500, 500, 500} : box();
    std::multiset<std::uint32_t> found, wanted;
    index.query(window, [&](std::uint32_t id, const Window&) {
      found.insert(id);
      return true;
    });
    for (std::uint32_t k = 0; k < boxes.size(); ++k) {
      if (there[k] && SceneIndex::meets(boxes[k], window)) wanted.insert(k);
    }
    EXPECT_EQ(found, wanted);
  }
}

}  // namespace
}  // namespace cad::view
