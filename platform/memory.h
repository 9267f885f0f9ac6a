// Large memory straight from the system, with large pages asked for: what is touched once and in
// order (the text of a drawing, the records of a network) would cost more in faults on small pages
// than in the work done on it.
#pragma once

#include <cstddef>
#include <future>
#include <utility>

namespace platform {

// From this size on memory comes in large pages; below it the heap is as good, and rounding up
// would waste memory.
constexpr std::size_t kLarge = std::size_t{4} << 20;

// Memory of `bytes`, cleared when large, aligned for any record. Throws std::bad_alloc when there
// is none. The same number must be given to release it; releasing null does nothing.
void* allocateLarge(std::size_t bytes);
void releaseLarge(void* memory, std::size_t bytes) noexcept;

// Whole pages at a multiple of `alignment` (a power of two, a page at least), which go back to the
// system when they are released. Throws std::bad_alloc.
void* allocateAligned(std::size_t bytes, std::size_t alignment);
void releaseAligned(void* memory, std::size_t bytes) noexcept;

// Has the system back memory of a text or a list that is about to be filled with large pages, as
// far as whole ones fit into it. A wish, for memory from anywhere; small memory is left alone.
void askForLargePages(const void* memory, std::size_t bytes) noexcept;

// An owned block of such memory.
class Block {
 public:
  Block() = default;
  explicit Block(std::size_t size)
      : data_(size ? static_cast<char*>(allocateLarge(size)) : nullptr), size_(size) {}
  // Takes over memory that came from allocateLarge.
  Block(void* memory, std::size_t size) : data_(static_cast<char*>(memory)), size_(size) {}
  Block(Block&& other) noexcept : data_(other.data_), size_(other.size_) {
    other.data_ = nullptr;
    other.size_ = 0;
  }
  Block& operator=(Block&& other) noexcept;
  ~Block() { releaseLarge(data_, size_); }
  char* data() const { return data_; }
  std::size_t size() const { return size_; }
  // The memory, which is the caller's to release from now on.
  char* release() { return std::exchange(data_, nullptr); }

 private:
  char* data_ = nullptr;
  std::size_t size_ = 0;
};

// Blocks of one large size, one after another: while the caller fills one, another thread has the
// system make the next one ready, which takes as long as filling it.
class BlocksAhead {
 public:
  explicit BlocksAhead(std::size_t size) : size_(size) {}
  // Throws std::bad_alloc.
  Block take();

 private:
  std::size_t size_;
  std::future<Block> next_;
};

}  // namespace platform
