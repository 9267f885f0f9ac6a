// HNGeometry and the polyline lists: every call with each of its choices, as the drawing has it
// then.
#include "cad/api/owners.h"
#include "cad/family/hn_engineering.h"
#include "cad/family/ksr.h"
#include "tests/family/family_testing.h"

namespace {

using namespace HNGeometry;

class Geometry : public FamilyTest {
 protected:
  void SetUp() override {
    FamilyTest::SetUp();
    acdbRegApp(u"PROVA");
  }
  const AcGePoint3dArray two{{1, 2, 3}, {4, 5, 6}};
  const cad::Chain data{acutBuildList(1001, u"PROVA", 1040, 1.5, RTNONE)};
};

constexpr char kVertices[] =
    " / VERTEX 8=0 10=1.0 20=2.0 30=3.0 70=32 / VERTEX 8=0 10=4.0 20=5.0 30=6.0 70=32";

TEST_F(Geometry, PolylinesInSpace) {
  const auto head = [](const char* color, const char* flags) {
    return "POLYLINE 8=0" + std::string(color) + " 66=1 10=0.0 20=0.0 30=0.0 70=" + flags +
           kVertices;
  };
  EXPECT_EQ(tagsOf(Create3Dpoly(two, 256, u"", 0, nullptr)), head("", "8"));
  EXPECT_EQ(tagsOf(Create3Dpoly(two, 0, u"", 1, nullptr)), head(" 62=0", "9"));
  EXPECT_EQ(tagsOf(Create3Dpoly(two, 255, u"", 2, nullptr)), head(" 62=255", "8"));
  EXPECT_EQ(tagsOf(Create3Dpoly(two, 7, u"", 3, nullptr)), head(" 62=7", "9"));
  // One chain for a vertex, none for the next, more chains than vertices.
  const ResbufArray chains = {nullptr, data.get(), data.get()};
  EXPECT_EQ(tagsOf(Create3Dpoly(two, 3, u"RETE", 0, data.get(), nullptr, nullptr, &chains)),
            "POLYLINE 8=RETE 62=3 66=1 10=0.0 20=0.0 30=0.0 70=8 1001=PROVA 1040=1.5 / VERTEX "
            "8=RETE 10=1.0 20=2.0 30=3.0 70=32 / VERTEX 8=RETE 10=4.0 20=5.0 30=6.0 70=32 "
            "1001=PROVA 1040=1.5");
  const std::size_t before = entities();
  EXPECT_TRUE(Create3Dpoly({}, 3, u"L", 0, nullptr).isNull());
  EXPECT_TRUE(Create2Dpoly({}, nullptr, nullptr, 3, u"L").isNull());
  EXPECT_EQ(entities(), before);
  // From a list, at most as many vertices as it is said to have.
  datipoli3d third{{7, 8, 9}, 0, nullptr}, second{two[1], 0, &third}, first{two[0], 0, &second};
  const auto ofList = [&](int count, short flag, std::u16string_view linetype) {
    return tagsOf(Create3Dpoly_da_DATIPOLI3D(count, &first, nullptr, 256, u"", flag, nullptr,
                                             nullptr, linetype));
  };
  EXPECT_EQ(ofList(2, 0, u""), head("", "8"));
  EXPECT_EQ(ofList(2, 1, u"CONTINUOUS"),
            "POLYLINE 8=0 6=CONTINUOUS 66=1 10=0.0 20=0.0 30=0.0 70=9" + std::string(kVertices));
  EXPECT_EQ(ofList(9, 0, u""), head("", "8") + " / VERTEX 8=0 10=7.0 20=8.0 30=9.0 70=32");
  EXPECT_EQ(ofList(0, 0, u""), "null");
  EXPECT_EQ(ofList(-1, 0, u"CONTINUOUS"), "null");
}

TEST_F(Geometry, LightPolylinesPointsLinesAndTexts) {
  const std::vector<double> one = {0.5}, three = {0, -1, 2};
  const auto light = [&](const std::vector<double>* bulges, double from, double to, int kind) {
    return tagsOf(Create2Dpoly(two, bulges, nullptr, 256, u"", from, to, kind));
  };
  const std::string open = "LWPOLYLINE 8=0 90=2 70=0 ";
  EXPECT_EQ(light(nullptr, 0, 0, 0), open + "38=3.0 10=1.0 20=2.0 10=4.0 20=5.0");
  EXPECT_EQ(light(&one, 2, 2, 2), open + "43=2.0 38=3.0 10=1.0 20=2.0 42=0.5 10=4.0 20=5.0");
  EXPECT_EQ(light(&three, 2, 1, 0), open + "38=3.0 10=1.0 20=2.0 10=4.0 20=5.0 42=-1.0");
  EXPECT_EQ(tagsOf(Create2Dpoly(two, nullptr, data.get(), 3, u"L", 0, 0, 1)),
            "LWPOLYLINE 8=L 62=3 90=2 70=1 38=3.0 10=1.0 20=2.0 10=4.0 20=5.0 1001=PROVA 1040=1.5");
  const std::string point = "POINT 8=L 62=2 10=1.0 20=2.0 30=3.0 1001=PROVA 1040=1.5";
  EXPECT_EQ(tagsOf(addPOINT(two[0], u"L", 2, data.get())), point);
  const std::size_t before = entities();
  EXPECT_EQ(tagsOf(addPOINT(two[0], u"L", 2, data.get(), nullptr, u"quota")), point);
  ASSERT_EQ(entities(), before + 2);
  EXPECT_EQ(tagsOf(drawing().index().allInSpace().back()),
            "TEXT 8=L 62=2 10=1.0 20=2.0 30=3.0 40=2.5 1=quota");
  EXPECT_EQ(
      tagsOf(createLine(two[1], two[0], u"L", u"CONTINUOUS", 2, data.get())),
      "LINE 8=L 6=CONTINUOUS 62=2 10=4.0 20=5.0 30=6.0 11=1.0 21=2.0 31=3.0 1001=PROVA 1040=1.5");
  EXPECT_EQ(tagsOf(createLine(two[0], two[1], u"", u"", 256)),
            "LINE 8=0 10=1.0 20=2.0 30=3.0 11=4.0 21=5.0 31=6.0");
  const auto text = [&](const char16_t* style, const char16_t* alignment, double rotation) {
    return tagsOf(HNTextCommandTesto(u"L", style, two[0], 2, rotation, u"t", alignment));
  };
  const std::string left = "TEXT 8=L 10=1.0 20=2.0 30=3.0 40=2.0 1=t";
  const std::string anchor = " 11=1.0 21=2.0 31=3.0 73=0";
  EXPECT_EQ(text(u"STANDARD", u"Left", 0), left);
  EXPECT_EQ(text(u"", u"Center", 0), left + " 72=1" + anchor);
  EXPECT_EQ(text(u"nessuno", u"Right", 0), left + " 72=2" + anchor);
  EXPECT_EQ(text(u"Standard", u"Middle", 0), left + " 72=4" + anchor);
  EXPECT_EQ(text(u"Standard", u"Altro", std::acos(-1.0)), left + " 50=180.0");
  EXPECT_EQ(tagsOf(HNTextCommandTesto(u"L", u"", two[0], 0.5, 0, u"t", u"Left", 6)),
            "TEXT 8=L 62=6 10=1.0 20=2.0 30=3.0 40=0.5 1=t");
  // Into another database, and into a block.
  AcDbDatabase other;
  const std::size_t here = entities();
  EXPECT_FALSE(addPOINT(two[0], u"L", 2, nullptr, &other, u"t").isNull());
  EXPECT_FALSE(createLine(two[0], two[1], u"L", u"", 2, nullptr, &other).isNull());
  EXPECT_FALSE(Create3Dpoly(two, 2, u"L", 0, nullptr, &other).isNull());
  EXPECT_FALSE(createNewLayer(u"ALTROVE", nullptr, &other).isNull());
  EXPECT_EQ(other.drawing().index().allInSpace().size(), 4u);
  EXPECT_EQ(drawing().structure().layerNamed(u"ALTROVE", false), 0u);
  const cad::BlockInfo block = drawing().structure().addBlock(u"SEGNO", {});
  {
    const cad::Opened<AcDbBlockTableRecord> record(drawing().idOf(block.id), AcDb::kForWrite);
    EXPECT_FALSE(addPOINT(two[0], u"L", 2, nullptr, nullptr, u"t", record.get()).isNull());
    EXPECT_FALSE(createLine(two[0], two[1], u"L", u"", 2, nullptr, nullptr, record.get()).isNull());
  }
  EXPECT_EQ(entities(), here);
  EXPECT_NE(drawing().structure().firstEntity(block.id), 0u);
}

TEST_F(Geometry, LayersAndLineTypes) {
  const auto made = [&](const char16_t* name, int color) {
    bool isNew = false;
    const std::string tags = tagsOf(createNewLayer(name, &isNew, nullptr, color));
    const std::size_t at = tags.find(" 62=");
    return (isNew ? "new" : "old") +
           (at == tags.npos ? "" : tags.substr(at, tags.find(' ', at + 1) - at));
  };
  std::string layers;
  for (const auto& [name, color] :
       {std::pair(u"A", 1), {u"a", 3}, {u"B", 255}, {u"C", 256}, {u"D", 0}, {u"E", -3}, {u"", 3}})
    layers += made(name, color) + ';';
  EXPECT_EQ(layers, "new 62=1;old 62=1;new 62=255;new 62=7;new 62=7;new 62=7;old;");
  AcDbObjectId type = addLineType(u"TRATTO", u"__ .", {5, -2.5, 0});
  EXPECT_EQ(tagsOf(type),
            "LTYPE 2=TRATTO 70=0 3=__ . 72=65 73=3 40=7.5 49=5.0 74=0 49=-2.5 74=0 49=0.0 74=0");
  EXPECT_TRUE(addLineType(u"tratto", u"", {1}).isNull()) << "the name is taken";
  AcDbObjectId found;
  EXPECT_TRUE(iterateLinetypeTable(u"tratto", found));
  EXPECT_EQ(found, type);
  EXPECT_FALSE(iterateLinetypeTable(u"manca", found));
  EXPECT_EQ(found, type) << "what is not found changes nothing";
  std::string layer;
  for (const auto& [color, linetype] : {std::pair(2, u"TRATTO"),
                                        {256, u"ByLayer"},
                                        {0, u"BYBLOCK"},
                                        {255, u"manca"},
                                        {1, u"Continuous"}}) {
    EXPECT_TRUE(setColorLtypeLayer(u"a", color, linetype));
    const std::string tags = tagsOf(drawing().structure().layerNamed(u"A", false));
    layer += tags.substr(15, tags.find(" 370=") - 15) + ';';
  }
  EXPECT_EQ(layer, "62=2 6=TRATTO;62=2 6=TRATTO;62=2 6=TRATTO;62=255 6=TRATTO;62=1 6=Continuous;");
  EXPECT_FALSE(setColorLtypeLayer(u"MANCA", 1, u"TRATTO"));
  EXPECT_TRUE(RegApplicazione(u"MIA", nullptr));
  EXPECT_TRUE(RegApplicazione(u"MIA", &database));
  EXPECT_FALSE(RegApplicazione(u"", nullptr));
  acdbHostApplicationServices()->setWorkingDatabase(nullptr);
  EXPECT_TRUE(createNewLayer(u"F").isNull() && addPOINT(two[0], u"", 1, nullptr).isNull());
  EXPECT_TRUE(addLineType(u"X", u"", {1}).isNull() &&
              createLine(two[0], two[1], u"", u"", 1).isNull());
  EXPECT_FALSE(setColorLtypeLayer(u"A", 1, u"") || iterateLinetypeTable(u"TRATTO", found) ||
               RegApplicazione(u"MIA", nullptr));
}

TEST_F(Geometry, PlacesAlongAPath) {
  // East 10, a doubled vertex, north 10, west 5; elevations are of no matter.
  datipoli e{{5, 10, 9}, 0, 25, nullptr}, d{{10, 10, 0}, 0, 20, &e}, c{{10, 0, 5}, 0, 10, &d},
      b{{10, 0, 0}, 0, 10, &c}, a{{0, 0, 0}, 0, 0, &b};
  std::u16string places;
  for (const double chainage : {-1.0, 0.0, 4.0, 10.0, 10.5, 20.0, 20.5, 25.0, 99.0}) {
    AcGePoint2d point;
    double direction = -9;
    EXPECT_EQ(XYdaProgsuDatiPoli(&a, chainage, point, direction), 1);
    places += platform::format(u"%g,%g %.3f;", point.x, point.y, direction);
  }
  EXPECT_EQ(places,
            u"0,0 0.000;0,0 0.000;4,0 0.000;10,0 0.000;10,0.5 1.571;10,10 1.571;9.5,10 3.142;5,10 "
            u"3.142;5,10 3.142;");
  AcGePoint2d point(7, 7);
  double direction = 3;
  EXPECT_EQ(XYdaProgsuDatiPoli(&e, 30, point, direction), 1) << "one vertex is a path too";
  EXPECT_EQ(point.x, 5);
  EXPECT_EQ(direction, 0);
  direction = 3;
  EXPECT_EQ(XYdaProgsuDatiPoli(nullptr, 0, point, direction), 0);
  EXPECT_EQ(direction, 3);
}

TEST_F(Geometry, ListsOfPolylines) {
  const AcGePoint3dArray corner = {{0, 0, 0}, {3, 4, 12}, {3, 4, 0}};
  const std::vector<double> bulges = {0.5, 0, -1};
  const struct {
    AcDbObjectId id;
    const char *plan, *space;  // x,y,z(bulge)@chainage
  } cases[] = {
      {Create3Dpoly(corner, 1, u"L", 0, nullptr), "0,0,0(0)@0 3,4,12(0)@5 3,4,0(0)@5 ",
       "3 25 0,0,0@0 3,4,12@13 3,4,0@25 "},
      {Create3Dpoly(corner, 1, u"L", 1, nullptr), "0,0,0(0)@0 3,4,12(0)@5 3,4,0(0)@5 0,0,0(0)@10 ",
       "4 30 0,0,0@0 3,4,12@13 3,4,0@25 0,0,0@30 "},
      {Create2Dpoly(corner, &bulges, nullptr, 1, u"L"), "0,0,0(0.5)@0 3,4,0(0)@5 3,4,0(-1)@5 ",
       "3 5 0,0,0@0 3,4,0@5 3,4,0@5 "},
      {Create2Dpoly(corner, nullptr, nullptr, 1, u"L", 0, 0, 1),
       "0,0,0(0)@0 3,4,0(0)@5 3,4,0(0)@5 0,0,0(0)@10 ", "4 10 0,0,0@0 3,4,0@5 3,4,0@5 0,0,0@10 "}};
  listadatipoli* all = nullptr;
  for (const auto& c : cases) {
    ads_name name;
    acdbGetAdsName(name, c.id);
    datipoli* path = nullptr;
    ASSERT_EQ(LeggiDATIPOLI(name, path), 1);
    std::u16string plan;
    for (const datipoli* v = path; v; v = v->next)
      plan += platform::format(u"%g,%g,%g(%g)@%g ", v->point.x, v->point.y, v->point.z, v->bulge,
                               v->prog);
    EXPECT_EQ(platform::narrow(plan), c.plan);
    LiberaDATIPOLI(path);
    listadatipoli* list = AllocaLISTADATIPOLI(c.id, 1, 0, 0, 0, 0, 0, nullptr, all, 0);
    ASSERT_TRUE(list);
    EXPECT_EQ(list->next, all);
    all = list;
    std::u16string space = platform::format(u"%d %g ", list->numvertici, list->lunghezza);
    const datipoli3d* last = nullptr;
    for (const datipoli3d* v = list->dati3d; v; last = v, v = v->next)
      space += platform::format(u"%g,%g,%g@%g ", v->point.x, v->point.y, v->point.z, v->prog);
    EXPECT_EQ(platform::narrow(space), c.space);
    EXPECT_EQ(list->primo.distanceTo(list->dati3d->point), 0);
    EXPECT_EQ(list->ultimo.distanceTo(last->point), 0);
  }
  LiberaLISTADATIPOLI(all);
  EXPECT_FALSE(AllocaLISTADATIPOLI(createLine(two[0], two[1], u"L", u"", 1), 1, 0, 0, 0, 0, 0,
                                   nullptr, nullptr, 0));
  EXPECT_FALSE(AllocaLISTADATIPOLI({}, 1, 0, 0, 0, 0, 0, nullptr, nullptr, 0));
  LiberaLISTADATIPOLI(nullptr);
  LiberaDATIPOLI(nullptr);
}

TEST_F(Geometry, RowsOfTheFamilysOwnAbstraction) {
  const cad::Chain all(acutBuildList(1001, u"PROVA", 1000, u"t", 1040, 2.75, 1070, -7, 1071, 70000,
                                     1010, AcGePoint3d(8, 2, 3), RTNONE));
  std::vector<AcDbObjectId> points;
  for (int i = 0; i < 3; ++i)
    points.push_back(addPOINT({1.0 * i, 0, 0}, u"P", 4 + i % 2, all.get()));
  createLine(two[0], two[1], u"P", u"", 4);
  KsrEntityUtils* utils = KsrFactory::GetEntityUtils();
  const auto found = [&](int limit, const char16_t* type, int color) {
    KsrDatoArray filter;
    filter.Add(8, u"P");
    if (type) filter.Add(0, type);
    if (color) filter.Add(62, color);
    std::vector<KsrEntityID> result;
    const int answer = utils->SsGet(u"_X", filter, result, limit);
    std::string out = answer == RTNORM ? "" : "error ";
    for (const KsrEntityID& e : result) {
      const auto at = std::find(points.begin(), points.end(), e.id) - points.begin();
      out += static_cast<char>('0' + at);
    }
    return out;
  };
  EXPECT_EQ(found(9, nullptr, 0), "0123");
  EXPECT_EQ(found(2, nullptr, 0), "01");
  EXPECT_EQ(found(0, nullptr, 0), "");
  EXPECT_EQ(found(9, u"POINT", 0), "012");
  EXPECT_EQ(found(9, u"POINT", 4), "02");
  EXPECT_EQ(found(9, nullptr, 5), "1");
  EXPECT_EQ(found(9, u"TEXT", 0), "error ");
  KsrDatoArray rows;
  rows.Add(1, u"alt");
  utils->GetXData({points[0]}, u"PROVA", rows);
  ASSERT_EQ(rows.GetCount(), 6) << "what was there is gone, the name stands first";
  std::u16string out;
  for (int i = 0; i < rows.GetCount(); ++i)
    out += platform::format(u"%d:%s:%g:%d ", rows[i].code, rows[i].text, rows[i].real,
                            rows[i].integer);
  EXPECT_EQ(platform::narrow(out),
            "1001:PROVA:0:0 1000:t:0:0 1040::2.75:2 1070::-7:-7 1071::70000:70000 1010::8:8 ");
  utils->GetXData({points[0]}, u"ALTRA", rows);
  EXPECT_EQ(rows.GetCount(), 0);
  utils->GetXData({}, u"PROVA", rows);
  EXPECT_EQ(rows.GetCount(), 0);
  KsrGeneralUtils* general = KsrFactory::GetGeneralUtils();
  for (const bool on : {true, false}) {
    general->SetExternalMode(on);
    EXPECT_EQ(KsrFactory::GetGeneralUtils()->ExternalMode(), on);
  }
}

}  // namespace
