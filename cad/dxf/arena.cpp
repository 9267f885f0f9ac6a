#include "cad/dxf/arena.h"

#include <algorithm>

namespace cad {

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
