#include "cad/drawing/drawing.h"

#include <algorithm>
#include <cstring>

#include "platform/files.h"
#include "platform/text.h"

namespace cad {
namespace {

std::vector<Drawing*>& registry() {
  static std::vector<Drawing*> drawings(1, nullptr);
  return drawings;
}

std::vector<std::unique_ptr<TagList>>& pool() {
  static std::vector<std::unique_ptr<TagList>> lists;
  return lists;
}

bool sameName(const std::u16string& name, std::u16string_view star, std::u16string_view dollar) {
  return platform::equalNoCase(name, star) || platform::equalNoCase(name, dollar);
}

}  // namespace

Drawing* drawingNumbered(std::uint32_t number) {
  return number < registry().size() ? registry()[number] : nullptr;
}

std::unique_ptr<TagList> borrowTags() {
  if (pool().empty()) return std::make_unique<TagList>();
  std::unique_ptr<TagList> tags = std::move(pool().back());
  pool().pop_back();
  return tags;
}

void returnTags(std::unique_ptr<TagList> tags) {
  if (!tags || pool().size() > 64) return;
  tags->clear();
  pool().push_back(std::move(tags));
}

Drawing::Drawing(AcDbDatabase* database) : database_(database), texts_(1 << 16) {
  number_ = static_cast<std::uint32_t>(registry().size());
  registry().push_back(this);
  enterTypeNames(names_);
}

Drawing::~Drawing() {
  registry()[number_] = nullptr;
  for (AcDbObject* object : open_) delete object;
}

platform::Result<void> Drawing::load(const std::string& path, std::vector<std::string>& warnings) {
  // In memory of its own and never mapped: another program may change the file meanwhile.
  auto file = platform::readOrdinaryFile(path);
  if (!file) return platform::Error{file.error()};
  return loadBytes(std::move(file->memory), file->size, path, warnings);
}

platform::Result<void> Drawing::loadBytes(Block bytes, std::size_t size, const std::string& name,
                                          std::vector<std::string>& warnings) {
  const std::string_view text(bytes.data(), size);
  sources_.push_back(std::move(bytes));
  auto scanned = scanDxf(text, name, names_, sets_);
  if (!scanned) return platform::Error{scanned.error()};
  return build(std::move(*scanned), name, warnings);
}

// Turns the flat list of records into tables, blocks and entities with their parts.
struct Drawing::Builder {
  Drawing& d;
  const std::string& name;
  std::vector<std::string>& warnings;
  std::vector<std::uint32_t> broken;  // records with a missing or doubled handle

  std::uint32_t section = 0, table = 0, block = 0, parent = 0;
  Type tableType = Type::other;
  std::u16string sectionName;
  std::size_t doubled = 0, missing = 0;

  // What the file does not close, and before which record that shows (0: at its end).
  struct Unclosed {
    std::string_view mark;
    std::uint32_t before, owner;
    Type tableType;
    std::u16string section;
  };
  std::vector<Unclosed> unclosed;

  void notClosed(std::uint32_t before) {
    if (block) unclosed.push_back({"ENDBLK", before, block, Type::other, {}});
    if (table) unclosed.push_back({"ENDTAB", before, 0, tableType, {}});
    block = table = 0;
  }
  void sectionNotClosed(std::uint32_t before) {
    notClosed(before);
    if (section) unclosed.push_back({"ENDSEC", before, 0, Type::other, sectionName});
    section = 0;
  }
  // Comes last, because the marks take handles that no object of the file may have.
  void close() {
    for (const Unclosed& u : unclosed) {
      const std::uint32_t mark = d.addMark(u.mark, u.before, u.owner);
      if (u.mark == "ENDBLK") d.blocks_[d.blockOfId_[u.owner]].end = mark;
      if (u.mark == "ENDSEC") d.sections_[u.section].second = mark;
      if (u.mark == "ENDTAB" && u.tableType != Type::other) {
        d.tables_[static_cast<int>(u.tableType)].endtab = mark;
      }
    }
  }

  Record& rec(std::uint32_t i) { return d.records_[i]; }

