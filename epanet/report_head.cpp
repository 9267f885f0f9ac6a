#include "epanet/report_head.h"

#include <algorithm>
#include <charconv>
#include <vector>

#include "epanet/report_rows.h"
#include "platform/text.h"

namespace epanet {
namespace {

constexpr std::size_t kNone = std::string_view::npos;
using Words = std::vector<std::string_view>;

Words wordsOf(std::string_view line) {
  Words words;
  platform::BasicTokens<char> tokens(line, " \t");
  while (const auto word = tokens.next()) words.push_back(*word);
  return words;
}

bool take(std::string_view& text, std::string_view beginning) {
  if (!text.starts_with(beginning)) return false;
  text.remove_prefix(beginning.size());
  return true;
}

}  // namespace

// --- banners -------------------------------------------------------------------------------------

std::optional<Banner> bannerOf(std::string_view line) {
  if (!take(line, "  ")) return std::nullopt;
  Banner banner;
  for (const std::string_view statistic : {"AVERAGE", "MINIMUM", "MAXIMUM", "DIFFERENTIAL"}) {
    std::string_view rest = line;
    if (!take(rest, statistic) || !take(rest, " ")) continue;
    banner.period = statistic;
    line = rest;
    break;
  }
  banner.ofLinks = line.starts_with("Link");
  if (!take(line, "Node Results") && !take(line, "Link Results")) return std::nullopt;
  if (take(line, " at ")) {
    const std::size_t end = std::min(line.find(" hrs:"), line.find(" Hrs:"));
    if (end == kNone || end == 0 || !banner.period.empty()) return std::nullopt;
    banner.period = line.substr(0, end);
    line.remove_prefix(end + 4);
  }
  if (!take(line, ":")) return std::nullopt;
  return line.empty() || line == " (continued)" ? std::optional(banner) : std::nullopt;
}

// --- heads ---------------------------------------------------------------------------------------

namespace {

// How many dashes a line is made of; 0 when of anything else.
std::size_t dashesOf(std::string_view line) {
  if (!take(line, "  ") || line.find_first_not_of('-') != kNone) return 0;
  return line.size();
}

struct Name {
  std::string_view text;
  ReportColumn column;
};
constexpr Name kNodeNames[] = {
    {"Elevation", ReportColumn::elevation}, {"Demand", ReportColumn::demand},
    {"Head", ReportColumn::head},           {"Pressure", ReportColumn::pressure},
    {"Quality", ReportColumn::quality},
};
constexpr Name kLinkNames[] = {
    {"Length", ReportColumn::length},     {"Diameter", ReportColumn::diameter},
    {"Flow", ReportColumn::flow},         {"Velocity", ReportColumn::velocity},
    {"Headloss", ReportColumn::headloss}, {"Quality", ReportColumn::quality},
    {"State", ReportColumn::state},       {"Status", ReportColumn::state},
    {"Setting", ReportColumn::setting},   {"Reaction", ReportColumn::reaction},
    {"F-Factor", ReportColumn::friction}, {"VelocityUnit", ReportColumn::velocity},
};

// The quality has the name of what is followed, which may be that of another column.
ReportColumn columnOf(const ReportHead& head, std::string_view name) {
  const auto find = [&](const auto& names) {
    for (const Name& known : names) {
      if (known.text != name) continue;
      const bool taken = std::any_of(head.columns.begin(), head.columns.end(),
                                     [&](const auto& c) { return c.what == known.column; });
      return taken ? ReportColumn::quality : known.column;
    }
    return ReportColumn::quality;
  };
  return head.ofLinks ? find(kLinkNames) : find(kNodeNames);
}

std::string_view trimmed(std::string_view text) {
  const std::size_t from = text.find_first_not_of(" \t");
  return from == kNone ? std::string_view()
                       : text.substr(from, text.find_last_not_of(" \t") + 1 - from);
}

// A column's ten places of a head line; the last one's run to the end of the line.
std::string_view placeOf(std::string_view line, std::size_t from, std::size_t i, bool last) {
  from += 10 * i;
  return from >= line.size() ? std::string_view() : trimmed(line.substr(from, last ? kNone : 10));
}

}  // namespace

std::optional<ReportHead> headOf(const HeadLines& lines, bool ofLinks) {
  const std::size_t dashes = dashesOf(lines[0]);
  const std::string_view kind = ofLinks ? "  Link " : "  Node ";
  if (dashes < 26 || dashesOf(lines[3]) != dashes) return std::nullopt;
  ReportHead head;
  head.ofLinks = ofLinks;
  head.windows = lines[1].starts_with(kind) && lines[2].starts_with("  ID ");
  if (!head.windows && !lines[2].starts_with(kind)) return std::nullopt;

  Words names = wordsOf(lines[1]);
  if (head.windows) names.erase(names.begin());
  const std::size_t count = head.windows ? names.size() : (dashes - 16) / 10;
  if (count == 0 || count > kMostColumns) return std::nullopt;
  if (names.size() != count) {
    // A traced node whose id holds blanks.
    names.clear();
    for (std::size_t i = 0; i < count; ++i) {
      names.push_back(placeOf(lines[1], 17, i, i + 1 == count));
    }
  }
  for (std::size_t i = 0; i < count; ++i) {
    const std::string_view unit = placeOf(lines[2], head.windows ? 18 : 17, i, i + 1 == count);
    head.columns.push_back({columnOf(head, names[i]), std::string(names[i]), std::string(unit)});
  }
  return head;
}

// --- messages ------------------------------------------------------------------------------------

namespace {

constexpr std::string_view kElementKinds[] = {
    "Node", "Link", "Junction", "Reservoir", "Tank",  "Pipe", "Pump", "PRV",  "PSV",   "PBV",
    "FCV",  "TCV",  "GPV",      "PCV",       "Valve", "node", "link", "pump", "valve", "pipe"};

void readTime(ReportMessage& message) {
  const std::size_t at = message.words.rfind(" at ");
  if (at == kNone) return;
  const Words words = wordsOf(std::string_view(message.words).substr(at + 4));
  if (words.size() != 2 || !words[1].starts_with("hrs") || secondsOf(words[0]) < 0) return;
  message.time = words[0];
  message.words.resize(at);
}

void readElement(ReportMessage& message) {
  const Words words = wordsOf(message.words);
  for (std::size_t i = 0; i + 1 < words.size(); ++i) {
    if (std::find(std::begin(kElementKinds), std::end(kElementKinds), words[i]) ==
        std::end(kElementKinds)) {
      continue;
    }
    message.elementKind = words[i];
    message.element = words[i + 1];
    return;
  }
}

}  // namespace

std::optional<ReportMessage> messageOf(std::string_view line) {
  line = trimmed(line);
  ReportMessage message;
  if (!take(line, "WARNING:")) {
    take(line, "Input ");
    if (!take(line, "Error ")) return std::nullopt;
    const auto read = std::from_chars(line.data(), line.data() + line.size(), message.code);
    line.remove_prefix(static_cast<std::size_t>(read.ptr - line.data()));
    if (read.ec != std::errc() || !take(line, ":")) return std::nullopt;
    message.isError = true;
  }
  message.words = trimmed(line);
  readTime(message);
  readElement(message);
  return message;
}

}  // namespace epanet
