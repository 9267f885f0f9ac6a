// What depends on the version and the form of a drawing: which tags a new object may have, how long
// binary values are, and what a saved drawing shows when it is opened.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

#include "cad/api/table.h"
#include "platform/text.h"
#include "tests/cad/drawing_testing.h"

namespace {

using namespace testing_drawings;

// The codes of a new object's tags between its marker and the next, in a drawing of a version.
std::string codesIn(int version, const std::string& object, std::string_view marker) {
  auto db = load(tags("0 SECTION\n2 HEADER\n9 $ACADVER\n1 AC" + std::to_string(version) +
                      "\n9 $HANDSEED\n5 FF\n0 ENDSEC\n0 SECTION\n2 ENTITIES\n0 ENDSEC\n0 EOF"));
  cad::Drawing& d = db->drawing();
  const auto source =
      load(tags("0 SECTION\n2 HEADER\n9 $ACADVER\n1 AC1027\n0 ENDSEC\n0 SECTION\n2 "
                "ENTITIES\n" +
                object + "\n0 ENDSEC\n0 EOF"));
  cad::TagList t;
  const std::uint32_t space = source->drawing().structure().modelSpace();
  source->drawing().parse(source->drawing().structure().firstEntity(space), t);
  d.writer().complete(t, 0x50, {.owner = d.structure().modelSpace(), .entity = true});
  std::string codes;
  const cad::TagRange range = marker.empty() ? t.body() : t.subclass(marker);
  for (int i = range.begin; i < range.end; ++i) codes += std::to_string(t[i].code) + " ";
  return codes;
}

TEST(Versions, NewTagsStayOutOfReleasesThatStumbleOverThem) {
  const std::string line =
      "0 LINE\n5 1\n330 2\n100 AcDbEntity\n8 0\n6 ByLayer\n62 1\n370 30\n48 1.0\n60 0\n290 1\n390 "
      "F\n"
      "410 Model\n420 255\n430 x\n440 1\n347 A\n348 B\n100 AcDbLine\n10 0.0\n20 0.0\n11 1.0\n21 "
      "1.0\n"
      "1001 ACAD\n1040 1.0";
  EXPECT_EQ(codesIn(1012, line, "AcDbEntity"), "8 6 62 48 60 ");
  EXPECT_EQ(codesIn(1014, line, "AcDbEntity"), "8 6 62 48 60 ");
  EXPECT_EQ(codesIn(1015, line, "AcDbEntity"), "8 6 62 370 48 60 290 390 410 ");
  EXPECT_EQ(codesIn(1018, line, "AcDbEntity"), "8 6 62 370 48 60 290 390 410 420 430 440 347 348 ");
  EXPECT_EQ(codesIn(1032, line, "AcDbEntity"), "8 6 62 370 48 60 290 390 410 420 430 440 347 348 ");
  for (const int version : {1012, 1015, 1018, 1027}) {
    EXPECT_EQ(codesIn(version, line, "AcDbLine"), "10 20 11 21 ") << version;
  }
  // Without markers: no subclass, no owner, nothing beyond the codes of that time.
  EXPECT_EQ(codesIn(1009, line, ""), "8 6 62 10 20 11 21 ");

  const std::string attribute =
      "0 ATTDEF\n5 1\n330 2\n100 AcDbEntity\n8 0\n100 AcDbText\n10 0.0\n20 0.0\n40 1.0\n1 x\n100 "
      "AcDbAttributeDefinition\n280 0\n3 p\n2 T\n70 0\n280 1";
  EXPECT_EQ(codesIn(1018, attribute, "AcDbAttributeDefinition"), "3 2 70 ");
  EXPECT_EQ(codesIn(1021, attribute, "AcDbAttributeDefinition"), "280 3 2 70 280 ");
}

TEST(Versions, KindsOfObjectsNeedTheReleaseThatBroughtThem) {
  const auto taken = [](int version, AcDbEntity* entity) {
    auto db = load(tags("0 SECTION\n2 HEADER\n9 $ACADVER\n1 AC" + std::to_string(version) +
                        "\n9 $HANDSEED\n5 FF\n0 ENDSEC\n0 SECTION\n2 ENTITIES\n0 ENDSEC\n0 EOF"));
    const Working current(db.get());
    const AcDbObjectId id = append(*db, entity);
    if (id.isNull()) return false;
    entity->close();
    return true;
  };
  for (const int version : {1009, 1012, 1014, 1015, 1018, 1021, 1027, 1032}) {
    EXPECT_TRUE(taken(version, new AcDbLine({0, 0, 0}, {1, 1, 1}))) << version;
    EXPECT_EQ(taken(version, new AcDbPolyline({{{0, 0}, 0}, {{1, 1}, 0}}, false, 0, 0)),
              version >= 1014)
        << version;
    EXPECT_EQ(taken(version, new AcDbTable), version >= 1018) << version;
  }
}

TEST(Versions, BinaryValuesOfEveryLengthAndCode) {
  for (const bool wide : {false, true}) {
    cad::Format format;
    format.binary = true;
    format.wideCodes = wide;
    cad::TagList t;
    t.create(format, "POINT");
    for (const int code : {5, 40, 62, 90, 140, 254, 255, 280, 290, 310, 1000, 1004, 1040, 1071}) {
      if (code == 310 || code == 1004) {
        std::string hex;  // 127 bytes, the most that one value holds
        for (int i = 0; i < 127; ++i) hex += i % 2 ? "FF" : "80";
        t.addAscii(code, hex);
        t.addAscii(code, "");
      } else if (code == 5 || code == 1000) {
        t.addAscii(code, code == 5 ? "1F" : std::string(255, 'x'));
      } else if (code == 40 || code == 140 || code == 1040) {
        t.addReal(code, -0.1);
      } else {
        t.addInteger(code, code == 290 || code == 280 ? 1 : -2);
      }
    }
    std::string bytes(t.writtenSize() + 16, '\0');
    bytes.resize(static_cast<std::size_t>(t.write(bytes.data()) - bytes.data()));
    cad::TagList again;
    ASSERT_TRUE(again.parse(format, bytes)) << wide;
    ASSERT_EQ(again.size(), t.size()) << wide;
    for (int i = 0; i < t.size(); ++i) {
      EXPECT_EQ(again[i].code, t[i].code);
      EXPECT_EQ(again[i].bytes(), t[i].bytes()) << t[i].code;
    }
  }
  // A chunk of more than 127 bytes, as some programs write them: its length is a byte without sign.
  cad::Format format;
  format.binary = true;
  format.wideCodes = true;
  std::string bytes("\x00\x00POINT\x00", 8);
  bytes += std::string("\x36\x01\xC8", 3) + std::string(200, '\x7F');
  bytes += std::string("\x3E\x00\x05\x00", 4);
  cad::TagList t;
  ASSERT_TRUE(t.parse(format, bytes));
  ASSERT_EQ(t.size(), 3);
  EXPECT_EQ(t[1].size, 200U);
  EXPECT_EQ(t.integer(2), 5);
}

// The window on which programs open the drawing: centre, height, and the header's extents.
std::string viewOf(const std::vector<AcGePoint3d>& drawn, const char* layer = "0") {
  AcDbDatabase db;
  const Working current(&db);
  cad::Drawing& d = db.drawing();
  {
    Open<AcDbLayerTableRecord> hidden(d.idOf(d.structure().layerNamed(u"NASCOSTO", true)),
                                      AcDb::kForWrite);
    hidden->setIsFrozen(true);
  }
  for (const AcGePoint3d& p : drawn) {
    auto* point = new AcDbPoint(p);
    point->setLayer(platform::widen(layer));
    append(db, point);
    point->close();
  }
  // On a frozen layer, far away: what is not seen does not count.
  auto* far = new AcDbPoint({-1e6, -1e6, 0});
  far->setLayer(u"NASCOSTO");
  append(db, far);
  far->close();
  d.fitView();
  cad::TagList t;
  d.parse(d.structure().tableEntry(cad::Type::vport, u"*Active"), t);
  const cad::TagRange body = t.body();
  char text[200];
  std::snprintf(text, sizeof text, "%.6g %.6g high %.6g of aspect %.6g", t.realOr(12, 0, body),
                t.realOr(22, 0, body), t.realOr(40, 0, body), t.realOr(41, 0, body));
  return text + std::string(" from ") + platform::narrow(d.header().text("$EXTMIN")) + " to " +
         platform::narrow(d.header().text("$EXTMAX"));
}

TEST(Versions, ADrawingOpensOnWhatWasDrawn) {
  const std::string untouched = viewOf({});
  const auto aspect = [&] { return std::stod(untouched.substr(untouched.find("aspect ") + 7)); }();
  const auto high = [&](double wide, double tall) {
    char text[40];
    std::snprintf(text, sizeof text, "high %.6g of", std::max({tall, wide / aspect, 10.0}) * 1.1);
    return std::string(text);
  };
  const auto expectView = [&](const std::vector<AcGePoint3d>& drawn, const std::string& centre,
                              double wide, double tall) {
    const std::string view = viewOf(drawn);
    EXPECT_EQ(view.substr(0, centre.size()), centre);
    EXPECT_NE(view.find(high(wide, tall)), view.npos) << view << " / " << high(wide, tall);
  };
  ASSERT_GT(aspect, 1.0);
  expectView({{1650000, 5030000, 90}, {1652000, 5031000, 120}}, "1.651e+06 5.0305e+06", 2000, 1000);
  expectView({{0, 0, 0}, {4000, 10, 0}}, "2000 5", 4000, 10);
  expectView({{0, 0, 0}, {10, 4000, 0}}, "5 2000", 10, 4000);
  expectView({{-7, -8, 0}}, "-7 -8", 0, 0);
  const std::string map = viewOf({{1650000, 5030000, 90}, {1652000, 5031000, 120}});
  EXPECT_NE(map.find("from 1650000"), map.npos) << map;
  EXPECT_NE(map.find("to 1652000"), map.npos) << map;
  EXPECT_EQ(viewOf({{5e5, 5e5, 0}}, "NASCOSTO"), untouched);
}

}  // namespace
