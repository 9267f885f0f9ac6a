#include "epanet/result_units.h"

#include <algorithm>
#include <array>

#include "epanet/constants.h"
#include "epanet/network.h"

namespace epanet {
namespace {

constexpr double kMetersPerPsi = kMetersPerFoot / kPsiPerFoot;

constexpr double flow(FlowUnits units) {
  return kLitersPerCubicFoot / kFlowPerCfs[static_cast<std::size_t>(units)];
}

struct Unit {
  ResultQuantity quantity;
  std::string_view name;  // in small letters
  double factor;
};

using Q = ResultQuantity;
constexpr Unit kUnits[] = {
    {Q::flow, "l/s", 1},
    {Q::flow, "lps", 1},
    {Q::flow, "gpm", flow(FlowUnits::gpm)},
    {Q::flow, "cfs", flow(FlowUnits::cfs)},
    {Q::flow, "mgd", flow(FlowUnits::mgd)},
    {Q::flow, "imgd", flow(FlowUnits::imgd)},
    {Q::flow, "afd", flow(FlowUnits::afd)},
    {Q::flow, "a-f/d", flow(FlowUnits::afd)},
    {Q::flow, "lpm", flow(FlowUnits::lpm)},
    {Q::flow, "l/min", flow(FlowUnits::lpm)},
    {Q::flow, "mld", flow(FlowUnits::mld)},
    {Q::flow, "ml/d", flow(FlowUnits::mld)},
    {Q::flow, "cmh", flow(FlowUnits::cmh)},
    {Q::flow, "m3/h", flow(FlowUnits::cmh)},
    {Q::flow, "cmd", flow(FlowUnits::cmd)},
    {Q::flow, "m3/d", flow(FlowUnits::cmd)},
    {Q::flow, "cms", flow(FlowUnits::cms)},
    {Q::flow, "m3/s", flow(FlowUnits::cms)},
    {Q::length, "m", 1},
    {Q::length, "ft", kMetersPerFoot},
    {Q::velocity, "m/s", 1},
    {Q::velocity, "fps", kMetersPerFoot},
    {Q::velocity, "ft/s", kMetersPerFoot},
    {Q::pressure, "m", 1},
    {Q::pressure, "meters", 1},
    {Q::pressure, "psi", kMetersPerPsi},
    {Q::pressure, "kpa", kMetersPerPsi / kKpaPerPsi},
    {Q::pressure, "bar", kMetersPerPsi / kBarPerPsi},
    {Q::pressure, "ft", kMetersPerFoot},
    {Q::pressure, "feet", kMetersPerFoot},
    {Q::headloss, "/1000m", 1},
    {Q::headloss, "m/km", 1},
    {Q::headloss, "m/1000m", 1},
    {Q::headloss, "/1000ft", kMetersPerFoot},
    {Q::headloss, "ft/kft", kMetersPerFoot},
    {Q::headloss, "ft/1000ft", kMetersPerFoot},
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
