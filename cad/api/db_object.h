// Objects of a drawing and the discipline in which they are used: open, act, close.
//
// An opened object is a view on the database's record of it. Opening for read (kForRead) may be
// repeated; opening for write needs that nobody has it open; upgradeOpen turns the one reader into
// the writer. Every open is matched by one close, after which the pointer is dead. A new object is
// made with new, given to the database by the append operation of its container, and then closed
// like any other; if it is never given to a database its maker deletes it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "cad/api/ge.h"
#include "cad/api/object_id.h"
#include "cad/api/resbuf.h"
#include "cad/api/rxobject.h"
#include "cad/api/status.h"

namespace AcDb {
enum OpenMode { kForRead = 0, kForWrite = 1 };
}  // namespace AcDb

class AcDbDatabase;
namespace cad {
class Drawing;
class TagList;
struct Inside;
struct ViewState;
}  // namespace cad

class CAD_API AcDbObject : public AcRxObject {
  ACRX_DECLARE(AcDbObject)
 public:
  ~AcDbObject() override;
  AcDbObject(const AcDbObject&) = delete;
  AcDbObject& operator=(const AcDbObject&) = delete;

  // Ends this use. eOk, or why the change could not be kept. The pointer is dead afterwards.
  Acad::ErrorStatus close();
  // From the only reader to the writer; eWasOpenForRead when somebody else reads.
  Acad::ErrorStatus upgradeOpen();
  // Erases, or with false brings back. Needs write. Parts (vertices, attributes) go with their
  // owner.
  Acad::ErrorStatus erase(bool erasing = true);

  AcDbObjectId objectId() const;
  AcDbObjectId ownerId() const;
  AcDbDatabase* database() const;
  std::uint64_t handle() const;  // 0 when the object has none
  bool isWriteEnabled() const;
  bool isReadEnabled() const { return true; }
  bool isErased() const;
  bool isModified() const;

  // The extended data of one application: a chain that begins with the 1001 node, or null when
  // there is none. With a null application, all of it. The caller owns the chain.
  resbuf* xData(const char16_t* application = nullptr) const;
  // Replaces the data of the chain's applications, each from its 1001 node on; one of only that
  // node is removed. The chain stays the caller's. eRegappIdNotFound for an application that is not
  // registered, eInvalidXdata for a chain that is no extended data, eXdataSizeExceeded beyond 16383
  // bytes on one object or a text beyond 255 characters.
  Acad::ErrorStatus setXData(const resbuf* chain);
  // Whether xData(application) would give something, without building the chain.
  bool hasXData(std::u16string_view application) const;

 protected:
  AcDbObject();
  explicit AcDbObject(cad::ViewState* state);
  // Called by close before the object's text is written: the place where a view that keeps fields
  // of its own puts them into the tags.
  virtual void beforeCommit() {}
  // Called when a new object has become a drawing's: the place for what needs its handle and owner.
  virtual void afterAppend() {}
  const cad::TagList& tags() const;
  cad::TagList& tagsForWrite();
  cad::ViewState* view_;
  friend class cad::Drawing;
  friend struct cad::Inside;
};

// Opens an object; the pointer stays null on failure (eNullObjectId, eWasErased, eWasOpenForWrite,
// eWasOpenForRead, eNotThatKindOfClass).
CAD_API Acad::ErrorStatus acdbOpenAnyObject(AcDbObject*& object, AcDbObjectId id,
                                            AcDb::OpenMode mode, bool openErased);

template <class T>
Acad::ErrorStatus acdbOpenObject(T*& object, AcDbObjectId id, AcDb::OpenMode mode = AcDb::kForRead,
                                 bool openErased = false) {
  object = nullptr;
  AcDbObject* any = nullptr;
  const Acad::ErrorStatus status = acdbOpenAnyObject(any, id, mode, openErased);
  if (status != Acad::eOk) return status;
  if (!any->isKindOf(T::desc())) {
    any->close();
    return Acad::eNotThatKindOfClass;
  }
  object = static_cast<T*>(any);
  return Acad::eOk;
}

// The same with the class given as a value.
inline Acad::ErrorStatus acdbOpenAcDbObject(AcDbObject*& object, AcDbObjectId id,
                                            AcDb::OpenMode mode, const AcRxClass* desc,
                                            bool openErased = false) {
  object = nullptr;
  AcDbObject* any = nullptr;
  const Acad::ErrorStatus status = acdbOpenAnyObject(any, id, mode, openErased);
  if (status != Acad::eOk) return status;
  if (desc && !any->isKindOf(desc)) {
    any->close();
    return Acad::eNotThatKindOfClass;
  }
  object = any;
  return Acad::eOk;
}
