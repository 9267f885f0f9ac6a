// What goes along when the host itself moves elements: ends with their nodes, symbols with both.
#include "module/editing/followers.h"

#include <map>

#include "cad/editor/transform.h"
#include "module/network/settings_store.h"
#include "platform/format.h"
#include "tests/network/network_testing.h"

namespace vessora {
namespace {

// Around N1 two pipes and a valve, whose far ends lie on N2, N3 and on nothing; an arrow at N1 and
// a pipe that has nothing to do with it.
class Followers : public DrawnNetwork {
 protected:
  void SetUp() override {
    DrawnNetwork::SetUp();
    EpaSettings settings;
    settings.name = u"Rete";
    SaveSettings(settings, true);
    const auto node = [&](const char16_t* id, const AcGePoint3d& at) {
      places[id] = addBlock(u"Junc", u"JUNC-Rete", at, {{u"ID", id}}, juncData(id, 0, u""));
    };
    node(u"N1", {1000, 2000, 10});
    node(u"N2", {1000, 2300, 40});
    node(u"N3", {1400, 2000, 10});
    courses[u"P1"] = addPolyline(
        u"PIPE-Rete", {{1000, 2000, 10}, {1100, 2150, 25}, {1000, 2300, 40}}, idData(u"P1"));
    courses[u"P2"] = addPolyline(u"PIPE-Rete", {{1400, 2000, 10}, {1000, 2000, 10}}, idData(u"P2"));
    courses[u"V1"] = addPolyline(u"VALV-Rete", {{1000, 2000, 10}, {1200, 2000, 30}}, idData(u"V1"));
    courses[u"P9"] = addPolyline(u"PIPE-Rete", {{5000, 2000, 10}, {5400, 2000, 10}}, idData(u"P9"));
    places[u"V1"] =
        addBlock(u"Valv", u"VALV-Rete", {1100, 2000, 20}, {{u"ID", u"V1"}}, idData(u"V1"));
    places[u"arrow"] = addBlock(u"Q_OUT", u"Q-OUT-Rete", {1000, 2000, 7}, {});
  }

  // What the host does, and what follows.
  FollowCounts change(std::vector<AcDbObjectId> ids, const cad::Similarity& how) {
    for (const AcDbObjectId id : ids) {
      EXPECT_TRUE(cad::transformEntity(drawing(), id.index(), how));
    }
    return followMoved(ids, how.matrix);
  }
  AcGePoint3dArray course(const char16_t* id) {
    AcGePoint3dArray points;
    ReadVertices(Opened<AcDb3dPolyline>(courses.at(id)).get(), points);
    return points;
  }
  static std::string text(const AcGePoint3dArray& points) {
    std::string all;
    for (const AcGePoint3d& p : points) {
      all += platform::narrow(platform::format(u"%g,%g,%g ", p.x, p.y, p.z));
    }
    return all;
  }
  std::string place(const char16_t* id) { return text({position(places.at(id))}); }

  std::map<std::u16string, AcDbObjectId> places, courses;
};

TEST_F(Followers, EndsAndSymbolsFollowANode) {
  const FollowCounts counts = change({places[u"N1"]}, cad::Similarity::move({10, 20, 0}));
  EXPECT_EQ(counts.links, 3);
  EXPECT_EQ(counts.held, 0);
  EXPECT_EQ(counts.symbols, 2);
  EXPECT_EQ(text(course(u"P1")), "1010,2020,10 1100,2150,25 1000,2300,40 ");
  EXPECT_EQ(text(course(u"P2")), "1400,2000,10 1010,2020,10 ");
  EXPECT_EQ(text(course(u"V1")), "1010,2020,10 1200,2000,30 ");
  EXPECT_EQ(text(course(u"P9")), "5000,2000,10 5400,2000,10 ");
  EXPECT_EQ(place(u"V1"), "1105,2010,20 ");
  EXPECT_EQ(place(u"arrow"), "1010,2020,7 ");
}

TEST_F(Followers, ALinkThatIsMovedAloneStaysTiedToItsNodes) {
  const FollowCounts counts =
      change({courses[u"P1"], courses[u"V1"], courses[u"P9"]}, cad::Similarity::move({0, 7, 0}));
  EXPECT_EQ(counts.links, 0);
  EXPECT_EQ(counts.held, 2);
  EXPECT_EQ(text(course(u"P1")), "1000,2000,10 1100,2157,25 1000,2300,40 ");
  // Its other end lies on nothing and goes where the host has put it.
  EXPECT_EQ(text(course(u"V1")), "1000,2000,10 1200,2007,30 ");
  EXPECT_EQ(text(course(u"P9")), "5000,2007,10 5400,2007,10 ");
  EXPECT_EQ(place(u"V1"), "1100,2003.5,20 ");
}

TEST_F(Followers, WhatIsMovedTogetherNeedsNoFollowing) {
  std::vector<AcDbObjectId> all;
  for (const auto& [name, id] : places) all.push_back(id);
  for (const auto& [name, id] : courses) all.push_back(id);
  const FollowCounts counts = change(all, cad::Similarity::turnAbout({1000, 2000, 0}, 90));
  EXPECT_EQ(counts.links + counts.held + counts.symbols, 0);
  EXPECT_EQ(describe(counts), u"");
  EXPECT_EQ(text(course(u"P1")), "1000,2000,10 850,2100,25 700,2000,40 ");
  EXPECT_EQ(place(u"V1"), "1000,2100,20 ");
}

TEST_F(Followers, HeightsAreDataAndStay) {
  change({places[u"N1"], places[u"N3"], courses[u"P2"]},
         cad::Similarity::scaleAbout({1000, 2000, 0}, 3));
  EXPECT_EQ(place(u"N3"), "2200,2000,10 ");
  EXPECT_EQ(text(course(u"P2")), "2200,2000,10 1000,2000,10 ");
  change({places[u"N1"]}, cad::Similarity::move({0, 1, 50}));
  EXPECT_EQ(place(u"N1"), "1000,2001,10 ");
  EXPECT_EQ(text(course(u"V1")), "1000,2001,10 1200,2000,30 ");
}

// Where two nodes change places, no end goes twice.
TEST_F(Followers, ANodeMovedOntoAnotherTakesOnlyItsOwnEnds) {
  change({places[u"N1"], places[u"N3"]}, cad::Similarity::turnAbout({1200, 2000, 0}, 180));
  EXPECT_EQ(place(u"N1"), "1400,2000,10 ");
  EXPECT_EQ(text(course(u"P2")), "1000,2000,10 1400,2000,10 ");
  EXPECT_EQ(text(course(u"P1")), "1400,2000,10 1100,2150,25 1000,2300,40 ");
}

}  // namespace
}  // namespace vessora
