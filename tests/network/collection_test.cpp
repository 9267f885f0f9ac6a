#include "module/inp/collection.h"

#include "module/network/pattern_curve_store.h"
#include "tests/network/network_testing.h"

namespace vessora {
namespace {

class Collection : public DrawnNetwork {
 protected:
  Notices notices;
  EpaNetwork collect(std::u16string_view name = u"Rete") {
    EpaNetwork network;
    notices.clear();
    CollectNetwork(name, network, notices);
    expectNothingHeld();
    return network;
  }
  AcDbObjectId junction(const char16_t* id, double x, const Chain& stored) {
    return addBlock(u"Junc", u"JUNC-Rete", {x, 1, 2},
                    {{u"ID", id}, {u"EL", u"2.5"}, {u"BD", u"0.1"}}, stored);
  }
};

TEST_F(Collection, ADrawnNetworkComesOutInDrawingOrder) {
  addPolyline(
      u"PIPE-Rete", {{0, 1, 9}, {5.0004, -2, 9}, {10, 1, 9}},
      Chain(acutBuildList(1001, app::kImport, 1000, u"P1", 1040, 100.5, 1040, 0.0004, 1040, 130.0,
                          1040, 0.0, 1000, u"CV", 1000, u"N1", 1000, u"nowhere", RTNONE)));
  junction(u"N1", 0, juncData(u"N1", 0, u"day"));
  junction(u"N1", 10, juncData(u"N1", 0.5, u""));
  addBlock(u"Resv", u"RESV-Rete", {1650000.1254, -12, 80}, {{u"ID", u"R1"}, {u"TH", u"80.0"}},
           resvData(u"imported", u"head"));
  addBlock(u"Tank", u"TANK-Rete", {3, 4, 5},
           {{u"ID", u"T1"},
            {u"EL", u"1"},
            {u"D", u"2"},
            {u"INITL", u"3"},
            {u"MINL", u"4"},
            {u"MAXL", u"5"},
            {u"MINVOL", u"6"}},
           tankData(u"T1", u"vol"));
  // None of these belongs to the network, although the names say so.
  addBlock(u"Junc", u"RESV-Rete", {}, {{u"ID", u"no"}}, juncData(u"no", 0, u""));
  addBlock(u"Junc", u"JUNC-Rete2", {}, {{u"ID", u"no"}}, juncData(u"no", 0, u""));
  addPolyline(u"PIPE-Rete", {{0, 0, 0}, {1, 1, 1}});
  addPolyline(u"PUMP-Rete", {{7, 8, 0}, {9, 8, 0}});
  AddPattern({u"day", {1, 2}}, u"Rete");
  AddCurve({u"vol", u"VOLUME", {{1, 2}}}, u"Rete");
  AddCurve({u"other", u"VOLUME", {{1, 2}}}, u"Altra");
  saveAndReload();

  const EpaNetwork n = collect();
  ASSERT_EQ(n.juncs.size(), 2U);
  EXPECT_EQ(n.juncs[0].id, u"N1");
  EXPECT_EQ(n.juncs[0].elev, u"2.5");
  EXPECT_EQ(n.juncs[0].emitter, u"0.000");
  EXPECT_EQ(n.juncs[0].pattern, u"day");
  EXPECT_EQ(n.juncs[1].emitter, u"0.500");
  EXPECT_EQ(n.juncs[1].pattern, u"");
  EXPECT_FALSE(n.juncs[1].objectId.isNull());
  ASSERT_EQ(n.resvs.size(), 1U);
  EXPECT_EQ(n.resvs[0].id, u"R1");  // a reservoir's attribute is not checked
  EXPECT_EQ(n.resvs[0].head, u"80.0");
  EXPECT_EQ(n.resvs[0].pattern, u"head");
  ASSERT_EQ(n.tanks.size(), 1U);
  EXPECT_EQ(n.tanks[0].diameter, u"2");
  EXPECT_EQ(n.tanks[0].minVol, u"6");
  EXPECT_EQ(n.tanks[0].volCurve, u"vol");
  ASSERT_EQ(n.pipes.size(), 1U);
  EXPECT_EQ(n.pipes[0].length, u"100.500");
  EXPECT_EQ(n.pipes[0].diameter, u"0.000");
  EXPECT_EQ(n.pipes[0].status, u"CV");
  EXPECT_EQ(n.pipes[0].node2, u"nowhere");
  ASSERT_EQ(n.coords.size(), 4U);
  EXPECT_EQ(n.coords[2].id, u"R1");
  EXPECT_EQ(n.coords[2].x, u"1650000.125");
  EXPECT_EQ(n.coords[2].y, u"-12.000");
  ASSERT_EQ(n.vertices.size(), 3U);
  EXPECT_EQ(n.vertices[1].id, u"P1");
  EXPECT_EQ(n.vertices[1].x, u"5.000");
  EXPECT_EQ(n.patterns.size(), 1U);
  EXPECT_EQ(n.curves.size(), 1U);
  EXPECT_TRUE(collect(u"Nessuna").juncs.empty());
}

TEST_F(Collection, ValvesAndPumpsComeFromTheirDataInTheirOwnWay) {
  EpaValv valv;
  valv.id = u"V1";
  valv.type = u"PRV";
  valv.status = u"Open";
  valv.setting = u"35.5";
  valv.node1 = u"A";
  valv.node2 = u"B";
  addBlock(u"Valv", u"VALV-Rete", {}, {{u"ID", u"edited"}, {u"D", u"9"}, {u"SET", u"35.5"}},
           valvData(valv, 100.25, 1.5));
  addBlock(u"Valv", u"VALV-Rete", {}, {{u"ID", u"without data"}});
  addPolyline(u"VALV-Rete", {{1, 0, 0}, {2, 0, 0}}, idData(u"V1"));
  EpaPump pump;
  pump.id = u"U1";
  pump.node1 = u"100%d";
  pump.node2 = u"100%d;50%%";
  pump.speedPattern = u"sp";
  pump.price = u"0.25";
  addBlock(u"Pump", u"PUMP-Rete", {}, {{u"ID", u"edited"}, {u"ST", u"Closed"}}, pumpData(pump));
  addBlock(u"Pump", u"PUMP-Rete", {}, {{u"ID", u"without data"}, {u"ST", u"Open"}});
  addBlock(u"Pump", u"PUMP-Rete", {}, {},
           Chain(acutBuildList(1001, app::kImport, 1000, u"U2", 1000, u"A", 1000, u"B", 1000, u"c",
                               1040, 5.0, 1040, 0.0, RTNONE)));

  const EpaNetwork n = collect();
  ASSERT_EQ(n.valves.size(), 1U);
  const EpaValv& v = n.valves[0];
  EXPECT_EQ(v.id.str() + v.type.str() + v.status.str() + v.node1.str() + v.node2.str(),
            u"V1PRVOpenAB");
  EXPECT_EQ(v.diameter, u"100.250");
  EXPECT_EQ(v.minorLoss, u"1.500");
  EXPECT_EQ(v.setting, u"0.000");
  ASSERT_EQ(n.pumps.size(), 2U);
  EXPECT_EQ(n.pumps[0].id, u"U1");
  EXPECT_EQ(n.pumps[0].status, u"Closed");
  EXPECT_EQ(n.pumps[0].node1, u"100%d");
  EXPECT_EQ(n.pumps[0].node2, u"100;50%");
  EXPECT_EQ(n.pumps[0].power, u"");
  EXPECT_EQ(n.pumps[0].price, u"0.250");
  EXPECT_EQ(n.pumps[1].power, u"5.000");
  EXPECT_EQ(n.pumps[1].status.str() + n.pumps[1].speedPattern.str() + n.pumps[1].price.str(), u"");
  EXPECT_EQ(n.vertices.size(), 2U);
  EXPECT_TRUE(n.coords.empty());
}

TEST_F(Collection, NodesWithoutDataKeepWhatTheNodeBeforeHad) {
  junction(u"N1", 0, {});
  junction(u"N2", 1, juncData(u"N2", 0.5, u"day"));
  junction(u"N3", 2, {});
  addBlock(u"Tank", u"TANK-Rete", {}, {{u"ID", u"T1"}}, tankData(u"T1", u"vol"));
  addBlock(u"Tank", u"TANK-Rete", {}, {});
  const EpaNetwork n = collect();
  ASSERT_EQ(n.juncs.size(), 3U);
  EXPECT_EQ(n.juncs[0].emitter.str() + n.juncs[0].pattern.str(), u"");
  EXPECT_EQ(n.juncs[2].id, u"N3");
  EXPECT_EQ(n.juncs[2].emitter.str() + n.juncs[2].pattern.str(), u"0.500day");
  ASSERT_EQ(n.tanks.size(), 2U);
  EXPECT_EQ(n.tanks[1].id.str() + n.tanks[1].volCurve.str(), u"vol");
}

TEST_F(Collection, EditedNamesAreReportedOnceEachAndFieldsAreCutAtTheirCapacity) {
  junction(u"edited", 0, juncData(u"N1", 0, u""));
  const std::u16string longText(60, u'x'), longId(255, u'n');
  addBlock(u"Junc", u"JUNC-Rete", {1e60, 0, 0}, {{u"ID", longId}, {u"EL", longText}},
           juncData(longId, 0, longText));
  const EpaNetwork n = collect();
  ASSERT_EQ(notices.size(), 1U);
  EXPECT_EQ(notices[0].code, NoticeCode::namesDiffer);
  EXPECT_EQ(notices[0].subject + u"|" + notices[0].other, u"N1|edited");
  ASSERT_EQ(n.juncs.size(), 2U);
  EXPECT_EQ(n.juncs[0].id, u"N1");
  EXPECT_EQ(n.coords[0].id, u"N1");
  EXPECT_EQ(n.juncs[1].id.size(), 255U);
  EXPECT_EQ(n.juncs[1].elev.size(), 49U);
  EXPECT_EQ(n.juncs[1].pattern.size(), 49U);
  EXPECT_EQ(n.coords[1].x.size(), 49U);

  EpaPump pump;
  pump.id = u"U1";
  addBlock(u"Pump", u"PUMP-Rete", {}, {{u"ID", u"U1"}}, pumpData(pump));
  addPolyline(u"PUMP-Rete", {{1, 0, 0}, {2, 0, 0}}, idData(u"U1"));
  addPolyline(u"PIPE-Rete", {{1, 0, 0}, {2, 0, 0}}, idData(u"P1"));
  std::vector<std::u16string> nodes, links;
  notices.clear();
  CollectNetworkNames(u"Rete", nodes, links, notices);
  EXPECT_EQ(notices.size(), 1U);
  expectNothingHeld();
  EXPECT_EQ(nodes, (std::vector<std::u16string>{u"N1", longId}));
  EXPECT_EQ(links, (std::vector<std::u16string>{u"U1", u"P1"}));
}

// A list that ends early, as other programs leave it: what it lacks has its default.
TEST_F(Collection, AValveWithoutAStatusHasNone) {
  addBlock(u"Valv", u"VALV-Rete", {}, {}, idData(u"V1"));
  addBlock(u"Valv", u"VALV-Rete", {}, {}, [] {
    EpaValv v;
    v.id = u"V2";
    v.status = u"Closed";
    return valvData(v, 80, 0);
  }());
  const EpaNetwork n = collect();
  ASSERT_EQ(n.valves.size(), 2U);
  EXPECT_EQ(n.valves[0].status, u"None");
  EXPECT_EQ(n.valves[1].status, u"Closed");
}

}  // namespace
}  // namespace vessora
