// Opening, changing, adding and erasing the objects of a drawing, and taking changes back.
#include <algorithm>

#include "cad/drawing/drawing.h"
#include "platform/text.h"

namespace cad {

// --- views ---------------------------------------------------------------------------------------

AcDbObject* Drawing::makeView(std::uint32_t record, ViewState* state) const {
  const Record& r = records_[record];
  switch (r.type) {
    case Type::point: return new AcDbPoint(state);
    case Type::line: return new AcDbLine(state);
    case Type::text: return new AcDbText(state);
    case Type::attdef: return new AcDbAttributeDefinition(state);
    case Type::attrib: return new AcDbAttribute(state);
    case Type::insert: return new AcDbBlockReference(state);
    case Type::lwpolyline: return new AcDbPolyline(state);
    case Type::polyline:
      if (r.is(Record::poly3d)) return new AcDb3dPolyline(state);
      return new AcDbEntity(state);
    case Type::vertex:
      if (r.is(Record::child) && records_[r.owner].is(Record::poly3d)) {
        return new AcDb3dPolylineVertex(state);
      }
      return new AcDbEntity(state);
    case Type::layer: return new AcDbLayerTableRecord(state);
    case Type::style: return new AcDbTextStyleTableRecord(state);
    case Type::ltype: return new AcDbLinetypeTableRecord(state);
    case Type::appid: return new AcDbRegAppTableRecord(state);
    case Type::blockRecord: return new AcDbBlockTableRecord(state);
    case Type::block: return new AcDbBlockTableRecord(state);  // what names a block in old files
    case Type::dictionary: return new AcDbDictionary(state);
    case Type::xrecord: return new AcDbXrecord(state);
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
    default: break;
  }
  if (r.is(Record::space) || r.is(Record::child) || block(r.owner)) return new AcDbEntity(state);
  if (r.owner && records_[r.owner].type == Type::table) return new AcDbSymbolTableRecord(state);
  return new AcDbObject(state);
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
    const auto it = std::find_if(open_.rbegin(), open_.rend(), [&](const AcDbObject* o) {
      return o->view_->record == record;
    });
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

void Drawing::commit(std::uint32_t record, const TagList& tags) {
  keepForUndo(record);
  Record& r = records_[record];
  const Record before = r;
  const std::size_t bound = tags.writtenSize() + 16;
  char* text = texts_.allocate(bound);
  char* end = tags.write(text);
  texts_.shrink(bound - static_cast<std::size_t>(end - text));
  r.bytes = text;
  r.size = static_cast<std::uint32_t>(end - text);
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

std::uint32_t Drawing::addRecord(TagList& tags, std::uint32_t before, std::uint32_t owner, bool space,
                                 bool child) {
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
  if (observer_ && (i & 0xFFF) == 0) observer_(i);
  return i;
}

std::uint64_t Drawing::ownerHandle(std::uint32_t owner) const { return records_[owner].handle; }

// A new object's tags get what depends on the drawing: handle, owner, and the markers of its version.
void Drawing::completeTags(TagList& tags, std::uint64_t handle, std::uint32_t owner, bool paper,
                           bool entity) {
  tags.transcode(format_);
  if (!format_.hasHandlesAndMarkers()) {
    for (int i = tags.xdataBegin() - 1; i > 0; --i) {
      const int c = tags[i].code;
      const bool unknown = c == 100 || (c >= 330 && c <= 369) || c == 102 || c == 370 || c == 420 ||
                           c == 440 || (c >= 280 && c <= 289) || (c >= 90 && c <= 99);
      if (unknown || c == 5) tags.erase(i, i + 1);
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
  if (!entity) return;
  if (paper) {
    const TagRange common = tags.subclass("AcDbEntity");
    tags.insertInteger(common.begin, 67, 1);
  }
  if (format_.version < 1015) {
    for (int i = tags.xdataBegin() - 1; i > 0; --i) {
      if (tags[i].code == 370) tags.erase(i, i + 1);
    }
  }
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
  const bool space = block == modelSpace_ || block == paperSpace_ ||
                     records_[endOf(block)].type == Type::endsec;
  const std::uint64_t handle = usesHandles_ ? takeHandle() : 0;
  completeTags(*v.tags, handle, block, block == paperSpace_, true);
  const std::uint32_t i = addRecord(*v.tags, before, block, space, false);
  if (records_[i].type == Type::insert) dropInsertCache(records_[i].name);
  if (records_[i].type == Type::polyline) {
    auto end = borrowTags();
    end->create(format_, "SEQEND");
    end->addAscii(100, "AcDbEntity");
    end->addText(8, names_.text(records_[i].layer));
    completeTags(*end, usesHandles_ ? takeHandle() : 0, i, block == paperSpace_, true);
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
  return Acad::eOk;
}

Acad::ErrorStatus Drawing::appendPart(std::uint32_t owner, AcDbObject& part) {
  ViewState& v = *part.view_;
  if (v.drawing) return Acad::eAlreadyInDb;
  part.beforeCommit();
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
    completeTags(*mark, usesHandles_ ? takeHandle() : 0, owner, paper, true);
    end = addRecord(*mark, end, owner, space, true);
    returnTags(std::move(mark));
  }
  completeTags(*v.tags, usesHandles_ ? takeHandle() : 0, owner, paper, true);
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
    completeTags(*v.tags, usesHandles_ ? takeHandle() : 0, tableIndex, false, false);
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
  return Acad::eOk;
}

Acad::ErrorStatus Drawing::erase(std::uint32_t record, bool erasing) {
  Record& r = records_[record];
  if (r.is(Record::erased) == erasing) return erasing ? Acad::eWasErased : Acad::eOk;
  keepForUndo(record);
  if (erasing && !r.is(Record::child)) {
    auto tags = borrowTags();
    parse(record, *tags);
    dropReferences(record, *tags);
    returnTags(std::move(tags));
  }
  records_[record].set(Record::erased, erasing);
  if (records_[record].type == Type::insert) dropInsertCache(records_[record].name);
  for (std::uint32_t i = records_[record].next; i; i = records_[i].next) {
    if (!records_[i].is(Record::child) || records_[i].owner != record) break;
    if (records_[i].is(Record::erased) == erasing) continue;
    keepForUndo(i);
    records_[i].set(Record::erased, erasing);
  }
  if (!erasing) noteInIndex(record, Record());
  return Acad::eOk;
}

// What hangs on an erased object goes with it: its extension dictionary and all that it owns, and its
// place in groups and drawing orders.
void Drawing::dropReferences(std::uint32_t record, TagList& tags) {
  const TagRange dictionary = tags.group("ACAD_XDICTIONARY");
  std::vector<std::uint32_t> owned, reactors;
  for (int i = dictionary.begin; i < dictionary.end; ++i) {
    if (tags[i].code == 360) owned.push_back(byHandle(tags.handle(i)));
  }
  const TagRange reacting = tags.group("ACAD_REACTORS");
  for (int i = reacting.begin; i < reacting.end; ++i) {
    if (tags[i].code == 330) reactors.push_back(byHandle(tags.handle(i)));
  }
  const std::uint64_t handle = records_[record].handle;
  auto other = borrowTags();
  while (!owned.empty()) {
    const std::uint32_t i = owned.back();
    owned.pop_back();
    if (!i || records_[i].is(Record::erased) || records_[i].is(Record::space)) continue;
    parse(i, *other);
    for (int t = 1; t < other->xdataBegin(); ++t) {
      if ((*other)[t].code == 360) owned.push_back(byHandle(other->handle(t)));
    }
    keepForUndo(i);
    records_[i].set(Record::erased);
  }
  for (const std::uint32_t i : reactors) {
    if (!i || records_[i].is(Record::erased) || records_[i].is(Record::open)) continue;
    if (typeName(i) != u"GROUP") continue;
    parse(i, *other);
    bool hit = false;
    for (int t = other->size() - 1; t > 0; --t) {
      if ((*other)[t].code == 340 && other->handle(t) == handle) {
        other->erase(t, t + 1);
        hit = true;
      }
    }
    if (hit) commit(i, *other);
  }
  returnTags(std::move(other));
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
  for (auto& [type, info] : tables_) {
    if (info.table == records_[record].owner) info.byName[known] = record;
  }
  if (block(record)) blockOfName_[known] = record;
}

// --- structure that a file may lack --------------------------------------------------------------

std::uint32_t Drawing::addSection(std::string_view name, std::uint32_t before) {
  auto tags = borrowTags();
  tags->create(format_, "SECTION");
  tags->addAscii(2, name);
  const std::uint32_t head = addRecord(*tags, before, 0, false, false);
  tags->create(format_, "ENDSEC");
  const std::uint32_t end = addRecord(*tags, before, 0, false, false);
  returnTags(std::move(tags));
  sections_[platform::widen(name)] = {head, end};
  return end;
}

// Files may leave out what they do not use; what commands write needs these.
void Drawing::completeStructure() {
  const auto endFor = [&](std::u16string_view name) { return findSectionEnd(name); };
  if (endFor(u"ENTITIES")) return;
  std::uint32_t eof = last_;
  while (eof && records_[eof].type != Type::eof) eof = records_[eof].previous;
  std::uint32_t before = eof;
  if (const auto it = sections_.find(u"OBJECTS"); it != sections_.end()) before = it->second.first;
  addSection("ENTITIES", before);
}

std::uint32_t Drawing::findSectionEnd(std::u16string_view name) const {
  const auto it = sections_.find(std::u16string(name));
  return it == sections_.end() ? 0 : it->second.second;
}

std::uint32_t Drawing::objectsEnd() {
  if (const std::uint32_t end = findSectionEnd(u"OBJECTS")) return end;
  std::uint32_t eof = last_;
  while (eof && records_[eof].type != Type::eof) eof = records_[eof].previous;
  return addSection("OBJECTS", eof);
}

std::uint32_t Drawing::tableRecord(Type entryType) {
  if (const TableInfo* info = table(entryType); info && info->table && info->endtab) {
    return info->table;
  }
  std::uint32_t end = findSectionEnd(u"TABLES");
  if (!end) {
    std::uint32_t before = 0;
    for (const char16_t* later : {u"BLOCKS", u"ENTITIES", u"OBJECTS"}) {
      if (const auto it = sections_.find(later); it != sections_.end()) {
        before = it->second.first;
        break;
      }
    }
    end = addSection("TABLES", before);
  }
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
  info.table = addRecord(*tags, end, 0, false, false);
  tags->create(format_, "ENDTAB");
  info.endtab = addRecord(*tags, end, 0, false, false);
  returnTags(std::move(tags));
  return info.table;
}

std::uint32_t Drawing::layerNamed(std::u16string_view name, bool make) {
  if (const std::uint32_t i = tableEntry(Type::layer, name); i || !make) return i;
  const std::uint32_t tableIndex = tableRecord(Type::layer);
  auto tags = borrowTags();
  tags->create(format_, "LAYER");
  tags->addAscii(100, "AcDbSymbolTableRecord");
  tags->addAscii(100, "AcDbLayerTableRecord");
  tags->addText(2, name);
  tags->addInteger(70, 0);
  tags->addInteger(62, 7);
  tags->addAscii(6, "Continuous");
  completeTags(*tags, usesHandles_ ? takeHandle() : 0, tableIndex, false, false);
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
  completeTags(*tags, usesHandles_ ? takeHandle() : 0, tableIndex, false, false);
  TableInfo& info = tables_[static_cast<int>(Type::appid)];
  const std::uint32_t i = addRecord(*tags, info.endtab, tableIndex, false, false);
  info.byName[records_[i].name] = i;
  returnTags(std::move(tags));
  return i;
}

void Drawing::ensureClass(std::string_view dxf, std::string_view cpp, std::string_view application,
                          int flags, bool entity) {
  if (!format_.hasHandlesAndMarkers()) return;
  const auto it = sections_.find(u"CLASSES");
  if (it == sections_.end()) return;
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
  const std::uint32_t i = addRecord(*tags, it->second.second, 0, false, false);
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
  if (!end) {
    const auto entities = sections_.find(u"ENTITIES");
    end = addSection("BLOCKS", entities == sections_.end() ? 0 : entities->second.first);
  }
  tags->create(format_, "BLOCK");
  tags->addAscii(100, "AcDbEntity");
  tags->addAscii(8, "0");
  tags->addAscii(100, "AcDbBlockBegin");
  tags->addText(2, name);
  tags->addInteger(70, anonymous ? 1 : 0);
  tags->addPoint(10, base);
  tags->addText(3, name);
  if (format_.hasHandlesAndMarkers()) tags->addAscii(1, "");
  completeTags(*tags, usesHandles_ ? takeHandle() : 0, info.id, false, true);
  info.begin = addRecord(*tags, end, info.id, false, false);
  if (!info.id) info.id = info.begin;
  tags->create(format_, "ENDBLK");
  tags->addAscii(100, "AcDbEntity");
  tags->addAscii(8, "0");
  tags->addAscii(100, "AcDbBlockEnd");
  completeTags(*tags, usesHandles_ ? takeHandle() : 0, info.id, false, true);
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
