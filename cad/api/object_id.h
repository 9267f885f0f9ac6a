// The id of an object of an open drawing.
#pragma once

#include <cstdint>
#include <functional>

#include "cad/api/export.h"

class AcDbDatabase;

// A small value with a null state: which open drawing, and which object of it. Ids stay valid until
// the drawing is closed, also across erasing and undo, and are never used twice.
class AcDbObjectId {
 public:
  constexpr AcDbObjectId() = default;
  constexpr AcDbObjectId(std::uint32_t database, std::uint32_t index)
      : database_(database), index_(index) {}

  bool isNull() const { return database_ == 0; }
  // True when the id names an object of a drawing that is still open; the object may be erased.
  CAD_API bool isValid() const;
  void setNull() { *this = AcDbObjectId(); }
  // The drawing that holds the object, or null.
  CAD_API AcDbDatabase* database() const;

  std::uint32_t databaseIndex() const { return database_; }
  std::uint32_t index() const { return index_; }

  friend bool operator==(AcDbObjectId a, AcDbObjectId b) {
    return a.database_ == b.database_ && a.index_ == b.index_;
  }
  friend bool operator<(AcDbObjectId a, AcDbObjectId b) {
    return a.database_ != b.database_ ? a.database_ < b.database_ : a.index_ < b.index_;
  }

 private:
  std::uint32_t database_ = 0;  // 0 = null; else the number of the open drawing
  std::uint32_t index_ = 0;
};

template <>
struct std::hash<AcDbObjectId> {
  std::size_t operator()(AcDbObjectId id) const noexcept {
    return (static_cast<std::size_t>(id.databaseIndex()) << 32) ^ id.index();
  }
};
