#include "tests/tools/check_drawing.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <deque>
#include <map>
#include <set>
#include <unordered_map>

namespace checking {
namespace {

enum class Kind { text, handle, real, integer, bytes };

bool in(int code, int low, int high) { return code >= low && code <= high; }

Kind kindOf(int c) {
  if (c == 5 || c == 105 || c == 1005 || in(c, 320, 369) || in(c, 390, 399) || in(c, 480, 481)) {
    return Kind::handle;
  }
  if (in(c, 10, 59) || in(c, 110, 149) || in(c, 210, 239) || in(c, 460, 469) || in(c, 1010, 1059)) {
    return Kind::real;
  }
  if (in(c, 60, 99) || in(c, 160, 179) || in(c, 270, 299) || in(c, 370, 389) || in(c, 400, 409) ||
      in(c, 420, 429) || in(c, 440, 459) || in(c, 1060, 1071)) {
    return Kind::integer;
  }
  return in(c, 310, 319) || c == 1004 ? Kind::bytes : Kind::text;
}

bool isShort(int c) {
  return in(c, 60, 79) || in(c, 170, 179) || in(c, 270, 289) || in(c, 370, 389) ||
         in(c, 400, 409) || in(c, 1060, 1070);
}

int binarySize(int c) {
  switch (kindOf(c)) {
    case Kind::real:
      return 8;
    case Kind::integer:
      if (in(c, 290, 299)) return 1;
      if (in(c, 160, 169)) return 8;
      return isShort(c) ? 2 : 4;
    default:
      return 0;
  }
}

struct Tag {
  int code;
  std::string_view value;
};

std::string_view trimmed(std::string_view s) {
  while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front()))) s.remove_prefix(1);
  while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back()))) s.remove_suffix(1);
  return s;
}

std::string upper(std::string_view s) {
  std::string out(s);
  for (char& c : out) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return out;
}

// A handle as a number; -1 for what is none.
std::int64_t handleOf(std::string_view s) {
  s = trimmed(s);
  std::uint64_t v = 0;
  const auto r = std::from_chars(s.data(), s.data() + s.size(), v, 16);
  if (r.ec != std::errc() || r.ptr != s.data() + s.size() || v > INT64_MAX) return -1;
  return static_cast<std::int64_t>(v);
}

int integerOf(std::string_view s, int fallback = 0) {
  s = trimmed(s);
  int v = fallback;
  std::from_chars(s.data(), s.data() + s.size(), v);
  return v;
}

// One record: its type and its tags behind group 0.
struct Item {
  std::string type, section, container, name;  // container: table or block, in capitals
  std::vector<Tag> tags;
  std::int64_t handle = 0;
  const Item* parent = nullptr;
  std::size_t number = 0;

  const Tag* find(int code) const {
    for (const Tag& t : tags) {
      if (t.code == 1001) break;
      if (t.code == code) return &t;
    }
    return nullptr;
  }
  std::string text(int code) const {
    const Tag* t = find(code);
    return t ? std::string(trimmed(t->value)) : std::string();
  }
  int number_(int code, int fallback = 0) const {
    const Tag* t = find(code);
    return t ? integerOf(t->value, fallback) : fallback;
  }
  std::vector<std::string> markers() const {
    std::vector<std::string> all;
    for (const Tag& t : tags) {
      if (t.code == 1001) break;
      if (t.code == 100) all.emplace_back(trimmed(t.value));
    }
    return all;
  }
  // The pointer to the owner: the first 330 outside of groups and before the first marker.
  std::int64_t owner() const {
    bool inside = false;
    for (const Tag& t : tags) {
      if (t.code == 102) inside = !t.value.empty() && t.value[0] == '{';
      if (t.code == 330 && !inside) return handleOf(t.value);
      if (t.code == 100) break;
    }
    return -1;
  }
};

