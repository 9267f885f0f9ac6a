// Puts PNG pictures side by side into one.
//
//   join_pictures OUT.png COLUMNS (TITLE PICTURE...)...
//
// Each title stands over a row of COLUMNS pictures, which are made to fit their places.
#include <cairo.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>

namespace {

constexpr double kWidth = 1000, kHeight = 900, kGap = 20, kTitle = 50;

// False, with a message, when the file is no picture.
bool put(cairo_t* cr, const char* path, double left, double top) {
  cairo_surface_t* const picture = cairo_image_surface_create_from_png(path);
  const bool good = cairo_surface_status(picture) == CAIRO_STATUS_SUCCESS;
  if (good) {
    const double w = cairo_image_surface_get_width(picture);
    const double h = cairo_image_surface_get_height(picture);
    const double scale = std::min({kWidth / w, kHeight / h, 1.0});
    cairo_save(cr);
    cairo_translate(cr, left, top);
    cairo_scale(cr, scale, scale);
    cairo_set_source_surface(cr, picture, 0, 0);
    cairo_pattern_set_filter(cairo_get_source(cr), CAIRO_FILTER_BEST);
    cairo_rectangle(cr, 0, 0, w, h);
    cairo_fill(cr);
    cairo_restore(cr);
  } else {
    std::cerr << "join_pictures: " << path << ": no PNG picture\n";
  }
  cairo_surface_destroy(picture);
  cairo_set_source_rgb(cr, 0.7, 0.7, 0.7);
  cairo_rectangle(cr, left, top, kWidth, kHeight);
  cairo_stroke(cr);
  return good;
}

}  // namespace

int main(int argc, char** argv) {
  const int columns = argc > 2 ? std::atoi(argv[2]) : 0;
  if (argc < 5 || columns < 1 || (argc - 3) % (columns + 1) != 0) {
    std::cerr << "usage: join_pictures OUT.png COLUMNS (TITLE PICTURE...)...\n";
    return 2;
  }
  const int rows = (argc - 3) / (columns + 1);
  const double row = kTitle + kHeight + kGap, column = kWidth + kGap;
  cairo_surface_t* const sheet =
      cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(columns * column + kGap),
                                 static_cast<int>(rows * row + kGap));
  cairo_t* const cr = cairo_create(sheet);
  cairo_set_source_rgb(cr, 1, 1, 1);
  cairo_paint(cr);
  bool good = true;
  for (int r = 0; r < rows; ++r) {
    char** const own = argv + 3 + r * (columns + 1);
    cairo_set_source_rgb(cr, 0, 0, 0);
    cairo_set_font_size(cr, kTitle * 0.6);
    cairo_move_to(cr, kGap, r * row + kTitle * 0.8);
    cairo_show_text(cr, own[0]);
    for (int c = 0; c < columns; ++c) {
      good = put(cr, own[c + 1], kGap + c * column, r * row + kTitle) && good;
    }
  }
  const bool written = cairo_surface_write_to_png(sheet, argv[1]) == CAIRO_STATUS_SUCCESS;
  if (!written) std::cerr << "join_pictures: " << argv[1] << ": cannot be written\n";
  cairo_destroy(cr);
  cairo_surface_destroy(sheet);
  return good && written ? 0 : 1;
}
