#include "cad/view/scene.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "cad/shape/reference.h"
#include "cad/view/looks.h"

namespace cad::view {

using shape::Primitive;

namespace {

// What blocks may hold when they are expanded: a few hundred bytes of a file can stand for billions
// of shapes.
constexpr std::size_t kMostInBlocks = 2'000'000;
// Copies of an array that are drawn.
constexpr int kMostCopies = 10'000;
constexpr std::uint64_t kSeed = 0xCBF29CE484222325U, kFactor = 0x100000001B3U;

bool isFinite(const AcGePoint3d& p) {
  return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z) && std::fabs(p.x) < 1e15 &&
         std::fabs(p.y) < 1e15;
}

void grow(Window& box, double& low, double& high, const AcGePoint3d& p) {
  box = {std::min(box.x1, p.x), std::min(box.y1, p.y), std::max(box.x2, p.x),
         std::max(box.y2, p.y)};
  low = std::min(low, p.z);
  high = std::max(high, p.z);
}

constexpr Window kNothing{1e300, 1e300, -1e300, -1e300};

}  // namespace

// A primitive with its style unresolved.
struct Scene::Styled {
  Primitive shape;
  Style style;
};

Scene::Scene() = default;
Scene::Scene(Scene&&) noexcept = default;
Scene& Scene::operator=(Scene&&) noexcept = default;
Scene::~Scene() = default;

const std::vector<std::vector<double>>& Scene::linetypes() const {
  static const std::vector<std::vector<double>> none;
  return looks_ ? looks_->linetypes() : none;
}

std::uint32_t Scene::thingOf(std::uint32_t record) const {
  return record < thingOf_.size() ? thingOf_[record] : SceneThing::kNone;
}

void Scene::clear() { *this = Scene(); }

std::optional<Window> Scene::bounds() const {
  if (boundsKnown_) return bounds_;
  boundsKnown_ = true;
  Window all = kNothing;
  for (const SceneThing& t : things_) {
    if (t.record == 0 || t.endless || t.box.x1 > t.box.x2) continue;
    all = {std::min(all.x1, t.box.x1), std::min(all.y1, t.box.y1), std::max(all.x2, t.box.x2),
           std::max(all.y2, t.box.y2)};
  }
  bounds_ = all.x1 <= all.x2 ? std::optional(all) : std::nullopt;
  return bounds_;
}

// --- following the drawing -----------------------------------------------------------------------

// What an entity and its parts are now: texts of records are never overwritten, so that another
// place of the text is another text.
std::uint64_t Scene::stateOf(std::uint32_t record) const {
  std::uint64_t state = kSeed;
  const auto mix = [&](std::uint32_t r) {
    const Record& one = d_->record(r);
    state = (state ^ reinterpret_cast<std::uintptr_t>(one.bytes)) * kFactor;
    state = (state ^ (one.is(Record::hidden) ? 1U : 0U)) * kFactor;
  };
  mix(record);
  for (std::uint32_t p = d_->structure().firstPart(record); p;
       p = d_->structure().nextPart(record, p)) {
    mix(p);
  }
  return state;
}

bool Scene::update(const Drawing& drawing) {
  const History& history = const_cast<Drawing&>(drawing).history();
  const bool another = number_ != drawing.number() || !looks_;
  if (!another && revision_ == history.revision()) return false;
  d_ = &drawing;
  if (another || definitions_ != history.definitions() || garbage_ > points_.size() / 2 + 100000) {
    rebuild(drawing);
  } else {
    std::vector<bool> seen(things_.size(), false);
    const std::uint32_t space = d_->structure().modelSpace();
    for (std::uint32_t e = d_->structure().firstEntity(space); e;
         e = d_->structure().nextEntity(space, e)) {
      const std::uint32_t known = thingOf(e);
      if (known != SceneThing::kNone) {
        seen[known] = true;
        if (states_[known] == stateOf(e)) continue;
        free(known);
      }
      std::uint32_t thing = static_cast<std::uint32_t>(things_.size());
      if (freeThings_.empty()) {
        things_.emplace_back();
        states_.push_back(0);
      } else {
        thing = freeThings_.back();
        freeThings_.pop_back();
      }
      if (thing < seen.size()) seen[thing] = true;
      make(thing, e);
    }
    for (std::uint32_t i = 0; i < seen.size(); ++i) {
      if (!seen[i] && things_[i].record != 0) free(i);
    }
  }
  boundsKnown_ = false;
  number_ = drawing.number();
  revision_ = history.revision();
  definitions_ = history.definitions();
  d_ = nullptr;
  return true;
}

