// Blocks from other drawings, references, and attributes that go along with them.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/cad/sample_drawings.h"
#include "tests/tools/check_drawing.h"

namespace {

using namespace testing_drawings;
constexpr double kPi = 3.14159265358979323846;

std::vector<std::u16string> kindsIn(AcDbObjectId block) {
  std::vector<std::u16string> kinds;
  AcDbBlockTableRecordIterator* it = nullptr;
  Open<AcDbBlockTableRecord>(block)->newIterator(it);
  for (; !it->done(); it->step()) kinds.push_back(Open<AcDbEntity>(it->getEntityId())->dxfName());
  delete it;
  return kinds;
}

void expectPoint(const AcGePoint3d& p, double x, double y, double z = 0) {
  EXPECT_NEAR(p.x, x, 1e-9);
  EXPECT_NEAR(p.y, y, 1e-9);
  EXPECT_NEAR(p.z, z, 1e-9);
}

void expectNoFaults(AcDbDatabase& db) {
  for (const std::string& f : checking::checkDrawing(db.drawing().toBytes())) ADD_FAILURE() << f;
}

TEST(Blocks, ComeWithWhatTheyUse) {
  auto symbol = symbolDrawing();
  AcDbDatabase db;
  AcDbObjectId id, again;
  ASSERT_EQ(db.insert(id, u"Simbolo", symbol.get()), Acad::eOk);
  EXPECT_EQ(db.insert(again, u"SIMBOLO", symbol.get()), Acad::eDuplicateRecordName);
  EXPECT_EQ(db.insert(again, u"X", &db), Acad::eSelfReference);
  EXPECT_EQ(db.insert(again, u"a/b", symbol.get()), Acad::eInvalidInput);
  EXPECT_EQ(kindsIn(id), (std::vector<std::u16string>{u"CIRCLE", u"INSERT", u"TEXT", u"ATTDEF"}));
  cad::Drawing& d = db.drawing();
  expectPoint(Open<AcDbBlockTableRecord>(id)->origin(), 1, 0);
  EXPECT_NE(d.structure().tableEntry(cad::Type::style, u"SCRITTE"), 0u);
  EXPECT_EQ(
      Open<AcDbLayerTableRecord>(d.idOf(d.structure().tableEntry(cad::Type::layer, u"SIMBOLI")))
          ->linetype(),
      u"PUNTI");
  const AcDbObjectId nested = d.idOf(d.structure().blockByName(d.names().find(u"FRECCIA")));
  EXPECT_EQ(kindsIn(nested), (std::vector<std::u16string>{u"LWPOLYLINE"}));
  expectNoFaults(db);
}

// The symbols of the product are of the new form; a base drawing of an old release takes them all
// the same.
TEST(Blocks, GoIntoOldDrawingsAndComeOutOfThem) {
  auto symbol = symbolDrawing();
  auto old = load(oldDrawing());
  AcDbObjectId id;
  ASSERT_EQ(old->insert(id, u"SIMBOLO", symbol.get()), Acad::eOk);
  cad::Drawing& d = old->drawing();
  const AcDbObjectId nested = d.idOf(d.structure().blockByName(d.names().find(u"FRECCIA")));
  EXPECT_EQ(kindsIn(nested), (std::vector<std::u16string>{u"POLYLINE"}));
  ASSERT_FALSE(addReference(*old, id, {5, 5, 0}).isNull());
  expectNoFaults(*old);
  const std::string bytes = d.toBytes();
  EXPECT_NE(bytes.find(tags("66 1\n10 0.0\n20 0.0\n30 0.5\n70 0\n40 0.2\n41 0.2\n")), bytes.npos)
      << bytes;

  AcDbDatabase fresh;
  ASSERT_EQ(fresh.insert(id, u"VECCHIO", old.get()), Acad::eOk);
  const auto kinds = kindsIn(id);
  EXPECT_EQ(kinds,
            (std::vector<std::u16string>{u"INSERT", u"LINE", u"INSERT"}));  // SHAPE cannot come
  EXPECT_EQ(kindsIn(fresh.drawing().idOf(
                fresh.drawing().structure().blockByName(fresh.drawing().names().find(u"PORTA")))),
            (std::vector<std::u16string>{u"LINE", u"ATTDEF"}));
  expectNoFaults(fresh);
}

TEST(Blocks, NamesThatClash) {
  AcDbDatabase inner, db;
  // The source has a block of the name that it gets here, an anonymous one, and one that is here
  // already.
  for (const char16_t* name : {u"TUBO", u"*U1", u"VALVOLA"}) {
    const cad::BlockInfo block = inner.drawing().structure().addBlock(name, {});
    auto* line = new AcDbLine({0, 0, 0}, {2, 2, 2});
    append(inner, line, inner.drawing().idOf(block.id));
    line->close();
    addReference(inner, inner.drawing().idOf(block.id), {1, 1, 1});
  }
  db.drawing().structure().addBlock(u"*U1", {});
  db.drawing().structure().addBlock(u"Valvola", {});
  AcDbObjectId id;
  ASSERT_EQ(db.insert(id, u"TUBO", &inner), Acad::eOk);
  std::vector<std::u16string> used;
  AcDbBlockTableRecordIterator* it = nullptr;
  Open<AcDbBlockTableRecord>(id)->newIterator(it);
  for (; !it->done(); it->step())
    used.push_back(Open<AcDbBlockReference>(it->getEntityId())->blockName());
  delete it;
  ASSERT_EQ(used.size(), 3u);
  EXPECT_NE(used[0], u"TUBO");
  EXPECT_NE(used[1], u"*U1");
  EXPECT_EQ(used[1].substr(0, 2), u"*U");
  EXPECT_EQ(used[2], u"VALVOLA");
  expectNoFaults(db);
  // A reference that contains itself in a file must not hang anything.
  AcDbDatabase loop;
  const cad::BlockInfo block = loop.drawing().structure().addBlock(u"ANELLO", {});
  const AcDbObjectId inside = loop.drawing().idOf(block.id);
  auto* self = new AcDbBlockReference({1, 0, 0}, inside);
  append(loop, self, inside);
  self->close();
  const AcDbObjectId top = addReference(loop, inside, {0, 0, 0});
  AcDbExtents box;
  Open<AcDbEntity>(top)->getGeomExtents(box);
  EXPECT_EQ(db.insert(id, u"COPIA", &loop), Acad::eOk);
}

TEST(Attributes, TakePlaceAndFormFromTheirDefinition) {
  auto symbol = symbolDrawing();
  AcDbDatabase db;
  AcDbObjectId block;
  ASSERT_EQ(db.insert(block, u"S", symbol.get()), Acad::eOk);
  const AcDbObjectId reference = addReference(db, block, {10, 20, 0}, kPi / 2, 2);
  const AcDbObjectId id = attributeOf(reference, u"ID");
  ASSERT_FALSE(id.isNull());
  {
    Open<AcDbAttribute> a(id, AcDb::kForWrite);
    EXPECT_TRUE(a->tag() == u"ID");
    EXPECT_FALSE(a->tag() == u"id");
    expectPoint(a->position(), 10, 24);  // (3,0) less the base point (1,0), turned and doubled
    EXPECT_NEAR(a->height(), 2, 1e-12);
    EXPECT_NEAR(a->rotation(), kPi / 2, 1e-12);
    EXPECT_EQ(a->textStyleName(), u"SCRITTE");
    EXPECT_EQ(a->setTextString(u"N 12"), Acad::eOk);
    EXPECT_EQ(a->setJustification(2, 3, {10, 26, 0}), Acad::eOk);
  }
  {
    Open<AcDbBlockReference> r(reference, AcDb::kForWrite);
    r->setPosition({0, 0, 5});
  }
  expectPoint(Open<AcDbAttribute>(id)->position(), 0, 4, 5);
  {
    Open<AcDbBlockReference> r(reference, AcDb::kForWrite);
    r->setRotation(0);
    r->setScaleFactors({1, 1, 1});
  }
  {
    Open<AcDbAttribute> a(id);
    expectPoint(a->position(), 2, 0, 5);
    EXPECT_NEAR(a->height(), 1, 1e-12);
    EXPECT_NEAR(a->rotation(), 0, 1e-12);
    EXPECT_EQ(a->textString(), u"N 12");
    const cad::TagList& t = cad::Inside::tags(*a);
    expectPoint(t.point(t.find(11)), 3, 0, 5);  // the anchor goes along
    EXPECT_EQ(t.integerOr(74, 0, t.subclass("AcDbAttribute")), 3);
  }
  expectNoFaults(db);
}

// A reference seen from below: its own system has the x axis of the world mirrored.
TEST(Attributes, GoAlongInTheSystemOfTheirReference) {
  auto db = load(oldDrawing());
  cad::Drawing& d = db->drawing();
  const AcDbObjectId reference = d.idOf(d.byHandle(0x30));
  for (const int handle : {0x30, 0x31}) {
    Open<AcDbEntity> e(d.idOf(d.byHandle(static_cast<std::uint64_t>(handle))), AcDb::kForWrite);
    cad::TagList& t = cad::Inside::tagsForWrite(*e);
    t.addPoint(210, {0, 0, -1});
  }
  expectPoint(Open<AcDbBlockReference>(reference)->position(), -10, 10);
  Open<AcDbBlockReference>(reference, AcDb::kForWrite)->setPosition({-12, 11, 0});
  Open<AcDbAttribute> a(attributeOf(reference, u"SIGLA"));
  expectPoint(a->position(), 12, 12);
}

}  // namespace
