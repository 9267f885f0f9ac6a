// Entities that have parts: polylines with their vertices, block references with their attributes.
#include <cmath>

#include "cad/api/entities.h"
#include "cad/drawing/block_geometry.h"
#include "cad/drawing/drawing.h"
#include "cad/drawing/fields.h"

using cad::beginEntity;
using cad::get;
using cad::Inside;
using cad::kDegree;
using cad::NumberField;
using cad::PointField;
using cad::RealField;
using cad::set;
using cad::TagList;
using cad::TagRange;
using cad::writable;

ACRX_DEFINE(AcDb3dPolylineVertex, AcDbEntity)
ACRX_DEFINE(AcDb3dPolyline, AcDbEntity)
ACRX_DEFINE(AcDbPolyline, AcDbEntity)
ACRX_DEFINE(AcDbBlockReference, AcDbEntity)

namespace {
constexpr PointField kVertexPosition{"AcDb3dPolylineVertex", 10};
constexpr NumberField kFlags{"", 70, 0, 0, 255};
constexpr RealField kElevation{"AcDbPolyline", 38};
constexpr PointField kNormal{"AcDbBlockReference", 210};
constexpr RealField kRotation{"AcDbBlockReference", 50, 0, RealField::finite, kDegree};
constexpr RealField kScale[] = {
    {"AcDbBlockReference", 41, 1}, {"AcDbBlockReference", 42, 1}, {"AcDbBlockReference", 43, 1}};
}  // namespace

// --- parts of an entity --------------------------------------------------------------------------

AcDbObjectIterator::AcDbObjectIterator(const cad::Drawing* drawing, std::uint32_t owner)
    : drawing_(drawing), owner_(owner) {
  start();
}
AcDbObjectIterator::~AcDbObjectIterator() = default;
void AcDbObjectIterator::start() { at_ = drawing_ ? drawing_->structure().firstPart(owner_) : 0; }
bool AcDbObjectIterator::done() const { return at_ == 0; }
void AcDbObjectIterator::step() {
  if (at_) at_ = drawing_->structure().nextPart(owner_, at_);
}
AcDbObjectId AcDbObjectIterator::objectId() const {
  return at_ ? drawing_->idOf(at_) : AcDbObjectId();
}

// --- 3D polyline ---------------------------------------------------------------------------------

AcDb3dPolylineVertex::AcDb3dPolylineVertex(const AcGePoint3d& position) {
  TagList& t = beginEntity(*this, "VERTEX", "AcDbVertex");
  t.addLiteral(100, "AcDb3dPolylineVertex");
  t.addPoint(10, position);
  t.addLiteral(70, "32");
}
AcGePoint3d AcDb3dPolylineVertex::position() const { return get(*this, kVertexPosition); }
Acad::ErrorStatus AcDb3dPolylineVertex::setPosition(const AcGePoint3d& position) {
  return set(*this, kVertexPosition, position);
}

AcDb3dPolyline::AcDb3dPolyline() {
  TagList& t = beginEntity(*this, "POLYLINE", "AcDb3dPolyline");
  t.addLiteral(66, "1");
  for (const int code : {10, 20, 30}) t.addLiteral(code, "0.0");
  t.addLiteral(70, "8");
}

AcDbObjectIterator* AcDb3dPolyline::vertexIterator() const {
  return new AcDbObjectIterator(view_->drawing, view_->record);
}

Acad::ErrorStatus AcDb3dPolyline::appendVertex(AcDbObjectId& id, AcDb3dPolylineVertex* vertex) {
  if (!view_->drawing) return Acad::eNotInDatabase;
  if (const auto s = writable(*this); s != Acad::eOk) return s;
  if (!vertex) return Acad::eNullObjectPointer;
  TagList& t = Inside::tagsForWrite(*vertex);
  if (const int i = t.findOwn(8); i >= 0) t.setText(i, layer());
  const Acad::ErrorStatus s = view_->drawing->append(view_->record, *vertex);
  if (s == Acad::eOk) id = vertex->objectId();
  return s;
}

bool AcDb3dPolyline::isClosed() const {
  if (view_->drawing && !view_->modified) {
    return view_->drawing->record(view_->record).is(cad::Record::closed);
  }
  return get(*this, kFlags) & 1;
}

