// The jobs as programs find them: what they draw is what the commands draw, and they ask nobody.
#include <gtest/gtest.h>

#include <functional>

#include "cad/drawing/drawing.h"
#include "cad/editor/session.h"
#include "cad/ui/script_frontend.h"
#include "module/jobs.h"
#include "platform/text.h"

namespace {

using vessora::Jobs;
using vessora::Quantity;

class JobsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    script("");
    const cad::Installation place = cad::findInstallation();
    const auto module = session.loadModule(place.module);
    ASSERT_TRUE(module) << module.error();
    session.setSymbol(u"hn-cpath",
                      platform::widen(place.root.substr(0, place.root.size() - 1)) + u"\\");
    jobs = Jobs::find();
    ASSERT_NE(jobs, nullptr);
    for (const vessora::CommandRow& row : jobs->commands()) {
      session.addExport(*module, u"VESSORA", {row.name, row.symbol, row.help});
    }
    newNetwork();
  }
  void TearDown() override {
    session.closeDrawing();
    session.unloadModules();
    session.setFrontend(nullptr);
    session.symbols.clear();
  }
  // The network that all start from: a drawing of its own, with results, perhaps in orange.
  // Commands register what they may need before they ask.
  void newNetwork() {
    session.newDrawing();
    for (const char16_t* name :
         {u"HN-C_EPA_COLOR", u"HN-C_MATEPA", u"HN-C_EPA_PATTERN", u"HN-C_EPA_CURVE"}) {
      acdbRegApp(name);
    }
    const std::u16string folder = platform::widen(VESSORA_TESTS_DIR "/cases/draw/profile/");
    jobs->importInp(jobs->openInp(folder + u"rete.inp"), u"rete", 1);
    const vessora::Report report = jobs->openReport(folder + u"rete.rpt");
    jobs->writeResults(jobs->rowsOf(report, u"", jobs->periodsOf(report).lowerCaseHrs), u"rete");
    if (orange) jobs->highlightElements(u"rete", jobs->queryNetwork(u"rete", {}).rows);
  }
  void script(const std::string& answers) {
    frontend_ = std::make_unique<cad::ui::ScriptFrontend>(answers, "test");
    session.setFrontend(frontend_.get());
  }
  // What a user picks by name.
  AcDbObjectId named(const std::u16string& name) {
    script("=" + platform::narrow(name) + "\n");
    ads_name picked;
    AcGePoint3d point;
    AcDbObjectId id;
    EXPECT_EQ(acedEntSel(u"", picked, point), RTNORM);
    acdbGetObjectId(id, picked);
    script("");
    return id;
  }
  // The drawing, after all that was to be asked has been asked.
  std::string drawn() {
    const auto done = frontend_->finish();
    EXPECT_TRUE(done) << done.error();
    EXPECT_EQ(session.takeLeaks(), "");
    return withoutTimes(session.database()->drawing().toBytes());
  }
  // The header says when the drawing was made and changed: a name, a code and a value.
  static std::string withoutTimes(std::string text) {
    for (std::size_t at = 0; (at = text.find("\n$TD", at)) != text.npos; ++at) {
      const std::size_t value = text.find('\n', text.find('\n', at + 1) + 1) + 1;
      text.erase(value, text.find('\n', value) - value);
    }
    return text;
  }

  cad::Session& session = cad::Session::instance();
  Jobs* jobs = nullptr;
  bool orange = false;

 private:
  std::unique_ptr<cad::ui::ScriptFrontend> frontend_;
};