const std::map<std::string, std::vector<std::string>>& requiredTables() {
  static const std::map<std::string, std::vector<std::string>> tables = {
      {"VPORT", {}},
      {"LTYPE", {"BYBLOCK", "BYLAYER", "CONTINUOUS"}},
      {"LAYER", {"0"}},
      {"STYLE", {"STANDARD"}},
      {"VIEW", {}},
      {"UCS", {}},
      {"APPID", {"ACAD"}},
      {"DIMSTYLE", {}},
      {"BLOCK_RECORD", {"*MODEL_SPACE", "*PAPER_SPACE"}}};
  return tables;
}

const std::map<std::string, std::string>& entryMarkers() {
  static const std::map<std::string, std::string> markers = {
      {"VPORT", "AcDbViewportTableRecord"},    {"LTYPE", "AcDbLinetypeTableRecord"},
      {"LAYER", "AcDbLayerTableRecord"},       {"STYLE", "AcDbTextStyleTableRecord"},
      {"VIEW", "AcDbViewTableRecord"},         {"UCS", "AcDbUCSTableRecord"},
      {"APPID", "AcDbRegAppTableRecord"},      {"DIMSTYLE", "AcDbDimStyleTableRecord"},
      {"BLOCK_RECORD", "AcDbBlockTableRecord"}};
  return markers;
}

// The markers behind AcDbEntity, in order; several rows for a kind are alternatives.
const std::multimap<std::string, std::vector<std::string>>& entityMarkers() {
  static const std::multimap<std::string, std::vector<std::string>> markers = {
      {"POINT", {"AcDbPoint"}},
      {"LINE", {"AcDbLine"}},
      {"CIRCLE", {"AcDbCircle"}},
      {"ARC", {"AcDbCircle", "AcDbArc"}},
      {"TEXT", {"AcDbText", "AcDbText"}},
      {"MTEXT", {"AcDbMText"}},
      {"LWPOLYLINE", {"AcDbPolyline"}},
      {"SOLID", {"AcDbTrace"}},
      {"TRACE", {"AcDbTrace"}},
      {"3DFACE", {"AcDbFace"}},
      {"HATCH", {"AcDbHatch"}},
      {"ELLIPSE", {"AcDbEllipse"}},
      {"SPLINE", {"AcDbSpline"}},
      {"INSERT", {"AcDbBlockReference"}},
      {"INSERT", {"AcDbMInsertBlock"}},
      {"INSERT", {"AcDbBlockReference", "AcDbMInsertBlock"}},
      {"ATTRIB", {"AcDbText", "AcDbAttribute"}},
      {"ATTDEF", {"AcDbText", "AcDbAttributeDefinition"}},
      {"POLYLINE", {"AcDb3dPolyline"}},
      {"POLYLINE", {"AcDb2dPolyline"}},
      {"POLYLINE", {"AcDbPolygonMesh"}},
      {"POLYLINE", {"AcDbPolyFaceMesh"}},
      {"VERTEX", {"AcDbVertex", "AcDb3dPolylineVertex"}},
      {"VERTEX", {"AcDbVertex", "AcDb2dVertex"}},
      {"VERTEX", {"AcDbVertex", "AcDbPolygonMeshVertex"}},
      {"VERTEX", {"AcDbVertex", "AcDbPolyFaceMeshVertex"}},
      {"VERTEX", {"AcDbFaceRecord"}},
      {"SEQEND", {}},
      {"BLOCK", {"AcDbBlockBegin"}},
      {"ENDBLK", {"AcDbBlockEnd"}},
      {"ACAD_TABLE", {"AcDbBlockReference", "AcDbTable"}}};
  return markers;
}

// Kinds that a program knows only from the list of classes.
bool needsClass(const std::string& type) {
  static const std::set<std::string> kinds = {"ACAD_TABLE",
                                              "TABLESTYLE",
                                              "TABLECONTENT",
                                              "TABLEGEOMETRY",
                                              "CELLSTYLEMAP",
                                              "MATERIAL",
                                              "VISUALSTYLE",
                                              "MLEADERSTYLE",
                                              "MULTILEADER",
                                              "SCALE",
                                              "ACDBDICTIONARYWDFLT",
                                              "DICTIONARYVAR",
                                              "SUN",
                                              "IMAGE",
                                              "IMAGEDEF",
                                              "IMAGEDEF_REACTOR",
                                              "WIPEOUT",
                                              "SORTENTSTABLE",
                                              "GEODATA",
                                              "FIELD",
                                              "FIELDLIST"};
  return kinds.count(type) != 0;
}

