// How a network lives in a drawing: layers, blocks, attribute tags, extended data, and the
// selections that find it.
//
// An element belongs to a network by the layer of its entity: kind prefix and network name. Nodes
// are blocks with attributes, pipes are 3D polylines, pumps and valves are a block that holds the
// data and a companion polyline that holds the course. Attributes hold what a user reads on the
// plan, extended data what the calculation needs besides. Lists of extended data are read by
// position; group codes are not looked at.
#pragma once

#include <string>
#include <string_view>

#include "module/host/host_drawing.h"
#include "module/host/module.h"
#include "module/network/records.h"

namespace vessora {

namespace block {
inline constexpr char16_t kJunc[] = u"Junc";
inline constexpr char16_t kResv[] = u"Resv";
inline constexpr char16_t kTank[] = u"Tank";
inline constexpr char16_t kValv[] = u"Valv";
inline constexpr char16_t kPump[] = u"Pump";
}  // namespace block

// Attribute tags.
namespace tag {
inline constexpr char16_t kId[] = u"ID";
inline constexpr char16_t kElevation[] = u"EL";
inline constexpr char16_t kDemand[] = u"BD";
inline constexpr char16_t kHead[] = u"TH";
inline constexpr char16_t kDiameter[] = u"D";
inline constexpr char16_t kInitLevel[] = u"INITL";
inline constexpr char16_t kMinLevel[] = u"MINL";
inline constexpr char16_t kMaxLevel[] = u"MAXL";
inline constexpr char16_t kMinVolume[] = u"MINVOL";
inline constexpr char16_t kValveType[] = u"TYPE";
inline constexpr char16_t kSetting[] = u"SET";
inline constexpr char16_t kMinorLoss[] = u"MLOSS";
inline constexpr char16_t kStatus[] = u"ST";
}  // namespace tag

// The six element layers of one network. An entity's kind is decided by comparing its layer exactly
// with these, although selections do not look at letter case.
struct NetworkLayers {
  explicit NetworkLayers(std::u16string_view network);
  std::u16string junc, resv, tank, pipe, pump, valv;
};

// --- filters. The caller owns the chain; SelectionSet takes it.
// -----------------------------------

// All blocks and link polylines of a network; without companions, of the polylines only the pipes.
resbuf* wholeNetworkFilter(const NetworkLayers& layers, bool companions = true);
// The polylines of pipes, valves and pumps.
resbuf* linkPolylineFilter(const NetworkLayers& layers);
// The blocks of junctions, reservoirs and tanks.
resbuf* nodeBlockFilter(const NetworkLayers& layers);
// The blocks of valves and pumps.
resbuf* linkBlockFilter(const NetworkLayers& layers);
// All blocks on a layer.
resbuf* blocksOnLayerFilter(std::u16string_view layer);
// The polylines on a layer that belong to elements.
resbuf* elementPolylineFilter(std::u16string_view layer);
// What one application keeps on the reserved layer.
resbuf* reservedFilter(std::u16string_view application);

// Makes the reserved layer, and freezes it also where the user has thawed it.
void makeReservedLayer();

// --- extended data of elements, header included --------------------------------------------------

Chain JuncData(std::u16string_view id, double emitter, std::u16string_view pattern);
Chain ResvData(std::u16string_view id, std::u16string_view pattern);
Chain TankData(std::u16string_view id, std::u16string_view volCurve);
// Reals come from the record's texts.
Chain PipeData(const EpaPipe& pipe);
// Diameter and minor loss as given, everything else from the record.
Chain ValvData(const EpaValv& valv, double diameter, double minorLoss);
// An empty power, speed or price is stored as 0.
Chain PumpData(const EpaPump& pump);
// Of the companion polyline of a valve or a pump.
Chain CompanionData(std::u16string_view id);

// A real of extended data as records hold it: three decimals, cut at the field's capacity.
void storeReal(wide50& field, double value);

// --- geometry ------------------------------------------------------------------------------------

// Tolerance per axis, strict, by which blocks and link ends are found by their place.
inline constexpr double kPlaceTolerance = 0.0001;

// Where the block of a valve or pump stands on its companion polyline: amid the first two vertices
// of two, amid the second and the third of more. False with fewer than two.
bool linkBlockPlace(const AcGePoint3dArray& points, AcGePoint3d& place);

// The height at a point of a link whose ends are `start` and `end`: linear in the plan distance
// from the start, not clamped. Ends that coincide in plan (or all but do) have no slope to follow,
// and the start's height is given: a division by zero must never put a NaN into a drawing.
double heightBetween(const AcGePoint3d& start, const AcGePoint3d& end, const AcGePoint3d& at);
// Puts every vertex between the ends at that height.
void interpolateInterior(AcGePoint3dArray& points);

}  // namespace vessora
