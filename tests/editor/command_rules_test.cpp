// The host's commands and variables choice by choice, in the words that the user reads.
#include "cad/family/hn_geometry.h"
#include "tests/editor/editor_testing.h"

namespace {

class CommandTest : public EditorTest {
 protected:
  // A value as text through a variable's kind; "<none>" when the host refuses.
  static std::string get(std::u16string_view name, int kind) {
    const cad::Chain value(acutNewRb(kind));
    if (acedGetVar(name, value.get()) != RTNORM) return "<none>";
    switch (acutKindOf(kind)) {
      case RbKind::text:
        return platform::narrow(value.get()->resval.rstring);
      case RbKind::real:
        return platform::narrow(platform::format(u"%g", value.get()->resval.rreal));
      default:
        return std::to_string(value.get()->resval.rint);
    }
  }
  template <class Value>
  static bool set(std::u16string_view name, int kind, const Value& value) {
    const cad::Chain chain(acutBuildList(kind, value, RTNONE));
    return acedSetVar(name, chain.get()) == RTNORM;
  }
};

TEST_F(CommandTest, VariablesOfEachKind) {
  const struct {
    const char16_t* name;
    const char *text, *real, *integer;
  } initial[] = {{u"ACADVER", "23.2s", "23.2", "23"}, {u"aperture", "5", "5", "5"},
                 {u"CMDECHO", "1", "1", "1"},         {u"EXPERT", "0", "0", "0"},
                 {u"FILEDIA", "1", "1", "1"},         {u"OSMODE", "0", "0", "0"},
                 {u"VSINPMODE", "CLASSIC", "0", "0"}, {u"", "<none>", "<none>", "<none>"},
                 {u"clayer", "0", "0", "0"}};
  for (const auto& v : initial) {
    EXPECT_EQ(get(v.name, RTSTR), v.text) << platform::narrow(v.name);
    EXPECT_EQ(get(v.name, RTREAL), v.real) << platform::narrow(v.name);
    EXPECT_EQ(get(v.name, RTSHORT), v.integer) << platform::narrow(v.name);
    EXPECT_EQ(get(v.name, RTPOINT), "<none>");
  }
  EXPECT_EQ(acedGetVar(u"OSMODE", nullptr), RTERROR);
  EXPECT_EQ(acedSetVar(u"OSMODE", nullptr), RTERROR);
  EXPECT_TRUE(set(u"Aperture", RTREAL, 0.125));
  EXPECT_EQ(get(u"APERTURE", RTSTR), "0.125");
  EXPECT_TRUE(set(u"aperture", RTSHORT, 7));
  EXPECT_EQ(get(u"APERTURE", RTREAL), "7");
  EXPECT_FALSE(set(u"APERTURE", RTSTR, u"7"));
  EXPECT_FALSE(set(u"OSMODE", RTPOINT, AcGePoint3d()));
  EXPECT_TRUE(set(u"OSMODE", RTSHORT, 33));
  EXPECT_EQ(get(u"OSMODE", RTSHORT), "33");
  EXPECT_TRUE(set(u"VSINPMODE", RTSTR, u"ALTRO"));
  EXPECT_FALSE(set(u"VSINPMODE", RTSHORT, 1));
  EXPECT_EQ(get(u"VSINPMODE", RTSTR), "ALTRO");
  for (const char16_t* fixed : {u"ACADVER", u"DWGNAME", u"DWGPREFIX"})
    EXPECT_FALSE(set(fixed, RTSTR, u"x")) << platform::narrow(fixed);
  // What names a thing of the drawing must name one that is there.
  HNGeometry::createNewLayer(u"RETE");
  HNGeometry::addLineType(u"TRATTO", u"", {1, -1});
  const std::tuple<const char16_t*, const char16_t*, bool> names[] = {
      {u"CLAYER", u"rete", true},    {u"clayer", u"manca", false},
      {u"CELTYPE", u"TRATTO", true}, {u"CELTYPE", u"ByLayer", true},
      {u"CELTYPE", u"x", false},     {u"TEXTSTYLE", u"standard", true},
      {u"TEXTSTYLE", u"x", false},   {u"NOSUCHVAR", u"x", false}};
  for (const auto& [name, value, taken] : names)
    EXPECT_EQ(set(name, RTSTR, value), taken) << platform::narrow(name) << platform::narrow(value);
  EXPECT_EQ(get(u"CLAYER", RTSTR), "rete");
  EXPECT_TRUE(set(u"LTSCALE", RTREAL, 2.5));
  EXPECT_EQ(get(u"LTSCALE", RTREAL), "2.5");
  const cad::Chain number(acutBuildList(RTREAL, 1.0, RTNONE));
  session.setSymbol(u"a", u"x");
  EXPECT_EQ(acedPutSym(u"A", number.get()), RTERROR);
  EXPECT_EQ(session.symbols.count(u"A"), 0u);
}

TEST_F(CommandTest, LayersAreListedAndMade) {
  EXPECT_EQ(run(u"LAYER", {u"nuovo", u"B"}), u"");
  run(u"LAYER", {u"congela", u"b"});
  run(u"LAYER", {u"nuovo", u"C"});
  run(u"LAYER", {u"disattiva", u"C"});
  run(u"LAYER", {u"colore", u"C", u"1"});
  EXPECT_EQ(run(u"LAYER", {u"e"}), u"\n0  colore 7\nB  colore 7  congelato\nC  colore 1  spento");
  EXPECT_EQ(run(u"LAYER", {u"colore", u"C", u"0"}), u"\nIl colore è un numero da 1 a 255.");
  EXPECT_EQ(run(u"LAYER", {u"colore", u"C", u"-1"}), u"\nIl colore è un numero da 1 a 255.");
  EXPECT_EQ(run(u"LAYER", {u"colore", u"C", u"<invio>"}), u"");
  EXPECT_EQ(run(u"LAYER", {u"imposta", u"manca"}), u"\nIl layer \"manca\" non esiste.");
  EXPECT_EQ(run(u"LAYER", {u"nuovo", u"<invio>"}), u"");
  EXPECT_EQ(run(u"LAYER", {u"nuovo", u"<esc>"}), u"");
  EXPECT_EQ(run(u"LAYER", {u"<invio>", u"<esc>"}), u"");
  EXPECT_EQ(ui.complaints, (std::vector<std::u16string>{u"È richiesta una risposta."}));
  run(u"LAYER", {u"imposta", u"C"});
  EXPECT_EQ(drawing().header().currentLayer(), u"C");
  EXPECT_EQ(run(u"LAYER", {u"elenco"}),
            u"\n0  colore 7\nB  colore 7  congelato\nC  colore 1  spento");
}

TEST_F(CommandTest, EntitiesAreListedByTheirKind) {
  using namespace HNGeometry;
  acdbRegApp(u"PROVA");
  const cad::Chain data(acutBuildList(1001, u"PROVA", 1000, u"t", 1040, 2.5, 1070, 7, 1071, 70000,
                                      1010, AcGePoint3d(1, 2, 3), RTNONE));
  const auto listed = [&](AcDbObjectId id) {
    const std::u16string handle =
        platform::format(u"%x", static_cast<std::int64_t>(cad::Opened<AcDbEntity>(id)->handle()));
    std::string out = platform::narrow(run(u"LISTA", {u"#" + handle, u"<invio>"}));
    const std::string known = "handle " + platform::narrow(handle);
    out.replace(out.find(known), known.size(), "#");
    return out;
  };
  EXPECT_EQ(
      listed(createLine({0, 0, 0}, {1.23456, 2, 3}, u"L", u"CONTINUOUS", 3, data.get())),
      "\nLINE  #  layer \"L\"  colore 3\n  da 0.000,0.000,0.000 a 1.235,2.000,3.000  linea "
      "CONTINUOUS\n    1001  PROVA\n    1000  t\n    1040  2.5\n    1070  7\n    1071  70000\n"
      "    1010  1,2,3");
  EXPECT_EQ(listed(Create3Dpoly({{1, 2, 3}, {4, 5, 6}}, 256, u"L", 0, nullptr)),
            "\nPOLYLINE  #  layer \"L\"  colore dal layer\n  vertice 1.000,2.000,3.000\n  vertice "
            "4.000,5.000,6.000");
  EXPECT_EQ(listed(Create2Dpoly({{1, 2, 3}, {4, 5, 6}}, nullptr, nullptr, 0, u"L")),
            "\nLWPOLYLINE  #  layer \"L\"  colore 0\n  vertice 1.000,2.000\n  vertice 4.000,5.000");
  EXPECT_EQ(
      listed(HNTextCommandTesto(u"L", u"", {1, 2, 3}, 2.5, 0, u"Nota")),
      "\nTEXT  #  layer \"L\"  colore dal layer\n  \"Nota\" in 1.000,2.000,3.000  altezza 2.500");
  EXPECT_EQ(listed(addPOINT({1, 2, 3}, u"0", 1, nullptr)), "\nPOINT  #  layer \"0\"  colore 1");
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
  AcGePoint3d point;
  ads_name set;
  EXPECT_EQ(acedSSGet(u"_X", nullptr, nullptr, nullptr, set), RTERROR);
  EXPECT_EQ(acedEntSel(u"", set, point), RTERROR);
  EXPECT_EQ(get(u"CLAYER", RTSTR), "<none>");
  EXPECT_EQ(get(u"DWGNAME", RTSTR), "Disegno1.dxf");
  EXPECT_FALSE(session.isModified());
  EXPECT_EQ(session.saveDrawing(at("x.dxf")).error(), "no drawing is open");
  session.newDrawing();
  EXPECT_EQ(session.saveDrawing("").error(), "the drawing has no name yet; give a path to save it");
}

TEST_F(CommandTest, ViewsFollowTheirCommands) {
  const auto view = [&] {
    const auto& v = session.view;
    return platform::narrow(
        platform::format(u"%d %g,%g %g,%g", v.set, v.low.x, v.low.y, v.high.x, v.high.y));
  };
  run(u"ZOOM", {u"<invio>"});
  EXPECT_EQ(view(), "0 0,0 0,0") << "an empty drawing has no window";
  drawLine({-3, 12, 0}, {7, 2, 5});
  run(u"ZOOM", {u"e"});
  EXPECT_EQ(view(), "1 -3,2 7,12");
  run(u"ZOOM", {u"finestra", u"5,9", u"1,2"});
  EXPECT_EQ(view(), "1 1,2 5,9");
  run(u"ZOOM", {u"f", u"<invio>"});
  run(u"ZOOM", {u"f", u"1,1", u"<invio>"});
  EXPECT_EQ(view(), "1 1,2 5,9");
  const auto zoom = [](resbuf* chain) {
    const cad::Chain owner(chain);
    return acedCmd(chain);
  };
  const AcGePoint3d a(5, 2, 9), b(1, 9, 9);
  EXPECT_EQ(zoom(acutBuildList(RTSTR, u"zoom", RTSTR, u"w", RTPOINT, a, RTNONE)), RTERROR);
  EXPECT_EQ(zoom(acutBuildList(RTSTR, u"zoom", RTSTR, u"w", RTSTR, u"x", RTPOINT, b, RTNONE)),
            RTERROR);
  EXPECT_EQ(zoom(acutBuildList(RTSTR, u"._ZOOM", RTSTR, u"w", RTPOINT, b, RTPOINT, a, RTNONE)),
            RTNORM);
  EXPECT_EQ(view(), "1 1,2 5,9");
  EXPECT_EQ(session.view.low.z, 0);
  EXPECT_EQ(zoom(acutBuildList(RTSTR, u"regen", RTNONE)), RTNORM);
  EXPECT_EQ(acedGetAppName(), std::u16string());
}

// What a prompt tells whoever answers, and what it takes.
TEST_F(CommandTest, PromptsSayTheirKindAndKeywords) {
  double real = 0;
  std::u16string text;
  AcGePoint3d point;
  ads_name name;
  const auto last = [&] {
    const auto& p = ui.prompts.back();
    std::u16string out = platform::format(u"%d %s%s", static_cast<int>(p.kind), p.text,
                                          p.allowBlanks ? u" blanks" : u"");
    for (const auto& k : p.keywords) out += u' ' + k;
    return platform::narrow(out);
  };
  using Kind = cad::ui::Prompt::Kind;
  const auto kind = [](Kind k) { return std::to_string(static_cast<int>(k)); };
  acedInitGet(0, u"Uno  Due");
  acedGetReal(u"r", real);
  EXPECT_EQ(last(), kind(Kind::real) + " r Uno Due");
  acedGetPoint(nullptr, u"p", point);
  EXPECT_EQ(last(), kind(Kind::point) + " p");
  acedGetString(true, u"s", text);
  EXPECT_EQ(last(), kind(Kind::string) + " s blanks");
  acedGetString(false, u"s", text);
  EXPECT_EQ(last(), kind(Kind::string) + " s");
  acedGetKword(u"k", text);
  EXPECT_EQ(last(), kind(Kind::keyword) + " k");
  acedEntSel(u"", name, point);
  EXPECT_EQ(last(), kind(Kind::entity) + " \nSelezionare un oggetto: ");
  acedEntSel(u"e", name, point);
  EXPECT_EQ(last(), kind(Kind::entity) + " e");
  acedSSGet(nullptr, nullptr, nullptr, nullptr, name);
  EXPECT_EQ(last(), kind(Kind::selection) + " \nSelezionare oggetti:  blanks Tutto F I");
  const std::pair<const char16_t*, int> entity[] = {
      {u"<invio>", RTNONE}, {u"<esc>", RTCAN}, {u"<fine>", RTCAN}, {u"#FF00", RTERROR}};
  for (const auto& [answer, result] : entity) {
    ui.answers = {answer};
    EXPECT_EQ(acedEntSel(u"", name, point), result);
  }
  drawLine({5, 1, 2}, {3, 9, 2});
  const auto handle = platform::format(
      u"#%x",
      static_cast<std::int64_t>(drawing().record(drawing().index().allInSpace()[0]).handle));
  ui.answers = {handle};
  EXPECT_EQ(acedEntSel(u"", name, point), RTNORM);
  EXPECT_EQ(point.x, 3) << "a handle points at its entity's lower left corner";
  EXPECT_EQ(point.y, 1);
  ui.answers = {u"4,5,7"};
  EXPECT_EQ(acedEntSel(u"", name, point), RTNORM);
  EXPECT_EQ(point.z, 7) << "a pick stays where it was made";
  AcDbObjectId id;
  EXPECT_EQ(acdbGetObjectId(id, name), RTNORM);
  EXPECT_EQ(acdbGetObjectId(id, ads_name()), RTERROR);
  EXPECT_TRUE(id.isNull());
  acedInitGet(1, u"Uno Due Duello");
  ui.answers = {u"<invio>", u"du", u"u"};
  EXPECT_EQ(acedGetKword(u"", text), RTNORM);
  EXPECT_EQ(text, u"Uno");
  acedInitGet(2, u"Due Duello");
  ui.answers = {u"<invio>"};
  EXPECT_EQ(acedGetKword(u"", text), RTNONE) << "only the first rule asks for an answer";
  ui.complaints.clear();
  ui.answers = {u"x", u"1,2,3,4", u"<fine>"};
  EXPECT_EQ(acedGetPoint(nullptr, u"", point), RTCAN);
  EXPECT_EQ(ui.complaints,
            (std::vector<std::u16string>(2, u"Indicare un punto: x,y oppure x,y,z")));
  using Icon = cad::ui::Icon;
  struct Icons : Answering {
    std::vector<Icon> icons;
    cad::ui::Pressed showMessage(const cad::ui::Message& m) override {
      icons.push_back(m.icon);
      EXPECT_EQ(m.title, u"T");
      return Answering::showMessage(m);
    }
  } icons;
  session.setFrontend(&icons);
  for (const AcEdIcon i :
       {AcEdIcon::none, AcEdIcon::stop, AcEdIcon::warning, AcEdIcon::information})
    acedMessageBox(u"x", u"T", i);
  session.setFrontend(&ui);
  EXPECT_EQ(icons.icons,
            (std::vector<Icon>{Icon::none, Icon::stop, Icon::warning, Icon::information}));
}

TEST_F(CommandTest, ServicesAreFoundByNameAndTheHostsStay) {
  AcRxDictionary* registry = acrxSysRegistry();
  struct Service : AcRxObject {
  } mine, other;
  EXPECT_TRUE(registry->atPut(u"Mio", &mine));
  EXPECT_FALSE(registry->atPut(u"Mio", &other)) << "the first one stays";
  EXPECT_FALSE(registry->atPut(u"", &mine));
  EXPECT_FALSE(registry->atPut(u"Nullo", nullptr));
  EXPECT_EQ(registry->at(u"Mio"), &mine);
  EXPECT_EQ(registry->at(u"mio"), nullptr);
  EXPECT_EQ(registry->remove(u"Mio"), &mine);
  EXPECT_EQ(registry->remove(u"Mio"), nullptr);
  for (const char16_t* own : {u"DynamicLinker", u"ACAD_REGISTERED_COMMANDS"}) {
    EXPECT_EQ(registry->remove(own), nullptr);
    EXPECT_NE(registry->at(own), nullptr);
  }
  auto* linker = AcRxObject::cast<AcRxDynamicLinker>(registry->at(u"DynamicLinker"));
  EXPECT_FALSE(linker->unlockApplication(nullptr));
  EXPECT_FALSE(linker->registerAppMDIAware(nullptr));
  EXPECT_TRUE(linker->registerAppMDIAware(this));
  EXPECT_FALSE(afxAddExtensionModule(nullptr));
  EXPECT_TRUE(afxAddExtensionModule(this));
  afxRemoveExtensionModule(this);
  // Sets are numbered from the first free place on.
  const auto first = session.storeSelection({}), second = session.storeSelection({});
  EXPECT_TRUE(session.freeSelection(first));
  EXPECT_FALSE(session.freeSelection(first));
  EXPECT_EQ(session.storeSelection({}), first);
  EXPECT_EQ(session.liveSelections(), 2);
  EXPECT_EQ(session.selection(0), nullptr);
  EXPECT_EQ(session.selection(second + 1), nullptr);
  EXPECT_TRUE(session.freeSelection(first));
  EXPECT_TRUE(session.freeSelection(second));
}

}  // namespace
