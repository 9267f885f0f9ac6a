// Drawings written for the tests: the smallest complete ones of the old and the new form, and a
// symbol.
#pragma once

#include <string>

#include "tests/cad/drawing_testing.h"

namespace testing_drawings {

// A drawing without subclass markers: two layers, a block with an attribute, a reference with its
// attribute, a line with extended data, an entity of a kind that nothing knows.
inline std::string oldDrawing(std::string_view end = "\n") {
  return tags(R"(0 SECTION
2 HEADER
9 $ACADVER
1 AC1009
9 $CLAYER
8 0
9 $HANDLING
70 1
9 $HANDSEED
5 80
0 ENDSEC
0 SECTION
2 TABLES
0 TABLE
2 LTYPE
70 1
0 LTYPE
2 CONTINUOUS
70 64
3 Solid line
72 65
73 0
40 0.0
0 ENDTAB
0 TABLE
2 LAYER
70 2
0 LAYER
2 0
70 0
62 7
6 CONTINUOUS
0 LAYER
2 MURI
70 0
62 3
6 CONTINUOUS
0 ENDTAB
0 TABLE
2 STYLE
70 1
0 STYLE
2 STANDARD
70 0
40 0.0
41 1.0
50 0.0
71 0
42 2.5
3 txt
4
0 ENDTAB
0 TABLE
2 APPID
70 1
0 APPID
2 ACAD
70 0
0 APPID
2 ALTRA
70 0
0 ENDTAB
0 ENDSEC
0 SECTION
2 BLOCKS
0 BLOCK
8 0
5 20
2 PORTA
70 2
10 1.0
20 1.0
30 0.0
3 PORTA
0 LINE
8 0
5 21
10 0.0
20 0.0
30 0.0
11 2.0
21 0.0
31 0.0
0 ATTDEF
8 0
5 22
10 1.0
20 2.0
30 0.0
40 0.5
1 P
3 Sigla
2 SIGLA
70 0
0 ENDBLK
8 0
5 23
0 ENDSEC
0 SECTION
2 ENTITIES
0 INSERT
8 MURI
5 30
66 1
2 PORTA
10 10.0
20 10.0
30 0.0
0 ATTRIB
8 MURI
5 31
10 10.0
20 11.0
30 0.0
40 0.5
1 P1
2 SIGLA
70 0
0 SEQEND
8 MURI
5 32
0 LINE
8 MURI
5 33
10 0.0
20 0.0
30 0.0
11 1.0000000000000001
21 5.0
31 0.0
1001 ALTRA
1000 a
1020 7.5
1040 1.0
0 SHAPE
8 0
5 34
10 0.0
20 0.0
30 0.0
40 1.0
2 SEGNO
0 ENDSEC
0 EOF
)",
              end);
}

// A symbol to insert: nested block, definition of an attribute, layer, line type and text style of
// its own, base point.
inline Database symbolDrawing() {
  auto database = std::make_unique<AcDbDatabase>();
  cad::Drawing& d = database->drawing();
  const auto entry = [&](cad::Type type, std::string_view lines) {
    cad::TagList t;
    t.create(d.format(), lines.substr(0, lines.find('|')));
    lines.remove_prefix(lines.find('|') + 1);
    while (!lines.empty()) {
      const std::string_view one = lines.substr(0, lines.find('|'));
      lines.remove_prefix(std::min(lines.size(), one.size() + 1));
      const std::size_t blank = one.find(' ');
      t.addAscii(std::stoi(std::string(one.substr(0, blank))), one.substr(blank + 1));
    }
    d.structure().addEntry(type, t);
  };
  entry(cad::Type::ltype,
        "LTYPE|100 AcDbSymbolTableRecord|100 AcDbLinetypeTableRecord|2 PUNTI|70 0|3 . . .|72 65|73 "
        "2|40 1.0|"
        "49 0.0|74 0|49 -1.0|74 0");
  entry(cad::Type::layer,
        "LAYER|100 AcDbSymbolTableRecord|100 AcDbLayerTableRecord|2 SIMBOLI|70 0|62 5|6 PUNTI");
  entry(cad::Type::style,
        "STYLE|100 AcDbSymbolTableRecord|100 AcDbTextStyleTableRecord|2 SCRITTE|70 0|40 0.0|41 "
        "1.0|50 0.0|"
        "71 0|42 2.5|3 romans|4 ");
  const auto entity = [&](const cad::BlockInfo* block, std::string_view lines) {
    cad::TagList t;
    t.create(d.format(), lines.substr(0, lines.find('|')));
    lines.remove_prefix(lines.find('|') + 1);
    while (!lines.empty()) {
      const std::string_view one = lines.substr(0, lines.find('|'));
      lines.remove_prefix(std::min(lines.size(), one.size() + 1));
      const std::size_t blank = one.find(' ');
      t.addAscii(std::stoi(std::string(one.substr(0, blank))), one.substr(blank + 1));
    }
    const std::uint32_t owner = block ? block->id : d.structure().modelSpace();
    d.writer().addComplete(t, {.before = block ? block->end : d.structure().endOf(owner),
                               .owner = owner,
                               .space = !block,
                               .entity = true});
  };
  const cad::BlockInfo nested = d.structure().addBlock(u"FRECCIA", {0, 0, 0});
  entity(
      &nested,
      "LWPOLYLINE|100 AcDbEntity|8 SIMBOLI|6 PUNTI|62 1|370 25|420 255|100 AcDbPolyline|90 2|70 0|"
      "43 0.2|38 0.5|10 0.0|20 0.0|42 0.5|10 1.0|20 0.0");
  entity(nullptr, "CIRCLE|100 AcDbEntity|8 SIMBOLI|100 AcDbCircle|10 1.0|20 0.0|30 0.0|40 2.0");
  entity(nullptr,
         "INSERT|100 AcDbEntity|8 SIMBOLI|100 AcDbBlockReference|2 FRECCIA|10 1.0|20 1.0|30 0.0|50 "
         "90.0");
  entity(nullptr,
         "TEXT|100 AcDbEntity|8 0|100 AcDbText|10 0.0|20 0.0|30 0.0|40 1.0|1 H|7 SCRITTE|72 1|"
         "11 0.5|21 0.0|31 0.0|100 AcDbText|73 2");
  entity(nullptr,
         "ATTDEF|100 AcDbEntity|8 0|100 AcDbText|10 3.0|20 0.0|30 0.0|40 1.0|1 ?|7 SCRITTE|72 1|"
         "11 4.0|21 0.0|31 0.0|100 AcDbAttributeDefinition|280 0|3 Nome|2 ID|70 0|73 0|74 2|280 1");
  cad::TagList header;
  cad::TagRange range;
  if (d.header().variable("$INSBASE", header, range)) d.header().setText("$INSBASE", u"1.0");
  return database;
}

}  // namespace testing_drawings
