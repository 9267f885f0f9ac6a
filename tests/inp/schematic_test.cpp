// Export of a schematic network: blocks with NODE_ and TANK_ attributes and polylines on one layer,
// tied by position. The command runs whole, answered by a script.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "cad/drawing/drawing.h"
#include "cad/drawing/fields.h"
#include "cad/editor/session.h"
#include "cad/ui/script_frontend.h"
#include "module/host/module.h"
#include "module/inp/inp_jobs.h"
#include "platform/files.h"
#include "platform/text.h"

namespace vessora {
namespace {

namespace fs = std::filesystem;

class SchematicTest : public ::testing::Test {
 protected:
  void SetUp() override {
    folder_ = fs::temp_directory_path() / ("vessora-schematic-" + std::to_string(getpid()));
    fs::create_directories(folder_);
    session_.setSymbol(u"hn-cpath", platform::widen(folder_.string()) + u"\\");
    session_.newDrawing();
    acdbRegApp(app::kSettings);
    acdbRegApp(app::kSchema);
    // The network is known to the drawing by its settings point, flagged as the default one.
    resbuf* data = acutBuildList(1001, app::kSettings, 1000, u"HN-AQ1", RTNONE);
    resbuf* tail = data->rbnext;
    for (int i = 2; i <= 37; ++i) {
      tail->rbnext = i == 37 ? acutBuildList(1070, 1, RTNONE) : acutBuildList(1000, u"", RTNONE);
      tail = tail->rbnext;
    }
    HNGeometry::addPOINT({2, 2, 2}, layer::kReserved, 2, data);
    acutRelRb(data);
    defineBlock();
  }
  void TearDown() override {
    session_.closeDrawing();
    session_.setFrontend(nullptr);
    session_.symbols.clear();
    fs::remove_all(folder_);
  }

  void defineBlock() { session_.database()->drawing().structure().addBlock(u"SCHEMA", {}); }

  void block(const AcGePoint3d& at,
             const std::vector<std::pair<const char*, const char16_t*>>& attributes) {
    AcDbBlockTable* table = nullptr;
    AcDbObjectId symbol, space, id;
    session_.database()->getBlockTable(table, AcDb::kForRead);
    table->getAt(u"SCHEMA", symbol);
    table->getAt(u"*Model_Space", space);
    table->close();
    AcDbBlockTableRecord* record = nullptr;
    ASSERT_EQ(acdbOpenObject(record, space, AcDb::kForWrite), Acad::eOk);
    auto* reference = new AcDbBlockReference(at, symbol);
    reference->setLayer(u"HN-AQ1");
    ASSERT_EQ(record->appendAcDbEntity(id, reference), Acad::eOk);
    for (const auto& [tag, text] : attributes) {
      auto* attribute = new AcDbAttribute;
      cad::TagList& t = cad::Inside::tagsForWrite(*attribute);
      t.setAscii(t.find(2), tag);
      attribute->setTextString(text);
      ASSERT_EQ(reference->appendAttribute(id, attribute), Acad::eOk);
      attribute->close();
    }
    reference->close();
    record->close();
  }
  void node(const AcGePoint3d& at, const char16_t* name, const char16_t* demand,
            const char16_t* elev) {
    block(at, {{"NODE_01", name}, {"NODE_02", demand}, {"NODE_03", elev}});
  }
  void pipe(const AcGePoint3d& a, const AcGePoint3d& b, const char16_t* name) {
    resbuf* data = acutBuildList(1001, app::kSchema, 1010, AcGePoint3d(120.5, 0.15, 0), 1010,
                                 AcGePoint3d(0.0002, 1.5, 0), RTNONE);
    if (name) data->rbnext->rbnext->rbnext = acutBuildList(1000, name, RTNONE);
    HNGeometry::Create3Dpoly({a, b}, 256, u"HN-AQ1", 0, data);
    acutRelRb(data);
  }

  // Runs the export; `message` is the box that must end it. The file's text, or empty when none was
  // made.
  std::string run(const std::string& message) {
    const std::string file = (folder_ / "out.inp").string();
    cad::ui::ScriptFrontend ui(
        "[Esporta file INP di Epanet]\nEsporta anche file csv = sì\nSfoglia...\n@ " + file +
            "\nOK\n! " + message + "\n",
        "script");
    session_.setFrontend(&ui);
    EpaCommands commands;
    commands.database = session_.database();
    commands.expinp();
    const auto finished = ui.finish();
    EXPECT_TRUE(finished) << finished.error();
    EXPECT_EQ(session_.database()->drawing().openCount(), 0);
    EXPECT_EQ(acutLiveNodes(), 0);
    EXPECT_EQ(session_.liveSelections(), 0);
    EXPECT_FALSE(fs::exists(folder_ / "out.csv"));  // a schematic network has no listing
    session_.setFrontend(nullptr);
    auto text = platform::readFile(file);
    fs::remove(file);
    return text ? *text : "";
  }
  static std::string section(const std::string& text, const std::string& name) {
    const std::size_t from = text.find("[" + name + "]\n");
    const std::size_t to = text.find("\n[", from + 1);
    return from == text.npos ? "" : text.substr(from, to - from);
  }

