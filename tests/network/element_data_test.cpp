#include "module/network/element_data.h"

#include "module/network/element_loaders.h"
#include "tests/network/network_testing.h"

namespace vessora {
namespace {

class ElementData : public DrawnNetwork {
 protected:
  // Codes and values of a list, as "1000 P1, 1040 100.5".
  static std::string shown(const Chain& chain) {
    std::string all;
    for (int i = 1; const resbuf* item = chain.item(i); ++i) {
      all += (i > 1 ? ", " : "") + std::to_string(item->restype) + " ";
      if (acutKindOf(item->restype) == RbKind::text) {
        all += platform::narrow(item->resval.rstring);
      } else {
        char digits[32];
        all.append(digits, platform::writeReal(digits, item->resval.rreal));
      }
    }
    return all;
  }
  template <class Record>
  static void fill(Record& record, std::initializer_list<wide50 Record::*> fields) {
    int value = 10;
    for (const auto field : fields) record.*field = platform::widen(std::to_string(++value));
    record.id = u"X";
  }
  // What writing a record leaves on a block that has every tag there is.
  template <class Record>
  std::string attributesOf(const Record& record) {
    const char16_t* const tags[] = {u"ID",    u"EL",    u"BD",   u"TH",     u"D",
                                    u"INITL", u"MINL",  u"MAXL", u"MINVOL", u"TYPE",
                                    u"SET",   u"MLOSS", u"ST"};
    Attributes all;
    for (const char16_t* tag : tags) all.emplace_back(tag, u"");
    const AcDbObjectId id = addBlock(u"Any", u"0", {}, all);
    writeAttributes(Opened<AcDbBlockReference>(id, AcDb::kForWrite).get(), record);
    Record back;
    takeAttributes(Opened<AcDbBlockReference>(id).get(), back);
    std::string shown;
    for (const char16_t* tag : tags) {
      const std::u16string text = attribute(id, tag);
      if (text.empty()) continue;
      shown += (shown.empty() ? "" : " ") + platform::narrow(tag) + "=" + platform::narrow(text);
    }
    for (const schema::Row& row : kindOf<Record>().data.rows) {
      if (!row.tag.empty()) {
        EXPECT_EQ(textOf(back, row.field), textOf(record, row.field));
      }
    }
    return shown;
  }
};

TEST_F(ElementData, EachKindIsStoredAsDrawingsHaveIt) {
  EpaJunc j;
  fill(j, {&EpaJunc::elev, &EpaJunc::demand, &EpaJunc::emitter, &EpaJunc::pattern});
  EXPECT_EQ(shown(dataOf(j)), "1000 X, 1040 13.0, 1000 14");
  EXPECT_EQ(attributesOf(j), "ID=X EL=11 BD=12");
  EpaResv r;
  fill(r, {&EpaResv::head, &EpaResv::pattern});
  EXPECT_EQ(shown(dataOf(r)), "1000 X, 1040 0.0, 1000 12");
  EXPECT_EQ(attributesOf(r), "ID=X TH=11");
  EpaTank t;
  fill(t, {&EpaTank::elev, &EpaTank::initLevel, &EpaTank::minLevel, &EpaTank::maxLevel,
           &EpaTank::diameter, &EpaTank::minVol, &EpaTank::volCurve});
  EXPECT_EQ(shown(dataOf(t)), "1000 X, 1000 17");
  EXPECT_EQ(attributesOf(t), "ID=X EL=11 D=15 INITL=12 MINL=13 MAXL=14 MINVOL=16");
  EpaPipe p;
  fill(p, {&EpaPipe::length, &EpaPipe::diameter, &EpaPipe::roughness, &EpaPipe::minorLoss,
           &EpaPipe::status});
  p.node1 = u"A";
  p.node2 = u"B";
  EXPECT_EQ(shown(dataOf(p)),
            "1000 X, 1040 11.0, 1040 12.0, 1040 13.0, 1040 14.0, 1000 15, 1000 A, 1000 B");
  EpaValv v;
  fill(v, {&EpaValv::diameter, &EpaValv::type, &EpaValv::setting, &EpaValv::minorLoss,
           &EpaValv::status});
  v.node1 = u"A";
  v.node2 = u"B";
  EXPECT_EQ(shown(dataOf(v)),
            "1000 X, 1040 11.0, 1000 12, 1000 15, 1000 13, 1040 14.0, 1000 A, 1000 B");
  EXPECT_EQ(attributesOf(v), "ID=X D=11 TYPE=12 SET=13 MLOSS=14");
  EpaPump u;
  fill(u, {&EpaPump::headCurve, &EpaPump::power, &EpaPump::speed, &EpaPump::status,
           &EpaPump::speedPattern, &EpaPump::effCurve, &EpaPump::price, &EpaPump::pricePattern});
  u.node1 = u"A";
  u.node2 = u"B";
  EXPECT_EQ(shown(dataOf(u)),
            "1000 X, 1000 A, 1000 B, 1000 11, 1040 12.0, 1040 13.0, 1000 15, 1000 16, 1040 17.0, "
            "1000 18");
  EXPECT_EQ(attributesOf(u), "ID=X ST=14");
  EpaNodeResult n{u"X", u"1", u"2", u"3", u"0.5", u""};
  EXPECT_EQ(shown(dataOf(n)), "1040 1.0, 1040 2.0, 1040 3.0, 1000 0.5");
  EpaLinkResult l{u"X", u"1", u"2", u"3", u"Open", u""};
  EXPECT_EQ(shown(dataOf(l)), "1040 1.0, 1040 2.0, 1040 3.0, 1000 Open");
}

TEST_F(ElementData, LayersAndBlocksHaveTheirNames) {
  const struct {
    const schema::Kind& kind;
    const char16_t *layer, *block;
    int color;
  } kinds[] = {{schema::kJunc, u"JUNC-N", u"Junc", 5}, {schema::kResv, u"RESV-N", u"Resv", 5},
               {schema::kTank, u"TANK-N", u"Tank", 5}, {schema::kPipe, u"PIPE-N", u"", 140},
               {schema::kPump, u"PUMP-N", u"Pump", 6}, {schema::kValv, u"VALV-N", u"Valv", 2}};
  for (const auto& k : kinds) {
    EXPECT_EQ(schema::layerName(k.kind.layer, u"N"), k.layer);
    EXPECT_EQ(std::u16string(k.kind.block), k.block);
    EXPECT_EQ(k.kind.color, k.color);
  }
}

// Reals that stand for no value, one by one: what is exactly 0, what is below it.
TEST_F(ElementData, APumpsZeroesAreNoValues) {
  const struct {
    double stored;
    const char16_t *power, *speed, *price;
  } rows[] = {{0, u"", u"", u""},
              {-1, u"-1.000", u"-1.000", u""},
              {0.0004, u"0.000", u"0.000", u"0.000"},
              {2, u"2.000", u"2.000", u"2.000"}};
  for (const auto& row : rows) {
    const Chain data(acutBuildList(1001, kImported, 1000, u"U", 1000, u"A", 1000, u"B", 1000, u"c",
                                   1040, row.stored, 1040, row.stored, 1000, u"s", 1000, u"e", 1040,
                                   row.stored, 1000, u"p", RTNONE));
    EpaPump pump;
    pump.power = pump.speed = pump.price = u"before";
    takeData(data, pump);
    EXPECT_EQ(pump.power, row.power);
    EXPECT_EQ(pump.speed, row.speed);
    EXPECT_EQ(pump.price, row.price);
    EXPECT_EQ(pump.pricePattern, u"p");
  }
}

TEST_F(ElementData, FieldsEndExactlyAtTheirCapacity) {
  for (const std::size_t n : {254U, 255U, 256U}) {
    EpaPipe pipe;
    const std::u16string name(n, u'n');
    pipe.id = pipe.node1 = name;
    EXPECT_EQ(pipe.id.size(), std::min<std::size_t>(n, 255));
    const AcDbObjectId id =
        addBlock(u"Junc", u"0", {}, {{u"ID", name}, {u"EL", std::u16string(n / 5 - 1, u'7')}});
    EpaJunc junc;
    takeAttributes(Opened<AcDbBlockReference>(id).get(), junc);
    EXPECT_EQ(junc.id.size(), std::min<std::size_t>(n, 255));
    EXPECT_EQ(junc.elev.size(), std::min<std::size_t>(n / 5 - 1, 49));  // 49, 50, 50
  }
  // A name of full length goes through extended data as it is.
  EpaPipe longest;
  longest.id = longest.node2 = std::u16string(255, u'n');
  const AcDbObjectId line = addPolyline(u"PIPE-Rete", {{0, 0, 0}, {1, 0, 0}}, dataOf(longest));
  saveAndReload();
  EpaPipe back;
  std::u16string material;
  ReadPipe(back, material, Opened<AcDb3dPolyline>(onLayer(u"PIPE-Rete")[0]).get());
  EXPECT_EQ(back.id, longest.id);
  EXPECT_EQ(back.node2.size(), 255U);
  static_cast<void>(line);
}

// --- nodes and the links at them: every kind of each, both ends ----------------------------------

class NodesAndLinks : public ElementData {
 protected:
  void update(const char16_t* kind, AcDbObjectId node, const char16_t* id, const char16_t* height) {
    Opened<AcDbBlockReference> block(node, AcDb::kForWrite);
    if (kind[0] == u'J') {
      EpaJunc j;
      j.id = id;
      j.elev = height;
      UpdateJunc(std::move(block), j, 0);
    } else if (kind[0] == u'R') {
      EpaResv r;
      r.id = id;
      r.head = height;
      UpdateResv(std::move(block), r);
    } else {
      EpaTank t;
      t.id = id;
      t.elev = height;
      UpdateTank(std::move(block), t);
    }
    expectNothingHeld();
  }
};

TEST_F(NodesAndLinks, EveryKindOfNodeDragsEveryKindOfLinkAtEitherEnd) {
  double y = 0;
  for (const char16_t* kind : {u"JUNC-Rete", u"RESV-Rete", u"TANK-Rete"}) {
    for (const char16_t* link : {u"PIPE-Rete", u"PUMP-Rete", u"VALV-Rete"}) {
      for (const bool start : {true, false}) {
        y += 100;
        const AcDbObjectId node =
            addBlock(u"Any", kind, {0, y, 10}, {{u"ID", u"N"}, {u"EL", u"10"}, {u"TH", u"10"}});
        AcGePoint3dArray points = {{0, y, 10}, {10, y, 10}};
        if (!start) std::swap(points[0], points[1]);
        EpaPipe p;
        EpaPump u;
        EpaValv v;
        p.id = u.id = v.id = u"L";
        p.node1 = u.node1 = v.node1 = u"first";
        p.node2 = u.node2 = v.node2 = u"second";
        const bool isPipe = link[1] == u'I', isPump = link[1] == u'U';
        const AcDbObjectId line = addPolyline(link, points, isPipe ? pipeData(p) : idData(u"L"));
        AcDbObjectId symbol = line;
        if (!isPipe) {
          symbol = addBlock(u"Any", link, {5, y, 10}, {}, isPump ? pumpData(u) : valvData(v, 1, 2));
        }
        update(kind, node, u"Neu", u"30");
        const Chain data(Opened<AcDbEntity>(symbol)->xData(kImported));
        const int first = isPump ? 2 : 7;
        EXPECT_EQ(data.text(first), start ? u"Neu" : u"first") << y;
        EXPECT_EQ(data.text(first + 1), start ? u"second" : u"Neu") << y;
        EXPECT_EQ(heights(line),
                  start ? (std::vector<double>{30, 10}) : (std::vector<double>{10, 30}))
            << y;
        EXPECT_EQ(position(node).z, 30) << y;
        if (!isPipe) {
          EXPECT_EQ(position(symbol).z, 20) << y;
        }
      }
    }
  }
}

// The other end stands above the node: both ends lie on it in plan, and so both move.
TEST_F(NodesAndLinks, AVerticalLinkHasBothItsEndsAtTheNode) {
  const AcDbObjectId node =
      addBlock(u"Any", u"TANK-Rete", {7, 7, 1}, {{u"ID", u"T"}, {u"EL", u"1"}});
  EpaPipe p;
  p.id = u"P";
  p.node1 = u"T";
  p.node2 = u"above";
  const AcDbObjectId line =
      addPolyline(u"PIPE-Rete", {{7, 7, 1}, {9, 9, 5}, {7, 7, 20}}, pipeData(p));
  update(u"TANK-Rete", node, u"T2", u"4");
  EXPECT_EQ(heights(line), (std::vector<double>{4, 4, 4}));
  const Chain data(Opened<AcDbEntity>(line)->xData(kImported));
  EXPECT_EQ(std::u16string(data.text(7)) + u" " + std::u16string(data.text(8)), u"T2 T2");
}

TEST_F(NodesAndLinks, TheToleranceInPlanIsStrict) {
  const struct {
    double offset;
    bool belongs;
  } rows[] = {{0.00009, true}, {-0.00009, true}, {0.00011, false}, {-0.00011, false}};
  for (const auto& row : rows) {
    for (const bool inX : {true, false}) {
      const AcDbObjectId node =
          addBlock(u"Any", u"RESV-Rete", {0, 0, 1}, {{u"ID", u"R"}, {u"TH", u"1"}});
      const AcGePoint3d at = inX ? AcGePoint3d(row.offset, 0, 1) : AcGePoint3d(0, row.offset, 1);
      EpaPipe p;
      const AcDbObjectId line = addPolyline(u"PIPE-Rete", {at, {50, 0, 1}}, pipeData(p));
      update(u"RESV-Rete", node, u"R2", u"8");
      EXPECT_EQ(heights(line)[0], row.belongs ? 8 : 1) << row.offset;
      Opened<AcDbEntity>(line, AcDb::kForWrite)->erase(true);
      Opened<AcDbEntity>(node, AcDb::kForWrite)->erase(true);
    }
  }
}

}  // namespace
}  // namespace vessora
