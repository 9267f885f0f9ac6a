// The grids of materials and of patterns and curves: rows that come and go, copy and paste.
#include <gtest/gtest.h>

#include <functional>

#include "cad/ui/script_frontend.h"
#include "module/dialogs/toolkit.h"
#include "module/grid/my_grid.h"
#include "platform/text.h"

namespace vessora {
namespace {

constexpr int kCopy = 0, kPaste = 1, kInsert = 2, kDelete = 3;

class Sheets : public ui::Dialog {
 public:
  Sheets() : Dialog(u"Fogli") {}
  std::vector<std::u16string> thirdLines;
  MyGrid materials{
      this,
      u"Materiali",
      {.columns = {{.title = u"N."}, {.title = u"Nome"}, {.title = u"mm"}}, .fixedColumns = 1},
      thirdLines};
  MyGridPAT values{
      this, u"Valori", {.columns = {{.title = u"a"}, {.title = u"b"}}, .fixedColumns = 1}};
  std::function<void()> steps;

  void onInit() override {
    thirdLines = {u"uno", u"due", u"tre"};
    materials.setRowCount(4);
    values.setRowCount(4);
    for (int row = 1; row <= 3; ++row)
      materials.setCell(row, 1, std::u16string(1, static_cast<char16_t>(u'A' + row - 1)));
    materials.number(1);
    values.number(1);
    steps();
    end(ui::Outcome::ok);
  }
};

class RowGrids : public ::testing::Test {
 protected:
  // Gestures need an open dialog, and the menu its front end's clipboard.
  void open(std::function<void()> steps) {
    sheets.steps = std::move(steps);
    sheets.run(frontend);
  }
  static std::string shown(const ui::Grid& grid) {
    std::string all;
    for (int row = 1; row < grid.rowCount(); ++row) {
      for (int column = 0; column < grid.columnCount(); ++column) {
        all += (column > 0 ? "|" : "") + platform::narrow(grid.cell(row, column));
      }
      all += ';';
    }
    return all;
  }
  std::string lines() const {
    std::string all;
    for (const auto& line : sheets.thirdLines) all += platform::narrow(line) + ';';
    return all;
  }
  std::string pasted(ui::Grid& grid, ui::Grid::Cell from, ui::Grid::Cell to, const char16_t* text) {
    frontend.setClipboard(text);
    EXPECT_TRUE(grid.selectCells(from, to));
    EXPECT_TRUE(grid.chooseMenu(from, kPaste));
    return shown(grid);
  }

