// Block references: which block one shows, and where.
#pragma once

#include <optional>

#include "cad/drawing/drawing.h"
#include "cad/shape/shape.h"

namespace cad::shape {

// References within references are followed to this depth; whatever stands deeper is not shown.
inline constexpr int kDeepest = 64;

// An insert (an array of them too), a table or a dimension: copies of a block.
class Reference {
 public:
  // `tags` must outlive this.
  Reference(const Drawing& drawing, const TagList& tags, Type type, std::uint32_t block);
  std::uint32_t block() const { return block_; }
  int columns() const { return columns_; }
  int rows() const { return rows_; }
  // From the block's coordinates to those of the reference's own block or space.
  AcGeMatrix3d transform(int column = 0, int row = 0) const;

 private:
  const Drawing& drawing_;
  const TagList& tags_;
  Type type_;
  std::uint32_t block_;
  int columns_ = 1, rows_ = 1;
  double columnStep_ = 0, rowStep_ = 0;
};

// Nothing for other entities, and where the block is missing.
std::optional<Reference> referenceOf(const Drawing& drawing, std::uint32_t entity,
                                     const TagList& tags);

// Everything that an entity shows in its space, with the content of blocks and its attributes.
// Arrays are expanded whole, or to their four corner copies, which is enough for a box. A file may
// hold blocks that multiply on every level: false when there was more than so many references, and
// what came until then is what the caller has.
enum class Arrays { whole, corners };
bool expand(const Drawing& drawing, std::uint32_t entity, Arrays arrays, const Emit& emit);

}  // namespace cad::shape
