#include "cad/drawing/drawing.h"

#include <algorithm>
#include <cstring>

#include "cad/api/table.h"
#include "cad/drawing/empty.h"
#include "cad/drawing/loader.h"
#include "platform/check.h"
#include "platform/files.h"

namespace cad {
namespace {

std::vector<Drawing*>& registry() {
  static std::vector<Drawing*> drawings(1, nullptr);
  return drawings;
}

}  // namespace

Drawing* drawingNumbered(std::uint32_t number) {
  return number < registry().size() ? registry()[number] : nullptr;
}

Drawing::Drawing(AcDbDatabase* database) : database_(database) {
  number_ = static_cast<std::uint32_t>(registry().size());
  registry().push_back(this);
}

Drawing::~Drawing() {
  registry()[number_] = nullptr;
  for (AcDbObject* object : open_) delete object;
}

// --- files ---------------------------------------------------------------------------------------

platform::Result<void> Drawing::load(const std::string& path, std::vector<std::string>& warnings) {
  // In memory of its own and never mapped: another program may change the file meanwhile.
  auto file = platform::readOrdinaryFile(path);
  if (!file) return platform::Error{file.error()};
  return loadBytes(std::move(file->memory), file->size, path, warnings);
}

platform::Result<void> Drawing::loadBytes(Block bytes, std::size_t size, const std::string& name,
                                          std::vector<std::string>& warnings) {
  const std::string_view text(bytes.data(), size);
  records_.addSource(std::move(bytes));
  auto scanned = scanDxf(text, name, {records_.names(), records_.types(), records_.sets()});
  if (!scanned) return platform::Error{scanned.error()};
  Loader loader(records_, structure_, writer_, name, warnings);
  auto loaded = loader.run(std::move(*scanned), header_);
  renumbered_ = loader.renumbered();
  history_.setChanged(false);
  return loaded;
}

void Drawing::makeDefault() {
  const std::string_view empty = emptyDrawing();
  Block block(empty.size());
  std::memcpy(block.data(), empty.data(), empty.size());
  std::vector<std::string> warnings;
  const auto loaded = loadBytes(std::move(block), empty.size(), "empty drawing", warnings);
  VESSORA_CHECK(loaded && warnings.empty(), "the empty drawing is damaged");
  history_.setChanged(true);
}

// --- opening and closing -------------------------------------------------------------------------

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
    case Type::block:  // what names a block in old files
      return new AcDbBlockTableRecord(state);
    case Type::dictionary:
      return new AcDbDictionary(state);
    case Type::xrecord:
      return new AcDbXrecord(state);
    case Type::acadTable:
      return new AcDbTable(state);
    case Type::tableStyle:
      return new AcDbTableStyle(state);
    case Type::table:
      switch (structure_.entryTypeOf(record)) {
        case Type::blockRecord:
          return new AcDbBlockTable(state);
        case Type::layer:
          return new AcDbLayerTable(state);
        case Type::style:
          return new AcDbTextStyleTable(state);
        case Type::ltype:
          return new AcDbLinetypeTable(state);
        case Type::appid:
          return new AcDbRegAppTable(state);
        default:
          return new AcDbSymbolTable(state);
      }
    default:
      break;
  }
  if (r.is(Record::space) || r.is(Record::child) || structure_.block(r.owner)) {
    return new AcDbEntity(state);
  }
  if (r.owner && records_[r.owner].type == Type::table) return new AcDbSymbolTableRecord(state);
  return new AcDbObject(state);
}

AcDbObject* Drawing::open(std::uint32_t record, AcDb::OpenMode mode, bool openErased,
                          Acad::ErrorStatus& status) {
  const Record& r = records_[record];
  if (r.is(Record::erased) && !openErased) {
    status = Acad::eWasErased;
    return nullptr;
  }
  status = Acad::eOk;
  if (r.is(Record::open)) {
    const auto it = std::find_if(open_.rbegin(), open_.rend(),
                                 [&](const AcDbObject* o) { return o->view_->record == record; });
    VESSORA_CHECK(it != open_.rend(), "an open object is not in the list of open objects");
    ViewState& view = *(*it)->view_;
    if (view.writing || mode == AcDb::kForWrite) {
      status = view.writing ? Acad::eWasOpenForWrite : Acad::eWasOpenForRead;
      return nullptr;
    }
    ++view.readers;
    return *it;
  }
  auto* state = new ViewState;
  state->drawing = this;
  state->record = record;
  state->writing = mode == AcDb::kForWrite;
  state->readers = state->writing ? 0 : 1;
  AcDbObject* object = makeView(record, state);
  records_.edit(record).set(Record::open);
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
  const auto it = std::find(open_.rbegin(), open_.rend(), &object);
  VESSORA_CHECK(it != open_.rend(), "an object is closed that was not open");
  if (v.writing && v.modified) {
    object.beforeCommit();
    if (v.tags) writer_.rewrite(v.record, *v.tags);
  }
  records_.edit(v.record).set(Record::open, false);
  const auto now = std::find(open_.rbegin(), open_.rend(), &object);  // committing opens others
  *now = open_.back();
  open_.pop_back();
  delete &object;
  return Acad::eOk;
}

int Drawing::closeAll() {
  const int count = openCount();
  while (!open_.empty()) {
    open_.back()->view_->readers = std::min(1, open_.back()->view_->readers);
    close(*open_.back());
  }
  return count;
}

void Drawing::setHighlighted(std::uint32_t record, bool on) {
  if (on) {
    highlighted_[record] = true;
  } else {
    highlighted_.erase(record);
  }
  history_.touch();
}

}  // namespace cad
