// Memory for the texts of changed records: handed out by bumping a pointer, given back block by
// block once no record and no undo step refers to a text in the block. A command writes its texts
// side by side, so the blocks of a step that is dropped come back whole.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "cad/dxf/tags.h"
#include "platform/memory.h"

namespace cad {

class TextStore {
 public:
  TextStore() = default;
  ~TextStore();
  TextStore(const TextStore&) = delete;
  TextStore& operator=(const TextStore&) = delete;

  // The written form of the tags, referred to once.
  std::string_view store(const TagList& tags);
  // Takes back the text stored last, to which nobody refers.
  void forget(std::string_view latest);
  // One more, one fewer place that refers to a text of this store.
  void hold(const char* text);
  void release(const char* text);
  // Grows whenever memory is given back: the same address may then hold another text.
  std::uint64_t generation() const { return generation_; }
  // Bytes of all blocks.
  std::size_t bytes() const { return bytes_; }

 private:
  struct Block;
  static Block* blockOf(const char* text);
  void grow(std::size_t room);
  void* take(std::size_t size);
  void free(Block* block);

  Block* all_ = nullptr;  // chain of every block
  Block* current_ = nullptr;
  char* at_ = nullptr;
  std::size_t left_ = 0, bytes_ = 0;
  char* spare_ = nullptr;  // memory for the next blocks
  std::size_t spareLeft_ = 0;
  platform::BlocksAhead ahead_{std::size_t{8} << 20};
  std::uint64_t generation_ = 0;
};

}  // namespace cad
