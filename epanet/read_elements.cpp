// Elements and what sections of their own say of them.
#include <cmath>

#include "epanet/lexis.h"
#include "epanet/reader.h"

namespace epanet {
namespace {

constexpr std::size_t kLongestId = 31;  // bytes

}  // namespace

Node* Reader::newNode(NodeKind kind) {
  const std::string_view id = word(0);
  if (id.empty() || id.size() > kLongestId) {
    problem(Fault::longId, 0);
    return nullptr;
  }
  if (net_.findNode(id) != kNone) {
    problem(Fault::duplicate, 0);
    return nullptr;
  }
  const auto index = static_cast<std::uint32_t>(net_.nodes.size());
  Node& node = net_.nodes.emplace_back();
  node.id = id;
  node.row = row_;
  node.kind = kind;
  net_.names_->nodes.add(id, index);
  mention(Thing::node, index, Role::own, 0);
  return &node;
}

std::optional<Reader::Ends> Reader::readEnds() {
  Ends ends;
  ends.node1 = node(1, Role::end);
  if (!ends.node1) return std::nullopt;
  ends.node2 = node(2, Role::end);
  if (!ends.node2) return std::nullopt;
  if (ends.node1.index != ends.node2.index) return ends;
  problem(Fault::sameEnds, 0);
  return std::nullopt;
}

Link* Reader::newLink(LinkKind kind, const Ends& ends) {
  const std::string_view id = word(0);
  if (id.empty() || id.size() > kLongestId) {
    problem(Fault::longId, 0);
    return nullptr;
  }
  if (net_.findLink(id) != kNone) {
    problem(Fault::duplicate, 0);
    return nullptr;
  }
  const auto index = static_cast<std::uint32_t>(net_.links.size());
  Link& link = net_.links.emplace_back();
  link.id = id;
  link.row = row_;
  link.kind = kind;
  link.node1 = ends.node1;
  link.node2 = ends.node2;
  net_.names_->links.add(id, index);
  mention(Thing::link, index, Role::own, 0);
  return &link;
}

void Reader::readJunction() {
  Node* const node = newNode(NodeKind::junction);
  if (!node) return;
  if (!numberIfThere(1, node->elevation)) return;
  measure(Quantity::elevation, node->elevation);
  if (!numberIfThere(2, node->demand)) return;
  measure(Quantity::flow, node->demand);
  if (count() > 3) node->pattern = pattern(3, Role::value);
}

// Both sections are read alike: how many words a row has decides what it makes.
void Reader::readTankOrReservoir() {
  const bool few = count() <= 3;
  Node* const node = newNode(few ? NodeKind::reservoir : NodeKind::tank);
  if (!node) return;
  // A row with faults makes a tank too.
  Tank* const made = few ? nullptr : &net_.tanks.emplace_back();
  if (made) node->tank = static_cast<std::uint32_t>(net_.tanks.size() - 1);
  if (count() < 2) return problem(Fault::syntax);
  if (!number(1, node->elevation)) return;
  if (!few && count() < 6) return problem(Fault::syntax);
  measure(Quantity::elevation, node->elevation);
  if (few) {
    if (count() > 2) node->pattern = pattern(2, Role::value);
    return;
  }
  Tank& tank = *made;
  struct Column {
    Number& number;
    Quantity quantity;
  };
  const Column columns[] = {{tank.initLevel, Quantity::elevation},
                            {tank.minLevel, Quantity::elevation},
                            {tank.maxLevel, Quantity::elevation},
                            {tank.diameter, Quantity::tankDiameter},
                            {tank.minVolume, Quantity::volume}};
  int i = 2;
  for (const Column& column : columns) {
    if (i >= count()) break;
    if (!number(i, column.number)) return;
    if (column.number.value < 0) return problem(Fault::nodeValue, i);
    measure(column.quantity, column.number);
    ++i;
  }
  if (count() > 7 && word(7) != "*" && !word(7).empty()) {
    tank.volumeCurve = curve(7, Role::value, CurveUse::volume);
  }
  if (count() > 8) {
    tank.overflowAt = at(8);
    tank.overflow = is(8, "YES");
    if (!tank.overflow && !is(8, "NO")) problem(Fault::option, 8);
  }
}

void Reader::readPipe() {
  if (count() < 3) return problem(Fault::shortLink, 0);
  const auto ends = readEnds();
  Link* const link = ends ? newLink(LinkKind::pipe, *ends) : nullptr;
  if (!link) return;
  link->detail = static_cast<std::uint32_t>(net_.pipes.size());
  Pipe& pipe = net_.pipes.emplace_back();
  struct Column {
    Number& number;
    Quantity quantity;
  };
  const Column columns[] = {{pipe.length, Quantity::length},
                            {pipe.diameter, Quantity::pipeDiameter},
                            {pipe.roughness, Quantity::roughness}};
  // What a short row leaves out depends on the options read so far.
  pipe.length.value = net_.isUs() ? 330 : 100;
  pipe.diameter.value = net_.isUs() ? 10 : 254;
  pipe.roughness.value = net_.formula == Formula::hazenWilliams   ? 130
                         : net_.formula == Formula::darcyWeisbach ? 0.0005
                                                                  : 0.01;
  int i = 3;
  for (const Column& column : columns) {
    if (i >= count()) return;
    if (!number(i, column.number)) return;
    if (column.number.value <= 0) return problem(Fault::number, i);
    measure(column.quantity, column.number);
    ++i;
  }
  const auto status = [&](int token) {
    if (is(token, "CV")) {
      link->status = Status::checkValve;
    } else if (is(token, "CLOSED")) {
      link->status = Status::closed;
    } else if (!is(token, "OPEN")) {
      return false;
    }
    pipe.status = at(token);
    return true;
  };
  if (count() == 7 && status(6)) return;
  if (count() > 6) {
    if (!number(6, pipe.minorLoss)) return;
    if (pipe.minorLoss.value < 0) return problem(Fault::number, 6);
  }
  if (count() > 7 && !status(7)) problem(Fault::option, 7);
}

void Reader::readPump() {
  if (count() < 3) return problem(Fault::shortLink, 0);
  const auto ends = readEnds();
  Link* const link = ends ? newLink(LinkKind::pump, *ends) : nullptr;
  if (!link) return;
  link->detail = static_cast<std::uint32_t>(net_.pumps.size());
  Pump& pump = net_.pumps.emplace_back();
  pump.ownSpeed.value = pump.speed.value = 1;
  const bool old = count() > 3 && numberOf(word(3)).has_value() && !word(3).empty();
  if (old) {
    // Numbers in place of a curve: only versions before 2.3 took them.
    problem(Fault::oldPump, 3);
    if (count() > 4) problem(Fault::syntax, 3);
    return;
  }
  readPumpWords(pump);
  pump.speed = pump.ownSpeed;
}

void Reader::readPumpWords(Pump& pump) {
  for (int i = 3; i + 1 < count(); i += 2) {
    if (is(i, "HEAD")) {
      pump.headCurve = curve(i + 1, Role::value, CurveUse::pump);
      if (!pump.headCurve) return;
    } else if (is(i, "POWER")) {
      if (!number(i + 1, pump.power)) return;
      if (pump.power.value <= 0) return problem(Fault::number, i + 1);
      measure(Quantity::power, pump.power);
    } else if (is(i, "SPEED")) {
      if (!number(i + 1, pump.ownSpeed)) return;
      if (pump.ownSpeed.value < 0) return problem(Fault::number, i + 1);
    } else if (is(i, "PATT")) {
      pump.pattern = pattern(i + 1, Role::value);
      if (!pump.pattern) return;
    } else {
      return problem(Fault::syntax, i);
    }
  }
}

void Reader::readValve() {
  if (count() < 5) return problem(Fault::shortLink, 0);
  constexpr std::string_view kKinds[] = {"PRV", "PSV", "PBV", "FCV", "TCV", "GPV", "PCV"};
  const auto ends = readEnds();
  if (!ends) return;
  const int kind = wordAt(word(4), kKinds);
  if (kind < 0) return problem(Fault::option, 4);
  const auto type = static_cast<ValveKind>(kind);
  const bool guards = type == ValveKind::prv || type == ValveKind::psv || type == ValveKind::fcv;
  for (const int end : {1, 2}) {
    const Ref& node = end == 1 ? ends->node1 : ends->node2;
    if (guards && net_.nodes[node.index].kind != NodeKind::junction) {
      return problem(Fault::tankAtValve, end);
    }
  }
  Link* const link = newLink(LinkKind::valve, *ends);
  if (!link) return;
  const auto index = static_cast<std::uint32_t>(net_.links.size() - 1);
  link->status = Status::active;
  link->detail = static_cast<std::uint32_t>(net_.valves.size());
  Valve& valve = net_.valves.emplace_back();
  valve.type = type;
  valve.typeAt = at(4);
  if (!number(3, valve.diameter)) return;
  if (valve.diameter.value <= 0) return problem(Fault::number, 3);
  measure(Quantity::pipeDiameter, valve.diameter);
  if (count() > 5) {
    if (valve.type == ValveKind::gpv) {
      valve.curve = curve(5, Role::value, CurveUse::headloss);
      if (!valve.curve) return;
    } else {
      if (!number(5, valve.ownSetting)) return;
      valve.setting = valve.ownSetting;
      measure(Quantity::setting, valve.ownSetting, index);
    }
  }
  if (count() > 6) {
    if (!number(6, valve.minorLoss)) return;
    if (valve.minorLoss.value < 0) return problem(Fault::number, 6);
  }
  if (count() > 7 && valve.type == ValveKind::pcv) {
    valve.curve = curve(7, Role::value, CurveUse::valve);
  }
}

void Reader::readDemand() {
  if (count() < 2) return problem(Fault::syntax);
  if (is(0, "MULTIPLY")) return problem(Fault::unknownNode, 0);
  Demand demand;
  if (!number(1, demand.base)) return;
  const Ref of = node(0, Role::data);
  if (!of) return;
  demand.node = of.index;
  measure(Quantity::flow, demand.base);
  Node& junction = net_.nodes[of.index];
  if (junction.kind != NodeKind::junction) return;
  if (count() > 2) {
    demand.pattern = pattern(2, Role::value);
    if (!demand.pattern) return;
  }
  const auto index = static_cast<std::uint32_t>(net_.demands.size());
  net_.demands.push_back(demand);
  if (junction.firstDemand == kNone) {
    junction.firstDemand = index;
  } else {
    net_.demands[junction.lastDemand].next = index;
  }
  junction.lastDemand = index;
}

void Reader::readEmitter() {
  if (count() < 2) return problem(Fault::syntax);
  const Ref of = node(0, Role::data);
  if (!of || net_.nodes[of.index].kind != NodeKind::junction) return;
  Number coefficient;
  if (!number(1, coefficient)) return;
  if (coefficient.value < 0) return problem(Fault::nodeValue, 1);
  Node& junction = net_.nodes[of.index];
  measure(Quantity::emitter, coefficient);
  junction.emitter = coefficient;
}

void Reader::readStatus() {
  if (count() < 2) return problem(Fault::syntax);
  const int last = count() - 1;
  const auto status = [&] {
    if (is(last, "OPEN") || is(last, "CLOSED")) return true;
    Number value;
    if (!number(last, value)) return false;
    if (value.value < 0) problem(Fault::linkValue, last);
    return value.value >= 0;
  };
  if (net_.links.empty()) return problem(Fault::unknownLink, 0);
  if (!status()) return;
  if (count() == 2) {
    const Ref of = link(0, Role::data);
    if (!of) return;
    const Link& named = net_.links[of.index];
    const bool word0 = is(last, "OPEN") || is(last, "CLOSED");
    const bool byCurve =
        named.kind == LinkKind::valve && net_.valves[named.detail].type == ValveKind::gpv;
    if (named.status == Status::checkValve || (byCurve && !word0)) {
      return problem(Fault::controlledValve, 0);
    }
    return setStatus(of.index, at(last), false);
  }
  // Between two names: as numbers where both begin with one above 0, else by their bytes.
  const double low = leadingNumber(word(0)), high = leadingNumber(word(1));
  for (std::uint32_t i = 0; i < net_.links.size(); ++i) {
    const std::string_view id = net_.links[i].id;
    const bool inside = low > 0 && high > 0 ? leadingNumber(id) >= low && leadingNumber(id) <= high
                                            : id >= word(0) && id <= word(1);
    if (inside && net_.links[i].status != Status::checkValve) setStatus(i, at(last), true);
  }
  for (int i = 0; i < 2; ++i) {
    if (const std::uint32_t end = net_.findLink(word(i)); end != kNone) {
      mention(Thing::link, end, Role::item, i);
    }
  }
}

void Reader::setStatus(std::uint32_t index, Place where, bool byRange) {
  Link& link = net_.links[index];
  const std::string_view text = word(where.token);
  const bool open = isWord(text, "OPEN"), closed = isWord(text, "CLOSED");
  const double value = open || closed ? 0 : numberOf(text).value_or(0);
  if (link.kind == LinkKind::pipe && !open && !closed) return;
  if (link.kind == LinkKind::valve && !open && !closed) {
    Valve& valve = net_.valves[link.detail];
    if (valve.type == ValveKind::gpv) return;
    valve.setting = {value, where};
    measure(Quantity::setting, valve.setting, index);
  }
  if (link.kind == LinkKind::pump) {
    Pump& pump = net_.pumps[link.detail];
    if (open) pump.speed = {1, where};
    if (!open && !closed) pump.speed = {value, where};
    // A closed pump keeps the speed of its row on the drawing: nothing else says it.
    if (closed) pump.speed = pump.ownSpeed;
  }
  link.statusAt = where;
  link.statusByRange = byRange;
  if (open || closed) {
    link.status = closed ? Status::closed : Status::open;
  } else {
    link.status = link.kind == LinkKind::valve ? Status::active
                  : value == 0                 ? Status::closed
                                               : Status::open;
  }
}

void Reader::readCoordinates() {
  const std::uint32_t index = net_.findNode(word(0));
  const auto xValue = count() > 1 ? numberOf(word(1)) : std::nullopt;
  const auto yValue = count() > 2 ? numberOf(word(2)) : std::nullopt;
  if (index == kNone || !xValue || !yValue) return problem(Fault::unknownCoordinate, 0);
  mention(Thing::node, index, Role::data, 0);
  net_.nodes[index].x = {*xValue, at(1)};
  net_.nodes[index].y = {*yValue, at(2)};
}

void Reader::readVertex() {
  const std::uint32_t index = net_.findLink(word(0));
  const auto x = count() > 1 ? numberOf(word(1)) : std::nullopt;
  const auto y = count() > 2 ? numberOf(word(2)) : std::nullopt;
  if (index == kNone || !x || !y) return problem(Fault::unknownCoordinate, 0);
  mention(Thing::link, index, Role::data, 0);
  const auto vertex = static_cast<std::uint32_t>(net_.vertices.size());
  net_.vertices.push_back({index, {*x, at(1)}, {*y, at(2)}, kNone});
  Link& link = net_.links[index];
  if (link.firstVertex == kNone) {
    link.firstVertex = vertex;
  } else {
    net_.vertices[link.lastVertex].next = vertex;
  }
  link.lastVertex = vertex;
}

}  // namespace epanet