class Checker {
 public:
  explicit Checker(std::string_view bytes) : bytes_(bytes) {}

  std::vector<std::string> run() {
    if (!read()) return faults_;
    build();
    header();
    if (!old_) tables();
    for (const Item& i : items_) {
      values(i);
      if (isEntity(i)) entity(i);
      xdata(i);
      if (!old_) pointers(i);
    }
    sequences();
    if (!old_) objects();
    return faults_;
  }

 private:
  void say(const std::string& text) {
    if (faults_.size() < 200) faults_.push_back(text);
  }
  void say(const Item& i, const std::string& text) {
    std::string where = i.section + " " + i.type;
    if (!i.name.empty()) where += " '" + i.name + "'";
    char handle[24];
    if (i.handle > 0) {
      *std::to_chars(handle, handle + 20, i.handle, 16).ptr = 0;
      where += " #" + upper(handle);
    } else {
      where += " (record " + std::to_string(i.number) + ")";
    }
    say(where + ": " + text);
  }

  // --- reading
  bool read() {
    static const char sentinel[] = "AutoCAD Binary DXF\r\n\x1A";
    if (bytes_.substr(0, 22) == std::string_view(sentinel, 22)) return readBinary();
    std::size_t at = 0, line = 0;
    while (at < bytes_.size()) {
      const std::string_view code = trimmed(lineAt(at));
      if (code.empty() && trimmed(bytes_.substr(std::min(at, bytes_.size()))).empty()) break;
      int number = 0;
      const auto r = std::from_chars(code.data(), code.data() + code.size(), number);
      if (r.ec != std::errc() || r.ptr != code.data() + code.size()) {
        say("line " + std::to_string(line + 1) + ": no group code");
        return false;
      }
      if (at >= bytes_.size()) {
        say("line " + std::to_string(line + 1) + ": a tag without value");
        return false;
      }
      const std::string_view value = lineAt(at);
      line += 2;
      if (number != 999) tags_.push_back({number, value});
      if (number == 0 && trimmed(value) == "EOF") return true;
    }
    say("no EOF at the end");
    return !tags_.empty();
  }

  std::string_view lineAt(std::size_t& at) const {
    const std::size_t end = std::min(bytes_.find('\n', at), bytes_.size());
    std::string_view line = bytes_.substr(at, end - at);
    at = end + 1;
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    return line;
  }

  bool readBinary() {
    std::size_t at = 22;
    const bool wide = bytes_.size() > 24 && bytes_[22] == 0 && bytes_[23] == 0;
    const auto left = [&](std::size_t n) { return at + n <= bytes_.size(); };
    while (at < bytes_.size()) {
      std::uint16_t code = static_cast<unsigned char>(bytes_[at]);
      std::size_t used = 1;
      if (wide || code == 255) {
        used = wide ? 2 : 3;
        if (!left(used)) break;
        std::memcpy(&code, bytes_.data() + at + used - 2, 2);
      }
      at += used;
      const int size = binarySize(code);
      std::string& text = texts_.emplace_back();
      if (kindOf(code) == Kind::bytes) {
        if (!left(1) || !left(1 + static_cast<unsigned char>(bytes_[at]))) break;
        const std::size_t n = static_cast<unsigned char>(bytes_[at]);
        for (std::size_t k = 1; k <= n; ++k) {
          text += "0123456789ABCDEF"[static_cast<unsigned char>(bytes_[at + k]) >> 4];
          text += "0123456789ABCDEF"[bytes_[at + k] & 15];
        }
        at += 1 + n;
      } else if (size == 0) {
        const std::size_t end = bytes_.find('\0', at);
        if (end == bytes_.npos) break;
        text = bytes_.substr(at, end - at);
        at = end + 1;
      } else {
        if (!left(static_cast<std::size_t>(size))) break;
        text = number(code, bytes_.data() + at, size);
        at += static_cast<std::size_t>(size);
      }
      tags_.push_back({code, text});
      if (code == 0 && text == "EOF") return true;
    }
    say("binary file without EOF, or cut off at byte " + std::to_string(at));
    return !tags_.empty();
  }

