// The records of one network: six kinds of element, the named points of nodes and links, patterns,
// curves and the simulation settings.
//
// Every attribute of an element, numbers included, is text of fixed capacity: what stood in a block
// attribute or a file goes on as that same text, and is read as a number only where arithmetic
// needs it. Numbers that come from extended data have three decimals. Element records are plain
// values that are copied as bytes; a default record has a null objectId and empty fields.
//
// Units: m for elevations, heads, levels, lengths and tank diameters; mm for pipe and valve
// diameters; l/s for demands; m3 for tank volumes; kW for pump power.
#pragma once

#include <cstdint>
#include <type_traits>
#include <vector>

#include "module/host/host_values.h"
#include "module/network/record_list.h"
#include "platform/wide.h"

namespace vessora {

using platform::wide256;
using platform::wide50;

struct EpaJunc {
  AcDbObjectId objectId;
  wide256 id;
  wide50 elev;
  wide50 demand;   // base demand
  wide50 emitter;  // emitter coefficient
  wide50 pattern;  // demand pattern, empty for none
};

struct EpaResv {
  AcDbObjectId objectId;
  wide256 id;
  wide50 head;
  wide50 pattern;  // head pattern, empty for none
};

struct EpaTank {
  AcDbObjectId objectId;
  wide256 id;
  wide50 elev;  // of the bottom
  wide50 initLevel;
  wide50 minLevel;
  wide50 maxLevel;
  wide50 diameter;
  wide50 minVol;
  wide50 volCurve;  // empty for none
};

struct EpaPipe {
  AcDbObjectId objectId;
  wide256 id;
  wide256 node1;
  wide256 node2;
  wide50 length;
  wide50 diameter;  // inner
  wide50 roughness;
  wide50 minorLoss;
  wide50 status;  // "Open", "Closed" or "CV"
};

struct EpaValv {
  AcDbObjectId objectId;
  wide256 id;
  wide256 node1;  // upstream
  wide256 node2;  // downstream
  wide50 diameter;
  wide50 type;     // PRV, PSV, PBV, FCV, TCV, GPV
  wide50 setting;  // meaning by type
  wide50 minorLoss;
  wide50 status;  // fixed status; "None" means no line in [STATUS]
};

struct EpaPump {
  AcDbObjectId objectId;
  wide256 id;
  wide256 node1;  // suction
  wide256 node2;  // delivery
  wide50 headCurve;
  wide50 power;  // constant power
  wide50 speed;  // relative
  wide50 status;
  wide50 speedPattern;
  wide50 effCurve;
  wide50 price;
  wide50 pricePattern;
};

// A point of a node ([COORDINATES]) or of a link ([VERTICES]).
struct EpaCoord {
  wide256 id;
  wide50 x;
  wide50 y;
};

struct EpaPattern {
  wide256 id;
  std::vector<double> multipliers;  // in time order
  friend bool operator==(const EpaPattern&, const EpaPattern&) = default;
};

struct EpaCurvePoint {
  double x = 0;
  double y = 0;
  friend bool operator==(const EpaCurvePoint&, const EpaCurvePoint&) = default;
};

struct EpaCurve {
  wide256 id;
  wide50 kind;  // "VOLUME", "PUMP", "EFFICIENCY" or "HEADLOSS"
  std::vector<EpaCurvePoint> points;
  friend bool operator==(const EpaCurve&, const EpaCurve&) = default;
};

// The simulation settings of one network. A default one holds the values of a new network.
struct EpaSettings {
  wide256 name;                // of the network; the key of the record
  std::int16_t isDefault = 0;  // > 0: the drawing's default network
  wide50 flowUnits = u"LPS";
  wide50 headloss = u"H-W";
  double specificGravity = 1.0;
  double viscosity = 1.0;  // relative
  std::int32_t trials = 40;
  double accuracy = 0.001;
  wide50 unbalanced = u"Continue";
  double defaultPattern = 1.0;
  double demandMultiplier = 1.0;
  double emitterExponent = 0.5;
  wide50 qualityFlag = u"No";  // kept for the stored list, of no use otherwise
  wide256 qualityParam = u"None";
  wide50 qualityUnits = u"mg/L";
  double diffusivity = 1.0;  // relative
  wide256 traceNode;
  double tolerance = 0.01;
  double bulkOrder = 1.0;
  wide256 wallOrder = u"First";
  double globalBulk = 0.0;
  double globalWall = 0.0;
  double limitingPotential = 0.0;
  double roughnessCorrelation = 0.0;
  double globalEfficiency = 75.0;  // percent
  double globalPrice = 0.0;
  wide50 energyPattern;
  double demandCharge = 0.0;
  std::int32_t durationDays = 0;  // whole days that saving adds to `duration`
  wide50 duration = u"00:00:00";
  wide50 hydraulicStep = u"01:00:00";
  wide50 qualityStep = u"00:05:00";
  wide50 patternStep = u"01:00:00";
  wide50 patternStart = u"00:00:00";
  wide50 reportStep = u"01:00:00";
  wide50 reportStart = u"00:00:00";
  wide50 startClock = u"12:00:00";
  wide50 statistic = u"None";
  friend bool operator==(const EpaSettings&, const EpaSettings&) = default;
};

// One network, in the order in which its lists are named everywhere. List order is the order of
// rows in written files; the rows of one link in `vertices` stand together, in vertex order.
struct EpaNetwork {
  RecordList<EpaJunc> juncs;
  RecordList<EpaResv> resvs;
  RecordList<EpaTank> tanks;
  RecordList<EpaPipe> pipes;
  RecordList<EpaValv> valves;
  RecordList<EpaPump> pumps;
  RecordList<EpaCoord> coords;    // one for each node, none for a link
  RecordList<EpaCoord> vertices;  // of all links, ends included where they were drawn
  std::vector<EpaCurve> curves;
  std::vector<EpaPattern> patterns;
};

// Sets every field to its default; `name` becomes empty.
inline void ResetSettings(EpaSettings& settings) { settings = EpaSettings(); }

static_assert(std::is_trivially_copyable_v<EpaJunc> && std::is_trivially_copyable_v<EpaResv> &&
              std::is_trivially_copyable_v<EpaTank> && std::is_trivially_copyable_v<EpaPipe> &&
              std::is_trivially_copyable_v<EpaValv> && std::is_trivially_copyable_v<EpaPump> &&
              std::is_trivially_copyable_v<EpaCoord> && std::is_trivially_copyable_v<EpaSettings>);

}  // namespace vessora