std::vector<AcGePoint3d> cad::vertexPositions(const Drawing& d, std::uint32_t polyline) {
  std::vector<AcGePoint3d> points;
  const auto t = borrowTags();
  for (std::uint32_t v = d.structure().firstPart(polyline); v;
       v = d.structure().nextPart(polyline, v)) {
    d.parse(v, *t);
    const int i = t->find(10);
    points.push_back(i < 0 ? AcGePoint3d() : t->point(i));
  }
  return points;
}

namespace {

// Of one part, so that the ends of a course cost the same however many vertices lie between.
Acad::ErrorStatus vertexPosition(const cad::Drawing& d, std::uint32_t vertex, AcGePoint3d& point) {
  if (!vertex) return Acad::eInvalidIndex;
  const auto t = cad::borrowTags();
  d.parse(vertex, *t);
  const int i = t->find(10);
  point = i < 0 ? AcGePoint3d() : t->point(i);
  return Acad::eOk;
}

}  // namespace

Acad::ErrorStatus AcDb3dPolyline::getStartPoint(AcGePoint3d& point) const {
  if (!view_->drawing) return Acad::eNotInDatabase;
  const cad::Drawing& d = *view_->drawing;
  return vertexPosition(d, d.structure().firstPart(view_->record), point);
}
Acad::ErrorStatus AcDb3dPolyline::getEndPoint(AcGePoint3d& point) const {
  if (!view_->drawing) return Acad::eNotInDatabase;
  const cad::Structure& parts = view_->drawing->structure();
  std::uint32_t last = parts.firstPart(view_->record);
  if (last && !isClosed()) {
    while (const std::uint32_t next = parts.nextPart(view_->record, last)) last = next;
  }
  return vertexPosition(*view_->drawing, last, point);
}

// --- light polyline ------------------------------------------------------------------------------

AcDbPolyline::AcDbPolyline(const std::vector<Vertex>& vertices, bool closed, double elevation,
                           double width) {
  TagList& t = beginEntity(*this, "LWPOLYLINE", "AcDbPolyline");
  t.addInteger(90, static_cast<std::int64_t>(vertices.size()));
  t.addInteger(70, closed ? 1 : 0);
  if (width != 0) t.addReal(43, width);
  if (elevation != 0) t.addReal(38, elevation);
  for (const Vertex& v : vertices) {
    t.addReal(10, v.point.x);
    t.addReal(20, v.point.y);
    if (v.bulge != 0) t.addReal(42, v.bulge);
  }
}

std::vector<AcDbPolyline::Vertex> AcDbPolyline::vertices() const {
  const TagList& t = tags();
  const TagRange range = t.subclass("AcDbPolyline");
  std::vector<Vertex> all;
  for (int i = range.begin; i < range.end; ++i) {
    if (t[i].code == 10) {
      const AcGePoint3d p = t.point(i);
      all.push_back({{p.x, p.y}, 0});
    } else if (t[i].code == 42 && !all.empty()) {
      all.back().bulge = t.real(i);
    }
  }
  return all;
}
bool AcDbPolyline::isClosed() const { return get(*this, kFlags) & 1; }
double AcDbPolyline::elevation() const { return get(*this, kElevation); }

// --- block reference -----------------------------------------------------------------------------

AcDbBlockReference::AcDbBlockReference(const AcGePoint3d& position, AcDbObjectId block) {
  TagList& t = beginEntity(*this, "INSERT", "AcDbBlockReference");
  const cad::Drawing* d = cad::drawingNumbered(block.databaseIndex());
  t.addText(2, d && d->has(block) ? d->names().text(d->record(block.index()).name) : u"");
  t.addPoint(10, position);
}

AcGePoint3d AcDbBlockReference::position() const {
  const TagList& t = tags();
  const int i = t.find(10, t.body());
  if (i < 0) return {};
  const AcGePoint3d p = t.point(i);
  return acGeEntitySystem(normal()) * p;
}

AcGeVector3d AcDbBlockReference::normal() const {
  const TagList& t = tags();
  const int i = t.find(210, t.body());
  if (i < 0) return {0, 0, 1};
  const AcGePoint3d n = t.point(i);
  return {n.x, n.y, n.z};
}

double AcDbBlockReference::rotation() const { return get(*this, kRotation); }

AcGeScale3d AcDbBlockReference::scaleFactors() const {
  return {get(*this, kScale[0]), get(*this, kScale[1]), get(*this, kScale[2])};
}

AcDbObjectId AcDbBlockReference::blockTableRecord() const {
  const TagList& t = tags();
  const int i = t.find(2, t.body());
  if (i < 0 || !view_->drawing) return {};
  const cad::Drawing& d = *view_->drawing;
  return d.idOf(d.structure().blockByName(d.names().find(t.text(i))));
}