  static std::string number(int code, const char* p, int size) {
    if (kindOf(code) == Kind::real) {
      double v = 0;
      std::memcpy(&v, p, 8);
      return std::isfinite(v) ? std::to_string(v) : "no number";
    }
    std::int64_t v = 0;
    std::memcpy(&v, p, static_cast<std::size_t>(size));
    const int shift = 64 - 8 * size;
    return std::to_string(static_cast<std::int64_t>(static_cast<std::uint64_t>(v) << shift) >>
                          shift);
  }

  // --- records, with what they stand in
  void build() {
    std::string section, container;
    const Item* parent = nullptr;
    for (std::size_t i = 0; i < tags_.size();) {
      const std::size_t begin = i++;
      while (i < tags_.size() && tags_[i].code != 0) ++i;
      if (tags_[begin].code != 0) {
        say("tags before the first record");
        continue;
      }
      Item item;
      item.type = trimmed(tags_[begin].value);
      item.tags.assign(tags_.begin() + static_cast<std::ptrdiff_t>(begin) + 1,
                       tags_.begin() + static_cast<std::ptrdiff_t>(i));
      item.number = ++count_;
      if (item.type == "SECTION") {
        if (!section.empty()) say("section " + section + " is not closed");
        section = upper(item.text(2));
        if (!sections_.insert(section).second) say("section " + section + " stands twice");
        container.clear();
        parent = nullptr;
        if (section == "HEADER") header_ = item;
        continue;
      }
      if (item.type == "ENDSEC" || item.type == "EOF") {
        if (section.empty() == (item.type == "ENDSEC")) say(item.type + " out of place");
        if (!container.empty()) say(section + " " + container + " is not closed");
        container.clear();
        section.clear();
        continue;
      }
      if (section.empty()) say(item.type + " outside of any section");
      place(item, section, container, parent);
      items_.push_back(std::move(item));
      Item& kept = items_.back();
      if (section != "ENTITIES" && section != "BLOCKS") continue;
      if (kept.type == "SEQEND") {
        parent = nullptr;
      } else if (kept.type != "VERTEX" && kept.type != "ATTRIB") {
        parent = &kept;
      }
    }
    version_ = integerOf(
        variable("$ACADVER").substr(std::min<std::size_t>(2, variable("$ACADVER").size())));
    old_ = version_ < 1012;
    index();
  }

  void place(Item& item, const std::string& section, std::string& container, const Item* parent) {
    item.section = section;
    if (section == "TABLES" && item.type == "TABLE") container = upper(item.text(2));
    if (section == "BLOCKS" && item.type == "BLOCK") {
      if (!container.empty()) say("BLOCK " + container + " is not closed");
      container = upper(item.text(2));
      if (container.empty()) say("a BLOCK without a name");
      if (!blocks_.insert(container).second) say("BLOCK " + container + " stands twice");
    }
    item.container = container;
    if (item.type == "ENDTAB" || item.type == "ENDBLK") container.clear();
    if (item.type == "VERTEX" || item.type == "ATTRIB" || item.type == "SEQEND")
      item.parent = parent;
    if (section == "TABLES" || item.type == "BLOCK") item.name = item.text(2);
  }

  void index() {
    std::unordered_map<std::int64_t, const Item*> seen;
    for (Item& i : items_) {
      if (i.section == "CLASSES") {
        classes_.insert(i.text(1));
        continue;
      }
      if (i.section == "ACDSDATA" || i.section == "THUMBNAILIMAGE") continue;
      if (i.section == "TABLES" && i.type != "TABLE" && i.type != "ENDTAB") {
        entries_[i.type].emplace(upper(i.name), &i);
      }
      if (i.type == "ENDTAB" || (old_ && i.type == "TABLE")) continue;
      const Tag* t = i.find(i.type == "DIMSTYLE" && !old_ ? 105 : 5);
      if (!t || (old_ && i.type == "DIMSTYLE")) {
        if (!old_) say(i, "has no handle");
        continue;
      }
      i.handle = handleOf(t->value);
      if (i.handle <= 0) {
        say(i, "its handle is none");
      } else if (!byHandle_.emplace(i.handle, &i).second) {
        say(i, "its handle is used before");
      }
      top_ = std::max(top_, i.handle);
    }
  }

