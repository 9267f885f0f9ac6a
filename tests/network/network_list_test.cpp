#include "module/network/network_list.h"

#include "module/network/settings_store.h"
#include "tests/network/network_testing.h"

namespace vessora {
namespace {

class NetworkList : public DrawnNetwork {
 protected:
  void network(const char16_t* name, bool isDefault) {
    EpaSettings settings;
    settings.name = name;
    settings.isDefault = isDefault ? 1 : 0;
    SaveSettings(settings, true);
  }
  static std::u16string picked(std::u16string_view wanted, std::u16string_view hint) {
    const PickedNetwork p = pickNetwork(wanted, hint);
    switch (p.why) {
      case PickedNetwork::Why::found:
        return p.name;
      case PickedNetwork::Why::unknown:
        return u"(unknown)";
      case PickedNetwork::Why::none:
        return u"(none)";
      case PickedNetwork::Why::several:
        return u"(several)";
    }
    return u"?";
  }
};

TEST_F(NetworkList, OneRulePicksTheNetwork) {
  EXPECT_EQ(picked(u"", u""), u"(none)");
  EXPECT_EQ(picked(u"A", u""), u"(unknown)");
  network(u"A", false);
  EXPECT_EQ(picked(u"", u""), u"A");            // the only one
  EXPECT_EQ(picked(u"", u"B"), u"A");           // a hint that leads nowhere
  EXPECT_EQ(picked(u"a", u"A"), u"(unknown)");  // wanted to the letter, and nothing instead
  network(u"B", false);
  EXPECT_EQ(picked(u"", u""), u"(several)");
  EXPECT_EQ(picked(u"", u"B"), u"B");
  EXPECT_EQ(picked(u"A", u"B"), u"A");
  network(u"C", true);
  EXPECT_EQ(picked(u"", u""), u"C");
  EXPECT_EQ(picked(u"", u"B"), u"B");
  EXPECT_EQ(pickNetwork(u"", u"").names, (std::vector<std::u16string>{u"A", u"B", u"C"}));
  // A network of the sibling module stands on its layer alone.
  EXPECT_EQ(picked(u"HN-AQ1", u""), u"(unknown)");
  addPolyline(u"HN-AQ1", {{0, 0, 0}, {1, 0, 0}});
  EXPECT_EQ(picked(u"HN-AQ1", u""), u"HN-AQ1");
  addPolyline(u"other", {{0, 0, 0}, {1, 0, 0}});
  EXPECT_EQ(picked(u"other", u""), u"(unknown)");
}

TEST_F(NetworkList, EachKindIsCountedByItsOwn) {
  acdbRegApp(app::kPeriod);
  network(u"Rete", true);
  int count = 0;
  for (const char16_t* layer :
       {u"JUNC-Rete", u"RESV-Rete", u"TANK-Rete", u"PUMP-Rete", u"VALV-Rete"}) {
    ++count;
    for (int i = 0; i < count; ++i) addBlock(u"Any", layer, {}, {});
    addPolyline(layer, {{0, 0, 0}, {1, 0, 0}});  // a companion counts for nothing
    addBlock(u"Any", std::u16string(layer) + u"2", {}, {});
  }
  for (int i = 0; i < 6; ++i) addPolyline(u"PIPE-Rete", {{0, 0, 0}, {1, 0, 0}});
  const NetworkInfo info = networkInfo(u"Rete");
  const ElementCounts& c = info.counts;
  EXPECT_EQ(std::to_string(c.junctions) + std::to_string(c.reservoirs) + std::to_string(c.tanks) +
                std::to_string(c.pumps) + std::to_string(c.valves) + std::to_string(c.pipes),
            "123456");
  EXPECT_EQ(c.nodes() * 100 + c.links(), 615);
  EXPECT_FALSE(info.hasResults);
  // Results may stand on one kind alone.
  const Chain period(acutBuildList(1001, app::kPeriod, 1000, u"3:00", RTNONE));
  Opened<AcDbEntity>(onLayer(u"VALV-Rete")[0], AcDb::kForWrite)->setXData(period.get());
  EXPECT_EQ(networkInfo(u"Rete").period, u"3:00");
  EXPECT_TRUE(networkInfo(u"Rete").hasResults);
  ASSERT_EQ(networksOfDrawing().size(), 1U);
  EXPECT_TRUE(networksOfDrawing()[0].isDefault);
}

}  // namespace
}  // namespace vessora
