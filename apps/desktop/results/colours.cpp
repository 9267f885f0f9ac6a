#include "apps/desktop/results/colours.h"

#include <algorithm>
#include <cmath>

#include "cad/view/scene_labels.h"
#include "platform/decimals.h"
#include "platform/text.h"

namespace desktop {

double listed(float value) {
  const double thousands = static_cast<double>(value) * 1000;
  // Near the middle between two decimals the exact number decides, which a product is not.
  if (std::fabs(thousands - std::floor(thousands) - 0.5) < 1e-6) {
    return platform::wtof(platform::threeDecimals(static_cast<double>(value)));
  }
  return std::nearbyint(thousands) / 1000;
}

vessora::ValueClasses Colours::classesOf(const ResultSet& set, Quantity q,
                                         const ResultWishes& wishes, std::size_t period) {
  if (!set.has(q)) return {};
  // Of all values the least and the greatest alone count.
  float low = ResultSet::kMissing, high = ResultSet::kMissing;
  const std::size_t first = wishes.fixed ? 0 : period,
                    last = wishes.fixed ? set.periods().size() - 1 : period;
  for (std::size_t k = first; k <= last; ++k) {
    for (const float value : set.values(q, k)) {
      if (std::isnan(value)) continue;
      low = std::fmin(low, value);
      high = std::fmax(high, value);
    }
  }
  if (std::isnan(low)) return {};
  return jobs_.classesOf({listed(low), listed(high)}, wishes.classCount);
}

void Colours::follow(const ResultSet& set, const ResultWishes& wishes, std::size_t period) {
  nodes_.classes = classesOf(set, wishes.node, wishes, period);
  links_.classes = classesOf(set, wishes.link, wishes, period);
}

QRgb Colours::shown(int hostColour, bool dark) {
  cad::view::Pen pen;
  pen.index = hostColour;
  const cad::view::Color c = cad::view::shownColor(pen, dark);
  return qRgb(c.red, c.green, c.blue);
}

void Colours::paint(const ResultSet& set, Quantity q, Side& side, std::size_t period, bool dark) {
  side.rest = false;
  if (!set.has(q)) return;
  std::vector<QRgb> palette;
  for (const auto& c : side.classes.classes) palette.push_back(shown(c.color, dark));
  const auto values = set.values(q, period);
  const std::vector<ResultElement>& elements = set.elements(q);
  for (std::size_t i = 0; i < elements.size(); ++i) {
    const int index = std::isnan(values[i]) ? -1 : side.classes.find(listed(values[i]));
    if (index < 0) side.rest = true;
    const QRgb colour = index < 0 ? rest(dark) : palette[static_cast<std::size_t>(index)];
    if (elements[i].symbol) colours_.emplace_back(elements[i].symbol, colour);
    if (elements[i].course) colours_.emplace_back(elements[i].course, colour);
  }
}

const Colours::OfRecords& Colours::colours(const ResultSet& set, const ResultWishes& wishes,
                                           std::size_t period, bool dark) {
  colours_.clear();
  follow(set, wishes, period);
  paint(set, wishes.node, nodes_, period, dark);
  paint(set, wishes.link, links_, period, dark);
  return colours_;
}

}  // namespace desktop
