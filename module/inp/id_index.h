// Records of a growing list by their id.
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include "module/network/records.h"

namespace vessora {

// Nothing is built before the first question, and each question first takes in the records that
// have been added to the list since. Ids already taken in must not change. Records with equal ids
// form a group; groups are numbered from 0 in order of their first record.
template <class Record>
class IdIndex {
 public:
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;

  // `list` must outlive the index.
  explicit IdIndex(const RecordList<Record>& list) : list_(list) {}

  // The group of the records with this id, or kNone.
  std::uint32_t find(std::u16string_view id) {
    catchUp();
    return groups_.empty() ? kNone : slots_[slotOf(id, hashOf(id))];
  }
  // Numbers of the first and the last record of a group.
  std::size_t first(std::uint32_t group) const { return groups_[group].first; }
  std::size_t last(std::uint32_t group) const { return groups_[group].last; }

  // How many records have been taken in, and the group of each of them.
  std::size_t size() const { return groupOf_.size(); }
  std::uint32_t groupOf(std::size_t record) const { return groupOf_[record]; }

 private:
  struct Group {
    std::uint32_t hash;
    std::uint32_t first;
    std::uint32_t last;
  };

  static std::uint32_t hashOf(std::u16string_view id) {
    const std::size_t h = std::hash<std::u16string_view>()(id);
    return static_cast<std::uint32_t>(h ^ (h >> 32));
  }

  // The slot that holds the group of this id, or the free slot where it belongs.
  std::size_t slotOf(std::u16string_view id, std::uint32_t hash) const {
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t slot = hash & mask;; slot = (slot + 1) & mask) {
      const std::uint32_t group = slots_[slot];
      if (group == kNone) return slot;
      if (groups_[group].hash == hash && list_[groups_[group].first].id == id) return slot;
    }
  }

  void catchUp() {
    if (groupOf_.size() == list_.size()) return;
    makeRoom(list_.size());
    for (std::size_t i = groupOf_.size(); i < list_.size(); ++i) {
      const std::u16string_view id = list_[i].id;
      const std::uint32_t hash = hashOf(id);
      const auto number = static_cast<std::uint32_t>(i);
      std::uint32_t& slot = slots_[slotOf(id, hash)];
      if (slot == kNone) {
        slot = static_cast<std::uint32_t>(groups_.size());
        groups_.push_back({hash, number, number});
      } else {
        groups_[slot].last = number;
      }
      groupOf_.push_back(slot);
    }
  }

  // At most half of the slots are ever taken.
  void makeRoom(std::size_t records) {
    if (slots_.size() >= 2 * records) return;
    std::size_t size = slots_.empty() ? 16 : slots_.size();
    while (size < 4 * records) size *= 2;
    slots_.assign(size, kNone);
    for (std::uint32_t g = 0; g < groups_.size(); ++g) {
      std::size_t slot = groups_[g].hash & (size - 1);
      while (slots_[slot] != kNone) slot = (slot + 1) & (size - 1);
      slots_[slot] = g;
    }
  }

  const RecordList<Record>& list_;
  std::vector<Group> groups_;
  std::vector<std::uint32_t> groupOf_;
  std::vector<std::uint32_t> slots_;
};

// The status that [STATUS] rows give to all records of an id. Kept by id and put into the records
// at the end, so that many rows for many records of one id cost no more than the two numbers added.
template <class Record>
class StatusRows {
 public:
  // Every record with this id that is in the list now has this status.
  void set(IdIndex<Record>& index, std::u16string_view id, const wide50& status) {
    const std::uint32_t group = index.find(id);
    if (group == IdIndex<Record>::kNone) return;
    if (rows_.size() <= group) rows_.resize(group + std::size_t{1});
    rows_[group] = {index.size(), status};
  }

  void apply(const IdIndex<Record>& index, RecordList<Record>& list) const {
    for (std::size_t i = 0; i < index.size(); ++i) {
      const std::uint32_t group = index.groupOf(i);
      if (group < rows_.size() && i < rows_[group].before) list[i].status = rows_[group].status;
    }
  }

 private:
  struct Row {
    std::size_t before = 0;  // records of lower number have the status
    wide50 status;
  };
  std::vector<Row> rows_;  // by group
};

}  // namespace vessora
