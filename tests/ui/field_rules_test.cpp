// Fields, buttons and whole dialogs: bounds on both sides, order of checks, what is shown and kept.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "cad/ui/card.h"
#include "tests/ui/sample_dialogs.h"

namespace {

using namespace sample;
using Texts = std::vector<std::u16string>;

struct BoundsDialog : Dialog {
  BoundsDialog() : Dialog(u"Limiti") {}
  Real low{this, u"r1", {.min = -1.5}};
  Real high{this, u"r2", {.max = 2.5}};
  Real both{this, u"r3", {.min = -1.0, .max = 1.0}};
  Real any{this,
           u"r4",
           {.min = -std::numeric_limits<double>::max(), .max = std::numeric_limits<double>::max()}};
  Integer least{this, u"i1", {.min = -5}};
  Integer most{this, u"i2", {.max = 7}};
  Integer within{this, u"i3", {.initial = 2, .min = 2, .max = 4}};
  Integer free{this, u"i4"};
};

// What the exchange says of a text in a field, "" when it is taken, and the value afterwards.
template <class F>
std::pair<std::string, double> exchanged(F BoundsDialog::*field, const char16_t* text) {
  struct Said : Frontend {
    std::u16string text;
    Control* focus = nullptr;
    void print(std::u16string_view) override {}
    std::function<void()> act;
    void showDialog(Dialog& d) override {
      act();
      focus = d.focus();
      d.end(Outcome::cancel);
    }
    Pressed showMessage(const Message& m) override {
      EXPECT_EQ(m.icon, Icon::warning);
      EXPECT_EQ(m.title, u"Limiti");
      text = m.text;
      return Pressed::ok;
    }
    std::optional<std::u16string> showFileQuestion(const FileQuestion&) override { return {}; }
    Answer showPrompt(const Prompt&) override { return {}; }
    void showInvalid(std::u16string_view) override {}
  } ui;
  BoundsDialog d;
  bool taken = false;
  ui.act = [&] {
    EXPECT_TRUE((d.*field).enter(text));
    taken = d.updateData();
  };
  d.run(ui);
  EXPECT_EQ(taken, ui.text.empty());
  EXPECT_EQ(ui.focus, taken ? nullptr : &(d.*field));
  return {platform::narrow(ui.text), static_cast<double>((d.*field).value())};
}

TEST(FieldRules, BoundsAreInAndTheirComplaintsNameThem) {
  using B = BoundsDialog;
  const auto real = [](Real B::*f, const char16_t* text, const std::string& said, double value) {
    EXPECT_EQ(exchanged(f, text), std::pair(said, value)) << platform::narrow(text);
  };
  const std::string low = "Immettere un numero maggiore o uguale a -1.5.",
                    high = "Immettere un numero minore o uguale a 2.5.",
                    both = "Immettere un numero compreso tra -1 e 1.",
                    none = "Immettere un numero.";
  real(&B::low, u"-1.5", "", -1.5);
  real(&B::low, u"-1.5000001", low, 0);
  real(&B::low, u"1e12", "", 1e12);
  real(&B::high, u"2,5", "", 2.5);
  real(&B::high, u"2.5000001", high, 0);
  real(&B::high, u"-9", "", -9);
  real(&B::both, u"-1", "", -1);
  real(&B::both, u"1", "", 1);
  real(&B::both, u"1.01", both, 0);
  real(&B::both, u"-1.01", both, 0);
  real(&B::any, u"-1e308", "", -1e308);
  real(&B::any, u"", none, 0);
  real(&B::any, u"1e999", none, 0);
  real(&B::any, u"1 2", none, 0);
  const auto whole = [](Integer B::*f, const char16_t* text, const std::string& said, int value) {
    EXPECT_EQ(exchanged(f, text), std::pair(said, static_cast<double>(value)));
  };
  const std::string least = "Immettere un numero intero maggiore o uguale a -5.",
                    most = "Immettere un numero intero minore o uguale a 7.",
                    within = "Immettere un numero intero compreso tra 2 e 4.",
                    noWhole = "Immettere un numero intero.";
  whole(&B::least, u"-5", "", -5);
  whole(&B::least, u"-6", least, 0);
  whole(&B::most, u"7", "", 7);
  whole(&B::most, u"8", most, 0);
  whole(&B::within, u"4", "", 4);
  whole(&B::within, u"1", within, 2);
  whole(&B::within, u"5", within, 2);
  whole(&B::free, u"2147483647", "", 2147483647);
  whole(&B::free, u"-2147483648", "", std::numeric_limits<std::int32_t>::min());
  whole(&B::free, u"2147483648", noWhole, 0);
  whole(&B::free, u"-2147483649", noWhole, 0);
  whole(&B::free, u"3,0", noWhole, 0);
}

TEST(FieldRules, NumbersAreShownAtEveryMagnitude) {
  const std::pair<double, const char*> cases[] = {{-1e15, "-1e+15"},
                                                  {999999999999999, "999999999999999"},
                                                  {-999999999999999.5, "-1000000000000000"},
                                                  {9.9e-11, "9.9e-11"},
                                                  {-1e-10, "-0.0000000001"},
                                                  {1.00000000000001, "1.00000000000001"},
                                                  {1.000000000000001, "1"},
                                                  {0.333333333333333333, "0.333333333333333"},
                                                  {12345678.9012345678, "12345678.9012346"},
                                                  {100, "100"},
                                                  {-1000.10, "-1000.1"},
                                                  {1.5e20, "1.5e+20"},
                                                  {INFINITY, "inf"}};
  for (const auto& [value, text] : cases) EXPECT_EQ(platform::narrow(showReal(value)), text);
  PipeDialog d;
  d.days = -12;
  EXPECT_EQ(d.days.shown(), u"-12");
  d.diameter = 0.5;
  EXPECT_EQ(d.diameter.shown(), u"0.5");
  EXPECT_EQ(d.diameter.capacity(), 64u);
  EXPECT_EQ(d.name.capacity(), 8u);
  struct : Dialog {
    using Dialog::Dialog;
    Text plain{this, u"t"};
    Text given{this, u"u", {.capacity = 3, .initial = u"abcd"}};
    Text tiny{this, u"v", {.capacity = 0}};
    TimePicker bad{this, u"w", {.initial = {24, 0}}}, late{this, u"x", {.initial = {23, 59}}};
  } fields(u"F");
  EXPECT_EQ(fields.plain.capacity(), 255u);
  EXPECT_EQ(fields.given.value(), u"abc");
  fields.given = u"xyzw";
  EXPECT_EQ(fields.given.value(), u"xyz");
  fields.given.setShown(u"12345");
  EXPECT_EQ(fields.given.shown(), u"123");
  EXPECT_EQ(fields.given.value(), u"xyz") << "the value waits for the exchange";
  fields.tiny = u"a";
  EXPECT_EQ(fields.tiny.value(), u"");
  EXPECT_EQ(fields.bad.shown(), u"00:00");
  EXPECT_EQ(fields.late.shown(), u"23:59");
}

TEST(FieldRules, TimesAndChecksGoRound) {
  PipeDialog d;
  const struct {
    const char16_t* text;
    TimeOfDay time;
  } times[] = {{u"0:0", {0, 0}}, {u"23:59", {23, 59}}, {u"7", {7, 0}}, {u" 6 : 05 ", {6, 5}}};
  for (const auto& t : times) {
    EXPECT_TRUE(d.start.enter(t.text));
    EXPECT_EQ(d.start.time(), t.time);
  }
  for (const char16_t* bad : {u"23:-1", u"23:60", u"24", u":5", u"1.5:0"})
    EXPECT_FALSE(d.start.enter(bad)) << platform::narrow(bad);
  const struct {
    TimePicker::Part part;
    int steps;
    TimeOfDay after;
  } spins[] = {{TimePicker::Part::hour, -7, {23, 5}},    {TimePicker::Part::hour, 1, {0, 5}},
               {TimePicker::Part::minute, -6, {0, 59}},  {TimePicker::Part::minute, 1, {0, 0}},
               {TimePicker::Part::minute, -61, {0, 59}}, {TimePicker::Part::hour, -24, {0, 59}}};
  for (const auto& s : spins) {
    EXPECT_TRUE(d.start.spin(s.part, s.steps));
    EXPECT_EQ(d.start.time(), s.after) << s.steps;
  }
  EXPECT_EQ(d.start.value(), (TimeOfDay{12, 0}));
  EXPECT_TRUE(d.start.set({23, 59}));
  EXPECT_EQ(d.start.value(), (TimeOfDay{23, 59}));
  for (const TimeOfDay bad : {TimeOfDay{-1, 0}, {0, 60}, {0, -1}, {24, 0}})
    EXPECT_FALSE(d.start.set(bad));
  const struct {
    const char16_t* text;
    bool accepted, checked;
  } checks[] = {{u"Sì", true, true}, {u"si", true, true},     {u"NO", true, false},
                {u"SÌ", true, true}, {u"forse", false, true}, {u"", false, true},
                {u"no", true, false}};
  for (const auto& c : checks) {
    EXPECT_EQ(static_cast<bool>(d.custom.enter(c.text)), c.accepted) << platform::narrow(c.text);
    EXPECT_EQ(d.custom.checked(), c.checked);
  }
  EXPECT_FALSE(d.custom.value());
  d.custom.setChecked(true);
  EXPECT_FALSE(d.custom.value());
  EXPECT_EQ(d.custom.shown(), u"sì");
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
  const struct {
    Buttons buttons;
    std::vector<Pressed> answers;
    const char16_t* words;
  } cases[] = {
      {Buttons::ok, {Pressed::ok}, u"OK "},
      {Buttons::okCancel, {Pressed::ok, Pressed::cancel}, u"OK Annulla "},
      {Buttons::yesNo, {Pressed::yes, Pressed::no}, u"Sì No "},
      {Buttons::yesNoCancel, {Pressed::yes, Pressed::no, Pressed::cancel}, u"Sì No Annulla "}};
  for (const auto& c : cases) {
    EXPECT_EQ(answersOf(c.buttons), c.answers);
    std::u16string words;
    for (const Pressed p : answersOf(c.buttons)) (words += wordOf(p)) += u' ';
    EXPECT_EQ(words, c.words);
    EXPECT_EQ(defaultAnswer(c.buttons), c.answers.front());
    EXPECT_EQ(escapeAnswer(c.buttons), c.answers.back());
  }
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
