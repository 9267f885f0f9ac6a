// Names of a drawing as small numbers: layers, blocks, applications, record types. Two spellings of
// one name that differ in letter case only get the same number; the first spelling is kept.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "cad/dxf/arena.h"
#include "cad/dxf/format.h"

namespace cad {

class NameTable {
 public:
  NameTable();
  // The number of a name as it stands in the file's bytes; 0 is the empty name.
  std::uint32_t ofBytes(const Format& format, std::string_view bytes);
  std::uint32_t of(std::u16string_view name);
  // The number if the name is known, else 0.
  std::uint32_t find(std::u16string_view name) const;
  const std::u16string& text(std::uint32_t name) const { return spellings_[name]; }
  std::size_t size() const { return spellings_.size(); }

 private:
  struct Hash {
    std::size_t operator()(std::string_view s) const noexcept {
      std::uint64_t h = 1469598103934665603ULL;
      for (const char c : s) h = (h ^ static_cast<unsigned char>(c)) * 1099511628211ULL;
      return h;
    }
  };
  std::uint32_t findRecent(std::u16string_view name) const;
  void noteRecent(std::uint32_t name, std::u16string_view spelling) const;

  std::unordered_map<std::u16string, std::uint32_t> byFold_;
  std::unordered_map<std::string_view, std::uint32_t, Hash> byBytes_;
  std::vector<std::u16string> spellings_;
  Arena keys_;
  // The last ones asked for by their own spelling: a command asks for the same few all the time.
  mutable std::array<std::uint32_t, 4> recent_{};
  mutable std::size_t oldest_ = 0;
};

// Sets of applications, as numbers: most objects of a drawing share a handful of them. A set is
// another one with one more member, so that a set of thousands takes no more than its members do.
class NameSets {
 public:
  NameSets() { sets_.emplace_back(); }
  // The set with one more member.
  std::uint32_t with(std::uint32_t set, std::uint32_t name);
  bool contains(std::uint32_t set, std::uint32_t name) const {
    for (; set != 0; set = sets_[set].smaller) {
      if (sets_[set].name == name) return true;
    }
    return false;
  }
  template <class Sink>
  void forEach(std::uint32_t set, Sink&& sink) const {
    for (; set != 0; set = sets_[set].smaller) sink(sets_[set].name);
  }

 private:
  struct Set {
    std::uint32_t smaller = 0, name = 0, count = 0;
  };
  bool has(std::uint32_t set, std::uint32_t name);

  std::vector<Set> sets_;
  std::unordered_map<std::uint64_t, std::uint32_t> steps_;  // (set, name) -> set
  std::uint32_t large_ = 0;                                 // whose members are in largeMembers_
  std::unordered_set<std::uint32_t> largeMembers_;
};

}  // namespace cad
