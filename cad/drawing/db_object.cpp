#include "cad/api/db_object.h"

#include <cmath>

#include "cad/drawing/chains.h"
#include "cad/drawing/drawing.h"
#include "platform/text.h"

ACRX_DEFINE(AcDbObject, AcRxObject)

using cad::TagList;
using cad::TagRange;

bool AcDbObjectId::isValid() const {
  const cad::Drawing* d = cad::drawingNumbered(database_);
  return d && d->has(*this);
}

AcDbDatabase* AcDbObjectId::database() const {
  const cad::Drawing* d = cad::drawingNumbered(database_);
  return d ? d->database() : nullptr;
}

Acad::ErrorStatus acdbOpenAnyObject(AcDbObject*& object, AcDbObjectId id, AcDb::OpenMode mode,
                                    bool openErased) {
  object = nullptr;
  if (id.isNull()) return Acad::eNullObjectId;
  cad::Drawing* d = cad::drawingNumbered(id.databaseIndex());
  if (!d || !d->has(id)) return Acad::eNotInDatabase;
  Acad::ErrorStatus status = Acad::eOk;
  object = d->open(id.index(), mode, openErased, status);
  return status;
}

AcDbObject::AcDbObject() : view_(new cad::ViewState) {
  view_->writing = true;
  view_->tags = cad::borrowTags();
}

AcDbObject::AcDbObject(cad::ViewState* state) : view_(state) {}

AcDbObject::~AcDbObject() { delete view_; }

Acad::ErrorStatus AcDbObject::close() {
  if (!view_->drawing) {  // never given to a drawing: nothing to keep
    delete this;
    return Acad::eNotInDatabase;
  }
  return view_->drawing->close(*this);
}

Acad::ErrorStatus AcDbObject::upgradeOpen() {
  return view_->drawing ? view_->drawing->upgrade(*this) : Acad::eOk;
}

Acad::ErrorStatus AcDbObject::erase(bool erasing) {
  if (!view_->drawing) return Acad::eNotInDatabase;
  if (!view_->writing) return Acad::eNotOpenForWrite;
  return view_->drawing->erase(view_->record, erasing);
}

AcDbObjectId AcDbObject::objectId() const {
  return view_->drawing ? view_->drawing->idOf(view_->record) : AcDbObjectId();
}

AcDbObjectId AcDbObject::ownerId() const {
  return view_->drawing ? view_->drawing->idOf(view_->drawing->record(view_->record).owner)
                        : AcDbObjectId();
}

AcDbDatabase* AcDbObject::database() const {
  return view_->drawing ? view_->drawing->database() : nullptr;
}

std::uint64_t AcDbObject::handle() const {
  return view_->drawing ? view_->drawing->record(view_->record).handle : 0;
}

bool AcDbObject::isWriteEnabled() const { return view_->writing; }
bool AcDbObject::isModified() const { return view_->modified; }
bool AcDbObject::isErased() const {
  return view_->drawing && view_->drawing->record(view_->record).is(cad::Record::erased);
}

const TagList& AcDbObject::tags() const {
  if (view_->tags) return *view_->tags;
  if (view_->shared) return *view_->shared;
  view_->shared = view_->drawing->records().definitionTags(view_->record);
  if (view_->shared) return *view_->shared;
  view_->tags = cad::borrowTags();
  view_->drawing->parse(view_->record, *view_->tags);
  return *view_->tags;
}

TagList& AcDbObject::tagsForWrite() {
  view_->modified = true;
  if (!view_->tags) {
    view_->shared = nullptr;
    view_->tags = cad::borrowTags();
    view_->drawing->parse(view_->record, *view_->tags);
  }
  return *view_->tags;
}

// --- extended data -------------------------------------------------------------------------------

