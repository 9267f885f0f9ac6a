// What the jobs on one element do beyond what the command shows.
#include "module/editing/change_jobs.h"

#include "module/network/element_data.h"
#include "module/network/settings_store.h"
#include "tests/network/network_testing.h"

namespace vessora {
namespace {

using schema::Field;

EpaPipe pipeRecord(const char16_t* id, const char16_t* node1, const char16_t* node2,
                   const char16_t* length) {
  EpaPipe pipe;
  pipe.id = id;
  pipe.node1 = node1;
  pipe.node2 = node2;
  pipe.length = length;
  pipe.diameter = u"100";
  return pipe;
}

// Around N1 at (1000, 2000, 10): a pipe to N2 with one vertex between, a pipe whose length was
// typed, a valve with its symbol, an arrow, results on all of them.
class ChangeJobs : public DrawnNetwork {
 protected:
  void SetUp() override {
    DrawnNetwork::SetUp();
    acdbRegApp(app::kPeriod);
    n1 = node(u"N1", {1000, 2000, 10}, u"10");
    n2 = node(u"N2", {1000, 2300, 40}, u"40");
    n3 = node(u"N3", {1400, 2000, 10}, u"10");
    const AcGePoint3dArray course = {{1000, 2000, 10}, {1100, 2150, 25}, {1000, 2300, 40}};
    // As long as drawn, but for the third decimal.
    drawn =
        addPolyline(u"PIPE-Rete", course, pipeData(pipeRecord(u"P1", u"N1", u"N2", u"361.801")));
    typed = addPolyline(u"PIPE-Rete", {{1400, 2000, 10}, {1000, 2000, 10}},
                        pipeData(pipeRecord(u"P2", u"N3", u"N1", u"412")));
    valveLine = addPolyline(u"VALV-Rete", {{1000, 2000, 10}, {1200, 2000, 30}}, idData(u"V1"));
    EpaValv valv;
    valv.id = u"V1";
    valv.node1 = u"N1";
    valv.node2 = u"X";
    valve =
        addBlock(u"Valv", u"VALV-Rete", {1100, 2000, 20}, {{u"ID", u"V1"}}, valvData(valv, 80, 0));
    arrow = addBlock(u"Q_OUT", u"Q-OUT-Rete", {1000, 2000, 7}, {});
    farArrow = addBlock(u"Q_IN", u"Q-IN-Rete", {1000, 2000.0002, 10}, {});
    for (const AcDbObjectId id : {drawn, typed, valve}) results(id, app::kLinkResult);
    for (const AcDbObjectId id : {n1, n2, n3}) results(id, app::kNodeResult);
  }

  AcDbObjectId node(const char16_t* id, const AcGePoint3d& at, const char16_t* height) {
    return addBlock(u"Junc", u"JUNC-Rete", at, {{u"ID", id}, {u"EL", height}, {u"BD", u"1"}},
                    juncData(id, 0, u""));
  }
  static void results(AcDbObjectId id, const char16_t* application) {
    const Chain data(acutBuildList(1001, application, 1040, 1.5, RTNONE));
    const Chain period(acutBuildList(1001, app::kPeriod, 1000, u"1:00:00", RTNONE));
    const Opened<AcDbEntity> entity(id, AcDb::kForWrite);
    entity->setXData(data.get());
    entity->setXData(period.get());
  }
  static bool hasResults(AcDbObjectId id) {
    const Opened<AcDbEntity> entity(id);
    return entity->hasXData(app::kLinkResult) || entity->hasXData(app::kNodeResult);
  }
  static bool exists(AcDbObjectId id) { return static_cast<bool>(Opened<AcDbEntity>(id)); }
  static AcGePoint3d attributePlace(AcDbObjectId id) {
    const Opened<AcDbBlockReference> block(id);
    const std::unique_ptr<AcDbObjectIterator> at(block->attributeIterator());
    return Opened<AcDbAttribute>(at->objectId())->position();
  }
  static std::string said(const Notices& notices) {
    std::string all;
    for (const Notice& n : notices) {
      all += says(n.code, platform::narrow(n.subject) + ":" + platform::narrow(n.other));
    }
    return all;
  }
  static std::string says(NoticeCode code, const std::string& rest) {
    return std::to_string(static_cast<int>(code)) + " " + rest + " ";
  }

