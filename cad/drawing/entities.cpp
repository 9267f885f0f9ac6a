#include "cad/api/entities.h"

#include <cmath>

#include "cad/drawing/attribute_form.h"
#include "cad/drawing/drawing.h"
#include "cad/drawing/fields.h"
#include "platform/text.h"

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
using cad::TextField;
using cad::writable;

ACRX_DEFINE(AcDbEntity, AcDbObject)
ACRX_DEFINE(AcDbPoint, AcDbEntity)
ACRX_DEFINE(AcDbLine, AcDbEntity)
ACRX_DEFINE(AcDbText, AcDbEntity)
ACRX_DEFINE(AcDbAttributeDefinition, AcDbText)
ACRX_DEFINE(AcDbAttribute, AcDbText)

const AcDbFullSubentPath kNullSubent{};

namespace {

constexpr NumberField kColor{"AcDbEntity", 62, 256, 0, 256};
constexpr TextField kLinetype{"AcDbEntity", 6, u"ByLayer"};
constexpr PointField kPointPosition{"AcDbPoint", 10};
constexpr PointField kLineStart{"AcDbLine", 10}, kLineEnd{"AcDbLine", 11};
constexpr PointField kTextPosition{"AcDbText", 10}, kTextAnchor{"AcDbText", 11};
constexpr TextField kTextString{"AcDbText", 1}, kTextStyle{"AcDbText", 7, u"Standard"};
constexpr RealField kTextHeight{"AcDbText", 40, 0, RealField::positive};
constexpr RealField kTextRotation{"AcDbText", 50, 0, RealField::finite, kDegree};
constexpr NumberField kAcross{"AcDbText", 72, 0, 0, 5}, kDown{"AcDbText", 73, 0, 0, 3};
constexpr TextField kDefinitionTag{"AcDbAttributeDefinition", 2}, kTag{"AcDbAttribute", 2};
constexpr NumberField kDefinitionFlags{"AcDbAttributeDefinition", 70, 0, 0, 255};
constexpr NumberField kAttributeFlags{"AcDbAttribute", 70, 0, 0, 255};

}  // namespace

TagList& cad::beginEntity(AcDbObject& object, std::string_view type, std::string_view marker) {
  TagList& t = Inside::tagsForWrite(object);
  t.createLiteral(neutralFormat(), type);
  t.addLiteral(100, "AcDbEntity");
  // New entities lie on the current layer until somebody puts them elsewhere.
  const AcDbDatabase* current = acdbHostApplicationServices()->workingDatabase();
  if (current && current->drawing().header().currentLayer() != u"0") {
    t.addText(8, current->drawing().header().currentLayer());
  } else {
    t.addLiteral(8, "0");
  }
  t.addLiteral(100, marker);
  return t;
}

// --- AcDbEntity ----------------------------------------------------------------------------------

std::u16string AcDbEntity::layer() const {
  if (view_->drawing && !view_->modified) {
    return view_->drawing->names().text(view_->drawing->record(view_->record).layer);
  }
  const TagList& t = tags();
  return t.textOr(8, u"0", t.body());
}

