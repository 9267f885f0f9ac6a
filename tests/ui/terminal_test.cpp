// The terminal: what it shows and what it understands.
#include <gtest/gtest.h>

#include "cad/ui/terminal_frontend.h"
#include "tests/platform/scratch_folder.h"
#include "tests/ui/sample_dialogs.h"

namespace {

using namespace sample;

// A user who types the given lines; the transcript shows prompts, answers and output in order.
struct Typist {
  explicit Typist(std::vector<std::string> lines)
      : typed(std::move(lines)),
        ui(
            [this](const std::string& prompt,
                   const std::vector<std::string>& words) -> std::optional<std::string> {
              text += prompt;
              completions = words;
              if (next == typed.size()) return std::nullopt;
              text += typed[next] + "\n";
              return typed[next++];
            },
            [this](std::string_view out) { text += out; }) {}
  std::vector<std::string> typed, completions;
  std::size_t next = 0;
  std::string text;
  TerminalFrontend ui;
  bool says(std::string_view part) const { return text.find(part) != std::string::npos; }
};

TEST(Terminal, ShowsADialogAsACardAndTakesNumbersAndNames) {
  PipeDialog d;
  d.length = 10;
  Typist s(
      {"1 R1", "Diametro [mm] = abc", "3", "", "", "4 = 110", "6", "6 #2", "Piombo", "7 8:30", ""});
  EXPECT_EQ(d.run(s.ui), Outcome::ok);
  EXPECT_EQ(s.text, R"(
── Ramo ────────────────────────────────────────────────────────────────────────
   1 Nome del ramo                          []
   2 Lunghezza [m]                          [10] (disattivato)
   3 [ ] Abilita
   4 Diametro [mm]                          [200]
   5 gg                                     [0]
   6 Materiale                              <Nessun Materiale> ▾
   7 Ora iniziale                           [12:00]
   8 [ OK ]   9 [ Annulla ]  10 [ ? ]
Si scrive il numero o il nome di un controllo e il suo valore, come 2 = 12.5;
Invio da solo conferma, <esc> rinuncia, ? spiega.
Ramo> 1 R1
   1 Nome del ramo                          [R1]
Ramo> Diametro [mm] = abc
   4 Diametro [mm]                          [abc]
Ramo> 3
   2 Lunghezza [m]                          [10]
   3 [x] Abilita
Ramo> 
┌─ Ramo ───────────────────┐
│ (!) Immettere un numero. │
└──────────────────────────┘
[OK] 
   4 Diametro [mm]                          [abc]
Ramo> 4 = 110
   4 Diametro [mm]                          [110]
Ramo> 6
  #1   Nessun Materiale
  #2   PEAD
  #3   Ghisa
Ramo> 6 #2
   6 Materiale                              <PEAD> ▾
Ramo> Piombo
  Il controllo "Piombo" non c'è; ci sono "Nome del ramo", "Lunghezza [m]", "Abilita", "Diametro [mm]", "gg", "Materiale", "Ora iniziale", "OK", "Annulla", "?".
Ramo> 7 8:30
   7 Ora iniziale                           [08:30]
Ramo> 
)");
  EXPECT_EQ(d.diameter.value(), 110);
  EXPECT_EQ(d.material.value(), u"PEAD");
}

TEST(Terminal, PagesListsAndOpensRows) {
  QueryDialog d;
  d.rows = 30;
  Typist s({"1+", "1+", "1+", "1-", "1[14]", "1[31]", "1[14] **"});
  EXPECT_EQ(d.run(s.ui), Outcome::ok);
  EXPECT_EQ(d.openedName, u"N14");
  EXPECT_TRUE(
      s.says(R"(  ── Nodi ──────────────────────────────────────────────────────────────────────
   1 Elenco nodi
           Nodo  Portata [l/s]  Pressione [m]
        1  N1    1.000          10.5
)")) << s.text;
  EXPECT_TRUE(s.says("     righe 25-30 di 30: 1+ avanti, 1- indietro\nInterroga Rete> 1+\n"))
      << s.text;
  EXPECT_TRUE(s.says("     ▸ 14  N14   1.000          140.5\n"));
  EXPECT_TRUE(s.says("  La riga 31 non c'è: le righe sono 30.\n"));
  for (std::size_t at = 0; at < s.text.size();) {
    std::size_t end = s.text.find('\n', at);
    EXPECT_LE(platform::widen(s.text.substr(at, end - at)).size(), 80u);
    at = end + 1;
  }
}

TEST(Terminal, LeavesByWordEscapeAndEndOfInput) {
  for (const char* word : {"annulla", "<esc>", "\x1B"}) {
    QueryDialog d;  // has no button for it
    Typist s({word});
    EXPECT_EQ(d.run(s.ui), Outcome::cancel);
  }
  PatternDialog d;
  Typist s({"3[1,Moltiplicatore] = 4", "Griglia[2] > Elimina Riga", "?"});
  EXPECT_EQ(d.run(s.ui), Outcome::cancel);
  EXPECT_EQ(d.grid.rowCount(), 4);
  EXPECT_TRUE(s.says("Invio da solo preme il pulsante predefinito"));
  EXPECT_EQ(s.completions,
            (std::vector<std::string>{"Nome pattern", "Tipo Curva", "Griglia", "OK", "Annulla"}));
  EXPECT_EQ(s.ui.ask({Prompt::Kind::command, u"Comando: ", {}}).status, Answer::Status::end);
  EXPECT_TRUE(s.ui.ended());
}

TEST(Terminal, ExplainsControlsAndFitsTheWindow) {
  PipeDialog d;
  Typist s({"4 ?", "Materiale ?", "10", "<esc>"});
  int columns = 60;
  s.ui.setWindowWidth([&] { return columns; });
  EXPECT_EQ(d.run(s.ui), Outcome::cancel);
  EXPECT_TRUE(s.says("Ramo> 4 ?\n   4 Diametro [mm]: numero da 0.0001 a 3000  -> 4 = 12.5\nRamo>"))
      << s.text;
  EXPECT_TRUE(s.says("   6 Materiale: voce di un elenco: \"Nessun Materiale\"")) << s.text;
  EXPECT_TRUE(s.says("   3 Abilita: casella: il numero da solo la inverte  -> 3\n"))
      << "of the button";
  for (std::size_t at = 0; at < s.text.size();) {
    const std::size_t end = s.text.find('\n', at);
    EXPECT_LE(platform::widen(s.text.substr(at, end - at)).size(), 60u);
    at = end + 1;
  }
  PipeDialog again;
  Typist wide({"<esc>"});
  wide.ui.setWindowWidth([] { return 100; });
  again.run(wide.ui);
  EXPECT_EQ(platform::widen(wide.text.substr(1, wide.text.find('\n', 1) - 1)).size(), 100u);
}

class TerminalFiles : public platform::ScratchFolder {};

TEST_F(TerminalFiles, AreReplacedAfterAQuestion) {
  const std::string there = at("rete.inp"), other = at("altra.inp");
  ASSERT_TRUE(platform::writeFile(there, "testo"));
  FileQuestion save{FileQuestion::Mode::save, u"", u"", u""};
  Typist s({there, "n", other, there, "s", there});
  EXPECT_EQ(s.ui.askFile(save), platform::widen(other));
  EXPECT_TRUE(s.says("esiste già. Sostituirlo?")) << s.text;
  EXPECT_EQ(s.ui.askFile(save), platform::widen(there));
  EXPECT_EQ(s.ui.askFile(save), std::nullopt) << "the input has ended: nothing is replaced";
}

TEST(Terminal, AsksMessagesFilesAndPrompts) {
  Typist s({"forse", "si", "n", "", "rete.inp", "", "<esc>", " due parole ", " x ", "", "s"});
  Message question{u"", u"Cancellare il pattern?", Icon::question, Buttons::yesNo};
  EXPECT_EQ(s.ui.messageBox(question), Pressed::yes);
  EXPECT_EQ(s.ui.messageBox(question), Pressed::no);
  EXPECT_EQ(s.ui.messageBox({u"Attenzione", u"Impostare una rete come predefinita!"}), Pressed::ok);
  FileQuestion open{FileQuestion::Mode::open, u"", u"*.inp", u"Epanet Files (*.inp)|*.inp|"};
  EXPECT_EQ(s.ui.askFile(open), u"rete.inp");
  EXPECT_EQ(s.ui.askFile(open), std::nullopt);
  EXPECT_EQ(s.ui.askFile(open), std::nullopt);
  EXPECT_EQ(s.ui.ask({Prompt::Kind::string, u"\nNome: ", {}, true}).text, u" due parole ");
  EXPECT_EQ(s.ui.ask({Prompt::Kind::string, u"\nNome: ", {}}).text, u"x");
  EXPECT_EQ(s.ui.ask({Prompt::Kind::string, u"\nNome: ", {}}).status, Answer::Status::none);
  EXPECT_EQ(s.ui.ask({Prompt::Kind::keyword, u"\nElemento\n[Nodo/Serbatoio]: ", {u"N", u"S"}}).text,
            u"s");
  EXPECT_EQ(s.completions, (std::vector<std::string>{"N", "S"}));
  EXPECT_TRUE(s.says("File da aprire (*.inp): rete.inp\n")) << s.text;
  EXPECT_TRUE(s.says("Elemento\n[Nodo/Serbatoio]: s\n")) << s.text;
}

TEST(Terminal, EscPressesTheButtonThatRefuses) {
  const std::pair<Buttons, Pressed> cases[] = {{Buttons::ok, Pressed::ok},
                                               {Buttons::okCancel, Pressed::cancel},
                                               {Buttons::yesNo, Pressed::no},
                                               {Buttons::yesNoCancel, Pressed::cancel}};
  for (const auto& [buttons, refusal] : cases) {
    for (const char* key : {"\x1B", " <esc> "}) {
      Typist s({key});
      EXPECT_EQ(s.ui.messageBox({u"", u"Come?", Icon::question, buttons}), refusal);
    }
    Typist enter({""});
    EXPECT_EQ(enter.ui.messageBox({u"", u"Come?", Icon::question, buttons}), answersOf(buttons)[0]);
  }
}

TEST(Terminal, APersonsEndOfInputEndsOneQuestion) {
  Typist s({});
  s.ui.setPerson(true);
  const Prompt prompt{Prompt::Kind::command, u"Comando: ", {}};
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(s.ui.ask(prompt).status, Answer::Status::end);
    EXPECT_FALSE(s.ui.ended()) << i;
  }
  s.typed = {"LINEA"};
  EXPECT_EQ(s.ui.ask(prompt).text, u"LINEA");
  for (int i = 0; i < 3; ++i) s.ui.ask(prompt);
  EXPECT_FALSE(s.ui.ended()) << "those before the answer do not count";
  s.ui.ask(prompt);
  EXPECT_TRUE(s.ui.ended());
  Typist piped({});
  piped.ui.ask(prompt);
  EXPECT_TRUE(piped.ui.ended());
}

TEST(Terminal, ShowsControlCharactersAndObeysNone) {
  Typist s({"", ""});
  s.ui.print(u"uno\x1B[2J\n");
  s.ui.messageBox({u"", u"due\x9B"});
  s.ui.ask({Prompt::Kind::string, u"\ntre\x1B]0;x\a: ", {}});
  EXPECT_TRUE(s.says("uno␛[2J\n")) << s.text;
  EXPECT_TRUE(s.says("due<U+009B>")) << s.text;
  EXPECT_TRUE(s.says("tre␛]0;x␇: ")) << s.text;
  EXPECT_EQ(s.text.find('\x1B'), s.text.npos);
}

}  // namespace