  void step(std::uint32_t i) {
    Record& r = rec(i);
    if (r.type == Type::section) return openSection(i);
    if (r.type == Type::endsec) return closeSection(i);
    if (r.type == Type::eof) return sectionNotClosed(i);
    if (sectionName == u"TABLES") {
      tableStep(i);
    } else if (sectionName == u"BLOCKS") {
      blockStep(i);
    } else if (sectionName == u"ENTITIES") {
      entityStep(i, r.is(Record::paper) ? d.paperSpace_ : d.modelSpace_, true);
    } else if (sectionName == u"OBJECTS") {
      if (!d.namedObjects_ && r.type == Type::dictionary) d.namedObjects_ = i;
    } else if (sectionName == u"CLASSES" || sectionName == u"ACDSDATA") {
      r.handle = 0;  // numbers behind group 5 mean other things here
      return;
    }
    if (sectionName == u"CLASSES" || r.type == Type::endtab) return;
    noteHandle(i);
  }

  void openSection(std::uint32_t i) {
    if (section) {
      warnings.push_back(name + ": section " + platform::narrow(sectionName) +
                         " is not closed; closed where the next one begins");
      sectionNotClosed(i);
    }
    section = i;
    sectionName = d.names_.text(rec(i).name);
    rec(i).handle = 0;
    rec(i).layer = 0;
    rec(i).flags = 0;
    table = block = parent = 0;
    // The blocks of the spaces must be known before the first entity.
    if (sectionName == u"ENTITIES" || sectionName == u"BLOCKS") spaces();
    if (!d.sections_.try_emplace(sectionName, i, 0).second && sectionName != u"ENTITIES") {
      warnings.push_back(name + ": section " + platform::narrow(sectionName) + " stands twice");
    }
  }

  void closeSection(std::uint32_t i) {
    if (const auto it = d.sections_.find(sectionName); it != d.sections_.end())
      it->second.second = i;
    notClosed(i);
    section = 0;
    sectionName.clear();
    parent = 0;
  }

  void tableStep(std::uint32_t i) {
    Record& r = rec(i);
    if (r.type == Type::table) {
      notClosed(i);
      table = i;
      tableType = Type::other;
      const std::u16string& n = d.names_.text(r.name);
      for (auto t = static_cast<int>(Type::blockRecord); t <= static_cast<int>(Type::ucs); ++t) {
        if (platform::equalNoCase(n, platform::widen(nameOf(static_cast<Type>(t))))) {
          tableType = static_cast<Type>(t);
        }
      }
      if (tableType != Type::other) {
        d.tables_.try_emplace(static_cast<int>(tableType)).first->second.table = i;
      }
      return;
    }
    if (r.type == Type::endtab) {
      if (tableType != Type::other) d.tables_[static_cast<int>(tableType)].endtab = i;
      table = 0;
      return;
    }
    r.owner = table;
    if (table && r.type == tableType) {
      TableInfo& info = d.tables_[static_cast<int>(tableType)];
      const bool fresh = info.byName.try_emplace(r.name, i).second;
      if (!fresh && tableType != Type::vport && r.name != 0) {
        warnings.push_back(name + ": table " + std::string(nameOf(tableType)) + " has \"" +
                           platform::narrow(d.names_.text(r.name)) + "\" twice; the first is used");
      }
    }
  }

  void blockStep(std::uint32_t i) {
    Record& r = rec(i);
    if (r.type == Type::block) {
      notClosed(i);
      const std::uint32_t entry = entryOfBlock(r.name);
      BlockInfo info;
      info.id = entry ? entry : i;
      info.begin = i;
      if (const auto it = d.blockOfId_.find(info.id); it != d.blockOfId_.end()) {
        d.blocks_[it->second].begin = i;  // a space that is known already
      } else {
        enter(info, r.name);
      }
      block = info.id;
      parent = 0;
      r.owner = info.id;
      return;
    }
    if (r.type == Type::endblk) {
      if (block) d.blocks_[d.blockOfId_[block]].end = i;
      r.owner = block;
      block = 0;
      parent = 0;
      return;
    }
    const bool layout = block && isLayout(block);
    entityStep(i, block, layout);
  }

  bool isLayout(std::uint32_t id) {
    const std::u16string n = platform::upper(d.names_.text(rec(id).name));
    return n.rfind(u"*PAPER_SPACE", 0) == 0 || n.rfind(u"*MODEL_SPACE", 0) == 0;
  }

  void entityStep(std::uint32_t i, std::uint32_t owner, bool space) {
    Record& r = rec(i);
    switch (r.type) {
      case Type::vertex:
      case Type::attrib:
      case Type::seqend:
        if (parent) {
          r.owner = parent;
          r.set(Record::child);
          if (r.type == Type::seqend) parent = 0;
          return;
        }
        break;
      case Type::polyline:
        parent = i;
        break;
      case Type::insert:
        parent = r.is(Record::hasParts) ? i : 0;
        break;
      default:
        parent = 0;
        break;
    }
    r.owner = owner;
    if (space) r.set(Record::space);
  }

