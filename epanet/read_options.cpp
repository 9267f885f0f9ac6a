// What holds for the whole network: [OPTIONS], [TIMES], [ENERGY], [REACTIONS].
#include "epanet/lexis.h"
#include "epanet/reader.h"

namespace epanet {
namespace {

struct Default {
  Option option;
  std::string_view text;
  double number;
};
constexpr Default kDefaults[] = {
    {Option::units, "GPM", 0},
    {Option::headloss, "H-W", 0},
    {Option::quality, "NONE", 0},
    {Option::unbalanced, "STOP", 0},
    {Option::pattern, "1", 1},
    {Option::viscosity, "1", 1},
    {Option::diffusivity, "1", 1},
    {Option::specificGravity, "1", 1},
    {Option::trials, "200", 200},
    {Option::accuracy, "0.001", 0.001},
    {Option::tolerance, "0.01", 0.01},
    {Option::emitterExponent, "0.5", 0.5},
    {Option::emitterBackflow, "YES", 0},
    {Option::demandMultiplier, "1", 1},
    {Option::demandModel, "DDA", 0},
    {Option::minimumPressure, "0", 0},
    {Option::requiredPressure, "0.1", 0.1},
    {Option::pressureExponent, "0.5", 0.5},
    {Option::checkFreq, "2", 2},
    {Option::maxCheck, "10", 10},
    {Option::dampLimit, "0", 0},
    {Option::headError, "0", 0},
    {Option::flowChange, "0", 0},
    {Option::duration, "0", 0},
    {Option::hydraulicStep, "1:00", 3600},
    {Option::patternStep, "1:00", 3600},
    {Option::patternStart, "0", 0},
    {Option::reportStep, "1:00", 3600},
    {Option::reportStart, "0", 0},
    {Option::startClock, "0", 0},
    {Option::statistic, "NONE", 0},
    {Option::globalEfficiency, "75", 75},
    {Option::globalPrice, "0", 0},
    {Option::demandCharge, "0", 0},
    {Option::bulkOrder, "1", 1},
    {Option::tankOrder, "1", 1},
    {Option::wallOrder, "1", 1},
};

}  // namespace

void Reader::setDefaults() {
  for (const Default& own : kDefaults) {
    net_.options[static_cast<std::size_t>(own.option)] = {{}, own.text, {}, own.number};
  }
}

void Reader::setWord(Option option, int token) {
  net_.options[static_cast<std::size_t>(option)] = {at(token), word(token), word(token + 1), 0};
}

void Reader::setNumber(Option option, int token, Quantity quantity) {
  if (token >= count()) return;
  Number value;
  if (!number(token, value)) return;
  net_.options[static_cast<std::size_t>(option)] = {at(token), word(token), word(token + 1),
                                                    value.value};
  if (quantity != Quantity::none) measure(quantity, value);
}

// --- [OPTIONS] -----------------------------------------------------------------------------------

void Reader::readOption() {
  // Words are one or two; of two the value is the third token, and the second is not looked at.
  struct Word {
    std::string_view name;
    Option option;
    int value;  // token
    bool isNumber;
    Quantity quantity = Quantity::none;
  };
  constexpr Word kWords[] = {
      {"UNITS", Option::units, 1, false},
      {"PRESSURE", Option::pressure, 1, false},
      {"HEADLOSS", Option::headloss, 1, false},
      {"HYDR", Option::hydraulics, 1, false},
      {"QUAL", Option::quality, 1, false},
      {"MAP", Option::map, 1, false},
      {"VERI", Option::verify, 1, false},
      {"SEGM", Option::segments, 1, false},
      {"UNBA", Option::unbalanced, 1, false},
      {"PATT", Option::pattern, 1, false},
      {"VISC", Option::viscosity, 1, true, Quantity::viscosity},
      {"DIFF", Option::diffusivity, 1, true, Quantity::diffusivity},
      {"SPEC", Option::specificGravity, 2, true},
      {"TRIAL", Option::trials, 1, true},
      {"ACCU", Option::accuracy, 1, true},
      {"TOLER", Option::tolerance, 1, true},
      {"HTOL", Option::headTolerance, 1, true},
      {"QTOL", Option::flowTolerance, 1, true},
      {"RQTOL", Option::qualityTolerance, 1, true},
      {"CHECKFREQ", Option::checkFreq, 1, true},
      {"MAXCHECK", Option::maxCheck, 1, true},
      {"DAMPLIMIT", Option::dampLimit, 1, true},
      {"HEADERROR", Option::headError, 1, true, Quantity::elevation},
      {"FLOWCHANGE", Option::flowChange, 1, true, Quantity::flow},
      {"MINI", Option::minimumPressure, 2, true, Quantity::pressure},
      {"REQ", Option::requiredPressure, 2, true, Quantity::pressure},
      {"BACK", Option::emitterBackflow, 2, false},
  };
  // "DEMAND MULTIPLIER" and "DEMAND MODEL", "PRESSURE" and "PRESSURE EXPONENT", "EMITTER EXPONENT".
  if (is(0, "DEMAND")) {
    if (is(1, "MODEL")) {
      if (count() < 3) return;
      if (!is(2, "DDA") && !is(2, "PDA")) return problem(Fault::syntax, 2);
      return setWord(Option::demandModel, 2);
    }
    return setNumber(Option::demandMultiplier, 2);
  }
  if (is(0, "PRESSURE") && is(1, "EXP")) return setNumber(Option::pressureExponent, 2);
  if (is(0, "EMIT")) {
    if (is(1, "BACK")) {
      if (count() < 3) return;
      if (!is(2, "YES") && !is(2, "NO")) return problem(Fault::number, 2);
      return setWord(Option::emitterBackflow, 2);
    }
    return setNumber(Option::emitterExponent, 2);
  }
  for (const Word& word0 : kWords) {
    // The units of flow are known by their first letters; other names count as a whole.
    const bool named = word0.option == Option::units      ? is(0, "UNIT")
                       : word0.option == Option::headloss ? is(0, "HEADL")
                                                          : is(0, word0.name);
    if (!named) continue;
    if (word0.value >= count()) return;
    if (word0.isNumber) return setNumber(word0.option, word0.value, word0.quantity);
    setWord(word0.option, word0.value);
    return;
  }
  if (count() > 1) problem(numberOf(word(1)) ? Fault::syntax : Fault::number, 0);
}

// --- [TIMES] -------------------------------------------------------------------------------------

void Reader::readTime() {
  if (count() < 2) return problem(Fault::syntax);
  if (is(0, "STAT")) {
    constexpr std::string_view kWords[] = {"NONE", "AVERAGE", "MINIMUM", "MAXIMUM", "RANGE"};
    if (wordAt(word(count() - 1), kWords) < 0) return problem(Fault::syntax, count() - 1);
    return setWord(Option::statistic, count() - 1);
  }
  struct Word {
    std::string_view first, second;
    Option option;
  };
  constexpr Word kWords[] = {
      {"DURA", "", Option::duration},          {"HYDR", "", Option::hydraulicStep},
      {"QUAL", "", Option::qualityStep},       {"RULE", "", Option::ruleStep},
      {"MINI", "", Option::minimumStep},       {"PATT", "TIME", Option::patternStep},
      {"PATT", "START", Option::patternStart}, {"REPO", "TIME", Option::reportStep},
      {"REPO", "START", Option::reportStart},  {"STAR", "", Option::startClock},
  };
  for (const Word& own : kWords) {
    if (!is(0, own.first) || (!own.second.empty() && !is(1, own.second))) continue;
    // The value is the last token, or the last but one with a unit behind it.
    const int last = count() - 1;
    int token = last;
    auto time = timeOf(word(last), {});
    if (!time && last > 1) {
      token = last - 1;
      time = timeOf(word(token), word(last));
    }
    if (!time) return problem(Fault::option, last);
    net_.options[static_cast<std::size_t>(own.option)] = {
        at(token), word(token), token == last ? std::string_view() : word(last), *time};
    return;
  }
  problem(Fault::syntax, 0);
}

// --- [ENERGY] ------------------------------------------------------------------------------------

void Reader::readEnergy() {
  if (count() < 3) return problem(Fault::syntax);
  if (is(0, "DEMAND")) {
    if (!is(1, "CHARGE")) return problem(Fault::syntax, 1);
    return setNumber(Option::demandCharge, 2);
  }
  if (is(0, "GLOB")) {
    if (is(1, "PRICE")) return setNumber(Option::globalPrice, 2);
    if (is(1, "EFFI")) return setNumber(Option::globalEfficiency, 2);
    if (!is(1, "PATT")) return problem(Fault::syntax, 1);
    if (pattern(2, Role::option)) setWord(Option::globalPattern, 2);
    return;
  }
  if (!is(0, "PUMP")) return problem(Fault::syntax, 0);
  if (count() < 4) return problem(Fault::syntax);
  const Ref of = link(1, Role::data);
  if (!of) return;
  if (net_.links[of.index].kind != LinkKind::pump) return problem(Fault::pumpData, 1);
  Pump& pump = net_.pumps[net_.links[of.index].detail];
  if (is(2, "PRICE")) {
    number(3, pump.price);
  } else if (is(2, "PATT")) {
    pump.pricePattern = pattern(3, Role::value);
  } else if (is(2, "EFFI")) {
    pump.efficiencyCurve = curve(3, Role::value, CurveUse::efficiency);
  } else {
    problem(Fault::syntax, 2);
  }
}

// --- [REACTIONS] ---------------------------------------------------------------------------------

void Reader::readReaction() {
  if (count() < 3) return;
  const bool bulk = is(1, "BULK"), wall = is(1, "WALL"), tank = is(1, "TANK");
  if (is(0, "ORDER")) {
    if (!bulk && !wall && !tank) return problem(Fault::syntax, 1);
    return setNumber(bulk ? Option::bulkOrder : wall ? Option::wallOrder : Option::tankOrder, 2);
  }
  if (is(0, "GLOB")) {
    if (!bulk && !wall) return problem(Fault::syntax, 1);
    return setNumber(bulk ? Option::globalBulk : Option::globalWall, 2,
                     bulk ? Quantity::bulk : Quantity::wall);
  }
  if (is(0, "LIMIT")) return setNumber(Option::limitingPotential, 2);
  if (is(0, "ROUG")) return setNumber(Option::roughnessCorrelation, 2, Quantity::correlation);
  if (is(0, "BULK")) return readRange(RangeValue::What::bulk, 1, count() - 1, true);
  if (is(0, "WALL")) return readRange(RangeValue::What::wall, 1, count() - 1, true);
  if (is(0, "TANK")) return readRange(RangeValue::What::tank, 1, count() - 1, false);
  problem(Fault::syntax, 0);
}

// --- what options mean ---------------------------------------------------------------------------

namespace {

struct Units {
  std::string_view word;
  FlowUnits units;
};
constexpr Units kUnits[] = {
    {"CFS", FlowUnits::cfs},   {"GPM", FlowUnits::gpm}, {"MGD", FlowUnits::mgd},
    {"IMGD", FlowUnits::imgd}, {"AFD", FlowUnits::afd}, {"LPS", FlowUnits::lps},
    {"LPM", FlowUnits::lpm},   {"MLD", FlowUnits::mld}, {"CMH", FlowUnits::cmh},
    {"CMD", FlowUnits::cmd},   {"CMS", FlowUnits::cms}, {"SI", FlowUnits::lps}};
constexpr std::string_view kPressures[] = {"PSI", "KPA", "METERS", "BAR", "FEET"};
constexpr std::string_view kFormulas[] = {"H-W", "D-W", "C-M"};

}  // namespace

void Reader::settleOptions() {
  const auto tell = [this](const OptionValue& value, Fault fault) {
    section_ = Section::options;
    problemAt(fault, value.at.row, value.text);
  };
  const OptionValue& units = net_.option(Option::units);
  bool known = false;
  for (const Units& own : kUnits) {
    if (!isWord(units.text, own.word)) continue;
    net_.flowUnits = own.units;
    known = true;
    break;
  }
  if (!known) tell(units, Fault::syntax);
  net_.pressureUnits = net_.isUs() ? PressureUnits::psi : PressureUnits::meters;
  const OptionValue& pressure = net_.option(Option::pressure);
  if (pressure.at) {
    const int unit = wordAt(pressure.text, kPressures);
    if (unit < 0) {
      tell(pressure, Fault::syntax);
    } else {
      net_.pressureUnits = static_cast<PressureUnits>(unit);
    }
  }
  const OptionValue& headloss = net_.option(Option::headloss);
  if (const int formula = wordAt(headloss.text, kFormulas); formula >= 0) {
    net_.formula = static_cast<Formula>(formula);
  } else {
    tell(headloss, Fault::syntax);
  }
  const OptionValue& pattern = net_.option(Option::pattern);
  net_.defaultPattern = net_.findPattern(pattern.text);
  if (record_ && pattern.at && net_.defaultPattern != kNone) {
    record_->mentions.push_back({Thing::pattern, net_.defaultPattern, Role::option, pattern.at});
  }
  const OptionValue& quality = net_.option(Option::quality);
  if (quality.at && isWord(quality.text, "TRACE") && !quality.more.empty()) {
    const std::uint32_t node = net_.findNode(quality.more);
    if (node == kNone) {
      tell(quality, Fault::traceNode);
    } else if (record_) {
      const Place at{quality.at.row, static_cast<std::uint16_t>(quality.at.token + 1)};
      record_->mentions.push_back({Thing::node, node, Role::option, at});
    }
  }
}

}  // namespace epanet