  std::string variable(std::string_view name) const {
    for (std::size_t i = 0; i + 1 < header_.tags.size(); ++i) {
      if (header_.tags[i].code == 9 && trimmed(header_.tags[i].value) == name) {
        return std::string(trimmed(header_.tags[i + 1].value));
      }
    }
    return {};
  }

  // --- rules
  void header() {
    if (old_ && variable("$HANDSEED").empty()) return;
    const std::int64_t seed = handleOf(variable("$HANDSEED"));
    if (seed <= top_) say("$HANDSEED is missing or not above every handle");
  }

  void tables() {
    std::map<std::string, const Item*> table;
    for (const Item& i : items_) {
      if (i.type == "TABLE") table[upper(i.name)] = &i;
    }
    for (const auto& [name, entries] : requiredTables()) {
      if (!table.count(name)) say("table " + name + " is missing");
      for (const std::string& e : entries) {
        if (!has(name, e)) say("table " + name + " has no " + e);
      }
    }
    for (const Item& i : items_) {
      if (i.section != "TABLES" || i.type == "ENDTAB") continue;
      if (i.type == "TABLE") {
        if (i.markers().empty() || i.markers()[0] != "AcDbSymbolTable")
          say(i, "lacks AcDbSymbolTable");
        continue;
      }
      const auto marker = entryMarkers().find(i.type);
      const auto own = i.markers();
      if (marker == entryMarkers().end() || i.type != i.container) {
        say(i, "is no entry of this table");
      } else if (std::find(own.begin(), own.end(), marker->second) == own.end()) {
        say(i, "lacks " + marker->second);
      }
      const auto t = table.find(i.container);
      if (version_ >= 1015 && t != table.end() && i.owner() != t->second->handle) {
        say(i, "its owner is not its table");
      }
      entryName(i);
      if (i.type == "LAYER" && !has("LTYPE", i.text(6))) say(i, "its line type is missing");
    }
  }

  void entryName(const Item& i) {
    if (i.type == "STYLE" && (i.number_(70) & 1)) return;  // a shape file: it has no name
    std::string_view name = i.name;
    if (!name.empty() && name[0] == '*') name.remove_prefix(1);
    if (name.empty() || (i.type != "APPID" && name.find_first_of("<>/\\\":;?*,=`") != name.npos &&
                         name.find("\\U+") == name.npos)) {
      say(i, "its name cannot be used");
    }
    const bool several = i.type == "VPORT" || i.type == "VIEW";
    if (!several && entries_[i.type].count(upper(i.name)) > 1) say(i, "its name stands twice");
  }

  bool has(const std::string& table, const std::string& name) const {
    const auto t = entries_.find(table);
    return t != entries_.end() && t->second.count(upper(name)) != 0;
  }

  static bool isEntity(const Item& i) { return i.section == "ENTITIES" || i.section == "BLOCKS"; }

  void entity(const Item& i) {
    const bool mark = i.type == "BLOCK" || i.type == "ENDBLK";
    if (!mark && !i.find(8) && !(old_ && (i.type == "SEQEND" || i.type == "VERTEX")))
      say(i, "has no layer");
    if (i.find(8) && !old_ && !has("LAYER", i.text(8)))
      say(i, "its layer is missing: " + i.text(8));
    if (i.find(6) && !old_ && !has("LTYPE", i.text(6)))
      say(i, "its line type is missing: " + i.text(6));
    const bool text =
        i.type == "TEXT" || i.type == "ATTRIB" || i.type == "ATTDEF" || i.type == "MTEXT";
    if (text && i.find(7) && !has("STYLE", i.text(7)))
      say(i, "its text style is missing: " + i.text(7));
    if ((i.type == "INSERT" || i.type == "ACAD_TABLE") && !blocks_.count(upper(i.text(2)))) {
      say(i, "its block is missing: " + i.text(2));
    }
    if (i.type == "INSERT" && upper(i.text(2)) == i.container && i.section == "BLOCKS") {
      say(i, "stands in its own block");
    }
    if (old_) return oldEntity(i);
    markers(i);
    if (i.type == "LWPOLYLINE" && i.number_(90, -1) != countVertices(i))
      say(i, "counts its vertices wrong");
    if (version_ < 1014 && i.type == "LWPOLYLINE") say(i, "this release has no light polylines");
    if (version_ >= 1015) owner(i);
  }