  AcDbObjectId n1, n2, n3, drawn, typed, valve, valveLine, arrow, farArrow;
};

TEST_F(ChangeJobs, AMovedNodeTakesEndsSymbolsAndArrowsAlong) {
  const ChangeResult moved = moveNode(u"Rete", n1, 1000, 1900);
  EXPECT_TRUE(moved.done());
  EXPECT_EQ(said(moved.warnings), "");
  EXPECT_TRUE(samePoint(position(n1), {1000, 1900, 10}, 1e-9));
  EXPECT_TRUE(samePoint(attributePlace(n1), {1000, 1900, 10}, 1e-9));
  AcGePoint3dArray points;
  ReadVertices(Opened<AcDb3dPolyline>(drawn).get(), points);
  EXPECT_TRUE(samePoint(points[0], {1000, 1900, 10}, 1e-9));
  const double between = 10 + 30 * std::hypot(100, 250) / 400;
  EXPECT_TRUE(samePoint(points[1], {1100, 2150, between}, 1e-9));
  // The symbol of the valve stays amid its course, and its attributes beside it.
  EXPECT_TRUE(samePoint(position(valve), {1100, 1950, 20}, 1e-9));
  EXPECT_TRUE(samePoint(attributePlace(valve), {1100, 1950, 20}, 1e-9));
  EXPECT_TRUE(samePoint(position(arrow), {1000, 1900, 7}, 1e-9));
  EXPECT_TRUE(samePoint(position(farArrow), {1000, 2000.0002, 10}, 1e-9));
  // Names stay, results go, and so does the length of the pipe that was as long as drawn.
  const double length = points[0].distanceTo(points[1]) + points[1].distanceTo(points[2]);
  EXPECT_NEAR(realAt(Chain(Opened<AcDbEntity>(drawn)->xData(app::kImport)), schema::kPipe.data,
                     Field::length),
              length, 1e-12);
  EXPECT_EQ(data(typed), "P2|412.0|100.0|0.0|0.0||N3|N1");
  EXPECT_EQ(said(moved.notices), says(NoticeCode::lengthFollows, "P1:450.559") +
                                     says(NoticeCode::lengthKept, "P2:412.000"));
  for (const AcDbObjectId id : {n1, drawn, typed, valve}) EXPECT_FALSE(hasResults(id));
  EXPECT_TRUE(hasResults(n2));
  EXPECT_EQ(color(valveLine), 3);
  EXPECT_EQ(data(n2, app::kPeriod) + data(n1, app::kPeriod), "1:00:001:00:00");
  saveAndReload();
}

TEST_F(ChangeJobs, PlacesThatLeaveSomethingInconsistentAreWarnedOf) {
  EXPECT_EQ(said(moveNode(u"Rete", n1, 1400.00005, 2000).warnings),
            says(NoticeCode::nodesCoincide, "N1:N3"));
  const std::string before = bytes();
  EXPECT_EQ(moveNode(u"Rete", n1, NAN, 0).verdict, ChangeVerdict::placeUnusable);
  EXPECT_EQ(moveNode(u"Rete", drawn, 0, 0).verdict, ChangeVerdict::notOfNetwork);
  EXPECT_EQ(moveNode(u"Altra", n1, 0, 0).verdict, ChangeVerdict::notOfNetwork);
  EXPECT_EQ(moveNode(u"Rete", AcDbObjectId(), 0, 0).verdict, ChangeVerdict::notOfNetwork);
  EXPECT_EQ(bytes(), before);

  // The user has typed another height over the attribute: nothing follows.
  WriteAttribute(Opened<AcDbBlockReference>(n2, AcDb::kForWrite).get(), u"EL", u"41");
  const ChangeResult moved = moveNode(u"Rete", n2, 0, 0);
  EXPECT_EQ(said(moved.warnings), says(NoticeCode::linksLeftBehind, "N2:"));
  EXPECT_EQ(said(moved.notices), "");
  EXPECT_EQ(heights(drawn).back(), 40);
}

TEST_F(ChangeJobs, ANewNameIsWarnedOfWhereItLeavesOrMakesDoubt) {
  // V1's course begins at N1; P3 only names it.
  addPolyline(u"PIPE-Rete", {{1, 1, 1}, {2, 2, 2}},
              pipeData(pipeRecord(u"P3", u"N9", u"N1", u"1")));
  auto element = readElement(u"Rete", n1);
  std::get<EpaJunc>(element->record).id = u"N3";
  EpaSettings settings;
  settings.name = u"Rete";
  settings.traceNode = u"N1";
  SaveSettings(settings, true);
  const ChangeResult renamed = modifyElement(u"Rete", n1, *element, {Field::id});
  EXPECT_EQ(said(renamed.warnings), says(NoticeCode::nodeNameTwice, "N3:") +
                                        says(NoticeCode::nodeGone, "N1:P3") +
                                        says(NoticeCode::traceNodeGone, "N1:"));
  EXPECT_EQ(data(valve), "V1|80.0||||0.0|N3|X");

  element = readElement(u"Rete", valve);
  std::get<EpaValv>(element->record).id = u"P1";
  EXPECT_EQ(said(modifyElement(u"Rete", valve, *element).warnings),
            says(NoticeCode::linkNameTwice, "P1:"));
  EXPECT_EQ(data(valveLine), "P1");

  const std::string before = bytes();
  std::get<EpaValv>(element->record).id = u"";
  EXPECT_EQ(modifyElement(u"Rete", valve, *element).verdict, ChangeVerdict::nameMissing);
  EXPECT_EQ(modifyElement(u"Rete", n1, *element).verdict, ChangeVerdict::notOfNetwork);
  EXPECT_EQ(modifyElement(u"Rete", valveLine, *element).verdict, ChangeVerdict::notOfNetwork);
  EXPECT_EQ(bytes(), before);
}

TEST_F(ChangeJobs, OfSomeFieldsTheResultsGoAndTheLinksStay) {
  auto element = readElement(u"Rete", n1);
  std::get<EpaJunc>(element->record).demand = u"9.5";
  std::get<EpaJunc>(element->record).elev = u"99";
  EXPECT_TRUE(modifyElement(u"Rete", n1, *element, {Field::demand}).done());
  EXPECT_EQ(attribute(n1, u"BD") + attribute(n1, u"EL"), u"9.510");
  EXPECT_FALSE(hasResults(n1));
  EXPECT_TRUE(hasResults(drawn));
  EXPECT_EQ(color(drawn), 256);

  // Nothing puts the other arrow there.
  std::get<EpaJunc>(element->record).demand = u"-1";
  EXPECT_EQ(said(modifyElement(u"Rete", n1, *element, {Field::demand}).warnings),
            says(NoticeCode::arrowDiffers, "N1:"));

  // What the solver refuses is told when it is touched.
  auto pipe = readElement(u"Rete", drawn);
  std::get<EpaPipe>(pipe->record).status = u"Close";
  EXPECT_EQ(said(modifyElement(u"Rete", drawn, *pipe, {Field::status}).warnings),
            says(NoticeCode::pipeStatusUnknown, "P1:Close"));
  EXPECT_EQ(said(modifyElement(u"Rete", drawn, *pipe, {Field::roughness}).warnings), "");
}

TEST_F(ChangeJobs, AnElementGoesWithAllItsPartsFoundByAnyOfThem) {
  EXPECT_TRUE(deleteElement(u"Rete", drawn).done());
  EXPECT_FALSE(exists(drawn));
  EXPECT_TRUE(deleteElement(u"Rete", valveLine).done());
  EXPECT_FALSE(exists(valve) || exists(valveLine));

  const std::string before = bytes();
  const ChangeResult refused = deleteElement(u"Rete", arrow);
  EXPECT_EQ(refused.verdict, ChangeVerdict::linked);
  EXPECT_EQ(refused.links, std::vector<std::u16string>{u"P2"});
  EXPECT_EQ(deleteElement(u"Rete", farArrow).verdict, ChangeVerdict::notOfNetwork);
  EXPECT_EQ(deleteElement(u"Altra", n1).verdict, ChangeVerdict::notOfNetwork);
  EXPECT_EQ(bytes(), before);

  const ChangeResult deleted = deleteElement(u"Rete", arrow, true);
  EXPECT_TRUE(deleted.done());
  EXPECT_EQ(said(deleted.warnings), says(NoticeCode::nodeGone, "N1:P2"));
  EXPECT_FALSE(exists(n1) || exists(arrow));
  EXPECT_TRUE(exists(typed) && exists(farArrow));
  EXPECT_TRUE(deleteElement(u"Rete", n2).done());  // nothing leads there any more
  expectNothingHeld();
}

TEST_F(ChangeJobs, ACourseIsNotTakenFromAnotherElement) {
  // A second valve of the same name, without a course of its own; and one whose course the user has
  // moved away.
  EpaValv record;
  record.id = u"V1";
  const AcDbObjectId twin =
      addBlock(u"Valv", u"VALV-Rete", {5, 5, 5}, {{u"ID", u"V1"}}, valvData(record, 1, 0));
  const ChangeResult alone = deleteElement(u"Rete", twin);
  EXPECT_TRUE(alone.done());
  EXPECT_EQ(said(alone.warnings), says(NoticeCode::partMissing, "V1:"));
  EXPECT_TRUE(exists(valveLine) && exists(valve));

  record.id = u"V2";
  const AcDbObjectId moved =
      addBlock(u"Valv", u"VALV-Rete", {5, 5, 5}, {{u"ID", u"V2"}}, valvData(record, 1, 0));
  const AcDbObjectId course = addPolyline(u"VALV-Rete", {{50, 0, 0}, {60, 0, 0}}, idData(u"V2"));
  EXPECT_TRUE(deleteElement(u"Rete", course).done());
  EXPECT_FALSE(exists(moved));
  // Parallel valves stand on one place: each goes with its own name.
  record.id = u"V3";
  const AcDbObjectId parallel =
      addBlock(u"Valv", u"VALV-Rete", {1100, 2000, 20}, {{u"ID", u"V3"}}, valvData(record, 1, 0));
  addPolyline(u"VALV-Rete", {{1000, 2000, 10}, {1200, 2000, 30}}, idData(u"V3"));
  EXPECT_TRUE(deleteElement(u"Rete", valveLine).done());
  EXPECT_TRUE(exists(parallel) && !exists(valve));
}

}  // namespace
}  // namespace vessora
