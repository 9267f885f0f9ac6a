#include "platform/format.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <random>
#include <string>

#include "platform/text.h"
#include "platform/wide.h"

namespace platform {
namespace {

// Every template is run through both outputs; the UTF-8 one must say the same.
template <class... Args>
std::string both(std::u16string_view pattern, const Args&... args) {
  std::string bytes = "|";
  appendFormat(bytes, pattern, args...);
  EXPECT_EQ(bytes.substr(1), narrow(format(pattern, args...)));
  return bytes.substr(1);
}

TEST(Format, RowsOfNetworkFiles) {
  const wide256 id(u"J-1");
  const wide50 elevation(u"120.5");
  EXPECT_EQ(
      both(u" %-19s%-20s%-20s%-20s  ;\n", id, elevation, u"", u"P1"),
      " J-1                120.5                                   P1                    ;\n");
  EXPECT_EQ(both(u"%-19s%20s  ;\n", id, elevation), "J-1                               120.5  ;\n");
  EXPECT_EQ(both(u" %-19s%-20lf%-20.3lf;", id, 1.0, 2.0005),
            " J-1                1.000000            2.001               ;");
  EXPECT_EQ(both(u" %-19s% ;\n", id), " J-1                ;\n");
  // A value as long as its column or longer touches the next one.
  EXPECT_EQ(both(u"%-4s%-4s;", u"abcdef", u"abcd"), "abcdefabcd;");
  // Columns count characters as UTF-16 does, whatever their bytes.
  EXPECT_EQ(both(u"%-6s|%6s|", u"città", u"\xD83D\xDEB0"), "città |    \U0001F6B0|");
  EXPECT_EQ(both(u"%-6s|%.2s|", std::string_view("città"), std::string_view("\U0001F6B0x")),
            "città |\U0001F6B0|");
}

TEST(Format, LongTextsPassThroughWhole) {
  for (const std::size_t n : {1u, 511u, 512u, 513u, 5000u}) {
    const std::u16string text(n, u'x');
    EXPECT_EQ(both(u"<%s>%s", text, text), "<" + narrow(text) + ">" + narrow(text));
    EXPECT_EQ(both(u"%600s;%s", u"a", narrow(text)), std::string(599, ' ') + "a;" + narrow(text));
    EXPECT_EQ(both(text + u"è%d", 5), narrow(text) + "è5");
  }
}

TEST(Format, ConversionsAgreeWithTheLibrary) {
  const double reals[] = {0,    -0.0, 1,         -1.5, 0.0005, 123456.789,
                          1e15, 1e-7, 9.9999995, 2.5,  1e100,  -1e21};
  const char* const realForms[] = {"%f",      "%.0f",  "%10.2f",  "%-10.1f|", "%+.3f", "% .2f",
                                   "%012.3f", "%e",    "%.0e",    "%12.3e",   "%g",    "%.10g",
                                   "%G",      "%E",    "%#.0f",   "%#.0e",    "%.17f", "%lf",
                                   "%5.1lf",  "%.20g", "%-+9.2f|"};
  char expected[512];
  for (const char* form : realForms) {
    for (const double value : reals) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
      std::snprintf(expected, sizeof expected, form, value);
#pragma GCC diagnostic pop
      EXPECT_EQ(both(widen(form), value), expected) << form << ' ' << value;
    }
  }
  const int integers[] = {0, 1, -1, 42, -2147483647 - 1, 2147483647};
  const char* const integerForms[] = {"%d",  "%i",   "%5d",   "%-5d|",  "%05d", "%+d",
                                      "% d", "%.3d", "%8.3d", "%08.3d", "%u",   "%x",
                                      "%X",  "%#x",  "%08x",  "%#10x",  "%.0d", "%-08d|"};
  for (const char* form : integerForms) {
    for (const int value : integers) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
      std::snprintf(expected, sizeof expected, form, value);
#pragma GCC diagnostic pop
      EXPECT_EQ(both(widen(form), value), expected) << form << ' ' << value;
    }
  }
  EXPECT_EQ(both(u"%lld %hd", std::int64_t{-9223372036854775807 - 1}, 5), "-9223372036854775808 5");
  EXPECT_EQ(both(u"%5.1f|%05f", INFINITY, -INFINITY), "  inf| -inf");
  EXPECT_EQ(both(u"%c%3c", u'è', u'x'), "è  x");
}

TEST(Format, ATranslatedTemplateCannotReadWhatIsNotThere) {
  EXPECT_EQ(both(u"%s %s", u"one"), "one ");
  EXPECT_EQ(both(u"none %d"), "none ");
  EXPECT_EQ(both(u"one", u"two"), "one");
  // A conversion of the wrong kind prints the value in its own form, in the same column.
  EXPECT_EQ(both(u"%d|%5s|%f|%s", u"text", 7, 8, 0.25), "text|    7|8|0.25");
  EXPECT_EQ(both(u"%d", 1.5), "1.5");
}

TEST(Format, OddTails) {
  EXPECT_EQ(both(u"100%% %"), "100% ");
  EXPECT_EQ(both(u"% ;%-20;%5.3l,%*d", 1), ";;,*d");
  EXPECT_EQ(both(u"%ld%s%", 1, u"x"), "1x");
  EXPECT_EQ(both(u"%q%d", 5), "q5");
  EXPECT_EQ(both(u"%è"), "è");
  EXPECT_EQ(both(u"%999999999999d", 1).size(), 4096u);
  EXPECT_EQ(both(u"%.999999999999f", 0.0).size(), 402u);
  EXPECT_EQ(both(u"%.400f", -1.7976931348623157e308).size(), 1u + 309 + 1 + 400);
  EXPECT_EQ(both(u"%#.400g", 0.1).substr(0, 3), "0.1");
}

TEST(Format, AnyTemplateIsSafe) {
  std::mt19937 random(3);
  const std::u16string_view letters = u"%%%%-+ 0#.123459*lhsdiufegxcEGXq;è";
  for (int round = 0; round < 20000; ++round) {
    std::u16string pattern;
    for (int i = 0; i < 12; ++i) pattern.push_back(letters[random() % letters.size()]);
    both(pattern, u"tèxt", -1, 1e300, "\xFF", u'\xD800');
  }
}

TEST(Wide, HoldsOneUnitLessThanItsCapacityAndNoHalfCharacter) {
  for (const std::size_t n : {0u, 48u, 49u, 50u, 51u, 300u}) {
    const wide50 text(std::u16string(n, u'x'));
    EXPECT_EQ(text.size(), std::min<std::size_t>(n, 49)) << n;
  }
  EXPECT_EQ(wide256(std::u16string(256, u'x')).size(), 255u);
  using Small = Wide<5>;
  EXPECT_EQ(Small(u"abcd").view(), u"abcd");
  EXPECT_EQ(Small(u"ab\U0001F4A7").view(), u"ab\U0001F4A7");
  EXPECT_EQ(Small(u"abc\U0001F4A7").view(), u"abc") << "half of it would be none";
  EXPECT_EQ(Small(u"abcd\U0001F4A7").view(), u"abcd");
  EXPECT_EQ(Small(std::u16string_view(u"a\0b", 3)), u"a");
}

}  // namespace
}  // namespace platform
