// What the tests of drawings share: drawings from text, and one edit that makes every kind of
// change.
#pragma once

#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "cad/api/database.h"
#include "cad/drawing/block_geometry.h"
#include "cad/drawing/drawing.h"
#include "cad/drawing/fields.h"

namespace testing_drawings {

using Database = std::unique_ptr<AcDbDatabase>;

// The bytes of an ASCII drawing from lines "code value".
inline std::string tags(std::string_view lines, std::string_view end = "\n") {
  std::string out;
  while (!lines.empty()) {
    const std::string_view line = lines.substr(0, lines.find('\n'));
    lines.remove_prefix(std::min(lines.size(), line.size() + 1));
    const std::size_t from = line.find_first_not_of(' ');
    if (from == line.npos) continue;
    const std::size_t blank = line.find(' ', from);
    const std::string_view code = line.substr(from, blank == line.npos ? blank : blank - from);
    out.append(code.size() < 3 ? 3 - code.size() : 0, ' ').append(code).append(end);
    if (blank != line.npos) out.append(line.substr(blank + 1));
    out.append(end);
  }
  return out;
}

// A database read from bytes, or null; `warnings` gets what was repaired, `error` why it was
// refused.
inline Database load(std::string_view bytes, std::vector<std::string>* warnings = nullptr,
                     std::string* error = nullptr) {
  auto database = std::make_unique<AcDbDatabase>(false);
  cad::Block block(bytes.size() + 1);
  if (!bytes.empty()) std::memcpy(block.data(), bytes.data(), bytes.size());
  std::vector<std::string> repaired;
  auto loaded = database->drawing().loadBytes(std::move(block), bytes.size(), "test.dxf", repaired);
  if (warnings) *warnings = repaired;
  if (!loaded && error) *error = loaded.error();
  return loaded ? std::move(database) : nullptr;
}

// The drawing in which commands work, for the span of a scope.
class Working {
 public:
  explicit Working(AcDbDatabase* database)
      : before_(acdbHostApplicationServices()->workingDatabase()) {
    acdbHostApplicationServices()->setWorkingDatabase(database);
  }
  ~Working() { acdbHostApplicationServices()->setWorkingDatabase(before_); }
  Working(const Working&) = delete;
  Working& operator=(const Working&) = delete;

 private:
  AcDbDatabase* before_;
};

inline AcDbObjectId modelSpace(AcDbDatabase& database) {
  return database.drawing().idOf(database.drawing().structure().modelSpace());
}

// Puts an entity at the end of a block; it stays open. Deletes it when the drawing does not take
// it.
inline AcDbObjectId append(AcDbDatabase& database, AcDbEntity* entity, AcDbObjectId block = {}) {
  AcDbObjectId id;
  AcDbBlockTableRecord* space = nullptr;
  if (acdbOpenObject(space, block.isNull() ? modelSpace(database) : block, AcDb::kForWrite) !=
      Acad::eOk) {
    delete entity;
    return id;
  }
  if (space->appendAcDbEntity(id, entity) != Acad::eOk) {
    delete entity;
    id.setNull();
  }
  space->close();
  return id;
}

// An opened object that closes itself.
template <class T>
class Open {
 public:
  explicit Open(AcDbObjectId id, AcDb::OpenMode mode = AcDb::kForRead, bool erased = false) {
    status = acdbOpenObject(object_, id, mode, erased);
  }
  ~Open() { close(); }
  Open(const Open&) = delete;
  Open& operator=(const Open&) = delete;
  T* operator->() const { return object_; }
  T& operator*() const { return *object_; }
  T* get() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }
  void close() {
    if (object_) object_->close();
    object_ = nullptr;
  }
  Acad::ErrorStatus status;

 private:
  T* object_ = nullptr;
};

// A result chain that releases itself.
struct Chain {
  explicit Chain(resbuf* c) : head(c) {}
  ~Chain() { acutRelRb(head); }
  Chain(const Chain&) = delete;
  Chain& operator=(const Chain&) = delete;
  resbuf* head;
};

inline Acad::ErrorStatus setXData(AcDbObject& object, resbuf* chain) {
  Chain owned(chain);
  return object.setXData(owned.head);
}

