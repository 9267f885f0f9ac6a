// Opening, changing, adding and erasing the objects of a drawing, and taking changes back.
#include <algorithm>
#include <utility>

#include "cad/api/table.h"
#include "cad/drawing/drawing.h"
#include "platform/text.h"

namespace cad {

// --- views ---------------------------------------------------------------------------------------

AcDbObject* Drawing::makeView(std::uint32_t record, ViewState* state) const {
  const Record& r = records_[record];
  switch (r.type) {
    case Type::point:
      return new AcDbPoint(state);
    case Type::line:
      return new AcDbLine(state);
    case Type::text:
      return new AcDbText(state);
    case Type::attdef:
      return new AcDbAttributeDefinition(state);
    case Type::attrib:
      return new AcDbAttribute(state);
    case Type::insert:
      return new AcDbBlockReference(state);
    case Type::lwpolyline:
      return new AcDbPolyline(state);
    case Type::polyline:
      if (r.is(Record::poly3d)) return new AcDb3dPolyline(state);
      return new AcDbEntity(state);
    case Type::vertex:
      if (r.is(Record::child) && records_[r.owner].is(Record::poly3d)) {
        return new AcDb3dPolylineVertex(state);
      }
      return new AcDbEntity(state);
    case Type::layer:
      return new AcDbLayerTableRecord(state);
    case Type::style:
      return new AcDbTextStyleTableRecord(state);
    case Type::ltype:
      return new AcDbLinetypeTableRecord(state);
    case Type::appid:
      return new AcDbRegAppTableRecord(state);
    case Type::blockRecord:
      return new AcDbBlockTableRecord(state);
    case Type::block:
      return new AcDbBlockTableRecord(state);  // what names a block in old files
    case Type::dictionary:
      return new AcDbDictionary(state);
    case Type::xrecord:
      return new AcDbXrecord(state);
    case Type::acadTable:
      return new AcDbTable(state);
    case Type::tableStyle:
      return new AcDbTableStyle(state);
    case Type::table: {
      const auto is = [&](Type t) {
        const TableInfo* info = table(t);
        return info && info->table == record;
      };
      if (is(Type::blockRecord)) return new AcDbBlockTable(state);
      if (is(Type::layer)) return new AcDbLayerTable(state);
      if (is(Type::style)) return new AcDbTextStyleTable(state);
      if (is(Type::ltype)) return new AcDbLinetypeTable(state);
      if (is(Type::appid)) return new AcDbRegAppTable(state);
      return new AcDbSymbolTable(state);
    }
    default:
      break;
  }
  if (r.is(Record::space) || r.is(Record::child) || block(r.owner)) return new AcDbEntity(state);
  if (r.owner && records_[r.owner].type == Type::table) return new AcDbSymbolTableRecord(state);
  return new AcDbObject(state);
}

const TagList* Drawing::definitionTags(std::uint32_t record) const {
  if (records_[record].type != Type::attdef) return nullptr;
  auto& [text, tags] = definitions_[record];
  if (text != records_[record].bytes) {
    tags = std::make_unique<TagList>();
    parse(record, *tags);
    text = records_[record].bytes;
  }
  return tags.get();
}

AcDbObject* Drawing::open(std::uint32_t record, AcDb::OpenMode mode, bool openErased,
                          Acad::ErrorStatus& status) {
  Record& r = records_[record];
  if (r.is(Record::erased) && !openErased) {
    status = Acad::eWasErased;
    return nullptr;
  }
  status = Acad::eOk;
  if (r.is(Record::open)) {
    const auto it = std::find_if(open_.rbegin(), open_.rend(),
                                 [&](const AcDbObject* o) { return o->view_->record == record; });
    AcDbObject* object = *it;
    if (object->view_->writing) {
      status = Acad::eWasOpenForWrite;
      return nullptr;
    }
    if (mode == AcDb::kForWrite) {
      status = Acad::eWasOpenForRead;
      return nullptr;
    }
    ++object->view_->readers;
    return object;
  }
  auto* state = new ViewState;
  state->drawing = this;
  state->record = record;
  state->writing = mode == AcDb::kForWrite;
  state->readers = state->writing ? 0 : 1;
  AcDbObject* object = makeView(record, state);
  r.set(Record::open);
  open_.push_back(object);
  return object;
}

Acad::ErrorStatus Drawing::upgrade(AcDbObject& object) {
  ViewState& v = *object.view_;
  if (v.writing) return Acad::eOk;
  if (v.readers > 1) return Acad::eWasOpenForRead;
  v.readers = 0;
  v.writing = true;
  return Acad::eOk;
}

Acad::ErrorStatus Drawing::close(AcDbObject& object) {
  ViewState& v = *object.view_;
  if (!v.writing && --v.readers > 0) return Acad::eOk;
  if (v.writing && v.modified) {
    object.beforeCommit();
    if (v.tags) commit(v.record, *v.tags);
  }
  records_[v.record].set(Record::open, false);
  const auto it = std::find(open_.rbegin(), open_.rend(), &object);
  *it = open_.back();
  open_.pop_back();
  delete &object;
  return Acad::eOk;
}

// --- changes -------------------------------------------------------------------------------------

void Drawing::keepForUndo(std::uint32_t record) {
  changed_ = true;
  ++revision_;
  Record& r = records_[record];
  if (!inCommand_ || r.is(Record::touched)) return;
  running_.before.emplace_back(record, r);
  r.set(Record::touched);
}

std::string_view Drawing::store(const TagList& tags) {
  const std::size_t bound = tags.writtenSize() + 16;
  char* text = texts_.allocate(bound);
  const auto size = static_cast<std::size_t>(tags.write(text) - text);
  texts_.shrink(bound - size);
  return {text, size};
}

void Drawing::commit(std::uint32_t record, const TagList& tags) {
  keepForUndo(record);
  Record& r = records_[record];
  const Record before = r;
  const std::string_view text = store(tags);
  r.bytes = text.data();
  r.size = static_cast<std::uint32_t>(text.size());
  indexTags(r, tags, names_, sets_);
  r.handle = before.handle ? before.handle : r.handle;
  if (before.is(Record::hasParts)) r.set(Record::hasParts);
  r.set(Record::changed);
  if (r.type == Type::section) header_.known = false;
  noteInIndex(record, before);
}

void Drawing::rewrite(std::uint32_t record, const TagList& tags) { commit(record, tags); }

// Puts a record into the file order, right before another one.
std::uint32_t Drawing::link(const Record& fresh, std::uint32_t before) {
  const std::uint32_t i = recordCount();
  records_.push_back(fresh);
  Record& r = records_[i];
  r.next = before;
  r.previous = before ? records_[before].previous : last_;
  if (r.previous) {
    records_[r.previous].next = i;
  } else {
    first_ = i;
  }
  if (before) {
    records_[before].previous = i;
  } else {
    last_ = i;
  }
  return i;
}

std::uint32_t Drawing::addRecord(TagList& tags, std::uint32_t before, std::uint32_t owner,
                                 bool space, bool child) {
  Record fresh;
  fresh.set(Record::erased);  // taking the change back must take the record away
  const std::uint32_t i = link(fresh, before);
  keepForUndo(i);
  Record& r = records_[i];
  r.set(Record::erased, false);
  r.owner = owner;
  r.set(Record::space, space);
  r.set(Record::child, child);
  commit(i, tags);
  if (records_[i].handle) registerHandle(records_[i].handle, i);
  if (space && records_[i].type != Type::polyline && records_[i].type != Type::seqend &&
      records_[i].type != Type::attrib && !records_[i].is(Record::paper)) {
    if (const int at = tags.find(10); at >= 0) drawn_[records_[i].layer].addPoint(tags.point(at));
  }
  if (observer_ && (i & 0xFFF) == 0) observer_(i);
  return i;
}

std::uint64_t Drawing::ownerHandle(std::uint32_t owner) const { return records_[owner].handle; }

// Tags that releases before the drawing's would stumble over: line weight and plot style came with
// R2000, true colour and transparency with R2004, the locks of attributes with R2007.
static void dropNewerTags(TagList& tags, int version) {
  if (version >= 1021) return;
  const bool attribute = tags.is(0, "ATTRIB") || tags.is(0, "ATTDEF");
  const TagRange own = tags.is(0, "LAYER") ? tags.body() : tags.subclass("AcDbEntity");
  for (int i = tags.xdataBegin() - 1; i > 0; --i) {
    const int c = tags[i].code;
    const bool common = i >= own.begin && i < own.end;
    if ((attribute && c == 280) ||
        (common && version < 1018 && (c == 420 || c == 430 || c == 440 || c == 347 || c == 348)) ||
        (common && version < 1015 && (c == 370 || c == 390 || c == 290 || c == 410))) {
      tags.erase(i, i + 1);
      return dropNewerTags(tags, version);  // the stretch has become shorter
    }
  }
}

// A new object's tags get what depends on the drawing: handle, owner, and the markers of its
// version.
void Drawing::completeTags(TagList& tags, std::uint64_t handle, std::uint32_t owner, bool paper,
                           bool entity) {
  tags.transcode(format_);
  if (!format_.hasHandlesAndMarkers()) {
    const bool linetype = tags.is(0, "LTYPE");
    for (int i = tags.xdataBegin() - 1; i > 0; --i) {
      const int c = tags[i].code;
      // These versions know the codes up to 79, those of dimension styles, and the extrusion.
      const bool known = c < 80 || (c >= 140 && c <= 148) || (c >= 170 && c <= 178) || c == 210 ||
                         c == 220 || c == 230;
      const bool complex =
          linetype && (c == 74 || c == 75 || c == 9 || (c >= 44 && c <= 46) || c == 50);
      if (!known || complex || c == 5 || (entity && (c == 48 || c == 60))) tags.erase(i, i + 1);
    }
    if (usesHandles_ && handle) tags.insertHandle(1, 5, handle);
    if (paper) tags.insertInteger(std::min(2, tags.size()), 67, 1);
    return;
  }
  const int code = tags.is(0, "DIMSTYLE") ? 105 : 5;
  const int oldHandle = tags.find(code, 1, tags.xdataBegin());
  if (oldHandle >= 0 && oldHandle < 3) {
    tags.setHandle(oldHandle, handle);
  } else {
    tags.insertHandle(1, code, handle);
  }
  // The owner stands behind the 102 groups and before the first marker.
  int at = tags.find(code, 1) + 1;
  while (at < tags.size() && tags[at].code != 100 && tags[at].code != 330) {
    if (tags[at].code == 102) {
      do ++at;
      while (at < tags.size() && tags[at].code != 102);
    }
    ++at;
  }
  at = std::min(at, tags.size());
  if (at < tags.size() && tags[at].code == 330) {
    tags.setHandle(at, ownerHandle(owner));
  } else {
    tags.insertHandle(at, 330, ownerHandle(owner));
  }
  dropNewerTags(tags, format_.version);
  if (!entity) return;
  if (paper) {
    const TagRange common = tags.subclass("AcDbEntity");
    tags.insertInteger(common.begin, 67, 1);
  }
}

// A new entity names nothing that the drawing does not have: applications are registered, a line
// type or text style that is not there gives way to the default.
void Drawing::settleReferences(TagList& tags) {
  const auto nameAt = [&](int i) { return names_.ofBytes(tags.format(), tags[i].bytes()); };
  const int end = tags.xdataBegin();
  for (int i = end; i < tags.size(); ++i) {
    if (tags[i].code == 1001 && !tableEntry(Type::appid, nameAt(i)))
      registerApplication(tags.text(i));
  }
  if (end < 3) return;
  const auto settle = [&](int code, std::string_view marker, auto&& has) {
    const int any = tags.find(code, 1, end);
    const int i = any < 0 ? -1 : tags.find(code, tags.subclass(marker));
    if (i >= 0 && !has(i)) tags.erase(i, i + 1);
  };
  settle(6, "AcDbEntity", [&](int i) { return hasLinetype(tags.text(i)); });
  settle(7, "AcDbText", [&](int i) { return tableEntry(Type::style, nameAt(i)) != 0; });
}

std::uint32_t Drawing::endOf(std::uint32_t block) const {
  if (block == modelSpace_ || block == paperSpace_) {
    const auto it = sections_.find(u"ENTITIES");
    return it == sections_.end() ? 0 : it->second.second;
  }
  const BlockInfo* info = this->block(block);
  return info ? info->end : 0;
}

Acad::ErrorStatus Drawing::appendEntity(std::uint32_t block, AcDbObject& entity) {
  ViewState& v = *entity.view_;
  if (v.drawing) return Acad::eAlreadyInDb;
  completeStructure();
  const std::uint32_t before = endOf(block);
  if (!before) return Acad::eKeyNotFound;
  entity.beforeCommit();
  if (v.tags->is(0, "INSERT")) {
    const int name = v.tags->find(2, v.tags->body());
    if (name < 0 || !blockByName(names_.ofBytes(v.tags->format(), (*v.tags)[name].bytes()))) {
      return Acad::eKeyNotFound;
    }
  }
  settleReferences(*v.tags);
  const bool space =
      block == modelSpace_ || block == paperSpace_ || records_[endOf(block)].type == Type::endsec;
  const std::uint64_t handle = newHandle();
  completeTags(*v.tags, handle, block, block == paperSpace_, true);
  const std::uint32_t i = addRecord(*v.tags, before, block, space, false);
  if (records_[i].type == Type::insert) dropInsertCache(records_[i].name);
  if (records_[i].type == Type::polyline) {
    auto end = borrowTags();
    end->create(format_, "SEQEND");
    end->addAscii(100, "AcDbEntity");
    end->addText(8, names_.text(records_[i].layer));
    completeTags(*end, newHandle(), i, block == paperSpace_, true);
    addRecord(*end, before, i, space, true);
    returnTags(std::move(end));
  }
  v.drawing = this;
  v.record = i;
  v.writing = true;
  v.readers = 0;
  v.modified = false;
  records_[i].set(Record::open);
  open_.push_back(&entity);
  entity.afterAppend();
  return Acad::eOk;
}

Acad::ErrorStatus Drawing::appendPart(std::uint32_t owner, AcDbObject& part) {
  ViewState& v = *part.view_;
  if (v.drawing) return Acad::eAlreadyInDb;
  part.beforeCommit();
  settleReferences(*v.tags);
  const bool paper = records_[owner].is(Record::paper);
  const bool space = records_[owner].is(Record::space);
  // Behind the last part; the end mark of the sequence is made with the first attribute.
  std::uint32_t end = lastOwner_ == owner ? lastEnd_ : records_[owner].next;
  while (end && records_[end].is(Record::child) && records_[end].owner == owner &&
         records_[end].type != Type::seqend) {
    end = records_[end].next;
  }
  if (!end) return Acad::eKeyNotFound;
  if (records_[end].owner != owner || records_[end].type != Type::seqend) {
    auto mark = borrowTags();
    mark->create(format_, "SEQEND");
    mark->addAscii(100, "AcDbEntity");
    mark->addText(8, names_.text(records_[owner].layer));
    completeTags(*mark, newHandle(), owner, paper, true);
    end = addRecord(*mark, end, owner, space, true);
    returnTags(std::move(mark));
  }
  if (records_[end].is(Record::erased)) {  // made by a command that was taken back
    keepForUndo(end);
    records_[end].set(Record::erased, false);
  }
  completeTags(*v.tags, newHandle(), owner, paper, true);
  const std::uint32_t i = addRecord(*v.tags, end, owner, space, true);
  lastOwner_ = owner;
  lastEnd_ = end;
  v.drawing = this;
  v.record = i;
  v.writing = true;
  v.modified = false;
  records_[i].set(Record::open);
  open_.push_back(&part);
  return Acad::eOk;
}

Acad::ErrorStatus Drawing::addTableEntry(std::uint32_t tableIndex, AcDbObject& entry,
                                         std::u16string_view name) {
  ViewState& v = *entry.view_;
  if (v.drawing) return Acad::eAlreadyInDb;
  for (auto& [type, info] : tables_) {
    if (info.table != tableIndex || !info.endtab) continue;
    if (tableEntry(static_cast<Type>(type), name)) return Acad::eDuplicateRecordName;
    entry.beforeCommit();
    completeTags(*v.tags, newHandle(), tableIndex, false, false);
    const std::uint32_t i = addRecord(*v.tags, info.endtab, tableIndex, false, false);
    info.byName[records_[i].name] = i;
    v.drawing = this;
    v.record = i;
    v.writing = true;
    v.modified = false;
    records_[i].set(Record::open);
    open_.push_back(&entry);
    return Acad::eOk;
  }
  return Acad::eKeyNotFound;
}

Acad::ErrorStatus Drawing::addObject(std::uint32_t owner, AcDbObject& object) {
  ViewState& v = *object.view_;
  if (v.drawing) return Acad::eAlreadyInDb;
  if (!format_.hasHandlesAndMarkers()) return Acad::eInvalidInput;
  completeStructure();
  const std::uint32_t end = objectsEnd();
  if (!end) return Acad::eKeyNotFound;
  object.beforeCommit();
  completeTags(*v.tags, takeHandle(), owner, false, false);
  const std::uint32_t i = addRecord(*v.tags, end, owner, false, false);
  v.drawing = this;
  v.record = i;
  v.writing = true;
  v.modified = false;
  records_[i].set(Record::open);
  open_.push_back(&object);
  object.afterAppend();
  return Acad::eOk;
}

Acad::ErrorStatus Drawing::erase(std::uint32_t record, bool erasing) {
  Record& r = records_[record];
  if (r.is(Record::erased) == erasing) return erasing ? Acad::eWasErased : Acad::eOk;
  keepForUndo(record);
  if (erasing) dropReferences(record);
  records_[record].set(Record::erased, erasing);
  if (records_[record].type == Type::insert) dropInsertCache(records_[record].name);
  for (std::uint32_t i = records_[record].next; i; i = records_[i].next) {
    if (!records_[i].is(Record::child) || records_[i].owner != record) break;
    if (records_[i].is(Record::erased) == erasing) continue;
    keepForUndo(i);
    if (erasing) dropReferences(i);
    records_[i].set(Record::erased, erasing);
  }
  if (!erasing) noteInIndex(record, Record());
  return Acad::eOk;
}

// What hangs on an erased object goes with it: its extension dictionary and all that it owns.
void Drawing::dropReferences(std::uint32_t record) {
  erasedMembers_ = true;
  if (records_[record].text().find("{ACAD_XDICTIONARY") == std::string_view::npos) return;
  auto other = borrowTags();
  parse(record, *other);
  const TagRange dictionary = other->group("ACAD_XDICTIONARY");
  std::vector<std::uint32_t> owned;
  for (int i = dictionary.begin; i < dictionary.end; ++i) {
    if ((*other)[i].code == 360) owned.push_back(byHandle(other->handle(i)));
  }
  while (!owned.empty()) {
    const std::uint32_t i = owned.back();
    owned.pop_back();
    if (!i || records_[i].is(Record::erased) || records_[i].is(Record::space)) continue;
    parse(i, *other);
    for (int t = 1; t < other->xdataBegin(); ++t) {
      if ((*other)[t].code == 360 || (*other)[t].code == 350)
        owned.push_back(byHandle(other->handle(t)));
    }
    keepForUndo(i);
    records_[i].set(Record::erased);
  }
  returnTags(std::move(other));
}

// Groups and drawing orders must not list what is gone. Done once, before the drawing is written:
// an order may list every entity of the drawing, and thousands may be erased.
void Drawing::dropErasedMembers() {
  if (!std::exchange(erasedMembers_, false)) return;
  const std::uint32_t group = names_.find(u"GROUP"), order = names_.find(u"SORTENTSTABLE");
  auto tags = borrowTags();
  for (std::uint32_t i = first_; i; i = records_[i].next) {
    const Record& r = records_[i];
    if (r.typeName == 0 || (r.typeName != group && r.typeName != order) || r.is(Record::erased))
      continue;
    parse(i, *tags);
    TagList kept;
    kept.create(format_, r.typeName == group ? "GROUP" : "SORTENTSTABLE");
    for (int t = 1; t < tags->size(); ++t) {
      const int code = (*tags)[t].code;
      const bool member = r.typeName == group ? code == 340 : code == 331;
      const std::uint32_t entity = member ? byHandle(tags->handle(t)) : 0;
      if (entity && records_[entity].is(Record::erased)) {
        if (r.typeName == order && t + 1 < tags->size() && (*tags)[t + 1].code == 5) ++t;
        continue;
      }
      kept.insertCopy(kept.size(), *tags, t);
    }
    if (kept.size() != tags->size()) commit(i, kept);
  }
  returnTags(std::move(tags));
}

// A block record may list the inserts of its block: a cache, dropped when one comes or goes.
void Drawing::dropInsertCache(std::uint32_t blockName) {
  const std::uint32_t id = blockByName(blockName);
  if (!id || records_[id].type != Type::blockRecord || records_[id].is(Record::open) ||
      records_[id].is(Record::synthetic)) {
    return;
  }
  if (records_[id].text().find("{BLKREFS") == std::string_view::npos) return;
  auto tags = borrowTags();
  parse(id, *tags);
  const TagRange group = tags->group("BLKREFS");
  if (!group.empty()) {
    tags->erase(group.begin, group.end);
    commit(id, *tags);
  }
  returnTags(std::move(tags));
}

void Drawing::renameEntry(std::uint32_t record, std::u16string_view name) {
  const std::uint32_t known = names_.of(name);
  lastLayer_ = 0;
  for (auto& [type, info] : tables_) {
    if (info.table == records_[record].owner) info.byName[known] = record;
  }
  if (block(record)) blockOfName_[known] = record;
}

// --- structure that a file may lack --------------------------------------------------------------

// Structure is not undone with the command that needed it first: what came later stands on it.
std::uint32_t Drawing::addMark(TagList& tags, std::uint32_t before, std::uint32_t owner) {
  const bool inCommand = std::exchange(inCommand_, false), changed = changed_;
  const std::uint32_t i = addRecord(tags, before, owner, false, false);
  inCommand_ = inCommand;
  changed_ = changed;
  records_[i].set(Record::synthetic);
  marks_.push_back(i);
  return i;
}

std::uint32_t Drawing::addMark(std::string_view type, std::uint32_t before, std::uint32_t owner) {
  auto tags = borrowTags();
  tags->create(format_, type);
  if (type == "ENDBLK") {
    tags->addAscii(100, "AcDbEntity");
    tags->addAscii(8, "0");
    tags->addAscii(100, "AcDbBlockEnd");
    completeTags(*tags, newHandle(), owner, false, true);
  }
  const std::uint32_t i = addMark(*tags, before, owner);
  returnTags(std::move(tags));
  return i;
}

// The record before which a section belongs that the file does not have.
std::uint32_t Drawing::placeOfSection(std::string_view name) const {
  static const char* order[] = {"HEADER",   "CLASSES", "TABLES",         "BLOCKS",
                                "ENTITIES", "OBJECTS", "THUMBNAILIMAGE", "ACDSDATA"};
  const auto own = std::find(std::begin(order), std::end(order), name);
  for (auto later = own; later != std::end(order); ++later) {
    if (const auto it = sections_.find(platform::widen(*later)); it != sections_.end()) {
      return it->second.first;
    }
  }
  std::uint32_t eof = last_;
  while (eof && records_[eof].type != Type::eof) eof = records_[eof].previous;
  return eof;
}

std::uint32_t Drawing::addSection(std::string_view name) {
  const std::uint32_t before = placeOfSection(name);
  auto tags = borrowTags();
  tags->create(format_, "SECTION");
  tags->addAscii(2, name);
  const std::uint32_t head = addMark(*tags, before, 0);
  returnTags(std::move(tags));
  const std::uint32_t end = addMark("ENDSEC", before, 0);
  sections_[platform::widen(name)] = {head, end};
  return end;
}

// Files may leave out what they do not use; what commands write needs these.
void Drawing::completeStructure() {
  if (!findSectionEnd(u"ENTITIES")) addSection("ENTITIES");
}

std::uint32_t Drawing::findSectionEnd(std::u16string_view name) const {
  const auto it = sections_.find(std::u16string(name));
  return it == sections_.end() ? 0 : it->second.second;
}

std::uint32_t Drawing::objectsEnd() {
  if (const std::uint32_t end = findSectionEnd(u"OBJECTS")) return end;
  return addSection("OBJECTS");
}

std::uint32_t Drawing::rootDictionary() {
  if (namedObjects_ || !format_.hasHandlesAndMarkers()) return namedObjects_;
  const std::uint32_t end = objectsEnd();
  const std::uint64_t groups = takeHandle();
  auto tags = borrowTags();
  tags->create(format_, "DICTIONARY");
  tags->addAscii(100, "AcDbDictionary");
  if (format_.version >= 1015) tags->addInteger(281, 1);
  tags->addAscii(3, "ACAD_GROUP");
  tags->addHandle(350, groups);
  completeTags(*tags, takeHandle(), 0, false, false);
  namedObjects_ = addMark(*tags, end, 0);
  tags->create(format_, "DICTIONARY");
  tags->addAscii(100, "AcDbDictionary");
  if (format_.version >= 1015) tags->addInteger(281, 1);
  completeTags(*tags, groups, namedObjects_, false, false);
  addMark(*tags, end, namedObjects_);
  returnTags(std::move(tags));
  return namedObjects_;
}

std::uint32_t Drawing::tableRecord(Type entryType) {
  if (const TableInfo* info = table(entryType); info && info->table && info->endtab) {
    return info->table;
  }
  std::uint32_t end = findSectionEnd(u"TABLES");
  if (!end) end = addSection("TABLES");
  auto tags = borrowTags();
  tags->create(format_, "TABLE");
  tags->addAscii(2, nameOf(entryType));
  if (format_.hasHandlesAndMarkers()) {
    tags->addHandle(5, takeHandle());
    tags->addHandle(330, 0);
    tags->addAscii(100, "AcDbSymbolTable");
  }
  tags->addInteger(70, 0);
  TableInfo& info = tables_[static_cast<int>(entryType)];
  info.table = addMark(*tags, end, 0);
  info.endtab = addMark("ENDTAB", end, 0);
  returnTags(std::move(tags));
  // Old files have no table of blocks; a stand-in lets modules ask for it.
  if (entryType == Type::blockRecord && !format_.hasHandlesAndMarkers()) {
    marks_.resize(marks_.size() - 2);
  }
  return info.table;
}

std::uint32_t Drawing::layerNamed(std::u16string_view name, bool make) {
  if (lastLayer_ && name == lastLayerName_ && !records_[lastLayer_].is(Record::erased) &&
      !records_[lastLayer_].is(Record::open)) {
    return lastLayer_;  // entities come in runs on one layer; an open one may be given another name
  }
  if (const std::uint32_t i = tableEntry(Type::layer, name); i || !make) {
    lastLayerName_ = name;
    lastLayer_ = i;
    return i;
  }
  if (!usableName(name)) return 0;
  const std::uint32_t tableIndex = tableRecord(Type::layer);
  auto tags = borrowTags();
  tags->create(format_, "LAYER");
  tags->addAscii(100, "AcDbSymbolTableRecord");
  tags->addAscii(100, "AcDbLayerTableRecord");
  tags->addText(2, name);
  tags->addInteger(70, 0);
  tags->addInteger(62, 7);
  tags->addAscii(6, "Continuous");
  completeTags(*tags, newHandle(), tableIndex, false, false);
  TableInfo& info = tables_[static_cast<int>(Type::layer)];
  // A layer needs its plot style where the drawing has them: take over that of layer "0".
  if (format_.version >= 1015) {
    if (const std::uint32_t zero = tableEntry(Type::layer, u"0")) {
      auto model = borrowTags();
      parse(zero, *model);
      for (const int code : {370, 390, 347}) {
        const int at = model->find(code, model->body());
        if (at < 0) continue;
        tags->insertCopy(tags->size(), *model, at);
      }
      returnTags(std::move(model));
    }
  }
  const std::uint32_t i = addRecord(*tags, info.endtab, tableIndex, false, false);
  info.byName[records_[i].name] = i;
  returnTags(std::move(tags));
  return i;
}

std::uint32_t Drawing::registerApplication(std::u16string_view name) {
  if (const std::uint32_t i = tableEntry(Type::appid, name)) return i;
  const std::uint32_t tableIndex = tableRecord(Type::appid);
  auto tags = borrowTags();
  tags->create(format_, "APPID");
  tags->addAscii(100, "AcDbSymbolTableRecord");
  tags->addAscii(100, "AcDbRegAppTableRecord");
  tags->addText(2, name);
  tags->addInteger(70, 0);
  completeTags(*tags, newHandle(), tableIndex, false, false);
  TableInfo& info = tables_[static_cast<int>(Type::appid)];
  const std::uint32_t i = addRecord(*tags, info.endtab, tableIndex, false, false);
  info.byName[records_[i].name] = i;
  returnTags(std::move(tags));
  return i;
}

void Drawing::ensureClass(std::string_view dxf, std::string_view cpp, std::string_view application,
                          int flags, bool entity) {
  if (!format_.hasHandlesAndMarkers()) return;
  if (!findSectionEnd(u"CLASSES")) addSection("CLASSES");
  const auto it = sections_.find(u"CLASSES");
  auto tags = borrowTags();
  for (std::uint32_t i = records_[it->second.first].next; i && i != it->second.second;
       i = records_[i].next) {
    if (records_[i].type != Type::classRecord) continue;
    parse(i, *tags);
    const int at = tags->find(1);
    if (at >= 0 && tags->is(at, dxf)) {
      returnTags(std::move(tags));
      return;
    }
  }
  tags->create(format_, "CLASS");
  tags->addAscii(1, dxf);
  tags->addAscii(2, cpp);
  tags->addAscii(3, application);
  tags->addInteger(90, flags);
  if (format_.version >= 1018) tags->addInteger(91, 0);
  tags->addInteger(280, 0);
  tags->addInteger(281, entity ? 1 : 0);
  // Not undone with the command that needed it first: what came later counts on it.
  const bool inCommand = std::exchange(inCommand_, false);
  const std::uint32_t i = addRecord(*tags, it->second.second, 0, false, false);
  inCommand_ = inCommand;
  records_[i].handle = 0;
  returnTags(std::move(tags));
}

BlockInfo Drawing::addBlock(std::u16string_view name, const AcGePoint3d& base) {
  BlockInfo info;
  auto tags = borrowTags();
  const bool anonymous = !name.empty() && name[0] == u'*';
  if (format_.hasHandlesAndMarkers()) {
    const std::uint32_t tableIndex = tableRecord(Type::blockRecord);
    tags->create(format_, "BLOCK_RECORD");
    tags->addAscii(100, "AcDbSymbolTableRecord");
    tags->addAscii(100, "AcDbBlockTableRecord");
    tags->addText(2, name);
    if (format_.version >= 1015) tags->addHandle(340, 0);
    completeTags(*tags, takeHandle(), tableIndex, false, false);
    TableInfo& table = tables_[static_cast<int>(Type::blockRecord)];
    info.id = addRecord(*tags, table.endtab, tableIndex, false, false);
    table.byName[records_[info.id].name] = info.id;
  }
  std::uint32_t end = findSectionEnd(u"BLOCKS");
  if (!end) end = addSection("BLOCKS");
  tags->create(format_, "BLOCK");
  tags->addAscii(100, "AcDbEntity");
  tags->addAscii(8, "0");
  tags->addAscii(100, "AcDbBlockBegin");
  tags->addText(2, name);
  tags->addInteger(70, anonymous ? 1 : 0);
  tags->addPoint(10, base);
  tags->addText(3, name);
  if (format_.hasHandlesAndMarkers()) tags->addAscii(1, "");
  completeTags(*tags, newHandle(), info.id, false, true);
  info.begin = addRecord(*tags, end, info.id, false, false);
  if (!info.id) info.id = info.begin;
  tags->create(format_, "ENDBLK");
  tags->addAscii(100, "AcDbEntity");
  tags->addAscii(8, "0");
  tags->addAscii(100, "AcDbBlockEnd");
  completeTags(*tags, newHandle(), info.id, false, true);
  info.end = addRecord(*tags, end, info.id, false, false);
  records_[info.begin].owner = info.id;
  returnTags(std::move(tags));
  blockOfId_[info.id] = static_cast<std::uint32_t>(blocks_.size());
  blockOfName_[records_[info.begin].name] = info.id;
  blocks_.push_back(info);
  return info;
}

// --- undo ----------------------------------------------------------------------------------------

void Drawing::beginCommand(std::u16string_view name) {
  if (inCommand_) endCommand();
  running_ = UndoGroup();
  running_.name = name;
  inCommand_ = true;
}

void Drawing::endCommand() {
  if (!inCommand_) return;
  inCommand_ = false;
  if (running_.before.empty()) return;
  for (auto& [i, before] : running_.before) records_[i].set(Record::touched, false);
  undo_.push_back(std::move(running_));
  running_ = UndoGroup();
  redo_.clear();
}

// Exchanges the records' states with those kept; the places in the file order stay.
void Drawing::swapGroup(UndoGroup& group) {
  for (auto it = group.before.rbegin(); it != group.before.rend(); ++it) {
    Record& now = records_[it->first];
    Record then = it->second;
    it->second = now;
    then.next = now.next;
    then.previous = now.previous;
    then.set(Record::touched, false);
    then.set(Record::open, now.is(Record::open));
    now = then;
    // A state that was never in the file has no text: the record is simply away.
    if (now.bytes == nullptr) {
      now = it->second;
      now.set(Record::erased);
      now.set(Record::touched, false);
    }
    if (!now.is(Record::erased)) noteInIndex(it->first, Record());
  }
  changed_ = true;
  ++revision_;
}

std::u16string Drawing::undo() {
  if (undo_.empty() || inCommand_ || !open_.empty()) return {};
  UndoGroup group = std::move(undo_.back());
  undo_.pop_back();
  swapGroup(group);
  redo_.push_back(std::move(group));
  return redo_.back().name;
}

std::u16string Drawing::redo() {
  if (redo_.empty() || inCommand_ || !open_.empty()) return {};
  UndoGroup group = std::move(redo_.back());
  redo_.pop_back();
  swapGroup(group);
  undo_.push_back(std::move(group));
  return undo_.back().name;
}

}  // namespace cad
