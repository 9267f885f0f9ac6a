// Rows that come and go as a whole: new elements, what is gone, renames, patterns and curves.
#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "epanet/lexis.h"
#include "module/inp/full_rows.h"
#include "platform/format.h"
#include "platform/text.h"

namespace vessora {

using epanet::kNone;
using epanet::Mention;
using epanet::Quantity;
using epanet::Role;
using epanet::RowId;
using epanet::Section;
using epanet::Thing;
using epanet::ValveKind;
using schema::Field;

// --- new elements --------------------------------------------------------------------------------

void FullRows::add(const NewElement& element) {
  if (!entities_.read(element.entity)) return;
  if (entities_.entity().isNode()) {
    addNode(element, entities_.entity());
  } else {
    addLink(element, entities_.entity());
  }
}

void FullRows::addNode(const NewElement& element, const DrawnEntity& entity) {
  const std::string id = newName(element.name);
  const auto real = [&](Field field, Quantity quantity) {
    return number(quantity, entity.text(field));
  };
  std::vector<std::string> row{id};
  if (element.kind == &schema::kJunc) {
    row.push_back(real(Field::elevation, Quantity::elevation));
    row.push_back(real(Field::demand, Quantity::flow));
    if (const auto pattern = entity.text(Field::pattern); !pattern.empty()) {
      row.push_back(bytes(pattern));
    }
    editor_.addRow(Section::junctions, row);
    const std::string emitter = real(Field::emitter, Quantity::emitter);
    if (emitter != "0") editor_.addRow(Section::emitters, {id, emitter});
  } else if (element.kind == &schema::kResv) {
    row.push_back(real(Field::head, Quantity::elevation));
    if (const auto pattern = entity.text(Field::pattern); !pattern.empty()) {
      row.push_back(bytes(pattern));
    }
    editor_.addRow(Section::reservoirs, row);
  } else {
    for (const Field field :
         {Field::elevation, Field::initLevel, Field::minLevel, Field::maxLevel}) {
      row.push_back(real(field, Quantity::elevation));
    }
    row.push_back(real(Field::diameter, Quantity::tankDiameter));
    row.push_back(real(Field::minVolume, Quantity::volume));
    if (const auto curve = entity.text(Field::volumeCurve); !curve.empty()) {
      row.push_back(bytes(curve));
    }
    editor_.addRow(Section::tanks, row);
  }
  editor_.addRow(Section::coordinates,
                 {id, epanet::textOf(element.place.x), epanet::textOf(element.place.y)});
}

void FullRows::addLink(const NewElement& element, const DrawnEntity& entity) {
  const std::string id = newName(element.name);
  const auto real = [&](Field field, Quantity quantity) {
    return number(quantity, entity.text(field));
  };
  const std::u16string_view status = entity.text(Field::status);
  std::vector<std::string> row{id, bytes(element.node1), bytes(element.node2)};
  if (element.kind == &schema::kPipe) {
    row.push_back(real(Field::length, Quantity::length));
    row.push_back(real(Field::diameter, Quantity::pipeDiameter));
    row.push_back(real(Field::roughness, Quantity::roughness));
    row.push_back(real(Field::minorLoss, Quantity::none));
    row.push_back(status.empty()                                  ? "Open"
                  : platform::upper(status).starts_with(u"CLOSE") ? "Closed"
                                                                  : bytes(status));
    const std::string own = row.back();
    editor_.addRow(Section::pipes, row);
    if (own != "CV" && inStatusRange(id)) editor_.addRow(Section::status, {id, own});
  } else if (element.kind == &schema::kPump) {
    addPump(element, entity);
  } else {
    const ValveKind kind = valveKindOf(entity.text(Field::type));
    row.push_back(real(Field::diameter, Quantity::pipeDiameter));
    row.emplace_back(epanet::wordOf(kind));
    row.push_back(setting(kind, entity.text(Field::setting)));
    row.push_back(real(Field::minorLoss, Quantity::none));
    editor_.addRow(Section::valves, row);
    if (!status.empty() && !platform::equalNoCase(status, u"None")) {
      const bool closed = platform::upper(status).starts_with(u"CLOSE");
      editor_.addRow(Section::status, {id, closed ? "Closed" : "Open"});
    }
  }
  for (const AcGePoint3d& point : element.vertices) {
    editor_.addRow(Section::vertices, {id, epanet::textOf(point.x), epanet::textOf(point.y)});
  }
}

void FullRows::addPump(const NewElement& element, const DrawnEntity& entity) {
  const std::string id = bytes(element.name);
  const auto value = [&](Field field) {
    return platform::parseReal(entity.text(field)).value_or(0);
  };
  std::vector<std::string> row{id, bytes(element.node1), bytes(element.node2)};
  const auto clause = [&row](const char* word, const std::string& text) {
    row.emplace_back(word);
    row.push_back(text);
  };
  const std::string curve = bytes(entity.text(Field::headCurve));
  // What has a power runs on it, as the dialogs have it.
  if (value(Field::power) > 0) {
    clause("POWER", number(Quantity::power, value(Field::power)));
  } else if (!curve.empty()) {
    clause("HEAD", curve);
  }
  if (value(Field::speed) > 0) clause("SPEED", epanet::textOf(value(Field::speed)));
  if (const auto pattern = entity.text(Field::speedPattern); !pattern.empty()) {
    clause("PATTERN", bytes(pattern));
  }
  editor_.addRow(Section::pumps, row);
  if (platform::upper(entity.text(Field::status)).starts_with(u"CLOSE")) {
    editor_.addRow(Section::status, {id, "Closed"});
  } else if (inStatusRange(id)) {
    const double speed = value(Field::speed);
    editor_.addRow(Section::status, {id, epanet::textOf(speed > 0 ? speed : 1)});
  }
  const auto energy = [&](const char* word, const std::string& text) {
    editor_.addRow(Section::energy, {"Pump", id, word, text});
  };
  if (const auto own = entity.text(Field::efficiencyCurve); !own.empty()) {
    energy("Efficiency", bytes(own));
  }
  if (value(Field::price) > 0) energy("Price", epanet::textOf(value(Field::price)));
  if (const auto own = entity.text(Field::pricePattern); !own.empty())
    energy("Pattern", bytes(own));
}

// --- what is gone --------------------------------------------------------------------------------

// One mention of what is gone. The result is how many rows went with it.
int FullRows::drop(const Mention& mention, const std::u16string& name) {
  const RowId row = mention.at.row;
  if (editor_.removed(row)) return 0;
  switch (mention.role) {
    case Role::own:
    case Role::data:
      editor_.removeRow(row);
      return 1;
    case Role::clause: {
      const std::string reason = bytes(name) + " non esiste piu'";
      const Section section = network_.document().rows()[row].section;
      RowId first = row, last = row;
      // A rule without one of its clauses is another rule: it goes as a whole.
      if (section == Section::rules) {
        // Rules stand in the order of their rows.
        const auto after =
            std::upper_bound(network_.rules.begin(), network_.rules.end(), row,
                             [](RowId own, const epanet::Rule& rule) { return own < rule.first; });
        first = std::prev(after)->first;
        last = std::prev(after)->last;
      }
      for (RowId i = first; i <= last; ++i) {
        if (network_.document().rows()[i].kind == epanet::RowKind::data) {
          editor_.commentOut(i, reason);
        }
      }
      notices_.push_back({NoticeCode::actionGone, name, rowText(first)});
      return 0;
    }
    case Role::item:
      // Ends of ranges are compared, and need not exist.
      if (network_.document().rows()[row].section != Section::report) return 0;
      editor_.removeToken(row, mention.at.token);
      if (editor_.countKept(row) > 1) return 0;
      editor_.removeRow(row);
      return 1;
    case Role::anchor:
      editor_.removeToken(row, mention.at.token);
      return 0;
    case Role::option:
      editor_.commentOut(row, bytes(name) + " non esiste piu'");
      notices_.push_back({NoticeCode::actionGone, name, rowText(row)});
      return 0;
    default:
      return 0;  // ends of links are told where links are looked at
  }
}

void FullRows::remove(Thing thing, const std::vector<std::uint32_t>& gone) {
  if (gone.empty()) return;
  std::unordered_map<std::uint32_t, int> rows;
  for (const std::uint32_t index : gone) rows.emplace(index, 0);
  const auto nameOf = [&](std::uint32_t index) {
    return words_.text(thing == Thing::node ? network_.nodes[index].id : network_.links[index].id);
  };
  for (const Mention& mention : record_.mentions) {
    if (mention.thing != thing) continue;
    const auto found = rows.find(mention.index);
    if (found != rows.end()) found->second += drop(mention, nameOf(mention.index));
  }
  for (const std::uint32_t index : gone) {
    notices_.push_back(
        {NoticeCode::elementGone, nameOf(index), platform::format(u"%d", rows[index])});
  }
}

// --- renames -------------------------------------------------------------------------------------

namespace {

std::uint64_t keyOf(Thing thing, std::uint32_t index) {
  return static_cast<std::uint64_t>(thing) << 32 | index;
}

}  // namespace

void FullRows::rename(const std::vector<Rename>& renames) {
  for (const Rename& rename : renames) {
    const std::string id = bytes(rename.kept);
    const auto thing = static_cast<Thing>(rename.kind);
    const std::uint32_t index = thing == Thing::node      ? network_.findNode(id)
                                : thing == Thing::link    ? network_.findLink(id)
                                : thing == Thing::pattern ? network_.findPattern(id)
                                                          : network_.findCurve(id);
    if (index != kNone) renamed_[keyOf(thing, index)] = newName(rename.now);
  }
  if (renamed_.empty()) return;
  for (const Mention& mention : record_.mentions) {
    const auto found = renamed_.find(keyOf(mention.thing, mention.index));
    if (found == renamed_.end() || isRangeEnd(mention)) continue;
    editor_.setToken(mention.at.row, mention.at.token, found->second);
  }
  keepInRanges();
}

// Ranges take elements by their names: one that is called otherwise may fall out, or in.
bool FullRows::isRangeEnd(const Mention& mention) const {
  return mention.role == Role::item &&
         network_.document().rows()[mention.at.row].section != Section::report;
}

namespace {

// As the solver compares: as numbers where both ends begin with one above 0, else by bytes.
bool isBetween(std::string_view id, std::string_view first, std::string_view last) {
  const double low = epanet::leadingNumber(first), high = epanet::leadingNumber(last);
  const double own = epanet::leadingNumber(id);
  if (low > 0 && high > 0) return own >= low && own <= high;
  return id >= first && id <= last;
}

}  // namespace

// The ranges are looked up once: there may be as many new links as the network has rows.
bool FullRows::inStatusRange(std::string_view id) {
  if (!statusRanges_) {
    statusRanges_.emplace();
    epanet::Tokens tokens;
    const epanet::Document& document = network_.document();
    for (RowId row = 0; row < document.rows().size(); ++row) {
      const epanet::Row& own = document.rows()[row];
      if (own.section != Section::status || own.kind != epanet::RowKind::data) continue;
      document.tokens(row, tokens);
      if (tokens.count > 2) statusRanges_->emplace_back(tokens.text(0), tokens.text(1));
    }
  }
  return std::any_of(statusRanges_->begin(), statusRanges_->end(),
                     [id](const auto& range) { return isBetween(id, range.first, range.second); });
}

// What has been renamed gets rows of its own where a range decides, or would now.
void FullRows::keepInRanges() {
  for (const auto& [key, now] : renamed_) {
    const auto thing = static_cast<Thing>(key >> 32);
    const auto index = static_cast<std::uint32_t>(key);
    if (thing == Thing::link) {
      const epanet::Link& link = network_.links[index];
      if (link.statusByRange || inStatusRange(now))
        editor_.addRow(Section::status, {now, stateOf(link)});
    }
    if (thing == Thing::node) keepQuality(network_.nodes[index].id, now);
  }
}

void FullRows::keepQuality(std::string_view was, const std::string& now) {
  const epanet::RangeValue *before = nullptr, *after = nullptr;
  epanet::Tokens tokens;
  for (const epanet::RangeValue& range : network_.rangeValues) {
    if (range.what != epanet::RangeValue::What::quality) continue;
    const bool one = range.first.at == range.last.at;
    network_.document().tokens(range.row, tokens);
    if (one ? tokens.text(0) == was : isBetween(was, tokens.text(0), tokens.text(1)))
      before = &range;
    if (one ? tokens.text(0) == was : isBetween(now, tokens.text(0), tokens.text(1)))
      after = &range;
  }
  const double value = before ? before->value.value : 0;
  if (value == (after ? after->value.value : 0)) return;
  editor_.addRow(Section::quality, {now, epanet::textOf(value)});
}

std::string FullRows::idOf(const epanet::Node& node) const {
  const auto found = renamed_.find(keyOf(Thing::node, network_.findNode(node.id)));
  return found == renamed_.end() ? std::string(node.id) : found->second;
}
std::string FullRows::idOf(const epanet::Link& link) const {
  const auto found = renamed_.find(keyOf(Thing::link, network_.findLink(link.id)));
  return found == renamed_.end() ? std::string(link.id) : found->second;
}

// --- patterns, curves ----------------------------------------------------------------------------

namespace {

constexpr std::size_t kMultipliersARow = 6;

std::vector<std::vector<std::string>> patternRows(const std::string& id, const EpaPattern& pattern,
                                                  std::size_t from) {
  std::vector<std::vector<std::string>> rows;
  for (std::size_t i = from; i < pattern.multipliers.size(); ++i) {
    if ((i - from) % kMultipliersARow == 0) rows.push_back({id});
    rows.back().push_back(epanet::textOf(pattern.multipliers[i]));
  }
  return rows;
}

}  // namespace

void FullRows::changePattern(const ChangedSeries<EpaPattern>& change) {
  if (!change.now) {
    return removeSeries(Thing::pattern, change.index,
                        words_.text(network_.patterns[change.index].id));
  }
  const std::string id = bytes(change.now->id);
  if (change.index == kNone) {
    for (const auto& row : patternRows(id, *change.now, 0)) editor_.addRow(Section::patterns, row);
    return;
  }
  const auto& kept = network_.patterns[change.index].multipliers;
  const auto& now = change.now->multipliers;
  RowId last = epanet::kNoRow;
  for (std::size_t i = 0; i < std::min(kept.size(), now.size()); ++i) {
    last = kept[i].at.row;
    if (now[i] != kept[i].value) {
      editor_.setToken(last, kept[i].at.token, epanet::textOf(now[i]));
    }
  }
  for (std::size_t i = now.size(); i < kept.size(); ++i) {
    const bool whole = kept[i].at.token == 1;
    if (whole) {
      editor_.removeRow(kept[i].at.row);
    } else {
      editor_.removeToken(kept[i].at.row, kept[i].at.token);
    }
  }
  for (const auto& row : patternRows(id, *change.now, kept.size())) editor_.insertRow(last, row);
}

void FullRows::changeCurve(const ChangedSeries<EpaCurve>& change) {
  if (!change.now) {
    return removeSeries(Thing::curve, change.index, words_.text(network_.curves[change.index].id));
  }
  const std::string id = bytes(change.now->id);
  epanet::CurveUse use = epanet::CurveUse::none;
  if (change.index != kNone) {
    use = network_.curves[change.index].use;
  } else if (change.now->kind == u"PUMP") {
    use = epanet::CurveUse::pump;
  } else if (change.now->kind == u"EFFICIENCY") {
    use = epanet::CurveUse::efficiency;
  } else if (change.now->kind == u"VOLUME") {
    use = epanet::CurveUse::volume;
  } else if (change.now->kind == u"HEADLOSS") {
    use = epanet::CurveUse::headloss;
  }
  const auto& now = change.now->points;
  if (change.index == kNone) {
    editor_.addText(Section::curves, ";" + platform::narrow(change.now->kind.view()) + ":");
    for (const EpaCurvePoint& point : now) {
      editor_.addRow(Section::curves, {id, curveX(use, point.x), curveY(use, point.y)});
    }
    return;
  }
  const auto& kept = network_.curves[change.index].points;
  RowId last = epanet::kNoRow;
  const auto set = [this](const epanet::Number& number, const std::string& text) {
    editor_.setToken(number.at.row, number.at.token, text);
  };
  for (std::size_t i = 0; i < std::min(kept.size(), now.size()); ++i) {
    const auto& [x, y] = kept[i];
    last = x.at.row;
    if (forth_.curveX(use, x.value) != now[i].x) set(x, curveX(use, now[i].x));
    if (forth_.curveY(use, y.value) != now[i].y) set(y, curveY(use, now[i].y));
  }
  for (std::size_t i = now.size(); i < kept.size(); ++i) editor_.removeRow(kept[i].x.at.row);
  for (std::size_t i = kept.size(); i < now.size(); ++i) {
    editor_.insertRow(last, {id, curveX(use, now[i].x), curveY(use, now[i].y)});
  }
}

// The rows of a pattern or curve; whoever names a pattern does without it, whoever names a curve
// cannot, and is told.
void FullRows::removeSeries(Thing thing, std::uint32_t index, std::u16string_view name) {
  std::u16string users;
  int count = 0;
  for (const Mention& mention : record_.mentions) {
    if (mention.thing != thing || mention.index != index) continue;
    if (mention.role == Role::own) {
      editor_.removeRow(mention.at.row);
      continue;
    }
    if (editor_.removed(mention.at.row)) continue;
    if (count++ < 5) {
      if (!users.empty()) users += u"; ";
      users += rowText(mention.at.row);
    }
    if (thing == Thing::curve) continue;
    const Section section = network_.document().rows()[mention.at.row].section;
    if (section == Section::energy || section == Section::options) {
      editor_.removeRow(mention.at.row);
    } else if (section == Section::pumps) {
      editor_.removeToken(mention.at.row, mention.at.token - 1);
      editor_.removeToken(mention.at.row, mention.at.token);
    } else {
      editor_.removeToken(mention.at.row, mention.at.token);
    }
  }
  notices_.push_back({NoticeCode::seriesGone, std::u16string(name)});
  if (count == 0) return;
  notices_.push_back({thing == Thing::pattern ? NoticeCode::patternInUse : NoticeCode::curveInUse,
                      std::u16string(name), users});
}

}  // namespace vessora
