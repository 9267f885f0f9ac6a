#include "cad/view/scene_index.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace cad::view {
namespace {

constexpr std::size_t kMany = 32;   // boxes in a cell
constexpr double kSmallest = 1e-6;  // share of the ground

// A share of the ground and the cell around it.
Window widened(const Window& w) {
  const double x = (w.x2 - w.x1) / 2, y = (w.y2 - w.y1) / 2;
  return {w.x1 - x, w.y1 - y, w.x2 + x, w.y2 + y};
}
Window narrowed(const Window& cell) {
  const double x = (cell.x2 - cell.x1) / 4, y = (cell.y2 - cell.y1) / 4;
  return {cell.x1 + x, cell.y1 + y, cell.x2 - x, cell.y2 - y};
}

}  // namespace

SceneIndex::SceneIndex(const Window& ground) {
  const double side = std::max({ground.x2 - ground.x1, ground.y2 - ground.y1, 1e-9});
  const double x = (ground.x1 + ground.x2) / 2, y = (ground.y1 + ground.y2) / 2;
  Node root;
  root.cell = widened({x - side / 2, y - side / 2, x + side / 2, y + side / 2});
  nodes_.push_back(std::move(root));
}

std::size_t SceneIndex::partOf(const Node& node, const Window& box) {
  const Window share = narrowed(node.cell);
  const double half = (share.x2 - share.x1) / 2;
  const double x = (box.x1 + box.x2) / 2, y = (box.y1 + box.y2) / 2;
  const double size = std::max(box.x2 - box.x1, box.y2 - box.y1);
  // In the part whose share holds its middle a box of that share's size has room.
  if (!(size <= half) || x < share.x1 || x > share.x2 || y < share.y1 || y > share.y2) return 4;
  return (x > share.x1 + half ? 1U : 0U) + (y > share.y1 + half ? 2U : 0U);
}

void SceneIndex::divide(std::uint32_t at) {
  nodes_[at].divided = true;
  std::vector<Entry> entries = std::exchange(nodes_[at].entries, {});
  for (const Entry& e : entries) {
    const std::size_t part = partOf(nodes_[at], e.box);
    if (part == 4) {
      nodes_[at].entries.push_back(e);
      continue;
    }
    if (!nodes_[at].children[part]) {
      const Window share = narrowed(nodes_[at].cell);
      const double half = (share.x2 - share.x1) / 2;
      const double left = share.x1 + (part & 1 ? half : 0), low = share.y1 + (part & 2 ? half : 0);
      nodes_[at].children[part] = static_cast<std::uint32_t>(nodes_.size());
      Node child;
      child.cell = widened({left, low, left + half, low + half});
      nodes_.push_back(std::move(child));
    }
    Node& child = nodes_[nodes_[at].children[part]];
    child.entries.push_back(e);
    ++child.below;
  }
}

void SceneIndex::put(std::uint32_t id, const Window& box) {
  std::uint32_t at = 0;
  for (;;) {
    ++nodes_[at].below;
    const Node& node = nodes_[at];
    if (!node.divided) {
      const Window& ground = nodes_.front().cell;
      const bool small = node.cell.x2 - node.cell.x1 < kSmallest * (ground.x2 - ground.x1);
      if (node.entries.size() < kMany || small) break;
      divide(at);
    }
    const std::size_t part = partOf(nodes_[at], box);
    if (part == 4) break;
    if (!nodes_[at].children[part]) {
      // A part that is not there yet comes as divide() makes it.
      nodes_[at].entries.push_back({id, box});
      divide(at);
      return;
    }
    at = nodes_[at].children[part];
  }
  nodes_[at].entries.push_back({id, box});
}

void SceneIndex::take(std::uint32_t id, const Window& box) {
  std::vector<std::uint32_t> way;
  for (std::uint32_t at = 0;;) {
    way.push_back(at);
    Node& node = nodes_[at];
    const auto found = std::find_if(node.entries.begin(), node.entries.end(),
                                    [&](const Entry& e) { return e.id == id; });
    if (found != node.entries.end()) {
      *found = node.entries.back();
      node.entries.pop_back();
      for (const std::uint32_t n : way) --nodes_[n].below;
      return;
    }
    const std::size_t part = partOf(node, box);
    if (part == 4 || !node.children[part]) return;
    at = node.children[part];
  }
}

}  // namespace cad::view
