// The rules of single controls: what gestures and assignments do, lists, numbers, grids.
#include <gtest/gtest.h>

#include "tests/ui/sample_dialogs.h"

namespace {

using namespace sample;

struct ListsDialog : Dialog {
  ListsDialog() : Dialog(u"Elenchi") {}
  Choice sorted{this, u"Ordinato", {.order = Order::sorted}};
  Choice placed{this, u"Posizionale", {.items = {u"", u"P10", u"p1", u"Alfa"}}};
  Choice open{this, u"Libero", {.items = {u"None", u"Chemical"}, .freeText = true}};
};

TEST(Lists, SortedPlacesByTextAndPositionalAtTheEnd) {
  ListsDialog d;
  for (auto text : {u"beta", u"", u"Alfa", u"gamma", u"BETA"}) d.sorted.add(text);
  std::vector<std::u16string> items;
  for (int i = 0; i < d.sorted.count(); ++i) items.push_back(d.sorted.item(i));
  EXPECT_EQ(items, (std::vector<std::u16string>{u"", u"Alfa", u"beta", u"BETA", u"gamma"}));
  EXPECT_EQ(d.placed.add(u"Aa"), 4);
  d.sorted.setItems({u"z", u"a"});
  EXPECT_EQ(d.sorted.item(0), u"a");
  EXPECT_EQ(d.sorted.insert(0, u"m"), 0) << "a position overrules the order";
}

TEST(Lists, InsertionPastTheEndIsRefused) {
  ListsDialog d;
  EXPECT_EQ(d.placed.insert(5, u"x"), -1);
  EXPECT_EQ(d.placed.insert(-2, u"x"), -1);
  EXPECT_EQ(d.placed.count(), 4);
  EXPECT_EQ(d.placed.insert(4, u"x"), 4);
  EXPECT_EQ(d.placed.insert(-1, u"y"), 5);
}

TEST(Lists, PrefixSearchGoesRoundAndFindsNothingByNothing) {
  ListsDialog d;
  EXPECT_EQ(d.placed.find(u"P1"), 1);
  EXPECT_EQ(d.placed.find(u"p1", 1), 2);
  EXPECT_EQ(d.placed.find(u"p10", 1), 1) << "comes round to the start";
  EXPECT_EQ(d.placed.findExact(u"P1"), 2);
  EXPECT_EQ(d.placed.find(u"", 0), -1) << "an empty text begins nothing";
  EXPECT_EQ(d.placed.findExact(u""), 0);
  EXPECT_EQ(d.placed.find(u"Q"), -1);
}

TEST(Lists, SelectionFollowsItsItem) {
  ListsDialog d;
  d.placed.select(2);
  d.placed.insert(0, u"first");
  EXPECT_EQ(d.placed.text(), u"p1");
  d.placed.remove(0);
  d.placed.insert(2, u"before it");
  EXPECT_EQ(d.placed.selected(), 3) << "inserted at the selected row it pushes that on";
  EXPECT_EQ(d.placed.text(), u"p1");
  d.placed.remove(2);
  d.placed.insert(3, u"behind it");
  EXPECT_EQ(d.placed.selected(), 2);
  d.placed.remove(3);
  EXPECT_EQ(d.placed.selected(), 2);
  EXPECT_TRUE(d.placed.remove(2));
  EXPECT_EQ(d.placed.selected(), -1);
  EXPECT_EQ(d.placed.text(), u"");
  EXPECT_FALSE(d.placed.remove(9));
  d.placed.select(99);
  EXPECT_EQ(d.placed.selected(), -1);
}

TEST(Lists, ShowSelectsByPrefixAndOnlyAnOpenListKeepsAStrangeText) {
  ListsDialog d;
  d.placed.select(3);
  d.placed.show(u"CV");
  EXPECT_EQ(d.placed.text(), u"Alfa") << "a closed list stays as it is";
  d.placed.show(u"P1");
  EXPECT_EQ(d.placed.selected(), 2)
      << "the whole text goes before a longer one that begins with it";
  d.placed.show(u"p10");
  EXPECT_EQ(d.placed.selected(), 1);
  d.open = u"Age";
  EXPECT_EQ(d.open.selected(), -1);
  EXPECT_EQ(d.open.text(), u"Age");
  EXPECT_TRUE(d.open.enter(u"chemical"));
  EXPECT_EQ(d.open.selected(), 1);
  EXPECT_TRUE(d.open.enter(u"Trace"));
  EXPECT_EQ(d.open.text(), u"Trace");
  EXPECT_EQ(d.open.selected(), -1);
  EXPECT_FALSE(d.placed.enter(u"Trace"));
  EXPECT_FALSE(d.placed.choose(4));
}

TEST(Gestures, FireHandlersWhileAssignmentsDoNot) {
  PipeDialog d;
  d.material.select(1);
  d.material = u"PEAD";
  d.custom = true;
  EXPECT_EQ(d.chosen, 0);
  EXPECT_FALSE(d.length.enabled());
  EXPECT_TRUE(d.material.choose(2));
  EXPECT_EQ(d.chosen, 1) << "the handler's own selection must not call it again";
  EXPECT_EQ(d.material.selected(), 0);
  EXPECT_TRUE(d.material.choose(0)) << "the same item again is a gesture too";
  EXPECT_EQ(d.chosen, 2);
  EXPECT_TRUE(d.custom.press());
  EXPECT_FALSE(d.custom.checked());
  EXPECT_TRUE(d.custom.value()) << "the value waits for the field exchange";
}

TEST(Gestures, AreRefusedOnDisabledAndHiddenControls) {
  PipeDialog d;
  auto refused = d.length.enter(u"5");
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error(), "Il controllo è disattivato.");
  EXPECT_EQ(d.length.shown(), u"0");
  d.diameter.setVisible(false);
  EXPECT_EQ(d.diameter.enter(u"5").error(), "Il controllo è nascosto.");
  d.start.setEnabled(false);
  EXPECT_FALSE(d.start.spin(TimePicker::Part::hour, 1));
  EXPECT_FALSE(d.diameter.press());
  EXPECT_FALSE(d.ok.enter(u"x"));
}

