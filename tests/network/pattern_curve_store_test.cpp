#include "module/network/pattern_curve_store.h"

#include "tests/network/network_testing.h"

namespace vessora {
namespace {

class PatternCurveStore : public DrawnNetwork {
 protected:
  // "id:1.5,2; ..." of what a network has.
  std::string patterns(std::u16string_view network) {
    std::vector<EpaPattern> list;
    LoadPatterns(list, network);
    std::string out;
    for (const EpaPattern& p : list) {
      out += platform::narrow(p.id) + ":";
      for (const double m : p.multipliers) out += number(m) + ",";
      out += ";";
    }
    expectNothingHeld();
    return out;
  }
  std::string curves(std::u16string_view network) {
    std::vector<EpaCurve> list;
    LoadCurves(list, network);
    std::string out;
    for (const EpaCurve& c : list) {
      out += platform::narrow(c.id) + "(" + platform::narrow(c.kind) + "):";
      for (const EpaCurvePoint& p : c.points) out += number(p.x) + "/" + number(p.y) + ",";
      out += ";";
    }
    expectNothingHeld();
    return out;
  }
  static std::string number(double value) {
    char digits[32];
    return {digits, platform::writeReal(digits, value)};
  }
};

TEST_F(PatternCurveStore, ValuesComeBackFromAFileInOrderForTheirNetworkAlone) {
  AddPattern({u"p2", {0.5, 1.25, 1e-9}}, u"A");
  AddPattern({u"p1", {2}}, u"A");
  AddPattern({u"p1", {3}}, u"B");
  AddPattern({u"empty", {}}, u"A");
  AddCurve({u"c", u"PUMP", {{10, 20}, {30, 5.5}}}, u"A");
  AddCurve({u"c", u"odd", {{1, -1}}}, u"A");
  expectNothingHeld();
  saveAndReload();
  EXPECT_EQ(patterns(u"A"), "p2:0.5,1.25,1e-09,;p1:2.0,;");
  EXPECT_EQ(patterns(u"B"), "p1:3.0,;");
  EXPECT_EQ(patterns(u"a"), "");
  EXPECT_EQ(curves(u"A"), "c(PUMP):10.0/20.0,30.0/5.5,;c(odd):1.0/-1.0,;");
  const auto stored = onLayer(layer::kReserved);
  ASSERT_EQ(stored.size(), 5U);
  EXPECT_EQ(data(stored[0], app::kPattern), "p2|A");
  EXPECT_EQ(data(stored[3], app::kCurve), "c|PUMP|A");
  EXPECT_EQ(color(stored[0]), 2);
  EXPECT_EQ(heights(stored[0]), (std::vector<double>{1, 1, 1}));
}

TEST_F(PatternCurveStore, ReplacingErasesTheOldIdInEveryNetwork) {
  AddPattern({u"p", {1}}, u"A");
  AddPattern({u"p", {2}}, u"B");
  AddPattern({u"q", {3}}, u"B");
  ReplacePattern({u"r", {4, 5}}, u"p", u"A");
  EXPECT_EQ(patterns(u"A"), "r:4.0,5.0,;");
  EXPECT_EQ(patterns(u"B"), "q:3.0,;");
  ReplacePattern({u"r", {}}, u"r", u"A");  // without values it is a deletion
  EXPECT_EQ(patterns(u"A"), "");
  AddCurve({u"c", u"PUMP", {{1, 2}}}, u"A");
  ReplaceCurve({u"c", u"VOLUME", {{3, 4}}}, u"c", u"A");
  EXPECT_EQ(curves(u"A"), "c(VOLUME):3.0/4.0,;");
}

TEST_F(PatternCurveStore, DeletingAPatternAlsoTakesThoseThatNameNoNetwork) {
  AddPattern({u"p", {1}}, u"A");
  AddPattern({u"p", {2}}, u"B");
  AddPattern({u"other", {3}}, u"");
  addPolyline(layer::kReserved, {{1, 1, 1}},
              Chain(acutBuildList(1001, app::kPattern, 1000, u"x", RTNONE)));
  EXPECT_EQ(patterns(u""), "other:3.0,;");
  DeletePattern(u"p", u"A");
  EXPECT_EQ(patterns(u"A"), "");
  EXPECT_EQ(patterns(u"B"), "p:2.0,;");
  EXPECT_EQ(onLayer(layer::kReserved).size(), 1U);
}

TEST_F(PatternCurveStore, DeletingACurveLooksAtTheKindInsteadOfTheNetwork) {
  AddCurve({u"c", u"PUMP", {{1, 2}}}, u"A");
  AddCurve({u"c", u"VOLUME", {{3, 4}}}, u"A");
  AddCurve({u"d", u"PUMP", {{5, 6}}}, u"PUMP");
  DeleteCurve(u"c", u"A");
  EXPECT_EQ(curves(u"A"), "c(PUMP):1.0/2.0,;c(VOLUME):3.0/4.0,;");
  DeleteCurve(u"c", u"PUMP");
  EXPECT_EQ(curves(u"A"), "c(VOLUME):3.0/4.0,;");
  EXPECT_EQ(curves(u"PUMP"), "d(PUMP):5.0/6.0,;");
}

TEST_F(PatternCurveStore, NamesAndLabels) {
  EXPECT_TRUE(NameIsFree(u"a", std::vector<EpaPattern>(), u"b"));
  const std::vector<EpaCurve> one = {{u"a", u"", {}}};
  EXPECT_FALSE(NameIsFree(u"a", one));
  EXPECT_TRUE(NameIsFree(u"a", one, u"b"));  // one record and an old name: always free
  const std::vector<EpaCurve> two = {{u"a", u"", {}}, {u"b", u"", {}}};
  EXPECT_FALSE(NameIsFree(u"b", two, u"a"));
  EXPECT_TRUE(NameIsFree(u"b", two, u"b"));
  EXPECT_TRUE(NameIsFree(u"B", two));
  EXPECT_EQ(CurveXLabel(u"VOLUME") + CurveYLabel(u"VOLUME"), u"AltezzaVolume");
  EXPECT_EQ(CurveXLabel(u"HEADLOSS") + CurveYLabel(u"HEADLOSS"), u"PortataPerdita");
  EXPECT_EQ(CurveXLabel(u"pump") + CurveYLabel(u""), u"XY");
}

}  // namespace
}  // namespace vessora
