// The networks of the open drawing with their elements, for the docks that show them: read anew
// when the drawing has changed and somebody looks.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "cad/drawing/drawing.h"
#include "module/jobs.h"

namespace desktop {

struct ShownNetwork {
  vessora::NetworkInfo info;
  std::vector<vessora::ListedElement> elements;  // by kind and name
};

// An element by its numbers.
struct ElementPlace {
  std::uint32_t network = 0, element = 0;
};

class Networks {
 public:
  // Null for no drawing, which has no networks. False when nothing has changed.
  bool follow(const cad::Drawing* drawing);

  // Reading them takes long enough to be noticed.
  bool areLarge() const { return places_.size() > 20'000; }

  const std::vector<ShownNetwork>& all() const { return networks_; }
  const vessora::ListedElement& at(ElementPlace place) const {
    return networks_[place.network].elements[place.element];
  }
  // The element that an entity belongs to, a symbol or a course; null for others.
  const ElementPlace* placeOf(std::uint32_t record) const;

 private:
  void list();

  std::uint32_t number_ = 0;
  std::uint64_t revision_ = 0;
  std::vector<ShownNetwork> networks_;
  std::unordered_map<std::uint32_t, ElementPlace> places_;  // by record
};

}  // namespace desktop
