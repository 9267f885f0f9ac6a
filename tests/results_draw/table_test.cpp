#include "cad/api/table.h"

#include "module/results/drawing_jobs.h"
#include "module/results/network_tables.h"
#include "tests/results_draw/draw_testing.h"
#include "tests/tools/check_drawing.h"

namespace vessora {
namespace {

class Tables : public CalculatedNetwork {
 protected:
  Notices notices_;
  AcDbObjectId drawn(const TableGrid& grid) {
    makeTableStyle(kTableStyle, 1.2, 1);
    drawTable(kTableStyle, grid, {{100, 50, 3}, 2, 15, u"TAB"}, notices_);
    return onLayer(u"TAB").back();
  }
  // How many entities of each type show the table.
  std::string picture(AcDbObjectId id) {
    const std::u16string name = Opened<AcDbTable>(id)->blockName();
    const std::uint32_t block = drawing().structure().blockByName(drawing().names().find(name));
    int lines = 0, texts = 0, others = 0;
    for (std::uint32_t e = drawing().structure().firstEntity(block); e;
         e = drawing().structure().nextEntity(block, e)) {
      switch (drawing().record(e).type) {
        case cad::Type::line:
          ++lines;
          break;
        case cad::Type::text:
          ++texts;
          break;
        default:
          ++others;
          break;
      }
    }
    return std::to_string(lines) + " lines, " + std::to_string(texts) + " texts, " +
           std::to_string(others) + " others";
  }
  std::vector<std::string> faults() { return checking::checkDrawing(bytes()); }
};

TEST_F(Tables, AreWholeAfterSaving) {
  drawn({{u"Titolo"}, {u"a", u"1"}, {u"b", u"2"}});
  EXPECT_EQ(faults(), std::vector<std::string>());
  saveAndReload();
  const AcDbObjectId id = onLayer(u"TAB")[0];
  // Three lines across, one under the title, two sides, one between the columns below it.
  EXPECT_EQ(picture(id), "7 lines, 5 texts, 0 others");
  const Opened<AcDbTable> table(id);
  EXPECT_EQ(table->numRows(), 3);
  EXPECT_EQ(table->numColumns(), 2);
  EXPECT_EQ(table->width(), 30);
  EXPECT_EQ(table->height(), 6);
  EXPECT_EQ(table->textString(0, 0), u"Titolo");
  EXPECT_EQ(table->textString(2, 1), u"2");
  EXPECT_EQ(table->textString(3, 0), u"");
  EXPECT_TRUE(table->isMergedCell(0, 1));
  EXPECT_FALSE(table->isMergedCell(1, 1));
  EXPECT_EQ(table->textHeight(0, 0), 1.2);
  EXPECT_EQ(table->position().z, 3);
  const Opened<AcDbTableStyle> style(table->tableStyle());
  EXPECT_EQ(style->color(AcDb::kTitleRow).colorIndex(), 1);
  EXPECT_EQ(style->color(AcDb::kHeaderRow).colorIndex(), 2);
  EXPECT_EQ(style->alignment(), AcDb::kMiddleCenter);
  EXPECT_EQ(style->textStyleName(), u"HN-EPA");
  EXPECT_DOUBLE_EQ(style->horzCellMargin(), 0.12);
}

TEST_F(Tables, TheFirstStyleStaysInForce) {
  drawn({{u"Titolo"}});
  makeTableStyle(kTableStyle, 5, 3);
  const Opened<AcDbTable> table(onLayer(u"TAB")[0]);
  EXPECT_EQ(table->numColumns(), 1);
  EXPECT_EQ(table->textHeight(0, 0), 1.2);
}

TEST_F(Tables, NamesOfBlocksAreNeverTakenTwice) {
  drawing().structure().addBlock(u"*T41", {});
  drawn({{u"a"}});
  drawing().beginCommand(u"X");
  drawn({{u"b"}});
  drawing().endCommand();
  drawing().undo();
  drawn({{u"c"}});
  std::vector<std::u16string> names;
  for (const AcDbObjectId id : onLayer(u"TAB")) names.push_back(Opened<AcDbTable>(id)->blockName());
  EXPECT_EQ(names, (std::vector<std::u16string>{u"*T42", u"*T44"}));
  EXPECT_EQ(faults(), std::vector<std::string>());
}

TEST_F(Tables, AnEditRedrawsAndDropsWhatWouldContradictIt) {
  const AcDbObjectId id = drawn({{u"Titolo"}, {u"a", u"1"}});
  // As other programs leave a table: its content once more in an extension dictionary, a picture in
  // bytes, and things of cells that this program does not know.
  {
    auto* dictionary = new AcDbDictionary;
    ASSERT_EQ(drawing().append(id.index(), *dictionary), Acad::eOk);
    AcDbObjectId unused;
    for (const char16_t* name : {u"ACAD_XREC_ROUNDTRIP", u"MIO"}) {
      auto* record = new AcDbXrecord;
      ASSERT_EQ(dictionary->setAt(name, record, unused), Acad::eOk);
      record->close();
    }
    const Opened<AcDbTable> table(id, AcDb::kForWrite);
    cad::TagList& t = cad::Inside::tagsForWrite(*table);
    const int common = t.subclass("AcDbEntity").end;
    t.insertAscii(common, 310, "0123");
    t.insertInteger(common, 160, 2);
    t.insertInteger(t.find(145, t.subclass("AcDbTable")) + 1, 170, 7);
    t.insertAscii(2, 102, "{ACAD_XDICTIONARY");
    t.insertHandle(3, 360, dictionary->handle());
    t.insertAscii(4, 102, "}");
    dictionary->close();
  }
  saveAndReload();
  const std::string before = bytes();
  EXPECT_NE(before.find("ACAD_XREC_ROUNDTRIP"), std::string::npos);
  {
    const Opened<AcDbTable> table(onLayer(u"TAB")[0], AcDb::kForWrite);
    EXPECT_EQ(table->setWidth(0), Acad::eInvalidInput);
    table->setWidth(60);
    table->setTextHeight(3, AcDb::kTitleRow);
    table->setTextString(1, 1, u"{\\Hallo} ");
  }
  saveAndReload();
  const AcDbObjectId after = onLayer(u"TAB")[0];
  EXPECT_EQ(picture(after), "6 lines, 2 texts, 1 others");
  const Opened<AcDbTable> table(after);
  EXPECT_EQ(table->columnWidth(1), 30);
  EXPECT_EQ(table->rowHeight(1), 2);
  EXPECT_EQ(table->textHeight(0, 0), 3);
  EXPECT_EQ(table->textHeight(1, 0), 1.2);
  EXPECT_EQ(table->textString(1, 1), u"{\\Hallo} ");
  const cad::TagList& t = cad::Inside::tags(*table);
  EXPECT_EQ(t.find(310), -1);
  EXPECT_EQ(t.integerOr(170, 0, t.subclass("AcDbTable")), 7);
  const std::string text = bytes();
  EXPECT_EQ(text.find("ACAD_XREC_ROUNDTRIP"), std::string::npos);
  EXPECT_NE(text.find("MIO"), std::string::npos);
  EXPECT_EQ(faults(), std::vector<std::string>());
}

TEST_F(Tables, CellsOfASavedTableAreMerged) {
  drawn({{u"Titolo"}, {u"a", u"1"}, {u"b", u"2"}, {u"c", u"3"}});
  saveAndReload();
  {
    const Opened<AcDbTable> table(onLayer(u"TAB")[0], AcDb::kForWrite);
    ASSERT_EQ(table->mergeCells(1, 3, 0, 0), Acad::eOk);
  }
  saveAndReload();
  const Opened<AcDbTable> table(onLayer(u"TAB")[0]);
  std::string merged;
  for (int row = 0; row < 4; ++row) {
    for (int column = 0; column < 2; ++column)
      merged += table->isMergedCell(row, column) ? 'm' : '.';
  }
  EXPECT_EQ(merged, "mmm.m.m.");
  std::string spans;  // columns and rows of each cell
  const cad::TagList& t = cad::Inside::tags(*table);
  for (int i = 0; i < t.size(); ++i) {
    if (t[i].code == 175 || t[i].code == 176) spans += std::to_string(t.integer(i));
  }
  EXPECT_EQ(spans,
            "2111"
            "1311"
            "1111"
            "1111");
  EXPECT_EQ(picture(onLayer(u"TAB")[0]), "8 lines, 5 texts, 0 others");
  EXPECT_EQ(faults(), std::vector<std::string>());
}

TEST_F(Tables, SizesThatAFileClaimsAreNotBelieved) {
  drawn({{u"Titolo"}, {u"a", u"1"}});
  {
    const Opened<AcDbTable> table(onLayer(u"TAB")[0], AcDb::kForWrite);
    cad::TagList& t = cad::Inside::tagsForWrite(*table);
    t.setInteger(t.find(91, t.subclass("AcDbTable")), 2000000000);
  }
  saveAndReload();
  const Opened<AcDbTable> table(onLayer(u"TAB")[0]);
  EXPECT_EQ(table->numRows(), 2);
  EXPECT_EQ(table->textString(1, 1), u"1");
}

TEST_F(Tables, HiddenRowsAndATableThatDoesNotFitItsGrid) {
  DrawNodeResultTable(kTableStyle, u"N1", 1, 2, 3, u"4", {{}, 2, 15, u"NONE"},
                      notices_);  // no style yet
  makeTableStyle(kTableStyle, 1.2, 3);
  DrawNodeResultTable(kTableStyle, u"N1", kNoValue, 2, -99999.0, kNoText, {{}, 2, 15, u"NODI"},
                      notices_);
  EXPECT_EQ(onLayer(u"NONE").size(), 0u);
  {
    const Opened<AcDbTable> table(onLayer(u"NODI")[0]);
    EXPECT_EQ(table->numRows(), 2);
    EXPECT_EQ(table->textString(0, 0), u"Risultati Nodo: N1");
    EXPECT_EQ(table->textString(1, 0), u"Carico [m]");
  }
  drawTable(kTableStyle, {{u"t"}, {u"a", u"b"}, {u"a", u"b", u"c"}}, {{}, 2, 15, u"STORTA"},
            notices_);
  EXPECT_EQ(onLayer(u"STORTA").size(), 1u);  // the table stands, filled as far as it went
  ASSERT_EQ(notices_.size(), 2U);
  EXPECT_EQ(notices_[0].code, NoticeCode::tableStyleMissing);
  EXPECT_EQ(notices_[1].code, NoticeCode::tableNotDrawn);
}

// The jobs draw over a whole network and ask nobody.
TEST_F(Tables, JobsDrawWhatTheirRequestNames) {
  junc(u"A", {0, 0, 10}, 1, 50);
  junc(u"B", {10, 0, 20}, 2, 40);
  const AcDbObjectId line = pipe(u"P", u"A", u"B", u"10", {{0, 0, 10}, {10, 0, 20}});
  const AcDbObjectId other = addBlock(u"Junc", u"JUNC-Altra", {}, {});
  script("");
  TableRequest request;
  request.diameter = request.roughness = request.minorLoss = false;
  request.nodes = request.head = true;
  EXPECT_TRUE(drawTables(u"Rete", request).empty());
  EXPECT_EQ(onLayer(u"LINKS_RESULTS-Rete").size(), 0U);
  ASSERT_EQ(onLayer(u"NODES_RESULTS-Rete").size(), 2U);
  ASSERT_EQ(onLayer(u"PIPE_DATA-Rete").size(), 1U);
  const AcDbObjectId pipeTable = onLayer(u"PIPE_DATA-Rete")[0];
  {
    const Opened<AcDbTable> table(pipeTable);
    EXPECT_EQ(table->numRows(), 3);  // title, length, status
    EXPECT_EQ(table->textString(1, 1), u"10.000");
    EXPECT_EQ(Opened<AcDbTable>(onLayer(u"NODES_RESULTS-Rete")[1])->textString(1, 1), u"40.000");
  }
  drawGradeLine(u"Rete", 2);
  EXPECT_EQ(heights(onLayer(u"PIEZOMETRICA_3D-Rete")[0]), (std::vector<double>{50, 40}));
  const double width = Opened<AcDbTable>(pipeTable)->width();
  scaleNetwork(u"Rete", {true, false, 3, 7});
  EXPECT_EQ(Opened<AcDbTable>(pipeTable)->width(), width);
  scaleNetwork(u"Rete", {false, true, 9, 2});
  EXPECT_EQ(Opened<AcDbTable>(pipeTable)->width(), 2 * width);
  EXPECT_EQ(Opened<AcDbBlockReference>(onLayer(u"JUNC-Rete")[1])->scaleFactors().sx, 3);
  EXPECT_EQ(Opened<AcDbBlockReference>(other)->scaleFactors().sx, 1);
  static_cast<void>(line);
}

}  // namespace
}  // namespace vessora
