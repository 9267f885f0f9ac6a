#include "cad/drawing/fields.h"

#include <cmath>

namespace cad {
namespace {

TagRange rangeOf(const TagList& tags, std::string_view marker) {
  return marker.empty() ? tags.body() : tags.subclass(marker);
}

// Refuses, or hands the tags and the stretch of the field to `put`.
template <class Put>
Acad::ErrorStatus change(AcDbObject& object, std::string_view marker, bool valid, Put&& put) {
  if (const Acad::ErrorStatus s = writable(object); s != Acad::eOk) return s;
  if (!valid) return Acad::eInvalidInput;
  TagList& tags = Inside::tagsForWrite(object);
  put(tags, rangeOf(tags, marker));
  return Acad::eOk;
}

}  // namespace

const Format& neutralFormat() {
  static const Format format;
  return format;
}

Acad::ErrorStatus writable(const AcDbObject& object) {
  if (!object.isWriteEnabled()) return Acad::eNotOpenForWrite;
  return object.isErased() ? Acad::eWasErased : Acad::eOk;
}

bool isFinite(const AcGePoint3d& p) {
  return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

bool passes(const RealField& field, double value) {
  return std::isfinite(value) && (field.check != RealField::positive || value > 0) &&
         (field.check != RealField::notNegative || value >= 0);
}
bool passes(const NumberField& field, std::int64_t value) {
  return value >= field.low && value <= field.high;
}

double get(const AcDbObject& object, const RealField& f) {
  const TagList& tags = Inside::tags(object);
  return tags.realOr(f.code, f.fallback, rangeOf(tags, f.marker)) * f.unit;
}
std::int64_t get(const AcDbObject& object, const NumberField& f) {
  const TagList& tags = Inside::tags(object);
  return tags.integerOr(f.code, f.fallback, rangeOf(tags, f.marker));
}
std::u16string get(const AcDbObject& object, const TextField& f) {
  const TagList& tags = Inside::tags(object);
  return tags.textOr(f.code, f.fallback, rangeOf(tags, f.marker));
}
AcGePoint3d get(const AcDbObject& object, const PointField& f) {
  const TagList& tags = Inside::tags(object);
  const int i = tags.find(f.code, rangeOf(tags, f.marker));
  return i < 0 ? AcGePoint3d() : tags.point(i);
}

Acad::ErrorStatus set(AcDbObject& object, const RealField& f, double value) {
  return change(object, f.marker, passes(f, value), [&](TagList& tags, TagRange range) {
    tags.putReal(f.code, value / f.unit, range);
  });
}
Acad::ErrorStatus set(AcDbObject& object, const NumberField& f, std::int64_t value) {
  return change(object, f.marker, passes(f, value),
                [&](TagList& tags, TagRange range) { tags.putInteger(f.code, value, range); });
}
Acad::ErrorStatus set(AcDbObject& object, const TextField& f, std::u16string_view value) {
  return change(object, f.marker, true,
                [&](TagList& tags, TagRange range) { tags.putText(f.code, value, range); });
}
Acad::ErrorStatus set(AcDbObject& object, const PointField& f, const AcGePoint3d& value) {
  return change(object, f.marker, isFinite(value),
                [&](TagList& tags, TagRange range) { tags.putPoint(f.code, value, range); });
}

}  // namespace cad