namespace {

// Files up to R2004 hold 255 bytes, whatever a character takes in their code page.
bool tooLong(const cad::Drawing* drawing, std::u16string_view text) {
  if (text.size() > 255) return true;
  if (!drawing || drawing->format().version >= 1021) return false;
  std::string encoded;
  drawing->format().encode(encoded, text);
  return encoded.size() > 255;
}

// Up to 127 bytes as pairs of hex digits.
bool hexBytes(std::u16string_view text) {
  return text.size() <= 254 && text.size() % 2 == 0 &&
         text.find_first_not_of(u"0123456789ABCDEFabcdef") == text.npos;
}

Acad::ErrorStatus checkXData(const cad::Drawing* drawing, const resbuf* chain) {
  if (!chain || chain->restype != 1001) return Acad::eInvalidXdata;
  int depth = 0;
  for (const resbuf* n = chain; n; n = n->rbnext) {
    const int c = n->restype;
    if (c < 1000 || c > 1071) return Acad::eInvalidXdata;
    if (c == 1001) {
      if (depth != 0) return Acad::eInvalidXdata;
      if (drawing && !drawing->structure().tableEntry(cad::Type::appid, n->resval.rstring)) {
        return Acad::eRegappIdNotFound;
      }
      continue;
    }
    if (c == 1002) {
      const std::u16string_view brace = n->resval.rstring;
      depth += brace == u"{" ? 1 : brace == u"}" ? -1 : 100000;
      if (depth < 0 || depth > 9999) return Acad::eInvalidXdata;
    }
    if (acutKindOf(c) == RbKind::text && tooLong(drawing, n->resval.rstring)) {
      return Acad::eXdataSizeExceeded;
    }
    if (c == 1004 && !hexBytes(n->resval.rstring)) return Acad::eInvalidXdata;
    if (acutKindOf(c) == RbKind::real && !std::isfinite(n->resval.rreal))
      return Acad::eInvalidXdata;
    for (int k = 0; k < 3 && acutKindOf(c) == RbKind::point; ++k) {
      if (!std::isfinite(n->resval.rpoint[k])) return Acad::eInvalidXdata;
    }
  }
  return depth == 0 ? Acad::eOk : Acad::eInvalidXdata;
}

// Bytes that extended data take, as the format counts them.
int xdataSize(const TagList& tags, TagRange range) {
  int size = 0;
  for (int i = range.begin; i < range.end; ++i) {
    switch (cad::kindOf(tags[i].code)) {
      case cad::ValueKind::real:
        size += 10;
        break;
      case cad::ValueKind::int16:
        size += 4;
        break;
      case cad::ValueKind::int32:
        size += 6;
        break;
      default:
        size += 3 + static_cast<int>(tags[i].size);
        break;
    }
  }
  return size;
}

// The data of one application, from its name to `end`, in place of what it has.
Acad::ErrorStatus setOneXData(TagList& t, const resbuf* chain, const resbuf* end) {
  const TagRange old = t.xdata(chain->resval.rstring);
  int at = old.empty() ? t.size() : old.begin;
  if (chain->rbnext == end) {
    t.erase(old.begin, old.end);
    return Acad::eOk;
  }
  const int first = at, oldSize = xdataSize(t, old);
  at = cad::insertChain(t, at, chain, end);
  if (xdataSize(t, {t.xdataBegin(), t.size()}) - oldSize > 16383) {
    t.erase(first, at);
    return Acad::eXdataSizeExceeded;
  }
  if (!old.empty()) t.erase(at, at + (old.end - old.begin));
  return Acad::eOk;
}

}  // namespace

bool AcDbObject::hasXData(std::u16string_view application) const {
  return !tags().xdata(application).empty();
}

resbuf* AcDbObject::xData(const char16_t* application) const {
  if (view_->drawing && !view_->modified) {
    // The index knows without looking into the text.
    const cad::Drawing& d = *view_->drawing;
    const std::uint32_t apps = d.record(view_->record).apps;
    if (apps == 0) return nullptr;
    if (application && !d.records().sets().contains(apps, d.names().find(application))) {
      return nullptr;
    }
  }
  const TagList& t = tags();
  if (!application) return cad::chainOf(t, {t.xdataBegin(), t.size()});
  return cad::chainOf(t, t.xdata(application));
}

Acad::ErrorStatus AcDbObject::setXData(const resbuf* chain) {
  if (!view_->writing) return Acad::eNotOpenForWrite;
  if (const Acad::ErrorStatus s = checkXData(view_->drawing, chain); s != Acad::eOk) return s;
  while (chain) {
    const resbuf* next = chain->rbnext;
    while (next && next->restype != 1001) next = next->rbnext;
    if (const Acad::ErrorStatus s = setOneXData(tagsForWrite(), chain, next); s != Acad::eOk) {
      return s;
    }
    chain = next;
  }
  return Acad::eOk;
}
