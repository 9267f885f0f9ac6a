#include "epanet/output.h"

#include <cmath>
#include <cstring>
#include <utility>

#include "epanet/result_units.h"
#include "platform/text.h"

namespace epanet {

// The file is a row of little-endian words of four bytes and texts of fixed widths:
//   15 whole numbers; 3 title lines, 2 file names, name and unit of the quality; ids of nodes and
//   links; ends and types of links; nodes of tanks; areas of tanks, heights of nodes, lengths and
//   diameters of links; a record for each pump and a charge; the periods; 4 reaction rates, the
//   count of periods, the last warning, and the first number again.
namespace {

constexpr std::int32_t kMagic = 516114521;
constexpr std::size_t kHead = 15 * 4;
constexpr std::size_t kTexts = 3 * 80 + 2 * 260;
constexpr std::size_t kPumpRecord = 7 * 4;
constexpr std::size_t kEnd = 7 * 4;
constexpr std::size_t kIdWidth = 32, kOldIdWidth = 16;
constexpr int kLinkTypes = 10;

// Places of the whole numbers that begin the file.
enum Head {
  kVersion = 1,
  kNodes,
  kTanks,
  kLinks,
  kPumps,
  kValves,
  kQuality,
  kTraceNode,
  kFlowUnit,
  kPressureUnit,
  kStatistic,
  kStart,
  kStep,
  kDuration,
};

std::uint32_t wordAt(std::string_view bytes, std::size_t at) {
  std::uint32_t word = 0;
  for (std::size_t i = 4; i-- > 0;) word = word << 8 | static_cast<unsigned char>(bytes[at + i]);
  return word;
}

}  // namespace

std::int32_t Output::intAt(std::size_t at) const {
  return static_cast<std::int32_t>(wordAt(bytes_, at));
}

float Output::floatAt(std::size_t at) const {
  const std::uint32_t word = wordAt(bytes_, at);
  float value;
  static_assert(sizeof value == sizeof word);
  std::memcpy(&value, &word, sizeof value);
  return value;
}

std::string_view Output::textAt(std::size_t at, std::size_t width) const {
  const std::string_view field = std::string_view(bytes_).substr(at, width);
  return field.substr(0, field.find('\0'));
}

bool Output::looksLikeOne(std::string_view bytes) {
  return bytes.size() >= 4 && static_cast<std::int32_t>(wordAt(bytes, 0)) == kMagic;
}

// --- opening -------------------------------------------------------------------------------------

OpenedResults Output::open(std::string bytes) {
  std::shared_ptr<Output> output(new Output);
  output->bytes_ = std::move(bytes);
  OutputFault fault = output->readHead();
  if (fault == OutputFault::none) {
    fault = output->place(kIdWidth);
    if (fault != OutputFault::none) {
      const OutputFault old = output->place(kOldIdWidth);
      if (old == OutputFault::none) fault = old;
    }
  }
  if (fault != OutputFault::none) return {nullptr, fault};
  output->namePeriods();
  const std::string_view ids =
      std::string_view(output->bytes_).substr(output->idsAt_, output->endsAt_ - output->idsAt_);
  output->utf8_ = platform::isValidUtf8(ids);
  return {std::move(output)};
}

OutputFault Output::readHead() {
  if (bytes_.size() < kHead || !looksLikeOne(bytes_)) return OutputFault::tooShort;
  const auto at = [this](Head item) { return intAt(4 * static_cast<std::size_t>(item)); };
  version_ = at(kVersion);
  for (const Head count : {kNodes, kLinks, kTanks, kPumps, kValves}) {
    if (at(count) < 0) return OutputFault::wrongCounts;
  }
  nodes_ = static_cast<std::size_t>(at(kNodes));
  links_ = static_cast<std::size_t>(at(kLinks));
  tanks_ = static_cast<std::size_t>(at(kTanks));
  pumps_ = static_cast<std::size_t>(at(kPumps));
  if (nodes_ == 0 || tanks_ > nodes_ || pumps_ > links_) return OutputFault::wrongCounts;
  flowUnit_ = at(kFlowUnit);
  pressureUnit_ = at(kPressureUnit);
  const int quality = at(kQuality), statistic = at(kStatistic);
  if (flowUnitOf(flowUnit_).empty() || pressureUnitOf(pressureUnit_).empty() || quality < 0 ||
      quality > 3 || statistic < 0 || statistic > 4) {
    return OutputFault::wrongUnits;
  }
  quality_ = static_cast<OutputQuality>(quality);
  statistic_ = static_cast<OutputStatistic>(statistic);
  return OutputFault::none;
}

// Where everything is when ids are this wide. Counts are below 2^31, so that nothing overflows.
OutputFault Output::place(std::size_t idWidth) {
  static_assert(sizeof(std::size_t) == 8);
  idWidth_ = idWidth;
  idsAt_ = kHead + kTexts + 2 * idWidth;
  endsAt_ = idsAt_ + idWidth * (nodes_ + links_);
  typesAt_ = endsAt_ + 8 * links_;
  energyAt_ = typesAt_ + 4 * links_ + 8 * tanks_ + 4 * nodes_ + 8 * links_;
  periodsAt_ = energyAt_ + kPumpRecord * pumps_ + 4;
  if (bytes_.size() < periodsAt_) return OutputFault::tooShort;
  if (const OutputFault fault = checkElements(); fault != OutputFault::none) return fault;
  qualityUnit_ = textAt(idsAt_ - idWidth, idWidth);
  return checkEnd();
}

OutputFault Output::checkElements() const {
  const auto isNode = [this](std::size_t at) {
    const std::int32_t node = intAt(at);
    return node >= 1 && static_cast<std::size_t>(node) <= nodes_;
  };
  for (std::size_t i = 0; i < 2 * links_; ++i) {
    if (!isNode(endsAt_ + 4 * i)) return OutputFault::wrongLinks;
  }
  for (std::size_t i = 0; i < links_; ++i) {
    const std::int32_t type = intAt(typesAt_ + 4 * i);
    if (type < 0 || type >= kLinkTypes) return OutputFault::wrongLinks;
  }
  for (std::size_t i = 0; i < tanks_; ++i) {
    if (!isNode(typesAt_ + 4 * links_ + 4 * i)) return OutputFault::wrongLinks;
  }
  return OutputFault::none;
}

// How many whole periods there are: the end says it, and the size must agree. Without an end the
// size alone does.
OutputFault Output::checkEnd() {
  const std::size_t left = bytes_.size() - periodsAt_, whole = left / periodSize();
  const std::size_t end = bytes_.size() - kEnd;
  std::size_t count = whole;
  cut_ = left < kEnd || intAt(end + 24) != kMagic;
  warning_ = 0;
  if (!cut_) {
    const std::int32_t said = intAt(end + 16);
    if (said < 1) return OutputFault::tooShort;
    count = static_cast<std::size_t>(said);
    if (count != (left - kEnd) / periodSize() || count * periodSize() + kEnd != left) {
      return OutputFault::wrongSize;
    }
    warning_ = intAt(end + 20);
  }
  if (count == 0) return OutputFault::tooShort;
  periods_.resize(count);
  return OutputFault::none;
}

void Output::namePeriods() {
  constexpr const char* kStatistics[] = {"", "AVERAGE", "MINIMUM", "MAXIMUM", "DIFFERENTIAL"};
  if (statistic_ != OutputStatistic::none) {
    for (Period& period : periods_) period.name = kStatistics[static_cast<int>(statistic_)];
    return;
  }
  const std::int64_t start = intAt(4 * kStart), step = intAt(4 * kStep);
  // As in a report, the one period of a run without duration has no name.
  if (intAt(4 * kDuration) == 0 && periods_.size() == 1) return;
  for (std::size_t k = 0; k < periods_.size(); ++k) {
    const std::int64_t seconds = start + static_cast<std::int64_t>(k) * step;
    periods_[k] = {timeText(seconds < 0 ? 0 : seconds), seconds < 0 ? 0 : seconds};
  }
}

// --- values --------------------------------------------------------------------------------------

namespace {

std::optional<double> finite(float value) {
  return std::isfinite(value) ? std::optional<double>(value) : std::nullopt;
}

// The states that the solver keeps: up to 2 kinds of closed, 4 active, all others kinds of open.
std::optional<LinkState> stateOf(float code) {
  if (!std::isfinite(code)) return std::nullopt;
  if (code < 2.5F) return LinkState::closed;
  return code >= 3.5F && code < 4.5F ? LinkState::active : LinkState::open;
}

}  // namespace

PeriodValues Output::values(std::size_t k) const {
  const bool us = isUsFlowUnit(flowUnit_), quality = quality_ != OutputQuality::none;
  PeriodValues result;
  result.period = periods_[k];
  result.hasNodes = result.hasLinks = true;
  result.units.demand = result.units.flow = flowUnitOf(flowUnit_);
  result.units.head = us ? "ft" : "m";
  result.units.pressure = pressureUnitOf(pressureUnit_);
  result.units.velocity = us ? "fps" : "m/s";
  result.units.headloss = us ? "ft/kft" : "m/km";
  if (quality) result.units.nodeQuality = qualityUnit_;

  const std::size_t nodesAt = periodsAt_ + k * periodSize(), linksAt = nodesAt + 16 * nodes_;
  const auto value = [this](std::size_t at, std::size_t count, std::size_t column, std::size_t i) {
    return floatAt(at + 4 * (column * count + i));
  };
  result.nodes.reserve(nodes_);
  for (std::size_t i = 0; i < nodes_; ++i) {
    const auto of = [&](std::size_t column) { return finite(value(nodesAt, nodes_, column, i)); };
    result.nodes.add(nodeId(i), {of(0), of(1), of(2), quality ? of(3) : std::nullopt});
  }
  result.links.reserve(links_);
  for (std::size_t i = 0; i < links_; ++i) {
    const auto of = [&](std::size_t column) { return finite(value(linksAt, links_, column, i)); };
    result.links.add(linkId(i), {of(0), of(1), of(2), quality ? of(3) : std::nullopt, of(5),
                                 stateOf(value(linksAt, links_, 4, i)), isPipe(i)});
  }
  result.nodes.index();
  result.links.index();
  return result;
}

std::vector<PumpUse> Output::pumpUses() const {
  std::vector<PumpUse> uses;
  for (std::size_t i = 0; i < pumps_; ++i) {
    const std::size_t at = energyAt_ + kPumpRecord * i;
    const std::int32_t link = intAt(at);
    // A run that was stopped may not have come to this.
    if (link < 1 || static_cast<std::size_t>(link) > links_) continue;
    PumpUse use{link - 1, {}};
    for (std::size_t f = 0; f < use.figures.size(); ++f) use.figures[f] = floatAt(at + 4 + 4 * f);
    uses.push_back(use);
  }
  return uses;
}

}  // namespace epanet
