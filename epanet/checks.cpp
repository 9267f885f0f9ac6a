// What is wrong with the text as such, and with the network as a whole.
#include <algorithm>
#include <optional>

#include "epanet/lexis.h"
#include "epanet/reader.h"

namespace epanet {

void Reader::checkText() {
  if (doc_.hasMark()) problemAt(Fault::mark, kNoRow, {});
  if (doc_.lineEnd() == "\r") problemAt(Fault::carriageReturns, kNoRow, {});
  const auto& rows = doc_.rows();
  bool told = false;
  for (RowId id = 0; id < rows.size(); ++id) {
    const Row& row = rows[id];
    if (row.section == Section::before && row.kind == RowKind::data && !told) {
      problemAt(Fault::rowsBefore, id, {});
      told = true;
    }
    if (row.kind != RowKind::heading || row.section == Section::end) continue;
    Tokens heading;
    doc_.tokens(id, heading);
    if (row.section == Section::unknown) {
      problemAt(Fault::unknownSection, id, heading.text(0));
    } else if (!isWord(heading.text(0), headingOf(row.section))) {
      problemAt(Fault::shortHeading, id, heading.text(0));
    }
  }
  for (RowId id = 0; id + 1 < rows.size(); ++id) {
    if (doc_.lineOf(id) == doc_.lineOf(id + 1) &&
        (id == 0 || doc_.lineOf(id - 1) != doc_.lineOf(id))) {
      problemAt(Fault::longRow, id, {});
    }
  }
}

void Reader::check() {
  checkNodes();
  checkTanks();
  checkPumps();
  checkValves();
  checkCurves();
  std::stable_sort(net_.problems.begin(), net_.problems.end(),
                   [](const Problem& a, const Problem& b) { return a.row < b.row; });
}

void Reader::checkNodes() {
  if (net_.nodes.size() < 2) problemAt(Fault::fewNodes, kNoRow, {});
  const bool fixed = std::any_of(net_.nodes.begin(), net_.nodes.end(),
                                 [](const Node& node) { return node.kind != NodeKind::junction; });
  if (!fixed) problemAt(Fault::noTank, kNoRow, {});
  std::vector<bool> connected(net_.nodes.size());
  for (const Link& link : net_.links)
    connected[link.node1.index] = connected[link.node2.index] = true;
  for (std::size_t i = 0; i < net_.nodes.size(); ++i) {
    const Node& node = net_.nodes[i];
    if (!connected[i] && node.kind == NodeKind::junction) {
      problemAt(Fault::unconnectedNode, node.row, node.id);
    }
    if (!node.x.at) problemAt(Fault::noCoordinates, node.row, node.id);
  }
}

void Reader::checkTanks() {
  for (const Node& node : net_.nodes) {
    if (node.tank == kNone) continue;
    const Tank& tank = net_.tanks[node.tank];
    if (tank.diameter.value == 0) continue;
    bool bad = tank.initLevel.value > tank.maxLevel.value ||
               tank.minLevel.value > tank.maxLevel.value ||
               tank.initLevel.value < tank.minLevel.value;
    if (tank.volumeCurve) {
      const auto& points = net_.curves[tank.volumeCurve.index].points;
      bad = bad || points.empty() || tank.minLevel.value < points.front().x.value ||
            tank.maxLevel.value > points.back().x.value;
    }
    if (bad) problemAt(Fault::tankLevels, node.row, node.id);
  }
}

void Reader::checkPumps() {
  for (const Link& link : net_.links) {
    if (link.kind != LinkKind::pump) continue;
    const Pump& pump = net_.pump(link);
    if (!pump.headCurve) {
      if (pump.power.value <= 0) problemAt(Fault::noHeadCurve, link.row, link.id);
      continue;
    }
    const auto& points = net_.curves[pump.headCurve.index].points;
    const auto falls = [&] {
      for (std::size_t i = 1; i < points.size(); ++i) {
        if (points[i].y.value >= points[i - 1].y.value) return false;
      }
      return true;
    };
    const bool one = points.size() == 1 && points[0].x.value > 0 && points[0].y.value > 0;
    if (points.empty() || (points.size() == 1 ? !one : !falls())) {
      problemAt(Fault::headCurve, link.row, link.id);
    }
  }
}

namespace {

struct Guard {
  ValveKind kind;
  std::uint32_t from, to;
};
// By node: what guards were seen to begin or end there.
struct Seen {
  bool prvTo = false, prvFrom = false, psvTo = false, psvFrom = false, fcvTo = false,
       fcvFrom = false;
};

bool fights(const Guard& guard, const std::vector<Seen>& seen) {
  const Seen& from = seen[guard.from];
  const Seen& to = seen[guard.to];
  switch (guard.kind) {
    case ValveKind::prv:
      return to.prvTo || to.prvFrom || from.prvTo || to.psvFrom || to.fcvFrom;
    case ValveKind::psv:
      return from.psvFrom || from.psvTo || to.psvFrom || from.prvTo || from.fcvTo;
    default:
      return from.prvTo || to.psvFrom;
  }
}

void note(const Guard& guard, std::vector<Seen>& seen) {
  Seen& from = seen[guard.from];
  Seen& to = seen[guard.to];
  if (guard.kind == ValveKind::prv) from.prvFrom = to.prvTo = true;
  if (guard.kind == ValveKind::psv) from.psvFrom = to.psvTo = true;
  if (guard.kind == ValveKind::fcv) from.fcvFrom = to.fcvTo = true;
}

}  // namespace

// A pressure that two valves set at one node, or valves that fight over one another's node. As the
// solver does it: the link right before a valve is not looked at.
void Reader::checkValves() {
  std::vector<Seen> seen;
  std::optional<Guard> before;
  for (std::size_t i = 0; i < net_.links.size(); ++i) {
    const Link& link = net_.links[i];
    const Valve* const valve = link.kind == LinkKind::valve ? &net_.valve(link) : nullptr;
    const ValveKind kind = valve ? valve->type : ValveKind::tcv;
    const bool guards = kind == ValveKind::prv || kind == ValveKind::psv || kind == ValveKind::fcv;
    const Guard guard{kind, link.node1.index, link.node2.index};
    if (guards && seen.empty()) seen.resize(net_.nodes.size());
    if (guards && fights(guard, seen)) problemAt(Fault::valveInSeries, link.row, link.id);
    if (before) note(*before, seen);
    before = guards ? std::optional(guard) : std::nullopt;
  }
}

void Reader::checkCurves() {
  for (const Curve& curve : net_.curves) {
    if (curve.points.empty()) {
      problemAt(Fault::emptyCurve, curve.row, curve.id);
      continue;
    }
    for (std::size_t i = 1; i < curve.points.size(); ++i) {
      if (curve.points[i].x.value > curve.points[i - 1].x.value) continue;
      problemAt(Fault::curveOrder, curve.points[i].x.at.row, curve.id);
      break;
    }
    if (curve.use == CurveUse::none) problemAt(Fault::unusedCurve, curve.row, curve.id);
  }
  for (const Pattern& pattern : net_.patterns) {
    if (pattern.multipliers.empty()) problemAt(Fault::emptyPattern, pattern.row, pattern.id);
  }
}

}  // namespace epanet
