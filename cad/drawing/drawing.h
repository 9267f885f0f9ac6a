// The database behind an AcDbDatabase: one drawing, how its objects are opened, changed, undone and
// written.
//
// A drawing is the list of its file's records in file order. The text of a record is its state:
// reading a file only indexes it, opening an object parses its text into tags, closing a changed
// object writes a new text into the drawing's own memory, and saving concatenates texts. So a
// record that nobody changed is saved byte for byte. What changes together has a room of its own:
//
//   records    the list, the texts, names, handles        knows no other room
//   index      entities by layer, application, block      reads records
//   history    undo                                       records, index
//   writer     every change and every new record          records, index, history
//   structure  sections, tables, blocks; makes them       records, history, writer
//   header     header variables                           records, structure, writer
//
// The drawing itself keeps the open objects and the rules for taking in, erasing and renaming.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "cad/api/database.h"
#include "cad/drawing/header.h"
#include "cad/drawing/history.h"
#include "cad/drawing/index.h"
#include "cad/drawing/records.h"
#include "cad/drawing/structure.h"
#include "cad/drawing/writer.h"
#include "platform/result.h"

namespace cad {

// What an open object, or one not yet in a drawing, keeps beside its class.
struct ViewState {
  Drawing* drawing = nullptr;  // null for an object that is not in a drawing yet
  std::uint32_t record = 0;
  int readers = 0;
  bool writing = false;
  bool modified = false;
  BorrowedTags tags;                // null until somebody looks
  const TagList* shared = nullptr;  // the drawing's own copy, for readers of what is read often
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
  // A new drawing: the tables, blocks, layouts and dictionaries that every drawing has.
  void makeDefault();
  // Writes the drawing in the version it came in; safe against crash and full disk (see
  // platform::SaveFile). Objects must be closed.
  platform::Result<void> save(const std::string& path, const SaveOptions& options = {});
  // The whole file as one text, for tests and comparisons.
  std::string toBytes();
  bool isChanged() const { return history_.isChanged(); }
  // Turns the view with which programs open the drawing to what has been drawn since it was made or
  // read.
  void fitView();

  // --- the rooms
  Records& records() { return records_; }
  const Records& records() const { return records_; }
  Index& index() { return index_; }
  const Index& index() const { return index_; }
  Writer& writer() { return writer_; }
  const Writer& writer() const { return writer_; }
  Structure& structure() { return structure_; }
  const Structure& structure() const { return structure_; }
  Header& header() { return header_; }
  const Header& header() const { return header_; }
  // Short ways to what every reader needs.
  const Format& format() const { return records_.format(); }
  const Record& record(std::uint32_t i) const { return records_[i]; }
  NameTable& names() { return records_.names(); }
  const NameTable& names() const { return records_.names(); }
  std::uint32_t byHandle(std::uint64_t handle) const { return records_.byHandle(handle); }
  void parse(std::uint32_t record, TagList& tags) const { records_.parse(record, tags); }

  // --- identity
  AcDbDatabase* database() const { return database_; }
  std::uint32_t number() const { return number_; }
  AcDbObjectId idOf(std::uint32_t record) const {
    return record ? AcDbObjectId(number_, record) : AcDbObjectId();
  }
  bool has(AcDbObjectId id) const {
    return id.databaseIndex() == number_ && id.index() != 0 && id.index() < records_.count();
  }

  // --- objects
  AcDbObject* open(std::uint32_t record, AcDb::OpenMode mode, bool openErased,
                   Acad::ErrorStatus& status);
  Acad::ErrorStatus upgrade(AcDbObject& object);
  Acad::ErrorStatus close(AcDbObject& object);
  int openCount() const { return static_cast<int>(open_.size()); }
  // Closes what a command left open, keeping its changes; how many there were. Pointers to them
  // are dead afterwards.
  int closeAll();
  // Takes a new object in, which stays open for write: an entity into a block, a part into its
  // entity, an entry into its table, any other object into its dictionary. eInvalidInput for a
  // layer or name that cannot exist, eKeyNotFound for what needs something that is not there,
  // eInvalidDwgVersion for a kind that this version of drawing cannot hold; nothing of it stays
  // then.
  Acad::ErrorStatus append(std::uint32_t owner, AcDbObject& object);
  // Erases with all that hangs on it, or brings back. eCannotBeErasedByCaller for what the drawing
  // cannot be without or what is in use: spaces, the current layer and layer 0, named things.
  Acad::ErrorStatus erase(std::uint32_t record, bool erasing);
  // A table entry or block gets another name, and so does all that names it.
  Acad::ErrorStatus rename(AcDbObject& entry, std::u16string_view name);

  // --- undo by command
  void beginCommand(std::u16string_view name) { history_.begin(name); }
  void endCommand() { history_.end(); }
  // Takes back what the running command has changed and ends it. Nothing may be open.
  void abandonCommand() { history_.abandon(); }
  // Name of the command taken back or brought back; empty when there is none.
  std::u16string undo() { return open_.empty() ? history_.undo() : std::u16string(); }
  std::u16string redo() { return open_.empty() ? history_.redo() : std::u16string(); }
  History& history() { return history_; }

  // --- marks of the session, no part of the drawing
  void setHighlighted(std::uint32_t record, bool on);
  const std::unordered_map<std::uint32_t, bool>& highlighted() const { return highlighted_; }
  std::uint64_t revision() const { return history_.revision(); }

 private:
  AcDbObject* makeView(std::uint32_t record, ViewState* state) const;
  void adopt(AcDbObject& object, const Place& place, const Record* like);
  Stamps& freshStamps();
  const Record* knownLike(const TagList& tags, const Place& place);
  std::uint32_t addNew(TagList& tags, const Place& place, const Record* like);
  Acad::ErrorStatus placeOf(std::uint32_t owner, const TagList& tags, Place& place);
  std::uint32_t endOfParts(std::uint32_t owner, const Place& place);
  std::uint32_t addSequenceEnd(std::uint32_t owner, std::uint32_t before, const Place& like);
  Acad::ErrorStatus checkNames(const TagList& tags, Place& place);
  void settleReferences(TagList& tags, const Place& place);
  Acad::ErrorStatus mayErase(std::uint32_t record) const;
  void dropInsertCache(std::uint32_t blockName);
  void eraseDependents(std::uint32_t record);
  void eraseDefinition(std::uint32_t definition, std::uint32_t user);
  void updateHeader();
  bool prune(std::uint32_t record, TagList& kept) const;
  template <class Sink>
  void writeTo(Sink&& sink) const;

  AcDbDatabase* database_;
  std::uint32_t number_;
  Records records_;
  Index index_{records_};
  History history_{records_, index_};
  Writer writer_{records_, index_, history_};
  Structure structure_{records_, history_, writer_};
  Header header_{records_, structure_, writer_};

  std::vector<AcDbObject*> open_;
  bool renumbered_ = false;     // opening gave objects handles that the file does not have
  bool erasedMembers_ = false;  // an entity was erased that groups or drawing orders may list
  std::uint32_t lastOwner_ = 0, lastEnd_ = 0;  // where the latest part went, for the next one
  Stamps stamps_;  // of objects as they come, while no definition has changed since
  std::uint64_t stampsOf_ = 0;
  std::unordered_map<std::uint32_t, bool> highlighted_;
};

// The drawing of a number, or null.
CAD_API Drawing* drawingNumbered(std::uint32_t number);

}  // namespace cad
