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

}  // namespace
}  // namespace vessora
