#include "cad/dxf/names.h"

#include <algorithm>

#include "platform/text.h"

namespace cad {

NameTable::NameTable() : keys_(1 << 16) {
  spellings_.emplace_back();
  byFold_.emplace(u"", 0);
}

std::uint32_t NameTable::findRecent(std::u16string_view name) const {
  for (const std::uint32_t recent : recent_) {
    if (spellings_[recent] == name) return recent;
  }
  return 0;
}

void NameTable::noteRecent(std::uint32_t name, std::u16string_view spelling) const {
  if (spellings_[name] != spelling) return;
  recent_[oldest_] = name;
  oldest_ = (oldest_ + 1) % recent_.size();
}

std::uint32_t NameTable::of(std::u16string_view name) {
  if (const std::uint32_t recent = findRecent(name)) return recent;
  auto [it, fresh] =
      byFold_.try_emplace(platform::upper(name), static_cast<std::uint32_t>(spellings_.size()));
  if (fresh) spellings_.emplace_back(name);
  noteRecent(it->second, name);
  return it->second;
}

std::uint32_t NameTable::ofBytes(const Format& format, std::string_view bytes) {
  if (const auto it = byBytes_.find(bytes); it != byBytes_.end()) return it->second;
  const std::uint32_t name = of(format.decode(bytes));
  byBytes_.emplace(keys_.store(bytes), name);
  return name;
}

std::uint32_t NameTable::find(std::u16string_view name) const {
  if (const std::uint32_t recent = findRecent(name)) return recent;
  const auto it = byFold_.find(platform::upper(name));
  if (it == byFold_.end()) return 0;
  noteRecent(it->second, name);
  return it->second;
}

// Of a large set the members are looked up, not walked: it grows by one after the other.
bool NameSets::has(std::uint32_t set, std::uint32_t name) {
  constexpr std::uint32_t kLarge = 64;
  if (sets_[set].count < kLarge) return contains(set, name);
  if (large_ != set) {
    largeMembers_.clear();
    forEach(set, [&](std::uint32_t n) { largeMembers_.insert(n); });
    large_ = set;
  }
  return largeMembers_.count(name) != 0;
}

std::uint32_t NameSets::with(std::uint32_t set, std::uint32_t name) {
  if (has(set, name)) return set;
  const std::uint64_t key = (static_cast<std::uint64_t>(set) << 32) | name;
  const auto [step, fresh] = steps_.try_emplace(key, static_cast<std::uint32_t>(sets_.size()));
  if (fresh) sets_.push_back({set, name, sets_[set].count + 1});
  if (large_ == set && set != 0) {
    largeMembers_.insert(name);
    large_ = step->second;
  }
  return step->second;
}

}  // namespace cad
