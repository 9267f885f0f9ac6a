// The course of a profile along a network's links, and the manholes that a user puts on it.
#include "cad/family/family_commands.h"
#include "cad/family/profile.h"
#include "tests/editor/answering.h"
#include "tests/results_draw/draw_testing.h"

namespace vessora {
namespace {

class Course : public CalculatedNetwork {
 protected:
  void SetUp() override {
    CalculatedNetwork::SetUp();
    junc(u"A", {0, 0, 10}, 1, 50);
    junc(u"B", {30, 40, 20});
    junc(u"C", {33, 44, 0}, 2, 30);
    addBlock(u"Tank", u"TANK-Rete", {33, 50, 5}, {{u"ID", u"T"}}, tankData(u"T", u""));
    addBlock(u"Resv", u"RESV-Rete", {0, 9, 7}, {{u"ID", u"R"}});  // known by its attribute alone
    pipe(u"AB", u"A", u"B", u"110", {{0, 0, 10}, {30, 40, 20}});
    pipe(u"CB", u"C", u"B", u"7", {{33, 44, 0}, {30, 40, 20}});
    pipe(u"CT", u"C", u"T", u"6", {{33, 44, 0}, {33, 50, 5}});
    pipe(u"AR", u"A", u"R", u"9", {{0, 0, 10}, {0, 9, 7}});
    pipe(u"BA", u"B", u"A", u"111", {{30, 40, 20}, {0, 0, 10}});
    pump(u"PU", u"B", u"C", {31, 42, 10});
    EpaValv valve;
    valve.id = u"VA";
    valve.node1 = u"T";
    valve.node2 = u"C";
    addBlock(u"Valv", u"VALV-Rete", {33, 47, 2}, {{u"ID", u"VA"}}, valvData(valve, 80, 0));
    pipe(u"NO", u"A", u"manca", u"1", {{0, 0, 10}, {1, 1, 1}});
    pipe(u"LOOP", u"A", u"A", u"4", {{0, 0, 10}, {1, 1, 1}});
  }
  // "node@chainage,z(head/pressure) ... | link length DN ...", "" for no course.
  std::string course(const std::vector<std::u16string>& links,
                     std::u16string_view network = u"Rete") {
    const auto chain = cad::readProfileChain(drawing(), network, links);
    std::u16string out;
    for (const auto& s : chain.stations) {
      out += platform::format(u"%s@%g,%g", s.name, s.chainage, s.point.z);
      if (s.hasResults) out += platform::format(u"(%g/%g)", s.head, s.pressure);
      out += u' ';
    }
    if (!chain.reaches.empty()) out += u"|";
    for (const auto& r : chain.reaches)
      out += platform::format(u" %s %g DN%g", r.name, r.length, r.diameter);
    return platform::narrow(out);
  }
};

TEST_F(Course, RunsThroughTheNodesThatLinksShare) {
  const std::string a = "A@0,10(50/40) ";
  EXPECT_EQ(course({u"AB"}), a + "B@110,20 | AB 110 DN150");
  EXPECT_EQ(course({u"AB", u"CB"}), a + "B@110,20 C@117,0(30/30) | AB 110 DN150 CB 7 DN150");
  EXPECT_EQ(course({u"CB", u"AB"}),
            "C@0,0(30/30) B@7,20 A@117,10(50/40) | CB 7 DN150 AB 110 DN150");
  EXPECT_EQ(course({u"AB", u"AR"}), "B@0,20 A@110,10(50/40) R@119,7 | AB 110 DN150 AR 9 DN150")
      << "the second link turns the first";
  EXPECT_EQ(course({u"AR", u"BA"}), "R@0,7 A@9,10(50/40) B@120,20 | AR 9 DN150 BA 111 DN150");
  EXPECT_EQ(course({u"AB", u"BA"}),
            "A@0,10(50/40) B@110,20 A@221,10(50/40) | AB 110 DN150 BA 111 DN150")
      << "there and back: where the second one begins, the first one ends";
  EXPECT_EQ(course({u"AB", u"PU", u"VA"}),
            a + "B@110,20 C@130.616,0(30/30) T@138.426,5 | AB 110 DN150 PU 20.6155 DN0 VA 7.81025 "
                "DN80")
      << "a pump and a valve are as long as their nodes are apart";
  EXPECT_EQ(course({u"LOOP"}), "A@0,10(50/40) A@4,10(50/40) | LOOP 4 DN150");
  EXPECT_EQ(course({u"AB", u"CT"}), "") << "they do not join";
  EXPECT_EQ(course({u"AB", u"CB", u"AR"}), "") << "the third joins the first alone";
  EXPECT_EQ(course({u"NO"}), "") << "a node is missing";
  EXPECT_EQ(course({u"AB", u"manca"}), "");
  EXPECT_EQ(course({u"ab"}), "");
  EXPECT_EQ(course({}), "");
  EXPECT_EQ(course({u"AB"}, u"Altra"), "");
  EXPECT_EQ(course({u"AB"}, u"RETE").empty(), course({u"AB"}, u"rete").empty());
  Opened<AcDbEntity>(onLayer(u"JUNC-Rete")[1], AcDb::kForWrite)->erase();
  EXPECT_EQ(course({u"AB"}), "") << "an erased node is not there";
}

TEST_F(Course, ManholesTakeTheCoursesLevelUnlessTheUserGivesOne) {
  GestioneOggetto profile(3);
  profile.SetOBJ1Nome1(u"Rete");
  profile.SetOBJ3Prog(u"1000");
  profile.SetOBJ4QRif(u"5");
  profile.SetOBJ5ScX(u"1000");
  profile.SetPInsCART({10, 20, 0});
  profile.SetAltezzaLarghezzaUtile(60, 240);
  EXPECT_EQ(profile.GetOrigin().x, 0);
  ASSERT_TRUE(profile.Disegna_HNPX_HNRR(nullptr));
  EXPECT_FALSE(profile.Disegna_HNPX_HNRR(nullptr)) << "it is drawn already";
  const Chain names(acutBuildList(1001, u"HN-RR_PROFILO_EPA", 1000, u"AB", 1000, u"CB", RTNONE));
  profile.SetXdataProfSewer(names.get());
  ASSERT_TRUE(profile.UpdateXdata());
  // Text height 2: title block 52 wide, axis 20; the band 114 high, the fan 8.
  EXPECT_EQ(profile.GetPInsFINOBJ().x, 10 + 52 + 20 + 240);
  EXPECT_EQ(profile.GetPInsFINOBJ().y, 20);
  EXPECT_EQ(profile.GetOrigin().x, 10 + 73 - 1000);
  EXPECT_EQ(profile.GetOrigin().y, 20 + 114 + 8 - 5);
  Answering ui;
  cad::Session::instance().setFrontend(&ui);
  cad::addFamilyCommands(cad::Session::instance());
  ads_name name;
  acdbGetAdsName(name, profile.titleBlock());
  const std::u16string pick = platform::format(
      u"#%x", static_cast<std::int64_t>(Opened<AcDbEntity>(profile.titleBlock())->handle()));
  const std::u16string other = platform::format(
      u"#%x", static_cast<std::int64_t>(Opened<AcDbEntity>(onLayer(u"JUNC-Rete")[0])->handle()));
  ui.answers = {other, pick, u"1000", u"Z1", u"c1", u"d1", u"<invio>"};  // at the first node
  const auto more = [&](std::vector<std::u16string> answers) {
    ui.answers.insert(ui.answers.end(), answers.begin(), answers.end());
  };
  more({u"1055", u"Z2", u"", u"<invio>", u"<invio>"});    // half way up
  more({u"1110", u"Z3", u"", u"", u"<invio>"});           // at the second one
  more({u"1116", u"Z4", u"", u"", u"1,5"});               // a level of the user's own
  more({u"1117", u"Z5", u"", u"", u"<invio>"});           // at the last one
  more({u"1117.5", u"Z6", u"", u"", u"<invio>", u"-3"});  // beyond: it must be given
  more({u"999.5", u"Z7", u"", u"", u"<invio>", u"8", u"1010", u"Z8", u"<esc>"});
  EXPECT_EQ(cad::Session::instance().run(u"PZZPROFILO"), cad::RunResult::done);
  EXPECT_EQ(ui.printed, u"\nEntità non valida!\n7 pozzetti inseriti.");
  std::u16string list;
  for (const pozzetto* p = profile.GetListaPozzetti(); p; p = p->next)
    list +=
        platform::format(u"%s %g %g %s %s;", p->nome, p->prog, p->quota, p->codice, p->descrizione);
  EXPECT_EQ(
      platform::narrow(list),
      "Z1 0 10 c1 d1;Z2 55 15  ;Z3 110 20  ;Z4 116 1.5  ;Z5 117 0  ;Z6 117.5 -3  ;Z7 -0.5 8  ;");
  const auto symbols = onLayer(u"HN-PROFILO-POZZETTI");
  ASSERT_EQ(symbols.size(), 7u);
  EXPECT_NEAR(position(symbols[1]).x, 10 + 73 + 55, 1e-9);
  EXPECT_NEAR(position(symbols[1]).y, 20 + 114 + 8 + 15 - 5, 1e-9);
  EXPECT_EQ(attribute(symbols[0], u"NOME"), u"Z1");
  EXPECT_EQ(attribute(symbols[0], u"CODICE"), u"c1");
  EXPECT_EQ(attribute(symbols[0], u"DESCRIZIONE"), u"d1");
  ui.answers = {pick, u"1000", u"Z", u"", u"", u"<esc>"};
  ui.printed.clear();
  cad::Session::instance().run(u"PZZPROFILO");
  EXPECT_EQ(ui.printed, u"\n0 pozzetti inseriti.");
  ui.answers = {pick, u"1000", u"Z", u"", u"", u"1", u"<invio>"};
  ui.printed.clear();
  cad::Session::instance().run(u"PZZPROFILO");
  EXPECT_EQ(ui.printed, u"\n1 pozzetto inserito.");
  cad::Session::instance().removeGroup(u"HOST", 0);
}

}  // namespace
}  // namespace vessora
