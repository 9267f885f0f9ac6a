// Any bytes as an EPANET input file: reading must end, and every text of a record must be whole.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "module/inp/inp_reader.h"

namespace {

template <std::size_t N>
void check(const platform::Wide<N>& field) {
  if (field.size() >= N) std::abort();
}

template <class List>
void checkLinks(const List& links) {
  for (const auto& link : links) {
    check(link.id);
    check(link.node1);
    check(link.node2);
    check(link.status);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  vessora::EpaNetwork network;
  vessora::EpaSettings settings;
  vessora::parseInp(std::string(reinterpret_cast<const char*>(data), size), network, settings);
  for (const auto& j : network.juncs) {
    check(j.id);
    check(j.elev);
    check(j.demand);
    check(j.emitter);
    check(j.pattern);
  }
  checkLinks(network.pipes);
  checkLinks(network.pumps);
  checkLinks(network.valves);
  for (const auto& c : network.coords) {
    check(c.x);
    check(c.y);
  }
  for (const auto& curve : network.curves) check(curve.kind);
  check(settings.wallOrder);
  check(settings.duration);
  return 0;
}
