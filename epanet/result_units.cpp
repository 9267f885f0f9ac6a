#include "epanet/result_units.h"

#include <algorithm>
#include <array>

namespace epanet {
namespace {

constexpr double kLitresPerCubicFoot = 28.317;
constexpr double kMetresPerFoot = 0.3048;
constexpr double kPsiPerFoot = 0.4333;
constexpr double kKpaPerPsi = 6.895;
constexpr double kBarPerPsi = 0.068948;
constexpr double kMetresPerPsi = kMetresPerFoot / kPsiPerFoot;

constexpr double flow(double perCubicFoot) { return kLitresPerCubicFoot / perCubicFoot; }

struct Unit {
  ResultQuantity quantity;
  std::string_view name;  // in small letters
  double factor;
};

using Q = ResultQuantity;
constexpr Unit kUnits[] = {
    {Q::flow, "l/s", 1},
    {Q::flow, "lps", 1},
    {Q::flow, "gpm", flow(448.831)},
    {Q::flow, "cfs", flow(1)},
    {Q::flow, "mgd", flow(0.64632)},
    {Q::flow, "imgd", flow(0.5382)},
    {Q::flow, "afd", flow(1.9837)},
    {Q::flow, "a-f/d", flow(1.9837)},
    {Q::flow, "lpm", flow(1699.0)},
    {Q::flow, "l/min", flow(1699.0)},
    {Q::flow, "mld", flow(2.4466)},
    {Q::flow, "ml/d", flow(2.4466)},
    {Q::flow, "cmh", flow(101.94)},
    {Q::flow, "m3/h", flow(101.94)},
    {Q::flow, "cmd", flow(2446.6)},
    {Q::flow, "m3/d", flow(2446.6)},
    {Q::flow, "cms", flow(0.028317)},
    {Q::flow, "m3/s", flow(0.028317)},
    {Q::length, "m", 1},
    {Q::length, "ft", kMetresPerFoot},
    {Q::velocity, "m/s", 1},
    {Q::velocity, "fps", kMetresPerFoot},
    {Q::velocity, "ft/s", kMetresPerFoot},
    {Q::pressure, "m", 1},
    {Q::pressure, "meters", 1},
    {Q::pressure, "psi", kMetresPerPsi},
    {Q::pressure, "kpa", kMetresPerPsi / kKpaPerPsi},
    {Q::pressure, "bar", kMetresPerPsi / kBarPerPsi},
    {Q::pressure, "ft", kMetresPerFoot},
    {Q::pressure, "feet", kMetresPerFoot},
    {Q::headloss, "/1000m", 1},
    {Q::headloss, "m/km", 1},
    {Q::headloss, "m/1000m", 1},
    {Q::headloss, "/1000ft", kMetresPerFoot},
    {Q::headloss, "ft/kft", kMetresPerFoot},
    {Q::headloss, "ft/1000ft", kMetresPerFoot},
};

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

bool isNamed(std::string_view unit, std::string_view name) {
  return std::equal(unit.begin(), unit.end(), name.begin(), name.end(),
                    [](char a, char b) { return lower(a) == b; });
}

constexpr std::array<std::string_view, 11> kFlowUnits = {"CFS", "GPM", "MGD", "IMGD", "AFD", "LPS",
                                                         "LPM", "MLD", "CMH", "CMD",  "CMS"};
// What a file says of metres does not tell the release: they are taken as those of the newest.
constexpr std::array<std::string_view, 5> kPressureUnits = {"psi", "kPa", "METERS", "bar", "ft"};
constexpr int kFirstMetric = 5;

}  // namespace

std::optional<double> drawingFactor(ResultQuantity quantity, std::string_view unit) {
  for (const Unit& known : kUnits) {
    if (known.quantity == quantity && isNamed(unit, known.name)) return known.factor;
  }
  return std::nullopt;
}

bool growsWithGravity(std::string_view pressureUnit) {
  for (const std::string_view unit : {"psi", "kpa", "bar", "m"}) {
    if (isNamed(pressureUnit, unit)) return true;
  }
  return false;
}

std::string_view flowUnitOf(int code) {
  const auto at = static_cast<std::size_t>(code);
  return at < kFlowUnits.size() ? kFlowUnits[at] : std::string_view();
}

std::string_view pressureUnitOf(int code) {
  const auto at = static_cast<std::size_t>(code);
  return at < kPressureUnits.size() ? kPressureUnits[at] : std::string_view();
}

bool isUsFlowUnit(int code) { return code < kFirstMetric; }

}  // namespace epanet
