#include "cad/ui/terminal_card.h"

#include <algorithm>

#include "cad/ui/names.h"
#include "platform/format.h"
#include "platform/text.h"
#include "platform/words.h"

namespace cad::ui {

using platform::format;
using std::u16string;
using std::u16string_view;

// --- columns of text -----------------------------------------------------------------------------

static int widthOf(u16string_view text) {
  int n = 0;
  for (char16_t c : text)
    if ((c & 0xFC00) != 0xDC00) ++n;
  return n;
}

// Cut to `width` with an ellipsis, or filled up with blanks.
static u16string fitted(u16string_view text, int width) {
  u16string line = oneLine(text);
  for (auto& c : line)
    if (c < u' ') c = u' ';
  if (widthOf(line) > width) {
    while (!line.empty() && widthOf(line) > std::max(width - 1, 0)) {
      if ((line.back() & 0xFC00) == 0xDC00) line.pop_back();
      line.pop_back();
    }
    if (width > 0) line += u'…';
  }
  return line + u16string(static_cast<std::size_t>(std::max(width - widthOf(line), 0)), u' ');
}

static u16string rightTrimmed(u16string text) {
  while (!text.empty() && text.back() == u' ') text.pop_back();
  return text;
}

static u16string rule(u16string_view title, int indent, int width) {
  u16string line =
      u16string(static_cast<std::size_t>(indent), u' ') + u"── " + u16string(title) + u' ';
  while (widthOf(line) < width) line += u'─';
  return line + u'\n';
}

static int depthOf(const Group* group) {
  int depth = 0;
  for (; group != nullptr; group = group->outer()) ++depth;
  return depth;
}

namespace {

// A table: titles, the rows of one page, marks in front of rows.
struct Table {
  std::vector<Column> columns;
  std::vector<std::vector<u16string>> rows;  // the page's
  std::vector<bool> marked;
  int first = 0;  // number of the first row shown
  int total = 0;
};

// Draws one control at a time.
class Painter final : public Visitor {
 public:
  Painter(int number, int width, int page) : number_(number), width_(width), page_(page) {}
  u16string out;

  void visit(Text& c) override { field(c, u'[' + c.shown() + u']'); }
  void visit(Real& c) override { field(c, u'[' + c.shown() + u']'); }
  void visit(Integer& c) override { field(c, u'[' + c.shown() + u']'); }
  void visit(Choice& c) override { field(c, u'<' + c.shown() + u"> ▾"); }
  void visit(TimePicker& c) override { field(c, u'[' + c.shown() + u']'); }
  void visit(Check& c) override {
    line((c.checked() ? u"[x] " : u"[ ] ") + plainName(c.label()), c);
  }
  void visit(Label& c) override { out += indent() + oneLine(c.shown()) + u'\n'; }
  void visit(Picture&) override {}
  void visit(Button& c) override { line(u"[ " + plainName(c.label()) + u" ]", c); }
  void visit(RadioGroup& c) override {
    if (!plainName(c.label()).empty()) line(plainName(c.label()), c);
    bool first = plainName(c.label()).empty();
    for (int i = 0; i < c.count(); ++i, first = false) {
      u16string text = (c.selected() == i ? u"(•) " : u"( ) ") + plainName(c.item(i));
      if (plainName(c.item(i)).empty()) text += format(u"#%d %s", i + 1, c.picture(i));
      if (first)
        line(text, c);
      else
        out += indent() + text + u'\n';
    }
  }
  void visit(ListBox& c) override {
    line(headOf(c), c);
    Table table;
    page(table, c.count(), 1);
    for (int i = table.first - 1; i < c.count() && i < table.first - 1 + TerminalCard::rowsPerPage;
         ++i)
      out += indent() + (c.selected() == i ? u"▸ " : u"  ") + fittedTail(c.item(i), 2) + u'\n';
    pageLine(table, TerminalCard::rowsPerPage);
  }
  void visit(ReportList& c) override {
    u16string head = headOf(c);
    if (c.background()) head += platform::words(u" (righe colorate)");
    line(head, c);
    Table table;
    table.columns = c.columns();
    page(table, c.count(), 1);
    for (int i = table.first - 1; i < c.count() && i < table.first - 1 + TerminalCard::rowsPerPage;
         ++i) {
      std::vector<u16string> cells;
      for (std::size_t k = 0; k < table.columns.size(); ++k)
        cells.push_back(c.cell(i, static_cast<int>(k)));
      table.rows.push_back(std::move(cells));
      table.marked.push_back(c.selected() == i);
    }
    draw(table);
  }
  void visit(Grid& c) override {
    line(headOf(c), c);
    Table table;
    for (int k = 0; k < c.columnCount(); ++k) table.columns.push_back(c.column(k));
    page(table, c.rowCount() - 1, 1);
    for (int r = table.first; r < c.rowCount() && r < table.first + TerminalCard::rowsPerPage;
         ++r) {
      std::vector<u16string> cells;
      for (int k = 0; k < c.columnCount(); ++k) cells.push_back(c.cell(r, k));
      table.rows.push_back(std::move(cells));
      table.marked.push_back(c.hasSelection() && r >= c.selectionFrom().row &&
                             r <= c.selectionTo().row);
    }
    draw(table);
  }

