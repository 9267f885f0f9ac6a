#include "cad/ui/terminal_help.h"

#include "cad/ui/names.h"
#include "platform/format.h"
#include "platform/words.h"

namespace cad::ui {

using platform::format;
using platform::words;
using std::u16string;
using std::u16string_view;

namespace {

template <class Show, class Value>
u16string bounds(const std::optional<Value>& min, const std::optional<Value>& max, Show&& show) {
  if (min && max) return format(words(u" da %s a %s"), show(*min), show(*max));
  if (min) return format(words(u" da %s in su"), show(*min));
  if (max) return format(words(u" fino a %s"), show(*max));
  return {};
}

// What can be done with a control, and a line that does it; %d is its number.
struct Describe final : Visitor {
  u16string text, line;

  void visit(Text& c) override {
    const bool bounded = c.capacity() < 1000;
    text =
        bounded ? format(words(u"testo, al massimo %d caratteri"), c.capacity()) : words(u"testo");
    line = words(u"%d = testo");
  }
  void visit(Real& c) override {
    text = words(u"numero") + bounds(c.min(), c.max(), showReal);
    line = u"%d = 12.5";
  }
  void visit(Integer& c) override {
    text = words(u"numero intero") +
           bounds(c.min(), c.max(), [](auto value) { return format(u"%d", value); });
    line = u"%d = 3";
  }
  void visit(Choice& c) override {
    text = c.freeText() ? words(u"voce di un elenco, o testo") : words(u"voce di un elenco");
    std::vector<u16string> items;
    for (int i = 0; i < c.count(); ++i) items.push_back(c.item(i));
    if (!items.empty()) text += u": " + enumerated(items);
    line = u"%d = #1";
  }
  void visit(ListBox&) override {
    text = words(u"elenco: si sceglie una riga");
    line = u"%d[1]";
  }
  void visit(ReportList&) override {
    text = words(u"lista: si sceglie una riga, due asterischi per il doppio clic");
    line = u"%d[1] **";
  }
  void visit(RadioGroup& c) override {
    std::vector<u16string> items;
    for (int i = 0; i < c.count(); ++i) items.push_back(plainName(c.item(i)));
    text = format(words(u"una scelta tra %s"), enumerated(items));
    line = u"%d = #1";
  }
  void visit(Check&) override {
    text = words(u"casella: il numero da solo la inverte");
    line = u"%d";
  }
  void visit(TimePicker&) override {
    text = words(u"ora e minuti");
    line = u"%d = 8:30";
  }
  void visit(Button& c) override {
    text = c.role() == Role::ok       ? words(u"pulsante: conferma")
           : c.role() == Role::cancel ? words(u"pulsante: rinuncia")
           : c.role() == Role::help   ? words(u"pulsante: questo aiuto")
                                      : words(u"pulsante");
    line = u"%d";
  }
  void visit(Label&) override {}
  void visit(Grid&) override {
    text = words(u"griglia: riga e colonna di una cella, o la voce del suo menu");
    line = u"%d[1,#2] = 12.5";
  }
  void visit(Picture&) override {}
};

}  // namespace

u16string helpOf(const TerminalCard& card, Control& control) {
  Describe describe;
  control.accept(describe);
  const int number = card.numberOf(control);
  if (number == 0) return {};
  u16string text =
      format(u"%4d %s: %s", number, control.dialog().shownNameOf(control), describe.text);
  if (!control.enabled()) text += words(u" (disattivato)");
  return text + u"  -> " + format(describe.line, number) + u'\n';
}

u16string helpOf(const TerminalCard& card, const Dialog& dialog) {
  u16string text;
  for (Control* control : dialog.controls())
    if (control->visible()) text += helpOf(card, *control);
  return text +
         words(
             u"Al posto del numero vale il nome; 3 ? spiega un controllo solo, 3+ e 3- voltano le "
             u"pagine di una lista.\nGriglie: 3[1,Quota] = 4 scrive una cella, 3[2] > Elimina "
             u"Riga usa il menu, 3[1,#2..4,#3] sceglie celle.\nInvio da solo preme il pulsante "
             u"predefinito; <esc> chiude il dialogo senza conferma.\n");
}

u16string firstHelp() {
  return words(
      u"Si scrive il numero o il nome di un controllo e il suo valore, come 2 = 12.5; Invio da "
      u"solo "
      u"conferma, <esc> rinuncia, ? spiega.\n");
}

}  // namespace cad::ui
