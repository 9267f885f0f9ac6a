// Selection by a filter: which entities of the spaces pass, found through the indexes of the
// database rather than by looking at every entity.
#pragma once

#include <string>
#include <vector>

#include "cad/api/resbuf.h"
#include "cad/drawing/drawing.h"

namespace cad {

// A filter as a tree: items test one property, groups join them. See acedSSGet for its items.
class CAD_API Filter {
 public:
  // From a chain; null passes everything. An operator that is not closed, or that is unknown, makes
  // the filter invalid: it passes nothing.
  explicit Filter(const resbuf* chain);
  bool valid() const { return valid_; }
  // Those of some entities that pass, in their order.
  std::vector<std::uint32_t> passing(const Drawing& drawing,
                                     const std::vector<std::uint32_t>& entities) const;
  // All entities of the spaces that pass, in drawing order.
  std::vector<std::uint32_t> select(Drawing& drawing) const;

 private:
  enum class Kind {
    all,
    any,
    one,
    none,
    layer,
    block,
    type,
    application,
    color,
    linetype,
    paper,
    layout
  };
  struct Node {
    Kind kind = Kind::all;
    std::u16string text;
    int number = 0;
    std::vector<Node> children;
  };
  bool parse(const resbuf*& at, Node& group, std::u16string_view closing);
  static bool test(const Drawing& d, std::uint32_t entity, const Node& node);
  static void resolve(const Drawing& d, Node& node);
  static std::size_t estimate(Drawing& d, const Node& node);
  static void collect(Drawing& d, const Node& node, std::vector<std::uint32_t>& out);

  Node root_;
  bool valid_ = true;
};

}  // namespace cad
