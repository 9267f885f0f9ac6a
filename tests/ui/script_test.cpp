// Scripts: what they can do, and what they say when the program does something else.
#include <gtest/gtest.h>

#include "cad/ui/journal.h"
#include "tests/ui/sample_dialogs.h"

namespace {

using namespace sample;

TEST(Script, DrivesListsNestedDialogsMessagesAndFiles) {
  QueryDialog d;
  auto played = play(d, R"(# tutto insieme
    [Interroga Rete]
    Elenco nodi ? (righe) 3
    Elenco nodi[2] ? N2 | 1.000 | 20.5
    Elenco nodi[=N3,Pressione [m]] ? 30.5
    Pressione/> di = 15
    Pressione/< di = 25
    Pressione/Filtra Nodi
    Elenco nodi ? (righe) 1
    Elenco nodi ? (sfondo) 255,255,0
    Portata/Filtra Nodi
    ! Inserire un valore\nnumerico positivo!
    Filtra per Materiale
    [Materiale]
    Nome = #2
    Filtra
    [Interroga Rete]
    Esporta
    @ /tmp/Results.csv
    Elimina...
    ! Cancellare il pattern? -> No
    10
    N° colori filtro ? 10
    Elenco nodi[1] **)");
  EXPECT_EQ(played.error, "");
  EXPECT_EQ(played.outcome, Outcome::ok);
  EXPECT_EQ(d.openedName, u"N2");
  EXPECT_EQ(d.material, u"Ghisa");
  EXPECT_EQ(d.path, u"/tmp/Results.csv");
}

TEST(Script, DrivesGridsWithMenuAndClipboard) {
  PatternDialog d;
  auto played = play(d, R"(
    [Patterns/Curve]
    Griglia[1,Moltiplicatore] = 1.5
    Griglia[2,#2] = 2.5
    Griglia[1,#2..2,#2]
    Griglia[1,#2] > Copia
    Griglia[3,#2] > Incolla
    Griglia[4,#2] ? 2.5
    Griglia[4] ? 4 | 2.5 |
    Griglia[2] > Elimina Riga
    Griglia[1] > Inserisci Riga
    Griglia ? (righe) 4
    Griglia ? (menu) Copia | Incolla | Inserisci Riga | Elimina Riga
    Griglia[=1.5,Periodo] ? 2
    Tipo Curva = PUMP
    Griglia[1,Carico] = 9
    Griglia[0] > Inserisci Riga
    <appunti> ? "1.5\n2.5\n"
    <appunti> = "7\tuno\r\n8"
    Griglia[3,#2] > Incolla
    Griglia[3,Nota] ? uno
    Griglia[3,Nota] = "due\trighe\n"
    Griglia[3]
    Griglia[3] > Copia
    <appunti> ? "3\t7\tdue righe \n"
    OK)");
  EXPECT_EQ(played.error, "");
  std::u16string column;
  for (int r = 1; r < d.grid.rowCount(); ++r) column += d.grid.cell(r, 1) + u";";
  EXPECT_EQ(column, u"9;1.5;7;8;");
}

// Every way in which a script and a dialog can disagree, with the words that the user gets.
TEST(Script, FailsLoudlyInDialogs) {
  const struct {
    const char* script;
    const char* error;
  } cases[] = {
      {"", "prova.vsc:1: lo script è finito, ma è aperto il dialogo [Interroga Rete]"},
      {"\n\n[Altro]",
       "prova.vsc:3: lo script attende il dialogo [Altro], ma è aperto il dialogo "
       "[Interroga Rete]"},
      {"NETVIS",
       "prova.vsc:1: lo script risponde: NETVIS, ma è aperto il dialogo [Interroga Rete]"},
      {"[Interroga Rete]\n! Ciao",
       "prova.vsc:2: lo script attende il messaggio: ! Ciao, ma è aperto "
       "il dialogo [Interroga Rete]"},
      {"[Interroga Rete]\n[Materiale]",
       "prova.vsc:2: lo script attende il dialogo [Materiale], ma è "
       "aperto il dialogo [Interroga Rete]"},
      {"[Interroga Rete]\nColore = Rosso",
       "prova.vsc:2: [Interroga Rete] Colore = Rosso: Il controllo \"Colore\" non c'è; ci sono "
       "\"Elenco nodi\", \"Nodi/Pressione/> di\", \"< di\", \"Nodi/Pressione/Filtra Nodi\", "
       "\"Nodi/Portata/> di\", \"Nodi/Portata/Filtra Nodi\", \"N° colori filtro\", \"Filtra per "
       "Materiale\", \"Esporta\", \"Elimina...\", \"OK\"."},
      {"[Interroga Rete]\nN° colori filtro = 7",
       "prova.vsc:2: [Interroga Rete] N° colori filtro = 7: La voce 7 non c'è; ci sono: \"5\", "
       "\"10\"."},
      {"[Interroga Rete]\nElenco nodi[4]",
       "prova.vsc:2: [Interroga Rete] Elenco nodi[4]: La riga 4 non c'è: le righe sono 3."},
      {"[Interroga Rete]\nElenco nodi[1,Quota] ? 3",
       "prova.vsc:2: [Interroga Rete] Elenco nodi[1,Quota] ? 3: La colonna \"Quota\" non c'è; ci "
       "sono \"Nodo\", \"Portata [l/s]\", \"Pressione [m]\"."},
      {"[Interroga Rete]\nEsporta\nOK",
       "prova.vsc:3: lo script risponde: OK, ma è chiesto in quale "
       "file salvare (CSV Files (*.csv)|*.csv|)"},
      {"[Interroga Rete]\nElimina...\n! Cancellare il pattern?",
       "prova.vsc:3: al messaggio \"Cancellare il pattern?\" serve una risposta (\" -> \" e il "
       "pulsante): \"Sì\", \"No\""},
      {"[Interroga Rete]\nPortata/Filtra Nodi\n! Inserire",
       "prova.vsc:3: lo script attende il messaggio: ! Inserire, ma è comparso il messaggio "
       "\"Inserire un valore\\nnumerico positivo!\""},
      {"[Interroga Rete]\nPortata/Filtra Nodi\n![Attenzione] Inserire un valore\\nnumerico "
       "positivo!",
       "prova.vsc:3: lo script attende il messaggio: ![Attenzione] Inserire un valore\\nnumerico "
       "positivo!, ma il titolo è \"Interroga Rete\""},
      {"[Interroga Rete]\nOK\n\nfine\n# coda",
       "prova.vsc:4: lo script risponde: fine, ma il comando è finito"},
  };
  for (const auto& c : cases) {
    QueryDialog d;
    auto played = play(d, c.script);
    EXPECT_EQ(played.error, c.error);
    EXPECT_FALSE(d.open());
  }
}

TEST(Script, RefusesDisabledControlsAndUnwindsOutOfNestedOnes) {
  QueryDialog empty;
  empty.rows = 0;
  EXPECT_EQ(play(empty, "[Interroga Rete]\nElenco nodi[1]").error,
            "prova.vsc:2: [Interroga Rete] Elenco nodi[1]: Il controllo è disattivato.");
  QueryDialog d;
  auto played =
      play(d, "[Interroga Rete]\nFiltra per Materiale\n[Materiale]\nNome = Piombo\nFiltra");
  EXPECT_EQ(played.error,
            "prova.vsc:4: [Materiale] Nome = Piombo: La voce Piombo non è nell'elenco, che ha: "
            "\"PEAD\", \"Ghisa\".");
  EXPECT_EQ(played.outcome, Outcome::cancel);
  EXPECT_EQ(d.material, u"") << "the nested dialog was cancelled, not confirmed";
}

TEST(Script, AnswersPromptsAndWatchesTheOutput) {
  std::u16string shown;
  ScriptFrontend ui(
      "HNADDEPA\r\n10,20,0\n<invio>\n<esc>\n\"[A]\"\n: punto\n: \"terminata\\n\"\n  due parole  \n",
      "p", [&](std::u16string_view text) { shown += text; });
  auto ask = [&](std::u16string_view text) {
    return ui.ask({Prompt::Kind::string, std::u16string(text), {}});
  };
  EXPECT_EQ(ask(u"Comando:").text, u"HNADDEPA");
  EXPECT_EQ(ask(u"\nSelezionare un punto...").text, u"10,20,0");
  EXPECT_EQ(ask(u"?").status, Answer::Status::none);
  EXPECT_EQ(ask(u"?").status, Answer::Status::cancel);
  EXPECT_EQ(ask(u"?").text, u"[A]");
  ui.print(u"\nImportazione terminata\n");
  EXPECT_TRUE(ui.hasAnswer());
  EXPECT_EQ(ask(u"?").text, u"due parole");
  EXPECT_FALSE(ui.hasAnswer());
  EXPECT_TRUE(ui.finish());
  EXPECT_EQ(shown, u"\nImportazione terminata\n");
}

TEST(Script, FailsLoudlyAtPrompts) {
  {
    ScriptFrontend ui("[Nodo]\n", "p");
    EXPECT_EQ(ui.ask({Prompt::Kind::point, u"\nSelezionare un punto...", {}}).status,
              Answer::Status::cancel);
    EXPECT_EQ(ui.finish().error(),
              "p:1: lo script attende il dialogo [Nodo], ma è chiesto \"Selezionare un punto...\"");
  }
  {
    ScriptFrontend ui("12", "p");
    ui.ask({Prompt::Kind::point, u"Punto:", {}});
    ui.invalid(u"serve un punto x,y,z.");
    EXPECT_EQ(ui.error(), "p:1: la risposta non è valida: serve un punto x,y,z.");
    EXPECT_EQ(ui.messageBox({u"", u"Salvare?", Icon::none, Buttons::yesNo}), Pressed::yes);
    EXPECT_EQ(ui.error(), "p:1: la risposta non è valida: serve un punto x,y,z.")
        << "the first stays";
  }
  {
    ScriptFrontend ui(": terminata", "p");
    ui.print(u"\nNodi assenti");
    EXPECT_EQ(
        ui.finish().error(),
        "p:1: non è stato scritto \"terminata\"; è stato scritto \"Nodi assenti\" e il comando è "
        "finito");
  }
}

TEST(Script, LeavesWhoeverAsksWhatNobodyAnswers) {
  struct Left {};
  ScriptFrontend ui("1,2", "p");
  ui.setUnanswered([] { throw Left(); });
  const Prompt prompt{Prompt::Kind::point, u"Vertice:", {}};
  EXPECT_EQ(ui.ask(prompt).status, Answer::Status::ok);
  EXPECT_THROW(ui.ask(prompt), Left);
  EXPECT_THROW(ui.messageBox({u"", u"Salvare?", Icon::none, Buttons::yesNo}), Left);
  EXPECT_THROW(ui.askFile({}), Left);
  sample::PipeDialog dialog;
  EXPECT_THROW(dialog.run(ui), Left);
  EXPECT_FALSE(dialog.open()) << "so that it can be opened again";
}

TEST(Journal, ReplaysWhatWasDone) {
  std::string script = R"([Interroga Rete]
Nodi/Pressione/> di = 15
< di = 25
Nodi/Pressione/Filtra Nodi
Nodi/Portata/Filtra Nodi
! Inserire un valore\nnumerico positivo!
<appunti> = "a\nb"
Filtra per Materiale
[Materiale]
Nome = Ghisa
<esc>
N° colori filtro = 10
Esporta
@ <esc>
Elimina...
! Cancellare il pattern? -> No
Elenco nodi[1] **
)";
  std::string taken;
  Journal journal([&](std::u16string_view line) { taken += platform::narrow(line) + "\n"; });
  ScriptFrontend ui(script, "p");
  ui.setJournal(&journal);
  QueryDialog d;
  d.run(ui);
  journal.flush();
  EXPECT_TRUE(ui.finish());
  EXPECT_EQ(taken, script);
}

TEST(Journal, JoinsTypingAndForgetsRefusedAnswers) {
  std::vector<std::u16string> lines;
  Journal journal([&](std::u16string_view line) { lines.emplace_back(line); });
  ScriptFrontend ui(
      "[Ramo]\nNome del ramo = R\nNome del ramo = \" R1\"\nMateriale = PEAD\n"
      "Materiale = Ghisa\nAbilita\n<esc>\n12\n\"#1\"\n\"\"",
      "p");
  ui.setJournal(&journal);
  PipeDialog d;
  d.run(ui);
  ui.ask({Prompt::Kind::string, u"?", {}});
  journal.retract();
  ui.ask({Prompt::Kind::string, u"?", {}});
  ui.ask({Prompt::Kind::string, u"?", {}});
  journal.flush();
  EXPECT_TRUE(ui.finish());
  EXPECT_EQ(lines, (std::vector<std::u16string>{u"[Ramo]", u"Nome del ramo = \" R1\"",
                                                u"Materiale = PEAD", u"Materiale = Ghisa",
                                                u"Abilita = sì", u"<esc>", u"\"#1\"", u"\"\""}));
  EXPECT_EQ(asAnswer(u"[x]"), u"\"[x]\"");
  EXPECT_EQ(asAnswer(u"10,20"), u"10,20");
}

TEST(Script, SaysItsLanguageInFrontOfItsFirstLine) {
  EXPECT_EQ(languageOfScript("\n# a town\n  # Lingua:  it \nNEW\n"), "it");
  EXPECT_EQ(languageOfScript("#language: en\r\nNEW\r\n"), "en");
  EXPECT_EQ(languageOfScript("NEW\n# lingua: it\n"), "");
  EXPECT_EQ(languageOfScript(""), "");
}

}  // namespace
