#include "cad/shape/reference.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "cad/drawing/block_geometry.h"

namespace cad::shape {

namespace {

constexpr int kMostCopies = 100000;  // of blocks, in one reference with all that is nested in it
constexpr std::int64_t kLongestArray = 32767;

// What an insert, a table or a dimension says of its block.
bool showsBlock(Type type) {
  return type == Type::insert || type == Type::acadTable || type == Type::dimension;
}

class Expansion {
 public:
  Expansion(const Drawing& drawing, Arrays arrays, const Emit& emit)
      : d_(drawing), arrays_(arrays), emit_(emit) {}

  bool run(std::uint32_t entity) {
    add(entity, AcGeMatrix3d(), true);
    return complete_;
  }

 private:
  void add(std::uint32_t entity, const AcGeMatrix3d& m, bool outermost) {
    TagList t;
    d_.parse(entity, t);
    if (showsBlock(d_.record(entity).type)) {
      if (const auto reference = referenceOf(d_, entity, t)) addCopies(*reference, m);
      for (std::uint32_t a = d_.structure().firstPart(entity); a;
           a = d_.structure().nextPart(entity, a)) {
        if (d_.record(a).type == Type::attrib) add(a, m, false);
      }
      return;
    }
    if (outermost) {
      drawShape(d_, entity, t, emit_);
      return;
    }
    drawShape(d_, entity, t, [&](Primitive&& p) {
      for (AcGePoint3d& q : p.points) q = m * q;
      emit_(std::move(p));
    });
  }

  void addCopies(const Reference& reference, const AcGeMatrix3d& m) {
    const std::uint32_t block = reference.block();
    if (path_.size() >= kDeepest || std::find(path_.begin(), path_.end(), block) != path_.end()) {
      return;
    }
    path_.push_back(block);
    const bool all = arrays_ == Arrays::whole;
    const int byColumn = all ? 1 : std::max(1, reference.columns() - 1);
    const int byRow = all ? 1 : std::max(1, reference.rows() - 1);
    for (int row = 0; row < reference.rows() && complete_; row += byRow) {
      for (int column = 0; column < reference.columns() && complete_; column += byColumn) {
        addCopy(block, m * reference.transform(column, row));
      }
    }
    path_.pop_back();
  }

  void addCopy(std::uint32_t block, const AcGeMatrix3d& m) {
    if (left_-- <= 0) {
      complete_ = false;
      return;
    }
    for (std::uint32_t e = d_.structure().firstEntity(block); e && complete_;
         e = d_.structure().nextEntity(block, e)) {
      add(e, m, false);
    }
  }

  const Drawing& d_;
  const Arrays arrays_;
  const Emit& emit_;
  std::vector<std::uint32_t> path_;  // the blocks that are being walked through
  int left_ = kMostCopies;
  bool complete_ = true;
};

}  // namespace

Reference::Reference(const Drawing& drawing, const TagList& tags, Type type, std::uint32_t block)
    : drawing_(drawing), tags_(tags), type_(type), block_(block) {
  if (type != Type::insert) return;
  const TagRange body = tags.body();
  columns_ =
      static_cast<int>(std::clamp<std::int64_t>(tags.integerOr(70, 1, body), 1, kLongestArray));
  rows_ = static_cast<int>(std::clamp<std::int64_t>(tags.integerOr(71, 1, body), 1, kLongestArray));
  columnStep_ = tags.realOr(44, 0, body);
  rowStep_ = tags.realOr(45, 0, body);
}

AcGeMatrix3d Reference::transform(int column, int row) const {
  if (type_ == Type::insert) {
    return insertTransform(&drawing_, tags_, block_, column * columnStep_, row * rowStep_);
  }
  AcGeMatrix3d m;
  const BlockInfo* info = drawing_.structure().block(block_);
  const AcGePoint3d base = info ? blockOrigin(drawing_, *info) : AcGePoint3d();
  // The block of a dimension is drawn where the dimension is, that of a table at its corner.
  const TagRange body = tags_.body();
  const int at = type_ == Type::dimension ? -1 : tags_.find(10, body);
  const AcGePoint3d p = at < 0 ? AcGePoint3d() : tags_.point(at);
  m.entry[0][3] = p.x - base.x;
  m.entry[1][3] = p.y - base.y;
  m.entry[2][3] = p.z - base.z;
  return axesOf(tags_, body) * m;
}

std::optional<Reference> referenceOf(const Drawing& drawing, std::uint32_t entity,
                                     const TagList& tags) {
  const Type type = drawing.record(entity).type;
  if (!showsBlock(type)) return std::nullopt;
  const int name = tags.find(2, tags.body());
  const std::uint32_t block =
      name < 0 ? 0 : drawing.structure().blockByName(drawing.names().find(tags.text(name)));
  if (!block || block == drawing.structure().modelSpace()) return std::nullopt;
  return Reference(drawing, tags, type, block);
}

bool expand(const Drawing& drawing, std::uint32_t entity, Arrays arrays, const Emit& emit) {
  return Expansion(drawing, arrays, emit).run(entity);
}

}  // namespace cad::shape
