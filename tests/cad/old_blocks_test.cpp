// Blocks from drawings of old releases, which have no subclass markers: every kind of entity comes
// over with its tags where newer releases have them.
#include <gtest/gtest.h>

#include "tests/cad/drawing_testing.h"

namespace {

using namespace testing_drawings;

Database oldSymbol(const std::string& entities) {
  return load(
      tags("0 SECTION\n2 TABLES\n0 TABLE\n2 LTYPE\n70 1\n0 LTYPE\n2 TRATTI\n70 0\n3 x\n72 65\n"
           "73 2\n40 2\n49 1\n49 -1\n0 ENDTAB\n0 ENDSEC\n0 SECTION\n2 ENTITIES\n") +
      tags(entities) + tags("0 ENDSEC\n0 EOF"));
}

// The tags of an object, one "code value" a line, without handle and owner.
std::string tagsOf(const cad::Drawing& d, std::uint32_t record) {
  cad::TagList t;
  d.parse(record, t);
  std::string out;
  for (int i = 0; i < t.size(); ++i) {
    if (t[i].code == 5 || t[i].code == 330) continue;
    out += std::to_string(t[i].code) + " " + std::string(t[i].bytes()) + "\n";
  }
  return out;
}

// Everything in a block, parts included, in file order.
std::string contentOf(AcDbDatabase& db, AcDbObjectId block) {
  const cad::Drawing& d = db.drawing();
  const cad::BlockInfo& info = *d.structure().block(block.index());
  std::string out;
  for (std::uint32_t i = d.record(info.begin).next; i != info.end; i = d.record(i).next) {
    out += tagsOf(d, i);
  }
  return out;
}

TEST(OldBlocks, EachKindGetsItsMarkersAndKeepsEveryTag) {
  const struct {
    const char *old, *now;
  } rows[] = {
      {"0 LINE\n8 0\n6 TRATTI\n62 3\n10 1.0\n20 2.0\n11 3.0\n21 4.0",
       "0 LINE\n100 AcDbEntity\n8 0\n6 TRATTI\n62 3\n100 AcDbLine\n10 1.0\n20 2.0\n11 3.0\n21 "
       "4.0\n"},
      {"0 POINT\n8 0\n10 1.0\n20 2.0",
       "0 POINT\n100 AcDbEntity\n8 0\n100 AcDbPoint\n10 1.0\n20 2.0\n"},
      {"0 CIRCLE\n8 0\n10 1.0\n20 2.0\n40 3.0",
       "0 CIRCLE\n100 AcDbEntity\n8 0\n100 AcDbCircle\n10 1.0\n20 2.0\n40 3.0\n"},
      {"0 ARC\n8 0\n10 1.0\n20 2.0\n40 3.0\n50 10.0\n51 80.0",
       "0 ARC\n100 AcDbEntity\n8 0\n100 AcDbCircle\n10 1.0\n20 2.0\n40 3.0\n100 AcDbArc\n50 10.0\n"
       "51 80.0\n"},
      {"0 SOLID\n8 0\n10 0.0\n20 0.0\n11 1.0\n21 0.0\n12 0.0\n22 1.0\n13 1.0\n23 1.0",
       "0 SOLID\n100 AcDbEntity\n8 0\n100 AcDbTrace\n10 0.0\n20 0.0\n11 1.0\n21 0.0\n12 0.0\n22 "
       "1.0\n13 1.0\n23 1.0\n"},
      {"0 3DFACE\n8 0\n10 0.0\n20 0.0\n11 1.0\n21 0.0\n12 0.0\n22 1.0\n13 1.0\n23 1.0",
       "0 3DFACE\n100 AcDbEntity\n8 0\n100 AcDbFace\n10 0.0\n20 0.0\n11 1.0\n21 0.0\n12 0.0\n22 "
       "1.0\n13 1.0\n23 1.0\n"},
      {"0 TEXT\n8 0\n10 1.0\n20 2.0\n40 3.0\n1 x\n72 1\n11 4.0\n21 5.0\n73 2",
       "0 TEXT\n100 AcDbEntity\n8 0\n100 AcDbText\n10 1.0\n20 2.0\n40 3.0\n1 x\n72 1\n11 4.0\n21 "
       "5.0\n100 AcDbText\n73 2\n"},
      {"0 ATTDEF\n8 0\n10 1.0\n20 2.0\n40 3.0\n1 x\n3 Nome\n2 ID\n70 1\n73 0\n74 2",
       "0 ATTDEF\n100 AcDbEntity\n8 0\n100 AcDbText\n10 1.0\n20 2.0\n40 3.0\n1 x\n100 "
       "AcDbAttributeDefinition\n3 Nome\n2 ID\n70 1\n73 0\n74 2\n"},
      {"0 POLYLINE\n8 0\n66 1\n70 8\n0 VERTEX\n8 0\n10 1.0\n20 2.0\n30 3.0\n70 32\n0 SEQEND\n8 0",
       "0 POLYLINE\n100 AcDbEntity\n8 0\n100 AcDb3dPolyline\n66 1\n70 8\n0 VERTEX\n100 "
       "AcDbEntity\n8 "
       "0\n100 AcDbVertex\n100 AcDb3dPolylineVertex\n10 1.0\n20 2.0\n30 3.0\n70 32\n0 SEQEND\n100 "
       "AcDbEntity\n8 0\n"},
      {"0 POLYLINE\n8 0\n66 1\n70 64\n71 1\n72 1\n0 VERTEX\n8 0\n10 1.0\n20 2.0\n70 192\n0 "
       "VERTEX\n8 "
       "0\n10 0.0\n20 0.0\n70 128\n71 1\n0 SEQEND\n8 0",
       "0 POLYLINE\n100 AcDbEntity\n8 0\n100 AcDbPolyFaceMesh\n66 1\n70 64\n71 1\n72 1\n0 "
       "VERTEX\n100 "
       "AcDbEntity\n8 0\n100 AcDbVertex\n100 AcDbPolyFaceMeshVertex\n10 1.0\n20 2.0\n70 192\n0 "
       "VERTEX\n100 AcDbEntity\n8 0\n100 AcDbFaceRecord\n10 0.0\n20 0.0\n70 128\n71 1\n0 "
       "SEQEND\n100 "
       "AcDbEntity\n8 0\n"},
      {"0 POLYLINE\n8 0\n66 1\n70 1\n0 VERTEX\n8 0\n10 1.0\n20 2.0\n42 0.5\n0 SEQEND\n8 0",
       "0 POLYLINE\n100 AcDbEntity\n8 0\n100 AcDb2dPolyline\n66 1\n70 1\n0 VERTEX\n100 "
       "AcDbEntity\n8 "
       "0\n100 AcDbVertex\n100 AcDb2dVertex\n10 1.0\n20 2.0\n42 0.5\n0 SEQEND\n100 AcDbEntity\n8 "
       "0\n"},
  };
  for (const auto& row : rows) {
    AcDbDatabase db;
    const auto symbol = oldSymbol(row.old);
    ASSERT_TRUE(symbol) << row.old;
    AcDbObjectId id;
    ASSERT_EQ(db.insert(id, u"S", symbol.get()), Acad::eOk);
    EXPECT_EQ(contentOf(db, id), row.now);
    // A block tells whether it has attributes to ask for.
    const std::string begin =
        tagsOf(db.drawing(), db.drawing().structure().block(id.index())->begin);
    const bool attributes = std::string_view(row.old).find("ATTDEF") != std::string_view::npos;
    EXPECT_EQ(begin.find("\n70 2\n") != begin.npos, attributes) << begin;
  }
}

}  // namespace
