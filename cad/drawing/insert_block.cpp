#include "cad/drawing/insert_block.h"

#include <algorithm>
#include <initializer_list>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "platform/text.h"

namespace cad {
namespace {

bool oneOf(int code, std::initializer_list<int> codes) {
  return std::find(codes.begin(), codes.end(), code) != codes.end();
}

// --- between versions with and without subclass markers ------------------------------------------

// Entities of files without subclass markers get them. The tags of one kind lie in one row there;
// here they are dealt out to the stretches in which they belong.
class Marker {
 public:
  Marker(TagList& out, const TagList& from) : out_(out), from_(from), end_(from.xdataBegin()) {
    used_.resize(static_cast<std::size_t>(from.size()), false);
    out_.create(from.format(), from[0].bytes());
    out_.addAscii(100, "AcDbEntity");
    if (from_.find(8, {1, end_}) < 0) out_.addAscii(8, "0");
    take({8, 6, 62});
    drop({5, 67, 38});
  }
  Marker& marker(std::string_view name) {
    out_.addAscii(100, name);
    return *this;
  }
  Marker& take(std::initializer_list<int> codes) {
    return each([&](int code) { return oneOf(code, codes); });
  }
  Marker& takeAllBut(std::initializer_list<int> codes) {
    return each([&](int code) { return !oneOf(code, codes); });
  }
  void finish() {
    for (int i = end_; i < from_.size(); ++i) out_.insertCopy(out_.size(), from_, i);
  }

 private:
  template <class Wanted>
  Marker& each(Wanted&& wanted) {
    for (int i = 1; i < end_; ++i) {
      if (used_[static_cast<std::size_t>(i)] || !wanted(from_[i].code)) continue;
      used_[static_cast<std::size_t>(i)] = true;
      out_.insertCopy(out_.size(), from_, i);
    }
    return *this;
  }
  void drop(std::initializer_list<int> codes) {
    for (int i = 1; i < end_; ++i) {
      if (oneOf(from_[i].code, codes)) used_[static_cast<std::size_t>(i)] = true;
    }
  }

