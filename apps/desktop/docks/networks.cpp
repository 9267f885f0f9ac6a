#include "apps/desktop/docks/networks.h"

#include <algorithm>

#include "apps/desktop/docks/natural_order.h"

namespace desktop {

using vessora::ListedElement;

bool Networks::follow(const cad::Drawing* drawing) {
  const std::uint32_t number = drawing ? drawing->number() : 0;
  const std::uint64_t revision = drawing ? drawing->revision() : 0;
  if (number == number_ && revision == revision_) return false;
  number_ = number;
  revision_ = revision;
  networks_.clear();
  places_.clear();
  if (drawing) list();
  return true;
}

void Networks::list() {
  vessora::Jobs* const jobs = vessora::Jobs::find();
  if (!jobs) return;
  for (vessora::NetworkInfo& info : jobs->networks()) {
    ShownNetwork& network = networks_.emplace_back();
    network.elements = jobs->elementsOf(info.name);
    network.info = std::move(info);
    std::stable_sort(network.elements.begin(), network.elements.end(),
                     [](const ListedElement& a, const ListedElement& b) {
                       return a.kind != b.kind ? a.kind < b.kind : isBefore(a.name, b.name);
                     });
    ElementPlace place{static_cast<std::uint32_t>(networks_.size() - 1), 0};
    for (const ListedElement& element : network.elements) {
      places_.emplace(element.id.index(), place);
      if (!element.course.isNull()) places_.emplace(element.course.index(), place);
      ++place.element;
    }
  }
}

const ElementPlace* Networks::placeOf(std::uint32_t record) const {
  const auto found = places_.find(record);
  return found == places_.end() ? nullptr : &found->second;
}

}  // namespace desktop
