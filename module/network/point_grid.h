// Points by position, for "what lies here" with a tolerance per axis.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <unordered_map>

#include "module/host/host_drawing.h"

namespace vessora {

// A hash grid whose cells are ten tolerances wide, so that a question looks into one cell nearly
// always and into eight at most.
template <class Value>
class PointGrid {
 public:
  explicit PointGrid(double tolerance) : tolerance_(tolerance), cell_(10 * tolerance) {}

  void add(const AcGePoint3d& point, const Value& value) {
    items_.emplace(cellOf(point), Item{point, value});
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
  struct Item {
    AcGePoint3d point;
    Value value;
  };

  // Cells are centred on the round numbers that coordinates like to be, lest most points lie on a
  // border. Adding zero makes one zero of the two.
  Cell cellOf(const AcGePoint3d& p) const {
    const auto round = [this](double v) { return std::floor(v / cell_ + 0.5) + 0.0; };
    return {round(p.x), round(p.y), round(p.z)};
  }

  template <class Take>
  void visitCell(const Cell& cell, const AcGePoint3d& point, Take& take) {
    auto [at, end] = items_.equal_range(cell);
    while (at != end) {
      const bool leaves = samePoint(at->second.point, point, tolerance_) && take(at->second.value);
      at = leaves ? items_.erase(at) : std::next(at);
    }
  }

  double tolerance_, cell_;
  std::unordered_multimap<Cell, Item, Hash> items_;
};

}  // namespace vessora
