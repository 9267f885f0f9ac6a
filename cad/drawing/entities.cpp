#include "cad/api/entities.h"

#include <cmath>

#include "cad/drawing/block_geometry.h"
#include "cad/drawing/drawing.h"
#include "platform/text.h"

using cad::Record;
using cad::TagList;
using cad::TagRange;

ACRX_DEFINE(AcDbEntity, AcDbObject)
ACRX_DEFINE(AcDbPoint, AcDbEntity)
ACRX_DEFINE(AcDbLine, AcDbEntity)
ACRX_DEFINE(AcDbText, AcDbEntity)
ACRX_DEFINE(AcDbAttributeDefinition, AcDbText)
ACRX_DEFINE(AcDbAttribute, AcDbText)
ACRX_DEFINE(AcDb3dPolylineVertex, AcDbEntity)
ACRX_DEFINE(AcDb3dPolyline, AcDbEntity)
ACRX_DEFINE(AcDbPolyline, AcDbEntity)
ACRX_DEFINE(AcDbBlockReference, AcDbEntity)

const AcDbFullSubentPath kNullSubent{};

namespace {

constexpr double kDegree = 3.14159265358979323846 / 180;

// A new entity begins with its type, the common part and its own marker.
TagList& begin(AcDbObject& object, std::string_view type, std::string_view marker) {
  TagList& t = object.tagsForWrite();
  static const cad::Format neutral;
  t.create(neutral, type);
  t.addLiteral(100, "AcDbEntity");
  // New entities lie on the current layer until somebody puts them elsewhere.
  const AcDbDatabase* current = acdbHostApplicationServices()->workingDatabase();
  if (current) {
    t.addText(8, current->drawing().header().currentLayer());
  } else {
    t.addAscii(8, "0");
  }
  t.addLiteral(100, marker);
  return t;
}

Acad::ErrorStatus writable(const AcDbObject& object) {
  return object.isWriteEnabled() ? Acad::eOk : Acad::eNotOpenForWrite;
}

}  // namespace

// --- AcDbEntity ----------------------------------------------------------------------------------

std::u16string AcDbEntity::layer() const {
  if (view_->drawing && !view_->modified) {
    return view_->drawing->names().text(view_->drawing->record(view_->record).layer);
  }
  const TagList& t = tags();
  return t.textOr(8, u"0", t.body());
}

