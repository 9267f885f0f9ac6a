// Fields, buttons and whole dialogs: bounds on both sides, order of checks, what is shown and kept.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "cad/ui/card.h"
#include "tests/ui/sample_dialogs.h"

namespace {

using namespace sample;
using Texts = std::vector<std::u16string>;

TEST(FieldRules, BoundsAreInAndTheirComplaintsNameThem) {
  static constexpr double huge = std::numeric_limits<double>::max();
  struct : Dialog {
    using Dialog::Dialog;
    Real low{this, u"r1", {.min = -1.5}};
    Real high{this, u"r2", {.max = 2.5}};
    Real both{this, u"r3", {.min = -1.0, .max = 1.0}};
    Real any{this, u"r4", {.min = -huge, .max = huge}};
    Integer least{this, u"i1", {.min = -5}};
    Integer most{this, u"i2", {.max = 7}};
    Integer within{this, u"i3", {.initial = 2, .min = 2, .max = 4}};
    Integer free{this, u"i4"};
  } d(u"Limiti");
  // Each text that is refused, with the words; then one that is taken.
  const char* const refused[][3] = {
      {"r1 = -1.5000001", "numero maggiore o uguale a -1.5.", "r1 = -1.5"},
      {"r2 = 2.5000001", "numero minore o uguale a 2.5.", "r2 = 2,5"},
      {"r3 = 1.01", "numero compreso tra -1 e 1.", "r3 = 1"},
      {"r3 = -1.01", "numero compreso tra -1 e 1.", "r3 = -1"},
      {"r4 = ", "numero.", "r4 = 1e12"},
      {"r4 = 1e999", "numero.", "r4 = 0"},
      {"r4 = 1 2", "numero.", "r4 = -1e308"},
      {"i1 = -6", "numero intero maggiore o uguale a -5.", "i1 = -5"},
      {"i2 = 8", "numero intero minore o uguale a 7.", "i2 = 7"},
      {"i3 = 1", "numero intero compreso tra 2 e 4.", "i3 = 2"},
      {"i3 = 5", "numero intero compreso tra 2 e 4.", "i3 = 4"},
      {"i4 = 2147483648", "numero intero.", "i4 = 2147483647"},
      {"i4 = 3,0", "numero intero.", "i4 = 0"},
      {"i4 = -2147483649", "numero intero.", "i4 = -2147483648"}};
  std::string script = "[Limiti]\n";
  for (const auto& r : refused)
    script += std::string(r[0]) + "\n<invio>\n![Limiti] Immettere un " + r[1] + "\n" + r[2] + "\n";
  const auto played = play(d, script + "<invio>");
  EXPECT_EQ(played.error, "");
  EXPECT_EQ(played.outcome, Outcome::ok);
  for (const auto& [is, value] : {std::pair(d.low.value(), -1.5),
                                  {d.high.value(), 2.5},
                                  {d.both.value(), -1.0},
                                  {d.any.value(), -1e308}})
    EXPECT_EQ(is, value);
  EXPECT_EQ(std::vector<int>({d.least.value(), d.most.value(), d.within.value(), d.free.value()}),
            (std::vector<int>{-5, 7, 4, std::numeric_limits<int>::min()}));
}

TEST(FieldRules, NumbersAreShownAtEveryMagnitude) {
  std::string shown;
  for (const double v :
       {-1e15, 999999999999999.0, -999999999999999.5, 9.9e-11, -1e-10, 1.00000000000001,
        1.000000000000001, 1.0 / 3, 12345678.9012345678, 100.0, -1000.10, 1.5e20})
    shown += platform::narrow(showReal(v)) + ' ';
  EXPECT_EQ(shown,
            "-1e+15 999999999999999 -1000000000000000 9.9e-11 -0.0000000001 1.00000000000001 1 "
            "0.333333333333333 12345678.9012346 100 -1000.1 1.5e+20 ");
  struct : Dialog {
    using Dialog::Dialog;
    Text given{this, u"u", {.capacity = 3, .initial = u"abcd"}};
    Text tiny{this, u"v", {.capacity = 0}};
    TimePicker bad{this, u"w", {.initial = {24, 0}}}, late{this, u"x", {.initial = {23, 59}}};
  } d(u"F");
  EXPECT_EQ(d.given.value(), u"abc");
  d.given = u"xyzw";
  d.given.setShown(u"12345");
  EXPECT_EQ(d.given.shown(), u"123");
  EXPECT_EQ(d.given.value(), u"xyz") << "the value waits for the exchange";
  d.tiny = u"a";
  EXPECT_EQ(d.tiny.value(), u"");
  EXPECT_EQ(d.bad.shown() + d.late.shown(), u"00:0023:59");
}

TEST(FieldRules, TimesAndChecksGoRound) {
  PipeDialog d;
  for (const auto& [typed, shown] : {std::pair(u"0:0", u"00:00"),
                                     {u"23:59", u"23:59"},
                                     {u"7", u"07:00"},
                                     {u" 6 : 05 ", u"06:05"}}) {
    EXPECT_TRUE(d.start.enter(typed));
    for (const char16_t* bad : {u"23:-1", u"23:60", u"24", u":5", u"1.5:0"})
      EXPECT_FALSE(d.start.enter(bad));
    EXPECT_EQ(d.start.shown(), shown);
  }
  using Part = TimePicker::Part;
  std::u16string turns;
  for (const auto& [part, steps] : {std::pair(Part::hour, -7),
                                    {Part::hour, 1},
                                    {Part::minute, -6},
                                    {Part::minute, 1},
                                    {Part::minute, -61},
                                    {Part::hour, -24}}) {
    EXPECT_TRUE(d.start.spin(part, steps));
    turns += d.start.shown() + u' ';
  }
  EXPECT_EQ(turns, u"23:05 00:05 00:59 00:00 00:59 00:59 ");
  EXPECT_EQ(d.start.value(), (TimeOfDay{12, 0}));
  EXPECT_TRUE(d.start.set({23, 59}) && d.start.value() == (TimeOfDay{23, 59}));
  for (const TimeOfDay bad : {TimeOfDay{-1, 0}, {0, 60}, {0, -1}, {24, 0}})
    EXPECT_FALSE(d.start.set(bad));
  std::u16string checks;
  for (const char16_t* typed : {u"Sì", u"si", u"NO", u"SÌ", u"forse", u"", u"no"}) {
    checks += d.custom.enter(typed) ? u"" : u"!";
    checks += d.custom.shown() + u' ';
  }
  EXPECT_EQ(checks, u"sì sì no sì !sì !sì no ");
  d.custom.setChecked(true);
  EXPECT_FALSE(d.custom.value());
}

// --- buttons and keys --------------------------------------------------------------------------

// A dialog of buttons that say who was pressed.
struct Buttons3 : Dialog {
  explicit Buttons3(bool withDefault, bool withOk = true)
      : Dialog(u"Tasti", u"guida.htm"),
        preferred{this, u"B", {.isDefault = withDefault}, press(u'b')} {
    ok.setVisible(withOk);
  }
  Handler press(char16_t c) {
    return Handler([this, c] { pressed += c; });
  }
  Button first{this, u"A", press(u'a')};
  Button preferred;
  Button silent{this, u"S"};
  Button ok{this, u"OK", {.role = Role::ok}};
  Button second{this, u"OK2", {.role = Role::ok}, press(u'2')};
  Button cancel{this, u"Annulla", {.role = Role::cancel}, press(u'c')};
  Button help{this, u"?", {.role = Role::help}};
  std::u16string pressed;
  void onCancel() override {
    pressed += u'x';
    Dialog::onCancel();
  }
  void onOk() override {
    pressed += u'o';
    Dialog::onOk();
  }
  void onHelp() override {
    pressed += u'h';
    Dialog::onHelp();
  }
};

TEST(DialogRules, EnterEscapeAndTheRolesOfButtons) {
  Buttons3 d(true);
  EXPECT_TRUE(d.accept());
  EXPECT_EQ(d.pressed, u"b") << "the default button goes before OK";
  d.preferred.setEnabled(false);
  EXPECT_EQ(d.accept().error(), "Il controllo è disattivato.");
  EXPECT_TRUE(d.silent.press());
  EXPECT_TRUE(d.help.press());
  EXPECT_TRUE(d.cancel.press());
  EXPECT_EQ(d.pressed, u"bhc") << "a handler of its own takes the role's place";
  EXPECT_FALSE(d.ended());
  d.dismiss();
  EXPECT_EQ(d.pressed, u"bhcx") << "Esc is no press of the button";
  EXPECT_EQ(d.outcome(), Outcome::cancel);
  Buttons3 plain(false);
  EXPECT_TRUE(plain.accept());
  EXPECT_EQ(plain.pressed, u"o") << "the first OK button";
  EXPECT_EQ(plain.outcome(), Outcome::ok);
  Buttons3 hidden(false, false);
  EXPECT_EQ(hidden.accept().error(), "Il controllo è nascosto.");
  struct : Dialog {
    using Dialog::Dialog;
    Text text{this, u"T"};
  } bare(u"Nudo");
  EXPECT_EQ(play(bare, "[Nudo]\nT = a\n<invio>").outcome, Outcome::ok) << "without any button";
  EXPECT_EQ(bare.text.value(), u"a");
  EXPECT_EQ(play(bare, "[Nudo]\nT = b\n<esc>").outcome, Outcome::cancel);
  EXPECT_EQ(bare.text.value(), u"a");
}

TEST(DialogRules, HelpIsAnEventAndGesturesOfOtherKindsAreRefused) {
  Buttons3 d(false);
  EXPECT_EQ(play(d, "[Tasti]\n?\n: guida: guida.htm\nA\n<esc>").error, "");
  EXPECT_EQ(d.pressed, u"hax");
  PipeDialog p;
  EXPECT_EQ(p.ok.enter(u"x").error(), "Il controllo non accetta un testo.");
  EXPECT_EQ(p.name.press().error(), "Il controllo non si può premere.");
  EXPECT_EQ(p.name.choose(0).error(), "Il controllo non ha voci da scegliere.");
  EXPECT_EQ(p.material.doubleClick(0).error(), "Il controllo non ha righe da aprire.");
  p.name.setEnabled(false);
  p.name.setVisible(false);
  for (const auto& refused :
       {p.name.press(), p.name.enter(u"a"), p.name.choose(0), p.name.doubleClick(0)})
    EXPECT_EQ(refused.error(), "Il controllo è nascosto.") << "said before anything else";
}

TEST(DialogRules, QuestionsHaveTheirButtonsInOrder) {
  std::u16string words;
  for (const auto kind : {Buttons::ok, Buttons::okCancel, Buttons::yesNo, Buttons::yesNoCancel}) {
    for (const Pressed p : answersOf(kind)) (words += wordOf(p)) += u' ';
    ((((words += u"< ") += wordOf(defaultAnswer(kind))) += u' ') += wordOf(escapeAnswer(kind))) +=
        u"; ";
  }
  EXPECT_EQ(words,
            u"OK < OK OK; OK Annulla < OK Annulla; Sì No < Sì No; Sì No Annulla < Sì Annulla; ");
  const auto filters = [](std::u16string_view text) {
    std::u16string out;
    for (const FileFilter& f : filtersOf(text)) out += f.words + u'=' + f.pattern + u';';
    return out;
  };
  EXPECT_EQ(filters(u"A (*.a)|*.a|B|*.b|"), u"A (*.a)=*.a;B=*.b;");
  EXPECT_EQ(filters(u"A|*.a"), u"A=*.a;");
  EXPECT_EQ(filters(u"A||B|"), u"A=;B=;");
  EXPECT_EQ(filters(u"A"), u"");
  EXPECT_EQ(filters(u""), u"");
}

// Labels, titles and states begin anew at each opening; a view hears of every change once.
TEST(DialogRules, FacesAndViews) {
  struct View : DialogView {
    Texts events;
    void controlChanged(Control& c) override { events.push_back(c.declaredLabel()); }
    void titleChanged() override { events.push_back(u"*"); }
    void focusMoved(Control* c) override { events.push_back(c ? u"focus" : u"no focus"); }
    void dialogEnded() override { events.push_back(u"end"); }
  } view;
  QueryDialog d;
  d.setView(&view);
  d.save.setLabel(u"Salva");
  d.save.setEnabled(false);
  d.save.setVisible(false);
  d.list.addRow({u"a"});
  d.setTitle(u"Altro");
  d.setFocus(nullptr);
  d.end(Outcome::ok);
  EXPECT_EQ(view.events,
            (Texts{u"Esporta", u"Esporta", u"Esporta", u"", u"*", u"no focus", u"end"}));
  EXPECT_EQ(d.nameOf(d.save), u"Esporta") << "scripts know the declared label";
  EXPECT_EQ(*d.find(u"salva"), &d.save) << "and the shown one";
  EXPECT_EQ(play(d,
                 "[Interroga Rete]\nEsporta ? Esporta\nEsporta ? (attivo)\nEsporta ? "
                 "(visibile)\n<esc>")
                .error,
            "");
  EXPECT_GE(view.events.size(), 7u + d.controls().size())
      << "each control is shown anew when the dialog opens";
}

TEST(DialogRules, CardsTellRolesOrdersAndStates) {
  struct All : Dialog {
    All() : Dialog(u"Tutto") {}
    Choice c{this,
             u"C",
             {.items = {u"b", u"a"},
              .initial = 1,
              .order = Order::sorted,
              .freeText = true,
              .visible = false}};
    ListBox b{this, u"B", {.items = {u"x"}, .enabled = false}};
    Group g{this, u"G"};
    Group inner{&g, u"H"};
    Text t{&inner, u"T", {.initial = u" x"}};
    RadioGroup r{&g, u"R", {.items = {u"", u"y"}, .pictures = {u"p1"}, .initial = -1}};
    Label l{this, u"Nota"};
    Picture p{this, u"schema"};
    Button plain{this, u"P", {.isDefault = true}};
    Button help{this, u"H", {.role = Role::help}};
    Grid grid{this, u"Q", {.columns = {{u"A", 10}}}};
  } d;
  EXPECT_EQ(dialogCard(d), R"([Tutto]
  "C": elenco a discesa con testo libero ordinato: "a", "b", = #2 (nascosto)
  "B": elenco: "x" (disattivato)
  gruppo "G"
    gruppo "H"
      "T": testo, al massimo 255 caratteri, = " x"
    "R": scelta tra "" (figura p1), "y"
  "Nota": scritta
  "": figura schema
  "P": pulsante, premuto da Invio
  "H": pulsante della guida
  "Q": griglia con le colonne "A" (10)
)");
}

}  // namespace
