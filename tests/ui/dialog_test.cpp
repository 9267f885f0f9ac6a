// The life of a dialog: field exchange, reopening, names, texts, views.
#include <gtest/gtest.h>

#include "cad/ui/card.h"
#include "cad/ui/gesture_line.h"
#include "tests/ui/sample_dialogs.h"

namespace {

using namespace sample;

TEST(FieldExchange, StopsAtTheFirstBadFieldWithEarlierOnesTransferred) {
  PipeDialog d;
  d.length = 10;
  auto played = play(d, R"(
    [Ramo]
    Nome del ramo = R1
    Diametro [mm] = dodici
    gg = 4
    OK
    ! Immettere un numero.
    Annulla)");
  EXPECT_EQ(played.error, "");
  EXPECT_EQ(played.outcome, Outcome::cancel);
  EXPECT_EQ(d.name.value(), u"R1");
  EXPECT_EQ(d.diameter.value(), 200);
  EXPECT_EQ(d.days.value(), 0) << "fields behind the bad one stay";
  EXPECT_EQ(d.focus(), &d.diameter);
}

TEST(FieldExchange, SaysWhatItWants) {
  PipeDialog d;
  d.length = 10;
  auto played = play(d, R"(
    [Ramo]
    Diametro [mm] = 0
    OK
    ! Immettere un numero compreso tra 0.0001 e 3000.
    Diametro [mm] = 3000,5
    OK
    !~ compreso tra
    Diametro [mm] = 3000
    gg = 1.5
    OK
    ! Immettere un numero intero.
    gg = 99999999999
    OK
    ! Immettere un numero intero.
    gg = 366
    OK
    ! Immettere un numero intero compreso tra 0 e 365.
    gg = " 365 "
    Abilita
    Lunghezza [m] = 0
    OK
    ![Ramo] Immettere un numero maggiore o uguale a 0.0001.
    Lunghezza [m] = 12,5
    OK)");
  EXPECT_EQ(played.error, "");
  EXPECT_EQ(played.outcome, Outcome::ok);
  EXPECT_EQ(d.diameter.value(), 3000);
  EXPECT_EQ(d.length.value(), 12.5);
  EXPECT_EQ(d.days.value(), 365);
  EXPECT_TRUE(d.custom.value());
}

TEST(FieldExchange, LinesLongerThanTheFieldAreRefusedAndNotCut) {
  PipeDialog d;
  EXPECT_EQ(play(d, "[Ramo]\nNome del ramo = 123456789").error,
            "prova.vsc:2: [Ramo] Nome del ramo = 123456789: Il testo supera i 8 caratteri del "
            "campo.");
}

TEST(FieldExchange, ChecksDisabledFieldsToo) {
  PipeDialog d;  // length 0, disabled, at least 0.0001
  EXPECT_EQ(play(d, "[Ramo]\nOK\n! Immettere un numero maggiore o uguale a 0.0001.\n<esc>").error,
            "");
}

TEST(FieldExchange, KeepsTheDigitsThatTheFieldDoesNotShow) {
  PipeDialog d;
  d.length = 10;
  d.diameter = 100.0 / 3.0;
  EXPECT_EQ(play(d, "[Ramo]\nDiametro [mm] ? 33.3333333333333\nOK").error, "");
  EXPECT_EQ(d.diameter.value(), 100.0 / 3.0);
}

TEST(FieldExchange, ComplaintsPassTheTranslator) {
  struct English : PipeDialog {
    std::u16string translate(std::u16string_view text) override {
      if (text == u"Immettere un numero maggiore o uguale a %s.") return u"At least %s, please.";
      return std::u16string(text);
    }
  } d;
  EXPECT_EQ(play(d, "[Ramo]\nOK\n! At least 0.0001, please.\n<esc>").error, "");
}

TEST(Life, ReopensWithLastValuesAndDeclaredFace) {
  PipeDialog d;
  d.length = 10;
  EXPECT_EQ(play(d, R"(
    [Ramo]
    Nome del ramo = R1
    Abilita = sì
    Lunghezza [m] ? (attivo)
    Materiale = PEAD
    Ora iniziale = 7:30
    OK)")
                .error,
            "");
  d.setTitle(u"Altro");
  EXPECT_EQ(play(d, R"(
    [Ramo]
    Nome del ramo ? R1
    Lunghezza [m] ? (disattivato)
    Abilita ? sì
    Materiale ? PEAD
    Ora iniziale ? 07:30
    Diametro [mm] = 7
    Materiale = Ghisa
    <esc>)")
                .error,
            "");
  EXPECT_EQ(play(d, "[Ramo]\nDiametro [mm] ? 200\nMateriale ? PEAD\nAnnulla").error, "")
      << "what was typed into a cancelled opening is forgotten";
}

TEST(Life, ListsAreFilledAnewAtEachOpening) {
  NetworkDialog d;
  const char* script = R"(
    [Selezionare una rete]
    Reti ? (voci) Acquedotto | Borgo | rete
    Reti ? Acquedotto
    Reti = RETE
    <invio>)";
  EXPECT_EQ(play(d, script).error, "");
  EXPECT_EQ(d.networks.shown(), u"rete");
  EXPECT_EQ(play(d, script).error, "");
}