  static int countVertices(const Item& i) {
    int n = 0;
    for (const Tag& t : i.tags) {
      if (t.code == 1001) break;
      n += t.code == 10;
    }
    return n;
  }

  void oldEntity(const Item& i) {
    static const std::set<std::string> kinds = {
        "LINE",   "POINT",    "CIRCLE",    "ARC",    "TRACE",    "SOLID",  "TEXT",
        "SHAPE",  "INSERT",   "ATTDEF",    "ATTRIB", "POLYLINE", "VERTEX", "SEQEND",
        "3DFACE", "VIEWPORT", "DIMENSION", "BLOCK",  "ENDBLK",   "3DLINE"};
    if (!kinds.count(i.type)) say(i, "this release has no such kind");
    for (const Tag& t : i.tags) {
      if (t.code == 1001) break;
      if (in(t.code, 80, 139) || in(t.code, 149, 169) || in(t.code, 179, 209) ||
          in(t.code, 240, 998)) {
        say(i, "group " + std::to_string(t.code) + " is unknown to this release");
      }
    }
  }

  void markers(const Item& i) {
    const auto range = entityMarkers().equal_range(i.type);
    if (range.first == range.second) return;
    auto own = i.markers();
    bool good = !own.empty() && own[0] == "AcDbEntity";
    if (good) own.erase(own.begin());
    good = good && std::any_of(range.first, range.second,
                               [&](const auto& row) { return row.second == own; });
    if (good) return;
    std::string all;
    for (const std::string& m : i.markers()) all += " " + m;
    say(i, "its subclass markers are" + (all.empty() ? " none" : all));
  }

  void owner(const Item& i) {
    std::set<std::int64_t> good;
    const auto block = [&](const std::string& name) {
      const auto t = entries_.find("BLOCK_RECORD");
      if (t == entries_.end()) return;
      const auto e = t->second.find(name);
      if (e != t->second.end()) good.insert(e->second->handle);
    };
    if (i.parent) {
      good = {i.parent->handle, i.parent->owner()};
    } else if (i.section == "ENTITIES") {
      block(i.number_(67) == 1 ? "*PAPER_SPACE" : "*MODEL_SPACE");
    } else {
      block(i.container);
      const bool space = i.container == "*MODEL_SPACE" || i.container == "*PAPER_SPACE";
      if (space && i.type != "BLOCK" && i.type != "ENDBLK") say(i, "belongs into ENTITIES");
    }
    if (!good.count(i.owner())) say(i, "its owner is not what contains it");
  }

  void sequences() {
    std::set<const Item*> closed, withParts;
    for (const Item& i : items_) {
      if (i.type != "VERTEX" && i.type != "ATTRIB" && i.type != "SEQEND") continue;
      if (!isEntity(i)) continue;
      const std::string parent = i.parent ? i.parent->type : "";
      const bool good = i.type == "VERTEX" ? parent == "POLYLINE"
                        : i.type == "ATTRIB"
                            ? parent == "INSERT" || parent == "ACAD_TABLE"
                            : parent == "POLYLINE" || parent == "INSERT" || parent == "ACAD_TABLE";
      if (!good) say(i, "stands out of place");
      if (i.type == "SEQEND") closed.insert(i.parent);
      if (i.type != "SEQEND") withParts.insert(i.parent);
    }
    for (const Item& i : items_) {
      if (!isEntity(i)) continue;
      const bool follows = i.type == "POLYLINE" || (i.type == "INSERT" && i.number_(66) == 1);
      if (follows && !closed.count(&i)) say(i, "no SEQEND closes it");
      if (i.type == "INSERT" && !follows && withParts.count(&i))
        say(i, "has attributes but not 66 = 1");
    }
  }

