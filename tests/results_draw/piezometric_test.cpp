#include "tests/results_draw/draw_testing.h"

namespace vessora {
namespace {

class Piezometric : public CalculatedNetwork {
 protected:
  // Draws over everything and gives the heights of the lines, one after another.
  std::vector<double> drawAll() {
    script("2\ntutto\n<invio>\n");
    EpaCommands commands;
    EXPECT_EQ(commands.epapiezo(), kRan);
    expectScriptDone();
    std::vector<double> all;
    for (const AcDbObjectId id : onLayer(u"PIEZOMETRICA_3D-Rete")) {
      const std::vector<double> z = heights(id);
      all.insert(all.end(), z.begin(), z.end());
    }
    return all;
  }
};

TEST_F(Piezometric, HeadFallsWithLengthInSpaceAndEndsAtTheNode) {
  junc(u"A", {0, 0, 10}, 0, 50);
  junc(u"B", {6, 8, 20}, 0, 40);
  // Ten units in plan to the corner, ten straight up from there.
  pipe(u"P", u"A", u"B", u"20", {{0, 0, 10}, {6, 8, 10}, {6, 8, 20}});
  EXPECT_EQ(drawAll(), (std::vector<double>{50, 45, 40}));
  EXPECT_EQ(onLayer(u"LINEE_COSTR-Rete").size(), 2u);
  EXPECT_EQ(onLayer(u"PIEZOMETRICA_3D_P-Rete").size(), 2u);
}

TEST_F(Piezometric, ExactlyTwoHitsDecide) {
  junc(u"A", {0, 0, 10}, 0, 50);
  junc(u"A2", {0, 0, 10}, 0, 55);
  junc(u"B", {100, 0, 20}, 0, 40);
  pipe(u"three", u"A", u"B", u"100", {{0, 0, 10}, {100, 0, 20}});
  EXPECT_EQ(drawAll(), std::vector<double>());
  // Both at one end: the later block's head there, none at the other.
  pipe(u"stacked", u"A", u"X", u"100", {{0, 0, 10}, {0, 100, 20}});
  EXPECT_EQ(drawAll(), (std::vector<double>{55, 0}));
}

TEST_F(Piezometric, TheToleranceIsStrictInEachAxis) {
  junc(u"A", {0, 0, 10}, 0, 50);
  junc(u"B", {100.0009, -0.0009, 20.0009}, 0, 40);
  junc(u"C", {0, 100, 20.001}, 0, 30);
  pipe(u"near", u"A", u"B", u"100", {{0, 0, 10}, {100, 0, 20}});
  pipe(u"off", u"A", u"C", u"100", {{0, 0, 10}, {0, 100, 20}});
  EXPECT_EQ(drawAll(), (std::vector<double>{50, 40}));
}

TEST_F(Piezometric, ALoopAndALinkWithoutLengthStayLevel) {
  junc(u"A", {0, 0, 10}, 0, 50);
  const AcDbObjectId loop =
      pipe(u"loop", u"A", u"A", u"40", {{0, 0, 10}, {10, 0, 10}, {10, 10, 10}});
  {
    Opened<AcDb3dPolyline> line(loop, AcDb::kForWrite);
    cad::TagList& t = cad::Inside::tagsForWrite(*line);
    t.putInteger(70, 9, t.subclass("AcDb3dPolyline"));
  }
  junc(u"N", {500, 0, 5});  // no results: no hit
  pipe(u"none", u"A", u"N", u"500", {{0, 0, 10}, {500, 0, 5}});
  pipe(u"point", u"A", u"A", u"0", {{0, 0, 10}, {0, 0, 10}});
  EXPECT_EQ(drawAll(), (std::vector<double>{50, 50, 50, 50, 50, 50}));
}

}  // namespace
}  // namespace vessora
