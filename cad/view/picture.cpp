#include "cad/view/picture.h"

#include <algorithm>
#include <memory>
#include <set>
#include <utility>

#include "cad/shape/reference.h"
#include "cad/view/looks.h"

namespace cad::view {
namespace {

using shape::Primitive;

// What a picture may hold, and what the blocks of a drawing may when they are expanded: a few
// hundred bytes of a file can stand for billions of shapes.
constexpr std::size_t kMostItems = 12'000'000, kMostInBlocks = 2'000'000;

// A primitive of a block in the block's own coordinates, with its style unresolved.
struct Styled {
  Primitive shape;
  Style style;
};

class Taker {
 public:
  Taker(const Drawing& drawing, const Selection& selection)
      : d_(drawing), looks_(drawing), without_(selection.without), chosen_(selection.only) {
    for (const std::u16string& name : selection.layers) only_.insert(d_.names().find(name));
    for (const std::u16string& name : selection.hidden) looks_.hide(d_.names().find(name));
  }

  Picture take() {
    const std::uint32_t space = d_.structure().modelSpace();
    for (std::uint32_t e = d_.structure().firstEntity(space); e;
         e = d_.structure().nextEntity(space, e)) {
      if (!only_.empty() && !only_.count(d_.record(e).layer)) continue;
      if (!looks_.of(d_.record(e).layer).shown || without_.count(e)) continue;
      if (!chosen_.empty() && !chosen_.count(e)) continue;
      current_ = e;
      const std::size_t before = picture_.items.size();
      const bool table = d_.record(e).type == Type::acadTable;
      if (table) table_ = ++tables_;
      entity(
          e, [&](Styled&& p) { emit(std::move(p)); }, 0);
      if (table) underlay(before);
      table_ = 0;
      if (picture_.tooMany) break;
    }
    picture_.linetypes = looks_.linetypes();
    return std::move(picture_);
  }

 private:
  void emit(Styled&& styled) {
    const Primitive& p = styled.shape;
    if (!looks_.of(styled.style.layer).shown) return;
    if (picture_.items.size() >= kMostItems) {
      picture_.tooMany = true;
      return;
    }
    Item item;
    item.kind = p.kind;
    item.entity = current_;
    item.closed = p.closed;
    item.endless = p.endless;
    item.pen = looks_.penOf(styled.style);
    item.table = table_;
    item.label = inAttribute_;
    item.symbol = inSymbol_ && !inAttribute_;
    item.first = static_cast<std::uint32_t>(picture_.points.size());
    item.count = static_cast<std::uint32_t>(p.points.size());
    picture_.points.insert(picture_.points.end(), p.points.begin(), p.points.end());
    if (p.kind == Kind::fill) {
      item.loops = static_cast<std::uint32_t>(p.loops.size());
      picture_.loopSizes.insert(picture_.loopSizes.end(), p.loops.begin(), p.loops.end());
    }
    if (p.kind == Kind::text) {
      item.text = static_cast<std::uint32_t>(picture_.texts.size());
      picture_.texts.push_back(p.text);
    }
    picture_.items.push_back(item);
  }

  // What a table covers of the plan, under what it has drawn since `first`.
  void underlay(std::size_t first) {
    AcGePoint3d low(1e300, 1e300, 0), high(-1e300, -1e300, 0);
    for (std::size_t i = first; i < picture_.items.size(); ++i) {
      const Item& item = picture_.items[i];
      if (item.kind != Kind::line) continue;
      for (std::uint32_t k = 0; k < item.count; ++k) {
        const AcGePoint3d& p = picture_.points[item.first + k];
        low = {std::min(low.x, p.x), std::min(low.y, p.y), p.z};
        high = {std::max(high.x, p.x), std::max(high.y, p.y), p.z};
      }
    }
    if (low.x > high.x || picture_.tooMany) return;
    Item ground;
    ground.kind = Kind::fill;
    ground.table = table_;
    ground.ground = true;
    ground.first = static_cast<std::uint32_t>(picture_.points.size());
    ground.count = 4;
    ground.loops = 1;
    picture_.loopSizes.push_back(4);
    for (const AcGePoint3d& corner :
         {low, AcGePoint3d(high.x, low.y, low.z), AcGePoint3d(high.x, high.y, low.z),
          AcGePoint3d(low.x, high.y, low.z)}) {
      picture_.points.push_back(corner);
    }
    picture_.items.push_back(ground);
  }