  TagList& out_;
  const TagList& from_;
  int end_;
  std::vector<bool> used_;
};

void markVertex(Marker& m, const TagList& t, std::int64_t polyline) {
  const std::int64_t flags = t.integerOr(70, 0, t.body());
  if (flags == 128) {
    m.marker("AcDbFaceRecord").takeAllBut({});
    return;
  }
  const char* kind = polyline & 64   ? "AcDbPolyFaceMeshVertex"
                     : polyline & 16 ? "AcDbPolygonMeshVertex"
                     : polyline & 8  ? "AcDb3dPolylineVertex"
                                     : "AcDb2dVertex";
  m.marker("AcDbVertex").marker(kind).takeAllBut({});
}

// False for kinds that cannot be turned.
bool addMarkers(TagList& out, const TagList& t, Type type, std::int64_t polyline) {
  Marker m(out, t);
  switch (type) {
    case Type::line:
      m.marker("AcDbLine").takeAllBut({});
      break;
    case Type::point:
      m.marker("AcDbPoint").takeAllBut({});
      break;
    case Type::circle:
      m.marker("AcDbCircle").takeAllBut({});
      break;
    case Type::arc:
      m.marker("AcDbCircle").takeAllBut({50, 51}).marker("AcDbArc").take({50, 51});
      break;
    case Type::solid:
    case Type::trace:
      m.marker("AcDbTrace").takeAllBut({});
      break;
    case Type::face:
      m.marker("AcDbFace").takeAllBut({});
      break;
    case Type::insert:
      m.marker("AcDbBlockReference").takeAllBut({});
      break;
    case Type::text:
      m.marker("AcDbText").takeAllBut({73}).marker("AcDbText").take({73});
      break;
    case Type::attdef:
      m.marker("AcDbText").takeAllBut({3, 2, 70, 73, 74});
      m.marker("AcDbAttributeDefinition").take({3, 2, 70, 73, 74});
      break;
    case Type::attrib:
      m.marker("AcDbText")
          .takeAllBut({2, 70, 73, 74})
          .marker("AcDbAttribute")
          .take({2, 70, 73, 74});
      break;
    case Type::polyline:
      m.marker(polyline & 64   ? "AcDbPolyFaceMesh"
               : polyline & 16 ? "AcDbPolygonMesh"
               : polyline & 8  ? "AcDb3dPolyline"
                               : "AcDb2dPolyline");
      m.takeAllBut({});
      break;
    case Type::vertex:
      markVertex(m, t, polyline);
      break;
    case Type::seqend:
      break;
    default:
      return false;
  }
  m.finish();
  return true;
}

// Kinds that versions before R13 hold.
bool isOldKind(Type type) {
  switch (type) {
    case Type::line:
    case Type::point:
    case Type::circle:
    case Type::arc:
    case Type::trace:
    case Type::solid:
    case Type::face:
    case Type::text:
    case Type::attdef:
    case Type::attrib:
    case Type::insert:
    case Type::polyline:
    case Type::vertex:
    case Type::seqend:
    case Type::dimension:
      return true;
    default:
      return false;
  }
}

// Kinds that are nothing without other objects of their drawing, which cannot come along.
bool needsItsDrawing(Type type, const TagList& t) {
  if (type == Type::acadTable || type == Type::multileader || type == Type::viewport) return true;
  if (type != Type::other) return false;
  for (int i = 1; i < t.xdataBegin(); ++i) {
    if (t[i].code >= 340 && t[i].code <= 369 && t.handle(i) != 0) return true;
  }
  return false;
}

// --- copying -------------------------------------------------------------------------------------

class BlockCopier {
 public:
  BlockCopier(Drawing& to, const Drawing& from, std::u16string_view top)
      : to_(to),
        from_(from),
        top_(top),
        newForm_(to.format().hasHandlesAndMarkers()),
        sameForm_(newForm_ == from.format().hasHandlesAndMarkers()) {}

  std::uint32_t copy(std::u16string_view name, std::uint32_t sourceBlock, const AcGePoint3d& base) {
    // Blocks that the contents use come first, so that no reference stands before its definition.
    for (std::uint32_t e = from_.structure().firstEntity(sourceBlock); e;
         e = from_.structure().nextEntity(sourceBlock, e)) {
      const Type type = from_.record(e).type;
      if (type == Type::insert || type == Type::dimension) nested(from_.record(e).name);
    }
    const BlockInfo block = to_.structure().addBlock(name, base);
    bool attributes = false;
    for (std::uint32_t e = from_.structure().firstEntity(sourceBlock); e;
         e = from_.structure().nextEntity(sourceBlock, e)) {
      entity(e, block);
      attributes |= from_.record(e).type == Type::attdef;
    }
    if (attributes) {
      TagList t;
      to_.parse(block.begin, t);
      t.putInteger(70, t.integerOr(70, 0, t.body()) | 2, t.subclass("AcDbBlockBegin"));
      to_.writer().rewrite(block.begin, t);
    }
    return block.id;
  }

 private:
  // A block of the source that the contents use, under the name that it gets here.
  void nested(std::uint32_t sourceName) {
    const std::uint32_t id = from_.structure().blockByName(sourceName);
    const BlockInfo* info = from_.structure().block(id);
    if (!info || !info->begin || newName_.count(sourceName)) return;
    const std::u16string& name = from_.names().text(sourceName);
    const bool anonymous = name[0] == u'*', clash = platform::equalNoCase(name, top_);
    newName_[sourceName] = anonymous || clash ? freeName(name) : name;
    if (!anonymous && !clash && to_.structure().blockByName(to_.names().of(name)))
      return;  // the target's own stays
    TagList t;
    from_.parse(info->begin, t);
    const int at = t.find(10, t.body());
    copy(newName_[sourceName], id, at < 0 ? AcGePoint3d() : t.point(at));
  }

