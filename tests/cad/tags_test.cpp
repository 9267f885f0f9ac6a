// Tags between text and value: the quick ways say what the general ones say.
#include "cad/dxf/tags.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <random>
#include <string>

namespace cad {
namespace {

std::uint64_t bitsOf(double value) { return std::bit_cast<std::uint64_t>(value); }

double readByLibrary(std::string_view text) {
  double value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

TEST(Tags, NumbersAreReadToTheLastBit) {
  std::mt19937_64 random(7);
  for (int i = 0; i < 200000; ++i) {
    std::string text = std::to_string(random() >> (random() % 64));
    if (const std::size_t point = random() % 24; point < text.size()) text.insert(point, ".");
    if (random() % 3 == 0) text.insert(0, "-");
    ASSERT_EQ(bitsOf(parseTagReal(text)), bitsOf(readByLibrary(text))) << text;
  }
  for (const char* text : {"0", "-0.0", ".5", "5.", "9007199254740993", "0.30000000000000004",
                           "123456789012345678", "1234567890123456789", "1e3", "2.5E-7"}) {
    EXPECT_EQ(bitsOf(parseTagReal(text)), bitsOf(readByLibrary(text))) << text;
  }
  EXPECT_EQ(parseTagReal(" +7.25 \r"), 7.25);
  for (const char* text : {"", ".", "-", "-.", "abc", "--1", "1e999", "inf"}) {
    EXPECT_EQ(parseTagReal(text), 0) << text;
  }
  EXPECT_EQ(parseTagReal("12abc"), 12);
}

TEST(Tags, TextsOfEveryLengthComeBack) {
  Format utf8;
  utf8.version = 1027;
  for (std::size_t length = 0; length <= 40; ++length) {
    std::u16string plain;
    for (std::size_t i = 0; i < length; ++i) plain += static_cast<char16_t>(u'!' + i % 60);
    TagList tags;
    tags.create(utf8, "TEXT");
    tags.addText(1, plain);
    // One character that needs more than its own byte, at every place.
    for (std::size_t at = 0; at < length; ++at) {
      for (const char16_t odd : {u'\u00E0', u'\u4E2D', u'^', u'\n', u'\x7F', u'\u0161'}) {
        std::u16string text = plain;
        text[at] = odd;
        tags.addText(1, text);
      }
    }
    std::string written(tags.writtenSize() + 16, '\0');
    written.resize(static_cast<std::size_t>(tags.write(written.data()) - written.data()));
    TagList again;
    ASSERT_TRUE(again.parse(utf8, written));
    ASSERT_EQ(again.size(), tags.size());
    EXPECT_EQ(again.text(1), plain);
    for (int i = 0; i < tags.size(); ++i) ASSERT_EQ(again.text(i), tags.text(i)) << length;
  }
}

// Programs pad group codes to three places, and not all do.
TEST(Tags, CodesAreReadHoweverTheyArePadded) {
  const auto codeOf = [](std::string line) {
    line += "\nvalue\n";
    std::size_t at = 0;
    Tag tag;
    return readAsciiTag(line, at, tag) && at == line.size() && tag.bytes() == "value" ? tag.code
                                                                                      : -1000;
  };
  EXPECT_EQ(codeOf("  0"), 0);
  EXPECT_EQ(codeOf("0"), 0);
  EXPECT_EQ(codeOf(" 10"), 10);
  EXPECT_EQ(codeOf("10 "), 10);
  EXPECT_EQ(codeOf("\t10\r"), 10);
  EXPECT_EQ(codeOf("100"), 100);
  EXPECT_EQ(codeOf("  1071"), 1071);
  EXPECT_EQ(codeOf(" -4"), -4);
  EXPECT_EQ(codeOf("007"), 7);
  for (const char* line : {"", "   ", "1 2", "  x", "x10", "1.0", " - 1", "99999", "--4"}) {
    EXPECT_EQ(codeOf(line), -1000) << line;
  }
}

}  // namespace
}  // namespace cad
