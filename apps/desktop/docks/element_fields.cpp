#include "apps/desktop/docks/element_fields.h"

#include <QLocale>
#include <cmath>

#include "apps/desktop/text.h"
#include "platform/text.h"

namespace desktop {

using schema::Field;
using namespace vessora;  // records

namespace {

constexpr FieldRule kName{Field::id, Entry::name};
constexpr FieldRule kFirstNode{Field::node1, Entry::fixed}, kSecondNode{Field::node2, Entry::fixed};

constexpr FieldRule kJuncRules[] = {kName,
                                    {Field::elevation, Entry::number},
                                    {Field::demand, Entry::number},
                                    {Field::pattern, Entry::pattern},
                                    {Field::emitter, Entry::number, 0}};
constexpr FieldRule kResvRules[] = {
    kName, {Field::head, Entry::number}, {Field::pattern, Entry::pattern}};
constexpr FieldRule kTankRules[] = {kName,
                                    {Field::elevation, Entry::number},
                                    {Field::initLevel, Entry::number},
                                    {Field::minLevel, Entry::number},
                                    {Field::maxLevel, Entry::number},
                                    {Field::diameter, Entry::number, 0, true},
                                    {Field::minVolume, Entry::number, 0},
                                    {Field::volumeCurve, Entry::volumeCurve}};
constexpr FieldRule kPipeRules[] = {kName,
                                    kFirstNode,
                                    kSecondNode,
                                    {Field::length, Entry::number, 0, true},
                                    {Field::diameter, Entry::number, 0, true},
                                    {Field::roughness, Entry::number, 0, true},
                                    {Field::type, Entry::material},
                                    {Field::minorLoss, Entry::number, 0},
                                    {Field::status, Entry::status}};
constexpr FieldRule kValvRules[] = {kName,
                                    kFirstNode,
                                    kSecondNode,
                                    {Field::type, Entry::valveType},
                                    {Field::setting, Entry::setting},
                                    {Field::diameter, Entry::number, 0, true},
                                    {Field::minorLoss, Entry::number, 0},
                                    {Field::status, Entry::status}};
constexpr FieldRule kPumpRules[] = {kName,
                                    kFirstNode,
                                    kSecondNode,
                                    {Field::headCurve, Entry::pumpCurve},
                                    {Field::power, Entry::optional, 0},
                                    {Field::speed, Entry::optional, 0},
                                    {Field::speedPattern, Entry::pattern},
                                    {Field::status, Entry::status},
                                    {Field::efficiencyCurve, Entry::efficiencyCurve},
                                    {Field::price, Entry::optional},
                                    {Field::pricePattern, Entry::pattern}};

// --- where a record keeps a field; null where it has none

wide50* placeOf(EpaJunc& r, Field f) {
  switch (f) {
    case Field::elevation:
      return &r.elev;
    case Field::demand:
      return &r.demand;
    case Field::emitter:
      return &r.emitter;
    case Field::pattern:
      return &r.pattern;
    default:
      return nullptr;
  }
}
wide50* placeOf(EpaResv& r, Field f) {
  return f == Field::head ? &r.head : f == Field::pattern ? &r.pattern : nullptr;
}
wide50* placeOf(EpaTank& r, Field f) {
  switch (f) {
    case Field::elevation:
      return &r.elev;
    case Field::initLevel:
      return &r.initLevel;
    case Field::minLevel:
      return &r.minLevel;
    case Field::maxLevel:
      return &r.maxLevel;
    case Field::diameter:
      return &r.diameter;
    case Field::minVolume:
      return &r.minVol;
    case Field::volumeCurve:
      return &r.volCurve;
    default:
      return nullptr;
  }
}
wide50* placeOf(EpaPipe& r, Field f) {
  switch (f) {
    case Field::length:
      return &r.length;
    case Field::diameter:
      return &r.diameter;
    case Field::roughness:
      return &r.roughness;
    case Field::minorLoss:
      return &r.minorLoss;
    case Field::status:
      return &r.status;
    default:
      return nullptr;
  }
}
wide50* placeOf(EpaValv& r, Field f) {
  switch (f) {
    case Field::diameter:
      return &r.diameter;
    case Field::type:
      return &r.type;
    case Field::setting:
      return &r.setting;
    case Field::minorLoss:
      return &r.minorLoss;
    case Field::status:
      return &r.status;
    default:
      return nullptr;
  }
}
wide50* placeOf(EpaPump& r, Field f) {
  switch (f) {
    case Field::headCurve:
      return &r.headCurve;
    case Field::power:
      return &r.power;
    case Field::speed:
      return &r.speed;
    case Field::status:
      return &r.status;
    case Field::speedPattern:
      return &r.speedPattern;
    case Field::efficiencyCurve:
      return &r.effCurve;
    case Field::price:
      return &r.price;
    case Field::pricePattern:
      return &r.pricePattern;
    default:
      return nullptr;
  }
}

template <class Record>
wide256* namePlaceOf(Record& record, Field field) {
  if (field == Field::id) return &record.id;
  if constexpr (requires { record.node1; }) {
    if (field == Field::node1) return &record.node1;
    if (field == Field::node2) return &record.node2;
  }
  return nullptr;
}

template <class Text>
bool put(Text& place, std::u16string_view text) {
  place = text;
  return place.view() == text;
}

bool isMaterial(const DrawnElement& element, Field field) {
  return field == Field::type && std::holds_alternative<EpaPipe>(element.record);
}

}  // namespace

const schema::Kind& kindOf(const DrawnElement& element) {
  constexpr const schema::Kind* kKinds[] = {&schema::kJunc, &schema::kResv, &schema::kTank,
                                            &schema::kPipe, &schema::kValv, &schema::kPump};
  return *kKinds[element.record.index()];
}

std::span<const FieldRule> rulesOf(const DrawnElement& element) {
  const std::span<const FieldRule> rules[] = {kJuncRules, kResvRules, kTankRules,
                                              kPipeRules, kValvRules, kPumpRules};
  return rules[element.record.index()];
}

std::span<const char16_t* const> statusesOf(const DrawnElement& element) {
  static constexpr const char16_t* kPipe[] = {u"Open", u"Closed", u"CV"};
  static constexpr const char16_t* kPump[] = {u"Open", u"Closed"};
  static constexpr const char16_t* kValve[] = {u"None", u"Open", u"Closed"};
  if (std::holds_alternative<EpaPipe>(element.record)) return kPipe;
  if (std::holds_alternative<EpaPump>(element.record)) return kPump;
  return kValve;
}

std::span<const char16_t* const> valveTypes() {
  static constexpr const char16_t* kTypes[] = {u"PRV", u"PSV", u"PBV", u"FCV", u"TCV", u"GPV"};
  return kTypes;
}

std::u16string textOf(const DrawnElement& element, Field field) {
  if (isMaterial(element, field)) return element.material;
  // Only looked at.
  auto& same = const_cast<DrawnElement&>(element);
  return std::visit(
      [field](auto& record) {
        if (const wide256* const name = namePlaceOf(record, field)) return name->str();
        const wide50* const place = placeOf(record, field);
        return place ? place->str() : std::u16string();
      },
      same.record);
}

bool setText(DrawnElement& element, Field field, std::u16string_view text) {
  if (isMaterial(element, field)) {
    element.material = text;
    return text.size() < wide256::capacity;
  }
  return std::visit(
      [&](auto& record) {
        if (wide256* const name = namePlaceOf(record, field)) return put(*name, text);
        wide50* const place = placeOf(record, field);
        return place && put(*place, text);
      },
      element.record);
}

std::optional<std::u16string> numberOf(const QString& typed) {
  QString text = typed.trimmed();
  if (text.count(QLatin1Char(',')) == 1 && !text.contains(QLatin1Char('.')))
    text.replace(QLatin1Char(','), QLatin1Char('.'));
  bool known = false;
  const double value = QLocale::c().toDouble(text, &known);
  // A separator of thousands is a doubtful comma.
  if (!known || !std::isfinite(value) || text.contains(QLatin1Char(','))) return {};
  return wide(text);
}

QString faultOf(const FieldRule& rule, std::u16string_view number) {
  const double value = platform::wtof(number);
  if (!rule.least || (rule.above ? value > *rule.least : value >= *rule.least)) return {};
  const QString least = QString::number(*rule.least);
  return rule.above ? words(u"Serve un numero maggiore di %1.").arg(least)
                    : words(u"Serve un numero maggiore o uguale a %1.").arg(least);
}

}  // namespace desktop
