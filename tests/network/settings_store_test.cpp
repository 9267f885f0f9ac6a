#include "module/network/settings_store.h"

#include "tests/network/network_testing.h"

namespace vessora {
namespace {

class SettingsStore : public DrawnNetwork {
 protected:
  void create(const char16_t* name, std::int16_t flag) {
    EpaSettings settings;
    settings.name = name;
    settings.isDefault = flag;
    SaveSettings(settings, true);
    expectNothingHeld();
  }
  static EpaSettings unusual() {
    EpaSettings s;
    s.name = u"Rete";
    s.isDefault = 1;
    s.headloss = u"D-W";
    s.trials = 41;
    s.unbalanced = u"Stop";
    s.qualityParam = u"Chlorine";
    s.traceNode = u"N1";
    s.wallOrder = u"Zero";
    s.energyPattern = u"night";
    double value = 2.5;
    for (double* real :
         {&s.specificGravity, &s.viscosity, &s.accuracy, &s.defaultPattern, &s.demandMultiplier,
          &s.emitterExponent, &s.diffusivity, &s.tolerance, &s.bulkOrder, &s.globalBulk,
          &s.globalWall, &s.limitingPotential, &s.roughnessCorrelation, &s.globalEfficiency,
          &s.globalPrice, &s.demandCharge}) {
      *real = value += 0.25;
    }
    const std::u16string hours = u"02:0";
    char16_t minute = u'1';
    for (wide50* time : {&s.duration, &s.hydraulicStep, &s.qualityStep, &s.patternStep,
                         &s.patternStart, &s.reportStep, &s.reportStart, &s.startClock}) {
      const std::u16string text = hours + minute++;
      *time = text;
    }
    s.flowUnits = s.qualityFlag = s.qualityUnits = s.statistic = u"written";
    return s;
  }
};

constexpr char kStored[] =
    "Rete|written|D-W|2.75|3.0|41|3.25|Stop|3.5|3.75|4.0|written|Chlorine|written|4.25|N1|4.5|4.75|"
    "Zero|5.0|5.25|5.5|5.75|02:01|02:02|02:03|02:04|02:05|02:06|02:07|02:08|written|6.0|6.25|night|"
    "6.5|1";

TEST_F(SettingsStore, EveryFieldComesBackFromAFileExceptTheFourOneWayOnes) {
  EpaSettings saved = unusual();
  SaveSettings(saved, true);
  expectNothingHeld();
  saveAndReload();

  const auto points = onLayer(layer::kReserved);
  ASSERT_EQ(points.size(), 1U);
  EXPECT_EQ(data(points[0], app::kSettings), kStored);
  EXPECT_EQ(color(points[0]), 2);
  const AcGePoint3d at = Opened<AcDbPoint>(points[0])->position();
  EXPECT_TRUE(samePoint(at, {2, 2, 2}));

  EpaSettings loaded;
  loaded.flowUnits = u"GPM";
  ASSERT_TRUE(LoadSettings(loaded, u"Rete"));
  expectNothingHeld();
  EXPECT_EQ(loaded.flowUnits, u"GPM");
  EXPECT_EQ(loaded.qualityFlag, u"No");
  EXPECT_EQ(loaded.qualityUnits, u"mg/L");
  EXPECT_EQ(loaded.statistic, u"None");
  // What was loaded differs from what was saved in these four alone.
  loaded.flowUnits = loaded.qualityFlag = loaded.qualityUnits = loaded.statistic = u"written";
  SaveSettings(loaded, false);
  EXPECT_EQ(data(points[0], app::kSettings), kStored);
}

TEST_F(SettingsStore, NamesCompareExactlyAndAFailedLoadChangesNothing) {
  create(u"Rete", 1);
  EpaSettings settings;
  settings.trials = 7;
  EXPECT_FALSE(LoadSettings(settings, u"RETE"));
  EXPECT_FALSE(LoadSettings(settings, u""));
  EXPECT_EQ(settings.trials, 7);
  EXPECT_TRUE(settings.name.empty());
  expectNothingHeld();
}

TEST_F(SettingsStore, DaysAreFoldedIntoHoursOnEverySave) {
  const auto folded = [&](std::int32_t days, const char16_t* duration) {
    EpaSettings s;
    s.name = u"none";
    s.durationDays = days;
    s.duration = duration;
    SaveSettings(s, false);
    EXPECT_EQ(s.durationDays, days);
    return s.duration.str();
  };
  EXPECT_EQ(folded(2, u"01:30"), u"49:30");
  EXPECT_EQ(folded(0, u"1:30:15"), u"1:30:15");
  EXPECT_EQ(folded(1, u"01:30:15"), u"25:30:15");
  EXPECT_EQ(folded(1, u"5:30"), u"29:0");
  EXPECT_EQ(folded(1, u"5"), u"29:");
  EpaSettings twice;
  twice.durationDays = 1;
  SaveSettings(twice, false);
  SaveSettings(twice, false);
  EXPECT_EQ(twice.duration, u"48:00:00");
}

TEST_F(SettingsStore, AnOlderListWithoutTheFlagKeepsTheFlagOfTheRecord) {
  XDataBuilder list(app::kSettings);
  list.text(u"Rete");
  for (int i = 2; i <= 36; ++i) list.text(u"");
  const Chain chain = list.take();
  HNGeometry::addPOINT({2, 2, 2}, layer::kReserved, 2, chain.get());
  EpaSettings settings;
  settings.isDefault = 5;
  EXPECT_TRUE(LoadSettings(settings, u"Rete"));
  EXPECT_EQ(settings.isDefault, 5);
  EXPECT_EQ(settings.demandCharge, 0);
}

TEST_F(SettingsStore, SavingWithoutCreatingRewritesEveryPointOfTheNameAndFreezesTheLayer) {
  create(u"A", 0);
  create(u"B", 0);
  create(u"A", 0);
  AcDbLayerTable* table = nullptr;
  AcDbObjectId layerId;
  ASSERT_EQ(acdbHostApplicationServices()->workingDatabase()->getLayerTable(table, AcDb::kForRead),
            Acad::eOk);
  table->getAt(layer::kReserved, layerId);
  table->close();
  Opened<AcDbLayerTableRecord>(layerId, AcDb::kForWrite)->setIsFrozen(false);

  EpaSettings settings;
  settings.name = u"A";
  settings.trials = 99;
  SaveSettings(settings, false);
  expectNothingHeld();
  EXPECT_TRUE(Opened<AcDbLayerTableRecord>(layerId)->isFrozen());
  std::vector<int> trials;
  for (const AcDbObjectId id : onLayer(layer::kReserved)) {
    const Chain list(Opened<AcDbPoint>(id)->xData(app::kSettings));
    trials.push_back(list.item(6)->resval.rint);
  }
  EXPECT_EQ(trials, (std::vector<int>{99, 40, 99}));
  settings.name = u"C";
  SaveSettings(settings, false);
  EXPECT_EQ(onLayer(layer::kReserved).size(), 3U);
}

TEST_F(SettingsStore, TheLastFlaggedNameIsTheDefaultAndDoublesAreKept) {
  std::vector<std::u16string> names = {u"left over"};
  wide256 defaultName = u"left over";
  ListNetworks(names, defaultName);
  EXPECT_TRUE(names.empty());
  EXPECT_TRUE(defaultName.empty());

  create(u"B", 1);
  create(u"A", 1);
  create(u"a", 0);
  create(u"a", 1);  // loading "a" finds the point before it
  create(u"", 0);
  HNGeometry::addPOINT({2, 2, 2}, layer::kReserved, 2, nullptr);
  saveAndReload();
  ListNetworks(names, defaultName);
  expectNothingHeld();
  EXPECT_EQ(names, (std::vector<std::u16string>{u"B", u"A", u"a", u"a", u""}));
  EXPECT_EQ(defaultName, u"A");
}

TEST_F(SettingsStore, TheListOfNetworksEndsAtItsLimit) {
  makeReservedLayer();
  for (int i = 0; i <= 10000; ++i) {
    XDataBuilder list(app::kSettings);
    list.text(platform::widen(std::to_string(i)));
    const Chain chain = list.take();
    HNGeometry::addPOINT({2, 2, 2}, layer::kReserved, 2, chain.get());
  }
  std::vector<std::u16string> names;
  wide256 defaultName;
  ListNetworks(names, defaultName);
  ASSERT_EQ(names.size(), 10000U);
  EXPECT_EQ(names.back(), u"9999");
}

}  // namespace
}  // namespace vessora
