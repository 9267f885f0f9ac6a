// The one door through which records are added and changed: keeps what undo needs, stores the new
// text, and tells the selection lists.
#pragma once

#include <cstdint>
#include <functional>
#include <unordered_map>

#include "cad/api/ge.h"
#include "cad/drawing/history.h"
#include "cad/drawing/index.h"
#include "cad/drawing/records.h"

namespace cad {

// Where a new record goes: right before `before`, as a member of `owner`.
struct Place {
  std::uint32_t before = 0, owner = 0;
  bool space = false;     // in model space or a layout
  bool child = false;     // a vertex, an attribute or the mark behind them
  bool paper = false;     // in a layout
  bool entity = false;    // and no entry of a table or other object
  bool newLayer = false;  // it names a layer that is still to be made
};

class CAD_API Writer {
 public:
  Writer(Records& records, Index& index, History& history)
      : records_(records), index_(index), history_(history) {}

  // Replaces the text of a record. Nothing happens when it has this text already. Views that are
  // open on the record do not notice.
  void rewrite(std::uint32_t record, const TagList& tags) { rewrite(record, tags, nullptr); }
  // A new record from tags that are complete already.
  std::uint32_t add(const TagList& tags, const Place& place) {
    return add(tags, place, 0, nullptr);
  }
  // The same, after giving them a handle and what else depends on the drawing (see complete).
  std::uint32_t addComplete(TagList& tags, const Place& place);
  // The same for an entity of the make of `like`, for which completing adds handle and owner behind
  // the type and changes nothing else.
  std::uint32_t addLike(TagList& tags, const Place& place, const Record& like);
  // Gives new tags what depends on the drawing: encoding, handle, owner, and only what its version
  // may hold.
  void complete(TagList& tags, std::uint64_t handle, const Place& place) const;
  void setErased(std::uint32_t record, bool erased);

  // Called now and then while records are added, with their number so far: long work shows its
  // progress.
  void setObserver(std::function<void(std::uint32_t)> observer) { observer_ = std::move(observer); }
  // By layer: where what was added to model space begins.
  const std::unordered_map<std::uint32_t, AcDbExtents>& drawn() const { return drawn_; }

 private:
  void rewrite(std::uint32_t record, const TagList& tags, const Record* like);
  std::uint32_t add(const TagList& tags, const Place& place, std::uint64_t handle,
                    const Record* like);

  Records& records_;
  Index& index_;
  History& history_;
  std::unordered_map<std::uint32_t, AcDbExtents> drawn_;
  std::function<void(std::uint32_t)> observer_;
};

}  // namespace cad
