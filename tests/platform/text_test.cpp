#include "platform/text.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace platform {
namespace {

// A locale with a decimal comma for the length of a test, made by the build.
class CommaLocale {
 public:
  CommaLocale() {
    setenv("LOCPATH", VESSORA_LOCALES, 1);
    active_ = std::setlocale(LC_ALL, "it_IT.UTF-8") != nullptr;
  }
  ~CommaLocale() { std::setlocale(LC_ALL, "C"); }
  bool active() const { return active_; }

 private:
  bool active_ = false;
};

std::string fixed3(double value) {
  char text[400];
  return {text, writeFixed3(text, value)};
}

std::string fixed3OfLibrary(double value) {
  char text[400];
  std::snprintf(text, sizeof text, "%.3f", value);
  return text;
}

std::string real(double value) {
  char text[32];
  return {text, writeReal(text, value)};
}

// Doubles of every kind: plain coordinates, few decimals, halves of a thousandth, random bits.
std::vector<double> manyDoubles() {
  std::mt19937_64 random(7);
  std::vector<double> values = {0.0,
                                -0.0,
                                5e-324,
                                2.2250738585072014e-308,
                                1.7976931348623157e308,
                                9007199254740992.0,
                                9007199254740993.0,
                                4503599627370495.5,
                                1e15,
                                999999999999999.9,
                                0.0005,
                                0.9995,
                                -0.0004,
                                1e22,
                                1e23};
  std::uniform_real_distribution<double> coordinate(-1e7, 1e7);
  for (int i = 0; i < 20000; ++i) {
    values.push_back(coordinate(random));
    values.push_back(static_cast<double>(static_cast<long>(random() % 20000001) - 10000000) / 1000);
    values.push_back(std::ldexp(static_cast<double>(static_cast<int>(random())),
                                -static_cast<int>(random() % 64)));
    std::uint64_t bits = random();
    double any;
    std::memcpy(&any, &bits, sizeof any);
    if (std::isfinite(any)) values.push_back(any);
  }
  return values;
}

TEST(Conversions, RoundTripsEveryCodePointAndReplacesWhatIsNone) {
  std::u16string all;
  for (char32_t c = 1; c <= 0x10FFFF; c += c < 0x3000 ? 1 : 97) {
    if (c >= 0xD800 && c < 0xE000) continue;
    if (c < 0x10000) {
      all.push_back(static_cast<char16_t>(c));
    } else {
      all.push_back(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)));
      all.push_back(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
    }
  }
  const std::string bytes = narrow(all);
  EXPECT_TRUE(isValidUtf8(bytes));
  EXPECT_EQ(widen(bytes), all);

  EXPECT_EQ(narrow(u"a\xD800"
                   u"b\xDC00\xD800"),
            "a\uFFFDb\uFFFD\uFFFD");
  EXPECT_EQ(widen("a\xC0\x80z"), u"a\uFFFD\uFFFDz");              // overlong
  EXPECT_EQ(widen("\xED\xA0\x80"), u"\uFFFD\uFFFD\uFFFD");        // surrogate
  EXPECT_EQ(widen("\xF4\x90\x80\x80").size(), 4u);                // beyond the last code point
  EXPECT_EQ(widen("abcdefgh\xE2\x82"), u"abcdefgh\uFFFD\uFFFD");  // cut off
  EXPECT_EQ(widen(std::string_view("a\0b", 3)), std::u16string_view(u"a\0b", 3));
}

TEST(Conversions, AppendKeepsWhatWasThereAtEveryLengthAndAlignment) {
  for (std::size_t n = 0; n < 1200; n += n < 40 ? 1 : 37) {
    std::u16string text(n, u'x');
    std::string expected = "kept" + std::string(n, 'x');
    if (n > 3) {
      text.replace(n - 3, 2, u"\xD83D\xDEB0");
      expected.replace(4 + n - 3, 2, "\U0001F6B0");
    }
    std::string out = "kept";
    appendNarrow(out, text);
    ASSERT_EQ(out, expected);
    ASSERT_EQ(widen(out).size(), n + 4);
  }
}

