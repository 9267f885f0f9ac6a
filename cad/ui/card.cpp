#include "cad/ui/card.h"

#include "cad/ui/names.h"
#include "platform/format.h"
#include "platform/text.h"

namespace cad::ui {

using platform::format;
using std::u16string;
using std::u16string_view;

namespace {

// The part of a line behind the label.
class Describe final : public Visitor {
 public:
  u16string text;

  void visit(Text& c) override {
    text = format(u"testo, al massimo %d caratteri", c.capacity()) + initial(c.value());
  }
  void visit(Real& c) override {
    text = u"numero";
    if (c.min()) text += u", da " + showReal(*c.min());
    if (c.max()) text += u", fino a " + showReal(*c.max());
    text += u", = " + showReal(c.value());
  }
  void visit(Integer& c) override {
    text = u"numero intero";
    if (c.min()) text += format(u", da %d", *c.min());
    if (c.max()) text += format(u", fino a %d", *c.max());
    text += format(u", = %d", c.value());
  }
  void visit(Choice& c) override {
    text = c.freeText() ? u"elenco a discesa con testo libero" : u"elenco a discesa";
    list(c);
  }
  void visit(ListBox& c) override {
    text = u"elenco";
    list(c);
  }
  void visit(ReportList& c) override {
    text = u"lista con le colonne ";
    for (std::size_t i = 0; i < c.columns().size(); ++i) column(i, c.columns()[i]);
  }
  void visit(RadioGroup& c) override {
    text = u"scelta tra ";
    for (int i = 0; i < c.count(); ++i) {
      if (i > 0) text += u", ";
      text += u'"' + c.item(i) + u'"';
      if (!c.picture(i).empty()) text += u" (figura " + c.picture(i) + u")";
    }
    if (c.selected() >= 0) text += format(u", = #%d", c.selected() + 1);
  }
  void visit(Check& c) override { text = u"casella, = " + c.shown(); }
  void visit(TimePicker& c) override { text = u"ora e minuti, = " + c.shown(); }
  void visit(Button& c) override {
    text = u"pulsante";
    if (c.role() == Role::ok) text += u" di conferma";
    if (c.role() == Role::cancel) text += u" di rinuncia";
    if (c.role() == Role::help) text += u" della guida";
    if (c.isDefault()) text += u", premuto da Invio";
  }
  void visit(Label&) override { text = u"scritta"; }
  void visit(Grid& c) override {
    text = u"griglia con le colonne ";
    for (int i = 0; i < c.columnCount(); ++i) column(static_cast<std::size_t>(i), c.column(i));
    if (c.fixedColumns() > 0) text += format(u", fisse %d", c.fixedColumns());
    if (!c.menu().empty()) text += u", menu " + enumerated(c.menu());
  }
  void visit(Picture& c) override { text = u"figura " + c.picture(); }

 private:
  static u16string initial(const u16string& value) {
    return value.empty() ? u16string() : u", = " + quoted(value);
  }
  void list(const ListControl& c) {
    if (c.order() == Order::sorted) text += u" ordinato";
    for (int i = 0; i < c.count(); ++i) text += (i > 0 ? u", \"" : u": \"") + c.item(i) + u'"';
    if (c.selected() >= 0) text += format(u", = #%d", c.selected() + 1);
  }
  void column(std::size_t i, const Column& column) {
    if (i > 0) text += u", ";
    text += u'"' + column.title + u"\" " + format(u"(%d)", column.width);
    if (column.readOnly) text += u" non modificabile";
  }
};

}  // namespace

static std::size_t depthOf(const Group* group) {
  std::size_t depth = 0;
  for (; group != nullptr; group = group->outer()) ++depth;
  return depth;
}

// Titles of the groups that open between one control and the next.
static void openGroups(std::string& out, const Group* group, const Group* before) {
  if (group == nullptr) return;
  for (const Group* g = before; g != nullptr; g = g->outer())
    if (g == group) return;
  openGroups(out, group->outer(), before);
  out += std::string(2 * depthOf(group), ' ') + "gruppo \"" + platform::narrow(group->title()) +
         "\"\n";
}

std::string dialogCard(Dialog& dialog) {
  std::string out = "[" + platform::narrow(dialog.title()) + "]";
  if (!dialog.helpTopic().empty()) out += " guida " + platform::narrow(dialog.helpTopic());
  out += '\n';
  const Group* group = nullptr;
  for (Control* control : dialog.controls()) {
    openGroups(out, control->group(), group);
    group = control->group();
    Describe describe;
    control->accept(describe);
    u16string line = u'"' + control->label() + u'"';
    if (!control->givenName().empty()) line += u" detto \"" + control->givenName() + u'"';
    line += u": " + describe.text;
    if (!control->enabled()) line += u" (disattivato)";
    if (!control->visible()) line += u" (nascosto)";
    out += std::string(2 * depthOf(group) + 2, ' ') + platform::narrow(line) + '\n';
  }
  return out;
}

}  // namespace cad::ui
