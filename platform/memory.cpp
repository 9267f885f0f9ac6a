#include "platform/memory.h"

#include <sys/mman.h>

#include <cstdint>
#include <new>
#include <utility>

#include "platform/beside.h"

namespace platform {

namespace {

constexpr std::size_t kSmallPage = 4096;
constexpr std::size_t kHugePage = std::size_t{2} << 20;
static_assert(kLarge >= kHugePage);

constexpr std::size_t roundedUp(std::size_t bytes) {
  return (bytes + kHugePage - 1) & ~(kHugePage - 1);
}

}  // namespace

// One alignment more is mapped, and what stands out on either side is given back.
void* allocateAligned(std::size_t bytes, std::size_t alignment) {
  if (bytes + alignment < bytes) throw std::bad_alloc();
  void* mapped = mmap(nullptr, bytes + alignment, PROT_READ | PROT_WRITE,
                      MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (mapped == MAP_FAILED) throw std::bad_alloc();
  char* const begin = static_cast<char*>(mapped);
  const std::size_t over = reinterpret_cast<std::uintptr_t>(begin) & (alignment - 1);
  const std::size_t before = over ? alignment - over : 0;
  char* const block = begin + before;
  if (before > 0) munmap(begin, before);
  munmap(block + bytes, alignment - before);
  return block;
}

void releaseAligned(void* memory, std::size_t bytes) noexcept {
  if (memory) munmap(memory, bytes);
}

void* allocateLarge(std::size_t bytes) {
  if (bytes < kLarge) return ::operator new(bytes);
  const std::size_t size = roundedUp(bytes);
  if (size < bytes) throw std::bad_alloc();
  // Only whole aligned extents become large pages, and older kernels do not align the mapping.
  void* const block = allocateAligned(size, kHugePage);
  madvise(block, size, MADV_HUGEPAGE);  // a wish: small pages serve as well
  return block;
}

void askForLargePages(const void* memory, std::size_t bytes) noexcept {
  if (bytes < kLarge) return;
  const auto begin = roundedUp(reinterpret_cast<std::uintptr_t>(memory));
  const auto end = (reinterpret_cast<std::uintptr_t>(memory) + bytes) & ~(kHugePage - 1);
  if (begin < end) madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
}

void releaseLarge(void* memory, std::size_t bytes) noexcept {
  if (!memory) return;
  if (bytes >= kLarge) {
    munmap(memory, roundedUp(bytes));
  } else {
    ::operator delete(memory);
  }
}

Block& Block::operator=(Block&& other) noexcept {
  std::swap(data_, other.data_);
  std::swap(size_, other.size_);
  return *this;
}

Block BlocksAhead::take() {
  Block now = next_.valid() ? next_.get() : Block(size_);
  next_ = beside([size = size_] {
    Block block(size);
    // Writing to a page is what makes it; where the kernel cannot do it for all at once, one by
    // one.
    if (madvise(block.data(), size, MADV_POPULATE_WRITE) != 0) {
      for (std::size_t at = 0; at < size; at += kSmallPage) block.data()[at] = 0;
    }
    return block;
  });
  return now;
}

}  // namespace platform
