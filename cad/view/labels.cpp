#include "cad/view/labels.h"

#include <algorithm>
#include <unordered_set>

namespace cad::view {

namespace {

constexpr double kCell = 40;      // dots
constexpr int kMostCells = 1000;  // along a side: larger pages have larger cells

}  // namespace

PageRoom::PageRoom(double width, double height)
    : width_(width),
      height_(height),
      columns_(std::clamp(static_cast<int>(width / kCell), 1, kMostCells)),
      rows_(std::clamp(static_cast<int>(height / kCell), 1, kMostCells)),
      cells_(static_cast<std::size_t>(columns_) * static_cast<std::size_t>(rows_)) {}

// Visits the cells under a box until one says no.
template <class Visit>
bool PageRoom::visit(const PageBox& box, Visit&& visit) const {
  const auto cell = [](double at, double size, int count) {
    return static_cast<int>(std::clamp(at / size * count, 0.0, count - 1.0));
  };
  for (int row = cell(box.y1, height_, rows_); row <= cell(box.y2, height_, rows_); ++row) {
    for (int c = cell(box.x1, width_, columns_); c <= cell(box.x2, width_, columns_); ++c) {
      if (!visit(static_cast<std::size_t>(row) * static_cast<std::size_t>(columns_) +
                 static_cast<std::size_t>(c))) {
        return false;
      }
    }
  }
  return true;
}

void PageRoom::take(const PageBox& box) {
  if (box.x2 < 0 || box.y2 < 0 || box.x1 > width_ || box.y1 > height_) return;
  visit(box, [&](std::size_t cell) {
    cells_[cell].push_back(box);
    return true;
  });
}

bool PageRoom::isFree(const PageBox& box) const {
  if (!(box.x1 >= 0 && box.y1 >= 0 && box.x2 <= width_ && box.y2 <= height_)) return false;
  return visit(box, [&](std::size_t cell) {
    return std::none_of(cells_[cell].begin(), cells_[cell].end(), [&](const PageBox& other) {
      return box.x1 < other.x2 && other.x1 < box.x2 && box.y1 < other.y2 && other.y1 < box.y2;
    });
  });
}

std::vector<Label> placeLabels(std::vector<Label> labels, PageRoom& room) {
  struct Turn {
    double height;
    int rank;  // 0 the name of its symbol
    std::size_t label;
  };
  std::vector<Turn> turns;
  int rank = 0;
  for (std::size_t i = 0; i < labels.size(); ++i) {
    rank = i > 0 && labels[i].symbol == labels[i - 1].symbol ? rank + 1 : 0;
    turns.push_back({labels[i].height, rank, i});
  }
  // Heights that differ by less than a tenth of a dot are the same: they come of rounding.
  std::stable_sort(turns.begin(), turns.end(), [](const Turn& a, const Turn& b) {
    const auto step = [](double height) { return static_cast<long long>(height * 10 + 0.5); };
    return step(a.height) != step(b.height) ? step(a.height) > step(b.height) : a.rank < b.rank;
  });
  std::vector<Label> shown;
  std::unordered_set<std::uint32_t> nameless;
  for (const Turn& turn : turns) {
    const Label& label = labels[turn.label];
    if (nameless.count(label.symbol)) continue;
    if (room.isFree(label.box)) {
      room.take(label.box);
      shown.push_back(label);
    } else if (turn.rank == 0) {
      nameless.insert(label.symbol);
    }
  }
  return shown;
}

}  // namespace cad::view
