// What holds for the whole network: [OPTIONS], [TIMES], [ENERGY], [REACTIONS].
#include <algorithm>

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
  if (!isAllowed(option, value.value)) return problem(Fault::option, token);
  if (option == Option::accuracy) value.value = std::clamp(value.value, 1e-5, 0.1);
  net_.options[static_cast<std::size_t>(option)] = {at(token), word(token), word(token + 1),
                                                    value.value};
  if (quantity != Quantity::none) measure(quantity, value);
}

// The numbers that the solver takes for an option.
bool Reader::isAllowed(Option option, double number) {
  switch (option) {
    case Option::specificGravity:
    case Option::viscosity:
    case Option::trials:
    case Option::accuracy:
    case Option::emitterExponent:
    case Option::demandMultiplier:
    case Option::checkFreq:
    case Option::maxCheck:
    case Option::headTolerance:
    case Option::flowTolerance:
      return number > 0;
    case Option::qualityTolerance:
      return number > 0 && number < 1;
    case Option::tolerance:
    case Option::diffusivity:
    case Option::headError:
    case Option::flowChange:
    case Option::minimumPressure:
    case Option::requiredPressure:
    case Option::pressureExponent:
    case Option::demandCharge:
      return number >= 0;
    case Option::wallOrder:
      return number == 0 || number == 1;
    default:
      return true;
  }
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
  };
  if (readUnitOption() || readChoice() || readPressureLimit()) return;
  for (const Word& word0 : kWords) {
    if (!is(0, word0.name)) continue;
    if (word0.value >= count()) return;
    if (word0.isNumber) return setNumber(word0.option, word0.value, word0.quantity);
    setWord(word0.option, word0.value);
    return;
  }
  if (count() < 2) return;
  const auto value = numberOf(word(1));
  if (!value) return problem(Fault::number, 1);
  if (*value <= 0) return problem(Fault::option, 1);
  problem(Fault::syntax);
}

namespace {

struct FlowWord {
  std::string_view word;
  FlowUnits units;
};
constexpr FlowWord kFlowUnits[] = {
    {"CFS", FlowUnits::cfs},   {"GPM", FlowUnits::gpm}, {"MGD", FlowUnits::mgd},
    {"IMGD", FlowUnits::imgd}, {"AFD", FlowUnits::afd}, {"LPS", FlowUnits::lps},
    {"LPM", FlowUnits::lpm},   {"MLD", FlowUnits::mld}, {"CMH", FlowUnits::cmh},
    {"CMD", FlowUnits::cmd},   {"CMS", FlowUnits::cms}, {"SI", FlowUnits::lps}};
constexpr std::string_view kPressures[] = {"PSI", "KPA", "METERS", "BAR", "FEET"};
constexpr std::string_view kFormulas[] = {"H-W", "D-W", "C-M"};

}  // namespace

// What the numbers of the file mean. Rows that follow take their defaults by what was read so far.
bool Reader::readUnitOption() {
  if (is(0, "PRESSURE") && is(1, "EXP")) {
    setNumber(Option::pressureExponent, 2);
    return true;
  }
  const bool units = is(0, "UNIT"), formula = is(0, "HEADL");
  if (!units && !formula && !is(0, "PRESSURE")) return false;
  if (count() < 2) return true;
  if (units) {
    const auto* own =
        std::find_if(std::begin(kFlowUnits), std::end(kFlowUnits),
                     [this](const FlowWord& flow) { return isWord(word(1), flow.word); });
    if (own == std::end(kFlowUnits)) return problem(Fault::option, 1), true;
    net_.flowUnits = own->units;
    setWord(Option::units, 1);
  } else if (formula) {
    const int at = wordAt(word(1), kFormulas);
    if (at < 0) return problem(Fault::option, 1), true;
    net_.formula = static_cast<Formula>(at);
    setWord(Option::headloss, 1);
  } else {
    if (wordAt(word(1), kPressures) < 0) return problem(Fault::option, 1), true;
    setWord(Option::pressure, 1);
  }
  return true;
}

