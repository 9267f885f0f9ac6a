// Lists, reports and grids at their edges: ties of order, empty lists, twins, selections that move.
#include <gtest/gtest.h>

#include "cad/ui/journal.h"
#include "tests/ui/sample_dialogs.h"

namespace {

using namespace sample;

std::string itemsOf(const ListControl& list) {
  std::u16string all;
  for (int i = 0; i < list.count(); ++i) all += list.item(i) + u'|';
  return platform::narrow(all);
}
std::string said(const Gesture& done) { return done ? "" : done.error(); }

// The journal of a dialog under a script, or the script's complaint.
std::string journalled(Dialog& d, std::string_view script) {
  std::string taken;
  Journal journal([&](std::u16string_view line) { taken += platform::narrow(line) + "\n"; });
  ScriptFrontend ui(script, "p");
  ui.setJournal(&journal);
  d.run(ui);
  journal.flush();
  return ui.finish() ? taken : ui.error();
}

struct ListsDialog : Dialog {
  ListsDialog() : Dialog(u"Elenchi") {}
  using C = ListsDialog;
  Choice sorted{
      this, u"S", {.items = {u"delta", u"Beta", u"beta", u"Alfa"}, .order = Order::sorted}};
  Choice closed{
      this, u"C", {.items = {u"P1", u"p1", u"P1", u"DN 100", u"DN 1000"}, .initial = 3}, &C::count};
  Choice open{
      this, u"L", {.items = {u"None", u"Age"}, .freeText = true, .translate = false}, &C::count};
  ListBox box{this, u"B", {.items = {u"b", u"B", u"a", u"a"}, .initial = 2}, &C::count, &C::opened};
  RadioGroup radio{
      this, u"R", {.items = {u"&5 classi", u"", u"10"}, .pictures = {u"c5"}}, &C::count};
  RadioGroup off{this, u"N", {.items = {u"x"}, .initial = 1}};
  Choice none{this, u"V"};
  int counted = 0, openedRow = -1;
  void count() { ++counted; }
  void opened() { openedRow = box.selected(); }
};

TEST(ListRules, SortingIgnoresCaseKeepsSpellingAndTheOrderOfEquals) {
  ListsDialog d;
  EXPECT_EQ(itemsOf(d.sorted), "Alfa|Beta|beta|delta|");
  d.sorted.select(1);
  EXPECT_EQ(d.sorted.add(u"BETA"), 3) << "behind its equals";
  EXPECT_EQ(d.sorted.add(u"aA"), 0);
  EXPECT_EQ(d.sorted.add(u"zeta"), 6);
  EXPECT_EQ(d.sorted.text(), u"Beta") << "the selection goes on with its item";
  d.forEachText([](std::u16string& text) {
    text = text == u"aA" ? u"y" : text == u"Beta" ? u"zz" : text == u"None" ? u"?" : text;
  });
  EXPECT_EQ(itemsOf(d.sorted), "Alfa|beta|BETA|delta|y|zeta|zz|");
  EXPECT_EQ(d.sorted.text(), u"zz") << "also under a translated text";
  EXPECT_EQ(itemsOf(d.open), "None|Age|") << "data is not translated";
  d.sorted.setItems({u"c", u"B", u"a", u"b"});
  EXPECT_EQ(itemsOf(d.sorted), "a|B|b|c|");
  EXPECT_EQ(d.sorted.selected(), -1);
  d.sorted.clear();
  d.box.add(u"nuovo");
  EXPECT_EQ(play(d, "[Elenchi]\nS ? (voci) Alfa | Beta | beta | delta\nB ? (righe) 4\nB ? a\n<esc>")
                .error,
            "")
      << "each opening begins with the declared items";
}

TEST(ListRules, SearchesBeginBehindAnItemAndEndAtIt) {
  ListsDialog d;
  const std::tuple<const char16_t*, int, int, int> cases[] = {
      {u"p1", -1, 0, 0},   {u"P1", 0, 1, 1},          {u"P1", 2, 0, 0},       {u"P1", 4, 0, 0},
      {u"P1", 9, 0, 0},    {u"dn", -1, 3, -1},        {u"dn 1000", -1, 4, 4}, {u"DN 100", 3, 4, 3},
      {u"dn 1", 4, 3, -1}, {u"dn 10000", -1, -1, -1}, {u"", -1, -1, -1}};
  for (const auto& [text, after, begins, equals] : cases) {
    EXPECT_EQ(d.closed.find(text, after), begins) << platform::narrow(text) << after;
    EXPECT_EQ(d.closed.findExact(text, after), equals) << platform::narrow(text) << after;
  }
  EXPECT_EQ(d.none.find(u"a"), -1);
  EXPECT_EQ(d.none.insert(2, u"x"), -1);
  EXPECT_EQ(d.none.insert(0, u"x"), 0);
  for (const int index : {-1, 5}) {
    EXPECT_EQ(d.closed.item(index), u"");
    EXPECT_FALSE(d.closed.remove(index) || d.closed.choose(index) || d.box.choose(index) ||
                 d.box.doubleClick(index));
    EXPECT_EQ(d.closed.selected() + d.box.selected(), 5) << "a refused gesture changes nothing";
  }
}

TEST(ListRules, ADropDownShowsAnItemByItsBeginningAndTakesItByItsWholeText) {
  ListsDialog d;
  const std::tuple<const char16_t*, const char16_t*, const char16_t*> shown[] = {
      {u"dn 10", u"DN 100", u"dn 10"}, {u"dn 1000", u"DN 1000", u"dn 1000"}, {u"", u"DN 1000", u""},
      {u"ag", u"DN 1000", u"Age"},     {u"Agee", u"DN 1000", u"Agee"},       {u"P", u"P1", u"P"}};
  for (const auto& [text, closed, open] : shown) {
    d.closed = text;
    d.open = text;
    EXPECT_EQ(d.closed.text(), closed) << platform::narrow(text);
    EXPECT_EQ(d.open.text(), open) << platform::narrow(text);
    EXPECT_EQ(d.closed.value(), text) << "the value is what was assigned";
  }
  d.open.select(-1);
  EXPECT_EQ(d.open.text(), u"") << "a selection forgets what was typed";
  d.closed.setText(u"Trace");
  EXPECT_EQ(d.closed.text(), u"P1");
  EXPECT_EQ(d.counted, 0) << "code fires nothing";
  EXPECT_TRUE(d.closed.enter(u"p1"));
  EXPECT_EQ(d.closed.selected(), 1) << "the exact spelling first";
  EXPECT_FALSE(d.closed.enter(u"dn") || d.closed.enter(u"") || d.box.enter(u"c"));
  EXPECT_TRUE(d.box.enter(u"B") && d.box.selected() == 1 && d.box.enter(u"A") &&
              d.box.selected() == 2);
  EXPECT_TRUE(d.open.enter(u"AGE") && d.open.text() == u"Age" && d.open.enter(u"Ag") &&
              d.open.text() == u"Ag");
  EXPECT_TRUE(d.box.doubleClick(3) && d.openedRow == 3);
  EXPECT_EQ(d.counted, 5) << "a double click is its own gesture";
  EXPECT_EQ(said(d.box.enter(u"c")),
            "La voce c non è nell'elenco, che ha: \"b\", \"B\", \"a\", \"a\".");
  EXPECT_EQ(said(d.box.choose(4)),
            "La voce #5 non è nell'elenco, che ha: \"b\", \"B\", \"a\", \"a\".");
  EXPECT_EQ(said(d.none.choose(0)), "La voce #1 non è nell'elenco, che ha: niente.");
}

TEST(ListRules, RadioButtonsHaveOneOrNone) {
  ListsDialog d;
  EXPECT_EQ(d.radio.selected(), 0);
  EXPECT_EQ(d.off.selected(), -1);
  EXPECT_EQ(d.off.shown(), u"");
  EXPECT_TRUE(d.radio.choose(2) && d.radio.value() == 0);
  EXPECT_FALSE(d.radio.choose(3) || d.radio.choose(-1));
  EXPECT_EQ(d.radio.shown(), u"10");
  EXPECT_TRUE(d.radio.enter(u"5 CLASSI") && d.radio.selected() == 0)
      << "without the mark of its key";
  d.radio = 3;
  EXPECT_EQ(d.radio.value(), -1);
  d.radio = 1;
  EXPECT_EQ(d.radio.value(), 1);
  EXPECT_EQ(d.radio.picture(0) + d.radio.picture(1) + d.radio.picture(-1) + d.radio.item(3), u"c5");
}

// A line of the journal must bring back the very item that was taken.
TEST(ListRules, TheJournalTellsTwinsByTheirPlace) {
  ListsDialog d;
  EXPECT_EQ(journalled(d,
                       "[Elenchi]\nC = P1\nB = a\nC = #3\nC = p1\nC = DN 1000\nB = #4\nB[2]\nB[3] "
                       "**\nR = #2\nR = "
                       "10\n5 classi\nL = \"# \"\n<esc>"),
            "[Elenchi]\nC = #1\nB = #3\nC = #3\nC = #2\nC = DN 1000\nB = #4\nB = #2\nB[3] **\nR = "
            "#2\nR = 10\nR = "
            "&5 classi\nL = \"# \"\n<esc>\n");
  // Columns of one title, or of none, are told by their number.
  struct Twins : Dialog {
    Twins() : Dialog(u"G") {}
    Grid grid{this, u"T", {.columns = {{u"H"}, {u"h "}, {u""}, {u"Q [m]"}}}};
    void onInit() override { grid.setRowCount(3); }
  } twins;
  EXPECT_EQ(
      journalled(
          twins,
          "[G]\nT[1,#2] = a\nT[2,#3] = b\nT[2,Q [m]] = \"\"\nT[2,#1]\nT[1,#1..2,#2]\nT[2]\n<esc>"),
      "[G]\nT[1,#2] = a\nT[2,#3] = b\nT[2,Q [m]] = "
      "\"\"\nT[2,#1]\nT[1,#1..2,#2]\nT[2,#1..2,#4]\n<esc>\n");
}

TEST(ReportRules, RowsKeepTheirOrderAndTheSelectionItsHandler) {
  struct ReportDialog : Dialog {
    ReportDialog() : Dialog(u"Righe") {}
    ReportList list{this,
                    u"Nodi",
                    {.columns = {{u"&Nome", 50}, {u"Q"}}},
                    &ReportDialog::taken,
                    &ReportDialog::opened};
    int taken_ = 0, opened_ = 0;
    void taken() { ++taken_; }
    void opened() { ++opened_; }
    void onInit() override {
      for (ReportList::Row row : {ReportList::Row{u"N1", u"1"}, {u"N1", u"2", u"oltre"}, {}})
        list.addRow(row);
    }
  } d;
  d.onInit();
  EXPECT_TRUE(d.list.enter(u"N1") && d.list.selected() == 0) << "the first of equals";
  EXPECT_TRUE(d.list.enter(u"") && d.list.selected() == 2)
      << "a row without cells begins with nothing";
  EXPECT_EQ(said(d.list.enter(u"n1")), "Nessuna riga comincia con n1.") << "case counts";
  EXPECT_TRUE(d.list.doubleClick(1));
  EXPECT_EQ(said(d.list.doubleClick(3)), "La riga 4 non c'è: le righe sono 3.");
  EXPECT_EQ(said(d.list.doubleClick(-1)), "La riga 0 non c'è: le righe sono 3.");
  EXPECT_EQ(std::pair(d.taken_, d.opened_), std::pair(2, 1));
  d.list.addRow({u"N4"});
  EXPECT_EQ(d.list.selected(), 1) << "a new row at the end moves nothing";
  d.list.setBackground(Colour{1, 2, 3});
  d.list.setColumns({{u"Solo"}});
  d.list.setRows({{u"x"}});
  EXPECT_EQ(d.list.selected(), -1);
  EXPECT_EQ(d.list.background(), (Colour{1, 2, 3})) << "the colour is the list's, not the rows'";
  EXPECT_EQ(play(d, R"([Righe]
    Nodi ? (colonne) &Nome | Q
    Nodi ? (righe) 3
    Nodi ? (sfondo) nessuno
    Nodi[2] ? N1 | 2 | oltre
    Nodi[2,nome] ? N1
    Nodi[1,#2] ? 1
    <esc>)")
                .error,
            "");
}

TEST(GridRules, SelectionsCopiesAndMenus) {
  PatternDialog d;
  d.onInit();
  Grid& g = d.grid;
  for (int r = 1; r <= 4; ++r)
    for (int c = 1; c <= 2; ++c) g.setCell(r, c, platform::format(u"%d%d", r, c));
  g.paste(u"niente");
  using Cells = std::pair<Grid::Cell, Grid::Cell>;
  const auto selection = [&] { return Cells(g.selectionFrom(), g.selectionTo()); };
  EXPECT_TRUE(g.selectCells({3, 2}, {2, 1}));
  EXPECT_EQ(selection(), (Cells{{2, 1}, {3, 2}}));
  EXPECT_EQ(g.shown(), u"32") << "where the gesture began";
  EXPECT_EQ(g.copied(), u"21\t22\n31\t32\n");
  EXPECT_FALSE(g.selectCells({0, 1}, {2, 1}) || g.selectCells({1, 1}, {5, 1}) ||
               g.selectCells({1, 3}, {1, 1}));
  const auto menuAt = [&](Grid::Cell at) {
    EXPECT_TRUE(g.selectCells({2, 1}, {3, 2}));
    EXPECT_FALSE(g.chooseMenu({19, 1}, 2) || g.chooseMenu(at, 4) || g.chooseMenu(at, -1));
    EXPECT_TRUE(g.chooseMenu(at, 2));  // inserts a row
    return selection();
  };
  for (const Grid::Cell inside : {Grid::Cell{3, 1}, {2, 2}, {2, 1}, {3, 2}})
    EXPECT_EQ(menuAt(inside), (Cells{{2, 1}, {3, 2}}));
  for (const Grid::Cell out : {Grid::Cell{4, 1}, {1, 1}, {2, 0}})
    EXPECT_EQ(menuAt(out), (Cells{out, out}));
  EXPECT_EQ(g.rowCount(), 12);
  g.select({1, 1}, {11, 1});
  EXPECT_TRUE(g.deleteRow(1));
  EXPECT_FALSE(g.hasSelection()) << "its last row is gone";
  EXPECT_FALSE(g.deleteRow(11));
  EXPECT_TRUE(g.insertRow(11)) << "behind the last one";
  EXPECT_EQ(g.cell(10, 1) + g.cell(11, 1), u"41");
}

TEST(GridRules, TextsGoWhereTheyMayAndNowhereElse) {
  PatternDialog d;
  d.onInit();
  Grid& g = d.grid;
  const std::pair<const char16_t*, const char16_t*> pasted[] = {
      {u"a", u"a\t\n\t\n"},           {u"a\n\nb", u"a\t\n\t\n"}, {u"\tb\r\n", u"\tb\n\t\n"},
      {u"a\rb\nc", u"a\rb\t\nc\t\n"}, {u"", u"\t\n\t\n"},        {u"a\tb\tc", u"a\tb\n\t\n"}};
  for (const auto& [text, copied] : pasted) {
    g.setRowCount(1);
    g.setRowCount(5);
    g.select({2, 1}, {3, 2});
    g.paste(text);
    EXPECT_EQ(g.copied(), copied);
  }
  g.setFixedColumns(2);
  EXPECT_TRUE(g.editable(1, 2));
  EXPECT_FALSE(g.editable(1, 1) || g.editable(0, 2) || g.editable(5, 2));
  g.setCell(1, 1, u"codice");
  g.setCell(0, 2, u"Altra");
  g.setColumnTitle(3, u"x");
  EXPECT_EQ(g.cell(1, 1) + g.column(2).title, u"codiceAltra")
      << "code may write where the user may not";
  EXPECT_EQ(said(g.enterCell(1, 1, u"x")), "La cella 1,2 non si può modificare.");
  EXPECT_EQ(said(g.enterCell(5, 3, u"x")), "La cella 5,4 non c'è: le righe sono 4 e le colonne 3.");
  EXPECT_TRUE(g.enterCell(4, 2, u"y"));
  g.setRowCount(4);
  EXPECT_EQ(g.current(), (Grid::Cell{})) << "its cell is gone";
  g.setColumns({{u"Uno"}, {u"Due"}, {u"Tre"}, {u"Quattro"}});
  EXPECT_EQ(g.cell(1, 1) + g.cell(1, 3), u"codice");
  g.setRowCount(0);
  EXPECT_EQ(g.rowCount(), 1) << "the header stays";
}

}  // namespace
