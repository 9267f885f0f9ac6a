#include "module/inp/drawn_element.h"

#include <algorithm>
#include <array>

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

void DrawnEntity::makeTexts() {
  for (Value& value : values) {
    if (value.isReal) value.data = platform::widen(epanet::textOf(value.real));
    value.isReal = false;
  }
}

bool DrawnEntities::read(AcDbObjectId id, DrawnEntity& entity) {
  const Opened<AcDbEntity> drawn(id);
  if (auto* const block = drawn.as<AcDbBlockReference>()) return readBlock(block, entity);
  if (auto* const polyline = drawn.as<AcDb3dPolyline>()) return readPolyline(polyline, entity);
  return false;
}

bool DrawnEntities::readBlock(AcDbBlockReference* block, DrawnEntity& entity) {
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
  entity.id = block->objectId();
  entity.kind = &own->kind;
  entity.isCourse = false;
  entity.position = block->position();
  entity.points.clear();
  readData(block, entity);
  std::array<std::u16string_view, 8> tags;
  std::array<std::u16string, 8> texts;
  std::array<std::size_t, 8> places;
  int count = 0;
  for (std::size_t i = 0; i < entity.kind->data.rows.size(); ++i) {
    const Row& row = entity.kind->data.rows[i];
    entity.values[i].onAttribute = false;
    if (row.tag.empty()) continue;
    tags[static_cast<std::size_t>(count)] = row.tag;
    places[static_cast<std::size_t>(count++)] = i;
  }
  const unsigned found = readAttributes(block, tags.data(), texts.data(), count);
  for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
    DrawnEntity::Value& value = entity.values[places[i]];
    value.onAttribute = (found >> i & 1U) != 0;
    value.attribute = std::move(texts[i]);
  }
  return true;
}

bool DrawnEntities::readPolyline(AcDb3dPolyline* polyline, DrawnEntity& entity) {
  const std::u16string layer = polyline->layer();
  const Kind* const kind = layer == layers_.pipe   ? &schema::kPipe
                           : layer == layers_.pump ? &schema::kPump
                           : layer == layers_.valv ? &schema::kValv
                                                   : nullptr;
  if (!kind) return false;
  entity.id = polyline->objectId();
  entity.kind = kind;
  entity.isCourse = kind != &schema::kPipe;
  entity.points.clear();
  ReadVertices(polyline, entity.points);
  readData(polyline, entity);
  for (DrawnEntity::Value& value : entity.values) value.onAttribute = false;
  return entity.hasData || entity.tie;
}

void DrawnEntities::readData(AcDbEntity* drawn, DrawnEntity& entity) {
  entity.tie.reset();
  if (const Chain tie(drawn->xData(schema::app::kKept)); tie.item(schema::kKeptPlace)) {
    entity.tie = tie.text(schema::kKeptPlace);
  }
  const Chain data(drawn->xData(schema::app::kImport));
  entity.hasData = static_cast<bool>(data);
  entity.values.resize(entity.kind->data.rows.size());
  XDataReader items(data);
  for (std::size_t i = 0; i < entity.kind->data.rows.size(); ++i) {
    const Row& row = entity.kind->data.rows[i];
    DrawnEntity::Value& value = entity.values[i];
    value.data.clear();
    value.isReal = false;
    value.onData = data && row.place != 0 && !items.done();
    if (!value.onData) continue;
    if (acutKindOf(items.code()) == RbKind::text) {
      value.data = items.text();
    } else {
      value.real = items.real();
      value.isReal = true;
    }
  }
}

}  // namespace vessora
