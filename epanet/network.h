// What an input file means: the network as the newest solver (2.3) reads it.
//
// Every value knows its place in the text, and this reader alone knows which of several rows
// decides. Ids are bytes of the file and views into the document, which must outlive the network;
// ids of nodes and of links are two sets of names, as are those of patterns and curves.
//
// Numbers are in the file's units (units.h). A value without a place is a default of the solver's.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "epanet/document.h"
#include "epanet/problem.h"

namespace epanet {

inline constexpr std::uint32_t kNone = 0xFFFFFFFF;

struct Place {
  RowId row = kNoRow;
  std::uint16_t token = 0;  // from 0
  explicit operator bool() const { return row != kNoRow; }
  bool operator==(const Place&) const = default;
};
struct Number {
  double value = 0;
  Place at;
};
// A word that names something. An index of kNone behind a place is a name that nothing has.
struct Ref {
  std::uint32_t index = kNone;
  Place at;
  explicit operator bool() const { return index != kNone; }
};

// --- elements ------------------------------------------------------------------------------------

enum class NodeKind : std::uint8_t { junction, reservoir, tank };
enum class LinkKind : std::uint8_t { pipe, pump, valve };
enum class ValveKind : std::uint8_t { prv, psv, pbv, fcv, tcv, gpv, pcv };
enum class Status : std::uint8_t { open, closed, active, checkValve };

struct Node {
  std::string_view id;
  RowId row = kNoRow;  // of its element section; the id is its first token
  NodeKind kind = NodeKind::junction;
  Number elevation;  // of a junction, a tank's bottom; of a reservoir the head
  Number x, y;       // without a place: nothing in [COORDINATES]
  Number emitter;    // of a junction
  // Of the element's own row. The demand counts when [DEMANDS] has no row of the junction; of a
  // reservoir the pattern is that of its head.
  Number demand;
  Ref pattern;
  std::uint32_t firstDemand = kNone, lastDemand = kNone;  // in Network::demands, by `next`
  std::uint32_t tank = kNone;                             // in Network::tanks
};

struct Tank {
  Number initLevel, minLevel, maxLevel, diameter, minVolume;
  Ref volumeCurve;
  bool overflow = false;
  Place overflowAt;
};

// A category of a junction's demand. Demands of tanks are read over by the solver and not here.
struct Demand {
  std::uint32_t node = kNone;
  Number base;
  Ref pattern;
  std::uint32_t next = kNone;
};

struct Link {
  std::string_view id;
  RowId row = kNoRow;
  LinkKind kind = LinkKind::pipe;
  Status status = Status::open;  // at the start: of its row, or what [STATUS] leaves
  bool statusByRange = false;    // the deciding row of [STATUS] names a range of links
  std::uint32_t detail = kNone;  // in pipes, pumps or valves
  std::uint32_t firstVertex = kNone, lastVertex = kNone;  // in Network::vertices, by `next`
  Ref node1, node2;
  // The value of the deciding row of [STATUS], if one names the link.
  Place statusAt;
};

struct Pipe {
  Number length, diameter, roughness, minorLoss;
  Place status;  // the word of its own row
};
struct Pump {
  Ref headCurve;
  Number power;  // 0 without a place
  Number speed;  // 1 without a place; the setting of [STATUS] where that has a number
  Ref pattern;
  Ref efficiencyCurve;
  Number price;
  Ref pricePattern;
  Number ownSpeed;  // of its own row, which [STATUS] may overrule
};
struct Valve {
  ValveKind type = ValveKind::prv;
  Place typeAt;
  Number diameter, minorLoss;
  Number setting;     // of its own row, or of [STATUS] where that has a number
  Number ownSetting;  // of its own row
  Ref curve;          // of GPV and PCV
};

struct Vertex {
  std::uint32_t link = kNone;
  Number x, y;
  std::uint32_t next = kNone;
};

// --- patterns, curves ----------------------------------------------------------------------------

struct Pattern {
  std::string_view id;
  RowId row = kNoRow;  // the first of its rows
  std::vector<Number> multipliers;
};

// What a curve is used for, by the first use in the text's reading order (elements, then options):
// its units follow from it.
enum class CurveUse : std::uint8_t { none, pump, efficiency, volume, headloss, valve };
struct CurvePoint {
  Number x, y;
};
struct Curve {
  std::string_view id;
  RowId row = kNoRow;
  CurveUse use = CurveUse::none;
  Place usedAt;
  std::string_view kind;  // what a row (2.3) or the comment above says of it, as written
  std::vector<CurvePoint> points;
};

// --- what acts on the network, and what else stands in the file
// -----------------------------------

struct Control {
  enum class On : std::uint8_t { below, above, time, clockTime };
  RowId row = kNoRow;
  Ref link;
  Place settingAt;
  std::optional<Status> status;  // open or closed
  Number setting;                // without a status
  On on = On::time;
  Ref node;
  Number level;  // or the time in seconds
  bool disabled = false;
};

enum class RuleVariable : std::uint8_t {
  demand,
  head,
  grade,
  level,
  pressure,
  flow,
  status,
  setting,
  power,
  time,
  clockTime,
  fillTime,
  drainTime
};
struct Clause {
  enum class Word : std::uint8_t { ifThis, andThis, orThis, then, andThen, otherwise, andElse };
  enum class Object : std::uint8_t { node, link, system };
  RowId row = kNoRow;
  Word word = Word::ifThis;
  Object object = Object::node;
  Ref subject;
  RuleVariable variable = RuleVariable::status;
  std::optional<Status> status;
  Number value;
};
struct Rule {
  std::string_view label;
  RowId first = kNoRow, last = kNoRow;  // rows, RULE to its last clause
  std::vector<Clause> clauses;
  double priority = 0;
  bool disabled = false;
};

struct Source {
  enum class Kind : std::uint8_t { concentration, mass, setpoint, flowPaced };
  RowId row = kNoRow;
  Ref node;
  Kind kind = Kind::concentration;
  Number strength;
  Ref pattern;
};
struct Mixing {
  RowId row = kNoRow;
  Ref tank;
  std::string_view model;
  Number fraction;
};
// A value for one element or a range of ids: initial quality, a reaction coefficient.
struct RangeValue {
  enum class What : std::uint8_t { quality, bulk, wall, tank };
  RowId row = kNoRow;
  What what = What::quality;
  Ref first, last;  // equal for one element; without an index for a range of numbers
  Number value;
};
struct Leakage {
  RowId row = kNoRow;
  Ref pipe;
  Number area, expansion;
};
struct Tag {
  RowId row = kNoRow;
  bool ofNode = true;
  Ref element;
  std::string_view text;
};
struct Label {
  RowId row = kNoRow;
  Number x, y;
  std::string_view text;
  Ref anchor;  // a node, or nothing
};

// --- options -------------------------------------------------------------------------------------

// Every setting of [OPTIONS], [TIMES], [ENERGY] and [REACTIONS] that is one of the whole network.
enum class Option : std::uint8_t {
  units,
  pressure,
  headloss,
  hydraulics,
  quality,
  map,
  verify,
  segments,
  unbalanced,
  pattern,
  viscosity,
  diffusivity,
  specificGravity,
  trials,
  accuracy,
  tolerance,
  emitterExponent,
  emitterBackflow,
  demandMultiplier,
  demandModel,
  minimumPressure,
  requiredPressure,
  pressureExponent,
  checkFreq,
  maxCheck,
  dampLimit,
  headTolerance,
  flowTolerance,
  headError,
  flowChange,
  qualityTolerance,
  duration,
  hydraulicStep,
  qualityStep,
  ruleStep,
  minimumStep,
  patternStep,
  patternStart,
  reportStep,
  reportStart,
  startClock,
  statistic,
  globalPrice,
  globalPattern,
  globalEfficiency,
  demandCharge,
  bulkOrder,
  tankOrder,
  wallOrder,
  globalBulk,
  globalWall,
  limitingPotential,
  roughnessCorrelation,
  count
};
inline constexpr int kOptions = static_cast<int>(Option::count);

struct OptionValue {
  Place at;               // of the value's first token; none: the default holds
  std::string_view text;  // first token of the value
  std::string_view more;  // the second, where there is one ("Continue 10", "Chlorine mg/L")
  double number = 0;      // numbers as they stand, times in seconds; a default too
};

enum class FlowUnits : std::uint8_t { cfs, gpm, mgd, imgd, afd, lps, lpm, mld, cmh, cmd, cms };
enum class PressureUnits : std::uint8_t { psi, kpa, meters, bar, feet };
enum class Formula : std::uint8_t { hazenWilliams, darcyWeisbach, chezyManning };

// --- recorded while reading, for whoever wants it ------------------------------------------------

enum class Thing : std::uint8_t { node, link, pattern, curve };
// Where an id stands, and what becomes of its row when the thing is taken out of the network.
enum class Role : std::uint8_t {
  own,     // the row that makes the thing, or one of its points or values
  data,    // a row that says something of it: goes with it
  end,     // of a link
  value,   // a reference among other values (a junction's pattern, a pump's curve)
  clause,  // of a control or a rule
  item,    // one of a list of ids ([REPORT] NODES a b c), or an end of a range
  anchor,  // of a label
  option,  // the default pattern, the traced node
};
struct Mention {
  Thing thing = Thing::node;
  std::uint32_t index = kNone;
  Role role = Role::data;
  Place at;
};

// What kind of quantity a number is, for units.h.
enum class Quantity : std::uint8_t {
  elevation,  // lengths of heads, levels, elevations
  length,
  pipeDiameter,
  tankDiameter,
  volume,
  roughness,
  flow,
  pressure,
  power,
  emitter,
  setting,  // of the valve `element`: by its type
  level,    // in a control of the node `element`: level of tanks, pressure of junctions
  curveX,
  curveY,  // of the curve `element`: by its use
  bulk,
  wall,
  leakArea,
  leakExpansion,
  viscosity,
  diffusivity,
  correlation,
  velocity,
  headlossLimit,  // limits of [REPORT]
  none
};
struct Measure {
  Quantity quantity = Quantity::none;
  std::uint32_t element = kNone;  // node, link or curve, as the quantity says
  Number number;
};
struct Record {
  std::vector<Mention> mentions;
  std::vector<Measure> measures;  // every number of the file that has a unit
};

// --- the network ---------------------------------------------------------------------------------

class Network {
 public:
  // Reads a document; `record`, when given, is filled too. Bad rows become problems and are passed
  // over, as far as the solver does so in its own lists.
  explicit Network(const Document& document, Record* record = nullptr);
  Network(Network&&) noexcept;
  Network& operator=(Network&&) noexcept;
  ~Network();

