// How entities look: what they say of colour, weight and line type themselves, what layers and
// blocks decide for them, and the pen that comes of it.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "cad/dxf/tags.h"
#include "cad/view/picture.h"

namespace cad::view {

// How an entity says it is drawn, before layer and block have had their say.
struct Style {
  static constexpr int kByBlock = 0, kByLayer = 256;
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

// Of one drawing, whose definitions must not change meanwhile.
class Looks {
 public:
  explicit Looks(const Drawing& drawing) : d_(drawing) {}

  // These layers are not shown, whatever the drawing says.
  void hide(std::uint32_t layer) { hidden_.insert(layer); }

  const LayerLook& of(std::uint32_t layer);
  Style styleOf(std::uint32_t entity, const TagList& tags) const;
  // What an entity of a block leaves open its reference decides.
  void inherit(Style& own, const Style& reference);
  Pen penOf(const Style& style);
  // Dashes of the line types that pens name.
  const std::vector<std::vector<double>>& linetypes() const { return linetypes_; }

 private:
  int linetype(const std::u16string& name);

  const Drawing& d_;
  std::set<std::uint32_t> hidden_;
  std::vector<LayerLook> looks_;
  std::map<std::u16string, int> numbers_;
  std::vector<std::vector<double>> linetypes_;
};

}  // namespace cad::view
