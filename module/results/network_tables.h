// Small tables beside the elements of a network: a title row, then one row of label and value for
// each quantity.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "module/host/host_drawing.h"

namespace vessora {

// Values that leave their row out. A genuine value that equals one of them hides its row as well.
inline constexpr double kNoValue = -99999.0;
inline constexpr char16_t kNoText[] = u"NONE";

// The style of all tables of the product.
inline constexpr char16_t kTableStyle[] = u"HN-EPA";

// Where a table stands and how large it is, in drawing units.
struct TablePlace {
  AcGePoint3d position;  // upper left corner
  double rowHeight = 0, columnWidth = 0;
  std::u16string_view layer;
};

// Makes the style unless the drawing has it: what the first table asks for stays in force. Heights
// in drawing units, colours as host indices.
void makeTableStyle(std::u16string_view name, double textHeight, int titleColor);

// Each draws one table; what goes wrong becomes a notice.
void DrawPipeDataTable(std::u16string_view styleName, std::u16string_view title, double length,
                       double diameter, double roughness, double minorLoss,
                       std::u16string_view status, const TablePlace& place, Notices& notices);
void DrawNodeResultTable(std::u16string_view styleName, std::u16string_view id, double demand,
                         double head, double pressure, std::u16string_view quality,
                         const TablePlace& place, Notices& notices);
void DrawLinkResultTable(std::u16string_view styleName, std::u16string_view id, double flow,
                         double velocity, double headloss, std::u16string_view status,
                         const TablePlace& place, Notices& notices);

// Texts row by row. The first row has one cell, which becomes the title.
using TableGrid = std::vector<std::vector<std::u16string>>;
void drawTable(std::u16string_view styleName, const TableGrid& grid, const TablePlace& place,
               Notices& notices);

}  // namespace vessora
