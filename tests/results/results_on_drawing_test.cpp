#include "module/network/network_list.h"
#include "module/results/drawing_jobs.h"
#include "module/results/query_colors.h"
#include "module/results/query_rows.h"
#include "module/results/result_import.h"
#include "tests/network/network_testing.h"

namespace vessora {
namespace {

const std::string kHead = "1\n2\n3\n4\n";

class ResultsOnDrawing : public DrawnNetwork {
 protected:
  void SetUp() override {
    DrawnNetwork::SetUp();
    acdbRegApp(app::kPeriod);
    acdbRegApp(app::kColor);
  }

  AcDbObjectId junction(const char16_t* id, double emitter = 0) {
    return addBlock(u"Junc", layers_.junc, {0, 0, 0}, {{u"ID", id}}, juncData(id, emitter, u""));
  }
  AcDbObjectId pipe(const char16_t* id) {
    EpaPipe p;
    p.id = id;
    p.status = u"CV";
    return addPolyline(layers_.pipe, {{0, 0, 0}, {10, 0, 0}}, pipeData(p));
  }
  AcDbObjectId valve(const char16_t* id) {
    EpaValv v;
    v.id = id;
    return addBlock(u"Valv", layers_.valv, {5, 0, 0}, {{u"ID", id}}, valvData(v, 0, 0));
  }
  AcDbObjectId companion(const char16_t* id) {
    return addPolyline(layers_.valv, {{0, 0, 0}, {10, 0, 0}}, idData(id));
  }

  void write(const std::string& nodes, const std::string& links, const char16_t* time = u"") {
    const auto report = std::make_shared<const RptText>("  Node Results:\n" + kHead + nodes +
                                                        "  Link Results:\n" + kHead + links);
    NodeResultList nodeRows;
    LinkResultList linkRows;
    ASSERT_EQ(ReadRpt(report, nodeRows, linkRows), kRptSinglePeriod);
    nodes_ = WriteNodeResults(layers_, &nodeRows, time, notices_);
    pipes_ = WritePipeResults(layers_, &linkRows, time);
    valves_ = WriteValvePumpResults(layers_, &linkRows, time, notices_);
  }
  int nodes_ = 0, pipes_ = 0, valves_ = 0;
  Notices notices_;
  static void setColor(AcDbObjectId id, int color) {
    Opened<AcDbEntity>(id, AcDb::kForWrite)->setColorIndex(color);
  }

