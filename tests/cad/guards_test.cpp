// What a drawing refuses so that nothing is lost or damaged, and what must follow when it agrees.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "cad/api/table.h"
#include "tests/cad/sample_drawings.h"
#include "tests/tools/check_drawing.h"

namespace {

using namespace testing_drawings;

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInfinite = std::numeric_limits<double>::infinity();

struct GuardsTest : testing::Test {
  Database db = std::make_unique<AcDbDatabase>();
  Working working{db.get()};
  cad::Drawing& drawing() { return db->drawing(); }

  template <class T>
  AcDbObjectId add(T* entity) {
    const AcDbObjectId id = append(*db, entity);
    if (!id.isNull()) entity->close();
    return id;
  }
  AcDbObjectId addLine(std::u16string_view layer) {
    auto* line = new AcDbLine({0, 0, 0}, {1, 1, 1});
    line->setLayer(layer);
    return add(line);
  }
  AcDbObjectId layer(std::u16string_view name) {
    return drawing().idOf(drawing().structure().layerNamed(name, false));
  }
  Acad::ErrorStatus erase(AcDbObjectId id) {
    Open<AcDbObject> object(id, AcDb::kForWrite);
    return object ? object->erase() : object.status;
  }
  template <class Act>
  void command(std::u16string_view name, Act&& act) {
    drawing().beginCommand(name);
    act();
    drawing().endCommand();
  }
  Database saved() { return load(drawing().toBytes()); }
};

std::string oldDrawing(std::string_view version, std::string_view header = "",
                       std::string_view rest = "") {
  return tags("0 SECTION\n2 HEADER\n9 $ACADVER\n1 " + std::string(version) + "\n" +
              std::string(header) + "0 ENDSEC\n0 SECTION\n2 ENTITIES\n" + std::string(rest) +
              "0 ENDSEC\n0 EOF\n");
}

TEST_F(GuardsTest, NamesThatNoSymbolCanBear) {
  for (const char16_t c : std::u16string(u"<>/\\\":;?*|,=`\t")) {
    const std::u16string name = std::u16string(u"a") + c + u"b";
    EXPECT_EQ(cad::faultOfName(name, 1015).character, c);
    const std::uint32_t records = drawing().records().count();
    EXPECT_TRUE(addLine(name).isNull()) << static_cast<int>(c);
    EXPECT_EQ(drawing().records().count(), records) << "something was left behind";
  }
  using cad::usableName;
  EXPECT_TRUE(usableName(std::u16string(255, u'n'), 1015));
  EXPECT_FALSE(usableName(std::u16string(256, u'n'), 1015));
  EXPECT_TRUE(usableName(std::u16string(31, u'n'), 1009));
  EXPECT_FALSE(usableName(std::u16string(32, u'n'), 1009));
  EXPECT_TRUE(usableName(u"Az-$_09", 1009));
  EXPECT_FALSE(usableName(u"rete nuova", 1009));
  EXPECT_FALSE(usableName(u"rètè", 1009));
  EXPECT_TRUE(usableName(u"rètè nuova", 1015));
  EXPECT_FALSE(usableName(u" ", 1015));
  EXPECT_FALSE(usableName(u"", 1015));
  EXPECT_FALSE(usableName(u"*U1", 1015));
  EXPECT_TRUE(usableName(u"*U1", 1015, true));
  // An odd layer that a file has already can be drawn on.
  auto old =
      load(oldDrawing("AC1009", "",
                      "0 POINT\n8 0\n10 0.0\n20 0.0\n0 ENDSEC\n0 SECTION\n2 TABLES\n0 TABLE\n"
                      "2 LAYER\n70 1\n0 LAYER\n2 STRADE E RETE\n70 0\n62 7\n6 "
                      "CONTINUOUS\n0 ENDTAB\n"));
  ASSERT_TRUE(old);
  auto* line = new AcDbLine({0, 0, 0}, {1, 0, 0});
  line->setLayer(u"Strade e rete");
  EXPECT_FALSE(append(*old, line).isNull());
  line->close();
  auto* refused = new AcDbLine({0, 0, 0}, {1, 0, 0});
  refused->setLayer(u"Altre strade");
  EXPECT_TRUE(append(*old, refused).isNull());
}

TEST_F(GuardsTest, SettersRefuseWhatIsNoValueAndChangeNothing) {
  auto symbol = symbolDrawing();
  AcDbObjectId block;
  ASSERT_EQ(db->insert(block, u"SIMBOLO", symbol.get()), Acad::eOk);
  const AcDbObjectId reference = addReference(*db, block, {5, 5, 0}, 0.5, 2);
  const AcDbObjectId text = add(new AcDbText({1, 1, 0}, u"x", 2));
  const std::string before = drawing().toBytes();
  {
    Open<AcDbText> t(text, AcDb::kForWrite);
    for (const double height : {0.0, -1.0, kNaN, kInfinite}) {
      EXPECT_EQ(t->setHeight(height), Acad::eInvalidInput) << height;
    }
    EXPECT_EQ(t->setPosition({kNaN, 0, 0}), Acad::eInvalidInput);
    EXPECT_EQ(t->setJustification(6, 0, {}), Acad::eInvalidInput);
    EXPECT_EQ(t->setJustification(1, 4, {}), Acad::eInvalidInput);
    EXPECT_EQ(t->setColorIndex(-1), Acad::eInvalidInput);
    EXPECT_EQ(t->setColorIndex(257), Acad::eInvalidInput);
    EXPECT_EQ(t->setTextStyleName(u"MANCA"), Acad::eKeyNotFound);
    EXPECT_EQ(t->setLinetype(u"MANCA"), Acad::eKeyNotFound);
    Open<AcDbBlockReference> r(reference, AcDb::kForWrite);
    for (const AcGeScale3d& s : {AcGeScale3d{0, 1, 1}, {1, 0, 1}, {1, 1, 0}, {kNaN, 1, 1}}) {
      EXPECT_EQ(r->setScaleFactors(s), Acad::eInvalidInput);
    }
    EXPECT_EQ(r->setRotation(kInfinite), Acad::eInvalidInput);
    EXPECT_EQ(r->setPosition({0, kInfinite, 0}), Acad::eInvalidInput);
    EXPECT_EQ(r->setNormal({0, 0, 0}), Acad::eInvalidInput);
    Open<AcDbLayerTableRecord> l(layer(u"0"), AcDb::kForWrite);
    EXPECT_EQ(l->setColorIndex(0), Acad::eInvalidInput);
    EXPECT_EQ(l->setColorIndex(256), Acad::eInvalidInput);
    EXPECT_EQ(l->setLinetype(u"MANCA"), Acad::eKeyNotFound);
    AcDbTableStyle style;
    EXPECT_EQ(style.setTextHeight(-1), Acad::eInvalidInput);
    EXPECT_EQ(style.setHorzCellMargin(-1), Acad::eInvalidInput);
    EXPECT_EQ(style.setAlignment(static_cast<AcDb::CellAlignment>(10)), Acad::eInvalidInput);
  }
  const auto withoutTimes = [](std::string s) { return s.substr(s.find("ENDSEC")); };
  EXPECT_EQ(withoutTimes(drawing().toBytes()), withoutTimes(before));
}

TEST_F(GuardsTest, AFlatReferenceIsNotTakenForOneThatWasNeverScaled) {
  auto symbol = symbolDrawing();
  AcDbObjectId block;
  ASSERT_EQ(db->insert(block, u"SIMBOLO", symbol.get()), Acad::eOk);
  const AcDbObjectId reference = addReference(*db, block, {5, 5, 0});
  {
    Open<AcDbBlockReference> r(reference, AcDb::kForWrite);
    cad::TagList& t = cad::Inside::tagsForWrite(*r);
    t.putReal(41, 0, t.subclass("AcDbBlockReference"));
  }
  const AcGePoint3d was = Open<AcDbAttribute>(attributeOf(reference, u"ID"))->position();
  EXPECT_EQ(Open<AcDbBlockReference>(reference, AcDb::kForWrite)->setScaleFactors({1, 1, 1}),
            Acad::eInvalidInput);
  EXPECT_EQ(Open<AcDbAttribute>(attributeOf(reference, u"ID"))->position().x, was.x);
}

TEST_F(GuardsTest, WhatIsInUseOrAlwaysThereIsNotErased) {
  const AcDbObjectId used = addLine(u"RETE");
  auto symbol = symbolDrawing();
  AcDbObjectId block;
  ASSERT_EQ(db->insert(block, u"SIMBOLO", symbol.get()), Acad::eOk);
  const AcDbObjectId reference = addReference(*db, block, {5, 5, 0});
  drawing().structure().layerNamed(u"CORRENTE", true);
  drawing().header().setText("$CLAYER", u"CORRENTE");
  EXPECT_EQ(erase(layer(u"0")), Acad::eCannotBeErasedByCaller);
  EXPECT_EQ(erase(layer(u"RETE")), Acad::eCannotBeErasedByCaller);
  EXPECT_EQ(erase(layer(u"CORRENTE")), Acad::eCannotBeErasedByCaller);
  EXPECT_EQ(erase(modelSpace(*db)), Acad::eCannotBeErasedByCaller);
  EXPECT_EQ(erase(block), Acad::eCannotBeErasedByCaller);
  EXPECT_EQ(erase(drawing().idOf(drawing().structure().namedObjects())),
            Acad::eCannotBeErasedByCaller);
  EXPECT_EQ(erase(used), Acad::eOk);
  EXPECT_EQ(erase(layer(u"RETE")), Acad::eOk);
  EXPECT_EQ(erase(reference), Acad::eOk);
  EXPECT_EQ(erase(block), Acad::eOk);
  for (const std::string& f : checking::checkDrawing(drawing().toBytes())) ADD_FAILURE() << f;
  Open<AcDbLine> gone(used, AcDb::kForWrite, true);
  EXPECT_EQ(gone->setColorIndex(1), Acad::eWasErased);
  EXPECT_EQ(gone->setLayer(u"0"), Acad::eWasErased);
  EXPECT_EQ(gone->erase(false), Acad::eOk);
}

TEST_F(GuardsTest, RenamingTakesAllReferencesAlong) {
  ASSERT_EQ(editEverything(*db, *symbolDrawing()), "");
  const auto rename = [&](cad::Type type, std::u16string_view from, std::u16string_view to) {
    Open<AcDbSymbolTableRecord> entry(drawing().idOf(drawing().structure().tableEntry(type, from)),
                                      AcDb::kForWrite);
    return entry ? entry->setName(to) : entry.status;
  };
  drawing().header().setText("$CLAYER", u"RETE_PROVA");
  command(u"RINOMINA", [&] {
    EXPECT_EQ(rename(cad::Type::layer, u"RETE_PROVA", u"Rete due"), Acad::eOk);
    EXPECT_EQ(rename(cad::Type::style, u"STILE_PROVA", u"Stile due"), Acad::eOk);
    EXPECT_EQ(rename(cad::Type::ltype, u"TRATTO_PROVA", u"Tratto due"), Acad::eOk);
    EXPECT_EQ(rename(cad::Type::blockRecord, u"SIMBOLO_PROVA", u"Simbolo due"), Acad::eOk);
  });
  EXPECT_EQ(rename(cad::Type::layer, u"0", u"ZERO"), Acad::eInvalidInput);
  EXPECT_EQ(rename(cad::Type::layer, u"Rete due", u"0"), Acad::eDuplicateRecordName);
  EXPECT_EQ(rename(cad::Type::layer, u"Rete due", u"a*b"), Acad::eInvalidInput);
  EXPECT_EQ(rename(cad::Type::blockRecord, u"*Model_Space", u"MODELLO"), Acad::eInvalidInput);
  EXPECT_EQ(drawing().header().currentLayer(), u"Rete due");
  const std::string bytes = drawing().toBytes();
  for (const char* old : {"RETE_PROVA", "STILE_PROVA", "TRATTO_PROVA", "SIMBOLO_PROVA"}) {
    EXPECT_EQ(bytes.find(old), bytes.npos) << old;
  }
  for (const std::string& f : checking::checkDrawing(bytes)) ADD_FAILURE() << f;
  EXPECT_EQ(drawing().undo(), u"RINOMINA");
  EXPECT_EQ(drawing().header().currentLayer(), u"RETE_PROVA");
  EXPECT_NE(drawing().structure().blockNamed(u"SIMBOLO_PROVA"), 0u);
  EXPECT_EQ(drawing().structure().blockNamed(u"Simbolo due"), 0u);
}

TEST_F(GuardsTest, WhatACommandLeavesOpenIsClosedWithItsChanges) {
  const AcDbObjectId id = addLine(u"0");
  drawing().beginCommand(u"DIMENTICA");
  AcDbLine *line = nullptr, *reader = nullptr;
  ASSERT_EQ(acdbOpenObject(line, id, AcDb::kForWrite), Acad::eOk);
  line->setColorIndex(3);
  const AcDbObjectId other = addLine(u"0");
  ASSERT_EQ(acdbOpenObject(reader, other), Acad::eOk);
  ASSERT_EQ(acdbOpenObject(reader, other), Acad::eOk);
  EXPECT_EQ(drawing().closeAll(), 2);
  drawing().endCommand();
  EXPECT_EQ(Open<AcDbLine>(id)->colorIndex(), 3);
  EXPECT_EQ(drawing().undo(), u"DIMENTICA");
  EXPECT_EQ(Open<AcDbLine>(id)->colorIndex(), 256);
}

TEST_F(GuardsTest, SavingBetweenErasingAndUndoKeepsMembersOfGroups) {
  const AcDbObjectId a = addLine(u"0"), b = addLine(u"0");
  AcDbDictionary* root = nullptr;
  ASSERT_EQ(db->getNamedObjectsDictionary(root, AcDb::kForWrite), Acad::eOk);
  cad::TagList t;
  t.create(drawing().format(), "GROUP");
  t.addAscii(100, "AcDbGroup");
  for (const AcDbObjectId id : {a, b}) t.addHandle(340, drawing().record(id.index()).handle);
  const std::uint32_t group = drawing().writer().addComplete(
      t,
      {.before = drawing().structure().sectionEnd(u"OBJECTS"), .owner = root->objectId().index()});
  root->close();
  command(u"CANCELLA", [&] { EXPECT_EQ(erase(a), Acad::eOk); });
  const auto members = [](AcDbDatabase& of, std::uint64_t h) {
    cad::TagList tags;
    of.drawing().parse(of.drawing().byHandle(h), tags);
    int count = 0;
    for (int i = 0; i < tags.size(); ++i) count += tags[i].code == 340;
    return count;
  };
  const std::uint64_t h = drawing().record(group).handle;
  EXPECT_EQ(members(*saved(), h), 1) << "the file lists what is not in it";
  EXPECT_EQ(drawing().undo(), u"CANCELLA");
  EXPECT_EQ(members(*saved(), h), 2);
}

TEST_F(GuardsTest, HeaderVariablesAreAddedUndoneAndSaved) {
  cad::Header& header = drawing().header();
  ASSERT_EQ(header.text("$LTSCALE"), u"");
  command(u"VARIABILI", [&] {
    EXPECT_TRUE(header.setText("$LTSCALE", u"2.5"));
    EXPECT_TRUE(header.setText("$PDMODE", u"34"));
    EXPECT_TRUE(header.setText("$CELTYPE", u"ByLayer"));
    EXPECT_FALSE(header.setText("$PDMODE", u"2.5"));
    EXPECT_FALSE(header.setText("$PDMODE", u"40000"));
    EXPECT_FALSE(header.setText("$LTSCALE", u"molto"));
    EXPECT_FALSE(header.setText("$NOSUCHVAR", u"1"));
  });
  EXPECT_EQ(saved()->drawing().header().text("$LTSCALE"), u"2.5");
  EXPECT_EQ(saved()->drawing().header().text("$PDMODE"), u"34");
  EXPECT_EQ(drawing().undo(), u"VARIABILI");
  EXPECT_EQ(header.text("$LTSCALE"), u"");
  auto r12 = load(oldDrawing("AC1009"));
  EXPECT_FALSE(r12->drawing().header().setText("$INSUNITS", u"6"));
}

TEST_F(GuardsTest, UndoKeepsWithinItsMemoryAndLeavesNoTraceOfNothing) {
  std::vector<AcDbObjectId> lines;
  for (int i = 0; i < 2000; ++i) lines.push_back(addLine(u"0"));
  drawing().history().setLimit(1 << 20);
  const auto recolor = [&](int color) {
    command(u"COLORE", [&] {
      for (const AcDbObjectId id : lines) Open<AcDbLine>(id, AcDb::kForWrite)->setColorIndex(color);
    });
  };
  for (int k = 0; k < 5; ++k) recolor(1 + k);
  const std::size_t few = drawing().records().textBytes();
  for (int k = 0; k < 60; ++k) recolor(1 + k % 7);
  EXPECT_LT(drawing().records().textBytes(), few + (1 << 20));
  EXPECT_LE(drawing().history().bytes(), std::size_t{1} << 20);
  EXPECT_EQ(drawing().undo(), u"COLORE");
  EXPECT_EQ(Open<AcDbLine>(lines[1999])->colorIndex(), 3);
  EXPECT_EQ(drawing().redo(), u"COLORE");
  // The same again, and there and back, are no changes.
  command(u"TORNA", [&] {
    Open<AcDbLine>(lines[0], AcDb::kForWrite)->setColorIndex(200);
    Open<AcDbLine>(lines[0], AcDb::kForWrite)->setColorIndex(4);
  });
  recolor(4);
  EXPECT_EQ(drawing().undo(), u"COLORE");
  EXPECT_EQ(Open<AcDbLine>(lines[0])->colorIndex(), 3);
}

TEST_F(GuardsTest, HandlesAtTheEndOfTheirRangeDoNotWrap) {
  for (const char* late : {"FFFFFFFFFFFFFFFE", "FFFFFFFFFFFFFFFF"}) {
    for (const bool seed : {true, false}) {
      std::vector<std::string> warnings;
      const std::string handle = seed ? "A1" : late;
      auto d = load(
          oldDrawing("AC1015", seed ? "9 $HANDSEED\n5 " + std::string(late) + "\n" : std::string(),
                     "0 POINT\n5 " + handle +
                         "\n330 1F\n100 AcDbEntity\n8 0\n100 "
                         "AcDbPoint\n10 0.0\n20 0.0\n30 0.0\n"),
          &warnings);
      ASSERT_TRUE(d);
      ASSERT_FALSE(warnings.empty());
      EXPECT_NE(warnings[0].find("$HANDSEED"), std::string::npos) << warnings[0];
      for (int i = 0; i < 4; ++i) {
        auto* point = new AcDbPoint({1, 1, 1});
        ASSERT_FALSE(append(*d, point).isNull());
        EXPECT_NE(point->handle(), 0u);
        EXPECT_LT(point->handle(), 0x1000u);
        point->close();
      }
    }
  }
}

TEST_F(GuardsTest, AVersionRefusesWhatItCannotHold) {
  for (const auto& [version, table, light] : {std::tuple{"AC1009", false, false},
                                              {"AC1012", false, false},
                                              {"AC1014", false, true},
                                              {"AC1015", false, true},
                                              {"AC1018", true, true}}) {
    auto d = load(oldDrawing(version));
    ASSERT_TRUE(d);
    const Working current(d.get());
    const auto takes = [&](AcDbEntity* entity) {
      const bool taken = !append(*d, entity).isNull();
      if (taken) entity->close();
      return taken;
    };
    EXPECT_EQ(takes(new AcDbTable), table) << version;
    EXPECT_EQ(takes(new AcDbPolyline({{{0, 0}, 0}, {{1, 0}, 0}})), light) << version;
    EXPECT_TRUE(takes(new AcDbLine({0, 0, 0}, {1, 1, 1}))) << version;
    AcDbDictionary* styles = nullptr;
    EXPECT_EQ(d->getTableStyleDictionary(styles, AcDb::kForRead) == Acad::eOk, table) << version;
    if (styles) styles->close();
  }
}

TEST_F(GuardsTest, LayersKeepTheirSpellingBesideTheWordsOfTheFormat) {
  for (const char16_t* name : {u"Text", u"Line", u"Entities", u"Header"}) {
    EXPECT_EQ(Open<AcDbEntity>(addLine(name))->layer(), name);
  }
}

TEST_F(GuardsTest, ADrawingWithoutATableOfBlocksGetsOne) {
  auto d = load(oldDrawing("AC1015"));
  ASSERT_TRUE(d);
  const std::string untouched = d->drawing().toBytes();
  EXPECT_EQ(untouched, oldDrawing("AC1015")) << "looking at a file changes nothing";
  auto* line = new AcDbLine({0, 0, 0}, {1, 1, 1});
  append(*d, line);
  const std::uint64_t handle = line->handle();
  line->close();
  auto again = load(d->drawing().toBytes());
  ASSERT_TRUE(again);
  const std::uint32_t space = again->drawing().structure().modelSpace();
  EXPECT_EQ(again->drawing().record(space).type, cad::Type::blockRecord);
  EXPECT_NE(again->drawing().record(space).handle, 0u);
  cad::TagList t;
  again->drawing().parse(again->drawing().byHandle(handle), t);
  EXPECT_EQ(t.handle(t.find(330)), again->drawing().record(space).handle);
}

TEST_F(GuardsTest, ManyByteOrderMarks) {
  std::string marks;
  for (int i = 0; i < 20000; ++i) marks += "\xEF\xBB\xBF";
  auto d = load(marks + oldDrawing("AC1015"));
  ASSERT_TRUE(d);
  EXPECT_EQ(d->drawing().toBytes(), marks + oldDrawing("AC1015"));
}

TEST_F(GuardsTest, BlocksThatLieTooDeepInOneAnotherAreNotInserted) {
  for (const int depth : {150, 20000}) {
    std::string blocks, top;
    for (int i = depth; i > 0; --i) {
      blocks += "0 BLOCK\n8 0\n2 B" + std::to_string(i) + "\n70 0\n10 0.0\n20 0.0\n";
      if (i < depth) blocks += "0 INSERT\n8 0\n2 B" + std::to_string(i + 1) + "\n10 0.0\n20 0.0\n";
      blocks += "0 ENDBLK\n8 0\n";
      top = "0 INSERT\n8 0\n2 B" + std::to_string(i) + "\n10 0.0\n20 0.0\n" + top;
    }
    auto symbol =
        load(tags("0 SECTION\n2 HEADER\n9 $ACADVER\n1 AC1009\n0 ENDSEC\n0 SECTION\n2 "
                  "BLOCKS\n" +
                  blocks + "0 ENDSEC\n0 SECTION\n2 ENTITIES\n" + top + "0 ENDSEC\n0 EOF\n"));
    ASSERT_TRUE(symbol);
    AcDbObjectId id;
    const std::uint32_t records = drawing().records().count();
    EXPECT_EQ(db->insert(id, u"TORRE", symbol.get()) == Acad::eOk, depth == 150);
    if (depth != 150) {
      EXPECT_EQ(drawing().records().count(), records);
      continue;
    }
    for (const std::string& f : checking::checkDrawing(drawing().toBytes())) ADD_FAILURE() << f;
    EXPECT_EQ(drawing().record(drawing().structure().block(id.index())->end).owner, id.index());
    ASSERT_EQ(erase(id), Acad::eOk);
  }
}

// An image with its reactor and definition, and an entity whose extension dictionary lists, besides
// what it owns, an object of somebody else and the dictionary of all others.
TEST_F(GuardsTest, ErasingFollowsOwnersAndNothingElse) {
  auto d = load(tags(
      "0 SECTION\n2 HEADER\n9 $ACADVER\n1 AC1015\n0 ENDSEC\n0 SECTION\n2 ENTITIES\n"
      "0 LINE\n5 A0\n102 {ACAD_XDICTIONARY\n360 B0\n102 }\n330 1F\n100 AcDbEntity\n8 0\n100 "
      "AcDbLine\n10 0.0\n20 0.0\n11 1.0\n21 1.0\n"
      "0 IMAGE\n5 A1\n330 1F\n100 AcDbEntity\n8 0\n100 AcDbRasterImage\n340 C1\n360 C2\n"
      "0 IMAGE\n5 A2\n330 1F\n100 AcDbEntity\n8 0\n100 AcDbRasterImage\n340 C1\n360 C3\n"
      "0 ENDSEC\n0 SECTION\n2 OBJECTS\n"
      "0 DICTIONARY\n5 C\n330 0\n100 AcDbDictionary\n3 IMMAGINI\n350 C0\n3 ALTRO\n350 D0\n"
      "0 DICTIONARY\n5 B0\n330 A0\n100 AcDbDictionary\n3 DATI\n360 B1\n3 PIANO\n350 B2\n3 FALSO\n"
      "350 D0\n3 RADICE\n360 C\n"
      "0 XRECORD\n5 B1\n330 B0\n100 AcDbXrecord\n280 1\n"
      "0 XRECORD\n5 B2\n330 B0\n100 AcDbXrecord\n280 1\n"
      "0 XRECORD\n5 D0\n330 C\n100 AcDbXrecord\n280 1\n"
      "0 DICTIONARY\n5 C0\n330 C\n100 AcDbDictionary\n3 foto\n350 C1\n"
      "0 IMAGEDEF\n5 C1\n102 {ACAD_REACTORS\n330 C0\n330 C2\n330 C3\n102 }\n330 C0\n100 "
      "AcDbRasterImageDef\n"
      "0 IMAGEDEF_REACTOR\n5 C2\n330 A1\n100 AcDbRasterImageDefReactor\n"
      "0 IMAGEDEF_REACTOR\n5 C3\n330 A2\n100 AcDbRasterImageDefReactor\n"
      "0 ENDSEC\n0 EOF\n"));
  ASSERT_TRUE(d);
  const auto there = [&](std::uint64_t handle) {
    const std::uint32_t i = d->drawing().byHandle(handle);
    return i && !d->drawing().record(i).is(cad::Record::erased);
  };
  const auto eraseHandle = [&](std::uint64_t handle) {
    AcDbObjectId id;
    ASSERT_EQ(d->getAcDbObjectId(id, handle), Acad::eOk);
    EXPECT_EQ(erase(id), Acad::eOk);
  };
  eraseHandle(0xA0);
  for (const std::uint64_t gone : {0xB0, 0xB1, 0xB2}) EXPECT_FALSE(there(gone)) << gone;
  for (const std::uint64_t kept : {0xC, 0xC0, 0xD0}) EXPECT_TRUE(there(kept)) << kept;
  eraseHandle(0xA1);
  EXPECT_FALSE(there(0xC2));
  EXPECT_TRUE(there(0xC1)) << "another image shows it";
  std::string bytes = d->drawing().toBytes();
  EXPECT_EQ(bytes.find("330\nC2"), bytes.npos) << "the definition lists a reactor that is gone";
  EXPECT_NE(bytes.find("330\nC3"), bytes.npos);
  eraseHandle(0xA2);
  EXPECT_FALSE(there(0xC1));
  EXPECT_FALSE(there(0xC3));
  bytes = d->drawing().toBytes();
  EXPECT_EQ(bytes.find("foto"), bytes.npos) << "a dictionary lists a definition that is gone";
}

// Every set of applications that a file needs takes no more memory and time than its names do.
TEST(Guards, ManyApplicationsOnOneObjectOrOnMany) {
  std::string one, many;
  for (int i = 0; i < 50000; ++i) {
    const std::string data = "1001\nA" + std::to_string(i) + "\n1000\nx\n";
    one += data;
    if (i % 5 == 0) many += "  0\nPOINT\n  8\n0\n" + data;
  }
  auto db = load("  0\nSECTION\n  2\nENTITIES\n  0\nPOINT\n  8\n0\n" + one + many +
                 "  0\nENDSEC\n  0\nEOF\n");
  ASSERT_TRUE(db);
  EXPECT_EQ(db->drawing().index().allInSpace().size(), 10001u);
}

}  // namespace
