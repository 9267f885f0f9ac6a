// Erasing objects with what hangs on them, and giving table entries another name.
#include <algorithm>

#include "cad/drawing/drawing.h"
#include "cad/drawing/uses.h"
#include "platform/text.h"

namespace cad {
namespace {

// Entries that every drawing has, whoever uses them.
bool isStanding(Type kind, std::u16string_view name) {
  const auto is = [&](std::u16string_view n) { return platform::equalNoCase(name, n); };
  switch (kind) {
    case Type::layer:
      return is(u"0");
    case Type::ltype:
      return is(u"Continuous") || is(u"ByLayer") || is(u"ByBlock");
    case Type::style:
    case Type::dimstyle:
      return is(u"Standard");
    case Type::appid:
      return is(u"ACAD");
    case Type::vport:
      return is(u"*Active");
    case Type::blockRecord: {
      const std::u16string upper = platform::upper(name.substr(0, 12));
      return upper.ends_with(u"MODEL_SPACE") || upper.ends_with(u"PAPER_SPACE");
    }
    default:
      return false;
  }
}

bool isFrame(Type type) {
  return type == Type::section || type == Type::endsec || type == Type::eof ||
         type == Type::table || type == Type::endtab || type == Type::endblk ||
         type == Type::seqend;
}

// The handle of the owner that an object names for itself, outside of groups; 0 for none.
std::uint64_t ownerOf(const TagList& tags) {
  for (int i = 1; i < tags.size() && tags[i].code != 100; ++i) {
    if (tags[i].code == 330) return tags.handle(i);
    if (tags[i].code != 102) continue;
    do ++i;
    while (i < tags.size() && tags[i].code != 102);
  }
  return 0;
}

bool isDefinition(const std::u16string& type) {
  return type == u"IMAGEDEF" || type == u"PDFDEFINITION" || type == u"DWFDEFINITION" ||
         type == u"DGNDEFINITION";
}

}  // namespace

Acad::ErrorStatus Drawing::mayErase(std::uint32_t record) const {
  const Record& r = records_[record];
  const bool block = structure_.block(record) != nullptr;
  if (isFrame(r.type) || (r.type == Type::block && !block)) return Acad::eCannotBeErasedByCaller;
  if (record == structure_.namedObjects()) return Acad::eCannotBeErasedByCaller;
  const Type kind = block ? Type::blockRecord : r.type;
  if (!block && (!r.owner || records_[r.owner].type != Type::table)) return Acad::eOk;
  const std::u16string& name = names().text(r.name);
  bool needed = isStanding(kind, name) || isUsed(records_, kind, r.name);
  for (const std::string_view variable : headerUses(kind)) {
    needed = needed || platform::equalNoCase(header_.text(variable), name);
  }
  return needed ? Acad::eCannotBeErasedByCaller : Acad::eOk;
}

Acad::ErrorStatus Drawing::erase(std::uint32_t record, bool erasing) {
  if (records_[record].is(Record::erased) == erasing) {
    return erasing ? Acad::eWasErased : Acad::eOk;
  }
  if (const auto s = erasing ? mayErase(record) : Acad::eOk; s != Acad::eOk) return s;
  const auto set = [&](std::uint32_t i) {
    if (erasing && !records_[i].is(Record::erased)) eraseDependents(i);
    writer_.setErased(i, erasing);
  };
  set(record);
  if (records_[record].type == Type::insert) dropInsertCache(records_[record].name);
  for (std::uint32_t i = records_[record].next;
       i && records_[i].is(Record::child) && records_[i].owner == record; i = records_[i].next) {
    set(i);
  }
  const BlockInfo* const block = structure_.block(record);
  if (!block || !block->begin) return Acad::eOk;
  for (std::uint32_t i = block->begin; i; i = records_[i].next) {
    if (i != record) set(i);
    if (i == block->end) break;
  }
  return Acad::eOk;
}

// What an erased object owns goes with it: its extension dictionary and all in there, the reactor
// of an image, and definitions that nothing else refers to. An object is owned by whom it names as
// its owner itself, so that a damaged file cannot lead from one entity through the whole drawing.
void Drawing::eraseDependents(std::uint32_t record) {
  erasedMembers_ = true;
  const Record& r = records_[record];
  const bool plain = r.type != Type::other && r.type != Type::dictionary;
  if (plain && r.text().find("{ACAD_XDICTIONARY") == std::string_view::npos) return;
  const auto tags = borrowTags();
  std::vector<std::pair<std::uint32_t, std::uint64_t>> owned;  // with the handle of the owner
  const auto collect = [&](std::uint32_t from) {
    const bool dictionary = records_[from].type == Type::dictionary;
    for (int i = 1; i < tags->xdataBegin(); ++i) {
      const int code = (*tags)[i].code;
      if ((code >= 360 && code <= 369) || (code >= 350 && code <= 359 && dictionary)) {
        owned.emplace_back(byHandle(tags->handle(i)), records_[from].handle);
      } else if (code == 340 && records_[from].type == Type::other) {
        eraseDefinition(byHandle(tags->handle(i)), from);
      }
    }
  };
  records_.parse(record, *tags);
  collect(record);
  while (!owned.empty()) {
    const auto [i, owner] = owned.back();
    owned.pop_back();
    const Record& o = records_[i];
    if (!i || o.is(Record::erased) || o.is(Record::open) || o.is(Record::space) || o.layer != 0 ||
        structure_.block(i) || isFrame(o.type) || i == structure_.namedObjects()) {
      continue;
    }
    records_.parse(i, *tags);
    if (ownerOf(*tags) != owner) continue;
    writer_.setErased(i, true);
    collect(i);
  }
}

// A definition goes with the last entity that shows it.
void Drawing::eraseDefinition(std::uint32_t definition, std::uint32_t user) {
  if (!definition || records_[definition].is(Record::erased) ||
      records_[definition].is(Record::open) ||
      !isDefinition(platform::upper(records_.typeName(definition)))) {
    return;
  }
  const auto tags = borrowTags();
  for (std::uint32_t i = 1; i < records_.count(); ++i) {
    const Record& r = records_[i];
    if (i == user || r.is(Record::erased) || r.type != Type::other ||
        r.typeName != records_[user].typeName) {
      continue;
    }
    records_.parse(i, *tags);
    for (int t = 1; t < tags->xdataBegin(); ++t) {
      if ((*tags)[t].code == 340 && byHandle(tags->handle(t)) == definition) return;
    }
  }
  writer_.setErased(definition, true);
}

// A block record may list the inserts of its block: a cache, dropped when one comes or goes.
void Drawing::dropInsertCache(std::uint32_t blockName) {
  const std::uint32_t id = structure_.blockByName(blockName);
  if (!id || records_[id].type != Type::blockRecord || records_[id].is(Record::open) ||
      records_[id].is(Record::synthetic)) {
    return;
  }
  if (records_[id].text().find("{BLKREFS") == std::string_view::npos) return;
  const auto tags = borrowTags();
  records_.parse(id, *tags);
  const TagRange group = tags->group("BLKREFS");
  if (group.empty()) return;
  tags->erase(group.begin, group.end);
  writer_.rewrite(id, *tags);
}

Acad::ErrorStatus Drawing::rename(AcDbObject& entry, std::u16string_view name) {
  const std::uint32_t record = entry.view_->record;
  const Type kind = structure_.block(record) ? Type::blockRecord : records_[record].type;
  const std::u16string old = names().text(records_[record].name);
  if (!usableName(name, format().version)) return Acad::eInvalidInput;
  if (isStanding(kind, old) || (kind == Type::blockRecord && old.starts_with(u'*'))) {
    return Acad::eInvalidInput;
  }
  const std::uint32_t known = names().of(name), before = records_[record].name;
  if (known != before && (structure_.tableEntry(kind, known) ||
                          (kind == Type::blockRecord && structure_.blockByName(known)))) {
    return Acad::eDuplicateRecordName;
  }
  const bool free =
      eachUse(records_, kind, before, [&](std::uint32_t i, TagList&, const std::vector<int>&) {
        return i == record || !records_[i].is(Record::open);
      });
  if (!free) return Acad::eWasOpenForWrite;
  TagList& own = entry.tagsForWrite();
  const int at = own.find(2, own.body());
  if (at < 0) return Acad::eInvalidInput;
  own.setText(at, name);
  const int again = records_[record].type == Type::block ? own.find(3, own.body()) : -1;
  if (again >= 0) own.setText(again, name);
  eachUse(records_, kind, before,
          [&](std::uint32_t i, TagList& tags, const std::vector<int>& places) {
            if (i == record) return true;
            for (const int k : places) tags.setText(k, name);
            writer_.rewrite(i, tags);
            return true;
          });
  for (const std::string_view variable : headerUses(kind)) {
    if (platform::equalNoCase(header_.text(variable), old)) header_.setText(variable, name);
  }
  writer_.rewrite(record, own);
  records_.parse(record, own);  // the text from which it was read may be gone
  structure_.enterName(record, known);
  return Acad::eOk;
}

}  // namespace cad
