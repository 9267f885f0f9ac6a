// Results of all periods of one run, for the elements of one network of the open drawing; in the
// drawing's units, as they would be written onto it. Nothing of the drawing is changed or kept.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "epanet/results.h"
#include "module/jobs.h"
#include "platform/result.h"

namespace desktop {

enum class Quantity : std::uint8_t {
  demand,
  head,
  pressure,
  nodeQuality,
  flow,
  velocity,
  headloss,
  linkQuality,
  none
};
inline constexpr std::size_t kQuantities = static_cast<std::size_t>(Quantity::none);
constexpr bool isOfNodes(Quantity q) { return q <= Quantity::nodeQuality; }

// An element, and the records that show it; 0 for none.
struct ResultElement {
  std::u16string name;
  std::uint32_t symbol = 0, course = 0;
  std::uint32_t shown() const { return course ? course : symbol; }
};

class ResultSet {
 public:
  static constexpr float kMissing = std::numeric_limits<float>::quiet_NaN();

  // Reads a report or binary results file for a network. The error says in the user's words why
  // there is nothing to show: a file that cannot be read, a failed run, another network's results.
  static platform::Result<ResultSet> open(vessora::Jobs& jobs, const std::string& path,
                                          std::u16string_view network);

  const std::u16string& network() const { return network_; }
  const std::vector<epanet::Period>& periods() const { return periods_; }
  const std::vector<ResultElement>& nodes() const { return nodes_; }
  const std::vector<ResultElement>& links() const { return links_; }
  const std::vector<ResultElement>& elements(Quantity q) const {
    return isOfNodes(q) ? nodes_ : links_;
  }

  // Whether any element has a value of it in any period.
  bool has(Quantity q) const { return q != Quantity::none && !of(q).empty(); }
  std::string_view unit(Quantity q) const { return units_[static_cast<std::size_t>(q)]; }
  // The values of a period, in the order of its elements: kMissing where there is none. Of a
  // quantity that is there.
  std::span<const float> values(Quantity q, std::size_t period) const {
    const std::size_t count = elements(q).size();
    return std::span<const float>(of(q)).subspan(period * count, count);
  }
  float value(Quantity q, std::size_t period, std::size_t element) const {
    return has(q) ? values(q, period)[element] : kMissing;
  }

 private:
  class Reader;
  const std::vector<float>& of(Quantity q) const { return values_[static_cast<std::size_t>(q)]; }

  std::u16string network_;
  std::vector<epanet::Period> periods_;
  std::vector<ResultElement> nodes_, links_;
  std::array<std::vector<float>, kQuantities> values_;  // period by period
  std::array<std::string, kQuantities> units_;
};

}  // namespace desktop
