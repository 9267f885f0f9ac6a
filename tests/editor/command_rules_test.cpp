// The host's commands and variables choice by choice, in the words that the user reads.
#include "cad/family/hn_geometry.h"
#include "tests/editor/editor_testing.h"

namespace {

class CommandTest : public EditorTest {
 protected:
  // A value as text through a variable's kind; "-" when the host refuses.
  static std::string get(std::u16string_view name, int kind) {
    const cad::Chain value(acutNewRb(kind));
    if (acedGetVar(name, value.get()) != RTNORM) return "-";
    const auto& v = value.get()->resval;
    return kind == RTSTR    ? platform::narrow(v.rstring)
           : kind == RTREAL ? platform::narrow(platform::format(u"%g", v.rreal))
                            : std::to_string(v.rint);
  }
  template <class Value>
  static bool set(std::u16string_view name, int kind, const Value& value) {
    const cad::Chain chain(acutBuildList(kind, value, RTNONE));
    return acedSetVar(name, chain.get()) == RTNORM;
  }
};

TEST_F(CommandTest, VariablesOfEachKind) {
  std::string all;
  for (const char16_t* name : {u"ACADVER", u"aperture", u"CMDECHO", u"EXPERT", u"FILEDIA",
                               u"OSMODE", u"VSINPMODE", u"clayer", u"", u"X"})
    for (const int kind : {RTSTR, RTREAL, RTSHORT, RTPOINT})
      all += get(name, kind) + (kind == RTPOINT ? "; " : " ");
  EXPECT_EQ(all,
            "23.2s 23.2 23 -; 5 5 5 -; 1 1 1 -; 0 0 0 -; 1 1 1 -; 0 0 0 -; CLASSIC 0 0 -; 0 0 0 -; "
            "- - - -; - - - -; ");
  EXPECT_TRUE(set(u"Aperture", RTREAL, 0.125) && get(u"APERTURE", RTSTR) == "0.125");
  EXPECT_TRUE(set(u"aperture", RTSHORT, 7) && get(u"APERTURE", RTREAL) == "7");
  EXPECT_TRUE(set(u"LTSCALE", RTREAL, 2.5) && get(u"LTSCALE", RTREAL) == "2.5");
  EXPECT_FALSE(set(u"APERTURE", RTSTR, u"7") || set(u"OSMODE", RTPOINT, AcGePoint3d()) ||
               set(u"VSINPMODE", RTSHORT, 1));
  // What names a thing of the drawing must name one that is there.
  HNGeometry::createNewLayer(u"RETE");
  HNGeometry::addLineType(u"TRATTO", u"", {1, -1});
  const std::tuple<const char16_t*, const char16_t*, bool> texts[] = {
      {u"CLAYER", u"rete", true},     {u"clayer", u"manca", false},
      {u"CELTYPE", u"TRATTO", true},  {u"CELTYPE", u"ByLayer", true},
      {u"CELTYPE", u"x", false},      {u"TEXTSTYLE", u"standard", true},
      {u"TEXTSTYLE", u"x", false},    {u"NOSUCHVAR", u"x", false},
      {u"VSINPMODE", u"ALTRO", true}, {u"ACADVER", u"x", false},
      {u"DWGNAME", u"x", false},      {u"DWGPREFIX", u"x", false}};
  for (const auto& [name, value, taken] : texts)
    EXPECT_EQ(set(name, RTSTR, value), taken) << platform::narrow(name) << platform::narrow(value);
  EXPECT_EQ(get(u"CLAYER", RTSTR) + get(u"VSINPMODE", RTSTR), "reteALTRO");
}

TEST_F(CommandTest, SetvarTakesWhatIsAValueAndSaysWhatIsNot) {
  run(u"setvar", {u"vsinpmode", u"altro", u"full"});
  EXPECT_EQ(ui.complaints, (std::vector<std::u16string>{u"Valori possibili: CLASSIC, FULL."}));
  EXPECT_EQ(ui.prompts.back().text, u"\nNuovo valore per VSINPMODE [CLASSIC/FULL] <CLASSIC>: ");
  EXPECT_EQ(get(u"VSINPMODE", RTSTR), "FULL") << "in the spelling of the table";
  run(u"SETVAR", {u"VSINPMODE", u"<invio>"});
  EXPECT_EQ(get(u"VSINPMODE", RTSTR), "FULL");
  run(u"SETVAR", {u"manca", u"filedia", u"x", u"0.5", u"-1", u"2", u"nan", u"0"});
  EXPECT_EQ(ui.complaints.size(), 6U);
  EXPECT_EQ(ui.complaints.back(), u"Serve un numero intero da 0 a 1.");
  EXPECT_EQ(get(u"FILEDIA", RTSHORT), "0");
  EXPECT_EQ(run(u"SETVAR", {u"acadver"}), u"\nACADVER = 23.2s (sola lettura)");
  // Of the drawing: what it checks is checked, what is not for users is shown, and undo reaches it.
  EXPECT_NE(run(u"SETVAR", {u"handseed"}).find(u"(sola lettura)"), std::u16string::npos);
  run(u"SETVAR", {u"clayer", u"manca", u"<esc>"});
  EXPECT_EQ(ui.complaints.size(), 1U);
  const std::string before = get(u"LTSCALE", RTSTR);
  run(u"SETVAR", {u"ltscale", u"2.5"});
  EXPECT_EQ(get(u"LTSCALE", RTREAL), "2.5");
  run(u"U");
  EXPECT_EQ(get(u"LTSCALE", RTSTR), before);
  EXPECT_EQ(get(u"FILEDIA", RTSHORT), "0") << "what is the session's is not undone";
  // The list: all, some, none.
  const auto lines = [&](const char16_t* pattern) {
    const std::u16string text = run(u"SETVAR", {u"?", pattern});
    return std::count(text.begin(), text.end(), u'\n');
  };
  EXPECT_GT(lines(u"<invio>"), 5);
  EXPECT_EQ(lines(u"dwg*"), 2);
  EXPECT_EQ(lines(u"VSINPMODE"), 1);
  EXPECT_EQ(run(u"SETVAR", {u"?", u"VSINP"}), u"\nNessuna variabile ha questo nome.");
  session.closeDrawing();
  run(u"SETVAR", {u"OSMODE", u"7"});
  EXPECT_EQ(get(u"OSMODE", RTSHORT), "7") << "without a drawing too";
}

TEST_F(CommandTest, LayersAreListedAndMade) {
  for (const Texts& answers : {Texts{u"nuovo", u"B"},
                               {u"congela", u"b"},
                               {u"nuovo", u"C"},
                               {u"disattiva", u"C"},
                               {u"colore", u"C", u"1"},
                               {u"colore", u"C", u"<invio>"},
                               {u"nuovo", u"<invio>"},
                               {u"nuovo", u"<esc>"},
                               {u"imposta", u"C"}})
    EXPECT_EQ(run(u"LAYER", answers), u"");
  EXPECT_EQ(drawing().header().currentLayer(), u"C");
  for (const char16_t* wrong : {u"0", u"-1", u"256"})
    EXPECT_EQ(run(u"LAYER", {u"colore", u"C", wrong}), u"\nIl colore è un numero da 1 a 255.");
  EXPECT_EQ(run(u"LAYER", {u"imposta", u"manca"}), u"\nIl layer \"manca\" non esiste.");
  EXPECT_EQ(run(u"LAYER", {u"<invio>", u"e"}),
            u"\n0  colore 7\nB  colore 7  congelato\nC  colore 1  spento");
  EXPECT_EQ(ui.complaints, (std::vector<std::u16string>{u"È richiesta una risposta."}));
}

TEST_F(CommandTest, EntitiesAreListedByTheirKind) {
  using namespace HNGeometry;
  acdbRegApp(u"PROVA");
  const cad::Chain data(acutBuildList(1001, u"PROVA", 1000, u"t", 1040, 2.5, 1070, 7, 1071, 70000,
                                      1010, AcGePoint3d(1, 2, 3), RTNONE));
  const auto listed = [&](AcDbObjectId id) {
    const std::u16string handle =
        platform::format(u"%x", static_cast<std::int64_t>(cad::Opened<AcDbEntity>(id)->handle()));
    const std::string out = platform::narrow(run(u"LISTA", {u"#" + handle, u"<invio>"}));
    const std::size_t behind = out.find("layer");
    EXPECT_NE(out.find("  handle " + platform::narrow(handle) + "  layer"), out.npos);
    return out.substr(1, out.find(' ') - 1) + ' ' + out.substr(behind);
  };
  EXPECT_EQ(listed(createLine({0, 0, 0}, {1.23456, 2, 3}, u"L", u"CONTINUOUS", 3, data.get())),
            "LINE layer \"L\"  colore 3\n  da 0.000,0.000,0.000 a 1.235,2.000,3.000  linea "
            "CONTINUOUS\n    1001  PROVA\n"
            "    1000  t\n    1040  2.5\n    1070  7\n    1071  70000\n    1010  1,2,3");
  EXPECT_EQ(listed(Create3Dpoly({{1, 2, 3}, {4, 5, 6}}, 256, u"L", 0, nullptr)),
            "POLYLINE layer \"L\"  colore dal layer\n  vertice 1.000,2.000,3.000\n  vertice "
            "4.000,5.000,6.000");
  EXPECT_EQ(listed(Create2Dpoly({{1, 2, 3}, {4, 5, 6}}, nullptr, nullptr, 0, u"L")),
            "LWPOLYLINE layer \"L\"  colore 0\n  vertice 1.000,2.000\n  vertice 4.000,5.000");
  EXPECT_EQ(listed(HNTextCommandTesto(u"L", u"", {1, 2, 3}, 2.5, 0, u"Nota")),
            "TEXT layer \"L\"  colore dal layer\n  \"Nota\" in 1.000,2.000,3.000  altezza 2.500");
  EXPECT_NE(
      run(u"GUIDA").find(u"\n  CANCELLA     cancella oggetti\n  GUIDA        questo elenco\n"),
      std::u16string::npos);
  EXPECT_EQ(run(u"?").find(u"ERASE"), std::u16string::npos)
      << "each command once, by its local name";
}

TEST_F(CommandTest, WithoutADrawingNothingIsDone) {
  session.closeDrawing();
  for (const char16_t* name :
       {u"U", u"REDO", u"CANCELLA", u"LISTA", u"LAYER", u"ZOOM", u"SALVA", u"SALVACON"})
    EXPECT_EQ(run(name, {u"x"}), u"\nNessun disegno aperto.") << platform::narrow(name);
  ads_name set;
  EXPECT_EQ(acedSSGet(u"_X", nullptr, nullptr, nullptr, set), RTERROR);
  EXPECT_EQ(get(u"CLAYER", RTSTR) + get(u"DWGNAME", RTSTR), "-Disegno1.dxf");
  EXPECT_EQ(session.saveDrawing(at("x.dxf")).error(), "non c'è un disegno aperto");
  session.newDrawing();
  EXPECT_EQ(session.saveDrawing("").error(),
            "il disegno non ha ancora un nome; dare un percorso per salvarlo");
}

TEST_F(CommandTest, ViewsFollowTheirCommands) {
  const auto view = [&] {
    const auto& v = session.view;
    return platform::narrow(platform::format(u"%d %g,%g %g,%g,%g", v.set, v.low.x, v.low.y,
                                             v.high.x, v.high.y, v.low.z));
  };
  run(u"ZOOM", {u"<invio>"});
  EXPECT_EQ(view(), "0 0,0 0,0,0") << "an empty drawing has no window";
  drawLine({-3, 12, 0}, {7, 2, 5});
  run(u"ZOOM", {u"e"});
  EXPECT_EQ(view(), "1 -3,2 7,12,0");
  run(u"ZOOM", {u"finestra", u"5,9", u"1,2"});
  for (const Texts& answers : {Texts{u"f", u"<invio>"}, {u"f", u"1,1", u"<invio>"}, {u"<esc>"}}) {
    run(u"ZOOM", answers);
    EXPECT_EQ(view(), "1 1,2 5,9,0");
  }
  const auto zoom = [](resbuf* chain) {
    const cad::Chain owner(chain);
    return acedCmd(chain);
  };
  const AcGePoint3d a(6, 2, 9), b(1, 9, 9);
  EXPECT_EQ(zoom(acutBuildList(RTSTR, u"zoom", RTSTR, u"w", RTPOINT, a, RTNONE)), RTERROR);
  EXPECT_EQ(zoom(acutBuildList(RTSTR, u"zoom", RTSTR, u"w", RTSTR, u"x", RTPOINT, b, RTNONE)),
            RTERROR);
  EXPECT_EQ(zoom(acutBuildList(RTSTR, u"._ZOOM", RTSTR, u"w", RTPOINT, b, RTPOINT, a, RTNONE)),
            RTNORM);
  EXPECT_EQ(view(), "1 1,2 6,9,0");
}

// What a prompt tells whoever answers, and what it takes.
TEST_F(CommandTest, PromptsSayTheirKindAndKeywords) {
  double real = 0;
  std::u16string text;
  AcGePoint3d point;
  ads_name name;
  acedInitGet(0, u"Uno  Due");
  acedGetReal(u"r", real);
  acedGetPoint(nullptr, u"p", point);
  acedGetString(true, u"s", text);
  acedGetString(false, u"t", text);
  acedGetKword(u"k", text);
  acedEntSel(u"", name, point);
  acedSSGet(nullptr, nullptr, nullptr, nullptr, name);
  using Kind = cad::ui::Prompt::Kind;
  const Kind kinds[] = {Kind::real,    Kind::point,  Kind::string,   Kind::string,
                        Kind::keyword, Kind::entity, Kind::selection};
  ASSERT_EQ(ui.prompts.size(), std::size(kinds));
  std::u16string said;
  for (std::size_t i = 0; i < std::size(kinds); ++i) {
    EXPECT_EQ(ui.prompts[i].kind, kinds[i]) << i;
    said += ui.prompts[i].text + (ui.prompts[i].allowBlanks ? u"(blanks)" : u"");
    for (const auto& k : ui.prompts[i].keywords) said += u' ' + k;
    said += u'|';
  }
  EXPECT_EQ(said,
            u"r Uno Due|p|s(blanks)|t|k|\nSelezionare un oggetto: |\nSelezionare oggetti: (blanks) "
            u"Tutto F I|");
  for (const auto& [answer, result] : {std::pair(u"<invio>", RTNONE),
                                       {u"<esc>", RTCAN},
                                       {u"<fine>", RTCAN},
                                       {u"#FF00", RTERROR}}) {
    ui.answers = {answer};
    EXPECT_EQ(acedEntSel(u"", name, point), result);
  }
  drawLine({5, 1, 2}, {3, 9, 2});
  const auto handle = drawing().record(drawing().index().allInSpace()[0]).handle;
  ui.answers = {platform::format(u"#%x", static_cast<std::int64_t>(handle)), u"4,5,7"};
  EXPECT_EQ(acedEntSel(u"", name, point), RTNORM);
  EXPECT_EQ(std::pair(point.x, point.y), std::pair(3.0, 1.0))
      << "a handle points at its entity's lower left corner";
  EXPECT_EQ(acedEntSel(u"", name, point), RTNORM);
  EXPECT_EQ(point.z, 7) << "a pick stays where it was made";
  acedInitGet(1, u"Uno Due Duello");
  ui.answers = {u"<invio>", u"du", u"u"};
  EXPECT_EQ(acedGetKword(u"", text), RTNORM);
  EXPECT_EQ(text, u"Uno");
  acedInitGet(2, u"Due");
  ui.answers = {u"<invio>", u"x", u"1,2,3,4", u"<fine>"};
  EXPECT_EQ(acedGetKword(u"", text), RTNONE) << "only the first rule asks for an answer";
  ui.complaints.clear();
  EXPECT_EQ(acedGetPoint(nullptr, u"", point), RTCAN);
  EXPECT_EQ(ui.complaints,
            (std::vector<std::u16string>(2, u"Indicare un punto: x,y oppure x,y,z")));
}

TEST_F(CommandTest, ServicesAreFoundByNameAndTheHostsStay) {
  AcRxDictionary* registry = acrxSysRegistry();
  struct Service : AcRxObject {
  } mine, other;
  EXPECT_TRUE(registry->atPut(u"Mio", &mine));
  EXPECT_FALSE(registry->atPut(u"Mio", &other) || registry->atPut(u"", &mine) ||
               registry->atPut(u"Nullo", nullptr));
  EXPECT_EQ(registry->at(u"Mio"), &mine) << "the first one stays";
  EXPECT_EQ(registry->at(u"mio"), nullptr);
  EXPECT_EQ(registry->remove(u"Mio"), &mine);
  EXPECT_EQ(registry->remove(u"Mio"), nullptr);
  EXPECT_EQ(registry->remove(u"DynamicLinker"), nullptr);
  auto* linker = AcRxObject::cast<AcRxDynamicLinker>(registry->at(u"DynamicLinker"));
  ASSERT_NE(linker, nullptr);
  EXPECT_FALSE(linker->unlockApplication(nullptr) || linker->registerAppMDIAware(nullptr));
  // Sets are numbered from the first free place on.
  const auto first = session.storeSelection({}), second = session.storeSelection({});
  EXPECT_TRUE(session.freeSelection(first) && !session.freeSelection(first));
  EXPECT_EQ(session.storeSelection({}), first);
  EXPECT_EQ(session.liveSelections(), 2);
  EXPECT_FALSE(session.selection(0) || session.selection(second + 1));
  EXPECT_TRUE(session.freeSelection(first) && session.freeSelection(second));
}

}  // namespace
