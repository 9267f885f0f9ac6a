#include "module/inp/full_form.h"

#include <cmath>

#include "epanet/lexis.h"
#include "module/network/schema.h"
#include "platform/codepage.h"
#include "platform/text.h"

namespace vessora {

using epanet::kNone;
using epanet::Node;
using epanet::Quantity;
using epanet::Ref;
using epanet::Status;

// --- words ---------------------------------------------------------------------------------------

namespace {

const platform::CodePage& ansi() {
  static const platform::CodePage page = platform::CodePage::named("ANSI_1252");
  return page;
}

bool isAscii(std::string_view bytes) {
  for (const char c : bytes) {
    if (static_cast<unsigned char>(c) >= 0x80) return false;
  }
  return true;
}

}  // namespace

std::u16string FileText::text(std::string_view bytes) const {
  if (isAscii(bytes)) return {bytes.begin(), bytes.end()};
  return utf8_ ? platform::widen(bytes) : ansi().decode(bytes);
}

std::string FileText::bytes(std::u16string_view text) const {
  if (utf8_) return platform::narrow(text);
  std::string bytes;
  ansi().encode(bytes, text, nullptr);
  return bytes;
}

wide50 shortest(double number) {
  const std::string text = epanet::textOf(number);
  return std::u16string_view(std::u16string(text.begin(), text.end()));
}

// --- the form ------------------------------------------------------------------------------------

FullForm::FullForm(const epanet::Network& network, const std::vector<Rename>& renames)
    : network_(network),
      words_(network.document().isUtf8()),
      toDrawing_(epanet::unitsOf(network), epanet::drawingUnits(epanet::unitsOf(network))),
      places_(epanet::placesOf(network)) {
  for (const Rename& rename : renames) {
    nowOf_[static_cast<std::size_t>(rename.kind)][rename.kept] = rename.now;
    if (rename.kind == RenamedKind::node) keptNode_[rename.now] = rename.kept;
  }
}

std::u16string FullForm::currentName(RenamedKind kind, std::u16string name) const {
  const Names& names = nowOf_[static_cast<std::size_t>(kind)];
  if (names.empty()) return name;
  const auto found = names.find(name);
  if (found != names.end()) return found->second;
  return name;
}

std::u16string FullForm::nodeName(std::uint32_t node) const {
  return currentName(RenamedKind::node, words_.text(network_.nodes[node].id));
}
std::u16string FullForm::linkName(std::uint32_t link) const {
  return currentName(RenamedKind::link, words_.text(network_.links[link].id));
}
std::u16string FullForm::patternName(std::uint32_t pattern) const {
  if (pattern == kNone) return {};
  return currentName(RenamedKind::pattern, words_.text(network_.patterns[pattern].id));
}
std::u16string FullForm::curveName(std::uint32_t curve) const {
  if (curve == kNone) return {};
  return currentName(RenamedKind::curve, words_.text(network_.curves[curve].id));
}

std::uint32_t FullForm::nodeNamed(std::u16string_view name) const {
  if (const auto kept = keptNode_.find(std::u16string(name)); kept != keptNode_.end()) {
    return nodeKeptAs(kept->second);
  }
  const std::uint32_t node = nodeKeptAs(name);
  return node != kNone && nodeName(node) == name ? node : kNone;
}
std::uint32_t FullForm::nodeKeptAs(std::u16string_view id) const {
  return network_.findNode(words_.bytes(id));
}
std::uint32_t FullForm::linkKeptAs(std::u16string_view id) const {
  return network_.findLink(words_.bytes(id));
}

wide50 FullForm::number(Quantity quantity, double value) const {
  return shortest(toDrawing_(quantity, value));
}

// --- nodes ---------------------------------------------------------------------------------------

void FullForm::fill(std::uint32_t index, EpaJunc& junction) const {
  const Node& node = network_.nodes[index];
  junction.id = nodeName(index);
  junction.elev = number(Quantity::elevation, node.elevation.value);
  junction.demand = number(Quantity::flow, network_.demandOf(node));
  junction.emitter = number(Quantity::emitter, node.emitter.value);
  junction.pattern = patternName(network_.demandPatternOf(node).index);
}

void FullForm::fill(std::uint32_t index, EpaResv& reservoir) const {
  const Node& node = network_.nodes[index];
  reservoir.id = nodeName(index);
  reservoir.head = number(Quantity::elevation, node.elevation.value);
  reservoir.pattern = patternName(node.pattern.index);
}

void FullForm::fill(std::uint32_t index, EpaTank& drawn) const {
  const Node& node = network_.nodes[index];
  const epanet::Tank& tank = network_.tanks[node.tank];
  drawn.id = nodeName(index);
  drawn.elev = number(Quantity::elevation, node.elevation.value);
  drawn.initLevel = number(Quantity::elevation, tank.initLevel.value);
  drawn.minLevel = number(Quantity::elevation, tank.minLevel.value);
  drawn.maxLevel = number(Quantity::elevation, tank.maxLevel.value);
  drawn.diameter = number(Quantity::tankDiameter, tank.diameter.value);
  drawn.minVol = number(Quantity::volume, tank.minVolume.value);
  drawn.volCurve = curveName(tank.volumeCurve.index);
}

double FullForm::heightOf(std::uint32_t node) const {
  const double height = toDrawing_(Quantity::elevation, network_.nodes[node].elevation.value);
  return std::isfinite(height) ? height : 0;
}

AcGePoint3d FullForm::placeOf(std::uint32_t node) const {
  const Node& own = network_.nodes[node];
  if (places_.empty()) return {own.x.value, own.y.value, heightOf(node)};
  return {places_[node].x, places_[node].y, heightOf(node)};
}

// --- links ---------------------------------------------------------------------------------------

void FullForm::fill(std::uint32_t index, EpaPipe& drawn) const {
  const epanet::Link& link = network_.links[index];
  const epanet::Pipe& pipe = network_.pipe(link);
  drawn.id = linkName(index);
  drawn.node1 = nodeName(link.node1.index);
  drawn.node2 = nodeName(link.node2.index);
  drawn.length = number(Quantity::length, pipe.length.value);
  drawn.diameter = number(Quantity::pipeDiameter, pipe.diameter.value);
  drawn.roughness = number(Quantity::roughness, pipe.roughness.value);
  drawn.minorLoss = shortest(pipe.minorLoss.value);
  drawn.status = link.status == Status::checkValve ? u"CV"
                 : link.status == Status::closed   ? u"Closed"
                                                   : u"Open";
}

void FullForm::fill(std::uint32_t index, EpaPump& drawn) const {
  const epanet::Link& link = network_.links[index];
  const epanet::Pump& pump = network_.pump(link);
  const auto ifThere = [](const epanet::Number& value, const wide50& text) {
    return value.at ? text : wide50();
  };
  drawn.id = linkName(index);
  drawn.node1 = nodeName(link.node1.index);
  drawn.node2 = nodeName(link.node2.index);
  drawn.headCurve = curveName(pump.headCurve.index);
  // A pump with both runs on its curve.
  drawn.power = drawn.headCurve.empty()
                    ? ifThere(pump.power, number(Quantity::power, pump.power.value))
                    : wide50();
  drawn.speed = ifThere(pump.speed, shortest(pump.speed.value));
  drawn.status = link.status == Status::closed ? u"Closed" : u"Open";
  drawn.speedPattern = patternName(pump.pattern.index);
  drawn.effCurve = curveName(pump.efficiencyCurve.index);
  drawn.price = ifThere(pump.price, shortest(pump.price.value));
  drawn.pricePattern = patternName(pump.pricePattern.index);
}

void FullForm::fill(std::uint32_t index, EpaValv& drawn) const {
  const epanet::Link& link = network_.links[index];
  const epanet::Valve& valve = network_.valve(link);
  const std::string_view type = epanet::wordOf(valve.type);
  drawn.id = linkName(index);
  drawn.node1 = nodeName(link.node1.index);
  drawn.node2 = nodeName(link.node2.index);
  drawn.diameter = number(Quantity::pipeDiameter, valve.diameter.value);
  drawn.type = std::u16string(type.begin(), type.end());
  if (valve.type == epanet::ValveKind::gpv) {
    drawn.setting = curveName(valve.curve.index);
  } else {
    drawn.setting = shortest(toDrawing_.setting(valve.type, valve.setting.value));
  }
  drawn.minorLoss = shortest(valve.minorLoss.value);
  drawn.status = link.status == Status::closed ? u"Closed"
                 : link.status == Status::open ? u"Open"
                                               : u"None";
}

void FullForm::course(std::uint32_t index, AcGePoint3dArray& points) const {
  const epanet::Link& link = network_.links[index];
  points.clear();
  points.push_back(placeOf(link.node1.index));
  for (std::uint32_t i = link.firstVertex; i != kNone; i = network_.vertices[i].next) {
    const epanet::Vertex& vertex = network_.vertices[i];
    points.emplace_back(vertex.x.value, vertex.y.value, 0);
  }
  points.push_back(placeOf(link.node2.index));
  interpolateInterior(points);
}

// --- patterns, curves ----------------------------------------------------------------------------

EpaPattern FullForm::pattern(std::uint32_t index) const {
  EpaPattern pattern;
  pattern.id = patternName(index);
  for (const epanet::Number& value : network_.patterns[index].multipliers) {
    pattern.multipliers.push_back(value.value);
  }
  return pattern;
}

namespace {

const char16_t* drawnKind(const epanet::Curve& curve) {
  using epanet::CurveUse;
  switch (curve.use) {
    case CurveUse::pump:
      return u"PUMP";
    case CurveUse::efficiency:
      return u"EFFICIENCY";
    case CurveUse::volume:
      return u"VOLUME";
    case CurveUse::headloss:
    case CurveUse::valve:
      return u"HEADLOSS";
    case CurveUse::none:
      break;
  }
  constexpr struct {
    std::string_view word;
    const char16_t* kind;
  } kKinds[] = {{"VO", u"VOLUME"}, {"EF", u"EFFICIENCY"}, {"HE", u"HEADLOSS"}};
  for (const auto& own : kKinds) {
    if (epanet::isWord(curve.kind, own.word)) return own.kind;
  }
  return u"PUMP";
}

}  // namespace

EpaCurve FullForm::curve(std::uint32_t index) const {
  const epanet::Curve& own = network_.curves[index];
  EpaCurve curve;
  curve.id = curveName(index);
  curve.kind = drawnKind(own);
  for (const epanet::CurvePoint& point : own.points) {
    curve.points.push_back(
        {toDrawing_.curveX(own.use, point.x.value), toDrawing_.curveY(own.use, point.y.value)});
  }
  return curve;
}

}  // namespace vessora
