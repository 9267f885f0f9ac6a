#include "cad/shape/extents.h"

#include "cad/api/entities.h"
#include "cad/shape/reference.h"

namespace cad {

AcDbExtents extentsOf(const Drawing& drawing, std::uint32_t entity) {
  AcDbExtents box;
  shape::expand(drawing, entity, shape::Arrays::corners, [&](shape::Primitive&& p) {
    if (p.endless) return;
    for (const AcGePoint3d& q : p.kind == shape::Kind::text ? shape::textCorners(p) : p.points) {
      box.addPoint(q);
    }
  });
  if (box.isEmpty() && drawing.record(entity).type == Type::insert) {
    TagList t;
    drawing.parse(entity, t);
    if (const int i = t.find(10, t.body()); i >= 0)
      box.addPoint(shape::axesOf(t, t.body()) * t.point(i));
  }
  return box;
}

AcDbExtents shape::symbolExtents(const Drawing& drawing, std::uint32_t entity) {
  AcDbExtents box;
  expand(drawing, entity, Arrays::corners, [&](Primitive&& p) {
    if (p.endless || p.kind == Kind::text) return;
    for (const AcGePoint3d& q : p.points) box.addPoint(q);
  });
  return box;
}

}  // namespace cad

// Of the host interface: it stands here because the shapes of entities do.
Acad::ErrorStatus AcDbEntity::getGeomExtents(AcDbExtents& extents) const {
  if (!view_->drawing) return Acad::eNotInDatabase;
  if (view_->modified) return Acad::eNotOpenForRead;
  extents = cad::extentsOf(*view_->drawing, view_->record);
  return extents.isEmpty() ? Acad::eInvalidExtents : Acad::eOk;
}