TEST(Fields, RealsShowInTheirNaturalForm) {
  const std::pair<double, const char*> cases[] = {{0, "0"},
                                                  {-0.0, "0"},
                                                  {200, "200"},
                                                  {0.002, "0.002"},
                                                  {0.1 + 0.2, "0.3"},
                                                  {-12.5, "-12.5"},
                                                  {0.000000001, "0.000000001"},
                                                  {1e-10, "0.0000000001"},
                                                  {123456789012345, "123456789012345"},
                                                  {9.99999999999999999, "10"},
                                                  {1e15, "1e+15"},
                                                  {2.5e-12, "2.5e-12"},
                                                  {1e300, "1e+300"}};
  for (const auto& [value, text] : cases) EXPECT_EQ(platform::narrow(showReal(value)), text);
}

TEST(Fields, CapacityCutsWholeCharacters) {
  PipeDialog d;
  EXPECT_TRUE(d.name.enter(u"123456789"));
  EXPECT_EQ(d.name.shown(), u"12345678");
  EXPECT_TRUE(d.name.enter(u"1234567\U0001F4A7"));
  EXPECT_EQ(d.name.shown(), u"1234567") << "half a character is none";
}

TEST(Fields, TimesAreReadSpunAndRefused) {
  PipeDialog d;
  EXPECT_TRUE(d.start.enter(u"8:5"));
  EXPECT_EQ(d.start.shown(), u"08:05");
  EXPECT_EQ(d.start.value(), (TimeOfDay{12, 0}));
  EXPECT_TRUE(d.start.spin(TimePicker::Part::minute, -6));
  EXPECT_EQ(d.start.time(), (TimeOfDay{8, 59})) << "the arrows stay within their part";
  EXPECT_TRUE(d.start.spin(TimePicker::Part::hour, 40));
  EXPECT_EQ(d.start.time().hour, 0);
  for (auto bad : {u"24:00", u"12:60", u"-1:00", u"", u"12:", u"a:b", u"1:2:3"})
    EXPECT_FALSE(d.start.enter(bad));
  EXPECT_FALSE(d.start.set({24, 0}));
  EXPECT_EQ(d.start.shown(), u"00:59");
}

