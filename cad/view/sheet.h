// Sheets of paper to hand over: a picture at true scale within a frame, with title block, north
// mark, scale bar and legends, on as many pages as the scale asks for.
//
// Lengths on paper are millimetres, those of the drawing are in its own unit. The same sheet gives
// the same bytes: nothing here looks at a clock.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cad/view/painter.h"
#include "platform/result.h"

namespace cad::view {

struct Paper {
  double width = 0, height = 0;  // mm
  double print = 1;              // how large what is written beside the drawing is, A4 being 1
};
// "A4" to "A0" in any letter case, upright or lying.
CAD_API std::optional<Paper> paperNamed(std::string_view name, bool landscape);

// A legend as it stands beside the drawing: colours are host colour indices.
struct SheetLegend {
  struct Class {
    int color = 7;
    std::u16string text;
  };
  std::u16string title;
  std::vector<Class> classes;
};

// A field of the title block. Two halves in a row share a line.
struct SheetField {
  std::u16string label, value;
  bool half = false;
};

// Where the elevations of a longitudinal profile stand in a picture.
struct Elevations {
  double left = 0, datum = 0;  // what stands right of and above these belongs to them
  // The drawing area, with the level at its foot, and the height of texts.
  double areaLeft = 0, areaRight = 0, areaTop = 0, referenceLevel = 0, unit = 0;
};
// Draws them so many times larger; texts and what stands below stay as they are. Marks of levels
// come between those that are there, as near as they can be read.
CAD_API void exaggerate(Picture& picture, const Elevations& at, double times);

// The words that sheets add of themselves.
struct SheetWords {
  std::u16string title, scale, sheet, keyPlan;
};

struct Sheet {
  Paper paper;
  double metres = 1;             // of a unit of the drawing
  std::optional<double> scale;   // the number behind "1:"; the largest usual one that fits if none
  std::optional<Window> window;  // part of the plan; everything when there is none
  bool north = true;
  double leastText = 1.4;  // mm: lower texts of the drawing become so high, or are left out
  std::u16string title;
  std::vector<SheetField> fields;
  std::vector<SheetLegend> legends;
  SheetWords words;
  Format format = Format::pdf;
  int dpi = 150;  // of PNG
};

// How a picture falls onto pages.
struct SheetPages {
  double scale = 1;
  double unit = 0.001;       // of the drawing, to a millimetre of paper
  Window area;               // of the drawing on each page, mm from its upper left corner
  double left = 0, top = 0;  // of the first tile, in the drawing
  double tileWidth = 1, tileHeight = 1;  // in the drawing; pages show a little more on each side
  int columns = 1, rows = 1;
  struct Page {
    int column = 0, row = 0;  // row 0 is the northernmost
  };
  std::vector<Page> pages;  // tiles that show anything, row by row
};

// How much room one page has for the drawing, mm from the paper's corner.
CAD_API Window drawingRoom(const Sheet& sheet);

// Why a sheet cannot be made as it is asked for.
enum class SheetFault { none, tooManyPages, noRoom, tooManyPixels };
struct SheetLayout {
  SheetFault fault = SheetFault::none;
  SheetPages pages;
  Picture picture;  // with its texts as they can be read at this scale
  int leftOut = 0;  // low texts that would lie on others
};
inline constexpr std::size_t kMostPages = 400;
CAD_API SheetLayout layOutSheet(const Picture& picture, const Sheet& sheet);

// The bytes of the files: one of all pages as PDF, else one a page.
struct SheetFiles {
  std::vector<std::string> bytes;
  int leftOut = 0;  // texts that found no room on any page
};
// The error says why Cairo could not do it.
CAD_API platform::Result<SheetFiles> paintSheet(const Sheet& sheet, const SheetLayout& layout);

// "1:2000"; above true size "5:1".
CAD_API std::u16string scaleText(double scale);

}  // namespace cad::view