TEST(Conversions, FilesAreUtf8AsAWholeOrWindows1252) {
  EXPECT_EQ(decodeBytes("\xEF\xBB\xBFQuota \xC3\xA8"), u"Quota è");
  EXPECT_EQ(decodeBytes("Quota \xE8 \x80 \x92"), u"Quota è € \u2019");
  // One byte that is no UTF-8 decides for the whole text.
  EXPECT_EQ(decodeBytes("\xC3\xA8 \xE8"), u"Ã¨ è");
  EXPECT_EQ(toUtf8("citt\xE0\r\n"), "citt\u00E0\r\n");
  EXPECT_EQ(toUtf8("\xEF\xBB\xBF"
                   "citt\u00E0"),
            "citt\u00E0");
  EXPECT_EQ(toUtf8("\x93"
                   "a\x94"),
            "\u201Ca\u201D");
  EXPECT_EQ(toUtf8(""), "");
  EXPECT_TRUE(isValidUtf8(toUtf8("\x81\x8D\xFF\xFE")));
}

TEST(Conversions, NamesCompareWithoutCaseInEuropeanScripts) {
  EXPECT_TRUE(equalNoCase(u"Condotta_è_1", u"CONDOTTA_È_1"));
  EXPECT_TRUE(equalNoCase(u"žluťoučký kůň ÿ", u"ŽLUŤOUČKÝ KŮŇ Ÿ"));
  EXPECT_TRUE(equalNoCase(u"ύδωρ σωλήνας ό ώ", u"ΎΔΩΡ ΣΩΛΉΝΑΣ Ό Ώ"));
  EXPECT_TRUE(equalNoCase(u"водопровод ёђџ ґҗӂԥ", u"ВОДОПРОВОД ЁЂЏ ҐҖӁԤ"));
  EXPECT_FALSE(equalNoCase(u"÷", u"×"));
  EXPECT_FALSE(equalNoCase(u"[", u"{"));
  EXPECT_EQ(upper(u"straße 北 @`{"), u"STRAßE 北 @`{");
  for (unsigned c = 0; c < 0x10000; ++c) {  // an upper-case letter has no further upper case
    const char16_t up = upper(static_cast<char16_t>(c));
    ASSERT_EQ(upper(up), up) << std::hex << c;
  }
}

TEST(Numbers, RealAtTheStartOfAText) {
  EXPECT_EQ(wtof(u" \t-12.50abc"), -12.5);
  EXPECT_EQ(wtof(u"+.5"), 0.5);
  EXPECT_EQ(wtof(u"5."), 5.0);
  EXPECT_EQ(wtof(u"1.2.3"), 1.2);
  EXPECT_EQ(wtof(u"1,5"), 1.0);
  EXPECT_EQ(wtof(u"1e3"), 1000.0);
  EXPECT_EQ(wtof(u"1e+"), 1.0);
  EXPECT_EQ(wtof(u"2E-2x"), 0.02);
  EXPECT_EQ(wtof(u"1d3"), 1.0);
  for (const char16_t* none :
       {u"", u"-", u".", u"-.e5", u"inf", u"nan", u"x1", u"- 1", u"\u0661"}) {
    EXPECT_EQ(wtof(none), 0.0);
  }
  EXPECT_EQ(wtof(u"0x10"), 0.0);
  EXPECT_EQ(wtof(u"1e999"), std::numeric_limits<double>::max());
  EXPECT_EQ(wtof(u"-1e99999999999999"), -std::numeric_limits<double>::max());
  EXPECT_EQ(wtof(u"1e-999"), 0.0);
  EXPECT_EQ(wtof(u"0e99999999999999"), 0.0);
  EXPECT_EQ(wtof(std::u16string(400, u'9')), std::numeric_limits<double>::max());
  EXPECT_EQ(wtof(u"0." + std::u16string(330, u'0') + u"1e331"), 1.0);
  EXPECT_EQ(wtof(u"1" + std::u16string(300, u'0') + u"e-300"), 1.0);
}

TEST(Numbers, RealsAgreeWithTheLibraryToTheLastBit) {
  for (const double value : manyDoubles()) {
    for (const char* form : {"%.17g", "%.6f", "%.2e", "%.25g"}) {
      char text[512];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
      std::snprintf(text, sizeof text, form, value);
#pragma GCC diagnostic pop
      const double expected = std::strtod(text, nullptr);
      if (!std::isfinite(expected)) continue;
      ASSERT_EQ(wtof(std::string_view(text)), expected) << text;
      ASSERT_EQ(wtof(widen(text)), expected) << text;
    }
  }
}

TEST(Numbers, IntegersSaturateAndIgnoreTheTail) {
  EXPECT_EQ(wtoi(u" 40.9"), 40);
  EXPECT_EQ(wtoi(u"-7x"), -7);
  EXPECT_EQ(wtoi(u"+"), 0);
  EXPECT_EQ(wtoi(u"2147483647"), 2147483647);
  EXPECT_EQ(wtoi(u"2147483648"), 2147483647);
  EXPECT_EQ(wtoi(u"-99999999999999999999999"), std::numeric_limits<std::int32_t>::min());
}

