// Any bytes as an input file: unedited they come back, places lead to words, and a file in other
// units has the elements that it had.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "epanet/convert.h"

namespace {

using namespace epanet;

void check(bool holds) {
  if (!holds) std::abort();
}

void checkPlaces(const Document& document, const Network& network, const Record& record) {
  Tokens tokens;
  const auto checkPlace = [&](Place at) {
    check(at.row < document.rows().size());
    document.tokens(at.row, tokens);
    check(at.token < tokens.count);
  };
  for (const Measure& measure : record.measures) checkPlace(measure.number.at);
  for (const Mention& mention : record.mentions) {
    checkPlace(mention.at);
    const std::size_t counts[] = {network.nodes.size(), network.links.size(),
                                  network.patterns.size(), network.curves.size()};
    check(mention.index < counts[static_cast<std::size_t>(mention.thing)]);
  }
  for (const Problem& problem : network.problems) {
    check(problem.row == kNoRow || problem.row < document.rows().size());
  }
  for (const Node& node : network.nodes) {
    check((node.kind == NodeKind::tank) == (node.tank < network.tanks.size()));
  }
  for (const Link& link : network.links) {
    check(link.node1.index < network.nodes.size() && link.node2.index < network.nodes.size());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const Document document(bytes);
  check(Editor(document).apply().text == bytes);
  Record record;
  const Network network(document, &record);
  checkPlaces(document, network, record);
  const FlowUnits target = size % 2 ? FlowUnits::gpm : FlowUnits::cmh;
  const SolverVersion runBy = size % 3 ? SolverVersion::v23 : SolverVersion::v22;
  const Document changed(convert(document, network, record, target, runBy).edit.text);
  const Network again(changed);
  // Where the solver reads a row in pieces, a longer value moves what the next piece begins with.
  for (const Network* one : {&network, &again}) {
    for (const Problem& problem : one->problems) {
      if (problem.fault == Fault::longRow) return 0;
    }
  }
  check(again.nodes.size() == network.nodes.size());
  check(again.links.size() == network.links.size());
  check(again.patterns.size() == network.patterns.size());
  return 0;
}
