#include "epanet/units.h"

#include <algorithm>
#include <cmath>

#include "epanet/constants.h"
#include "epanet/lexis.h"

namespace epanet {

namespace {

constexpr double kInchesPerFoot = 12;
constexpr double kMillimetersPerFoot = 1000 * kMetersPerFoot;
// Viscosity and diffusivity up to these numbers are absolute, greater ones are multiples of water's
// (in square feet a second).
constexpr double kViscosityMultipliersFrom = 1e-3, kViscosity = 1.1e-5;
constexpr double kDiffusivityMultipliersFrom = 1e-4, kDiffusivity = 1.3e-8;

double flowPerCfs(const Units& units) { return kFlowPerCfs[static_cast<std::size_t>(units.flow)]; }

double metersPerFoot(const Units& units) { return units.isUs() ? 1 : kMetersPerFoot; }

double diameterPerFoot(const Units& units) {
  return units.isUs() ? kInchesPerFoot : kMillimetersPerFoot;
}

double roughnessPerFoot(const Units& units) {
  if (units.formula != Formula::darcyWeisbach) return 1;
  return 1000 * metersPerFoot(units);
}

double perFoot(PressureUnits pressure, const Units& units) {
  const double psi = kPsiPerFoot * units.specificGravity;
  switch (pressure) {
    case PressureUnits::psi:
      return psi;
    case PressureUnits::kpa:
      return kKpaPerPsi * psi;
    case PressureUnits::bar:
      return kBarPerPsi * psi;
    case PressureUnits::meters:
      return units.version == SolverVersion::v23 ? kMetersPerFoot
                                                 : kMetersPerFoot * units.specificGravity;
    case PressureUnits::feet:
      return 1;
  }
  return 1;
}

double pressurePerFoot(const Units& units) { return perFoot(units.pressure, units); }

// What the coefficient of an emitter becomes that lets one cubic foot a second out under one foot.
double emitterUnit(const Units& units) {
  const PressureUnits pressure =
      units.version == SolverVersion::v23 ? ownPressure(units.flow) : units.pressure;
  return flowPerCfs(units) / std::pow(perFoot(pressure, units), units.emitterExponent);
}

double powerPerHorsepower(const Units& units, Power power) {
  if (units.isUs()) return 1;
  const bool twice = power == Power::asSolved && units.version == SolverVersion::v23;
  return twice ? kKilowattsPerHorsepower * kKilowattsPerHorsepower : kKilowattsPerHorsepower;
}

double wallUnit(const Units& units) {
  const double meters = metersPerFoot(units);
  return units.wallOrder == 0 ? 1 / (meters * meters) : meters;
}

// What a number of the quantity is in these units that is one in feet and seconds.
double unitOf(Quantity quantity, const Units& units, Power power) {
  const double meters = metersPerFoot(units);
  switch (quantity) {
    case Quantity::elevation:
    case Quantity::length:
    case Quantity::tankDiameter:
    case Quantity::velocity:
      return meters;
    case Quantity::pipeDiameter:
      return diameterPerFoot(units);
    case Quantity::volume:
      return meters * meters * meters;
    case Quantity::roughness:
      return roughnessPerFoot(units);
    case Quantity::flow:
      return flowPerCfs(units);
    case Quantity::pressure:
      return pressurePerFoot(units);
    case Quantity::power:
      return powerPerHorsepower(units, power);
    case Quantity::emitter:
      return emitterUnit(units);
    case Quantity::wall:
    case Quantity::correlation:
      return wallUnit(units);
    case Quantity::leakArea:
    case Quantity::leakExpansion:
      return 1 / meters;
    // A loss in thousandths, or one of an element that has no length: no one factor serves both.
    case Quantity::headlossLimit:
    case Quantity::bulk:
    case Quantity::setting:
    case Quantity::level:
    case Quantity::curveX:
    case Quantity::curveY:
    case Quantity::viscosity:
    case Quantity::diffusivity:
    case Quantity::none:
      return 1;
  }
  return 1;
}

double times(double number, double factor) {
  return factor == 1 ? number : roundedTo9(number * factor);
}

}  // namespace

PressureUnits ownPressure(FlowUnits flow) {
  return flow < FlowUnits::lps ? PressureUnits::psi : PressureUnits::meters;
}

Units unitsOf(const Network& network, SolverVersion version) {
  Units units;
  units.flow = network.flowUnits;
  units.pressure = network.pressureUnits;
  units.formula = network.formula;
  units.emitterExponent = network.option(Option::emitterExponent).number;
  units.specificGravity = network.option(Option::specificGravity).number;
  units.wallOrder = network.option(Option::wallOrder).number == 0 ? 0 : 1;
  units.version = version;
  const bool keeps = !units.isUs() && units.pressure == PressureUnits::kpa;
  if (version != SolverVersion::v23 && !keeps) units.pressure = ownPressure(units.flow);
  return units;
}

Units drawingUnits(const Units& network) {
  Units units = network;
  units.flow = FlowUnits::lps;
  units.pressure = PressureUnits::meters;
  units.version = SolverVersion::v23;
  return units;
}

Conversion::Conversion(const Units& from, const Units& to, Power power) {
  for (std::size_t i = 0; i < plain_.size(); ++i) {
    const Quantity quantity = static_cast<Quantity>(i);
    const double a = unitOf(quantity, from, power), b = unitOf(quantity, to, power);
    plain_[i] = a == b ? 1 : b / a;
  }
  same_ = from.isUs() == to.isUs() &&
          std::all_of(plain_.begin(), plain_.end(), [](double factor) { return factor == 1; });
}

double Conversion::settingFactor(ValveKind kind) const {
  switch (kind) {
    case ValveKind::prv:
    case ValveKind::psv:
    case ValveKind::pbv:
      return factor(Quantity::pressure);
    case ValveKind::fcv:
      return factor(Quantity::flow);
    case ValveKind::tcv:
    case ValveKind::gpv:
    case ValveKind::pcv:
      return 1;
  }
  return 1;
}

double Conversion::levelFactor(NodeKind kind) const {
  return factor(kind == NodeKind::junction ? Quantity::pressure : Quantity::elevation);
}

double Conversion::curveXFactor(CurveUse use) const {
  switch (use) {
    case CurveUse::pump:
    case CurveUse::efficiency:
    case CurveUse::headloss:
      return factor(Quantity::flow);
    case CurveUse::volume:
      return factor(Quantity::elevation);
    case CurveUse::valve:
    case CurveUse::none:
      return 1;
  }
  return 1;
}

double Conversion::curveYFactor(CurveUse use) const {
  switch (use) {
    case CurveUse::pump:
    case CurveUse::headloss:
      return factor(Quantity::elevation);
    case CurveUse::volume:
      return factor(Quantity::volume);
    case CurveUse::efficiency:
    case CurveUse::valve:
    case CurveUse::none:
      return 1;
  }
  return 1;
}

double Conversion::setting(ValveKind kind, double number) const {
  return times(number, settingFactor(kind));
}
double Conversion::level(NodeKind kind, double number) const {
  return times(number, levelFactor(kind));
}
double Conversion::curveX(CurveUse use, double number) const {
  return times(number, curveXFactor(use));
}
double Conversion::curveY(CurveUse use, double number) const {
  return times(number, curveYFactor(use));
}

// An absolute number that would be taken for a multiple of water's in the new units becomes one.
double Conversion::areaRate(double number, double multipliersFrom, double ofWater) const {
  const double meters = factor(Quantity::elevation);
  if (meters == 1 || number > multipliersFrom) return number;
  const double converted = roundedTo9(number * meters * meters);
  if (converted <= multipliersFrom) return converted;
  return roundedTo9(converted / ofWater);
}

double Conversion::operator()(Quantity quantity, double number) const {
  if (quantity == Quantity::viscosity) {
    return areaRate(number, kViscosityMultipliersFrom, kViscosity);
  }
  if (quantity == Quantity::diffusivity) {
    return areaRate(number, kDiffusivityMultipliersFrom, kDiffusivity);
  }
  return times(number, factor(quantity));
}

double Conversion::operator()(const Network& network, const Measure& measure) const {
  const double number = measure.number.value;
  switch (measure.quantity) {
    case Quantity::setting: {
      const Link& link = network.links[measure.element];
      return link.kind == LinkKind::valve ? setting(network.valve(link).type, number) : number;
    }
    case Quantity::level:
      return level(network.nodes[measure.element].kind, number);
    case Quantity::curveX:
      return curveX(network.curves[measure.element].use, number);
    case Quantity::curveY:
      return curveY(network.curves[measure.element].use, number);
    default:
      return (*this)(measure.quantity, number);
  }
}

}  // namespace epanet