  void xdata(const Item& i) {
    const auto first =
        std::find_if(i.tags.begin(), i.tags.end(), [](const Tag& t) { return t.code == 1001; });
    if (first == i.tags.end() || i.section == "HEADER") return;
    std::set<std::string> applications;
    int depth = 0, size = 0;
    std::vector<int> expected;
    for (auto t = first; t != i.tags.end(); ++t) {
      const int c = t->code;
      if (!expected.empty()) {
        if (c != expected.front()) say(i, "extended data: a point without its other axes");
        expected.erase(expected.begin());
        if (c >= 1020 && c <= 1033) continue;
        expected.clear();
      }
      if (c == 1001) {
        const std::string name = upper(trimmed(t->value));
        if (!has("APPID", name)) say(i, "application " + name + " is not registered");
        if (!applications.insert(name).second) say(i, "application " + name + " stands twice");
        if (depth) say(i, "extended data: braces left open");
        depth = 0;
        size += 3;
      } else if (c == 1000 || c == 1003) {
        size += 4 + static_cast<int>(t->value.size());
        const std::size_t limit = version_ < 1021 ? 255 : 2049;
        if (t->value.size() > limit) say(i, "extended data: a text too long");
        if (c == 1003 && !old_ && !has("LAYER", std::string(t->value)))
          say(i, "extended data: no such layer");
      } else if (c == 1002) {
        const std::string_view brace = trimmed(t->value);
        depth += brace == "{" ? 1 : brace == "}" ? -1 : 1000;
        if (depth < 0 || depth > 100) {
          say(i, "extended data: braces do not match");
          depth = 0;
        }
      } else if (c == 1004) {
        size += 2 + static_cast<int>(t->value.size() / 2);
        if (trimmed(t->value).size() > 254)
          say(i, "extended data: more than 127 bytes in one piece");
      } else if (in(c, 1010, 1013)) {
        expected = {c + 10, c + 20};
        size += 25;
      } else if (c == 1005 || in(c, 1040, 1042)) {
        size += 9;
      } else if (c == 1070 || c == 1071) {
        size += c == 1070 ? 3 : 5;
      } else if (!(old_ && in(c, 1020, 1033))) {  // old programs wrote axes alone
        say(i, "extended data: group " + std::to_string(c));
      }
    }
    if (depth || !expected.empty()) say(i, "extended data end inside braces or a point");
    if (size > 16383) say(i, "extended data of " + std::to_string(size) + " bytes");
  }

  void pointers(const Item& i) {
    if (i.section == "CLASSES" || i.section == "ACDSDATA" || i.section == "THUMBNAILIMAGE") return;
    if (i.type == "XRECORD") return;
    for (const Tag& t : i.tags) {
      if (t.code == 1001) break;
      if (!in(t.code, 340, 369)) continue;
      const std::int64_t h = handleOf(t.value);
      if (h != 0 && !byHandle_.count(h)) {
        say(i, "group " + std::to_string(t.code) +
                   " points at nothing: " + std::string(trimmed(t.value)));
      }
    }
  }

  void values(const Item& i) {
    if (i.section == "ACDSDATA") return;
    for (const Tag& t : i.tags) {
      const std::string_view v = trimmed(t.value);
      bool good = true;
      if (kindOf(t.code) == Kind::real) {
        double number = 0;
        const std::string_view digits = !v.empty() && v[0] == '+' ? v.substr(1) : v;
        const auto r = std::from_chars(digits.data(), digits.data() + digits.size(), number);
        good =
            r.ec == std::errc() && r.ptr == digits.data() + digits.size() && std::isfinite(number);
      } else if (kindOf(t.code) == Kind::integer) {
        std::int64_t number = 0;
        const auto r = std::from_chars(v.data(), v.data() + v.size(), number);
        good = r.ec == std::errc() && r.ptr == v.data() + v.size() &&
               (!isShort(t.code) || in(static_cast<int>(number), -32768, 65535));
      } else if (kindOf(t.code) == Kind::handle && !(t.code == 5 && i.type == "DIMSTYLE")) {
        good = handleOf(v) >= 0;
      } else if (version_ >= 1021 && kindOf(t.code) == Kind::text) {
        good = isUtf8(t.value);
      }
      if (!good) say(i, "group " + std::to_string(t.code) + " holds no value of its kind");
    }
  }

