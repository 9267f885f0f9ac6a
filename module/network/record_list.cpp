#include "module/network/record_list.h"

#include <cstdint>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace vessora::detail {

namespace {

constexpr std::size_t kHugePage = std::size_t{2} << 20;
// Below this the heap is as good, and rounding up to large pages would waste memory.
constexpr std::size_t kLarge = 2 * kHugePage;

#if defined(__linux__)
constexpr std::size_t roundedUp(std::size_t bytes) {
  return (bytes + kHugePage - 1) & ~(kHugePage - 1);
}
#endif

}  // namespace

void* allocateRecords(std::size_t bytes) {
#if defined(__linux__)
  if (bytes >= kLarge) {
    // Only whole aligned extents become large pages, and older kernels do not align the mapping:
    // one page more is mapped and what stands out on either side is given back.
    const std::size_t size = roundedUp(bytes);
    void* mapped = mmap(nullptr, size + kHugePage, PROT_READ | PROT_WRITE,
                        MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (mapped == MAP_FAILED) throw std::bad_alloc();
    char* const begin = static_cast<char*>(mapped);
    const std::size_t before = roundedUp(reinterpret_cast<std::uintptr_t>(begin)) -
                               reinterpret_cast<std::uintptr_t>(begin);
    char* const block = begin + before;
    if (before > 0) munmap(begin, before);
    munmap(block + size, kHugePage - before);
    madvise(block, size, MADV_HUGEPAGE);  // a wish: small pages serve as well
    return block;
  }
#endif
  return ::operator new(bytes);
}

void releaseRecords(void* block, std::size_t bytes) noexcept {
#if defined(__linux__)
  if (bytes >= kLarge) {
    munmap(block, roundedUp(bytes));
    return;
  }
#endif
  ::operator delete(block);
}

}  // namespace vessora::detail
