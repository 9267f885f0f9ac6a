// Draws the symbols of a network plan: one DXF drawing a file, inserted as a block when first
// needed.
//
//   make_symbols FOLDER
//
// A plan is drawn in metres. Everything lies on layer 0 in the colour ByBlock, so that a symbol
// shows the colour of the layer it is put on, or its own when it is given one. Only the swatches of
// the legends have colours of their own.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <functional>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr int kByBlock = 0;

struct Point {
  double x = 0, y = 0;
};

// --- what a drawing consists of besides its entities ---------------------------------------------
// One tag a line, group code and value. Handles up to 1F are given here, entities begin at 30.

constexpr std::string_view kHeader = R"(0 SECTION
2 HEADER
9 $ACADVER
1 AC1027
9 $DWGCODEPAGE
3 ANSI_1252
9 $INSBASE
10 0.0
20 0.0
30 0.0
9 $HANDSEED
5 %SEED%
9 $MEASUREMENT
70 1
9 $INSUNITS
70 6
0 ENDSEC
0 SECTION
2 CLASSES
0 CLASS
1 ACDBDICTIONARYWDFLT
2 AcDbDictionaryWithDefault
3 ObjectDBX Classes
90 0
91 1
280 0
281 0
0 CLASS
1 ACDBPLACEHOLDER
2 AcDbPlaceHolder
3 ObjectDBX Classes
90 0
91 1
280 0
281 0
0 CLASS
1 LAYOUT
2 AcDbLayout
3 ObjectDBX Classes
90 0
91 2
280 0
281 0
0 ENDSEC
0 SECTION
2 TABLES
0 TABLE
2 VPORT
5 1
330 0
100 AcDbSymbolTable
70 1
0 VPORT
5 18
330 1
100 AcDbSymbolTableRecord
100 AcDbViewportTableRecord
2 *Active
70 0
10 0.0
20 0.0
11 1.0
21 1.0
12 0.0
22 0.0
13 0.0
23 0.0
14 10.0
24 10.0
15 10.0
25 10.0
16 0.0
26 0.0
36 1.0
17 0.0
27 0.0
37 0.0
40 40.0
41 1.5
42 50.0
43 0.0
44 0.0
50 0.0
51 0.0
71 0
72 1000
73 1
74 3
75 0
76 0
77 0
78 0
0 ENDTAB
0 TABLE
2 LTYPE
5 2
330 0
100 AcDbSymbolTable
70 3
0 LTYPE
5 19
330 2
100 AcDbSymbolTableRecord
100 AcDbLinetypeTableRecord
2 ByBlock
70 0
3
72 65
73 0
40 0.0
0 LTYPE
5 1A
330 2
100 AcDbSymbolTableRecord
100 AcDbLinetypeTableRecord
2 ByLayer
70 0
3
72 65
73 0
40 0.0
0 LTYPE
5 1B
330 2
100 AcDbSymbolTableRecord
100 AcDbLinetypeTableRecord
2 Continuous
70 0
3 Solid line
72 65
73 0
40 0.0
0 ENDTAB
0 TABLE
2 LAYER
5 3
330 0
100 AcDbSymbolTable
70 1
0 LAYER
5 1C
330 3
100 AcDbSymbolTableRecord
100 AcDbLayerTableRecord
2 0
70 0
62 7
6 Continuous
370 -3
390 10
0 ENDTAB
0 TABLE
2 STYLE
5 4
330 0
100 AcDbSymbolTable
70 1
0 STYLE
5 1D
330 4
100 AcDbSymbolTableRecord
100 AcDbTextStyleTableRecord
2 Standard
70 0
40 0.0
41 1.0
50 0.0
71 0
42 2.0
3 txt
4
0 ENDTAB
0 TABLE
2 VIEW
5 5
330 0
100 AcDbSymbolTable
70 0
0 ENDTAB
0 TABLE
2 UCS
5 6
330 0
100 AcDbSymbolTable
70 0
0 ENDTAB
0 TABLE
2 APPID
5 7
330 0
100 AcDbSymbolTable
70 1
0 APPID
5 1E
330 7
100 AcDbSymbolTableRecord
100 AcDbRegAppTableRecord
2 ACAD
70 0
0 ENDTAB
0 TABLE
2 DIMSTYLE
5 8
330 0
100 AcDbSymbolTable
70 1
100 AcDbDimStyleTable
71 1
0 DIMSTYLE
105 1F
330 8
100 AcDbSymbolTableRecord
100 AcDbDimStyleTableRecord
2 Standard
70 0
0 ENDTAB
0 TABLE
2 BLOCK_RECORD
5 9
330 0
100 AcDbSymbolTable
70 2
0 BLOCK_RECORD
5 13
330 9
100 AcDbSymbolTableRecord
100 AcDbBlockTableRecord
2 *Model_Space
340 16
70 0
280 1
281 0
0 BLOCK_RECORD
5 14
330 9
100 AcDbSymbolTableRecord
100 AcDbBlockTableRecord
2 *Paper_Space
340 17
70 0
280 1
281 0
0 ENDTAB
0 ENDSEC
0 SECTION
2 BLOCKS
0 BLOCK
5 20
330 13
100 AcDbEntity
8 0
100 AcDbBlockBegin
2 *Model_Space
70 0
10 0.0
20 0.0
30 0.0
3 *Model_Space
1
0 ENDBLK
5 21
330 13
100 AcDbEntity
8 0
100 AcDbBlockEnd
0 BLOCK
5 22
330 14
100 AcDbEntity
8 0
100 AcDbBlockBegin
2 *Paper_Space
70 0
10 0.0
20 0.0
30 0.0
3 *Paper_Space
1
0 ENDBLK
5 23
330 14
100 AcDbEntity
8 0
100 AcDbBlockEnd
0 ENDSEC
0 SECTION
2 ENTITIES
)";

