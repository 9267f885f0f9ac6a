// How a drawn element is stored: the one table of block names, attribute tags and places in
// extended data, read by everything that draws, collects, changes or shows a network.
//
// An element belongs to a network by the layer of its entity: kind prefix and network name. Nodes
// are blocks with attributes, pipes are 3D polylines, pumps and valves are a block that holds the
// data and a companion polyline that holds the course and the id. Attributes hold what a user reads
// on the plan, extended data what the calculation needs besides. Lists of extended data are read by
// position; group codes are not looked at.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace schema {

// Applications with extended data of a network.
namespace app {
inline constexpr char16_t kImport[] = u"HN-C_EPAHNIMPORT";
inline constexpr char16_t kMaterial[] = u"HN-C_MATEPA";
inline constexpr char16_t kNodeResult[] = u"HN-C_NODE_RESULT";
inline constexpr char16_t kLinkResult[] = u"HN-C_LINK_RESULT";
inline constexpr char16_t kPeriod[] = u"HN-C_PERIOD_RPT";
inline constexpr char16_t kColor[] = u"HN-C_EPA_COLOR";
inline constexpr char16_t kSettings[] = u"HN-C_EPA_IMPOSTAZIONI";
inline constexpr char16_t kPattern[] = u"HN-C_EPA_PATTERN";
inline constexpr char16_t kCurve[] = u"HN-C_EPA_CURVE";
inline constexpr char16_t kKept[] = u"VESSORA_INP";
inline constexpr char16_t kSchema[] = u"HN-SCHEMA_RETE-ACQ";
}  // namespace app

// Layers of a network: prefix and name, with nothing between. Settings, patterns and curves lie on
// the one reserved layer.
namespace layer {
inline constexpr char16_t kJunc[] = u"JUNC-";
inline constexpr char16_t kResv[] = u"RESV-";
inline constexpr char16_t kTank[] = u"TANK-";
inline constexpr char16_t kPipe[] = u"PIPE-";
inline constexpr char16_t kPump[] = u"PUMP-";
inline constexpr char16_t kValv[] = u"VALV-";
inline constexpr char16_t kFlowIn[] = u"Q-IN-";
inline constexpr char16_t kFlowOut[] = u"Q-OUT-";
inline constexpr char16_t kPipeTables[] = u"PIPE_DATA-";
inline constexpr char16_t kLinkTables[] = u"LINKS_RESULTS-";
inline constexpr char16_t kNodeTables[] = u"NODES_RESULTS-";
inline constexpr char16_t kGradeLine[] = u"PIEZOMETRICA_3D-";
inline constexpr char16_t kGradeConstruction[] = u"LINEE_COSTR-";
inline constexpr char16_t kGradeHeads[] = u"PIEZOMETRICA_3D_H-";
inline constexpr char16_t kGradePressures[] = u"PIEZOMETRICA_3D_P-";
inline constexpr char16_t kGradeValues[] = u"PIEZOMETRICA_3D_VAL-";
inline constexpr char16_t kReserved[] = u"HN-RISERVATO";
}  // namespace layer

// --- rows ----------------------------------------------------------------------------------------

enum class Field : std::uint8_t {
  none,  // keeps a place that has no meaning
  id,
  node1,
  node2,
  elevation,
  head,
  demand,
  emitter,
  pattern,
  initLevel,
  minLevel,
  maxLevel,
  diameter,
  minVolume,
  volumeCurve,
  length,
  roughness,
  minorLoss,
  status,
  type,
  setting,
  headCurve,
  power,
  speed,
  speedPattern,
  efficiencyCurve,
  price,
  pricePattern,
  pressure,
  quality,
  flow,
  velocity,
  headloss,
  period,
  network,
  kind,
  title,
};

enum class Type : std::uint8_t { text, real, integer };
// Which reals stand for a field without a value.
enum class Empty : std::uint8_t { never, zero, zeroOrLess };

struct Row {
  Field field = Field::none;
  std::u16string_view tag;  // of the attribute, compared exactly; empty: there is none
  int place = 0;            // of the item behind the application's header, from 1; 0: there is none
  Type type = Type::text;   // of the item
  Empty empty = Empty::never;
};
using Rows = std::span<const Row>;

