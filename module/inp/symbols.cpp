#include "module/inp/symbols.h"

#include <array>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "module/host/command_span.h"
#include "module/host/module.h"
#include "module/host/translate.h"
#include "module/inp/symbol_scale.h"
#include "module/network/element_data.h"
#include "module/network/point_grid.h"
#include "module/network/schema.h"
#include "platform/text.h"

namespace vessora {

namespace {

// --- what is remembered for the length of one command --------------------------------------------

// A block definition: its record and its attribute definitions in drawing order.
struct Symbol {
  struct Definition {
    std::u16string tag;
    AcDbObjectId id;
  };
  AcDbObjectId block;
  std::vector<Definition> definitions;
};

using ArrowGrid = PointGrid<AcDbObjectId>;

struct Memory {
  std::uint32_t command = 0;
  AcDbObjectId modelSpace;
  AcGeVector3d normal;                                      // the user's Z axis in the world
  std::map<std::u16string, Symbol, std::less<>> symbols;    // by block name
  std::map<std::u16string, ArrowGrid, std::less<>> arrows;  // by layer
  std::map<std::u16string, double, std::less<>> scales;     // by network
};
std::optional<Memory> memory;

// The Z axis of the user's coordinate system as a direction in the world.
AcGeVector3d userZAxis() {
  resbuf from, to;
  from.restype = to.restype = RTSHORT;
  from.resval.rint = 1;
  to.resval.rint = 0;
  AcGePoint3d z;
  if (acedTrans({0, 0, 1}, &from, &to, true, z) != RTNORM) return {0, 0, 1};
  return {z.x, z.y, z.z};
}

// The record of a block name in a drawing, null when there is none.
AcDbObjectId blockNamed(AcDbDatabase* database, std::u16string_view name) {
  AcDbObjectId id;
  AcDbBlockTable* opened = nullptr;
  if (database->getBlockTable(opened, AcDb::kForRead) != Acad::eOk) return id;
  const Opened<AcDbBlockTable> table(opened);
  if (table->getAt(name, id) != Acad::eOk) id.setNull();
  return id;
}

// The memory of this command and this drawing, or null without a drawing.
Memory* remembered() {
  AcDbDatabase* const database = acdbHostApplicationServices()->workingDatabase();
  if (!database) return nullptr;
  if (memory && memory->command == CommandSpan::number() &&
      memory->modelSpace.database() == database) {
    return &*memory;
  }
  if (!memory) CommandSpan::atEnd(forgetSymbols);
  memory.emplace();
  memory->command = CommandSpan::number();
  memory->modelSpace = blockNamed(database, u"*Model_Space");
  memory->normal = userZAxis();
  return memory->modelSpace.isNull() ? nullptr : &*memory;
}

// --- block definitions ---------------------------------------------------------------------------

// Copies a block file of the product into the drawing; null with a notice.
AcDbObjectId readBlock(AcDbDatabase* database, std::u16string_view name, Notices& notices) {
  std::u16string path;
  readInstallPath(path);
  path += u"vessora\\";
  path += name;
  path += u".dwg";
  AcDbDatabase source(false);
  if (source.readDwgFile(path) != Acad::eOk) {
    notices.push_back({NoticeCode::blockUnreadable, path});
    return {};
  }
  AcDbObjectId id;
  if (database->insert(id, name, &source) != Acad::eOk) {
    notices.push_back({NoticeCode::blockNotInserted, path});
    return {};
  }
  return id;
}

void readDefinitions(Symbol& symbol) {
  const Opened<AcDbBlockTableRecord> block(symbol.block);
  AcDbBlockTableRecordIterator* made = nullptr;
  if (!block || block->newIterator(made) != Acad::eOk) return;
  const std::unique_ptr<AcDbBlockTableRecordIterator> iterator(made);
  for (; !iterator->done(); iterator->step()) {
    const AcDbObjectId id = iterator->getEntityId();
    if (const Opened<AcDbAttributeDefinition> definition(id); definition) {
      symbol.definitions.push_back({definition->tag(), id});
    }
  }
}

// The block of this name, read from its file when the drawing lacks it; null when that fails.
const Symbol* symbolNamed(Memory& known, std::u16string_view name, Notices& notices) {
  if (const auto at = known.symbols.find(name); at != known.symbols.end()) return &at->second;
  AcDbDatabase* const database = known.modelSpace.database();
  Symbol symbol;
  symbol.block = blockNamed(database, name);
  if (symbol.block.isNull()) symbol.block = readBlock(database, name, notices);
  if (symbol.block.isNull()) return nullptr;
  readDefinitions(symbol);
  return &known.symbols.emplace(name, std::move(symbol)).first->second;
}

// --- references ----------------------------------------------------------------------------------

struct Value {
  std::u16string_view tag;
  std::u16string_view text;
};
using Values = std::initializer_list<Value>;

struct Placement {
  AcGePoint3d point;
  std::u16string_view layer;  // empty: the current one
  double rotation = 0;
  double scale = 1;
};

// The scale of a network's symbols: that of those it has, so that what is added later fits. The
// classic way knows no scale but 1.
double scaleOf(Memory& known, std::u16string_view network) {
  auto at = known.scales.find(network);
  if (at == known.scales.end()) {
    at = known.scales.emplace(network, inpIsFull() ? drawnScale(network) : 1).first;
  }
  return at->second;
}

// A new reference in model space, open for write; null when it could not be made.
Opened<AcDbBlockReference> place(const Memory& known, const Symbol& symbol, const Placement& at,
                                 const resbuf* xdata = nullptr) {
  Fresh<AcDbBlockReference> reference(at.point, symbol.block);
  if (xdata) reference->setXData(xdata);
  if (at.rotation != 0) reference->setRotation(at.rotation);
  if (at.scale != 1) reference->setScaleFactors({at.scale, at.scale, at.scale});
  if (known.normal.x != 0 || known.normal.y != 0) {
    reference->setNormal(known.normal);
    reference->setPosition(at.point);
  }
  if (!at.layer.empty()) reference->setLayer(at.layer);
  const Opened<AcDbBlockTableRecord> space(known.modelSpace, AcDb::kForWrite);
  if (space) reference.taken(space->appendAcDbEntity(reference.get()));
  return reference.release();
}

bool appendAttribute(AcDbBlockReference& reference, AcDbObjectId definitionId,
                     const AcGeMatrix3d& transform, std::u16string_view text) {
  const Opened<AcDbAttributeDefinition> definition(definitionId);
  if (!definition) return false;
  Fresh<AcDbAttribute> attribute;
  attribute->setAttributeFromBlock(definition.get(), transform);
  attribute->setTextString(text);
  AcDbObjectId id;
  return attribute.taken(reference.appendAttribute(id, attribute.get()));
}

// One attribute for each definition whose tag has a value; false, with a notice, when one failed.
template <class List>
bool fillAttributes(AcDbBlockReference& reference, const Symbol& symbol, const List& values,
                    Notices& notices) {
  const AcGeMatrix3d transform = reference.blockTransform();
  for (const Symbol::Definition& definition : symbol.definitions) {
    for (const Value& value : values) {
      if (definition.tag != value.tag) continue;
      if (appendAttribute(reference, definition.id, transform, value.text)) break;
      notices.push_back({NoticeCode::attributesNotInserted});
      return false;
    }
  }
  return true;
}

// A reference with its attributes. `early` goes on before the reference is in the drawing, `late`
// when its attributes are there, so that it is missing where an attribute failed.
template <class List>
Opened<AcDbBlockReference> insertSymbol(std::u16string_view block, const Placement& at,
                                        const List& values, const resbuf* early, const resbuf* late,
                                        Notices& notices) {
  Memory* const known = remembered();
  if (!known) return {};
  const Symbol* const symbol = symbolNamed(*known, block, notices);
  if (!symbol) return {};
  Opened<AcDbBlockReference> reference = place(*known, *symbol, at, early);
  if (!reference || !fillAttributes(*reference, *symbol, values, notices)) return {};
  if (late) reference->setXData(late);
  return reference;
}

// The symbol of an element with the attributes that its kind has.
template <class Record>
Opened<AcDbBlockReference> insertElement(const AcGePoint3d& point, std::u16string_view layer,
                                         const Record& record, const resbuf* early,
                                         const resbuf* late, Notices& notices) {
  Memory* const known = remembered();
  if (!known) return {};
  const std::u16string_view network =
      layer.substr(std::u16string_view(kindOf<Record>().layer).size());
  std::array<Value, 8> values;
  std::size_t count = 0;
  for (const schema::Row& row : kindOf<Record>().data.rows) {
    if (!row.tag.empty()) values[count++] = {row.tag, textOf(record, row.field)};
  }
  return insertSymbol(kindOf<Record>().block, {point, layer, 0, scaleOf(*known, network)},
                      std::span(values.data(), count), early, late, notices);
}

// --- flow arrows ---------------------------------------------------------------------------------

ArrowGrid readArrows(std::u16string_view layer) {
  ArrowGrid arrows(kPlaceTolerance);
  const SelectionSet set(u"_X", acutBuildList(8, layer, RTNONE));
  for (int i = 0; i < set.size(); ++i) {
    if (const Opened<AcDbBlockReference> arrow(set[i]); arrow) {
      arrows.add(arrow->position(), set[i]);
    }
  }
  return arrows;
}

int insertArrow(std::u16string_view block, std::u16string_view prefix, const AcGePoint3d& point,
                std::u16string_view network, Notices& notices) {
  Memory* const known = remembered();
  if (!known) return 0;
  const Symbol* const symbol = symbolNamed(*known, block, notices);
  if (!symbol) return 0;
  const std::u16string name = schema::layerName(prefix, network);
  auto arrows = known->arrows.find(name);
  if (arrows == known->arrows.end()) {
    arrows = known->arrows.emplace(name, readArrows(name)).first;
  }
  // One that takes another's place keeps its size, which somebody may have chosen.
  double scale = scaleOf(*known, network);
  arrows->second.visit(point, [&](AcDbObjectId id) {
    if (const Opened<AcDbBlockReference> older(id, AcDb::kForWrite); older) {
      if (inpIsFull()) scale = older->scaleFactors().sx;
      older->erase(true);
    }
    return true;
  });
  const Opened<AcDbBlockReference> arrow = place(*known, *symbol, {point, name, 0, scale});
  if (!arrow) return 0;
  arrows->second.add(point, arrow->objectId());
  return 1;
}

}  // namespace

void forgetSymbols() { memory.reset(); }

void useSymbolScale(std::u16string_view network, double scale) {
  if (Memory* const known = remembered()) {
    known->scales.insert_or_assign(std::u16string(network), scale);
  }
}

namespace {

int answer(const Opened<AcDbBlockReference>& symbol, AcDbObjectId* made) {
  if (symbol && made) *made = symbol->objectId();
  return symbol ? 1 : 0;
}

}  // namespace

// --- the family ----------------------------------------------------------------------------------

int InsertJunc(const AcGePoint3d& point, std::u16string_view layer, const EpaJunc& junc,
               double emitter, Notices& notices, AcDbObjectId* made, std::u16string_view kept) {
  const Chain data = withTie(dataOf(junc, {{schema::Field::emitter, {}, emitter}}), kept);
  {
    const auto junction = insertElement(point, layer, junc, nullptr, data.get(), notices);
    if (answer(junction, made) == 0) return 0;
    if (emitter > 0) junction->setColorIndex(1);
  }
  const double flow = platform::wtof(junc.demand);
  if (flow > 0) InsertFlowOut(point, currentNetwork, notices);
  if (flow < 0) InsertFlowIn(point, currentNetwork, notices);
  return 1;
}

int InsertResv(const AcGePoint3d& point, std::u16string_view layer, const EpaResv& resv,
               Notices& notices, AcDbObjectId* made, std::u16string_view kept) {
  return answer(
      insertElement(point, layer, resv, nullptr, withTie(dataOf(resv), kept).get(), notices), made);
}

int InsertTank(const AcGePoint3d& point, std::u16string_view layer, const EpaTank& tank,
               Notices& notices, AcDbObjectId* made, std::u16string_view kept) {
  return answer(
      insertElement(point, layer, tank, nullptr, withTie(dataOf(tank), kept).get(), notices), made);
}

int InsertPump(const AcGePoint3d& point, std::u16string_view layer, const EpaPump& pump,
               const Chain& data, Notices& notices, AcDbObjectId* made) {
  return answer(insertElement(point, layer, pump, data.get(), nullptr, notices), made);
}

int InsertValv(const AcGePoint3d& point, std::u16string_view layer, const EpaValv& valv,
               const Chain& data, Notices& notices, AcDbObjectId* made) {
  return answer(insertElement(point, layer, valv, data.get(), nullptr, notices), made);
}

int InsertFlowIn(const AcGePoint3d& point, std::u16string_view network, Notices& notices) {
  return insertArrow(u"Q_IN", layer::kFlowIn, point, network, notices);
}

int InsertFlowOut(const AcGePoint3d& point, std::u16string_view network, Notices& notices) {
  return insertArrow(u"Q_OUT", layer::kFlowOut, point, network, notices);
}

// The title's tag is a word of the drawing's language, unlike all other tags.
int InsertLegend(const AcGePoint3d& point, std::u16string_view title,
                 const std::array<std::u16string, 10>& classes, int kind, double scale,
                 Notices& notices) {
  constexpr const char16_t* kTags[] = {u"C1", u"C2", u"C3", u"C4", u"C5",
                                       u"C6", u"C7", u"C8", u"C9", u"C10"};
  const std::u16string titleTag = TraduciTesto(u"TITOLO");
  std::vector<Value> values = {{titleTag, title}};
  for (std::size_t i = 0; i < classes.size(); ++i) values.push_back({kTags[i], classes[i]});
  XDataBuilder data(schema::kLegend.application);
  data.text(title);
  data.integer(kind);
  return insertSymbol(classes[5].empty() ? u"LEG_5" : u"LEG_10", {point, {}, 0, scale}, values,
                      nullptr, data.take().get(), notices)
             ? 1
             : 0;
}

int InsertNamedBlock(const AcGePoint3d& point, std::u16string_view layer, std::u16string_view name,
                     std::u16string_view code, std::u16string_view description,
                     std::u16string_view blockName, double rotation, double scale,
                     Notices& notices) {
  const Values values = {{u"NOME", name}, {u"CODICE", code}, {u"DESCRIZIONE", description}};
  return insertSymbol(blockName, {point, layer, rotation, scale}, values, nullptr, nullptr, notices)
             ? 1
             : 0;
}

}  // namespace vessora
