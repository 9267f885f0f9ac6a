// The session: commands by name, the loop, what becomes of changes, undo marks, variables.
#include <algorithm>

#include "tests/editor/editor_testing.h"

namespace {

using cad::Overwrite;
using cad::RunResult;
using cad::ui::Pressed;

TEST_F(EditorTest, CommandsAreFoundByEitherNameInAnyCase) {
  int runs = 0;
  ASSERT_TRUE(session.addCommand({u"PROVA", u"Draw", u"Disegna", 0, [&] { ++runs; }, u""}));
  EXPECT_FALSE(session.addCommand({u"ALTRI", u"DRAW", u"X", 0, [] {}, u""}));
  EXPECT_TRUE(session.addCommand({u"PROVA", u"OTHER", u"disegna", 0, [] {}, u""}))
      << "a local name that is taken is left out";
  for (const char16_t* name : {u"draw", u"DRAW", u"_Draw", u"-.draw", u"disegna", u"DISEGNA"}) {
    EXPECT_EQ(session.run(name), RunResult::done);
  }
  EXPECT_EQ(runs, 6);
  for (const char16_t* name : {u"", u"dra", u"draw ", u"d_raw"}) {
    EXPECT_EQ(session.run(name), RunResult::unknown);
  }
  EXPECT_FALSE(session.removeGroup(u"PROVA", 7)) << "of another module";
  EXPECT_FALSE(session.removeGroup(u"NESSUNO", 0));
  EXPECT_TRUE(session.removeGroup(u"prova", 0));
  EXPECT_EQ(session.run(u"disegna"), RunResult::unknown);
  EXPECT_EQ(session.run(u"GUIDA"), RunResult::done);
}

TEST_F(EditorTest, TheLoopRepeatsComplainsAndStops) {
  std::u16string ran;
  addCommand(u"A", [&] { ran += u'a'; });
  addCommand(u"B", [&] {
    ran += u'b';
    acedPostCommand(u"A\n");
    acedPostCommand(u"C and more");
    acedPostCommand(u"");
  });
  addCommand(u"C", [&] { ran += u'c'; });
  ui.answers = {u"<invio>", u"a", u"<invio>", u"<esc>", u"nulla", u"<invio>", u"B", u"<invio>"};
  EXPECT_TRUE(session.commandLoop());
  EXPECT_EQ(ran, u"aaabacbac") << "posted commands run after the one that posts them";
  ASSERT_EQ(ui.prompts.size(), 9u);
  EXPECT_EQ(ui.prompts[0].kind, cad::ui::Prompt::Kind::command);
  EXPECT_EQ(std::count(ui.prompts[0].keywords.begin(), ui.prompts[0].keywords.end(), u"ESCI"), 1);
  ASSERT_EQ(ui.complaints.size(), 1u);
  EXPECT_EQ(ui.complaints[0], u"Comando sconosciuto \"nulla\". Digitare GUIDA per l'elenco.");
  ran.clear();
  int asked = 0;
  ui.answers = {u"a", u"a", u"a"};
  EXPECT_TRUE(session.commandLoop([&] { return ++asked < 3; }));
  EXPECT_EQ(ran, u"aa");
  ui.answers = {u"ESCI", u"a"};
  EXPECT_TRUE(session.commandLoop());
  EXPECT_TRUE(session.quitRequested());
  EXPECT_EQ(ran, u"aa");
}

// Every way out of a drawing asks about changes that no file has, and only about those.
TEST_F(EditorTest, NoWayOutLosesChangesUnasked) {
  addCommand(u"LINEA", [&] { drawLine({0, 0, 0}, {1, 1, 0}); });
  const auto entities = [&] { return drawing().index().allInSpace().size(); };
  for (const char16_t* way : {u"NUOVO", u"APRI", u"ESCI"}) {
    run(way);
    EXPECT_TRUE(ui.messages.empty()) << "nothing has changed";
  }
  session.run(u"LINEA");
  EXPECT_TRUE(session.isModified());
  for (const char16_t* way : {u"NUOVO", u"APRI", u"ESCI"}) {
    ui.presses = {Pressed::cancel};
    ui.path = platform::widen(at("mai.dxf"));
    run(way);
    EXPECT_EQ(ui.messages.size(), 1u);
    EXPECT_FALSE(platform::fileExists(at("mai.dxf")));
    ui.path.clear();
    // Yes, but no file is named: then the drawing stays too.
    ui.presses = {Pressed::yes};
    run(way);
    EXPECT_EQ(ui.messages.size(), 1u);
    EXPECT_EQ(entities(), 1u);
  }
  // The end of a person's input asks; he may go on.
  ui.presses = {Pressed::cancel, Pressed::no};
  ui.answers = {u"<fine>", u"LINEA", u"<fine>"};
  EXPECT_TRUE(session.commandLoop());
  EXPECT_EQ(entities(), 2u);
  EXPECT_TRUE(session.quitRequested());
  // Where nobody can be asked any more the loop says that something is lost.
  ui.answers = {u"LINEA"};
  EXPECT_FALSE(session.commandLoop());
  ui.path = platform::widen(at("nuovo.dxf"));
  ui.presses = {Pressed::yes};
  run(u"NUOVO");
  EXPECT_EQ(entities(), 0u);
  EXPECT_NE(content("nuovo.dxf").find("LINE"), std::string::npos);
  EXPECT_FALSE(session.isModified());
  EXPECT_TRUE(session.commandLoop());
  session.run(u"LINEA");
  ui.path.clear();
  ui.presses = {Pressed::no};
  run(u"NUOVO");
  EXPECT_EQ(entities(), 0u);
}

TEST_F(EditorTest, ACommandThatNobodyAnswersAnyMoreIsTakenBack) {
  const auto entities = [&] { return drawing().index().allInSpace().size(); };
  int asked = 0;
  bool inner = false;
  addCommand(u"VERTICI", [&] {
    AcGePoint3d p;
    for (;; ++asked) {  // a loop that no cancel ends
      if (acedGetPoint(nullptr, u"\nVertice: ", p) == RTNORM) drawLine({0, 0, 0}, p);
    }
  });
  addCommand(u"FUORI", [&] {
    drawLine({0, 0, 0}, {5, 5, 0});
    session.post(u"LINEA");
    session.run(u"VERTICI");
    inner = true;
  });
  addCommand(u"LINEA", [&] { drawLine({0, 0, 0}, {1, 1, 0}); });
  run(u"LINEA");
  ASSERT_TRUE(session.saveDrawing(at("prima.dxf")));
  const std::string before = content("prima.dxf");
  for (const char16_t* command : {u"VERTICI", u"FUORI"}) {
    run(command, {u"1,1", u"<esc>", u"2,2"});
    EXPECT_EQ(entities(), 1u) << "the line from before, and nothing posted";
    EXPECT_FALSE(session.isModified());
    EXPECT_EQ(session.takeLeaks(), "");
  }
  EXPECT_EQ(asked, 6) << "each answer, the cancel among them, and no question more";
  EXPECT_FALSE(inner);
  ASSERT_TRUE(session.saveDrawing(at("dopo.dxf")));
  EXPECT_EQ(content("dopo.dxf"), before);
  run(u"ANNULLA");
  EXPECT_EQ(entities(), 0u) << "the command before it is the one to take back";
}

TEST_F(EditorTest, AFileThatOthersChangedIsNotOverwrittenUnasked) {
  addCommand(u"LINEA", [&] { drawLine({0, 0, 0}, {1, 1, 0}); });
  const std::string path = at("disegno.dxf");
  ASSERT_TRUE(session.saveDrawing(path));
  session.run(u"LINEA");
  run(u"SALVA");
  run(u"SALVA");
  EXPECT_TRUE(ui.messages.empty()) << "its own saves are no change by others";
  ASSERT_TRUE(platform::writeFile(path, "di altri"));
  session.run(u"LINEA");
  for (const std::string& same : {std::string(), path, folder_ + "/./disegno.dxf"}) {
    EXPECT_TRUE(session.changedOnDisk(same));
    const auto saved = session.saveDrawing(same);
    ASSERT_FALSE(saved);
    EXPECT_NE(saved.error().find("un altro programma ha cambiato il file"), std::string::npos);
  }
  EXPECT_FALSE(session.changedOnDisk(at("altro.dxf")));
  ui.presses = {Pressed::cancel};
  run(u"SALVA");
  EXPECT_EQ(ui.messages.size(), 1u);
  EXPECT_EQ(content("disegno.dxf"), "di altri");
  EXPECT_TRUE(session.isModified());
  // No saves under another name, which is the drawing's from then on.
  ui.presses = {Pressed::no};
  ui.path = platform::widen(at("altro.dxf"));
  run(u"SALVA");
  EXPECT_EQ(content("disegno.dxf"), "di altri");
  EXPECT_EQ(session.drawingPath(), at("altro.dxf"));
  ASSERT_TRUE(platform::writeFile(at("altro.dxf"), "di altri"));
  ui.presses = {Pressed::yes};
  run(u"SALVA");
  EXPECT_NE(content("altro.dxf").find("SECTION"), std::string::npos);
  EXPECT_EQ(content("altro.dxf.bak"), "di altri");
  ASSERT_TRUE(platform::writeFile(at("altro.dxf"), "di altri"));
  EXPECT_TRUE(session.saveDrawing("", Overwrite::always));
  std::filesystem::remove(at("altro.dxf"));
  EXPECT_TRUE(session.saveDrawing("")) << "a file that is gone is nobody's";
}

TEST_F(EditorTest, ACommandIsOneStepOfUndo) {
  addCommand(u"UNA", [&] { drawLine({0, 0, 0}, {1, 1, 0}); });
  addCommand(u"DUE", [&] {
    drawLine({0, 0, 0}, {2, 2, 0});
    resbuf* name = acutBuildList(RTSTR, u"una", RTNONE);
    EXPECT_EQ(acedCmd(name), RTNORM);
    acutRelRb(name);
  });
  const auto entities = [&] { return drawing().index().allInSpace().size(); };
  session.run(u"UNA");
  session.run(u"DUE");
  run(u"LISTA", {u"tutto", u"<invio>"});
  EXPECT_EQ(entities(), 3u);
  EXPECT_EQ(run(u"U"), u"\nAnnullato: DUE") << "what only looked left no mark";
  EXPECT_EQ(entities(), 1u);
  EXPECT_EQ(run(u"ANNULLA"), u"\nAnnullato: UNA");
  EXPECT_EQ(run(u"UNDO"), u"\nNulla da annullare.");
  EXPECT_EQ(run(u"REDO"), u"\nRipristinato: UNA");
  EXPECT_EQ(run(u"RIPRISTINA"), u"\nRipristinato: DUE");
  EXPECT_EQ(run(u"REDO"), u"\nNulla da ripristinare.");
  EXPECT_EQ(entities(), 3u);
}

TEST_F(EditorTest, ACommandThatRunsOutOfMemoryEndsAloneAndCanBeTakenBack) {
  addCommand(u"TROPPO", [&] {
    drawLine({0, 0, 0}, {1, 1, 0});
    throw std::bad_alloc();
  });
  run(u"TROPPO");
  ASSERT_EQ(ui.complaints.size(), 1u);
  EXPECT_EQ(ui.complaints[0], u"Memoria esaurita: comando interrotto.");
  EXPECT_EQ(session.runningHandle(), 0);
  EXPECT_EQ(run(u"U"), u"\nAnnullato: TROPPO");
  EXPECT_TRUE(drawing().index().allInSpace().empty());
}

TEST_F(EditorTest, VariablesAndSymbolsOfTheSession) {
  const auto get = [](std::u16string_view name, int kind) {
    resbuf value{};
    value.restype = static_cast<short>(kind);
    const int answer = acedGetVar(name, &value);
    std::u16string text = answer == RTNORM ? u"" : u"<none>";
    if (answer == RTNORM && kind == RTSTR) {
      text = value.resval.rstring;
      acutSetText(&value, u"");
      delete[] value.resval.rstring;
    }
    if (answer == RTNORM && kind == RTREAL) text = platform::format(u"%g", value.resval.rreal);
    return text;
  };
  EXPECT_EQ(get(u"dwgname", RTSTR), u"Disegno1.dxf");
  EXPECT_EQ(get(u"DWGPREFIX", RTSTR), u"");
  ASSERT_TRUE(session.saveDrawing(at("città.dxf")));
  EXPECT_EQ(get(u"DwgName", RTSTR), u"città.dxf");
  EXPECT_EQ(get(u"DWGPREFIX", RTSTR), platform::widen(folder_ + "/"));
  EXPECT_EQ(get(u"ACADVER", RTSTR), u"23.2s");
  EXPECT_EQ(get(u"CLAYER", RTSTR), u"0");
  EXPECT_EQ(get(u"NOSUCHVAR", RTSTR), u"<none>");
  session.variables[u"APERTURE"] = u"2.5";
  EXPECT_EQ(get(u"aperture", RTREAL), u"2.5");

  session.setSymbol(u"hn-cpath", u"/radice\\");
  resbuf* chain = nullptr;
  ASSERT_EQ(acedGetSym(u"HN-CPATH", &chain), RTNORM);
  EXPECT_EQ(std::u16string_view(chain->resval.rstring), u"/radice\\");
  EXPECT_EQ(acedPutSym(u"altro", chain), RTNORM);
  acutRelRb(chain);
  EXPECT_EQ(session.symbols[u"ALTRO"], u"/radice\\");
  EXPECT_EQ(acedPutSym(u"Altro", nullptr), RTNORM);
  EXPECT_EQ(acedGetSym(u"altro", &chain), RTERROR);
  EXPECT_EQ(chain, nullptr);
}

TEST_F(EditorTest, LayersAndViewByCommand) {
  run(u"LAYER", {u"n", u"Rete"});
  const auto state = [&](const char16_t* name) {
    const cad::Opened<AcDbLayerTableRecord> l(
        drawing().idOf(drawing().structure().layerNamed(name, false)));
    std::u16string out = l ? platform::format(u"%d", l->colorIndex()) : std::u16string(u"none");
    if (l && l->isFrozen()) out += u" frozen";
    if (l && l->isOff()) out += u" off";
    return out;
  };
  run(u"LAYER", {u"cong", u"RETE"});
  run(u"LAYER", {u"d", u"rete"});
  run(u"LAYER", {u"col", u"rete", u"255"});
  EXPECT_EQ(state(u"Rete"), u"255 frozen off");
  run(u"LAYER", {u"s", u"rete"});
  run(u"LAYER", {u"a", u"rete"});
  EXPECT_EQ(run(u"LAYER", {u"col", u"rete", u"256"}), u"\nIl colore è un numero da 1 a 255.");
  EXPECT_EQ(state(u"Rete"), u"255");
  EXPECT_EQ(run(u"LAYER", {u"c", u"congela", u"Manca"}), u"\nIl layer \"Manca\" non esiste.");
  EXPECT_EQ(ui.complaints.size(), 1u) << "c begins two options";
  run(u"LAYER", {u"i", u"Rete"});
  EXPECT_EQ(drawing().header().currentLayer(), u"Rete");

  drawLine({-3, 2, 0}, {7, 12, 5});
  run(u"ZOOM", {u"<invio>"});
  EXPECT_EQ(session.view.low.x, -3);
  EXPECT_EQ(session.view.high.y, 12);
  run(u"ZOOM", {u"f", u"5,1", u"@-2,8"});
  EXPECT_EQ(session.view.low.x, 3);
  EXPECT_EQ(session.view.low.y, 1);
  EXPECT_EQ(session.view.high.x, 5);
  EXPECT_EQ(session.view.high.y, 9);
  run(u"ZOOM", {u"f", u"1,1", u"<esc>"});
  run(u"ZOOM", {u"<esc>"});
  EXPECT_EQ(session.view.high.y, 9) << "a cancelled command changes nothing";
}

}  // namespace
