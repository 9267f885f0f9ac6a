// Texts: single lines, attributes, multi-line texts and the texts of leaders.
#include <algorithm>
#include <cmath>

#include "cad/shape/plain_text.h"
#include "cad/shape/shape.h"

namespace cad::shape {

namespace {

constexpr double kPi = 3.14159265358979323846;
// Width of a letter by its height, where no font is asked.
constexpr double kLetterWidth = 0.8;

void emitText(std::u16string text, const Points& frame, int horizontal, int vertical,
              double oblique, const Emit& emit) {
  if (text.empty()) return;
  Primitive p;
  p.kind = Kind::text;
  p.points = frame;
  p.text = {std::move(text), horizontal, vertical, oblique};
  emit(std::move(p));
}

void emitLines(const std::vector<std::u16string>& lines, const AcGePoint3d& at,
               const AcGeVector3d& x, const AcGeVector3d& y, double height, int attachment,
               const Emit& emit) {
  const double step = height * 5 / 3;
  const int column = (attachment - 1) % 3, row = (attachment - 1) / 3;
  const double whole = height + step * static_cast<double>(lines.size() - 1);
  double down = row == 0 ? height : row == 1 ? height - whole / 2 : height - whole;
  for (const std::u16string& line : lines) {
    const AcGePoint3d anchor = at + y * -down;
    emitText(line, {anchor, anchor + x * height, anchor + y * height}, column, 0, 0, emit);
    down += step;
  }
}

}  // namespace

Points textCorners(const Primitive& p) {
  const AcGeVector3d x = p.points[1] - p.points[0], y = p.points[2] - p.points[0];
  const double width = kLetterWidth * static_cast<double>(p.text.text.size());
  const double left = p.text.horizontal == 1 ? -width / 2 : p.text.horizontal == 2 ? -width : 0;
  const double low = p.text.vertical == 2 ? -0.5 : p.text.vertical == 3 ? -1 : 0;
  const auto corner = [&](double along, double up) { return p.points[0] + x * along + y * up; };
  return {corner(left, low), corner(left + width, low), corner(left + width, low + 1),
          corner(left, low + 1)};
}

void drawText(const Drawing& drawing, const TagList& t, bool attribute, const Emit& emit) {
  TagRange own = t.subclass("AcDbText");
  TagRange second = attribute ? t.subclass("AcDbAttribute") : t.subclass("AcDbText", 2);
  if (!drawing.format().hasHandlesAndMarkers()) own = second = t.body();
  if (attribute && t.integerOr(70, 0, second) & 1) return;  // invisible
  const int first = t.find(10, own), anchorTag = t.find(11, own);
  if (first < 0) return;
  const double height = t.realOr(40, 1, own), angle = t.realOr(50, 0, own) * kPi / 180;
  int horizontal = static_cast<int>(t.integerOr(72, 0, own));
  int vertical = static_cast<int>(t.integerOr(attribute ? 74 : 73, 0, second));
  AcGePoint3d anchor = t.point(first);
  AcGeVector3d x(std::cos(angle), std::sin(angle), 0), y(-x.y, x.x, 0);
  if (anchorTag >= 0 && (horizontal || vertical)) {
    const AcGePoint3d other = t.point(anchorTag);
    if (horizontal == 3 || horizontal == 5) {  // aligned and fitted: between two points
      const double l = std::hypot(other.x - anchor.x, other.y - anchor.y);
      if (l > 0) x = {(other.x - anchor.x) / l, (other.y - anchor.y) / l, 0};
      y = {-x.y, x.x, 0};
      horizontal = 0;
    } else {
      anchor = other;
    }
  }
  if (horizontal == 4) {
    horizontal = 1;
    vertical = 2;
  }
  const auto mirror = t.integerOr(71, 0, own);
  if (mirror & 2) x = x * -1;
  if (mirror & 4) y = y * -1;
  const AcGeMatrix3d axes = axesOf(t, own);
  const AcGePoint3d at = axes * anchor;
  const double wide = height * t.realOr(41, 1, own);
  emitText(plainText(t.textOr(1, u"", own)), {at, at + axes * x * wide, at + axes * y * height},
           std::clamp(horizontal, 0, 2), std::clamp(vertical, 0, 3),
           t.realOr(51, 0, own) * kPi / 180, emit);
}

void drawMultilineText(const TagList& t, const Emit& emit) {
  const TagRange own = t.subclass("AcDbMText");
  std::u16string all;
  for (int i = own.begin; i < own.end; ++i) {
    if (t[i].code == 3 || t[i].code == 1) all += t.text(i);
  }
  const int at = t.find(10, own), direction = t.find(11, own), n = t.find(210, own);
  if (at < 0) return;
  AcGeVector3d x;
  if (direction >= 0) {
    const AcGePoint3d d = t.point(direction);
    x = AcGeVector3d(d.x, d.y, d.z).normal();
  } else {
    const double a = t.realOr(50, 0, own) * kPi / 180;
    x = {std::cos(a), std::sin(a), 0};
  }
  const AcGePoint3d normal = n < 0 ? AcGePoint3d(0, 0, 1) : t.point(n);
  const AcGeVector3d y = AcGeVector3d(normal.x, normal.y, normal.z).normal().crossProduct(x);
  const auto attachment = std::clamp<std::int64_t>(t.integerOr(71, 1, own), 1, 9);
  emitLines(plainLines(all), t.point(at), x, y, t.realOr(40, 1, own), static_cast<int>(attachment),
            emit);
}

void drawMultileader(const TagList& t, const Emit& emit) {
  Points points;
  const int end = t.xdataBegin();
  bool inside = false;
  for (int i = 1; i < end; ++i) {
    if (t[i].code == 304 && t.is(i, "LEADER_LINE{")) {
      inside = true;
      points.clear();
    } else if (inside && t[i].code == 10) {
      points.push_back(t.point(i));
    } else if (inside && t[i].code == 305) {
      inside = false;
      emitLine(points, false, emit);
    } else if (!inside && t[i].code == 304 && t[i].size > 0 && t[i].value[t[i].size - 1] != '{') {
      // The text of the content; its place follows as 12.
      const int at = t.find(12, i, end), height = t.find(41, 1, end);
      if (at < 0) continue;
      emitLines(plainLines(t.text(i)), t.point(at), {1, 0, 0}, {0, 1, 0},
                height < 0 ? 2.5 : t.real(height), 1, emit);
    }
  }
}

}  // namespace cad::shape