  // Anonymous names are numbered by each drawing on its own; a block may also be called like the
  // one that is being made.
  std::u16string freeName(const std::u16string& name) {
    const std::u16string stem = name[0] == u'*' ? name.substr(0, 2) : name + u"_";
    std::u16string fresh;
    do fresh = stem + platform::widen(std::to_string(++number_));
    while (to_.structure().blockByName(to_.names().find(fresh)) ||
           from_.structure().blockByName(from_.names().find(fresh)));
    return fresh;
  }

  void entity(std::uint32_t source, const BlockInfo& block) {
    const Record& r = from_.record(source);
    if (r.type == Type::lwpolyline && to_.format().version < 1014)
      return lightPolyline(source, block);
    TagList t;
    from_.parse(source, t);
    const std::int64_t polyline = r.type == Type::polyline ? t.integerOr(70, 0, t.body()) : 0;
    const std::uint32_t copy = record(source, block.end, block.id, false, polyline);
    if (!copy) return;
    for (std::uint32_t p = r.next;
         p && from_.record(p).is(Record::child) && from_.record(p).owner == source;
         p = from_.record(p).next) {
      if (!from_.record(p).is(Record::erased)) record(p, block.end, copy, true, polyline);
    }
  }

  std::uint32_t record(std::uint32_t source, std::uint32_t before, std::uint32_t owner, bool child,
                       std::int64_t polyline) {
    const Type type = from_.record(source).type;
    TagList t, marked;
    from_.parse(source, t);
    TagList* copy = &t;
    if (needsItsDrawing(type, t)) return 0;
    if (type == Type::other && newForm_) classOf(t);
    if (!sameForm_ && newForm_) {
      if (!addMarkers(marked, t, type, polyline)) return 0;
      copy = &marked;
    } else if (!sameForm_ && !isOldKind(type)) {
      return 0;
    }
    return add(*copy, type, before, owner, child);
  }

  // Kinds that not every program knows stand in a list of their own.
  void classOf(const TagList& entity) {
    const std::string_view dxf = entity[0].bytes();
    TagList t;
    for (std::uint32_t i = from_.records().first(); i && from_.record(i).type != Type::table;
         i = from_.record(i).next) {
      if (from_.record(i).type != Type::classRecord) continue;
      from_.parse(i, t);
      const int name = t.find(1), cpp = t.find(2), application = t.find(3);
      if (name < 0 || cpp < 0 || application < 0 || !t.is(name, dxf)) continue;
      to_.structure().ensureClass(dxf, t[cpp].bytes(), t[application].bytes(),
                                  static_cast<int>(t.integerOr(90, 0, t.body())), true);
      return;
    }
  }

  std::uint32_t add(TagList& t, Type type, std::uint32_t before, std::uint32_t owner, bool child) {
    if (type == Type::insert || type == Type::dimension) {
      const int i = t.find(2, t.body());
      const auto known = i < 0 ? newName_.end() : newName_.find(from_.names().find(t.text(i)));
      if (known != newName_.end()) {
        t.setText(i, known->second);
      } else if (type == Type::insert) {
        return 0;  // its block is nowhere
      } else if (i >= 0) {
        t.erase(i, i + 1);  // a dimension is drawn anew where its block is missing
      }
    }
    symbols(t, type);
    stripPointers(t);
    return to_.writer().addComplete(
        t, {.before = before, .owner = owner, .child = child, .entity = true});
  }

