// A scene onto an image: what is in view, in as much detail as pixels can show.
#pragma once

#include <QImage>
#include <QPainter>
#include <cstdint>
#include <optional>
#include <vector>

#include "cad/view/camera.h"
#include "cad/view/scene.h"

namespace desktop {

// Colours that the window gives things for the moment, over those of the drawing: by thing, 0 for
// none, else 0xffRRGGBB.
using ThingColours = std::vector<QRgb>;

struct CanvasLook {
  bool dark = true;
  double dots = 1;  // device pixels to a logical one: line widths and dots grow with it
  bool labels = true;
};

QColor groundColour(bool dark);

class ScenePainter {
 public:
  // All of the scene that the camera shows, on an image of the camera's size. `drawing` is the one
  // that the scene follows, for the texts of symbols; null leaves those out.
  void paint(QImage& image, cad::view::Scene& scene, const cad::Drawing* drawing,
             const cad::view::Camera& camera, const CanvasLook& look,
             const ThingColours* colours = nullptr);

  // What the texts of the latest image cover, those of tables and drawing as those of symbols.
  const std::vector<QRectF>& textBoxes() const { return textBoxes_; }

  // Single things once more, in one colour: what is selected or hovered over.
  void paintThings(QPainter& painter, const cad::view::Scene& scene,
                   const cad::view::Camera& camera, const std::vector<std::uint32_t>& things,
                   const QPen& pen);

 private:
  // What one pen draws, gathered so that it is set once.
  struct Batch {
    QVector<QLineF> lines;
    QVector<QPointF> dots;
  };
  struct Place;

  void gather(std::uint32_t thing);
  void gatherItem(const cad::view::SceneItem& item, const Place& place, QRgb colour);
  void gatherLine(const cad::view::SceneItem& item, const Place& place, Batch& batch);
  void fill(const cad::view::SceneItem& item, const Place& place, const QColor& colour);
  void text(const cad::view::SceneItem& item, const Place& place, QRgb colour);
  void flush();
  void drawDots(const QVector<QPointF>& dots, const QColor& colour, double size);
  Batch& batchOf(std::uint32_t pen, QRgb colour);
  QColor colourOf(std::uint32_t pen, QRgb given) const;

  const cad::view::Scene* scene_ = nullptr;
  const cad::view::Camera* camera_ = nullptr;
  const ThingColours* colours_ = nullptr;
  QPainter* painter_ = nullptr;
  CanvasLook look_;
  std::vector<QRgb> penColours_;
  std::vector<Batch> batches_;                 // by pen
  std::vector<std::pair<QRgb, Batch>> given_;  // by colour of the moment
  std::vector<std::uint32_t> visible_;
  std::vector<QRectF> textBoxes_;
  std::size_t drawn_ = 0;  // lines of this frame
  // The image, for dots, which are set without the painter; null where there is none.
  QRgb* pixels_ = nullptr;
  qsizetype stride_ = 0;  // pixels
  QSize size_;
};

}  // namespace desktop
