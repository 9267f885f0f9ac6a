#include "module/inp/inp_writer.h"
#include "tests/inp/inp_testing.h"

namespace vessora {
namespace {

// What a written file keeps, changes and loses when it is read again. Users know these losses and
// work around them, so none may come or go unnoticed.
class RoundTrip : public NetworkFiles {
 protected:
  void SetUp() override {
    NetworkFiles::SetUp();
    before_ = fullNetwork();
    before_.juncs.resize(2);  // ids that fit their columns
    before_.pipes.resize(1);
    before_.valves.resize(2);
    settings_.name = u"Borgo";
    settings_.headloss = u"D-W";
    settings_.viscosity = 1.25;
    settings_.unbalanced = u"Stop";
    settings_.qualityParam = u"Chlorine";
    settings_.bulkOrder = 2;
    settings_.globalPrice = 0.5;
    settings_.energyPattern = u"night";
    settings_.hydraulicStep = u"00:30";
    ASSERT_EQ(WriteNetworkInp(path("first.inp"), before_, settings_, notices), 1);
    parseInp(content("first.inp"), after_, read_);
  }

  EpaNetwork before_, after_;
  EpaSettings settings_, read_;
};

TEST_F(RoundTrip, nodes) {
  ASSERT_EQ(after_.juncs.size(), 2u);
  EXPECT_EQ(after_.juncs[0].pattern, u"day");
  EXPECT_TRUE(after_.juncs[0].emitter.empty());  // 0 is not written
  EXPECT_TRUE(after_.juncs[1].pattern.empty());
  EXPECT_EQ(after_.juncs[1].emitter, u"0.500");
  EXPECT_EQ(after_.juncs[1].demand, u"0.150");
  ASSERT_EQ(after_.resvs.size(), 2u);
  EXPECT_EQ(after_.resvs[1].head, u"120.000");
  EXPECT_TRUE(after_.resvs[1].pattern.empty());  // lost
  EXPECT_TRUE(after_.tanks.empty());             // lost: the blank line under the column line
  ASSERT_EQ(after_.coords.size(), 2u);
  EXPECT_EQ(after_.coords[1].x, u"1650000.125");
}

TEST_F(RoundTrip, links) {
  ASSERT_EQ(after_.pipes.size(), 1u);
  EXPECT_EQ(after_.pipes[0].node2, u"J1");
  EXPECT_EQ(after_.pipes[0].status, u"Open");
  ASSERT_EQ(after_.valves.size(), 2u);
  EXPECT_EQ(after_.valves[0].status, u"None");
  EXPECT_EQ(after_.valves[1].status, u"Open");
  EXPECT_EQ(after_.valves[1].minorLoss, u"0.000");
  ASSERT_EQ(after_.vertices.size(), 2u);
  EXPECT_EQ(after_.vertices[1].x, u"2.000");
}

TEST_F(RoundTrip, pumps) {
  const auto& was = before_.pumps;
  const auto& is = after_.pumps;
  ASSERT_EQ(is.size(), was.size());
  for (std::size_t i = 0; i < is.size(); ++i) {
    const std::string id = platform::narrow(was[i].id);
    EXPECT_EQ(is[i].effCurve, was[i].effCurve) << id;
    EXPECT_EQ(is[i].price, was[i].price) << id;
    EXPECT_EQ(is[i].pricePattern, was[i].pricePattern) << id;
    if (id.starts_with("none")) continue;
    EXPECT_EQ(is[i].speed, was[i].speed) << id;
    EXPECT_EQ(is[i].power, was[i].power) << id;
    EXPECT_EQ(is[i].headCurve, was[i].power.empty() ? was[i].headCurve.view() : u"") << id;
    EXPECT_EQ(is[i].speedPattern == u"p1", id == "WSP") << id;  // lost everywhere else
  }
  EXPECT_EQ(is[2].status, u"Open");  // an empty status leaves nothing to read
  EXPECT_EQ(is[3].status, u"Closed");
  EXPECT_EQ(is[8].power, u"\n");     // "POWER" with no value
  EXPECT_EQ(is[9].power, u"SPEED");  // and its speed in the place of the value
  EXPECT_TRUE(is[9].speed.empty());
}

TEST_F(RoundTrip, patternsJoinAndCurvesStay) {
  ASSERT_EQ(after_.patterns.size(), 1u);
  EXPECT_EQ(after_.patterns[0].id, u"night");
  EXPECT_EQ(after_.patterns[0].multipliers, (std::vector<double>{1, 2, 0, 0.062}));
  ASSERT_EQ(after_.curves.size(), 2u);  // the one without points leaves its comment alone
  EXPECT_EQ(after_.curves[0].kind, u"PUMP");
  EXPECT_EQ(after_.curves[1].kind, u"HEADLOSS");
  EXPECT_EQ(after_.curves[1].points[0].y, 1234567.123457);
}

TEST_F(RoundTrip, settings) {
  EXPECT_TRUE(read_.name.empty());
  EXPECT_EQ(read_.headloss, u"D-W");
  EXPECT_EQ(read_.viscosity, 1.25);
  EXPECT_EQ(read_.unbalanced, u"Stop");
  EXPECT_EQ(read_.qualityParam, u"Chlorine");
  EXPECT_EQ(read_.globalPrice, 0.5);
  EXPECT_EQ(read_.energyPattern, u"night");
  EXPECT_EQ(read_.bulkOrder, 1.0);  // lost: the one [REACTIONS] counts as the first
  EXPECT_EQ(read_.hydraulicStep, u"00:30:00");
  EXPECT_TRUE(read_.duration.empty());  // "00:00:00" has no reading
  EXPECT_TRUE(read_.startClock.empty());
}

// Losses happen once: what came back goes through a second round unchanged, but for the times,
// whose seconds now have no reading.
TEST_F(RoundTrip, theSecondRoundLosesOnlyTimes) {
  after_.pumps.resize(8);  // without those that have neither curve nor power
  ASSERT_EQ(WriteNetworkInp(path("second.inp"), after_, read_, notices), 1);
  const Parsed again(content("second.inp"));
  EXPECT_TRUE(again.settings.hydraulicStep.empty());
  EXPECT_EQ(again.settings.duration, u"00:00:00");  // a keyword without a value changes nothing
  EXPECT_EQ(again.settings.viscosity, 1.25);
  ASSERT_EQ(WriteNetworkInp(path("third.inp"), again.network, read_, notices), 1);
  EXPECT_EQ(content("third.inp"), content("second.inp"));
}

}  // namespace
}  // namespace vessora
