// How the world falls onto a window: plan, or any direction of view, without perspective.
//
// The only place where pixels become world coordinates and back. Pixels are device pixels, Y
// downward, (0,0) the upper left corner; whoever has others multiplies before he asks.
#pragma once

#include "cad/api/ge.h"
#include "cad/view/painter.h"

namespace cad::view {

struct Pixel {
  double x = 0, y = 0;
};

class CAD_API Camera {
 public:
  // The window's size in device pixels, at least 1 x 1. The middle of the view stays.
  void resize(double width, double height);
  double width() const { return width_; }
  double height() const { return height_; }

  // --- what is looked at
  // World units to a pixel; kept within what numbers can show at this place.
  double unit() const { return unit_; }
  const AcGePoint3d& target() const { return target_; }  // in the middle of the window
  // Radians: turn about the upright axis, counterclockwise as the drawing turns for who looks at it
  // from above; tilt from the plan (0) towards the horizon (pi / 2).
  double turn() const { return turn_; }
  double tilt() const { return tilt_; }
  bool isPlan() const { return turn_ == 0 && tilt_ == 0; }

  void look(const AcGePoint3d& target, double unit);
  // Turns the view about its target; the tilt is kept between plan and horizon.
  void orbit(double turn, double tilt);
  void plan() { turn_ = tilt_ = 0, changed(); }
  // Shows a box of the world as large as it fits, with some air.
  void fit(const AcGePoint3d& low, const AcGePoint3d& high, double air = 0.05);
  // The point under a pixel stays under it.
  void zoom(const Pixel& at, double factor);
  void pan(double dx, double dy);  // pixels that the drawing moves by

  // --- between world and pixels
  Pixel pixelOf(const AcGePoint3d& p) const {
    const double x = p.x - target_.x, y = p.y - target_.y, z = p.z - target_.z;
    return {width_ / 2 + (xx_ * x + xy_ * y) / unit_,
            height_ / 2 - (yx_ * x + yy_ * y + yz_ * z) / unit_};
  }
  // The point under a pixel at a height: in plan the point of the drawing, else where the ray of
  // view meets that height; seen from the horizon, the point through the target.
  AcGePoint3d worldOf(const Pixel& pixel, double z = 0) const;
  // What the window shows in plan, at the heights from `low` to `high`.
  Window shown(double low = 0, double high = 0) const;

  // Grows with every change.
  unsigned version() const { return version_; }

 private:
  void changed();

  double width_ = 1, height_ = 1, unit_ = 1;
  AcGePoint3d target_;
  double turn_ = 0, tilt_ = 0;
  double xx_ = 1, xy_ = 0, yx_ = 0, yy_ = 1, yz_ = 0;  // rows of the view: right, and up
  unsigned version_ = 0;
};

}  // namespace cad::view
