#include "module/network/element_loaders.h"

#include "tests/network/network_testing.h"

namespace vessora {
namespace {

EpaPump pump(const char16_t* id) {
  EpaPump p;
  p.id = id;
  p.node1 = u"A";
  p.node2 = u"B";
  p.headCurve = u"c";
  p.power = u"1.25";
  p.speedPattern = u"sp";
  p.effCurve = u"eff";
  p.price = u"-1";
  p.pricePattern = u"pp";
  p.status = u"Closed";
  return p;
}

EpaPipe pipe(const char16_t* id, const char16_t* node1, const char16_t* node2) {
  EpaPipe p;
  p.id = id;
  p.node1 = node1;
  p.node2 = node2;
  p.length = u"100.5";
  p.diameter = u"150";
  p.roughness = u"130";
  p.minorLoss = u"0.25";
  p.status = u"Open";
  return p;
}

EpaValv valve(const char16_t* id) {
  EpaValv v;
  v.id = id;
  v.node1 = u"A";
  v.node2 = u"B";
  v.type = u"PRV";
  v.status = u"None";
  v.setting = u"30";
  return v;
}

class ElementLoaders : public DrawnNetwork {
 protected:
  AcDbObjectId junction(const char16_t* id, const AcGePoint3d& at, const char16_t* elevation) {
    return addBlock(u"Junc", u"JUNC-Rete", at, {{u"ID", id}, {u"EL", elevation}, {u"BD", u"2.50"}},
                    juncData(id, 0.125, u"day"));
  }
  AcDbObjectId pipeWithResults(const EpaPipe& record, const AcGePoint3dArray& points) {
    const AcDbObjectId id = addPolyline(u"PIPE-Rete", points, pipeData(record));
    const Chain results(acutBuildList(1001, app::kLinkResult, 1040, 1.5, RTNONE));
    Opened<AcDbEntity>(id, AcDb::kForWrite)->setXData(results.get());
    return id;
  }
  static EpaJunc read(AcDbObjectId id) {
    EpaJunc junc;
    ReadJunc(junc, Opened<AcDbBlockReference>(id).get());
    return junc;
  }
  void rename(AcDbObjectId node, const char16_t* id, const char16_t* elevation) {
    EpaJunc junc = read(node);
    junc.id = id;
    junc.elev = elevation;
    UpdateJunc(Opened<AcDbBlockReference>(node, AcDb::kForWrite), junc, 0);
    expectNothingHeld();
  }
};

TEST_F(ElementLoaders, ReadersTakeEachFieldFromItsPlace) {
  const AcDbObjectId j = junction(u"N1", {1, 2, 3}, u"3.00");
  const EpaJunc junc = read(j);
  EXPECT_EQ(junc.objectId, j);
  EXPECT_EQ(junc.id, u"N1");
  EXPECT_EQ(junc.elev, u"3.00");
  EXPECT_EQ(junc.demand, u"2.50");
  EXPECT_EQ(junc.emitter, u"0.125");
  EXPECT_EQ(junc.pattern, u"day");

  EpaResv resv;
  const AcDbObjectId r = addBlock(u"Resv", u"RESV-Rete", {}, {{u"ID", u"R1"}, {u"TH", u"80"}},
                                  resvData(u"other", u"head"));
  ReadResv(resv, Opened<AcDbBlockReference>(r).get());
  EXPECT_EQ(resv.id, u"R1");  // no check against the data here, and no message
  EXPECT_EQ(resv.head, u"80");
  EXPECT_EQ(resv.pattern, u"head");

  EpaTank tank;
  tank.volCurve = u"kept";
  const AcDbObjectId t = addBlock(u"Tank", u"TANK-Rete", {},
                                  {{u"ID", u"T1"},
                                   {u"EL", u"1"},
                                   {u"D", u"2"},
                                   {u"INITL", u"3"},
                                   {u"MINL", u"4"},
                                   {u"MAXL", u"5"},
                                   {u"MINVOL", u"6"}});
  ReadTank(tank, Opened<AcDbBlockReference>(t).get());
  const std::u16string all = tank.id.str() + tank.elev.str() + tank.diameter.str() +
                             tank.initLevel.str() + tank.minLevel.str() + tank.maxLevel.str() +
                             tank.minVol.str() + tank.volCurve.str();
  EXPECT_EQ(all, u"T1123456kept");

  EpaValv valv;
  const AcDbObjectId v =
      addBlock(u"Valv", u"VALV-Rete", {},
               {{u"ID", u"V1"}, {u"D", u"99"}, {u"TYPE", u"TCV"}, {u"SET", u"7"}, {u"MLOSS", u"8"}},
               valvData(valve(u"V"), 1, 2));
  ReadValv(valv, Opened<AcDbBlockReference>(v).get());
  EXPECT_EQ(valv.id.str() + valv.diameter.str() + valv.type.str() + valv.setting.str() +
                valv.minorLoss.str() + valv.status.str() + valv.node1.str() + valv.node2.str(),
            u"V199TCV78NoneAB");
}

TEST_F(ElementLoaders, PipesAndPumpsTolerateShortLists) {
  EpaPipe p;
  std::u16string material = u"kept";
  const AcDbObjectId whole =
      addPolyline(u"PIPE-Rete", {{0, 0, 0}, {1, 0, 0}}, pipeData(pipe(u"P", u"A", u"B")));
  ReadPipe(p, material, Opened<AcDb3dPolyline>(whole).get());
  EXPECT_EQ(p.length, u"100.500");
  EXPECT_EQ(p.minorLoss, u"0.250");
  EXPECT_EQ(p.node2, u"B");
  EXPECT_EQ(material, u"kept");
  const Chain started(acutBuildList(1001, app::kImport, 1000, u"Q", 1040, 7.0, RTNONE));
  const AcDbObjectId brief = addPolyline(u"PIPE-Rete", {{0, 0, 0}, {1, 0, 0}}, started);
  {
    const Chain stored(acutBuildList(1001, app::kMaterial, 1000, u"", RTNONE));
    Opened<AcDbEntity>(brief, AcDb::kForWrite)->setXData(stored.get());
  }
  ReadPipe(p, material, Opened<AcDb3dPolyline>(brief).get());
  EXPECT_EQ(p.id, u"Q");
  EXPECT_EQ(p.length, u"7.000");
  EXPECT_EQ(p.diameter, u"150.000");
  EXPECT_EQ(material, u"");

  EpaPump got;
  const AcDbObjectId full =
      addBlock(u"Pump", u"PUMP-Rete", {}, {{u"ID", u"U"}, {u"ST", u"Open"}}, pumpData(pump(u"U")));
  ReadPump(got, Opened<AcDbBlockReference>(full).get());
  EXPECT_EQ(got.power, u"1.250");
  EXPECT_EQ(got.speed, u"");  // stored as 0
  EXPECT_EQ(got.price, u"");  // stored below 0
  EXPECT_EQ(got.pricePattern, u"pp");
  EXPECT_EQ(got.status, u"Open");
  const Chain ended(acutBuildList(1001, app::kImport, 1000, u"U", 1000, u"C", 1000, u"D", 1000,
                                  u"h", 1040, 0.0, 1040, 2.0, 1010, AcGePoint3d(1, 2, 3), RTNONE));
  const AcDbObjectId old = addBlock(u"Pump", u"PUMP-Rete", {}, {{u"ID", u"U"}}, ended);
  ReadPump(got, Opened<AcDbBlockReference>(old).get());
  EXPECT_EQ(got.node2, u"D");
  EXPECT_EQ(got.power, u"");
  EXPECT_EQ(got.speed, u"2.000");
  EXPECT_EQ(got.speedPattern, u"sp");  // as the record had it
}

TEST_F(ElementLoaders, AMovedAndRenamedNodeDragsItsLinks) {
  const AcDbObjectId node = junction(u"N1", {100, 0, 10}, u"10");
  // Ends on the node, starts on it, passes 0.0002 beside it.
  const AcDbObjectId in = pipeWithResults(pipe(u"P1", u"A", u"N1"),
                                          {{0, 0, 20}, {25, 0, 0}, {75, 30, 0}, {100, 0, 10}});
  const AcDbObjectId out =
      pipeWithResults(pipe(u"P2", u"x", u"B"), {{100, 0.00005, 3}, {200, 0, 7}});
  const AcDbObjectId beside =
      pipeWithResults(pipe(u"P3", u"N1", u"B"), {{100, 0.0002, 10}, {200, 0, 7}});
  const AcDbObjectId pumpLine =
      addPolyline(u"PUMP-Rete", {{100, 0, 10}, {120, 0, 10}}, idData(u"U"));
  const AcDbObjectId pumpBlock =
      addBlock(u"Pump", u"PUMP-Rete", {110, 0, 10}, {{u"ID", u"U"}}, pumpData(pump(u"U")));
  const AcDbObjectId otherPump =
      addBlock(u"Pump", u"PUMP-Rete", {110, 0.0002, 10}, {{u"ID", u"W"}}, pumpData(pump(u"W")));
  const AcDbObjectId valveLine =
      addPolyline(u"VALV-Rete", {{60, 0, 4}, {80, 0, 4}, {90, 0, 4}, {100, 0, 10}}, idData(u"V"));
  const AcDbObjectId valveBlock =
      addBlock(u"Valv", u"VALV-Rete", {85, 0, 4}, {{u"ID", u"V"}}, valvData(valve(u"V"), 1, 2));
  const AcDbObjectId elsewhere =
      addPolyline(u"PIPE-Altra", {{100, 0, 10}, {0, 0, 0}}, pipeData(pipe(u"P9", u"N1", u"B")));

  EpaJunc junc = read(node);
  junc.id = u"Nuovo";
  junc.elev = u"30.5";
  UpdateJunc(Opened<AcDbBlockReference>(node, AcDb::kForWrite), junc, 0.5);
  expectNothingHeld();

  EXPECT_TRUE(samePoint(position(node), {100, 0, 30.5}));
  EXPECT_EQ(attribute(node, u"EL"), u"30.5");
  EXPECT_EQ(data(node), "Nuovo|0.5|day");
  EXPECT_EQ(color(node), 1);

  const std::vector<double> z = heights(in);
  EXPECT_DOUBLE_EQ(z[0], 20);
  EXPECT_DOUBLE_EQ(z[1], 20 + 10.5 * 0.25);
  EXPECT_DOUBLE_EQ(z[2], 20 + 10.5 * std::hypot(75, 30) / 100);
  EXPECT_DOUBLE_EQ(z[3], 30.5);
  EXPECT_EQ(data(in), "P1|100.5|150.0|130.0|0.25|Open|A|Nuovo");
  EXPECT_EQ(heights(out),
            (std::vector<double>{30.5, 7}));  // found by place, whatever its name says
  EXPECT_EQ(data(out), "P2|100.5|150.0|130.0|0.25|Open|Nuovo|B");
  for (const AcDbObjectId id : {in, out}) {
    EXPECT_EQ(color(id), 3);
    EXPECT_FALSE(Opened<AcDbEntity>(id)->hasXData(app::kLinkResult));
  }
  for (const AcDbObjectId id : {beside, elsewhere}) {
    EXPECT_EQ(heights(id)[0], 10);
    EXPECT_EQ(color(id), 256);
    EXPECT_NE(data(id).find("N1"), std::string::npos);
  }
  EXPECT_TRUE(Opened<AcDbEntity>(beside)->hasXData(app::kLinkResult));

  EXPECT_EQ(heights(pumpLine), (std::vector<double>{30.5, 10}));
  EXPECT_EQ(data(pumpLine), "U");
  EXPECT_DOUBLE_EQ(position(pumpBlock).z, 20.25);
  EXPECT_EQ(data(pumpBlock), "U|Nuovo|B|c|1.25|0.0|sp|eff|-1.0|pp");
  EXPECT_DOUBLE_EQ(position(otherPump).z, 10);
  EXPECT_EQ(data(otherPump).find("Nuovo"), std::string::npos);
  EXPECT_DOUBLE_EQ(position(valveBlock).z, 4 + 26.5 * 25 / 40);
  EXPECT_EQ(data(valveBlock), "V|1.0|PRV|None|30|2.0|A|Nuovo");
  EXPECT_EQ(color(valveLine), 3);
  saveAndReload();
}

TEST_F(ElementLoaders, ReservoirsAndTanksMoveByTheirOwnHeight) {
  const AcDbObjectId r = addBlock(u"Resv", u"RESV-Rete", {0, 0, 80},
                                  {{u"ID", u"R"}, {u"TH", u"80"}}, resvData(u"R", u""));
  const AcDbObjectId t =
      addBlock(u"Tank", u"TANK-Rete", {9, 0, 5}, {{u"ID", u"T"}, {u"EL", u"5"}, {u"MINVOL", u""}},
               tankData(u"T", u""));
  const AcDbObjectId line =
      addPolyline(u"PIPE-Rete", {{0, 0, 80}, {9, 0, 5}}, pipeData(pipe(u"P", u"R", u"T")));
  EpaResv resv;
  resv.id = u"R2";
  resv.head = u"90";
  resv.pattern = u"h";
  UpdateResv(Opened<AcDbBlockReference>(r, AcDb::kForWrite), resv);
  EpaTank tank;
  tank.id = u"T2";
  tank.elev = u"6";
  tank.minVol = u"7.5";
  tank.volCurve = u"vol";
  UpdateTank(Opened<AcDbBlockReference>(t, AcDb::kForWrite), tank);
  expectNothingHeld();
  EXPECT_EQ(heights(line), (std::vector<double>{90, 6}));
  EXPECT_EQ(data(line), "P|100.5|150.0|130.0|0.25|Open|R2|T2");
  EXPECT_EQ(data(r), "R2|0.0|h");
  EXPECT_EQ(data(t), "T2|vol");
  EXPECT_EQ(attribute(t, u"MINVOL"), u"7.5");
  EXPECT_EQ(color(t), 256);
}

TEST_F(ElementLoaders, LinksThatAreNotTheNodesOwnStayAsTheyAre) {
  // The attribute was edited by hand: the block no longer stands at its old height.
  const AcDbObjectId edited = junction(u"N1", {0, 0, 10}, u"11");
  const AcDbObjectId line =
      addPolyline(u"PIPE-Rete", {{0, 0, 10}, {9, 0, 5}}, pipeData(pipe(u"P", u"N1", u"B")));
  rename(edited, u"N2", u"12");
  EXPECT_EQ(heights(line)[0], 10);
  EXPECT_EQ(position(edited).z, 12);

  // No data, or a list that ends before the node's name.
  const AcDbObjectId node = junction(u"M1", {50, 0, 1}, u"1");
  const AcDbObjectId bare = addPolyline(u"PIPE-Rete", {{50, 0, 1}, {60, 0, 1}});
  const AcDbObjectId brief = addPolyline(u"PIPE-Rete", {{50, 0, 1}, {60, 0, 1}}, idData(u"P"));
  // One vertex: no course and no place for a block.
  const AcDbObjectId dot = addPolyline(u"PUMP-Rete", {{50, 0, 1}}, idData(u"U"));
  rename(node, u"M2", u"2");
  for (const AcDbObjectId id : {bare, brief, dot}) {
    EXPECT_EQ(heights(id)[0], 1);
    EXPECT_EQ(color(id), 256);
  }
}

TEST_F(ElementLoaders, AStoredNameThatIsNoTextIsReplacedByReservoirsOnly) {
  const auto numbered = [] {
    return Chain(acutBuildList(1001, app::kImport, 1000, u"P", 1040, 1.0, 1040, 1.0, 1040, 1.0,
                               1040, 1.0, 1000, u"Open", 1040, 5.0, 1000, u"B", RTNONE));
  };
  const AcDbObjectId node = junction(u"N1", {0, 0, 0}, u"0");
  const AcDbObjectId a = addPolyline(u"PIPE-Rete", {{0, 0, 0}, {9, 0, 5}}, numbered());
  rename(node, u"N2", u"1");
  EXPECT_EQ(data(a), "P|1.0|1.0|1.0|1.0|Open|5.0|B");
  EXPECT_EQ(heights(a)[0], 1);

  const AcDbObjectId r =
      addBlock(u"Resv", u"RESV-Rete", {50, 0, 0}, {{u"ID", u"R"}, {u"TH", u"0"}});
  const AcDbObjectId b = addPolyline(u"PIPE-Rete", {{50, 0, 0}, {9, 0, 5}}, numbered());
  EpaResv resv;
  resv.id = u"R2";
  resv.head = u"3";
  UpdateResv(Opened<AcDbBlockReference>(r, AcDb::kForWrite), resv);
  EXPECT_EQ(data(b), "P|1.0|1.0|1.0|1.0|Open|R2|B");
}

TEST_F(ElementLoaders, ALinkFromANodeToItselfKeepsFiniteHeights) {
  const AcDbObjectId node = junction(u"N", {0, 0, 1}, u"1");
  const AcDbObjectId loop = addPolyline(u"PIPE-Rete", {{0, 0, 1}, {5, 5, 9}, {0, 0, 1}},
                                        pipeData(pipe(u"P", u"N", u"N")));
  rename(node, u"N2", u"4");
  EXPECT_EQ(heights(loop), (std::vector<double>{4, 4, 4}));
  EXPECT_EQ(data(loop), "P|100.5|150.0|130.0|0.25|Open|N2|N2");
  EXPECT_EQ(heightBetween({0, 0, 3}, {0, 0, 8}, {1, 1, 0}), 3);
  EXPECT_EQ(heightBetween({0, 0, 3}, {1e-320, 0, 8}, {1e9, 1, 0}), 3);
  EXPECT_EQ(heightBetween({0, 0, 0}, {10, 0, 5}, {20, 0, 0}), 10);
}

TEST_F(ElementLoaders, ARenamedLinkTakesItsCompanionAlong) {
  const AcDbObjectId block =
      addBlock(u"Valv", u"VALV-Rete", {1, 0, 0},
               {{u"ID", u"V1"}, {u"D", u"1"}, {u"TYPE", u""}, {u"SET", u""}, {u"MLOSS", u""}},
               valvData(valve(u"V1"), 80, 0.5));
  const AcDbObjectId companion = addPolyline(u"VALV-Rete", {{0, 0, 0}, {2, 0, 0}}, idData(u"V1"));
  const AcDbObjectId named = addPolyline(u"VALV-Rete", {{0, 0, 0}, {2, 0, 0}}, idData(u"V2"));
  const AcDbObjectId other = addPolyline(u"VALV-Rete", {{0, 0, 0}, {2, 0, 0}}, idData(u"V3"));
  const AcDbObjectId foreign = addPolyline(u"VALV-B", {{0, 0, 0}, {2, 0, 0}}, idData(u"V1"));
  EpaValv valv = valve(u"V2");
  valv.node1 = u"ignored";
  valv.diameter = u"125.5";
  valv.minorLoss = u"0.25";
  valv.status = u"Open";
  UpdateValv(Opened<AcDbBlockReference>(block, AcDb::kForWrite), valv, u"VALV-Rete");
  expectNothingHeld();
  EXPECT_EQ(data(block), "V2|0.0|PRV|Open|30|0.0|A|B");
  EXPECT_EQ(attribute(block, u"D") + attribute(block, u"MLOSS") + attribute(block, u"SET"),
            u"125.50.2530");
  EXPECT_EQ(data(companion) + data(named) + data(other) + data(foreign), "V2V2V3V1");

  const AcDbObjectId pumpBlock = addBlock(
      u"Pump", u"PUMP-Rete", {1, 0, 0}, {{u"ID", u"U1"}, {u"ST", u"Open"}}, pumpData(pump(u"U1")));
  const AcDbObjectId pumpLine = addPolyline(u"PUMP-Rete", {{0, 0, 0}, {2, 0, 0}}, idData(u"U1"));
  EpaPump record = pump(u"U2");
  record.speed = u"1.5x";
  UpdatePump(Opened<AcDbBlockReference>(pumpBlock, AcDb::kForWrite), record, u"PUMP-Rete");
  expectNothingHeld();
  EXPECT_EQ(data(pumpBlock), "U2|A|B|c|1.25|1.5|sp|eff|-1.0|pp");
  EXPECT_EQ(attribute(pumpBlock, u"ST"), u"Closed");
  EXPECT_EQ(data(pumpLine), "U2");
}

// --- some fields ---------------------------------------------------------------------------------

using schema::Field;

TEST_F(ElementLoaders, OfSomeFieldsOnlyTheirOwnConsequencesFollow) {
  const AcDbObjectId node = junction(u"N1", {100, 0, 10}, u"10");
  const AcDbObjectId line =
      pipeWithResults(pipe(u"P1", u"altro", u"B"), {{100, 0, 9}, {150, 0, 0}, {200, 0, 7}});
  const auto update = [&](FieldSet changed) {
    EpaJunc junc;
    junc.id = u"Nuovo";
    junc.elev = u"30.5";
    junc.demand = u"8.125";
    junc.pattern = u"altro";
    UpdateJunc(Opened<AcDbBlockReference>(node, AcDb::kForWrite), junc, 0.5, changed);
    expectNothingHeld();
  };
  const auto stateOfLine = [&] {
    return data(line) + "/" + std::to_string(color(line)) + "/" + std::to_string(heights(line)[0]) +
           "/" + std::to_string(heights(line)[1]) +
           (Opened<AcDbEntity>(line)->hasXData(app::kLinkResult) ? "/results" : "");
  };
  const std::string untouched = stateOfLine();

  update({Field::demand});
  EXPECT_EQ(attribute(node, u"BD") + attribute(node, u"ID") + attribute(node, u"EL"), u"8.125N110");
  EXPECT_EQ(data(node), "N1|0.125|day");
  update({Field::pattern, Field::emitter});
  EXPECT_EQ(data(node), "N1|0.5|altro");
  EXPECT_EQ(color(node), 1);
  EXPECT_EQ(stateOfLine(), untouched);

  // A name goes to the links by itself: no height is touched, not even one that is not the node's.
  update({Field::id});
  EXPECT_EQ(data(node) + data(line), "Nuovo|0.5|altroP1|100.5|150.0|130.0|0.25|Open|Nuovo|B");
  EXPECT_EQ(stateOfLine().substr(data(line).size()), "/3/9.000000/0.000000");
  EXPECT_EQ(position(node).z, 10);
  // And a height without the name.
  junction(u"N2", {200, 0, 7}, u"7");
  update({Field::elevation});
  EXPECT_EQ(attribute(node, u"EL"), u"30.5");
  EXPECT_EQ(heights(line), (std::vector<double>{30.5, 18.75, 7}));
}

TEST_F(ElementLoaders, SomeItemsGoIntoTheListThatIsThere) {
  // A list with more than we know keeps it; one that is too short becomes whole.
  const Chain longer(acutBuildList(1001, app::kImport, 1000, u"P", 1040, 1.5, 1040, 2.5, 1040, 3.5,
                                   1040, 4.5, 1000, u"CV", 1000, u"A", 1000, u"B", 1000, u"oltre",
                                   RTNONE));
  const AcDbObjectId extended = addPolyline(u"PIPE-Rete", {{0, 0, 0}, {1, 0, 0}}, longer);
  const AcDbObjectId brief = addPolyline(u"PIPE-Rete", {{0, 0, 0}, {1, 0, 0}}, idData(u"Q"));
  EpaPipe record = pipe(u"R", u"non", u"questi");
  record.length = u"12.345678901";
  for (const AcDbObjectId id : {extended, brief}) {
    UpdatePipe(Opened<AcDb3dPolyline>(id, AcDb::kForWrite).get(), record, u"PVC");
  }
  EXPECT_EQ(data(extended), "R|12.345678901|150.0|130.0|0.25|Open|A|B|oltre");
  EXPECT_EQ(data(brief), "R|12.345678901|150.0|130.0|0.25|Open|non|questi");
  EXPECT_EQ(data(extended, app::kMaterial), "PVC");
  record.roughness = u"99";
  UpdatePipe(Opened<AcDb3dPolyline>(extended, AcDb::kForWrite).get(), record, u"altro",
             {Field::roughness});
  EXPECT_EQ(data(extended) + data(extended, app::kMaterial),
            "R|12.345678901|150.0|99.0|0.25|Open|A|B|oltrePVC");

  // A pump's old list ends in a point, which is no name of a pattern.
  const Chain ended(acutBuildList(1001, app::kImport, 1000, u"U", 1000, u"C", 1000, u"D", 1000,
                                  u"h", 1040, 0.0, 1040, 2.0, 1010, AcGePoint3d(1, 2, 3), RTNONE));
  const AcDbObjectId old = addBlock(u"Pump", u"PUMP-Rete", {}, {{u"ID", u"U"}}, ended);
  EpaPump changed = pump(u"U");
  changed.speed = u"1.25";
  UpdatePump(Opened<AcDbBlockReference>(old, AcDb::kForWrite), changed, u"PUMP-Rete",
             {Field::speed});
  EXPECT_EQ(data(old).substr(0, 17), "U|C|D|h|0.0|1.25|");
  changed.price = u"0.2";
  UpdatePump(Opened<AcDbBlockReference>(old, AcDb::kForWrite), changed, u"PUMP-Rete",
             {Field::price});
  EXPECT_EQ(data(old), "U|A|B|c|1.25|1.25|sp|eff|0.2|pp");

  // What a valve has twice is written twice, and its companion keeps its name.
  const AcDbObjectId block =
      addBlock(u"Valv", u"VALV-Rete", {1, 0, 0}, {{u"ID", u"V1"}, {u"D", u"1"}, {u"SET", u"7"}},
               valvData(valve(u"V1"), 80, 0.5));
  const AcDbObjectId companion = addPolyline(u"VALV-Rete", {{0, 0, 0}, {2, 0, 0}}, idData(u"V1"));
  EpaValv valv = valve(u"V2");
  valv.diameter = u"125.5";
  UpdateValv(Opened<AcDbBlockReference>(block, AcDb::kForWrite), valv, u"VALV-Rete",
             {Field::diameter});
  EXPECT_EQ(data(block) + "/" + data(companion), "V1|125.5|PRV|None|30|0.5|A|B/V1");
  EXPECT_EQ(attribute(block, u"D") + attribute(block, u"SET"), u"125.57");
}

}  // namespace
}  // namespace vessora
