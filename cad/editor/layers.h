// The layers of a drawing as they are listed, and the changes that users make to them: by command
// or in a list.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cad/drawing/drawing.h"

namespace cad {

struct LayerInfo {
  std::u16string name;
  int colour = 7;  // 1 to 255
  bool off = false, frozen = false, locked = false;
  bool current = false;  // new entities go there
  friend bool operator==(const LayerInfo&, const LayerInfo&) = default;
};

// In the order of the table.
CAD_API std::vector<LayerInfo> layersOf(const Drawing& drawing);

// What is to be changed; the rest stays as it is.
struct LayerChange {
  std::optional<bool> off = {}, frozen = {}, locked = {};
  std::optional<int> colour = {};
};

// eKeyNotFound for a layer that is not there, eInvalidInput for a colour that is none: nothing has
// changed then.
CAD_API Acad::ErrorStatus changeLayer(Drawing& drawing, std::u16string_view name,
                                      const LayerChange& change);

}  // namespace cad
