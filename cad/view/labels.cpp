#include "cad/view/labels.h"

#include <array>
#include <cmath>

namespace cad::view {

namespace {

constexpr double kCell = 40;      // dots
constexpr int kMostCells = 1000;  // along a side: larger pages have larger cells

int cellsAlong(double length) {
  return std::clamp(static_cast<int>(length / kCell), 1, kMostCells);
}

bool overlap(const PageBox& a, const PageBox& b) {
  return a.x1 < b.x2 && b.x1 < a.x2 && a.y1 < b.y2 && b.y1 < a.y2;
}

}  // namespace

bool meets(const PageLine& line, const PageBox& box) {
  // The line's part that is left after cutting at one side after the other.
  double from = 0, to = 1;
  const auto cut = [&](double start, double step, double low, double high) {
    if (step == 0) return start >= low && start <= high;
    double in = (low - start) / step, out = (high - start) / step;
    if (in > out) std::swap(in, out);
    from = std::max(from, in);
    to = std::min(to, out);
    return from <= to;
  };
  return cut(line.x1, line.x2 - line.x1, box.x1, box.x2) &&
         cut(line.y1, line.y2 - line.y1, box.y1, box.y2);
}

PageRoom::PageRoom(double width, double height)
    : width_(width),
      height_(height),
      columns_(cellsAlong(width)),
      rows_(cellsAlong(height)),
      cells_(static_cast<std::size_t>(columns_) * static_cast<std::size_t>(rows_)) {}

std::size_t PageRoom::cell(int column, int row) const {
  return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns_) +
         static_cast<std::size_t>(column);
}
int PageRoom::column(double x) const {
  return static_cast<int>(std::clamp(x / width_ * columns_, 0.0, columns_ - 1.0));
}
int PageRoom::row(double y) const {
  return static_cast<int>(std::clamp(y / height_ * rows_, 0.0, rows_ - 1.0));
}

// Visits the cells under a box until one says no.
template <class Visit>
bool PageRoom::visit(const PageBox& box, Visit&& visit) const {
  for (int r = row(box.y1); r <= row(box.y2); ++r) {
    for (int c = column(box.x1); c <= column(box.x2); ++c) {
      if (!visit(cell(c, r))) return false;
    }
  }
  return true;
}

void PageRoom::take(const PageBox& box, std::uint32_t symbol) {
  if (box.x2 < 0 || box.y2 < 0 || box.x1 > width_ || box.y1 > height_) return;
  visit(box, [&](std::size_t cell) {
    cells_[cell].boxes.push_back({box, symbol});
    return true;
  });
}

bool PageRoom::isFree(const PageBox& box, std::uint32_t symbol) const {
  if (!(box.x1 >= 0 && box.y1 >= 0 && box.x2 <= width_ && box.y2 <= height_)) return false;
  return visit(box, [&](std::size_t cell) {
    return std::ranges::none_of(cells_[cell].boxes, [&](const Of<PageBox>& other) {
      return (symbol == 0 || other.symbol != symbol) && overlap(box, other.thing) &&
             !gone_.count(other.symbol);
    });
  });
}

void PageRoom::cross(const PageLine& line, std::uint32_t symbol) {
  if (!std::isfinite(line.x1 + line.y1 + line.x2 + line.y2)) return;
  if (!meets(line, {0, 0, width_, height_})) return;
  const double wide = line.x2 - line.x1, high = line.y2 - line.y1;
  const double left = std::min(line.x1, line.x2), right = std::max(line.x1, line.x2);
  // Of each column the rows that the line passes in it.
  for (int c = column(left); c <= column(right); ++c) {
    const auto y = [&](double edge) {
      return line.y1 + high * (std::clamp(edge * width_ / columns_, left, right) - line.x1) / wide;
    };
    const double y1 = wide == 0 ? line.y1 : y(c), y2 = wide == 0 ? line.y2 : y(c + 1);
    for (int r = row(std::min(y1, y2)); r <= row(std::max(y1, y2)); ++r) {
      cells_[cell(c, r)].lines.push_back({line, symbol});
    }
  }
}

bool PageRoom::isCrossed(const PageBox& box, std::uint32_t symbol) const {
  return !visit(box, [&](std::size_t cell) {
    return std::ranges::none_of(cells_[cell].lines, [&](const Of<PageLine>& line) {
      return (symbol == 0 || line.symbol != symbol) && meets(line.thing, box);
    });
  });
}

namespace {

PageBox moved(const Label& label) {
  return {label.box.x1 + label.moveX, label.box.y1 + label.moveY, label.box.x2 + label.moveX,
          label.box.y2 + label.moveY};
}

// Where texts that have no room yet would go: those of symbols whose turn is still to come where
// they are drawn, what stands with a name beside that.
struct Wishes {
  PageRoom drawn, values;
};

// The texts of one symbol, and where about it they may stand.
class Group {
 public:
  Group(Label* first, Label* end) : first_(first), end_(end), symbol_(first->beside) {
    for (const Label* label = first_; label != end_; ++label) all_.grow(label->box);
    if (end_ - first_ <= kMostTexts) findRows();
  }

  // Finds the best place; false when the name has room in none.
  bool settle(const PageRoom& room, const Wishes& wishes) {
    double best = 1e300;
    int place = -1;
    const int count = !symbol_.isEmpty() && !rows_.empty() ? kPlaces : 1;
    for (int p = 0; p < count && best > 0; ++p) {
      put(p);
      const double cost = costHere(room, wishes) + 0.1 * p;
      if (cost < best) best = cost, place = p;
    }
    put(std::max(place, 0));
    return place >= 0;
  }

