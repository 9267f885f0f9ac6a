#include "module/editing/link_course.h"

#include "module/editing/change_jobs.h"
#include "module/editing/element_names.h"
#include "module/editing/solver_faults.h"
#include "module/host/module.h"
#include "module/inp/symbols.h"
#include "module/network/element_data.h"
#include "module/network/schema.h"
#include "platform/text.h"

namespace vessora {

// --- the polyline --------------------------------------------------------------------------------

AcDbObjectId makeLinkLayer(const schema::Kind& kind, std::u16string_view network) {
  return HNGeometry::createNewLayer(schema::layerName(kind.layer, network), nullptr, nullptr,
                                    kind.color);
}

AcDbObjectId beginCourse(const AcGePoint3d& start) {
  return HNGeometry::Create3Dpoly({start}, 256, u"0", 0, nullptr);
}

void extendCourse(AcDbObjectId course, const AcGePoint3d& vertex) {
  const Opened<AcDb3dPolyline> polyline(course, AcDb::kForWrite);
  if (!polyline) return;
  Fresh<AcDb3dPolylineVertex> fresh(vertex);
  AcDbObjectId id;
  fresh.taken(polyline->appendVertex(id, fresh.get()));
}

void dropCourse(AcDbObjectId course) {
  if (const Opened<AcDbEntity> polyline(course, AcDb::kForWrite); polyline) polyline->erase(true);
}

double lengthOf(AcDbObjectId course) {
  listadatipoli* const list =
      AllocaLISTADATIPOLI(course, 1, 0.0, 0, 0.0, 0.0, 0, nullptr, nullptr, 0);
  const double length = list ? list->lunghezza : 0;
  LiberaLISTADATIPOLI(list);
  return length;
}

// --- the element ---------------------------------------------------------------------------------

namespace {

struct Link {
  const schema::Kind& kind;
  std::u16string_view network, id, node1, node2;
};

// Puts the polyline on the layer of its kind, with its data. False, with everything as it was, when
// the layer cannot be made.
bool dress(const Link& link, AcDbObjectId course, const Chain& data, ElementNames& names,
           AddedElement& added) {
  acdbRegApp(app::kImport);
  acdbRegApp(app::kMaterial);
  const AcDbObjectId layer = makeLinkLayer(link.kind, link.network);
  const Opened<AcDb3dPolyline> polyline(course, AcDb::kForWrite);
  if (layer.isNull() || !polyline) {
    added.warnings.push_back({NoticeCode::elementNotDrawn, std::u16string(link.id)});
    return false;
  }
  AcGePoint3dArray points;
  ReadVertices(polyline.get(), points);
  takeName(link.id, link.kind, link.network, names.links, added.warnings);
  for (const std::u16string_view node : {link.node1, link.node2}) {
    if (!node.empty() && LinkNameExists(node, names.nodes)) continue;
    added.warnings.push_back(
        {node.empty() ? NoticeCode::linkEndUnnamed : NoticeCode::linkWithoutNode,
         std::u16string(link.id), std::u16string(node)});
  }
  if (points.size() < 2) {
    added.warnings.push_back({NoticeCode::courseOfOneVertex, std::u16string(link.id)});
  }
  polyline->setLayer(schema::layerName(link.kind.layer, link.network));
  polyline->setXData(data.get());
  added.course = course;
  return true;
}

// Where the symbol stands on the course.
bool symbolPlace(AcDbObjectId course, AcGePoint3d& place) {
  const Opened<AcDb3dPolyline> polyline(course);
  AcGePoint3dArray points;
  ReadVertices(polyline.get(), points);
  return linkBlockPlace(points, place);
}

// `drawn` is the record as its attributes show it.
template <class Record>
AddedElement makeWithSymbol(std::u16string_view network, AcDbObjectId course, const Record& record,
                            const Record& drawn,
                            int (*insert)(const AcGePoint3d&, std::u16string_view, const Record&,
                                          const Chain&, Notices&, AcDbObjectId*),
                            ElementNames& names) {
  AddedElement added;
  const Link link{kindOf<Record>(), network, record.id, record.node1, record.node2};
  if (!dress(link, course, companionData(record.id), names, added)) return added;
  warnOfSolver(record, FieldSet::all(), added.warnings);
  AcGePoint3d place;
  if (!symbolPlace(course, place)) return added;
  insert(place, schema::layerName(link.kind.layer, network), drawn, dataOf(record), added.notices,
         &added.id);
  return added;
}

}  // namespace

AddedElement makePipe(std::u16string_view network, AcDbObjectId course, const EpaPipe& wanted,
                      std::u16string_view material, ElementNames& names) {
  AddedElement added;
  EpaPipe pipe = wanted;
  pipe.status = solversStatus(wanted.status);
  const Link link{schema::kPipe, network, pipe.id, pipe.node1, pipe.node2};
  if (!dress(link, course, dataOf(pipe), names, added)) return added;
  warnOfSolver(pipe, FieldSet::all(), added.warnings);
  XDataBuilder data(app::kMaterial);
  data.text(material);
  const Opened<AcDb3dPolyline> polyline(course, AcDb::kForWrite);
  polyline->setXData(data.take().get());
  added.id = course;
  return added;
}

AddedElement makePump(std::u16string_view network, AcDbObjectId course, const EpaPump& pump,
                      ElementNames& names) {
  return makeWithSymbol(network, course, pump, pump, InsertPump, names);
}

AddedElement makeValve(std::u16string_view network, AcDbObjectId course, const EpaValv& valve,
                       ElementNames& names) {
  EpaValv drawn = valve;
  storeShown(drawn.diameter, platform::wtof(valve.diameter));
  storeShown(drawn.minorLoss, platform::wtof(valve.minorLoss));
  return makeWithSymbol(network, course, valve, drawn, InsertValv, names);
}

// --- jobs ----------------------------------------------------------------------------------------

namespace {

AcDbObjectId drawCourse(const std::vector<AcGePoint3d>& points) {
  return HNGeometry::Create3Dpoly(points, 256, u"0", 0, nullptr);
}

// A job that fails leaves nothing behind.
AddedElement orNothing(AddedElement added, AcDbObjectId course) {
  if (added.course.isNull()) dropCourse(course);
  return added;
}

}  // namespace

AddedElement addPipe(std::u16string_view network, const std::vector<AcGePoint3d>& points,
                     const EpaPipe& pipe, std::u16string_view material, ElementNames& names) {
  const AcDbObjectId course = drawCourse(points);
  return orNothing(makePipe(network, course, pipe, material, names), course);
}

AddedElement addPump(std::u16string_view network, const std::vector<AcGePoint3d>& points,
                     const EpaPump& pump, ElementNames& names) {
  const AcDbObjectId course = drawCourse(points);
  return orNothing(makePump(network, course, pump, names), course);
}

AddedElement addValve(std::u16string_view network, const std::vector<AcGePoint3d>& points,
                      const EpaValv& valve, ElementNames& names) {
  const AcDbObjectId course = drawCourse(points);
  return orNothing(makeValve(network, course, valve, names), course);
}

}  // namespace vessora
