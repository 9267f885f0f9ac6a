// Which colour a period's results give each element: classes and colours are those of a query.
#pragma once

#include <QRgb>
#include <utility>
#include <vector>

#include "apps/desktop/results/result_set.h"

namespace desktop {

// What a user wants to see of results.
struct ResultWishes {
  Quantity node = Quantity::none, link = Quantity::none;
  int classCount = 5;
  bool fixed = false;  // classes of all periods, which makes periods comparable
  bool values = false, arrows = true;
};

// A value as results are listed: in three decimals.
double listed(float value);

class Colours {
 public:
  using OfRecords = std::vector<std::pair<std::uint32_t, QRgb>>;

  explicit Colours(vessora::Jobs& jobs) : jobs_(jobs) {}

  // Makes the classes of a period.
  void follow(const ResultSet& set, const ResultWishes& wishes, std::size_t period);
  // The colours of blocks and polylines; what has no class is grey. Nothing for a side without a
  // quantity.
  const OfRecords& colours(const ResultSet& set, const ResultWishes& wishes, std::size_t period,
                           bool dark);

  const vessora::ValueClasses& nodeClasses() const { return nodes_.classes; }
  const vessora::ValueClasses& linkClasses() const { return links_.classes; }
  // Whether any element of the side has no class in this period.
  bool hasRest(bool ofNodes) const { return (ofNodes ? nodes_ : links_).rest; }
  static QRgb shown(int hostColour, bool dark);
  static QRgb rest(bool dark) { return dark ? 0xff8a8f98 : 0xff8c8f94; }

 private:
  struct Side {
    vessora::ValueClasses classes;
    bool rest = false;
  };
  vessora::ValueClasses classesOf(const ResultSet& set, Quantity q, const ResultWishes& wishes,
                                  std::size_t period);
  void paint(const ResultSet& set, Quantity q, Side& side, std::size_t period, bool dark);

  vessora::Jobs& jobs_;
  Side nodes_, links_;
  OfRecords colours_;
};

}  // namespace desktop