std::u16string AcDbBlockReference::blockName() const {
  const TagList& t = tags();
  return t.textOr(2, u"", t.body());
}

AcGeMatrix3d AcDbBlockReference::blockTransform() const {
  return cad::insertTransform(view_->drawing, tags(), blockTableRecord().index());
}

// The attributes go along with every change of the transformation.
template <class Change>
Acad::ErrorStatus AcDbBlockReference::transform(Change&& change) {
  if (!view_->drawing || !view_->drawing->structure().firstPart(view_->record)) return change();
  const auto back = cad::invert(blockTransform());
  // From a transformation that flattens everything nothing can be brought back.
  if (!back) return Acad::eInvalidInput;
  if (const auto s = change(); s != Acad::eOk) return s;
  cad::transformAttributes(*view_->drawing, view_->record, blockTransform() * *back);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::setPosition(const AcGePoint3d& position) {
  if (const auto s = writable(*this); s != Acad::eOk) return s;
  if (!cad::isFinite(position)) return Acad::eInvalidInput;
  return transform([&] {
    // Entity coordinates: the transpose of the axes turns world into entity.
    const auto& axis = acGeEntitySystem(normal()).entry;
    const auto along = [&](int k) {
      return axis[0][k] * position.x + axis[1][k] * position.y + axis[2][k] * position.z;
    };
    const AcGePoint3d local(along(0), along(1), along(2));
    TagList& t = tagsForWrite();
    t.putPoint(10, local, t.subclass("AcDbBlockReference"));
    return Acad::eOk;
  });
}

Acad::ErrorStatus AcDbBlockReference::setRotation(double angle) {
  if (const auto s = writable(*this); s != Acad::eOk) return s;
  if (angle == rotation()) return Acad::eOk;
  return transform([&] { return set(*this, kRotation, angle); });
}

Acad::ErrorStatus AcDbBlockReference::setScaleFactors(const AcGeScale3d& scale) {
  if (const auto s = writable(*this); s != Acad::eOk) return s;
  const double factor[] = {scale.sx, scale.sy, scale.sz};
  for (const double f : factor) {
    if (!std::isfinite(f) || f == 0) return Acad::eInvalidInput;
  }
  return transform([&] {
    for (int k = 0; k < 3; ++k) set(*this, kScale[k], factor[k]);
    return Acad::eOk;
  });
}

Acad::ErrorStatus AcDbBlockReference::setNormal(const AcGeVector3d& normal) {
  if (const auto s = writable(*this); s != Acad::eOk) return s;
  const AcGePoint3d tip(normal.x, normal.y, normal.z);
  if (!cad::isFinite(tip) || normal.length() == 0) return Acad::eInvalidInput;
  const AcGeVector3d old = this->normal();
  if (old.x == normal.x && old.y == normal.y && old.z == normal.z) return Acad::eOk;
  const AcGePoint3d at = position();
  set(*this, kNormal, tip);
  return setPosition(at);
}

AcDbObjectIterator* AcDbBlockReference::attributeIterator() const {
  return new AcDbObjectIterator(view_->drawing, view_->record);
}

Acad::ErrorStatus AcDbBlockReference::openAttribute(AcDbAttribute*& attribute, AcDbObjectId id,
                                                    AcDb::OpenMode mode) const {
  return acdbOpenObject(attribute, id, mode);
}

Acad::ErrorStatus AcDbBlockReference::appendAttribute(AcDbObjectId& id, AcDbAttribute* attribute) {
  if (!view_->drawing) return Acad::eNotInDatabase;
  if (const auto s = writable(*this); s != Acad::eOk) return s;
  if (!attribute) return Acad::eNullObjectPointer;
  TagList& t = Inside::tagsForWrite(*attribute);
  // What lies on layer 0 in the definition goes along with the reference's layer.
  if (const int i = t.findOwn(8); i >= 0 && t.is(i, "0")) t.setText(i, layer());
  const Acad::ErrorStatus s = view_->drawing->append(view_->record, *attribute);
  if (s != Acad::eOk) return s;
  id = attribute->objectId();
  TagList& own = tagsForWrite();
  if (own.findOwn(66) < 0) {
    own.insertInteger(own.subclass("AcDbBlockReference").begin, 66, 1);
  }
  return Acad::eOk;
}
