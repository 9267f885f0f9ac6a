// The texts beside the symbols of a picture on a page.
#pragma once

#include <vector>

#include "cad/view/labels.h"
#include "cad/view/page_texts.h"
#include "cad/view/placed.h"

namespace cad::view {

class PageLabels {
 public:
  // Letters lower than `least` dots are not shown.
  PageLabels(const Picture& picture, const PageTexts& texts, const Projection& at, double least)
      : p_(picture), texts_(texts), at_(at), least_(least), room_(at.width, at.height) {}

  // Those that find room beside tables, other texts, symbols and what else is dark; `item` of each
  // is its number in the picture. Notes which had to be shown, if anywhere.
  std::vector<Label> place(LabelsSeen* seen);

 private:
  std::vector<Label> wanted() const;
  bool isFar(const Item& item) const;
  void anchor(std::vector<Label>& labels) const;
  void takeRoom(double largestSymbol);
  void takeLines(const Item& item);

  const Picture& p_;
  const PageTexts& texts_;
  const Projection& at_;
  const double least_;
  PageRoom room_;
};

// What an item covers of the page, texts aside.
PageBox boxOnPage(const Picture& picture, const Item& item, const Projection& at);

// Whether a text is the name of the symbol beside it; `height` is that of its letters.
bool standsAt(const PageBox& text, const PageBox& symbol, double height);

// A table of which the page shows a part is left out like a label, but for one that fills it.
bool isCut(const PageBox& box, const Projection& page);

}  // namespace cad::view