  Sheets sheets;
  cad::ui::ScriptFrontend frontend{"[Fogli]", "test"};
};

TEST_F(RowGrids, RowsOfMaterialsKeepTheirNumbersAndThirdLines) {
  open([&] {
    MyGrid& grid = sheets.materials;
    EXPECT_EQ(grid.menu(), (std::vector<std::u16string>{u"Copia", u"Incolla", u"Inserisci Riga",
                                                        u"Elimina Riga"}));
    EXPECT_TRUE(grid.chooseMenu({2, 1}, kInsert));
    EXPECT_EQ(shown(grid), "1|A|;2||;3|B|;4|C|;");
    EXPECT_EQ(lines(), "uno;0,0,0;due;tre;");
    EXPECT_TRUE(grid.chooseMenu({3, 0}, kDelete));
    EXPECT_TRUE(grid.chooseMenu({3, 2}, kInsert));
    EXPECT_EQ(shown(grid), "1|A|;2||;3||;4|C|;");
    EXPECT_EQ(lines(), "uno;0,0,0;0,0,0;tre;");
    // The header is no row, nor is what lies below the last one.
    for (const int entry : {kInsert, kDelete}) EXPECT_TRUE(grid.chooseMenu({0, 1}, entry));
    EXPECT_FALSE(grid.chooseMenu({5, 1}, kDelete));
    EXPECT_EQ(lines(), "uno;0,0,0;0,0,0;tre;");
    for (int i = 0; i < 4; ++i) EXPECT_TRUE(grid.chooseMenu({1, 1}, kDelete));
    EXPECT_TRUE(grid.chooseMenu({0, 1}, kInsert)) << "an empty table gets no first row";
    EXPECT_EQ(shown(grid) + lines(), "");
  });
}

TEST_F(RowGrids, RowsOfPatternsAreNumberedAndThoseOfCurvesAreData) {
  open([&] {
    MyGridPAT& grid = sheets.values;
    EXPECT_TRUE(grid.enterCell(1, 1, u"x"));
    EXPECT_TRUE(grid.chooseMenu({1, 0}, kInsert));
    EXPECT_EQ(shown(grid), "1|;2|x;3|;4|;");
    EXPECT_FALSE(grid.enterCell(2, 0, u"7"));
    grid.setCurve(true);
    EXPECT_EQ(grid.column(0).width, 79);
    EXPECT_TRUE(grid.enterCell(2, 0, u"7"));
    EXPECT_TRUE(grid.chooseMenu({2, 1}, kInsert));
    EXPECT_TRUE(grid.chooseMenu({1, 1}, kDelete));
    EXPECT_EQ(shown(grid), "|;7|x;3|;4|;");
    grid.setCurve(false);
    EXPECT_EQ(grid.column(1).width, 108);
    EXPECT_FALSE(grid.editable(1, 0));
  });
}

// A block lands cell by cell from the first selected one on: what lies beyond the edges is dropped,
// what nobody may edit is passed over, and no row is added.
TEST_F(RowGrids, PasteFillsWhatThereIsCellByCell) {
  open([&] {
    MyGrid& grid = sheets.materials;
    EXPECT_EQ(pasted(grid, {2, 1}, {2, 1}, u"P\t1\tfuori\r\nQ\t2\r\nR\t3\r\nS\t4\r\n"),
              "1|A|;2|P|1;3|Q|2;");
    EXPECT_EQ(lines(), "uno;due;tre;");
    EXPECT_EQ(pasted(grid, {1, 0}, {1, 2}, u"99\tprimo\t0,5\n98"), "1|primo|0,5;2|P|1;3|Q|2;");
    // Ragged lines leave alone what they do not reach; an empty cell empties.
    EXPECT_EQ(pasted(grid, {1, 1}, {3, 2}, u"\tno\n\nZ"), "1||no;2||1;3|Z|2;");
    EXPECT_EQ(pasted(grid, {3, 2}, {3, 2}, u""), "1||no;2||1;3|Z|2;");
    EXPECT_EQ(pasted(sheets.values, {1, 1}, {1, 1}, u"1e3\t2\nmezzo\n-1\n4"),
              "1|1e3;2|mezzo;3|-1;");
    // Nothing is selected by a click on the header.
    EXPECT_TRUE(grid.chooseMenu({0, 1}, kPaste));
    EXPECT_EQ(shown(grid), "1||no;2||1;3|Z|2;");
  });
}

TEST_F(RowGrids, CopyGivesASpreadsheetLinesOfCells) {
  open([&] {
    MyGrid& grid = sheets.materials;
    EXPECT_TRUE(grid.selectCells({1, 1}, {2, 2}));
    EXPECT_TRUE(grid.chooseMenu({2, 2}, kCopy));
    EXPECT_EQ(frontend.clipboard(), u"A\t\nB\t\n");
    EXPECT_TRUE(grid.chooseMenu({0, 1}, kCopy)) << "what was copied before stays";
    EXPECT_EQ(frontend.clipboard(), u"A\t\nB\t\n");
    // From one grid to the other.
    EXPECT_TRUE(sheets.values.selectCells({3, 1}, {3, 1}));
    EXPECT_TRUE(sheets.values.chooseMenu({3, 1}, kPaste));
    EXPECT_EQ(shown(sheets.values), "1|;2|;3|A;");
  });
}

}  // namespace
}  // namespace vessora
