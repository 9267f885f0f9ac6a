#include "cad/api/tables.h"

#include <cmath>

#include "cad/drawing/block_geometry.h"
#include "cad/drawing/chains.h"
#include "cad/drawing/drawing.h"
#include "cad/drawing/fields.h"
#include "platform/text.h"

using cad::get;
using cad::NumberField;
using cad::Record;
using cad::set;
using cad::TagList;
using cad::TagRange;
using cad::TextField;
using cad::Type;
using cad::writable;

ACRX_DEFINE(AcDbSymbolTableRecord, AcDbObject)
ACRX_DEFINE(AcDbLayerTableRecord, AcDbSymbolTableRecord)
ACRX_DEFINE(AcDbTextStyleTableRecord, AcDbSymbolTableRecord)
ACRX_DEFINE(AcDbLinetypeTableRecord, AcDbSymbolTableRecord)
ACRX_DEFINE(AcDbRegAppTableRecord, AcDbSymbolTableRecord)
ACRX_DEFINE(AcDbBlockTableRecord, AcDbSymbolTableRecord)
ACRX_DEFINE(AcDbSymbolTable, AcDbObject)
ACRX_DEFINE(AcDbBlockTable, AcDbSymbolTable)
ACRX_DEFINE(AcDbLayerTable, AcDbSymbolTable)
ACRX_DEFINE(AcDbTextStyleTable, AcDbSymbolTable)
ACRX_DEFINE(AcDbLinetypeTable, AcDbSymbolTable)
ACRX_DEFINE(AcDbRegAppTable, AcDbSymbolTable)
ACRX_DEFINE(AcDbDictionary, AcDbObject)
ACRX_DEFINE(AcDbXrecord, AcDbObject)

namespace {

constexpr TextField kName{"", 2};
constexpr NumberField kFlags{"", 70, 0, 0, 255};
constexpr NumberField kLayerColor{"", 62, 7, -255, 255};
constexpr TextField kLayerLinetype{"", 6, u"Continuous"};
constexpr TextField kFontFile{"", 3}, kDescription{"", 3};

TagList& beginEntry(AcDbObject& object, std::string_view type, std::string_view marker) {
  TagList& t = cad::Inside::tagsForWrite(object);
  t.create(cad::neutralFormat(), type);
  t.addAscii(100, "AcDbSymbolTableRecord");
  t.addAscii(100, marker);
  return t;
}

Acad::ErrorStatus flagOf(AcDbObject& object, int bit, bool on) {
  const std::int64_t old = get(object, kFlags), flags = on ? old | bit : old & ~bit;
  return flags == old ? writable(object) : set(object, kFlags, flags);
}

}  // namespace

// --- records -------------------------------------------------------------------------------------

