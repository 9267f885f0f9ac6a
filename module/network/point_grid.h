// Points by position, for "what lies here" with a tolerance per axis.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "module/host/host_drawing.h"

namespace vessora {

// A hash grid whose cells are ten tolerances wide, so that a question looks into one cell nearly
// always and into eight at most.
template <class Value>
class PointGrid {
 public:
  explicit PointGrid(double tolerance) : tolerance_(tolerance), cell_(10 * tolerance) {}

  void add(const AcGePoint3d& point, const Value& value) {
    if (items_.size() >= heads_.size()) spread();
    items_.push_back({point, value, kNone});
    enter(static_cast<std::uint32_t>(items_.size() - 1));
  }

  // Calls take(value) for each point that differs from this one by less than the tolerance in each
  // axis, strictly, in no order. Where it answers true the point leaves the grid.
  template <class Take>
  void visit(const AcGePoint3d& point, Take take) {
    // A little more than the tolerance, lest rounding at a border hide a cell.
    const double reach = 1.5 * tolerance_;
    const Cell low = cellOf({point.x - reach, point.y - reach, point.z - reach});
    const Cell high = cellOf({point.x + reach, point.y + reach, point.z + reach});
    for (int corner = 0; corner < 8; ++corner) {
      // A corner that coincides with an earlier one in some axis has been looked at.
      if (((corner & 1) != 0 && high.x == low.x) || ((corner & 2) != 0 && high.y == low.y) ||
          ((corner & 4) != 0 && high.z == low.z)) {
        continue;
      }
      visitCell({(corner & 1) != 0 ? high.x : low.x, (corner & 2) != 0 ? high.y : low.y,
                 (corner & 4) != 0 ? high.z : low.z},
                point, take);
    }
  }

 private:
  struct Cell {
    double x, y, z;  // whole numbers, beyond the range of any integer type for far points
    bool operator==(const Cell&) const = default;
  };
  struct Hash {
    std::size_t operator()(const Cell& c) const {
      std::uint64_t h = 0;
      for (const double v : {c.x, c.y, c.z}) {
        std::uint64_t bits;
        std::memcpy(&bits, &v, sizeof bits);
        h = (h ^ bits ^ (bits >> 29)) * 0x9E3779B97F4A7C15u;
        h ^= h >> 31;
      }
      return static_cast<std::size_t>(h);
    }
  };
  static constexpr std::uint32_t kNone = ~std::uint32_t{0};
  struct Item {
    AcGePoint3d point;
    Value value;
    std::uint32_t next;  // in the same chain
  };

  // Cells are centred on the round numbers that coordinates like to be, lest most points lie on a
  // border. Adding zero makes one zero of the two.
  Cell cellOf(const AcGePoint3d& p) const {
    const auto round = [this](double v) { return std::floor(v / cell_ + 0.5) + 0.0; };
    return {round(p.x), round(p.y), round(p.z)};
  }

  // The chain of a cell, which other cells may share.
  std::uint32_t& headOf(const Cell& cell) { return heads_[Hash()(cell) & (heads_.size() - 1)]; }

  void enter(std::uint32_t item) {
    std::uint32_t& head = headOf(cellOf(items_[item].point));
    items_[item].next = head;
    head = item;
  }

  // Twice as many chains.
  void spread() {
    std::vector<std::uint32_t> old(std::max<std::size_t>(64, 2 * heads_.size()), kNone);
    old.swap(heads_);
    for (std::uint32_t item : old) {
      while (item != kNone) enter(std::exchange(item, items_[item].next));
    }
  }

  template <class Take>
  void visitCell(const Cell& cell, const AcGePoint3d& point, Take& take) {
    if (heads_.empty()) return;
    std::uint32_t* at = &headOf(cell);
    while (*at != kNone) {
      Item& item = items_[*at];
      const bool leaves = samePoint(item.point, point, tolerance_) && cellOf(item.point) == cell &&
                          take(item.value);
      if (leaves) {
        *at = item.next;
      } else {
        at = &item.next;
      }
    }
  }

  double tolerance_, cell_;
  std::vector<std::uint32_t> heads_;  // a power of two of them
  std::vector<Item> items_;           // those that have left are in no chain
};

}  // namespace vessora
