// Points, vectors and the transformation of a block reference. Lengths in drawing units, angles in
// radians.
#pragma once

#include <cmath>

struct AcGeVector3d {
  double x = 0, y = 0, z = 0;
  constexpr AcGeVector3d() = default;
  constexpr AcGeVector3d(double px, double py, double pz) : x(px), y(py), z(pz) {}
  double length() const { return std::sqrt(x * x + y * y + z * z); }
  AcGeVector3d operator*(double f) const { return {x * f, y * f, z * f}; }
  AcGeVector3d operator+(const AcGeVector3d& v) const { return {x + v.x, y + v.y, z + v.z}; }
  AcGeVector3d crossProduct(const AcGeVector3d& v) const {
    return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x};
  }
  AcGeVector3d normal() const {
    const double l = length();
    return l > 0 ? AcGeVector3d(x / l, y / l, z / l) : AcGeVector3d();
  }
};

struct AcGePoint3d {
  double x = 0, y = 0, z = 0;
  constexpr AcGePoint3d() = default;
  constexpr AcGePoint3d(double px, double py, double pz) : x(px), y(py), z(pz) {}
  AcGePoint3d operator+(const AcGeVector3d& v) const { return {x + v.x, y + v.y, z + v.z}; }
  AcGeVector3d operator-(const AcGePoint3d& p) const { return {x - p.x, y - p.y, z - p.z}; }
  double distanceTo(const AcGePoint3d& p) const { return (*this - p).length(); }
};

struct AcGePoint2d {
  double x = 0, y = 0;
  constexpr AcGePoint2d() = default;
  constexpr AcGePoint2d(double px, double py) : x(px), y(py) {}
};

struct AcGeScale3d {
  double sx = 1, sy = 1, sz = 1;
  constexpr AcGeScale3d() = default;
  constexpr AcGeScale3d(double px, double py, double pz) : sx(px), sy(py), sz(pz) {}
};

// An affine transformation: entry[row][column], points are columns.
struct AcGeMatrix3d {
  double entry[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};

  AcGePoint3d operator*(const AcGePoint3d& p) const {
    return {entry[0][0] * p.x + entry[0][1] * p.y + entry[0][2] * p.z + entry[0][3],
            entry[1][0] * p.x + entry[1][1] * p.y + entry[1][2] * p.z + entry[1][3],
            entry[2][0] * p.x + entry[2][1] * p.y + entry[2][2] * p.z + entry[2][3]};
  }
  AcGeVector3d operator*(const AcGeVector3d& v) const {
    return {entry[0][0] * v.x + entry[0][1] * v.y + entry[0][2] * v.z,
            entry[1][0] * v.x + entry[1][1] * v.y + entry[1][2] * v.z,
            entry[2][0] * v.x + entry[2][1] * v.y + entry[2][2] * v.z};
  }
  AcGeMatrix3d operator*(const AcGeMatrix3d& m) const {
    AcGeMatrix3d r;
    for (int i = 0; i < 4; ++i) {
      for (int j = 0; j < 4; ++j) {
        r.entry[i][j] = 0;
        for (int k = 0; k < 4; ++k) r.entry[i][j] += entry[i][k] * m.entry[k][j];
      }
    }
    return r;
  }
};

// The axes of the coordinate system that belongs to an extrusion direction (group 210): the
// arbitrary axis rule of the DXF reference. `normal` need not be of unit length; a null vector
// means Z.
inline AcGeMatrix3d acGeEntitySystem(const AcGeVector3d& normal) {
  AcGeVector3d z = normal.normal();
  if (z.length() == 0) z = {0, 0, 1};
  const AcGeVector3d pole = std::fabs(z.x) < 1.0 / 64 && std::fabs(z.y) < 1.0 / 64
                                ? AcGeVector3d(0, 1, 0)
                                : AcGeVector3d(0, 0, 1);
  const AcGeVector3d x = pole.crossProduct(z).normal(), y = z.crossProduct(x).normal();
  AcGeMatrix3d m;
  const AcGeVector3d axes[] = {x, y, z};
  for (int c = 0; c < 3; ++c) {
    m.entry[0][c] = axes[c].x;
    m.entry[1][c] = axes[c].y;
    m.entry[2][c] = axes[c].z;
  }
  return m;
}

// The box of an entity; empty until the first point is added.
class AcDbExtents {
 public:
  void addPoint(const AcGePoint3d& p) {
    if (empty_) {
      min_ = max_ = p;
      empty_ = false;
      return;
    }
    min_ = {std::fmin(min_.x, p.x), std::fmin(min_.y, p.y), std::fmin(min_.z, p.z)};
    max_ = {std::fmax(max_.x, p.x), std::fmax(max_.y, p.y), std::fmax(max_.z, p.z)};
  }
  void addExt(const AcDbExtents& e) {
    if (e.empty_) return;
    addPoint(e.min_);
    addPoint(e.max_);
  }
  bool isEmpty() const { return empty_; }
  const AcGePoint3d& minPoint() const { return min_; }
  const AcGePoint3d& maxPoint() const { return max_; }

 private:
  AcGePoint3d min_, max_;
  bool empty_ = true;
};