  // Releases before R14 have no light polylines: a plane polyline with vertices says the same.
  void lightPolyline(std::uint32_t source, const BlockInfo& block) {
    TagList light, t;
    from_.parse(source, light);
    const TagRange own = light.subclass("AcDbPolyline"), common = light.subclass("AcDbEntity");
    const auto begin = [&](std::string_view type) {
      t.create(light.format(), type);
      t.addAscii(100, "AcDbEntity");
      for (const int code : {8, 6, 62}) {
        if (const int i = light.find(code, common); i >= 0) t.insertCopy(t.size(), light, i);
      }
    };
    begin("POLYLINE");
    t.addAscii(100, "AcDb2dPolyline");
    t.addInteger(66, 1);
    t.addPoint(10, {0, 0, light.realOr(38, 0, own)});
    t.addInteger(70, light.integerOr(70, 0, own) & 1);
    const double width = light.realOr(43, 0, own);
    if (width != 0) {
      t.addReal(40, width);
      t.addReal(41, width);
    }
    for (int i = own.begin; i < own.end; ++i) {
      if (oneOf(light[i].code, {210, 220, 230})) t.insertCopy(t.size(), light, i);
    }
    for (int i = light.xdataBegin(); i < light.size(); ++i) t.insertCopy(t.size(), light, i);
    const std::uint32_t polyline = add(t, Type::polyline, block.end, block.id, false);
    for (int i = own.begin; i < own.end; ++i) {
      if (light[i].code != 10) continue;
      begin("VERTEX");
      t.addAscii(100, "AcDbVertex");
      t.addAscii(100, "AcDb2dVertex");
      const AcGePoint3d p = light.point(i);
      t.addPoint(10, {p.x, p.y, light.realOr(38, 0, own)});
      for (int k = i + 1; k < own.end && light[k].code != 10; ++k) {
        if (oneOf(light[k].code, {40, 41, 42})) t.insertCopy(t.size(), light, k);
      }
      add(t, Type::vertex, block.end, polyline, true);
    }
    begin("SEQEND");
    add(t, Type::seqend, block.end, polyline, true);
  }

  // The names that the tags of an entity refer to.
  void symbols(TagList& t, Type type) {
    applications(t);
    if (const int i = t.find(8, t.body()); i >= 0) entry(Type::layer, t.text(i));
    if (const int i = t.find(6, t.subclass("AcDbEntity"));
        i >= 0 && !entry(Type::ltype, t.text(i))) {
      t.erase(i, i + 1);
    }
    if (type == Type::text || type == Type::attdef || type == Type::attrib || type == Type::mtext) {
      const TagRange own = t.subclass(type == Type::mtext ? "AcDbMText" : "AcDbText");
      if (const int i = t.find(7, own); i >= 0 && !entry(Type::style, t.text(i))) t.erase(i, i + 1);
    }
    if (type == Type::dimension || type == Type::leader) {
      const TagRange own =
          type == Type::leader ? t.subclass("AcDbLeader") : t.subclass("AcDbDimension");
      const int i = t.find(3, own);
      if (i >= 0 && !to_.structure().tableEntry(Type::dimstyle, t.text(i)))
        t.setAscii(i, "STANDARD");
    }
  }

  void applications(TagList& t) {
    for (int i = t.xdataBegin(); i < t.size(); ++i) {
      const int c = t[i].code;
      if (c == 1001) to_.structure().registerApplication(t.text(i));
      if (c == 1005) t.setHandle(i, 0);  // means another object here, or none
      // Old programs wrote axes without the point that they belong to; later versions refuse them.
      if (newForm_ && !sameForm_ && c >= 1020 && c <= 1033 && t[i - 1].code != c - 10) {
        const double axis = t.real(i);
        t.erase(i, i + 1);
        t.insertReal(i, 1040, axis);
      }
    }
  }

