// Pictures on paper: PNG, SVG and PDF by Cairo.
#pragma once

#include <optional>
#include <string>

#include "cad/view/picture.h"
#include "platform/result.h"

namespace cad::view {

enum class Format { png, svg, pdf };
enum class View { plan, isometric };  // from above; from the south-west

struct Window {
  double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
};

struct PaintOptions {
  Format format = Format::png;
  View view = View::plan;
  bool dark = false;
  int width = 1600;              // pixels, or points in SVG and PDF
  std::optional<Window> window;  // part of the plan; everything when there is none
};

// The file's bytes. An empty picture gives an empty page. The error says why Cairo could not do it.
// `unread` becomes the number of texts on the page that cannot be read: left out, or too low.
CAD_API platform::Result<std::string> paint(const Picture& picture, const PaintOptions& options,
                                            std::size_t* unread = nullptr);

// Whether there is anything to see.
CAD_API bool isEmpty(const Picture& picture);

}  // namespace cad::view