 private:
  enum Place { drawn, below, mirrored, mirroredBelow, right, left, above, under, kPlaces };
  // What is to be had instead, in steps of a place that is further down the list.
  static constexpr double kNoRoom = 1e300, kValueLost = 8, kWished = 3, kCrossed = 2;
  static constexpr std::ptrdiff_t kMostTexts = 32;  // more are no names
  static constexpr double kGap = 0.5;  // of a text at its middle, in heights of letters

  // Texts beside each other move as one, or they would change places.
  void findRows() {
    for (const Label* label = first_; label != end_; ++label) {
      const double middle = (label->box.y1 + label->box.y2) / 2;
      const auto row = std::ranges::find_if(
          rows_, [&](const PageBox& other) { return middle > other.y1 && middle < other.y2; });
      rowOf_.push_back(static_cast<std::size_t>(row - rows_.begin()));
      if (row == rows_.end()) {
        rows_.push_back(label->box);
      } else {
        row->grow(label->box);
      }
    }
  }

  void put(int place) {
    for (Label* label = first_; label != end_; ++label) {
      label->moveX = label->moveY = 0;
      if (place == drawn) continue;
      label->moveX = acrossBy(place, rows_[rowOf_[static_cast<std::size_t>(label - first_)]]);
      label->moveY = downBy(place);
    }
  }
  double acrossBy(int place, const PageBox& row) const {
    const double twice = symbol_.x1 + symbol_.x2 - row.x1 - row.x2, gap = kGap * first_->height;
    switch (place) {
      case mirrored:
      case mirroredBelow:
        return twice;
      case above:
      case under:
        return twice / 2;
      case right:
        return symbol_.x2 + gap - all_.x1;
      case left:
        return symbol_.x1 - gap - row.x2;
      default:
        return 0;
    }
  }
  double downBy(int place) const {
    const double twice = symbol_.y1 + symbol_.y2 - all_.y1 - all_.y2, gap = kGap * first_->height;
    switch (place) {
      case below:
      case mirroredBelow:
        return twice;
      case right:
      case left:
        return twice / 2;
      case above:
        return symbol_.y1 - gap - all_.y2;
      case under:
        return symbol_.y2 + gap - all_.y1;
      default:
        return 0;
    }
  }

  double costHere(const PageRoom& room, const Wishes& wishes) const {
    double cost = 0;
    for (const Label* label = first_; label != end_; ++label) {
      const PageBox box = moved(*label);
      if (!room.isFree(box, label->symbol)) {
        if (label == first_) return kNoRoom;
        cost += kValueLost;
        continue;
      }
      if (!wishes.values.isFree(box, label->symbol)) cost += kWished;
      if (!wishes.drawn.isFree(box, label->symbol)) cost += kWished;
      if (room.isCrossed(box, label->symbol)) cost += kCrossed;
    }
    return cost;
  }

  Label *first_, *end_;
  const PageBox symbol_;
  PageBox all_ = PageBox::empty();
  std::vector<PageBox> rows_;
  std::vector<std::size_t> rowOf_;  // of each text
};

struct Turn {
  double height;
  std::size_t label, first, end;  // the symbol's texts are those from `first` up to `end`
  std::size_t rank() const { return label - first; }
};

// In the order in which they choose.
std::vector<Turn> turnsOf(const std::vector<Label>& labels) {
  std::vector<Turn> turns;
  for (std::size_t first = 0, end = 0; first < labels.size(); first = end) {
    while (end < labels.size() && labels[end].symbol == labels[first].symbol) ++end;
    // What stands with a name never comes before it.
    for (std::size_t i = first; i < end; ++i) {
      turns.push_back({std::min(labels[i].height, labels[first].height), i, first, end});
    }
  }
  // Heights that differ by less than a tenth of a dot are the same: they come of rounding.
  std::ranges::stable_sort(turns, [](const Turn& a, const Turn& b) {
    const auto step = [](double height) { return static_cast<long long>(height * 10 + 0.5); };
    return step(a.height) != step(b.height) ? step(a.height) > step(b.height) : a.rank() < b.rank();
  });
  return turns;
}

}  // namespace

std::vector<Label> placeLabels(std::vector<Label> labels, PageRoom& room) {
  std::vector<Label> shown;
  std::unordered_set<std::uint32_t> named;
  Wishes wishes{room.empty(), room.empty()};
  for (const Label& label : labels) wishes.drawn.take(label.box, label.symbol);
  for (const Turn& turn : turnsOf(labels)) {
    Label* const own = labels.data();
    Label& label = own[turn.label];
    if (turn.rank() == 0) {
      wishes.drawn.giveBack(label.symbol);
      if (!Group(own + turn.first, own + turn.end).settle(room, wishes)) continue;
      named.insert(label.symbol);
      for (std::size_t i = turn.first + 1; i < turn.end; ++i) {
        wishes.values.take(moved(own[i]), label.symbol);
      }
    } else if (!named.count(label.symbol) || !room.isFree(moved(label), label.symbol)) {
      continue;
    }
    room.take(moved(label));
    shown.push_back(label);
  }
  return shown;
}

}  // namespace cad::view
