#include "module/network/materials.h"

#include <gtest/gtest.h>

#include "platform/text.h"

namespace vessora {
namespace {

std::string rows(const std::string& bytes) {
  std::string all;
  for (const EpaMaterial& m : parseMaterials(bytes)) {
    all += platform::narrow(m.name) + '=' + std::to_string(m.roughness) + '/' +
           platform::narrow(m.thirdLine) + ';';
  }
  return all;
}

TEST(Materials, ThreeLinesMakeARow) {
  EXPECT_EQ(rows("PEAD\n0.0015000000\n0,0,0\nGhisa\r\n0.25 m\r\nx\r\n"),
            "PEAD=0.001500/0,0,0;Ghisa=0.250000/x;");
  EXPECT_EQ(rows("\nabc\n\n"), "=0.000000/;");
  // What is no whole row is dropped.
  EXPECT_EQ(rows("A\n1\nx\nB\n"), "A=1.000000/x;");
  EXPECT_EQ(rows("A\n1\nx\nB\n2\n"), "A=1.000000/x;");
  EXPECT_EQ(rows(""), "");
}

TEST(Materials, ALineWithoutItsEndLosesItsLastCharacter) {
  EXPECT_EQ(rows("A\n1\n0,0,0"), "A=1.000000/0,0,;");
}

TEST(Materials, TextsAreCutAndDecoded) {
  const auto table = parseMaterials(std::string(300, 'n') + "\n1\n" + std::string(60, 't') +
                                    "\nMetallo \xE8\n2\n\n");
  ASSERT_EQ(table.size(), 2U);
  EXPECT_EQ(table[0].name.size(), 255U);
  EXPECT_EQ(table[0].thirdLine.size(), 51U);
  EXPECT_EQ(table[1].name, u"Metallo è");
}

// Whatever is written comes back as it was, and in the encoding in which the file was.
TEST(Materials, WritingGivesBackWhatWasRead) {
  const std::string latin = "Ghisa sferoidale \xE8\n0.0015000000\n0,0,0\n";
  EXPECT_EQ(formatMaterials(parseMaterials(latin), latin), latin);
  const std::string utf = "Acciaio \xC3\xA8\r\n1e-3\r\n\r\n";
  EXPECT_EQ(formatMaterials(parseMaterials(utf), utf), "Acciaio \xC3\xA8\n0.0010000000\n\n");
  std::vector<EpaMaterial> table(3);
  table[0].name = u"due\nrighe\r";
  table[0].roughness = 1e300;
  table[0].thirdLine =
      u"a\x1A"
      u"b";
  table[1].name = u"Łódź";               // no place in Windows-1252
  table[2].thirdLine = u"\u00C3\u00A8";  // would read as one letter of UTF-8
  const auto again = parseMaterials(formatMaterials(table, latin));
  ASSERT_EQ(again.size(), 3U);
  EXPECT_EQ(again[0].name, u"due righe ");
  EXPECT_DOUBLE_EQ(again[0].roughness, 1e300);
  EXPECT_EQ(again[0].thirdLine, u"a b");
  EXPECT_EQ(again[1].name, u"Łódź");
  EXPECT_EQ(again[2].thirdLine, u"\u00C3\u00A8");
  table = {table[2]};
  EXPECT_EQ(parseMaterials(formatMaterials(table, latin))[0].thirdLine, u"\u00C3\u00A8");
}

}  // namespace
}  // namespace vessora