  std::uint32_t entryOfBlock(std::uint32_t blockName) {
    const auto it = d.tables_.find(static_cast<int>(Type::blockRecord));
    if (it == d.tables_.end()) return 0;
    const auto e = it->second.byName.find(blockName);
    return e == it->second.byName.end() ? 0 : e->second;
  }

  void enter(const BlockInfo& info, std::uint32_t blockName) {
    d.blockOfId_[info.id] = static_cast<std::uint32_t>(d.blocks_.size());
    d.blockOfName_.try_emplace(blockName, info.id);
    d.blocks_.push_back(info);
  }

  // Model space and the active layout, by their entries, or as stand-ins where a file has none.
  void spaces() {
    if (d.modelSpace_) return;
    d.modelSpace_ = space(u"*Model_Space", u"$MODEL_SPACE");
    d.paperSpace_ = space(u"*Paper_Space", u"$PAPER_SPACE");
  }

  std::uint32_t space(std::u16string_view star, std::u16string_view dollar) {
    std::uint32_t id = entryOfBlock(d.names_.of(star));
    std::uint32_t blockName = d.names_.of(star);
    if (!id) {
      // Old files may have BLOCKs of the spaces and no table of blocks.
      for (std::uint32_t i = 1; i < d.recordCount() && d.format_.version < 1012; ++i) {
        if (rec(i).type == Type::block && sameName(d.names_.text(rec(i).name), star, dollar)) {
          id = i;
          blockName = rec(i).name;
          break;
        }
      }
    }
    if (!id) {
      id = d.recordCount();
      TagList text;
      text.create(d.format_, "BLOCK_RECORD");
      text.addText(2, star);
      Record stand;
      const std::string_view stored = d.store(text);
      stand.bytes = stored.data();
      stand.size = static_cast<std::uint32_t>(stored.size());
      stand.type = Type::blockRecord;
      stand.typeName = static_cast<std::uint32_t>(Type::blockRecord);
      stand.name = blockName;
      stand.set(Record::synthetic);
      d.records_.push_back(stand);
    }
    BlockInfo info;
    info.id = id;
    enter(info, blockName);
    if (blockName != d.names_.of(star)) d.blockOfName_.try_emplace(d.names_.of(star), id);
    return id;
  }

