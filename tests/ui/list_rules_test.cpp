// Lists, reports and grids at their edges: ties of order, empty lists, twins, selections that move.
#include <gtest/gtest.h>

#include "cad/ui/journal.h"
#include "tests/ui/sample_dialogs.h"

namespace {

using namespace sample;
using Texts = std::vector<std::u16string>;

template <class List>
Texts itemsOf(const List& list) {
  Texts all;
  for (int i = 0; i < list.count(); ++i) all.push_back(list.item(i));
  return all;
}

struct ListsDialog : Dialog {
  ListsDialog() : Dialog(u"Elenchi") {}
  Choice sorted{
      this,
      u"Ordinato",
      {.items = {u"delta", u"Beta", u"beta", u"Alfa"}, .initial = 1, .order = Order::sorted}};
  Choice closed{this,
                u"Chiuso",
                {.items = {u"P1", u"p1", u"P1", u"DN 100", u"DN 1000"}, .initial = 3},
                &ListsDialog::count};
  Choice open{this,
              u"Libero",
              {.items = {u"None", u"Age"}, .freeText = true, .translate = false},
              &ListsDialog::count};
  ListBox box{this,
              u"Reti",
              {.items = {u"b", u"B", u"a", u"a"}, .initial = 2},
              &ListsDialog::count,
              &ListsDialog::opened};
  RadioGroup radio{this,
                   u"",
                   {.name = u"Colori", .items = {u"&5 classi", u"", u"10"}, .pictures = {u"c5"}},
                   &ListsDialog::count};
  RadioGroup off{this, u"Niente", {.items = {u"x"}, .initial = 1}};
  Choice none{this, u"Vuoto"};
  int counted = 0, openedRow = -1;
  void count() { ++counted; }
  void opened() { openedRow = box.selected(); }
};

TEST(ListRules, SortingIgnoresCaseKeepsSpellingAndTheOrderOfEquals) {
  ListsDialog d;
  EXPECT_EQ(itemsOf(d.sorted), (Texts{u"Alfa", u"Beta", u"beta", u"delta"}));
  EXPECT_EQ(d.sorted.text(), u"Beta") << "an initial item counts in the list's own order";
  EXPECT_EQ(d.sorted.add(u"BETA"), 3) << "behind its equals";
  EXPECT_EQ(d.sorted.add(u"aA"), 0);
  EXPECT_EQ(d.sorted.text(), u"Beta") << "the selection goes on with its item";
  EXPECT_EQ(d.sorted.add(u"zeta"), 6);
  d.sorted.setItems({u"c", u"B", u"a", u"b"});
  EXPECT_EQ(itemsOf(d.sorted), (Texts{u"a", u"B", u"b", u"c"}));
  EXPECT_EQ(d.sorted.selected(), -1);
  d.closed.setItems({u"c", u"a"});
  EXPECT_EQ(itemsOf(d.closed), (Texts{u"c", u"a"}));
  d.closed.clear();
  EXPECT_EQ(d.closed.count(), 0);
  EXPECT_EQ(d.closed.text(), u"");
}

TEST(ListRules, SearchesBeginBehindAnItemAndEndAtIt) {
  ListsDialog d;
  const struct {
    const char16_t* text;
    int after, begins, equals;
  } cases[] = {{u"p1", -1, 0, 0},   {u"P1", 0, 1, 1},          {u"P1", 2, 0, 0},
               {u"P1", 4, 0, 0},    {u"P1", 99, 0, 0},         {u"P1", -7, 0, 0},
               {u"dn", -1, 3, -1},  {u"dn 1000", -1, 4, 4},    {u"DN 100", 3, 4, 3},
               {u"dn 1", 4, 3, -1}, {u"dn 10000", -1, -1, -1}, {u"", -1, -1, -1}};
  for (const auto& c : cases) {
    EXPECT_EQ(d.closed.find(c.text, c.after), c.begins) << platform::narrow(c.text) << c.after;
    EXPECT_EQ(d.closed.findExact(c.text, c.after), c.equals) << platform::narrow(c.text) << c.after;
  }
  EXPECT_EQ(d.none.find(u"a"), -1);
  EXPECT_EQ(d.none.findExact(u""), -1);
  for (const int index : {-1, 5}) {
    EXPECT_EQ(d.closed.item(index), u"");
    EXPECT_FALSE(d.closed.remove(index));
    EXPECT_FALSE(d.closed.choose(index));
    EXPECT_FALSE(d.box.choose(index));
    EXPECT_FALSE(d.box.doubleClick(index));
    EXPECT_EQ(d.closed.selected(), 3) << "a refused gesture changes nothing";
    EXPECT_EQ(d.box.selected(), 2);
  }
  EXPECT_EQ(d.none.insert(0, u"x"), 0);
  EXPECT_EQ(d.none.insert(2, u"x"), -1);
}

TEST(ListRules, ADropDownShowsAnItemByItsBeginning) {
  ListsDialog d;
  const struct {
    const char16_t *text, *closed, *open;
  } cases[] = {{u"dn 10", u"DN 100", u"dn 10"}, {u"dn 1000", u"DN 1000", u"dn 1000"},
               {u"", u"DN 1000", u""},          {u"ag", u"DN 1000", u"Age"},
               {u"Agee", u"DN 1000", u"Agee"},  {u"P", u"P1", u"P"}};
  for (const auto& c : cases) {
    d.closed = c.text;
    d.open = c.text;
    EXPECT_EQ(d.closed.text(), c.closed) << platform::narrow(c.text);
    EXPECT_EQ(d.open.text(), c.open) << platform::narrow(c.text);
    EXPECT_EQ(d.closed.value(), c.text) << "the value is what was assigned";
  }
  d.open.setText(u"Trace");
  d.open.select(1);
  d.open.select(-1);
  EXPECT_EQ(d.open.text(), u"") << "a selection forgets what was typed";
  d.closed.setText(u"Trace");
  EXPECT_EQ(d.closed.text(), u"P1");
  EXPECT_EQ(d.counted, 0) << "code fires nothing";
}

TEST(ListRules, TypingTakesTheExactSpellingFirst) {
  ListsDialog d;
  EXPECT_TRUE(d.closed.enter(u"p1"));
  EXPECT_EQ(d.closed.selected(), 1);
  EXPECT_TRUE(d.closed.enter(u"dn 100"));
  EXPECT_EQ(d.closed.selected(), 3);
  EXPECT_FALSE(d.closed.enter(u"dn")) << "a beginning is no item";
  EXPECT_FALSE(d.closed.enter(u""));
  EXPECT_TRUE(d.box.enter(u"B"));
  EXPECT_EQ(d.box.selected(), 1);
  EXPECT_TRUE(d.box.enter(u"A"));
  EXPECT_EQ(d.box.selected(), 2);
  EXPECT_FALSE(d.box.enter(u"c"));
  EXPECT_TRUE(d.open.enter(u"AGE"));
  EXPECT_EQ(d.open.text(), u"Age");
  EXPECT_TRUE(d.open.enter(u"Ag"));
  EXPECT_EQ(d.open.text(), u"Ag");
  EXPECT_TRUE(d.open.choose(0));
  EXPECT_EQ(d.open.text(), u"None");
  EXPECT_TRUE(d.box.doubleClick(3));
  EXPECT_EQ(d.openedRow, 3);
  EXPECT_EQ(d.counted, 7) << "a double click is its own gesture";
  EXPECT_EQ(d.box.enter(u"c").error(),
            "La voce c non è nell'elenco, che ha: \"b\", \"B\", \"a\", \"a\".");
  EXPECT_EQ(d.box.choose(4).error(),
            "La voce #5 non è nell'elenco, che ha: \"b\", \"B\", \"a\", \"a\".");
  EXPECT_EQ(d.none.choose(0).error(), "La voce #1 non è nell'elenco, che ha: niente.");
}

TEST(ListRules, RadioButtonsHaveOneOrNone) {
  ListsDialog d;
  EXPECT_EQ(d.radio.selected(), 0);
  EXPECT_EQ(d.off.selected(), -1);
  EXPECT_EQ(d.off.shown(), u"");
  EXPECT_TRUE(d.radio.enter(u"5 CLASSI")) << "marks of keys are no part of a text";
  EXPECT_TRUE(d.radio.choose(2));
  EXPECT_EQ(d.radio.shown(), u"10");
  EXPECT_EQ(d.radio.value(), 0);
  EXPECT_FALSE(d.radio.choose(3));
  EXPECT_FALSE(d.radio.choose(-1));
  EXPECT_EQ(d.radio.selected(), 2);
  EXPECT_EQ(d.counted, 2);
  d.radio = 3;
  EXPECT_EQ(d.radio.value(), -1);
  d.radio = 1;
  EXPECT_EQ(d.radio.value(), 1);
  d.radio.select(-5);
  EXPECT_EQ(d.radio.selected(), -1);
  EXPECT_EQ(d.radio.picture(0), u"c5");
  EXPECT_EQ(d.radio.picture(1), u"");
  EXPECT_EQ(d.radio.picture(-1), u"");
  EXPECT_EQ(d.radio.item(3), u"");
}

// A line of the journal must bring back the very item that was taken.
TEST(ListRules, TheJournalTellsTwinsByTheirPlace) {
  Texts lines;
  Journal journal([&](std::u16string_view line) { lines.emplace_back(line); });
  ScriptFrontend ui(
      "[Elenchi]\nChiuso = #3\nChiuso = p1\nChiuso = DN 1000\nReti = #4\nReti[2]\nReti[3] **\n"
      "Colori = #2\nColori = 10\n5 classi\nLibero = \"# \"\n<esc>",
      "p");
  ui.setJournal(&journal);
  ListsDialog d;
  d.run(ui);
  journal.flush();
  EXPECT_TRUE(ui.finish()) << ui.error();
  EXPECT_EQ(lines, (Texts{u"[Elenchi]", u"Chiuso = #3", u"Chiuso = #2", u"Chiuso = DN 1000",
                          u"Reti = #4", u"Reti = #2", u"Reti[3] **", u"Colori = #2", u"Colori = 10",
                          u"Colori = &5 classi", u"Libero = \"# \"", u"<esc>"}));
}

TEST(ListRules, OpeningBringsBackDeclaredItemsAndTranslatesThem) {
  ListsDialog d;
  d.sorted.clear();
  d.box.add(u"nuovo");
  d.box.select(4);
  d.open = u"mio";
  EXPECT_EQ(play(d,
                 "[Elenchi]\nOrdinato ? (voci) Alfa | Beta | beta | delta\nOrdinato ? Beta\n"
                 "Reti ? (righe) 4\nReti ? a\nLibero ? mio\nChiuso ? DN 100\n<esc>")
                .error,
            "");
  d.forEachText([](std::u16string& text) {
    if (text == u"delta") text = u"ab";
    if (text == u"Beta") text = u"zz";
    if (text == u"None") text = u"Nulla";
    if (text == u"10") text = u"dieci";
  });
  EXPECT_EQ(itemsOf(d.sorted), (Texts{u"ab", u"Alfa", u"beta", u"zz"}));
  EXPECT_EQ(d.sorted.text(), u"zz") << "the selected one stays selected";
  EXPECT_EQ(d.closed.text(), u"DN 100");
  EXPECT_EQ(d.open.item(0), u"None") << "data";
  EXPECT_TRUE(d.radio.enter(u"DIECI"));
  EXPECT_TRUE(d.radio.enter(u"10")) << "the declared text is still known";
}

// --- reports ---------------------------------------------------------------------------------

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
    list.addRow({u"N1", u"1"});
    list.addRow({u"N1", u"2", u"oltre"});
    list.addRow({});
  }
};