// A 3D polyline with extended data on itself and on each vertex. Null when the drawing refuses it.
inline AcDbObjectId addPolyline(AcDbDatabase& database, std::u16string_view layer,
                                const std::vector<AcGePoint3d>& points,
                                const char16_t* application) {
  auto* polyline = new AcDb3dPolyline;
  polyline->setLayer(layer);
  const AcDbObjectId id = append(database, polyline);
  if (id.isNull()) return id;
  for (const AcGePoint3d& p : points) {
    auto* vertex = new AcDb3dPolylineVertex(p);
    AcDbObjectId part;
    if (polyline->appendVertex(part, vertex) != Acad::eOk) {
      delete vertex;
      continue;
    }
    setXData(*vertex, acutBuildList(1001, application, 1040, p.x, RTNONE));
    vertex->close();
  }
  setXData(*polyline,
           acutBuildList(1001, application, 1000, u"tratto", 1070, 7, 1071, 70000, 1010,
                         AcGePoint3d(1, 2, 3), 1002, u"{", 1040, 0.1, 1002, u"}", RTNONE));
  polyline->close();
  return id;
}

// A block reference with an attribute for each definition of the block.
inline AcDbObjectId addReference(AcDbDatabase& database, AcDbObjectId block, const AcGePoint3d& at,
                                 double rotation = 0, double scale = 1) {
  auto* reference = new AcDbBlockReference(at, block);
  const AcDbObjectId id = append(database, reference);
  if (id.isNull()) return id;
  if (rotation != 0) reference->setRotation(rotation);
  if (scale != 1) reference->setScaleFactors({scale, scale, scale});
  AcDbBlockTableRecordIterator* it = nullptr;
  {
    Open<AcDbBlockTableRecord> record(block);
    record->newIterator(it);
  }
  for (; !it->done(); it->step()) {
    Open<AcDbAttributeDefinition> definition(it->getEntityId());
    if (!definition || definition->isConstant()) continue;
    auto* attribute = new AcDbAttribute;
    AcDbObjectId part;
    attribute->setAttributeFromBlock(definition.get(), reference->blockTransform());
    if (reference->appendAttribute(part, attribute) != Acad::eOk) {
      delete attribute;
      continue;
    }
    attribute->close();
  }
  delete it;
  reference->close();
  return id;
}

// The attribute of a tag, null when there is none.
inline AcDbObjectId attributeOf(AcDbObjectId reference, std::u16string_view tag) {
  Open<AcDbBlockReference> r(reference);
  if (!r) return {};
  std::unique_ptr<AcDbObjectIterator> it(r->attributeIterator());
  for (; !it->done(); it->step()) {
    Open<AcDbAttribute> a(it->objectId());
    if (a && a->tag() == tag) return it->objectId();
  }
  return {};
}

// The same drawing in another form: tags written in binary, and another version in the header.
inline std::string converted(AcDbDatabase& database, const cad::Format& format) {
  std::string out = format.binary ? std::string("AutoCAD Binary DXF\r\n\x1A\0", 22) : "";
  cad::Drawing& d = database.drawing();
  cad::TagList t;
  std::string text;
  for (std::uint32_t i = d.records().first(); i; i = d.record(i).next) {
    if (d.record(i).is(cad::Record::erased) || d.record(i).is(cad::Record::synthetic)) continue;
    d.parse(i, t);
    for (int k = 0; k + 1 < t.size(); ++k) {
      if (t[k].code == 9 && t.is(k, "$ACADVER"))
        t.setAscii(k + 1, "AC" + std::to_string(format.version));
    }
    t.transcode(format);
    text.resize(t.writtenSize() + 16);
    out.append(text.data(), static_cast<std::size_t>(t.write(text.data()) - text.data()));
  }
  return out;
}

inline cad::Format formatOf(int version, bool binary) {
  cad::Format f;
  f.version = version;
  f.binary = binary;
  f.wideCodes = version >= 1012;
  f.page = version >= 1021 ? platform::CodePage() : platform::CodePage::named("ANSI_1252");
  return f;
}

