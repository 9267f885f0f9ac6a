// Texts made small and whole again, and data that are not what they say.
#include "platform/deflate.h"

#include <gtest/gtest.h>

#include <random>

namespace platform {
namespace {

// Rows that resemble each other, as those of a network do.
std::string rows(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) {
    text += " P" + std::to_string(i) + "\tN" + std::to_string(i * 7 % 1000) + "\t150.5\r\n";
  }
  return text;
}

TEST(Deflate, GivesBackEveryByte) {
  std::string noise(100000, '\0');
  std::mt19937 random(7);
  for (char& c : noise) c = static_cast<char>(random());
  for (const std::string& bytes : {std::string(), std::string(1, '\0'), rows(20000), noise}) {
    const std::string small = deflated(bytes);
    const auto whole = inflated(small, bytes.size());
    ASSERT_TRUE(whole) << bytes.size();
    EXPECT_EQ(*whole, bytes);
  }
  EXPECT_LT(deflated(rows(20000)).size(), rows(20000).size() / 3);
}

TEST(Deflate, RefusesWhatIsNotWhole) {
  const std::string bytes = rows(1000), small = deflated(bytes);
  EXPECT_FALSE(inflated(small, bytes.size() - 1));
  EXPECT_FALSE(inflated(small, bytes.size() + 1));
  EXPECT_FALSE(inflated(small.substr(0, small.size() - 1), bytes.size()));
  EXPECT_FALSE(inflated(small + "x", bytes.size()));
  EXPECT_FALSE(inflated("", 0));
  EXPECT_FALSE(inflated("no such frame", bytes.size()));
  for (std::size_t i = 0; i < small.size(); i += 97) {
    std::string hurt = small;
    hurt[i] = static_cast<char>(hurt[i] ^ 0x10);
    EXPECT_FALSE(inflated(hurt, bytes.size())) << "byte " << i;
  }
}

TEST(Deflate, TakesNoMoreMemoryThanTheDataCanFill) {
  const std::string bomb = deflated(std::string(std::size_t{64} << 20, 'a'));
  ASSERT_LT(bomb.size(), 400000U);
  EXPECT_FALSE(inflated(bomb, 1000));
  EXPECT_FALSE(inflated(bomb, ~std::size_t{0}));
  EXPECT_FALSE(inflated(bomb, std::size_t{1} << 60));
}

TEST(Deflate, ChecksumIsTheCommonOne) {
  EXPECT_EQ(crc32("123456789"), 0xCBF43926U);
  EXPECT_EQ(crc32(""), 0U);
}

}  // namespace
}  // namespace platform
