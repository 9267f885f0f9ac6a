// The colours and legends by which a query shows results on the drawing.
#pragma once

#include <string_view>

#include "module/dialogs/list_res.h"
#include "module/host/notices.h"
#include "module/network/schema.h"
#include "module/results/color_classes.h"

namespace vessora {

// Does what the user has asked for in the dialog: marks filtered elements or takes colours off,
// then colours nodes and links by the classes of a result in the picked rows and places the
// legends, whose places it asks for.
void applyQueryColors(std::u16string_view network, const NetworkQuery& query);

// Kinds of legends; the drawing has at most one of each.
inline constexpr int kNodeLegend = 1, kLinkLegend = 2;

// Erases the legends of a kind. True when one of them had the title; `point` is then where it
// stood, and `scale`, if wanted, how large it was.
bool TakeColorLegend(std::u16string_view title, AcGePoint3d& point, int kind,
                     double* scale = nullptr);
// Puts a legend of 5 or 10 classes at a point; of another number of classes, none.
void InsertClassLegend(const ColorClasses& classes, std::u16string_view title,
                       const AcGePoint3d& point, int kind, double scale, Notices& notices);

}  // namespace vessora
