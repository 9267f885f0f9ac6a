#include "module/network/links_at.h"

namespace vessora {
namespace {

// The first and the last vertex. Of a closed polyline the host says that it ends where it starts;
// here its last vertex counts as that of any other.
bool readEnds(AcDb3dPolyline& polyline, AcGePoint3d& start, AcGePoint3d& end) {
  if (polyline.getStartPoint(start) != Acad::eOk || polyline.getEndPoint(end) != Acad::eOk) {
    return false;
  }
  if (start.x == end.x && start.y == end.y && start.z == end.z) {
    AcGePoint3dArray points;
    ReadVertices(&polyline, points);
    if (!points.empty()) end = points.back();
  }
  return true;
}

}  // namespace

std::vector<LinkAt> linksAt(const NetworkLayers& layers, const AcGePoint3d& place) {
  std::vector<LinkAt> found;
  const SelectionSet set(u"_X", linkPolylineFilter(layers));
  for (const AcDbObjectId id : set) {
    const Opened<AcDb3dPolyline> polyline(id);
    AcGePoint3d start, end;
    if (!polyline || !readEnds(*polyline, start, end)) continue;
    const LinkAt link{id, samePlanPoint(start, place, kPlaceTolerance),
                      samePlanPoint(end, place, kPlaceTolerance)};
    if (link.start || link.end) found.push_back(link);
  }
  return found;
}

}  // namespace vessora
