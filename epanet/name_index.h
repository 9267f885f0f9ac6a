// Ids to indexes: an open hash table over names that somebody else keeps.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

namespace epanet {

class NameIndex {
 public:
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;

  // `nameOf(index)` gives the name of what was added under the index.
  template <class NameOf>
  std::uint32_t find(std::string_view name, NameOf nameOf) const {
    if (slots_.empty()) return kNone;
    const std::uint32_t hash = hashOf(name);
    for (std::size_t at = hash & mask();; at = (at + 1) & mask()) {
      const Slot& slot = slots_[at];
      if (slot.index == kNone) return kNone;
      if (slot.hash == hash && nameOf(slot.index) == name) return slot.index;
    }
  }
  // Room for so many names.
  void reserve(std::size_t count) {
    while (2 * (count + 1) > slots_.size()) grow();
  }
  // The name must not be there yet.
  void add(std::string_view name, std::uint32_t index) {
    if (2 * (count_ + 1) > slots_.size()) grow();
    put({hashOf(name), index});
    ++count_;
  }

 private:
  struct Slot {
    std::uint32_t hash = 0, index = kNone;
  };
  std::size_t mask() const { return slots_.size() - 1; }
  void put(const Slot& slot) {
    std::size_t at = slot.hash & mask();
    while (slots_[at].index != kNone) at = (at + 1) & mask();
    slots_[at] = slot;
  }
  void grow() {
    std::vector<Slot> old(slots_.empty() ? 64 : 2 * slots_.size());
    old.swap(slots_);
    for (const Slot& slot : old) {
      if (slot.index != kNone) put(slot);
    }
  }
  static std::uint32_t hashOf(std::string_view name) {
    std::uint64_t hash = 0x9E3779B97F4A7C15u ^ name.size();
    while (name.size() >= 8) {
      std::uint64_t word;
      std::memcpy(&word, name.data(), 8);
      hash = (hash ^ word) * 0xFF51AFD7ED558CCDu;
      hash ^= hash >> 32;
      name.remove_prefix(8);
    }
    std::uint64_t word = 0;
    if (!name.empty()) std::memcpy(&word, name.data(), name.size());  // which may have no data
    hash = (hash ^ word) * 0xFF51AFD7ED558CCDu;
    hash ^= hash >> 29;
    hash *= 0xC4CEB9FE1A85EC53u;
    return static_cast<std::uint32_t>(hash >> 32);
  }

  std::vector<Slot> slots_;
  std::size_t count_ = 0;
};

}  // namespace epanet
