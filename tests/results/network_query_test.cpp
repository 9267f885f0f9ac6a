#include "module/dialogs/list_res.h"
#include "module/network/settings_store.h"
#include "tests/network/network_testing.h"

namespace vessora {
namespace {

class NetworkQueryCommand : public DrawnNetwork {
 protected:
  void SetUp() override {
    DrawnNetwork::SetUp();
    acdbRegApp(app::kSchema);
    cad::Session::instance().setSymbol(u"hn-cpath", u"/root\\");
    cad::Session::instance().view = {};
  }
  void TearDown() override {
    cad::Session::instance().symbols.clear();
    DrawnNetwork::TearDown();
  }
  static void createNetwork(const char16_t* name) {
    EpaSettings settings;
    settings.name = name;
    settings.isDefault = 1;
    SaveSettings(settings, true);
  }
  int run() {
    EpaCommands commands;
    return commands.netvis();
  }
  static void expectWindow(double x1, double y1, double x2, double y2) {
    const auto& view = cad::Session::instance().view;
    ASSERT_TRUE(view.set);
    EXPECT_NEAR(view.low.x, x1, 1e-9);
    EXPECT_NEAR(view.low.y, y1, 1e-9);
    EXPECT_NEAR(view.high.x, x2, 1e-9);
    EXPECT_NEAR(view.high.y, y2, 1e-9);
  }
};

TEST_F(NetworkQueryCommand, ADoubleClickFramesTheElement) {
  createNetwork(u"Rete");
  EpaPipe p;
  p.id = u"P1";
  addPolyline(u"PIPE-Rete", {{100, 200, 0}, {300, 250, 5}}, pipeData(p));
  script(
      "tutto\n<invio>\n"
      "[Interroga Rete]\nElenco rami[1] **\n<invio>\n"
      "[Interroga Rete]\nElenco nodi ? (disattivato)\nOK\n");
  EXPECT_EQ(run(), kRan);
  expectWindow(80, 195, 320, 255);
}

// Results, materials and colours are not for these networks; a word in answer to the prompt does
// not bring the dialog back.
TEST_F(NetworkQueryCommand, ANetworkOfTheAqueductModuleListsNamesAlone) {
  createNetwork(u"HN-AQ 1");
  const Chain data(
      acutBuildList(1001, app::kSchema, 1000, u"a", 1000, u"b", 1000, u"Tubo 1", RTNONE));
  addPolyline(u"HN-AQ 1", {{0, 0, 0}, {10, 20, 0}}, data);
  const auto bare = addPolyline(u"HN-AQ 1", {{0, 0, 0}, {10, 20, 0}});
  addBlock(u"Nodo", u"HN-AQ 1", {0, 0, 0}, {{u"NODE_01", u"Pozzo"}});
  addBlock(u"Altro", u"HN-AQ 1", {0, 0, 0}, {{u"ID", u"x"}});
  script(
      "tutto\n<invio>\n"
      "[Interroga Rete]\n"
      "Elenco nodi ? (righe) 1\n"
      "Elenco nodi[1] ? Pozzo | - | - | - | -\n"
      "Elenco rami ? (righe) 1\n"
      "Elenco rami[1] ? Tubo 1 | - | - | - | -\n"
      "Filtra per Materiale ? (disattivato)\n"
      "Visualizza Rete\n"
      "ancora\n"
      "<invio>\n"
      "[Interroga Rete]\n"
      "Elenco rami[1] **\n"
      "qualcosa\n"
      "[Interroga Rete]\n"
      "Colora in arancione elementi filtrati = sì\n"
      "Rami/Colore = Portata\n"
      "OK\n");
  EXPECT_EQ(run(), kRan);
  expectWindow(-1, -2, 11, 22);
  EXPECT_EQ(color(bare), 256);
}

TEST_F(NetworkQueryCommand, WithoutANetworkOrAPickNothingHappens) {
  script("! Non esiste alcuna rete!\n");
  EXPECT_EQ(run(), kAbandoned);
  expectScriptDone();
  createNetwork(u"Rete");
  script("<esc>\n");
  EXPECT_EQ(run(), kAbandoned);
  cad::Session::instance().symbols.clear();
  expectScriptDone();
  script("");
  EXPECT_EQ(run(), kAbandoned);
}

// Exactly the pipes of the chosen material, without their results, whatever was filtered before.
TEST_F(NetworkQueryCommand, AMaterialListsItsPipes) {
  cad::Session::instance().setSymbol(u"hn-cpath", platform::widen(VESSORA_TESTS_DIR "/../assets"));
  NetworkQuery query;
  query.links = {{u"P1", {u"1", u"2", u"3", u"Open"}}, {u"P2", {u"1", u"2", u"3", u"Open"}}};
  query.pipeMaterials = {{u"P1", u"PEBD"}, {u"P2", u"pebd"}, {u"P3", u"PEBD"}};
  DlgListRes dialog(query);
  script(
      "[Interroga Rete]\nFiltra per Materiale\n[Filtra per Materiale]\nMateriale = PEBD\nFiltra\n"
      "[Interroga Rete]\nElenco rami ? (righe) 2\nElenco rami[2] ? P3 | - | - | - | PEBD\nOK\n");
  EXPECT_TRUE(dialog.doModal());
  EXPECT_TRUE(query.filteredLinks.empty());
}

// A hundred thousand rows, filtered and shown again and again.
TEST_F(NetworkQueryCommand, LongListsFilterOnTheirOwn) {
  NetworkQuery query;
  for (int i = 0; i < 100000; ++i) {
    const std::u16string value = platform::widen(std::to_string(i) + ".000");
    query.nodes.push_back({u"N" + value, {value, value, value, u"0"}});
  }
  DlgListRes dialog(query);
  std::string steps = "[Interroga Rete]\n";
  for (int i = 0; i < 3; ++i) {
    steps +=
        "Pressione/> di = 9.5\nPressione/< di = 99990.5\nPressione/Filtra Nodi\n"
        "Elenco nodi ? (righe) 99981\nElenco nodi[1] ? N10.000 | 10.000 | 10.000 | 10.000 | 0\n"
        "Resetta campi\nElenco nodi ? (righe) 100000\n";
  }
  script(steps + "OK\n");
  EXPECT_TRUE(dialog.doModal());
  EXPECT_EQ(query.action, QueryAction::finish);
}

}  // namespace
}  // namespace vessora