Acad::ErrorStatus AcDbEntity::setLayer(std::u16string_view name) {
  if (writable(*this) != Acad::eOk) return Acad::eNotOpenForWrite;
  if (name.empty()) return Acad::eInvalidInput;
  if (view_->drawing && !view_->drawing->structure().layerNamed(name, true))
    return Acad::eInvalidInput;
  TagList& t = tagsForWrite();
  const int i = t.find(8, t.body());
  if (i >= 0) {
    t.setText(i, name);
  } else {
    t.insertText(t.subclass("AcDbEntity").begin, 8, name);
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setLayer(AcDbObjectId id) {
  const cad::Drawing* d = cad::drawingNumbered(id.databaseIndex());
  if (!d || !d->has(id)) return Acad::eNullObjectId;
  return setLayer(std::u16string_view(d->names().text(d->record(id.index()).name)));
}

int AcDbEntity::colorIndex() const {
  const TagList& t = tags();
  return static_cast<int>(t.integerOr(62, 256, t.subclass("AcDbEntity")));
}

AcCmColor AcDbEntity::color() const {
  AcCmColor c;
  c.setColorIndex(colorIndex());
  return c;
}

Acad::ErrorStatus AcDbEntity::setColorIndex(int index) {
  if (writable(*this) != Acad::eOk) return Acad::eNotOpenForWrite;
  if (index < 0 || index > 256) return Acad::eInvalidInput;
  TagList& t = tagsForWrite();
  TagRange common = t.subclass("AcDbEntity");
  const int i = t.find(62, common);
  // A true colour would win over the index.
  if (const int exact = t.find(420, common); exact >= 0) {
    t.erase(exact, exact + 1);
    return setColorIndex(index);
  }
  if (index == 256) {
    if (i >= 0) t.erase(i, i + 1);
    return Acad::eOk;
  }
  if (i >= 0) {
    t.setInteger(i, index);
    return Acad::eOk;
  }
  const int layer = t.find(8, common);
  t.insertInteger(layer >= 0 ? layer + 1 : common.begin, 62, index);
  return Acad::eOk;
}

std::u16string AcDbEntity::linetype() const {
  const TagList& t = tags();
  return t.textOr(6, u"ByLayer", t.subclass("AcDbEntity"));
}

Acad::ErrorStatus AcDbEntity::setLinetype(std::u16string_view name) {
  if (writable(*this) != Acad::eOk) return Acad::eNotOpenForWrite;
  if (view_->drawing && !view_->drawing->structure().hasLinetype(name)) return Acad::eKeyNotFound;
  TagList& t = tagsForWrite();
  TagRange common = t.subclass("AcDbEntity");
  const int i = t.find(6, common);
  if (platform::equalNoCase(name, u"ByLayer")) {
    if (i >= 0) t.erase(i, i + 1);
  } else if (i >= 0) {
    t.setText(i, name);
  } else {
    const int layer = t.find(8, common);
    t.insertText(layer >= 0 ? layer + 1 : common.begin, 6, name);
  }
  return Acad::eOk;
}

std::u16string AcDbEntity::dxfName() const { return platform::widen(tags()[0].bytes()); }

Acad::ErrorStatus AcDbEntity::highlight(const AcDbFullSubentPath&) const {
  if (view_->drawing) view_->drawing->setHighlighted(view_->record, true);
  return Acad::eOk;
}
Acad::ErrorStatus AcDbEntity::unhighlight(const AcDbFullSubentPath&) const {
  if (view_->drawing) view_->drawing->setHighlighted(view_->record, false);
  return Acad::eOk;
}
void AcDbEntity::recordGraphicsModified(bool modified) {
  if (modified && view_->writing) tagsForWrite();
}

// --- point, line ---------------------------------------------------------------------------------

AcDbPoint::AcDbPoint(const AcGePoint3d& position) {
  begin(*this, "POINT", "AcDbPoint").addPoint(10, position);
}
AcGePoint3d AcDbPoint::position() const {
  const int i = tags().find(10);
  return i < 0 ? AcGePoint3d() : tags().point(i);
}
Acad::ErrorStatus AcDbPoint::setPosition(const AcGePoint3d& position) {
  if (writable(*this) != Acad::eOk) return Acad::eNotOpenForWrite;
  TagList& t = tagsForWrite();
  t.putPoint(10, position, t.subclass("AcDbPoint"));
  return Acad::eOk;
}

AcDbLine::AcDbLine(const AcGePoint3d& start, const AcGePoint3d& end) {
  TagList& t = begin(*this, "LINE", "AcDbLine");
  t.addPoint(10, start);
  t.addPoint(11, end);
}
AcGePoint3d AcDbLine::startPoint() const {
  const int i = tags().find(10);
  return i < 0 ? AcGePoint3d() : tags().point(i);
}
AcGePoint3d AcDbLine::endPoint() const {
  const int i = tags().find(11);
  return i < 0 ? AcGePoint3d() : tags().point(i);
}

// --- text ----------------------------------------------------------------------------------------

AcDbText::AcDbText(const AcGePoint3d& position, std::u16string_view text, double height,
                   double rotation) {
  TagList& t = begin(*this, "TEXT", "AcDbText");
  t.addPoint(10, position);
  t.addReal(40, height);
  t.addText(1, text);
  if (rotation != 0) t.addReal(50, rotation / kDegree);
  t.addLiteral(100, "AcDbText");
}

AcGePoint3d AcDbText::position() const {
  const int i = tags().find(10, tags().subclass("AcDbText"));
  return i < 0 ? AcGePoint3d() : tags().point(i);
}

Acad::ErrorStatus AcDbText::setPosition(const AcGePoint3d& position) {
  if (writable(*this) != Acad::eOk) return Acad::eNotOpenForWrite;
  TagList& t = tagsForWrite();
  const AcGeVector3d by = position - this->position();
  t.putPoint(10, position, t.subclass("AcDbText"));
  const TagRange range = t.subclass("AcDbText");
  if (const int i = t.find(11, range); i >= 0) {
    const AcGePoint3d anchor = t.point(i) + by;
    t.putPoint(11, anchor, range);
  }
  return Acad::eOk;
}

std::u16string AcDbText::textString() const {
  const TagList& t = tags();
  return t.textOr(1, u"", t.subclass("AcDbText"));
}
Acad::ErrorStatus AcDbText::setTextString(std::u16string_view text) {
  if (writable(*this) != Acad::eOk) return Acad::eNotOpenForWrite;
  TagList& t = tagsForWrite();
  t.putText(1, text, t.subclass("AcDbText"));
  // An attribute that carries a multi-line text of its own must not show the old one.
  if (const int embedded = t.find(101); embedded >= 0) {
    const int end = t.xdataBegin();
    if (embedded < end) t.erase(embedded, end);
  }
  return Acad::eOk;
}
double AcDbText::height() const {
  const TagList& t = tags();
  return t.realOr(40, 0, t.subclass("AcDbText"));
}
Acad::ErrorStatus AcDbText::setHeight(double height) {
  if (writable(*this) != Acad::eOk) return Acad::eNotOpenForWrite;
  TagList& t = tagsForWrite();
  t.putReal(40, height, t.subclass("AcDbText"));
  return Acad::eOk;
}
double AcDbText::rotation() const {
  const TagList& t = tags();
  return t.realOr(50, 0, t.subclass("AcDbText")) * kDegree;
}
std::u16string AcDbText::textStyleName() const {
  const TagList& t = tags();
  return t.textOr(7, u"Standard", t.subclass("AcDbText"));
}
Acad::ErrorStatus AcDbText::setTextStyleName(std::u16string_view name) {
  if (writable(*this) != Acad::eOk) return Acad::eNotOpenForWrite;
  if (view_->drawing && !view_->drawing->structure().tableEntry(cad::Type::style, name))
    return Acad::eKeyNotFound;
  TagList& t = tagsForWrite();
  t.putText(7, name, t.subclass("AcDbText"));
  return Acad::eOk;
}
Acad::ErrorStatus AcDbText::setJustification(int horizontal, int vertical,
                                             const AcGePoint3d& alignment) {
  if (writable(*this) != Acad::eOk) return Acad::eNotOpenForWrite;
  TagList& t = tagsForWrite();
  t.putInteger(72, horizontal, t.subclass("AcDbText"));
  t.putPoint(11, alignment, t.subclass("AcDbText"));
  // The vertical alignment is 73 in a text; in attributes 73 is the length of the field.
  if (t.is(0, "ATTRIB")) {
    t.putInteger(74, vertical, t.subclass("AcDbAttribute"));
  } else if (t.is(0, "ATTDEF")) {
    t.putInteger(74, vertical, t.subclass("AcDbAttributeDefinition"));
  } else {
    t.putInteger(73, vertical, t.subclass("AcDbText", 2));
  }
  return Acad::eOk;
}

// --- attributes ----------------------------------------------------------------------------------

std::u16string AcDbAttributeDefinition::tag() const {
  const TagList& t = tags();
  return t.textOr(2, u"", t.subclass("AcDbAttributeDefinition"));
}
bool AcDbAttributeDefinition::isInvisible() const {
  const TagList& t = tags();
  return t.integerOr(70, 0, t.subclass("AcDbAttributeDefinition")) & 1;
}
bool AcDbAttributeDefinition::isConstant() const {
  const TagList& t = tags();
  return t.integerOr(70, 0, t.subclass("AcDbAttributeDefinition")) & 2;
}

AcDbAttribute::AcDbAttribute() {
  TagList& t = begin(*this, "ATTRIB", "AcDbText");
  t.addPoint(10, {});
  t.addReal(40, 1);
  t.addAscii(1, "");
  t.addLiteral(100, "AcDbAttribute");
  t.addAscii(2, "");
  t.addInteger(70, 0);
}

std::u16string AcDbAttribute::tag() const {
  const TagList& t = tags();
  return t.textOr(2, u"", t.subclass("AcDbAttribute"));
}

bool AcDbAttribute::hasTag(std::u16string_view tag) const {
  const TagList& t = tags();
  const int i = t.find(2, t.subclass("AcDbAttribute"));
  if (i < 0) return tag.empty();
  const std::string_view bytes = t[i].bytes();
  if (bytes.size() == tag.size()) {
    bool same = true;
    for (std::size_t k = 0; same && k < tag.size(); ++k) {
      same = tag[k] < 128 && static_cast<char16_t>(static_cast<unsigned char>(bytes[k])) == tag[k];
    }
    if (same && bytes.find_first_of("\\^") == bytes.npos) return true;
  }
  return t.text(i) == tag;
}

bool AcDbAttribute::isInvisible() const {
  const TagList& t = tags();
  return t.integerOr(70, 0, t.subclass("AcDbAttribute")) & 1;
}

Acad::ErrorStatus AcDbAttribute::setAttributeFromBlock(const AcDbAttributeDefinition* definition,
                                                       const AcGeMatrix3d& transform) {
  if (!definition) return Acad::eNullObjectPointer;
  if (writable(*this) != Acad::eOk) return Acad::eNotOpenForWrite;
  const TagList& from = definition->tags();
  const bool old = !from.format().hasHandlesAndMarkers();  // one stretch holds everything there
  const TagRange common = from.subclass("AcDbEntity"), text = from.subclass("AcDbText"),
                 own = from.subclass("AcDbAttributeDefinition");
  TagList& t = tagsForWrite();
  t.create(from.format(), "ATTRIB");
  t.addLiteral(100, "AcDbEntity");
  for (int i = common.begin; i < common.end; ++i) {
    switch (from[i].code) {
      case 8:
      case 6:
      case 62:
      case 48:
      case 60:
      case 370:
      case 420:
        t.insertCopy(t.size(), from, i);
        break;
      default:
        break;
    }
  }
  t.addLiteral(100, "AcDbText");
  const double scale =
      AcGeVector3d(transform.entry[0][1], transform.entry[1][1], transform.entry[2][1]).length();
  const double turn = std::atan2(transform.entry[1][0], transform.entry[0][0]);
  bool turned = false;
  for (int i = text.begin; i < text.end; ++i) {
    const int code = from[i].code;
    if (code == 10 || code == 11) {
      t.addPoint(code, transform * from.point(i));
      while (i + 1 < text.end && (from[i + 1].code == code + 10 || from[i + 1].code == code + 20))
        ++i;
    } else if (code == 40 && scale != 1) {
      t.addReal(40, from.real(i) * scale);
    } else if (code == 50) {
      t.addReal(50, from.real(i) + turn / kDegree);
      turned = true;
    } else if (!old || (code != 2 && code != 3 && code != 70 && code != 73 && code != 74 &&
                        code != 8 && code != 6 && code != 62 && code != 5)) {
      t.insertCopy(t.size(), from, i);
    }
  }
  if (!turned && turn != 0) t.addReal(50, turn / kDegree);
  // Tag, flags, field length and vertical alignment have the same codes in both.
  t.addLiteral(100, "AcDbAttribute");
  for (const int code : {2, 70, 73, 74}) {
    const int i = from.find(code, own);
    if (i >= 0) t.insertCopy(t.size(), from, i);
  }
  return Acad::eOk;
}

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
  TagList& t = begin(*this, "VERTEX", "AcDbVertex");
  t.addLiteral(100, "AcDb3dPolylineVertex");
  t.addPoint(10, position);
  t.addInteger(70, 32);
}
AcGePoint3d AcDb3dPolylineVertex::position() const {
  const int i = tags().find(10);
  return i < 0 ? AcGePoint3d() : tags().point(i);
}
Acad::ErrorStatus AcDb3dPolylineVertex::setPosition(const AcGePoint3d& position) {
  if (writable(*this) != Acad::eOk) return Acad::eNotOpenForWrite;
  TagList& t = tagsForWrite();
  t.putPoint(10, position, t.subclass("AcDb3dPolylineVertex"));
  return Acad::eOk;
}

AcDb3dPolyline::AcDb3dPolyline() {
  TagList& t = begin(*this, "POLYLINE", "AcDb3dPolyline");
  t.addInteger(66, 1);
  t.addPoint(10, {});
  t.addInteger(70, 8);
}

AcDbObjectIterator* AcDb3dPolyline::vertexIterator() const {
  return new AcDbObjectIterator(view_->drawing, view_->record);
}

Acad::ErrorStatus AcDb3dPolyline::appendVertex(AcDbObjectId& id, AcDb3dPolylineVertex* vertex) {
  if (!view_->drawing) return Acad::eNotInDatabase;
  if (writable(*this) != Acad::eOk) return Acad::eNotOpenForWrite;
  if (!vertex) return Acad::eNullObjectPointer;
  TagList& t = vertex->tagsForWrite();
  if (const int i = t.find(8, t.body()); i >= 0) t.setText(i, layer());
  const Acad::ErrorStatus s = view_->drawing->append(view_->record, *vertex);
  if (s == Acad::eOk) id = vertex->objectId();
  return s;
}

bool AcDb3dPolyline::isClosed() const {
  const TagList& t = tags();
  return t.integerOr(70, 0, t.subclass("AcDb3dPolyline")) & 1;
}

void AcDb3dPolyline::vertices(std::vector<AcGePoint3d>& points) const {
  if (!view_->drawing) return;
  const cad::Drawing& d = *view_->drawing;
  const auto t = cad::borrowTags();
  for (std::uint32_t v = d.structure().firstPart(view_->record); v;
       v = d.structure().nextPart(view_->record, v)) {
    d.parse(v, *t);
    const int i = t->find(10);
    points.push_back(i < 0 ? AcGePoint3d() : t->point(i));
  }
}

Acad::ErrorStatus AcDb3dPolyline::getStartPoint(AcGePoint3d& point) const {
  std::vector<AcGePoint3d> points;
  vertices(points);
  if (points.empty()) return Acad::eInvalidIndex;
  point = points.front();
  return Acad::eOk;
}
Acad::ErrorStatus AcDb3dPolyline::getEndPoint(AcGePoint3d& point) const {
  std::vector<AcGePoint3d> points;
  vertices(points);
  if (points.empty()) return Acad::eInvalidIndex;
  point = isClosed() ? points.front() : points.back();
  return Acad::eOk;
}

// --- light polyline ------------------------------------------------------------------------------

AcDbPolyline::AcDbPolyline(const std::vector<Vertex>& vertices, bool closed, double elevation,
                           double width) {
  TagList& t = begin(*this, "LWPOLYLINE", "AcDbPolyline");
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
bool AcDbPolyline::isClosed() const {
  const TagList& t = tags();
  return t.integerOr(70, 0, t.subclass("AcDbPolyline")) & 1;
}
double AcDbPolyline::elevation() const {
  const TagList& t = tags();
  return t.realOr(38, 0, t.subclass("AcDbPolyline"));
}

// --- block reference -----------------------------------------------------------------------------

AcDbBlockReference::AcDbBlockReference(const AcGePoint3d& position, AcDbObjectId block) {
  TagList& t = begin(*this, "INSERT", "AcDbBlockReference");
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

double AcDbBlockReference::rotation() const {
  const TagList& t = tags();
  return t.realOr(50, 0, t.body()) * kDegree;
}

AcGeScale3d AcDbBlockReference::scaleFactors() const {
  const TagList& t = tags();
  const TagRange r = t.body();
  return {t.realOr(41, 1, r), t.realOr(42, 1, r), t.realOr(43, 1, r)};
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

Acad::ErrorStatus AcDbBlockReference::setPosition(const AcGePoint3d& position) {
  if (writable(*this) != Acad::eOk) return Acad::eNotOpenForWrite;
  const AcGeMatrix3d before = blockTransform();
  TagList& t = tagsForWrite();
  // Entity coordinates: the transpose of the axes turns world into entity.
  const AcGeMatrix3d axes = acGeEntitySystem(normal());
  const AcGePoint3d local(
      axes.entry[0][0] * position.x + axes.entry[1][0] * position.y + axes.entry[2][0] * position.z,
      axes.entry[0][1] * position.x + axes.entry[1][1] * position.y + axes.entry[2][1] * position.z,
      axes.entry[0][2] * position.x + axes.entry[1][2] * position.y +
          axes.entry[2][2] * position.z);
  t.putPoint(10, local, t.subclass("AcDbBlockReference"));
  moveAttributes(before, blockTransform());
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::setRotation(double angle) {
  if (writable(*this) != Acad::eOk) return Acad::eNotOpenForWrite;
  if (angle == rotation()) return Acad::eOk;
  const AcGeMatrix3d before = blockTransform();
  TagList& t = tagsForWrite();
  t.putReal(50, angle / kDegree, t.subclass("AcDbBlockReference"));
  moveAttributes(before, blockTransform());
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::setScaleFactors(const AcGeScale3d& scale) {
  if (writable(*this) != Acad::eOk) return Acad::eNotOpenForWrite;
  const AcGeMatrix3d before = blockTransform();
  TagList& t = tagsForWrite();
  const double factor[] = {scale.sx, scale.sy, scale.sz};
  for (int k = 0; k < 3; ++k) t.putReal(41 + k, factor[k], t.subclass("AcDbBlockReference"));
  moveAttributes(before, blockTransform());
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::setNormal(const AcGeVector3d& normal) {
  if (writable(*this) != Acad::eOk) return Acad::eNotOpenForWrite;
  const AcGeVector3d old = this->normal();
  if (old.x == normal.x && old.y == normal.y && old.z == normal.z) return Acad::eOk;
  const AcGePoint3d at = position();
  TagList& t = tagsForWrite();
  t.putPoint(210, {normal.x, normal.y, normal.z}, t.subclass("AcDbBlockReference"));
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
  if (writable(*this) != Acad::eOk) return Acad::eNotOpenForWrite;
  if (!attribute) return Acad::eNullObjectPointer;
  TagList& own = tagsForWrite();
  if (own.find(66, own.body()) < 0)
    own.insertInteger(own.subclass("AcDbBlockReference").begin, 66, 1);
  TagList& t = attribute->tagsForWrite();
  // What lies on layer 0 in the definition goes along with the reference's layer.
  if (const int i = t.find(8, t.body()); i >= 0 && t.is(i, "0")) t.setText(i, layer());
  const Acad::ErrorStatus s = view_->drawing->append(view_->record, *attribute);
  if (s == Acad::eOk) id = attribute->objectId();
  return s;
}

void AcDbBlockReference::moveAttributes(const AcGeMatrix3d& before, const AcGeMatrix3d& after) {
  if (!view_->drawing) return;
  cad::transformAttributes(*view_->drawing, view_->record, before, after);
}
