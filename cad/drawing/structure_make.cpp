// The making of sections, tables, entries and blocks that a drawing does not have yet.
#include <algorithm>

#include "cad/drawing/structure.h"
#include "platform/text.h"

namespace cad {

// Structure is not undone with the command that needed it first, and does not count as a change.
std::uint32_t Structure::addMark(TagList& tags, std::uint32_t before, std::uint32_t owner) {
  const History::Pause pause(history_);
  const bool changed = history_.isChanged();
  const std::uint32_t i = writer_.add(tags, {before, owner});
  history_.setChanged(changed);
  records_.edit(i).set(Record::synthetic);
  marks_.push_back(i);
  return i;
}

std::uint32_t Structure::addMark(std::string_view type, std::uint32_t before, std::uint32_t owner) {
  const auto tags = borrowTags();
  tags->create(records_.format(), type);
  if (type == "ENDBLK") {
    tags->addAscii(100, "AcDbEntity");
    tags->addAscii(8, "0");
    tags->addAscii(100, "AcDbBlockEnd");
    writer_.complete(*tags, records_.newHandle(),
                     {.before = before, .owner = owner, .entity = true});
  }
  return addMark(*tags, before, owner);
}

void Structure::writeMarks() {
  for (const std::uint32_t i : marks_) records_.edit(i).set(Record::synthetic, false);
  marks_.clear();
}

// The record before which a section belongs that the file does not have.
std::uint32_t Structure::placeOfSection(std::u16string_view name) const {
  static const std::u16string_view order[] = {u"HEADER",         u"CLASSES",  u"TABLES",
                                              u"BLOCKS",         u"ENTITIES", u"OBJECTS",
                                              u"THUMBNAILIMAGE", u"ACDSDATA"};
  for (auto later = std::find(std::begin(order), std::end(order), name); later != std::end(order);
       ++later) {
    if (const std::uint32_t begin = section(*later).begin) return begin;
  }
  std::uint32_t eof = records_.last();
  while (eof && records_[eof].type != Type::eof) eof = records_[eof].previous;
  return eof;
}

std::uint32_t Structure::sectionEnd(std::u16string_view name) {
  if (const std::uint32_t end = section(name).end) return end;
  const std::uint32_t before = placeOfSection(name);
  const auto tags = borrowTags();
  tags->create(records_.format(), "SECTION");
  tags->addText(2, name);
  const std::uint32_t begin = addMark(*tags, before, 0);
  const std::uint32_t end = addMark("ENDSEC", before, 0);
  sections_[std::u16string(name)] = {begin, end};
  return end;
}

std::uint32_t Structure::rootDictionary() {
  if (namedObjects_ || !records_.format().hasHandlesAndMarkers()) return namedObjects_;
  const std::uint32_t end = sectionEnd(u"OBJECTS");
  const std::uint64_t groups = records_.takeHandle();
  const auto tags = borrowTags();
  const auto begin = [&] {
    tags->create(records_.format(), "DICTIONARY");
    tags->addAscii(100, "AcDbDictionary");
    if (records_.format().version >= 1015) tags->addInteger(281, 1);
  };
  begin();
  tags->addAscii(3, "ACAD_GROUP");
  tags->addHandle(350, groups);
  writer_.complete(*tags, records_.takeHandle(), {});
  namedObjects_ = addMark(*tags, end, 0);
  begin();
  writer_.complete(*tags, groups, {.owner = namedObjects_});
  addMark(*tags, end, namedObjects_);
  return namedObjects_;
}

std::uint32_t Structure::tableRecord(Type entryType) {
  if (const TableInfo* info = table(entryType); info && info->table && info->endtab) {
    return info->table;
  }
  const std::uint32_t end = sectionEnd(u"TABLES");
  const bool markers = records_.format().hasHandlesAndMarkers();
  const auto tags = borrowTags();
  tags->create(records_.format(), "TABLE");
  tags->addAscii(2, nameOf(entryType));
  if (markers) {
    tags->addHandle(5, records_.takeHandle());
    tags->addHandle(330, 0);
    tags->addAscii(100, "AcDbSymbolTable");
  }
  tags->addInteger(70, 0);
  TableInfo& info = tables_[static_cast<int>(entryType)];
  info.table = addMark(*tags, end, 0);
  info.endtab = addMark("ENDTAB", end, 0);
  // Old files have no table of blocks; a stand-in lets modules ask for it.
  if (entryType == Type::blockRecord && !markers) marks_.resize(marks_.size() - 2);
  return info.table;
}

void Structure::beginEntry(TagList& tags, std::string_view type, std::string_view marker,
                           std::u16string_view name) const {
  tags.create(records_.format(), type);
  tags.addAscii(100, "AcDbSymbolTableRecord");
  tags.addAscii(100, marker);
  tags.addText(2, name);
}

std::uint32_t Structure::addEntry(Type entryType, TagList& tags) {
  const std::uint32_t table = tableRecord(entryType);
  TableInfo& info = tables_[static_cast<int>(entryType)];
  const std::uint32_t i = writer_.addComplete(tags, {info.endtab, table});
  info.byName[records_[i].name] = i;
  return i;
}

void Structure::enterName(std::uint32_t record, std::uint32_t name) {
  lastLayer_ = 0;
  for (auto& [type, info] : tables_) {
    if (info.table == records_[record].owner) info.byName[name] = record;
  }
  if (block(record)) blockOfName_[name] = record;
}

std::uint32_t Structure::layerNamed(std::u16string_view name, bool make) {
  if (lastLayer_ && name == lastLayerName_ && !records_[lastLayer_].is(Record::erased) &&
      !records_[lastLayer_].is(Record::open) && records_[lastLayer_].name == lastLayerNumber_) {
    return lastLayer_;  // entities come in runs on one layer; an open one may be given another name
  }
  if (const std::uint32_t i = tableEntry(Type::layer, name); i || !make) {
    lastLayerName_ = name;
    lastLayerBytes_.clear();
    lastLayer_ = i;
    lastLayerNumber_ = records_[i].name;
    return i;
  }
  if (!usableName(name, records_.format().version)) return 0;
  const auto tags = borrowTags();
  beginEntry(*tags, "LAYER", "AcDbLayerTableRecord", name);
  tags->addInteger(70, 0);
  tags->addInteger(62, 7);
  tags->addAscii(6, "Continuous");
  // A layer needs its plot style where the drawing has them: take over that of layer "0".
  const std::uint32_t zero = records_.format().version >= 1015 ? tableEntry(Type::layer, u"0") : 0;
  if (zero) {
    const auto model = borrowTags();
    records_.parse(zero, *model);
    for (const int code : {370, 390, 347}) {
      const int at = model->find(code, model->body());
      if (at >= 0) tags->insertCopy(tags->size(), *model, at);
    }
  }
  return addEntry(Type::layer, *tags);
}

bool Structure::hasLayer(const TagList& tags, int at) {
  const std::string_view bytes = tags[at].bytes();
  if (lastLayer_ && bytes == lastLayerBytes_ && !records_[lastLayer_].is(Record::erased) &&
      records_[lastLayer_].name == lastLayerNumber_) {
    return true;
  }
  if (!layerNamed(tags.text(at), false)) return false;
  lastLayerBytes_ = bytes;
  return true;
}

std::uint32_t Structure::registerApplication(std::u16string_view name) {
  if (const std::uint32_t i = tableEntry(Type::appid, name)) return i;
  const auto tags = borrowTags();
  beginEntry(*tags, "APPID", "AcDbRegAppTableRecord", name);
  tags->addInteger(70, 0);
  return addEntry(Type::appid, *tags);
}

void Structure::ensureClass(std::string_view dxf, std::string_view cpp,
                            std::string_view application, int flags, bool entity) {
  if (!records_.format().hasHandlesAndMarkers()) return;
  const std::uint32_t end = sectionEnd(u"CLASSES");
  const auto tags = borrowTags();
  for (std::uint32_t i = records_[section(u"CLASSES").begin].next; i && i != end;
       i = records_[i].next) {
    if (records_[i].type != Type::classRecord) continue;
    records_.parse(i, *tags);
    const int at = tags->find(1);
    if (at >= 0 && tags->is(at, dxf)) return;
  }
  tags->create(records_.format(), "CLASS");
  tags->addAscii(1, dxf);
  tags->addAscii(2, cpp);
  tags->addAscii(3, application);
  tags->addInteger(90, flags);
  if (records_.format().version >= 1018) tags->addInteger(91, 0);
  tags->addInteger(280, 0);
  tags->addInteger(281, entity ? 1 : 0);
  // Not undone with the command that needed it first: what came later counts on it.
  const History::Pause pause(history_);
  const std::uint32_t i = writer_.add(*tags, {.before = end});
  records_.edit(i).handle = 0;
}

BlockInfo Structure::addBlock(std::u16string_view name, const AcGePoint3d& base) {
  BlockInfo info;
  const auto tags = borrowTags();
  const bool markers = records_.format().hasHandlesAndMarkers();
  if (markers) {
    beginEntry(*tags, "BLOCK_RECORD", "AcDbBlockTableRecord", name);
    if (records_.format().version >= 1015) tags->addHandle(340, 0);
    info.id = addEntry(Type::blockRecord, *tags);
  }
  const std::uint32_t end = sectionEnd(u"BLOCKS");
  const auto begin = [&](std::string_view type, std::string_view marker) {
    tags->create(records_.format(), type);
    tags->addAscii(100, "AcDbEntity");
    tags->addAscii(8, "0");
    tags->addAscii(100, marker);
  };
  begin("BLOCK", "AcDbBlockBegin");
  tags->addText(2, name);
  tags->addInteger(70, !name.empty() && name[0] == u'*' ? 1 : 0);
  tags->addPoint(10, base);
  tags->addText(3, name);
  if (markers) tags->addAscii(1, "");
  info.begin = writer_.addComplete(*tags, {.before = end, .owner = info.id, .entity = true});
  if (!info.id) info.id = info.begin;
  begin("ENDBLK", "AcDbBlockEnd");
  info.end = writer_.addComplete(*tags, {.before = end, .owner = info.id, .entity = true});
  records_.edit(info.begin).owner = info.id;
  blockOfId_[info.id] = static_cast<std::uint32_t>(blocks_.size());
  blockOfName_[records_[info.begin].name] = info.id;
  blocks_.push_back(info);
  return info;
}

std::u16string Structure::freeTableName() {
  if (lastTable_ == 0) {
    for (const BlockInfo& b : blocks_) {
      const std::u16string& name = records_.names().text(records_[b.id].name);
      if (name.size() < 3 || name[0] != u'*' || (name[1] != u'T' && name[1] != u't')) continue;
      lastTable_ = std::max(
          lastTable_, static_cast<std::uint32_t>(std::max(0, platform::wtoi(name.substr(2)))));
    }
    ensureClass("ACAD_TABLE", "AcDbTable", "ObjectDBX Classes", 1025, true);
    ensureClass("TABLESTYLE", "AcDbTableStyle", "ObjectDBX Classes", 4095, false);
  }
  return u"*T" + platform::widen(std::to_string(++lastTable_));
}

}  // namespace cad
