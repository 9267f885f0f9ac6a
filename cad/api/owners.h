// Owners for what the host interface hands out: an opened object that closes itself, a result chain
// and a selection set that release themselves. Written on the interface's names alone, so that they
// serve code that runs in any host; nothing is closed or given back by hand anywhere.
#pragma once

#include <string_view>
#include <utility>

#include "cad/api/codes.h"
#include "cad/api/db_object.h"
#include "cad/api/editor.h"
#include "cad/api/resbuf.h"

namespace cad {

// An opened object that closes itself.
//   if (Opened<AcDbBlockReference> block{id}) use(block->position());
template <class T>
class Opened {
 public:
  Opened() = default;
  explicit Opened(AcDbObjectId id, AcDb::OpenMode mode = AcDb::kForRead) {
    acdbOpenObject(object_, id, mode);
  }
  explicit Opened(T* object) : object_(object) {}
  Opened(Opened&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  Opened& operator=(Opened&& other) noexcept {
    if (this != &other) {
      close();
      object_ = std::exchange(other.object_, nullptr);
    }
    return *this;
  }
  ~Opened() { close(); }
  void close() {
    if (object_) std::exchange(object_, nullptr)->close();
  }
  T* get() const { return object_; }
  T* operator->() const { return object_; }
  T& operator*() const { return *object_; }
  explicit operator bool() const { return object_ != nullptr; }
  // The object as a more special class when it is one, else null; this stays the owner.
  template <class U>
  U* as() const {
    return object_ && object_->isKindOf(U::desc())
               ? static_cast<U*>(static_cast<AcRxObject*>(object_))
               : nullptr;
  }

 private:
  T* object_ = nullptr;
};

// A new object until a drawing has it: deleted when none takes it, closed at the end of the scope
// when one has.
//   Fresh<AcDbPoint> point(position);
//   if (point.taken(space->appendAcDbEntity(point.get()))) ...
template <class T>
class Fresh {
 public:
  template <class... Args>
  explicit Fresh(Args&&... args) : object_(new T(std::forward<Args>(args)...)) {}
  Fresh(const Fresh&) = delete;
  Fresh& operator=(const Fresh&) = delete;
  ~Fresh() {
    if (taken_) {
      object_->close();
    } else {
      delete object_;
    }
  }
  T* get() const { return object_; }
  T* operator->() const { return object_; }
  // Notes what a drawing said to the object; true when it has it now.
  bool taken(Acad::ErrorStatus answer) { return taken_ = answer == Acad::eOk; }
  // The object, open in the drawing that has taken it; empty when none has.
  Opened<T> release() {
    if (!taken_) return Opened<T>();
    taken_ = false;
    return Opened<T>(std::exchange(object_, nullptr));
  }

 private:
  T* object_;
  bool taken_ = false;
};

// A result chain that releases itself, and its reading by position.
class Chain {
 public:
  Chain() = default;
  explicit Chain(resbuf* chain) : chain_(chain) {}
  Chain(Chain&& other) noexcept : chain_(std::exchange(other.chain_, nullptr)) {}
  Chain& operator=(Chain&& other) noexcept {
    if (this != &other) {
      acutRelRb(chain_);
      chain_ = std::exchange(other.chain_, nullptr);
    }
    return *this;
  }
  ~Chain() { acutRelRb(chain_); }
  explicit operator bool() const { return chain_ != nullptr; }
  resbuf* get() const { return chain_; }
  // Gives the chain to the caller.
  resbuf* release() { return std::exchange(chain_, nullptr); }
  // The item at a position behind the application's header, counted from 1, or null.
  resbuf* item(int position) const {
    resbuf* node = chain_;
    while (node && position-- > 0) node = node->rbnext;
    return node;
  }
  // Text of the item at a position; empty when there is none or it holds no text.
  std::u16string_view text(int position) const {
    const resbuf* node = item(position);
    return node && acutKindOf(node->restype) == RbKind::text && node->resval.rstring
               ? std::u16string_view(node->resval.rstring)
               : std::u16string_view();
  }

 private:
  resbuf* chain_ = nullptr;
};

// A selection set that frees itself.
//   SelectionSet set(u"_X", filter);
//   for (AcDbObjectId id : set) ...
class SelectionSet {
 public:
  using Select = int (*)(const char16_t*, const void*, const void*, const resbuf*, ads_name&);

  SelectionSet() = default;
  // Releases the filter. `mode` null lets the user pick.
  SelectionSet(const char16_t* mode, resbuf* filter, Select select = acedSSGet) {
    const Chain owner(filter);
    ok_ = select(mode, nullptr, nullptr, filter, set_) == RTNORM;
    std::int32_t length = 0;
    if (ok_ && acedSSLength(set_, &length) == RTNORM) size_ = length;
  }
  SelectionSet(const SelectionSet&) = delete;
  SelectionSet& operator=(const SelectionSet&) = delete;
  ~SelectionSet() {
    if (ok_) acedSSFree(set_);
  }
  // Whether the selection answered RTNORM.
  bool ok() const { return ok_; }
  int size() const { return size_; }
  AcDbObjectId operator[](int index) const {
    ads_name name;
    AcDbObjectId id;
    if (acedSSName(set_, index, name) == RTNORM) acdbGetObjectId(id, name);
    return id;
  }

  class Iterator {
   public:
    Iterator(const SelectionSet& set, int at) : set_(set), at_(at) {}
    AcDbObjectId operator*() const { return set_[at_]; }
    Iterator& operator++() {
      ++at_;
      return *this;
    }
    bool operator!=(const Iterator& other) const { return at_ != other.at_; }

   private:
    const SelectionSet& set_;
    int at_;
  };
  Iterator begin() const { return {*this, 0}; }
  Iterator end() const { return {*this, size_}; }

 private:
  ads_name set_;
  int size_ = 0;
  bool ok_ = false;
};

}  // namespace cad
