// The drawing as a user sees and touches it: wheel, drags, clicks, keys; the picture of the scene
// below, and over it what moves with the cursor.
//
// A click answers the question that stands, if it is one for a place or an object; else it chooses
// things. Printable keys go to the command line, wherever the cursor is.
#pragma once

#include <QImage>
#include <QWidget>
#include <functional>
#include <optional>
#include <vector>

#include "apps/desktop/canvas/scene_painter.h"
#include "apps/desktop/prompt_broker.h"
#include "cad/drawing/drawing.h"
#include "cad/view/snap.h"

namespace desktop {

class Canvas : public QWidget {
  Q_OBJECT

 public:
  explicit Canvas(PromptBroker& prompts, QWidget* parent = nullptr);

  // --- the drawing. It must outlive its use; null for none.
  void setDrawing(const cad::Drawing* drawing);
  // The drawing may have changed.
  void refresh();
  cad::view::Scene& scene() { return scene_; }

  // --- the view
  const cad::view::Camera& camera() const { return camera_; }
  void zoomExtents();
  // Shows a window in plan, or what some things cover, with air around it.
  void zoomTo(const cad::view::Window& window);
  void zoomToThings(const std::vector<std::uint32_t>& records);
  void zoomBy(double factor);
  void previousView();
  void setPlan();
  void setOblique();  // from the south-west, turned by dragging with Shift and the middle button
  bool isDark() const { return look_.dark; }
  void setDark(bool dark);
  void setLabels(bool labels);
  void setSnapping(bool on) { snapping_ = on; }
  void setOrtho(bool on) { ortho_ = on; }
  bool isOrtho() const { return ortho_; }

  // --- what is chosen: records of entities, in drawing order
  const std::vector<std::uint32_t>& selection() const { return selection_; }
  void select(std::vector<std::uint32_t> records);
  void selectAll();
  // Colours of the moment, by record; empty for those of the drawing.
  void setColours(const std::vector<std::pair<std::uint32_t, QRgb>>& colours);
  const std::vector<std::pair<std::uint32_t, QRgb>>& colours() const { return recordColours_; }
  // What is painted over the drawing, in logical pixels, below what moves with the cursor; what is
  // told of the entity under the cursor, in lines, empty for nothing. Null takes them off.
  using Overlay = std::function<void(QPainter&)>;
  using Tips = std::function<QString(std::uint32_t record)>;
  void setOverlay(Overlay overlay, Tips tips);
  // Where a place of the world is, in logical pixels.
  QPointF shownAt(const AcGePoint3d& place) const { return logicalOf(camera_.pixelOf(place)); }
  // The texts of the latest picture, in device pixels.
  const std::vector<QRectF>& textBoxes() const { return painter_.textBoxes(); }

 Q_SIGNALS:
  void groundChanged();  // dark or light
  void selectionChanged();
  // Where the cursor is, or snaps to.
  void cursorAt(double x, double y, double z);
  void typed(QKeyEvent* event);
  void menuWanted(const QPoint& global);
  // A chosen symbol has been dragged to a place.
  void gripMoved(std::uint32_t record, double x, double y);
  void activated(std::uint32_t record);  // double click

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool event(QEvent* event) override;

 private:
  enum class Drag { none, pan, orbit, window, grip };

  cad::view::Pixel pixelOf(const QPointF& logical) const;
  QPointF logicalOf(const cad::view::Pixel& pixel) const;
  void viewChanged();
  void rememberView();
  bool wantsPlace() const;
  bool wantsObjects() const;
  // Where the cursor points, snapped where that is wanted.
  AcGePoint3d pointedAt();
  void follow(const QPointF& logical);
  void click(const QPointF& logical, Qt::KeyboardModifiers keys);
  void endWindow(const QPointF& logical, Qt::KeyboardModifiers keys);
  void choose(std::vector<std::uint32_t> things, Qt::KeyboardModifiers keys);
  void answerObjects(const std::vector<std::uint32_t>& things, const AcGePoint3d& place);
  void paintOverlay(QPainter& painter);
  void paintHint(QPainter& painter);
  void paintChosen(QPainter& painter);
  void paintRubberBand(QPainter& painter);
  void paintSnapMark(QPainter& painter);
  void paintWindow(QPainter& painter);
  void paintCross(QPainter& painter);
  void tip(QPainter& painter, const QPointF& at, const QString& text);

  PromptBroker& prompts_;
  const cad::Drawing* drawing_ = nullptr;
  cad::view::Scene scene_;
  cad::view::Camera camera_;
  std::vector<cad::view::Camera> views_;  // earlier ones, the latest last
  ScenePainter painter_;
  CanvasLook look_;
  ThingColours colours_;
  std::vector<std::pair<std::uint32_t, QRgb>> recordColours_;
  Overlay overlay_;
  Tips tips_;
  QImage picture_;
  bool stale_ = true;  // the picture
  bool fitted_ = false;

  std::vector<std::uint32_t> selection_;
  std::uint32_t hovered_ = cad::view::SceneThing::kNone;
  std::optional<cad::view::SnapHit> snap_;
  bool snapping_ = true, ortho_ = false;
  Drag drag_ = Drag::none;
  bool cursorIn_ = false;
  QPointF cursor_, pressed_, last_;
  std::uint32_t grip_ = 0;
};

}  // namespace desktop