void Scene::rebuild(const Drawing& drawing) {
  clear();
  d_ = &drawing;
  looks_ = std::make_unique<Looks>(drawing);
  low_ = 1e300, high_ = -1e300;
  const std::uint32_t space = d_->structure().modelSpace();
  for (std::uint32_t e = d_->structure().firstEntity(space); e;
       e = d_->structure().nextEntity(space, e)) {
    things_.emplace_back();
    states_.push_back(0);
    make(static_cast<std::uint32_t>(things_.size() - 1), e);
  }
  // The index divides the ground that there is; things were put into one without a ground.
  index_ = SceneIndex(bounds().value_or(Window{0, 0, 1, 1}));
  for (std::uint32_t i = 0; i < things_.size(); ++i) {
    if (things_[i].record && things_[i].box.x1 <= things_[i].box.x2) index_.put(i, things_[i].box);
  }
}

void Scene::free(std::uint32_t thing) {
  SceneThing& t = things_[thing];
  if (t.box.x1 <= t.box.x2) index_.take(thing, t.box);
  for (std::uint32_t i = t.items.begin; i < t.items.end; ++i) garbage_ += items_[i].count;
  labels_.erase(thing);
  thingOf_[t.record] = SceneThing::kNone;
  t = {};
  freeThings_.push_back(thing);
}

void Scene::make(std::uint32_t thing, std::uint32_t e) {
  SceneThing t;
  t.record = e;
  t.box = kNothing;
  t.low = 1e300, t.high = -1e300;
  if (e >= thingOf_.size()) thingOf_.resize(e + e / 2 + 64, SceneThing::kNone);
  thingOf_[e] = thing;
  states_[thing] = stateOf(e);
  if (!d_->record(e).is(Record::hidden) && looks_->of(d_->record(e).layer).shown) show(t);
  growBox(t.items, nullptr, t);
  if (t.symbol != SceneThing::kNone) growBox(symbols_[t.symbol].items, &matrices_[t.matrix], t);
  if (t.low <= t.high) {
    low_ = std::min(low_, t.low);
    high_ = std::max(high_, t.high);
  }
  if (number_ != 0 && t.box.x1 <= t.box.x2) index_.put(thing, t.box);
  things_[thing] = t;
}

// What an entity itself draws, and the block that it shows.
void Scene::show(SceneThing& t) {
  const std::uint32_t e = t.record;
  const auto tags = borrowTags();
  d_->parse(e, *tags);
  const Style style = looks_->styleOf(e, *tags);
  const auto reference = shape::referenceOf(*d_, e, *tags);
  const bool single = reference && reference->rows() == 1 && reference->columns() == 1;
  if (single) {
    t.symbol = symbolOf(reference->block(), style);
    t.matrix = static_cast<std::uint32_t>(matrices_.size());
    matrices_.push_back(reference->transform());
  }
  // A symbol may have put its items there meanwhile.
  t.items.begin = static_cast<std::uint32_t>(items_.size());
  if (reference && !single) {
    Block copies;
    takeEntity(e, 0, copies);
    for (const Styled& copy : copies) addItem(copy, nullptr);
  } else {
    shape::drawShape(*d_, e, *tags, [&](Primitive&& p) {
      addItem({std::move(p), style}, nullptr);
    });
  }
  t.items.end = static_cast<std::uint32_t>(items_.size());
  t.labels = reference && d_->structure().firstPart(e) != 0;
  t.table = d_->record(e).type == Type::acadTable;
}

void Scene::growBox(const ItemRange& range, const AcGeMatrix3d* m, SceneThing& t) const {
  for (std::uint32_t i = range.begin; i < range.end; ++i) {
    const SceneItem& item = items_[i];
    if (item.endless) {
      t.endless = true;
      continue;
    }
    if (item.kind == Kind::text) {
      Primitive text;
      text.kind = Kind::text;
      text.text = texts_[item.text];
      text.points.assign(points_.begin() + item.first, points_.begin() + item.first + item.count);
      for (const AcGePoint3d& p : shape::textCorners(text)) {
        const AcGePoint3d q = m ? *m * p : p;
        if (isFinite(q)) grow(t.box, t.low, t.high, q);
      }
      continue;
    }
    for (std::uint32_t k = 0; k < item.count; ++k) {
      const AcGePoint3d& p = points_[item.first + k];
      const AcGePoint3d q = m ? *m * p : p;
      if (isFinite(q)) grow(t.box, t.low, t.high, q);
    }
  }
}

// --- items ---------------------------------------------------------------------------------------

std::uint32_t Scene::penNumber(const Pen& pen) {
  const auto same = [&](const Pen& p) {
    return p.index == pen.index && p.exact == pen.exact && p.weight == pen.weight &&
           p.linetype == pen.linetype && p.linetypeScale == pen.linetypeScale;
  };
  // The latest ones are the likeliest; a drawing has few.
  const auto found = std::find_if(pens_.rbegin(), pens_.rend(), same);
  if (found != pens_.rend()) return static_cast<std::uint32_t>(pens_.rend() - found - 1);
  pens_.push_back(pen);
  return static_cast<std::uint32_t>(pens_.size() - 1);
}

