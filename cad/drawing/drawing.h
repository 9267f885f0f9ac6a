// The database behind an AcDbDatabase: the records of one drawing, how they are found, changed,
// undone and written.
//
// A drawing is the list of its file's records in file order. The text of a record is its state:
// reading a file only indexes it, opening an object parses its text into tags, closing a changed
// object writes a new text into the drawing's own memory, and saving concatenates texts. So a
// record that nobody changed is saved byte for byte, and the state before a change is kept for undo
// by keeping the record as it was (56 bytes), because texts are never overwritten.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "cad/api/database.h"
#include "cad/dxf/arena.h"
#include "cad/dxf/scanner.h"
#include "cad/dxf/tags.h"
#include "platform/result.h"

namespace cad {

// What an open object, or one not yet in a drawing, keeps beside its class.
struct ViewState {
  Drawing* drawing = nullptr;  // null for an object that is not in a drawing yet
  std::uint32_t record = 0;
  int readers = 0;
  bool writing = false;
  bool modified = false;
  std::unique_ptr<TagList> tags;  // null until somebody looks
  const TagList* shared =
      nullptr;  // the drawing's own copy, for readers of what is read all the time
  std::vector<AcDbObject*> parts;  // made with the object and not yet in a drawing
};

// One block: model space, a layout, or a block definition.
struct BlockInfo {
  std::uint32_t id = 0;     // the record that names it: BLOCK_RECORD, or BLOCK in old files
  std::uint32_t begin = 0;  // its BLOCK record, 0 when the file has none
  std::uint32_t end = 0;    // its ENDBLK record
  // The base point, kept while the BLOCK record's text is this one.
  mutable const char* originOf = nullptr;
  mutable AcGePoint3d origin;
};

struct TableInfo {
  std::uint32_t table = 0, endtab = 0;
  std::unordered_map<std::uint32_t, std::uint32_t> byName;  // name -> record
};

struct SaveOptions {
  bool keepBackup = true;
};

class CAD_API Drawing {
 public:
  explicit Drawing(AcDbDatabase* database);
  ~Drawing();
  Drawing(const Drawing&) = delete;
  Drawing& operator=(const Drawing&) = delete;

  // --- files
  // Reads a file. The error names file, place and reason. `warnings` gets what was repaired.
  platform::Result<void> load(const std::string& path, std::vector<std::string>& warnings);
  platform::Result<void> loadBytes(Block bytes, std::size_t size, const std::string& name,
                                   std::vector<std::string>& warnings);
  void makeDefault();
  // Writes the drawing in the version it came in; safe against crash and full disk (see
  // platform::SaveFile). Objects must be closed.
  platform::Result<void> save(const std::string& path, const SaveOptions& options = {});
  // Turns the view with which programs open the drawing to what has been drawn since it was made or
  // read.
  void fitView();
  // The whole file as one text, for tests and comparisons.
  std::string toBytes();
  bool isChanged() const { return changed_; }

  // --- records
  const Format& format() const { return format_; }
  AcDbDatabase* database() const { return database_; }
  std::uint32_t number() const { return number_; }
  AcDbObjectId idOf(std::uint32_t record) const {
    return record ? AcDbObjectId(number_, record) : AcDbObjectId();
  }
  bool has(AcDbObjectId id) const {
    return id.databaseIndex() == number_ && id.index() != 0 && id.index() < records_.size();
  }
  const Record& record(std::uint32_t i) const { return records_[i]; }
  std::uint32_t recordCount() const { return static_cast<std::uint32_t>(records_.size()); }
  std::uint32_t firstRecord() const { return first_; }
  NameTable& names() { return names_; }
  const NameTable& names() const { return names_; }
  const NameSets& applicationSets() const { return sets_; }
  const std::u16string& typeName(std::uint32_t record) const {
    return names_.text(records_[record].typeName);
  }
  std::uint32_t byHandle(std::uint64_t handle) const;
  std::uint64_t takeHandle();
  // The tags of a record that is not open, for readers inside the host.
  void parse(std::uint32_t record, TagList& tags) const {
    tags.parse(format_, records_[record].text());
  }
  // The tags of an attribute definition, kept parsed: every new reference of a block reads them.
  // Null for other objects.
  const TagList* definitionTags(std::uint32_t record) const;

  // --- blocks and tables
  std::uint32_t modelSpace() const { return modelSpace_; }
  std::uint32_t paperSpace() const { return paperSpace_; }
  const BlockInfo* block(std::uint32_t id) const;
  std::uint32_t blockByName(std::uint32_t name) const;
  const std::vector<BlockInfo>& blocks() const { return blocks_; }
  // The entities of a block in drawing order, parts left out: first and following, 0 at the end.
  std::uint32_t firstEntity(std::uint32_t block) const;
  std::uint32_t nextEntity(std::uint32_t block, std::uint32_t entity) const;
  // The parts of an entity: vertices or attributes, 0 at the end.
  std::uint32_t firstPart(std::uint32_t entity) const;
  std::uint32_t nextPart(std::uint32_t entity, std::uint32_t part) const;

