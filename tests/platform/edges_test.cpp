// The edges of tables: first and last member of each range of letters, bytes, digits and pages.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/codepage.h"
#include "platform/format.h"
#include "platform/ini.h"
#include "platform/text.h"
#include "tests/platform/scratch_folder.h"

namespace platform {
namespace {

TEST(Edges, UpperCaseOfEveryRange) {
  const struct {
    std::u16string from, to;
  } cases[] = {{u"@AZ[`az{", u"@AZ[`AZ{"},
               {u"\xDF\xE0\xF6\xF7\xF8\xFE\xFF", u"\xDF\xC0\xD6\xF7\xD8\xDE\x178"},
               {u"\x100\x101\x12F\x130\x131\x132\x133\x137\x138",
                u"\x100\x100\x12E\x130\x131\x132\x132\x136\x138"},
               {u"\x139\x13A\x147\x148\x149\x14A\x14B\x177\x178\x179\x17A\x17D\x17E\x17F\x180",
                u"\x139\x139\x147\x147\x149\x14A\x14A\x176\x178\x179\x179\x17D\x17D\x17F\x180"},
               {u"\x3AB\x3AC\x3AD\x3AF\x3B0\x3B1\x3C1\x3C2\x3C3\x3CB\x3CC\x3CD\x3CE\x3CF",
                u"\x3AB\x386\x388\x38A\x3B0\x391\x3A1\x3A3\x3A3\x3AB\x38C\x38E\x38F\x3CF"},
               {u"\x42F\x430\x44F\x450\x45F\x460\x461\x481\x482\x483\x489\x48A\x48B",
                u"\x42F\x410\x42F\x400\x40F\x460\x460\x480\x482\x483\x489\x48A\x48A"},
               {u"\x4BF\x4C0\x4C1\x4C2\x4CE\x4CF\x4D0\x4D1\x52E\x52F\x530",
                u"\x4BE\x4C0\x4C1\x4C1\x4CD\x4C0\x4D0\x4D0\x52E\x52E\x530"}};
  for (const auto& c : cases) EXPECT_EQ(upper(c.from), c.to);
  EXPECT_TRUE(equalNoCase(u"", u""));
  EXPECT_FALSE(equalNoCase(u"a", u"aa"));
}

TEST(Edges, BytesOfEveryLength) {
  const std::pair<const char*, std::u16string> cases[] = {
      {"\x7F", u"\x7F"},
      {"\xC2\x80", u"\x80"},
      {"\xDF\xBF", u"\x7FF"},
      {"\xE0\xA0\x80", u"\x800"},
      {"\xED\x9F\xBF", u"\xD7FF"},
      {"\xEE\x80\x80", u"\xE000"},
      {"\xEF\xBF\xBF", u"\xFFFF"},
      {"\xF0\x90\x80\x80", u"\U00010000"},
      {"\xF4\x8F\xBF\xBF", u"\U0010FFFF"},
      // Not valid: too long, a surrogate, too high, cut off.
      {"\xC1\xBF", u"\xFFFD\xFFFD"},
      {"\xE0\x9F\xBF", u"\xFFFD\xFFFD\xFFFD"},
      {"\xED\xBF\xBF", u"\xFFFD\xFFFD\xFFFD"},
      {"\xF0\x8F\xBF\xBF", u"\xFFFD\xFFFD\xFFFD\xFFFD"},
      {"\xF5\x80\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD"},
      {"\xC3\xC3\xA8", u"\xFFFDè"},
      {"\xE2\x82z", u"\xFFFD\xFFFDz"}};
  for (const auto& [bytes, text] : cases) {
    const bool valid = text.find(u'\xFFFD') == text.npos;
    EXPECT_EQ(widen(bytes), text) << bytes;
    EXPECT_EQ(isValidUtf8(bytes), valid) << bytes;
    EXPECT_EQ(isValidUtf8("12345678" + std::string(bytes)), valid) << "behind whole words";
    if (valid) {
      EXPECT_EQ(narrow(text), bytes);
    }
  }
  EXPECT_EQ(narrow(u"\xDBFF\xDFFF\xDC00\xD800\xDC00"),
            "\xF4\x8F\xBF\xBF\xEF\xBF\xBD\xF0\x90\x80\x80");
  // Windows-1252 where it leaves Latin-1, and the five bytes that stand for themselves.
  std::string high;
  for (int i = 0x80; i < 0x100; ++i) high += static_cast<char>(i);
  EXPECT_EQ(
      decodeBytes(high).substr(0, 34),
      u"\x20AC\x81\x201A\x192\x201E\x2026\x2020\x2021\x2C6\x2030\x160\x2039\x152\x8D\x17D\x8F"
      u"\x90\x2018\x2019\x201C\x201D\x2022\x2013\x2014\x2DC\x2122\x161\x203A\x153\x9D\x17E\x178"
      u"\xA0\xA1");
  EXPECT_EQ(decodeBytes(high).back(), u'\xFF');
  EXPECT_EQ(toUtf8(high), narrow(decodeBytes(high)));
  EXPECT_EQ(decodeBytes("\xEF\xBB"), u"ï»") << "half a mark is none";
}

TEST(Edges, NumbersAtTheLimitsOfTheirDigits) {
  std::string is;
  const auto add = [&](const auto& number) {
    if constexpr (requires { number.has_value(); }) {
      is += number ? narrow(format(u"%.17g ", static_cast<double>(*number))) : "? ";
    } else {
      is += narrow(format(u"%.17g ", static_cast<double>(number)));
    }
  };
  for (const char16_t* text :
       {u"-2147483648", u"-2147483647", u"-2147483649", u"\v\f\r\n+12", u"- 3", u""})
    add(wtoi(text));
  EXPECT_EQ(is, "-2147483648 -2147483647 -2147483648 12 0 0 ");
  is.clear();
  for (const char16_t* text : {u"9007199254740993", u"9007199254740995", u"1e22", u"1e23", u"1e-22",
                               u"1e-23", u"1.7976931348623159e308", u"-1e309", u"5e-324", u"1e-330",
                               u"-0", u"1e", u"1E-", u"00012345678901234567890"})
    add(wtof(text));
  EXPECT_EQ(is,
            "9007199254740992 9007199254740996 1e+22 9.9999999999999992e+22 1e-22 "
            "9.9999999999999996e-24 1.7976931348623157e+308 -1.7976931348623157e+308 "
            "4.9406564584124654e-324 0 -0 1 1 1.2345678901234567e+19 ");
  is.clear();
  for (const char16_t* text : {u"+1,5e2", u"\t5.\n", u"-1e309", u"1e-400", u"1e5 x", u"-,5", u"."})
    add(parseReal(text));
  for (const char16_t* text : {u"+7 ", u"-0", u"-9223372036854775809", u"-", u"- 1"})
    add(parseInteger(text));
  EXPECT_EQ(is, "150 5 ? 0 ? -0.5 ? 7 0 ? ? ? ");
  is.clear();
  for (const double value : {999999999999999.0, 1e15, -1e15, 123.5, -0.5, -12.34, 12.034, 12.005,
                             0.0005, 99999999999.999, 123456789012.5, double{INFINITY}}) {
    char text[32];
    is.append(text, writeReal(text, value)) += ' ';
  }
  EXPECT_EQ(is,
            "999999999999999.0 1e+15 -1e+15 123.5 -0.5 -12.34 12.034 12.005 5e-04 99999999999.999 "
            "123456789012.5 1.7976931348623157e+308 ");
}

TEST(Edges, EveryConversionWithEveryFlag) {
  const auto text = [](std::u16string_view pattern, const auto&... args) {
    std::string bytes;
    appendFormat(bytes, pattern, args...);
    EXPECT_EQ(bytes, narrow(format(pattern, args...)));
    return bytes;
  };
  const std::pair<std::string, const char*> cases[] = {
      {text(u"%5s|%-5s|%.1s|%5.0s|", u"ab", u"cd", u"ef", u"gh"), "   ab|cd   |e|     |"},
      {text(u"%.2s|%.1s|", u"a\xD83D\xDEB0", u"\xD83D\xDEB0"), "a||"},
      {text(u"%3s|%-3s|%.1s|", std::string_view("a"), std::string_view("b"),
            std::string_view("cd")),
       "  a|b  |c|"},
      {text(u"%3c|%-3c|%s", u'x', u'y', 7), "  x|y  |7"},
      {text(u"%+d|%+d|% d|% d|%+ d", 5, -5, 5, -5, 5), "+5|-5| 5|-5|+5"},
      {text(u"%05d|%-05d|%+05d|%05d", 42, 42, 42, -42), "00042|42   |+0042|-0042"},
      {text(u"%05.3d|%.0d|%+.0d", 42, 0, 0), "  042||+"},
      {text(u"%x|%X|%#x|%#X|%#x|%06x|%#06x", 255, 255, 255, 255, 0, 255, 255),
       "ff|FF|0xff|0XFF|0|0000ff|0x00ff"},
      {text(u"%u|%x|%u", -1, -1, std::int64_t{-2147483649}),
       "4294967295|ffffffff|18446744071562067967"},
      {text(u"%lu|%+u|%hhd", 7, 7, 300), "7|7|300"},
      {text(u"%f|%.0f|%#.0f|%+.1f|% .1f|%07.2f|%-7.1f|", 1.5, 2.5, 2.0, 1.0, 1.0, -1.5, 1.0),
       "1.500000|2|2.|+1.0| 1.0|-001.50|1.0    |"},
      {text(u"%e|%.2E|%.0e|%#.0e", 12345.678, 0.00012, 5.0, 5.0),
       "1.234568e+04|1.20E-04|5e+00|5.e+00"},
      {text(u"%g|%g|%g|%.3g|%G|%.0g", 0.0001, 0.00001, 1e6, 1234.5, 1e-10, 3.0),
       "0.0001|1e-05|1e+06|1.23e+03|1E-10|3"},
      {text(u"%f|%F|%05.1f|%+f", NAN, INFINITY, INFINITY, INFINITY), "nan|INF|  inf|+inf"},
      {text(u"%%|%5%|%d%%", 3), "%|%|3%"},
      {text(u"%s|%d|%x", 1.5, u"t", 2.0), "1.5|t|2"}};
  for (const auto& [is, expected] : cases) EXPECT_EQ(is, expected);
}

// The letters that tell one page from its neighbours, both ways.
TEST(Edges, EveryPageHasItsOwnLetters) {
  const struct {
    const char *page, *bytes;
    const char16_t* text;
  } cases[] = {{"ANSI_1254", "\xFD\xDE", u"ıŞ"},  {"ANSI_1256", "\xC7\x81", u"اپ"},
               {"ANSI_1257", "\xE0\xF8", u"ąų"},  {"ANSI_1258", "\xFE\xF5", u"₫ơ"},
               {"DOS852", "\x9C\x88", u"ťł"},     {"DOS855", "\xA0\xA1", u"аА"},
               {"DOS857", "\x8D\x9E", u"ıŞ"},     {"DOS860", "\x84\x94", u"ãõ"},
               {"DOS861", "\x8C\x95", u"ðþ"},     {"DOS862", "\x80\x9A", u"את"},
               {"DOS863", "\x8E\x84", u"ÀÂ"},     {"DOS864", "\xC7\xA8", u"ﺍﺎ"},
               {"DOS865", "\x9B\x9D", u"øØ"},     {"DOS866", "\x80\xE0", u"Ар"},
               {"DOS869", "\xA4\xFD", u"Αώ"},     {"DOS936", "\xB9\xDC", u"管"},
               {"DOS949", "\xB9\xB0", u"물"},     {"DOS950", "\xA4\xF4", u"水"},
               {"ISO8859-1", "\xA4\xE8", u"¤è"},  {"ISO8859-2", "\xB9\xF1", u"šń"},
               {"ISO8859-3", "\xA1\xFD", u"Ħŭ"},  {"ISO8859-4", "\xA2\xB6", u"ĸļ"},
               {"ISO8859-5", "\xB0\xF0", u"А№"},  {"ISO8859-6", "\xC7\xE4", u"ال"},
               {"ISO8859-7", "\xE1\xC1", u"αΑ"},  {"ISO8859-8", "\xE0\xFA", u"את"},
               {"ISO8859-9", "\xFD\xD0", u"ıĞ"},  {"ISO8859-10", "\xBD\xFF", u"―ĸ"},
               {"ISO8859-11", "\xA1\xFB", u"ก๛"}, {"ISO8859-13", "\xE0\xA1", u"ą”"},
               {"ISO8859-14", "\xA1\xF0", u"Ḃŵ"}};
  for (const auto& c : cases) {
    const CodePage page = CodePage::named(c.page);
    EXPECT_EQ(page.decode(c.bytes), c.text) << c.page;
    std::string back;
    page.encode(back, c.text, nullptr);
    EXPECT_EQ(back, c.bytes) << c.page;
  }
  const std::pair<int, const char16_t*> escapes[] = {{0, u"°¡"}, {1, u"ｰ｡"}, {2, u"陛"}, {3, u"가"},
                                                     {4, u"쌰"}, {5, u"啊"}, {6, u"°¡"}};
  for (const auto& [n, text] : escapes)
    EXPECT_EQ(CodePage::multibyteEscape(n).decode("\xB0\xA1"), text) << n;
  EXPECT_TRUE(CodePage::named("utf8").isUtf8());
  std::string zero;
  CodePage::named("ANSI_1252").encode(zero, std::u16string_view(u"a\0b", 3), nullptr);
  EXPECT_EQ(zero, std::string("a\0b", 3));
}

TEST(Edges, TokensAndPrintableSigns) {
  std::u16string tokens;
  for (const char16_t* text : {u"", u"a", u"a,", u",a b"}) {
    Tokens t(text, u" ,");
    while (const auto token = t.next()) (tokens += *token) += u'|';
    tokens += u';';
  }
  EXPECT_EQ(tokens, u";a|;a|;a|b|;");
  EXPECT_EQ(printable(u"\x200D\x200E\x2029\x202A\x2065\x2066\x206A\r"),
            u"\x200D<U+200E><U+2029><U+202A>\x2065<U+2066>\x206A\x240D");
  EXPECT_EQ(printable(std::u16string_view(u"\0 ", 2)), u"\x2400 ");
}

class IniEdges : public ScratchFolder {};

TEST_F(IniEdges, QuotesSectionsAndCuts) {
  ASSERT_TRUE(writeFile(at("s.ini"),
                        "[a]\nq='it\"\nr=\"\nt=\"\"\nu='\"x\"'\nv = a;b\n=empty\n[A]\nx=1\n"
                        "[b\nw=2\n[ c ]\nz=\xF0\x9F\x9A\xB0!\n"));
  const auto value = [&](const char16_t* section, const char16_t* key, std::size_t limit = 99) {
    return iniValue(at("s.ini"), section, key, u"-", limit);
  };
  std::u16string all;
  for (const char16_t* key : {u"q", u"r", u"t", u"u", u"v", u"", u"x"})
    all += value(u"a", key) + u'|';
  EXPECT_EQ(all, u"'it\"|\"||\"x\"|a;b|empty|-|") << "only a pair of quotes of one kind goes";
  EXPECT_EQ(value(u"b", u"w") + value(u" C ", u" z "), u"2\xD83D\xDEB0!");
  EXPECT_EQ(value(u"c", u"z", 2), u"\xD83D\xDEB0");
  EXPECT_EQ(value(u"c", u"z", 1), u"") << "half a character is none";
  EXPECT_EQ(value(u"c", u"z", 0), u"");
  ASSERT_TRUE(makeFolders(at("x/y")));
  ASSERT_TRUE(writeFile(at("x/b"), ""));
  EXPECT_EQ(namesIn(at("x")), (std::vector<std::string>{"b", "y/"}));
  EXPECT_TRUE(namesIn(at("none")).empty());
  EXPECT_FALSE(makeFolders(at("x/b/c")));
  EXPECT_TRUE(folderExists(at("x/y")));
  EXPECT_FALSE(fileExists(at("x/y")));
  EXPECT_FALSE(folderExists(at("x/b")));
  EXPECT_TRUE(sameFile(at("x/b"), at("x/y/../b")));
  EXPECT_FALSE(sameFile(at("none"), at("none")) || sameFile(at("x/b"), at("s.ini")));
  ASSERT_TRUE(writeFile(at("h.ini"), "[a]\r\rk\t=\t v \r"));
  EXPECT_EQ(iniValue(at("h.ini"), u"a", u"k", u"-"), u"v") << "old line ends and tabs";
  const auto bytes = readOrdinaryFile(at("h.ini"));
  ASSERT_TRUE(bytes);
  EXPECT_EQ(std::string(bytes->memory.data(), bytes->size + 1),
            std::string("[a]\r\rk\t=\t v \r\0", 14));
}

}  // namespace
}  // namespace platform
