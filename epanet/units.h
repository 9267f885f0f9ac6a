// Units of input files, and conversion between them with the solver's own constants.
//
// The solver turns every number of a file into feet and cubic feet a second with factors of four to
// six digits. A file converted with those same factors is solved to the same results; one converted
// with exact physics is not.
#pragma once

#include <array>

#include "epanet/network.h"

namespace epanet {

// Releases of the solver that read the same file differently.
enum class SolverVersion : std::uint8_t { v20, v22, v23 };

struct Units {
  FlowUnits flow = FlowUnits::lps;
  PressureUnits pressure = PressureUnits::meters;
  Formula formula = Formula::hazenWilliams;
  double emitterExponent = 0.5;
  double specificGravity = 1;
  int wallOrder = 1;  // of reactions at the wall: 0 or 1
  SolverVersion version = SolverVersion::v23;
  bool isUs() const { return flow < FlowUnits::lps; }
};

// What the numbers of a file mean to a release: older ones take a PRESSURE option that does not go
// with the flow units for the system's own.
Units unitsOf(const Network& network, SolverVersion version = SolverVersion::v23);
// What drawings hold of a network: l/s, m, mm, kW, pressures in m, emitters in l/s per m^exponent;
// formula, exponent, gravity and wall order are those of the network.
Units drawingUnits(const Units& network);

// PSI for US flow units, METERS for SI.
PressureUnits ownPressure(FlowUnits flow);

// How the power of pumps is converted.
enum class Power : std::uint8_t {
  asWritten,  // kW are kW
  // To the same lift when solved: release 2.3 divides kW by 0.7457 twice.
  asSolved,
};

// From one set of units to another. Cheap to use: all factors are computed at construction.
class Conversion {
 public:
  Conversion(const Units& from, const Units& to, Power power = Power::asWritten);

  // Nothing changes its number.
  bool isSame() const { return same_; }

  // The factor of a quantity of which the file's units tell all. 1 for setting, level, curveX and
  // curveY, which need their element, and for viscosity and diffusivity, which have none.
  double factor(Quantity quantity) const { return plain_[static_cast<std::size_t>(quantity)]; }
  double settingFactor(ValveKind kind) const;
  double levelFactor(NodeKind kind) const;
  double curveXFactor(CurveUse use) const;
  double curveYFactor(CurveUse use) const;

  // The number in the new units, to nine significant digits; with a factor of 1 the number itself.
  double operator()(Quantity quantity, double number) const;
  double setting(ValveKind kind, double number) const;
  double level(NodeKind kind, double number) const;
  double curveX(CurveUse use, double number) const;
  double curveY(CurveUse use, double number) const;
  // Of a measure of the network, by its quantity and element.
  double operator()(const Network& network, const Measure& measure) const;

 private:
  double areaRate(double number, double multipliersFrom, double ofWater) const;

  std::array<double, static_cast<std::size_t>(Quantity::none) + 1> plain_;
  bool same_ = false;
};

}  // namespace epanet