  cad::Session& session_ = cad::Session::instance();
  fs::path folder_;
};

constexpr char kDone[] = "Esportazione completata!";

TEST_F(SchematicTest, EndsTieWithinTheToleranceAndTheLastBlockWins) {
  node({0, 0, 10}, u"A", u"1.25", u"10");
  node({100, 0, 12}, u"B", u"", u"");  // takes demand and elevation of the node before
  block({200, 0, 50}, {{"TANK_01", u"55.5"}, {"TANK_02", u"S"}});
  node({100.00009, 0, 12}, u"B2", u"3", u"12");
  pipe({0.00009, -0.00009, 10.00009}, {100, 0, 12}, u"P1");
  pipe({100, 0, 12}, {200, 0, 50}, u"P2");
  pipe({0.00011, 0, 10}, {500, 500, 0}, u"P3");  // no block at either end: names of the pipe before
  const std::string text = run(kDone);
  EXPECT_NE(text.find(" A                  10                  1.25                  ;\n"),
            text.npos);
  EXPECT_NE(text.find(" B                  10                  1.25                  ;\n"),
            text.npos);
  EXPECT_NE(text.find("S                                  55.5  ;\n"), text.npos);
  const std::string pipes = section(text, "PIPES");
  EXPECT_NE(
      pipes.find(" P1                 A                   B2                  120.500"
                 "             150.000             0.200               1.500               Open"),
      text.npos)
      << pipes;
  EXPECT_NE(pipes.find(" P2                 B2                  S  "), text.npos) << pipes;
  EXPECT_NE(pipes.find(" P3                 B2                  S  "), text.npos) << pipes;
  EXPECT_NE(text.find(" Headloss           \tD-W\n"), text.npos);
  EXPECT_NE(section(text, "VERTICES").find(" P1                 0.000               -0.000"),
            text.npos);
}

TEST_F(SchematicTest, FaultsOfTheDrawingStopTheExport) {
  node({0, 0, 10}, u"A", u"1", u"10");
  block({0, 0.00009, 50},
        {{"TANK_01", u"55"}, {"TANK_02", u"S"}});  // another height, the same place
  EXPECT_EQ(run("Per l'esportazione della rete spostare momentaneamente di layer i nodi "
                "coincidenti con i serbatoi."),
            "");
  session_.newDrawing();
  SetUp();
  block({0, 0, 50}, {{"TANK_01", u"55"}});
  EXPECT_EQ(run("Un serbatoio è privo di nome nel campo descrizione!"), "");
  SetUp();
  node({0, 0, 10}, u"A", u"1", u"10");
  pipe({0, 0, 10}, {1, 1, 1}, nullptr);
  EXPECT_EQ(run("Uno o più rami sono privi di nome nel campo descrizione!"), "");
}

// The command always asks for the first formula; other callers may want another one.
TEST_F(SchematicTest, EachFormulaHasItsNameAndItsUnitOfRoughness) {
  node({0, 0, 10}, u"A", u"1", u"10");
  pipe({0, 0, 10}, {0, 0, 20}, u"P1");
  const struct {
    int formula;
    const char *name, *roughness;
  } rows[] = {{0, "D-W", "0.200 "}, {1, "H-W", "0.000 "}, {2, "M-C", "0.000 "}};
  const std::string file = (folder_ / "formula.inp").string();
  for (const auto& row : rows) {
    const ExportResult result = exportNetwork({u"HN-AQ1", platform::widen(file), u"", row.formula});
    EXPECT_TRUE(result.written);
    EXPECT_TRUE(result.notices.empty());
    const std::string text = *platform::readFile(file);
    EXPECT_NE(text.find(std::string(" Headloss           \t") + row.name + "\n"), text.npos);
    const std::string pipes = section(text, "PIPES");
    EXPECT_NE(pipes.find(std::string("150.000             ") + row.roughness), text.npos) << pipes;
  }
  EXPECT_FALSE(exportNetwork({u"HN-AQ1", platform::widen(file + "/none"), u"", 0}).written);
}

// One above the other: heights tell the nodes apart, as they do not tell a node from a reservoir.
TEST_F(SchematicTest, VerticalPipesTieByHeight) {
  node({0, 0, 10}, u"low", u"1", u"10");
  node({0, 0, 20}, u"high", u"1", u"20");
  block({50, 0, 30}, {{"TANK_01", u"55"}, {"TANK_02", u"S"}, {"NODE_02", u"9"}});
  pipe({0, 0, 20}, {0, 0, 10}, u"down");
  pipe({0, 0, 10}, {0, 0, 10}, u"loop");
  pipe({50, 0, 30}, {0, 0, 20.0002}, u"off");
  const std::string pipes = section(run(kDone), "PIPES");
  EXPECT_NE(pipes.find(" down               high                low  "), pipes.npos) << pipes;
  EXPECT_NE(pipes.find(" loop               low                 low  "), pipes.npos) << pipes;
  EXPECT_NE(pipes.find(" off                S                   low  "), pipes.npos) << pipes;
}

TEST_F(SchematicTest, AnEmptyLayerGivesAFileOfEmptySections) {
  const std::string text = run(kDone);
  EXPECT_NE(text.find("[RESERVOIRS]\n;ID                 Head                Pattern\n\n[TANKS]\n"),
            text.npos);
  EXPECT_NE(text.find("Cloro mg/l"), text.npos);
}

}  // namespace
}  // namespace vessora