  // --- entities
  using Sink = std::function<void(Styled&&)>;

  void entity(std::uint32_t e, const Sink& sink, int depth) {
    if (d_.record(e).is(Record::hidden)) return;
    TagList t;
    d_.parse(e, t);
    const Style style = looks_.styleOf(e, t);
    if (depth == 0) inSymbol_ = hasAttributes(e);
    shapes(e, t, style, sink);
    if (const auto reference = shape::referenceOf(d_, e, t)) copies(*reference, style, sink, depth);
    for (std::uint32_t a = d_.structure().firstPart(e); a; a = d_.structure().nextPart(e, a)) {
      if (d_.record(a).type != Type::attrib) continue;
      inAttribute_ = depth == 0;
      attribute(a, style, sink);
      inAttribute_ = false;
    }
  }

  bool hasAttributes(std::uint32_t e) const {
    const std::uint32_t part = d_.structure().firstPart(e);
    return part && d_.record(part).type == Type::attrib;
  }

  void shapes(std::uint32_t e, const TagList& t, const Style& style, const Sink& sink) {
    const bool known = shape::drawShape(d_, e, t, [&](Primitive&& p) {
      sink({std::move(p), style});
    });
    if (!known) ++picture_.unknown[d_.records().typeName(e)];
  }

  void attribute(std::uint32_t a, const Style& reference, const Sink& sink) {
    const Record& r = d_.record(a);
    if (r.is(Record::hidden) || !looks_.of(r.layer).shown) return;
    TagList t;
    d_.parse(a, t);
    Style own = looks_.styleOf(a, t);
    looks_.inherit(own, reference);
    shapes(a, t, own, sink);
  }

  // --- references
  using BlockPicture = std::vector<Styled>;

  const BlockPicture& blockPicture(std::uint32_t id, int depth) {
    auto& slot = blocks_[id];
    if (slot) return *slot;
    slot = std::make_unique<BlockPicture>();
    BlockPicture& picture = *slot;
    for (std::uint32_t e = d_.structure().firstEntity(id); e && !picture_.tooMany;
         e = d_.structure().nextEntity(id, e)) {
      entity(
          e,
          [&](Styled&& p) {
            if (++inBlocks_ > kMostInBlocks) {
              picture_.tooMany = true;
            } else {
              picture.push_back(std::move(p));
            }
          },
          depth + 1);
    }
    return picture;
  }

  void copies(const shape::Reference& reference, const Style& style, const Sink& sink, int depth) {
    const std::uint32_t id = reference.block();
    if (underWay_.count(id)) return;
    if (depth >= shape::kDeepest) {
      ++picture_.tooDeep;
      return;
    }
    underWay_.insert(id);
    const BlockPicture& block = blockPicture(id, depth);
    underWay_.erase(id);
    for (int row = 0; row < reference.rows() && !block.empty(); ++row) {
      for (int column = 0; column < reference.columns(); ++column) {
        const AcGeMatrix3d m = reference.transform(column, row);
        for (const Styled& p : block) {
          if (picture_.tooMany) return;
          sink(placed(p, m, style));
        }
      }
    }
  }

  Styled placed(const Styled& p, const AcGeMatrix3d& m, const Style& reference) {
    Styled out = p;
    looks_.inherit(out.style, reference);
    for (AcGePoint3d& q : out.shape.points) q = m * q;
    return out;
  }

  const Drawing& d_;
  Looks looks_;
  const std::set<std::uint32_t>&without_, &chosen_;
  Picture picture_;
  std::uint32_t tables_ = 0, table_ = 0;         // how many, and the one being taken
  bool inAttribute_ = false, inSymbol_ = false;  // of the entity being taken
  std::set<std::uint32_t> only_, underWay_;
  std::map<std::uint32_t, std::unique_ptr<BlockPicture>> blocks_;
  std::size_t inBlocks_ = 0;
  std::uint32_t current_ = 0;  // the entity of model space that is taken
};

}  // namespace

bool hasLayer(const Drawing& drawing, std::u16string_view name) {
  if (drawing.structure().tableEntry(Type::layer, name)) return true;
  const std::uint32_t known = drawing.names().find(name);
  if (known == 0) return false;
  for (const std::uint32_t e : drawing.index().allInSpace()) {
    if (drawing.record(e).layer == known) return true;
  }
  return false;
}

Picture takePicture(const Drawing& drawing, const Selection& selection) {
  return Taker(drawing, selection).take();
}

}  // namespace cad::view
