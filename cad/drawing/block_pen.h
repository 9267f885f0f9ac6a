// Draws the contents of a block definition: lines and texts straight into the drawing's records,
// for pictures that the host makes by the thousand.
#pragma once

#include <memory>
#include <string_view>

#include "cad/drawing/drawing.h"

namespace cad {

// A text and where it hangs. A text longer than `width` (0 for no limit) is condensed to it, as far
// as it can still be read.
struct PenText {
  enum Across { left, center, right };
  enum Down { top, middle, bottom };
  AcGePoint3d at;
  std::u16string_view text;
  double height = 1;
  Across across = center;
  Down down = middle;
  double rotation = 0;  // degrees
  double width = 0;
  std::u16string_view style = {};  // text style; empty or unknown is the default
};

// Entities go to the end of the block, on layer "0", in the pen's colour.
class BlockPen {
 public:
  BlockPen(Drawing& drawing, const BlockInfo& block);
  BlockPen(const BlockPen&) = delete;
  BlockPen& operator=(const BlockPen&) = delete;

  // 0 by block (as each pen begins), 1 to 255, 256 by layer.
  void color(int index) { color_ = index; }
  void line(double x1, double y1, double x2, double y2);
  void rectangle(double x1, double y1, double x2, double y2);
  void fill(double x1, double y1, double x2, double y2);
  void text(const PenText& text);
  // Formatted text, broken into lines at its width.
  void paragraphs(const PenText& text);
  // A definition of an attribute whose text is laid out like `text`, which is its default.
  void attribute(std::u16string_view tag, std::u16string_view prompt, const PenText& text,
                 bool invisible = false);
  // Another block of the drawing; nothing when there is none of the name.
  void insert(const AcGePoint3d& at, std::u16string_view block, double scale);

 private:
  TagList& begin(std::string_view type, std::string_view marker);
  void addTextBody(TagList& t, const PenText& text);
  void addStyle(TagList& t, std::u16string_view style);
  void add();

  Drawing& drawing_;
  const BlockInfo block_;
  BorrowedTags tags_;
  int color_ = 0;
};

}  // namespace cad
