// Where import puts what a file says: each row one network, read from text and drawn into an empty
// drawing whose symbols have no drawing of their own.
#include "module/inp/draw_network.h"

#include "module/host/command_span.h"
#include "module/inp/inp_reader.h"
#include "module/inp/symbols.h"
#include "tests/network/network_testing.h"

namespace vessora {
namespace {

class DrawNetwork : public DrawnNetwork {
 protected:
  void SetUp() override {
    DrawnNetwork::SetUp();
    for (const char16_t* name : {u"Junc", u"Resv", u"Tank", u"Pump", u"Valv", u"Q_IN", u"Q_OUT"}) {
      addBlock(name, u"0", {}, {});
    }
  }
  void draw(const std::string& text) {
    for (const AcDbObjectId id : SelectionSet(u"_X", acutBuildList(1001, kImported, RTNONE))) {
      Opened<AcDbEntity>(id, AcDb::kForWrite)->erase(true);
    }
    EpaNetwork network;
    EpaSettings settings;
    parseInp(text, network, settings);
    NetworkDrawing drawing(network);
    size_ = drawing.size();
    const CommandSpan span;
    drawn_[0] = drawing.DrawJunctions(u"JUNC-Rete").drawn;
    drawn_[1] = drawing.DrawReservoirs(u"RESV-Rete").drawn;
    drawn_[2] = drawing.DrawTanks(u"TANK-Rete").drawn;
    drawn_[3] = drawing.DrawPipes(u"PIPE-Rete").drawn;
    drawn_[4] = drawing.DrawPumps(u"PUMP-Rete").drawn;
    drawn_[5] = drawing.DrawValves(u"VALV-Rete").drawn;
    expectNothingHeld();
  }
  static std::string shown(const AcGePoint3d& p) {
    char text[96];
    std::snprintf(text, sizeof text, "%g,%g,%g", p.x, p.y, p.z);
    return text;
  }
  // Points of the lines and places of the blocks on a layer, in drawing order.
  static std::string on(const char16_t* layer) {
    std::string all;
    for (const AcDbObjectId id : onLayer(layer)) {
      all += all.empty() ? "" : " | ";
      const Opened<AcDbEntity> entity(id);
      if (auto* block = entity.as<AcDbBlockReference>()) {
        all += "@" + shown(block->position());
      } else if (auto* line = entity.as<AcDb3dPolyline>()) {
        AcGePoint3dArray points;
        ReadVertices(line, points);
        for (const AcGePoint3d& p : points) all += (&p == &points[0] ? "" : " ") + shown(p);
      }
    }
    return all;
  }
  std::int64_t size_ = 0;
  int drawn_[6] = {};
};

const std::string kNodes =
    "[JUNCTIONS]\n;\n A 10 0 ;\n B 20 0 ;\n C 30 0 ;\n\n"
    "[COORDINATES]\n;\n A 0 0\n B 100 0\n C 0 0\n\n";

TEST_F(DrawNetwork, LinksRunBetweenTheirNodes) {
  const struct {
    const char *ends, *vertices, *line, *symbol;
  } rows[] = {
      {"A B", "", "0,0,10 100,0,20", "@50,0,15"},
      {"B A", "", "100,0,20 0,0,10", "@50,0,15"},
      // One point between: the symbol stands behind it. The height goes by the way from the start.
      {"A B", " L 25 0\n", "0,0,10 25,0,12.5 100,0,20", "@62.5,0,16.25"},
      {"B A", " L 25 0\n", "100,0,20 25,0,12.5 0,0,10", "@12.5,0,11.25"},
      {"A B", " L 0 30\n L 100 40\n", "0,0,10 0,30,13 100,40,20.7703 100,0,20", "@50,35,16.8852"},
      // Beyond the ends the slope goes on.
      {"A B", " L 200 0\n", "0,0,10 200,0,30 100,0,20", "@150,0,25"},
      // One above the other: there is no slope to follow.
      {"A C", "", "0,0,10 0,0,30", "@0,0,20"},
      {"A C", " L 5 5\n", "0,0,10 5,5,10 0,0,30", "@2.5,2.5,20"},
      {"A A", " L 5 5\n L 9 9\n", "0,0,10 5,5,10 9,9,10 0,0,10", "@7,7,10"},
  };
  for (const auto& row : rows) {
    const std::string ends = row.ends, vertices = "[VERTICES]\n;\n" + std::string(row.vertices);
    draw(kNodes + "[PIPES]\n;\n L " + ends + " 1 1 1 0 Open ;\n\n" + vertices);
    EXPECT_EQ(on(u"PIPE-Rete"), row.line) << ends << row.vertices;
    draw(kNodes + "[PUMPS]\n;\n L " + ends + " POWER 1 ;\n\n" + vertices);
    EXPECT_EQ(on(u"PUMP-Rete"), std::string(row.line) + " | " + row.symbol) << ends << row.vertices;
    draw(kNodes + "[VALVES]\n;\n L " + ends + " 1 PRV 1 0 ;\n\n" + vertices);
    EXPECT_EQ(on(u"VALV-Rete"), std::string(row.line) + " | " + row.symbol) << ends << row.vertices;
  }
}

// One name on nodes of several kinds, and on several rows of coordinates.
TEST_F(DrawNetwork, TheLastOfEqualNamesCounts) {
  draw(
      "[JUNCTIONS]\n;\n A 1 0 ;\n A 2 0 ;\n B 5 0 ;\n\n[RESERVOIRS]\n;\n A 3 ;\n B 6 ;\n\n"
      "[TANKS]\n;\n A 4 1 0 2 1 0 ;\n\n"
      "[PIPES]\n;\n L A B 1 1 1 0 Open ;\n\n[COORDINATES]\n;\n A 10 0\n A 20 0\n B 30 0\n");
  EXPECT_EQ(on(u"PIPE-Rete"), "20,0,4 30,0,6");  // tank before reservoir before junction
  EXPECT_EQ(on(u"JUNC-Rete"), "@10,0,1 | @20,0,1 | @10,0,2 | @20,0,2 | @30,0,5");
  EXPECT_EQ(on(u"RESV-Rete"), "@10,0,3 | @20,0,3 | @30,0,6");
  EXPECT_EQ(on(u"TANK-Rete"), "@10,0,4 | @20,0,4");
  EXPECT_EQ(drawn_[0] * 100 + drawn_[1] * 10 + drawn_[2], 532);
  EXPECT_EQ(size_, 11);
  EXPECT_EQ(data(onLayer(u"PIPE-Rete")[0]), "L|1.0|1.0|1.0|0.0|Open|A|B");
  for (const auto& [section, rest] :
       {std::pair("JUNCTIONS", " 0 ;\n"), std::pair("RESERVOIRS", " ;\n"),
        std::pair("TANKS", " 1 0 2 1 0 ;\n")}) {
    draw(std::string("[") + section + "]\n;\n A 1" + rest + " B 5" + rest + " A 2" + rest +
         "\n[PIPES]\n;\n L A B 1 1 1 0 Open ;\n\n[COORDINATES]\n;\n A 0 0\n B 9 0\n");
    EXPECT_EQ(on(u"PIPE-Rete"), "0,0,2 9,0,5") << section;
  }
}

// Ends without a place take those of the link before; without one before there is no link.
TEST_F(DrawNetwork, AnUnknownNodeLeavesTheEndOfTheLinkBefore) {
  for (const auto& [section, rest] :
       {std::pair("PIPES", " 1 1 1 0 Open ;\n"), std::pair("PUMPS", " POWER 1 ;\n"),
        std::pair("VALVES", " 1 PRV 1 0 ;\n")}) {
    draw(kNodes + "[" + section + "]\n;\n none x A" + rest + " first A B" + rest + " next B x" +
         rest + " last x A" + rest);
    const std::string layer = std::string(section).substr(0, 4) + "-Rete";
    std::string lines;
    for (const AcDbObjectId id : onLayer(platform::widen(layer))) {
      const Opened<AcDb3dPolyline> line(id);
      if (!line) continue;
      AcGePoint3dArray points;
      ReadVertices(line.get(), points);
      lines += shown(points.front()) + " " + shown(points.back()) + "|";
    }
    EXPECT_EQ(lines, "0,0,10 100,0,20|100,0,20 100,0,20|100,0,20 0,0,10|") << section;
  }
}

TEST_F(DrawNetwork, ArrowsFollowTheSignOfTheDemandAndReplaceTheirOwn) {
  draw(
      "[JUNCTIONS]\n;\n A 1 2.5 ;\n B 1 -2.5 ;\n C 1 0 ;\n D 1 x ;\n\n"
      "[COORDINATES]\n;\n A 0 0\n B 1 0\n C 2 0\n D 3 0\n");
  EXPECT_EQ(on(u"Q-OUT-Rete"), "@0,0,1");
  EXPECT_EQ(on(u"Q-IN-Rete"), "@1,0,1");
  Notices notices;
  for (const double offset : {0.00009, 0.00011}) {
    const CommandSpan span;
    EXPECT_EQ(InsertFlowOut({0, offset, 1}, u"Rete", notices), 1);
    EXPECT_EQ(onLayer(u"Q-OUT-Rete").size(), 1U);  // 0.00002 from the one before, at most
  }
  const CommandSpan span;
  EXPECT_EQ(InsertFlowOut({0, 0, 1}, u"Rete", notices), 1);  // 0.00011 away
  EXPECT_EQ(InsertFlowOut({0, 0, 1.00011}, u"Rete", notices), 1);
  EXPECT_EQ(onLayer(u"Q-OUT-Rete").size(), 3U);
  EXPECT_TRUE(notices.empty());
}

TEST_F(DrawNetwork, AnEmitterMakesAJunctionRed) {
  draw(
      "[JUNCTIONS]\n;\n A 1 0 ;\n B 1 0 ;\n C 1 0 ;\n\n[COORDINATES]\n;\n A 0 0\n B 1 0\n C 2 0\n\n"
      "[EMITTERS]\n;\n A 0.5\n B 0\n C -1\n");
  std::string colors;
  for (const AcDbObjectId id : onLayer(u"JUNC-Rete")) colors += std::to_string(color(id)) + " ";
  EXPECT_EQ(colors, "1 256 256 ");
  EXPECT_EQ(data(onLayer(u"JUNC-Rete")[0]), "A|0.5|");
}

}  // namespace
}  // namespace vessora
