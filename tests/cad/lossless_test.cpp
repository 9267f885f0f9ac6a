// Nothing is lost: what nobody changed is written back byte for byte, what was changed keeps the
// rest, in every version and form.
#include <gtest/gtest.h>

#include "platform/text.h"
#include "tests/cad/sample_drawings.h"
#include "tests/tools/check_drawing.h"

namespace {

using namespace testing_drawings;

// What the checker says of a drawing, one fault a line.
std::string faults(AcDbDatabase& database) {
  std::string all;
  for (const std::string& f : checking::checkDrawing(database.drawing().toBytes())) all += f + "\n";
  return all;
}

TEST(Lossless, WhatIsNotChangedIsWrittenByteForByte) {
  // Odd but legal spellings: blanks, CR LF, comments, no line end at the end, bytes behind the end.
  std::string odd = oldDrawing("\r\n");
  odd.insert(0, "999\r\nscritto a mano\r\n");
  for (const std::string& bytes :
       {oldDrawing(), odd, oldDrawing() + "\n\x1A", "\xEF\xBB\xBF" + oldDrawing()}) {
    auto db = load(bytes);
    ASSERT_TRUE(db);
    EXPECT_EQ(db->drawing().toBytes(), bytes);
    // Looking at everything, also at tables that the file does not have, changes nothing.
    AcDbBlockTable* blocks = nullptr;
    AcDbDictionary* root = nullptr;
    ASSERT_EQ(db->getBlockTable(blocks, AcDb::kForRead), Acad::eOk);
    AcDbObjectId door;
    EXPECT_EQ(blocks->getAt(u"porta", door), Acad::eOk);
    EXPECT_FALSE(blocks->has(u"FINESTRA"));
    blocks->close();
    EXPECT_NE(db->getNamedObjectsDictionary(root, AcDb::kForRead), Acad::eOk);
    for (std::uint32_t i = 1; i < db->drawing().records().count(); ++i) {
      if (db->drawing().record(i).is(cad::Record::synthetic)) continue;
      Open<AcDbObject> object(db->drawing().idOf(i));
      const Chain data(object->xData());
    }
    EXPECT_FALSE(db->drawing().isChanged());
    EXPECT_EQ(db->drawing().toBytes(), bytes);
  }
}

TEST(Lossless, AnEditedObjectKeepsItsUnknownTagsAndTheirOrder) {
  auto db = load(oldDrawing());
  {
    Open<AcDbEntity> line(db->drawing().idOf(db->drawing().byHandle(0x33)), AcDb::kForWrite);
    ASSERT_TRUE(line);
    EXPECT_EQ(line->setColorIndex(1), Acad::eOk);
    EXPECT_EQ(line->setLayer(u"NUOVO"), Acad::eOk);
  }
  const std::string bytes = db->drawing().toBytes();
  EXPECT_NE(
      bytes.find(tags("0 LINE\n8 NUOVO\n62 1\n5 33\n10 0.0\n20 0.0\n30 0.0\n11 1.0000000000000001\n"
                      "21 5.0\n31 0.0\n1001 ALTRA\n1000 a\n1020 7.5\n1040 1.0\n")),
      bytes.npos)
      << bytes;
  EXPECT_NE(bytes.find(tags("0 SHAPE\n8 0\n5 34\n10 0.0\n20 0.0\n30 0.0\n40 1.0\n2 SEGNO\n")),
            bytes.npos);
  EXPECT_EQ(faults(*db), "");
}

// Every version, ASCII and binary: all kinds of edits, then the check that CAD programs would make,
// then the values again from the written file.
TEST(Lossless, EveryVersionTakesEveryEdit) {
  auto symbol = symbolDrawing();
  for (const int version : {1009, 1012, 1014, 1015, 1018, 1021, 1024, 1027, 1032}) {
    for (const bool binary : {false, true}) {
      SCOPED_TRACE(std::to_string(version) + (binary ? " binary" : " ascii"));
      auto source = version == 1009 ? load(oldDrawing()) : std::make_unique<AcDbDatabase>();
      auto db = load(converted(*source, formatOf(version, binary)));
      ASSERT_TRUE(db);
      EXPECT_EQ(faults(*db), "");
      const std::size_t before = db->drawing().index().allInSpace().size();
      EXPECT_EQ(editEverything(*db, *symbol), "");
      EXPECT_EQ(db->drawing().openCount(), 0);
      EXPECT_EQ(acutLiveNodes(), 0);
      EXPECT_EQ(faults(*db), "");
      const std::string bytes = db->drawing().toBytes();
      auto again = load(bytes);
      ASSERT_TRUE(again);
      EXPECT_EQ(again->drawing().format().version, version);
      EXPECT_EQ(again->drawing().format().binary, binary);
      EXPECT_EQ(again->drawing().index().allInSpace().size(), before + (version >= 1014 ? 6 : 5));
      EXPECT_EQ(again->drawing().toBytes(), bytes);
      for (const std::uint32_t e : again->drawing().index().allInSpace()) {
        Open<AcDbEntity> entity(again->drawing().idOf(e));
        if (entity->dxfName() == u"TEXT") {
          auto* text = static_cast<AcDbText*>(entity.get());
          EXPECT_EQ(text->textString(), u"Serbatoio è 100 € \u0416");
          EXPECT_EQ(text->textStyleName(), u"STILE_PROVA");
        }
        if (entity->isKindOf(AcDb3dPolyline::desc())) {
          const auto points = cad::vertexPositions(again->drawing(), entity->objectId().index());
          ASSERT_EQ(points.size(), 3u);
          EXPECT_EQ(points[2].y, 1e-9);
        }
      }
    }
  }
}

TEST(Lossless, TheEmptyDrawingIsOneThatProgramsTake) {
  auto db = std::make_unique<AcDbDatabase>();
  EXPECT_EQ(faults(*db), "");
  // What a file lacks is added with the first change, and not undone with it.
  auto bare = load(tags("0 SECTION\n2 HEADER\n9 $ACADVER\n1 AC1015\n0 ENDSEC\n0 EOF\n"));
  ASSERT_TRUE(bare);
  for (int round = 0; round < 2; ++round) {
    bare->drawing().beginCommand(u"A");
    auto* point = new AcDbPoint({1, 2, 3});
    ASSERT_FALSE(append(*bare, point).isNull());
    point->close();
    AcDbDictionary* root = nullptr;
    ASSERT_EQ(bare->getNamedObjectsDictionary(root, AcDb::kForWrite), Acad::eOk);
    auto* own = new AcDbDictionary;
    AcDbObjectId id;
    ASSERT_EQ(root->setAt(u"PROVA", own, id), Acad::eOk);
    own->close();
    root->close();
    bare->drawing().endCommand();
    if (round == 0) {
      EXPECT_EQ(bare->drawing().undo(), u"A");
    }
  }
  const std::string written = bare->drawing().toBytes();
  EXPECT_EQ(load(written)->drawing().index().allInSpace().size(), 1u) << written;
  for (const char* once : {"ENTITIES", "OBJECTS", "ACAD_GROUP", "POINT\n", "TABLES"}) {
    EXPECT_EQ(written.find(once, written.find(once) + 1), written.npos) << once;
    EXPECT_NE(written.find(once), written.npos) << once;
  }
}

}  // namespace
