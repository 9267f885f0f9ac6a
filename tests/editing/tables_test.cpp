// Jobs on materials, patterns and curves, and what their commands do where scripts cannot see it.
#include <unistd.h>

#include <filesystem>

#include "module/editing/table_jobs.h"
#include "module/host/warnings.h"
#include "module/network/pattern_curve_store.h"
#include "module/network/settings_store.h"
#include "platform/files.h"
#include "tests/network/network_testing.h"

namespace vessora {
namespace {

class Tables : public DrawnNetwork {
 protected:
  void SetUp() override {
    DrawnNetwork::SetUp();
    root_ = std::filesystem::temp_directory_path() / ("vessora-tables-" + std::to_string(getpid()));
    std::filesystem::create_directories(root_);
    cad::Session::instance().setSymbol(u"hn-cpath", platform::widen(root_.string()) + u"\\");
  }
  void TearDown() override {
    std::filesystem::remove_all(root_);
    cad::Session::instance().symbols.clear();
    DrawnNetwork::TearDown();
  }

  void addNetwork(const char16_t* name, bool isDefault, const char16_t* formula = u"D-W") {
    EpaSettings settings;
    settings.name = name;
    settings.isDefault = isDefault ? 1 : 0;
    settings.headloss = formula;
    SaveSettings(settings, true);
  }
  AcDbObjectId addPipe(const char16_t* network, const char16_t* id, const char16_t* roughness,
                       const char16_t* material = nullptr) {
    EpaPipe pipe;
    pipe.id = id;
    pipe.roughness = roughness;
    pipe.node1 = u"A";
    pipe.node2 = u"B";
    const AcDbObjectId line = addPolyline(schema::layerName(layer::kPipe, network),
                                          {{0, 0, 0}, {10, 0, 0}}, pipeData(pipe));
    if (material) {
      const Chain list(acutBuildList(1001, app::kMaterial, 1000, material, RTNONE));
      Opened<AcDbEntity>(line, AcDb::kForWrite)->setXData(list.get());
    }
    return line;
  }
  static std::string all(const PipeNames& names) {
    std::string text;
    for (const auto& name : names) text += platform::narrow(name) + ";";
    return text;
  }
  std::string byRoughness(double value) {
    PipeNames found;
    FindPipesByRoughness(u"Rete", value, found);
    return all(found);
  }
  std::string byMaterial(const char16_t* material) {
    PipeNames found;
    FindPipesByMaterial(u"Rete", material, found);
    return all(found);
  }