  const TableInfo* table(Type entryType) const;
  // The table's record, made when the file has no such table.
  std::uint32_t tableRecord(Type entryType);
  std::uint32_t tableEntry(Type entryType, std::u16string_view name) const;
  std::uint32_t tableEntry(Type entryType, std::uint32_t name) const;
  std::uint32_t firstTableEntry(std::uint32_t table) const;
  std::uint32_t nextTableEntry(std::uint32_t table, std::uint32_t entry) const;
  // The layer, made on demand; 0 when there is none and none may be made of such a name.
  std::uint32_t layerNamed(std::u16string_view name, bool make);
  std::uint32_t registerApplication(std::u16string_view name);
  // The line type may stand in an entity: it is in the table, or one of the two that are always
  // there.
  bool hasLinetype(std::u16string_view name) const;
  std::uint32_t namedObjects() const { return namedObjects_; }
  // The same, made when the file has none; 0 in versions that have no dictionaries.
  std::uint32_t rootDictionary();
  void ensureClass(std::string_view dxf, std::string_view cpp, std::string_view application,
                   int flags, bool entity);

  // --- header variables: the tags behind "9 $NAME"
  bool headerVariable(std::string_view name, TagList& tags, TagRange& range) const;
  std::u16string headerText(std::string_view name, std::u16string_view fallback = u"") const;
  // Sets the first value of a variable that the header has; false when it has none of the name.
  bool setHeaderText(std::string_view name, std::u16string_view text);
  // The layer that new entities lie on, and the axes of the user's coordinate system in the world.
  const std::u16string& currentLayer() const;
  const AcGeMatrix3d& userSystem() const;

  // --- selection
  // Entities of model space and layouts on a layer, with an application, of a block: in drawing
  // order, erased ones and those that have left it filtered out.
  const std::vector<std::uint32_t>& onLayer(std::uint32_t name);
  const std::vector<std::uint32_t>& withApplication(std::uint32_t name);
  const std::vector<std::uint32_t>& ofBlock(std::uint32_t name);
  std::vector<std::uint32_t> allInSpace() const;

  // --- objects
  AcDbObject* open(std::uint32_t record, AcDb::OpenMode mode, bool openErased,
                   Acad::ErrorStatus& status);
  Acad::ErrorStatus upgrade(AcDbObject& object);
  Acad::ErrorStatus close(AcDbObject& object);
  int openCount() const { return static_cast<int>(open_.size()); }
  Acad::ErrorStatus erase(std::uint32_t record, bool erasing);
  // Take a new object in; it stays open for write.
  Acad::ErrorStatus appendEntity(std::uint32_t block, AcDbObject& entity);
  Acad::ErrorStatus appendPart(std::uint32_t owner, AcDbObject& part);
  Acad::ErrorStatus addTableEntry(std::uint32_t table, AcDbObject& entry, std::u16string_view name);
  Acad::ErrorStatus addObject(std::uint32_t owner, AcDbObject& object);
  // A new record straight from tags, at the end of what `before` closes.
  std::uint32_t addRecord(TagList& tags, std::uint32_t before, std::uint32_t owner, bool space,
                          bool child);
  // Gives new tags what depends on the drawing: encoding, handle, owner, and what its version may
  // hold.
  void completeTags(TagList& tags, std::uint64_t handle, std::uint32_t owner, bool paper,
                    bool entity);
  std::uint64_t newHandle() { return usesHandles_ ? takeHandle() : 0; }
  // Replaces the text of a record that is not open by these tags.
  void rewrite(std::uint32_t record, const TagList& tags);
  void renameEntry(std::uint32_t record, std::u16string_view name);
  // A new empty block definition of the name; the caller fills it with addRecord before its end.
  BlockInfo addBlock(std::u16string_view name, const AcGePoint3d& base);
  std::uint32_t endOf(std::uint32_t block) const;
  // A name for the block of a new table, "*T1" and so on, that no block of the drawing has or had.
  std::u16string freeTableName();
  std::uint32_t objectsEnd();

  // --- undo by command
  void beginCommand(std::u16string_view name);
  void endCommand();
  // Name of the command taken back or brought back; empty when there is none.
  std::u16string undo();
  std::u16string redo();

  // Called now and then while records are added, with their number so far: long work shows its
  // progress.
  void setObserver(std::function<void(std::uint32_t)> observer) { observer_ = std::move(observer); }

  // --- session marks
  void setHighlighted(std::uint32_t record, bool on);
  const std::unordered_map<std::uint32_t, bool>& highlighted() const { return highlighted_; }
  std::uint64_t revision() const { return revision_; }

 private:
  friend class ::AcDbDatabase;
  struct UndoGroup {
    std::u16string name;
    std::vector<std::pair<std::uint32_t, Record>> before;
  };
  struct Index {
    bool built = false;
    std::vector<std::vector<std::uint32_t>> byLayer, byApplication, byBlock;
    std::vector<bool> mixedLayer, mixedApplication, mixedBlock;
  };
  struct Builder;

