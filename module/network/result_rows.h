// Rows of results as they are listed: the elements of a network, or those that passed a filter.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/wide.h"

namespace vessora {

// One listed element: its name and its four results, as shown; "-" for those that are not there.
struct QueryRow {
  std::u16string id;
  std::array<std::u16string, 4> values;
};

struct EpaPipeMaterial {
  platform::wide256 id;
  platform::wide256 material;
};

// In drawing order.
struct QueryRows {
  std::vector<QueryRow> nodes;                 // demand, head, pressure, quality
  std::vector<QueryRow> links;                 // flow, velocity, headloss, status
  std::vector<EpaPipeMaterial> pipeMaterials;  // of the pipes that have one
};

// What rows are filtered and elements are coloured by.
enum class Quantity { none, pressure, demand, flow, velocity };
constexpr bool isOfNodes(Quantity q) { return q == Quantity::pressure || q == Quantity::demand; }
// Its place in QueryRow::values.
constexpr std::size_t placeOf(Quantity q) {
  return q == Quantity::pressure ? 2 : q == Quantity::velocity ? 1 : 0;
}

// Which rows of a list passed a filter, in their order.
using QueryFilter = std::vector<std::uint32_t>;
// Those whose quantity lies between two bounds, both excluded; "-" counts as 0.
QueryFilter rowsBetween(const std::vector<QueryRow>& rows, Quantity quantity, double above,
                        double below);
std::vector<QueryRow> rowsAt(const std::vector<QueryRow>& rows, const QueryFilter& filter);

}  // namespace vessora
