// The values of entities and table records as rows: where a value stands among the tags, what it is
// when it is left out, and what it may be. All setters go through here, so that they refuse alike:
// eNotOpenForWrite, eWasErased, eInvalidInput, and nothing has changed then.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "cad/api/db_object.h"
#include "cad/dxf/tags.h"

namespace cad {

constexpr double kDegree = 3.14159265358979323846 / 180;

// The door to how this host keeps an object, which is no part of the host interface.
struct Inside {
  static const TagList& tags(const AcDbObject& object) { return object.tags(); }
  static TagList& tagsForWrite(AcDbObject& object) { return object.tagsForWrite(); }
  static ViewState& view(const AcDbObject& object) { return *object.view_; }
};

// An empty marker stands for the whole object without its extended data.
struct RealField {
  enum Check { finite, positive, notNegative };
  std::string_view marker;
  int code;
  double fallback = 0;
  Check check = finite;
  double unit = 1;  // what the tag counts in: kDegree for angles
};
struct NumberField {
  std::string_view marker;
  int code;
  std::int64_t fallback, low, high;
};
struct TextField {
  std::string_view marker;
  int code;
  std::u16string_view fallback = u"";
};
struct PointField {
  std::string_view marker;
  int code;
};

// The form in which objects are made that belong to no drawing yet.
const Format& neutralFormat();
// A new entity begins with its type, the common part on the current layer, and its own marker.
TagList& beginEntity(AcDbObject& object, std::string_view type, std::string_view marker);

// Whether the object may be changed now.
Acad::ErrorStatus writable(const AcDbObject& object);
bool isFinite(const AcGePoint3d& p);
bool passes(const RealField& field, double value);
bool passes(const NumberField& field, std::int64_t value);

double get(const AcDbObject& object, const RealField& field);
std::int64_t get(const AcDbObject& object, const NumberField& field);
std::u16string get(const AcDbObject& object, const TextField& field);
AcGePoint3d get(const AcDbObject& object, const PointField& field);
Acad::ErrorStatus set(AcDbObject& object, const RealField& field, double value);
Acad::ErrorStatus set(AcDbObject& object, const NumberField& field, std::int64_t value);
Acad::ErrorStatus set(AcDbObject& object, const TextField& field, std::u16string_view value);
Acad::ErrorStatus set(AcDbObject& object, const PointField& field, const AcGePoint3d& value);

}  // namespace cad