  platform::Result<void> build(ScannedFile file, const std::string& name,
                               std::vector<std::string>& warnings);
  void registerHandle(std::uint64_t handle, std::uint32_t record);
  // Gives new handles to these records.
  void repairHandles(const std::vector<std::uint32_t>& broken);
  void completeStructure();
  AcDbObject* makeView(std::uint32_t record, ViewState* state) const;
  void keepForUndo(std::uint32_t record);
  void swapGroup(UndoGroup& group);
  void commit(std::uint32_t record, const TagList& tags);
  void noteInIndex(std::uint32_t record, const Record& before);
  void buildIndex();
  const std::vector<std::uint32_t>& query(std::vector<std::vector<std::uint32_t>>& lists,
                                          std::vector<bool>& mixed, std::uint32_t name);
  void addToIndex(std::vector<std::vector<std::uint32_t>>& lists, std::vector<bool>& mixed,
                  std::uint32_t name, std::uint32_t record);
  std::uint32_t link(const Record& fresh, std::uint32_t before);
  void dropReferences(std::uint32_t record);
  void dropInsertCache(std::uint32_t blockName);
  void updateHeader();
  void setHeader(TagList& tags, std::string_view name, int code, double real, std::uint64_t handle);
  template <class Sink>
  void writeTo(Sink&& sink);
  std::uint64_t ownerHandle(std::uint32_t owner) const;
  void settleReferences(TagList& tags);
  void dropErasedMembers();
  std::string_view store(const TagList& tags);
  std::uint32_t addMark(TagList& tags, std::uint32_t before, std::uint32_t owner);
  std::uint32_t addMark(std::string_view type, std::uint32_t before, std::uint32_t owner);
  std::uint32_t placeOfSection(std::string_view name) const;
  std::uint32_t findSectionEnd(std::u16string_view name) const;
  std::uint32_t addSection(std::string_view name);

  AcDbDatabase* database_;
  std::uint32_t number_;
  Format format_;
  std::vector<Block> sources_;
  Arena texts_;
  std::string_view preamble_, trailer_;
  std::vector<Record> records_;
  std::uint32_t first_ = 0, last_ = 0;
  NameTable names_;
  NameSets sets_;

  std::vector<std::uint32_t> denseHandles_;
  std::unordered_map<std::uint64_t, std::uint32_t> sparseHandles_;
  std::uint64_t nextHandle_ = 1;
  bool usesHandles_ = true;

  std::vector<BlockInfo> blocks_;
  std::unordered_map<std::uint32_t, std::uint32_t> blockOfId_;    // record -> index
  std::unordered_map<std::uint32_t, std::uint32_t> blockOfName_;  // name -> record
  std::uint32_t modelSpace_ = 0, paperSpace_ = 0;
  std::unordered_map<int, TableInfo> tables_;
  std::unordered_map<std::u16string, std::pair<std::uint32_t, std::uint32_t>> sections_;
  std::uint32_t namedObjects_ = 0;

  // Structure that the file lacks: written once the drawing is saved with changes, so that a file
  // in which somebody only looked is saved as it came.
  std::vector<std::uint32_t> marks_;
  bool erasedMembers_ = false;  // an entity was erased that groups or drawing orders may list
  std::vector<AcDbObject*> open_;
  Index index_;
  std::vector<std::uint32_t> empty_;
  bool changed_ = false;
  std::uint64_t revision_ = 0;
  std::unordered_map<std::uint32_t, AcDbExtents>
      drawn_;  // by layer: first points of what was added
  mutable std::unordered_map<std::uint32_t, std::pair<const char*, std::unique_ptr<TagList>>>
      definitions_;
  std::u16string lastLayerName_;  // the layer asked for last, and its record
  std::uint32_t lastLayer_ = 0;
  std::uint32_t lastTable_ = 0;  // number of the latest table's block, 0 not counted yet
  std::uint32_t lastOwner_ = 0, lastEnd_ = 0;  // where the latest part went, for the next one
  std::function<void(std::uint32_t)> observer_;

  // What the header says that is asked for with every new entity.
  struct HeaderValues {
    bool known = false;
    std::u16string layer;
    AcGeMatrix3d user;
  };
  mutable HeaderValues header_;
  void readHeaderValues() const;

  bool inCommand_ = false;
  UndoGroup running_;
  std::vector<UndoGroup> undo_, redo_;
  std::unordered_map<std::uint32_t, bool> highlighted_;
};

// A symbol name that files can hold: not empty, at most 255 characters, none of the reserved ones.
bool usableName(std::u16string_view name);

// The drawing of a number, or null.
CAD_API Drawing* drawingNumbered(std::uint32_t number);

// A list of tags for the span of a scope, from a pool: opening objects by the million must not
// allocate.
std::unique_ptr<TagList> borrowTags();
void returnTags(std::unique_ptr<TagList> tags);

}  // namespace cad
