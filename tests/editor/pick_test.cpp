// Pointing at entities: by window, crossing, point, handle; what is seen and what is left alone.
#include "tests/editor/editor_testing.h"

namespace {

std::string layer(const char* name, int flags, int color) {
  return "0 LAYER\n2 " + std::string(name) + "\n70 " + std::to_string(flags) + "\n62 " +
         std::to_string(color) + "\n6 CONTINUOUS\n";
}

std::string line(const char* handle, const char* on, const char* from, const char* to,
                 const char* more = "") {
  const auto point = [](const std::string& text, int code) {
    const std::size_t comma = text.find(',');
    return std::to_string(code) + " " + text.substr(0, comma) + "\n" + std::to_string(code + 10) +
           " " + text.substr(comma + 1) + "\n";
  };
  return "0 LINE\n5 " + std::string(handle) + "\n8 " + on + "\n" + more + point(from, 10) +
         point(to, 11);
}

// Lines along y = 0, 1, 2... over x from 0 to 10, each on a layer in another state.
std::string drawingBytes(const char* tileMode) {
  return testing_drawings::tags(
      "0 SECTION\n2 HEADER\n9 $ACADVER\n1 AC1009\n9 $TILEMODE\n70 " + std::string(tileMode) +
      "\n9 $UCSORG\n10 100.0\n20 200.0\n30 5.0\n9 $UCSXDIR\n10 0.0\n20 1.0\n30 0.0\n"
      "9 $UCSYDIR\n10 -1.0\n20 0.0\n30 0.0\n0 ENDSEC\n"
      "0 SECTION\n2 TABLES\n0 TABLE\n2 LAYER\n70 5\n" +
      layer("0", 0, 7) + layer("GELO", 1, 3) + layer("SPENTO", 0, -3) + layer("CHIUSO", 4, 3) +
      layer("GELATO E CHIUSO", 5, 3) +
      "0 ENDTAB\n0 ENDSEC\n0 SECTION\n2 BLOCKS\n"
      "0 BLOCK\n8 0\n2 SEGNO\n70 0\n10 0.0\n20 0.0\n" +
      line("50", "0", "-1,-1", "1,1") + "0 ENDBLK\n8 0\n0 ENDSEC\n0 SECTION\n2 ENTITIES\n" +
      line("31", "0", "0,0", "10,0") + line("32", "GELO", "0,1", "10,1") +
      line("33", "SPENTO", "0,2", "10,2") + line("34", "CHIUSO", "0,3", "10,3") +
      line("35", "0", "0,4", "10,4", "67 1\n") + line("36", "0", "0,5", "10,5", "60 1\n") +
      line("37", "MANCA", "0,6", "10,6") + line("38", "0", "20,20", "30,30") +
      "0 INSERT\n5 39\n8 0\n2 SEGNO\n10 50.0\n20 50.0\n" +
      "0 POLYLINE\n5 3A\n8 0\n66 1\n10 0.0\n20 0.0\n30 0.0\n"
      "0 VERTEX\n5 3B\n8 0\n10 70.0\n20 0.0\n0 VERTEX\n5 3C\n8 0\n10 80.0\n20 0.0\n"
      "0 VERTEX\n5 3D\n8 0\n10 80.0\n20 10.0\n0 SEQEND\n5 3E\n8 0\n" +
      line("3F", "0", "900,900", "950,950", "67 1\n") + "0 ENDSEC\n0 EOF\n");
}

class PickTest : public EditorTest {
 protected:
  void SetUp() override {
    EditorTest::SetUp();
    openBytes(drawingBytes("1"));
  }
  // Handles of what the answers select, or the code of a selection that failed.
  std::string picked(Texts answers, int expected = RTNORM, resbuf* filter = nullptr) {
    ui.answers = std::move(answers);
    ui.complaints.clear();
    std::string out;
    ads_name set;
    const cad::Chain owner(filter);
    EXPECT_EQ(acedSSGet(nullptr, nullptr, nullptr, filter, set), expected);
    std::int32_t n = 0;
    acedSSLength(set, &n);
    for (std::int32_t i = 0; i < n; ++i) {
      ads_name name;
      AcDbObjectId id;
      EXPECT_EQ(acedSSName(set, i, name), RTNORM);
      EXPECT_EQ(acdbGetObjectId(id, name), RTNORM);
      const cad::Opened<AcDbEntity> entity(id);
      out += (out.empty() ? "" : " ") + platform::narrow(platform::format(u"%x", entity->handle()));
    }
    ads_name past;
    EXPECT_EQ(acedSSName(set, n, past), RTERROR);
    EXPECT_EQ(acedSSName(set, -1, past), RTERROR);
    EXPECT_EQ(acedSSFree(set), expected == RTNORM ? RTNORM : RTERROR);
    EXPECT_EQ(session.liveSelections(), 0);
    return out;
  }
  std::string window(const char16_t* text) { return picked({text, u"<invio>"}); }
  std::string nothing(const char16_t* text) { return picked({text, u"<invio>"}, RTERROR); }
  // The handle that one pick hits, or empty.
  std::string hit(std::u16string_view answer) {
    ui.answers = {std::u16string(answer)};
    ads_name name;
    AcGePoint3d point;
    if (acedEntSel(u"", name, point) != RTNORM) return "";
    AcDbObjectId id;
    acdbGetObjectId(id, name);
    const cad::Opened<AcDbEntity> entity(id);
    return platform::narrow(platform::format(u"%x", entity->handle()));
  }
};

TEST_F(PickTest, WindowsTakeWhatLiesInsideAndCrossingsWhatTheyTouch) {
  EXPECT_EQ(window(u"F -1,-1 100,100"), "31 34 37 38 39 3a");
  EXPECT_EQ(window(u"f 0,0 10,0"), "31") << "the edge is inside";
  EXPECT_EQ(window(u"W 10,0 0,0"), "31") << "from any corner";
  EXPECT_EQ(nothing(u"F 0.001,0 10,0"), "");
  EXPECT_EQ(nothing(u"F 0,0 9.999,0"), "");
  EXPECT_EQ(nothing(u"F 20,20.001 30,30"), "");
  EXPECT_EQ(nothing(u"F 20,20 30,29.999"), "");
  EXPECT_EQ(window(u"F 20,30 30,20"), "38");
  EXPECT_EQ(window(u"I 30,30 40,40"), "38") << "the edge touches";
  EXPECT_EQ(window(u"c 10,10 20,20"), "38");
  EXPECT_EQ(nothing(u"I 30.001,20 40,30"), "");
  EXPECT_EQ(nothing(u"I 20,30.001 30,40"), "");
  EXPECT_EQ(nothing(u"C 10,20 19.999,30"), "");
  EXPECT_EQ(nothing(u"C 20,10 30,19.999"), "");
  EXPECT_EQ(window(u"I 5,-1 6,3"), "31 34");
  EXPECT_EQ(window(u"F 49,49 51,51"), "39") << "a reference is as large as its block";
  EXPECT_EQ(nothing(u"F 49.5,49 51,51"), "");
  EXPECT_EQ(window(u"F 70,0 80,10"), "3a");
}

TEST_F(PickTest, OnlyWhatIsSeenInTheCurrentSpaceIsPicked) {
  for (const char16_t* all : {u"tutto", u"ALL", u"*"}) {
    EXPECT_EQ(window(all), "31 34 37 38 39 3a");
  }
  EXPECT_EQ(nothing(u"F -1,0.5 11,2.5"), "") << "frozen and switched off";
  EXPECT_EQ(hit(u"5,1.4"), "31") << "a frozen line is nearer";
  EXPECT_EQ(hit(u"5,3.9"), "34") << "nor those of the layout and hidden ones";
  // A handle is no look: it finds everything that is there.
  for (const char16_t* handle : {u"#31", u"#32", u"#33", u"#35", u"#36"}) {
    EXPECT_EQ(platform::widen(hit(handle)), std::u16string_view(handle).substr(1));
  }
  // Commands that ask for the whole drawing get it.
  ads_name set;
  ASSERT_EQ(acedSSGet(u"_X", nullptr, nullptr, nullptr, set), RTNORM);
  std::int32_t n = 0;
  acedSSLength(set, &n);
  EXPECT_EQ(n, 11);
  acedSSFree(set);
  openBytes(drawingBytes("0"));
  EXPECT_EQ(window(u"tutto"), "35 3f");
  EXPECT_EQ(hit(u"5,3.9"), "35");
  EXPECT_EQ(hit(u"5,-1"), "");
}

TEST_F(PickTest, ASelectionGrowsUntilEnterAndPassesTheFilter) {
  EXPECT_EQ(picked({u"F 20,20 30,30", u"5,0", u"#34", u"5,0", u"<invio>"}), "31 34 38")
      << "each once, in drawing order";
  EXPECT_EQ(picked({u"tutto", u"<invio>"}, RTNORM, acutBuildList(0, u"line", RTNONE)),
            "31 34 37 38");
  EXPECT_EQ(picked({u"tutto", u"<invio>"}, RTERROR, acutBuildList(0, u"TEXT", RTNONE)), "");
  EXPECT_EQ(picked({u"5,0", u"<esc>"}, RTCAN), "");
  EXPECT_EQ(picked({u"F 1,1", u"200,200", u"#99", u"qui", u"F 0,0 10,0", u"<invio>"}), "31");
  EXPECT_EQ(ui.complaints.size(), 4u);
  EXPECT_EQ(ui.complaints[0], u"Una finestra si indica con due punti: F x1,y1 x2,y2");
  ads_name set;
  EXPECT_EQ(acedSSGet(u"P", nullptr, nullptr, nullptr, set), RTREJ);
}

TEST_F(PickTest, APointHitsTheNearestWithinTheAperture) {
  EXPECT_EQ(hit(u"5,-4.999"), "31");
  EXPECT_EQ(hit(u"5,-5"), "") << "the aperture itself is too far";
  EXPECT_EQ(hit(u"-3,-3"), "31") << "measured from the end, not from the line beyond it";
  EXPECT_EQ(hit(u"-4,-4"), "");
  session.variables[u"APERTURE"] = u"10";
  EXPECT_EQ(hit(u"-4,-4"), "31");
  session.variables[u"APERTURE"] = u"0.5";
  EXPECT_EQ(hit(u"5,-1"), "");
  EXPECT_EQ(hit(u"25,25"), "38");
  EXPECT_EQ(hit(u"24,26"), "") << "beside a slanted line, within its box";
  EXPECT_EQ(hit(u"50.9,50"), "39");
  EXPECT_EQ(hit(u"51.6,50"), "");
  EXPECT_EQ(hit(u"75,0.4"), "3a");
  EXPECT_EQ(hit(u"80.3,5"), "3a");
  EXPECT_EQ(hit(u"75,5"), "");
  for (const char16_t* wrong : {u"#FFFF", u"#50", u"#3B", u"=nessuno", u"5", u"5,a", u"1,2,3,4"}) {
    ui.complaints.clear();
    EXPECT_EQ(hit(wrong), "");
    EXPECT_EQ(ui.complaints.size(), 1u);
  }
  run(u"CANCELLA", {u"#38", u"<invio>"});
  EXPECT_EQ(hit(u"#38"), "") << "an erased one is not there";
}

TEST_F(PickTest, ErasingLeavesLockedLayersAlone) {
  EXPECT_EQ(run(u"CANCELLA", {u"tutto", u"<invio>"}),
            u"\n5 oggetti cancellati.\n1 oggetto su layer bloccati: non cancellato.");
  EXPECT_EQ(window(u"tutto"), "34");
  for (const char16_t* handle : {u"#32", u"#33", u"#35", u"#36"}) EXPECT_NE(hit(handle), "");
  run(u"U");
  EXPECT_EQ(window(u"tutto"), "31 34 37 38 39 3a");
  EXPECT_EQ(run(u"CANCELLA", {u"<esc>"}), u"\n0 oggetti cancellati.");
}

TEST_F(PickTest, TheWholePlanIsTheModelsAlone) {
  run(u"ZOOM", {u"<invio>"});
  EXPECT_EQ(session.view.low.x, 0);
  EXPECT_EQ(session.view.low.y, 0);
  EXPECT_EQ(session.view.high.x, 80);
  EXPECT_EQ(session.view.high.y, 51) << "a reference with its block, no line of the layout";
}

TEST_F(PickTest, PointsGoBetweenTheUsersSystemAndTheWorld) {
  const auto trans = [](const AcGePoint3d& p, int from, int to, bool displacement) {
    resbuf a{}, b{};
    a.restype = b.restype = RTSHORT;
    a.resval.rint = static_cast<short>(from);
    b.resval.rint = static_cast<short>(to);
    AcGePoint3d out;
    EXPECT_EQ(acedTrans(p, &a, &b, displacement, out), RTNORM);
    return std::vector<double>{out.x, out.y, out.z};
  };
  using Numbers = std::vector<double>;
  // The user's X points along the world's Y, his Y against its X.
  EXPECT_EQ(trans({1, 2, 3}, 1, 0, false), (Numbers{98, 201, 8}));
  EXPECT_EQ(trans({98, 201, 8}, 0, 1, false), (Numbers{1, 2, 3}));
  EXPECT_EQ(trans({1, 2, 3}, 1, 0, true), (Numbers{-2, 1, 3}));
  EXPECT_EQ(trans({-2, 1, 3}, 0, 1, true), (Numbers{1, 2, 3}));
  EXPECT_EQ(trans({1, 2, 3}, 0, 0, false), (Numbers{1, 2, 3}));
  EXPECT_EQ(trans({1, 2, 3}, 1, 1, false), (Numbers{1, 2, 3}));
  AcGePoint3d world;
  EXPECT_TRUE(acdbUcs2Wcs({1, 2, 3}, world, false));
  EXPECT_EQ(world.x, 98);
  EXPECT_TRUE(acdbUcs2Wcs({1, 2, 3}, world, true));
  EXPECT_EQ(world.x, -2);
  EXPECT_EQ(acedTrans({}, nullptr, nullptr, false, world), RTERROR);
}

}  // namespace