  void noteHandle(std::uint32_t i) {
    const std::uint64_t h = rec(i).handle;
    if (h == 0) {
      if (d.format_.version >= 1012) {
        ++missing;
        broken.push_back(i);
      }
      return;
    }
    if (d.byHandle(h)) {
      ++doubled;
      rec(i).handle = 0;
      broken.push_back(i);
      return;
    }
    d.registerHandle(h, i);
  }
};

platform::Result<void> Drawing::build(ScannedFile file, const std::string& name,
                                      std::vector<std::string>& warnings) {
  format_ = file.format;
  preamble_ = file.preamble;
  trailer_ = file.trailer;
  records_ = std::move(file.records);
  const std::uint32_t count = recordCount();
  for (std::uint32_t i = 1; i < count; ++i) {
    records_[i].previous = i - 1;
    records_[i].next = i + 1 < count ? i + 1 : 0;
  }
  first_ = 1;
  last_ = count - 1;
  Builder builder{*this, name, warnings, {}, 0, 0, 0, 0, Type::other, {}, 0, 0, {}};
  for (std::uint32_t i = 1; i < count; ++i) builder.step(i);
  builder.sectionNotClosed(0);
  if (!file.sawEof) {
    warnings.push_back(name + ": the file has no end mark; it may have been cut off");
  }
  if (sections_.empty()) {
    return platform::Error{name + ": holds no section; it is no DXF drawing"};
  }
  builder.spaces();
  usesHandles_ = format_.version >= 1012 || headerText("$HANDLING") == u"1" ||
                 !denseHandles_.empty() || !sparseHandles_.empty();
  if (!headerText("$HANDLING").empty()) {
    usesHandles_ = format_.version >= 1012 || headerText("$HANDLING") == u"1" || nextHandle_ > 1;
  }
  TagList tags;
  TagRange seed;
  if (headerVariable("$HANDSEED", tags, seed) && !seed.empty()) {
    nextHandle_ = std::max(nextHandle_, tags.handle(seed.begin));
  }
  if (builder.doubled) {
    warnings.push_back(name + ": " + std::to_string(builder.doubled) +
                       " handle(s) used twice; the first user keeps it, the others get new ones");
  }
  if (builder.missing) {
    warnings.push_back(name + ": " + std::to_string(builder.missing) +
                       " object(s) without a handle; they get new ones");
  }
  repairHandles(builder.broken);
  builder.close();
  if (!file.sawEof) addMark("EOF", 0, 0);
  return {};
}

void Drawing::repairHandles(const std::vector<std::uint32_t>& broken) {
  auto tags = borrowTags();
  for (const std::uint32_t i : broken) {
    parse(i, *tags);
    const int code = records_[i].type == Type::dimstyle && format_.version >= 1012 ? 105 : 5;
    const std::uint64_t handle = takeHandle();
    const int at = tags->find(code, tags->body());
    if (at >= 0) {
      tags->setHandle(at, handle);
    } else {
      tags->insertHandle(1, code, handle);
    }
    const std::uint16_t structure = records_[i].flags;
    rewrite(i, *tags);
    records_[i].flags = structure | Record::changed;
    registerHandle(handle, i);
  }
  returnTags(std::move(tags));
}

void Drawing::registerHandle(std::uint64_t handle, std::uint32_t record) {
  if (handle == 0) return;
  if (handle < 8 * static_cast<std::uint64_t>(records_.size()) + 65536) {
    if (handle >= denseHandles_.size()) {
      denseHandles_.resize(std::max<std::size_t>(handle + 1, denseHandles_.size() * 3 / 2), 0);
    }
    denseHandles_[handle] = record;
  } else {
    sparseHandles_[handle] = record;
  }
  if (handle >= nextHandle_ && handle != ~0ULL) nextHandle_ = handle + 1;
}

std::uint32_t Drawing::byHandle(std::uint64_t handle) const {
  if (handle < denseHandles_.size() && denseHandles_[handle]) return denseHandles_[handle];
  const auto it = sparseHandles_.find(handle);
  return it == sparseHandles_.end() ? 0 : it->second;
}

std::uint64_t Drawing::takeHandle() { return nextHandle_++; }

const BlockInfo* Drawing::block(std::uint32_t id) const {
  const auto it = blockOfId_.find(id);
  return it == blockOfId_.end() ? nullptr : &blocks_[it->second];
}

std::uint32_t Drawing::blockByName(std::uint32_t name) const {
  const auto it = name ? blockOfName_.find(name) : blockOfName_.end();
  if (it == blockOfName_.end()) return 0;
  if (!records_[it->second].is(Record::erased)) return it->second;
  for (const BlockInfo& b : blocks_) {  // taken back and made again: rare
    if (records_[b.id].name == name && !records_[b.id].is(Record::erased)) return b.id;
  }
  return 0;
}

std::uint32_t Drawing::firstEntity(std::uint32_t block) const {
  const BlockInfo* info = this->block(block);
  if (!info) return 0;
  if (block == modelSpace_ || block == paperSpace_) {
    const auto it = sections_.find(u"ENTITIES");
    if (it == sections_.end()) return 0;
    return nextEntity(block, it->second.first);
  }
  return info->begin ? nextEntity(block, info->begin) : 0;
}

std::uint32_t Drawing::nextEntity(std::uint32_t block, std::uint32_t entity) const {
  const bool shared = block == modelSpace_ || block == paperSpace_;
  for (std::uint32_t i = records_[entity].next; i; i = records_[i].next) {
    const Record& r = records_[i];
    if (r.type == Type::endblk && !shared) return 0;
    if (r.owner == block && !r.is(Record::child) && !r.is(Record::erased) &&
        r.type != Type::endblk && r.type != Type::block) {
      return i;
    }
    if (shared && r.type == Type::section && names_.text(r.name) != u"ENTITIES") return 0;
  }
  return 0;
}

std::uint32_t Drawing::firstPart(std::uint32_t entity) const { return nextPart(entity, entity); }

std::uint32_t Drawing::nextPart(std::uint32_t entity, std::uint32_t part) const {
  for (std::uint32_t i = records_[part].next; i; i = records_[i].next) {
    const Record& r = records_[i];
    if (!r.is(Record::child) || r.owner != entity || r.type == Type::seqend) return 0;
    if (!r.is(Record::erased)) return i;
  }
  return 0;
}

const TableInfo* Drawing::table(Type entryType) const {
  const auto it = tables_.find(static_cast<int>(entryType));
  return it == tables_.end() ? nullptr : &it->second;
}

std::uint32_t Drawing::tableEntry(Type entryType, std::u16string_view name) const {
  return tableEntry(entryType, names_.find(name));
}

std::uint32_t Drawing::tableEntry(Type entryType, std::uint32_t known) const {
  const TableInfo* info = table(entryType);
  if (!info) return 0;
  const auto it = known ? info->byName.find(known) : info->byName.end();
  if (it == info->byName.end()) return 0;
  const Record& r = records_[it->second];
  if (!r.is(Record::erased) && r.name == known) return it->second;
  // Taken back and made again, or renamed: rare.
  for (std::uint32_t e = firstTableEntry(info->table); e; e = nextTableEntry(info->table, e)) {
    if (records_[e].name == known) return e;
  }
  return 0;
}

std::uint32_t Drawing::firstTableEntry(std::uint32_t table) const {
  return nextTableEntry(table, table);
}

std::uint32_t Drawing::nextTableEntry(std::uint32_t table, std::uint32_t entry) const {
  if (!format_.hasHandlesAndMarkers() && this->table(Type::blockRecord) &&
      this->table(Type::blockRecord)->table == table) {
    // Old files have no table of blocks: their definitions stand for it.
    const auto it = blockOfId_.find(entry);
    for (std::size_t k = it == blockOfId_.end() ? 0 : it->second + 1U; k < blocks_.size(); ++k) {
      if (!records_[blocks_[k].id].is(Record::erased)) return blocks_[k].id;
    }
    return 0;
  }
  for (std::uint32_t i = records_[entry].next; i; i = records_[i].next) {
    const Record& r = records_[i];
    if (r.type == Type::endtab || r.type == Type::endsec) return 0;
    if (r.owner == table && !r.is(Record::erased)) return i;
  }
  return 0;
}

// --- header variables ----------------------------------------------------------------------------

bool Drawing::headerVariable(std::string_view name, TagList& tags, TagRange& range) const {
  const auto it = sections_.find(u"HEADER");
  if (it == sections_.end()) return false;
  parse(it->second.first, tags);
  for (int i = 1; i < tags.size(); ++i) {
    if (tags[i].code != 9 || tags[i].bytes() != name) continue;
    int end = i + 1;
    while (end < tags.size() && tags[end].code != 9) ++end;
    range = {i + 1, end};
    return true;
  }
  return false;
}

std::u16string Drawing::headerText(std::string_view name, std::u16string_view fallback) const {
  TagList tags;
  TagRange range;
  if (!headerVariable(name, tags, range) || range.empty()) return std::u16string(fallback);
  std::u16string text = tags.text(range.begin);
  const std::size_t a = text.find_first_not_of(u" \t"), b = text.find_last_not_of(u" \t");
  return a == text.npos ? std::u16string() : text.substr(a, b - a + 1);
}

bool Drawing::setHeaderText(std::string_view name, std::u16string_view text) {
  auto tags = borrowTags();
  TagRange range;
  const bool found = headerVariable(name, *tags, range) && !range.empty();
  if (found) {
    tags->setText(range.begin, text);
    commit(sections_[u"HEADER"].first, *tags);
  }
  returnTags(std::move(tags));
  return found;
}

void Drawing::readHeaderValues() const {
  header_ = HeaderValues();
  header_.known = true;
  header_.layer = headerText("$CLAYER", u"0");
  if (header_.layer.empty()) header_.layer = u"0";
  TagList tags;
  TagRange range;
  const auto vector = [&](std::string_view name, AcGePoint3d& p) {
    if (!headerVariable(name, tags, range) || range.empty()) return false;
    p = tags.point(range.begin);
    return true;
  };
  AcGePoint3d origin, x, y;
  if (!vector("$UCSXDIR", x) || !vector("$UCSYDIR", y)) return;
  vector("$UCSORG", origin);
  const AcGeVector3d xAxis = AcGeVector3d(x.x, x.y, x.z).normal();
  const AcGeVector3d zAxis = xAxis.crossProduct(AcGeVector3d(y.x, y.y, y.z)).normal();
  if (xAxis.length() == 0 || zAxis.length() == 0) return;
  const AcGeVector3d axes[] = {xAxis, zAxis.crossProduct(xAxis), zAxis};
  for (int c = 0; c < 3; ++c) {
    header_.user.entry[0][c] = axes[c].x;
    header_.user.entry[1][c] = axes[c].y;
    header_.user.entry[2][c] = axes[c].z;
  }
  header_.user.entry[0][3] = origin.x;
  header_.user.entry[1][3] = origin.y;
  header_.user.entry[2][3] = origin.z;
}

const std::u16string& Drawing::currentLayer() const {
  if (!header_.known) readHeaderValues();
  return header_.layer;
}
const AcGeMatrix3d& Drawing::userSystem() const {
  if (!header_.known) readHeaderValues();
  return header_.user;
}

// --- selection -----------------------------------------------------------------------------------

void Drawing::addToIndex(std::vector<std::vector<std::uint32_t>>& lists, std::vector<bool>& mixed,
                         std::uint32_t name, std::uint32_t record) {
  if (name >= lists.size()) {
    lists.resize(name + 1);
    mixed.resize(name + 1, false);
  }
  std::vector<std::uint32_t>& list = lists[name];
  if (!list.empty() && list.back() >= record) mixed[name] = true;
  list.push_back(record);
}

void Drawing::buildIndex() {
  index_ = Index();
  index_.built = true;
  for (std::uint32_t i = 1; i < recordCount(); ++i) {
    if (records_[i].is(Record::space) && !records_[i].is(Record::erased)) noteInIndex(i, Record());
  }
}

void Drawing::noteInIndex(std::uint32_t record, const Record& before) {
  if (!index_.built) return;
  const Record& r = records_[record];
  if (!r.is(Record::space) || r.is(Record::child)) return;
  const bool fresh = before.bytes == nullptr;
  if (fresh || before.layer != r.layer) {
    addToIndex(index_.byLayer, index_.mixedLayer, r.layer, record);
  }
  if (r.type == Type::insert && (fresh || before.name != r.name)) {
    addToIndex(index_.byBlock, index_.mixedBlock, r.name, record);
  }
  if (fresh || before.apps != r.apps) {
    for (const std::uint32_t app : sets_.members(r.apps)) {
      addToIndex(index_.byApplication, index_.mixedApplication, app, record);
    }
  }
}

// A list may hold records that have moved away, been erased, or come in twice or out of order: put
// right when it is asked for.
const std::vector<std::uint32_t>& Drawing::query(std::vector<std::vector<std::uint32_t>>& lists,
                                                 std::vector<bool>& mixed, std::uint32_t name) {
  if (name == 0 || name >= lists.size()) return empty_;
  std::vector<std::uint32_t>& list = lists[name];
  if (mixed[name]) {
    std::sort(list.begin(), list.end());
    list.erase(std::unique(list.begin(), list.end()), list.end());
    mixed[name] = false;
  }
  return list;
}

const std::vector<std::uint32_t>& Drawing::onLayer(std::uint32_t name) {
  if (!index_.built) buildIndex();
  return query(index_.byLayer, index_.mixedLayer, name);
}
const std::vector<std::uint32_t>& Drawing::withApplication(std::uint32_t name) {
  if (!index_.built) buildIndex();
  return query(index_.byApplication, index_.mixedApplication, name);
}
const std::vector<std::uint32_t>& Drawing::ofBlock(std::uint32_t name) {
  if (!index_.built) buildIndex();
  return query(index_.byBlock, index_.mixedBlock, name);
}

std::vector<std::uint32_t> Drawing::allInSpace() const {
  std::vector<std::uint32_t> all;
  for (std::uint32_t i = 1; i < recordCount(); ++i) {
    const Record& r = records_[i];
    if (r.is(Record::space) && !r.is(Record::erased) && !r.is(Record::child)) all.push_back(i);
  }
  return all;
}

bool Drawing::hasLinetype(std::u16string_view name) const {
  return platform::equalNoCase(name, u"ByLayer") || platform::equalNoCase(name, u"ByBlock") ||
         tableEntry(Type::ltype, name);
}

bool usableName(std::u16string_view name) {
  return !name.empty() && name.size() <= 255 &&
         name.find_first_of(u"<>/\\\":;?|,=`") == name.npos &&
         (name.find(u'*') == name.npos || name[0] == u'*');
}

void Drawing::setHighlighted(std::uint32_t record, bool on) {
  if (on) {
    highlighted_[record] = true;
  } else {
    highlighted_.erase(record);
  }
  ++revision_;
}

}  // namespace cad
