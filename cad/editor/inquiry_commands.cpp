// What the drawing holds and what the host can do, told to the user.
#include "cad/api/owners.h"
#include "cad/api/table.h"
#include "cad/drawing/block_geometry.h"
#include "cad/editor/host_commands.h"
#include "platform/text.h"
#include "platform/words.h"

namespace cad::host {
namespace {

std::u16string valueOf(const resbuf& item) {
  switch (acutKindOf(item.restype)) {
    case RbKind::text:
      return item.resval.rstring;
    case RbKind::real:
      return platform::format(u"%.15g", item.resval.rreal);
    case RbKind::int16:
      return platform::format(u"%d", static_cast<int>(item.resval.rint));
    case RbKind::int32:
      return platform::format(u"%d", item.resval.rlong);
    case RbKind::point:
      return platform::format(u"%.15g,%.15g,%.15g", item.resval.rpoint[0], item.resval.rpoint[1],
                              item.resval.rpoint[2]);
    case RbKind::none:
      break;
  }
  return {};
}

using NameOf = decltype(Session::nameOfData);

void listNamed(const Session::DataName& data, const std::u16string& value) {
  if (!data.name.empty() && !value.empty()) {
    acutPrintf(u"\n  %s = %s%s%s", data.name, value, data.unit.empty() ? u"" : u" ", data.unit);
  }
}

// Extended data by names and units where somebody knows them, else by codes, under their
// application.
void listChain(const resbuf* chain, std::u16string_view layer, const NameOf& nameOf) {
  constexpr int kApplication = 1001;
  std::u16string application;
  int place = 0;
  bool told = false;
  for (const resbuf* n = chain; n; n = n->rbnext) {
    if (acutKindOf(n->restype) == RbKind::none) continue;
    if (n->restype == kApplication) {
      application = valueOf(*n);
      place = 0;
      told = !nameOf;
      if (told) acutPrintf(u"\n    1001  %s", application);
      continue;
    }
    ++place;
    if (const auto data = nameOf ? nameOf(layer, application, place) : std::nullopt) {
      listNamed(*data, valueOf(*n));
      continue;
    }
    if (!told) acutPrintf(u"\n    1001  %s", application);
    told = true;
    acutPrintf(u"\n    %4d  %s", n->restype, valueOf(*n));
  }
}

void listTable(const AcDbTable& table) {
  const AcGePoint3d p = table.position();
  acutPrintf(platform::words(u"\n  tabella in %.3f,%.3f,%.3f  larga %.3f alta %.3f  testo %.3f"),
             p.x, p.y, p.z, table.width(), table.height(), table.textHeight(0, 0));
  for (int row = 0; row < table.numRows(); ++row) {
    std::u16string line;
    for (int column = 0; column < table.numColumns(); ++column) {
      if (column > 0) line += u" | ";
      line += table.textString(row, column);
    }
    acutPrintf(u"\n  %s", line);
  }
}

// What kind of thing it is and where it lies.
void listGeometry(const Opened<AcDbEntity>& entity, const NameOf& nameOf) {
  if (auto* block = entity.as<AcDbBlockReference>()) {
    const AcGePoint3d p = block->position();
    acutPrintf(platform::words(u"\n  blocco \"%s\" in %.3f,%.3f,%.3f"), block->blockName(), p.x,
               p.y, p.z);
    AcDbObjectIterator* it = block->attributeIterator();
    for (; !it->done(); it->step()) {
      const Opened<AcDbAttribute> a(it->objectId());
      if (!a) continue;
      const auto data = nameOf ? nameOf(entity->layer(), a->tag(), 0) : std::nullopt;
      if (data) {
        listNamed(*data, a->textString());
      } else {
        acutPrintf(u"\n  %s = %s", a->tag(), a->textString());
      }
    }
    delete it;
  } else if (entity.as<AcDb3dPolyline>()) {
    for (const AcGePoint3d& p : vertexPositions(drawing(), entity->objectId().index())) {
      acutPrintf(platform::words(u"\n  vertice %.3f,%.3f,%.3f"), p.x, p.y, p.z);
    }
  } else if (auto* flat = entity.as<AcDbPolyline>()) {
    for (const AcDbPolyline::Vertex& v : flat->vertices()) {
      acutPrintf(platform::words(u"\n  vertice %.3f,%.3f"), v.point.x, v.point.y);
    }
  } else if (auto* line = entity.as<AcDbLine>()) {
    const AcGePoint3d a = line->startPoint(), b = line->endPoint();
    acutPrintf(platform::words(u"\n  da %.3f,%.3f,%.3f a %.3f,%.3f,%.3f  linea %s"), a.x, a.y, a.z,
               b.x, b.y, b.z, line->linetype());
  } else if (auto* text = entity.as<AcDbText>()) {
    const AcGePoint3d p = text->position();
    acutPrintf(platform::words(u"\n  \"%s\" in %.3f,%.3f,%.3f  altezza %.3f"), text->textString(),
               p.x, p.y, p.z, text->height());
  } else if (auto* table = entity.as<AcDbTable>()) {
    listTable(*table);
  }
}

void listEntity(AcDbObjectId id, const NameOf& nameOf) {
  const Opened<AcDbEntity> entity(id);
  if (!entity) return;
  acutPrintf(platform::words(u"\n%s  handle %s  layer \"%s\"  colore %s"), entity->dxfName(),
             platform::format(u"%x", static_cast<std::int64_t>(entity->handle())), entity->layer(),
             entity->colorIndex() == 256 ? platform::words(u"dal layer")
                                         : platform::format(u"%d", entity->colorIndex()));
  listGeometry(entity, nameOf);
  const Chain data(entity->xData());
  listChain(data.get(), entity->layer(), nameOf);
}

}  // namespace

void commandList() {
  if (!haveDrawing()) return;
  for (const AcDbObjectId id : SelectionSet(nullptr, nullptr)) listEntity(id, session().nameOfData);
}

void commandListData() {
  if (!haveDrawing()) return;
  for (const AcDbObjectId id : SelectionSet(nullptr, nullptr)) listEntity(id, {});
}

void commandHelp() {
  say(platform::words(u"\nComandi:"));
  std::u16string last;
  for (const auto& [key, c] : session().commands()) {
    if (platform::upper(c.globalName) != key && c.group == u"HOST") continue;
    acutPrintf(u"\n  %-12s %s", platform::upper(shownNameOf(c)), platform::words(c.help));
  }
}

}  // namespace cad::host
