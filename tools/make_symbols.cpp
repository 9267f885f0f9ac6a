// Draws the symbols of a network plan: one DXF drawing a file, inserted as a block when first
// needed. And the pictures that stand in dialogs beside what they ask for: the same symbols with
// something around them, as SVG, which is sharp at any size.
//
//   make_symbols FOLDER PICTURE_FOLDER
//
// A plan is drawn in metres. Everything lies on layer 0 in the colour ByBlock, so that a symbol
// shows the colour of the layer it is put on, or its own when it is given one. Only the swatches of
// the legends have colours of their own.
#include <cmath>
#include <cstdint>
#include <functional>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "cad/api/database.h"
#include "cad/drawing/drawing.h"
#include "cad/view/painter.h"
#include "platform/files.h"

namespace {

constexpr int kByBlock = 0;
// In pictures: what a dialog is about, and what is around it.
constexpr int kSubject = 5, kAround = 8;

struct Point {
  double x = 0, y = 0;
};

// A new drawing of the host's, and the few entities that symbols are made of.
class Drawing {
 public:
  Drawing() : database_(true), drawing_(database_.drawing()), tags_(cad::borrowTags()) {}

  // From here on it is a picture: without texts, in this colour.
  void paintWith(int colour) {
    picture_ = true;
    ink_ = colour;
  }

  void line(Point a, Point b) {
    begin("LINE", "AcDbLine", ink_);
    point(10, a);
    point(11, b);
    add();
  }

  void circle(Point centre, double radius) {
    begin("CIRCLE", "AcDbCircle", ink_);
    point(10, centre);
    tags_->addReal(40, radius);
    add();
  }

  // `bulges` may be shorter than the points; what is missing is a straight side.
  void polyline(const std::vector<Point>& points, bool closed,
                const std::vector<double>& bulges = {}) {
    begin("LWPOLYLINE", "AcDbPolyline", ink_);
    tags_->addInteger(90, static_cast<std::int64_t>(points.size()));
    tags_->addInteger(70, closed ? 1 : 0);
    for (std::size_t i = 0; i < points.size(); ++i) {
      tags_->addReal(10, points[i].x);
      tags_->addReal(20, points[i].y);
      if (i < bulges.size() && bulges[i] != 0) tags_->addReal(42, bulges[i]);
    }
    add();
  }

  // A filled area; the corners go round it.
  void solid(Point a, Point b, Point c, Point d, int colour = -1) {
    begin("SOLID", "AcDbTrace", colour < 0 ? ink_ : colour);
    point(10, a);
    point(11, b);
    point(12, d);  // the entity joins its corners crosswise
    point(13, c);
    add();
  }
  void triangle(Point a, Point b, Point c) { solid(a, b, c, c); }

  enum class Shown { yes, no };
  void attribute(std::string_view name, std::string_view prompt, Point at, double height,
                 Shown shown = Shown::yes) {
    if (picture_) return;
    begin("ATTDEF", "AcDbText", kByBlock);
    point(10, at);
    tags_->addReal(40, height);
    tags_->addAscii(1, "");
    tags_->addAscii(7, "Standard");
    tags_->addAscii(100, "AcDbAttributeDefinition");
    tags_->addInteger(280, 0);
    tags_->addAscii(3, prompt);
    tags_->addAscii(2, name);
    tags_->addInteger(70, shown == Shown::yes ? 0 : 1);
    tags_->addInteger(73, 0);
    tags_->addInteger(74, 0);
    tags_->addInteger(280, 1);
    add();
  }

  platform::Result<void> save(const std::string& path) {
    return drawing_.save(path, {.keepBackup = false});
  }
  // A square about the origin.
  platform::Result<void> savePicture(const std::string& path, double halfWidth) {
    cad::view::PaintOptions options;
    options.format = cad::view::Format::svg;
    options.width = 96;
    options.window = {-halfWidth, -halfWidth, halfWidth, halfWidth};
    const auto bytes = cad::view::paint(cad::view::takePicture(drawing_), options);
    if (!bytes) return platform::Error{bytes.error()};
    return platform::writeFile(path, *bytes);
  }

