#include "module/inp/full_rows.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "epanet/lexis.h"
#include "platform/format.h"
#include "platform/text.h"

namespace vessora {

using epanet::kNone;
using epanet::Link;
using epanet::LinkKind;
using epanet::Node;
using epanet::NodeKind;
using epanet::Place;
using epanet::Quantity;
using epanet::RowId;
using epanet::Section;
using epanet::Thing;
using epanet::ValveKind;
using schema::Field;

FullRows::FullRows(std::u16string_view name, const epanet::Network& network,
                   const epanet::Record& record, const epanet::Units& units, epanet::Editor& editor,
                   Notices& notices)
    : network_(network),
      record_(record),
      words_(network.document().isUtf8()),
      back_(epanet::drawingUnits(units), units),
      editor_(editor),
      notices_(notices),
      entities_(name) {}

void FullRows::write(const Comparison& comparison) {
  // Who names something else now overrules what the name has become.
  rename(comparison.renames);
  for (const ChangedElement& element : comparison.changed) change(element);
  remove(Thing::node, comparison.goneNodes);
  remove(Thing::link, comparison.goneLinks);
  for (const auto& pattern : comparison.patterns) changePattern(pattern);
  for (const auto& curve : comparison.curves) changeCurve(curve);
  for (const NewElement& element : comparison.added) add(element);
  writeSettings(network_, comparison.settings, editor_);
}

// --- numbers and words ---------------------------------------------------------------------------

std::string FullRows::number(Quantity quantity, double value) const {
  return epanet::textOf(back_(quantity, value));
}
std::string FullRows::number(Quantity quantity, std::u16string_view text) const {
  return number(quantity, platform::parseReal(text).value_or(platform::wtof(text)));
}
std::string FullRows::setting(ValveKind kind, std::u16string_view text) const {
  if (kind == ValveKind::gpv) return bytes(text);
  return epanet::textOf(
      back_.setting(kind, platform::parseReal(text).value_or(platform::wtof(text))));
}

namespace {

bool isClosed(std::u16string_view status) { return platform::upper(status).starts_with(u"CLOSE"); }
std::string statusWord(std::u16string_view status) {
  return isClosed(status) ? "Closed" : platform::narrow(status);
}

std::string plain(std::u16string_view text) {
  return epanet::textOf(platform::parseReal(text).value_or(platform::wtof(text)));
}

ValveKind valveKindOf(std::u16string_view text) {
  for (int i = 0; i < 7; ++i) {
    const auto kind = static_cast<ValveKind>(i);
    if (epanet::isWord(platform::narrow(text), epanet::wordOf(kind))) return kind;
  }
  return ValveKind::prv;
}

}  // namespace

// --- kept elements -------------------------------------------------------------------------------

// What an element's row says where it ends early.
void FullRows::setColumn(RowId row, int column, const std::string& text) {
  epanet::Tokens tokens;
  network_.document().tokens(row, tokens);
  for (int i = tokens.count; i < column; ++i) editor_.setToken(row, i, "0");
  editor_.setToken(row, column, text);
}

// Takes the last word of a row away, or leaves what stands for none where others follow.
void FullRows::clearColumn(RowId row, int column, const char* stand) {
  epanet::Tokens tokens;
  network_.document().tokens(row, tokens);
  if (column + 1 == tokens.count) {
    editor_.removeToken(row, column);
  } else if (column < tokens.count) {
    editor_.setToken(row, column, stand);
  }
}

void FullRows::change(const ChangedElement& element) {
  const bool node = element.kind == &schema::kJunc || element.kind == &schema::kResv ||
                    element.kind == &schema::kTank;
  if (node) {
    const Node& own = network_.nodes[element.index];
    for (const ChangedField& field : element.fields) {
      if (own.kind == NodeKind::tank) {
        changeTank(own, field);
      } else {
        changeJunction(own, field);
      }
    }
    if (!element.place) return;
    const std::string x = epanet::textOf(element.place->x), y = epanet::textOf(element.place->y);
    if (own.x.at) {
      editor_.setToken(own.x.at.row, own.x.at.token, x);
      editor_.setToken(own.y.at.row, own.y.at.token, y);
    } else {
      editor_.addRow(Section::coordinates, {std::string(own.id), x, y});
    }
    return;
  }
  const Link& link = network_.links[element.index];
  for (const ChangedField& field : element.fields) {
    if (field.field == Field::node1) {
      editor_.setToken(link.row, 1, bytes(field.now));
    } else if (field.field == Field::node2) {
      editor_.setToken(link.row, 2, bytes(field.now));
    } else if (link.kind == LinkKind::pipe) {
      changePipe(link, field);
    } else if (link.kind == LinkKind::pump) {
      changePump(link, field);
    } else {
      changeValve(link, element, field);
    }
  }
  if (element.vertices) changeVertices(link, *element.vertices);
}

// Of reservoirs too: their one value and pattern stand in the same places, less the demand.
void FullRows::changeJunction(const Node& node, const ChangedField& field) {
  const int patternColumn = node.kind == NodeKind::junction ? 3 : 2;
  switch (field.field) {
    case Field::elevation:
    case Field::head:
      return setColumn(node.row, 1, number(Quantity::elevation, field.now));
    case Field::demand:
      return changeDemand(node, back_(Quantity::flow, platform::parseReal(field.now).value_or(0)));
    case Field::emitter: {
      const std::string now = number(Quantity::emitter, field.now);
      if (node.emitter.at) return editor_.setToken(node.emitter.at.row, node.emitter.at.token, now);
      if (now != "0") editor_.addRow(Section::emitters, {std::string(node.id), now});
      return;
    }
    case Field::pattern:
      if (node.firstDemand != kNone) {
        const RowId row = network_.demands[node.firstDemand].base.at.row;
        if (field.now.empty()) return clearColumn(row, 2, "");
        return setColumn(row, 2, bytes(field.now));
      }
      if (field.now.empty()) return clearColumn(node.row, patternColumn, "");
      return setColumn(node.row, patternColumn, bytes(field.now));
    default:
      return;
  }
}

// The drawn demand stands for all categories: they keep their shares. Where they sum up to nothing
// the first one makes the difference.
void FullRows::changeDemand(const Node& node, double now) {
  if (node.firstDemand == kNone) return setColumn(node.row, 2, epanet::textOf(now));
  const double was = network_.demandOf(node);
  const epanet::Demand& first = network_.demands[node.firstDemand];
  if (was == 0) {
    const double base = epanet::roundedTo9(first.base.value + now);
    return editor_.setToken(first.base.at.row, first.base.at.token, epanet::textOf(base));
  }
  if (now == was) return;
  int categories = 0;
  for (std::uint32_t i = node.firstDemand; i != kNone; i = network_.demands[i].next) {
    const epanet::Number& base = network_.demands[i].base;
    const double scaled = epanet::roundedTo9(base.value * (now / was));
    editor_.setToken(base.at.row, base.at.token, epanet::textOf(scaled));
    ++categories;
  }
  if (categories > 1) {
    notices_.push_back(
        {NoticeCode::demandScaled, words_.text(node.id), platform::format(u"%d", categories)});
  }
}

void FullRows::changeTank(const Node& node, const ChangedField& field) {
  const auto set = [&](int column, Quantity quantity) {
    setColumn(node.row, column, number(quantity, field.now));
  };
  switch (field.field) {
    case Field::elevation:
      return set(1, Quantity::elevation);
    case Field::initLevel:
      return set(2, Quantity::elevation);
    case Field::minLevel:
      return set(3, Quantity::elevation);
    case Field::maxLevel:
      return set(4, Quantity::elevation);
    case Field::diameter:
      return set(5, Quantity::tankDiameter);
    case Field::minVolume:
      return set(6, Quantity::volume);
    case Field::volumeCurve:
      if (field.now.empty()) return clearColumn(node.row, 7, "*");
      return setColumn(node.row, 7, bytes(field.now));
    default:
      return;
  }
}

// --- links ---------------------------------------------------------------------------------------

void FullRows::changePipe(const Link& link, const ChangedField& field) {
  const epanet::Pipe& pipe = network_.pipe(link);
  const auto set = [&](int column, Quantity quantity) {
    setColumn(link.row, column, number(quantity, field.now));
  };
  switch (field.field) {
    case Field::length:
      return set(3, Quantity::length);
    case Field::diameter:
      return set(4, Quantity::pipeDiameter);
    case Field::roughness:
      return set(5, Quantity::roughness);
    case Field::minorLoss: {
      const std::string loss = plain(field.now);
      // A status may stand where the loss would be.
      if (pipe.status && pipe.status.token == 6) {
        if (loss == "0") return;
        epanet::Tokens tokens;
        network_.document().tokens(link.row, tokens);
        editor_.setToken(link.row, 7, tokens.text(6));
      }
      return setColumn(link.row, 6, loss);
    }
    case Field::status: {
      const bool valve = platform::equalNoCase(field.now, u"CV");
      if (link.statusAt && !valve && !link.statusByRange) {
        return editor_.setToken(link.statusAt.row, link.statusAt.token, statusWord(field.now));
      }
      if (link.statusByRange && !valve) return changeStatus(link, field.now);
      // The solver takes no status of a check valve elsewhere.
      if (link.statusAt && !link.statusByRange) editor_.removeRow(link.statusAt.row);
      if (pipe.status) {
        return editor_.setToken(link.row, pipe.status.token, statusWord(field.now));
      }
      return setColumn(link.row, 7, statusWord(field.now));
    }
    default:
      return;
  }
}

void FullRows::changeStatus(const Link& link, std::u16string_view now) {
  if (link.statusAt && !link.statusByRange) {
    return editor_.setToken(link.statusAt.row, link.statusAt.token, statusWord(now));
  }
  editor_.addRow(Section::status, {std::string(link.id), statusWord(now)});
}

// "HEAD 1", "POWER 20", "SPEED 1.2", "PATTERN 3" in a pump's row, in any order.
void FullRows::changePumpWord(const Link& link, const char* word, const Place& at,
                              const std::string& now) {
  if (at && now.empty()) {
    editor_.removeToken(at.row, at.token - 1);
    editor_.removeToken(at.row, at.token);
  } else if (at) {
    editor_.setToken(at.row, at.token, now);
  } else if (!now.empty()) {
    const int last = editor_.countTokens(link.row);
    editor_.setToken(link.row, last, word);
    editor_.setToken(link.row, last + 1, now);
  }
}

void FullRows::changeEnergy(const Link& link, const char* word, const Place& at,
                            const std::string& now) {
  if (at && now.empty()) {
    editor_.removeRow(at.row);
  } else if (at) {
    editor_.setToken(at.row, at.token, now);
  } else if (!now.empty()) {
    editor_.addRow(Section::energy, {"Pump", std::string(link.id), word, now});
  }
}

void FullRows::changePump(const Link& link, const ChangedField& field) {
  const epanet::Pump& pump = network_.pump(link);
  const std::string name = bytes(field.now);
  // 0 stands for no value of a number that the extended data keep.
  const double value = platform::parseReal(field.now).value_or(0);
  const std::string real = value == 0 ? std::string() : plain(field.now);
  switch (field.field) {
    case Field::headCurve:
      return changePumpWord(link, "HEAD", pump.headCurve.at, name);
    case Field::power:
      return changePumpWord(link, "POWER", pump.power.at,
                            value == 0 ? std::string() : number(Quantity::power, field.now));
    case Field::speed:
      // [STATUS] may have set the speed; then its row decides.
      if (pump.speed.at && pump.speed.at.row != link.row && !link.statusByRange && value != 0) {
        return editor_.setToken(pump.speed.at.row, pump.speed.at.token, real);
      }
      return changePumpWord(link, "SPEED", pump.ownSpeed.at, real);
    case Field::speedPattern:
      return changePumpWord(link, "PATTERN", pump.pattern.at, name);
    case Field::efficiencyCurve:
      return changeEnergy(link, "Efficiency", pump.efficiencyCurve.at, name);
    case Field::price:
      return changeEnergy(link, "Price", pump.price.at, value < 0 ? "" : real);
    case Field::pricePattern:
      return changeEnergy(link, "Pattern", pump.pricePattern.at, name);
    case Field::status: {
      const bool opens = !isClosed(field.now);
      // "Open" in [STATUS] sets the speed to 1: a speed of its own says the same and stays.
      if (opens && link.statusAt && !link.statusByRange && pump.ownSpeed.value != 1) {
        return editor_.setToken(link.statusAt.row, link.statusAt.token,
                                epanet::textOf(pump.ownSpeed.value));
      }
      return changeStatus(link, field.now);
    }
    default:
      return;
  }
}

void FullRows::changeValve(const Link& link, const ChangedElement& element,
                           const ChangedField& field) {
  const epanet::Valve& valve = network_.valve(link);
  ValveKind kind = valve.type;
  bool retyped = false;
  for (const ChangedField& other : element.fields) {
    if (other.field != Field::type) continue;
    kind = valveKindOf(other.now);
    retyped = kind != valve.type;
  }
  const bool ruled = valve.setting.at && valve.setting.at.row != link.row && !link.statusByRange;
  switch (field.field) {
    case Field::diameter:
      return setColumn(link.row, 3, number(Quantity::pipeDiameter, field.now));
    case Field::type:
      return setColumn(link.row, 4, std::string(epanet::wordOf(kind)));
    case Field::setting:
      if (ruled && !retyped) {
        return editor_.setToken(valve.setting.at.row, valve.setting.at.token,
                                setting(kind, field.now));
      }
      return setColumn(link.row, 5, setting(kind, field.now));
    case Field::minorLoss:
      return setColumn(link.row, 6, plain(field.now));
    case Field::status:
      if (!platform::equalNoCase(field.now, u"None")) return changeStatus(link, field.now);
      if (!link.statusAt) return;
      if (link.statusByRange) {
        return editor_.addRow(Section::status,
                              {std::string(link.id), epanet::textOf(valve.ownSetting.value)});
      }
      return editor_.removeRow(link.statusAt.row);
    default:
      return;
  }
}

void FullRows::changeVertices(const Link& link, const AcGePoint3dArray& vertices) {
  std::uint32_t kept = link.firstVertex;
  RowId last = epanet::kNoRow;
  std::vector<std::vector<std::string>> more;
  for (const AcGePoint3d& point : vertices) {
    const std::string x = epanet::textOf(point.x), y = epanet::textOf(point.y);
    if (kept == kNone) {
      more.push_back({std::string(link.id), x, y});
      continue;
    }
    const epanet::Vertex& own = network_.vertices[kept];
    if (point.x != own.x.value) editor_.setToken(own.x.at.row, own.x.at.token, x);
    if (point.y != own.y.value) editor_.setToken(own.y.at.row, own.y.at.token, y);
    last = own.x.at.row;
    kept = own.next;
  }
  for (; kept != kNone; kept = network_.vertices[kept].next) {
    editor_.removeRow(network_.vertices[kept].x.at.row);
  }
  for (const auto& row : more) {
    if (last == epanet::kNoRow) {
      editor_.addRow(Section::vertices, row);
    } else {
      editor_.insertRow(last, row);
    }
  }
}

}  // namespace vessora