std::u16string AcDbSymbolTableRecord::getName() const { return get(*this, kName); }
Acad::ErrorStatus AcDbSymbolTableRecord::getName(std::u16string& name) const {
  name = getName();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTableRecord::setName(std::u16string_view name) {
  if (const auto s = writable(*this); s != Acad::eOk) return s;
  if (view_->drawing) return view_->drawing->rename(*this, name);
  if (!cad::usableName(name, cad::neutralFormat().version)) return Acad::eInvalidInput;
  TagList& t = tagsForWrite();
  if (const int i = t.find(2, t.body()); i >= 0) {
    t.setText(i, name);
  } else {
    const int flags = t.find(70, t.body());
    t.insertText(flags >= 0 ? flags : t.body().end, 2, name);
  }
  return Acad::eOk;
}

AcDbLayerTableRecord::AcDbLayerTableRecord() {
  TagList& t = beginEntry(*this, "LAYER", "AcDbLayerTableRecord");
  t.addInteger(70, 0);
  t.addInteger(62, 7);
  t.addAscii(6, "Continuous");
}
bool AcDbLayerTableRecord::isFrozen() const { return get(*this, kFlags) & 1; }
Acad::ErrorStatus AcDbLayerTableRecord::setIsFrozen(bool frozen) {
  return flagOf(*this, 1, frozen);
}
bool AcDbLayerTableRecord::isLocked() const { return get(*this, kFlags) & 4; }
Acad::ErrorStatus AcDbLayerTableRecord::setIsLocked(bool locked) {
  return flagOf(*this, 4, locked);
}
bool AcDbLayerTableRecord::isOff() const { return get(*this, kLayerColor) < 0; }
Acad::ErrorStatus AcDbLayerTableRecord::setIsOff(bool off) {
  return set(*this, kLayerColor, off ? -colorIndex() : colorIndex());
}
int AcDbLayerTableRecord::colorIndex() const {
  const auto c = static_cast<int>(get(*this, kLayerColor));
  return c < 0 ? -c : c;
}
Acad::ErrorStatus AcDbLayerTableRecord::setColorIndex(int index) {
  if (index < 1) return Acad::eInvalidInput;  // a layer's sign says whether it is on
  const auto s = set(*this, kLayerColor, isOff() ? -index : index);
  if (s != Acad::eOk) return s;
  TagList& t = tagsForWrite();
  if (const int exact = t.find(420, t.body()); exact >= 0) t.erase(exact, exact + 1);
  return Acad::eOk;
}
std::u16string AcDbLayerTableRecord::linetype() const { return get(*this, kLayerLinetype); }
Acad::ErrorStatus AcDbLayerTableRecord::setLinetype(std::u16string_view name) {
  if (view_->drawing && !view_->drawing->structure().tableEntry(Type::ltype, name)) {
    return Acad::eKeyNotFound;
  }
  return set(*this, kLayerLinetype, name);
}

AcDbTextStyleTableRecord::AcDbTextStyleTableRecord() {
  TagList& t = beginEntry(*this, "STYLE", "AcDbTextStyleTableRecord");
  t.addInteger(70, 0);
  t.addReal(40, 0);
  t.addReal(41, 1);
  t.addReal(50, 0);
  t.addInteger(71, 0);
  t.addReal(42, 2.5);
  t.addAscii(3, "txt");
  t.addAscii(4, "");
}
std::u16string AcDbTextStyleTableRecord::fileName() const { return get(*this, kFontFile); }
Acad::ErrorStatus AcDbTextStyleTableRecord::setFileName(std::u16string_view file) {
  return set(*this, kFontFile, file);
}

AcDbLinetypeTableRecord::AcDbLinetypeTableRecord() {
  TagList& t = beginEntry(*this, "LTYPE", "AcDbLinetypeTableRecord");
  t.addInteger(70, 0);
  t.addAscii(3, "");
  t.addInteger(72, 65);
  t.addInteger(73, 0);
  t.addReal(40, 0);
}
std::u16string AcDbLinetypeTableRecord::comments() const { return get(*this, kDescription); }
Acad::ErrorStatus AcDbLinetypeTableRecord::setPattern(std::u16string_view description,
                                                      const std::vector<double>& dashes) {
  if (const auto s = writable(*this); s != Acad::eOk) return s;
  double length = 0;
  for (const double d : dashes) length += d < 0 ? -d : d;
  if (!std::isfinite(length)) return Acad::eInvalidInput;
  TagList& t = tagsForWrite();
  t.putText(3, description, t.body());
  t.putInteger(73, static_cast<std::int64_t>(dashes.size()), t.body());
  t.putReal(40, length, t.body());
  if (const int old = t.find(49, t.body()); old >= 0) t.erase(old, t.body().end);
  int at = t.body().end;
  const bool simple = view_->drawing && !view_->drawing->format().hasHandlesAndMarkers();
  for (const double d : dashes) {
    t.insertReal(at++, 49, d);
    if (!simple) t.insertInteger(at++, 74, 0);
  }
  return Acad::eOk;
}

AcDbRegAppTableRecord::AcDbRegAppTableRecord() {
  beginEntry(*this, "APPID", "AcDbRegAppTableRecord").addInteger(70, 0);
}

// --- block records -------------------------------------------------------------------------------

Acad::ErrorStatus AcDbBlockTableRecord::appendAcDbEntity(AcDbObjectId& id, AcDbEntity* entity) {
  if (const auto s = writable(*this); s != Acad::eOk) return s;
  if (!view_->drawing) return Acad::eNotInDatabase;
  if (!entity) return Acad::eNullObjectPointer;
  const Acad::ErrorStatus s = view_->drawing->append(view_->record, *entity);
  if (s == Acad::eOk) id = entity->objectId();
  return s;
}
Acad::ErrorStatus AcDbBlockTableRecord::appendAcDbEntity(AcDbEntity* entity) {
  AcDbObjectId id;
  return appendAcDbEntity(id, entity);
}
Acad::ErrorStatus AcDbBlockTableRecord::newIterator(AcDbBlockTableRecordIterator*& iterator) const {
  iterator = nullptr;
  if (!view_->drawing) return Acad::eNotInDatabase;
  iterator = new AcDbBlockTableRecordIterator;
  iterator->drawing_ = view_->drawing;
  iterator->block_ = view_->record;
  iterator->at_ = view_->drawing->structure().firstEntity(view_->record);
  return Acad::eOk;
}
AcGePoint3d AcDbBlockTableRecord::origin() const {
  const cad::BlockInfo* info =
      view_->drawing ? view_->drawing->structure().block(view_->record) : nullptr;
  return info ? cad::blockOrigin(*view_->drawing, *info) : AcGePoint3d();
}

bool AcDbBlockTableRecordIterator::done() const { return at_ == 0; }
void AcDbBlockTableRecordIterator::step() {
  if (at_) at_ = drawing_->structure().nextEntity(block_, at_);
}
AcDbObjectId AcDbBlockTableRecordIterator::getEntityId() const { return drawing_->idOf(at_); }
Acad::ErrorStatus AcDbBlockTableRecordIterator::getEntity(AcDbEntity*& entity,
                                                          AcDb::OpenMode mode) const {
  return acdbOpenObject(entity, getEntityId(), mode);
}

// --- tables --------------------------------------------------------------------------------------

Acad::ErrorStatus AcDbSymbolTable::getAt(std::u16string_view name, AcDbObjectId& id) const {
  const cad::Drawing& d = *view_->drawing;
  for (auto t = static_cast<int>(Type::blockRecord); t <= static_cast<int>(Type::ucs); ++t) {
    const cad::TableInfo* info = d.structure().table(static_cast<Type>(t));
    if (!info || info->table != view_->record) continue;
    std::uint32_t i = d.structure().tableEntry(static_cast<Type>(t), name);
    if (!i && static_cast<Type>(t) == Type::blockRecord)
      i = d.structure().blockByName(d.names().find(name));
    if (!i) return Acad::eKeyNotFound;
    id = d.idOf(i);
    return Acad::eOk;
  }
  return Acad::eKeyNotFound;
}

bool AcDbSymbolTable::has(std::u16string_view name) const {
  AcDbObjectId id;
  return getAt(name, id) == Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTable::newIterator(AcDbSymbolTableIterator*& iterator) const {
  iterator = new AcDbSymbolTableIterator;
  iterator->drawing_ = view_->drawing;
  iterator->table_ = view_->record;
  iterator->start();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTable::add(AcDbObjectId& id, AcDbSymbolTableRecord* record) {
  if (const auto s = writable(*this); s != Acad::eOk) return s;
  if (!record) return Acad::eNullObjectPointer;
  const Acad::ErrorStatus s = view_->drawing->append(view_->record, *record);
  if (s == Acad::eOk) id = record->objectId();
  return s;
}

void AcDbSymbolTableIterator::start() { at_ = drawing_->structure().firstTableEntry(table_); }
bool AcDbSymbolTableIterator::done() const { return at_ == 0; }
void AcDbSymbolTableIterator::step() {
  if (at_) at_ = drawing_->structure().nextTableEntry(table_, at_);
}
Acad::ErrorStatus AcDbSymbolTableIterator::getRecordId(AcDbObjectId& id) const {
  id = drawing_->idOf(at_);
  return at_ ? Acad::eOk : Acad::eInvalidIndex;
}
Acad::ErrorStatus AcDbSymbolTableIterator::getRecord(AcDbSymbolTableRecord*& record,
                                                     AcDb::OpenMode mode) const {
  return acdbOpenObject(record, drawing_->idOf(at_), mode);
}

// --- dictionaries --------------------------------------------------------------------------------

AcDbDictionary::AcDbDictionary() {
  TagList& t = tagsForWrite();
  t.create(cad::neutralFormat(), "DICTIONARY");
  t.addAscii(100, "AcDbDictionary");
  t.addInteger(281, 1);
}

bool AcDbDictionary::has(std::u16string_view name) const {
  AcDbObjectId id;
  return getAt(name, id) == Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::getAt(std::u16string_view name, AcDbObjectId& id) const {
  const TagList& t = tags();
  const TagRange body = t.body();
  for (int i = body.begin; i < body.end; ++i) {
    if (t[i].code != 3 || !platform::equalNoCase(t.text(i), name)) continue;
    for (int k = i + 1; k < body.end && t[k].code != 3; ++k) {
      if (t[k].code != 350 && t[k].code != 360) continue;
      const std::uint32_t r = view_->drawing ? view_->drawing->byHandle(t.handle(k)) : 0;
      if (!r || view_->drawing->record(r).is(Record::erased)) return Acad::eKeyNotFound;
      id = view_->drawing->idOf(r);
      return Acad::eOk;
    }
  }
  return Acad::eKeyNotFound;
}

Acad::ErrorStatus AcDbDictionary::setAt(std::u16string_view name, AcDbObject* object,
                                        AcDbObjectId& id) {
  if (const auto s = writable(*this); s != Acad::eOk) return s;
  if (!view_->drawing) return Acad::eNotInDatabase;
  if (!object) return Acad::eNullObjectPointer;
  if (!cad::Inside::view(*object).drawing) {
    const Acad::ErrorStatus s = view_->drawing->append(view_->record, *object);
    if (s != Acad::eOk) return s;
  }
  id = object->objectId();
  TagList& t = tagsForWrite();
  const TagRange body = t.body();
  for (int i = body.begin; i + 1 < body.end; ++i) {
    if (t[i].code == 3 && platform::equalNoCase(t.text(i), name)) {
      t.setHandle(i + 1, object->handle());
      return Acad::eOk;
    }
  }
  const bool hard = t.integerOr(280, 0, body) == 1;
  t.insertText(body.end, 3, name);
  t.insertHandle(body.end + 1, hard ? 360 : 350, object->handle());
  return Acad::eOk;
}

AcDbXrecord::AcDbXrecord() {
  TagList& t = tagsForWrite();
  t.create(cad::neutralFormat(), "XRECORD");
  t.addAscii(100, "AcDbXrecord");
  t.addInteger(280, 1);
}

namespace {

constexpr int kLongBytes = 310;

// What is the record's own: behind its marker and the flag that tells what copying does.
TagRange contentOf(const TagList& tags) {
  const int marker = tags.find(100);
  const int from = marker < 0 ? tags.size() : marker + 1;
  return {from < tags.size() && tags[from].code == 280 ? from + 1 : from, tags.size()};
}

}  // namespace

resbuf* AcDbXrecord::rbChain() const {
  return cad::chainOf(tags(), contentOf(tags()), cad::ChainParts::withoutHandles);
}

resbuf* AcDbXrecord::rbChain(std::string& bytes) const {
  const TagRange content = contentOf(tags());
  bytes.clear();
  bytes.reserve(static_cast<std::size_t>(content.end - content.begin) * 127);
  if (!cad::readBytes(tags(), kLongBytes, content, bytes)) return nullptr;
  return cad::chainOf(tags(), content, cad::ChainParts::withoutHandlesAndBytes);
}

Acad::ErrorStatus AcDbXrecord::setFromRbChain(const resbuf* chain, std::string_view bytes) {
  if (const auto s = writable(*this); s != Acad::eOk) return s;
  for (const resbuf* n = chain; n; n = n->rbnext) {
    const RbKind kind = acutKindOf(n->restype);
    if (kind == RbKind::none) return Acad::eInvalidInput;
    if (kind == RbKind::text && cad::kindOf(n->restype) == cad::ValueKind::bytes &&
        std::u16string_view(n->resval.rstring).size() > 254) {
      return Acad::eInvalidInput;
    }
  }
  TagList& t = tagsForWrite();
  if (const int marker = t.find(100); marker >= 0) t.erase(marker + 1, t.size());
  t.addInteger(280, 1);
  cad::insertChain(t, t.size(), chain);
  cad::addBytes(t, kLongBytes, bytes);
  return Acad::eOk;
}
