#include <array>
#include <cmath>

#include "cad/view/picture.h"

namespace cad::view {
namespace {

std::uint8_t level(double v) { return static_cast<std::uint8_t>(std::lround(v * 255)); }

Color fromHue(double hue, double saturation, double value) {
  const double h = hue / 60;
  const int sector = static_cast<int>(h) % 6;
  const double f = h - std::floor(h), p = value * (1 - saturation),
               q = value * (1 - saturation * f), t = value * (1 - saturation * (1 - f));
  const std::array<std::array<double, 3>, 6> parts = {
      {{value, t, p}, {q, value, p}, {p, value, t}, {p, q, value}, {t, p, value}, {value, p, q}}};
  const auto& c = parts[static_cast<std::size_t>(sector)];
  return {level(c[0]), level(c[1]), level(c[2])};
}

}  // namespace

// The first nine are named colours, the last six greys; between them 24 hues in steps of 15
// degrees, each in five brightnesses, full (even) and half saturated (odd).
Color indexedColor(int index, bool darkGround) {
  static constexpr Color kNamed[] = {
      {0, 0, 0},   {255, 0, 0},   {255, 255, 0},   {0, 255, 0},     {0, 255, 255},
      {0, 0, 255}, {255, 0, 255}, {255, 255, 255}, {128, 128, 128}, {192, 192, 192}};
  static constexpr std::uint8_t kGreys[] = {51, 80, 105, 130, 190, 255};
  static constexpr double kBrightness[] = {1.0, 0.65, 0.5, 0.3, 0.15};
  if (index == 7 || index < 1 || index > 255) {
    return darkGround ? Color{255, 255, 255} : Color{0, 0, 0};
  }
  if (index < 10) return kNamed[index];
  if (index >= 250) {
    const std::uint8_t g = kGreys[index - 250];
    return {g, g, g};
  }
  return fromHue((index / 10 - 1) * 15.0, index % 2 ? 0.5 : 1.0, kBrightness[index % 10 / 2]);
}

}  // namespace cad::view
