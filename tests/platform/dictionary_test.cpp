// The translator's dictionary: what a PO file gives, and what is refused with its line.
#include "platform/dictionary.h"

#include <gtest/gtest.h>

#include "platform/text.h"

namespace {

using platform::Dictionary;

// The translation of a text, "" for none.
std::string translated(const Dictionary& dictionary, std::string_view text,
                       std::string_view context = {}) {
  const auto* found = dictionary.find(platform::widen(text), platform::widen(context));
  return found ? platform::narrow(*found) : "";
}

std::string errorOf(std::string_view po) {
  const auto dictionary = Dictionary::parse(po, "en.po");
  return dictionary ? "" : dictionary.error();
}

TEST(Dictionary, ReadsEntriesAsTranslatorsWriteThem) {
  const auto dictionary = Dictionary::parse(
      "\xEF\xBB\xBFmsgid \"\"\r\n"
      "msgstr \"Language: en\\n\"\r\n"
      "\r\n"
      "# a comment\r\n"
      "#: module/inp/draw_network.cpp:63\r\n"
      "msgid \"\\nNodi assenti\"\r\n"
      "msgstr \"\\nNo junctions\"\r\n"
      "msgid \"\"\r\n"
      "\"Rete non valida!\\n\"\r\n"
      "\t\"Selezionare una \\\"rete\\\"\\t\\\\!\"\r\n"
      "msgstr \"Not\"\r\n"
      "# in the middle\r\n"
      "#, fuzzy, c-format\r\n"
      "msgid \"Perdita\"\r\n"
      "msgstr \"Loss\"\r\n"
      "msgid \"Portata\"\r\n"
      "msgstr \"\"\r\n"
      "#~ msgid \"Vecchio\"\r\n"
      "#~ msgstr \"Old\"\r\n"
      "msgid\"Città\"\r\n"
      "msgstr\"Town\"",
      "en.po");
  ASSERT_TRUE(dictionary) << dictionary.error();
  EXPECT_EQ(translated(*dictionary, "\nNodi assenti"), "\nNo junctions");
  EXPECT_EQ(translated(*dictionary, "Rete non valida!\nSelezionare una \"rete\"\t\\!"), "Not");
  EXPECT_EQ(translated(*dictionary, "Città"), "Town");
  // The header, a fuzzy entry, an entry without translation and an obsolete one are not used.
  EXPECT_EQ(dictionary->size(), 3u);
  EXPECT_EQ(translated(*dictionary, ""), "");
}

TEST(Dictionary, KeepsTheTextsOfLibrariesApart) {
  const auto dictionary = Dictionary::parse(
      "msgctxt \"HNGeometry.dll\"\nmsgid \"Altezza\"\nmsgstr \"Text height\"\n"
      "msgid \"Altezza\"\nmsgstr \"Height\"\n",
      "en.po");
  ASSERT_TRUE(dictionary) << dictionary.error();
  EXPECT_TRUE(dictionary->hasContexts());
  EXPECT_EQ(translated(*dictionary, "Altezza"), "Height");
  EXPECT_EQ(translated(*dictionary, "Altezza", "HNGeometry.dll"), "Text height");
  EXPECT_EQ(translated(*dictionary, "Altezza", "vessora.arx"), "");
}

TEST(Dictionary, RefusesAFaultyFileWithItsLine) {
  const struct {
    const char* po;
    const char* error;
  } cases[] = {
      {"msgid \"a\"\nmsgstr \"b", "en.po:2: the closing quotation mark is missing"},
      {"msgid \"a\\\"", "en.po:1: the closing quotation mark is missing"},
      {"msgid \"a\\q\"", "en.po:1: an escape that is not understood: \\q"},
      {"msgid \"a\" b", "en.po:1: something stands behind the text"},
      {"msgid", "en.po:1: a text in quotation marks is expected"},
      {"\"a\"", "en.po:1: a text without msgid or msgstr in front of it"},
      {"\nmsgstr \"b\"", "en.po:2: msgstr in the wrong place"},
      {"msgid \"a\"\nmsgid \"b\"", "en.po:2: msgid in the wrong place"},
      {"msgid \"a\"\nmsgid_plural \"b\"", "en.po:2: plural forms are not understood"},
      {"domain \"x\"", "en.po:1: msgctxt, msgid, msgstr, a quoted text or a comment is expected"},
      {"\n\nmsgid \"a\"\n", "en.po:3: an entry without msgid or msgstr"},
      {"msgid \"a\xE0\"", "en.po:1: the text is not UTF-8"},
      {"msgctxt \"c\"\nmsgctxt \"d\"", "en.po:2: msgctxt in the wrong place"},
      {"msgid \"a\"\nmsgctxt \"d\"", "en.po:2: msgctxt in the wrong place"},
      {"\nmsgctxt \"c\"\nmsgid \"a\"\n\n", "en.po:2: an entry without msgid or msgstr"},
      {"msgid \"a\\\"", "en.po:1: the closing quotation mark is missing"},
      {"msgid \"a\001\"", "en.po:1: a control character in the text"},
      {"# x\n\"a\"", "en.po:2: a text without msgid or msgstr in front of it"},
      {"msgid \"a\"\nmsgstr \"b\"\n#\n\"c\"",
       "en.po:4: a text without msgid or msgstr in front of it"},
      {"msgctxt \"c\"\nmsgid \"a\"\nmsgstr \"b\"\nmsgctxt \"c\"\nmsgid \"a\"\nmsgstr \"b\"",
       "en.po:4: a second translation of one text"},
      {"msgid \"a\"\nmsgstr \"b\"\nmsgid \"a\"\nmsgstr \"c\"",
       "en.po:3: a second translation of one text"},
  };
  for (const auto& c : cases) EXPECT_EQ(errorOf(c.po), c.error) << c.po;
}

// A conversion that is lost or of another kind would print a number or a path wrongly.
TEST(Dictionary, ComparesConversions) {
  const char* const bad[] = {
      "msgid \"file %s\"\nmsgstr \"file\"", "msgid \"%s di %d\"\nmsgstr \"%d of %s\"",
      "msgid \"%.3lf\"\nmsgstr \"%d\"",     "msgid \"a\"\nmsgstr \"a %s\"",
      "msgid \"%5d%s\"\nmsgstr \"%5d%c\"",  "msgid \"%%s\"\nmsgstr \"%s\"",
      "msgid \"%x %s\"\nmsgstr \"%s\""};
  for (const char* po : bad) {
    EXPECT_NE(errorOf(po).find("en.po:1: the conversions"), std::string::npos) << po;
  }
  const char* const good[] = {"msgid \"%.3lf m\"\nmsgstr \"%.1f m\"",
                              "msgid \"Efficienza [%]\"\nmsgstr \"Efficiency, percent\"",
                              "msgid \"%-+0#12.3lf%hd\"\nmsgstr \"%f %d\"",
                              "msgid \"%q %\"\nmsgstr \"%q %\"",
                              "msgid \"100% di\"\nmsgstr \"all of\"",
                              "msgid \"50%% %s\"\nmsgstr \"half of %s\""};
  for (const char* po : good) EXPECT_EQ(errorOf(po), "") << po;
}

TEST(Dictionary, EntriesEndWhereTheNextBegins) {
  const auto dictionary = Dictionary::parse(
      "#, fuzzy\nmsgid \"a\"\nmsgstr \"A\"\nmsgid \"b\"\nmsgstr \"\"\n\"B\"\n# fuzzy\nmsgid \"c\"\n"
      "msgstr \"C\"\n\nmsgctxt \"\"\nmsgid \"d\"\nmsgstr \"D\\r\"",
      "en.po");
  ASSERT_TRUE(dictionary) << dictionary.error();
  EXPECT_EQ(translated(*dictionary, "a"), "");
  EXPECT_EQ(translated(*dictionary, "b"), "B");
  EXPECT_EQ(translated(*dictionary, "c"), "C") << "a plain comment marks nothing";
  EXPECT_EQ(translated(*dictionary, "d"), "D\r");
  EXPECT_FALSE(dictionary->hasContexts()) << "an empty context is none";
  EXPECT_EQ(Dictionary::parse("", "en.po")->size(), 0u);
}

}  // namespace
