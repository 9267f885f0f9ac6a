// Giving a table entry another name takes along everything that names it, of every kind.
#include <gtest/gtest.h>

#include "platform/format.h"
#include "platform/text.h"
#include "tests/cad/drawing_testing.h"

namespace {

using namespace testing_drawings;

// One object of every kind that can name a layer, line type, text style, block or dimension style
// called VECCHIO, and beside each one that names something else.
std::string drawingWithNames() {
  std::string text =
      "0 SECTION\n2 HEADER\n9 $ACADVER\n1 AC1027\n9 $CLAYER\n8 VECCHIO\n9 $CELTYPE\n6 "
      "VECCHIO\n9 $TEXTSTYLE\n7 VECCHIO\n9 $DIMSTYLE\n2 VECCHIO\n9 $HANDSEED\n5 FFF\n0 "
      "ENDSEC\n0 SECTION\n2 TABLES\n";
  int handle = 0x10;
  const auto next = [&] { return platform::narrow(platform::format(u"%X", handle++)); };
  const auto table = [&](const std::string& kind, const std::string& marker,
                         const std::string& more) {
    const std::string own = next();
    text += "0 TABLE\n2 " + kind + "\n5 " + own + "\n330 0\n100 AcDbSymbolTable\n70 3\n";
    for (const char* name : {"0", "VECCHIO", "ALTRO"}) {
      const std::string code = kind == "DIMSTYLE" ? "105 " : "5 ";
      text += "0 " + kind + "\n" + code + next() + "\n330 " + own +
              "\n100 AcDbSymbolTableRecord\n100 " + marker + "\n2 " + name + "\n70 0\n" + more;
    }
    text += "0 ENDTAB\n";
  };
  table("LTYPE", "AcDbLinetypeTableRecord", "3 x\n72 65\n73 0\n40 0.0\n");
  table("LAYER", "AcDbLayerTableRecord", "62 7\n6 VECCHIO\n");
  table("STYLE", "AcDbTextStyleTableRecord", "40 0.0\n41 1.0\n");
  table("APPID", "AcDbRegAppTableRecord", "");
  table("DIMSTYLE", "AcDbDimStyleTableRecord", "");
  table("BLOCK_RECORD", "AcDbBlockTableRecord", "340 0\n");
  text += "0 ENDSEC\n0 SECTION\n2 BLOCKS\n";
  for (const char* name : {"0", "VECCHIO", "ALTRO"}) {
    text += "0 BLOCK\n5 " + next() + "\n100 AcDbEntity\n8 0\n100 AcDbBlockBegin\n2 " +
            std::string(name) + "\n70 0\n10 0.0\n20 0.0\n3 " + name + "\n0 ENDBLK\n5 " + next() +
            "\n100 AcDbEntity\n8 0\n100 AcDbBlockEnd\n";
  }
  text += "0 ENDSEC\n0 SECTION\n2 ENTITIES\n";
  for (const std::string name : {"VECCHIO", "ALTRO"}) {
    const auto entity = [&](const std::string& type, const std::string& common,
                            const std::string& own) {
      text += "0 " + type + "\n5 " + next() + "\n100 AcDbEntity\n" + common + own;
    };
    const std::string text1 = "10 0.0\n20 0.0\n40 1.0\n1 VECCHIO\n7 " + name + "\n";
    entity("POINT", "8 " + name + "\n6 " + name + "\n", "100 AcDbPoint\n10 0.0\n20 0.0\n");
    entity("TEXT", "8 0\n", "100 AcDbText\n" + text1);
    entity("ATTDEF", "8 0\n",
           "100 AcDbText\n" + text1 + "100 AcDbAttributeDefinition\n2 VECCHIO\n");
    entity("MTEXT", "8 0\n", "100 AcDbMText\n" + text1);
    entity("INSERT", "8 0\n", "100 AcDbBlockReference\n2 " + name + "\n10 0.0\n20 0.0\n");
    entity("ACAD_TABLE", "8 0\n",
           "100 AcDbBlockReference\n2 " + name + "\n10 0.0\n100 AcDbTable\n7 " + name + "\n");
    entity("DIMENSION", "8 0\n", "100 AcDbDimension\n2 " + name + "\n10 0.0\n3 " + name + "\n");
    entity("LEADER", "8 0\n", "100 AcDbLeader\n3 " + name + "\n");
    entity("LINE", "8 0\n",
           "100 AcDbLine\n10 0.0\n11 1.0\n1001 " + name + "\n1003 " + name + "\n1000 VECCHIO\n");
  }
  return tags(text + "0 ENDSEC\n0 EOF");
}

std::size_t count(const std::string& in, const std::string& what) {
  std::size_t n = 0;
  for (std::size_t at = in.find(what); at != in.npos; at = in.find(what, at + 1)) ++n;
  return n;
}

TEST(Renames, ReachEveryKindOfObjectThatNamesTheEntry) {
  using cad::Type;
  const struct {
    Type kind;
    std::initializer_list<const char*>
        rows;  // "code value" that change, each as often as it stands
  } cases[] = {
      {Type::layer, {"  8\nVECCHIO\n", "1003\nVECCHIO\n"}},
      {Type::ltype, {"  6\nVECCHIO\n"}},
      {Type::style, {"  7\nVECCHIO\n"}},
      {Type::dimstyle, {}},
      {Type::blockRecord, {}},
  };
  for (const auto& c : cases) {
    auto db = load(drawingWithNames());
    ASSERT_TRUE(db);
    cad::Drawing& d = db->drawing();
    const std::string before = d.toBytes();
    const std::uint32_t entry = c.kind == Type::blockRecord
                                    ? d.structure().blockNamed(u"VECCHIO")
                                    : d.structure().tableEntry(c.kind, u"VECCHIO");
    ASSERT_TRUE(entry) << static_cast<int>(c.kind);
    {
      Open<AcDbSymbolTableRecord> record(d.idOf(entry), AcDb::kForWrite);
      ASSERT_TRUE(record);
      ASSERT_EQ(d.rename(*record, u"NUOVO"), Acad::eOk) << static_cast<int>(c.kind);
    }
    const std::string after = d.toBytes();
    for (const char* row : c.rows) {
      std::string renamed = row;
      renamed.replace(renamed.find("VECCHIO"), 7, "NUOVO");
      EXPECT_EQ(count(after, row), 0U) << row;
      EXPECT_EQ(count(after, renamed), count(before, row)) << row;
    }
    const auto changed = [&](const std::string& was) {
      std::string is = was;
      for (std::size_t at; (at = is.find("VECCHIO")) != is.npos;) is.replace(at, 7, "NUOVO");
      return count(before, tags(was)) == 1 && count(after, tags(was)) == 0 &&
             count(after, tags(is)) == 1;
    };
    const bool block = c.kind == Type::blockRecord, dimension = c.kind == Type::dimstyle;
    EXPECT_EQ(changed("100 AcDbBlockReference\n2 VECCHIO\n10 0.0\n20 0.0"), block);
    EXPECT_EQ(changed("100 AcDbBlockReference\n2 VECCHIO\n10 0.0\n100 AcDbTable"), block);
    EXPECT_EQ(changed("100 AcDbDimension\n2 VECCHIO"), block);
    EXPECT_EQ(changed("100 AcDbBlockBegin\n2 VECCHIO\n70 0\n10 0.0\n20 0.0\n3 VECCHIO"), block);
    EXPECT_EQ(changed("100 AcDbBlockTableRecord\n2 VECCHIO"), block);
    EXPECT_EQ(changed("10 0.0\n3 VECCHIO\n0 LEADER"), dimension);
    EXPECT_EQ(changed("100 AcDbLeader\n3 VECCHIO"), dimension);
    EXPECT_EQ(changed("9 $DIMSTYLE\n2 VECCHIO"), dimension);
    EXPECT_EQ(changed("9 $TEXTSTYLE\n7 VECCHIO"), c.kind == Type::style);
    EXPECT_EQ(changed("9 $CELTYPE\n6 VECCHIO"), c.kind == Type::ltype);
    EXPECT_EQ(changed("9 $CLAYER\n8 VECCHIO"), c.kind == Type::layer);
    // Values and names of others stay.
    EXPECT_EQ(count(after, "  1\nVECCHIO\n"), count(before, "  1\nVECCHIO\n"));
    EXPECT_EQ(count(after, "1000\nVECCHIO\n"), 2U);
    EXPECT_EQ(count(after, "ALTRO"), count(before, "ALTRO"));
  }
}

}  // namespace
