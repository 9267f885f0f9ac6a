// What the data of a drawn network's entities are called, for lists of entities.
#include "cad/family/family_commands.h"
#include "platform/text.h"
#include "platform/words.h"
#include "schema/element.h"

namespace cad {
namespace {

using schema::Field;

struct FieldWords {
  Field field;
  const char16_t *name, *unit;
};
// The units of drawings. What depends on formula or kind (roughness, setting) has none here.
constexpr FieldWords kFields[] = {
    {Field::id, u"nome", u""},
    {Field::node1, u"primo nodo", u""},
    {Field::node2, u"secondo nodo", u""},
    {Field::elevation, u"quota", u"m"},
    {Field::head, u"carico", u"m"},
    {Field::demand, u"domanda", u"l/s"},
    {Field::emitter, u"emettitore", u""},
    {Field::pattern, u"pattern", u""},
    {Field::initLevel, u"livello iniziale", u"m"},
    {Field::minLevel, u"livello minimo", u"m"},
    {Field::maxLevel, u"livello massimo", u"m"},
    {Field::minVolume, u"volume minimo", u"m³"},
    {Field::volumeCurve, u"curva dei volumi", u""},
    {Field::length, u"lunghezza", u"m"},
    {Field::roughness, u"scabrezza", u""},
    {Field::minorLoss, u"perdita concentrata", u""},
    {Field::status, u"stato", u""},
    {Field::type, u"tipo", u""},
    {Field::setting, u"regolazione", u""},
    {Field::headCurve, u"curva caratteristica", u""},
    {Field::power, u"potenza", u"kW"},
    {Field::speed, u"velocità relativa", u""},
    {Field::speedPattern, u"pattern di velocità", u""},
    {Field::efficiencyCurve, u"curva di rendimento", u""},
    {Field::price, u"prezzo", u""},
    {Field::pricePattern, u"pattern del prezzo", u""},
    {Field::pressure, u"pressione", u"m"},
    {Field::quality, u"qualità", u""},
    {Field::flow, u"portata", u"l/s"},
    {Field::velocity, u"velocità", u"m/s"},
    {Field::headloss, u"perdita di carico", u"m/km"},
    {Field::period, u"periodo", u""},
};

Session::DataName named(const schema::Kind& kind, Field field) {
  // The one quantity of two sizes: tanks are metres across, pipes and valves millimetres.
  if (field == Field::diameter) {
    return {platform::words(u"diametro"), &kind == &schema::kTank ? u"m" : u"mm"};
  }
  for (const FieldWords& own : kFields) {
    if (own.field == field) return {platform::words(std::u16string_view(own.name)), own.unit};
  }
  return {};
}

const schema::Kind* kindOf(std::u16string_view layer) {
  for (const schema::Kind* kind : {&schema::kJunc, &schema::kResv, &schema::kTank, &schema::kPipe,
                                   &schema::kPump, &schema::kValv}) {
    const std::u16string_view prefix = kind->layer;
    if (layer.size() > prefix.size() &&
        platform::equalNoCase(layer.substr(0, prefix.size()), prefix)) {
      return kind;
    }
  }
  return nullptr;
}

// What stands as an attribute too is told there.
std::optional<Session::DataName> inData(const schema::Kind& kind, std::u16string_view application,
                                        int place) {
  if (application == schema::app::kMaterial)
    return Session::DataName{platform::words(u"materiale"), u""};
  if (application == schema::app::kKept) return Session::DataName{};
  for (const schema::List* list :
       {&kind.data, &schema::kNodeResult, &schema::kLinkResult, &schema::kPeriod}) {
    if (application != list->application) continue;
    for (const schema::Row& row : list->rows) {
      if (row.place != place) continue;
      // The name stands on the polyline beside a symbol too, where there is no attribute.
      if (row.field == Field::id && !row.tag.empty())
        return Session::DataName{platform::words(u"nome nei dati"), u""};
      return row.tag.empty() ? named(kind, row.field) : Session::DataName{};
    }
  }
  return {};
}

std::optional<Session::DataName> nameOfData(std::u16string_view layer, std::u16string_view key,
                                            int place) {
  const schema::Kind* const kind = kindOf(layer);
  if (!kind) return {};
  if (place > 0) return inData(*kind, key, place);
  for (const schema::Row& row : kind->data.rows) {
    if (row.tag == key) return named(*kind, row.field);
  }
  return {};
}

}  // namespace

void nameDataOfNetworks(Session& session) { session.nameOfData = nameOfData; }

}  // namespace cad
