// Any bytes as a binary results file: what is taken lies within them, and has all its periods.
#include "epanet/output.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

void check(bool holds) {
  if (!holds) std::abort();
}

void checkPeriod(const epanet::Output& output, std::size_t k) {
  const epanet::PeriodValues values = output.values(k);
  check(values.nodes.rows().size() == output.nodeCount());
  check(values.links.rows().size() == output.linkCount());
  for (const auto& row : values.nodes.rows()) {
    check(values.nodes.find(row.id) != nullptr);
    check(!row.values.head || std::isfinite(*row.values.head));
  }
  for (const auto& row : values.links.rows()) check(values.links.find(row.id) != nullptr);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto opened = epanet::Output::open(std::string(reinterpret_cast<const char*>(data), size));
  check((opened.results == nullptr) == (opened.fault != epanet::OutputFault::none));
  if (!opened.results) return 0;
  const auto& output = dynamic_cast<const epanet::Output&>(*opened.results);
  check(!output.periods().empty());
  checkPeriod(output, 0);
  checkPeriod(output, output.periods().size() - 1);
  for (const epanet::PumpUse& use : output.pumpUses()) {
    check(static_cast<std::size_t>(use.link) < output.linkCount());
  }
  return 0;
}
