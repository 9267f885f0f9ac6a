#include "epanet/results.h"

#include <cstdio>
#include <functional>

#include "epanet/output.h"
#include "epanet/report.h"
#include "epanet/result_units.h"

namespace epanet {

std::int64_t secondsOf(std::string_view time) {
  std::int64_t parts[3] = {0, 0, 0};
  int count = 0;
  std::size_t digits = 0;
  for (const char c : time) {
    if (c == ':') {
      if (digits == 0 || ++count > 2) return -1;
      digits = 0;
    } else if (c >= '0' && c <= '9' && ++digits <= 9) {
      parts[count] = parts[count] * 10 + (c - '0');
    } else {
      return -1;
    }
  }
  if (digits == 0 || count == 0 || parts[1] > 59 || parts[2] > 59) return -1;
  return (parts[0] * 60 + parts[1]) * 60 + parts[2];
}

std::string timeText(std::int64_t seconds) {
  char text[40];
  std::snprintf(text, sizeof text, "%lld:%02d:%02d", static_cast<long long>(seconds / 3600),
                static_cast<int>(seconds / 60 % 60), static_cast<int>(seconds % 60));
  return text;
}

// --- rows by id ----------------------------------------------------------------------------------

template <class Values>
const Values* ValueTable<Values>::find(std::string_view id) const {
  if (slots_.empty()) return nullptr;
  const std::size_t mask = slots_.size() - 1;
  for (std::size_t at = std::hash<std::string_view>()(id) & mask; slots_[at] != 0;
       at = (at + 1) & mask) {
    const Row& row = rows_[slots_[at] - 1];
    if (row.id == id) return &row.values;
  }
  return nullptr;
}

template <class Values>
void ValueTable<Values>::index() {
  std::size_t size = 8;
  while (size < rows_.size() * 2) size *= 2;
  slots_.assign(size, 0);
  const std::size_t mask = size - 1;
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    std::size_t at = std::hash<std::string_view>()(rows_[i].id) & mask;
    while (slots_[at] != 0 && rows_[slots_[at] - 1].id != rows_[i].id) at = (at + 1) & mask;
    if (slots_[at] == 0) slots_[at] = static_cast<std::uint32_t>(i + 1);
  }
}

template class ValueTable<NodeValues>;
template class ValueTable<LinkValues>;

// --- units ---------------------------------------------------------------------------------------

namespace {

// The factors of several units, until one is not known.
class Factors {
 public:
  double of(ResultQuantity quantity, const std::string& unit) {
    if (unit.empty()) return 1;  // no such value
    const auto factor = drawingFactor(quantity, unit);
    if (!factor && unknown_.empty()) unknown_ = unit;
    return factor.value_or(1);
  }
  const std::string& unknown() const { return unknown_; }

 private:
  std::string unknown_;
};

void scale(std::optional<double>& value, double factor) {
  if (value) *value *= factor;
}

}  // namespace

std::string convertToDrawing(PeriodValues& values) {
  using Q = ResultQuantity;
  Factors factors;
  ValueUnits& u = values.units;
  const double demand = factors.of(Q::flow, u.demand), head = factors.of(Q::length, u.head);
  const double pressure = factors.of(Q::pressure, u.pressure), flow = factors.of(Q::flow, u.flow);
  const double velocity = factors.of(Q::velocity, u.velocity);
  const double loss = factors.of(Q::headloss, u.headloss);
  if (!factors.unknown().empty()) return factors.unknown();
  values.nodes.forEach([&](NodeValues& v) {
    scale(v.demand, demand);
    scale(v.head, head);
    scale(v.pressure, pressure);
  });
  values.links.forEach([&](LinkValues& v) {
    scale(v.flow, flow);
    scale(v.velocity, velocity);
    if (!v.isPipe) scale(v.headloss, loss);
  });
  u.demand = u.flow = "LPS";
  u.head = u.pressure = "m";
  u.velocity = "m/s";
  u.headloss = "m/km";
  return {};
}

// --- opening -------------------------------------------------------------------------------------

OpenedResults openResults(std::string bytes) {
  if (!Output::looksLikeOne(bytes)) return {std::make_shared<Report>(std::move(bytes))};
  return Output::open(std::move(bytes));
}

}  // namespace epanet
