#include "module/results/color_classes.h"

#include <cmath>
#include <limits>

#include "platform/format.h"
#include "platform/text.h"

namespace vessora {

namespace {

// Beyond the range of single precision a value is infinite.
float single(double value) {
  constexpr double kMost = std::numeric_limits<float>::max();
  if (value > kMost) return std::numeric_limits<float>::infinity();
  if (value < -kMost) return -std::numeric_limits<float>::infinity();
  return static_cast<float>(value);
}

}  // namespace

ColorClasses ColorClasses::of(const std::vector<double>& values, int count) {
  double highest = std::numeric_limits<double>::min();
  double lowest = std::numeric_limits<double>::max();
  for (const double value : values) {
    if (value > highest) highest = value;
    if (value < lowest) lowest = value;
  }
  const double low = std::floor(single(lowest));
  const double high = highest >= 1.0 ? std::ceil(single(highest))
                                     : static_cast<double>(std::ceil(single(highest * 100))) / 100;
  return {low, platform::wtof(platform::format(u"%.3lf", (high - low) / count)), count};
}

int ColorClasses::find(double value) const {
  double lower = low;
  for (int i = 0; i < count; ++i, lower += width) {
    if (lower <= value && value < lower + width) return i;
  }
  return -1;
}

int ColorClasses::color(int index) const {
  static constexpr int kFive[] = {5, 4, 3, 2, 1};
  static constexpr int kTen[] = {180, 150, 130, 110, 90, 60, 50, 40, 30, 10};
  return count == 10 ? kTen[index] : kFive[index];
}

}  // namespace vessora
