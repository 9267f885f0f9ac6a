#include "cad/drawing/table_picture.h"

#include <algorithm>

#include "cad/drawing/block_pen.h"

namespace cad {
namespace {

CellLook cellLook(const TagList& t, TagRange range) {
  CellLook look;
  look.textStyle = t.textOr(7, look.textStyle, range);
  look.textHeight = t.realOr(140, look.textHeight, range);
  look.alignment = static_cast<int>(t.integerOr(170, look.alignment, range));
  look.color = static_cast<int>(t.integerOr(62, 0, range));
  if (t.integerOr(283, 0, range) != 0) look.fill = static_cast<int>(t.integerOr(63, 0, range));
  return look;
}

class Painter {
 public:
  Painter(Drawing& drawing, const BlockInfo& block, const TablePicture& picture)
      : pen_(drawing, block),
        picture_(picture),
        rows_(static_cast<int>(picture.rowHeights.size())),
        columns_(static_cast<int>(picture.columnWidths.size())) {
    for (const double h : picture.rowHeights) y_.push_back(y_.back() - h);
    for (const double w : picture.columnWidths) x_.push_back(x_.back() + w);
    owner_.assign(static_cast<std::size_t>(rows_) * static_cast<std::size_t>(columns_), -1);
    for (std::size_t i = 0; i < picture.cells.size(); ++i) {
      const PictureCell& c = picture.cells[i];
      for (int r = c.row; r < std::min(rows_, c.row + c.rows); ++r) {
        for (int k = c.column; k < std::min(columns_, c.column + c.columns); ++k) {
          owner_[at(r, k)] = static_cast<int>(i);
        }
      }
    }
  }

  void paint() {
    for (const PictureCell& c : picture_.cells) {
      if (const int color = picture_.look.ofRow(c.row).fill; color >= 1 && color <= 255) {
        pen_.color(color);
        pen_.fill(left(c), top(c), right(c), bottom(c));
      }
    }
    pen_.color(0);
    // Each line runs as far as different cells lie on its two sides.
    for (int r = 0; r <= rows_; ++r) {
      runs(
          columns_, [&](int k) { return owner(r - 1, k) != owner(r, k); },
          [&](int from, int to) { pen_.line(x(from), y(r), x(to), y(r)); });
    }
    for (int k = 0; k <= columns_; ++k) {
      runs(
          rows_, [&](int r) { return owner(r, k - 1) != owner(r, k); },
          [&](int from, int to) { pen_.line(x(k), y(from), x(k), y(to)); });
    }
    for (const PictureCell& c : picture_.cells) contents(c);
  }

 private:
  std::size_t at(int row, int column) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns_) +
           static_cast<std::size_t>(column);
  }
  int owner(int row, int column) const {
    const bool outside = row < 0 || row >= rows_ || column < 0 || column >= columns_;
    return outside ? -2 : owner_[at(row, column)];
  }
  double x(int column) const { return x_[static_cast<std::size_t>(std::min(column, columns_))]; }
  double y(int row) const { return y_[static_cast<std::size_t>(std::min(row, rows_))]; }
  double left(const PictureCell& c) const { return x(c.column); }
  double right(const PictureCell& c) const { return x(c.column + c.columns); }
  double top(const PictureCell& c) const { return y(c.row); }
  double bottom(const PictureCell& c) const { return y(c.row + c.rows); }

  template <class Wanted, class Draw>
  static void runs(int count, Wanted&& wanted, Draw&& draw) {
    for (int i = 0, from = -1; i <= count; ++i) {
      const bool on = i < count && wanted(i);
      if (on && from < 0) from = i;
      if (!on && from >= 0) {
        draw(from, i);
        from = -1;
      }
    }
  }

  void contents(const PictureCell& c) {
    const CellLook& look = picture_.look.ofRow(c.row);
    if (!c.block.empty()) {
      pen_.insert({(left(c) + right(c)) / 2, (top(c) + bottom(c)) / 2, 0}, c.block, c.blockScale);
      return;
    }
    if (c.text.empty()) return;
    const double mx = picture_.look.horizontalMargin, my = picture_.look.verticalMargin;
    const int alignment = c.alignment >= 1 && c.alignment <= 9 ? c.alignment : 5;
    const int across = (alignment - 1) % 3, down = (alignment - 1) / 3;
    const double anchorX[] = {left(c) + mx, (left(c) + right(c)) / 2, right(c) - mx};
    const double anchorY[] = {top(c) - my, (top(c) + bottom(c)) / 2, bottom(c) + my};
    PenText text;
    text.at = {anchorX[across], anchorY[down], 0};
    text.text = c.text;
    text.height = c.textHeight;
    text.across = static_cast<PenText::Across>(across);
    text.down = static_cast<PenText::Down>(down);
    text.width = std::max(0.0, right(c) - left(c) - 2 * mx);
    text.style = look.textStyle;
    pen_.color(look.color);
    if (c.text.find_first_of(u"\\{}\n") == c.text.npos) {
      pen_.text(text);
    } else {
      pen_.paragraphs(text);
    }
  }

  BlockPen pen_;
  const TablePicture& picture_;
  int rows_, columns_;
  std::vector<double> x_{0}, y_{0};
  std::vector<int> owner_;  // index of the drawn cell that stands there
};

}  // namespace

TableLook lookOf(const Drawing& drawing, std::uint32_t style) {
  TableLook look;
  if (!style || drawing.record(style).type != Type::tableStyle) return look;
  const auto t = borrowTags();
  drawing.parse(style, *t);
  const TagRange own = t->subclass("AcDbTableStyle");
  CellLook* const parts[] = {&look.data, &look.title, &look.header};
  int from = t->find(7, own);
  TagRange head{own.begin, from < 0 ? own.end : from};
  look.horizontalMargin = t->realOr(40, look.horizontalMargin, head);
  look.verticalMargin = t->realOr(41, look.verticalMargin, head);
  look.titleSuppressed = t->integerOr(280, 0, head) != 0;
  look.headerSuppressed = t->integerOr(281, 0, head) != 0;
  for (CellLook* part : parts) {
    if (from < 0) break;
    const int next = t->find(7, from + 1, own.end);
    *part = cellLook(*t, {from, next < 0 ? own.end : next});
    from = next;
  }
  return look;
}

void drawTable(Drawing& drawing, const BlockInfo& block, const TablePicture& picture) {
  Painter(drawing, block, picture).paint();
}

}  // namespace cad
