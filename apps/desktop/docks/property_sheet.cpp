#include "apps/desktop/docks/property_sheet.h"

#include <QSet>
#include <algorithm>

#include "apps/desktop/docks/field_rows.h"
#include "apps/desktop/text.h"
#include "cad/api/entities.h"
#include "cad/api/owners.h"
#include "platform/text.h"

namespace desktop {

using schema::Field;
using vessora::DrawnElement;

namespace {

constexpr std::size_t kMostElements = 5000;  // whose common values are looked for

// --- results -------------------------------------------------------------------------------------

class ResultRows {
 public:
  void add(const vessora::ListedElement& element, const std::u16string& network,
           const schema::Kind& kind) {
    const cad::Opened<AcDbEntity> entity(element.id);
    if (!entity) return;
    const schema::List& list =
        vessora::isNode(element.kind) ? schema::kNodeResult : schema::kLinkResult;
    const cad::Chain data(entity->xData(list.application));
    if (!data) return;
    for (const schema::Row& row : list.rows) {
      const resbuf* const item = data.item(row.place);
      if (!item) continue;
      Shown& shown = of(asLabel(nameOf(list, kind.layer + network, row.field)));
      if (acutKindOf(item->restype) == RbKind::real) {
        shown.take(item->resval.rreal);
      } else {
        shown.common.add(qt(data.text(row.place)));
      }
    }
  }

  std::vector<Property> rows() const {
    std::vector<Property> rows;
    for (const Shown& shown : shown_) {
      if (!shown.number && shown.common.value.isEmpty() && !shown.common.several) continue;
      Property property;
      property.label = shown.label;
      property.number = shown.number;
      property.value = shown.number ? shown.range() : shown.common.value;
      property.several = !shown.number && shown.common.several;
      rows.push_back(std::move(property));
    }
    return rows;
  }

