#include "module/inp/drawn_element.h"

#include <algorithm>

#include "epanet/lexis.h"
#include "platform/text.h"

namespace vessora {

using schema::Field;
using schema::Kind;
using schema::Row;

const DrawnEntity::Value* DrawnEntity::value(Field field) const {
  std::size_t at = 0;
  for (const Row& row : kind->data.rows) {
    if (row.field == field) return &values[at];
    ++at;
  }
  return nullptr;
}

std::u16string_view DrawnEntity::text(Field field) const {
  const Value* own = value(field);
  if (!own) return {};
  return own->onAttribute ? own->attribute : own->data;
}

std::u16string_view DrawnEntity::name() const {
  const Value* own = value(Field::id);
  if (!own) return {};
  return own->onData ? own->data : own->attribute;
}

bool DrawnEntities::read(AcDbObjectId id) {
  const Opened<AcDbEntity> entity(id);
  if (auto* const block = entity.as<AcDbBlockReference>()) return readBlock(block);
  if (auto* const polyline = entity.as<AcDb3dPolyline>()) return readPolyline(polyline);
  return false;
}

bool DrawnEntities::readBlock(AcDbBlockReference* block) {
  const std::u16string layer = block->layer();
  const struct {
    const std::u16string& layer;
    const Kind& kind;
  } kKinds[] = {{layers_.junc, schema::kJunc},
                {layers_.resv, schema::kResv},
                {layers_.tank, schema::kTank},
                {layers_.pump, schema::kPump},
                {layers_.valv, schema::kValv}};
  const auto own = std::find_if(std::begin(kKinds), std::end(kKinds),
                                [&](const auto& known) { return known.layer == layer; });
  if (own == std::end(kKinds)) return false;
  entity_.id = block->objectId();
  entity_.kind = &own->kind;
  entity_.isCourse = false;
  entity_.position = block->position();
  entity_.points.clear();
  readData(block);
  std::array<std::u16string_view, 8> tags;
  std::array<std::u16string, 8> texts;
  std::array<std::size_t, 8> places;
  int count = 0;
  for (std::size_t i = 0; i < entity_.kind->data.rows.size(); ++i) {
    const Row& row = entity_.kind->data.rows[i];
    entity_.values[i].onAttribute = false;
    if (row.tag.empty()) continue;
    tags[static_cast<std::size_t>(count)] = row.tag;
    places[static_cast<std::size_t>(count++)] = i;
  }
  const unsigned found = readAttributes(block, tags.data(), texts.data(), count);
  for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
    DrawnEntity::Value& value = entity_.values[places[i]];
    value.onAttribute = (found >> i & 1U) != 0;
    value.attribute = std::move(texts[i]);
  }
  return true;
}

bool DrawnEntities::readPolyline(AcDb3dPolyline* polyline) {
  const std::u16string layer = polyline->layer();
  const Kind* const kind = layer == layers_.pipe   ? &schema::kPipe
                           : layer == layers_.pump ? &schema::kPump
                           : layer == layers_.valv ? &schema::kValv
                                                   : nullptr;
  if (!kind) return false;
  entity_.id = polyline->objectId();
  entity_.kind = kind;
  entity_.isCourse = kind != &schema::kPipe;
  entity_.points.clear();
  ReadVertices(polyline, entity_.points);
  readData(polyline);
  for (DrawnEntity::Value& value : entity_.values) value.onAttribute = false;
  return entity_.hasData || entity_.tie;
}

void DrawnEntities::readData(AcDbEntity* entity) {
  entity_.tie.reset();
  if (const Chain tie(entity->xData(schema::app::kKept)); tie.item(schema::kKeptPlace)) {
    entity_.tie = tie.text(schema::kKeptPlace);
  }
  const Chain data(entity->xData(schema::app::kImport));
  entity_.hasData = static_cast<bool>(data);
  XDataReader items(data);
  for (std::size_t i = 0; i < entity_.kind->data.rows.size(); ++i) {
    const Row& row = entity_.kind->data.rows[i];
    DrawnEntity::Value& value = entity_.values[i];
    value.data.clear();
    value.onData = data && row.place != 0 && !items.done();
    if (!value.onData) continue;
    if (acutKindOf(items.code()) == RbKind::text) {
      value.data = items.text();
    } else {
      value.data = platform::widen(epanet::textOf(items.real()));
    }
  }
}

}  // namespace vessora