TEST(ReportRules, RowsKeepTheirOrderAndTheSelectionItsHandler) {
  ReportDialog d;
  d.onInit();
  EXPECT_TRUE(d.list.enter(u"N1"));
  EXPECT_EQ(d.list.selected(), 0) << "the first of equals";
  EXPECT_TRUE(d.list.enter(u"")) << "a row without cells begins with nothing";
  EXPECT_EQ(d.list.selected(), 2);
  EXPECT_EQ(d.list.enter(u"n1").error(), "Nessuna riga comincia con n1.") << "case counts";
  EXPECT_TRUE(d.list.doubleClick(1));
  EXPECT_EQ(d.list.shown(), u"N1");
  EXPECT_EQ(d.list.doubleClick(3).error(), "La riga 4 non c'è: le righe sono 3.");
  EXPECT_EQ(d.list.doubleClick(-1).error(), "La riga 0 non c'è: le righe sono 3.");
  EXPECT_EQ(d.taken_, 2);
  EXPECT_EQ(d.opened_, 1);
  d.list.addRow({u"N4"});
  EXPECT_EQ(d.list.selected(), 1) << "a new row at the end moves nothing";
  d.list.setBackground(Colour{1, 2, 3});
  d.list.setColumns({{u"Solo"}});
  d.list.setRows({{u"x"}});
  EXPECT_EQ(d.list.selected(), -1);
  EXPECT_EQ(d.list.background(), (Colour{1, 2, 3})) << "the colour is the list's, not the rows'";
  d.list.select(0);
  EXPECT_EQ(play(d,
                 "[Righe]\nNodi ? (colonne) &Nome | Q\nNodi ? (righe) 3\nNodi ? (sfondo) "
                 "nessuno\nNodi ? \"\"\nNodi[2] ? N1 | 2 | oltre\nNodi[3] ? \nNodi[2,nome] ? N1\n"
                 "Nodi[1,#2] ? 1\n<esc>")
                .error,
            "");
}

