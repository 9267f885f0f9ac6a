// How the records of a drawing hang together: sections, tables with their entries, blocks with
// their entities, entities with their parts. Makes what a file leaves out and commands need.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "cad/api/ge.h"
#include "cad/drawing/records.h"
#include "cad/drawing/writer.h"

namespace cad {

// One block: model space, a layout, or a block definition.
struct BlockInfo {
  std::uint32_t id = 0;     // the record that names it: BLOCK_RECORD, or BLOCK in old files
  std::uint32_t begin = 0;  // its BLOCK record, 0 when the file has none
  std::uint32_t end = 0;    // its ENDBLK record
  // The base point, kept while the BLOCK record's text is this one.
  mutable TextKey originOf;
  mutable AcGePoint3d origin;
};

struct TableInfo {
  std::uint32_t table = 0, endtab = 0;
  std::unordered_map<std::uint32_t, std::uint32_t> byName;  // name -> record
};

struct SectionInfo {
  std::uint32_t begin = 0, end = 0;
};

class CAD_API Structure {
 public:
  Structure(Records& records, History& history, Writer& writer)
      : records_(records), history_(history), writer_(writer) {}

  // --- blocks
  std::uint32_t modelSpace() const { return modelSpace_; }
  std::uint32_t paperSpace() const { return paperSpace_; }
  bool isSpace(std::uint32_t block) const { return block == modelSpace_ || block == paperSpace_; }
  const BlockInfo* block(std::uint32_t id) const;
  std::uint32_t blockByName(std::uint32_t name) const;
  std::uint32_t blockNamed(std::u16string_view name) const {
    return blockByName(records_.names().find(name));
  }
  const std::vector<BlockInfo>& blocks() const { return blocks_; }
  // The entities of a block in drawing order, parts left out: first and following, 0 at the end.
  std::uint32_t firstEntity(std::uint32_t block) const;
  std::uint32_t nextEntity(std::uint32_t block, std::uint32_t entity) const;
  // The parts of an entity: vertices or attributes, 0 at the end.
  std::uint32_t firstPart(std::uint32_t entity) const { return nextPart(entity, entity); }
  std::uint32_t nextPart(std::uint32_t entity, std::uint32_t part) const;
  // The record before which a new entity of the block goes; 0 when it can take none.
  std::uint32_t endOf(std::uint32_t block) const;
  // A new empty block definition of the name; the caller fills it before its end.
  BlockInfo addBlock(std::u16string_view name, const AcGePoint3d& base);
  // A name for the block of a new table, "*T1" and so on, that no block of the drawing has or had.
  std::u16string freeTableName();

  // --- tables
  const TableInfo* table(Type entryType) const;
  // What the entries of a table's record are; Type::other for no table.
  Type entryTypeOf(std::uint32_t table) const;
  // The table's record, made when the file has no such table.
  std::uint32_t tableRecord(Type entryType);
  std::uint32_t tableEntry(Type entryType, std::u16string_view name) const {
    return tableEntry(entryType, records_.names().find(name));
  }
  std::uint32_t tableEntry(Type entryType, std::uint32_t name) const;
  std::uint32_t firstTableEntry(std::uint32_t table) const { return nextTableEntry(table, table); }
  std::uint32_t nextTableEntry(std::uint32_t table, std::uint32_t entry) const;
  // A new entry of a table from its tags, which may lack what Writer::complete gives.
  std::uint32_t addEntry(Type entryType, TagList& tags);
  // Makes the entry, or the block, known under a name that it has got.
  void enterName(std::uint32_t record, std::uint32_t name);
  // The layer, made on demand; 0 when there is none and none may be made of such a name.
  std::uint32_t layerNamed(std::u16string_view name, bool make);
  // Whether the layer that a tag names, in the drawing's own encoding, is there.
  bool hasLayer(const TagList& tags, int at);
  std::uint32_t registerApplication(std::u16string_view name);
  // The line type may stand in an entity: it is in the table, or one of the two that are always
  // there.
  bool hasLinetype(std::u16string_view name) const;

  // --- sections and what stands in them
  SectionInfo section(std::u16string_view name) const;
  // The record before which a section ends, made when the file has no such section.
  std::uint32_t sectionEnd(std::u16string_view name);
  std::uint32_t namedObjects() const { return namedObjects_; }
  // The dictionary of all others, made when the file has none; 0 in versions without dictionaries.
  std::uint32_t rootDictionary();
  void ensureClass(std::string_view dxf, std::string_view cpp, std::string_view application,
                   int flags, bool entity);
  // What was made here is written once the drawing is saved with changes, so that a file in which
  // somebody only looked is saved as it came.
  void writeMarks();

 private:
  friend class Loader;
  std::uint32_t addMark(TagList& tags, std::uint32_t before, std::uint32_t owner);
  std::uint32_t addMark(std::string_view type, std::uint32_t before, std::uint32_t owner);
  std::uint32_t placeOfSection(std::u16string_view name) const;
  void beginEntry(TagList& tags, std::string_view type, std::string_view marker,
                  std::u16string_view name) const;

  Records& records_;
  History& history_;
  Writer& writer_;
  std::vector<BlockInfo> blocks_;
  std::unordered_map<std::uint32_t, std::uint32_t> blockOfId_;    // record -> index
  std::unordered_map<std::uint32_t, std::uint32_t> blockOfName_;  // name -> record
  std::uint32_t modelSpace_ = 0, paperSpace_ = 0;
  std::unordered_map<int, TableInfo> tables_;
  std::map<std::u16string, SectionInfo, std::less<>> sections_;  // none is ever taken out
  mutable const std::pair<const std::u16string, SectionInfo>* lastSection_ = nullptr;
  std::uint32_t namedObjects_ = 0;
  std::vector<std::uint32_t> marks_;
  std::u16string lastLayerName_;  // the layer asked for last, its record and that one's name
  std::string lastLayerBytes_;    // the same name as files write it, once an object came with it
  std::uint32_t lastLayer_ = 0, lastLayerNumber_ = 0;
  std::uint32_t lastTable_ = 0;  // number of the latest table's block, 0 not counted yet
};

// Why a text can be no name of a symbol (layer, block, style and so on) in a drawing of a version.
struct NameFault {
  enum Kind { none, empty, tooLong, badCharacter } kind = none;
  char16_t character = 0;  // the first that may not stand in a name
  int limit = 255;         // characters that a name may have
};
// `block` also takes the asterisk that anonymous blocks begin with.
CAD_API NameFault faultOfName(std::u16string_view name, int version, bool block = false);
inline bool usableName(std::u16string_view name, int version, bool block = false) {
  return faultOfName(name, version, block).kind == NameFault::none;
}

}  // namespace cad
