// A drawing as a window paints it again and again: entities with the place that they take, symbols
// kept once however often they stand there, and an index in space.
//
// Unlike a picture (picture.h), which is flat and made for one page, a scene follows its drawing: a
// change of a few entities makes a few things anew. It never holds pointers into the drawing.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <tuple>
#include <vector>

#include "cad/shape/primitive.h"
#include "cad/view/scene_index.h"

namespace cad::view {

class Looks;

struct SceneItem {
  Kind kind = Kind::line;
  bool closed = false, endless = false;
  std::uint32_t pen = 0;               // number in Scene::pens()
  std::uint32_t first = 0, count = 0;  // points, see shape::Primitive
  std::uint32_t loop = 0, loops = 0;   // of fills: sizes in Scene::loopSizes()
  std::uint32_t text = 0;              // of texts: number in Scene::texts()
};

struct ItemRange {
  std::uint32_t begin = 0, end = 0;
};

// What a block shows, in its own coordinates, in the looks that one kind of reference gives it.
struct SceneSymbol {
  ItemRange items;
  Window box;
  double low = 0, high = 0;
};

// An entity of the space.
struct SceneThing {
  std::uint32_t record = 0;  // 0: a free place
  ItemRange items;           // its own, in the world
  static constexpr std::uint32_t kNone = UINT32_MAX;
  std::uint32_t symbol = kNone;  // a block placed by `matrix`
  std::uint32_t matrix = 0;
  Window box;                // of both, in plan
  double low = 0, high = 0;  // heights
  bool endless = false;      // a ray or construction line: shown wherever the window is
  bool table = false;        // lies over the rest, on a ground of its own
  bool labels = false;       // it has attributes: see Scene::labelsOf
};

class CAD_API Scene {
 public:
  Scene();
  Scene(Scene&&) noexcept;
  Scene& operator=(Scene&&) noexcept;
  ~Scene();

  // Follows the drawing: the whole of it the first time and when definitions have changed, else
  // what has changed since. False when nothing has.
  bool update(const Drawing& drawing);
  void clear();

  const std::vector<SceneThing>& things() const { return things_; }
  const SceneIndex& index() const { return index_; }
  // The thing of an entity, or kNone.
  std::uint32_t thingOf(std::uint32_t record) const;
  // What everything covers; nothing for an empty drawing.
  std::optional<Window> bounds() const;
  double low() const { return low_; }
  double high() const { return high_; }

  const std::vector<SceneItem>& items() const { return items_; }
  const std::vector<AcGePoint3d>& points() const { return points_; }
  const std::vector<std::uint32_t>& loopSizes() const { return loops_; }
  const std::vector<shape::Text>& texts() const { return texts_; }
  const std::vector<Pen>& pens() const { return pens_; }
  const std::vector<std::vector<double>>& linetypes() const;
  const std::vector<SceneSymbol>& symbols() const { return symbols_; }
  const std::vector<AcGeMatrix3d>& matrices() const { return matrices_; }

  // The texts of an entity's attributes, read when they are first asked for and kept: their items
  // are in the world. `drawing` is the one that the scene followed last.
  ItemRange labelsOf(std::uint32_t thing, const Drawing& drawing);

 private:
  struct Styled;
  using Block = std::vector<Styled>;

  void rebuild(const Drawing& drawing);
  void make(std::uint32_t thing, std::uint32_t record);
  void show(SceneThing& thing);
  void free(std::uint32_t thing);
  std::uint64_t stateOf(std::uint32_t record) const;
  void takeEntity(std::uint32_t record, int depth, Block& out);
  const Block& blockOf(std::uint32_t block, int depth);
  std::uint32_t symbolOf(std::uint32_t block, const struct Style& reference);
  void addItem(const Styled& styled, const struct Style* reference);
  std::uint32_t penNumber(const Pen& pen);
  void growBox(const ItemRange& items, const AcGeMatrix3d* matrix, SceneThing& thing) const;

  const Drawing* d_ = nullptr;  // while it is read
  std::unique_ptr<Looks> looks_;
  std::uint32_t number_ = 0;  // of the drawing that it follows
  std::uint64_t revision_ = 0, definitions_ = 0;

  std::vector<SceneThing> things_;
  std::vector<std::uint32_t> freeThings_;
  std::vector<std::uint64_t> states_;   // of things: what they were made from
  std::vector<std::uint32_t> thingOf_;  // by record
  std::vector<SceneItem> items_;
  std::vector<AcGePoint3d> points_;
  std::vector<std::uint32_t> loops_;
  std::vector<shape::Text> texts_;
  std::vector<Pen> pens_;
  std::vector<SceneSymbol> symbols_;
  std::vector<AcGeMatrix3d> matrices_;
  mutable std::optional<Window> bounds_;
  mutable bool boundsKnown_ = false;
  std::size_t garbage_ = 0;  // points of things that are no more
  SceneIndex index_;
  double low_ = 0, high_ = 0;
  std::map<std::uint32_t, std::unique_ptr<Block>> blocks_;
  std::map<std::tuple<std::uint32_t, std::uint32_t, int, std::uint32_t, int, std::u16string>,
           std::uint32_t>
      symbolNumbers_;
  std::map<std::uint32_t, ItemRange> labels_;
  std::size_t inBlocks_ = 0;
};

}  // namespace cad::view
