// Where the controls of a dialog stand, worked out from their kinds and their order.
//
// Labels and fields make two columns; buttons stand beside the one field that they follow, or else
// below; groups are boxes, side by side within others and in columns where the screen is too low;
// OK, Annulla and what is declared among them make the foot.
#pragma once

#include <memory>
#include <vector>

#include "apps/desktop/dialogs/projection.h"

class QGroupBox;
class QHBoxLayout;

namespace desktop {

struct GroupBox {
  const cad::ui::Group* group;
  QGroupBox* box;
  bool titled;  // false where the check box above it says the same
};

struct LayoutResult {
  std::vector<GroupBox> boxes;
  std::vector<Projection*> foot;  // from the left
};

// Lays the projections out in `body`, which has no layout yet. `height` is what the screen gives.
LayoutResult layOut(const std::vector<std::unique_ptr<Projection>>& controls, QWidget* body,
                    int height);

}  // namespace desktop
