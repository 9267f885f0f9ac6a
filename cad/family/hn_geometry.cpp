#include "cad/family/hn_geometry.h"

#include <cmath>

#include "cad/api/owners.h"
#include "cad/drawing/drawing.h"
#include "cad/drawing/fields.h"
#include "platform/text.h"

using cad::Fresh;
using cad::Opened;

namespace {

AcDbDatabase* currentOr(AcDbDatabase* database) {
  return database ? database : acdbHostApplicationServices()->workingDatabase();
}

// Puts a new entity into the block given or else the model space, where it stays open; empty when
// that fails.
template <class T>
Opened<T> append(Fresh<T>& entity, AcDbDatabase* database, AcDbBlockTableRecord* block) {
  Opened<AcDbBlockTableRecord> space;
  if (!block) {
    cad::Drawing& d = database->drawing();
    space = Opened<AcDbBlockTableRecord>(d.idOf(d.structure().modelSpace()), AcDb::kForWrite);
    block = space.get();
  }
  if (block) entity.taken(block->appendAcDbEntity(entity.get()));
  return entity.release();
}

template <class T>
AcDbObjectId idOf(const Opened<T>& object) {
  return object ? object->objectId() : AcDbObjectId();
}

void dress(AcDbEntity& entity, std::u16string_view layer, int color, const resbuf* xdata) {
  if (!layer.empty()) entity.setLayer(layer);
  entity.setColorIndex(color);
  if (xdata) entity.setXData(xdata);
}

}  // namespace