// Options whose value is one of some words.
bool Reader::readChoice() {
  const auto choose = [this](Option option, int token, const auto& words) {
    if (token >= count()) return;
    if (wordAt(word(token), words) < 0) return problem(Fault::option, token);
    setWord(option, token);
  };
  constexpr std::string_view kModels[] = {"DDA", "PDA"}, kAnswers[] = {"YES", "NO"};
  constexpr std::string_view kFates[] = {"STOP", "CONT"}, kUses[] = {"USE", "SAVE"};
  if (is(0, "DEMAND") && is(1, "MODEL")) {
    choose(Option::demandModel, 2, kModels);
  } else if (is(0, "DEMAND")) {
    setNumber(Option::demandMultiplier, 2);
  } else if (is(0, "EMIT")) {
    setNumber(Option::emitterExponent, 2);
  } else if (is(0, "BACK")) {
    choose(Option::emitterBackflow, 2, kAnswers);
  } else if (is(0, "UNBA")) {
    choose(Option::unbalanced, 1, kFates);
  } else if (is(0, "HYDR")) {
    if (count() > 2) choose(Option::hydraulics, 1, kUses);
  } else if (is(0, "QUAL")) {
    if (count() < 2) return true;
    if (!is(1, "TRACE")) return setWord(Option::quality, 1), true;
    if (count() < 3) return problem(Fault::syntax), true;
    if (net_.findNode(word(2)) == kNone) return problem(Fault::traceNode, 2), true;
    setWord(Option::quality, 1);
  } else {
    return false;
  }
  return true;
}

// The pressures between which demands are met in part: the required one stands at least 0.1 above
// the other, and follows it as long as no row sets it.
bool Reader::readPressureLimit() {
  constexpr double kLeast = 0.1;
  const bool least = is(0, "MINI");
  if (!least && !is(0, "REQ")) return false;
  Number value;
  if (count() < 3 || !number(2, value)) return true;
  auto& minimum = net_.options[static_cast<std::size_t>(Option::minimumPressure)];
  auto& required = net_.options[static_cast<std::size_t>(Option::requiredPressure)];
  const Option option = least ? Option::minimumPressure : Option::requiredPressure;
  if (value.value < 0) return problem(Fault::option, 2), true;
  if (!least && value.value - minimum.number < kLeast) {
    return problem(Fault::pressureLimits, 2), true;
  }
  setNumber(option, 2, Quantity::pressure);
  if (!least) return true;
  if (required.number == kLeast) {
    required.number = value.value + kLeast;
  } else if (required.number - value.value < kLeast) {
    problem(Fault::pressureLimits, 2);
  }
  return true;
}

// --- [TIMES] -------------------------------------------------------------------------------------

