// The growable list in which the records of a network stand.
//
// A record is one to two kilobytes of fixed arrays of which a few dozen bytes are used, so a large
// network costs more in page faults than in anything that is done to it. Large blocks therefore
// come straight from the system with large pages asked for, and a new record is not cleared beyond
// what its own constructor does.
#pragma once

#include <cstddef>
#include <new>
#include <utility>
#include <vector>

#include "platform/memory.h"

namespace vessora {

template <class T>
class HugePageAllocator {
 public:
  using value_type = T;

  HugePageAllocator() = default;
  template <class U>
  HugePageAllocator(const HugePageAllocator<U>&) noexcept {}  // NOLINT: allocators convert

  T* allocate(std::size_t n) {
    if (n > static_cast<std::size_t>(-1) / 2 / sizeof(T)) throw std::bad_array_new_length();
    return static_cast<T*>(platform::allocateLarge(n * sizeof(T)));
  }
  void deallocate(T* block, std::size_t n) noexcept {
    platform::releaseLarge(block, n * sizeof(T));
  }

  // `emplace_back()` runs the constructor alone, where the standard allocator would first clear the
  // whole record.
  template <class U>
  void construct(U* at) noexcept(noexcept(U())) {
    ::new (static_cast<void*>(at)) U;
  }
  template <class U, class... Args>
  void construct(U* at, Args&&... args) noexcept(noexcept(U(std::forward<Args>(args)...))) {
    ::new (static_cast<void*>(at)) U(std::forward<Args>(args)...);
  }

  friend bool operator==(const HugePageAllocator&, const HugePageAllocator&) { return true; }
};

template <class T>
using RecordList = std::vector<T, HugePageAllocator<T>>;

}  // namespace vessora