  // A table entry that the target lacks comes along. False when there is none to be had.
  bool entry(Type type, const std::u16string& name) {
    if (to_.structure().tableEntry(type, name) ||
        (type == Type::ltype && to_.structure().hasLinetype(name)))
      return true;
    const std::uint32_t source = from_.structure().tableEntry(type, name);
    if (!source) return type == Type::layer && to_.structure().layerNamed(name, true);
    TagList t, marked;
    from_.parse(source, t);
    if (type == Type::layer && !entry(Type::ltype, t.textOr(6, u"Continuous", t.body()))) {
      t.putText(6, u"Continuous", t.body());
    }
    if (type == Type::ltype && t.find(340, t.body()) >= 0)
      return false;  // drawn with shapes or texts
    TagList* copy = &t;
    if (!sameForm_ && newForm_) {
      entryWithMarkers(marked, t, type);
      copy = &marked;
    }
    applications(*copy);
    stripPointers(*copy);
    to_.structure().addEntry(type, *copy);
    return true;
  }

  static void entryWithMarkers(TagList& out, const TagList& t, Type type) {
    out.create(t.format(), t[0].bytes());
    out.addAscii(100, "AcDbSymbolTableRecord");
    out.addAscii(100, type == Type::layer   ? "AcDbLayerTableRecord"
                      : type == Type::ltype ? "AcDbLinetypeTableRecord"
                                            : "AcDbTextStyleTableRecord");
    for (int i = 1; i < t.size(); ++i) {
      if (t[i].code == 5) continue;
      out.insertCopy(out.size(), t, i);
      if (type == Type::ltype && t[i].code == 49) out.addInteger(74, 0);
    }
  }

  // Handles of the source mean nothing here, and links to objects that stay behind must not remain.
  static void stripPointers(TagList& t) {
    for (int i = t.xdataBegin() - 1; i > 0; --i) {
      const int c = t[i].code;
      if (c == 102) {
        int open = i;
        while (open > 0 && !(t[open].code == 102 && t[open].size && t[open].value[0] == '{'))
          --open;
        if (open > 0) {
          t.erase(open, i + 1);
          i = open;
          continue;
        }
      }
      if (c == 5 || c == 105 || (c >= 320 && c <= 369) || (c >= 390 && c <= 399) || c == 67 ||
          c == 410) {
        t.erase(i, i + 1);
      }
    }
  }

  Drawing& to_;
  const Drawing& from_;
  std::u16string top_;
  bool newForm_, sameForm_;
  int number_ = 0;
  std::unordered_map<std::uint32_t, std::u16string> newName_;  // name in the source -> name here
};

}  // namespace

namespace {

// Blocks may lie in blocks to this depth; the copying takes them one inside the other.
constexpr std::size_t kDeepest = 200;

// Walks as the copying does, with a list of its own in place of calls.
bool isDeeper(const Drawing& from, std::size_t limit) {
  const Structure& s = from.structure();
  std::vector<std::pair<std::uint32_t, std::uint32_t>> path;  // block and the entity looked at
  std::unordered_set<std::uint32_t> seen;
  path.emplace_back(s.modelSpace(), s.firstEntity(s.modelSpace()));
  while (!path.empty()) {
    auto& [block, entity] = path.back();
    if (!entity) {
      path.pop_back();
      continue;
    }
    const Record& r = from.record(entity);
    entity = s.nextEntity(block, entity);
    const bool nests = r.type == Type::insert || r.type == Type::dimension;
    const std::uint32_t inner = nests ? s.blockByName(r.name) : 0;
    if (!inner || !seen.insert(inner).second) continue;
    if (path.size() >= limit) return true;
    path.emplace_back(inner, s.firstEntity(inner));
  }
  return false;
}

}  // namespace

std::uint32_t insertBlock(Drawing& to, std::u16string_view name, const Drawing& from) {
  if (!usableName(name, to.format().version, true) || isDeeper(from, kDeepest)) return 0;
  TagList tags;
  TagRange range;
  AcGePoint3d base;
  if (from.header().variable("$INSBASE", tags, range) && !range.empty())
    base = tags.point(range.begin);
  return BlockCopier(to, from, name).copy(name, from.structure().modelSpace(), base);
}

}  // namespace cad