// --- grids -----------------------------------------------------------------------------------

TEST(GridRules, SelectionsCopiesAndMenus) {
  PatternDialog d;
  d.onInit();
  Grid& g = d.grid;
  for (int r = 1; r <= 4; ++r)
    for (int c = 1; c <= 2; ++c) g.setCell(r, c, platform::format(u"%d%d", r, c));
  EXPECT_EQ(g.shown(), u"");
  EXPECT_FALSE(g.hasSelection());
  g.paste(u"niente");
  EXPECT_TRUE(g.selectCells({3, 2}, {2, 1}));
  EXPECT_EQ(g.selectionFrom(), (Grid::Cell{2, 1}));
  EXPECT_EQ(g.selectionTo(), (Grid::Cell{3, 2}));
  EXPECT_EQ(g.current(), (Grid::Cell{3, 2})) << "where the gesture began";
  EXPECT_EQ(g.shown(), u"32");
  EXPECT_EQ(g.copied(), u"21\t22\n31\t32\n");
  EXPECT_FALSE(g.selectCells({0, 1}, {2, 1})) << "the header is no cell to select";
  EXPECT_FALSE(g.selectCells({1, 1}, {5, 1}));
  EXPECT_FALSE(g.selectCells({1, 3}, {1, 1}));
  EXPECT_EQ(g.selectionTo(), (Grid::Cell{3, 2}));
  const auto menuAt = [&](Grid::Cell at) {
    EXPECT_TRUE(d.grid.selectCells({2, 1}, {3, 2}));
    EXPECT_FALSE(g.chooseMenu({9, 1}, 2));
    EXPECT_FALSE(g.chooseMenu(at, 4));
    EXPECT_FALSE(g.chooseMenu(at, -1));
    EXPECT_TRUE(g.chooseMenu(at, 2));
    return std::pair(g.selectionFrom(), g.selectionTo());
  };
  using Cells = std::pair<Grid::Cell, Grid::Cell>;
  EXPECT_EQ(menuAt({3, 1}), (Cells{{2, 1}, {3, 2}})) << "inside, at its corner";
  EXPECT_EQ(menuAt({2, 2}), (Cells{{2, 1}, {3, 2}}));
  EXPECT_EQ(menuAt({4, 1}), (Cells{{4, 1}, {4, 1}}));
  EXPECT_EQ(menuAt({1, 1}), (Cells{{1, 1}, {1, 1}}));
  EXPECT_EQ(menuAt({2, 0}), (Cells{{2, 0}, {2, 0}}));
  EXPECT_EQ(g.rowCount(), 10) << "each inserted a row";
  g.select({1, 1}, {9, 1});
  EXPECT_TRUE(g.deleteRow(1));
  EXPECT_FALSE(g.hasSelection()) << "its last row is gone";
  EXPECT_FALSE(g.deleteRow(9));
  EXPECT_TRUE(g.insertRow(9)) << "behind the last one";
  EXPECT_EQ(g.cell(9, 1), u"");
  EXPECT_EQ(g.cell(8, 1), u"41");
}

