#include "module/inp/inp_writer.h"

#include "module/inp/text_output.h"
#include "platform/text.h"

namespace vessora {

namespace {

// --- what both writers have in common ------------------------------------------------------------

constexpr const char16_t* kJunctionHead =
    u"[JUNCTIONS]\n;ID                 Elev                Demand              Pattern\n";
constexpr const char16_t* kReservoirHead =
    u"[RESERVOIRS]\n;ID                 Head                Pattern\n";
// The column line is followed by a blank line, which ends the section for our own reader: tanks of
// a written file are not read back. The files have always been so.
constexpr const char16_t* kTankHead =
    u"\n[TANKS]\n"
    u";ID                    Elevation              InitLevel           MinLevel            "
    u"MaxLevel            Diameter            MinVol              VolCurve\n\n";
constexpr const char16_t* kPipeColumns =
    u";ID                    Node1                  Node2               Length              "
    u"Diameter            Roughness           MinorLoss           Status\n";
constexpr const char16_t* kPumpColumns =
    u";ID                  Node1               Node2               Parameters\n";
constexpr const char16_t* kValveColumns =
    u";ID                  Node1               Node2               Diameter            "
    u"Type                Setting             MinorLoss\n";
constexpr const char16_t* kJunctionWithoutPattern = u" %-19s%-20s%-20s  ;\n";

void writePipes(TextOutput& out, const RecordList<EpaPipe>& pipes) {
  out.print(kPipeColumns);
  for (const EpaPipe& p : pipes) {
    out.print(u" %-19s%-20s%-20s%-20s%-20s%-20s%-20s%-20s  ;\n", p.id, p.node1, p.node2, p.length,
              p.diameter, p.roughness, p.minorLoss, p.status);
  }
}

void writePoints(TextOutput& out, const RecordList<EpaCoord>& points) {
  for (const EpaCoord& c : points) out.print(u" %-19s%-20s%-20s  ;\n", c.id, c.x, c.y);
}

void writeCoordinatesAndVertices(TextOutput& out, const RecordList<EpaCoord>& coords,
                                 const RecordList<EpaCoord>& vertices) {
  out.print(u"[COORDINATES]\n;Node                  X-Coord             Y-Coord\n");
  writePoints(out, coords);
  out.print(u"\n[VERTICES]\n;Link                  X-Coord             Y-Coord\n");
  writePoints(out, vertices);
  out.print(u"\n[END]\n");
}

// --- the sections of a real network --------------------------------------------------------------

void writeNodes(TextOutput& out, const EpaNetwork& network) {
  out.print(kJunctionHead);
  for (const EpaJunc& j : network.juncs) {
    // A line feed alone is what reading leaves of a row that ends behind the demand: no pattern. An
    // empty pattern keeps its blank column.
    if (j.pattern == u"\n") {
      out.print(kJunctionWithoutPattern, j.id, j.elev, j.demand);
    } else {
      out.print(u" %-19s%-20s%-20s%-20s  ;\n", j.id, j.elev, j.demand, j.pattern);
    }
  }
  out.print(kReservoirHead);
  for (const EpaResv& r : network.resvs) {
    if (r.pattern.empty()) {
      out.print(u" %-19s%-20s  ;\n", r.id, r.head);
    } else {
      out.print(u" %-19s%-20s%-20s  ;\n", r.id, r.head, r.pattern);
    }
  }
  out.print(kTankHead);
  for (const EpaTank& t : network.tanks) {
    out.print(u" %-19s%-20s%-20s%-20s%-20s%-20s%-20s%-20s  ;\n", t.id, t.elev, t.initLevel,
              t.minLevel, t.maxLevel, t.diameter, t.minVol, t.volCurve);
  }
}

// A pump runs on its head curve only when it has no power; with neither it is a power pump without
// a value. The pattern clause needs a speed and exactly one of curve and power, and its keyword
// lacks the last letter behind a head curve: files of this system have always been written so.
void writePump(TextOutput& out, const EpaPump& p) {
  const bool onCurve = !p.headCurve.empty() && p.power.empty();
  const bool onPower = p.headCurve.empty() && !p.power.empty();
  const char16_t* kind = onCurve ? u"HEAD " : u"POWER ";
  const wide50& value = onCurve ? p.headCurve : p.power;
  if (p.speed.empty()) {
    out.print(u" %-19s%-20s%-20s%s%s  ;\n", p.id, p.node1, p.node2, kind, value);
  } else if (p.speedPattern.empty() || !(onCurve || onPower)) {
    out.print(u" %-19s%-20s%-20s%s%s%s%s  ;\n", p.id, p.node1, p.node2, kind, value, u" SPEED ",
              p.speed);
  } else {
    out.print(u" %-19s%-20s%-20s%s%s%s%s%s%s  ;\n", p.id, p.node1, p.node2, kind, value, u" SPEED ",
              p.speed, onCurve ? u" PATTER " : u" PATTERN ", p.speedPattern);
  }
}

void writeLinks(TextOutput& out, const EpaNetwork& network) {
  out.print(u"\n[PIPES]\n");
  writePipes(out, network.pipes);
  out.print(u"\n[PUMPS]\n");
  out.print(kPumpColumns);
  for (const EpaPump& p : network.pumps) writePump(out, p);
  out.print(u"\n[VALVES]\n");
  out.print(kValveColumns);
  for (const EpaValv& v : network.valves) {
    out.print(u" %-19s%-20s%-20s%-20s%-20s%-20s%-20s ;\n", v.id, v.node1, v.node2, v.diameter,
              v.type, v.setting, v.minorLoss);
  }
}

void writeStatus(TextOutput& out, const EpaNetwork& network) {
  // The tail "% ;" is no conversion; the formatter makes ";" of it.
  constexpr const char16_t* kRow = u" %-19s%-20s% ;\n";
  out.print(u"\n[STATUS]\n;ID                  Status/Settings\n");
  for (const EpaValv& v : network.valves) {
    if (!(v.status == u"None")) out.print(kRow, v.id, v.status);
  }
  for (const EpaPump& p : network.pumps) out.print(kRow, p.id, p.status);
}

// A pattern is one row, however long, which the ";" of the next pattern closes.
void writePatterns(TextOutput& out, const std::vector<EpaPattern>& patterns) {
  out.print(u"\n[PATTERNS]\n;ID                  Multipliers\n");
  for (const EpaPattern& pattern : patterns) {
    out.print(u";\n");
    out.print(u"%s     \t", pattern.id);
    for (double multiplier : pattern.multipliers) out.print(u"%.3lf     \t", multiplier);
  }
}

void writeCurves(TextOutput& out, const std::vector<EpaCurve>& curves) {
  out.print(u"\n\n[CURVES]\n;Node                  X-Value             Y-Value\n");
  for (const EpaCurve& curve : curves) {
    out.print(u";%s:\n", curve.kind);
    for (const EpaCurvePoint& point : curve.points) {
      out.print(u" %-19s%-20lf%-20lf  ;\n", curve.id, point.x, point.y);
    }
  }
}

void writeEnergy(TextOutput& out, const RecordList<EpaPump>& pumps, const EpaSettings& settings) {
  constexpr const char16_t* kReal = u" %-19s%-20.3lf\n";
  out.print(u"\n[ENERGY]\n");
  out.print(kReal, u"Global Efficiency", settings.globalEfficiency);
  out.print(kReal, u"Global Price", settings.globalPrice);
  if (!settings.energyPattern.empty()) {
    out.print(u" %-19s%-20s\n", u"Global Pattern", settings.energyPattern);
  }
  out.print(kReal, u"Demand Charge", settings.demandCharge);
  for (const EpaPump& p : pumps) {
    if (!p.effCurve.empty()) out.print(u" Pump %-20s Efficiency %s\n", p.id, p.effCurve);
    if (!p.price.empty()) out.print(u" Pump %-20s Price %s\n", p.id, p.price);
    if (!p.pricePattern.empty()) out.print(u" Pump %-20s Pattern %s\n", p.id, p.pricePattern);
  }
}

void writeEmitters(TextOutput& out, const RecordList<EpaJunc>& juncs) {
  out.print(u"\n[EMITTERS]\n;Junction                  Coefficient\n");
  for (const EpaJunc& j : juncs) {
    if (platform::wtof(j.emitter.view()) != 0.0) out.print(u" %-19s%-20s  ;\n", j.id, j.emitter);
  }
}

void writeReactions(TextOutput& out, const EpaSettings& settings) {
  out.print(u"\n[REACTIONS]\n");
  out.print(u" Order Bulk           \t%.6lf\n", settings.bulkOrder);
  out.print(settings.wallOrder == u"First" ? u" Order Wall   \t\t\t1\n"
                                           : u" Order Wall   \t\t\t0\n");
  out.print(u" Global Bulk          \t%.6lf\n", settings.globalBulk);
  out.print(u" Global Wall\t\t\t\t%.6lf\n", settings.globalWall);
  out.print(u" Limiting Potential\t\t%.6lf\n", settings.limitingPotential);
  out.print(u" Roughness Correlation\t%.6lf\n", settings.roughnessCorrelation);
}

void writeReportAndTimes(TextOutput& out, const EpaSettings& settings) {
  out.print(
      u"\n[REPORT]\n"
      u"\nPAGESIZE      0\n"
      u"\nSTATUS        NO\n"
      u"\nSUMMARY       YES\n"
      u"\nNODES         ALL\n"
      u"\nLINKS         ALL\n");
  out.print(u"\n[TIMES]\n");
  out.print(u" Duration            %s\n", settings.duration);
  out.print(u" Hydraulic Timestep  %s\n", settings.hydraulicStep);
  out.print(u" Quality Timestep    %s\n", settings.qualityStep);
  out.print(u" Pattern Timestep    %s\n", settings.patternStep);
  out.print(u" Pattern Start       %s\n", settings.patternStart);
  out.print(u" Report Timestep     %s\n", settings.reportStep);
  out.print(u" Report Start        %s\n", settings.reportStart);
  out.print(u" Start ClockTime     %s\n", settings.startClock);
  out.print(u" Statistic           None\n\n");
}

void writeOptions(TextOutput& out, const EpaSettings& settings) {
  out.print(u"[OPTIONS]\n Units              \tLPS\n");
  out.print(u" Headloss           \t%s\n", settings.headloss);
  out.print(u" Specific Gravity   \t%.6lf\n", settings.specificGravity);
  out.print(u" Viscosity          \t%.6lf\n", settings.viscosity);
  out.print(u" Trials             \t%d\n", settings.trials);
  out.print(u" Accuracy           \t%.6lf\n", settings.accuracy);
  out.print(u" Unbalanced         \t%s\n", settings.unbalanced);
  out.print(u" Pattern            \t%.6lf\n", settings.defaultPattern);
  out.print(u" Demand Multiplier  \t%.6lf\n", settings.demandMultiplier);
  out.print(u" Emitter Exponent   \t%.6lf\n", settings.emitterExponent);
  out.print(u" Quality            \t%s mg/l\n", settings.qualityParam);
  out.print(u" Diffusivity        \t%.6lf\n", settings.diffusivity);
  out.print(u" Tolerance          \t%.6lf\n\n", settings.tolerance);
}

// The options of a schematic network: nobody can set them but for the formula.
void writeSchemaOptions(TextOutput& out, std::u16string_view headloss) {
  out.print(u"[OPTIONS]\n Units              \tLPS\n");
  out.print(u" Headloss           \t%s\n", headloss);
  out.print(
      u" Specific Gravity   \t1\n"
      u" Viscosity          \t1\n"
      u" Trials             \t40\n"
      u" Accuracy           \t0.001\n"
      u" Unbalanced         \tContinue 10\n"
      u" Pattern            \t1\n"
      u" Demand Multiplier  \t1\n"
      u" Emitter Exponent   \t0.5\n"
      u" Quality            \tCloro mg/l\n"
      u" Diffusivity        \t1\n"
      u" Tolerance          \t0.01\n\n");
}

}  // namespace

std::int32_t WriteNetworkInp(std::u16string_view path, const EpaNetwork& network,
                             const EpaSettings& settings, Notices& notices) {
  auto out = TextOutput::open(path, notices);
  if (!out) return 0;
  out->print(u"[TITLE]\n%s\n", settings.name);
  writeNodes(*out, network);
  writeLinks(*out, network);
  writeStatus(*out, network);
  writePatterns(*out, network.patterns);
  writeCurves(*out, network.curves);
  writeEnergy(*out, network.pumps, settings);
  writeEmitters(*out, network.juncs);
  writeReactions(*out, settings);
  writeReportAndTimes(*out, settings);
  writeOptions(*out, settings);
  writeCoordinatesAndVertices(*out, network.coords, network.vertices);
  return out->close(notices);
}

std::int32_t WriteSchemaInp(std::u16string_view path, const RecordList<EpaJunc>& juncs,
                            const RecordList<EpaResv>& resvs, const RecordList<EpaPipe>& pipes,
                            const RecordList<EpaCoord>& coords,
                            const RecordList<EpaCoord>& vertices, std::u16string_view headloss,
                            Notices& notices) {
  auto out = TextOutput::open(path, notices);
  if (!out) return 0;
  out->print(u"[TITLE]\n\n");
  out->print(kJunctionHead);
  for (const EpaJunc& j : juncs) out->print(kJunctionWithoutPattern, j.id, j.elev, j.demand);
  out->print(kReservoirHead);
  for (const EpaResv& r : resvs) out->print(u"%-19s%20s  ;\n", r.id, r.head);
  out->print(kTankHead);
  out->print(u"[PIPES]\n");
  writePipes(*out, pipes);
  out->print(u"\n[PUMPS]\n%s\n", kPumpColumns);
  out->print(u"[VALVES]\n%s\n", kValveColumns);
  writeSchemaOptions(*out, headloss);
  writeCoordinatesAndVertices(*out, coords, vertices);
  return out->close(notices);
}

}  // namespace vessora