TEST(Numbers, DialogFieldsTakeWholeTextsOnly) {
  EXPECT_EQ(parseReal(u" 12,5 "), 12.5);
  EXPECT_EQ(parseReal(u"-12.5"), -12.5);
  EXPECT_EQ(parseReal(u",5"), 0.5);
  EXPECT_EQ(parseReal(u"1234567890123456789,5"), 1234567890123456789.5);
  for (const char16_t* bad :
       {u"", u"  ", u"12 m", u"1.234,5", u"1,2,3", u"nan", u"1e400", u"--1"}) {
    EXPECT_FALSE(parseReal(bad)) << narrow(bad);
  }
  EXPECT_EQ(parseInteger(u" -9223372036854775808"), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(parseInteger(u"9223372036854775807"), std::numeric_limits<std::int64_t>::max());
  for (const char16_t* bad : {u"9223372036854775808", u"1.0", u"", u"+", u"3 4"}) {
    EXPECT_FALSE(parseInteger(bad)) << narrow(bad);
  }
}

TEST(Numbers, FixedThreeDecimalsAsTheLibraryWritesThem) {
  for (const double value : manyDoubles())
    ASSERT_EQ(fixed3(value), fixed3OfLibrary(value)) << value;
  // Halves of a thousandth that a double holds exactly: 1/16 steps of 0.0625, 0.1875...
  for (int i = -40000; i < 40000; ++i) {
    const double tie = i / 16.0;
    ASSERT_EQ(fixed3(tie), fixed3OfLibrary(tie));
  }
  EXPECT_EQ(fixed3(0.0625), "0.062");
  EXPECT_EQ(fixed3(0.1875), "0.188");
  EXPECT_EQ(fixed3(-0.0001), "-0.000");
  EXPECT_EQ(fixed3(-0.0), "-0.000");
}

TEST(Numbers, DrawingRealsReadBackEqualAndLookLikeReals) {
  for (const double value : manyDoubles()) {
    const std::string text = real(value);
    ASSERT_EQ(std::strtod(text.c_str(), nullptr), value) << text;
    ASSERT_NE(text.find_first_of(".e"), text.npos) << text;
    ASSERT_LE(text.size(), 32u);
  }
  EXPECT_EQ(real(100000), "100000.0");
  EXPECT_EQ(real(-3), "-3.0");
  EXPECT_EQ(real(-0.0), "-0.0");
  EXPECT_EQ(real(0.1), "0.1");
  EXPECT_EQ(real(std::nan("")), "0.0");
  EXPECT_EQ(std::strtod(real(-INFINITY).c_str(), nullptr), -std::numeric_limits<double>::max());
}

TEST(Numbers, TheLocaleChangesNothing) {
  const CommaLocale locale;
  ASSERT_TRUE(locale.active()) << "no locale in " VESSORA_LOCALES;
  char text[8];
  std::snprintf(text, sizeof text, "%.1f", 1.5);
  ASSERT_STREQ(text, "1,5");
  EXPECT_EQ(wtof(u"1.5"), 1.5);
  EXPECT_EQ(wtof(u"1.2345678901234567890123"), 1.2345678901234567);
  EXPECT_EQ(wtof(u"1,5"), 1.0);
  EXPECT_EQ(fixed3(1.5), "1.500");
  EXPECT_EQ(fixed3(1e300).substr(301), ".000");
  EXPECT_EQ(real(1e-7 / 3), "3.3333333333333334e-08");
}

TEST(Tokens, RunsOfDelimitersCountAsOne) {
  std::vector<std::u16string> found;
  Tokens tokens(u"\t; J1  10.5 \t;;-3\n", u" \t;");
  while (auto token = tokens.next()) found.emplace_back(*token);
  EXPECT_EQ(found, (std::vector<std::u16string>{u"J1", u"10.5", u"-3\n"}));
  EXPECT_FALSE(tokens.next());
  EXPECT_FALSE(Tokens(u" ;;", u" ;").next());
}

std::vector<std::string> linesOf(std::string_view text, std::size_t limit = 999) {
  TextLines lines(text, limit);
  std::vector<std::string> out;
  while (auto line = lines.next()) {
    EXPECT_FALSE(lines.atEnd());
    out.emplace_back(*line);
  }
  EXPECT_TRUE(lines.atEnd());
  return out;
}

using Lines = std::vector<std::string>;

TEST(Lines, TextModeLineEnds) {
  EXPECT_EQ(linesOf(""), Lines{});
  EXPECT_EQ(linesOf("a\nb\r\n\r\n\nc"), (Lines{"a\n", "b\n", "\n", "\n", "c"}));
  EXPECT_EQ(linesOf("a\rb\r\r\n\r"), (Lines{"a\rb\r\n", "\r"}));
  EXPECT_EQ(linesOf("a\nb\x1A"
                    "c\nd\n"),
            (Lines{"a\n", "b"}));
  EXPECT_EQ(linesOf("\x1A"), Lines{});
  EXPECT_EQ(linesOf(std::string_view("a\0b\n", 4)), (Lines{std::string("a\0b\n", 4)}));
}

TEST(Lines, LongLinesArriveInPieces) {
  EXPECT_EQ(linesOf("abcdefgh\nx", 4), (Lines{"abcd", "efgh", "\n", "x"}));
  EXPECT_EQ(linesOf("abc\r\nabcd\r\nabcde\r\n", 4), (Lines{"abc\n", "abcd", "\n", "abcd", "e\n"}));
  EXPECT_EQ(linesOf("abcd", 4), Lines{"abcd"});
  // Units are counted, not bytes, and a character of two units is never torn.
  EXPECT_EQ(linesOf("èèè\nèèèè\n", 4), (Lines{"èèè\n", "èèèè", "\n"}));
  EXPECT_EQ(linesOf("€€€\r\n€€€€\r\n", 4), (Lines{"€€€\n", "€€€€", "\n"}));
  EXPECT_EQ(linesOf("abc\U0001F6B0\U0001F6B0\n", 4), (Lines{"abc", "\U0001F6B0\U0001F6B0", "\n"}));
  EXPECT_EQ(linesOf("\U0001F6B0x", 1), (Lines{"\U0001F6B0", "x"}));

  // Against a plain reading of the rule, over all mixtures of short lines.
  std::mt19937 random(11);
  for (int round = 0; round < 3000; ++round) {
    std::string text, unix_;
    for (int i = 0; i < 12; ++i) {
      const char* const pieces[] = {"a", "bc", "\n", "\r\n", "défg"};
      text += pieces[random() % 5];
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (text[i] != '\r') unix_ += text[i];
    }
    const std::size_t limit = 1 + random() % 6;
    std::string joined;
    bool newLine = true;
    for (const std::string& piece : linesOf(text, limit)) {
      const std::size_t units = widen(piece).size();
      ASSERT_LE(units, limit);
      ASSERT_TRUE(units == limit || piece.back() == '\n' ||
                  joined.size() + piece.size() == unix_.size());
      joined += piece;
      newLine = piece.back() == '\n';
    }
    ASSERT_EQ(joined, unix_) << newLine;
  }
}

// A line without end is read piece by piece: were the rest of the file looked at for each of them,
// the pages behind the first, which nobody may read, would end the program.
TEST(Lines, APieceIsCutWithoutALookAtTheRest) {
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  const std::size_t size = page * 64;
  void* const memory =
      mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(memory, MAP_FAILED);
  std::memset(memory, 'x', size);
  TextLines lines({static_cast<const char*>(memory), size}, 500);  // looks for the file's end once
  ASSERT_EQ(mprotect(static_cast<char*>(memory) + page, size - page, PROT_NONE), 0);
  EXPECT_EQ(lines.next()->size(), 500u);
  EXPECT_EQ(lines.next()->size(), 500u);
  munmap(memory, size);
}

TEST(Printable, NothingThatCommandsATerminalGetsThrough) {
  EXPECT_EQ(printable(u"riga\tuna\r\ndue\n"), u"riga\tuna\ndue\n");
  EXPECT_EQ(printable(u"\x1B[2J\a\r\x7F\x1F"), u"\x241B[2J\x2407\x240D\x2421\x241F");
  EXPECT_EQ(printable(u"\x80\x9B\x9F\xA0"), u"<U+0080><U+009B><U+009F>\xA0");
  EXPECT_EQ(printable(u"a\x202E\x2066\x2069\x2028\x200F\x061C\x2027\x202F"),
            u"a<U+202E><U+2066><U+2069><U+2028><U+200F><U+061C>\x2027\x202F");
  EXPECT_EQ(printable(u"città 水 \U0001F4A7"), u"città 水 \U0001F4A7");
  EXPECT_EQ(printable(std::string_view("è\x1b]0;x\a")), "è␛]0;x␇");
}

}  // namespace
}  // namespace platform
