// The list of a drawing's records: grows by whole chunks of large memory, so that a million records
// are neither moved nor paid for twice, and a reference to one holds while others are added.
#pragma once

#include <algorithm>
#include <cstddef>
#include <new>
#include <type_traits>
#include <vector>

#include "platform/memory.h"

namespace cad {

template <class T>
class ChunkedList {
  static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

 public:
  T& operator[](std::size_t i) { return chunk(i >> kShift)[i & kMask]; }
  const T& operator[](std::size_t i) const { return chunk(i >> kShift)[i & kMask]; }
  T& back() { return (*this)[size_ - 1]; }
  std::size_t size() const { return size_; }
  T& push_back(const T& value) {
    if (size_ >> kShift == chunks_.size()) grow();
    return *::new (&(*this)[size_++]) T(value);
  }
  T& emplace_back() { return push_back(T()); }

 private:
  static constexpr std::size_t kShift = 16, kMask = (std::size_t{1} << kShift) - 1;

  T* chunk(std::size_t i) const { return reinterpret_cast<T*>(chunks_[i].data()); }
  static constexpr std::size_t kBytes = std::max(sizeof(T) << kShift, platform::kLarge);

  // The first chunk is often hardly used: it takes pages as they are needed.
  void grow() {
    chunks_.push_back(chunks_.empty() ? platform::Block(sizeof(T) << kShift) : ahead_.take());
  }

  std::vector<platform::Block> chunks_;
  platform::BlocksAhead ahead_{kBytes};
  std::size_t size_ = 0;
};

}  // namespace cad
