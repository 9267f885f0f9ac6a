#include "cad/dxf/arena.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstring>
#include <new>

namespace cad {

Block::Block(std::size_t size) : size_(size) {
  if (size == 0) return;
  void* p = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (p == MAP_FAILED) throw std::bad_alloc();
  if (size >= (2U << 20)) madvise(p, size, MADV_HUGEPAGE);
  data_ = static_cast<char*>(p);
}

Block& Block::operator=(Block&& other) noexcept {
  std::swap(data_, other.data_);
  std::swap(size_, other.size_);
  return *this;
}

Block::~Block() {
  if (data_) munmap(data_, size_);
}

std::string_view Arena::store(std::string_view text) {
  char* p = allocate(text.size());
  if (!text.empty()) std::memcpy(p, text.data(), text.size());
  return {p, text.size()};
}

void Arena::reset() {
  if (blocks_.size() > 1) blocks_.resize(1);
  at_ = blocks_.empty() ? nullptr : blocks_[0].data();
  left_ = blocks_.empty() ? 0 : blocks_[0].size();
}

void Arena::grow(std::size_t n) {
  blocks_.emplace_back(std::max(n, blockSize_));
  at_ = blocks_.back().data();
  left_ = blocks_.back().size();
  // A drawing that grows large gets larger blocks, so that their number stays small.
  blockSize_ = std::min<std::size_t>(blockSize_ * 2, std::max<std::size_t>(blockSize_, 64U << 20));
}

}  // namespace cad
