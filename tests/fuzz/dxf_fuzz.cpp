// Any bytes as a drawing: reading must end; what was read is written back as the same drawing, can
// be looked at and changed, and the changed drawing can be read again.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "cad/api/database.h"
#include "cad/drawing/drawing.h"
#include "cad/shape/extents.h"

namespace {

std::unique_ptr<AcDbDatabase> read(const char* data, std::size_t size) {
  auto database = std::make_unique<AcDbDatabase>(false);
  cad::Block block(size + 1);
  if (size) std::memcpy(block.data(), data, size);
  std::vector<std::string> warnings;
  if (!database->drawing().loadBytes(std::move(block), size, "fuzz.dxf", warnings)) return nullptr;
  return database;
}

void look(cad::Drawing& d, std::uint32_t record) {
  AcDbObject* object = nullptr;
  if (acdbOpenAnyObject(object, d.idOf(record), AcDb::kForRead, true) != Acad::eOk) return;
  acutRelRb(object->xData());
  if (object->isKindOf(AcDbText::desc())) {
    auto* text = static_cast<AcDbText*>(object);
    text->textString();
    text->position();
  }
  if (object->isKindOf(AcDbBlockReference::desc())) {
    auto* reference = static_cast<AcDbBlockReference*>(object);
    reference->blockTransform();
    delete reference->attributeIterator();
  }
  if (object->isKindOf(AcDb3dPolyline::desc())) {
    AcGePoint3d point;
    static_cast<AcDb3dPolyline*>(object)->getEndPoint(point);
  }
  if (object->isKindOf(AcDbPolyline::desc())) static_cast<AcDbPolyline*>(object)->vertices();
  if (object->isKindOf(AcDbXrecord::desc())) {
    std::string bytes;
    acutRelRb(static_cast<AcDbXrecord*>(object)->rbChain());
    acutRelRb(static_cast<AcDbXrecord*>(object)->rbChain(bytes));
  }
  if (object->isKindOf(AcDbDictionary::desc())) {
    AcDbObjectId id;
    static_cast<AcDbDictionary*>(object)->getAt(u"ACAD_GROUP", id);
  }
  object->close();
}

void change(cad::Drawing& d, std::uint32_t record, std::uint32_t how) {
  AcDbEntity* entity = nullptr;
  if (acdbOpenObject(entity, d.idOf(record), AcDb::kForWrite) != Acad::eOk) return;
  if (how % 7 == 0) {
    entity->erase();
  } else {
    resbuf* data = acutBuildList(1001, u"FUZZ", 1000, u"x", 1010, AcGePoint3d(1, 2, 3), RTNONE);
    entity->setXData(data);
    acutRelRb(data);
    entity->setLayer(u"FUZZ");
    entity->setColorIndex(3);
    if (entity->isKindOf(AcDbBlockReference::desc())) {
      static_cast<AcDbBlockReference*>(entity)->setPosition({1, 2, 3});
    }
    if (entity->isKindOf(AcDbText::desc()))
      static_cast<AcDbText*>(entity)->setTextString(u"\u00e8^");
  }
  entity->close();
}

void appendPoint(AcDbDatabase& database) {
  AcDbBlockTableRecord* space = nullptr;
  const AcDbObjectId model = database.drawing().idOf(database.drawing().structure().modelSpace());
  if (acdbOpenObject(space, model, AcDb::kForWrite) != Acad::eOk) return;
  auto* point = new AcDbPoint({1, 2, 3});
  if (space->appendAcDbEntity(point) == Acad::eOk) {
    point->close();
  } else {
    delete point;
  }
  space->close();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  auto database = read(reinterpret_cast<const char*>(data), size);
  if (!database) return 0;
  acdbHostApplicationServices()->setWorkingDatabase(database.get());
  cad::Drawing& d = database->drawing();
  const std::size_t entities = d.index().allInSpace().size();
  const std::string unchanged = d.toBytes();
  const auto same = read(unchanged.data(), unchanged.size());
  if (!same || same->drawing().index().allInSpace().size() != entities) std::abort();
  const std::uint32_t count = d.records().count();
  for (std::uint32_t i = 1; i < count; ++i) {
    if (!d.record(i).is(cad::Record::synthetic)) look(d, i);
  }
  for (const std::uint32_t e : d.index().allInSpace()) cad::extentsOf(d, e);
  d.beginCommand(u"FUZZ");
  acdbRegApp(u"FUZZ");
  std::uint32_t how = 1;
  for (const std::uint32_t e : d.index().allInSpace()) change(d, e, how++);
  appendPoint(*database);
  d.endCommand();
  d.undo();
  d.redo();
  if (d.openCount() || acutLiveNodes()) std::abort();
  const std::string written = d.toBytes();
  acdbHostApplicationServices()->setWorkingDatabase(nullptr);
  if (!read(written.data(), written.size())) std::abort();
  return 0;
}
