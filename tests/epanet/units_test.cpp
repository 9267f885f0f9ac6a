#include "epanet/units.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "epanet/lexis.h"

namespace {

using namespace epanet;

Units us(FlowUnits flow = FlowUnits::gpm) {
  Units units;
  units.flow = flow;
  units.pressure = PressureUnits::psi;
  return units;
}
Units si(FlowUnits flow = FlowUnits::lps) {
  Units units;
  units.flow = flow;
  return units;
}

TEST(Units, ConvertWithTheSolversConstantsToNineDigits) {
  const Conversion to(us(), si());
  EXPECT_EQ(to(Quantity::pipeDiameter, 12), 304.8);
  EXPECT_EQ(to(Quantity::elevation, 710), 216.408);
  EXPECT_EQ(to(Quantity::flow, 100), 6.30905619);  // 28.317 / 448.831, no exact physics
  EXPECT_EQ(to(Quantity::pressure, 50), 35.1719363);
  EXPECT_EQ(to(Quantity::volume, 1000), 28.3168466);
  EXPECT_EQ(to(Quantity::power, 10), 7.457);
  EXPECT_EQ(to(Quantity::wall, -1), -0.3048);
  EXPECT_EQ(to(Quantity::leakArea, 0.3048), 1);
  EXPECT_EQ(to(Quantity::bulk, -0.3), -0.3);
  EXPECT_EQ(to(Quantity::roughness, 130), 130);
  EXPECT_EQ(Conversion(si(), si(FlowUnits::cmh))(Quantity::flow, 28.317), 101.94);
}

TEST(Units, ComeBackToTheNumberThatStoodThere) {
  for (const Quantity quantity :
       {Quantity::pipeDiameter, Quantity::flow, Quantity::pressure, Quantity::power,
        Quantity::emitter, Quantity::volume, Quantity::leakArea, Quantity::wall}) {
    for (const double number : {12.0, 0.1, 710.0, 8.5, 12345.678, -0.3, 1e-7}) {
      const Conversion to(us(FlowUnits::mgd), si(FlowUnits::cmd));
      const Conversion back(si(FlowUnits::cmd), us(FlowUnits::mgd));
      EXPECT_NEAR(back(quantity, to(quantity, number)) / number, 1, 1e-8);
    }
  }
  const Conversion to(us(), si()), back(si(), us());
  EXPECT_EQ(textOf(back(Quantity::pipeDiameter, to(Quantity::pipeDiameter, 12))), "12");
}

// The quick way must give what printing and reading gives, to the bit, also near halves.
TEST(Units, RoundingToNineDigitsIsThatOfPrinting) {
  const auto check = [](double number) {
    char digits[40];
    std::snprintf(digits, sizeof digits, "%.8e", number);
    EXPECT_EQ(roundedTo9(number), std::strtod(digits, nullptr)) << digits;
  };
  std::uint64_t state = 1;
  for (int i = 0; i < 200000; ++i) {
    state = state * 6364136223846793005U + 1442695040888963407U;
    const double part = static_cast<double>(state >> 11) / 9007199254740992.0;
    const double power = std::pow(10, i % 33 - 16);
    check((i % 2 ? part : -part) * power);
    check((std::floor(part * 1e9) + 0.5) / 1e9 * power);
    check(std::nextafter(power, i % 2 ? 0 : 1e300));
  }
}

TEST(Units, LeaveNumbersOfTheSameUnitsToTheBit) {
  const double number = 0.1 + 0.2;  // seventeen digits
  const Conversion flows(si(), si(FlowUnits::cmh));
  EXPECT_EQ(flows(Quantity::pressure, number), number);
  EXPECT_EQ(flows(Quantity::length, number), number);
  EXPECT_NE(flows(Quantity::flow, number), number);
  EXPECT_FALSE(flows.isSame());
  EXPECT_TRUE(Conversion(si(), si()).isSame());
  Units heavy = us();
  heavy.specificGravity = 1.2;
  heavy.emitterExponent = 0.7;
  EXPECT_TRUE(Conversion(heavy, heavy, Power::asSolved).isSame());
}

TEST(Units, RoughnessFollowsTheFormula) {
  Units from = us(), to = si();
  from.formula = to.formula = Formula::darcyWeisbach;
  EXPECT_EQ(Conversion(from, to)(Quantity::roughness, 0.5), 0.1524);
  from.formula = to.formula = Formula::chezyManning;
  EXPECT_EQ(Conversion(from, to)(Quantity::roughness, 0.01), 0.01);
}

// Flow through an emitter is K p^e: the same flow must come out under the same head.
TEST(Units, EmittersLetOutTheSameFlowUnderTheSameHead) {
  Units from = us(), to = si();
  from.emitterExponent = to.emitterExponent = 0.7;
  from.specificGravity = to.specificGravity = 1.1;
  const double feet = 100, k = 2.5;
  const double gpm = k * std::pow(feet * 0.4333 * 1.1, 0.7);
  const double lps = Conversion(from, to)(Quantity::emitter, k) * std::pow(feet * 0.3048, 0.7);
  EXPECT_NEAR(lps, gpm * 28.317 / 448.831, 1e-8 * lps);

  // The newest release takes no notice of the unit of pressures, older ones do.
  to.pressure = PressureUnits::kpa;
  const double inMeters = Conversion(from, to)(Quantity::emitter, k);
  EXPECT_NEAR(inMeters * std::pow(feet * 0.3048, 0.7), lps, 1e-8 * lps);
  from.version = to.version = SolverVersion::v22;
  const double inKpa = Conversion(from, to)(Quantity::emitter, k);
  EXPECT_NEAR(inKpa * std::pow(feet * 0.4333 * 1.1 * 6.895, 0.7), lps, 1e-8 * lps);
}

TEST(Units, PressuresAndPowerDependOnTheRelease) {
  Units from = us(), to = si();
  from.specificGravity = to.specificGravity = 1.5;
  EXPECT_EQ(Conversion(from, to)(Quantity::pressure, 0.4333 * 1.5), 0.3048);
  to.version = SolverVersion::v22;
  EXPECT_EQ(Conversion(from, to)(Quantity::pressure, 0.4333), 0.3048);
  EXPECT_EQ(Conversion(from, to, Power::asSolved)(Quantity::power, 10), 7.457);
  to.version = SolverVersion::v23;
  EXPECT_EQ(Conversion(from, to, Power::asSolved)(Quantity::power, 10), 5.5606849);
  EXPECT_EQ(Conversion(to, to, Power::asSolved)(Quantity::power, 10), 10);
  to.pressure = PressureUnits::bar;
  EXPECT_EQ(Conversion(from, to)(Quantity::pressure, 10), 0.68948);
}

TEST(Units, SettingsLevelsAndCurvesFollowTheirElement) {
  const Conversion to(us(), si());
  EXPECT_EQ(to.setting(ValveKind::prv, 50), to(Quantity::pressure, 50));
  EXPECT_EQ(to.setting(ValveKind::fcv, 50), to(Quantity::flow, 50));
  EXPECT_EQ(to.setting(ValveKind::tcv, 50), 50);
  EXPECT_EQ(to.setting(ValveKind::pcv, 50), 50);
  EXPECT_EQ(to.level(NodeKind::tank, 10), 3.048);
  EXPECT_EQ(to.level(NodeKind::junction, 10), to(Quantity::pressure, 10));
  EXPECT_EQ(to.curveX(CurveUse::volume, 10), 3.048);
  EXPECT_EQ(to.curveY(CurveUse::volume, 1000), 28.3168466);
  EXPECT_EQ(to.curveX(CurveUse::efficiency, 100), 6.30905619);
  EXPECT_EQ(to.curveY(CurveUse::efficiency, 75), 75);
  EXPECT_EQ(to.curveX(CurveUse::none, 7), 7);
}

// An absolute viscosity in square feet can be a number that means a multiple of water's.
TEST(Units, ViscositiesStayWhatTheyAre) {
  const Conversion toSi(us(), si()), toUs(si(), us());
  EXPECT_EQ(toSi(Quantity::viscosity, 1.2), 1.2);
  EXPECT_EQ(toSi(Quantity::viscosity, 1e-5), 9.290304e-07);
  EXPECT_NEAR(toUs(Quantity::viscosity, 5e-4), 5e-4 / 0.3048 / 0.3048 / 1.1e-5, 1e-6);
  EXPECT_EQ(toUs(Quantity::diffusivity, 1e-9), 1.07639104e-08);
}

}  // namespace