 private:
  static constexpr int gutter = 5;  // "  12 "
  u16string indent() const { return u16string(gutter, u' '); }
  u16string fittedTail(u16string_view text, int used) const {
    return rightTrimmed(fitted(text, width_ - gutter - used));
  }
  u16string headOf(const Control& c) const {
    u16string label = plainName(c.label());
    return label.empty() ? c.dialog().shownNameOf(c) : label;
  }
  static u16string state(const Control& c) {
    return c.enabled() ? u16string() : platform::words(u" (disattivato)");
  }
  void line(u16string_view text, const Control& c) {
    out += format(u"%4d ", number_) + u16string(text) + state(c) + u'\n';
  }
  void field(const Control& c, u16string_view value) {
    int labels = std::min(38, width_ / 2);
    u16string label = fitted(headOf(c), labels);
    int room = width_ - gutter - labels - 1 - widthOf(state(c));
    line(label + u' ' + rightTrimmed(fitted(value, room)), c);
  }
  void page(Table& table, int total, int base) {
    table.total = total;
    table.first = base + page_ * TerminalCard::rowsPerPage;
  }
  void pageLine(const Table& table, int rows) {
    if (table.total > rows)
      out += indent() + format(platform::words(u"righe %d-%d di %d: %d+ avanti, %d- indietro\n"),
                               table.first, std::min(table.first + rows - 1, table.total),
                               table.total, number_, number_);
    if (table.total == 0) out += indent() + platform::words(u"(vuota)\n");
  }
  void draw(const Table& table);

