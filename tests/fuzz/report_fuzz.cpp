// Any bytes as a report: every period can be read, and every row is found by its id.
#include "epanet/report.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

void check(bool holds) {
  if (!holds) std::abort();
}

template <class Values>
void checkRows(const epanet::ValueTable<Values>& table, std::string_view bytes) {
  for (const auto& row : table.rows()) {
    check(!row.id.empty());
    check(row.id.data() >= bytes.data() && row.id.data() + row.id.size() <= &bytes.back() + 1);
    const Values* const found = table.find(row.id);
    check(found && found <= &row.values);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const epanet::Report report(std::string(reinterpret_cast<const char*>(data), size));
  for (const epanet::ReportMessage& message : report.messages()) check(message.line > 0);
  for (std::size_t k = 0; k < report.periods().size() && k < 4; ++k) {
    epanet::PeriodValues values = report.values(k);
    check(values.hasNodes == (report.nodeHead(k) != nullptr));
    check(values.hasLinks == (report.linkHead(k) != nullptr));
    checkRows(values.nodes, report.bytes());
    checkRows(values.links, report.bytes());
    epanet::convertToDrawing(values);
  }
  return 0;
}
