// Memory for the texts of a drawing: large blocks, handed out by bumping a pointer, freed together.
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>
#include <vector>

#include "platform/memory.h"

namespace cad {

using platform::Block;

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
  std::string_view store(std::string_view text) {
    char* const p = allocate(text.size());
    if (!text.empty()) std::memcpy(p, text.data(), text.size());
    return {p, text.size()};
  }
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