 private:
  struct Shown {
    QString label;
    Common common;
    bool number = false;
    double low = 0, high = 0;
    void take(double value) {
      low = number ? std::min(low, value) : value;
      high = number ? std::max(high, value) : value;
      number = true;
    }
    static QString text(double value) { return QString::number(value, 'f', 3); }
    QString range() const {
      const QString a = text(low), b = text(high);
      return a == b ? a : QStringLiteral("%1 ÷ %2").arg(a, b);
    }
  };
  Shown& of(const QString& label) {
    for (Shown& shown : shown_) {
      if (shown.label == label) return shown;
    }
    shown_.push_back({label, {}});
    return shown_.back();
  }
  std::vector<Shown> shown_;
};

// --- entities ------------------------------------------------------------------------------------

Property fixedRow(const QString& label, const QString& value) {
  Property property;
  property.label = label;
  property.value = value;
  return property;
}
Property commonRow(const QString& label, const Common& common) {
  Property property = fixedRow(label, common.several ? QString() : common.value);
  property.several = common.several;
  return property;
}
Property heading(const QString& text) {
  Property property;
  property.kind = Property::Kind::heading;
  property.label = text;
  return property;
}

void addEntityRows(const cad::Drawing& drawing, const std::vector<std::uint32_t>& records,
                   std::vector<Property>& rows) {
  Common type, layer, colour, handle;
  for (const std::uint32_t record : records) {
    const cad::Opened<AcDbEntity> entity(drawing.idOf(record));
    if (!entity) continue;
    type.add(qt(entity->dxfName()));
    layer.add(qt(entity->layer()));
    colour.add(entity->colorIndex() == 256 ? words(u"dal layer")
                                           : QString::number(entity->colorIndex()));
    handle.add(QString::number(entity->handle(), 16).toUpper());
    if (type.several && layer.several && colour.several && handle.several) break;
  }
  if (!type.any) return;
  rows.push_back(heading(words(u"Oggetto")));
  rows.push_back(commonRow(words(u"Layer"), layer));
  rows.push_back(commonRow(words(u"Colore"), colour));
  rows.push_back(commonRow(words(u"Tipo DXF"), type));
  if (!handle.several) rows.push_back(commonRow(words(u"Handle"), handle));
}

void addPlaceRows(AcDbObjectId id, std::vector<Property>& rows) {
  const cad::Opened<AcDbBlockReference> block(id);
  if (!block) return;
  const AcGePoint3d at = block->position();
  for (const auto& [target, value] :
       {std::pair(Property::Target::x, at.x), std::pair(Property::Target::y, at.y)}) {
    Property property =
        fixedRow(target == Property::Target::x ? QStringLiteral("X [m]") : QStringLiteral("Y [m]"),
                 QString::number(value, 'f', 3));
    property.kind = Property::Kind::text;
    property.number = true;
    property.target = target;
    property.rule.entry = Entry::number;
    rows.push_back(std::move(property));
  }
}

QString wordOf(vessora::ElementKind kind) {
  constexpr const char16_t* kWords[] = {u"Nodo",     u"Serbatoio", u"Tank",
                                        u"Condotta", u"Pompa",     u"Valvola"};
  return words(kWords[static_cast<int>(kind)]);
}

std::vector<ElementPlace> elementsAmong(const Networks& networks,
                                        const std::vector<std::uint32_t>& records) {
  std::vector<ElementPlace> places;
  QSet<std::uint64_t> known;
  for (const std::uint32_t record : records) {
    const ElementPlace* const place = networks.placeOf(record);
    if (!place) continue;
    const std::uint64_t key = (std::uint64_t{place->network} << 32) | place->element;
    if (!known.contains(key)) places.push_back(*place);
    known.insert(key);
  }
  return places;
}

QString titleOf(const Networks& networks, const std::vector<ElementPlace>& elements,
                std::size_t records) {
  if (elements.size() == 1) {
    const vessora::ListedElement& one = networks.at(elements[0]);
    return wordOf(one.kind) + QLatin1Char(' ') + qt(one.name);
  }
  if (elements.empty()) return words(u"Oggetti: %1").arg(records);
  return words(u"Elementi: %1").arg(elements.size());
}

void addElementRows(const Networks& networks, const std::vector<ElementPlace>& elements,
                    std::vector<Property>& rows) {
  vessora::Jobs* const jobs = vessora::Jobs::find();
  if (elements.empty() || !jobs) return;
  if (elements.size() > kMostElements) {
    rows.push_back(heading(words(u"Troppi elementi (oltre %1)").arg(kMostElements)));
    return;
  }
  const std::uint32_t network = elements[0].network;
  const bool oneNetwork = std::all_of(elements.begin(), elements.end(),
                                      [&](ElementPlace e) { return e.network == network; });
  FieldRows fields(networks.all()[network], oneNetwork);
  ResultRows results;
  for (const ElementPlace place : elements) {
    const std::u16string& name = networks.all()[place.network].info.name;
    const auto element = jobs->readElement(name, networks.at(place).id);
    if (!element) continue;
    fields.add(*element);
    results.add(networks.at(place), name, kindOf(*element));
  }
  const bool one = elements.size() == 1;
  rows = fields.rows(one);
  if (one && vessora::isNode(networks.at(elements[0]).kind))
    addPlaceRows(networks.at(elements[0]).id, rows);
  std::vector<Property> shown = results.rows();
  if (shown.empty()) return;
  const QString period = qt(networks.all()[network].info.period);
  rows.push_back(
      heading(period.isEmpty() ? words(u"Risultati") : words(u"Risultati, %1").arg(period)));
  rows.insert(rows.end(), shown.begin(), shown.end());
}

}  // namespace

PropertySheet sheetOf(const cad::Drawing& drawing, const Networks& networks,
                      const std::vector<std::uint32_t>& records) {
  PropertySheet sheet;
  if (records.empty()) return sheet;
  sheet.elements = elementsAmong(networks, records);
  sheet.title = titleOf(networks, sheet.elements, records.size());
  addElementRows(networks, sheet.elements, sheet.rows);
  addEntityRows(drawing, records, sheet.rows);
  return sheet;
}

}  // namespace desktop