TEST(Reports, RowsAndCellsEndWhereTheyEnd) {
  struct Reports : Dialog {
    Reports() : Dialog(u"Righe") {}
    ReportList list{this, u"Quota [m]", {.columns = {{u"A"}, {u"B"}}}};
    Button ok{this, u"OK", {.role = Role::ok}};
    void onInit() override { list.setRows({{u"a1", u"b1"}, {u"a2", u"b2"}}); }
  } d;
  d.onInit();
  EXPECT_EQ(d.list.cell(1, 1), u"b2");
  for (const auto& [row, column] : {std::pair(2, 0), {-1, 0}, {0, 2}, {0, -1}}) {
    EXPECT_EQ(d.list.cell(row, column), u"") << row << ' ' << column;
  }
  for (const auto& [row, selected] : {std::pair(1, 1), {2, -1}, {0, 0}, {-1, -1}}) {
    d.list.select(row);
    EXPECT_EQ(d.list.selected(), selected) << row;
  }
  EXPECT_FALSE(d.list.choose(2));
  EXPECT_FALSE(d.list.choose(-1));
  EXPECT_TRUE(d.list.choose(1));
  // A label with brackets of its own takes an index behind them.
  EXPECT_EQ(play(d, "[Righe]\nQuota [m][1]\nQuota [m][2] ? a2 | b2\nOK\n").error, "");
  EXPECT_NE(play(d, "[Righe]\nQuota [m][3]\n").error, "");
}

TEST(Grids, EditWithinTheirFixedParts) {
  PatternDialog d;
  d.onInit();
  EXPECT_EQ(d.grid.rowCount(), 5);
  EXPECT_TRUE(d.grid.enterCell(1, 1, u"1.5"));
  EXPECT_EQ(d.grid.current(), (Grid::Cell{1, 1}));
  for (auto cell : {Grid::Cell{1, 0}, {0, 1}, {5, 1}, {1, 3}, {-1, 1}, {1, -1}})
    EXPECT_FALSE(d.grid.enterCell(cell.row, cell.column, u"x"));
  EXPECT_FALSE(d.grid.insertRow(0));
  EXPECT_FALSE(d.grid.insertRow(6));
  EXPECT_FALSE(d.grid.deleteRow(0));
  EXPECT_TRUE(d.grid.insertRow(1));
  EXPECT_EQ(d.grid.cell(1, 1), u"");
  EXPECT_EQ(d.grid.cell(2, 1), u"1.5");
  EXPECT_TRUE(d.grid.deleteRow(5));
  EXPECT_EQ(d.grid.cell(0, 1), u"Moltiplicatore");
  EXPECT_EQ(d.grid.cell(9, 9), u"");
}

TEST(Grids, PasteStopsAtTheEdgesAndSparesFixedCells) {
  PatternDialog d;
  d.onInit();
  d.grid.select({2, 2}, {1, 1});
  d.grid.paste(u"a\tb\tbeyond\r\nc\td\ne");
  EXPECT_EQ(d.grid.copied(), u"a\tb\nc\td\n");
  EXPECT_EQ(d.grid.cell(3, 1), u"e");
  d.grid.select({4, 0}, {4, 0});
  d.grid.paste(u"9\t7\nbelow\tthe grid");
  EXPECT_EQ(d.grid.cell(4, 0), u"4");
  EXPECT_EQ(d.grid.cell(4, 1), u"7");
  d.grid.setRowCount(2);
  EXPECT_FALSE(d.grid.hasSelection()) << "a selection of rows that are gone";
  EXPECT_EQ(d.grid.copied(), u"");
}

}  // namespace
