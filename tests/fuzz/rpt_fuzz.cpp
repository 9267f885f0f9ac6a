// Any bytes as a report: the rows that lists give on demand must be those of a plain reading.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "module/results/rpt_reader.h"
#include "tests/results/plain_rpt.h"

namespace {

using namespace vessora;

void check(bool holds) {
  if (!holds) std::abort();
}

void checkSinglePeriod(const RptFile& report, const std::string& bytes) {
  NodeResultList nodes;
  LinkResultList links;
  if (ReadRpt(report, nodes, links) != kRptSinglePeriod) return;
  const PlainRows plain = readPlainly(bytes, "", "");
  check(agrees(nodes, plain.nodes));
  check(agrees(links, plain.links));
}

void checkPeriod(const RptFile& report, const std::string& bytes, const std::u16string& time,
                 bool lowerCaseHrs) {
  NodeResultList nodes;
  LinkResultList links;
  ReadRptPeriod(report, nodes, links, time, lowerCaseHrs);
  const std::string at = " at " + platform::narrow(time);
  const PlainRows plain = readPlainly(bytes, at + (lowerCaseHrs ? " hrs" : " Hrs"), at + " Hrs");
  check(agrees(nodes, plain.nodes));
  check(agrees(links, plain.links));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const RptFile report = std::make_shared<const RptText>(bytes);
  checkSinglePeriod(report, bytes);
  std::vector<std::u16string> steps;
  ListRptTimeSteps(report, steps);
  for (std::size_t i = 0; i < steps.size() && i < 3; ++i) {
    checkPeriod(report, bytes, steps[i], true);
    checkPeriod(report, bytes, steps[i], false);
  }
  return 0;
}