 private:
  void begin(std::string_view type, std::string_view marker, int colour) {
    tags_->create(drawing_.format(), type);
    tags_->addAscii(100, "AcDbEntity");
    tags_->addAscii(8, "0");
    tags_->addInteger(62, colour);
    tags_->addAscii(100, marker);
  }
  void point(int code, Point p) { tags_->addPoint(code, {p.x, p.y, 0}); }
  void add() {
    const std::uint32_t space = drawing_.structure().modelSpace();
    drawing_.writer().addComplete(*tags_, {.before = drawing_.structure().endOf(space),
                                           .owner = space,
                                           .space = true,
                                           .entity = true});
  }

  AcDbDatabase database_;
  cad::Drawing& drawing_;
  cad::BorrowedTags tags_;
  bool picture_ = false;
  int ink_ = kByBlock;
};

constexpr double kText = 2;  // height of what is written beside a symbol

// Attributes that only the calculation needs: kept with the symbol, out of the way of the plan.
void hidden(Drawing& d, Point at, std::initializer_list<std::pair<const char*, const char*>> tags) {
  for (const auto& [name, prompt] : tags) {
    d.attribute(name, prompt, at, kText, Drawing::Shown::no);
    at.y -= 2.8;
  }
}

Point onCircle(double radius, double degrees) {
  const double a = degrees * std::acos(-1.0) / 180;
  return {std::round(radius * std::cos(a) * 1e6) / 1e6,
          std::round(radius * std::sin(a) * 1e6) / 1e6};
}

// --- nodes and links -----------------------------------------------------------------------------

// A ring with a dot on the very node.
void junction(Drawing& d) {
  d.circle({0, 0}, 1);
  d.circle({0, 0}, 0.25);
  d.solid({-0.25, 0}, {0, -0.25}, {0.25, 0}, {0, 0.25});
  // Above the node's own height: tables of results hang from it to the right and below.
  d.attribute("ID", "Nome", {1.8, 3.3}, kText);
  d.attribute("EL", "Quota [m]", {1.8, 0.5}, kText);
  hidden(d, {1.8, -5.1}, {{"BD", "Portata base [l/s]"}});
}

// An open basin with the mark of a water level, for what supplies at a fixed head.
void reservoir(Drawing& d) {
  d.polyline({{-3.5, 2}, {-3.5, -2.5}, {3.5, -2.5}, {3.5, 2}}, false);
  d.line({-3.5, 0.8}, {3.5, 0.8});
  d.line({-2, -0.4}, {2, -0.4});
  d.line({-1, -1.2}, {1, -1.2});
  d.polyline({{0, 0.8}, {-1, 2.6}, {1, 2.6}}, true);
  d.attribute("ID", "Nome", {4.5, 3.3}, kText);
  d.attribute("TH", "Carico [m]", {4.5, 0.5}, kText);
}

// A closed body with a domed roof, filled to its level.
void tank(Drawing& d) {
  const double dome = 1.2 / 3;  // bulge of an arc 1.2 high on a half width of 3
  d.polyline({{-3, -2.8}, {3, -2.8}, {3, 1.8}, {-3, 1.8}}, true, {0, 0, dome, 0});
  d.line({-3, 1.8}, {3, 1.8});
  d.line({-3, 0.3}, {3, 0.3});
  d.solid({-2.7, -2.5}, {2.7, -2.5}, {2.7, 0}, {-2.7, 0});
  d.attribute("ID", "Nome", {4.2, 3.3}, kText);
  d.attribute("EL", "Quota fondo [m]", {4.2, 0.5}, kText);
  hidden(d, {4.2, -5.1},
         {{"D", "Diametro [m]"},
          {"INITL", "Livello iniziale [m]"},
          {"MINL", "Livello minimo [m]"},
          {"MAXL", "Livello massimo [m]"},
          {"MINVOL", "Volume minimo [m3]"}});
}

// Symbols of links stand upright on pipes of any direction, so they look the same from four sides.

// Two triangles tip to tip, along and across: one of the pairs lies on the pipe.
void valve(Drawing& d) {
  d.polyline({{-2.5, 1.5}, {2.5, -1.5}, {2.5, 1.5}, {-2.5, -1.5}}, true);
  d.polyline({{-1.5, 2.5}, {1.5, -2.5}, {-1.5, -2.5}, {1.5, 2.5}}, true);
  d.attribute("ID", "Nome", {3.4, 0.5}, kText);
  d.attribute("TYPE", "Tipo", {3.4, -2.3}, kText);
  d.attribute("SET", "Taratura", {10.4, -2.3}, kText);
  hidden(d, {3.4, -5.1}, {{"D", "Diametro [mm]"}, {"MLOSS", "Perdita localizzata"}});
}

// A wheel of four blades in its housing. Which way it pumps the link tells.
void pump(Drawing& d) {
  constexpr double kTip = 2.1, kRoot = 1.2;
  d.circle({0, 0}, 2.5);
  for (const int angle : {45, 135, 225, 315}) {
    d.triangle({0, 0}, onCircle(kTip, angle), onCircle(kRoot, angle + 50));
  }
  d.attribute("ID", "Nome", {3.4, 0.5}, kText);
  d.attribute("ST", "Stato", {3.4, -2.3}, kText);
}

// An arrow along the diagonal, ending or beginning short of the node at the origin.
void arrow(Drawing& d, Point tail, Point tip) {
  const double length = std::hypot(tip.x - tail.x, tip.y - tail.y);
  const Point along{(tip.x - tail.x) / length, (tip.y - tail.y) / length};
  const Point neck{tip.x - 2.4 * along.x, tip.y - 2.4 * along.y};
  d.line(tail, neck);
  d.triangle(tip, {neck.x - 0.8 * along.y, neck.y + 0.8 * along.x},
             {neck.x + 0.8 * along.y, neck.y - 0.8 * along.x});
}

// Both stand to the left of the node: its texts are to the right.
void inflow(Drawing& d) { arrow(d, {-5.5, 5.5}, {-1.2, 1.2}); }
void outflow(Drawing& d) { arrow(d, {-1.2, -1.2}, {-5.5, -5.5}); }

// --- legends -------------------------------------------------------------------------------------

// A title over a scale of colours with its highest class on top. The insertion point is the upper
// left corner. `colours` run from the lowest class upward, as do the attributes C1, C2...
void legend(Drawing& d, const std::vector<int>& colours) {
  constexpr double kHeight = 3, kSwatch = 4, kRow = 5.5, kWidth = 70, kMargin = 3;
  constexpr double kTitleEnd = -kHeight - 5;
  d.attribute("TITOLO", "Titolo", {kMargin, kTitleEnd + 2.5}, kHeight);
  const auto rows = static_cast<double>(colours.size());
  const double bottom = kTitleEnd - 2 * kMargin - rows * kRow + (kRow - kSwatch);
  d.polyline({{0, 0}, {kWidth, 0}, {kWidth, bottom}, {0, bottom}}, true);
  d.line({0, kTitleEnd}, {kWidth, kTitleEnd});
  double y = bottom + kMargin;
  for (std::size_t i = 0; i < colours.size(); ++i, y += kRow) {
    const Point a{kMargin, y}, b{kMargin + 10, y}, c{kMargin + 10, y + kSwatch},
        e{kMargin, y + kSwatch};
    d.solid(a, b, c, e, colours[i]);
    d.polyline({a, b, c, e}, true);
    const std::string number = std::to_string(i + 1);
    d.attribute("C" + number, "Classe " + number, {kMargin + 13, y + 0.5}, kHeight);
  }
}

// --- manhole covers ------------------------------------------------------------------------------
// In their true size, in metres. A cover has its name and code beside it and keeps its description.

void coverTexts(Drawing& d, double halfWidth) {
  d.attribute("NOME", "Nome", {halfWidth + 0.3, 0.15}, 0.6);
  d.attribute("CODICE", "Codice", {halfWidth + 0.3, -0.75}, 0.6);
  d.attribute("DESCRIZIONE", "Descrizione", {halfWidth + 0.3, -1.65}, 0.6, Drawing::Shown::no);
}

void rectangle(Drawing& d, double halfWidth, double halfHeight) {
  d.polyline({{-halfWidth, -halfHeight},
              {halfWidth, -halfHeight},
              {halfWidth, halfHeight},
              {-halfWidth, halfHeight}},
             true);
}

void roundInRound(Drawing& d) {
  d.circle({0, 0}, 0.425);
  d.circle({0, 0}, 0.32);
  d.circle({0, 0}, 0.30);
  coverTexts(d, 0.425);
}

void roundInSquare(Drawing& d) {
  rectangle(d, 0.425, 0.425);
  d.circle({0, 0}, 0.32);
  d.circle({0, 0}, 0.30);
  coverTexts(d, 0.425);
}

void squareInSquare(Drawing& d) {
  rectangle(d, 0.425, 0.425);
  rectangle(d, 0.30, 0.30);
  d.line({-0.06, -0.24}, {0.06, -0.24});  // lifting holes
  d.line({-0.06, 0.24}, {0.06, 0.24});
  coverTexts(d, 0.425);
}

void twoTriangles(Drawing& d) {
  rectangle(d, 0.425, 0.425);
  rectangle(d, 0.35, 0.35);
  d.line({-0.35, -0.35}, {0.35, 0.35});
  coverTexts(d, 0.425);
}

void fourTriangles(Drawing& d) {
  rectangle(d, 0.55, 0.55);
  rectangle(d, 0.45, 0.45);
  d.line({-0.45, -0.45}, {0.45, 0.45});
  d.line({-0.45, 0.45}, {0.45, -0.45});
  coverTexts(d, 0.55);
}

void twoLeaves(Drawing& d) {
  rectangle(d, 0.70, 0.45);
  rectangle(d, 0.60, 0.35);
  d.line({0, -0.35}, {0, 0.35});
  d.circle({-0.3, 0}, 0.04);
  d.circle({0.3, 0}, 0.04);
  coverTexts(d, 0.70);
}

void ribbedRound(Drawing& d) {
  d.circle({0, 0}, 0.425);
  d.circle({0, 0}, 0.30);
  d.circle({0, 0}, 0.10);
  for (int a = 0; a < 360; a += 30) d.line(onCircle(0.10, a), onCircle(0.30, a));
  coverTexts(d, 0.425);
}

void gratedRound(Drawing& d) {
  d.circle({0, 0}, 0.425);
  d.circle({0, 0}, 0.30);
  for (int i = -2; i <= 2; ++i) {
    const double y = i * 0.1, x = std::round(std::sqrt(0.09 - y * y) * 1e6) / 1e6;
    d.line({-x, y}, {x, y});
  }
  coverTexts(d, 0.425);
}

struct Symbol {
  const char* name;
  std::function<void(Drawing&)> draw;
};

const std::vector<Symbol>& symbols() {
  static const std::vector<Symbol> all = {
      {"Junc", junction},
      {"Resv", reservoir},
      {"Tank", tank},
      {"Valv", valve},
      {"Pump", pump},
      {"Q_IN", inflow},
      {"Q_OUT", outflow},
      {"LEG_5",
       [](Drawing& d) {
         legend(d, {5, 4, 3, 2, 1});
       }},
      {"LEG_10",
       [](Drawing& d) {
         legend(d, {180, 150, 130, 110, 90, 60, 50, 40, 30, 10});
       }},
      {"ChiusinoD400_01", roundInRound},
      {"ChiusinoD400_02", roundInSquare},
      {"ChiusinoD400_03", squareInSquare},
      {"ChiusinoD400_04", twoTriangles},
      {"ChiusinoD400_05", fourTriangles},
      {"ChiusinoD400_06", twoLeaves},
      {"ChiusinoD400_07", ribbedRound},
      {"ChiusinoD400_08", gratedRound},
  };
  return all;
}

// --- pictures ------------------------------------------------------------------------------------

void nodePicture(Drawing& d) {
  d.paintWith(kAround);
  d.line({-9, -5}, {-0.9, -0.5});
  d.line({9, -3}, {0.95, -0.3});
  d.line({2, 9}, {0.2, 0.95});
  d.paintWith(kSubject);
  junction(d);
}

void reservoirPicture(Drawing& d) {
  d.paintWith(kAround);
  d.line({3.5, -1.7}, {9.5, -1.7});
  d.paintWith(kSubject);
  reservoir(d);
}

void tankPicture(Drawing& d) {
  d.paintWith(kAround);
  d.polyline({{0, -2.8}, {0, -6}, {9.5, -6}}, false);
  d.paintWith(kSubject);
  tank(d);
}

void pipePicture(Drawing& d) {
  d.paintWith(kAround);
  d.circle({-8, -4}, 1);
  d.circle({8, 4}, 1);
  d.paintWith(kSubject);
  d.polyline({{-7.3, -2.9}, {6.6, 4.05}, {7.3, 2.9}, {-6.6, -4.05}}, true);
}

void alongPipe(Drawing& d, double halfWidth) {
  d.paintWith(kAround);
  d.line({-9.5, 0}, {-halfWidth, 0});
  d.line({halfWidth, 0}, {9.5, 0});
  d.paintWith(kSubject);
}

void valvePicture(Drawing& d) {
  alongPipe(d, 2.5);
  valve(d);
}

void pumpPicture(Drawing& d) {
  alongPipe(d, 2.5);
  pump(d);
}

struct DialogPicture {
  std::string name;
  std::function<void(Drawing&)> draw;
  double halfWidth;
};

// By the names under which dialogs show them; manhole covers have those of their blocks.
std::vector<DialogPicture> pictures() {
  constexpr double kCover = 0.8;
  std::vector<DialogPicture> all = {
      {"nodo", nodePicture, 5},      {"serbatoio", reservoirPicture, 6}, {"vasca", tankPicture, 7},
      {"condotta", pipePicture, 10}, {"valvola", valvePicture, 5},       {"pompa", pumpPicture, 5},
  };
  for (const Symbol& symbol : symbols()) {
    if (!std::string_view(symbol.name).starts_with("Chiusino")) continue;
    all.push_back({symbol.name,
                   [&symbol](Drawing& d) {
                     d.paintWith(kSubject);
                     symbol.draw(d);
                   },
                   kCover});
  }
  return all;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: make_symbols FOLDER PICTURE_FOLDER\n";
    return 2;
  }
  const auto failed = [](const platform::Result<void>& saved) {
    if (!saved) std::cerr << "make_symbols: " << saved.error() << "\n";
    return !saved;
  };
  for (const Symbol& symbol : symbols()) {
    Drawing drawing;
    symbol.draw(drawing);
    if (failed(drawing.save(std::string(argv[1]) + "/" + symbol.name + ".dxf"))) return 1;
  }
  for (const DialogPicture& picture : pictures()) {
    Drawing drawing;
    picture.draw(drawing);
    const std::string path = std::string(argv[2]) + "/" + picture.name + ".svg";
    if (failed(drawing.savePicture(path, picture.halfWidth))) return 1;
  }
  return 0;
}
