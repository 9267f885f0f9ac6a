#include "apps/desktop/results/overlay.h"

#include <QPainter>
#include <cmath>

#include "apps/desktop/canvas/canvas.h"
#include "apps/desktop/results/clock.h"
#include "apps/desktop/text.h"
#include "cad/view/labels.h"
#include "platform/decimals.h"

namespace desktop {

using cad::view::SceneThing;

namespace {

constexpr double kLongEnough = 60;         // a link that bears an arrow, in pixels
constexpr std::size_t kMostLabels = 1500;  // more elements in view cannot be read
constexpr double kRow = 18, kSwatch = 16, kMargin = 12, kInside = 10;

QColor inkOn(bool dark) { return dark ? QColor(225, 228, 232) : QColor(40, 44, 50); }
QColor panelOn(bool dark) { return dark ? QColor(30, 33, 38, 240) : QColor(255, 255, 255, 245); }

std::array<double, 9> viewOf(const Canvas& canvas) {
  const cad::view::Camera& c = canvas.camera();
  return {c.target().x, c.target().y, c.target().z,
          c.unit(),     c.turn(),     c.tilt(),
          c.width(),    c.height(),   canvas.isDark() ? 1.0 : 0.0};
}

bool isSeen(const QPointF& at, const Canvas& canvas) {
  return at.x() >= 0 && at.y() >= 0 && at.x() <= canvas.width() && at.y() <= canvas.height();
}

cad::view::PageBox boxOf(const QRectF& r) { return {r.left(), r.top(), r.right(), r.bottom()}; }

QPolygonF arrowAt(const QPointF& at, double x, double y) {
  constexpr double kLong = 8, kWide = 5;
  const QPointF along(x * kLong, y * kLong), across(-y * kWide, x * kWide);
  return QPolygonF({at + along, at - along + across, at - along * 0.5, at - along - across});
}

// What may be in view, by boxes alone: a network has a hundred times as much.
class InView {
 public:
  explicit InView(Canvas& canvas)
      : scene_(canvas.scene()),
        shown_(canvas.camera().shown(std::min(scene_.low(), scene_.high()), scene_.high())) {}
  // The thing of a record that may be; kNone for others and for 0.
  std::uint32_t thingOf(std::uint32_t record) const {
    const std::uint32_t thing = record ? scene_.thingOf(record) : SceneThing::kNone;
    if (thing == SceneThing::kNone) return thing;
    const cad::view::Window& box = scene_.things()[thing].box;
    const bool meets =
        box.x1 <= shown_.x2 && box.x2 >= shown_.x1 && box.y1 <= shown_.y2 && box.y2 >= shown_.y1;
    return meets ? thing : SceneThing::kNone;
  }

