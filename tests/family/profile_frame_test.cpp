// The drawing of a profile, line by line and text by text.
#include <algorithm>
#include <cmath>

#include "cad/family/hn_engineering.h"
#include "cad/family/profile.h"
#include "platform/format.h"
#include "tests/family/family_testing.h"

namespace {

using cad::ProfileChainData;
using cad::ProfileLayout;
using cad::ProfileTitle;

class ProfileFrame : public FamilyTest {
 protected:
  static ProfileTitle title(double height, double width, const char16_t* scale = u"500") {
    return {u"Rete", u"uno", u"100", u"3.2", scale, u"100", height, width};
  }
  // What a block holds, one behind the other: "colour x1,y1 x2,y2;" for a line and "colour text@x,y
  // height angle across condensed;" for a text, with tag, prompt and flags for an attribute.
  std::string contents(const cad::BlockInfo& block) {
    std::string all;
    cad::TagList t;
    for (std::uint32_t e = drawing().structure().firstEntity(block.id); e;
         e = drawing().structure().nextEntity(block.id, e)) {
      drawing().parse(e, t);
      const auto number = [&](int code) { return t.realOr(code, 0, t.body()); };
      const int color = static_cast<int>(t.integerOr(62, 256, t.body()));
      std::u16string line;
      if (t.is(0, "LINE")) {
        line = platform::format(u"%d %.4g,%.4g %.4g,%.4g", color, number(10), number(20),
                                number(11), number(21));
      } else {
        line =
            platform::format(u"%d %s@%.4g,%.4g h%.3g r%g a%d w%.3g", color,
                             t.textOr(1, u"", t.body()), number(11), number(21), number(40),
                             number(50), static_cast<int>(number(72)), t.realOr(41, 1, t.body()));
        if (t.is(0, "ATTDEF"))
          line += platform::format(u" %s %s %d", t.textOr(2, u"", t.body()),
                                   t.textOr(3, u"", t.body()), static_cast<int>(number(70)));
      }
      all += platform::narrow(line) + ";";
    }
    return all;
  }
  cad::BlockInfo block() {
    return drawing().structure().addBlock(u"B" + platform::format(u"%d", ++blocks_), {});
  }
  int blocks_ = 0;
};

TEST_F(ProfileFrame, TheFrameStandsLineByLine) {
  ProfileChainData chain;
  chain.stations = {{u"A", {0, 0, 5}, 0, true, 12, 7},
                    {u"B", {0, 0, 1}, 1, false, 8, 9},
                    {u"C", {0, 0, 99}, 20, true, -1, -2}};
  chain.reaches = {{u"P1", 1, 110}, {u"P2", 19, 0}};
  const auto b = block();
  cad::drawProfileFrame(drawing(), b, ProfileLayout(title(12, 24)), chain);
  EXPECT_EQ(
      contents(b),
      "0 35,61 36,61;0 3.200@34.5,61 h1 r0 a2 w1;8 36,62.8 60,62.8;0 35,62.8 36,62.8;"
      "0 5.000@34.5,62.8 h1 r0 a2 w1;8 36,67.8 60,67.8;0 35,67.8 36,67.8;"
      "0 10.000@34.5,67.8 h1 r0 a2 w1;8 36,72.8 60,72.8;0 35,72.8 36,72.8;"
      "0 15.000@34.5,72.8 h1 r0 a2 w1;8 37,61 37,62.8;8 37,61 37,60;8 37,60 37,57;8 38,61 38,60;"
      "8 38,60 38.6,57;8 57,61 57,73;8 57,61 57,60;8 57,60 57,57;0 26,57 60,57;0 26,48 60,48;"
      "0 26,40 60,40;0 26,32 60,32;0 26,24 60,24;0 26,16 60,16;0 26,8 60,8;0 26,0 60,0;"
      "0 60,0 60,57;0 A@37,52.5 h1 r90 a1 w1;0 5.000@37,44 h1 r90 a1 w1;"
      "0 12.000@37,36 h1 r90 a1 w1;0 7.000@37,28 h1 r90 a1 w1;0 100.000@37,12 h1 r90 a1 w1;"
      "0 B@38.6,52.5 h1 r90 a1 w1;0 1.000@38.6,44 h1 r90 a1 w1;0 101.000@38.6,12 h1 r90 a1 w1;"
      "0 C@57,52.5 h1 r90 a1 w1;0 99.000@57,44 h1 r90 a1 w1;0 -1.000@57,36 h1 r90 a1 w1;"
      "0 -2.000@57,28 h1 r90 a1 w1;0 120.000@57,12 h1 r90 a1 w1;0 37,24 37,16;0 37,8 37,0;"
      "0 38.6,24 38.6,16;0 38.6,8 38.6,0;0 57,24 57,16;0 57,8 57,0;0 1.000@37.8,20 h1 r90 a1 w1;"
      "0 P1 D 110@37.8,4 h1 r90 a1 w1;0 19.000@47.8,20 h1 r0 a1 w1;0 P2@47.8,4 h1 r0 a1 w1;"
      "0 36,61 60,61;0 60,61 60,73;0 60,73 36,73;0 36,73 36,61;");
}

TEST_F(ProfileFrame, TitleBlockAndManhole) {
  const auto b = block(), m = block();
  cad::drawProfileTitle(drawing(), b, ProfileLayout(title(12, 24)), title(12, 24));
  EXPECT_EQ(
      contents(b),
      "0 0,57 26,57;0 NODI@1,52.5 h1 r0 a0 w1;0 0,48 26,48;0 QUOTE NODI [m]@1,44 h1 r0 a0 w1;"
      "0 0,40 26,40;0 CARICHI PIEZOMETRICI [m]@1,36 h1 r0 a0 w1;0 0,32 26,32;"
      "0 PRESSIONI [m]@1,28 h1 r0 a0 w1;0 0,24 26,24;0 DISTANZE PARZIALI [m]@1,20 h1 r0 a0 w1;"
      "0 0,16 26,16;0 DISTANZE PROGRESSIVE [m]@1,12 h1 r0 a0 w1;0 0,8 26,8;"
      "0 RAMI - DIAMETRI [mm]@1,4 h1 r0 a0 w1;0 SCALA ALTEZZE 1:@1,58.2 h0.9 r0 a0 w0.772;"
      "0 100@11.5,58.2 h1 r0 a0 w1 SCY Scala delle altezze 0;"
      "0 (disegnate 1:500)@14.7,58.2 h0.8 r0 a0 w0.882;0 0,59.4 26,59.4;"
      "0 SCALA LUNGHEZZE 1:@1,60.6 h0.9 r0 a0 w1;"
      "0 500@18.5,60.6 h1 r0 a0 w1 SCX Scala delle lunghezze 0;0 0,61.8 26,61.8;"
      "0 QUOTA DI RIFERIMENTO [m]@1,63 h0.9 r0 a0 w0.874;"
      "0 3.200@18.5,63 h1 r0 a0 w1 QRIF Quota di riferimento 0;0 0,64.2 26,64.2;"
      "0 PROGRESSIVA INIZIALE [m]@1,65.4 h0.9 r0 a0 w0.874;"
      "0 100.000@18.5,65.4 h1 r0 a0 w1 PROG Progressiva iniziale 0;0 0,66.6 26,66.6;"
      "0 PROFILO@1,67.8 h0.9 r0 a0 w1;0 uno@9.5,67.8 h1 r0 a0 w1 NOME2 Nome del profilo 0;"
      "0 0,69 26,69;0 RETE@1,70.2 h0.9 r0 a0 w1;"
      "0 Rete@9.5,70.2 h1 r0 a0 w1 NOME1 Nome della rete 0;0 0,71.4 26,71.4;"
      "4 0.6,72.6 2.1,72.6;0 PIEZOMETRICA@2.5,72.6 h0.8 r0 a0 w0.961;1 11.2,72.6 12.7,72.6;"
      "0 PROGETTO@13.1,72.6 h0.8 r0 a0 w0.885;0 0,73.8 26,73.8;"
      "0 PROFILO LONGITUDINALE@1,75.72 h1.4 r0 a0 w0.907;0 0,0 26,0;0 26,0 26,77.64;"
      "0 26,77.64 0,77.64;0 0,77.64 0,0;");
  cad::drawManhole(drawing(), m);
  EXPECT_EQ(contents(m),
            "0 -0.6,-1.2 0.6,-1.2;0 0.6,-1.2 0.6,0;0 0.6,0 -0.6,0;0 -0.6,0 -0.6,-1.2;0 -1,0 1,0;"
            "0 -0.6,-1.2 0.6,0;0 -0.6,0 0.6,-1.2;0 @0,0.6 h1 r90 a0 w1 NOME Nome 0;"
            "0 @0,0 h1 r90 a0 w1 CODICE Codice 1;0 @0,0 h1 r90 a0 w1 DESCRIZIONE Descrizione 1;");
}

TEST_F(ProfileFrame, TheGroundGetsARowBelowAndANameAndLongNamesStayInTheirColumn) {
  ProfileTitle t = title(12, 24, u"100");
  t.name = std::u16string(100, u'M');
  const ProfileLayout layout(t, true);
  EXPECT_EQ(layout.bandTop, 57 * layout.unit) << "what stands above stays";
  const auto b = block(), f = block();
  cad::drawProfileTitle(drawing(), b, layout, t);
  const std::string head = contents(b);
  for (const char* part : {"QUOTE TERRENO [m]@0.2,7.2 ", "RAMI - DIAMETRI [mm]@0.2,-0.8 ",
                           "3 0.12,14.52 0.42,14.52;0 TERRENO@", "0 0,-1.6 5.2,-1.6"}) {
    EXPECT_NE(head.find(part), head.npos) << part << "\n" << head;
  }
  EXPECT_EQ(head.find("disegnate"), head.npos) << "both scales are the same";
  // 100 letters at their narrowest, 0.36 of their height, in a room of 16 text heights.
  EXPECT_NE(head.find("MM@1.9,13.56 h0.0889 r0 a0 w0.4 NOME2"), head.npos) << head;
  ProfileChainData chain;
  chain.hasGround = true;
  chain.stations = {{u"A", {0, 0, 5}, 0, false, 0, 0, 6.5},
                    {u"B", {0, 0, 1}, 20, false, 0, 0, -0.0001}};
  chain.reaches = {{u"P", 20, 0}};
  cad::drawProfileFrame(drawing(), f, layout, chain);
  const std::string frame = contents(f);
  EXPECT_NE(frame.find("0 6.500@8.2,7.2 "), frame.npos) << frame;
  EXPECT_NE(frame.find(" 0.000@28.2,7.2 "), frame.npos) << "no sign: " << frame;
}

TEST_F(ProfileFrame, TextsAreAsLargeAsTheScaleAsksAndTheFrameAllows) {
  const struct {
    double height, width;
    const char16_t* scale;
    const char* layout;  // unit, band, left, right, datum, top, first station
  } cases[] = {{12, 24, u"500", "1 57 36 60 61 73 37"},
               {12, 24, u"2000", "2 114 72 96 122 134 73"},
               {30, 24, u"2000", "2.5 142.5 90 114 152.5 182.5 91"},
               {0, 1.2, u"500", "0.1 5.7 3.6 4.8 6.1 6.5 4.2"},
               {4, 600, u"", "2 114 72 672 122 130 73"},
               {4, 600, u"-5", "2 114 72 672 122 130 73"},
               {600, 3, u"1500 circa", "3 171 108 111 183 783 109"}};
  for (const auto& c : cases) {
    const ProfileLayout l(title(c.height, c.width, c.scale));
    EXPECT_EQ(platform::narrow(platform::format(u"%g %g %g %g %g %g %g", l.unit, l.bandTop, l.left,
                                                l.right, l.datum, l.top, l.firstStation)),
              c.layout);
    EXPECT_EQ(l.start, 100);
    EXPECT_DOUBLE_EQ(l.y(4.2), l.datum + 1);
  }
  // The marks of the axis: a round step, none at the foot itself, labels where there is room.
  const auto marks = [&](const char16_t* scale, const char16_t* low, double height) {
    ProfileTitle t = title(height, 60, scale);
    t.datum = low;
    const auto b = block();
    cad::drawProfileFrame(drawing(), b, ProfileLayout(t), {});
    std::string out;
    const std::string all = contents(b);
    for (std::size_t at = 0; (at = all.find('@', at)) != all.npos; ++at)
      out += all.substr(all.rfind(' ', at), at - all.rfind(' ', at));
    return out;
  };
  EXPECT_EQ(marks(u"200", u"0", 4), " 0.000 1.000 2.000 3.000 4.000");
  EXPECT_EQ(marks(u"205", u"0", 4), " 0.000 2.000 4.000");
  EXPECT_EQ(marks(u"400", u"0", 4), " 0.000 2.000 4.000");
  EXPECT_EQ(marks(u"405", u"0", 14), " 0.000 5.000 10.000");
  EXPECT_EQ(marks(u"1000", u"0", 14), " 0.000 5.000 10.000");
  EXPECT_EQ(marks(u"1050", u"0", 19.9), " 0.000 10.000");
  EXPECT_EQ(marks(u"2100", u"0", 40), " 0.000 20.000 40.000");
  EXPECT_EQ(marks(u"500", u"-7", 12), " -7.000 -5.000 0.000 5.000");
  EXPECT_EQ(marks(u"500", u"4", 12), " 4.000 10.000 15.000") << "5 is too near the foot";
  EXPECT_EQ(marks(u"500", u"5", 9), " 5.000 10.000");
  const std::string deep = marks(u"1000", u"-4e9", 4e9);
  EXPECT_LE(std::count(deep.begin(), deep.end(), ' '), 201) << "of whatever height";
}

TEST_F(ProfileFrame, TextsOfNearStationsKeepApart) {
  // Where the names of the nodes stand, then the band's right end.
  const auto names = [&](const std::vector<double>& chainages, double width) {
    ProfileChainData chain;
    for (const double c : chainages) chain.stations.push_back({u"N", {}, c, false, 0, 0});
    for (std::size_t i = 1; i < chainages.size(); ++i) chain.reaches.push_back({u"P", 1, 0});
    const auto b = block();
    cad::drawProfileFrame(drawing(), b, ProfileLayout(title(12, width)), chain);
    const std::string all = contents(b);
    std::string out;
    for (std::size_t at = 0; (at = all.find("N@", at)) != all.npos; ++at)
      out += all.substr(at + 2, all.find(',', at) - at - 2) + ' ';
    const std::size_t band = all.find("0 26,57 ") + 8;
    return out + "| " + all.substr(band, all.find(',', band) - band);
  };
  EXPECT_EQ(names({}, 24), "| 60");
  EXPECT_EQ(names({0, 10, 20}, 24), "37 47 57 | 60");
  EXPECT_EQ(names({0, 1, 2}, 24), "37 38.6 40.2 | 60") << "within the frame";
  EXPECT_EQ(names({10, 11}, 24), "46.7 48.3 | 60") << "about their middle";
  EXPECT_EQ(names({10, 10, 20}, 24), "46.2 47.8 57 | 60");
  EXPECT_EQ(names({10, 11.6}, 24), "47 48.6 | 60");
  EXPECT_EQ(names({10, 11, 12.4}, 24), "46.53 48.13 49.73 | 60") << "crowds that meet are one";
  EXPECT_EQ(names({21.5, 22}, 24), "57.4 59 | 60");
  EXPECT_EQ(names({30}, 24), "59 | 60");
  EXPECT_EQ(names({0, 1, 2, 3, 4, 5, 6, 7}, 12), "37 38.6 40.2 41.8 43.4 45 46.6 48.2 | 49.2")
      << "without room the band grows";
}

TEST_F(ProfileFrame, TextsBetweenStationsLieOrStandAsThereIsRoom) {
  const auto between = [&](double room, const char16_t* name, double diameter) {
    ProfileChainData chain;
    chain.stations = {{u"A", {}, 10, false, 0, 0}, {u"B", {}, 10 + room, false, 0, 0}};
    chain.reaches = {{name, room, diameter}};
    const auto b = block();
    cad::drawProfileFrame(drawing(), b, ProfileLayout(title(12, 24)), chain);
    const std::string all = contents(b), end = "0 36,61 60,61";
    // The last texts before the frame's own rectangle, behind the length.
    const std::size_t from = all.find(';', all.find(",20 h1")) + 1;
    return all.substr(from, all.find(end) - from);
  };
  EXPECT_EQ(between(6, u"ABCDEFGHIJ", 110),
            "0 ABCDEFGHIJ@50,4.75 h1 r0 a1 w0.6;0 D 110@50,3.25 h1 r0 a1 w1;");
  EXPECT_EQ(between(5.9, u"ABCDEFGHIJ", 110),
            "0 ABCDEFGHIJ@49.2,4 h1 r90 a1 w0.822;0 D 110@50.7,4 h1 r90 a1 w1;");
  EXPECT_EQ(between(2.9, u"P", 110), "0 P@47.7,4 h1 r90 a1 w1;0 D 110@49.2,4 h1 r90 a1 w1;");
  EXPECT_EQ(between(2.7, u"P", 110.5), "0 P D 110.5@48.35,4 h1 r90 a1 w0.914;");
  EXPECT_EQ(between(6, u"ABCDEFGHIJ", 0), "0 ABCDEFGHIJ@50,4 h1 r0 a1 w0.6;");
  EXPECT_EQ(between(2, u"ABCD", 0), "0 ABCD@48,4 h1 r90 a1 w1;");
}

}  // namespace
