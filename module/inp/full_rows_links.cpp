// Values of links that the text has, put into the rows that decide.
#include <algorithm>

#include "epanet/lexis.h"
#include "module/inp/full_rows.h"
#include "platform/format.h"
#include "platform/text.h"

namespace vessora {

using epanet::kNone;
using epanet::Link;
using epanet::LinkKind;
using epanet::Place;
using epanet::Quantity;
using epanet::RowId;
using epanet::Section;
using epanet::Status;
using epanet::ValveKind;
using schema::Field;

namespace {

bool isClosed(std::u16string_view status) { return platform::upper(status).starts_with(u"CLOSE"); }
bool isOpen(std::u16string_view status) { return platform::upper(status).starts_with(u"OPEN"); }

double valueOf(std::u16string_view text) {
  return platform::parseReal(text).value_or(platform::wtof(text));
}
std::string plain(std::u16string_view text) { return epanet::textOf(valueOf(text)); }

const ChangedField* fieldOf(const ChangedElement& element, Field field) {
  for (const ChangedField& own : element.fields) {
    if (own.field == field) return &own;
  }
  return nullptr;
}

}  // namespace

ValveKind valveKindOf(std::u16string_view text) {
  for (int i = 0; i < 7; ++i) {
    const auto kind = static_cast<ValveKind>(i);
    if (epanet::isWord(platform::narrow(text), epanet::wordOf(kind))) return kind;
  }
  return ValveKind::prv;
}

void FullRows::changeLink(const Link& link, const ChangedElement& element) {
  for (const ChangedField& field : element.fields) {
    if (field.field == Field::node1) {
      editor_.setToken(link.row, 1, bytes(field.now));
    } else if (field.field == Field::node2) {
      editor_.setToken(link.row, 2, bytes(field.now));
    } else if (link.kind == LinkKind::pipe) {
      changePipe(link, element, field);
    } else if (link.kind == LinkKind::pump) {
      changePump(link, field);
    } else {
      changeValve(link, field);
    }
  }
  if (link.kind != LinkKind::pipe) changeState(link, element);
  if (element.vertices) changeVertices(link, *element.vertices);
}

// --- pipes ---------------------------------------------------------------------------------------

// A row that ends early gets what the solver takes for what is missing.
void FullRows::setPipeColumn(const Link& link, int column, const std::string& text) {
  const epanet::Pipe& pipe = network_.pipe(link);
  const double defaults[] = {pipe.length.value, pipe.diameter.value, pipe.roughness.value};
  for (int i = editor_.countTokens(link.row); i < std::min(column, 6); ++i) {
    editor_.setToken(link.row, i, epanet::textOf(defaults[i - 3]));
  }
  setColumn(link.row, column, text);
}

void FullRows::changePipe(const Link& link, const ChangedElement& element,
                          const ChangedField& field) {
  const epanet::Pipe& pipe = network_.pipe(link);
  const auto set = [&](int column, Quantity quantity) {
    setPipeColumn(link, column, number(quantity, field.now));
  };
  // A status may stand where the loss would be, and gives way to one.
  const ChangedField* const loss = fieldOf(element, Field::minorLoss);
  const bool gives = pipe.status && pipe.status.token == 6 && loss && plain(loss->now) != "0";
  switch (field.field) {
    case Field::length:
      return set(3, Quantity::length);
    case Field::diameter:
      return set(4, Quantity::pipeDiameter);
    case Field::roughness:
      return set(5, Quantity::roughness);
    case Field::minorLoss: {
      if (gives) {
        epanet::Tokens tokens;
        network_.document().tokens(link.row, tokens);
        editor_.setToken(link.row, 7, tokens.text(6));
      } else if (pipe.status && pipe.status.token == 6) {
        return;
      }
      return setPipeColumn(link, 6, plain(field.now));
    }
    case Field::status: {
      const bool valve = platform::equalNoCase(field.now, u"CV");
      if (!valve && !isClosed(field.now) && !isOpen(field.now)) {
        notices_.push_back({NoticeCode::pipeStatusUnknown, words_.text(link.id), field.now});
      }
      const std::string now = valve ? "CV" : isClosed(field.now) ? "Closed" : "Open";
      if (link.statusAt && !valve) return changeStatus(link, now);
      // The solver takes no status of a check valve elsewhere.
      if (link.statusAt && !link.statusByRange) editor_.removeRow(link.statusAt.row);
      if (pipe.status) return editor_.setToken(link.row, gives ? 7 : pipe.status.token, now);
      return setPipeColumn(link, 7, now);
    }
    default:
      return;
  }
}

// --- status, speed, setting ----------------------------------------------------------------------

// The row that decides; behind a range of links a row of its own does.
void FullRows::changeStatus(const Link& link, const std::string& now) {
  if (link.statusAt && !link.statusByRange) {
    return editor_.setToken(link.statusAt.row, link.statusAt.token, now);
  }
  editor_.addRow(Section::status, {idOf(link), now});
}

std::string FullRows::stateOf(const Link& link) const {
  if (link.status == Status::closed) return "Closed";
  if (link.kind == LinkKind::pump) return epanet::textOf(network_.pump(link).speed.value);
  if (link.status != Status::active) return "Open";
  return epanet::textOf(network_.valve(link).setting.value);
}

bool FullRows::hasMoreStatusRows(const Link& link) {
  if (!statusRows_) {
    statusRows_.emplace();
    for (const epanet::Mention& mention : record_.mentions) {
      const Section section = network_.document().rows()[mention.at.row].section;
      if (section != Section::status) continue;
      // The ends of a range stand for all links.
      ++(*statusRows_)[mention.role == epanet::Role::item ? kNone : mention.index];
    }
  }
  const auto rows = [&](std::uint32_t index) {
    const auto found = statusRows_->find(index);
    return found == statusRows_->end() ? 0 : found->second;
  };
  return rows(kNone) > 0 || rows(network_.findLink(link.id)) > 1;
}

void FullRows::changeState(const Link& link, const ChangedElement& element) {
  const ChangedField* const status = fieldOf(element, Field::status);
  if (link.kind == LinkKind::pump) {
    const ChangedField* const speed = fieldOf(element, Field::speed);
    if (!status && !speed) return;
    const epanet::Pump& pump = network_.pump(link);
    const bool closed = status ? isClosed(status->now) : link.status == Status::closed;
    std::string now = pump.speed.at ? epanet::textOf(pump.speed.value) : std::string();
    // A drawn 0 is no speed, unless the file has it.
    if (speed) {
      const bool none = valueOf(speed->now) == 0 && pump.speed.value != 0;
      now = none ? std::string() : plain(speed->now);
    }
    return changePumpState(link, closed, now);
  }
  const ChangedField* const type = fieldOf(element, Field::type);
  const ChangedField* const given = fieldOf(element, Field::setting);
  if (!status && !type && !given) return;
  const epanet::Valve& valve = network_.valve(link);
  const ValveKind kind = type ? valveKindOf(type->now) : valve.type;
  std::string now;  // empty: the curve that it has
  if (given) {
    now = setting(kind, given->now);
  } else if (kind != valve.type) {
    // The number that is drawn is one of the new type now.
    now = setting(kind, shortest(forth_.setting(valve.type, valve.setting.value)));
  } else if (kind != ValveKind::gpv) {
    now = epanet::textOf(valve.setting.value);
  }
  std::u16string word = link.status == Status::closed ? u"Closed"
                        : link.status == Status::open ? u"Open"
                                                      : u"None";
  if (status) word = status->now;
  changeValveState(link, word, now, kind);
}

void FullRows::changePumpState(const Link& link, bool closed, const std::string& speed) {
  const epanet::Pump& pump = network_.pump(link);
  const double value = speed.empty() ? 1 : epanet::numberOf(speed).value_or(1);
  const bool sameState = closed == (link.status == Status::closed);
  if (closed) {
    // Of a closed pump its own row alone tells the speed.
    if (!sameState || pump.speed.at.row != pump.ownSpeed.at.row) changeStatus(link, "Closed");
    if (value != pump.ownSpeed.value) changePumpWord(link, "SPEED", pump.ownSpeed.at, speed);
    return;
  }
  if (!link.statusAt) return changePumpWord(link, "SPEED", pump.ownSpeed.at, speed);
  if (sameState && value == pump.speed.value) return;
  const bool byNumber = pump.speed.at == link.statusAt && pump.speed.value != 1;
  changeStatus(link, value == 1 && !byNumber ? "Open" : epanet::textOf(value));
}

void FullRows::changeValveState(const Link& link, std::u16string_view status,
                                const std::string& setting, ValveKind kind) {
  const epanet::Valve& valve = network_.valve(link);
  const bool active = !isClosed(status) && !isOpen(status);
  const bool wasActive = link.status == Status::active;
  const bool byCurve = kind == ValveKind::gpv;
  if (active && link.statusAt && !byCurve) {
    // A number in [STATUS] is a setting and makes the valve active.
    if (wasActive || link.statusByRange || hasMoreStatusRows(link)) {
      return changeStatus(link, setting);
    }
  }
  if (active && link.statusAt && !link.statusByRange) editor_.removeRow(link.statusAt.row);
  if (!active && (wasActive || isClosed(status) != (link.status == Status::closed))) {
    changeStatus(link, isClosed(status) ? "Closed" : "Open");
  }
  const bool words = byCurve || valve.type == ValveKind::gpv;
  const double number = epanet::numberOf(setting).value_or(0);
  if (!setting.empty() && (words || number != valve.ownSetting.value)) {
    setColumn(link.row, 5, setting);
  }
}

// --- pumps ---------------------------------------------------------------------------------------

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
    editor_.addRow(Section::energy, {"Pump", idOf(link), word, now});
  }
}

