// Where things lie in plan: a quad tree of boxes, for culling, picking and snapping.
//
// A cell is twice as wide as its share of the ground, so that no small box is kept high up because
// it lies on a border; a cell is divided when it holds many boxes that are small enough for its
// parts. Putting in and taking out cost the depth of the tree; a query costs what it finds and the
// cells on its border.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "cad/view/painter.h"

namespace cad::view {

class CAD_API SceneIndex {
 public:
  // The ground that the tree divides; what lies beyond it is found all the same.
  explicit SceneIndex(const Window& ground = {0, 0, 1, 1});

  void put(std::uint32_t id, const Window& box);
  // The box with which it was put.
  void take(std::uint32_t id, const Window& box);

  // Calls `visit(id, box)` for each box that meets the window, borders counted, in no order; ends
  // when it returns false.
  template <class Visit>
  void query(const Window& window, Visit&& visit) const {
    std::vector<std::uint32_t> open{0};
    while (!open.empty()) {
      const Node& node = nodes_[open.back()];
      open.pop_back();
      if (node.below == 0) continue;
      for (const Entry& e : node.entries) {
        if (meets(e.box, window) && !visit(e.id, e.box)) return;
      }
      for (const std::uint32_t child : node.children) {
        if (child && meets(nodes_[child].cell, window)) open.push_back(child);
      }
    }
  }

  std::size_t size() const { return nodes_.front().below; }
  static bool meets(const Window& a, const Window& b) {
    return a.x1 <= b.x2 && b.x1 <= a.x2 && a.y1 <= b.y2 && b.y1 <= a.y2;
  }

 private:
  struct Entry {
    std::uint32_t id;
    Window box;
  };
  struct Node {
    Window cell;              // twice as wide as its share
    std::uint32_t below = 0;  // entries here and in all children
    std::array<std::uint32_t, 4> children{};
    std::vector<Entry> entries;
    bool divided = false;  // small boxes belong to its parts
  };
  // The part of a node to which a box belongs, or 4 when it is too large for any.
  static std::size_t partOf(const Node& node, const Window& box);
  void divide(std::uint32_t node);

  std::vector<Node> nodes_;
};

}  // namespace cad::view