TEST_F(JobsTest, DrawWhatTheCommandsDraw) {
  const std::u16string_view net = u"rete";
  const std::string query = "tutto\n<invio>\n[Interroga Rete]\n", point = "\n500,300\n";
  const struct {
    const char16_t* command;
    std::string answers;
    std::function<void()> job;
    bool orange = false;
  } rows[] = {
      {u"netvis", query + "Nodi/Colore = Pressione\nOK" + point,
       [&] {
         EXPECT_EQ(jobs->colorNetwork(net, {Quantity::pressure, 5, {500, 300, 0}}).painted, 6);
       }},
      {u"netvis", query + "Nodi/Colore = Portata\nN° colori filtro = 10\nOK" + point,
       [&] {
         jobs->colorNetwork(net, {Quantity::demand, 10, {500, 300, 0}});
       }},
      {u"netvis", query + "Rami/Colore = Portata\nN° colori filtro = 10\nOK" + point,
       [&] {
         jobs->colorNetwork(net, {Quantity::flow, 10, {500, 300, 0}});
       }},
      {u"netvis", query + "Rami/Colore = Velocità\nOK" + point,
       [&] {
         jobs->colorNetwork(net, {Quantity::velocity, 5, {500, 300, 0}});
       }},
      {u"netvis",
       query + "Pressione/> di = 10\nPressione/< di = 40\nPressione/Filtra Nodi\n"
               "Velocità/> di = 0.1\nVelocità/< di = 9\nVelocità/Filtra Rami\n"
               "Colora in arancione elementi filtrati = sì\nOK\n",
       [&] {
         vessora::QueryRows found = jobs->queryNetwork(net, {Quantity::pressure, 10, 40}).rows;
         found.links = jobs->queryNetwork(net, {Quantity::velocity, 0.1, 9}).rows.links;
         EXPECT_EQ(found.nodes.size() * 10 + found.links.size(), 44U);
         jobs->highlightElements(net, found);
       }},
      {u"netvis", query + "Resetta colori rete = sì\nOK\n",
       [&] { jobs->resetColors(net, jobs->queryNetwork(net, {}).rows); }, true},
      {u"epaProf", "=P1\n=V1\n=P2\n<invio>\nprova\n250\nS\n1.25\n0,-200\n",
       [&] {
         jobs->drawProfile(net, {{u"P1", u"V1", u"P2"}, u"prova", 250, 1.25, {{0, -200, 0}}});
       }},
      {u"epaProf", "=PU1\n=P1\n<invio>\nprova\n0\nN\n<esc>\n",
       [&] {
         jobs->drawProfile(net, {{u"PU1", u"P1"}, u"prova", 0, {}, {}});
       }},
      {u"epatables", "[Disegna Tabelle]\nOK\n", [&] { jobs->drawTables(net, {}); }},
      {u"epapiezo", "1.5\ntutto\n<invio>\n", [&] { jobs->drawGradeLine(net, 1.5); }},
      {u"epascale",
       "tutto\n<invio>\n[Scala Tabelle/Simboli]\nFattore di scala Simboli = 3\n"
       "Fattore di scala Tabelle = 2\nOK\n",
       [&] {
         jobs->scaleNetwork(net, {true, true, 3, 2});
       }},
      {u"hnsetmat",
       "[Assegna Materiali]\nRicerca/Scabrezza = 130\nCerca\nAssegnazione/Materiale = #2\n"
       "Assegna\n",
       [&] {
         acdbRegApp(u"HN-C_MATEPA");
         const vessora::EpaMaterial second = jobs->readMaterialTable().rows.at(1);
         jobs->assignMaterial(net, second.roughness * 1000, second.name,
                              jobs->findPipesByRoughness(net, 130));
       }},
      {u"hnsetpat",
       "[Gestione Pattern/Curve]\nPattern/Nuovo...\n[Patterns/Curve]\nNome pattern = ore\n"
       "Valori[2,#2] = 1.5\nOK\n[Gestione Pattern/Curve]\nCurve/Modifica...\n[Patterns/Curve]\n"
       "Nome curva = C2\nTipo Curva = VOLUME\nOK\n[Gestione Pattern/Curve]\nOK\n",
       [&] {
         for (const char16_t* kind : {u"PATTERN", u"CURVE"}) {
           acdbRegApp(std::u16string(u"HN-C_EPA_") + kind);
         }
         jobs->addPattern(net, {u"ore", {1.5}});
         jobs->replaceCurve(net, {u"C2", u"VOLUME", {{10, 30}}}, u"C1");
       }},
      {u"hnmodepa", "=N2\n[Nodo]\nNome del nodo = N9\nQuota del nodo [m] = 50\nOK\n",
       [&] {
         auto element = jobs->readElement(net, named(u"N2"));
         auto& junc = std::get<vessora::EpaJunc>(element->record);
         junc.id = u"N9";
         junc.elev = u"50.000";
         junc.demand = u"2.500";
         jobs->modifyElement(net, named(u"N2"), *element, vessora::FieldSet::all());
       }},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(platform::narrow(row.command) + "\n" + row.answers);
    orange = row.orange;
    newNetwork();
    const std::string before = drawn();
    script(row.answers);
    session.run(row.command);
    const std::string expected = drawn();
    EXPECT_FALSE(expected == before);
    newNetwork();
    script("");
    row.job();
    EXPECT_TRUE(drawn() == expected);
  }
}

TEST_F(JobsTest, ANodeMovesAndGoesWithItsArrow) {
  const AcDbObjectId node = named(u"N2"), pipe = named(u"P1");
  const vessora::NetworkInfo before = jobs->network(u"rete");
  EXPECT_TRUE(jobs->moveNode(u"rete", node, 1e6, 1e6).done());
  const auto refused = jobs->deleteElement(u"rete", node, false);
  EXPECT_EQ(refused.verdict, vessora::ChangeVerdict::linked);
  for (const std::u16string& link : refused.links) {
    EXPECT_TRUE(jobs->deleteElement(u"rete", named(link), false).done());
  }
  EXPECT_FALSE(jobs->readElement(u"rete", pipe));
  EXPECT_TRUE(jobs->deleteElement(u"rete", node, false).done());
  const vessora::NetworkInfo after = jobs->network(u"rete");
  EXPECT_EQ(after.counts.nodes(), before.counts.nodes() - 1);
  EXPECT_EQ(after.counts.links(), before.counts.links() - static_cast<int>(refused.links.size()));
  EXPECT_EQ(drawn().find("1000000.0"), std::string::npos);  // neither symbol nor arrow nor end
}

TEST_F(JobsTest, AProfileThatCannotBeNamesTheLinkAndDrawsNothing) {
  using Verdict = vessora::LinkVerdict;
  const std::string before = drawn();
  const struct {
    std::vector<std::u16string> links;
    Verdict verdict;
    std::size_t refused;
  } rows[] = {
      {{u"P1", u"nessuno"}, Verdict::notOfNetwork, 1},
      {{u"P1", u"V1", u"P3"}, Verdict::notConsecutive, 2},
      {{u"P1", u"P2"}, Verdict::notConsecutive, 1},
  };
  for (const auto& row : rows) {
    const auto result = jobs->drawProfile(u"rete", {row.links, u"prova", 0, {}, {{0, 0, 0}}});
    EXPECT_EQ(result.verdict, row.verdict);
    EXPECT_EQ(result.refused, row.refused);
  }
  EXPECT_TRUE(drawn() == before);
  jobs->writeResults(nullptr, u"rete");
  EXPECT_EQ(jobs->drawProfile(u"rete", {{u"P1"}, u"prova", 0, {}, {}}).verdict, Verdict::noResults);
  newNetwork();
  EXPECT_TRUE(drawn() == before);
}

}  // namespace
