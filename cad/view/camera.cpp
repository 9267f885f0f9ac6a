#include "cad/view/camera.h"

#include <algorithm>
#include <cmath>

namespace cad::view {
namespace {

constexpr double kHorizon = 1.5707963267948966;
// Between neighbouring pixels there must be numbers, and all that a drawing may hold must fit.
constexpr double kSmallestUnit = 1e-7, kLargestUnit = 1e12, kDigits = 1e-13;

}  // namespace

void Camera::changed() {
  const double s = std::sin(turn_), c = std::cos(turn_), up = std::cos(tilt_);
  xx_ = c, xy_ = -s;
  yx_ = s * up, yy_ = c * up;
  yz_ = std::sin(tilt_);
  ++version_;
}

void Camera::resize(double width, double height) {
  width_ = std::max(1.0, width);
  height_ = std::max(1.0, height);
  ++version_;
}

void Camera::look(const AcGePoint3d& target, double unit) {
  target_ = target;
  const double far = std::max({std::fabs(target.x), std::fabs(target.y), 1.0}) * kDigits;
  unit_ = std::clamp(unit, std::max(kSmallestUnit, far), kLargestUnit);
  changed();
}

void Camera::orbit(double turn, double tilt) {
  turn_ = std::remainder(turn, 4 * kHorizon);
  tilt_ = std::clamp(tilt, 0.0, kHorizon);
  changed();
}

void Camera::fit(const AcGePoint3d& low, const AcGePoint3d& high, double air) {
  look({(low.x + high.x) / 2, (low.y + high.y) / 2, (low.z + high.z) / 2}, 1);
  double wide = 0, tall = 0;
  for (int corner = 0; corner < 8; ++corner) {
    const Pixel p = pixelOf(
        {corner & 1 ? low.x : high.x, corner & 2 ? low.y : high.y, corner & 4 ? low.z : high.z});
    wide = std::max(wide, std::fabs(p.x - width_ / 2) * 2);
    tall = std::max(tall, std::fabs(p.y - height_ / 2) * 2);
  }
  const double fitting = std::max(wide / width_, tall / height_) * (1 + 2 * air);
  look(target_, fitting > 0 ? fitting * unit_ : 1);
}

AcGePoint3d Camera::worldOf(const Pixel& pixel, double z) const {
  const double right = (pixel.x - width_ / 2) * unit_, up = (height_ / 2 - pixel.y) * unit_;
  const double flat = std::cos(tilt_), dz = z - target_.z;
  const bool edge = flat < 1e-9;
  // Along the ground, away from whoever looks.
  const double away = edge ? 0 : (up - yz_ * dz) / flat;
  const double s = std::sin(turn_), c = std::cos(turn_);
  return {target_.x + c * right + s * away, target_.y - s * right + c * away,
          edge ? target_.z + up : z};
}

Window Camera::shown(double low, double high) const {
  Window all{1e300, 1e300, -1e300, -1e300};
  if (std::cos(tilt_) < 1e-3) return {-1e300, -1e300, 1e300, 1e300};
  for (const double z : {low, high}) {
    for (const Pixel corner :
         {Pixel{0, 0}, Pixel{width_, 0}, Pixel{0, height_}, Pixel{width_, height_}}) {
      const AcGePoint3d p = worldOf(corner, z);
      all = {std::min(all.x1, p.x), std::min(all.y1, p.y), std::max(all.x2, p.x),
             std::max(all.y2, p.y)};
    }
  }
  return all;
}

void Camera::zoom(const Pixel& at, double factor) {
  if (!(factor > 0)) return;
  const double before = unit_;
  look(target_, unit_ / factor);
  const double gone = before - unit_;  // of a pixel
  const double right = (at.x - width_ / 2) * gone, up = (height_ / 2 - at.y) * gone;
  const double s = std::sin(turn_), c = std::cos(turn_);
  const double flat = std::cos(tilt_), away = up * flat;
  look({target_.x + c * right + s * away, target_.y - s * right + c * away, target_.z + up * yz_},
       unit_);
}

void Camera::pan(double dx, double dy) {
  const double right = -dx * unit_, up = dy * unit_;
  const double s = std::sin(turn_), c = std::cos(turn_), away = up * std::cos(tilt_);
  look({target_.x + c * right + s * away, target_.y - s * right + c * away, target_.z + up * yz_},
       unit_);
}

}  // namespace cad::view