  std::filesystem::path root_;
};

// --- materials -----------------------------------------------------------------------------------

TEST_F(Tables, AMaterialTableThatCannotBeReadOrWrittenIsANotice) {
  MaterialTable table = readMaterialTable();
  ASSERT_EQ(table.notices.size(), 1U);
  EXPECT_EQ(table.notices[0].code, NoticeCode::materialsUnreadable);
  table.rows.resize(1);
  table.rows[0].name = u"PEAD";
  table.rows[0].roughness = 2e-5;
  EXPECT_TRUE(writeMaterialTable(table.rows).notices.empty());
  EXPECT_EQ(readMaterialTable().rows.at(0).name, u"PEAD");
  std::filesystem::remove(root_ / "acqmateriali.dat");
  std::filesystem::create_directories(root_ / "acqmateriali.dat" / "x");
  const TableResult failed = writeMaterialTable(table.rows);
  ASSERT_EQ(failed.notices.size(), 1U);
  EXPECT_EQ(failed.notices[0].code, NoticeCode::materialsUnwritable);
}

TEST_F(Tables, PipesOfMaterialsThatTheTableLacksAreNamedNetworkByNetwork) {
  for (const char16_t* id : {u"1", u"2", u"3", u"4", u"5", u"6", u"7"}) {
    addPipe(u"Rete", id, u"1", u"Ghisa");
  }
  addPipe(u"Altra", u"x", u"1", u"Acciaio");
  addPipe(u"Altra", u"y", u"1", u"");
  addPipe(u"Altra", u"z", u"1", u"PEAD");
  std::vector<EpaMaterial> rows(2);
  rows[0].name = u"PEAD";
  rows[1].name = u"ghisa";
  const Notices warnings = writeMaterialTable(rows).warnings;
  ASSERT_EQ(warnings.size(), 2U);
  EXPECT_EQ(warnings[0].code, NoticeCode::materialNotInTable);
  EXPECT_EQ(warnings[0].subject + u":" + warnings[0].other, u"Acciaio:x");
  EXPECT_EQ(warnings[1].subject + u":" + warnings[1].other, u"Ghisa:1, 2, 3, 4, 5... (+2)");
}

// --- assignment ----------------------------------------------------------------------------------

TEST_F(Tables, PipesAreFoundAndAssignedByNameWithinTheirNetwork) {
  addNetwork(u"Rete", true);
  const AcDbObjectId twin1 = addPipe(u"Rete", u"T1", u"0.002");
  const AcDbObjectId twin2 = addPipe(u"Rete", u"T1", u"0.5", u"Ghisa");
  const AcDbObjectId other = addPipe(u"Rete", u"T2", u"0.002011");
  const AcDbObjectId foreign = addPipe(u"Altra", u"T1", u"0.002");
  addPolyline(u"PIPE-Rete", {{0, 0, 0}, {1, 1, 1}});  // no pipe: it has no data
  EXPECT_EQ(byRoughness(0.002), "T1;");
  EXPECT_EQ(byRoughness(0.002005), "T1;T2;");
  EXPECT_EQ(byRoughness(0.0021), "");
  EXPECT_EQ(byMaterial(u"Ghisa"), "T1;");
  EXPECT_EQ(byMaterial(u"ghisa"), "");
  EXPECT_EQ(byMaterial(u""), "T1;T2;");
  const std::string before = data(other) + data(foreign);
  // Pipes that share a name are treated alike, however often it has been found.
  const AssignResult result = AssignMaterial(u"Rete", 1.5, u"PEAD", {u"T1", u"T1", u"T9"});
  EXPECT_EQ(result.pipes, 2);
  EXPECT_TRUE(result.warnings.empty());
  for (const AcDbObjectId pipe : {twin1, twin2}) {
    EXPECT_EQ(data(pipe), "T1|0.0|0.0|1.5|0.0||A|B");
    EXPECT_EQ(data(pipe, app::kMaterial), "PEAD");
    EXPECT_EQ(color(pipe), 1);
  }
  EXPECT_EQ(data(other) + data(foreign), before);
  EXPECT_EQ(color(other), 256);
  EXPECT_EQ(data(other, app::kMaterial), "");
  EXPECT_EQ(AssignMaterial(u"Rete", 2, u"PVC", {}).pipes, 0);
}

TEST_F(Tables, AssignmentDropsResultsAndWarnsWhereTheFormulaReadsNoMillimetres) {
  addNetwork(u"Rete", true, u"H-W");
  const AcDbObjectId pipe = addPipe(u"Rete", u"T1", u"1");
  const Chain results(acutBuildList(1001, app::kLinkResult, 1040, 1.0, RTNONE));
  Opened<AcDbEntity>(pipe, AcDb::kForWrite)->setXData(results.get());
  const Notices warnings = AssignMaterial(u"Rete", 1.5, u"PEAD", {u"T1"}).warnings;
  ASSERT_EQ(warnings.size(), 1U);
  EXPECT_EQ(warnings[0].code, NoticeCode::roughnessInMillimetres);
  EXPECT_EQ(data(pipe, app::kLinkResult), "");
  EXPECT_TRUE(AssignMaterial(u"Rete", 1.5, u"PEAD", {u"niente"}).warnings.empty());
}

// With several networks and no default the user takes one; a name that is empty is none.
TEST_F(Tables, TheCommandAsksWhichNetworkToChange) {
  ASSERT_TRUE(platform::writeFile((root_ / "acqmateriali.dat").string(), "PEAD\n2e-5\n0,0,0\n"));
  addNetwork(u"Valle", false);
  const AcDbObjectId pipe = addPipe(u"Valle", u"T1", u"0.5");
  script("[Assegna Materiali]\nRicerca/Scabrezza = 0.5\nCerca\nEsito ?\nAnnulla\n");
  EXPECT_EQ(EpaCommands().hnsetmat(), kAbandoned) << "a single one without the flag is no choice";
  expectScriptDone();
  addNetwork(u"", false);
  script(
      "[Modifica Rete Epanet]\nReti ? (voci) | Valle\nOK\n! Non esiste alcuna rete!\n"
      "[Modifica Rete Epanet]\nReti = Valle\nOK\n[Assegna Materiali]\nRicerca/Scabrezza = 0.5\n"
      "Cerca\nAssegna\n");
  EXPECT_EQ(EpaCommands().hnsetmat(), kRan);
  expectScriptDone();
  EXPECT_EQ(currentNetwork, u"Valle");
  EXPECT_EQ(data(pipe, app::kMaterial), "PEAD");
  script("[Modifica Rete Epanet]\nAnnulla\n");
  EXPECT_EQ(EpaCommands().hnsetmat(), kAbandoned);
  EXPECT_TRUE(networkNames.empty() && materials.empty());
  takeWarnings();
}

// --- patterns and curves -------------------------------------------------------------------------

class Naming : public Tables {
 protected:
  void SetUp() override {
    Tables::SetUp();
    addNetwork(u"Rete", true);
    addNetwork(u"Altra", false);
    addBlock(u"Junc", u"JUNC-Rete", {0, 0, 0}, {}, juncData(u"J", 0, u"p"));
    addBlock(u"Resv", u"RESV-Rete", {0, 0, 0}, {}, resvData(u"S", u"p"));
    addBlock(u"Tank", u"TANK-Rete", {0, 0, 0}, {}, tankData(u"V", u"c"));
    addBlock(u"Junc", u"JUNC-Altra", {0, 0, 0}, {}, juncData(u"K", 0, u"p"));
    EpaPump pump;
    pump.id = u"P";
    pump.headCurve = u"c";
    pump.pricePattern = u"p";
    addBlock(u"Pump", u"PUMP-Rete", {0, 0, 0}, {}, pumpData(pump));
    EpaValv valve;
    valve.setting = u"c";
    for (const auto& [id, type] : {std::pair{u"G", u"GPV"}, {u"R", u"PRV"}}) {
      valve.id = id;
      valve.type = type;
      addBlock(u"Valv", u"VALV-Rete", {0, 0, 0}, {}, valvData(valve, 0, 0));
    }
  }
};

TEST_F(Naming, WhoNamesWhatIsGoneIsTold) {
  AddPattern({u"p", {1}}, u"Rete");
  AddCurve({u"c", u"PUMP", {{1, 2}}}, u"Rete");
  const TableResult renamed = replacePattern(u"Rete", {u"q", {1}}, u"p");
  ASSERT_EQ(renamed.warnings.size(), 1U);
  EXPECT_EQ(renamed.warnings[0].code, NoticeCode::patternMissing);
  EXPECT_EQ(renamed.warnings[0].subject + u":" + renamed.warnings[0].other, u"p:J, S, P");
  EXPECT_TRUE(replacePattern(u"Rete", {u"q", {2, 3}}, u"q").warnings.empty());
  EXPECT_TRUE(deletePattern(u"Rete", u"q").warnings.empty()) << "nobody names it";
  // The only valves with a curve are those of one type.
  const Notices gone = replaceCurve(u"Rete", {u"d", u"PUMP", {{1, 2}}}, u"c").warnings;
  ASSERT_EQ(gone.size(), 1U);
  EXPECT_EQ(gone[0].code, NoticeCode::curveMissing);
  EXPECT_EQ(gone[0].other, u"V, P, G");
  AddPattern({u"p", {1}}, u"Rete");
  EpaSettings settings;
  LoadSettings(settings, u"Rete");
  settings.energyPattern = u"p";
  SaveSettings(settings, false);
  const Notices deleted = deletePattern(u"Rete", u"p").warnings;
  ASSERT_EQ(deleted.size(), 2U);
  EXPECT_EQ(deleted[1].code, NoticeCode::energyPatternMissing);
}

TEST_F(Naming, WhatTheStoreDoesUnasked) {
  AddPattern({u"p", {1}}, u"Altra");
  AddPattern({u"p", {1}}, u"Rete");
  const Notices twice = addPattern(u"Rete", {u"p", {2}}).warnings;
  ASSERT_EQ(twice.size(), 1U);
  EXPECT_EQ(twice[0].code, NoticeCode::patternTwice);
  const Notices elsewhere = replacePattern(u"Rete", {u"p", {3}}, u"p").warnings;
  ASSERT_EQ(elsewhere.size(), 1U);
  EXPECT_EQ(elsewhere[0].code, NoticeCode::patternErasedElsewhere);
  EXPECT_EQ(elsewhere[0].other, u"Altra");
  const Notices emptied = replacePattern(u"Rete", {u"p", {}}, u"p").warnings;
  ASSERT_EQ(emptied.size(), 2U);
  EXPECT_EQ(emptied[0].code, NoticeCode::patternEmpty);
  EXPECT_EQ(emptied[1].code, NoticeCode::patternMissing);
  EXPECT_EQ(addCurve(u"Rete", {u"c", u"PUMP", {}}).warnings.at(0).code, NoticeCode::curveEmpty);
  EXPECT_TRUE(addCurve(u"Rete", {u"c", u"PUMP", {{1, 2}}}).warnings.empty());
  const Notices stays = deleteCurve(u"Rete", u"c").warnings;
  ASSERT_EQ(stays.size(), 1U);
  EXPECT_EQ(stays[0].code, NoticeCode::curveStays);
}

// The only pattern may get any name. A curve of an unknown kind shows axes without a meaning, and
// is of a known one afterwards. Names that differ in letter case alone are two.
TEST_F(Naming, TheManagerAtItsEdges) {
  AddPattern({u"p", {1}}, u"Rete");
  AddCurve({u"c", u"altro", {{1, 2}}}, u"Rete");
  AddCurve({u"b", u"VOLUME", {{3, 4}}}, u"Rete");
  AddCurve({u"B", u"VOLUME", {{3, 4}}}, u"Rete");
  script(
      "[Gestione Pattern/Curve]\nPattern/Modifica...\n[Patterns/Curve]\nNome pattern = q\nOK\n"
      "[Gestione Pattern/Curve]\nCurve esistenti = c\nCurve/Modifica...\n[Patterns/Curve]\n"
      "Nome curva ? c\nTipo Curva ? HEADLOSS\nValori ? (colonne) X | Y\n"
      "Valori[1] ? 1.000 | 2.000\nNome curva = a\nOK\n"
      "[Gestione Pattern/Curve]\nCurve esistenti ? (voci) a | b | B\nCurve esistenti = #3\n"
      "Curve/Modifica...\n[Patterns/Curve]\nNome curva = z\nOK\n"
      "[Gestione Pattern/Curve]\nCurve esistenti ? (voci) a | b | z\nOK\n");
  EXPECT_EQ(EpaCommands().hnsetpat(), kRan);
  std::vector<EpaPattern> patterns;
  LoadPatterns(patterns, u"Rete");
  ASSERT_EQ(patterns.size(), 1U);
  EXPECT_EQ(patterns[0].id, u"q");
  std::vector<EpaCurve> curves;
  LoadCurves(curves, u"Rete");
  ASSERT_EQ(curves.size(), 3U);
  EXPECT_EQ(curves[1].id.str() + curves[1].kind.str(), u"aHEADLOSS");
  EXPECT_EQ(curves[2].id, u"z");
  EXPECT_EQ(takeWarnings().size(), 2U) << "elements name p and c";
}

TEST_F(Naming, TheManagerNeedsADefaultNetwork) {
  EpaSettings settings;
  LoadSettings(settings, u"Rete");
  settings.isDefault = 0;
  SaveSettings(settings, false);
  script("![Vessora] Nessuna rete di default impostata!\n");
  EXPECT_EQ(EpaCommands().hnsetpat(), kAbandoned);
}

}  // namespace
}  // namespace vessora