void Reader::readTime() {
  if (count() < 2) return problem(Fault::syntax);
  if (is(0, "STAT")) {
    constexpr std::string_view kWords[] = {"NO", "AVERAGE", "MINIMUM", "MAXIMUM", "RANGE"};
    if (wordAt(word(count() - 1), kWords) < 0) return problem(Fault::option, count() - 1);
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
  // The value is the last token, or the last but one with a unit behind it.
  const int last = count() - 1;
  int token = last;
  auto time = timeOf(word(last), {});
  if (!time && last > 0) {
    token = last - 1;
    time = timeOf(word(token), word(last));
  }
  if (!time) return problem(Fault::option, token);
  for (const Word& own : kWords) {
    if (!is(0, own.first) || (!own.second.empty() && !is(1, own.second))) continue;
    net_.options[static_cast<std::size_t>(own.option)] = {
        at(token), word(token), token == last ? std::string_view() : word(last), *time};
    return;
  }
  problem(Fault::option, is(0, "PATT") || is(0, "REPO") ? 1 : 0);
}

// --- [ENERGY] ------------------------------------------------------------------------------------

void Reader::readEnergy() {
  if (count() < 3) return problem(Fault::syntax);
  if (is(0, "DEMAND")) return setNumber(Option::demandCharge, 2);
  if (is(0, "GLOB")) return readGlobalEnergy();
  if (!is(0, "PUMP")) return problem(Fault::option, 0);
  if (count() < 4) return problem(Fault::syntax);
  const std::uint32_t index = net_.findLink(word(1));
  if (index == kNone || net_.links[index].kind != LinkKind::pump) {
    return problem(Fault::pumpData, 1);
  }
  mention(Thing::link, index, Role::data, 1);
  Pump& pump = net_.pumps[net_.links[index].detail];
  const int last = count() - 1;
  if (is(last - 1, "PRICE")) {
    Number price;
    if (!number(last, price)) return;
    if (price.value < 0) return problem(Fault::energy, last);
    pump.price = price;
  } else if (is(last - 1, "PATT")) {
    pump.pricePattern = pattern(last, Role::value);
  } else if (is(last - 1, "EFFI")) {
    pump.efficiencyCurve = curve(last, Role::value, CurveUse::efficiency);
  } else {
    problem(Fault::syntax);
  }
}

void Reader::readGlobalEnergy() {
  const int last = count() - 1;
  const bool price = is(last - 1, "PRICE");
  if (price || is(last - 1, "EFFI")) {
    const auto value = numberOf(word(last));
    const bool bad = value && (price ? *value < 0 : *value <= 0);
    if (bad) return problem(Fault::energy, last);
    return setNumber(price ? Option::globalPrice : Option::globalEfficiency, last);
  }
  if (!is(last - 1, "PATT")) return problem(Fault::syntax);
  if (pattern(last, Role::option)) setWord(Option::globalPattern, last);
}

// --- [REACTIONS] ---------------------------------------------------------------------------------

void Reader::readReaction() {
  if (count() < 3) return;
  const int last = count() - 1;
  const bool bulk = is(1, "BULK"), wall = is(1, "WALL"), tank = is(1, "TANK");
  if (is(0, "ORDER")) {
    if (!numberOf(word(last))) return problem(Fault::number, last);
    if (!bulk && !wall && !tank) return problem(Fault::option, 1);
    return setNumber(bulk ? Option::bulkOrder : wall ? Option::wallOrder : Option::tankOrder, last);
  }
  if (is(0, "GLOB")) {
    if (!numberOf(word(last))) return problem(Fault::number, last);
    if (!bulk && !wall) return problem(Fault::option, 1);
    return setNumber(bulk ? Option::globalBulk : Option::globalWall, last,
                     bulk ? Quantity::bulk : Quantity::wall);
  }
  if (is(0, "LIMIT")) return setNumber(Option::limitingPotential, last);
  if (is(0, "ROUG")) return setNumber(Option::roughnessCorrelation, last, Quantity::correlation);
  if (is(0, "BULK")) return readRange(RangeValue::What::bulk, 1, last, true);
  if (is(0, "WALL")) return readRange(RangeValue::What::wall, 1, last, true);
  if (is(0, "TANK")) return readRange(RangeValue::What::tank, 1, last, false);
  problem(Fault::option, 0);
}

// --- what options mean ---------------------------------------------------------------------------

void Reader::settleOptions() {
  net_.pressureUnits = net_.isUs() ? PressureUnits::psi : PressureUnits::meters;
  const OptionValue& pressure = net_.option(Option::pressure);
  if (pressure.at) {
    net_.pressureUnits = static_cast<PressureUnits>(wordAt(pressure.text, kPressures));
  }
  const OptionValue& pattern = net_.option(Option::pattern);
  net_.defaultPattern = net_.findPattern(pattern.text);
  if (record_ && pattern.at && net_.defaultPattern != kNone) {
    record_->mentions.push_back({Thing::pattern, net_.defaultPattern, Role::option, pattern.at});
  }
  const OptionValue& quality = net_.option(Option::quality);
  if (record_ && quality.at && isWord(quality.text, "TRACE")) {
    const Place at{quality.at.row, static_cast<std::uint16_t>(quality.at.token + 1)};
    record_->mentions.push_back({Thing::node, net_.findNode(quality.more), Role::option, at});
  }
}

}  // namespace epanet