void Scene::addItem(const Styled& styled, const Style* reference) {
  Style style = styled.style;
  if (reference) looks_->inherit(style, *reference);
  if (!looks_->of(style.layer).shown) return;
  const Primitive& p = styled.shape;
  SceneItem item;
  item.kind = p.kind;
  item.closed = p.closed;
  item.endless = p.endless;
  item.pen = penNumber(looks_->penOf(style));
  item.first = static_cast<std::uint32_t>(points_.size());
  item.count = static_cast<std::uint32_t>(p.points.size());
  points_.insert(points_.end(), p.points.begin(), p.points.end());
  if (p.kind == Kind::fill) {
    item.loop = static_cast<std::uint32_t>(loops_.size());
    item.loops = static_cast<std::uint32_t>(p.loops.size());
    loops_.insert(loops_.end(), p.loops.begin(), p.loops.end());
  }
  if (p.kind == Kind::text) {
    item.text = static_cast<std::uint32_t>(texts_.size());
    texts_.push_back(p.text);
  }
  items_.push_back(item);
}

// --- blocks --------------------------------------------------------------------------------------

// An entity with the content of its blocks, attributes left out, styles unresolved.
void Scene::takeEntity(std::uint32_t e, int depth, Block& out) {
  if (d_->record(e).is(Record::hidden) || inBlocks_ > kMostInBlocks) return;
  TagList tags;
  d_->parse(e, tags);
  const Style style = looks_->styleOf(e, tags);
  shape::drawShape(*d_, e, tags, [&](Primitive&& p) {
    ++inBlocks_;
    out.push_back({std::move(p), style});
  });
  const auto reference = shape::referenceOf(*d_, e, tags);
  if (!reference || depth >= shape::kDeepest) return;
  const Block& block = blockOf(reference->block(), depth + 1);
  int copies = 0;
  for (int row = 0; row < reference->rows(); ++row) {
    for (int column = 0; column < reference->columns(); ++column) {
      if (++copies > kMostCopies || inBlocks_ > kMostInBlocks) return;
      const AcGeMatrix3d m = reference->transform(column, row);
      for (const Styled& p : block) {
        ++inBlocks_;
        Styled placed = p;
        looks_->inherit(placed.style, style);
        for (AcGePoint3d& q : placed.shape.points) q = m * q;
        out.push_back(std::move(placed));
      }
    }
  }
}

const Scene::Block& Scene::blockOf(std::uint32_t id, int depth) {
  auto& slot = blocks_[id];
  if (slot) return *slot;  // a block within itself shows nothing
  slot = std::make_unique<Block>();
  Block content;
  for (std::uint32_t e = d_->structure().firstEntity(id); e;
       e = d_->structure().nextEntity(id, e)) {
    takeEntity(e, depth, content);
  }
  *slot = std::move(content);
  return *slot;
}

std::uint32_t Scene::symbolOf(std::uint32_t block, const Style& s) {
  const int exact = s.exact.red << 16 | s.exact.green << 8 | s.exact.blue;
  const auto [known, fresh] = symbolNumbers_.try_emplace(
      {block, s.layer, s.color, static_cast<std::uint32_t>(exact), s.weight, s.linetype},
      static_cast<std::uint32_t>(symbols_.size()));
  if (!fresh) return known->second;
  const std::uint32_t number = known->second;
  SceneSymbol symbol;
  symbol.items.begin = static_cast<std::uint32_t>(items_.size());
  for (const Styled& p : blockOf(block, 1)) addItem(p, &s);
  symbol.items.end = static_cast<std::uint32_t>(items_.size());
  symbols_.push_back(symbol);
  SceneThing box;
  box.box = kNothing;
  box.low = 1e300, box.high = -1e300;
  growBox(symbol.items, nullptr, box);
  symbols_[number].box = box.box;
  symbols_[number].low = box.low;
  symbols_[number].high = box.high;
  return number;
}

// --- labels --------------------------------------------------------------------------------------

ItemRange Scene::labelsOf(std::uint32_t thing, const Drawing& drawing) {
  const auto known = labels_.find(thing);
  if (known != labels_.end()) return known->second;
  d_ = &drawing;
  const std::uint32_t e = things_[thing].record;
  ItemRange range;
  range.begin = static_cast<std::uint32_t>(items_.size());
  const auto tags = borrowTags();
  d_->parse(e, *tags);
  const Style reference = looks_->styleOf(e, *tags);
  for (std::uint32_t a = d_->structure().firstPart(e); a; a = d_->structure().nextPart(e, a)) {
    const Record& r = d_->record(a);
    if (r.type != Type::attrib || r.is(Record::hidden) || !looks_->of(r.layer).shown) continue;
    d_->parse(a, *tags);
    const Style own = looks_->styleOf(a, *tags);
    shape::drawShape(*d_, a, *tags, [&](Primitive&& p) {
      addItem({std::move(p), own}, &reference);
    });
  }
  range.end = static_cast<std::uint32_t>(items_.size());
  d_ = nullptr;
  labels_[thing] = range;
  return range;
}

}  // namespace cad::view