  NetworkLayers layers_{u"Rete"};
};

TEST_F(ResultsOnDrawing, EachElementGetsItsFirstRowAndAMissingOneTheLast) {
  const auto n1 = junction(u"N1"), n2 = junction(u"N2"), lost = junction(u"n1");
  const auto p1 = pipe(u"P1"), lostPipe = pipe(u"P9"), v1 = valve(u"V1"), course = companion(u"V1");
  write("  N1 1.25 2 x3 0.5\n  N2 4 5 6\n  N1 7 8 9\n   \n",
        "  P1 10 0.2 30 closed\n  V1 1 2 3\n  Analysis ended at noon\n", u"2:00:00");
  EXPECT_EQ(nodes_ * 100 + pipes_ * 10 + valves_, 321);
  EXPECT_EQ(data(n1, app::kNodeResult), "1.25|2.0|0.0|0.5");
  EXPECT_EQ(data(n1, app::kPeriod), "2:00:00");
  EXPECT_EQ(data(n2, app::kNodeResult), "4.0|5.0|6.0|0");
  EXPECT_EQ(data(lost, app::kNodeResult), "7.0|8.0|9.0|0");
  EXPECT_EQ(data(p1, app::kLinkResult), "10.0|0.2|30.0|closed");
  EXPECT_EQ(data(lostPipe, app::kLinkResult), "0.0|0.0|0.0|Open");
  EXPECT_EQ(data(v1, app::kLinkResult), "1.0|2.0|3.0|Open");
  EXPECT_EQ(data(course, app::kLinkResult), "");
  // The next import takes their place as a whole.
  write("  N1 1 1 1 1\n", "  P1 2 2 2\n");
  EXPECT_EQ(data(n1, app::kNodeResult), "1.0|1.0|1.0|1");
  EXPECT_EQ(data(n1, app::kPeriod), "");
}

// Each kind from its own table: names of nodes and links may be the same.
TEST_F(ResultsOnDrawing, EveryKindOfElementGetsItsRow) {
  std::vector<AcDbObjectId> ids;
  for (const auto& [name, layer] :
       {std::pair(u"Junc", layers_.junc), std::pair(u"Resv", layers_.resv),
        std::pair(u"Tank", layers_.tank), std::pair(u"Pump", layers_.pump),
        std::pair(u"Valv", layers_.valv)}) {
    const std::u16string id = std::u16string(u"X") + name[0];
    ids.push_back(addBlock(name, layer, {}, {{u"ID", id}}, idData(id)));
  }
  addBlock(u"Junc", u"JUNC-Altra", {}, {{u"ID", u"XJ"}}, idData(u"XJ"));
  ids.push_back(pipe(u"XJ"));
  write("  XJ 1 2 3 4\n  XR 5 6 7 8\n  XT 9 10 11 12\n  XP 0 0 0\n",
        "  XJ 21 22 23 Open\n  XP 24 25 26 Closed\n  XV 27 28 29 Active\n");
  std::string all;
  for (std::size_t i = 0; i < ids.size(); ++i) {
    all += data(ids[i], i < 3 ? app::kNodeResult : app::kLinkResult) + " ";
    EXPECT_EQ(data(ids[i], i < 3 ? app::kLinkResult : app::kNodeResult), "");
    EXPECT_TRUE(Opened<AcDbEntity>(ids[i])->hasXData(app::kPeriod));
  }
  EXPECT_EQ(all,
            "1.0|2.0|3.0|4 5.0|6.0|7.0|8 9.0|10.0|11.0|12 24.0|25.0|26.0|Closed "
            "27.0|28.0|29.0|Active 21.0|22.0|23.0|Open ");
  EXPECT_EQ(nodes_ * 100 + pipes_ * 10 + valves_, 312);
}

TEST_F(ResultsOnDrawing, WhatAReportLacksIsFoundBeforeItIsWritten) {
  junction(u"N1");
  junction(u"N2");
  pipe(u"P1");
  valve(u"V1");
  companion(u"V1");
  const std::string head = "  Node Results:\n" + kHead, more = "  Link Results:\n" + kHead;
  const struct {
    std::string text;
    const char* found;  // rows, elements, missing, cut
    const char* names;
  } reports[] = {
      {head + "  N1 1\n  N2 1\n\n" + more + "  P1 1\n  V1 1\n\n", "rows 4 0 whole", ""},
      {head + "  N1 1\n  N2 1\n\n" + more + "  P1 1\n  V1 1\n", "rows 4 0 whole", ""},
      {head + "  N1 1\n  N2 1\n\n" + more + "  P1 1\n  V1 1", "rows 4 0 cut", ""},
      {head + "  N1 1\n  N2 1\n\n" + more + "  P1 1\n", "rows 4 1 cut", "V1"},
      {head + "  N2 1\n\n" + more + "  V1 1\n\nN1 P1\n", "rows 4 2 whole", "N1 P1"},
      {head + "  Q1 1\n\n" + more + "  Q2 1\n\n", "rows 4 4 whole", "N1 N2 P1 V1"},
      {head + "  N1 1\n  N2 1\n", "none 0 0 whole", ""},
      {"Caro diario\n", "none 0 0 whole", ""},
  };
  for (const auto& report : reports) {
    const ReportRows rows = rowsOf(std::make_shared<const RptText>(report.text), u"", false);
    const ReportFindings f = examineResults(rows, u"Rete");
    EXPECT_EQ(std::string(f.hasRows ? "rows " : "none ") + std::to_string(f.elements) + " " +
                  std::to_string(f.missing) + (f.cut ? " cut" : " whole"),
              report.found)
        << report.text;
    std::string names;
    for (const std::u16string& name : f.firstMissing) {
      names += (names.empty() ? "" : " ") + platform::narrow(name);
    }
    EXPECT_EQ(names, report.names);
    expectNothingHeld();
  }
  const ReportRows rows = rowsOf(std::make_shared<const RptText>(reports[0].text), u"", false);
  EXPECT_EQ(examineResults(rows, u"Altra").elements, 0);
  const ResultCounts counts = writeResults(rows, u"Rete");
  EXPECT_EQ(counts.nodes * 10 + counts.links(), 22);
  EXPECT_EQ(writeResults(nullptr, u"Rete").links(), 2);
  EXPECT_EQ(networkInfo(u"Rete").hasResults, false);
}

TEST_F(ResultsOnDrawing, TheImportedNameWinsOverAnEditedAttribute) {
  const auto n =
      addBlock(u"Junc", layers_.junc, {0, 0, 0}, {{u"ID", u"N2"}}, juncData(u"N1", 0, u""));
  write("  N1 1 2 3\n  N2 4 5 6\n", "  P 1 2 3\n");
  EXPECT_EQ(data(n, app::kNodeResult), "1.0|2.0|3.0|0");
  ASSERT_EQ(notices_.size(), 1U);
  EXPECT_EQ(notices_[0].subject + u"|" + notices_[0].other, u"N1|N2");
}

TEST_F(ResultsOnDrawing, RemovalLeavesNothing) {
  const auto n = junction(u"N1"), p = pipe(u"P1"), v = valve(u"V1"), bare = junction(u"N2");
  const auto other = addPolyline(u"PIPE-Altra", {{0, 0, 0}, {1, 0, 0}}, idData(u"P1"));
  setColor(p, 3);
  setColor(other, 3);
  write("  N1 1 2 3\n", "  P1 1 2 3\n  V1 4 5 6\n", u"1:00");
  saveAndReload();
  std::vector<AcDbObjectId> ids = onLayer(layers_.junc);
  for (const std::u16string& layer : {layers_.pipe, layers_.valv}) {
    for (const AcDbObjectId id : onLayer(layer)) ids.push_back(id);
  }
  ASSERT_EQ(ids.size(), 4U);
  // What is counted had something to lose.
  EXPECT_EQ(WriteNodeResults(layers_, nullptr, u"", notices_), 2);
  EXPECT_EQ(WritePipeResults(layers_, nullptr, u""), 1);
  EXPECT_EQ(WriteValvePumpResults(layers_, nullptr, u"", notices_), 1);
  EXPECT_EQ(WriteNodeResults(layers_, nullptr, u"", notices_), 0);
  ResetLinkColors(layers_);
  for (const AcDbObjectId id : ids) {
    for (const char16_t* application : {app::kNodeResult, app::kLinkResult, app::kPeriod}) {
      EXPECT_FALSE(Chain(Opened<AcDbEntity>(id)->xData(application)));
    }
  }
  EXPECT_EQ(color(onLayer(layers_.pipe)[0]), 256);
  EXPECT_EQ(color(onLayer(u"PIPE-Altra")[0]), 3);
  static_cast<void>(n), static_cast<void>(v), static_cast<void>(bare);
}

TEST_F(ResultsOnDrawing, ThePiezometricLineOfThisNetworkGoes) {
  for (const char16_t* layer : {u"PIEZOMETRICA_3D-Rete", u"LINEE_COSTR-Rete",
                                u"PIEZOMETRICA_3D_VAL-Rete", u"PIEZOMETRICA_3D-Rete2"}) {
    addPolyline(layer, {{0, 0, 0}, {1, 0, 0}});
  }
  ErasePiezometricLine(u"Rete");
  EXPECT_TRUE(onLayer(u"PIEZOMETRICA_3D-Rete").empty());
  EXPECT_TRUE(onLayer(u"LINEE_COSTR-Rete").empty());
  EXPECT_TRUE(onLayer(u"PIEZOMETRICA_3D_VAL-Rete").empty());
  EXPECT_EQ(onLayer(u"PIEZOMETRICA_3D-Rete2").size(), 1U);
}

TEST_F(ResultsOnDrawing, RowsHaveThreeDecimalsAndDashesWithoutResults) {
  const auto n1 = junction(u"N1"), n2 = junction(u"N2");
  const auto p1 = pipe(u"P1");
  {
    const Chain material(acutBuildList(1001, app::kMaterial, 1000, u"PEAD", RTNONE));
    Opened<AcDbEntity>(p1, AcDb::kForWrite)->setXData(material.get());
  }
  companion(u"V1");
  write("  N1 1.0005 2 1e3 0.30\n", "  P1 1 2 3 Open\n", u"3:00");
  EpaNodeResult record;
  ASSERT_TRUE(ReadNodeResult(record, Opened<AcDbBlockReference>(n1).get(), notices_));
  EXPECT_EQ(record.head, u"2.000");
  EXPECT_EQ(record.pressure, u"1000.000");
  EXPECT_EQ(record.quality, u"0.30");
  EXPECT_EQ(record.period, u"3:00");
  Opened<AcDbEntity>(n2, AcDb::kForWrite)
      ->setXData(Chain(acutBuildList(1001, app::kNodeResult, RTNONE)).get());

  NetworkQuery query;
  script("tutto\n<invio>\n: Selezionare gli oggetti desiderati:\n");
  ASSERT_TRUE(CollectQueryRows(layers_, query));
  ASSERT_EQ(query.nodes.size(), 2U);
  EXPECT_EQ(query.nodes[1].id, u"N2");
  EXPECT_EQ(query.nodes[1].values[3], u"-");
  ASSERT_EQ(query.links.size(), 1U);  // a companion is no element of its own
  ASSERT_EQ(query.pipeMaterials.size(), 1U);
  EXPECT_EQ(query.pipeMaterials[0].material, u"PEAD");
  expectScriptDone();
  script("<invio>\n");
  EXPECT_FALSE(CollectQueryRows(layers_, query));
}

// --- colours -------------------------------------------------------------------------------------

class QueryColors : public ResultsOnDrawing {
 protected:
  void SetUp() override {
    ResultsOnDrawing::SetUp();
    low_ = junction(u"N1");
    high_ = junction(u"N2", 0.5);
    tank_ = addBlock(u"Tank", layers_.tank, {0, 0, 0}, {{u"ID", u"T1"}}, tankData(u"T1", u"VOL"));
    pipe_ = pipe(u"P1");
    valve_ = valve(u"V1");
    companion_ = companion(u"V1");
    twin_ = companion(u"V1");
    lone_ = valve(u"V2");
    last_ = companion(u"V3");
    write("  N1 0 0 10\n  N2 0 0 57.2\n  T1 0 0 30\n", "  P1 1 0 0\n  V1 9.5 0 0\n  V2 5 0 0\n");
    query_.nodes = {row(u"N1", u"10.000"), row(u"N2", u"57.200")};
    query_.links = {row(u"P1", u"1.000"), row(u"V1", u"9.500"), row(u"V2", u"5.000")};
  }
  static QueryRow row(const char16_t* id, const char16_t* value) {
    return {id, {value, value, value, value}};
  }
  void legend(const char16_t* title, int kind, const AcGePoint3d& at) {
    addBlock(u"LEG_5", u"0", at, {},
             Chain(acutBuildList(1001, app::kColor, 1000, title, 1070, kind, RTNONE)));
  }
  std::vector<AcDbObjectId> legends() const {
    std::vector<AcDbObjectId> ids;
    for (const AcDbObjectId id : SelectionSet(u"_X", acutBuildList(1001, app::kColor, RTNONE))) {
      ids.push_back(id);
    }
    return ids;
  }
  AcDbObjectId low_, high_, tank_, pipe_, valve_, companion_, twin_, lone_, last_;
  NetworkQuery query_;
};

TEST_F(QueryColors, ClassesOfThePickedRowsColourEveryElementWithResults) {
  query_.nodeColorBy = 1;
  query_.linkColorBy = 1;
  script("<esc>\n<esc>\n: Selezionare un punto...\n: Selezionare un punto...\n");
  applyQueryColors(u"Rete", query_);
  EXPECT_EQ(color(low_), 5);
  EXPECT_EQ(color(high_), 1);
  EXPECT_EQ(color(tank_), 3);  // 30 was not picked, yet has a class
  EXPECT_EQ(color(pipe_), 5);
  EXPECT_EQ(color(valve_), 1);
  EXPECT_EQ(color(companion_), 1);
  EXPECT_EQ(color(twin_), 256);  // of courses of one name the first is the block's
  // A block without a course colours the one at which the search for it ends.
  EXPECT_EQ(color(lone_), 3);
  EXPECT_EQ(color(last_), 3);
  EXPECT_TRUE(legends().empty());
}

TEST_F(QueryColors, EachQuantityColoursByItsOwnValues) {
  write("  N1 1 50 10\n  N2 8.5 50 10.5\n  T1 5 50 11.9\n",
        "  P1 1 8.5 0\n  V1 8.5 5 0\n  V2 5 1 0\n");
  const struct {
    Quantity quantity;
    std::array<AcDbObjectId, 3> ids;
    const char* colors;
  } rows[] = {{Quantity::demand, {low_, high_, tank_}, "5 1 3 "},
              {Quantity::pressure, {low_, high_, tank_}, "5 4 1 "},
              {Quantity::flow, {pipe_, valve_, lone_}, "5 1 3 "},
              {Quantity::velocity, {pipe_, valve_, lone_}, "1 3 5 "}};
  for (const auto& row : rows) {
    EXPECT_EQ(colorNetwork(u"Rete", {row.quantity, 5, {}}).painted, 3);
    std::string colors;
    for (const AcDbObjectId id : row.ids) colors += std::to_string(color(id)) + " ";
    EXPECT_EQ(colors, row.colors) << static_cast<int>(row.quantity);
  }
}

TEST_F(QueryColors, FilteredElementsTurnOrangeAndAResetTakesEverythingPicked) {
  query_.colorFiltered = true;
  query_.filteredNodes = {1};
  query_.filteredLinks = {1};
  applyQueryColors(u"Rete", query_);
  EXPECT_EQ(color(high_), 40);
  EXPECT_EQ(color(low_), 256);
  EXPECT_EQ(color(valve_), 40);
  EXPECT_EQ(color(companion_), 40);
  EXPECT_EQ(color(pipe_), 256);

  setColor(tank_, 40);
  setColor(last_, 40);
  setColor(low_, 5);
  setColor(pipe_, 5);
  query_.resetColors = true;
  query_.nodeColorBy = query_.linkColorBy = 1;
  applyQueryColors(u"Rete", query_);
  EXPECT_EQ(color(high_), 1);  // it has an emitter
  for (const AcDbObjectId id : {low_, pipe_, valve_, companion_}) EXPECT_EQ(color(id), 256);
  EXPECT_EQ(color(tank_), 40);  // was not picked
  EXPECT_EQ(color(last_), 40);
}

TEST_F(QueryColors, ALegendKeepsItsPlaceAndReplacesTheOtherOfItsKind) {
  legend(u"Portata ai nodi [l/s]", 1, {3, 4, 0});
  legend(u"Portata dei rami [l/s]", 2, {7, 8, 0});
  AcGePoint3d at{-1, -1, -1};
  EXPECT_FALSE(TakeColorLegend(u"Pressione dei nodi [m]", at, 1));
  EXPECT_EQ(at.x, -1);
  ASSERT_EQ(legends().size(), 1U);
  EXPECT_TRUE(TakeColorLegend(u"Portata dei rami [l/s]", at, 2));
  EXPECT_EQ(at.x, 7);
  EXPECT_TRUE(legends().empty());
  InsertClassLegend({0, 1, 7}, u"Sette", at, 2, 1, notices_);
  EXPECT_TRUE(legends().empty());
}

}  // namespace
}  // namespace vessora