void FullRows::changePump(const Link& link, const ChangedField& field) {
  const epanet::Pump& pump = network_.pump(link);
  const std::string name = bytes(field.now);
  // 0 stands for no value of a number that the extended data keep.
  const double value = valueOf(field.now);
  switch (field.field) {
    case Field::headCurve:
      return changePumpWord(link, "HEAD", pump.headCurve.at, name);
    case Field::power:
      return changePumpWord(link, "POWER", pump.power.at,
                            value == 0 ? std::string() : number(Quantity::power, field.now));
    case Field::speedPattern:
      return changePumpWord(link, "PATTERN", pump.pattern.at, name);
    case Field::efficiencyCurve:
      return changeEnergy(link, "Efficiency", pump.efficiencyCurve.at, name);
    case Field::price:
      return changeEnergy(link, "Price", pump.price.at,
                          value <= 0 ? std::string() : plain(field.now));
    case Field::pricePattern:
      return changeEnergy(link, "Pattern", pump.pricePattern.at, name);
    default:
      return;  // status and speed go together
  }
}

// --- valves --------------------------------------------------------------------------------------

void FullRows::changeValve(const Link& link, const ChangedField& field) {
  switch (field.field) {
    case Field::diameter:
      return setColumn(link.row, 3, number(Quantity::pipeDiameter, field.now));
    case Field::type:
      return setColumn(link.row, 4, std::string(epanet::wordOf(valveKindOf(field.now))));
    case Field::minorLoss:
      return setColumn(link.row, 6, plain(field.now));
    default:
      return;  // status and setting go together
  }
}

// --- courses -------------------------------------------------------------------------------------

void FullRows::changeVertices(const Link& link, const AcGePoint3dArray& vertices) {
  std::uint32_t kept = link.firstVertex;
  RowId last = epanet::kNoRow;
  std::vector<std::vector<std::string>> more;
  for (const AcGePoint3d& point : vertices) {
    const std::string x = epanet::textOf(point.x), y = epanet::textOf(point.y);
    if (kept == kNone) {
      more.push_back({idOf(link), x, y});
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
