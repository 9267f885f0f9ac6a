#include "cad/drawing/structure.h"

#include <algorithm>

#include "platform/text.h"

namespace cad {

const BlockInfo* Structure::block(std::uint32_t id) const {
  const auto it = blockOfId_.find(id);
  return it == blockOfId_.end() ? nullptr : &blocks_[it->second];
}

std::uint32_t Structure::blockByName(std::uint32_t name) const {
  const auto it = name ? blockOfName_.find(name) : blockOfName_.end();
  if (it == blockOfName_.end()) return 0;
  const std::uint32_t id = it->second;
  const bool same = records_[id].name == name || isSpace(id);  // old files call spaces otherwise
  if (same && !records_[id].is(Record::erased)) return id;
  for (const BlockInfo& b : blocks_) {  // taken back and made again, or renamed: rare
    if (records_[b.id].name == name && !records_[b.id].is(Record::erased)) return b.id;
  }
  return 0;
}

std::uint32_t Structure::firstEntity(std::uint32_t block) const {
  const BlockInfo* info = this->block(block);
  if (!info) return 0;
  if (!isSpace(block)) return info->begin ? nextEntity(block, info->begin) : 0;
  const std::uint32_t begin = section(u"ENTITIES").begin;
  return begin ? nextEntity(block, begin) : 0;
}

std::uint32_t Structure::nextEntity(std::uint32_t block, std::uint32_t entity) const {
  const bool shared = isSpace(block);
  for (std::uint32_t i = records_[entity].next; i; i = records_[i].next) {
    const Record& r = records_[i];
    if (r.type == Type::endblk && !shared) return 0;
    if (r.owner == block && !r.is(Record::child) && !r.is(Record::erased) &&
        r.type != Type::endblk && r.type != Type::block) {
      return i;
    }
    if (shared && r.type == Type::section && records_.types().text(r.name) != u"ENTITIES") return 0;
  }
  return 0;
}

std::uint32_t Structure::nextPart(std::uint32_t entity, std::uint32_t part) const {
  for (std::uint32_t i = records_[part].next; i; i = records_[i].next) {
    const Record& r = records_[i];
    if (!r.is(Record::child) || r.owner != entity || r.type == Type::seqend) return 0;
    if (!r.is(Record::erased)) return i;
  }
  return 0;
}

std::uint32_t Structure::endOf(std::uint32_t block) const {
  if (isSpace(block)) return section(u"ENTITIES").end;
  const BlockInfo* info = this->block(block);
  return info ? info->end : 0;
}

const TableInfo* Structure::table(Type entryType) const {
  const auto it = tables_.find(static_cast<int>(entryType));
  return it == tables_.end() ? nullptr : &it->second;
}

Type Structure::entryTypeOf(std::uint32_t table) const {
  for (const auto& [type, info] : tables_) {
    if (info.table == table) return static_cast<Type>(type);
  }
  return Type::other;
}

std::uint32_t Structure::tableEntry(Type entryType, std::uint32_t name) const {
  const TableInfo* info = table(entryType);
  if (!info) return 0;
  const auto it = name ? info->byName.find(name) : info->byName.end();
  if (it == info->byName.end()) return 0;
  const Record& r = records_[it->second];
  if (!r.is(Record::erased) && r.name == name) return it->second;
  // Taken back and made again, or renamed: rare.
  for (std::uint32_t e = firstTableEntry(info->table); e; e = nextTableEntry(info->table, e)) {
    if (records_[e].name == name) return e;
  }
  return 0;
}

std::uint32_t Structure::nextTableEntry(std::uint32_t table, std::uint32_t entry) const {
  if (!records_.format().hasHandlesAndMarkers() && entryTypeOf(table) == Type::blockRecord) {
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

SectionInfo Structure::section(std::u16string_view name) const {
  // Every new entity asks for the same one.
  if (lastSection_ && lastSection_->first == name) return lastSection_->second;
  const auto it = sections_.find(name);
  if (it == sections_.end()) return {};
  lastSection_ = &*it;
  return it->second;
}

bool Structure::hasLinetype(std::u16string_view name) const {
  return platform::equalNoCase(name, u"ByLayer") || platform::equalNoCase(name, u"ByBlock") ||
         tableEntry(Type::ltype, name);
}

NameFault faultOfName(std::u16string_view name, int version, bool block) {
  NameFault fault;
  const bool old = version < 1012;
  fault.limit = old ? 31 : 255;
  std::u16string_view rest = name;
  if (block && !rest.empty() && rest[0] == u'*') rest.remove_prefix(1);
  if (rest.find_first_not_of(u' ') == rest.npos) {
    fault.kind = NameFault::empty;
    return fault;
  }
  const auto bad = std::find_if(rest.begin(), rest.end(), [&](char16_t c) {
    if (!old) return c < 32 || std::u16string_view(u"<>/\\\":;?*|,=`").find(c) != rest.npos;
    return !((c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') ||
             c == u'$' || c == u'-' || c == u'_');
  });
  if (bad != rest.end()) {
    fault.kind = NameFault::badCharacter;
    fault.character = *bad;
  } else if (name.size() > static_cast<std::size_t>(fault.limit)) {
    fault.kind = NameFault::tooLong;
  }
  return fault;
}

}  // namespace cad