  const Document& document() const { return *document_; }

  std::vector<std::string_view> title;  // the three lines that the solver keeps
  std::vector<Node> nodes;              // in file order, as links
  std::vector<Tank> tanks;
  std::vector<Demand> demands;
  std::vector<Link> links;  // in file order
  std::vector<Pipe> pipes;
  std::vector<Pump> pumps;
  std::vector<Valve> valves;
  std::vector<Vertex> vertices;
  std::vector<Pattern> patterns;
  std::vector<Curve> curves;
  std::vector<Control> controls;
  std::vector<Rule> rules;
  std::vector<Source> sources;
  std::vector<Mixing> mixing;
  std::vector<RangeValue> rangeValues;
  std::vector<Leakage> leakages;
  std::vector<Tag> tags;
  std::vector<Label> labels;
  std::array<OptionValue, kOptions> options;

  const OptionValue& option(Option o) const { return options[static_cast<std::size_t>(o)]; }
  FlowUnits flowUnits = FlowUnits::gpm;
  PressureUnits pressureUnits = PressureUnits::psi;  // as the newest solver takes them
  Formula formula = Formula::hazenWilliams;
  bool isUs() const { return flowUnits < FlowUnits::lps; }
  // The pattern of demands that name none: [OPTIONS], else "1" if there is one.
  std::uint32_t defaultPattern = kNone;

  std::vector<Problem> problems;  // in the order of rows; of the whole file at the end

  // kNone when there is no such id; exact, as the solver compares.
  std::uint32_t findNode(std::string_view id) const;
  std::uint32_t findLink(std::string_view id) const;
  std::uint32_t findPattern(std::string_view id) const;
  std::uint32_t findCurve(std::string_view id) const;

  // The demand of a junction as it is drawn: the sum of its categories, and the first one's pattern
  // (without index: the default one).
  double demandOf(const Node& junction) const;
  Ref demandPatternOf(const Node& junction) const;

  const Pipe& pipe(const Link& link) const { return pipes[link.detail]; }
  const Pump& pump(const Link& link) const { return pumps[link.detail]; }
  const Valve& valve(const Link& link) const { return valves[link.detail]; }

 private:
  friend class Reader;
  struct Names;
  const Document* document_;
  std::unique_ptr<Names> names_;
};

std::string_view wordOf(FlowUnits units);      // "GPM"
std::string_view wordOf(PressureUnits units);  // "PSI"
std::string_view wordOf(Formula formula);      // "H-W"
std::string_view wordOf(ValveKind kind);       // "PRV"

}  // namespace epanet
