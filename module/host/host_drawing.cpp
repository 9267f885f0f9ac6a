#include "module/host/host_drawing.h"

#include "module/host/module.h"
#include "module/host/translate.h"
#include "platform/text.h"

namespace vessora {

// --- attributes ----------------------------------------------------------------------------------

namespace {

template <class Visit>
void forEachAttribute(AcDbBlockReference* block, AcDb::OpenMode mode, Visit visit) {
  const std::unique_ptr<AcDbObjectIterator> at(block->attributeIterator());
  for (; !at->done(); at->step()) {
    AcDbAttribute* attribute = nullptr;
    block->openAttribute(attribute, at->objectId(), mode);
    if (const Opened<AcDbAttribute> opened(attribute); opened) visit(*opened);
  }
}

}  // namespace

unsigned readAttributes(AcDbBlockReference* block, const std::u16string_view* tags,
                        std::u16string* texts, int count) {
  for (int i = 0; i < count; ++i) texts[i].clear();
  unsigned found = 0;
  forEachAttribute(block, AcDb::kForRead, [&](const AcDbAttribute& attribute) {
    const std::u16string tag = attribute.tag();
    for (int i = 0; i < count; ++i) {
      if (tag != tags[i]) continue;
      texts[i] = attribute.textString();
      found |= 1U << i;
    }
  });
  return found;
}

bool ReadAttribute(AcDbBlockReference* block, std::u16string_view tag, std::u16string& text) {
  readAttributes(block, &tag, &text, 1);
  return !text.empty();
}

void WriteAttribute(AcDbBlockReference* block, std::u16string_view tag, std::u16string_view text) {
  forEachAttribute(block, AcDb::kForWrite, [&](AcDbAttribute& attribute) {
    if (attribute.tag() == tag) attribute.setTextString(text);
  });
}

void checkName(const Chain& data, std::u16string& text, Notices& notices) {
  const resbuf* item = data.item(1);
  if (!item || acutKindOf(item->restype) != RbKind::text) return;
  const std::u16string_view imported = data.text(1);
  if (imported == text) return;
  notices.push_back({NoticeCode::namesDiffer, std::u16string(imported), text});
  text = imported;
}

bool ReadNameAttribute(AcDbBlockReference* block, std::u16string_view tag, std::u16string& text,
                       Notices& notices) {
  // Where the block has no such attribute there is nothing a user could have edited.
  if (readAttributes(block, &tag, &text, 1) != 0) {
    checkName(Chain(block->xData(app::kImport)), text, notices);
  }
  return !text.empty();
}

// --- extended data -------------------------------------------------------------------------------

int ClearXData(AcDbObject* entity, std::u16string_view application) {
  const Chain bare(acutBuildList(1001, application, RTNONE));
  if (!bare) return 0;
  entity->setXData(bare.get());
  return 1;
}

void setTextItem(resbuf* node, std::u16string_view text) {
  if (acutKindOf(node->restype) != RbKind::text) node->resval.rstring = nullptr;
  node->restype = 1000;
  acutSetText(node, text);
}

// --- polylines -----------------------------------------------------------------------------------

int CountVertices(AcDb3dPolyline* polyline) {
  const std::unique_ptr<AcDbObjectIterator> at(polyline->vertexIterator());
  int count = 0;
  for (; !at->done(); at->step()) ++count;
  return count;
}

void ReadVertices(AcDb3dPolyline* polyline, AcGePoint3dArray& points) {
  const std::unique_ptr<AcDbObjectIterator> at(polyline->vertexIterator());
  for (; !at->done(); at->step()) {
    if (const Opened<AcDb3dPolylineVertex> vertex(at->objectId()); vertex) {
      points.push_back(vertex->position());
    }
  }
}

bool PolylineCentroid(AcDb3dPolyline* polyline, AcGePoint3d& centroid) {
  AcGePoint3dArray points;
  ReadVertices(polyline, points);
  if (points.empty()) return false;
  AcGePoint3d sum;
  for (const AcGePoint3d& p : points) {
    sum.x += p.x;
    sum.y += p.y;
    sum.z += p.z;
  }
  const auto count = static_cast<double>(points.size());
  centroid = {sum.x / count, sum.y / count, sum.z / count};
  return true;
}

namespace {

void moveVertices(const AcGePoint3dArray& points, AcDb3dPolyline* polyline) {
  const std::unique_ptr<AcDbObjectIterator> at(polyline->vertexIterator());
  for (std::size_t i = 0; !at->done(); ++i) {
    const AcDbObjectId id = at->objectId();
    at->step();
    const Opened<AcDb3dPolylineVertex> vertex(id, AcDb::kForWrite);
    if (!vertex) continue;
    if (i >= points.size()) {
      vertex->erase();
      continue;
    }
    // A vertex that stays where it is keeps its text in the file.
    const AcGePoint3d old = vertex->position();
    if (old.x == points[i].x && old.y == points[i].y && old.z == points[i].z) continue;
    vertex->setPosition(points[i]);
  }
}

}  // namespace

int RewritePolyline(const AcGePoint3dArray& points, AcDb3dPolyline* polyline, int color,
                    std::u16string_view layer, resbuf* xdata) {
  const Chain data(xdata);
  if (!polyline) return 0;
  if (data) polyline->setXData(data.get());
  moveVertices(points, polyline);
  if (layer.empty()) {
    polyline->setLayer(polyline->layer());
  } else {
    HNGeometry::createNewLayer(layer);
    polyline->setLayer(layer);
  }
  polyline->setColorIndex(color == 256 ? polyline->colorIndex() : color);
  polyline->recordGraphicsModified();
  return 1;
}

// --- tables and variables ------------------------------------------------------------------------

bool FindTextStyle(std::u16string_view name, AcDbObjectId& id) {
  AcDbDatabase* database = acdbHostApplicationServices()->workingDatabase();
  AcDbTextStyleTable* table = nullptr;
  if (!database || database->getTextStyleTable(table, AcDb::kForRead) != Acad::eOk) return false;
  const Opened<AcDbTextStyleTable> opened(table);
  AcDbSymbolTableIterator* iterator = nullptr;
  if (table->newIterator(iterator) != Acad::eOk) return false;
  const std::unique_ptr<AcDbSymbolTableIterator> at(iterator);
  const std::u16string wanted = platform::upper(name);
  for (; !at->done(); at->step()) {
    AcDbSymbolTableRecord* record = nullptr;
    if (at->getRecord(record) != Acad::eOk) continue;
    const Opened<AcDbSymbolTableRecord> style(record);
    if (platform::upper(style->getName()) == wanted) return at->getRecordId(id) == Acad::eOk;
  }
  return false;
}

bool readTextVariable(std::u16string_view name, std::u16string& text) {
  const Chain node(acutNewRb(RTSTR));
  if (!node) {
    acutPrintf(TraduciTesto(u"\nImpossibile allocare memoria"));
    return false;
  }
  if (acedGetVar(name, node.get()) != RTNORM) return false;
  if (acutKindOf(node.get()->restype) != RbKind::text) return false;
  text = node.text(0);
  return true;
}

bool inpIsFull() {
  std::u16string mode;
  return readTextVariable(u"VSINPMODE", mode) && platform::equalNoCase(mode, u"FULL");
}

}  // namespace vessora
