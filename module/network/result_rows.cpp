#include "module/network/result_rows.h"

#include "platform/text.h"

namespace vessora {

QueryFilter rowsBetween(const std::vector<QueryRow>& rows, Quantity quantity, double above,
                        double below) {
  QueryFilter filter;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const double value = platform::wtof(rows[i].values[placeOf(quantity)]);
    if (value > above && value < below) filter.push_back(static_cast<std::uint32_t>(i));
  }
  return filter;
}

std::vector<QueryRow> rowsAt(const std::vector<QueryRow>& rows, const QueryFilter& filter) {
  std::vector<QueryRow> chosen;
  chosen.reserve(filter.size());
  for (const std::uint32_t i : filter) chosen.push_back(rows[i]);
  return chosen;
}

}  // namespace vessora
