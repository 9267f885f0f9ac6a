#include "epanet/convert.h"

#include <algorithm>
#include <set>

#include "epanet/lexis.h"

namespace epanet {
namespace {

// The unit of pressures stays when the file chose it against its system's own.
PressureUnits pressureFor(const Units& from, FlowUnits target) {
  if (from.pressure == ownPressure(from.flow)) return ownPressure(target);
  if (from.version == SolverVersion::v23) return from.pressure;
  return target < FlowUnits::lps ? PressureUnits::psi : from.pressure;
}

Units unitsFor(const Units& from, FlowUnits target) {
  Units to = from;
  to.flow = target;
  to.pressure = pressureFor(from, target);
  return to;
}

class Converter {
 public:
  Converter(const Document& document, const Network& network, const Record& record,
            FlowUnits target, SolverVersion runBy)
      : document_(document),
        network_(network),
        record_(record),
        from_(unitsOf(network, runBy)),
        to_(unitsFor(from_, target)),
        conversion_(from_, to_, Power::asSolved),
        editor_(document) {}

  Converted convert() {
    if (from_.flow != to_.flow) {
      convertMeasures();
      convertStatusRanges();
      if (from_.isUs() != to_.isUs()) writeOutDefaults();
      convertPressureLimits();
      convertUnitOptions();
      tellProblems();
      tellCurves();
    }
    std::stable_sort(remarks_.begin(), remarks_.end(),
                     [](const Remark& a, const Remark& b) { return a.row < b.row; });
    return {editor_.apply(), std::move(remarks_)};
  }

 private:
  void set(Place at, double before, double after) {
    if (after != before) editor_.setToken(at.row, at.token, textOf(after));
  }
  void remark(Remark::What what, RowId row, std::string_view text) {
    remarks_.push_back({what, row, std::string(text)});
  }
  bool isRange(const Measure& measure) const {
    return measure.quantity == Quantity::setting && measure.number.at.token > 1 &&
           document_.rows()[measure.number.at.row].section == Section::status;
  }

  void convertMeasures();
  void convertStatusRanges();
  void convertRange(std::span<const Measure* const> valves);
  void writeOutDefaults();
  void writeOutPipe(const Link& link);
  void convertPressureLimits();
  void convertUnitOptions();
  void tellProblems();
  void tellCurves();
  void tellUse(const Ref& curve, CurveUse use, std::set<std::uint32_t>& told);