// A list of extended data: rows with a place come first, in order, from 1 without a gap.
struct List {
  const char16_t* application;
  Rows rows;
};

// A kind of element.
struct Kind {
  const char16_t* layer;  // prefix
  const char16_t* block;  // empty: a polyline alone
  List data;
  int color;  // of the layer as import makes it, and of polylines
};

// The place of a field's item in a list; 0 when it has none.
constexpr int placeOf(const List& list, Field field) {
  for (const Row& row : list.rows) {
    if (row.field == field) return row.place;
  }
  return 0;
}
// The tag of a field's attribute; empty when it has none.
constexpr std::u16string_view tagOf(const Kind& kind, Field field) {
  for (const Row& row : kind.data.rows) {
    if (row.field == field) return row.tag;
  }
  return {};
}

// --- elements ------------------------------------------------------------------------------------

// Of every block; companions have it at the first place too, and nothing else.
inline constexpr char16_t kIdTag[] = u"ID";

inline constexpr Row kJuncRows[] = {
    {Field::id, kIdTag, 1},   {Field::emitter, u"", 2, Type::real},
    {Field::pattern, u"", 3}, {Field::elevation, u"EL"},
    {Field::demand, u"BD"},
};
inline constexpr Row kResvRows[] = {
    {Field::id, kIdTag, 1},
    // Always 0 and never read: it keeps the pattern at the place where junctions have it.
    {Field::none, u"", 2, Type::real},
    {Field::pattern, u"", 3},
    {Field::head, u"TH"},
};
inline constexpr Row kTankRows[] = {
    {Field::id, kIdTag, 1},     {Field::volumeCurve, u"", 2},  {Field::elevation, u"EL"},
    {Field::diameter, u"D"},    {Field::initLevel, u"INITL"},  {Field::minLevel, u"MINL"},
    {Field::maxLevel, u"MAXL"}, {Field::minVolume, u"MINVOL"},
};
inline constexpr Row kPipeRows[] = {
    {Field::id, u"", 1},
    {Field::length, u"", 2, Type::real},
    {Field::diameter, u"", 3, Type::real},
    {Field::roughness, u"", 4, Type::real},
    {Field::minorLoss, u"", 5, Type::real},
    {Field::status, u"", 6},
    {Field::node1, u"", 7},
    {Field::node2, u"", 8},
};
// Diameter, type, setting and minor loss are on both sides. Who edits an element reads the
// attributes, who collects a network the data (collection.cpp): an edit by hand reaches the first
// alone.
inline constexpr Row kValvRows[] = {
    {Field::id, kIdTag, 1},      {Field::diameter, u"D", 2, Type::real},
    {Field::type, u"TYPE", 3},   {Field::status, u"", 4},
    {Field::setting, u"SET", 5}, {Field::minorLoss, u"MLOSS", 6, Type::real},
    {Field::node1, u"", 7},      {Field::node2, u"", 8},
};
// The status is on the attribute alone.
inline constexpr Row kPumpRows[] = {
    {Field::id, kIdTag, 1},
    {Field::node1, u"", 2},
    {Field::node2, u"", 3},
    {Field::headCurve, u"", 4},
    {Field::power, u"", 5, Type::real, Empty::zero},
    {Field::speed, u"", 6, Type::real, Empty::zero},
    {Field::speedPattern, u"", 7},
    {Field::efficiencyCurve, u"", 8},
    {Field::price, u"", 9, Type::real, Empty::zeroOrLess},
    {Field::pricePattern, u"", 10},
    {Field::status, u"ST"},
};

inline constexpr Kind kJunc{layer::kJunc, u"Junc", {app::kImport, kJuncRows}, 5};
inline constexpr Kind kResv{layer::kResv, u"Resv", {app::kImport, kResvRows}, 5};
inline constexpr Kind kTank{layer::kTank, u"Tank", {app::kImport, kTankRows}, 5};
inline constexpr Kind kPipe{layer::kPipe, u"", {app::kImport, kPipeRows}, 140};
inline constexpr Kind kPump{layer::kPump, u"Pump", {app::kImport, kPumpRows}, 6};
inline constexpr Kind kValv{layer::kValv, u"Valv", {app::kImport, kValvRows}, 2};

