#include "cad/drawing/texts.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "platform/check.h"
#include "platform/memory.h"

namespace cad {
namespace {
// Blocks begin at a multiple of this, so that a text's address tells its block. A text begins in
// the first stretch of its block, however long it is.
constexpr std::size_t kAlignment = std::size_t{1} << 18;
// A drawing that has so much of its own takes memory for many blocks at once, in large pages.
constexpr std::size_t kMany = 32 * kAlignment;
}  // namespace

struct TextStore::Block {
  Block *next, *previous;
  std::size_t size;
  std::size_t references;
};

TextStore::~TextStore() {
  while (all_) free(all_);
  if (spareLeft_) platform::releaseAligned(spare_, spareLeft_);
}

TextStore::Block* TextStore::blockOf(const char* text) {
  return reinterpret_cast<Block*>(reinterpret_cast<std::uintptr_t>(text) & ~(kAlignment - 1));
}

// Memory for a block, which goes back by itself, whatever it was taken with.
void* TextStore::take(std::size_t size) {
  if (size != kAlignment || bytes_ < kMany) return platform::allocateAligned(size, kAlignment);
  if (spareLeft_ == 0) {
    platform::Block blocks = ahead_.take();
    spareLeft_ = blocks.size();
    spare_ = blocks.release();
  }
  spareLeft_ -= size;
  return std::exchange(spare_, spare_ + size);
}

void TextStore::grow(std::size_t room) {
  const std::size_t size =
      (std::max(room + sizeof(Block), kAlignment) + kAlignment - 1) & ~(kAlignment - 1);
  auto* block = static_cast<Block*>(take(size));
  *block = {all_, nullptr, size, 0};
  if (all_) all_->previous = block;
  all_ = block;
  bytes_ += size;
  Block* before = current_;
  current_ = block;
  if (before && before->references == 0) free(before);
  at_ = reinterpret_cast<char*>(block + 1);
  // Texts must begin in the block's first stretch.
  left_ = size - sizeof(Block);
}

void TextStore::free(Block* block) {
  (block->previous ? block->previous->next : all_) = block->next;
  if (block->next) block->next->previous = block->previous;
  bytes_ -= block->size;
  ++generation_;
  platform::releaseAligned(block, block->size);
}

std::string_view TextStore::store(const TagList& tags) {
  const std::size_t bound = tags.writtenSize() + 16;
  const bool beyond =
      current_ && static_cast<std::size_t>(at_ - reinterpret_cast<char*>(current_)) >= kAlignment;
  if (bound > left_ || beyond) grow(bound);
  const auto size = static_cast<std::size_t>(tags.write(at_) - at_);
  VESSORA_CHECK(size <= bound, "an object's text is longer than was measured");
  const std::string_view text(at_, size);
  at_ += size;
  left_ -= size;
  ++current_->references;
  return text;
}

void TextStore::forget(std::string_view latest) {
  VESSORA_CHECK(latest.data() + latest.size() == at_, "only the latest text can be taken back");
  at_ -= latest.size();
  left_ += latest.size();
  --current_->references;
}

void TextStore::hold(const char* text) { ++blockOf(text)->references; }

void TextStore::release(const char* text) {
  Block* block = blockOf(text);
  VESSORA_CHECK(block->references > 0, "a text was given back twice");
  if (--block->references == 0 && block != current_) free(block);
}

}  // namespace cad
