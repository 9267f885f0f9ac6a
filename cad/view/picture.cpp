#include "cad/view/picture.h"

#include <algorithm>
#include <memory>
#include <set>
#include <utility>

#include "cad/shape/reference.h"
#include "platform/text.h"

namespace cad::view {
namespace {

using shape::Primitive;

constexpr int kByBlock = 0, kByLayer = 256;
// What a picture may hold, and what the blocks of a drawing may when they are expanded: a few
// hundred bytes of a file can stand for billions of shapes.
constexpr std::size_t kMostItems = 12'000'000, kMostInBlocks = 2'000'000;

// How an entity says it is drawn, before layer and block have had their say.
struct Style {
  std::uint32_t layer = 0;
  int color = kByLayer;  // index, by layer or by block; -1 when exact holds
  Color exact;
  int weight = -1;          // hundredths of mm, -1 by layer, -2 by block
  std::u16string linetype;  // empty: by layer
  double scale = 1;
};

struct LayerLook {
  bool known = false, shown = true, isZero = false;
  int color = 7;
  bool hasExact = false;
  Color exact;
  int weight = 0;
  int linetype = -1;
};

// A primitive of a block in the block's own coordinates, with its style unresolved.
struct Styled {
  Primitive shape;
  Style style;
};

class Taker {
 public:
  Taker(const Drawing& drawing, const Selection& selection)
      : d_(drawing), without_(selection.without), chosen_(selection.only) {
    for (const std::u16string& name : selection.layers) only_.insert(d_.names().find(name));
    for (const std::u16string& name : selection.hidden) hidden_.insert(d_.names().find(name));
  }

  Picture take() {
    const std::uint32_t space = d_.structure().modelSpace();
    for (std::uint32_t e = d_.structure().firstEntity(space); e;
         e = d_.structure().nextEntity(space, e)) {
      if (!only_.empty() && !only_.count(d_.record(e).layer)) continue;
      if (!look(d_.record(e).layer).shown || without_.count(e)) continue;
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
    return std::move(picture_);
  }

 private:
  // --- layers and line types
  const LayerLook& look(std::uint32_t name) {
    if (name >= looks_.size()) looks_.resize(name + 64);
    LayerLook& l = looks_[name];
    if (l.known) return l;
    l.known = true;
    l.shown = !hidden_.count(name);
    const std::u16string& text = d_.names().text(name);
    l.isZero = text == u"0" || text.empty();
    const std::uint32_t i = d_.structure().tableEntry(Type::layer, text);
    if (!i) return l;
    TagList t;
    d_.parse(i, t);
    const TagRange body = t.body();
    const auto color = static_cast<int>(t.integerOr(62, 7, body));
    l.shown = l.shown && !(t.integerOr(70, 0, body) & 1) && color >= 0;
    l.color = std::abs(color);
    if (const int exact = t.find(420, body); exact >= 0) {
      l.hasExact = true;
      l.exact = exactColor(t.integer(exact));
    }
    l.weight = static_cast<int>(t.integerOr(370, 0, body));
    l.linetype = linetype(t.textOr(6, u"Continuous", body));
    return looks_[name];
  }

  static Color exactColor(std::int64_t v) {
    return {static_cast<std::uint8_t>(v >> 16), static_cast<std::uint8_t>(v >> 8),
            static_cast<std::uint8_t>(v)};
  }

  int linetype(const std::u16string& name) {
    const auto known = linetypes_.find(name);
    if (known != linetypes_.end()) return known->second;
    int number = -1;
    if (const std::uint32_t i = d_.structure().tableEntry(Type::ltype, name)) {
      TagList t;
      d_.parse(i, t);
      std::vector<double> dashes;
      for (int k = 1; k < t.xdataBegin(); ++k) {
        if (t[k].code == 49) dashes.push_back(t.real(k));
      }
      if (dashes.size() > 1) {
        number = static_cast<int>(picture_.linetypes.size());
        picture_.linetypes.push_back(std::move(dashes));
      }
    }
    linetypes_[name] = number;
    return number;
  }

  Style styleOf(std::uint32_t entity, const TagList& t) const {
    Style s;
    s.layer = d_.record(entity).layer;
    const TagRange common =
        d_.format().hasHandlesAndMarkers() ? t.subclass("AcDbEntity") : t.body();
    for (int i = common.begin; i < common.end; ++i) {
      switch (t[i].code) {
        case 62:
          s.color = static_cast<int>(t.integer(i));
          break;
        case 420:
          s.color = -1;
          s.exact = exactColor(t.integer(i));
          break;
        case 370:
          s.weight = static_cast<int>(t.integer(i));
          break;
        case 6:
          s.linetype = t.text(i);
          break;
        case 48:
          s.scale = t.real(i);
          break;
        default:
          break;
      }
    }
    return s;
  }

  // --- putting a primitive into the picture
  Pen resolve(const Style& s, const LayerLook& l) {
    Pen pen;
    pen.index = s.color;
    pen.exact = s.exact;
    if (s.color == kByLayer) {
      pen.index = l.hasExact ? -1 : l.color;
      pen.exact = l.exact;
    }
    if (pen.index == kByBlock) pen.index = 7;  // not in a block: the default
    const int weight = s.weight < 0 ? l.weight : s.weight;
    pen.weight = weight > 0 ? weight / 100.0 : 0;
    const bool own = !s.linetype.empty() && !platform::equalNoCase(s.linetype, u"ByLayer") &&
                     !platform::equalNoCase(s.linetype, u"ByBlock");
    pen.linetype = own ? linetype(s.linetype) : l.linetype;
    pen.linetypeScale = s.scale;
    return pen;
  }

  void emit(Styled&& styled) {
    const Primitive& p = styled.shape;
    const LayerLook& l = look(styled.style.layer);
    if (!l.shown) return;
    if (picture_.items.size() >= kMostItems) {
      picture_.tooMany = true;
      return;
    }
    Item item;
    item.kind = p.kind;
    item.entity = current_;
    item.closed = p.closed;
    item.endless = p.endless;
    item.pen = resolve(styled.style, l);
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
    const Style style = styleOf(e, t);
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
    if (r.is(Record::hidden) || !look(r.layer).shown) return;
    TagList t;
    d_.parse(a, t);
    Style own = styleOf(a, t);
    inherit(own, reference);
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

  // What a block leaves open its reference decides.
  void inherit(Style& s, const Style& block) {
    const bool zero = look(s.layer).isZero;
    if (s.color == kByBlock) {
      s.color = block.color;
      s.exact = block.exact;
      if (block.color == kByLayer && !zero) {
        const LayerLook& l = look(block.layer);
        s.color = l.hasExact ? -1 : l.color;
        s.exact = l.exact;
      }
    }
    if (s.weight == -2) s.weight = block.weight;
    if (platform::equalNoCase(s.linetype, u"ByBlock")) s.linetype = block.linetype;
    if (zero) s.layer = block.layer;
  }

  Styled placed(const Styled& p, const AcGeMatrix3d& m, const Style& reference) {
    Styled out = p;
    inherit(out.style, reference);
    for (AcGePoint3d& q : out.shape.points) q = m * q;
    return out;
  }

  const Drawing& d_;
  const std::set<std::uint32_t>&without_, &chosen_;
  Picture picture_;
  std::uint32_t tables_ = 0, table_ = 0;         // how many, and the one being taken
  bool inAttribute_ = false, inSymbol_ = false;  // of the entity being taken
  std::set<std::uint32_t> only_, hidden_, underWay_;
  std::vector<LayerLook> looks_;
  std::map<std::u16string, int> linetypes_;
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