  const Document& document_;
  const Network& network_;
  const Record& record_;
  const Units from_, to_;
  const Conversion conversion_;
  Editor editor_;
  std::vector<Remark> remarks_;
  std::vector<const Measure*> ranges_;
};

void Converter::convertMeasures() {
  for (const Measure& measure : record_.measures) {
    if (isRange(measure)) {
      ranges_.push_back(&measure);
    } else {
      set(measure.number.at, measure.number.value, conversion_(network_, measure));
    }
  }
}

// One number of [STATUS] may stand for valves of several kinds, and for pumps, whose speed has no
// unit.
void Converter::convertStatusRanges() {
  for (std::size_t i = 0; i < ranges_.size();) {
    std::size_t end = i + 1;
    while (end < ranges_.size() && ranges_[end]->number.at == ranges_[i]->number.at) ++end;
    convertRange(std::span(ranges_).subspan(i, end - i));
    i = end;
  }
}

void Converter::convertRange(std::span<const Measure* const> valves) {
  const Number& number = valves.front()->number;
  const double first = conversion_(network_, *valves.front());
  bool one = std::all_of(valves.begin(), valves.end(), [&](const Measure* measure) {
    return conversion_(network_, *measure) == first;
  });
  for (const Link& link : network_.links) {
    if (link.kind == LinkKind::pump && link.statusAt == number.at) one = false;
  }
  if (one) return set(number.at, number.value, first);
  remark(Remark::What::statusRange, number.at.row, textOf(number.value));
  for (const Measure* measure : valves) {
    const double after = conversion_(network_, *measure);
    if (after == number.value) continue;
    const std::string id(network_.links[measure->element].id);
    editor_.insertRow(number.at.row, {id, textOf(after)});
  }
}

// Rows that leave out what the solver fills in by the system of units.
void Converter::writeOutDefaults() {
  for (const Link& link : network_.links) {
    if (link.kind == LinkKind::pipe) writeOutPipe(link);
  }
  const OptionValue& correlation = network_.option(Option::roughnessCorrelation);
  if (correlation.number != 0 && from_.formula == Formula::darcyWeisbach) {
    remark(Remark::What::wallCorrelation, correlation.at.row, correlation.text);
  }
}

void Converter::writeOutPipe(const Link& link) {
  const Pipe& pipe = network_.pipe(link);
  if (pipe.roughness.at) return;
  struct Column {
    const Number& number;
    Quantity quantity;
    int token;
  };
  const Column columns[] = {{pipe.length, Quantity::length, 3},
                            {pipe.diameter, Quantity::pipeDiameter, 4},
                            {pipe.roughness, Quantity::roughness, 5}};
  for (const Column& column : columns) {
    if (column.number.at) continue;
    editor_.setToken(link.row, column.token,
                     textOf(conversion_(column.quantity, column.number.value)));
  }
}

// The solver refuses limits of which one does not stand 0.1 above the other, in any unit.
void Converter::convertPressureLimits() {
  constexpr double kLeast = 0.1;
  if (conversion_.factor(Quantity::pressure) == 1) return;
  const OptionValue& minimum = network_.option(Option::minimumPressure);
  const OptionValue& required = network_.option(Option::requiredPressure);
  const bool partial = isWord(network_.option(Option::demandModel).text, "PDA");
  if (!required.at && !partial) return;
  const double low = conversion_(Quantity::pressure, minimum.number);
  double high = conversion_(Quantity::pressure, required.number);
  const bool close = high - low < kLeast;
  if (close) {
    // A little more, or the difference of the two decimal numbers may come out below.
    high = roundedTo9(low + kLeast * (low == 0 ? 1 : 1 + 1e-6));
    remark(Remark::What::pressureLimits, required.at.row, textOf(high));
  }
  if (required.at) {
    editor_.setToken(required.at.row, required.at.token, textOf(high));
  } else if (!close) {
    editor_.addRow(Section::options, {"REQUIRED", "PRESSURE", textOf(high)});
  }
}

void Converter::convertUnitOptions() {
  const OptionValue& units = network_.option(Option::units);
  const std::string_view word = wordOf(to_.flow);
  if (units.at) {
    editor_.setToken(units.at.row, units.at.token, word);
  } else {
    editor_.addRow(Section::options, {"UNITS", std::string(word)});
  }
  const bool newest = from_.version == SolverVersion::v23;
  if (to_.flow == FlowUnits::cms && !newest) {
    remark(Remark::What::flowUnitsUnknown, units.at.row, word);
  }
  const OptionValue& pressure = network_.option(Option::pressure);
  if (!pressure.at) return;
  if (!isWord(pressure.text, wordOf(to_.pressure))) {
    editor_.setToken(pressure.at.row, pressure.at.token, wordOf(to_.pressure));
  }
  if (newest) return;
  if (isWord(pressure.text, "BAR") || isWord(pressure.text, "FEET")) {
    remark(Remark::What::pressureUnknown, pressure.at.row, pressure.text);
  }
}

void Converter::tellProblems() {
  for (const Problem& problem : network_.problems) {
    if (problem.row == kNoRow) continue;
    if (problem.fault == Fault::oldPump) {
      remark(Remark::What::oldPump, problem.row, problem.text);
    } else if (problem.fault == Fault::unusedCurve) {
      remark(Remark::What::curveWithoutUse, problem.row, problem.text);
    } else if (isError(problem.fault)) {
      remark(Remark::What::rowWithError, problem.row, problem.text);
    }
  }
}

void Converter::tellCurves() {
  std::set<std::uint32_t> told;
  for (const Pump& pump : network_.pumps) {
    tellUse(pump.headCurve, CurveUse::pump, told);
    tellUse(pump.efficiencyCurve, CurveUse::efficiency, told);
  }
  for (const Tank& tank : network_.tanks) tellUse(tank.volumeCurve, CurveUse::volume, told);
  for (const Valve& valve : network_.valves) {
    const bool loss = valve.type == ValveKind::gpv;
    tellUse(valve.curve, loss ? CurveUse::headloss : CurveUse::valve, told);
  }
}

void Converter::tellUse(const Ref& ref, CurveUse use, std::set<std::uint32_t>& told) {
  if (!ref) return;
  const Curve& curve = network_.curves[ref.index];
  const bool fits = conversion_.curveXFactor(use) == conversion_.curveXFactor(curve.use) &&
                    conversion_.curveYFactor(use) == conversion_.curveYFactor(curve.use);
  if (fits || !told.insert(ref.index).second) return;
  remark(Remark::What::curveOfTwoUses, curve.row, curve.id);
}

}  // namespace

Converted convert(const Document& document, const Network& network, const Record& record,
                  FlowUnits target, SolverVersion runBy) {
  return Converter(document, network, record, target, runBy).convert();
}

}  // namespace epanet
