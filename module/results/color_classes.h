// Colour classes of a result: equal ranges from the lowest value upward, each with its colour.
#pragma once

#include <vector>

namespace vessora {

struct ColorClasses {
  double low = 0;    // lower bound of the first class
  double width = 0;  // of each class, in three decimals
  int count = 5;

  // Classes for these values. The highest value counts as positive, so that `low` is the only bound
  // that can be negative. Because the width has three decimals, the top values can lie beyond the
  // last class; where the values span next to nothing, the width is 0 and no class holds any.
  // Without values the bounds mean nothing.
  static ColorClasses of(const std::vector<double>& values, int count);

  // The class of a value, lower bound included and upper bound not, or -1. Bounds add up class by
  // class.
  int find(double value) const;
  // Calls visit(lower, upper) for each class.
  template <class Visit>
  void forEach(Visit visit) const {
    double lower = low;
    for (int i = 0; i < count; ++i, lower += width) visit(lower, lower + width);
  }
  // The host colour of a class, for 5 or 10 of them.
  int color(int index) const;
};

}  // namespace vessora