TEST(Life, EndsInsideOnInitAndRefusesToOpenTwice) {
  struct Recursive : PipeDialog {
    Outcome inner = Outcome::ok;
    void onInit() override {
      inner = run(frontend());
      end(Outcome::ok);
    }
  } d;
  auto played = play(d, "");
  EXPECT_EQ(played.error, "") << "no front end is asked";
  EXPECT_EQ(played.outcome, Outcome::ok);
  EXPECT_EQ(d.inner, Outcome::cancel);
}

TEST(Life, OverriddenOkAndViewListener) {
  struct Stubborn : NameDialog {
    int asked = 0;
    void onOk() override {
      if (++asked == 2) NameDialog::onOk();
    }
  } d;
  struct View : DialogView {
    std::vector<Control*> changed;
    int ends = 0;
    Control* focus = nullptr;
    void controlChanged(Control& c) override { changed.push_back(&c); }
    void focusMoved(Control* c) override { focus = c; }
    void dialogEnded() override { ++ends; }
  } view;
  EXPECT_EQ(play(d, "[Materiale]\nFiltra\nFiltra").outcome, Outcome::ok);
  PipeDialog pipe;
  pipe.setView(&view);
  pipe.diameter = 3;
  pipe.setFocus(&pipe.days);
  EXPECT_EQ(view.changed, std::vector<Control*>{&pipe.diameter});
  EXPECT_EQ(view.focus, &pipe.days);
  pipe.end(Outcome::cancel);
  pipe.end(Outcome::ok);
  EXPECT_EQ(view.ends, 1);
  EXPECT_EQ(pipe.outcome(), Outcome::cancel);
}

TEST(Names, AreShortWhereUniqueAndWholeWhereDoubled) {
  QueryDialog d;
  EXPECT_EQ(d.nameOf(d.list), u"Elenco nodi");
  EXPECT_EQ(d.nameOf(d.pressureMin), u"Nodi/Pressione/> di");
  EXPECT_EQ(d.nameOf(d.pressureMax), u"< di");
  for (auto name : {u"Portata/> di", u"Nodi/Portata/> di", u"portata/ > DI"})
    EXPECT_EQ(*d.find(name), &d.flowMin) << platform::narrow(name);
  for (Control* control : d.controls()) EXPECT_EQ(*d.find(d.nameOf(*control)), control);
  EXPECT_EQ(d.find(u"> di").error(),
            "Il nome \"> di\" vale per più controlli: \"Nodi/Pressione/> di\", "
            "\"Nodi/Portata/> di\".");
  EXPECT_FALSE(d.find(u"Rami/> di"));
  EXPECT_FALSE(d.find(u""));
  PipeDialog pipe;
  EXPECT_EQ(pipe.find(u"Materiali").error(),
            "Il controllo \"Materiali\" non c'è; ci sono \"Nome del ramo\", \"Lunghezza [m]\", "
            "\"Abilita\", \"Diametro [mm]\", \"gg\", \"Materiale\", \"Ora iniziale\", \"OK\", "
            "\"Annulla\", \"?\".");
}

