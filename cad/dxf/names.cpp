#include "cad/dxf/names.h"

#include <algorithm>

#include "platform/text.h"

namespace cad {

NameTable::NameTable() : keys_(1 << 16) {
  spellings_.emplace_back();
  byFold_.emplace(u"", 0);
}

std::uint32_t NameTable::of(std::u16string_view name) {
  auto [it, fresh] =
      byFold_.try_emplace(platform::upper(name), static_cast<std::uint32_t>(spellings_.size()));
  if (fresh) spellings_.emplace_back(name);
  return it->second;
}

std::uint32_t NameTable::ofBytes(const Format& format, std::string_view bytes) {
  if (const auto it = byBytes_.find(bytes); it != byBytes_.end()) return it->second;
  const std::uint32_t name = of(format.decode(bytes));
  byBytes_.emplace(keys_.store(bytes), name);
  return name;
}

std::uint32_t NameTable::find(std::u16string_view name) const {
  const auto it = byFold_.find(platform::upper(name));
  return it == byFold_.end() ? 0 : it->second;
}

std::uint32_t NameSets::with(std::uint32_t set, std::uint32_t name) {
  if (contains(set, name)) return set;
  const std::uint64_t key = (static_cast<std::uint64_t>(set) << 32) | name;
  if (const auto it = steps_.find(key); it != steps_.end()) return it->second;
  std::vector<std::uint32_t> members = sets_[set];
  members.insert(std::upper_bound(members.begin(), members.end(), name), name);
  auto same = std::find(sets_.begin(), sets_.end(), members);
  const auto result = static_cast<std::uint32_t>(same - sets_.begin());
  if (same == sets_.end()) sets_.push_back(std::move(members));
  steps_.emplace(key, result);
  return result;
}

}  // namespace cad
