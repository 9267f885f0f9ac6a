// Extended data: what an object may carry, how it is replaced, and how odd files are read.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/cad/sample_drawings.h"

namespace {

using namespace testing_drawings;
using std::u16string;

// A chain as text: "1001=APP 1040=1.5".
std::string shown(const resbuf* chain) {
  std::string out;
  for (const resbuf* n = chain; n; n = n->rbnext) {
    char line[120];
    switch (acutKindOf(n->restype)) {
      case RbKind::text: {
        std::string text;
        for (const char16_t* c = n->resval.rstring; *c; ++c)
          text += *c < 128 ? static_cast<char>(*c) : '?';
        std::snprintf(line, sizeof line, "%d=%.80s ", n->restype, text.c_str());
        break;
      }
      case RbKind::real:
        std::snprintf(line, sizeof line, "%d=%g ", n->restype, n->resval.rreal);
        break;
      case RbKind::int16:
        std::snprintf(line, sizeof line, "%d=%d ", n->restype, n->resval.rint);
        break;
      case RbKind::int32:
        std::snprintf(line, sizeof line, "%d=%d ", n->restype, n->resval.rlong);
        break;
      case RbKind::point:
        std::snprintf(line, sizeof line, "%d=%g,%g,%g ", n->restype, n->resval.rpoint[0],
                      n->resval.rpoint[1], n->resval.rpoint[2]);
        break;
      case RbKind::none:
        line[0] = 0;
        break;
    }
    out += line;
  }
  return out;
}

struct XDataTest : testing::Test {
  Database db = std::make_unique<AcDbDatabase>();
  Working working{db.get()};
  AcDbObjectId id;

