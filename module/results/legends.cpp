// The legends that stand in a drawing, for who shows them elsewhere.
#include "module/host/host_drawing.h"
#include "module/host/translate.h"
#include "module/network/element_data.h"
#include "module/network/schema.h"
#include "module/results/color_classes.h"
#include "module/results/drawing_jobs.h"
#include "platform/format.h"

namespace vessora {

std::vector<DrawnLegend> drawnLegends() {
  std::vector<DrawnLegend> legends;
  for (const AcDbObjectId id : SelectionSet(u"_X", acutBuildList(1001, app::kColor, RTNONE))) {
    const Opened<AcDbBlockReference> block(id);
    if (!block) continue;
    DrawnLegend legend;
    legend.id = id;
    const Chain data(block->xData(app::kColor));
    legend.title = textAt(data, schema::kLegend, schema::Field::title);
    // A legend has five or ten classes; what its attributes lack it does not show.
    std::vector<std::u16string> ranges;
    std::u16string range;
    while (ranges.size() < 10 &&
           ReadAttribute(block.get(), platform::format(u"C%d", ranges.size() + 1), range)) {
      ranges.push_back(range);
    }
    ColorClasses colors;
    colors.count = static_cast<int>(ranges.size());
    if (colors.count != 5 && colors.count != 10) continue;
    for (int i = 0; i < colors.count; ++i) {
      legend.classes.push_back({colors.color(i), ranges[static_cast<std::size_t>(i)]});
    }
    legends.push_back(std::move(legend));
  }
  return legends;
}

}  // namespace vessora
