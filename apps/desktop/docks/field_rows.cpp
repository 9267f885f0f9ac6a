#include "apps/desktop/docks/field_rows.h"

#include <algorithm>

#include "apps/desktop/text.h"

namespace desktop {

using schema::Field;
using vessora::DrawnElement;

namespace {

// "150.000" says no more than "150".
QString withoutZeros(QString number) {
  if (!number.contains(QLatin1Char('.')) || number.contains(QLatin1Char('e'), Qt::CaseInsensitive))
    return number;
  while (number.endsWith(QLatin1Char('0'))) number.chop(1);
  if (number.endsWith(QLatin1Char('.'))) number.chop(1);
  return number;
}

std::u16string unitOfSetting(const DrawnElement& element) {
  const std::u16string type = textOf(element, Field::type);
  if (type == u"PRV" || type == u"PSV" || type == u"PBV") return u"m";
  return type == u"FCV" ? u"l/s" : u"";
}

// A value that is not among the choices is one of them all the same.
void close(Property& p, bool open) {
  p.kind = open ? Property::Kind::choice : Property::Kind::fixed;
  if (open && !p.several && !p.choices.contains(p.value)) p.choices.push_front(p.value);
}
void choose(Property& p, std::span<const char16_t* const> values, bool open) {
  for (const char16_t* value : values) p.choices.push_back(qt(value));
  close(p, open);
}
}  // namespace

QString asLabel(const cad::Session::DataName& name) {
  QString label = qt(name.name);
  if (!label.isEmpty()) label[0] = label[0].toUpper();
  return name.unit.empty() ? label : QStringLiteral("%1 [%2]").arg(label, qt(name.unit));
}

cad::Session::DataName nameOf(const schema::List& list, const std::u16string& layer, Field field) {
  const auto& name = cad::Session::instance().nameOfData;
  for (const schema::Row& row : list.rows) {
    if (row.field != field || !name) continue;
    const auto found =
        row.tag.empty() ? name(layer, list.application, row.place) : name(layer, row.tag, 0);
    if (found) return *found;
  }
  return {};
}

FieldRows::FieldRows(const ShownNetwork& network, bool oneNetwork)
    : network_(network.info.name), oneNetwork_(oneNetwork), jobs_(*vessora::Jobs::find()) {}

void FieldRows::add(const DrawnElement& element) {
  if (!first_) begin(element);
  const bool sameKind = kindOf(element).layer == kindOf(*first_).layer;
  for (Row& row : fields_) {
    if (!sameKind || row.rule.entry == Entry::setting)
      row.shared = row.shared && labelOf(element, row.rule) == row.label;
    if (row.shared) row.common.add(qt(textOf(element, row.rule.field)));
  }
  oneKind_ = oneKind_ && sameKind;
}

void FieldRows::begin(const DrawnElement& element) {
  first_ = element;
  formula_ = jobs_.settingsOf(network_).headloss.str();
  for (const FieldRule& rule : rulesOf(element))
    fields_.push_back({rule, labelOf(element, rule), {}});
}

QString FieldRows::labelOf(const DrawnElement& element, const FieldRule& rule) const {
  const auto rules = rulesOf(element);
  if (std::none_of(rules.begin(), rules.end(), [&](const FieldRule& own) {
        return own.field == rule.field && own.entry == rule.entry;
      })) {
    return {};
  }
  if (rule.entry == Entry::material) return words(u"Materiale");
  const schema::Kind& kind = kindOf(element);
  cad::Session::DataName name = nameOf(kind.data, kind.layer + network_, rule.field);
  if (rule.field == Field::roughness && formula_ == u"D-W") name.unit = u"mm";
  if (rule.entry == Entry::setting) name.unit = unitOfSetting(element);
  return asLabel(name);
}

std::vector<Property> FieldRows::rows(bool one) const {
  std::vector<Property> rows;
  for (const Row& row : fields_) {
    if (!row.shared || (row.rule.entry == Entry::name && !one)) continue;
    Property property;
    property.rule = row.rule;
    property.label = row.label;
    property.several = row.common.several;
    if (!property.several) property.value = row.common.value;
    decide(property);
    if (property.number) property.value = withoutZeros(property.value);
    rows.push_back(std::move(property));
  }
  return rows;
}

// --- how they are edited -------------------------------------------------------------------------

void FieldRows::decide(Property& p) const {
  p.kind = Property::Kind::text;
  switch (p.rule.entry) {
    case Entry::fixed:
      p.kind = Property::Kind::fixed;
      p.tip = words(u"Si cambia disegnando il ramo tra altri nodi.");
      return;
    case Entry::name:
      return;
    case Entry::number:
    case Entry::optional:
      p.number = true;
      return;
    case Entry::setting:
      return decideSetting(p);
    case Entry::status:
      return choose(p, statusesOf(*first_), oneKind_);
    case Entry::valveType:
      return choose(p, valveTypes(), true);
    case Entry::pattern:
      return choosePattern(p);
    case Entry::volumeCurve:
      return chooseCurve(p, u"VOLUME");
    case Entry::pumpCurve:
      return chooseCurve(p, u"PUMP");
    case Entry::efficiencyCurve:
      return chooseCurve(p, u"EFFICIENCY");
    case Entry::material:
      return chooseMaterial(p);
  }
}

void FieldRows::decideSetting(Property& p) const {
  if (!std::holds_alternative<vessora::EpaValv>(first_->record)) return;
  p.number = textOf(*first_, Field::type) != u"GPV";
  if (!p.number) chooseCurve(p, u"HEADLOSS");
}

void FieldRows::choosePattern(Property& p) const {
  p.choices.push_back(QString());
  if (oneNetwork_) {
    for (const auto& pattern : jobs_.patternsOf(network_))
      p.choices.push_back(qt(pattern.id.view()));
  }
  close(p, oneNetwork_);
}

void FieldRows::chooseCurve(Property& p, std::u16string_view kind) const {
  p.choices.push_back(QString());
  if (oneNetwork_) {
    for (const auto& curve : jobs_.curvesOf(network_)) {
      if (curve.kind == kind) p.choices.push_back(qt(curve.id.view()));
    }
  }
  close(p, oneNetwork_);
}

void FieldRows::chooseMaterial(Property& p) const {
  const bool open = oneNetwork_ && formula_ == u"D-W";
  p.choices.push_back(QString());
  if (open) {
    for (const auto& row : jobs_.readMaterialTable().rows) p.choices.push_back(qt(row.name.view()));
    p.tip = words(u"Il materiale porta la sua scabrezza.");
  } else {
    p.tip = words(u"Un materiale si assegna alle reti con la formula D-W.");
  }
  close(p, open);
}

}  // namespace desktop
