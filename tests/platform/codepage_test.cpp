#include "platform/codepage.h"

#include <gtest/gtest.h>

#include <string>

namespace platform {
namespace {

std::string unicodeEscape(char16_t c) {
  char text[8];
  std::snprintf(text, sizeof text, "\\U+%04X", static_cast<unsigned>(c));
  return text;
}

std::string encoded(const char* page, std::u16string_view text) {
  std::string out;
  CodePage::named(page).encode(out, text, unicodeEscape);
  return out;
}

TEST(CodePages, KnownTexts) {
  struct Case {
    const char* page;
    std::string bytes;
    std::u16string text;
  };
  const Case cases[] = {
      {"ANSI_1252", "Citt\xE0 \x80", u"Città €"},
      {"ansi_1251", "\xC2\xEE\xE4\xE0", u"Вода"},
      {"ANSI_1250", "\x9Alu\x9D", u"šluť"},
      {"ANSI_1253", "\xED\xE5\xF1\xFC", u"νερό"},
      {"ANSI_1255", "\xEE\xE9\xED", u"מים"},
      {"ANSI_874", "\xB9\xE9\xD3 \x85", u"น้ำ …"},
      // Second bytes that look like a backslash or a brace.
      {"ANSI_932", "\x83\x5C\x95\x5C\x96\x7B\\P", u"ソ表本\\P"},
      {"DOS932", "\xB1\x81\x40", u"ｱ\u3000"},
      {"ANSI_936", "\xB9\xDC\xB5\xC0\x81\x5C \x80", u"管道乗 €"},
      {"ANSI_949", "\xB9\xB0", u"물"},
      {"ANSI_950", "\xB3\x5C\xA4\xF4", u"許水"},
      {"ANSI_1361", "\\\xA2\x89\xEC\x39", u"\\물水"},
      {"dos850", "Citt\x85 \x9B", u"Città ø"},
      {"DOS437", "\xE1\x80", u"ßÇ"},
      {"MAC-ROMAN", "Citt\x88\xD5", u"Città’"},
      {"MACINTOSH", "\x8E", u"é"},
      {"KOI8-R", "\xF7\xCF\xC4\xC1", u"Вода"},
      {"ISO8859-15", "\xA4", u"€"},
      {"UTF-8", "Citt\u00E0 \U0001F6B0", u"Città \xD83D\xDEB0"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(CodePage::named(c.page).decode(c.bytes), c.text) << c.page;
    EXPECT_EQ(encoded(c.page, c.text), c.bytes) << c.page;
  }
}

TEST(CodePages, UnknownNamesAreWestern) {
  for (const char* name : {"", "UNDEFINED", "ANSI_99999", "klingon"}) {
    EXPECT_EQ(CodePage::named(name).decode("\xE8\x80"), u"è€") << name;
    EXPECT_FALSE(CodePage::named(name).isUtf8());
  }
  EXPECT_TRUE(CodePage().isUtf8());
  EXPECT_TRUE(CodePage::named("utf-8").isUtf8());
}

TEST(CodePages, ABadByteCostsItselfAlone) {
  EXPECT_EQ(CodePage::named("ANSI_932").decode("\x83"), u"\uFFFD");
  EXPECT_EQ(CodePage::named("ANSI_932").decode("\x83\n\x83\x5C"), u"\uFFFD\nソ");
  EXPECT_EQ(CodePage::named("ANSI_1253")
                .decode("a\xFF"
                        "b"),
            u"a\uFFFDb");
}

TEST(CodePages, CharactersOutsideThePageGoToTheCaller) {
  EXPECT_EQ(encoded("ANSI_1252", u"a水\xD83D\xDEB0z"), "a\\U+6C34\\U+D83D\\U+DEB0z");
  EXPECT_EQ(encoded("ANSI_932", u"水é"), "\x90\x85\\U+00E9");
  std::string out = "kept ";
  CodePage::named("ANSI_1251").encode(out, u"é", nullptr);
  EXPECT_EQ(out, "kept ?");
}

TEST(CodePages, EverythingThatDecodesComesBackAsTheSameText) {
  for (const char* name :
       {"ANSI_874", "ANSI_932", "ANSI_936", "ANSI_949", "ANSI_950", "ANSI_1254", "ANSI_1255",
        "ANSI_1256", "ANSI_1257", "ANSI_1258", "ANSI_1361", "DOS852", "DOS864", "DOS866"}) {
    const CodePage page = CodePage::named(name);
    for (unsigned first = 0; first < 256; ++first) {
      for (unsigned second = 0x20; second < 256; ++second) {
        const std::string bytes = {static_cast<char>(first), static_cast<char>(second)};
        const std::u16string text = page.decode(bytes);
        if (text.find(u'\uFFFD') != text.npos) continue;
        std::string back;
        page.encode(back, text, unicodeEscape);
        ASSERT_EQ(page.decode(back), text) << name << ' ' << first << ' ' << second;
      }
    }
  }
  for (int n = 1; n <= 5; ++n)
    EXPECT_NE(CodePage::multibyteEscape(n).decode("\xB0\xA1").size(), 0u);
  EXPECT_EQ(CodePage::multibyteEscape(1).decode("\x90\x85"), u"水");
  EXPECT_EQ(CodePage::multibyteEscape(5).decode("\xCB\xAE"), u"水");
}

}  // namespace
}  // namespace platform
