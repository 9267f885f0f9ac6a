// Memory for the texts of a drawing: large blocks, handed out by bumping a pointer, freed together.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace cad {

// A block of memory straight from the system, with large pages where it is big: the pages of a
// drawing's text are touched once, in order, and faults on small pages would cost more than the
// work.
class Block {
 public:
  Block() = default;
  explicit Block(std::size_t size);
  Block(Block&& other) noexcept : data_(other.data_), size_(other.size_) {
    other.data_ = nullptr;
    other.size_ = 0;
  }
  Block& operator=(Block&& other) noexcept;
  ~Block();
  char* data() const { return data_; }
  std::size_t size() const { return size_; }

 private:
  char* data_ = nullptr;
  std::size_t size_ = 0;
};

class Arena {
 public:
  // `n` bytes, unaligned, alive as long as the arena.
  char* allocate(std::size_t n) {
    if (n > left_) grow(n);
    char* p = at_;
    at_ += n;
    left_ -= n;
    return p;
  }
  // Gives back the end of the latest allocation.
  void shrink(std::size_t unused) {
    at_ -= unused;
    left_ += unused;
  }
  std::string_view store(std::string_view text);
  // Forgets everything and keeps one block for the next use.
  void reset();

  explicit Arena(std::size_t blockSize) : blockSize_(blockSize) {}

 private:
  void grow(std::size_t n);
  std::size_t blockSize_;
  std::vector<Block> blocks_;
  char* at_ = nullptr;
  std::size_t left_ = 0;
};

}  // namespace cad
