// The elements of a network by kind and name, as lists and trees show them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "module/host/host_values.h"

namespace vessora {

enum class ElementKind { junction, reservoir, tank, pipe, pump, valve };
constexpr bool isNode(ElementKind kind) { return kind <= ElementKind::tank; }

struct ListedElement {
  AcDbObjectId id;      // of a symbol, of a pipe's polyline
  AcDbObjectId course;  // of a pump or valve: its polyline; null without one
  ElementKind kind = ElementKind::junction;
  std::u16string name;
  std::u16string node1, node2;  // that a link names
};

// All elements, in drawing order. Where attribute and imported name of a block differ, the imported
// one counts. Empty for a network that is not in the drawing.
std::vector<ListedElement> elementsOf(std::u16string_view network);

}  // namespace vessora