// Changes a drawing in every way that commands do. Empty, or which step went wrong.
inline std::string editEverything(AcDbDatabase& database, AcDbDatabase& symbol) {
  const Working working(&database);
  const auto fail = [](const char* step) { return std::string("edit: ") + step; };
  const bool old = !database.drawing().format().hasHandlesAndMarkers();
  if (acdbRegApp(u"VESSORA_PROVA") != RTNORM) return fail("application");
  {
    AcDbLayerTable* table = nullptr;
    if (database.getLayerTable(table, AcDb::kForWrite) != Acad::eOk) return fail("layer table");
    auto* layer = new AcDbLayerTableRecord;
    layer->setName(u"RETE_PROVA");
    layer->setColorIndex(3);
    AcDbObjectId id;
    if (table->add(id, layer) != Acad::eOk) return fail("layer");
    layer->close();
    table->close();
  }
  {
    AcDbTextStyleTable* table = nullptr;
    if (database.getTextStyleTable(table, AcDb::kForWrite) != Acad::eOk) return fail("styles");
    auto* style = new AcDbTextStyleTableRecord;
    style->setName(u"STILE_PROVA");
    style->setFileName(u"romans");
    AcDbObjectId id;
    if (table->add(id, style) != Acad::eOk) return fail("style");
    style->close();
    table->close();
  }
  {
    AcDbLinetypeTable* table = nullptr;
    if (database.getLinetypeTable(table, AcDb::kForWrite) != Acad::eOk) return fail("line types");
    auto* type = new AcDbLinetypeTableRecord;
    type->setName(u"TRATTO_PROVA");
    type->setPattern(u"Tratto __ __", {5, -2.5});
    AcDbObjectId id;
    if (table->add(id, type) != Acad::eOk) return fail("line type");
    type->close();
    table->close();
  }
  AcDbObjectId block;
  if (database.insert(block, u"SIMBOLO_PROVA", &symbol) != Acad::eOk) return fail("block");
  const AcDbObjectId reference = addReference(database, block, {100, 200, 3}, 0.5, 2);
  if (reference.isNull()) return fail("reference");
  {
    Open<AcDbBlockReference> r(reference, AcDb::kForWrite);
    setXData(*r.get(), acutBuildList(1001, u"VESSORA_PROVA", 1000, u"N1", 1041, 2.5, RTNONE));
    r->setPosition({110, 210, 0});
    r->setLayer(u"RETE_PROVA");
  }
  const std::vector<AcGePoint3d> points = {{0, 0, 0}, {10.25, 0, 1}, {10, 1e-9, 2}};
  const AcDbObjectId polyline = addPolyline(database, u"RETE_PROVA", points, u"VESSORA_PROVA");
  if (polyline.isNull()) return fail("polyline");
  {
    auto* text = new AcDbText({5, 5, 0}, u"Serbatoio è 100 € \u0416", 2.5, 0.3);
    text->setTextStyleName(u"STILE_PROVA");
    text->setJustification(1, 2, {6, 6, 0});
    text->setColorIndex(1);
    if (append(database, text).isNull()) return fail("text");
    text->close();
    auto* point = new AcDbPoint({1, 1, 1});
    if (append(database, point).isNull()) return fail("point");
    point->close();
    auto* line = new AcDbLine({0, 0, 0}, {5, 5, 5});
    line->setLinetype(u"TRATTO_PROVA");
    if (append(database, line).isNull()) return fail("line");
    line->close();
  }
  if (database.drawing().format().version >= 1014) {
    auto* light = new AcDbPolyline({{{0, 0}, 0.5}, {{4, 0}, 0}, {{4, 4}, 0}}, true, 1.5, 0.2);
    if (append(database, light).isNull()) return fail("light polyline");
    light->close();
  }
  if (!old) {
    AcDbDictionary* root = nullptr;
    if (database.getNamedObjectsDictionary(root, AcDb::kForWrite) != Acad::eOk) return fail("root");
    auto* dictionary = new AcDbDictionary;
    AcDbObjectId id;
    if (root->setAt(u"VESSORA_PROVA", dictionary, id) != Acad::eOk) return fail("dictionary");
    root->close();
    auto* record = new AcDbXrecord;
    if (dictionary->setAt(u"Dati", record, id) != Acad::eOk) return fail("xrecord");
    const Chain chain(
        acutBuildList(1, u"testo è", 40, 2.5, 90, 70000, 10, AcGePoint3d(1, 2, 3), 70, 5, RTNONE));
    record->setFromRbChain(chain.head);
    record->close();
    dictionary->close();
  }
  // What is written and then taken back or replaced.
  {
    Open<AcDb3dPolyline> p(polyline, AcDb::kForWrite);
    if (setXData(*p.get(), acutBuildList(1001, u"VESSORA_PROVA", 1000, u"altro", RTNONE)) !=
        Acad::eOk) {
      return fail("replace");
    }
  }
  {
    Open<AcDbBlockReference> r(reference, AcDb::kForWrite);
    if (setXData(*r.get(), acutBuildList(1001, u"VESSORA_PROVA", RTNONE)) != Acad::eOk)
      return fail("remove");
  }
  return {};
}

}  // namespace testing_drawings
