#include <array>
#include <cmath>

#include "cad/view/picture.h"
#include "cad/view/placed.h"

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

// How bright a part of a colour shines, and back.
double shining(double part) {
  return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
}
double shown(double light) {
  return light <= 0.0031308 ? light * 12.92 : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
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

Shade shownOn(const Color& c, bool dark) {
  // Thin lines and letters need a third of the contrast of black on white, or nearly: what is
  // brighter keeps its hue and is dimmed.
  constexpr double kBrightestOnWhite = 0.25, kDarkestOnDark = 0.18;
  double r = shining(c.red / 255.0), g = shining(c.green / 255.0), b = shining(c.blue / 255.0);
  const double light = 0.2126 * r + 0.7152 * g + 0.0722 * b;
  if (!dark && light > kBrightestOnWhite) {
    const double f = kBrightestOnWhite / light;
    r *= f, g *= f, b *= f;
  }
  if (dark && light < kDarkestOnDark) {
    const double lift = (kDarkestOnDark - light) / (1 - light);
    r += (1 - r) * lift, g += (1 - g) * lift, b += (1 - b) * lift;
  }
  return {shown(r), shown(g), shown(b)};
}

}  // namespace cad::view
