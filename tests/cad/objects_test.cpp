// Open, act, close: who may open what, what a change keeps, and how commands are taken back.
#include <gtest/gtest.h>

#include "tests/cad/sample_drawings.h"
#include "tests/tools/check_drawing.h"

namespace {

using namespace testing_drawings;
using std::u16string;

struct ObjectsTest : testing::Test {
  Database db = std::make_unique<AcDbDatabase>();
  Working working{db.get()};
  cad::Drawing& drawing() { return db->drawing(); }

  AcDbObjectId addLine(std::u16string_view layer = u"0") {
    auto* line = new AcDbLine({0, 0, 0}, {1, 1, 1});
    line->setLayer(layer);
    const AcDbObjectId id = append(*db, line);
    line->close();
    return id;
  }
  template <class Act>
  void command(std::u16string_view name, Act&& act) {
    drawing().beginCommand(name);
    act();
    drawing().endCommand();
    EXPECT_EQ(drawing().openCount(), 0) << "in a command";
  }
  bool erased(AcDbObjectId id) { return drawing().record(id.index()).is(cad::Record::erased); }
};

TEST_F(ObjectsTest, ReadersShareAndTheWriterIsAlone) {
  const AcDbObjectId id = addLine();
  AcDbLine *a = nullptr, *b = nullptr, *c = nullptr;
  ASSERT_EQ(acdbOpenObject(a, id, AcDb::kForRead), Acad::eOk);
  ASSERT_EQ(acdbOpenObject(b, id, AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(acdbOpenObject(c, id, AcDb::kForWrite), Acad::eWasOpenForRead);
  EXPECT_EQ(c, nullptr);
  EXPECT_EQ(a->upgradeOpen(), Acad::eWasOpenForRead);
  EXPECT_EQ(a->setColorIndex(1), Acad::eNotOpenForWrite);
  EXPECT_EQ(a->erase(), Acad::eNotOpenForWrite);
  b->close();
  EXPECT_EQ(a->upgradeOpen(), Acad::eOk);
  EXPECT_EQ(a->upgradeOpen(), Acad::eOk);
  EXPECT_EQ(a->setColorIndex(1), Acad::eOk);
  EXPECT_EQ(acdbOpenObject(b, id, AcDb::kForRead), Acad::eWasOpenForWrite);
  EXPECT_EQ(acdbOpenObject(b, id, AcDb::kForWrite), Acad::eWasOpenForWrite);
  EXPECT_EQ(drawing().openCount(), 1);
  const auto refused = drawing().save("/nowhere/at/all.dxf");
  ASSERT_FALSE(refused);
  EXPECT_NE(refused.error().find("still open"), std::string::npos);
  a->close();
  EXPECT_EQ(drawing().openCount(), 0);
}

TEST_F(ObjectsTest, OpeningWhatIsNotThereSaysWhy) {
  AcDbLine* line = nullptr;
  EXPECT_EQ(acdbOpenObject(line, AcDbObjectId()), Acad::eNullObjectId);
  EXPECT_EQ(acdbOpenObject(line, AcDbObjectId(9999, 3)), Acad::eNotInDatabase);
  EXPECT_EQ(acdbOpenObject(line, modelSpace(*db)), Acad::eNotThatKindOfClass);
  const AcDbObjectId id = addLine();
  Open<AcDbEntity>(id, AcDb::kForWrite)->erase();
  EXPECT_EQ(acdbOpenObject(line, id), Acad::eWasErased);
  {
    Open<AcDbEntity> again(id, AcDb::kForWrite, true);
    ASSERT_TRUE(again);
    EXPECT_TRUE(again->isErased());
    EXPECT_EQ(again->erase(), Acad::eWasErased);
    EXPECT_EQ(again->erase(false), Acad::eOk);
  }
  EXPECT_FALSE(erased(id));
  AcDbObjectId found;
  EXPECT_EQ(db->getAcDbObjectId(found, Open<AcDbLine>(id)->handle()), Acad::eOk);
  EXPECT_EQ(found, id);
  EXPECT_EQ(db->getAcDbObjectId(found, 0xFFFFFF), Acad::eKeyNotFound);
  AcDbObjectId closed;
  {
    AcDbDatabase other;
    closed = modelSpace(other);
    EXPECT_TRUE(closed.isValid());
  }
  EXPECT_FALSE(closed.isValid());
  AcDbObject* any = nullptr;
  EXPECT_EQ(acdbOpenAnyObject(any, closed, AcDb::kForRead, false), Acad::eNotInDatabase);
}

TEST_F(ObjectsTest, EntitiesOutsideOfADrawingAndTwiceInIt) {
  auto* line = new AcDbLine({0, 0, 0}, {1, 1, 1});
  EXPECT_TRUE(line->objectId().isNull());
  EXPECT_EQ(line->setColorIndex(300), Acad::eInvalidInput);
  AcDbExtents box;
  EXPECT_EQ(line->getGeomExtents(box), Acad::eNotInDatabase);
  const AcDbObjectId id = append(*db, line);
  Open<AcDbBlockTableRecord> space(modelSpace(*db), AcDb::kForWrite);
  EXPECT_EQ(space->appendAcDbEntity(line), Acad::eAlreadyInDb);
  space.close();
  EXPECT_EQ(line->ownerId(), modelSpace(*db));
  line->close();
  EXPECT_EQ(Open<AcDbLine>(id)->getGeomExtents(box), Acad::eOk);
  EXPECT_EQ(box.maxPoint().z, 1);
  // A space that is open for read only takes nothing, and a reference needs its block.
  Open<AcDbBlockTableRecord> reading(modelSpace(*db));
  auto* point = new AcDbPoint(AcGePoint3d());
  EXPECT_EQ(reading->appendAcDbEntity(point), Acad::eNotOpenForWrite);
  delete point;
  reading.close();
  EXPECT_TRUE(append(*db, new AcDbBlockReference({}, AcDbObjectId())).isNull());
}

TEST_F(ObjectsTest, WhatEntitiesReferToIsThere) {
  const AcDbObjectId id = addLine(u"Nuovo livello");
  AcDbLayerTable* layers = nullptr;
  ASSERT_EQ(db->getLayerTable(layers, AcDb::kForRead), Acad::eOk);
  EXPECT_TRUE(layers->has(u"NUOVO LIVELLO"));
  layers->close();
  {
    Open<AcDbEntity> line(id, AcDb::kForWrite);
    EXPECT_EQ(line->setLayer(u"a/b"), Acad::eInvalidInput);
    EXPECT_EQ(line->setLayer(u""), Acad::eInvalidInput);
    EXPECT_EQ(line->setLinetype(u"IGNOTO"), Acad::eKeyNotFound);
    EXPECT_EQ(line->setLinetype(u"bylayer"), Acad::eOk);
    EXPECT_EQ(line->layer(), u"Nuovo livello");
  }
  auto* text = new AcDbText({}, u"x", 1);
  text->setTextStyleName(u"IGNOTO");
  text->setLinetype(u"IGNOTO");
  append(*db, text);
  text->close();
  auto* point = new AcDbPoint(AcGePoint3d());
  setXData(*point, acutBuildList(1001, u"MAI_VISTA", 1070, 1, RTNONE));
  append(*db, point);
  point->close();
  for (const std::string& f : checking::checkDrawing(drawing().toBytes())) ADD_FAILURE() << f;
}

// The third of a row of equal entities is checked like the first, whatever became of what they
// name.
TEST_F(ObjectsTest, EntitiesOfOneMakeSeeWhatBecameOfTheirNames) {
  const auto addText = [&] {
    auto* text = new AcDbText({1, 2, 0}, u"x", 1);
    text->setLayer(u"RETE");
    text->setTextStyleName(u"STILE");
    setXData(*text, acutBuildList(1001, u"DATI", 1070, 1, RTNONE));
    const AcDbObjectId id = append(*db, text);
    text->close();
    return id;
  };
  const auto layer = [&] { return drawing().structure().layerNamed(u"RETE", false); };
  {
    AcDbTextStyleTable* styles = nullptr;
    ASSERT_EQ(db->getTextStyleTable(styles, AcDb::kForWrite), Acad::eOk);
    auto* style = new AcDbTextStyleTableRecord;
    style->setName(u"STILE");
    AcDbObjectId id;
    EXPECT_EQ(styles->add(id, style), Acad::eOk);
    style->close();
    styles->close();
  }
  command(u"UNO", [&] {
    addText();
    addText();
  });
  EXPECT_NE(drawing().undo(), u"");
  EXPECT_EQ(layer(), 0u);
  AcDbObjectId second;
  command(u"DUE", [&] {
    addText();
    second = addText();
  });
  EXPECT_NE(layer(), 0u) << "made again";
  {
    Open<AcDbLayerTableRecord> renamed(drawing().idOf(layer()), AcDb::kForWrite);
    EXPECT_EQ(renamed->setName(u"ALTRA"), Acad::eOk);
    Open<AcDbTextStyleTableRecord> style(
        drawing().idOf(drawing().structure().tableEntry(cad::Type::style, u"STILE")),
        AcDb::kForWrite);
    EXPECT_EQ(style->setName(u"ALTRO"), Acad::eOk);
  }
  const AcDbObjectId third = addText();
  EXPECT_NE(layer(), 0u);
  EXPECT_EQ((Open<AcDbText>(third)->textStyleName()), u"Standard");
  EXPECT_EQ((Open<AcDbText>(second)->textStyleName()), u"ALTRO");
  EXPECT_EQ((Open<AcDbText>(second)->layer()), u"ALTRA");
  EXPECT_EQ(drawing().index().onLayer(drawing().names().find(u"RETE")).size(), 1u);
  EXPECT_EQ(drawing().index().withApplication(drawing().names().find(u"DATI")).size(), 3u);
  for (const std::string& f : checking::checkDrawing(drawing().toBytes())) ADD_FAILURE() << f;
}

TEST_F(ObjectsTest, TableEntriesHaveUsableAndSingleNames) {
  AcDbLayerTable* table = nullptr;
  ASSERT_EQ(db->getLayerTable(table, AcDb::kForWrite), Acad::eOk);
  const auto add = [&](std::u16string_view name) {
    auto* layer = new AcDbLayerTableRecord;
    if (layer->setName(name) != Acad::eOk) {
      delete layer;
      return Acad::eInvalidInput;
    }
    AcDbObjectId id;
    const Acad::ErrorStatus s = table->add(id, layer);
    s == Acad::eOk ? static_cast<void>(layer->close()) : delete layer;
    return s;
  };
  EXPECT_EQ(add(u"RETE"), Acad::eOk);
  EXPECT_EQ(add(u"rete"), Acad::eDuplicateRecordName);
  EXPECT_EQ(add(u"a|b"), Acad::eInvalidInput);
  EXPECT_EQ(add(u16string(256, u'x')), Acad::eInvalidInput);
  AcDbObjectId id;
  ASSERT_EQ(table->getAt(u"Rete", id), Acad::eOk);
  {
    Open<AcDbLayerTableRecord> layer(id, AcDb::kForWrite);
    EXPECT_EQ(layer->getName(), u"RETE");
    EXPECT_EQ(layer->setName(u"0"), Acad::eDuplicateRecordName);
    layer->setIsFrozen(true);
    layer->setIsOff(true);
    EXPECT_EQ(layer->setColorIndex(5), Acad::eOk);
    EXPECT_EQ(layer->setColorIndex(0), Acad::eInvalidInput);
  }
  Open<AcDbLayerTableRecord> layer(id);
  EXPECT_TRUE(layer->isFrozen() && layer->isOff());
  EXPECT_EQ(layer->colorIndex(), 5);
  AcDbSymbolTableIterator* it = nullptr;
  table->newIterator(it);
  std::vector<u16string> names;
  for (; !it->done(); it->step()) {
    AcDbObjectId each;
    it->getRecordId(each);
    names.push_back(Open<AcDbSymbolTableRecord>(each)->getName());
  }
  delete it;
  EXPECT_EQ(names.back(), u"RETE");
  table->close();
}

TEST_F(ObjectsTest, UndoAndRedoByCommand) {
  const AcDbObjectId line = addLine(u"A");
  AcDbObjectId polyline, reference;
  auto symbol = symbolDrawing();
  command(u"DISEGNA", [&] {
    acdbRegApp(u"APP");
    polyline = addPolyline(*db, u"B", {{0, 0, 0}, {1, 0, 0}}, u"APP");
    AcDbObjectId block;
    ASSERT_EQ(db->insert(block, u"SIMBOLO", symbol.get()), Acad::eOk);
    reference = addReference(*db, block, {5, 5, 0});
  });
  command(u"CAMBIA", [&] {
    Open<AcDbEntity> l(line, AcDb::kForWrite);
    l->setLayer(u"C");
    l->setColorIndex(2);
    Open<AcDbBlockReference>(reference, AcDb::kForWrite)->setPosition({7, 7, 0});
    Open<AcDbEntity>(polyline, AcDb::kForWrite)->erase();
  });
  command(u"NIENTE", [] {});
  const std::string changed = drawing().toBytes();
  EXPECT_EQ(drawing().undo(), u"CAMBIA");
  EXPECT_EQ(Open<AcDbEntity>(line)->layer(), u"A");
  EXPECT_EQ(Open<AcDbEntity>(line)->colorIndex(), 256);
  EXPECT_EQ(Open<AcDbBlockReference>(reference)->position().x, 5);
  const AcDbObjectId attribute = attributeOf(reference, u"ID");
  EXPECT_EQ(Open<AcDbAttribute>(attribute)->position().x, 7);  // 5 + 3 - the base point's 1
  EXPECT_FALSE(erased(polyline));
  EXPECT_EQ(cad::vertexPositions(drawing(), polyline.index()).size(), 2u);
  EXPECT_EQ(drawing().undo(), u"DISEGNA");
  EXPECT_TRUE(erased(polyline));
  EXPECT_EQ(drawing().index().allInSpace().size(), 1u);
  EXPECT_EQ(drawing().structure().layerNamed(u"B", false), 0u);
  EXPECT_EQ(drawing().structure().blockByName(drawing().names().find(u"SIMBOLO")), 0u);
  EXPECT_EQ(drawing().undo(), u"");
  EXPECT_EQ(drawing().redo(), u"DISEGNA");
  EXPECT_EQ(drawing().redo(), u"CAMBIA");
  EXPECT_EQ(drawing().redo(), u"");
  const auto withoutTimes = [](std::string s) {
    for (const char* name : {"$TDUPDATE", "$HANDSEED"}) {
      const std::size_t at = s.find(name);
      if (at != s.npos) s.erase(at, s.find("  9\n", at) - at);
    }
    return s;
  };
  EXPECT_EQ(withoutTimes(drawing().toBytes()), withoutTimes(changed));
  // A new command ends what could be redone; objects of the same names come again.
  drawing().undo();
  drawing().undo();
  command(u"DI NUOVO", [&] {
    EXPECT_FALSE(addPolyline(*db, u"B", {{0, 0, 0}, {2, 0, 0}}, u"APP").isNull());
    AcDbObjectId block;
    EXPECT_EQ(db->insert(block, u"SIMBOLO", symbol.get()), Acad::eOk);
    EXPECT_FALSE(addReference(*db, block, {1, 1, 0}).isNull());
  });
  EXPECT_EQ(drawing().redo(), u"");
  EXPECT_NE(drawing().structure().layerNamed(u"B", false), 0u);
  for (const std::string& f : checking::checkDrawing(drawing().toBytes())) ADD_FAILURE() << f;
}

TEST_F(ObjectsTest, WhatACommandMakesAndErasesIsAwayEitherWay) {
  std::vector<AcDbObjectId> made;
  command(u"PROVA", [&] {
    for (int i = 0; i < 5; ++i) made.push_back(addLine(u"A"));
    for (const int i : {0, 2, 4}) {
      Open<AcDbEntity>(made[static_cast<std::size_t>(i)], AcDb::kForWrite)->erase();
    }
  });
  const auto standing = [&] {
    std::string s;
    for (const AcDbObjectId id : made) s += erased(id) ? '-' : 'x';
    return s;
  };
  EXPECT_EQ(standing(), "-x-x-");
  command(u"CAMBIA", [&] { Open<AcDbEntity>(made[1], AcDb::kForWrite)->setColorIndex(3); });
  drawing().undo();
  EXPECT_EQ(drawing().undo(), u"PROVA");
  EXPECT_EQ(standing(), "-----");
  EXPECT_EQ(drawing().redo(), u"PROVA");
  EXPECT_EQ(standing(), "-x-x-");
  EXPECT_EQ(Open<AcDbEntity>(made[1])->colorIndex(), 256);
  drawing().redo();
  EXPECT_EQ(Open<AcDbEntity>(made[1])->colorIndex(), 3);
  for (const std::string& f : checking::checkDrawing(drawing().toBytes())) ADD_FAILURE() << f;
}

// The end mark of a sequence that a command made and undo took away must come back with the next
// part.
TEST_F(ObjectsTest, PartsAddedAfterUndo) {
  auto symbol = symbolDrawing();
  AcDbObjectId block, reference;
  ASSERT_EQ(db->insert(block, u"SIMBOLO", symbol.get()), Acad::eOk);
  auto* fresh = new AcDbBlockReference({}, block);
  reference = append(*db, fresh);
  fresh->close();
  const auto addAttribute = [&] {
    Open<AcDbBlockReference> r(reference, AcDb::kForWrite);
    auto* attribute = new AcDbAttribute;
    AcDbObjectId id;
    EXPECT_EQ(r->appendAttribute(id, attribute), Acad::eOk);
    attribute->close();
  };
  command(u"UNO", addAttribute);
  drawing().undo();
  command(u"DUE", addAttribute);
  const std::string bytes = drawing().toBytes();
  for (const std::string& f : checking::checkDrawing(bytes)) {
    if (f.find("ATTRIB") != f.npos || f.find("INSERT") != f.npos) ADD_FAILURE() << f;
  }
  drawing().undo();
  EXPECT_EQ(drawing().toBytes().find("ATTRIB"), std::string::npos);
}

TEST_F(ObjectsTest, ErasingTakesAlongWhatHangsOnTheObject) {
  const std::string bytes = tags(R"(0 SECTION
2 HEADER
9 $ACADVER
1 AC1015
9 $HANDSEED
5 FF
0 ENDSEC
0 SECTION
2 ENTITIES
0 LINE
5 50
102 {ACAD_XDICTIONARY
360 60
102 }
102 {ACAD_REACTORS
330 70
102 }
330 1F
100 AcDbEntity
8 0
100 AcDbLine
10 0.0
20 0.0
30 0.0
11 1.0
21 1.0
31 0.0
0 POINT
5 51
330 1F
100 AcDbEntity
8 0
100 AcDbPoint
10 0.0
20 0.0
30 0.0
0 ENDSEC
0 SECTION
2 OBJECTS
0 DICTIONARY
5 C
330 0
100 AcDbDictionary
3 ACAD_GROUP
350 D
0 DICTIONARY
5 60
330 50
100 AcDbDictionary
280 1
3 DATI
360 61
0 XRECORD
5 61
330 60
100 AcDbXrecord
280 1
1 segreto
0 GROUP
5 70
330 D
100 AcDbGroup
300 insieme
70 1
71 1
340 50
340 51
0 SORTENTSTABLE
5 80
330 C
100 AcDbSortentsTable
330 1F
331 51
5 51
331 50
5 50
0 ENDSEC
0 EOF
)");
  auto own = load(bytes);
  cad::Drawing& d = own->drawing();
  d.beginCommand(u"CANCELLA");
  Open<AcDbEntity>(d.idOf(d.byHandle(0x50)), AcDb::kForWrite)->erase();
  d.endCommand();
  const std::string after = d.toBytes();
  for (const char* gone : {"segreto", "{ACAD_XDICTIONARY", "340\n50", "331\n50", "  5\n50\n"}) {
    EXPECT_EQ(after.find(gone), after.npos) << gone;
  }
  for (const char* kept : {"insieme", "340\n51", "331\n51\n  5\n51"}) {
    EXPECT_NE(after.find(kept), after.npos) << kept;
  }
  EXPECT_EQ(d.undo(), u"CANCELLA");
  EXPECT_NE(d.toBytes().find("segreto"), after.npos);
}

TEST_F(ObjectsTest, HeaderVariables) {
  cad::Drawing& d = drawing();
  EXPECT_EQ(d.header().text("$ACADVER"), u"AC1027");
  EXPECT_EQ(d.header().text("$NIENTE", u"altro"), u"altro");
  EXPECT_FALSE(d.header().setText("$NIENTE", u"1"));
  d.structure().layerNamed(u"CORRENTE", true);
  EXPECT_TRUE(d.header().setText("$CLAYER", u"CORRENTE"));
  EXPECT_EQ(d.header().currentLayer(), u"CORRENTE");
  auto* point = new AcDbPoint({1, 1, 1});
  const AcDbObjectId id = append(*db, point);
  Open<AcDbEntity> stillOpen(id);
  EXPECT_EQ(stillOpen.status, Acad::eWasOpenForWrite);
  EXPECT_EQ(point->layer(), u"CORRENTE");
  point->close();
  // The seed stands above every handle that was given out.
  const std::string bytes = d.toBytes();
  const std::uint64_t handle = d.record(id.index()).handle;
  EXPECT_GT(std::stoull(bytes.substr(bytes.find("$HANDSEED") + 14, 8), nullptr, 16), handle);
}

}  // namespace
