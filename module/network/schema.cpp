#include "module/network/schema.h"

namespace vessora {

NetworkLayers::NetworkLayers(std::u16string_view network)
    : junc(schema::layerName(layer::kJunc, network)),
      resv(schema::layerName(layer::kResv, network)),
      tank(schema::layerName(layer::kTank, network)),
      pipe(schema::layerName(layer::kPipe, network)),
      pump(schema::layerName(layer::kPump, network)),
      valv(schema::layerName(layer::kValv, network)) {}

// --- filters -------------------------------------------------------------------------------------

namespace {

// Joins chains; null ones are passed over.
resbuf* join(std::initializer_list<resbuf*> chains) {
  resbuf* head = nullptr;
  resbuf** tail = &head;
  for (resbuf* chain : chains) {
    *tail = chain;
    while (*tail) tail = &(*tail)->rbnext;
  }
  return head;
}

resbuf* blocksOf(std::u16string_view name, std::u16string_view layer) {
  return acutBuildList(-4, u"<and", 2, name, 8, layer, -4, u"and>", RTNONE);
}

}  // namespace

resbuf* wholeNetworkFilter(const NetworkLayers& layers, bool companions) {
  resbuf* others = companions ? acutBuildList(8, layers.valv, 8, layers.pump, RTNONE)
                              : static_cast<resbuf*>(nullptr);
  return join(
      {acutBuildList(-4, u"<or", RTNONE), blocksOf(schema::kJunc.block, layers.junc),
       blocksOf(schema::kResv.block, layers.resv), blocksOf(schema::kTank.block, layers.tank),
       blocksOf(schema::kValv.block, layers.valv), blocksOf(schema::kPump.block, layers.pump),
       acutBuildList(-4, u"<and", RTDXF0, u"POLYLINE", -4, u"<or", 8, layers.pipe, RTNONE), others,
       acutBuildList(-4, u"or>", -4, u"and>", -4, u"or>", RTNONE)});
}

resbuf* linkPolylineFilter(const NetworkLayers& layers) {
  return acutBuildList(-4, u"<and", RTDXF0, u"POLYLINE", -4, u"<or", 8, layers.pipe, 8, layers.valv,
                       8, layers.pump, -4, u"or>", -4, u"and>", RTNONE);
}

resbuf* nodeBlockFilter(const NetworkLayers& layers) {
  return acutBuildList(-4, u"<and", RTDXF0, u"INSERT", -4, u"<or", 8, layers.junc, 8, layers.resv,
                       8, layers.tank, -4, u"or>", -4, u"and>", RTNONE);
}

resbuf* linkBlockFilter(const NetworkLayers& layers) {
  return acutBuildList(-4, u"<and", RTDXF0, u"INSERT", -4, u"<or", 8, layers.valv, 8, layers.pump,
                       -4, u"or>", -4, u"and>", RTNONE);
}

resbuf* blocksOnLayerFilter(std::u16string_view layer) {
  return acutBuildList(-4, u"<and", RTDXF0, u"INSERT", 8, layer, -4, u"and>", RTNONE);
}

resbuf* elementPolylineFilter(std::u16string_view layer) {
  return acutBuildList(-4, u"<and", RTDXF0, u"POLYLINE", 1001, app::kImport, 8, layer, -4, u"and>",
                       RTNONE);
}

resbuf* reservedFilter(std::u16string_view application) {
  return acutBuildList(1001, application, 8, layer::kReserved, RTNONE);
}

void makeReservedLayer() {
  const AcDbObjectId id = HNGeometry::createNewLayer(layer::kReserved);
  if (const Opened<AcDbLayerTableRecord> record(id, AcDb::kForWrite); record) {
    record->setIsFrozen(true);
  }
}

// --- geometry ------------------------------------------------------------------------------------

bool linkBlockPlace(const AcGePoint3dArray& points, AcGePoint3d& place) {
  if (points.size() < 2) return false;
  const std::size_t from = points.size() == 2 ? 0 : 1;
  const AcGePoint3d &a = points[from], &b = points[from + 1];
  place = {(a.x + b.x) / 2, (a.y + b.y) / 2, (a.z + b.z) / 2};
  return true;
}

double heightBetween(const AcGePoint3d& start, const AcGePoint3d& end, const AcGePoint3d& at) {
  const double whole = std::hypot(end.x - start.x, end.y - start.y);
  const double z = start.z + (end.z - start.z) * std::hypot(at.x - start.x, at.y - start.y) / whole;
  return std::isfinite(z) ? z : start.z;
}

void interpolateInterior(AcGePoint3dArray& points) {
  for (std::size_t i = 1; i + 1 < points.size(); ++i) {
    points[i].z = heightBetween(points.front(), points.back(), points[i]);
  }
}

}  // namespace vessora
