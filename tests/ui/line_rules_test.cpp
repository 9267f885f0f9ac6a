// Lines of scripts part by part: signs, brackets, quotation marks, names, answers, and every
// refusal in the words that its writer reads.
#include <gtest/gtest.h>

#include "cad/ui/gesture_line.h"
#include "cad/ui/journal.h"
#include "cad/ui/names.h"
#include "tests/ui/sample_dialogs.h"

namespace {

using namespace sample;
using Texts = std::vector<std::u16string>;

TEST(NameRules, MarksBlanksAndColonsAreNoPartOfAName) {
  const std::pair<const char16_t*, const char16_t*> cases[] = {{u"&Nome", u"Nome"},
                                                               {u"A && B", u"A & B"},
                                                               {u"Fine&", u"Fine&"},
                                                               {u" a \t b\n", u"a b"},
                                                               {u"Quota :", u"Quota"},
                                                               {u"Quota:", u"Quota"},
                                                               {u":", u":"},
                                                               {u"a::", u"a:"},
                                                               {u"", u""},
                                                               {u"\u00A0x\u00A0y", u"x y"},
                                                               {u"& x", u"x"},
                                                               {u"A:b", u"A:b"}};
  for (const auto& [label, name] : cases) EXPECT_EQ(plainName(label), name);
  EXPECT_TRUE(sameName(u"&quota  [M]:", u"Quota [m]"));
  EXPECT_FALSE(sameName(u"Quota", u"Quota 2"));
}

TEST(NameRules, QuotationRoundTripsWhatLinesWouldLose) {
  const std::pair<const char16_t*, const char16_t*> cases[] = {
      {u"", u"\"\""},        {u"a b", u"a b"},   {u" a", u"\" a\""},
      {u"a\t", u"\"a\\t\""}, {u"#1", u"\"#1\""}, {u"\"", u"\"\\\"\""},
      {u"a\"b", u"a\"b"},    {u"a\\n", u"a\\n"}, {u"a\nb\r", u"\"a\\nb\\r\""},
      {u"\\ ", u"\"\\\\ \""}};
  for (const auto& [text, line] : cases) {
    EXPECT_EQ(quoted(text), line);
    EXPECT_EQ(unquoted(line), text);
  }
  EXPECT_EQ(unquoted(u"  a  "), u"a");
  EXPECT_EQ(unquoted(u"\"a\\qb\""), u"aqb");
  for (const char16_t* bad : {u"\"a", u"\"", u"\"a\"b", u"\"a\\\""})
    EXPECT_EQ(unquoted(bad), std::nullopt) << platform::narrow(bad);
  EXPECT_EQ(oneLine(u"a\r\nb\\nc\\"), u"a\\nb\\\\nc\\");
  Texts many(25, u"x");
  EXPECT_EQ(enumerated(many).substr(enumerated(many).size() - 10), u", \"x\", ...");
  many.pop_back();
  EXPECT_EQ(enumerated(many).back(), u'"');
  EXPECT_EQ(enumerated({}), u"niente");
  for (const char16_t* sign : {u"#a", u"[a", u"!a", u"@a", u":a", u"<a"})
    EXPECT_EQ(asAnswer(sign), u'"' + std::u16string(sign) + u'"');
  EXPECT_EQ(asAnswer(u"a#"), u"a#");
  EXPECT_EQ(asAnswer(u""), u"\"\"");
}

// What a line does to a dialog: "" or the refusal.
template <class D>
std::string did(D& d, std::u16string_view line) {
  const auto done = performLine(d, line);
  return done ? "" : done.error();
}

struct LinesDialog : Dialog {
  LinesDialog() : Dialog(u"Righe") {
    grid.setRowCount(4);
    for (int r = 1; r <= 3; ++r) grid.setCell(r, 1, platform::format(u"v%d", r));
    list.setRows({{u"a, b", u"1"}, {u"c", u"2"}});
  }
  Text plain{this, u"Testo", {.capacity = 4}};
  Choice choice{this, u"Tipo", {.items = {u"x", u"#2", u"z"}, .initial = 0}};
  ListBox box{this, u"Reti", {.items = {u"r1", u"r2"}}};
  RadioGroup one{this, u"Uno", {.items = {u"5", u"&10"}}};
  RadioGroup two{this, u"Due", {.items = {u"5", u"20"}}};
  ReportList list{this, u"Nodi [m]", {.columns = {{u"Nome"}, {u"Q [l/s]"}}}};
  PatternGrid grid{
      this, u"Griglia", {.columns = {{u"N", 50, true}, {u"V, m"}, {u"#1"}}, .fixedColumns = 1}};
  Check check{this, u"Casella"};
};

TEST(LineRules, SignsBracketsAndPlaces) {
  LinesDialog d;
  platform::Tokens lines(
      u"Testo = ? =;Testo ? ? =;Testo =;Testo ?;Testo ? \"\";  testo  =  \" x\"  ;Testo ? \" x\";"
      u"Tipo = #2;Tipo ? #2;Tipo = \"x\";Tipo = \"#2\";Tipo ? (voci) x | #2 | z;Tipo ? (righe) 3;"
      u"Uno = #2;Uno ? &10;20;Due ? 20;10;Uno ? (voci) 5 | &10;Reti[2];Reti ? r2;Reti[=r1];"
      u"Reti[1] ? r1;Nodi [m][=\"a, b\"];Nodi [m] ? a, b;Nodi [m][=a, b,Q [l/s]] ? 1;"
      u"Nodi [m][2,Q [l/s]] ? 2;Nodi [m][2] **;Nodi [m] ? c;Griglia[2,#2] = w;"
      u"Griglia[=w,#3] = k;Griglia[2,#3] ? k;Griglia ? (righe) 3;"
      u"Griglia ? (colonne) N | V, m | #1;Griglia[0] ? N | V, m | #1;Griglia[2..3];"
      u"Griglia[0] > inserisci riga;Griglia[1] > Elimina Riga;Griglia ? (righe) 2;"
      u"Casella = si;Casella;Casella ? no;Casella ? (attivo);Casella ? (visibile);",
      u";");
  while (const auto line = lines.next()) EXPECT_EQ(did(d, *line), "") << platform::narrow(*line);
  EXPECT_EQ(d.grid.cell(1, 1), u"w");
  EXPECT_EQ(d.grid.selectionFrom().column, 1) << "the menu over a row stands at its first cell";
}

TEST(LineRules, EveryRefusalSaysWhatIsWrong) {
  const std::pair<const char16_t*, const char*> cases[] = {
      {u"Testo = abcde", "Il testo supera i 4 caratteri del campo."},
      {u"Testo = \"abc", "Manca la virgoletta finale."},
      {u"Testo ? \"abc", "Manca la virgoletta finale."},
      {u"Testo ? abc", "\"Testo\" mostra \"\", non \"abc\"."},
      {u"Testo ? (righe) 1", "Il controllo non ha righe."},
      {u"Testo ? (menu)", "Il controllo non ha menu."},
      {u"Tipo ? (colonne) x", "Il controllo non ha colonne."},
      {u"Tipo ? (sfondo) x", "Il controllo non ha sfondo."},
      {u"Nodi [m] ? (voci) x", "Il controllo non ha voci."},
      {u"Nodi [m] ? (righe) 3", "\"Nodi [m]\" mostra \"2\", non \"3\"."},
      {u"Testo[1]", "Il controllo non ha righe."},
      {u"Testo[1] ? a", "Il controllo non ha righe."},
      {u"Reti **", "Manca la riga del doppio clic."},
      {u"Reti[3] **", "La voce #3 non è nell'elenco, che ha: \"r1\", \"r2\"."},
      {u"Reti[0]", "\"0\" non è un numero di riga."},
      {u"Reti[x]", "\"x\" non è un numero di riga."},
      {u"Reti[1000000001]", "\"1000000001\" non è un numero di riga."},
      {u"Reti[=r3]", "Nessuna riga ha \"r3\"."},
      {u"Reti[=\"r1]", "Manca la virgoletta finale."},
      {u"Reti[3] ? r", "La riga 3 non c'è: le righe sono 2."},
      {u"Reti[1] = r", "Solo le celle di una griglia si possono scrivere."},
      {u"Reti[1] > Copia", "Solo le righe di una griglia hanno un menu."},
      {u"Griglia > Copia", "Solo le righe di una griglia hanno un menu."},
      {u"Griglia[1] > Taglia",
       "La voce \"Taglia\" non è nel menu, che ha: \"Copia\", \"Incolla\", \"Inserisci Riga\", "
       "\"Elimina Riga\"."},
      {u"Griglia[1] = x", "Manca la colonna della cella."},
      {u"<appunti> ? x", "Il dialogo non è aperto."},
      {u"<appunti> = \"x", "Manca la virgoletta finale."},
      {u"Griglia[4,#2] ? x", "La riga 4 non c'è: le righe sono 3."},
      {u"Griglia[1,#4] = x", "La colonna \"#4\" non c'è; ci sono \"N\", \"V, m\", \"#1\"."},
      {u"Griglia[1,#0] = x", "La colonna \"#0\" non c'è; ci sono \"N\", \"V, m\", \"#1\"."},
      {u"Griglia[1,#1] = x", "La cella 1,1 non si può modificare."},
      {u"Griglia[-1]", "\"-1\" non è un numero di riga."},
      {u"Griglia[1..9]", "La selezione esce dalla griglia: le righe sono 3 e le colonne 3."},
      {u"Tipo = #0", "\"#0\" non è una posizione."},
      {u"Tipo = #x", "\"#x\" non è una posizione."},
      {u"Tipo = #4", "La voce #4 non è nell'elenco, che ha: \"x\", \"#2\", \"z\"."},
      {u"Casella ? (disattivato)", "\"Casella\" non è disattivato."},
      {u"Casella ? (nascosto)", "\"Casella\" non è nascosto."},
      {u"Casella = forse", "Rispondere sì oppure no."}};
  for (const auto& [line, error] : cases) {
    LinesDialog d;
    EXPECT_EQ(did(d, line), error) << platform::narrow(line);
  }
  LinesDialog d;
  EXPECT_NE(did(d, u"5").find("Il controllo \"5\" non c'è"), std::string::npos)
      << "two radio buttons say so";
  d.check.setEnabled(false);
  EXPECT_EQ(did(d, u"Casella ? (attivo)"), "\"Casella\" non è attivo.");
  d.check.setVisible(false);
  EXPECT_EQ(did(d, u"Casella ? (visibile)"), "\"Casella\" non è visibile.");
  EXPECT_EQ(did(d, u"Casella ? (nascosto)"), "");
  EXPECT_EQ(did(d, u"Casella ? no"), "") << "what is hidden can still be looked at";
}

// --- answers of scripts --------------------------------------------------------------------------

TEST(ScriptRules, MessagesAreMetByTextPartTitleAndButton) {
  const struct {
    const char* line;
    Buttons buttons;
    std::optional<Pressed> pressed;  // none: the script fails
  } cases[] = {{"! Salvare -> subito? -> No", Buttons::yesNo, Pressed::no},
               {"! Salvare -> subito? -> si", Buttons::yesNo, Pressed::yes},
               {"! Salvare -> subito? -> SÌ", Buttons::yesNoCancel, Pressed::yes},
               {"! Salvare -> subito? -> Annulla", Buttons::yesNoCancel, Pressed::cancel},
               {"! Salvare -> subito? -> Annulla", Buttons::yesNo, std::nullopt},
               {"! Salvare -> subito? -> OK", Buttons::okCancel, Pressed::ok},
               {"! Salvare -> subito?", Buttons::ok, Pressed::ok},
               {"! Salvare -> subito?", Buttons::okCancel, std::nullopt},
               {"!~ subito -> No", Buttons::yesNo, Pressed::no},
               {"!~ Subito -> No", Buttons::yesNo, std::nullopt},
               {"! subito? -> No", Buttons::yesNo, std::nullopt},
               {"![disegno] Salvare -> subito? -> No", Buttons::yesNo, Pressed::no},
               {"!~[Disegno] Salvare -> No", Buttons::yesNo, Pressed::no},
               {"![Rete] Salvare -> subito? -> No", Buttons::yesNo, std::nullopt},
               {"@ file", Buttons::ok, std::nullopt},
               {"OK", Buttons::ok, std::nullopt}};
  for (const auto& c : cases) {
    ScriptFrontend ui(c.line, "p");
    const Pressed pressed =
        ui.messageBox({u"Disegno", u" Salvare -> subito? ", Icon::question, c.buttons});
    EXPECT_EQ(pressed, c.pressed.value_or(defaultAnswer(c.buttons))) << c.line;
    EXPECT_EQ(ui.failed(), !c.pressed) << c.line << ui.error();
  }
}

TEST(ScriptRules, FilesAndPromptsAndWhatFollows) {
  const auto file = [](const char* line, FileQuestion::Mode mode) {
    ScriptFrontend ui(line, "p");
    const auto path = ui.askFile({mode, u"", u"proposta.inp", u"INP|*.inp|"});
    return path ? platform::narrow(*path) : ui.failed() ? ui.error() : "<none>";
  };
  constexpr auto open = FileQuestion::Mode::open, save = FileQuestion::Mode::save;
  EXPECT_EQ(file("@ \" a b.inp\"", open), " a b.inp");
  EXPECT_EQ(file("@<invio>", save), "proposta.inp");
  EXPECT_EQ(file("@ <esc>", save), "<none>");
  EXPECT_EQ(file("@", open),
            "p:1: manca il percorso del file, e è chiesto quale file aprire (INP|*.inp|)");
  EXPECT_EQ(file("@ \"a", save),
            "p:1: manca il percorso del file, e è chiesto in quale file salvare (INP|*.inp|)");
  EXPECT_EQ(file("a.inp", open),
            "p:1: lo script risponde: a.inp, ma è chiesto quale file aprire (INP|*.inp|)");
  {
    ScriptFrontend ui("\xE8 x\n  # nota\n\n\"a", "p");  // not UTF-8: Western letters
    EXPECT_EQ(ui.ask({Prompt::Kind::string, u"?", {}}).text, u"è x");
    EXPECT_TRUE(ui.hasAnswer());
    EXPECT_EQ(ui.ask({Prompt::Kind::string, u"?", {}}).status, Answer::Status::cancel);
    EXPECT_EQ(ui.error(), "p:4: manca la virgoletta finale");
    EXPECT_FALSE(ui.hasAnswer()) << "a script that failed answers nothing any more";
    EXPECT_EQ(ui.messageBox({u"", u"?", Icon::none, Buttons::yesNoCancel}), Pressed::yes);
    EXPECT_EQ(ui.askFile({}), std::nullopt);
  }
  {
    // Printed texts are looked for in order, each behind the one before.
    ScriptFrontend ui(": uno\n: due\n: uno\nfine", "p");
    ui.print(u"uno due");
    ui.help(u"tema");
    ui.print(u" uno");
    EXPECT_EQ(ui.ask({Prompt::Kind::string, u"?", {}}).text, u"fine");
    EXPECT_TRUE(ui.finish());
    ScriptFrontend wrong(": due\n: uno\nfine", "p");
    wrong.print(u"uno due");
    wrong.ask({Prompt::Kind::string, u"\nNome:", {}});
    EXPECT_EQ(wrong.error(),
              "p:2: non è stato scritto \"uno\"; è stato scritto \"Nome:\" e è chiesto \"Nome:\"");
  }
}

TEST(ScriptRules, AJournalKeepsWhatWasAnsweredAndNothingRefused) {
  Texts lines;
  Journal journal([&](std::u16string_view line) { lines.emplace_back(line); });
  ScriptFrontend ui("a\n<invio>\n<esc>\n! Va bene?\n! No? -> Annulla\n@ \" x\"\nb\nc", "p");
  ui.setJournal(&journal);
  const auto ask = [&] { ui.ask({Prompt::Kind::string, u"?", {}}); };
  for (int i = 0; i < 3; ++i) ask();
  ui.messageBox({u"T", u"Va bene?"});
  ui.messageBox({u"T", u"No?", Icon::none, Buttons::okCancel});
  ui.askFile({});
  journal.retract();  // a file is no answer that can be taken back
  ask();
  ask();
  ui.invalid(u"no");
  journal.flush();
  EXPECT_EQ(lines, (Texts{u"a", u"<invio>", u"<esc>", u"! Va bene?", u"! No? -> Annulla",
                          u"@ \" x\"", u"b"}));
}

}  // namespace
