// What is known of new objects of one make. Entities come in crowds that differ from one another in
// handle, owner, coordinates and words only: what the index says of the first, and that all it
// names is in the drawing, holds for the next ones, and nobody needs to look it up again.
//
// A make is the sequence of group codes together with every value that names something or that the
// index reads (type, layer, block, line type, style, applications, flags). See
// docs/decisions/0008.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "cad/dxf/scanner.h"

namespace cad {

struct Stamp {
  struct Mark {
    std::int16_t code = 0;
    bool counts = false;     // the value belongs to the make
    std::uint32_t size = 0;  // of the value, if it counts
  };
  std::vector<Mark> marks;
  std::string values;    // those that count, one after another
  Record like;           // a record of this make, for copyIndex
  std::size_t next = 0;  // the make that came after this one the last time

  explicit Stamp(const TagList& tags);
  bool fits(const TagList& tags) const;
  // Longer objects come alone, or each with a number of tags of its own.
  static bool suits(const TagList& tags) { return tags.size() <= 64; }
};

// The makes of the latest objects. A place among them is reused when there are many.
class Stamps {
 public:
  // A record of the tags' make, null when it is none of the latest. Valid until the next call.
  const Record* find(const TagList& tags);
  // Keeps a stamp whose make has none.
  void keep(std::unique_ptr<Stamp> stamp);
  void clear();

 private:
  static constexpr std::size_t kMost = 24;
  const Record* follow(std::size_t place);

  std::vector<std::unique_ptr<Stamp>> all_;
  std::size_t latest_ = 0;  // found or kept last
  std::size_t oldest_ = 0;  // reused next
};

}  // namespace cad
