#include "module/inp/full_settings.h"

#include <cmath>

#include "epanet/lexis.h"
#include "platform/format.h"
#include "platform/text.h"

namespace vessora {
namespace {

using epanet::Option;
using epanet::OptionValue;
using epanet::Section;

// How an option's row is called, and where it stands.
struct Row {
  Section section;
  const char* name;  // its words before the value
};

struct RealRow {
  Option option;
  double EpaSettings::*field;
  Row row;
  epanet::Quantity quantity = epanet::Quantity::none;
};
constexpr RealRow kReals[] = {
    {Option::specificGravity,
     &EpaSettings::specificGravity,
     {Section::options, "Specific Gravity"}},
    {Option::viscosity,
     &EpaSettings::viscosity,
     {Section::options, "Viscosity"},
     epanet::Quantity::viscosity},
    {Option::accuracy, &EpaSettings::accuracy, {Section::options, "Accuracy"}},
    {Option::demandMultiplier,
     &EpaSettings::demandMultiplier,
     {Section::options, "Demand Multiplier"}},
    {Option::emitterExponent,
     &EpaSettings::emitterExponent,
     {Section::options, "Emitter Exponent"}},
    {Option::diffusivity,
     &EpaSettings::diffusivity,
     {Section::options, "Diffusivity"},
     epanet::Quantity::diffusivity},
    {Option::tolerance, &EpaSettings::tolerance, {Section::options, "Tolerance"}},
    {Option::bulkOrder, &EpaSettings::bulkOrder, {Section::reactions, "Order Bulk"}},
    {Option::globalBulk,
     &EpaSettings::globalBulk,
     {Section::reactions, "Global Bulk"},
     epanet::Quantity::bulk},
    {Option::globalWall,
     &EpaSettings::globalWall,
     {Section::reactions, "Global Wall"},
     epanet::Quantity::wall},
    {Option::limitingPotential,
     &EpaSettings::limitingPotential,
     {Section::reactions, "Limiting Potential"}},
    {Option::roughnessCorrelation,
     &EpaSettings::roughnessCorrelation,
     {Section::reactions, "Roughness Correlation"},
     epanet::Quantity::correlation},
    {Option::globalEfficiency,
     &EpaSettings::globalEfficiency,
     {Section::energy, "Global Efficiency"}},
    {Option::globalPrice, &EpaSettings::globalPrice, {Section::energy, "Global Price"}},
    {Option::demandCharge, &EpaSettings::demandCharge, {Section::energy, "Demand Charge"}},
};

struct TimeRow {
  Option option;
  wide50 EpaSettings::*field;
  const char* name;
};
constexpr TimeRow kTimes[] = {
    {Option::duration, &EpaSettings::duration, "Duration"},
    {Option::hydraulicStep, &EpaSettings::hydraulicStep, "Hydraulic Timestep"},
    {Option::qualityStep, &EpaSettings::qualityStep, "Quality Timestep"},
    {Option::patternStep, &EpaSettings::patternStep, "Pattern Timestep"},
    {Option::patternStart, &EpaSettings::patternStart, "Pattern Start"},
    {Option::reportStep, &EpaSettings::reportStep, "Report Timestep"},
    {Option::reportStart, &EpaSettings::reportStart, "Report Start"},
    {Option::startClock, &EpaSettings::startClock, "Start ClockTime"},
};

Row rowOf(Option option) {
  for (const RealRow& own : kReals) {
    if (own.option == option) return own.row;
  }
  for (const TimeRow& own : kTimes) {
    if (own.option == option) return {Section::times, own.name};
  }
  switch (option) {
    case Option::units:
      return {Section::options, "Units"};
    case Option::headloss:
      return {Section::options, "Headloss"};
    case Option::trials:
      return {Section::options, "Trials"};
    case Option::unbalanced:
      return {Section::options, "Unbalanced"};
    case Option::pattern:
      return {Section::options, "Pattern"};
    case Option::quality:
      return {Section::options, "Quality"};
    case Option::wallOrder:
      return {Section::reactions, "Order Wall"};
    case Option::globalPattern:
      return {Section::energy, "Global Pattern"};
    default:
      return {Section::options, ""};
  }
}

std::string timeText(double seconds) {
  const auto whole = static_cast<long long>(seconds + 0.5);
  char text[40];
  std::snprintf(text, sizeof text, "%02lld:%02lld:%02lld", whole / 3600, whole / 60 % 60,
                whole % 60);
  return text;
}

double secondsOf(const wide50& text) {
  return epanet::timeOf(platform::narrow(text.view()), {}).value_or(0);
}

bool sameReal(double a, double b) {
  return a == b || std::fabs(a - b) <= 1e-9 * std::max(std::fabs(a), std::fabs(b));
}

// A word of the file as the dialog's lists have it.
std::u16string listWord(std::string_view text,
                        std::initializer_list<std::pair<std::string_view, const char16_t*>> words) {
  for (const auto& [word, own] : words) {
    if (epanet::isWord(text, word)) return own;
  }
  return {};
}

std::u16string formulaWord(epanet::Formula formula) {
  switch (formula) {
    case epanet::Formula::darcyWeisbach:
      return u"D-W";
    case epanet::Formula::chezyManning:
      return u"M-C";
    default:
      return u"H-W";
  }
}

std::string asFile(std::u16string_view drawnFormula) {
  return drawnFormula == u"M-C" ? "C-M" : platform::narrow(drawnFormula);
}

std::u16string qualityWord(const OptionValue& value, const FileText& words) {
  const std::u16string known = listWord(
      value.text, {{"NONE", u"None"}, {"CHEM", u"Chemical"}, {"AGE", u"Age"}, {"TRACE", u"Trace"}});
  return known.empty() ? words.text(value.text) : known;
}

double stepOr(const epanet::Network& n, Option option, double otherwise) {
  const OptionValue& value = n.option(option);
  return value.at ? value.number : otherwise;
}

}  // namespace

// --- what importing stores -----------------------------------------------------------------------

void fillSettings(const FullForm& form, EpaSettings& s) {
  const epanet::Network& n = form.network();
  for (const RealRow& own : kReals) {
    s.*own.field = form.toDrawing()(own.quantity, n.option(own.option).number);
  }
  for (const TimeRow& own : kTimes) {
    double seconds = n.option(own.option).number;
    if (own.option == Option::qualityStep) {
      seconds = stepOr(n, own.option, n.option(Option::hydraulicStep).number / 10);
    }
    s.*own.field = platform::widen(timeText(seconds));
  }
  s.headloss = formulaWord(n.formula);
  s.trials = static_cast<std::int32_t>(n.option(Option::trials).number);
  s.unbalanced = epanet::isWord(n.option(Option::unbalanced).text, "CONT") ? u"Continue" : u"Stop";
  // A number on the drawing: of a pattern's name only what it begins with is left.
  const std::string_view pattern = n.option(Option::pattern).text;
  const std::uint32_t known = n.findPattern(pattern);
  s.defaultPattern =
      platform::wtof(known == epanet::kNone ? form.words().text(pattern) : form.patternName(known));
  const OptionValue& quality = n.option(Option::quality);
  s.qualityParam = qualityWord(quality, form.words());
  s.traceNode.clear();
  if (s.qualityParam == u"Trace") {
    const std::uint32_t traced = n.findNode(quality.more);
    s.traceNode = traced == epanet::kNone ? form.words().text(quality.more) : form.nodeName(traced);
  }
  s.wallOrder = n.option(Option::wallOrder).number == 0 ? u"Zero" : u"First";
  s.energyPattern = form.patternName(n.findPattern(n.option(Option::globalPattern).text));
}

// --- what an export takes back -------------------------------------------------------------------

namespace {

void compareReals(const FullForm& form, const EpaSettings& kept, const EpaSettings& drawn,
                  std::vector<ChangedSetting>& changes) {
  const epanet::Conversion back(epanet::drawingUnits(epanet::unitsOf(form.network())),
                                epanet::unitsOf(form.network()));
  for (const RealRow& own : kReals) {
    if (sameReal(kept.*own.field, drawn.*own.field)) continue;
    changes.push_back({own.option, epanet::textOf(form.network().option(own.option).number),
                       epanet::textOf(back(own.quantity, drawn.*own.field))});
  }
}

void compareTimes(const EpaSettings& kept, const EpaSettings& drawn,
                  std::vector<ChangedSetting>& changes) {
  for (const TimeRow& own : kTimes) {
    const double was = secondsOf(kept.*own.field), now = secondsOf(drawn.*own.field);
    if (was != now) changes.push_back({own.option, timeText(was), timeText(now)});
  }
}

template <class Text>
void compareText(Option option, const Text& kept, const Text& drawn,
                 std::vector<ChangedSetting>& changes) {
  if (platform::equalNoCase(kept.view(), drawn.view())) return;
  changes.push_back({option, platform::narrow(kept.view()), platform::narrow(drawn.view())});
}

std::string qualityText(const EpaSettings& s) {
  std::string text = platform::narrow(s.qualityParam.view());
  if (s.qualityParam == u"Trace") text += " " + platform::narrow(s.traceNode.view());
  return text;
}

}  // namespace

std::vector<ChangedSetting> changedSettings(const FullForm& form, const EpaSettings& drawn) {
  EpaSettings kept = drawn;
  fillSettings(form, kept);
  std::vector<ChangedSetting> changes;
  compareReals(form, kept, drawn, changes);
  compareTimes(kept, drawn, changes);
  if (!(kept.headloss == drawn.headloss.view())) {
    changes.push_back({Option::headloss, asFile(kept.headloss), asFile(drawn.headloss)});
  }
  if (kept.trials != drawn.trials) {
    changes.push_back({Option::trials, std::to_string(kept.trials), std::to_string(drawn.trials)});
  }
  compareText(Option::unbalanced, kept.unbalanced, drawn.unbalanced, changes);
  if (!sameReal(kept.defaultPattern, drawn.defaultPattern)) {
    changes.push_back({Option::pattern, std::string(form.network().option(Option::pattern).text),
                       epanet::textOf(drawn.defaultPattern)});
  }
  if (qualityText(kept) != qualityText(drawn)) {
    changes.push_back({Option::quality, qualityText(kept), qualityText(drawn)});
  }
  compareText(Option::wallOrder, kept.wallOrder, drawn.wallOrder, changes);
  for (ChangedSetting& change : changes) {
    if (change.option == Option::wallOrder) change.now = drawn.wallOrder == u"Zero" ? "0" : "1";
  }
  compareText(Option::globalPattern, kept.energyPattern, drawn.energyPattern, changes);
  return changes;
}

namespace {

std::vector<ChangedSetting> allSettings(const EpaSettings& drawn) {
  std::vector<ChangedSetting> all;
  all.push_back({Option::units, {}, "LPS"});
  all.push_back({Option::headloss, {}, asFile(drawn.headloss)});
  for (const RealRow& own : kReals) {
    all.push_back({own.option, {}, epanet::textOf(drawn.*own.field)});
  }
  all.push_back({Option::trials, {}, std::to_string(drawn.trials)});
  all.push_back({Option::unbalanced, {}, platform::narrow(drawn.unbalanced.view())});
  all.push_back({Option::pattern, {}, epanet::textOf(drawn.defaultPattern)});
  all.push_back({Option::quality, {}, qualityText(drawn)});
  all.push_back({Option::wallOrder, {}, drawn.wallOrder == u"Zero" ? "0" : "1"});
  if (!drawn.energyPattern.empty()) {
    all.push_back({Option::globalPattern, {}, platform::narrow(drawn.energyPattern.view())});
  }
  for (const TimeRow& own : kTimes) {
    all.push_back({own.option, {}, timeText(secondsOf(drawn.*own.field))});
  }
  return all;
}

}  // namespace

std::string settingName(Option option) { return rowOf(option).name; }

std::string settingRows(const EpaSettings& drawn, Section section) {
  std::string rows;
  for (const ChangedSetting& setting : allSettings(drawn)) {
    const Row row = rowOf(setting.option);
    if (row.section != section) continue;
    rows += " " + std::string(row.name) + "\t" + setting.now + "\n";
  }
  return rows;
}

void writeSettings(const epanet::Network& network, const std::vector<ChangedSetting>& changes,
                   epanet::Editor& editor) {
  for (const ChangedSetting& change : changes) {
    const OptionValue& value = network.option(change.option);
    if (!value.at) {
      const Row row = rowOf(change.option);
      editor.addText(row.section, " " + std::string(row.name) + "\t" + change.now);
      continue;
    }
    if (change.now.empty()) {
      editor.removeRow(value.at.row);
      continue;
    }
    // "Trace Lake" are two words, and "Continue 10" loses its second one with the first.
    const std::size_t blank = change.now.find(' ');
    editor.setToken(value.at.row, value.at.token, change.now.substr(0, blank));
    const bool pair = blank != change.now.npos;
    if (pair) {
      editor.setToken(value.at.row, value.at.token + 1, change.now.substr(blank + 1));
    } else if (!value.more.empty() && change.option == Option::unbalanced) {
      editor.removeToken(value.at.row, value.at.token + 1);
    } else if (!value.more.empty() && epanet::isWord(value.text, "TRACE")) {
      editor.removeToken(value.at.row, value.at.token + 1);
    } else if (!value.more.empty() && rowOf(change.option).section == Section::times) {
      editor.removeToken(value.at.row, value.at.token + 1);
    }
  }
}

}  // namespace vessora
