#include "module/inp/symbol_scale.h"

#include <algorithm>
#include <cmath>

#include "module/network/schema.h"

namespace vessora {

namespace {

constexpr double kRing = 2, kRingToLink = 0.1;  // a junction's ring, and what it is to a link
constexpr double kLegendWidth = 70, kLegendToPlan = 0.2;

// People read scales: two digits are as good as ten. What no scale can be is 1.
double readable(double scale) {
  if (!(scale > 1e-9 && scale < 1e9)) return 1;
  const double unit = std::pow(10.0, std::floor(std::log10(scale)) - 1);
  // A power of ten below 1 has no exact double; dividing by its inverse gives the nearest number.
  return unit < 1 ? std::round(scale / unit) / std::round(1 / unit)
                  : std::round(scale / unit) * unit;
}

}  // namespace

double planLength(const AcGePoint3dArray& points) {
  double length = 0;
  for (std::size_t i = 1; i < points.size(); ++i) {
    length += std::hypot(points[i].x - points[i - 1].x, points[i].y - points[i - 1].y);
  }
  return length;
}

double fittingScale(std::vector<double> lengths) {
  std::erase_if(lengths, [](double length) { return !(length > 0 && std::isfinite(length)); });
  if (lengths.empty()) return 1;
  const auto median = lengths.begin() + static_cast<std::ptrdiff_t>(lengths.size() / 2);
  std::nth_element(lengths.begin(), median, lengths.end());
  return readable(*median * kRingToLink / kRing);
}

double drawnScale(std::u16string_view network) {
  const NetworkLayers layers(network);
  for (const std::u16string* layer :
       {&layers.junc, &layers.resv, &layers.tank, &layers.valv, &layers.pump}) {
    const SelectionSet set(u"_X", blocksOnLayerFilter(*layer));
    for (int i = set.size() - 1; i >= 0; --i) {
      const Opened<AcDbBlockReference> symbol(set[i]);
      if (symbol) return std::fabs(symbol->scaleFactors().sx);
    }
  }
  return 1;
}

double fittingLegendScale(std::u16string_view network) {
  double low[2] = {1e300, 1e300}, high[2] = {-1e300, -1e300};
  for (const AcDbObjectId id : SelectionSet(u"_X", nodeBlockFilter(NetworkLayers(network)))) {
    const Opened<AcDbBlockReference> node(id);
    if (!node) continue;
    const AcGePoint3d at = node->position();
    low[0] = std::min(low[0], at.x), high[0] = std::max(high[0], at.x);
    low[1] = std::min(low[1], at.y), high[1] = std::max(high[1], at.y);
  }
  const double longer = std::max(high[0] - low[0], high[1] - low[1]);
  return longer > 0 ? readable(longer * kLegendToPlan / kLegendWidth) : 1;
}

}  // namespace vessora
