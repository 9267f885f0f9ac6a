// The solver's own conversion factors: files converted with these give it the same results, exact
// physics would not.
#pragma once

#include <array>

namespace epanet {

inline constexpr double kMetersPerFoot = 0.3048;
inline constexpr double kLitersPerCubicFoot = 28.317;
inline constexpr double kPsiPerFoot = 0.4333;
inline constexpr double kKpaPerPsi = 6.895;
inline constexpr double kBarPerPsi = 0.068948;
inline constexpr double kKilowattsPerHorsepower = 0.7457;
// By FlowUnits, for one cubic foot a second.
inline constexpr std::array kFlowPerCfs{1.0,    448.831, 0.64632, 0.5382, 1.9837,  28.317,
                                        1699.0, 2.4466,  101.94,  2446.6, 0.028317};

}  // namespace epanet
