#include "module/inp/inp_scanner.h"

#include <algorithm>
#include <utility>

#include "module/inp/inp_reader.h"

namespace vessora {

namespace {

struct Header {
  std::string_view text;
  InpSection section;
};

constexpr Header kHeaders[] = {
    {"[JUNCTIONS]", InpSection::junctions}, {"[RESERVOIRS]", InpSection::reservoirs},
    {"[TANKS]", InpSection::tanks},         {"[PIPES]", InpSection::pipes},
    {"[PUMPS]", InpSection::pumps},         {"[VALVES]", InpSection::valves},
    {"[STATUS]", InpSection::status},       {"[EMITTERS]", InpSection::emitters},
    {"[CURVES]", InpSection::curves},       {"[COORDINATES]", InpSection::coordinates},
    {"[VERTICES]", InpSection::vertices},   {"[PATTERNS]", InpSection::patterns},
    {"[REACTIONS]", InpSection::reactions}, {"[TIMES]", InpSection::times},
    {"[OPTIONS]", InpSection::options},     {"[ENERGY]", InpSection::energy},
};

// The section that a text names as its header; none for any other text.
InpSection sectionOf(std::string_view text) {
  for (const Header& header : kHeaders) {
    if (text == header.text) return header.section;
  }
  return InpSection::none;
}

// A header stands alone on its line, and the line has an end.
InpSection headerSection(std::string_view line) {
  if (!line.starts_with('[') || !line.ends_with('\n')) return InpSection::none;
  return sectionOf(line.substr(0, line.size() - 1));
}

struct Keyword {
  std::string_view word;
  double EpaSettings::*field;
};

constexpr Keyword kReactions[] = {
    {"OrderBulk", &EpaSettings::bulkOrder},
    {"GlobalBulk", &EpaSettings::globalBulk},
    {"GlobalWall", &EpaSettings::globalWall},
    {"LimitingPotential", &EpaSettings::limitingPotential},
    {"RoughnessCorrelation", &EpaSettings::roughnessCorrelation},
};
constexpr Keyword kOneWordOptions[] = {
    {"Viscosity", &EpaSettings::viscosity},     {"Accuracy", &EpaSettings::accuracy},
    {"Pattern", &EpaSettings::defaultPattern},  // a number here; a pattern's name reads as 0
    {"Diffusivity", &EpaSettings::diffusivity}, {"Tolerance", &EpaSettings::tolerance},
};
constexpr Keyword kTwoWordOptions[] = {
    {"SpecificGravity", &EpaSettings::specificGravity},
    {"DemandMultiplier", &EpaSettings::demandMultiplier},
    {"EmitterExponent", &EpaSettings::emitterExponent},
};
constexpr Keyword kEnergy[] = {
    {"Efficiency", &EpaSettings::globalEfficiency},
    {"Price", &EpaSettings::globalPrice},
    {"Charge", &EpaSettings::demandCharge},
};

struct TimeKeyword {
  std::string_view word;
  wide50 EpaSettings::*field;
};

constexpr TimeKeyword kTimes[] = {
    {"HydraulicTimestep", &EpaSettings::hydraulicStep},
    {"QualityTimestep", &EpaSettings::qualityStep},
    {"PatternTimestep", &EpaSettings::patternStep},
    {"PatternStart", &EpaSettings::patternStart},
    {"ReportTimestep", &EpaSettings::reportStep},
    {"ReportStart", &EpaSettings::reportStart},
    {"StartClockTime", &EpaSettings::startClock},
};

// True when the two words, joined without a blank, are `whole`.
bool joinTo(std::string_view first, std::string_view second, std::string_view whole) {
  return first.size() + second.size() == whole.size() && whole.starts_with(first) &&
         whole.ends_with(second);
}

void storeTime(wide50& field, std::string_view value) {
  field = std::u16string_view(NormalizeTime(platform::widen(value)));
}

// The kind that a comment line names, or null when the line names none.
const char16_t* curveKind(std::string_view line) {
  if (line.starts_with(";PU")) return u"PUMP";
  if (line.starts_with(";VO")) return u"VOLUME";
  if (line.starts_with(";EF")) return u"EFFICIENCY";
  if (line.starts_with(";HE")) return u"HEADLOSS";
  return nullptr;
}

}  // namespace

// --- sections ------------------------------------------------------------------------------------

InpScanner::InpScanner(std::string_view utf8, EpaNetwork& network, EpaSettings& settings)
    : lines_(utf8),
      network_(network),
      settings_(settings),
      juncsById_(network.juncs),
      pumpsById_(network.pumps),
      valvesById_(network.valves) {}

void InpScanner::run() {
  while (lines_.next()) {
    if (enterSection()) continue;
    if (lines_.line() == "\n") {
      section_ = InpSection::none;
    } else {
      readLine();
    }
  }
  pumpStatus_.apply(pumpsById_, network_.pumps);
  valveStatus_.apply(valvesById_, network_.valves);
}

// Takes the line at hand as a header; false when it is none.
bool InpScanner::enterSection() {
  const InpSection section = headerSection(lines_.line());
  switch (section) {
    case InpSection::none:
      return false;
    case InpSection::patterns:
      enterPatterns();
      return true;
    case InpSection::reactions:
      // The first is the table of coefficients by element, the second holds the global values.
      if (reactionsPassed_) section_ = section;
      reactionsPassed_ = true;
      return true;
    case InpSection::times:
    case InpSection::options:
    case InpSection::energy:
      section_ = section;
      return true;
    default:
      section_ = section;
      lines_.next();  // the column line
      return true;
  }
}

// Behind the column line stands the comment of the first pattern; without it there are no patterns.
void InpScanner::enterPatterns() {
  lines_.next();
  if (lines_.next() && lines_.line().starts_with(';')) section_ = InpSection::patterns;
}

void InpScanner::readLine() {
  switch (section_) {
    case InpSection::none:
      return;
    case InpSection::junctions:
      return readJunction();
    case InpSection::reservoirs:
      return readReservoir();
    case InpSection::tanks:
      return readTank();
    case InpSection::pipes:
      return readPipe();
    case InpSection::pumps:
      return readPump();
    case InpSection::valves:
      return readValve();
    case InpSection::coordinates:
      return readPoint(network_.coords);
    case InpSection::vertices:
      return readPoint(network_.vertices);
    case InpSection::status:
      return readStatus();
    case InpSection::curves:
      return readCurves();
    case InpSection::patterns:
      return readPattern();
    case InpSection::emitters:
      return readEmitter();
    case InpSection::reactions:
      return readKeywords(&InpScanner::takeReaction);
    case InpSection::times:
      return readKeywords(&InpScanner::takeTime);
    case InpSection::options:
      return readKeywords(&InpScanner::takeOption);
    case InpSection::energy:
      return readKeywords(&InpScanner::takeEnergy);
  }
}

// --- elements and points -------------------------------------------------------------------------

// Each line makes a record, even one without any token.

void InpScanner::readJunction() {
  EpaJunc& j = network_.juncs.emplace_back();
  InpTokens tokens = rowTokens();
  storeTokens(tokens, j.id, j.elev, j.demand, j.pattern);
  if (j.pattern == u"\n") j.pattern.clear();
}

void InpScanner::readReservoir() {
  EpaResv& r = network_.resvs.emplace_back();
  InpTokens tokens = rowTokens();
  storeTokens(tokens, r.id, r.head);
}

void InpScanner::readTank() {
  EpaTank& t = network_.tanks.emplace_back();
  InpTokens tokens = rowTokens();
  storeTokens(tokens, t.id, t.elev, t.initLevel, t.minLevel, t.maxLevel, t.diameter, t.minVol,
              t.volCurve);
}

void InpScanner::readPipe() {
  EpaPipe& p = network_.pipes.emplace_back();
  InpTokens tokens = rowTokens();
  storeTokens(tokens, p.id, p.node1, p.node2, p.length, p.diameter, p.roughness, p.minorLoss,
              p.status);
}

void InpScanner::readValve() {
  EpaValv& v = network_.valves.emplace_back();
  v.status = u"None";
  InpTokens tokens = rowTokens();
  storeTokens(tokens, v.id, v.node1, v.node2, v.diameter, v.type, v.setting, v.minorLoss);
}

// Keywords count at their positions only: a pattern clause without a speed clause before it is
// lost.
void InpScanner::readPump() {
  EpaPump& p = network_.pumps.emplace_back();
  p.status = u"Open";
  InpTokens tokens = rowTokens();
  storeTokens(tokens, p.id, p.node1, p.node2);
  const bool onPower = tokens.next() == "POWER";
  storeTokens(tokens, onPower ? p.power : p.headCurve);
  bool wanted = tokens.next() == "SPEED";
  std::string_view value = tokens.next();
  if (wanted) store(p.speed, value);
  wanted = tokens.next() == "PATTERN";
  value = tokens.next();
  if (wanted) store(p.speedPattern, value);
}

void InpScanner::readPoint(RecordList<EpaCoord>& points) {
  EpaCoord& c = points.emplace_back();
  InpTokens tokens = rowTokens();
  storeTokens(tokens, c.id, c.x, c.y);
}

// --- rows that act on elements read before
// ---------------------------------------------------------

void InpScanner::readStatus() {
  InpTokens tokens(lines_.line(), kKeywordDelimiters);
  const std::string_view first = tokens.next();
  const std::string_view value = tokens.next();
  if (value.empty()) return;
  wide256 id;
  wide50 status;
  store(id, first);
  store(status, value);
  pumpStatus_.set(pumpsById_, id, status);
  valveStatus_.set(valvesById_, id, status);
}

void InpScanner::readEmitter() {
  InpTokens tokens(lines_.line(), kKeywordDelimiters);
  const std::string_view first = tokens.next();
  const std::string_view value = tokens.next();
  if (value.empty()) return;
  wide256 id;
  store(id, first);
  const std::uint32_t group = juncsById_.find(id);
  if (group != IdIndex<EpaJunc>::kNone) {
    store(network_.juncs[juncsById_.first(group)].emitter, value);
  }
}

// --- patterns and curves -------------------------------------------------------------------------

// Rows up to the next comment or blank line are one pattern, whatever their ids; the last id
// counts. A comment line met here makes a pattern without multipliers that bears the previous id.
void InpScanner::readPattern() {
  if (!lines_.line().starts_with(';')) {
    do {
      InpTokens tokens(lines_.line(), kPatternDelimiters);
      storeTokens(tokens, pattern_.id);
      for (auto token = tokens.next(); !token.empty(); token = tokens.next()) {
        pattern_.multipliers.push_back(platform::wtof(token));
      }
    } while (lines_.next() && !lines_.line().starts_with(';') && !lines_.isBlank());
  }
  network_.patterns.push_back(pattern_);
  pattern_.multipliers.clear();
}

// Curves are told apart by the comment lines that name a kind; the last id among the rows counts.
void InpScanner::readCurves() {
  EpaCurve curve;
  do {
    const std::string_view line = lines_.line();
    if (line.starts_with(";ID")) continue;
    if (const char16_t* kind = curveKind(line)) {
      if (!curve.points.empty()) network_.curves.push_back(std::exchange(curve, EpaCurve()));
      curve.kind = kind;
      continue;
    }
    if (line.starts_with(';') || lines_.isBlank()) break;
    InpTokens tokens = rowTokens();
    storeTokens(tokens, curve.id);
    const double x = platform::wtof(tokens.next());
    const double y = platform::wtof(tokens.next());
    curve.points.push_back({x, y});
  } while (lines_.next());
  network_.curves.push_back(std::move(curve));
  section_ = InpSection::none;
}

// --- keyword sections ----------------------------------------------------------------------------

// Only a blank line ends these: headers are not looked for.
void InpScanner::readKeywords(void (InpScanner::*handle)(const Words&)) {
  do {
    InpTokens tokens(lines_.line(), kKeywordDelimiters);
    Words words;
    for (std::string_view& word : words) word = tokens.next();
    (this->*handle)(words);
  } while (lines_.next() && !lines_.isBlank());
}

void InpScanner::takeReaction(const Words& words) {
  const auto& [first, second, value, rest] = words;
  if (value.empty()) return;
  for (const Keyword& keyword : kReactions) {
    if (joinTo(first, second, keyword.word)) settings_.*keyword.field = platform::wtof(value);
  }
  if (joinTo(first, second, "OrderWall")) store(settings_.wallOrder, value);
}

void InpScanner::takeTime(const Words& words) {
  const auto& [first, second, third, rest] = words;
  if (first == "Duration") {
    if (!second.empty()) storeTime(settings_.duration, second);
    return;
  }
  if (third.empty()) return;
  for (const TimeKeyword& keyword : kTimes) {
    if (joinTo(first, second, keyword.word)) storeTime(settings_.*keyword.field, third);
  }
}

void InpScanner::takeOption(const Words& words) {
  const auto& [first, second, third, rest] = words;
  if (second.empty()) return;
  if (first == "Headloss") return store(settings_.headloss, second);
  if (first == "Unbalanced") return store(settings_.unbalanced, second);
  if (first == "Quality") return store(settings_.qualityParam, second);
  if (first == "Trials") {
    settings_.trials = platform::wtoi(platform::widen(second));
    return;
  }
  for (const Keyword& keyword : kOneWordOptions) {
    if (first == keyword.word) {
      settings_.*keyword.field = platform::wtof(second);
      return;
    }
  }
  if (third.empty()) return;
  for (const Keyword& keyword : kTwoWordOptions) {
    if (joinTo(first, second, keyword.word)) settings_.*keyword.field = platform::wtof(third);
  }
}

// "Global Efficiency", "Demand Charge": the first word may be anything but "Pump".
void InpScanner::takeEnergy(const Words& words) {
  const auto& [first, second, value, rest] = words;
  if (first == "Pump") return takePumpEnergy(words);
  if (value.empty()) return;
  for (const Keyword& keyword : kEnergy) {
    if (second == keyword.word) settings_.*keyword.field = platform::wtof(value);
  }
  if (second == "Pattern") store(settings_.energyPattern, value);
}

// Of several pumps with the id the last one is meant; a pump that has not been read is ignored.
void InpScanner::takePumpEnergy(const Words& words) {
  const auto& [first, second, keyword, value] = words;
  if (value.empty()) return;
  wide256 id;
  store(id, second);
  const std::uint32_t group = pumpsById_.find(id);
  if (group == IdIndex<EpaPump>::kNone) return;
  EpaPump& pump = network_.pumps[pumpsById_.last(group)];
  if (keyword == "Efficiency") store(pump.effCurve, value);
  if (keyword == "Price") store(pump.price, value);
  if (keyword == "Pattern") store(pump.pricePattern, value);
}

// --- room for the records ------------------------------------------------------------------------

namespace {

// Calls `visit(list)` with the list that the rows of a section go to, if there is one.
template <class Visit>
void withList(EpaNetwork& network, InpSection section, Visit visit) {
  switch (section) {
    case InpSection::junctions:
      return visit(network.juncs);
    case InpSection::reservoirs:
      return visit(network.resvs);
    case InpSection::tanks:
      return visit(network.tanks);
    case InpSection::pipes:
      return visit(network.pipes);
    case InpSection::pumps:
      return visit(network.pumps);
    case InpSection::valves:
      return visit(network.valves);
    case InpSection::coordinates:
      return visit(network.coords);
    case InpSection::vertices:
      return visit(network.vertices);
    default:
      return;
  }
}

}  // namespace

void reserveRows(std::string_view utf8, EpaNetwork& network) {
  std::array<std::size_t, static_cast<std::size_t>(InpSection::energy) + 1> rows{};
  auto section = InpSection::none;
  for (std::size_t at = 0; at < utf8.size();) {
    const std::size_t end = std::min(utf8.find('\n', at), utf8.size());
    std::string_view line = utf8.substr(at, end - at);
    at = end + 1;
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (line.empty()) {
      section = InpSection::none;
    } else if (line[0] == '[') {
      section = sectionOf(line);
    } else {
      ++rows[static_cast<std::size_t>(section)];
    }
  }
  for (std::size_t i = 0; i < rows.size(); ++i) {
    withList(network, static_cast<InpSection>(i), [&](auto& list) { list.reserve(rows[i]); });
  }
}

}  // namespace vessora