TEST(Names, TwinsInOneGroupAreCounted) {
  struct Twins : Dialog {
    Twins() : Dialog(u"Gemelli") {}
    Text a{this, u""}, b{this, u""};
    Button c{this, u"Nuovo..."}, e{this, u"Nuovo..."};
  } d;
  EXPECT_EQ(d.nameOf(d.b), u"Testo(2)");
  EXPECT_EQ(*d.find(u"Testo(2)"), &d.b);
  EXPECT_EQ(*d.find(u"Nuovo...(1)"), &d.c);
  EXPECT_FALSE(d.find(u"Nuovo...(3)"));
}

TEST(Texts, TranslatorReachesAllAndScriptsMayUseEitherTongue) {
  struct English : QueryDialog {
    void onInit() override {
      forEachText([](std::u16string& text) {
        if (text == u"Interroga Rete") text = u"Query";
        if (text == u"Pressione") text = u"Pressure";
        if (text == u"Filtra Nodi") text = u"Filter";
        if (text == u"Nodo") text = u"Node";
        if (text == u"10") text = u"ten";
      });
      QueryDialog::onInit();
    }
  } d;
  EXPECT_EQ(play(d, R"(
    [Query]
    Elenco nodi ? (colonne) Node | Portata [l/s] | Pressione [m]
    Pressure/< di = 15
    Pressione/Filter
    Elenco nodi ? (righe) 1
    N° colori filtro = 10
    [Interroga Rete]
    N° colori filtro ? ten
    OK)")
                .error,
            "");
  EXPECT_EQ(play(d, "[Query]\nPressure/Filter\nOK").error, "") << "translated anew, not twice";
  PatternDialog data;
  data.forEachText([](std::u16string& text) { text += u"!"; });
  EXPECT_EQ(data.type.item(0), u"VOLUME") << "items that are data stay";
}

TEST(Card, TellsTheWholeDialog) {
  PipeDialog pipe;
  EXPECT_EQ(dialogCard(pipe), R"([Ramo] guida _Ramo_
  "&Nome del ramo": testo, al massimo 8 caratteri
  "Lunghezza [m]": numero, da 0.0001, = 0 (disattivato)
  "Abilita": casella, = no
  "Diametro [mm]": numero, da 0.0001, fino a 3000, = 200
  "gg": numero intero, da 0, fino a 365, = 0
  "Materiale": elenco a discesa: "Nessun Materiale", "PEAD", "Ghisa", = #1
  "Ora iniziale": ora e minuti, = 12:00
  "OK": pulsante di conferma, premuto da Invio
  "Annulla": pulsante di rinuncia
  "?": pulsante della guida
)");
  QueryDialog query;
  EXPECT_EQ(dialogCard(query), R"([Interroga Rete]
  gruppo "Nodi"
    "" detto "Elenco nodi": lista con le colonne "Nodo" (148), "Portata [l/s]" (100), "Pressione [m]" (100)
    gruppo "Pressione"
      "> di": numero, = 0
      "< di": numero, = 0
      "Filtra Nodi": pulsante
    gruppo "Portata"
      "> di": numero, = 0
      "Filtra Nodi": pulsante
  gruppo ""
    "N° colori filtro": scelta tra "5", "10", = #1
  "Filtra per Materiale": pulsante
  "Esporta": pulsante
  "Elimina...": pulsante
  "OK": pulsante di conferma
)");
  PatternDialog pattern;
  EXPECT_NE(dialogCard(pattern).find(
                "\"\": griglia con le colonne \"Periodo\" (50) non modificabile, "
                "\"Moltiplicatore\" (108), \"Nota\" (80), fisse 1, menu \"Copia\", \"Incolla\""),
            std::string::npos);
}

}  // namespace
