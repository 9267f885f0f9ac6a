#include "module/host/tell.h"
#include "tests/network/network_testing.h"

namespace vessora {
namespace {

class HostDrawing : public DrawnNetwork {};

TEST_F(HostDrawing, AttributesGoByExactTagAndTheLastOfEqualTagsIsRead) {
  const AcDbObjectId id = addBlock(u"Junc", u"JUNC-Rete", {1, 2, 3},
                                   {{u"EL", u"1"}, {u"el", u"2"}, {u"EL", u"3"}, {u"BD", u""}});
  const Opened<AcDbBlockReference> block(id, AcDb::kForWrite);
  std::u16string text = u"old";
  EXPECT_TRUE(ReadAttribute(block.get(), u"EL", text));
  EXPECT_EQ(text, u"3");
  EXPECT_FALSE(ReadAttribute(block.get(), u"BD", text));
  EXPECT_FALSE(ReadAttribute(block.get(), u"E", text = u"old"));
  EXPECT_EQ(text, u"");

  WriteAttribute(block.get(), u"EL", u"Città 7");
  WriteAttribute(block.get(), u"missing", u"x");
  const std::u16string_view tags[] = {u"EL", u"el", u"none"};
  std::u16string texts[3];
  EXPECT_EQ(readAttributes(block.get(), tags, texts, 3), 3U);
  EXPECT_EQ(texts[0], u"Città 7");
  EXPECT_EQ(texts[1], u"2");
  std::vector<std::u16string> all;
  const std::unique_ptr<AcDbObjectIterator> at(block->attributeIterator());
  for (; !at->done(); at->step()) {
    all.push_back(Opened<AcDbAttribute>(at->objectId())->textString());
  }
  EXPECT_EQ(all, (std::vector<std::u16string>{u"Città 7", u"2", u"Città 7", u""}));
}

TEST_F(HostDrawing, TheImportedNameWinsOverAnEditedAttributeAndTheUserIsTold) {
  const auto nameOf = [&](const Attributes& attributes, const Chain& stored) {
    const AcDbObjectId id = addBlock(u"Junc", u"JUNC-Rete", {}, attributes, stored);
    const Opened<AcDbBlockReference> block(id);
    std::u16string text = u"old";
    Notices notices;
    const bool some = ReadNameAttribute(block.get(), u"ID", text, notices);
    tell(notices);
    EXPECT_EQ(some, !text.empty());
    return text;
  };
  EXPECT_EQ(nameOf({{u"ID", u"N1"}}, idData(u"N1")), u"N1");
  EXPECT_EQ(nameOf({{u"ID", u"N1"}}, {}), u"N1");
  EXPECT_EQ(nameOf({{u"EL", u"5"}}, idData(u"N1")), u"");
  script(
      "! Riscontrata incongruenza nel nome del nodo:\\nValore attributo: n1\\nValore di "
      "importazione: N1\n"
      "! Riscontrata incongruenza nel nome del nodo:\\nValore attributo: \\nValore di "
      "importazione: N2\n");
  EXPECT_EQ(nameOf({{u"ID", u"n1"}}, idData(u"N1")), u"N1");
  EXPECT_EQ(nameOf({{u"ID", u""}}, idData(u"N2")), u"N2");
}

TEST_F(HostDrawing, RewrittenPolylinesLoseWhatIsBeyondThePoints) {
  const AcDbObjectId id =
      addPolyline(u"PIPE-Rete", {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}}, idData(u"P1"));
  Opened<AcDb3dPolyline> polyline(id, AcDb::kForWrite);
  AcGePoint3d centroid;
  EXPECT_TRUE(PolylineCentroid(polyline.get(), centroid));
  EXPECT_DOUBLE_EQ(centroid.x, 1.5);
  EXPECT_EQ(
      RewritePolyline({{0, 0, 5}, {1, 1, 6}}, polyline.get(), 3, u"Altro", idData(u"P2").release()),
      1);
  EXPECT_EQ(CountVertices(polyline.get()), 2);
  // More points than vertices add none; nothing given changes nothing.
  EXPECT_EQ(RewritePolyline({{0, 0, 7}, {1, 1, 8}, {2, 2, 9}}, polyline.get(), 256, u"", nullptr),
            1);
  EXPECT_EQ(RewritePolyline({}, nullptr, 3, u"", idData(u"P3").release()), 0);
  polyline.close();
  expectNothingHeld();

  saveAndReload();
  const auto ids = onLayer(u"Altro");
  ASSERT_EQ(ids.size(), 1U);
  EXPECT_EQ(heights(ids[0]), (std::vector<double>{7, 8}));
  EXPECT_EQ(color(ids[0]), 3);
  EXPECT_EQ(data(ids[0]), "P2");
}

TEST_F(HostDrawing, ClearingTakesOneApplicationOnly) {
  const AcDbObjectId id = addPolyline(u"PIPE-Rete", {{0, 0, 0}, {1, 0, 0}}, idData(u"P1"));
  {
    const Opened<AcDb3dPolyline> polyline(id, AcDb::kForWrite);
    const Chain material(acutBuildList(1001, app::kMaterial, 1000, u"PEAD", RTNONE));
    polyline->setXData(material.get());
    EXPECT_EQ(ClearXData(polyline.get(), app::kMaterial), 1);
    EXPECT_EQ(ClearXData(polyline.get(), u"UNKNOWN"), 1);
  }
  EXPECT_EQ(data(id), "P1");
  EXPECT_FALSE(Opened<AcDbEntity>(id)->hasXData(app::kMaterial));
  AcDbObjectId style;
  EXPECT_TRUE(FindTextStyle(u"sTANDARD", style));
  EXPECT_FALSE(style.isNull());
  EXPECT_FALSE(FindTextStyle(u"Standard2", style));
  std::u16string value;
  EXPECT_FALSE(readTextVariable(u"NO-SUCH-VARIABLE", value));
  auto& variables = cad::Session::instance().variables;
  EXPECT_FALSE(inpIsFull()) << "until somebody says so";
  for (const auto& [mode, full] :
       {std::pair{u"FULL", true}, {u"full", true}, {u"CLASSIC", false}, {u"", false}}) {
    variables[u"VSINPMODE"] = mode;
    EXPECT_EQ(inpIsFull(), full) << platform::narrow(mode);
  }
  variables.clear();
}

}  // namespace
}  // namespace vessora