TEST(GridRules, TextsGoWhereTheyMayAndNowhereElse) {
  PatternDialog d;
  d.onInit();
  Grid& g = d.grid;
  const struct {
    const char16_t *pasted, *copied;
  } cases[] = {{u"a", u"a\t\n\t\n"},       {u"a\n", u"a\t\n\t\n"},     {u"a\n\nb", u"a\t\n\t\n"},
               {u"\tb\r\n", u"\tb\n\t\n"}, {u"a\rb", u"a\rb\t\n\t\n"}, {u"", u"\t\n\t\n"},
               {u"a\tb\tc", u"a\tb\n\t\n"}};
  for (const auto& c : cases) {
    g.setRowCount(1);
    g.setRowCount(5);
    g.select({2, 1}, {3, 2});
    g.paste(c.pasted);
    EXPECT_EQ(g.copied(), c.copied);
  }
  g.setFixedColumns(2);
  EXPECT_FALSE(g.editable(1, 1));
  EXPECT_TRUE(g.editable(1, 2));
  EXPECT_FALSE(g.editable(0, 2));
  EXPECT_FALSE(g.editable(5, 2));
  g.setCell(1, 1, u"codice");
  EXPECT_EQ(g.cell(1, 1), u"codice") << "code may write where the user may not";
  g.setCell(0, 2, u"Altra");
  EXPECT_EQ(g.column(2).title, u"Altra");
  g.setColumnTitle(3, u"x");
  g.setColumnTitle(-1, u"x");
  EXPECT_EQ(g.enterCell(1, 1, u"x").error(), "La cella 1,2 non si può modificare.");
  EXPECT_EQ(g.enterCell(5, 3, u"x").error(),
            "La cella 5,4 non c'è: le righe sono 4 e le colonne 3.");
  EXPECT_TRUE(g.enterCell(4, 2, u"y"));
  g.setRowCount(4);
  EXPECT_EQ(g.current(), (Grid::Cell{})) << "its cell is gone";
  g.setColumns({{u"Uno"}, {u"Due"}, {u"Tre"}, {u"Quattro"}});
  EXPECT_EQ(g.cell(1, 1), u"codice");
  EXPECT_EQ(g.cell(1, 3), u"");
  g.setRowCount(0);
  EXPECT_EQ(g.rowCount(), 1) << "the header stays";
  // Columns of one title, or of none, are told by their number.
  std::string taken;
  Journal journal([&](std::u16string_view line) { taken += platform::narrow(line) + ";"; });
  struct Twins : Dialog {
    Twins() : Dialog(u"G") {}
    Grid grid{this, u"Tabella", {.columns = {{u"H"}, {u"h "}, {u""}, {u"Q [m]"}}}};
    void onInit() override { grid.setRowCount(3); }
  } twins;
  ScriptFrontend ui(
      "[G]\nTabella[1,#2] = a\nTabella[2,#3] = b\nTabella[2,Q [m]] = \"\"\nTabella[2,#1]\n"
      "Tabella[1,#1..2,#2]\nTabella[2]\n<esc>",
      "p");
  ui.setJournal(&journal);
  twins.run(ui);
  journal.flush();
  EXPECT_TRUE(ui.finish()) << ui.error();
  EXPECT_EQ(taken,
            "[G];Tabella[1,#2] = a;Tabella[2,#3] = b;Tabella[2,Q [m]] = \"\";Tabella[2,#1];"
            "Tabella[1,#1..2,#2];Tabella[2,#1..2,#4];<esc>;");
}

}  // namespace