constexpr std::string_view kDictionaries = R"(0 ENDSEC
0 SECTION
2 OBJECTS
0 DICTIONARY
5 A
330 0
100 AcDbDictionary
281 1
3 ACAD_GROUP
350 B
3 ACAD_LAYOUT
350 C
3 ACAD_MLINESTYLE
350 D
3 ACAD_PLOTSTYLENAME
350 E
0 DICTIONARY
5 B
330 A
100 AcDbDictionary
281 1
0 DICTIONARY
5 C
330 A
100 AcDbDictionary
281 1
3 Layout1
350 17
3 Model
350 16
0 DICTIONARY
5 D
330 A
100 AcDbDictionary
281 1
3 Standard
350 11
0 ACDBDICTIONARYWDFLT
5 E
330 A
100 AcDbDictionary
281 1
3 Normal
350 10
100 AcDbDictionaryWithDefault
340 10
0 ACDBPLACEHOLDER
5 10
330 E
0 MLINESTYLE
5 11
330 D
100 AcDbMlineStyle
2 Standard
70 0
3
62 256
51 90.0
52 90.0
71 2
49 0.5
62 256
6 BYLAYER
49 -0.5
62 256
6 BYLAYER
)";

constexpr std::string_view kLayout = R"(0 LAYOUT
5 %HANDLE%
102 {ACAD_REACTORS
330 C
102 }
330 C
100 AcDbPlotSettings
1
4
6
40 0.0
41 0.0
42 0.0
43 0.0
44 297.0
45 210.0
46 0.0
47 0.0
48 0.0
49 0.0
140 0.0
141 0.0
142 1.0
143 1.0
70 %PLOT%
72 1
73 0
74 5
7
75 16
76 0
77 2
78 300
147 1.0
148 0.0
149 0.0
100 AcDbLayout
1 %NAME%
70 1
71 %ORDER%
10 0.0
20 0.0
11 420.0
21 297.0
12 0.0
22 0.0
32 0.0
14 1e+20
24 1e+20
34 1e+20
15 -1e+20
25 -1e+20
35 -1e+20
146 0.0
13 0.0
23 0.0
33 0.0
16 1.0
26 0.0
36 0.0
17 0.0
27 1.0
37 0.0
76 0
330 %RECORD%
)";

// --- the drawing ---------------------------------------------------------------------------------

class Drawing {
 public:
  void line(Point a, Point b) {
    begin("LINE", "AcDbLine", kByBlock);
    point(10, a);
    point(11, b);
  }

  void circle(Point centre, double radius) {
    begin("CIRCLE", "AcDbCircle", kByBlock);
    point(10, centre);
    real(40, radius);
  }

  // `bulges` may be shorter than the points; what is missing is a straight side.
  void polyline(const std::vector<Point>& points, bool closed,
                const std::vector<double>& bulges = {}) {
    begin("LWPOLYLINE", "AcDbPolyline", kByBlock);
    tag(90, std::to_string(points.size()));
    tag(70, closed ? "1" : "0");
    for (std::size_t i = 0; i < points.size(); ++i) {
      real(10, points[i].x);
      real(20, points[i].y);
      if (i < bulges.size() && bulges[i] != 0) real(42, bulges[i]);
    }
  }

  // A filled area; the corners go round it.
  void solid(Point a, Point b, Point c, Point d, int colour = kByBlock) {
    begin("SOLID", "AcDbTrace", colour);
    point(10, a);
    point(11, b);
    point(12, d);  // the entity joins its corners crosswise
    point(13, c);
  }
  void triangle(Point a, Point b, Point c) { solid(a, b, c, c); }

  void text(Point at, double height, std::string_view value) {
    begin("TEXT", "AcDbText", kByBlock);
    textPart(at, height, value);
    tag(100, "AcDbText");
  }

  enum class Shown { yes, no };
  void attribute(std::string_view name, std::string_view prompt, Point at, double height,
                 Shown shown = Shown::yes) {
    begin("ATTDEF", "AcDbText", kByBlock);
    textPart(at, height, "");
    tag(100, "AcDbAttributeDefinition");
    tag(280, "0");
    tag(3, prompt);
    tag(2, name);
    tag(70, shown == Shown::yes ? "0" : "1");
    tag(73, "0");
    tag(74, "0");
    tag(280, "1");
  }