  int number_, width_, page_;
};

// Columns share the line by what they hold, and the widest ones give way when it is too narrow.
void Painter::draw(const Table& table) {
  std::vector<int> widths;
  int sum = 0;
  for (std::size_t k = 0; k < table.columns.size(); ++k) {
    int w = widthOf(plainName(table.columns[k].title));
    for (const auto& row : table.rows) w = std::max(w, widthOf(row[k]));
    widths.push_back(w);
    sum += w + 2;
  }
  int numbers = widthOf(format(u"%d", table.total));
  int room = width_ - gutter - numbers - 4;
  while (sum > room && !widths.empty()) {
    auto widest = std::max_element(widths.begin(), widths.end());
    if (*widest <= 4) break;
    --*widest;
    --sum;
  }
  u16string head = indent() + u16string(static_cast<std::size_t>(numbers + 4), u' ');
  for (std::size_t k = 0; k < widths.size(); ++k)
    head += fitted(plainName(table.columns[k].title), widths[k]) + u"  ";
  out += rightTrimmed(head) + u'\n';
  for (std::size_t r = 0; r < table.rows.size(); ++r) {
    u16string number = format(u"%d", table.first + static_cast<int>(r));
    u16string row = indent() + (table.marked[r] ? u"▸ " : u"  ");
    row += u16string(static_cast<std::size_t>(std::max(numbers - widthOf(number), 0)), u' ');
    row += number + u"  ";
    for (std::size_t k = 0; k < widths.size(); ++k)
      row += fitted(table.rows[r][k], widths[k]) + u"  ";
    out += rightTrimmed(row) + u'\n';
  }
  pageLine(table, TerminalCard::rowsPerPage);
}

// Which controls carry a number: those that a user can do something with.
struct TakesGestures final : Visitor {
  bool yes = true;
  void visit(Text&) override {}
  void visit(Real&) override {}
  void visit(Integer&) override {}
  void visit(Choice&) override {}
  void visit(ListBox&) override {}
  void visit(ReportList&) override {}
  void visit(RadioGroup&) override {}
  void visit(Check&) override {}
  void visit(TimePicker&) override {}
  void visit(Button&) override {}
  void visit(Label&) override { yes = false; }
  void visit(Grid&) override {}
  void visit(Picture&) override { yes = false; }
};

}  // namespace

// --- the card
// --------------------------------------------------------------------------------------

TerminalCard::TerminalCard(Dialog& dialog, int width) : dialog_(dialog), width_(width) {
  for (Control* control : dialog.controls()) {
    TakesGestures takes;
    control->accept(takes);
    if (takes.yes) numbers_.push_back(control);
  }
}

Control* TerminalCard::numbered(int number) const {
  if (number < 1 || static_cast<std::size_t>(number) > numbers_.size()) return nullptr;
  return numbers_[static_cast<std::size_t>(number) - 1];
}

int TerminalCard::numberOf(const Control& control) const {
  auto at = std::find(numbers_.begin(), numbers_.end(), &control);
  return at == numbers_.end() ? 0 : static_cast<int>(at - numbers_.begin()) + 1;
}

static int rowsOf(const Control& control) {
  if (auto* list = dynamic_cast<const ListBox*>(&control)) return list->count();
  if (auto* report = dynamic_cast<const ReportList*>(&control)) return report->count();
  if (auto* grid = dynamic_cast<const Grid*>(&control)) return grid->rowCount() - 1;
  return 0;
}

void TerminalCard::turn(Control& control, int pages) {
  int last = std::max(0, (rowsOf(control) - 1) / rowsPerPage);
  page_[&control] = std::clamp(page_[&control] + pages, 0, last);
}

u16string TerminalCard::draw(Control& control) {
  if (!control.visible()) return {};
  turn(control, 0);  // a list that became shorter
  Painter painter(numberOf(control), width_, page_[&control]);
  control.accept(painter);
  return painter.out;
}

u16string TerminalCard::draw() {
  u16string out = u'\n' + rule(plainName(dialog_.title()), 0, width_);
  const Group* group = nullptr;
  u16string buttons;  // those that follow each other in one group share lines
  auto flush = [&] {
    if (!buttons.empty()) out += buttons + u'\n';
    buttons.clear();
  };
  for (Control* control : dialog_.controls()) {
    if (!control->visible()) continue;
    if (control->group() != group) {
      flush();
      group = control->group();
      if (group != nullptr && !plainName(group->title()).empty())
        out += rule(plainName(group->title()), 2 * depthOf(group), width_);
      else if (group == nullptr)
        out += u16string(static_cast<std::size_t>(width_), u'─') + u'\n';
    }
    auto* button = dynamic_cast<Button*>(control);
    if (button == nullptr) {
      flush();
      out += draw(*control);
      continue;
    }
    u16string text = rightTrimmed(draw(*button));
    text.pop_back();
    if (!buttons.empty() && widthOf(buttons) + widthOf(text) > width_) flush();
    buttons += text;
  }
  flush();
  return out;
}

}  // namespace cad::ui