  void SetUp() override {
    acdbRegApp(u"UNO");
    acdbRegApp(u"DUE");
    auto* point = new AcDbPoint(AcGePoint3d());
    id = append(*db, point);
    point->close();
  }
  Acad::ErrorStatus set(resbuf* chain) {
    Open<AcDbObject> object(id, AcDb::kForWrite);
    return setXData(*object.get(), chain);
  }
  std::string get(const char16_t* application) {
    Open<AcDbObject> object(id);
    const Chain chain(object->xData(application));
    return shown(chain.head);
  }
};

TEST_F(XDataTest, ReplaceAndRemoveByApplication) {
  EXPECT_EQ(set(acutBuildList(1001, u"UNO", 1000, u"a", 1040, 1.5, 1070, 7, 1071, 70000, RTNONE)),
            Acad::eOk);
  EXPECT_EQ(
      set(acutBuildList(1001, u"DUE", 1010, AcGePoint3d(1, 2, 3), 1041, 2.0, 1005, u"1F", RTNONE)),
      Acad::eOk);
  EXPECT_EQ(get(u"uno"), "1001=UNO 1000=a 1040=1.5 1070=7 1071=70000 ");
  EXPECT_EQ(get(u"DUE"), "1001=DUE 1010=1,2,3 1041=2 1005=1F ");
  EXPECT_EQ(get(u"TRE"), "");
  EXPECT_EQ(set(acutBuildList(1001, u"UNO", 1000, u"b", RTNONE)), Acad::eOk);
  EXPECT_EQ(get(nullptr), "1001=UNO 1000=b 1001=DUE 1010=1,2,3 1041=2 1005=1F ");
  EXPECT_EQ(set(acutBuildList(1001, u"UNO", RTNONE)), Acad::eOk);
  EXPECT_EQ(set(acutBuildList(1001, u"UNO", RTNONE)), Acad::eOk);
  EXPECT_EQ(get(nullptr), "1001=DUE 1010=1,2,3 1041=2 1005=1F ");
  Open<AcDbObject> object(id);
  EXPECT_TRUE(object->hasXData(u"due"));
  EXPECT_FALSE(object->hasXData(u"UNO"));
}

TEST_F(XDataTest, WhatCannotBeKeptIsRefusedAndTheOldStays) {
  ASSERT_EQ(set(acutBuildList(1001, u"UNO", 1000, u"vecchio", RTNONE)), Acad::eOk);
  const u16string longest(255, u'x'), tooLong(256, u'x');
  EXPECT_EQ(set(acutBuildList(1001, u"IGNOTA", 1000, u"a", RTNONE)), Acad::eRegappIdNotFound);
  EXPECT_EQ(set(acutBuildList(1000, u"a", RTNONE)), Acad::eInvalidXdata);
  EXPECT_EQ(set(acutBuildList(1001, u"UNO", 1002, u"{", 1040, 1.0, RTNONE)), Acad::eInvalidXdata);
  EXPECT_EQ(set(acutBuildList(1001, u"UNO", 1002, u"}", 1002, u"{", RTNONE)), Acad::eInvalidXdata);
  EXPECT_EQ(set(acutBuildList(1001, u"UNO", 40, 1.0, RTNONE)), Acad::eInvalidXdata);
  EXPECT_EQ(set(acutBuildList(1001, u"UNO", 1040, std::nan(""), RTNONE)), Acad::eInvalidXdata);
  EXPECT_EQ(set(acutBuildList(1001, u"UNO", 1011, AcGePoint3d(0, HUGE_VAL, 0), RTNONE)),
            Acad::eInvalidXdata);
  EXPECT_EQ(set(acutBuildList(1001, u"UNO", 1004, u"ABC", RTNONE)), Acad::eInvalidXdata);
  EXPECT_EQ(set(acutBuildList(1001, u"UNO", 1000, tooLong, RTNONE)), Acad::eXdataSizeExceeded);
  EXPECT_EQ(get(u"UNO"), "1001=UNO 1000=vecchio ");
  EXPECT_EQ(set(acutBuildList(1001, u"UNO", 1000, longest, RTNONE)), Acad::eOk);
  // The limit counts all applications of the object together; what is replaced does not count.
  const auto filling = [&](const char16_t* application, int texts) {
    resbuf* chain = acutBuildList(1001, application, RTNONE);
    resbuf* tail = chain;
    for (int i = 0; i < texts; ++i) {
      tail->rbnext = acutBuildList(1000, longest, RTNONE);
      tail = tail->rbnext;
    }
    return chain;
  };
  EXPECT_EQ(set(filling(u"UNO", 62)), Acad::eOk);
  EXPECT_EQ(set(filling(u"UNO", 63)), Acad::eOk);
  EXPECT_EQ(set(filling(u"UNO", 64)), Acad::eXdataSizeExceeded);
  EXPECT_EQ(set(filling(u"DUE", 1)), Acad::eXdataSizeExceeded);
  Open<AcDbObject> reading(id);
  EXPECT_EQ(setXData(*reading.get(), acutBuildList(1001, u"UNO", RTNONE)), Acad::eNotOpenForWrite);
}

TEST_F(XDataTest, OldFilesKeepBrokenTriplesAndCountBytes) {
  db = load(oldDrawing());
  const Working current(db.get());
  id = db->drawing().idOf(db->drawing().byHandle(0x33));
  EXPECT_EQ(get(nullptr), "1001=ALTRA 1000=a 1020=7.5 1040=1 ");
  acdbRegApp(u"UNO");
  EXPECT_EQ(set(acutBuildList(1001, u"UNO", 1000, u"\u00e8", RTNONE)), Acad::eOk);
  EXPECT_NE(db->drawing().toBytes().find(
                tags("1001 ALTRA\n1000 a\n1020 7.5\n1040 1.0\n1001 UNO\n1000 \xE8\n")),
            std::string::npos);
  // 40 characters outside the code page take seven bytes each.
  EXPECT_EQ(set(acutBuildList(1001, u"UNO", 1000, u16string(40, u'\u0416'), RTNONE)),
            Acad::eXdataSizeExceeded);
  EXPECT_EQ(set(acutBuildList(1001, u"UNO", 1000, u16string(36, u'\u0416'), RTNONE)), Acad::eOk);
  Open<AcDbObject> object(id);
  const Chain chain(object->xData(u"UNO"));
  EXPECT_EQ(u16string(chain.head->rbnext->resval.rstring), u16string(36, u'\u0416'));
}

TEST_F(XDataTest, BytesAreHexInAsciiAndPlainInBinary) {
  cad::Format binary;
  binary.binary = true;
  const std::string head("AutoCAD Binary DXF\r\n\x1A\0", 22);
  std::string bytes = head;
  auto source =
      load(tags("0 SECTION\n2 HEADER\n9 $ACADVER\n1 AC1027\n9 $HANDSEED\n5 FF\n0 ENDSEC\n0 "
                "SECTION\n2 ENTITIES\n"
                "0 POINT\n5 50\n330 1F\n100 AcDbEntity\n8 0\n160 3\n310 00FF0a\n100 AcDbPoint\n10 "
                "1.0\n20 2.0\n"
                "30 3.0\n290 1\n1001 UNO\n1004 0A0B0C\n0 ENDSEC\n0 EOF\n"));
  cad::Drawing& from = source->drawing();
  cad::TagList t;
  char text[400];
  for (std::uint32_t i = from.records().first(); i; i = from.record(i).next) {
    from.parse(i, t);
    t.transcode(binary);
    bytes.append(text, static_cast<std::size_t>(t.write(text) - text));
  }
  EXPECT_NE(bytes.find(std::string("\x36\x01\x03\x00\xFF\x0A", 6)),
            bytes.npos);  // 310, three bytes
  db = load(bytes);
  ASSERT_TRUE(db);
  const Working current(db.get());
  acdbRegApp(u"UNO");
  id = db->drawing().idOf(db->drawing().byHandle(0x50));
  EXPECT_EQ(get(u"UNO"), "1001=UNO 1004=0A0B0C ");
  EXPECT_EQ(
      set(acutBuildList(1001, u"UNO", 1004, u"FF00FF00", 1071, -2, 1070, -3, 1040, 0.1, RTNONE)),
      Acad::eOk);
  db = load(db->drawing().toBytes());
  id = db->drawing().idOf(db->drawing().byHandle(0x50));
  EXPECT_EQ(get(u"UNO"), "1001=UNO 1004=FF00FF00 1071=-2 1070=-3 1040=0.1 ");
  EXPECT_EQ(Open<AcDbPoint>(id)->position().z, 3);
}

}  // namespace