Acad::ErrorStatus AcDbEntity::setLayer(std::u16string_view name) {
  if (const auto s = writable(*this); s != Acad::eOk) return s;
  if (name.empty()) return Acad::eInvalidInput;
  if (view_->drawing && !view_->drawing->structure().layerNamed(name, true))
    return Acad::eInvalidInput;
  TagList& t = tagsForWrite();
  const int i = t.findOwn(8);
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

int AcDbEntity::colorIndex() const { return static_cast<int>(get(*this, kColor)); }

AcCmColor AcDbEntity::color() const {
  AcCmColor c;
  c.setColorIndex(colorIndex());
  return c;
}

Acad::ErrorStatus AcDbEntity::setColorIndex(int index) {
  if (const auto s = writable(*this); s != Acad::eOk) return s;
  if (!passes(kColor, index)) return Acad::eInvalidInput;
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

std::u16string AcDbEntity::linetype() const { return get(*this, kLinetype); }

Acad::ErrorStatus AcDbEntity::setLinetype(std::u16string_view name) {
  if (const auto s = writable(*this); s != Acad::eOk) return s;
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
  beginEntity(*this, "POINT", "AcDbPoint").addPoint(10, position);
}
AcGePoint3d AcDbPoint::position() const { return get(*this, kPointPosition); }
Acad::ErrorStatus AcDbPoint::setPosition(const AcGePoint3d& position) {
  return set(*this, kPointPosition, position);
}

AcDbLine::AcDbLine(const AcGePoint3d& start, const AcGePoint3d& end) {
  TagList& t = beginEntity(*this, "LINE", "AcDbLine");
  t.addPoint(10, start);
  t.addPoint(11, end);
}
AcGePoint3d AcDbLine::startPoint() const { return get(*this, kLineStart); }
AcGePoint3d AcDbLine::endPoint() const { return get(*this, kLineEnd); }

// --- text ----------------------------------------------------------------------------------------

AcDbText::AcDbText(const AcGePoint3d& position, std::u16string_view text, double height,
                   double rotation) {
  TagList& t = beginEntity(*this, "TEXT", "AcDbText");
  t.addPoint(10, position);
  t.addReal(40, height);
  t.addText(1, text);
  if (rotation != 0) t.addReal(50, rotation / kDegree);
  t.addLiteral(100, "AcDbText");
}

AcGePoint3d AcDbText::position() const { return get(*this, kTextPosition); }

Acad::ErrorStatus AcDbText::setPosition(const AcGePoint3d& position) {
  const AcGeVector3d by = position - this->position();
  if (const auto s = set(*this, kTextPosition, position); s != Acad::eOk) return s;
  const int anchor = tags().find(kTextAnchor.code, tags().subclass(kTextAnchor.marker));
  return anchor < 0 ? Acad::eOk : set(*this, kTextAnchor, tags().point(anchor) + by);
}

std::u16string AcDbText::textString() const { return get(*this, kTextString); }
Acad::ErrorStatus AcDbText::setTextString(std::u16string_view text) {
  if (const auto s = set(*this, kTextString, text); s != Acad::eOk) return s;
  TagList& t = tagsForWrite();
  // An attribute that carries a multi-line text of its own must not show the old one.
  if (const int embedded = t.find(101); embedded >= 0) {
    const int end = t.xdataBegin();
    if (embedded < end) t.erase(embedded, end);
  }
  return Acad::eOk;
}
double AcDbText::height() const { return get(*this, kTextHeight); }
Acad::ErrorStatus AcDbText::setHeight(double height) { return set(*this, kTextHeight, height); }
double AcDbText::rotation() const { return get(*this, kTextRotation); }
std::u16string AcDbText::textStyleName() const { return get(*this, kTextStyle); }
Acad::ErrorStatus AcDbText::setTextStyleName(std::u16string_view name) {
  if (view_->drawing && !view_->drawing->structure().tableEntry(cad::Type::style, name)) {
    return Acad::eKeyNotFound;
  }
  return set(*this, kTextStyle, name);
}
Acad::ErrorStatus AcDbText::setJustification(int horizontal, int vertical,
                                             const AcGePoint3d& alignment) {
  if (!cad::passes(kDown, vertical) || !cad::isFinite(alignment)) return Acad::eInvalidInput;
  if (const auto s = set(*this, kAcross, horizontal); s != Acad::eOk) return s;
  set(*this, kTextAnchor, alignment);
  TagList& t = tagsForWrite();
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

std::u16string AcDbAttributeDefinition::tag() const { return get(*this, kDefinitionTag); }
bool AcDbAttributeDefinition::isInvisible() const { return get(*this, kDefinitionFlags) & 1; }
bool AcDbAttributeDefinition::isConstant() const { return get(*this, kDefinitionFlags) & 2; }

AcDbAttribute::AcDbAttribute() {
  TagList& t = beginEntity(*this, "ATTRIB", "AcDbText");
  for (const int code : {10, 20, 30}) t.addLiteral(code, "0.0");
  t.addLiteral(40, "1.0");
  t.addLiteral(1, "");
  t.addLiteral(100, "AcDbAttribute");
  t.addLiteral(2, "");
  t.addLiteral(70, "0");
}

std::u16string AcDbAttribute::tag() const { return get(*this, kTag); }
bool AcDbAttribute::isInvisible() const { return get(*this, kAttributeFlags) & 1; }

Acad::ErrorStatus AcDbAttribute::setAttributeFromBlock(const AcDbAttributeDefinition* definition,
                                                       const AcGeMatrix3d& transform) {
  if (!definition) return Acad::eNullObjectPointer;
  if (const auto s = writable(*this); s != Acad::eOk) return s;
  cad::makeAttribute(*definition, transform, tagsForWrite());
  return Acad::eOk;
}