  bool save(const std::string& path) const {
    std::string out;
    appendTags(out, kHeader, {{"%SEED%", hex(next_)}});
    out += entities_;
    appendTags(out, kDictionaries, {});
    appendTags(out, kLayout,
               {{"%HANDLE%", "16"},
                {"%PLOT%", "1712"},
                {"%NAME%", "Model"},
                {"%ORDER%", "0"},
                {"%RECORD%", "13"}});
    appendTags(out, kLayout,
               {{"%HANDLE%", "17"},
                {"%PLOT%", "688"},
                {"%NAME%", "Layout1"},
                {"%ORDER%", "1"},
                {"%RECORD%", "14"}});
    appendTag(out, 0, "ENDSEC");
    appendTag(out, 0, "EOF");
    std::ofstream file(path, std::ios::binary);
    file << out;
    file.close();
    return !file.fail();
  }

 private:
  using Replacements = std::vector<std::pair<std::string_view, std::string>>;

  static std::string hex(unsigned value) {
    char text[16];
    std::snprintf(text, sizeof text, "%X", value);
    return text;
  }

  static void appendTag(std::string& out, int code, std::string_view value) {
    char text[16];
    std::snprintf(text, sizeof text, "%3d\n", code);
    out.append(text).append(value).append("\n");
  }

  static void appendTags(std::string& out, std::string_view lines,
                         const Replacements& replacements) {
    while (!lines.empty()) {
      const std::size_t end = lines.find('\n');
      const std::string_view row = lines.substr(0, end);
      lines.remove_prefix(end + 1);
      const std::size_t blank = row.find(' ');
      int code = 0;
      std::from_chars(row.data(), row.data() + std::min(blank, row.size()), code);
      std::string_view value = blank == row.npos ? "" : row.substr(blank + 1);
      for (const auto& [name, text] : replacements) {
        if (value == name) value = text;
      }
      appendTag(out, code, value);
    }
  }

  void tag(int code, std::string_view value) { appendTag(entities_, code, value); }
  void real(int code, double value) {
    char text[40];
    char* end = std::to_chars(text, text + sizeof text, value + 0.0, std::chars_format::fixed).ptr;
    std::string_view digits(text, static_cast<std::size_t>(end - text));
    tag(code, digits.find('.') == digits.npos ? std::string(digits) + ".0" : std::string(digits));
  }
  void point(int code, Point p) {
    real(code, p.x);
    real(code + 10, p.y);
    real(code + 20, 0);
  }
  void begin(std::string_view type, std::string_view marker, int colour) {
    tag(0, type);
    tag(5, hex(next_++));
    tag(330, "13");
    tag(100, "AcDbEntity");
    tag(8, "0");
    tag(62, std::to_string(colour));
    tag(100, marker);
  }
  void textPart(Point at, double height, std::string_view value) {
    point(10, at);
    real(40, height);
    tag(1, value);
    tag(7, "Standard");
  }

  std::string entities_;
  unsigned next_ = 0x30;
};

constexpr double kText = 2;  // height of what is written beside a symbol

// Attributes that only the calculation needs: kept with the symbol, out of the way of the plan.
void hidden(Drawing& d, Point at, std::initializer_list<std::pair<const char*, const char*>> tags) {
  for (const auto& [name, prompt] : tags) {
    d.attribute(name, prompt, at, kText, Drawing::Shown::no);
    at.y -= 2.8;
  }
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

// Two triangles tip to tip under a spindle.
void valve(Drawing& d) {
  d.polyline({{-2.5, 1.5}, {2.5, -1.5}, {2.5, 1.5}, {-2.5, -1.5}}, true);
  d.line({0, 0}, {0, 2});
  d.line({-1, 2}, {1, 2});
  d.attribute("ID", "Nome", {3.4, 0.5}, kText);
  d.attribute("TYPE", "Tipo", {3.4, -2.3}, kText);
  d.attribute("SET", "Taratura", {10.4, -2.3}, kText);
  hidden(d, {3.4, -5.1}, {{"D", "Diametro [mm]"}, {"MLOSS", "Perdita localizzata"}});
}

// A circle with a triangle that points the way of the flow.
void pump(Drawing& d) {
  d.circle({0, 0}, 2.5);
  const double x = -1.25, y = 2.5 * std::sqrt(3.0) / 2;
  d.triangle({x, -y}, {2.5, 0}, {x, y});
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
  constexpr double kHeight = 3, kSwatch = 4, kRow = 5.5, kWidth = 84, kMargin = 3;
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

Point onCircle(double radius, double degrees) {
  const double a = degrees * std::acos(-1.0) / 180;
  return {std::round(radius * std::cos(a) * 1e6) / 1e6,
          std::round(radius * std::sin(a) * 1e6) / 1e6};
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

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: make_symbols FOLDER\n";
    return 2;
  }
  for (const Symbol& symbol : symbols()) {
    Drawing drawing;
    symbol.draw(drawing);
    const std::string path = std::string(argv[1]) + "/" + symbol.name + ".dxf";
    if (!drawing.save(path)) {
      std::cerr << "make_symbols: cannot write " << path << "\n";
      return 1;
    }
  }
  return 0;
}
