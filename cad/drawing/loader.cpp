#include "cad/drawing/loader.h"

#include "platform/text.h"
#include "platform/words.h"

namespace cad {

platform::Result<void> Loader::run(ScannedFile file, const Header& header) {
  const bool sawEof = file.sawEof;
  records_.take(std::move(file));
  const std::uint32_t count = records_.count();
  for (std::uint32_t i = 1; i < count; ++i) step(i);
  sectionNotClosed(0);
  if (!sawEof) warn(platform::words("il file non ha il segno di fine; può essere troncato"));
  if (s_.sections_.empty())
    return platform::Error{name_ + platform::words(": non ha sezioni; non è un disegno DXF")};
  spaces();
  settleHandles(header);
  repairHandles();
  closeAll();
  if (!sawEof) s_.addMark("EOF", 0, 0);
  completeBlocks();
  return {};
}

void Loader::step(std::uint32_t i) {
  Record& r = records_.edit(i);
  if (r.type == Type::section) return openSection(i);
  if (r.type == Type::endsec) return closeSection(i);
  if (r.type == Type::eof) return sectionNotClosed(i);
  if (sectionName_ == u"TABLES") {
    tableStep(i);
  } else if (sectionName_ == u"BLOCKS") {
    blockStep(i);
  } else if (sectionName_ == u"ENTITIES") {
    entityStep(i, r.is(Record::paper) ? s_.paperSpace_ : s_.modelSpace_, true);
  } else if (sectionName_ == u"OBJECTS") {
    if (!s_.namedObjects_ && r.type == Type::dictionary) s_.namedObjects_ = i;
  } else if (sectionName_ == u"CLASSES" || sectionName_ == u"ACDSDATA") {
    r.handle = 0;  // numbers behind group 5 mean other things here
    return;
  }
  if (sectionName_ == u"CLASSES" || r.type == Type::endtab) return;
  noteHandle(i);
}

void Loader::notClosed(std::uint32_t before) {
  if (block_) unclosed_.push_back({"ENDBLK", before, block_, Type::other, {}});
  if (table_) unclosed_.push_back({"ENDTAB", before, 0, tableType_, {}});
  block_ = table_ = 0;
}

void Loader::sectionNotClosed(std::uint32_t before) {
  notClosed(before);
  if (section_) unclosed_.push_back({"ENDSEC", before, 0, Type::other, sectionName_});
  section_ = 0;
}

// Comes last, because the marks take handles that no object of the file may have.
void Loader::closeAll() {
  for (const Unclosed& u : unclosed_) {
    const std::uint32_t mark = s_.addMark(u.mark, u.before, u.owner);
    if (u.mark == "ENDBLK") s_.blocks_[s_.blockOfId_[u.owner]].end = mark;
    if (u.mark == "ENDSEC") s_.sections_[u.section].end = mark;
    if (u.mark == "ENDTAB" && u.tableType != Type::other) {
      s_.tables_[static_cast<int>(u.tableType)].endtab = mark;
    }
  }
}

void Loader::openSection(std::uint32_t i) {
  if (section_) {
    warn(platform::words("la sezione ") + platform::narrow(sectionName_) +
         platform::words(" non è chiusa; chiusa dove comincia la successiva"));
    sectionNotClosed(i);
  }
  section_ = i;
  Record& r = records_.edit(i);
  sectionName_ = records_.types().text(r.name);
  r.handle = 0;
  r.layer = 0;
  r.flags = 0;
  table_ = block_ = parent_ = 0;
  // The blocks of the spaces must be known before the first entity.
  if (sectionName_ == u"ENTITIES" || sectionName_ == u"BLOCKS") spaces();
  if (!s_.sections_.try_emplace(sectionName_, SectionInfo{i, 0}).second &&
      sectionName_ != u"ENTITIES") {
    warn(platform::words("la sezione ") + platform::narrow(sectionName_) +
         platform::words(" c'è due volte"));
  }
}

void Loader::closeSection(std::uint32_t i) {
  if (const auto it = s_.sections_.find(sectionName_); it != s_.sections_.end()) {
    it->second.end = i;
  }
  notClosed(i);
  section_ = 0;
  sectionName_.clear();
  parent_ = 0;
}

void Loader::openTable(std::uint32_t i) {
  notClosed(i);
  table_ = i;
  tableType_ = Type::other;
  const std::u16string& name = records_.types().text(records_[i].name);
  for (auto t = static_cast<int>(Type::blockRecord); t <= static_cast<int>(Type::ucs); ++t) {
    if (platform::equalNoCase(name, platform::widen(nameOf(static_cast<Type>(t))))) {
      tableType_ = static_cast<Type>(t);
    }
  }
  if (tableType_ != Type::other) {
    s_.tables_.try_emplace(static_cast<int>(tableType_)).first->second.table = i;
  }
}

void Loader::tableStep(std::uint32_t i) {
  Record& r = records_.edit(i);
  if (r.type == Type::table) return openTable(i);
  if (r.type == Type::endtab) {
    if (tableType_ != Type::other) s_.tables_[static_cast<int>(tableType_)].endtab = i;
    table_ = 0;
    return;
  }
  r.owner = table_;
  if (!table_ || r.type != tableType_) return;
  TableInfo& info = s_.tables_[static_cast<int>(tableType_)];
  const bool fresh = info.byName.try_emplace(r.name, i).second;
  if (!fresh && tableType_ != Type::vport && r.name != 0) {
    warn(platform::words("la tabella ") + std::string(nameOf(tableType_)) +
         platform::words(" ha \"") + platform::narrow(records_.names().text(r.name)) +
         platform::words("\" due volte; vale la prima"));
  }
}

void Loader::blockStep(std::uint32_t i) {
  Record& r = records_.edit(i);
  if (r.type == Type::block) {
    notClosed(i);
    const std::uint32_t entry = entryOfBlock(r.name);
    BlockInfo info;
    info.id = entry ? entry : i;
    info.begin = i;
    if (const auto it = s_.blockOfId_.find(info.id); it != s_.blockOfId_.end()) {
      s_.blocks_[it->second].begin = i;  // a space that is known already
    } else {
      enter(info, r.name);
    }
    block_ = info.id;
    parent_ = 0;
    r.owner = info.id;
    return;
  }
  if (r.type == Type::endblk) {
    if (block_) s_.blocks_[s_.blockOfId_[block_]].end = i;
    r.owner = block_;
    block_ = 0;
    parent_ = 0;
    return;
  }
  entityStep(i, block_, block_ && isLayout(block_));
}

bool Loader::isLayout(std::uint32_t block) const {
  const std::u16string name = platform::upper(records_.names().text(records_[block].name));
  return name.starts_with(u"*PAPER_SPACE") || name.starts_with(u"*MODEL_SPACE");
}

void Loader::entityStep(std::uint32_t i, std::uint32_t owner, bool space) {
  Record& r = records_.edit(i);
  switch (r.type) {
    case Type::vertex:
    case Type::attrib:
    case Type::seqend:
      if (parent_) {
        r.owner = parent_;
        r.set(Record::child);
        if (r.type == Type::seqend) parent_ = 0;
        return;
      }
      break;
    case Type::polyline:
      parent_ = i;
      break;
    case Type::insert:
      parent_ = r.is(Record::hasParts) ? i : 0;
      break;
    default:
      parent_ = 0;
      break;
  }
  r.owner = owner;
  if (space) r.set(Record::space);
}

std::uint32_t Loader::entryOfBlock(std::uint32_t blockName) const {
  const auto it = s_.tables_.find(static_cast<int>(Type::blockRecord));
  if (it == s_.tables_.end()) return 0;
  const auto e = it->second.byName.find(blockName);
  return e == it->second.byName.end() ? 0 : e->second;
}

void Loader::enter(const BlockInfo& info, std::uint32_t blockName) {
  s_.blockOfId_[info.id] = static_cast<std::uint32_t>(s_.blocks_.size());
  s_.blockOfName_.try_emplace(blockName, info.id);
  s_.blocks_.push_back(info);
}

// Model space and the active layout, by their entries, or as stand-ins where a file has none.
void Loader::spaces() {
  if (s_.modelSpace_) return;
  s_.modelSpace_ = space(u"*Model_Space", u"$MODEL_SPACE");
  s_.paperSpace_ = space(u"*Paper_Space", u"$PAPER_SPACE");
}

std::uint32_t Loader::space(std::u16string_view star, std::u16string_view dollar) {
  const std::uint32_t starName = records_.names().of(star);
  std::uint32_t blockName = starName;
  std::uint32_t id = entryOfBlock(starName);
  // Old files may have BLOCKs of the spaces and no table of blocks.
  for (std::uint32_t i = 1; !id && i < records_.count() && records_.format().version < 1012; ++i) {
    const std::u16string& name = records_.names().text(records_[i].name);
    if (records_[i].type == Type::block &&
        (platform::equalNoCase(name, star) || platform::equalNoCase(name, dollar))) {
      id = i;
      blockName = records_[i].name;
    }
  }
  if (!id) {
    TagList tags;
    tags.create(records_.format(), "BLOCK_RECORD");
    tags.addText(2, star);
    Record stand;
    stand.type = Type::blockRecord;
    stand.typeName = static_cast<std::uint32_t>(Type::blockRecord);
    stand.name = blockName;
    id = records_.standIn(stand, tags);
  }
  BlockInfo info;
  info.id = id;
  enter(info, blockName);
  if (blockName != starName) s_.blockOfName_.try_emplace(starName, id);
  return id;
}

void Loader::noteHandle(std::uint32_t i) {
  Record& r = records_.edit(i);
  if (r.handle == 0) {
    if (records_.format().version < 1012) return;
    ++missing_;
    broken_.push_back(i);
  } else if (records_.byHandle(r.handle)) {
    ++doubled_;
    r.handle = 0;
    broken_.push_back(i);
  } else {
    records_.registerHandle(r.handle, i);
  }
}

void Loader::settleHandles(const Header& header) {
  const std::u16string handling = header.text("$HANDLING");
  const bool any = records_.nextHandle() > 1 || records_.lateHandles() > 0;
  records_.setUsesHandles(records_.format().version >= 1012 || handling == u"1" || any);
  TagList tags;
  TagRange seed;
  if (header.variable("$HANDSEED", tags, seed) && !seed.empty() && tags.handle(seed.begin) != 0 &&
      !records_.beginHandlesAt(tags.handle(seed.begin))) {
    warn(
        platform::words("$HANDSEED sta alla fine dei numeri possibili; i nuovi oggetti sono "
                        "numerati dopo gli altri"));
  }
  if (records_.lateHandles()) {
    warn(std::to_string(records_.lateHandles()) +
         platform::words(" oggetti hanno handle alla fine dei numeri possibili; li tengono, e "
                         "$HANDSEED è posto dopo gli altri"));
  }
  if (doubled_) {
    warn(
        std::to_string(doubled_) +
        platform::words(" handle usati due volte; li tiene il primo, gli altri ne hanno di nuovi"));
  }
  if (missing_) {
    warn(std::to_string(missing_) + platform::words(" oggetti senza handle; ne hanno di nuovi"));
  }
}

void Loader::repairHandles() {
  const auto tags = borrowTags();
  for (const std::uint32_t i : broken_) {
    records_.parse(i, *tags);
    const int code =
        records_[i].type == Type::dimstyle && records_.format().version >= 1012 ? 105 : 5;
    const std::uint64_t handle = records_.takeHandle();
    const int at = tags->find(code, tags->body());
    if (at >= 0) {
      tags->setHandle(at, handle);
    } else {
      tags->insertHandle(1, code, handle);
    }
    const std::uint16_t structure = records_[i].flags;
    writer_.rewrite(i, *tags);
    records_.edit(i).flags = structure | Record::changed | Record::stored;
    records_.registerHandle(handle, i);
  }
}

// From R13 on every block has an entry in the table of blocks, and every entity says whose it is:
// without entries, new entities would belong to nobody.
void Loader::completeBlocks() {
  if (!records_.format().hasHandlesAndMarkers()) return;
  std::unordered_map<std::uint32_t, std::uint32_t> moved;  // BLOCK record -> its new entry
  const auto tags = borrowTags();
  for (std::size_t k = 0; k < s_.blocks_.size(); ++k) {
    const std::uint32_t old = s_.blocks_[k].id;
    const bool standIn = records_[old].is(Record::synthetic);
    if (records_[old].type == Type::blockRecord && !standIn) continue;
    const std::u16string name = records_.names().text(records_[old].name);
    const std::uint32_t table = s_.tableRecord(Type::blockRecord);
    TableInfo& info = s_.tables_[static_cast<int>(Type::blockRecord)];
    s_.beginEntry(*tags, "BLOCK_RECORD", "AcDbBlockTableRecord", name);
    if (records_.format().version >= 1015) tags->addHandle(340, 0);
    const std::uint64_t handle = records_.takeHandle();
    writer_.complete(*tags, handle, {.owner = table});
    std::uint32_t entry = old;
    if (standIn) {
      records_.place(entry, info.endtab);
      writer_.rewrite(entry, *tags);
      records_.registerHandle(handle, entry);
      s_.marks_.push_back(entry);
    } else {
      entry = s_.addMark(*tags, info.endtab, table);
      moved[old] = entry;
      s_.blocks_[k].id = entry;
      s_.blockOfId_[entry] = static_cast<std::uint32_t>(k);
      s_.blockOfName_[records_[old].name] = entry;
    }
    records_.edit(entry).owner = table;
    info.byName[records_[entry].name] = entry;
  }
  if (moved.empty()) return;
  for (std::uint32_t i = 1; i < records_.count(); ++i) {
    if (const auto it = moved.find(records_[i].owner); it != moved.end()) {
      records_.edit(i).owner = it->second;
    }
  }
}

}  // namespace cad