  static bool isUtf8(std::string_view s) {
    for (std::size_t i = 0; i < s.size();) {
      const auto c = static_cast<unsigned char>(s[i]);
      const std::size_t n = c < 0x80                ? 1
                            : c >= 0xC2 && c < 0xE0 ? 2
                            : c >= 0xE0 && c < 0xF0 ? 3
                            : c >= 0xF0 && c < 0xF5 ? 4
                                                    : 0;
      if (n == 0 || i + n > s.size()) return false;
      for (std::size_t k = 1; k < n; ++k) {
        if ((static_cast<unsigned char>(s[i + k]) & 0xC0) != 0x80) return false;
      }
      i += n;
    }
    return true;
  }

  void objects() {
    const Item* root = nullptr;
    std::map<std::int64_t, std::int64_t> layouts;
    std::set<std::string> lacking;
    for (const Item& i : items_) {
      if (i.section != "CLASSES" && needsClass(i.type) && !classes_.count(i.type))
        lacking.insert(i.type);
      if (i.section != "OBJECTS") continue;
      if (!root) {
        root = &i;
        if (i.type != "DICTIONARY" || i.owner() > 0)
          say(i, "OBJECTS must begin with the root dictionary");
      } else if (version_ >= 1015 && !byHandle_.count(i.owner())) {
        say(i, "its owner is missing");
      }
      if (i.type == "LAYOUT") layouts[i.handle] = lastPointer(i);
    }
    for (const std::string& type : lacking) say(type + " has no CLASS");
    const auto isGroups = [](const Tag& t) { return t.code == 3 && t.value == "ACAD_GROUP"; };
    if (!root || std::none_of(root->tags.begin(), root->tags.end(), isGroups)) {
      say("the root dictionary has no ACAD_GROUP");
    }
    for (const auto& [name, record] : entries_["BLOCK_RECORD"]) {
      if (!blocks_.count(name)) say(*record, "has no BLOCK");
      const std::int64_t layout = record->find(340) ? handleOf(record->find(340)->value) : 0;
      const bool space = name.rfind("*MODEL_SPACE", 0) == 0 || name.rfind("*PAPER_SPACE", 0) == 0;
      if (space && layout > 0 && layouts[layout] != record->handle)
        say(*record, "its LAYOUT is another's");
    }
    for (const std::string& name : blocks_) {
      if (!has("BLOCK_RECORD", name)) say("BLOCK " + name + " has no BLOCK_RECORD");
    }
  }

  static std::int64_t lastPointer(const Item& layout) {
    std::int64_t pointer = 0;
    bool own = false;
    for (const Tag& t : layout.tags) {
      own |= t.code == 100 && trimmed(t.value) == "AcDbLayout";
      if (own && t.code == 330 && pointer == 0) pointer = handleOf(t.value);
    }
    return pointer;
  }

  std::string_view bytes_;
  std::vector<Tag> tags_;
  std::deque<std::string> texts_;
  std::deque<Item> items_;
  Item header_;
  std::size_t count_ = 0;
  int version_ = 0;
  bool old_ = false;
  std::int64_t top_ = 0;
  std::set<std::string> sections_, blocks_, classes_;
  std::unordered_map<std::int64_t, const Item*> byHandle_;
  std::map<std::string, std::multimap<std::string, const Item*>> entries_;
  std::vector<std::string> faults_;
};

}  // namespace

std::vector<std::string> checkDrawing(std::string_view bytes) { return Checker(bytes).run(); }

}  // namespace checking
