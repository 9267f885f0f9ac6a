// Selections: every operator, and indexes that follow changes.
#include <gtest/gtest.h>

#include "cad/drawing/select.h"
#include "tests/cad/sample_drawings.h"

namespace {

using namespace testing_drawings;

struct SelectionTest : testing::Test {
  Database db = std::make_unique<AcDbDatabase>();
  Working working{db.get()};
  std::vector<AcDbObjectId> ids;
  cad::Drawing& drawing() { return db->drawing(); }

  AcDbObjectId add(AcDbEntity* entity, std::u16string_view layer, int color,
                   const char16_t* application) {
    entity->setLayer(layer);
    if (color >= 0) entity->setColorIndex(color);
    const AcDbObjectId id = append(*db, entity);
    if (application) {
      acdbRegApp(application);
      setXData(*entity, acutBuildList(1001, application, 1070, 1, RTNONE));
    }
    entity->close();
    ids.push_back(id);
    return id;
  }
  void SetUp() override {
    add(new AcDbPoint(AcGePoint3d()), u"A", 1, u"UNO");   // 0
    add(new AcDbPoint(AcGePoint3d()), u"B", 2, nullptr);  // 1
    add(new AcDbLine({}, {}), u"a", -1, u"DUE");          // 2
    add(new AcDbLine({}, {1, 1, 1}), u"C", 1, u"UNO");    // 3
    auto symbol = symbolDrawing();
    AcDbObjectId block;
    ASSERT_EQ(db->insert(block, u"Simbolo", symbol.get()), Acad::eOk);
    ids.push_back(addReference(*db, block, {1, 1, 0}));  // 4
    Open<AcDbEntity>(ids.back(), AcDb::kForWrite)->setLayer(u"B");
    const AcDbObjectId paper = drawing().idOf(drawing().structure().paperSpace());
    auto* onPaper = new AcDbPoint(AcGePoint3d());
    onPaper->setLayer(u"A");
    ids.push_back(append(*db, onPaper, paper));  // 5
    onPaper->close();
  }
  // Which of the entities a filter finds, by number.
  std::string found(resbuf* chain) {
    const Chain owned(chain);
    const cad::Filter filter(chain);
    std::string out = filter.valid() ? "" : "invalid ";
    std::vector<std::uint32_t> all = filter.select(drawing());
    EXPECT_TRUE(std::is_sorted(all.begin(), all.end()));
    for (const std::uint32_t e : all) {
      EXPECT_EQ(filter.passing(drawing(), {e}).size(), 1U);
      for (std::size_t i = 0; i < ids.size(); ++i) {
        if (ids[i].index() == e) out += std::to_string(i);
      }
    }
    return out;
  }
};

TEST_F(SelectionTest, ItemsAndOperators) {
  EXPECT_EQ(found(nullptr), "012345");
  EXPECT_EQ(found(acutBuildList(8, u"a", RTNONE)), "025");
  EXPECT_EQ(found(acutBuildList(8, u"NESSUNO", RTNONE)), "");
  EXPECT_EQ(found(acutBuildList(0, u"line", RTNONE)), "23");
  EXPECT_EQ(found(acutBuildList(RTDXF0, u"POINT", 8, u"A", RTNONE)), "05");
  EXPECT_EQ(found(acutBuildList(2, u"SIMBOLO", RTNONE)), "4");
  EXPECT_EQ(found(acutBuildList(2, u"", RTNONE)), "");
  EXPECT_EQ(found(acutBuildList(2, u"Freccia", RTNONE)), "");  // stands inside of a block only
  EXPECT_EQ(found(acutBuildList(1001, u"uno", RTNONE)), "03");
  EXPECT_EQ(found(acutBuildList(62, 1, RTNONE)), "03");
  EXPECT_EQ(found(acutBuildList(62, 256, 0, u"LINE", RTNONE)), "2");
  EXPECT_EQ(found(acutBuildList(6, u"bylayer", 67, 0, RTNONE)), "01234");
  EXPECT_EQ(found(acutBuildList(67, 1, RTNONE)), "5");
  EXPECT_EQ(found(acutBuildList(410, u"Model", 8, u"A", RTNONE)), "02");
  EXPECT_EQ(found(acutBuildList(8, u"*", RTNONE)), "");  // texts are literal
  EXPECT_EQ(found(acutBuildList(-4, u"<or", 8, u"B", 1001, u"UNO", -4, u"or>", RTNONE)), "0134");
  EXPECT_EQ(found(acutBuildList(-4, u"<AND", 8, u"A", 1001, u"UNO", -4, u"AND>", RTNONE)), "0");
  EXPECT_EQ(found(acutBuildList(-4, u"<NOT", 8, u"A", -4, u"NOT>", RTNONE)), "134");
  EXPECT_EQ(found(acutBuildList(-4, u"<XOR", 8, u"A", 1001, u"UNO", -4, u"XOR>", RTNONE)), "235");
  EXPECT_EQ(found(acutBuildList(8, u"A", -4, u"<NOT", -4, u"<OR", 62, 1, 0, u"LINE", -4, u"OR>", -4,
                                u"NOT>", RTNONE)),
            "5");
}

TEST_F(SelectionTest, AFilterThatMakesNoSensePassesNothing) {
  EXPECT_EQ(found(acutBuildList(-4, u"<OR", 8, u"A", RTNONE)), "invalid ");
  EXPECT_EQ(found(acutBuildList(-4, u"OR>", RTNONE)), "invalid ");
  EXPECT_EQ(found(acutBuildList(-4, u"<OR", 8, u"A", -4, u"AND>", RTNONE)), "invalid ");
  EXPECT_EQ(found(acutBuildList(40, 1.0, RTNONE)), "invalid ");
}

TEST_F(SelectionTest, IndexesFollowChangesErasingAndUndo) {
  const auto onA = [&] { return found(acutBuildList(8, u"A", RTNONE)); };
  const auto withTwo = [&] { return found(acutBuildList(1001, u"DUE", RTNONE)); };
  EXPECT_EQ(onA(), "025");
  drawing().beginCommand(u"SPOSTA");
  Open<AcDbEntity>(ids[0], AcDb::kForWrite)->setLayer(u"B");
  Open<AcDbEntity>(ids[3], AcDb::kForWrite)->setLayer(u"A");
  Open<AcDbEntity>(ids[2], AcDb::kForWrite)->erase();
  {
    Open<AcDbEntity> first(ids[0], AcDb::kForWrite);
    acdbRegApp(u"DUE");
    setXData(*first.get(), acutBuildList(1001, u"DUE", 1070, 1, RTNONE));
    setXData(*first.get(), acutBuildList(1001, u"UNO", RTNONE));
  }
  add(new AcDbPoint(AcGePoint3d()), u"A", 1, u"DUE");
  drawing().endCommand();
  EXPECT_EQ(onA(), "356");
  EXPECT_EQ(withTwo(), "06");
  EXPECT_EQ(found(acutBuildList(1001, u"UNO", RTNONE)), "3");
  drawing().undo();
  EXPECT_EQ(onA(), "025");
  EXPECT_EQ(withTwo(), "2");
  drawing().redo();
  EXPECT_EQ(onA(), "356");
  EXPECT_EQ(withTwo(), "06");
}

}  // namespace
