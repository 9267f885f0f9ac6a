#include "module/network/schema.h"

#include <algorithm>

#include "platform/text.h"

namespace vessora {

NetworkLayers::NetworkLayers(std::u16string_view network)
    : junc(layer::of(layer::kJunc, network)),
      resv(layer::of(layer::kResv, network)),
      tank(layer::of(layer::kTank, network)),
      pipe(layer::of(layer::kPipe, network)),
      pump(layer::of(layer::kPump, network)),
      valv(layer::of(layer::kValv, network)) {}

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
  return join({acutBuildList(-4, u"<or", RTNONE), blocksOf(block::kJunc, layers.junc),
               blocksOf(block::kResv, layers.resv), blocksOf(block::kTank, layers.tank),
               blocksOf(block::kValv, layers.valv), blocksOf(block::kPump, layers.pump),
               acutBuildList(-4, u"<and", RTDXF0, u"POLYLINE", -4, u"<or", 8, layers.pipe, RTNONE),
               others, acutBuildList(-4, u"or>", -4, u"and>", -4, u"or>", RTNONE)});
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

// --- extended data -------------------------------------------------------------------------------

Chain JuncData(std::u16string_view id, double emitter, std::u16string_view pattern) {
  return Chain(acutBuildList(1001, app::kImport, 1000, id, 1040, emitter, 1000, pattern, RTNONE));
}

Chain ResvData(std::u16string_view id, std::u16string_view pattern) {
  // The second item has no meaning; it keeps the pattern at the place where junctions have it.
  return Chain(acutBuildList(1001, app::kImport, 1000, id, 1040, 0.0, 1000, pattern, RTNONE));
}

Chain TankData(std::u16string_view id, std::u16string_view volCurve) {
  return Chain(acutBuildList(1001, app::kImport, 1000, id, 1000, volCurve, RTNONE));
}

Chain PipeData(const EpaPipe& pipe) {
  return Chain(acutBuildList(1001, app::kImport, 1000, pipe.id, 1040, platform::wtof(pipe.length),
                             1040, platform::wtof(pipe.diameter), 1040,
                             platform::wtof(pipe.roughness), 1040, platform::wtof(pipe.minorLoss),
                             1000, pipe.status, 1000, pipe.node1, 1000, pipe.node2, RTNONE));
}

Chain ValvData(const EpaValv& valv, double diameter, double minorLoss) {
  return Chain(acutBuildList(1001, app::kImport, 1000, valv.id, 1040, diameter, 1000, valv.type,
                             1000, valv.status, 1000, valv.setting, 1040, minorLoss, 1000,
                             valv.node1, 1000, valv.node2, RTNONE));
}

Chain PumpData(const EpaPump& pump) {
  return Chain(acutBuildList(
      1001, app::kImport, 1000, pump.id, 1000, pump.node1, 1000, pump.node2, 1000, pump.headCurve,
      1040, platform::wtof(pump.power), 1040, platform::wtof(pump.speed), 1000, pump.speedPattern,
      1000, pump.effCurve, 1040, platform::wtof(pump.price), 1000, pump.pricePattern, RTNONE));
}

Chain CompanionData(std::u16string_view id) {
  return Chain(acutBuildList(1001, app::kImport, 1000, id, RTNONE));
}

void storeReal(wide50& field, double value) {
  char digits[330];
  const auto n = static_cast<std::size_t>(platform::writeFixed3(digits, value) - digits);
  char16_t text[wide50::capacity];
  const std::size_t kept = std::min(n, wide50::capacity - 1);
  std::copy_n(digits, kept, text);
  field.assign({text, kept});
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