// --- results -------------------------------------------------------------------------------------

inline constexpr Row kNodeResultRows[] = {
    {Field::demand, u"", 1, Type::real},
    {Field::head, u"", 2, Type::real},
    {Field::pressure, u"", 3, Type::real},
    {Field::quality, u"", 4},
};
inline constexpr Row kLinkResultRows[] = {
    {Field::flow, u"", 1, Type::real},
    {Field::velocity, u"", 2, Type::real},
    {Field::headloss, u"", 3, Type::real},
    {Field::status, u"", 4},
};
inline constexpr Row kPeriodRows[] = {{Field::period, u"", 1}};

inline constexpr List kNodeResult{app::kNodeResult, kNodeResultRows};
inline constexpr List kLinkResult{app::kLinkResult, kLinkResultRows};
inline constexpr List kPeriod{app::kPeriod, kPeriodRows};

// --- what else carries data ----------------------------------------------------------------------

inline constexpr Row kMaterialRows[] = {{Field::type, u"", 1}};
inline constexpr Row kLegendRows[] = {{Field::title, u"", 1}, {Field::kind, u"", 2, Type::integer}};
inline constexpr Row kPatternRows[] = {{Field::id, u"", 1}, {Field::network, u"", 2}};
inline constexpr Row kCurveRows[] = {
    {Field::id, u"", 1}, {Field::kind, u"", 2}, {Field::network, u"", 3}};

inline constexpr List kMaterial{app::kMaterial, kMaterialRows};
inline constexpr List kLegend{app::kColor, kLegendRows};
inline constexpr List kPattern{app::kPattern, kPatternRows};
inline constexpr List kCurve{app::kCurve, kCurveRows};

// The tie of an element to the rows of the kept text: its id as that text has it. On a settings
// point the same place has the checksum of the network's text, eight hex digits.
inline constexpr Row kKeptRows[] = {{Field::id, u"", 1}};
inline constexpr List kKept{app::kKept, kKeptRows};
inline constexpr int kKeptPlace = 1;

// Settings: 37 items in the order in which settings_store.cpp binds them to the record. A list of
// an older layout ends before the flag.
inline constexpr int kSettingsName = 1, kSettingsFlag = 37;

// --- networks of the sibling module --------------------------------------------------------------

// A schematic aqueduct network lies on the one layer of its name: blocks with these attributes,
// polylines with these items. Such a name begins with the prefix.
namespace schematic {
inline constexpr char16_t kNamePrefix[] = u"HN-AQ";
inline constexpr char16_t kNodeName[] = u"NODE_01";
inline constexpr char16_t kNodeDemand[] = u"NODE_02";
inline constexpr char16_t kNodeElevation[] = u"NODE_03";
inline constexpr char16_t kTankHead[] = u"TANK_01";
inline constexpr char16_t kTankName[] = u"TANK_02";
// Points: (length, diameter in m), (roughness, minor loss); then the name.
inline constexpr int kSize = 1, kLoss = 2, kPipeName = 3;
}  // namespace schematic

// --- the table holds together --------------------------------------------------------------------

constexpr bool placesAscend(const List& list) {
  int next = 1;
  for (const Row& row : list.rows) {
    if (row.place != 0 && row.place != next++) return false;
    if (row.place == 0 && row.tag.empty()) return false;
  }
  return true;
}
static_assert(placesAscend(kJunc.data) && placesAscend(kResv.data) && placesAscend(kTank.data) &&
              placesAscend(kPipe.data) && placesAscend(kPump.data) && placesAscend(kValv.data) &&
              placesAscend(kNodeResult) && placesAscend(kLinkResult) && placesAscend(kPeriod) &&
              placesAscend(kMaterial) && placesAscend(kLegend) && placesAscend(kPattern) &&
              placesAscend(kCurve) && placesAscend(kKept));

// The blocks as which manholes of a profile stand in the plan, by the place of their button.
inline constexpr const char16_t* kManholeBlocks[] = {
    u"ChiusinoD400_01", u"ChiusinoD400_02", u"ChiusinoD400_03", u"ChiusinoD400_04",
    u"ChiusinoD400_05", u"ChiusinoD400_06", u"ChiusinoD400_07", u"ChiusinoD400_08"};

}  // namespace schema
