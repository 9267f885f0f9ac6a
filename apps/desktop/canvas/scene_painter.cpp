#include "apps/desktop/canvas/scene_painter.h"

#include <QFont>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

#include "apps/desktop/text.h"
#include "cad/view/scene_labels.h"

namespace desktop {

using cad::view::Camera;
using cad::view::ItemRange;
using cad::view::Kind;
using cad::view::Pixel;
using cad::view::Scene;
using cad::view::SceneItem;
using cad::view::SceneThing;
using cad::view::Window;

namespace {

constexpr double kDust = 1.2;       // pixels: a smaller thing is one dot
constexpr double kSmallSymbol = 4;  // a smaller symbol is a square
constexpr double kSmallestText = 2.5;
constexpr double kCapHeight = 0.73;     // of the em
constexpr double kStep = 0.7;           // pixels between vertices that are drawn
constexpr std::size_t kSmooth = 30000;  // lines that are drawn with smooth edges
constexpr qsizetype kWide = 6000;       // and those of colours of the moment that are wide
constexpr double kDotsPerMillimetre = 4;
constexpr double kFar = 30000;  // pixels: beyond that the rasterizer loses its footing

QPointF point(const Pixel& p) { return {p.x, p.y}; }

// The part of a segment near the window, so that no number is too large for the rasterizer.
bool clip(Pixel& a, Pixel& b) {
  double from = 0, to = 1;
  const double start[2] = {a.x, a.y}, way[2] = {b.x - a.x, b.y - a.y};
  for (int axis = 0; axis < 2; ++axis) {
    if (way[axis] == 0) {
      if (std::fabs(start[axis]) > kFar) return false;
      continue;
    }
    double enter = (-kFar - start[axis]) / way[axis], leave = (kFar - start[axis]) / way[axis];
    if (enter > leave) std::swap(enter, leave);
    from = std::max(from, enter);
    to = std::min(to, leave);
  }
  if (!(from <= to)) return false;
  const Pixel first = a;
  a = {first.x + way[0] * from, first.y + way[1] * from};
  b = {first.x + way[0] * to, first.y + way[1] * to};
  return true;
}

bool isNear(const Pixel& p) { return std::fabs(p.x) < kFar && std::fabs(p.y) < kFar; }

}  // namespace

// From the coordinates of an item to pixels.
struct ScenePainter::Place {
  const Camera* camera;
  const AcGeMatrix3d* matrix;
  Pixel operator()(const AcGePoint3d& p) const { return camera->pixelOf(matrix ? *matrix * p : p); }
};

QColor groundColour(bool dark) { return dark ? QColor(33, 36, 41) : QColor(255, 255, 255); }

QColor ScenePainter::colourOf(std::uint32_t pen, QRgb given) const {
  return QColor::fromRgb(given ? given : penColours_[pen]);
}

ScenePainter::Batch& ScenePainter::batchOf(std::uint32_t pen, QRgb colour) {
  if (!colour) return batches_[pen];
  const auto found = std::find_if(given_.begin(), given_.end(),
                                  [&](const auto& one) { return one.first == colour; });
  if (found != given_.end()) return found->second;
  given_.push_back({colour, {}});
  return given_.back().second;
}

void ScenePainter::paint(QImage& image, Scene& scene, const cad::Drawing* drawing,
                         const Camera& camera, const CanvasLook& look,
                         const ThingColours* colours) {
  image.fill(groundColour(look.dark));
  scene_ = &scene;
  camera_ = &camera;
  colours_ = colours;
  look_ = look;
  visible_.clear();
  const auto all = scene.bounds();
  const Window shown = camera.shown(std::min(scene.low(), scene.high()), scene.high());
  const bool whole = !all || (shown.x1 <= all->x1 && shown.y1 <= all->y1 && shown.x2 >= all->x2 &&
                              shown.y2 >= all->y2);
  for (std::uint32_t i = 0; i < scene.things().size(); ++i) {
    const SceneThing& thing = scene.things()[i];
    if (thing.record && (whole || thing.endless)) visible_.push_back(i);
  }
  if (!whole) {
    scene.index().query(shown, [&](std::uint32_t thing, const Window&) {
      if (!scene.things()[thing].endless) visible_.push_back(thing);
      return true;
    });
    std::sort(visible_.begin(), visible_.end());
  }
  pixels_ = reinterpret_cast<QRgb*>(image.bits());
  stride_ = image.bytesPerLine() / static_cast<qsizetype>(sizeof(QRgb));
  size_ = image.size();
  QPainter painter(&image);
  painter_ = &painter;
  const auto prepare = [&] {
    penColours_.clear();
    for (const cad::view::Pen& pen : scene.pens()) {
      const cad::view::Color c = cad::view::shownColor(pen, look.dark);
      penColours_.push_back(qRgb(c.red, c.green, c.blue));
    }
    batches_.resize(scene.pens().size());
    given_.clear();
  };
  prepare();
  drawn_ = 0;
  textBoxes_.clear();
  for (const std::uint32_t thing : visible_) {
    if (!scene.things()[thing].table) gather(thing);
  }
  flush();
  if (drawing && look.labels) {
    const auto labels = cad::view::labelsToShow(scene, *drawing, camera, visible_);
    prepare();  // labels may have brought pens
    const Place world{&camera, nullptr};
    for (const cad::view::SceneLabel& label : labels) {
      painter.translate(label.moveX, label.moveY);
      text(scene.items()[label.item], world, 0);
      painter.translate(-label.moveX, -label.moveY);
    }
  }
  for (const std::uint32_t id : visible_) {
    const SceneThing& thing = scene.things()[id];
    if (!thing.table) continue;
    const QPolygonF under({point(camera.pixelOf({thing.box.x1, thing.box.y1, 0})),
                           point(camera.pixelOf({thing.box.x2, thing.box.y1, 0})),
                           point(camera.pixelOf({thing.box.x2, thing.box.y2, 0})),
                           point(camera.pixelOf({thing.box.x1, thing.box.y2, 0}))});
    painter.setPen(Qt::NoPen);
    painter.setBrush(groundColour(look.dark));
    painter.drawPolygon(under);
    gather(id);
    flush();
  }
  painter_ = nullptr;
  pixels_ = nullptr;
}

void ScenePainter::gather(std::uint32_t id) {
  const SceneThing& thing = scene_->things()[id];
  const QRgb colour = colours_ && id < colours_->size() ? (*colours_)[id] : 0;
  const bool symbol = thing.symbol != SceneThing::kNone;
  if (!thing.endless && thing.box.x1 <= thing.box.x2) {
    const Pixel a = camera_->pixelOf({thing.box.x1, thing.box.y1, thing.low}),
                b = camera_->pixelOf({thing.box.x2, thing.box.y2, thing.high});
    const double size = std::max(std::fabs(a.x - b.x), std::fabs(a.y - b.y)) / look_.dots;
    const double least = symbol ? kSmallSymbol : kDust;
    if (size < least && (camera_->isPlan() || symbol)) {
      const auto& items = symbol ? scene_->symbols()[thing.symbol].items : thing.items;
      if (items.begin == items.end || !isNear(a)) return;
      batchOf(scene_->items()[items.begin].pen, colour)
          .dots.push_back({(a.x + b.x) / 2, (a.y + b.y) / 2});
      return;
    }
  }
  const auto range = [&](const ItemRange& items, const AcGeMatrix3d* matrix) {
    const Place place{camera_, matrix};
    for (std::uint32_t i = items.begin; i < items.end; ++i) {
      gatherItem(scene_->items()[i], place, colour);
    }
  };
  range(thing.items, nullptr);
  if (symbol) range(scene_->symbols()[thing.symbol].items, &scene_->matrices()[thing.matrix]);
}

void ScenePainter::gatherItem(const SceneItem& item, const Place& place, QRgb colour) {
  switch (item.kind) {
    case Kind::line:
      return gatherLine(item, place, batchOf(item.pen, colour));
    case Kind::dot: {
      const Pixel p = place(scene_->points()[item.first]);
      if (isNear(p)) batchOf(item.pen, colour).dots.push_back(point(p));
      return;
    }
    case Kind::fill:
      return fill(item, place, colourOf(item.pen, colour));
    case Kind::text:
      return text(item, place, colour);
  }
}

void ScenePainter::gatherLine(const SceneItem& item, const Place& place, Batch& batch) {
  const AcGePoint3d* p = scene_->points().data() + item.first;
  const Pixel first = place(p[0]);
  Pixel before = first;
  const auto to = [&](const Pixel& next) {
    Pixel a = before, b = next;
    if ((isNear(a) && isNear(b)) || clip(a, b)) batch.lines.push_back({point(a), point(b)});
    before = next;
  };
  for (std::uint32_t i = 1; i < item.count; ++i) {
    const Pixel next = place(p[i]);
    // Steps that nobody can see only cost time; the last point is always reached.
    if (i + 1 < item.count && std::fabs(next.x - before.x) + std::fabs(next.y - before.y) < kStep) {
      continue;
    }
    to(next);
  }
  if (item.closed) to(first);
}

void ScenePainter::fill(const SceneItem& item, const Place& place, const QColor& colour) {
  QPainterPath path;
  path.setFillRule(Qt::OddEvenFill);
  std::uint32_t i = item.first;
  for (std::uint32_t loop = 0; loop < item.loops; ++loop) {
    QPolygonF polygon;
    for (const std::uint32_t end = i + scene_->loopSizes()[item.loop + loop]; i < end; ++i) {
      const Pixel p = place(scene_->points()[i]);
      if (!isNear(p)) return;
      polygon.push_back(point(p));
    }
    path.addPolygon(polygon);
    path.closeSubpath();
  }
  painter_->setRenderHint(QPainter::Antialiasing, true);
  painter_->fillPath(path, colour);
}

// Lines and dots of this pass, pen by pen.
void ScenePainter::flush() {
  // Colours of the moment must be told apart; where there is too much to see each, lines are thin.
  qsizetype coloured = 0;
  for (const auto& [colour, batch] : given_) coloured += batch.lines.size();
  const double given = coloured < kWide ? 2 * look_.dots : look_.dots;
  const auto draw = [&](Batch& batch, const QColor& colour, const cad::view::Pen* pen) {
    if (batch.lines.isEmpty() && batch.dots.isEmpty()) return;
    drawn_ += static_cast<std::size_t>(batch.lines.size());
    painter_->setRenderHint(QPainter::Antialiasing, drawn_ < kSmooth);
    const double wide =
        std::max(look_.dots, pen ? pen->weight * kDotsPerMillimetre * look_.dots : given);
    QPen line(colour, wide <= 1 ? 0 : wide);
    line.setCapStyle(Qt::RoundCap);
    if (pen && pen->linetype >= 0) {
      QList<qreal> dashes;
      double whole = 0;
      for (const double d : scene_->linetypes()[static_cast<std::size_t>(pen->linetype)]) {
        const double pixels = std::max(std::fabs(d) * pen->linetypeScale / camera_->unit(), 0.1);
        dashes.push_back(pixels / std::max(wide, 1.0));
        whole += pixels;
      }
      if (dashes.size() % 2) dashes.pop_back();
      // Too fine to be seen, or so long that one dash fills the window.
      if (whole >= 4 && whole < 1e5 && !dashes.isEmpty()) line.setDashPattern(dashes);
    }
    painter_->setPen(line);
    painter_->drawLines(batch.lines);
    drawDots(batch.dots, colour, 2 * look_.dots);
    batch.lines.clear();
    batch.dots.clear();
  };
  for (std::uint32_t pen = 0; pen < batches_.size(); ++pen) {
    draw(batches_[pen], QColor::fromRgb(penColours_[pen]), &scene_->pens()[pen]);
  }
  for (auto& [colour, batch] : given_) draw(batch, QColor::fromRgb(colour), nullptr);
}

// Squares of full pixels: there may be hundreds of thousands of them.
void ScenePainter::drawDots(const QVector<QPointF>& dots, const QColor& colour, double size) {
  const int side = std::max(1, static_cast<int>(std::lround(size)));
  const QRgb rgb = colour.rgb();
  for (const QPointF& dot : dots) {
    const int left = static_cast<int>(std::floor(dot.x())) - side / 2,
              top = static_cast<int>(std::floor(dot.y())) - side / 2;
    const int right = std::min(left + side, size_.width()),
              bottom = std::min(top + side, size_.height());
    for (int y = std::max(top, 0); y < bottom; ++y) {
      for (int x = std::max(left, 0); x < right; ++x) pixels_[y * stride_ + x] = rgb;
    }
  }
}

void ScenePainter::text(const SceneItem& item, const Place& place, QRgb colour) {
  const AcGePoint3d* p = scene_->points().data() + item.first;
  const Pixel a = place(p[0]), b = place(p[1]), c = place(p[2]);
  const double height = std::hypot(c.x - a.x, c.y - a.y);
  const double unit = std::hypot(b.x - a.x, b.y - a.y);
  if (height < kSmallestText || height > 5000 || unit <= 0 || !isNear(a)) return;
  const cad::shape::Text& t = scene_->texts()[item.text];
  QFont font(QStringLiteral("DejaVu Sans"));
  font.setPixelSize(std::max(1, static_cast<int>(std::lround(height / kCapHeight))));
  const QString shown = qt(t.text);
  const QFontMetricsF metrics(font);
  const double stretch = height / kCapHeight / font.pixelSize();
  const double length = metrics.horizontalAdvance(shown);
  const double along = t.horizontal == 1 ? 0.5 : t.horizontal == 2 ? 1 : 0;
  const double up = t.vertical == 1 ? -0.25 : t.vertical == 2 ? 0.5 : t.vertical == 3 ? 1 : 0;
  painter_->save();
  painter_->setRenderHint(QPainter::Antialiasing, true);
  painter_->setPen(colourOf(item.pen, colour));
  painter_->setFont(font);
  painter_->translate(point(a));
  const bool level =
      std::fabs(b.y - a.y) < 1e-6 * unit && b.x > a.x && std::fabs(unit / height - 1) < 0.01;
  if (level) {
    painter_->scale(stretch, stretch);
  } else {
    const double k = stretch / height;
    painter_->setTransform(
        QTransform((b.x - a.x) * k, (b.y - a.y) * k, -(c.x - a.x) * k, -(c.y - a.y) * k, 0, 0),
        true);
  }
  const QPointF foot(-length * along, font.pixelSize() * kCapHeight * up);
  painter_->drawText(foot, shown);
  textBoxes_.push_back(painter_->transform().mapRect(
      QRectF(foot - QPointF(0, metrics.ascent()), QSizeF(length, metrics.height()))));
  painter_->restore();
}

void ScenePainter::paintThings(QPainter& painter, const Scene& scene, const Camera& camera,
                               const std::vector<std::uint32_t>& things, const QPen& pen) {
  scene_ = &scene;
  camera_ = &camera;
  colours_ = nullptr;
  painter_ = &painter;
  penColours_.assign(scene.pens().size(), pen.color().rgb());
  batches_.assign(scene.pens().size(), {});
  given_.clear();
  painter.save();
  for (const std::uint32_t thing : things) {
    if (thing < scene.things().size() && scene.things()[thing].record) gather(thing);
  }
  painter.setRenderHint(QPainter::Antialiasing, things.size() < 2000);
  for (Batch& batch : batches_) {
    painter.setPen(pen);
    painter.drawLines(batch.lines);
    QPen dots = pen;
    dots.setWidthF(pen.widthF() + 2);
    painter.setPen(dots);
    if (!batch.dots.isEmpty()) {
      painter.drawPoints(batch.dots.constData(), static_cast<int>(batch.dots.size()));
    }
  }
  batches_.clear();  // the next picture is another view
  painter.restore();
  painter_ = nullptr;
}

}  // namespace desktop
