// What results add to the canvas: legends, the way of the flow, values beside the elements.
#pragma once

#include <QPolygonF>
#include <QRectF>
#include <QString>
#include <array>
#include <vector>

#include "apps/desktop/results/colours.h"

class QPainter;

namespace desktop {

class Canvas;

// "14.55"; empty for a missing value.
QString shownValue(float value);

class ResultOverlay {
 public:
  struct Arrow {
    QPolygonF shape;
    QRgb colour = 0;
  };
  struct Label {
    QRectF box;
    QString text;
  };
  struct Shown {
    const ResultSet& set;
    const ResultWishes& wishes;
    const Colours& colours;
    std::size_t period;
  };

  // In the logical pixels of the canvas. Places are kept until the view changes or forget().
  void paint(QPainter& painter, Canvas& canvas, const Shown& shown);
  // Other values or another scene are shown.
  void forget() { known_ = false; }

  // Of the latest picture.
  const std::vector<Arrow>& arrows() const { return arrows_; }
  const std::vector<Label>& labels() const { return labels_; }

 private:
  struct LegendRow {
    QRgb colour = 0;  // 0: a title
    QString text;
  };
  // A link as it is seen: its place in the middle of its length, and the way that it goes there.
  struct Middle {
    QPointF at;
    double length = 0, x = 1, y = 0;
  };

  struct Anchor {
    QRectF beside;
    QPointF at;
    std::uint32_t thing = 0;  // counted from 1
    float value = 0;
  };

  Middle middleOf(Canvas& canvas, std::uint32_t thing, double part) const;
  void placeArrows(Canvas& canvas, const Shown& shown);
  void gatherAnchors(Canvas& canvas, const Shown& shown, Quantity q,
                     std::vector<Anchor>& anchors) const;
  void placeLabels(Canvas& canvas, const Shown& shown);
  void makeLegend(const Canvas& canvas, const Shown& shown);
  void addLegend(bool ofNodes, const Shown& shown, bool dark);
  void paintLegend(QPainter& painter, const Canvas& canvas) const;

  bool known_ = false;
  std::array<double, 9> view_{};
  std::vector<Arrow> arrows_;
  std::vector<Label> labels_;
  std::vector<LegendRow> legend_;
  QRectF legendBox_;
};

}  // namespace desktop