 private:
  const cad::view::Scene& scene_;
  const cad::view::Window shown_;
};

// Smaller than what the drawing's own names are when they are read with ease.
QFont labelFont(const Canvas& canvas) {
  QFont font = canvas.font();
  font.setPointSizeF(font.pointSizeF() * 0.85);
  return font;
}

QPointF placeOf(Canvas& canvas, std::uint32_t thing) {
  const cad::view::Scene& scene = canvas.scene();
  return canvas.shownAt(scene.matrices()[scene.things()[thing].matrix] * AcGePoint3d());
}

QRectF symbolBox(Canvas& canvas, std::uint32_t thing) {
  const cad::view::Scene& scene = canvas.scene();
  const SceneThing& t = scene.things()[thing];
  QPolygonF corners({placeOf(canvas, thing)});
  if (t.symbol != SceneThing::kNone) {
    const cad::view::Window& box = scene.symbols()[t.symbol].box;
    for (const double x : {box.x1, box.x2}) {
      for (const double y : {box.y1, box.y2}) {
        if (box.x1 > box.x2) continue;
        corners << canvas.shownAt(scene.matrices()[t.matrix] * AcGePoint3d(x, y, 0));
      }
    }
  }
  // Not less than can be seen of it.
  return corners.boundingRect().united(QRectF(corners[0] - QPointF(4, 4), QSizeF(8, 8)));
}

}  // namespace

QString shownValue(float value) {
  if (std::isnan(value)) return {};
  const double shown = std::fabs(value) < 0.005F ? 0.0 : static_cast<double>(value);
  return QString::number(shown, 'f', 2);
}

ResultOverlay::Middle ResultOverlay::middleOf(Canvas& canvas, std::uint32_t thing,
                                              double part) const {
  Middle middle;
  const cad::view::Scene& scene = canvas.scene();
  const SceneThing& t = scene.things()[thing];
  if (t.items.begin >= t.items.end) return middle;
  const cad::view::SceneItem& item = scene.items()[t.items.begin];
  std::vector<QPointF> points;
  for (std::uint32_t i = 0; i < item.count; ++i) {
    points.push_back(canvas.shownAt(scene.points()[item.first + i]));
    if (i) middle.length += QLineF(points[i - 1], points[i]).length();
  }
  double rest = middle.length * part;
  for (std::size_t i = 1; i < points.size(); ++i) {
    const QLineF line(points[i - 1], points[i]);
    const double length = line.length();
    if (length > 0 && (rest <= length || i + 1 == points.size())) {
      middle.at = line.pointAt(std::min(1.0, rest / length));
      middle.x = line.dx() / length;
      middle.y = line.dy() / length;
      return middle;
    }
    rest -= length;
  }
  return middle;
}

void ResultOverlay::placeArrows(Canvas& canvas, const Shown& shown) {
  arrows_.clear();
  if (!shown.wishes.arrows || !shown.set.has(Quantity::flow)) return;
  const auto flows = shown.set.values(Quantity::flow, shown.period);
  const bool dark = canvas.isDark();
  const bool coloured = shown.set.has(shown.wishes.link);
  const InView view(canvas);
  for (std::size_t i = 0; i < flows.size(); ++i) {
    const ResultElement& link = shown.set.links()[i];
    if (!(std::fabs(flows[i]) >= 0.0005F)) continue;
    const std::uint32_t thing = view.thingOf(link.course);
    if (thing == SceneThing::kNone) continue;
    // Beside the symbol of a pump or valve.
    const Middle middle = middleOf(canvas, thing, link.symbol ? 0.75 : 0.5);
    if (middle.length < kLongEnough || !isSeen(middle.at, canvas)) continue;
    const double way = flows[i] < 0 ? -1 : 1;
    QRgb colour = inkOn(dark).rgb();
    if (coloured) {
      const float value = shown.set.value(shown.wishes.link, shown.period, i);
      const auto& classes = shown.colours.linkClasses();
      const int index = std::isnan(value) ? -1 : classes.find(listed(value));
      colour = index < 0
                   ? Colours::rest(dark)
                   : Colours::shown(classes.classes[static_cast<std::size_t>(index)].color, dark);
    }
    arrows_.push_back({arrowAt(middle.at, middle.x * way, middle.y * way), colour});
  }
}

// Where the values of a quantity may stand: beside symbols, and beside the middle of courses.
void ResultOverlay::gatherAnchors(Canvas& canvas, const Shown& shown, Quantity q,
                                  std::vector<Anchor>& anchors) const {
  if (!shown.set.has(q)) return;
  const auto values = shown.set.values(q, shown.period);
  const InView view(canvas);
  for (std::size_t i = 0; i < values.size() && anchors.size() <= kMostLabels; ++i) {
    const ResultElement& element = shown.set.elements(q)[i];
    const std::uint32_t record = element.symbol ? element.symbol : element.course;
    const std::uint32_t thing = view.thingOf(record);
    if (thing == SceneThing::kNone || std::isnan(values[i])) continue;
    const bool bySymbol = record == element.symbol;
    const QPointF at = bySymbol ? placeOf(canvas, thing) : middleOf(canvas, thing, 0.5).at;
    if (!isSeen(at, canvas)) continue;
    const QRectF beside =
        bySymbol ? symbolBox(canvas, thing) : QRectF(at - QPointF(6, 6), QSizeF(12, 12));
    anchors.push_back({beside, at, thing + 1, values[i]});
  }
}

void ResultOverlay::placeLabels(Canvas& canvas, const Shown& shown) {
  labels_.clear();
  if (!shown.wishes.values) return;
  std::vector<Anchor> anchors;
  gatherAnchors(canvas, shown, shown.wishes.node, anchors);
  gatherAnchors(canvas, shown, shown.wishes.link, anchors);
  if (anchors.size() > kMostLabels) return;
  cad::view::PageRoom room(canvas.width(), canvas.height());
  if (!legendBox_.isEmpty()) room.take(boxOf(legendBox_));
  const double dots = canvas.devicePixelRatioF();
  for (const QRectF& text : canvas.textBoxes()) {
    room.take(boxOf({text.topLeft() / dots, text.size() / dots}));
  }
  for (const Arrow& arrow : arrows_) room.take(boxOf(arrow.shape.boundingRect()));
  for (const Anchor& anchor : anchors) room.take(boxOf(anchor.beside), anchor.thing);
  const QFontMetricsF metrics(labelFont(canvas));
  for (const Anchor& anchor : anchors) {
    const QString text = shownValue(anchor.value);
    const double w = metrics.horizontalAdvance(text) + 4, h = metrics.height();
    const QRectF& b = anchor.beside;
    const double x = anchor.at.x(), y = anchor.at.y(), right = b.right() + 2,
                 left = b.left() - w - 2;
    const QPointF sides[] = {{right, y - h},
                             {right, y},
                             {left, y},
                             {left, y - h},
                             {x - w / 2, b.bottom() + 2},
                             {x - w / 2, b.top() - h - 2}};
    for (const QPointF& side : sides) {
      const QRectF box(side, QSizeF(w, h));
      if (!room.isFree(boxOf(box))) continue;
      room.take(boxOf(box));
      labels_.push_back({box, text});
      break;
    }
  }
}

void ResultOverlay::addLegend(bool ofNodes, const Shown& shown, bool dark) {
  const Quantity q = ofNodes ? shown.wishes.node : shown.wishes.link;
  if (!shown.set.has(q)) return;
  legend_.push_back({0, titleOf(q, shown.set)});
  const auto& classes = (ofNodes ? shown.colours.nodeClasses() : shown.colours.linkClasses());
  for (const auto& c : classes.classes) {
    if (c.upper <= c.lower) continue;
    legend_.push_back({Colours::shown(c.color, dark), qt(platform::threeDecimals(c.lower)) +
                                                          QStringLiteral(" ÷ ") +
                                                          qt(platform::threeDecimals(c.upper))});
  }
  if (shown.colours.hasRest(ofNodes)) {
    legend_.push_back({Colours::rest(dark), words(u"senza classe")});
  }
}

void ResultOverlay::makeLegend(const Canvas& canvas, const Shown& shown) {
  legend_.clear();
  legendBox_ = {};
  addLegend(true, shown, canvas.isDark());
  addLegend(false, shown, canvas.isDark());
  if (legend_.empty()) return;
  legend_.insert(legend_.begin(),
                 {0, QStringLiteral("%1  %2").arg(qt(shown.set.network()),
                                                  timeOf(shown.set.periods()[shown.period]))});
  QFont bold = canvas.font();
  bold.setBold(true);
  double width = 0;
  for (const LegendRow& row : legend_) {
    const QFontMetricsF metrics(row.colour ? canvas.font() : bold);
    width = std::max(width, metrics.horizontalAdvance(row.text) + (row.colour ? kSwatch + 8 : 0));
  }
  const double height = kRow * static_cast<double>(legend_.size()) + 2 * kInside;
  legendBox_ =
      QRectF(canvas.width() - width - 2 * kInside - kMargin, kMargin, width + 2 * kInside, height);
}

void ResultOverlay::paintLegend(QPainter& painter, const Canvas& canvas) const {
  if (legend_.empty()) return;
  const bool dark = canvas.isDark();
  QColor edge = inkOn(dark);
  edge.setAlpha(70);
  painter.setPen(edge);
  painter.setBrush(panelOn(dark));
  painter.drawRoundedRect(legendBox_, 5, 5);
  QFont bold = canvas.font();
  bold.setBold(true);
  double y = legendBox_.top() + kInside;
  for (const LegendRow& row : legend_) {
    QRectF place(legendBox_.left() + kInside, y, legendBox_.width() - 2 * kInside, kRow);
    painter.setFont(row.colour ? canvas.font() : bold);
    if (row.colour) {
      painter.fillRect(QRectF(place.left(), place.center().y() - 5, kSwatch, 10),
                       QColor::fromRgb(row.colour));
      place.setLeft(place.left() + kSwatch + 8);
    }
    painter.setPen(inkOn(dark));
    painter.drawText(place, Qt::AlignVCenter | Qt::AlignLeft, row.text);
    y += kRow;
  }
}

void ResultOverlay::paint(QPainter& painter, Canvas& canvas, const Shown& shown) {
  const auto view = viewOf(canvas);
  if (!known_ || view != view_) {
    makeLegend(canvas, shown);
    placeArrows(canvas, shown);
    placeLabels(canvas, shown);
    known_ = true;
    view_ = view;
  }
  const bool dark = canvas.isDark();
  painter.setRenderHint(QPainter::Antialiasing, true);
  painter.setPen(QPen(groundColour(dark), 1));
  for (const Arrow& arrow : arrows_) {
    painter.setBrush(QColor::fromRgb(arrow.colour));
    painter.drawPolygon(arrow.shape);
  }
  QColor ground = groundColour(dark);
  ground.setAlpha(190);
  painter.setFont(labelFont(canvas));
  for (const Label& label : labels_) {
    painter.fillRect(label.box, ground);
    painter.setPen(inkOn(dark));
    painter.drawText(label.box, Qt::AlignCenter, label.text);
  }
  paintLegend(painter, canvas);
}

}  // namespace desktop
