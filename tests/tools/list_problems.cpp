// Writes what the reader of input files makes of a file, for comparison with the solver:
//
//   list_problems FILE            problems: line, the solver's code (0: it says nothing), word, and
//                                 "quotes" where it misreads the row
//   list_problems --values FILE   the network: kind, id, field and number, under the names of the
//                                 solver's own interface; times in seconds, indexes from 1
#include <algorithm>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include "epanet/lexis.h"
#include "epanet/network.h"

namespace {

using namespace epanet;

void line(std::string_view kind, std::string_view id, std::string_view field, double number) {
  std::cout << kind << '\t' << id << '\t' << field << '\t' << textOf(number) << '\n';
}

// A field that is the id of something.
void name(std::string_view kind, std::string_view id, std::string_view field, std::string_view of) {
  std::cout << kind << '\t' << id << '\t' << field << '\t' << of << '\n';
}

double indexOf(const Ref& ref) { return ref ? ref.index + 1.0 : 0; }

void printNode(const Network& network, const Node& node) {
  const auto field = [&](std::string_view name, double number) {
    line("node", node.id, name, number);
  };
  // A tank without an area is a reservoir for the solver.
  const bool tank = node.kind == NodeKind::tank && network.tanks[node.tank].diameter.value != 0;
  field("Type", tank ? 2 : node.kind == NodeKind::junction ? 0 : 1);
  field("Elevation", node.elevation.value);
  if (node.kind == NodeKind::junction) {
    field("DemandSum", network.demandOf(node));
    field("Emitter", node.emitter.value);
    const Ref pattern = network.demandPatternOf(node);
    name("node", node.id, "DemandPattern",
         pattern ? network.patterns[pattern.index].id : std::string_view());
  }
  if (!tank) return;
  const Tank& levels = network.tanks[node.tank];
  field("TankLevel", levels.initLevel.value);
  field("MinLevel", levels.minLevel.value);
  field("MaxLevel", levels.maxLevel.value);
  if (!levels.volumeCurve) field("TankDiam", levels.diameter.value);
  field("VolCurve", indexOf(levels.volumeCurve));
  field("CanOverFlow", levels.overflow);
}

void printPipe(const Network& network, const Link& link) {
  const Pipe& pipe = network.pipe(link);
  line("link", link.id, "Diameter", pipe.diameter.value);
  line("link", link.id, "Length", pipe.length.value);
  line("link", link.id, "Roughness", pipe.roughness.value);
  line("link", link.id, "MinorLoss", pipe.minorLoss.value);
}

void printPump(const Network& network, const Link& link) {
  const Pump& pump = network.pump(link);
  line("link", link.id, "PumpHCurve", indexOf(pump.headCurve));
  line("link", link.id, "PumpECurve", indexOf(pump.efficiencyCurve));
  line("link", link.id, "PumpECost", pump.price.value);
  line("link", link.id, "PumpEPat", indexOf(pump.pricePattern));
  line("link", link.id, "LinkPattern", indexOf(pump.pattern));
  if (link.status != Status::closed) line("link", link.id, "InitSetting", pump.speed.value);
}

void printValve(const Network& network, const Link& link) {
  const Valve& valve = network.valve(link);
  line("link", link.id, "Diameter", valve.diameter.value);
  line("link", link.id, "MinorLoss", valve.minorLoss.value);
  if (link.status == Status::active && valve.type != ValveKind::gpv) {
    line("link", link.id, "InitSetting", valve.setting.value);
  }
}

// The solver's number of what a link is.
int typeOf(const Network& network, const Link& link) {
  if (link.kind == LinkKind::pipe) return link.status == Status::checkValve ? 0 : 1;
  if (link.kind == LinkKind::pump) return 2;
  return 3 + static_cast<int>(network.valve(link).type);
}

// A valve that follows a curve is open for the solver.
int statusOf(const Network& network, const Link& link) {
  const bool curve = link.kind == LinkKind::valve && network.valve(link).type == ValveKind::gpv;
  if (link.status == Status::active) return curve ? 1 : 2;
  return link.status == Status::closed ? 0 : 1;
}

void printLink(const Network& network, const Link& link) {
  name("link", link.id, "Node1", network.nodes[link.node1.index].id);
  name("link", link.id, "Node2", network.nodes[link.node2.index].id);
  line("link", link.id, "Type", typeOf(network, link));
  line("link", link.id, "InitStatus", statusOf(network, link));
  switch (link.kind) {
    case LinkKind::pipe:
      return printPipe(network, link);
    case LinkKind::pump:
      return printPump(network, link);
    case LinkKind::valve:
      return printValve(network, link);
  }
}

void printTables(const Network& network) {
  for (const Pattern& pattern : network.patterns) {
    line("pattern", pattern.id, "length", static_cast<double>(pattern.multipliers.size()));
    for (const Number& multiplier : pattern.multipliers) {
      line("pattern", pattern.id, "value", multiplier.value);
    }
  }
  for (const Curve& curve : network.curves) {
    line("curve", curve.id, "length", static_cast<double>(curve.points.size()));
    for (const CurvePoint& point : curve.points) {
      line("curve", curve.id, "x", point.x.value);
      line("curve", curve.id, "y", point.y.value);
    }
  }
}

void printActions(const Network& network) {
  for (const Control& control : network.controls) {
    line("control", "", "type", static_cast<double>(control.on));
    name("control", "", "link", network.links[control.link.index].id);
    name("control", "", "node", control.node ? network.nodes[control.node.index].id : "");
    line("control", "", "level", control.level.value);
    if (!control.status) line("control", "", "setting", control.setting.value);
  }
  for (const Rule& rule : network.rules) {
    line("rule", rule.label, "clauses", static_cast<double>(rule.clauses.size()));
    line("rule", rule.label, "priority", rule.priority);
  }
  for (const Source& source : network.sources) {
    const std::string_view id = network.nodes[source.node.index].id;
    line("node", id, "SourceType", static_cast<double>(source.kind));
    line("node", id, "SourceQual", source.strength.value);
    line("node", id, "SourcePat", indexOf(source.pattern));
  }
  for (const Mixing& mixing : network.mixing) {
    line("node", network.nodes[mixing.tank.index].id, "MixFraction", mixing.fraction.value);
  }
  for (const Leakage& leakage : network.leakages) {
    const std::string_view id = network.links[leakage.pipe.index].id;
    line("link", id, "LeakArea", leakage.area.value);
    line("link", id, "LeakExpan", leakage.expansion.value);
  }
}

void printOptions(const Network& network) {
  struct Row {
    std::string_view kind, name;
    Option option;
  };
  constexpr Row kRows[] = {{"option", "Trials", Option::trials},
                           {"option", "Accuracy", Option::accuracy},
                           {"option", "Tolerance", Option::tolerance},
                           {"option", "Emitexpon", Option::emitterExponent},
                           {"option", "DemandMult", Option::demandMultiplier},
                           {"option", "HeadError", Option::headError},
                           {"option", "FlowChange", Option::flowChange},
                           {"option", "GlobalEffic", Option::globalEfficiency},
                           {"option", "GlobalPrice", Option::globalPrice},
                           {"option", "DemandCharge", Option::demandCharge},
                           {"option", "SpGravity", Option::specificGravity},
                           {"option", "CheckFreq", Option::checkFreq},
                           {"option", "MaxCheck", Option::maxCheck},
                           {"option", "DampLimit", Option::dampLimit},
                           {"option", "BulkOrder", Option::bulkOrder},
                           {"option", "WallOrder", Option::wallOrder},
                           {"option", "TankOrder", Option::tankOrder},
                           {"option", "ConcenLimit", Option::limitingPotential},
                           {"pda", "MinimumPressure", Option::minimumPressure},
                           {"pda", "RequiredPressure", Option::requiredPressure},
                           {"pda", "PressureExponent", Option::pressureExponent}};
  for (const Row& row : kRows) line(row.kind, "", row.name, network.option(row.option).number);
  line("option", "", "DefaultPattern",
       network.defaultPattern == kNone ? 0 : network.defaultPattern + 1.0);
  line("units", "", "flow", static_cast<double>(network.flowUnits));
  line("units", "", "pressure", static_cast<double>(network.pressureUnits));
  line("units", "", "formula", static_cast<double>(network.formula));
}

long long secondsOf(const Network& network, Option option) {
  return static_cast<long long>(network.option(option).number + 0.5);
}

// The steps that the solver takes fit into one another.
void printSteps(const Network& network) {
  const auto seconds = [&](Option option) { return secondsOf(network, option); };
  const long long pattern = seconds(Option::patternStep) > 0 ? seconds(Option::patternStep) : 3600;
  const long long report = seconds(Option::reportStep) > 0 ? seconds(Option::reportStep) : pattern;
  long long hydraulic = seconds(Option::hydraulicStep) > 0 ? seconds(Option::hydraulicStep) : 3600;
  hydraulic = std::min({hydraulic, pattern, report});
  const auto part = [&](Option option) {
    const long long step = seconds(option);
    return std::min(step > 0 ? step : hydraulic / 10, hydraulic);
  };
  const long long start = seconds(Option::reportStart);
  line("time", "", "Duration", static_cast<double>(seconds(Option::duration)));
  line("time", "", "PatternStart", static_cast<double>(seconds(Option::patternStart)));
  line("time", "", "StartTime", static_cast<double>(seconds(Option::startClock)));
  line("time", "", "PatternStep", static_cast<double>(pattern));
  line("time", "", "ReportStep", static_cast<double>(report));
  line("time", "", "HydStep", static_cast<double>(hydraulic));
  line("time", "", "QualStep", static_cast<double>(part(Option::qualityStep)));
  line("time", "", "RuleStep", static_cast<double>(part(Option::ruleStep)));
  line("time", "", "ReportStart",
       start > seconds(Option::duration) ? 0 : static_cast<double>(start));
}

void printValues(const Network& network) {
  line("count", "", "nodes", static_cast<double>(network.nodes.size()));
  line("count", "", "links", static_cast<double>(network.links.size()));
  line("count", "", "patterns", static_cast<double>(network.patterns.size()));
  line("count", "", "curves", static_cast<double>(network.curves.size()));
  line("count", "", "controls", static_cast<double>(network.controls.size()));
  line("count", "", "rules", static_cast<double>(network.rules.size()));
  for (const Node& node : network.nodes) printNode(network, node);
  for (const Link& link : network.links) printLink(network, link);
  printTables(network);
  printActions(network);
  printOptions(network);
  printSteps(network);
}

void printProblems(const Network& network) {
  for (const Problem& problem : network.problems) {
    const unsigned at = problem.row == kNoRow ? 0 : network.document().lineOf(problem.row);
    const std::string_view note = problem.fault == Fault::quotes ? "quotes" : "";
    std::cout << at << '\t' << solverCode(problem.fault) << '\t' << problem.text << '\t' << note
              << '\n';
  }
}

}  // namespace

int main(int argc, char** argv) {
  const bool values = argc == 3 && std::string_view(argv[1]) == "--values";
  if (argc != 2 && !values) {
    std::cerr << "list_problems [--values] FILE\n";
    return 2;
  }
  std::ifstream file(argv[argc - 1], std::ios::binary);
  if (!file) {
    std::cerr << argv[argc - 1] << " cannot be read\n";
    return 1;
  }
  const Document document{std::string(std::istreambuf_iterator<char>(file), {})};
  const Network network(document);
  if (values) {
    printValues(network);
  } else {
    printProblems(network);
  }
  return 0;
}
