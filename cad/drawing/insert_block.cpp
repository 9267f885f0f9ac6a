#include "cad/drawing/insert_block.h"

#include <set>

#include "platform/text.h"

namespace cad {
namespace {

class BlockCopier {
 public:
  BlockCopier(Drawing& to, const Drawing& from) : to_(to), from_(from) {}

  std::uint32_t copy(std::u16string_view name, std::uint32_t sourceBlock, const AcGePoint3d& base) {
    // Blocks that the contents use come first, so that no reference stands before its definition.
    for (std::uint32_t e = from_.firstEntity(sourceBlock); e; e = from_.nextEntity(sourceBlock, e)) {
      const Type type = from_.record(e).type;
      if (type == Type::insert) nested(from_.record(e).name);
    }
    const BlockInfo block = to_.addBlock(name, base);
    bool attributes = false;
    for (std::uint32_t e = from_.firstEntity(sourceBlock); e; e = from_.nextEntity(sourceBlock, e)) {
      entity(e, block);
      attributes |= from_.record(e).type == Type::attdef;
    }
    if (attributes) {
      TagList t;
      to_.parse(block.begin, t);
      t.putInteger(70, t.integerOr(70, 0, t.body()) | 2, t.subclass("AcDbBlockBegin"));
      to_.rewrite(block.begin, t);
    }
    return block.id;
  }

 private:
  void nested(std::uint32_t sourceName) {
    const std::u16string name = from_.names().text(sourceName);
    if (to_.blockByName(to_.names().of(name)) || !underWay_.insert(sourceName).second) return;
    const std::uint32_t id = from_.blockByName(sourceName);
    const BlockInfo* info = from_.block(id);
    if (!info || !info->begin) return;
    TagList t;
    from_.parse(info->begin, t);
    const int at = t.find(10, t.body());
    copy(name, id, at < 0 ? AcGePoint3d() : t.point(at));
  }

  void entity(std::uint32_t source, const BlockInfo& block) {
    const std::uint32_t copy = record(source, block.end, block.id, false);
    if (!copy) return;
    for (std::uint32_t p = from_.record(source).next;
         p && from_.record(p).is(Record::child) && from_.record(p).owner == source;
         p = from_.record(p).next) {
      if (!from_.record(p).is(Record::erased)) record(p, block.end, copy, true);
    }
  }

  std::uint32_t record(std::uint32_t source, std::uint32_t before, std::uint32_t owner, bool child) {
    TagList t;
    from_.parse(source, t);
    const bool newForm = to_.format().hasHandlesAndMarkers();
    if (newForm != from_.format().hasHandlesAndMarkers()) {
      if (newForm && !addMarkers(t, from_.record(source))) return 0;
    }
    symbols(t);
    stripPointers(t);
    t.transcode(to_.format());
    finish(t, owner);
    return to_.addRecord(t, before, owner, false, child);
  }

  // Entities of files without subclass markers get them; kinds that are not known stay out.
  static bool addMarkers(TagList& t, const Record& r) {
    std::string_view marker;
    switch (r.type) {
      case Type::line: marker = "AcDbLine"; break;
      case Type::point: marker = "AcDbPoint"; break;
      case Type::circle: marker = "AcDbCircle"; break;
      case Type::solid:
      case Type::trace: marker = "AcDbTrace"; break;
      case Type::face: marker = "AcDbFace"; break;
      case Type::insert: marker = "AcDbBlockReference"; break;
      case Type::seqend: break;
      default: return false;
    }
    int common = 1;
    while (common < t.size() && (t[common].code == 5 || t[common].code == 8 || t[common].code == 6 ||
                                 t[common].code == 62)) {
      ++common;
    }
    if (!marker.empty()) t.insertAscii(common, 100, marker);
    t.insertAscii(1, 100, "AcDbEntity");
    return true;
  }

  void symbols(TagList& t) {
    const int end = t.xdataBegin();
    for (int i = 1; i < end; ++i) {
      switch (t[i].code) {
        case 8: entry(Type::layer, t.text(i)); break;
        case 6: entry(Type::ltype, t.text(i)); break;
        case 7: entry(Type::style, t.text(i)); break;
        default: break;
      }
    }
    for (int i = end; i < t.size(); ++i) {
      if (t[i].code == 1001) to_.registerApplication(t.text(i));
    }
  }

  // A table entry that the target lacks comes along; without one in the source there is nothing to take.
  void entry(Type type, const std::u16string& name) {
    if (to_.tableEntry(type, name)) return;
    const std::uint32_t source = from_.tableEntry(type, name);
    if (!source || from_.format().hasHandlesAndMarkers() != to_.format().hasHandlesAndMarkers()) {
      if (type == Type::layer) to_.layerNamed(name, true);
      return;
    }
    TagList t;
    from_.parse(source, t);
    if (type == Type::layer) entry(Type::ltype, t.textOr(6, u"Continuous", t.body()));
    stripPointers(t);
    t.transcode(to_.format());
    const std::uint32_t table = to_.tableRecord(type);
    finish(t, table);
    const std::uint32_t added = to_.addRecord(t, to_.table(type)->endtab, table, false, false);
    to_.renameEntry(added, name);
  }

  // Handles of the source mean nothing here, and links to objects that stay behind must not remain.
  static void stripPointers(TagList& t) {
    for (int i = t.xdataBegin() - 1; i > 0; --i) {
      const int c = t[i].code;
      if (c == 102) {
        int open = i;
        while (open > 0 && !(t[open].code == 102 && t[open].size && t[open].value[0] == '{')) --open;
        if (open > 0) {
          t.erase(open, i + 1);
          i = open;
          continue;
        }
      }
      if (c == 5 || c == 105 || (c >= 320 && c <= 369) || (c >= 390 && c <= 399) || c == 67 || c == 410) {
        t.erase(i, i + 1);
      }
    }
  }

  void finish(TagList& t, std::uint32_t owner) {
    const bool newForm = to_.format().hasHandlesAndMarkers();
    if (!newForm) {
      for (int i = t.xdataBegin() - 1; i > 0; --i) {
        if (t[i].code == 100) t.erase(i, i + 1);
      }
      return;
    }
    t.insertHandle(1, 5, to_.takeHandle());
    t.insertHandle(2, 330, to_.record(owner).handle);
  }

  Drawing& to_;
  const Drawing& from_;
  std::set<std::uint32_t> underWay_;
};

}  // namespace

std::uint32_t insertBlock(Drawing& to, std::u16string_view name, const Drawing& from) {
  TagList tags;
  TagRange range;
  AcGePoint3d base;
  if (from.headerVariable("$INSBASE", tags, range) && !range.empty()) base = tags.point(range.begin);
  return BlockCopier(to, from).copy(name, from.modelSpace(), base);
}

}  // namespace cad