namespace HNGeometry {

AcDbObjectId createNewLayer(std::u16string_view name, bool* isNew, AcDbDatabase* database,
                            int color) {
  AcDbDatabase* db = currentOr(database);
  if (isNew) *isNew = false;
  if (!db || name.empty()) return {};
  cad::Drawing& d = db->drawing();
  if (const std::uint32_t known = d.structure().layerNamed(name, false)) return d.idOf(known);
  const AcDbObjectId id = d.idOf(d.structure().layerNamed(name, true));
  if (id.isNull()) return id;  // no layer can have the name
  if (isNew) *isNew = true;
  if (color >= 1 && color <= 255) {
    if (Opened<AcDbLayerTableRecord> layer{id, AcDb::kForWrite}) layer->setColorIndex(color);
  }
  return id;
}

bool setColorLtypeLayer(std::u16string_view name, int color, std::u16string_view linetype) {
  AcDbDatabase* db = currentOr(nullptr);
  if (!db) return false;
  cad::Drawing& d = db->drawing();
  const Opened<AcDbLayerTableRecord> layer(d.idOf(d.structure().layerNamed(name, false)),
                                           AcDb::kForWrite);
  if (!layer) return false;
  if (color >= 1 && color <= 255 && layer->colorIndex() != color) layer->setColorIndex(color);
  // A layer cannot be "by layer" itself; only a real line type of the drawing is taken.
  if (!platform::equalNoCase(linetype, u"ByLayer") &&
      !platform::equalNoCase(linetype, u"ByBlock") &&
      d.structure().tableEntry(cad::Type::ltype, linetype)) {
    layer->setLinetype(linetype);
  }
  return true;
}

AcDbObjectId Create3Dpoly(const AcGePoint3dArray& points, int color, std::u16string_view layer,
                          short flag, const resbuf* xdata, AcDbDatabase* database,
                          AcDbBlockTableRecord* block, const ResbufArray* vertexData) {
  AcDbDatabase* db = currentOr(database);
  if (!db || points.empty()) return {};
  Fresh<AcDb3dPolyline> fresh;
  dress(*fresh.get(), layer, color, xdata);
  if (flag & 1) {
    cad::TagList& tags = cad::Inside::tagsForWrite(*fresh.get());
    tags.putInteger(70, 9, tags.body());
  }
  const Opened<AcDb3dPolyline> polyline = append(fresh, db, block);
  if (!polyline) return {};
  for (std::size_t i = 0; i < points.size(); ++i) {
    Fresh<AcDb3dPolylineVertex> vertex(points[i]);
    if (vertexData && i < vertexData->size() && (*vertexData)[i])
      vertex->setXData((*vertexData)[i]);
    AcDbObjectId vertexId;
    vertex.taken(polyline->appendVertex(vertexId, vertex.get()));
  }
  return idOf(polyline);
}

AcDbObjectId Create2Dpoly(const AcGePoint3dArray& points, const std::vector<double>* bulges,
                          const resbuf* xdata, int color, std::u16string_view layer,
                          double startWidth, double endWidth, int kind) {
  AcDbDatabase* db = currentOr(nullptr);
  if (!db || points.empty()) return {};
  std::vector<AcDbPolyline::Vertex> vertices;
  vertices.reserve(points.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    vertices.push_back(
        {{points[i].x, points[i].y}, bulges && i < bulges->size() ? (*bulges)[i] : 0.0});
  }
  Fresh<AcDbPolyline> polyline(vertices, (kind & 1) != 0, points.front().z,
                               startWidth == endWidth ? startWidth : 0);
  dress(*polyline.get(), layer, color, xdata);
  return idOf(append(polyline, db, nullptr));
}

AcDbObjectId Create3Dpoly_da_DATIPOLI3D(int count, const datipoli3d* list, const resbuf* xdata,
                                        int color, std::u16string_view layer, short flag,
                                        AcDbDatabase* database, AcDbBlockTableRecord* block,
                                        std::u16string_view linetype) {
  AcGePoint3dArray points;
  for (const datipoli3d* v = list; v && count-- > 0; v = v->next) points.push_back(v->point);
  const AcDbObjectId id = Create3Dpoly(points, color, layer, flag, xdata, database, block);
  if (linetype.empty()) return id;
  if (Opened<AcDb3dPolyline> polyline{id, AcDb::kForWrite}) polyline->setLinetype(linetype);
  return id;
}

AcDbObjectId addPOINT(const AcGePoint3d& point, std::u16string_view layer, int color,
                      const resbuf* xdata, AcDbDatabase* database, std::u16string_view text,
                      AcDbBlockTableRecord* block) {
  AcDbDatabase* db = currentOr(database);
  if (!db) return {};
  Fresh<AcDbPoint> entity(point);
  dress(*entity.get(), layer, color, xdata);
  const AcDbObjectId id = idOf(append(entity, db, block));
  if (id.isNull()) return id;
  if (!text.empty()) {
    Fresh<AcDbText> label(point, text, 2.5);
    dress(*label.get(), layer, color, nullptr);
    append(label, db, block);
  }
  return id;
}

AcDbObjectId createLine(const AcGePoint3d& from, const AcGePoint3d& to, std::u16string_view layer,
                        std::u16string_view linetype, int color, const resbuf* xdata,
                        AcDbDatabase* database, AcDbBlockTableRecord* block) {
  AcDbDatabase* db = currentOr(database);
  if (!db) return {};
  Fresh<AcDbLine> line(from, to);
  dress(*line.get(), layer, color, xdata);
  if (!linetype.empty()) line->setLinetype(linetype);
  return idOf(append(line, db, block));
}

AcDbObjectId HNTextCommandTesto(std::u16string_view layer, std::u16string_view style,
                                const AcGePoint3d& position, double height, double rotation,
                                std::u16string_view text, std::u16string_view alignment,
                                int color) {
  AcDbDatabase* db = currentOr(nullptr);
  if (!db) return {};
  Fresh<AcDbText> entity(position, text, height, rotation);
  dress(*entity.get(), layer, color, nullptr);
  if (!style.empty() && !platform::equalNoCase(style, u"Standard")) entity->setTextStyleName(style);
  if (alignment == u"Center") entity->setJustification(1, 0, position);
  if (alignment == u"Right") entity->setJustification(2, 0, position);
  if (alignment == u"Middle") entity->setJustification(4, 0, position);
  return idOf(append(entity, db, nullptr));
}

AcDbObjectId addLineType(std::u16string_view name, std::u16string_view description,
                         const std::vector<double>& dashes) {
  AcDbDatabase* db = currentOr(nullptr);
  AcDbLinetypeTable* opened = nullptr;
  if (!db || db->getLinetypeTable(opened, AcDb::kForWrite) != Acad::eOk) return {};
  const Opened<AcDbLinetypeTable> table(opened);
  Fresh<AcDbLinetypeTableRecord> record;
  record->setName(name);
  record->setPattern(description, dashes);
  AcDbObjectId id;
  record.taken(table->add(id, record.get()));
  return id;
}

bool iterateLinetypeTable(std::u16string_view name, AcDbObjectId& id) {
  AcDbDatabase* db = currentOr(nullptr);
  if (!db) return false;
  const std::uint32_t i = db->drawing().structure().tableEntry(cad::Type::ltype, name);
  if (i) id = db->drawing().idOf(i);
  return i != 0;
}

bool RegApplicazione(std::u16string_view name, AcDbDatabase* database) {
  AcDbDatabase* db = currentOr(database);
  return db && !name.empty() && db->drawing().structure().registerApplication(name) != 0;
}

short XYdaProgsuDatiPoli(const datipoli* path, double chainage, AcGePoint2d& point,
                         double& direction) {
  if (!path) return 0;
  const datipoli* from = path;
  while (from->next && from->next->next && from->next->prog < chainage) from = from->next;
  const datipoli* to = from->next;
  point = {from->point.x, from->point.y};
  direction = 0;
  if (!to) return 1;
  const double span = to->prog - from->prog;
  const double f = span > 0 ? std::fmin(1, std::fmax(0, (chainage - from->prog) / span)) : 0;
  point = {from->point.x + f * (to->point.x - from->point.x),
           from->point.y + f * (to->point.y - from->point.y)};
  direction = std::atan2(to->point.y - from->point.y, to->point.x - from->point.x);
  return 1;
}

void LiberaDATIPOLI(datipoli* path) {
  while (path) {
    datipoli* next = path->next;
    delete path;
    path = next;
  }
}

int ksr_ssget(const char16_t* mode, const void* point1, const void* point2, const resbuf* filter,
              ads_name& set) {
  return acedSSGet(mode, point1, point2, filter, set);
}

}  // namespace HNGeometry

int KsrAcadMgr::ksr_acedGetKword(std::u16string_view prompt, std::u16string& keyword) {
  return acedGetKword(prompt, keyword);
}
int KsrAcadMgr::ksr_acedGetString(bool blanks, std::u16string_view prompt, std::u16string& text) {
  return acedGetString(blanks, prompt, text);
}
